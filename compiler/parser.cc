// A predictive parser over the token list. The language has no nested constructs, so it needs no recursion: a body inside
// a body is a fault and is skipped by counting braces.
#include "parser.h"

#include "lexer.h"

#include <array>
#include <string>
#include <string_view>
#include <utility>

namespace quorva::compiler {

namespace {

constexpr std::string_view provisionalMark = "@provisional";

class Parser {
public:
    Parser(Module& module, Diagnostics& faults)
        : module_(module), faults_(faults), lexed_(lex(module, faults)), used_(lexed_.comments.size(), false)
    {
    }

    void run();

private:
    // Tokens
    const Token& token(std::size_t ahead = 0) const;
    bool at(std::string_view word) const { return token().is(word); }
    bool atEnd() const { return token().kind == TokenKind::end; }
    bool accept(std::string_view word);
    bool startsLine() const { return pos_ == 0 || token().at.line > lexed_.tokens[pos_ - 1].at.line; }
    const Token& previous() const { return lexed_.tokens[pos_ - 1]; }

    // Faults and the way on
    std::string found() const;
    void fault(const Span& at, std::string sentence, std::optional<Note> note = std::nullopt);
    void unexpected(const std::string& wanted);
    bool expect(std::string_view symbol, const std::string& where);
    bool expectName(const std::string& what, std::string& name, Span& at);
    void skipOne();
    void skipBraces();
    void skipInBody();
    void skipToDefinition(std::size_t start);
    bool startsDefinition() const;
    bool bodyGoesOn(const Span& opened, const std::string& what);

    // Documentation
    std::vector<DocLine> docAbove(std::size_t first);
    void addDocBehind(std::vector<DocLine>& doc, std::size_t last);
    void addDocInside(std::vector<DocLine>& doc, std::size_t first, std::size_t last);
    std::string memberDoc(const std::vector<DocLine>& lines);
    void moduleDoc();
    void document(Definition& definition, const std::vector<DocLine>& lines);

    // Grammar
    bool definition();
    bool import();
    bool program();
    bool constant(Definition& definition);
    bool typeDefinition(Definition& definition);
    bool body(Definition& definition);
    bool enumeration(Definition& definition);
    bool record(Definition& definition);
    bool discriminated(Definition& definition);
    bool arm(Definition& definition);
    bool declaration(Declaration& declaration, const std::string& what);
    bool declarator(Declaration& declaration, const std::string& what);
    bool bound(Declaration& declaration, std::string_view close);
    bool typeSpecifier(TypeRef& type);
    bool unsignedSpecifier(TypeRef& type);
    bool taggedSpecifier(TypeRef& type);
    bool value(Value& value, const std::string& what);
    bool endOfDeclaration(const std::string& what);

    Module& module_;
    Diagnostics& faults_;
    Lexed lexed_;
    std::vector<bool> used_;  // comments that belong to something already
    std::size_t pos_ = 0;
    std::size_t bodyDocAt_ = 0;  // the '{' of the definition at hand, 0 where it has none
    bool broken_ = false;        // a fault was reported since the definition began
};

std::string_view kindWord(Kind kind)
{
    constexpr std::array<std::string_view, 5> words = {"constant", "enumeration", "struct", "union", "type"};
    return words[static_cast<std::size_t>(kind)];
}

std::string called(const Definition& definition)
{
    std::string words(kindWord(definition.kind));
    if (!definition.name.empty()) words += " " + quoted(definition.name);
    return words;
}

// Tokens

const Token& Parser::token(std::size_t ahead) const
{
    return lexed_.tokens[std::min(pos_ + ahead, lexed_.tokens.size() - 1)];
}

bool Parser::accept(std::string_view word)
{
    if (!at(word)) return false;
    ++pos_;
    return true;
}

// Faults and the way on

std::string Parser::found() const
{
    return atEnd() ? "the end of the file" : quoted(token().text);
}

void Parser::fault(const Span& at, std::string sentence, std::optional<Note> note)
{
    broken_ = true;
    faults_.error(at, std::move(sentence), std::move(note));
}

void Parser::unexpected(const std::string& wanted)
{
    broken_ = true;
    if (token().kind != TokenKind::bad) faults_.error(token().at, "expected " + wanted + ", found " + found());
}

// A symbol that is missing at the end of a line is reported there and taken as read; true means that parsing can go on.
bool Parser::expect(std::string_view symbol, const std::string& where)
{
    if (accept(symbol)) return true;
    const std::string wanted = "'" + std::string(symbol) + "' " + where;
    const bool closing = symbol == ";" || symbol == "}";
    if (closing && (startsLine() || at("}") || atEnd())) {
        fault(behind(previous().at), "expected " + wanted);
        return true;
    }
    unexpected(wanted);
    return false;
}

bool Parser::expectName(const std::string& what, std::string& name, Span& at)
{
    if (token().kind == TokenKind::name) {
        name = token().text;
        at = token().at;
        ++pos_;
        return true;
    }
    if (token().kind == TokenKind::keyword) {
        fault(token().at, quoted(token().text) + " is a word of the language and cannot be the name of " + what);
        return false;
    }
    unexpected("the name of " + what);
    return false;
}

void Parser::skipOne()
{
    if (atEnd()) return;
    if (token().kind == TokenKind::name) module_.skipped.emplace(token().text);
    ++pos_;
}

// From a '{' to behind its '}'.
void Parser::skipBraces()
{
    unsigned depth = 0;
    do {
        if (at("{")) ++depth;
        if (at("}")) --depth;
        skipOne();
    } while (depth > 0 && !atEnd() && !(startsDefinition() && token().at.column == 1));
}

// To behind the next ';', or before the '}' that ends the body.
void Parser::skipInBody()
{
    while (!atEnd() && !at("}") && !(startsDefinition() && token().at.column == 1)) {
        if (at("{")) {
            skipBraces();
        } else {
            const bool last = at(";");
            skipOne();
            if (last) return;
        }
    }
}

// Whether the text at hand can only be the start of a definition: no declaration begins like this.
bool Parser::startsDefinition() const
{
    const bool named = token(1).kind == TokenKind::name;
    if (at("typedef") || at("const")) return true;
    if (at("struct") || at("enum")) return named && token(2).is("{");
    if (at("union")) return named && token(2).is("switch");
    return at("import") && named && (token(2).is("/") || (token(2).is(";") && token().at.column == 1));
}

// Leaves the rest of a definition whose parsing began at token `start`.
void Parser::skipToDefinition(std::size_t start)
{
    if (pos_ == start) skipOne();
    while (!atEnd()) {
        if (startsDefinition()) return;
        if (at("{")) {
            skipBraces();
            if (at(";")) skipOne();
            return;
        }
        const bool last = at(";");
        skipOne();
        if (last) return;
    }
}

// False at the end of a body. A new definition in the middle of one means that the '}' was forgotten.
bool Parser::bodyGoesOn(const Span& opened, const std::string& what)
{
    if (at("}") || faults_.full()) return false;
    if (!atEnd() && !(startsDefinition() && (token().at.column == 1 || at("typedef") || at("const")))) return true;
    fault(behind(previous().at), "expected '}' at the end of " + what, Note{opened, "opened here"});
    return false;
}

// Documentation

std::pair<std::size_t, std::size_t> commentsBefore(const Lexed& lexed, std::size_t token)
{
    const std::size_t end =
        token + 1 < lexed.tokens.size() ? lexed.tokens[token + 1].firstComment : lexed.comments.size();
    return {lexed.tokens[token].firstComment, end};
}

// The comments directly above a token, up to an empty line.
std::vector<DocLine> Parser::docAbove(std::size_t first)
{
    auto [begin, end] = commentsBefore(lexed_, first);
    const bool opening = first > 0 && lexed_.tokens[first - 1].is("{");
    unsigned below = lexed_.tokens[first].at.line;
    std::size_t from = end;
    while (from > begin) {
        const Comment& comment = lexed_.comments[from - 1];
        if (used_[from - 1] || comment.lastLine + 1 < below || !(comment.alone || opening)) break;
        below = comment.at.line;
        --from;
    }
    std::vector<DocLine> lines;
    for (; from < end; ++from) {
        used_[from] = true;
        appendDoc(lines, lexed_.comments[from]);
    }
    return lines;
}

// The comments behind a token on its line, with the lines below that continue them in the same column.
void Parser::addDocBehind(std::vector<DocLine>& doc, std::size_t last)
{
    if (last + 1 >= lexed_.tokens.size()) return;
    const auto [begin, end] = commentsBefore(lexed_, last + 1);
    const Comment* above = nullptr;
    for (std::size_t i = begin; i < end; ++i) {
        const Comment& comment = lexed_.comments[i];
        const bool behindToken = comment.at.line == lexed_.tokens[last].at.line;
        const bool continues = above && !above->block && !comment.block && comment.alone &&
                               comment.at.line == above->at.line + 1 && comment.at.column == above->at.column;
        if (used_[i] || !(behindToken || continues)) return;
        used_[i] = true;
        appendDoc(doc, comment);
        above = &comment;
    }
}

// Every comment from the token `first` to the token `last`.
void Parser::addDocInside(std::vector<DocLine>& doc, std::size_t first, std::size_t last)
{
    if (first >= last) return;
    for (std::size_t i = commentsBefore(lexed_, first + 1).first; i < commentsBefore(lexed_, last).second; ++i) {
        if (used_[i]) continue;
        used_[i] = true;
        appendDoc(doc, lexed_.comments[i]);
    }
}

std::string joined(const std::vector<DocLine>& lines)
{
    std::string text;
    for (const DocLine& line : lines) text += line.text + '\n';
    const auto end = text.find_last_not_of('\n');
    const auto start = text.find_first_not_of('\n');
    return end == std::string::npos ? "" : text.substr(start, end + 1 - start);
}

// The word that a line of documentation begins with, if it is a mark.
std::string_view markOf(const DocLine& line)
{
    std::string_view text = line.text;
    if (!text.starts_with('@')) return {};
    return text.substr(0, text.find_first_of(" \t:,"));
}

std::string Parser::memberDoc(const std::vector<DocLine>& lines)
{
    for (const DocLine& line : lines) {
        if (markOf(line) == provisionalMark) {
            fault(line.at, "'@provisional' marks a whole type; put it above the definition");
        }
    }
    return joined(lines);
}

void Parser::document(Definition& definition, const std::vector<DocLine>& lines)
{
    std::vector<DocLine> rest;
    for (const DocLine& line : lines) {
        const auto mark = markOf(line);
        if (mark == provisionalMark) {
            const auto start = line.text.find_first_not_of(" \t:", provisionalMark.size());
            if (definition.provisional) {
                fault(line.at, "'" + definition.name + "' is marked '@provisional' twice");
            }
            definition.provisional = start == std::string::npos ? "" : line.text.substr(start);
            continue;
        }
        if (mark.starts_with("@prov")) {
            fault(line.at, "unknown mark " + quoted(mark) + "; did you mean '@provisional'?");
        }
        rest.push_back(line);
    }
    definition.doc = joined(rest);
}

// The first comments of the file, unless they stand directly above a definition.
void Parser::moduleDoc()
{
    const auto [begin, end] = commentsBefore(lexed_, 0);
    std::size_t last = begin;
    while (last + 1 < end && lexed_.comments[last + 1].at.line <= lexed_.comments[last].lastLine + 1) ++last;
    if (begin == end) return;
    const bool touches = !atEnd() && last + 1 == end && token().at.line <= lexed_.comments[last].lastLine + 1;
    if (touches && !at("import")) return;
    std::vector<DocLine> lines;
    for (std::size_t i = begin; i <= last; ++i) {
        used_[i] = true;
        appendDoc(lines, lexed_.comments[i]);
    }
    module_.doc = memberDoc(lines);
}

// Grammar

void Parser::run()
{
    moduleDoc();
    while (!atEnd() && !faults_.full()) {
        const std::size_t start = pos_;
        broken_ = false;
        if (!definition()) skipToDefinition(start);
    }
}

bool Parser::definition()
{
    const std::size_t first = pos_;
    const bool named = token(1).kind == TokenKind::name || token(1).kind == TokenKind::keyword;
    if (at("import") && named) return import();
    if (at("program") && named && token(2).is("{")) return program();
    if (at("}")) {
        fault(token().at, "this '}' closes nothing");
        skipOne();
        if (at(";")) skipOne();
        return true;
    }
    if (at(";")) {
        fault(token().at, "this ';' ends nothing");
        skipOne();
        return true;
    }

    auto made = std::make_unique<Definition>();
    std::vector<DocLine> doc = docAbove(first);
    bodyDocAt_ = 0;
    bool complete = false;
    if (at("const")) {
        complete = constant(*made);
    } else if (at("typedef")) {
        complete = typeDefinition(*made);
    } else if (at("enum") || at("struct") || at("union")) {
        made->kind = at("enum") ? Kind::enumeration : at("struct") ? Kind::record : Kind::discriminated;
        ++pos_;
        complete = expectName(at("{") ? "this " + called(*made) : "the " + called(*made), made->name, made->at) &&
                   body(*made) && expect(";", "behind the '}' of " + called(*made));
    } else {
        unexpected("'struct', 'union', 'enum', 'typedef', 'const' or 'import'");
    }

    if (!made->name.empty()) {
        if (bodyDocAt_ > 0 && token(bodyDocAt_ + 1 - pos_).at.line > lexed_.tokens[bodyDocAt_].at.line) {}
        if (complete) addDocBehind(doc, pos_ - 1);
        document(*made, doc);
        made->broken = broken_;
        module_.definitions.push_back(std::move(made));
    }
    return complete;
}
