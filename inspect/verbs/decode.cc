// `decode`: shows a message.

#include "arguments.h"
#include "inspect/annotate.h"
#include "inspect/object.h"
#include "inspect/tree_json.h"
#include "output.h"

#include <new>

namespace quorva::inspect {

namespace {

// Decodes the message into the object. `text` gets the trace, if the platform's stream class collects one.
template <class Stream = Xdr>
Pass decodeInto(Object& object, Bytes& message, std::string& text)
{
    const Type& type = object.type();
    if constexpr (Traceable<Stream>) {
        typename Stream::Trace trace;
        const Pass pass = traceObject<Stream>(Mode::decode, type, object.data(), message, trace);
        if (!trace.complete()) throw std::bad_alloc();
        text = std::string(trace.text()) + '\n';
        return pass;
    } else {
        const Pass pass = codeObject(Mode::decode, type, object.data(), message);
        text = "This platform's stream collects no trace.\n";
        return pass;
    }
}

class Decode : public Verb {
public:
    Decode()
        : Verb("decode", "Decode a message",
               "quorvaxdr decode JobId message.hex\n"
               "quorvaxdr decode JobId message.bin --from raw --to json\n")
    {
    }

    void declare(CLI::App& app) override
    {
        subject.declare(app);
        input.declare(app, "file with the message");
        app.add_option("--to", to, "what to print: trace (an XML document) or json")
            ->check(CLI::IsMember({"trace", "json"}))
            ->capture_default_str();
    }

    int run() override
    {
        const Type& type = subject.type();
        Bytes message = input.message();
        // The description bounds the nesting, which the codec does not.
        const Tree tree(type, message);
        const auto refused = [&](const Failure& failure) {
            return Stop{codingError,
                        input.shown() + ": cannot decode " + type.name + ' ' + explained(failure, message.size()),
                        failureText(tree)};
        };
        if (tree.stopped() && tree.stopped()->why.cause == Cause::nestedTooDeeply)
            throw refused(tree.stopped()->failure);

        Object object(type);
        std::string trace;
        const Pass pass = decodeInto(object, message, trace);
        if (to == "trace")
            print(trace);
        else
            printJson(treeJson(tree));
        if (!pass.succeeded)
            throw refused(tree.stopped() ? tree.stopped()->failure : Failure{"", pass.length, "not enough memory"});

        const std::size_t rest = message.size() - pass.length;
        if (rest == 0) return success;
        throw Stop{found, input.shown() + ": " + (rest == 1 ? "1 byte is" : std::to_string(rest) + " bytes are") +
                              " left over after " + type.name + ", from byte " + std::to_string(pass.length) + " on"};
    }

private:
    TypeArgument subject;
    InputArgument input;
    std::string to = "trace";
};

}  // namespace

std::unique_ptr<Verb> makeDecode()
{
    return std::make_unique<Decode>();
}

}  // namespace quorva::inspect
