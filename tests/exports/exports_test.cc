// The symbols of the shared library: what the interface files imply, nothing else, nothing missing.

#include <quorvapixdr/schema.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <set>
#include <string>

using Names = std::set<std::string>;

namespace {

Names implied()
{
    Names names = {
        "ClientsXdrSupport", "ClientsXdrDeserialize", "TestDeserialize", "XdrDeallocate", "DeallocateString",
        "XdrEnum", "XdrLongNatural2", "XdrVoid", "XdrLongFloat", "XdrOpaque", "XdrOpaque2", "XdrString", "XdrWrapString",
        "XdrBytes", "XdrVector", "XdrArray", "XdrPointer",
    };
    for (const auto* type : quorva::schema::builtins()) names.insert(std::string("Xdr") + type->name);
    for (const auto* module : quorva::schema::modules())
        for (const auto* type : module->types) {
            names.insert(std::string("Xdr") + type->name);
            if (type->kind != quorva::schema::Kind::enumeration) continue;
            const std::string function = std::string(type->name) + "String";
            names.insert("_Z" + std::to_string(function.size()) + function + "i");  // const char* EString(int)
        }
    return names;
}

// Global code of the library, by the names that the linker sees. Data or weak symbols are shown with their letter.
Names exported()
{
    const std::string command = "nm -D --defined-only '" LIBRARY_FILE "'";
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    Names names;
    char kind;
    char name[512];
    while (pipe && std::fscanf(pipe.get(), "%*s %c %511s", &kind, name) == 2)
        names.insert(kind == 'T' ? name : std::string(1, kind) + ' ' + name);
    return names;
}

Names without(const Names& names, const Names& others)
{
    Names rest;
    std::set_difference(names.begin(), names.end(), others.begin(), others.end(), std::inserter(rest, rest.end()));
    return rest;
}

}  // namespace

TEST(Exports, areThoseOfTheInterface)
{
    EXPECT_EQ(without(implied(), exported()), Names()) << "missing";
    EXPECT_EQ(without(exported(), implied()), Names()) << "too many";
}
