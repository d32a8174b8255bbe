// How the sanitizers' runtime treats the programs of this room.

// An absurd length in a message is asked for and, from 16 MiB on, refused at once, as on a small machine: under the
// address sanitizer a block costs an eighth of its size in shadow. Short call stacks and a short memory of what was
// released make up half of the speed. DeallocateString releases in another form than the decode allocates.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options();
const char* __asan_default_options()
{
    return "allocator_may_return_null=1:alloc_dealloc_mismatch=0:max_allocation_size_mb=16:malloc_context_size=4:"
           "quarantine_size_mb=16:handle_abort=1";
}
