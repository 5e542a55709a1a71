// X focus moving between top-level windows tells each owner-less window
// that its application gained or lost the activation.
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

}  // namespace
}  // namespace om::test
