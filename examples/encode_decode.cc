// Encodes a struct, decodes the message, and shows the message and its trace.

#include <quorvapixdr/codec.h>
#include <quorvapixdr/types/common/event.h>

#include <cstddef>
#include <cstdio>
#include <iostream>

namespace {

void printHex(const quorva::Bytes& message)
{
    for (std::size_t i = 0; i < message.size(); ++i)
        std::printf("%02x%s", message[i], i % 16 == 15 || i + 1 == message.size() ? "\n" : " ");
}

}  // namespace

int main()
{
    char host[] = "fleet.example";
    NotifyBinding binding = {host, 0x20000321, 1, 7};

    const quorva::Bytes message = quorva::encode(binding);
    printHex(message);

    TraceText trace;
    const ScopedTrace collecting(trace);  // from here on, each pass of this thread writes to it
    const auto received = quorva::decode<NotifyBinding>(message);  // releases its contents at the end of the scope
    std::cout << trace.text() << '\n' << received->hostName << '\n';
}
