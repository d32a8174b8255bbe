// The modules whose types the tests run over: the library's, and the example modules, which have every form once.
#pragma once

#include <inspect/documentation.h>

#include <algorithm>
#include <string_view>
#include <vector>

namespace quorva {
// The modules of the CMake target `every_form`.
std::span<const Module* const> exampleModules();
}  // namespace quorva

namespace quorva::test {

// Also adds the example modules to those that the inspector knows.
inline const std::vector<const Module*>& testedModules()
{
    static const std::vector<const Module*> tested = [] {
        addModules(exampleModules());
        std::vector<const Module*> all(modules().begin(), modules().end());
        std::ranges::copy_if(exampleModules(), std::back_inserter(all), [](const Module* module) {
            const std::string_view name = module->name;
            return name == "colours" || name == "locker" || name == "station";
        });
        return all;
    }();
    return tested;
}

}  // namespace quorva::test
