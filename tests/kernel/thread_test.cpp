// Thread records and the thread functions: identities, CreateThread with
// exit codes and CREATE_SUSPENDED, handle reference counts, the per-thread
// hooks, the wait for messages, thread-local storage and sleeping.
#include "kernel/omdiag.h"
#include "kernel/omhandles.h"
#include "kernel/omthread.h"

#include <winbase.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

// The binary's main thread registers before any test can start another.
const bool g_mainRegistered = omCurrentThreadRecord() != nullptr;

long long msSince(Clock::time_point start)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

uint32_t slotIndex(HANDLE h)
{
    return omHandleIndex(omHandleValue(h));
}

// Blocks until the slot of a released record is freed (the exit path runs
// just after the routine returns), at most two seconds.
bool waitForSlotToLeave(uint32_t index, uint32_t kind)
{
    auto start = Clock::now();
    while (omHandlesTable[index].kind.load() == kind && msSince(start) < 2000)
        Sleep(1);
    return omHandlesTable[index].kind.load() != kind;
}

struct Gate {
    HANDLE event = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    ~Gate() { CloseHandle(event); }
};

TEST(ThreadIdentity, MainThreadIsTheFirstRegisteredThread)
{
    ASSERT_TRUE(g_mainRegistered);
    OmThreadRecord *main = omCurrentThreadRecord();
    EXPECT_TRUE(main->isMain);
    EXPECT_FALSE(main->createdByUs);
    EXPECT_EQ(_omThreadMainThreadId(), GetCurrentThreadId());
    EXPECT_EQ(_omThreadMainThread(), omHandleValue(GetCurrentThread()));
    EXPECT_EQ(main->threadId, static_cast<uint32_t>(gettid()));

    struct Seen {
        DWORD id;
        uint64_t handle;
        uint32_t mainId;
        bool isMain;
    } seen{};
    HANDLE t = CreateThread(
        nullptr, 0,
        [](LPVOID p) -> DWORD {
            auto *s = static_cast<Seen *>(p);
            s->id = GetCurrentThreadId();
            s->handle = omHandleValue(GetCurrentThread());
            s->mainId = _omThreadMainThreadId();
            s->isMain = omCurrentThreadRecord()->isMain;
            return 0;
        },
        &seen, 0, nullptr);
    ASSERT_NE(t, nullptr);
    ASSERT_EQ(WaitForSingleObject(t, 5000), WAIT_OBJECT_0);
    EXPECT_EQ(seen.mainId, GetCurrentThreadId());
    EXPECT_FALSE(seen.isMain);
    EXPECT_NE(seen.id, GetCurrentThreadId());
    EXPECT_EQ(seen.handle, omHandleValue(t)) << "GetCurrentThread gives the creator's handle value";
    CloseHandle(t);
}

TEST(ThreadIdentity, CurrentThreadHandleIsARealRawSlot)
{
    HANDLE self = GetCurrentThread();
    uint64_t value = omHandleValue(self);
    EXPECT_NE(self, reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-2)));
    EXPECT_LT(value, uint64_t{kOmMaxHandles}) << "a raw index, without the base";
    EXPECT_EQ(omHandlesTable[value].kind.load(), uint32_t{OM_KIND_THREAD});
    EXPECT_EQ(omThreadRecordFromHandle(value), omCurrentThreadRecord());
    EXPECT_EQ(omThreadRecordFromHandle(omHandleFromIndex(static_cast<uint32_t>(value))),
              omCurrentThreadRecord());
    EXPECT_EQ(omThreadRecordFromId(GetCurrentThreadId()), omCurrentThreadRecord());
    EXPECT_EQ(omThreadRecordFromId(0), nullptr);
    EXPECT_EQ(WaitForSingleObject(self, 0), DWORD{WAIT_TIMEOUT})
        << "a running thread is unsignalled";
    DWORD code = 0;
    EXPECT_TRUE(GetExitCodeThread(self, &code));
    EXPECT_EQ(code, DWORD{STILL_ACTIVE});
}

struct ExitCase {
    const char *name;
    bool viaExitThread;
    DWORD code;
};

class ThreadExitCodes : public testing::TestWithParam<ExitCase>
{
};

TEST_P(ThreadExitCodes, StillActiveUntilTheRoutineEndsThenItsCode)
{
    struct Arg {
        HANDLE go;
        ExitCase c;
        DWORD seenId;
    } arg{CreateEventA(nullptr, TRUE, FALSE, nullptr), GetParam(), 0};
    DWORD id = 0;
    HANDLE t = CreateThread(
        nullptr, 64 * 1024,
        [](LPVOID p) -> DWORD {
            auto *a = static_cast<Arg *>(p);
            a->seenId = GetCurrentThreadId();
            WaitForSingleObject(a->go, INFINITE);
            if (a->c.viaExitThread)
                ExitThread(a->c.code);
            return a->c.code;
        },
        &arg, 0, &id);
    ASSERT_NE(t, nullptr);
    DWORD code = 0;
    ASSERT_TRUE(GetExitCodeThread(t, &code));
    EXPECT_EQ(code, DWORD{STILL_ACTIVE});
    EXPECT_EQ(WaitForSingleObject(t, 0), DWORD{WAIT_TIMEOUT});
    SetEvent(arg.go);
    ASSERT_EQ(WaitForSingleObject(t, 5000), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(t, 0), WAIT_OBJECT_0) << "an ended thread stays signalled";
    ASSERT_TRUE(GetExitCodeThread(t, &code));
    EXPECT_EQ(code, GetParam().code);
    EXPECT_EQ(id, arg.seenId) << "lpThreadId is the id the thread itself sees";
    EXPECT_EQ(omThreadRecordFromId(id), nullptr) << "an ended thread leaves the id map";
    EXPECT_TRUE(CloseHandle(t));
    CloseHandle(arg.go);
}

INSTANTIATE_TEST_SUITE_P(Routines, ThreadExitCodes,
                         testing::Values(ExitCase{"Returns", false, 42},
                                         ExitCase{"ReturnsZero", false, 0},
                                         ExitCase{"ExitThread", true, 7},
                                         ExitCase{"ExitThreadLarge", true, 0xC0000005u}),
                         [](const testing::TestParamInfo<ExitCase> &i) { return i.param.name; });

TEST(ThreadCreation, CreateSuspendedHoldsTheStartUntilResumed)
{
    static std::atomic<bool> started;
    started = false;
    HANDLE t = CreateThread(
        nullptr, 0,
        [](LPVOID) -> DWORD {
            started = true;
            return 5;
        },
        nullptr, CREATE_SUSPENDED, nullptr);
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(WaitForSingleObject(t, 50), DWORD{WAIT_TIMEOUT});
    EXPECT_FALSE(started);
    EXPECT_EQ(SuspendThread(t), 1u) << "the count rises above the creation's 1";
    EXPECT_EQ(ResumeThread(t), 2u);
    EXPECT_EQ(WaitForSingleObject(t, 30), DWORD{WAIT_TIMEOUT});
    EXPECT_FALSE(started);
    EXPECT_EQ(ResumeThread(t), 1u);
    ASSERT_EQ(WaitForSingleObject(t, 5000), WAIT_OBJECT_0);
    EXPECT_TRUE(started);
    EXPECT_EQ(ResumeThread(t), 0u) << "resuming a running thread changes nothing";
    CloseHandle(t);
}

TEST(ThreadCreation, SelfSuspensionHoldsUntilResumed)
{
    static std::atomic<bool> passed;
    passed = false;
    HANDLE t = CreateThread(
        nullptr, 0,
        [](LPVOID) -> DWORD {
            SuspendThread(GetCurrentThread());
            passed = true;
            return 0;
        },
        nullptr, 0, nullptr);
    ASSERT_NE(t, nullptr);
    auto start = Clock::now();
    while (ResumeThread(t) == 0 && msSince(start) < 5000)
        Sleep(1);
    ASSERT_EQ(WaitForSingleObject(t, 5000), WAIT_OBJECT_0);
    EXPECT_TRUE(passed);
    CloseHandle(t);
}

TEST(ThreadHandles, ClosingTheHandleOfARunningThreadLetsItFinish)
{
    Gate gate;
    static std::atomic<bool> finished;
    finished = false;
    HANDLE t = CreateThread(
        nullptr, 0,
        [](LPVOID p) -> DWORD {
            WaitForSingleObject(static_cast<HANDLE>(p), INFINITE);
            finished = true;
            return 0;
        },
        gate.event, 0, nullptr);
    ASSERT_NE(t, nullptr);
    uint32_t index = slotIndex(t);
    EXPECT_TRUE(CloseHandle(t));
    EXPECT_EQ(omHandlesTable[index].kind.load(), uint32_t{OM_KIND_THREAD})
        << "the running thread keeps its record";
    SetEvent(gate.event);
    EXPECT_TRUE(waitForSlotToLeave(index, OM_KIND_THREAD)) << "freed once the thread ended";
    EXPECT_TRUE(finished);
}

TEST(ThreadHandles, FinishedThreadLivesWhileAHandleIsOpen)
{
    HANDLE t = CreateThread(
        nullptr, 0, [](LPVOID) -> DWORD { return 9; }, nullptr, 0, nullptr);
    ASSERT_NE(t, nullptr);
    ASSERT_EQ(WaitForSingleObject(t, 5000), WAIT_OBJECT_0);
    HANDLE copy = nullptr;
    ASSERT_TRUE(DuplicateHandle(GetCurrentProcess(), t, GetCurrentProcess(), &copy, 0, FALSE,
                                DUPLICATE_SAME_ACCESS));
    EXPECT_EQ(copy, t) << "a thread has one handle value; copies are references";
    uint32_t index = slotIndex(t);
    EXPECT_TRUE(CloseHandle(t));
    DWORD code = 0;
    EXPECT_TRUE(GetExitCodeThread(copy, &code));
    EXPECT_EQ(code, 9u);
    EXPECT_EQ(WaitForSingleObject(copy, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(CloseHandle(copy));
    EXPECT_NE(omHandlesTable[index].kind.load(), uint32_t{OM_KIND_THREAD});

    omDiagResetCounts();
    testing::internal::CaptureStderr();
    SetLastError(0);
    EXPECT_FALSE(CloseHandle(copy)) << "the last reference is gone";
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    EXPECT_FALSE(GetExitCodeThread(copy, &code));
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(omDiagCount(300), 2u);
}

TEST(ThreadHandles, AdoptedThreadRecordGoesWithTheThread)
{
    uint32_t index = 0;
    bool createdByUs = true;
    std::thread([&] {
        index = slotIndex(GetCurrentThread());
        createdByUs = omCurrentThreadRecord()->createdByUs;
        EXPECT_TRUE(CloseHandle(GetCurrentThread())) << "closing the own handle is harmless";
        EXPECT_EQ(omHandlesTable[index].kind.load(), uint32_t{OM_KIND_THREAD});
    }).join();
    EXPECT_FALSE(createdByUs);
    EXPECT_NE(omHandlesTable[index].kind.load(), uint32_t{OM_KIND_THREAD})
        << "an adopted thread holds the only reference while it runs";
}

TEST(ThreadHandles, BadHandlesAndNullPointersFailWithDiagnostics)
{
    omDiagResetCounts();
    testing::internal::CaptureStderr();
    DWORD code;
    HANDLE bogus = reinterpret_cast<HANDLE>(uintptr_t{0xFFF0});
    SetLastError(0);
    EXPECT_FALSE(GetExitCodeThread(bogus, &code));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    EXPECT_EQ(ResumeThread(bogus), DWORD(-1));
    EXPECT_EQ(SuspendThread(nullptr), DWORD(-1));
    EXPECT_EQ(GetThreadPriority(bogus), THREAD_PRIORITY_ERROR_RETURN);
    EXPECT_EQ(omDiagCount(300), 4u);

    SetLastError(0);
    EXPECT_FALSE(GetExitCodeThread(GetCurrentThread(), nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(CreateThread(nullptr, 0, nullptr, nullptr, 0, nullptr), nullptr);
    EXPECT_EQ(omDiagCount(133), 2u);
    testing::internal::GetCapturedStderr();
}

TEST(ThreadHandles, PriorityIsRemembered)
{
    HANDLE self = GetCurrentThread();
    EXPECT_EQ(GetThreadPriority(self), THREAD_PRIORITY_NORMAL);
    EXPECT_TRUE(SetThreadPriority(self, THREAD_PRIORITY_ABOVE_NORMAL));
    EXPECT_EQ(GetThreadPriority(self), THREAD_PRIORITY_ABOVE_NORMAL);
    testing::internal::CaptureStderr();
    EXPECT_FALSE(SetThreadPriority(self, 5));
    testing::internal::GetCapturedStderr();
    EXPECT_TRUE(SetThreadPriority(self, THREAD_PRIORITY_NORMAL));
}

// ---- Hooks ----

std::mutex g_hookLock;
std::vector<uint32_t> g_registered, g_exited;
bool g_hookSawRecordById = false;

void onRegister(OmThreadRecord *t)
{
    // No lock of the kernel layer is held: the hook may call into it.
    bool found = omThreadRecordFromId(t->threadId) == t;
    HANDLE e = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    CloseHandle(e);
    std::lock_guard<std::mutex> g(g_hookLock);
    g_hookSawRecordById = found;
    g_registered.push_back(t->threadId);
}

void onExit(OmThreadRecord *t)
{
    DWORD code;
    GetExitCodeThread(reinterpret_cast<HANDLE>(uintptr_t{t->handle}), &code);
    std::lock_guard<std::mutex> g(g_hookLock);
    g_exited.push_back(t->threadId);
}

TEST(ThreadHooks, RunOnRegistrationAndExitOfEveryKindOfThread)
{
    {
        std::lock_guard<std::mutex> g(g_hookLock);
        g_registered.clear();
        g_exited.clear();
    }
    omSetThreadHooks(onRegister, onExit);
    std::vector<DWORD> ids;
    for (bool viaExit : {false, true}) {
        DWORD id;
        HANDLE t = CreateThread(
            nullptr, 0,
            [](LPVOID p) -> DWORD {
                if (p)
                    ExitThread(3);
                return 0;
            },
            viaExit ? reinterpret_cast<LPVOID>(1) : nullptr, 0, &id);
        ASSERT_EQ(WaitForSingleObject(t, 5000), WAIT_OBJECT_0);
        CloseHandle(t);
        ids.push_back(id);
    }
    DWORD adopted = 0;
    std::thread([&] {
        omCurrentThreadRecord();
        adopted = GetCurrentThreadId();
    }).join();
    ids.push_back(adopted);
    std::thread([] { GetCurrentThreadId(); }).join();  // never registers: no hooks
    omSetThreadHooks(nullptr, nullptr);

    std::lock_guard<std::mutex> g(g_hookLock);
    // The main thread registered before the hooks existed: they run for it
    // at its next call (here, CreateThread's), once.
    DWORD self = GetCurrentThreadId();
    EXPECT_LE(std::count(g_registered.begin(), g_registered.end(), self), 1);
    g_registered.erase(std::remove(g_registered.begin(), g_registered.end(), self),
                       g_registered.end());
    EXPECT_EQ(g_registered.size(), 3u);
    EXPECT_EQ(g_exited.size(), 3u);
    for (DWORD id : ids) {
        SCOPED_TRACE(id);
        EXPECT_EQ(std::count(g_registered.begin(), g_registered.end(), id), 1);
        EXPECT_EQ(std::count(g_exited.begin(), g_exited.end(), id), 1);
    }
    EXPECT_TRUE(g_hookSawRecordById);
}

// ---- Waiting for messages ----

TEST(QueueWait, SignalBeforeTheWaitEndsTheNextWaitAtOnce)
{
    std::atomic<DWORD> id{0};
    Gate signalled;
    int result = -1;
    long long elapsed = -1;
    std::thread waiter([&] {
        omCurrentThreadRecord();
        id = GetCurrentThreadId();
        WaitForSingleObject(signalled.event, INFINITE);
        auto start = Clock::now();
        result = omWaitQueueMsg(5000);
        elapsed = msSince(start);
        EXPECT_EQ(omWaitQueueMsg(0), 0) << "one signal ends one wait";
    });
    while (id == 0)
        Sleep(1);
    omWaitQueueMsgSignal(id, 0x0400);
    SetEvent(signalled.event);
    waiter.join();
    EXPECT_EQ(result, 1);
    EXPECT_LT(elapsed, 1000);
}

TEST(QueueWait, SignalDuringTheWaitWakesItAndTimeoutsReturnZero)
{
    std::atomic<DWORD> id{0};
    int result = -1;
    long long elapsed = -1;
    std::thread waiter([&] {
        omCurrentThreadRecord();
        id = GetCurrentThreadId();
        auto start = Clock::now();
        result = omWaitQueueMsg(INFINITE);
        elapsed = msSince(start);
    });
    while (id == 0)
        Sleep(1);
    Sleep(20);
    omWaitQueueMsgSignal(id, 0x0400);
    waiter.join();
    EXPECT_EQ(result, 1);
    EXPECT_LT(elapsed, 3000);

    auto start = Clock::now();
    EXPECT_EQ(omWaitQueueMsg(30), 0);
    EXPECT_GE(msSince(start), 25);
    omWaitQueueMsgSignal(0xFFFFFFF0u, 0);  // no such thread: ignored
}

// ---- Thread-local storage ----

TEST(ThreadLocalStorage, ValuesArePerThreadAndStartAtZero)
{
    DWORD a = TlsAlloc(), b = TlsAlloc();
    ASSERT_NE(a, TLS_OUT_OF_INDEXES);
    ASSERT_NE(b, TLS_OUT_OF_INDEXES);
    EXPECT_NE(a, b);
    EXPECT_TRUE(TlsSetValue(a, reinterpret_cast<void *>(0x1234)));
    SetLastError(99);
    EXPECT_EQ(TlsGetValue(a), reinterpret_cast<void *>(0x1234));
    EXPECT_EQ(GetLastError(), 0u) << "success clears the last error";
    std::thread([&] {
        SetLastError(99);
        EXPECT_EQ(TlsGetValue(a), nullptr);
        EXPECT_EQ(GetLastError(), 0u);
        TlsSetValue(a, reinterpret_cast<void *>(0x5678));
        EXPECT_EQ(TlsGetValue(a), reinterpret_cast<void *>(0x5678));
    }).join();
    EXPECT_EQ(TlsGetValue(a), reinterpret_cast<void *>(0x1234));

    // A freed and reallocated index reads as zero again.
    EXPECT_TRUE(TlsFree(a));
    DWORD again = TlsAlloc();
    EXPECT_EQ(again, a) << "the lowest free index comes back";
    EXPECT_EQ(TlsGetValue(again), nullptr);
    TlsFree(again);
    TlsFree(b);
}

TEST(ThreadLocalStorage, ExhaustionAndBadIndexes)
{
    std::vector<DWORD> taken;
    for (;;) {
        DWORD i = TlsAlloc();
        if (i == TLS_OUT_OF_INDEXES)
            break;
        taken.push_back(i);
        ASSERT_LT(taken.size(), 5000u);
    }
    EXPECT_GE(taken.size(), 64u);
    for (DWORD i : taken)
        EXPECT_TRUE(TlsFree(i));

    testing::internal::CaptureStderr();
    SetLastError(0);
    EXPECT_FALSE(TlsFree(taken.front())) << "freed twice";
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    SetLastError(0);
    EXPECT_EQ(TlsGetValue(100000), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_FALSE(TlsSetValue(taken.front(), nullptr));
    testing::internal::GetCapturedStderr();
}

// ---- Sleeping, switches and the process ----

TEST(Sleeping, SleepsAtLeastTheTimeAsked)
{
    auto start = Clock::now();
    Sleep(20);
    EXPECT_GE(msSince(start), 19);
    start = Clock::now();
    EXPECT_EQ(SleepEx(10, TRUE), 0u);
    _om_Sleep(10);
    EXPECT_GE(msSince(start), 19);
    Sleep(0);
    EXPECT_TRUE(SwitchToThread());
}

TEST(Process, CurrentProcessPseudoHandleAndSwitches)
{
    EXPECT_EQ(GetCurrentProcess(), reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1)));
    EXPECT_EQ(GetCurrentProcessId(), static_cast<DWORD>(getpid()));
    DWORD code = 0;
    EXPECT_TRUE(GetExitCodeProcess(GetCurrentProcess(), &code));
    EXPECT_EQ(code, DWORD{STILL_ACTIVE});
    EXPECT_EQ(WaitForSingleObject(GetCurrentProcess(), 0), DWORD{WAIT_TIMEOUT});
    EXPECT_TRUE(CloseHandle(GetCurrentProcess()));
    EXPECT_EQ(OpenProcess(PROCESS_ALL_ACCESS, FALSE, GetCurrentProcessId()), GetCurrentProcess());
    EXPECT_EQ(OpenProcess(PROCESS_ALL_ACCESS, FALSE, 0), nullptr);
    EXPECT_EQ(GetPriorityClass(GetCurrentProcess()), DWORD{NORMAL_PRIORITY_CLASS});

    EXPECT_EQ(omIsUserInterfaceThreadSupported(), 1) << "on by default";
    omSetUserInterfaceThreadSupported(0);
    EXPECT_EQ(omIsUserInterfaceThreadSupported(), 0);
    omSetUserInterfaceThreadSupported(1);
}

// ---- Under ThreadSanitizer ----

TEST(ThreadLifecycleThreads, EightThreadsCreateWaitAndCloseThreads)
{
    std::vector<std::thread> workers;
    std::atomic<int> failures{0};
    for (int w = 0; w < 8; ++w) {
        workers.emplace_back([&, w] {
            for (int i = 0; i < 12; ++i) {
                DWORD code = static_cast<DWORD>(w * 100 + i);
                DWORD id = 0;
                HANDLE t = CreateThread(
                    nullptr, 0,
                    [](LPVOID p) -> DWORD {
                        omWaitQueueMsg(0);
                        return static_cast<DWORD>(reinterpret_cast<uintptr_t>(p));
                    },
                    reinterpret_cast<LPVOID>(uintptr_t{code}), i % 3 == 0 ? CREATE_SUSPENDED : 0,
                    &id);
                if (!t) {
                    ++failures;
                    continue;
                }
                omWaitQueueMsgSignal(id, 0);
                if (i % 3 == 0)
                    ResumeThread(t);
                DWORD got = 0;
                if (WaitForSingleObject(t, 10000) != WAIT_OBJECT_0 || !GetExitCodeThread(t, &got) ||
                    got != code)
                    ++failures;
                if (!CloseHandle(t))
                    ++failures;
                // Adopted threads come and go beside them.
                std::thread([] { GetCurrentThread(); }).join();
            }
        });
    }
    for (auto &t : workers)
        t.join();
    EXPECT_EQ(failures.load(), 0);
}

TEST(ThreadLocalStorageThreads, ConcurrentAllocGetSetFree)
{
    std::vector<std::thread> workers;
    std::atomic<int> failures{0};
    for (int w = 0; w < 8; ++w) {
        workers.emplace_back([&, w] {
            for (int i = 0; i < 200; ++i) {
                DWORD index = TlsAlloc();
                if (index == TLS_OUT_OF_INDEXES) {
                    ++failures;
                    continue;
                }
                void *value = reinterpret_cast<void *>(uintptr_t(w * 1000 + i + 1));
                if (TlsGetValue(index) != nullptr || !TlsSetValue(index, value) ||
                    TlsGetValue(index) != value)
                    ++failures;
                TlsFree(index);
            }
        });
    }
    for (auto &t : workers)
        t.join();
    EXPECT_EQ(failures.load(), 0);
}

}  // namespace
