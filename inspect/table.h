// Rows of cells in columns, as text.
#pragma once

#include "support/text.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace quorva::inspect {

// A column is as wide as its widest cell; a column of empty cells is left out.
class Table {
public:
    explicit Table(std::string lineStart) : margin(std::move(lineStart)) {}

    // Adds a row, in which trailing cells may be missing. A line break in a cell becomes a blank.
    void add(std::vector<std::string> row)
    {
        for (std::string& cell : row) std::ranges::replace(cell, '\n', ' ');
        rows.push_back(std::move(row));
    }

    // One line for each row.
    std::string text() const
    {
        std::vector<std::size_t> widths;
        for (const auto& row : rows) {
            if (row.size() > widths.size()) widths.resize(row.size());
            for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], support::columns(row[i]));
        }
        std::string all;
        for (const auto& row : rows) {
            std::string line = margin;
            for (std::size_t i = 0; i < row.size(); ++i)
                if (widths[i] > 0) line += row[i] + std::string(widths[i] - support::columns(row[i]) + 2, ' ');
            line.erase(line.find_last_not_of(' ') + 1);
            all += line + '\n';
        }
        return all;
    }

private:
    std::string margin;
    std::vector<std::vector<std::string>> rows;
};

}  // namespace quorva::inspect
