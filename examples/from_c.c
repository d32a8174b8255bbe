// Attributes of a job from C11: encodes them, decodes them with a trace, and shows where and why a cut message is
// refused.

#include <quorvapixdr/c/jobs/job.h>
#include <quorvapixdr/c_codec.h>
#include <quorvapixdr/drivers.h>

#include <stdio.h>
#include <stdlib.h>

int main(void)
{
    JobHeldReason reasons[] = {JobHeldReason_JHRproofAndHold};
    JobAVP attributes[] = {
        {50, {.attribute = 50, .quantity = 12}},
        {13, {.attribute = 13, .jobState = {DPAJobState_JSheld, .jobHeldReason = {1, reasons}}}},
    };
    const JobAVPSeq sequence = {2, attributes};

    unsigned char message[4096];
    size_t length = 0;
    if (!quorvaEncode(XdrJobAVPSeq, &sequence, message, sizeof message, &length, NULL)) return 1;

    JobAVPSeq received = {0};  // zeroed, so that the release is safe even after a failed decode
    char* trace = NULL;
    if (!quorvaDecode(XdrJobAVPSeq, &received, message, length, NULL, &trace)) return 1;
    printf("%zu bytes\n%s\n", length, trace ? trace : "");
    free(trace);
    printf("the job is %s\n", DPAJobStateString(received.elements[1].value.jobState.dpaJobState));
    XdrDeallocate(XdrJobAVPSeq, &received, NULL);

    JobAVPSeq rest = {0};
    QuorvaFailure failure;
    if (!quorvaDecode(XdrJobAVPSeq, &rest, message, length - 2, NULL, NULL) &&
        quorvaExplainDecode(quorva_JobAVPSeq(), message, length - 2, &failure))
        printf("refused at %s, byte %zu: %s\n", failure.path, failure.offset, failure.reason);
    XdrDeallocate(XdrJobAVPSeq, &rest, NULL);
    return 0;
}

// Prints:
// 36 bytes
// <value>
//   <id>50</id>
//   <value>
//     <attribute>50</attribute>
//     <JobUnionUnion>
//       <quantity>12</quantity>
//     </JobUnionUnion>
//   </value>
// </value>
// <value>
//   <id>13</id>
//   <value>
//     <attribute>13</attribute>
//     <JobUnionUnion>
//       <jobState>
//         <dpaJobState><JSheld>12</JSheld></dpaJobState>
//         <JobStateUnion>
//           <jobHeldReason>
//             <value><JHRproofAndHold>4</JHRproofAndHold></value>
//           </jobHeldReason>
//         </JobStateUnion>
//       </jobState>
//     </JobUnionUnion>
//   </value>
// </value>
// the job is JSheld
// refused at /1/value/jobState/jobHeldReason/0, byte 32: 2 bytes left where a unit of 4 is needed
