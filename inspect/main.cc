// quorvaxdr: shows types, and decodes and encodes messages, on the command line.

#include "catalogue.h"
#include "describe.h"
#include "documentation.h"
#include "input.h"
#include "json.h"
#include "support/text.h"
#include "wire.h"

#include <quorvapixdr/codec.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <memory>
#include <new>
#include <sstream>

using namespace quorva;
using namespace quorva::inspect;

namespace {

enum Status { success = 0, systemError = 1, usageError = 2, codingError = 3, bytesLeftOver = 4, inputError = 5 };

constexpr const char* statuses =
    "Exit status:\n"
    "  0  success\n"
    "  1  a file cannot be read, output cannot be written, or memory is exhausted\n"
    "  2  the command line is wrong\n"
    "  3  the message cannot be decoded or encoded\n"
    "  4  bytes are left over after the decoded message (which is still printed)\n"
    "  5  the input is not in the expected form (hex, base64, JSON)\n";

// Thrown to end the program with this status and message. A message has one line for each error.
struct Stop {
    Status status;
    std::string message;
};

// The options of all verbs. A verb uses those that it declares.
struct Options {
    std::string type;
    std::string file = "-";
    std::string pattern, kind, module;
    std::string from = "hex", to;
    std::size_t limit = driverMessage;
    bool provisional = false;
    bool summary = false;
    bool json = false;
};

// A word of the command line: `declare` adds its options to the parser, `run` does its work and returns the status.
struct Verb {
    const char* name;
    const char* summary;
    void (*declare)(CLI::App&, Options&);
    int (*run)(const Options&);
};

// ---- Files and output ----------------------------------------------------------------------------------------------

// Prints the message to standard error, each line after the name of the program.
void printError(const std::string& message)
{
    std::fflush(stdout);
    std::string text;
    for (const std::string_view line : support::linesOf(message)) text.append("quorvaxdr: ").append(line) += '\n';
    std::fwrite(text.data(), 1, text.size(), stderr);
}

// Prints to standard output. Throws Stop if that fails.
void print(std::string_view text)
{
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0)
        throw Stop{systemError, std::string("cannot write standard output: ") + std::strerror(errno)};
}

void printJson(const Json& json)
{
    print(json.dump(2) + '\n');
}

std::string shownName(const std::string& file)
{
    return file == "-" ? "standard input" : file;
}

// The contents of a file, or of standard input for "-". Throws Stop if they cannot be read.
std::string contentsOf(const std::string& file)
{
    constexpr std::size_t most = std::size_t{64} << 20;  // more than any message takes as JSON
    const auto closing = [](std::FILE* stream) { return stream == stdin ? 0 : std::fclose(stream); };
    errno = 0;
    const std::unique_ptr<std::FILE, decltype(closing)> stream(file == "-" ? stdin : std::fopen(file.c_str(), "rb"),
                                                               closing);
    std::string contents;
    char block[65536];
    while (stream && contents.size() <= most) {
        const std::size_t size = std::fread(block, 1, sizeof block, stream.get());
        contents.append(block, size);
        if (size < sizeof block) break;
    }
    if (!stream || std::ferror(stream.get()))
        throw Stop{systemError, shownName(file) + ": cannot be read: " + std::strerror(errno)};
    if (contents.size() > most) throw Stop{codingError, shownName(file) + ": more than 64 MiB, which no message needs"};
    return contents;
}

[[noreturn]] void stopAt(const std::string& file, const InputError& error)
{
    throw Stop{inputError, shownName(file) + ':' + std::to_string(error.line) + ':' + std::to_string(error.column) +
                               ": " + error.what()};
}

Bytes messageFrom(const Options& options)
{
    const std::string contents = contentsOf(options.file);
    try {
        Bytes message = options.from == "hex"      ? parseHex(contents)
                        : options.from == "base64" ? parseBase64(contents)
                                                   : Bytes(contents.begin(), contents.end());
        if (message.size() <= longestMessage) return message;
        throw Stop{codingError, shownName(options.file) + ": " + std::to_string(message.size()) +
                                    " bytes, but a message has at most " + std::to_string(longestMessage)};
    } catch (const InputError& error) {
        stopAt(options.file, error);
    }
}

// ---- Types ---------------------------------------------------------------------------------------------------------

const Type& typeNamed(const std::string& name, const Catalogue& catalogue)
{
    if (const Type* type = catalogue.find(name)) return *type;
    throw Stop{usageError, "there is no type " + name + catalogue.didYouMean(name)};
}

void declareTypes(CLI::App& app, Options& options)
{
    app.add_option("PATTERN", options.pattern,
                   "part of a name, or a whole name with * and ?; the case of letters is ignored");
    app.add_option("--kind", options.kind, "only types of this kind")
        ->check(CLI::IsMember(std::vector<std::string>(std::begin(kindNames), std::end(kindNames))));
    app.add_option("--module", options.module, "only types of modules whose name matches this pattern, such as jobs/*");
    app.add_flag("--provisional", options.provisional, "only types that are provisional, as a whole or in a member");
    auto* const json = app.add_flag("--json", options.json, "print JSON");
    app.add_flag("--summary", options.summary, "print only how many types, routines and layouts there are")
        ->excludes(json);
}

int runTypes(const Options& options)
{
    if (options.summary) {
        print(summaryText(modules()));
        return success;
    }
    const Catalogue catalogue;
    std::vector<const Type*> chosen;
    for (const Type* type : catalogue.types())
        if (matches(options.pattern, type->name) && (options.kind.empty() || options.kind == kindName(*type)) &&
            matches(options.module, moduleName(*type)) && (!options.provisional || isProvisional(*type)))
            chosen.push_back(type);
    if (options.json)
        printJson(typesJson(chosen));
    else
        print(typesText(chosen));
    if (chosen.empty())
        printError("no type matches" +
                   (options.pattern.empty() ? std::string() : catalogue.didYouMean(options.pattern)));
    return success;
}

void declareDescribe(CLI::App& app, Options& options)
{
    app.add_option("TYPE", options.type, "name of the type")->required();
    app.add_flag("--json", options.json, "print JSON");
}

int runDescribe(const Options& options)
{
    const Catalogue catalogue;
    const Type& type = typeNamed(options.type, catalogue);
    if (options.json)
        printJson(descriptionJson(type, catalogue));
    else
        print(descriptionText(type, catalogue));
    return success;
}

// ---- Messages ------------------------------------------------------------------------------------------------------

void declareMessage(CLI::App& app, Options& options, const char* what)
{
    app.add_option("TYPE", options.type, "name of the type")->required();
    app.add_option("FILE", options.file, std::string(what) + "; - is standard input")->capture_default_str();
}

void declareDecode(CLI::App& app, Options& options)
{
    options.to = "trace";
    declareMessage(app, options, "file with the message");
    app.add_option("--from", options.from,
                   "form of the message: hex (digits, or a dump as xxd and hexdump -C print it), raw, base64")
        ->check(CLI::IsMember({"hex", "raw", "base64"}))
        ->capture_default_str();
    app.add_option("--to", options.to, "what to print: trace (an XML document) or json")
        ->check(CLI::IsMember({"trace", "json"}))
        ->capture_default_str();
}

// Decodes the message into the object. `text` gets the trace, if the platform's stream class collects one.
template <class Stream = Xdr>
Pass decodeInto(Object& object, Bytes& message, std::string& text)
{
    const Type& type = object.type();
    if constexpr (Traceable<Stream>) {
        typename Stream::Trace trace;
        const Pass pass = runTraced<Stream>(Mode::decode, type.routine, type.name, object.data(), message, trace);
        if (!trace.complete()) throw std::bad_alloc();
        text = std::string(trace.text()) + '\n';
        return pass;
    } else {
        const Pass pass = runPass(Mode::decode, type.routine, object.data(), message);
        text = "This platform's stream collects no trace.\n";
        return pass;
    }
}

int runDecode(const Options& options)
{
    const Catalogue catalogue;
    const Type& type = typeNamed(options.type, catalogue);
    Bytes message = messageFrom(options);
    const auto refused = [&](const Failure& failure) {
        return Stop{codingError, shownName(options.file) + ": cannot decode " + type.name + ' ' +
                                     explained(failure, message.size())};
    };

    // Read the message by the description first: this bounds the nesting, which the codec does not.
    const Reading reading = readMessage(type, message);
    if (reading.failure && reading.nestsTooDeeply) throw refused(*reading.failure);

    Object object(type);
    std::string trace;
    const Pass pass = decodeInto(object, message, trace);
    if (options.to == "trace")
        print(trace);
    else if (pass.succeeded)
        printJson(toJson(type, object.data()));
    if (!pass.succeeded) throw refused(reading.failure.value_or(Failure{"", pass.length, "not enough memory"}));

    const std::size_t rest = message.size() - pass.length;
    if (rest == 0) return success;
    throw Stop{bytesLeftOver,
               shownName(options.file) + ": " + (rest == 1 ? "1 byte is" : std::to_string(rest) + " bytes are") +
                   " left over after " + type.name + ", from byte " + std::to_string(pass.length) + " on"};
}

void declareEncode(CLI::App& app, Options& options)
{
    options.to = "hex";
    declareMessage(app, options, "file with the value as JSON");
    app.add_option("--to", options.to, "form of the message: hex, raw, base64")
        ->check(CLI::IsMember({"hex", "raw", "base64"}))
        ->capture_default_str();
    app.add_option("--limit", options.limit, "maximum length of the message in bytes")
        ->check(CLI::Range(std::size_t{0}, longestMessage))
        ->capture_default_str();
}

Object objectFrom(const Type& type, const std::string& file)
{
    try {
        return fromJson(type, parseJson(contentsOf(file)));
    } catch (const InputError& error) {
        stopAt(file, error);
    } catch (const JsonError& error) {
        std::string message;
        for (const JsonError::Entry& entry : error.errors) {
            if (!message.empty()) message += '\n';
            message += shownName(file) + ": " + (entry.path.empty() ? "" : entry.path + ": ") + entry.sentence;
        }
        throw Stop{codingError, message};
    }
}

int runEncode(const Options& options)
{
    const Catalogue catalogue;
    const Type& type = typeNamed(options.type, catalogue);
    Object object = objectFrom(type, options.file);
    Bytes message(options.limit);
    const Pass pass = runPass(Mode::encode, type.routine, object.data(), message);
    if (!pass.succeeded) {
        const auto failure = refusalOf(type, object.data(), options.limit);
        throw Stop{codingError,
                   shownName(options.file) + ": cannot encode " + type.name + ' ' +
                       explained(failure.value_or(Failure{"", pass.length, "the codec refuses it"}), options.limit)};
    }
    message.resize(pass.length);
    print(options.to == "hex"      ? hexText(message)
          : options.to == "base64" ? base64Text(message)
                                   : std::string(message.begin(), message.end()));
    return success;
}

constexpr Verb verbs[] = {
    {"types", "List types", declareTypes, runTypes},
    {"describe", "Describe one type", declareDescribe, runDescribe},
    {"decode", "Decode a message", declareDecode, runDecode},
    {"encode", "Encode JSON to a message", declareEncode, runEncode},
};

// Refuses a missing or unknown verb, because the parser's own message for it does not suggest any.
void checkVerb(int count, char** words)
{
    if (count < 2) throw Stop{usageError, "a verb is missing; `quorvaxdr --help` lists them"};
    if (words[1][0] == '-') return;
    std::vector<std::string_view> names;
    for (const Verb& verb : verbs) names.emplace_back(verb.name);
    if (std::ranges::find(names, words[1]) == names.end())
        throw Stop{usageError, std::string("there is no verb ") + words[1] + didYouMean(words[1], names)};
}

int run(int count, char** words)
{
    checkVerb(count, words);
    CLI::App app("Shows types and messages of the service API.", "quorvaxdr");
    app.require_subcommand(1);
    app.footer(statuses);
    Options options[std::size(verbs)];
    for (std::size_t i = 0; i < std::size(verbs); ++i) {
        CLI::App& sub = *app.add_subcommand(verbs[i].name, verbs[i].summary);
        sub.footer(statuses);
        verbs[i].declare(sub, options[i]);
    }
    try {
        app.parse(count, words);
    } catch (const CLI::Success& help) {
        std::ostringstream text;
        app.exit(help, text, text);
        print(text.str());
        return success;
    } catch (const CLI::ParseError& error) {
        throw Stop{usageError, error.what()};
    }
    std::size_t chosen = 0;
    while (!app.got_subcommand(verbs[chosen].name)) ++chosen;
    return verbs[chosen].run(options[chosen]);
}

}  // namespace

int main(int count, char** words)
{
    std::signal(SIGPIPE, SIG_IGN);  // a write to a closed pipe fails with EPIPE instead
    try {
        return run(count, words);
    } catch (const Stop& stop) {
        printError(stop.message);
        return stop.status;
    } catch (const Refusal& refusal) {
        printError(refusal.reason);
        return codingError;
    } catch (const std::bad_alloc&) {
        printError("not enough memory");
        return systemError;
    } catch (const std::exception& error) {
        printError(error.what());
        return systemError;
    }
}
