// quorvaxdr: shows types, and decodes, examines and encodes messages, on the command line.

#include "verbs/command_line.h"
#include "verbs/output.h"

#include <csignal>
#include <filesystem>
#include <new>

using namespace quorva;
using namespace quorva::inspect;

namespace {

// The folder of the running program.
std::string programFolder()
{
    std::error_code failed;
    return std::filesystem::read_symlink("/proc/self/exe", failed).parent_path().string();
}

// Reads the interface files that the command line names, and runs the verb.
int runWithInterfaces(Verb& verb)
{
    if (verb.interfaces.files.empty()) {
        if (verb.interfaces.folders.empty()) return verb.run();
        throw Stop{usageError, "-I is for --interface, which is missing"};
    }
    verb.interfaces.installed = installedInterfaces(programFolder());
    try {
        const Interfaces interfaces(verb.interfaces);
        for (const std::string& note : interfaces.notes()) printError(note);
        return verb.run();
    } catch (const InterfaceError& error) {
        throw Stop{error.unreadable ? systemError : inputError, "the interface files cannot be used", error.what()};
    }
}

int run(const std::vector<std::string>& words)
{
    CommandLine line;
    if (Verb* const verb = line.read(words)) return runWithInterfaces(*verb);
    print(line.reference());
    return success;
}

}  // namespace

int main(int count, char** words)
{
    std::signal(SIGPIPE, SIG_IGN);  // a write to a closed pipe fails with EPIPE instead
    try {
        return run({words + 1, words + count});
    } catch (const Stop& stop) {
        printError(stop.message, stop.details);
        return stop.status;
    } catch (const ClosedPipe&) {
        return success;
    } catch (const Refusal& refusal) {
        printError(refusal.what());
        return codingError;
    } catch (const std::bad_alloc&) {
        printError("not enough memory");
        return systemError;
    } catch (const std::exception& error) {
        printError(error.what());
        return systemError;
    }
}
