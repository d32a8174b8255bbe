// Prints how often and how fast `guess` finds the type of a message: guess_figures SAMPLES_DIR. Fails if it finds fewer
// types than it should. With MISSES in the environment, prints each message whose type is not the first guess.

#include <inspect/catalogue.h>
#include <inspect/chance.h>
#include <inspect/guess.h>
#include <inspect/json.h>
#include <inspect/object.h>
#include <inspect/sample.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

using namespace quorva;
using namespace quorva::inspect;

namespace {

// Processor time, because other processes share the machine.
double milliseconds(std::clock_t since = 0)
{
    return 1000.0 * static_cast<double>(std::clock() - since) / CLOCKS_PER_SEC;
}

const bool showsMisses = std::getenv("MISSES") != nullptr;

// The results over messages of one size class.
struct Tally {
    std::size_t messages = 0, first = 0, firstOrSame = 0, among = 0, amongOrSame = 0;
    double time = 0, worst = 0;

    double share(std::size_t part) const
    {
        return messages == 0 ? 100 : 100.0 * static_cast<double>(part) / static_cast<double>(messages);
    }

    void print(const std::string& what) const
    {
        std::printf("%-34s %7zu %6.1f %6.1f %6.1f %6.1f %8.3f %8.3f\n", what.c_str(), messages, share(first),
                    share(firstOrSame), share(among), share(amongOrSame), time / static_cast<double>(messages), worst);
    }
};

// The results over a set of messages.
struct Figures {
    std::string title;
    Tally large{}, small{};

    void add(const Guesser& guesser, const Type& type, const Bytes& message)
    {
        const auto start = std::clock();
        const auto guesses = guesser.guess(message, 5);
        const double taken = milliseconds(start);
        Tally& tally = message.size() >= 64 ? large : small;
        ++tally.messages;
        tally.time += taken;
        tally.worst = std::max(tally.worst, taken);
        for (std::size_t i = 0; i < guesses.size(); ++i) {
            const bool isSame = std::ranges::count(guesses[i].same, &type) > 0, isIt = guesses[i].type == &type;
            tally.first += i == 0 && isIt;
            tally.firstOrSame += i == 0 && (isIt || isSame);
            tally.among += isIt;
            tally.amongOrSame += isIt || isSame;
        }
        if (showsMisses && (guesses.empty() || guesses[0].type != &type)) {
            std::printf("  %s, %zu bytes:", type.name, message.size());
            for (const Guess& guess : guesses)
                std::printf(" %s%s%s=%.1f", guess.type->name, std::ranges::count(guess.same, &type) ? "*" : "",
                            guess.fit == Fit::cut        ? "..."
                            : guess.fit == Fit::leftOver ? "+"
                                                         : "",
                            guess.score);
            std::printf("\n");
        }
    }

    // Prints the figures. Returns true if this share of the large messages has the right type, or one with the same
    // messages, as the first guess, and this share of the small ones has it among the first five.
    bool reach(double firstOfLarge, double amongSmall) const
    {
        large.print(title + ", 64 bytes and more");
        small.print(title + ", smaller");
        return large.share(large.firstOrSame) >= firstOfLarge && small.share(small.amongOrSame) >= amongSmall;
    }
};

bool measureSamples(const Guesser& guesser, const Catalogue& catalogue, const char* folder)
{
    Figures figures{"samples/"};
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        const std::filesystem::path& path = entry.path();
        if (path.extension() != ".json" || path.parent_path().filename() == "refused") continue;
        const Type* const type = catalogue.find(path.stem().extension().string().substr(1));
        if (!type) continue;
        std::stringstream text;
        text << std::ifstream(path).rdbuf();
        Object object = fromJson(*type, text.str());
        Bytes message(longestMessage);
        message.resize(runPass(Mode::encode, type->routine, object.data(), message).length);
        figures.add(guesser, *type, message);
    }
    return figures.reach(95, 80);
}

bool measureInvented(const Guesser& guesser, const Catalogue& catalogue, const char* title, Extent extent,
                     bool outermostOnly, double firstOfLarge, double amongSmall)
{
    Figures figures{title};
    Sampler sampler;
    std::set<const Type*> used;
    for (const Type* type : catalogue.types())
        for (const Member& member : type->members) used.insert(member.use.type);
    for (const Type* type : catalogue.types()) {
        if (outermostOnly && (type->kind == TypeKind::enumeration || used.contains(type))) continue;
        for (std::uint64_t seed = 1; seed <= 4; ++seed)
            figures.add(guesser, *type, sampler.sample(*type, {.extent = extent, .seed = seed, .budget = 256}));
    }
    return figures.reach(firstOfLarge, amongSmall);
}

// Messages that many types accept for long.
void measureHostile(const Guesser& guesser, const Catalogue& catalogue)
{
    Tally tally;
    const auto measure = [&](const Bytes& message) {
        const auto start = std::clock();
        (void)guesser.guess(message, 5);
        const double taken = milliseconds(start);
        ++tally.messages;
        tally.time += taken;
        tally.worst = std::max(tally.worst, taken);
    };
    const auto measureUnits = [&](std::uint32_t count, std::uint32_t unit) {
        Bytes message(65532);
        for (std::size_t i = 0; i < message.size(); ++i)
            message[i] = static_cast<unsigned char>((i < 4 ? count : unit) >> (24 - 8 * (i % 4)));
        measure(message);
    };
    for (std::uint32_t divisor = 1; divisor < 40; ++divisor)
        for (const std::uint32_t unit : {0u, 1u, 2u, 5u, 300u, 0x20202020u}) measureUnits(16383 / divisor, unit);
    for (std::uint32_t unit = 0; unit < 200; ++unit) measureUnits(unit, unit);
    Sampler sampler;
    for (std::size_t i = 0; i < catalogue.types().size(); i += 4)
        measure(sampler.sample(*catalogue.types()[i], {.extent = Extent::most, .budget = 65000}));
    tally.print("hostile, 64 KB");
}

}  // namespace

int main(int count, char** words)
{
    if (count != 2) {
        std::fputs("usage: guess_figures SAMPLES_DIR\n", stderr);
        return 2;
    }
    const auto begin = std::clock();
    const Catalogue catalogue;
    std::printf("catalogue: %.1f ms\n", milliseconds(begin));
    const auto start = std::clock();
    const Guesser guesser(catalogue.types());
    std::printf("index: %.1f ms\n", milliseconds(start));
    std::printf("%-34s %7s %6s %6s %6s %6s %8s %8s\n", "", "", "first", "+same", "of 5", "+same", "mean ms", "worst");
    bool isGood = measureSamples(guesser, catalogue, words[1]);
    isGood &= measureInvented(guesser, catalogue, "plausible", Extent::usual, false, 90, 45);
    isGood &= measureInvented(guesser, catalogue, "outermost, plausible", Extent::usual, true, 88, 90);
    isGood &= measureInvented(guesser, catalogue, "noise", Extent::random, false, 75, 35);
    isGood &= measureInvented(guesser, catalogue, "outermost, noise", Extent::random, true, 85, 55);
    measureHostile(guesser, catalogue);
    if (isGood) return 0;
    std::puts("A share is below its limit.");
    return 1;
}
