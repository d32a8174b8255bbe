// Hand-written traces of the library's messages.

#include "../limit.h"
#include "../limit_text.h"

namespace quorva::bench::limit {

namespace {

constexpr Enumerator encodings[] = {{"SEAscii", 0},   {"SEZccs", 1},    {"SEUTF8", 2},
                                    {"SEUTF16LE", 3}, {"SEUTF16BE", 4}, {"SEUTF32", 5}};
constexpr Enumerator sources[] = {{"JSUnknown", 0},     {"JSFileCabinet", 1}, {"JSPrint", 2},
                                  {"JSReceiveIFax", 3}, {"JSReceiveSFax", 4}, {"JSReceiveEFax", 5}};
constexpr Enumerator heldReasons[] = {{"JHRsecurePrinting", 0},
                                      {"JHRjobHoldSet", 1},
                                      {"JHRdeferredPrinting", 2},
                                      {"JHRrequiredResourcesNotAvailable", 3},
                                      {"JHRproofAndHold", 4},
                                      {"JHRintrusiveDiagnostics", 5},
                                      {"JHRnoSpaceOnFileServer", 6},
                                      {"JHRpaperSourceSMH", 7},
                                      {"JHRsystemIdle", 8},
                                      {"JHREPSVHeld", 9},
                                      {"JHRESSwasDisturbed", 10},
                                      {"JHRESSOffline", 11},
                                      {"JHRmarkResourceRequired", 12},
                                      {"JHRForForeignInterface", 13},
                                      {"JHRsoftwareUpgrade", 14},
                                      {"JHRforCreditRequired", 15},
                                      {"JHRholdAllJobs", 16},
                                      {"JHRmarkResourceRequiredPrintOnAlternativeAvailable", 17}};

// ---- One attribute --------------------------------------------------------------------------------------------------
// `depth` is that of the attribute; in a decode pass each element of an array is on its own line.

template <Constant number, Constant tag, std::size_t depth>
Out openValue(Out at)
{
    return add<joined(Constant("</id>\n<value>\n  <attribute>"), number,
                      Constant("</attribute>\n  <JobUnionUnion>\n    <"), tag, Constant(">")),
               depth>(at);
}

template <Constant tag, std::size_t depth>
Out closeValue(Out at)
{
    return add<joined(Constant("</"), tag, Constant(">\n  </JobUnionUnion>\n</value>")), depth>(at);
}

template <Constant number, Constant tag, std::size_t depth>
Out addPlain(Out at, std::uint32_t value)
{
    return closeValue<tag, depth>(addNumber(openValue<number, tag, depth>(at), value));
}

template <Constant number, Constant tag, Constant firstTag, Constant secondTag, std::size_t depth>
Out addPair(Out at, std::uint32_t first, std::uint32_t second)
{
    at = add<joined(Constant("\n      <"), firstTag, Constant(">")), depth>(openValue<number, tag, depth>(at));
    at = add<joined(Constant("</"), firstTag, Constant(">\n      <"), secondTag, Constant(">")), depth>(
        addNumber(at, first));
    at = add<joined(Constant("</"), secondTag, Constant(">\n    ")), depth>(addNumber(at, second));
    return closeValue<tag, depth>(at);
}

template <Constant number, Constant tag, std::size_t depth, class Encoded>
Out addEncoded(Out at, Out end, const Encoded& text)
{
    const std::size_t count = text.bytes.count;
    if (static_cast<std::size_t>(end - at) < anyTags + hexLinesSize(count, depth + 3)) return nullptr;
    at = add<"\n      <encoding>", depth>(openValue<number, tag, depth>(at));
    if (!(at = addEnumerator(at, encodings, text.encoding))) return nullptr;
    at = addHexLines<depth + 3>(add<"</encoding>\n      <bytes>", depth>(at), text.bytes.elements, count);
    return closeValue<tag, depth>(add<"</bytes>\n    ", depth>(at));
}

template <bool decoding, std::size_t depth>
Out addAttribute(Out at, Out end, const JobAVP& attribute)
{
    if (static_cast<std::size_t>(end - at) < anyTags) return nullptr;
    at = addNumber(add<"<id>">(at), attribute.id);
    const JobUnion& value = attribute.value;
    switch (value.attribute) {
    case 8: return addPair<"8", "jobId", "service", "job", depth>(at, value.jobId.service, value.jobId.job);
    case 13: {
        if (value.jobState.dpaJobState != DPAJobState::JSheld) return nullptr;
        at = openValue<"13", "jobState", depth>(at);
        at = add<
            "\n      <dpaJobState><JSheld>12</JSheld></dpaJobState>\n      <JobStateUnion>\n        <jobHeldReason>",
            depth>(at);
        const auto& reasons = value.jobState.jobHeldReason;
        at = addElements<decoding, depth + 4>(
            at, end, reasons.elements, reasons.count,
            [](Out out, JobHeldReason reason, std::size_t) { return addEnumerator(out, heldReasons, reason); });
        if (!at) return nullptr;
        return closeValue<"jobState", depth>(add<"</jobHeldReason>\n      </JobStateUnion>\n    ", depth>(at));
    }
    case 15: return addEncoded<"15", "jobOwner", depth>(at, end, value.jobOwner);
    case 50: return addPlain<"50", "quantity", depth>(at, value.quantity);
    case 59:
        at = openValue<"59", "jobHold", depth>(at);
        return closeValue<"jobHold", depth>(value.jobHold ? add<"true">(at) : add<"false">(at));
    case 70: {
        const std::size_t length = std::strlen(value.pinNumber);
        if (static_cast<std::size_t>(end - at) < anyTags + 5 * length) return nullptr;
        at = addEscaped(openValue<"70", "pinNumber", depth>(at), value.pinNumber, length);
        return at ? closeValue<"pinNumber", depth>(at) : nullptr;
    }
    case 77: return addEncoded<"77", "jobName", depth>(at, end, value.jobName);
    case 100: return addPlain<"100", "jobPriority", depth>(at, value.jobPriority);
    case 104: return addPlain<"104", "jobSubmissionTime", depth>(at, value.jobSubmissionTime);
    case 106: return addPlain<"106", "numberOfOriginalImages", depth>(at, value.numberOfOriginalImages);
    case 192:
        return addPair<"192", "setscompleted", "setsCompleted", "setsRequested", depth>(
            at, value.setscompleted.setsCompleted, value.setscompleted.setsRequested);
    case 244: return addEncoded<"244", "jobMessageToOperator", depth>(at, end, value.jobMessageToOperator);
    case 246: {
        const SecurePrintParams& secure = value.securePrintSetting;
        at = add<"\n      <secure>", depth>(openValue<"246", "securePrintSetting", depth>(at));
        at = add<"</secure>\n      <idCode>", depth>(secure.secure ? add<"true">(at) : add<"false">(at));
        at = addElements<decoding, depth + 3>(at, end, secure.idCode, 10, [](Out out, IDCode code, std::size_t i) {
            if (!decoding && i > 0) *out++ = ' ';
            return addNumber(out, LongNatural{static_cast<std::uint8_t>(code)});
        });
        return at ? closeValue<"securePrintSetting", depth>(add<"</idCode>\n    ", depth>(at)) : nullptr;
    }
    case 1035: return addEncoded<"1035", "folderName", depth>(at, end, value.folderName);
    case 1036: return addEncoded<"1036", "folderOwnerName", depth>(at, end, value.folderOwnerName);
    case 1069:
        at = openValue<"1069", "jobSourceSeq", depth>(at);
        at = addElements<decoding, depth + 2>(
            at, end, value.jobSourceSeq.elements, value.jobSourceSeq.count,
            [](Out out, JobSource source, std::size_t) { return addEnumerator(out, sources, source); });
        return at ? closeValue<"jobSourceSeq", depth>(at) : nullptr;
    case 1073: return addEncoded<"1073", "fileName", depth>(at, end, value.fileName);
    default: return nullptr;
    }
}

}  // namespace

std::size_t trace(const JobAttNotifyParams& value, bool, char* text, std::size_t available)
{
    if (available < anyTags || value.eventData.count != 0) return 0;
    Out at = addNumber(add<"<jobId>\n  <service>">(text), value.jobId.service);
    at = addNumber(add<"</service>\n  <job>">(at), value.jobId.job);
    return lengthOf(text, add<"</job>\n</jobId>\n<eventData></eventData>">(at));
}

std::size_t trace(const JobAVPSeq& value, bool decoding, char* text, std::size_t available)
{
    return decoding ? traceStructs<true, addAttribute<true, 1>>(value, text, available)
                    : traceStructs<false, addAttribute<false, 0>>(value, text, available);
}

std::size_t trace(const AttributeSeq& value, bool decoding, char* text, std::size_t available)
{
    return decoding ? traceNumbers<true>(value, text, available) : traceNumbers<false>(value, text, available);
}

}  // namespace quorva::bench::limit
