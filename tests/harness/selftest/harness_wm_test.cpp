// The harness with mwm: top-level shells get decorated frames, and the
// keyboard focus follows clicks (click-to-type), not the pointer.
#include <gtest/gtest.h>

#include <Xm/TextF.h>
#include <Xm/Xm.h>

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

class ManagedShellTest : public ::testing::Test
{
  protected:
    void SetUp() override { ASSERT_NE(dpy_, nullptr) << "cannot open " << testDisplayName(); }
    void TearDown() override
    {
        for (Widget shell : shells_)
            XtDestroyWidget(shell);
    }

    // A realized shell at (x, y) holding a text field; returns the field.
    Widget textShell(const char *title, int x, int y)
    {
        Widget shell = XtVaAppCreateShell("harness", "OlmoHarness", topLevelShellWidgetClass, dpy_,
                                          XmNx, x, XmNy, y, XmNtitle, title, nullptr);
        shells_.push_back(shell);
        Widget text =
            XtVaCreateManagedWidget("text", xmTextFieldWidgetClass, shell, XmNcolumns, 24, nullptr);
        XtRealizeWidget(shell);
        return text;
    }

    // The frame of the window holding the X input focus, or None.
    Window focusedFrame()
    {
        Window focus = None;
        int revert = 0;
        XGetInputFocus(dpy_, &focus, &revert);
        if (focus == None || focus == PointerRoot)
            return None;
        return topLevelAncestor(dpy_, focus);
    }

    XtAppContext app_ = sharedXtApp().context;
    Display *dpy_ = sharedXtApp().display;
    std::vector<Widget> shells_;
};

TEST_F(ManagedShellTest, TopLevelShellIsReparentedIntoLargerFrame)
{
    Widget text = textShell("Olmo harness", 200, 150);
    Window client = XtWindow(XtParent(text));
    XtPump pump(app_);
    Window root = DefaultRootWindow(dpy_);
    OM_ASSERT_PUMP_UNTIL(parentOf(dpy_, client) != root, 5000, pump);
    ASSERT_TRUE(waitForMapped(dpy_, client, 5s, pump));

    Window frame = topLevelAncestor(dpy_, client);
    ASSERT_NE(frame, client);
    Rect outer = windowRootRect(dpy_, frame);
    Rect inner = windowRootRect(dpy_, client);
    EXPECT_GT(outer.width, inner.width);
    EXPECT_GT(outer.height, inner.height);
    EXPECT_GT(inner.y, outer.y) << "no title bar above the client";
    EXPECT_GE(inner.x, outer.x);
    EXPECT_LE(inner.x + inner.width, outer.x + outer.width);
    EXPECT_LE(inner.y + inner.height, outer.y + outer.height);

    std::string path;
    EXPECT_TRUE(saveScreenPng(dpy_, testArtifactName("screen"), &path));
    std::cout << "screenshot: " << path << "\n";
}

TEST_F(ManagedShellTest, KeyboardFocusFollowsClicksNotThePointer)
{
    Widget left = textShell("left", 100, 100);
    Widget right = textShell("right", 600, 100);
    XtPump pump(app_);
    ASSERT_TRUE(waitForMapped(dpy_, XtWindow(left), 5s, pump));
    ASSERT_TRUE(waitForMapped(dpy_, XtWindow(right), 5s, pump));
    const Window leftFrame = topLevelAncestor(dpy_, XtWindow(left));
    const Window rightFrame = topLevelAncestor(dpy_, XtWindow(right));
    ASSERT_NE(leftFrame, rightFrame);
    // startupKeyFocus: the window mapped last gets the focus.
    OM_ASSERT_PUMP_UNTIL(focusedFrame() == rightFrame, 3000, pump);

    ASSERT_TRUE(clickWindow(dpy_, XtWindow(left), 10, 10));
    OM_ASSERT_PUMP_UNTIL(focusedFrame() == leftFrame, 3000, pump);

    Rect r = windowRootRect(dpy_, XtWindow(right));
    ASSERT_TRUE(movePointer(dpy_, r.x + 10, r.y + 10));
    pumpFor(200ms, pump); // hovering must not move the focus
    EXPECT_EQ(focusedFrame(), leftFrame);

    ASSERT_TRUE(typeText(dpy_, "Typed"));
    auto value = [](Widget w) {
        char *chars = XmTextFieldGetString(w);
        std::string s = chars ? chars : "";
        XtFree(chars);
        return s;
    };
    OM_PUMP_UNTIL(value(left) == "Typed", 3000, pump);
    EXPECT_EQ(value(right), "");

    ASSERT_TRUE(clickWindow(dpy_, XtWindow(right), 10, 10));
    OM_ASSERT_PUMP_UNTIL(focusedFrame() == rightFrame, 3000, pump);
}

} // namespace
