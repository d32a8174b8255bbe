// Decodes a message that was cut off: the exception tells where and why the codec stopped, and so does `explain` to
// callers without exceptions.

#include <quorvapixdr/arena.h>
#include <quorvapixdr/codec.h>
#include <quorvapixdr/types/jobs/job.h>

#include <cstdio>

int main()
{
    quorva::Arena arena;
    const JobAVP copies = {50, {.attribute = 50, .quantity = 12}};
    const auto attributes = arena.list<JobAVPSeq>({copies, copies});
    quorva::Bytes message = quorva::encode(attributes);
    message.resize(message.size() - 2);

    try {
        quorva::decode<JobAVPSeq>(message);
    } catch (const quorva::CodingError& error) {
        std::printf("%s\n", error.what());
        std::printf("type    %s\n", error.type().c_str());
        std::printf("path    %s\n", error.path().c_str());
        std::printf("offset  %zu\n", error.offset());
        std::printf("reason  %s\n", error.reason().c_str());
    }

    message.resize(10);
    if (const auto failure = quorva::explain<JobAVPSeq>(message))
        std::printf("%s\n", quorva::explained(*failure, message.size()).c_str());
}

// Prints:
// cannot decode JobAVPSeq at /1/value/quantity, byte 24 of 26: 2 bytes left where a unit of 4 is needed
// type    JobAVPSeq
// path    /1/value/quantity
// offset  24
// reason  2 bytes left where a unit of 4 is needed
// at /0/value/attribute, byte 8 of 10: 2 bytes left where a unit of 4 is needed
