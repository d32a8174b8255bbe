#include "messages.h"

#include <cstring>

namespace quorva::bench::own {

namespace {

constexpr LongNatural firstSensor = 4100;

Reading reading(LongNatural quantity)
{
    Reading made;
    std::memset(static_cast<void*>(&made), 0, sizeof made);
    made.sensor = firstSensor + quantity;
    made.value.quantity = quantity;
    return made;
}

template <class Sequence, class T>
Sequence over(std::vector<T>& elements)
{
    return {static_cast<std::uint16_t>(elements.size()), elements.data()};
}

Counted<unsigned char> bytes(std::string& kept)
{
    return {static_cast<std::uint16_t>(kept.size()), reinterpret_cast<unsigned char*>(kept.data())};
}

}  // namespace

Messages::Messages()
{
    for (int i = 0; i < 67; ++i) states.push_back(static_cast<SensorState>(i % 6));
    for (LongNatural i = 0; i < 240; ++i) numbers.push_back(6 * i + 8);

    for (const LongNatural quantity : {1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 10u, 11u, 12u, 13u}) {
        Reading& next = allReadings.emplace_back(reading(quantity));
        Measure& value = next.value;
        switch (quantity) {
        case 1: value.voltage = 3287; break;
        case 2: value.temperature = -412; break;
        case 3: value.humidity = 81; break;
        case 4: value.pressure = 101325; break;
        case 5: value.wind = {245, 6300}; break;
        case 6: value.raining = 1; break;
        case 7: value.state = SensorState::SensorSending; break;
        case 8: value.rainfall = 14; break;
        case 10: value.calibration = {1, {0, 7, 18, 26, 41, 55, 68, 79, 90, 100}}; break;
        case 11: value.history = over<SensorStateSeq>(states); break;
        case 12: value.remark = strings.emplace_back("ice on the wind vane").data(); break;
        case 13:
            value.signature = bytes(strings.emplace_back("\x8e\x11\xf4\x07<gateway 5>\xe2\x30\x9d\x5b\x02"));
            break;
        default: break;
        }
    }

    // A node has 24 bytes without its name.
    const char* const names[] = {"ridge", "weir below the mill", "orchard 7"};
    std::size_t size = 4;
    for (LongNatural i = 0;; ++i) {
        std::string& name = strings.emplace_back(names[i % std::size(names)]);
        size += 24 + (name.size() + 3) / 4 * 4;
        if (size > 1000) break;
        std::string& address = strings.emplace_back("\x1b\xff\xfe\x20\x44\x61\x09");
        address += static_cast<char>(i);
        allNodes.push_back({7 * i, name.data(), bytes(address), static_cast<SensorState>(i % 6)});
    }

    readings = over<ReadingSeq>(allReadings);
    nodes = over<NodeSeq>(allNodes);
    samples = over<SampleSeq>(numbers);
    report = {27, 5113, {0, nullptr}};
}

}  // namespace quorva::bench::own
