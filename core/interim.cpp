// Early slices of other subsystems that a program needs before those
// subsystems land: the bells, the message box stand-in, the graphics
// layer's window callbacks and the X pump used before the message loop.
// Each is replaced whole by its owner (dialogs/, winmgmt/).
#include "core/omwindow.h"

#include "graphics/omwindowhooks.h"
#include "kernel/omdisplay.h"
#include "kernel/omplaceholder.h"

#include <Xm/Xm.h>
#include <X11/IntrinsicP.h>
#include <X11/Shell.h>
#include <X11/Xutil.h>

#include <algorithm>
#include <cstdio>
#include <poll.h>

// ---------------------------------------------------------------------------
// Bells and the message box stand-in.

extern "C" BOOL WINAPI MessageBeep(UINT)
{
    if (!omEnsureDisplay())
        return FALSE;
    XBell(omDisplay, 0);
    XFlush(omDisplay);
    return TRUE;
}

extern "C" BOOL WINAPI Beep(DWORD dwFreq, DWORD dwDuration)
{
    if (!omEnsureDisplay())
        return FALSE;
    XKeyboardControl kc{};
    kc.bell_pitch = static_cast<int>(std::min<DWORD>(dwFreq, 32767));
    kc.bell_duration = static_cast<int>(std::min<DWORD>(dwDuration, 32767));
    XChangeKeyboardControl(omDisplay, KBBellPitch | KBBellDuration, &kc);
    XBell(omDisplay, 0);
    kc.bell_pitch = kc.bell_duration = -1;
    XChangeKeyboardControl(omDisplay, KBBellPitch | KBBellDuration, &kc);
    XFlush(omDisplay);
    return TRUE;
}

static OmPlaceholder om_interim_MessageBoxA("MessageBoxA");

extern "C" int WINAPI MessageBoxA(HWND, LPCSTR lpText, LPCSTR lpCaption, UINT)
{
    omPlaceholderCalled(&om_interim_MessageBoxA);
    std::fprintf(stderr, "%s: %s\n", lpCaption ? lpCaption : "Error", lpText ? lpText : "");
    return IDOK;
}

// ---------------------------------------------------------------------------
// What the graphics layer reads of windows.  Record and widget geometry
// only: these are hot and never ask the server.

namespace {

bool clientSize(const WindowRecord &w, int *width, int *height)
{
    if (w.canvasWidget) {
        *width = w.canvasWidget->core.width;
        *height = w.canvasWidget->core.height;
    } else {
        *width = w.cx;
        *height = w.cy;
    }
    return true;
}

}  // namespace

extern "C" OLMO_API BOOL omWindowClientRect(HWND hwnd, RECT *r)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !r)
        return FALSE;
    int width, height;
    clientSize(*w, &width, &height);
    *r = {0, 0, width, height};
    return TRUE;
}

namespace {

void widgetRootOrigin(Widget widget, int *x, int *y)
{
    Position rx = 0, ry = 0;
    if (widget && XtIsRealized(widget))
        XtTranslateCoords(widget, 0, 0, &rx, &ry);
    *x = rx;
    *y = ry;
}

BOOL hookWindowRect(HWND hwnd, RECT *r)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !r)
        return FALSE;
    int x = w->x, y = w->y, cx = w->cx, cy = w->cy;
    if (w->shellWidget && !(w->style & WS_CHILD)) {
        widgetRootOrigin(w->shellWidget, &x, &y);
    } else if (w->shellWidget) {
        // A child's frame as it was last laid out, its X border included.
        Widget frame = w->shellWidget;
        int b = frame->core.border_width;
        widgetRootOrigin(frame, &x, &y);
        x -= b;
        y -= b;
        cx = frame->core.width + 2 * b;
        cy = frame->core.height + 2 * b;
    } else if (WindowRecord *p = omWindowRecord(w->parent); p && p->canvasWidget) {
        // A windowless child lives in its parent's client coordinates.
        int px, py;
        widgetRootOrigin(p->canvasWidget, &px, &py);
        x += px;
        y += py;
    }
    *r = {x, y, x + cx, y + cy};
    return TRUE;
}

BOOL hookClientOrigin(HWND hwnd, POINT *p)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !p)
        return FALSE;
    int x = w->x, y = w->y;
    if (w->canvasWidget)
        widgetRootOrigin(w->canvasWidget, &x, &y);
    *p = {x, y};
    return TRUE;
}

BOOL hookPaintTarget(HWND hwnd, BOOL whole, OmPaintTarget *t)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !t)
        return FALSE;
    Widget widget = whole ? w->shellWidget : w->canvasWidget;
    *t = {};
    t->widget = widget;
    t->drawable = widget && XtIsRealized(widget) ? XtWindow(widget) : None;
    if (widget) {
        t->width = widget->core.width;
        t->height = widget->core.height;
    }
    return TRUE;
}

UINT hookClassStyle(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    return w && w->windowClass ? w->windowClass->style : 0;
}

HBRUSH hookClassBrush(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    return w && w->windowClass ? w->windowClass->background : nullptr;
}

LRESULT hookEraseBackground(HWND hwnd, HDC hdc)
{
    return om::core::send(hwnd, WM_ERASEBKGND, reinterpret_cast<WPARAM>(hdc), 0);
}

void hookCaret(HWND) {}

}  // namespace

namespace om::core {
void registerGraphicsHooks()
{
    OmGdiWindowHooks hooks{};
    hooks.getClientRect = omWindowClientRect;
    hooks.getWindowRect = hookWindowRect;
    hooks.getClientOrigin = hookClientOrigin;
    hooks.getPaintTarget = hookPaintTarget;
    hooks.takeUpdateRegion = omPaintTakeUpdateRegion;
    hooks.getClassStyle = hookClassStyle;
    hooks.getClassBrush = hookClassBrush;
    hooks.sendEraseBackground = hookEraseBackground;
    hooks.hideCaret = hookCaret;
    hooks.showCaret = hookCaret;
    omGdiRegisterWindowHooks(&hooks);
}
}  // namespace om::core

// ---------------------------------------------------------------------------
// Pumping X before the message loop exists: the message subsystem's pump
// translates what is pending and runs the idle drain; otherwise waits up
// to waitMs for the server.  Main thread.  Returns how many X events were
// routed.

extern "C" int omProcessXEvents(XEvent *event);

extern "C" OLMO_API int omPumpXEvents(unsigned waitMs)
{
    if (!omAppContext || !omDisplay)
        return 0;
    int n = 0;
    // Each call stops after one key event or at the wake pipe.
    for (int calls = 0; calls < 1000 && XtAppPending(omAppContext); ++calls)
        n += omProcessXEvents(nullptr);
    omRunIdleDrain();
    if (!n && waitMs) {
        pollfd fd{ConnectionNumber(omDisplay), POLLIN, 0};
        poll(&fd, 1, static_cast<int>(waitMs));
    }
    return n;
}
