// The same message through the drivers: a buffer of 1024 bytes, a routine named by the caller, no exceptions.

#include <quorvapixdr/drivers.h>
#include <quorvapixdr/types/common/event.h>

#include <cstdio>

int main()
{
    char host[] = "fleet.example";
    NotifyBinding binding = {host, 0x20000321, 1, 7};

    unsigned char buffer[1024];
    const unsigned length = ClientsXdrSupport(XdrNotifyBinding, &binding, buffer);

    NotifyBinding received = {};  // zeroed, so that the release is safe even after a failed decode
    ClientsXdrDeserialize(XdrNotifyBinding, &received, buffer);
    std::printf("%u bytes, for %s\n", length, received.hostName);
    XdrDeallocate(XdrNotifyBinding, &received, buffer);
}

// Prints:
// 32 bytes, for fleet.example
