// The naive traces of the library's messages.

#include "../limit.h"
#include "../naive_text.h"

namespace quorva::bench::naive {

namespace {

template <class Encoded>
void addEncoded(Trace& trace, const char* tag, const Encoded& value)
{
    trace.open(tag);
    trace.enumeration("encoding", value.encoding, StringEncodingString);
    trace.dump("bytes", value.bytes.elements, value.bytes.count);
    trace.close(tag);
}

void add(Trace& trace, const JobAVP& attribute)
{
    const JobUnion& value = attribute.value;
    if (trace.decoding) trace.open("value");
    trace.field("id", attribute.id);
    trace.open("value");
    trace.field("attribute", value.attribute);
    trace.open("JobUnionUnion");
    switch (value.attribute) {
    case 8:
        trace.open("jobId");
        trace.field("service", value.jobId.service);
        trace.field("job", value.jobId.job);
        trace.close("jobId");
        break;
    case 13: {
        const auto& reasons = value.jobState.jobHeldReason;
        trace.open("jobState");
        trace.enumeration("dpaJobState", value.jobState.dpaJobState, DPAJobStateString);
        trace.open("JobStateUnion");
        trace.array("jobHeldReason", reasons.elements, reasons.count,
                    [&](JobHeldReason reason, std::size_t) { trace.enumerator(reason, JobHeldReasonString); });
        trace.close("JobStateUnion");
        trace.close("jobState");
        break;
    }
    case 15: addEncoded(trace, "jobOwner", value.jobOwner); break;
    case 50: trace.field("quantity", value.quantity); break;
    case 59: trace.truth("jobHold", value.jobHold); break;
    case 70: trace.string("pinNumber", value.pinNumber); break;
    case 77: addEncoded(trace, "jobName", value.jobName); break;
    case 100: trace.field("jobPriority", value.jobPriority); break;
    case 104: trace.field("jobSubmissionTime", value.jobSubmissionTime); break;
    case 106: trace.field("numberOfOriginalImages", value.numberOfOriginalImages); break;
    case 192:
        trace.open("setscompleted");
        trace.field("setsCompleted", value.setscompleted.setsCompleted);
        trace.field("setsRequested", value.setscompleted.setsRequested);
        trace.close("setscompleted");
        break;
    case 244: addEncoded(trace, "jobMessageToOperator", value.jobMessageToOperator); break;
    case 246:
        trace.open("securePrintSetting");
        trace.truth("secure", value.securePrintSetting.secure);
        trace.array("idCode", value.securePrintSetting.idCode, 10,
                    [&](IDCode code, std::size_t i) { trace.number(static_cast<std::uint8_t>(code), i); });
        trace.close("securePrintSetting");
        break;
    case 1035: addEncoded(trace, "folderName", value.folderName); break;
    case 1036: addEncoded(trace, "folderOwnerName", value.folderOwnerName); break;
    case 1069:
        trace.array("jobSourceSeq", value.jobSourceSeq.elements, value.jobSourceSeq.count,
                    [&](JobSource source, std::size_t) { trace.enumerator(source, JobSourceString); });
        break;
    case 1073: addEncoded(trace, "fileName", value.fileName); break;
    default: break;
    }
    trace.close("JobUnionUnion");
    trace.close("value");
    if (trace.decoding) trace.close("value");
}

}  // namespace

void trace(const JobAttNotifyParams& value, bool decoding, std::string& text)
{
    Trace trace(text, decoding);
    trace.open("jobId");
    trace.field("service", value.jobId.service);
    trace.field("job", value.jobId.job);
    trace.close("jobId");
    trace.string("eventData", "");  // the array of the measured message is empty
}

void trace(const JobAVPSeq& value, bool decoding, std::string& text)
{
    Trace trace(text, decoding);
    for (std::size_t i = 0; i < value.count; ++i) add(trace, value.elements[i]);
}

void trace(const AttributeSeq& value, bool decoding, std::string& text)
{
    Trace trace(text, decoding);
    trace.elements(value.elements, value.count, [&](AttributeId one, std::size_t i) { trace.number(one, i); });
}

}  // namespace quorva::bench::naive
