// XtReparentWidget on a real server: a frame holding a drawing area and a
// push button moves between two forms; toolkit lists, server window tree,
// map state, constraints and button clicks must all follow it, and refused
// moves must leave everything as it was.
#include <gtest/gtest.h> // first: Xlib's None macro breaks gtest if defined before it

#include <Xm/BulletinB.h>
#include <Xm/DrawingA.h>
#include <Xm/Form.h>
#include <Xm/Frame.h>
#include <Xm/PushB.h>
#include <Xm/Xm.h>
#include <X11/IntrinsicP.h>

#include <algorithm>
#include <vector>

#include "harness/input.h"
#include "harness/pump.h"
#include "harness/xtapp.h"
#include "harness/xwindow.h"
#include "kernel/omdiag.h"
#include "widgets/reparent.h"

using namespace om::test;

namespace
{

constexpr int kBadArgument = 303;

class ReparentTest : public ::testing::Test
{
  protected:
    void SetUp() override
    {
        ASSERT_NE(dpy_, nullptr) << "cannot open the test display";
        shell_ = makeShell("reparent");
        desk_ =
            XtVaCreateManagedWidget("desk", xmBulletinBoardWidgetClass, shell_, XmNwidth, 640,
                                    XmNheight, 480, XmNmarginWidth, 0, XmNmarginHeight, 0, nullptr);
        formA_ = makeForm(desk_, "formA", 0);
        formB_ = makeForm(desk_, "formB", 320);
        frame_ = XtVaCreateManagedWidget("frame", xmFrameWidgetClass, formA_, XmNx, 20, XmNy, 30,
                                         nullptr);
        body_ = XtVaCreateManagedWidget("body", xmBulletinBoardWidgetClass, frame_, XmNwidth, 200,
                                        XmNheight, 150, XmNmarginWidth, 0, XmNmarginHeight, 0,
                                        XmNresizePolicy, XmRESIZE_NONE, nullptr);
        area_ = XtVaCreateManagedWidget("area", xmDrawingAreaWidgetClass, body_, XmNx, 0, XmNy, 0,
                                        XmNwidth, 200, XmNheight, 100, nullptr);
        button_ = XtVaCreateManagedWidget("button", xmPushButtonWidgetClass, body_, XmNx, 10, XmNy,
                                          110, XmNwidth, 120, XmNheight, 30, nullptr);
        XtAddCallback(button_, XmNactivateCallback, countActivate, &activations_);
        omDiagResetCounts();
    }
    void TearDown() override
    {
        for (Widget s : {shell2_, shell_})
            if (s)
                XtDestroyWidget(s);
        pumpFor(std::chrono::milliseconds(20), pump_);
    }

    Widget makeShell(const char *name)
    {
        return XtVaAppCreateShell(name, "OlmoReparent", applicationShellWidgetClass, dpy_, XmNx, 0,
                                  XmNy, 0, XmNwidth, 640, XmNheight, 480, nullptr);
    }
    static Widget makeForm(Widget parent, const char *name, int x)
    {
        return XtVaCreateManagedWidget(name, xmFormWidgetClass, parent, XmNx, x, XmNy, 0, XmNwidth,
                                       320, XmNheight, 480, XmNresizePolicy, XmRESIZE_NONE,
                                       nullptr);
    }
    void realize(Widget shell)
    {
        XtRealizeWidget(shell);
        ASSERT_TRUE(waitForMapped(dpy_, XtWindow(button_), std::chrono::seconds(5), pump_));
        settle();
    }
    void settle()
    {
        XSync(dpy_, False);
        pumpFor(std::chrono::milliseconds(50), pump_);
    }

    static void countActivate(Widget, XtPointer counter, XtPointer)
    {
        ++*static_cast<int *>(counter);
    }
    static std::vector<Widget> childrenOf(Widget composite)
    {
        auto *cw = reinterpret_cast<CompositeWidget>(composite);
        std::vector<Widget> kids;
        for (Cardinal i = 0; i < cw->composite.num_children; ++i)
            kids.push_back(cw->composite.children[i]);
        return kids;
    }
    static long occurrences(Widget composite, Widget w)
    {
        auto *cw = reinterpret_cast<CompositeWidget>(composite);
        long n = 0;
        for (Cardinal i = 0; i < cw->composite.num_children; ++i)
            n += cw->composite.children[i] == w;
        return n;
    }
    static bool holds(Widget composite, Widget w) { return occurrences(composite, w) > 0; }
    int mapState(Widget w)
    {
        XWindowAttributes a;
        return XGetWindowAttributes(dpy_, XtWindow(w), &a) ? a.map_state : -1;
    }
    // Clicks the button's centre and waits for its activate callback.
    bool clickButton()
    {
        const int before = activations_;
        clickWindow(dpy_, XtWindow(button_), button_->core.width / 2, button_->core.height / 2);
        return OM_PUMP_UNTIL(activations_ == before + 1, 3000, pump_);
    }

    Display *dpy_ = sharedXtApp().display;
    XtPump pump_{sharedXtApp().context};
    Widget shell_ = nullptr, shell2_ = nullptr;
    Widget desk_ = nullptr, formA_ = nullptr, formB_ = nullptr;
    Widget frame_ = nullptr, body_ = nullptr, area_ = nullptr, button_ = nullptr;
    int activations_ = 0;
};

TEST_F(ReparentTest, RealizedSubtreeMovesWithListsWindowsAndInput)
{
    realize(shell_);
    ASSERT_TRUE(clickButton());

    ASSERT_TRUE(XtReparentWidget(frame_, formB_, 40, 50, 0, 0, body_));
    settle();

    EXPECT_EQ(XtParent(frame_), formB_);
    EXPECT_FALSE(holds(formA_, frame_));
    EXPECT_EQ(occurrences(formB_, frame_), 1);
    // The subtree below moves whole.
    EXPECT_EQ(XtParent(body_), frame_);
    EXPECT_EQ(XtParent(button_), body_);

    EXPECT_EQ(parentOf(dpy_, XtWindow(frame_)), XtWindow(formB_));
    EXPECT_EQ(parentOf(dpy_, XtWindow(button_)), XtWindow(body_));
    for (Widget w : {frame_, body_, area_, button_}) {
        SCOPED_TRACE(XtName(w));
        EXPECT_TRUE(XtIsManaged(w));
        EXPECT_EQ(mapState(w), IsViewable);
    }
    const Rect form = windowRootRect(dpy_, XtWindow(formB_));
    const Rect got = windowRootRect(dpy_, XtWindow(frame_));
    EXPECT_EQ(got.x, form.x + 40);
    EXPECT_EQ(got.y, form.y + 50);
    EXPECT_EQ(frame_->core.x, 40);
    EXPECT_EQ(frame_->core.y, 50);

    EXPECT_TRUE(clickButton());
    EXPECT_EQ(omDiagCount(kBadArgument), 0u);

    // The old form no longer owns it: destroying that form leaves the
    // moved subtree alive and working.
    XtDestroyWidget(formA_);
    formA_ = nullptr;
    settle();
    ASSERT_TRUE(holds(formB_, frame_));
    EXPECT_EQ(mapState(button_), IsViewable);
    EXPECT_TRUE(clickButton());
}

TEST_F(ReparentTest, ManagedAndMappedStateSurviveTheMove)
{
    struct Case {
        const char *name;
        bool managed;
        bool mappedWhenManaged;
        int expected;
    } cases[] = {
        {"managed and mapped", true, true, IsViewable},
        {"unmanaged", false, true, IsUnmapped},
        {"managed, not mapped when managed", true, false, IsUnmapped},
    };
    realize(shell_);
    Widget from = formA_, to = formB_;
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        XtSetMappedWhenManaged(frame_, c.mappedWhenManaged);
        if (c.managed)
            XtManageChild(frame_);
        else
            XtUnmanageChild(frame_);
        settle();
        ASSERT_EQ(mapState(frame_), c.expected);

        ASSERT_TRUE(XtReparentWidget(frame_, to, 5, 6, 0, 0, nullptr));
        settle();
        EXPECT_EQ(bool(XtIsManaged(frame_)), c.managed);
        EXPECT_EQ(mapState(frame_), c.expected);
        EXPECT_EQ(parentOf(dpy_, XtWindow(frame_)), XtWindow(to));
        std::swap(from, to);
    }
}

TEST_F(ReparentTest, SizeZeroKeepsAndNonZeroResizes)
{
    realize(shell_);
    const Dimension w0 = frame_->core.width, h0 = frame_->core.height;
    ASSERT_TRUE(XtReparentWidget(frame_, formB_, 0, 0, 0, 0, nullptr));
    EXPECT_EQ(frame_->core.width, w0);
    EXPECT_EQ(frame_->core.height, h0);

    ASSERT_TRUE(XtReparentWidget(frame_, formA_, 0, 0, 260, 0, nullptr));
    settle();
    EXPECT_EQ(frame_->core.width, 260);
    EXPECT_EQ(frame_->core.height, h0);
    EXPECT_EQ(windowRootRect(dpy_, XtWindow(frame_)).width, 260);

    // Same parent: only the geometry changes.
    ASSERT_TRUE(XtReparentWidget(frame_, formA_, 70, 80, 0, 0, nullptr));
    settle();
    EXPECT_EQ(XtParent(frame_), formA_);
    EXPECT_EQ(frame_->core.x, 70);
    EXPECT_EQ(frame_->core.y, 80);
    EXPECT_EQ(occurrences(formA_, frame_), 1);
}

// The constraint record follows the parent's class: after a move from a
// bulletin board into a form, form attachments must work on the child.
TEST_F(ReparentTest, ConstraintsAreThoseOfTheNewParent)
{
    realize(shell_);
    ASSERT_TRUE(XtReparentWidget(frame_, desk_, 10, 10, 0, 0, nullptr));
    ASSERT_TRUE(XtReparentWidget(frame_, formB_, 10, 10, 0, 0, nullptr));
    XtVaSetValues(frame_, XmNleftAttachment, XmATTACH_FORM, XmNleftOffset, 7, XmNtopAttachment,
                  XmATTACH_FORM, XmNtopOffset, 9, nullptr);
    settle();
    EXPECT_EQ(frame_->core.x, 7);
    EXPECT_EQ(frame_->core.y, 9);
    unsigned char attachment = 0;
    XtVaGetValues(frame_, XmNrightAttachment, &attachment, nullptr);
    EXPECT_EQ(attachment, XmATTACH_NONE);
    EXPECT_TRUE(clickButton());
}

// A sibling the old form had attached to the moved child must let go of
// it, or the old form would go on laying out against a widget it no
// longer holds.
TEST_F(ReparentTest, OldFormForgetsAttachmentsToTheMovedChild)
{
    Widget sibling = XtVaCreateManagedWidget("sibling", xmPushButtonWidgetClass, formA_,
                                             XmNleftAttachment, XmATTACH_WIDGET, XmNleftWidget,
                                             frame_, XmNtopAttachment, XmATTACH_FORM, nullptr);
    realize(shell_);
    ASSERT_EQ(sibling->core.x, frame_->core.x + frame_->core.width + 2 * frame_->core.border_width);

    ASSERT_TRUE(XtReparentWidget(frame_, formB_, 10, 10, 0, 0, nullptr));
    Widget attached = frame_;
    XtVaGetValues(sibling, XmNleftWidget, &attached, nullptr);
    EXPECT_NE(attached, frame_);
    // Moving the child in its new form leaves the old form's layout alone.
    const Position before = sibling->core.x;
    XtVaSetValues(frame_, XmNwidth, frame_->core.width + 40, nullptr);
    XtVaSetValues(formA_, XmNwidth, 310, nullptr);
    settle();
    EXPECT_LE(sibling->core.x, before);
}

// Across shells: the old shell must not keep its keyboard focus on the
// subtree, and the subtree keeps working after that shell is gone.
TEST_F(ReparentTest, MoveToAnotherRealizedShell)
{
    realize(shell_);
    shell2_ = makeShell("second");
    Widget target = XtVaCreateManagedWidget("target", xmFormWidgetClass, shell2_, XmNwidth, 400,
                                            XmNheight, 400, nullptr);
    XtRealizeWidget(shell2_);
    settle();
    XmProcessTraversal(button_, XmTRAVERSE_CURRENT);
    ASSERT_EQ(XmGetFocusWidget(desk_), button_);

    ASSERT_TRUE(XtReparentWidget(frame_, target, 30, 30, 0, 0, frame_));
    settle();
    EXPECT_NE(XmGetFocusWidget(desk_), button_);
    EXPECT_EQ(parentOf(dpy_, XtWindow(frame_)), XtWindow(target));
    EXPECT_TRUE(clickButton());

    XtDestroyWidget(shell_);
    shell_ = nullptr;
    settle();
    EXPECT_EQ(mapState(button_), IsViewable);
    EXPECT_TRUE(clickButton());
}

TEST_F(ReparentTest, UnrealizedNewParentIsRealizedFirst)
{
    realize(shell_);
    // Created after the shell was realised and not managed: no window yet.
    Widget hidden = XtVaCreateWidget("hidden", xmFormWidgetClass, desk_, XmNwidth, 300, XmNheight,
                                     300, nullptr);
    ASSERT_FALSE(XtIsRealized(hidden));

    ASSERT_TRUE(XtReparentWidget(frame_, hidden, 0, 0, 0, 0, nullptr));
    ASSERT_TRUE(XtIsRealized(hidden));
    EXPECT_EQ(parentOf(dpy_, XtWindow(frame_)), XtWindow(hidden));
    XtManageChild(hidden);
    settle();
    EXPECT_EQ(mapState(button_), IsViewable);
    EXPECT_TRUE(clickButton());
}

TEST_F(ReparentTest, MoveIntoUnrealizedShellRebuildsWindowsThere)
{
    realize(shell_);
    shell2_ = makeShell("second");
    Widget target = XtVaCreateManagedWidget("target", xmFormWidgetClass, shell2_, XmNwidth, 400,
                                            XmNheight, 400, nullptr);

    ASSERT_TRUE(XtReparentWidget(frame_, target, 30, 30, 0, 0, nullptr));
    EXPECT_FALSE(XtIsRealized(frame_));
    EXPECT_FALSE(XtIsRealized(button_));
    EXPECT_FALSE(holds(formA_, frame_));

    // The first shell goes on working without the subtree.
    XtVaSetValues(formA_, XmNwidth, 300, nullptr);
    settle();

    realize(shell2_);
    EXPECT_EQ(parentOf(dpy_, XtWindow(frame_)), XtWindow(target));
    EXPECT_TRUE(clickButton());
}

TEST_F(ReparentTest, RefusedMovesChangeNothing)
{
    realize(shell_);
    Widget outsider = XtVaCreateManagedWidget("outsider", xmPushButtonWidgetClass, formB_, nullptr);
    settle();
    struct Case {
        const char *name;
        Widget w, newParent, inner;
    } cases[] = {
        {"null widget", nullptr, formB_, nullptr},
        {"null new parent", frame_, nullptr, nullptr},
        {"shell", shell_, formB_, nullptr},
        {"into itself", frame_, frame_, nullptr},
        {"into its own child", frame_, body_, nullptr},
        {"into a grandchild", frame_, area_, nullptr},
        {"non-composite parent", frame_, outsider, nullptr},
        {"shell as parent", frame_, shell_, nullptr},
        {"inner outside the subtree", frame_, formB_, outsider},
    };
    const Window frameParent = parentOf(dpy_, XtWindow(frame_));
    const Rect before = windowRootRect(dpy_, XtWindow(frame_));
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        const unsigned diags = omDiagCount(kBadArgument);
        EXPECT_FALSE(XtReparentWidget(c.w, c.newParent, 1, 2, 0, 0, c.inner));
        EXPECT_EQ(omDiagCount(kBadArgument), diags + 1);
        settle();
        EXPECT_EQ(XtParent(frame_), formA_);
        EXPECT_TRUE(holds(formA_, frame_));
        EXPECT_FALSE(holds(formB_, frame_));
        EXPECT_EQ(parentOf(dpy_, XtWindow(frame_)), frameParent);
        const Rect now = windowRootRect(dpy_, XtWindow(frame_));
        EXPECT_EQ(now.x, before.x);
        EXPECT_EQ(now.y, before.y);
        EXPECT_TRUE(XtIsManaged(frame_));
        EXPECT_EQ(mapState(frame_), IsViewable);
    }
    EXPECT_TRUE(clickButton());
}

} // namespace
