// The schema table of corners.x, made from it by quorvaxdrc. Change the interface file, not this one.
#include <quorvapixdr/corners.h>
#include <quorvapixdr/schema.h>

#include <cstddef>
#include <cstdint>

namespace quorva::schema {

namespace types {
extern const schema::Type Place, Span, Numbers, At, Element, Knot, Loop, Tie, Outer, Inner, OuterSeq, Self, My, Me,
                          Late, Ladders, Rungs, Choice, Chosen, Framed, count, elements, Counts, Parts, Elements,
                          elementsOfALongNamedAlias, Rows, Words, Calls, Decimal, Decoding, Encoding, Field, List, Name,
                          Optional, Releasing, Text, Tracing, bytes, close, enumeration, field, list, objectAt, open,
                          optional, parts, refuse, run, text, untagged, Pass, obj, object, pass, xdrs, Remarks,
                          Remarked, Vast, Vaster, Largest, Silent, Column, Widths, Order, Fits, Spills, Heads, Tails,
                          Filllllllll, Widerrrrrrr, Longgggggggggggggggggggg, Lines;

// Of other modules.
extern const schema::Type LampColour, Distance;
}  // namespace types

// The values that select an arm.
template <std::int64_t... numbers>
static constexpr std::int64_t cases[] = {numbers...};

constexpr Member PlaceFields[] = {
    {"row", {Form::single, &types::Natural}, offsetof(::Place, row)},
    {"column", {Form::single, &types::Natural}, offsetof(::Place, column)},
    {"lamps", {Form::vector, &types::LampColour, 2}, offsetof(::Place, lamps)},
    {"mark", {Form::opaque, nullptr, 8}, offsetof(::Place, mark)},
};

constinit const Type types::Place = {
    .name = "Place",
    .kind = Kind::record,
    .module = "corners",
    .file = "corners.x",
    .line = 9,
    .doc = "Where a door stands. Always as long on the wire.",
    .routine = XdrPlace,
    .size = sizeof(::Place),
    .alignment = alignof(::Place),
    .fields = PlaceFields,
};

constexpr Member SpanFields[] = {
    {"from", {Form::single, &types::Place}, offsetof(::Span, from)},
    {"to", {Form::single, &types::Place}, offsetof(::Span, to)},
};

constinit const Type types::Span = {
    .name = "Span",
    .kind = Kind::record,
    .module = "corners",
    .file = "corners.x",
    .line = 17,
    .doc = "Two of them are as long as ever. A sign of several bytes fills one column: äöüäöüäöüäöüäöüäöüäöü; so "
           "this line ends.",
    .routine = XdrSpan,
    .size = sizeof(::Span),
    .alignment = alignof(::Span),
    .fields = SpanFields,
};

constexpr Member NumbersFields[] = {
    {"hexadecimal", {Form::string, nullptr, 16}, offsetof(::Numbers, hexadecimal)},
    {"octal", {Form::string, nullptr, 8}, offsetof(::Numbers, octal)},
    {"constant", {Form::bytes, nullptr, 40}, offsetof(::Numbers, constant)},
    {"list", {Form::list, &types::Natural, 40}, offsetof(::Numbers, list)},
    {"places", {Form::list, &types::Place, 3}, offsetof(::Numbers, places)},
};

constinit const Type types::Numbers = {
    .name = "Numbers",
    .kind = Kind::record,
    .module = "corners",
    .file = "corners.x",
    .line = 23,
    .doc = "Numbers are told as they count, constants by name.",
    .routine = XdrNumbers,
    .size = sizeof(::Numbers),
    .alignment = alignof(::Numbers),
    .fields = NumbersFields,
};

constexpr Member AtFields[] = {
    {"field", {Form::optional, &types::Numbers}, offsetof(::At, field)},
    {"pass", {Form::single, &types::Span}, offsetof(::At, pass)},
    {"aNameSoLongThatTheLineWhichItStandsInMustBeBrokenAndThatTheNextOneIsHardlyAnyShorterThanThat",
     {Form::list, &types::Place, 7},
     offsetof(::At, aNameSoLongThatTheLineWhichItStandsInMustBeBrokenAndThatTheNextOneIsHardlyAnyShorterThanThat),
     "of those"},
};

constinit const Type types::At = {
    .name = "At",
    .kind = Kind::record,
    .module = "corners",
    .file = "corners.x",
    .line = 32,
    .doc = "Words of the generated code, and a name so long that its lines must be broken somewhere else than "
           "those of all others.",
    .routine = XdrAt,
    .size = sizeof(::At),
    .alignment = alignof(::At),
    .fields = AtFields,
};

constexpr Member ElementFields[] = {
    {"at", {Form::single, &types::UINT}, offsetof(::Element, at)},
};

constexpr Arm ElementArms[] = {
    {cases<17>, {"obj", {Form::single, &types::Place}, offsetof(::Element, obj), "of the first"}},
    {cases<18>, {"obj", {Form::single, &types::Place}, offsetof(::Element, obj), "of the second"}},
    {cases<3>, {"obj", {Form::single, &types::Place}, offsetof(::Element, obj)}},
    {cases<4>, {}},
};

constinit const Type types::Element = {
    .name = "Element",
    .kind = Kind::discriminated,
    .module = "corners",
    .file = "corners.x",
    .line = 39,
    .doc = "One name under several numbers, each with words of its own.",
    .routine = XdrElement,
    .size = sizeof(::Element),
    .alignment = alignof(::Element),
    .fields = ElementFields,
    .arms = ElementArms,
    .hasDefault = true,
};

constexpr Member KnotFields[] = {
    {"tie", {Form::optional, &types::Tie}, offsetof(::Knot, tie)},
    {"loop", {Form::optional, &types::Loop}, offsetof(::Knot, loop)},
};

constinit const Type types::Knot = {
    .name = "Knot",
    .kind = Kind::record,
    .module = "corners",
    .file = "corners.x",
    .line = 48,
    .doc = "Types that lead to each other.",
    .routine = XdrKnot,
    .size = sizeof(::Knot),
    .alignment = alignof(::Knot),
    .fields = KnotFields,
};

constexpr Member LoopFields[] = {
    {"knot", {Form::optional, &types::Knot}, offsetof(::Loop, knot)},
};

constinit const Type types::Loop = {
    .name = "Loop",
    .kind = Kind::record,
    .module = "corners",
    .file = "corners.x",
    .line = 49,
    .routine = XdrLoop,
    .size = sizeof(::Loop),
    .alignment = alignof(::Loop),
    .fields = LoopFields,
};

constexpr Member TieFields[] = {
    {"knot", {Form::optional, &types::Knot}, offsetof(::Tie, knot)},
};

constinit const Type types::Tie = {
    .name = "Tie",
    .kind = Kind::record,
    .module = "corners",
    .file = "corners.x",
    .line = 50,
    .routine = XdrTie,
    .size = sizeof(::Tie),
    .alignment = alignof(::Tie),
    .fields = TieFields,
};

constexpr Member OuterFields[] = {
    {"inner", {Form::single, &types::Inner}, offsetof(::Outer, inner)},
    {"next", {Form::optional, &types::Outer}, offsetof(::Outer, next)},
};

constinit const Type types::Outer = {
    .name = "Outer",
    .kind = Kind::record,
    .module = "corners",
    .file = "corners.x",
    .line = 53,
    .doc = "What it holds stands before it, though that leads back here.",
    .routine = XdrOuter,
    .size = sizeof(::Outer),
    .alignment = alignof(::Outer),
    .fields = OuterFields,
};

constexpr Member InnerFields[] = {
    {"others", {Form::single, &types::OuterSeq}, offsetof(::Inner, others)},
};

constinit const Type types::Inner = {
    .name = "Inner",
    .kind = Kind::record,
    .module = "corners",
    .file = "corners.x",
    .line = 54,
    .routine = XdrInner,
    .size = sizeof(::Inner),
    .alignment = alignof(::Inner),
    .fields = InnerFields,
};

constinit const Type types::OuterSeq = {
    .name = "OuterSeq",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 55,
    .routine = XdrOuterSeq,
    .size = sizeof(::OuterSeq),
    .alignment = alignof(::OuterSeq),
    .target = {Form::list, &types::Outer, 65535},
};

constexpr Member SelfFields[] = {
    {"my", {Form::optional, &types::My}, offsetof(::Self, my)},
    {"late", {Form::optional, &types::Late}, offsetof(::Self, late)},
};

constinit const Type types::Self = {
    .name = "Self",
    .kind = Kind::record,
    .module = "corners",
    .file = "corners.x",
    .line = 58,
    .doc = "A typedef stands before what names it, and what leads nowhere before what leads to it.",
    .routine = XdrSelf,
    .size = sizeof(::Self),
    .alignment = alignof(::Self),
    .fields = SelfFields,
};

constinit const Type types::My = {
    .name = "My",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 59,
    .routine = XdrMy,
    .size = sizeof(::My),
    .alignment = alignof(::My),
    .target = {Form::single, &types::Me},
};

constinit const Type types::Me = {
    .name = "Me",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 60,
    .routine = XdrMe,
    .size = sizeof(::Me),
    .alignment = alignof(::Me),
    .target = {Form::single, &types::Self},
};

constexpr Member LateFields[] = {
    {"hour", {Form::single, &types::Natural}, offsetof(::Late, hour)},
};

constinit const Type types::Late = {
    .name = "Late",
    .kind = Kind::record,
    .module = "corners",
    .file = "corners.x",
    .line = 61,
    .routine = XdrLate,
    .size = sizeof(::Late),
    .alignment = alignof(::Late),
    .fields = LateFields,
};

constinit const Type types::Ladders = {
    .name = "Ladders",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 62,
    .routine = XdrLadders,
    .size = sizeof(::Ladders),
    .alignment = alignof(::Ladders),
    .target = {Form::list, &types::Rungs, 65535},
};

constinit const Type types::Rungs = {
    .name = "Rungs",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 63,
    .routine = XdrRungs,
    .size = sizeof(::Rungs),
    .alignment = alignof(::Rungs),
    .target = {Form::list, &types::Ladders, 65535},
};

constexpr Member ChoiceFields[] = {
    {"colour", {Form::single, &types::LampColour}, offsetof(::Choice, colour)},
};

constexpr Arm ChoiceArms[] = {
    {cases<0>, {}},
    {cases<2>, {"place", {Form::single, &types::Place}, offsetof(::Choice, place)}},
};

constinit const Type types::Choice = {
    .name = "Choice",
    .kind = Kind::discriminated,
    .module = "corners",
    .file = "corners.x",
    .line = 66,
    .doc = "Owns nothing, and is as long as its arm.",
    .routine = XdrChoice,
    .size = sizeof(::Choice),
    .alignment = alignof(::Choice),
    .fields = ChoiceFields,
    .arms = ChoiceArms,
};

constexpr Member ChosenFields[] = {
    {"first", {Form::single, &types::Natural}, offsetof(::Chosen, first)},
    {"choice", {Form::single, &types::Choice}, offsetof(::Chosen, choice)},
};

constinit const Type types::Chosen = {
    .name = "Chosen",
    .kind = Kind::record,
    .module = "corners",
    .file = "corners.x",
    .line = 67,
    .routine = XdrChosen,
    .size = sizeof(::Chosen),
    .alignment = alignof(::Chosen),
    .fields = ChosenFields,
};

constexpr Member FramedFields[] = {
    {"chosen", {Form::single, &types::Chosen}, offsetof(::Framed, chosen)},
    {"last", {Form::single, &types::Natural}, offsetof(::Framed, last)},
};

constinit const Type types::Framed = {
    .name = "Framed",
    .kind = Kind::record,
    .module = "corners",
    .file = "corners.x",
    .line = 68,
    .routine = XdrFramed,
    .size = sizeof(::Framed),
    .alignment = alignof(::Framed),
    .fields = FramedFields,
};

constinit const Type types::count = {
    .name = "count",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 71,
    .doc = "Words of a list's own members.",
    .routine = Xdrcount,
    .size = sizeof(::count),
    .alignment = alignof(::count),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::elements = {
    .name = "elements",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 72,
    .routine = Xdrelements,
    .size = sizeof(::elements),
    .alignment = alignof(::elements),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::Counts = {
    .name = "Counts",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 73,
    .routine = XdrCounts,
    .size = sizeof(::Counts),
    .alignment = alignof(::Counts),
    .target = {Form::list, &types::count, 65535},
};

constinit const Type types::Parts = {
    .name = "Parts",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 74,
    .routine = XdrParts,
    .size = sizeof(::Parts),
    .alignment = alignof(::Parts),
    .target = {Form::list, &types::elements, 4},
};

constinit const Type types::Elements = {
    .name = "Elements",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 76,
    .routine = XdrElements,
    .size = sizeof(::Elements),
    .alignment = alignof(::Elements),
    .target = {Form::list, &types::Element, 65535},
};

constinit const Type types::elementsOfALongNamedAlias = {
    .name = "elementsOfALongNamedAlias",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 77,
    .routine = XdrelementsOfALongNamedAlias,
    .size = sizeof(::elementsOfALongNamedAlias),
    .alignment = alignof(::elementsOfALongNamedAlias),
    .target = {Form::single, &types::Element},
};

constinit const Type types::Rows = {
    .name = "Rows",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 78,
    .routine = XdrRows,
    .size = sizeof(::Rows),
    .alignment = alignof(::Rows),
    .target = {Form::vector, &types::Place, 4},
};

constexpr Member WordsFields[] = {
    {"version", {Form::single, &types::Distance}, offsetof(::Words, version), "\"1\", C:\\1, /* 1 */ or 1 €"},
    {"edition", {Form::single, &types::Distance}, offsetof(::Words, edition)},
    {"program", {Form::single, &types::Distance}, offsetof(::Words, program)},
    {"quad", {Form::single, &types::Distance}, offsetof(::Words, quad)},
    {"restrict", {Form::single, &types::Distance}, offsetof(::Words, restrict)},
};

constinit const Type types::Words = {
    .name = "Words",
    .kind = Kind::record,
    .module = "corners",
    .file = "corners.x",
    .line = 81,
    .doc = "Words that other XDR compilers keep for themselves.",
    .routine = XdrWords,
    .size = sizeof(::Words),
    .alignment = alignof(::Words),
    .fields = WordsFields,
};

constinit const Type types::Calls = {
    .name = "Calls",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 90,
    .doc = "Words of the generated code as names of types.",
    .routine = XdrCalls,
    .size = sizeof(::Calls),
    .alignment = alignof(::Calls),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::Decimal = {
    .name = "Decimal",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 91,
    .routine = XdrDecimal,
    .size = sizeof(::Decimal),
    .alignment = alignof(::Decimal),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::Decoding = {
    .name = "Decoding",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 92,
    .routine = XdrDecoding,
    .size = sizeof(::Decoding),
    .alignment = alignof(::Decoding),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::Encoding = {
    .name = "Encoding",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 93,
    .routine = XdrEncoding,
    .size = sizeof(::Encoding),
    .alignment = alignof(::Encoding),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::Field = {
    .name = "Field",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 94,
    .routine = XdrField,
    .size = sizeof(::Field),
    .alignment = alignof(::Field),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::List = {
    .name = "List",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 95,
    .routine = XdrList,
    .size = sizeof(::List),
    .alignment = alignof(::List),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::Name = {
    .name = "Name",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 96,
    .routine = XdrName,
    .size = sizeof(::Name),
    .alignment = alignof(::Name),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::Optional = {
    .name = "Optional",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 97,
    .routine = XdrOptional,
    .size = sizeof(::Optional),
    .alignment = alignof(::Optional),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::Releasing = {
    .name = "Releasing",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 98,
    .routine = XdrReleasing,
    .size = sizeof(::Releasing),
    .alignment = alignof(::Releasing),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::Text = {
    .name = "Text",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 99,
    .routine = XdrText,
    .size = sizeof(::Text),
    .alignment = alignof(::Text),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::Tracing = {
    .name = "Tracing",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 100,
    .routine = XdrTracing,
    .size = sizeof(::Tracing),
    .alignment = alignof(::Tracing),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::bytes = {
    .name = "bytes",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 101,
    .routine = Xdrbytes,
    .size = sizeof(::bytes),
    .alignment = alignof(::bytes),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::close = {
    .name = "close",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 102,
    .routine = Xdrclose,
    .size = sizeof(::close),
    .alignment = alignof(::close),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::enumeration = {
    .name = "enumeration",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 103,
    .routine = Xdrenumeration,
    .size = sizeof(::enumeration),
    .alignment = alignof(::enumeration),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::field = {
    .name = "field",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 104,
    .routine = Xdrfield,
    .size = sizeof(::field),
    .alignment = alignof(::field),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::list = {
    .name = "list",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 105,
    .routine = Xdrlist,
    .size = sizeof(::list),
    .alignment = alignof(::list),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::objectAt = {
    .name = "objectAt",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 106,
    .routine = XdrobjectAt,
    .size = sizeof(::objectAt),
    .alignment = alignof(::objectAt),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::open = {
    .name = "open",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 107,
    .routine = Xdropen,
    .size = sizeof(::open),
    .alignment = alignof(::open),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::optional = {
    .name = "optional",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 108,
    .routine = Xdroptional,
    .size = sizeof(::optional),
    .alignment = alignof(::optional),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::parts = {
    .name = "parts",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 109,
    .routine = Xdrparts,
    .size = sizeof(::parts),
    .alignment = alignof(::parts),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::refuse = {
    .name = "refuse",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 110,
    .routine = Xdrrefuse,
    .size = sizeof(::refuse),
    .alignment = alignof(::refuse),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::run = {
    .name = "run",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 111,
    .routine = Xdrrun,
    .size = sizeof(::run),
    .alignment = alignof(::run),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::text = {
    .name = "text",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 112,
    .routine = Xdrtext,
    .size = sizeof(::text),
    .alignment = alignof(::text),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::untagged = {
    .name = "untagged",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 113,
    .routine = Xdruntagged,
    .size = sizeof(::untagged),
    .alignment = alignof(::untagged),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::Pass = {
    .name = "Pass",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 114,
    .routine = XdrPass,
    .size = sizeof(::Pass),
    .alignment = alignof(::Pass),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::obj = {
    .name = "obj",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 115,
    .routine = Xdrobj,
    .size = sizeof(::obj),
    .alignment = alignof(::obj),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::object = {
    .name = "object",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 116,
    .routine = Xdrobject,
    .size = sizeof(::object),
    .alignment = alignof(::object),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::pass = {
    .name = "pass",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 117,
    .routine = Xdrpass,
    .size = sizeof(::pass),
    .alignment = alignof(::pass),
    .target = {Form::single, &types::Natural},
};

constinit const Type types::xdrs = {
    .name = "xdrs",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 118,
    .routine = Xdrxdrs,
    .size = sizeof(::xdrs),
    .alignment = alignof(::xdrs),
    .target = {Form::single, &types::Natural},
};

constexpr Member RemarksFields[] = {
    {"slashes", {Form::single, &types::Natural}, offsetof(::Remarks, slashes), "three strokes"},
    {"exclamation", {Form::single, &types::Natural}, offsetof(::Remarks, exclamation), "a stroke too few"},
    {"below", {Form::single, &types::Natural}, offsetof(::Remarks, below), "goes on\nin the line below"},
    {"apart", {Form::single, &types::Natural}, offsetof(::Remarks, apart), "ends here"},
    {"behind", {Form::single, &types::Natural}, offsetof(::Remarks, behind),
     "which begins elsewhere\nof one kind\nand of another"},
    {"strokes", {Form::single, &types::Natural}, offsetof(::Remarks, strokes), "ends in \\"},
    {"marks", {Form::single, &types::Natural}, offsetof(::Remarks, marks), "ends in ?\?/"},
    {"tab", {Form::single, &types::Natural}, offsetof(::Remarks, tab), "a tab and  nothing"},
    {"broken", {Form::single, &types::Natural}, offsetof(::Remarks, broken),
     "halves: � �� ��� � ��� ��� ���� ���� ���� �� �(�"},
    {"whole", {Form::single, &types::Natural}, offsetof(::Remarks, whole), "ä ࠀ € ퟿ 𐀀 󠀁 􏿿"},
    {"words", {Form::single, &types::Natural}, offsetof(::Remarks, words),
     "So many words that the line which they are to stand in has not got the room for them, and that the table of "
     "the\n"
     "schema, which knows no comments, must put them into a line of their own, too."},
    {"aNameThatIsTooLongForAnyWordsBehindItButLeavesRoomForTheRemarkOnTheMostThatThereMayBeOfThem",
     {Form::list, &types::Place, 7},
     offsetof(::Remarks, aNameThatIsTooLongForAnyWordsBehindItButLeavesRoomForTheRemarkOnTheMostThatThereMayBeOfThem),
     "of a few"},
};

constinit const Type types::Remarks = {
    .name = "Remarks",
    .kind = Kind::record,
    .module = "corners",
    .file = "corners.x",
    .line = 127,
    .doc = "Comments of all sorts.\n\n\n\nThe second paragraph, behind a line of decoration and two that are empty.",
    .routine = XdrRemarks,
    .size = sizeof(::Remarks),
    .alignment = alignof(::Remarks),
    .fields = RemarksFields,
};

constexpr Member RemarkedFields[] = {
    {"colour", {Form::single, &types::LampColour}, offsetof(::Remarked, colour), "which"},
};

constexpr Arm RemarkedArms[] = {
    {cases<0>, {"", {}, 0, "above\nwithin\nbehind"}},
    {cases<1>, {"steps", {Form::single, &types::Natural}, offsetof(::Remarked, steps), "below"}},
    {cases<2>, {}},
};

constinit const Type types::Remarked = {
    .name = "Remarked",
    .kind = Kind::discriminated,
    .module = "corners",
    .file = "corners.x",
    .line = 149,
    .doc = "Comments within a union.\nthe arms",
    .routine = XdrRemarked,
    .size = sizeof(::Remarked),
    .alignment = alignof(::Remarked),
    .fields = RemarkedFields,
    .arms = RemarkedArms,
};

constexpr Member VastFields[] = {
    {"map", {Form::opaque, nullptr, 65532}, offsetof(::Vast, map)},
    {"last", {Form::single, &types::Natural}, offsetof(::Vast, last)},
};

constinit const Type types::Vast = {
    .name = "Vast",
    .kind = Kind::record,
    .module = "corners",
    .file = "corners.x",
    .line = 162,
    .doc = "What is longer than a message is no run of units.",
    .routine = XdrVast,
    .size = sizeof(::Vast),
    .alignment = alignof(::Vast),
    .fields = VastFields,
};

constexpr Member VasterFields[] = {
    {"vast", {Form::single, &types::Vast}, offsetof(::Vaster, vast)},
};

constinit const Type types::Vaster = {
    .name = "Vaster",
    .kind = Kind::record,
    .module = "corners",
    .file = "corners.x",
    .line = 166,
    .routine = XdrVaster,
    .size = sizeof(::Vaster),
    .alignment = alignof(::Vaster),
    .fields = VasterFields,
};

constexpr Member LargestFields[] = {
    {"map", {Form::opaque, nullptr, 65532}, offsetof(::Largest, map)},
};

constinit const Type types::Largest = {
    .name = "Largest",
    .kind = Kind::record,
    .module = "corners",
    .file = "corners.x",
    .line = 167,
    .routine = XdrLargest,
    .size = sizeof(::Largest),
    .alignment = alignof(::Largest),
    .fields = LargestFields,
};

constexpr Member SilentFields[] = {
    {"number", {Form::single, &types::LongNatural}, offsetof(::Silent, number)},
};

constexpr Arm SilentArms[] = {
    {cases<8>, {"loud", {Form::single, &types::Natural}, offsetof(::Silent, loud)}},
    {cases<9>, {"", {}, 0,
                "words that fill the line to its very last column, which no other line does xxxxxxxxxxxxxxxxx a z"}},
};

constinit const Type types::Silent = {
    .name = "Silent",
    .kind = Kind::discriminated,
    .module = "corners",
    .file = "corners.x",
    .line = 170,
    .doc = "A remark that must be broken.",
    .routine = XdrSilent,
    .size = sizeof(::Silent),
    .alignment = alignof(::Silent),
    .fields = SilentFields,
    .arms = SilentArms,
};

constinit const Type types::Column = {
    .name = "Column",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 176,
    .doc = "Lines as wide as can be, and one column wider.",
    .routine = XdrColumn,
    .size = sizeof(::Column),
    .alignment = alignof(::Column),
    .target = {Form::single, &types::Natural},
};

constexpr Member WidthsFields[] = {
    {"a", {Form::single, &types::Natural}, offsetof(::Widths, a),
     "101 behind, to the very last column of the line that it just about fills and not one sign more than z"},
    {"b", {Form::single, &types::Natural}, offsetof(::Widths, b),
     "102 above, to the very last column of the line that it just about fills and not one sign more than t z"},
    {"c", {Form::single, &types::Natural}, offsetof(::Widths, c),
     "51 to the very last column of the line that it ju z"},
    {"ccccccccccccccccccccccccccccccccccccccccccccccccccc", {Form::single, &types::Natural},
     offsetof(::Widths, ccccccccccccccccccccccccccccccccccccccccccccccccccc), "aligned"},
    {"d", {Form::single, &types::Natural}, offsetof(::Widths, d),
     "108 columns, to the very last column of the line that it just about fills and not one sign more than thato z\n"
     "109 columns, to the very last column of the line that it just about fills and not one sign more than that s "
     "z\n"
     "110 columns, to the very last column of the line that it just about fills and not one sign more than that so "
     "z\n"
     "111 columns, to the very last column of the line that it just about fills and not one sign more than that "
     "soo z\n"
     "113 columns, to the very last column of the line that it just about fills and not one sign more than that so "
     "he z\n"
     "114 columns, to the very last column of the line that it just about fills and not one sign more than that so "
     "her z"},
    {"e", {Form::single, &types::Natural}, offsetof(::Widths, e),
     "52 to the very last column of the line that it jus z"},
    {"eeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeee", {Form::single, &types::Natural},
     offsetof(::Widths, eeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeee), "apart"},
    {"f", {Form::single, &types::Natural}, offsetof(::Widths, f),
     "111 in a literal, to the very last column of the line that it just about fills and not one sign more than tha z"},
    {"g", {Form::single, &types::Natural}, offsetof(::Widths, g),
     "112 in two, to the very last column of the line that it just about fills and not one sign more than that so "
     "he z"},
    {"h", {Form::single, &types::Natural}, offsetof(::Widths, h), "a row of 120, to the very last column of the lin z"},
    {"i", {Form::single, &types::Natural}, offsetof(::Widths, i),
     "a row of 121, to the very last column of the line z"},
    {"j", {Form::single, &types::Natural}, offsetof(::Widths, j),
     "110 in plain, to the very last column of the line that it just about fills and not one sign more than that s z"},
    {"kkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkk",
     {Form::optional, &types::Natural},
     offsetof(::Widths, kkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkk)},
};

constinit const Type types::Widths = {
    .name = "Widths",
    .kind = Kind::record,
    .module = "corners",
    .file = "corners.x",
    .line = 184,
    .doc = "102 columns, to the very last column of the line that it just about fills and not one sign more than z\n"
           "103 columns, to the very last column of the line that it just about fills and not one sign more thano "
           "z\n"
           "114 columns, to the very last column of the line that it just about fills and not one sign more than "
           "that so her z\n"
           "115 columns, to the very last column of the line that it just about fills and not one sign more than "
           "that so here z\n"
           "117 columns, to the very last column of the line that it just about fills and not one sign more than "
           "that so here i z\n"
           "118 columns, to the very last column of the line that it just about fills and not one sign more than "
           "that so here it z",
    .routine = XdrWidths,
    .size = sizeof(::Widths),
    .alignment = alignof(::Widths),
    .fields = WidthsFields,
};

constexpr Enumerator OrderEnumerators[] = {
    {"ORfirst", 1},
    {"ORsecond", 2},
    {"ORthird", 3},
};

constinit const Type types::Order = {
    .name = "Order",
    .kind = Kind::enumeration,
    .module = "corners",
    .file = "corners.x",
    .line = 212,
    .doc = "Not in the order of their values.",
    .routine = XdrOrder,
    .nameOf = OrderString,
    .size = sizeof(::Order),
    .alignment = alignof(::Order),
    .enumerators = OrderEnumerators,
};

constexpr Member FitsFields[] = {
    {"widths", {Form::single, &types::Widths}, offsetof(::Fits, widths)},
};

constinit const Type types::Fits = {
    .name = "Fits",
    .kind = Kind::record,
    .module = "corners",
    .file = "corners.x",
    .line = 215,
    .doc = "105 in a literal, to the very last column of the line that it just about fills and not one sign more th z",
    .routine = XdrFits,
    .size = sizeof(::Fits),
    .alignment = alignof(::Fits),
    .fields = FitsFields,
};

constexpr Member SpillsFields[] = {
    {"widths", {Form::single, &types::Widths}, offsetof(::Spills, widths)},
};

constinit const Type types::Spills = {
    .name = "Spills",
    .kind = Kind::record,
    .module = "corners",
    .file = "corners.x",
    .line = 218,
    .doc = "106 in two, to the very last column of the line that it just about fills and not one sign more than "
           "that z",
    .routine = XdrSpills,
    .size = sizeof(::Spills),
    .alignment = alignof(::Spills),
    .fields = SpillsFields,
};

constexpr Member HeadsFields[] = {
    {"fits", {Form::single, &types::Fits}, offsetof(::Heads, fits)},
};

constinit const Type types::Heads = {
    .name = "Heads",
    .kind = Kind::record,
    .module = "corners",
    .file = "corners.x",
    .line = 221,
    .doc = "117 with its place, to the very last column of the line that it just about fills and not one sign m z",
    .routine = XdrHeads,
    .size = sizeof(::Heads),
    .alignment = alignof(::Heads),
    .fields = HeadsFields,
};

constexpr Member TailsFields[] = {
    {"fits", {Form::single, &types::Fits}, offsetof(::Tails, fits)},
};

constinit const Type types::Tails = {
    .name = "Tails",
    .kind = Kind::record,
    .module = "corners",
    .file = "corners.x",
    .line = 224,
    .doc = "118 with its place, to the very last column of the line that it just about fills and not one sign mo z",
    .routine = XdrTails,
    .size = sizeof(::Tails),
    .alignment = alignof(::Tails),
    .fields = TailsFields,
};

constexpr Member FilllllllllFields[] = {
    {"map", {Form::opaque, nullptr, 4}, offsetof(::Filllllllll, map)},
};

constinit const Type types::Filllllllll = {
    .name = "Filllllllll",
    .kind = Kind::record,
    .module = "corners",
    .file = "corners.x",
    .line = 226,
    .routine = XdrFilllllllll,
    .size = sizeof(::Filllllllll),
    .alignment = alignof(::Filllllllll),
    .fields = FilllllllllFields,
};

constexpr Member WiderrrrrrrFields[] = {
    {"map", {Form::opaque, nullptr, 64}, offsetof(::Widerrrrrrr, map)},
};

constinit const Type types::Widerrrrrrr = {
    .name = "Widerrrrrrr",
    .kind = Kind::record,
    .module = "corners",
    .file = "corners.x",
    .line = 227,
    .routine = XdrWiderrrrrrr,
    .size = sizeof(::Widerrrrrrr),
    .alignment = alignof(::Widerrrrrrr),
    .fields = WiderrrrrrrFields,
};

constexpr Member LongggggggggggggggggggggFields[] = {
    {"a", {Form::single, &types::Natural}, offsetof(::Longgggggggggggggggggggg, a)},
};

constinit const Type types::Longgggggggggggggggggggg = {
    .name = "Longgggggggggggggggggggg",
    .kind = Kind::record,
    .module = "corners",
    .file = "corners.x",
    .line = 228,
    .routine = XdrLonggggggggggggggggggggg,
    .size = sizeof(::Longgggggggggggggggggggg),
    .alignment = alignof(::Longgggggggggggggggggggg),
    .fields = LongggggggggggggggggggggFields,
};

constexpr Member LinesFields[] = {
    {"f1mmmmmmmmmmmmmmmmmmmmmmmmm", {Form::single, &types::Natural}, offsetof(::Lines, f1mmmmmmmmmmmmmmmmmmmmmmmmm)},
    {"o2mmmmmmmmmmmmmmmmmmmmmmmm", {Form::optional, &types::Natural}, offsetof(::Lines, o2mmmmmmmmmmmmmmmmmmmmmmmm)},
    {"s1mmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmm", {Form::string, nullptr, 1},
     offsetof(::Lines, s1mmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmm)},
    {"s2xmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmm", {Form::string, nullptr, 10},
     offsetof(::Lines, s2xmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmm)},
};

constinit const Type types::Lines = {
    .name = "Lines",
    .kind = Kind::record,
    .module = "corners",
    .file = "corners.x",
    .line = 230,
    .routine = XdrLines,
    .size = sizeof(::Lines),
    .alignment = alignof(::Lines),
    .fields = LinesFields,
};

namespace tables {
extern const schema::Module of_corners;
}

constexpr const Type* definitions[] = {
    &types::Place,
    &types::Span,
    &types::Numbers,
    &types::At,
    &types::Element,
    &types::Knot,
    &types::Loop,
    &types::Tie,
    &types::Outer,
    &types::Inner,
    &types::OuterSeq,
    &types::Self,
    &types::My,
    &types::Me,
    &types::Late,
    &types::Ladders,
    &types::Rungs,
    &types::Choice,
    &types::Chosen,
    &types::Framed,
    &types::count,
    &types::elements,
    &types::Counts,
    &types::Parts,
    &types::Elements,
    &types::elementsOfALongNamedAlias,
    &types::Rows,
    &types::Words,
    &types::Calls,
    &types::Decimal,
    &types::Decoding,
    &types::Encoding,
    &types::Field,
    &types::List,
    &types::Name,
    &types::Optional,
    &types::Releasing,
    &types::Text,
    &types::Tracing,
    &types::bytes,
    &types::close,
    &types::enumeration,
    &types::field,
    &types::list,
    &types::objectAt,
    &types::open,
    &types::optional,
    &types::parts,
    &types::refuse,
    &types::run,
    &types::text,
    &types::untagged,
    &types::Pass,
    &types::obj,
    &types::object,
    &types::pass,
    &types::xdrs,
    &types::Remarks,
    &types::Remarked,
    &types::Vast,
    &types::Vaster,
    &types::Largest,
    &types::Silent,
    &types::Column,
    &types::Widths,
    &types::Order,
    &types::Fits,
    &types::Spills,
    &types::Heads,
    &types::Tails,
    &types::Filllllllll,
    &types::Widerrrrrrr,
    &types::Longgggggggggggggggggggg,
    &types::Lines,
};

constinit const Module tables::of_corners = {
    .name = "corners",
    .file = "corners.x",
    .doc = "Corners of the generated form: bodies in place, numbers as they are written, names that mean something "
           "elsewhere.",
    .types = definitions,
};

}  // namespace quorva::schema
