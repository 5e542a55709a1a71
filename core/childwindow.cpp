// Child windows: the creation sequence of a WS_CHILD window, its XoBorder
// frame ("ChildWindow") with the scrolled window and drawing area inside,
// and the frame's reports coming back as window messages.
#include "core/omwindow.h"

#include "graphics/omgdi.h"
#include "kernel/omdisplay.h"
#include "kernel/omwidgetmap.h"
#include "widgets/XoBorder.h"
#include "widgets/xoupcalls.h"

#include <Xm/DrawingA.h>
#include <Xm/ScrolledW.h>
#include <Xm/Xm.h>
#include <X11/IntrinsicP.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

extern "C" {
OLMO_API int bNCCreate = 0;
OLMO_API int bAutoScrolledWindow = 0;
OLMO_API int bCreatingCFormView = 0;
}

namespace {

// Set while the frame's own SC_MOVE/SC_SIZE is being sent: the frame is
// about to track the pointer itself.
int framePointerTrack = 0;

// The child whose creation messages are under way: its frame lays the
// client out while it is built, which is no size change to report.
HWND childBeingCreated = nullptr;

// System colour indexes of the frame and client area.
constexpr int kColorFace = COLOR_BTNFACE;        // 15
constexpr int kColorText = COLOR_BTNTEXT;        // 18
constexpr int kColorScrolledBackground = 30;

WindowRecord *parentRecord(const WindowRecord &w)
{
    return omWindowRecord(w.parent);
}

// The title the frame shows: the window's text, the parent's, or "Untitled".
const char *frameTitle(const WindowRecord &w)
{
    if (!w.textIsOrdinal && w.text)
        return w.text;
    if (WindowRecord *p = parentRecord(w); p && !p->textIsOrdinal && p->text)
        return p->text;
    return "Untitled";
}

bool hasWindowOfKind(const WindowRecord &w, uint8_t kind)
{
    return w.kind == kind;
}

// Kind bit 2: Button, ListBox, ComboBox, Static and the other control
// kinds whose number has that bit draw their own border.
bool kindDrawsBorder(const WindowRecord &w)
{
    return (w.kind & 4) != 0;
}

// The width of the edge WS_EX_CLIENTEDGE (2) or WS_EX_STATICEDGE (1)
// gives a window that does not draw its own border.
Dimension edgeWidth(const WindowRecord &w)
{
    switch (w.kind) {
    case OM_WK_DIALOG: case OM_WK_EDIT: case OM_WK_BUTTON: case OM_WK_LISTBOX:
    case OM_WK_COMBOBOX: case OM_WK_STATIC: case OM_WK_SCROLLBAR:
        return 0;
    default:
        break;
    }
    if (w.exStyle & WS_EX_CLIENTEDGE)
        return 2;
    return (w.exStyle & WS_EX_STATICEDGE) ? 1 : 0;
}

HWND frameWindow(Widget frame)
{
    HWND hwnd = nullptr;
    if (!frame || !omGetWidgetHWND(frame, &hwnd) || !omIsWindow(hwnd))
        return nullptr;
    return hwnd;
}

// The root origin of the parent's canvas, for the frame's parent
// coordinates against the screen coordinates of WM_MOVING/WM_SIZING.
void parentOrigin(Widget frame, int *x, int *y)
{
    Position px = 0, py = 0;
    if (frame && XtParent(frame))
        XtTranslateCoords(XtParent(frame), 0, 0, &px, &py);
    *x = px;
    *y = py;
}

// ---------------------------------------------------------------------------
// Frame callbacks.

void NCPaintCB(Widget, XtPointer clientData, XEvent *event, Boolean *continueToDispatch)
{
    HWND hwnd = static_cast<HWND>(clientData);
    if (event->type == Expose && event->xexpose.count == 0 && omIsWindow(hwnd))
        PostMessageA(hwnd, WM_NCPAINT, 0, 0);
    *continueToDispatch = True;
}

void QueryDragIconCB(Widget, XtPointer clientData, XtPointer callData)
{
    HWND hwnd = static_cast<HWND>(clientData);
    auto *data = static_cast<XoQueryDragIconCallbackStruct *>(callData);
    if (!omIsWindow(hwnd) || !data)
        return;
    LRESULT answer = SendMessageA(hwnd, WM_QUERYDRAGICON, 0, 0);
    if (!answer)
        return;
    auto icon = reinterpret_cast<HICON>(answer);
    uint32_t value = omHandleValue(icon);
    if (omIsHandleOfKind(value, OM_KIND_ICON) || omIsHandleOfKind(value, OM_KIND_CURSOR))
        data->pixmap = omIconGetDefaultPixmap(icon);
    else
        omDebugWarning(OmDiag::NotIconOrCursor, "WM_DRAGQUERYICON");
}

void ChildActivateCB(Widget frame, XtPointer clientData, XtPointer callData)
{
    HWND hwnd = static_cast<HWND>(clientData);
    auto *data = static_cast<XoBorderCallbackStruct *>(callData);
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !data)
        return;
    bool mdiChild = w->kind == OM_WK_MDICHILD;
    switch (data->reason) {
    case XoCR_MAXIMIZE:
        if (WindowRecord *p = parentRecord(*w)) {
            if (p->style & WS_HSCROLL)
                ShowScrollBar(w->parent, SB_HORZ, FALSE);
            if (p->style & WS_VSCROLL)
                ShowScrollBar(w->parent, SB_VERT, FALSE);
        }
        SendMessageA(hwnd, WM_SYSCOMMAND, SC_MAXIMIZE, 0);
        break;
    case XoCR_MINIMIZE:
        SendMessageA(hwnd, WM_SYSCOMMAND, SC_MINIMIZE, 0);
        break;
    case XoCR_ACTIVATE:
    case XoCR_ACTIVATE_ICON:
        if (!mdiChild) {
            if (XtIsRealized(frame))
                XoRaiseChildWindow(frame);
            omZOrderRaise(hwnd);
        }
        SendMessageA(hwnd, WM_CHILDACTIVATE, 0, 0);
        break;
    case XoCR_CLOSE:
        XtVaSetValues(frame, XoNdoIt, 0, nullptr);
        if (mdiChild)
            SendMessageA(hwnd, WM_SYSCOMMAND, SC_CLOSE, 0);
        else
            SendMessageA(hwnd, WM_CLOSE, SC_CLOSE, 0);
        break;
    case XoCR_RESTORE:
        SendMessageA(hwnd, WM_SYSCOMMAND, SC_RESTORE, 0);
        break;
    case XoCR_MOVED:
        SetWindowPos(hwnd, nullptr, data->x, data->y, data->width, data->height,
                     SWP_NOSIZE | SWP_SHOWWINDOW);
        break;
    case XoCR_NEXT_WINDOW:
        XtVaSetValues(frame, XoNdoIt, 0, nullptr);
        SendMessageA(hwnd, WM_SYSCOMMAND, SC_NEXTWINDOW, 0);
        break;
    case XoCR_PREV_WINDOW:
        SendMessageA(hwnd, WM_SYSCOMMAND, SC_PREVWINDOW, 0);
        break;
    case XoCR_MOUSE_MENU:
        SendMessageA(hwnd, WM_SYSCOMMAND, SC_MOUSEMENU, 0);
        break;
    case XoCR_SIZED:
        SetWindowPos(hwnd, nullptr, data->x, data->y, data->width, data->height,
                     SWP_SHOWWINDOW);
        break;
    case XoCR_MOVED_SELF:
        omSendMoveMessage(hwnd);
        // FIXME: a parent with window scroll bars recomputes their ranges
        // (CalcChildScroll) once the MDI module lands.
        break;
    case XoCR_CLIENT_RESIZED:
        // The frame laid its client out anew (a state change, a new
        // decoration): the program hears the new client size.
        if (w->canvasWidget && !(w->style & WS_MINIMIZE) && hwnd != childBeingCreated &&
            !omPlacingWindows)
            omSendSizeMessage(hwnd);
        break;
    default:
        break;
    }
}

// ---------------------------------------------------------------------------
// Upcalls of the frame widget.

void omSendNCPaint(Widget frame)
{
    if (HWND hwnd = frameWindow(frame))
        SendMessageA(hwnd, WM_NCPAINT, 0, 0);
}

void sendTrackStart(Widget frame, WPARAM command, int x, int y)
{
    HWND hwnd = frameWindow(frame);
    if (!hwnd)
        return;
    ++framePointerTrack;
    SendMessageA(hwnd, WM_SYSCOMMAND, command, MAKELPARAM(x, y));
    --framePointerTrack;
}

void omSendSC_MOVE(Widget frame, int x, int y)
{
    sendTrackStart(frame, SC_MOVE, x, y);
}

void omSendSC_SIZE(Widget frame, int x, int y)
{
    sendTrackStart(frame, SC_SIZE, x, y);
}

// WM_MOVING and WM_SIZING carry screen coordinates, as on Windows; the
// frame works in its parent's.
void sendTrackStep(Widget frame, UINT msg, WPARAM wParam, XoRect *rect)
{
    HWND hwnd = frameWindow(frame);
    if (!hwnd || !rect)
        return;
    int ox, oy;
    parentOrigin(frame, &ox, &oy);
    RECT r{rect->x + ox, rect->y + oy, rect->x + ox + rect->width, rect->y + oy + rect->height};
    SendMessageA(hwnd, msg, wParam, reinterpret_cast<LPARAM>(&r));
    *rect = {r.left - ox, r.top - oy, std::max<int>(r.right - r.left, 1),
             std::max<int>(r.bottom - r.top, 1)};
}

void omSendWM_MOVING(Widget frame, XoRect *rect)
{
    sendTrackStep(frame, WM_MOVING, 9, rect);
}

void omSendWM_SIZING(Widget frame, XoRect *rect, int edge)
{
    // The frame's edge numbering to WMSZ_*.
    static constexpr WPARAM kEdge[9] = {WMSZ_TOPRIGHT, WMSZ_TOP,         WMSZ_BOTTOM,
                                        0,             WMSZ_BOTTOMLEFT,  WMSZ_BOTTOMRIGHT,
                                        WMSZ_RIGHT,    WMSZ_TOPLEFT,     WMSZ_LEFT};
    WPARAM wParam = edge >= 0 && edge < 9 ? kEdge[edge] : 0;
    sendTrackStep(frame, WM_SIZING, wParam, rect);
}

}  // namespace

extern "C" OLMO_API int omFrameTrackingPointer(void)
{
    return framePointerTrack;
}

namespace om::core {
void registerFrameUpcalls()
{
    XoUpcalls up{};
    up.omSendNCPaint = omSendNCPaint;
    up.omSendSC_MOVE = omSendSC_MOVE;
    up.omSendSC_SIZE = omSendSC_SIZE;
    up.omSendWM_MOVING = omSendWM_MOVING;
    up.omSendWM_SIZING = omSendWM_SIZING;
    XoRegisterUpcalls(&up);
}
}  // namespace om::core

// ---------------------------------------------------------------------------
// Geometry, the frame and the client area.

extern "C" OLMO_API unsigned _omXoDecorationsFromStyle(const WindowRecord *record)
{
    return record ? _omMwmDecorationsFromStyle(record) : 0;
}

extern "C" OLMO_API void omMDIGetDefaultGeometry(HWND hwnd, int *x, int *y, int *cx, int *cy)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !x || !y || !cx || !cy)
        return;
    if (*x == CW_USEDEFAULT)
        *x = 1;
    if (*y == CW_USEDEFAULT)
        *y = 1;
    if (*cx == CW_USEDEFAULT)
        *cx = 300;
    if (*cy == CW_USEDEFAULT)
        *cy = 300;
    if (*cx && *cy)
        return;
    if (!(w->style & WS_THICKFRAME) && w->kind != OM_WK_TOOLBAR)
        return;
    RECT r{};
    if (!omWindowClientRect(w->parent, &r))
        return;
    if (!*cx)
        *cx = r.right - r.left;
    if (!*cy)
        *cy = r.bottom - r.top;
}

extern "C" OLMO_API void omCreateChildCanvas(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w)
        return;
    WindowRecord *p = parentRecord(*w);
    if (!p || !p->canvasWidget) {
        w->canvasWidget = w->shellWidget;
        if (!w->canvasWidget)
            omError(OmDiag::ParentWithoutCanvas, "omCreateChildCanvas");
        return;
    }
    OmAppLock lock;
    bool isNew = !w->shellWidget;
    Arg args[32];
    Cardinal n = 0;
    if (isNew) {
        XtSetArg(args[n], XmNx, static_cast<Position>(w->x)), ++n;
        XtSetArg(args[n], XmNy, static_cast<Position>(w->y)), ++n;
        XtSetArg(args[n], XmNwidth, static_cast<Dimension>(std::max(w->cx, 1))), ++n;
        XtSetArg(args[n], XmNheight, static_cast<Dimension>(std::max(w->cy, 1))), ++n;
        // A client edge is drawn in the frame's margin, around the client
        // area, as WM_NCCALCSIZE reports it.
        Dimension margin = edgeWidth(*w);
        XtSetArg(args[n], XmNmarginWidth, margin), ++n;
        XtSetArg(args[n], XmNmarginHeight, margin), ++n;
        XtSetArg(args[n], XoNdecorations, static_cast<int>(_omXoDecorationsFromStyle(w))), ++n;
        XtSetArg(args[n], XoNdisplayState, XoDISPLAY_INACTIVE), ++n;
        XtSetArg(args[n], XmNmappedWhenManaged, False), ++n;
    }
    const char *title = frameTitle(*w);
    XmString xmTitle = nullptr;
    if (isNew || XoBorderTitleFlag(w->shellWidget)) {
        xmTitle = XmStringCreateLocalized(const_cast<char *>(title));
        XtSetArg(args[n], XoNtitle, xmTitle), ++n;
        XtSetArg(args[n], XmNiconName, title), ++n;
    }
    if (isNew) {
        XtSetArg(args[n], XoNresizeLabelDisplay, 0), ++n;
        if (HICON icon = w->windowClass ? w->windowClass->icon : nullptr) {
            ICONINFO info{};
            BITMAP bm{};
            if (GetIconInfo(icon, &info) && info.hbmColor &&
                GetObjectA(info.hbmColor, sizeof bm, &bm)) {
                XtSetArg(args[n], XoNiconWidth, static_cast<int>(bm.bmWidth)), ++n;
                XtSetArg(args[n], XoNiconHeight, static_cast<int>(bm.bmHeight)), ++n;
            }
        }
    }
    bool thinBorder = (w->style & WS_BORDER) && !(w->style & WS_THICKFRAME);
    if (isNew) {
        XtSetArg(args[n], XmNborderWidth, thinBorder && !kindDrawsBorder(*w) ? 1 : 0), ++n;
    } else {
        Dimension bw = 0;
        XtVaGetValues(w->shellWidget, XmNborderWidth, &bw, nullptr);
        bool primitive = XmIsPrimitive(w->shellWidget);
        if ((bw == 1 && !thinBorder) || hasWindowOfKind(*w, OM_WK_COMBOBOX) || primitive ||
            kindDrawsBorder(*w)) {
            XtSetArg(args[n], XmNborderWidth, 0), ++n;
        }
    }
    if (w->style & WS_MINIMIZE) {
        // FIXME: the next free icon slot of the parent comes with the
        // icon arrangement; until then icons start at (100, 100).
        XtSetArg(args[n], XoNiconX, 100), ++n;
        XtSetArg(args[n], XoNiconY, 100), ++n;
        XtSetArg(args[n], XoNstate, XoSTATE_ICONIC), ++n;
    }
    if (isNew) {
        XtSetArg(args[n], XmNbackground, omGetSysColorPixel(kColorFace)), ++n;
        XtSetArg(args[n], XmNforeground, omGetSysColorPixel(kColorText)), ++n;
    }
    if (w->style & WS_MAXIMIZE) {
        XtSetArg(args[n], XoNstate, XoSTATE_MAXIMIZED), ++n;
    }
    if (isNew) {
        // FIXME: under the event recorder each frame gets a name of its own
        // ("MDI Window sux %d"); the kernel has no recorder switch yet.
        w->shellWidget = XoCreateBorder(p->canvasWidget, "ChildWindow", args, n);
        XtAddCallback(w->shellWidget, XoNactivateCallback, ChildActivateCB, hwnd);
        XtAddCallback(w->shellWidget, XoNqueryDragIconCallback, QueryDragIconCB, hwnd);
        XtAddEventHandler(w->shellWidget, ExposureMask, False, NCPaintCB, hwnd);
    } else {
        XtSetValues(w->shellWidget, args, n);
    }
    if (xmTitle)
        XmStringFree(xmTitle);
}

extern "C" OLMO_API BOOL omCreateChildClientArea(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w)
        return FALSE;
    omCreateChildCanvas(hwnd);
    if (!omIsWindow(hwnd) || !w->shellWidget)
        return FALSE;
    // The canvas took the frame's place when the parent has none: nothing
    // more to build inside it.
    if (w->canvasWidget == w->shellWidget)
        return TRUE;
    OmAppLock lock;
    bool autoScrolled =
        (bAutoScrolledWindow && bCreatingCFormView) || (w->exStyle & kOmExAutoScrolled);
    int shadow = 0;
    if (bCreatingCFormView)
        shadow = 2;
    else if ((w->exStyle & 0x4) && w->windowClass &&
             (!std::strcmp(w->windowClass->name, "SysListView32") ||
              !std::strcmp(w->windowClass->name, "SysTreeView32")))
        shadow = 1;
    Arg args[16];
    Cardinal n = 0;
    XtSetArg(args[n], XmNbackground, omGetSysColorPixel(kColorScrolledBackground)), ++n;
    XtSetArg(args[n], XmNforeground, omGetSysColorPixel(kColorText)), ++n;
    XtSetArg(args[n], XmNscrollingPolicy, autoScrolled ? static_cast<int>(XmAUTOMATIC) : static_cast<int>(XmAPPLICATION_DEFINED)), ++n;
    XtSetArg(args[n], XmNscrollBarDisplayPolicy, autoScrolled ? static_cast<int>(XmAS_NEEDED) : static_cast<int>(XmSTATIC)), ++n;
    XtSetArg(args[n], XmNshadowThickness, shadow), ++n;
    XtSetArg(args[n], XmNspacing, 0), ++n;
    XtSetArg(args[n], XmNscrolledWindowMarginWidth, 0), ++n;
    XtSetArg(args[n], XmNscrolledWindowMarginHeight, 0), ++n;
    if (!autoScrolled) {
        XtSetArg(args[n], XmNwidth, 1), ++n;
        XtSetArg(args[n], XmNheight, 1), ++n;
    }
    if (shadow == 1) {
        XtSetArg(args[n], XmNtopShadowColor, omGetSysColorPixel(COLOR_3DDKSHADOW)), ++n;
        XtSetArg(args[n], XmNbottomShadowColor, omGetSysColorPixel(COLOR_3DLIGHT)), ++n;
    }
    bool thinBorder = (w->style & WS_BORDER) && !(w->style & WS_THICKFRAME);
    XtSetArg(args[n], XmNborderWidth, thinBorder ? 1 : 0), ++n;
    Widget frame = XmCreateScrolledWindow(w->shellWidget, const_cast<char *>("ChildScrolledWindow"),
                                          args, n);
    w->frameWidget = frame;
    XtManageChild(frame);
    // FIXME: the window scroll bars of WS_HSCROLL and WS_VSCROLL come with
    // the scroll-bar module.
    if (autoScrolled && bCreatingCFormView) {
        int cx = std::max(w->cx - 2 * shadow, 1), cy = std::max(w->cy - 2 * shadow, 1);
        w->cx = cx;
        w->cy = cy;
    }

    char name[129] = "ChildWindowDrawingArea";
    if (w->kind == OM_WK_MDICHILD)
        std::snprintf(name, sizeof name, "MDIChildWindowDrawingArea");
    else if (w->windowClass && w->windowClass->name[0])
        std::snprintf(name, sizeof name, "%s",
                      w->windowClass->longName ? w->windowClass->longName : w->windowClass->name);
    // FIXME: the OpenGL visual of extended-style bit 29 comes with the
    // OpenGL drawing area; such a window gets the ordinary one.
    n = 0;
    XtSetArg(args[n], XmNbackground, omGetSysColorPixel(kColorFace)), ++n;
    XtSetArg(args[n], XmNforeground, omGetSysColorPixel(kColorText)), ++n;
    XtSetArg(args[n], XmNmarginWidth, 0), ++n;
    XtSetArg(args[n], XmNmarginHeight, 0), ++n;
    XtSetArg(args[n], XmNshadowThickness, 0), ++n;
    XtSetArg(args[n], XmNresizePolicy, XmRESIZE_NONE), ++n;
    XtSetArg(args[n], XmNwidth, static_cast<Dimension>(std::max(w->cx, 1))), ++n;
    XtSetArg(args[n], XmNheight, static_cast<Dimension>(std::max(w->cy, 1))), ++n;
    w->canvasWidget = XmCreateDrawingArea(frame, name, args, n);
    bCreatingCFormView = 0;
    XtVaSetValues(frame, XmNworkWindow, w->canvasWidget, nullptr);
    omFinishCreatingChild(hwnd);
    return TRUE;
}

extern "C" OLMO_API void omFinishCreatingChild(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !w->shellWidget)
        return;
    OmAppLock lock;
    if (w->canvasWidget)
        XtManageChild(w->canvasWidget);
    if (w->frameWidget)
        XtManageChild(w->frameWidget);
    XtManageChild(w->shellWidget);
    HICON icon = w->windowClass ? w->windowClass->icon : nullptr;
    if (icon && (w->style & WS_CAPTION) && (w->style & WS_MINIMIZEBOX) &&
        XoIsBorder(w->shellWidget))
        if (Pixmap pm = omIconGetDefaultPixmap(icon))
            XtVaSetValues(w->shellWidget, XmNiconPixmap, pm, nullptr);
    omSelectInputs(hwnd);
}

// ---------------------------------------------------------------------------
// The creation sequence.

extern "C" OLMO_API int omCreateChildWindow(HWND hwnd, int send)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w)
        return -1;
    if (send)
        w->createProc = DefWindowProcA;
    WindowRecord *p = parentRecord(*w);
    if (p && p->kind == OM_WK_STATIC)
        return -1;
    omMDIGetDefaultGeometry(hwnd, &w->x, &w->y, &w->cx, &w->cy);

    CREATESTRUCTA cs{};
    cs.lpCreateParams = w->createParams;
    cs.hInstance = w->instance;
    cs.hMenu = reinterpret_cast<HMENU>(w->idOrMenu);
    cs.hwndParent = w->parent;
    cs.cy = w->cy;
    cs.cx = w->cx;
    cs.y = w->y;
    cs.x = w->x;
    cs.style = static_cast<LONG>(w->style);
    // The procedure may change the window's text while it is created:
    // the structure keeps its own copy.
    char *name = w->textIsOrdinal ? nullptr : strdup(w->text ? w->text : "");
    cs.lpszName = w->textIsOrdinal ? w->text : name;
    cs.lpszClass = w->windowClass->name;
    cs.dwExStyle = w->exStyle;
    auto deliver = [&](UINT msg) -> LRESULT {
        LPARAM l = reinterpret_cast<LPARAM>(&cs);
        if (send)
            return SendMessageA(hwnd, msg, 0, l);
        return w->createProc ? CallWindowProcA(w->createProc, hwnd, msg, 0, l) : 0;
    };
    struct FreeName {
        char *p;
        ~FreeName() { std::free(p); }
    } freeName{name};

    struct Creating {
        HWND previous = childBeingCreated;
        explicit Creating(HWND h) { childBeingCreated = h; }
        ~Creating() { childBeingCreated = previous; }
    } creating{hwnd};
    bNCCreate = 0;
    if (!deliver(WM_NCCREATE) || !omIsWindow(hwnd))
        return -1;
    MINMAXINFO mmi{};
    mmi.ptMinTrackSize = {-1, -1};
    mmi.ptMaxTrackSize = {-1, -1};
    om::core::send(hwnd, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&mmi));
    omSetMinMaxInfo(hwnd, mmi.ptMinTrackSize.x, mmi.ptMinTrackSize.y, mmi.ptMaxTrackSize.x,
                    mmi.ptMaxTrackSize.y);
    if (!(w->exStyle & kOmExForeign) && !bNCCreate)
        omDebugWarning(OmDiag::NcCreateNotPassed, w->windowClass->name);
    if (w->shellWidget) {
        omSetWidgetHWND(w->shellWidget, hwnd);
        if (w->frameWidget)
            omSetWidgetHWND(w->frameWidget, hwnd);
        if (w->canvasWidget && w->canvasWidget != w->frameWidget)
            omSetWidgetHWND(w->canvasWidget, hwnd);
    }
    if (deliver(WM_CREATE) == -1 || !omIsWindow(hwnd))
        return -1;

    if (w->shellWidget && XtIsRealized(w->shellWidget)) {
        if (w->kind == OM_WK_MDICHILD)
            XRaiseWindow(XtDisplay(w->shellWidget), XtWindow(w->shellWidget));
        else if (!omIsPredefinedChildClass(w))
            XLowerWindow(XtDisplay(w->shellWidget), XtWindow(w->shellWidget));
    }
    if (((w->cx && w->cy) || (w->style & WS_THICKFRAME)) && (w->style & WS_VISIBLE)) {
        ShowWindow(hwnd, SW_SHOWNORMAL);
        if (!omIsWindow(hwnd))
            return -1;
    }
    if (!send || (w->exStyle & kOmExForeign)) {
        WindowRecord *pp = parentRecord(*w);
        if (pp && (pp->style & WS_VISIBLE) && (w->style & WS_VISIBLE)) {
            RECT r{w->x, w->y, w->x + w->cx, w->y + w->cy};
            InvalidateRect(hwnd, &r, FALSE);
        }
    } else {
        int cx = w->cx, cy = w->cy;
        if (w->canvasWidget) {
            int ww = w->canvasWidget->core.width, wh = w->canvasWidget->core.height;
            if ((ww || wh) && w->cx && w->cy) {
                cx = ww;
                cy = wh;
            }
        }
        omSendMoveMessage(hwnd);
        om::core::send(hwnd, WM_SIZE, SIZE_RESTORED, MAKELPARAM(cx, cy));
        if (!omIsWindow(hwnd))
            return -1;
    }
    if (send && !(w->exStyle & (WS_EX_NOPARENTNOTIFY | kOmExForeign)))
        SendMessageA(GetParent(hwnd), WM_PARENTNOTIFY,
                     MAKEWPARAM(WM_CREATE, static_cast<WORD>(w->idOrMenu)),
                     reinterpret_cast<LPARAM>(hwnd));
    return 0;
}
