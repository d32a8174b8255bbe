// Runs messages through the library in all three modes, and asks a memory checker after each pass whether all that came
// out was written by somebody: replay <FILE of messages>, as `digest --messages` prints them.
//
// It needs nothing but the library and C's, so that a build with all of its code instrumented is small: MemorySanitizer
// believes memory unwritten that code without instrumentation wrote. Under valgrind, it asks valgrind; otherwise
// nobody.

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

long faults = 0;
const char* current = "";

void judge(const char* what, const void* bytes, std::size_t size)
{
#ifdef INSTRUMENTED
    const bool unwritten = __msan_test_shadow(bytes, size) >= 0;
#else
    const bool unwritten = VALGRIND_CHECK_MEM_IS_DEFINED(bytes, size) != 0;
#endif
    if (!unwritten) return;
    ++faults;
    std::fprintf(stderr, "%s: nobody wrote a part of %s\n", current, what);
}

// One pass, with a trace or without.
Pass run(Mode mode, XdrRoutine routine, void* object, std::span<unsigned char> buffer, bool traced)
{
    if (!traced) return runPass(mode, routine, object, buffer);
    TraceText trace;
    const Pass pass = runPass(mode, routine, object, buffer, [&](Xdr& xdrs) { xdrs.setTrace(&trace); });
    judge("the trace", trace.text().data(), trace.text().size());
    return pass;
}

// Decodes; encodes and releases what that left, whole or not. The blocks of the object are as the decode wrote them.
void replay(XdrRoutine routine, std::size_t size, std::span<unsigned char> message)
{
    for (const bool traced : {false, true}) {
        void* const object = std::calloc(1, size);
        auto* const written = static_cast<unsigned char*>(std::malloc(message.size() + 256));
        if (!object || !written) std::abort();
        run(Mode::decode, routine, object, message, traced);
        const Pass encode = run(Mode::encode, routine, object, {written, message.size() + 256}, traced);
        judge("the message", written, encode.length);
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

int main(int count, char** words)
{
    std::FILE* const file = count == 2 ? std::fopen(words[1], "r") : nullptr;
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
    std::printf("%ld messages, %ld faults\n", messages, faults);
    return whole && messages > 0 && faults == 0 ? 0 : 1;
}
