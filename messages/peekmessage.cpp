// Retrieval: PeekMessageA and GetMessageA over the thread's sources in
// their fixed order (sends from other threads, X input, posted records,
// socket notifications, paint, timers, the quit flag), the hooks on the way
// out, WaitMessage, and the queries about the last message.
#include "messages/ommessageq.h"

#include "core/omwindow.h"
#include "kernel/omdiag.h"
#include "kernel/omdisplay.h"
#include "kernel/omprofile.h"
#include "kernel/omthread.h"
#include "messages/omasyncselect.h"
#include "messages/omhook.h"
#include "messages/omkeyevent.h"
#include "messages/ompaint.h"
#include "messages/omtimer.h"
#include "messages/xevents.h"

#include <X11/Intrinsic.h>

#include <ctime>
#include <sched.h>

namespace om::messages {
namespace {

// The main thread pumps X when no posted record matches, and otherwise at
// least this often, so that a loop of posted messages makes no system call
// per message while input is never starved.
constexpr long kPumpIntervalNs = 1'000'000;
long g_lastPumpNs = 0;  // main thread only

long nowNs()
{
    timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return ts.tv_sec * 1'000'000'000L + ts.tv_nsec;
}

bool isMainThread()
{
    return GetCurrentThreadId() == _omThreadMainThreadId();
}

HANDLE selfHandle()
{
    return GetCurrentThread();
}

void pump()
{
    g_lastPumpNs = nowNs();
    omProcessXEvents(nullptr);
}

bool isKeyMessage(UINT m)
{
    return m == WM_KEYDOWN || m == WM_KEYUP || m == WM_CHAR || m == WM_SYSKEYDOWN ||
           m == WM_SYSKEYUP;
}

bool isMouseMessage(UINT m)
{
    return (m >= WM_MOUSEFIRST && m <= 0x209) || (m >= WM_NCMOUSEMOVE && m <= 0xA9);
}

void fillQuit(MSG *msg)
{
    *msg = MSG{};
    msg->message = WM_QUIT;
}

// The hooks a message meets on its way out.  Returns true when a hook
// asked for the message to be removed.
bool runHooks(MSG *msg, bool remove)
{
    bool removeNow = false;
    int code = remove ? HC_ACTION : HC_NOREMOVE;
    if (isKeyMessage(msg->message) && omIsHooked(WH_KEYBOARD)) {
        if (omInvokeHookFunc(WH_KEYBOARD, msg->wParam, msg->lParam, code, nullptr))
            removeNow = true;
    }
    MOUSEHOOKSTRUCT mouse{};
    if (isMouseMessage(msg->message)) {
        HWND capture = GetCapture();
        if (capture && capture != msg->hwnd && IsWindow(capture)) {
            POINT p{LOWORD(msg->lParam), HIWORD(msg->lParam)};
            ClientToScreen(msg->hwnd, &p);
            ScreenToClient(capture, &p);
            msg->lParam = MAKELPARAM(p.x, p.y);
            msg->hwnd = capture;
        }
        mouse.pt = {static_cast<short>(LOWORD(msg->lParam)),
                    static_cast<short>(HIWORD(msg->lParam))};
        mouse.hwnd = msg->hwnd;
        mouse.wHitTestCode = HTCLIENT;
        if (omIsHooked(WH_MOUSE) &&
            omInvokeHookFunc(WH_MOUSE, msg->message, reinterpret_cast<LPARAM>(&mouse), code,
                             nullptr))
            removeNow = true;
    }
    if (omIsHooked(WH_GETMESSAGE))
        omInvokeHookFunc(WH_GETMESSAGE, (remove || removeNow) ? PM_REMOVE : PM_NOREMOVE,
                         reinterpret_cast<LPARAM>(msg), HC_ACTION, nullptr);
    if (omIsHooked(WH_CBT)) {
        switch (msg->message) {
        case WM_KEYDOWN:
        case WM_KEYUP:
        case WM_SYSKEYDOWN:
        case WM_SYSKEYUP:
            omInvokeHookFunc(WH_CBT, msg->wParam, msg->lParam, HCBT_KEYSKIPPED, nullptr);
            break;
        case WM_MOUSEMOVE:
        case WM_LBUTTONDOWN:
        case WM_LBUTTONUP:
        case WM_RBUTTONDOWN:
        case WM_RBUTTONUP:
            omInvokeHookFunc(WH_CBT, msg->message, reinterpret_cast<LPARAM>(&mouse),
                             HCBT_CLICKSKIPPED, nullptr);
            break;
        default:
            break;
        }
    }
    return removeNow;
}

// Steps 6 and 7: the posted queue.
bool fromPosted(MSG *msg, const OmQueueFilter &filter, bool remove, bool uiThreads)
{
    OmMsgRecord rec;
    long slot = -1;
    if (!omQueueTake(&filter, &rec, remove, &slot))
        return false;
    omRecordToMsg(rec, msg);
    if (rec.event.type == KeyPress || rec.event.type == KeyRelease)
        omSetCurrentKeyEvent(&rec.event.xkey);
    if (uiThreads || isMainThread())
        omMsgMRUAdd(&rec);
    omSetLastMessageState(rec.x, rec.y, rec.time);
    if (runHooks(msg, remove) && !remove)
        omQueueRemoveSlot(slot);
    return true;
}

bool admitsPaint(UINT min, UINT max)
{
    return min <= WM_PAINT && (max == 0 || max > 0x0E);
}

bool admitsQuit(UINT min, UINT max)
{
    return min <= WM_QUIT && (max == 0 || max >= WM_QUIT);
}

// Marks the main thread awake for the time of a retrieval or wait (see
// omSetMainAwake); nested uses keep the outermost.
thread_local int t_awakeDepth = 0;
class Awake {
public:
    Awake()
    {
        if (t_awakeDepth++ == 0)
            omSetMainAwake(1);
    }
    ~Awake()
    {
        if (--t_awakeDepth == 0)
            omSetMainAwake(0);
    }
    Awake(const Awake &) = delete;
    Awake &operator=(const Awake &) = delete;
};

BOOL peek(MSG *msg, HWND hwnd, UINT min, UINT max, UINT flags)
{
    Awake awake;
    if ((!omDisplay && !omAppContext) || !msg)
        return FALSE;
    OmThreadRecord *t = omCurrentThreadRecord();
    if (!t || t->quitFlag.load(std::memory_order_acquire)) {
        fillQuit(msg);
        return TRUE;
    }
    HANDLE self = selfHandle();
    omReceiveMessages(self);
    const bool main = t->isMain;
    const bool uiThreads = omIsUserInterfaceThreadSupported() != 0;
    const bool mayPump = main && !(flags & PM_NOYIELD) && omAppContext;
    bool pumped = false;
    if (mayPump && (!omQueueHasRecords() || nowNs() - g_lastPumpNs >= kPumpIntervalNs)) {
        pump();
        pumped = true;
    }
    const bool keep = flags == 0 || flags == PM_NOYIELD;
    const bool remove = (flags & PM_REMOVE) != 0;
    OmQueueFilter filter{hwnd, min, max};
    if (fromPosted(msg, filter, remove, uiThreads))
        return TRUE;
    if (mayPump && !pumped) {
        pump();
        if (fromPosted(msg, filter, remove, uiThreads))
            return TRUE;
    }
    omReceiveMessages(self);
    if (omGetAsyncSelectMessage(self, hwnd, msg, min, max, TRUE, flags))
        return TRUE;
    if ((main || uiThreads) && admitsPaint(min, max) && omQueueMayHavePaint() &&
        omPaintGetMsg(hwnd, msg, TRUE, keep ? TRUE : FALSE)) {
        // A group box is painted after its parent.
        WindowRecord *w = omWindowRecord(msg->hwnd);
        if (!hwnd && w && w->kind == OM_WK_BUTTON && (w->style & 0x0F) == BS_GROUPBOX &&
            !omQueueHasRecords()) {
            MSG parentPaint;
            HWND parent = GetParent(msg->hwnd);
            if (parent && omPaintIsHwndInQueue(parent) &&
                peek(&parentPaint, parent, WM_PAINT, WM_PAINT, flags) &&
                parentPaint.message == WM_PAINT)
                *msg = parentPaint;
        }
        return TRUE;
    }
    if ((hwnd || omQueueMayHaveTimer()) && omTimerPeekMessage(msg, hwnd, min, max, flags)) {
        omSetLastMessageState(msg->pt.x, msg->pt.y, msg->time);
        return TRUE;
    }
    if (omQuitIsSet && admitsQuit(min, max)) {
        fillQuit(msg);
        if (main)
            omQuitIsSet = 0;
        return TRUE;
    }
    return FALSE;
}

// Work another thread hands this one usually comes within microseconds of
// the last (a stream of posts, the answer to a send): looking for it a
// little while before sleeping saves the wake-up, which costs tens of
// microseconds on a virtual machine.  Bounded, so a loop with nothing to do
// still sleeps at once in practice.
constexpr long kSpinNs = 40'000;

bool spinFor(bool (*ready)(OmSendState *), OmSendState *s)
{
    long until = nowNs() + kSpinNs;
    for (int i = 0;; ++i) {
        if (ready(s))
            return true;
        if (nowNs() > until)
            return false;
        sched_yield();
    }
}

bool otherThreadsGaveWork(OmSendState *s)
{
    return omQueueHasRecords() || (s && s->pending.load(std::memory_order_acquire));
}

void waitMain()
{
    Awake awake;
    while (!omQueueHasRecords() && !omQueueMayHavePaint() && !omQuitIsSet) {
        if (omQueueMayHaveTimer())
            break;
        // Queued idle work (widgets to destroy) runs in the next pump
        // rather than after the next event.
        if (!XtAppPending(omAppContext) && !omDestroyQueued()) {
            // What another thread gave is taken by the retrieval that
            // follows, which pumps X as well.
            if (spinFor(otherThreadsGaveWork, omSendStateOf(omCurrentThreadRecord())))
                break;
            // Asleep from here: other threads write their wake byte again.
            omSetMainAwake(0);
            if (otherThreadsGaveWork(omSendStateOf(omCurrentThreadRecord()))) {
                omSetMainAwake(1);
                break;
            }
            XEvent ev;
            XtAppPeekEvent(omAppContext, &ev);
            omSetMainAwake(1);
        }
        pump();
        if (omCheckAsyncSelectMessage())
            break;
        // Sends from other threads are answered at once, whatever the
        // thread switch says.
        OmSendState *s = omSendStateOf(omCurrentThreadRecord());
        if (s && s->pending.load(std::memory_order_acquire))
            break;
    }
    omWriteNextDirtyProfile();
}

void waitSecondary(OmThreadRecord *t)
{
    bool detached = false;
    for (;;) {
        if (omQueueHasRecords() || t->quitFlag.load(std::memory_order_acquire))
            return;
        if (omCheckAsyncSelectMessage())
            return;
        OmSendState *s = omSendStateOf(t);
        if (s && s->pending.load(std::memory_order_acquire))
            return;
        if (omQueueMayHaveTimer() || omQueueMayHavePaint())
            return;
        if (omIsUserInterfaceThreadSupported() && !detached) {
            omDetachHWNDfromThread(reinterpret_cast<HANDLE>(static_cast<uintptr_t>(t->handle)));
            detached = true;
        }
        // Woken at once by posts, sends, timer and paint additions; sockets
        // are polled, so a thread with some looks again every 100 ms.
        if (!spinFor(otherThreadsGaveWork, s))
            omWaitQueueMsg(omThreadHasAsyncRegistrations() ? 100 : 1000);
    }
}

}  // namespace
}  // namespace om::messages

using namespace om::messages;

extern "C" {

BOOL WINAPI PeekMessageA(LPMSG lpMsg, HWND hWnd, UINT wMsgFilterMin, UINT wMsgFilterMax,
                         UINT wRemoveMsg)
{
    return peek(lpMsg, hWnd, wMsgFilterMin, wMsgFilterMax, wRemoveMsg);
}

BOOL WINAPI PeekMessageW(LPMSG lpMsg, HWND hWnd, UINT wMsgFilterMin, UINT wMsgFilterMax,
                         UINT wRemoveMsg)
{
    return peek(lpMsg, hWnd, wMsgFilterMin, wMsgFilterMax, wRemoveMsg);
}

BOOL WINAPI WaitMessage(void)
{
    OmThreadRecord *t = omCurrentThreadRecord();
    if (!t)
        return TRUE;
    // Without a display the main thread waits as any other thread does:
    // on its condition, woken by whoever gives it work.
    if (t->isMain && omAppContext && omDisplay)
        waitMain();
    else
        waitSecondary(t);
    return TRUE;
}

BOOL WINAPI GetMessageA(LPMSG lpMsg, HWND hWnd, UINT wMsgFilterMin, UINT wMsgFilterMax)
{
    if (!lpMsg)
        return FALSE;
    omWriteNextDirtyProfile();
    for (;;) {
        if (peek(lpMsg, hWnd, wMsgFilterMin, wMsgFilterMax, PM_REMOVE))
            return lpMsg->message != WM_QUIT;
        if (!omDisplay && !omAppContext)
            return FALSE;  // nothing could ever come
        WaitMessage();
    }
}

BOOL WINAPI GetMessageW(LPMSG lpMsg, HWND hWnd, UINT wMsgFilterMin, UINT wMsgFilterMax)
{
    return GetMessageA(lpMsg, hWnd, wMsgFilterMin, wMsgFilterMax);
}

DWORD WINAPI GetQueueStatus(UINT flags)
{
    if (!omThreadRuleOk("GetQueueStatus"))
        return 0;
    struct Probe {
        UINT flag, min, max;
    } static constexpr kProbes[] = {
        {QS_KEY, WM_CHAR, WM_CHAR},
        {QS_MOUSEMOVE, WM_MOUSEMOVE, WM_MOUSEMOVE},
        {QS_MOUSEBUTTON, 0xA1, 0xA9},
        {QS_PAINT, WM_PAINT, WM_PAINT},
        {QS_POSTMESSAGE, 0x00, 0x0E},
        {QS_TIMER, WM_TIMER, WM_TIMER},
    };
    DWORD status = 0;
    for (const Probe &p : kProbes) {
        MSG m;
        if ((flags & p.flag) && peek(&m, nullptr, p.min, p.max, PM_NOYIELD))
            status |= p.flag;
    }
    return status << 16;
}

DWORD WINAPI GetMessagePos(void)
{
    int x = 0, y = 0;
    omLastMessagePos(&x, &y);
    return static_cast<DWORD>(MAKELONG(static_cast<WORD>(x), static_cast<WORD>(y)));
}

LONG WINAPI GetMessageTime(void)
{
    return static_cast<LONG>(omLastMessageTime());
}

LPARAM WINAPI GetMessageExtraInfo(void)
{
    omThreadRuleOk("GetMessageExtraInfo");
    return 0;
}

BOOL WINAPI InSendMessage(void)
{
    OmThreadRecord *t = omCurrentThreadRecord();
    if (!t) {
        omError(OmDiag::InvalidThread, "InSendMessage");
        return FALSE;
    }
    OmSendState *s = omSendStateOf(t);
    return s && s->current ? TRUE : FALSE;
}

// Drains X and the queue: a few rounds of sync and dispatch, ending early
// once the program has seen several messages.
OLMO_API void omFlushMsgs(void)
{
    if (!omDisplay || !omAppContext)
        return;
    int dispatched = 0;
    for (int round = 0; round < 40 && dispatched <= 6; ++round) {
        XSync(omDisplay, False);
        MSG m;
        while (XtAppPending(omAppContext) || peek(&m, nullptr, 0, 0, PM_NOREMOVE)) {
            if (!peek(&m, nullptr, 0, 0, PM_REMOVE))
                break;
            TranslateMessage(&m);
            DispatchMessageA(&m);
            ++dispatched;
            XSync(omDisplay, False);
        }
    }
}

}  // extern "C"
