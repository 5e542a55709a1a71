// The wait machinery (omwait.cpp) shared by the synchronisation objects
// (omsync.cpp) and the thread records (omthread.cpp): one lock over every
// waitable object, FIFO waiter lists, and the objects' layouts.  Private
// to those files.
#pragma once

#include "kernel/omdiag.h"
#include "kernel/omhandles.h"
#include "kernel/omthread.h"

#include <winbase.h>

#include <cstdint>
#include <string>

namespace om::kernel {

struct Waiter;
struct Waitable;

// One entry of an object's waiter list: which waiter, and at which
// position of its handle array the object stands.
struct WaitBlock {
    Waiter *waiter;
    Waitable *object;
    WaitBlock *prev;
    WaitBlock *next;
    uint32_t index;
};

enum class WaitableType : uint8_t { Event, Mutex, Semaphore, Thread, Process };

// Every field is guarded by objectLock().
struct Waitable {
    explicit Waitable(WaitableType t) : type(t) {}
    WaitableType type;
    WaitBlock *first = nullptr;
    WaitBlock *last = nullptr;
};

struct ThreadRecordImpl;

// The waitable of a thread, signalled when the thread ends.
struct ThreadWaitable : Waitable {
    explicit ThreadWaitable(ThreadRecordImpl *r) : Waitable(WaitableType::Thread), record(r) {}
    ThreadRecordImpl *record;
};

// A thread record as the kernel layer allocates it: the public record plus
// what only this layer needs.  Every record behind a kind-28 slot is one.
struct ThreadRecordImpl : OmThreadRecord {
    ThreadWaitable waitable{this};
    // Guarded by objectLock(): the thread has ended (the waitable's state),
    // and whether the running thread still holds its reference.
    bool ended = false;
    bool running = true;
    int priority = 0;
    // Guarded by stateMutex: the start is held while it is positive.
    uint32_t suspendCount = 0;
    // Touched by the thread itself only.
    bool registerHookRan = false;
    // CreateThread's routine, set before the thread starts.
    uint32_t (*start)(void *) = nullptr;
    void *startParam = nullptr;
};

// The synchronisation objects behind slot kinds 40 to 42; every field is
// guarded by objectLock().
struct KernelObject : Waitable {
    KernelObject(WaitableType t, uint32_t k) : Waitable(t), kind(k) {}
    uint32_t kind;
    int refs = 0;     // open handles and waits in progress
    std::string name;  // empty when unnamed
};

struct EventObject : KernelObject {
    EventObject(bool manual, bool initial)
        : KernelObject(WaitableType::Event, OM_KIND_EVENT), manualReset(manual), signalled(initial)
    {
    }
    bool manualReset;
    bool signalled;
};

struct MutexObject : KernelObject {
    MutexObject() : KernelObject(WaitableType::Mutex, OM_KIND_MUTEX) {}
    uint32_t owner = 0;  // thread id, 0 when free
    uint32_t recursion = 0;
    bool abandoned = false;  // told to the next owner, then cleared
    MutexObject *ownedPrev = nullptr;
    MutexObject *ownedNext = nullptr;
};

struct SemaphoreObject : KernelObject {
    SemaphoreObject(LONG initial, LONG maximum)
        : KernelObject(WaitableType::Semaphore, OM_KIND_SEMAPHORE), count(initial), max(maximum)
    {
    }
    LONG count;
    LONG max;
};

// The list of owned mutexes, which a thread's end searches (omwait.cpp).
void linkOwned(MutexObject *m);
void unlinkOwned(MutexObject *m);

// Frees an object whose last reference went (omsync.cpp).  objectLock held.
void destroyObject(KernelObject *obj);

inline bool isCurrentProcess(HANDLE h)
{
    return h == reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1));
}

template <class T> inline T badHandle(const char *function, HANDLE h, T failure)
{
    omDebugWarning(OmDiag::BadKernelHandle, function, h);
    SetLastError(ERROR_INVALID_HANDLE);
    return failure;
}

template <class T> inline T nullArgument(const char *function, T failure)
{
    omDebugWarning(OmDiag::NullPointer, function);
    SetLastError(ERROR_INVALID_PARAMETER);
    return failure;
}

// The lock over every waitable object, every waiter list, the references
// of synchronisation objects and threads, and the thread-id map.  Lock
// order: objectLock, then a record's stateMutex or wakeMutex, then the
// handle allocator's lock.
std::mutex &objectLock();

// Hands a waitable that may have become signalled to its waiters, in the
// order they came.  objectLock held.
void signalWaitable(Waitable &object);

// The mutexes that thread tid still owns become abandoned and go to their
// waiters.  objectLock held.
void abandonMutexesOf(uint32_t tid);

// The calling thread's kernel id, cached per thread.
uint32_t currentThreadId();

// Drops one handle reference of a thread record; deletes it (after the
// caller unlocks) when no reference is left.  Returns false when the handle
// held no reference to drop.  objectLock held; *deleteAfter receives the
// record to delete once the lock is released.
bool releaseThreadHandle(ThreadRecordImpl *record, ThreadRecordImpl **deleteAfter);

// The thread record behind a handle (raw index or with the base), or null.
ThreadRecordImpl *threadFromHandle(uint64_t handle);

// Deletes a thread record released by releaseThreadHandle.
void destroyThreadRecord(ThreadRecordImpl *record);

}  // namespace om::kernel
