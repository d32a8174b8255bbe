// A predictive parser over the token list. The language has no nested constructs, so it needs no recursion: a body
// inside a body is a fault and is skipped by counting braces.
#include "parser.h"

#include "lexer.h"

#include <algorithm>
#include <array>
#include <memory>
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
    void skipInBody(std::string_view separator);
    void skipToDefinition(std::size_t start);
    bool startsDefinition() const;
    bool bodyGoesOn(const Span& opened, const std::string& what);

    // Documentation
    std::vector<DocLine> docAbove(std::size_t first);
    void addDocBehind(std::vector<DocLine>& doc, std::size_t last);
    void addDocInside(std::vector<DocLine>& doc, std::size_t first, std::size_t last);
    std::string unmarkedDoc(const std::vector<DocLine>& lines);
    void moduleDoc();
    template <typename Marked>
    void document(Marked& marked, const std::vector<DocLine>& lines);

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
    std::vector<DocLine> bodyDoc_;  // behind the '{' of the definition at hand
    bool broken_ = false;           // a fault was reported since the definition began
};

std::string_view kindWord(Kind kind)
{
    constexpr std::array<std::string_view, 5> words = {"constant", "enumeration", "struct", "union", "type"};
    return words[static_cast<std::size_t>(kind)];
}

std::string called(const Definition& definition)
{
    std::string words(kindWord(definition.kind));
    if (!definition.name.empty()) words += " " + inQuotes(definition.name);
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
    return atEnd() ? "the end of the file" : inQuotes(token().text);
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
        fault(token().at, inQuotes(token().text) + " is a word of the language and cannot be the name of " + what);
        return false;
    }
    unexpected("the name of " + what);
    return false;
}

void Parser::skipOne()
{
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

// To behind the next ';' or separator, or before the '}' that ends the body.
void Parser::skipInBody(std::string_view separator)
{
    while (!atEnd() && !at("}") && !(startsDefinition() && token().at.column == 1)) {
        if (at("{")) {
            skipBraces();
        } else {
            const bool last = at(";") || at(separator);
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

// For modules and enumerators, which are never marked.
std::string Parser::unmarkedDoc(const std::vector<DocLine>& lines)
{
    for (const DocLine& line : lines) {
        if (markOf(line) == provisionalMark) {
            fault(line.at, "'@provisional' marks a type, a field or an arm; put it above one of those");
        }
    }
    return joined(lines);
}

// For definitions and declarations: separates the mark from the documentation.
template <typename Marked>
void Parser::document(Marked& marked, const std::vector<DocLine>& lines)
{
    std::vector<DocLine> rest;
    for (const DocLine& line : lines) {
        const auto mark = markOf(line);
        if (mark == provisionalMark) {
            const auto start = line.text.find_first_not_of(" \t:", provisionalMark.size());
            if (marked.provisional) fault(line.at, inQuotes(marked.name) + " is marked '@provisional' twice");
            marked.provisional = start == std::string::npos ? "" : line.text.substr(start);
            continue;
        }
        if (mark.starts_with("@prov")) {
            fault(line.at, "unknown mark " + inQuotes(mark) + "; did you mean '@provisional'?");
        }
        rest.push_back(line);
    }
    marked.doc = joined(rest);
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
    module_.doc = unmarkedDoc(lines);
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
    const bool named = token(1).kind == TokenKind::name || token(1).kind == TokenKind::keyword;
    if (at("import")) return import();
    if (at("program") && named && token(2).is("{")) return program();
    if (at("}") || at(";")) {
        fault(token().at, at("}") ? "this '}' closes nothing" : "this ';' ends nothing");
        skipOne();
        accept(";");
        return true;
    }

    auto made = std::make_unique<Definition>();
    std::vector<DocLine> doc = docAbove(pos_);
    bodyDoc_.clear();
    bool complete = false;
    if (at("const")) {
        complete = constant(*made);
    } else if (at("typedef")) {
        complete = typeDefinition(*made);
    } else if (at("enum") || at("struct") || at("union")) {
        made->kind = at("enum") ? Kind::enumeration : at("struct") ? Kind::record : Kind::discriminated;
        ++pos_;
        complete = expectName("the " + called(*made), made->name, made->at) && body(*made) &&
                   expect(";", "behind the '}' of " + called(*made));
    } else {
        unexpected("'struct', 'union', 'enum', 'typedef', 'const' or 'import'");
    }

    if (!made->name.empty()) {
        doc.insert(doc.end(), bodyDoc_.begin(), bodyDoc_.end());
        if (complete) addDocBehind(doc, pos_ - 1);
        document(*made, doc);
        made->broken = broken_;
        module_.definitions.push_back(std::move(made));
    }
    return complete;
}

bool Parser::import()
{
    Import import;
    const Token& word = token();
    ++pos_;
    Span at = token().at;
    do {
        if (token().kind != TokenKind::name && token().kind != TokenKind::keyword) {
            unexpected("a module's name, such as common/strings");
            return false;
        }
        if (!import.name.empty()) import.name += '/';
        import.name += token().text;
        if (token().at.line == at.line) at.length = token().at.column + token().at.length - at.column;
        ++pos_;
    } while (accept("/"));
    import.at = at;
    constexpr std::size_t longestPath = 255;
    if (import.name.size() > longestPath) {
        fault(at, "this module's name is longer than " + std::to_string(longestPath) + " characters");
        return false;
    }
    if (!module_.definitions.empty()) {
        fault(word.at, "imports stand before the first definition; move this one up to the head of the file",
              Note{module_.definitions.front()->at, "the first definition is here"});
    }
    if (!expect(";", "behind the module's name")) return false;
    const auto same = std::find_if(module_.imports.begin(), module_.imports.end(),
                                   [&](const Import& other) { return other.name == import.name; });
    if (same != module_.imports.end()) {
        fault(at, "module " + inQuotes(import.name) + " is imported twice", Note{same->at, "first imported here"});
    } else {
        module_.imports.push_back(std::move(import));
    }
    return true;
}

// Remote procedures are nobody's business here; the braces are counted and the rest is read over.
bool Parser::program()
{
    pos_ += 2;
    const Span opened = token().at;
    unsigned depth = 0;
    do {
        if (at("{")) ++depth;
        if (at("}")) --depth;
        ++pos_;
    } while (depth > 0 && !atEnd());
    if (depth > 0) {
        fault(behind(previous().at), "expected '}' at the end of the program", Note{opened, "opened here"});
        return false;
    }
    if (accept("=") && token().kind == TokenKind::number) ++pos_;
    return expect(";", "behind the program");
}

bool Parser::constant(Definition& definition)
{
    ++pos_;
    definition.kind = Kind::constant;
    return expectName("the constant", definition.name, definition.at) && expect("=", "behind " + called(definition)) &&
           value(definition.constant, "the value of the constant") &&
           expect(";", "behind the value of " + called(definition));
}

// `typedef struct { ... } Name;` defines the struct itself, as in RFC 4506.
bool Parser::typeDefinition(Definition& definition)
{
    ++pos_;
    const bool enumBody = at("enum") && (token(1).is("{") || token(2).is("{"));
    const bool recordBody = at("struct") && (token(1).is("{") || token(2).is("{"));
    const bool unionBody = at("union") && (token(1).is("switch") || token(2).is("switch"));
    if (enumBody || recordBody || unionBody) {
        definition.kind = enumBody ? Kind::enumeration : recordBody ? Kind::record : Kind::discriminated;
        ++pos_;
        const bool tagged = !at("{") && !at("switch");
        const Token& tag = token();
        if (tagged) ++pos_;
        if (!body(definition) || !expectName("this " + called(definition), definition.name, definition.at))
            return false;
        if (tagged && !tag.is(definition.name)) {
            fault(tag.at, "this " + std::string(kindWord(definition.kind)) + " has two names, " + inQuotes(tag.text) +
                              " and " + inQuotes(definition.name) +
                              "; define it once and write a typedef for the other");
        }
        if (!at(";") && !startsLine()) {
            fault(token().at, "define the " + std::string(kindWord(definition.kind)) +
                                  " under its own name first, then write a typedef of that name");
            return false;
        }
        return expect(";", "behind " + called(definition));
    }

    definition.kind = Kind::definedAs;
    Declaration& target = definition.target;
    const bool complete = declaration(target, "type");
    definition.name = target.name;
    definition.at = target.at;
    if (complete && target.form == Form::nothing) {
        fault(target.at, "'void' is no type that could have another name");
        return false;
    }
    return complete && endOfDeclaration(called(definition));
}

bool Parser::body(Definition& definition)
{
    if (definition.kind == Kind::discriminated) {
        Declaration& discriminant = definition.discriminant;
        discriminant.form = Form::single;
        if (!expect("switch", "behind " + called(definition)) || !expect("(", "behind 'switch'")) return false;
        const std::size_t open = pos_ - 1;
        if (!typeSpecifier(discriminant.type) || !expectName("the discriminant", discriminant.name, discriminant.at) ||
            !expect(")", "behind the discriminant")) {
            return false;
        }
        std::vector<DocLine> doc;
        addDocInside(doc, open, pos_ - 1);
        document(discriminant, doc);
    }
    const Span opened = token().at;
    if (!expect("{", "behind " + called(definition))) return false;
    if (token().at.line > previous().at.line) addDocBehind(bodyDoc_, pos_ - 1);

    while (bodyGoesOn(opened, called(definition))) {
        const bool complete = definition.kind == Kind::enumeration ? enumeration(definition)
                              : definition.kind == Kind::record    ? record(definition)
                                                                   : arm(definition);
        if (!complete) skipInBody(definition.kind == Kind::enumeration ? "," : ";");
    }
    return accept("}");  // where it is missing, bodyGoesOn() has said so
}

// One enumerator and the ',' behind it.
bool Parser::enumeration(Definition& definition)
{
    Enumerator made;
    std::vector<DocLine> doc = docAbove(pos_);
    if (!expectName("an enumerator", made.name, made.at) ||
        !expect("=", "and a number behind enumerator " + inQuotes(made.name)) ||
        !value(made.value, "the value of " + inQuotes(made.name))) {
        return false;
    }
    addDocBehind(doc, pos_ - 1);
    if (accept(",")) {
        addDocBehind(doc, pos_ - 1);
        if (at("}")) fault(previous().at, "no enumerator follows this ','; remove it");
    } else if (token().kind == TokenKind::name && token(1).is("=")) {
        fault(behind(previous().at), "expected ',' behind enumerator " + inQuotes(made.name));
    } else if (at(";")) {
        fault(token().at, "enumerators are parted by ',', not by ';'");
        ++pos_;
    } else if (!at("}") && !atEnd() && !startsDefinition()) {
        unexpected("',' or '}' behind enumerator " + inQuotes(made.name));
        return false;
    }
    made.doc = unmarkedDoc(doc);
    definition.enumerators.push_back(std::move(made));
    return true;
}

bool Parser::record(Definition& definition)
{
    Declaration field;
    const std::size_t first = pos_;
    std::vector<DocLine> doc = docAbove(first);
    const bool complete = declaration(field, "field");
    if (!complete && field.name.empty()) return false;
    const bool ended = complete && endOfDeclaration("field " + inQuotes(field.name));
    if (ended) addDocBehind(doc, pos_ - 1);
    document(field, doc);
    definition.fields.push_back(std::move(field));
    return ended;
}

bool Parser::arm(Definition& definition)
{
    Arm arm;
    const std::size_t first = pos_;
    const bool isDefault = at("default");
    const Span begin = token().at;
    std::vector<DocLine> doc = docAbove(first);
    if (isDefault) {
        ++pos_;
        if (!expect(":", "behind 'default'")) return false;
    } else if (!at("case")) {
        unexpected("'case', 'default' or '}' in " + called(definition));
        return false;
    }
    while (accept("case")) {
        Value label;
        if (!value(label, "the value of a case")) return false;
        arm.cases.push_back(label);
        if (at(",")) {
            fault(token().at, "one value to a 'case': write 'case " + std::string(previous().text) + ": case ...:'");
            return false;
        }
        if (!expect(":", "behind the value of a case")) return false;
    }
    if (!isDefault && at("default")) {
        fault(token().at, "'default' stands by itself, not together with cases");
        return false;
    }
    const bool complete = declaration(arm.declaration, "arm");
    if (!complete && arm.declaration.name.empty()) return false;
    const bool ended =
        complete &&
        endOfDeclaration(arm.declaration.form == Form::nothing ? "'void'" : "arm " + inQuotes(arm.declaration.name));
    if (ended) {
        addDocInside(doc, first, pos_ - 1);
        addDocBehind(doc, pos_ - 1);
    }
    document(arm.declaration, doc);
    if (!isDefault) {
        definition.arms.push_back(std::move(arm));
    } else if (definition.defaultArm) {
        fault(begin, called(definition) + " has two default arms",
              Note{definition.defaultArm->declaration.at, "the first is here"});
    } else {
        definition.defaultArm = std::move(arm);
    }
    return ended;
}

bool Parser::endOfDeclaration(const std::string& what)
{
    if (at(",")) {
        fault(token().at, "one name to a declaration: end it with ';' and repeat the type");
        return false;
    }
    return expect(";", "behind " + what);
}

// Leaves the name set where it could be read, so that a fault behind it does not hide the declaration.
bool Parser::declaration(Declaration& declaration, const std::string& what)
{
    if (at("void")) {
        declaration.form = Form::nothing;
        declaration.at = token().at;
        ++pos_;
        if (at("*") || token().kind == TokenKind::name) {
            fault(previous().at, "'void' holds nothing and takes no name");
            return false;
        }
        return true;
    }
    if (at("string") || at("opaque")) {
        declaration.form = at("string") ? Form::string : Form::bytes;
        ++pos_;
    } else {
        declaration.form = Form::single;
        if (!typeSpecifier(declaration.type)) return false;
    }
    return declarator(declaration, what);
}

// The name, with the '*' before it or the brackets behind it, and whether the API has this form.
bool Parser::declarator(Declaration& declaration, const std::string& what)
{
    const bool text = declaration.form == Form::string;
    const bool bytes = declaration.form == Form::bytes;
    const Span star = token().at;
    const bool optional = accept("*");
    if (!expectName("the " + what, declaration.name, declaration.at)) return false;
    const std::string& name = declaration.name;

    if (optional) {
        if (text) {
            fault(star, "a string is never optional; write 'string " + name + "<>', which may be empty");
        } else if (bytes) {
            fault(star, "opaque bytes are never optional; write 'opaque " + name + "<>', which may be empty");
        } else {
            declaration.form = Form::optional;
        }
    }
    const Span bracket = token().at;
    const bool counted = at("<");
    if (!counted && !at("[")) {
        if (!optional && text)
            fault(declaration.at, "a string needs a maximum: write 'string " + name + "<n>', or '<>'");
        if (!optional && bytes) {
            fault(declaration.at, "opaque bytes need a number: write 'opaque " + name + "<n>' for at most n bytes, '" +
                                      name + "[n]' for exactly n");
        }
        return true;
    }
    ++pos_;
    if (!bound(declaration, counted ? ">" : "]")) return false;

    if (optional && !text && !bytes) {
        fault(bracket, "a value is optional or repeated, not both; write a typedef for the " +
                           std::string(counted ? "list" : "vector") + " and make that optional");
        declaration.written.reset();
    } else if (text && !counted) {
        fault(bracket, "a string has no fixed length: write 'string " + name +
                           "<n>' for text of at most n characters, "
                           "'opaque " +
                           name + "[n]' for exactly n bytes");
    } else if (bytes && !counted) {
        declaration.form = Form::opaque;
    } else if (!text && !bytes) {
        declaration.form = counted ? Form::list : Form::vector;
    }
    if (!counted && !declaration.written && declaration.form != Form::optional && !text) {
        fault(bracket, "a vector needs its number of elements; write " + inQuotes(name + "[n]") + ", or " +
                           inQuotes(name + "<>") + " for a list");
    }
    if (at("[") || at("<")) {
        fault(token().at, "only one dimension to a declaration; write a typedef for the inner one");
        return false;
    }
    return true;
}

bool Parser::bound(Declaration& declaration, std::string_view close)
{
    if (!at(close)) {
        Value written;
        if (!value(written, "the number of " + inQuotes(declaration.name))) return false;
        declaration.written = written;
    }
    return expect(close, "behind the number of " + inQuotes(declaration.name));
}

bool Parser::typeSpecifier(TypeRef& type)
{
    type.at = token().at;
    const auto builtin = [&](const char* name, Builtin which) {
        type.name = name;
        type.builtin = which;
        ++pos_;
        return true;
    };
    if (at("int")) return builtin("LongInteger", Builtin::LongInteger);
    if (at("bool")) return builtin("Boolean", Builtin::Boolean);
    if (at("float")) return builtin("Float", Builtin::Float);
    if (at("unsigned")) return unsignedSpecifier(type);
    if (at("struct") || at("union") || at("enum")) return taggedSpecifier(type);
    if (at("hyper") || at("double") || at("quadruple")) {
        const std::string word(token().text);
        fault(type.at, "'" + word + "' takes " + (word == "quadruple" ? "16" : "8") +
                           " bytes, and this API moves single units of 4; " +
                           (word == "hyper" ? "use two 'unsigned int'" : "use 'float'"));
        return builtin("LongInteger", Builtin::LongInteger);
    }
    if (at("string") || at("opaque")) {
        fault(type.at, inQuotes(token().text) + " cannot be a discriminant");
        return false;
    }
    if (token().kind == TokenKind::name) {
        type.name = token().text;
        ++pos_;
        return true;
    }
    unexpected("a type");
    return false;
}

bool Parser::unsignedSpecifier(TypeRef& type)
{
    type.name = "LongNatural";
    type.builtin = Builtin::LongNatural;
    ++pos_;
    const auto extend = [&] {
        if (token().at.line == type.at.line) type.at.length = token().at.column + token().at.length - type.at.column;
        ++pos_;
    };
    if (at("int")) {
        extend();
    } else if (at("hyper")) {
        extend();
        fault(type.at, "'unsigned hyper' takes 8 bytes, and this API moves single units of 4; use two 'unsigned int'");
    } else if (at("long") || at("short") || at("char")) {
        const std::string instead = at("long") ? "unsigned int" : at("short") ? "Natural" : "ShortNatural";
        const std::string word(token().text);
        extend();
        fault(type.at, "'unsigned " + word + "' is no type of this language; write '" + instead + "'");
    }
    return true;
}

// `struct Name` as rpcgen files write it, or a body in the middle of a declaration, which has no name for its routine.
bool Parser::taggedSpecifier(TypeRef& type)
{
    const std::string word(token().text);
    type.keyword = at("struct") ? Kind::record : at("union") ? Kind::discriminated : Kind::enumeration;
    ++pos_;
    const bool hasBody = at("{") || at("switch") || token(1).is("{") || token(1).is("switch");
    if (!hasBody) {
        type.at = token().at;
        return expectName("a " + word, type.name, type.at);
    }
    fault(type.at, "every type needs a definition of its own, because its routine bears its name; move this " + word +
                       " out of the declaration");
    while (!at("{") && !at(";") && !at("}") && !atEnd()) skipOne();
    if (!at("{")) return false;
    skipBraces();
    type.keyword.reset();
    type.name = "LongInteger";  // stands in, so that the rest of the declaration is looked at
    type.builtin = Builtin::LongInteger;
    return true;
}

bool Parser::value(Value& value, const std::string& what)
{
    if (token().kind != TokenKind::number && token().kind != TokenKind::name) {
        unexpected(what + ", a number or a constant's name");
        return false;
    }
    value.text = token().text;
    value.at = token().at;
    value.isName = token().kind == TokenKind::name;
    value.known = !value.isName && token().known;
    value.number = token().number;
    if (!value.isName && !value.known) broken_ = true;
    ++pos_;
    return true;
}

}  // namespace

void parse(Module& module, Diagnostics& faults)
{
    Parser(module, faults).run();
}

}  // namespace quorva::compiler
