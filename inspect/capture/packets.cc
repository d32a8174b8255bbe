// Reads the headers of packets.

#include "packets.h"

#include <algorithm>

namespace quorva::inspect::capture {

namespace {

constexpr std::uint8_t tcpProtocol = 6;
constexpr std::uint8_t udpProtocol = 17;

enum EtherType : std::uint16_t {
    version4Type = 0x0800,
    version6Type = 0x86DD,
    vlanType = 0x8100,
    serviceVlanType = 0x88A8,
    oldVlanType = 0x9100
};

// Bytes of which headers are taken, and their number on the network.
class Rest {
public:
    Rest(std::span<const unsigned char> bytes, std::size_t size) : left(bytes), sizeLeft(size) {}

    bool has(std::size_t count) const { return left.size() >= count; }
    std::uint8_t byte(std::size_t at) const { return left[at]; }
    std::uint16_t number16(std::size_t at) const { return static_cast<std::uint16_t>(left[at] << 8 | left[at + 1]); }
    std::uint32_t number32(std::size_t at) const { return std::uint32_t{number16(at)} << 16 | number16(at + 2); }

    // Takes a header, which `has` has found.
    void skip(std::size_t count)
    {
        left = left.subspan(count);
        sizeLeft -= count;
    }

    // Takes what follows this many bytes away, such as the padding of a short Ethernet packet.
    void limit(std::size_t count)
    {
        sizeLeft = std::min(sizeLeft, count);
        left = left.first(std::min(left.size(), count));
    }

    std::span<const unsigned char> bytes() const { return left; }
    std::size_t size() const { return sizeLeft; }

private:
    std::span<const unsigned char> left;
    std::size_t sizeLeft;
};

// Takes the header of the link, and the tags of virtual networks. Returns false if no IP follows.
bool takeLink(LinkType link, Rest& rest)
{
    if (link == LinkType::rawIp) return true;
    if (link == LinkType::loopback) {  // a number for the protocol, which differs between systems; IP tells its version
        if (!rest.has(4)) return false;
        rest.skip(4);
        return true;
    }
    const std::size_t size = link == LinkType::ethernet ? 14 : link == LinkType::linuxCooked1 ? 16 : 20;
    if (!rest.has(size)) return false;
    std::uint16_t type = rest.number16(link == LinkType::linuxCooked2 ? 0 : size - 2);
    rest.skip(size);
    while (type == vlanType || type == serviceVlanType || type == oldVlanType) {
        if (!rest.has(4)) return false;
        type = rest.number16(2);
        rest.skip(4);
    }
    return type == version4Type || type == version6Type;
}

struct IpHeader {
    FragmentKey key;  // with the protocol that follows
    bool isFragment = false;
    std::size_t offset = 0;  // of the fragment
    bool isLast = true;
};

void copyAddress(Address& address, const Rest& rest, std::size_t at, std::size_t size)
{
    std::copy_n(rest.bytes().begin() + static_cast<std::ptrdiff_t>(at), size, address.bytes.begin());
    address.isVersion6 = size == 16;
}

// The functions take a header and everything up to what it carries, and the padding after the packet. They return false
// for a packet that is cut, malformed or encrypted.
bool takeVersion4(Rest& rest, IpHeader& ip)
{
    if (!rest.has(20)) return false;
    const std::size_t headerSize = (rest.byte(0) & 0x0Fu) * std::size_t{4};
    const std::size_t total = rest.number16(2);
    const std::uint16_t fragment = rest.number16(6);
    if (headerSize < 20 || !rest.has(headerSize) || (total != 0 && total < headerSize)) return false;
    ip.isFragment = (fragment & 0x3FFF) != 0;
    ip.offset = (fragment & 0x1FFFu) * std::size_t{8};
    ip.isLast = (fragment & 0x2000) == 0;
    ip.key.identification = rest.number16(4);
    ip.key.protocol = rest.byte(9);
    copyAddress(ip.key.from, rest, 12, 4);
    copyAddress(ip.key.to, rest, 16, 4);
    if (total != 0) rest.limit(total);  // 0: the network card divides the packet later
    rest.skip(headerSize);
    return true;
}

bool takeVersion6(Rest& rest, IpHeader& ip)
{
    constexpr std::uint8_t hopByHop = 0, routing = 43, fragmentHeader = 44, authentication = 51, options = 60,
                           mobility = 135;
    if (!rest.has(40)) return false;
    const std::size_t total = rest.number16(4);
    ip.key.protocol = rest.byte(6);
    copyAddress(ip.key.from, rest, 8, 16);
    copyAddress(ip.key.to, rest, 24, 16);
    rest.skip(40);
    if (total != 0) rest.limit(total);
    while (true) {
        std::size_t size = 8;
        switch (ip.key.protocol) {
        case hopByHop:
        case routing:
        case options:
        case mobility: size = rest.has(2) ? 8 + rest.byte(1) * std::size_t{8} : 8; break;
        case authentication: size = rest.has(2) ? 8 + rest.byte(1) * std::size_t{4} : 8; break;
        case fragmentHeader:
            if (!rest.has(8)) return false;
            ip.offset = rest.number16(2) & 0xFFF8u;
            ip.isLast = (rest.number16(2) & 1) == 0;
            ip.isFragment = ip.offset != 0 || !ip.isLast;
            ip.key.identification = rest.number32(4);
            ip.key.protocol = rest.byte(0);
            rest.skip(8);
            if (ip.isFragment) return true;
            continue;
        default: return true;
        }
        if (!rest.has(size)) return false;
        ip.key.protocol = rest.byte(0);
        rest.skip(size);
    }
}

bool takeUdp(Rest& rest, Payload& payload)
{
    if (!rest.has(8)) return false;
    const std::size_t size = rest.number16(4);
    if (size > rest.size() || (size != 0 && size < 8)) return false;
    payload.flow.transport = Transport::udp;
    payload.flow.from.port = rest.number16(0);
    payload.flow.to.port = rest.number16(2);
    if (size != 0) rest.limit(size);
    rest.skip(8);
    return true;
}

bool takeTcp(Rest& rest, Payload& payload)
{
    if (!rest.has(20)) return false;
    const std::size_t size = (rest.byte(12) >> 4u) * std::size_t{4};
    const std::uint8_t flags = rest.byte(13);
    if (size < 20 || size > rest.size()) return false;
    payload.flow.transport = Transport::tcp;
    payload.flow.from.port = rest.number16(0);
    payload.flow.to.port = rest.number16(2);
    payload.sequence = rest.number32(4);
    payload.acknowledgement = rest.number32(8);
    payload.finishes = (flags & 0x01) != 0;
    payload.synchronises = (flags & 0x02) != 0;
    payload.resets = (flags & 0x04) != 0;
    payload.acknowledges = (flags & 0x10) != 0;
    if (rest.has(size))
        rest.skip(size);
    else
        rest = Rest({}, rest.size() - size);  // the options are cut
    return true;
}

}  // namespace

std::optional<Payload> PacketReader::read(const Packet& packet)
{
    isFragment = false;
    const std::optional<Payload> payload = readPayload(packet);
    if (!payload && !isFragment) ++otherPackets;
    return payload;
}

std::optional<Payload> PacketReader::readPayload(const Packet& packet)
{
    Rest rest(packet.bytes, packet.size);
    IpHeader ip;
    if (!takeLink(packet.link, rest) || !rest.has(1)) return std::nullopt;
    const int version = rest.byte(0) >> 4;
    if (version == 4 ? !takeVersion4(rest, ip) : version != 6 || !takeVersion6(rest, ip)) return std::nullopt;
    if (ip.key.protocol != udpProtocol && ip.key.protocol != tcpProtocol) return std::nullopt;
    if (ip.isFragment) {
        isFragment = true;
        if (rest.bytes().size() < rest.size()) rest = Rest({}, 0);  // a cut fragment leaves its packet incomplete
        auto put = partial.add(ip.key, {ip.offset, rest.bytes(), ip.isLast}, packet.time);
        if (!put) return std::nullopt;
        whole = *std::move(put);
        rest = Rest(whole, whole.size());
    }
    Payload payload;
    payload.time = packet.time;
    payload.packet = packet.number;
    payload.flow.from.address = ip.key.from;
    payload.flow.to.address = ip.key.to;
    if (ip.key.protocol == udpProtocol ? !takeUdp(rest, payload) : !takeTcp(rest, payload)) return std::nullopt;
    payload.bytes = rest.bytes();
    payload.size = rest.size();
    return payload;
}

}  // namespace quorva::inspect::capture
