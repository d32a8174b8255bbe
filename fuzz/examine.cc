// Any bytes, examined as any type: the tree, the annotation, the findings, the differences from a damaged copy, the
// guesses and the readers of several messages are consistent with the bytes, with each other and with the codec. The
// variant chooses the damage and the fragments; types are guessed if it is a multiple of 16.

#include "explain/layout.h"
#include "inspect/annotate.h"
#include "inspect/diff.h"
#include "inspect/findings.h"
#include "inspect/guess.h"
#include "inspect/json.h"
#include "inspect/messages.h"
#include "inspect/tree_json.h"
#include "mutate.h"

#include <algorithm>
#include <functional>
#include <initializer_list>

using namespace quorva;
using namespace quorva::fuzz;
using inspect::FindingCode;
using inspect::Node;
using inspect::Tree;

namespace {

using Message = std::span<const unsigned char>;

constexpr std::size_t mostSamples = 32;  // parts or offsets of one message that are looked up, each in linear time

void require(bool holds, const Tree& tree, const std::string& property)
{
    if (!holds) throw Finding{std::string(tree.type().name) + ": not so: " + property};
}

std::size_t linesIn(std::string_view text)
{
    return static_cast<std::size_t>(std::ranges::count(text, '\n'));
}

std::size_t stepOver(std::size_t size)
{
    return 1 + size / mostSamples;
}

bool holdsByte(const Node& node, std::size_t offset)
{
    return offset >= node.offset && offset - node.offset < node.size;
}

// The parts inside each part follow each other within it, and their number is in proportion to the bytes.
void checkTree(const Tree& tree)
{
    const auto nodes = tree.nodes();
    require(nodes.size() <= 4 * tree.bytes().size() + inspect::deepestNesting, tree, "few parts for each byte");
    require(nodes[0].size == tree.length() && nodes[0].end == nodes.size(), tree, "the outermost part is everything");
    for (std::uint32_t at = 0; at < nodes.size(); ++at) {
        std::size_t next = nodes[at].offset;
        std::uint32_t i = Tree::first(at);
        for (; i < nodes[at].end; i = nodes[i].end) {
            require(nodes[i].parent == at && nodes[i].offset >= next, tree, "parts are in order");
            next = nodes[i].offset + nodes[i].size;
        }
        require(i == nodes[at].end && next <= nodes[at].offset + nodes[at].size, tree, "parts are within their part");
    }
    inspect::treeJson(tree).dump();
}

// A text or JSON value of the inspector has all parts, and is valid UTF-8, which `dump` requires.
void checkAnnotation(const Tree& tree)
{
    std::size_t next = 0;
    const auto lines = inspect::annotatedLines(tree);
    for (const inspect::AnnotatedLine& line : lines) {
        require(line.offset == next && line.size <= 4, tree, "each byte is in one line");
        next += line.size;
    }
    require(next == tree.bytes().size(), tree, "all bytes have a line");
    require(lines.size() <= tree.nodes().size() + tree.bytes().size() + 2, tree, "few lines for each byte");
    require(linesIn(inspect::annotationText(tree)) == lines.size(), tree, "each line is one line of the text");
    std::string text;
    inspect::printAnnotationJson(tree, [&](std::string_view block) { text += block; });
    const inspect::Json json = inspect::Json::parse(text);
    require(json["nodes"].size() == tree.nodes().size(), tree, "each part is in the JSON form");
    require(json.dump(2) + '\n' == text, tree, "the blocks print as one document");
}

// The innermost part with a byte, and the part with a path, are found.
void checkLookups(const Tree& tree)
{
    const auto nodes = tree.nodes();
    for (std::size_t offset = 0; offset <= tree.bytes().size(); offset += stepOver(tree.bytes().size())) {
        const auto found = inspect::partAt(tree, offset);
        require(found.has_value() == (offset < tree.length()), tree, "decoded bytes belong to parts");
        if (!found) continue;
        require(holdsByte(nodes[*found], offset), tree, "the part holds the byte");
        for (std::uint32_t i = Tree::first(*found); i < nodes[*found].end; i = nodes[i].end)
            require(!holdsByte(nodes[i], offset), tree, "the part is the innermost one");
    }
    for (std::size_t k = 0; k < nodes.size(); k += stepOver(nodes.size())) {
        const auto at = static_cast<std::uint32_t>(k);
        const std::string path = tree.pointer(at);
        const auto found = inspect::partAt(tree, std::string_view(path));
        require(found && tree.pointer(*found) == path, tree, "there is a part " + path);
        require(linesIn(inspect::partText(tree, at)) == 0, tree, "the text of a part is one line");
        inspect::partJson(tree, at).dump();
    }
    require(!inspect::partAt(tree, std::string_view("/no such member")), tree, "unknown paths have no part");
}

// The object of an accepted message has the tree's JSON form, and encodes to the bytes of the message unless a finding
// says that it cannot.
void checkObject(const Tree& tree, const std::vector<inspect::Finding>& findings)
{
    const Type& type = tree.type();
    inspect::Object object(type);
    Bytes bytes(tree.bytes().begin(), tree.bytes().end());
    const Pass pass = inspect::codeObject(Mode::decode, type, object.data(), bytes);
    require(pass.succeeded && pass.length == tree.length(), tree, "the codec decodes what the tree has");
    require(inspect::treeJson(tree) == inspect::objectJson(type, object.data()), tree,
            "tree and object have one JSON form");
    Bytes again(pass.length);
    inspect::codeObject(Mode::encode, type, object.data(), again);
    const auto has = [&](std::initializer_list<FindingCode> codes) {
        return std::ranges::any_of(findings, [&](const inspect::Finding& finding) {
            return std::ranges::find(codes, finding.code) != codes.end();
        });
    };
    const bool isEqual = std::equal(again.begin(), again.end(), bytes.begin());
    if (isEqual || has({FindingCode::booleanNotZeroOrOne})) return;  // the codec keeps some of these Booleans
    require(
        has({FindingCode::paddingNotZero, FindingCode::valueCut, FindingCode::countCut, FindingCode::textHoldsZero}),
        tree, "a finding tells that an encode changes the bytes");
}

void checkFindings(const Tree& tree)
{
    const std::vector<inspect::Finding> findings = inspect::findingsOf(tree);
    require(findings.size() <= 4 * tree.nodes().size(), tree, "few findings for each part");
    const auto accepted = std::span(findings).first(findings.size() - tree.stopped().has_value());
    require(std::ranges::is_sorted(accepted, {}, &inspect::Finding::offset), tree, "findings are in order");
    for (std::size_t i = 0; i < findings.size(); ++i) {
        const inspect::Finding& finding = findings[i];
        require(finding.offset <= tree.bytes().size(), tree, "findings are within the message");
        require((finding.code == FindingCode::refused) == (tree.stopped() && i + 1 == findings.size()), tree,
                "the refusal is the last finding");
        if (i % stepOver(findings.size()) == 0 && finding.code != FindingCode::refused)
            require(inspect::partAt(tree, std::string_view(finding.path)) == finding.node, tree,
                    "a finding is at the part " + finding.path);
        require(linesIn(inspect::findingText(finding, "file")) == 0, tree, "a finding is one line");
        inspect::findingJson(finding).dump();
    }
    const std::string cause = inspect::likelyCause(tree), screen = inspect::failureText(tree);
    require(screen.empty() != tree.stopped().has_value() && (cause.empty() || tree.stopped()), tree,
            "a failure is explained");
    require(screen.ends_with(cause + '\n') || cause.empty(), tree, "the screen ends in the cause");
    require(linesIn(screen) <= 32, tree, "a failure is explained on one screen");
    if (!tree.stopped()) checkObject(tree, findings);
}

void checkDifferences(const Tree& a, const Tree& b)
{
    require(inspect::differencesOf(a, a).empty(), a, "equal messages do not differ");
    const auto differences = inspect::differencesOf(a, b);
    const auto valueOf = [](const Tree& tree) { return tree.bytes().first(tree.length()); };
    if (!a.stopped() && !b.stopped())
        require(differences.empty() == std::ranges::equal(valueOf(a), valueOf(b)), a, "other bytes are a difference");
    require(differences.empty() == inspect::differencesOf(b, a).empty(), a, "differences are there in both directions");
    require(differences.size() <= 2 * (a.nodes().size() + b.nodes().size()), a, "few differences for each part");
    for (std::size_t i = 0; i < differences.size(); ++i) {
        const inspect::Difference& difference = differences[i];
        require(linesIn(inspect::differenceText(difference, true)) == 1, a, "a difference is one line");
        inspect::differenceJson(difference).dump();
        if (i % stepOver(differences.size()) != 0) continue;
        const Tree& tree = difference.change == inspect::Change::removed ? a : b;
        require(inspect::partAt(tree, std::string_view(difference.path)).has_value(), tree,
                "the part " + difference.path + " of a difference is there");
    }
}

// The guesses are sorted, and are types that the message fits in the way that they tell.
void checkGuesses(const Tree& tree)
{
    constexpr std::size_t most = 8;
    static const inspect::Guesser guesser(allTypes());
    const std::vector<inspect::Guess> guesses = guesser.guess(tree.bytes(), most);
    require(guesses.size() <= most && std::ranges::is_sorted(guesses, std::greater(), &inspect::Guess::score), tree,
            "guesses are sorted");
    for (const inspect::Guess& guess : guesses) {
        std::vector<const Type*> types = guess.same;
        types.push_back(guess.type);
        for (const Type* type : types) {
            const Tree fitting(*type, tree.bytes());
            const bool decodes = guess.fit == inspect::Fit::whole || guess.fit == inspect::Fit::leftOver;
            require(fitting.stopped().has_value() != decodes, fitting, "the guess decodes as it tells");
            require(decodes ? guess.used == fitting.length() : guess.used <= fitting.length(), fitting,
                    "the guess has as many bytes as it tells");
            require((guess.fit == inspect::Fit::whole) == (decodes && guess.used == tree.bytes().size()), fitting,
                    "the guess has a rest as it tells");
        }
    }
}

void appendUnit(Bytes& stream, std::size_t unit)
{
    for (int shift = 24; shift >= 0; shift -= 8) stream.push_back(static_cast<unsigned char>(unit >> shift));
}

// The message, twice in one stream, is read back: as records of fragments, as messages of one length, and from a line
// of a log, where a message that looks like something else may be left out.
void checkStreams(const Tree& tree, std::size_t fragment)
{
    const Message message = tree.bytes();
    Bytes framed, fixed;
    for (int time = 0; time < 2; ++time) {
        std::size_t at = 0;
        do {
            const std::size_t size = std::min(fragment, message.size() - at);
            appendUnit(framed, size | (at + size == message.size() ? 0x80000000u : 0u));
            framed.insert(framed.end(), message.begin() + static_cast<std::ptrdiff_t>(at),
                          message.begin() + static_cast<std::ptrdiff_t>(at + size));
            at += size;
        } while (at < message.size());
        fixed.insert(fixed.end(), message.begin(), message.end());
    }
    const auto sourceOf = [](Message stream) -> inspect::Source {
        return [stream](std::span<unsigned char> block) mutable {
            const std::size_t size = std::min(block.size(), stream.size());
            std::copy_n(stream.begin(), size, block.begin());
            stream = stream.subspan(size);
            return size;
        };
    };
    const auto readsTwice = [&](auto messages, std::size_t apart) {
        inspect::Message read;
        for (std::size_t time = 0; time < 2; ++time)
            if (!messages.next(read) || read.offset != time * apart || !std::ranges::equal(read.bytes, message))
                return false;
        return !messages.next(read);
    };
    require(readsTwice(inspect::FramedMessages(sourceOf(framed)), framed.size() / 2), tree, "records are read back");
    if (!message.empty())
        require(readsTwice(inspect::FixedMessages(sourceOf(fixed), message.size()), message.size()), tree,
                "messages of one length are read back");
    for (const inspect::HexRun& run : inspect::hexRunsOf("log: " + inspect::hexDigits(message) + " end"))
        require(std::ranges::equal(run.bytes, message), tree, "a message in a log is read as a whole");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    return runDriver([&] {
        const Input input = Input::of({data, size});
        if (input.contents.size() > longestMessage) return;
        const Tree tree(*input.type, input.contents);
        checkTree(tree);
        checkAnnotation(tree);
        checkLookups(tree);
        checkFindings(tree);
        Bytes damaged(input.contents.begin(), input.contents.end());
        Chance chance(input.variant);
        for (int i = 0; i <= input.variant % 3; ++i)
            damage(damaged, controlUnits(*input.type, damaged), input.contents, chance);
        checkDifferences(tree, Tree(*input.type, damaged));
        checkStreams(tree, 1 + input.variant * 4u);
        if (input.variant % 16 == 0) checkGuesses(tree);  // which takes longer than all the rest
    });
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most, unsigned seed)
{
    return mutateMessage(data, size, most, seed);
}
