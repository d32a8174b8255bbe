// Options of the sanitizers' runtime in the programs of this folder.

// Short call stacks and a small quarantine gain much speed. Mismatches between new and delete are ignored, as
// DeallocateString releases in another form than a decode pass allocates, by contract.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options();
const char* __asan_default_options()
{
    return "allocator_may_return_null=1:alloc_dealloc_mismatch=0:malloc_context_size=3:quarantine_size_mb=8:"
           "thread_local_quarantine_size_kb=256:max_malloc_fill_size=0:handle_abort=1";
}
