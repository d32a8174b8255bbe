// The bounds of SECURITY.md, read from the page, so that the page and the tests cannot differ.
#pragma once

#include <cctype>
#include <cstddef>
#include <fstream>
#include <stdexcept>
#include <string>

namespace quorva::test {

// The number in the second column of the table row whose first column is `what`; commas group its digits.
inline std::size_t printedBound(const std::string& what)
{
    std::ifstream page(SECURITY_FILE);
    const std::string start = "| " + what + " | ";
    for (std::string line; std::getline(page, line);) {
        if (!line.starts_with(start)) continue;
        std::size_t number = 0;
        for (const char c : line.substr(start.size(), line.find(" |", start.size()) - start.size()))
            if (std::isdigit(static_cast<unsigned char>(c))) number = number * 10 + static_cast<std::size_t>(c - '0');
        return number;
    }
    throw std::runtime_error("SECURITY.md has no bound for: " + what);
}

}  // namespace quorva::test
