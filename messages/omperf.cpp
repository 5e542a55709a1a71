// The microsecond tick: a 32-bit count of microseconds since its first
// call, for timing that GetTickCount's milliseconds are too coarse for.
#include "messages/ommessageq.h"

#include <atomic>
#include <sys/time.h>

namespace {

std::atomic<uint32_t> g_base{0};
std::atomic<bool> g_haveBase{false};

uint32_t nowMicro()
{
    timeval tv{};
    gettimeofday(&tv, nullptr);
    // Wraps every 71 minutes; differences stay right across the wrap.
    return static_cast<uint32_t>(static_cast<uint64_t>(tv.tv_sec) * 1000000u +
                                 static_cast<uint64_t>(tv.tv_usec));
}

}  // namespace

extern "C" OLMO_API DWORD omGetTickCountMicro(void)
{
    uint32_t now = nowMicro();
    if (!g_haveBase.load(std::memory_order_acquire)) {
        uint32_t expected = 0;
        g_base.compare_exchange_strong(expected, now, std::memory_order_acq_rel);
        g_haveBase.store(true, std::memory_order_release);
    }
    return now - g_base.load(std::memory_order_acquire);
}
