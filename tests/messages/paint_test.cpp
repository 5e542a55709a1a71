// Invalidation and painting on a real window: update regions that
// accumulate into one WM_PAINT, BeginPaint clipping read back from the
// server, the erase flag, exposures by the server, UpdateWindow and
// RedrawWindow, validation, and a window of a second thread woken for its
// paint.
#include <gtest/gtest.h>

#include "harness/pump.h"
#include "harness/screenshot.h"

#include "core/omwindow.h"
#include "kernel/omdisplay.h"
#include "kernel/ominit.h"
#include "kernel/omthread.h"
#include "messages/ommessageq.h"
#include "messages/ompaint.h"
#include "messages/xevents.h"

#include <windows.h>

#include <X11/Intrinsic.h>

#include <atomic>
#include <chrono>
#include <poll.h>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;

// What the procedure saw, in order; kDrawn marks drawing after BeginPaint.
constexpr UINT kDrawn = 0xFFFF0001u;
struct PaintLog {
    std::vector<UINT> events;
    RECT paint{};
    BOOL fErase = FALSE;
    COLORREF fill = CLR_INVALID;
};
PaintLog g_log;

LRESULT CALLBACK paintProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    switch (msg) {
    case WM_ERASEBKGND:
    case WM_NCPAINT:
        g_log.events.push_back(msg);
        return msg == WM_ERASEBKGND ? 1 : 0;
    case WM_PAINT: {
        g_log.events.push_back(msg);
        PAINTSTRUCT ps;
        HDC dc = BeginPaint(hwnd, &ps);
        g_log.paint = ps.rcPaint;
        g_log.fErase = ps.fErase;
        if (g_log.fill != CLR_INVALID) {
            HBRUSH brush = CreateSolidBrush(g_log.fill);
            RECT all{0, 0, 2000, 2000};
            FillRect(dc, &all, brush);
            DeleteObject(brush);
        }
        g_log.events.push_back(kDrawn);
        EndPaint(hwnd, &ps);
        return 0;
    }
    default:
        return DefWindowProcA(hwnd, msg, wParam, lParam);
    }
}

void pumpOnce()
{
    if (!omProcessXEvents(nullptr)) {
        pollfd fd{ConnectionNumber(omDisplay), POLLIN, 0};
        poll(&fd, 1, 5);
    }
}

// Hands out every pending WM_PAINT of the calling thread the way the
// message loop will; returns how many were delivered.
int deliverPaints()
{
    int n = 0;
    MSG msg;
    while (n < 100 && omPaintGetMsg(nullptr, &msg, FALSE, FALSE)) {
        SendMessageA(msg.hwnd, msg.message, msg.wParam, msg.lParam);
        ++n;
    }
    return n;
}

bool rectEq(const RECT &a, const RECT &b)
{
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

class Paint : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(omInitialize(nullptr, nullptr));
        WNDCLASSA wc{};
        if (!GetClassInfoA(nullptr, "PaintTest", &wc)) {
            wc.lpfnWndProc = paintProc;
            wc.lpszClassName = "PaintTest";
            wc.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
            ASSERT_NE(RegisterClassA(&wc), 0);
        }
        g_log = PaintLog{};
        hwnd = CreateWindowExA(0, "PaintTest", "paint", WS_OVERLAPPEDWINDOW, 30, 30, 200, 120,
                               nullptr, nullptr, nullptr, nullptr);
        ASSERT_NE(hwnd, nullptr);
        ShowWindow(hwnd, SW_SHOWNORMAL);
        // The first exposure of the shown window lists it for its whole
        // client area.
        OM_PUMP_UNTIL(omWindowRecord(hwnd)->exposed && omPaintIsHwndInQueue(hwnd), 3000, pumpOnce);
        om::test::pumpFor(30ms, pumpOnce);
        deliverPaints();
        g_log = PaintLog{};
    }
    void TearDown() override
    {
        if (IsWindow(hwnd))
            DestroyWindow(hwnd);
        om::test::pumpFor(10ms, pumpOnce);
        deliverPaints();
    }
    Window canvas() const { return XtWindow(omWindowRecord(hwnd)->canvasWidget); }
    uint32_t pixel(int x, int y) const
    {
        XSync(omDisplay, False);
        return om::test::pixelAt(omDisplay, canvas(), x, y) & 0xFFFFFF;
    }

    HWND hwnd = nullptr;
};

TEST_F(Paint, TwoInvalidationsGiveOnePaintOfTheirUnionAndHonourTheEraseFlag)
{
    struct Case {
        BOOL erase;
        std::vector<UINT> expected;
    } cases[] = {
        {FALSE, {WM_PAINT, kDrawn}},
        {TRUE, {WM_PAINT, WM_ERASEBKGND, kDrawn}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.erase);
        g_log = PaintLog{};
        RECT a{10, 10, 30, 30}, b{50, 40, 70, 60};
        EXPECT_TRUE(InvalidateRect(hwnd, &a, c.erase));
        EXPECT_TRUE(InvalidateRect(hwnd, &b, FALSE));
        RECT update;
        EXPECT_TRUE(GetUpdateRect(hwnd, &update, FALSE));
        EXPECT_TRUE(rectEq(update, RECT{10, 10, 70, 60}));
        EXPECT_EQ(deliverPaints(), 1);
        EXPECT_EQ(g_log.events, c.expected);
        EXPECT_TRUE(rectEq(g_log.paint, RECT{10, 10, 70, 60}));
        EXPECT_FALSE(g_log.fErase) << "the procedure erased";
        EXPECT_FALSE(GetUpdateRect(hwnd, &update, FALSE));
        EXPECT_TRUE(rectEq(update, RECT{})) << "validated by BeginPaint";
        EXPECT_TRUE(omPaintIsPaintMsgEmpty());
    }
}

TEST_F(Paint, BeginPaintClipsDrawingToTheUpdateRegion)
{
    const uint32_t white = pixel(40, 20);
    g_log.fill = RGB(255, 0, 0);
    RECT a{10, 10, 30, 30}, b{50, 40, 70, 60};
    InvalidateRect(hwnd, &a, FALSE);
    InvalidateRect(hwnd, &b, FALSE);
    ASSERT_EQ(deliverPaints(), 1);
    const uint32_t red = 0xFF0000;
    EXPECT_EQ(pixel(15, 15), red);
    EXPECT_EQ(pixel(69, 59), red);
    EXPECT_EQ(pixel(40, 20), white) << "inside the bounding box, outside the region";
    EXPECT_EQ(pixel(100, 100), white);
    om::test::saveWindowPng(omDisplay, canvas(), om::test::testArtifactName());
}

TEST_F(Paint, ServerExposureBecomesThePaintOfTheExposedArea)
{
    // A window of another client over part of ours, then gone: the server
    // exposes what it covered.
    Window child;
    int rx = 0, ry = 0;
    XTranslateCoordinates(omDisplay, canvas(), DefaultRootWindow(omDisplay), 20, 30, &rx, &ry,
                          &child);
    XSetWindowAttributes attrs{};
    attrs.override_redirect = True;
    Window cover = XCreateWindow(omDisplay, DefaultRootWindow(omDisplay), rx, ry, 40, 25, 0,
                                 CopyFromParent, InputOutput, CopyFromParent, CWOverrideRedirect,
                                 &attrs);
    XMapRaised(omDisplay, cover);
    XSync(omDisplay, False);
    om::test::pumpFor(30ms, pumpOnce);
    deliverPaints();
    XDestroyWindow(omDisplay, cover);
    XSync(omDisplay, False);
    OM_PUMP_UNTIL(omPaintIsHwndInQueue(hwnd), 3000, pumpOnce);
    RECT update;
    EXPECT_TRUE(GetUpdateRect(hwnd, &update, FALSE));
    EXPECT_TRUE(rectEq(update, RECT{20, 30, 60, 55}))
        << update.left << "," << update.top << "," << update.right << "," << update.bottom;
    g_log = PaintLog{};
    EXPECT_EQ(deliverPaints(), 1);
    EXPECT_EQ(g_log.events, (std::vector<UINT>{WM_PAINT, WM_ERASEBKGND, kDrawn}))
        << "an exposure always erases";
}

TEST_F(Paint, UpdateWindowAndRedrawWindowPaintWhenTheirFlagsSay)
{
    RECT a{5, 5, 25, 25};
    InvalidateRect(hwnd, &a, FALSE);
    EXPECT_TRUE(UpdateWindow(hwnd));
    EXPECT_EQ(g_log.events, (std::vector<UINT>{WM_PAINT, kDrawn})) << "painted at once";
    EXPECT_FALSE(omPaintIsHwndInQueue(hwnd));
    g_log = PaintLog{};
    EXPECT_TRUE(UpdateWindow(hwnd));
    EXPECT_TRUE(g_log.events.empty()) << "nothing to paint";

    struct Case {
        UINT flags;
        std::vector<UINT> now;  // sent before RedrawWindow returns
        bool listed;            // a WM_PAINT waits afterwards
    } cases[] = {
        {RDW_INVALIDATE, {}, true},
        {RDW_INVALIDATE | RDW_UPDATENOW, {WM_PAINT, kDrawn, WM_NCPAINT}, false},
        {RDW_INVALIDATE | RDW_ERASENOW, {WM_ERASEBKGND}, true},
        {RDW_INVALIDATE | RDW_FRAME, {WM_NCPAINT}, true},
        {RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW,
         {WM_PAINT, WM_ERASEBKGND, kDrawn, WM_NCPAINT},
         false},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.flags);
        g_log = PaintLog{};
        EXPECT_TRUE(RedrawWindow(hwnd, nullptr, nullptr, c.flags));
        EXPECT_EQ(g_log.events, c.now);
        EXPECT_EQ(omPaintIsHwndInQueue(hwnd) != FALSE, c.listed);
        deliverPaints();
    }
    InvalidateRect(hwnd, nullptr, FALSE);
    EXPECT_TRUE(RedrawWindow(hwnd, nullptr, nullptr, RDW_VALIDATE));
    EXPECT_FALSE(omPaintIsHwndInQueue(hwnd));
}

TEST_F(Paint, ValidationRegionsAndRefusals)
{
    RECT a{0, 0, 40, 40};
    InvalidateRect(hwnd, &a, FALSE);
    RECT half{0, 0, 20, 40};
    EXPECT_TRUE(ValidateRect(hwnd, &half));
    EXPECT_TRUE(omPaintIsHwndInQueue(hwnd)) << "what is left still needs paint";
    RECT update;
    EXPECT_TRUE(GetUpdateRect(hwnd, &update, FALSE));
    EXPECT_TRUE(rectEq(update, RECT{20, 0, 40, 40}));
    HRGN rgn = CreateRectRgn(0, 0, 1, 1);
    EXPECT_EQ(GetUpdateRgn(hwnd, rgn, FALSE), COMPLEXREGION);
    RECT box;
    GetRgnBox(rgn, &box);
    EXPECT_TRUE(rectEq(box, RECT{20, 0, 40, 40}));
    EXPECT_TRUE(ValidateRect(hwnd, nullptr));
    EXPECT_FALSE(omPaintIsHwndInQueue(hwnd));
    EXPECT_EQ(GetUpdateRgn(hwnd, rgn, FALSE), NULLREGION);

    // A region invalidates exactly itself.
    HRGN two = CreateRectRgn(10, 10, 20, 20);
    HRGN other = CreateRectRgn(60, 60, 70, 70);
    CombineRgn(two, two, other, RGN_OR);
    EXPECT_TRUE(InvalidateRgn(hwnd, two, FALSE));
    EXPECT_EQ(GetUpdateRgn(hwnd, rgn, FALSE), COMPLEXREGION);
    EXPECT_TRUE(EqualRgn(rgn, two));
    ValidateRgn(hwnd, nullptr);
    DeleteObject(two);
    DeleteObject(other);

    // Refusals: empty rectangles, dead handles, bad regions.
    RECT empty{10, 10, 10, 30};
    EXPECT_FALSE(InvalidateRect(hwnd, &empty, FALSE));
    EXPECT_FALSE(ValidateRect(hwnd, &empty));
    HWND dead = reinterpret_cast<HWND>(static_cast<uintptr_t>(0xA0FFFF));
    EXPECT_FALSE(InvalidateRect(dead, nullptr, TRUE));
    EXPECT_FALSE(UpdateWindow(dead));
    EXPECT_FALSE(GetUpdateRect(dead, &update, FALSE));
    EXPECT_EQ(GetUpdateRgn(dead, rgn, FALSE), NULLREGION);
    EXPECT_EQ(GetUpdateRgn(hwnd, reinterpret_cast<HRGN>(hwnd), FALSE), NULLREGION);
    EXPECT_FALSE(RedrawWindow(nullptr, nullptr, nullptr, RDW_INVALIDATE));
    EXPECT_FALSE(omPaintGetMsg(nullptr, nullptr, FALSE, FALSE));
    DeleteObject(rgn);

    // A window with redrawing off is never painted, and leaves the list.
    InvalidateRect(hwnd, &a, FALSE);
    omWindowRecord(hwnd)->redraw = false;
    EXPECT_EQ(deliverPaints(), 0);
    EXPECT_FALSE(omPaintIsHwndInQueue(hwnd));
    omWindowRecord(hwnd)->redraw = true;

    // A window never shown is painted by its first exposure instead.
    HWND hidden = CreateWindowExA(0, "PaintTest", "hidden", WS_OVERLAPPEDWINDOW, 0, 0, 50, 50,
                                  nullptr, nullptr, nullptr, nullptr);
    EXPECT_FALSE(InvalidateRect(hidden, nullptr, TRUE));
    EXPECT_FALSE(omPaintIsHwndInQueue(hidden));
    DestroyWindow(hidden);
}

TEST_F(Paint, PeekedPaintKeepsTheCursorAndFilteredSearchFindsItsWindow)
{
    HWND second = CreateWindowExA(0, "PaintTest", "second", WS_OVERLAPPEDWINDOW, 250, 30, 100,
                                  80, nullptr, nullptr, nullptr, nullptr);
    ShowWindow(second, SW_SHOWNORMAL);
    OM_PUMP_UNTIL(omPaintIsHwndInQueue(second), 3000, pumpOnce);
    RECT a{0, 0, 10, 10};
    InvalidateRect(hwnd, &a, FALSE);
    MSG m{};
    // A peek hands out the same window until the cursor moves.
    ASSERT_TRUE(omPaintGetMsg(nullptr, &m, FALSE, TRUE));
    HWND first = m.hwnd;
    EXPECT_EQ(m.time, 1u) << "marked as peeked";
    ASSERT_TRUE(omPaintGetMsg(nullptr, &m, FALSE, TRUE));
    EXPECT_EQ(m.hwnd, first);
    // A filtered search finds the other window whatever the cursor says.
    HWND wanted = first == hwnd ? second : hwnd;
    ASSERT_TRUE(omPaintGetMsg(wanted, &m, FALSE, FALSE));
    EXPECT_EQ(m.hwnd, wanted);
    EXPECT_EQ(m.time, 0u);
    EXPECT_FALSE(omPaintGetMsg(reinterpret_cast<HWND>(1), &m, FALSE, FALSE));
    DestroyWindow(second);
    EXPECT_FALSE(omPaintIsHwndInQueue(second)) << "destruction drops the entry";
}

// A window of a second thread: the main thread invalidates it, and the
// owner, asleep in its own wait, is woken and paints.
class PaintThreads : public Paint {};

TEST_F(PaintThreads, InvalidationFromAnotherThreadWakesTheOwnerWhichPaints)
{
    constexpr int kRounds = 50;
    std::atomic<HWND> theirs{nullptr};
    std::atomic<int> painted{0};
    std::atomic<bool> stop{false};
    std::thread owner([&] {
        HWND h = CreateWindowExA(0, "PaintTest", "theirs", WS_OVERLAPPEDWINDOW, 0, 0, 60, 60,
                                 nullptr, nullptr, nullptr, nullptr);
        omSetFirstExpose(h, 1);
        theirs = h;
        auto deadline = std::chrono::steady_clock::now() + 10s;
        while (!stop.load() && std::chrono::steady_clock::now() < deadline) {
            MSG m;
            if (omPaintGetMsg(nullptr, &m, FALSE, FALSE)) {
                PAINTSTRUCT ps;
                BeginPaint(m.hwnd, &ps);
                EndPaint(m.hwnd, &ps);
                ++painted;
                continue;
            }
            omWaitQueueMsg(1000);
        }
    });
    while (!theirs.load())
        std::this_thread::yield();
    for (int i = 0; i < kRounds; ++i) {
        RECT r{i % 50, 0, i % 50 + 5, 5};
        EXPECT_TRUE(InvalidateRect(theirs.load(), &r, FALSE));
        // Each invalidation is painted before the next is made.
        auto deadline = std::chrono::steady_clock::now() + 2s;
        while (omPaintIsHwndInQueue(theirs.load()) && std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(100us);
        EXPECT_FALSE(omPaintIsHwndInQueue(theirs.load()));
    }
    stop = true;
    RECT last{0, 0, 2, 2};
    InvalidateRect(theirs.load(), &last, FALSE);  // wakes it to see stop
    owner.join();
    DestroyWindow(theirs.load());
    EXPECT_GE(painted.load(), kRounds);
    EXPECT_TRUE(omPaintIsPaintMsgEmpty()) << "nothing reached the main thread's list";
}

}  // namespace
