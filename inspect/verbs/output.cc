// Prints to standard output and standard error.

#include "output.h"

#include "support/text.h"
#include "verb.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include <unistd.h>

namespace quorva::inspect {

namespace {

bool isProgressShown = false;

void eraseProgress()
{
    if (std::exchange(isProgressShown, false)) std::fputs("\r\033[K", stderr);
}

}  // namespace

void print(std::string_view text)
{
    if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0) return;
    if (errno == EPIPE) throw ClosedPipe();
    throw Stop{systemError, std::string("cannot write standard output: ") + std::strerror(errno)};
}

void printJson(const Json& json)
{
    print(json.dump(2) + '\n');
}

bool usesColour()
{
    const char* const refused = std::getenv("NO_COLOR");
    const char* const terminal = std::getenv("TERM");
    return isatty(STDOUT_FILENO) == 1 && !(refused && *refused) && !(terminal && std::strcmp(terminal, "dumb") == 0);
}

void printError(std::string_view message, std::string_view details)
{
    std::fflush(stdout);
    eraseProgress();
    std::string text;
    for (const std::string_view line : support::linesOf(message)) text.append("quorvaxdr: ").append(line) += '\n';
    text += details;
    std::fwrite(text.data(), 1, text.size(), stderr);
}

Progress::Progress(const char* countedThings)
    : things(countedThings),
      isTerminal(isatty(STDERR_FILENO) == 1 && isatty(STDOUT_FILENO) == 0),
      next(std::chrono::steady_clock::now() + std::chrono::seconds(1))
{
}

Progress::~Progress()
{
    eraseProgress();
}

void Progress::advance()
{
    ++done;
    if (!isTerminal) return;
    const auto now = std::chrono::steady_clock::now();
    if (now < next) return;
    next = now + std::chrono::milliseconds(200);
    std::fprintf(stderr, "\r%llu %s", static_cast<unsigned long long>(done), things);
    isProgressShown = true;
}

}  // namespace quorva::inspect
