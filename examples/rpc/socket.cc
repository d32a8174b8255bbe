// Sockets of the example.

#include "socket.h"

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace rpc {

namespace {

constexpr std::size_t mostFragments = 1024;
constexpr std::uint32_t lastFragment = 0x80000000;

Address find(const std::string& host, std::uint16_t port, int flags)
{
    addrinfo hints = {};
    hints.ai_flags = flags | AI_NUMERICSERV;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (const int error = getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &found))
        throw std::runtime_error("\"" + host + "\" is not an address: " + gai_strerror(error));
    sockaddr_storage storage = {};
    std::copy_n(reinterpret_cast<const unsigned char*>(found->ai_addr), found->ai_addrlen,
                reinterpret_cast<unsigned char*>(&storage));
    const Address address(storage, found->ai_addrlen);
    freeaddrinfo(found);
    return address;
}

}  // namespace

Descriptor::~Descriptor()
{
    if (held >= 0) close(held);
}

Address Address::lookUp(const std::string& host, std::uint16_t port)
{
    return find(host, port, 0);
}

Address Address::ofNumbers(const std::string& host, std::uint16_t port)
{
    return find(host, port, AI_NUMERICHOST);
}

Address Address::localOf(const Descriptor& socket)
{
    sockaddr_storage storage = {};
    socklen_t length = sizeof storage;
    if (getsockname(socket.get(), reinterpret_cast<sockaddr*>(&storage), &length) != 0) throwErrno("getsockname");
    return {storage, length};
}

std::string Address::host() const
{
    char name[NI_MAXHOST];
    return getnameinfo(get(), used, name, sizeof name, nullptr, 0, NI_NUMERICHOST) == 0 ? name : "?";
}

std::uint16_t Address::port() const
{
    // The port has the same place in the addresses of both families.
    return ntohs(reinterpret_cast<const sockaddr_in*>(&storage)->sin_port);
}

std::string Address::text() const
{
    return (family() == AF_INET6 ? "[" + host() + "]" : host()) + ':' + std::to_string(port());
}

void throwErrno(const std::string& what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

Descriptor openSocket(Protocol protocol, const Address& address)
{
    const int type = protocol == Protocol::tcp ? SOCK_STREAM : SOCK_DGRAM;
    Descriptor opened(socket(address.family(), type | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!opened) throwErrno("socket");
    const int on = 1;
    // A call goes out at once, although the reply to the one before is not acknowledged.
    if (protocol == Protocol::tcp) setsockopt(opened.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    return opened;
}

Descriptor openListener(Protocol protocol, const Address& address)
{
    Descriptor opened = openSocket(protocol, address);
    const int on = 1;
    // A server that is started again need not wait for the connections of its predecessor to time out.
    if (protocol == Protocol::tcp) setsockopt(opened.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (bind(opened.get(), address.get(), address.length()) != 0) throwErrno("bind to " + address.text());
    if (protocol == Protocol::tcp && listen(opened.get(), SOMAXCONN) != 0) throwErrno("listen");
    return opened;
}

void beginConnecting(const Descriptor& socket, const Address& peer)
{
    if (connect(socket.get(), peer.get(), peer.length()) != 0 && errno != EINPROGRESS)
        throwErrno("connect to " + peer.text());
}

void appendUnit(Bytes& bytes, std::uint32_t number)
{
    for (int shift = 24; shift >= 0; shift -= 8) bytes.push_back(static_cast<unsigned char>(number >> shift));
}

std::uint32_t unitAt(ByteView bytes)
{
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 | bytes[3];
}

Bytes asRecord(ByteView message)
{
    Bytes record;
    record.reserve(4 + message.size());
    appendUnit(record, lastFragment | static_cast<std::uint32_t>(message.size()));
    record.insert(record.end(), message.begin(), message.end());
    return record;
}

std::size_t RecordReader::take(ByteView bytes)
{
    const std::size_t offered = bytes.size();
    while (!bytes.empty() && !complete()) {
        if (markLength < sizeof mark) {
            mark[markLength++] = bytes.front();
            bytes = bytes.subspan(1);
            if (markLength < sizeof mark) continue;
            const std::uint32_t number = unitAt(mark);
            last = (number & lastFragment) != 0;
            rest = number & ~lastFragment;
            if (rest > longestMessage - record.size())
                throw std::length_error("a record is longer than " + std::to_string(longestMessage) + " bytes");
            if (++fragments > mostFragments)
                throw std::length_error("a record has more than " + std::to_string(mostFragments) + " fragments");
        } else {
            const ByteView part = bytes.first(std::min(rest, bytes.size()));
            record.insert(record.end(), part.begin(), part.end());
            rest -= part.size();
            bytes = bytes.subspan(part.size());
        }
        if (rest == 0 && markLength == sizeof mark && !last) markLength = 0;
    }
    return offered - bytes.size();
}

Bytes RecordReader::release()
{
    Bytes released = std::move(record);
    *this = {};
    return released;
}

}  // namespace rpc
