// The measured messages of network.x, of the same sizes and forms as the library's.
#pragma once

#include <quorvapixdr/types/network.h>

#include <deque>
#include <string>
#include <vector>

namespace quorva::bench::own {

// Owns the objects and everything that they point to. No release pass runs over them.
class Messages {
public:
    Messages();
    Messages(const Messages&) = delete;
    Messages& operator=(const Messages&) = delete;

    ReadingSeq readings;   // T: twelve readings of as many kinds, one of them an array of 67 enumerators
    NodeSeq nodes;         // L: as many nodes as fit in 1000 bytes, each with a string and an opaque
    SampleSeq samples;     // B: an array of 240 numbers
    StationReport report;  // S: two numbers and an empty array

    // Calls visit(letter, object, routine) for each message.
    template <class Visit>
    void each(Visit visit)
    {
        visit("T", readings, XdrReadingSeq);
        visit("L", nodes, XdrNodeSeq);
        visit("B", samples, XdrSampleSeq);
        visit("S", report, XdrStationReport);
    }

private:
    std::deque<std::string> strings;
    std::vector<Reading> allReadings;
    std::vector<Node> allNodes;
    std::vector<SensorState> states;
    std::vector<LongNatural> numbers;
};

}  // namespace quorva::bench::own
