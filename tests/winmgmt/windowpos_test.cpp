// SetWindowPos, MoveWindow and the deferred batch: the widgets' geometry and
// the record afterwards, the WINDOWPOS the window procedure sees, the
// no-change case, the stacking lists against the X stacking order, and a
// batch that outgrows its announced size.
#include "winmgmt_fixture.h"

#include "kernel/omdiag.h"
#include "winmgmt/ompos.h"
#include "widgets/XoBorder.h"

#include <X11/IntrinsicP.h>

#include <algorithm>

namespace om::test {
namespace {

struct Seen {
    HWND hwnd;
    UINT msg;
    WPARAM wParam;
    WINDOWPOS pos;  // for the two position messages
};
std::vector<Seen> g_seen;

LRESULT CALLBACK recordingProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    if (msg == WM_WINDOWPOSCHANGING || msg == WM_WINDOWPOSCHANGED || msg == WM_SHOWWINDOW ||
        msg == WM_SIZE || msg == WM_MOVE) {
        Seen s{hwnd, msg, wParam, {}};
        if (msg == WM_WINDOWPOSCHANGING || msg == WM_WINDOWPOSCHANGED)
            s.pos = *reinterpret_cast<WINDOWPOS *>(lParam);
        g_seen.push_back(s);
    }
    return DefWindowProcA(hwnd, msg, wParam, lParam);
}

const char *recordingClass()
{
    static const char *name = [] {
        WNDCLASSA wc{};
        wc.lpfnWndProc = recordingProc;
        wc.lpszClassName = "WindowPosTest";
        wc.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
        RegisterClassA(&wc);
        return "WindowPosTest";
    }();
    return name;
}

class WindowPos : public WinmgmtTest {
protected:
    void TearDown() override
    {
        WinmgmtTest::TearDown();
        g_seen.clear();
    }
    HWND make(DWORD style, int x, int y, int cx, int cy, HWND parent = nullptr, int id = 0)
    {
        HWND h = CreateWindowExA(0, recordingClass(), "pos", style, x, y, cx, cy, parent,
                                 reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), nullptr, nullptr);
        if (h && !parent)
            made_.push_back(h);
        return h;
    }
    // A shown top-level window whose first configuration has come and gone.
    HWND shownTopLevel(DWORD style, int x, int y, int cx, int cy)
    {
        HWND h = make(style | WS_VISIBLE, x, y, cx, cy);
        if (!h)
            return nullptr;
        Widget shell = omWindowRecord(h)->shellWidget;
        OM_PUMP_UNTIL(XtIsRealized(shell) && viewable(XtWindow(shell)), 3000, winmgmtPump);
        pumpFor(std::chrono::milliseconds(30), winmgmtPump);
        g_seen.clear();
        return h;
    }
    static std::vector<Seen> seen(HWND h, UINT msg)
    {
        std::vector<Seen> out;
        for (const Seen &s : g_seen)
            if (s.hwnd == h && s.msg == msg)
                out.push_back(s);
        return out;
    }
    static Widget shellOf(HWND h) { return omWindowRecord(h)->shellWidget; }
};

constexpr DWORD kOverlapped = WS_OVERLAPPEDWINDOW;
constexpr DWORD kPopup = WS_POPUP | WS_CAPTION | WS_THICKFRAME;

TEST_F(WindowPos, TopLevelGeometryRecordAndNotification)
{
    const int frame = omResources.frameWidth, caption = omResources.captionHeight;
    struct Case {
        const char *name;
        DWORD style;
        UINT flags;
        int x, y, cx, cy;
        RECT record;        // left, top, width, height afterwards
        int shellW, shellH; // the shell's size afterwards (0: not sized)
        bool changed;
        UINT clientFlags;   // SWP_NOCLIENTMOVE / SWP_NOCLIENTSIZE in WM_WINDOWPOSCHANGED
    } cases[] = {
        {"move only", kOverlapped, SWP_NOSIZE | SWP_NOZORDER, 70, 90, 1, 1, {70, 90, 300, 200},
         0, 0, true, SWP_NOCLIENTSIZE},
        {"size only", kOverlapped, SWP_NOMOVE | SWP_NOZORDER, 9, 9, 260, 180, {40, 50, 260, 180},
         260 - 2 * frame, 180 - 2 * frame - caption, true, SWP_NOCLIENTMOVE},
        {"both", kOverlapped, SWP_NOZORDER, 60, 30, 240, 170, {60, 30, 240, 170},
         240 - 2 * frame, 170 - 2 * frame - caption, true, 0},
        {"negative size is none, the shell keeps a pixel", kOverlapped, SWP_NOMOVE | SWP_NOZORDER,
         0, 0, -5, -7, {40, 50, 0, 0}, 1, 1, true, SWP_NOCLIENTMOVE},
        {"pop-up: frame and caption come off", kPopup, SWP_NOZORDER, 80, 80, 220, 160,
         {80, 80, 220, 160}, 220 - 2 * frame, 160 - 2 * frame - caption, true, 0},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        HWND h = shownTopLevel(c.style, 40, 50, 300, 200);
        ASSERT_TRUE(h);
        WindowRecord *w = omWindowRecord(h);
        // The record may have followed the server's report of the show.
        w->x = 40;
        w->y = 50;
        ASSERT_TRUE(SetWindowPos(h, nullptr, c.x, c.y, c.cx, c.cy, c.flags));
        EXPECT_EQ(w->x, c.record.left);
        EXPECT_EQ(w->y, c.record.top);
        EXPECT_EQ(w->cx, c.record.right);
        EXPECT_EQ(w->cy, c.record.bottom);
        if (c.shellW) {
            EXPECT_EQ(shellOf(h)->core.width, c.shellW);
            EXPECT_EQ(shellOf(h)->core.height, c.shellH);
        }
        if (!(c.flags & SWP_NOMOVE)) {
            EXPECT_EQ(shellOf(h)->core.x, c.x);
            EXPECT_EQ(shellOf(h)->core.y, c.y);
        }
        ASSERT_EQ(seen(h, WM_WINDOWPOSCHANGING).size(), 1u);
        auto changed = seen(h, WM_WINDOWPOSCHANGED);
        ASSERT_EQ(changed.size(), c.changed ? 1u : 0u);
        if (c.changed) {
            EXPECT_EQ(changed[0].pos.flags & (SWP_NOCLIENTMOVE | SWP_NOCLIENTSIZE), c.clientFlags);
            EXPECT_EQ(changed[0].pos.x, c.record.left);
            EXPECT_EQ(changed[0].pos.cx, c.record.right);
        }
        DestroyWindow(h);
        g_seen.clear();
    }
}

TEST_F(WindowPos, NothingToChangeSendsChangingButNotChanged)
{
    HWND h = shownTopLevel(kOverlapped, 40, 50, 300, 200);
    ASSERT_TRUE(h);
    ASSERT_TRUE(SetWindowPos(h, nullptr, 5, 5, 5, 5, SWP_NOSIZE | SWP_NOMOVE | SWP_NOZORDER));
    EXPECT_EQ(seen(h, WM_WINDOWPOSCHANGING).size(), 1u);
    EXPECT_TRUE(seen(h, WM_WINDOWPOSCHANGED).empty());
}

TEST_F(WindowPos, ShowAndHideFlagsChangeVisibility)
{
    HWND h = make(kOverlapped, 30, 30, 200, 150);
    ASSERT_TRUE(h);
    ASSERT_TRUE(SetWindowPos(h, nullptr, 0, 0, 0, 0,
                             SWP_NOSIZE | SWP_NOMOVE | SWP_NOZORDER | SWP_SHOWWINDOW));
    EXPECT_TRUE(IsWindowVisible(h));
    EXPECT_EQ(seen(h, WM_WINDOWPOSCHANGED).size(), 1u) << "a show is a change";
    Widget shell = shellOf(h);
    EXPECT_TRUE(OM_PUMP_UNTIL(viewable(XtWindow(shell)), 3000, winmgmtPump));
    g_seen.clear();
    ASSERT_TRUE(SetWindowPos(h, nullptr, 0, 0, 0, 0,
                             SWP_NOSIZE | SWP_NOMOVE | SWP_NOZORDER | SWP_HIDEWINDOW));
    EXPECT_FALSE(IsWindowVisible(h));
    EXPECT_EQ(seen(h, WM_WINDOWPOSCHANGED).size(), 1u);
    EXPECT_TRUE(OM_PUMP_UNTIL(!viewable(XtWindow(shell)), 3000, winmgmtPump));
}

TEST_F(WindowPos, UnconfiguredWindowAskedForTheOriginGoesOnePixelOff)
{
    HWND h = make(kOverlapped, 30, 30, 200, 150);
    ASSERT_TRUE(h);
    omWindowRecord(h)->configured = false;
    ASSERT_TRUE(SetWindowPos(h, nullptr, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER));
    EXPECT_EQ(shellOf(h)->core.x, -1);
    EXPECT_EQ(shellOf(h)->core.y, -1);
    EXPECT_EQ(omWindowRecord(h)->x, 0);
    EXPECT_EQ(omWindowRecord(h)->y, 0);
}

TEST_F(WindowPos, MoveWindowSizes)
{
    const int halfW = omResources.windowSizeWidth / 2, halfH = omResources.windowSizeHeight / 2;
    struct Case {
        const char *name;
        DWORD style;
        int cx, cy;
        int wantCx, wantCy;
    } cases[] = {
        {"plain size", WS_POPUP, 120, 90, 120, 90},
        {"negative width is 0", WS_POPUP, -5, 90, 0, 90},
        {"sizable pop-up never collapses", WS_POPUP | WS_THICKFRAME, 0, 90, halfW, halfH},
        {"sizable overlapped window may", kOverlapped, 0, 90, 0, 90},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        HWND h = make(c.style, 10, 10, 100, 100);
        ASSERT_TRUE(h);
        ASSERT_TRUE(MoveWindow(h, 20, 25, c.cx, c.cy, TRUE));
        WindowRecord *w = omWindowRecord(h);
        EXPECT_EQ(w->cx, c.wantCx);
        EXPECT_EQ(w->cy, c.wantCy);
        EXPECT_EQ(w->x, 20);
        EXPECT_GE(shellOf(h)->core.width, 1);
        DestroyWindow(h);
    }
    omDiagResetCounts();
    EXPECT_FALSE(MoveWindow(reinterpret_cast<HWND>(0x7777), 0, 0, 1, 1, TRUE));
    EXPECT_EQ(omDiagCount(79), 1u);
}

TEST_F(WindowPos, MoveWithoutRedrawRestoresTheInputSelection)
{
    HWND h = shownTopLevel(kOverlapped, 40, 50, 300, 200);
    ASSERT_TRUE(h);
    Window canvas = canvasWindow(h);
    XWindowAttributes before{}, after{};
    ASSERT_TRUE(XGetWindowAttributes(omDisplay, canvas, &before));
    ASSERT_TRUE(MoveWindow(h, 60, 70, 280, 190, FALSE));
    ASSERT_TRUE(XGetWindowAttributes(omDisplay, canvas, &after));
    EXPECT_EQ(after.your_event_mask, before.your_event_mask);
    EXPECT_TRUE(after.your_event_mask & ExposureMask);
    EXPECT_TRUE(after.your_event_mask & ButtonPressMask);
}

TEST_F(WindowPos, DeferredBatchGrowsPastItsCapacity)
{
    std::vector<HWND> windows;
    for (int i = 0; i < 4; ++i) {
        windows.push_back(make(WS_POPUP, 10 * i, 10, 50, 50));
        ASSERT_TRUE(windows.back());
    }
    HDWP batch = BeginDeferWindowPos(1);
    ASSERT_TRUE(batch);
    for (size_t i = 0; i < windows.size(); ++i) {
        HDWP next = DeferWindowPos(batch, windows[i], nullptr, 100 + static_cast<int>(i), 200,
                                   60 + static_cast<int>(i), 40, SWP_NOZORDER);
        ASSERT_EQ(next, batch) << "entry " << i;
    }
    g_seen.clear();
    ASSERT_TRUE(EndDeferWindowPos(batch));
    // Every entry applied, in order, each announced to its window.
    std::vector<HWND> order;
    for (const Seen &s : g_seen)
        if (s.msg == WM_WINDOWPOSCHANGED)
            order.push_back(s.hwnd);
    EXPECT_EQ(order, windows);
    for (size_t i = 0; i < windows.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(omWindowRecord(windows[i])->x, 100 + static_cast<int>(i));
        EXPECT_EQ(omWindowRecord(windows[i])->cx, 60 + static_cast<int>(i));
    }
    // The handle is gone with the batch.
    omDiagResetCounts();
    EXPECT_FALSE(EndDeferWindowPos(batch));
    EXPECT_EQ(omDiagCount(78), 1u);
    EXPECT_EQ(DeferWindowPos(batch, windows[0], nullptr, 0, 0, 1, 1, 0), nullptr);
    for (HWND h : windows)
        DestroyWindow(h);
}

TEST_F(WindowPos, ChangingHandlerRewritesTheEntry)
{
    struct Rewriter {
        static LRESULT CALLBACK proc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
        {
            if (msg == WM_WINDOWPOSCHANGING) {
                auto *pos = reinterpret_cast<WINDOWPOS *>(lParam);
                pos->cx = 77;
                pos->flags &= ~SWP_NOSIZE;
            }
            return recordingProc(hwnd, msg, wParam, lParam);
        }
    };
    HWND h = make(WS_POPUP, 10, 10, 50, 50);
    ASSERT_TRUE(h);
    SetWindowLongPtrA(h, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Rewriter::proc));
    ASSERT_TRUE(SetWindowPos(h, nullptr, 30, 30, 0, 0, SWP_NOSIZE | SWP_NOZORDER));
    EXPECT_EQ(omWindowRecord(h)->cx, 77);
    DestroyWindow(h);
}

// ---------------------------------------------------------------------------
// Child windows: the XoBorder frame is the window's outer rectangle.

class ChildPos : public WindowPos {
protected:
    void SetUp() override
    {
        WindowPos::SetUp();
        parent_ = shownTopLevel(WS_OVERLAPPEDWINDOW, 20, 20, 500, 400);
        ASSERT_TRUE(parent_);
    }
    HWND child(int x, int y, int cx, int cy, int id = 1,
               DWORD style = WS_CHILD | WS_VISIBLE | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME)
    {
        HWND h = make(style, x, y, cx, cy, parent_, id);
        if (h)
            pumpFor(std::chrono::milliseconds(10), winmgmtPump);
        g_seen.clear();
        return h;
    }
    static Widget frameOf(HWND h) { return omWindowRecord(h)->shellWidget; }
    HWND parent_ = nullptr;
};

TEST_F(ChildPos, FrameAndRecordFollowTheRequest)
{
    struct Case {
        const char *name;
        bool moveWindow;  // MoveWindow instead of SetWindowPos
        UINT flags;
        int x, y, cx, cy;
        RECT record;   // x, y, cx, cy afterwards
        RECT frame;    // the frame's x, y, width, height afterwards
        bool changed;
        UINT clientFlags;
    } cases[] = {
        {"move", false, SWP_NOSIZE | SWP_NOZORDER, 30, 40, 0, 0, {30, 40, 200, 150},
         {30, 40, 200, 150}, true, SWP_NOCLIENTSIZE},
        {"size", false, SWP_NOMOVE | SWP_NOZORDER, 0, 0, 250, 120, {10, 10, 250, 120},
         {10, 10, 250, 120}, true, SWP_NOCLIENTMOVE},
        {"nothing", false, SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER, 1, 2, 3, 4,
         {10, 10, 200, 150}, {10, 10, 200, 150}, false, 0},
        {"MoveWindow to the same place", true, 0, 10, 10, 200, 150, {10, 10, 200, 150},
         {10, 10, 200, 150}, false, 0},
        {"MoveWindow with a negative width", true, 0, 15, 10, -5, 150, {15, 10, 0, 150},
         {15, 10, 1, 150}, true, SWP_NOCLIENTSIZE | 0},
    };
    // A sizable child given no width takes the default window size instead.
    cases[4].record.right = cases[4].frame.right = omResources.windowSizeWidth / 2;
    cases[4].record.bottom = cases[4].frame.bottom = omResources.windowSizeHeight / 2;
    cases[4].clientFlags = 0;
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        HWND h = child(10, 10, 200, 150);
        ASSERT_TRUE(h);
        ASSERT_TRUE(frameOf(h) && XoIsBorder(frameOf(h)));
        if (c.moveWindow)
            ASSERT_TRUE(MoveWindow(h, c.x, c.y, c.cx, c.cy, TRUE));
        else
            ASSERT_TRUE(SetWindowPos(h, nullptr, c.x, c.y, c.cx, c.cy, c.flags));
        WindowRecord *w = omWindowRecord(h);
        EXPECT_EQ(w->x, c.record.left);
        EXPECT_EQ(w->y, c.record.top);
        EXPECT_EQ(w->cx, c.record.right);
        EXPECT_EQ(w->cy, c.record.bottom);
        Widget f = frameOf(h);
        EXPECT_EQ(f->core.x, c.frame.left);
        EXPECT_EQ(f->core.y, c.frame.top);
        EXPECT_EQ(f->core.width, c.frame.right);
        EXPECT_EQ(f->core.height, c.frame.bottom);
        // The client area is laid out inside the frame at once.
        int cx, cy, cw, ch;
        XoGetClientArea(f, &cx, &cy, &cw, &ch);
        EXPECT_EQ(w->canvasWidget->core.width, std::max(cw, 1)) << "canvas follows the frame";
        auto changed = seen(h, WM_WINDOWPOSCHANGED);
        ASSERT_EQ(changed.size(), c.changed ? 1u : 0u);
        if (c.changed) {
            EXPECT_EQ(changed[0].pos.flags & (SWP_NOCLIENTMOVE | SWP_NOCLIENTSIZE), c.clientFlags);
        }
        EXPECT_EQ(seen(h, WM_WINDOWPOSCHANGING).size(), 1u);
        DestroyWindow(h);
        g_seen.clear();
    }
}

TEST_F(ChildPos, NegativeSizeOfAFixedChildIsZeroOnePixelOnTheFrame)
{
    HWND h = child(10, 10, 200, 150, 1, WS_CHILD | WS_VISIBLE);
    ASSERT_TRUE(h);
    ASSERT_TRUE(MoveWindow(h, 10, 10, -5, -3, TRUE));
    EXPECT_EQ(omWindowRecord(h)->cx, 0);
    EXPECT_EQ(omWindowRecord(h)->cy, 0);
    EXPECT_EQ(frameOf(h)->core.width, 1);
    EXPECT_EQ(frameOf(h)->core.height, 1);
}

// The child list (from the top) and the X stacking order of the frames in
// the parent's canvas (XQueryTree lists from the bottom) must agree.
TEST_F(ChildPos, StackingListAndXOrderAgree)
{
    HWND a = child(10, 10, 100, 80, 1), b = child(40, 40, 100, 80, 2), c = child(70, 70, 100, 80, 3);
    ASSERT_TRUE(a && b && c);
    Window canvas = canvasWindow(parent_);
    auto listOrder = [&] {
        std::vector<HWND> order;
        for (HWND h = GetWindow(parent_, GW_CHILD); h; h = GetWindow(h, GW_HWNDNEXT))
            order.push_back(h);
        return order;
    };
    auto xOrder = [&] {
        Window root, parent, *kids = nullptr;
        unsigned n = 0;
        XQueryTree(omDisplay, canvas, &root, &parent, &kids, &n);
        std::vector<HWND> order;
        for (unsigned i = n; i-- > 0;)
            for (HWND h : {a, b, c})
                if (kids[i] == XtWindow(frameOf(h)))
                    order.push_back(h);
        XFree(kids);
        return order;
    };
    EXPECT_EQ(listOrder(), xOrder()) << "as created";
    struct Step {
        const char *name;
        HWND hwnd, after;
        std::vector<HWND> expect;  // top first
    } steps[] = {
        {"c to the top", c, HWND_TOP, {c, a, b}},
        {"c to the bottom", c, HWND_BOTTOM, {a, b, c}},
        {"c right below a", c, a, {a, c, b}},
        {"a below b", a, b, {c, b, a}},
        {"topmost raises", b, HWND_TOPMOST, {b, c, a}},
    };
    for (const Step &s : steps) {
        SCOPED_TRACE(s.name);
        ASSERT_TRUE(SetWindowPos(s.hwnd, s.after, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE));
        EXPECT_EQ(listOrder(), s.expect);
        EXPECT_EQ(xOrder(), s.expect);
    }
    // Another parent's window is no sibling: the list stays as it was.
    HWND stranger = make(WS_POPUP, 0, 0, 50, 50);
    ASSERT_TRUE(stranger);
    ASSERT_TRUE(SetWindowPos(a, stranger, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE));
    EXPECT_EQ(listOrder(), (std::vector<HWND>{b, c, a}));
    EXPECT_EQ(xOrder(), listOrder());
}

// A child whose procedure keeps WM_NCCREATE from the default procedure has
// no widgets: it lives in the record and paints into its parent.
LRESULT CALLBACK windowlessProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    if (msg == WM_NCCREATE)
        return TRUE;
    return recordingProc(hwnd, msg, wParam, lParam);
}

TEST_F(ChildPos, WindowlessChildLivesInTheRecord)
{
    WNDCLASSA wc{};
    wc.lpfnWndProc = windowlessProc;
    wc.lpszClassName = "WindowlessPosTest";
    RegisterClassA(&wc);
    HWND h = CreateWindowExA(0, "WindowlessPosTest", "", WS_CHILD, 5, 6, 40, 30, parent_,
                             reinterpret_cast<HMENU>(9), nullptr, nullptr);
    ASSERT_TRUE(h);
    WindowRecord *w = omWindowRecord(h);
    ASSERT_EQ(w->shellWidget, nullptr);
    g_seen.clear();
    struct Case {
        const char *name;
        UINT flags;
        int x, y, cx, cy;
        RECT record;
        bool visible;
    } cases[] = {
        {"move and size", SWP_NOZORDER, 20, 25, 60, 50, {20, 25, 60, 50}, false},
        {"a zero size keeps the old one", SWP_NOZORDER, 21, 26, 0, 0, {21, 26, 60, 50}, false},
        {"shown with its parent visible", SWP_NOMOVE | SWP_NOSIZE | SWP_SHOWWINDOW, 0, 0, 0, 0,
         {21, 26, 60, 50}, true},
        {"hidden", SWP_NOMOVE | SWP_NOSIZE | SWP_HIDEWINDOW, 0, 0, 0, 0, {21, 26, 60, 50}, false},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        g_seen.clear();
        ASSERT_TRUE(SetWindowPos(h, nullptr, c.x, c.y, c.cx, c.cy, c.flags));
        EXPECT_EQ(w->x, c.record.left);
        EXPECT_EQ(w->y, c.record.top);
        EXPECT_EQ(w->cx, c.record.right);
        EXPECT_EQ(w->cy, c.record.bottom);
        EXPECT_EQ((w->style & WS_VISIBLE) != 0, c.visible);
        EXPECT_EQ(seen(h, WM_WINDOWPOSCHANGED).size(), 1u) << "always a change";
    }
    DestroyWindow(h);
}

}  // namespace
}  // namespace om::test
