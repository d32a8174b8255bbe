// Single steps over the tokens, and error recovery.
#include "token_reader.h"

#include <algorithm>
#include <utility>

namespace quorva::compiler {

const Token& TokenReader::token(std::size_t ahead) const
{
    return lexed.tokens[std::min(current + ahead, lexed.tokens.size() - 1)];
}

bool TokenReader::accept(std::string_view word)
{
    if (!at(word)) return false;
    ++current;
    return true;
}

std::string TokenReader::found() const
{
    return atEnd() ? "the end of the file" : inQuotes(token().text);
}

void TokenReader::report(const Span& at, std::string sentence, std::optional<Note> note)
{
    reported = true;
    errors.error(at, std::move(sentence), std::move(note));
}

void TokenReader::reportUnexpected(const std::string& wanted)
{
    reported = true;
    if (token().kind != TokenKind::bad) errors.error(token().at, "expected " + wanted + ", found " + found());
}

bool TokenReader::expect(std::string_view symbol, const std::string& where)
{
    if (accept(symbol)) return true;
    const std::string wanted = "'" + std::string(symbol) + "' " + where;
    const bool closing = symbol == ";" || symbol == "}";
    if (closing && (startsLine() || at("}") || atEnd())) {
        report(positionAfter(previous().at), "expected " + wanted);
        return true;
    }
    reportUnexpected(wanted);
    return false;
}

bool TokenReader::expectName(const std::string& what, std::string& name, Span& at)
{
    if (token().kind == TokenKind::name) {
        name = token().text;
        at = token().at;
        ++current;
        return true;
    }
    if (token().kind == TokenKind::keyword) {
        report(token().at, inQuotes(token().text) + " is a keyword and cannot be the name of " + what);
        return false;
    }
    reportUnexpected("the name of " + what);
    return false;
}

void TokenReader::skip()
{
    if (token().kind == TokenKind::name) module.skipped.emplace(token().text);
    ++current;
}

void TokenReader::skipBraces()
{
    unsigned depth = 0;
    do {
        if (at("{")) ++depth;
        if (at("}")) --depth;
        skip();
    } while (depth > 0 && !atEnd() && !startsDefinitionOnNewLine());
}

void TokenReader::skipInBody(std::string_view separator)
{
    while (!atEnd() && !at("}") && !startsDefinitionOnNewLine()) {
        if (at("{")) {
            skipBraces();
        } else {
            const bool last = at(";") || at(separator);
            skip();
            if (last) return;
        }
    }
}

bool TokenReader::startsDefinition() const
{
    const bool named = token(1).kind == TokenKind::name;
    if (at("typedef") || at("const")) return true;
    if (at("struct") || at("enum")) return named && token(2).is("{");
    if (at("union")) return named && token(2).is("switch");
    return at("import") && named && (token(2).is("/") || (token(2).is(";") && token().at.column == 1));
}

void TokenReader::skipToDefinition(std::size_t start)
{
    if (current == start) skip();
    while (!atEnd()) {
        if (startsDefinition()) return;
        if (at("{")) {
            skipBraces();
            if (at(";")) skip();
            return;
        }
        const bool last = at(";");
        skip();
        if (last) return;
    }
}

bool TokenReader::continuesBody(const Span& opened, const std::string& what)
{
    if (at("}") || errors.full()) return false;
    if (!atEnd() && !(startsDefinition() && (token().at.column == 1 || at("typedef") || at("const")))) return true;
    report(positionAfter(previous().at), "expected '}' at the end of " + what, Note{opened, "opened here"});
    return false;
}

}  // namespace quorva::compiler
