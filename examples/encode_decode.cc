// Encodes a record, decodes it into another and releases that: the whole way of a message through the drivers.

#include <quorvapixdr/drivers.h>
#include <quorvapixdr/types/common/event.h>

#include <Xdr.h>

#include <cstdio>

int main()
{
    char host[] = "fleet.example";
    NotifyBinding binding = {host, 0x20000321, 1, 7};

    unsigned char buffer[1024];
    const unsigned length = ClientsXdrSupport(XdrNotifyBinding, &binding, buffer);
    for (unsigned i = 0; i < length; ++i)
        std::printf("%02x%s", buffer[i], i % 16 == 15 || i + 1 == length ? "\n" : " ");

    NotifyBinding received = {};
    TraceText trace;
    {
        ScopedTrace collecting(trace);
        ClientsXdrDeserialize(XdrNotifyBinding, &received, buffer);
    }
    std::puts(std::string(trace.text()).c_str());
    XdrDeallocate(XdrNotifyBinding, &received, buffer);
}
