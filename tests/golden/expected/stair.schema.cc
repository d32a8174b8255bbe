// The schema table of stair.x, made from it by quorvaxdrc. Change the interface file, not this one.
#include <quorvapixdr/stair.h>
#include <quorvapixdr/schema.h>

#include <cstddef>
#include <cstdint>

namespace quorva::schema {

namespace types {
extern const schema::Type Upper, Lower, Stair;
}  // namespace types

constexpr Member UpperFields[] = {
    {"below", {Form::optional, &types::Lower}, offsetof(::Upper, below)},
};

constinit const Type types::Upper = {
    .name = "Upper",
    .kind = Kind::record,
    .module = "stair",
    .file = "stair.x",
    .line = 4,
    .doc = "The first of a file, and one that leads back to it.",
    .routine = XdrUpper,
    .size = sizeof(::Upper),
    .alignment = alignof(::Upper),
    .fields = UpperFields,
};

constexpr Member LowerFields[] = {
    {"above", {Form::optional, &types::Upper}, offsetof(::Lower, above)},
};

constinit const Type types::Lower = {
    .name = "Lower",
    .kind = Kind::record,
    .module = "stair",
    .file = "stair.x",
    .line = 5,
    .routine = XdrLower,
    .size = sizeof(::Lower),
    .alignment = alignof(::Lower),
    .fields = LowerFields,
};

constexpr Member StairFields[] = {
    {"height", {Form::single, &types::Natural}, offsetof(::Stair, height)},
    {"widths", {Form::vector, &types::Natural, 4}, offsetof(::Stair, widths)},
};

constinit const Type types::Stair = {
    .name = "Stair",
    .kind = Kind::record,
    .module = "stair",
    .file = "stair.x",
    .line = 9,
    .doc = "A body in place, where nothing is named like a scope of the generated code.\n"
           "  steepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteep "
           "and high",
    .routine = XdrStair,
    .size = sizeof(::Stair),
    .alignment = alignof(::Stair),
    .fields = StairFields,
};

namespace tables {
extern const schema::Module of_stair;
}

constexpr const Type* definitions[] = {
    &types::Upper,
    &types::Lower,
    &types::Stair,
};

constinit const Module tables::of_stair = {
    .name = "stair",
    .file = "stair.x",
    .doc = "",
    .types = definitions,
};

}  // namespace quorva::schema
