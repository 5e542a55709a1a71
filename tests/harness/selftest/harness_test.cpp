// The harness on a real Xvfb without a window manager: XTest clicks and
// typing reach Motif widgets, screenshots have the window's size and
// colours, pumping is bounded, and a server of its own starts and stops.
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <X11/keysym.h>
#include <Xm/PushB.h>
#include <Xm/TextF.h>
#include <Xm/Xm.h>
#include <poll.h>
#include <signal.h>

#include <cerrno>
#include <fstream>
#include <string>
#include <vector>

#include "harness/input.h"
#include "harness/pump.h"
#include "harness/screenshot.h"
#include "harness/xtapp.h"
#include "harness/xserver.h"
#include "harness/xwindow.h"

using namespace om::test;
using namespace std::chrono_literals;

namespace
{

// A top-level shell per test on the process's shared Xt connection.
class MotifTest : public ::testing::Test
{
  protected:
    void SetUp() override
    {
        ASSERT_NE(dpy_, nullptr) << "cannot open " << testDisplayName();
        shell_ = XtVaAppCreateShell("harness", "OlmoHarness", applicationShellWidgetClass, dpy_,
                                    XmNx, 100, XmNy, 80, nullptr);
    }
    void TearDown() override
    {
        if (shell_)
            XtDestroyWidget(shell_);
    }

    XtAppContext app_ = sharedXtApp().context;
    Display *dpy_ = sharedXtApp().display;
    Widget shell_ = nullptr;
};

void countActivation(Widget, XtPointer count, XtPointer)
{
    ++*static_cast<int *>(count);
}

TEST_F(MotifTest, ClickOnPushButtonRunsActivateCallbackAndScreenshotHasWindowSize)
{
    XmString label = XmStringCreateLocalized(const_cast<char *>("Press me"));
    Widget button =
        XtVaCreateManagedWidget("button", xmPushButtonWidgetClass, shell_, XmNlabelString, label,
                                XmNwidth, 160, XmNheight, 60, nullptr);
    XmStringFree(label);
    int activations = 0;
    XtAddCallback(button, XmNactivateCallback, countActivation, &activations);
    XtRealizeWidget(shell_);
    XtPump pump(app_);
    ASSERT_TRUE(waitForMapped(dpy_, XtWindow(button), 5s, pump));

    Rect rect = windowRootRect(dpy_, XtWindow(button));
    ASSERT_TRUE(clickWindow(dpy_, XtWindow(button), rect.width / 2, rect.height / 2));
    OM_ASSERT_PUMP_UNTIL(activations > 0, 5000, pump);
    pumpFor(100ms, pump); // one click, one activation: nothing more may arrive
    EXPECT_EQ(activations, 1);

    std::string path;
    ASSERT_TRUE(saveWindowPng(dpy_, XtWindow(shell_), testArtifactName(), &path));
    Rect shell = windowRootRect(dpy_, XtWindow(shell_));
    int width = 0, height = 0;
    ASSERT_TRUE(readPngSize(path, width, height)) << path;
    EXPECT_EQ(width, shell.width);
    EXPECT_EQ(height, shell.height);
}

TEST_F(MotifTest, TypingIntoFocusedTextFieldGivesExactlyThatText)
{
    Widget text =
        XtVaCreateManagedWidget("text", xmTextFieldWidgetClass, shell_, XmNcolumns, 40, nullptr);
    XtRealizeWidget(shell_);
    XtPump pump(app_);
    ASSERT_TRUE(waitForMapped(dpy_, XtWindow(text), 5s, pump));
    // No window manager here to hand out the focus.
    XSetInputFocus(dpy_, XtWindow(shell_), RevertToParent, CurrentTime);
    XmProcessTraversal(text, XmTRAVERSE_CURRENT);
    OM_ASSERT_PUMP_UNTIL(XmGetFocusWidget(shell_) == text, 2000, pump);

    auto value = [&] {
        char *chars = XmTextFieldGetString(text);
        std::string s = chars ? chars : "";
        XtFree(chars);
        return s;
    };
    // Upper and lower case, digits, space, unshifted and shifted symbols.
    const std::string typed = "Olmo 2.0! (A_b) ~#/-";
    ASSERT_TRUE(typeText(dpy_, typed.c_str()));
    OM_PUMP_UNTIL(value().size() >= typed.size(), 5000, pump);
    EXPECT_EQ(value(), typed);
}

TEST(PumpUntil, UnmetConditionFailsPromptlyAtItsDeadline)
{
    int pumps = 0;
    bool never = false;
    auto pump = [&] {
        ++pumps;
        poll(nullptr, 0, 1);
    };
    bool held = true;
    auto start = std::chrono::steady_clock::now();
    EXPECT_NONFATAL_FAILURE(held = OM_PUMP_UNTIL(never, 200, pump),
                            "Condition not met within 200 ms: never");
    auto elapsed = std::chrono::steady_clock::now() - start;
    EXPECT_FALSE(held);
    EXPECT_GE(elapsed, 200ms);
    EXPECT_LT(elapsed, 1500ms);
    EXPECT_GT(pumps, 10) << "the wait must pump, not sleep through the deadline";
}

TEST(PumpUntil, ConditionMetByPumpingReturnsAtOnce)
{
    int pumps = 0;
    auto pump = [&] { ++pumps; };
    EXPECT_TRUE(OM_PUMP_UNTIL(pumps == 3, 5000, pump));
    EXPECT_EQ(pumps, 3);
    EXPECT_TRUE(OM_PUMP_UNTIL(true, 5000, pump));
    EXPECT_EQ(pumps, 3) << "a condition that already holds needs no pumping";
}

void assertUnmet()
{
    OM_ASSERT_PUMP_UNTIL(false, 50, [] { poll(nullptr, 0, 1); });
    ADD_FAILURE() << "OM_ASSERT_PUMP_UNTIL did not return";
}

TEST(PumpUntil, AssertFormIsFatalAndReturns)
{
    EXPECT_FATAL_FAILURE(assertUnmet(), "Condition not met within 50 ms: false");
}

// Plain Xlib window for checks that must not depend on a toolkit.
class XlibTest : public ::testing::Test
{
  protected:
    void SetUp() override
    {
        dpy_ = XOpenDisplay(testDisplayName());
        ASSERT_NE(dpy_, nullptr);
    }
    void TearDown() override
    {
        if (dpy_)
            XCloseDisplay(dpy_);
    }
    unsigned long rgb(uint32_t colour)
    {
        XColor c{};
        c.red = static_cast<unsigned short>((colour >> 16 & 0xff) * 0x101);
        c.green = static_cast<unsigned short>((colour >> 8 & 0xff) * 0x101);
        c.blue = static_cast<unsigned short>((colour & 0xff) * 0x101);
        EXPECT_TRUE(XAllocColor(dpy_, DefaultColormap(dpy_, DefaultScreen(dpy_)), &c));
        return c.pixel;
    }
    Window mapWindow(int x, int y, int w, int h, uint32_t background, long events)
    {
        Window win =
            XCreateSimpleWindow(dpy_, DefaultRootWindow(dpy_), x, y, w, h, 0, 0, rgb(background));
        XSelectInput(dpy_, win, events);
        XMapWindow(dpy_, win);
        waitForMapped(dpy_, win, 5s, XlibPump(dpy_));
        return win;
    }
    Display *dpy_ = nullptr;
};

TEST_F(XlibTest, PixelsAndPngKeepColoursAndPositions)
{
    const uint32_t background = 0x3060c0, patch = 0xf0a020;
    Window win = mapWindow(50, 60, 120, 90, background, 0);
    GC gc = XCreateGC(dpy_, win, 0, nullptr);
    XSetForeground(dpy_, gc, rgb(patch));
    XFillRectangle(dpy_, win, gc, 100, 70, 20, 20); // bottom-right corner
    XFreeGC(dpy_, gc);
    XSync(dpy_, False);

    EXPECT_EQ(pixelAt(dpy_, win, 0, 0), background);
    EXPECT_EQ(pixelAt(dpy_, win, 99, 69), background);
    EXPECT_EQ(pixelAt(dpy_, win, 100, 70), patch);
    EXPECT_EQ(pixelAt(dpy_, win, 119, 89), patch);
    EXPECT_NONFATAL_FAILURE(pixelAt(dpy_, win, 120, 0), "outside");

    std::string path;
    ASSERT_TRUE(saveWindowPng(dpy_, win, testArtifactName(), &path));
    PngImage png;
    ASSERT_TRUE(readPng(path, png)) << path;
    ASSERT_EQ(png.width, 120);
    ASSERT_EQ(png.height, 90);
    EXPECT_EQ(png.at(0, 0), background);
    EXPECT_EQ(png.at(99, 69), background);
    EXPECT_EQ(png.at(100, 70), patch);
    EXPECT_EQ(png.at(119, 89), patch);

    // Partly off screen: only the visible part is saved.
    XMoveWindow(dpy_, win, -20, -30);
    XSync(dpy_, False);
    ASSERT_TRUE(saveWindowPng(dpy_, win, testArtifactName("clipped"), &path));
    ASSERT_TRUE(readPng(path, png)) << path;
    EXPECT_EQ(png.width, 100);
    EXPECT_EQ(png.height, 60);
    EXPECT_EQ(png.at(80, 40), patch);
}

TEST_F(XlibTest, PressKeyHoldsExactlyTheRequestedModifiers)
{
    std::vector<XKeyEvent> presses;
    XlibPump pump(dpy_, [&](const XEvent &ev) {
        if (ev.type == KeyPress)
            presses.push_back(ev.xkey);
    });
    Window win = mapWindow(300, 300, 100, 100, 0xffffff, KeyPressMask);
    XSetInputFocus(dpy_, win, RevertToParent, CurrentTime);
    const unsigned relevant = ShiftMask | ControlMask | Mod1Mask | Mod4Mask;
    const KeyCode keyA = XKeysymToKeycode(dpy_, XK_a);
    for (unsigned modifiers : {0u, unsigned(ShiftMask), unsigned(ControlMask), unsigned(Mod1Mask),
                               unsigned(ShiftMask | ControlMask | Mod1Mask)}) {
        SCOPED_TRACE(testing::Message() << "modifiers 0x" << std::hex << modifiers);
        presses.clear();
        ASSERT_TRUE(pressKey(dpy_, XK_a, modifiers));
        // The modifier keys are reported too; the last press is the 'a'.
        OM_ASSERT_PUMP_UNTIL(!presses.empty() && presses.back().keycode == keyA, 2000, pump);
        EXPECT_EQ(presses.back().state & relevant, modifiers);
        EXPECT_EQ(presses.size(), 1 + static_cast<size_t>(__builtin_popcount(modifiers)));
    }
    Window root, child;
    int rx, ry, wx, wy;
    unsigned mask = 0;
    XQueryPointer(dpy_, win, &root, &child, &rx, &ry, &wx, &wy, &mask);
    EXPECT_EQ(mask & relevant, 0u) << "modifier keys left pressed";

    EXPECT_NONFATAL_FAILURE(pressKey(dpy_, 0x100263a /* U+263A, not in the keymap */),
                            "no key produces keysym");
}

// A second server of our own: its own display, no XTEST, gone after stop().
TEST(XServerTest, SecondServerWithoutXTestFailsInputLoudlyAndStopsCleanly)
{
    XServer server(XServer::Options{.extraArgs = {"-extension", "XTEST"}});
    ASSERT_TRUE(server.start()) << server.error();
    EXPECT_NE(server.displayName(), testDisplayName());
    const pid_t pid = server.serverPid();
    const std::string lockFile = "/tmp/.X" + server.displayName().substr(1) + "-lock";

    Display *dpy = XOpenDisplay(server.displayName().c_str());
    ASSERT_NE(dpy, nullptr);
    EXPECT_NONFATAL_FAILURE(click(dpy, 10, 10), "has no XTEST extension");
    EXPECT_NONFATAL_FAILURE(typeText(dpy, "x"), "has no XTEST extension");
    XCloseDisplay(dpy);

    server.stop();
    EXPECT_FALSE(server.running());
    EXPECT_EQ(kill(pid, 0), -1);
    EXPECT_EQ(errno, ESRCH) << "Xvfb process " << pid << " still exists";
    // Another binary's server may already own the display again.
    std::ifstream lock(lockFile);
    pid_t owner = 0;
    if (lock >> owner) {
        EXPECT_NE(owner, pid) << lockFile << " left behind";
    }
}

TEST(XServerTest, FailedStartReportsTheServersOwnOutput)
{
    XServer server(XServer::Options{.extraArgs = {"-no-such-option"}});
    EXPECT_FALSE(server.start());
    EXPECT_FALSE(server.running());
    const std::string &error = server.error();
    EXPECT_EQ(error.rfind("Xvfb could not start", 0), 0u) << error;
    EXPECT_NE(error.find("-no-such-option"), std::string::npos)
        << "the reason Xvfb printed is missing: " << error;
}

} // namespace
