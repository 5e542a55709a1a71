// Socket notification: the per-thread registration lists, polling one
// socket with poll() and a zero time-out, and turning what it finds into a
// WSAAsyncSelect message for retrieval or a signalled WSAEventSelect event.
// There is no background thread: retrieval and the socket waits poll.
#include "messages/omasyncselect.h"

#include "core/omwindow.h"
#include "kernel/omhandles.h"
#include "kernel/omsocket.h"
#include "kernel/omthread.h"

#include <cerrno>
#include <cstdlib>
#include <mutex>
#include <new>
#include <poll.h>
#include <sys/ioctl.h>

namespace om::messages {
namespace {

// What a registered socket is, learnt by asking it.  A stream socket that
// is neither listening nor connected must not be polled: Linux reports a
// fresh one writable and hung up, which would read as FD_WRITE, FD_CONNECT
// and FD_CLOSE at once.  Until it is connected it is asked again at every
// poll, and the end of its connect attempt becomes FD_CONNECT.
enum Phase : int {
    kUnconnected = 0,
    kListening,
    kConnected,
    kDatagram,
    kConnectFailed,
};

// Events in the order one poll reports them.
constexpr long kReportOrder[] = {FD_ACCEPT, FD_CONNECT, FD_READ, FD_CLOSE, FD_WRITE, FD_OOB};

struct AsyncList {
    OmAsyncSelectInfo *head = nullptr;
    OmThreadRecord *thread = nullptr;
    AsyncList *next = nullptr;
};

// One lock over every list: closesocket and the re-arming calls reach
// registrations of other threads, and a thread's exit frees its list while
// others may be walking.  The lock is never destroyed, so that threads
// still running at exit find it.
std::mutex &listLock()
{
    static std::mutex *lock = new std::mutex;
    return *lock;
}

AsyncList *g_lists = nullptr;

int bitOf(long event)
{
    return __builtin_ctzl(static_cast<unsigned long>(event));
}

int fdOf(const OmAsyncSelectInfo &r)
{
    return static_cast<int>(r.socket);
}

int intOption(int fd, int name)
{
    int value = 0;
    socklen_t len = sizeof value;
    return getsockopt(fd, SOL_SOCKET, name, &value, &len) == 0 ? value : 0;
}

int pendingError(int fd)
{
    int err = intOption(fd, SO_ERROR);
    return err ? omWsErrorFromErrno(err) : 0;
}

Phase classify(int fd)
{
    int type = intOption(fd, SO_TYPE);
    if (type != SOCK_STREAM)
        return type ? kDatagram : kUnconnected;  // 0: not a socket after all
    if (intOption(fd, SO_ACCEPTCONN))
        return kListening;
    sockaddr_storage peer;
    socklen_t len = sizeof peer;
    return getpeername(fd, reinterpret_cast<sockaddr *>(&peer), &len) == 0 ? kConnected
                                                                           : kUnconnected;
}

// Lock held.  An unconnected socket's connect attempt may have ended since
// the last poll: success or failure is FD_CONNECT, due until reported.
void advancePhase(OmAsyncSelectInfo &r)
{
    int fd = fdOf(r);
    Phase now = classify(fd);
    if (now == kUnconnected) {
        int err = pendingError(fd);
        if (!err)
            return;
        now = kConnectFailed;
        r.errors[FD_CONNECT_BIT] = err;
    } else if (now == kConnected) {
        r.errors[FD_CONNECT_BIT] = 0;
    }
    if (now == kConnected || now == kConnectFailed)
        r.due |= FD_CONNECT;
    r.phase = now;
}

// Lock held.  The armed events of r that are ready now, each with its
// error in r.errors.
long readyEvents(OmAsyncSelectInfo &r)
{
    long armed = r.enabled;
    if (!armed)
        return 0;
    if (r.phase == kUnconnected)
        advancePhase(r);
    long ready = r.due & armed;
    if (r.phase == kUnconnected || r.phase == kConnectFailed)
        return ready;

    pollfd p{fdOf(r), 0, 0};
    if (r.phase == kListening) {
        if (!(armed & FD_ACCEPT))
            return ready;
        p.events = POLLIN;  // never POLLOUT: a listener has no FD_WRITE or FD_CONNECT
    } else {
        if (armed & (FD_READ | FD_CLOSE))
            p.events |= POLLIN;
        if (armed & FD_WRITE)
            p.events |= POLLOUT;
        if (armed & FD_OOB)
            p.events |= POLLPRI;
    }
    if (!p.events || poll(&p, 1, 0) != 1 || (p.revents & POLLNVAL))
        return ready;

    auto found = [&](long event, int error) {
        ready |= event;
        r.errors[bitOf(event)] = error;
    };
    if (r.phase == kListening) {
        if (p.revents & (POLLIN | POLLERR))
            found(FD_ACCEPT, 0);
        return ready;
    }
    if (p.revents & (POLLIN | POLLHUP | POLLERR)) {
        int bytes = 0;
        if (ioctl(fdOf(r), FIONREAD, &bytes) != 0)
            bytes = 0;
        // A datagram socket has no close, and may hold an empty datagram.
        if ((bytes > 0 || r.phase == kDatagram) && (armed & FD_READ))
            found(FD_READ, 0);
        else if (bytes == 0 && r.phase == kConnected && (armed & FD_CLOSE))
            found(FD_CLOSE, (p.revents & POLLERR) ? pendingError(fdOf(r)) : 0);
    }
    if ((p.revents & POLLOUT) && (armed & FD_WRITE))
        found(FD_WRITE, 0);
    if ((p.revents & POLLPRI) && (armed & FD_OOB))
        found(FD_OOB, 0);
    return ready;
}

long firstInOrder(long events)
{
    for (long e : kReportOrder)
        if (events & e)
            return e;
    return 0;
}

// Lock held.
AsyncList *listOf(OmThreadRecord *t)
{
    return t ? static_cast<AsyncList *>(t->asyncSelect) : nullptr;
}

// Lock held.  t is the caller's record, looked up before the lock was taken
// because registering a new thread runs the user library's set-up.
AsyncList *listFor(OmThreadRecord *t, bool create)
{
    AsyncList *list = listOf(t);
    if (list || !create || !t)
        return list;
    list = new (std::nothrow) AsyncList;
    if (!list)
        return nullptr;
    list->thread = t;
    list->next = g_lists;
    g_lists = list;
    t->asyncSelect = list;
    return list;
}

// Lock held.  Calls fn on every registration of every list.
template <class F> void forEachRegistration(F fn)
{
    for (AsyncList *l = g_lists; l; l = l->next)
        for (OmAsyncSelectInfo *r = l->head; r; r = r->next)
            fn(*r);
}

OmAsyncSelectInfo *findFirst(SOCKET s, AsyncList *preferred)
{
    if (preferred)
        for (OmAsyncSelectInfo *r = preferred->head; r; r = r->next)
            if (r->socket == s)
                return r;
    for (AsyncList *l = g_lists; l; l = l->next)
        for (OmAsyncSelectInfo *r = l->head; r; r = r->next)
            if (r->socket == s)
                return r;
    return nullptr;
}

OmAsyncSelectInfo *newRegistration(SOCKET s)
{
    auto *r = new (std::nothrow) OmAsyncSelectInfo{};
    if (r)
        r->socket = s;
    return r;
}

// Lock held.
int removeLocked(SOCKET s, HWND hwnd)
{
    int removed = 0;
    for (AsyncList *l = g_lists; l; l = l->next) {
        for (OmAsyncSelectInfo **link = &l->head; *link;) {
            OmAsyncSelectInfo *r = *link;
            if (r->socket == s && (!hwnd || r->hwnd == hwnd)) {
                *link = r->next;
                delete r;
                ++removed;
            } else {
                link = &r->next;
            }
        }
    }
    return removed;
}

// Lock held.  Records what an event-mode registration finds and signals
// its event; each event found is disarmed until the socket layer re-arms
// it, so that an always-writable socket does not keep the event set.
void pollEventRegistration(OmAsyncSelectInfo &r)
{
    long found = 0;
    if (r.state == kOmAsyncStateConnected) {
        r.state = kOmAsyncStateActive;
        r.phase = kConnected;
        if (r.enabled & FD_CONNECT) {
            found |= FD_CONNECT;
            r.errors[FD_CONNECT_BIT] = 0;
        }
    }
    found |= readyEvents(r);
    if (!found)
        return;
    r.pending |= found;
    r.enabled &= ~found;
    r.due &= ~found;
    SetEvent(r.event);
}

void setSocketEventsFrom(OmAsyncSelectInfo *r)
{
    for (; r; r = r->next)
        if (r->eventMode && r->state != kOmAsyncStateInactive)
            pollEventRegistration(*r);
}

bool inFilter(const OmAsyncSelectInfo &r, HWND hwnd, UINT min, UINT max)
{
    if (r.eventMode || r.state == kOmAsyncStateInactive)
        return false;
    if ((min && r.message < min) || (max && r.message > max))
        return false;
    if (!IsWindow(r.hwnd))
        return false;  // its window is gone: nobody to tell
    return !hwnd || r.hwnd == hwnd || IsChild(hwnd, r.hwnd);
}

// ---- The kernel layer's view ----------------------------------------------

int hookAdd(SOCKET s, HWND hwnd, UINT message, long events, int eventMode, HANDLE event)
{
    return omAddInfoToAsyncList(s, hwnd, message, events, eventMode, event, 0) ? 0 : WSAENOBUFS;
}

int hookRemove(SOCKET s, HWND hwnd)
{
    return omRemoveInfoFromAsyncList(s, hwnd);
}

int hookDuplicate(SOCKET listening, SOCKET accepted)
{
    return omDuplicateAsyncSelectInfo(listening, accepted) ? 1 : 0;
}

void hookEnable(SOCKET s, long event, int enable)
{
    omEnableAsyncEvent(s, event, enable);
}

void hookSetState(SOCKET s, int state)
{
    omSetAsyncState(s, state);
}

int hookCollect(SOCKET s, WSANETWORKEVENTS *out)
{
    std::lock_guard<std::mutex> guard(listLock());
    OmAsyncSelectInfo *found = nullptr;
    forEachRegistration([&](OmAsyncSelectInfo &r) {
        if (!found && r.socket == s && r.eventMode)
            found = &r;
    });
    if (!found)
        return WSAEINVAL;
    pollEventRegistration(*found);
    out->lNetworkEvents = static_cast<LONG>(found->pending);
    for (int bit = 0; bit < FD_MAX_EVENTS; ++bit)
        out->iErrorCode[bit] = (found->pending & (1L << bit)) ? found->errors[bit] : 0;
    found->pending = 0;
    return 0;
}

void hookPollEvents()
{
    std::lock_guard<std::mutex> guard(listLock());
    for (AsyncList *l = g_lists; l; l = l->next)
        setSocketEventsFrom(l->head);
}

int hookIsWindow(HWND hwnd)
{
    return IsWindow(hwnd) ? 1 : 0;
}

int hookIsRegistered(SOCKET s)
{
    std::lock_guard<std::mutex> guard(listLock());
    return findFirst(s, nullptr) ? 1 : 0;
}

constexpr OmSocketNotifyHooks kHooks = {
    .add = hookAdd,
    .remove = hookRemove,
    .duplicate = hookDuplicate,
    .enable = hookEnable,
    .setState = hookSetState,
    .collect = hookCollect,
    .pollEvents = hookPollEvents,
    .isWindow = hookIsWindow,
    .isRegistered = hookIsRegistered,
};

}  // namespace
}  // namespace om::messages

using namespace om::messages;

extern "C" OLMO_API BOOL omAddInfoToAsyncList(SOCKET s, HWND hwnd, UINT message, long events,
                                              int eventMode, HANDLE event, long pending)
{
    // Asked before the lock: the socket's kind decides what may be polled.
    int phase = classify(static_cast<int>(s));
    OmThreadRecord *self = omCurrentThreadRecord();
    std::lock_guard<std::mutex> guard(listLock());
    AsyncList *list = listFor(self, true);
    OmAsyncSelectInfo *r = list ? newRegistration(s) : nullptr;
    if (!r)
        return FALSE;
    r->hwnd = hwnd;
    r->message = message;
    r->requested = events;
    r->enabled = (events & FD_ACCEPT) ? events & ~(FD_WRITE | FD_CONNECT) : events;
    r->state = kOmAsyncStateActive;
    r->eventMode = eventMode;
    r->event = event;
    r->pending = pending;
    r->phase = phase;
    r->next = list->head;
    list->head = r;
    return TRUE;
}

extern "C" OLMO_API int omRemoveInfoFromAsyncList(SOCKET s, HWND hwnd)
{
    std::lock_guard<std::mutex> guard(listLock());
    return removeLocked(s, hwnd);
}

// The accepted socket is connected from the start, so it gets no
// FD_CONNECT; it is active at once, and an event-mode listener's copy
// signals the same event, as a program waiting on it expects.
extern "C" OLMO_API BOOL omDuplicateAsyncSelectInfo(SOCKET s, SOCKET newSocket)
{
    OmThreadRecord *self = omCurrentThreadRecord();
    std::lock_guard<std::mutex> guard(listLock());
    // A number closed without closesocket may still carry registrations.
    removeLocked(newSocket, nullptr);
    AsyncList *list = listFor(self, true);
    OmAsyncSelectInfo *from = findFirst(s, list);
    OmAsyncSelectInfo *r = from && list ? newRegistration(newSocket) : nullptr;
    if (!r)
        return FALSE;
    r->hwnd = from->hwnd;
    r->message = from->message;
    r->requested = from->requested & ~FD_ACCEPT;
    r->enabled = r->requested & ~FD_CONNECT;
    r->state = kOmAsyncStateActive;
    r->eventMode = from->eventMode;
    r->event = from->event;
    r->phase = kConnected;
    r->next = list->head;
    list->head = r;
    return TRUE;
}

extern "C" OLMO_API void omEnableAsyncEvent(SOCKET s, long event, BOOL enable)
{
    std::lock_guard<std::mutex> guard(listLock());
    forEachRegistration([&](OmAsyncSelectInfo &r) {
        if (r.socket != s || !(r.requested & event))
            return;
        if (enable)
            r.enabled |= event;
        else
            r.enabled &= ~event;
    });
}

extern "C" OLMO_API void omSetAsyncState(SOCKET s, int state)
{
    std::lock_guard<std::mutex> guard(listLock());
    forEachRegistration([&](OmAsyncSelectInfo &r) {
        if (r.socket != s)
            return;
        r.state = state;
        if (state == kOmAsyncStateConnected)
            r.phase = kConnected;  // so that polling never reports it a second time
    });
}

extern "C" OLMO_API int omWantAsyncCloseMessage(SOCKET s, HWND **hwnds, UINT **messages)
{
    std::lock_guard<std::mutex> guard(listLock());
    auto wants = [&](const OmAsyncSelectInfo &r) {
        return r.socket == s && !r.eventMode && (r.enabled & FD_CLOSE);
    };
    int count = 0;
    forEachRegistration([&](OmAsyncSelectInfo &r) { count += wants(r); });
    if (hwnds)
        *hwnds = nullptr;
    if (messages)
        *messages = nullptr;
    if (!count || (!hwnds && !messages))
        return count;
    size_t n = static_cast<size_t>(count);
    HWND *h = hwnds ? static_cast<HWND *>(std::malloc(n * sizeof(HWND))) : nullptr;
    UINT *m = messages ? static_cast<UINT *>(std::malloc(n * sizeof(UINT))) : nullptr;
    if ((hwnds && !h) || (messages && !m)) {
        std::free(h);
        std::free(m);
        return 0;
    }
    int i = 0;
    forEachRegistration([&](OmAsyncSelectInfo &r) {
        if (!wants(r))
            return;
        if (h)
            h[i] = r.hwnd;
        if (m)
            m[i] = r.message;
        ++i;
    });
    if (hwnds)
        *hwnds = h;
    if (messages)
        *messages = m;
    return count;
}

extern "C" OLMO_API BOOL omIsSocketEvent(HANDLE event)
{
    OmThreadRecord *self = omCurrentThreadRecord();
    std::lock_guard<std::mutex> guard(listLock());
    AsyncList *list = listOf(self);
    for (OmAsyncSelectInfo *r = list ? list->head : nullptr; r; r = r->next)
        if (r->eventMode && r->event == event)
            return TRUE;
    return FALSE;
}

extern "C" OLMO_API long omGetAsyncInfo(SOCKET s, BOOL clear)
{
    std::lock_guard<std::mutex> guard(listLock());
    long result = -1;
    forEachRegistration([&](OmAsyncSelectInfo &r) {
        if (result != -1 || r.socket != s || !r.eventMode)
            return;
        result = r.pending;
        if (clear)
            r.pending = 0;
    });
    return result;
}

extern "C" OLMO_API OmAsyncSelectInfo *omGetNextAsyncInfo(HWND hwnd, OmAsyncSelectInfo *after)
{
    OmThreadRecord *self = omCurrentThreadRecord();
    std::lock_guard<std::mutex> guard(listLock());
    OmAsyncSelectInfo *r = after ? after->next : nullptr;
    if (!after) {
        AsyncList *list = listOf(self);
        r = list ? list->head : nullptr;
    }
    while (r && hwnd && r->hwnd != hwnd)
        r = r->next;
    return r;
}

extern "C" OLMO_API void omSetSocketEvents(OmAsyncSelectInfo *list)
{
    std::lock_guard<std::mutex> guard(listLock());
    setSocketEventsFrom(list);
}

extern "C" OLMO_API void omCheckSocketEvents(void)
{
    OmThreadRecord *self = omCurrentThreadRecord();
    std::lock_guard<std::mutex> guard(listLock());
    if (AsyncList *list = listOf(self))
        setSocketEventsFrom(list->head);
}

extern "C" OLMO_API BOOL omFillAsyncSelectMessage(OmAsyncSelectInfo *info, long event, MSG *msg,
                                                  int error, BOOL fill, UINT flags)
{
    if (!fill)
        return TRUE;
    if (!msg || !info)
        return FALSE;
    msg->hwnd = info->hwnd;
    msg->message = info->message;
    msg->wParam = static_cast<WPARAM>(info->socket);
    msg->lParam = WSAMAKESELECTREPLY(event, error);
    msg->time = GetTickCount();
    msg->pt = POINT{0, 0};
    if (flags & PM_REMOVE) {
        info->enabled &= ~event;
        info->due &= ~event;
        if (info->state == kOmAsyncStateConnected)
            info->state = kOmAsyncStateActive;
    }
    return TRUE;
}

// A connect that completed at once is reported as FD_CONNECT with no
// error, the notification a program waiting for its connect expects; the
// registration then stays active for the socket's other events.
extern "C" OLMO_API BOOL omGetAsyncSelectMessage(HANDLE thread, HWND hwnd, MSG *msg, UINT min,
                                                 UINT max, BOOL fill, UINT flags)
{
    OmThreadRecord *t = thread ? omThreadRecordFromHandle(omHandleValue(thread))
                               : omCurrentThreadRecord();
    std::lock_guard<std::mutex> guard(listLock());
    AsyncList *list = listOf(t);
    if (!list)
        return FALSE;
    setSocketEventsFrom(list->head);
    for (OmAsyncSelectInfo *r = list->head; r; r = r->next) {
        if (!inFilter(*r, hwnd, min, max))
            continue;
        if (r->state == kOmAsyncStateConnected) {
            if (r->enabled & FD_CONNECT)
                return omFillAsyncSelectMessage(r, FD_CONNECT, msg, 0, fill, flags);
            r->state = kOmAsyncStateActive;
        }
        if (long event = firstInOrder(readyEvents(*r)))
            return omFillAsyncSelectMessage(r, event, msg, r->errors[bitOf(event)], fill, flags);
    }
    return FALSE;
}

extern "C" OLMO_API BOOL omCheckAsyncSelectMessage(void)
{
    return omGetAsyncSelectMessage(nullptr, nullptr, nullptr, 0, 0, FALSE, 0);
}

extern "C" OLMO_API int omThreadHasAsyncRegistrations(void)
{
    OmThreadRecord *self = omCurrentThreadRecord();
    std::lock_guard<std::mutex> guard(listLock());
    AsyncList *list = listOf(self);
    return list && list->head ? 1 : 0;
}

extern "C" OLMO_API void omAsyncSelectThreadCleanup(OmThreadRecord *thread)
{
    if (!thread)
        return;
    std::lock_guard<std::mutex> guard(listLock());
    AsyncList *list = listOf(thread);
    if (!list)
        return;
    for (AsyncList **link = &g_lists; *link; link = &(*link)->next)
        if (*link == list) {
            *link = list->next;
            break;
        }
    for (OmAsyncSelectInfo *r = list->head; r;) {
        OmAsyncSelectInfo *next = r->next;
        delete r;
        r = next;
    }
    delete list;
    thread->asyncSelect = nullptr;
}

extern "C" OLMO_API void omAsyncSelectRegisterHooks(void)
{
    omRegisterSocketNotifyHooks(&kHooks);
}
