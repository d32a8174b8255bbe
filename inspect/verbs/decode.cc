// `decode`: shows one message, or each message of a stream or a log.

#include "arguments.h"
#include "inspect/annotate.h"
#include "inspect/messages.h"
#include "inspect/object.h"
#include "inspect/tree_json.h"
#include "output.h"
#include "values.h"

#include <cerrno>
#include <cstring>
#include <new>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace quorva::inspect {

namespace {

// The codec allocates an array when it has read its count, before its elements. A hostile interface file can make that
// gigabytes for a message of a few bytes.
constexpr std::uint64_t mostMemory = std::uint64_t{1} << 30;

std::uint64_t memoryOf(const Tree& tree)
{
    std::uint64_t bytes = tree.type().size;
    for (const Node& node : tree.nodes()) {
        if (!node.use || !node.use->type || node.size == 0) continue;
        if (node.use->form == Form::variableArray || node.use->form == Form::optional)
            bytes += static_cast<std::uint64_t>(node.number) * node.use->type->size;
    }
    return bytes;
}

// Decodes the message. Returns the trace, if the platform's stream class collects one.
template <class Stream = Xdr>
std::string traceOf(Object& object, Bytes& message, Pass& pass)
{
    if constexpr (Traceable<Stream>) {
        typename Stream::Trace trace;
        pass = traceObject<Stream>(Mode::decode, object.type(), object.data(), message, trace);
        if (!trace.complete()) throw std::bad_alloc();
        return std::string(trace.text()) + '\n';
    } else {
        pass = codeObject(Mode::decode, object.type(), object.data(), message);
        return "This platform's stream collects no trace.\n";
    }
}

// A file descriptor of an input, closed at the end unless it is that of standard input.
class Descriptor {
public:
    explicit Descriptor(const std::string& file)
        : number(file == "-" ? STDIN_FILENO : open(file.c_str(), O_RDONLY | O_CLOEXEC))
    {
        if (number < 0) throw Stop{systemError, file + ": cannot be read: " + std::strerror(errno)};
    }
    ~Descriptor()
    {
        if (number > STDIN_FILENO) close(number);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    const int number;
};

class Decode : public Verb {
public:
    Decode()
        : Verb("decode", "Decode a message, or each message of a stream, a log or a capture",
               "quorvaxdr decode JobId message.hex\n"
               "quorvaxdr decode JobId message.bin --from raw --to json\n"
               "quorvaxdr decode JobAVPSeq stream.bin --framed --to json\n"
               "tail -f service.log | quorvaxdr decode JobId --lines\n"
               "quorvaxdr decode --from pcap capture.pcap --interface own.x\n"
               "tcpdump -i any -U -w - port 6000 | quorvaxdr decode --from pcap --interface own.x --only CREATE_JOB\n")
    {
    }

    void declare(CLI::App& app) override
    {
        arguments.declare(app);
        output.declare(app, {"trace", "json", "hex", "raw", "base64", "c"});
        auto* const marks = app.add_flag("--framed", framed, "the input is raw messages with record marks (RFC 5531)");
        auto* const fixed = takeNumber(app.add_option("--each", each, "the input is raw messages of this length"), 1,
                                       longestMessage, "BYTES");
        auto* const log = app.add_flag("--lines", lines,
                                       "the input is a log: print its lines, with the messages that they have as hex "
                                       "replaced by JSON");
        marks->excludes(fixed)->excludes(log);
        fixed->excludes(log);
        list.declare(app);
    }

    int run() override
    {
        arguments.resolve();
        const InputArgument& input = arguments.input();
        const bool isStream = framed || each || lines;
        if (input.isCapture() && !input.messageNumber() && !isStream) return runCapture();
        if (list.isAsked()) throw Stop{usageError, "--only, --full and --json are for the messages of a capture"};
        if (!isStream) {
            auto [type, message] = arguments.read();
            return show(type, message, input.shown(), 2);
        }
        if (!arguments.namedType()) throw Stop{usageError, "a capture has no --framed, --each and --lines"};
        const Type& type = *arguments.namedType();
        if (!input.form().empty() && input.form() != "raw")
            throw Stop{usageError,
                       "several messages are read from raw bytes or the lines of a log, not from " + input.form()};
        const Descriptor descriptor(input.name());
        try {
            const Source source = sourceOf(descriptor.number);
            if (lines) return runLines(type, source);
            if (framed) return runMessages(type, FramedMessages(source));
            return runMessages(type, FixedMessages(source, *each));
        } catch (const FramingError& error) {
            throw Stop{inputError, input.shown() + ": byte " + std::to_string(error.offset) + ": " + error.what()};
        } catch (const std::system_error& error) {
            throw Stop{systemError, input.shown() + ": cannot be read: " + error.code().message()};
        }
    }

private:
    // Lists the messages of a capture.
    int runCapture()
    {
        if (output.isGiven() && output.form() != "json" && output.form() != "trace")
            throw Stop{usageError, "--to " + output.form() + " prints one message of a capture: choose it with " +
                                       "--message NUMBER"};
        if (output.isGiven()) output.form() == "json" ? list.printJsonLines() : list.printTraces();
        return list.run(
            arguments.input().name(), arguments.namedType(),
            [&](const Type& type, Bytes& message, const std::string& name) { show(type, message, name, -1); });
    }

    // Prints a message and returns its status. `indent` is that of JSON, -1 for one line.
    int show(const Type& type, Bytes& message, const std::string& name, int indent) const
    {
        const Tree tree(type, message);
        const auto refused = [&](const Failure& failure) {
            return Stop{codingError, name + ": cannot decode " + type.name + ' ' + explained(failure, message.size()),
                        failureText(tree)};
        };
        std::size_t length = tree.length();
        if (output.form() == "trace") {
            // The description bounds nesting and memory, which the codec does not.
            if (tree.stopped() && tree.stopped()->why.cause == Cause::nestedTooDeeply)
                throw refused(tree.stopped()->failure);
            if (memoryOf(tree) > mostMemory)
                throw Stop{systemError, name + ": a decode needs " + std::to_string(memoryOf(tree)) +
                                            " bytes of memory; --to json needs less"};
            Object object(type);
            Pass pass;
            print(traceOf(object, message, pass));
            if (!pass.succeeded && !tree.stopped()) throw std::bad_alloc();
            length = pass.length;
        } else if (output.form() == "json") {
            print(treeJson(tree).dump(indent) + '\n');
        } else if (!tree.stopped()) {
            print(messageText(message, output.form()));
        }
        if (tree.stopped()) throw refused(tree.stopped()->failure);

        const std::size_t rest = message.size() - length;
        if (rest == 0) return success;
        throw Stop{found, name + ": " + (rest == 1 ? "1 byte is" : std::to_string(rest) + " bytes are") +
                              " left over after " + type.name + ", from byte " + std::to_string(length) + " on"};
    }

    // Shows all messages. Those that fail are told on standard error; the worst status is that of the program.
    template <class Messages>
    int runMessages(const Type& type, Messages messages) const
    {
        int status = success;
        Message message;
        Progress progress("messages");
        for (std::size_t number = 1; messages.next(message); ++number) {
            progress.advance();
            const std::string name = arguments.shown() + ": message " + std::to_string(number) + " at byte " +
                                     std::to_string(message.offset);
            if (output.form() == "trace")
                print("<!-- message " + std::to_string(number) + " at byte " + std::to_string(message.offset) + ", " +
                      std::to_string(message.bytes.size()) + " bytes -->\n");
            try {
                show(type, message.bytes, name, -1);
            } catch (const Stop& stop) {
                printError(stop.message);
                status = std::max<int>(status, stop.status);
            }
        }
        return status;
    }

    // Replaces the hex runs of lines that are whole messages by their JSON. The other text stays as it is.
    int runLines(const Type& type, const Source& source) const
    {
        if (output.isGiven() && output.form() != "json") throw Stop{usageError, "--lines prints JSON only"};
        LineReader reader(source);
        LineReader::Line line;
        bool isAny = false;
        Progress progress("lines");
        while (reader.next(line)) {
            progress.advance();
            std::string text;
            std::size_t done = 0;
            for (const HexRun& run : hexRunsOf(line.text)) {
                const Tree tree(type, run.bytes);
                if (tree.stopped() || tree.length() != run.bytes.size()) continue;
                text.append(line.text, done, run.at - done);
                text += treeJson(tree).dump();
                done = run.at + run.size;
                isAny = true;
            }
            print(text.append(line.text, done));
        }
        return isAny ? success : found;
    }

    MessageArguments arguments;
    CaptureList list;
    OutputOption output{"trace"};
    bool framed = false;
    bool lines = false;
    std::optional<std::size_t> each;
};

}  // namespace

std::unique_ptr<Verb> makeDecode()
{
    return std::make_unique<Decode>();
}

}  // namespace quorva::inspect
