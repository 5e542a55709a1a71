// Benchmarks of the posted-message queue: one post on the poster's own
// queue and into another thread's, and how long the main thread's X wait
// takes to notice a post from another thread.
#define OLMO_MESSAGES_TEST_ACCESS 1
#include "messages/ommessageq.h"

#include "kernel/omdisplay.h"
#include "kernel/ominit.h"
#include "kernel/omthread.h"

#include <Xm/Xm.h>

#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

bool ready(benchmark::State &state)
{
    // Referenced so that libXm loads ahead of libXt.
    benchmark::DoNotOptimize(xmPrimitiveWidgetClass);
    if (!omInitialize(nullptr, nullptr)) {
        state.SkipWithError("no X display");
        return false;
    }
    return true;
}

void drain()
{
    OmMsgRecord r;
    while (omTestTakeMessage(nullptr, &r)) {
    }
}

// Guards the common post: a record from the free list, appended under the
// queue lock, and the signal to a waiting thread.
void BM_Post_SameThread(benchmark::State &state)
{
    if (!ready(state))
        return;
    unsigned n = 0;
    for (auto _ : state) {
        omPostMessageEvent(nullptr, WM_USER, n, 0, nullptr, nullptr, 0);
        if (++n == 200) {
            state.PauseTiming();
            drain();
            n = 0;
            state.ResumeTiming();
        }
    }
    drain();
}
BENCHMARK(BM_Post_SameThread);

// Posting into a thread that drains its queue at the same time: the lock
// is contended and the receiver's wait is signalled.
void BM_Post_CrossThread(benchmark::State &state)
{
    if (!ready(state))
        return;
    std::atomic<bool> stop{false};
    std::atomic<uint64_t> handle{0};
    std::thread receiver([&] {
        handle = omCurrentThreadRecord()->handle;
        OmMsgRecord r;
        while (!stop.load(std::memory_order_relaxed))
            if (!omTestTakeMessage(nullptr, &r))
                std::this_thread::yield();
    });
    while (!handle.load())
        std::this_thread::yield();
    HANDLE target = reinterpret_cast<HANDLE>(static_cast<uintptr_t>(handle.load()));
    unsigned n = 0;
    for (auto _ : state)
        omPostMessageEvent(nullptr, WM_USER, n++, 0, nullptr, target, 0);
    stop = true;
    receiver.join();
}
BENCHMARK(BM_Post_CrossThread);

// From a post on another thread to the main thread seeing it, while the
// main thread sleeps in the X toolkit's event wait (the wake pipe).
void BM_CrossThreadWakeLatency(benchmark::State &state)
{
    if (!ready(state))
        return;
    HANDLE mainThread = reinterpret_cast<HANDLE>(static_cast<uintptr_t>(_omThreadMainThread()));
    std::atomic<int> go{0};
    std::atomic<int64_t> postedAt{0};
    std::atomic<bool> stop{false};
    std::thread poster([&] {
        int seen = 0;
        while (!stop.load()) {
            int g = go.load();
            if (g == seen) {
                std::this_thread::yield();
                continue;
            }
            seen = g;
            // Let the main thread get into its wait first.
            std::this_thread::sleep_for(std::chrono::microseconds(500));
            postedAt = Clock::now().time_since_epoch().count();
            omPostMessageEvent(nullptr, WM_USER, 0, 0, nullptr, mainThread, 0);
        }
    });
    drain();
    for (auto _ : state) {
        go.fetch_add(1);
        while (!omIsMsgAvailable(QS_POSTMESSAGE))
            XtAppProcessEvent(omAppContext, XtIMAll);
        int64_t seen = Clock::now().time_since_epoch().count();
        state.SetIterationTime(static_cast<double>(seen - postedAt.load()) * 1e-9);
        drain();
    }
    stop = true;
    poster.join();
}
BENCHMARK(BM_CrossThreadWakeLatency)->UseManualTime()->Unit(benchmark::kMicrosecond);

}  // namespace
