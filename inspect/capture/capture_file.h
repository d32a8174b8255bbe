// The packets of a pcap or pcapng file.
#pragma once

#include "network.h"

#include <cstddef>
#include <cstdio>
#include <memory>
#include <span>
#include <stdexcept>

struct pcap;

namespace quorva::inspect::capture {

// A file that is not a capture, or that is damaged from some place on.
class CaptureError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// What is known of how a packet begins.
enum class LinkType : std::uint8_t { ethernet, linuxCooked1, linuxCooked2, loopback, rawIp };

struct Packet {
    std::uint64_t number = 0;  // in the file, from 1
    Time time;
    LinkType link = LinkType::rawIp;
    std::span<const unsigned char> bytes;
    std::size_t size = 0;  // bytes on the network, of which the file may have the first ones only
};

class CaptureFile {
public:
    // Takes the stream over. Reads it once from the start to the end, so it may be a pipe. Throws CaptureError if the
    // stream is not a capture or its link type is not read.
    explicit CaptureFile(std::FILE* stream);

    // Reads the next packet, whose bytes are valid until the next call. Returns false at the end. Throws CaptureError
    // where the file is cut or damaged.
    bool next(Packet& packet);

private:
    struct Close {
        void operator()(pcap* opened) const;
    };
    std::unique_ptr<pcap, Close> file;
    [[maybe_unused]] LinkType link = LinkType::rawIp;  // a build without libpcap uses neither
    [[maybe_unused]] std::uint64_t count = 0;
};

}  // namespace quorva::inspect::capture
