// Codes a struct of this project's module, which has structs of the library as members.

#include <quorvapixdr/codec.h>
#include <quorvapixdr/types/station/locker.h>

#include <cstdio>

int main()
{
    char host[] = "desk.example";
    char label[] = "left, top";
    StationDoor door = {4, StationDoorState::SDSclosed, {4, 1207}, label};
    StationReport report = {77, {host, 0x20000321, 1, 9}, {1, &door}};

    const quorva::Bytes message = quorva::encode(report);
    const auto received = quorva::decode<StationReport>(message);
    const StationDoor& first = received->doors.elements[0];
    std::printf("%zu bytes: door %u \"%s\" is %s, job %u\n", message.size(), first.number, first.label,
                StationDoorStateString(static_cast<int>(first.state)), first.job.job);

    // The codec checks the maxima of this module too: a sequence has at most six doors.
    StationDoor doors[7] = {door, door, door, door, door, door, door};
    report.doors = {7, doors};
    try {
        quorva::encode(report);
    } catch (const quorva::CodingError& error) {
        std::printf("%s\n", error.what());
    }
}
