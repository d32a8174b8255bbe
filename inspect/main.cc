// quorvaxdr: shows types, and decodes, examines and encodes messages, on the command line.

#include "catalogue.h"
#include "support/text.h"
#include "verbs/output.h"
#include "verbs/verb.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <new>
#include <sstream>

using namespace quorva;
using namespace quorva::inspect;

namespace {

constexpr const char* statusHelp =
    "Exit status:\n"
    "  0  success\n"
    "  1  findings, a difference, nothing found, or bytes left over after a message\n"
    "  2  the command line is wrong\n"
    "  3  the message cannot be decoded or encoded\n"
    "  4  the input is not of its form (hex, base64, JSON, ...)\n"
    "  5  a file cannot be read, output cannot be written, or memory is exhausted\n";

std::vector<std::unique_ptr<Verb>> allVerbs()
{
    std::vector<std::unique_ptr<Verb>> verbs;
    verbs.push_back(makeDecode());
    verbs.push_back(makeEncode());
    verbs.push_back(makeAnnotate());
    verbs.push_back(makeValidate());
    verbs.push_back(makeGuess());
    verbs.push_back(makeDiff());
    verbs.push_back(makeSample());
    verbs.push_back(makeTypes());
    verbs.push_back(makeDescribe());
    verbs.push_back(makeFind());
    verbs.push_back(makeSchema());
    return verbs;
}

// The text of --help after the options.
std::string footerOf(const Verb& verb)
{
    std::string text = "Examples:\n";
    for (const std::string_view line : support::linesOf(verb.examples))
        if (!line.empty()) text.append("  ").append(line) += '\n';
    return text + '\n' + statusHelp;
}

// The options of the parser, for suggestions: "--from", "--to", ...
std::string suggestedOption(const CLI::App& app, const std::string& word)
{
    std::vector<std::string> names;
    for (const CLI::Option* option : app.get_options())
        for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    const std::vector<std::string_view> views(names.begin(), names.end());
    return didYouMean(word.substr(0, word.find('=')), views);
}

// Refuses words that the verb does not take. The parser's own sentence would not suggest any.
void checkExtras(const CLI::App& app, const std::string& verb)
{
    const std::vector<std::string> extras = app.remaining();
    if (extras.empty()) return;
    const std::string& word = extras.front();
    if (word.size() > 1 && word[0] == '-')
        throw Stop{usageError, verb + " has no option " + word + suggestedOption(app, word)};
    throw Stop{usageError, verb + " does not take the argument " + word};
}

// A sentence for an error of the parser.
std::string sentenceOf(const CLI::ParseError& error)
{
    std::string text = error.what();
    std::ranges::replace(text, '\n', ' ');
    if (const auto blank = text.find(" is required"); blank != std::string::npos)
        return text.substr(0, blank) + " is missing";
    const auto colon = text.find(": ");
    return colon == std::string::npos ? text : "the value of " + text;
}

// Refuses a missing or unknown verb, because the parser's own message for it does not suggest any.
void checkVerb(int count, char** words, const std::vector<std::unique_ptr<Verb>>& verbs)
{
    if (count < 2) throw Stop{usageError, "a verb is missing; `quorvaxdr --help` lists them"};
    const std::string_view word = words[1];
    if (word == "--help" || word == "-h" || word == "--version") return;
    std::vector<std::string_view> names;
    for (const auto& verb : verbs) names.emplace_back(verb->name);
    if (std::ranges::find(names, word) == names.end())
        throw Stop{usageError, "there is no verb " + std::string(word) + didYouMean(word, names)};
}

// The folder of the running program.
std::string programFolder()
{
    std::error_code failed;
    return std::filesystem::read_symlink("/proc/self/exe", failed).parent_path().string();
}

// Reads the interface files that the command line names, and runs the verb.
int runWithInterfaces(Verb& verb)
{
    if (verb.interfaces.files.empty()) {
        if (verb.interfaces.folders.empty()) return verb.run();
        throw Stop{usageError, "-I is for --interface, which is missing"};
    }
    verb.interfaces.installed = installedInterfaces(programFolder());
    try {
        const Interfaces interfaces(verb.interfaces);
        for (const std::string& note : interfaces.notes()) printError(note);
        return verb.run();
    } catch (const InterfaceError& error) {
        throw Stop{error.unreadable ? systemError : inputError, "the interface files cannot be used", error.what()};
    }
}

int run(int count, char** words)
{
    const std::vector<std::unique_ptr<Verb>> verbs = allVerbs();
    checkVerb(count, words, verbs);
    CLI::App app("Shows types and messages of the service API.", "quorvaxdr");
    app.set_version_flag("--version", "quorvaxdr " QUORVA_VERSION);
    app.require_subcommand(1);
    app.footer(statusHelp);
    for (const auto& verb : verbs) {
        CLI::App& sub = *app.add_subcommand(verb->name, verb->summary);
        sub.footer(footerOf(*verb));
        sub.allow_extras();
        verb->declare(sub);
        sub.add_option("--interface", verb->interfaces.files, "interface file whose types are known, too")
            ->allow_extra_args(false)
            ->type_name("FILE.x");
        sub.add_option("-I", verb->interfaces.folders, "folder below which imports are searched for")
            ->allow_extra_args(false)
            ->type_name("DIR");
    }
    try {
        app.parse(count, words);
    } catch (const CLI::Success& help) {
        std::ostringstream text;
        app.exit(help, text, text);
        print(text.str());
        return success;
    } catch (const CLI::ParseError& error) {
        for (const auto& verb : verbs)
            if (verb->name == std::string_view(words[1])) checkExtras(*app.get_subcommand(verb->name), verb->name);
        throw Stop{usageError, sentenceOf(error) + "; see `quorvaxdr " + words[1] + " --help`"};
    }
    const auto chosen = std::ranges::find_if(verbs, [&](const auto& verb) { return app.got_subcommand(verb->name); });
    checkExtras(*app.get_subcommand((*chosen)->name), (*chosen)->name);
    return runWithInterfaces(**chosen);
}

}  // namespace

int main(int count, char** words)
{
    std::signal(SIGPIPE, SIG_IGN);  // a write to a closed pipe fails with EPIPE instead
    try {
        return run(count, words);
    } catch (const Stop& stop) {
        printError(stop.message, stop.details);
        return stop.status;
    } catch (const ClosedPipe&) {
        return success;
    } catch (const Refusal& refusal) {
        printError(refusal.what());
        return codingError;
    } catch (const std::bad_alloc&) {
        printError("not enough memory");
        return systemError;
    } catch (const std::exception& error) {
        printError(error.what());
        return systemError;
    }
}
