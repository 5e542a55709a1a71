// Showing, moving and sizing windows: ShowWindow and the mapping of the
// widgets behind each sort of window.
#include "core/omwindow.h"

#include "kernel/omdisplay.h"

#include <Xm/Xm.h>
#include <X11/IntrinsicP.h>
#include <X11/Shell.h>
#include <X11/Xutil.h>

// ---------------------------------------------------------------------------
// Showing top-level windows.

namespace {
bool isPopup(const WindowRecord &w)
{
    return (w.style & WS_POPUP) && !(w.style & WS_CHILD);
}
}  // namespace

extern "C" OLMO_API void omShowWindowCurrent(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !w->shellWidget || (w->style & WS_CHILD) || !omDisplay)
        return;
    OmAppLock lock;
    Widget shell = w->shellWidget;
    if (!XtIsRealized(shell))
        XtRealizeWidget(shell);
    if (isPopup(*w)) {
        if (!w->cx || !w->cy)
            return;
        XtVaSetValues(shell, XmNmappedWhenManaged, True, nullptr);
        if (w->frameWidget)
            XtVaSetValues(w->frameWidget, XmNmappedWhenManaged, True, nullptr);
        XtPopup(shell, XtGrabNone);
        XMapWindow(omDisplay, XtWindow(shell));
    } else {
        XtVaSetValues(shell, XmNmappedWhenManaged, True, nullptr);
        XMapWindow(omDisplay, XtWindow(shell));
    }
    XFlush(omDisplay);
}

extern "C" OLMO_API void omHideWindow(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !w->shellWidget || (w->style & WS_CHILD) || !omDisplay)
        return;
    OmAppLock lock;
    Widget shell = w->shellWidget;
    if (isPopup(*w)) {
        XtPopdown(shell);
    } else if (XtIsRealized(shell)) {
        // Withdrawn, not only unmapped: the window manager forgets the
        // frame too, as the ICCCM asks of a client hiding a top-level window.
        XWithdrawWindow(omDisplay, XtWindow(shell), DefaultScreen(omDisplay));
    }
    XtVaSetValues(shell, XmNmappedWhenManaged, False, nullptr);
    XFlush(omDisplay);
}

extern "C" BOOL WINAPI ShowWindow(HWND hWnd, int nCmdShow)
{
    if (!omThreadRuleOk("ShowWindow"))
        return FALSE;
    if (!omIsWindow(hWnd))
        return FALSE;
    WindowRecord &w = *ConvertHWNDtoPtr(hWnd);
    BOOL was = (w.style & WS_VISIBLE) ? TRUE : FALSE;
    switch (nCmdShow) {
    case SW_HIDE:
        if (!was)
            return FALSE;
        w.style &= ~WS_VISIBLE;
        om::core::send(hWnd, WM_SHOWWINDOW, FALSE, 0);
        omHideWindow(hWnd);
        return was;
    case SW_SHOWNORMAL:
    case SW_SHOWDEFAULT:
    case SW_SHOWNOACTIVATE:
    case SW_SHOW:
    case SW_SHOWNA:
        om::core::send(hWnd, WM_SHOWWINDOW, TRUE, 0);
        if (!omIsWindow(hWnd))
            return FALSE;
        omShowWindowCurrent(hWnd);
        w.style |= WS_VISIBLE;
        return was;
    case SW_SHOWMINIMIZED:
    case SW_SHOWMAXIMIZED:
    case SW_MINIMIZE:
    case SW_SHOWMINNOACTIVE:
    case SW_RESTORE:
        // FIXME: minimising, maximising and restoring come with the rest of
        // the showing module.
        omDebugWarning(OmDiag::Unsupported, "ShowWindow");
        return was;
    default:
        omError(OmDiag::BadShowCommand, "ShowWindow", nCmdShow);
        return FALSE;
    }
}

extern "C" BOOL WINAPI IsWindowVisible(HWND hWnd)
{
    if (!omIsWindow(hWnd))
        return FALSE;
    for (WindowRecord *w = omWindowRecord(hWnd); w; w = omWindowRecord(w->parent)) {
        if (!(w->style & WS_VISIBLE))
            return FALSE;
        if (!(w->style & WS_CHILD))
            return TRUE;
    }
    return TRUE;
}
