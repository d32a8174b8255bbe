// The schema table of stair.x, made from it by quorvaxdrc. Change the interface file, not this one.
#include <quorvapixdr/stair.h>
#include <quorvapixdr/schema.h>

#include <cstddef>
#include <cstdint>

namespace quorva::schema {

namespace types {
extern const schema::Type Stair;
}  // namespace types

constexpr Member StairFields[] = {
    {"height", {Form::single, &types::Natural}, offsetof(::Stair, height)},
    {"widths", {Form::vector, &types::Natural, 4}, offsetof(::Stair, widths)},
};

constinit const Type types::Stair = {
    .name = "Stair",
    .kind = Kind::record,
    .module = "stair",
    .file = "stair.x",
    .line = 4,
    .doc = "A body in place, where nothing is named like a scope of the generated code.",
    .routine = XdrStair,
    .size = sizeof(::Stair),
    .alignment = alignof(::Stair),
    .fields = StairFields,
};

namespace tables {
extern const schema::Module of_stair;
}

constexpr const Type* definitions[] = {
    &types::Stair,
};

constinit const Module tables::of_stair = {
    .name = "stair",
    .file = "stair.x",
    .doc = "",
    .types = definitions,
};

}  // namespace quorva::schema
