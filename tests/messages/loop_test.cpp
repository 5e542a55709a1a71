// The message loop: retrieval's order of sources, filters, the quit
// message, sends between threads (replies, crossed sends, a receiver that
// ends), hooks at their points, and windows of secondary threads served by
// their own loops.
#include <gtest/gtest.h>

#include "harness/pump.h"

#include "core/omwindow.h"
#include "kernel/omdisplay.h"
#include "kernel/ominit.h"
#include "kernel/omthread.h"
#include "messages/ommessageq.h"
#include "messages/ompaint.h"
#include "messages/omtimer.h"

#include <windows.h>

#include <atomic>
#include <barrier>
#include <cstdlib>
#include <string>
#include <chrono>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr UINT kSentToMain = WM_USER + 9;
constexpr UINT kReplySeven = WM_USER + 7;
constexpr UINT kAsk = WM_USER + 20;

// What window procedures of this file were called with, per thread.
thread_local std::vector<UINT> t_seen;
std::atomic<bool> g_afterReply{false};

LRESULT CALLBACK loopProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    switch (msg) {
    case kSentToMain:
        t_seen.push_back(msg);
        return 42;
    case kReplySeven: {
        ReplyMessage(7);
        // The sender goes on while this procedure still runs.
        auto deadline = Clock::now() + 3s;
        while (!g_afterReply.load() && Clock::now() < deadline)
            std::this_thread::sleep_for(1ms);
        return 99;
    }
    case kAsk:
        return static_cast<LRESULT>(wParam) * 2;
    case WM_PAINT: {
        t_seen.push_back(msg);
        PAINTSTRUCT ps;
        BeginPaint(hwnd, &ps);
        EndPaint(hwnd, &ps);
        return 0;
    }
    case WM_TIMER:
        t_seen.push_back(msg);
        return 0;
    default:
        if (msg >= WM_USER && msg < WM_USER + 100)
            t_seen.push_back(msg);
        return DefWindowProcA(hwnd, msg, wParam, lParam);
    }
}

const char *loopClass()
{
    static const ATOM atom = [] {
        WNDCLASSA wc{};
        wc.lpfnWndProc = loopProc;
        wc.lpszClassName = "LoopTest";
        wc.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
        return RegisterClassA(&wc);
    }();
    EXPECT_NE(atom, 0);
    return "LoopTest";
}

// A window without widgets: any thread may make one.
HWND bareWindow()
{
    return CreateWindowExA(0x80000000u, loopClass(), "bare", WS_POPUP, 0, 0, 10, 10, nullptr,
                           nullptr, nullptr, nullptr);
}

// A window with widgets, not shown, that takes invalidation.
HWND hiddenWindow()
{
    HWND h = CreateWindowExA(0, loopClass(), "hidden", WS_OVERLAPPEDWINDOW, 0, 0, 60, 60,
                             nullptr, nullptr, nullptr, nullptr);
    omSetFirstExpose(h, 1);
    return h;
}

// Retrieves and dispatches for the calling thread until nothing is left.
void drainLoop()
{
    MSG m;
    while (PeekMessageA(&m, nullptr, 0, 0, PM_REMOVE)) {
        if (m.message == WM_QUIT)
            continue;
        DispatchMessageA(&m);
    }
}

class Loop : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(omInitialize(nullptr, nullptr));
        drainLoop();
        t_seen.clear();
        hwnd = bareWindow();
        ASSERT_NE(hwnd, nullptr);
    }
    void TearDown() override
    {
        DestroyWindow(hwnd);
        omQuitIsSet = 0;
        drainLoop();
    }
    HWND hwnd = nullptr;
};

TEST_F(Loop, SourcesComeInTheirOrder)
{
    HWND painted = hiddenWindow();
    PostMessageA(hwnd, WM_USER + 1, 0, 0);
    RECT r{0, 0, 5, 5};
    ASSERT_TRUE(InvalidateRect(painted, &r, FALSE));
    ASSERT_TRUE(omTimerAddMsg(hwnd, 3, 0));
    PostMessageA(hwnd, WM_USER + 2, 0, 0);
    omQuitIsSet = 1;
    // A send from another thread waits before the first retrieval.
    std::atomic<LRESULT> answer{0};
    std::thread sender([&] { answer = SendMessageA(hwnd, kSentToMain, 0, 0); });
    OmSendState *mine = omSendStateOf(omCurrentThreadRecord());
    auto deadline = Clock::now() + 3s;
    while (!mine->pending.load() && Clock::now() < deadline)
        std::this_thread::sleep_for(1ms);

    std::vector<UINT> order;
    MSG m;
    for (int i = 0; i < 20 && PeekMessageA(&m, nullptr, 0, 0, PM_REMOVE); ++i) {
        if (m.message == WM_QUIT) {
            order.push_back(WM_QUIT);
            break;
        }
        if (m.hwnd == hwnd || m.hwnd == painted) {
            order.push_back(m.message);
            DispatchMessageA(&m);
        }
    }
    sender.join();
    EXPECT_EQ(answer.load(), 42);
    EXPECT_EQ(t_seen.front(), kSentToMain) << "sends are delivered before anything is retrieved";
    EXPECT_EQ(order, (std::vector<UINT>{WM_USER + 1, WM_USER + 2, WM_PAINT, WM_TIMER, WM_QUIT}));
    EXPECT_EQ(omQuitIsSet, 0) << "the main thread's retrieval clears the flag";
    DestroyWindow(painted);
}

TEST_F(Loop, PeekFiltersAndRemoval)
{
    HWND other = bareWindow();
    PostMessageA(hwnd, WM_MOUSEMOVE, 0, 1);
    PostMessageA(hwnd, WM_KEYDOWN, 'A', 2);
    PostMessageA(nullptr, WM_USER + 3, 0, 3);  // a thread message
    PostMessageA(other, WM_USER + 4, 0, 4);
    PostMessageA(hwnd, WM_LBUTTONDOWN, 0, 5);

    MSG a, b;
    ASSERT_TRUE(PeekMessageA(&a, nullptr, 0, 0, PM_NOREMOVE));
    ASSERT_TRUE(PeekMessageA(&b, nullptr, 0, 0, PM_NOREMOVE));
    EXPECT_EQ(a.message, WM_MOUSEMOVE);
    EXPECT_EQ(b.message, WM_MOUSEMOVE) << "a peek without removal leaves it";

    // Keys only: the mouse messages stay, in order.
    ASSERT_TRUE(PeekMessageA(&a, nullptr, WM_KEYFIRST, WM_KEYLAST, PM_REMOVE));
    EXPECT_EQ(a.message, static_cast<UINT>(WM_KEYDOWN));
    EXPECT_FALSE(PeekMessageA(&a, nullptr, WM_KEYFIRST, WM_KEYLAST, PM_REMOVE));
    // A window filter never returns thread messages or other windows'.
    ASSERT_TRUE(PeekMessageA(&a, hwnd, 0, 0, PM_REMOVE));
    EXPECT_EQ(a.message, static_cast<UINT>(WM_MOUSEMOVE));
    ASSERT_TRUE(PeekMessageA(&a, hwnd, 0, 0, PM_REMOVE));
    EXPECT_EQ(a.message, static_cast<UINT>(WM_LBUTTONDOWN));
    EXPECT_FALSE(PeekMessageA(&a, hwnd, 0, 0, PM_REMOVE));
    // A destroyed window's message is recycled, never returned.
    DestroyWindow(other);
    ASSERT_TRUE(PeekMessageA(&a, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(a.message, WM_USER + 3);
    EXPECT_EQ(a.hwnd, nullptr);
    EXPECT_FALSE(PeekMessageA(&a, nullptr, WM_USER, WM_USER + 50, PM_REMOVE));

    EXPECT_FALSE(PeekMessageA(nullptr, nullptr, 0, 0, PM_REMOVE));
}

TEST_F(Loop, QuitEndsTheLoopAfterEarlierPosts)
{
    PostMessageA(hwnd, WM_USER + 1, 0, 0);
    PostQuitMessage(5);
    PostMessageA(hwnd, WM_USER + 2, 0, 0);
    MSG m;
    std::vector<UINT> got;
    while (GetMessageA(&m, nullptr, 0, 0))
        got.push_back(m.message);
    EXPECT_EQ(got, (std::vector<UINT>{WM_USER + 1}));
    EXPECT_EQ(m.message, static_cast<UINT>(WM_QUIT));
    EXPECT_EQ(m.wParam, 5u);
    ASSERT_TRUE(GetMessageA(&m, nullptr, 0, 0));
    EXPECT_EQ(m.message, WM_USER + 2) << "what followed the quit is still there";
}

TEST_F(Loop, SameThreadSendCallsTheProcedureAfterTheCallWindowProcHook)
{
    static std::vector<std::pair<int, UINT>> calls;
    calls.clear();
    HHOOK before = SetWindowsHookExA(
        WH_CALLWNDPROC,
        [](int code, WPARAM w, LPARAM l) -> LRESULT {
            auto *c = reinterpret_cast<CWPSTRUCT *>(l);
            calls.push_back({static_cast<int>(w), c->message});
            return CallNextHookEx(nullptr, code, w, l);
        },
        nullptr, GetCurrentThreadId());
    HHOOK after = SetWindowsHookExA(
        WH_CALLWNDPROCRET,
        [](int code, WPARAM w, LPARAM l) -> LRESULT {
            auto *c = reinterpret_cast<CWPRETSTRUCT *>(l);
            calls.push_back({static_cast<int>(c->lResult), c->message});
            return CallNextHookEx(nullptr, code, w, l);
        },
        nullptr, GetCurrentThreadId());
    EXPECT_EQ(after, nullptr) << "the after-call type keeps no chain";
    EXPECT_EQ(SendMessageA(hwnd, kAsk, 21, 0), 42);
    UnhookWindowsHookEx(before);
    EXPECT_EQ(calls, (std::vector<std::pair<int, UINT>>{{1, kAsk}}));
    EXPECT_EQ(SendMessageA(reinterpret_cast<HWND>(0xA0FFFF), kAsk, 1, 0), 0);
}

TEST_F(Loop, RetrievalHooksSeeTheMessageAndMayRemoveIt)
{
    static std::vector<UINT> got;
    static HWND self;
    got.clear();
    self = hwnd;
    // A message hook that posts to its own thread must not deadlock.
    HHOOK getmsg = SetWindowsHookExA(
        WH_GETMESSAGE,
        [](int code, WPARAM w, LPARAM l) -> LRESULT {
            auto *m = reinterpret_cast<MSG *>(l);
            got.push_back(m->message);
            if (m->message == WM_USER + 1)
                PostMessageA(self, WM_USER + 2, 0, 0);
            return CallNextHookEx(nullptr, code, w, l);
        },
        nullptr, GetCurrentThreadId());
    HHOOK keyboard = SetWindowsHookExA(
        WH_KEYBOARD, [](int, WPARAM, LPARAM) -> LRESULT { return 1; }, nullptr,
        GetCurrentThreadId());
    PostMessageA(hwnd, WM_USER + 1, 0, 0);
    PostMessageA(hwnd, WM_KEYDOWN, 'Q', 0);
    MSG m;
    ASSERT_TRUE(PeekMessageA(&m, nullptr, 0, 0, PM_REMOVE));
    ASSERT_TRUE(PeekMessageA(&m, nullptr, 0, 0, PM_NOREMOVE));
    EXPECT_EQ(m.message, static_cast<UINT>(WM_KEYDOWN));
    ASSERT_TRUE(PeekMessageA(&m, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(m.message, WM_USER + 2) << "the keyboard hook removed the key during the peek";
    UnhookWindowsHookEx(getmsg);
    UnhookWindowsHookEx(keyboard);
    EXPECT_EQ(got, (std::vector<UINT>{WM_USER + 1, WM_KEYDOWN, WM_USER + 2}));

    // A computer-based-training hook refuses a window's creation.
    HHOOK cbt = SetWindowsHookExA(
        WH_CBT,
        [](int code, WPARAM, LPARAM) -> LRESULT { return code == HCBT_CREATEWND ? 1 : 0; },
        nullptr, GetCurrentThreadId());
    EXPECT_EQ(bareWindow(), nullptr);
    UnhookWindowsHookEx(cbt);
}

TEST_F(Loop, QueueStatusAndLastMessage)
{
    PostMessageA(hwnd, WM_MOUSEMOVE, 0, 0);
    EXPECT_EQ(HIWORD(GetQueueStatus(QS_MOUSEMOVE | QS_TIMER)), QS_MOUSEMOVE);
    MSG m;
    ASSERT_TRUE(GetMessageA(&m, nullptr, 0, 0));
    EXPECT_EQ(GetMessageTime(), static_cast<LONG>(m.time));
    EXPECT_EQ(GetMessagePos(), MAKELONG(m.pt.x, m.pt.y));
    EXPECT_FALSE(InSendMessage());
    EXPECT_EQ(GetMessageExtraInfo(), 0);
}

TEST_F(Loop, DispatchOfAPeekedPaintDropsItsEntryAndHiddenChildrenAreValidated)
{
    HWND painted = hiddenWindow();
    RECT r{0, 0, 5, 5};
    InvalidateRect(painted, &r, FALSE);
    MSG m;
    ASSERT_TRUE(PeekMessageA(&m, painted, WM_PAINT, WM_PAINT, PM_NOREMOVE));
    EXPECT_EQ(m.time, 1u);
    EXPECT_TRUE(omPaintIsHwndInQueue(painted));
    omWindowRecord(painted)->redraw = true;
    // The procedure does not paint: dispatching still drops the entry.
    static int calls;
    calls = 0;
    SetWindowLongPtrA(painted, GWLP_WNDPROC,
                      reinterpret_cast<LONG_PTR>(+[](HWND, UINT, WPARAM, LPARAM) -> LRESULT {
                          ++calls;
                          return 0;
                      }));
    DispatchMessageA(&m);
    EXPECT_EQ(calls, 1);
    EXPECT_FALSE(omPaintIsHwndInQueue(painted));
    DestroyWindow(painted);
    EXPECT_EQ(DispatchMessageA(nullptr), 0);
}

// Sends and loops across threads.
class LoopThreads : public Loop {};

TEST_F(LoopThreads, ReplyMessageReleasesTheSenderAtOnce)
{
    g_afterReply = false;
    std::atomic<LRESULT> answer{-1};
    std::atomic<bool> done{false};
    std::thread sender([&] {
        answer = SendMessageA(hwnd, kReplySeven, 0, 0);
        g_afterReply = true;
        done = true;
    });
    MSG m;
    auto deadline = Clock::now() + 5s;
    while (!done.load() && Clock::now() < deadline) {
        if (PeekMessageA(&m, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageA(&m);
        else
            std::this_thread::sleep_for(1ms);
    }
    sender.join();
    EXPECT_EQ(answer.load(), 7);
    EXPECT_TRUE(g_afterReply.load()) << "released before the procedure returned";
}

TEST_F(LoopThreads, ThreadsSendingToEachOtherBothComplete)
{
    constexpr int kRounds = 200;
    std::atomic<HWND> windows[2] = {nullptr, nullptr};
    std::atomic<int> ok[2] = {0, 0};
    std::atomic<bool> done[2] = {false, false};
    std::barrier ready(2);
    auto body = [&](int me) {
        windows[me] = bareWindow();
        ready.arrive_and_wait();
        HWND peer = windows[1 - me].load();
        for (int i = 0; i < kRounds; ++i)
            if (SendMessageA(peer, kAsk, static_cast<WPARAM>(i), 0) == 2 * i)
                ++ok[me];
        done[me] = true;
        // Serve what the peer still sends until it is done too.
        MSG m;
        while (!done[1 - me].load())
            if (!PeekMessageA(&m, nullptr, 0, 0, PM_REMOVE))
                std::this_thread::sleep_for(100us);
        ready.arrive_and_wait();
        DestroyWindow(windows[me].load());
    };
    std::thread a(body, 0), b(body, 1);
    a.join();
    b.join();
    EXPECT_EQ(ok[0].load(), kRounds);
    EXPECT_EQ(ok[1].load(), kRounds);
}

TEST_F(LoopThreads, ThreadEndingWithSendsQueuedReleasesItsSenders)
{
    std::atomic<HWND> theirs{nullptr};
    std::atomic<bool> leave{false};
    std::thread receiver([&] {
        theirs = bareWindow();
        while (!leave.load())
            std::this_thread::sleep_for(1ms);
        // Ends without retrieving anything.
    });
    while (!theirs.load())
        std::this_thread::yield();
    std::atomic<LRESULT> answer{-1};
    std::thread sender([&] { answer = SendMessageA(theirs.load(), kAsk, 21, 0); });
    std::this_thread::sleep_for(20ms);
    leave = true;
    receiver.join();
    sender.join();
    EXPECT_EQ(answer.load(), 0);
}

TEST_F(LoopThreads, SecondaryThreadLoopGetsItsOwnTimerPaintAndQuit)
{
    std::atomic<HWND> theirs{nullptr};
    std::atomic<int> timers{0}, paints{0};
    std::atomic<WPARAM> exitCode{0};
    std::thread owner([&] {
        HWND h = hiddenWindow();
        theirs = h;
        SetTimer(h, 1, 5, nullptr);
        MSG m;
        while (GetMessageA(&m, nullptr, 0, 0)) {
            if (m.message == WM_TIMER && ++timers == 3) {
                KillTimer(h, 1);
                PostQuitMessage(9);
            }
            if (m.message == WM_PAINT)
                ++paints;
            DispatchMessageA(&m);
        }
        exitCode = m.wParam;
        DestroyWindow(h);
    });
    while (!theirs.load())
        std::this_thread::yield();
    RECT r{0, 0, 5, 5};
    InvalidateRect(theirs.load(), &r, FALSE);
    // The main thread runs the timeouts.
    OM_PUMP_UNTIL(exitCode.load() == 9, 5000, [] {
        MSG m;
        if (PeekMessageA(&m, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageA(&m);
        else
            std::this_thread::sleep_for(1ms);
    });
    owner.join();
    EXPECT_EQ(timers.load(), 3);
    EXPECT_EQ(paints.load(), 1);
    EXPECT_EQ(exitCode.load(), 9u);
    // The quit ended only that loop.
    PostMessageA(hwnd, WM_USER + 5, 0, 0);
    MSG m;
    ASSERT_TRUE(GetMessageA(&m, nullptr, 0, 0));
    EXPECT_EQ(m.message, WM_USER + 5);
}

// Four threads post to one window while it paints and its timers run:
// nothing is lost or duplicated, and each thread's posts keep their order.
TEST_F(LoopThreads, FourPostersLoseNothing)
{
#if defined(__SANITIZE_THREAD__)
    constexpr int kPerThread = 5'000;
#else
    constexpr int kPerThread = 250'000;
#endif
    constexpr int kThreads = 4;
    HWND painted = hiddenWindow();
    SetTimer(hwnd, 1, 1, nullptr);
    std::atomic<long> consumed{0};
    std::vector<std::thread> posters;
    for (int t = 0; t < kThreads; ++t)
        posters.emplace_back([&, t] {
            for (int i = 0; i < kPerThread; ++i) {
                // Keeps the queue from outgrowing memory.
                while (i - consumed.load() / kThreads > 20'000)
                    std::this_thread::yield();
                while (!PostMessageA(hwnd, WM_USER + 50 + t, static_cast<WPARAM>(i), 0))
                    std::this_thread::yield();
            }
        });
    long next[kThreads] = {};
    long errors = 0, total = 0, timers = 0, paints = 0;
    MSG m;
    auto deadline = Clock::now() + 120s;
    while (total < long(kThreads) * kPerThread && Clock::now() < deadline) {
        if (!GetMessageA(&m, nullptr, 0, 0))
            break;
        if (m.message >= WM_USER + 50 && m.message < WM_USER + 50 + kThreads) {
            int t = static_cast<int>(m.message - WM_USER - 50);
            if (static_cast<long>(m.wParam) != next[t])
                ++errors;
            next[t] = static_cast<long>(m.wParam) + 1;
            ++total;
            consumed.fetch_add(1, std::memory_order_relaxed);
            if (total % 1000 == 0) {
                RECT r{0, 0, 4, 4};
                InvalidateRect(painted, &r, FALSE);
            }
            continue;
        }
        timers += m.message == WM_TIMER;
        paints += m.message == WM_PAINT;
        DispatchMessageA(&m);
    }
    for (auto &p : posters)
        p.join();
    // Paint and timers, which wait while posted messages are there, come
    // once the posts are drained.
    while ((!paints || !timers) && Clock::now() < deadline && GetMessageA(&m, nullptr, 0, 0)) {
        timers += m.message == WM_TIMER;
        paints += m.message == WM_PAINT;
        DispatchMessageA(&m);
    }
    KillTimer(hwnd, 1);
    EXPECT_EQ(total, long(kThreads) * kPerThread);
    EXPECT_EQ(errors, 0);
    EXPECT_GT(paints, 0);
    EXPECT_GT(timers, 0);
    EXPECT_FALSE(PeekMessageA(&m, nullptr, WM_USER + 50, WM_USER + 50 + kThreads, PM_REMOVE))
        << "nothing duplicated";
    DestroyWindow(painted);
}

}  // namespace

namespace {

// Another process on the display registers the same name and posts it to
// every top-level window: this process's loop receives it.
TEST(LoopProcesses, BroadcastPostOfAnotherProcessReachesOurTopLevelWindow)
{
    ASSERT_TRUE(omInitialize(nullptr, nullptr));
    UINT msg = RegisterWindowMessageA("OLMO broadcast test");
    ASSERT_GE(msg, 0xC000u);
    HWND top = CreateWindowExA(0, loopClass(), "broadcast", WS_OVERLAPPEDWINDOW, 0, 0, 80, 60,
                               nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(top, nullptr);
    XSync(omDisplay, False);
    std::string cmd = std::string(OLMO_BCASTPOST) + " 4242";
    ASSERT_EQ(std::system(cmd.c_str()), 0);
    MSG m{};
    bool got = om::test::pumpUntil(
        [&] {
            while (PeekMessageA(&m, nullptr, 0, 0, PM_REMOVE))
                if (m.message == msg && m.hwnd == top)
                    return true;
            return false;
        },
        3000ms, [] { std::this_thread::sleep_for(2ms); });
    ASSERT_TRUE(got) << "same registered number in both processes, delivered here";
    EXPECT_EQ(m.wParam, 4242u);
    EXPECT_EQ(m.lParam, 77);
    DestroyWindow(top);
}

}  // namespace
