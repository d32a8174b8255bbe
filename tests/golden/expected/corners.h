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
struct Passage {
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

extern "C" {

// The coding routines, each over one object of its type.
QUORVA_EXPORT int XdrPlace(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrSpan(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrNumbers(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrPassage(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrElement(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrElements(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrelementsOfALongNamedAlias(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrRows(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrWords(Xdr* xdrs, void* object);

}  // extern "C"

namespace quorva::coder {
inline constexpr quorva::Shaped<::Place, quorva::shape::Fixed<6>> Place = {{XdrPlace, "Place"}};
inline constexpr quorva::Shaped<::Span, quorva::shape::Fixed<12>> Span = {{XdrSpan, "Span"}};
inline constexpr quorva::Shaped<::Numbers, quorva::shape::Body<true>> Numbers = {{XdrNumbers, "Numbers"}};
inline constexpr quorva::Shaped<::Passage, quorva::shape::Body<true>> Passage = {{XdrPassage, "Passage"}};
inline constexpr quorva::Shaped<::Element, quorva::shape::Body<true>> Element = {{XdrElement, "Element"}};
inline constexpr quorva::Shaped<::Elements, quorva::shape::Body<true>> Elements = {{XdrElements, "Elements"}};
inline constexpr quorva::Shaped<::elementsOfALongNamedAlias, quorva::shape::Body<true>>
    elementsOfALongNamedAlias = {{XdrelementsOfALongNamedAlias, "elementsOfALongNamedAlias"}};
inline constexpr quorva::Shaped<::Rows, quorva::shape::Routine> Rows = {{XdrRows, "Rows"}};
inline constexpr quorva::Shaped<::Words, quorva::shape::Fixed<5>> Words = {{XdrWords, "Words"}};
}  // namespace quorva::coder

namespace quorva {
template <>
inline constexpr Coder<::Place> coderOf<::Place> = coder::Place;
template <>
inline constexpr Coder<::Span> coderOf<::Span> = coder::Span;
template <>
inline constexpr Coder<::Numbers> coderOf<::Numbers> = coder::Numbers;
template <>
inline constexpr Coder<::Passage> coderOf<::Passage> = coder::Passage;
template <>
inline constexpr Coder<::Element> coderOf<::Element> = coder::Element;
template <>
inline constexpr Coder<::Elements> coderOf<::Elements> = coder::Elements;
template <>
inline constexpr Coder<::Words> coderOf<::Words> = coder::Words;
}  // namespace quorva
