// Hand-written encode and decode functions of the messages of network.x.

#include "../limit.h"
#include "../limit_coding.h"

namespace quorva::bench::limit {

namespace {

// ---- Encode ---------------------------------------------------------------------------------------------------------

// Writes the sensor's number and the quantity, before the value.
Out putHead(Out at, const Reading& reading)
{
    return put(at, reading.sensor, reading.value.quantity);
}

Out putReading(Out at, Out end, const Reading& reading)
{
    const Measure& value = reading.value;
    const auto number = [&](Number n) { return fits(at, end, 12) ? put(putHead(at, reading), n) : nullptr; };
    switch (value.quantity) {
    case 1: return number(value.voltage);
    case 2: return number(unitOf(value.temperature));
    case 3: return number(value.humidity);
    case 4: return number(value.pressure);
    case 5: return fits(at, end, 16) ? put(putHead(at, reading), value.wind.direction, value.wind.speed) : nullptr;
    case 6: return number(value.raining);
    case 7: return number(unitOf(value.state));
    case 8: return number(value.rainfall);
    case 10:
        if (!fits(at, end, 52)) return nullptr;
        at = put(putHead(at, reading), value.calibration.inFactory);
        for (const Number point : value.calibration.points) at = put(at, point);
        return at;
    case 11: {
        const SensorStateSeq& history = value.history;
        if (history.count > HistoryLength || !fits(at, end, 12 + std::size_t{4} * history.count)) return nullptr;
        if (!history.elements && history.count != 0) return nullptr;
        return putNumbers(put(putHead(at, reading), history.count), history);
    }
    case 12: {
        if (!value.remark) return nullptr;
        const std::size_t length = std::strlen(value.remark);
        if (length > 40 || !fits(at, end, 12 + padded(static_cast<Number>(length)))) return nullptr;
        return putBytes(put(putHead(at, reading), static_cast<Number>(length)), value.remark,
                        static_cast<Number>(length));
    }
    case 13: {
        const Number count = value.signature.count;
        if (count > 32 || !fits(at, end, 12 + padded(count)) || (!value.signature.elements && count != 0))
            return nullptr;
        return putBytes(put(putHead(at, reading), count), value.signature.elements, count);
    }
    default: return nullptr;
    }
}

Out putNode(Out at, Out end, const Node& node)
{
    if (!node.name) return nullptr;
    const std::size_t length = std::strlen(node.name);
    const Number count = node.address.count;
    if (length > 32 || count > 8 || (!node.address.elements && count != 0)) return nullptr;
    if (!fits(at, end, 16 + padded(static_cast<Number>(length)) + padded(count))) return nullptr;
    at = putBytes(put(at, node.number, static_cast<Number>(length)), node.name, static_cast<Number>(length));
    return put(putBytes(put(at, count), node.address.elements, count), unitOf(node.state));
}

// ---- Decode ---------------------------------------------------------------------------------------------------------

constexpr std::size_t leastReading = 12;  // two numbers, and a value of at least one unit
constexpr std::size_t leastNode = 16;     // four units, with an empty string and an empty opaque

In getReading(In at, In end, Reading& reading)
{
    if (!fits(at, end, leastReading)) return nullptr;
    Measure& value = reading.value;
    reading.sensor = get(at);
    value.quantity = get(at + 4);
    at += 8;
    const auto number = [&](Number& n) { return n = get(at), at + 4; };
    switch (value.quantity) {
    case 1: return number(value.voltage);
    case 2: value.temperature = static_cast<LongInteger>(get(at)); return at + 4;
    case 3: return number(value.humidity);
    case 4: return number(value.pressure);
    case 5:
        if (!fits(at, end, 8)) return nullptr;
        value.wind = {get(at), get(at + 4)};
        return at + 8;
    case 6: value.raining = static_cast<Boolean>(get(at)); return at + 4;
    case 7: value.state = static_cast<SensorState>(get(at)); return at + 4;
    case 8: return number(value.rainfall);
    case 10:
        if (!fits(at, end, 44)) return nullptr;
        value.calibration.inFactory = static_cast<Boolean>(get(at));
        for (LongNatural& point : value.calibration.points) point = get(at += 4);
        return at + 4;
    case 11: {
        const Number count = get(at);
        return count > HistoryLength ? nullptr : getNumbers(at + 4, end, count, value.history);
    }
    case 12: return getString(at, end, 40, value.remark);
    case 13: {
        const Number count = get(at);
        return count > 32 ? nullptr : getBytes(at + 4, end, count, value.signature);
    }
    default: return nullptr;
    }
}

In getNode(In at, In end, Node& node)
{
    if (!fits(at, end, leastNode)) return nullptr;
    node.number = get(at);
    at = getString(at + 4, end, 32, node.name);
    if (!at) return nullptr;
    const auto freeName = [&] { return delete[] node.name, nullptr; };
    if (!fits(at, end, 8)) return freeName();
    const Number count = get(at);
    if (count > 8 || !fits(at + 4, end, padded(count) + 4)) return freeName();
    at = getBytes(at + 4, end, count, node.address);
    if (!at) return freeName();
    node.state = static_cast<SensorState>(get(at));
    return at + 4;
}

}  // namespace

// ---- The messages ---------------------------------------------------------------------------------------------------

std::size_t encode(const ReadingSeq& value, unsigned char* buffer, std::size_t available)
{
    return available < 4 ? 0 : lengthOf(buffer, putArray<putReading>(buffer, buffer + available, value));
}

std::size_t decode(ReadingSeq& value, const unsigned char* message, std::size_t length)
{
    value = {0, nullptr};
    return length < 4 ? 0 : lengthOf(message, getArray<getReading>(message, message + length, leastReading, value));
}

void release(ReadingSeq& readings)
{
    for (std::size_t i = 0; i < readings.count; ++i) {
        Measure& value = readings.elements[i].value;
        switch (value.quantity) {
        case 11: delete[] value.history.elements; break;
        case 12: delete[] value.remark; break;
        case 13: delete[] value.signature.elements; break;
        default: break;
        }
    }
    delete[] readings.elements;
}

std::size_t encode(const NodeSeq& value, unsigned char* buffer, std::size_t available)
{
    return available < 4 ? 0 : lengthOf(buffer, putArray<putNode>(buffer, buffer + available, value));
}

std::size_t decode(NodeSeq& value, const unsigned char* message, std::size_t length)
{
    value = {0, nullptr};
    return length < 4 ? 0 : lengthOf(message, getArray<getNode>(message, message + length, leastNode, value));
}

void release(NodeSeq& nodes)
{
    for (std::size_t i = 0; i < nodes.count; ++i) {
        delete[] nodes.elements[i].name;
        delete[] nodes.elements[i].address.elements;
    }
    delete[] nodes.elements;
}

std::size_t encode(const StationReport& value, unsigned char* buffer, std::size_t available)
{
    if (available < 12) return 0;
    const Out at = put(buffer, value.station, value.sequence);
    return lengthOf(buffer, putArray<putReading>(at, buffer + available, value.readings));
}

std::size_t decode(StationReport& value, const unsigned char* message, std::size_t length)
{
    value.readings = {0, nullptr};
    if (length < 12) return 0;
    value.station = get(message);
    value.sequence = get(message + 4);
    return lengthOf(message, getArray<getReading>(message + 8, message + length, leastReading, value.readings));
}

void release(StationReport& value)
{
    release(value.readings);
}

std::size_t encode(const SampleSeq& value, unsigned char* buffer, std::size_t available)
{
    return encodeNumbers(value, buffer, available);
}

std::size_t decode(SampleSeq& value, const unsigned char* message, std::size_t length)
{
    return decodeNumbers(value, message, length);
}

void release(SampleSeq& value)
{
    delete[] value.elements;
}

}  // namespace quorva::bench::limit
