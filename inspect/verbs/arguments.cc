// Reads the shared arguments.

#include "arguments.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
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
    throw Stop{inputError, shownName(file) + ':' + std::to_string(error.line) + ':' + std::to_string(error.column) +
                               ": " + error.what()};
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

void InputArgument::declare(CLI::App& app, const char* what)
{
    app.add_option("INPUT", file, std::string(what) + "; - is standard input")->capture_default_str();
    declareForm(app);
}

void InputArgument::declareFile(CLI::App& app, const char* name, const char* what)
{
    app.add_option(name, file, std::string(what) + "; - is standard input")->required();
}

void InputArgument::declareForm(CLI::App& app)
{
    app.add_option("--from", from,
                   "form of the message: hex (digits, or a dump as xxd and hexdump -C print it), raw, base64")
        ->check(CLI::IsMember({"hex", "raw", "base64"}))
        ->capture_default_str();
}

Bytes InputArgument::message(const std::string& form) const
{
    const std::string contents = contentsOf(file);
    try {
        Bytes message = form == "hex"      ? parseHex(contents)
                        : form == "base64" ? parseBase64(contents)
                                           : Bytes(contents.begin(), contents.end());
        if (message.size() <= longestMessage) return message;
        throw Stop{inputError, shown() + ": " + std::to_string(message.size()) + " bytes, but a message has at most " +
                                   std::to_string(longestMessage)};
    } catch (const InputError& error) {
        stopAt(file, error);
    }
}

}  // namespace quorva::inspect
