// Memory: lock counts and moveable blocks, fixed and local blocks,
// discarding and GMEM_MODIFY, bad handles (refused and counted, never
// crashing), heaps, virtual memory, the memory status, and many threads
// allocating at once.
#include "kernel/omdiag.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr unsigned kBadHandleDiag = 300;

bool allZero(const void *p, size_t n)
{
    const auto *b = static_cast<const unsigned char *>(p);
    for (size_t i = 0; i < n; ++i)
        if (b[i])
            return false;
    return true;
}

TEST(GlobalMemory, MoveableBlockCountsLocks)
{
    HGLOBAL h = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, 100);
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(GlobalFlags(h) & GMEM_LOCKCOUNT, 0u);
    EXPECT_EQ(GlobalSize(h), 100u);

    void *p = GlobalLock(h);
    ASSERT_NE(p, nullptr);
    EXPECT_NE(p, h) << "a moveable block's handle is not its pointer";
    EXPECT_TRUE(allZero(p, 100));
    EXPECT_EQ(GlobalLock(h), p);
    EXPECT_EQ(GlobalFlags(h) & GMEM_LOCKCOUNT, 2u);
    EXPECT_EQ(GlobalHandle(p), h);

    EXPECT_EQ(GlobalUnlock(h), 1) << "the remaining lock count";
    SetLastError(12345);
    EXPECT_EQ(GlobalUnlock(h), FALSE);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(NO_ERROR)) << "unlocked to zero";
    EXPECT_EQ(GlobalUnlock(h), FALSE);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_LOCKED));
    EXPECT_EQ(GlobalFree(h), nullptr);
}

TEST(GlobalMemory, ReAllocMovesAnUnlockedBlockAndKeepsItsHandle)
{
    HGLOBAL h = GlobalAlloc(GMEM_MOVEABLE, 64);
    auto *p = static_cast<char *>(GlobalLock(h));
    strcpy(p, "contents survive");
    GlobalUnlock(h);

    // Large enough that the data cannot stay where it was.
    const SIZE_T big = 4 << 20;
    EXPECT_EQ(GlobalReAlloc(h, big, GMEM_ZEROINIT), h);
    EXPECT_EQ(GlobalSize(h), big);
    auto *q = static_cast<char *>(GlobalLock(h));
    EXPECT_STREQ(q, "contents survive");
    EXPECT_TRUE(allZero(q + 64, big - 64)) << "GMEM_ZEROINIT clears the grown part";
    EXPECT_EQ(GlobalHandle(q), h);

    // Locked: it may only grow in place, unless the caller allows a move.
    SetLastError(0);
    EXPECT_EQ(GlobalReAlloc(h, 2 * big, 0), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_ENOUGH_MEMORY));
    EXPECT_EQ(GlobalSize(h), big) << "a failed ReAlloc leaves the block alone";
    EXPECT_EQ(GlobalReAlloc(h, 2 * big, GMEM_MOVEABLE), h);
    EXPECT_STREQ(static_cast<char *>(GlobalLock(h)), "contents survive");
    EXPECT_EQ(GlobalFree(h), nullptr);
}

TEST(GlobalMemory, FixedBlockIsItsOwnHandle)
{
    HGLOBAL h = GlobalAlloc(GPTR, 16);
    ASSERT_NE(h, nullptr);
    EXPECT_TRUE(allZero(h, 16));
    EXPECT_EQ(GlobalLock(h), h);
    EXPECT_EQ(GlobalFlags(h) & GMEM_LOCKCOUNT, 0u) << "fixed blocks keep a lock count of 0";
    EXPECT_EQ(GlobalHandle(h), h);
    strcpy(static_cast<char *>(h), "fixed");

    EXPECT_EQ(GlobalReAlloc(h, 1 << 22, 0), nullptr) << "a fixed block does not move";
    HGLOBAL moved = GlobalReAlloc(h, 1 << 22, GMEM_MOVEABLE);
    ASSERT_NE(moved, nullptr);
    EXPECT_STREQ(static_cast<char *>(moved), "fixed");
    EXPECT_EQ(GlobalSize(moved), static_cast<SIZE_T>(1 << 22));
    EXPECT_EQ(GlobalFree(moved), nullptr);
}

TEST(GlobalMemory, LocalFixedZeroInitIsAPointer)
{
    auto *p = static_cast<char *>(LocalAlloc(LMEM_FIXED | LMEM_ZEROINIT, 32));
    ASSERT_NE(p, nullptr);
    EXPECT_TRUE(allZero(p, 32));
    strcpy(p, "local");
    EXPECT_EQ(LocalSize(p), 32u);
    EXPECT_EQ(LocalHandle(p), p);
    EXPECT_EQ(LocalFree(p), nullptr);

    HLOCAL m = LocalAlloc(LHND, 8);
    EXPECT_EQ(LocalUnlock(m), FALSE);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_LOCKED));
    ASSERT_NE(LocalLock(m), nullptr);
    EXPECT_EQ(LocalFlags(m) & LMEM_LOCKCOUNT, 1u);
    // Global and local blocks come from one heap, as on Win32.
    EXPECT_EQ(GlobalSize(m), 8u);
    EXPECT_EQ(LocalFree(m), nullptr);
}

TEST(GlobalMemory, DiscardAndRevive)
{
    HGLOBAL h = GlobalAlloc(GMEM_MOVEABLE, 0);
    ASSERT_NE(h, nullptr);
    EXPECT_TRUE(GlobalFlags(h) & GMEM_DISCARDED) << "a zero-byte moveable block starts discarded";
    EXPECT_EQ(GlobalLock(h), nullptr);
    EXPECT_EQ(GlobalReAlloc(h, 10, GMEM_MOVEABLE | GMEM_ZEROINIT), h);
    EXPECT_FALSE(GlobalFlags(h) & GMEM_DISCARDED);
    void *p = GlobalLock(h);
    ASSERT_NE(p, nullptr);
    EXPECT_TRUE(allZero(p, 10));
    GlobalUnlock(h);
    EXPECT_EQ(GlobalDiscard(h), h);
    EXPECT_TRUE(GlobalFlags(h) & GMEM_DISCARDED);
    EXPECT_EQ(GlobalSize(h), 0u);
    EXPECT_EQ(GlobalFree(h), nullptr);
}

TEST(GlobalMemory, ModifyChangesOnlyAttributes)
{
    void *p = GlobalAlloc(GMEM_FIXED, 24);
    HGLOBAL h = GlobalReAlloc(p, 0, GMEM_MODIFY | GMEM_MOVEABLE);
    ASSERT_NE(h, nullptr);
    EXPECT_NE(h, p) << "now moveable, with a handle of its own";
    EXPECT_EQ(GlobalSize(h), 24u) << "the size is ignored";
    EXPECT_EQ(GlobalLock(h), p) << "the data stayed";
    EXPECT_EQ(GlobalHandle(p), h);
    GlobalUnlock(h);
    EXPECT_EQ(GlobalReAlloc(h, 0, GMEM_MODIFY | GMEM_DISCARDABLE), h);
    EXPECT_TRUE(GlobalFlags(h) & GMEM_DISCARDABLE);
    EXPECT_EQ(LocalFlags(h) & LMEM_DISCARDABLE, static_cast<UINT>(LMEM_DISCARDABLE));
    EXPECT_EQ(GlobalFree(h), nullptr);
}

TEST(GlobalMemory, BadHandlesAreRefusedAndCounted)
{
    // The live block first: a record freed before it could be reused for
    // it, and its stale handle would then be valid again.
    HGLOBAL live = GlobalAlloc(GMEM_MOVEABLE, 8);
    void *livePointer = GlobalLock(live);
    HGLOBAL freed = GlobalAlloc(GMEM_MOVEABLE, 8);
    GlobalFree(freed);
    HGLOBAL fixedFreed = GlobalAlloc(GMEM_FIXED, 8);
    GlobalFree(fixedFreed);
    int onStack = 0;

    const std::vector<std::pair<const char *, HGLOBAL>> handles = {
        {"made up", reinterpret_cast<HGLOBAL>(0x12345678)},
        {"freed moveable", freed},
        {"freed fixed", fixedFreed},
        {"stack address", &onStack},
        {"data pointer of a moveable block", livePointer},
    };
    for (const auto &[what, h] : handles) {
        SCOPED_TRACE(what);
        omDiagResetCounts();
        struct Call {
            const char *name;
            std::function<bool()> failed;
        };
        const Call calls[] = {
            {"GlobalLock", [h = h] { return GlobalLock(h) == nullptr; }},
            {"GlobalUnlock", [h = h] { return GlobalUnlock(h) == FALSE; }},
            {"GlobalSize", [h = h] { return GlobalSize(h) == 0; }},
            {"GlobalFlags", [h = h] { return GlobalFlags(h) == GMEM_INVALID_HANDLE; }},
            {"GlobalReAlloc", [h = h] { return GlobalReAlloc(h, 16, GMEM_MOVEABLE) == nullptr; }},
            {"LocalLock", [h = h] { return LocalLock(h) == nullptr; }},
            {"GlobalFree", [h = h] { return GlobalFree(h) == h; }},
            {"LocalFree", [h = h] { return LocalFree(h) == h; }},
        };
        for (const Call &c : calls) {
            SCOPED_TRACE(c.name);
            SetLastError(0);
            EXPECT_TRUE(c.failed());
            EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
        }
        EXPECT_EQ(omDiagCount(kBadHandleDiag), std::size(calls));
    }
    omDiagResetCounts();
    EXPECT_EQ(GlobalHandle(&onStack), nullptr);
    EXPECT_EQ(omDiagCount(kBadHandleDiag), 1u);
    EXPECT_EQ(GlobalFree(nullptr), nullptr) << "freeing null is no error";
    EXPECT_EQ(GlobalLock(live), livePointer) << "the live block was not disturbed";
    EXPECT_EQ(GlobalFree(live), nullptr);
}

TEST(Heaps, AllocateResizeAndFree)
{
    HANDLE heap = HeapCreate(0, 0, 0);
    ASSERT_NE(heap, nullptr);
    auto *p = static_cast<char *>(HeapAlloc(heap, HEAP_ZERO_MEMORY, 40));
    ASSERT_NE(p, nullptr);
    EXPECT_TRUE(allZero(p, 40));
    EXPECT_EQ(HeapSize(heap, 0, p), 40u);
    strcpy(p, "heap data");

    auto *q = static_cast<char *>(HeapReAlloc(heap, HEAP_ZERO_MEMORY, p, 1 << 20));
    ASSERT_NE(q, nullptr);
    EXPECT_STREQ(q, "heap data");
    EXPECT_TRUE(allZero(q + 40, (1 << 20) - 40));
    EXPECT_EQ(HeapSize(heap, 0, q), static_cast<SIZE_T>(1 << 20));
    EXPECT_EQ(HeapReAlloc(heap, HEAP_REALLOC_IN_PLACE_ONLY, q, 8 << 20), nullptr);
    EXPECT_EQ(HeapSize(heap, 0, q), static_cast<SIZE_T>(1 << 20)) << "left as it was";

    EXPECT_TRUE(HeapFree(heap, 0, q));
    EXPECT_TRUE(HeapFree(heap, 0, nullptr));
    omDiagResetCounts();
    SetLastError(0);
    EXPECT_FALSE(HeapFree(heap, 0, q)) << "already freed";
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_EQ(HeapSize(heap, 0, q), static_cast<SIZE_T>(-1));
    EXPECT_EQ(omDiagCount(kBadHandleDiag), 2u);

    // Blocks still allocated go with the heap.
    for (int i = 0; i < 10; ++i)
        ASSERT_NE(HeapAlloc(heap, 0, 100), nullptr);
    EXPECT_TRUE(HeapDestroy(heap));
    omDiagResetCounts();
    EXPECT_EQ(HeapAlloc(heap, 0, 8), nullptr) << "a destroyed heap's handle";
    EXPECT_FALSE(HeapDestroy(heap));
    EXPECT_EQ(omDiagCount(kBadHandleDiag), 2u);
}

TEST(Heaps, MaximumSizeAndTheProcessHeap)
{
    HANDLE bounded = HeapCreate(0, 0, 4096);
    ASSERT_NE(bounded, nullptr);
    void *a = HeapAlloc(bounded, 0, 3000);
    EXPECT_NE(a, nullptr);
    EXPECT_EQ(HeapAlloc(bounded, 0, 3000), nullptr) << "over the maximum";
    EXPECT_TRUE(HeapFree(bounded, 0, a));
    EXPECT_NE(HeapAlloc(bounded, 0, 3000), nullptr) << "room again after the free";
    EXPECT_TRUE(HeapDestroy(bounded));

    HANDLE process = GetProcessHeap();
    ASSERT_NE(process, nullptr);
    EXPECT_EQ(GetProcessHeap(), process);
    void *p = HeapAlloc(process, 0, 10);
    EXPECT_TRUE(HeapFree(process, 0, p));
    EXPECT_FALSE(HeapDestroy(process)) << "the process heap stays";
    EXPECT_EQ(HeapCreate(0, 100, 10), nullptr) << "initial size above the maximum";
}

TEST(VirtualMemory, ReserveCommitProtectDecommitRelease)
{
    const SIZE_T size = 1 << 20;
    auto *base = static_cast<char *>(VirtualAlloc(nullptr, size, MEM_RESERVE, PAGE_NOACCESS));
    ASSERT_NE(base, nullptr);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(base) % 0x10000, 0u) << "64 KB granularity";
    MEMORY_BASIC_INFORMATION mbi;
    ASSERT_EQ(VirtualQuery(base, &mbi, sizeof mbi), sizeof mbi);
    EXPECT_EQ(mbi.State, static_cast<DWORD>(MEM_RESERVE));
    EXPECT_EQ(mbi.RegionSize, size);

    char *page = base + 0x10000;
    // Every page that holds a byte of the range: two, from an address in
    // the first.
    ASSERT_EQ(VirtualAlloc(page + 10, 0x2000 - 10, MEM_COMMIT, PAGE_READWRITE), page);
    page[0] = 'x';
    page[0x1FFF] = 'y';
    ASSERT_EQ(VirtualQuery(page + 5, &mbi, sizeof mbi), sizeof mbi);
    EXPECT_EQ(mbi.BaseAddress, page);
    EXPECT_EQ(mbi.AllocationBase, base);
    EXPECT_EQ(mbi.State, static_cast<DWORD>(MEM_COMMIT));
    EXPECT_EQ(mbi.Protect, static_cast<DWORD>(PAGE_READWRITE));
    EXPECT_EQ(mbi.RegionSize, 0x2000u);

    DWORD old = 0;
    EXPECT_TRUE(VirtualProtect(page, 0x1000, PAGE_READONLY, &old));
    EXPECT_EQ(old, static_cast<DWORD>(PAGE_READWRITE));
    EXPECT_EQ(page[0], 'x');
    EXPECT_FALSE(VirtualProtect(base, 0x1000, PAGE_READONLY, &old)) << "not committed";

    EXPECT_TRUE(VirtualFree(page, 0x2000, MEM_DECOMMIT));
    ASSERT_EQ(VirtualQuery(page, &mbi, sizeof mbi), sizeof mbi);
    EXPECT_EQ(mbi.State, static_cast<DWORD>(MEM_RESERVE));
    ASSERT_EQ(VirtualAlloc(page, 0x1000, MEM_COMMIT, PAGE_READWRITE), page);
    EXPECT_EQ(page[0], 0) << "a new commit starts with zeros";

    EXPECT_FALSE(VirtualFree(base, size, MEM_RELEASE)) << "release takes size 0";
    EXPECT_FALSE(VirtualFree(page, 0, MEM_RELEASE)) << "and the base";
    EXPECT_TRUE(VirtualFree(base, 0, MEM_RELEASE));
    ASSERT_EQ(VirtualQuery(base, &mbi, sizeof mbi), sizeof mbi);
    EXPECT_EQ(mbi.State, static_cast<DWORD>(MEM_FREE));
}

TEST(VirtualMemory, CommitAtOnceAndQueryForeignMemory)
{
    auto *p = static_cast<int *>(VirtualAlloc(nullptr, 100, MEM_COMMIT | MEM_RESERVE,
                                              PAGE_READWRITE));
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(p[0], 0);
    p[10] = 5;
    EXPECT_TRUE(VirtualFree(p, 0, MEM_RELEASE));

    static int data = 1;
    MEMORY_BASIC_INFORMATION mbi;
    ASSERT_EQ(VirtualQuery(&data, &mbi, sizeof mbi), sizeof mbi);
    EXPECT_EQ(mbi.State, static_cast<DWORD>(MEM_COMMIT));
    EXPECT_TRUE(mbi.Protect & (PAGE_READWRITE | PAGE_EXECUTE_READWRITE));
    EXPECT_EQ(VirtualQuery(&data, &mbi, 4), 0u) << "buffer too small";
    EXPECT_EQ(VirtualAlloc(nullptr, 0, MEM_COMMIT, PAGE_READWRITE), nullptr);
    EXPECT_EQ(VirtualAlloc(nullptr, 10, MEM_COMMIT, 0x12345), nullptr) << "bad protection";
}

TEST(MemoryStatus, FiguresAreConsistent)
{
    MEMORYSTATUSEX ex{};
    EXPECT_FALSE(GlobalMemoryStatusEx(&ex)) << "dwLength not set";
    ex.dwLength = sizeof ex;
    ASSERT_TRUE(GlobalMemoryStatusEx(&ex));
    EXPECT_GT(ex.ullTotalPhys, 0u);
    EXPECT_LE(ex.ullAvailPhys, ex.ullTotalPhys);
    EXPECT_LE(ex.dwMemoryLoad, 100u);
    EXPECT_GE(ex.ullTotalPageFile, ex.ullTotalPhys);
    EXPECT_LE(ex.ullAvailVirtual, ex.ullTotalVirtual);
    MEMORYSTATUS ms{};
    GlobalMemoryStatus(&ms);
    EXPECT_EQ(ms.dwLength, sizeof ms);
    EXPECT_EQ(ms.dwTotalPhys, ex.ullTotalPhys);
}

TEST(MemoryStatus, IsBadPointerRejectsOnlyNull)
{
    int x = 0;
    EXPECT_TRUE(IsBadReadPtr(nullptr, 4));
    EXPECT_FALSE(IsBadReadPtr(nullptr, 0));
    EXPECT_FALSE(IsBadReadPtr(&x, sizeof x));
    EXPECT_TRUE(IsBadWritePtr(nullptr, 1));
    EXPECT_FALSE(IsBadWritePtr(&x, sizeof x));
    EXPECT_TRUE(IsBadStringPtrA(nullptr, 10));
    EXPECT_FALSE(IsBadStringPtrW(u"x", 10));
}

// Eight threads allocating, locking, resizing and freeing global, local
// and heap blocks at once; each checks that its data stays its own.
TEST(MemoryThreads, EightThreadsAllocateAtOnce)
{
    HANDLE shared = HeapCreate(0, 0, 0);
    ASSERT_NE(shared, nullptr);
    std::vector<std::thread> threads;
    std::atomic<int> failures{0};
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([t, shared, &failures] {
            const auto mark = static_cast<unsigned char>('A' + t);
            for (int i = 0; i < 300; ++i) {
                HGLOBAL m = GlobalAlloc(GMEM_MOVEABLE, 32 + i % 50);
                HLOCAL f = LocalAlloc(LPTR, 16);
                void *hp = HeapAlloc(shared, 0, 24);
                if (!m || !f || !hp) {
                    ++failures;
                    continue;
                }
                memset(GlobalLock(m), mark, 32);
                memset(f, mark, 16);
                memset(hp, mark, 24);
                GlobalUnlock(m);
                m = GlobalReAlloc(m, 4096 + i, GMEM_MOVEABLE);
                auto *p = m ? static_cast<unsigned char *>(GlobalLock(m)) : nullptr;
                if (!p || p[0] != mark || p[31] != mark ||
                    static_cast<unsigned char *>(f)[15] != mark ||
                    static_cast<unsigned char *>(hp)[23] != mark)
                    ++failures;
                if (m) {
                    GlobalUnlock(m);
                    if (GlobalFree(m) != nullptr)
                        ++failures;
                }
                if (LocalFree(f) != nullptr || !HeapFree(shared, 0, hp))
                    ++failures;
            }
        });
    }
    for (std::thread &th : threads)
        th.join();
    EXPECT_EQ(failures.load(), 0);
    EXPECT_TRUE(HeapDestroy(shared));
}

}  // namespace
