// The program's input state: the mouse capture, carried out as an X
// pointer grab on the capturing window's canvas, and the double-click
// time, which is the X Toolkit's multi-click time of the display.
#include "winmgmt/ominput.h"

#include "core/omwindow.h"
#include "kernel/omdiag.h"
#include "kernel/omdisplay.h"

#include <X11/Intrinsic.h>

extern "C" {
OLMO_API HWND omCapturehWnd = nullptr;
}

namespace om::winmgmt {
namespace {

// What the grab asks for: the buttons and all motion (0x204C).
constexpr unsigned kGrabMask = ButtonPressMask | ButtonReleaseMask | PointerMotionMask |
                               ButtonMotionMask;
static_assert(kGrabMask == 0x204C);

// The X window that receives the captured pointer: the window's canvas, or
// for a child without widgets of its own the parent's.
Window grabWindow(const WindowRecord &w)
{
    Widget canvas = w.canvasWidget;
    if (!canvas)
        if (WindowRecord *p = omWindowRecord(w.parent))
            canvas = p->canvasWidget;
    return canvas ? XtWindow(canvas) : 0;
}

// After a drag the window under the pointer may have changed without any
// motion: the focus window hears where the pointer is now.
void postPointerPosition()
{
    HWND focus = GetFocus();
    if (!omIsWindow(focus))
        return;
    POINT p{};
    if (!GetCursorPos(&p))
        return;
    ScreenToClient(focus, &p);
    WPARAM keys = 0;
    if (GetKeyState(VK_SHIFT) < 0)
        keys |= MK_SHIFT;
    if (GetKeyState(VK_CONTROL) < 0)
        keys |= MK_CONTROL;
    PostMessageA(focus, WM_MOUSEMOVE, keys, MAKELPARAM(p.x, p.y));
}

}  // namespace
}  // namespace om::winmgmt

extern "C" HWND WINAPI GetCapture(void)
{
    return omCapturehWnd;
}

extern "C" BOOL WINAPI ReleaseCapture(void)
{
    if (!omThreadRuleOk("ReleaseCapture"))
        return FALSE;
    if (omCapturehWnd && omDisplay) {
        XUngrabPointer(omDisplay, CurrentTime);
        XFlush(omDisplay);
    }
    omCapturehWnd = nullptr;
    om::winmgmt::postPointerPosition();
    return TRUE;
}

extern "C" HWND WINAPI SetCapture(HWND hWnd)
{
    if (!omThreadRuleOk("SetCapture"))
        return nullptr;
    if (!hWnd) {
        ReleaseCapture();
        return nullptr;
    }
    WindowRecord *w = omWindowRecord(hWnd);
    if (!w) {
        omDebugWarning(OmDiag::BadWindowHandle, "SetCapture", hWnd);
        return nullptr;
    }
    if (w->style & WS_DISABLED) {
        ReleaseCapture();
        return nullptr;
    }
    Window grab = om::winmgmt::grabWindow(*w);
    if (grab && omDisplay)
        XGrabPointer(omDisplay, grab, False, om::winmgmt::kGrabMask, GrabModeAsync,
                     GrabModeAsync, None, None, CurrentTime);
    HWND previous = omCapturehWnd;
    omCapturehWnd = hWnd;
    return previous;
}

extern "C" BOOL WINAPI SetDoubleClickTime(UINT uInterval)
{
    // Zero asks for the system default, as on Windows.
    if (uInterval == 0)
        uInterval = 500;
    if (Display *dpy = omEnsureDisplay())
        XtSetMultiClickTime(dpy, static_cast<int>(uInterval));
    omDoubleClickTime = uInterval;
    return TRUE;
}

extern "C" UINT WINAPI GetDoubleClickTime(void)
{
    if (Display *dpy = omEnsureDisplay())
        return static_cast<UINT>(XtGetMultiClickTime(dpy));
    return omDoubleClickTime;
}
