/* The spooler by rpcgen and libtirpc: what examples/rpc/spooler_server does, as far as its client can see. */
#include "peer.h"

enum { mostJobs = 64, inBlock = 4 };

static struct {
    char name[256];
    u_int length;
    plain_DPAJobState state;
} jobs[mostJobs + 1]; /* from 1 */
static u_int jobCount;
static plain_SubscribeParameters subscriber;
static plain_JobId changed; /* not notified yet */

static int known(const plain_JobId* id)
{
    return id->service == 4 && id->job >= 1 && id->job <= jobCount;
}

plain_CreateJobStatus* plain_create_job_1_svc(plain_CreateJobParameters* asked, struct svc_req* request)
{
    static plain_CreateJobStatus result;
    const plain_EncodedLongString* name = &asked->jobAttributes.plain_JobAVPSeq_val[0].value.plain_JobUnion_u.jobName;
    (void)request;
    ++jobCount;
    jobs[jobCount].length = name->bytes.bytes_len;
    jobs[jobCount].state = plain_JSpending;
    memcpy(jobs[jobCount].name, name->bytes.bytes_val, name->bytes.bytes_len);
    result.jobId.service = 4;
    result.jobId.job = jobCount;
    result.returnStatus = plain_ok;
    return &result;
}

plain_JobStateReturn* plain_read_state_1_svc(plain_JobId* id, struct svc_req* request)
{
    static plain_JobStateReturn result;
    (void)request;
    result.returnStatus = known(id) ? plain_ok : plain_invalidId;
    result.jobState.dpaJobState = known(id) ? jobs[id->job].state : plain_JSunknown;
    return &result;
}

plain_ListJobsXFerData* plain_list_jobs_1_svc(plain_JobBlockParameters* asked, struct svc_req* request)
{
    static plain_ListJobsXFerData result;
    static plain_JobData block[inBlock];
    static plain_QueryAVP attributes[inBlock][3];
    u_int i, job = asked->blockNumber * inBlock + 1;
    (void)request;
    result.blockNumber = asked->blockNumber;
    result.numberOfBlocks = (jobCount + inBlock - 1) / inBlock;
    result.totalNumberOfElements = jobCount;
    result.interruptToken = asked->interruptToken;
    result.returnStatus = job <= jobCount ? plain_XFOk : plain_XFNoData;
    for (i = 0; i < inBlock && job <= jobCount; ++i, ++job) {
        plain_QueryUnion *id = &attributes[i][0].value, *state = &attributes[i][1].value,
                         *name = &attributes[i][2].value;
        id->attribute = plain_AttributeJobId;
        id->plain_QueryUnion_u.jobId.service = 4;
        id->plain_QueryUnion_u.jobId.job = job;
        state->attribute = plain_AttributeJobState;
        state->plain_QueryUnion_u.jobState.dpaJobState = jobs[job].state;
        name->attribute = plain_AttributeJobName;
        name->plain_QueryUnion_u.jobName.encoding = plain_SEUTF8;
        name->plain_QueryUnion_u.jobName.bytes.bytes_len = jobs[job].length;
        name->plain_QueryUnion_u.jobName.bytes.bytes_val = jobs[job].name;
        block[i].plain_QueryAVPSeq_len = 3;
        block[i].plain_QueryAVPSeq_val = attributes[i];
    }
    result.jobDataXFerList.jobDataXFerList_len = i;
    result.jobDataXFerList.jobDataXFerList_val = block;
    return &result;
}

plain_ReturnStatus* plain_cancel_job_1_svc(plain_JobId* id, struct svc_req* request)
{
    static plain_ReturnStatus result;
    (void)request;
    result = known(id) ? plain_ok : plain_invalidId;
    if (known(id)) {
        jobs[id->job].state = plain_JScancelled;
        changed = *id;
    }
    return &result;
}

plain_ReturnStatus* plain_subscribe_1_svc(plain_SubscribeParameters* asked, struct svc_req* request)
{
    static plain_ReturnStatus result = plain_ok;
    (void)request;
    subscriber = *asked;
    return &result;
}

/* Tells the subscriber of the changed job. The reply to the call that changed it is sent already. */
static void notify(void)
{
    struct sockaddr_in address = loopback((int)subscriber.port);
    int socket = RPC_ANYSOCK;
    plain_JobAVP attribute = {0};
    plain_JobAttNotifyParams event = {0};
    CLIENT* client = clnttcp_create(&address, subscriber.clientNotify.programNumber,
                                    subscriber.clientNotify.versionNumber, &socket, 0, 0);
    attribute.id = attribute.value.attribute = plain_AttributeJobState;
    attribute.value.plain_JobUnion_u.jobState.dpaJobState = jobs[changed.job].state;
    event.jobId = changed;
    event.eventData.plain_JobAVPSeq_len = 1;
    event.eventData.plain_JobAVPSeq_val = &attribute;
    changed.job = 0;
    if (!client || !plain_job_changed_1(&event, client)) fputs("peer_server: no answer to a notification\n", stderr);
    if (client) clnt_destroy(client);
}

int main(void)
{
    int port = 0;
    const int tcp = boundSocket(SOCK_STREAM, &port), udp = boundSocket(SOCK_DGRAM, &port);
    SVCXPRT* const transports[] = {svctcp_create(tcp, 0, 0), svcudp_create(udp)};
    for (int i = 0; i < 2; ++i)
        if (!transports[i] ||
            !svc_register(transports[i], plain_PRINT_SPOOLER, plain_SPOOLER_V1, plain_print_spooler_1, 0))
            return 1;
    printf("listens at 127.0.0.1:%d\n", port);
    fflush(stdout);
    for (;;) {
        serveOnce();
        if (changed.job && subscriber.port) notify();
    }
}

/* The program of the clients, which rpcgen's dispatch function for it calls. */
void* plain_job_changed_1_svc(plain_JobAttNotifyParams* event, struct svc_req* request)
{
    (void)event;
    (void)request;
    return NULL;
}
