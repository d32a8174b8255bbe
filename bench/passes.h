// Passes of the codec as a caller runs them: a stream on the stack, one call of the exported routine.
#pragma once

#include <quorvapixdr/primitives.h>

#include <Xdr.h>

#include <cstddef>

namespace quorva::bench {

inline constexpr std::size_t longest = 1024;  // bytes of any measured message

// What a pass attaches to its stream: no trace, or a sink, which is cleared first.
struct NoTrace {
    void operator()(Xdr&) const {}
};
template <class Sink>
auto traced(Sink& sink)
{
    return [&sink](auto& xdrs) {
        sink.clear();
        xdrs.setTrace(&sink);
    };
}

// Returns the number of bytes written to `buffer`, which holds `longest` bytes; 0 after an error.
template <class T, class Attach = NoTrace>
std::size_t encodePass(XdrRoutine routine, T& object, unsigned char* buffer, Attach attach = {})
{
    Xdr xdrs;
    attach(xdrs);
    xdrs.Program(static_cast<Xdr::Request>(Mode::encode), buffer, longest);
    return routine(&xdrs, &object) ? xdrs.codedLength : 0;
}

// Decodes into a zeroed object and releases it. Returns the number of bytes read; 0 after an error.
template <class T, class Attach = NoTrace>
std::size_t decodePass(XdrRoutine routine, unsigned char* message, std::size_t length, Attach attach = {})
{
    T value = {};
    Xdr xdrs;
    attach(xdrs);
    xdrs.Program(static_cast<Xdr::Request>(Mode::decode), message, static_cast<unsigned short>(length));
    const std::size_t consumed = routine(&xdrs, &value) ? xdrs.codedLength : 0;
    Xdr releasing;
    releasing.Program(static_cast<Xdr::Request>(Mode::release), nullptr, 0);
    routine(&releasing, &value);
    return consumed;
}

}  // namespace quorva::bench
