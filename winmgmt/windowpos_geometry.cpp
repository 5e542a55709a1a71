// Geometry changes by sort of window: the shell of a top-level or pop-up
// window, the XoBorder frame of a child, the record alone of a windowless
// child; and the narrowed input selection of a change made without redraw.
#include "winmgmt/ompos.h"

#include "core/omwindow.h"
#include "kernel/omdisplay.h"
#include "kernel/omwidgetmap.h"
#include "messages/xevents.h"
#include "widgets/XoBorder.h"

#include <Xm/Xm.h>
#include <X11/IntrinsicP.h>
#include <X11/Shell.h>

#include <algorithm>
#include <cstring>

namespace {

using om::winmgmt::sortOf;
using om::winmgmt::WindowSort;

// What the input selection keeps while a window changes silently: no
// presses, no crossings into it, no exposures.
constexpr long kSilencedInput = ButtonPressMask | ButtonReleaseMask | EnterWindowMask | ExposureMask;

Dimension side(int v)
{
    return static_cast<Dimension>(std::clamp(v, 1, 0x7fff));
}

Position coord(int v)
{
    return static_cast<Position>(std::clamp(v, -0x8000, 0x7fff));
}

// The shell size for an outer size: less the frame on each side and the
// caption, each only when the size exceeds it, and never 0.
void shellSize(int cx, int cy, int frame, int caption, int *width, int *height)
{
    *width = cx > 2 * frame ? cx - 2 * frame : cx;
    *height = cy > 2 * frame ? cy - 2 * frame : cy;
    if (caption && *height > caption)
        *height -= caption;
    *width = std::max(*width, 1);
    *height = std::max(*height, 1);
}

// A pop-up's frame is what the window manager draws for its style.
int popupFrame(DWORD style)
{
    if (style & WS_THICKFRAME)
        return omResources.frameWidth;
    if (style & WS_DLGFRAME)
        return omResources.dialogFrameWidth;
    return 0;
}

int fullCaption(DWORD style)
{
    return (style & WS_CAPTION) == WS_CAPTION ? omResources.captionHeight : 0;
}

// Our own change is already in the record: the server's report of it
// would only echo it back.
void drainConfigureNotify(Widget widget)
{
    if (!widget || !XtIsRealized(widget))
        return;
    XEvent event;
    while (XCheckTypedWindowEvent(omDisplay, XtWindow(widget), ConfigureNotify, &event)) {
    }
}

bool parentIsPopup(const WindowRecord &w)
{
    WindowRecord *p = omWindowRecord(w.parent);
    return p && (p->style & WS_POPUP) && !(p->style & WS_CHILD);
}

bool isDefaultPushButton(const WindowRecord &w)
{
    return w.kind == OM_WK_BUTTON && (w.style & 0xF) == BS_DEFPUSHBUTTON;
}

void selectInput(Widget widget, long mask)
{
    if (widget && XtIsRealized(widget))
        XSelectInput(omDisplay, XtWindow(widget), XtBuildEventMask(widget) | mask);
}

void selectOnWidgets(WindowRecord &w, long mask)
{
    if (w.kind == OM_WK_EDIT || !omDisplay)
        return;
    selectInput(w.canvasWidget, mask);
    if (w.frameWidget != w.canvasWidget)
        selectInput(w.frameWidget, mask);
    if (w.style & WS_CHILD)
        selectInput(w.shellWidget, mask);
}

// Holds a window's exposures off for the length of a scope when the change
// is made without redraw.
class SilentChange {
public:
    SilentChange(WindowRecord &w, BOOL redraw) : m_w(redraw ? nullptr : &w)
    {
        if (m_w)
            omWindowTurnOffRepaint(m_w);
    }
    ~SilentChange()
    {
        if (m_w)
            omWindowTurnOnRepaint(m_w);
    }
    SilentChange(const SilentChange &) = delete;
    SilentChange &operator=(const SilentChange &) = delete;

private:
    WindowRecord *m_w;
};

void clearParentArea(const WindowRecord &w, int x, int y, int cx, int cy, Bool exposures)
{
    WindowRecord *p = omWindowRecord(w.parent);
    if (!p || !p->canvasWidget || !XtIsRealized(p->canvasWidget) || cx <= 0 || cy <= 0)
        return;
    XClearArea(omDisplay, XtWindow(p->canvasWidget), x, y, static_cast<unsigned>(cx),
               static_cast<unsigned>(cy), exposures);
}

void repositionWindowless(WindowRecord &w, int x, int y, int cx, int cy, UINT flags, BOOL redraw)
{
    int ox = w.x, oy = w.y, ocx = w.cx, ocy = w.cy;
    if (!(flags & SWP_NOMOVE)) {
        w.x = x;
        w.y = y;
    }
    if (!(flags & SWP_NOSIZE)) {
        if (cx)
            w.cx = cx;
        if (cy)
            w.cy = cy;
    }
    if (!redraw)
        return;
    // The child paints into its parent: the parent repaints where it was
    // (its text may reach past the rectangle) and the child where it is.
    clearParentArea(w, ox - 5, oy - 5, ocx + 10, ocy + 10, False);
    if (WindowRecord *p = omWindowRecord(w.parent))
        p->erasePending = true;
    RECT old{ox, oy - 8, ox + ocx + 8, oy + ocy + 2};
    InvalidateRect(w.parent, &old, TRUE);
    RECT own{0, 0, w.cx, w.cy};
    InvalidateRect(w.self, &own, TRUE);
}

// The size of a child's frame: at least 1, 3 with a border; a default push
// button's frame keeps its 12 pixels of default ring.
void sizeChildFrame(WindowRecord &w, int cx, int cy, DWORD style)
{
    Widget frame = w.shellWidget;
    int fw = cx, fh = cy;
    if (isDefaultPushButton(w) && frame->core.width == w.cx + 12 && frame->core.height == w.cy + 12) {
        fw += 12;
        fh += 12;
    }
    if (w.kind == OM_WK_MDICHILD && om::winmgmt::frameState(w) != XoSTATE_ICONIC) {
        int minX = 1, minY = 1, maxX = 0, maxY = 0;
        if (omGetMinMaxInfo(w.self, &minX, &minY, &maxX, &maxY) && !(minX == 1 && minY == 1)) {
            fw = std::max(fw, minX);
            fh = std::max(fh, minY);
            cx = std::max(cx, minX);
            cy = std::max(cy, minY);
        }
    }
    int least = (style & WS_BORDER) && !(style & WS_THICKFRAME) ? 3 : 1;
    fw = std::max(fw, least);
    fh = std::max(fh, least);
    // FIXME: a non-simple ComboBox and a ListBox take their list's optimal
    // height (XoComboOptimalHeight, XoListOptimalHeight) once those
    // widgets exist; until then they are sized like any child.
    if (parentIsPopup(w))
        XtVaSetValues(frame, XmNwidth, side(fw), XmNheight, side(fh), nullptr);
    XtResizeWidget(frame, side(fw), side(fh), frame->core.border_width);
    if ((w.exStyle & kOmExAutoScrolled) && w.frameWidget && w.canvasWidget) {
        Dimension shadow = 0;
        XtVaGetValues(w.frameWidget, XmNshadowThickness, &shadow, nullptr);
        // FIXME: never below the stored form size, once form views keep it.
        XtResizeWidget(w.canvasWidget, side(cx - 2 * shadow), side(cy - 2 * shadow),
                       w.canvasWidget->core.border_width);
    }
    w.cx = cx;
    w.cy = cy;
}

void moveChildFrame(WindowRecord &w, int x, int y)
{
    Widget frame = w.shellWidget;
    if (w.kind == OM_WK_MDICHILD && om::winmgmt::frameState(w) == XoSTATE_ICONIC) {
        XtVaSetValues(frame, XoNiconX, x, XoNiconY, y, nullptr);
    } else if (isDefaultPushButton(w) && frame->core.width == w.cx + 12) {
        XtMoveWidget(frame, coord(x - 6), coord(y - 6));
    } else {
        if (w.kind == OM_WK_COMBOBOX && (w.style & 0x3) != CBS_SIMPLE && parentIsPopup(w) &&
            XtIsRealized(frame))
            XMoveWindow(omDisplay, XtWindow(frame), x, y);
        XtMoveWidget(frame, coord(x), coord(y));
    }
    w.x = x;
    w.y = y;
}

}  // namespace

extern "C" OLMO_API void omWindowTurnOffRepaint(WindowRecord *record)
{
    if (record)
        selectOnWidgets(*record, omInputMaskOf(record->motionless) & ~kSilencedInput);
}

extern "C" OLMO_API void omWindowTurnOnRepaint(WindowRecord *record)
{
    if (record)
        selectOnWidgets(*record, omInputMaskOf(record->motionless));
}

extern "C" OLMO_API void omRepositionChild(HWND hwnd, int x, int y, int cx, int cy, UINT flags,
                                           BOOL redraw, DWORD style)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !omDisplay)
        return;
    OmAppLock lock;
    if (sortOf(*w) == WindowSort::Windowless) {
        repositionWindowless(*w, x, y, cx, cy, flags, redraw);
        return;
    }
    SilentChange silent(*w, redraw);
    if (!(flags & SWP_NOSIZE))
        sizeChildFrame(*w, cx, cy, style);
    if (!(flags & SWP_NOMOVE))
        moveChildFrame(*w, x, y);
    // FIXME: an MDI child in a scrolling client recomputes the client's
    // scroll ranges here (CalcChildScroll) once MDI lands.
    if ((style & WS_BORDER) && !(style & WS_THICKFRAME) && !omIsPredefinedChildClass(w)) {
        Widget bordered = (w->exStyle & kOmExAutoScrolled) ? w->frameWidget : w->canvasWidget;
        if (bordered)
            XtVaSetValues(bordered, XmNborderWidth, 1, nullptr);
    }
    drainConfigureNotify(w->shellWidget);
}

extern "C" OLMO_API void omRepositionPopup(HWND hwnd, int x, int y, int cx, int cy, UINT flags,
                                           BOOL redraw, DWORD style)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !w->shellWidget || !omDisplay)
        return;
    OmAppLock lock;
    SilentChange silent(*w, redraw);
    Widget shell = w->shellWidget;
    if (!(flags & SWP_NOSIZE)) {
        int width, height;
        shellSize(cx, cy, popupFrame(style), fullCaption(style), &width, &height);
        XtResizeWidget(shell, side(width), side(height), shell->core.border_width);
        if (w->frameWidget)
            XtResizeWidget(w->frameWidget, side(width), side(height),
                           w->frameWidget->core.border_width);
        w->cx = cx;
        w->cy = cy;
    }
    if (!(flags & SWP_NOMOVE)) {
        XtVaSetValues(shell, XmNx, coord(x), XmNy, coord(y), nullptr);
        w->x = x;
        w->y = y;
    }
    // A plain bordered pop-up draws its own line unless mwm draws one.
    if ((style & WS_BORDER) && !(style & (WS_THICKFRAME | WS_DLGFRAME)))
        XtVaSetValues(shell, XmNborderWidth, bIsMWMRunning ? 1 : 0, nullptr);
    drainConfigureNotify(shell);
}

extern "C" OLMO_API void omRepositionOverlapped(HWND hwnd, int x, int y, int cx, int cy,
                                                UINT flags, BOOL redraw, DWORD style)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !w->shellWidget || !omDisplay)
        return;
    OmAppLock lock;
    SilentChange silent(*w, redraw);
    Widget shell = w->shellWidget;
    int border = omBorderWidth(w), caption = omCaptionHeight(w);
    if (!(flags & SWP_NOMOVE)) {
        if (!(style & WS_VISIBLE))
            XtVaSetValues(shell, XmNx, 10, XmNy, 10, nullptr);
        int sx = x, sy = y;
        if (std::strstr(omServerVendor, "Silicon Graphics") && x == 0) {
            sx = y ? 0 : border;
            sy = y ? y : caption + 2 * border;
        } else if (x == 0 && y == 0 && !w->configured) {
            // (0, 0) before the window manager placed the window reads as
            // "no position" to some managers: one pixel off says "here".
            sx = sy = -1;
        }
        XtVaSetValues(shell, XmNx, coord(sx), XmNy, coord(sy), nullptr);
        w->x = x;
        w->y = y;
    }
    if (!(flags & SWP_NOSIZE)) {
        int width, height;
        shellSize(cx, cy, border, caption, &width, &height);
        XtResizeWidget(shell, side(width), side(height), shell->core.border_width);
        w->cx = cx;
        w->cy = cy;
    }
    drainConfigureNotify(shell);
}

extern "C" OLMO_API void omMoveResizeWindow(HWND hwnd, int x, int y, int cx, int cy, BOOL move,
                                            BOOL resize, BOOL redraw)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !omDisplay)
        return;
    OmAppLock lock;
    if (sortOf(*w) == WindowSort::Windowless) {
        int ox = w->x, oy = w->y, ocx = w->cx, ocy = w->cy;
        w->x = x;
        w->y = y;
        w->cx = cx;
        w->cy = cy;
        clearParentArea(*w, ox, oy - 8, ocx + 8, ocy + 10, True);
        return;
    }
    if (sortOf(*w) == WindowSort::Child || !w->shellWidget)
        return;
    SilentChange silent(*w, redraw);
    Widget shell = w->shellWidget;
    if (move)
        XtMoveWidget(shell, coord(x), coord(y));
    if (resize) {
        int width, height;
        shellSize(cx, cy, popupFrame(w->style), fullCaption(w->style), &width, &height);
        XtResizeWidget(shell, side(width), side(height), shell->core.border_width);
    }
    drainConfigureNotify(shell);
    w->x = x;
    w->y = y;
    w->cx = cx;
    w->cy = cy;
    InvalidateRect(hwnd, nullptr, TRUE);
}
