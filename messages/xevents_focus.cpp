// X focus changes into activation: WM_ACTIVATEAPP for windows without an
// owner, the modifier state picked up again when a top-level window gains
// the focus, and the hand-over to activation.
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
        if (omIsWindow(hwnd) && !(w->style & WS_DISABLED))
            omActivateWindow(hwnd, WA_ACTIVE);
        return;
    }
    bool ownWidget = (w->canvasWidget && XtWindow(w->canvasWidget) == f.window) ||
                     (w->shellWidget && XtWindow(w->shellWidget) == f.window) ||
                     (w->frameWidget && XtWindow(w->frameWidget) == f.window);
    if (!ownWidget)
        return;
    if (!w->owner)
        SendMessageA(hwnd, WM_ACTIVATEAPP, FALSE, 0);
    omDeActivateWindow(hwnd);
}

}  // namespace om::messages
