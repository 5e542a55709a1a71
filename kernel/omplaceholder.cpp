// The placeholder registry: a lock-free list that static constructors of
// any library push onto, and the once-only warning 141.
#include "kernel/omplaceholder.h"
#include "kernel/omdiag.h"

namespace {
std::atomic<OmPlaceholder *> g_first{nullptr};
}

extern "C" OLMO_API void omPlaceholderRegister(OmPlaceholder *p)
{
    p->next = g_first.load(std::memory_order_relaxed);
    while (!g_first.compare_exchange_weak(p->next, p, std::memory_order_release,
                                          std::memory_order_relaxed)) {
    }
}

extern "C" OLMO_API const OmPlaceholder *omPlaceholderFirst(void)
{
    return g_first.load(std::memory_order_acquire);
}

extern "C" OLMO_API void omPlaceholderCalled(OmPlaceholder *p)
{
    if (!p->called.exchange(true, std::memory_order_relaxed))
        omDebugWarning(OmDiag::Unsupported, p->name);
}
