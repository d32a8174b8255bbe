// JSON of a separate module's struct, which has structs of the library as members.

#include <quorvapixdr/json.h>
#include <quorvapixdr/types/station/locker.h>

#include <cstdio>

int main()
{
    const auto report = quorva::fromJson<StationReport>(R"({"service":77,"doors":[{"number":4,"state":1,
        "job":{"service":4,"job":1207},"label":"left"}],
        "client":{"hostName":"desk.example","programNumber":1,"versionNumber":2,"notifyProcedureNumber":9}})");
    std::puts(quorva::toJson(*report).c_str());
    try {
        quorva::fromJson<StationReport>(R"({"service":77,"doors":[],"client":{}})");
    } catch (const quorva::JsonError& error) {
        std::puts(error.errors().front().text().c_str());
    }
}
