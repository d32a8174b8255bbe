// The modules that properties are tested over: the library's, and the teaching module, which has every form once.
#pragma once

#include <inspect/documentation.h>

#include <algorithm>
#include <string_view>
#include <vector>

namespace quorva {
// Those of `every_form`: the teaching module, what it imports, the station that it belongs to, and the corner cases.
std::span<const Module* const> teachingModules();
}  // namespace quorva

namespace quorva::test {

// The inspector knows the teaching modules from then on.
inline const std::vector<const Module*>& testedModules()
{
    static const std::vector<const Module*> tested = [] {
        inspect::addModules(teachingModules());
        std::vector<const Module*> all(modules().begin(), modules().end());
        std::ranges::copy_if(teachingModules(), std::back_inserter(all), [](const Module* module) {
            const std::string_view name = module->name;
            return name == "colours" || name == "locker" || name == "station";
        });
        return all;
    }();
    return tested;
}

}  // namespace quorva::test
