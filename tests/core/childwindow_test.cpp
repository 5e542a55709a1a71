// Child windows: the widgets, geometry and creation messages of children
// of several styles, the refusals, the frame's reports coming back as
// messages, and a screenshot of the frames as drawn.
#include "corefixture.h"

#include "harness/screenshot.h"

#include "kernel/omdiag.h"
#include "kernel/omdisplay.h"
#include "kernel/omwidgetmap.h"
#include "widgets/XoBorder.h"
#include "widgets/xoupcalls.h"

#include <Xm/DrawingA.h>
#include <Xm/ScrolledW.h>
#include <Xm/Xm.h>
#include <X11/IntrinsicP.h>

#include <algorithm>
#include <chrono>
#include <cstring>

namespace {

using om::test::CoreTest;
using om::test::corePump;
using om::test::received;

struct ChildCase {
    const char *name;
    DWORD style;
    DWORD exStyle;
    int x, y, cx, cy;
    // What the record holds afterwards.
    int wantX, wantY, wantCx, wantCy;
    unsigned decorations;
    int borderWidth;  // the frame's X border
    bool parentNotify;
};

// The parent's client area is 400 x 300.
const ChildCase kCases[] = {
    {"plain", WS_CHILD | WS_VISIBLE, 0, 10, 20, 100, 60, 10, 20, 100, 60, 0, 0, true},
    {"border", WS_CHILD | WS_VISIBLE | WS_BORDER, 0, 10, 20, 100, 60, 10, 20, 100, 60, 0, 1, true},
    {"caption", WS_CHILD | WS_VISIBLE | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME, 0, 5, 5, 150, 100,
     5, 5, 150, 100, 2 | 4 | 8 | 16, 0, true},
    {"clientedge", WS_CHILD | WS_VISIBLE, WS_EX_CLIENTEDGE, 0, 0, 50, 50, 0, 0, 50, 50, 0, 0, true},
    {"default", WS_CHILD | WS_VISIBLE, 0, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT,
     CW_USEDEFAULT, 1, 1, 300, 300, 0, 0, true},
    {"zerothick", WS_CHILD | WS_VISIBLE | WS_THICKFRAME, 0, 0, 0, 0, 0, 0, 0, 400, 300, 4, 0, true},
    {"zeroplain", WS_CHILD | WS_VISIBLE, 0, 3, 4, 0, 0, 3, 4, 0, 0, 0, 0, true},
    {"noparentnotify", WS_CHILD, WS_EX_NOPARENTNOTIFY, 1, 2, 30, 40, 1, 2, 30, 40, 0, 0, false},
};

class Children : public CoreTest {
protected:
    void SetUp() override
    {
        CoreTest::SetUp();
        parent_ = CreateWindowExA(0, om::test::testClass(), "Parent", WS_OVERLAPPEDWINDOW, 40, 40,
                                  400, 300, nullptr, nullptr, nullptr, nullptr);
        ASSERT_NE(parent_, nullptr);
        // The canvas of a top-level window takes its size from the shell:
        // make it exactly 400 x 300 for the geometry defaults.
        WindowRecord *p = omWindowRecord(parent_);
        XtResizeWidget(p->canvasWidget, 400, 300, 0);
        received().clear();
    }
    void TearDown() override
    {
        if (IsWindow(parent_))
            DestroyWindow(parent_);
        corePump();
        CoreTest::TearDown();
    }

    HWND child(const ChildCase &c, UINT_PTR id = 7)
    {
        return CreateWindowExA(c.exStyle, om::test::testClass(), c.name, c.style, c.x, c.y, c.cx,
                               c.cy, parent_, reinterpret_cast<HMENU>(id), nullptr, nullptr);
    }

    HWND parent_ = nullptr;
};

TEST_F(Children, StylesGiveTheirWidgetsGeometryAndMessages)
{
    for (const ChildCase &c : kCases) {
        SCOPED_TRACE(c.name);
        received().clear();
        HWND h = child(c);
        ASSERT_NE(h, nullptr);
        WindowRecord *w = omWindowRecord(h);
        EXPECT_EQ(GetParent(h), parent_);
        EXPECT_EQ(w->x, c.wantX);
        EXPECT_EQ(w->y, c.wantY);
        EXPECT_EQ(w->cx, c.wantCx);
        EXPECT_EQ(w->cy, c.wantCy);

        // Frame, scrolled window and drawing area, inside the parent's canvas.
        ASSERT_NE(w->shellWidget, nullptr);
        EXPECT_TRUE(XoIsBorder(w->shellWidget));
        EXPECT_STREQ(XtName(w->shellWidget), "ChildWindow");
        EXPECT_EQ(XtParent(w->shellWidget), omWindowRecord(parent_)->canvasWidget);
        ASSERT_NE(w->frameWidget, nullptr);
        EXPECT_TRUE(XmIsScrolledWindow(w->frameWidget));
        EXPECT_STREQ(XtName(w->frameWidget), "ChildScrolledWindow");
        ASSERT_NE(w->canvasWidget, nullptr);
        EXPECT_TRUE(XmIsDrawingArea(w->canvasWidget));
        EXPECT_STREQ(XtName(w->canvasWidget), "CoreTestWindow");
        for (Widget widget : {w->shellWidget, w->frameWidget, w->canvasWidget})
            EXPECT_EQ(omWidgetTohWnd(widget), h);

        Widget frame = w->shellWidget;
        EXPECT_EQ(frame->core.x, c.wantX);
        EXPECT_EQ(frame->core.y, c.wantY);
        EXPECT_EQ(frame->core.width, std::max(c.wantCx, 1));
        EXPECT_EQ(frame->core.height, std::max(c.wantCy, 1));
        EXPECT_EQ(frame->core.border_width, c.borderWidth);
        // A client edge takes two pixels on every side of the client area.
        if (c.exStyle & WS_EX_CLIENTEDGE) {
            EXPECT_EQ(w->canvasWidget->core.width, frame->core.width - 4);
            EXPECT_EQ(w->canvasWidget->core.height, frame->core.height - 4);
        }
        int decorations = -1;
        XtVaGetValues(frame, XoNdecorations, &decorations, nullptr);
        EXPECT_EQ(decorations, static_cast<int>(c.decorations));

        // The creation messages in their order; WM_SIZE carries the
        // canvas size (or the record's when the window has none).
        std::vector<UINT> mine = om::test::receivedMessages(h);
        auto at = [&](UINT m) {
            return std::find(mine.begin(), mine.end(), m) - mine.begin();
        };
        ASSERT_LT(at(WM_SIZE), static_cast<long>(mine.size()));
        EXPECT_LT(at(WM_NCCREATE), at(WM_CREATE));
        EXPECT_LT(at(WM_CREATE), at(WM_MOVE));
        EXPECT_LT(at(WM_MOVE), at(WM_SIZE));
        for (const auto &r : received()) {
            if (r.hwnd == h && r.msg == WM_SIZE) {
                int cw = w->canvasWidget->core.width, ch = w->canvasWidget->core.height;
                if (!c.wantCx || !c.wantCy) {
                    cw = c.wantCx;
                    ch = c.wantCy;
                }
                EXPECT_EQ(r.wParam, static_cast<WPARAM>(SIZE_RESTORED));
                EXPECT_EQ(LOWORD(r.lParam), cw);
                EXPECT_EQ(HIWORD(r.lParam), ch);
            }
        }
        int notified = 0;
        for (const auto &r : received())
            if (r.hwnd == parent_ && r.msg == WM_PARENTNOTIFY) {
                ++notified;
                EXPECT_EQ(LOWORD(r.wParam), WM_CREATE);
                EXPECT_EQ(HIWORD(r.wParam), 7);
                EXPECT_EQ(reinterpret_cast<HWND>(r.lParam), h);
            }
        EXPECT_EQ(notified, c.parentNotify ? 1 : 0);
        EXPECT_TRUE(DestroyWindow(h));
    }
}

TEST_F(Children, ClientAndWindowRectanglesComeFromTheLaidOutWidgets)
{
    HWND h = child(kCases[2]);  // caption, system menu, thick frame
    ASSERT_NE(h, nullptr);
    corePump();
    WindowRecord *w = omWindowRecord(h);
    RECT client{}, window{}, parentClient{};
    ASSERT_TRUE(GetClientRect(h, &client));
    EXPECT_EQ(client.right, w->canvasWidget->core.width);
    EXPECT_EQ(client.bottom, w->canvasWidget->core.height);
    // Frame and caption take their share: the client is smaller than the window.
    EXPECT_LT(client.right, 150);
    EXPECT_LT(client.bottom, 100 - XoCaptionHeightOf(w->shellWidget) + 1);
    ASSERT_TRUE(GetWindowRect(h, &window));
    POINT origin{0, 0};
    ClientToScreen(parent_, &origin);
    EXPECT_EQ(window.left - origin.x, 5);
    EXPECT_EQ(window.top - origin.y, 5);
    EXPECT_EQ(window.right - window.left, 150);
    EXPECT_EQ(window.bottom - window.top, 100);
    ASSERT_TRUE(GetClientRect(parent_, &parentClient));
}

LRESULT CALLBACK swallowNcCreate(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    if (msg == WM_NCCREATE)
        return TRUE;
    return DefWindowProcA(hwnd, msg, wParam, lParam);
}

TEST_F(Children, RefusalsAndASwallowedNcCreate)
{
    // A procedure that keeps WM_NCCREATE from the default one: the window
    // lives, warned about, without widgets.
    WNDCLASSA wc{};
    wc.lpfnWndProc = swallowNcCreate;
    wc.lpszClassName = "SwallowNcCreate";
    ASSERT_TRUE(RegisterClassA(&wc));
    HWND h = CreateWindowExA(0, "SwallowNcCreate", "", WS_CHILD | WS_VISIBLE, 0, 0, 20, 20,
                             parent_, nullptr, nullptr, nullptr);
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(omDiagCount(static_cast<int>(OmDiag::NcCreateNotPassed)), 1u);
    EXPECT_EQ(omWindowRecord(h)->shellWidget, nullptr);
    EXPECT_EQ(omWindowRecord(h)->canvasWidget, nullptr);
    DestroyWindow(h);
    UnregisterClassA("SwallowNcCreate", nullptr);

    // Answers that refuse creation.
    om::test::g_ncCreateAnswer = FALSE;
    EXPECT_EQ(child(kCases[0]), nullptr);
    om::test::g_ncCreateAnswer = TRUE;
    om::test::g_createAnswer = -1;
    EXPECT_EQ(child(kCases[0]), nullptr);
    om::test::g_createAnswer = 0;

    // A Static window has no children.
    HWND stat = CreateWindowExA(0, "STATIC", "s", WS_CHILD | WS_VISIBLE, 0, 0, 50, 20, parent_,
                                nullptr, nullptr, nullptr);
    ASSERT_NE(stat, nullptr);
    omWindowRecord(stat)->kind = OM_WK_STATIC;
    EXPECT_EQ(CreateWindowExA(0, om::test::testClass(), "", WS_CHILD, 0, 0, 5, 5, stat, nullptr,
                              nullptr, nullptr),
              nullptr);
    DestroyWindow(stat);
}

// The frame's upcalls: the pointer-drag start, the steps with their
// rectangle in screen coordinates (changed by the program), and the
// activate callback's reasons.
RECT g_clampTo{};
LRESULT CALLBACK clampingProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    received().push_back({hwnd, msg, wParam, lParam});
    if (msg == WM_MOVING || msg == WM_SIZING) {
        auto *r = reinterpret_cast<RECT *>(lParam);
        received().back().lParam = r->left | (r->top << 16);
        if (g_clampTo.right) {
            *r = g_clampTo;
            return TRUE;
        }
    }
    return DefWindowProcA(hwnd, msg, wParam, lParam);
}

TEST_F(Children, FrameReportsBecomeMessages)
{
    WNDCLASSA wc{};
    wc.lpfnWndProc = clampingProc;
    wc.lpszClassName = "ClampingChild";
    ASSERT_TRUE(RegisterClassA(&wc));
    HWND h = CreateWindowExA(0, "ClampingChild", "c",
                             WS_CHILD | WS_VISIBLE | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME, 30, 40,
                             120, 90, parent_, nullptr, nullptr, nullptr);
    ASSERT_NE(h, nullptr);
    Widget frame = omWindowRecord(h)->shellWidget;
    POINT origin{0, 0};
    ClientToScreen(parent_, &origin);

    // The upcalls the frame was given at start-up reach this window.
    XoUpcalls up{};
    XoGetUpcalls(&up);
    ASSERT_TRUE(up.omSendWM_MOVING && up.omSendWM_SIZING && up.omSendSC_MOVE);
    received().clear();
    up.omSendSC_MOVE(frame, 35, 45);
    ASSERT_FALSE(received().empty());
    EXPECT_EQ(received().back().msg, WM_SYSCOMMAND);
    EXPECT_EQ(received().back().wParam, static_cast<WPARAM>(SC_MOVE));
    EXPECT_EQ(received().back().lParam, MAKELPARAM(35, 45));
    EXPECT_EQ(omFrameTrackingPointer(), 0);

    XoRect rect{50, 60, 120, 90};
    g_clampTo = {};
    up.omSendWM_MOVING(frame, &rect);
    EXPECT_EQ(received().back().msg, WM_MOVING);
    EXPECT_EQ(received().back().lParam, (50 + origin.x) | ((60 + origin.y) << 16));
    EXPECT_EQ(rect.x, 50);
    EXPECT_EQ(rect.width, 120);
    // A handler that changes the rectangle changes where the frame goes.
    g_clampTo = {origin.x + 7, origin.y + 8, origin.x + 107, origin.y + 88};
    up.omSendWM_SIZING(frame, &rect, XoEDGE_BOTTOMRIGHT);
    EXPECT_EQ(received().back().msg, WM_SIZING);
    EXPECT_EQ(received().back().wParam, static_cast<WPARAM>(WMSZ_BOTTOMRIGHT));
    EXPECT_EQ(rect.x, 7);
    EXPECT_EQ(rect.y, 8);
    EXPECT_EQ(rect.width, 100);
    EXPECT_EQ(rect.height, 80);
    g_clampTo = {};

    // activateCallback reasons.
    struct {
        int reason;
        UINT msg;
        WPARAM wParam;
    } const reasons[] = {
        {XoCR_MINIMIZE, WM_SYSCOMMAND, SC_MINIMIZE}, {XoCR_RESTORE, WM_SYSCOMMAND, SC_RESTORE},
        {XoCR_NEXT_WINDOW, WM_SYSCOMMAND, SC_NEXTWINDOW},
        {XoCR_PREV_WINDOW, WM_SYSCOMMAND, SC_PREVWINDOW},
        {XoCR_MOUSE_MENU, WM_SYSCOMMAND, SC_MOUSEMENU}, {XoCR_ACTIVATE, WM_CHILDACTIVATE, 0},
    };
    for (const auto &r : reasons) {
        SCOPED_TRACE(r.reason);
        received().clear();
        XoBorderCallbackStruct data{};
        data.reason = r.reason;
        XtCallCallbacks(frame, XoNactivateCallback, &data);
        bool seen = false;
        for (const auto &m : received())
            if (m.hwnd == h && m.msg == r.msg && m.wParam == r.wParam)
                seen = true;
        EXPECT_TRUE(seen);
    }
    // Close: the frame is told not to act itself, the window gets WM_CLOSE
    // and the default procedure destroys it.
    XoBorderCallbackStruct close{};
    close.reason = XoCR_CLOSE;
    XtCallCallbacks(frame, XoNactivateCallback, &close);
    EXPECT_FALSE(IsWindow(h));
    UnregisterClassA("ClampingChild", nullptr);
}

TEST_F(Children, AChildOfAHiddenParentIsValidatedWithoutPainting)
{
    HWND h = child(kCases[1]);
    ASSERT_NE(h, nullptr);
    received().clear();
    InvalidateRect(h, nullptr, TRUE);
    MSG msg;
    for (int i = 0; i < 20; ++i) {
        corePump();
        while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageA(&msg);
    }
    for (UINT m : om::test::receivedMessages(h))
        EXPECT_NE(m, static_cast<UINT>(WM_PAINT));
    RECT r{1, 1, 1, 1};
    EXPECT_FALSE(GetUpdateRect(h, &r, FALSE));
}

TEST_F(Children, ScreenshotShowsCaptionsBordersAndEdges)
{
    ShowWindow(parent_, SW_SHOWNORMAL);
    const struct {
        DWORD style, exStyle;
        int x, y, cx, cy;
        const char *title;
    } kids[] = {
        {WS_CHILD | WS_VISIBLE | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_MINIMIZEBOX |
             WS_MAXIMIZEBOX,
         0, 10, 10, 180, 120, "Caption"},
        {WS_CHILD | WS_VISIBLE | WS_BORDER, 0, 210, 10, 80, 60, "Border"},
        {WS_CHILD | WS_VISIBLE, WS_EX_CLIENTEDGE, 210, 90, 80, 60, "Edge"},
        {WS_CHILD | WS_VISIBLE | WS_CAPTION | WS_SYSMENU, 0, 20, 150, 160, 80, "Dialog frame"},
    };
    for (const auto &k : kids)
        ASSERT_NE(CreateWindowExA(k.exStyle, om::test::testClass(), k.title, k.style, k.x, k.y,
                                  k.cx, k.cy, parent_, nullptr, nullptr, nullptr),
                  nullptr);
    Window canvas = XtWindow(omWindowRecord(parent_)->canvasWidget);
    Display *dpy = omDisplay;
    ASSERT_TRUE(om::test::pumpUntil(
        [&] {
            XWindowAttributes a{};
            XGetWindowAttributes(dpy, canvas, &a);
            return a.map_state == IsViewable;
        },
        std::chrono::seconds(5), om::test::corePump, "parent canvas viewable"));
    // The frames' exposures post WM_NCPAINT: the client edge is drawn when
    // the loop hands it out.
    for (int i = 0; i < 10; ++i) {
        corePump();
        MSG m;
        while (PeekMessageA(&m, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageA(&m);
    }
    std::string path;
    ASSERT_TRUE(om::test::saveWindowPng(dpy, canvas, om::test::testArtifactName(), &path));
    // The caption bar of the first child is drawn in a caption colour.
    uint32_t caption = om::test::pixelAt(dpy, canvas, 10 + 60, 10 + 10);
    EXPECT_NE(caption, om::test::pixelAt(dpy, canvas, 5, 5));
    // The client edge: dark on the top-left outer line, light on the
    // bottom-right one.
    uint32_t topLeft = om::test::pixelAt(dpy, canvas, 210 + 20, 90);
    uint32_t bottomRight = om::test::pixelAt(dpy, canvas, 210 + 20, 90 + 59);
    EXPECT_NE(topLeft, bottomRight);
}

}  // namespace

namespace {

TEST_F(Children, StyleChangesReachTheFrame)
{
    HWND h = child(kCases[0]);
    ASSERT_NE(h, nullptr);
    WindowRecord *w = omWindowRecord(h);
    Widget frame = w->shellWidget;
    auto decorations = [&] {
        int d = -1;
        XtVaGetValues(frame, XoNdecorations, &d, nullptr);
        return d;
    };
    EXPECT_EQ(decorations(), 0);
    SetWindowLongA(h, GWL_STYLE, WS_CHILD | WS_VISIBLE | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME);
    EXPECT_EQ(decorations(), 2 | 4 | 8 | 16);
    SetWindowLongA(h, GWL_STYLE, WS_CHILD | WS_VISIBLE | WS_BORDER);
    EXPECT_EQ(decorations(), 0);
    EXPECT_EQ(frame->core.border_width, 1);
    SetWindowLongA(h, GWL_STYLE, WS_CHILD | WS_VISIBLE | WS_MAXIMIZE);
    int state = 0;
    XtVaGetValues(frame, XoNstate, &state, nullptr);
    EXPECT_EQ(state, XoSTATE_MAXIMIZED);
    EXPECT_EQ(frame->core.border_width, 0);
    // The geometry the frame had is kept through the change.
    SetWindowLongA(h, GWL_STYLE, WS_CHILD | WS_VISIBLE);
    XtVaGetValues(frame, XoNstate, &state, nullptr);
    EXPECT_EQ(state, XoSTATE_NORMAL);
    EXPECT_EQ(frame->core.x, 10);
    EXPECT_EQ(frame->core.width, 100);
}

TEST_F(Children, DefaultReparentProcedureDropsAndRebuildsTheWidgets)
{
    HWND h = child(kCases[2]);
    ASSERT_NE(h, nullptr);
    WindowRecord *w = omWindowRecord(h);
    ASSERT_EQ(w->windowClass->reparentProc, omDefReparentProc);
    EXPECT_EQ(w->windowClass->reparentProc(h, 1), 1);
    EXPECT_EQ(w->shellWidget, nullptr);
    EXPECT_EQ(w->canvasWidget, nullptr);
    received().clear();
    EXPECT_EQ(w->windowClass->reparentProc(h, 0), 1);
    ASSERT_NE(w->shellWidget, nullptr);
    EXPECT_TRUE(XoIsBorder(w->shellWidget));
    EXPECT_EQ(omWidgetTohWnd(w->canvasWidget), h);
    // The cache's rebuild goes to the creation procedure, not the program.
    for (const auto &r : received())
        EXPECT_FALSE(r.hwnd == h && r.msg == WM_NCCREATE);
}

}  // namespace
