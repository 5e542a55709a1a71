// What the cursor and capture tests share: shown top-level windows on the
// test display, a bounded pump through the message subsystem's X pump, and
// posted mouse messages read back with PeekMessageA.
#pragma once

#include <gtest/gtest.h>

#include "harness/input.h"
#include "harness/pump.h"

#include "core/omwindow.h"
#include "kernel/omdisplay.h"
#include "kernel/ominit.h"
#include "messages/xevents.h"

#include <windows.h>

#include <X11/Intrinsic.h>

#include <chrono>
#include <poll.h>
#include <vector>

namespace om::test {

inline void winmgmtPump()
{
    if (!omProcessXEvents(nullptr)) {
        pollfd fd{ConnectionNumber(omDisplay), POLLIN, 0};
        poll(&fd, 1, 5);
    }
}

inline LRESULT CALLBACK winmgmtProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    return DefWindowProcA(hwnd, msg, wParam, lParam);
}

// A class per cursor, so that a test can give its windows a class cursor.
inline const char *winmgmtClass(HCURSOR cursor)
{
    static std::vector<std::pair<HCURSOR, std::string>> made;
    for (const auto &m : made)
        if (m.first == cursor)
            return m.second.c_str();
    made.emplace_back(cursor, "WinmgmtTest" + std::to_string(made.size()));
    WNDCLASSA wc{};
    wc.lpfnWndProc = winmgmtProc;
    wc.hCursor = cursor;
    wc.lpszClassName = made.back().second.c_str();
    wc.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
    RegisterClassA(&wc);
    return made.back().second.c_str();
}

// Counts X errors while installed, so that a test can tell that a change of
// cursor or grab was accepted by the server.
class XErrorCounter {
public:
    XErrorCounter() : previous_(XSetErrorHandler(&XErrorCounter::handler)) { count() = 0; }
    ~XErrorCounter() { XSetErrorHandler(previous_); }
    int errors() const
    {
        XSync(omDisplay, False);
        return count();
    }

private:
    static int &count()
    {
        static int n = 0;
        return n;
    }
    static int handler(Display *, XErrorEvent *)
    {
        ++count();
        return 0;
    }
    XErrorHandler previous_;
};

class WinmgmtTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(omInitialize(nullptr, nullptr)); }
    void TearDown() override
    {
        ReleaseCapture();
        for (HWND h : made_)
            if (IsWindow(h))
                DestroyWindow(h);
        pumpFor(std::chrono::milliseconds(20), winmgmtPump);
        drain(nullptr);
    }

    // A shown top-level window, its canvas mapped.
    HWND makeWindow(int x, int y, DWORD extraStyle = 0, HCURSOR classCursor = nullptr)
    {
        HWND h = _omCreateWindowEx(0, winmgmtClass(classCursor), "winmgmt",
                                   WS_OVERLAPPEDWINDOW | extraStyle, x, y, 200, 140, nullptr,
                                   nullptr, nullptr, nullptr, 0);
        if (!h)
            return nullptr;
        made_.push_back(h);
        ShowWindow(h, SW_SHOWNORMAL);
        Widget canvas = omWindowRecord(h)->canvasWidget;
        OM_PUMP_UNTIL(canvas && XtWindow(canvas) && viewable(XtWindow(canvas)), 3000,
                      winmgmtPump);
        pumpFor(std::chrono::milliseconds(30), winmgmtPump);
        drain(nullptr);
        return h;
    }
    static bool viewable(Window w)
    {
        XWindowAttributes a;
        return XGetWindowAttributes(omDisplay, w, &a) && a.map_state == IsViewable;
    }
    static Window canvasWindow(HWND h) { return XtWindow(omWindowRecord(h)->canvasWidget); }
    // Root position of a point of the window's client area.
    static POINT screenOf(HWND h, int x, int y)
    {
        Window child;
        int rx = 0, ry = 0;
        XTranslateCoordinates(omDisplay, canvasWindow(h), DefaultRootWindow(omDisplay), x, y, &rx,
                              &ry, &child);
        return POINT{rx, ry};
    }
    // Removes the queued pointer messages (client, non-client, WM_SETCURSOR)
    // and the test's own WM_USER messages.  Not WM_PAINT: it comes back
    // until someone paints.
    static void drain(HWND h)
    {
        const UINT ranges[][2] = {{WM_SETCURSOR, WM_SETCURSOR},
                                  {WM_NCMOUSEMOVE, WM_NCMBUTTONDBLCLK},
                                  {WM_MOUSEFIRST, WM_MOUSELAST},
                                  {WM_USER, WM_USER + 0x100}};
        MSG m;
        for (const auto &r : ranges)
            for (int i = 0; i < 10000 && PeekMessageA(&m, h, r[0], r[1], PM_REMOVE); ++i) {
            }
    }
    // Mouse button messages that reach h within ms (or until count came).
    std::vector<MSG> buttonMessages(HWND h, size_t count, int ms = 1500)
    {
        std::vector<MSG> got;
        waitUntil(
            [&] {
                MSG m;
                while (PeekMessageA(&m, h, WM_LBUTTONDOWN, WM_MBUTTONDBLCLK, PM_REMOVE))
                    got.push_back(m);
                return got.size() >= count;
            },
            std::chrono::milliseconds(ms), winmgmtPump);
        return got;
    }

    std::vector<HWND> made_;
};

}  // namespace om::test
