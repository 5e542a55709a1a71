// Timers: records behind timer handles, their Xt timeouts (which only the
// main thread runs), and the per-thread pending WM_TIMER lists that the
// timeouts append to from the main thread.
#include "messages/omtimer.h"

#include "core/omwindow.h"
#include "kernel/omdiag.h"
#include "kernel/omdisplay.h"
#include "kernel/omhandles.h"
#include "kernel/omthread.h"

#include <X11/Intrinsic.h>

#include <cstdlib>
#include <ctime>

namespace om::messages {
namespace {

constexpr UINT kDefaultElapse = 50;

// One live timer.  Records and their list are guarded by the Xt
// application lock, which Xt also holds while a timeout runs, so that a
// secondary thread's SetTimer or KillTimer never races the callback.
struct TimerRecord {
    HWND hwnd;
    uint32_t handle;
    UINT_PTR id;
    UINT elapse;
    TIMERPROC proc;
    XtIntervalId timeout;
    uint64_t thread;  // owner of a window-less timer's messages
    long long due;    // when the running timeout should fire, in microseconds
    TimerRecord *prev;
    TimerRecord *next;
};

TimerRecord *g_timers = nullptr;  // newest first

long long nowUs()
{
    timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return ts.tv_sec * 1'000'000LL + ts.tv_nsec / 1000;
}

// The delay until a timer's next expiry, counted from when the last one
// was due rather than from now, so that a timer keeps its rate however
// late the pump ran its timeout.  A timer far behind starts afresh.
// The delay is rounded down to the millisecond the toolkit counts in: a
// timeout that comes early moves the next one no earlier than its due
// time plus the period, so the rate holds on average.
unsigned long nextDelay(TimerRecord *t)
{
    long long now = nowUs();
    long long period = t->elapse * 1000LL;
    t->due += period;
    if (t->due < now - period)
        t->due = now + period;
    return t->due > now ? static_cast<unsigned long>((t->due - now) / 1000) : 0;
}

// The thread whose lists a call with hwnd works on: the window's, or the
// caller's for hwnd 0.  Null for a dead window or a thread without one.
OmThreadRecord *threadFor(HWND hwnd)
{
    if (!hwnd)
        return omCurrentThreadRecord();
    WindowRecord *w = omWindowRecord(hwnd);
    return w ? omThreadRecordFromHandle(w->thread) : nullptr;
}

TimerRecord *findTimer(HWND hwnd, UINT_PTR id)
{
    for (TimerRecord *t = g_timers; t; t = t->next)
        if (t->hwnd == hwnd && t->id == id)
            return t;
    return nullptr;
}

void unlinkTimer(TimerRecord *t)
{
    if (t->prev)
        t->prev->next = t->next;
    else
        g_timers = t->next;
    if (t->next)
        t->next->prev = t->prev;
}

// App lock held.
BOOL killTimer(HWND hwnd, UINT_PTR id)
{
    TimerRecord *t = findTimer(hwnd, id);
    if (!t || !omHandleRecord(t->handle, OM_KIND_TIMER))
        return FALSE;
    unlinkTimer(t);
    if (t->timeout)
        XtRemoveTimeOut(t->timeout);
    omFreeHandle(t->handle);
    XtFree(reinterpret_cast<char *>(t));
    return TRUE;
}

struct AddRequest {
    HWND hwnd;
    UINT_PTR id;
    LPARAM lParam;
    int x;
    int y;
    DWORD time;
};

int appendLocked(OmTimerMsgList *list, void *context)
{
    auto *req = static_cast<AddRequest *>(context);
    if (OmTimerMsgItem *i = list->cursor) {
        // Coalescing: one visit of every item, starting at the cursor.
        do {
            if (i->hwnd == req->hwnd && i->id == req->id)
                return 0;
            i = i->next ? i->next : list->first;
        } while (i != list->cursor);
    }
    auto *item = static_cast<OmTimerMsgItem *>(std::malloc(sizeof(OmTimerMsgItem)));
    if (!item)
        return -1;
    *item = {list->last, nullptr, req->hwnd, req->id, req->lParam, req->x, req->y, req->time};
    if (list->last)
        list->last->next = item;
    else
        list->first = list->cursor = item;
    list->last = item;
    return 1;
}

BOOL addMsgTo(OmThreadRecord *thread, HWND hwnd, UINT_PTR id, LPARAM lParam)
{
    if (!thread)
        return FALSE;
    AddRequest req{hwnd, id, lParam, 0, 0, omLastMessageTime()};
    omLastMessagePos(&req.x, &req.y);
    int added = omWithTimerMsgList(thread, appendLocked, &req);
    if (added < 0)
        return FALSE;
    // The owner may sleep in its own wait; the main thread is the one
    // running timeouts and needs no wake for its own list.
    if (added > 0)
        omWaitQueueMsgSignal(thread->threadId, WM_TIMER);
    return TRUE;
}

void timerCallback(XtPointer closure, XtIntervalId *)
{
    auto handle = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(closure));
    auto *t = static_cast<TimerRecord *>(omHandleRecord(handle, OM_KIND_TIMER));
    if (!t)
        return;
    // The timeout that fired is spent: KillTimer below must not remove it.
    t->timeout = 0;
    if (t->hwnd && !omIsWindow(t->hwnd)) {
        unlinkTimer(t);
        omFreeHandle(t->handle);
        XtFree(reinterpret_cast<char *>(t));
        return;
    }
    HWND hwnd = t->hwnd;
    UINT_PTR id = t->id;
    if (!t->proc)
        addMsgTo(hwnd ? threadFor(hwnd) : omThreadRecordFromHandle(t->thread), hwnd, id, 0);
    else
        t->proc(hwnd, WM_TIMER, id, GetTickCount());
    // The procedure may have killed or replaced its timer.
    t = static_cast<TimerRecord *>(omHandleRecord(handle, OM_KIND_TIMER));
    if (t && t->timeout == 0)
        t->timeout = XtAppAddTimeOut(omAppContext, nextDelay(t), timerCallback, closure);
}

}  // namespace
}  // namespace om::messages

using namespace om::messages;

extern "C" UINT_PTR WINAPI SetTimer(HWND hwnd, UINT_PTR id, UINT elapse, TIMERPROC proc)
{
    if (!omThreadRuleOk("SetTimer"))
        return 0;
    if (hwnd && !omIsWindow(hwnd)) {
        omDebugWarning(OmDiag::BadWindowHandle, "SetTimer", hwnd);
        return 0;
    }
    OmThreadRecord *thread = threadFor(hwnd);
    if (!thread || !omAppContext)
        return 0;
    OmAppLock lock;
    if (!hwnd) {
        if (omHandleRecord(id, OM_KIND_TIMER))
            killTimer(nullptr, id);
    } else if (id == 0) {
        id = 1;  // the id a window timer given 0 is known by
        killTimer(hwnd, id);
    } else {
        killTimer(hwnd, id);
    }
    auto *t = reinterpret_cast<TimerRecord *>(XtMalloc(sizeof(TimerRecord)));
    if (!t) {
        omError(OmDiag::OutOfMemory, "SetTimer");
        return 0;
    }
    uint32_t index = omAllocHandle(OM_KIND_TIMER, t);
    if (!index) {
        XtFree(reinterpret_cast<char *>(t));
        omError(OmDiag::HandleTableFull, "SetTimer");
        return 0;
    }
    uint32_t handle = static_cast<uint32_t>(omHandleFromIndex(index));
    *t = {hwnd, handle, hwnd ? id : handle, elapse ? elapse : kDefaultElapse, proc, 0,
          thread->handle, 0, nullptr, g_timers};
    t->due = nowUs() + t->elapse * 1000LL;
    if (g_timers)
        g_timers->prev = t;
    g_timers = t;
    t->timeout = XtAppAddTimeOut(omAppContext, t->elapse, timerCallback,
                                 reinterpret_cast<XtPointer>(static_cast<uintptr_t>(handle)));
    return t->id;
}

extern "C" BOOL WINAPI KillTimer(HWND hwnd, UINT_PTR id)
{
    if (!omThreadRuleOk("KillTimer"))
        return FALSE;
    if (hwnd && !omIsWindow(hwnd)) {
        omDebugWarning(OmDiag::BadWindowHandle, "KillTimer", hwnd);
        return FALSE;
    }
    if (!omAppContext)
        return FALSE;
    OmAppLock lock;
    return killTimer(hwnd, hwnd && id == 0 ? 1 : id);
}

extern "C" OLMO_API BOOL omTimerAddMsg(HWND hwnd, UINT_PTR id, LPARAM lParam)
{
    if (hwnd && !omIsWindow(hwnd))
        return FALSE;
    return addMsgTo(threadFor(hwnd), hwnd, id, lParam);
}

extern "C" OLMO_API BOOL omTimerIsQueueEmpty(void)
{
    int pending = omWithTimerMsgList(
        omCurrentThreadRecord(),
        [](OmTimerMsgList *list, void *) { return list->cursor ? 1 : 0; }, nullptr);
    return pending > 0 ? FALSE : TRUE;
}

extern "C" OLMO_API void omTimerSetMsg(const OmTimerMsgItem *item, MSG *msg)
{
    *msg = MSG{};
    msg->hwnd = item->hwnd;
    msg->message = WM_TIMER;
    msg->wParam = item->id;
    msg->lParam = item->lParam;
    msg->pt.x = item->x;
    msg->pt.y = item->y;
    msg->time = item->time;
}

extern "C" OLMO_API void omTimerDelMsgItem(OmTimerMsgList *list, OmTimerMsgItem *item)
{
    if (list->cursor == item)
        list->cursor = item->next;
    if (item->prev)
        item->prev->next = item->next;
    else
        list->first = item->next;
    if (item->next)
        item->next->prev = item->prev;
    else
        list->last = item->prev;
    std::free(item);
    if (!list->cursor)
        list->cursor = list->first;
}

namespace {
// The window filter of the calling thread's previous timer peek: a new
// filter starts again from the first item.
thread_local HWND t_lastTimerFilter = nullptr;
}  // namespace

extern "C" OLMO_API BOOL omTimerPeekMessage(MSG *msg, HWND hwnd, UINT min, UINT max, UINT flags)
{
    if (!msg)
        return FALSE;
    if ((min || max) && (max < WM_TIMER || min > WM_TIMER))
        return FALSE;
    const HWND threadTimers = reinterpret_cast<HWND>(static_cast<intptr_t>(-1));
    OmThreadRecord *t;
    if (hwnd && hwnd != threadTimers) {
        if (!omIsWindow(hwnd))
            return FALSE;
        t = threadFor(hwnd);
    } else {
        t = omCurrentThreadRecord();
    }
    struct Ask {
        MSG *msg;
        HWND hwnd;
        bool remove;
        bool filterChanged;
    } ask{msg, hwnd, (flags & PM_REMOVE) != 0, hwnd != t_lastTimerFilter};
    t_lastTimerFilter = hwnd;
    int got = omWithTimerMsgList(
        t,
        [](OmTimerMsgList *list, void *c) -> int {
            auto &a = *static_cast<Ask *>(c);
            if (!list->cursor)
                return 0;
            if (a.filterChanged)
                list->cursor = list->first;
            OmTimerMsgItem *i = list->cursor;
            if (a.hwnd) {
                HWND want = a.hwnd == reinterpret_cast<HWND>(static_cast<intptr_t>(-1))
                                ? nullptr
                                : a.hwnd;
                if (i->hwnd != want && !(want && i->hwnd && IsChild(want, i->hwnd)))
                    return 0;
            }
            omTimerSetMsg(i, a.msg);
            if (a.remove)
                omTimerDelMsgItem(list, i);
            return 1;
        },
        &ask);
    return got > 0;
}

#ifdef OLMO_MESSAGES_TEST_ACCESS
extern "C" OLMO_API int omTestTakeTimerMessage(HANDLE thread, MSG *out)
{
    OmThreadRecord *t = thread ? omThreadRecordFromHandle(omHandleValue(thread))
                               : omCurrentThreadRecord();
    int taken = omWithTimerMsgList(
        t,
        [](OmTimerMsgList *list, void *context) {
            if (!list->cursor)
                return 0;
            omTimerSetMsg(list->cursor, static_cast<MSG *>(context));
            omTimerDelMsgItem(list, list->cursor);
            return 1;
        },
        out);
    return taken > 0;
}
#endif
