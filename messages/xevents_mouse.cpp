// Pointer events into mouse messages: where a window's input goes (itself,
// a disabled child's enabled ancestor, or nowhere), presses and releases
// with the double-click machine, compressed motion, the wheel (one message
// per notch, never a click), WM_SETCURSOR, and mouse_event through XTest.
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

extern "C" void WINAPI omPostMouseInputWhileDisabled(HWND target, UINT message, WPARAM wParam,
                                                     LPARAM lParam);

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

// The event's point in the window's client area.
void clientPoint(const WindowRecord &w, Window from, int &x, int &y)
{
    if (!w.canvasWidget || !XtWindow(w.canvasWidget) || XtWindow(w.canvasWidget) == from)
        return;
    Window child;
    XTranslateCoordinates(omDisplay, from, XtWindow(w.canvasWidget), x, y, &x, &y, &child);
}

bool ownedByCaller(const WindowRecord &w)
{
    return omThreadRecordFromHandle(w.thread) == omCurrentThreadRecord();
}

// The combo box whose edit field hwnd is: the combo box drives its edit
// field's selection and drop-down from the field's mouse input.
HWND comboOfEdit(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || w->kind != OM_WK_EDIT || !(w->style & WS_CHILD))
        return nullptr;
    WindowRecord *p = omWindowRecord(w->parent);
    return p && p->kind == OM_WK_COMBOBOX ? w->parent : nullptr;
}

// A disabled child's mouse input goes to its enabled ancestor, in that
// ancestor's client coordinates; a combo box's edit field's to the combo
// box, in the field's coordinates; everything else is posted with its
// event.
void deliver(HWND hwnd, const InputRoute &route, UINT message, WPARAM wParam, int x, int y,
             const XEvent &ev, bool screenPoint = false)
{
    if (route.kind == InputRoute::Redirect) {
        if (!screenPoint)
            omTranslateCoords(route.target, hwnd, &x, &y);
        omPostMouseInputWhileDisabled(route.target, message, wParam, MAKELPARAM(x, y));
        return;
    }
    HWND combo = comboOfEdit(hwnd);
    omPostMessageEvent(combo ? combo : hwnd, message, wParam, MAKELPARAM(x, y), &ev, nullptr, 0);
}

void wheel(HWND hwnd, XEvent &ev, const InputRoute &route)
{
    if (ev.type != ButtonPress)
        return;
    const XButtonEvent &b = ev.xbutton;
    bool horizontal = b.button >= 6;
    int delta = (b.button == 4 || b.button == 7) ? WHEEL_DELTA : -WHEEL_DELTA;
    WPARAM keys = mouseKeyState(b.state);
    deliver(hwnd, route, horizontal ? WM_MOUSEHWHEEL : WM_MOUSEWHEEL,
            MAKEWPARAM(keys, static_cast<WORD>(delta)), b.x_root, b.y_root, ev, true);
}

// Whether the window or an ancestor up to its top-level window is
// disabled, or the top-level window is cut off by a modal dialog.
bool cutOff(HWND hwnd)
{
    for (HWND h = hwnd; h;) {
        WindowRecord *w = omWindowRecord(h);
        if (!w || (w->style & WS_DISABLED))
            return true;
        if (!(w->style & WS_CHILD))
            return w->blockedByModal;
        h = w->parent;
    }
    return false;
}

}  // namespace

InputRoute inputRoute(HWND hwnd, const XEvent &ev)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w)
        return {InputRoute::Drop, nullptr};
    // Climb over the disabled children the event started in: the first
    // window above them takes their input when nothing cuts it off.
    HWND h = hwnd;
    while (w && (w->style & (WS_DISABLED | WS_CHILD)) == (WS_DISABLED | WS_CHILD)) {
        h = w->parent;
        w = omWindowRecord(h);
    }
    if (h != hwnd && w && !cutOff(h))
        return {InputRoute::Redirect, h};
    if (!cutOff(hwnd))
        return {};
    // The window holding the capture still hears the end of its drag.
    if (ev.type == ButtonRelease && GetCapture() == hwnd)
        return {};
    return {InputRoute::Drop, nullptr};
}

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

void translateButton(HWND hwnd, XEvent &ev, int hit, int x, int y, const InputRoute &route)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || route.kind == InputRoute::Drop)
        return;
    XButtonEvent &b = ev.xbutton;
    if (isWheel(b.button)) {
        wheel(hwnd, ev, route);
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
        if (b.button == 1 && route.kind == InputRoute::Normal && comboOfEdit(hwnd))
            ReleaseCapture();
        WPARAM keys = mouseKeyState(b.state) & ~info.bit;
        deliver(hwnd, route, info.up, keys, x, y, ev);
        if (route.kind == InputRoute::Normal)
            omProcessPostSetCursor(hwnd, &ev);
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
    // The field keeps the pointer while the combo box selects with it.
    if (button == 1 && route.kind == InputRoute::Normal && comboOfEdit(hwnd))
        SetCapture(hwnd);
    WPARAM keys = mouseKeyState(b.state) | info.bit;
    UINT message = dbl ? info.dblclk : info.down;
    deliver(hwnd, route, message, keys, x, y, ev);
    if (route.kind == InputRoute::Normal)
        omProcessPostSetCursor(hwnd, &ev);
    // After a double click nothing is remembered: a third press is single.
    lastPress = {b.time, button, b.x, b.y, dbl ? nullptr : hwnd};
}

void translateMotion(HWND hwnd, XEvent &ev, int hit, int x, int y, const InputRoute &route)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w)
        return;
    // The newest of a burst is the only one that counts.
    XEvent newer;
    while (XCheckTypedWindowEvent(omDisplay, ev.xmotion.window, MotionNotify, &newer))
        ev = newer;
    if (route.kind == InputRoute::Drop)
        return;
    const XMotionEvent &m = ev.xmotion;
    if (hit == -1) {
        x = m.x;
        y = m.y;
        clientPoint(*w, m.window, x, y);
    }
    // One unretrieved WM_MOUSEMOVE stands for all that follow it.
    if (route.kind == InputRoute::Normal && ownedByCaller(*w) && omIsMsgAvailable(QS_MOUSEMOVE))
        return;
    deliver(hwnd, route, WM_MOUSEMOVE, mouseKeyState(m.state), x, y, ev);
}

UINT nonClientPress(HWND hwnd, const XButtonEvent &b)
{
    UINT down = WM_NCLBUTTONDOWN, dblclk = WM_NCLBUTTONDBLCLK;
    unsigned vk = VK_LBUTTON, button = 1;
    if (b.button == 3) {
        down = WM_NCRBUTTONDOWN, dblclk = WM_NCRBUTTONDBLCLK, vk = VK_RBUTTON, button = 3;
    } else if (b.button == 2) {
        down = WM_NCMBUTTONDOWN, dblclk = WM_NCMBUTTONDBLCLK, vk = VK_MBUTTON, button = 2;
    }
    // The frame pairs presses by time alone: the class style and the
    // distance matter only in the client area.
    bool dbl = lastPress.hwnd == hwnd && lastPress.button == button && b.time >= lastPress.time &&
               b.time - lastPress.time <= omDoubleClickTime;
    omVirKeyState[vk] = 1;
    lastPress = {b.time, button, b.x, b.y, dbl ? nullptr : hwnd};
    return dbl ? dblclk : down;
}

}  // namespace om::messages

extern "C" OLMO_API void omProcessPostSetCursor(HWND hwnd, XEvent *event)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !event)
        return;
    bool inCanvas = w->canvasWidget && XtWindow(w->canvasWidget) == event->xany.window;
    UINT button = 0;
    if (event->type == ButtonPress || event->type == ButtonRelease) {
        bool press = event->type == ButtonPress;
        switch (event->xbutton.button) {
        case 1: button = press ? WM_LBUTTONDOWN : WM_LBUTTONUP; break;
        case 2: button = press ? WM_MBUTTONDOWN : WM_MBUTTONUP; break;
        case 3: button = press ? WM_RBUTTONDOWN : WM_RBUTTONUP; break;
        default: break;
        }
    }
    omPostMessageEvent(hwnd, WM_SETCURSOR, reinterpret_cast<WPARAM>(hwnd),
                       MAKELPARAM(inCanvas ? HTCLIENT : 0, button), event, nullptr, 0);
}

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
