// Timers: window and procedure timers firing from the main thread's X
// pump, replacement, coalescing of pending WM_TIMER per window and id,
// KillTimer, and a window of a second thread woken for its timer messages.
#include <gtest/gtest.h>

#include "kernel/omdisplay.h"
#include "kernel/ominit.h"
#include "kernel/omthread.h"
#include "messages/ommessageq.h"
#include "messages/omtimer.h"
#include "messages/xevents.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <map>
#include <thread>
#include <utility>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

LRESULT CALLBACK plainProc(HWND, UINT msg, WPARAM, LPARAM)
{
    return msg == WM_NCCREATE ? TRUE : 0;
}

HWND plainWindow()
{
    static const ATOM atom = [] {
        WNDCLASSA wc{};
        wc.lpfnWndProc = plainProc;
        wc.lpszClassName = "TimerTestWindow";
        return RegisterClassA(&wc);
    }();
    EXPECT_NE(atom, 0);
    return CreateWindowExA(0x80000000u, "TimerTestWindow", "", WS_POPUP, 0, 0, 10, 10, nullptr,
                           nullptr, nullptr, nullptr);
}

void pumpOnce()
{
    omProcessXEvents(nullptr);
    std::this_thread::sleep_for(1ms);
}

// Pumps until cond holds or the deadline passes.
template <class F> bool pumpUntil(F cond, std::chrono::milliseconds limit = 3000ms)
{
    auto deadline = Clock::now() + limit;
    while (!cond()) {
        if (Clock::now() > deadline)
            return false;
        pumpOnce();
    }
    return true;
}

void pumpFor(std::chrono::milliseconds d)
{
    auto end = Clock::now() + d;
    while (Clock::now() < end)
        pumpOnce();
}

std::vector<MSG> takeAll()
{
    std::vector<MSG> out;
    MSG m;
    while (omTestTakeTimerMessage(nullptr, &m))
        out.push_back(m);
    return out;
}

class Timer : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(omInitialize(nullptr, nullptr));
        takeAll();
        hwnd = plainWindow();
        ASSERT_NE(hwnd, nullptr);
    }
    void TearDown() override
    {
        DestroyWindow(hwnd);
        takeAll();
    }

    // Pumps, taking messages as they come, until n WM_TIMER have arrived.
    std::vector<MSG> collect(size_t n)
    {
        std::vector<MSG> got;
        pumpUntil([&] {
            for (MSG m : takeAll())
                got.push_back(m);
            return got.size() >= n;
        });
        return got;
    }

    HWND hwnd = nullptr;
};

TEST_F(Timer, WindowTimerFiresRepeatedlyWithItsId)
{
    ASSERT_EQ(SetTimer(hwnd, 42, 5, nullptr), 42u);
    std::vector<MSG> got = collect(3);
    ASSERT_GE(got.size(), 3u);
    for (const MSG &m : got) {
        EXPECT_EQ(m.hwnd, hwnd);
        EXPECT_EQ(m.message, static_cast<UINT>(WM_TIMER));
        EXPECT_EQ(m.wParam, 42u);
        EXPECT_EQ(m.lParam, 0);
    }
    EXPECT_TRUE(KillTimer(hwnd, 42));
}

TEST_F(Timer, TwoTimersOfOneWindowBothArriveAndIdZeroBecomesOne)
{
    ASSERT_EQ(SetTimer(hwnd, 0, 5, nullptr), 1u);
    ASSERT_EQ(SetTimer(hwnd, 2, 5, nullptr), 2u);
    std::map<WPARAM, int> seen;
    pumpUntil([&] {
        for (MSG m : takeAll())
            ++seen[m.wParam];
        return seen.size() >= 2;
    });
    EXPECT_EQ(seen.size(), 2u);
    EXPECT_TRUE(seen.count(1));
    EXPECT_TRUE(seen.count(2));
    EXPECT_TRUE(KillTimer(hwnd, 0));  // id 0 names timer 1
    EXPECT_TRUE(KillTimer(hwnd, 2));
}

TEST_F(Timer, SettingTheSameIdAgainReplacesTheTimer)
{
    ASSERT_EQ(SetTimer(hwnd, 5, 5, nullptr), 5u);
    ASSERT_EQ(SetTimer(hwnd, 5, 5, nullptr), 5u);
    // One timer left: a single kill ends it and a second finds nothing.
    EXPECT_TRUE(KillTimer(hwnd, 5));
    EXPECT_FALSE(KillTimer(hwnd, 5));
}

TEST_F(Timer, AtMostOnePendingMessagePerWindowAndId)
{
    HWND other = plainWindow();
    ASSERT_NE(other, nullptr);
    ASSERT_EQ(SetTimer(hwnd, 7, 1, nullptr), 7u);
    ASSERT_EQ(SetTimer(hwnd, 8, 1, nullptr), 8u);
    ASSERT_EQ(SetTimer(other, 7, 1, nullptr), 7u);
    pumpFor(150ms);  // many intervals, nothing retrieved
    std::vector<MSG> got = takeAll();
    std::vector<std::pair<HWND, WPARAM>> keys;
    for (const MSG &m : got)
        keys.emplace_back(m.hwnd, m.wParam);
    std::sort(keys.begin(), keys.end());
    std::vector<std::pair<HWND, WPARAM>> want = {{hwnd, 7}, {hwnd, 8}, {other, 7}};
    std::sort(want.begin(), want.end());
    EXPECT_EQ(keys, want);
    // A posted WM_TIMER joins the same list and coalesces there too.
    EXPECT_TRUE(KillTimer(hwnd, 7));
    EXPECT_TRUE(omTimerAddMsg(hwnd, 7, 0));
    EXPECT_TRUE(omPostMessageEvent(hwnd, WM_TIMER, 7, 0, nullptr, nullptr, 0));
    EXPECT_TRUE(omIsMsgAvailable(QS_TIMER));
    MSG m;
    ASSERT_TRUE(omTestTakeTimerMessage(nullptr, &m));
    EXPECT_EQ(m.wParam, 7u);
    EXPECT_FALSE(omTestTakeTimerMessage(nullptr, &m) && m.hwnd == hwnd && m.wParam == 7);
    EXPECT_TRUE(KillTimer(hwnd, 8));
    EXPECT_TRUE(KillTimer(other, 7));
    DestroyWindow(other);
    takeAll();
    EXPECT_TRUE(omTimerIsQueueEmpty());
}

TEST_F(Timer, KillStopsTheTimerAndLeavesAPendingMessage)
{
    ASSERT_EQ(SetTimer(hwnd, 3, 2, nullptr), 3u);
    ASSERT_TRUE(pumpUntil([] { return !omTimerIsQueueEmpty(); }));
    EXPECT_TRUE(KillTimer(hwnd, 3));
    pumpFor(50ms);
    std::vector<MSG> got = takeAll();
    ASSERT_EQ(got.size(), 1u);
    EXPECT_EQ(got[0].wParam, 3u);
    pumpFor(50ms);
    EXPECT_TRUE(takeAll().empty());
}

std::atomic<int> g_procCalls{0};
std::atomic<UINT_PTR> g_procId{0};
std::atomic<HWND> g_procHwnd{reinterpret_cast<HWND>(1)};
std::atomic<UINT> g_procMsg{0};
std::atomic<DWORD> g_procTick{0};

void CALLBACK countingProc(HWND hwnd, UINT msg, UINT_PTR id, DWORD tick)
{
    g_procHwnd = hwnd;
    g_procMsg = msg;
    g_procId = id;
    g_procTick = tick;
    ++g_procCalls;
}

TEST_F(Timer, ProcedureTimerWithoutWindowRunsItsProcedureUnderAFreshId)
{
    g_procCalls = 0;
    UINT_PTR a = SetTimer(nullptr, 0, 2, countingProc);
    UINT_PTR b = SetTimer(nullptr, 0, 2, countingProc);
    ASSERT_NE(a, 0u);
    ASSERT_NE(b, 0u);
    EXPECT_NE(a, b);
    EXPECT_TRUE(KillTimer(nullptr, b));
    DWORD before = GetTickCount();
    ASSERT_TRUE(pumpUntil([] { return g_procCalls.load() >= 3; }));
    EXPECT_EQ(g_procHwnd.load(), nullptr);
    EXPECT_EQ(g_procMsg.load(), static_cast<UINT>(WM_TIMER));
    EXPECT_EQ(g_procId.load(), a);
    EXPECT_GE(g_procTick.load(), before);
    // The procedure is called; no message is queued.
    EXPECT_TRUE(takeAll().empty());
    EXPECT_TRUE(KillTimer(nullptr, a));
    int calls = g_procCalls.load();
    pumpFor(30ms);
    EXPECT_EQ(g_procCalls.load(), calls);
}

void CALLBACK selfKillingProc(HWND, UINT, UINT_PTR id, DWORD)
{
    ++g_procCalls;
    KillTimer(nullptr, id);
}

TEST_F(Timer, ProcedureKillingItsOwnTimerStopsIt)
{
    g_procCalls = 0;
    ASSERT_NE(SetTimer(nullptr, 0, 1, selfKillingProc), 0u);
    ASSERT_TRUE(pumpUntil([] { return g_procCalls.load() >= 1; }));
    pumpFor(30ms);
    EXPECT_EQ(g_procCalls.load(), 1);
}

TEST_F(Timer, BadCallsFail)
{
    EXPECT_FALSE(KillTimer(hwnd, 99));
    EXPECT_FALSE(KillTimer(nullptr, 12345));
    HWND dead = plainWindow();
    DestroyWindow(dead);
    struct Case {
        const char *what;
        HWND hwnd;
    };
    for (const Case &c : {Case{"destroyed", dead}, Case{"garbage", reinterpret_cast<HWND>(7)}}) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(SetTimer(c.hwnd, 1, 10, nullptr), 0u);
        EXPECT_FALSE(KillTimer(c.hwnd, 1));
        EXPECT_FALSE(omTimerAddMsg(c.hwnd, 1, 0));
    }
}

TEST_F(Timer, TimerOfADestroyedWindowStopsAtItsNextExpiry)
{
    HWND doomed = plainWindow();
    ASSERT_EQ(SetTimer(doomed, 4, 2, nullptr), 4u);
    DestroyWindow(doomed);
    pumpFor(30ms);
    for (const MSG &m : takeAll())
        EXPECT_NE(m.hwnd, doomed);
}

// A window of a second thread: the main thread runs the timeouts, the
// owner sleeps in its own wait and is woken for each new message.
class TimerThreads : public Timer {};

TEST_F(TimerThreads, SecondThreadWindowGetsItsTimerMessagesAndIsWoken)
{
    std::atomic<int> got{0};
    std::atomic<int> woken{0};
    std::atomic<bool> done{false};
    std::atomic<bool> setOk{false};
    std::thread owner([&] {
        HWND mine = plainWindow();
        setOk = mine && SetTimer(mine, 11, 5, nullptr) == 11;
        auto deadline = Clock::now() + 3s;
        MSG m;
        while (got.load() < 3 && Clock::now() < deadline) {
            if (omTestTakeTimerMessage(nullptr, &m)) {
                if (m.hwnd == mine && m.wParam == 11)
                    ++got;
                continue;
            }
            if (omWaitQueueMsg(1000))
                ++woken;
        }
        EXPECT_TRUE(KillTimer(mine, 11));
        DestroyWindow(mine);
        done = true;
    });
    pumpUntil([&] { return done.load(); }, 5000ms);
    owner.join();
    EXPECT_TRUE(setOk.load());
    EXPECT_EQ(got.load(), 3);
    EXPECT_GE(woken.load(), 1);
    // Nothing of the other thread's window reached the main thread.
    EXPECT_TRUE(takeAll().empty());
}

}  // namespace
