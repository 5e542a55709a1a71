// Top-level windows: the widget trees of overlapped windows (a shell, the
// Motif main window "MainWindow" and the work area "WorkArea") and of pop-up
// windows (a dialog shell, the form and main window "DialogWorkArea" and
// "DialogMainWindow"), window-manager decorations and functions from the
// style, the window-manager protocols, and the application-shell takeover.
#include "core/omwindow.h"

#include "kernel/omdisplay.h"
#include "kernel/omstring.h"
#include "kernel/omwidgetmap.h"

#include <Xm/BulletinB.h>
#include <Xm/DialogS.h>
#include <Xm/Form.h>
#include <Xm/MainW.h>
#include <Xm/Protocols.h>
#include <Xm/Xm.h>
#include <X11/Shell.h>

#include <algorithm>

extern "C" {
OLMO_API int first_appshell_created_yet = 0;
OLMO_API int omDontForceOverlappedCaption = 0;
OLMO_API Widget omShellAlternative = nullptr;
OLMO_API Widget omDLLDialogShellParent = nullptr;
OLMO_API int omDialogModal = 0;
}

namespace {

constexpr DWORD kCaptionBits = WS_CAPTION;

// The creation messages of a top-level window: 0, or -1 when the window
// procedure refused (WM_NCCREATE answered 0 or WM_CREATE -1).
int sendCreationMessages(HWND hwnd, WindowRecord &w, HWND parentArg)
{
    CREATESTRUCTA cs{};
    cs.lpCreateParams = w.createParams;
    cs.hInstance = w.instance;
    cs.hMenu = reinterpret_cast<HMENU>(w.idOrMenu);
    cs.hwndParent = parentArg;
    cs.cy = w.cy;
    cs.cx = w.cx;
    cs.y = w.y;
    cs.x = w.x;
    cs.style = static_cast<LONG>(w.style);
    cs.lpszName = w.text;
    cs.lpszClass = w.windowClass->name;
    cs.dwExStyle = w.exStyle;
    LPARAM l = reinterpret_cast<LPARAM>(&cs);
    if (!om::core::send(hwnd, WM_NCCREATE, 0, l))
        return -1;
    if (!omIsWindow(hwnd))
        return -1;
    if (om::core::send(hwnd, WM_CREATE, 0, l) == -1)
        return -1;
    return 0;
}

void sendMinMaxInfo(HWND hwnd)
{
    if (!omIsWindow(hwnd))
        return;
    MINMAXINFO mmi{};
    mmi.ptMinTrackSize = {-1, -1};
    mmi.ptMaxTrackSize = {-1, -1};
    om::core::send(hwnd, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&mmi));
    omSetMinMaxInfo(hwnd, mmi.ptMinTrackSize.x, mmi.ptMinTrackSize.y, mmi.ptMaxTrackSize.x,
                    mmi.ptMaxTrackSize.y);
}

void mapToHandle(HWND hwnd, WindowRecord &w)
{
    omSetWidgetHWND(w.shellWidget, hwnd);
    omSetWidgetHWND(w.frameWidget, hwnd);
    if (w.canvasWidget != w.frameWidget)
        omSetWidgetHWND(w.canvasWidget, hwnd);
}

// WM_DELETE_WINDOW from the window manager.
void omClose(Widget, XtPointer clientData, XtPointer)
{
    HWND hwnd = static_cast<HWND>(clientData);
    if (!omIsWindow(hwnd))
        return;
    // Posted: the program's loop hands it to the window like any input.
    PostMessageA(hwnd, WM_SYSCOMMAND, SC_CLOSE, 0);
}

void omZoom(Widget, XtPointer, XtPointer) {}

void addProtocols(Widget shell, HWND hwnd, bool zoom)
{
    XmAddWMProtocolCallback(shell, omWmDeleteWindowAtom, omClose, hwnd);
    if (zoom && omMaximizeWindowAtom != None)
        XmAddWMProtocolCallback(shell, omMaximizeWindowAtom, omZoom, hwnd);
}

// Sets the shell's title and icon name from the record's text.
void setTitle(Widget shell, const WindowRecord &w)
{
    if (w.textIsOrdinal)
        return;
    XtVaSetValues(shell, XmNtitle, w.text, XmNiconName, w.text, nullptr);
}

}  // namespace

extern "C" OLMO_API unsigned _omMwmDecorationsFromStyle(const WindowRecord *w)
{
    DWORD s = w->style;
    unsigned d = 0;
    if (s & WS_DLGFRAME)
        d |= 2;
    if ((s & WS_POPUP) && (s & 0x80) && !w->windowClass->createWidgetsProc)
        d |= 2;
    if ((s & kCaptionBits) == kCaptionBits) {
        d |= 8;
        if (s & WS_MINIMIZEBOX)
            d |= 32;
        if (s & WS_MAXIMIZEBOX)
            d |= 64;
        if (s & WS_SYSMENU)
            d |= 16;
    }
    if ((s & WS_POPUP) && (s & WS_SYSMENU))
        d |= 16;
    if (s & WS_THICKFRAME)
        d |= 4;
    if (s & 0x1000)
        d |= 128;
    return d;
}

extern "C" OLMO_API unsigned _omMwmFunctionsFromDecorations(unsigned d)
{
    unsigned f = 32 | 4;
    if (d & 4)
        f |= 2;
    if (d & 64)
        f |= 16;
    if (d & 32)
        f |= 8;
    return f;
}

extern "C" OLMO_API Widget omCreateShellAlternative(void)
{
    if (!omShellAlternative && omDisplay) {
        omShellAlternative = XtVaAppCreateShell(nullptr, omAppName, topLevelShellWidgetClass,
                                                omDisplay, XmNdeleteResponse, XmDO_NOTHING,
                                                XmNmappedWhenManaged, False, XmNwidth, 1,
                                                XmNheight, 1, nullptr);
        XtRealizeWidget(omShellAlternative);
    }
    return omShellAlternative;
}

extern "C" OLMO_API int omDLLSetDefaultDialogShellParent(Widget w)
{
    omDLLDialogShellParent = w;
    return 1;
}

extern "C" OLMO_API void omSetupDrawableIcon(HWND hwnd);

namespace om::core {

int createOverlappedWindow(HWND hwnd, WindowRecord &w)
{
    bool foreign = w.exStyle & kOmExForeign;
    if (foreign || !omDisplay) {
        // Without widgets the window gets its creation messages only.
        if (!omDisplay && !foreign)
            w.exStyle |= kOmExForeign;
        sendCreationMessages(hwnd, w, w.owner);
        return omIsWindow(hwnd) ? 0 : -1;
    }
    const OmResources &res = omResources;
    Widget shell;
    auto orDefault = [](int v, int def) { return v == CW_USEDEFAULT || v == 0 ? def : std::max(v, 1); };
    if (!first_appshell_created_yet && !omIsWindow(w.owner)) {
        // The first overlapped window takes over the application shell, so
        // that the program's main window is the one the session knows.
        shell = omAppShell;
        first_appshell_created_yet = 1;
        w.cx = orDefault(w.cx, res.defaultWindowWidth);
        w.cy = orDefault(w.cy, res.defaultWindowHeight);
        int width = w.cx, height = w.cy;
        if (w.style & WS_THICKFRAME) {
            if (2 * res.frameWidth < width)
                width -= 2 * res.frameWidth;
            if (2 * res.frameWidth < height)
                height -= 2 * res.frameWidth;
        }
        if ((w.style & WS_CAPTION) == WS_CAPTION && res.captionHeight < height)
            height -= res.captionHeight;
        XtVaSetValues(shell, XmNwidth, static_cast<Dimension>(std::max(width, 1)), XmNheight,
                      static_cast<Dimension>(std::max(height, 1)), nullptr);
    } else {
        if (w.x == CW_USEDEFAULT)
            w.x = w.y = 0;
        if (w.cx == CW_USEDEFAULT || w.cx == 0)
            w.cx = res.defaultWindowWidth;
        if (w.cy == CW_USEDEFAULT || w.cy == 0)
            w.cy = res.defaultWindowHeight;
        shell = XtVaAppCreateShell(nullptr, omAppName, topLevelShellWidgetClass, omDisplay,
                                   XmNallowShellResize, False, XmNdeleteResponse, XmDO_NOTHING,
                                   nullptr);
    }
    w.shellWidget = shell;
    XtVaSetValues(shell, XmNmappedWhenManaged, False, nullptr);
    setTitle(shell, w);
    if ((w.style & WS_BORDER) && !(w.style & WS_THICKFRAME))
        XtVaSetValues(shell, XmNborderWidth, 1, nullptr);
    if (!omDontForceOverlappedCaption)
        w.style |= WS_CAPTION;
    unsigned decorations = _omMwmDecorationsFromStyle(&w);
    XtVaSetValues(shell, XmNmwmDecorations, decorations, XmNmwmFunctions,
                  _omMwmFunctionsFromDecorations(decorations), nullptr);
    omSysMenuInit(hwnd);

    Widget main = XtVaCreateWidget("MainWindow", xmMainWindowWidgetClass, shell, XmNwidth,
                                   static_cast<Dimension>(std::max(w.cx, 1)), XmNheight,
                                   static_cast<Dimension>(std::max(w.cy, 1)), XmNmarginWidth, 0,
                                   XmNmarginHeight, 0, nullptr);
    w.frameWidget = main;
    addProtocols(shell, hwnd, true);
    if (!w.idOrMenu && w.windowClass->menuName)
        w.idOrMenu = reinterpret_cast<UINT_PTR>(LoadMenuA(w.instance, w.windowClass->menuName));
    // FIXME: a class icon goes to the shell's icon window with the icon
    // module; until then every window gets the drawable icon.
    omSetupDrawableIcon(hwnd);
    Widget work = XtVaCreateWidget("WorkArea", xmBulletinBoardWidgetClass, main, XmNmarginWidth, 0,
                                   XmNmarginHeight, 0, XmNresizePolicy, XmRESIZE_NONE, nullptr);
    w.canvasWidget = work;
    XtVaSetValues(main, XmNworkWindow, work, nullptr);
    // FIXME: WS_HSCROLL and WS_VSCROLL scroll bars come with the scroll-bar
    // control.
    XtManageChild(work);
    XtManageChild(main);
    XtRealizeWidget(shell);
    if (shell != omAppShell)
        XtVaSetValues(shell, XmNx, static_cast<Position>(w.x), XmNy, static_cast<Position>(w.y),
                      nullptr);
    mapToHandle(hwnd, w);

    if (w.idOrMenu)
        DrawMenuBar(hwnd);
    if (sendCreationMessages(hwnd, w, w.owner) != 0)
        return -1;
    sendMinMaxInfo(hwnd);
    if (!omIsWindow(hwnd) || !w.shellWidget || !w.frameWidget)
        return -1;
    if (w.windowClass->hasBackgroundPixel && XtWindow(work))
        XSetWindowBackground(omDisplay, XtWindow(work), w.windowClass->backgroundPixel);
    omSelectInputs(hwnd);
    if (w.style & WS_VISIBLE)
        ShowWindow(hwnd, SW_SHOWNORMAL);
    if (w.style & WS_DISABLED)
        EnableWindow(hwnd, FALSE);
    return 0;
}

int createPopupWindow(HWND hwnd, WindowRecord &w, HWND)
{
    const OmResources &res = omResources;
    if (w.x == CW_USEDEFAULT)
        w.x = w.y = 0;
    auto side = [&](int v, int def) {
        if (v == CW_USEDEFAULT || (v == 0 && (w.style & WS_THICKFRAME)))
            return def / 2;
        return v < 0 ? 1 : v;
    };
    w.cx = side(w.cx, res.defaultWindowWidth);
    w.cy = side(w.cy, res.defaultWindowHeight);
    int width = w.cx, height = w.cy;
    if ((w.style & WS_CAPTION) == WS_CAPTION)
        height -= res.captionHeight;
    if (w.style & WS_THICKFRAME) {
        width -= 2 * res.frameWidth;
        height -= 2 * res.frameWidth;
    } else if (w.style & WS_DLGFRAME) {
        width -= 2 * res.dialogFrameWidth;
        height -= 2 * res.dialogFrameWidth;
    }
    width = std::max(width, 1);
    height = std::max(height, 1);

    bool foreign = (w.exStyle & kOmExForeign) || !omDisplay;
    if (!foreign) {
        if (!omDisplay)
            w.exStyle |= kOmExForeign;
        WindowRecord *owner = omWindowRecord(w.owner);
        Widget parent = owner && owner->shellWidget ? owner->shellWidget
                        : omDLLDialogShellParent   ? omDLLDialogShellParent
                                                   : omAppShell;
        const char *name = w.textIsOrdinal || !*w.text ? (bIsMWMRunning ? "" : " ") : w.text;
        unsigned decorations = _omMwmDecorationsFromStyle(&w);
        Widget shell = XtVaCreatePopupShell(
            name, xmDialogShellWidgetClass, parent, XmNx, static_cast<Position>(w.x), XmNy,
            static_cast<Position>(w.y), XmNwidth, static_cast<Dimension>(width), XmNheight,
            static_cast<Dimension>(height), XmNdeleteResponse, XmDO_NOTHING,
            XmNmappedWhenManaged, False, XmNmwmDecorations, decorations, XmNmwmFunctions,
            _omMwmFunctionsFromDecorations(decorations), XmNsaveUnder, True, nullptr);
        if ((w.style & WS_BORDER) && !(w.style & WS_THICKFRAME))
            XtVaSetValues(shell, XmNborderWidth, 1, nullptr);
        setTitle(shell, w);
        w.shellWidget = shell;
        addProtocols(shell, hwnd, false);
        if (w.windowClass->createWidgetsProc) {
            w.windowClass->createWidgetsProc(hwnd);
        } else {
            Widget form = XtVaCreateWidget("DialogWorkArea", xmFormWidgetClass, shell,
                                           XmNmarginWidth, 0, XmNmarginHeight, 0,
                                           XmNdefaultPosition, False, XmNwidth,
                                           static_cast<Dimension>(width), XmNheight,
                                           static_cast<Dimension>(height), XmNshadowThickness, 0,
                                           XmNdialogStyle, XmDIALOG_MODELESS,
                                           XmNmappedWhenManaged, False, nullptr);
            Widget main = XtVaCreateManagedWidget(
                "DialogMainWindow", xmMainWindowWidgetClass, form, XmNtopAttachment,
                XmATTACH_FORM, XmNbottomAttachment, XmATTACH_FORM, XmNleftAttachment,
                XmATTACH_FORM, XmNrightAttachment, XmATTACH_FORM, XmNshadowThickness, 0, nullptr);
            Widget work = XtVaCreateManagedWidget("DialogWorkArea", xmBulletinBoardWidgetClass,
                                                  main, XmNmarginWidth, 0, XmNmarginHeight, 0,
                                                  XmNshadowThickness, 0, XmNresizePolicy,
                                                  XmRESIZE_NONE, nullptr);
            XtVaSetValues(main, XmNworkWindow, work, nullptr);
            // Without a Motif window manager an undecorated pop-up must not
            // get another manager's frame: it places itself.
            if (!bIsMWMRunning && decorations == 0)
                XtVaSetValues(shell, XmNoverrideRedirect, True, nullptr);
            w.frameWidget = form;
            w.canvasWidget = work;
        }
        if (!w.idOrMenu && w.windowClass->menuName)
            w.idOrMenu = reinterpret_cast<UINT_PTR>(LoadMenuA(w.instance, w.windowClass->menuName));
        if (w.idOrMenu)
            DrawMenuBar(hwnd);
        if (w.frameWidget)
            XtManageChild(w.frameWidget);
        XtRealizeWidget(shell);
        if (w.frameWidget && w.canvasWidget)
            mapToHandle(hwnd, w);
    }
    int result = sendCreationMessages(hwnd, w, w.owner);
    if (!foreign && result == 0 && omIsWindow(hwnd))
        omSelectInputs(hwnd);
    if (result == 0 && omIsWindow(hwnd) && (w.style & WS_VISIBLE)) {
        w.style &= ~WS_VISIBLE;
        if ((w.cx && w.cy) || (w.style & WS_THICKFRAME))
            ShowWindow(hwnd, SW_SHOWNORMAL);
    }
    sendMinMaxInfo(hwnd);
    return result;
}

}  // namespace om::core

// ---------------------------------------------------------------------------
// Icons, modality and tool-tip style on the shell.

extern "C" OLMO_API void omSetupDrawableIcon(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !w->shellWidget || !omDisplay || !XtIsShell(w->shellWidget))
        return;
    Window icon = 0;
    XtVaGetValues(w->shellWidget, XmNiconWindow, &icon, nullptr);
    if (icon)
        return;
    int screen = DefaultScreen(omDisplay);
    XSetWindowAttributes a{};
    a.event_mask = ExposureMask;
    a.background_pixel = w->windowClass->hasBackgroundPixel ? w->windowClass->backgroundPixel
                                                            : WhitePixel(omDisplay, screen);
    icon = XCreateWindow(omDisplay, RootWindow(omDisplay, screen), 0, 0, 32, 32, 0,
                         CopyFromParent, InputOutput, CopyFromParent,
                         CWEventMask | CWBackPixel, &a);
    XtVaSetValues(w->shellWidget, XmNiconWindow, icon, nullptr);
    XClearWindow(omDisplay, icon);
    w->iconWindow = icon;
}

extern "C" OLMO_API void _omModalDialogHook(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || _qel_strcasecmp(w->windowClass->name, "WC_DIALOG") != 0)
        return;
    if (w->frameWidget)
        XtVaSetValues(w->frameWidget, XmNdialogStyle, XmDIALOG_FULL_APPLICATION_MODAL, nullptr);
    omDialogModal = 2;
    if (WindowRecord *owner = omWindowRecord(w->owner))
        owner->blockedByModal = true;
}

extern "C" OLMO_API void _omUnsetModality(HWND hwnd)
{
    omDialogModal = 0;
    WindowRecord *w = omWindowRecord(hwnd);
    if (WindowRecord *owner = w ? omWindowRecord(w->owner) : nullptr)
        owner->blockedByModal = false;
}

namespace {
void setToolTipStyle(HWND hwnd, Boolean on)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (bIsMWMRunning && w && w->shellWidget)
        XtVaSetValues(w->shellWidget, XmNoverrideRedirect, on, nullptr);
}
}  // namespace

extern "C" OLMO_API void omChangeToolTipStyle(HWND hwnd)
{
    setToolTipStyle(hwnd, True);
}

extern "C" OLMO_API void omUnchangeToolTipStyle(HWND hwnd)
{
    setToolTipStyle(hwnd, False);
}

extern "C" OLMO_API int omGetToolTipStyle(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!bIsMWMRunning || !w || !w->shellWidget)
        return 0;
    Boolean on = False;
    XtVaGetValues(w->shellWidget, XmNoverrideRedirect, &on, nullptr);
    return on;
}
