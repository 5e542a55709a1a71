// The per-thread posted-message queue: each thread record's queue state,
// the record pool with its growth and one-step-a-minute shrink, posting
// and head insertion, the main thread's wake pipe and heartbeat, the queue
// probe and the thread's ring of recently retrieved messages.
#include "messages/ommessageq.h"
#include "messages/omtimer.h"
#include "messages/omasyncselect.h"

#include "core/omwindow.h"
#include "kernel/omdiag.h"
#include "kernel/omdisplay.h"
#include "kernel/omhandles.h"
#include "kernel/omkeyboard.h"
#include "kernel/omthread.h"

#include <X11/Intrinsic.h>
#include <X11/keysym.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <mutex>
#include <unistd.h>
#include <vector>

extern "C" {
OLMO_API unsigned omMsgQLimit = 256;
OLMO_API unsigned omSecondaryThreadMsgQLimit = 64;
}

namespace om::messages {

constexpr int kRingSize = 10;
constexpr unsigned kHeartbeatMs = 100;

// What the user library keeps behind OmThreadRecord::userQueue.
struct ThreadQueue {
    std::mutex lock;  // pool, free list, queue and capacity
    OmMsgRecord *pool = nullptr;
    OmMsgRecord *freeList = nullptr;
    OmMsgRecord *head = nullptr;
    OmMsgRecord **tail = &head;
    OmTimerMsgList timerMsgs{};  // pending WM_TIMER items, under lock too
    OmPaintList paint{};         // windows waiting for WM_PAINT, under lock too
    std::atomic<unsigned> queued{0};  // records in the queue, read without the lock
    OmSendState *send = nullptr;      // from the pool below, never freed
    // Whether the paint and timer lists hold anything, kept under the lock
    // and read without it, so that retrieval with nothing to paint or time
    // takes no lock.
    std::atomic<bool> hasPaint{false};
    std::atomic<bool> hasTimer{false};
    // Main thread: set while it is in retrieval and will look at its queue
    // before it next sleeps, so that other threads need not write a wake
    // byte (a system call on each side) for every message they give it.
    std::atomic<bool> awake{false};
    unsigned capacity = 0;
    time_t lastShrink = 0;
    bool warnedExhausted = false;

    uint32_t threadId = 0;
    bool isMain = false;
    std::atomic<bool> canSend{false};

    // Main thread only: the pipe a post from another thread writes to so
    // that the X wait returns.  wakePending keeps it to one byte per wait.
    int wakePipe[2] = {-1, -1};
    std::atomic<bool> wakePending{false};
    XtInputId input = 0;
    XtIntervalId heartbeat = 0;

    // Touched by the owning thread only: retrieval's view of the last
    // message, and the ring of recent messages.
    int lastX = 0;
    int lastY = 0;
    DWORD lastTime = 0;
    OmMsgRecord ring[kRingSize];
    int ringWrite = kRingSize - 1;
};

namespace {

std::atomic<unsigned> g_wakeCount{0};
std::atomic<time_t (*)(void)> g_clock{nullptr};

time_t queueClock()
{
    if (auto c = g_clock.load(std::memory_order_acquire))
        return c();
    return time(nullptr);
}

// Send states outlive their threads: a sender may still hold the state of
// a receiver that has just ended (to read its answer under that state's
// lock), so states go back to this pool, not to the heap, and serve the
// next thread.  The pool holds at most as many as threads ever ran at once.
// Never destroyed: threads may still end while the process exits.
std::mutex &g_sendPoolLock = *new std::mutex;
std::vector<OmSendState *> &g_sendPool = *new std::vector<OmSendState *>;

OmSendState *takeSendState()
{
    {
        std::lock_guard<std::mutex> g(g_sendPoolLock);
        if (!g_sendPool.empty()) {
            OmSendState *s = g_sendPool.back();
            g_sendPool.pop_back();
            return s;
        }
    }
    return new OmSendState;
}

void giveBackSendState(OmSendState *s)
{
    {
        std::lock_guard<std::mutex> g(s->lock);
        s->first = s->last = nullptr;
        s->pending.store(false, std::memory_order_relaxed);
    }
    {
        std::lock_guard<std::mutex> g(s->eventLock);
        s->eventSignalled = false;
    }
    s->current = s->awaited = nullptr;
    s->result = 0;
    s->inSendMessage = 0;
    std::lock_guard<std::mutex> g(g_sendPoolLock);
    g_sendPool.push_back(s);
}

ThreadQueue *queueOf(OmThreadRecord *t)
{
    return t ? static_cast<ThreadQueue *>(t->userQueue) : nullptr;
}

ThreadQueue *queueOfHandle(HANDLE thread)
{
    return queueOf(omThreadRecordFromHandle(omHandleValue(thread)));
}

ThreadQueue *currentQueue()
{
    return queueOf(omCurrentThreadRecord());
}

bool callerIsMain()
{
    return GetCurrentThreadId() == _omThreadMainThreadId();
}

unsigned stepForCaller()
{
    return callerIsMain() ? omMsgQLimit : omSecondaryThreadMsgQLimit;
}

void chainFree(OmMsgRecord *records, unsigned count, OmMsgRecord *after)
{
    for (unsigned i = 0; i + 1 < count; ++i)
        records[i].link = &records[i + 1];
    if (count)
        records[count - 1].link = after;
}

// Lock held; every record is queued.  Pointers are turned into indices
// before the reallocation and back after it.
bool growQueue(ThreadQueue *q)
{
    unsigned step = stepForCaller();
    unsigned newCap = q->capacity + step;
    auto index = [&](OmMsgRecord *p) -> long { return p ? p - q->pool : -1; };
    long headIndex = index(q->head);
    long tailIndex = q->tail == &q->head ? -1 : index(reinterpret_cast<OmMsgRecord *>(
                                                       reinterpret_cast<char *>(q->tail) -
                                                       offsetof(OmMsgRecord, link)));
    for (unsigned i = 0; i < q->capacity; ++i)
        q->pool[i].link = reinterpret_cast<OmMsgRecord *>(index(q->pool[i].link) + 1);
    auto *pool = static_cast<OmMsgRecord *>(std::realloc(q->pool, newCap * sizeof(OmMsgRecord)));
    OmMsgRecord *base = pool ? pool : q->pool;
    for (unsigned i = 0; i < q->capacity; ++i) {
        long li = reinterpret_cast<long>(base[i].link) - 1;
        base[i].link = li < 0 ? nullptr : &base[li];
    }
    if (!pool) {
        omError(OmDiag::OutOfMemory, "omPostMessageEvent");
        return false;
    }
    q->pool = pool;
    q->head = headIndex < 0 ? nullptr : &pool[headIndex];
    q->tail = tailIndex < 0 ? &q->head : &pool[tailIndex].link;
    chainFree(pool + q->capacity, step, nullptr);
    q->freeList = pool + q->capacity;
    q->capacity = newCap;
    return true;
}

// Lock held, queue empty: one growth step back at most once a minute.
void shrinkQueue(ThreadQueue *q)
{
    time_t now = queueClock();
    if (now == static_cast<time_t>(-1))
        return;
    unsigned limit = stepForCaller();
    if (q->lastShrink == 0) {
        q->lastShrink = now;
        return;
    }
    if (now - q->lastShrink <= 59 || q->capacity <= limit)
        return;
    unsigned newCap = q->capacity - limit < limit ? limit : q->capacity - limit;
    auto *pool = static_cast<OmMsgRecord *>(std::malloc(newCap * sizeof(OmMsgRecord)));
    if (!pool) {
        omError(OmDiag::OutOfMemory, "omShrinkMessageQ");
        return;
    }
    std::free(q->pool);
    q->pool = pool;
    chainFree(pool, newCap, nullptr);
    q->freeList = pool;
    q->head = nullptr;
    q->tail = &q->head;
    q->capacity = newCap;
    q->lastShrink = now;
}

// Lock held: a free record, growing the pool when none is left.
OmMsgRecord *takeFree(ThreadQueue *q, const char *function)
{
    if (!q->freeList) {
        if (!q->warnedExhausted) {
            omDebugWarning(OmDiag::QueueFreeListExhausted, function);
            q->warnedExhausted = true;
        }
        if (!growQueue(q))
            return nullptr;
    }
    OmMsgRecord *r = q->freeList;
    q->freeList = r->link;
    return r;
}

// One byte per wait: a byte is written only when wakePending goes from
// clear to set, and the reader takes one byte each time it clears it.
// Needs no lock.
void wakeMain(ThreadQueue *q, int retries)
{
    // Sequentially consistent with the retrieval's clearing of awake and
    // its look at the queue: one of the two sees the other.
    if (q->awake.load(std::memory_order_seq_cst))
        return;
    if (q->wakePipe[1] < 0 || q->wakePending.exchange(true, std::memory_order_acq_rel))
        return;
    for (int i = 0; i <= retries; ++i) {
        if (write(q->wakePipe[1], "c", 1) == 1)
            return;
        if (errno == EAGAIN)
            return;  // the pipe is full of wakes already
    }
    q->wakePending.store(false, std::memory_order_release);
}

void threadInput(XtPointer closure, int *fd, XtInputId *)
{
    auto *q = static_cast<ThreadQueue *>(closure);
    // Clear, then take the one byte the set flag stood for.  A post
    // between the two sets the flag again and writes its own byte, which
    // stays for the next round: taking every byte here could take that one
    // too and leave the flag set over an empty pipe, after which no post
    // would write again.
    q->wakePending.exchange(false, std::memory_order_acq_rel);
    char byte;
    (void)!read(*fd, &byte, 1);
    g_wakeCount.fetch_add(1, std::memory_order_relaxed);
}

// Keeps the X wait from sleeping longer than the heartbeat, so that work
// polled between events (socket notifications) is seen ten times a second.
void heartbeat(XtPointer closure, XtIntervalId *)
{
    auto *q = static_cast<ThreadQueue *>(closure);
    q->heartbeat = XtAppAddTimeOut(omAppContext, kHeartbeatMs, heartbeat, q);
}

// The queue a post goes to, or null.
ThreadQueue *targetQueue(HWND hwnd, HANDLE thread, int byThread, OmThreadRecord **owner)
{
    OmThreadRecord *t = nullptr;
    if (hwnd) {
        WindowRecord *w = omWindowRecord(hwnd);
        if (w && w->thread)
            t = omThreadRecordFromHandle(w->thread);
    }
    if (!t && !byThread && thread)
        t = omThreadRecordFromHandle(omHandleValue(thread));
    if (!t && !byThread)
        t = omCurrentThreadRecord();
    *owner = t;
    return queueOf(t);
}

void fillRecord(OmMsgRecord *r, HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    ThreadQueue *self = currentQueue();
    r->hwnd = hwnd;
    r->message = message;
    r->wParam = wParam;
    r->lParam = lParam;
    r->time = self ? self->lastTime : 0;
    r->x = self ? self->lastX : 0;
    r->y = self ? self->lastY : 0;
}

}  // namespace
}  // namespace om::messages

using namespace om::messages;

extern "C" OLMO_API int omInitMsgQ(HANDLE thread)
{
    OmThreadRecord *t = omThreadRecordFromHandle(omHandleValue(thread));
    if (!t || t->userQueue)
        return t ? 0 : -1;
    auto *q = new ThreadQueue;
    q->isMain = t->isMain;
    q->threadId = t->threadId;
    q->capacity = q->isMain ? omMsgQLimit : omSecondaryThreadMsgQLimit;
    q->pool = static_cast<OmMsgRecord *>(std::malloc(q->capacity * sizeof(OmMsgRecord)));
    if (!q->pool) {
        delete q;
        return omError(OmDiag::OutOfMemory, "omInitMsgQ");
    }
    chainFree(q->pool, q->capacity, nullptr);
    q->freeList = q->pool;
    for (OmMsgRecord &r : q->ring)
        r.event.type = kOmNoXEvent;
    if (q->isMain && omAppContext && pipe2(q->wakePipe, O_NONBLOCK | O_CLOEXEC) == 0) {
        OmAppLock lock;
        q->input = XtAppAddInput(omAppContext, q->wakePipe[0],
                                 reinterpret_cast<XtPointer>(XtInputReadMask), threadInput, q);
        q->heartbeat = XtAppAddTimeOut(omAppContext, 10, heartbeat, q);
    }
    q->send = takeSendState();
    t->userQueue = q;
    q->canSend.store(true, std::memory_order_release);
    return 0;
}

extern "C" OLMO_API void omMsgQExtraCleanUp(HANDLE thread)
{
    OmThreadRecord *t = omThreadRecordFromHandle(omHandleValue(thread));
    omAsyncSelectThreadCleanup(t);
    ThreadQueue *q = queueOf(t);
    if (!q)
        return;
    q->canSend.store(false, std::memory_order_release);
    if (q->input && omAppContext) {
        OmAppLock lock;
        XtRemoveInput(q->input);
        if (q->heartbeat)
            XtRemoveTimeOut(q->heartbeat);
    }
    {
        // A post that found the queue before it was unhooked finishes first.
        std::lock_guard<std::mutex> guard(q->lock);
        t->userQueue = nullptr;
    }
    for (int fd : q->wakePipe)
        if (fd >= 0)
            close(fd);
    for (OmPaintItem *i = q->paint.first; i;) {
        OmPaintItem *next = i->next;
        std::free(i);
        i = next;
    }
    for (OmTimerMsgItem *i = q->timerMsgs.first; i;) {
        OmTimerMsgItem *next = i->next;
        std::free(i);
        i = next;
    }
    std::free(q->pool);
    giveBackSendState(q->send);
    delete q;
}

extern "C" OLMO_API BOOL omPostMessageEvent(HWND hwnd, UINT message, WPARAM wParam,
                                            LPARAM lParam, const XEvent *xevent, HANDLE thread,
                                            int byThread)
{
    if (hwnd == HWND_BROADCAST)
        return _omBroadcastMessage(_omPostMessageAtom, message, wParam, lParam);
    if (hwnd && !omIsWindow(hwnd))
        return FALSE;
    if (message == WM_PAINT && hwnd)
        return InvalidateRect(hwnd, nullptr, FALSE);
    // Timer messages wait in their own list, coalesced per window and id.
    if (message == WM_TIMER)
        return omTimerAddMsg(hwnd, wParam, lParam);
    OmThreadRecord *owner = nullptr;
    ThreadQueue *q = targetQueue(hwnd, thread, byThread, &owner);
    if (!q)
        return FALSE;
    {
        std::lock_guard<std::mutex> guard(q->lock);
        OmMsgRecord *r = takeFree(q, "omPostMessageEvent");
        if (!r)
            return FALSE;
        r->link = nullptr;
        *q->tail = r;
        q->tail = &r->link;
        q->queued.fetch_add(1, std::memory_order_seq_cst);
        fillRecord(r, hwnd, message, wParam, lParam);
        r->originThread = byThread ? thread : nullptr;
        if (xevent)
            r->event = *xevent;
        else
            r->event.type = kOmNoXEvent;
        if (q->isMain && !callerIsMain())
            wakeMain(q, 5);
    }
    omWaitQueueMsgSignal(owner->threadId, message);
    return TRUE;
}

extern "C" OLMO_API BOOL omShoveMessage(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam,
                                        HANDLE thread)
{
    if (hwnd && !omIsWindow(hwnd))
        return FALSE;
    OmThreadRecord *owner = nullptr;
    ThreadQueue *q = targetQueue(hwnd, thread, 0, &owner);
    if (!q)
        return FALSE;
    std::lock_guard<std::mutex> guard(q->lock);
    OmMsgRecord *r = takeFree(q, "omShoveMessage");
    if (!r)
        return FALSE;
    r->link = q->head;
    if (!q->head)
        q->tail = &r->link;
    q->head = r;
    q->queued.fetch_add(1, std::memory_order_release);
    fillRecord(r, hwnd, message, wParam, lParam);
    r->originThread = nullptr;
    // Made by TranslateMessage, not by the server.
    r->event.type = kOmNoXEvent;
    if (q->isMain && !callerIsMain())
        wakeMain(q, 0);
    return TRUE;
}

extern "C" OLMO_API BOOL omMsgQEmpty(HANDLE thread)
{
    ThreadQueue *q = thread ? queueOfHandle(thread) : currentQueue();
    if (!q)
        return TRUE;
    std::lock_guard<std::mutex> guard(q->lock);
    if (q->head)
        return FALSE;
    q->warnedExhausted = false;
    shrinkQueue(q);
    return TRUE;
}

extern "C" OLMO_API BOOL omIsMsgAvailable(UINT flags)
{
    ThreadQueue *q = currentQueue();
    if (!q)
        return FALSE;
    struct Range {
        UINT lo, hi;
    };
    Range ranges[8];
    int n = 0;
    bool any = (flags & (QS_POSTMESSAGE | QS_ALLPOSTMESSAGE)) ||
               (flags & 0xBF) == 0xBF || (flags & 0xFF) == 0xFF;
    if (!any) {
        if (flags & QS_KEY) {
            ranges[n++] = {WM_KEYDOWN, WM_KEYUP};
            ranges[n++] = {WM_SYSKEYDOWN, WM_SYSKEYUP};
        }
        if (flags & QS_MOUSEMOVE)
            ranges[n++] = {WM_MOUSEMOVE, WM_MOUSEMOVE};
        if (flags & QS_MOUSEBUTTON)
            ranges[n++] = {WM_LBUTTONDOWN, WM_MBUTTONDBLCLK};
        if (flags & QS_PAINT)
            ranges[n++] = {WM_PAINT, WM_PAINT};
        if (flags & QS_HOTKEY)
            ranges[n++] = {WM_HOTKEY, WM_HOTKEY};
        if (flags & QS_TIMER)
            ranges[n++] = {WM_TIMER, WM_TIMER};
        if (!n)
            return FALSE;
    }
    std::lock_guard<std::mutex> guard(q->lock);
    if (q->timerMsgs.cursor && (any || (flags & QS_TIMER)))
        return TRUE;
    for (OmMsgRecord *r = q->head; r; r = r->link) {
        // Retrieval drops messages of dead windows; so does the probe.
        if (r->hwnd && !omIsWindow(r->hwnd))
            continue;
        if (any)
            return TRUE;
        for (int i = 0; i < n; ++i)
            if (r->message >= ranges[i].lo && r->message <= ranges[i].hi)
                return TRUE;
    }
    return FALSE;
}

extern "C" OLMO_API int omThreadCanSend(HANDLE thread)
{
    ThreadQueue *q = queueOfHandle(thread);
    return q && q->canSend.load(std::memory_order_acquire);
}

extern "C" OLMO_API void omMsgMRUAdd(const OmMsgRecord *record)
{
    ThreadQueue *q = currentQueue();
    if (!q || !record)
        return;
    q->ring[q->ringWrite] = *record;
    q->ringWrite = q->ringWrite == 0 ? kRingSize - 1 : q->ringWrite - 1;
}

extern "C" OLMO_API int omMsgMRUSearch(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam,
                                       OmMsgRecord *out)
{
    ThreadQueue *q = currentQueue();
    if (!q)
        return FALSE;
    for (int i = 1; i <= kRingSize; ++i) {
        const OmMsgRecord &r = q->ring[(q->ringWrite + i) % kRingSize];
        if (r.event.type == kOmNoXEvent)
            return FALSE;
        if (r.hwnd == hwnd && r.message == message && r.wParam == wParam && r.lParam == lParam) {
            if (out)
                *out = r;
            return TRUE;
        }
    }
    return FALSE;
}

extern "C" OLMO_API void omSetLastMessageState(int x, int y, DWORD time)
{
    if (ThreadQueue *q = currentQueue()) {
        q->lastX = x;
        q->lastY = y;
        q->lastTime = time;
    }
}

extern "C" OLMO_API DWORD omLastMessageTime(void)
{
    ThreadQueue *q = currentQueue();
    return q ? q->lastTime : 0;
}

extern "C" OLMO_API void omLastMessagePos(int *x, int *y)
{
    ThreadQueue *q = currentQueue();
    *x = q ? q->lastX : 0;
    *y = q ? q->lastY : 0;
}

extern "C" OLMO_API int omWithTimerMsgList(OmThreadRecord *thread,
                                           int (*fn)(OmTimerMsgList *, void *), void *context)
{
    ThreadQueue *q = queueOf(thread);
    if (!q)
        return -1;
    std::lock_guard<std::mutex> guard(q->lock);
    int r = fn(&q->timerMsgs, context);
    q->hasTimer.store(q->timerMsgs.first != nullptr, std::memory_order_release);
    return r;
}

namespace om::messages {
namespace {

bool admits(const OmQueueFilter &f, const OmMsgRecord &r)
{
    if (f.hwnd) {
        if (!r.hwnd)
            return false;
        if (r.hwnd != f.hwnd && !IsChild(f.hwnd, r.hwnd))
            return false;
    }
    if (f.min && r.message < f.min)
        return false;
    if (f.max && r.message > f.max)
        return false;
    return true;
}

// Lock held: unlinks r, whose predecessor's link is *prev, and frees it.
void unlinkRecord(ThreadQueue *q, OmMsgRecord **prev, OmMsgRecord *r)
{
    *prev = r->link;
    if (q->tail == &r->link)
        q->tail = prev;
    r->link = q->freeList;
    q->freeList = r;
    q->queued.fetch_sub(1, std::memory_order_relaxed);
}

}  // namespace
}  // namespace om::messages

extern "C" OLMO_API BOOL omQueueTake(const OmQueueFilter *filter, OmMsgRecord *out, BOOL remove,
                                     long *slot)
{
    ThreadQueue *q = currentQueue();
    if (!q || !out || q->queued.load(std::memory_order_acquire) == 0)
        return FALSE;
    OmQueueFilter none{};
    const OmQueueFilter &f = filter ? *filter : none;
    std::lock_guard<std::mutex> guard(q->lock);
    for (OmMsgRecord **prev = &q->head; *prev;) {
        OmMsgRecord *r = *prev;
        if (!f.hwnd && r->hwnd && !omIsWindow(r->hwnd)) {
            unlinkRecord(q, prev, r);
            continue;
        }
        if (!admits(f, *r)) {
            prev = &r->link;
            continue;
        }
        *out = *r;
        if (remove)
            unlinkRecord(q, prev, r);
        else if (slot)
            *slot = r - q->pool;
        return TRUE;
    }
    return FALSE;
}

extern "C" OLMO_API BOOL omQueueRemoveSlot(long slot)
{
    ThreadQueue *q = currentQueue();
    if (!q || slot < 0)
        return FALSE;
    std::lock_guard<std::mutex> guard(q->lock);
    if (static_cast<unsigned long>(slot) >= q->capacity)
        return FALSE;
    OmMsgRecord *target = q->pool + slot;
    for (OmMsgRecord **prev = &q->head; *prev; prev = &(*prev)->link)
        if (*prev == target) {
            unlinkRecord(q, prev, target);
            return TRUE;
        }
    return FALSE;
}

extern "C" OLMO_API void omSetMainAwake(int awake)
{
    ThreadQueue *q = currentQueue();
    if (!q || !q->isMain)
        return;
    q->awake.store(awake != 0, std::memory_order_seq_cst);
    // Going to sleep, or back to the program, which may wait on the X
    // connection in a way of its own: work another thread gave while this
    // thread was awake gets its wake byte now.
    if (!awake && (q->queued.load(std::memory_order_seq_cst) ||
                   q->send->pending.load(std::memory_order_seq_cst) ||
                   q->hasPaint.load(std::memory_order_seq_cst) ||
                   q->hasTimer.load(std::memory_order_seq_cst)))
        wakeMain(q, 5);
}

extern "C" OLMO_API BOOL omQueueMayHavePaint(void)
{
    ThreadQueue *q = currentQueue();
    return q && q->hasPaint.load(std::memory_order_acquire);
}

extern "C" OLMO_API BOOL omQueueMayHaveTimer(void)
{
    ThreadQueue *q = currentQueue();
    return q && q->hasTimer.load(std::memory_order_acquire);
}

extern "C" OLMO_API BOOL omQueueHasRecords(void)
{
    ThreadQueue *q = currentQueue();
    return q && q->queued.load(std::memory_order_acquire) != 0;
}

extern "C" OLMO_API OmSendState *omSendStateOf(OmThreadRecord *thread)
{
    ThreadQueue *q = queueOf(thread);
    return q ? q->send : nullptr;
}

extern "C" OLMO_API int omWithPaintList(OmThreadRecord *thread, int (*fn)(OmPaintList *, void *),
                                        void *context)
{
    ThreadQueue *q = queueOf(thread);
    if (!q)
        return -1;
    std::lock_guard<std::mutex> guard(q->lock);
    int r = fn(&q->paint, context);
    q->hasPaint.store(q->paint.first != nullptr, std::memory_order_release);
    return r;
}

extern "C" OLMO_API void omWakeQueueOwner(OmThreadRecord *thread, UINT message)
{
    ThreadQueue *q = queueOf(thread);
    if (!q)
        return;
    if (q->isMain) {
        if (callerIsMain())
            return;  // the main thread is awake: it is the caller
        // The flag and the pipe need no lock; the main thread's own
        // retrieval takes it often.
        wakeMain(q, 5);
        return;
    }
    omWaitQueueMsgSignal(thread->threadId, message);
}

extern "C" OLMO_API void omUpdateCriticalVirtKeys(void)
{
    Display *dpy = omDisplay;
    if (!dpy)
        return;
    struct Entry {
        int vk;
        KeySym keys[5];
    };
    static constexpr Entry kEntries[] = {
        {VK_SHIFT, {XK_Shift_L, XK_Shift_R}},
        {VK_CONTROL, {XK_Control_L, XK_Control_R}},
        {VK_MENU, {XK_Menu, XK_Alt_L, XK_Alt_R, XK_Meta_R, XK_Meta_L}},
        {VK_CAPITAL, {XK_Caps_Lock}},
        {VK_SCROLL, {XK_F23}},
        {VK_NUMLOCK, {XK_Num_Lock}},
    };
    char keys[32];
    XQueryKeymap(dpy, keys);
    for (const Entry &e : kEntries) {
        unsigned char down = 0;
        for (KeySym ks : e.keys) {
            if (ks == NoSymbol)
                break;
            KeyCode code = XKeysymToKeycode(dpy, ks);
            if (code && (keys[code / 8] & (1 << (code % 8))))
                down = 1;
        }
        omVirKeyState[e.vk] = down;
    }
}

// ---------------------------------------------------------------------------
// Broadcasts between the toolkit's processes on one display: client
// messages to the root window, which every process selects.

namespace {

thread_local int t_deliveringSettingsChange = 0;

bool sendToRoot(XClientMessageEvent &cm)
{
    Display *dpy = omDisplay;
    if (!dpy || cm.message_type == 0)
        return false;
    cm.type = ClientMessage;
    cm.display = dpy;
    cm.window = DefaultRootWindow(dpy);
    XEvent ev;
    ev.xclient = cm;
    Status ok = XSendEvent(dpy, cm.window, True, PropertyChangeMask, &ev);
    XFlush(dpy);
    return ok != 0;
}

// The top-level windows a received broadcast goes to, collected first:
// delivery may create or destroy windows.
std::vector<HWND> broadcastTargets()
{
    std::vector<HWND> out;
    for (HWND h = omTopLevelWindowList; h && omIsWindow(h) && out.size() < 65536;) {
        WindowRecord *w = omWindowRecord(h);
        if (!w)
            break;
        if ((w->shellWidget || w->frameWidget || w->canvasWidget) && !(w->style & WS_CHILD))
            out.push_back(h);
        h = w->nextSibling;
    }
    return out;
}

}  // namespace

extern "C" OLMO_API BOOL _omBroadcastMessage(Atom type, UINT message, WPARAM wParam,
                                             LPARAM lParam)
{
    XClientMessageEvent cm{};
    cm.message_type = type;
    cm.format = 32;
    cm.data.l[0] = static_cast<long>(message);
    cm.data.l[1] = static_cast<long>(wParam);
    cm.data.l[2] = static_cast<long>(lParam);
    return sendToRoot(cm) ? TRUE : FALSE;
}

extern "C" OLMO_API void omBroadCastWinIniChange(LPCSTR section)
{
    XClientMessageEvent cm{};
    // One atom for both ends: the receiver compares with the same one.
    cm.message_type = omWinIniChangeAtom;
    cm.format = 8;
    if (section)
        std::strncpy(cm.data.b, section, sizeof cm.data.b);
    sendToRoot(cm);
}

extern "C" OLMO_API int _omDeliveringSettingsChange(void)
{
    return t_deliveringSettingsChange;
}

extern "C" OLMO_API void omWinIniChange(const XEvent *event)
{
    if (!event || event->type != ClientMessage)
        return;
    char section[sizeof event->xclient.data.b + 1] = {};
    std::memcpy(section, event->xclient.data.b, sizeof event->xclient.data.b);
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, sizeof section);
    char *text = block ? static_cast<char *>(GlobalLock(block)) : nullptr;
    if (text)
        std::memcpy(text, section, sizeof section);
    LPARAM lParam = text && section[0] ? reinterpret_cast<LPARAM>(text) : 0;
    std::vector<HWND> targets;
    for (uint64_t h = 0;;) {
        omNextWindowHandle(&h);
        if (!h)
            break;
        HWND hwnd = reinterpret_cast<HWND>(static_cast<uintptr_t>(h));
        WindowRecord *w = omWindowRecord(hwnd);
        if (w && !(w->style & (WS_CHILD | WS_POPUP)))
            targets.push_back(hwnd);
    }
    // The sending side broadcasts every WM_WININICHANGE it sends; what
    // came from the root window must not go round again.
    ++t_deliveringSettingsChange;
    for (HWND hwnd : targets)
        if (omIsWindow(hwnd))
            SendMessageA(hwnd, WM_WININICHANGE, 0, lParam);
    --t_deliveringSettingsChange;
    if (block) {
        GlobalUnlock(block);
        GlobalFree(block);
    }
}

extern "C" OLMO_API void omMessageBroadCast(const XEvent *event)
{
    if (!event || event->type != ClientMessage || event->xclient.format != 32)
        return;
    const XClientMessageEvent &cm = event->xclient;
    auto message = static_cast<UINT>(cm.data.l[0]);
    auto wParam = static_cast<WPARAM>(cm.data.l[1]);
    auto lParam = static_cast<LPARAM>(cm.data.l[2]);
    bool send = cm.message_type == _omSendMessageAtom;
    for (HWND hwnd : broadcastTargets()) {
        if (!omIsWindow(hwnd))
            continue;
        if (send)
            SendMessageA(hwnd, message, wParam, lParam);
        else
            omPostMessageEvent(hwnd, message, wParam, lParam, nullptr, nullptr, 0);
    }
}

#ifdef OLMO_MESSAGES_TEST_ACCESS
extern "C" OLMO_API int omTestTakeMessage(HANDLE thread, OmMsgRecord *out)
{
    ThreadQueue *q = thread ? queueOfHandle(thread) : currentQueue();
    if (!q)
        return FALSE;
    std::unique_lock<std::mutex> guard(q->lock);
    OmMsgRecord *r = q->head;
    if (!r) {
        guard.unlock();
        MSG m;
        if (!omTestTakeTimerMessage(thread, &m))
            return FALSE;
        omMsgToRecord(m, out);
        return TRUE;
    }
    q->head = r->link;
    if (!q->head)
        q->tail = &q->head;
    q->queued.fetch_sub(1, std::memory_order_relaxed);
    *out = *r;
    r->link = q->freeList;
    q->freeList = r;
    return TRUE;
}

extern "C" OLMO_API unsigned omTestQueueCapacity(HANDLE thread)
{
    ThreadQueue *q = thread ? queueOfHandle(thread) : currentQueue();
    if (!q)
        return 0;
    std::lock_guard<std::mutex> guard(q->lock);
    return q->capacity;
}

extern "C" OLMO_API unsigned omTestWakeCount(void)
{
    return g_wakeCount.load(std::memory_order_relaxed);
}

extern "C" OLMO_API void omTestSetQueueClock(time_t (*clock)(void))
{
    g_clock.store(clock, std::memory_order_release);
}
#endif
