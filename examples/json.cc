// A request that is written as JSON, encoded, decoded and shown as JSON again; and what a wrong text is told.

#include <quorvapixdr/json.h>
#include <quorvapixdr/types/jobs/job.h>

#include <cstdio>

int main()
{
    const auto attributes = quorva::fromJson<JobAVPSeq>(R"([
        {"id": 50, "value": {"attribute": 50, "quantity": 12}}
    ])");
    const quorva::Bytes message = quorva::encode(*attributes);
    std::printf("%zu bytes: %s\n", message.size(), quorva::toJson(*quorva::decode<JobAVPSeq>(message)).c_str());

    try {
        quorva::fromJson<JobAVPSeq>(R"([
            {"id": "fifty", "value": {"attribute": 50, "quantities": 12}}
        ])");
    } catch (const quorva::JsonError& error) {
        for (const auto& entry : error.errors()) std::printf("%s\n", entry.text().c_str());
    }
}

// Prints:
// 16 bytes: [{"id":50,"value":{"attribute":50,"quantity":12}}]
// 2:20: /0/id: expected a whole number from 0 to 4294967295, found "fifty"
// 2:56: /0/value: attribute 50 goes with the arm "quantity", not with "quantities"
// 2:38: /0/value: the field "quantity" of JobUnion is missing
