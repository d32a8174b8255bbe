// How the sanitizers' runtime treats the programs of this room.

// Short call stacks and a short memory of what was released make up much of the speed. DeallocateString releases in
// another form than the decode allocates, as it always has.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options();
const char* __asan_default_options()
{
    return "allocator_may_return_null=1:alloc_dealloc_mismatch=0:malloc_context_size=3:quarantine_size_mb=8:"
           "thread_local_quarantine_size_kb=256:max_malloc_fill_size=0:handle_abort=1";
}
