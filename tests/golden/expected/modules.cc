// The modules of the schema table, listed by quorvaxdrc.
#include <quorvapixdr/schema.h>

namespace quorva::schema {

namespace tables {
extern const schema::Module of_colours, of_corners, of_far_0off_corner_09, of_locker, of_stair, of_steps;
}

std::span<const Module* const> modules()
{
    static constexpr const Module* all[] = {
        &tables::of_colours,
        &tables::of_corners,
        &tables::of_far_0off_corner_09,
        &tables::of_locker,
        &tables::of_stair,
        &tables::of_steps,
    };
    return all;
}

}  // namespace quorva::schema
