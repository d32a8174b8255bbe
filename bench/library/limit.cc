// Hand-written encode and decode functions of the library's messages.

#include "../limit.h"
#include "../limit_coding.h"

namespace quorva::bench::limit {

namespace {

// ---- Encode ---------------------------------------------------------------------------------------------------------

// Writes the attribute's number twice, before the value.
Out putHead(Out at, const JobAVP& attribute)
{
    return put(at, attribute.id, attribute.value.attribute);
}

template <class Encoded>
Out putEncoded(Out at, Out end, const JobAVP& attribute, const Encoded& text, Number maximum)
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
        return putNumbers(put(putHead(at, attribute), unitOf(value.jobState.dpaJobState), reasons.count), reasons);
    }
    case 15: return putEncoded(at, end, attribute, value.jobOwner, 256);
    case 50: return number(value.quantity);
    case 59: return number(value.jobHold);
    case 70: {
        if (!value.pinNumber) return nullptr;
        const std::size_t length = std::strlen(value.pinNumber);
        if (length > 12 || !fits(at, end, 12 + padded(static_cast<Number>(length)))) return nullptr;
        return putBytes(put(putHead(at, attribute), static_cast<Number>(length)), value.pinNumber,
                        static_cast<Number>(length));
    }
    case 77: return putEncoded(at, end, attribute, value.jobName, 256);
    case 100: return number(value.jobPriority);
    case 104: return number(value.jobSubmissionTime);
    case 106: return number(value.numberOfOriginalImages);
    case 192:
        if (!fits(at, end, 16)) return nullptr;
        return put(putHead(at, attribute), value.setscompleted.setsCompleted, value.setscompleted.setsRequested);
    case 244: return putEncoded(at, end, attribute, value.jobMessageToOperator, 40);
    case 246: {
        if (!fits(at, end, 52)) return nullptr;
        const SecurePrintParams& secure = value.securePrintSetting;
        at = put(putHead(at, attribute), secure.secure);
        for (const IDCode code : secure.idCode) at = put(at, static_cast<std::uint8_t>(code));
        return at;
    }
    case 1035: return putEncoded(at, end, attribute, value.folderName, 256);
    case 1036: return putEncoded(at, end, attribute, value.folderOwnerName, 256);
    case 1069: {
        const JobSourceSeq& sources = value.jobSourceSeq;
        if (!fits(at, end, 12 + std::size_t{4} * sources.count) || (!sources.elements && sources.count != 0))
            return nullptr;
        return putNumbers(put(putHead(at, attribute), sources.count), sources);
    }
    case 1073: return putEncoded(at, end, attribute, value.fileName, 256);
    default: return nullptr;
    }
}

// ---- Decode ---------------------------------------------------------------------------------------------------------

template <class Encoded>
In getEncoded(In at, In end, Encoded& text, Number maximum)
{
    if (!fits(at, end, 8)) return nullptr;
    text.encoding = static_cast<StringEncoding>(get(at));
    const Number count = get(at + 4);
    return count > maximum ? nullptr : getBytes(at + 8, end, count, text.bytes);
}

constexpr std::size_t leastAttribute = 12;  // its number, twice, and a value of at least one unit

In getAttribute(In at, In end, JobAVP& attribute)
{
    if (!fits(at, end, leastAttribute)) return nullptr;
    JobUnion& value = attribute.value;
    attribute.id = get(at);
    value.attribute = get(at + 4);
    at += 8;
    const auto number = [&](Number& n) { return n = get(at), at + 4; };
    const auto pair = [&](Number& first, Number& second) -> In {
        if (!fits(at, end, 8)) return nullptr;
        first = get(at);
        second = get(at + 4);
        return at + 8;
    };
    switch (value.attribute) {
    case 8: return pair(value.jobId.service, value.jobId.job);
    case 13: {
        if (!fits(at, end, 8)) return nullptr;
        const Number count = get(at + 4);
        if (get(at) != unitOf(DPAJobState::JSheld) || count > 5) return nullptr;
        value.jobState.dpaJobState = DPAJobState::JSheld;
        return getNumbers(at + 8, end, count, value.jobState.jobHeldReason);
    }
    case 15: return getEncoded(at, end, value.jobOwner, 256);
    case 50: return number(value.quantity);
    case 59: value.jobHold = static_cast<Boolean>(get(at)); return at + 4;
    case 70: return getString(at, end, 12, value.pinNumber);
    case 77: return getEncoded(at, end, value.jobName, 256);
    case 100: return number(value.jobPriority);
    case 104: return number(value.jobSubmissionTime);
    case 106: return number(value.numberOfOriginalImages);
    case 192: return pair(value.setscompleted.setsCompleted, value.setscompleted.setsRequested);
    case 244: return getEncoded(at, end, value.jobMessageToOperator, 40);
    case 246: {
        if (!fits(at, end, 44)) return nullptr;
        SecurePrintParams& secure = value.securePrintSetting;
        secure.secure = static_cast<Boolean>(get(at));
        for (IDCode& code : secure.idCode) code = static_cast<IDCode>(get(at += 4));
        return at + 4;
    }
    case 1035: return getEncoded(at, end, value.folderName, 256);
    case 1036: return getEncoded(at, end, value.folderOwnerName, 256);
    case 1069: {
        const Number count = get(at);
        return count > most ? nullptr : getNumbers(at + 4, end, count, value.jobSourceSeq);
    }
    case 1073: return getEncoded(at, end, value.fileName, 256);
    default: return nullptr;
    }
}

}  // namespace

// ---- The messages ---------------------------------------------------------------------------------------------------

std::size_t encode(const JobAVPSeq& value, unsigned char* buffer, std::size_t available)
{
    return available < 4 ? 0 : lengthOf(buffer, putArray<putAttribute>(buffer, buffer + available, value));
}

std::size_t decode(JobAVPSeq& value, const unsigned char* message, std::size_t length)
{
    value = {0, nullptr};
    return length < 4 ? 0 : lengthOf(message, getArray<getAttribute>(message, message + length, leastAttribute, value));
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

std::size_t encode(const JobAttNotifyParams& value, unsigned char* buffer, std::size_t available)
{
    if (available < 12) return 0;
    const Out at = put(buffer, value.jobId.service, value.jobId.job);
    return lengthOf(buffer, putArray<putAttribute>(at, buffer + available, value.eventData));
}

std::size_t decode(JobAttNotifyParams& value, const unsigned char* message, std::size_t length)
{
    value.eventData = {0, nullptr};
    if (length < 12) return 0;
    value.jobId.service = get(message);
    value.jobId.job = get(message + 4);
    return lengthOf(message, getArray<getAttribute>(message + 8, message + length, leastAttribute, value.eventData));
}

void release(JobAttNotifyParams& value)
{
    release(value.eventData);
}

std::size_t encode(const AttributeSeq& value, unsigned char* buffer, std::size_t available)
{
    return encodeNumbers(value, buffer, available);
}

std::size_t decode(AttributeSeq& value, const unsigned char* message, std::size_t length)
{
    return decodeNumbers(value, message, length);
}

void release(AttributeSeq& value)
{
    delete[] value.elements;
}

}  // namespace quorva::bench::limit
