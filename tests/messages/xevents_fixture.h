// What the X event translation tests share: a shown top-level window of a
// CS_DBLCLKS class on the test display, a bounded pump through the message
// subsystem's X pump, and the posted messages read back from the queue.
#pragma once

#include <gtest/gtest.h>

#include "harness/input.h"
#include "harness/pump.h"

#include "core/omwindow.h"
#include "kernel/omdisplay.h"
#include "kernel/ominit.h"
#include "messages/ommessageq.h"
#include "messages/xevents.h"

#include <windows.h>

#include <X11/Intrinsic.h>

#include <chrono>
#include <poll.h>
#include <vector>

namespace om::test {

inline void xeventsPump()
{
    if (!omProcessXEvents(nullptr)) {
        pollfd fd{ConnectionNumber(omDisplay), POLLIN, 0};
        poll(&fd, 1, 5);
    }
}

// What the windows' procedure was sent, for messages that are not posted.
struct Sent {
    HWND hwnd;
    UINT msg;
    WPARAM wParam;
    LPARAM lParam;
    WINDOWPOS pos;  // of WM_WINDOWPOSCHANGED
};
inline std::vector<Sent> &sentMessages()
{
    static std::vector<Sent> sent;
    return sent;
}
inline std::vector<Sent> sentOf(UINT msg)
{
    std::vector<Sent> out;
    for (const Sent &s : sentMessages())
        if (s.msg == msg)
            out.push_back(s);
    return out;
}
inline LRESULT CALLBACK xeventsProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    switch (msg) {
    case WM_CONTEXTMENU:
    case WM_HELP:
    case WM_ACTIVATEAPP:
    case WM_SIZE:
    case WM_EXITSIZEMOVE:
        sentMessages().push_back({hwnd, msg, wParam, lParam, {}});
        break;
    case WM_WINDOWPOSCHANGED:
        sentMessages().push_back(
            {hwnd, msg, wParam, lParam, *reinterpret_cast<const WINDOWPOS *>(lParam)});
        break;
    default:
        break;
    }
    return DefWindowProcA(hwnd, msg, wParam, lParam);
}

inline const char *xeventsClass(UINT style)
{
    static const char *names[2] = {"XevPlain", "XevDblClk"};
    const char *name = names[(style & CS_DBLCLKS) ? 1 : 0];
    WNDCLASSA wc{};
    if (!GetClassInfoA(nullptr, name, &wc)) {
        wc.style = style;
        wc.lpfnWndProc = xeventsProc;
        wc.lpszClassName = name;
        wc.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
        RegisterClassA(&wc);
    }
    return name;
}

class XEventsTest : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(omInitialize(nullptr, nullptr));
        hwnd_ = makeWindow(CS_DBLCLKS, 40, 40, 0);
        ASSERT_TRUE(hwnd_);
        sentMessages().clear();
    }
    void TearDown() override
    {
        for (HWND h : made_)
            if (IsWindow(h))
                DestroyWindow(h);
        pumpFor(std::chrono::milliseconds(20), xeventsPump);
        drain();
    }

    // A shown top-level window, its canvas mapped; the pointer is parked
    // off it.
    HWND makeWindow(UINT classStyle, int x, int y, int motionless)
    {
        HWND h = _omCreateWindowEx(0, xeventsClass(classStyle), "xevents", WS_OVERLAPPEDWINDOW,
                                   x, y, 240, 160, nullptr, nullptr, nullptr, nullptr,
                                   motionless);
        if (!h)
            return nullptr;
        made_.push_back(h);
        ShowWindow(h, SW_SHOWNORMAL);
        Widget canvas = omWindowRecord(h)->canvasWidget;
        OM_PUMP_UNTIL(canvas && XtWindow(canvas) && viewable(XtWindow(canvas)), 3000,
                      xeventsPump);
        pumpFor(std::chrono::milliseconds(30), xeventsPump);
        drain();
        return h;
    }
    static bool viewable(Window w)
    {
        XWindowAttributes a;
        return XGetWindowAttributes(omDisplay, w, &a) && a.map_state == IsViewable;
    }
    Window canvasWindow(HWND h) const { return XtWindow(omWindowRecord(h)->canvasWidget); }
    // Root position of a point of the window's client area.
    POINT screenOf(HWND h, int x, int y) const
    {
        Window child;
        int rx = 0, ry = 0;
        XTranslateCoordinates(omDisplay, canvasWindow(h), DefaultRootWindow(omDisplay), x, y, &rx,
                              &ry, &child);
        return POINT{rx, ry};
    }

    // Events as the server would deliver them to h's canvas, for routing
    // straight through _omProcessXEvent.
    XEvent keyEvent(int type, HWND h, KeySym keysym) const
    {
        XEvent ev{};
        ev.xkey = {type, 0, False, omDisplay, canvasWindow(h), DefaultRootWindow(omDisplay), None,
                   CurrentTime, 0, 0, 0, 0, 0, XKeysymToKeycode(omDisplay, keysym), True};
        return ev;
    }
    XEvent pointerEvent(int type, HWND h, POINT client, unsigned button, Time time) const
    {
        POINT s = screenOf(h, client.x, client.y);
        XEvent ev{};
        ev.xbutton = {type, 0, False, omDisplay, canvasWindow(h), DefaultRootWindow(omDisplay),
                      None, time, client.x, client.y, s.x, s.y, 0, button, True};
        return ev;
    }

    // Everything the main thread's queue holds, oldest first.
    static std::vector<OmMsgRecord> drain()
    {
        std::vector<OmMsgRecord> out;
        OmMsgRecord r;
        while (omTestTakeMessage(nullptr, &r))
            out.push_back(r);
        return out;
    }
    // Collects queued messages in [lo, hi] for hwnd until count have come
    // or the deadline passes.
    std::vector<OmMsgRecord> collect(HWND h, UINT lo, UINT hi, size_t count, int ms = 2000)
    {
        std::vector<OmMsgRecord> got;
        waitUntil(
            [&] {
                OmMsgRecord r;
                while (omTestTakeMessage(nullptr, &r))
                    if (r.hwnd == h && r.message >= lo && r.message <= hi)
                        got.push_back(r);
                return got.size() >= count;
            },
            std::chrono::milliseconds(ms), xeventsPump);
        return got;
    }

    HWND hwnd_ = nullptr;
    std::vector<HWND> made_;
};

}  // namespace om::test
