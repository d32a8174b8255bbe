// Builds a request with texts and a list of attributes. An arena owns their memory, so nothing is released by hand.

#include <quorvapixdr/arena.h>
#include <quorvapixdr/codec.h>
#include <quorvapixdr/types/jobs/requests.h>

#include <cstdio>
#include <string_view>

namespace {

// A union's arm is chosen by its attribute number, which a list entry repeats as its id.
JobAVP jobName(quorva::Arena& arena, std::string_view name)
{
    return {77, {.attribute = 77, .jobName = {StringEncoding::SEUTF8, arena.bytes(name)}}};
}

JobAVP quantity(Quantity copies)
{
    return {50, {.attribute = 50, .quantity = copies}};
}

}  // namespace

int main()
{
    quorva::Arena arena;
    CreateJobParameters request = {};
    request.serviceId = 5;
    request.jobAttributes = arena.list<JobAVPSeq>({jobName(arena, "Quarterly figures.pdf"), quantity(12)});

    const quorva::Bytes message = quorva::encode(request, {.limit = 4096});
    const auto received = quorva::decode<CreateJobParameters>(message);
    const JobAVP& name = received->jobAttributes.elements[0];
    std::printf("%zu bytes, %d attributes, the first is \"%.*s\"\n", message.size(), received->jobAttributes.count,
                static_cast<int>(name.value.jobName.bytes.count),
                reinterpret_cast<const char*>(name.value.jobName.bytes.elements));
}

// Prints:
// 60 bytes, 2 attributes, the first is "Quarterly figures.pdf"
