// The waits on events, mutexes, semaphores and threads.  One lock guards
// every object; each waiter sleeps on its own condition variable, and a
// state change hands the object at once to the waiters it satisfies, in
// arrival order: single, wait-any and wait-all share it and never poll.
#include "omwaitable.h"

#include "kernel/omhandles.h"
#include "kernel/omsync.h"

#include <chrono>
#include <condition_variable>

namespace om::kernel {

// A thread blocked in a wait; lives on its stack.
struct Waiter {
    std::condition_variable cv;
    uint32_t tid = 0;
    uint32_t count = 0;
    bool waitAll = false;
    bool done = false;
    DWORD result = WAIT_FAILED;
    WaitBlock blocks[MAXIMUM_WAIT_OBJECTS];
};

namespace {

std::mutex g_objectLock;

// The current process never ends while its threads wait on it.
Waitable g_process{WaitableType::Process};

// Owned mutexes, so that a thread's end finds what it abandons.
MutexObject *g_ownedMutexes = nullptr;

bool isSignalledFor(const Waitable *w, uint32_t tid)
{
    switch (w->type) {
    case WaitableType::Event:
        return static_cast<const EventObject *>(w)->signalled;
    case WaitableType::Mutex: {
        uint32_t owner = static_cast<const MutexObject *>(w)->owner;
        return owner == 0 || owner == tid;
    }
    case WaitableType::Semaphore:
        return static_cast<const SemaphoreObject *>(w)->count > 0;
    case WaitableType::Thread:
        return static_cast<const ThreadWaitable *>(w)->record->ended;
    case WaitableType::Process:
        return false;
    }
    return false;
}

// Whether anyone at all could take the object now; ends the hand-off.
bool mayBeTaken(const Waitable *w)
{
    if (w->type == WaitableType::Mutex)
        return static_cast<const MutexObject *>(w)->owner == 0;
    return isSignalledFor(w, 0);
}

// Takes a signalled object for thread tid; true when it was an abandoned
// mutex.
bool take(Waitable *w, uint32_t tid)
{
    switch (w->type) {
    case WaitableType::Event: {
        auto *e = static_cast<EventObject *>(w);
        if (!e->manualReset)
            e->signalled = false;
        return false;
    }
    case WaitableType::Mutex: {
        auto *m = static_cast<MutexObject *>(w);
        if (m->owner == 0) {
            m->owner = tid;
            m->recursion = 1;
            linkOwned(m);
        } else {
            ++m->recursion;
        }
        bool abandoned = m->abandoned;
        m->abandoned = false;
        return abandoned;
    }
    case WaitableType::Semaphore:
        --static_cast<SemaphoreObject *>(w)->count;
        return false;
    case WaitableType::Thread:
    case WaitableType::Process:
        return false;
    }
    return false;
}

// Satisfies the waiter now if its objects allow; sets its result.
bool trySatisfy(Waiter &w)
{
    if (!w.waitAll) {
        for (uint32_t i = 0; i < w.count; ++i) {
            if (isSignalledFor(w.blocks[i].object, w.tid)) {
                bool abandoned = take(w.blocks[i].object, w.tid);
                w.result = (abandoned ? WAIT_ABANDONED_0 : WAIT_OBJECT_0) + i;
                return true;
            }
        }
        return false;
    }
    for (uint32_t i = 0; i < w.count; ++i) {
        if (!isSignalledFor(w.blocks[i].object, w.tid))
            return false;
    }
    w.result = WAIT_OBJECT_0;
    bool anyAbandoned = false;
    for (uint32_t i = 0; i < w.count; ++i) {
        if (take(w.blocks[i].object, w.tid) && !anyAbandoned) {
            anyAbandoned = true;
            w.result = WAIT_ABANDONED_0 + i;
        }
    }
    return true;
}

void linkBlock(WaitBlock &b)
{
    Waitable *o = b.object;
    b.next = nullptr;
    b.prev = o->last;
    if (o->last)
        o->last->next = &b;
    else
        o->first = &b;
    o->last = &b;
}

void unlinkBlock(WaitBlock &b)
{
    Waitable *o = b.object;
    if (b.prev)
        b.prev->next = b.next;
    else
        o->first = b.next;
    if (b.next)
        b.next->prev = b.prev;
    else
        o->last = b.prev;
    b.prev = b.next = nullptr;
}

void completeWait(Waiter &w)
{
    for (uint32_t i = 0; i < w.count; ++i)
        unlinkBlock(w.blocks[i]);
    w.done = true;
    // Under the lock: the waiter cannot return (and free its stack) first.
    w.cv.notify_one();
}

// References held by a wait in progress, so that CloseHandle during the
// wait does not free what the waiter's blocks point into.
void retain(Waitable *w)
{
    if (w->type == WaitableType::Thread)
        static_cast<ThreadWaitable *>(w)->record->refCount.fetch_add(1, std::memory_order_relaxed);
    else if (w->type != WaitableType::Process)
        ++static_cast<KernelObject *>(w)->refs;
}

// objectLock held; a thread record to delete is returned.
ThreadRecordImpl *release(Waitable *w)
{
    if (w->type == WaitableType::Thread) {
        ThreadRecordImpl *rec = static_cast<ThreadWaitable *>(w)->record;
        if (rec->refCount.fetch_sub(1, std::memory_order_acq_rel) == 1 && !rec->isMain) {
            omFreeHandle(rec->handle);
            return rec;
        }
    } else if (w->type != WaitableType::Process) {
        auto *obj = static_cast<KernelObject *>(w);
        if (--obj->refs == 0)
            destroyObject(obj);
    }
    return nullptr;
}

// objectLock held.
Waitable *resolveWaitable(HANDLE h)
{
    if (isCurrentProcess(h))
        return &g_process;
    uint64_t value = omHandleValue(h);
    uint32_t index = omHandleIndex(value);
    if (index == 0 || index >= omHandlesCount.load(std::memory_order_acquire))
        return nullptr;
    OmHandleSlot &slot = omHandlesTable[index];
    uint32_t kind = slot.kind.load(std::memory_order_acquire);
    void *record = slot.record.load(std::memory_order_acquire);
    switch (kind) {
    case OM_KIND_EVENT:
    case OM_KIND_MUTEX:
    case OM_KIND_SEMAPHORE:
        return static_cast<KernelObject *>(record);
    case OM_KIND_THREAD:
        return &threadFromHandle(value)->waitable;
    default:
        return nullptr;
    }
}

DWORD waitForObjects(const char *function, DWORD count, const HANDLE *handles, bool waitAll,
                     DWORD ms)
{
    if (count == 0 || count > MAXIMUM_WAIT_OBJECTS) {
        omDebugWarning(OmDiag::UnsupportedValue, function, count);
        SetLastError(ERROR_INVALID_PARAMETER);
        return WAIT_FAILED;
    }
    if (!handles)
        return nullArgument(function, WAIT_FAILED);
    // A thread that may come to own a mutex must be registered, so that
    // its end abandons what it still owns.
    for (DWORD i = 0; i < count; ++i) {
        if (omIsHandleOfKind(omHandleValue(handles[i]), OM_KIND_MUTEX)) {
            omCurrentThreadRecord();
            break;
        }
    }
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(ms);
    Waiter w;
    w.tid = currentThreadId();
    w.count = count;
    w.waitAll = waitAll;
    std::unique_lock<std::mutex> lock(g_objectLock);
    for (DWORD i = 0; i < count; ++i) {
        Waitable *object = resolveWaitable(handles[i]);
        if (!object) {
            lock.unlock();
            return badHandle(function, handles[i], WAIT_FAILED);
        }
        w.blocks[i] = WaitBlock{&w, object, nullptr, nullptr, i};
        // Windows refuses one object twice in a wait for all of them.
        for (DWORD j = 0; waitAll && j < i; ++j) {
            if (w.blocks[j].object == object) {
                lock.unlock();
                omDebugWarning(OmDiag::BadArgument, function, "the same object twice");
                SetLastError(ERROR_INVALID_PARAMETER);
                return WAIT_FAILED;
            }
        }
    }
    if (trySatisfy(w))
        return w.result;
    if (ms == 0)
        return WAIT_TIMEOUT;
    for (DWORD i = 0; i < count; ++i) {
        retain(w.blocks[i].object);
        linkBlock(w.blocks[i]);
    }
    if (ms == INFINITE)
        w.cv.wait(lock, [&w] { return w.done; });
    else
        w.cv.wait_until(lock, deadline, [&w] { return w.done; });
    if (!w.done) {
        for (DWORD i = 0; i < count; ++i)
            unlinkBlock(w.blocks[i]);
        w.result = WAIT_TIMEOUT;
    }
    ThreadRecordImpl *toDelete[MAXIMUM_WAIT_OBJECTS];
    DWORD deleteCount = 0;
    for (DWORD i = 0; i < count; ++i) {
        if (ThreadRecordImpl *rec = release(w.blocks[i].object))
            toDelete[deleteCount++] = rec;
    }
    lock.unlock();
    for (DWORD i = 0; i < deleteCount; ++i)
        destroyThreadRecord(toDelete[i]);
    return w.result;
}

}  // namespace

std::mutex &objectLock()
{
    return g_objectLock;
}

void signalWaitable(Waitable &object)
{
    WaitBlock *b = object.first;
    while (b && mayBeTaken(&object)) {
        Waiter &w = *b->waiter;
        if (trySatisfy(w)) {
            completeWait(w);
            b = object.first;  // the waiter's blocks left every list
        } else {
            b = b->next;
        }
    }
}

void abandonMutexesOf(uint32_t tid)
{
    // Restarts after each one: handing a mutex on relinks the owned list.
    for (;;) {
        MutexObject *m = g_ownedMutexes;
        while (m && m->owner != tid)
            m = m->ownedNext;
        if (!m)
            return;
        unlinkOwned(m);
        m->owner = 0;
        m->recursion = 0;
        m->abandoned = true;
        signalWaitable(*m);
    }
}

void linkOwned(MutexObject *m)
{
    m->ownedPrev = nullptr;
    m->ownedNext = g_ownedMutexes;
    if (g_ownedMutexes)
        g_ownedMutexes->ownedPrev = m;
    g_ownedMutexes = m;
}

void unlinkOwned(MutexObject *m)
{
    if (m->ownedPrev)
        m->ownedPrev->ownedNext = m->ownedNext;
    else if (g_ownedMutexes == m)
        g_ownedMutexes = m->ownedNext;
    if (m->ownedNext)
        m->ownedNext->ownedPrev = m->ownedPrev;
    m->ownedPrev = m->ownedNext = nullptr;
}

}  // namespace om::kernel

using namespace om::kernel;

extern "C" OLMO_API int omWaitersOf(uint64_t handle)
{
    std::lock_guard<std::mutex> guard(g_objectLock);
    Waitable *object = resolveWaitable(reinterpret_cast<HANDLE>(static_cast<uintptr_t>(handle)));
    if (!object)
        return -1;
    int count = 0;
    for (WaitBlock *b = object->first; b; b = b->next)
        ++count;
    return count;
}

// ---- Waits ----

// No asynchronous procedure calls are queued on this system, so the
// alertable forms wait as the plain ones do.
extern "C" DWORD WINAPI WaitForSingleObject(HANDLE hHandle, DWORD dwMilliseconds)
{
    return waitForObjects("WaitForSingleObject", 1, &hHandle, false, dwMilliseconds);
}

extern "C" DWORD WINAPI WaitForSingleObjectEx(HANDLE hHandle, DWORD dwMilliseconds, BOOL bAlertable)
{
    (void)bAlertable;
    return waitForObjects("WaitForSingleObjectEx", 1, &hHandle, false, dwMilliseconds);
}

extern "C" DWORD WINAPI WaitForMultipleObjects(DWORD nCount, const HANDLE *lpHandles, BOOL bWaitAll,
                                               DWORD dwMilliseconds)
{
    return waitForObjects("WaitForMultipleObjects", nCount, lpHandles, bWaitAll != FALSE,
                          dwMilliseconds);
}

extern "C" DWORD WINAPI WaitForMultipleObjectsEx(DWORD nCount, const HANDLE *lpHandles,
                                                 BOOL bWaitAll, DWORD dwMilliseconds,
                                                 BOOL bAlertable)
{
    (void)bAlertable;
    return waitForObjects("WaitForMultipleObjectsEx", nCount, lpHandles, bWaitAll != FALSE,
                          dwMilliseconds);
}
