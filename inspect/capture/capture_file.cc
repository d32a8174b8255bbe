// Reads capture files with libpcap. A build without it, for another machine, refuses them.

#include "capture_file.h"

#include <algorithm>
#include <string>

#if QUORVA_CAPTURES
#include <pcap/pcap.h>
#endif

namespace quorva::inspect::capture {

#if QUORVA_CAPTURES

namespace {

LinkType linkTypeOf(int number)
{
    switch (number) {
    case DLT_EN10MB: return LinkType::ethernet;
    case DLT_LINUX_SLL: return LinkType::linuxCooked1;
    case DLT_LINUX_SLL2: return LinkType::linuxCooked2;
    case DLT_NULL:
    case DLT_LOOP: return LinkType::loopback;
    case DLT_RAW:
    case DLT_IPV4:
    case DLT_IPV6: return LinkType::rawIp;
    default: break;
    }
    const char* const name = pcap_datalink_val_to_name(number);
    throw CaptureError("packets of the link type " + (name ? std::string(name) : std::to_string(number)) +
                       " are not read");
}

// A file can hold any numbers.
Time timeOf(const pcap_pkthdr& header)
{
    constexpr std::int64_t second = 1'000'000'000;
    constexpr std::int64_t most = std::int64_t{1} << 48;
    const std::int64_t fraction = header.ts.tv_usec;  // nanoseconds, as the constructor asks for
    std::int64_t seconds = std::clamp<std::int64_t>(header.ts.tv_sec, -most, most) + fraction / second;
    std::int64_t nanoseconds = fraction % second;
    if (nanoseconds < 0) {
        nanoseconds += second;
        --seconds;
    }
    return {seconds, static_cast<std::int32_t>(nanoseconds)};
}

}  // namespace

CaptureFile::CaptureFile(std::FILE* stream)
{
    char error[PCAP_ERRBUF_SIZE] = "";
    file.reset(pcap_fopen_offline_with_tstamp_precision(stream, PCAP_TSTAMP_PRECISION_NANO, error));
    if (!file) {
        if (stream != stdin) std::fclose(stream);
        throw CaptureError("not a capture: " + std::string(error));
    }
    link = linkTypeOf(pcap_datalink(file.get()));
}

bool CaptureFile::next(Packet& packet)
{
    pcap_pkthdr* header = nullptr;
    const unsigned char* bytes = nullptr;
    const int result = pcap_next_ex(file.get(), &header, &bytes);
    if (result == PCAP_ERROR_BREAK) return false;
    if (result != 1)
        throw CaptureError("after packet " + std::to_string(count) + ": " + std::string(pcap_geterr(file.get())));
    packet = {++count, timeOf(*header), link, {bytes, header->caplen}, std::max(header->len, header->caplen)};
    return true;
}

void CaptureFile::Close::operator()(pcap* opened) const
{
    pcap_close(opened);
}

#else

CaptureFile::CaptureFile(std::FILE* stream)
{
    if (stream != stdin) std::fclose(stream);
    throw CaptureError("this program was built without libpcap and reads no captures");
}

bool CaptureFile::next(Packet&)
{
    return false;
}

void CaptureFile::Close::operator()(pcap*) const {}

#endif

}  // namespace quorva::inspect::capture
