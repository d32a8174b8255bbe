// Interface files that are read at run time. The generated descriptions of the same files are the oracle.

#include "inspect/interface.h"
#include "explain/layout.h"
#include "inspect/catalogue.h"
#include "inspect/describe.h"
#include "inspect/object.h"
#include "inspect/sample.h"
#include "inspect/users.h"
#include "locker_types.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

using namespace quorva;
using namespace quorva::inspect;

namespace {

namespace fs = std::filesystem;

// All files of the library and of the golden tests, with the generated modules that correspond to them.
struct Everything {
    Everything()
    {
        for (const char* folder : {TYPES_DIR, GOLDEN_DIR}) files.folders.emplace_back(folder);
        generated.assign(modules().begin(), modules().end());
        generated.insert(generated.end(), exampleModules().begin(), exampleModules().end());
        for (const Module* module : generated) {
            const bool isExample = std::ranges::find(exampleModules(), module) != exampleModules().end();
            files.files.push_back(std::string(isExample ? GOLDEN_DIR : TYPES_DIR) + '/' + module->file);
        }
    }

    InterfaceFiles files;
    std::vector<const Module*> generated;
};

// The module that was read in the place of the generated one.
const Module& counterpart(const Interfaces& interfaces, const Module& generated)
{
    const auto all = interfaces.modules();
    return **std::ranges::find_if(all,
                                  [&](const Module* each) { return std::string_view(each->name) == generated.name; });
}

TEST(Interfaces, describeTypesAsGeneratedCodeDoes)
{
    const Everything every;
    const Catalogue before;
    const Interfaces interfaces(every.files);
    const Catalogue after;
    EXPECT_TRUE(interfaces.notes().empty());
    ASSERT_EQ(interfaces.modules().size(), every.generated.size());
    for (const Module* module : every.generated) {
        const Module& read = counterpart(interfaces, *module);
        EXPECT_STREQ(read.text, module->text);
        ASSERT_EQ(read.types.size(), module->types.size()) << module->name;
        for (std::size_t i = 0; i < read.types.size(); ++i) {
            const Type &type = *read.types[i].type, &expected = *module->types[i].type;
            EXPECT_EQ(after.find(expected.name), &type);
            EXPECT_EQ(descriptionText(type, after), descriptionText(expected, before));
            EXPECT_EQ(descriptionJson(type, after), descriptionJson(expected, before));
            EXPECT_EQ(type.size, expected.size) << type.name;
            EXPECT_EQ(type.alignment, expected.alignment) << type.name;
            for (const Enumerator& each : module->types[i].enumerators)
                for (const std::int64_t value : {each.value, each.value + 1})
                    EXPECT_EQ(numberText(type, value), numberText(expected, value)) << type.name;
        }
    }
}

struct Coded {
    std::string trace;
    Bytes message;
};

template <class Decode, class Encode>
Coded coded(const Type& type, std::size_t size, Decode decode, Encode encode)
{
    TraceText trace;
    Object object(type);
    EXPECT_TRUE(decode(object.data(), trace).succeeded) << type.name;
    Bytes again(size);
    const Pass pass = encode(object.data(), again);
    EXPECT_TRUE(pass.succeeded) << type.name;
    again.resize(pass.length);
    return {std::string(trace.text()), again};
}

TEST(Interfaces, codeMessagesAsGeneratedCodeDoes)
{
    const Everything every;
    const Interfaces interfaces(every.files);
    Sampler sampler;
    for (const Module* module : every.generated) {
        const Module& read = counterpart(interfaces, *module);
        for (std::size_t i = 0; i < read.types.size(); ++i) {
            const Type &type = *read.types[i].type, &expected = *module->types[i].type;
            for (const Recipe& recipe : {Recipe{Extent::most}, Recipe{Extent::random, 1}, Recipe{Extent::random, 2}}) {
                Bytes message = sampler.sample(expected, recipe);
                ASSERT_EQ(sampler.sample(type, recipe), message) << type.name;
                if (message.size() > longestMessage) continue;  // of one type, which is too large for any stream
                const Coded here = coded(
                    type, message.size(),
                    [&](void* at, TraceText& trace) { return traceObject(Mode::decode, type, at, message, trace); },
                    [&](void* at, Bytes& again) { return codeObject(Mode::encode, type, at, again); });
                const Coded there = coded(
                    expected, message.size(),
                    [&](void* at, TraceText& trace) {
                        return runTraced(Mode::decode, expected.routine, expected.name, at, message, trace);
                    },
                    [&](void* at, Bytes& again) { return runPass(Mode::encode, expected.routine, at, again); });
                ASSERT_EQ(here.trace, there.trace) << type.name;
                ASSERT_EQ(here.message, there.message) << type.name;
            }
        }
    }
}

// A folder with one interface file, own.x.
class OwnFile {
public:
    explicit OwnFile(const std::string& text) : folder(testing::TempDir() + "interface_test")
    {
        fs::create_directories(folder);
        std::ofstream(folder + "/own.x") << text;
    }
    ~OwnFile() { fs::remove_all(folder); }

    InterfaceFiles files() const { return {{folder + "/own.x"}, {folder}, TYPES_DIR}; }
    const std::string folder;
};

TEST(Interfaces, hideTypesAndReplaceModulesWhileTheyLive)
{
    const Type& generated = *Catalogue().find("JobId");
    const OwnFile own("struct JobId { int number; };\n");
    {
        const Interfaces interfaces(own.files());
        EXPECT_EQ(interfaces.notes(), std::vector{own.folder + "/own.x: JobId hides the type of jobs/identity"});
        EXPECT_STREQ(moduleName(*Catalogue().find("JobId")), "own");
    }
    EXPECT_EQ(Catalogue().find("JobId"), &generated);

    const OwnFile user("import jobs/identity;\nstruct OwnRequest { JobId id; JobId *other; };\n");
    const Interfaces interfaces(user.files());
    EXPECT_TRUE(interfaces.notes().empty());
    const Catalogue catalogue;
    const Type& request = *catalogue.find("OwnRequest");
    EXPECT_EQ(request.members[0].use.type, catalogue.find("JobId"));
    EXPECT_NE(request.members[0].use.type, &generated);
    EXPECT_EQ(request.size, 16U);
    const std::vector<std::string> users = Users(catalogue.types()).direct(generated);
    for (const char* each : {"OwnRequest.id", "OwnRequest.other", "JobSOAParameters.jobId"})
        EXPECT_NE(std::ranges::find(users, each), users.end()) << each;
}

std::string typedefs(int count)
{
    std::string text = "typedef int T0;\n";
    for (int i = 1; i < count; ++i)
        text += "typedef T" + std::to_string(i - 1) + (i % 2 ? " *T" : " T") + std::to_string(i) + ";\n";
    return text;
}

TEST(Interfaces, areRefusedWithTheDiagnosticsOfTheCompiler)
{
    const std::string arrays = "typedef opaque A[65535];\nstruct B { A a[1000]; };\n";
    const struct {
        std::string text;
        const char* sentence;  // null for a file that is accepted
    } cases[] = {
        {"struct A { Missing m; };\n", "own.x:1:12: error: unknown type 'Missing'"},
        {"import no/where;\n", "module 'no/where' is not found"},
        {"struct A { A a; };\n", "'A' contains itself"},
        {arrays, nullptr},
        {arrays + "struct C { B b[2]; };\n", "own.x:3:8: error: struct 'C' takes 131070000 bytes in memory"},
        {typedefs(8), nullptr},
        {typedefs(9), "own.x:9:12: error: typedef 'T8' begins a row of more than 8 typedefs"},
    };
    for (const auto& each : cases) {
        const OwnFile own(each.text);
        try {
            const Interfaces interfaces(own.files());
            EXPECT_FALSE(each.sentence) << each.text;
        } catch (const InterfaceError& error) {
            ASSERT_TRUE(each.sentence) << error.what();
            EXPECT_NE(std::string(error.what()).find(each.sentence), std::string::npos) << error.what();
            EXPECT_FALSE(error.unreadable);
        }
    }
    try {
        const Interfaces interfaces({{"/no/such.x"}, {}, ""});
        ADD_FAILURE();
    } catch (const InterfaceError& error) {
        EXPECT_STREQ(error.what(), "cannot read '/no/such.x': No such file or directory");
        EXPECT_TRUE(error.unreadable);
    }
    EXPECT_EQ(installedInterfaces("/no/such/bin"), "");
}

}  // namespace
