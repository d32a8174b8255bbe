// Times and addresses of a capture.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace quorva::inspect::capture {

// A point in time, since 1970-01-01 UTC, or a duration. Nanoseconds are in 0 .. 999,999,999.
struct Time {
    std::int64_t seconds = 0;
    std::int32_t nanoseconds = 0;

    auto operator<=>(const Time&) const = default;

    Time operator-(const Time& other) const
    {
        const bool borrows = nanoseconds < other.nanoseconds;
        return {seconds - other.seconds - borrows, nanoseconds - other.nanoseconds + (borrows ? 1'000'000'000 : 0)};
    }

    // "0.001250", in seconds, cut to microseconds; "-0.001250" before zero.
    std::string text() const;

    double inSeconds() const { return (1e9 * static_cast<double>(seconds) + nanoseconds) / 1e9; }

    // "2026-01-31T09:30:00.001250000Z"
    std::string dateText() const;
};

// An address of IP. Version 4 uses the first four bytes.
struct Address {
    std::array<unsigned char, 16> bytes{};
    bool isVersion6 = false;

    auto operator<=>(const Address&) const = default;

    // "10.0.0.1", "fe80::1"
    std::string text() const;
};

struct Endpoint {
    Address address;
    std::uint16_t port = 0;

    auto operator<=>(const Endpoint&) const = default;

    // "10.0.0.1:700", "[fe80::1]:700"
    std::string text() const;
};

enum class Transport : std::uint8_t { udp, tcp };

const char* transportName(Transport transport);

// One direction between two endpoints.
struct Flow {
    Endpoint from, to;
    Transport transport = Transport::udp;

    auto operator<=>(const Flow&) const = default;

    Flow reversed() const { return {to, from, transport}; }
};

}  // namespace quorva::inspect::capture
