// The kernel layer's sockets: start-up and version negotiation, errno to
// WSAE codes, bad sockets and null pointers, loopback traffic with the
// Windows option forms, and the calls the socket layer makes into the
// registration table (watched through a stand-in table).
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <winsock2.h>

#include "kernel/omsocket.h"

#include <fcntl.h>
#include <unistd.h>

namespace {

// Start-up for one test, balanced on the way out.
class Sockets : public testing::Test {
protected:
    void SetUp() override
    {
        WSADATA data;
        ASSERT_EQ(WSAStartup(MAKEWORD(2, 2), &data), 0);
    }
    void TearDown() override
    {
        for (SOCKET s : owned)
            closesocket(s);
        EXPECT_EQ(WSACleanup(), 0);
    }

    SOCKET own(SOCKET s)
    {
        EXPECT_NE(s, INVALID_SOCKET) << WSAGetLastError();
        owned.push_back(s);
        return s;
    }

    // A listening loopback socket on a port the system picks.
    SOCKET listener(sockaddr_in &addr)
    {
        SOCKET l = own(socket(AF_INET, SOCK_STREAM, 0));
        addr = {};
        addr.sin_family = AF_INET;
        addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        EXPECT_EQ(bind(l, reinterpret_cast<sockaddr *>(&addr), sizeof addr), 0);
        int len = sizeof addr;
        EXPECT_EQ(getsockname(l, reinterpret_cast<sockaddr *>(&addr), &len), 0);
        EXPECT_EQ(listen(l, 4), 0);
        return l;
    }

    // A connected pair: client and the accepted server end.
    void pair(SOCKET &client, SOCKET &server)
    {
        sockaddr_in addr;
        SOCKET l = listener(addr);
        client = own(socket(AF_INET, SOCK_STREAM, 0));
        ASSERT_EQ(connect(client, reinterpret_cast<sockaddr *>(&addr), sizeof addr), 0);
        server = own(accept(l, nullptr, nullptr));
    }

    std::vector<SOCKET> owned;
};

TEST(SocketStartup, NegotiatesTheVersionAndCountsCleanups)
{
    struct Row {
        WORD requested;
        int result;
        WORD granted;
    };
    constexpr Row kRows[] = {
        {MAKEWORD(2, 2), 0, MAKEWORD(2, 2)},
        {MAKEWORD(1, 1), 0, MAKEWORD(1, 1)},
        {MAKEWORD(2, 0), 0, MAKEWORD(2, 0)},
        {MAKEWORD(3, 0), 0, MAKEWORD(2, 2)},
        {MAKEWORD(2, 9), 0, MAKEWORD(2, 2)},
        {MAKEWORD(0, 9), WSAVERNOTSUPPORTED, 0},
    };
    int started = 0;
    for (const Row &row : kRows) {
        SCOPED_TRACE(testing::Message() << "requested 0x" << std::hex << row.requested);
        WSADATA data;
        std::memset(&data, 0x5A, sizeof data);
        EXPECT_EQ(WSAStartup(row.requested, &data), row.result);
        EXPECT_EQ(data.wHighVersion, MAKEWORD(2, 2));
        if (row.result == 0) {
            ++started;
            EXPECT_EQ(data.wVersion, row.granted);
            EXPECT_NE(std::memchr(data.szDescription, 0, sizeof data.szDescription), nullptr);
        }
    }
    EXPECT_EQ(WSAStartup(MAKEWORD(2, 2), nullptr), WSAEFAULT);
    for (int i = 0; i < started; ++i)
        EXPECT_EQ(WSACleanup(), 0);
    // Every start-up is undone: the next cleanup and every call fail.
    EXPECT_EQ(WSACleanup(), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSANOTINITIALISED);
    EXPECT_EQ(socket(AF_INET, SOCK_STREAM, 0), INVALID_SOCKET);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(WSANOTINITIALISED));  // one error slot
}

// Every call on something that is no socket fails with WSAENOTSOCK, and
// never acts on a file the number happens to name.
TEST_F(Sockets, EveryCallRefusesWhatIsNoSocket)
{
    int fds[2];
    ASSERT_EQ(pipe(fds), 0);
    SOCKET closed = socket(AF_INET, SOCK_STREAM, 0);
    ASSERT_EQ(closesocket(closed), 0);
    const SOCKET kBad[] = {INVALID_SOCKET, closed, static_cast<SOCKET>(fds[0]),
                           static_cast<SOCKET>(1) << 40};
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    auto *sa = reinterpret_cast<sockaddr *>(&addr);
    char buf[4] = {};
    int len = sizeof addr;
    u_long arg = 1;
    WSANETWORKEVENTS ne;
    HANDLE ev = WSACreateEvent();
    using Call = std::function<long(SOCKET)>;
    const std::pair<const char *, Call> kCalls[] = {
        {"bind", [&](SOCKET s) { return bind(s, sa, sizeof addr); }},
        {"listen", [&](SOCKET s) { return listen(s, 1); }},
        {"connect", [&](SOCKET s) { return connect(s, sa, sizeof addr); }},
        {"accept", [&](SOCKET s) { return accept(s, nullptr, nullptr) == INVALID_SOCKET ? -1 : 0; }},
        {"recv", [&](SOCKET s) { return recv(s, buf, sizeof buf, 0); }},
        {"send", [&](SOCKET s) { return send(s, buf, sizeof buf, 0); }},
        {"ioctlsocket", [&](SOCKET s) { return ioctlsocket(s, FIONBIO, &arg); }},
        {"shutdown", [&](SOCKET s) { return shutdown(s, SD_BOTH); }},
        {"getsockname", [&](SOCKET s) { return getsockname(s, sa, &len); }},
        {"setsockopt", [&](SOCKET s) { return setsockopt(s, SOL_SOCKET, SO_REUSEADDR, buf, 4); }},
        {"WSAEventSelect", [&](SOCKET s) { return WSAEventSelect(s, ev, FD_READ); }},
        {"WSAEnumNetworkEvents", [&](SOCKET s) { return WSAEnumNetworkEvents(s, ev, &ne); }},
        {"WSAAsyncSelect", [&](SOCKET s) { return WSAAsyncSelect(s, nullptr, 0, 0); }},
        {"closesocket", [&](SOCKET s) { return closesocket(s); }},
    };
    for (SOCKET s : kBad)
        for (const auto &[name, call] : kCalls) {
            SCOPED_TRACE(testing::Message() << name << " on " << s);
            WSASetLastError(0);
            EXPECT_EQ(call(s), SOCKET_ERROR);
            EXPECT_EQ(WSAGetLastError(), WSAENOTSOCK);
        }
    // closesocket left the pipe open.
    EXPECT_EQ(write(fds[1], "x", 1), 1);
    EXPECT_EQ(read(fds[0], buf, 1), 1);
    close(fds[0]);
    close(fds[1]);
    WSACloseEvent(ev);
}

TEST_F(Sockets, NullPointersAndBadLengthsAreFaults)
{
    SOCKET s = own(socket(AF_INET, SOCK_STREAM, 0));
    sockaddr_in addr{};
    auto *sa = reinterpret_cast<sockaddr *>(&addr);
    int negative = -1;
    char opt[4];
    using Call = std::function<long()>;
    const std::pair<const char *, Call> kCalls[] = {
        {"bind null", [&] { return bind(s, nullptr, sizeof addr); }},
        {"bind negative", [&] { return bind(s, sa, -4); }},
        {"connect null", [&] { return connect(s, nullptr, sizeof addr); }},
        {"ioctlsocket null", [&] { return ioctlsocket(s, FIONREAD, nullptr); }},
        {"getsockopt null len", [&] { return getsockopt(s, SOL_SOCKET, SO_TYPE, opt, nullptr); }},
        {"getsockname negative", [&] { return getsockname(s, sa, &negative); }},
        {"recv null", [&] { return recv(s, nullptr, 8, 0); }},
        {"send negative", [&] { return send(s, opt, -1, 0); }},
        {"WSAEnumNetworkEvents null", [&] { return WSAEnumNetworkEvents(s, nullptr, nullptr); }},
    };
    for (const auto &[name, call] : kCalls) {
        SCOPED_TRACE(name);
        EXPECT_EQ(call(), SOCKET_ERROR);
        EXPECT_EQ(WSAGetLastError(), WSAEFAULT);
    }
    EXPECT_EQ(ioctlsocket(s, 0x12345, reinterpret_cast<u_long *>(opt)), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAEINVAL);
    EXPECT_EQ(shutdown(s, 7), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAEINVAL);
}

TEST_F(Sockets, LoopbackTrafficWithIoctlsAndPeerClose)
{
    SOCKET client, server;
    pair(client, server);
    ASSERT_EQ(send(client, "hello", 5, 0), 5);
    // Both spellings of FIONREAD count the waiting bytes.
    for (long cmd : {static_cast<long>(FIONREAD), 0x4004667FL}) {
        u_long n = 0;
        for (int i = 0; i < 200 && n < 5; ++i) {
            ASSERT_EQ(ioctlsocket(server, cmd, &n), 0);
            if (n < 5)
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        EXPECT_EQ(n, 5u);
    }
    char buf[16] = {};
    EXPECT_EQ(recv(server, buf, sizeof buf, 0), 5);
    EXPECT_STREQ(buf, "hello");

    u_long on = 1;
    ASSERT_EQ(ioctlsocket(server, static_cast<long>(0x8004667EL), &on), 0);
    EXPECT_EQ(recv(server, buf, sizeof buf, 0), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAEWOULDBLOCK);

    ASSERT_EQ(closesocket(client), 0);
    owned.erase(std::find(owned.begin(), owned.end(), client));
    int got = SOCKET_ERROR;
    for (int i = 0; i < 200 && got == SOCKET_ERROR; ++i) {
        got = recv(server, buf, sizeof buf, 0);
        if (got == SOCKET_ERROR)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    EXPECT_EQ(got, 0);
    // Sending to the closed peer is an error code, never SIGPIPE.
    int sent = 0;
    for (int i = 0; i < 50 && sent != SOCKET_ERROR; ++i)
        sent = send(server, "x", 1, 0);
    EXPECT_EQ(sent, SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAECONNRESET);
}

TEST_F(Sockets, WindowsOptionFormsAreTranslated)
{
    SOCKET client, server;
    pair(client, server);
    // Time-outs as a DWORD of milliseconds; a blocking recv then times out.
    DWORD ms = 120;
    ASSERT_EQ(setsockopt(server, SOL_SOCKET, SO_RCVTIMEO, reinterpret_cast<char *>(&ms),
                         sizeof ms),
              0);
    DWORD back = 0;
    int len = sizeof back;
    ASSERT_EQ(getsockopt(server, SOL_SOCKET, SO_RCVTIMEO, reinterpret_cast<char *>(&back), &len),
              0);
    EXPECT_EQ(back, 120u);
    char buf[4];
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(recv(server, buf, sizeof buf, 0), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAETIMEDOUT);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(100));

    // A refused non-blocking connect reports a WSAE code through SO_ERROR.
    sockaddr_in addr;
    SOCKET l = listener(addr);
    closesocket(l);
    owned.erase(std::find(owned.begin(), owned.end(), l));
    SOCKET c = own(socket(AF_INET, SOCK_STREAM, 0));
    u_long on = 1;
    ASSERT_EQ(ioctlsocket(c, FIONBIO, &on), 0);
    int rc = connect(c, reinterpret_cast<sockaddr *>(&addr), sizeof addr);
    if (rc == SOCKET_ERROR) {
        EXPECT_EQ(WSAGetLastError(), WSAEWOULDBLOCK);
    }
    int err = 0;
    for (int i = 0; i < 200 && err == 0; ++i) {
        len = sizeof err;
        ASSERT_EQ(getsockopt(c, SOL_SOCKET, SO_ERROR, reinterpret_cast<char *>(&err), &len), 0);
        if (err == 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    EXPECT_EQ(err, WSAECONNREFUSED);
}

// ---- The registration table as the socket layer drives it ----------------

struct Seen {
    std::vector<std::string> calls;
    bool windowOk = true;
    bool registered = false;
    int duplicateResult = 1;
};
Seen g_seen;

std::string tag(const char *what, SOCKET s, long arg = -1)
{
    std::string t = std::string(what) + " " + std::to_string(s);
    return arg == -1 ? t : t + " " + std::to_string(arg);
}

const OmSocketNotifyHooks kFakeHooks = {
    .add = [](SOCKET s, HWND, UINT, long events, int eventMode, HANDLE) {
        g_seen.calls.push_back(tag(eventMode ? "addEvent" : "addMessage", s, events));
        return 0;
    },
    .remove = [](SOCKET s, HWND) {
        g_seen.calls.push_back(tag("remove", s));
        return 0;
    },
    .duplicate = [](SOCKET, SOCKET accepted) {
        g_seen.calls.push_back(tag("duplicate", accepted));
        return g_seen.duplicateResult;
    },
    .enable = [](SOCKET s, long event, int) { g_seen.calls.push_back(tag("enable", s, event)); },
    .setState = [](SOCKET s, int state) { g_seen.calls.push_back(tag("state", s, state)); },
    .collect = [](SOCKET, WSANETWORKEVENTS *out) {
        out->lNetworkEvents = FD_READ;
        return 0;
    },
    .pollEvents = [] {},
    .isWindow = [](HWND) { return g_seen.windowOk ? 1 : 0; },
    .isRegistered = [](SOCKET) { return g_seen.registered ? 1 : 0; },
};

class SocketSeam : public Sockets {
protected:
    void SetUp() override
    {
        Sockets::SetUp();
        g_seen = Seen{};
        saved = omRegisterSocketNotifyHooks(&kFakeHooks);
    }
    void TearDown() override
    {
        omRegisterSocketNotifyHooks(saved);
        Sockets::TearDown();
    }
    const OmSocketNotifyHooks *saved = nullptr;
};

bool contains(const std::string &call)
{
    return std::find(g_seen.calls.begin(), g_seen.calls.end(), call) != g_seen.calls.end();
}

TEST_F(SocketSeam, ReceivingRearmsReadAndOobButSendingWithRoomRearmsNothing)
{
    SOCKET client, server;
    pair(client, server);
    g_seen.calls.clear();
    ASSERT_EQ(send(client, "abc", 3, 0), 3);
    EXPECT_FALSE(contains(tag("enable", client, FD_WRITE)));
    char buf[8];
    ASSERT_GT(recv(server, buf, sizeof buf, 0), 0);
    EXPECT_TRUE(contains(tag("enable", server, FD_READ)));
    EXPECT_TRUE(contains(tag("enable", server, FD_OOB)));

    // A send the buffers cannot take re-arms FD_WRITE.
    u_long on = 1;
    ASSERT_EQ(ioctlsocket(client, FIONBIO, &on), 0);
    std::vector<char> block(1 << 16, 'z');
    int rc = 0;
    for (int i = 0; i < 2000 && rc != SOCKET_ERROR; ++i)
        rc = send(client, block.data(), static_cast<int>(block.size()), 0);
    ASSERT_EQ(rc, SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAEWOULDBLOCK);
    EXPECT_TRUE(contains(tag("enable", client, FD_WRITE)));
}

TEST_F(SocketSeam, AcceptDuplicatesTheRegistrationAndGoesNonBlocking)
{
    for (int duplicated : {1, 0}) {
        SCOPED_TRACE(duplicated);
        g_seen.duplicateResult = duplicated;
        sockaddr_in addr;
        SOCKET l = listener(addr);
        SOCKET c = own(socket(AF_INET, SOCK_STREAM, 0));
        // A registered socket whose connect completes at once is told so.
        g_seen.registered = duplicated == 1;
        ASSERT_EQ(connect(c, reinterpret_cast<sockaddr *>(&addr), sizeof addr), 0);
        EXPECT_EQ(contains(tag("state", c, kOmAsyncStateConnected)), duplicated == 1);
        g_seen.calls.clear();
        SOCKET a = own(accept(l, nullptr, nullptr));
        EXPECT_TRUE(contains(tag("enable", l, FD_ACCEPT)));
        EXPECT_TRUE(contains(tag("duplicate", a)));
        EXPECT_EQ((fcntl(static_cast<int>(a), F_GETFL) & O_NONBLOCK) != 0, duplicated == 1);
    }
}

TEST_F(SocketSeam, SelectCallsCancelFirstAndCloseRemovesBeforeTheNumberIsFree)
{
    SOCKET s = own(socket(AF_INET, SOCK_STREAM, 0));
    HWND fakeWindow = reinterpret_cast<HWND>(0x10);
    ASSERT_EQ(WSAAsyncSelect(s, fakeWindow, WM_USER, FD_READ | 0x10000), 0);
    EXPECT_EQ(g_seen.calls, (std::vector<std::string>{tag("remove", s),
                                                      tag("addMessage", s, FD_READ)}));
    EXPECT_NE(fcntl(static_cast<int>(s), F_GETFL) & O_NONBLOCK, 0);

    g_seen.calls.clear();
    HANDLE ev = WSACreateEvent();
    ASSERT_EQ(WSAEventSelect(s, ev, FD_CLOSE), 0);
    EXPECT_EQ(g_seen.calls,
              (std::vector<std::string>{tag("remove", s), tag("addEvent", s, FD_CLOSE)}));
    WSANETWORKEVENTS ne;
    ASSERT_EQ(SetEvent(ev), TRUE);
    EXPECT_EQ(WSAEnumNetworkEvents(s, ev, &ne), 0);
    EXPECT_EQ(ne.lNetworkEvents, FD_READ);
    EXPECT_EQ(WaitForSingleObject(ev, 0), static_cast<DWORD>(WAIT_TIMEOUT));

    // Refusals: a dead window, a missing event, leaving a registered socket
    // blocking.
    g_seen.windowOk = false;
    EXPECT_EQ(WSAAsyncSelect(s, fakeWindow, WM_USER, FD_READ), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAEINVAL);
    EXPECT_EQ(WSAEventSelect(s, nullptr, FD_READ), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAEINVAL);
    g_seen.registered = true;
    u_long off = 0;
    EXPECT_EQ(ioctlsocket(s, FIONBIO, &off), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAEINVAL);

    g_seen.calls.clear();
    ASSERT_EQ(closesocket(s), 0);
    owned.clear();
    EXPECT_EQ(g_seen.calls, (std::vector<std::string>{tag("remove", s)}));
    WSACloseEvent(ev);
}

TEST_F(SocketSeam, WithoutATableTheSelectCallsFail)
{
    omRegisterSocketNotifyHooks(nullptr);
    SOCKET s = own(socket(AF_INET, SOCK_STREAM, 0));
    HANDLE ev = WSACreateEvent();
    EXPECT_EQ(WSAAsyncSelect(s, reinterpret_cast<HWND>(0x10), WM_USER, FD_READ), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAEINVAL);
    EXPECT_EQ(WSAEventSelect(s, ev, FD_READ), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAEINVAL);
    // The socket calls themselves still work.
    char buf[2];
    u_long on = 1;
    EXPECT_EQ(ioctlsocket(s, FIONBIO, &on), 0);
    EXPECT_EQ(recv(s, buf, 2, 0), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAENOTCONN);
    // A plain event wait still times out and signals.
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(WSAWaitForMultipleEvents(1, &ev, FALSE, 30, FALSE), WSA_WAIT_TIMEOUT);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(25));
    WSASetEvent(ev);
    EXPECT_EQ(WSAWaitForMultipleEvents(1, &ev, FALSE, 0, FALSE), WSA_WAIT_EVENT_0);
    EXPECT_EQ(WSAWaitForMultipleEvents(0, &ev, FALSE, 0, FALSE), WSA_WAIT_FAILED);
    WSACloseEvent(ev);
}

}  // namespace
