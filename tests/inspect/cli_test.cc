// The command line: what each kind of outcome prints and returns.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

namespace {

std::string contentsOf(const std::string& file)
{
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

struct Case {
    const char* arguments;
    std::string input;
    int status;
    const char* out;  // part of standard output
    const char* err;  // part of standard error; nothing is printed there where this is ""
};

const Case cases[] = {
    {"--help", "", 0, "Exit status:", ""},
    {"decode --help", "", 0, "--from", ""},
    {"", "", 2, "", "quorvaxdr: which verb?"},
    {"decod", "", 2, "", "quorvaxdr: there is no verb decod; did you mean decode?"},
    {"decode Natural --from hx", "", 2, "", "--from"},
    {"decode", "", 2, "", "TYPE is required"},
    {"encode Natural --limit 65536", "", 2, "", "--limit"},
    {"describe Naturel", "", 2, "", "quorvaxdr: there is no type Naturel; did you mean Natural?"},

    {"types 'dividersun*'", "", 0, "DividersUnion  union  jobs/covers\n", ""},
    {"types natural --kind builtin --json", "", 0, "\"name\": \"ShortNatural\"", ""},
    {"types --module jobs/covers --kind enum", "", 0, "DividersEnum", ""},
    {"types DividersUnoin", "", 0, "", "quorvaxdr: no type fits; did you mean DividersUnion"},
    {"describe DividersUnion", "", 0, "0 DividersEnabled   DividersStruct dStruct\n", ""},
    {"describe HostName --json", "", 0, "\"maximum\": 64", ""},

    {"decode DividersUnion", "00000001", 0,
     "<DividersUnion>\n  <dEnum><DividersDisabled>1</DividersDisabled></dEnum>\n  "
     "<DividersUnionUnion></DividersUnionUnion>\n"
     "</DividersUnion>\n",
     ""},
    {"decode DividersUnion --to json", "00000001", 0, "{\n  \"dEnum\": \"DividersDisabled\"\n}\n", ""},
    {"decode HostName - --from base64 --to json", "AAAAA0FCQwA=", 0, "\"ABC\"\n", ""},
    {"decode Integer --from raw", "\xff\xff\xff\xff", 0, "<Integer>-1</Integer>\n", ""},
    {"decode DividersUnion", "00000007", 3,
     "<dEnum><Error_in_Function>7</Error_in_Function></dEnum>\n  <DividersUnionUnion>",
     "quorvaxdr: standard input: cannot decode DividersUnion at DividersUnionUnion, byte 0 of 4: "
     "dEnum 7 has no arm in DividersUnion\n"},
    {"decode DividersUnion --to json", "00000007", 3, "", "has no arm"},
    {"decode Natural", "00000001 00", 4, "<Natural>1</Natural>\n",
     "quorvaxdr: standard input: 1 byte is left over behind Natural, from byte 4 on\n"},
    {"decode Natural", "0000\n00x1", 5, "", "quorvaxdr: standard input:2:3: 'x' is no hexadecimal digit\n"},
    {"decode Natural --from raw", std::string(65536, 'x'), 3, "", "65536 bytes, but a message has at most 65535"},
    {"decode Natural /no/such/file", "", 1, "",
     "quorvaxdr: /no/such/file: cannot be read: No such file or directory\n"},
    {"decode Natural /", "", 1, "", "quorvaxdr: /: cannot be read: Is a directory\n"},

    {"encode HostName", "\"ABC\"", 0, "00000003 41424300\n", ""},
    {"encode HostName --to base64", "\"ABC\"", 0, "AAAAA0FCQwA=\n", ""},
    {"encode HostName --to raw", "\"ABCD\"", 0, "\4ABCD", ""},
    {"encode HostName --limit 7", "\"ABC\"", 3, "",
     "cannot encode HostName at byte 4 of 7: the message is longer than the limit"},
    {"encode HostName", "\"ABC", 5, "", "quorvaxdr: standard input:1:5: no JSON: "},
    {"encode DividersUnion", "{\"dEnum\": \"Enabled\"}", 3, "",
     "quorvaxdr: standard input: /dEnum: \"Enabled\" is no enumerator of DividersEnum; did you mean "
     "DividersEnabled?\n"},

    {"types >/dev/full", "", 1, "", "quorvaxdr: cannot write standard output: No space left on device\n"},
    {"encode HostName >/dev/full", "\"ABC\"", 1, "",
     "quorvaxdr: cannot write standard output: No space left on device\n"},
    {"types >&-", "", 1, "", "quorvaxdr: cannot write standard output: "},
};

TEST(CommandLine, prints_and_returns)
{
    const std::string base = testing::TempDir() + "quorvaxdr_test_" + std::to_string(getpid());
    const std::string in = base + ".in", out = base + ".out", err = base + ".err";
    for (const Case& c : cases) {
        SCOPED_TRACE(c.arguments);
        std::ofstream(in, std::ios::binary) << c.input;
        // Redirections of the case come last, and so win.
        const std::string command =
            std::string("<") + in + " >" + out + " 2>" + err + " '" QUORVAXDR_PATH "' " + c.arguments;
        const int outcome = std::system(command.c_str());
        ASSERT_TRUE(WIFEXITED(outcome));
        const std::string printed = contentsOf(out), told = contentsOf(err);
        EXPECT_EQ(WEXITSTATUS(outcome), c.status) << told;
        EXPECT_NE(printed.find(c.out), std::string::npos) << printed;
        EXPECT_NE(told.find(c.err), std::string::npos) << told;
        EXPECT_EQ(told.empty(), *c.err == '\0') << told;
    }
    for (const std::string& file : {in, out, err}) std::remove(file.c_str());
}

TEST(CommandLine, a_closed_pipe_is_an_error)
{
    const int outcome = pclose(popen("exec '" QUORVAXDR_PATH "' types 2>/dev/null", "r"));
    ASSERT_TRUE(WIFEXITED(outcome));
    EXPECT_EQ(WEXITSTATUS(outcome), 1);
}

}  // namespace
