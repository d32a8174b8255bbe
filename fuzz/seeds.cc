// Writes the first inputs of every driver, the same ones in every run: messages of all types and from the samples,
// their JSON, hexadecimal and base64 forms, and interface files.

#include "compiler/evolve/flatten.h"
#include "compiler/front/check.h"
#include "compiler/front/resolve.h"
#include "compiler/front/source.h"
#include "damage.h"
#include "inspect/catalogue.h"
#include "inspect/input.h"
#include "inspect/json.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;
using namespace quorva;
using namespace quorva::fuzz;

namespace {

// Interface files of more bytes are left out: mutation and flattening gain nothing from their length.
constexpr std::size_t longestInterface = 12288;

std::string textOf(const fs::path& file)
{
    std::string text;
    if (const auto reason = compiler::readFile(file.string(), text))
        throw std::runtime_error(file.string() + ": " + *reason);
    return text;
}

std::span<const unsigned char> bytesOf(std::string_view text)
{
    return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

// The seeds below one folder, in a folder for each kind. Those of an earlier run are removed.
class Seeds {
public:
    explicit Seeds(fs::path folder) : root(std::move(folder))
    {
        for (const char* kind : {"messages", "json", "hex_input", "interface"}) {
            fs::remove_all(root / kind);
            fs::create_directories(root / kind);
        }
    }

    void write(const char* kind, const std::string& name, std::span<const unsigned char> bytes)
    {
        std::ofstream file(root / kind / name, std::ios::binary);
        file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        file.close();
        if (!file) throw std::runtime_error("cannot write " + (root / kind / name).string());
        ++count;
    }

    void writeText(const char* kind, const std::string& name, std::string_view text)
    {
        write(kind, name, bytesOf(text));
    }

    void writeMessage(const std::string& name, const Type& type, std::span<const unsigned char> message,
                      std::uint8_t variant = 0)
    {
        write("messages", name, Input{&type, variant, message}.bytes());
    }

    // A well-formed message and its JSON form.
    void writeBothForms(const std::string& name, const Type& type, Bytes message)
    {
        writeMessage(name, type, message);
        inspect::Object object(type);
        if (!runPass(Mode::decode, type.routine, object.data(), message).succeeded)
            throw std::runtime_error(std::string(type.name) + ": its message is refused");
        const std::string json = inspect::objectJson(type, object.data()).dump();
        write("json", name, Input{&type, 0, bytesOf(json)}.bytes());
    }

    std::size_t written() const { return count; }

private:
    fs::path root;
    std::size_t count = 0;
};

// For each type a full message with its JSON, a random one and a damaged one.
void writeEveryType(Seeds& seeds)
{
    inspect::Sampler sampler;
    Chance chance(1);
    for (const Type* type : allTypes()) {
        const std::string name = type->name;
        const auto sample = [&](const inspect::Recipe& recipe) { return sampler.sample(*type, recipe); };
        seeds.writeBothForms(name + "-most", *type, sample({inspect::Extent::most, 0, 200}));
        seeds.writeMessage(name + "-random", *type, sample({inspect::Extent::random, chance.next(), 160}));
        Generated damaged = generate(sampler, *type, chance);
        damage(damaged.message, damaged.control, generate(sampler, *type, chance).message, chance);
        seeds.writeMessage(name + "-damaged", *type, damaged.message, static_cast<std::uint8_t>(chance.next()));
    }
}

// The samples as messages, and those messages in the forms that the inspector prints.
void writeSamples(Seeds& seeds, const fs::path& samples)
{
    const inspect::Catalogue catalogue;
    for (const auto& entry : fs::recursive_directory_iterator(samples)) {
        if (entry.path().extension() != ".json" || entry.path().parent_path().filename() == "refused") continue;
        const std::string name = entry.path().stem().string();  // "print_job_submitted.JobNotification"
        const Type* const type = catalogue.find(fs::path(name).extension().string().substr(1));
        if (!type) throw std::runtime_error("no type for " + entry.path().string());
        inspect::Object object = inspect::fromJson(*type, textOf(entry.path()));
        Bytes message(longestMessage);
        message.resize(runPass(Mode::encode, type->routine, object.data(), message).length);
        seeds.writeBothForms("sample-" + name, *type, message);
        seeds.writeText("hex_input", name + "-hex", inspect::hexText(message));
        seeds.writeText("hex_input", name + "-digits", inspect::hexDigits(message));
        seeds.writeText("hex_input", name + "-base64", inspect::base64Text(message));
    }
}

// The parts of a file: the whole of an interface file, and each snippet of a file of compiler cases. In the latter,
// lines that begin with one of three marks separate the snippets, and lines that begin with ">>" are expected messages.
std::vector<std::string> partsOf(const std::string& text)
{
    std::vector<std::string> parts(1);
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("---- ") || line.starts_with("-- ") || line.starts_with("=== "))
            parts.emplace_back();
        else if (!line.starts_with(">>"))
            parts.back() += line + '\n';
    }
    return parts;
}

// The file that an interface file and its imports flatten to, if they are free of errors.
std::optional<std::string> flattened(const fs::path& file, const fs::path& folder)
{
    compiler::Diagnostics errors;
    std::vector<std::string> unreadable;
    compiler::Program program =
        compiler::readProgram({file.string()}, compiler::SearchPath({folder.string()}), errors, unreadable);
    compiler::resolve(program, errors);
    compiler::check(program, errors);
    if (errors.count() > 0 || !unreadable.empty()) return std::nullopt;
    return compiler::flatten(program);
}

// The interface files and compiler cases of a folder. The driver has no file to import, so that a file with imports is
// also written in its flattened form.
void writeInterfaces(Seeds& seeds, const fs::path& folder, const std::string& prefix)
{
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        const std::string extension = entry.path().extension().string();
        if (extension != ".x" && extension != ".case" && extension != ".cases") continue;
        std::string name = prefix + '-' + fs::relative(entry.path(), folder).string();
        std::ranges::replace(name, '/', '-');
        std::size_t number = 0;
        const auto write = [&](const std::string& text) {
            if (text.size() <= longestInterface)
                seeds.writeText("interface", name + '-' + std::to_string(number++), text);
        };
        const std::string text = textOf(entry.path());
        for (const std::string& part : partsOf(text)) write(part);
        if (extension != ".x" || text.find("import ") == text.npos) continue;
        if (const auto flat = flattened(entry.path(), folder)) write(*flat);
    }
}

}  // namespace

int main(int count, char** words)
{
    if (count != 3) {
        std::fputs(
            "usage: fuzz_seeds FOLDER PROJECT\n\n"
            "Writes seeds to FOLDER/messages, json, hex_input and interface, and removes those of an earlier run.\n"
            "PROJECT is the root of the source tree.\n",
            stderr);
        return 2;
    }
    try {
        const fs::path project = words[2];
        Seeds seeds(words[1]);
        writeEveryType(seeds);
        writeSamples(seeds, project / "samples");
        writeInterfaces(seeds, project / "types", "types");
        writeInterfaces(seeds, project / "tests", "tests");
        std::printf("%zu seeds\n", seeds.written());
    } catch (const std::exception& error) {
        std::fprintf(stderr, "fuzz_seeds: %s\n", error.what());
        return 1;
    }
}
