// Events, mutexes, semaphores and the waits on them; CloseHandle,
// DuplicateHandle and the close-handler registry; critical sections, SRW
// locks and condition variables, with the stress suites run under TSan.
#include "kernel/omdiag.h"
#include "kernel/omhandles.h"
#include "kernel/omsync.h"
#include "kernel/omthread.h"

#include <winbase.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

long long msSince(Clock::time_point start)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

// Runs a routine on a thread made by CreateThread; the destructor waits
// (bounded) so that a failed test does not leave a thread behind.
class Worker
{
  public:
    template <class F> explicit Worker(F f) : routine_(std::move(f))
    {
        handle_ = CreateThread(
            nullptr, 0, [](LPVOID p) -> DWORD { return static_cast<Worker *>(p)->routine_(); },
            this, 0, nullptr);
    }
    ~Worker()
    {
        WaitForSingleObject(handle_, 10000);
        CloseHandle(handle_);
    }
    HANDLE handle() const { return handle_; }
    DWORD join(DWORD ms = 10000)
    {
        DWORD code = 0;
        EXPECT_EQ(WaitForSingleObject(handle_, ms), WAIT_OBJECT_0);
        GetExitCodeThread(handle_, &code);
        return code;
    }

  private:
    std::function<DWORD()> routine_;
    HANDLE handle_;
};

// Blocks until n waits are blocked on the handle's object (at most five
// seconds), so a test signals only once its waiters really wait.
bool waitUntilBlocked(HANDLE h, int n)
{
    auto start = Clock::now();
    while (omWaitersOf(omHandleValue(h)) < n && msSince(start) < 5000)
        Sleep(1);
    return omWaitersOf(omHandleValue(h)) >= n;
}

// ---- Events ----

struct EventCase {
    const char *name;
    BOOL manual;
    BOOL initial;
};

class EventStates : public testing::TestWithParam<EventCase>
{
};

TEST_P(EventStates, WaitsConsumeOnlyAutoResetSignals)
{
    const EventCase &c = GetParam();
    HANDLE e = CreateEventA(nullptr, c.manual, c.initial, nullptr);
    ASSERT_NE(e, nullptr);
    EXPECT_EQ(WaitForSingleObject(e, 0), c.initial ? WAIT_OBJECT_0 : DWORD{WAIT_TIMEOUT});
    EXPECT_TRUE(SetEvent(e));
    EXPECT_EQ(WaitForSingleObject(e, 0), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(e, 0), c.manual ? WAIT_OBJECT_0 : DWORD{WAIT_TIMEOUT});
    EXPECT_TRUE(SetEvent(e));
    EXPECT_TRUE(ResetEvent(e));
    EXPECT_EQ(WaitForSingleObject(e, 0), DWORD{WAIT_TIMEOUT});
    EXPECT_TRUE(PulseEvent(e)) << "a pulse with no waiter leaves nothing behind";
    EXPECT_EQ(WaitForSingleObject(e, 0), DWORD{WAIT_TIMEOUT});
    EXPECT_TRUE(CloseHandle(e));
}

INSTANTIATE_TEST_SUITE_P(Kinds, EventStates,
                         testing::Values(EventCase{"AutoUnset", FALSE, FALSE},
                                         EventCase{"AutoSet", FALSE, TRUE},
                                         EventCase{"ManualUnset", TRUE, FALSE},
                                         EventCase{"ManualSet", TRUE, TRUE}),
                         [](const testing::TestParamInfo<EventCase> &i) { return i.param.name; });

// Counts the waiters one pulse releases.  The hand-off happens inside the
// pulse, so the waiters still blocked right after it are the rest.
int releasedByOnePulse(BOOL manual)
{
    HANDLE e = CreateEventA(nullptr, manual, FALSE, nullptr);
    std::vector<std::unique_ptr<Worker>> waiters;
    for (int i = 0; i < 4; ++i)
        waiters.push_back(
            std::make_unique<Worker>([&]() -> DWORD { return WaitForSingleObject(e, 5000); }));
    EXPECT_TRUE(waitUntilBlocked(e, 4));
    PulseEvent(e);
    int released = 4 - omWaitersOf(omHandleValue(e));
    EXPECT_EQ(WaitForSingleObject(e, 0), DWORD{WAIT_TIMEOUT}) << "a pulse leaves the event reset";
    for (int i = 0; i < 4; ++i)
        SetEvent(e);  // lets the rest go
    waiters.clear();
    CloseHandle(e);
    return released;
}

TEST(Events, PulseReleasesAllWaitersOfAManualEventAndOneOfAnAutoEvent)
{
    EXPECT_EQ(releasedByOnePulse(TRUE), 4);
    EXPECT_EQ(releasedByOnePulse(FALSE), 1);
}

TEST(Events, SetWakesABlockedWaiterAtOnce)
{
    HANDLE e = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    Worker w([&]() -> DWORD { return WaitForSingleObject(e, INFINITE); });
    ASSERT_TRUE(waitUntilBlocked(e, 1));
    auto start = Clock::now();
    SetEvent(e);
    EXPECT_EQ(w.join(), WAIT_OBJECT_0);
    EXPECT_LT(msSince(start), 1000);
    EXPECT_EQ(WaitForSingleObject(e, 0), DWORD{WAIT_TIMEOUT}) << "the waiter took the signal";
    CloseHandle(e);
}

TEST(Events, NamedEventsAreSharedByName)
{
    HANDLE a = CreateEventA(nullptr, TRUE, FALSE, "olmo-test-event");
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(GetLastError(), 0u);
    HANDLE b = CreateEventA(nullptr, FALSE, TRUE, "olmo-test-event");
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ALREADY_EXISTS});
    EXPECT_NE(a, b);
    EXPECT_EQ(WaitForSingleObject(b, 0), DWORD{WAIT_TIMEOUT})
        << "the creation arguments do not apply";
    HANDLE c = OpenEventW(EVENT_ALL_ACCESS, FALSE, u"olmo-test-event");
    ASSERT_NE(c, nullptr);
    SetEvent(c);
    EXPECT_EQ(WaitForSingleObject(a, 0), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(b, 0), WAIT_OBJECT_0) << "manual reset, as first created";

    SetLastError(0);
    EXPECT_EQ(CreateMutexA(nullptr, FALSE, "olmo-test-event"), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    EXPECT_EQ(OpenSemaphoreA(SEMAPHORE_ALL_ACCESS, FALSE, "olmo-test-event"), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});

    CloseHandle(a);
    CloseHandle(b);
    CloseHandle(c);
    SetLastError(0);
    EXPECT_EQ(OpenEventA(EVENT_ALL_ACCESS, FALSE, "olmo-test-event"), nullptr)
        << "the name goes with the last handle";
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
}

// ---- Mutexes ----

TEST(Mutexes, OwnershipIsRecursiveAndOnlyTheOwnerReleases)
{
    HANDLE m = CreateMutexA(nullptr, TRUE, nullptr);
    ASSERT_NE(m, nullptr);
    EXPECT_EQ(WaitForSingleObject(m, 0), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(m, 0), WAIT_OBJECT_0);
    Worker other([&]() -> DWORD {
        DWORD r = WaitForSingleObject(m, 0);
        SetLastError(0);
        BOOL released = ReleaseMutex(m);
        return r == WAIT_TIMEOUT && !released && GetLastError() == ERROR_NOT_OWNER;
    });
    EXPECT_EQ(other.join(), 1u);
    EXPECT_TRUE(ReleaseMutex(m));
    EXPECT_TRUE(ReleaseMutex(m));
    EXPECT_TRUE(ReleaseMutex(m));
    SetLastError(0);
    EXPECT_FALSE(ReleaseMutex(m)) << "three acquisitions, three releases";
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_OWNER});
    Worker taker([&]() -> DWORD {
        DWORD r = WaitForSingleObject(m, 1000);
        ReleaseMutex(m);
        return r;
    });
    EXPECT_EQ(taker.join(), WAIT_OBJECT_0);
    CloseHandle(m);
}

TEST(Mutexes, AMutexWhoseOwnerEndedIsAbandonedOnce)
{
    HANDLE m = CreateMutexA(nullptr, FALSE, nullptr);
    Worker owner([&]() -> DWORD { return WaitForSingleObject(m, 0); });
    EXPECT_EQ(owner.join(), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(m, 0), DWORD{WAIT_ABANDONED});
    EXPECT_TRUE(ReleaseMutex(m)) << "the abandoned mutex was acquired";
    EXPECT_EQ(WaitForSingleObject(m, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(ReleaseMutex(m));

    // A waiter blocked when the owner ends gets it, abandoned, at its index.
    // (Whether the owner ends before or during the wait, it is abandoned.)
    HANDLE go = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    HANDLE held = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    HANDLE idle = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    Worker holder([&]() -> DWORD {
        WaitForSingleObject(m, 0);
        SetEvent(held);
        WaitForSingleObject(go, INFINITE);
        return 0;
    });
    ASSERT_EQ(WaitForSingleObject(held, 5000), WAIT_OBJECT_0);
    SetEvent(go);
    HANDLE both[] = {idle, m};
    EXPECT_EQ(WaitForMultipleObjects(2, both, FALSE, 5000), DWORD{WAIT_ABANDONED_0 + 1});
    ReleaseMutex(m);
    CloseHandle(go);
    CloseHandle(held);
    CloseHandle(idle);
    CloseHandle(m);
}

// ---- Semaphores ----

TEST(Semaphores, CountStaysWithinTheMaximum)
{
    HANDLE s = CreateSemaphoreA(nullptr, 2, 3, nullptr);
    ASSERT_NE(s, nullptr);
    EXPECT_EQ(WaitForSingleObject(s, 0), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(s, 0), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(s, 0), DWORD{WAIT_TIMEOUT});
    LONG previous = -1;
    EXPECT_TRUE(ReleaseSemaphore(s, 2, &previous));
    EXPECT_EQ(previous, 0);
    SetLastError(0);
    previous = -1;
    EXPECT_FALSE(ReleaseSemaphore(s, 2, &previous)) << "2 + 2 passes the maximum of 3";
    EXPECT_EQ(GetLastError(), DWORD{ERROR_TOO_MANY_POSTS});
    EXPECT_EQ(previous, -1);
    EXPECT_TRUE(ReleaseSemaphore(s, 1, &previous));
    EXPECT_EQ(previous, 2);
    testing::internal::CaptureStderr();
    EXPECT_FALSE(ReleaseSemaphore(s, 0, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    testing::internal::GetCapturedStderr();
    CloseHandle(s);
}

TEST(Semaphores, CreationRefusesInconsistentCounts)
{
    struct Counts {
        LONG initial, maximum;
    };
    testing::internal::CaptureStderr();
    for (Counts c : {Counts{4, 3}, Counts{0, 0}, Counts{-1, 3}, Counts{1, -1}}) {
        SCOPED_TRACE(testing::Message() << c.initial << "/" << c.maximum);
        SetLastError(0);
        EXPECT_EQ(CreateSemaphoreA(nullptr, c.initial, c.maximum, nullptr), nullptr);
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    }
    testing::internal::GetCapturedStderr();
}

// ---- Multiple waits ----

TEST(MultipleWaits, WaitAnyReturnsTheLowestSignalledIndex)
{
    HANDLE e[3];
    for (HANDLE &h : e)
        h = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    SetEvent(e[2]);
    SetEvent(e[1]);
    EXPECT_EQ(WaitForMultipleObjects(3, e, FALSE, 0), WAIT_OBJECT_0 + 1);
    EXPECT_EQ(WaitForSingleObject(e[2], 0), WAIT_OBJECT_0) << "only the returned one was taken";
    EXPECT_EQ(WaitForMultipleObjects(3, e, FALSE, 0), DWORD{WAIT_TIMEOUT});
    HANDLE twice[] = {e[0], e[0]};
    SetEvent(e[0]);
    EXPECT_EQ(WaitForMultipleObjects(2, twice, FALSE, 0), WAIT_OBJECT_0) << "repeats are allowed";
    for (HANDLE h : e)
        CloseHandle(h);
}

TEST(MultipleWaits, WaitAllTakesEverythingAtOnceOrNothing)
{
    HANDLE ev = CreateEventA(nullptr, FALSE, TRUE, nullptr);
    HANDLE sem = CreateSemaphoreA(nullptr, 0, 5, nullptr);
    HANDLE both[] = {ev, sem};
    EXPECT_EQ(WaitForMultipleObjects(2, both, TRUE, 20), DWORD{WAIT_TIMEOUT});
    EXPECT_EQ(WaitForSingleObject(ev, 0), WAIT_OBJECT_0)
        << "a failed wait-all left the auto-reset event signalled";
    SetEvent(ev);
    Worker waiter([&]() -> DWORD { return WaitForMultipleObjects(2, both, TRUE, 5000); });
    ASSERT_TRUE(waitUntilBlocked(sem, 1));
    EXPECT_EQ(omWaitersOf(omHandleValue(ev)), 1) << "a wait for all waits on each object";
    ReleaseSemaphore(sem, 2, nullptr);
    EXPECT_EQ(waiter.join(), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(ev, 0), DWORD{WAIT_TIMEOUT}) << "consumed together";
    EXPECT_EQ(WaitForSingleObject(sem, 0), WAIT_OBJECT_0) << "one of two counts was taken";
    EXPECT_EQ(WaitForSingleObject(sem, 0), DWORD{WAIT_TIMEOUT});

    testing::internal::CaptureStderr();
    HANDLE twice[] = {sem, sem};
    SetLastError(0);
    EXPECT_EQ(WaitForMultipleObjects(2, twice, TRUE, 0), WAIT_FAILED);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    testing::internal::GetCapturedStderr();
    CloseHandle(ev);
    CloseHandle(sem);
}

TEST(MultipleWaits, ThreadsMutexesAndEventsMix)
{
    HANDLE go = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    HANDLE m = CreateMutexA(nullptr, FALSE, nullptr);
    Worker w([&]() -> DWORD {
        WaitForSingleObject(go, INFINITE);
        return 3;
    });
    HANDLE all[] = {w.handle(), m};
    EXPECT_EQ(WaitForMultipleObjects(2, all, TRUE, 20), DWORD{WAIT_TIMEOUT});
    SetEvent(go);
    EXPECT_EQ(WaitForMultipleObjects(2, all, TRUE, 5000), WAIT_OBJECT_0);
    EXPECT_TRUE(ReleaseMutex(m)) << "wait-all acquired the mutex";
    CloseHandle(go);
    CloseHandle(m);
}

TEST(MultipleWaits, TimeoutsAndTheLimits)
{
    HANDLE e = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    auto start = Clock::now();
    EXPECT_EQ(WaitForSingleObject(e, 30), DWORD{WAIT_TIMEOUT});
    EXPECT_GE(msSince(start), 25);
    start = Clock::now();
    HANDLE one[] = {e};
    EXPECT_EQ(WaitForMultipleObjectsEx(1, one, FALSE, 30, TRUE), DWORD{WAIT_TIMEOUT});
    EXPECT_GE(msSince(start), 25);

    std::vector<HANDLE> many(MAXIMUM_WAIT_OBJECTS + 1, e);
    SetEvent(e);
    EXPECT_EQ(WaitForMultipleObjects(MAXIMUM_WAIT_OBJECTS, many.data(), FALSE, 0), WAIT_OBJECT_0);
    omDiagResetCounts();
    testing::internal::CaptureStderr();
    for (DWORD count : {DWORD{0}, DWORD{MAXIMUM_WAIT_OBJECTS + 1}}) {
        SetLastError(0);
        EXPECT_EQ(WaitForMultipleObjects(count, many.data(), FALSE, 0), WAIT_FAILED);
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    }
    SetLastError(0);
    EXPECT_EQ(WaitForMultipleObjects(1, nullptr, FALSE, 0), WAIT_FAILED);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(omDiagCount(133), 1u);
    testing::internal::GetCapturedStderr();
    CloseHandle(e);
}

// ---- Handles ----

TEST(SyncHandles, BadHandlesFailEveryCallWithADiagnostic)
{
    HANDLE e = CreateEventA(nullptr, TRUE, TRUE, nullptr);
    HANDLE s = CreateSemaphoreA(nullptr, 1, 1, nullptr);
    HANDLE closed = CreateEventA(nullptr, TRUE, TRUE, nullptr);
    CloseHandle(closed);
    omDiagResetCounts();
    testing::internal::CaptureStderr();
    struct Call {
        const char *name;
        bool (*run)(HANDLE good, HANDLE wrongKind, HANDLE bad);
    };
    const Call calls[] = {
        {"SetEvent", [](HANDLE, HANDLE w, HANDLE) { return !SetEvent(w); }},
        {"ResetEvent", [](HANDLE, HANDLE, HANDLE b) { return !ResetEvent(b); }},
        {"PulseEvent", [](HANDLE, HANDLE, HANDLE) { return !PulseEvent(nullptr); }},
        {"ReleaseMutex", [](HANDLE g, HANDLE, HANDLE) { return !ReleaseMutex(g); }},
        {"ReleaseSemaphore",
         [](HANDLE g, HANDLE, HANDLE) { return !ReleaseSemaphore(g, 1, nullptr); }},
        {"WaitForSingleObject",
         [](HANDLE, HANDLE, HANDLE b) { return WaitForSingleObject(b, 0) == WAIT_FAILED; }},
        {"WaitForMultipleObjects",
         [](HANDLE g, HANDLE, HANDLE b) {
             HANDLE hs[] = {g, b};
             return WaitForMultipleObjects(2, hs, FALSE, 0) == WAIT_FAILED;
         }},
        {"CloseHandle", [](HANDLE, HANDLE, HANDLE b) { return !CloseHandle(b); }},
        {"CloseHandle(null)", [](HANDLE, HANDLE, HANDLE) { return !CloseHandle(nullptr); }},
        {"DuplicateHandle",
         [](HANDLE, HANDLE, HANDLE b) {
             HANDLE out;
             return !DuplicateHandle(GetCurrentProcess(), b, GetCurrentProcess(), &out, 0, FALSE,
                                     0);
         }},
    };
    for (const Call &c : calls) {
        SCOPED_TRACE(c.name);
        SetLastError(0);
        // ReleaseMutex is given an event; ReleaseSemaphore is given the event too.
        EXPECT_TRUE(c.run(e, s, closed));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    }
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(omDiagCount(300), std::size(calls));
    EXPECT_EQ(WaitForSingleObject(e, 0), WAIT_OBJECT_0) << "the good handle is untouched";
    EXPECT_EQ(omWaitersOf(omHandleValue(closed)), -1);
    EXPECT_EQ(omWaitersOf(omHandleValue(e)), 0);
    CloseHandle(e);
    CloseHandle(s);
}

TEST(SyncHandles, DuplicatesShareTheObjectAndKeepItAlive)
{
    HANDLE e = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    HANDLE copy = nullptr;
    ASSERT_TRUE(DuplicateHandle(GetCurrentProcess(), e, GetCurrentProcess(), &copy, 0, FALSE,
                                DUPLICATE_SAME_ACCESS));
    EXPECT_NE(copy, e);
    // A waiter on the original handle survives its closing.
    Worker waiter([&]() -> DWORD { return WaitForSingleObject(e, 5000); });
    ASSERT_TRUE(waitUntilBlocked(e, 1));
    EXPECT_TRUE(CloseHandle(e));
    SetEvent(copy);
    EXPECT_EQ(waiter.join(), WAIT_OBJECT_0);

    HANDLE moved = nullptr;
    ASSERT_TRUE(DuplicateHandle(GetCurrentProcess(), copy, GetCurrentProcess(), &moved, 0, FALSE,
                                DUPLICATE_CLOSE_SOURCE));
    testing::internal::CaptureStderr();
    EXPECT_FALSE(SetEvent(copy)) << "the source was closed";
    testing::internal::GetCapturedStderr();
    EXPECT_TRUE(SetEvent(moved));
    EXPECT_EQ(WaitForSingleObject(moved, 0), WAIT_OBJECT_0);
    DWORD flags = 99;
    EXPECT_TRUE(GetHandleInformation(moved, &flags));
    EXPECT_EQ(flags, 0u);
    CloseHandle(moved);
}

int g_closedIndex = 0;
void *g_closedRecord = nullptr;

TEST(SyncHandles, CloseHandleDispatchesOtherKindsToTheirHandlers)
{
    constexpr uint32_t kKind = 60;
    EXPECT_EQ(omRegisterCloseHandler(OM_KIND_EVENT, nullptr), 0);
    EXPECT_EQ(omRegisterCloseHandler(64, nullptr), 0);
    ASSERT_EQ(omRegisterCloseHandler(kKind,
                                     [](uint32_t index, void *record) {
                                         g_closedIndex = static_cast<int>(index);
                                         g_closedRecord = record;
                                         return omFreeHandle(index) != 0;
                                     }),
              1);
    int object = 0;
    uint32_t index = omAllocHandle(kKind, &object);
    HANDLE h = reinterpret_cast<HANDLE>(uintptr_t{omHandleFromIndex(index)});
    EXPECT_TRUE(CloseHandle(h));
    EXPECT_EQ(g_closedIndex, static_cast<int>(index));
    EXPECT_EQ(g_closedRecord, &object);
    testing::internal::CaptureStderr();
    EXPECT_FALSE(CloseHandle(h)) << "the handler's slot is free now";
    testing::internal::GetCapturedStderr();
    omRegisterCloseHandler(kKind, nullptr);
}

// ---- Critical sections, SRW locks, condition variables ----

TEST(CriticalSections, RecursiveOwnershipAndTryEnter)
{
    static_assert(sizeof(CRITICAL_SECTION) == 40);
    CRITICAL_SECTION cs;
    InitializeCriticalSection(&cs);
    EnterCriticalSection(&cs);
    EXPECT_TRUE(TryEnterCriticalSection(&cs));
    EXPECT_EQ(cs.OwningThread, reinterpret_cast<HANDLE>(uintptr_t{GetCurrentThreadId()}));
    EXPECT_EQ(cs.RecursionCount, 2);
    std::thread([&] { EXPECT_FALSE(TryEnterCriticalSection(&cs)); }).join();

    omDiagResetCounts();
    testing::internal::CaptureStderr();
    std::thread([&] { LeaveCriticalSection(&cs); }).join();  // not the owner: refused
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(omDiagCount(303), 1u);
    EXPECT_EQ(cs.RecursionCount, 2);

    LeaveCriticalSection(&cs);
    LeaveCriticalSection(&cs);
    std::thread([&] {
        EXPECT_TRUE(TryEnterCriticalSection(&cs));
        LeaveCriticalSection(&cs);
    }).join();
    DeleteCriticalSection(&cs);
    EXPECT_TRUE(InitializeCriticalSectionAndSpinCount(&cs, 4000));
    DeleteCriticalSection(&cs);
}

TEST(SlimLocks, SharedHoldersExcludeWritersAndTheReverse)
{
    SRWLOCK lock = SRWLOCK_INIT;
    EXPECT_TRUE(TryAcquireSRWLockShared(&lock));
    EXPECT_TRUE(TryAcquireSRWLockShared(&lock));
    EXPECT_FALSE(TryAcquireSRWLockExclusive(&lock));
    ReleaseSRWLockShared(&lock);
    EXPECT_FALSE(TryAcquireSRWLockExclusive(&lock));
    ReleaseSRWLockShared(&lock);
    EXPECT_TRUE(TryAcquireSRWLockExclusive(&lock));
    EXPECT_FALSE(TryAcquireSRWLockShared(&lock));
    EXPECT_FALSE(TryAcquireSRWLockExclusive(&lock));
    ReleaseSRWLockExclusive(&lock);
    EXPECT_EQ(lock.Ptr, nullptr) << "a free lock is all zeros again";
}

TEST(ConditionVariables, TimeoutsReportErrorTimeout)
{
    CONDITION_VARIABLE cv = CONDITION_VARIABLE_INIT;
    CRITICAL_SECTION cs;
    InitializeCriticalSection(&cs);
    EnterCriticalSection(&cs);
    EnterCriticalSection(&cs);
    auto start = Clock::now();
    SetLastError(0);
    EXPECT_FALSE(SleepConditionVariableCS(&cv, &cs, 30));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_TIMEOUT});
    EXPECT_GE(msSince(start), 25);
    EXPECT_EQ(cs.RecursionCount, 2) << "entered again to the same depth";
    LeaveCriticalSection(&cs);
    LeaveCriticalSection(&cs);
    DeleteCriticalSection(&cs);

    SRWLOCK lock = SRWLOCK_INIT;
    AcquireSRWLockShared(&lock);
    EXPECT_FALSE(SleepConditionVariableSRW(&cv, &lock, 10, CONDITION_VARIABLE_LOCKMODE_SHARED));
    EXPECT_FALSE(TryAcquireSRWLockExclusive(&lock)) << "shared again after the sleep";
    ReleaseSRWLockShared(&lock);
}

// ---- Under ThreadSanitizer ----

template <class F> void runEight(F body)
{
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t)
        threads.emplace_back(body, t);
    for (auto &t : threads)
        t.join();
}

TEST(EventThreads, EightThreadsCreateSignalWaitAndClose)
{
    std::atomic<int> failures{0};
    runEight([&](int t) {
        std::string name = "olmo-shared-" + std::to_string(t % 2);
        for (int i = 0; i < 150; ++i) {
            HANDLE e = CreateEventA(nullptr, i % 2, FALSE, nullptr);
            HANDLE named = CreateEventA(nullptr, TRUE, FALSE, name.c_str());
            if (!e || !named || !SetEvent(e) || WaitForSingleObject(e, 0) != WAIT_OBJECT_0)
                ++failures;
            SetEvent(named);
            HANDLE hs[] = {named, e};
            if (WaitForMultipleObjects(2, hs, FALSE, 1000) == WAIT_FAILED)
                ++failures;
            if (!CloseHandle(e) || !CloseHandle(named))
                ++failures;
        }
    });
    EXPECT_EQ(failures.load(), 0);
}

TEST(EventThreads, PingPongPairsNeverLoseASignal)
{
    std::atomic<int> failures{0};
    struct Pair {
        HANDLE ping, pong;
    } pairs[4];
    for (Pair &p : pairs) {
        p.ping = CreateEventA(nullptr, FALSE, FALSE, nullptr);
        p.pong = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    }
    runEight([&](int t) {
        Pair &p = pairs[t / 2];
        bool first = t % 2 == 0;
        for (int i = 0; i < 300; ++i) {
            if (first) {
                SetEvent(p.ping);
                if (WaitForSingleObject(p.pong, 5000) != WAIT_OBJECT_0)
                    ++failures;
            } else {
                if (WaitForSingleObject(p.ping, 5000) != WAIT_OBJECT_0)
                    ++failures;
                SetEvent(p.pong);
            }
        }
    });
    EXPECT_EQ(failures.load(), 0);
    for (Pair &p : pairs) {
        CloseHandle(p.ping);
        CloseHandle(p.pong);
    }
}

TEST(CriticalSectionThreads, EightThreadsShareOneCounterAndMakeTheirOwn)
{
    CRITICAL_SECTION shared;
    InitializeCriticalSectionAndSpinCount(&shared, 100);
    long counter = 0;  // plain: only the critical section orders it
    runEight([&](int) {
        for (int i = 0; i < 2000; ++i) {
            EnterCriticalSection(&shared);
            EnterCriticalSection(&shared);
            ++counter;
            LeaveCriticalSection(&shared);
            LeaveCriticalSection(&shared);
            if (i % 100 == 0) {
                CRITICAL_SECTION own;
                InitializeCriticalSection(&own);
                EnterCriticalSection(&own);
                LeaveCriticalSection(&own);
                DeleteCriticalSection(&own);
            }
        }
    });
    EXPECT_EQ(counter, 8 * 2000);
    DeleteCriticalSection(&shared);
}

TEST(HandleThreads, EightThreadsDuplicateWaitAndCloseKernelObjects)
{
    std::atomic<int> failures{0};
    HANDLE mutex = CreateMutexA(nullptr, FALSE, nullptr);
    HANDLE sem = CreateSemaphoreA(nullptr, 2, 2, nullptr);
    long guarded = 0;  // under the mutex
    runEight([&](int t) {
        for (int i = 0; i < 150; ++i) {
            HANDLE m = nullptr;
            if (!DuplicateHandle(GetCurrentProcess(), mutex, GetCurrentProcess(), &m, 0, FALSE,
                                 DUPLICATE_SAME_ACCESS)) {
                ++failures;
                continue;
            }
            HANDLE both[] = {m, sem};
            DWORD r = WaitForMultipleObjects(2, both, TRUE, 5000);
            if (r != WAIT_OBJECT_0) {
                ++failures;
            } else {
                ++guarded;
                ReleaseSemaphore(sem, 1, nullptr);
                ReleaseMutex(m);
            }
            HANDLE own = CreateSemaphoreA(nullptr, 0, 1, nullptr);
            ReleaseSemaphore(own, 1, nullptr);
            if (WaitForSingleObject(own, 0) != WAIT_OBJECT_0)
                ++failures;
            if (!CloseHandle(own) || !CloseHandle(m))
                ++failures;
            if (t == 0 && i % 50 == 0)
                std::thread([] { CloseHandle(GetCurrentThread()); }).join();
        }
    });
    EXPECT_EQ(failures.load(), 0);
    EXPECT_EQ(guarded, 8 * 150);
    CloseHandle(mutex);
    CloseHandle(sem);
}

TEST(SlimLockThreads, ReadersAndWritersKeepTheInvariant)
{
    SRWLOCK lock = SRWLOCK_INIT;
    long a = 0, b = 0;  // always equal when the lock is free
    std::atomic<int> broken{0};
    runEight([&](int t) {
        for (int i = 0; i < 3000; ++i) {
            if (t < 3) {
                AcquireSRWLockExclusive(&lock);
                ++a;
                ++b;
                ReleaseSRWLockExclusive(&lock);
            } else {
                AcquireSRWLockShared(&lock);
                if (a != b)
                    ++broken;
                ReleaseSRWLockShared(&lock);
            }
        }
    });
    EXPECT_EQ(broken.load(), 0);
    EXPECT_EQ(a, 3 * 3000);
}

TEST(ConditionVariableThreads, ProducersAndConsumersPassEveryItem)
{
    CRITICAL_SECTION cs;
    InitializeCriticalSection(&cs);
    CONDITION_VARIABLE notEmpty = CONDITION_VARIABLE_INIT;
    std::vector<int> queue;
    long consumed = 0, sum = 0;
    constexpr int kPerProducer = 500;
    runEight([&](int t) {
        if (t < 4) {
            for (int i = 1; i <= kPerProducer; ++i) {
                EnterCriticalSection(&cs);
                queue.push_back(i);
                LeaveCriticalSection(&cs);
                WakeConditionVariable(&notEmpty);
            }
            return;
        }
        for (;;) {
            EnterCriticalSection(&cs);
            while (queue.empty() && consumed < 4 * kPerProducer)
                SleepConditionVariableCS(&notEmpty, &cs, 100);
            if (queue.empty()) {
                LeaveCriticalSection(&cs);
                WakeAllConditionVariable(&notEmpty);
                return;
            }
            sum += queue.back();
            queue.pop_back();
            ++consumed;
            LeaveCriticalSection(&cs);
        }
    });
    EXPECT_EQ(consumed, 4 * kPerProducer);
    EXPECT_EQ(sum, 4L * kPerProducer * (kPerProducer + 1) / 2);
    DeleteCriticalSection(&cs);
}

}  // namespace
