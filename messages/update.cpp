// Invalidation and validation: every window's update region and erase
// flag, InvalidateRect and its kin, UpdateWindow and RedrawWindow, X
// exposures turned into invalidation, the lite children painted on their
// parent's canvas, and the update region BeginPaint takes.
#include "messages/ompaint.h"

#include "core/omwindow.h"
#include "graphics/omgdi.h"
#include "kernel/omdiag.h"
#include "kernel/omdisplay.h"
#include "kernel/omthread.h"
#include "messages/ommessageq.h"
#include "messages/ompaintinternal.h"

#include <X11/Intrinsic.h>
#include <X11/Xutil.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

extern "C" {
OLMO_API int bomParentHandlesChildExposure = 0;
OLMO_API HWND omExposureParentHwnd = nullptr;
OLMO_API int _ombClearOnInvalidate = 0;
}

using namespace om::messages;

namespace {

// Node of a parent's liteKids list.
struct LiteKid {
    HWND child;
    LiteKid *next;
};

// Sizes beyond this do not fit the server's 16-bit rectangles once the
// origin is added; such a size counts as 0.
constexpr int kMaxExtent = 0xFFDB;

bool addRegionLocked(OmPaintList &list, HWND hwnd, WindowRecord &w, Region r)
{
    if (!w.updateRegion)
        return false;
    XUnionRegion(w.updateRegion, r, w.updateRegion);
    return !XEmptyRegion(w.updateRegion) && addItemLocked(list, hwnd);
}

// Adds r (window coordinates of the update region) and lists the window.
bool addRegion(HWND hwnd, WindowRecord &w, Region r, bool erase = false)
{
    OmThreadRecord *owner = ownerThread(w);
    int listed = withPaintList(owner, [&](OmPaintList &list) -> int {
        if (erase)
            w.erasePending = true;
        return addRegionLocked(list, hwnd, w, r) ? 1 : 0;
    });
    if (listed > 0 && owner != omCurrentThreadRecord())
        omWakeQueueOwner(owner, WM_PAINT);
    return listed > 0;
}

bool addRect(HWND hwnd, WindowRecord &w, const XRectangle &rect, bool erase = false)
{
    Region r = XCreateRegion();
    XRectangle copy = rect;
    XUnionRectWithRegion(&copy, r, r);
    bool listed = addRegion(hwnd, w, r, erase);
    XDestroyRegion(r);
    return listed;
}

// The client rectangle in the coordinates of the update region: the
// parent's for a window without a shell widget of its own.
RECT regionClientRect(HWND hwnd, const WindowRecord &w)
{
    RECT r{};
    omWindowClientRect(hwnd, &r);
    if (!w.shellWidget && w.parent)
        MapWindowPoints(hwnd, w.parent, reinterpret_cast<POINT *>(&r), 2);
    return r;
}

XRectangle toX(const RECT &r)
{
    XRectangle x;
    x.x = static_cast<short>(r.left);
    x.y = static_cast<short>(r.top);
    x.width = static_cast<unsigned short>(std::max<LONG>(0, r.right - r.left));
    x.height = static_cast<unsigned short>(std::max<LONG>(0, r.bottom - r.top));
    return x;
}

bool combinedParent(const WindowRecord &w)
{
    WindowRecord *p = omWindowRecord(w.parent);
    return p && p->kind == OM_WK_COMBOBOX;
}

bool realized(Widget widget)
{
    return widget && XtIsRealized(widget);
}

// Clears an area of a widget's window so that the widget repaints it.
// Off unless the program asked for it: clearing everything invalidated
// flickers.
void invalidateClearArea(Widget widget, int x, int y, unsigned width, unsigned height)
{
    if (!_ombClearOnInvalidate || !realized(widget) || !omDisplay)
        return;
    OmAppLock lock;
    XClearArea(omDisplay, XtWindow(widget), x, y, width, height, True);
}

bool isGroupBox(const WindowRecord &w)
{
    return w.kind == OM_WK_BUTTON && (w.style & 0x0F) == BS_GROUPBOX;
}

bool isFrameStatic(const WindowRecord &w)
{
    if (w.kind != OM_WK_STATIC)
        return false;
    DWORD s = w.style & 0x1F;
    return s == SS_BLACKFRAME || s == SS_GRAYFRAME || s == SS_WHITEFRAME || s == SS_ETCHEDFRAME;
}

std::vector<HWND> children(const WindowRecord &w)
{
    std::vector<HWND> out;
    for (HWND c = w.firstChild; c;) {
        WindowRecord *cw = omWindowRecord(c);
        if (!cw)
            break;
        out.push_back(c);
        c = cw->nextSibling;
    }
    return out;
}

// The widget set's own repaint of the controls it draws (step 5 of
// InvalidateRect).
void redrawWidgets(HWND hwnd, WindowRecord &w, const XRectangle *rect)
{
    if (!w.redraw)
        return;
    Widget widget = nullptr;
    switch (w.kind) {
    case OM_WK_EDIT:
        if (rect)
            widget = w.canvasWidget;
        break;
    case OM_WK_LISTBOX:
        widget = w.canvasWidget;
        break;
    case OM_WK_COMBOBOX:
        if (w.style & 0x30)
            widget = w.canvasWidget;
        break;
    case OM_WK_BUTTON:
        if (rect && ((w.style & 0x0F) == BS_PUSHBUTTON || (w.style & 0x0F) == BS_OWNERDRAW))
            widget = w.canvasWidget;
        break;
    default:
        break;
    }
    if (!widget)
        return;
    if (rect && !w.erasePending)
        return;
    if (rect) {
        invalidateClearArea(widget, rect->x, rect->y, rect->width, rect->height);
    } else {
        RECT c = regionClientRect(hwnd, w);
        invalidateClearArea(widget, 0, 0, c.right - c.left, c.bottom - c.top);
    }
}

// Checks of every public operation: the thread rule, then a live window.
WindowRecord *checked(HWND hwnd, const char *name, bool warn = true)
{
    if (!omThreadRuleOk(name))
        return nullptr;
    if (!omIsWindow(hwnd)) {
        if (warn)
            omDebugWarning(OmDiag::BadWindowHandle, name, hwnd);
        return nullptr;
    }
    return ConvertHWNDtoPtr(hwnd);
}

bool foreign(const WindowRecord &w)
{
    return (w.exStyle & kOmExForeign) != 0;
}

bool exposedOrTiny(const WindowRecord &w)
{
    return w.exposed || w.cx <= 1 || w.cy <= 1;
}

BOOL invalidate(HWND hwnd, const RECT *rect, BOOL erase);

BOOL invalidateWhole(HWND hwnd, WindowRecord &w, BOOL erase)
{
    bool pending = false;
    withPaintList(ownerThread(w), [&](OmPaintList &) -> int {
        if (erase && (w.style & WS_VISIBLE))
            w.erasePending = true;
        pending = w.erasePending;
        return 0;
    });
    if (!w.shellWidget) {
        RECT c = regionClientRect(hwnd, w);
        addRect(hwnd, w, toX(c));
    }
    if (!(w.style & WS_CLIPCHILDREN))
        for (HWND child : children(w))
            invalidate(child, nullptr, erase);
    if (!omIsWindow(hwnd))
        return TRUE;
    if (erase && w.erasePending && !combinedParent(w) && realized(w.canvasWidget)) {
        HBRUSH brush = w.windowClass ? w.windowClass->background : nullptr;
        if (!brush || brush == GetStockObject(NULL_BRUSH)) {
            RECT c{};
            omWindowClientRect(hwnd, &c);
            invalidateClearArea(w.canvasWidget, 0, 0, c.right, c.bottom);
        }
    }
    if (w.canvasWidget && w.shellWidget && !combinedParent(w)) {
        RECT c{};
        omWindowClientRect(hwnd, &c);
        XEvent ev{};
        ev.xexpose.type = Expose;
        ev.xexpose.display = omDisplay;
        ev.xexpose.window = realized(w.canvasWidget) ? XtWindow(w.canvasWidget) : None;
        ev.xexpose.width = c.right > kMaxExtent ? 0 : c.right;
        ev.xexpose.height = c.bottom > kMaxExtent ? 0 : c.bottom;
        omProcessExposeEvent(hwnd, &ev);
        // The exposure asks for an erase; this invalidation did not,
        // though an earlier one may have.
        if (!erase)
            withPaintList(ownerThread(w), [&](OmPaintList &) -> int {
                w.erasePending = pending;
                return 0;
            });
    } else if (w.shellWidget) {
        RECT c{};
        omWindowClientRect(hwnd, &c);
        addRect(hwnd, w, toX(c));
    }
    redrawWidgets(hwnd, w, nullptr);
    return TRUE;
}

BOOL invalidatePart(HWND hwnd, WindowRecord &w, const RECT &in, BOOL erase)
{
    // The smaller corner, clipped to 0, with the absolute extent, and then
    // to the client area (the update region never reaches outside it).
    LONG left = std::max<LONG>(0, std::min(in.left, in.right));
    LONG top = std::max<LONG>(0, std::min(in.top, in.bottom));
    LONG right = std::max(in.left, in.right);
    LONG bottom = std::max(in.top, in.bottom);
    if (right <= left || bottom <= top)
        return FALSE;
    RECT client{};
    omWindowClientRect(hwnd, &client);
    right = std::min(right, client.right);
    bottom = std::min(bottom, client.bottom);
    // Wholly outside the client area: nothing to paint, and no error.
    if (right <= left || bottom <= top)
        return TRUE;
    if (right - left > kMaxExtent)
        right = left;
    if (bottom - top > kMaxExtent)
        bottom = top;
    XRectangle x{static_cast<short>(left), static_cast<short>(top),
                 static_cast<unsigned short>(right - left), static_cast<unsigned short>(bottom - top)};
    if (!w.shellWidget && w.parent) {
        POINT origin{0, 0};
        MapWindowPoints(hwnd, w.parent, &origin, 1);
        x.x = static_cast<short>(x.x + origin.x);
        x.y = static_cast<short>(x.y + origin.y);
    }
    addRect(hwnd, w, x, erase && (w.style & WS_VISIBLE));
    if (!(w.style & WS_CLIPCHILDREN)) {
        RECT r{left, top, right, bottom};
        for (HWND child : children(w)) {
            WindowRecord *c = omWindowRecord(child);
            if (!c || !(c->style & WS_VISIBLE))
                continue;
            RECT cr{c->x, c->y, c->x + c->cx, c->y + c->cy};
            RECT both;
            if (!IntersectRect(&both, &cr, &r))
                continue;
            OffsetRect(&both, -c->x, -c->y);
            invalidate(child, &both, w.kind == OM_WK_MDICHILD ? erase : FALSE);
        }
    }
    if (omIsWindow(hwnd))
        redrawWidgets(hwnd, w, &x);
    return TRUE;
}

// The checks InvalidateRect and InvalidateRgn share: null when the call
// ends there, with *result its answer.
WindowRecord *invalidationTarget(HWND hwnd, const char *name, BOOL *result)
{
    *result = FALSE;
    WindowRecord *w = checked(hwnd, name);
    if (!w)
        return nullptr;
    if (foreign(*w)) {
        *result = TRUE;
        return nullptr;
    }
    // Its first exposure paints a window that was never shown.
    if (!exposedOrTiny(*w))
        return nullptr;
    return w;
}

BOOL invalidate(HWND hwnd, const RECT *rect, BOOL erase)
{
    BOOL result;
    WindowRecord *w = invalidationTarget(hwnd, "InvalidateRect", &result);
    if (!w)
        return result;
    if (!rect)
        return invalidateWhole(hwnd, *w, erase);
    return invalidatePart(hwnd, *w, *rect, erase);
}

// Sends WM_ERASEBKGND with a DC clipped to the update region.
void eraseThroughUpdate(HWND hwnd, WindowRecord &w)
{
    HDC hdc = GetDC(hwnd);
    if (!hdc)
        return;
    Region copy = XCreateRegion();
    withPaintList(ownerThread(w), [&](OmPaintList &) -> int {
        if (w.updateRegion)
            XUnionRegion(copy, w.updateRegion, copy);
        return 0;
    });
    if (!w.shellWidget) {
        POINT origin{0, 0};
        MapWindowPoints(hwnd, w.parent, &origin, 1);
        XOffsetRegion(copy, -origin.x, -origin.y);
    }
    {
        OmAppLock lock;
        omDCSetSystemClip(hdc, copy);
    }
    XDestroyRegion(copy);
    SendMessageA(hwnd, WM_ERASEBKGND, reinterpret_cast<WPARAM>(hdc), 0);
    ReleaseDC(hwnd, hdc);
}

XRectangle updateBox(WindowRecord &w)
{
    XRectangle box{};
    withPaintList(ownerThread(w), [&](OmPaintList &) -> int {
        if (w.updateRegion)
            XClipBox(w.updateRegion, &box);
        return 0;
    });
    return box;
}

bool sendPaintIfDamaged(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !w->redraw)
        return false;
    XRectangle box = updateBox(*w);
    if (!box.width || !box.height)
        return false;
    SendMessageA(hwnd, WM_PAINT, 0, 0);
    return true;
}

}  // namespace

extern "C" {

BOOL WINAPI InvalidateRect(HWND hWnd, const RECT *lpRect, BOOL bErase)
{
    return invalidate(hWnd, lpRect, bErase);
}

BOOL WINAPI InvalidateRgn(HWND hWnd, HRGN hRgn, BOOL bErase)
{
    BOOL result;
    WindowRecord *w = invalidationTarget(hWnd, "InvalidateRgn", &result);
    if (!w)
        return result;
    Region x = hRgn ? omRegionGetXRegion(hRgn) : nullptr;
    if (x) {
        Region copy = XCreateRegion();
        XUnionRegion(copy, x, copy);
        if (!w->shellWidget && w->parent) {
            POINT origin{0, 0};
            MapWindowPoints(hWnd, w->parent, &origin, 1);
            XOffsetRegion(copy, origin.x, origin.y);
        }
        addRegion(hWnd, *w, copy, bErase != 0);
        XDestroyRegion(copy);
        return TRUE;
    }
    invalidate(hWnd, nullptr, bErase);
    return TRUE;
}

BOOL WINAPI ValidateRect(HWND hWnd, const RECT *lpRect)
{
    WindowRecord *w = checked(hWnd, "ValidateRect");
    if (!w)
        return FALSE;
    if (foreign(*w))
        return TRUE;
    if (lpRect && (lpRect->right <= lpRect->left || lpRect->bottom <= lpRect->top))
        return FALSE;
    Region sub = nullptr;
    if (lpRect) {
        RECT r = *lpRect;
        if (!w->shellWidget && w->parent)
            MapWindowPoints(hWnd, w->parent, reinterpret_cast<POINT *>(&r), 2);
        XRectangle x = toX(r);
        sub = XCreateRegion();
        XUnionRectWithRegion(&x, sub, sub);
    }
    withPaintList(ownerThread(*w), [&](OmPaintList &list) -> int {
        if (!w->updateRegion)
            return 0;
        if (sub) {
            XSubtractRegion(w->updateRegion, sub, w->updateRegion);
        } else {
            XDestroyRegion(w->updateRegion);
            w->updateRegion = XCreateRegion();
        }
        if (!sub || XEmptyRegion(w->updateRegion))
            deleteItemLocked(list, hWnd);
        return 0;
    });
    if (sub)
        XDestroyRegion(sub);
    return TRUE;
}

BOOL WINAPI ValidateRgn(HWND hWnd, HRGN)
{
    if (!checked(hWnd, "ValidateRgn"))
        return FALSE;
    ValidateRect(hWnd, nullptr);
    return TRUE;
}

BOOL WINAPI GetUpdateRect(HWND hWnd, LPRECT lpRect, BOOL bErase)
{
    WindowRecord *w = checked(hWnd, "GetUpdateRect", false);
    if (!w)
        return FALSE;
    XRectangle box = updateBox(*w);
    if (!box.width || !box.height) {
        if (lpRect)
            *lpRect = RECT{};
        return FALSE;
    }
    if (lpRect) {
        RECT r{box.x, box.y, box.x + box.width, box.y + box.height};
        if (!w->shellWidget && w->parent)
            MapWindowPoints(w->parent, hWnd, reinterpret_cast<POINT *>(&r), 2);
        if (w->windowClass && (w->windowClass->style & CS_OWNDC)) {
            HDC own = GetDC(hWnd);
            DPtoLP(own, reinterpret_cast<POINT *>(&r), 2);
            ReleaseDC(hWnd, own);
        }
        *lpRect = r;
    }
    if (bErase == TRUE)
        eraseThroughUpdate(hWnd, *w);
    return TRUE;
}

int WINAPI GetUpdateRgn(HWND hWnd, HRGN hRgn, BOOL bErase)
{
    WindowRecord *w = checked(hWnd, "GetUpdateRgn", false);
    if (!w || !omRegionGetXRegion(hRgn))
        return NULLREGION;
    Region copy = XCreateRegion();
    withPaintList(ownerThread(*w), [&](OmPaintList &) -> int {
        if (w->updateRegion)
            XUnionRegion(copy, w->updateRegion, copy);
        return 0;
    });
    if (!w->shellWidget && w->parent) {
        POINT origin{0, 0};
        MapWindowPoints(hWnd, w->parent, &origin, 1);
        XOffsetRegion(copy, -origin.x, -origin.y);
    }
    omRegionSetXRegion(hRgn, copy);
    bool empty = XEmptyRegion(copy);
    XDestroyRegion(copy);
    if (bErase == TRUE && !empty)
        eraseThroughUpdate(hWnd, *w);
    return empty ? NULLREGION : COMPLEXREGION;
}

BOOL WINAPI UpdateWindow(HWND hWnd)
{
    WindowRecord *w = checked(hWnd, "UpdateWindow");
    if (!w)
        return FALSE;
    if (!(w->style & WS_VISIBLE))
        return TRUE;
    if (w->kind == OM_WK_TREEVIEW && !w->exposed)
        return TRUE;
    if (!w->canvasWidget)
        return FALSE;
    sendPaintIfDamaged(hWnd);
    if (!omIsWindow(hWnd))
        return TRUE;
    if (w->redraw)
        for (HWND child : children(*w)) {
            WindowRecord *c = omWindowRecord(child);
            if (c && (isGroupBox(*c) || c->kind == OM_WK_STATIC))
                SendMessageA(child, WM_PAINT, 0, 0);
        }
    if (!omIsWindow(hWnd))
        return TRUE;
    withPaintList(ownerThread(*w), [&](OmPaintList &list) -> int {
        if (w->updateRegion)
            XDestroyRegion(w->updateRegion);
        w->updateRegion = XCreateRegion();
        deleteItemLocked(list, hWnd);
        return 0;
    });
    return TRUE;
}

BOOL WINAPI RedrawWindow(HWND hWnd, const RECT *lprcUpdate, HRGN hrgnUpdate, UINT flags)
{
    if (!omThreadRuleOk("RedrawWindow"))
        return FALSE;
    if (!hWnd) {
        omDebugWarning(OmDiag::RedrawNullWindow, "RedrawWindow");
        return FALSE;
    }
    WindowRecord *w = checked(hWnd, "RedrawWindow");
    if (!w)
        return FALSE;
    if (foreign(*w))
        return TRUE;
    if (flags & RDW_UPDATENOW)
        w->exposed = true;
    else if (!w->exposed)
        return FALSE;
    if (flags & RDW_VALIDATE) {
        if (!lprcUpdate)
            ValidateRgn(hWnd, hrgnUpdate);
        else
            ValidateRect(hWnd, lprcUpdate);
        return TRUE;
    }
    if (!(flags & (RDW_INVALIDATE | RDW_UPDATENOW)))
        return TRUE;
    std::vector<HWND> kids;
    if (flags & RDW_ALLCHILDREN)
        for (HWND c : children(*w)) {
            WindowRecord *cw = omWindowRecord(c);
            if (cw && (cw->style & WS_VISIBLE))
                kids.push_back(c);
        }
    BOOL erase = (flags & RDW_ERASE) ? TRUE : FALSE;
    if (flags & RDW_ERASENOW) {
        erase = FALSE;
        auto eraseNow = [](HWND h) {
            HDC hdc = GetDC(h);
            if (!hdc)
                return;
            SendMessageA(h, WM_ERASEBKGND, reinterpret_cast<WPARAM>(hdc), 0);
            ReleaseDC(h, hdc);
        };
        eraseNow(hWnd);
        for (HWND c : kids)
            if (omIsWindow(c))
                eraseNow(c);
    }
    if ((flags & RDW_FRAME) && !lprcUpdate && !hrgnUpdate) {
        SendMessageA(hWnd, WM_NCPAINT, 0, 0);
        for (HWND c : kids)
            SendMessageA(c, WM_NCPAINT, 0, 0);
    }
    if (flags & RDW_INVALIDATE) {
        if (!lprcUpdate)
            InvalidateRgn(hWnd, hrgnUpdate, erase);
        else
            InvalidateRect(hWnd, lprcUpdate, erase);
        for (HWND c : kids)
            InvalidateRect(c, nullptr, erase);
    }
    if (flags & RDW_UPDATENOW) {
        auto withWidgets = [](HWND h) {
            WindowRecord *r = omWindowRecord(h);
            return r && !foreign(*r);
        };
        sendPaintIfDamaged(hWnd);
        for (HWND c : kids)
            if (withWidgets(c))
                sendPaintIfDamaged(c);
        SendMessageA(hWnd, WM_NCPAINT, 0, 0);
        for (HWND c : kids)
            if (withWidgets(c))
                SendMessageA(c, WM_NCPAINT, 0, 0);
    }
    return TRUE;
}

BOOL WINAPI LockWindowUpdate(HWND)
{
    omDebugWarning(OmDiag::Unsupported, "LockWindowUpdate");
    return FALSE;
}

int WINAPI ExcludeUpdateRgn(HDC, HWND)
{
    omDebugWarning(OmDiag::Unsupported, "ExcludeUpdateRgn");
    return 0;
}

int WINAPI GetWindowRgn(HWND, HRGN)
{
    omDebugWarning(OmDiag::Unsupported, "GetWindowRgn");
    return 0;
}

int WINAPI SetWindowRgn(HWND, HRGN, BOOL)
{
    omDebugWarning(OmDiag::Unsupported, "SetWindowRgn");
    return 1;
}

OLMO_API BOOL omPaintInvalidateXRgn(HWND hwnd, Region region)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w) {
        omDebugWarning(OmDiag::BadWindowHandle, "InvalidateRgn", hwnd);
        return FALSE;
    }
    if (!region)
        return FALSE;
    addRegion(hwnd, *w, region);
    return TRUE;
}

OLMO_API BOOL omPaintInvalidateRect(HWND hwnd, XRectangle *rect)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w) {
        omDebugWarning(OmDiag::BadWindowHandle, "InvalidateRgn", hwnd);
        return FALSE;
    }
    if (!rect)
        return FALSE;
    addRect(hwnd, *w, *rect);
    return TRUE;
}

OLMO_API int omSetFirstExpose(HWND hwnd, int value)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w)
        return 0;
    int old = w->exposed;
    w->exposed = value != 0;
    return old;
}

OLMO_API void omSetClearOnInvalidate(int flag)
{
    _ombClearOnInvalidate = flag;
}

OLMO_API BOOL omPaintAddLiteKid(HWND child)
{
    WindowRecord *c = omWindowRecord(child);
    WindowRecord *p = c ? omWindowRecord(c->parent) : nullptr;
    if (!p)
        return FALSE;
    auto *node = static_cast<LiteKid *>(std::malloc(sizeof(LiteKid)));
    if (!node) {
        omError(OmDiag::OutOfMemory, "omPaintAddLiteKid");
        return FALSE;
    }
    node->child = child;
    node->next = static_cast<LiteKid *>(p->liteKids);
    p->liteKids = node;
    return TRUE;
}

OLMO_API BOOL omPaintDeleteLiteKid(HWND child)
{
    WindowRecord *c = omWindowRecord(child);
    WindowRecord *p = c ? omWindowRecord(c->parent) : nullptr;
    if (!p)
        return FALSE;
    for (LiteKid **link = reinterpret_cast<LiteKid **>(&p->liteKids); *link;
         link = &(*link)->next) {
        if ((*link)->child == child) {
            LiteKid *gone = *link;
            *link = gone->next;
            std::free(gone);
            return TRUE;
        }
    }
    return FALSE;
}

OLMO_API void omPaintCleanAll(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w)
        return;
    for (auto *k = static_cast<LiteKid *>(w->liteKids); k;) {
        LiteKid *next = k->next;
        std::free(k);
        k = next;
    }
    w->liteKids = nullptr;
}

OLMO_API void omProcessExposeInChildGBSS(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !w->liteKids)
        return;
    // The parent's update region, in its client coordinates.
    Region parentUpdate = XCreateRegion();
    withPaintList(ownerThread(*w), [&](OmPaintList &) -> int {
        if (w->updateRegion)
            XUnionRegion(parentUpdate, w->updateRegion, parentUpdate);
        return 0;
    });
    for (auto *k = static_cast<LiteKid *>(w->liteKids); k; k = k->next) {
        WindowRecord *c = omWindowRecord(k->child);
        if (!c)
            continue;
        XRectangle r{static_cast<short>(c->x), static_cast<short>(c->y),
                     static_cast<unsigned short>(std::max(0, c->cx)),
                     static_cast<unsigned short>(std::max(0, c->cy))};
        bool hit = isFrameStatic(*c) ||
                   (isGroupBox(*c) && XRectInRegion(parentUpdate, r.x, r.y, r.width, r.height) !=
                                          RectangleOut);
        if (!hit)
            continue;
        c->exposed = true;
        addRect(k->child, *c, r);
    }
    XDestroyRegion(parentUpdate);
}

OLMO_API void omProcessExposeEvent(HWND hwnd, XEvent *event)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !event || foreign(*w))
        return;
    Window canvas = realized(w->canvasWidget) ? XtWindow(w->canvasWidget) : None;
    bool counts = !w->canvasWidget || event->xany.window == canvas ||
                  (w->kind == OM_WK_COMBOBOX && (w->style & WS_CHILD));
    if (!counts) {
        // The widgets around the canvas (frame, scroll bars) draw
        // themselves.
        XtDispatchEvent(event);
        return;
    }
    WindowRecord *p = omWindowRecord(w->parent);
    if (!(w->style & WS_VISIBLE) && !(p && p->kind == OM_WK_TOOLBAR))
        return;
    if (!w->exposed) {
        w->exposed = true;
        if (p && (p->kind == OM_WK_MDICHILD || p->kind == OM_WK_DIALOG) && !p->exposed)
            p->exposed = true;
    }
    Region r = XCreateRegion();
    XtAddExposureToRegion(event, r);
    if (bomParentHandlesChildExposure && omExposureParentHwnd &&
        isDescendant(hwnd, omExposureParentHwnd) && omPaintIsHwndInQueue(omExposureParentHwnd)) {
        if (WindowRecord *a = omWindowRecord(omExposureParentHwnd)) {
            Region inAncestor = XCreateRegion();
            XUnionRegion(inAncestor, r, inAncestor);
            POINT origin{0, 0};
            MapWindowPoints(hwnd, omExposureParentHwnd, &origin, 1);
            XOffsetRegion(inAncestor, origin.x, origin.y);
            addRegion(omExposureParentHwnd, *a, inAncestor);
            XDestroyRegion(inAncestor);
        }
    }
    addRegion(hwnd, *w, r, true);
    XDestroyRegion(r);
    omProcessExposeInChildGBSS(hwnd);
}

OLMO_API void omSendExposeToChildSB(HWND hwnd, XEvent *event)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !event || !omDisplay)
        return;
    for (Widget bar : {w->hScrollWidget, w->vScrollWidget}) {
        if (!realized(bar))
            continue;
        Dimension width = 0, height = 0;
        XtVaGetValues(bar, XtNwidth, &width, XtNheight, &height, nullptr);
        event->xexpose.window = XtWindow(bar);
        event->xexpose.x = event->xexpose.y = 0;
        event->xexpose.width = width;
        event->xexpose.height = height;
        XClearWindow(omDisplay, XtWindow(bar));
        XtDispatchEvent(event);
    }
}

OLMO_API void omSendExposeToEntireWidget(Widget widget)
{
    if (!realized(widget) || !omDisplay)
        return;
    XEvent ev{};
    ev.xexpose.type = Expose;
    ev.xexpose.serial = XNextRequest(omDisplay) - 1;
    ev.xexpose.send_event = True;
    ev.xexpose.display = omDisplay;
    ev.xexpose.window = XtWindow(widget);
    Dimension width = 0, height = 0;
    XtVaGetValues(widget, XtNwidth, &width, XtNheight, &height, nullptr);
    ev.xexpose.width = width;
    ev.xexpose.height = height;
    XtDispatchEvent(&ev);
}

OLMO_API void omDispatchExposeToHWnd(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !realized(w->frameWidget) || !omDisplay)
        return;
    RECT c{};
    omWindowClientRect(hwnd, &c);
    XEvent ev{};
    ev.xexpose.type = Expose;
    ev.xexpose.serial = XNextRequest(omDisplay) - 1;
    ev.xexpose.send_event = True;
    ev.xexpose.display = omDisplay;
    ev.xexpose.window = XtWindow(w->frameWidget);
    ev.xexpose.width = c.right;
    ev.xexpose.height = c.bottom;
    XtDispatchEvent(&ev);
}

// BeginPaint's side: the update region in client coordinates, the erase
// flag taken and cleared, the window validated and off the paint list.
OLMO_API BOOL omPaintTakeUpdateRegion(HWND hwnd, HRGN updateRgn, BOOL *erase)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w)
        return FALSE;
    Region taken = nullptr;
    bool pending = false;
    withPaintList(ownerThread(*w), [&](OmPaintList &list) -> int {
        pending = w->erasePending;
        w->erasePending = false;
        taken = w->updateRegion;
        w->updateRegion = XCreateRegion();
        deleteItemLocked(list, hwnd);
        return 0;
    });
    if (erase)
        *erase = pending;
    if (!taken)
        return TRUE;
    if (!w->shellWidget && w->parent) {
        POINT origin{0, 0};
        MapWindowPoints(hwnd, w->parent, &origin, 1);
        XOffsetRegion(taken, -origin.x, -origin.y);
    }
    if (updateRgn)
        omRegionSetXRegion(updateRgn, taken);
    XDestroyRegion(taken);
    return TRUE;
}

}  // extern "C"
