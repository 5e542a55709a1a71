// Sending: SendMessageA and its variants, the direct call with the
// call-window-procedure hooks around it, and the protocol by which a
// thread sends to a window of another thread (send records queued to the
// receiver, answered through the sender's send event), ReplyMessage and the
// release of a finished thread's waiting senders.
#include "messages/ommessageq.h"

#include "core/omwindow.h"
#include "kernel/omdiag.h"
#include "kernel/omdisplay.h"
#include "kernel/omthread.h"
#include "kernel/omwidgetmap.h"
#include "messages/omhook.h"

#include <atomic>
#include <chrono>
#include <sched.h>
#include <cstdlib>
#include <cstring>
#include <new>

// One send between threads.  flags: kAnswered, kReceiverFrees, kTaken,
// kRunning; guarded by the receiver's send-list lock.
struct OmSendRecord {
    OmSendRecord *link;
    uint64_t sender;
    uint64_t receiver;
    LRESULT result;
    unsigned flags;
    WPARAM wParam;
    LPARAM lParam;
    UINT message;
    HWND hwnd;
    // kAnswered as well, for a sender looking without the lock.
    std::atomic<bool> done;
};

namespace om::messages {
namespace {

constexpr unsigned kAnswered = 0x001;
constexpr unsigned kReceiverFrees = 0x008;
constexpr unsigned kTaken = 0x010;
constexpr unsigned kRunning = 0x100;

void signal(OmSendState &s)
{
    {
        std::lock_guard<std::mutex> g(s.eventLock);
        s.eventSignalled = true;
    }
    s.eventCond.notify_one();
}

// Waits for the event and resets it.  The wait is bounded only so that a
// wake the protocol cannot lose is never waited for forever either.
void waitSignal(OmSendState &s)
{
    std::unique_lock<std::mutex> g(s.eventLock);
    s.eventCond.wait_for(g, std::chrono::milliseconds(100), [&] { return s.eventSignalled; });
    s.eventSignalled = false;
}


// Spins a short while for the answer or for a send addressed to this
// thread (which the caller's loop serves).
bool spinForAnswer(OmSendState &self, const OmSendRecord *r)
{
    auto until = std::chrono::steady_clock::now() + std::chrono::microseconds(40);
    for (int i = 0;; ++i) {
        {
            if (r->done.load(std::memory_order_acquire) ||
                self.pending.load(std::memory_order_acquire))
                return true;
            if (std::chrono::steady_clock::now() > until)
                return false;
        }
        sched_yield();
    }
}

OmThreadRecord *threadOf(uint64_t handle)
{
    return omThreadRecordFromHandle(handle);
}

uint64_t currentThreadHandle()
{
    return omHandleValue(GetCurrentThread());
}

// Answers a send: clears kRunning and either frees the record (its sender
// has gone on) or marks it answered and wakes the sender.
void finish(OmSendState &receiver, OmSendRecord *r)
{
    OmSendState *sender = omSendStateOf(threadOf(r->sender));
    bool release;
    {
        // The sender is woken inside the lock: it reads the answer under
        // this lock, so it cannot go on (and end, freeing its state) before
        // the signal is over.
        std::lock_guard<std::mutex> g(receiver.lock);
        r->flags &= ~kRunning;
        release = r->flags & kReceiverFrees;
        if (!release) {
            r->flags |= kAnswered;
            r->done.store(true, std::memory_order_release);
            if (sender)
                signal(*sender);
        }
    }
    if (release)
        std::free(r);
}

// Sends that bypass the protocol: windows whose text is not a string or is
// the channel window of the object layer are called from the sender.
bool callDirectly(const WindowRecord &w)
{
    if (w.textIsOrdinal || !w.text)
        return true;
    return std::strcmp(w.text, "OLEChannelWnd") == 0;
}

LRESULT directCall(HWND hwnd, WindowRecord &w, UINT msg, WPARAM wParam, LPARAM lParam)
{
    WNDPROC proc = w.wndProc;
    if (omIsHooked(WH_CALLWNDPROC)) {
        CWPSTRUCT cwp{lParam, wParam, msg, hwnd};
        omInvokeHookFunc(WH_CALLWNDPROC, pthread_equal(w.creator, pthread_self()) ? 1 : 0,
                         reinterpret_cast<LPARAM>(&cwp), HC_ACTION, nullptr);
        if (!omIsWindow(hwnd))
            return 0;
    }
    LRESULT result = proc(hwnd, msg, wParam, lParam);
    if (omIsHooked(WH_CALLWNDPROCRET)) {
        CWPRETSTRUCT ret{result, lParam, wParam, msg, hwnd};
        omInvokeHookFunc(WH_CALLWNDPROCRET, 1, reinterpret_cast<LPARAM>(&ret), HC_ACTION,
                         nullptr);
    }
    return result;
}

// SendMessageA is running on this thread (the per-thread form of the
// process-wide flag).
thread_local int t_inSendMessage = 0;

// While a send to another thread runs on this thread.
class InSend {
public:
    InSend() : state_(omSendStateOf(omCurrentThreadRecord()))
    {
        if (state_)
            ++state_->inSendMessage;
    }
    ~InSend()
    {
        if (state_)
            --state_->inSendMessage;
    }
    InSend(const InSend &) = delete;
    InSend &operator=(const InSend &) = delete;

private:
    OmSendState *state_;
};

}  // namespace
}  // namespace om::messages

using namespace om::messages;

extern "C" {

OLMO_API void omAddSMSnode(HANDLE thread, OmSendRecord *record)
{
    OmSendState *s = omSendStateOf(threadOf(omHandleValue(thread)));
    if (!s || !record)
        return;
    std::lock_guard<std::mutex> g(s->lock);
    record->link = nullptr;
    if (s->last)
        s->last->link = record;
    else
        s->first = record;
    s->last = record;
    s->pending.store(true, std::memory_order_release);
}

// Takes the first record of the thread's send list, or null.
OLMO_API OmSendRecord *omDelinkSMSnode(HANDLE thread)
{
    OmSendState *s = omSendStateOf(threadOf(omHandleValue(thread)));
    if (!s)
        return nullptr;
    std::lock_guard<std::mutex> g(s->lock);
    OmSendRecord *r = s->first;
    if (r) {
        s->first = r->link;
        if (!s->first) {
            s->last = nullptr;
            s->pending.store(false, std::memory_order_release);
        }
        r->link = nullptr;
    }
    return r;
}

OLMO_API void UnlinkSendListSms(OmSendRecord *record)
{
    if (!record)
        return;
    record->link = nullptr;
    std::free(record);
}

OLMO_API void omReceiveMessages(HANDLE thread)
{
    OmThreadRecord *t = threadOf(omHandleValue(thread));
    OmSendState *s = omSendStateOf(t);
    if (!s || !s->pending.load(std::memory_order_acquire))
        return;
    OmSendRecord *r;
    unsigned before;
    {
        std::lock_guard<std::mutex> g(s->lock);
        r = s->first;
        if (!r)
            return;
        s->first = r->link;
        if (!s->first) {
            s->last = nullptr;
            s->pending.store(false, std::memory_order_release);
        }
        before = r->flags;
        r->flags |= kTaken | kRunning;
    }
    if (!(before & 0x007)) {
        OmSendRecord *saved = s->current;
        s->current = r;
        LRESULT result = 0;
        if (WindowRecord *w = omWindowRecord(r->hwnd))
            result = CallWindowProcA(w->wndProc, r->hwnd, r->message, r->wParam, r->lParam);
        {
            std::lock_guard<std::mutex> g(s->lock);
            if (!(r->flags & kAnswered))
                r->result = result;
        }
        s->current = saved;
    }
    finish(*s, r);
}

OLMO_API void omInterThreadSendMsg(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam,
                                   HANDLE sender, HANDLE receiver)
{
    OmThreadRecord *st = threadOf(omHandleValue(sender));
    OmThreadRecord *rt = threadOf(omHandleValue(receiver));
    OmSendState *ss = omSendStateOf(st);
    OmSendState *rs = omSendStateOf(rt);
    if (!ss || !rs || !omThreadCanSend(receiver) || !omThreadCanSend(sender)) {
        LRESULT r = DefWindowProcA(hwnd, msg, wParam, lParam);
        if (ss)
            ss->result = r;
        return;
    }
    void *memory = std::malloc(sizeof(OmSendRecord));
    auto *r = memory ? new (memory) OmSendRecord{} : nullptr;
    if (!r) {
        omError(OmDiag::OutOfMemory, "SendMessage");
        return;
    }
    r->sender = omHandleValue(sender);
    r->receiver = omHandleValue(receiver);
    r->message = msg;
    r->wParam = wParam;
    r->lParam = lParam;
    r->hwnd = hwnd;
    omAddSMSnode(receiver, r);
    omWakeQueueOwner(rt, msg);
    OmSendRecord *savedAwaited = ss->awaited;
    ss->awaited = r;
    for (;;) {
        {
            std::lock_guard<std::mutex> g(rs->lock);
            if (r->flags & kAnswered)
                break;
        }
        // Serve a send addressed to this thread, so that two threads
        // sending to each other both go on.
        omReceiveMessages(sender);
        signal(*rs);
        // The answer usually comes within microseconds: looking for it a
        // little while saves the wake-up, which costs far more.
        if (spinForAnswer(*ss, r))
            continue;
        waitSignal(*ss);
    }
    bool freeHere;
    {
        std::lock_guard<std::mutex> g(rs->lock);
        ss->result = r->result;
        freeHere = (r->flags & (kTaken | kRunning)) == kTaken;
        if (!freeHere)
            r->flags |= kReceiverFrees;
    }
    ss->awaited = savedAwaited;
    if (freeHere)
        std::free(r);
}

OLMO_API void omCleanupSMSList(HANDLE thread)
{
    OmThreadRecord *t = threadOf(omHandleValue(thread));
    OmSendState *s = omSendStateOf(t);
    if (!s)
        return;
    for (;;) {
        OmSendState *sender = nullptr;
        {
            std::lock_guard<std::mutex> g(s->lock);
            OmSendRecord *r = s->first;
            if (!r)
                break;
            s->first = r->link;
            if (!s->first) {
                s->last = nullptr;
                s->pending.store(false, std::memory_order_release);
            }
            sender = omSendStateOf(threadOf(r->sender));
            if (!sender) {
                std::free(r);
                continue;
            }
            // Answered with 0, taken and not running: the sender frees it
            // once it wakes, so r is not touched after the lock.
            r->result = 0;
            r->flags = (r->flags & ~kRunning) | kTaken | kAnswered;
            r->done.store(true, std::memory_order_release);
            r->link = nullptr;
            signal(*sender);
        }
    }
}

BOOL WINAPI ReplyMessage(LRESULT lResult)
{
    OmThreadRecord *t = omCurrentThreadRecord();
    if (!t) {
        omError(OmDiag::InvalidThread, "ReplyMessage");
        return FALSE;
    }
    OmSendState *s = omSendStateOf(t);
    OmSendRecord *r = s ? s->current : nullptr;
    if (!r)
        return FALSE;
    OmSendState *sender = omSendStateOf(threadOf(r->sender));
    if (!sender) {
        omError(OmDiag::InvalidThread, "ReplyMessage");
        return FALSE;
    }
    {
        std::lock_guard<std::mutex> g(s->lock);
        if (r->flags & kAnswered)
            return FALSE;  // replied already
        r->result = lResult;
        r->flags |= kAnswered | kReceiverFrees;
        r->done.store(true, std::memory_order_release);
        signal(*sender);
    }
    return TRUE;
}

LRESULT WINAPI SendMessageA(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam)
{
    if (hWnd == HWND_BROADCAST) {
        _omBroadcastMessage(_omSendMessageAtom, Msg, wParam, lParam);
        return 1;
    }
    if (Msg == WM_NCCREATE && omIsHooked(WH_CBT)) {
        auto *cs = reinterpret_cast<CREATESTRUCTA *>(lParam);
        CBT_CREATEWNDA cbt{cs, nullptr};
        if (omInvokeHookFunc(WH_CBT, reinterpret_cast<WPARAM>(hWnd),
                             reinterpret_cast<LPARAM>(&cbt), HCBT_CREATEWND, nullptr))
            return 0;
    }
    if (Msg == WM_WININICHANGE && !_omDeliveringSettingsChange())
        omBroadCastWinIniChange(reinterpret_cast<LPCSTR>(lParam));
    WindowRecord *w = omWindowRecord(hWnd);
    if (!w) {
        if (!omIsHandleOfKind(omHandleValue(hWnd), OM_KIND_WINDOWLIKE))
            omDebugWarning(OmDiag::BadWindowHandle, "SendMessage", hWnd, wParam);
        return 0;
    }
    if (Msg == WM_DRAWITEM && !w->redraw)
        return 0;
    if (!w->wndProc) {
        omDebugWarning(OmDiag::WindowWithoutProc, "SendMessage", hWnd);
        return 0;
    }
    // The common case, a window of this thread, asks nothing of the thread
    // records: its procedure is called right here.
    if (!pthread_equal(w->creator, pthread_self())) {
        w = ConvertHWNDtoPtr(hWnd);  // attaches the caller as the thread rule says
        uint64_t self = currentThreadHandle();
        if (w->thread && w->thread != self && !callDirectly(*w)) {
            InSend inSend;
            OmSendState *s = omSendStateOf(omCurrentThreadRecord());
            if (s)
                s->result = 0;
            omInterThreadSendMsg(hWnd, Msg, wParam, lParam, reinterpret_cast<HANDLE>(self),
                                 reinterpret_cast<HANDLE>(w->thread));
            return s ? s->result : 0;
        }
    }
    ++t_inSendMessage;
    LRESULT r = directCall(hWnd, *w, Msg, wParam, lParam);
    --t_inSendMessage;
    return r;
}

LRESULT WINAPI SendMessageW(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam)
{
    return SendMessageA(hWnd, Msg, wParam, lParam);
}

LRESULT WINAPI SendMessageTimeoutA(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam, UINT,
                                   UINT, PDWORD_PTR lpdwResult)
{
    LRESULT r = SendMessageA(hWnd, Msg, wParam, lParam);
    if (lpdwResult)
        *lpdwResult = static_cast<DWORD_PTR>(r);
    return 1;
}

LRESULT WINAPI SendMessageTimeoutW(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam, UINT fuFlags,
                                   UINT uTimeout, PDWORD_PTR lpdwResult)
{
    return SendMessageTimeoutA(hWnd, Msg, wParam, lParam, fuFlags, uTimeout, lpdwResult);
}

BOOL WINAPI SendMessageCallbackA(HWND, UINT, WPARAM, LPARAM, SENDASYNCPROC, ULONG_PTR)
{
    omDebugWarning(OmDiag::Unsupported, "SendMessageCallback");
    return FALSE;
}

BOOL WINAPI SendNotifyMessageA(HWND, UINT, WPARAM, LPARAM)
{
    omDebugWarning(OmDiag::Unsupported, "SendNotifyMessage");
    return FALSE;
}

BOOL WINAPI SendNotifyMessageW(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam)
{
    WindowRecord *w = omWindowRecord(hWnd);
    if (!w)
        return FALSE;
    if (w->thread != currentThreadHandle())
        PostMessageW(hWnd, Msg, wParam, lParam);
    else
        SendMessageW(hWnd, Msg, wParam, lParam);
    return TRUE;
}

}  // extern "C"
