// Thread records (handle kind 28) and the per-thread wait for messages.
//
// Every thread that calls into Olmo is registered on first use; the first
// thread to be registered is the main thread.  A thread handle is the raw
// slot index (no base), as the user library expects.  The record is shared
// with the user library, which keeps its per-thread queue state behind
// userQueue (created by omInitMsgQ, freed by its thread-exit clean-up).
#pragma once

#include <olmo/platform.h>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <pthread.h>

struct OmAttachNode {
    uint64_t hwnd;
    OmAttachNode *next;
};

struct OmThreadRecord {
    uint32_t handle = 0;    // slot index; also the value GetCurrentThread returns
    uint32_t threadId = 0;  // GetCurrentThreadId (the kernel's thread id)
    pthread_t pthread{};
    bool isMain = false;
    bool createdByUs = false;  // CreateThread made it (else adopted on first use)

    // Windows attached to this thread, guarded by windowListMutex.  Lock
    // order: this mutex before any window's attachment mutex.
    std::mutex windowListMutex;
    OmAttachNode *windows = nullptr;

    std::atomic<bool> quitFlag{false};  // the thread is asked to end

    // Exit state; finished and exitCode are guarded by stateMutex and
    // announced on stateChanged.
    std::mutex stateMutex;
    std::condition_variable stateChanged;
    bool finished = false;
    uint32_t exitCode = 259;  // STILL_ACTIVE
    std::atomic<int> refCount{1};

    // The user library's queue state for this thread.
    void *userQueue = nullptr;
    // The user library's socket notification registrations of this thread.
    void *asyncSelect = nullptr;

    // omWaitQueueMsgSignal sets pending and notifies; omWaitQueueMsg waits.
    std::mutex wakeMutex;
    std::condition_variable wake;
    bool wakePending = false;
};

extern "C" {

// The calling thread's record, registering the thread on first call
// (which runs the user library's per-thread set-up).  Never null unless
// the handle table is full.
OLMO_API OmThreadRecord *omCurrentThreadRecord(void);

// The record of a thread handle (raw index, or with the base), or null.
OLMO_API OmThreadRecord *omThreadRecordFromHandle(uint64_t handle);

// The record of a thread id, or null when no registered thread has it.
OLMO_API OmThreadRecord *omThreadRecordFromId(uint32_t threadId);

OLMO_API uint64_t _omThreadMainThread(void);
OLMO_API uint32_t _omThreadMainThreadId(void);

// Whether threads other than the main thread may own and use windows.
// A run-time switch, on by default.
OLMO_API int omIsUserInterfaceThreadSupported(void);
OLMO_API void omSetUserInterfaceThreadSupported(int on);

// Ends a wait of thread threadId in omWaitQueueMsg at once (or makes its
// next wait return at once).  Any thread; no locks of the caller held.
OLMO_API void omWaitQueueMsgSignal(uint32_t threadId, unsigned message);

// Blocks the calling thread until omWaitQueueMsgSignal names it or
// timeoutMs passes (0xFFFFFFFF: no limit).  Returns nonzero when woken.
OLMO_API int omWaitQueueMsg(uint32_t timeoutMs);

// Sleeps the calling thread for ms milliseconds.
OLMO_API void _om_Sleep(uint32_t ms);

// Per-thread set-up and clean-up of the user library.  onRegister runs on
// a thread when it is registered (or, for a thread registered before the
// hooks were installed, at its next omCurrentThreadRecord call); onExit
// runs on a thread whose onRegister ran, as the thread ends (returning,
// ExitThread, or the main thread's exit()), while its record is still
// whole.  Neither runs under a lock of the kernel layer.
OLMO_API void omSetThreadHooks(void (*onRegister)(OmThreadRecord *),
                               void (*onExit)(OmThreadRecord *));

}  // extern "C"
