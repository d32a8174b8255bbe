// The shared library as a file: its exports are those that the interface files imply; it has no writable data, runs no
// code when it is loaded, and has a bounded size.

#include <inspect/describe.h>
#include <inspect/documentation.h>
#include <quorvapixdr/types/jobs/identity.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

using Names = std::set<std::string>;

namespace {

// Those without a description; every built-in type has a routine too.
const Names primitives = {"XdrEnum",   "XdrLongNatural2", "XdrVoid",  "XdrLongFloat", "XdrOpaque", "XdrOpaque2",
                          "XdrString", "XdrWrapString",   "XdrBytes", "XdrVector",    "XdrArray",  "XdrPointer"};

// The linker name of quorva::description::T().
std::string descriptionFunction(const std::string& type)
{
    return "_ZN6quorva11description" + std::to_string(type.size()) + type + "Ev";
}

Names implied()
{
    Names names = {"ClientsXdrSupport", "ClientsXdrDeserialize", "TestDeserialize", "XdrDeallocate", "DeallocateString",
                   "quorvaEncode", "quorvaDecode", "quorvaExplainEncode", "quorvaExplainDecode",
                   // quorva::explain(const Type&, const void*, size_t), (const Type&, span<const unsigned char>)
                   "_ZN6quorva7explainERKNS_4TypeEPKvm",
                   "_ZN6quorva7explainERKNS_4TypeESt4spanIKhLm18446744073709551615EE"};
    names.insert(primitives.begin(), primitives.end());
    for (const auto* type : quorva::builtinTypes()) {
        names.insert(std::string("Xdr") + type->name);
        names.insert(descriptionFunction(type->name));
    }
    for (const auto* type : quorva::inspect::typesOf(quorva::modules())) {
        names.insert(std::string("Xdr") + type->name);
        names.insert(descriptionFunction(type->name));
        if (type->kind != quorva::TypeKind::enumeration) continue;
        const std::string function = std::string(type->name) + "String";
        names.insert("_Z" + std::to_string(function.size()) + function + "i");  // const char* EString(int)
    }
    return names;
}

// The lines that a tool prints about the library, as words.
std::vector<std::vector<std::string>> outputOf(const std::string& tool)
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

// The exported functions by their linker names. Exported data and weak symbols have the letter of nm before the name.
Names exported()
{
    Names names;
    for (const auto& line : outputOf("nm -D --defined-only"))
        names.insert(line.at(1) == "T" ? line.at(2) : line.at(1) + ' ' + line.at(2));
    return names;
}

#ifndef SANITIZED
struct Section {
    unsigned long size = 0;
    unsigned long address = 0;

    bool holds(unsigned long other) const { return other >= address && other - address < size; }
};

std::map<std::string, Section> sections()
{
    std::map<std::string, Section> all;
    for (const auto& line : outputOf("size -A"))
        if (line.size() == 3 && line[0].starts_with('.')) all[line[0]] = {std::stoul(line[1]), std::stoul(line[2])};
    return all;
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
    const auto others = quorva::inspect::otherPrimitives();
    EXPECT_EQ(Names(others.begin(), others.end()), primitives) << "of the inspector";
}

#ifndef SANITIZED

// State that passes share would be writable data. The start files of the toolchain bring the rest. Constants that hold
// addresses are in .data.rel.ro, which is read-only after the library is loaded.
TEST(Library, hasNoWritableData)
{
    const Names startFiles = {"_DYNAMIC",
                              "_GLOBAL_OFFSET_TABLE_",
                              "__TMC_END__",
                              "__dso_handle",
                              "completed.0",
                              "__do_global_dtors_aux_fini_array_entry",
                              "__frame_dummy_init_array_entry",
                              "DW.ref.__gxx_personality_v0"};
    auto all = sections();
    Names writable;
    for (const auto& line : outputOf("nm --defined-only")) {
        if (line.size() != 3 || std::string("dDbBgGsSuvV").find(line[1]) == std::string::npos) continue;
        if (!all[".data.rel.ro"].holds(std::stoul(line[0], nullptr, 16))) writable.insert(line[2]);
    }
    EXPECT_EQ(without(writable, startFiles), Names());

    EXPECT_LE(all[".data"].size, 2 * sizeof(void*)) << "the library's own handle and the personality of its exceptions";
    EXPECT_LE(all[".bss"].size, sizeof(void*)) << "the start files' flag";
    for (const char* const none : {".tdata", ".tbss", ".data.rel", ".data.rel.local"})
        EXPECT_EQ(all[none].size, 0u) << none;
}

TEST(Library, doesNothingWhenItIsLoaded)
{
    EXPECT_EQ(sections()[".init_array"].size, sizeof(void*)) << "the start files' frame_dummy alone";
    EXPECT_EQ(sections()[".fini_array"].size, sizeof(void*));

    // Relative relocations need no symbol lookup. Only calls of other libraries and the addresses in the start files
    // need one, so their number does not grow with the types.
    const Names relative = {"R_X86_64_RELATIVE", "R_AARCH64_RELATIVE"}, symbolic = {"R_X86_64_64", "R_AARCH64_ABS64"};
    const Names expected = {"R_X86_64_GLOB_DAT",   "R_X86_64_JUMP_SLOT", "R_X86_64_TPOFF64",
                            "R_AARCH64_TLS_TPREL",  // the platform's sink of the thread
                            "R_AARCH64_GLOB_DAT",  "R_AARCH64_JUMP_SLOT"};
    const Names external = {"__gxx_personality_v0"};  // from the data of the start files and of exceptions
    std::size_t lookups = 0;
    for (const auto& line : outputOf("readelf -rW")) {
        if (line.size() < 3 || !line[2].starts_with("R_") || relative.contains(line[2])) continue;
        ++lookups;
        if (symbolic.contains(line[2])) {
            const std::string name = line.size() > 4 ? line[4].substr(0, line[4].find('@')) : "";
            EXPECT_TRUE(external.contains(name)) << "data refers to " << name;
        } else {
            EXPECT_TRUE(expected.contains(line[2])) << line[2];
        }
    }
    EXPECT_GT(lookups, 0u);
    EXPECT_LE(lookups, 40u);
    for (const auto& line : outputOf("readelf -dW"))
        for (const std::string& word : line) EXPECT_EQ(word.find("TEXTREL"), std::string::npos) << "code is relocated";
}

TEST(Library, keepsItsNameAndIsHardened)
{
    Names words;
    for (const char* const tool : {"readelf -dW", "readelf -lW", "nm -D --undefined-only"})
        for (const auto& line : outputOf(tool)) words.insert(line.begin(), line.end());
    EXPECT_TRUE(words.contains("[libQUORVAPIXDR.so.0]")) << "SONAME";
    EXPECT_TRUE(words.contains("BIND_NOW"));
    EXPECT_TRUE(words.contains("GNU_RELRO"));
    EXPECT_TRUE(words.contains("__stack_chk_fail@GLIBC_2.4")) << "stack protector";
#ifdef __CET__
    const std::array<unsigned char, 4> endbr64 = {0xf3, 0x0f, 0x1e, 0xfa};
    for (const XdrRoutine routine : {XdrJobId, XdrLongNatural})  // generated, of the runtime
        EXPECT_EQ(std::memcmp(reinterpret_cast<const void*>(routine), endbr64.data(), endbr64.size()), 0);
#endif
}

TEST(Library, hasABoundedSize)
{
    auto all = sections();
    EXPECT_GT(all[".text"].size, 0u);
    const unsigned long code = all[".text"].size + all[".rodata"].size;
    EXPECT_LE(code, 2'800'000u);
    EXPECT_LE(code + all[".data.rel.ro"].size + all[".relr.dyn"].size + all[".rela.dyn"].size, 3'200'000u);
}

#endif
