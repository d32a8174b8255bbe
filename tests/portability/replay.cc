// Runs messages through the library in all modes, and asks a memory checker after each pass if the output is
// initialised: replay FILE. The file has the lines of `digest --messages`.
//
// It uses the library and the C library alone, so that all of its code can be instrumented: MemorySanitizer takes
// memory for uninitialised that other code wrote. A build without MemorySanitizer asks valgrind, if it runs under it.

#include <quorvapixdr/codec.h>

#include <dlfcn.h>
#include <cctype>
#include <cstdio>
#include <cstdlib>

#ifdef __has_feature
#if __has_feature(memory_sanitizer)
#include <sanitizer/msan_interface.h>
#define INSTRUMENTED
#endif
#endif
#ifndef INSTRUMENTED
#include <valgrind/memcheck.h>
#endif

using namespace quorva;

namespace {

long errors = 0;
const char* current = "";

void check(const char* what, const void* bytes, std::size_t size)
{
#ifdef INSTRUMENTED
    const bool uninitialised = __msan_test_shadow(bytes, size) >= 0;
#else
    const bool uninitialised = VALGRIND_CHECK_MEM_IS_DEFINED(bytes, size) != 0;
#endif
    if (!uninitialised) return;
    ++errors;
    std::fprintf(stderr, "%s: %s has uninitialised bytes\n", current, what);
}

// One pass, with a trace or without.
Pass run(Mode mode, XdrRoutine routine, void* object, std::span<unsigned char> buffer, bool traced)
{
    if (!traced) return runPass(mode, routine, object, buffer);
    TraceText trace;
    const Pass pass = runPass(mode, routine, object, buffer, [&](Xdr& xdrs) { xdrs.setTrace(&trace); });
    check("the trace", trace.text().data(), trace.text().size());
    return pass;
}

// Decodes a message; encodes and releases what that left, complete or not.
void replay(XdrRoutine routine, std::size_t size, std::span<unsigned char> message)
{
    for (const bool traced : {false, true}) {
        void* const object = std::calloc(1, size);
        auto* const written = static_cast<unsigned char*>(std::malloc(message.size() + 256));
        if (!object || !written) std::abort();
        run(Mode::decode, routine, object, message, traced);
        const Pass encode = run(Mode::encode, routine, object, {written, message.size() + 256}, traced);
        check("the message", written, encode.length);
        run(Mode::release, routine, object, {}, traced);
        std::free(written);
        std::free(object);
    }
}

unsigned nibble(char digit)
{
    return static_cast<unsigned>(digit <= '9' ? digit - '0' : digit - 'a' + 10);
}

}  // namespace

int main(int count, char** arguments)
{
    std::FILE* const file = count == 2 ? std::fopen(arguments[1], "r") : nullptr;
    if (!file) {
        std::fputs("usage: replay FILE\n", stderr);
        return 2;
    }
    static char name[128], hex[2 * longestMessage + 2];
    static unsigned char message[longestMessage];
    long messages = 0;
    std::size_t size = 0;
    for (; std::fscanf(file, "%127s %zu %131071s", name, &size, hex) == 3; ++messages) {
        void* const routine = dlsym(RTLD_DEFAULT, name);
        if (!routine) {
            std::fprintf(stderr, "the library has no %s\n", name);
            return 2;
        }
        current = name;
        std::size_t length = 0;
        for (const char* at = hex; std::isxdigit(static_cast<unsigned char>(*at)); at += 2, ++length)
            message[length] = static_cast<unsigned char>(nibble(at[0]) << 4 | nibble(at[1]));
        replay(reinterpret_cast<XdrRoutine>(routine), size, {message, length});
    }
    const bool whole = std::feof(file) != 0;
    std::fclose(file);
    std::printf("%ld messages, %ld errors\n", messages, errors);
    return whole && messages > 0 && errors == 0 ? 0 : 1;
}
