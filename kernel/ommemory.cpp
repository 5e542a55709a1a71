// Global and local memory (one implementation: Win32 serves both from one
// heap), private heaps, GlobalMemoryStatus and the IsBad*Ptr family.
// Every block is registered, so a wrong handle or pointer is recognised
// and refused instead of reaching free().
#include "kernel/omdiag.h"
#include "kernel/omhandles.h"

#include <winbase.h>

#include <malloc.h>
#include <sys/resource.h>
#include <sys/sysinfo.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <string>
#include <unordered_map>

namespace {

// Not in winerror.h: GlobalLock of a discarded block.
constexpr DWORD kErrorDiscarded = 157;

// A fixed block's handle is its data pointer, as on Windows.  A moveable
// block's handle is the address of its record plus 4: a value that no
// malloc'ed pointer (16-byte aligned) can take, so the two never collide,
// and that costs no slot of the shared handle table, which programs that
// allocate many small moveable blocks would fill.
constexpr uintptr_t kMoveableTag = 4;

// 16-byte aligned, so that a handle (address + 4) has 4 in its low bits.
struct alignas(16) Block {
    void *data = nullptr;  // null while a moveable block is discarded
    size_t size = 0;
    bool moveable = false;
    bool discardable = false;
    unsigned lockCount = 0;
    uintptr_t handle = 0;
};

struct Registry {
    std::mutex mutex;
    std::unordered_map<uintptr_t, Block *> moveable;  // by handle
    std::unordered_map<uintptr_t, Block *> byData;    // by data pointer, every block
};

Registry &registry()
{
    // Never destroyed: blocks may be freed by static destructors that run
    // after this file's.
    static Registry *r = new Registry;
    return *r;
}

// Global* and Local* differ only in the flag values they report and the
// name a diagnostic gives.
struct Flavour {
    const char *prefix;  // "Global" or "Local"
    UINT discardableFlag;
};
constexpr Flavour kGlobal{"Global", GMEM_DISCARDABLE};
constexpr Flavour kLocal{"Local", LMEM_DISCARDABLE};

std::string callName(const Flavour &f, const char *what)
{
    return std::string(f.prefix) + what;
}

// The block of a handle, or null.  The registry mutex must be held.
Block *findByHandle(Registry &r, HANDLE h)
{
    auto v = reinterpret_cast<uintptr_t>(h);
    if (!v)
        return nullptr;
    if ((v & 15) == kMoveableTag) {
        auto it = r.moveable.find(v);
        return it == r.moveable.end() ? nullptr : it->second;
    }
    auto it = r.byData.find(v);
    // The data pointer of a moveable block is not a handle.
    return it == r.byData.end() || it->second->moveable ? nullptr : it->second;
}

void badHandle(const Flavour &f, const char *what, HANDLE h)
{
    SetLastError(ERROR_INVALID_HANDLE);
    omDebugWarning(OmDiag::BadKernelHandle, callName(f, what), h);
}

void outOfMemory(const Flavour &f, const char *what)
{
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    omError(OmDiag::OutOfMemory, callName(f, what));
}

// malloc never answers null for a size of 0 here: a zero-byte fixed block
// still needs a distinct pointer.
void *allocData(size_t size, bool zero)
{
    return zero ? calloc(size ? size : 1, 1) : malloc(size ? size : 1);
}

HANDLE memAlloc(const Flavour &f, UINT flags, SIZE_T bytes)
{
    bool moveable = flags & GMEM_MOVEABLE;
    Block *b = new (std::nothrow) Block;
    if (!b) {
        outOfMemory(f, "Alloc");
        return nullptr;
    }
    b->moveable = moveable;
    b->discardable = flags & GMEM_DISCARDABLE;
    b->size = bytes;
    // A moveable block of 0 bytes starts discarded, as on Windows.
    if (!moveable || bytes) {
        b->data = allocData(bytes, flags & GMEM_ZEROINIT);
        if (!b->data) {
            delete b;
            outOfMemory(f, "Alloc");
            return nullptr;
        }
    }
    b->handle = moveable ? reinterpret_cast<uintptr_t>(b) + kMoveableTag
                         : reinterpret_cast<uintptr_t>(b->data);
    Registry &r = registry();
    try {
        std::lock_guard lock(r.mutex);
        if (moveable)
            r.moveable.emplace(b->handle, b);
        if (b->data)
            r.byData.emplace(reinterpret_cast<uintptr_t>(b->data), b);
    } catch (const std::bad_alloc &) {
        std::lock_guard lock(r.mutex);
        r.moveable.erase(b->handle);
        free(b->data);
        delete b;
        outOfMemory(f, "Alloc");
        return nullptr;
    }
    return reinterpret_cast<HANDLE>(b->handle);
}

HANDLE memFree(const Flavour &f, HANDLE h)
{
    if (!h)
        return nullptr;
    Registry &r = registry();
    Block *b;
    {
        std::lock_guard lock(r.mutex);
        b = findByHandle(r, h);
        if (b) {
            if (b->moveable)
                r.moveable.erase(b->handle);
            if (b->data)
                r.byData.erase(reinterpret_cast<uintptr_t>(b->data));
        }
    }
    if (!b) {
        badHandle(f, "Free", h);
        return h;
    }
    // A locked block is freed too, as Windows documents.
    free(b->data);
    delete b;
    return nullptr;
}

LPVOID memLock(const Flavour &f, HANDLE h)
{
    Registry &r = registry();
    std::lock_guard lock(r.mutex);
    Block *b = findByHandle(r, h);
    if (!b) {
        badHandle(f, "Lock", h);
        return nullptr;
    }
    if (!b->data) {
        SetLastError(kErrorDiscarded);
        return nullptr;
    }
    if (b->moveable)
        ++b->lockCount;  // fixed blocks keep a lock count of 0
    return b->data;
}

BOOL memUnlock(const Flavour &f, HANDLE h)
{
    Registry &r = registry();
    std::lock_guard lock(r.mutex);
    Block *b = findByHandle(r, h);
    if (!b) {
        badHandle(f, "Unlock", h);
        return FALSE;
    }
    if (!b->moveable) {
        SetLastError(NO_ERROR);
        return FALSE;
    }
    if (b->lockCount == 0) {
        SetLastError(ERROR_NOT_LOCKED);
        return FALSE;
    }
    if (--b->lockCount == 0) {
        SetLastError(NO_ERROR);
        return FALSE;
    }
    return static_cast<BOOL>(b->lockCount);
}

SIZE_T memSize(const Flavour &f, HANDLE h)
{
    Registry &r = registry();
    std::lock_guard lock(r.mutex);
    Block *b = findByHandle(r, h);
    if (!b) {
        badHandle(f, "Size", h);
        return 0;
    }
    return b->size;
}

UINT memFlags(const Flavour &f, HANDLE h)
{
    Registry &r = registry();
    std::lock_guard lock(r.mutex);
    Block *b = findByHandle(r, h);
    if (!b) {
        badHandle(f, "Flags", h);
        return GMEM_INVALID_HANDLE;
    }
    UINT flags = b->lockCount > GMEM_LOCKCOUNT ? GMEM_LOCKCOUNT : b->lockCount;
    if (b->discardable)
        flags |= f.discardableFlag;
    if (b->moveable && !b->data)
        flags |= GMEM_DISCARDED;
    return flags;
}

HANDLE memHandle(const Flavour &f, LPCVOID p)
{
    Registry &r = registry();
    std::lock_guard lock(r.mutex);
    auto v = reinterpret_cast<uintptr_t>(p);
    auto it = r.byData.find(v);
    if (it != r.byData.end())
        return reinterpret_cast<HANDLE>(it->second->handle);
    if (r.moveable.count(v))
        return const_cast<LPVOID>(p);
    badHandle(f, "Handle", const_cast<LPVOID>(p));
    return nullptr;
}

// Changes a block's data to newSize bytes.  It moves only when allowed;
// otherwise it grows within what malloc already gave the block.
bool resizeData(Registry &r, Block *b, size_t newSize, bool mayMove, bool zero)
{
    size_t oldSize = b->size;
    if (!b->data) {
        b->data = allocData(newSize, zero);
        if (!b->data)
            return false;
        r.byData.emplace(reinterpret_cast<uintptr_t>(b->data), b);
    } else if (newSize > malloc_usable_size(b->data)) {
        if (!mayMove)
            return false;
        void *moved = realloc(b->data, newSize);
        if (!moved)
            return false;
        if (moved != b->data) {
            r.byData.erase(reinterpret_cast<uintptr_t>(b->data));
            r.byData.emplace(reinterpret_cast<uintptr_t>(moved), b);
            b->data = moved;
        }
        if (zero && newSize > oldSize)
            memset(static_cast<char *>(b->data) + oldSize, 0, newSize - oldSize);
    } else if (zero && newSize > oldSize) {
        memset(static_cast<char *>(b->data) + oldSize, 0, newSize - oldSize);
    }
    b->size = newSize;
    return true;
}

HANDLE memReAlloc(const Flavour &f, HANDLE h, SIZE_T bytes, UINT flags)
{
    Registry &r = registry();
    std::unique_lock lock(r.mutex);
    Block *b = findByHandle(r, h);
    if (!b) {
        lock.unlock();
        badHandle(f, "ReAlloc", h);
        return nullptr;
    }
    if (flags & GMEM_MODIFY) {
        // Only the attributes change; a fixed block may become moveable.
        if (flags & GMEM_DISCARDABLE)
            b->discardable = true;
        if ((flags & GMEM_MOVEABLE) && !b->moveable) {
            uintptr_t handle = reinterpret_cast<uintptr_t>(b) + kMoveableTag;
            try {
                r.moveable.emplace(handle, b);
            } catch (const std::bad_alloc &) {
                lock.unlock();
                outOfMemory(f, "ReAlloc");
                return nullptr;
            }
            b->moveable = true;
            b->handle = handle;
        }
        return reinterpret_cast<HANDLE>(b->handle);
    }
    // GlobalReAlloc(h, 0, GMEM_MOVEABLE) discards an unlocked moveable
    // block: its handle stays, its memory goes.
    if (bytes == 0 && b->moveable && b->lockCount == 0 && (flags & GMEM_MOVEABLE)) {
        if (b->data) {
            r.byData.erase(reinterpret_cast<uintptr_t>(b->data));
            free(b->data);
            b->data = nullptr;
        }
        b->size = 0;
        return reinterpret_cast<HANDLE>(b->handle);
    }
    // An unlocked moveable block may move; a fixed or locked one only when
    // the caller allows it with GMEM_MOVEABLE.
    bool mayMove = (b->moveable && b->lockCount == 0) || (flags & GMEM_MOVEABLE);
    bool ok;
    try {
        ok = resizeData(r, b, bytes, mayMove, flags & GMEM_ZEROINIT);
    } catch (const std::bad_alloc &) {
        ok = false;
    }
    if (!ok) {
        lock.unlock();
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    if (!b->moveable)
        b->handle = reinterpret_cast<uintptr_t>(b->data);
    return reinterpret_cast<HANDLE>(b->handle);
}

}  // namespace

// ---- Global* and Local* --------------------------------------------------------

extern "C" HGLOBAL WINAPI GlobalAlloc(UINT uFlags, SIZE_T dwBytes)
{
    return memAlloc(kGlobal, uFlags, dwBytes);
}

extern "C" HGLOBAL WINAPI GlobalReAlloc(HGLOBAL hMem, SIZE_T dwBytes, UINT uFlags)
{
    return memReAlloc(kGlobal, hMem, dwBytes, uFlags);
}

extern "C" HGLOBAL WINAPI GlobalFree(HGLOBAL hMem)
{
    return memFree(kGlobal, hMem);
}

extern "C" LPVOID WINAPI GlobalLock(HGLOBAL hMem)
{
    return memLock(kGlobal, hMem);
}

extern "C" BOOL WINAPI GlobalUnlock(HGLOBAL hMem)
{
    return memUnlock(kGlobal, hMem);
}

extern "C" SIZE_T WINAPI GlobalSize(HGLOBAL hMem)
{
    return memSize(kGlobal, hMem);
}

extern "C" UINT WINAPI GlobalFlags(HGLOBAL hMem)
{
    return memFlags(kGlobal, hMem);
}

extern "C" HGLOBAL WINAPI GlobalHandle(LPCVOID pMem)
{
    return memHandle(kGlobal, pMem);
}

// LMEM_* values equal the GMEM_* ones except LMEM_DISCARDABLE (0x0F00),
// which is mapped to the one discardable bit the blocks keep.
static UINT localToGlobalFlags(UINT flags)
{
    UINT g = flags & ~LMEM_DISCARDABLE;
    if (flags & LMEM_DISCARDABLE)
        g |= GMEM_DISCARDABLE;
    return g;
}

extern "C" HLOCAL WINAPI LocalAlloc(UINT uFlags, SIZE_T uBytes)
{
    return memAlloc(kLocal, localToGlobalFlags(uFlags), uBytes);
}

extern "C" HLOCAL WINAPI LocalReAlloc(HLOCAL hMem, SIZE_T uBytes, UINT uFlags)
{
    return memReAlloc(kLocal, hMem, uBytes, localToGlobalFlags(uFlags));
}

extern "C" HLOCAL WINAPI LocalFree(HLOCAL hMem)
{
    return memFree(kLocal, hMem);
}

extern "C" LPVOID WINAPI LocalLock(HLOCAL hMem)
{
    return memLock(kLocal, hMem);
}

extern "C" BOOL WINAPI LocalUnlock(HLOCAL hMem)
{
    return memUnlock(kLocal, hMem);
}

extern "C" SIZE_T WINAPI LocalSize(HLOCAL hMem)
{
    return memSize(kLocal, hMem);
}

extern "C" UINT WINAPI LocalFlags(HLOCAL hMem)
{
    return memFlags(kLocal, hMem);
}

extern "C" HLOCAL WINAPI LocalHandle(LPCVOID pMem)
{
    return memHandle(kLocal, pMem);
}

// ---- Heaps ------------------------------------------------------------------------

namespace {

struct Heap {
    std::mutex mutex;
    std::unordered_map<void *, size_t> blocks;
    size_t maximum = 0;  // 0: growable
    size_t used = 0;
    bool isProcessHeap = false;
};

Heap *findHeap(HANDLE h, const char *function)
{
    auto *heap = static_cast<Heap *>(omHandleRecord(omHandleValue(h), OM_KIND_HEAP));
    if (!heap) {
        SetLastError(ERROR_INVALID_HANDLE);
        omDebugWarning(OmDiag::BadKernelHandle, function, h);
    }
    return heap;
}

void badHeapPointer(const char *function, LPCVOID p)
{
    SetLastError(ERROR_INVALID_HANDLE);
    omDebugWarning(OmDiag::BadKernelHandle, function, const_cast<LPVOID>(p));
}

HANDLE registerHeap(Heap *heap, const char *function)
{
    uint32_t index = omAllocHandle(OM_KIND_HEAP, heap);
    if (!index) {
        delete heap;
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        omDebugWarning(OmDiag::HandleTableFull, function);
        return nullptr;
    }
    return reinterpret_cast<HANDLE>(static_cast<uintptr_t>(omHandleFromIndex(index)));
}

}  // namespace

extern "C" HANDLE WINAPI HeapCreate(DWORD flOptions, SIZE_T dwInitialSize, SIZE_T dwMaximumSize)
{
    (void)flOptions;  // every heap is serialised; exceptions are not raised
    if (dwMaximumSize && dwInitialSize > dwMaximumSize) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    Heap *heap = new (std::nothrow) Heap;
    if (!heap) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    heap->maximum = dwMaximumSize;
    return registerHeap(heap, "HeapCreate");
}

extern "C" HANDLE WINAPI GetProcessHeap(void)
{
    static HANDLE processHeap = [] {
        Heap *heap = new (std::nothrow) Heap;
        if (!heap)
            return static_cast<HANDLE>(nullptr);
        heap->isProcessHeap = true;
        return registerHeap(heap, "GetProcessHeap");
    }();
    return processHeap;
}

extern "C" BOOL WINAPI HeapDestroy(HANDLE hHeap)
{
    Heap *heap = findHeap(hHeap, "HeapDestroy");
    if (!heap)
        return FALSE;
    if (heap->isProcessHeap) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    omFreeHandle(omHandleValue(hHeap));
    for (auto &[p, size] : heap->blocks)
        free(p);
    delete heap;
    return TRUE;
}

extern "C" LPVOID WINAPI HeapAlloc(HANDLE hHeap, DWORD dwFlags, SIZE_T dwBytes)
{
    Heap *heap = findHeap(hHeap, "HeapAlloc");
    if (!heap)
        return nullptr;
    std::lock_guard lock(heap->mutex);
    if (heap->maximum && dwBytes > heap->maximum - heap->used) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    void *p = allocData(dwBytes, dwFlags & HEAP_ZERO_MEMORY);
    if (!p) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    try {
        heap->blocks.emplace(p, dwBytes);
    } catch (const std::bad_alloc &) {
        free(p);
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    heap->used += dwBytes;
    return p;
}

extern "C" LPVOID WINAPI HeapReAlloc(HANDLE hHeap, DWORD dwFlags, LPVOID lpMem, SIZE_T dwBytes)
{
    Heap *heap = findHeap(hHeap, "HeapReAlloc");
    if (!heap)
        return nullptr;
    std::unique_lock lock(heap->mutex);
    auto it = heap->blocks.find(lpMem);
    if (it == heap->blocks.end()) {
        lock.unlock();
        badHeapPointer("HeapReAlloc", lpMem);
        return nullptr;
    }
    size_t oldSize = it->second;
    if (heap->maximum && dwBytes > oldSize && dwBytes - oldSize > heap->maximum - heap->used) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    void *p = lpMem;
    if (dwBytes > malloc_usable_size(lpMem)) {
        if (dwFlags & HEAP_REALLOC_IN_PLACE_ONLY) {
            SetLastError(ERROR_NOT_ENOUGH_MEMORY);
            return nullptr;
        }
        p = realloc(lpMem, dwBytes);
        if (!p) {
            SetLastError(ERROR_NOT_ENOUGH_MEMORY);
            return nullptr;
        }
        if (p != lpMem) {
            // Re-keying the node allocates nothing, so it cannot fail.
            auto node = heap->blocks.extract(it);
            node.key() = p;
            it = heap->blocks.insert(std::move(node)).position;
        }
    }
    it->second = dwBytes;
    heap->used = heap->used - oldSize + dwBytes;
    if ((dwFlags & HEAP_ZERO_MEMORY) && dwBytes > oldSize)
        memset(static_cast<char *>(p) + oldSize, 0, dwBytes - oldSize);
    return p;
}

extern "C" BOOL WINAPI HeapFree(HANDLE hHeap, DWORD dwFlags, LPVOID lpMem)
{
    (void)dwFlags;
    Heap *heap = findHeap(hHeap, "HeapFree");
    if (!heap)
        return FALSE;
    if (!lpMem)
        return TRUE;
    std::unique_lock lock(heap->mutex);
    auto it = heap->blocks.find(lpMem);
    if (it == heap->blocks.end()) {
        lock.unlock();
        badHeapPointer("HeapFree", lpMem);
        return FALSE;
    }
    heap->used -= it->second;
    heap->blocks.erase(it);
    free(lpMem);
    return TRUE;
}

extern "C" SIZE_T WINAPI HeapSize(HANDLE hHeap, DWORD dwFlags, LPCVOID lpMem)
{
    (void)dwFlags;
    Heap *heap = findHeap(hHeap, "HeapSize");
    if (!heap)
        return static_cast<SIZE_T>(-1);
    std::unique_lock lock(heap->mutex);
    auto it = heap->blocks.find(const_cast<LPVOID>(lpMem));
    if (it == heap->blocks.end()) {
        lock.unlock();
        badHeapPointer("HeapSize", lpMem);
        return static_cast<SIZE_T>(-1);
    }
    return it->second;
}

// ---- Memory status -------------------------------------------------------------------

namespace {

// The user part of the x86-64 address space as Windows reports it (128 TB).
constexpr DWORDLONG kUserAddressSpace = 0x7FFFFFFE0000ULL;

// A field of /proc/meminfo or /proc/self/status in bytes (their values
// are in kB), or -1.
long long procField(const char *file, const char *field)
{
    FILE *f = fopen(file, "r");
    if (!f)
        return -1;
    char line[256];
    size_t len = strlen(field);
    long long value = -1;
    while (fgets(line, sizeof line, f)) {
        if (strncmp(line, field, len) == 0 && line[len] == ':') {
            value = atoll(line + len + 1) * 1024;
            break;
        }
    }
    fclose(f);
    return value;
}

void fillStatus(MEMORYSTATUSEX &s)
{
    struct sysinfo si {};
    sysinfo(&si);
    DWORDLONG unit = si.mem_unit ? si.mem_unit : 1;
    DWORDLONG total = si.totalram * unit;
    long long available = procField("/proc/meminfo", "MemAvailable");
    DWORDLONG avail = available >= 0 ? static_cast<DWORDLONG>(available)
                                     : (si.freeram + si.bufferram) * unit;
    s.ullTotalPhys = total;
    s.ullAvailPhys = avail;
    s.dwMemoryLoad = total ? static_cast<DWORD>(100 - avail * 100 / total) : 0;
    // Windows' "page file" figure is the commit limit: memory plus swap.
    s.ullTotalPageFile = total + si.totalswap * unit;
    s.ullAvailPageFile = avail + si.freeswap * unit;
    DWORDLONG space = kUserAddressSpace;
    struct rlimit rl {};
    if (getrlimit(RLIMIT_AS, &rl) == 0 && rl.rlim_cur != RLIM_INFINITY && rl.rlim_cur < space)
        space = rl.rlim_cur;
    long long used = procField("/proc/self/status", "VmSize");
    s.ullTotalVirtual = space;
    s.ullAvailVirtual = used >= 0 && static_cast<DWORDLONG>(used) < space ? space - used : 0;
    s.ullAvailExtendedVirtual = 0;
}

}  // namespace

extern "C" VOID WINAPI GlobalMemoryStatus(LPMEMORYSTATUS lpBuffer)
{
    if (!lpBuffer) {
        omDebugWarning(OmDiag::NullPointer, "GlobalMemoryStatus");
        return;
    }
    MEMORYSTATUSEX s{};
    fillStatus(s);
    lpBuffer->dwLength = sizeof(MEMORYSTATUS);
    lpBuffer->dwMemoryLoad = s.dwMemoryLoad;
    lpBuffer->dwTotalPhys = s.ullTotalPhys;
    lpBuffer->dwAvailPhys = s.ullAvailPhys;
    lpBuffer->dwTotalPageFile = s.ullTotalPageFile;
    lpBuffer->dwAvailPageFile = s.ullAvailPageFile;
    lpBuffer->dwTotalVirtual = s.ullTotalVirtual;
    lpBuffer->dwAvailVirtual = s.ullAvailVirtual;
}

extern "C" BOOL WINAPI GlobalMemoryStatusEx(LPMEMORYSTATUSEX lpBuffer)
{
    if (!lpBuffer) {
        SetLastError(ERROR_INVALID_PARAMETER);
        omDebugWarning(OmDiag::NullPointer, "GlobalMemoryStatusEx");
        return FALSE;
    }
    if (lpBuffer->dwLength != sizeof(MEMORYSTATUSEX)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    fillStatus(*lpBuffer);
    return TRUE;
}

// ---- IsBad*Ptr ------------------------------------------------------------------------
//
// Windows answers these by touching the memory under an exception handler,
// which its own documentation calls unreliable (it can eat a guard page and
// break another thread's stack growth).  Here a null pointer is bad and
// every other pointer is taken as good: probing with signal handlers would
// be neither thread-safe nor cheap, and a program only ever uses the
// answer to reject null.

extern "C" BOOL WINAPI IsBadReadPtr(const VOID *lp, UINT_PTR ucb)
{
    return ucb != 0 && lp == nullptr;
}

extern "C" BOOL WINAPI IsBadWritePtr(LPVOID lp, UINT_PTR ucb)
{
    return ucb != 0 && lp == nullptr;
}

extern "C" BOOL WINAPI IsBadCodePtr(FARPROC lpfn)
{
    return lpfn == nullptr;
}

extern "C" BOOL WINAPI IsBadStringPtrA(LPCSTR lpsz, UINT_PTR ucchMax)
{
    return ucchMax != 0 && lpsz == nullptr;
}

extern "C" BOOL WINAPI IsBadStringPtrW(LPCWSTR lpsz, UINT_PTR ucchMax)
{
    return ucchMax != 0 && lpsz == nullptr;
}
