// libtirpc's routines of the messages of network.x.
#pragma once

#include "../tirpc.h"
#include "messages.h"

#include <network_plain.h>

namespace quorva::bench {
inline TirpcRoutine<plain_ReadingSeq> tirpcOf(const ReadingSeq&)
{
    return xdr_plain_ReadingSeq;
}
inline TirpcRoutine<plain_NodeSeq> tirpcOf(const NodeSeq&)
{
    return xdr_plain_NodeSeq;
}
inline TirpcRoutine<plain_SampleSeq> tirpcOf(const SampleSeq&)
{
    return xdr_plain_SampleSeq;
}
inline TirpcRoutine<plain_StationReport> tirpcOf(const StationReport&)
{
    return xdr_plain_StationReport;
}
}  // namespace quorva::bench
