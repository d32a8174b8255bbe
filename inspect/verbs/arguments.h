// The arguments that most verbs share: a type, an input, and the interface files that define further types.
#pragma once

#include "captures.h"
#include "inspect/catalogue.h"
#include "inspect/input.h"
#include "verb.h"

#include <quorvapixdr/codec.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorva::inspect {

// The name of a file in messages: "standard input" for "-".
std::string shownName(const std::string& file);

// The contents of a file, or of standard input for "-". Throws Stop if they cannot be read or exceed 64 MiB.
std::string contentsOf(const std::string& file);

// Throws Stop with the place and the sentence of the error; `file` is the shown name.
[[noreturn]] void stopAt(const std::string& file, const InputError& error);

// The argument TYPE.
class TypeArgument {
public:
    void declare(CLI::App& app);

    // For a verb that declares its arguments itself.
    void choose(const std::string& word) { name = word; }

    // True if a word was chosen or given.
    bool isGiven() const { return !name.empty(); }

    // The type with this name, of the API or of an interface file. Throws Stop if there is none.
    const Type& type() const;

    // All known types.
    const Catalogue& catalogue() const;

private:
    std::string name;
    mutable std::optional<Catalogue> known;
};

// The bytes of the message of a JSON text. `file` is for messages. Throws Stop.
Bytes encoded(const Type& type, std::string_view json, const std::string& file, std::size_t limit);

// An argument that names the file of a message, and the form of the file.
class InputArgument {
public:
    // Declares the argument INPUT and the options --from and --message. `what` describes the file: "file with the
    // message".
    void declare(CLI::App& app, const char* what);

    // For a verb that declares its arguments itself: declares only --from, or --message, and takes the file, or the
    // number of the message in a capture.
    void declareForm(CLI::App& app);
    void declareMessage(CLI::App& app);
    void choose(const std::string& path) { file = path; }
    void chooseForm(const std::string& form) { from = form; }
    void chooseMessage(std::uint64_t chosen) { number = chosen; }

    // The file's name, for messages, with the number of the message if it is chosen.
    std::string shown() const;

    // As given: "-" is standard input.
    const std::string& name() const { return file; }

    // The form that the user named; empty if it is to be recognised.
    const std::string& form() const { return from; }

    // The bytes of one message of the type; a null type excludes JSON. Tells on standard error which form was
    // recognised. Throws Stop.
    Bytes message(const Type* type) const;

    // True if the input is a capture: the user says so, or the file begins as one.
    bool isCapture() const;

    // The number of the message in a capture.
    const std::optional<std::uint64_t>& messageNumber() const { return number; }

    // The argument or result of the chosen message of a capture. Tells on standard error where it is. Throws Stop.
    CapturedBody captured() const;

private:
    std::string file = "-";
    std::string from;
    std::optional<std::uint64_t> number;
};

// The arguments TYPE and INPUT of a verb for one message. The message of a capture needs no TYPE if its program is
// known.
class MessageArguments {
public:
    void declare(CLI::App& app);

    // Finds out which arguments are given. Throws Stop. The functions below need it.
    void resolve();

    const InputArgument& input() const { return file; }
    std::string shown() const { return file.shown(); }

    // The type that the user names, or null.
    const Type* namedType() const { return subject.isGiven() ? &subject.type() : nullptr; }

    struct Read {
        const Type& type;
        Bytes message;
    };
    // The message and its type. Throws Stop.
    Read read() const;

private:
    CLI::App* parser = nullptr;
    std::string words[2];
    TypeArgument subject;
    InputArgument file;
};

// The form of an output: one of "trace", "json", "hex", "raw", "base64", "c".
class OutputOption {
public:
    explicit OutputOption(const char* usual) : to(usual) {}

    void declare(CLI::App& app, std::vector<std::string> forms);

    const std::string& form() const { return to; }
    bool isGiven() const { return option && option->count() > 0; }

private:
    std::string to;
    const CLI::Option* option = nullptr;
};

// A message as hex, raw, base64 or a C array.
std::string messageText(const Bytes& message, const std::string& form);

}  // namespace quorva::inspect
