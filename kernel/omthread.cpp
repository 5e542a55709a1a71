// Thread records (kind 28), CreateThread and the thread functions of
// kernel32, the per-thread wait for messages, thread-local storage, Sleep
// and the current-process functions.  Waits on thread handles go through
// the shared wait machinery of omwait.cpp (omwaitable.h).
#include "omwaitable.h"

#include "kernel/omdiag.h"
#include "kernel/omhandles.h"
#include "kernel/omthread.h"

#include <winbase.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdlib>
#include <ctime>
#include <new>
#include <pthread.h>
#include <sched.h>
#include <unistd.h>
#include <unordered_map>

namespace om::kernel {
namespace {

using Hook = void (*)(OmThreadRecord *);

std::atomic<Hook> g_onRegister{nullptr};
std::atomic<Hook> g_onExit{nullptr};
std::atomic<int> g_uiThreadsSupported{1};
std::atomic<uint32_t> g_mainHandle{0};
std::atomic<uint32_t> g_mainThreadId{0};

// Registered threads that are still running, by kernel id.  A finished
// thread leaves the map at once, since the kernel may hand its id to a new
// thread while a handle keeps the old record.  Guarded by objectLock();
// never destroyed, as threads may end after static destruction began.
std::unordered_map<uint32_t, ThreadRecordImpl *> &threadsById()
{
    static auto *map = new std::unordered_map<uint32_t, ThreadRecordImpl *>;
    return *map;
}

thread_local uint32_t t_threadId = 0;
thread_local ThreadRecordImpl *t_current = nullptr;
thread_local bool t_exited = false;
thread_local uint32_t t_handleAfterExit = 0;
thread_local DWORD t_exitCode = 0;

void threadEnded();

// Its destructor is the thread-exit notice for every registered thread,
// whether CreateThread made it or it was adopted on first use, and whether
// it returned or called ExitThread (pthread_exit runs it as well).
struct ExitGuard {
    bool armed = false;
    ~ExitGuard()
    {
        if (armed)
            threadEnded();
    }
};
thread_local ExitGuard t_exitGuard;

// The child of fork() is a new kernel thread with the forking thread's
// thread-local values.
void forgetThreadIdInChild()
{
    t_threadId = 0;
}
[[maybe_unused]] const int g_atForkRegistered =
    pthread_atfork(nullptr, nullptr, forgetThreadIdInChild);

void runRegisterHook(ThreadRecordImpl *rec)
{
    if (rec->registerHookRan)
        return;
    Hook hook = g_onRegister.load(std::memory_order_acquire);
    if (!hook)
        return;
    rec->registerHookRan = true;  // before the call: the hook may ask for the record
    hook(rec);
}

void bindToCurrentThread(ThreadRecordImpl *rec)
{
    t_current = rec;
    t_exitGuard.armed = true;
}

// Called with objectLock held for a record that has a slot.
void becomeMainIfFirst(ThreadRecordImpl *rec)
{
    if (g_mainHandle.load(std::memory_order_relaxed) != 0)
        return;
    rec->isMain = true;
    g_mainThreadId.store(rec->threadId, std::memory_order_release);
    g_mainHandle.store(rec->handle, std::memory_order_release);
}

ThreadRecordImpl *adoptCurrentThread()
{
    auto *rec = new (std::nothrow) ThreadRecordImpl;
    if (!rec) {
        omError(OmDiag::OutOfMemory, "omCurrentThreadRecord");
        return nullptr;
    }
    rec->threadId = currentThreadId();
    rec->pthread = pthread_self();
    {
        std::lock_guard<std::mutex> guard(objectLock());
        uint32_t index = omAllocHandle(OM_KIND_THREAD, static_cast<OmThreadRecord *>(rec));
        if (index == 0) {
            omError(OmDiag::HandleTableFull, "omCurrentThreadRecord");
            delete rec;
            return nullptr;
        }
        rec->handle = index;
        try {
            threadsById()[rec->threadId] = rec;
        } catch (const std::bad_alloc &) {
            omFreeHandle(index);
            delete rec;
            omError(OmDiag::OutOfMemory, "omCurrentThreadRecord");
            return nullptr;
        }
        becomeMainIfFirst(rec);
    }
    bindToCurrentThread(rec);
    runRegisterHook(rec);
    return rec;
}

// Drops one reference; the record is deleted by the caller after it
// unlocks.  The main thread's record stays, as its handle is published.
ThreadRecordImpl *dropReferenceLocked(ThreadRecordImpl *rec)
{
    if (rec->refCount.fetch_sub(1, std::memory_order_acq_rel) != 1 || rec->isMain)
        return nullptr;
    omFreeHandle(rec->handle);
    return rec;
}

void threadEnded()
{
    ThreadRecordImpl *rec = t_current;
    if (!rec)
        return;
    if (rec->registerHookRan) {
        if (Hook hook = g_onExit.load(std::memory_order_acquire))
            hook(rec);
    }
    ThreadRecordImpl *toDelete = nullptr;
    // Once the lock is released, a CloseHandle elsewhere may free the record.
    t_handleAfterExit = rec->handle;
    {
        std::lock_guard<std::mutex> guard(objectLock());
        abandonMutexesOf(rec->threadId);
        {
            std::lock_guard<std::mutex> state(rec->stateMutex);
            rec->finished = true;
            rec->exitCode = t_exitCode;
            rec->stateChanged.notify_all();
        }
        rec->ended = true;
        signalWaitable(rec->waitable);
        auto &ids = threadsById();
        auto it = ids.find(rec->threadId);
        if (it != ids.end() && it->second == rec)
            ids.erase(it);
        rec->running = false;
        toDelete = dropReferenceLocked(rec);
    }
    t_current = nullptr;
    t_exited = true;
    delete toDelete;
}

void *threadMain(void *arg)
{
    auto *rec = static_cast<ThreadRecordImpl *>(arg);
    uint32_t tid = currentThreadId();
    {
        std::lock_guard<std::mutex> guard(objectLock());
        try {
            threadsById()[tid] = rec;
        } catch (const std::bad_alloc &) {
            // Only omThreadRecordFromId misses the thread.
        }
        std::lock_guard<std::mutex> state(rec->stateMutex);
        rec->threadId = tid;
        rec->pthread = pthread_self();
        rec->stateChanged.notify_all();
    }
    bindToCurrentThread(rec);
    {
        std::unique_lock<std::mutex> state(rec->stateMutex);
        rec->stateChanged.wait(state, [rec] { return rec->suspendCount == 0; });
    }
    runRegisterHook(rec);
    t_exitCode = rec->start(rec->startParam);
    return nullptr;
}

// Keeps a record alive outside objectLock; null for a bad handle.
ThreadRecordImpl *referenceThread(HANDLE h)
{
    std::lock_guard<std::mutex> guard(objectLock());
    ThreadRecordImpl *rec = threadFromHandle(omHandleValue(h));
    if (rec)
        rec->refCount.fetch_add(1, std::memory_order_relaxed);
    return rec;
}

void unreferenceThread(ThreadRecordImpl *rec)
{
    ThreadRecordImpl *toDelete;
    {
        std::lock_guard<std::mutex> guard(objectLock());
        toDelete = dropReferenceLocked(rec);
    }
    delete toDelete;
}

template <class T> T badThreadHandle(const char *function, HANDLE h, T failure)
{
    omDebugWarning(OmDiag::BadKernelHandle, function, h);
    SetLastError(ERROR_INVALID_HANDLE);
    return failure;
}

void sleepMilliseconds(DWORD ms)
{
    if (ms == 0) {
        sched_yield();
        return;
    }
    if (ms == INFINITE) {
        for (;;)
            pause();
    }
    timespec deadline{};
    clock_gettime(CLOCK_MONOTONIC, &deadline);
    deadline.tv_sec += ms / 1000;
    deadline.tv_nsec += static_cast<long>(ms % 1000) * 1000000L;
    if (deadline.tv_nsec >= 1000000000L) {
        deadline.tv_sec += 1;
        deadline.tv_nsec -= 1000000000L;
    }
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &deadline, nullptr) == EINTR) {
    }
}

// Thread-local storage.  A slot's generation changes with each TlsAlloc,
// so a value a thread stored under an earlier owner of the index reads as
// zero without touching other threads' storage.
constexpr DWORD kTlsSlots = 1088;  // 64 + 1024, as Windows offers

struct TlsSlot {
    std::atomic<bool> inUse{false};
    std::atomic<uint64_t> generation{0};
};
TlsSlot g_tlsSlots[kTlsSlots];
std::mutex g_tlsLock;

struct TlsCell {
    uint64_t generation;
    void *value;
};

// A plain pointer, not a vector: the thread-exit hooks may read values
// after the thread's other objects were destroyed, and then find none.
thread_local TlsCell *t_tlsCells = nullptr;
thread_local DWORD t_tlsCellCount = 0;

struct TlsCellsOwner {
    bool armed = false;
    ~TlsCellsOwner()
    {
        delete[] t_tlsCells;
        t_tlsCells = nullptr;
        t_tlsCellCount = 0;
    }
};
thread_local TlsCellsOwner t_tlsCellsOwner;

bool tlsIndexValid(DWORD index, uint64_t *generation)
{
    if (index >= kTlsSlots || !g_tlsSlots[index].inUse.load(std::memory_order_acquire))
        return false;
    *generation = g_tlsSlots[index].generation.load(std::memory_order_acquire);
    return true;
}

}  // namespace

uint32_t currentThreadId()
{
    uint32_t tid = t_threadId;
    if (tid == 0) {
        tid = static_cast<uint32_t>(gettid());
        t_threadId = tid;
    }
    return tid;
}

ThreadRecordImpl *threadFromHandle(uint64_t handle)
{
    return static_cast<ThreadRecordImpl *>(
        static_cast<OmThreadRecord *>(omHandleRecord(handle, OM_KIND_THREAD)));
}

bool releaseThreadHandle(ThreadRecordImpl *rec, ThreadRecordImpl **deleteAfter)
{
    int handles = rec->refCount.load(std::memory_order_relaxed) - (rec->running ? 1 : 0);
    if (handles <= 0)
        return false;
    *deleteAfter = dropReferenceLocked(rec);
    return true;
}

void destroyThreadRecord(ThreadRecordImpl *rec)
{
    delete rec;
}

}  // namespace om::kernel

using namespace om::kernel;

// ---- Records, for the user library ----

extern "C" OLMO_API OmThreadRecord *omCurrentThreadRecord(void)
{
    ThreadRecordImpl *rec = t_current;
    if (rec) {
        // Hooks installed after the thread registered run on its next call.
        if (!rec->registerHookRan && g_onRegister.load(std::memory_order_relaxed))
            runRegisterHook(rec);
        return rec;
    }
    if (t_exited)
        return nullptr;
    return adoptCurrentThread();
}

extern "C" OLMO_API OmThreadRecord *omThreadRecordFromHandle(uint64_t handle)
{
    return threadFromHandle(handle);
}

extern "C" OLMO_API OmThreadRecord *omThreadRecordFromId(uint32_t threadId)
{
    std::lock_guard<std::mutex> guard(objectLock());
    auto &ids = threadsById();
    auto it = ids.find(threadId);
    return it == ids.end() ? nullptr : it->second;
}

extern "C" OLMO_API uint64_t _omThreadMainThread(void)
{
    return g_mainHandle.load(std::memory_order_acquire);
}

extern "C" OLMO_API uint32_t _omThreadMainThreadId(void)
{
    return g_mainThreadId.load(std::memory_order_acquire);
}

extern "C" OLMO_API int omIsUserInterfaceThreadSupported(void)
{
    return g_uiThreadsSupported.load(std::memory_order_relaxed);
}

extern "C" OLMO_API void omSetUserInterfaceThreadSupported(int on)
{
    g_uiThreadsSupported.store(on ? 1 : 0, std::memory_order_relaxed);
}

extern "C" OLMO_API void omSetThreadHooks(void (*onRegister)(OmThreadRecord *),
                                          void (*onExit)(OmThreadRecord *))
{
    g_onExit.store(onExit, std::memory_order_release);
    g_onRegister.store(onRegister, std::memory_order_release);
}

extern "C" OLMO_API void omWaitQueueMsgSignal(uint32_t threadId, unsigned message)
{
    (void)message;
    // objectLock keeps the record alive: a record leaves the id map under
    // it before it can be deleted.
    std::lock_guard<std::mutex> guard(objectLock());
    auto &ids = threadsById();
    auto it = ids.find(threadId);
    if (it == ids.end())
        return;
    ThreadRecordImpl *rec = it->second;
    std::lock_guard<std::mutex> wake(rec->wakeMutex);
    rec->wakePending = true;
    rec->wake.notify_one();
}

extern "C" OLMO_API int omWaitQueueMsg(uint32_t timeoutMs)
{
    OmThreadRecord *rec = omCurrentThreadRecord();
    if (!rec) {
        _om_Sleep(timeoutMs);
        return 0;
    }
    std::unique_lock<std::mutex> lock(rec->wakeMutex);
    auto woken = [rec] { return rec->wakePending; };
    if (timeoutMs == INFINITE)
        rec->wake.wait(lock, woken);
    else
        rec->wake.wait_for(lock, std::chrono::milliseconds(timeoutMs), woken);
    bool result = rec->wakePending;
    rec->wakePending = false;
    return result ? 1 : 0;
}

extern "C" OLMO_API void _om_Sleep(uint32_t ms)
{
    sleepMilliseconds(ms);
}

// ---- Threads ----

extern "C" HANDLE WINAPI GetCurrentThread(void)
{
    OmThreadRecord *rec = omCurrentThreadRecord();
    uint32_t handle = rec ? rec->handle : t_handleAfterExit;
    return reinterpret_cast<HANDLE>(static_cast<uintptr_t>(handle));
}

extern "C" DWORD WINAPI GetCurrentThreadId(void)
{
    return currentThreadId();
}

extern "C" HANDLE WINAPI CreateThread(LPSECURITY_ATTRIBUTES lpThreadAttributes, SIZE_T dwStackSize,
                                      LPTHREAD_START_ROUTINE lpStartAddress, LPVOID lpParameter,
                                      DWORD dwCreationFlags, LPDWORD lpThreadId)
{
    (void)lpThreadAttributes;
    if (!lpStartAddress) {
        omDebugWarning(OmDiag::NullPointer, "CreateThread");
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    // The creator registers first, so the first thread to use the kernel
    // layer stays the main thread even when its first call is this one.
    omCurrentThreadRecord();

    auto *rec = new (std::nothrow) ThreadRecordImpl;
    if (!rec) {
        omError(OmDiag::OutOfMemory, "CreateThread");
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    rec->createdByUs = true;
    rec->start = lpStartAddress;
    rec->startParam = lpParameter;
    rec->suspendCount = (dwCreationFlags & CREATE_SUSPENDED) ? 1 : 0;
    rec->refCount.store(2, std::memory_order_relaxed);  // the handle and the running thread
    uint32_t index;
    {
        std::lock_guard<std::mutex> guard(objectLock());
        index = omAllocHandle(OM_KIND_THREAD, static_cast<OmThreadRecord *>(rec));
    }
    if (index == 0) {
        delete rec;
        omError(OmDiag::HandleTableFull, "CreateThread");
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    rec->handle = index;

    pthread_attr_t attr;
    pthread_attr_init(&attr);
    pthread_attr_setdetachstate(&attr, PTHREAD_CREATE_DETACHED);
    if (dwStackSize != 0) {
        size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        size_t size = std::max<size_t>(dwStackSize, PTHREAD_STACK_MIN);
        pthread_attr_setstacksize(&attr, (size + page - 1) / page * page);
    }
    pthread_t thread;
    int error = pthread_create(&thread, &attr, threadMain, rec);
    pthread_attr_destroy(&attr);
    if (error != 0) {
        {
            std::lock_guard<std::mutex> guard(objectLock());
            omFreeHandle(index);
        }
        delete rec;
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    // The id is the kernel's id of the new thread, which it reports first.
    DWORD tid;
    {
        std::unique_lock<std::mutex> state(rec->stateMutex);
        rec->stateChanged.wait(state, [rec] { return rec->threadId != 0; });
        tid = rec->threadId;
    }
    if (lpThreadId)
        *lpThreadId = tid;
    return reinterpret_cast<HANDLE>(static_cast<uintptr_t>(index));
}

extern "C" VOID WINAPI ExitThread(DWORD dwExitCode)
{
    t_exitCode = dwExitCode;
    pthread_exit(nullptr);
}

extern "C" BOOL WINAPI GetExitCodeThread(HANDLE hThread, LPDWORD lpExitCode)
{
    if (!lpExitCode) {
        omDebugWarning(OmDiag::NullPointer, "GetExitCodeThread");
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    std::lock_guard<std::mutex> guard(objectLock());
    ThreadRecordImpl *rec = threadFromHandle(omHandleValue(hThread));
    if (!rec)
        return badThreadHandle("GetExitCodeThread", hThread, FALSE);
    *lpExitCode = rec->ended ? rec->exitCode : STILL_ACTIVE;
    return TRUE;
}

// A thread cannot be stopped from outside on this system: SuspendThread
// on another running thread only counts (ResumeThread takes the count
// back); on the calling thread, or on one held by CREATE_SUSPENDED, it
// really holds the thread until the count is back at zero.
extern "C" DWORD WINAPI SuspendThread(HANDLE hThread)
{
    ThreadRecordImpl *rec = referenceThread(hThread);
    if (!rec)
        return badThreadHandle("SuspendThread", hThread, static_cast<DWORD>(-1));
    DWORD previous;
    {
        std::unique_lock<std::mutex> state(rec->stateMutex);
        previous = rec->suspendCount;
        if (previous >= 127) {  // MAXIMUM_SUSPEND_COUNT
            state.unlock();
            unreferenceThread(rec);
            SetLastError(ERROR_SIGNAL_REFUSED);
            return static_cast<DWORD>(-1);
        }
        ++rec->suspendCount;
        if (rec == t_current)
            rec->stateChanged.wait(state, [rec] { return rec->suspendCount == 0; });
    }
    unreferenceThread(rec);
    return previous;
}

extern "C" DWORD WINAPI ResumeThread(HANDLE hThread)
{
    ThreadRecordImpl *rec = referenceThread(hThread);
    if (!rec)
        return badThreadHandle("ResumeThread", hThread, static_cast<DWORD>(-1));
    DWORD previous;
    {
        std::lock_guard<std::mutex> state(rec->stateMutex);
        previous = rec->suspendCount;
        if (previous > 0 && --rec->suspendCount == 0)
            rec->stateChanged.notify_all();
    }
    unreferenceThread(rec);
    return previous;
}

extern "C" BOOL WINAPI TerminateThread(HANDLE hThread, DWORD dwExitCode)
{
    {
        std::lock_guard<std::mutex> guard(objectLock());
        ThreadRecordImpl *rec = threadFromHandle(omHandleValue(hThread));
        if (!rec)
            return badThreadHandle("TerminateThread", hThread, FALSE);
        if (rec != t_current) {
            // Killing another thread midway would leave its locks held.
            omDebugWarning(OmDiag::Unsupported, "TerminateThread");
            SetLastError(ERROR_NOT_SUPPORTED);
            return FALSE;
        }
    }
    ExitThread(dwExitCode);
}

extern "C" int WINAPI GetThreadPriority(HANDLE hThread)
{
    std::lock_guard<std::mutex> guard(objectLock());
    ThreadRecordImpl *rec = threadFromHandle(omHandleValue(hThread));
    if (!rec)
        return badThreadHandle("GetThreadPriority", hThread, THREAD_PRIORITY_ERROR_RETURN);
    return rec->priority;
}

// The priority is remembered for GetThreadPriority; the scheduler is not
// asked, as raising a priority needs privileges here.
extern "C" BOOL WINAPI SetThreadPriority(HANDLE hThread, int nPriority)
{
    bool valid = (nPriority >= THREAD_PRIORITY_LOWEST && nPriority <= THREAD_PRIORITY_HIGHEST) ||
                 nPriority == THREAD_PRIORITY_IDLE || nPriority == THREAD_PRIORITY_TIME_CRITICAL;
    std::lock_guard<std::mutex> guard(objectLock());
    ThreadRecordImpl *rec = threadFromHandle(omHandleValue(hThread));
    if (!rec)
        return badThreadHandle("SetThreadPriority", hThread, FALSE);
    if (!valid) {
        omDebugWarning(OmDiag::UnsupportedValue, "SetThreadPriority", nPriority);
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    rec->priority = nPriority;
    return TRUE;
}

// ---- Thread-local storage ----

extern "C" DWORD WINAPI TlsAlloc(void)
{
    std::lock_guard<std::mutex> guard(g_tlsLock);
    for (DWORD i = 0; i < kTlsSlots; ++i) {
        TlsSlot &slot = g_tlsSlots[i];
        if (!slot.inUse.load(std::memory_order_relaxed)) {
            slot.generation.fetch_add(1, std::memory_order_relaxed);
            slot.inUse.store(true, std::memory_order_release);
            return i;
        }
    }
    SetLastError(ERROR_NO_MORE_ITEMS);
    return TLS_OUT_OF_INDEXES;
}

extern "C" BOOL WINAPI TlsFree(DWORD dwTlsIndex)
{
    std::lock_guard<std::mutex> guard(g_tlsLock);
    if (dwTlsIndex >= kTlsSlots || !g_tlsSlots[dwTlsIndex].inUse.load(std::memory_order_relaxed)) {
        omDebugWarning(OmDiag::UnsupportedValue, "TlsFree", dwTlsIndex);
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    g_tlsSlots[dwTlsIndex].inUse.store(false, std::memory_order_release);
    return TRUE;
}

extern "C" LPVOID WINAPI TlsGetValue(DWORD dwTlsIndex)
{
    uint64_t generation;
    if (!tlsIndexValid(dwTlsIndex, &generation)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    // Success clears the last error, so that a stored null can be told
    // from a failure.
    SetLastError(ERROR_SUCCESS);
    if (dwTlsIndex >= t_tlsCellCount || t_tlsCells[dwTlsIndex].generation != generation)
        return nullptr;
    return t_tlsCells[dwTlsIndex].value;
}

extern "C" BOOL WINAPI TlsSetValue(DWORD dwTlsIndex, LPVOID lpTlsValue)
{
    uint64_t generation;
    if (!tlsIndexValid(dwTlsIndex, &generation)) {
        omDebugWarning(OmDiag::UnsupportedValue, "TlsSetValue", dwTlsIndex);
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    if (dwTlsIndex >= t_tlsCellCount) {
        DWORD count = std::max<DWORD>(dwTlsIndex + 1, std::max<DWORD>(64, t_tlsCellCount * 2));
        count = std::min(count, kTlsSlots);
        auto *cells = new (std::nothrow) TlsCell[count]();
        if (!cells) {
            omError(OmDiag::OutOfMemory, "TlsSetValue");
            SetLastError(ERROR_NOT_ENOUGH_MEMORY);
            return FALSE;
        }
        std::copy(t_tlsCells, t_tlsCells + t_tlsCellCount, cells);
        delete[] t_tlsCells;
        t_tlsCells = cells;
        t_tlsCellCount = count;
        t_tlsCellsOwner.armed = true;
    }
    t_tlsCells[dwTlsIndex] = TlsCell{generation, lpTlsValue};
    return TRUE;
}

// ---- Sleeping ----

extern "C" VOID WINAPI Sleep(DWORD dwMilliseconds)
{
    sleepMilliseconds(dwMilliseconds);
}

// No asynchronous procedure calls are queued on this system, so an
// alertable sleep always runs to its end.
extern "C" DWORD WINAPI SleepEx(DWORD dwMilliseconds, BOOL bAlertable)
{
    (void)bAlertable;
    sleepMilliseconds(dwMilliseconds);
    return 0;
}

extern "C" BOOL WINAPI SwitchToThread(void)
{
    sched_yield();
    return TRUE;
}

// ---- The current process ----

extern "C" HANDLE WINAPI GetCurrentProcess(void)
{
    return reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1));
}

extern "C" DWORD WINAPI GetCurrentProcessId(void)
{
    return static_cast<DWORD>(getpid());
}

extern "C" VOID WINAPI ExitProcess(UINT uExitCode)
{
    exit(static_cast<int>(uExitCode));
}

extern "C" BOOL WINAPI GetExitCodeProcess(HANDLE hProcess, LPDWORD lpExitCode)
{
    if (!lpExitCode) {
        omDebugWarning(OmDiag::NullPointer, "GetExitCodeProcess");
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    if (hProcess != GetCurrentProcess())
        return badThreadHandle("GetExitCodeProcess", hProcess, FALSE);
    *lpExitCode = STILL_ACTIVE;
    return TRUE;
}

extern "C" BOOL WINAPI TerminateProcess(HANDLE hProcess, UINT uExitCode)
{
    if (hProcess != GetCurrentProcess())
        return badThreadHandle("TerminateProcess", hProcess, FALSE);
    _exit(static_cast<int>(uExitCode));
}

// The only process a handle can name here is the current one.
extern "C" HANDLE WINAPI OpenProcess(DWORD dwDesiredAccess, BOOL bInheritHandle, DWORD dwProcessId)
{
    (void)dwDesiredAccess;
    (void)bInheritHandle;
    if (dwProcessId != GetCurrentProcessId()) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    return GetCurrentProcess();
}

extern "C" DWORD WINAPI GetPriorityClass(HANDLE hProcess)
{
    if (hProcess != GetCurrentProcess())
        return badThreadHandle("GetPriorityClass", hProcess, DWORD{0});
    return NORMAL_PRIORITY_CLASS;
}

// Accepted and not applied: raising the priority needs privileges here.
extern "C" BOOL WINAPI SetPriorityClass(HANDLE hProcess, DWORD dwPriorityClass)
{
    (void)dwPriorityClass;
    if (hProcess != GetCurrentProcess())
        return badThreadHandle("SetPriorityClass", hProcess, FALSE);
    return TRUE;
}
