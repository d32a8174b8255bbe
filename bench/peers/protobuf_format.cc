// Protocol Buffers: its users hold objects of its own classes, so those are what is encoded and decoded.

#include "formats.h"

#include "messages.pb.h"

namespace quorva::bench {

namespace {

namespace pb = quorva_bench_protobuf;

template <class Text>
void fill(pb::EncodedText* to, const Text& from)
{
    to->set_encoding(static_cast<int>(from.encoding));
    to->set_contents(from.bytes.elements, from.bytes.count);
}

void fill(pb::JobId* to, const JobId& from)
{
    to->set_service(from.service);
    to->set_job(from.job);
}

void fill(pb::Attribute* to, const JobAVP& from)
{
    to->set_id(from.id);
    const JobUnion& value = from.value;
    switch (value.attribute) {
    case 8: fill(to->mutable_job_id(), value.jobId); break;
    case 13: {
        auto* const state = to->mutable_job_state();
        state->set_dpa_job_state(static_cast<int>(value.jobState.dpaJobState));
        for (std::size_t i = 0; i < value.jobState.jobHeldReason.count; ++i)
            state->add_job_held_reason(static_cast<int>(value.jobState.jobHeldReason.elements[i]));
        break;
    }
    case 15: fill(to->mutable_job_owner(), value.jobOwner); break;
    case 50: to->set_quantity(value.quantity); break;
    case 59: to->set_job_hold(value.jobHold); break;
    case 70: to->set_pin_number(value.pinNumber); break;
    case 77: fill(to->mutable_job_name(), value.jobName); break;
    case 100: to->set_job_priority(value.jobPriority); break;
    case 104: to->set_job_submission_time(value.jobSubmissionTime); break;
    case 106: to->set_number_of_original_images(value.numberOfOriginalImages); break;
    case 192:
        to->mutable_sets_completed()->set_sets_completed(value.setscompleted.setsCompleted);
        to->mutable_sets_completed()->set_sets_requested(value.setscompleted.setsRequested);
        break;
    case 244: fill(to->mutable_job_message_to_operator(), value.jobMessageToOperator); break;
    case 246:
        to->mutable_secure_print_setting()->set_secure(value.securePrintSetting.secure);
        for (const IDCode code : value.securePrintSetting.idCode)
            to->mutable_secure_print_setting()->add_id_code(static_cast<unsigned char>(code));
        break;
    case 1035: fill(to->mutable_folder_name(), value.folderName); break;
    case 1036: fill(to->mutable_folder_owner_name(), value.folderOwnerName); break;
    case 1069:
        for (std::size_t i = 0; i < value.jobSourceSeq.count; ++i)
            to->mutable_job_sources()->add_sources(static_cast<int>(value.jobSourceSeq.elements[i]));
        break;
    case 1073: fill(to->mutable_file_name(), value.fileName); break;
    default: break;
    }
}

pb::Notification objectOf(const JobAttNotifyParams& value)
{
    pb::Notification object;
    fill(object.mutable_job_id(), value.jobId);
    for (std::size_t i = 0; i < value.eventData.count; ++i) fill(object.add_event_data(), value.eventData.elements[i]);
    return object;
}

pb::Attributes objectOf(const JobAVPSeq& value)
{
    pb::Attributes object;
    for (std::size_t i = 0; i < value.count; ++i) fill(object.add_attributes(), value.elements[i]);
    return object;
}

pb::Numbers objectOf(const AttributeSeq& value)
{
    pb::Numbers object;
    for (std::size_t i = 0; i < value.count; ++i) object.add_numbers(value.elements[i]);
    return object;
}

template <class Message>
class Protobuf : public Format {
public:
    explicit Protobuf(Message ofObject) : object(std::move(ofObject)) {}

    std::size_t encode(unsigned char* buffer, std::size_t room) override
    {
        const std::size_t size = object.ByteSizeLong();
        if (size > room) return 0;
        object.SerializeWithCachedSizesToArray(buffer);
        return size;
    }
    bool decode(const unsigned char* message, std::size_t length) override
    {
        Message made;
        return made.ParseFromArray(message, static_cast<int>(length));
    }
    bool keeps(const unsigned char* message, std::size_t length) override
    {
        Message made;
        return made.ParseFromArray(message, static_cast<int>(length)) && made.DebugString() == object.DebugString();
    }

private:
    Message object;
};

}  // namespace

template <class T>
std::unique_ptr<Format> protobufFormat(const T& value)
{
    return std::make_unique<Protobuf<decltype(objectOf(value))>>(objectOf(value));
}
template std::unique_ptr<Format> protobufFormat(const JobAttNotifyParams&);
template std::unique_ptr<Format> protobufFormat(const JobAVPSeq&);
template std::unique_ptr<Format> protobufFormat(const AttributeSeq&);

}  // namespace quorva::bench
