// Prints times and addresses.

#include "network.h"

#include <cstdio>
#include <ctime>

#include <arpa/inet.h>

namespace quorva::inspect::capture {

std::string Time::text() const
{
    if (seconds < 0) return '-' + (Time{} - *this).text();
    char fraction[16];
    std::snprintf(fraction, sizeof fraction, ".%06d", nanoseconds / 1000);
    return std::to_string(seconds) + fraction;
}

std::string Time::dateText() const
{
    const auto clock = static_cast<std::time_t>(seconds);
    std::tm date{};
    char text[64];
    if (!gmtime_r(&clock, &date) || std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &date) == 0)
        return this->text();
    char fraction[16];
    std::snprintf(fraction, sizeof fraction, ".%09dZ", nanoseconds);
    return std::string(text) + fraction;
}

std::string Address::text() const
{
    char text[INET6_ADDRSTRLEN] = "";
    inet_ntop(isVersion6 ? AF_INET6 : AF_INET, bytes.data(), text, sizeof text);
    return text;
}

std::string Endpoint::text() const
{
    const std::string host = address.text();
    return (address.isVersion6 ? '[' + host + ']' : host) + ':' + std::to_string(port);
}

const char* transportName(Transport transport)
{
    return transport == Transport::udp ? "udp" : "tcp";
}

}  // namespace quorva::inspect::capture
