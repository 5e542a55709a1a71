// Window hooks: the eleven process-wide chains, installing and removing
// hooks, running a chain for the library's hook points and CallMsgFilter,
// CallNextHookEx; and SystemParametersInfo's few font and work-area answers.
#include "messages/omhook.h"

#include "kernel/omdiag.h"
#include "kernel/omhandles.h"
#include "kernel/omthread.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <mutex>
#include <new>

namespace om::messages {
namespace {

// One installed hook.  Records are freed only when unlinked and no walk
// holds them (refs), so a walk may call a hook while another thread, or
// the hook itself, removes any record of the chain.
struct HookRecord {
    HookRecord *prev;
    HookRecord *next;
    HOOKPROC proc;
    int type;
    HINSTANCE module;
    DWORD thread;                // 0: every thread
    uint32_t handle;             // slot of kind OM_KIND_HOOK
    int refs;                    // walks holding the record (hook mutex)
    std::atomic<bool> removed;   // unlinked; skipped by walks that hold it
};

struct HookChain {
    HookRecord *head;           // newest first (hook mutex)
    std::atomic<int> count;     // linked records, readable without the mutex
};

// Types WH_MSGFILTER (-1) to WH_DEBUG (9), indexed by type + 1.
constexpr int kFirstChainType = WH_MSGFILTER;
constexpr int kLastChainType = WH_DEBUG;
HookChain chains[kLastChainType - kFirstChainType + 1];

// Guards every chain, record links and refs.  Never held while a hook runs.
std::mutex omHookInvokeMutex;

// The order in which a handle-less search looks through the chains.
constexpr int kSearchOrder[] = {WH_MSGFILTER, WH_SYSMSGFILTER,    WH_CALLWNDPROC,
                                WH_GETMESSAGE, WH_KEYBOARD,       WH_MOUSE,
                                WH_CBT,        WH_DEBUG,          WH_HARDWARE,
                                WH_JOURNALPLAYBACK, WH_JOURNALRECORD};

HookChain *chainOf(int type)
{
    if (type < kFirstChainType || type > kLastChainType)
        return nullptr;
    return &chains[type - kFirstChainType];
}

// A hook installed for one thread serves that thread alone; without
// user-interface threads every hook runs on the main thread anyway.
bool appliesToCaller(const HookRecord *r)
{
    return r->thread == 0 || !omIsUserInterfaceThreadSupported() ||
           r->thread == GetCurrentThreadId();
}

// Frees an unlinked record once the last walk lets go of it.  Mutex held.
void releaseLocked(HookRecord *r)
{
    if (--r->refs == 0 && r->removed.load(std::memory_order_relaxed))
        delete r;
}

// Unlinks a record and frees its handle, so no later lookup finds it;
// the memory goes when no walk holds it.  Mutex held.
void unlinkLocked(HookRecord *r)
{
    HookChain *c = chainOf(r->type);
    if (r->prev)
        r->prev->next = r->next;
    else
        c->head = r->next;
    if (r->next)
        r->next->prev = r->prev;
    c->count.fetch_sub(1, std::memory_order_release);
    omFreeHandle(r->handle);
    r->removed.store(true, std::memory_order_relaxed);
    if (r->refs == 0)
        delete r;
}

HookRecord *fromHandleLocked(HHOOK hhk)
{
    return static_cast<HookRecord *>(omHandleRecord(omHandleValue(hhk), OM_KIND_HOOK));
}

// The records of a chain at one moment, each held, so that calling them
// with the mutex released is safe whatever the hooks do.
class Snapshot {
public:
    explicit Snapshot(HookChain *c)
    {
        std::lock_guard<std::mutex> guard(omHookInvokeMutex);
        size_t n = static_cast<size_t>(c->count.load(std::memory_order_relaxed));
        if (n > kLocal) {
            items_ = static_cast<HookRecord **>(std::malloc(n * sizeof(HookRecord *)));
            if (!items_) {
                omError(OmDiag::OutOfMemory, "omInvokeHookFunc");
                return;
            }
        }
        for (HookRecord *r = c->head; r && size_ < n; r = r->next) {
            ++r->refs;
            items_[size_++] = r;
        }
    }
    ~Snapshot()
    {
        if (size_) {
            std::lock_guard<std::mutex> guard(omHookInvokeMutex);
            for (size_t i = 0; i < size_; ++i)
                releaseLocked(items_[i]);
        }
        if (items_ != local_)
            std::free(items_);
    }
    Snapshot(const Snapshot &) = delete;
    Snapshot &operator=(const Snapshot &) = delete;

    size_t size() const { return size_; }
    HookRecord *operator[](size_t i) const { return items_[i]; }

private:
    static constexpr size_t kLocal = 16;
    HookRecord *local_[kLocal];
    HookRecord **items_ = local_;
    size_t size_ = 0;
};

bool live(const HookRecord *r)
{
    return !r->removed.load(std::memory_order_relaxed) && appliesToCaller(r);
}

// Asks the debug hooks whether the hook `r` of chain `type` may run.
bool debugHooksSkip(const HookRecord *r, int type, WPARAM wParam, LPARAM lParam, int code)
{
    HookChain *debug = chainOf(WH_DEBUG);
    if (type == WH_DEBUG || debug->count.load(std::memory_order_acquire) == 0)
        return false;
    Snapshot hooks(debug);
    for (size_t i = 0; i < hooks.size(); ++i) {
        if (!live(hooks[i]))
            continue;
        DEBUGHOOKINFO info{GetCurrentThreadId(), r->thread, lParam, wParam, code};
        if (hooks[i]->proc(HC_ACTION, static_cast<WPARAM>(type),
                           reinterpret_cast<LPARAM>(&info)) != 0)
            return true;
    }
    return false;
}

HHOOK insertHook(int type, HOOKPROC proc, HINSTANCE module, DWORD thread)
{
    std::lock_guard<std::mutex> guard(omHookInvokeMutex);
    HookChain *c = chainOf(type);
    if (!c)
        return nullptr;
    // One record per procedure and chain; with user-interface threads, one
    // per procedure, chain and thread, so each thread can take its own out.
    bool perThread = omIsUserInterfaceThreadSupported();
    for (HookRecord *r = c->head; r; r = r->next)
        if (r->proc == proc && (!perThread || r->thread == thread))
            return reinterpret_cast<HHOOK>(omHandleFromIndex(r->handle));
    auto *r = new (std::nothrow) HookRecord();
    uint32_t slot = r ? omAllocHandle(OM_KIND_HOOK, r) : 0;
    if (!slot) {
        delete r;
        omError(OmDiag::OutOfMemory, "omInsertHook");
        return nullptr;
    }
    r->proc = proc;
    r->type = type;
    r->module = module;
    r->thread = thread;
    r->handle = slot;
    r->next = c->head;
    if (c->head)
        c->head->prev = r;
    c->head = r;
    c->count.fetch_add(1, std::memory_order_release);
    return reinterpret_cast<HHOOK>(omHandleFromIndex(slot));
}

// The old form names a hook by its procedure: the first chain (in search
// order) holding `proc`, then from that record on the first one that the
// caller may remove, its own thread's or a process-wide one.
BOOL removeHookByProc(HOOKPROC proc)
{
    std::lock_guard<std::mutex> guard(omHookInvokeMutex);
    for (int type : kSearchOrder) {
        HookRecord *r = chainOf(type)->head;
        while (r && r->proc != proc)
            r = r->next;
        if (!r)
            continue;
        bool uiThreads = omIsUserInterfaceThreadSupported();
        DWORD self = GetCurrentThreadId();
        for (; r; r = r->next) {
            if (r->proc == proc && (!uiThreads || r->thread == 0 || r->thread == self)) {
                unlinkLocked(r);
                return TRUE;
            }
        }
        return FALSE;
    }
    return FALSE;
}

}  // namespace
}  // namespace om::messages

using namespace om::messages;

extern "C" BOOL omIsHooked(int type)
{
    HookChain *c = chainOf(type);
    return c && c->count.load(std::memory_order_acquire) > 0;
}

extern "C" BOOL omHookCanPrevent(int type, int code)
{
    switch (type) {
    case WH_MSGFILTER:
    case WH_KEYBOARD:
    case WH_SYSMSGFILTER:
    case WH_MOUSE:
    case WH_DEBUG:
        return TRUE;
    case WH_CBT:
        return code != HCBT_QS && code != HCBT_CLICKSKIPPED && code != HCBT_KEYSKIPPED;
    default:
        return FALSE;
    }
}

extern "C" LRESULT omInvokeHookFunc(int type, WPARAM wParam, LPARAM lParam, int code,
                                    int *installed)
{
    HookChain *c = chainOf(type);
    if (installed)
        *installed = c ? 1 : 0;
    if (!c || c->count.load(std::memory_order_acquire) == 0)
        return 0;
    Snapshot hooks(c);
    LRESULT result = 0;
    for (size_t i = 0; i < hooks.size(); ++i) {
        HookRecord *r = hooks[i];
        if (!live(r) || debugHooksSkip(r, type, wParam, lParam, code))
            continue;
        result = r->proc(code, wParam, lParam);
        if (result != 0 && omHookCanPrevent(type, code))
            break;
    }
    return result;
}

extern "C" HHOOK WINAPI SetWindowsHookExA(int idHook, HOOKPROC lpfn, HINSTANCE hmod,
                                          DWORD dwThreadId)
{
    if (!lpfn)
        return nullptr;
    return insertHook(idHook, lpfn, hmod, dwThreadId);
}

extern "C" HHOOK WINAPI SetWindowsHookExW(int idHook, HOOKPROC lpfn, HINSTANCE hmod,
                                          DWORD dwThreadId)
{
    return SetWindowsHookExA(idHook, lpfn, hmod, dwThreadId);
}

extern "C" HHOOK WINAPI SetWindowsHookA(int nFilterType, HOOKPROC pfnFilterProc)
{
    return SetWindowsHookExA(nFilterType, pfnFilterProc, nullptr, 0);
}

extern "C" HHOOK WINAPI SetWindowsHookW(int nFilterType, HOOKPROC pfnFilterProc)
{
    return SetWindowsHookExA(nFilterType, pfnFilterProc, nullptr, 0);
}

// Any thread may remove a hook by its handle; the thread rule applies to
// the old form, where a procedure alone does not say which record is meant.
extern "C" BOOL WINAPI UnhookWindowsHookEx(HHOOK hhk)
{
    std::lock_guard<std::mutex> guard(omHookInvokeMutex);
    HookRecord *r = fromHandleLocked(hhk);
    if (!r)
        return FALSE;
    unlinkLocked(r);
    return TRUE;
}

extern "C" BOOL WINAPI UnhookWindowsHook(int nCode, HOOKPROC pfnFilterProc)
{
    (void)nCode;  // the procedure alone finds the record, as it always did
    if (!pfnFilterProc)
        return FALSE;
    return removeHookByProc(pfnFilterProc);
}

extern "C" LRESULT WINAPI CallNextHookEx(HHOOK hhk, int nCode, WPARAM wParam, LPARAM lParam)
{
    HookRecord *next = nullptr;
    {
        std::lock_guard<std::mutex> guard(omHookInvokeMutex);
        HookRecord *r = fromHandleLocked(hhk);
        if (!r)
            return 0;
        next = r->next;
        while (next && !appliesToCaller(next))
            next = next->next;
        if (!next)
            return 0;
        ++next->refs;
    }
    LRESULT result = next->proc(nCode, wParam, lParam);
    std::lock_guard<std::mutex> guard(omHookInvokeMutex);
    releaseLocked(next);
    return result;
}

extern "C" BOOL WINAPI CallMsgFilterA(LPMSG lpMsg, int nCode)
{
    if (!lpMsg)
        return TRUE;
    LPARAM msg = reinterpret_cast<LPARAM>(lpMsg);
    if (omInvokeHookFunc(WH_SYSMSGFILTER, 0, msg, nCode, nullptr) != 0)
        return TRUE;
    return omInvokeHookFunc(WH_MSGFILTER, 0, msg, nCode, nullptr) != 0;
}

// A MSG carries no text, so the wide form has nothing to convert.
extern "C" BOOL WINAPI CallMsgFilterW(LPMSG lpMsg, int nCode)
{
    return CallMsgFilterA(lpMsg, nCode);
}

// The desktop has no separate taskbar area and every system font is the
// default GUI font, so these few queries are all programs need answered.
extern "C" BOOL WINAPI SystemParametersInfoA(UINT uiAction, UINT uiParam, PVOID pvParam,
                                             UINT fWinIni)
{
    (void)fWinIni;
    switch (uiAction) {
    case SPI_GETICONTITLELOGFONT:
    case SPI_GETNONCLIENTMETRICS:
    case SPI_GETWORKAREA:
        break;
    default:
        omDebugWarning(OmDiag::UnsupportedValue, "SystemParametersInfo", uiAction);
        return FALSE;
    }
    if (!pvParam) {
        omDebugWarning(OmDiag::NullPointer, "SystemParametersInfo");
        return FALSE;
    }
    switch (uiAction) {
    case SPI_GETICONTITLELOGFONT:
        GetObjectA(GetStockObject(DEFAULT_GUI_FONT), static_cast<int>(uiParam), pvParam);
        break;
    case SPI_GETNONCLIENTMETRICS: {
        // Only the menu font is filled; the other fields keep what the
        // caller put there.
        static_assert(offsetof(NONCLIENTMETRICSA, lfMenuFont) == 0xA0);
        auto *metrics = static_cast<NONCLIENTMETRICSA *>(pvParam);
        GetObjectA(GetStockObject(DEFAULT_GUI_FONT), sizeof(LOGFONTA), &metrics->lfMenuFont);
        break;
    }
    default:
        GetWindowRect(GetDesktopWindow(), static_cast<LPRECT>(pvParam));
        break;
    }
    return TRUE;
}

extern "C" BOOL WINAPI SystemParametersInfoW(UINT uiAction, UINT uiParam, PVOID pvParam,
                                             UINT fWinIni)
{
    (void)fWinIni;
    if (uiAction != SPI_GETICONTITLELOGFONT) {
        omDebugWarning(OmDiag::Unsupported, "SystemParametersInfoW");
        return FALSE;
    }
    if (!pvParam) {
        omDebugWarning(OmDiag::NullPointer, "SystemParametersInfoW");
        return FALSE;
    }
    GetObjectW(GetStockObject(DEFAULT_GUI_FONT), static_cast<int>(uiParam), pvParam);
    return TRUE;
}
