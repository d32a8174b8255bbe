// `open`: a link to the message viewer, and a browser that follows it.

#include "arguments.h"
#include "output.h"

#include <spawn.h>
#include <unistd.h>

#include <fcntl.h>
#include <cstdlib>
#include <filesystem>

namespace quorva::inspect {

namespace {

bool isSet(const char* variable)
{
    const char* const value = std::getenv(variable);
    return value && *value;
}

// The path as a URL. Bytes with another meaning there are written as %HH.
std::string urlOf(const std::string& path)
{
    std::string url = "file://";
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        const bool isPlain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                             std::string_view("/-._~").find(c) != std::string_view::npos;
        url += isPlain ? std::string(1, c) : '%' + hexDigits({&byte, 1});
    }
    return url;
}

// Base64 in the alphabet for URLs.
std::string base64Url(const Bytes& message)
{
    std::string text;
    for (const char c : base64Text(message)) {
        if (c == '=' || c == '\n') continue;
        text += c == '+' ? '-' : c == '/' ? '_' : c;
    }
    return text;
}

// Starts the program in a session of its own, so that it outlives the terminal, and without input and output. False if
// there is no such program.
bool start(const char* program, const std::string& link)
{
    std::string name = program, argument = link;
    char* arguments[] = {name.data(), argument.data(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_RDWR, 0);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    pid_t process = 0;
    const bool isStarted = posix_spawnp(&process, program, &actions, &attributes, arguments, environ) == 0;
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return isStarted;
}

// Starts a browser. False if there is no browser or no screen.
bool browse(const std::string& link)
{
    if (isSet("BROWSER")) return start(std::getenv("BROWSER"), link);
    if (!isSet("DISPLAY") && !isSet("WAYLAND_DISPLAY")) return false;
    for (const char* program : {"x-www-browser", "chromium", "firefox"})  // xdg-open may drop the fragment
        if (start(program, link)) return true;
    return false;
}

class Open : public Verb {
public:
    Open()
        : Verb("open", "Show a message in the viewer in a browser",
               "quorvaxdr open JobAVPSeq message.hex\n"
               "quorvaxdr open JobAVPSeq message.hex --site ~/site --print\n")
    {
    }

    void declare(CLI::App& app) override
    {
        arguments.declare(app);
        app.add_option("--site", site, "the folder of the pages, as web/make_site.py makes it")
            ->type_name("DIR")
            ->capture_default_str();
        app.add_flag("--print", printsOnly, "print the link, start no browser");
    }

    int run() override
    {
        arguments.resolve();
        std::error_code error;
        const std::filesystem::path viewer = std::filesystem::absolute(site, error) / "viewer.html";
        if (error || !std::filesystem::is_regular_file(viewer, error))
            throw Stop{systemError, "there is no " + viewer.string() + "; --site names the folder of the pages"};
        const auto [type, message] = arguments.read();
        const std::string link =
            urlOf(viewer.lexically_normal().string()) + "#type=" + type.name + "&message=" + base64Url(message);
        if (printsOnly || !browse(link)) print(link + '\n');
        return success;
    }

private:
    MessageArguments arguments;
    std::string site = "site";
    bool printsOnly = false;
};

}  // namespace

std::unique_ptr<Verb> makeOpen()
{
    return std::make_unique<Open>();
}

}  // namespace quorva::inspect
