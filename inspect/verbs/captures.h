// Captures as inputs of verbs: one message of a capture, and the list of all.
#pragma once

#include "inspect/capture/reader.h"
#include "verb.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quorva::inspect {

// True if the file begins as a capture and can be read twice, as a pipe cannot. "-" is standard input.
bool isCaptureFile(const std::string& file);

// An argument or a result out of a capture.
struct CapturedBody {
    const Type* type = nullptr;  // by the procedure; null if it is void or not known
    std::string place;           // for a user: "call 0x00000007 of SPOOLER.FIRST.CREATE_JOB, packet 3, 0.001250 s"
    std::string unknown;         // why the type is not known: "unknown program"; empty if it is
    Bytes bytes;
};

// Finds message `number` of a capture. Throws Stop, also if there is none.
CapturedBody capturedBody(const std::string& file, std::uint64_t number);

// `decode` of a capture: a line for each message, a trace or a line of JSON.
class CaptureList {
public:
    void declare(CLI::App& app);

    // True if one of the options is given, which need a capture.
    bool isAsked() const { return full || json || !only.empty(); }

    void printTraces() { full = true; }
    void printJsonLines() { json = true; }

    // Prints the trace of a message; throws Stop.
    using ShowTrace = std::function<void(const Type& type, Bytes& message, const std::string& name)>;

    // Prints all messages. A null type leaves the bodies of unknown programs undecoded. Returns the worst status.
    int run(const std::string& file, const Type* usual, const ShowTrace& showTrace);

private:
    class Printer;

    std::vector<std::string> only;
    bool full = false;
    bool json = false;
};

}  // namespace quorva::inspect
