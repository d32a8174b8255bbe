// Decodes a message that was cut off: the exception tells the element and the byte where the codec stopped.

#include <quorvapixdr/codec.h>
#include <quorvapixdr/types/common/event.h>

#include <cstdio>

int main()
{
    char host[] = "fleet.example";
    NotifyBinding binding = {host, 0x20000321, 1, 7};

    const quorva::Bytes message = quorva::encode(binding);
    const auto received = quorva::decode<NotifyBinding>(message);
    std::printf("%zu bytes, for %s\n", message.size(), received->hostName);

    try {
        quorva::decode<NotifyBinding>(std::span(message).first(message.size() - 6));
    } catch (const quorva::CodingError& error) {
        std::printf("%s\n", error.what());
    }
}
