/* The client of the spooler by rpcgen and libtirpc. It prints what examples/rpc/spooler_client prints. */
#include "peer.h"

#define NAMED(enumerator) \
    case plain_##enumerator: return #enumerator

static const char* stateName(plain_DPAJobState state)
{
    switch (state) {
        NAMED(JSpending);
        NAMED(JScancelled);
        NAMED(JSunknown);
    default: return "another state";
    }
}

static const char* statusName(plain_ReturnStatus status)
{
    switch (status) {
        NAMED(ok);
        NAMED(invalidId);
    default: return "another status";
    }
}

/* The result of a call. Ends the program if there is none. */
static void* must(void* result, CLIENT* client)
{
    if (result) return result;
    clnt_perror(client, "peer_client");
    exit(1);
}

static plain_JobId createJob(CLIENT* client, char* name)
{
    plain_JobAVP attribute = {0};
    plain_CreateJobParameters asked = {0};
    plain_EncodedLongString* text = &attribute.value.plain_JobUnion_u.jobName;
    plain_CreateJobStatus* created;
    attribute.id = attribute.value.attribute = plain_AttributeJobName;
    text->encoding = plain_SEUTF8;
    text->bytes.bytes_len = (u_int)strlen(name);
    text->bytes.bytes_val = name;
    asked.jobAttributes.plain_JobAVPSeq_len = 1;
    asked.jobAttributes.plain_JobAVPSeq_val = &attribute;
    created = must(plain_create_job_1(&asked, client), client);
    printf("create \"%s\": %s, job %u\n", name, statusName(created->returnStatus), created->jobId.job);
    return created->jobId;
}

static void readState(CLIENT* client, plain_JobId job)
{
    const plain_JobStateReturn* state = must(plain_read_state_1(&job, client), client);
    printf("state of job %u: %s, %s\n", job.job, statusName(state->returnStatus),
           stateName(state->jobState.dpaJobState));
}

static void listQueue(CLIENT* client)
{
    plain_JobBlockParameters asked = {0, 1};
    for (;; ++asked.blockNumber) {
        plain_ListJobsXFerData* block = must(plain_list_jobs_1(&asked, client), client);
        if (block->returnStatus != plain_XFOk) return;
        printf("block %u of %u:\n", block->blockNumber, block->numberOfBlocks);
        for (u_int i = 0; i < block->jobDataXFerList.jobDataXFerList_len; ++i) {
            const plain_QueryAVP* job = block->jobDataXFerList.jobDataXFerList_val[i].plain_QueryAVPSeq_val;
            const plain_EncodedLongString* name = &job[2].value.plain_QueryUnion_u.jobName;
            printf("  job %u %s \"%.*s\"\n", job[0].value.plain_QueryUnion_u.jobId.job,
                   stateName(job[1].value.plain_QueryUnion_u.jobState.dpaJobState), (int)name->bytes.bytes_len,
                   name->bytes.bytes_val);
        }
        clnt_freeres(client, (xdrproc_t)xdr_plain_ListJobsXFerData, (caddr_t)block);
    }
}

static int heard;

void* plain_job_changed_1_svc(plain_JobAttNotifyParams* event, struct svc_req* request)
{
    static char result;
    (void)request;
    printf("notified: job %u is %s\n", event->jobId.job,
           stateName(event->eventData.plain_JobAVPSeq_val[0].value.plain_JobUnion_u.jobState.dpaJobState));
    heard = 1;
    return &result;
}

int main(int count, char** arguments)
{
    static char host[] = "127.0.0.1";
    static char* names[] = {"letter", "invoice", "poster", "menu", "map", "label"};
    const int overTcp = count == 4 && strcmp(arguments[1], "tcp") == 0;
    struct sockaddr_in server = loopback(count == 4 ? atoi(arguments[3]) : 0);
    int socket = RPC_ANYSOCK, port = 0;
    const struct timeval wait = {1, 0};
    CLIENT* client = overTcp ? clnttcp_create(&server, plain_PRINT_SPOOLER, plain_SPOOLER_V1, &socket, 0, 0)
                             : clntudp_create(&server, plain_PRINT_SPOOLER, plain_SPOOLER_V1, wait, &socket);
    SVCXPRT* listener = svctcp_create(boundSocket(SOCK_STREAM, &port), 0, 0);
    plain_SubscribeParameters asked = {{host, plain_SPOOLER_CLIENT, plain_SPOOLER_CLIENT_V1, plain_JOB_CHANGED}, 0};
    plain_JobId job = {0, 0};
    const plain_JobId none = {4, 0};
    if (!client || !listener ||
        !svc_register(listener, plain_SPOOLER_CLIENT, plain_SPOOLER_CLIENT_V1, plain_spooler_client_1, 0))
        return 1;
    printf("hears of jobs at 127.0.0.1:%d\n", port);

    for (size_t i = 0; i < sizeof names / sizeof *names; ++i) job = createJob(client, names[i]);
    readState(client, job);
    listQueue(client);
    asked.port = (u_int)port;
    printf("subscribe: %s\n", statusName(*(plain_ReturnStatus*)must(plain_subscribe_1(&asked, client), client)));
    printf("cancel job %u: %s\n", job.job,
           statusName(*(plain_ReturnStatus*)must(plain_cancel_job_1(&job, client), client)));
    while (!heard) serveOnce();
    readState(client, job);
    readState(client, none);
    clnt_destroy(client);
    return 0;
}

/* The spooler's procedures, which rpcgen's dispatch function for them calls. */
#define NO_SERVER(procedure, Argument, Result)                     \
    Result* procedure(Argument* argument, struct svc_req* request) \
    {                                                              \
        (void)argument;                                            \
        (void)request;                                             \
        return NULL;                                               \
    }
NO_SERVER(plain_create_job_1_svc, plain_CreateJobParameters, plain_CreateJobStatus)
NO_SERVER(plain_read_state_1_svc, plain_JobId, plain_JobStateReturn)
NO_SERVER(plain_list_jobs_1_svc, plain_JobBlockParameters, plain_ListJobsXFerData)
NO_SERVER(plain_cancel_job_1_svc, plain_JobId, plain_ReturnStatus)
NO_SERVER(plain_subscribe_1_svc, plain_SubscribeParameters, plain_ReturnStatus)
