// Prints TYPE(name) for each type of the interface files. Built-in types have no routine of their own in plain XDR.

#include "tested_modules.h"

#include <cstdio>

int main()
{
    for (const auto* type : quorva::inspect::typesOf(quorva::test::testedModules()))
        std::printf("TYPE(%s)\n", type->name);
}
