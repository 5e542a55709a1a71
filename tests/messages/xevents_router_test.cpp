// The X pump and router: input selection on a window's widgets, root
// broadcasts routed to the windows, the idle drain after pumping, and the
// OMEVENTDEBUG trace.
#include "xevents_fixture.h"

#include <cstdlib>
#include <string>

namespace om::test {
namespace {

using Router = XEventsTest;

TEST_F(Router, SelectsInputOnTheCanvasByMotionlessness)
{
    for (int motionless : {0, 1}) {
        SCOPED_TRACE(motionless);
        HWND h = makeWindow(0, 300, 40, motionless);
        ASSERT_TRUE(h);
        omSelectInputs(h);
        XWindowAttributes a;
        ASSERT_TRUE(XGetWindowAttributes(omDisplay, canvasWindow(h), &a));
        long want = motionless ? 0x64803F : 0x64A07F;
        EXPECT_EQ(a.your_event_mask & want, want);
        EXPECT_EQ((a.your_event_mask & PointerMotionMask) != 0, motionless == 0);
    }
}

TEST_F(Router, RootBroadcastsReachTheWindowAndStopThePump)
{
    XEvent ev{};
    ev.xclient.type = ClientMessage;
    ev.xclient.send_event = True;
    ev.xclient.display = omDisplay;
    ev.xclient.window = DefaultRootWindow(omDisplay);
    ev.xclient.message_type = _omPostMessageAtom;
    ev.xclient.format = 32;
    ev.xclient.data.l[0] = WM_USER + 7;
    ev.xclient.data.l[1] = 11;
    ev.xclient.data.l[2] = 22;
    EXPECT_EQ(_omProcessXEvent(&ev), 0);
    auto got = collect(hwnd_, WM_USER + 7, WM_USER + 7, 1, 200);
    ASSERT_EQ(got.size(), 1u);
    EXPECT_EQ(got[0].wParam, 11u);
    EXPECT_EQ(got[0].lParam, 22);

    // Sent by the server rather than a client: not a broadcast.
    ev.xclient.send_event = False;
    omProcessXEvents(&ev);
    EXPECT_TRUE(collect(hwnd_, WM_USER + 7, WM_USER + 7, 1, 50).empty());
}

TEST_F(Router, PumpRunsTheIdleDrainOfDestroyedWindows)
{
    HWND h = makeWindow(0, 300, 40, 0);
    ASSERT_TRUE(DestroyWindow(h));
    EXPECT_FALSE(IsWindow(h));
    omProcessXEvents(nullptr);
    EXPECT_EQ(omDestroyQueued(), nullptr);
}

TEST_F(Router, EventDebugTracesKeysWhenAsked)
{
    XEvent ev{};
    ev.xkey.type = KeyRelease;
    ev.xkey.display = omDisplay;
    ev.xkey.window = DefaultRootWindow(omDisplay);
    ev.xkey.keycode = 38;
    ev.xkey.state = 0x4;
    for (bool on : {true, false}) {
        SCOPED_TRACE(on);
        if (on)
            setenv("OMEVENTDEBUG", "1", 1);
        else
            unsetenv("OMEVENTDEBUG");
        omTestRereadEventDebug();
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        _omProcessXEvent(&ev);
        std::string out = testing::internal::GetCapturedStdout();
        std::string err = testing::internal::GetCapturedStderr();
        EXPECT_EQ(err.find("KeyRelease") != std::string::npos, on) << err;
        EXPECT_EQ(out.find("keycode 38, state 0x4") != std::string::npos, on) << out;
    }
    omTestRereadEventDebug();
}

}  // namespace
}  // namespace om::test
