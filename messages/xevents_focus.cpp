// X focus changes into activation: WM_ACTIVATEAPP for windows without an
// owner, the modifier state picked up again when a top-level window gains
// the focus, WM_MOUSEACTIVATE when a click brought the focus, and the
// hand-over to activation.
#include "messages/xevents.h"

#include "core/omwindow.h"
#include "kernel/omdisplay.h"
#include "messages/ommessageq.h"

#include <X11/Intrinsic.h>

extern "C" {
void WINAPI omActivateWindow(HWND hwnd, int state);
void WINAPI omDeActivateWindow(HWND hwnd);
}

namespace om::messages {
namespace {

UINT downMessageOf(unsigned button)
{
    switch (button) {
    case 2: return WM_MBUTTONDOWN;
    case 3: return WM_RBUTTONDOWN;
    default: return WM_LBUTTONDOWN;
    }
}

// A focus change that a click caused: the window clicked into may refuse
// the click (MA_ACTIVATEANDEAT); otherwise the press stays queued for the
// translation.  Answers whether there was a click.
bool clickActivation(HWND hwnd)
{
    XEvent press;
    if (!XCheckMaskEvent(omDisplay, ButtonPressMask, &press))
        return false;
    HWND top = topLevelOf(hwnd);
    if (!omIsWindow(top)) {
        XPutBackEvent(omDisplay, &press);
        return true;
    }
    LRESULT hit = SendMessageA(top, WM_NCHITTEST, 0,
                               MAKELPARAM(press.xbutton.x_root, press.xbutton.y_root));
    LRESULT answer = omIsWindow(top)
                         ? SendMessageA(top, WM_MOUSEACTIVATE, reinterpret_cast<WPARAM>(top),
                                        MAKELPARAM(hit, downMessageOf(press.xbutton.button)))
                         : 0;
    if (answer != MA_ACTIVATEANDEAT)
        XPutBackEvent(omDisplay, &press);
    return true;
}

// A tool bar child passes the focus on between its own widgets: the loss
// is only for a moment when the gain is already queued.
bool focusComesBack(const WindowRecord &w)
{
    WindowRecord *first = omWindowRecord(w.firstChild);
    if (!first || first->kind != OM_WK_TOOLBAR)
        return false;
    XEvent next;
    if (!XCheckTypedEvent(omDisplay, FocusIn, &next))
        return false;
    XPutBackEvent(omDisplay, &next);
    return true;
}

}  // namespace

void translateFocus(HWND hwnd, XEvent &ev)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w)
        return;
    const XFocusChangeEvent &f = ev.xfocus;
    bool in = ev.type == FocusIn;
    if (in) {
        if (!(w->style & WS_CHILD)) {
            XtDispatchEvent(&ev);
            if (!(w->style & WS_POPUP))
                omUpdateCriticalVirtKeys();
        }
    } else {
        XtDispatchEvent(&ev);
    }
    // Grabs and ungrabs move the focus for a moment only.
    if (f.mode != NotifyNormal && f.mode != NotifyWhileGrabbed)
        return;
    if (f.detail != NotifyNonlinear)
        return;
    if (!omIsWindow(hwnd))
        return;
    // Only the window that takes the focus itself (not the ancestors the
    // focus passes through) tells the application, so one focus change
    // gives one WM_ACTIVATEAPP.
    if (in) {
        if (!w->owner)
            SendMessageA(hwnd, WM_ACTIVATEAPP, TRUE, 0);
        if (!omIsWindow(hwnd) || (w->style & WS_DISABLED))
            return;
        bool clicked = clickActivation(hwnd);
        if (omIsWindow(hwnd))
            omActivateWindow(hwnd, clicked ? WA_CLICKACTIVE : WA_ACTIVE);
        return;
    }
    bool ownWidget = (w->canvasWidget && XtWindow(w->canvasWidget) == f.window) ||
                     (w->shellWidget && XtWindow(w->shellWidget) == f.window) ||
                     (w->frameWidget && XtWindow(w->frameWidget) == f.window);
    if (!ownWidget || focusComesBack(*w))
        return;
    if (!w->owner)
        SendMessageA(hwnd, WM_ACTIVATEAPP, FALSE, 0);
    omDeActivateWindow(hwnd);
}

}  // namespace om::messages
