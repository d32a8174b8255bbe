// quorvaxdrc: the command line of the interface compiler.
#include "emit/emit.h"
#include "evolve/compare.h"
#include "evolve/fingerprint.h"
#include "evolve/flatten.h"
#include "front/check.h"
#include "front/check_for_c.h"
#include "front/diagnostics.h"
#include "front/lint.h"
#include "front/other_modules.h"
#include "front/resolve.h"
#include "front/source.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quorva::compiler {

namespace {

namespace fs = std::filesystem;

constexpr int success = 0;
constexpr int hasDiagnostics = 1;  // errors or warnings
constexpr int broken = 1;          // compare found breaks
constexpr int cannotRun = 2;       // the command line is wrong, or a file cannot be read or written

constexpr std::string_view usage =
    R"(usage: quorvaxdrc generate --out DIR [-I DIR]... [option]... FILE.x...
       quorvaxdrc plain [-I DIR]... [--prefix P] FILE.x...
       quorvaxdrc python --out DIR [-I DIR]... [--package NAME] FILE.x...
       quorvaxdrc wireshark --out FILE [-I DIR]... FILE.x...
       quorvaxdrc check [-I DIR]... FILE.x...
       quorvaxdrc lint [-I DIR]... FILE.x...
       quorvaxdrc flatten [-I DIR]... FILE.x...
       quorvaxdrc fingerprint [-I DIR]... FILE.x...
       quorvaxdrc compare [-I DIR]... OLD NEW

Compiles interface files: XDR (RFC 4506) with imports and the API's own integer types.

  generate   write C++ headers, coding routines and descriptions
  plain      print one RFC 4506 file for other XDR tools, imports included
  python     write a package of Python that codes the same messages
  wireshark  write a dissector for Wireshark that reads the calls of remote programs
  check      report errors and write nothing
  lint       report errors, or style warnings if there are no errors
  flatten    print one interface file without documentation, imports included, to compare with later
  fingerprint
             print a line for each settled type, which changes when the type does
  compare    report what a change of an interface breaks

  --help     this text; after a verb, the options of that verb
  --version  the version

The status is 0; 1 if errors, warnings or breaks are reported; 2 if the command line is wrong or a file cannot be read
or written.
)";

constexpr std::string_view searching =
    R"(
  -I DIR         search DIR for modules; may be given several times, and the first match is used (default: .)
  --diagnostics FORM
                 how errors and warnings are written to standard error: text, or json, which is an object a line
)";

// For the verbs that compare names with those of modules that are not imported.
constexpr std::string_view comparing =
    R"(
All modules below the folders given with -I are taken to be in one program, so a FILE that is not one of them may not
define their names again, imported or not.
)";

constexpr std::string_view generateUsage =
    R"(usage: quorvaxdrc generate --out DIR [option]... FILE.x...

Writes for each FILE, which is a module named after its path below an -I folder,
  DIR/include/quorvapixdr/types/MODULE.h    the public header
  DIR/private/quorvapixdr/private/MODULE.h  what the source files of one library share
  DIR/src/MODULE.cc                         coding routines and name functions
  DIR/descriptions/MODULE.cc                descriptions of the types, which the library and tools link
  DIR/documentation/MODULE.cc               documentation of the types, which tools link
and with --c
  DIR/include/quorvapixdr/c/MODULE.h        a header for C11 that declares the same types and functions
and DIR/modules.cc, the list of all these modules. A file whose content would stay the same is not touched.
)";

constexpr std::string_view generateOptions =
    R"(  --out DIR      where to write
  --c            write headers for C, too; refuse what C cannot declare
  --index NAME   the function that returns the list of modules (default: modules)
  --list         print the paths that would be written, and neither read nor write anything
  --depfile FILE write a make rule to FILE that lists every FILE.x and import
  --target NAME  the target of that rule
)";

constexpr std::string_view plainUsage =
    R"(usage: quorvaxdrc plain [option]... FILE.x...

Prints the definitions of every FILE and its imports as one file of RFC 4506.
)";

constexpr std::string_view plainOptions =
    R"(  --prefix P     put P in front of the name of every type, enumerator and constant
)";

constexpr std::string_view pythonUsage =
    R"(usage: quorvaxdrc python --out DIR [option]... FILE.x...

Writes the package DIR/NAME for Python 3.11 and later: a module for every FILE and each of its imports, with a class for
each type, and the package xdr, which codes them. The package needs nothing but Python's standard library.
A file whose content would stay the same is not touched.
)";

constexpr std::string_view pythonOptions =
    R"(  --out DIR      where to write
  --package NAME the name of the package (default: quorvapixdr)
)";

constexpr std::string_view wiresharkUsage =
    R"(usage: quorvaxdrc wireshark --out FILE [option]... FILE.x...

Writes a dissector for Wireshark and tshark in Lua. It reads the calls and replies of the remote programs (RFC 5531)
that the `program` blocks of every FILE and its imports describe. A file whose content would stay the same is not
touched.
)";

constexpr std::string_view wiresharkOptions =
    R"(  --out FILE     where to write
)";

constexpr std::string_view checkUsage =
    R"(usage: quorvaxdrc check [option]... FILE.x...

Reports the errors of every FILE and its imports.
)";

constexpr std::string_view lintUsage =
    R"(usage: quorvaxdrc lint [option]... FILE.x...

Reports the errors of every FILE and its imports; if there are none, reports the style warnings of every FILE.
)";

constexpr std::string_view flattenUsage =
    R"(usage: quorvaxdrc flatten [option]... FILE.x...

Prints the definitions of every FILE and its imports as one interface file without documentation.
)";

constexpr std::string_view fingerprintUsage =
    R"(usage: quorvaxdrc fingerprint [option]... FILE.x...

Prints the name of each settled type of every FILE and its imports, and three hashes: of its wire format, of its C++
declaration, and of its trace.
)";

constexpr std::string_view compareUsage =
    R"(usage: quorvaxdrc compare [option]... OLD NEW

Reports what differs in NEW and what that breaks: the wire format, the source of callers, or only the trace.
OLD and NEW are each a folder of interface files, or one file, such as a flattened interface.
The status is 0 if no change breaks anything, 1 if one does, and 2 if the two cannot be compared.
)";

// An error in the command line; the sentence names the argument.
struct UsageError {
    std::string sentence;
};

enum class Verb { generate, plain, python, wireshark, check, lint, flatten, fingerprint, compare };

struct Arguments {
    Verb verb = Verb::check;
    bool help = false;
    std::vector<std::string> folders;
    std::vector<std::string> files;
    std::string out;
    std::string depfile;
    std::string target;
    std::string prefix;
    std::string package;
    std::string index;
    std::string diagnostics;
    bool list = false;
    bool c = false;
};

// An option of one verb, or of all. One of the two members is set: `text` takes a value, `flag` does not.
struct Option {
    std::string_view name;
    std::optional<Verb> verb;
    std::string Arguments::*text = nullptr;
    bool Arguments::*flag = nullptr;
};

constexpr std::array<Option, 12> options = {{
    {"--out", Verb::generate, &Arguments::out},
    {"--out", Verb::python, &Arguments::out},
    {"--out", Verb::wireshark, &Arguments::out},
    {"--package", Verb::python, &Arguments::package},
    {"--depfile", Verb::generate, &Arguments::depfile},
    {"--target", Verb::generate, &Arguments::target},
    {"--prefix", Verb::plain, &Arguments::prefix},
    {"--list", Verb::generate, nullptr, &Arguments::list},
    {"--c", Verb::generate, nullptr, &Arguments::c},
    {"--index", Verb::generate, &Arguments::index},
    {"--diagnostics", std::nullopt, &Arguments::diagnostics},
    {"--help", std::nullopt, nullptr, &Arguments::help},
}};

constexpr std::array<std::pair<std::string_view, Verb>, 9> verbs = {{
    {"generate", Verb::generate},
    {"plain", Verb::plain},
    {"python", Verb::python},
    {"wireshark", Verb::wireshark},
    {"check", Verb::check},
    {"lint", Verb::lint},
    {"flatten", Verb::flatten},
    {"fingerprint", Verb::fingerprint},
    {"compare", Verb::compare},
}};

std::optional<Verb> verbOf(std::string_view word)
{
    const auto found = std::find_if(verbs.begin(), verbs.end(), [&](const auto& pair) { return pair.first == word; });
    return found == verbs.end() ? std::nullopt : std::optional(found->second);
}

std::string nameOf(Verb verb)
{
    const auto found = std::find_if(verbs.begin(), verbs.end(), [&](const auto& pair) { return pair.second == verb; });
    return std::string(found->first);
}

class ArgumentReader {
public:
    explicit ArgumentReader(const std::vector<std::string>& given) : words(given) {}

    Arguments read();

private:
    void option(const std::string& word);
    std::string valueOf(std::string_view name);
    void complete() const;

    const std::vector<std::string>& words;
    std::size_t next = 1;  // after the verb
    Arguments result;
};

std::string ArgumentReader::valueOf(std::string_view name)
{
    if (next == words.size()) throw UsageError{"'" + std::string(name) + "' needs a value"};
    return words[next++];
}

void ArgumentReader::option(const std::string& word)
{
    if (word.starts_with("-I")) {
        result.folders.push_back(word.size() > 2 ? word.substr(2) : valueOf("-I"));
        return;
    }
    const auto equals = word.find('=');
    const std::string name = word == "-h" ? "--help" : word.substr(0, equals);
    const auto known = std::find_if(options.begin(), options.end(), [&](const Option& o) {
        return o.name == name && (!o.verb || *o.verb == result.verb);
    });
    if (known == options.end()) {
        std::vector<std::string_view> names;
        for (const Option& each : options)
            if (!each.verb || *each.verb == result.verb) names.push_back(each.name);
        throw UsageError{"'" + nameOf(result.verb) + "' has no option " + inQuotes(name) + suggestion(name, names)};
    }
    if (known->flag) {
        if (equals != std::string::npos) throw UsageError{inQuotes(name) + " takes no value"};
        result.*known->flag = true;
        return;
    }
    std::string& place = result.*known->text;
    if (!place.empty()) throw UsageError{inQuotes(name) + " is given twice"};
    place = equals != std::string::npos ? word.substr(equals + 1) : valueOf(name);
    if (place.empty()) throw UsageError{inQuotes(name) + " has an empty value"};
}

bool isName(const std::string& word)
{
    const auto startsName = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
    const auto continuesName = [&](char c) { return startsName(c) || (c >= '0' && c <= '9') || c == '_'; };
    return startsName(word[0]) && std::all_of(word.begin(), word.end(), continuesName);
}

void ArgumentReader::complete() const
{
    const std::string verb = inQuotes(nameOf(result.verb));
    const bool writesFiles = result.verb == Verb::generate || result.verb == Verb::python;
    if (writesFiles && result.out.empty()) throw UsageError{verb + " needs '--out DIR'"};
    if (result.verb == Verb::wireshark && result.out.empty()) throw UsageError{verb + " needs '--out FILE'"};
    if (result.depfile.empty() != result.target.empty()) {
        throw UsageError{result.target.empty() ? "'--depfile' needs '--target NAME'"
                                               : "'--target' needs '--depfile FILE'"};
    }
    if (result.files.empty()) throw UsageError{verb + " needs an interface file"};
    if (result.verb == Verb::compare && result.files.size() != 2) throw UsageError{verb + " needs OLD and NEW"};
    for (const std::string& file : result.files) {
        std::error_code ignored;
        if (result.verb == Verb::compare && fs::is_directory(file, ignored)) continue;
        if (fs::path(file).extension() != ".x") {
            throw UsageError{inQuotes(file) + " is not an interface file: its name does not end in '.x'"};
        }
    }
    for (const std::string& folder : result.folders) {
        std::error_code failed;
        if (!fs::is_directory(folder, failed)) {
            throw UsageError{"'-I " + folder + "': " + (failed ? failed.message() : "it is not a folder")};
        }
    }
    if (!result.diagnostics.empty() && result.diagnostics != "text" && result.diagnostics != "json")
        throw UsageError{"'--diagnostics' takes 'text' or 'json', not " + inQuotes(result.diagnostics) +
                         suggestion(result.diagnostics, {"text", "json"})};
    const std::string letters = " is made of a letter, then letters, digits and '_'";
    if (!result.prefix.empty() && !isName(result.prefix))
        throw UsageError{"the prefix " + inQuotes(result.prefix) + " cannot begin a name, which" + letters};
    if (!result.package.empty() && !isName(result.package))
        throw UsageError{inQuotes(result.package) + " cannot be the name of a package, which" + letters};
}

Arguments ArgumentReader::read()
{
    const auto verb = verbOf(words[0]);
    if (!verb) {
        std::vector<std::string_view> names = {"--help", "--version"};
        for (const auto& [name, ignored] : verbs) names.push_back(name);
        const std::string_view kind = words[0].starts_with('-') ? "option " : "verb ";
        throw UsageError{"there is no " + std::string(kind) + inQuotes(words[0]) + suggestion(words[0], names)};
    }
    result.verb = *verb;
    bool onlyFiles = false;
    while (next < words.size()) {
        const std::string& word = words[next++];
        if (!onlyFiles && word == "--") {
            onlyFiles = true;
        } else if (!onlyFiles && word.size() > 1 && word[0] == '-') {
            option(word);
        } else {
            result.files.push_back(word);
        }
    }
    if (!result.help) complete();
    return result;
}

void printHelp(Verb verb)
{
    switch (verb) {
    case Verb::generate: std::cout << generateUsage << comparing << searching << generateOptions; break;
    case Verb::plain: std::cout << plainUsage << searching << plainOptions; break;
    case Verb::python: std::cout << pythonUsage << searching << pythonOptions; break;
    case Verb::wireshark: std::cout << wiresharkUsage << searching << wiresharkOptions; break;
    case Verb::check: std::cout << checkUsage << comparing << searching; break;
    case Verb::lint: std::cout << lintUsage << comparing << searching; break;
    case Verb::flatten: std::cout << flattenUsage << searching; break;
    case Verb::fingerprint: std::cout << fingerprintUsage << searching; break;
    case Verb::compare: std::cout << compareUsage << searching; break;
    }
}

void complain(const std::string& sentence)
{
    std::cerr << "quorvaxdrc: " << sentence << '\n';
}

// Output

// A file that is generated from each module.
struct Product {
    const char* folder;  // below --out
    const char* suffix;
    std::string (*emit)(const Module&);
};

constexpr Product products[] = {
    {"include/quorvapixdr/types", ".h", emitHeader},
    {"private/quorvapixdr/private", ".h", emitPrivateHeader},
    {"src", ".cc", emitSource},
    {"descriptions", ".cc", emitDescriptions},
    {"documentation", ".cc", emitDocumentation},
};

constexpr Product cHeaders = {"include/quorvapixdr/c", ".h", emitCHeader};

std::vector<Product> productsOf(const Arguments& arguments)
{
    std::vector<Product> all(std::begin(products), std::end(products));
    if (arguments.c) all.push_back(cHeaders);
    return all;
}

std::string pathOf(const std::string& out, const Product& product, const std::string& module)
{
    return (fs::path(out) / product.folder / (module + product.suffix)).string();
}

std::string indexPath(const std::string& out)
{
    return (fs::path(out) / "modules.cc").string();
}

// Replaces the whole file, or nothing of it; a device or a pipe, such as /dev/stdout, is written to instead. Returns
// false after printing why the file cannot be written.
bool writeFile(const std::string& path, const std::string& text)
{
    const auto failed = [&](const std::string& reason) {
        complain("cannot write " + inQuotes(path) + ": " + reason);
        return false;
    };
    std::error_code error;
    if (const fs::path folder = fs::path(path).parent_path(); !folder.empty()) {
        fs::create_directories(folder, error);
        if (error) return failed(error.message());
    }
    const bool isReplaced = fs::is_regular_file(path, error) || !fs::exists(path, error);
    const std::string fresh = isReplaced ? path + ".new" : path;
    const auto removeFresh = [&] {
        if (isReplaced) fs::remove(fresh, error);
    };
    errno = 0;
    std::ofstream file(fresh, std::ios::binary | std::ios::trunc);
    file.write(text.data(), static_cast<std::streamsize>(text.size()));
    file.close();
    if (!file) {
        const std::string reason = errno != 0 ? std::strerror(errno) : "writing failed";
        removeFresh();
        return failed(reason);
    }
    if (isReplaced) fs::rename(fresh, path, error);
    if (error) {
        const std::string reason = error.message();
        removeFresh();
        return failed(reason);
    }
    return true;
}

bool isContent(const std::string& path, const std::string& text)
{
    std::error_code ignored;
    if (!fs::is_regular_file(path, ignored)) return false;  // reading from a pipe would wait
    std::error_code error;
    if (fs::file_size(path, error) != text.size() || error) return false;
    std::ifstream file(path, std::ios::binary);
    std::string content(text.size(), '\0');
    return file.read(content.data(), static_cast<std::streamsize>(content.size())) && content == text;
}

std::string dependencies(const Program& program, const std::string& target)
{
    const auto escaped = [](const std::string& path) {
        std::string out;
        for (const char c : path) {
            if (c == ' ' || c == '#') out += '\\';
            if (c == '$') out += '$';
            out += c;
        }
        return out;
    };
    std::string rule = escaped(target) + ":";
    for (const auto& module : program.modules) rule += " \\\n  " + escaped(module->source.path);
    return rule + '\n';
}

std::vector<const Module*> requestedModules(const Program& program)
{
    std::vector<const Module*> modules;
    for (const auto& module : program.modules) {
        if (module->requested) modules.push_back(module.get());
    }
    return modules;
}

int generate(const Arguments& arguments, const Program& program)
{
    const std::vector<const Module*> modules = requestedModules(program);
    bool written = true;
    const auto put = [&](const std::string& path, const std::string& text) {
        if (!isContent(path, text)) written = writeFile(path, text) && written;
    };
    for (const Module* module : modules)
        for (const Product& product : productsOf(arguments))
            put(pathOf(arguments.out, product, module->source.module), product.emit(*module));
    put(indexPath(arguments.out), emitModuleList(modules, arguments.index.empty() ? "modules" : arguments.index));
    if (!arguments.depfile.empty()) put(arguments.depfile, dependencies(program, arguments.target));
    return written ? success : cannotRun;
}

int python(const Arguments& arguments, const Program& program)
{
    const fs::path package = fs::path(arguments.out) / (arguments.package.empty() ? "quorvapixdr" : arguments.package);
    bool written = true;
    for (const PythonFile& file : emitPython(program)) {
        const std::string path = (package / file.path).string();
        if (!isContent(path, file.text)) written = writeFile(path, file.text) && written;
    }
    return written ? success : cannotRun;
}

int wireshark(const Arguments& arguments, const Program& program)
{
    const auto hasPrograms = [](const auto& module) { return !module->programs.empty(); };
    if (std::none_of(program.modules.begin(), program.modules.end(), hasPrograms)) {
        complain("no file has a 'program' block, so a dissector would find no call");
        return hasDiagnostics;
    }
    const std::string text = emitWireshark(program);
    return isContent(arguments.out, text) || writeFile(arguments.out, text) ? success : cannotRun;
}

int list(const Arguments& arguments, const SearchPath& folders)
{
    for (const std::string& file : arguments.files) {
        for (const Product& product : productsOf(arguments))
            std::cout << pathOf(arguments.out, product, folders.moduleOf(file)) << '\n';
    }
    std::cout << indexPath(arguments.out) << '\n';
    return success;
}

void print(const Diagnostics& list, const Arguments& arguments)
{
    if (arguments.diagnostics == "json")
        list.printJson(std::cerr);
    else
        list.print(std::cerr);
}

void print(std::string_view severity, const std::string& sentence, const Arguments& arguments)
{
    if (arguments.diagnostics == "json")
        std::cerr << jsonMessage(severity, sentence);
    else
        complain(sentence);
}

// True for the verbs whose output, or the output that they prepare, is linked with that of other modules.
bool comparesOtherModules(const Arguments& arguments)
{
    const Verb verb = arguments.verb;
    return !arguments.folders.empty() && (verb == Verb::generate || verb == Verb::check || verb == Verb::lint);
}

// Returns nullopt if the input has errors, which are printed. Sets the exit status.
std::optional<Program> readInterface(const Arguments& arguments, const std::vector<std::string>& files,
                                     const SearchPath& folders, int& status)
{
    Diagnostics errors;
    std::vector<std::string> unreadable;
    Program program = readProgram(files, folders, errors, unreadable);
    const bool complete = !comparesOtherModules(arguments) || readOtherModules(program, folders);
    resolve(program, errors);
    check(program, errors);
    if (arguments.c && errors.count() == 0) checkForC(program, errors);
    print(errors, arguments);
    for (const std::string& sentence : unreadable) print("error", sentence, arguments);
    if (!complete)
        print("note", "too many files below the -I folders: names are compared with some of them", arguments);
    status = !unreadable.empty() ? cannotRun : errors.count() > 0 ? hasDiagnostics : success;
    return status == success ? std::optional(std::move(program)) : std::nullopt;
}

int lint(const Arguments& arguments, const Program& program)
{
    Diagnostics warnings("warning", mostWarnings);
    lint(program, warnings);
    print(warnings, arguments);
    return warnings.count() > 0 ? hasDiagnostics : success;
}

// Reads one side of a comparison. A folder means all interface files below it, and is searched before `folders`.
std::optional<Program> readVersion(const Arguments& arguments, const std::string& path)
{
    std::vector<std::string> folders = arguments.folders;
    std::vector<std::string> files = {path};
    if (fs::is_directory(path)) {
        files.clear();
        for (const auto& entry : fs::recursive_directory_iterator(path)) {
            if (entry.path().extension() == ".x") files.push_back(entry.path().string());
        }
        if (files.empty()) throw UsageError{inQuotes(path) + " contains no interface file"};
        std::sort(files.begin(), files.end());
        folders.insert(folders.begin(), path);
    }
    int ignored = success;
    return readInterface(arguments, files, SearchPath(folders), ignored);
}

int compare(const Arguments& arguments)
{
    const std::optional<Program> before = readVersion(arguments, arguments.files[0]);
    const std::optional<Program> after = readVersion(arguments, arguments.files[1]);
    if (!before || !after) return cannotRun;
    const InterfaceVersion was{*before, fs::is_directory(arguments.files[0])};
    const InterfaceVersion is{*after, fs::is_directory(arguments.files[1])};
    return compare(was, is, std::cout) > 0 ? broken : success;
}

int run(const Arguments& arguments)
{
    if (arguments.verb == Verb::compare) return compare(arguments);
    const SearchPath folders(arguments.folders);
    if (arguments.list) return list(arguments, folders);

    int status = success;
    const std::optional<Program> program = readInterface(arguments, arguments.files, folders, status);
    if (!program) return status;
    switch (arguments.verb) {
    case Verb::generate: return generate(arguments, *program);
    case Verb::python: return python(arguments, *program);
    case Verb::wireshark: return wireshark(arguments, *program);
    case Verb::plain: std::cout << emitRfc4506(*program, {arguments.prefix}); break;
    case Verb::lint: return lint(arguments, *program);
    case Verb::flatten: std::cout << flatten(*program); break;
    case Verb::fingerprint: std::cout << fingerprint(*program); break;
    case Verb::check:
    case Verb::compare: break;
    }
    return success;
}

int run(const std::vector<std::string>& words)
{
    if (words.empty()) throw UsageError{"a verb is missing"};
    if (words[0] == "--help" || words[0] == "-h") {
        std::cout << usage;
        return success;
    }
    if (words[0] == "--version") {
        std::cout << "quorvaxdrc " << QUORVA_VERSION << '\n';
        return success;
    }
    const Arguments arguments = ArgumentReader(words).read();
    if (!arguments.help) return run(arguments);
    printHelp(arguments.verb);
    return success;
}

}  // namespace

}  // namespace quorva::compiler

int main(int count, char** values)
{
    using namespace quorva::compiler;
    try {
        const int status = run(std::vector<std::string>(values + std::min(count, 1), values + count));
        if (std::cout.flush()) return status;
        complain("cannot write to standard output");
    } catch (const UsageError& error) {
        complain(error.sentence + (error.sentence.ends_with('?') ? "" : "; try 'quorvaxdrc --help'"));
    } catch (const std::exception& error) {
        complain(error.what());  // out of memory, or a path that the system refuses
    }
    return cannotRun;
}
