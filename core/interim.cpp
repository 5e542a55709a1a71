// Early slices of other subsystems that a program needs to create, show
// and destroy a top-level window before those subsystems land: the first
// messages of the default window procedure, showing and hiding top-level windows, the bells, and
// the graphics layer's window callbacks.  Each is replaced whole by its
// owner (messages/, winmgmt/, dialogs/).
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
// The default window procedure: the messages a top-level window needs.

namespace {

LRESULT copyText(const WindowRecord &w, WPARAM size, LPARAM buffer)
{
    if (!size || !buffer)
        return 0;
    const char *text = om::core::recordText(w);
    size_t n = std::min(std::strlen(text), static_cast<size_t>(size - 1));
    char *out = reinterpret_cast<char *>(buffer);
    std::memcpy(out, text, n);
    out[n] = '\0';
    return static_cast<LRESULT>(n);
}

LRESULT setText(HWND hwnd, WindowRecord &w, LPARAM lParam)
{
    const char *in = reinterpret_cast<const char *>(lParam);
    std::string text;
    if (in && reinterpret_cast<uintptr_t>(in) > 0xFFFF)
        for (const char *p = in; *p; ++p)
            if (*p != '\r')
                text += *p;
    om::core::setRecordText(w, text.c_str());
    (void)hwnd;
    if (w.shellWidget && !(w.style & WS_CHILD) && XtIsShell(w.shellWidget))
        XtVaSetValues(w.shellWidget, XmNtitle, w.text, XmNiconName, w.text, nullptr);
    return 0;
}

}  // namespace

extern "C" LRESULT WINAPI DefWindowProcA(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam)
{
    if (!omIsWindow(hWnd))
        return 0;
    WindowRecord &w = *ConvertHWNDtoPtr(hWnd);
    if (w.exStyle & kOmExForeign) {
        switch (Msg) {
        case WM_NCCREATE: return TRUE;
        case WM_CLOSE: DestroyWindow(hWnd); return 0;
        case WM_GETTEXT: return copyText(w, wParam, lParam);
        default: return Msg > WM_USER ? 0 : 1;
        }
    }
    if (Msg >= 0x361 && Msg <= 0x37E)
        return 0;
    if (!omThreadRuleOk("DefWindowProc"))
        return 0;
    switch (Msg) {
    case WM_NCCREATE:
        return TRUE;
    case WM_NCHITTEST:
        return HTCLIENT;
    case WM_CLOSE:
        DestroyWindow(hWnd);
        return 0;
    case WM_SYSCOMMAND:
        if ((wParam & 0xFFF0) == SC_CLOSE)
            om::core::send(hWnd, WM_CLOSE, 0, 0);
        return 0;
    case WM_PAINT: {
        PAINTSTRUCT ps;
        if (BeginPaint(hWnd, &ps))
            EndPaint(hWnd, &ps);
        return 0;
    }
    case WM_ERASEBKGND: {
        HBRUSH brush = w.windowClass ? w.windowClass->background : nullptr;
        if (!brush || brush == GetStockObject(NULL_BRUSH))
            return 0;
        RECT r{0, 0, 10000, 10000};
        FillRect(reinterpret_cast<HDC>(wParam), &r, brush);
        return 1;
    }
    case WM_SETCURSOR:
        // The parent chooses first; then the window's class cursor.
        if ((w.style & WS_CHILD) && w.parent &&
            SendMessageA(w.parent, WM_SETCURSOR, wParam, lParam))
            return TRUE;
        if (reinterpret_cast<HWND>(wParam) == hWnd)
            return omSetClassCursor(hWnd, lParam);
        return FALSE;
    case WM_CANCELMODE:
        if (GetCapture() == hWnd)
            ReleaseCapture();
        return 0;
    case WM_MOUSEWHEEL:
    case WM_MOUSEHWHEEL:
        // Up the parent chain, as on Windows; at the top the widgets get
        // the wheel event back, so that those that scroll with it do.
        if ((w.style & WS_CHILD) && w.parent)
            return SendMessageA(w.parent, Msg, wParam, lParam);
        {
            XEvent ev;
            if (omMsgMRUSearch(hWnd, Msg, wParam, lParam, nullptr) &&
                omMsgToEvent(hWnd, Msg, wParam, lParam, &ev))
                XtDispatchEvent(&ev);
        }
        return 0;
    case WM_QUERYENDSESSION:
        return 1;
    case WM_GETTEXT:
        return copyText(w, wParam, lParam);
    case WM_SETTEXT:
        return setText(hWnd, w, lParam);
    case WM_GETTEXTLENGTH:
        return static_cast<LRESULT>(std::strlen(om::core::recordText(w)));
    default:
        return 0;
    }
}

extern "C" LRESULT WINAPI DefWindowProcW(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam)
{
    return DefWindowProcA(hWnd, Msg, wParam, lParam);
}

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
    int x = w->x, y = w->y;
    if (w->shellWidget && !(w->style & WS_CHILD))
        widgetRootOrigin(w->shellWidget, &x, &y);
    *r = {x, y, x + w->cx, y + w->cy};
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
