// Pointer events into mouse messages: single, double and third clicks on
// CS_DBLCLKS windows (the 3-versus-4 pixel rule, button 3 paired by time
// alone), motion bursts, the wheel, and mouse_event, through XTest into
// real top-level windows.
#include "xevents_fixture.h"

#include "kernel/omkeyboard.h"

#include <algorithm>

namespace om::test {
namespace {

using om::messages::isDoubleClick;

TEST(DoubleClickRule, BoundariesOfTimeAndDistance)
{
    HWND a = reinterpret_cast<HWND>(0x10), b = reinterpret_cast<HWND>(0x20);
    struct Case {
        const char *name;
        unsigned button;
        Time gap;
        int dx, dy;
        HWND second;
        bool expected;
    } cases[] = {
        {"left, close and quick", 1, 100, 3, -3, a, true},
        {"left, 4 pixels in x", 1, 100, 4, 0, a, false},
        {"left, 4 pixels in y", 1, 100, 0, -4, a, false},
        {"left, exactly the limit", 1, 500, 0, 0, a, false},
        {"right, exactly the limit", 3, 500, 0, 0, a, true},
        {"right, far away", 3, 100, 300, 200, a, true},
        {"middle, far away", 2, 100, 300, 200, a, true},
        {"right, too late", 3, 501, 0, 0, a, false},
        {"another window", 1, 100, 0, 0, b, false},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(isDoubleClick(1000, c.button, 50, 50, a, 1000 + c.gap, c.button, 50 + c.dx,
                                50 + c.dy, c.second, 500),
                  c.expected);
    }
    EXPECT_FALSE(isDoubleClick(1000, 1, 50, 50, a, 1100, 3, 50, 50, a, 500)) << "other button";
    EXPECT_FALSE(isDoubleClick(1000, 1, 50, 50, nullptr, 1100, 1, 50, 50, a, 500))
        << "nothing remembered";
}

class Mouse : public XEventsTest {
protected:
    void SetUp() override
    {
        XEventsTest::SetUp();
        savedTime_ = omDoubleClickTime;
        omDoubleClickTime = 300;
        forgetLastPress();
    }
    void TearDown() override
    {
        omDoubleClickTime = savedTime_;
        XEventsTest::TearDown();
    }
    // Lets the remembered press age past the double-click time.
    void forgetLastPress()
    {
        pumpFor(std::chrono::milliseconds(omDoubleClickTime + 50), xeventsPump);
        drain();
    }
    // Clicks at client points, waiting for each click's release message.
    std::vector<OmMsgRecord> clicks(HWND h, unsigned button, std::vector<POINT> points)
    {
        std::vector<OmMsgRecord> all;
        for (POINT p : points) {
            // Presses in one millisecond are one press to the translation.
            if (!all.empty())
                pumpFor(std::chrono::milliseconds(10), xeventsPump);
            POINT s = screenOf(h, p.x, p.y);
            EXPECT_TRUE(click(omDisplay, s.x, s.y, button));
            UINT up = button == 1 ? WM_LBUTTONUP : button == 2 ? WM_MBUTTONUP : WM_RBUTTONUP;
            std::vector<OmMsgRecord> got;
            waitUntil(
                [&] {
                    OmMsgRecord r;
                    while (omTestTakeMessage(nullptr, &r))
                        if (r.hwnd == h && r.message >= WM_LBUTTONDOWN &&
                            r.message <= WM_MBUTTONDBLCLK)
                            got.push_back(r);
                    return std::any_of(got.begin(), got.end(),
                                       [&](const OmMsgRecord &m) { return m.message == up; });
                },
                std::chrono::milliseconds(2000), xeventsPump);
            all.insert(all.end(), got.begin(), got.end());
        }
        return all;
    }
    static std::vector<UINT> downs(const std::vector<OmMsgRecord> &msgs)
    {
        std::vector<UINT> out;
        for (auto &m : msgs)
            if (m.message != WM_LBUTTONUP && m.message != WM_MBUTTONUP &&
                m.message != WM_RBUTTONUP)
                out.push_back(m.message);
        return out;
    }
    unsigned savedTime_ = 0;
};

TEST_F(Mouse, ClicksPairIntoDoubleClicksByTheRules)
{
    struct Case {
        const char *name;
        unsigned button;
        std::vector<POINT> points;
        std::vector<UINT> expected;
    } cases[] = {
        {"3 pixels apart", 1, {{20, 20}, {23, 23}}, {WM_LBUTTONDOWN, WM_LBUTTONDBLCLK}},
        {"4 pixels apart", 1, {{20, 20}, {24, 20}}, {WM_LBUTTONDOWN, WM_LBUTTONDOWN}},
        {"third click", 1, {{20, 20}, {20, 20}, {20, 20}},
         {WM_LBUTTONDOWN, WM_LBUTTONDBLCLK, WM_LBUTTONDOWN}},
        {"button 3 far apart", 3, {{20, 20}, {120, 70}}, {WM_RBUTTONDOWN, WM_RBUTTONDBLCLK}},
        {"button 2", 2, {{20, 20}, {21, 21}}, {WM_MBUTTONDOWN, WM_MBUTTONDBLCLK}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        forgetLastPress();
        auto msgs = clicks(hwnd_, c.button, c.points);
        EXPECT_EQ(downs(msgs), c.expected);
        // Points in client coordinates; the pressed button is in the down
        // message's wParam and not in the up message's.
        ASSERT_FALSE(msgs.empty());
        EXPECT_EQ(LOWORD(msgs.front().lParam), c.points.front().x);
        EXPECT_EQ(HIWORD(msgs.front().lParam), c.points.front().y);
        WPARAM bit = c.button == 1 ? MK_LBUTTON : c.button == 2 ? MK_MBUTTON : MK_RBUTTON;
        for (auto &m : msgs) {
            bool up = m.message == WM_LBUTTONUP || m.message == WM_MBUTTONUP ||
                      m.message == WM_RBUTTONUP;
            EXPECT_EQ((m.wParam & bit) != 0, !up) << std::hex << m.message;
        }
    }
}

TEST_F(Mouse, SlowClicksAndPlainClassesGiveNoDoubleClick)
{
    auto slow = clicks(hwnd_, 1, {{20, 20}});
    pumpFor(std::chrono::milliseconds(omDoubleClickTime + 50), xeventsPump);
    auto second = clicks(hwnd_, 1, {{20, 20}});
    slow.insert(slow.end(), second.begin(), second.end());
    EXPECT_EQ(downs(slow), (std::vector<UINT>{WM_LBUTTONDOWN, WM_LBUTTONDOWN}));

    HWND plain = makeWindow(0, 320, 40, 0);
    forgetLastPress();
    auto msgs = clicks(plain, 1, {{20, 20}, {20, 20}});
    EXPECT_EQ(downs(msgs), (std::vector<UINT>{WM_LBUTTONDOWN, WM_LBUTTONDOWN}));
}

TEST_F(Mouse, MotionBurstGivesOneMoveAtTheNewestPoint)
{
    POINT last{};
    for (int i = 0; i < 10; ++i) {
        POINT s = screenOf(hwnd_, 10 + 5 * i, 15 + 3 * i);
        movePointer(omDisplay, s.x, s.y);
        last = {10 + 5 * i, 15 + 3 * i};
    }
    XSync(omDisplay, False);
    pumpFor(std::chrono::milliseconds(150), xeventsPump);
    std::vector<OmMsgRecord> moves;
    for (auto &m : drain())
        if (m.hwnd == hwnd_ && m.message == WM_MOUSEMOVE)
            moves.push_back(m);
    ASSERT_EQ(moves.size(), 1u);
    EXPECT_EQ(LOWORD(moves[0].lParam), last.x);
    EXPECT_EQ(HIWORD(moves[0].lParam), last.y);
    EXPECT_EQ(moves[0].event.type, MotionNotify);

    // Once retrieved, the next move is posted again.
    POINT s = screenOf(hwnd_, 70, 70);
    movePointer(omDisplay, s.x, s.y);
    EXPECT_EQ(collect(hwnd_, WM_MOUSEMOVE, WM_MOUSEMOVE, 1).size(), 1u);
}

TEST_F(Mouse, WheelNotchesNeverClick)
{
    struct Case {
        unsigned button;
        UINT message;
        short delta;
    } cases[] = {
        {5, WM_MOUSEWHEEL, -WHEEL_DELTA},
        {4, WM_MOUSEWHEEL, WHEEL_DELTA},
        {6, WM_MOUSEHWHEEL, -WHEEL_DELTA},
        {7, WM_MOUSEHWHEEL, WHEEL_DELTA},
    };
    POINT s = screenOf(hwnd_, 30, 30);
    for (const Case &c : cases) {
        SCOPED_TRACE(c.button);
        drain();
        ASSERT_TRUE(click(omDisplay, s.x, s.y, c.button));
        XSync(omDisplay, False);
        pumpFor(std::chrono::milliseconds(100), xeventsPump);
        std::vector<OmMsgRecord> mine;
        for (auto &m : drain())
            if (m.hwnd == hwnd_ && m.message != WM_MOUSEMOVE && m.message != WM_SETCURSOR)
                mine.push_back(m);
        ASSERT_EQ(mine.size(), 1u) << std::hex << mine.back().message;
        EXPECT_EQ(mine[0].message, c.message);
        EXPECT_EQ(static_cast<short>(HIWORD(mine[0].wParam)), c.delta);
        EXPECT_EQ(static_cast<short>(LOWORD(mine[0].lParam)), s.x);
        EXPECT_EQ(static_cast<short>(HIWORD(mine[0].lParam)), s.y);
        EXPECT_EQ(mine[0].event.type, ButtonPress);
    }
    EXPECT_EQ(omVirKeyState[VK_LBUTTON], 0);
}

TEST_F(Mouse, MouseEventMovesClicksAndScrolls)
{
    POINT s = screenOf(hwnd_, 40, 25);
    mouse_event(MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE, s.x, s.y, 0, 0);
    mouse_event(MOUSEEVENTF_LEFTDOWN | MOUSEEVENTF_LEFTUP, 0, 0, 0, 0);
    auto got = collect(hwnd_, WM_LBUTTONDOWN, WM_LBUTTONUP, 2);
    ASSERT_EQ(got.size(), 2u);
    EXPECT_EQ(got[0].message, static_cast<UINT>(WM_LBUTTONDOWN));
    EXPECT_EQ(got[0].lParam, MAKELPARAM(40, 25));
    EXPECT_EQ(got[1].message, static_cast<UINT>(WM_LBUTTONUP));

    mouse_event(MOUSEEVENTF_WHEEL, 0, 0, static_cast<DWORD>(-2 * WHEEL_DELTA), 0);
    auto wheel = collect(hwnd_, WM_MOUSEWHEEL, WM_MOUSEWHEEL, 2);
    ASSERT_EQ(wheel.size(), 2u);
    for (auto &m : wheel)
        EXPECT_EQ(static_cast<short>(HIWORD(m.wParam)), -WHEEL_DELTA);
}

}  // namespace
}  // namespace om::test
