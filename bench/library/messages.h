// The measured messages of the library's types: a print job as a client sees it, in four sizes.
#pragma once

#include <quorvapixdr/types/common/status.h>
#include <quorvapixdr/types/jobs/job.h>
#include <quorvapixdr/types/jobs/requests.h>

#include <deque>
#include <string>
#include <vector>

namespace quorva::bench::library {

// Owns the objects and everything that they point to. No release pass runs over them.
class Messages {
public:
    Messages();
    Messages(const Messages&) = delete;
    Messages& operator=(const Messages&) = delete;

    JobAVPSeq typical;         // T: twelve attributes of a job, one of them an array of 58 numbers
    JobAVPSeq many;            // L: as many attributes as fit in 1000 bytes, most of them short strings
    AttributeSeq numbers;      // B: an array of 240 numbers
    JobAttNotifyParams small;  // S: a job's two numbers and an empty array

    // Calls visit(letter, object, routine) for each message.
    template <class Visit>
    void each(Visit visit)
    {
        visit("T", typical, XdrJobAVPSeq);
        visit("L", many, XdrJobAVPSeq);
        visit("B", numbers, XdrAttributeSeq);
        visit("S", small, XdrJobAttNotifyParams);
    }

private:
    Counted<unsigned char> text(std::string contents);
    JobAVP attribute(AttributeId number);
    static JobAVPSeq sequence(std::vector<JobAVP>& of);

    std::deque<std::string> texts;
    std::vector<JobAVP> typicalAttributes;
    std::vector<JobAVP> manyAttributes;
    std::vector<JobSource> sources;
    std::vector<JobHeldReason> reasons;
    std::vector<AttributeId> attributeNumbers;
};

}  // namespace quorva::bench::library
