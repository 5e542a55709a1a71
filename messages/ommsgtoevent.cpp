// Messages turned back into X events for the widgets behind a window: the
// event a message was made from when the thread's ring of recent messages
// still holds it, else one built from the message; and a paint rectangle
// as an exposure of the window's frame.
#include "messages/ompaint.h"

#include "core/omwindow.h"
#include "kernel/omdisplay.h"
#include "messages/ommessageq.h"

#include <X11/Intrinsic.h>

#include <cstdlib>

namespace {

Window windowOf(const WindowRecord &w)
{
    for (Widget widget : {w.canvasWidget, w.frameWidget, w.shellWidget})
        if (widget && XtIsRealized(widget))
            return XtWindow(widget);
    return None;
}

unsigned long serialNow()
{
    return omDisplay ? XNextRequest(omDisplay) - 1 : 0;
}

}  // namespace

extern "C" {

OLMO_API BOOL omMsgToEvent(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam, XEvent *event)
{
    if (!event)
        return FALSE;
    OmMsgRecord record;
    if (omMsgMRUSearch(hwnd, msg, wParam, lParam, &record)) {
        *event = record.event;
        return TRUE;
    }
    *event = XEvent{};
    event->xany.serial = serialNow();
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !omDisplay || msg < WM_MOUSEMOVE || msg > WM_MBUTTONDBLCLK)
        return FALSE;
    Window window = windowOf(*w);
    if (window == None)
        return FALSE;
    XButtonEvent &b = event->xbutton;
    switch (msg) {
    case WM_MOUSEMOVE:
        b.type = MotionNotify;
        break;
    case WM_LBUTTONDOWN:
    case WM_RBUTTONDOWN:
    case WM_MBUTTONDOWN:
        b.type = ButtonPress;
        break;
    default:
        b.type = ButtonRelease;
        break;
    }
    b.button = msg == WM_RBUTTONDOWN || msg == WM_RBUTTONUP || msg == WM_RBUTTONDBLCLK ? 3
               : msg == WM_MBUTTONDOWN || msg == WM_MBUTTONUP || msg == WM_MBUTTONDBLCLK ? 2
                                                                                          : 1;
    b.display = omDisplay;
    b.window = window;
    b.root = DefaultRootWindow(omDisplay);
    b.x = static_cast<short>(LOWORD(lParam));
    b.y = static_cast<short>(HIWORD(lParam));
    Window child;
    XTranslateCoordinates(omDisplay, window, b.root, b.x, b.y, &b.x_root, &b.y_root, &child);
    b.send_event = True;
    b.same_screen = True;
    b.time = CurrentTime;
    return TRUE;
}

OLMO_API BOOL omWMPAINTToEvent(HWND hwnd, const PAINTSTRUCT *paint, XEvent *event)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !paint || !event || !w->frameWidget || !XtIsRealized(w->frameWidget))
        return FALSE;
    RECT r = paint->rcPaint;
    HDC dc = w->ownDC ? w->ownDC : GetDC(hwnd);
    LPtoDP(dc, reinterpret_cast<POINT *>(&r), 2);
    if (!w->ownDC)
        ReleaseDC(hwnd, dc);
    *event = XEvent{};
    XExposeEvent &e = event->xexpose;
    e.type = Expose;
    e.serial = serialNow();
    e.send_event = True;
    e.display = omDisplay;
    e.window = XtWindow(w->frameWidget);
    e.x = r.left;
    e.y = r.top;
    e.width = std::abs(r.right - r.left);
    e.height = std::abs(r.bottom - r.top);
    return TRUE;
}

}  // extern "C"
