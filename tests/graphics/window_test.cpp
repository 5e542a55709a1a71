// Window DCs on real X windows: GetDC, GetWindowDC, BeginPaint/EndPaint
// and the coordinate functions through test hooks that describe a Motif
// drawing area, with pixels read back by XGetImage; and what the window
// functions answer before any hooks are registered.
#include <gtest/gtest.h>

#include "harness/pump.h"
#include "harness/screenshot.h"
#include "harness/xwindow.h"

#include "graphics/omgdi.h"
#include "graphics/omwindowhooks.h"
#include "kernel/omdiag.h"
#include "kernel/omdisplay.h"

#include <windows.h>

#include <Xm/DrawingA.h>
#include <Xm/Xm.h>
#include <X11/Shell.h>

#include <cstdio>
#include <initializer_list>

namespace
{

// One test window: a shell with a 120x90 white drawing area.  The window
// "child" is a windowless child at (10, 5), 40x30, painting on it.
struct TestWindow {
    Widget shell = nullptr;
    Widget area = nullptr;
    Window xwin = 0;
};

TestWindow &testWindow()
{
    static TestWindow w = [] {
        TestWindow t;
        omEnsureDisplay();
        t.shell = XtVaCreatePopupShell("gdiTest", topLevelShellWidgetClass, omAppShell,
                                       XmNwidth, 120, XmNheight, 90, XmNx, 0, XmNy, 0, nullptr);
        t.area = XtVaCreateManagedWidget("canvas", xmDrawingAreaWidgetClass, t.shell, XmNwidth,
                                         120, XmNheight, 90, XmNbackground,
                                         WhitePixel(omDisplay, DefaultScreen(omDisplay)), nullptr);
        XtPopup(t.shell, XtGrabNone);
        t.xwin = XtWindow(t.area);
        om::test::waitForMapped(omDisplay, XtWindow(t.shell), std::chrono::milliseconds(5000),
                                om::test::XtPump(omAppContext));
        return t;
    }();
    return w;
}

const HWND kChild = reinterpret_cast<HWND>(uintptr_t{0xA00F01});
const HWND kOwnDcWindow = reinterpret_cast<HWND>(uintptr_t{0xA00F02});
// A window covering the whole of the screenshot test's drawing area.
const HWND kShotWindow = reinterpret_cast<HWND>(uintptr_t{0xA00F03});
Window g_shotWindow = 0;

struct HookState {
    RECT update{0, 0, 0, 0};
    BOOL erasePending = FALSE;
    LRESULT eraseAnswer = 0;
    int erases = 0, hides = 0, shows = 0;
};
HookState g_state;

bool known(HWND h)
{
    return h == kChild || h == kOwnDcWindow || h == kShotWindow;
}

const OmGdiWindowHooks kHooks = {
    [](HWND h, RECT *r) -> BOOL {
        if (!known(h))
            return FALSE;
        *r = {0, 0, 40, 30};
        return TRUE;
    },
    [](HWND h, RECT *r) -> BOOL {
        if (!known(h))
            return FALSE;
        *r = {100, 200, 140, 230};
        return TRUE;
    },
    [](HWND h, POINT *p) -> BOOL {
        if (!known(h))
            return FALSE;
        *p = {110, 205};
        return TRUE;
    },
    [](HWND h, BOOL whole, OmPaintTarget *t) -> BOOL {
        if (!known(h))
            return FALSE;
        if (h == kShotWindow)
            *t = {g_shotWindow, nullptr, 0, 0, 320, 200};
        else
            *t = {testWindow().xwin, testWindow().area, whole ? 8 : 10, whole ? 3 : 5,
                  whole ? 44 : 40, whole ? 34 : 30};
        return TRUE;
    },
    [](HWND h, HRGN rgn, BOOL *erase) -> BOOL {
        if (!known(h))
            return FALSE;
        HRGN u = CreateRectRgnIndirect(&g_state.update);
        CombineRgn(rgn, u, nullptr, RGN_COPY);
        DeleteObject(u);
        *erase = g_state.erasePending;
        g_state.erasePending = FALSE;
        g_state.update = {0, 0, 0, 0};
        return TRUE;
    },
    [](HWND h) -> UINT { return h == kOwnDcWindow ? CS_OWNDC : 0u; },
    [](HWND) -> HBRUSH { return reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1); },
    [](HWND, HDC) -> LRESULT {
        ++g_state.erases;
        return g_state.eraseAnswer;
    },
    [](HWND) { ++g_state.hides; },
    [](HWND) { ++g_state.shows; },
};

uint32_t rgb(COLORREF c)
{
    return (GetRValue(c) << 16) | (GetGValue(c) << 8) | GetBValue(c);
}

class WindowDc : public testing::Test
{
  protected:
    void SetUp() override
    {
        ASSERT_NE(testWindow().xwin, 0u);
        omGdiRegisterWindowHooks(&kHooks);
        g_state = HookState{};
        XSetWindowBackground(omDisplay, testWindow().xwin,
                             WhitePixel(omDisplay, DefaultScreen(omDisplay)));
        XClearWindow(omDisplay, testWindow().xwin);
        XSync(omDisplay, False);
    }
    void TearDown() override { omGdiRegisterWindowHooks(nullptr); }

    // The window pixels, from the server.
    uint32_t at(int x, int y) { return om::test::pixelAt(omDisplay, testWindow().xwin, x, y); }

    // Checks every pixel of the window: black exactly inside (l, t, r, b).
    void expectBlackExactly(int l, int t, int r, int b)
    {
        XSync(omDisplay, False);
        XImage *img = XGetImage(omDisplay, testWindow().xwin, 0, 0, 120, 90, AllPlanes, ZPixmap);
        ASSERT_NE(img, nullptr);
        unsigned long black = BlackPixel(omDisplay, DefaultScreen(omDisplay));
        int wrong = 0;
        for (int y = 0; y < 90; ++y)
            for (int x = 0; x < 120; ++x) {
                bool in = x >= l && x < r && y >= t && y < b;
                if ((XGetPixel(img, x, y) == black) != in && wrong++ < 5)
                    ADD_FAILURE() << "pixel (" << x << ", " << y << ") should be "
                                  << (in ? "black" : "white");
            }
        XDestroyImage(img);
        EXPECT_EQ(wrong, 0);
    }
};

TEST_F(WindowDc, GetDcDrawsAtTheChildsOffsetClippedToItsArea)
{
    HDC dc = GetDC(kChild);
    ASSERT_NE(dc, nullptr);
    RECT all{-50, -50, 500, 500};
    FillRect(dc, &all, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    expectBlackExactly(10, 5, 50, 35);
    RECT box;
    EXPECT_EQ(GetClipBox(dc, &box), SIMPLEREGION);
    EXPECT_EQ(box.right, 40);
    EXPECT_EQ(box.bottom, 30);
    EXPECT_EQ(GetPixel(dc, 0, 0), RGB(0, 0, 0));
    EXPECT_EQ(ReleaseDC(kChild, dc), 1);
    EXPECT_EQ(GetObjectType(dc), 0u) << "a common DC is gone after ReleaseDC";
}

TEST_F(WindowDc, GetWindowDcCoversTheFrame)
{
    HDC dc = GetWindowDC(kChild);
    ASSERT_NE(dc, nullptr);
    RECT r{0, 0, 2, 2};
    FillRect(dc, &r, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    expectBlackExactly(8, 3, 10, 5);
    ReleaseDC(kChild, dc);
}

TEST_F(WindowDc, BeginPaintClipsToTheUpdateRegionAndErases)
{
    g_state.update = {5, 5, 15, 12};
    g_state.erasePending = TRUE;
    g_state.eraseAnswer = 0;  // the window procedure did not erase
    PAINTSTRUCT ps;
    HDC dc = BeginPaint(kChild, &ps);
    ASSERT_NE(dc, nullptr);
    EXPECT_EQ(ps.hdc, dc);
    EXPECT_EQ(g_state.erases, 1);
    EXPECT_TRUE(ps.fErase) << "WM_ERASEBKGND answered 0: the program must erase";
    EXPECT_EQ(ps.rcPaint.left, 5);
    EXPECT_EQ(ps.rcPaint.top, 5);
    EXPECT_EQ(ps.rcPaint.right, 15);
    EXPECT_EQ(ps.rcPaint.bottom, 12);
    EXPECT_EQ(g_state.hides, 1);
    RECT all{0, 0, 40, 30};
    FillRect(dc, &all, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    EndPaint(kChild, &ps);
    EXPECT_EQ(g_state.shows, 1);
    expectBlackExactly(15, 10, 25, 17);

    // The update region was taken: a second BeginPaint paints nothing and
    // does not erase.
    dc = BeginPaint(kChild, &ps);
    EXPECT_EQ(g_state.erases, 1);
    EXPECT_FALSE(ps.fErase);
    EXPECT_TRUE(IsRectEmpty(&ps.rcPaint));
    EndPaint(kChild, &ps);
}

TEST_F(WindowDc, OwnDcIsKeptAcrossGetDcAndRelease)
{
    HDC a = GetDC(kOwnDcWindow);
    SetTextColor(a, RGB(1, 2, 3));
    EXPECT_EQ(ReleaseDC(kOwnDcWindow, a), 1);
    HDC b = GetDC(kOwnDcWindow);
    EXPECT_EQ(a, b);
    EXPECT_EQ(GetTextColor(b), RGB(1, 2, 3)) << "state survives, as CS_OWNDC promises";
    ReleaseDC(kOwnDcWindow, b);
    omGdiForgetWindow(kOwnDcWindow);
    EXPECT_EQ(GetObjectType(a), 0u);
}

TEST_F(WindowDc, CoordinateFunctionsUseTheHooks)
{
    POINT p{1, 2};
    EXPECT_TRUE(ClientToScreen(kChild, &p));
    EXPECT_EQ(p.x, 111);
    EXPECT_EQ(p.y, 207);
    EXPECT_TRUE(ScreenToClient(kChild, &p));
    EXPECT_EQ(p.x, 1);
    POINT pts[2] = {{0, 0}, {5, 5}};
    EXPECT_EQ(MapWindowPoints(kChild, nullptr, pts, 2), MAKELONG(110, 205));
    EXPECT_EQ(pts[1].x, 115);
    RECT r;
    EXPECT_TRUE(GetClientRect(kChild, &r));
    EXPECT_EQ(r.right, 40);
    EXPECT_TRUE(GetWindowRect(kChild, &r));
    EXPECT_EQ(r.top, 200);
    omDiagResetCounts();
    HWND stranger = reinterpret_cast<HWND>(uintptr_t{0xA00999});
    EXPECT_FALSE(GetClientRect(stranger, &r));
    EXPECT_EQ(GetDC(stranger), nullptr);
    EXPECT_EQ(omDiagCount(79), 2u);
}

TEST_F(WindowDc, ScreenDcAndBitBltFromTheWindow)
{
    HDC win = GetDC(kChild);
    SetPixel(win, 3, 4, RGB(255, 0, 0));
    HDC screen = GetDC(nullptr);
    HDC mem = CreateCompatibleDC(screen);
    HBITMAP bm = CreateCompatibleBitmap(screen, 8, 8);
    HGDIOBJ old = SelectObject(mem, bm);
    ASSERT_TRUE(BitBlt(mem, 0, 0, 8, 8, win, 0, 0, SRCCOPY));
    EXPECT_EQ(GetPixel(mem, 3, 4), RGB(255, 0, 0));
    EXPECT_EQ(GetPixel(mem, 4, 4), RGB(255, 255, 255));
    EXPECT_EQ(at(13, 9), rgb(RGB(255, 0, 0)));
    SelectObject(mem, old);
    DeleteObject(bm);
    DeleteDC(mem);
    ReleaseDC(nullptr, screen);
    ReleaseDC(kChild, win);
}

// Paints shapes, bitmaps, icons and text in two fonts into a real window
// and saves what the server shows as a PNG for people to look at.
TEST_F(WindowDc, ScreenshotOfAPaintedWindow)
{
    Widget shell = XtVaCreatePopupShell("gdiShot", topLevelShellWidgetClass, omAppShell, XmNwidth,
                                        320, XmNheight, 200, XmNx, 200, XmNy, 0, nullptr);
    Widget area = XtVaCreateManagedWidget("canvas", xmDrawingAreaWidgetClass, shell, XmNwidth, 320,
                                          XmNheight, 200, nullptr);
    XtPopup(shell, XtGrabNone);
    ASSERT_TRUE(om::test::waitForMapped(omDisplay, XtWindow(shell), std::chrono::milliseconds(5000),
                                        om::test::XtPump(omAppContext)));
    g_shotWindow = XtWindow(area);
    HDC dc = GetDC(kShotWindow);
    ASSERT_NE(dc, nullptr);
    RECT all{0, 0, 320, 200};
    FillRect(dc, &all, reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1));

    // Shapes.
    HBRUSH red = CreateSolidBrush(RGB(220, 40, 40)), blue = CreateSolidBrush(RGB(40, 80, 220)),
           hatch = CreateHatchBrush(HS_DIAGCROSS, RGB(0, 128, 0));
    HPEN thick = CreatePen(PS_SOLID, 3, RGB(0, 0, 0)), dash = CreatePen(PS_DASH, 1, RGB(0, 0, 128));
    SelectObject(dc, red);
    Rectangle(dc, 10, 10, 70, 50);
    SelectObject(dc, blue);
    SelectObject(dc, thick);
    Ellipse(dc, 80, 10, 150, 50);
    SelectObject(dc, hatch);
    SelectObject(dc, GetStockObject(BLACK_PEN));
    RoundRect(dc, 160, 10, 230, 50, 16, 16);
    SelectObject(dc, red);
    Pie(dc, 240, 5, 300, 55, 300, 30, 270, 5);
    SelectObject(dc, dash);
    POINT zig[] = {{10, 60}, {40, 80}, {70, 60}, {100, 80}, {130, 60}};
    Polyline(dc, zig, 5);
    SelectObject(dc, GetStockObject(BLACK_PEN));
    RECT edge{140, 58, 230, 84};
    DrawEdge(dc, &edge, EDGE_RAISED, BF_RECT | BF_MIDDLE);

    // Bitmaps: a system bitmap and a DIB colour ramp.
    HBITMAP check = LoadBitmapA(nullptr, MAKEINTRESOURCEA(32760));
    HDC mem = CreateCompatibleDC(dc);
    HGDIOBJ old = SelectObject(mem, check);
    StretchBlt(dc, 240, 60, 26, 26, mem, 0, 0, 13, 13, SRCCOPY);
    SelectObject(mem, old);
    DeleteDC(mem);
    DeleteObject(check);
    struct {
        BITMAPINFOHEADER h;
        DWORD bits[16 * 8];
    } ramp{};
    ramp.h = {sizeof(BITMAPINFOHEADER), 16, 8, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 16; ++x)
            ramp.bits[y * 16 + x] = static_cast<DWORD>((x * 16) << 16 | (y * 32) << 8 | 200);
    StretchDIBits(dc, 270, 60, 40, 26, 0, 0, 16, 8, ramp.bits,
                  reinterpret_cast<BITMAPINFO *>(&ramp.h), DIB_RGB_COLORS, SRCCOPY);

    // Icons.
    DrawIcon(dc, 10, 95, LoadIconA(nullptr, IDI_HAND));
    DrawIcon(dc, 50, 95, LoadIconA(nullptr, IDI_QUESTION));
    DrawIcon(dc, 90, 95, LoadIconA(nullptr, IDI_EXCLAMATION));
    DrawIcon(dc, 130, 95, LoadIconA(nullptr, IDI_APPLICATION));

    // Text in two fonts.
    HFONT sans = CreateFontA(-18, 0, 0, 0, FW_BOLD, FALSE, FALSE, FALSE, 0, 0, 0, 0, 0, "Arial");
    HFONT mono = CreateFontA(-14, 0, 0, 0, FW_NORMAL, TRUE, TRUE, FALSE, 0, 0, 0, 0, 0,
                             "Courier New");
    SetBkMode(dc, TRANSPARENT);
    SelectObject(dc, sans);
    SetTextColor(dc, RGB(0, 0, 128));
    TextOutA(dc, 175, 100, "Olmo GDI", 8);
    SelectObject(dc, mono);
    SetTextColor(dc, RGB(128, 0, 0));
    RECT box{10, 140, 310, 195};
    DrawTextA(dc, "Courier, italic and underlined: the quick brown fox jumps over the lazy dog",
              -1, &box, DT_WORDBREAK | DT_CENTER);
    SelectObject(dc, GetStockObject(SYSTEM_FONT));
    SelectObject(dc, GetStockObject(WHITE_BRUSH));
    SelectObject(dc, GetStockObject(BLACK_PEN));
    ReleaseDC(kShotWindow, dc);
    for (HGDIOBJ o : std::initializer_list<HGDIOBJ>{red, blue, hatch, thick, dash, sans, mono})
        EXPECT_TRUE(DeleteObject(o));
    XSync(omDisplay, False);

    EXPECT_EQ(om::test::pixelAt(omDisplay, g_shotWindow, 40, 30), 0xDC2828u) << "rectangle fill";
    EXPECT_EQ(om::test::pixelAt(omDisplay, g_shotWindow, 10, 10), 0x000000u) << "its outline";
    EXPECT_EQ(om::test::pixelAt(omDisplay, g_shotWindow, 5, 5), 0xC0C0C0u) << "button face";
    std::string path;
    EXPECT_TRUE(om::test::saveWindowPng(omDisplay, g_shotWindow, om::test::testArtifactName(), &path));
    int w = 0, h = 0;
    EXPECT_TRUE(om::test::readPngSize(path, w, h));
    EXPECT_EQ(w, 320);
    EXPECT_EQ(h, 200);
    std::printf("screenshot: %s\n", path.c_str());
    XtDestroyWidget(shell);
    g_shotWindow = 0;
}

TEST(WindowDcWithoutHooks, WindowsAnswerAsHavingNoUpdateRegion)
{
    omGdiRegisterWindowHooks(nullptr);
    omDiagResetCounts();
    RECT r;
    POINT p{0, 0};
    EXPECT_FALSE(GetClientRect(kChild, &r));
    EXPECT_FALSE(GetWindowRect(kChild, &r));
    EXPECT_FALSE(ClientToScreen(kChild, &p));
    EXPECT_FALSE(ScreenToClient(kChild, &p));
    EXPECT_EQ(MapWindowPoints(kChild, nullptr, &p, 1), 0);
    EXPECT_EQ(omDiagCount(79), 5u);
    PAINTSTRUCT ps;
    HDC dc = BeginPaint(kChild, &ps);
    ASSERT_NE(dc, nullptr);
    EXPECT_TRUE(IsRectEmpty(&ps.rcPaint));
    EXPECT_FALSE(ps.fErase);
    RECT clip;
    EXPECT_EQ(GetClipBox(dc, &clip), NULLREGION);
    EXPECT_TRUE(EndPaint(kChild, &ps));
}

} // namespace
