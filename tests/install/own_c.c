// A separate module's types from C.

#include <quorvapixdr/c/station/locker.h>

#include <stdio.h>

int main(void)
{
    char label[] = "left, top";
    StationDoor doors[7] = {{4, StationDoorState_SDSclosed, {4, 1207}, label}};
    unsigned char message[1024];
    size_t length;
    if (!quorvaEncode(XdrStationDoor, &doors[0], message, sizeof message, &length, NULL)) return 1;
    printf("%zu bytes: %s\n", length, StationDoorStateString(doors[0].state));

    const StationDoorSeq sequence = {7, doors};
    QuorvaFailure failure;
    if (quorvaEncode(XdrStationDoorSeq, &sequence, message, sizeof message, NULL, NULL)) return 1;
    if (!quorvaExplainEncode(quorva_StationDoorSeq(), &sequence, sizeof message, &failure)) return 1;
    printf("byte %zu: %s\n", failure.offset, failure.reason);
    return 0;
}
