// Events, mutexes and semaphores (creation, names, state changes),
// CloseHandle with its per-kind handlers, and DuplicateHandle.  The waits
// on these objects live in omwait.cpp.
#include "omwaitable.h"

#include "kernel/omdiag.h"
#include "kernel/omstring.h"
#include "kernel/omhandles.h"
#include "kernel/omsync.h"

#include <new>
#include <optional>
#include <string>
#include <unordered_map>

namespace om::kernel {
namespace {

// Names of named objects; events, mutexes and semaphores share one space.
std::unordered_map<std::string, KernelObject *> &names()
{
    static auto *map = new std::unordered_map<std::string, KernelObject *>;
    return *map;
}

std::atomic<OmCloseHandler> g_closeHandlers[64];

bool isOpenSlot(uint64_t value)
{
    uint32_t index = omHandleIndex(value);
    return index != 0 && index < omHandlesCount.load(std::memory_order_acquire) &&
           omHandlesTable[index].kind.load(std::memory_order_acquire) != OM_KIND_FREE;
}

template <class T> T *objectFromHandle(HANDLE h, uint32_t kind)
{
    return static_cast<T *>(static_cast<KernelObject *>(omHandleRecord(omHandleValue(h), kind)));
}

HANDLE handleOf(uint32_t index)
{
    return reinterpret_cast<HANDLE>(static_cast<uintptr_t>(omHandleFromIndex(index)));
}

// objectLock held.  Gives obj one more handle.
HANDLE addHandleLocked(const char *function, KernelObject *obj)
{
    uint32_t index = omAllocHandle(obj->kind, obj);
    if (index == 0) {
        omError(OmDiag::HandleTableFull, function);
        SetLastError(ERROR_NO_SYSTEM_RESOURCES);
        return nullptr;
    }
    ++obj->refs;
    return handleOf(index);
}

std::optional<std::string> utf8Name(const char *name)
{
    if (!name || !*name)
        return std::nullopt;
    return std::string(name);
}

std::optional<std::string> utf8Name(const WCHAR *name)
{
    if (!name || !*name)
        return std::nullopt;
    return om::kernel::utf16ToUtf8(std::u16string_view(name));
}

// Creates an object, or opens the existing one of that name (reporting
// ERROR_ALREADY_EXISTS, as the creation arguments then do not apply).
template <class Char, class Make>
HANDLE createObject(const char *function, uint32_t kind, const Char *rawName, Make make)
{
    try {
        std::optional<std::string> name = utf8Name(rawName);
        std::lock_guard<std::mutex> guard(objectLock());
        if (name) {
            auto it = names().find(*name);
            if (it != names().end()) {
                if (it->second->kind != kind) {
                    SetLastError(ERROR_INVALID_HANDLE);
                    return nullptr;
                }
                HANDLE h = addHandleLocked(function, it->second);
                if (h)
                    SetLastError(ERROR_ALREADY_EXISTS);
                return h;
            }
        }
        KernelObject *obj = make();
        if (!obj) {
            omError(OmDiag::OutOfMemory, function);
            SetLastError(ERROR_NOT_ENOUGH_MEMORY);
            return nullptr;
        }
        if (name) {
            obj->name = *name;
            names().emplace(*name, obj);
        }
        HANDLE h = addHandleLocked(function, obj);
        if (!h) {
            destroyObject(obj);
            return nullptr;
        }
        SetLastError(ERROR_SUCCESS);
        return h;
    } catch (const std::bad_alloc &) {
        omError(OmDiag::OutOfMemory, function);
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
}

template <class Char> HANDLE openObject(const char *function, uint32_t kind, const Char *rawName)
{
    if (!rawName)
        return nullArgument(function, HANDLE(nullptr));
    try {
        std::optional<std::string> name = utf8Name(rawName);
        std::lock_guard<std::mutex> guard(objectLock());
        auto it = name ? names().find(*name) : names().end();
        if (it == names().end()) {
            SetLastError(ERROR_FILE_NOT_FOUND);
            return nullptr;
        }
        if (it->second->kind != kind) {
            SetLastError(ERROR_INVALID_HANDLE);
            return nullptr;
        }
        return addHandleLocked(function, it->second);
    } catch (const std::bad_alloc &) {
        omError(OmDiag::OutOfMemory, function);
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
}

KernelObject *makeMutex(BOOL initialOwner)
{
    auto *m = new (std::nothrow) MutexObject;
    if (m && initialOwner) {
        m->owner = currentThreadId();
        m->recursion = 1;
        linkOwned(m);
    }
    return m;
}

template <class Char> HANDLE createMutex(const char *function, BOOL initialOwner, const Char *name)
{
    if (initialOwner)
        omCurrentThreadRecord();  // an owner's end must be noticed
    return createObject(function, OM_KIND_MUTEX, name, [=] { return makeMutex(initialOwner); });
}

template <class Char>
HANDLE createSemaphore(const char *function, LONG initial, LONG maximum, const Char *name)
{
    if (maximum <= 0 || initial < 0 || initial > maximum) {
        omDebugWarning(OmDiag::UnsupportedValue, function, initial);
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    return createObject(function, OM_KIND_SEMAPHORE, name, [=]() -> KernelObject * {
        return new (std::nothrow) SemaphoreObject(initial, maximum);
    });
}

template <class Char>
HANDLE createEvent(const char *function, BOOL manual, BOOL initial, const Char *name)
{
    return createObject(function, OM_KIND_EVENT, name, [=]() -> KernelObject * {
        return new (std::nothrow) EventObject(manual != FALSE, initial != FALSE);
    });
}

// Sets, resets or pulses an event.
BOOL changeEvent(const char *function, HANDLE h, bool set, bool pulse)
{
    std::lock_guard<std::mutex> guard(objectLock());
    auto *e = objectFromHandle<EventObject>(h, OM_KIND_EVENT);
    if (!e)
        return badHandle(function, h, FALSE);
    e->signalled = set;
    if (set)
        signalWaitable(*e);
    if (pulse)
        e->signalled = false;
    return TRUE;
}

}  // namespace

void destroyObject(KernelObject *obj)
{
    if (!obj->name.empty()) {
        auto it = names().find(obj->name);
        if (it != names().end() && it->second == obj)
            names().erase(it);
    }
    if (obj->type == WaitableType::Mutex) {
        auto *m = static_cast<MutexObject *>(obj);
        if (m->owner != 0)
            unlinkOwned(m);
        delete m;
    } else if (obj->type == WaitableType::Event) {
        delete static_cast<EventObject *>(obj);
    } else {
        delete static_cast<SemaphoreObject *>(obj);
    }
}

}  // namespace om::kernel

using namespace om::kernel;

extern "C" OLMO_API int omRegisterCloseHandler(uint32_t kind, OmCloseHandler handler)
{
    if (kind == OM_KIND_FREE || kind >= 64 || kind == OM_KIND_EVENT || kind == OM_KIND_MUTEX ||
        kind == OM_KIND_SEMAPHORE || kind == OM_KIND_THREAD)
        return 0;
    g_closeHandlers[kind].store(handler, std::memory_order_release);
    return 1;
}

// ---- Events ----

extern "C" HANDLE WINAPI CreateEventA(LPSECURITY_ATTRIBUTES lpEventAttributes, BOOL bManualReset,
                                      BOOL bInitialState, LPCSTR lpName)
{
    (void)lpEventAttributes;
    return createEvent("CreateEventA", bManualReset, bInitialState, lpName);
}

extern "C" HANDLE WINAPI CreateEventW(LPSECURITY_ATTRIBUTES lpEventAttributes, BOOL bManualReset,
                                      BOOL bInitialState, LPCWSTR lpName)
{
    (void)lpEventAttributes;
    return createEvent("CreateEventW", bManualReset, bInitialState, lpName);
}

extern "C" HANDLE WINAPI OpenEventA(DWORD dwDesiredAccess, BOOL bInheritHandle, LPCSTR lpName)
{
    (void)dwDesiredAccess;
    (void)bInheritHandle;
    return openObject("OpenEventA", OM_KIND_EVENT, lpName);
}

extern "C" HANDLE WINAPI OpenEventW(DWORD dwDesiredAccess, BOOL bInheritHandle, LPCWSTR lpName)
{
    (void)dwDesiredAccess;
    (void)bInheritHandle;
    return openObject("OpenEventW", OM_KIND_EVENT, lpName);
}

extern "C" BOOL WINAPI SetEvent(HANDLE hEvent)
{
    return changeEvent("SetEvent", hEvent, true, false);
}

extern "C" BOOL WINAPI ResetEvent(HANDLE hEvent)
{
    return changeEvent("ResetEvent", hEvent, false, false);
}

// Releases the waiters that the signal satisfies at this moment (all of a
// manual-reset event's, one of an auto-reset event's), then resets.
extern "C" BOOL WINAPI PulseEvent(HANDLE hEvent)
{
    return changeEvent("PulseEvent", hEvent, true, true);
}

// ---- Mutexes ----

extern "C" HANDLE WINAPI CreateMutexA(LPSECURITY_ATTRIBUTES lpMutexAttributes, BOOL bInitialOwner,
                                      LPCSTR lpName)
{
    (void)lpMutexAttributes;
    return createMutex("CreateMutexA", bInitialOwner, lpName);
}

extern "C" HANDLE WINAPI CreateMutexW(LPSECURITY_ATTRIBUTES lpMutexAttributes, BOOL bInitialOwner,
                                      LPCWSTR lpName)
{
    (void)lpMutexAttributes;
    return createMutex("CreateMutexW", bInitialOwner, lpName);
}

extern "C" HANDLE WINAPI OpenMutexA(DWORD dwDesiredAccess, BOOL bInheritHandle, LPCSTR lpName)
{
    (void)dwDesiredAccess;
    (void)bInheritHandle;
    return openObject("OpenMutexA", OM_KIND_MUTEX, lpName);
}

extern "C" HANDLE WINAPI OpenMutexW(DWORD dwDesiredAccess, BOOL bInheritHandle, LPCWSTR lpName)
{
    (void)dwDesiredAccess;
    (void)bInheritHandle;
    return openObject("OpenMutexW", OM_KIND_MUTEX, lpName);
}

extern "C" BOOL WINAPI ReleaseMutex(HANDLE hMutex)
{
    uint32_t tid = currentThreadId();
    std::lock_guard<std::mutex> guard(objectLock());
    auto *m = objectFromHandle<MutexObject>(hMutex, OM_KIND_MUTEX);
    if (!m)
        return badHandle("ReleaseMutex", hMutex, FALSE);
    if (m->owner != tid) {
        SetLastError(ERROR_NOT_OWNER);
        return FALSE;
    }
    if (--m->recursion == 0) {
        unlinkOwned(m);
        m->owner = 0;
        signalWaitable(*m);
    }
    return TRUE;
}

// ---- Semaphores ----

extern "C" HANDLE WINAPI CreateSemaphoreA(LPSECURITY_ATTRIBUTES lpSemaphoreAttributes,
                                          LONG lInitialCount, LONG lMaximumCount, LPCSTR lpName)
{
    (void)lpSemaphoreAttributes;
    return createSemaphore("CreateSemaphoreA", lInitialCount, lMaximumCount, lpName);
}

extern "C" HANDLE WINAPI CreateSemaphoreW(LPSECURITY_ATTRIBUTES lpSemaphoreAttributes,
                                          LONG lInitialCount, LONG lMaximumCount, LPCWSTR lpName)
{
    (void)lpSemaphoreAttributes;
    return createSemaphore("CreateSemaphoreW", lInitialCount, lMaximumCount, lpName);
}

extern "C" HANDLE WINAPI OpenSemaphoreA(DWORD dwDesiredAccess, BOOL bInheritHandle, LPCSTR lpName)
{
    (void)dwDesiredAccess;
    (void)bInheritHandle;
    return openObject("OpenSemaphoreA", OM_KIND_SEMAPHORE, lpName);
}

extern "C" HANDLE WINAPI OpenSemaphoreW(DWORD dwDesiredAccess, BOOL bInheritHandle, LPCWSTR lpName)
{
    (void)dwDesiredAccess;
    (void)bInheritHandle;
    return openObject("OpenSemaphoreW", OM_KIND_SEMAPHORE, lpName);
}

extern "C" BOOL WINAPI ReleaseSemaphore(HANDLE hSemaphore, LONG lReleaseCount,
                                        LPLONG lpPreviousCount)
{
    std::lock_guard<std::mutex> guard(objectLock());
    auto *s = objectFromHandle<SemaphoreObject>(hSemaphore, OM_KIND_SEMAPHORE);
    if (!s)
        return badHandle("ReleaseSemaphore", hSemaphore, FALSE);
    if (lReleaseCount <= 0) {
        omDebugWarning(OmDiag::UnsupportedValue, "ReleaseSemaphore", lReleaseCount);
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    if (lReleaseCount > s->max - s->count) {
        SetLastError(ERROR_TOO_MANY_POSTS);
        return FALSE;
    }
    if (lpPreviousCount)
        *lpPreviousCount = s->count;
    s->count += lReleaseCount;
    signalWaitable(*s);
    return TRUE;
}

// ---- Handles ----

extern "C" BOOL WINAPI CloseHandle(HANDLE hObject)
{
    if (isCurrentProcess(hObject))
        return TRUE;  // a pseudo-handle needs no closing
    uint64_t value = omHandleValue(hObject);
    uint32_t index = omHandleIndex(value);
    ThreadRecordImpl *threadToDelete = nullptr;
    uint32_t kind;
    void *record;
    {
        std::lock_guard<std::mutex> guard(objectLock());
        if (index == 0 || index >= omHandlesCount.load(std::memory_order_acquire))
            return badHandle("CloseHandle", hObject, FALSE);
        kind = omHandlesTable[index].kind.load(std::memory_order_acquire);
        record = omHandlesTable[index].record.load(std::memory_order_acquire);
        switch (kind) {
        case OM_KIND_EVENT:
        case OM_KIND_MUTEX:
        case OM_KIND_SEMAPHORE: {
            auto *obj = static_cast<KernelObject *>(record);
            omFreeHandle(index);
            if (--obj->refs == 0)
                destroyObject(obj);
            return TRUE;
        }
        case OM_KIND_THREAD: {
            ThreadRecordImpl *rec = threadFromHandle(value);
            if (!releaseThreadHandle(rec, &threadToDelete)) {
                // No handle is open: only the value GetCurrentThread gives,
                // which stands for Windows' pseudo-handle, may be closed.
                if (!rec->running)
                    return badHandle("CloseHandle", hObject, FALSE);
            }
            break;
        }
        default:
            break;
        }
    }
    if (kind == OM_KIND_THREAD) {
        if (threadToDelete)
            destroyThreadRecord(threadToDelete);
        return TRUE;
    }
    OmCloseHandler handler =
        kind < 64 ? g_closeHandlers[kind].load(std::memory_order_acquire) : nullptr;
    if (handler && handler(index, record))
        return TRUE;
    return badHandle("CloseHandle", hObject, FALSE);
}

extern "C" BOOL WINAPI DuplicateHandle(HANDLE hSourceProcessHandle, HANDLE hSourceHandle,
                                       HANDLE hTargetProcessHandle, LPHANDLE lpTargetHandle,
                                       DWORD dwDesiredAccess, BOOL bInheritHandle, DWORD dwOptions)
{
    (void)dwDesiredAccess;
    (void)bInheritHandle;
    if (!isCurrentProcess(hSourceProcessHandle))
        return badHandle("DuplicateHandle", hSourceProcessHandle, FALSE);
    if (!isCurrentProcess(hTargetProcessHandle))
        return badHandle("DuplicateHandle", hTargetProcessHandle, FALSE);
    if (!lpTargetHandle && !(dwOptions & DUPLICATE_CLOSE_SOURCE))
        return nullArgument("DuplicateHandle", FALSE);
    HANDLE result = nullptr;
    {
        std::lock_guard<std::mutex> guard(objectLock());
        uint64_t value = omHandleValue(hSourceHandle);
        if (isCurrentProcess(hSourceHandle)) {
            result = hSourceHandle;
        } else if (ThreadRecordImpl *rec = threadFromHandle(value)) {
            // A thread has one handle value; each copy is a reference.
            rec->refCount.fetch_add(1, std::memory_order_relaxed);
            result = reinterpret_cast<HANDLE>(static_cast<uintptr_t>(rec->handle));
        } else {
            KernelObject *obj = nullptr;
            for (uint32_t kind : {OM_KIND_EVENT, OM_KIND_MUTEX, OM_KIND_SEMAPHORE}) {
                if (!obj)
                    obj = static_cast<KernelObject *>(omHandleRecord(value, kind));
            }
            if (!obj) {
                // Other modules' objects (files, heaps) have no second handle.
                if (isOpenSlot(value)) {
                    omDebugWarning(OmDiag::Unsupported, "DuplicateHandle");
                    SetLastError(ERROR_NOT_SUPPORTED);
                    return FALSE;
                }
                return badHandle("DuplicateHandle", hSourceHandle, FALSE);
            }
            if (lpTargetHandle) {
                result = addHandleLocked("DuplicateHandle", obj);
                if (!result)
                    return FALSE;
            }
        }
    }
    if (lpTargetHandle)
        *lpTargetHandle = result;
    if (dwOptions & DUPLICATE_CLOSE_SOURCE)
        CloseHandle(hSourceHandle);
    return TRUE;
}

extern "C" BOOL WINAPI GetHandleInformation(HANDLE hObject, LPDWORD lpdwFlags)
{
    if (!lpdwFlags)
        return nullArgument("GetHandleInformation", FALSE);
    if (!isCurrentProcess(hObject) && !isOpenSlot(omHandleValue(hObject)))
        return badHandle("GetHandleInformation", hObject, FALSE);
    *lpdwFlags = 0;  // handles are never inherited: no child process shares them
    return TRUE;
}

extern "C" BOOL WINAPI SetHandleInformation(HANDLE hObject, DWORD dwMask, DWORD dwFlags)
{
    (void)dwMask;
    (void)dwFlags;
    DWORD flags;
    return GetHandleInformation(hObject, &flags);
}
