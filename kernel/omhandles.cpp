// The handle table: allocation, release and the window-slot walk.
// Readers use the inline accessors of omhandles.h without a lock; writers
// serialise on one mutex, which also guards the free-slot queue.
#include "kernel/omhandles.h"

#include <deque>
#include <mutex>

extern "C" {
OmHandleSlot omHandlesTable[kOmMaxHandles];
std::atomic<uint16_t> omHandlesCount{kOmFirstDynamicSlot};
// No bits below 0x10000, so masking recovers any 16-bit index; below
// 0x80000000, so a handle stored in a signed 32-bit integer stays positive.
const uint32_t omDisplayResourceBase = 0x00A00000u;
std::atomic<uint32_t> omLastHandleAlloced{0};
}

namespace {

struct Allocator {
    std::mutex lock;
    uint32_t nextUnused = kOmFirstDynamicSlot;
    std::deque<uint32_t> freed;
};

Allocator &allocator()
{
    static Allocator a;
    return a;
}

void publish(uint32_t index, uint32_t kind, void *record)
{
    OmHandleSlot &slot = omHandlesTable[index];
    slot.record.store(record, std::memory_order_relaxed);
    slot.kind.store(kind, std::memory_order_release);
}

void raiseCount(uint32_t index)
{
    uint32_t last = omLastHandleAlloced.load(std::memory_order_relaxed);
    if (index > last)
        omLastHandleAlloced.store(index, std::memory_order_relaxed);
    if (index + 1 > omHandlesCount.load(std::memory_order_relaxed))
        omHandlesCount.store(static_cast<uint16_t>(index + 1), std::memory_order_release);
}

}  // namespace

extern "C" OLMO_API uint32_t omAllocHandle(uint32_t kind, void *record)
{
    if (kind == OM_KIND_FREE)
        return 0;
    Allocator &a = allocator();
    std::lock_guard<std::mutex> guard(a.lock);
    uint32_t index;
    if (a.nextUnused < kOmMaxHandles - 1) {
        // omHandlesCount is 16 bits, so the last usable index is 0xFFFE.
        index = a.nextUnused++;
    } else if (!a.freed.empty()) {
        index = a.freed.front();
        a.freed.pop_front();
    } else {
        return 0;
    }
    publish(index, kind, record);
    raiseCount(index);
    return index;
}

extern "C" OLMO_API int omAllocReservedHandle(uint32_t index, uint32_t kind, void *record)
{
    if (index < kOmSysColorBrushFirstSlot || index > kOmProgramModuleSlot || kind == OM_KIND_FREE)
        return 0;
    Allocator &a = allocator();
    std::lock_guard<std::mutex> guard(a.lock);
    publish(index, kind, record);
    raiseCount(index);
    return 1;
}

extern "C" OLMO_API int omFreeHandle(uint64_t handle)
{
    uint32_t index = omHandleIndex(handle);
    if (index == 0 || index >= kOmMaxHandles)
        return 0;
    Allocator &a = allocator();
    std::lock_guard<std::mutex> guard(a.lock);
    OmHandleSlot &slot = omHandlesTable[index];
    if (slot.kind.load(std::memory_order_relaxed) == OM_KIND_FREE)
        return 0;
    slot.kind.store(OM_KIND_FREE, std::memory_order_release);
    slot.record.store(nullptr, std::memory_order_relaxed);
    if (index >= kOmFirstDynamicSlot)
        a.freed.push_back(index);
    return 1;
}

extern "C" OLMO_API void omNextWindowHandle(uint64_t *h)
{
    if (!h)
        return;
    uint32_t start = *h == 0 ? 1 : omHandleIndex(*h) + 1;
    uint32_t count = omHandlesCount.load(std::memory_order_acquire);
    for (uint32_t i = start; i < count; ++i) {
        if (omHandlesTable[i].kind.load(std::memory_order_acquire) == OM_KIND_WINDOW) {
            *h = omHandleFromIndex(i);
            return;
        }
    }
    *h = 0;
}
