// A person closing the first top-level window through the window manager
// (Alt+F4 under mwm): the program's loop sees WM_SYSCOMMAND SC_CLOSE,
// WM_CLOSE and WM_DESTROY, leaves when the procedure posts the quit
// message, and the process goes on.  Also input through GetMessageA with
// its position, time and character translation.
#include <gtest/gtest.h>

#include "harness/input.h"
#include "harness/pump.h"

#include "core/omwindow.h"
#include "kernel/omdisplay.h"
#include "kernel/ominit.h"
#include "messages/ompaint.h"

#include <windows.h>

#include <X11/Intrinsic.h>
#include <X11/keysym.h>

#include <chrono>
#include <poll.h>
#include <string>
#include <vector>

namespace {

using namespace std::chrono_literals;

std::vector<std::pair<UINT, WPARAM>> g_seen;
std::string g_typed;

LRESULT CALLBACK closeProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    switch (msg) {
    case WM_SYSCOMMAND:
    case WM_CLOSE:
        g_seen.push_back({msg, wParam & 0xFFF0});
        break;
    case WM_DESTROY:
        g_seen.push_back({msg, 0});
        PostQuitMessage(0);
        return 0;
    case WM_CHAR:
        g_typed += static_cast<char>(wParam);
        return 0;
    default:
        break;
    }
    return DefWindowProcA(hwnd, msg, wParam, lParam);
}

void pumpOnce()
{
    MSG m;
    if (PeekMessageA(&m, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&m);
        DispatchMessageA(&m);
    } else {
        pollfd fd{ConnectionNumber(omDisplay), POLLIN, 0};
        poll(&fd, 1, 5);
    }
}

bool managed(Window w)
{
    Atom wmState = XInternAtom(omDisplay, "WM_STATE", False);
    Atom type;
    int format;
    unsigned long n, after;
    unsigned char *data = nullptr;
    bool ok = XGetWindowProperty(omDisplay, w, wmState, 0, 2, False, wmState, &type, &format, &n,
                                 &after, &data) == Success &&
              n > 0;
    if (data)
        XFree(data);
    return ok;
}

TEST(MessageLoopWm, InputArrivesThroughTheLoopAndAltF4EndsIt)
{
    ASSERT_TRUE(omInitialize(nullptr, nullptr));
    WNDCLASSA wc{};
    wc.lpfnWndProc = closeProc;
    wc.lpszClassName = "CloseTest";
    wc.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
    ASSERT_NE(RegisterClassA(&wc), 0);
    HWND hwnd = CreateWindowExA(0, "CloseTest", "close me", WS_OVERLAPPEDWINDOW, 60, 60, 240,
                                160, nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(hwnd, nullptr);
    ShowWindow(hwnd, SW_SHOWNORMAL);
    UpdateWindow(hwnd);
    Widget shell = omWindowRecord(hwnd)->shellWidget;
    Widget canvas = omWindowRecord(hwnd)->canvasWidget;
    OM_PUMP_UNTIL(XtWindow(shell) && managed(XtWindow(shell)), 5000, pumpOnce);
    om::test::pumpFor(100ms, pumpOnce);

    // Focus by a click, as a person would, then type.
    ASSERT_TRUE(om::test::clickWindow(omDisplay, XtWindow(canvas), 30, 40));
    MSG m{};
    bool clicked = om::test::pumpUntil(
        [&] {
            while (PeekMessageA(&m, nullptr, 0, 0, PM_REMOVE)) {
                if (m.message == WM_LBUTTONDOWN)
                    return true;
                TranslateMessage(&m);
                DispatchMessageA(&m);
            }
            return false;
        },
        3000ms, [] { pollfd fd{ConnectionNumber(omDisplay), POLLIN, 0}; poll(&fd, 1, 5); });
    ASSERT_TRUE(clicked);
    EXPECT_EQ(LOWORD(m.lParam), 30);
    EXPECT_EQ(HIWORD(m.lParam), 40);
    Window child;
    int rx = 0, ry = 0;
    XTranslateCoordinates(omDisplay, XtWindow(canvas), DefaultRootWindow(omDisplay), 30, 40, &rx,
                          &ry, &child);
    EXPECT_EQ(GetMessagePos(), static_cast<DWORD>(MAKELONG(rx, ry)));
    EXPECT_EQ(GetMessageTime(), static_cast<LONG>(m.time));
    EXPECT_NE(m.time, 0u);
    // The widgets can have the click back as the event it came from; a
    // message that came from no event is built.
    XEvent back;
    ASSERT_TRUE(omMsgToEvent(m.hwnd, m.message, m.wParam, m.lParam, &back));
    EXPECT_EQ(back.type, ButtonPress);
    EXPECT_FALSE(back.xbutton.send_event);
    EXPECT_EQ(back.xbutton.x, 30);
    ASSERT_TRUE(omMsgToEvent(hwnd, WM_RBUTTONUP, 0, MAKELPARAM(5, 6), &back));
    EXPECT_EQ(back.type, ButtonRelease);
    EXPECT_EQ(back.xbutton.button, 3u);
    EXPECT_EQ(back.xbutton.y, 6);
    EXPECT_TRUE(back.xbutton.send_event);
    EXPECT_EQ(back.xbutton.window, XtWindow(canvas));
    EXPECT_FALSE(omMsgToEvent(hwnd, WM_KEYDOWN, 'A', 0, &back));

    om::test::pumpFor(100ms, pumpOnce);
    g_typed.clear();
    ASSERT_TRUE(om::test::typeText(omDisplay, "aB1"));
    ASSERT_TRUE(om::test::pressKey(omDisplay, XK_Caps_Lock));
    ASSERT_TRUE(om::test::typeText(omDisplay, "cD"));
    ASSERT_TRUE(om::test::pressKey(omDisplay, XK_Caps_Lock));
    OM_PUMP_UNTIL(g_typed.size() >= 5, 3000, pumpOnce);
    EXPECT_EQ(g_typed, "aB1Cd") << "Shift and Caps Lock";

    // Alt+F4: mwm asks the client to delete its window.
    ASSERT_TRUE(om::test::pressKey(omDisplay, XK_F4, Mod1Mask));
    int code = -1;
    bool left = om::test::pumpUntil(
        [&] {
            while (PeekMessageA(&m, nullptr, 0, 0, PM_REMOVE)) {
                if (m.message == WM_QUIT) {
                    code = static_cast<int>(m.wParam);
                    return true;
                }
                TranslateMessage(&m);
                DispatchMessageA(&m);
            }
            return false;
        },
        5000ms, [] { pollfd fd{ConnectionNumber(omDisplay), POLLIN, 0}; poll(&fd, 1, 5); });
    ASSERT_TRUE(left);
    EXPECT_EQ(code, 0);
    EXPECT_EQ(g_seen, (std::vector<std::pair<UINT, WPARAM>>{
                          {WM_SYSCOMMAND, SC_CLOSE}, {WM_CLOSE, 0}, {WM_DESTROY, 0}}));
    EXPECT_FALSE(IsWindow(hwnd));
    // The process lives on after its last window.
    om::test::pumpFor(100ms, pumpOnce);
    SUCCEED();
}

}  // namespace
