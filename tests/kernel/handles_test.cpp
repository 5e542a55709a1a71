// The handle table: allocation order, stale handles, reserved slots, the
// window walk, and many threads allocating at once.
#include "kernel/omhandles.h"

#include <gtest/gtest.h>

#include <set>
#include <thread>
#include <vector>

namespace {

int g_record;

TEST(HandleTable, HandleValuesCarryTheBaseAndSurviveSignExtension)
{
    uint32_t index = omAllocHandle(OM_KIND_TIMER, &g_record);
    ASSERT_NE(index, 0u);
    uint64_t h = omHandleFromIndex(index);
    EXPECT_EQ(h & 0xFFFF, index & 0xFFFF);
    EXPECT_LT(h, 0x80000000u);
    EXPECT_EQ(omHandleRecord(h, OM_KIND_TIMER), &g_record);
    // A copy that went through a signed 32-bit integer and back.
    uint64_t widened = static_cast<uint64_t>(static_cast<int64_t>(static_cast<int32_t>(h))) |
                       0xFFFFFFFF00000000ull;
    EXPECT_EQ(omHandleRecord(widened, OM_KIND_TIMER), &g_record);
    EXPECT_EQ(omHandleRecord(h, OM_KIND_WINDOW), nullptr) << "the kind is part of validity";
    EXPECT_TRUE(omFreeHandle(h));
}

TEST(HandleTable, FreedHandleStaysInvalidUntilItsSlotIsReused)
{
    uint32_t first = omAllocHandle(OM_KIND_ACCEL, &g_record);
    ASSERT_TRUE(omFreeHandle(first));
    EXPECT_EQ(omHandleRecord(first, OM_KIND_ACCEL), nullptr);
    EXPECT_FALSE(omFreeHandle(first)) << "a second free of the same handle";
    // New allocations take fresh slots before reusing the freed one.
    std::vector<uint32_t> later;
    for (int i = 0; i < 100; ++i) {
        later.push_back(omAllocHandle(OM_KIND_ACCEL, &g_record));
        EXPECT_NE(later.back(), first);
    }
    EXPECT_EQ(omHandleRecord(first, OM_KIND_ACCEL), nullptr);
    for (uint32_t h : later)
        omFreeHandle(h);
}

TEST(HandleTable, NullRecordIsALiveSlot)
{
    uint32_t menu = omAllocHandle(OM_KIND_MENU, nullptr);
    ASSERT_NE(menu, 0u);
    EXPECT_TRUE(omIsHandleOfKind(menu, OM_KIND_MENU));
    EXPECT_TRUE(omFreeHandle(menu));
    EXPECT_FALSE(omIsHandleOfKind(menu, OM_KIND_MENU));
}

TEST(HandleTable, ReservedSlotsAreOnlyTheLowOnes)
{
    // Slot 31 may hold the graphics layer's brush: keep and restore it.
    OmHandleSlot &slot = omHandlesTable[kOmSysColorBrushLastSlot];
    uint32_t kind = slot.kind.load();
    void *record = slot.record.load();
    EXPECT_TRUE(omAllocReservedHandle(kOmSysColorBrushLastSlot, OM_KIND_BRUSH, &g_record));
    EXPECT_EQ(omHandleRecord(omHandleFromIndex(kOmSysColorBrushLastSlot), OM_KIND_BRUSH), &g_record);
    EXPECT_FALSE(omAllocReservedHandle(0, OM_KIND_BRUSH, &g_record));
    EXPECT_FALSE(omAllocReservedHandle(kOmFirstDynamicSlot, OM_KIND_BRUSH, &g_record));
    for (int i = 0; i < 50; ++i) {
        uint32_t h = omAllocHandle(OM_KIND_BRUSH, nullptr);
        EXPECT_GE(h, kOmFirstDynamicSlot) << "reserved slots are never handed out";
        omFreeHandle(h);
    }
    if (kind != OM_KIND_FREE)
        omAllocReservedHandle(kOmSysColorBrushLastSlot, kind, record);
    else
        omFreeHandle(kOmSysColorBrushLastSlot);
}

TEST(HandleTable, OutOfRangeAndZeroHandlesAreInvalid)
{
    for (uint64_t h : {uint64_t{0}, uint64_t{omDisplayResourceBase}, uint64_t{0xFFFF},
                       uint64_t{omDisplayResourceBase | 0xFFFF}, ~uint64_t{0}}) {
        SCOPED_TRACE(h);
        EXPECT_EQ(omHandleRecord(h, OM_KIND_WINDOW), nullptr);
        EXPECT_FALSE(omFreeHandle(h));
    }
}

TEST(HandleTable, WindowWalkVisitsEachWindowOnce)
{
    std::set<uint64_t> made;
    for (int i = 0; i < 5; ++i)
        made.insert(omHandleFromIndex(omAllocHandle(OM_KIND_WINDOW, &g_record)));
    uint32_t other = omAllocHandle(OM_KIND_TIMER, &g_record);
    std::set<uint64_t> seen;
    uint64_t h = 0;
    for (omNextWindowHandle(&h); h != 0; omNextWindowHandle(&h))
        EXPECT_TRUE(seen.insert(h).second);
    for (uint64_t w : made)
        EXPECT_TRUE(seen.count(w));
    EXPECT_FALSE(seen.count(omHandleFromIndex(other)));
    for (uint64_t w : made)
        omFreeHandle(w);
    omFreeHandle(other);
}

// Eight threads allocate and free at once; every live handle must resolve
// to the record its own thread stored, never another thread's.
TEST(HandleThreads, ConcurrentAllocationKeepsSlotsDistinct)
{
    constexpr int kThreads = 8;
    constexpr int kRounds = 2000;
    int records[kThreads];
    std::vector<std::thread> threads;
    std::atomic<int> mismatches{0};
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([t, &records, &mismatches] {
            std::vector<uint32_t> mine;
            for (int i = 0; i < kRounds; ++i) {
                uint32_t h = omAllocHandle(OM_KIND_DEFERPOS, &records[t]);
                if (h)
                    mine.push_back(h);
                if (i % 3 == 2) {
                    omFreeHandle(mine.front());
                    mine.erase(mine.begin());
                }
                for (uint32_t m : {mine.front(), mine.back()})
                    if (omHandleRecord(m, OM_KIND_DEFERPOS) != &records[t])
                        ++mismatches;
            }
            for (uint32_t h : mine)
                omFreeHandle(h);
        });
    }
    for (auto &t : threads)
        t.join();
    EXPECT_EQ(mismatches.load(), 0);
}

}  // namespace
