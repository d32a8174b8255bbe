// The functions for C: the C++ layer without exceptions and classes.

#include <quorvapixdr/c_codec.h>
#include <quorvapixdr/codec.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <span>
#include <string_view>

using quorva::Failure;
using quorva::Mode;

namespace {

template <quorva::Traceable Stream>
quorva::Pass runTracing(Mode mode, XdrRoutine routine, void* object, std::span<unsigned char> buffer, char** trace)
{
    typename Stream::Trace collected;
    const quorva::Pass pass =
        quorva::runPass(mode, routine, object, buffer, [&](Stream& xdrs) { xdrs.setTrace(&collected); });
    const std::string_view text = collected.text();
    *trace = static_cast<char*>(std::malloc(text.size() + 1));
    if (*trace) *std::copy(text.begin(), text.end(), *trace) = '\0';
    return pass;
}

template <class Stream>
quorva::Pass runTracing(Mode mode, XdrRoutine routine, void* object, std::span<unsigned char> buffer, char**)
{
    return quorva::runPass(mode, routine, object, buffer);
}

int run(Mode mode, XdrRoutine routine, void* object, std::span<unsigned char> buffer, std::size_t* length, char** trace)
{
    if (length) *length = 0;
    if (trace) *trace = nullptr;
    if (mode == Mode::decode && buffer.size() > quorva::longestMessage) return 0;
    try {
        const quorva::Pass pass = trace ? runTracing<Xdr>(mode, routine, object, buffer, trace)
                                        : quorva::runPass(mode, routine, object, buffer);
        if (length) *length = pass.length;
        return pass.succeeded ? 1 : 0;
    } catch (...) {
        return 0;  // a stream class whose constructor throws
    }
}

template <std::size_t size>
void copyInto(char (&to)[size], std::string_view text)
{
    constexpr std::string_view cut = "...";
    if (text.size() < size) {
        *std::copy(text.begin(), text.end(), to) = '\0';
    } else {
        *std::copy(cut.begin(), cut.end(), std::copy_n(text.begin(), size - 1 - cut.size(), to)) = '\0';
    }
}

template <class Explain>
int explained(Explain explain, QuorvaFailure* failure)
{
    std::optional<Failure> found;
    try {
        found = explain();
    } catch (...) {
        if (failure) *failure = {0, "", "unknown: memory is short"};
        return 1;
    }
    if (!found) return 0;
    if (failure) {
        failure->offset = found->offset;
        copyInto(failure->path, found->path);
        copyInto(failure->reason, found->reason);
    }
    return 1;
}

const quorva::Type& described(const QuorvaType* type)
{
    return *reinterpret_cast<const quorva::Type*>(type);
}

}  // namespace

int quorvaEncode(XdrRoutine routine, const void* object, unsigned char* buffer, std::size_t size, std::size_t* length,
                 char** trace)
{
    // The routine has one interface for all modes.
    return run(Mode::encode, routine, const_cast<void*>(object), {buffer, size}, length, trace);
}

int quorvaDecode(XdrRoutine routine, void* object, const unsigned char* message, std::size_t size, std::size_t* length,
                 char** trace)
{
    return run(Mode::decode, routine, object, {const_cast<unsigned char*>(message), size}, length, trace);
}

int quorvaExplainEncode(const QuorvaType* type, const void* object, std::size_t size, QuorvaFailure* failure)
{
    return explained([&] { return quorva::explain(described(type), object, std::min(size, quorva::longestMessage)); },
                     failure);
}

int quorvaExplainDecode(const QuorvaType* type, const unsigned char* message, std::size_t size, QuorvaFailure* failure)
{
    const auto explain = [&]() -> std::optional<Failure> {
        if (size > quorva::longestMessage)
            return Failure{"", quorva::longestMessage, "a message has at most 65535 bytes"};
        return quorva::explain(described(type), std::span(message, size));
    };
    return explained(explain, failure);
}
