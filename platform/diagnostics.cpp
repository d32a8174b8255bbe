// The platform's diagnostic print.

#include <Xdr.h>

#include <atomic>
#include <cstdarg>
#include <cstdio>

namespace {
std::atomic<DiagnosticHook> hook{nullptr};
}

void setDiagnosticHook(DiagnosticHook newHook) noexcept
{
    hook.store(newHook, std::memory_order_release);
}

void TRACE(const char* format, ...)
{
    const DiagnosticHook receiver = hook.load(std::memory_order_acquire);
    if (!receiver) return;
    char text[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    receiver(text);
}
