// Writes the first inputs of the drivers: messages of every type, invented and from samples, and their JSON.

#include "damage.h"
#include "inspect/catalogue.h"
#include "inspect/json.h"
#include "inspect/layout.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;
using namespace quorva;
using namespace quorva::fuzz;

namespace {

void write(const fs::path& file, std::span<const unsigned char> bytes)
{
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

void writeBoth(const fs::path& folder, const std::string& name, const Type& type, Bytes message)
{
    write(folder / "messages" / name, Input{&type, 0, message}.bytes());
    inspect::Object object(type);
    if (!runPass(Mode::decode, type.routine, object.data(), message).succeeded) return;
    const std::string json = inspect::toJson(type, object.data()).dump();
    write(folder / "json" / name,
          Input{&type, 0, {reinterpret_cast<const unsigned char*>(json.data()), json.size()}}.bytes());
}

}  // namespace

int main(int count, char** words)
{
    if (count != 3) {
        std::fputs("usage: fuzz_seeds FOLDER SAMPLES\n", stderr);
        return 2;
    }
    const fs::path folder = words[1];
    for (const char* each : {"messages", "json"}) fs::create_directories(folder / each);
    inspect::Sampler sampler;
    for (const Type* type : allTypes()) {
        const std::string name = type->name;
        writeBoth(folder, name + "-least", *type, sampler.sample(*type, {inspect::Extent::least, 0, 0}));
        writeBoth(folder, name + "-fullest", *type, sampler.sample(*type, {inspect::Extent::fullest, 0, 200}));
        for (std::uint64_t seed = 0; seed < std::max<std::size_t>(1, inspect::armsOf(*type).size()); ++seed)
            writeBoth(folder, name + '-' + std::to_string(seed), *type,
                      sampler.sample(*type, {inspect::Extent::random, seed, 160}));
    }
    const inspect::Catalogue catalogue;
    for (const auto& entry : fs::recursive_directory_iterator(words[2])) {
        if (entry.path().extension() != ".json" || entry.path().parent_path().filename() == "refused") continue;
        const Type* const type = catalogue.find(entry.path().stem().extension().string().substr(1));
        std::ifstream file(entry.path());
        const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        if (!type) throw std::runtime_error("no type for " + entry.path().string());
        inspect::Object object = inspect::fromJson(*type, inspect::parseJson(text));
        Bytes message(longestMessage);
        message.resize(runPass(Mode::encode, type->routine, object.data(), message).length);
        writeBoth(folder, "sample-" + entry.path().stem().string(), *type, message);
    }
}
