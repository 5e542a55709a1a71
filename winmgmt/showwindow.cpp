// Show states of windows: ShowWindow and its mapping and unmapping of the
// widgets behind each sort of window, minimise, maximise and restore (window
// manager requests for top-level shells, the XoBorder "state" for children),
// and the queries IsIconic, IsZoomed and IsWindowVisible.
#include "winmgmt/ompos.h"

#include "core/omwindow.h"
#include "kernel/omdisplay.h"
#include "messages/ompaint.h"
#include "widgets/XoBorder.h"

#include <Xm/BulletinB.h>
#include <Xm/Xm.h>
#include <X11/IntrinsicP.h>
#include <X11/Shell.h>
#include <X11/Xatom.h>
#include <X11/Xutil.h>

#include <cstdlib>

// Core's pop-up bookkeeping (core/popupwindow.cpp).
extern "C" {
OLMO_API extern int omDialogModal;
OLMO_API void omChangeToolTipStyle(HWND hwnd);
OLMO_API void omUnchangeToolTipStyle(HWND hwnd);
OLMO_API int omGetToolTipStyle(HWND hwnd);
}

extern "C" {
OLMO_API HWND omTopMostOverlappedWindow = nullptr;
OLMO_API int bIsShellIconic = 0;
}

namespace om::winmgmt {

WindowSort sortOf(const WindowRecord &w)
{
    if (w.style & WS_CHILD)
        return w.shellWidget ? WindowSort::Child : WindowSort::Windowless;
    return (w.style & WS_POPUP) ? WindowSort::Popup : WindowSort::Overlapped;
}

int frameState(const WindowRecord &w)
{
    if (!(w.style & WS_CHILD) || !w.shellWidget || !XoIsBorder(w.shellWidget))
        return 0;
    int state = XoSTATE_NORMAL;
    XtVaGetValues(w.shellWidget, XoNstate, &state, nullptr);
    return state;
}

void setFrameState(const WindowRecord &w, int state)
{
    if ((w.style & WS_CHILD) && w.shellWidget && XoIsBorder(w.shellWidget))
        XtVaSetValues(w.shellWidget, XoNstate, state, nullptr);
}

void bringChildToTop(const WindowRecord &w)
{
    if (w.shellWidget && XtIsRealized(w.shellWidget))
        XoRaiseChildWindow(w.shellWidget);
    omZOrderRaise(w.self);
}

}  // namespace om::winmgmt

namespace {

using om::winmgmt::frameState;
using om::winmgmt::sortOf;
using om::winmgmt::WindowSort;

void setMappedWhenManaged(Widget widget, Boolean on)
{
    if (widget)
        XtVaSetValues(widget, XmNmappedWhenManaged, on, nullptr);
}

void mapWidgetWindow(Widget widget)
{
    if (widget && XtIsRealized(widget))
        XMapWindow(omDisplay, XtWindow(widget));
}

bool isTopLevelShell(Widget w)
{
    return w && XtIsTopLevelShell(w);
}

// Whether the handle designates a live menu (a window's menu bar).
bool hasLiveMenu(const WindowRecord &w)
{
    return !(w.style & WS_CHILD) && w.idOrMenu &&
           omIsHandleOfKind(static_cast<uint64_t>(w.idOrMenu), OM_KIND_MENU);
}

// The controls whose iconic state is never shown as an icon.
bool isSimpleControl(const WindowRecord &w)
{
    switch (w.kind) {
    case OM_WK_EDIT: case OM_WK_BUTTON: case OM_WK_LISTBOX: case OM_WK_COMBOBOX:
    case OM_WK_STATIC: case OM_WK_SCROLLBAR:
        return true;
    default:
        return false;
    }
}

void showPopup(WindowRecord &w)
{
    if (!w.cx || !w.cy)
        return;
    Widget shell = w.shellWidget;
    if (!XtIsRealized(shell))
        XtRealizeWidget(shell);
    bool bulletin = w.frameWidget && XmIsBulletinBoard(w.frameWidget);
    if (!(w.style & WS_VISIBLE)) {
        // A pop-up shown while a modal dialog runs takes its modality, so
        // that the modal grab does not shut it out.
        // A pop-up whose class built its own widgets may have no frame.
        if (!w.frameWidget || XtIsManaged(w.frameWidget)) {
            mapWidgetWindow(shell);
            setMappedWhenManaged(shell, True);
            if (bulletin && omDialogModal)
                XtVaSetValues(w.frameWidget, XmNdialogStyle, omDialogModal, nullptr);
            if (w.frameWidget)
                setMappedWhenManaged(w.frameWidget, True);
            XtPopup(shell, XtGrabNone);
        }
        return;
    }
    mapWidgetWindow(shell);
    setMappedWhenManaged(shell, True);
}

void showOverlapped(WindowRecord &w)
{
    Widget shell = w.shellWidget;
    bool wasHidden = !(w.style & WS_VISIBLE);
    if (!XtIsRealized(shell))
        XtRealizeWidget(shell);
    setMappedWhenManaged(shell, True);
    mapWidgetWindow(shell);
    if (omTopMostOverlappedWindow != w.self) {
        WindowRecord *top = omWindowRecord(omTopMostOverlappedWindow);
        if (top && top->shellWidget && (top->style & WS_VISIBLE)) {
            mapWidgetWindow(top->shellWidget);
            setMappedWhenManaged(top->shellWidget, True);
        }
    }
    // The main window lays out a menu bar added while hidden only when
    // its size changes.
    if (wasHidden && hasLiveMenu(w) && w.frameWidget) {
        Widget f = w.frameWidget;
        Dimension width = f->core.width, height = f->core.height, border = f->core.border_width;
        XtResizeWidget(f, width + 1, height + 1, border);
        XtResizeWidget(f, width, height, border);
    }
}

void showChild(WindowRecord &w)
{
    if (!w.cx || !w.cy)
        return;
    Widget frame = w.shellWidget;
    if (frameState(w) != XoSTATE_ICONIC) {
        mapWidgetWindow(frame);
        setMappedWhenManaged(frame, True);
        return;
    }
    if (isSimpleControl(w))
        return;
    XtManageChild(frame);
    XoShowAsIcon(frame);
    setMappedWhenManaged(frame, True);
    XoManageIconText(frame, True);
}

void showWindowless(WindowRecord &w)
{
    if (!IsWindowVisible(w.parent))
        return;
    w.style |= WS_VISIBLE;
    if (w.redraw)
        om::core::send(w.self, WM_PAINT, 0, 0);
}

// The area a windowless child covered in its parent's canvas, repainted
// by the server's exposures.
void clearWindowlessArea(const WindowRecord &w, int x, int y, int cx, int cy, Bool exposures)
{
    WindowRecord *p = omWindowRecord(w.parent);
    if (!p || !p->canvasWidget || !XtIsRealized(p->canvasWidget))
        return;
    XClearArea(omDisplay, XtWindow(p->canvasWidget), x, y, static_cast<unsigned>(std::abs(cx)),
               static_cast<unsigned>(std::abs(cy)), exposures);
}

// A window moved by SetParent is shown without WM_SHOWWINDOW.
bool inSetParent()
{
    return bInSetParent != 0;
}

void sendShowWindow(HWND hwnd)
{
    if (!inSetParent())
        om::core::send(hwnd, WM_SHOWWINDOW, TRUE, 0);
}

BOOL hide(HWND hwnd, WindowRecord &w)
{
    w.style &= ~WS_VISIBLE;
    om::core::send(hwnd, WM_SHOWWINDOW, FALSE, 0);
    if (!omIsWindow(hwnd))
        return TRUE;
    RECT r{w.x, w.y, w.x + std::abs(w.cx), w.y + std::abs(w.cy)};
    omHideWindow(hwnd);
    // What the child covered is the parent's to paint again.
    if ((w.style & WS_CHILD) && IsWindowVisible(w.parent)) {
        XRectangle xr{static_cast<short>(r.left), static_cast<short>(r.top),
                      static_cast<unsigned short>(r.right - r.left),
                      static_cast<unsigned short>(r.bottom - r.top)};
        omPaintInvalidateRect(w.parent, &xr);
    }
    return TRUE;
}

void minimize(HWND hwnd, WindowRecord &w, int command)
{
    short cx = 0, cy = 0;
    if (IsIconic(hwnd)) {
        omShowWindowCurrent(hwnd);
        omMinimizeWindow(hwnd, &cx, &cy);
        if (sortOf(w) == WindowSort::Child) {
            XoManageIconText(w.shellWidget, True);
            XtManageChild(w.shellWidget);
        }
        w.style |= WS_VISIBLE;
        return;
    }
    omShowWindowCurrent(hwnd);
    omMinimizeWindow(hwnd, &cx, &cy);
    w.style = (w.style | WS_MINIMIZE) & ~WS_MAXIMIZE;
    omHandleWindowActivation(hwnd, command == SW_SHOWMINIMIZED ? 0 : command == SW_MINIMIZE ? 3 : 1);
    om::core::send(hwnd, WM_SIZE, SIZE_MINIMIZED, MAKELPARAM(cx, cy));
    if (omIsWindow(hwnd))
        w.style |= WS_VISIBLE;
}

void maximize(HWND hwnd, WindowRecord &w)
{
    if (w.showState != 3) {
        w.restoreRect[0] = w.x;
        w.restoreRect[1] = w.y;
        w.restoreRect[2] = w.cx;
        w.restoreRect[3] = w.cy;
        w.showState = 3;
    }
    short cx = 0, cy = 0;
    omMaximizeWindow(hwnd, &cx, &cy);
    w.style = (w.style | WS_MAXIMIZE) & ~WS_MINIMIZE;
    omHandleWindowActivation(hwnd, 0);
    int width = cx, height = cy;
    if (w.canvasWidget) {
        width = w.canvasWidget->core.width;
        height = w.canvasWidget->core.height;
    }
    om::core::send(hwnd, WM_SIZE, SIZE_MAXIMIZED, MAKELPARAM(width, height));
    if (!omIsWindow(hwnd))
        return;
    omShowWindowCurrent(hwnd);
    w.style |= WS_VISIBLE;
}

// The program hears the restored size from the frame (its client is laid
// out anew) or, for a top-level window, from the server's configuration.
// A child whose frame leaves the minimised or maximised state hears its
// restored size, as on Windows; a top-level window hears it from the
// window manager's configure.
void restore(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    bool frame = w && (w->style & WS_CHILD) && w->shellWidget && XoIsBorder(w->shellWidget);
    int before = XoSTATE_NORMAL;
    if (frame)
        XtVaGetValues(w->shellWidget, XoNstate, &before, nullptr);
    short cx = 0, cy = 0;
    omRestoreWindow(hwnd, &cx, &cy);
    if (frame && before != XoSTATE_NORMAL && omIsWindow(hwnd))
        omSendSizeMessage(hwnd);
}

// SW_SHOWNOACTIVATE, SW_SHOW, SW_SHOWNA.
BOOL show(HWND hwnd, WindowRecord &w, int command, BOOL was)
{
    sendShowWindow(hwnd);
    if (!omIsWindow(hwnd))
        return FALSE;
    // A bare pop-up shown without activation is a tool tip to the window
    // manager: neither decorated nor focused.
    bool tip = sortOf(w) == WindowSort::Popup && command != SW_SHOW &&
               !(w.style & (WS_DLGFRAME | WS_SYSMENU)) && !omGetToolTipStyle(hwnd);
    if (tip)
        omChangeToolTipStyle(hwnd);
    omShowWindowCurrent(hwnd);
    if (tip)
        omUnchangeToolTipStyle(hwnd);
    if (sortOf(w) == WindowSort::Overlapped && w.kind == OM_WK_MINIDOCKFRAME && w.shellWidget)
        w.motionless = true;
    omHandleWindowActivation(hwnd, command == SW_SHOW ? 0 : 1);
    w.style |= WS_VISIBLE;
    // FIXME: a window shown while it silently holds the focus (omFocus)
    // gets SetFocus here once the focus module keeps omFocus.
    return was;
}

BOOL showWindow(HWND hwnd, int command)
{
    WindowRecord &w = *ConvertHWNDtoPtr(hwnd);
    // FIXME: an MDI child shown for the first time enters its client's
    // window menu here once MDI lands; the recorder's application-shell
    // hook after a show waits for the kernel library to offer it.
    if (command == SW_SHOWDEFAULT)
        command = SW_SHOWNORMAL;
    BOOL was = (w.style & WS_VISIBLE) ? TRUE : FALSE;
    switch (command) {
    case SW_HIDE:
        return was ? hide(hwnd, w) : FALSE;
    case SW_SHOWNORMAL:
        sendShowWindow(hwnd);
        if (!omIsWindow(hwnd))
            return FALSE;
        if (IsIconic(hwnd))
            restore(hwnd);
        omHandleWindowActivation(hwnd, 0);
        omShowWindowCurrent(hwnd);
        w.style |= WS_VISIBLE;
        return was;
    case SW_SHOWMINIMIZED:
    case SW_MINIMIZE:
    case SW_SHOWMINNOACTIVE:
        if (w.shellWidget)
            minimize(hwnd, w, command);
        return was;
    case SW_SHOWMAXIMIZED:
        if (w.shellWidget)
            maximize(hwnd, w);
        return was;
    case SW_SHOWNOACTIVATE:
    case SW_SHOW:
    case SW_SHOWNA:
        return show(hwnd, w, command, was);
    case SW_RESTORE:
        sendShowWindow(hwnd);
        if (!omIsWindow(hwnd))
            return FALSE;
        restore(hwnd);
        omHandleWindowActivation(hwnd, 0);
        omShowWindowCurrent(hwnd);
        w.style |= WS_VISIBLE;
        return was;
    default:
        omError(OmDiag::BadShowCommand, "ShowWindow", command);
        return FALSE;
    }
}

// The iconic state of a top-level window that the window manager has not
// yet seen: the nearest top-level shell among the widget's ancestors.
BOOL unrealizedIconic(Widget widget)
{
    for (Widget w = widget; w && w != omAppShell; w = XtParent(w))
        if (XtIsTopLevelShell(w)) {
            Boolean iconic = False;
            XtVaGetValues(w, XmNiconic, &iconic, nullptr);
            return iconic ? TRUE : FALSE;
        }
    return bIsShellIconic;
}

void StateWatcher(Widget, XtPointer, XEvent *event, Boolean *)
{
    if (event->type == MapNotify)
        bIsShellIconic = 0;
    else if (event->type == UnmapNotify)
        bIsShellIconic = 1;
}

}  // namespace

// ---------------------------------------------------------------------------
// Mapping and unmapping.

extern "C" OLMO_API void omShowWindowCurrent(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !omDisplay)
        return;
    OmAppLock lock;
    switch (sortOf(*w)) {
    case WindowSort::Windowless:
        showWindowless(*w);
        return;
    case WindowSort::Popup:
        if (w->shellWidget)
            showPopup(*w);
        break;
    case WindowSort::Overlapped:
        if (w->shellWidget)
            showOverlapped(*w);
        break;
    case WindowSort::Child:
        showChild(*w);
        break;
    }
    XFlush(omDisplay);
}

extern "C" OLMO_API void omHideWindow(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !omDisplay)
        return;
    omPaintDeleteItem(hwnd);
    OmAppLock lock;
    Widget shell = w->shellWidget;
    switch (sortOf(*w)) {
    case WindowSort::Windowless:
        clearWindowlessArea(*w, w->x, w->y - 8, w->cx + 8, w->cy + 10, True);
        return;
    case WindowSort::Popup:
        if (!shell)
            return;
        if (XtIsRealized(shell))
            XUnmapWindow(omDisplay, XtWindow(shell));
        XtPopdown(shell);
        break;
    case WindowSort::Child:
        if (XtIsRealized(shell))
            XUnmapWindow(omDisplay, XtWindow(shell));
        if (frameState(*w) == XoSTATE_ICONIC) {
            XoManageIconText(shell, False);
            XtUnmanageChild(shell);
        }
        break;
    case WindowSort::Overlapped:
        if (!shell)
            return;
        // Withdrawn, not only unmapped: the window manager forgets the
        // frame too, as the ICCCM asks of a client hiding a top-level window.
        if (XtIsRealized(shell))
            XWithdrawWindow(omDisplay, XtWindow(shell), DefaultScreen(omDisplay));
        break;
    }
    setMappedWhenManaged(shell, False);
    XFlush(omDisplay);
}

// ---------------------------------------------------------------------------
// Minimise, maximise, restore.

extern "C" OLMO_API void omMinimizeWindow(HWND hwnd, short *cx, short *cy)
{
    WindowRecord *w = omWindowRecord(hwnd);
    *cx = *cy = 0;
    if (!w || !w->shellWidget || !omDisplay)
        return;
    OmAppLock lock;
    if (sortOf(*w) == WindowSort::Child) {
        // FIXME: the icon's place in the parent comes from the MDI icon
        // arrangement (omPlaceBorderIcon); until then it keeps iconX, iconY.
        om::winmgmt::setFrameState(*w, XoSTATE_ICONIC);
        int iw = 0, ih = 0;
        XtVaGetValues(w->shellWidget, XoNiconWidth, &iw, XoNiconHeight, &ih, nullptr);
        *cx = static_cast<short>(iw);
        *cy = static_cast<short>(ih);
        return;
    }
    if (!isTopLevelShell(w->shellWidget))
        return;
    // False first: Xt asks the window manager only on a change.
    XtVaSetValues(w->shellWidget, XmNiconic, False, nullptr);
    XtVaSetValues(w->shellWidget, XmNiconic, True, nullptr);
    XIconSize *sizes = nullptr;
    int count = 0;
    if (XGetIconSizes(omDisplay, DefaultRootWindow(omDisplay), &sizes, &count) && count > 0) {
        *cx = static_cast<short>(sizes[0].max_width);
        *cy = static_cast<short>(sizes[0].max_height);
    }
    if (sizes)
        XFree(sizes);
}

extern "C" OLMO_API void omMaximizeWindow(HWND hwnd, short *cx, short *cy)
{
    WindowRecord *w = omWindowRecord(hwnd);
    *cx = *cy = 0;
    if (!w || !omDisplay)
        return;
    OmAppLock lock;
    if (sortOf(*w) == WindowSort::Child) {
        om::winmgmt::setFrameState(*w, XoSTATE_MAXIMIZED);
        Widget f = w->shellWidget;
        // The record follows the frame, which now covers the parent.
        w->x = f->core.x;
        w->y = f->core.y;
        w->cx = f->core.width;
        w->cy = f->core.height;
        *cx = static_cast<short>(w->cx);
        *cy = static_cast<short>(w->cy);
        om::winmgmt::bringChildToTop(*w);
        return;
    }
    if (sortOf(*w) == WindowSort::Windowless)
        return;
    Screen *screen = ScreenOfDisplay(omDisplay, 0);
    omMoveResizeWindow(hwnd, 0, 0, WidthOfScreen(screen), HeightOfScreen(screen), TRUE, TRUE,
                       TRUE);
    if (isTopLevelShell(w->shellWidget) && IsIconic(hwnd))
        XtVaSetValues(w->shellWidget, XmNiconic, False, nullptr);
    *cx = static_cast<short>(w->cx);
    *cy = static_cast<short>(w->cy);
}

extern "C" OLMO_API void omRestoreWindow(HWND hwnd, short *cx, short *cy)
{
    WindowRecord *w = omWindowRecord(hwnd);
    *cx = *cy = 0;
    if (!w || !w->shellWidget || !omDisplay)
        return;
    OmAppLock lock;
    if (w->showState == 3) {
        w->x = w->restoreRect[0];
        w->y = w->restoreRect[1];
        w->cx = w->restoreRect[2];
        w->cy = w->restoreRect[3];
        w->showState = 1;
    }
    w->style &= ~(WS_MINIMIZE | WS_MAXIMIZE);
    if (sortOf(*w) == WindowSort::Child) {
        if (frameState(*w) != XoSTATE_NORMAL) {
            om::winmgmt::setFrameState(*w, XoSTATE_NORMAL);
            om::winmgmt::bringChildToTop(*w);
        }
    } else if (sortOf(*w) == WindowSort::Overlapped) {
        omMoveResizeWindow(hwnd, w->x, w->y, w->cx, w->cy, TRUE, TRUE, TRUE);
        if (isTopLevelShell(w->shellWidget) && IsIconic(hwnd))
            XtVaSetValues(w->shellWidget, XmNiconic, False, nullptr);
    }
    *cx = static_cast<short>(w->cx);
    *cy = static_cast<short>(w->cy);
}

extern "C" OLMO_API void omHandleWindowActivation(HWND hwnd, int how)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (w && isTopLevelShell(w->shellWidget) && (how == 0 || how == 3))
        SetActiveWindow(hwnd);
}

extern "C" OLMO_API int CheckWinMgrState(Display *display, Window window)
{
    if (!display || !window)
        return 0;
    Atom state = omWmStateAtom != None ? omWmStateAtom : XInternAtom(display, "WM_STATE", False);
    Atom type = None;
    int format = 0;
    unsigned long count = 0, after = 0;
    unsigned char *data = nullptr;
    int result = 0;
    if (XGetWindowProperty(display, window, state, 0, 1, False, state, &type, &format, &count,
                           &after, &data) == Success &&
        type == state && format == 32 && count >= 1)
        result = static_cast<int>(*reinterpret_cast<long *>(data));
    if (data)
        XFree(data);
    return result;
}

extern "C" OLMO_API void omSetupIconic(Widget shell)
{
    if (!shell)
        return;
    int initial = NormalState;
    XtVaGetValues(shell, XmNinitialState, &initial, nullptr);
    if (initial == IconicState)
        bIsShellIconic = 1;
    XtAddEventHandler(shell, StructureNotifyMask, False, StateWatcher, nullptr);
}

// ---------------------------------------------------------------------------
// The entry points.

extern "C" BOOL WINAPI ShowWindow(HWND hWnd, int nCmdShow)
{
    if (!omThreadRuleOk("ShowWindow"))
        return FALSE;
    if (!omIsWindow(hWnd))
        return FALSE;
    ++omPlacingWindows;
    BOOL was = om::core::guarded("ShowWindow", FALSE, [&] { return showWindow(hWnd, nCmdShow); });
    --omPlacingWindows;
    return was;
}

extern "C" BOOL WINAPI IsIconic(HWND hWnd)
{
    if (!omThreadRuleOk("IsIconic"))
        return FALSE;
    WindowRecord *w = omWindowRecord(hWnd);
    if (!w || !w->shellWidget)
        return FALSE;
    if (w->style & WS_CHILD)
        return frameState(*w) == XoSTATE_ICONIC;
    if (XtIsRealized(w->shellWidget)) {
        int state = CheckWinMgrState(omDisplay, XtWindow(w->shellWidget));
        return state ? state == IconicState : bIsShellIconic;
    }
    return unrealizedIconic(w->shellWidget);
}

extern "C" BOOL WINAPI IsZoomed(HWND hWnd)
{
    if (!omThreadRuleOk("IsZoomed"))
        return FALSE;
    WindowRecord *w = omWindowRecord(hWnd);
    return w && frameState(*w) == XoSTATE_MAXIMIZED;
}

extern "C" BOOL WINAPI IsWindowVisible(HWND hWnd)
{
    if (!omThreadRuleOk("IsWindowVisible"))
        return FALSE;
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

extern "C" BOOL WINAPI CloseWindow(HWND hWnd)
{
    if (!omThreadRuleOk("CloseWindow"))
        return FALSE;
    if (!omIsWindow(hWnd)) {
        omDebugWarning(OmDiag::BadWindowHandle, "CloseWindow", hWnd);
        return FALSE;
    }
    WindowRecord &w = *ConvertHWNDtoPtr(hWnd);
    short cx = 0, cy = 0;
    omMinimizeWindow(hWnd, &cx, &cy);
    w.style = (w.style | WS_MINIMIZE) & ~WS_MAXIMIZE;
    om::core::send(hWnd, WM_SIZE, SIZE_MINIMIZED, MAKELPARAM(cx, cy));
    return TRUE;
}

extern "C" BOOL WINAPI OpenIcon(HWND hWnd)
{
    if (!omThreadRuleOk("OpenIcon"))
        return FALSE;
    if (!omIsWindow(hWnd))
        return FALSE;
    short cx = 0, cy = 0;
    omRestoreWindow(hWnd, &cx, &cy);
    om::core::send(hWnd, WM_SIZE, SIZE_RESTORED, MAKELPARAM(cx, cy));
    return TRUE;
}
