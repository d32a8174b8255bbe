// Finds the completions of a command line.

#include "complete.h"

#include "explain/layout.h"
#include "inspect/catalogue.h"
#include "inspect/documentation.h"
#include "inspect/interface.h"
#include "values.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <set>

namespace quorva::inspect {

namespace {

// The declaration inside a value, and the name of its place: a member's, or "0" for the elements of an array.
struct Inside {
    std::string name;
    Use use;
};

// What a JSON Pointer can name directly inside a value.
std::vector<Inside> insideOf(const Use& declared)
{
    Use use = declared;
    while (use.type && (use.form == Form::single || use.form == Form::optional)) {
        const Type& type = canonicalType(*use.type);
        if (type.kind == TypeKind::structure || type.kind == TypeKind::discriminatedUnion) {
            std::vector<Inside> inside;
            for (const Member& member : type.members)
                if (member.use.form != Form::none) inside.push_back({member.name, member.use});
            return inside;
        }
        if (type.kind != TypeKind::typeDefinition) return {};
        use = targetOf(type);
    }
    if (use.form != Form::fixedArray && use.form != Form::variableArray) return {};
    return {{"0", {.type = use.type, .bound = 0, .form = Form::single}}};
}

bool isIndex(std::string_view token)
{
    return !token.empty() && std::ranges::all_of(token, [](char c) { return c >= '0' && c <= '9'; });
}

// Prints completions, each once.
class Printer {
public:
    explicit Printer(std::string typed) : prefix(std::move(typed)) {}

    void add(const std::string& word, const std::string& description = {})
    {
        if (word.starts_with(prefix) && seen.insert(word).second)
            text += word + (description.empty() ? "" : '\t' + description) + '\n';
    }
    void addFiles() { text += ":files\n"; }
    void addFolders() { text += ":folders\n"; }

    const std::string prefix;
    std::string text;

private:
    std::set<std::string> seen;
};

// The JSON Pointers that the typed one can become: those one level inside its last whole part, and one level more
// where there is only one.
void addPointers(Printer& printer, const Type& type)
{
    Use use{.type = &type, .bound = 0, .form = Form::single};
    std::string parent;
    const std::string& typed = printer.prefix;
    std::size_t at = typed.empty() ? 0 : 1;
    for (std::size_t slash; (slash = typed.find('/', at)) != std::string::npos; at = slash + 1) {
        const std::string token = typed.substr(at, slash - at);
        const std::vector<Inside> inside = insideOf(use);
        const auto next = std::ranges::find_if(
            inside, [&](const Inside& part) { return part.name == token || (part.name == "0" && isIndex(token)); });
        if (next == inside.end()) return;
        use = next->use;
        parent += '/' + token;
    }
    const std::string last = typed.substr(std::min(at, typed.size()));
    std::vector<Inside> matching;
    for (Inside& part : insideOf(use)) {
        if (part.name == "0" && isIndex(last)) part.name = last;
        if (part.name.starts_with(last)) matching.push_back(part);
    }
    for (const Inside& part : matching) {
        const std::string path = parent + '/' + part.name;
        printer.add(path, declaration(part.use, ""));
        if (matching.size() > 1) continue;
        for (const Inside& inner : insideOf(part.use)) printer.add(path + '/' + inner.name, declaration(inner.use, ""));
    }
}

// The words before the one to complete, as the parser would take them.
struct Line {
    const CLI::Option* pending = nullptr;  // an option that needs the next word as its value
    bool onlyArguments = false;            // "--" was read
    std::vector<std::string> arguments;
    InterfaceFiles interfaces;
};

const CLI::Option* optionOf(const CLI::App& verb, const std::string& word)
{
    return word.size() < 2 ? nullptr : verb.get_option_no_throw(word);
}

Line readLine(const CLI::App& verb, const std::vector<std::string>& words)
{
    Line line;
    for (std::size_t i = 1; i + 1 < words.size(); ++i) {
        const std::string& word = words[i];
        if (line.pending) {
            if (line.pending->get_name() == "--interface") line.interfaces.files.push_back(word);
            if (line.pending->get_name() == "-I") line.interfaces.folders.push_back(word);
            line.pending = nullptr;
        } else if (word == "--") {
            line.onlyArguments = true;
        } else if (word.size() < 2 || word[0] != '-' || line.onlyArguments) {
            line.arguments.push_back(word);
        } else if (const CLI::Option* option = optionOf(verb, word); option && takesValue(*option)) {
            line.pending = option;
        }
    }
    return line;
}

void addTypes(Printer& printer)
{
    const Catalogue catalogue;
    for (const Type* type : catalogue.types()) printer.add(type->name, kindName(*type));
}

// A word that names a type can also be the first file of a verb that guesses the type.
void addArgument(Printer& printer, const CLI::Option& argument)
{
    const std::string name = argument.get_name(true);
    if (name == "TYPE" || name == "PATTERN") addTypes(printer);
    if (name == "INPUT" || name == "A" || name == "B" || (name == "TYPE" && printer.text.empty())) printer.addFiles();
}

void addValue(Printer& printer, const CLI::Option& option, const Line& line)
{
    for (const std::string& word : wordsOf(option)) printer.add(word);
    const std::string name = option.get_type_name();
    if (name == "FILE.x") printer.addFiles();
    if (name == "DIR") printer.addFolders();
    if (option.get_name() == "--module")
        for (const Module* module : knownModules()) printer.add(module->name);
    if (name != "POINTER" || line.arguments.empty()) return;
    if (const Type* type = Catalogue().find(line.arguments.front())) addPointers(printer, *type);
}

void addOptions(Printer& printer, const CLI::App& app)
{
    for (const CLI::Option* option : app.get_options()) {
        if (option->get_positional() || option->get_group().empty()) continue;
        for (const std::string& name : option->get_snames()) printer.add('-' + name, option->get_description());
        for (const std::string& name : option->get_lnames()) printer.add("--" + name, option->get_description());
    }
}

// The known interface files of the command line; none if they cannot be used.
std::unique_ptr<Interfaces> interfacesOf(const Line& line)
{
    try {
        if (!line.interfaces.files.empty()) return std::make_unique<Interfaces>(line.interfaces);
    } catch (const InterfaceError&) {
        return nullptr;  // a completion prints no errors
    }
    return nullptr;
}

std::string completionsOf(const CLI::App& verb, const std::vector<std::string>& words)
{
    const Line line = readLine(verb, words);
    const auto interfaces = interfacesOf(line);
    const std::string& typed = words.back();
    const std::size_t sign = typed.find('=');
    if (!line.pending && !line.onlyArguments && typed.starts_with("--") && sign != std::string::npos) {
        const CLI::Option* option = optionOf(verb, typed.substr(0, sign));
        if (!option) return {};
        Printer printer(typed);
        for (const std::string& word : wordsOf(*option)) printer.add(typed.substr(0, sign + 1) + word);
        return printer.text;
    }
    Printer printer(typed);
    if (line.pending) {
        addValue(printer, *line.pending, line);
    } else if (typed.starts_with('-') && !line.onlyArguments) {
        addOptions(printer, verb);
    } else {
        const auto arguments = verb.get_options([](const CLI::Option* option) { return option->get_positional(); });
        if (line.arguments.size() < arguments.size()) addArgument(printer, *arguments[line.arguments.size()]);
    }
    return printer.text;
}

constexpr const char* bashScript = R"sh(_quorvaxdr() {
    local line
    COMPREPLY=()
    while IFS= read -r line; do
        case $line in
        :files)
            compopt -o filenames 2>/dev/null
            mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(compgen -f -- "${COMP_WORDS[COMP_CWORD]}") ;;
        :folders)
            compopt -o filenames 2>/dev/null
            mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(compgen -d -- "${COMP_WORDS[COMP_CWORD]}") ;;
        *) COMPREPLY+=("${line%%$'\t'*}") ;;
        esac
    done < <("$1" --complete "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
}
complete -F _quorvaxdr quorvaxdr
)sh";

constexpr const char* zshScript = R"sh(#compdef quorvaxdr
_quorvaxdr() {
    local line word
    local -a described
    for line in ${(f)"$("${(Q)words[1]}" --complete "${(@Q)words[2,CURRENT]}" 2>/dev/null)"}; do
        case $line in
        :files) _files ;;
        :folders) _files -/ ;;
        *)
            word=${${line%%$'\t'*}//:/\\:}
            if [[ $line == *$'\t'* ]]; then described+=("$word:${line#*$'\t'}"); else described+=("$word"); fi ;;
        esac
    done
    (( ${#described} )) && _describe quorvaxdr described
}
if [[ $funcstack[1] == _quorvaxdr ]]; then _quorvaxdr "$@"; else compdef _quorvaxdr quorvaxdr; fi
)sh";

constexpr const char* fishScript = R"sh(function __quorvaxdr_complete
    set -l words (commandline -opc)
    set -l word (commandline -ct)
    for line in ($words[1] --complete $words[2..-1] "$word" 2>/dev/null)
        switch $line
            case :files
                __fish_complete_path "$word"
            case :folders
                __fish_complete_directories "$word"
            case '*'
                echo $line
        end
    end
end
complete -c quorvaxdr -f -a '(__quorvaxdr_complete)'
)sh";

}  // namespace

std::string completions(const CLI::App& program, std::vector<std::string> words)
{
    if (words.empty()) words.emplace_back();
    if (words.size() > 1) {
        // bash splits --from=hex into three words.
        if (words.back() == "=") words.back().clear();
        words.erase(std::remove(words.begin(), words.end() - 1, "="), words.end() - 1);
    }
    if (words.size() == 1) {
        Printer printer(words.front());
        const auto verbs = program.get_subcommands([](const CLI::App*) { return true; });
        for (const CLI::App* verb : verbs) printer.add(verb->get_name(), verb->get_description());
        if (printer.prefix.starts_with('-')) addOptions(printer, program);
        return printer.text;
    }
    if (words.front() == "--completion") {
        Printer printer(words.back());
        for (const std::string& shell : wordsOf(*program.get_option("--completion"))) printer.add(shell);
        return printer.text;
    }
    for (const CLI::App* verb : program.get_subcommands([](const CLI::App*) { return true; }))
        if (verb->get_name() == words.front()) return completionsOf(*verb, words);
    return {};
}

std::string completionScript(const std::string& shell)
{
    return shell == "bash" ? bashScript : shell == "zsh" ? zshScript : fishScript;
}

}  // namespace quorva::inspect
