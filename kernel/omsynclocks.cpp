// Critical sections, slim reader/writer locks and condition variables,
// kept inside the program's own structures: each is a futex word plus
// atomics, so the uncontended paths make no system call, and a zeroed
// SRWLOCK or CONDITION_VARIABLE is ready for use without a constructor.
#include "omwaitable.h"

#include "kernel/omdiag.h"

#include <winbase.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <ctime>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace om::kernel {
namespace {

typedef uint32_t __attribute__((may_alias)) AliasedWord;

// Returns false when the wait timed out.
bool futexWait(AliasedWord *word, uint32_t expected, const timespec *relative)
{
    long r = syscall(SYS_futex, word, FUTEX_WAIT_PRIVATE, expected, relative, nullptr, 0);
    return !(r == -1 && errno == ETIMEDOUT);
}

void futexWake(AliasedWord *word, int count)
{
    syscall(SYS_futex, word, FUTEX_WAKE_PRIVATE, count, nullptr, nullptr, 0);
}

inline uint32_t load(AliasedWord *w, int order = __ATOMIC_ACQUIRE)
{
    return __atomic_load_n(w, order);
}

inline bool cas(AliasedWord *w, uint32_t expected, uint32_t desired)
{
    return __atomic_compare_exchange_n(w, &expected, desired, false, __ATOMIC_ACQ_REL,
                                       __ATOMIC_RELAXED);
}

void cpuRelax()
{
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#endif
}

// ---- Critical sections ----
// LockCount is the futex word: 0 free, 1 held, 2 held with sleepers.
// OwningThread holds the owner's thread id (as on Windows), which only the
// owner itself can find there, so the recursion test needs no ordering.

AliasedWord *lockWord(CRITICAL_SECTION *cs)
{
    return reinterpret_cast<AliasedWord *>(&cs->LockCount);
}

HANDLE owner(CRITICAL_SECTION *cs)
{
    return __atomic_load_n(&cs->OwningThread, __ATOMIC_RELAXED);
}

void setOwner(CRITICAL_SECTION *cs, HANDLE tid)
{
    __atomic_store_n(&cs->OwningThread, tid, __ATOMIC_RELAXED);
}

HANDLE currentOwnerValue()
{
    return reinterpret_cast<HANDLE>(static_cast<uintptr_t>(currentThreadId()));
}

void lockSlow(CRITICAL_SECTION *cs)
{
    AliasedWord *word = lockWord(cs);
    for (ULONG_PTR spin = cs->SpinCount; spin > 0; --spin) {
        if (load(word, __ATOMIC_RELAXED) == 0 && cas(word, 0, 1))
            return;
        cpuRelax();
    }
    uint32_t c = __atomic_exchange_n(word, 2u, __ATOMIC_ACQUIRE);
    while (c != 0) {
        futexWait(word, 2, nullptr);
        c = __atomic_exchange_n(word, 2u, __ATOMIC_ACQUIRE);
    }
}

void enter(CRITICAL_SECTION *cs, HANDLE tid)
{
    if (!cas(lockWord(cs), 0, 1))
        lockSlow(cs);
    setOwner(cs, tid);
    cs->RecursionCount = 1;
}

// Leaves completely, whatever the recursion; the owner checked.
void leave(CRITICAL_SECTION *cs)
{
    cs->RecursionCount = 0;
    setOwner(cs, nullptr);
    if (__atomic_exchange_n(lockWord(cs), 0u, __ATOMIC_RELEASE) == 2)
        futexWake(lockWord(cs), 1);
}

// ---- Slim reader/writer locks ----
// The low half of the pointer word is the futex word: 0 free, kWriter
// held exclusively, else the count of shared holders; kSleepers marks
// that someone may sleep on it.  The high half counts sleepers, so a
// release after the mark was cleared still wakes them.

constexpr uint32_t kWriter = 0x7FFFFFFF;
constexpr uint32_t kSleepers = 0x80000000;

AliasedWord *stateWord(void *ptr)
{
    return reinterpret_cast<AliasedWord *>(ptr);
}

AliasedWord *sleeperWord(void *ptr)
{
    return reinterpret_cast<AliasedWord *>(ptr) + 1;
}

bool trySharedWord(AliasedWord *s)
{
    for (;;) {
        uint32_t v = load(s, __ATOMIC_RELAXED);
        uint32_t holders = v & ~kSleepers;
        if (holders >= kWriter - 1)
            return false;
        if (cas(s, v, v + 1))
            return true;
    }
}

// Sleeps while the word shows a state that blocks us.
void sleepOn(void *ptr, uint32_t seen)
{
    AliasedWord *s = stateWord(ptr);
    uint32_t marked = seen | kSleepers;
    __atomic_fetch_add(sleeperWord(ptr), 1u, __ATOMIC_SEQ_CST);
    if (seen == marked || cas(s, seen, marked))
        futexWait(s, marked, nullptr);
    __atomic_fetch_sub(sleeperWord(ptr), 1u, __ATOMIC_SEQ_CST);
}

void releaseWord(void *ptr)
{
    AliasedWord *s = stateWord(ptr);
    uint32_t v, next, holders;
    do {
        v = load(s, __ATOMIC_RELAXED);
        holders = v & ~kSleepers;
        next = (holders == kWriter || holders == 1) ? 0 : v - 1;
    } while (!cas(s, v, next));
    if (next == 0 && ((v & kSleepers) || __atomic_load_n(sleeperWord(ptr), __ATOMIC_SEQ_CST) != 0))
        futexWake(s, holders == kWriter ? INT_MAX : 1);
}

// ---- Condition variables ----
// The low half is a sequence number bumped by every wake; the high half
// counts sleepers, so that a wake with none makes no system call.

timespec relativeTimeout(DWORD ms)
{
    timespec t;
    t.tv_sec = ms / 1000;
    t.tv_nsec = static_cast<long>(ms % 1000) * 1000000L;
    return t;
}

template <class Unlock, class Relock>
BOOL sleepOnCondition(CONDITION_VARIABLE *cv, DWORD ms, Unlock unlock, Relock relock)
{
    AliasedWord *seq = stateWord(&cv->Ptr);
    __atomic_fetch_add(sleeperWord(&cv->Ptr), 1u, __ATOMIC_SEQ_CST);
    uint32_t seen = __atomic_load_n(seq, __ATOMIC_SEQ_CST);
    unlock();
    timespec timeout = relativeTimeout(ms);
    bool woken = ms == 0 ? false : futexWait(seq, seen, ms == INFINITE ? nullptr : &timeout);
    __atomic_fetch_sub(sleeperWord(&cv->Ptr), 1u, __ATOMIC_SEQ_CST);
    relock();
    if (!woken) {
        SetLastError(ERROR_TIMEOUT);
        return FALSE;
    }
    return TRUE;
}

void wakeCondition(CONDITION_VARIABLE *cv, int count)
{
    __atomic_fetch_add(stateWord(&cv->Ptr), 1u, __ATOMIC_SEQ_CST);
    if (__atomic_load_n(sleeperWord(&cv->Ptr), __ATOMIC_SEQ_CST) != 0)
        futexWake(stateWord(&cv->Ptr), count);
}

}  // namespace
}  // namespace om::kernel

using namespace om::kernel;

// ---- Critical sections ----

extern "C" VOID WINAPI InitializeCriticalSection(LPCRITICAL_SECTION lpCriticalSection)
{
    InitializeCriticalSectionAndSpinCount(lpCriticalSection, 0);
}

extern "C" BOOL WINAPI InitializeCriticalSectionAndSpinCount(LPCRITICAL_SECTION lpCriticalSection,
                                                             DWORD dwSpinCount)
{
    if (!lpCriticalSection) {
        omDebugWarning(OmDiag::NullPointer, "InitializeCriticalSection");
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    lpCriticalSection->DebugInfo = nullptr;
    lpCriticalSection->LockCount = 0;
    lpCriticalSection->RecursionCount = 0;
    lpCriticalSection->OwningThread = nullptr;
    lpCriticalSection->LockSemaphore = nullptr;
    // The high byte carries flags; spinning is pointless on one processor.
    DWORD spin = dwSpinCount & 0x00FFFFFF;
    static const bool kSeveralProcessors = sysconf(_SC_NPROCESSORS_ONLN) > 1;
    lpCriticalSection->SpinCount = kSeveralProcessors ? spin : 0;
    return TRUE;
}

extern "C" VOID WINAPI EnterCriticalSection(LPCRITICAL_SECTION lpCriticalSection)
{
    if (!lpCriticalSection) {
        omDebugWarning(OmDiag::NullPointer, "EnterCriticalSection");
        return;
    }
    HANDLE tid = currentOwnerValue();
    if (owner(lpCriticalSection) == tid) {
        ++lpCriticalSection->RecursionCount;
        return;
    }
    enter(lpCriticalSection, tid);
}

extern "C" BOOL WINAPI TryEnterCriticalSection(LPCRITICAL_SECTION lpCriticalSection)
{
    if (!lpCriticalSection) {
        omDebugWarning(OmDiag::NullPointer, "TryEnterCriticalSection");
        return FALSE;
    }
    HANDLE tid = currentOwnerValue();
    if (owner(lpCriticalSection) == tid) {
        ++lpCriticalSection->RecursionCount;
        return TRUE;
    }
    if (!cas(lockWord(lpCriticalSection), 0, 1))
        return FALSE;
    setOwner(lpCriticalSection, tid);
    lpCriticalSection->RecursionCount = 1;
    return TRUE;
}

extern "C" VOID WINAPI LeaveCriticalSection(LPCRITICAL_SECTION lpCriticalSection)
{
    if (!lpCriticalSection) {
        omDebugWarning(OmDiag::NullPointer, "LeaveCriticalSection");
        return;
    }
    if (owner(lpCriticalSection) != currentOwnerValue()) {
        // Leaving what another thread holds would break its exclusion.
        omDebugWarning(OmDiag::BadArgument, "LeaveCriticalSection",
                       "the calling thread does not own the critical section");
        return;
    }
    if (--lpCriticalSection->RecursionCount > 0)
        return;
    leave(lpCriticalSection);
}

extern "C" VOID WINAPI DeleteCriticalSection(LPCRITICAL_SECTION lpCriticalSection)
{
    if (!lpCriticalSection) {
        omDebugWarning(OmDiag::NullPointer, "DeleteCriticalSection");
        return;
    }
    // Nothing was allocated; the structure is left as Initialize found it.
    lpCriticalSection->LockCount = 0;
    lpCriticalSection->RecursionCount = 0;
    lpCriticalSection->OwningThread = nullptr;
}

// ---- Slim reader/writer locks ----

extern "C" VOID WINAPI InitializeSRWLock(PSRWLOCK SRWLock)
{
    if (SRWLock)
        SRWLock->Ptr = nullptr;
}

extern "C" BOOLEAN WINAPI TryAcquireSRWLockExclusive(PSRWLOCK SRWLock)
{
    return cas(stateWord(&SRWLock->Ptr), 0, kWriter) ? TRUE : FALSE;
}

extern "C" BOOLEAN WINAPI TryAcquireSRWLockShared(PSRWLOCK SRWLock)
{
    return trySharedWord(stateWord(&SRWLock->Ptr)) ? TRUE : FALSE;
}

extern "C" VOID WINAPI AcquireSRWLockExclusive(PSRWLOCK SRWLock)
{
    AliasedWord *s = stateWord(&SRWLock->Ptr);
    while (!cas(s, 0, kWriter)) {
        uint32_t v = load(s, __ATOMIC_RELAXED);
        if ((v & ~kSleepers) != 0)
            sleepOn(&SRWLock->Ptr, v);
        else if (v == kSleepers && cas(s, kSleepers, kWriter | kSleepers))
            return;  // free but marked: take it and keep the mark for the others
    }
}

extern "C" VOID WINAPI AcquireSRWLockShared(PSRWLOCK SRWLock)
{
    AliasedWord *s = stateWord(&SRWLock->Ptr);
    while (!trySharedWord(s)) {
        uint32_t v = load(s, __ATOMIC_RELAXED);
        if ((v & ~kSleepers) == kWriter)
            sleepOn(&SRWLock->Ptr, v);
    }
}

extern "C" VOID WINAPI ReleaseSRWLockExclusive(PSRWLOCK SRWLock)
{
    releaseWord(&SRWLock->Ptr);
}

extern "C" VOID WINAPI ReleaseSRWLockShared(PSRWLOCK SRWLock)
{
    releaseWord(&SRWLock->Ptr);
}

// ---- Condition variables ----

extern "C" VOID WINAPI InitializeConditionVariable(PCONDITION_VARIABLE ConditionVariable)
{
    if (ConditionVariable)
        ConditionVariable->Ptr = nullptr;
}

extern "C" BOOL WINAPI SleepConditionVariableCS(PCONDITION_VARIABLE ConditionVariable,
                                                PCRITICAL_SECTION CriticalSection,
                                                DWORD dwMilliseconds)
{
    if (!ConditionVariable || !CriticalSection) {
        omDebugWarning(OmDiag::NullPointer, "SleepConditionVariableCS");
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    HANDLE tid = currentOwnerValue();
    if (owner(CriticalSection) != tid) {
        omDebugWarning(OmDiag::BadArgument, "SleepConditionVariableCS",
                       "the calling thread does not own the critical section");
        SetLastError(ERROR_NOT_OWNER);
        return FALSE;
    }
    // The section is left completely and entered again to the same depth.
    LONG depth = CriticalSection->RecursionCount;
    return sleepOnCondition(
        ConditionVariable, dwMilliseconds, [&] { leave(CriticalSection); },
        [&] {
            enter(CriticalSection, tid);
            CriticalSection->RecursionCount = depth;
        });
}

extern "C" BOOL WINAPI SleepConditionVariableSRW(PCONDITION_VARIABLE ConditionVariable,
                                                 PSRWLOCK SRWLock, DWORD dwMilliseconds,
                                                 ULONG Flags)
{
    if (!ConditionVariable || !SRWLock) {
        omDebugWarning(OmDiag::NullPointer, "SleepConditionVariableSRW");
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    bool shared = Flags & CONDITION_VARIABLE_LOCKMODE_SHARED;
    return sleepOnCondition(
        ConditionVariable, dwMilliseconds, [&] { releaseWord(&SRWLock->Ptr); },
        [&] {
            if (shared)
                AcquireSRWLockShared(SRWLock);
            else
                AcquireSRWLockExclusive(SRWLock);
        });
}

extern "C" VOID WINAPI WakeConditionVariable(PCONDITION_VARIABLE ConditionVariable)
{
    if (ConditionVariable)
        wakeCondition(ConditionVariable, 1);
}

extern "C" VOID WINAPI WakeAllConditionVariable(PCONDITION_VARIABLE ConditionVariable)
{
    if (ConditionVariable)
        wakeCondition(ConditionVariable, INT_MAX);
}
