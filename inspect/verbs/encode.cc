// `encode`: makes a message from JSON.

#include "arguments.h"
#include "output.h"
#include "values.h"

namespace quorva::inspect {

namespace {

class Encode : public Verb {
public:
    Encode()
        : Verb("encode", "Encode JSON to a message",
               "quorvaxdr encode JobId value.json\n"
               "quorvaxdr encode JobId --to raw <value.json >message.bin\n"
               "quorvaxdr encode JobId value.json --to c\n")
    {
    }

    void declare(CLI::App& app) override
    {
        subject.declare(app);
        app.add_option("INPUT", file, "file with the value as JSON; - is standard input")->capture_default_str();
        output.declare(app, {"hex", "raw", "base64", "c"});
        takeNumber(app.add_option("--limit", limit, "maximum length of the message"), 0, longestMessage, "BYTES")
            ->capture_default_str();
    }

    int run() override
    {
        const Type& type = subject.type();
        print(messageText(encoded(type, contentsOf(file), shownName(file), limit), output.form()));
        return success;
    }

private:
    TypeArgument subject;
    OutputOption output{"hex"};
    std::string file = "-";
    std::size_t limit = driverMessage;
};

}  // namespace

std::unique_ptr<Verb> makeEncode()
{
    return std::make_unique<Encode>();
}

}  // namespace quorva::inspect
