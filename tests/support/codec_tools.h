// Helpers for tests of the codec: bytes written as hex, units of a message, a check of XML.
#pragma once

#include <quorvapixdr/codec.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace quorva::test {

// The mode as `Xdr::Program` takes it.
constexpr Xdr::Request requestOf(Mode mode)
{
    return static_cast<Xdr::Request>(mode);
}

// The bytes of "0000 0003 41424300"; blanks are ignored.
inline Bytes bytesOf(std::string_view hex)
{
    Bytes bytes;
    bool high = true;
    for (const char c : hex) {
        if (c == ' ') continue;
        const int lower = std::tolower(static_cast<unsigned char>(c));
        const int digit = lower >= 'a' ? lower - 'a' + 10 : lower - '0';
        if (high)
            bytes.push_back(static_cast<unsigned char>(digit << 4));
        else
            bytes.back() = static_cast<unsigned char>(bytes.back() | digit);
        high = !high;
    }
    return bytes;
}

inline std::string hexOf(std::span<const unsigned char> bytes)
{
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string hex;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i > 0 && i % 4 == 0) hex += ' ';
        hex += digits[bytes[i] >> 4];
        hex += digits[bytes[i] & 15];
    }
    return hex;
}

// The unit at byte `at`.
inline std::uint32_t unitAt(std::span<const unsigned char> bytes, std::size_t at)
{
    std::uint32_t unit = 0;
    for (std::size_t i = 0; i < 4; ++i) unit = unit << 8 | bytes[at + i];
    return unit;
}

inline void setUnit(std::span<unsigned char> bytes, std::size_t at, std::uint32_t unit)
{
    for (std::size_t i = 4; i-- > 0; unit >>= 8) bytes[at + i] = static_cast<unsigned char>(unit);
}

// A copy of `bytes` that ends where its storage ends, so that the address sanitizer reports the first byte beyond it.
// It starts at an odd address, as a message after a header may.
class Message {
public:
    explicit Message(std::span<const unsigned char> bytes)
        : length(bytes.size()), storage(new unsigned char[1 + length])
    {
        std::copy(bytes.begin(), bytes.end(), storage.get() + 1);
    }
    std::span<unsigned char> span() const { return {storage.get() + 1, length}; }

private:
    std::size_t length;
    std::unique_ptr<unsigned char[]> storage;
};

// The bytes of a value in memory.
template <class T>
Bytes memoryOf(const T& value)
{
    Bytes bytes(sizeof value);
    std::memcpy(bytes.data(), &value, sizeof value);
    return bytes;
}

// True if an XML parser accepts `text` as a document; otherwise it prints the reason on stderr.
bool isXml(const std::string& text);

}  // namespace quorva::test
