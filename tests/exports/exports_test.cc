// The shared library as a file: its symbols are what the interface files imply, and it has no state, no work to do when it
// is loaded, and a bounded size.

#include <quorvapixdr/schema.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

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

// The lines that a tool prints about the library, each as its words.
std::vector<std::vector<std::string>> told(const std::string& tool)
{
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen((tool + " '" LIBRARY_FILE "'").c_str(), "r"), pclose);
    std::vector<std::vector<std::string>> lines(1);
    std::string word;
    for (int c; pipe && (c = std::fgetc(pipe.get())) != EOF;) {
        if (c != ' ' && c != '\t' && c != '\n') {
            word += static_cast<char>(c);
            continue;
        }
        if (!word.empty()) lines.back().push_back(std::move(word));
        word.clear();
        if (c == '\n') lines.emplace_back();
    }
    lines.pop_back();
    return lines;
}

// Global code of the library, by the names that the linker sees. Data or weak symbols are shown with their letter.
Names exported()
{
    Names names;
    for (const auto& line : told("nm -D --defined-only")) names.insert(line.at(1) == "T" ? line.at(2) : line.at(1) + ' ' + line.at(2));
    return names;
}

#ifndef SANITIZED
std::map<std::string, unsigned long> sectionSizes()
{
    std::map<std::string, unsigned long> sizes;
    for (const auto& line : told("size -A"))
        if (line.size() == 3 && line[0].starts_with('.')) sizes[line[0]] = std::stoul(line[1]);
    return sizes;
}
#endif

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

#ifndef SANITIZED

// What a pass shares with another one would be here. The rest is what every shared library of this toolchain begins with.
TEST(Library, hasNoWritableData)
{
    const Names startFiles = {"_DYNAMIC", "_GLOBAL_OFFSET_TABLE_", "__TMC_END__", "__dso_handle", "completed.0",
                              "__do_global_dtors_aux_fini_array_entry", "__frame_dummy_init_array_entry",
                              "DW.ref.__gxx_personality_v0"};
    Names writable;
    for (const auto& line : told("nm --defined-only"))
        if (line.size() == 3 && std::string("dDbBgGsSuvV").find(line[1]) != std::string::npos) writable.insert(line[2]);
    EXPECT_EQ(without(writable, startFiles), Names());

    auto sizes = sectionSizes();
    EXPECT_LE(sizes[".data"], 2 * sizeof(void*)) << "the library's own handle and the personality of its exceptions";
    EXPECT_LE(sizes[".bss"], sizeof(void*)) << "the start files' flag";
    for (const char* const none : {".tdata", ".tbss", ".data.rel", ".data.rel.local", ".data.rel.ro"}) EXPECT_EQ(sizes[none], 0u) << none;
}

TEST(Library, doesNothingWhenItIsLoaded)
{
    EXPECT_EQ(sectionSizes()[".init_array"], sizeof(void*)) << "the start files' frame_dummy alone";
    EXPECT_EQ(sectionSizes()[".fini_array"], sizeof(void*));

    // Calls of other libraries, and the few addresses that the start files hold: nothing that grows with the types.
    const Names expected = {"R_X86_64_64", "R_X86_64_GLOB_DAT", "R_X86_64_JUMP_SLOT", "R_X86_64_RELATIVE",
                            "R_X86_64_TPOFF64", "R_AARCH64_TLS_TPREL",  // the thread's sink of traces, which the platform holds
                            "R_AARCH64_ABS64", "R_AARCH64_GLOB_DAT", "R_AARCH64_JUMP_SLOT", "R_AARCH64_RELATIVE"};
    std::size_t relocations = 0;
    for (const auto& line : told("readelf -rW")) {
        if (line.size() < 3 || !line[2].starts_with("R_")) continue;
        ++relocations;
        EXPECT_TRUE(expected.contains(line[2])) << line[2];
    }
    EXPECT_GT(relocations, 0u);
    EXPECT_LE(relocations, 40u);
    for (const auto& line : told("readelf -dW"))
        for (const std::string& word : line) EXPECT_EQ(word.find("TEXTREL"), std::string::npos) << "its code is patched";
}

TEST(Library, hasABoundedSize)
{
    auto sizes = sectionSizes();
    EXPECT_GT(sizes[".text"], 0u);
    EXPECT_LE(sizes[".text"] + sizes[".rodata"], 4'000'000u);
}

#endif
