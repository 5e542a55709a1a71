// A style changed through SetWindowLong, applied to the widgets: the
// window manager's decorations of a top-level window, the border, state
// and decorations of a child's frame.
#include "core/omwindow.h"

#include "kernel/omdisplay.h"
#include "widgets/XoBorder.h"

#include <Xm/Xm.h>
#include <X11/IntrinsicP.h>
#include <X11/Shell.h>

#include <unistd.h>

namespace {

void restyleChild(WindowRecord &w, DWORD newStyle)
{
    if (omIsPredefinedChildClass(&w))
        return;
    bool thin = (newStyle & WS_BORDER) && !(newStyle & WS_THICKFRAME);
    if (thin || !(newStyle & (WS_BORDER | WS_THICKFRAME))) {
        Dimension bw = thin ? 1 : 0;
        XtVaSetValues(w.shellWidget, XmNborderWidth, bw, nullptr);
        if (Widget inner = w.frameWidget ? w.frameWidget : w.canvasWidget; inner && inner != w.shellWidget)
            XtVaSetValues(inner, XmNborderWidth, bw, nullptr);
    }
    if (!XoIsBorder(w.shellWidget))
        return;
    int state = XoSTATE_NORMAL;
    if (newStyle & WS_MAXIMIZE)
        state = XoSTATE_MAXIMIZED;
    else if (newStyle & WS_MINIMIZE)
        state = XoSTATE_ICONIC;
    int current = 0;
    XtVaGetValues(w.shellWidget, XoNstate, &current, nullptr);
    if (current != state)
        XtVaSetValues(w.shellWidget, XoNstate, state, nullptr);
    XtVaSetValues(w.shellWidget, XoNdecorations, static_cast<int>(_omXoDecorationsFromStyle(&w)),
                  nullptr);
    // FIXME: an MDI child in front takes the active look ("displayState"
    // 0) once the MDI client lands.
}

}  // namespace

extern "C" OLMO_API void omChangeWindowStyle(HWND hwnd, DWORD oldStyle, DWORD newStyle)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !w->shellWidget || (w->exStyle & kOmExForeign))
        return;
    OmAppLock lock;
    Widget shell = w->shellWidget;
    if (!(newStyle & WS_CHILD)) {
        unsigned d = _omMwmDecorationsFromStyle(w);
        XtVaSetValues(shell, XmNmwmDecorations, d, XmNmwmFunctions,
                      _omMwmFunctionsFromDecorations(d), nullptr);
    } else {
        restyleChild(*w, newStyle);
    }
    if (!(newStyle & (WS_POPUP | WS_CHILD)))
        return;
    // A frame whose decorations changed is shown again, so that whoever
    // draws them (the window manager, the frame) starts from the new ones;
    // the geometry is put back afterwards.
    bool decorated = XoIsBorder(shell) || XtIsShell(shell);
    if (!decorated || !XtIsRealized(shell))
        return;
    Position x = shell->core.x, y = shell->core.y;
    Dimension width = shell->core.width, height = shell->core.height;
    bool popup = XtIsShell(shell) && !(newStyle & WS_CHILD);
    if (oldStyle & WS_VISIBLE) {
        if (popup)
            XtPopdown(shell);
        else
            XUnmapWindow(XtDisplay(shell), XtWindow(shell));
    }
    if (newStyle & WS_VISIBLE) {
        if (popup) {
            XtPopup(shell, XtGrabNone);
            if (omResources.slowWindowManager)
                sleep(1);
        } else {
            XMapWindow(XtDisplay(shell), XtWindow(shell));
        }
    }
    XEvent ev;
    while (XCheckTypedWindowEvent(XtDisplay(shell), XtWindow(shell), ConfigureNotify, &ev))
        XtDispatchEvent(&ev);
    XtConfigureWidget(shell, x, y, width, height, shell->core.border_width);
    // FIXME: a new WS_HSCROLL or WS_VSCROLL gets its window scroll bar
    // with the scroll-bar module.
}
