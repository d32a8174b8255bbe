// `annotate`: the bytes of a message with names and values.

#include "inspect/annotate.h"

#include "arguments.h"
#include "inspect/findings.h"
#include "output.h"
#include "values.h"

namespace quorva::inspect {

namespace {

class Annotate : public Verb {
public:
    Annotate()
        : Verb("annotate", "Show each byte of a message with its name and value",
               "quorvaxdr annotate JobMngParameters cancel.hex\n"
               "quorvaxdr annotate JobMngParameters cancel.hex --at 8\n"
               "quorvaxdr annotate JobMngParameters cancel.hex --path /jobId/job --json\n")
    {
    }

    void declare(CLI::App& app) override
    {
        arguments.declare(app);
        auto* const offset = takeNumber(app.add_option("--at", at, "only the part that holds the byte at this offset"),
                                        0, longestMessage, "OFFSET");
        app.add_option("--path", path, "only the part at this JSON Pointer")->type_name("POINTER")->excludes(offset);
        app.add_flag("--json", json, "print JSON");
    }

    int run() override
    {
        arguments.resolve();
        const auto [type, message] = arguments.read();
        const Tree tree(type, message);
        if (at || path) return runForPart(tree);
        if (json)
            printAnnotationJson(tree, print);
        else
            print(annotationText(tree));
        if (const auto& stopped = tree.stopped()) {
            const std::string cause = likelyCause(tree);
            throw Stop{
                codingError,
                arguments.shown() + ": cannot decode " + type.name + ' ' + explained(stopped->failure, message.size()),
                cause.empty() ? "" : "likely cause: " + cause + '\n'};
        }
        return tree.length() < message.size() ? found : success;
    }

private:
    int runForPart(const Tree& tree)
    {
        const auto part = at ? partAt(tree, *at) : partAt(tree, std::string_view(*path));
        if (!part) throw Stop{found, missingPart(tree)};
        if (json)
            printJson(partJson(tree, *part));
        else
            print(partText(tree, *part) + '\n');
        return success;
    }

    std::string missingPart(const Tree& tree) const
    {
        const std::string message = arguments.shown() + ": ";
        if (path)
            return message + "the message has no part " + *path +
                   (path->empty() || path->front() == '/' ? "" : "; a path begins with /");
        const std::string byte = "byte " + std::to_string(*at);
        if (*at >= tree.bytes().size())
            return message + "there is no " + byte + ": the message has " + std::to_string(tree.bytes().size());
        return message + byte + (tree.stopped() ? " was not decoded" : " is left over after ") +
               (tree.stopped() ? "" : tree.type().name);
    }

    MessageArguments arguments;
    std::optional<std::size_t> at;
    std::optional<std::string> path;
    bool json = false;
};

}  // namespace

std::unique_ptr<Verb> makeAnnotate()
{
    return std::make_unique<Annotate>();
}

}  // namespace quorva::inspect
