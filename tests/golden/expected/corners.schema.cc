// The schema table of corners.x, made from it by quorvaxdrc. Change the interface file, not this one.
#include <quorvapixdr/corners.h>
#include <quorvapixdr/schema.h>

#include <cstddef>
#include <cstdint>

namespace quorva::schema {

namespace types {
extern const schema::Type Place, Span, Numbers, Passage, Element, Elements, elementsOfALongNamedAlias, Rows, Words;

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

constexpr Member PassageFields[] = {
    {"field", {Form::optional, &types::Numbers}, offsetof(::Passage, field)},
    {"pass", {Form::single, &types::Span}, offsetof(::Passage, pass)},
    {"aNameSoLongThatTheLineWhichItStandsInMustBeBrokenAndThatTheNextOneIsHardlyAnyShorterThanThat",
     {Form::list, &types::Place, 7},
     offsetof(::Passage, aNameSoLongThatTheLineWhichItStandsInMustBeBrokenAndThatTheNextOneIsHardlyAnyShorterThanThat)},
};

constinit const Type types::Passage = {
    .name = "Passage",
    .kind = Kind::record,
    .module = "corners",
    .file = "corners.x",
    .line = 32,
    .doc = "Words of the generated code, and a name so long that its lines must be broken somewhere else than "
           "those of all others.",
    .routine = XdrPassage,
    .size = sizeof(::Passage),
    .alignment = alignof(::Passage),
    .fields = PassageFields,
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

constinit const Type types::Elements = {
    .name = "Elements",
    .kind = Kind::definedAs,
    .module = "corners",
    .file = "corners.x",
    .line = 47,
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
    .line = 48,
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
    .line = 49,
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
    .line = 52,
    .doc = "Words that other XDR compilers keep for themselves.",
    .routine = XdrWords,
    .size = sizeof(::Words),
    .alignment = alignof(::Words),
    .fields = WordsFields,
};

namespace tables {
extern const schema::Module of_corners;
}

constexpr const Type* definitions[] = {
    &types::Place,
    &types::Span,
    &types::Numbers,
    &types::Passage,
    &types::Element,
    &types::Elements,
    &types::elementsOfALongNamedAlias,
    &types::Rows,
    &types::Words,
};

constinit const Module tables::of_corners = {
    .name = "corners",
    .file = "corners.x",
    .doc = "Corners of the generated form: bodies in place, numbers as they are written, names that mean something "
           "elsewhere.",
    .types = definitions,
};

}  // namespace quorva::schema
