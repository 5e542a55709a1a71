// The mouse capture as an X pointer grab: clicks anywhere reach the
// capturing window while it holds the capture and their own window after
// the release, other clients cannot grab meanwhile, and the refusals of
// SetCapture; the double-click time round trip through the X Toolkit.
#include "winmgmt_fixture.h"

#include "winmgmt/ominput.h"

#include "kernel/omthread.h"

#include <windowsx.h>

#include <thread>

namespace om::test {
namespace {

class Capture : public WinmgmtTest {
protected:
    void SetUp() override
    {
        WinmgmtTest::SetUp();
        a_ = makeWindow(40, 40);
        b_ = makeWindow(320, 240);
        ASSERT_TRUE(a_ && b_);
    }
    // Clicks the middle of b with the left button, waiting until the
    // press and release have been translated.
    void clickB()
    {
        POINT s = screenOf(b_, 100, 70);
        ASSERT_TRUE(click(omDisplay, s.x, s.y, 1));
        pumpFor(std::chrono::milliseconds(80), winmgmtPump);
    }
    // Whether another client of the display could grab the pointer now.
    static int grabFromAnotherClient()
    {
        Display *other = XOpenDisplay(DisplayString(omDisplay));
        if (!other)
            return -1;
        int status = XGrabPointer(other, DefaultRootWindow(other), False, ButtonPressMask,
                                  GrabModeAsync, GrabModeAsync, None, None, CurrentTime);
        XUngrabPointer(other, CurrentTime);
        XCloseDisplay(other);
        return status;
    }
    HWND a_ = nullptr, b_ = nullptr;
};

TEST_F(Capture, ClicksOnAnotherWindowReachTheCaptureWindowUntilReleased)
{
    EXPECT_EQ(SetCapture(a_), nullptr);
    EXPECT_EQ(GetCapture(), a_);
    drain(nullptr);
    clickB();
    std::vector<MSG> toA = buttonMessages(a_, 2);
    ASSERT_EQ(toA.size(), 2u);
    EXPECT_EQ(toA[0].message, static_cast<UINT>(WM_LBUTTONDOWN));
    EXPECT_EQ(toA[1].message, static_cast<UINT>(WM_LBUTTONUP));
    // Reported in the capture window's client coordinates, outside it.
    POINT s = screenOf(b_, 100, 70), originA = screenOf(a_, 0, 0);
    for (const MSG &m : toA) {
        EXPECT_EQ(GET_X_LPARAM(m.lParam), s.x - originA.x);
        EXPECT_EQ(GET_Y_LPARAM(m.lParam), s.y - originA.y);
    }
    EXPECT_TRUE(buttonMessages(b_, 1, 100).empty()) << "the window under the pointer hears nothing";

    EXPECT_TRUE(ReleaseCapture());
    EXPECT_EQ(GetCapture(), nullptr);
    drain(nullptr);
    clickB();
    EXPECT_EQ(buttonMessages(b_, 2).size(), 2u) << "after the release clicks go where they land";
    EXPECT_TRUE(buttonMessages(a_, 1, 100).empty());
}

TEST_F(Capture, TheGrabShutsOutOtherClientsUntilReleased)
{
    ASSERT_EQ(grabFromAnotherClient(), GrabSuccess) << "nothing grabbed to begin with";
    XErrorCounter errors;
    SetCapture(a_);
    EXPECT_EQ(grabFromAnotherClient(), AlreadyGrabbed);
    // Moving the capture keeps the pointer grabbed.
    EXPECT_EQ(SetCapture(b_), a_);
    EXPECT_EQ(grabFromAnotherClient(), AlreadyGrabbed);
    ReleaseCapture();
    EXPECT_EQ(grabFromAnotherClient(), GrabSuccess);
    EXPECT_EQ(errors.errors(), 0);
}

TEST_F(Capture, RefusalsLeaveTheRightCapture)
{
    HWND disabled = makeWindow(100, 300, WS_DISABLED);
    ASSERT_TRUE(disabled);
    struct Case {
        const char *name;
        HWND target;
        HWND captureAfter;
    } cases[] = {
        {"null releases", nullptr, nullptr},
        {"a disabled window releases", disabled, nullptr},
        {"not a window keeps the capture", reinterpret_cast<HWND>(0x7FFF0), a_},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        SetCapture(a_);
        EXPECT_EQ(SetCapture(c.target), nullptr);
        EXPECT_EQ(GetCapture(), c.captureAfter);
    }
    ReleaseCapture();
    EXPECT_TRUE(ReleaseCapture()) << "with no capture";
}

// Without user-interface threads only the main thread may move the capture.
class CaptureThreads : public Capture {
protected:
    void TearDown() override
    {
        omSetUserInterfaceThreadSupported(saved_);
        Capture::TearDown();
    }
    int saved_ = omIsUserInterfaceThreadSupported();
};

TEST_F(CaptureThreads, AnotherThreadIsRefusedWithoutUserInterfaceThreads)
{
    omSetUserInterfaceThreadSupported(0);
    SetCapture(a_);
    HWND answer = a_;
    BOOL released = TRUE;
    std::thread([&] {
        answer = SetCapture(b_);
        released = ReleaseCapture();
    }).join();
    EXPECT_EQ(answer, nullptr);
    EXPECT_FALSE(released);
    EXPECT_EQ(GetCapture(), a_) << "the main thread's capture stands";
}

class DoubleClickTime : public WinmgmtTest {
protected:
    void SetUp() override
    {
        WinmgmtTest::SetUp();
        saved_ = GetDoubleClickTime();
    }
    void TearDown() override
    {
        SetDoubleClickTime(saved_);
        WinmgmtTest::TearDown();
    }
    UINT saved_ = 0;
};

TEST_F(DoubleClickTime, RoundTripsThroughTheToolkitAndTheEventTranslation)
{
    struct Case {
        UINT set, expected;
    } cases[] = {{250, 250}, {1234, 1234}, {1, 1}, {0, 500}};
    for (const Case &c : cases) {
        SCOPED_TRACE(c.set);
        EXPECT_TRUE(SetDoubleClickTime(c.set));
        EXPECT_EQ(GetDoubleClickTime(), c.expected);
        EXPECT_EQ(static_cast<UINT>(XtGetMultiClickTime(omDisplay)), c.expected);
        EXPECT_EQ(omDoubleClickTime, c.expected) << "what the click translation compares with";
    }
}

}  // namespace
}  // namespace om::test
