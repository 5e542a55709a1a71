// Costs of the kernel layer's synchronisation: an event hand-off between
// two threads, an uncontended critical section, and a wait on an object
// that is already signalled.
#include <winbase.h>

#include <benchmark/benchmark.h>

#include <atomic>
#include <thread>

namespace {

// Guards the wake path of the waits: SetEvent on one thread until a
// blocked WaitForSingleObject returns on the other, there and back (one
// round trip per iteration).
void BM_SetEvent_WaitAcrossThreads(benchmark::State &state)
{
    HANDLE ping = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    HANDLE pong = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    std::atomic<bool> stop{false};
    std::thread partner([&] {
        for (;;) {
            WaitForSingleObject(ping, INFINITE);
            if (stop.load(std::memory_order_acquire))
                return;
            SetEvent(pong);
        }
    });
    for (auto _ : state) {
        SetEvent(ping);
        WaitForSingleObject(pong, INFINITE);
    }
    stop.store(true, std::memory_order_release);
    SetEvent(ping);
    partner.join();
    CloseHandle(ping);
    CloseHandle(pong);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_SetEvent_WaitAcrossThreads)->UseRealTime();

// Guards the uncontended fast path: no system call, one atomic each way.
void BM_CriticalSection_EnterLeave(benchmark::State &state)
{
    CRITICAL_SECTION cs;
    InitializeCriticalSection(&cs);
    for (auto _ : state) {
        EnterCriticalSection(&cs);
        LeaveCriticalSection(&cs);
    }
    DeleteCriticalSection(&cs);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_CriticalSection_EnterLeave);

// Guards the cost of a wait that need not block: handle lookup and the
// object lock, no sleeping.
void BM_WaitForSingleObject_Signalled(benchmark::State &state)
{
    HANDLE e = CreateEventA(nullptr, TRUE, TRUE, nullptr);
    for (auto _ : state)
        benchmark::DoNotOptimize(WaitForSingleObject(e, INFINITE));
    CloseHandle(e);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_WaitForSingleObject_Signalled);

}  // namespace

BENCHMARK_MAIN();
