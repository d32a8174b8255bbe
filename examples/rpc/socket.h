// Sockets of the example: owners of file descriptors, addresses, and the records of TCP (RFC 5531, section 11).
#pragma once

#include <quorvapixdr/codec.h>

#include <sys/socket.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>

namespace rpc {

using quorva::Bytes;
using ByteView = std::span<const unsigned char>;

// The longest message, with its header: what the codec can decode.
inline constexpr std::size_t longestMessage = quorva::longestMessage;

// The longest message in a datagram over IPv4.
inline constexpr std::size_t longestDatagram = 65507;

enum class Protocol { tcp, udp };

// Owns a file descriptor.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int number) : held(number) {}
    ~Descriptor();
    Descriptor(Descriptor&& other) noexcept : held(std::exchange(other.held, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(held, other.held);
        return *this;
    }

    int get() const { return held; }
    explicit operator bool() const { return held >= 0; }

private:
    int held = -1;
};

// The address of one end: an IPv4 or IPv6 address and a port.
class Address {
public:
    Address() = default;
    Address(const sockaddr_storage& bytes, socklen_t length) : storage(bytes), used(length) {}

    // Looks `host` up. Throws std::runtime_error for a name without an address.
    static Address lookUp(const std::string& host, std::uint16_t port);
    // Reads an address in numbers, "192.0.2.7" or "::1", without asking any other computer. Throws
    // std::runtime_error for another text.
    static Address ofNumbers(const std::string& host, std::uint16_t port);
    // The local end of a socket.
    static Address localOf(const Descriptor& socket);

    std::string host() const;  // "192.0.2.7"
    std::uint16_t port() const;
    std::string text() const;  // "192.0.2.7:40123"

    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&storage); }
    socklen_t length() const { return used; }
    int family() const { return storage.ss_family; }
    ByteView bytes() const { return {reinterpret_cast<const unsigned char*>(&storage), used}; }

private:
    sockaddr_storage storage = {};
    socklen_t used = 0;
};

// A socket that does not block. Throws std::system_error.
Descriptor openSocket(Protocol protocol, const Address& address);
// The same, bound to `address`; of TCP, it listens.
Descriptor openListener(Protocol protocol, const Address& address);
// Begins to connect a socket. The result of a connection that takes a while is the first error of a send.
void beginConnecting(const Descriptor& socket, const Address& peer);

// Throws the std::system_error of `errno`.
[[noreturn]] void throwErrno(const std::string& what);

// Adds a 32-bit number, big-endian, as all of XDR.
void appendUnit(Bytes& bytes, std::uint32_t number);
// The 32-bit number at the beginning of `bytes`, which has at least four.
std::uint32_t unitAt(ByteView bytes);

// A message as a record of one fragment.
Bytes asRecord(ByteView message);

// Puts a record together from the fragments of a stream, whatever the pieces in which it arrives.
class RecordReader {
public:
    // Takes bytes up to the end of the record, and returns their number. Throws std::length_error for a record that is
    // longer than `longestMessage` or has more than 1024 fragments, so that empty ones come to an end, too.
    std::size_t take(ByteView bytes);

    // True if the record is complete.
    bool complete() const { return last && markLength == sizeof mark && rest == 0; }
    // True if a part of the next record has arrived.
    bool begun() const { return markLength != 0 || !record.empty(); }
    // The record. The reader begins with the next one.
    Bytes release();

private:
    Bytes record;
    unsigned char mark[4] = {};
    std::size_t markLength = 0;  // bytes of the fragment's mark that have arrived
    std::size_t rest = 0;        // bytes of the fragment that are still to come
    std::size_t fragments = 0;
    bool last = false;
};

}  // namespace rpc
