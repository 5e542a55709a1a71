// The handle table shared by the three libraries.
//
// A handle is a slot index OR-ed with omDisplayResourceBase.  A slot holds
// its kind and the address of the object's record; kind 0 marks a free
// slot, so a slot in use may hold a null record (an empty menu does).
// Slots are read without a lock: both words are atomics, so a reader on
// one thread sees either the old or the new slot of a writer on another.
#pragma once

#include <olmo/platform.h>

#include <atomic>
#include <cstdint>

// Slot kinds.  The numbers below 29 are fixed by the libraries that test
// them; the kernel layer's own objects take the numbers from 40 on.
enum OmHandleKind : uint32_t {
    OM_KIND_FREE = 0,
    OM_KIND_WINDOW = 1,
    OM_KIND_DYING_WINDOW = 2,  // destroyed, its record kept for attached threads
    OM_KIND_CURSOR = 4,
    OM_KIND_ICON = 5,
    OM_KIND_MENU = 6,
    OM_KIND_DC = 8,
    OM_KIND_BITMAP = 9,
    OM_KIND_BRUSH = 10,
    OM_KIND_FONT = 11,
    OM_KIND_PEN = 12,
    OM_KIND_REGION = 13,
    OM_KIND_TIMER = 14,
    OM_KIND_ACCEL = 15,
    OM_KIND_PALETTE = 16,
    OM_KIND_DEFERPOS = 22,
    OM_KIND_MODULE = 23,
    OM_KIND_WINDOWLIKE = 24,
    OM_KIND_THREAD = 28,
    OM_KIND_EVENT = 40,
    OM_KIND_MUTEX = 41,
    OM_KIND_SEMAPHORE = 42,
    OM_KIND_HEAP = 43,
    OM_KIND_GLOBALMEM = 44,
    OM_KIND_FILE = 45,
    OM_KIND_FIND = 46,
    OM_KIND_RESOURCE = 47,
    OM_KIND_HOOK = 48,
};

struct OmHandleSlot {
    std::atomic<uint32_t> kind;
    std::atomic<void *> record;
};

// Slots 1 to 31 hold the system-colour brushes (made by the graphics
// layer), slot 32 the program's module; the rest are handed out.
constexpr uint32_t kOmSysColorBrushFirstSlot = 1;
constexpr uint32_t kOmSysColorBrushLastSlot = 31;
constexpr uint32_t kOmProgramModuleSlot = 32;
constexpr uint32_t kOmFirstDynamicSlot = 33;
constexpr uint32_t kOmMaxHandles = 0x10000;  // indexes fit in 16 bits

extern "C" {

// The table itself (kOmMaxHandles slots), its live size and the base that
// handle values carry.  omHandlesCount is one past the highest index ever
// handed out; it only grows.
OLMO_API extern OmHandleSlot omHandlesTable[kOmMaxHandles];
OLMO_API extern std::atomic<uint16_t> omHandlesCount;
OLMO_API extern const uint32_t omDisplayResourceBase;
OLMO_API extern std::atomic<uint32_t> omLastHandleAlloced;

// Takes a free slot for (kind, record) and returns its index, or 0 when
// the table is full.  Never-used slots are handed out first, then freed
// ones first-in first-out, so a stale handle stays invalid for as long as
// possible.  Any thread.
OLMO_API uint32_t omAllocHandle(uint32_t kind, void *record);

// Puts (kind, record) in one of the reserved slots 1..32.  Returns FALSE
// for any other index.
OLMO_API int omAllocReservedHandle(uint32_t index, uint32_t kind, void *record);

// Empties the slot of a handle (with or without the base).  Freeing a free
// or out-of-range slot does nothing and returns FALSE.
OLMO_API int omFreeHandle(uint64_t handle);

// Walks the window slots: with *h == 0 stores the first window handle,
// then the next after *h on each call, and 0 at the end.
OLMO_API void omNextWindowHandle(uint64_t *h);

}  // extern "C"

// The slot index of a handle: truncated to 32 bits first, so that a
// sign-extended copy names the same slot.
inline uint32_t omHandleIndex(uint64_t handle)
{
    return static_cast<uint32_t>(handle) & ~omDisplayResourceBase;
}

inline uint64_t omHandleFromIndex(uint32_t index)
{
    return index | omDisplayResourceBase;
}

// The record behind a handle of the given kind, or nullptr when the handle
// is out of range or its slot is of another kind.
inline void *omHandleRecord(uint64_t handle, uint32_t kind)
{
    uint32_t index = omHandleIndex(handle);
    if (index == 0 || index >= omHandlesCount.load(std::memory_order_acquire))
        return nullptr;
    OmHandleSlot &slot = omHandlesTable[index];
    if (slot.kind.load(std::memory_order_acquire) != kind)
        return nullptr;
    return slot.record.load(std::memory_order_acquire);
}

inline bool omIsHandleOfKind(uint64_t handle, uint32_t kind)
{
    uint32_t index = omHandleIndex(handle);
    return index != 0 && index < omHandlesCount.load(std::memory_order_acquire) &&
           omHandlesTable[index].kind.load(std::memory_order_acquire) == kind;
}

template <class T> inline uint64_t omHandleValue(T h)
{
    return static_cast<uint64_t>(reinterpret_cast<uintptr_t>(h));
}
