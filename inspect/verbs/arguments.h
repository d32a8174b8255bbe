// The arguments that most verbs share: a type, an input, and the interface files that define further types.
#pragma once

#include "inspect/catalogue.h"
#include "inspect/input.h"
#include "verb.h"

#include <quorvapixdr/codec.h>

#include <optional>
#include <string>

namespace quorva::inspect {

// The name of a file in messages: "standard input" for "-".
std::string shownName(const std::string& file);

// The contents of a file, or of standard input for "-". Throws Stop if they cannot be read or exceed 64 MiB.
std::string contentsOf(const std::string& file);

// Throws Stop with the place and the sentence of the error.
[[noreturn]] void stopAt(const std::string& file, const InputError& error);

// The argument TYPE.
class TypeArgument {
public:
    void declare(CLI::App& app);

    // The type with this name, of the API or of an interface file. Throws Stop if there is none.
    const Type& type() const;

    // All known types.
    const Catalogue& catalogue() const;

private:
    std::string name;
    mutable std::optional<Catalogue> known;
};

// An argument that names the file of a message, and the form of the file.
class InputArgument {
public:
    // Declares the argument INPUT and the option --from. `what` describes the file: "file with the message".
    void declare(CLI::App& app, const char* what);

    // Declares only a required argument, for a verb with several inputs of one form.
    void declareFile(CLI::App& app, const char* name, const char* what);
    void declareForm(CLI::App& app);

    // The file's name, for messages.
    std::string shown() const { return shownName(file); }

    const std::string& form() const { return from; }

    // The bytes of one message. Throws Stop.
    Bytes message() const { return message(from); }
    Bytes message(const std::string& form) const;

private:
    std::string file = "-";
    std::string from = "hex";
};

}  // namespace quorva::inspect
