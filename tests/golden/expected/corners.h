// corners.h: made from corners.x by quorvaxdrc. Change the interface file, not this one.
//
// Corners of the generated form: bodies in place, numbers as they are written, names that mean something elsewhere.
#pragma once

#include <quorvapixdr/colours.h>
#include <quorvapixdr/far_off/corner_9.h>
#include <quorvapixdr/primitives.h>

#include <cstdint>

inline constexpr std::int32_t coder = 0x28;  // named like a scope of the generated code

// Where a door stands. Always as long on the wire.
struct Place {
    Natural row;
    Natural column;
    LampColour lamps[2];
    unsigned char mark[8];
};

// Two of them are as long as ever. A sign of several bytes fills one column: äöüäöüäöüäöüäöüäöüäöü; so this line ends.
struct Span {
    Place from;
    Place to;
};

// Numbers are told as they count, constants by name.
struct Numbers {
    char* hexadecimal;                        // at most 16 characters
    char* octal;                              // at most 8 characters
    quorva::Counted<unsigned char> constant;  // at most coder bytes
    quorva::Counted<Natural> list;            // at most coder elements
    quorva::Counted<Place> places;            // at most 3 elements
};

// Words of the generated code, and a name so long that its lines must be broken somewhere else than those of all
// others.
struct At {
    Numbers* field;  // null when absent
    Span pass;
    // at most 7 elements
    quorva::Counted<Place> aNameSoLongThatTheLineWhichItStandsInMustBeBrokenAndThatTheNextOneIsHardlyAnyShorterThanThat;
};

// One name under several numbers, each with words of its own.
struct Element {
    UINT at;
    union {
        // of the first
        // of the second
        Place obj;  // cases 0x11, 022, 3
        // case 4: nothing
        // any other value: nothing
    };
};

struct Elements {
    std::uint16_t count;
    Element* elements;
};

using elementsOfALongNamedAlias = Element;
using Rows = Place[4];

// Words that other XDR compilers keep for themselves.
struct Words {
    Distance version;  // "1", C:\1, /* 1 */ or 1 €
    Distance edition;
    Distance program;
    Distance quad;
    Distance restrict;
};

using Calls = Natural;  // Words of the generated code as names of types.
using Decimal = Natural;
using Decoding = Natural;
using Encoding = Natural;
using Field = Natural;
using List = Natural;
using Name = Natural;
using Optional = Natural;
using Releasing = Natural;
using Text = Natural;
using Tracing = Natural;
using bytes = Natural;
using close = Natural;
using enumeration = Natural;
using field = Natural;
using list = Natural;
using objectAt = Natural;
using open = Natural;
using optional = Natural;
using parts = Natural;
using refuse = Natural;
using run = Natural;
using text = Natural;
using untagged = Natural;
using vector = Natural;
using Pass = Natural;
using obj = Natural;
using object = Natural;
using pass = Natural;
using xdrs = Natural;

extern "C" {

// The coding routines, each over one object of its type.
QUORVA_EXPORT int XdrPlace(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrSpan(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrNumbers(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrAt(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrElement(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrElements(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrelementsOfALongNamedAlias(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrRows(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrWords(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrCalls(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrDecimal(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrDecoding(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrEncoding(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrField(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrList(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrName(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrOptional(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrReleasing(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrText(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrTracing(Xdr* xdrs, void* object);
QUORVA_EXPORT int Xdrbytes(Xdr* xdrs, void* object);
QUORVA_EXPORT int Xdrclose(Xdr* xdrs, void* object);
QUORVA_EXPORT int Xdrenumeration(Xdr* xdrs, void* object);
QUORVA_EXPORT int Xdrfield(Xdr* xdrs, void* object);
QUORVA_EXPORT int Xdrlist(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrobjectAt(Xdr* xdrs, void* object);
QUORVA_EXPORT int Xdropen(Xdr* xdrs, void* object);
QUORVA_EXPORT int Xdroptional(Xdr* xdrs, void* object);
QUORVA_EXPORT int Xdrparts(Xdr* xdrs, void* object);
QUORVA_EXPORT int Xdrrefuse(Xdr* xdrs, void* object);
QUORVA_EXPORT int Xdrrun(Xdr* xdrs, void* object);
QUORVA_EXPORT int Xdrtext(Xdr* xdrs, void* object);
QUORVA_EXPORT int Xdruntagged(Xdr* xdrs, void* object);
QUORVA_EXPORT int Xdrvector(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrPass(Xdr* xdrs, void* object);
QUORVA_EXPORT int Xdrobj(Xdr* xdrs, void* object);
QUORVA_EXPORT int Xdrobject(Xdr* xdrs, void* object);
QUORVA_EXPORT int Xdrpass(Xdr* xdrs, void* object);
QUORVA_EXPORT int Xdrxdrs(Xdr* xdrs, void* object);

}  // extern "C"

namespace quorva::coder {
inline constexpr quorva::Shaped<::Place, quorva::shape::Fixed<6>> Place = {{XdrPlace, "Place"}};
inline constexpr quorva::Shaped<::Span, quorva::shape::Fixed<12>> Span = {{XdrSpan, "Span"}};
inline constexpr quorva::Shaped<::Numbers, quorva::shape::Body<true>> Numbers = {{XdrNumbers, "Numbers"}};
inline constexpr quorva::Shaped<::At, quorva::shape::Body<true>> At = {{XdrAt, "At"}};
inline constexpr quorva::Shaped<::Element, quorva::shape::Body<true>> Element = {{XdrElement, "Element"}};
inline constexpr quorva::Shaped<::Elements, quorva::shape::Body<true>> Elements = {{XdrElements, "Elements"}};
inline constexpr quorva::Shaped<::elementsOfALongNamedAlias, quorva::shape::Body<true>>
    elementsOfALongNamedAlias = {{XdrelementsOfALongNamedAlias, "elementsOfALongNamedAlias"}};
inline constexpr quorva::Shaped<::Rows, quorva::shape::Routine> Rows = {{XdrRows, "Rows"}};
inline constexpr quorva::Shaped<::Words, quorva::shape::Fixed<5>> Words = {{XdrWords, "Words"}};
inline constexpr quorva::Shaped<::Calls, decltype(Natural)::Shape> Calls = {{XdrCalls, "Calls"}};
inline constexpr quorva::Shaped<::Decimal, decltype(Natural)::Shape> Decimal = {{XdrDecimal, "Decimal"}};
inline constexpr quorva::Shaped<::Decoding, decltype(Natural)::Shape> Decoding = {{XdrDecoding, "Decoding"}};
inline constexpr quorva::Shaped<::Encoding, decltype(Natural)::Shape> Encoding = {{XdrEncoding, "Encoding"}};
inline constexpr quorva::Shaped<::Field, decltype(Natural)::Shape> Field = {{XdrField, "Field"}};
inline constexpr quorva::Shaped<::List, decltype(Natural)::Shape> List = {{XdrList, "List"}};
inline constexpr quorva::Shaped<::Name, decltype(Natural)::Shape> Name = {{XdrName, "Name"}};
inline constexpr quorva::Shaped<::Optional, decltype(Natural)::Shape> Optional = {{XdrOptional, "Optional"}};
inline constexpr quorva::Shaped<::Releasing, decltype(Natural)::Shape> Releasing = {{XdrReleasing, "Releasing"}};
inline constexpr quorva::Shaped<::Text, decltype(Natural)::Shape> Text = {{XdrText, "Text"}};
inline constexpr quorva::Shaped<::Tracing, decltype(Natural)::Shape> Tracing = {{XdrTracing, "Tracing"}};
inline constexpr quorva::Shaped<::bytes, decltype(Natural)::Shape> bytes = {{Xdrbytes, "bytes"}};
inline constexpr quorva::Shaped<::close, decltype(Natural)::Shape> close = {{Xdrclose, "close"}};
inline constexpr quorva::Shaped<::enumeration, decltype(Natural)::Shape>
    enumeration = {{Xdrenumeration, "enumeration"}};
inline constexpr quorva::Shaped<::field, decltype(Natural)::Shape> field = {{Xdrfield, "field"}};
inline constexpr quorva::Shaped<::list, decltype(Natural)::Shape> list = {{Xdrlist, "list"}};
inline constexpr quorva::Shaped<::objectAt, decltype(Natural)::Shape> objectAt = {{XdrobjectAt, "objectAt"}};
inline constexpr quorva::Shaped<::open, decltype(Natural)::Shape> open = {{Xdropen, "open"}};
inline constexpr quorva::Shaped<::optional, decltype(Natural)::Shape> optional = {{Xdroptional, "optional"}};
inline constexpr quorva::Shaped<::parts, decltype(Natural)::Shape> parts = {{Xdrparts, "parts"}};
inline constexpr quorva::Shaped<::refuse, decltype(Natural)::Shape> refuse = {{Xdrrefuse, "refuse"}};
inline constexpr quorva::Shaped<::run, decltype(Natural)::Shape> run = {{Xdrrun, "run"}};
inline constexpr quorva::Shaped<::text, decltype(Natural)::Shape> text = {{Xdrtext, "text"}};
inline constexpr quorva::Shaped<::untagged, decltype(Natural)::Shape> untagged = {{Xdruntagged, "untagged"}};
inline constexpr quorva::Shaped<::vector, decltype(Natural)::Shape> vector = {{Xdrvector, "vector"}};
inline constexpr quorva::Shaped<::Pass, decltype(Natural)::Shape> Pass = {{XdrPass, "Pass"}};
inline constexpr quorva::Shaped<::obj, decltype(Natural)::Shape> obj = {{Xdrobj, "obj"}};
inline constexpr quorva::Shaped<::object, decltype(Natural)::Shape> object = {{Xdrobject, "object"}};
inline constexpr quorva::Shaped<::pass, decltype(Natural)::Shape> pass = {{Xdrpass, "pass"}};
inline constexpr quorva::Shaped<::xdrs, decltype(Natural)::Shape> xdrs = {{Xdrxdrs, "xdrs"}};
}  // namespace quorva::coder

namespace quorva {
template <>
inline constexpr Coder<::Place> coderOf<::Place> = coder::Place;
template <>
inline constexpr Coder<::Span> coderOf<::Span> = coder::Span;
template <>
inline constexpr Coder<::Numbers> coderOf<::Numbers> = coder::Numbers;
template <>
inline constexpr Coder<::At> coderOf<::At> = coder::At;
template <>
inline constexpr Coder<::Element> coderOf<::Element> = coder::Element;
template <>
inline constexpr Coder<::Elements> coderOf<::Elements> = coder::Elements;
template <>
inline constexpr Coder<::Words> coderOf<::Words> = coder::Words;
}  // namespace quorva
