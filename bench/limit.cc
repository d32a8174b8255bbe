// The hand-written coding of the measured messages: one number at a time, or two where QUORVA_LANES is defined.

#include "limit.h"

#include <bit>
#include <cstring>
#include <new>

#ifdef QUORVA_LANES
namespace quorva::bench::lanes {
constexpr bool twoLanes = true;
#else
namespace quorva::bench::limit {
constexpr bool twoLanes = false;
#endif

namespace {

static_assert(std::endian::native == std::endian::little, "the limit is written for the machines it is measured on");

using Number = std::uint32_t;
using Out = unsigned char*;       // where the next byte goes; null: refused
using In = const unsigned char*;  // where the next byte is; null: refused

constexpr Number padded(Number length)
{
    return (length + 3) & ~Number{3};
}

template <class T>
Number unitOf(T value)
{
    return static_cast<Number>(value);
}

bool fits(const unsigned char* at, const unsigned char* end, std::size_t size)
{
    return static_cast<std::size_t>(end - at) >= size;
}

// ---- Numbers --------------------------------------------------------------------------------------------------------

Out put(Out at, Number number)
{
    number = __builtin_bswap32(number);
    std::memcpy(at, &number, 4);
    return at + 4;
}

Out put(Out at, Number first, Number second)
{
    if constexpr (twoLanes) {
        const std::uint64_t both = __builtin_bswap64(std::uint64_t{first} << 32 | second);
        std::memcpy(at, &both, 8);
        return at + 8;
    } else {
        return put(put(at, first), second);
    }
}

Number get(In at)
{
    Number number;
    std::memcpy(&number, at, 4);
    return __builtin_bswap32(number);
}

struct Pair {
    Number first, second;
};

Pair getPair(In at)
{
    if constexpr (twoLanes) {
        std::uint64_t both;
        std::memcpy(&both, at, 8);
        both = __builtin_bswap64(both);
        return {static_cast<Number>(both >> 32), static_cast<Number>(both)};
    } else {
        return {get(at), get(at + 4)};
    }
}

// `count` numbers of 32 bits, in either direction.
template <class To, class From>
void swapAll(To* to, const From* from, std::size_t count)
{
    auto* out = reinterpret_cast<unsigned char*>(to);
    const auto* in = reinterpret_cast<const unsigned char*>(from);
    std::size_t i = 0;
    if constexpr (twoLanes) {
        for (; i + 4 <= count; i += 4) {
            std::uint64_t a, b;
            std::memcpy(&a, in + 4 * i, 8);
            std::memcpy(&b, in + 4 * i + 8, 8);
            a = std::rotl(__builtin_bswap64(a), 32);
            b = std::rotl(__builtin_bswap64(b), 32);
            std::memcpy(out + 4 * i, &a, 8);
            std::memcpy(out + 4 * i + 8, &b, 8);
        }
    }
    for (; i < count; ++i) {
        const Number number = get(in + 4 * i);
        std::memcpy(out + 4 * i, &number, 4);
    }
}

// ---- Encode ---------------------------------------------------------------------------------------------------------

// The bytes behind their padding's last unit, which is cleared first.
Out putBytes(Out at, const void* bytes, Number length)
{
    if (length == 0) return at;
    const Number all = padded(length);
    std::memset(at + all - 4, 0, 4);
    std::memcpy(at, bytes, length);
    return at + all;
}

// An attribute's number, twice, in front of its value.
Out putHead(Out at, const JobAVP& attribute)
{
    return put(at, attribute.id, attribute.value.attribute);
}

template <class Text>
Out putText(Out at, Out end, const JobAVP& attribute, const Text& text, Number maximum)
{
    const Number count = text.bytes.count;
    if (count > maximum || !fits(at, end, 16 + padded(count)) || (!text.bytes.elements && count != 0)) return nullptr;
    at = put(putHead(at, attribute), unitOf(text.encoding), count);
    return putBytes(at, text.bytes.elements, count);
}

Out putAttribute(Out at, Out end, const JobAVP& attribute)
{
    const JobUnion& value = attribute.value;
    const auto number = [&](Number n) { return fits(at, end, 12) ? put(putHead(at, attribute), n) : nullptr; };
    switch (value.attribute) {
    case 8:
        if (!fits(at, end, 16)) return nullptr;
        return put(putHead(at, attribute), value.jobId.service, value.jobId.job);
    case 13: {
        if (value.jobState.dpaJobState != DPAJobState::JSheld) return nullptr;
        const auto& reasons = value.jobState.jobHeldReason;
        if (reasons.count > 5 || !fits(at, end, 16 + std::size_t{4} * reasons.count)) return nullptr;
        if (!reasons.elements && reasons.count != 0) return nullptr;
        at = put(putHead(at, attribute), unitOf(value.jobState.dpaJobState), reasons.count);
        swapAll(at, reasons.elements, reasons.count);
        return at + std::size_t{4} * reasons.count;
    }
    case 15: return putText(at, end, attribute, value.jobOwner, 256);
    case 50: return number(value.quantity);
    case 59: return number(value.jobHold);
    case 70: {
        if (!value.pinNumber) return nullptr;
        const std::size_t length = std::strlen(value.pinNumber);
        if (length > 12 || !fits(at, end, 12 + padded(static_cast<Number>(length)))) return nullptr;
        return putBytes(put(putHead(at, attribute), static_cast<Number>(length)), value.pinNumber,
                        static_cast<Number>(length));
    }
    case 77: return putText(at, end, attribute, value.jobName, 256);
    case 100: return number(value.jobPriority);
    case 104: return number(value.jobSubmissionTime);
    case 106: return number(value.numberOfOriginalImages);
    case 192:
        if (!fits(at, end, 16)) return nullptr;
        return put(putHead(at, attribute), value.setscompleted.setsCompleted, value.setscompleted.setsRequested);
    case 244: return putText(at, end, attribute, value.jobMessageToOperator, 40);
    case 246: {
        if (!fits(at, end, 52)) return nullptr;
        const SecurePrintParams& secure = value.securePrintSetting;
        at = put(putHead(at, attribute), secure.secure);
        for (std::size_t i = 0; i < 10; i += 2)
            at = put(at, static_cast<std::uint8_t>(secure.idCode[i]), static_cast<std::uint8_t>(secure.idCode[i + 1]));
        return at;
    }
    case 1035: return putText(at, end, attribute, value.folderName, 256);
    case 1036: return putText(at, end, attribute, value.folderOwnerName, 256);
    case 1069: {
        const JobSourceSeq& sources = value.jobSourceSeq;
        if (!fits(at, end, 12 + std::size_t{4} * sources.count) || (!sources.elements && sources.count != 0))
            return nullptr;
        at = put(putHead(at, attribute), sources.count);
        swapAll(at, sources.elements, sources.count);
        return at + std::size_t{4} * sources.count;
    }
    case 1073: return putText(at, end, attribute, value.fileName, 256);
    default: return nullptr;
    }
}

Out putAttributes(Out at, Out end, const JobAVPSeq& attributes)
{
    if (!attributes.elements && attributes.count != 0) return nullptr;
    at = put(at, attributes.count);
    for (std::size_t i = 0; i < attributes.count; ++i)
        if (!(at = putAttribute(at, end, attributes.elements[i]))) return nullptr;
    return at;
}

// ---- Decode ---------------------------------------------------------------------------------------------------------

// What the arms below share: they leave nothing allocated behind when they refuse.
template <class T>
In getNumbers(In at, In end, Number count, std::uint16_t& kept, T*& elements)
{
    if (!fits(at, end, std::size_t{4} * count)) return nullptr;
    elements = nullptr;
    if (count != 0) {
        elements = new (std::nothrow) T[count];
        if (!elements) return nullptr;
        swapAll(elements, at, count);
    }
    kept = static_cast<std::uint16_t>(count);
    return at + std::size_t{4} * count;
}

template <class Text>
In getText(In at, In end, Text& text, Number maximum)
{
    if (!fits(at, end, 8)) return nullptr;
    const auto [encoding, count] = getPair(at);
    at += 8;
    if (count > maximum || !fits(at, end, padded(count))) return nullptr;
    text.encoding = static_cast<StringEncoding>(encoding);
    text.bytes.count = static_cast<std::uint16_t>(count);
    text.bytes.elements = nullptr;
    if (count == 0) return at;
    text.bytes.elements = new (std::nothrow) unsigned char[count];
    if (!text.bytes.elements) return nullptr;
    std::memcpy(text.bytes.elements, at, count);
    return at + padded(count);
}

In getAttribute(In at, In end, JobAVP& attribute)
{
    if (!fits(at, end, 12)) return nullptr;  // its number, twice, and a value of at least one unit
    JobUnion& value = attribute.value;
    const auto [id, selected] = getPair(at);
    at += 8;
    attribute.id = id;
    value.attribute = selected;
    const auto number = [&](Number& n) { return n = get(at), at + 4; };
    const auto pair = [&](Number& first, Number& second) -> In {
        if (!fits(at, end, 8)) return nullptr;
        const Pair both = getPair(at);
        first = both.first;
        second = both.second;
        return at + 8;
    };
    switch (selected) {
    case 8: return pair(value.jobId.service, value.jobId.job);
    case 13: {
        if (!fits(at, end, 8)) return nullptr;
        const auto [state, count] = getPair(at);
        if (state != unitOf(DPAJobState::JSheld) || count > 5) return nullptr;
        value.jobState.dpaJobState = DPAJobState::JSheld;
        return getNumbers(at + 8, end, count, value.jobState.jobHeldReason.count,
                          value.jobState.jobHeldReason.elements);
    }
    case 15: return getText(at, end, value.jobOwner, 256);
    case 50: return number(value.quantity);
    case 59: value.jobHold = static_cast<Boolean>(get(at)); return at + 4;
    case 70: {
        const Number length = get(at);
        at += 4;
        if (length > 12 || !fits(at, end, padded(length))) return nullptr;
        value.pinNumber = new (std::nothrow) char[length + 1];
        if (!value.pinNumber) return nullptr;
        std::memcpy(value.pinNumber, at, length);
        value.pinNumber[length] = '\0';
        return at + padded(length);
    }
    case 77: return getText(at, end, value.jobName, 256);
    case 100: return number(value.jobPriority);
    case 104: return number(value.jobSubmissionTime);
    case 106: return number(value.numberOfOriginalImages);
    case 192: return pair(value.setscompleted.setsCompleted, value.setscompleted.setsRequested);
    case 244: return getText(at, end, value.jobMessageToOperator, 40);
    case 246: {
        if (!fits(at, end, 44)) return nullptr;
        SecurePrintParams& secure = value.securePrintSetting;
        secure.secure = static_cast<Boolean>(get(at));
        at += 4;
        for (std::size_t i = 0; i < 10; i += 2, at += 8) {
            const Pair both = getPair(at);
            secure.idCode[i] = static_cast<IDCode>(both.first);
            secure.idCode[i + 1] = static_cast<IDCode>(both.second);
        }
        return at;
    }
    case 1035: return getText(at, end, value.folderName, 256);
    case 1036: return getText(at, end, value.folderOwnerName, 256);
    case 1069: {
        const Number count = get(at);
        if (count > 65535) return nullptr;
        return getNumbers(at + 4, end, count, value.jobSourceSeq.count, value.jobSourceSeq.elements);
    }
    case 1073: return getText(at, end, value.fileName, 256);
    default: return nullptr;
    }
}

// After a refusal the count is that of the attributes that are complete.
In getAttributes(In at, In end, JobAVPSeq& attributes)
{
    attributes = {0, nullptr};
    const Number count = get(at);
    at += 4;
    if (count > 65535 || !fits(at, end, std::size_t{12} * count)) return nullptr;
    if (count == 0) return at;
    attributes.elements = new (std::nothrow) JobAVP[count];
    if (!attributes.elements) return nullptr;
    for (Number i = 0; i < count; ++i) {
        at = getAttribute(at, end, attributes.elements[i]);
        if (!at) {
            attributes.count = static_cast<std::uint16_t>(i);
            return nullptr;
        }
    }
    attributes.count = static_cast<std::uint16_t>(count);
    return at;
}

}  // namespace

// ---- The messages ---------------------------------------------------------------------------------------------------

std::size_t encode(const JobAttNotifyParams& value, unsigned char* buffer, std::size_t room)
{
    if (room < 12) return 0;
    Out at = put(buffer, value.jobId.service, value.jobId.job);
    at = putAttributes(at, buffer + room, value.eventData);
    return at ? static_cast<std::size_t>(at - buffer) : 0;
}

std::size_t decode(JobAttNotifyParams& value, const unsigned char* message, std::size_t length)
{
    value.eventData = {0, nullptr};
    if (length < 12) return 0;
    const auto [service, job] = getPair(message);
    value.jobId.service = service;
    value.jobId.job = job;
    const In at = getAttributes(message + 8, message + length, value.eventData);
    return at ? static_cast<std::size_t>(at - message) : 0;
}

void release(JobAttNotifyParams& value)
{
    release(value.eventData);
}

std::size_t encode(const JobAVPSeq& value, unsigned char* buffer, std::size_t room)
{
    if (room < 4) return 0;
    const Out at = putAttributes(buffer, buffer + room, value);
    return at ? static_cast<std::size_t>(at - buffer) : 0;
}

std::size_t decode(JobAVPSeq& value, const unsigned char* message, std::size_t length)
{
    value = {0, nullptr};
    if (length < 4) return 0;
    const In at = getAttributes(message, message + length, value);
    return at ? static_cast<std::size_t>(at - message) : 0;
}

void release(JobAVPSeq& attributes)
{
    for (std::size_t i = 0; i < attributes.count; ++i) {
        JobUnion& value = attributes.elements[i].value;
        switch (value.attribute) {
        case 13: delete[] value.jobState.jobHeldReason.elements; break;
        case 15: delete[] value.jobOwner.bytes.elements; break;
        case 70: delete[] value.pinNumber; break;
        case 77: delete[] value.jobName.bytes.elements; break;
        case 244: delete[] value.jobMessageToOperator.bytes.elements; break;
        case 1035: delete[] value.folderName.bytes.elements; break;
        case 1036: delete[] value.folderOwnerName.bytes.elements; break;
        case 1069: delete[] value.jobSourceSeq.elements; break;
        case 1073: delete[] value.fileName.bytes.elements; break;
        default: break;
        }
    }
    delete[] attributes.elements;
}

std::size_t encode(const AttributeSeq& value, unsigned char* buffer, std::size_t room)
{
    const std::size_t size = 4 + std::size_t{4} * value.count;
    if (room < size || (!value.elements && value.count != 0)) return 0;
    swapAll(put(buffer, value.count), value.elements, value.count);
    return size;
}

std::size_t decode(AttributeSeq& value, const unsigned char* message, std::size_t length)
{
    value = {0, nullptr};
    if (length < 4) return 0;
    const Number count = get(message);
    if (count > 65535) return 0;
    const In at = getNumbers(message + 4, message + length, count, value.count, value.elements);
    return at ? static_cast<std::size_t>(at - message) : 0;
}

void release(AttributeSeq& value)
{
    delete[] value.elements;
}

#ifdef QUORVA_LANES
}  // namespace quorva::bench::lanes
#else
}  // namespace quorva::bench::limit
#endif
