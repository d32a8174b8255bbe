// Reads the command line.

#include "command_line.h"

#include "complete.h"
#include "inspect/catalogue.h"
#include "reference.h"
#include "support/text.h"
#include "values.h"

#include <algorithm>

namespace quorva::inspect {

namespace {

constexpr const char* version = "quorvaxdr " QUORVA_VERSION;

constexpr const char* messageVerbs = "Verbs for messages";
constexpr const char* typeVerbs = "Verbs for types";

constexpr const char* decodes = "3  the message cannot be decoded";
constexpr const char* encodes = "3  the message cannot be encoded";
constexpr const char* reads = "4  the input is not of its form, or an interface file has errors";
constexpr const char* readsInterfaces = "4  an interface file has errors";

// Lines of statuses, for a footer.
std::string statusText(std::initializer_list<const char*> own)
{
    std::string text = "Exit status:\n  0  success\n";
    bool isTwoPrinted = false;
    for (const char* const line : own) {
        if (line[0] > '2' && !std::exchange(isTwoPrinted, true)) text += "  2  the command line is wrong\n";
        text.append("  ").append(line) += '\n';
    }
    return text + "  5  a file cannot be read, output cannot be written, or memory is exhausted\n";
}

constexpr const char* programDescription =
    "Shows what messages of the service API hold, byte by byte, finds what is wrong with them, and makes new ones.\n"
    "\n"
    "VERB says what to do, and `quorvaxdr VERB --help` shows its options. TYPE is the name of a type, as `quorvaxdr "
    "types` lists them. INPUT is a file; - or nothing is standard input.\n";

constexpr const char* programFooter =
    "Forms of the input:\n"
    "A message can be raw bytes, JSON, hex (digits, dumps of many tools, arrays of many languages), base64 or the "
    "argument or result of a call in a capture of packets. --from names the form. Without it, the first that fits is "
    "taken, and standard error tells it:\n"
    "  1. pcap or pcapng, if the file begins as such a capture\n"
    "  2. raw, if there are bytes that no text has\n"
    "  3. JSON, if the text is an object, array or string\n"
    "  4. hex\n"
    "  5. base64\n"
    "A text that can be two of them is refused.\n"
    "\n"
    "Examples:\n"
    "  quorvaxdr guess message.hex             print the types that a message can have\n"
    "  quorvaxdr annotate JobId message.hex    print what each of its bytes means\n"
    "  quorvaxdr sample JobId --to hex         print an invented message to begin with\n"
    "  quorvaxdr decode capture.pcap           print the calls and replies of a capture, one on a line\n"
    "\n"
    "Environment:\n"
    "  NO_COLOR   nothing is coloured if this is not empty; files and pipes never are\n"
    "\n";

std::string footerOf(const Verb& verb, const std::string& statuses)
{
    std::string text = "Examples:\n";
    for (const std::string_view line : support::linesOf(verb.examples))
        if (!line.empty()) text.append("  ").append(line) += '\n';
    return text + '\n' + statuses;
}

std::string seeHelp(const CLI::App& app)
{
    return "; see `" + (app.get_parent() ? "quorvaxdr " + app.get_name() : app.get_name()) + " --help`";
}

// "; did you mean --from?" for an option that the parser does not have.
std::string suggestedOption(const CLI::App& app, const std::string& word)
{
    std::vector<std::string> names;
    for (const CLI::Option* option : app.get_options())
        for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    const std::vector<std::string_view> views(names.begin(), names.end());
    const std::string suggestion = didYouMean(word, views);
    return suggestion.empty() ? seeHelp(app) : suggestion;
}

// Makes the parser refuse --flag=value.
void refuseFlagValues(CLI::App& app)
{
    for (CLI::Option* option : app.get_options([](CLI::Option* each) { return !takesValue(*each); }))
        option->disable_flag_override();
}

// Refuses words that the verb does not take.
void checkExtras(const CLI::App& app)
{
    const std::vector<std::string> extras = app.remaining();
    if (extras.empty()) return;
    const std::string word = extras.front().substr(0, extras.front().find('='));
    if (word.size() > 1 && word[0] == '-')
        throw Stop{usageError, app.get_name() + " has no option " + word + suggestedOption(app, word)};
    throw Stop{usageError,
               app.get_name() + " does not take the argument " + extras.front() + "; usage: " + usageOf(app)};
}

// A sentence for an error of the parser, whose own text begins with the option's name.
std::string sentenceOf(const CLI::ParseError& error, const CLI::App& app)
{
    const std::string raw = error.what();
    const std::string first = raw.substr(0, raw.find_first_of(": "));
    const CLI::Option* option = app.get_option_no_throw(first);
    if (!option) option = app.get_option_no_throw("--" + first);  // a flag with a value
    if (!option) return raw + seeHelp(app);
    const std::string name = option->get_name();
    if (dynamic_cast<const CLI::RequiredError*>(&error)) return name + " is missing; usage: " + usageOf(app);
    if (dynamic_cast<const CLI::ExcludesError*>(&error))
        return name + " and " + raw.substr(raw.rfind(' ') + 1) + " exclude each other";
    if (!takesValue(*option)) return name + " takes no value";
    if (dynamic_cast<const CLI::ValidationError*>(&error)) return name + raw.substr(name.size() + 1);
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error)) {
        if (option->count() > 1) return name + " is given more than once";
        const std::vector<std::string> words = wordsOf(*option);
        return name + " needs a value" +
               (words.empty() ? ", as in `" + name + ' ' + option->get_type_name() + '`' : ": " + alternatives(words));
    }
    return raw + seeHelp(app);
}

}  // namespace

CommandLine::CommandLine() : program(programDescription, "quorvaxdr")
{
    program.set_help_flag("-h,--help", "show this help");
    program.set_version_flag("--version", version, "show the version");
    program.add_flag("--man", wantsManual, "print the manual page, for `man -l -`");
    takeOneOf(program.add_option("--completion", shell, "print the script of completions for a shell"),
              {"bash", "zsh", "fish"});
    refuseFlagValues(program);
    program.require_subcommand(0, 1);
    program.footer(programFooter +
                   statusText({"1  findings, a difference, nothing found, or bytes left over after a message",
                               "3  the message cannot be decoded or encoded", reads}));

    add(makeGuess(), messageVerbs, statusText({"1  no type fits the whole message", reads}));
    add(makeDecode(), messageVerbs,
        statusText({"1  bytes are left over after a message, or --lines or a capture has no message",
                    "3  a message cannot be decoded, or the capture lacks a part of it", reads}));
    add(makeAnnotate(), messageVerbs,
        statusText({"1  bytes are left over, or the message has no such part", decodes, reads}));
    add(makeValidate(), messageVerbs, statusText({"1  there are findings", decodes, reads}));
    add(makeOpen(), messageVerbs, statusText({reads}));
    add(makeDiff(), messageVerbs, statusText({"1  the messages differ", decodes, reads}));
    add(makeEncode(), messageVerbs, statusText({encodes, reads}));
    add(makeSample(), messageVerbs, statusText({encodes, readsInterfaces}));
    add(makeTypes(), typeVerbs, statusText({"1  no type matches", readsInterfaces}));
    add(makeDescribe(), typeVerbs, statusText({readsInterfaces}));
    add(makeFind(), typeVerbs, statusText({"1  nothing matches", readsInterfaces}));
    add(makeSchema(), typeVerbs, statusText({readsInterfaces}));
}

void CommandLine::add(std::unique_ptr<Verb> verb, const char* group, const std::string& statuses)
{
    CLI::App& parser = *program.add_subcommand(verb->name, verb->summary);
    parser.group(group);
    parser.footer(footerOf(*verb, statuses));
    parser.allow_extras();
    verb->declare(parser);
    parser.add_option("--interface", verb->interfaces.files, "the types of this interface file are known, too")
        ->allow_extra_args(false)
        ->type_name("FILE.x")
        ->group(interfaceGroup);
    parser.add_option("-I", verb->interfaces.folders, "the imports of the interface files are searched for here")
        ->allow_extra_args(false)
        ->type_name("DIR")
        ->group(interfaceGroup);
    refuseFlagValues(parser);
    entries.push_back({std::move(verb), &parser});
}

bool CommandLine::isVerb(const std::string& word) const
{
    return std::ranges::any_of(entries, [&](const Entry& entry) { return word == entry.verb->name; });
}

// Refuses a missing or unknown verb.
void CommandLine::checkFirst(const std::vector<std::string>& words) const
{
    if (words.empty() || words.front().empty())
        throw Stop{usageError, "a verb is missing; `quorvaxdr --help` lists them"};
    const std::string& word = words.front();
    if (isVerb(word)) return;
    if (word.starts_with('-')) {
        const std::string name = word.substr(0, word.find('='));
        if (name.size() > 1 && program.get_option_no_throw(name)) return;
        if (std::ranges::any_of(words, [&](const std::string& other) { return isVerb(other); }))
            throw Stop{usageError, "the option " + name + " comes before the verb; usage: " + usageOf(program)};
        throw Stop{usageError, "there is no option " + name + suggestedOption(program, name)};
    }
    std::vector<std::string_view> names;
    for (const Entry& entry : entries) names.emplace_back(entry.verb->name);
    if (Catalogue().find(word))
        throw Stop{usageError, word + " is a type; a verb comes before it, as in `quorvaxdr describe " + word + '`'};
    const std::string suggestion = didYouMean(word, names);
    throw Stop{usageError, "there is no verb " + word + (suggestion.empty() ? seeHelp(program) : suggestion)};
}

Verb* CommandLine::read(const std::vector<std::string>& words)
{
    if (!words.empty() && words.front() == completeOption) {
        text = completions(program, {words.begin() + 1, words.end()});
        return nullptr;
    }
    checkFirst(words);
    const auto chosen = std::ranges::find_if(entries, [&](const Entry& entry) { return words[0] == entry.verb->name; });
    const CLI::App& parser = chosen == entries.end() ? program : *chosen->parser;
    try {
        program.parse(std::vector<std::string>(words.rbegin(), words.rend()));
    } catch (const CLI::CallForHelp&) {
        text = helpText(parser);
        return nullptr;
    } catch (const CLI::CallForVersion&) {
        text = std::string(version) + '\n';
        return nullptr;
    } catch (const CLI::ExtrasError& error) {
        throw Stop{usageError, words.front() + " takes no argument " + words.back()};
    } catch (const CLI::ParseError& error) {
        if (chosen != entries.end()) checkExtras(parser);
        throw Stop{usageError, sentenceOf(error, parser)};
    }
    if (chosen != entries.end()) {
        checkExtras(parser);
        return chosen->verb.get();
    }
    text = wantsManual ? manualPage(program, version) : completionScript(shell);
    return nullptr;
}

}  // namespace quorva::inspect
