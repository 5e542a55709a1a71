// The server moving and sizing a top-level window's shell: the record's
// outer rectangle follows it, WM_SIZE comes with the first configuration,
// and each change is announced with its SWP_ flags.
#include "xevents_fixture.h"

#include "messages/xevents.h"

#include <Xm/Xm.h>

#include <algorithm>

namespace om::test {
namespace {

class Configure : public XEventsTest {
protected:
    std::vector<Sent> waitFor(HWND h, UINT msg, size_t count)
    {
        std::vector<Sent> got;
        waitUntil(
            [&] {
                got.clear();
                for (const Sent &s : sentOf(msg))
                    if (s.hwnd == h)
                        got.push_back(s);
                return got.size() >= count;
            },
            std::chrono::milliseconds(2000), xeventsPump);
        return got;
    }
    void moveResizeShell(HWND h, int x, int y, int cx, int cy)
    {
        XMoveResizeWindow(omDisplay, XtWindow(omWindowRecord(h)->shellWidget), x, y, cx, cy);
        XSync(omDisplay, False);
    }
};

TEST_F(Configure, ShellChangesMoveTheRecordAndAnnounceThemselves)
{
    WindowRecord *w = omWindowRecord(hwnd_);
    int b = omBorderWidth(w), c = omCaptionHeight(w);
    ASSERT_GT(b, 0);
    if (!w->configured) {
        moveResizeShell(hwnd_, 100, 100, 250, 170);
        waitFor(hwnd_, WM_WINDOWPOSCHANGED, 1);
    }
    ASSERT_TRUE(w->configured);
    struct Step {
        const char *name;
        int x, y, cx, cy;
        UINT flagsSet, flagsClear;
    } steps[] = {
        {"move and size", 150, 130, 300, 180, 0, SWP_NOMOVE | SWP_NOSIZE},
        {"move only", 170, 140, 300, 180, SWP_NOSIZE, SWP_NOMOVE},
        {"size only", 170, 140, 260, 150, SWP_NOMOVE, SWP_NOSIZE},
    };
    for (const Step &s : steps) {
        SCOPED_TRACE(s.name);
        sentMessages().clear();
        moveResizeShell(hwnd_, s.x, s.y, s.cx, s.cy);
        auto changed = waitFor(hwnd_, WM_WINDOWPOSCHANGED, 1);
        ASSERT_EQ(changed.size(), 1u);
        const WINDOWPOS &p = changed[0].pos;
        EXPECT_EQ(p.hwnd, hwnd_);
        EXPECT_EQ(p.x, s.x - b);
        EXPECT_EQ(p.y, s.y - b - c);
        EXPECT_EQ(p.cx, s.cx + 2 * b);
        EXPECT_EQ(p.cy, s.cy + c + 2 * b);
        EXPECT_EQ(w->x, p.x);
        EXPECT_EQ(w->cy, p.cy);
        EXPECT_EQ(p.flags & s.flagsSet, s.flagsSet);
        EXPECT_EQ(p.flags & s.flagsClear, 0u);
        EXPECT_EQ(sentOf(WM_EXITSIZEMOVE).size(), 1u);
    }
}

TEST_F(Configure, FirstConfigurationSendsTheClientSize)
{
    sentMessages().clear();
    HWND h = makeWindow(0, 320, 60, 0);
    ASSERT_TRUE(h);
    WindowRecord *w = omWindowRecord(h);
    if (!w->configured)
        moveResizeShell(h, 330, 70, 220, 140);
    auto sizes = waitFor(h, WM_SIZE, 1);
    ASSERT_EQ(sizes.size(), 1u);
    EXPECT_EQ(sizes[0].wParam, static_cast<WPARAM>(SIZE_RESTORED));
    Dimension cw = 0, ch = 0;
    XtVaGetValues(w->canvasWidget, XmNwidth, &cw, XmNheight, &ch, nullptr);
    EXPECT_EQ(LOWORD(sizes[0].lParam), cw);
    EXPECT_EQ(HIWORD(sizes[0].lParam), ch);
    EXPECT_TRUE(std::none_of(sentMessages().begin(), sentMessages().end(), [&](const Sent &m) {
        return m.hwnd == h && m.msg == WM_EXITSIZEMOVE;
    })) << "the first map is no move or size of the user's";
}

TEST_F(Configure, EchoOfOurOwnSizeIsSwallowed)
{
    WindowRecord *w = omWindowRecord(hwnd_);
    moveResizeShell(hwnd_, 150, 130, 300, 180);
    waitFor(hwnd_, WM_WINDOWPOSCHANGED, 1);
    sentMessages().clear();
    w->configureEcho = true;
    XEvent ev{};
    ev.xconfigure.type = ConfigureNotify;
    ev.xconfigure.window = XtWindow(w->shellWidget);
    ev.xconfigure.x = 400;
    ev.xconfigure.y = 400;
    ev.xconfigure.width = w->cx;
    ev.xconfigure.height = w->cy;
    int x = w->x;
    omConfigureNotify(hwnd_, &ev);
    EXPECT_FALSE(w->configureEcho);
    EXPECT_EQ(w->x, x);
    EXPECT_TRUE(sentOf(WM_WINDOWPOSCHANGED).empty());
}

}  // namespace
}  // namespace om::test
