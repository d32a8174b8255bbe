// libtirpc's routines of the library's messages.
#pragma once

#include "../tirpc.h"
#include "messages.h"

#include <plain.h>

namespace quorva::bench {
inline TirpcRoutine<plain_JobAVPSeq> tirpcOf(const JobAVPSeq&)
{
    return xdr_plain_JobAVPSeq;
}
inline TirpcRoutine<plain_AttributeSeq> tirpcOf(const AttributeSeq&)
{
    return xdr_plain_AttributeSeq;
}
inline TirpcRoutine<plain_JobAttNotifyParams> tirpcOf(const JobAttNotifyParams&)
{
    return xdr_plain_JobAttNotifyParams;
}
}  // namespace quorva::bench
