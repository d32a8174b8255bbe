// A predictive parser over the tokens. The language has no nested constructs, so the parser needs no recursion: a body
// inside a body is an error and is skipped by counting braces.
#include "parser.h"

#include "doc_comments.h"
#include "token_reader.h"

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace quorva::compiler {

namespace {

constexpr std::string_view provisionalMark = "@provisional";

constexpr std::string_view twoUnits = "a struct of two 'unsigned int', the upper half first, has the same bytes";

// One function for each rule of the grammar. A function that returns bool returns false if the rest of its construct
// has to be skipped; the error is reported then.
class Parser : TokenReader {
public:
    Parser(Module& parsedModule, Diagnostics& diagnostics) : TokenReader(parsedModule, diagnostics), comments(file()) {}

    void run();

private:
    // Documentation
    std::string unmarkedDoc(const std::vector<DocLine>& lines);
    template <typename Marked>
    void document(Marked& marked, const std::vector<DocLine>& lines);

    // Grammar
    bool definition();
    bool import();
    bool program();
    bool version(RemoteProgram& program);
    bool procedure(RemoteVersion& version);
    bool procedureType(std::optional<TypeRef>& type, const std::string& what);
    bool numberAfterBody(Value& number, const std::string& what);
    bool constant(Definition& definition);
    bool typeDefinition(Definition& definition);
    bool body(Definition& definition);
    bool enumeration(Definition& definition);
    bool structure(Definition& definition);
    bool arm(Definition& definition);
    bool declaration(Declaration& declaration, const std::string& what);
    bool declarator(Declaration& declaration, const std::string& what);
    bool bound(Declaration& declaration, std::string_view close);
    bool typeSpecifier(TypeRef& type);
    bool unsignedSpecifier(TypeRef& type);
    bool taggedSpecifier(TypeRef& type);
    bool value(Value& value, const std::string& what);
    bool endOfDeclaration(const std::string& what);

    DocComments comments;
    std::vector<DocLine> bodyDoc;  // the comments after the '{' of the current definition
};

// For modules and enumerators, which cannot be provisional.
std::string Parser::unmarkedDoc(const std::vector<DocLine>& lines)
{
    for (const DocLine& line : lines) {
        if (markOf(line) == provisionalMark) {
            report(line.at, "'@provisional' marks a type, a field or an arm; put it above one of these");
        }
    }
    return textOf(lines);
}

// For definitions and declarations: separates the provisional mark from the documentation.
template <typename Marked>
void Parser::document(Marked& marked, const std::vector<DocLine>& lines)
{
    std::vector<DocLine> rest;
    for (const DocLine& line : lines) {
        const auto mark = markOf(line);
        if (mark == provisionalMark) {
            const auto start = line.text.find_first_not_of(" \t:", provisionalMark.size());
            if (marked.provisional) report(line.at, inQuotes(marked.name) + " is marked '@provisional' twice");
            marked.provisional = start == std::string::npos ? "" : line.text.substr(start);
            continue;
        }
        if (mark.starts_with("@prov")) {
            report(line.at, "unknown mark " + inQuotes(mark) + "; did you mean '@provisional'?");
        }
        rest.push_back(line);
    }
    marked.doc = textOf(rest);
}

// Grammar

void Parser::run()
{
    module.doc = unmarkedDoc(comments.moduleComments());
    while (!atEnd() && !errors.full()) {
        const std::size_t start = position();
        clearErrors();
        if (!definition()) skipToDefinition(start);
    }
}

bool Parser::definition()
{
    const bool named = token(1).kind == TokenKind::name || token(1).kind == TokenKind::keyword;
    if (at("import")) return import();
    if (at("program") && named && token(2).is("{")) return program();
    if (at("}") || at(";")) {
        report(token().at, at("}") ? "this '}' closes nothing" : "this ';' ends nothing");
        skip();
        accept(";");
        return true;
    }

    auto made = std::make_unique<Definition>();
    std::vector<DocLine> doc = comments.above(position());
    bodyDoc.clear();
    bool complete = false;
    if (at("const")) {
        complete = constant(*made);
    } else if (at("typedef")) {
        complete = typeDefinition(*made);
    } else if (at("enum") || at("struct") || at("union")) {
        made->kind = at("enum")     ? DefinitionKind::enumeration
                     : at("struct") ? DefinitionKind::structure
                                    : DefinitionKind::discriminatedUnion;
        advance();
        complete = expectName("the " + describe(*made), made->name, made->at) && body(*made) &&
                   expect(";", "after the '}' of " + describe(*made));
    } else {
        reportUnexpected("'struct', 'union', 'enum', 'typedef', 'const', 'program' or 'import'");
    }

    if (!made->name.empty()) {
        doc.insert(doc.end(), bodyDoc.begin(), bodyDoc.end());
        if (complete) comments.appendAfter(doc, position() - 1);
        document(*made, doc);
        made->hasErrors = hasErrors();
        module.definitions.push_back(std::move(made));
    }
    return complete;
}

bool Parser::import()
{
    Import import;
    const Token& word = token();
    advance();
    Span at = token().at;
    do {
        if (token().kind != TokenKind::name && token().kind != TokenKind::keyword) {
            reportUnexpected("a module's name, such as common/strings");
            return false;
        }
        if (!import.name.empty()) import.name += '/';
        import.name += token().text;
        if (token().at.line == at.line) at.length = token().at.column + token().at.length - at.column;
        advance();
    } while (accept("/"));
    import.at = at;
    constexpr std::size_t longestPath = 255;
    if (import.name.size() > longestPath) {
        report(at, "this module's name is longer than " + std::to_string(longestPath) + " characters");
        return false;
    }
    if (!module.definitions.empty()) {
        report(word.at, "imports come before the first definition; move this one to the top of the file",
               Note{module.definitions.front()->at, "the first definition is here"});
    }
    if (!expect(";", "after the module's name")) return false;
    const auto same = std::find_if(module.imports.begin(), module.imports.end(),
                                   [&](const Import& other) { return other.name == import.name; });
    if (same != module.imports.end()) {
        report(at, "module " + inQuotes(import.name) + " is imported twice", Note{same->at, "first imported here"});
    } else {
        module.imports.push_back(std::move(import));
    }
    return true;
}

// program NAME { version NAME { RESULT NAME(ARGUMENT) = NUMBER; ... } = NUMBER; ... } = NUMBER;
bool Parser::program()
{
    RemoteProgram made;
    std::vector<DocLine> doc = comments.above(position());
    advance();
    if (!expectName("the program", made.name, made.at)) return false;
    const std::string what = "program " + inQuotes(made.name);
    const Span opened = token().at;
    advance();
    if (token().at.line > previous().at.line) comments.appendAfter(doc, position() - 1);
    while (continuesBody(opened, what))
        if (!version(made)) skipInBody(";");
    const bool complete = accept("}") && numberAfterBody(made.number, what);
    if (complete) comments.appendAfter(doc, position() - 1);
    made.doc = unmarkedDoc(doc);
    made.hasErrors = hasErrors();
    module.programs.push_back(std::move(made));
    return complete;
}

bool Parser::version(RemoteProgram& program)
{
    RemoteVersion made;
    std::vector<DocLine> doc = comments.above(position());
    if (!at("version")) {
        reportUnexpected("'version' or '}'");
        return false;
    }
    advance();
    if (!expectName("the version", made.name, made.at)) return false;
    const std::string what = "version " + inQuotes(made.name);
    const Span opened = token().at;
    if (!expect("{", "after " + what)) return false;
    if (token().at.line > previous().at.line) comments.appendAfter(doc, position() - 1);
    while (continuesBody(opened, what))
        if (!procedure(made)) skipInBody(";");
    const bool complete = accept("}") && numberAfterBody(made.number, what);
    if (complete) comments.appendAfter(doc, position() - 1);
    made.doc = unmarkedDoc(doc);
    program.versions.push_back(std::move(made));
    return complete;
}

bool Parser::procedure(RemoteVersion& version)
{
    RemoteProcedure made;
    std::vector<DocLine> doc = comments.above(position());
    if (!procedureType(made.result, "the result of a procedure") || !expectName("the procedure", made.name, made.at)) {
        return false;
    }
    const std::string what = "procedure " + inQuotes(made.name);
    if (!expect("(", "after " + what) || !procedureType(made.argument, "the argument of " + what)) return false;
    if (at(",")) {
        report(token().at, what + " has a second argument; define a struct of both, which takes the same bytes");
        return false;
    }
    if (!expect(")", "after the argument of " + what) || !numberAfterBody(made.number, what)) return false;
    comments.appendAfter(doc, position() - 1);
    made.doc = unmarkedDoc(doc);
    version.procedures.push_back(std::move(made));
    return true;
}

bool Parser::procedureType(std::optional<TypeRef>& type, const std::string& what)
{
    if (accept("void")) return true;
    if (at("string") || at("opaque")) {
        report(token().at, what + " has a named type; write 'typedef " + std::string(token().text) +
                               " Name<n>;' and use that name");
        return false;
    }
    return typeSpecifier(type.emplace());
}

bool Parser::numberAfterBody(Value& number, const std::string& what)
{
    return expect("=", "and a number after " + what) && value(number, "the number of " + what) &&
           expect(";", "after the number of " + what);
}

bool Parser::constant(Definition& definition)
{
    advance();
    definition.kind = DefinitionKind::constant;
    return expectName("the constant", definition.name, definition.at) && expect("=", "after " + describe(definition)) &&
           value(definition.constant, "the value of the constant") &&
           expect(";", "after the value of " + describe(definition));
}

// `typedef struct { ... } Name;` defines the struct itself, as in RFC 4506.
bool Parser::typeDefinition(Definition& definition)
{
    advance();
    const bool enumBody = at("enum") && (token(1).is("{") || token(2).is("{"));
    const bool structBody = at("struct") && (token(1).is("{") || token(2).is("{"));
    const bool unionBody = at("union") && (token(1).is("switch") || token(2).is("switch"));
    if (enumBody || structBody || unionBody) {
        definition.kind = enumBody     ? DefinitionKind::enumeration
                          : structBody ? DefinitionKind::structure
                                       : DefinitionKind::discriminatedUnion;
        advance();
        const bool tagged = !at("{") && !at("switch");
        const Token& tag = token();
        if (tagged) advance();
        if (!body(definition) || !expectName("this " + describe(definition), definition.name, definition.at))
            return false;
        if (tagged && !tag.is(definition.name)) {
            report(tag.at, "this " + std::string(kindName(definition.kind)) + " has two names, " + inQuotes(tag.text) +
                               " and " + inQuotes(definition.name) +
                               "; define it once and write a typedef for the other");
        }
        if (!at(";") && !startsLine()) {
            report(token().at, "define the " + std::string(kindName(definition.kind)) +
                                   " under its own name first, then write a typedef of that name");
            return false;
        }
        return expect(";", "after " + describe(definition));
    }

    definition.kind = DefinitionKind::typeDefinition;
    Declaration& target = definition.target;
    const bool complete = declaration(target, "type");
    definition.name = target.name;
    definition.at = target.at;
    if (complete && target.form == Form::none) {
        report(target.at, "'void' is not a type, so a typedef cannot name it");
        return false;
    }
    return complete && endOfDeclaration(describe(definition));
}

bool Parser::body(Definition& definition)
{
    if (definition.kind == DefinitionKind::discriminatedUnion) {
        Declaration& discriminant = definition.discriminant;
        discriminant.form = Form::single;
        if (!expect("switch", "after " + describe(definition)) || !expect("(", "after 'switch'")) return false;
        const std::size_t open = position() - 1;
        if (!typeSpecifier(discriminant.type) || !expectName("the discriminant", discriminant.name, discriminant.at) ||
            !expect(")", "after the discriminant")) {
            return false;
        }
        std::vector<DocLine> doc;
        comments.appendBetween(doc, open, position() - 1);
        document(discriminant, doc);
    }
    const Span opened = token().at;
    if (!expect("{", "after " + describe(definition))) return false;
    if (token().at.line > previous().at.line) comments.appendAfter(bodyDoc, position() - 1);

    while (continuesBody(opened, describe(definition))) {
        const bool complete = definition.kind == DefinitionKind::enumeration ? enumeration(definition)
                              : definition.kind == DefinitionKind::structure ? structure(definition)
                                                                             : arm(definition);
        if (!complete) skipInBody(definition.kind == DefinitionKind::enumeration ? "," : ";");
    }
    return accept("}");  // if it is missing, continuesBody() reported that
}

// One enumerator and the ',' after it.
bool Parser::enumeration(Definition& definition)
{
    Enumerator made;
    std::vector<DocLine> doc = comments.above(position());
    if (!expectName("an enumerator", made.name, made.at) ||
        !expect("=", "and a number after enumerator " + inQuotes(made.name)) ||
        !value(made.value, "the value of " + inQuotes(made.name))) {
        return false;
    }
    comments.appendAfter(doc, position() - 1);
    if (accept(",")) {
        comments.appendAfter(doc, position() - 1);
        if (at("}")) report(previous().at, "no enumerator follows this ','; remove it");
    } else if (token().kind == TokenKind::name && token(1).is("=")) {
        report(positionAfter(previous().at), "expected ',' after enumerator " + inQuotes(made.name));
    } else if (at(";")) {
        report(token().at, "enumerators are separated by ',', not by ';'");
        advance();
    } else if (!at("}") && !atEnd() && !startsDefinition()) {
        reportUnexpected("',' or '}' after enumerator " + inQuotes(made.name));
        return false;
    }
    made.doc = unmarkedDoc(doc);
    definition.enumerators.push_back(std::move(made));
    return true;
}

bool Parser::structure(Definition& definition)
{
    Declaration field;
    const std::size_t first = position();
    std::vector<DocLine> doc = comments.above(first);
    const bool complete = declaration(field, "field");
    if (!complete && field.name.empty()) return false;
    const bool ended = complete && endOfDeclaration("field " + inQuotes(field.name));
    if (ended) comments.appendAfter(doc, position() - 1);
    document(field, doc);
    definition.fields.push_back(std::move(field));
    return ended;
}

bool Parser::arm(Definition& definition)
{
    Arm arm;
    const std::size_t first = position();
    const bool isDefault = at("default");
    const Span begin = token().at;
    std::vector<DocLine> doc = comments.above(first);
    if (isDefault) {
        advance();
        if (!expect(":", "after 'default'")) return false;
    } else if (!at("case")) {
        reportUnexpected("'case', 'default' or '}' in " + describe(definition));
        return false;
    }
    while (accept("case")) {
        Value label;
        if (!value(label, "the value of a case")) return false;
        arm.cases.push_back(label);
        if (at(",")) {
            report(token().at, "one value to a 'case': write 'case " + std::string(previous().text) + ": case ...:'");
            return false;
        }
        if (!expect(":", "after the value of a case")) return false;
    }
    if (!isDefault && at("default")) {
        report(token().at, "'default' cannot share an arm with cases; give it an arm of its own");
        return false;
    }
    const bool complete = declaration(arm.declaration, "arm");
    if (!complete && arm.declaration.name.empty()) return false;
    const bool ended =
        complete &&
        endOfDeclaration(arm.declaration.form == Form::none ? "'void'" : "arm " + inQuotes(arm.declaration.name));
    if (ended) {
        comments.appendBetween(doc, first, position() - 1);
        comments.appendAfter(doc, position() - 1);
    }
    document(arm.declaration, doc);
    if (!isDefault) {
        definition.arms.push_back(std::move(arm));
    } else if (definition.defaultArm) {
        report(begin, describe(definition) + " has two default arms",
               Note{definition.defaultArm->declaration.at, "the first is here"});
    } else {
        definition.defaultArm = std::move(arm);
    }
    return ended;
}

bool Parser::endOfDeclaration(const std::string& what)
{
    if (at(",")) {
        report(token().at, "one name to a declaration: end it with ';' and repeat the type");
        return false;
    }
    return expect(";", "after " + what);
}

// Sets the name if it could be read, so that an error after it does not hide the declaration.
bool Parser::declaration(Declaration& declaration, const std::string& what)
{
    if (at("void")) {
        declaration.form = Form::none;
        declaration.at = token().at;
        advance();
        if (at("*") || token().kind == TokenKind::name) {
            report(previous().at, "'void' has no data and takes no name");
            return false;
        }
        return true;
    }
    if (at("string") || at("opaque")) {
        declaration.form = at("string") ? Form::string : Form::variableOpaque;
        advance();
    } else {
        declaration.form = Form::single;
        if (!typeSpecifier(declaration.type)) return false;
    }
    return declarator(declaration, what);
}

// The name, with the '*' before it or the brackets after it. Reports forms that the API does not have.
bool Parser::declarator(Declaration& declaration, const std::string& what)
{
    const bool isString = declaration.form == Form::string;
    const bool isOpaque = declaration.form == Form::variableOpaque;
    const Span star = token().at;
    const bool optional = accept("*");
    if (!expectName("the " + what, declaration.name, declaration.at)) return false;
    const std::string& name = declaration.name;

    if (optional) {
        if (isString) {
            report(star, "a string is never optional; write 'string " + name + "<>', which may be empty");
        } else if (isOpaque) {
            report(star, "opaque bytes are never optional; write 'opaque " + name + "<>', which may be empty");
        } else {
            declaration.form = Form::optional;
        }
    }
    const Span bracket = token().at;
    const bool counted = at("<");
    if (!counted && !at("[")) {
        if (!optional && isString)
            report(declaration.at, "a string needs a maximum: write 'string " + name + "<n>', or '<>'");
        if (!optional && isOpaque) {
            report(declaration.at, "opaque bytes need a number: write 'opaque " + name + "<n>' for at most n bytes, '" +
                                       name + "[n]' for exactly n");
        }
        return true;
    }
    advance();
    if (!bound(declaration, counted ? ">" : "]")) return false;

    if (optional && !isString && !isOpaque) {
        report(bracket, "a value is optional or repeated, not both; write a typedef for the " +
                            std::string(counted ? "variable-length" : "fixed-length") +
                            " array and make that optional");
        declaration.written.reset();
    } else if (isString && !counted) {
        report(bracket, "a string has no fixed length: write 'string " + name +
                            "<n>' for at most n characters, "
                            "'opaque " +
                            name + "[n]' for exactly n bytes");
    } else if (isOpaque && !counted) {
        declaration.form = Form::fixedOpaque;
    } else if (!isString && !isOpaque) {
        declaration.form = counted ? Form::variableArray : Form::fixedArray;
    }
    if (!counted && !declaration.written && declaration.form != Form::optional && !isString) {
        report(bracket, "a fixed-length array needs its number of elements; write " + inQuotes(name + "[n]") + ", or " +
                            inQuotes(name + "<>") + " for a variable-length array");
    }
    if (at("[") || at("<")) {
        report(token().at, "only one dimension to a declaration; write a typedef for the inner one");
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
    return expect(close, "after the number of " + inQuotes(declaration.name));
}

bool Parser::typeSpecifier(TypeRef& type)
{
    type.at = token().at;
    const auto builtin = [&](const char* name, Builtin which) {
        type.name = name;
        type.builtin = which;
        advance();
        return true;
    };
    if (at("int")) return builtin("LongInteger", Builtin::LongInteger);
    if (at("bool")) return builtin("Boolean", Builtin::Boolean);
    if (at("float")) return builtin("Float", Builtin::Float);
    if (at("unsigned")) return unsignedSpecifier(type);
    if (at("struct") || at("union") || at("enum")) return taggedSpecifier(type);
    if (at("hyper") || at("double") || at("quadruple")) {
        const std::string word(token().text);
        const std::string bytes = word == "quadruple" ? "16" : "8";
        report(type.at,
               "'" + word + "' takes " + bytes + " bytes, and the numbers of this API take 4; " +
                   (word == "hyper" ? std::string(twoUnits) : "'opaque name[" + bytes + "]' has the same bytes"));
        return builtin("LongInteger", Builtin::LongInteger);
    }
    if (at("string") || at("opaque")) {
        report(type.at, inQuotes(token().text) + " cannot be a discriminant");
        return false;
    }
    if (token().kind == TokenKind::name) {
        type.name = token().text;
        advance();
        return true;
    }
    reportUnexpected("a type");
    return false;
}

bool Parser::unsignedSpecifier(TypeRef& type)
{
    type.name = "LongNatural";
    type.builtin = Builtin::LongNatural;
    advance();
    const auto extend = [&] {
        if (token().at.line == type.at.line) type.at.length = token().at.column + token().at.length - type.at.column;
        advance();
    };
    if (at("int")) {
        extend();
    } else if (at("hyper")) {
        extend();
        report(type.at, "'unsigned hyper' takes 8 bytes, and the numbers of this API take 4; " + std::string(twoUnits));
    } else if (at("long") || at("short") || at("char")) {
        const std::string instead = at("long") ? "unsigned int" : at("short") ? "Natural" : "ShortNatural";
        const std::string word(token().text);
        extend();
        report(type.at, "'unsigned " + word + "' is not a type of this language; write '" + instead + "'");
    }
    return true;
}

// `struct Name` as rpcgen files write it. A body within a declaration is an error: its routine would have no name.
bool Parser::taggedSpecifier(TypeRef& type)
{
    const std::string word(token().text);
    type.keyword = at("struct")  ? DefinitionKind::structure
                   : at("union") ? DefinitionKind::discriminatedUnion
                                 : DefinitionKind::enumeration;
    advance();
    const bool hasBody = at("{") || at("switch") || token(1).is("{") || token(1).is("switch");
    if (!hasBody) {
        type.at = token().at;
        return expectName("a " + word, type.name, type.at);
    }
    report(type.at, "every type needs a definition of its own, because its routine has its name; move this " + word +
                        " out of the declaration");
    while (!at("{") && !at(";") && !at("}") && !atEnd()) skip();
    if (!at("{")) return false;
    skipBraces();
    type.keyword.reset();
    type.name = "LongInteger";  // a substitute, so that the rest of the declaration is checked
    type.builtin = Builtin::LongInteger;
    return true;
}

bool Parser::value(Value& value, const std::string& what)
{
    if (token().kind != TokenKind::number && token().kind != TokenKind::name) {
        reportUnexpected(what + ", a number or a constant's name");
        return false;
    }
    value.text = token().text;
    value.at = token().at;
    value.isName = token().kind == TokenKind::name;
    value.known = !value.isName && token().known;
    value.number = token().number;
    if (!value.isName && !value.known) markErrors();
    advance();
    return true;
}

}  // namespace

void parse(Module& module, Diagnostics& errors)
{
    Parser(module, errors).run();
}

}  // namespace quorva::compiler
