// The C++ layer: encode a value, decode bytes, with automatic release and errors that say where.
//
//     quorva::Bytes message = quorva::encode(request);               // JobSOAParameters request
//     auto reply = quorva::decode<JobSOAParameters>(message);        // released when `reply` goes
//     reply->jobId.job
//
// A type is found by its C++ type. Where several interface types share one (aliases, bounded strings, bare scalars),
// name the one that is meant: quorva::encode(number, quorva::coder::AttributeId).
//
// Needs exceptions and the standard library; callers without them use <quorvapixdr/drivers.h>.
#pragma once

#include <quorvapixdr/primitives.h>

#include <Xdr.h>

#include <concepts>
#include <cstddef>
#include <cstring>
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

// The buffer length of the drivers, and what `encode` allows unless told otherwise.
inline constexpr std::size_t driverMessage = 1024;

// A pass that failed: over which type, in which element, after how many bytes of the message.
class CodingError : public std::runtime_error {
public:
    CodingError(const std::string& what, std::string type, std::string path, std::size_t offset)
        : std::runtime_error(what), typeName(std::move(type)), elementPath(std::move(path)), byteOffset(offset)
    {
    }

    const std::string& type() const { return typeName; }
    // The open elements from the outermost in: "value[2]/value/JobUnionUnion/jobName". Empty where the platform's
    // stream collects no trace.
    const std::string& path() const { return elementPath; }
    std::size_t offset() const { return byteOffset; }

private:
    std::string typeName;
    std::string elementPath;
    std::size_t byteOffset;
};

// How one pass went, without the exceptions: the layer below `encode` and `decode`, for code that holds a routine and
// an object whose type it does not know.
struct Pass {
    bool succeeded = false;
    std::size_t length = 0;  // bytes written or read
};

// Runs `routine` over `object` and the `buffer`. `attach` is called with the stream before the pass, to set a trace or
// to wrap the pass in an element. Throws only what `attach` throws.
template <class Attach>
Pass runPass(Mode mode, XdrRoutine routine, void* object, std::span<unsigned char> buffer, Attach attach)
{
    Xdr xdrs;
    const std::size_t length = buffer.size() < longestMessage ? buffer.size() : longestMessage;
    xdrs.Program(static_cast<Xdr::Request>(mode), buffer.data(), static_cast<unsigned short>(length));
    attach(xdrs);
    const bool succeeded = routine(&xdrs, object) != 0;
    return {succeeded, xdrs.codedLength};
}

inline Pass runPass(Mode mode, XdrRoutine routine, void* object, std::span<unsigned char> buffer)
{
    return runPass(mode, routine, object, buffer, [](Xdr&) {});
}

// Releases what a decode allocated inside `object`, which itself stays its owner's.
inline void releaseContents(XdrRoutine routine, void* object)
{
    runPass(Mode::release, routine, object, {});
}

// A class that collects a trace as the bundled one does.
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

// The same with the trace in `trace`, inside an element named after the type: after a success, an XML document.
template <Traceable Stream = Xdr>
Pass runTraced(Mode mode, XdrRoutine routine, const char* name, void* object, std::span<unsigned char> buffer,
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

// Where a pass stopped. `again` runs the failed pass once more with a trace; only failures pay for one.
template <class Stream, class Again>
std::string placeOf([[maybe_unused]] Again again)
{
    if constexpr (Traceable<Stream>) {
        typename Stream::Trace trace;
        again([&](Stream& xdrs) { xdrs.setTrace(&trace); });
        return trace.path();
    } else {
        return {};
    }
}

inline CodingError failure(const char* verb, const char* type, std::string path, std::size_t offset, std::size_t length)
{
    std::string what = std::string("cannot ") + verb + " " + type;
    if (!path.empty()) what += ": stopped at " + path;
    what += ", byte " + std::to_string(offset) + " of " + std::to_string(length);
    return CodingError(what, type, std::move(path), offset);
}

}  // namespace detail

// The wire form of `value`, at most `limit` bytes. Throws CodingError where the value cannot be coded: a text or list
// beyond its maximum, a null text, a union value without an arm, or a message beyond the limit. The value is not const
// because coding stores narrow numbers back, unchanged.
template <class T>
Bytes encode(T& value, Coder<T> coder = coderOf<T>, std::size_t limit = driverMessage)
{
    Bytes message(limit < longestMessage ? limit : longestMessage);
    const Pass pass = runPass(Mode::encode, coder.routine, &value, message);
    if (!pass.succeeded) {
        const std::string path =
            detail::placeOf<Xdr>([&](auto attach) { runPass(Mode::encode, coder.routine, &value, message, attach); });
        throw detail::failure("encode", coder.name, path, pass.length, message.size());
    }
    message.resize(pass.length);
    return message;
}

// A decoded value and what it owns; the release pass runs when it goes.
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

// The value that `message` holds. Throws CodingError where the message is no such value, and where bytes are left over,
// unless the caller asks in `consumed` how many were read.
template <class T>
Owned<T> decode(std::span<const unsigned char> message, Coder<T> coder = coderOf<T>, std::size_t* consumed = nullptr)
{
    if (message.size() > longestMessage)
        throw CodingError("a message has at most 65535 bytes", coder.name, {}, longestMessage);

    // A decode only reads the buffer; the stream's interface serves both directions.
    const std::span<unsigned char> buffer(const_cast<unsigned char*>(message.data()), message.size());
    Owned<T> value(coder);
    const Pass pass = runPass(Mode::decode, coder.routine, &*value, buffer);
    if (!pass.succeeded) {
        const std::string path = detail::placeOf<Xdr>([&](auto attach) {
            Owned<T> again(coder);
            runPass(Mode::decode, coder.routine, &*again, buffer, attach);
        });
        throw detail::failure("decode", coder.name, path, pass.length, message.size());
    }
    if (consumed)
        *consumed = pass.length;
    else if (pass.length != message.size())
        throw CodingError(std::string(coder.name) + " ends at byte " + std::to_string(pass.length) + " of " +
                              std::to_string(message.size()),
                          coder.name, {}, pass.length);
    return value;
}

}  // namespace quorva
