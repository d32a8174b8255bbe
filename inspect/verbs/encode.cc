// `encode`: makes a message from JSON.

#include "arguments.h"
#include "inspect/tree.h"
#include "output.h"

namespace quorva::inspect {

namespace {

Object objectFrom(const Type& type, const std::string& file)
{
    try {
        return fromJson(type, contentsOf(file));
    } catch (const InputError& error) {
        stopAt(file, error);
    } catch (const JsonError& error) {
        std::string message;
        for (const JsonError::Entry& entry : error.errors) {
            if (!message.empty()) message += '\n';
            message += shownName(file) + ':' + entry.text();
        }
        throw Stop{codingError, message};
    }
}

class Encode : public Verb {
public:
    Encode()
        : Verb("encode", "Encode JSON to a message",
               "quorvaxdr encode JobId value.json\n"
               "quorvaxdr encode JobId --to raw <value.json >message.bin\n")
    {
    }

    void declare(CLI::App& app) override
    {
        subject.declare(app);
        app.add_option("INPUT", file, "file with the value as JSON; - is standard input")->capture_default_str();
        app.add_option("--to", to, "form of the message: hex, raw, base64")
            ->check(CLI::IsMember({"hex", "raw", "base64"}))
            ->capture_default_str();
        app.add_option("--limit", limit, "maximum length of the message in bytes")
            ->check(CLI::Range(std::size_t{0}, longestMessage))
            ->capture_default_str();
    }

    int run() override
    {
        const Type& type = subject.type();
        Object object = objectFrom(type, file);
        Bytes message(limit);
        const Pass pass = codeObject(Mode::encode, type, object.data(), message);
        if (!pass.succeeded) {
            const auto failure = explain(type, object.data(), limit);
            throw Stop{codingError,
                       shownName(file) + ": cannot encode " + type.name + ' ' +
                           explained(failure.value_or(Failure{"", pass.length, "the codec refuses it"}), limit)};
        }
        message.resize(pass.length);
        print(to == "hex"      ? hexText(message)
              : to == "base64" ? base64Text(message)
                               : std::string(message.begin(), message.end()));
        return success;
    }

private:
    TypeArgument subject;
    std::string file = "-";
    std::string to = "hex";
    std::size_t limit = driverMessage;
};

}  // namespace

std::unique_ptr<Verb> makeEncode()
{
    return std::make_unique<Encode>();
}

}  // namespace quorva::inspect
