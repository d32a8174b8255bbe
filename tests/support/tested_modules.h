// The modules that properties are tested over: the library's, and the teaching module, which has every form once.
#pragma once

#include <quorvapixdr/schema.h>

#include <vector>

namespace quorva::schema::tables {
extern const Module of_colours, of_locker;
}

namespace quorva::test {

inline std::vector<const schema::Module*> testedModules()
{
    std::vector<const schema::Module*> modules(schema::modules().begin(), schema::modules().end());
    modules.push_back(&schema::tables::of_colours);
    modules.push_back(&schema::tables::of_locker);
    return modules;
}

}  // namespace quorva::test
