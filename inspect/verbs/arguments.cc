// Reads the shared arguments.

#include "arguments.h"

#include "inspect/forms.h"
#include "inspect/json.h"
#include "output.h"
#include "reference.h"
#include "values.h"

#include <quorvapixdr/explain.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>

namespace quorva::inspect {

std::string shownName(const std::string& file)
{
    return file == "-" ? "standard input" : file;
}

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
    if (contents.size() > most) throw Stop{inputError, shownName(file) + ": more than 64 MiB, which no message needs"};
    return contents;
}

void stopAt(const std::string& file, const InputError& error)
{
    throw Stop{inputError,
               file + ':' + std::to_string(error.line) + ':' + std::to_string(error.column) + ": " + error.what()};
}

void TypeArgument::declare(CLI::App& app)
{
    app.add_option("TYPE", name, "name of the type")->required();
}

const Catalogue& TypeArgument::catalogue() const
{
    if (!known) known.emplace();
    return *known;
}

const Type& TypeArgument::type() const
{
    if (const Type* type = catalogue().find(name)) return *type;
    throw Stop{usageError, "there is no type " + name + catalogue().didYouMean(name)};
}

Bytes encoded(const Type& type, std::string_view json, const std::string& file, std::size_t limit)
{
    try {
        Object object = fromJson(type, json);
        Bytes message(limit);
        const Pass pass = codeObject(Mode::encode, type, object.data(), message);
        if (!pass.succeeded) {
            const auto failure = explain(type, object.data(), limit);
            throw Stop{codingError,
                       file + ": cannot encode " + type.name + ' ' +
                           explained(failure.value_or(Failure{"", pass.length, "the codec refuses it"}), limit)};
        }
        message.resize(pass.length);
        return message;
    } catch (const InputError& error) {
        stopAt(file, error);
    } catch (const JsonError& error) {
        std::string message;
        for (const JsonError::Entry& entry : error.errors())
            message += (message.empty() ? "" : "\n") + file + ':' + entry.text();
        if (*error.remainder()) message += '\n' + file + ": " + error.remainder();
        throw Stop{error.isMalformed() ? inputError : codingError, message};
    }
}

void InputArgument::declare(CLI::App& app, const char* what)
{
    app.add_option("INPUT", file, std::string(what) + "; - is standard input")->capture_default_str();
    declareForm(app);
    declareMessage(app);
}

void InputArgument::declareMessage(CLI::App& app)
{
    takeNumber(app.add_option("--message", number, "of a capture: the message with this number"), 1,
               std::numeric_limits<std::uint64_t>::max(), "NUMBER");
}

std::string InputArgument::shown() const
{
    return shownName(file) + (number ? ": message " + std::to_string(*number) : "");
}

bool InputArgument::isCapture() const
{
    return from == "pcap" || (from.empty() && isCaptureFile(file));
}

CapturedBody InputArgument::captured() const
{
    if (!number)
        throw Stop{usageError, shown() + ": a capture of packets; choose a message with --message NUMBER, as " +
                                   "`quorvaxdr decode --from pcap` lists them"};
    CapturedBody body = capturedBody(file, *number);
    printError(shown() + ": " + body.place);
    return body;
}

void InputArgument::declareForm(CLI::App& app)
{
    takeOneOf(app.add_option("--from", from, "form of the input; recognised if it is not given"),
              {"raw", "hex", "base64", "json", "pcap"});
}

Bytes InputArgument::message(const Type* type) const
{
    if (isCapture()) return captured().bytes;
    if (number) throw Stop{usageError, "--message is for captures, and " + shownName(file) + " is none"};
    const std::string contents = contentsOf(file);
    try {
        if (from == "hex") return readHex(contents).bytes;
        if (from == "base64") return parseBase64(contents);
        if (from == "json" && type) return encoded(*type, contents, shown(), longestMessage);
        if (from == "raw") {
            if (contents.size() <= longestMessage) return Bytes(contents.begin(), contents.end());
            throw Stop{inputError, shown() + ": " + std::to_string(contents.size()) +
                                       " bytes, but a message has at most " + std::to_string(longestMessage)};
        }
        if (!from.empty()) throw Stop{usageError, "this verb reads no " + from};
        Recognised recognised =
            type ? recognise(contents,
                             {InputForm::raw, InputForm::hex, InputForm::base64, InputForm::json, InputForm::pcap})
                 : recognise(contents, {InputForm::raw, InputForm::hex, InputForm::base64, InputForm::pcap});
        if (recognised.form == InputForm::pcap)
            throw Stop{inputError, shown() + ": a capture of packets; --from pcap reads it from a pipe"};
        printError(shown() + ": " + recognised.phrase);
        if (recognised.form == InputForm::json) return encoded(*type, contents, shown(), longestMessage);
        return std::move(recognised.bytes);
    } catch (const InputError& error) {
        if (!type && from.empty() && Json::accept(contents))
            throw Stop{inputError,
                       shown() + ": JSON, which needs a type; `quorvaxdr encode TYPE` makes the message of it"};
        stopAt(shown(), error);
    }
}

void MessageArguments::declare(CLI::App& app)
{
    parser = &app;
    app.add_option("TYPE", words[0], "name of the type; a capture whose program is known needs none");
    app.add_option("INPUT", words[1], "file with the message; - is standard input")->default_str("-");
    file.declareForm(app);
    file.declareMessage(app);
}

void MessageArguments::resolve()
{
    const bool isOne = !words[0].empty() && words[1].empty();
    const bool isFile = isOne && !subject.catalogue().find(words[0]) &&
                        (file.form() == "pcap" || (file.form().empty() && isCaptureFile(words[0])));
    if (isFile) {
        file.choose(words[0]);
    } else {
        subject.choose(words[0]);
        if (!words[1].empty()) file.choose(words[1]);
    }
    if (!subject.isGiven() && !file.isCapture()) throw Stop{usageError, "TYPE is missing; usage: " + usageOf(*parser)};
    if (subject.isGiven()) subject.type();
}

MessageArguments::Read MessageArguments::read() const
{
    if (!file.isCapture()) return {subject.type(), file.message(&subject.type())};
    CapturedBody body = file.captured();
    const Type* const type = subject.isGiven() ? &subject.type() : body.type;
    if (type) return {*type, std::move(body.bytes)};
    if (body.unknown.empty()) throw Stop{found, shown() + ": its type is void"};
    throw Stop{usageError, shown() + ": " + body.unknown + "; name a TYPE, or the --interface of the program"};
}

void OutputOption::declare(CLI::App& app, std::vector<std::string> forms)
{
    option = takeOneOf(app.add_option("--to", to, "what to print"), forms)->capture_default_str();
}

std::string messageText(const Bytes& message, const std::string& form)
{
    if (form == "hex") return hexText(message);
    if (form == "base64") return base64Text(message);
    if (form == "c") return arrayText(message);
    return {message.begin(), message.end()};
}

}  // namespace quorva::inspect
