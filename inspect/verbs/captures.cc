// Reads messages of captures, and prints lists of them.

#include "captures.h"

#include "arguments.h"
#include "inspect/capture/bodies.h"
#include "inspect/findings.h"
#include "inspect/forms.h"
#include "inspect/tree_json.h"
#include "output.h"
#include "support/text.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace quorva::inspect {

namespace {

using namespace capture;

std::FILE* openFile(const std::string& file)
{
    std::FILE* const stream = file == "-" ? stdin : std::fopen(file.c_str(), "rb");
    if (!stream) throw Stop{systemError, shownName(file) + ": cannot be read: " + std::strerror(errno)};
    return stream;
}

// Calls `action`, and turns its errors into a Stop.
template <class Action>
auto reading(const std::string& file, Action action)
{
    try {
        return action();
    } catch (const CaptureError& error) {
        throw Stop{inputError, shownName(file) + ": " + error.what()};
    }
}

std::string hexText(std::uint32_t number)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%08x", number);
    return text;
}

std::string procedureText(const RpcMessage& message, const Procedures& procedures)
{
    return message.numbers ? procedures.text(*message.numbers) : "?";
}

std::string bytesText(std::uint64_t count)
{
    return grouped(count) + (count == 1 ? " byte" : " bytes");
}

// "0.812 ms"
std::string elapsedText(const Time& elapsed)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.3f ms", 1000 * elapsed.inSeconds());
    return text;
}

// The first columns of a text of UTF-8.
std::string cutTo(const std::string& text, std::size_t columns)
{
    if (support::columns(text) <= columns) return text;
    std::size_t at = 0;
    for (std::size_t column = 0; column + 3 < columns; ++column) do
            ++at;
        while (at < text.size() && support::continuesCharacter(text[at]));
    return text.substr(0, at) + "...";
}

// Columns of a line; nullopt if standard output is not a terminal.
std::optional<std::size_t> terminalColumns()
{
    winsize size{};
    if (isatty(STDOUT_FILENO) != 1 || ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0)
        return std::nullopt;
    return size.ws_col;
}

}  // namespace

bool isCaptureFile(const std::string& file)
{
    const int descriptor = file == "-" ? STDIN_FILENO : open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) return false;
    char start[24];
    const off_t at = lseek(descriptor, 0, SEEK_CUR);
    const ssize_t size = at < 0 ? -1 : pread(descriptor, start, sizeof start, at);
    if (descriptor != STDIN_FILENO) close(descriptor);
    return size > 0 && isCapture({start, static_cast<std::size_t>(size)});
}

CapturedBody capturedBody(const std::string& file, std::uint64_t number)
{
    return reading(file, [&] {
        Reader reader(openFile(file));
        std::uint64_t last = 0;
        for (Shown shown; reader.next(shown);) {
            const RpcMessage* const message = std::get_if<RpcMessage>(&shown);
            if (!message) continue;
            last = message->number;
            if (last != number) continue;
            const std::string name = shownName(file) + ": message " + std::to_string(number);
            if (!message->refusal.empty()) throw Stop{codingError, name + ": " + message->refusal};
            const Procedures procedures;
            const Body body = bodyOf(*message, procedures, nullptr);
            const Record& record = message->record;
            std::string place = std::string(message->isReply ? "reply " : "call ") + hexText(message->xid) + " of " +
                                procedureText(*message, procedures) +
                                (record.firstPacket == record.lastPacket ? ", packet " : ", packets ") +
                                std::to_string(record.firstPacket);
            if (record.lastPacket != record.firstPacket) place += " to " + std::to_string(record.lastPacket);
            place += ", " + (record.time - reader.start()).text() + " s";
            if (!record.cut.empty()) place += "; cut: " + record.cut;
            const auto bytes = message->body();
            return CapturedBody{body.type, place, body.unknown, Bytes(bytes.begin(), bytes.end())};
        }
        throw Stop{found, shownName(file) + ": there is no message " + std::to_string(number) + ": the capture has " +
                              std::to_string(last)};
    });
}

void CaptureList::declare(CLI::App& app)
{
    app.add_option("--only", only, "of a capture: only calls and replies of this procedure, a name or a number")
        ->allow_extra_args(false)
        ->type_name("[PROGRAM.]PROCEDURE");
    auto* const traces = app.add_flag("--full", full, "of a capture: print the trace of each message");
    app.add_flag("--json", json, "of a capture: print a line of JSON for each message")->excludes(traces);
}

// Prints messages and losses, and notes the worst status.
class CaptureList::Printer {
public:
    Printer(const CaptureList& fromOptions, const std::string& ofFile, const Type* usualType, const ShowTrace& show)
        : options(fromOptions), file(ofFile), usual(usualType), showTrace(show)
    {
        for (const std::string& word : options.only) {
            patterns.emplace_back(word);
            if (patterns.back().isKnown(procedures)) continue;
            const auto names = procedures.names();
            throw Stop{usageError, "--only " + word + ": there is no such program or procedure" +
                                       didYouMean(word.substr(word.rfind('.') + 1), names)};
        }
    }

    void print(const Shown& shown, const Time& start)
    {
        if (const RpcMessage* const message = std::get_if<RpcMessage>(&shown)) {
            if (!isWanted(*message)) return;
            isAny = true;
            printMessage(*message, start);
        } else {
            printLoss(std::get<Loss>(shown), start);
        }
    }

    int worst() const { return std::max<int>(status, isAny ? success : found); }
    void note(int further) { status = std::max(status, further); }

private:
    // What a line says besides the envelope.
    struct Decoded {
        Json value;
        std::string type;  // the name; "void"; empty if it is unknown
        Json refused;      // null if the whole body was decoded
        std::size_t leftOver = 0, length = 0;
        std::string unknown;
    };

    bool isWanted(const RpcMessage& message) const
    {
        if (patterns.empty()) return true;
        return message.numbers && std::ranges::any_of(patterns, [&](const ProcedurePattern& pattern) {
                   return pattern.matches(*message.numbers, procedures.find(*message.numbers));
               });
    }

    Decoded decoded(const RpcMessage& message, const Body& body)
    {
        Decoded made;
        const auto bytes = message.body();
        made.unknown = body.unknown;
        if (body.isVoid) {
            made.type = "void";
            made.leftOver = bytes.size();
        } else if (body.type && message.bodySize() > longestMessage) {
            made.type = body.type->name;
            made.unknown = "longer than " + bytesText(longestMessage);
        } else if (body.type) {
            const Tree tree(*body.type, bytes);
            made.type = body.type->name;
            made.value = treeJson(tree);
            made.length = tree.length();
            if (const auto& stopped = tree.stopped())
                made.refused = {{"path", stopped->failure.path},
                                {"offset", stopped->failure.offset},
                                {"reason", stopped->failure.reason}};
            else
                made.leftOver = bytes.size() - tree.length();
        }
        if (!made.unknown.empty() || !made.refused.is_null() || !message.record.cut.empty()) note(codingError);
        if (made.leftOver > 0) note(found);
        return made;
    }

    void printMessage(const RpcMessage& message, const Time& start)
    {
        const Body body = bodyOf(message, procedures, usual);
        const Decoded made = decoded(message, body);
        if (options.json) {
            inspect::print(messageJson(message, made, start).dump() + '\n');
            return;
        }
        std::string line = headOf(message, start);
        if (!made.type.empty() && message.hasBody) line += "  " + made.type;
        const std::string problems = problemsOf(message, made);
        if (options.full) return printFull(message, body, line + problems);
        if (!made.value.is_null()) {
            constexpr std::size_t usualColumns = 60, leastColumns = 20;
            const auto columns = terminalColumns();
            const std::size_t used = support::columns(line) + support::columns(problems) + 2;
            const std::size_t room = !columns ? usualColumns : *columns > used ? *columns - used : 0;
            line += "  " + cutTo(made.value.dump(), std::max(room, leastColumns));
        }
        inspect::print(line + problems + '\n');
    }

    void printFull(const RpcMessage& message, const Body& body, std::string line)
    {
        line += "  " + message.record.time.dateText();
        for (std::size_t at = 0; (at = line.find("--", at)) != std::string::npos;) line.insert(at + 1, " ");
        inspect::print("<!-- " + line.substr(line.find_first_not_of(' ')) + " -->\n");
        if (!body.type || message.bodySize() > longestMessage) return;
        const auto bytes = message.body();
        Bytes copy(bytes.begin(), bytes.end());
        try {
            showTrace(*body.type, copy, shownName(file) + ": message " + std::to_string(message.number));
        } catch (const Stop& stop) {
            printError(stop.message);
            note(stop.status);
        }
    }

    void printLoss(const Loss& loss, const Time& start)
    {
        note(codingError);
        if (options.json) {
            inspect::print(Json{{"loss", loss.sentence},
                                {"time", (loss.time - start).inSeconds()},
                                {"date", loss.time.dateText()},
                                {"packet", loss.packet},
                                {"from", loss.flow.from.text()},
                                {"to", loss.flow.to.text()},
                                {"transport", transportName(loss.flow.transport)}}
                               .dump() +
                           '\n');
            return;
        }
        const std::string line = placeOf(0, loss.time - start, loss.flow) + "  ! " + loss.sentence;
        inspect::print(options.full ? "<!-- " + line.substr(line.find_first_not_of(' ')) + " -->\n" : line + '\n');
    }

    // The columns that messages and losses share; a loss has no number.
    static std::string placeOf(std::uint64_t number, const Time& time, const Flow& flow)
    {
        char text[64];
        std::snprintf(text, sizeof text, "%6s %12s  ", number == 0 ? "" : std::to_string(number).c_str(),
                      time.text().c_str());
        return text + flow.from.text() + " > " + flow.to.text() + "  " + transportName(flow.transport);
    }

    std::string headOf(const RpcMessage& message, const Time& start) const
    {
        std::string line = placeOf(message.number, message.record.time - start, message.record.flow);
        line += message.refusal.empty() ? message.isReply ? "  reply" : "  call " : "  ?    ";
        line += ' ' + hexText(message.xid);
        if (!message.refusal.empty()) return line;
        line += "  " + procedureText(message, procedures);
        if (message.isReply) line += "  " + message.status;
        if (message.call != 0)
            line += ", to " + std::to_string(message.call) + " after " + elapsedText(message.elapsed);
        if (message.repeats != 0) line += ", repeats " + std::to_string(message.repeats);
        return line;
    }

    static std::string problemsOf(const RpcMessage& message, const Decoded& made)
    {
        std::string text;
        if (!message.record.cut.empty())
            text += "  ! cut, " + grouped(message.record.bytes.size()) + " of " + bytesText(message.record.size) +
                    ": " + message.record.cut;
        if (!made.unknown.empty() && (message.record.cut.empty() || message.refusal.empty()))
            text += "  ! " + made.unknown + (message.refusal.empty() ? ": " + bytesText(message.bodySize()) : "");
        if (!made.refused.is_null() && message.record.cut.empty())
            text += "  ! refused " + explained({made.refused["path"], made.refused["offset"], made.refused["reason"]},
                                               message.body().size());
        if (made.leftOver > 0) text += "  ! left over: " + bytesText(made.leftOver) + " after " + made.type;
        return text;
    }

    Json messageJson(const RpcMessage& message, const Decoded& made, const Time& start) const
    {
        const Record& record = message.record;
        Json json{{"number", message.number},
                  {"time", (record.time - start).inSeconds()},
                  {"date", record.time.dateText()},
                  {"packets", {record.firstPacket, record.lastPacket}},
                  {"from", record.flow.from.text()},
                  {"to", record.flow.to.text()},
                  {"transport", transportName(record.flow.transport)}};
        if (message.refusal.empty()) json["kind"] = message.isReply ? "reply" : "call";
        json["xid"] = message.xid;
        if (message.numbers) {
            json["program"] = message.numbers->program;
            json["version"] = message.numbers->version;
            json["procedure"] = message.numbers->procedure;
            json["name"] = procedures.text(*message.numbers);
        }
        if (message.call != 0) {
            json["call"] = message.call;
            json["elapsed"] = message.elapsed.inSeconds();
        }
        if (message.repeats != 0) json["repeats"] = message.repeats;
        if (!message.status.empty()) json["status"] = message.status;
        if (!record.cut.empty()) json["cut"] = record.cut;
        if (!made.unknown.empty()) json["unknown"] = made.unknown;
        if (!made.type.empty() && message.hasBody) json["type"] = made.type;
        json["size"] = message.bodySize();
        if (!made.value.is_null()) json["value"] = made.value;
        if (!made.refused.is_null()) json["refused"] = made.refused;
        if (made.leftOver > 0) json["leftOver"] = {{"offset", made.length}, {"size", made.leftOver}};
        return json;
    }

    const CaptureList& options;
    const std::string& file;
    const Type* usual;
    const ShowTrace& showTrace;
    Procedures procedures;
    std::vector<ProcedurePattern> patterns;
    int status = success;
    bool isAny = false;
};

int CaptureList::run(const std::string& file, const Type* usual, const ShowTrace& showTrace)
{
    Printer printer(*this, file, usual, showTrace);
    Reader reader = reading(file, [&] { return Reader(openFile(file)); });
    Progress progress("messages");
    for (Shown shown; true;) {
        try {
            if (!reader.next(shown)) break;
        } catch (const CaptureError& error) {
            printError(shownName(file) + ": " + error.what());
            printer.note(inputError);
            continue;
        }
        progress.advance();
        printer.print(shown, reader.start());
    }
    if (const std::string notes = reader.notes(); !notes.empty()) printError(shownName(file) + ": " + notes);
    return printer.worst();
}

}  // namespace quorva::inspect
