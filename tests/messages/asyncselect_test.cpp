// Socket notification as retrieval will see it: WSAAsyncSelect messages
// from the socket source (driven directly, with and without removal),
// re-arming by recv and accept, connect results, listeners, filters, the
// WSAEventSelect path, and registrations of other threads.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string>
#include <atomic>
#include <thread>
#include <utility>
#include <vector>

#include <winsock2.h>

#include "kernel/ominit.h"
#include "kernel/omsocket.h"
#include "kernel/omthread.h"
#include "messages/omasyncselect.h"

#include <sys/un.h>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr UINT kSockMsg = WM_USER + 7;

LRESULT CALLBACK plainProc(HWND, UINT msg, WPARAM, LPARAM)
{
    return msg == WM_NCCREATE ? TRUE : 0;
}

HWND makeWindow()
{
    static const ATOM atom = [] {
        WNDCLASSA wc{};
        wc.lpfnWndProc = plainProc;
        wc.lpszClassName = "AsyncSelectTestWindow";
        return RegisterClassA(&wc);
    }();
    EXPECT_NE(atom, 0);
    return CreateWindowExA(0, "AsyncSelectTestWindow", "", WS_POPUP, 0, 0, 10, 10, nullptr,
                           nullptr, nullptr, nullptr);
}

// The registration of s in the calling thread's list, or null.
OmAsyncSelectInfo *registrationOf(SOCKET s)
{
    for (OmAsyncSelectInfo *r = omGetNextAsyncInfo(nullptr, nullptr); r;
         r = omGetNextAsyncInfo(nullptr, r))
        if (r->socket == s)
            return r;
    return nullptr;
}

int registrationsOf(SOCKET s)
{
    return omWantAsyncCloseMessage(s, nullptr, nullptr);
}

class AsyncSelect : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(omInitialize(nullptr, nullptr));
        WSADATA data;
        ASSERT_EQ(WSAStartup(MAKEWORD(2, 2), &data), 0);
        hwnd = makeWindow();
        ASSERT_NE(hwnd, nullptr);
    }
    void TearDown() override
    {
        for (SOCKET s : owned)
            closesocket(s);
        // closesocket dropped every registration the test made.
        EXPECT_EQ(omThreadHasAsyncRegistrations(), 0);
        DestroyWindow(hwnd);
        EXPECT_EQ(WSACleanup(), 0);
    }

    SOCKET own(SOCKET s)
    {
        EXPECT_NE(s, INVALID_SOCKET) << WSAGetLastError();
        owned.push_back(s);
        return s;
    }
    void close(SOCKET s)
    {
        EXPECT_EQ(closesocket(s), 0);
        owned.erase(std::remove(owned.begin(), owned.end(), s), owned.end());
    }

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
    void pair(SOCKET &client, SOCKET &server)
    {
        sockaddr_in addr;
        SOCKET l = listener(addr);
        client = own(socket(AF_INET, SOCK_STREAM, 0));
        ASSERT_EQ(connect(client, reinterpret_cast<sockaddr *>(&addr), sizeof addr), 0);
        server = own(accept(l, nullptr, nullptr));
        close(l);
    }

    // Asks the socket source until it gives a notification or limit passes.
    bool next(MSG &m, UINT flags = PM_REMOVE, HWND filter = nullptr, UINT min = 0, UINT max = 0,
              std::chrono::milliseconds limit = 2000ms)
    {
        auto deadline = Clock::now() + limit;
        do {
            m = MSG{};
            if (omGetAsyncSelectMessage(nullptr, filter, &m, min, max, TRUE, flags))
                return true;
            std::this_thread::sleep_for(1ms);
        } while (Clock::now() < deadline);
        return false;
    }
    // True when no notification comes for a while.
    bool quiet(std::chrono::milliseconds settle = 100ms)
    {
        MSG m;
        if (!next(m, PM_NOREMOVE, nullptr, 0, 0, settle))
            return true;
        ADD_FAILURE() << "unexpected event 0x" << std::hex << WSAGETSELECTEVENT(m.lParam)
                      << " on socket " << std::dec << m.wParam;
        return false;
    }
    void expectNotification(SOCKET s, long event, int error = 0)
    {
        MSG m;
        ASSERT_TRUE(next(m)) << "no notification 0x" << std::hex << event;
        EXPECT_EQ(m.hwnd, hwnd);
        EXPECT_EQ(m.message, kSockMsg);
        EXPECT_EQ(m.wParam, s);
        EXPECT_EQ(WSAGETSELECTEVENT(m.lParam), event);
        EXPECT_EQ(WSAGETSELECTERROR(m.lParam), error);
    }

    HWND hwnd = nullptr;
    std::vector<SOCKET> owned;
};

TEST_F(AsyncSelect, ReadIsReportedOncePerSendUntilRecvRearms)
{
    SOCKET client, server;
    pair(client, server);
    ASSERT_EQ(WSAAsyncSelect(server, hwnd, kSockMsg, FD_READ | FD_CLOSE), 0);
    EXPECT_TRUE(quiet());
    for (char c : std::string("abc")) {
        SCOPED_TRACE(c);
        ASSERT_EQ(send(client, &c, 1, 0), 1);
        expectNotification(server, FD_READ);
        EXPECT_TRUE(quiet());  // the byte still waits, but FD_READ is disarmed
        char got = 0;
        ASSERT_EQ(recv(server, &got, 1, 0), 1);
        EXPECT_EQ(got, c);
        EXPECT_TRUE(quiet());  // re-armed, and nothing left to read
    }
    close(client);
    expectNotification(server, FD_CLOSE);
    EXPECT_TRUE(quiet());
}

TEST_F(AsyncSelect, PeekWithoutRemovalLeavesTheEventArmed)
{
    SOCKET client, server;
    pair(client, server);
    ASSERT_EQ(WSAAsyncSelect(server, hwnd, kSockMsg, FD_READ), 0);
    ASSERT_EQ(send(client, "z", 1, 0), 1);
    MSG m;
    for (int i = 0; i < 3; ++i) {
        SCOPED_TRACE(i);
        ASSERT_TRUE(next(m, PM_NOREMOVE));
        EXPECT_EQ(WSAGETSELECTEVENT(m.lParam), FD_READ);
        EXPECT_TRUE(omCheckAsyncSelectMessage());
    }
    // Without fill the source answers and leaves msg alone.
    MSG untouched{};
    untouched.message = 0xBEEF;
    EXPECT_TRUE(omGetAsyncSelectMessage(nullptr, nullptr, &untouched, 0, 0, FALSE, PM_REMOVE));
    EXPECT_EQ(untouched.message, 0xBEEFu);
    expectNotification(server, FD_READ);
    EXPECT_FALSE(omCheckAsyncSelectMessage());
}

TEST_F(AsyncSelect, CloseWaitsUntilTheDataIsRead)
{
    SOCKET client, server;
    pair(client, server);
    ASSERT_EQ(WSAAsyncSelect(server, hwnd, kSockMsg, FD_READ | FD_CLOSE), 0);
    ASSERT_EQ(send(client, "xy", 2, 0), 2);
    close(client);
    expectNotification(server, FD_READ);
    EXPECT_TRUE(quiet());
    char buf[4];
    ASSERT_EQ(recv(server, buf, sizeof buf, 0), 2);
    expectNotification(server, FD_CLOSE);
}

TEST_F(AsyncSelect, ListenerGivesAcceptAndAcceptedSocketsInheritTheRegistration)
{
    sockaddr_in addr;
    SOCKET l = listener(addr);
    constexpr long kAll = FD_READ | FD_WRITE | FD_ACCEPT | FD_CONNECT | FD_CLOSE;
    ASSERT_EQ(WSAAsyncSelect(l, hwnd, kSockMsg, kAll), 0);
    OmAsyncSelectInfo *r = registrationOf(l);
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(r->requested, kAll);
    EXPECT_EQ(r->enabled & (FD_WRITE | FD_CONNECT), 0);
    EXPECT_TRUE(quiet());  // an idle listener is neither writable nor closed

    SOCKET client = own(socket(AF_INET, SOCK_STREAM, 0));
    ASSERT_EQ(connect(client, reinterpret_cast<sockaddr *>(&addr), sizeof addr), 0);
    expectNotification(l, FD_ACCEPT);
    // A pending connection leaves the listener readable: that is no
    // FD_READ or FD_CLOSE, and FD_ACCEPT waits for accept.
    EXPECT_TRUE(quiet());

    SOCKET server = own(accept(l, nullptr, nullptr));
    EXPECT_NE(registrationOf(l)->enabled & FD_ACCEPT, 0);
    OmAsyncSelectInfo *copy = registrationOf(server);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->hwnd, hwnd);
    EXPECT_EQ(copy->message, kSockMsg);
    EXPECT_EQ(copy->requested, kAll & ~FD_ACCEPT);
    // The accepted socket is connected already: FD_WRITE, never FD_CONNECT.
    expectNotification(server, FD_WRITE);
    EXPECT_TRUE(quiet());
    ASSERT_EQ(send(client, "q", 1, 0), 1);
    expectNotification(server, FD_READ);

    // A second client gives a second FD_ACCEPT after the re-arm.
    SOCKET client2 = own(socket(AF_INET, SOCK_STREAM, 0));
    ASSERT_EQ(connect(client2, reinterpret_cast<sockaddr *>(&addr), sizeof addr), 0);
    expectNotification(l, FD_ACCEPT);
}

// A socket registered before its connect: silent while unconnected, then
// one FD_CONNECT with the outcome; a connected one goes on to FD_WRITE.
struct ConnectCase {
    const char *name;
    int family;
    bool peerListens;
    int error;
};

void PrintTo(const ConnectCase &c, std::ostream *os)
{
    *os << c.name;
}

class AsyncSelectConnect : public AsyncSelect, public testing::WithParamInterface<ConnectCase> {
};

TEST_P(AsyncSelectConnect, ReportsTheEndOfTheAttemptOnce)
{
    const ConnectCase &c = GetParam();
    sockaddr_storage peer{};
    int peerLen;
    SOCKET l = own(socket(c.family, SOCK_STREAM, 0));
    if (c.family == AF_UNIX) {
        // An abstract name: a local connect completes within the call.
        auto *un = reinterpret_cast<sockaddr_un *>(&peer);
        un->sun_family = AF_UNIX;
        std::string name = "olmo-asyncselect-" + std::to_string(getpid());
        std::memcpy(un->sun_path + 1, name.data(), name.size());
        peerLen = static_cast<int>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
    } else {
        auto *in = reinterpret_cast<sockaddr_in *>(&peer);
        in->sin_family = AF_INET;
        in->sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        peerLen = sizeof(sockaddr_in);
    }
    ASSERT_EQ(bind(l, reinterpret_cast<sockaddr *>(&peer), peerLen), 0);
    ASSERT_EQ(getsockname(l, reinterpret_cast<sockaddr *>(&peer), &peerLen), 0);
    if (c.peerListens) {
        ASSERT_EQ(listen(l, 2), 0);
    }

    SOCKET s = own(socket(c.family, SOCK_STREAM, 0));
    ASSERT_EQ(WSAAsyncSelect(s, hwnd, kSockMsg, FD_CONNECT | FD_WRITE | FD_READ | FD_CLOSE), 0);
    EXPECT_TRUE(quiet());  // a fresh socket reports nothing
    int rc = connect(s, reinterpret_cast<sockaddr *>(&peer), peerLen);
    if (rc == SOCKET_ERROR) {
        int err = WSAGetLastError();
        EXPECT_TRUE(err == WSAEWOULDBLOCK || err == c.error) << err;
    }
    if (rc == SOCKET_ERROR && WSAGetLastError() != WSAEWOULDBLOCK)
        return;  // refused within the call: nothing to report
    expectNotification(s, FD_CONNECT, c.error);
    if (!c.error)
        expectNotification(s, FD_WRITE);
    EXPECT_TRUE(quiet());
}

INSTANTIATE_TEST_SUITE_P(
    Outcomes, AsyncSelectConnect,
    testing::Values(ConnectCase{"LoopbackAccepted", AF_INET, true, 0},
                    ConnectCase{"LoopbackRefused", AF_INET, false, WSAECONNREFUSED},
                    ConnectCase{"LocalAtOnce", AF_UNIX, true, 0}),
    [](const testing::TestParamInfo<ConnectCase> &info) { return info.param.name; });

TEST_F(AsyncSelect, FiltersChooseByWindowAndMessageRange)
{
    SOCKET client, server;
    pair(client, server);
    HWND target = makeWindow();
    HWND other = makeWindow();
    ASSERT_NE(target, nullptr);
    ASSERT_NE(other, nullptr);
    ASSERT_EQ(WSAAsyncSelect(server, target, kSockMsg, FD_READ), 0);
    ASSERT_EQ(send(client, "f", 1, 0), 1);
    MSG first;
    ASSERT_TRUE(next(first, PM_NOREMOVE));
    struct Row {
        const char *name;
        HWND filter;
        UINT min, max;
        bool found;
    };
    const Row kRows[] = {
        {"the window", target, 0, 0, true},
        {"another window", other, 0, 0, false},
        {"exact range", nullptr, kSockMsg, kSockMsg, true},
        {"range above", nullptr, kSockMsg + 1, 0, false},
        {"range below", nullptr, 0, kSockMsg - 1, false},
        {"open min", nullptr, 0, kSockMsg, true},
    };
    for (const Row &row : kRows) {
        SCOPED_TRACE(row.name);
        MSG m{};
        EXPECT_EQ(omGetAsyncSelectMessage(nullptr, row.filter, &m, row.min, row.max, TRUE,
                                          PM_NOREMOVE) != FALSE,
                  row.found);
        if (row.found) {
            EXPECT_EQ(m.hwnd, target);
        }
    }
    // A destroyed window is told nothing.
    DestroyWindow(target);
    EXPECT_TRUE(quiet());
    DestroyWindow(other);
}

TEST_F(AsyncSelect, EventSelectSignalsTheEventAndEnumCollects)
{
    SOCKET client, server;
    pair(client, server);
    WSAEVENT ev = WSACreateEvent();
    ASSERT_NE(ev, WSA_INVALID_EVENT);
    ASSERT_EQ(WSAEventSelect(server, ev, FD_READ | FD_CLOSE), 0);
    EXPECT_TRUE(omIsSocketEvent(ev));
    ASSERT_EQ(send(client, "e", 1, 0), 1);
    // Retrieval polls event registrations too, but hands out no message.
    MSG m;
    for (int i = 0; i < 2000 && WaitForSingleObject(ev, 0) != WAIT_OBJECT_0; ++i) {
        EXPECT_FALSE(omGetAsyncSelectMessage(nullptr, nullptr, &m, 0, 0, TRUE, PM_REMOVE));
        std::this_thread::sleep_for(1ms);
    }
    EXPECT_EQ(WaitForSingleObject(ev, 0), static_cast<DWORD>(WAIT_OBJECT_0));
    EXPECT_EQ(omGetAsyncInfo(server, FALSE), FD_READ);

    WSANETWORKEVENTS ne;
    ASSERT_EQ(WSAEnumNetworkEvents(server, ev, &ne), 0);
    EXPECT_EQ(ne.lNetworkEvents, FD_READ);
    EXPECT_EQ(ne.iErrorCode[FD_READ_BIT], 0);
    EXPECT_EQ(WaitForSingleObject(ev, 0), static_cast<DWORD>(WAIT_TIMEOUT));
    // Collected and disarmed until recv.
    ASSERT_EQ(WSAEnumNetworkEvents(server, nullptr, &ne), 0);
    EXPECT_EQ(ne.lNetworkEvents, 0);

    char c;
    ASSERT_EQ(recv(server, &c, 1, 0), 1);
    close(client);
    // A wait polls by itself: no retrieval needed.
    ASSERT_EQ(WSAWaitForMultipleEvents(1, &ev, FALSE, 2000, FALSE), WSA_WAIT_EVENT_0);
    ASSERT_EQ(WSAEnumNetworkEvents(server, ev, &ne), 0);
    EXPECT_EQ(ne.lNetworkEvents, FD_CLOSE);
    EXPECT_EQ(ne.iErrorCode[FD_CLOSE_BIT], 0);
    // A message registration has nothing to collect.
    ASSERT_EQ(WSAAsyncSelect(server, hwnd, kSockMsg, FD_READ), 0);
    EXPECT_FALSE(omIsSocketEvent(ev));
    EXPECT_EQ(WSAEnumNetworkEvents(server, ev, &ne), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAEINVAL);
    EXPECT_EQ(omGetAsyncInfo(server, TRUE), -1);
    EXPECT_TRUE(WSACloseEvent(ev));
}

TEST_F(AsyncSelect, RegistrationsAreReplacedCancelledAndDroppedOnClose)
{
    SOCKET s = own(socket(AF_INET, SOCK_STREAM, 0));
    EXPECT_EQ(omThreadHasAsyncRegistrations(), 0);
    ASSERT_EQ(WSAAsyncSelect(s, hwnd, kSockMsg, FD_READ | FD_CLOSE), 0);
    ASSERT_EQ(WSAAsyncSelect(s, hwnd, kSockMsg + 1, FD_CLOSE), 0);
    EXPECT_EQ(omThreadHasAsyncRegistrations(), 1);
    ASSERT_EQ(registrationsOf(s), 1);
    EXPECT_EQ(registrationOf(s)->message, kSockMsg + 1);

    HWND *hwnds = nullptr;
    UINT *messages = nullptr;
    ASSERT_EQ(omWantAsyncCloseMessage(s, &hwnds, &messages), 1);
    EXPECT_EQ(hwnds[0], hwnd);
    EXPECT_EQ(messages[0], kSockMsg + 1);
    std::free(hwnds);
    std::free(messages);

    // An empty event set cancels, and the socket stays non-blocking.
    ASSERT_EQ(WSAAsyncSelect(s, hwnd, 0, 0), 0);
    EXPECT_EQ(registrationOf(s), nullptr);
    u_long off = 0;
    EXPECT_EQ(ioctlsocket(s, FIONBIO, &off), 0);

    ASSERT_EQ(WSAAsyncSelect(s, hwnd, kSockMsg, FD_READ), 0);
    EXPECT_EQ(ioctlsocket(s, FIONBIO, &off), SOCKET_ERROR);  // must stay non-blocking
    EXPECT_EQ(WSAGetLastError(), WSAEINVAL);
    close(s);
    EXPECT_EQ(registrationsOf(s), 0);
    EXPECT_EQ(WSAAsyncSelect(s, hwnd, kSockMsg, FD_READ), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAENOTSOCK);
}

TEST_F(AsyncSelect, BadArgumentsFailWithoutHarm)
{
    SOCKET s = own(socket(AF_INET, SOCK_STREAM, 0));
    const HWND kBadWindows[] = {nullptr, reinterpret_cast<HWND>(0x7FFFFF),
                                reinterpret_cast<HWND>(~uintptr_t{0})};
    for (HWND w : kBadWindows) {
        SCOPED_TRACE(w);
        EXPECT_EQ(WSAAsyncSelect(s, w, kSockMsg, FD_READ), SOCKET_ERROR);
        EXPECT_EQ(WSAGetLastError(), WSAEINVAL);
    }
    EXPECT_EQ(registrationsOf(s), 0);
    ASSERT_EQ(WSAAsyncSelect(s, hwnd, kSockMsg, FD_READ), 0);
    EXPECT_FALSE(omFillAsyncSelectMessage(registrationOf(s), FD_READ, nullptr, 0, TRUE, 0));
    MSG m;
    EXPECT_FALSE(omGetAsyncSelectMessage(reinterpret_cast<HANDLE>(0x7FFF0), nullptr, &m, 0, 0,
                                         TRUE, PM_REMOVE));
    EXPECT_FALSE(omDuplicateAsyncSelectInfo(INVALID_SOCKET, s + 1000));
    omAsyncSelectThreadCleanup(nullptr);
}

// Registrations of one thread seen and dropped from another.
TEST(AsyncSelectThreads, CloseAndThreadExitDropAnotherThreadsRegistrations)
{
    ASSERT_TRUE(omInitialize(nullptr, nullptr));
    WSADATA data;
    ASSERT_EQ(WSAStartup(MAKEWORD(2, 2), &data), 0);
    SOCKET a = socket(AF_INET, SOCK_STREAM, 0);
    SOCKET b = socket(AF_INET, SOCK_STREAM, 0);
    ASSERT_NE(a, INVALID_SOCKET);
    ASSERT_NE(b, INVALID_SOCKET);
    WSAEVENT ev = WSACreateEvent();
    HWND w = makeWindow();

    std::atomic<int> stage{0};
    std::thread worker([&] {
        EXPECT_EQ(WSAEventSelect(a, ev, FD_READ), 0);
        EXPECT_EQ(WSAAsyncSelect(b, w, kSockMsg, FD_CLOSE), 0);
        EXPECT_EQ(omThreadHasAsyncRegistrations(), 1);
        EXPECT_TRUE(omIsSocketEvent(ev));
        stage = 1;
        while (stage.load() != 2)
            std::this_thread::yield();
    });
    while (stage.load() != 1)
        std::this_thread::yield();
    // The main thread owns none of them, yet finds and closes them.
    EXPECT_EQ(omThreadHasAsyncRegistrations(), 0);
    EXPECT_FALSE(omIsSocketEvent(ev));
    EXPECT_EQ(omGetAsyncInfo(a, FALSE), 0);
    EXPECT_EQ(registrationsOf(b), 1);
    EXPECT_EQ(closesocket(b), 0);
    EXPECT_EQ(registrationsOf(b), 0);
    stage = 2;
    worker.join();
    // The end of the thread drops what it still had registered.
    EXPECT_EQ(omGetAsyncInfo(a, FALSE), -1);

    // Several threads registering, polling and closing at once.
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 50; ++i) {
                SOCKET s = socket(AF_INET, SOCK_STREAM, 0);
                EXPECT_EQ(WSAAsyncSelect(s, w, kSockMsg, FD_READ | FD_CLOSE), 0);
                omCheckAsyncSelectMessage();
                omCheckSocketEvents();
                EXPECT_EQ(closesocket(s), 0);
            }
            SOCKET left = socket(AF_INET, SOCK_STREAM, 0);
            EXPECT_EQ(WSAAsyncSelect(left, w, kSockMsg, FD_READ), 0);
            // Thread exit frees what is left.
            omAsyncSelectThreadCleanup(omCurrentThreadRecord());
            EXPECT_EQ(omThreadHasAsyncRegistrations(), 0);
            EXPECT_EQ(registrationsOf(left), 0);
            EXPECT_EQ(closesocket(left), 0);
        });
    for (std::thread &t : threads)
        t.join();
    EXPECT_EQ(closesocket(a), 0);
    EXPECT_EQ(omGetAsyncInfo(a, FALSE), -1);
    WSACloseEvent(ev);
    DestroyWindow(w);
    EXPECT_EQ(WSACleanup(), 0);
}

}  // namespace
