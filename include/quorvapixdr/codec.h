// The C++ layer: encodes values and decodes messages, with automatic release and errors that say where a pass failed.
//
//     quorva::Bytes message = quorva::encode(request);               // JobSOAParameters request
//     auto reply = quorva::decode<JobSOAParameters>(message);        // releases its contents when it is destroyed
//     reply->jobId.job
//
// The C++ type selects the interface type. Where several interface types share a C++ type (aliases, bounded strings,
// built-in types), name the coder: quorva::encode(number, quorva::coder::AttributeId).
//
// Needs exceptions; callers without them use <quorvapixdr/drivers.h>.
#pragma once

#include <quorvapixdr/explain.h>
#include <quorvapixdr/primitives.h>

#include <Xdr.h>

#include <concepts>
#include <cstddef>
#include <cstring>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quorva {

using Bytes = std::vector<unsigned char>;

// The longest message that a stream can hold: its length has 16 bits.
inline constexpr std::size_t longestMessage = 65535;

// The buffer length of the drivers, and the default limit of `encode`.
inline constexpr std::size_t driverMessage = 1024;

// A failed pass: the type, and where and why the pass stopped. what() says all of it in one sentence:
// "cannot decode JobId at /job, byte 4 of 6: 2 bytes left where a unit of 4 is needed".
class CodingError : public std::runtime_error {
public:
    // `verb` is "encode" or "decode"; `total` is the length of the message, or the limit of an encode, in bytes.
    CodingError(const char* verb, const char* type, Failure found, std::size_t total)
        : std::runtime_error(std::string("cannot ") + verb + ' ' + type + ' ' + explained(found, total)),
          typeName(type),
          failure(std::move(found))
    {
    }

    // The name of the type that was coded.
    const std::string& type() const { return typeName; }
    // The member that failed, as a JSON Pointer: "/aValues/2/value/jobName". Empty for the outermost value.
    const std::string& path() const { return failure.path; }
    // The first byte of what was refused, from the start of the message.
    std::size_t offset() const { return failure.offset; }
    // Why: "count 7 is beyond the maximum 6", "the message is longer than the limit of 1024 bytes".
    const std::string& reason() const { return failure.reason; }

private:
    std::string typeName;
    Failure failure;
};

// The outcome of one pass.
struct Pass {
    bool succeeded = false;
    std::size_t length = 0;  // bytes written or read, also by a failed pass
};

// Runs `routine`, an XdrRoutine or another callable with its arguments and result, over `object` and the first 65535
// bytes of `buffer`: the layer below `encode` and `decode`, for code that knows the routine of an object but not its
// type. Calls `attach` with the stream before the pass, to set a trace or to open an element around it. Throws only
// what `attach` or a constructor of the stream class throws.
template <class Routine, class Attach>
Pass runPass(Mode mode, Routine routine, void* object, std::span<unsigned char> buffer, Attach attach)
{
    Xdr xdrs;
    const std::size_t length = buffer.size() < longestMessage ? buffer.size() : longestMessage;
    xdrs.Program(static_cast<Xdr::Request>(mode), buffer.data(), static_cast<unsigned short>(length));
    attach(xdrs);
    const bool succeeded = routine(&xdrs, object) != 0;
    return {succeeded, xdrs.codedLength};
}

template <class Routine>
Pass runPass(Mode mode, Routine routine, void* object, std::span<unsigned char> buffer)
{
    return runPass(mode, routine, object, buffer, [](Xdr&) {});
}

// Releases what a decode allocated inside `object`, but not the object itself. Needs no memory.
inline void releaseContents(XdrRoutine routine, void* object)
{
    runPass(Mode::release, routine, object, {});
}

// A stream class that collects a trace as the bundled one does.
template <class Stream>
concept Traceable = requires(Stream& xdrs, typename Stream::Trace& trace)
{
    xdrs.setTrace(&trace);
    {
        trace.path()
        } -> std::convertible_to<std::string>;
    {
        trace.text()
        } -> std::convertible_to<std::string_view>;
};

// The same, and adds the trace to `trace`, inside an element called `name`: after a success, an XML document.
template <Traceable Stream = Xdr, class Routine>
Pass runTraced(Mode mode, Routine routine, const char* name, void* object, std::span<unsigned char> buffer,
               typename Stream::Trace& trace)
{
    const Pass pass = runPass(mode, routine, object, buffer, [&](Stream& xdrs) {
        xdrs.setTrace(&trace);
        xdrs.addOpenTag(name);
    });
    if (pass.succeeded) trace.close(name);
    return pass;
}

namespace detail {

// The failure of a pass that coded `length` bytes. `found` is the explanation. If it does not fit the pass, only what
// the codec knows is said: memory may have been short, or the stream class may have refused.
inline Failure failureOf(std::size_t length, std::optional<Failure> found)
{
    if (found && found->coded == length) return *std::move(found);
    return {"", length, found ? "the codec refuses it" : "the codec refuses it, perhaps because memory is short",
            length};
}

// The explanations, and none for a coder without a description.
template <class T>
std::optional<Failure> explainDecode(Coder<T> coder, std::span<const unsigned char> message)
{
    return coder.description ? quorva::explain(coder.description(), message) : std::nullopt;
}
template <class T>
std::optional<Failure> explainEncode(Coder<T> coder, const void* object, std::size_t limit)
{
    return coder.description ? quorva::explain(coder.description(), object, limit) : std::nullopt;
}

}  // namespace detail

struct EncodeOptions {
    std::size_t limit = driverMessage;  // of the message, in bytes; more than `longestMessage` is taken as that
};

// Encodes `value`. Throws CodingError for a value that cannot be encoded: a string or array beyond its maximum, a null
// string, a union without an arm for its discriminant, or a message longer than the limit. An encode only reads the
// value, which may be in read-only memory, provided that the stream class leaves the bytes unchanged that it encodes.
template <class T>
Bytes encode(const T& value, Coder<T> coder = coderOf<T>, EncodeOptions options = {})
{
    // The routine has one interface for all modes.
    void* const object = const_cast<void*>(static_cast<const void*>(&value));
    Bytes message(options.limit < longestMessage ? options.limit : longestMessage);
    const Pass pass = runPass(Mode::encode, coder.routine, object, message);
    if (!pass.succeeded)
        throw CodingError("encode", coder.name,
                          detail::failureOf(pass.length, detail::explainEncode(coder, object, message.size())),
                          message.size());
    message.resize(pass.length);
    return message;
}

// The same for a type that has a coder of its own: encode(request, {.limit = 4096}).
template <class T>
Bytes encode(const T& value, EncodeOptions options)
{
    return encode(value, coderOf<T>, options);
}

// A decoded value. It owns what the decode allocated, and releases it when it is destroyed.
template <class T>
class Owned {
public:
    explicit Owned(Coder<T> coderOfValue) : coder(coderOfValue) { clear(); }
    ~Owned() { releaseContents(coder.routine, &held); }

    Owned(Owned&& other) noexcept : coder(other.coder)
    {
        std::memcpy(&held, &other.held, sizeof held);
        other.clear();
    }
    Owned& operator=(Owned&& other) noexcept
    {
        if (this != &other) {
            releaseContents(coder.routine, &held);
            coder = other.coder;
            std::memcpy(&held, &other.held, sizeof held);
            other.clear();
        }
        return *this;
    }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;

    T& operator*() { return held; }
    const T& operator*() const { return held; }
    T* operator->() { return &held; }
    const T* operator->() const { return &held; }

private:
    void clear() { std::memset(static_cast<void*>(&held), 0, sizeof held); }

    Coder<T> coder;
    T held;
};

// Decodes `message`, at most 65535 bytes. Throws CodingError when the bytes are not such a value, and when bytes are
// left over; with `consumed`, which receives the number of bytes read, left-over bytes are not an error.
template <class T>
Owned<T> decode(std::span<const unsigned char> message, Coder<T> coder = coderOf<T>, std::size_t* consumed = nullptr)
{
    const auto refused = [&](Failure found) {
        return CodingError("decode", coder.name, std::move(found), message.size());
    };
    if (message.size() > longestMessage) throw refused({"", longestMessage, "a message has at most 65535 bytes"});

    // A decode only reads the buffer; the stream class has one interface for all modes.
    const std::span<unsigned char> buffer(const_cast<unsigned char*>(message.data()), message.size());
    Owned<T> value(coder);
    const Pass pass = runPass(Mode::decode, coder.routine, &*value, buffer);
    if (!pass.succeeded) throw refused(detail::failureOf(pass.length, detail::explainDecode(coder, message)));
    if (consumed) {
        *consumed = pass.length;
    } else if (const std::size_t rest = message.size() - pass.length) {
        const std::string count = rest == 1 ? "1 byte is" : std::to_string(rest) + " bytes are";
        throw refused({"", pass.length, count + " left over"});
    }
    return value;
}

// Why a decode of `message` as a `T` fails, without exceptions and without an object; nullopt if it succeeds. See
// <quorvapixdr/explain.h>.
template <class T>
std::optional<Failure> explain(std::span<const unsigned char> message, Coder<T> coder = coderOf<T>)
{
    return detail::explainDecode(coder, message);
}

}  // namespace quorva
