// Placing windows: SetWindowPos, MoveWindow and the deferred batch behind
// them (handle kind 22), the sixteen steps of one entry (omSetWindowPos)
// with the stacking in X and in the lists, and WM_MOVE and WM_SIZE from
// the widgets' geometry.
#include "winmgmt/ompos.h"

#include "core/omwindow.h"
#include "kernel/omdisplay.h"
#include "messages/xevents.h"
#include "widgets/XoBorder.h"

#include <Xm/Xm.h>
#include <X11/IntrinsicP.h>
#include <X11/Shell.h>

#include <algorithm>
#include <cstdlib>

namespace {

// The origin of a widget in root coordinates, from the widget tree alone.
void rootOrigin(Widget w, int *x, int *y)
{
    Position rx = 0, ry = 0;
    if (w)
        XtTranslateCoords(w, 0, 0, &rx, &ry);
    *x = rx;
    *y = ry;
}

}  // namespace

extern "C" {
OLMO_API int omPlacingWindows = 0;
}

extern "C" OLMO_API void omSendMoveMessage(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w)
        return;
    int x = w->x, y = w->y;
    if (!(w->style & WS_CHILD)) {
        if (w->style & WS_THICKFRAME) {
            x += omResources.frameWidth;
            y += omResources.frameWidth;
        }
        if ((w->style & WS_CAPTION) == WS_CAPTION)
            y += omResources.captionHeight;
    } else if (w->canvasWidget) {
        WindowRecord *p = omWindowRecord(w->parent);
        int cx, cy, px = 0, py = 0;
        rootOrigin(w->canvasWidget, &cx, &cy);
        if (p && p->canvasWidget)
            rootOrigin(p->canvasWidget, &px, &py);
        x = cx - px;
        y = cy - py;
    }
    om::core::send(hwnd, WM_MOVE, 0, MAKELPARAM(x, y));
}

extern "C" OLMO_API BOOL omSizeMessageArgs(HWND hwnd, BOOL dialogRule, WPARAM *type, LPARAM *size)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w)
        return FALSE;
    int cx = w->cx, cy = w->cy;
    if (w->canvasWidget) {
        if (w->kind == OM_WK_DIALOG && (w->style & WS_CHILD) && !w->configured) {
            int b = omBorderWidth(w), c = omCaptionHeight(w);
            cx -= 2 * b;
            cy -= 2 * b + 2 * c;
        } else {
            cx = w->canvasWidget->core.width;
            cy = w->canvasWidget->core.height;
        }
    }
    *type = SIZE_RESTORED;
    if ((w->style & (WS_CHILD | WS_POPUP)) && w->shellWidget && XoIsBorder(w->shellWidget)) {
        int state = XoSTATE_NORMAL, iw = 0, ih = 0;
        XtVaGetValues(w->shellWidget, XoNstate, &state, XoNiconWidth, &iw, XoNiconHeight, &ih,
                      nullptr);
        if (state == XoSTATE_MAXIMIZED) {
            *type = SIZE_MAXIMIZED;
        } else if (state == XoSTATE_ICONIC) {
            *type = SIZE_MINIMIZED;
            cx = iw;
            cy = ih;
        }
    } else if (dialogRule && w->kind == OM_WK_DIALOG && !w->exposed) {
        return FALSE;
    }
    *size = MAKELPARAM(cx, cy);
    return TRUE;
}

extern "C" OLMO_API void omSendSizeMessage(HWND hwnd)
{
    WPARAM type;
    LPARAM size;
    if (omSizeMessageArgs(hwnd, FALSE, &type, &size))
        om::core::send(hwnd, WM_SIZE, type, size);
}

// ---------------------------------------------------------------------------
// The work of one entry.

namespace {

using om::winmgmt::sortOf;
using om::winmgmt::WindowSort;

// Two windows share a stacking list: children of one parent, or both
// top-level.
bool sameList(const WindowRecord &a, const WindowRecord &b)
{
    bool childA = a.style & WS_CHILD, childB = b.style & WS_CHILD;
    return childA == childB && (!childA || a.parent == b.parent);
}

bool isTopLevelSort(const WindowRecord &w)
{
    return sortOf(w) == WindowSort::Overlapped || sortOf(w) == WindowSort::Popup;
}

void raiseWindow(WindowRecord &w, HWND after)
{
    if (w.shellWidget && XtIsRealized(w.shellWidget))
        XRaiseWindow(omDisplay, XtWindow(w.shellWidget));
    omZOrderRaise(w.self);
    if (sortOf(w) == WindowSort::Overlapped && (after == HWND_TOP || after == HWND_TOPMOST) &&
        bIsMWMRunning)
        omTopMostOverlappedWindow = w.self;
}

void lowerWindow(WindowRecord &w)
{
    if (w.shellWidget && XtIsRealized(w.shellWidget))
        XLowerWindow(omDisplay, XtWindow(w.shellWidget));
    omZOrderLower(w.self);
}

// Step 6: the ends of the list at once; a sibling is left for step 11,
// once the geometry is done.  Returns that sibling (or null).
HWND stackFirst(WindowRecord &w, HWND after)
{
    if (after == HWND_BOTTOM) {
        lowerWindow(w);
        return nullptr;
    }
    bool named = after != HWND_TOP && after != HWND_TOPMOST && after != HWND_NOTOPMOST;
    if (named && omIsWindow(after) && w.shellWidget && XtIsRealized(w.shellWidget))
        return after;
    raiseWindow(w, after);
    return nullptr;
}

// Step 11: directly below the sibling, in X as in the list (the list runs
// from the top, so "after" the sibling is beneath it).
bool stackBelow(WindowRecord &w, WindowRecord &sibling)
{
    if (&w == &sibling || !sameList(w, sibling))
        return false;
    Widget mine = w.shellWidget, theirs = sibling.shellWidget;
    if (mine && theirs && XtIsRealized(mine) && XtIsRealized(theirs)) {
        XWindowChanges changes{};
        changes.sibling = XtWindow(theirs);
        changes.stack_mode = Below;
        unsigned mask = CWSibling | CWStackMode;
        // A top-level window's sibling may sit in a window manager's
        // frame: only the window manager can restack it then.
        if (isTopLevelSort(w))
            XReconfigureWMWindow(omDisplay, XtWindow(mine), DefaultScreen(omDisplay), mask,
                                 &changes);
        else
            XConfigureWindow(omDisplay, XtWindow(mine), mask, &changes);
    }
    omZOrderInsertAfter(w.self, sibling.self);
    return true;
}

// Step 10: the geometry by sort, or the restore rectangle of a maximised
// MDI child (its frame stays over the client until restored).
void placeWindow(WindowRecord &w, int x, int y, int cx, int cy, UINT f, BOOL redraw)
{
    HWND hwnd = w.self;
    switch (sortOf(w)) {
    case WindowSort::Child:
    case WindowSort::Windowless:
        if (w.kind == OM_WK_MDICHILD && w.shellWidget &&
            om::winmgmt::frameState(w) == XoSTATE_MAXIMIZED &&
            (f & (SWP_NOSIZE | SWP_NOMOVE)) != (SWP_NOSIZE | SWP_NOMOVE)) {
            XtVaSetValues(w.shellWidget, XoNrestoreX, x, XoNrestoreY, y, XoNrestoreWidth, cx,
                          XoNrestoreHeight, cy, nullptr);
            return;
        }
        omRepositionChild(hwnd, x, y, cx, cy, f, redraw, w.style);
        return;
    case WindowSort::Popup:
        omRepositionPopup(hwnd, x, y, cx, cy, f, redraw, w.style);
        return;
    case WindowSort::Overlapped:
        omRepositionOverlapped(hwnd, x, y, cx, cy, f, redraw, w.style);
        return;
    }
}

// Step 13: the show or hide the flags ask for.
void showAsAsked(HWND hwnd, UINT f)
{
    if (!(f & SWP_HIDEWINDOW)) {
        bool visible = IsWindowVisible(hwnd);
        if ((f & SWP_NOACTIVATE) && (visible || (f & SWP_SHOWWINDOW)))
            ShowWindow(hwnd, SW_SHOWNOACTIVATE);
    }
    if ((f & SWP_SHOWWINDOW) && omIsWindow(hwnd))
        ShowWindow(hwnd, SW_SHOW);
    if ((f & SWP_HIDEWINDOW) && omIsWindow(hwnd))
        ShowWindow(hwnd, SW_HIDE);
}

int setWindowPos(WindowRecord &w, HWND after, int x, int y, int cx, int cy, UINT *flags)
{
    HWND hwnd = w.self;
    UINT f = *flags;
    BOOL redraw = (f & SWP_NOREDRAW) ? FALSE : TRUE;
    bool visible = w.style & WS_VISIBLE;
    int changed = (!visible && (f & SWP_SHOWWINDOW)) || (visible && (f & SWP_HIDEWINDOW));

    if (sortOf(w) == WindowSort::Windowless) {
        omRepositionChild(hwnd, x, y, cx, cy, f, redraw, w.style);
        if (f & SWP_SHOWWINDOW)
            ShowWindow(hwnd, SW_SHOW);
        else if (f & SWP_HIDEWINDOW)
            ShowWindow(hwnd, SW_HIDE);
        // FIXME: Motif traversal follows the focus window (omFocus) here
        // once the focus module keeps it.
        return 1;
    }

    int ox = w.x, oy = w.y, ocx = w.cx, ocy = w.cy;
    // A window that had no area gets drawn when it gets one.
    if (redraw && !(f & SWP_NOSIZE) && (!ocx || !ocy) && cx && cy && visible &&
        !(f & SWP_HIDEWINDOW))
        f |= SWP_SHOWWINDOW;

    HWND sibling = nullptr;
    if (!(f & SWP_NOZORDER)) {
        sibling = stackFirst(w, after);
        if (!sibling)
            changed = 1;
    }

    // The record is the truth for what is not to change.
    if (f & SWP_NOMOVE) {
        x = w.x;
        y = w.y;
    }
    if (f & SWP_NOSIZE) {
        cx = w.cx;
        cy = w.cy;
        Widget frame = w.shellWidget;
        if (w.kind == OM_WK_BUTTON && (w.style & 0xF) == BS_DEFPUSHBUTTON && frame &&
            frame->core.width == w.cx && frame->core.height == w.cy) {
            XtVaSetValues(frame, XmNwidth, w.cx + 12, XmNheight, w.cy + 12, nullptr);
            XtResizeWidget(frame, w.cx + 12, w.cy + 12, frame->core.border_width);
        }
    }
    // FIXME: a visible ListBox or ComboBox (style 2 or 3) given a size
    // marks its layout for the list widgets once they exist.
    if (sortOf(w) == WindowSort::Child && om::winmgmt::frameState(w) != XoSTATE_ICONIC &&
        ((f & SWP_FRAMECHANGED) || !(f & SWP_NOSIZE)))
        XoResizeClientArea(w.shellWidget);

    placeWindow(w, x, y, cx, cy, f, redraw);
    if (!omIsWindow(hwnd))
        return 0;
    if (WindowRecord *s = omWindowRecord(sibling); s && stackBelow(w, *s))
        changed = 1;

    f &= ~(SWP_NOCLIENTMOVE | SWP_NOCLIENTSIZE);
    if (w.x == ox && w.y == oy)
        f |= SWP_NOCLIENTMOVE;
    if (w.cx == ocx && w.cy == ocy)
        f |= SWP_NOCLIENTSIZE;
    if ((f & (SWP_NOCLIENTMOVE | SWP_NOCLIENTSIZE)) != (SWP_NOCLIENTMOVE | SWP_NOCLIENTSIZE))
        changed = 1;
    *flags = f;

    showAsAsked(hwnd, f);
    if (!omIsWindow(hwnd))
        return 0;
    if (w.kind == OM_WK_MDICHILD && !(f & (SWP_NOACTIVATE | SWP_NOZORDER)))
        om::core::send(hwnd, WM_CHILDACTIVATE, 0, 0);
    // FIXME: Motif traversal follows the focus window (omFocus) here once
    // the focus module keeps it.
    return changed;
}

}  // namespace

extern "C" OLMO_API int omSetWindowPos(HWND hwnd, HWND after, int x, int y, int cx, int cy,
                                       UINT *flags)
{
    if (!(*flags & SWP_NOSIZE)) {
        cx = std::max(cx, 0);
        cy = std::max(cy, 0);
    }
    if (!omIsWindow(hwnd)) {
        omDebugWarning(OmDiag::BadWindowHandle, "SetWindowPos", hwnd);
        return 0;
    }
    if (!omDisplay)
        return 0;
    OmAppLock lock;
    return setWindowPos(*ConvertHWNDtoPtr(hwnd), after, x, y, cx, cy, flags);
}

// ---------------------------------------------------------------------------
// The deferred batch.

namespace {

struct DeferredBatch {
    int capacity;
    int count;
    WINDOWPOS *entries;
};

DeferredBatch *batchOf(HDWP hdwp)
{
    return static_cast<DeferredBatch *>(omHandleRecord(omHandleValue(hdwp), OM_KIND_DEFERPOS));
}

void freeBatch(HDWP hdwp, DeferredBatch *batch)
{
    omFreeHandle(omHandleValue(hdwp));
    std::free(batch->entries);
    std::free(batch);
}

}  // namespace

extern "C" HDWP WINAPI BeginDeferWindowPos(int nNumWindows)
{
    if (!omThreadRuleOk("BeginDeferWindowPos"))
        return nullptr;
    size_t n = static_cast<size_t>(std::max(nNumWindows, 0));
    auto *batch = static_cast<DeferredBatch *>(std::malloc(sizeof(DeferredBatch)));
    auto *entries = static_cast<WINDOWPOS *>(std::calloc(std::max<size_t>(n, 1), sizeof(WINDOWPOS)));
    if (!batch || !entries) {
        std::free(batch);
        std::free(entries);
        omError(OmDiag::OutOfMemory, "BeginDeferWindowPos");
        return nullptr;
    }
    *batch = DeferredBatch{static_cast<int>(n), 0, entries};
    uint32_t index = omAllocHandle(OM_KIND_DEFERPOS, batch);
    if (!index) {
        omError(OmDiag::HandleTableFull, "BeginDeferWindowPos");
        index = omAllocHandle(OM_KIND_DEFERPOS, batch);
        if (!index) {
            std::free(entries);
            std::free(batch);
            return nullptr;
        }
    }
    return reinterpret_cast<HDWP>(static_cast<uintptr_t>(omHandleFromIndex(index)));
}

extern "C" HDWP WINAPI DeferWindowPos(HDWP hWinPosInfo, HWND hWnd, HWND hWndInsertAfter, int x,
                                      int y, int cx, int cy, UINT uFlags)
{
    if (!omThreadRuleOk("DeferWindowPos"))
        return nullptr;
    DeferredBatch *batch = batchOf(hWinPosInfo);
    if (!batch)
        return nullptr;
    if (batch->count >= batch->capacity) {
        // One entry at a time: a batch rarely outgrows its announced size
        // by more than a window or two.
        auto *grown = static_cast<WINDOWPOS *>(
            std::realloc(batch->entries, (static_cast<size_t>(batch->count) + 1) * sizeof(WINDOWPOS)));
        if (!grown) {
            omError(OmDiag::OutOfMemory, "DeferWindowPos");
            return nullptr;
        }
        batch->entries = grown;
        batch->capacity = batch->count + 1;
    }
    batch->entries[batch->count++] = WINDOWPOS{hWnd, hWndInsertAfter, x, y, cx, cy, uFlags};
    return hWinPosInfo;
}

extern "C" BOOL WINAPI EndDeferWindowPos(HDWP hWinPosInfo)
{
    if (!omThreadRuleOk("EndDeferWindowPos"))
        return FALSE;
    DeferredBatch *batch = batchOf(hWinPosInfo);
    if (!batch) {
        omDebugWarning(OmDiag::BadDeferHandle, "EndDeferWindowPos", hWinPosInfo);
        return FALSE;
    }
    // The handle is the caller's until the end: a window procedure that
    // adds to the batch while it runs grows the same array.
    for (int i = 0; i < batch->count; ++i) {
        WINDOWPOS *e = &batch->entries[i];
        HWND hwnd = e->hwnd;
        om::core::send(hwnd, WM_WINDOWPOSCHANGING, 0, reinterpret_cast<LPARAM>(e));
        e = &batch->entries[i];
        WINDOWPOS pos = *e;
        ++omPlacingWindows;
        int changed = omSetWindowPos(pos.hwnd, pos.hwndInsertAfter, pos.x, pos.y, pos.cx, pos.cy,
                                     &pos.flags);
        --omPlacingWindows;
        if (!changed)
            continue;
        // The program reads where the window went, whatever was asked.
        if (WindowRecord *w = omWindowRecord(pos.hwnd)) {
            pos.x = w->x;
            pos.y = w->y;
            pos.cx = w->cx;
            pos.cy = w->cy;
        }
        batch->entries[i] = pos;
        om::core::send(pos.hwnd, WM_WINDOWPOSCHANGED, 0, reinterpret_cast<LPARAM>(&batch->entries[i]));
    }
    freeBatch(hWinPosInfo, batch);
    return TRUE;
}

extern "C" BOOL WINAPI SetWindowPos(HWND hWnd, HWND hWndInsertAfter, int X, int Y, int cx, int cy,
                                    UINT uFlags)
{
    if (!omThreadRuleOk("SetWindowPos"))
        return FALSE;
    WindowRecord *w = omWindowRecord(hWnd);
    if (!w) {
        omDebugWarning(OmDiag::BadWindowHandle, "SetWindowPos", hWnd);
        return FALSE;
    }
    if (w->exStyle & kOmExForeign)
        return TRUE;
    HDWP batch = BeginDeferWindowPos(1);
    if (!batch)
        return FALSE;
    if (!DeferWindowPos(batch, hWnd, hWndInsertAfter, X, Y, cx, cy, uFlags)) {
        EndDeferWindowPos(batch);
        return FALSE;
    }
    return EndDeferWindowPos(batch);
}

extern "C" BOOL WINAPI MoveWindow(HWND hWnd, int X, int Y, int nWidth, int nHeight, BOOL bRepaint)
{
    if (!omThreadRuleOk("MoveWindow"))
        return FALSE;
    WindowRecord *w = omWindowRecord(hWnd);
    if (!w) {
        omDebugWarning(OmDiag::BadWindowHandle, "MoveWindow", hWnd);
        return FALSE;
    }
    nWidth = std::max(nWidth, 0);
    nHeight = std::max(nHeight, 0);
    // A sizable child or pop-up never collapses to nothing: it takes the
    // configured default window size instead.
    if ((w->style & (WS_CHILD | WS_POPUP)) && (w->style & WS_THICKFRAME) && (!nWidth || !nHeight)) {
        nWidth = omResources.windowSizeWidth / 2;
        nHeight = omResources.windowSizeHeight / 2;
    }
    UINT flags = SWP_NOZORDER | SWP_NOACTIVATE | (bRepaint ? 0 : SWP_NOREDRAW);
    return SetWindowPos(hWnd, nullptr, X, Y, nWidth, nHeight, flags);
}
