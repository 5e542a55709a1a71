// X focus moving between top-level windows tells each owner-less window
// that its application gained or lost the activation; a click that moved
// the focus asks the window whether to keep the click.
#include "xevents_fixture.h"

namespace om::test {
namespace {

using Focus = XEventsTest;

TEST_F(Focus, FocusMovingBetweenWindowsSendsActivateApp)
{
    HWND other = makeWindow(0, 320, 40, 0);
    ASSERT_TRUE(other);
    struct Step {
        HWND to;
        std::vector<std::pair<HWND, WPARAM>> expected;
    } steps[] = {
        {hwnd_, {{hwnd_, TRUE}}},
        {other, {{hwnd_, FALSE}, {other, TRUE}}},
    };
    for (const Step &s : steps) {
        SCOPED_TRACE(s.to == hwnd_ ? "to the first window" : "to the second window");
        sentMessages().clear();
        XSetInputFocus(omDisplay, canvasWindow(s.to), RevertToPointerRoot, CurrentTime);
        XSync(omDisplay, False);
        std::vector<std::pair<HWND, WPARAM>> got;
        waitUntil(
            [&] {
                got.clear();
                for (const Sent &m : sentMessages())
                    if (m.msg == WM_ACTIVATEAPP)
                        got.emplace_back(m.hwnd, m.wParam);
                return got.size() >= s.expected.size();
            },
            std::chrono::milliseconds(2000), xeventsPump);
        pumpFor(std::chrono::milliseconds(30), xeventsPump);
        got.clear();
        for (const Sent &m : sentMessages())
            if (m.msg == WM_ACTIVATEAPP)
                got.emplace_back(m.hwnd, m.wParam);
        EXPECT_EQ(got, s.expected);
    }
    XSetInputFocus(omDisplay, PointerRoot, RevertToPointerRoot, CurrentTime);
    XSync(omDisplay, False);
}

LRESULT mouseActivateAnswer = MA_ACTIVATE;
std::vector<LPARAM> mouseActivates;
LRESULT CALLBACK activateProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    if (msg == WM_MOUSEACTIVATE) {
        EXPECT_EQ(wParam, reinterpret_cast<WPARAM>(hwnd)) << "the top-level window";
        mouseActivates.push_back(lParam);
        return mouseActivateAnswer;
    }
    return xeventsProc(hwnd, msg, wParam, lParam);
}

TEST_F(Focus, ClickThatBroughtTheFocusIsKeptUnlessEaten)
{
    omWindowRecord(hwnd_)->wndProc = activateProc;
    XEvent focus{};
    focus.xfocus = {FocusIn, 0, False, omDisplay, canvasWindow(hwnd_), NotifyNormal,
                    NotifyNonlinear};
    struct Case {
        LRESULT answer;
        unsigned button;  // 0: no click queued
        bool kept;
    } cases[] = {{MA_ACTIVATE, 1, true},
                 {MA_NOACTIVATE, 3, true},
                 {MA_ACTIVATEANDEAT, 1, false},
                 {MA_ACTIVATEANDEAT, 0, false}};
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << c.answer << " button " << c.button);
        mouseActivates.clear();
        mouseActivateAnswer = c.answer;
        if (c.button) {
            XEvent press = pointerEvent(ButtonPress, hwnd_, {5, 5}, c.button, CurrentTime);
            XPutBackEvent(omDisplay, &press);
        }
        _omProcessXEvent(&focus);
        ASSERT_EQ(mouseActivates.size(), c.button ? 1u : 0u);
        if (c.button) {
            EXPECT_EQ(LOWORD(mouseActivates[0]), HTCLIENT);
            EXPECT_EQ(HIWORD(mouseActivates[0]), c.button == 3 ? WM_RBUTTONDOWN : WM_LBUTTONDOWN);
        }
        XEvent again;
        EXPECT_EQ(XCheckMaskEvent(omDisplay, ButtonPressMask, &again) == True, c.kept);
    }
    omWindowRecord(hwnd_)->wndProc = xeventsProc;
}

}  // namespace
}  // namespace om::test
