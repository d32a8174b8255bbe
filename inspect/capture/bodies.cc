// Finds the type of an argument or result.

#include "bodies.h"

namespace quorva::inspect::capture {

namespace {

const char* whyUnknown(const RpcMessage& message, const CalledProcedure& known)
{
    if (!message.numbers) return "the call is not in the capture";
    return !known.program ? "unknown program" : !known.version ? "unknown version" : "unknown procedure";
}

}  // namespace

Body bodyOf(const RpcMessage& message, const Procedures& procedures, const Type* usual)
{
    if (!message.refusal.empty()) return {nullptr, false, message.refusal};
    if (!message.hasBody) return {nullptr, true, {}};
    if (message.isProtected) return {nullptr, false, "RPCSEC_GSS may encrypt it"};
    const CalledProcedure known = message.numbers ? procedures.find(*message.numbers) : CalledProcedure{};
    if (known.procedure) {
        const Type* const type = message.isReply ? known.procedure->result : known.procedure->argument;
        return {type, type == nullptr, {}};
    }
    if (message.bodySize() == 0) return {nullptr, true, {}};
    if (usual) return {usual, false, {}};
    return {nullptr, false, whyUnknown(message, known)};
}

}  // namespace quorva::inspect::capture
