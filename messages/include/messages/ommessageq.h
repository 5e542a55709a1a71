// The per-thread posted-message queue: the message record, the queue state
// hung off each thread record, posting, head insertion, the queue probes
// and the ring of recently retrieved messages.
#pragma once

#include <olmo/platform.h>

#include <windows.h>

#include <X11/Xlib.h>

#include <cstddef>
#include <cstdint>
#include <atomic>
#include <condition_variable>
#include <ctime>
#include <mutex>

// The event type word of a record made without an X event.
constexpr int kOmNoXEvent = -100;

// One queued message.  Records live in one array per thread and are
// chained through link, in the queue or in the free list.
struct OmMsgRecord {
    OmMsgRecord *link;
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    DWORD time;
    int x;
    int y;
    XEvent event;         // type kOmNoXEvent when made without one
    HANDLE originThread;  // the thread a by-thread post named, else 0
};

struct OmThreadRecord;

// A record as the MSG retrieval hands out, and back.
inline void omRecordToMsg(const OmMsgRecord &r, MSG *m)
{
    *m = MSG{};
    m->hwnd = r.hwnd;
    m->message = r.message;
    m->wParam = r.wParam;
    m->lParam = r.lParam;
    m->time = r.time;
    m->pt = {r.x, r.y};
}
inline void omMsgToRecord(const MSG &m, OmMsgRecord *r)
{
    *r = OmMsgRecord{};
    r->hwnd = m.hwnd;
    r->message = m.message;
    r->wParam = m.wParam;
    r->lParam = m.lParam;
    r->time = m.time;
    r->x = m.pt.x;
    r->y = m.pt.y;
    r->event.type = kOmNoXEvent;
}

// A pending WM_TIMER of a thread, kept apart from the posted queue so that
// at most one waits per window and timer id (see omtimer.h).
struct OmTimerMsgItem {
    OmTimerMsgItem *prev;
    OmTimerMsgItem *next;
    HWND hwnd;
    UINT_PTR id;
    LPARAM lParam;
    int x;
    int y;
    DWORD time;
};

// cursor is the item retrieval looks at next; it wraps so that the timers
// of a thread are served in turn.
struct OmTimerMsgList {
    OmTimerMsgItem *cursor;
    OmTimerMsgItem *first;
    OmTimerMsgItem *last;
};

// A window waiting for WM_PAINT in its thread's paint list (at most once).
struct OmPaintItem {
    HWND hwnd;
    OmPaintItem *next;
    OmPaintItem *prev;
};

// cursor is where retrieval looks next; savedCursor is kept while a
// filtered search goes round the list.
struct OmPaintList {
    OmPaintItem *first;
    OmPaintItem *cursor;
    OmPaintItem *last;
    OmPaintItem *savedCursor;
    unsigned scans;  // good windows handed out; every 50th cleans the list
};

// What retrieval asks of the posted queue: a window (and its descendants)
// or 0 for all, and a message range whose bounds are ignored when 0.
struct OmQueueFilter {
    HWND hwnd;
    UINT min;
    UINT max;
};

struct OmSendRecord;

// A thread's part in sends between threads.  The list and the records'
// flags are guarded by lock; the rest belongs to the owning thread, except
// the event, which any thread signals.
struct OmSendState {
    std::mutex lock;
    OmSendRecord *first = nullptr;
    OmSendRecord *last = nullptr;
    // The send event: auto-reset, signalled by whoever has work or an
    // answer for this thread.
    std::mutex eventLock;
    std::condition_variable eventCond;
    bool eventSignalled = false;
    OmSendRecord *current = nullptr;  // the send whose procedure runs here
    OmSendRecord *awaited = nullptr;  // the send this thread waits for
    LRESULT result = 0;               // the answer of this thread's last send
    int inSendMessage = 0;            // SendMessageA is running on this thread
    std::atomic<bool> pending{false}; // first is not null (read without the lock)
};

extern "C" {

// Records of the main thread's pool and its growth step; the same for
// every other thread.
OLMO_API extern unsigned omMsgQLimit;
OLMO_API extern unsigned omSecondaryThreadMsgQLimit;

OLMO_API int omInitMsgQ(HANDLE thread);
OLMO_API void omMsgQExtraCleanUp(HANDLE thread);
OLMO_API BOOL omPostMessageEvent(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam,
                                 const XEvent *xevent, HANDLE thread, int byThread);
OLMO_API BOOL omShoveMessage(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam,
                             HANDLE thread);
OLMO_API BOOL omMsgQEmpty(HANDLE thread);
OLMO_API BOOL omIsMsgAvailable(UINT flags);
OLMO_API void omUpdateCriticalVirtKeys(void);
OLMO_API DWORD omGetTickCountMicro(void);

// Whether the thread's queue is set up and it may take part in sends.
OLMO_API int omThreadCanSend(HANDLE thread);

// The calling thread's ring of recently retrieved messages.
OLMO_API void omMsgMRUAdd(const OmMsgRecord *record);
OLMO_API int omMsgMRUSearch(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam,
                            OmMsgRecord *out);

// The calling thread's last pointer position and message time, set by
// retrieval from the message it hands out.
OLMO_API void omSetLastMessageState(int x, int y, DWORD time);
OLMO_API DWORD omLastMessageTime(void);
OLMO_API void omLastMessagePos(int *x, int *y);

// Runs fn on the thread's pending timer messages under its queue lock, so
// that another thread may append while the owner takes.  -1 when the
// thread has no queue, else what fn returned.
OLMO_API int omWithTimerMsgList(OmThreadRecord *thread, int (*fn)(OmTimerMsgList *, void *),
                                void *context);

// Runs fn on the thread's paint list under its queue lock.  The lock also
// guards the update regions of the thread's windows, which any thread may
// invalidate.  -1 when the thread has no queue, else what fn returned.
OLMO_API int omWithPaintList(OmThreadRecord *thread, int (*fn)(OmPaintList *, void *),
                             void *context);
// Wakes the thread for work another thread gave it (a paint or timer
// message): the main thread through its wake pipe, others through their
// wait.
OLMO_API void omWakeQueueOwner(OmThreadRecord *thread, UINT message);

// Retrieval's view of the calling thread's posted queue.  Finds the first
// record the filter admits (an unfiltered walk recycles records of dead
// windows), copies it to out and, with remove, takes it off the queue.
// Otherwise *slot receives the record's place for omQueueRemoveSlot.
// FALSE when nothing matches.
OLMO_API BOOL omQueueTake(const OmQueueFilter *filter, OmMsgRecord *out, BOOL remove,
                          long *slot);
// Removes the record a non-removing omQueueTake found, if it is still
// queued; FALSE otherwise.
OLMO_API BOOL omQueueRemoveSlot(long slot);
// Whether the calling thread's posted queue holds anything (no lock).
OLMO_API BOOL omQueueHasRecords(void);
// Whether its paint or timer list may hold anything (no lock): FALSE means
// empty as of the last change any thread made under the lock.
OLMO_API BOOL omQueueMayHavePaint(void);
// Main thread: awake (1) while retrieval runs and will look at the queue
// before sleeping; 0 when it may sleep in the X wait or return to the
// program.  Other threads write the wake byte only while it is 0.
OLMO_API void omSetMainAwake(int awake);
OLMO_API BOOL omQueueMayHaveTimer(void);
// A thread's send state; null when it has no queue.
OLMO_API OmSendState *omSendStateOf(OmThreadRecord *thread);

// Sends between threads (sendmessage.cpp): runs one send of the calling
// thread to a window of receiver; delivers the first send waiting for
// thread; releases the senders still waiting for a finished thread.
OLMO_API void omInterThreadSendMsg(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam,
                                   HANDLE sender, HANDLE receiver);
OLMO_API void omReceiveMessages(HANDLE thread);
OLMO_API void omCleanupSMSList(HANDLE thread);

// Drains X and the queue, dispatching a few messages (peekmessage.cpp).
OLMO_API void omFlushMsgs(void);

// Root-window broadcasts to every process of the toolkit on the display.
// type is _omPostMessageAtom or _omSendMessageAtom.
OLMO_API BOOL _omBroadcastMessage(Atom type, UINT message, WPARAM wParam, LPARAM lParam);
OLMO_API void omBroadCastWinIniChange(LPCSTR section);
// Delivery of a received broadcast to this process's windows.
OLMO_API void omWinIniChange(const XEvent *event);
OLMO_API void omMessageBroadCast(const XEvent *event);
// Nonzero while a received settings change is being delivered: sending
// WM_WININICHANGE must not broadcast it again then.
OLMO_API int _omDeliveringSettingsChange(void);

#ifdef OLMO_MESSAGES_TEST_ACCESS
// Test builds only, until retrieval exists: take the first queued record
// of a thread (0: the caller) into out; false when the queue is empty.
// When no record is queued, the next pending WM_TIMER is taken instead,
// in the order retrieval serves its sources.
OLMO_API int omTestTakeMessage(HANDLE thread, OmMsgRecord *out);
// Takes the thread's next pending WM_TIMER (0: the caller) the way
// retrieval will, without a window filter; false when none waits.
OLMO_API int omTestTakeTimerMessage(HANDLE thread, MSG *out);
// Records in the thread's pool, and how often its wake pipe was drained.
OLMO_API unsigned omTestQueueCapacity(HANDLE thread);
OLMO_API unsigned omTestWakeCount(void);
// Replaces time() for the shrink policy; null restores it.
OLMO_API void omTestSetQueueClock(time_t (*clock)(void));
#endif

}  // extern "C"

namespace om::messages {
// omWithPaintList for a lambda taking OmPaintList &.
template <class F> int withPaintList(OmThreadRecord *thread, F &&f)
{
    return omWithPaintList(
        thread,
        [](OmPaintList *list, void *c) -> int { return (*static_cast<F *>(c))(*list); },
        static_cast<void *>(&f));
}
}  // namespace om::messages
