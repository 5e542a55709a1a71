// CloseHandle's dispatch for the kernel layer's other objects.  CloseHandle
// itself closes events, mutexes, semaphores and threads; a module whose
// objects live in other slot kinds (files, find handles, ...) registers a
// handler for its kind, which CloseHandle calls for handles of that kind.
#pragma once

#include <olmo/platform.h>

#include <cstdint>

extern "C" {

// Closes the object in slot index (whose record the slot held when
// CloseHandle looked).  The handler frees the slot (omFreeHandle) and the
// record, and returns false when the handle was not open after all, for
// which CloseHandle reports ERROR_INVALID_HANDLE.  It runs under no lock of
// the synchronisation module.
typedef bool (*OmCloseHandler)(uint32_t index, void *record);

// Installs (or with null removes) the handler of a slot kind below 64.
// Returns 0 for the kinds CloseHandle closes itself and for kinds out of
// range.  Any thread.
OLMO_API int omRegisterCloseHandler(uint32_t kind, OmCloseHandler handler);

// How many waits are blocked on the object of a handle right now (-1 for
// a handle that cannot be waited on).  For tests and diagnostics: the
// answer may be stale by the time the caller looks at it.
OLMO_API int omWaitersOf(uint64_t handle);

}  // extern "C"
