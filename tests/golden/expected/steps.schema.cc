// The schema table of steps.x, made from it by quorvaxdrc. Change the interface file, not this one.
#include <quorvapixdr/steps.h>
#include <quorvapixdr/schema.h>

#include <cstddef>
#include <cstdint>

namespace quorva::schema {

namespace tables {
extern const schema::Module of_steps;
}

constinit const Module tables::of_steps = {
    .name = "steps",
    .file = "steps.x",
    .doc = "",
    .types = {},
};

}  // namespace quorva::schema
