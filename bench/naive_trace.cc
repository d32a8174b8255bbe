// A trace as it is usually written: snprintf for each value, and a string that everything is appended to.

#include "traces.h"

#include <cstdio>

namespace quorva::bench::naive {

namespace {

class Trace {
public:
    Trace(std::string& out, bool inDecode) : text(out), decoding(inDecode) {}

    void open(const char* tag)
    {
        line();
        begin(tag);
        ++depth;
    }
    void close(const char* tag)
    {
        --depth;
        line();
        end(tag);
    }
    void field(const char* tag, std::uint32_t number)
    {
        line();
        begin(tag);
        append("%u", number);
        end(tag);
    }
    void truth(const char* tag, bool value)
    {
        line();
        begin(tag);
        append("%s", value ? "true" : "false");
        end(tag);
    }
    void string(const char* tag, const char* value)
    {
        line();
        begin(tag);
        for (; *value; ++value) {
            switch (*value) {
            case '<': text += "&lt;"; break;
            case '>': text += "&gt;"; break;
            case '&': text += "&amp;"; break;
            case '\\': text += "\\\\"; break;
            default: text += *value;
            }
        }
        end(tag);
    }
    template <class E>
    void enumerator(E value, const char* (*nameOf)(int))
    {
        const int number = static_cast<int>(value);
        begin(nameOf(number));
        append("%d", number);
        end(nameOf(number));
    }
    template <class E>
    void enumeration(const char* tag, E value, const char* (*nameOf)(int))
    {
        line();
        begin(tag);
        enumerator(value, nameOf);
        end(tag);
    }
    template <class Text>
    void encoded(const char* tag, const Text& value)
    {
        open(tag);
        enumeration("encoding", value.encoding, StringEncodingString);
        line();
        begin("bytes");
        const bool lines = value.bytes.count > 16;
        for (int i = 0; i < value.bytes.count; ++i) {
            if (lines && i % 16 == 0) {
                ++depth;
                line();
                --depth;
            } else if (i > 0) {
                text += ' ';
            }
            append("%02x", value.bytes.elements[i]);
        }
        if (lines) line();
        end("bytes");
        close(tag);
    }
    // What the elements of an array stand in; `show` adds one.
    template <class T, class Show>
    void elements(const T* first, std::size_t count, Show show)
    {
        for (std::size_t i = 0; i < count; ++i) {
            if (decoding) {
                line();
                begin("value");
            }
            show(first[i], i);
            if (decoding) end("value");
        }
    }
    template <class T, class Show>
    void array(const char* tag, const T* first, std::size_t count, Show show)
    {
        line();
        begin(tag);
        ++depth;
        elements(first, count, show);
        --depth;
        if (decoding && count > 0) line();
        end(tag);
    }
    void number(std::uint32_t value, std::size_t index)
    {
        if (!decoding && index > 0) text += ' ';
        append("%u", value);
    }
    void attribute(const JobAVP& attribute)
    {
        const JobUnion& value = attribute.value;
        if (decoding) open("value");
        field("id", attribute.id);
        open("value");
        field("attribute", value.attribute);
        open("JobUnionUnion");
        switch (value.attribute) {
        case 8:
            open("jobId");
            field("service", value.jobId.service);
            field("job", value.jobId.job);
            close("jobId");
            break;
        case 13: {
            const auto& reasons = value.jobState.jobHeldReason;
            open("jobState");
            enumeration("dpaJobState", value.jobState.dpaJobState, DPAJobStateString);
            open("JobStateUnion");
            array("jobHeldReason", reasons.elements, reasons.count,
                  [&](JobHeldReason reason, std::size_t) { enumerator(reason, JobHeldReasonString); });
            close("JobStateUnion");
            close("jobState");
            break;
        }
        case 15: encoded("jobOwner", value.jobOwner); break;
        case 50: field("quantity", value.quantity); break;
        case 59: truth("jobHold", value.jobHold); break;
        case 70: string("pinNumber", value.pinNumber); break;
        case 77: encoded("jobName", value.jobName); break;
        case 100: field("jobPriority", value.jobPriority); break;
        case 104: field("jobSubmissionTime", value.jobSubmissionTime); break;
        case 106: field("numberOfOriginalImages", value.numberOfOriginalImages); break;
        case 192:
            open("setscompleted");
            field("setsCompleted", value.setscompleted.setsCompleted);
            field("setsRequested", value.setscompleted.setsRequested);
            close("setscompleted");
            break;
        case 244: encoded("jobMessageToOperator", value.jobMessageToOperator); break;
        case 246:
            open("securePrintSetting");
            truth("secure", value.securePrintSetting.secure);
            array("idCode", value.securePrintSetting.idCode, 10,
                  [&](IDCode code, std::size_t i) { number(static_cast<std::uint8_t>(code), i); });
            close("securePrintSetting");
            break;
        case 1035: encoded("folderName", value.folderName); break;
        case 1036: encoded("folderOwnerName", value.folderOwnerName); break;
        case 1069:
            array("jobSourceSeq", value.jobSourceSeq.elements, value.jobSourceSeq.count,
                  [&](JobSource source, std::size_t) { enumerator(source, JobSourceString); });
            break;
        case 1073: encoded("fileName", value.fileName); break;
        default: break;
        }
        close("JobUnionUnion");
        close("value");
        if (decoding) close("value");
    }

private:
    void line()
    {
        if (!text.empty()) text += '\n';
        for (int i = 0; i < depth; ++i) text += "  ";
    }
    void begin(const char* tag)
    {
        text += '<';
        text += tag;
        text += '>';
    }
    void end(const char* tag)
    {
        text += "</";
        text += tag;
        text += '>';
    }
    template <class T>
    [[gnu::always_inline]] void append(const char* format, T value)
    {
        char formatted[32];
        std::snprintf(formatted, sizeof formatted, format, value);
        text += formatted;
    }

    std::string& text;
    bool decoding;
    int depth = 0;
};

}  // namespace

void trace(const JobAttNotifyParams& value, bool decoding, std::string& text)
{
    Trace trace(text, decoding);
    trace.open("jobId");
    trace.field("service", value.jobId.service);
    trace.field("job", value.jobId.job);
    trace.close("jobId");
    trace.string("eventData", "");  // the list of the measured message is empty
}

void trace(const JobAVPSeq& value, bool decoding, std::string& text)
{
    Trace trace(text, decoding);
    for (std::size_t i = 0; i < value.count; ++i) trace.attribute(value.elements[i]);
}

void trace(const AttributeSeq& value, bool decoding, std::string& text)
{
    Trace trace(text, decoding);
    trace.elements(value.elements, value.count, [&](AttributeId one, std::size_t i) { trace.number(one, i); });
}

}  // namespace quorva::bench::naive
