# The measured messages in Cap'n Proto: the same fields, a union in the attribute.
@0xb6f1c0a4d2e75a13;

using Cxx = import "/capnp/c++.capnp";
$Cxx.namespace("quorva_bench_capnp");

struct JobId {
    service @0 :UInt32;
    job @1 :UInt32;
}

struct JobState {
    dpaJobState @0 :Int32;
    jobHeldReason @1 :List(Int32);
}

struct EncodedText {
    encoding @0 :Int32;
    contents @1 :Data;
}

struct SetNumber {
    setsCompleted @0 :UInt32;
    setsRequested @1 :UInt32;
}

struct SecurePrint {
    secure @0 :Bool;
    idCode @1 :List(UInt8);
}

struct Attribute {
    id @0 :UInt32;
    union {
        jobId @1 :JobId;
        jobState @2 :JobState;
        jobOwner @3 :EncodedText;
        quantity @4 :UInt32;
        jobHold @5 :Bool;
        pinNumber @6 :Text;
        jobName @7 :EncodedText;
        jobPriority @8 :UInt32;
        jobSubmissionTime @9 :UInt32;
        numberOfOriginalImages @10 :UInt32;
        setsCompleted @11 :SetNumber;
        jobMessageToOperator @12 :EncodedText;
        securePrintSetting @13 :SecurePrint;
        folderName @14 :EncodedText;
        folderOwnerName @15 :EncodedText;
        jobSources @16 :List(Int32);
        fileName @17 :EncodedText;
    }
}

struct Attributes {
    attributes @0 :List(Attribute);
}

struct Notification {
    jobId @0 :JobId;
    eventData @1 :List(Attribute);
}

struct Numbers {
    numbers @0 :List(UInt32);
}
