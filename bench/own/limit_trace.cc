// Hand-written traces of the messages of network.x.

#include "../limit.h"
#include "../limit_text.h"

namespace quorva::bench::limit {

namespace {

constexpr Enumerator states[] = {{"SensorIdle", 0},   {"SensorSampling", 1}, {"SensorSending", 2},
                                 {"SensorAsleep", 3}, {"SensorFaulty", 4},   {"SensorCharging", 5}};

// ---- Readings -------------------------------------------------------------------------------------------------------
// `depth` is that of the reading; in a decode pass each element of an array is on its own line.

template <Constant quantity, Constant tag, std::size_t depth>
Out openValue(Out at)
{
    return add<joined(Constant("</sensor>\n<value>\n  <quantity>"), quantity,
                      Constant("</quantity>\n  <MeasureUnion>\n    <"), tag, Constant(">")),
               depth>(at);
}

template <Constant tag, std::size_t depth>
Out closeValue(Out at)
{
    return add<joined(Constant("</"), tag, Constant(">\n  </MeasureUnion>\n</value>")), depth>(at);
}

template <Constant quantity, Constant tag, std::size_t depth, class Number>
Out addPlain(Out at, Number value)
{
    return closeValue<tag, depth>(addNumber(openValue<quantity, tag, depth>(at), value));
}

template <bool decoding, std::size_t depth>
Out addReading(Out at, Out end, const Reading& reading)
{
    if (static_cast<std::size_t>(end - at) < anyTags) return nullptr;
    at = addNumber(add<"<sensor>">(at), reading.sensor);
    const Measure& value = reading.value;
    switch (value.quantity) {
    case 1: return addPlain<"1", "voltage", depth>(at, value.voltage);
    case 2: return addPlain<"2", "temperature", depth>(at, value.temperature);
    case 3: return addPlain<"3", "humidity", depth>(at, value.humidity);
    case 4: return addPlain<"4", "pressure", depth>(at, value.pressure);
    case 5:
        at = add<"\n      <direction>", depth>(openValue<"5", "wind", depth>(at));
        at = add<"</direction>\n      <speed>", depth>(addNumber(at, value.wind.direction));
        return closeValue<"wind", depth>(add<"</speed>\n    ", depth>(addNumber(at, value.wind.speed)));
    case 6:
        at = openValue<"6", "raining", depth>(at);
        return closeValue<"raining", depth>(value.raining ? add<"true">(at) : add<"false">(at));
    case 7:
        at = addEnumerator(openValue<"7", "state", depth>(at), states, value.state);
        return at ? closeValue<"state", depth>(at) : nullptr;
    case 8: return addPlain<"8", "rainfall", depth>(at, value.rainfall);
    case 10: {
        const Calibration& calibration = value.calibration;
        at = add<"\n      <inFactory>", depth>(openValue<"10", "calibration", depth>(at));
        at = add<"</inFactory>\n      <points>", depth>(calibration.inFactory ? add<"true">(at) : add<"false">(at));
        at = addElements<decoding, depth + 3>(at, end, calibration.points, 10,
                                              [](Out out, LongNatural point, std::size_t i) {
                                                  if (!decoding && i > 0) *out++ = ' ';
                                                  return addNumber(out, point);
                                              });
        return at ? closeValue<"calibration", depth>(add<"</points>\n    ", depth>(at)) : nullptr;
    }
    case 11:
        at = openValue<"11", "history", depth>(at);
        at = addElements<decoding, depth + 2>(
            at, end, value.history.elements, value.history.count,
            [](Out out, SensorState state, std::size_t) { return addEnumerator(out, states, state); });
        return at ? closeValue<"history", depth>(at) : nullptr;
    case 12: {
        const std::size_t length = std::strlen(value.remark);
        if (static_cast<std::size_t>(end - at) < anyTags + 5 * length) return nullptr;
        at = addEscaped(openValue<"12", "remark", depth>(at), value.remark, length);
        return at ? closeValue<"remark", depth>(at) : nullptr;
    }
    case 13:
        if (static_cast<std::size_t>(end - at) < anyTags + hexLinesSize(value.signature.count, depth + 2))
            return nullptr;
        at = openValue<"13", "signature", depth>(at);
        return closeValue<"signature", depth>(
            addHexLines<depth + 2>(at, value.signature.elements, value.signature.count));
    default: return nullptr;
    }
}

// ---- Nodes ----------------------------------------------------------------------------------------------------------

template <std::size_t depth>
Out addNode(Out at, Out end, const Node& node)
{
    const std::size_t length = std::strlen(node.name);
    if (static_cast<std::size_t>(end - at) < anyTags + 5 * length + hexLinesSize(node.address.count, depth))
        return nullptr;
    at = add<"</number>\n<name>", depth>(addNumber(add<"<number>">(at), node.number));
    at = addEscaped(at, node.name, length);
    if (!at) return nullptr;
    at = addHexLines<depth>(add<"</name>\n<address>", depth>(at), node.address.elements, node.address.count);
    at = addEnumerator(add<"</address>\n<state>", depth>(at), states, node.state);
    return at ? add<"</state>">(at) : nullptr;
}

}  // namespace

std::size_t trace(const ReadingSeq& value, bool decoding, char* text, std::size_t available)
{
    return decoding ? traceStructs<true, addReading<true, 1>>(value, text, available)
                    : traceStructs<false, addReading<false, 0>>(value, text, available);
}

std::size_t trace(const NodeSeq& value, bool decoding, char* text, std::size_t available)
{
    return decoding ? traceStructs<true, addNode<1>>(value, text, available)
                    : traceStructs<false, addNode<0>>(value, text, available);
}

std::size_t trace(const SampleSeq& value, bool decoding, char* text, std::size_t available)
{
    return decoding ? traceNumbers<true>(value, text, available) : traceNumbers<false>(value, text, available);
}

std::size_t trace(const StationReport& value, bool, char* text, std::size_t available)
{
    if (available < anyTags || value.readings.count != 0) return 0;
    Out at = addNumber(add<"<station>">(text), value.station);
    at = addNumber(add<"</station>\n<sequence>">(at), value.sequence);
    return lengthOf(text, add<"</sequence>\n<readings></readings>">(at));
}

}  // namespace quorva::bench::limit
