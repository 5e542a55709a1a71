// The posted-message queue: order, growth and the minute-paced shrink,
// head insertion, the probe, the ring of recent messages, posts from
// several threads at once and the wake-up of the main thread's X wait.
#include <gtest/gtest.h>

#include <algorithm>

#include "kernel/omdisplay.h"
#include "kernel/ominit.h"
#include "kernel/omthread.h"
#include "messages/ommessageq.h"

#include <windows.h>

#include <X11/Intrinsic.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

HANDLE mainThread()
{
    return reinterpret_cast<HANDLE>(static_cast<uintptr_t>(_omThreadMainThread()));
}

class Queue : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(omInitialize(nullptr, nullptr));
        drain();
    }
    void TearDown() override
    {
        drain();
        omTestSetQueueClock(nullptr);
    }
    static void drain()
    {
        OmMsgRecord r;
        while (omTestTakeMessage(nullptr, &r)) {
        }
    }
};

TEST_F(Queue, HundredThousandPostsGrowAndDrainInOrder)
{
    // Earlier tests may have grown the pool (by other threads' steps too):
    // it shrinks a step a minute.
    unsigned initial = omTestQueueCapacity(nullptr);
    constexpr unsigned kCount = 100000;
    for (unsigned i = 0; i < kCount; ++i)
        ASSERT_TRUE(omPostMessageEvent(nullptr, WM_USER + (i % 7), i, -static_cast<LPARAM>(i),
                                       nullptr, nullptr, 0));
    // Grown by whole steps, just enough.
    unsigned cap = omTestQueueCapacity(nullptr);
    EXPECT_EQ((cap - initial) % omMsgQLimit, 0u);
    EXPECT_GE(cap, kCount);
    EXPECT_LT(cap, std::max(initial + 1, kCount + omMsgQLimit));
    OmMsgRecord r;
    for (unsigned i = 0; i < kCount; ++i) {
        ASSERT_TRUE(omTestTakeMessage(nullptr, &r)) << i;
        ASSERT_EQ(r.wParam, i);
        ASSERT_EQ(r.message, WM_USER + (i % 7));
        ASSERT_EQ(r.lParam, -static_cast<LPARAM>(i));
        ASSERT_EQ(r.hwnd, nullptr);
        ASSERT_EQ(r.event.type, kOmNoXEvent);
    }
    EXPECT_FALSE(omTestTakeMessage(nullptr, &r));
    EXPECT_TRUE(omMsgQEmpty(nullptr));
}

TEST_F(Queue, RecordsCarryTheWholeXEventAndTheLastState)
{
    XEvent ev;
    std::memset(&ev, 0, sizeof ev);
    ev.xkey.type = KeyPress;
    ev.xkey.keycode = 38;
    ev.xkey.state = ShiftMask;
    ev.xkey.time = 123456;
    // The tail of the union too: every byte is copied.
    reinterpret_cast<unsigned char *>(&ev)[sizeof ev - 1] = 0x5A;
    omSetLastMessageState(17, -4, 999);
    ASSERT_TRUE(omPostMessageEvent(nullptr, WM_KEYDOWN, 'A', 1, &ev, nullptr, 0));
    OmMsgRecord r;
    ASSERT_TRUE(omTestTakeMessage(nullptr, &r));
    EXPECT_EQ(std::memcmp(&r.event, &ev, sizeof ev), 0);
    EXPECT_EQ(r.x, 17);
    EXPECT_EQ(r.y, -4);
    EXPECT_EQ(r.time, 999u);
    omSetLastMessageState(0, 0, 0);
}

TEST_F(Queue, IdleQueueShrinksOneStepPerMinute)
{
    static std::atomic<time_t> now{0};
    omTestSetQueueClock([] { return now.load(); });
    // A thread of its own: a fresh queue whose shrink clock has not started.
    std::thread([] {
        unsigned step = omSecondaryThreadMsgQLimit;
        for (unsigned i = 0; i < 3 * step + 1; ++i)
            ASSERT_TRUE(omPostMessageEvent(nullptr, WM_USER, i, 0, nullptr, nullptr, 0));
        ASSERT_EQ(omTestQueueCapacity(nullptr), 4 * step);
        now = 500;
        EXPECT_FALSE(omMsgQEmpty(nullptr));  // not empty: no shrink either
        drain();
        struct Check {
            time_t at;
            unsigned capacity;
        };
        // The first empty check only starts the clock; then one step for
        // each check at least 60 s after the last shrink, down to the
        // initial size.
        const Check checks[] = {{1000, 4 * step}, {1030, 4 * step}, {1059, 4 * step},
                                {1060, 3 * step}, {1061, 3 * step}, {1119, 3 * step},
                                {1120, 2 * step}, {2000, step},     {3000, step}};
        for (const Check &c : checks) {
            SCOPED_TRACE(testing::Message() << "at " << c.at);
            now = c.at;
            EXPECT_TRUE(omMsgQEmpty(nullptr));
            EXPECT_EQ(omTestQueueCapacity(nullptr), c.capacity);
        }
        // The shrunk pool still works.
        for (unsigned i = 0; i < step + 3; ++i)
            ASSERT_TRUE(omPostMessageEvent(nullptr, WM_USER, i, 0, nullptr, nullptr, 0));
        OmMsgRecord r;
        for (unsigned i = 0; i < step + 3; ++i) {
            ASSERT_TRUE(omTestTakeMessage(nullptr, &r));
            ASSERT_EQ(r.wParam, i);
        }
    }).join();
}

TEST_F(Queue, HeadInsertionComesFirst)
{
    ASSERT_TRUE(omPostMessageEvent(nullptr, WM_USER, 1, 0, nullptr, nullptr, 0));
    ASSERT_TRUE(omPostMessageEvent(nullptr, WM_USER, 2, 0, nullptr, nullptr, 0));
    ASSERT_TRUE(omShoveMessage(nullptr, WM_CHAR, 'x', 0, nullptr));
    ASSERT_TRUE(omPostMessageEvent(nullptr, WM_USER, 3, 0, nullptr, nullptr, 0));
    const WPARAM order[] = {'x', 1, 2, 3};
    OmMsgRecord r;
    for (WPARAM w : order) {
        ASSERT_TRUE(omTestTakeMessage(nullptr, &r));
        EXPECT_EQ(r.wParam, w);
    }
    // Into an empty queue: head and tail both.
    ASSERT_TRUE(omShoveMessage(nullptr, WM_CHAR, 'y', 0, nullptr));
    ASSERT_TRUE(omPostMessageEvent(nullptr, WM_USER, 4, 0, nullptr, nullptr, 0));
    ASSERT_TRUE(omTestTakeMessage(nullptr, &r));
    EXPECT_EQ(r.wParam, static_cast<WPARAM>('y'));
    ASSERT_TRUE(omTestTakeMessage(nullptr, &r));
    EXPECT_EQ(r.wParam, 4u);
}

TEST_F(Queue, PostsToDeadHandlesFail)
{
    const HWND bad[] = {reinterpret_cast<HWND>(0x7FFF),
                        reinterpret_cast<HWND>(static_cast<uintptr_t>(_omThreadMainThread()))};
    for (HWND h : bad) {
        SCOPED_TRACE(testing::Message() << h);
        EXPECT_FALSE(omPostMessageEvent(h, WM_USER, 0, 0, nullptr, nullptr, 0));
        EXPECT_FALSE(omShoveMessage(h, WM_USER, 0, 0, nullptr));
    }
    EXPECT_TRUE(omMsgQEmpty(nullptr));
}

TEST_F(Queue, ProbeAnswersByMessageKind)
{
    struct Case {
        UINT message;
        UINT yes;
        UINT no;
    };
    const Case cases[] = {
        {WM_KEYDOWN, QS_KEY, QS_MOUSEMOVE | QS_MOUSEBUTTON | QS_TIMER},
        {WM_SYSKEYUP, QS_KEY, QS_MOUSEBUTTON},
        {WM_MOUSEMOVE, QS_MOUSEMOVE, QS_KEY | QS_MOUSEBUTTON},
        {WM_MBUTTONDBLCLK, QS_MOUSEBUTTON, QS_MOUSEMOVE | QS_KEY},
        {WM_HOTKEY, QS_HOTKEY, QS_KEY},
        {WM_TIMER, QS_TIMER, QS_HOTKEY},
        {WM_USER, QS_POSTMESSAGE, QS_KEY | QS_MOUSE | QS_TIMER | QS_HOTKEY | QS_PAINT},
        {WM_USER, QS_ALLEVENTS, 0},
    };
    EXPECT_FALSE(omIsMsgAvailable(QS_ALLINPUT));
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << "message 0x" << std::hex << c.message);
        ASSERT_TRUE(omPostMessageEvent(nullptr, c.message, 0, 0, nullptr, nullptr, 0));
        EXPECT_TRUE(omIsMsgAvailable(c.yes));
        EXPECT_TRUE(omIsMsgAvailable(QS_ALLPOSTMESSAGE));
        EXPECT_FALSE(omIsMsgAvailable(c.no));
        drain();
    }
}

TEST_F(Queue, RingFindsOnlyTheLastTenNewestFirst)
{
    OmMsgRecord r{};
    // Nothing added yet on a fresh ring looks like an end mark.
    r.event.type = ButtonPress;
    for (int i = 0; i < 12; ++i) {
        r.message = WM_USER;
        r.wParam = static_cast<WPARAM>(i % 11);  // 0 comes again as the 12th
        r.x = i;
        omMsgMRUAdd(&r);
    }
    OmMsgRecord out;
    EXPECT_FALSE(omMsgMRUSearch(nullptr, WM_USER, 1, 0, &out));  // pushed out
    ASSERT_TRUE(omMsgMRUSearch(nullptr, WM_USER, 0, 0, &out));
    EXPECT_EQ(out.x, 11);  // the newest of the two
    ASSERT_TRUE(omMsgMRUSearch(nullptr, WM_USER, 5, 0, &out));
    EXPECT_EQ(out.x, 5);
    EXPECT_FALSE(omMsgMRUSearch(nullptr, WM_USER + 1, 5, 0, &out));
}

TEST_F(Queue, TickCountMicroRuns)
{
    DWORD a = omGetTickCountMicro();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    DWORD b = omGetTickCountMicro();
    EXPECT_GE(b - a, 19000u);
    EXPECT_LT(b - a, 2000000u);
}

LRESULT CALLBACK plainProc(HWND, UINT msg, WPARAM, LPARAM)
{
    return msg == WM_NCCREATE ? TRUE : 0;
}

// A window without widgets, owned by the calling thread.
HWND plainWindow()
{
    static const ATOM atom = [] {
        WNDCLASSA wc{};
        wc.lpfnWndProc = plainProc;
        wc.lpszClassName = "MsgQueueTestWindow";
        return RegisterClassA(&wc);
    }();
    EXPECT_NE(atom, 0);
    return CreateWindowExA(0x80000000u, "MsgQueueTestWindow", "", WS_POPUP, 0, 0, 10, 10,
                           nullptr, nullptr, nullptr, nullptr);
}

// Several threads post into the main thread's queue and their own, while
// the main thread drains; ThreadSanitizer runs this suite too.
class QueueThreads : public Queue {};

TEST_F(QueueThreads, SeveralThreadsPostAtOnce)
{
    constexpr int kThreads = 4;
    constexpr unsigned kEach = 5000;
    std::atomic<int> ownOk{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([t, &ownOk] {
            for (unsigned i = 0; i < kEach; ++i) {
                omPostMessageEvent(nullptr, WM_USER + t, i, t, nullptr, mainThread(), 0);
                omPostMessageEvent(nullptr, WM_USER, i, 0, nullptr, nullptr, 0);
            }
            // A thread's own queue keeps its order too.
            OmMsgRecord r;
            unsigned next = 0;
            while (omTestTakeMessage(nullptr, &r))
                if (r.wParam == next)
                    ++next;
            if (next == kEach)
                ++ownOk;
        });
    }
    unsigned next[kThreads] = {};
    unsigned total = 0;
    auto deadline = Clock::now() + std::chrono::seconds(20);
    OmMsgRecord r;
    while (total < kThreads * kEach && Clock::now() < deadline) {
        if (!omTestTakeMessage(nullptr, &r)) {
            std::this_thread::yield();
            continue;
        }
        int t = static_cast<int>(r.lParam);
        ASSERT_EQ(r.message, static_cast<UINT>(WM_USER + t));
        ASSERT_EQ(r.wParam, next[t]) << "thread " << t;
        ++next[t];
        ++total;
    }
    for (std::thread &th : threads)
        th.join();
    EXPECT_EQ(total, kThreads * kEach);
    EXPECT_EQ(ownOk.load(), kThreads);
}

TEST_F(QueueThreads, PostFromSecondThreadWakesTheMainXWait)
{
    for (int round = 0; round < 3; ++round) {
        SCOPED_TRACE(round);
        unsigned wakes = omTestWakeCount();
        std::atomic<int64_t> postedAt{0};
        std::thread poster([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(30));
            postedAt = Clock::now().time_since_epoch().count();
            omPostMessageEvent(nullptr, WM_USER, 42, 0, nullptr, mainThread(), 0);
        });
        auto deadline = Clock::now() + std::chrono::seconds(2);
        while (!omIsMsgAvailable(QS_POSTMESSAGE) && Clock::now() < deadline)
            XtAppProcessEvent(omAppContext, XtIMAll);
        auto seen = Clock::now();
        poster.join();
        ASSERT_TRUE(omIsMsgAvailable(QS_POSTMESSAGE));
        // The pipe, not the 100 ms heartbeat, ended the wait.
        EXPECT_GT(omTestWakeCount(), wakes);
        auto latency = seen.time_since_epoch().count() - postedAt.load();
        EXPECT_LT(latency, std::chrono::nanoseconds(std::chrono::milliseconds(60)).count());
        drain();
    }
}

}  // namespace

namespace {

TEST_F(QueueThreads, WindowPostsGoToTheCreatingThread)
{
    HWND mine = plainWindow();
    ASSERT_NE(mine, nullptr);
    std::atomic<HWND> theirs{nullptr};
    std::atomic<int> phase{0};
    std::thread other([&] {
        theirs = plainWindow();
        phase = 1;
        while (phase.load() != 2)
            std::this_thread::yield();
        OmMsgRecord r;
        EXPECT_TRUE(omTestTakeMessage(nullptr, &r));
        EXPECT_EQ(r.hwnd, theirs.load());
        EXPECT_EQ(r.wParam, 7u);
        // Posted by the other thread to a window of the main thread.
        EXPECT_TRUE(omPostMessageEvent(mine, WM_USER, 8, 0, nullptr, nullptr, 0));
        DestroyWindow(theirs);
        phase = 3;
    });
    while (phase.load() != 1)
        std::this_thread::yield();
    ASSERT_NE(theirs.load(), nullptr);
    // Whatever thread a post names, a window's messages go to its creator.
    EXPECT_TRUE(omPostMessageEvent(theirs, WM_USER, 7, 0, nullptr, mainThread(), 0));
    EXPECT_FALSE(omIsMsgAvailable(QS_POSTMESSAGE));
    phase = 2;
    while (phase.load() != 3)
        std::this_thread::yield();
    other.join();
    OmMsgRecord r;
    ASSERT_TRUE(omTestTakeMessage(nullptr, &r));
    EXPECT_EQ(r.hwnd, mine);
    EXPECT_EQ(r.wParam, 8u);
    // The destroyed window takes no more posts.
    EXPECT_FALSE(omPostMessageEvent(theirs, WM_USER, 9, 0, nullptr, nullptr, 0));
    DestroyWindow(mine);
    EXPECT_FALSE(omPostMessageEvent(mine, WM_USER, 9, 0, nullptr, nullptr, 0));
}

}  // namespace
