// Sockets over the system's BSD sockets: start-up, error codes, the socket
// calls that <winsock2.h> routes here, and WSAAsyncSelect/WSAEventSelect.
// A SOCKET is the descriptor itself.  The registrations of the two select
// calls, and the polling that turns them into messages or signalled events,
// belong to the user library (omsocket.h); without it both calls fail.
#include "kernel/omsocket.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

namespace om::kernel {
namespace {

// Windows' own numbers for the two ioctlsocket commands, accepted beside
// the system's for code that spells them out.
constexpr long kWinFionbio = static_cast<long>(0x8004667EL);
constexpr long kWinFionread = 0x4004667FL;
constexpr WORD kHighestVersion = MAKEWORD(2, 2);

struct ErrnoCode {
    int err;
    int code;
};

// EINPROGRESS is WSAEWOULDBLOCK, as a non-blocking connect reports it.
constexpr ErrnoCode kErrnoCodes[] = {
    {EINTR, WSAEINTR}, {EBADF, WSAENOTSOCK}, {ENOTSOCK, WSAENOTSOCK}, {EACCES, WSAEACCES},
    {EPERM, WSAEACCES}, {EFAULT, WSAEFAULT}, {EMFILE, WSAEMFILE}, {ENFILE, WSAEMFILE},
    {EAGAIN, WSAEWOULDBLOCK}, {EINPROGRESS, WSAEWOULDBLOCK}, {EALREADY, WSAEALREADY},
    {EDESTADDRREQ, WSAEDESTADDRREQ}, {EMSGSIZE, WSAEMSGSIZE}, {EPROTOTYPE, WSAEPROTOTYPE},
    {ENOPROTOOPT, WSAENOPROTOOPT}, {EPROTONOSUPPORT, WSAEPROTONOSUPPORT},
    {ESOCKTNOSUPPORT, WSAESOCKTNOSUPPORT}, {EOPNOTSUPP, WSAEOPNOTSUPP},
    {EPFNOSUPPORT, WSAEPFNOSUPPORT}, {EAFNOSUPPORT, WSAEAFNOSUPPORT}, {EADDRINUSE, WSAEADDRINUSE},
    {EADDRNOTAVAIL, WSAEADDRNOTAVAIL}, {ENETDOWN, WSAENETDOWN}, {ENETUNREACH, WSAENETUNREACH},
    {ENETRESET, WSAENETRESET}, {ECONNABORTED, WSAECONNABORTED}, {ECONNRESET, WSAECONNRESET},
    {EPIPE, WSAECONNRESET}, {ENOBUFS, WSAENOBUFS}, {ENOMEM, WSAENOBUFS}, {EISCONN, WSAEISCONN},
    {ENOTCONN, WSAENOTCONN}, {ESHUTDOWN, WSAESHUTDOWN}, {ETOOMANYREFS, WSAETOOMANYREFS},
    {ETIMEDOUT, WSAETIMEDOUT}, {ECONNREFUSED, WSAECONNREFUSED}, {ELOOP, WSAELOOP},
    {ENAMETOOLONG, WSAENAMETOOLONG}, {EHOSTDOWN, WSAEHOSTDOWN}, {EHOSTUNREACH, WSAEHOSTUNREACH},
    {ENOTEMPTY, WSAENOTEMPTY}, {EUSERS, WSAEUSERS}, {EDQUOT, WSAEDQUOT}, {ESTALE, WSAESTALE},
    {EREMOTE, WSAEREMOTE},
};

std::atomic<int> g_startups{0};
std::atomic<const OmSocketNotifyHooks *> g_hooks{nullptr};

const OmSocketNotifyHooks *hooks()
{
    return g_hooks.load(std::memory_order_acquire);
}

int fail(int code)
{
    SetLastError(static_cast<DWORD>(code));
    return SOCKET_ERROR;
}

int failErrno()
{
    return fail(omWsErrorFromErrno(errno));
}

// The descriptor behind s, or -1 with the error set: before WSAStartup every
// call fails, and a value that is no open socket is WSAENOTSOCK.  The
// descriptor is checked to be a socket because close() and fcntl() would
// otherwise act on any file the process has open.
int socketFd(SOCKET s)
{
    if (g_startups.load(std::memory_order_acquire) <= 0) {
        SetLastError(WSANOTINITIALISED);
        return -1;
    }
    struct stat st;
    if (s > static_cast<SOCKET>(INT_MAX) || fstat(static_cast<int>(s), &st) != 0 ||
        !S_ISSOCK(st.st_mode)) {
        SetLastError(WSAENOTSOCK);
        return -1;
    }
    return static_cast<int>(s);
}

bool setNonBlocking(int fd, bool on)
{
    int flags = fcntl(fd, F_GETFL);
    if (flags < 0)
        return false;
    int wanted = on ? (flags | O_NONBLOCK) : (flags & ~O_NONBLOCK);
    return wanted == flags || fcntl(fd, F_SETFL, wanted) == 0;
}

void rearm(SOCKET s, long event)
{
    if (const OmSocketNotifyHooks *h = hooks())
        h->enable(s, event, 1);
}

// A Windows length argument: a null or negative one is WSAEFAULT.
bool lengthIn(const int *len, socklen_t &out)
{
    if (!len || *len < 0)
        return false;
    out = static_cast<socklen_t>(*len);
    return true;
}

bool isTimeoutOption(int level, int name)
{
    return level == SOL_SOCKET && (name == SO_RCVTIMEO || name == SO_SNDTIMEO);
}

}  // namespace
}  // namespace om::kernel

using namespace om::kernel;

extern "C" OLMO_API const OmSocketNotifyHooks *
omRegisterSocketNotifyHooks(const OmSocketNotifyHooks *table)
{
    return g_hooks.exchange(table, std::memory_order_acq_rel);
}

extern "C" OLMO_API int omWsErrorFromErrno(int err)
{
    for (const ErrnoCode &e : kErrnoCodes)
        if (e.err == err)
            return e.code;
    return WSAEINVAL;
}

// ---- Start-up and errors ----------------------------------------------

extern "C" int WSAAPI WSAStartup(WORD wVersionRequested, LPWSADATA lpWSAData)
{
    if (!lpWSAData)
        return WSAEFAULT;
    std::memset(lpWSAData, 0, sizeof *lpWSAData);
    lpWSAData->wHighVersion = kHighestVersion;
    BYTE major = LOBYTE(wVersionRequested), minor = HIBYTE(wVersionRequested);
    if (major < 1)
        return WSAVERNOTSUPPORTED;
    bool aboveHighest = major > 2 || (major == 2 && minor > 2);
    lpWSAData->wVersion = aboveHighest ? kHighestVersion : wVersionRequested;
    std::strcpy(lpWSAData->szDescription, "Olmo sockets over BSD sockets");
    std::strcpy(lpWSAData->szSystemStatus, "Running");
    g_startups.fetch_add(1, std::memory_order_acq_rel);
    return 0;
}

extern "C" int WSAAPI WSACleanup(void)
{
    int n = g_startups.load(std::memory_order_acquire);
    do {
        if (n <= 0)
            return fail(WSANOTINITIALISED);
    } while (!g_startups.compare_exchange_weak(n, n - 1, std::memory_order_acq_rel));
    return 0;
}

// The socket error is the thread's last error, as on Windows.
extern "C" int WSAAPI WSAGetLastError(void)
{
    return static_cast<int>(GetLastError());
}

extern "C" void WSAAPI WSASetLastError(int iError)
{
    SetLastError(static_cast<DWORD>(iError));
}

// ---- The socket calls ---------------------------------------------------

extern "C" SOCKET WSAAPI omWsSocket(int af, int type, int protocol)
{
    if (g_startups.load(std::memory_order_acquire) <= 0) {
        SetLastError(WSANOTINITIALISED);
        return INVALID_SOCKET;
    }
    int fd = ::socket(af, type | SOCK_CLOEXEC, protocol);
    if (fd < 0) {
        failErrno();
        return INVALID_SOCKET;
    }
    return static_cast<SOCKET>(fd);
}

extern "C" int WSAAPI omWsBind(SOCKET s, const struct sockaddr *name, int namelen)
{
    int fd = socketFd(s);
    if (fd < 0)
        return SOCKET_ERROR;
    socklen_t len;
    if (!name || !lengthIn(&namelen, len))
        return fail(WSAEFAULT);
    return ::bind(fd, name, len) == 0 ? 0 : failErrno();
}

extern "C" int WSAAPI omWsListen(SOCKET s, int backlog)
{
    int fd = socketFd(s);
    if (fd < 0)
        return SOCKET_ERROR;
    return ::listen(fd, backlog) == 0 ? 0 : failErrno();
}

extern "C" int WSAAPI omWsConnect(SOCKET s, const struct sockaddr *name, int namelen)
{
    int fd = socketFd(s);
    if (fd < 0)
        return SOCKET_ERROR;
    socklen_t len;
    if (!name || !lengthIn(&namelen, len))
        return fail(WSAEFAULT);
    if (::connect(fd, name, len) != 0)
        return failErrno();  // EINPROGRESS is WSAEWOULDBLOCK, as on Windows
    // A registered socket is non-blocking; its connect completed at once, so
    // no poll will see it in progress: report FD_CONNECT without one.
    const OmSocketNotifyHooks *h = hooks();
    if (h && h->isRegistered(s))
        h->setState(s, kOmAsyncStateConnected);
    return 0;
}

extern "C" SOCKET WSAAPI omWsAccept(SOCKET s, struct sockaddr *addr, int *addrlen)
{
    int fd = socketFd(s);
    if (fd < 0)
        return INVALID_SOCKET;
    socklen_t len = 0;
    if (addr && !lengthIn(addrlen, len)) {
        SetLastError(WSAEFAULT);
        return INVALID_SOCKET;
    }
    int client = accept4(fd, addr, addr ? &len : nullptr, SOCK_CLOEXEC);
    int saved = errno;
    rearm(s, FD_ACCEPT);  // any accept call re-arms, even one that would block
    if (client < 0) {
        SetLastError(static_cast<DWORD>(omWsErrorFromErrno(saved)));
        return INVALID_SOCKET;
    }
    if (addr && addrlen)
        *addrlen = static_cast<int>(len);
    // The accepted socket inherits the listener's registration, and with it
    // the non-blocking mode a registration implies.
    const OmSocketNotifyHooks *h = hooks();
    if (h && h->duplicate(s, static_cast<SOCKET>(client)) > 0)
        setNonBlocking(client, true);
    return static_cast<SOCKET>(client);
}

extern "C" int WSAAPI omWsRecvFrom(SOCKET s, char *buf, int len, int flags,
                                   struct sockaddr *from, int *fromlen)
{
    int fd = socketFd(s);
    if (fd < 0)
        return SOCKET_ERROR;
    socklen_t addrLen = 0;
    if (len < 0 || (!buf && len > 0) || (from && !lengthIn(fromlen, addrLen)))
        return fail(WSAEFAULT);
    ssize_t n;
    do
        n = ::recvfrom(fd, buf, static_cast<size_t>(len), flags, from, from ? &addrLen : nullptr);
    while (n < 0 && errno == EINTR);
    int saved = errno;
    rearm(s, FD_READ);
    rearm(s, FD_OOB);
    // A blocking socket only "would block" when its receive time-out ran out.
    if (n < 0 && saved == EAGAIN && !(fcntl(fd, F_GETFL) & O_NONBLOCK))
        return fail(WSAETIMEDOUT);
    if (n < 0)
        return fail(omWsErrorFromErrno(saved));
    if (from && fromlen)
        *fromlen = static_cast<int>(addrLen);
    return static_cast<int>(n);
}

extern "C" int WSAAPI omWsRecv(SOCKET s, char *buf, int len, int flags)
{
    return omWsRecvFrom(s, buf, len, flags, nullptr, nullptr);
}

// FD_WRITE is re-armed only when the send could not take everything (it
// would block, or took only some bytes): a socket with room gives no new
// FD_WRITE, so a program writing in a loop is not flooded with them.
extern "C" int WSAAPI omWsSendTo(SOCKET s, const char *buf, int len, int flags,
                                 const struct sockaddr *to, int tolen)
{
    int fd = socketFd(s);
    if (fd < 0)
        return SOCKET_ERROR;
    socklen_t addrLen = 0;
    if (len < 0 || (!buf && len > 0) || (to && !lengthIn(&tolen, addrLen)))
        return fail(WSAEFAULT);
    ssize_t n;
    // MSG_NOSIGNAL: a send to a closed peer is an error code, never SIGPIPE.
    do
        n = ::sendto(fd, buf, static_cast<size_t>(len), flags | MSG_NOSIGNAL, to, addrLen);
    while (n < 0 && errno == EINTR);
    int saved = errno;
    if ((n < 0 && (saved == EAGAIN || saved == EWOULDBLOCK)) || (n >= 0 && n < len))
        rearm(s, FD_WRITE);
    if (n < 0)
        return fail(omWsErrorFromErrno(saved));
    return static_cast<int>(n);
}

extern "C" int WSAAPI omWsSend(SOCKET s, const char *buf, int len, int flags)
{
    return omWsSendTo(s, buf, len, flags, nullptr, 0);
}

extern "C" int WSAAPI omWsCloseSocket(SOCKET s)
{
    int fd = socketFd(s);
    if (fd < 0)
        return SOCKET_ERROR;
    // Registrations go first: the number may be reused the moment it closes.
    if (const OmSocketNotifyHooks *h = hooks())
        h->remove(s, nullptr);
    // On Linux the descriptor is gone even when close reports EINTR.
    if (::close(fd) != 0 && errno != EINTR)
        return failErrno();
    return 0;
}

extern "C" int WSAAPI omWsIoctlSocket(SOCKET s, long cmd, u_long *argp)
{
    int fd = socketFd(s);
    if (fd < 0)
        return SOCKET_ERROR;
    if (!argp)
        return fail(WSAEFAULT);
    if (cmd == static_cast<long>(FIONBIO) || cmd == kWinFionbio) {
        // A registered socket must stay non-blocking.
        const OmSocketNotifyHooks *h = hooks();
        if (*argp == 0 && h && h->isRegistered(s))
            return fail(WSAEINVAL);
        return setNonBlocking(fd, *argp != 0) ? 0 : failErrno();
    }
    if (cmd == static_cast<long>(FIONREAD) || cmd == kWinFionread) {
        int n = 0;
        if (::ioctl(fd, FIONREAD, &n) != 0)
            return failErrno();
        *argp = static_cast<u_long>(n);
        return 0;
    }
    return fail(WSAEINVAL);
}

extern "C" int WSAAPI omWsShutdown(SOCKET s, int how)
{
    int fd = socketFd(s);
    if (fd < 0)
        return SOCKET_ERROR;
    if (how != SD_RECEIVE && how != SD_SEND && how != SD_BOTH)
        return fail(WSAEINVAL);
    return ::shutdown(fd, how) == 0 ? 0 : failErrno();
}

// Options pass through, with two Windows forms translated: time-outs given
// as a DWORD of milliseconds, and SO_ERROR, which reports a WSAE code.
extern "C" int WSAAPI omWsGetSockOpt(SOCKET s, int level, int optname, char *optval, int *optlen)
{
    int fd = socketFd(s);
    if (fd < 0)
        return SOCKET_ERROR;
    socklen_t len;
    if (!optval || !lengthIn(optlen, len))
        return fail(WSAEFAULT);
    if (isTimeoutOption(level, optname) && len == sizeof(DWORD)) {
        timeval tv{};
        socklen_t tvLen = sizeof tv;
        if (::getsockopt(fd, level, optname, &tv, &tvLen) != 0)
            return failErrno();
        DWORD ms = static_cast<DWORD>(tv.tv_sec * 1000 + tv.tv_usec / 1000);
        std::memcpy(optval, &ms, sizeof ms);
        return 0;
    }
    if (::getsockopt(fd, level, optname, optval, &len) != 0)
        return failErrno();
    if (level == SOL_SOCKET && optname == SO_ERROR && len == sizeof(int)) {
        int err;
        std::memcpy(&err, optval, sizeof err);
        err = err ? omWsErrorFromErrno(err) : 0;
        std::memcpy(optval, &err, sizeof err);
    }
    *optlen = static_cast<int>(len);
    return 0;
}

extern "C" int WSAAPI omWsSetSockOpt(SOCKET s, int level, int optname, const char *optval,
                                     int optlen)
{
    int fd = socketFd(s);
    if (fd < 0)
        return SOCKET_ERROR;
    socklen_t len;
    if (!optval || !lengthIn(&optlen, len))
        return fail(WSAEFAULT);
    if (isTimeoutOption(level, optname) && len == sizeof(DWORD)) {
        DWORD ms;
        std::memcpy(&ms, optval, sizeof ms);
        timeval tv{static_cast<time_t>(ms / 1000), static_cast<suseconds_t>(ms % 1000 * 1000)};
        return ::setsockopt(fd, level, optname, &tv, sizeof tv) == 0 ? 0 : failErrno();
    }
    return ::setsockopt(fd, level, optname, optval, len) == 0 ? 0 : failErrno();
}

namespace {
// getsockname and getpeername, which share their checks.
int socketName(SOCKET s, struct sockaddr *name, int *namelen,
               int (*query)(int, struct sockaddr *, socklen_t *))
{
    int fd = socketFd(s);
    if (fd < 0)
        return SOCKET_ERROR;
    socklen_t len;
    if (!name || !lengthIn(namelen, len))
        return fail(WSAEFAULT);
    if (query(fd, name, &len) != 0)
        return failErrno();
    *namelen = static_cast<int>(len);
    return 0;
}
}  // namespace

extern "C" int WSAAPI omWsGetSockName(SOCKET s, struct sockaddr *name, int *namelen)
{
    return socketName(s, name, namelen, ::getsockname);
}

extern "C" int WSAAPI omWsGetPeerName(SOCKET s, struct sockaddr *name, int *namelen)
{
    return socketName(s, name, namelen, ::getpeername);
}

// ---- Event notification ------------------------------------------------

// Every registration first cancels the socket's earlier ones, whatever
// their window or event, and leaves the socket non-blocking even when the
// new event set is empty.
extern "C" int WSAAPI WSAAsyncSelect(SOCKET s, HWND hWnd, u_int wMsg, long lEvent)
{
    int fd = socketFd(s);
    if (fd < 0)
        return SOCKET_ERROR;
    const OmSocketNotifyHooks *h = hooks();
    if (!h || (lEvent && !h->isWindow(hWnd)))
        return fail(WSAEINVAL);
    h->remove(s, nullptr);
    if (!setNonBlocking(fd, true))
        return failErrno();
    if (!lEvent)
        return 0;
    int rc = h->add(s, hWnd, wMsg, lEvent & FD_ALL_EVENTS, 0, nullptr);
    return rc ? fail(rc) : 0;
}

extern "C" int WSAAPI WSAEventSelect(SOCKET s, WSAEVENT hEventObject, long lNetworkEvents)
{
    int fd = socketFd(s);
    if (fd < 0)
        return SOCKET_ERROR;
    const OmSocketNotifyHooks *h = hooks();
    if (!h || (lNetworkEvents && !hEventObject))
        return fail(WSAEINVAL);
    h->remove(s, nullptr);
    if (!setNonBlocking(fd, true))
        return failErrno();
    if (!lNetworkEvents)
        return 0;
    int rc = h->add(s, nullptr, 0, lNetworkEvents & FD_ALL_EVENTS, 1, hEventObject);
    return rc ? fail(rc) : 0;
}

extern "C" int WSAAPI WSAEnumNetworkEvents(SOCKET s, WSAEVENT hEventObject,
                                           LPWSANETWORKEVENTS lpNetworkEvents)
{
    int fd = socketFd(s);
    if (fd < 0)
        return SOCKET_ERROR;
    if (!lpNetworkEvents)
        return fail(WSAEFAULT);
    const OmSocketNotifyHooks *h = hooks();
    if (!h)
        return fail(WSAEINVAL);
    std::memset(lpNetworkEvents, 0, sizeof *lpNetworkEvents);
    if (int rc = h->collect(s, lpNetworkEvents))
        return fail(rc);
    if (hEventObject)
        ResetEvent(hEventObject);
    return 0;
}

extern "C" WSAEVENT WSAAPI WSACreateEvent(void)
{
    // Manual reset and not signalled, as WSAEnumNetworkEvents expects.
    return CreateEventA(nullptr, TRUE, FALSE, nullptr);
}

extern "C" BOOL WSAAPI WSACloseEvent(WSAEVENT hEvent)
{
    return CloseHandle(hEvent);
}

extern "C" BOOL WSAAPI WSASetEvent(WSAEVENT hEvent)
{
    return SetEvent(hEvent);
}

extern "C" BOOL WSAAPI WSAResetEvent(WSAEVENT hEvent)
{
    return ResetEvent(hEvent);
}

// Nothing polls the sockets in the background, so a wait polls them
// itself: it waits in short slices and looks at every event-mode
// registration before each one.
extern "C" DWORD WSAAPI WSAWaitForMultipleEvents(DWORD cEvents, const WSAEVENT *lphEvents,
                                                 BOOL fWaitAll, DWORD dwTimeout, BOOL)
{
    if (!cEvents || cEvents > WSA_MAXIMUM_WAIT_EVENTS || !lphEvents) {
        SetLastError(WSA_INVALID_PARAMETER);
        return WSA_WAIT_FAILED;
    }
    const OmSocketNotifyHooks *h = hooks();
    if (!h)
        return WaitForMultipleObjects(cEvents, lphEvents, fWaitAll, dwTimeout);
    constexpr DWORD kSliceMs = 20;
    auto start = std::chrono::steady_clock::now();
    for (;;) {
        h->pollEvents();
        auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(
            std::chrono::steady_clock::now() - start);
        DWORD waited = static_cast<DWORD>(std::min<int64_t>(elapsed.count(), INFINITE - 1));
        DWORD left = dwTimeout == WSA_INFINITE ? INFINITE : dwTimeout - std::min(waited, dwTimeout);
        bool lastSlice = left <= kSliceMs;
        DWORD r = WaitForMultipleObjects(cEvents, lphEvents, fWaitAll, lastSlice ? left : kSliceMs);
        if (r != WSA_WAIT_TIMEOUT || lastSlice)
            return r;
    }
}
