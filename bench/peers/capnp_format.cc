// Cap'n Proto: messages are built from the library's objects in storage that is used again, written as one flat
// segment, and read into the library's objects.

#include "formats.h"

#include "messages.capnp.h"

#include <capnp/message.h>
#include <capnp/serialize.h>

namespace quorva::bench {

namespace {

namespace cp = quorva_bench_capnp;

template <class Text>
void put(cp::EncodedText::Builder to, const Text& from)
{
    to.setEncoding(static_cast<int>(from.encoding));
    to.setContents(kj::arrayPtr(from.bytes.elements, from.bytes.count));
}

template <class List, class Array>
void putNumbers(List to, const Array& from)
{
    for (unsigned i = 0; i < from.count; ++i) to.set(i, static_cast<std::int32_t>(from.elements[i]));
}

void put(cp::JobId::Builder to, const JobId& from)
{
    to.setService(from.service);
    to.setJob(from.job);
}

void put(cp::Attribute::Builder to, const JobAVP& from)
{
    to.setId(from.id);
    const JobUnion& value = from.value;
    switch (value.attribute) {
    case 8: put(to.initJobId(), value.jobId); break;
    case 13: {
        auto state = to.initJobState();
        state.setDpaJobState(static_cast<int>(value.jobState.dpaJobState));
        putNumbers(state.initJobHeldReason(value.jobState.jobHeldReason.count), value.jobState.jobHeldReason);
        break;
    }
    case 15: put(to.initJobOwner(), value.jobOwner); break;
    case 50: to.setQuantity(value.quantity); break;
    case 59: to.setJobHold(value.jobHold); break;
    case 70: to.setPinNumber(value.pinNumber); break;
    case 77: put(to.initJobName(), value.jobName); break;
    case 100: to.setJobPriority(value.jobPriority); break;
    case 104: to.setJobSubmissionTime(value.jobSubmissionTime); break;
    case 106: to.setNumberOfOriginalImages(value.numberOfOriginalImages); break;
    case 192: {
        auto sets = to.initSetsCompleted();
        sets.setSetsCompleted(value.setscompleted.setsCompleted);
        sets.setSetsRequested(value.setscompleted.setsRequested);
        break;
    }
    case 244: put(to.initJobMessageToOperator(), value.jobMessageToOperator); break;
    case 246: {
        auto secure = to.initSecurePrintSetting();
        secure.setSecure(value.securePrintSetting.secure);
        auto code = secure.initIdCode(10);
        for (unsigned i = 0; i < 10; ++i) code.set(i, static_cast<std::uint8_t>(value.securePrintSetting.idCode[i]));
        break;
    }
    case 1035: put(to.initFolderName(), value.folderName); break;
    case 1036: put(to.initFolderOwnerName(), value.folderOwnerName); break;
    case 1069: putNumbers(to.initJobSources(value.jobSourceSeq.count), value.jobSourceSeq); break;
    case 1073: put(to.initFileName(), value.fileName); break;
    default: break;
    }
}

void put(capnp::List<cp::Attribute>::Builder to, const JobAVPSeq& from)
{
    for (unsigned i = 0; i < from.count; ++i) put(to[i], from.elements[i]);
}

void putRoot(capnp::MessageBuilder& message, const JobAttNotifyParams& value)
{
    auto root = message.initRoot<cp::Notification>();
    put(root.initJobId(), value.jobId);
    put(root.initEventData(value.eventData.count), value.eventData);
}
void putRoot(capnp::MessageBuilder& message, const JobAVPSeq& value)
{
    put(message.initRoot<cp::Attributes>().initAttributes(value.count), value);
}
void putRoot(capnp::MessageBuilder& message, const AttributeSeq& value)
{
    auto to = message.initRoot<cp::Numbers>().initNumbers(value.count);
    for (unsigned i = 0; i < value.count; ++i) to.set(i, value.elements[i]);
}

template <class T>
std::size_t write(const T& value, unsigned char* buffer, std::size_t room)
{
    // The builder clears what it used of its first segment when it goes, as it wants to find it.
    static capnp::word scratch[1024] = {};
    capnp::MallocMessageBuilder message(kj::arrayPtr(scratch, std::size(scratch)));
    putRoot(message, value);
    const std::size_t size = capnp::computeSerializedSizeInWords(message) * sizeof(capnp::word);
    if (size > room) return 0;
    kj::ArrayOutputStream out(kj::arrayPtr(buffer, room));
    capnp::writeMessage(out, message);
    return size;
}

template <class Text>
void get(cp::EncodedText::Reader from, Text& to)
{
    to.encoding = static_cast<StringEncoding>(from.getEncoding());
    const auto contents = from.getContents();
    own(to.bytes, contents.begin(), contents.size());
}

bool get(cp::Attribute::Reader from, JobAVP& to)
{
    to.id = from.getId();
    JobUnion& value = to.value;
    if (from.which() >= std::size(attributeNumbers)) return false;
    value.attribute = attributeNumbers[from.which()];
    switch (from.which()) {
    case cp::Attribute::JOB_ID: value.jobId = {from.getJobId().getService(), from.getJobId().getJob()}; break;
    case cp::Attribute::JOB_STATE: {
        const auto state = from.getJobState();
        value.jobState.dpaJobState = static_cast<DPAJobState>(state.getDpaJobState());
        const auto reasons = state.getJobHeldReason();
        own(value.jobState.jobHeldReason, reasons, reasons.size());
        break;
    }
    case cp::Attribute::JOB_OWNER: get(from.getJobOwner(), value.jobOwner); break;
    case cp::Attribute::QUANTITY: value.quantity = from.getQuantity(); break;
    case cp::Attribute::JOB_HOLD: value.jobHold = from.getJobHold(); break;
    case cp::Attribute::PIN_NUMBER: {
        const auto characters = from.getPinNumber();
        value.pinNumber = ownText(characters.cStr(), characters.size());
        break;
    }
    case cp::Attribute::JOB_NAME: get(from.getJobName(), value.jobName); break;
    case cp::Attribute::JOB_PRIORITY: value.jobPriority = from.getJobPriority(); break;
    case cp::Attribute::JOB_SUBMISSION_TIME: value.jobSubmissionTime = from.getJobSubmissionTime(); break;
    case cp::Attribute::NUMBER_OF_ORIGINAL_IMAGES:
        value.numberOfOriginalImages = from.getNumberOfOriginalImages();
        break;
    case cp::Attribute::SETS_COMPLETED:
        value.setscompleted = {from.getSetsCompleted().getSetsCompleted(), from.getSetsCompleted().getSetsRequested()};
        break;
    case cp::Attribute::JOB_MESSAGE_TO_OPERATOR: get(from.getJobMessageToOperator(), value.jobMessageToOperator); break;
    case cp::Attribute::SECURE_PRINT_SETTING: {
        const auto secure = from.getSecurePrintSetting();
        const auto code = secure.getIdCode();
        value.securePrintSetting.secure = secure.getSecure();
        if (code.size() != 10) return false;
        for (unsigned i = 0; i < 10; ++i) value.securePrintSetting.idCode[i] = static_cast<IDCode>(code[i]);
        break;
    }
    case cp::Attribute::FOLDER_NAME: get(from.getFolderName(), value.folderName); break;
    case cp::Attribute::FOLDER_OWNER_NAME: get(from.getFolderOwnerName(), value.folderOwnerName); break;
    case cp::Attribute::JOB_SOURCES: own(value.jobSourceSeq, from.getJobSources(), from.getJobSources().size()); break;
    case cp::Attribute::FILE_NAME: get(from.getFileName(), value.fileName); break;
    default: return false;
    }
    return true;
}

bool get(capnp::List<cp::Attribute>::Reader from, JobAVPSeq& to)
{
    if (from.size() == 0) return true;
    to = {static_cast<std::uint16_t>(from.size()), new JobAVP[from.size()]()};
    for (unsigned i = 0; i < from.size(); ++i)
        if (!get(from[i], to.elements[i])) return false;
    return true;
}

bool getRoot(capnp::MessageReader& message, JobAttNotifyParams& value)
{
    const auto root = message.getRoot<cp::Notification>();
    value.jobId = {root.getJobId().getService(), root.getJobId().getJob()};
    return get(root.getEventData(), value.eventData);
}
bool getRoot(capnp::MessageReader& message, JobAVPSeq& value)
{
    return get(message.getRoot<cp::Attributes>().getAttributes(), value);
}
bool getRoot(capnp::MessageReader& message, AttributeSeq& value)
{
    const auto numbers = message.getRoot<cp::Numbers>().getNumbers();
    own(value, numbers, numbers.size());
    return true;
}

// Its reader checks pointers while it follows them, and throws.
template <class T>
bool read(const unsigned char* message, std::size_t length, T& value)
{
    capnp::FlatArrayMessageReader reader(
        kj::arrayPtr(reinterpret_cast<const capnp::word*>(message), length / sizeof(capnp::word)));
    return getRoot(reader, value);
}

}  // namespace

template <class T>
std::unique_ptr<Format> capnpFormat(const T& value)
{
    return std::make_unique<Direct<T, write<T>, read<T>>>(value);
}
template std::unique_ptr<Format> capnpFormat(const JobAttNotifyParams&);
template std::unique_ptr<Format> capnpFormat(const JobAVPSeq&);
template std::unique_ptr<Format> capnpFormat(const AttributeSeq&);

}  // namespace quorva::bench
