// Re-parenting: SetParent moves a child window, with its widgets and its
// whole subtree, into another window's client area, and the floating
// tool-bar frame a mini-dock window gives its new child.
#include "core/omwindow.h"

#include "kernel/omdisplay.h"
#include "kernel/omplaceholder.h"
#include "kernel/omwidgetmap.h"
#include "widgets/XoBorder.h"
#include "widgets/reparent.h"

#include <Xm/Xm.h>
#include <X11/IntrinsicP.h>

extern "C" {
OLMO_API int bInSetParent = 0;
}

namespace {

// Unlinks hwnd from the list of oldParent (the top-level list when that is
// 0) and appends it at the end of newParent's child list.
void updateHwndLists(HWND hwnd, WindowRecord &w, HWND oldParent, HWND newParent)
{
    std::lock_guard lock(om::core::windowSiblingMutex());
    WindowRecord *oldP = omWindowRecord(oldParent);
    WindowRecord *next = omWindowRecord(w.nextSibling);
    WindowRecord *prev = omWindowRecord(w.prevSibling);
    if (!oldP) {
        if (omTopLevelWindowList == hwnd)
            omTopLevelWindowList = w.nextSibling;
    } else {
        if (oldP->firstChild == hwnd)
            oldP->firstChild = w.nextSibling;
        if (oldP->lastChild == hwnd)
            oldP->lastChild = w.prevSibling;
    }
    if (next)
        next->prevSibling = w.prevSibling;
    if (prev)
        prev->nextSibling = w.nextSibling;
    w.nextSibling = nullptr;
    w.prevSibling = nullptr;
    WindowRecord *p = omWindowRecord(newParent);
    if (!p)
        return;
    if (WindowRecord *last = omWindowRecord(p->lastChild)) {
        last->nextSibling = hwnd;
        w.prevSibling = p->lastChild;
    } else {
        p->firstChild = hwnd;
    }
    p->lastChild = hwnd;
}

}  // namespace

extern "C" OLMO_API void omDecorateFloatingControlBar(HWND newParent, HWND child)
{
    WindowRecord *p = omWindowRecord(newParent);
    WindowRecord *c = omWindowRecord(child);
    if (!p || !c || p->kind != OM_WK_MINIDOCKFRAME || !c->shellWidget ||
        !XoIsBorder(c->shellWidget))
        return;
    // The dialog shell holding the mini-dock frame's canvas loses the
    // window manager's decorations: the bar's own frame draws them.
    Widget shell = p->canvasWidget;
    while (shell && !XtIsShell(shell))
        shell = XtParent(shell);
    if (shell)
        XtVaSetValues(shell, XmNmwmDecorations, 0, XmNmwmFunctions, 0, nullptr);
    XtVaSetValues(c->shellWidget, XoNdecorations, 30, XoNborderResizeWidth, 1, XoNdisplayState,
                  XoDISPLAY_ACTIVE, nullptr);
    XoSetBorderType(c->shellWidget, 1);
    // FIXME: the bar's system menu with its one "Close" item comes with
    // the menus.
}

extern "C" HWND WINAPI SetParent(HWND hWndChild, HWND hWndNewParent)
{
    if (!omThreadRuleOk("SetParent") || !hWndNewParent)
        return nullptr;
    WindowRecord *w = omWindowRecord(hWndChild);
    if (!w || !(w->style & WS_CHILD) || !omIsWindow(hWndNewParent))
        return nullptr;
    HWND oldParent = w->parent;
    if (oldParent == hWndNewParent)
        return oldParent;
    // A window cannot go inside its own subtree.
    for (HWND h = hWndNewParent; WindowRecord *r = omWindowRecord(h); h = r->parent) {
        if (h == hWndChild)
            return nullptr;
        if (!(r->style & WS_CHILD))
            break;
    }
    WindowRecord *np = omWindowRecord(hWndNewParent);

    // The window keeps its place relative to the client area it leaves.
    RECT r{};
    GetWindowRect(hWndChild, &r);
    POINT corner{r.left, r.top};
    ScreenToClient(oldParent, &corner);
    bool defPush = w->kind == OM_WK_BUTTON && (w->style & 0xF) == BS_DEFPUSHBUTTON;
    if (!(defPush && w->x == corner.x + 6 && w->y == corner.y + 6)) {
        w->x = corner.x;
        w->y = corner.y;
    }
    w->cx = r.right - r.left;
    w->cy = r.bottom - r.top;

    bInSetParent = 1;
    if (w->shellWidget && w->frameWidget && np->canvasWidget) {
        OmAppLock lock;
        XtReparentWidget(w->shellWidget, np->canvasWidget, static_cast<Position>(w->x),
                         static_cast<Position>(w->y), 0, 0, w->frameWidget);
    }
    omDecorateFloatingControlBar(hWndNewParent, hWndChild);
    w->parent = hWndNewParent;
    updateHwndLists(hWndChild, *w, oldParent, hWndNewParent);
    bInSetParent = 0;
    return oldParent;
}

// The built-in controls move their widgets themselves.
OM_PLACEHOLDER(int, omEditReparent, (HWND, int), 1)
OM_PLACEHOLDER(int, omButtonReparent, (HWND, int), 1)
OM_PLACEHOLDER(int, omListboxReparent, (HWND, int), 1)
OM_PLACEHOLDER(int, omComboboxReparent, (HWND, int), 1)
OM_PLACEHOLDER(int, omStaticReparent, (HWND, int), 1)
OM_PLACEHOLDER(int, omMdiReparent, (HWND, int), 1)
OM_PLACEHOLDER(int, omScrollBarReparent, (HWND, int), 1)

extern "C" OLMO_API int omDefReparentProc(HWND hwnd, int flag)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w)
        return 0;
    switch (w->kind) {
    case OM_WK_EDIT: return omEditReparent(hwnd, flag);
    case OM_WK_BUTTON: return omButtonReparent(hwnd, flag);
    case OM_WK_LISTBOX: return omListboxReparent(hwnd, flag);
    case OM_WK_COMBOBOX: return omComboboxReparent(hwnd, flag);
    case OM_WK_STATIC: return omStaticReparent(hwnd, flag);
    case OM_WK_MDICLIENT: return omMdiReparent(hwnd, flag);
    case OM_WK_SCROLLBAR: return omScrollBarReparent(hwnd, flag);
    default: break;
    }
    if (!flag) {
        omCreateChildWindow(hwnd, 0);
        return 1;
    }
    OmAppLock lock;
    Widget shell = w->shellWidget;
    omClearWidgetData(w->shellWidget);
    omClearWidgetData(w->frameWidget);
    omClearWidgetData(w->canvasWidget);
    w->shellWidget = w->frameWidget = w->canvasWidget = nullptr;
    if (shell)
        XtDestroyWidget(shell);
    return 1;
}
