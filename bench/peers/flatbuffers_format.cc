// FlatBuffers: messages are built from the library's objects in a builder that is used again, and after a check by its
// verifier read into the library's objects.

#include "formats.h"

#include "messages_generated.h"

namespace quorva::bench {

namespace {

namespace fb = quorva_bench_flatbuffers;
using flatbuffers::FlatBufferBuilder;
using flatbuffers::Offset;
using Attributes = flatbuffers::Vector<Offset<fb::Attribute>>;

template <class Text>
Offset<void> put(FlatBufferBuilder& builder, const Text& text)
{
    const auto contents = builder.CreateVector(text.bytes.elements, text.bytes.count);
    return fb::CreateEncodedText(builder, static_cast<int>(text.encoding), contents).Union();
}

Offset<void> putNumber(FlatBufferBuilder& builder, std::uint32_t number)
{
    return builder.CreateStruct(fb::Number(number)).Union();
}

// Enumerators have the size of the numbers that they are there.
template <class Enumerators>
auto putNumbers(FlatBufferBuilder& builder, const Enumerators& array)
{
    return builder.CreateVector(reinterpret_cast<const std::int32_t*>(array.elements), array.count);
}

Offset<fb::Attribute> put(FlatBufferBuilder& builder, const JobAVP& attribute)
{
    const JobUnion& value = attribute.value;
    const auto made = [&](fb::Value type, Offset<void> contents) {
        return fb::CreateAttribute(builder, attribute.id, type, contents);
    };
    switch (value.attribute) {
    case 8:
        return made(fb::Value_job_id, builder.CreateStruct(fb::JobId(value.jobId.service, value.jobId.job)).Union());
    case 13: {
        const auto reasons = putNumbers(builder, value.jobState.jobHeldReason);
        return made(fb::Value_job_state,
                    fb::CreateJobState(builder, static_cast<int>(value.jobState.dpaJobState), reasons).Union());
    }
    case 15: return made(fb::Value_job_owner, put(builder, value.jobOwner));
    case 50: return made(fb::Value_quantity, putNumber(builder, value.quantity));
    case 59: return made(fb::Value_job_hold, putNumber(builder, value.jobHold));
    case 70:
        return made(fb::Value_pin_number, fb::CreatePinNumber(builder, builder.CreateString(value.pinNumber)).Union());
    case 77: return made(fb::Value_job_name, put(builder, value.jobName));
    case 100: return made(fb::Value_job_priority, putNumber(builder, value.jobPriority));
    case 104: return made(fb::Value_job_submission_time, putNumber(builder, value.jobSubmissionTime));
    case 106: return made(fb::Value_number_of_original_images, putNumber(builder, value.numberOfOriginalImages));
    case 192: {
        const fb::SetNumber sets(value.setscompleted.setsCompleted, value.setscompleted.setsRequested);
        return made(fb::Value_sets_completed, builder.CreateStruct(sets).Union());
    }
    case 244: return made(fb::Value_job_message_to_operator, put(builder, value.jobMessageToOperator));
    case 246: {
        std::uint8_t code[10];
        std::memcpy(code, value.securePrintSetting.idCode, sizeof code);
        const fb::SecurePrint secure(value.securePrintSetting.secure, flatbuffers::make_span(code));
        return made(fb::Value_secure_print_setting, builder.CreateStruct(secure).Union());
    }
    case 1035: return made(fb::Value_folder_name, put(builder, value.folderName));
    case 1036: return made(fb::Value_folder_owner_name, put(builder, value.folderOwnerName));
    case 1069:
        return made(fb::Value_job_sources,
                    fb::CreateJobSources(builder, putNumbers(builder, value.jobSourceSeq)).Union());
    case 1073: return made(fb::Value_file_name, put(builder, value.fileName));
    default: return made(fb::Value_NONE, 0);
    }
}

Offset<Attributes> put(FlatBufferBuilder& builder, const JobAVPSeq& attributes)
{
    Offset<fb::Attribute> made[65];
    if (attributes.count >= std::size(made)) return 0;
    for (std::size_t i = 0; i < attributes.count; ++i) made[i] = put(builder, attributes.elements[i]);
    return builder.CreateVector(made, attributes.count);
}

auto root(FlatBufferBuilder& builder, const JobAttNotifyParams& value)
{
    const fb::JobId id(value.jobId.service, value.jobId.job);
    const auto attributes = put(builder, value.eventData);
    return fb::CreateNotification(builder, &id, attributes);
}
auto root(FlatBufferBuilder& builder, const JobAVPSeq& value)
{
    return fb::CreateAttributes(builder, put(builder, value));
}
auto root(FlatBufferBuilder& builder, const AttributeSeq& value)
{
    return fb::CreateNumbers(builder, builder.CreateVector(value.elements, value.count));
}

template <class T>
std::size_t write(const T& value, unsigned char* buffer, std::size_t room)
{
    static FlatBufferBuilder builder(4 * longest);
    builder.Clear();
    builder.Finish(root(builder, value));
    const std::size_t size = builder.GetSize();
    if (size > room) return 0;
    std::memcpy(buffer, builder.GetBufferPointer(), size);
    return size;
}

template <class Text>
void get(const fb::EncodedText* from, Text& to)
{
    to.encoding = static_cast<StringEncoding>(from->encoding());
    if (from->contents()) own(to.bytes, from->contents()->data(), from->contents()->size());
}

template <class Array>
void get(const flatbuffers::Vector<std::int32_t>* from, Array& to)
{
    if (from) own(to, from->data(), from->size());
}

// The verifier has seen the message, but absent parts and unknown kinds are none of its business.
bool get(const fb::Attribute* from, JobAVP& to)
{
    to.id = from->id();
    JobUnion& value = to.value;
    const void* const held = from->value();
    if (!held || from->value_type() < fb::Value_MIN + 1 || from->value_type() > fb::Value_MAX) return false;
    value.attribute = attributeNumbers[from->value_type() - 1];
    const auto number = [&] { return static_cast<const fb::Number*>(held)->value(); };
    const auto* const text = static_cast<const fb::EncodedText*>(held);
    switch (from->value_type()) {
    case fb::Value_job_id: {
        const auto* const id = static_cast<const fb::JobId*>(held);
        value.jobId = {id->service(), id->job()};
        break;
    }
    case fb::Value_job_state: {
        const auto* const state = static_cast<const fb::JobState*>(held);
        value.jobState.dpaJobState = static_cast<DPAJobState>(state->dpa_job_state());
        get(state->job_held_reason(), value.jobState.jobHeldReason);
        break;
    }
    case fb::Value_job_owner: get(text, value.jobOwner); break;
    case fb::Value_quantity: value.quantity = number(); break;
    case fb::Value_job_hold: value.jobHold = static_cast<Boolean>(number()); break;
    case fb::Value_pin_number: {
        const auto* const characters = static_cast<const fb::PinNumber*>(held)->characters();
        if (!characters) return false;
        value.pinNumber = ownText(characters->c_str(), characters->size());
        break;
    }
    case fb::Value_job_name: get(text, value.jobName); break;
    case fb::Value_job_priority: value.jobPriority = number(); break;
    case fb::Value_job_submission_time: value.jobSubmissionTime = number(); break;
    case fb::Value_number_of_original_images: value.numberOfOriginalImages = number(); break;
    case fb::Value_sets_completed: {
        const auto* const sets = static_cast<const fb::SetNumber*>(held);
        value.setscompleted = {sets->sets_completed(), sets->sets_requested()};
        break;
    }
    case fb::Value_job_message_to_operator: get(text, value.jobMessageToOperator); break;
    case fb::Value_secure_print_setting: {
        const auto* const secure = static_cast<const fb::SecurePrint*>(held);
        value.securePrintSetting.secure = secure->secure();
        std::memcpy(value.securePrintSetting.idCode, secure->id_code()->Data(), 10);
        break;
    }
    case fb::Value_folder_name: get(text, value.folderName); break;
    case fb::Value_folder_owner_name: get(text, value.folderOwnerName); break;
    case fb::Value_job_sources: get(static_cast<const fb::JobSources*>(held)->sources(), value.jobSourceSeq); break;
    case fb::Value_file_name: get(text, value.fileName); break;
    default: return false;
    }
    return true;
}

bool get(const Attributes* from, JobAVPSeq& to)
{
    if (!from || from->size() == 0) return true;
    to = {static_cast<std::uint16_t>(from->size()), new JobAVP[from->size()]()};
    for (unsigned i = 0; i < from->size(); ++i)
        if (!get(from->Get(i), to.elements[i])) return false;
    return true;
}

bool get(const fb::Notification* from, JobAttNotifyParams& to)
{
    if (!from->job_id()) return false;
    to.jobId = {from->job_id()->service(), from->job_id()->job()};
    return get(from->event_data(), to.eventData);
}
bool get(const fb::Attributes* from, JobAVPSeq& to)
{
    return get(from->attributes(), to);
}
bool get(const fb::Numbers* from, AttributeSeq& to)
{
    if (from->numbers()) own(to, from->numbers()->data(), from->numbers()->size());
    return true;
}

template <class T>
struct RootOf;
template <>
struct RootOf<JobAttNotifyParams> {
    using Table = fb::Notification;
};
template <>
struct RootOf<JobAVPSeq> {
    using Table = fb::Attributes;
};
template <>
struct RootOf<AttributeSeq> {
    using Table = fb::Numbers;
};

template <class T>
bool read(const unsigned char* message, std::size_t length, T& value)
{
    using Table = typename RootOf<T>::Table;
    flatbuffers::Verifier verifier(message, length);
    return verifier.VerifyBuffer<Table>(nullptr) && get(flatbuffers::GetRoot<Table>(message), value);
}

}  // namespace

template <class T>
std::unique_ptr<Format> flatbuffersFormat(const T& value)
{
    return std::make_unique<Direct<T, write<T>, read<T>>>(value);
}
template std::unique_ptr<Format> flatbuffersFormat(const JobAttNotifyParams&);
template std::unique_ptr<Format> flatbuffersFormat(const JobAVPSeq&);
template std::unique_ptr<Format> flatbuffersFormat(const AttributeSeq&);

}  // namespace quorva::bench
