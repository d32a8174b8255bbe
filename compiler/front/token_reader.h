// Reads the tokens of one interface file in order, reports what is unexpected, and skips to where parsing can continue.
#pragma once

#include "lexer.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quorva::compiler {

// The current position in the tokens of a module. Every error is reported once; text that is skipped is noted in
// `Module::skipped`. The module and the list of errors must outlive the reader.
class TokenReader {
public:
    // Lexes the module's source.
    TokenReader(Module& lexedModule, Diagnostics& diagnostics)
        : module(lexedModule), errors(diagnostics), lexed(lex(lexedModule, diagnostics))
    {
    }

    const LexResult& file() const { return lexed; }
    std::size_t position() const { return current; }

    // The current token, or one further on. Beyond the last token all are `end`.
    const Token& token(std::size_t ahead = 0) const;
    const Token& previous() const { return lexed.tokens[current - 1]; }

    // True if the current token is the word.
    bool at(std::string_view word) const { return token().is(word); }
    bool atEnd() const { return token().kind == TokenKind::end; }
    bool startsLine() const { return current == 0 || token().at.line > previous().at.line; }

    // True if the current tokens can only begin a definition: no declaration begins with them.
    bool startsDefinition() const;

    void advance() { ++current; }

    // Advances past the word if it is the current token; else returns false.
    bool accept(std::string_view word);

    // Advances past the symbol, or reports that it is missing; `where` completes the sentence. Returns true if parsing
    // can go on: a missing ';' or '}' at the end of a line counts as read.
    bool expect(std::string_view symbol, const std::string& where);

    // Advances past the name of `what` and sets `name` and `at`, or reports that there is no name and returns false.
    bool expectName(const std::string& what, std::string& name, Span& at);

    // True if the body that began at `opened` has more members. It ends at its '}'. At the end of the file, and at a
    // new definition, the '}' is reported as missing. Also false once the list of errors is full.
    bool continuesBody(const Span& opened, const std::string& what);

    void report(const Span& at, std::string sentence, std::optional<Note> note = std::nullopt);

    // Reports the current token where `wanted` should be, unless the lexer reported it.
    void reportUnexpected(const std::string& wanted);

    // True if an error was reported since clearErrors(), or markErrors() was called.
    bool hasErrors() const { return reported; }
    void clearErrors() { reported = false; }
    void markErrors() { reported = true; }

    // Skips the current token.
    void skip();

    // Skips from a '{' to after its '}'.
    void skipBraces();

    // Skips to after the next ';' or separator, or to before the '}' that ends the body.
    void skipInBody(std::string_view separator);

    // Skips the rest of a definition that began at the token `start`.
    void skipToDefinition(std::size_t start);

protected:
    Module& module;
    Diagnostics& errors;

private:
    std::string found() const;
    bool startsDefinitionOnNewLine() const { return startsDefinition() && token().at.column == 1; }

    LexResult lexed;
    std::size_t current = 0;
    bool reported = false;
};

}  // namespace quorva::compiler
