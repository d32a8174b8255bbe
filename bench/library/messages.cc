#include "messages.h"

#include "../passes.h"

#include <cstring>

namespace quorva::bench::library {

Counted<unsigned char> Messages::text(std::string contents)
{
    std::string& kept = texts.emplace_back(std::move(contents));
    return {static_cast<std::uint16_t>(kept.size()), reinterpret_cast<unsigned char*>(kept.data())};
}

// An attribute of a job of 14 pages and 12 copies.
JobAVP Messages::attribute(AttributeId number)
{
    JobAVP made;
    std::memset(static_cast<void*>(&made), 0, sizeof made);
    made.id = number;
    JobUnion& value = made.value;
    value.attribute = number;
    const auto encoded = [&](std::string contents) {
        return EncodedLongString{StringEncoding::SEUTF8, text(std::move(contents))};
    };
    switch (number) {
    case 8: value.jobId = {5, 231}; break;
    case 13: {
        value.jobState.dpaJobState = DPAJobState::JSheld;
        value.jobState.jobHeldReason = {static_cast<std::uint16_t>(reasons.size()), reasons.data()};
        break;
    }
    case 15: value.jobOwner = encoded("M\xC3\xBCller, J\xC3\xBCrgen"); break;
    case 50: value.quantity = 12; break;
    case 59: value.jobHold = 1; break;
    case 70: value.pinNumber = texts.emplace_back("4711").data(); break;
    case 77: value.jobName = encoded("Quarterly figures.pdf"); break;
    case 100: value.jobPriority = 50; break;
    case 104: value.jobSubmissionTime = 1700000000; break;
    case 106: value.numberOfOriginalImages = 14; break;
    case 192: value.setscompleted = {0, 12}; break;
    case 244: value.jobMessageToOperator = {StringEncoding::SEAscii, text("blue paper")}; break;
    case 246: value.securePrintSetting = {1, {4, 7, 1, 1, 0, 8, 0, 0, 0, 0}}; break;
    case 1035: value.folderName = encoded("invoices"); break;
    case 1036: value.folderOwnerName = encoded("sales"); break;
    case 1069: value.jobSourceSeq = {static_cast<std::uint16_t>(sources.size()), sources.data()}; break;
    case 1073: value.fileName = encoded("scan-0042.tif"); break;
    default: break;
    }
    return made;
}

JobAVPSeq Messages::sequence(std::vector<JobAVP>& of)
{
    return {static_cast<std::uint16_t>(of.size()), of.data()};
}

Messages::Messages()
{
    reasons = {JobHeldReason::JHRsecurePrinting, JobHeldReason::JHRjobHoldSet, JobHeldReason::JHRdeferredPrinting,
               JobHeldReason::JHRmarkResourceRequired, JobHeldReason::JHRproofAndHold};
    for (int i = 0; i < 58; ++i) sources.push_back(static_cast<JobSource>(i % 6));
    for (AttributeId i = 0; i < 240; ++i) attributeNumbers.push_back(6 * i + 8);

    small = {{5, 231}, {0, nullptr}};

    // Of a job's attributes only 1069 is an array of numbers; its enumerators are numbers on the wire.
    for (const AttributeId number : {8u, 13u, 15u, 50u, 59u, 77u, 100u, 104u, 106u, 192u, 246u, 1069u})
        typicalAttributes.push_back(attribute(number));
    typical = sequence(typicalAttributes);

    // Three strings, then a number, and so on: 44 attributes in 1000 bytes.
    const AttributeId cycle[] = {1035, 244, 70, 106, 1036, 1073, 77, 104, 70, 244, 1036, 50};
    unsigned char buffer[longest];
    std::size_t size = 4;
    for (std::size_t i = 0;; ++i) {
        JobAVP next = attribute(cycle[i % std::size(cycle)]);
        size += encodePass(XdrJobAVP, next, buffer);
        if (size > 1000) break;
        manyAttributes.push_back(next);
    }
    many = sequence(manyAttributes);

    numbers = {static_cast<std::uint16_t>(attributeNumbers.size()), attributeNumbers.data()};
}

}  // namespace quorva::bench::library
