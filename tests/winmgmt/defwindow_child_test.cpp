// The default window procedure on child windows: the client area built on
// WM_NCCREATE, hit codes from the XoBorder frame's regions, the client-edge
// shrink of WM_NCCALCSIZE, system commands as frame states, and the
// frame's title as the window text.
#include "winmgmt_fixture.h"

#include "winmgmt/omdefwindow.h"

#include "widgets/XoBorder.h"

#include <Xm/ScrolledW.h>
#include <Xm/Xm.h>

#include <algorithm>

namespace om::test {
namespace {

bool swallowNcCreate = false;

LRESULT CALLBACK childProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    if (msg == WM_NCCREATE && swallowNcCreate)
        return TRUE;
    return DefWindowProcA(hwnd, msg, wParam, lParam);
}

const char *childClass()
{
    static const char *name = [] {
        WNDCLASSA wc{};
        wc.lpfnWndProc = childProc;
        wc.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
        wc.lpszClassName = "DefWndChild";
        RegisterClassA(&wc);
        return "DefWndChild";
    }();
    return name;
}

// What the recording parent heard from its children.
struct ParentHeard {
    UINT msg;
    WPARAM wParam;
    LPARAM lParam;
    HELPINFO help;
};
std::vector<ParentHeard> parentHeard;

LRESULT CALLBACK recordingParentProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    switch (msg) {
    case WM_HELP:
    case WM_CONTEXTMENU:
    case WM_PARENTNOTIFY:
    case WM_COMMAND:
    case WM_MOUSEACTIVATE: {
        ParentHeard h{msg, wParam, lParam, {}};
        if (msg == WM_HELP && lParam)
            h.help = *reinterpret_cast<const HELPINFO *>(lParam);
        parentHeard.push_back(h);
        return msg == WM_MOUSEACTIVATE ? MA_NOACTIVATEANDEAT : 0;
    }
    default:
        return DefWindowProcA(hwnd, msg, wParam, lParam);
    }
}

constexpr DWORD kFramed = WS_CHILD | WS_VISIBLE | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME;

class DefWindowProcChild : public WinmgmtTest {
protected:
    void SetUp() override
    {
        WinmgmtTest::SetUp();
        swallowNcCreate = false;
        omDiagResetCounts();
        parent_ = makeWindow(20, 20);
        ASSERT_TRUE(parent_);
    }
    HWND makeChild(DWORD exStyle = 0, DWORD style = kFramed)
    {
        HWND h = CreateWindowExA(exStyle, childClass(), "t", style, 10, 10, 200, 150, parent_,
                                 reinterpret_cast<HMENU>(1), nullptr, nullptr);
        if (!h)
            return nullptr;
        made_.insert(made_.begin(), h);
        if (Widget frame = omWindowRecord(h)->shellWidget)
            OM_PUMP_UNTIL(XtIsRealized(frame), 3000, winmgmtPump);
        return h;
    }
    static Widget frameOf(HWND h) { return omWindowRecord(h)->shellWidget; }
    // The screen point of a point given in the frame's coordinates, made
    // the way WM_NCHITTEST's caller makes it (through the client area).
    static LPARAM screenFromFrame(HWND h, int x, int y)
    {
        WindowRecord *w = omWindowRecord(h);
        Position cx = 0, cy = 0, fx = 0, fy = 0;
        XtTranslateCoords(w->canvasWidget, 0, 0, &cx, &cy);
        XtTranslateCoords(w->shellWidget, 0, 0, &fx, &fy);
        POINT p{x - (cx - fx), y - (cy - fy)};
        ClientToScreen(h, &p);
        return MAKELPARAM(p.x, p.y);
    }
    static int frameState(HWND h)
    {
        int state = 0;
        XtVaGetValues(frameOf(h), XoNstate, &state, nullptr);
        return state;
    }
    HWND parent_ = nullptr;
};

TEST_F(DefWindowProcChild, NcCreateBuildsTheClientAreaAndSwallowingItBuildsNothing)
{
    HWND h = makeChild();
    ASSERT_TRUE(h);
    WindowRecord *w = omWindowRecord(h);
    ASSERT_TRUE(w->shellWidget && w->frameWidget && w->canvasWidget);
    EXPECT_TRUE(XoIsBorder(w->shellWidget));
    EXPECT_TRUE(XmIsScrolledWindow(w->frameWidget));
    EXPECT_EQ(omDiagCount(198), 0u);
    EXPECT_FALSE(omMFCIsAutoScrolledWindow(h, nullptr)) << "application-defined scrolling";

    swallowNcCreate = true;
    HWND bare = makeChild();
    ASSERT_TRUE(bare) << "creation goes on without widgets";
    EXPECT_EQ(omWindowRecord(bare)->shellWidget, nullptr);
    EXPECT_EQ(omWindowRecord(bare)->canvasWidget, nullptr);
    EXPECT_EQ(omDiagCount(198), 1u);
    // Without a frame the window answers from its record alone.
    WindowRecord *b = omWindowRecord(bare);
    const struct {
        int x, y, hit;
    } points[] = {
        {0, 5, HTNOWHERE},           {5, 0, HTNOWHERE},          {1, 1, HTCLIENT},
        {b->cx - 1, b->cy - 1, HTCLIENT}, {b->cx, 5, HTNOWHERE}, {5, b->cy, HTNOWHERE},
    };
    for (const auto &p : points)
        EXPECT_EQ(omHitTest(b, p.x, p.y), p.hit) << p.x << "," << p.y << ": edges count outside";
}

TEST_F(DefWindowProcChild, HitCodesFollowTheFrameRegions)
{
    HWND h = makeChild();
    ASSERT_TRUE(h);
    Widget frame = frameOf(h);
    Dimension width = 0, height = 0;
    XtVaGetValues(frame, XmNwidth, &width, XmNheight, &height, nullptr);
    const int W = width, H = height, t = XoBorderThickness(frame), c = XoCaptionHeightOf(frame);
    ASSERT_GT(t, 1);
    ASSERT_GT(c, 8);
    const struct {
        const char *name;
        int x, y, hit;
    } rows[] = {
        {"caption", W / 2, t + c / 2, HTCAPTION},
        {"system menu", t + c / 2 - 1, t + c / 2, HTSYSMENU},
        {"left edge", 1, H / 2, HTLEFT},
        {"right edge", W - 2, H / 2, HTRIGHT},
        {"top edge", W / 2, 1, HTTOP},
        {"bottom edge", W / 2, H - 2, HTBOTTOM},
        {"top-left corner", 1, 1, HTTOPLEFT},
        {"bottom-right corner", W - 2, H - 2, HTBOTTOMRIGHT},
        {"bottom-left corner", 1, H - 2, HTBOTTOMLEFT},
        {"client", W / 2, H / 2, HTCLIENT},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.name);
        EXPECT_EQ(omHitTest(omWindowRecord(h), r.x, r.y), r.hit) << "frame coordinates";
        EXPECT_EQ(DefWindowProcA(h, WM_NCHITTEST, 0, screenFromFrame(h, r.x, r.y)), r.hit)
            << "screen point";
    }
    // A disabled child is all client: its parent decides.
    SetWindowLongA(h, GWL_STYLE, static_cast<LONG>(kFramed | WS_DISABLED));
    EXPECT_EQ(DefWindowProcA(h, WM_NCHITTEST, 0, screenFromFrame(h, W / 2, t + c / 2)), HTCLIENT);
}

TEST_F(DefWindowProcChild, CalcSizeShrinksByTheClientEdge)
{
    const struct {
        const char *name;
        DWORD exStyle;
        LRESULT result;
        int inset;
    } rows[] = {
        {"client edge", WS_EX_CLIENTEDGE, 1, 2},
        {"static edge", WS_EX_STATICEDGE, 1, 1},
        {"both: the client edge wins", WS_EX_CLIENTEDGE | WS_EX_STATICEDGE, 1, 2},
        {"no edge", 0, 0, 0},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.name);
        HWND h = makeChild(r.exStyle);
        ASSERT_TRUE(h);
        RECT rc{10, 20, 110, 220};
        EXPECT_EQ(DefWindowProcA(h, WM_NCCALCSIZE, 0, reinterpret_cast<LPARAM>(&rc)), r.result);
        EXPECT_EQ(rc.left, 10 + r.inset);
        EXPECT_EQ(rc.top, 20 + r.inset);
        EXPECT_EQ(rc.right, 110 - r.inset);
        EXPECT_EQ(rc.bottom, 220 - r.inset);
        // Painting the edge must survive on a frame with and without one.
        EXPECT_EQ(DefWindowProcA(h, WM_NCPAINT, 1, 0), 0);
    }
    // A top-level window's edges are the window manager's.
    HWND top = CreateWindowExA(WS_EX_CLIENTEDGE, childClass(), "top", WS_OVERLAPPEDWINDOW, 0, 0,
                               100, 100, nullptr, nullptr, nullptr, nullptr);
    ASSERT_TRUE(top);
    made_.push_back(top);
    RECT rc{0, 0, 50, 50};
    EXPECT_EQ(DefWindowProcA(top, WM_NCCALCSIZE, 0, reinterpret_cast<LPARAM>(&rc)), 1);
    EXPECT_EQ(rc.right, 50);
}

TEST_F(DefWindowProcChild, SystemCommandsBecomeFrameStates)
{
    HWND h = makeChild(0, kFramed | WS_MINIMIZEBOX | WS_MAXIMIZEBOX);
    ASSERT_TRUE(h);
    const struct {
        const char *name;
        WPARAM command;
        int state;
        DWORD styleBits;
    } steps[] = {
        {"maximise", SC_MAXIMIZE, XoSTATE_MAXIMIZED, WS_MAXIMIZE},
        {"minimise", SC_MINIMIZE, XoSTATE_ICONIC, WS_MINIMIZE},
        {"restoring an icon made from a maximised frame", SC_RESTORE, XoSTATE_MAXIMIZED,
         WS_MAXIMIZE},
        {"restore", SC_RESTORE, XoSTATE_NORMAL, 0},
        {"minimise a normal frame", SC_MINIMIZE, XoSTATE_ICONIC, WS_MINIMIZE},
        {"and restore it", SC_RESTORE, XoSTATE_NORMAL, 0},
        {"SC_MINIMIZE + 2 is no command", SC_MINIMIZE + 2, XoSTATE_NORMAL, 0},
        {"SC_MAXIMIZE + 1 is no command", SC_MAXIMIZE + 1, XoSTATE_NORMAL, 0},
    };
    for (const auto &s : steps) {
        SCOPED_TRACE(s.name);
        EXPECT_EQ(DefWindowProcA(h, WM_SYSCOMMAND, s.command, 0), 0);
        pumpFor(std::chrono::milliseconds(10), winmgmtPump);
        ASSERT_TRUE(IsWindow(h));
        EXPECT_EQ(frameState(h), s.state);
        EXPECT_EQ(omWindowRecord(h)->style & (WS_MINIMIZE | WS_MAXIMIZE), s.styleBits);
    }
}

TEST_F(DefWindowProcChild, NcActivateGivesAnMdiChildTheActiveLook)
{
    HWND h = makeChild();
    ASSERT_TRUE(h);
    WindowRecord *w = omWindowRecord(h);
    auto displayState = [&] {
        int s = -1;
        XtVaGetValues(frameOf(h), XoNdisplayState, &s, nullptr);
        return s;
    };
    const int plainLook = displayState();
    for (BOOL active : {FALSE, TRUE}) {
        EXPECT_EQ(DefWindowProcA(h, WM_NCACTIVATE, active, 0), 0);
        EXPECT_EQ(displayState(), plainLook) << "only MDI children";
    }
    const uint8_t kind = w->kind;
    w->kind = OM_WK_MDICHILD;
    EXPECT_EQ(DefWindowProcA(h, WM_NCACTIVATE, TRUE, 0), 0);
    EXPECT_EQ(displayState(), XoDISPLAY_ACTIVE);
    EXPECT_EQ(DefWindowProcA(h, WM_NCACTIVATE, FALSE, 0), 0);
    EXPECT_EQ(displayState(), XoDISPLAY_INACTIVE);
    w->kind = kind;
}

TEST_F(DefWindowProcChild, KeyboardMoveAndSizeStartOnTheFrame)
{
    HWND h = makeChild();
    ASSERT_TRUE(h);
    EXPECT_EQ(DefWindowProcA(h, WM_SYSCOMMAND, SC_MOVE, 0), 0);
    EXPECT_TRUE(XoGetMoveStatus());
    EXPECT_TRUE(XoGetAcclStatus(frameOf(h))) << "the keyboard mode, not a pointer drag";
    XoEndMoveSize(False);
    EXPECT_FALSE(XoGetMoveStatus());
    EXPECT_EQ(DefWindowProcA(h, WM_SYSCOMMAND, SC_SIZE, 0), 0);
    EXPECT_TRUE(XoGetSizeStatus());
    XoEndMoveSize(False);
}

// The frame's own SC_MOVE at the start of a caption drag must not start
// the keyboard mode, or the release would not end the move.
TEST_F(DefWindowProcChild, ACaptionPressHandedBackStartsAPointerMove)
{
    HWND h = makeChild();
    ASSERT_TRUE(h);
    Widget frame = frameOf(h);
    Dimension width = 0;
    XtVaGetValues(frame, XmNwidth, &width, nullptr);
    const int t = XoBorderThickness(frame), c = XoCaptionHeightOf(frame);
    LPARAM at = screenFromFrame(h, width / 2, t + c / 2);
    EXPECT_EQ(DefWindowProcA(h, WM_NCLBUTTONDOWN, HTCAPTION, at), 0);
    EXPECT_TRUE(XoGetMoveStatus());
    EXPECT_FALSE(XoGetAcclStatus(frame));
    EXPECT_EQ(DefWindowProcA(h, WM_NCLBUTTONUP, HTCAPTION, at), 0);
    EXPECT_FALSE(XoGetMoveStatus()) << "the release ended the drag";
    XoEndMoveSize(False);
}

TEST_F(DefWindowProcChild, TextIsTheFrameTitle)
{
    HWND h = makeChild();
    ASSERT_TRUE(h);
    EXPECT_EQ(DefWindowProcA(h, WM_SETTEXT, 0, reinterpret_cast<LPARAM>("one\r\ntwo")), 0);
    char *title = XoBorderGetTitleText(frameOf(h));
    EXPECT_STREQ(title, "one\ntwo");
    XtFree(title);
    char out[32] = {};
    EXPECT_EQ(DefWindowProcA(h, WM_GETTEXT, sizeof out, reinterpret_cast<LPARAM>(out)), 7);
    EXPECT_STREQ(out, "one\ntwo");
    EXPECT_EQ(DefWindowProcA(h, WM_GETTEXTLENGTH, 0, 0), 7);
}

TEST_F(DefWindowProcChild, ChildMessagesGoUpToTheParent)
{
    WNDCLASSA wc{};
    wc.lpfnWndProc = recordingParentProc;
    wc.lpszClassName = "DefWndRecordingParent";
    RegisterClassA(&wc);
    parent_ = CreateWindowExA(0, wc.lpszClassName, "p", WS_OVERLAPPEDWINDOW, 40, 40, 300, 240,
                              nullptr, nullptr, nullptr, nullptr);
    ASSERT_TRUE(parent_);
    made_.push_back(parent_);
    HWND h = makeChild();
    ASSERT_TRUE(h);
    WindowRecord *w = omWindowRecord(h);
    const struct {
        const char *name;
        UINT msg;
        WPARAM wParam;
        LRESULT result;
        WPARAM parentWParam;  // what the parent hears
    } rows[] = {
        {"mouse activation answers what the parent answers", WM_MOUSEACTIVATE, 7,
         MA_NOACTIVATEANDEAT, 7},
        {"parent notification", WM_PARENTNOTIFY, WM_LBUTTONDOWN, 0, WM_LBUTTONDOWN},
        {"context menu names the child", WM_CONTEXTMENU, 0, 0, reinterpret_cast<WPARAM>(h)},
        {"help with a fresh HELPINFO", WM_HELP, 0, 1, 0},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.name);
        parentHeard.clear();
        EXPECT_EQ(DefWindowProcA(h, r.msg, r.wParam, 0), r.result);
        ASSERT_EQ(parentHeard.size(), 1u);
        EXPECT_EQ(parentHeard[0].msg, r.msg);
        EXPECT_EQ(parentHeard[0].wParam, r.parentWParam);
    }
    parentHeard.clear();
    DefWindowProcA(h, WM_HELP, 0, 0);
    ASSERT_EQ(parentHeard.size(), 1u);
    const HELPINFO &info = parentHeard[0].help;
    EXPECT_EQ(info.cbSize, sizeof(HELPINFO));
    EXPECT_EQ(info.iContextType, HELPINFO_WINDOW);
    EXPECT_EQ(info.iCtrlId, 1);
    EXPECT_EQ(info.hItemHandle, static_cast<HANDLE>(h));
    POINT origin{w->x, w->y};
    ClientToScreen(parent_, &origin);
    EXPECT_EQ(info.MousePos.x, origin.x);
    EXPECT_EQ(info.MousePos.y, origin.y);

    // Only a combo box passes its list's and edit's notifications on.
    parentHeard.clear();
    DefWindowProcA(h, WM_COMMAND, MAKEWPARAM(1, 1), 0);
    EXPECT_TRUE(parentHeard.empty());
    const uint8_t plain = w->kind;
    w->kind = OM_WK_COMBOBOX;
    for (unsigned code : {1u, 8u, 9u, 10u, 11u})
        DefWindowProcA(h, WM_COMMAND, MAKEWPARAM(1, code), 0);
    w->kind = plain;
    ASSERT_EQ(parentHeard.size(), 3u) << "codes 1 to 8 and 10";
    EXPECT_EQ(HIWORD(parentHeard[2].wParam), 10u);
    // omIsClientChild finds the MDI client above an MDI child.
    EXPECT_EQ(omIsClientChild(w), nullptr);
    w->kind = OM_WK_MDICHILD;
    EXPECT_EQ(omIsClientChild(w), omWindowRecord(parent_));
    w->kind = plain;
}

TEST_F(DefWindowProcChild, SetRedrawReachesEveryDescendantUnlessChildrenAreClipped)
{
    HWND child = makeChild();
    ASSERT_TRUE(child);
    HWND grandchild = CreateWindowExA(0, childClass(), "g", WS_CHILD | WS_VISIBLE, 5, 5, 40, 30,
                                      child, reinterpret_cast<HMENU>(2), nullptr, nullptr);
    ASSERT_TRUE(grandchild);
    made_.insert(made_.begin(), grandchild);
    WindowRecord *c = omWindowRecord(child), *g = omWindowRecord(grandchild);
    // Something pending to paint.
    XRectangle pending{0, 0, 10, 10};
    XUnionRectWithRegion(&pending, g->updateRegion, g->updateRegion);
    ASSERT_FALSE(XEmptyRegion(g->updateRegion));

    EXPECT_EQ(DefWindowProcA(parent_, WM_SETREDRAW, FALSE, 0), 0);
    EXPECT_FALSE(omWindowRecord(parent_)->redraw);
    EXPECT_FALSE(c->redraw);
    EXPECT_FALSE(g->redraw) << "passed down through the child's own default procedure";
    EXPECT_TRUE(XEmptyRegion(g->updateRegion)) << "what was pending is dropped";
    EXPECT_EQ(DefWindowProcA(parent_, WM_SETREDRAW, TRUE, 0), 0);
    EXPECT_TRUE(c->redraw && g->redraw);

    // A parent that clips its children leaves them alone.
    SetWindowLongA(child, GWL_STYLE, static_cast<LONG>(c->style | WS_CLIPCHILDREN));
    EXPECT_EQ(DefWindowProcA(child, WM_SETREDRAW, FALSE, 0), 0);
    EXPECT_FALSE(c->redraw);
    EXPECT_TRUE(g->redraw);
}

TEST_F(DefWindowProcChild, PositionChangesBecomeMoveAndSizeMessages)
{
    static std::vector<UINT> heard;
    WNDCLASSA wc{};
    wc.lpfnWndProc = [](HWND h, UINT msg, WPARAM wParam, LPARAM lParam) -> LRESULT {
        if (msg == WM_MOVE || msg == WM_SIZE)
            heard.push_back(msg);
        return DefWindowProcA(h, msg, wParam, lParam);
    };
    wc.lpszClassName = "DefWndPosChanged";
    RegisterClassA(&wc);
    HWND h = CreateWindowExA(0, wc.lpszClassName, "c", kFramed, 10, 10, 120, 90, parent_,
                             reinterpret_cast<HMENU>(3), nullptr, nullptr);
    ASSERT_TRUE(h);
    made_.insert(made_.begin(), h);
    const struct {
        const char *name;
        UINT flags;
        std::vector<UINT> messages;
    } rows[] = {
        {"moved and sized", 0, {WM_MOVE, WM_SIZE}},
        {"sized only", SWP_NOMOVE, {WM_SIZE}},
        {"moved only", SWP_NOSIZE, {WM_MOVE}},
        {"neither", SWP_NOMOVE | SWP_NOSIZE, {}},
        {"the client neither", SWP_NOCLIENTMOVE | SWP_NOCLIENTSIZE, {}},
        {"a new frame reports the size", SWP_NOMOVE | SWP_NOSIZE | SWP_FRAMECHANGED, {WM_SIZE}},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.name);
        heard.clear();
        WINDOWPOS pos{};
        pos.hwnd = h;
        pos.flags = r.flags;
        EXPECT_EQ(DefWindowProcA(h, WM_WINDOWPOSCHANGED, 0, reinterpret_cast<LPARAM>(&pos)), 0);
        EXPECT_EQ(heard, r.messages);
    }
}

}  // namespace
}  // namespace om::test
