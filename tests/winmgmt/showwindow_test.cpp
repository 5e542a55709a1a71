// ShowWindow: each command against a hidden and a shown window (result,
// WM_SHOWWINDOW, the X map state), unknown commands, maximise and restore
// of a top-level window, the window manager's WM_STATE behind IsIconic,
// and minimise, maximise and restore of a child's frame.
#include "winmgmt_fixture.h"

#include "kernel/omdiag.h"
#include "winmgmt/ompos.h"
#include "widgets/XoBorder.h"

#include <X11/IntrinsicP.h>
#include <X11/Xatom.h>

namespace om::test {
namespace {

struct Seen {
    HWND hwnd;
    UINT msg;
    WPARAM wParam;
    LPARAM lParam;
};
std::vector<Seen> g_seen;

LRESULT CALLBACK recordingProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    if (msg == WM_SHOWWINDOW || msg == WM_SIZE)
        g_seen.push_back({hwnd, msg, wParam, lParam});
    return DefWindowProcA(hwnd, msg, wParam, lParam);
}

const char *recordingClass()
{
    static const char *name = [] {
        WNDCLASSA wc{};
        wc.lpfnWndProc = recordingProc;
        wc.lpszClassName = "ShowWindowTest";
        wc.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
        RegisterClassA(&wc);
        return "ShowWindowTest";
    }();
    return name;
}

class Show : public WinmgmtTest {
protected:
    void TearDown() override
    {
        WinmgmtTest::TearDown();
        g_seen.clear();
    }
    HWND make(DWORD style, HWND parent = nullptr, int x = 30, int y = 40, int cx = 220, int cy = 160)
    {
        HWND h = CreateWindowExA(0, recordingClass(), "show", style, x, y, cx, cy, parent,
                                 parent ? reinterpret_cast<HMENU>(1) : nullptr, nullptr, nullptr);
        if (h && !parent)
            made_.push_back(h);
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
    static Window shellWindow(HWND h) { return XtWindow(omWindowRecord(h)->shellWidget); }
    static bool mapped(Window w)
    {
        XWindowAttributes a;
        return XGetWindowAttributes(omDisplay, w, &a) && a.map_state != IsUnmapped;
    }
};

TEST_F(Show, CommandsOnTopLevelWindows)
{
    constexpr int kNone = -1;
    struct Case {
        const char *name;
        DWORD style;
        int command;
        bool startVisible;
        BOOL result;
        int showWindowParam;  // WM_SHOWWINDOW's wParam, or kNone
        bool visibleAfter;
    } cases[] = {
        {"hide a hidden window: nothing at all", WS_OVERLAPPEDWINDOW, SW_HIDE, false, FALSE, kNone, false},
        {"hide a shown window", WS_OVERLAPPEDWINDOW, SW_HIDE, true, TRUE, FALSE, false},
        {"show a hidden window", WS_OVERLAPPEDWINDOW, SW_SHOW, false, FALSE, TRUE, true},
        {"show normal on a shown window", WS_OVERLAPPEDWINDOW, SW_SHOWNORMAL, true, TRUE, TRUE, true},
        {"show default is show normal", WS_OVERLAPPEDWINDOW, SW_SHOWDEFAULT, false, FALSE, TRUE, true},
        {"show without activation", WS_OVERLAPPEDWINDOW, SW_SHOWNOACTIVATE, false, FALSE, TRUE, true},
        {"show a pop-up", WS_POPUP | WS_CAPTION, SW_SHOW, false, FALSE, TRUE, true},
        {"show a bare pop-up as is", WS_POPUP, SW_SHOWNA, false, FALSE, TRUE, true},
        {"hide a pop-up", WS_POPUP | WS_CAPTION, SW_HIDE, true, TRUE, FALSE, false},
        {"unknown command 11", WS_OVERLAPPEDWINDOW, 11, true, FALSE, kNone, true},
        {"negative command", WS_OVERLAPPEDWINDOW, -1, false, FALSE, kNone, false},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        HWND h = make(c.style);
        ASSERT_TRUE(h);
        if (c.startVisible) {
            ShowWindow(h, SW_SHOW);
            ASSERT_TRUE(OM_PUMP_UNTIL(viewable(shellWindow(h)), 3000, winmgmtPump));
        }
        g_seen.clear();
        omDiagResetCounts();
        EXPECT_EQ(ShowWindow(h, c.command), c.result);
        bool known = c.command >= SW_HIDE && c.command <= SW_SHOWDEFAULT;
        EXPECT_EQ(omDiagCount(148), known ? 0u : 1u);
        auto shows = seen(h, WM_SHOWWINDOW);
        if (c.showWindowParam == kNone) {
            EXPECT_TRUE(shows.empty());
        } else {
            ASSERT_EQ(shows.size(), 1u);
            EXPECT_EQ(shows[0].wParam, static_cast<WPARAM>(c.showWindowParam));
        }
        EXPECT_EQ(IsWindowVisible(h) != FALSE, c.visibleAfter);
        Window shell = shellWindow(h);
        if (c.visibleAfter) {
            EXPECT_TRUE(OM_PUMP_UNTIL(viewable(shell), 3000, winmgmtPump));
        } else {
            EXPECT_TRUE(OM_PUMP_UNTIL(!mapped(shell), 3000, winmgmtPump));
        }
        DestroyWindow(h);
    }
}

TEST_F(Show, MaximiseTopLevelCoversTheScreenAndRestorePutsItBack)
{
    HWND h = make(WS_OVERLAPPEDWINDOW);
    ASSERT_TRUE(h);
    WindowRecord *w = omWindowRecord(h);
    ShowWindow(h, SW_SHOWNORMAL);
    pumpFor(std::chrono::milliseconds(30), winmgmtPump);
    const int x = w->x, y = w->y, cx = w->cx, cy = w->cy;
    g_seen.clear();
    ShowWindow(h, SW_SHOWMAXIMIZED);
    Screen *screen = DefaultScreenOfDisplay(omDisplay);
    EXPECT_EQ(w->x, 0);
    EXPECT_EQ(w->cx, WidthOfScreen(screen));
    EXPECT_EQ(w->cy, HeightOfScreen(screen));
    auto sizes = seen(h, WM_SIZE);
    ASSERT_FALSE(sizes.empty());
    EXPECT_EQ(sizes.front().wParam, static_cast<WPARAM>(SIZE_MAXIMIZED));
    EXPECT_FALSE(IsZoomed(h)) << "the window manager's business, never reported";
    // A second maximise keeps the first normal rectangle.
    ShowWindow(h, SW_SHOWMAXIMIZED);
    ShowWindow(h, SW_RESTORE);
    EXPECT_EQ(w->x, x);
    EXPECT_EQ(w->y, y);
    EXPECT_EQ(w->cx, cx);
    EXPECT_EQ(w->cy, cy);
    EXPECT_EQ(w->showState, 1u);
    EXPECT_FALSE(w->style & WS_MAXIMIZE);
}

TEST_F(Show, WindowManagerStateDecidesIconic)
{
    HWND h = make(WS_OVERLAPPEDWINDOW);
    ASSERT_TRUE(h);
    Window win = shellWindow(h);
    Atom wmState = XInternAtom(omDisplay, "WM_STATE", False);
    struct Case {
        const char *name;
        Atom type;
        int format;
        long value;
        int state;  // CheckWinMgrState
        BOOL iconic;
    } cases[] = {
        {"iconic", wmState, 32, IconicState, IconicState, TRUE},
        {"normal", wmState, 32, NormalState, NormalState, FALSE},
        {"another type is no state", XA_CARDINAL, 32, IconicState, 0, FALSE},
    };
    bIsShellIconic = 0;
    EXPECT_EQ(CheckWinMgrState(omDisplay, win), 0) << "no property yet";
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        long data[2] = {c.value, 0};
        XChangeProperty(omDisplay, win, wmState, c.type, c.format, PropModeReplace,
                        reinterpret_cast<unsigned char *>(data), 2);
        EXPECT_EQ(CheckWinMgrState(omDisplay, win), c.state);
        EXPECT_EQ(IsIconic(h), c.iconic);
    }
    XDeleteProperty(omDisplay, win, wmState);
    bIsShellIconic = 1;
    EXPECT_TRUE(IsIconic(h)) << "without the property the application shell's state answers";
    bIsShellIconic = 0;
}

TEST_F(Show, CloseWindowMinimisesAndRefusesBadHandles)
{
    HWND h = make(WS_OVERLAPPEDWINDOW | WS_VISIBLE);
    ASSERT_TRUE(h);
    g_seen.clear();
    EXPECT_TRUE(CloseWindow(h));
    auto sizes = seen(h, WM_SIZE);
    ASSERT_EQ(sizes.size(), 1u);
    EXPECT_EQ(sizes[0].wParam, static_cast<WPARAM>(SIZE_MINIMIZED));
    EXPECT_TRUE(omWindowRecord(h)->style & WS_MINIMIZE);
    omDiagResetCounts();
    EXPECT_FALSE(CloseWindow(reinterpret_cast<HWND>(0x7777)));
    EXPECT_EQ(omDiagCount(79), 1u);
}

// ---------------------------------------------------------------------------
// Child windows: the frame's X window and its "state".

class ShowChild : public Show {
protected:
    void SetUp() override
    {
        Show::SetUp();
        parent_ = make(WS_OVERLAPPEDWINDOW | WS_VISIBLE, nullptr, 20, 20, 500, 400);
        ASSERT_TRUE(parent_);
        ASSERT_TRUE(OM_PUMP_UNTIL(viewable(shellWindow(parent_)), 3000, winmgmtPump));
    }
    HWND child(DWORD extra = 0)
    {
        HWND h = make(WS_CHILD | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_MINIMIZEBOX |
                          WS_MAXIMIZEBOX | extra,
                      parent_, 10, 10, 200, 150);
        pumpFor(std::chrono::milliseconds(10), winmgmtPump);
        g_seen.clear();
        return h;
    }
    static int state(HWND h)
    {
        int s = 0;
        XtVaGetValues(omWindowRecord(h)->shellWidget, XoNstate, &s, nullptr);
        return s;
    }
    HWND parent_ = nullptr;
};

TEST_F(ShowChild, ShowAndHideMapTheFrame)
{
    HWND h = child();
    ASSERT_TRUE(h && omWindowRecord(h)->shellWidget);
    Window frame = shellWindow(h);
    ASSERT_TRUE(frame);
    EXPECT_FALSE(mapped(frame));
    EXPECT_EQ(ShowWindow(h, SW_SHOW), FALSE);
    EXPECT_TRUE(OM_PUMP_UNTIL(viewable(frame), 3000, winmgmtPump));
    EXPECT_TRUE(IsWindowVisible(h));
    // Hidden again, what it covered is the parent's to repaint.
    ValidateRect(parent_, nullptr);
    EXPECT_EQ(ShowWindow(h, SW_HIDE), TRUE);
    EXPECT_TRUE(OM_PUMP_UNTIL(!mapped(frame), 3000, winmgmtPump));
    RECT update{};
    EXPECT_TRUE(GetUpdateRect(parent_, &update, FALSE));
    EXPECT_LE(update.left, 10);
    EXPECT_LE(update.top, 10);
    EXPECT_GE(update.right, 210);
    EXPECT_GE(update.bottom, 160);
    g_seen.clear();
    EXPECT_EQ(ShowWindow(h, SW_HIDE), FALSE);
    EXPECT_TRUE(g_seen.empty()) << "hiding a hidden child sends nothing";
    ShowWindow(h, SW_SHOWNA);
    ShowWindow(parent_, SW_HIDE);
    EXPECT_FALSE(IsWindowVisible(h)) << "a hidden parent hides its children";
    EXPECT_TRUE(omWindowRecord(h)->style & WS_VISIBLE);
}

TEST_F(ShowChild, StateCommandsDriveTheFrame)
{
    HWND h = child(WS_VISIBLE);
    ASSERT_TRUE(h);
    WindowRecord *w = omWindowRecord(h);
    int iconW = 0, iconH = 0;
    XtVaGetValues(w->shellWidget, XoNiconWidth, &iconW, XoNiconHeight, &iconH, nullptr);
    struct Step {
        const char *name;
        int command;
        int state;
        BOOL iconic, zoomed;
        int sizeType;  // WM_SIZE wParam expected, -1 for none
    } steps[] = {
        {"maximise", SW_SHOWMAXIMIZED, XoSTATE_MAXIMIZED, FALSE, TRUE, SIZE_MAXIMIZED},
        {"restore from maximised", SW_RESTORE, XoSTATE_NORMAL, FALSE, FALSE, SIZE_RESTORED},
        {"minimise", SW_MINIMIZE, XoSTATE_ICONIC, TRUE, FALSE, SIZE_MINIMIZED},
        {"minimise again: no second WM_SIZE", SW_SHOWMINNOACTIVE, XoSTATE_ICONIC, TRUE, FALSE, -1},
        {"restore from the icon", SW_RESTORE, XoSTATE_NORMAL, FALSE, FALSE, SIZE_RESTORED},
        {"restore a normal window: nothing to say", SW_RESTORE, XoSTATE_NORMAL, FALSE, FALSE, -1},
        {"show normal from the icon restores", SW_SHOWMINIMIZED, XoSTATE_ICONIC, TRUE, FALSE,
         SIZE_MINIMIZED},
        {"", SW_SHOWNORMAL, XoSTATE_NORMAL, FALSE, FALSE, SIZE_RESTORED},
    };
    for (const Step &s : steps) {
        SCOPED_TRACE(s.name[0] ? s.name : "show normal");
        g_seen.clear();
        EXPECT_EQ(ShowWindow(h, s.command), TRUE) << "it was visible";
        EXPECT_EQ(state(h), s.state);
        EXPECT_EQ(IsIconic(h), s.iconic);
        EXPECT_EQ(IsZoomed(h), s.zoomed);
        auto sizes = seen(h, WM_SIZE);
        if (s.sizeType < 0) {
            EXPECT_TRUE(sizes.empty());
            continue;
        }
        ASSERT_FALSE(sizes.empty());
        EXPECT_EQ(sizes.front().wParam, static_cast<WPARAM>(s.sizeType));
        if (s.sizeType == SIZE_MINIMIZED) {
            EXPECT_EQ(sizes.front().lParam, MAKELPARAM(iconW, iconH));
        } else if (s.sizeType == SIZE_MAXIMIZED) {
            EXPECT_EQ(sizes.front().lParam,
                      MAKELPARAM(w->canvasWidget->core.width, w->canvasWidget->core.height));
        }
    }
    // Restored: the record has its normal rectangle back.
    EXPECT_EQ(w->x, 10);
    EXPECT_EQ(w->cx, 200);
    EXPECT_EQ(w->cy, 150);
}

}  // namespace
}  // namespace om::test
