// The naive traces of the messages of network.x.

#include "../limit.h"
#include "../naive_text.h"

namespace quorva::bench::naive {

namespace {

void add(Trace& trace, const Reading& reading)
{
    const Measure& value = reading.value;
    if (trace.decoding) trace.open("value");
    trace.field("sensor", reading.sensor);
    trace.open("value");
    trace.field("quantity", value.quantity);
    trace.open("MeasureUnion");
    switch (value.quantity) {
    case 1: trace.field("voltage", value.voltage); break;
    case 2: trace.field("temperature", value.temperature); break;
    case 3: trace.field("humidity", value.humidity); break;
    case 4: trace.field("pressure", value.pressure); break;
    case 5:
        trace.open("wind");
        trace.field("direction", value.wind.direction);
        trace.field("speed", value.wind.speed);
        trace.close("wind");
        break;
    case 6: trace.truth("raining", value.raining); break;
    case 7: trace.enumeration("state", value.state, SensorStateString); break;
    case 8: trace.field("rainfall", value.rainfall); break;
    case 10:
        trace.open("calibration");
        trace.truth("inFactory", value.calibration.inFactory);
        trace.array("points", value.calibration.points, 10,
                    [&](LongNatural point, std::size_t i) { trace.number(point, i); });
        trace.close("calibration");
        break;
    case 11:
        trace.array("history", value.history.elements, value.history.count,
                    [&](SensorState state, std::size_t) { trace.enumerator(state, SensorStateString); });
        break;
    case 12: trace.string("remark", value.remark); break;
    case 13: trace.dump("signature", value.signature.elements, value.signature.count); break;
    default: break;
    }
    trace.close("MeasureUnion");
    trace.close("value");
    if (trace.decoding) trace.close("value");
}

}  // namespace

void trace(const ReadingSeq& value, bool decoding, std::string& text)
{
    Trace trace(text, decoding);
    for (std::size_t i = 0; i < value.count; ++i) add(trace, value.elements[i]);
}

void trace(const NodeSeq& value, bool decoding, std::string& text)
{
    Trace trace(text, decoding);
    for (std::size_t i = 0; i < value.count; ++i) {
        const Node& node = value.elements[i];
        if (decoding) trace.open("value");
        trace.field("number", node.number);
        trace.string("name", node.name);
        trace.dump("address", node.address.elements, node.address.count);
        trace.enumeration("state", node.state, SensorStateString);
        if (decoding) trace.close("value");
    }
}

void trace(const SampleSeq& value, bool decoding, std::string& text)
{
    Trace trace(text, decoding);
    trace.elements(value.elements, value.count, [&](LongNatural one, std::size_t i) { trace.number(one, i); });
}

void trace(const StationReport& value, bool decoding, std::string& text)
{
    Trace trace(text, decoding);
    trace.field("station", value.station);
    trace.field("sequence", value.sequence);
    trace.string("readings", "");  // the array of the measured message is empty
}

}  // namespace quorva::bench::naive
