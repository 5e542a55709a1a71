// SetParent: a child moves with its subtree into another window's client
// area, in the window lists, in the widget tree and on the server.
#include "corefixture.h"

#include "kernel/omdisplay.h"
#include "kernel/omwidgetmap.h"

#include <X11/IntrinsicP.h>

namespace {

using om::test::CoreTest;
using om::test::corePump;

class Reparent : public CoreTest {
protected:
    HWND top(const char *title, int x)
    {
        HWND h = CreateWindowExA(0, om::test::testClass(), title, WS_OVERLAPPEDWINDOW | WS_VISIBLE,
                                 x, 20, 300, 200, nullptr, nullptr, nullptr, nullptr);
        EXPECT_NE(h, nullptr);
        made_.push_back(h);
        return h;
    }
    HWND kid(HWND parent, int x, int y, DWORD extra = 0)
    {
        return CreateWindowExA(0, om::test::testClass(), "kid", WS_CHILD | WS_VISIBLE | extra, x, y,
                               80, 60, parent, nullptr, nullptr, nullptr);
    }
    void TearDown() override
    {
        for (HWND h : made_)
            if (IsWindow(h))
                DestroyWindow(h);
        corePump();
        CoreTest::TearDown();
    }
    // The parent of an X window on the server.
    static Window serverParent(Window w)
    {
        Window root, parent, *kids = nullptr;
        unsigned n = 0;
        XQueryTree(omDisplay, w, &root, &parent, &kids, &n);
        if (kids)
            XFree(kids);
        return parent;
    }
    std::vector<HWND> made_;
};

TEST_F(Reparent, ChildMovesWithItsSubtreeAndKeepsItsOffset)
{
    HWND a = top("A", 10), b = top("B", 330);
    HWND sibling = kid(a, 0, 0);
    HWND c = kid(a, 25, 30, WS_CAPTION | WS_THICKFRAME);
    HWND g = kid(c, 5, 5);
    ASSERT_TRUE(sibling && c && g);
    corePump();
    WindowRecord *wc = omWindowRecord(c), *wg = omWindowRecord(g);
    Widget frame = wc->shellWidget, grandFrame = wg->shellWidget;

    EXPECT_EQ(SetParent(c, b), a);
    EXPECT_EQ(GetParent(c), b);
    EXPECT_EQ(GetParent(g), c);
    EXPECT_TRUE(IsChild(b, g));
    EXPECT_FALSE(IsChild(a, c));
    // Lists: gone from A's (its sibling alone now), last in B's.
    EXPECT_EQ(GetWindow(a, GW_CHILD), sibling);
    EXPECT_EQ(GetWindow(sibling, GW_HWNDNEXT), nullptr);
    EXPECT_EQ(GetWindow(b, GW_CHILD), c);
    EXPECT_EQ(GetWindow(c, GW_HWNDPREV), nullptr);
    // Widgets: the same frame, now in B's canvas at the same client offset;
    // the grandchild stays inside it.
    EXPECT_EQ(wc->shellWidget, frame);
    EXPECT_EQ(XtParent(frame), omWindowRecord(b)->canvasWidget);
    EXPECT_EQ(frame->core.x, 25);
    EXPECT_EQ(frame->core.y, 30);
    EXPECT_EQ(wg->shellWidget, grandFrame);
    EXPECT_EQ(XtParent(grandFrame), wc->canvasWidget);
    // On the server.
    EXPECT_EQ(serverParent(XtWindow(frame)), XtWindow(omWindowRecord(b)->canvasWidget));
    EXPECT_EQ(serverParent(XtWindow(grandFrame)), XtWindow(wc->canvasWidget));
    RECT inB{};
    GetWindowRect(c, &inB);
    POINT origin{0, 0};
    ClientToScreen(b, &origin);
    EXPECT_EQ(inB.left - origin.x, 25);
    EXPECT_EQ(inB.top - origin.y, 30);

    // Messages still reach the moved windows through their widgets.
    EXPECT_EQ(omWidgetTohWnd(wg->canvasWidget), g);
}

TEST_F(Reparent, Refusals)
{
    HWND a = top("A", 10), b = top("B", 330);
    HWND c = kid(a, 0, 0);
    HWND g = kid(c, 0, 0);
    EXPECT_EQ(SetParent(c, nullptr), nullptr);
    EXPECT_EQ(GetParent(c), a);
    EXPECT_EQ(SetParent(a, b), nullptr);        // not a child
    EXPECT_EQ(SetParent(c, reinterpret_cast<HWND>(0x7777)), nullptr);
    EXPECT_EQ(SetParent(c, g), nullptr);        // inside its own subtree
    EXPECT_EQ(GetParent(g), c);
    EXPECT_EQ(SetParent(c, a), a);              // no change
    EXPECT_EQ(GetWindow(a, GW_CHILD), c);
}

}  // namespace
