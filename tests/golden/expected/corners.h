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
    // of those
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

struct Tie;
struct Loop;

// Types that lead to each other.
struct Knot {
    Tie* tie;    // null when absent
    Loop* loop;  // null when absent
};

struct Loop {
    Knot* knot;  // null when absent
};

struct Tie {
    Knot* knot;  // null when absent
};

struct Outer;

struct OuterSeq {
    std::uint16_t count;
    Outer* elements;
};

struct Inner {
    OuterSeq others;
};

// What it holds stands before it, though that leads back here.
struct Outer {
    Inner inner;
    Outer* next;  // null when absent
};

struct Late {
    Natural hour;
};

struct Self;

using Me = Self;
using My = Me;

// A typedef stands before what names it, and what leads nowhere before what leads to it.
struct Self {
    My* my;      // null when absent
    Late* late;  // null when absent
};

struct Rungs;

struct Ladders {
    std::uint16_t count;
    Rungs* elements;
};

struct Rungs {
    std::uint16_t count;
    Ladders* elements;
};

// Owns nothing, and is as long as its arm.
struct Choice {
    LampColour colour;
    union {
        Place place;  // case LCred
        // case LCoff: nothing
    };
};

struct Chosen {
    Natural first;
    Choice choice;
};

struct Framed {
    Chosen chosen;
    Natural last;
};

using count = Natural;  // Words of a list's own members.
using elements = Natural;

struct Counts {
    std::uint16_t count;
    ::count* elements;
};

struct Parts {
    std::uint16_t count;  // at most 4
    ::elements* elements;
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
using Pass = Natural;
using obj = Natural;
using object = Natural;
using pass = Natural;
using xdrs = Natural;

// Comments of all sorts.
//
//
//
// The second paragraph, behind a line of decoration and two that are empty.
struct Remarks {
    Natural slashes;      // three strokes
    Natural exclamation;  // a stroke too few
    // goes on
    // in the line below
    Natural below;
    Natural apart;  // ends here
    // which begins elsewhere
    // of one kind
    // and of another
    Natural behind;
    Natural strokes;  // ends in \.
    Natural marks;    // ends in ??/.
    Natural tab;      // a tab and  nothing
    Natural broken;   // halves: � �� ��� � ��� ��� ���� ���� ���� �� �(�
    Natural whole;    // ä ࠀ € ퟿ 𐀀 󠀁 􏿿
    // So many words that the line which they are to stand in has not got the room for them, and that the table of the
    // schema, which knows no comments, must put them into a line of their own, too.
    Natural words;
    // at most 7 elements
    // of a few
    quorva::Counted<Place> aNameThatIsTooLongForAnyWordsBehindItButLeavesRoomForTheRemarkOnTheMostThatThereMayBeOfThem;
};

// Comments within a union.
// the arms
struct Remarked {
    LampColour colour;  // which
    union {
        Natural steps;  // case LCgreen; below
        // case LCoff: nothing; above
        // within
        // behind
        // case LCred: nothing
    };
};

// What is longer than a message is no run of units.
struct Vast {
    unsigned char map[65532];
    Natural last;
};

struct Vaster {
    Vast vast;
};

struct Largest {
    unsigned char map[65532];
};

// A remark that must be broken.
struct Silent {
    LongNatural number;
    union {
        Natural loud;  // case 8
        // case 9: nothing; words that fill the line to its very last column, which no other line does xxxxxxxxxxxxxxxxx
        // a z
    };
};

using Column = Natural;  // Lines as wide as can be, and one column wider.

// 102 columns, to the very last column of the line that it just about fills and not one sign more than z
// 103 columns, to the very last column of the line that it just about fills and not one sign more thano z
// 114 columns, to the very last column of the line that it just about fills and not one sign more than that so her z
// 115 columns, to the very last column of the line that it just about fills and not one sign more than that so here z
// 117 columns, to the very last column of the line that it just about fills and not one sign more than that so here i z
// 118 columns, to the very last column of the line that it just about fills and not one sign more than that so here it
// z
struct Widths {
    Natural a;  // 101 behind, to the very last column of the line that it just about fills and not one sign more than z
    // 102 above, to the very last column of the line that it just about fills and not one sign more than t z
    Natural b;
    Natural c;                                                    // 51 to the very last column of the line that it ju z
    Natural ccccccccccccccccccccccccccccccccccccccccccccccccccc;  // aligned
    // 108 columns, to the very last column of the line that it just about fills and not one sign more than thato z
    // 109 columns, to the very last column of the line that it just about fills and not one sign more than that s z
    // 110 columns, to the very last column of the line that it just about fills and not one sign more than that so z
    // 111 columns, to the very last column of the line that it just about fills and not one sign more than that soo z
    // 113 columns, to the very last column of the line that it just about fills and not one sign more than that so he z
    // 114 columns, to the very last column of the line that it just about fills and not one sign more than that so her
    // z
    Natural d;
    Natural e;  // 52 to the very last column of the line that it jus z
    Natural eeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeee;  // apart
    // 111 in a literal, to the very last column of the line that it just about fills and not one sign more than tha z
    Natural f;
    // 112 in two, to the very last column of the line that it just about fills and not one sign more than that so he z
    Natural g;
    Natural h;  // a row of 120, to the very last column of the lin z
    Natural i;  // a row of 121, to the very last column of the line z
    // 110 in plain, to the very last column of the line that it just about fills and not one sign more than that s z
    Natural j;
    // null when absent
    Natural* kkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkk;
};

// Not in the order of their values.
enum class Order : std::int32_t {
    ORthird = 3,
    ORfirst = 1,
    ORsecond = 2,
};

// 105 in a literal, to the very last column of the line that it just about fills and not one sign more th z
struct Fits {
    Widths widths;
};

// 106 in two, to the very last column of the line that it just about fills and not one sign more than that z
struct Spills {
    Widths widths;
};

// 117 with its place, to the very last column of the line that it just about fills and not one sign m z
struct Heads {
    Fits fits;
};

// 118 with its place, to the very last column of the line that it just about fills and not one sign mo z
struct Tails {
    Fits fits;
};

struct Filllllllll {
    unsigned char map[4];
};

struct Widerrrrrrr {
    unsigned char map[64];
};

struct Longgggggggggggggggggggg {
    Natural a;
};

struct Lines {
    Natural f1mmmmmmmmmmmmmmmmmmmmmmmmm;
    Natural* o2mmmmmmmmmmmmmmmmmmmmmmmm;          // null when absent
    char* s1mmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmm;  // at most 1 characters
    char* s2xmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmm;  // at most 10 characters
};

// The name of the enumerator that has the value, else "Error_in_Function".
QUORVA_EXPORT const char* OrderString(int value);

extern "C" {

// The coding routines, each over one object of its type.
QUORVA_EXPORT int XdrPlace(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrSpan(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrNumbers(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrAt(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrElement(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrKnot(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrLoop(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrTie(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrOuter(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrInner(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrOuterSeq(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrSelf(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrMy(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrMe(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrLate(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrLadders(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrRungs(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrChoice(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrChosen(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrFramed(Xdr* xdrs, void* object);
QUORVA_EXPORT int Xdrcount(Xdr* xdrs, void* object);
QUORVA_EXPORT int Xdrelements(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrCounts(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrParts(Xdr* xdrs, void* object);
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
QUORVA_EXPORT int XdrPass(Xdr* xdrs, void* object);
QUORVA_EXPORT int Xdrobj(Xdr* xdrs, void* object);
QUORVA_EXPORT int Xdrobject(Xdr* xdrs, void* object);
QUORVA_EXPORT int Xdrpass(Xdr* xdrs, void* object);
QUORVA_EXPORT int Xdrxdrs(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrRemarks(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrRemarked(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrVast(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrVaster(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrLargest(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrSilent(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrColumn(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrWidths(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrOrder(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrFits(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrSpills(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrHeads(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrTails(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrFilllllllll(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrWiderrrrrrr(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrLonggggggggggggggggggggg(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrLines(Xdr* xdrs, void* object);

}  // extern "C"

namespace quorva::coder {
inline constexpr quorva::Shaped<::Place, quorva::shape::Fixed<6>> Place = {{XdrPlace, "Place"}};
inline constexpr quorva::Shaped<::Span, quorva::shape::Fixed<12>> Span = {{XdrSpan, "Span"}};
inline constexpr quorva::Shaped<::Numbers, quorva::shape::Body<true>> Numbers = {{XdrNumbers, "Numbers"}};
inline constexpr quorva::Shaped<::At, quorva::shape::Body<true>> At = {{XdrAt, "At"}};
inline constexpr quorva::Shaped<::Element, quorva::shape::Body<true>> Element = {{XdrElement, "Element"}};
inline constexpr quorva::Shaped<::Knot, quorva::shape::Body<true>> Knot = {{XdrKnot, "Knot"}};
inline constexpr quorva::Shaped<::Loop, quorva::shape::Body<true>> Loop = {{XdrLoop, "Loop"}};
inline constexpr quorva::Shaped<::Tie, quorva::shape::Body<true>> Tie = {{XdrTie, "Tie"}};
inline constexpr quorva::Shaped<::Outer, quorva::shape::Body<true>> Outer = {{XdrOuter, "Outer"}};
inline constexpr quorva::Shaped<::Inner, quorva::shape::Body<true>> Inner = {{XdrInner, "Inner"}};
inline constexpr quorva::Shaped<::OuterSeq, quorva::shape::Body<true>> OuterSeq = {{XdrOuterSeq, "OuterSeq"}};
inline constexpr quorva::Shaped<::Self, quorva::shape::Body<true>> Self = {{XdrSelf, "Self"}};
inline constexpr quorva::Shaped<::My, quorva::shape::Body<true>> My = {{XdrMy, "My"}};
inline constexpr quorva::Shaped<::Me, quorva::shape::Body<true>> Me = {{XdrMe, "Me"}};
inline constexpr quorva::Shaped<::Late, quorva::shape::Fixed<1>> Late = {{XdrLate, "Late"}};
inline constexpr quorva::Shaped<::Ladders, quorva::shape::Body<true>> Ladders = {{XdrLadders, "Ladders"}};
inline constexpr quorva::Shaped<::Rungs, quorva::shape::Body<true>> Rungs = {{XdrRungs, "Rungs"}};
inline constexpr quorva::Shaped<::Choice, quorva::shape::Body<true>> Choice = {{XdrChoice, "Choice"}};
inline constexpr quorva::Shaped<::Chosen, quorva::shape::Body<true>> Chosen = {{XdrChosen, "Chosen"}};
inline constexpr quorva::Shaped<::Framed, quorva::shape::Body<true>> Framed = {{XdrFramed, "Framed"}};
inline constexpr quorva::Shaped<::count, decltype(Natural)::Shape> count = {{Xdrcount, "count"}};
inline constexpr quorva::Shaped<::elements, decltype(Natural)::Shape> elements = {{Xdrelements, "elements"}};
inline constexpr quorva::Shaped<::Counts, quorva::shape::Body<true>> Counts = {{XdrCounts, "Counts"}};
inline constexpr quorva::Shaped<::Parts, quorva::shape::Body<true>> Parts = {{XdrParts, "Parts"}};
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
inline constexpr quorva::Shaped<::Pass, decltype(Natural)::Shape> Pass = {{XdrPass, "Pass"}};
inline constexpr quorva::Shaped<::obj, decltype(Natural)::Shape> obj = {{Xdrobj, "obj"}};
inline constexpr quorva::Shaped<::object, decltype(Natural)::Shape> object = {{Xdrobject, "object"}};
inline constexpr quorva::Shaped<::pass, decltype(Natural)::Shape> pass = {{Xdrpass, "pass"}};
inline constexpr quorva::Shaped<::xdrs, decltype(Natural)::Shape> xdrs = {{Xdrxdrs, "xdrs"}};
inline constexpr quorva::Shaped<::Remarks, quorva::shape::Body<true>> Remarks = {{XdrRemarks, "Remarks"}};
inline constexpr quorva::Shaped<::Remarked, quorva::shape::Body<true>> Remarked = {{XdrRemarked, "Remarked"}};
inline constexpr quorva::Shaped<::Vast, quorva::shape::Body<false>> Vast = {{XdrVast, "Vast"}};
inline constexpr quorva::Shaped<::Vaster, quorva::shape::Body<false>> Vaster = {{XdrVaster, "Vaster"}};
inline constexpr quorva::Shaped<::Largest, quorva::shape::Fixed<16383>> Largest = {{XdrLargest, "Largest"}};
inline constexpr quorva::Shaped<::Silent, quorva::shape::Body<true>> Silent = {{XdrSilent, "Silent"}};
inline constexpr quorva::Shaped<::Column, decltype(Natural)::Shape> Column = {{XdrColumn, "Column"}};
inline constexpr quorva::Shaped<::Widths, quorva::shape::Body<true>> Widths = {{XdrWidths, "Widths"}};
inline constexpr quorva::Shaped<::Order, quorva::shape::Enumeration<OrderString>> Order = {{XdrOrder, "Order"}};
inline constexpr quorva::Shaped<::Fits, quorva::shape::Body<true>> Fits = {{XdrFits, "Fits"}};
inline constexpr quorva::Shaped<::Spills, quorva::shape::Body<true>> Spills = {{XdrSpills, "Spills"}};
inline constexpr quorva::Shaped<::Heads, quorva::shape::Body<true>> Heads = {{XdrHeads, "Heads"}};
inline constexpr quorva::Shaped<::Tails, quorva::shape::Body<true>> Tails = {{XdrTails, "Tails"}};
inline constexpr quorva::Shaped<::Filllllllll, quorva::shape::Fixed<1>> Filllllllll = {{XdrFilllllllll, "Filllllllll"}};
inline constexpr quorva::Shaped<::Widerrrrrrr, quorva::shape::Fixed<16>>
    Widerrrrrrr = {{XdrWiderrrrrrr, "Widerrrrrrr"}};
inline constexpr quorva::Shaped<::Longgggggggggggggggggggg, quorva::shape::Fixed<1>>
    Longgggggggggggggggggggg = {{XdrLonggggggggggggggggggggg, "Longgggggggggggggggggggg"}};
inline constexpr quorva::Shaped<::Lines, quorva::shape::Body<true>> Lines = {{XdrLines, "Lines"}};
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
inline constexpr Coder<::Knot> coderOf<::Knot> = coder::Knot;
template <>
inline constexpr Coder<::Loop> coderOf<::Loop> = coder::Loop;
template <>
inline constexpr Coder<::Tie> coderOf<::Tie> = coder::Tie;
template <>
inline constexpr Coder<::Outer> coderOf<::Outer> = coder::Outer;
template <>
inline constexpr Coder<::Inner> coderOf<::Inner> = coder::Inner;
template <>
inline constexpr Coder<::OuterSeq> coderOf<::OuterSeq> = coder::OuterSeq;
template <>
inline constexpr Coder<::Self> coderOf<::Self> = coder::Self;
template <>
inline constexpr Coder<::Late> coderOf<::Late> = coder::Late;
template <>
inline constexpr Coder<::Ladders> coderOf<::Ladders> = coder::Ladders;
template <>
inline constexpr Coder<::Rungs> coderOf<::Rungs> = coder::Rungs;
template <>
inline constexpr Coder<::Choice> coderOf<::Choice> = coder::Choice;
template <>
inline constexpr Coder<::Chosen> coderOf<::Chosen> = coder::Chosen;
template <>
inline constexpr Coder<::Framed> coderOf<::Framed> = coder::Framed;
template <>
inline constexpr Coder<::Counts> coderOf<::Counts> = coder::Counts;
template <>
inline constexpr Coder<::Parts> coderOf<::Parts> = coder::Parts;
template <>
inline constexpr Coder<::Elements> coderOf<::Elements> = coder::Elements;
template <>
inline constexpr Coder<::Words> coderOf<::Words> = coder::Words;
template <>
inline constexpr Coder<::Remarks> coderOf<::Remarks> = coder::Remarks;
template <>
inline constexpr Coder<::Remarked> coderOf<::Remarked> = coder::Remarked;
template <>
inline constexpr Coder<::Vast> coderOf<::Vast> = coder::Vast;
template <>
inline constexpr Coder<::Vaster> coderOf<::Vaster> = coder::Vaster;
template <>
inline constexpr Coder<::Largest> coderOf<::Largest> = coder::Largest;
template <>
inline constexpr Coder<::Silent> coderOf<::Silent> = coder::Silent;
template <>
inline constexpr Coder<::Widths> coderOf<::Widths> = coder::Widths;
template <>
inline constexpr Coder<::Order> coderOf<::Order> = coder::Order;
template <>
inline constexpr Coder<::Fits> coderOf<::Fits> = coder::Fits;
template <>
inline constexpr Coder<::Spills> coderOf<::Spills> = coder::Spills;
template <>
inline constexpr Coder<::Heads> coderOf<::Heads> = coder::Heads;
template <>
inline constexpr Coder<::Tails> coderOf<::Tails> = coder::Tails;
template <>
inline constexpr Coder<::Filllllllll> coderOf<::Filllllllll> = coder::Filllllllll;
template <>
inline constexpr Coder<::Widerrrrrrr> coderOf<::Widerrrrrrr> = coder::Widerrrrrrr;
template <>
inline constexpr Coder<::Longgggggggggggggggggggg> coderOf<::Longgggggggggggggggggggg> =
    coder::Longgggggggggggggggggggg;
template <>
inline constexpr Coder<::Lines> coderOf<::Lines> = coder::Lines;
}  // namespace quorva
