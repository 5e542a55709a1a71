// VirtualAlloc, VirtualFree, VirtualProtect and VirtualQuery over mmap.
// Regions we reserve are tracked page by page (reserved or committed with
// a protection); other addresses are answered from /proc/self/maps.
#include "kernel/omdiag.h"

#include <winbase.h>

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <mutex>
#include <new>
#include <vector>

namespace {

// Windows hands out reservations on 64 KB boundaries; programs that carve
// up a reservation may rely on it.
constexpr uintptr_t kGranularity = 0x10000;
constexpr uintptr_t kUserSpaceEnd = 0x7FFFFFFF0000ULL;

struct Region {
    uintptr_t base = 0;
    size_t size = 0;
    DWORD allocationProtect = 0;
    std::vector<uint16_t> pages;  // 0: reserved; else the committed protection
};

std::mutex g_mutex;
std::map<uintptr_t, Region> g_regions;  // by base

uintptr_t pageSize()
{
    static const uintptr_t size = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
    return size;
}

uintptr_t roundDown(uintptr_t v, uintptr_t to)
{
    return v & ~(to - 1);
}

uintptr_t roundUp(uintptr_t v, uintptr_t to)
{
    return (v + to - 1) & ~(to - 1);
}

// The mmap protection of a PAGE_* value; false for a value Windows
// refuses.  PAGE_GUARD and the caching modifiers are accepted and
// ignored.
bool posixProtection(DWORD protect, int &prot)
{
    switch (protect & 0xFF) {
    case PAGE_NOACCESS:
        prot = PROT_NONE;
        return true;
    case PAGE_READONLY:
        prot = PROT_READ;
        return true;
    case PAGE_READWRITE:
    case PAGE_WRITECOPY:
        prot = PROT_READ | PROT_WRITE;
        return true;
    case PAGE_EXECUTE:
        prot = PROT_EXEC;
        return true;
    case PAGE_EXECUTE_READ:
        prot = PROT_READ | PROT_EXEC;
        return true;
    case PAGE_EXECUTE_READWRITE:
    case PAGE_EXECUTE_WRITECOPY:
        prot = PROT_READ | PROT_WRITE | PROT_EXEC;
        return true;
    default:
        return false;
    }
}

DWORD windowsProtection(const char *perms)
{
    bool r = perms[0] == 'r', w = perms[1] == 'w', x = perms[2] == 'x';
    if (x)
        return w ? PAGE_EXECUTE_READWRITE : r ? PAGE_EXECUTE_READ : PAGE_EXECUTE;
    if (w)
        return PAGE_READWRITE;
    return r ? PAGE_READONLY : PAGE_NOACCESS;
}

// The region holding addr, or null.  g_mutex must be held.
Region *findRegion(uintptr_t addr)
{
    auto it = g_regions.upper_bound(addr);
    if (it == g_regions.begin())
        return nullptr;
    --it;
    Region &r = it->second;
    return addr < r.base + r.size ? &r : nullptr;
}

bool fail(DWORD error)
{
    SetLastError(error);
    return false;
}

LPVOID failNull(DWORD error)
{
    SetLastError(error);
    return nullptr;
}

// The mapping of /proc/self/maps that holds addr, or the gap it lies in
// (perms empty, end = start of the next mapping).
struct Mapping {
    uintptr_t start = 0, end = 0;
    char perms[5] = "";
    bool file = false;
};

Mapping lookupMapping(uintptr_t addr)
{
    Mapping gap;
    gap.end = kUserSpaceEnd;
    FILE *f = fopen("/proc/self/maps", "r");
    if (!f)
        return gap;
    char line[512];
    uintptr_t previousEnd = 0;
    while (fgets(line, sizeof line, f)) {
        unsigned long start, end;
        char perms[5];
        char path[256] = "";
        if (sscanf(line, "%lx-%lx %4s %*s %*s %*s %255s", &start, &end, perms, path) < 3)
            continue;
        if (addr < start) {
            gap.start = previousEnd;
            gap.end = start;
            break;
        }
        if (addr < end) {
            Mapping m;
            m.start = start;
            m.end = end;
            memcpy(m.perms, perms, sizeof perms);
            m.file = path[0] == '/';
            fclose(f);
            return m;
        }
        previousEnd = end;
        gap.start = end;
    }
    fclose(f);
    return gap;
}

LPVOID reserve(uintptr_t want, size_t size, DWORD type, DWORD protect, int prot)
{
    uintptr_t base, len;
    void *p;
    if (want) {
        base = roundDown(want, kGranularity);
        len = roundUp(want + size, pageSize()) - base;
        p = mmap(reinterpret_cast<void *>(base), len, PROT_NONE,
                 MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_FIXED_NOREPLACE, -1, 0);
        if (p == MAP_FAILED || reinterpret_cast<uintptr_t>(p) != base) {
            if (p != MAP_FAILED)
                munmap(p, len);
            return failNull(ERROR_INVALID_ADDRESS);
        }
    } else {
        len = roundUp(size, pageSize());
        // Over-allocate by the granularity and trim to an aligned base.
        p = mmap(nullptr, len + kGranularity, PROT_NONE,
                 MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (p == MAP_FAILED) {
            return failNull(ERROR_NOT_ENOUGH_MEMORY);
        }
        uintptr_t raw = reinterpret_cast<uintptr_t>(p);
        base = roundUp(raw, kGranularity);
        if (base > raw)
            munmap(p, base - raw);
        if (raw + len + kGranularity > base + len)
            munmap(reinterpret_cast<void *>(base + len), raw + len + kGranularity - base - len);
    }
    bool commit = type & MEM_COMMIT;
    if (commit && mprotect(reinterpret_cast<void *>(base), len, prot) != 0) {
        munmap(reinterpret_cast<void *>(base), len);
        return failNull(ERROR_NOT_ENOUGH_MEMORY);
    }
    try {
        Region r;
        r.base = base;
        r.size = len;
        r.allocationProtect = protect;
        r.pages.assign(len / pageSize(), commit ? static_cast<uint16_t>(protect) : 0);
        std::lock_guard lock(g_mutex);
        g_regions.emplace(base, std::move(r));
    } catch (const std::bad_alloc &) {
        munmap(reinterpret_cast<void *>(base), len);
        return failNull(ERROR_NOT_ENOUGH_MEMORY);
    }
    return reinterpret_cast<LPVOID>(base);
}

}  // namespace

extern "C" LPVOID WINAPI VirtualAlloc(LPVOID lpAddress, SIZE_T dwSize, DWORD flAllocationType,
                                      DWORD flProtect)
{
    auto addr = reinterpret_cast<uintptr_t>(lpAddress);
    if (dwSize == 0 || addr + dwSize < addr ||
        !(flAllocationType & (MEM_COMMIT | MEM_RESERVE | MEM_RESET))) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    if (flAllocationType & MEM_RESET) {
        // The contents are no longer needed; the pages stay committed.
        uintptr_t start = roundUp(addr, pageSize());
        uintptr_t end = roundDown(addr + dwSize, pageSize());
        if (!addr)
            return failNull(ERROR_INVALID_ADDRESS);
        if (end > start)
            madvise(reinterpret_cast<void *>(start), end - start, MADV_FREE);
        return lpAddress;
    }
    int prot;
    if (!posixProtection(flProtect, prot)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    if ((flAllocationType & MEM_RESERVE) || !addr)
        return reserve(addr, dwSize, flAllocationType, flProtect, prot);

    // Committing pages of a reservation.
    uintptr_t start = roundDown(addr, pageSize());
    uintptr_t end = roundUp(addr + dwSize, pageSize());
    std::lock_guard lock(g_mutex);
    Region *r = findRegion(start);
    if (!r || end > r->base + r->size)
        return failNull(ERROR_INVALID_ADDRESS);
    if (mprotect(reinterpret_cast<void *>(start), end - start, prot) != 0)
        return failNull(ERROR_NOT_ENOUGH_MEMORY);
    for (uintptr_t p = start; p < end; p += pageSize())
        r->pages[(p - r->base) / pageSize()] = static_cast<uint16_t>(flProtect);
    return reinterpret_cast<LPVOID>(start);
}

extern "C" BOOL WINAPI VirtualFree(LPVOID lpAddress, SIZE_T dwSize, DWORD dwFreeType)
{
    auto addr = reinterpret_cast<uintptr_t>(lpAddress);
    std::unique_lock lock(g_mutex);
    Region *r = findRegion(addr);
    if (!r) {
        lock.unlock();
        SetLastError(ERROR_INVALID_ADDRESS);
        omDebugWarning(OmDiag::BadKernelHandle, "VirtualFree", lpAddress);
        return FALSE;
    }
    if (dwFreeType == MEM_RELEASE) {
        if (dwSize != 0 || addr != r->base)
            return fail(ERROR_INVALID_PARAMETER);
        munmap(reinterpret_cast<void *>(r->base), r->size);
        g_regions.erase(r->base);
        return TRUE;
    }
    if (dwFreeType != MEM_DECOMMIT)
        return fail(ERROR_INVALID_PARAMETER);
    uintptr_t start, end;
    if (dwSize == 0) {
        if (addr != r->base)
            return fail(ERROR_INVALID_PARAMETER);
        start = r->base;
        end = r->base + r->size;
    } else {
        start = roundDown(addr, pageSize());
        end = roundUp(addr + dwSize, pageSize());
        if (end > r->base + r->size)
            return fail(ERROR_INVALID_PARAMETER);
    }
    // A fresh mapping over the range drops the pages' contents, so that a
    // later commit sees zeros, as Windows guarantees.
    void *p = mmap(reinterpret_cast<void *>(start), end - start, PROT_NONE,
                   MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_FIXED, -1, 0);
    if (p == MAP_FAILED)
        return fail(ERROR_NOT_ENOUGH_MEMORY);
    for (uintptr_t q = start; q < end; q += pageSize())
        r->pages[(q - r->base) / pageSize()] = 0;
    return TRUE;
}

extern "C" BOOL WINAPI VirtualProtect(LPVOID lpAddress, SIZE_T dwSize, DWORD flNewProtect,
                                      PDWORD lpflOldProtect)
{
    int prot;
    if (!lpflOldProtect || dwSize == 0 || !posixProtection(flNewProtect, prot))
        return fail(ERROR_INVALID_PARAMETER);
    auto addr = reinterpret_cast<uintptr_t>(lpAddress);
    uintptr_t start = roundDown(addr, pageSize());
    uintptr_t end = roundUp(addr + dwSize, pageSize());
    std::lock_guard lock(g_mutex);
    Region *r = findRegion(start);
    if (r) {
        if (end > r->base + r->size)
            return fail(ERROR_INVALID_ADDRESS);
        size_t first = (start - r->base) / pageSize();
        for (uintptr_t p = start; p < end; p += pageSize())
            if (!r->pages[(p - r->base) / pageSize()])
                return fail(ERROR_INVALID_ADDRESS);  // not committed
        if (mprotect(reinterpret_cast<void *>(start), end - start, prot) != 0)
            return fail(ERROR_INVALID_ADDRESS);
        *lpflOldProtect = r->pages[first];
        for (uintptr_t p = start; p < end; p += pageSize())
            r->pages[(p - r->base) / pageSize()] = static_cast<uint16_t>(flNewProtect);
        return TRUE;
    }
    // Memory we did not reserve: the program's own image or data.
    Mapping m = lookupMapping(start);
    if (!m.perms[0] || end > m.end)
        return fail(ERROR_INVALID_ADDRESS);
    if (mprotect(reinterpret_cast<void *>(start), end - start, prot) != 0)
        return fail(ERROR_INVALID_ADDRESS);
    *lpflOldProtect = windowsProtection(m.perms);
    return TRUE;
}

extern "C" SIZE_T WINAPI VirtualQuery(LPCVOID lpAddress, PMEMORY_BASIC_INFORMATION lpBuffer,
                                      SIZE_T dwLength)
{
    if (!lpBuffer || dwLength < sizeof(MEMORY_BASIC_INFORMATION)) {
        SetLastError(ERROR_BAD_LENGTH);
        return 0;
    }
    uintptr_t page = roundDown(reinterpret_cast<uintptr_t>(lpAddress), pageSize());
    if (page >= kUserSpaceEnd) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    MEMORY_BASIC_INFORMATION &mbi = *lpBuffer;
    memset(&mbi, 0, sizeof mbi);
    mbi.BaseAddress = reinterpret_cast<PVOID>(page);
    {
        std::lock_guard lock(g_mutex);
        if (Region *r = findRegion(page)) {
            size_t i = (page - r->base) / pageSize();
            size_t j = i;
            while (j < r->pages.size() && r->pages[j] == r->pages[i])
                ++j;
            mbi.AllocationBase = reinterpret_cast<PVOID>(r->base);
            mbi.AllocationProtect = r->allocationProtect;
            mbi.RegionSize = (j - i) * pageSize();
            mbi.State = r->pages[i] ? MEM_COMMIT : MEM_RESERVE;
            mbi.Protect = r->pages[i];
            mbi.Type = MEM_PRIVATE;
            return sizeof mbi;
        }
    }
    Mapping m = lookupMapping(page);
    if (!m.perms[0]) {
        mbi.RegionSize = m.end - page;
        mbi.State = MEM_FREE;
        mbi.Protect = PAGE_NOACCESS;
        return sizeof mbi;
    }
    mbi.AllocationBase = reinterpret_cast<PVOID>(m.start);
    mbi.AllocationProtect = mbi.Protect = windowsProtection(m.perms);
    mbi.RegionSize = m.end - page;
    mbi.State = MEM_COMMIT;
    mbi.Type = m.file ? MEM_IMAGE : MEM_PRIVATE;
    return sizeof mbi;
}
