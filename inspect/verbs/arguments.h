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

// The argument INPUT and its form.
class InputArgument {
public:
    // `what` completes "INPUT: file with ...".
    void declare(CLI::App& app, const char* what);

    // The file's name, for messages.
    std::string shown() const { return shownName(file); }

    // The bytes of one message. Throws Stop.
    Bytes message() const;

private:
    std::string file = "-";
    std::string from = "hex";
};

}  // namespace quorva::inspect
