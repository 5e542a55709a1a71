// Pointer events into mouse messages: presses and releases with the
// double-click machine, compressed motion, the wheel (one WM_MOUSEWHEEL
// or WM_MOUSEHWHEEL per notch, never a click), WM_SETCURSOR after a
// button, and mouse_event through the server's XTest extension.
#include "messages/xevents.h"

#include "core/omwindow.h"
#include "kernel/omdisplay.h"
#include "kernel/omkeyboard.h"
#include "kernel/omthread.h"
#include "messages/omkeymap.h"
#include "messages/ommessageq.h"

#include <X11/Intrinsic.h>
#include <X11/extensions/XTest.h>

#include <cstdlib>

namespace om::messages {
namespace {

// The last press: the whole state of the double-click machine.  Only the
// main thread translates, so it needs no lock.
struct LastPress {
    Time time = 0;
    unsigned button = 0;
    int x = 0, y = 0;
    HWND hwnd = nullptr;
} lastPress;

struct ButtonInfo {
    UINT down, dblclk, up;
    unsigned vk;
    WPARAM bit;
};

ButtonInfo buttonInfo(unsigned button)
{
    switch (button) {
    case 2: return {WM_MBUTTONDOWN, WM_MBUTTONDBLCLK, WM_MBUTTONUP, VK_MBUTTON, MK_MBUTTON};
    case 3: return {WM_RBUTTONDOWN, WM_RBUTTONDBLCLK, WM_RBUTTONUP, VK_RBUTTON, MK_RBUTTON};
    default: return {WM_LBUTTONDOWN, WM_LBUTTONDBLCLK, WM_LBUTTONUP, VK_LBUTTON, MK_LBUTTON};
    }
}

bool isWheel(unsigned button)
{
    return button >= 4 && button <= 7;
}

// A window cut off by a disabled window of its own chain takes no mouse
// input.
bool mouseBlocked(HWND hwnd)
{
    for (HWND h = hwnd; h;) {
        WindowRecord *w = omWindowRecord(h);
        if (!w)
            return true;
        if (w->style & WS_DISABLED)
            return true;
        if (!(w->style & WS_CHILD))
            return w->blockedByModal;
        h = w->parent;
    }
    return false;
}

// The event's point in the window's client area.
void clientPoint(const WindowRecord &w, Window from, int &x, int &y)
{
    if (!w.canvasWidget || !XtWindow(w.canvasWidget) || XtWindow(w.canvasWidget) == from)
        return;
    Window child;
    XTranslateCoordinates(omDisplay, from, XtWindow(w.canvasWidget), x, y, &x, &y, &child);
}

void postSetCursor(HWND hwnd, const WindowRecord &w, XEvent &ev, UINT buttonMessage)
{
    bool inCanvas = w.canvasWidget && XtWindow(w.canvasWidget) == ev.xany.window;
    omPostMessageEvent(hwnd, WM_SETCURSOR, reinterpret_cast<WPARAM>(hwnd),
                       MAKELPARAM(inCanvas ? HTCLIENT : 0, buttonMessage), &ev, nullptr, 0);
}

bool ownedByCaller(const WindowRecord &w)
{
    return omThreadRecordFromHandle(w.thread) == omCurrentThreadRecord();
}

void wheel(HWND hwnd, XEvent &ev)
{
    if (ev.type != ButtonPress)
        return;
    const XButtonEvent &b = ev.xbutton;
    bool horizontal = b.button >= 6;
    int delta = (b.button == 4 || b.button == 7) ? WHEEL_DELTA : -WHEEL_DELTA;
    WPARAM keys = mouseKeyState(b.state);
    omPostMessageEvent(hwnd, horizontal ? WM_MOUSEHWHEEL : WM_MOUSEWHEEL,
                       MAKEWPARAM(keys, static_cast<WORD>(delta)),
                       MAKELPARAM(b.x_root, b.y_root), &ev, nullptr, 0);
}

}  // namespace

WPARAM mouseKeyState(unsigned state)
{
    WPARAM keys = 0;
    if (state & Button1Mask)
        keys |= MK_LBUTTON;
    if (state & Button2Mask)
        keys |= MK_MBUTTON;
    if (state & Button3Mask)
        keys |= MK_RBUTTON;
    if ((state & omShiftMask) || omVirKeyState[VK_SHIFT])
        keys |= MK_SHIFT;
    if ((state & omControlMask) || omVirKeyState[VK_CONTROL])
        keys |= MK_CONTROL;
    return keys;
}

bool isDoubleClick(Time lastTime, unsigned lastButton, int lastX, int lastY, HWND lastHwnd,
                   Time time, unsigned button, int x, int y, HWND hwnd, unsigned limit)
{
    if (!lastHwnd || lastHwnd != hwnd || lastButton != button || time < lastTime)
        return false;
    Time gap = time - lastTime;
    if (button == 2 || button == 3)
        return gap <= limit;
    return gap < limit && std::abs(x - lastX) <= 3 && std::abs(y - lastY) <= 3;
}

void translateButton(HWND hwnd, XEvent &ev, int hit, int x, int y)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w)
        return;
    XButtonEvent &b = ev.xbutton;
    if (mouseBlocked(hwnd))
        return;
    if (isWheel(b.button)) {
        wheel(hwnd, ev);
        return;
    }
    if (hit == -1) {
        x = b.x;
        y = b.y;
        clientPoint(*w, b.window, x, y);
    }
    ButtonInfo info = buttonInfo(b.button);
    if (ev.type == ButtonRelease) {
        if (b.button > 3)
            return;
        omVirKeyState[info.vk] = 0;
        WPARAM keys = mouseKeyState(b.state) & ~info.bit;
        omPostMessageEvent(hwnd, info.up, keys, MAKELPARAM(x, y), &ev, nullptr, 0);
        postSetCursor(hwnd, *w, ev, info.up);
        return;
    }
    unsigned button = (b.button == 2 || b.button == 3) ? b.button : 1;
    if (button == 1 && lastPress.hwnd && b.time == lastPress.time && lastPress.button == 1)
        return;
    bool dbl = w->windowClass && (w->windowClass->style & CS_DBLCLKS) &&
               isDoubleClick(lastPress.time, lastPress.button, lastPress.x, lastPress.y,
                             lastPress.hwnd, b.time, button, b.x, b.y, hwnd, omDoubleClickTime);
    if (!dbl)
        omVirKeyState[info.vk] = 1;
    WPARAM keys = mouseKeyState(b.state) | info.bit;
    UINT message = dbl ? info.dblclk : info.down;
    omPostMessageEvent(hwnd, message, keys, MAKELPARAM(x, y), &ev, nullptr, 0);
    postSetCursor(hwnd, *w, ev, info.down);
    // After a double click nothing is remembered: a third press is single.
    lastPress = {b.time, button, b.x, b.y, dbl ? nullptr : hwnd};
}

void translateMotion(HWND hwnd, XEvent &ev, int hit, int x, int y)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w)
        return;
    // The newest of a burst is the only one that counts.
    XEvent newer;
    while (XCheckTypedWindowEvent(omDisplay, ev.xmotion.window, MotionNotify, &newer))
        ev = newer;
    if (mouseBlocked(hwnd))
        return;
    const XMotionEvent &m = ev.xmotion;
    if (hit == -1) {
        x = m.x;
        y = m.y;
        clientPoint(*w, m.window, x, y);
    }
    // One unretrieved WM_MOUSEMOVE stands for all that follow it.
    if (ownedByCaller(*w) && omIsMsgAvailable(QS_MOUSEMOVE))
        return;
    omPostMessageEvent(hwnd, WM_MOUSEMOVE, mouseKeyState(m.state), MAKELPARAM(x, y), &ev,
                       nullptr, 0);
}

}  // namespace om::messages

// ---------------------------------------------------------------------------
// Synthetic pointer input through XTest, loaded when first needed.

namespace {

void fakeButton(unsigned button, bool down)
{
    XTestFakeButtonEvent(omDisplay, button, down ? True : False, CurrentTime);
}

}  // namespace

extern "C" void WINAPI mouse_event(DWORD dwFlags, DWORD dx, DWORD dy, DWORD dwData,
                                   ULONG_PTR dwExtraInfo)
{
    (void)dwExtraInfo;
    if (!omDisplay)
        return;
    if (dwFlags & MOUSEEVENTF_MOVE) {
        if (dwFlags & MOUSEEVENTF_ABSOLUTE) {
            XTestFakeMotionEvent(omDisplay, -1, static_cast<int>(dx), static_cast<int>(dy),
                                 CurrentTime);
        } else {
            XTestFakeRelativeMotionEvent(omDisplay, static_cast<int>(dx), static_cast<int>(dy),
                                         CurrentTime);
        }
    }
    struct Flag {
        DWORD flag;
        unsigned button;
        bool down;
    };
    const Flag flags[] = {
        {MOUSEEVENTF_LEFTDOWN, 1, true},   {MOUSEEVENTF_LEFTUP, 1, false},
        {MOUSEEVENTF_RIGHTDOWN, 3, true},  {MOUSEEVENTF_RIGHTUP, 3, false},
        {MOUSEEVENTF_MIDDLEDOWN, 2, true}, {MOUSEEVENTF_MIDDLEUP, 2, false},
    };
    for (const Flag &f : flags)
        if (dwFlags & f.flag)
            fakeButton(f.button, f.down);
    if (dwFlags & MOUSEEVENTF_WHEEL) {
        // One click of button 4 or 5 per notch.
        auto delta = static_cast<int>(dwData);
        unsigned button = delta > 0 ? 4 : 5;
        for (int n = std::abs(delta) / WHEEL_DELTA; n > 0; --n) {
            fakeButton(button, true);
            fakeButton(button, false);
        }
    }
    XFlush(omDisplay);
}
