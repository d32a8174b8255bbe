// Measures the codec with a stream class that has only the contract's operations, and libtirpc.

#include "measure.h"
#include "own/tirpc.h"

using namespace quorva::bench;

int main(int count, char** arguments)
{
    static own::Messages messages;
    messages.each([](const char* name, auto& object, XdrRoutine routine) {
        measureCodec("generic", name, object, routine, tirpcOf(object));
    });
    return run(count, arguments);
}
