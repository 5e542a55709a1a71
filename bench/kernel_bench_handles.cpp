// Benchmarks of the handle table: every window, timer and menu the
// library makes passes through it, and every API call validates one.
#include "kernel/omhandles.h"

#include <benchmark/benchmark.h>

namespace {

int g_record;

// Guards the cost of making and releasing an object handle (windows,
// timers, menus): one lock round, no allocation.
void BM_omAllocHandle_AllocFree(benchmark::State &state)
{
    for (auto _ : state) {
        uint32_t h = omAllocHandle(OM_KIND_TIMER, &g_record);
        benchmark::DoNotOptimize(h);
        omFreeHandle(h);
    }
}
BENCHMARK(BM_omAllocHandle_AllocFree);

// Guards the cost every API entry pays to turn a handle into its record:
// it must stay a few loads, with no lock.
void BM_omHandleRecord_Lookup(benchmark::State &state)
{
    uint32_t h = omAllocHandle(OM_KIND_WINDOW, &g_record);
    uint64_t handle = omHandleFromIndex(h);
    for (auto _ : state)
        benchmark::DoNotOptimize(omHandleRecord(handle, OM_KIND_WINDOW));
    omFreeHandle(h);
}
BENCHMARK(BM_omHandleRecord_Lookup);

}  // namespace
