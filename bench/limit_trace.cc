// The fastest trace that we know how to write by hand: the text of a message is a few constants around its values.

#include "traces.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

namespace quorva::bench::limit {

namespace {

// ---- Constants of known length --------------------------------------------------------------------------------------

template <std::size_t N>
struct Constant {
    char chars[N + 1] = {};
    consteval Constant() = default;
    consteval Constant(const char (&text)[N + 1]) { std::copy_n(text, N + 1, chars); }
    static constexpr std::size_t size = N;
};
template <std::size_t N>
Constant(const char (&)[N]) -> Constant<N - 1>;

template <std::size_t... sizes>
consteval auto joined(const Constant<sizes>&... parts)
{
    Constant<(sizes + ...)> whole;
    char* at = whole.chars;
    ((at = std::copy_n(parts.chars, sizes, at)), ...);
    return whole;
}

// The text with `depth` more levels of two blanks behind each line break.
template <Constant text, std::size_t depth>
consteval auto indented()
{
    constexpr auto breaks = static_cast<std::size_t>(std::count(text.chars, text.chars + text.size, '\n'));
    Constant<text.size + breaks * 2 * depth> result;
    char* at = result.chars;
    for (std::size_t i = 0; i < text.size; ++i) {
        *at++ = text.chars[i];
        if (text.chars[i] == '\n') at = std::fill_n(at, 2 * depth, ' ');
    }
    return result;
}

// ---- Values ---------------------------------------------------------------------------------------------------------

using Out = char*;  // where the next character goes; null: refused

constexpr std::size_t anyTags = 512;     // more than the constants around one attribute
constexpr std::size_t anyElement = 160;  // more than an enumerator or number with its markers, and a copy of fixed size

template <Constant text, std::size_t depth = 0>
Out add(Out at)
{
    constexpr auto whole = indented<text, depth>();
    std::memcpy(at, whole.chars, whole.size);
    return at + whole.size;
}

constexpr auto twoDigits = [] {
    std::array<char, 200> table = {};
    for (std::size_t i = 0; i < 100; ++i) {
        table[2 * i] = static_cast<char>('0' + i / 10);
        table[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return table;
}();

Out addNumber(Out at, std::uint32_t number)
{
    if (number < 10) {
        *at = static_cast<char>('0' + number);
        return at + 1;
    }
    if (number < 100) {
        std::memcpy(at, &twoDigits[2 * number], 2);
        return at + 2;
    }
    return std::to_chars(at, at + 10, number).ptr;
}

constexpr auto hexTriples = [] {
    std::array<std::array<char, 4>, 256> table = {};
    for (std::size_t i = 0; i < 256; ++i) table[i] = {"0123456789abcdef"[i / 16], "0123456789abcdef"[i % 16], ' ', ' '};
    return table;
}();

// Hexadecimal bytes with a blank behind each but the last.
Out addHex(Out at, const unsigned char* bytes, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i, at += 3) std::memcpy(at, hexTriples[bytes[i]].data(), 4);
    return count == 0 ? at : at - 1;
}

// A whole element of an enumerator. The copy is of fixed size, whatever its length.
struct Enumerator {
    std::size_t size = 0;
    char chars[120] = {};

    constexpr Enumerator(const char* name, unsigned number)
    {
        const auto put = [&](char c) { chars[size++] = c; };
        const auto tag = [&] {
            for (const char* c = name; *c; ++c) put(*c);
            put('>');
        };
        put('<');
        tag();
        if (number >= 10) put(static_cast<char>('0' + number / 10));
        put(static_cast<char>('0' + number % 10));
        put('<');
        put('/');
        tag();
    }
};

template <std::size_t N, class E>
Out addEnumerator(Out at, const Enumerator (&table)[N], E value)
{
    const auto number = static_cast<std::uint32_t>(value);
    if (number >= N) return nullptr;
    const Enumerator& found = table[number];
    std::memcpy(at, found.chars, 48);
    if (found.size > 48) [[unlikely]]
        std::memcpy(at + 48, found.chars + 48, sizeof found.chars - 48);
    return at + found.size;
}

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
// `depth` is that of the attribute; a decode pass shows each element of an array on lines of its own.

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

template <Constant number, Constant tag, std::size_t depth, class Text>
Out addText(Out at, Out end, const Text& text)
{
    const std::size_t count = text.bytes.count;
    if (static_cast<std::size_t>(end - at) < anyTags + 3 * count + (count / 16 + 2) * (9 + 2 * depth)) return nullptr;
    at = add<"\n      <encoding>", depth>(openValue<number, tag, depth>(at));
    if (!(at = addEnumerator(at, encodings, text.encoding))) return nullptr;
    at = add<"</encoding>\n      <bytes>", depth>(at);
    const unsigned char* bytes = text.bytes.elements;
    if (count <= 16) {
        at = addHex(at, bytes, count);
    } else {
        for (std::size_t rest = count; rest > 0;) {
            const std::size_t now = std::min<std::size_t>(rest, 16);
            at = addHex(add<"\n        ", depth>(at), bytes, now);
            bytes += now;
            rest -= now;
        }
        at = add<"\n      ", depth>(at);
    }
    return closeValue<tag, depth>(add<"</bytes>\n    ", depth>(at));
}

// The elements of an array of enumerators or numbers that stands `level` levels within the attribute.
template <bool decoding, std::size_t depth, class T, class Add>
Out addElements(Out at, Out end, const T* elements, std::size_t count, Add addOne)
{
    if (static_cast<std::size_t>(end - at) < anyTags + count * (anyElement + 2 * depth)) return nullptr;
    for (std::size_t i = 0; i < count; ++i) {
        if constexpr (decoding) at = add<"\n  <value>", depth>(at);
        if (!(at = addOne(at, elements[i], i))) return nullptr;
        if constexpr (decoding) at = add<"</value>">(at);
    }
    if constexpr (decoding)
        if (count > 0) at = add<"\n", depth>(at);
    return at;
}

// A text as it is shown: markup and the backslash escaped. Nothing beyond ASCII is in a measured text of this kind.
Out addEscaped(Out at, const char* text, std::size_t length)
{
    for (std::size_t i = 0; i < length; ++i) {
        const char c = text[i];
        switch (c) {
        case '<': at = add<"&lt;">(at); break;
        case '>': at = add<"&gt;">(at); break;
        case '&': at = add<"&amp;">(at); break;
        case '\\': at = add<"\\\\">(at); break;
        default:
            if (c < ' ' || c > '~') return nullptr;
            *at++ = c;
        }
    }
    return at;
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
    case 15: return addText<"15", "jobOwner", depth>(at, end, value.jobOwner);
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
    case 77: return addText<"77", "jobName", depth>(at, end, value.jobName);
    case 100: return addPlain<"100", "jobPriority", depth>(at, value.jobPriority);
    case 104: return addPlain<"104", "jobSubmissionTime", depth>(at, value.jobSubmissionTime);
    case 106: return addPlain<"106", "numberOfOriginalImages", depth>(at, value.numberOfOriginalImages);
    case 192:
        return addPair<"192", "setscompleted", "setsCompleted", "setsRequested", depth>(
            at, value.setscompleted.setsCompleted, value.setscompleted.setsRequested);
    case 244: return addText<"244", "jobMessageToOperator", depth>(at, end, value.jobMessageToOperator);
    case 246: {
        const SecurePrintParams& secure = value.securePrintSetting;
        at = add<"\n      <secure>", depth>(openValue<"246", "securePrintSetting", depth>(at));
        at = add<"</secure>\n      <idCode>", depth>(secure.secure ? add<"true">(at) : add<"false">(at));
        at = addElements<decoding, depth + 3>(at, end, secure.idCode, 10, [](Out out, IDCode code, std::size_t i) {
            if (!decoding && i > 0) *out++ = ' ';
            return addNumber(out, static_cast<std::uint8_t>(code));
        });
        return at ? closeValue<"securePrintSetting", depth>(add<"</idCode>\n    ", depth>(at)) : nullptr;
    }
    case 1035: return addText<"1035", "folderName", depth>(at, end, value.folderName);
    case 1036: return addText<"1036", "folderOwnerName", depth>(at, end, value.folderOwnerName);
    case 1069:
        at = openValue<"1069", "jobSourceSeq", depth>(at);
        at = addElements<decoding, depth + 2>(
            at, end, value.jobSourceSeq.elements, value.jobSourceSeq.count,
            [](Out out, JobSource source, std::size_t) { return addEnumerator(out, sources, source); });
        return at ? closeValue<"jobSourceSeq", depth>(at) : nullptr;
    case 1073: return addText<"1073", "fileName", depth>(at, end, value.fileName);
    default: return nullptr;
    }
}

template <bool decoding>
Out addAttributes(Out at, Out end, const JobAVPSeq& attributes)
{
    for (std::size_t i = 0; i < attributes.count; ++i) {
        if (static_cast<std::size_t>(end - at) < anyElement) return nullptr;
        if (i > 0) *at++ = '\n';
        if constexpr (decoding) at = add<"<value>\n  ">(at);
        if (!(at = addAttribute<decoding, decoding>(at, end, attributes.elements[i]))) return nullptr;
        if (static_cast<std::size_t>(end - at) < anyElement) return nullptr;
        if constexpr (decoding) at = add<"\n</value>">(at);
    }
    return at;
}

template <bool decoding>
Out addNumbers(Out at, Out end, const AttributeSeq& numbers)
{
    if (static_cast<std::size_t>(end - at) < 32 * std::size_t{numbers.count}) return nullptr;
    for (std::size_t i = 0; i < numbers.count; ++i) {
        if (i > 0) *at++ = decoding ? '\n' : ' ';
        if constexpr (decoding) at = add<"<value>">(at);
        at = addNumber(at, numbers.elements[i]);
        if constexpr (decoding) at = add<"</value>">(at);
    }
    return at;
}

std::size_t lengthOf(const char* text, Out end)
{
    return end ? static_cast<std::size_t>(end - text) : 0;
}

}  // namespace

std::size_t trace(const JobAttNotifyParams& value, bool, char* text, std::size_t room)
{
    if (room < anyTags || value.eventData.count != 0) return 0;
    Out at = addNumber(add<"<jobId>\n  <service>">(text), value.jobId.service);
    at = addNumber(add<"</service>\n  <job>">(at), value.jobId.job);
    return lengthOf(text, add<"</job>\n</jobId>\n<eventData></eventData>">(at));
}

std::size_t trace(const JobAVPSeq& value, bool decoding, char* text, std::size_t room)
{
    return lengthOf(text, decoding ? addAttributes<true>(text, text + room, value)
                                   : addAttributes<false>(text, text + room, value));
}

std::size_t trace(const AttributeSeq& value, bool decoding, char* text, std::size_t room)
{
    return lengthOf(
        text, decoding ? addNumbers<true>(text, text + room, value) : addNumbers<false>(text, text + room, value));
}

}  // namespace quorva::bench::limit
