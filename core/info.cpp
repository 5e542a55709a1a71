// The window tree: the desktop window, parent, owner and sibling queries,
// the stacking lists that stand for the Z order and their moves, the
// ancestors of a window and the live-window test as the program sees it.
// Enumeration and search are in info_enum.cpp.
#include "core/omwindow.h"

#include "kernel/omdisplay.h"
#include "kernel/omwidgetmap.h"

namespace {

HWND HWndOmDesktopWindow = nullptr;
WindowRecord *desktopRecord()
{
    // Never freed: the desktop lives as long as the process.
    static WindowRecord *record = new WindowRecord;
    return record;
}

}  // namespace

extern "C" OLMO_API HWND CreateDesktopWindow(void)
{
    static std::once_flag once;
    std::call_once(once, [] {
        WindowRecord *w = desktopRecord();
        if (omDisplay) {
            Widget alt = omCreateShellAlternative();
            int screen = DefaultScreen(omDisplay);
            w->cx = DisplayWidth(omDisplay, screen);
            w->cy = DisplayHeight(omDisplay, screen);
            w->shellWidget = w->frameWidget = w->canvasWidget = alt;
        }
        w->style = WS_VISIBLE;
        w->redraw = true;
        w->text = const_cast<char *>("");
        w->textIsOrdinal = true;  // static text: never freed
        uint32_t index = omAllocHandle(OM_KIND_WINDOW, w);
        w->self = index ? omHwndFromIndex(index) : nullptr;
        HWndOmDesktopWindow = w->self;
    });
    return HWndOmDesktopWindow;
}

extern "C" HWND WINAPI GetDesktopWindow(void)
{
    return CreateDesktopWindow();
}

extern "C" BOOL WINAPI IsWindow(HWND hWnd)
{
    if (omIsWindow(hWnd))
        return TRUE;
    return omHandleValue(hWnd) <= 0xFFFF && omIsHandleOfKind(omHandleValue(hWnd), OM_KIND_WINDOWLIKE);
}

extern "C" BOOL WINAPI IsChild(HWND hWndParent, HWND hWnd)
{
    if (!omIsWindow(hWndParent) || !omIsWindow(hWnd))
        return FALSE;
    for (WindowRecord *w = omWindowRecord(hWnd); w && (w->style & WS_CHILD);
         w = omWindowRecord(w->parent))
        if (w->parent == hWndParent)
            return TRUE;
    return FALSE;
}

extern "C" HWND WINAPI GetParent(HWND hWnd)
{
    if (omIsHandleOfKind(omHandleValue(hWnd), OM_KIND_WINDOWLIKE))
        return nullptr;
    if (!omIsWindow(hWnd)) {
        omDebugWarning(OmDiag::BadWindowHandle, "GetParent", hWnd);
        return nullptr;
    }
    WindowRecord *w = ConvertHWNDtoPtr(hWnd);
    return (w->style & WS_CHILD) ? w->parent : w->owner;
}

extern "C" OLMO_API void omRemoveWindowFromSiblingList(HWND hwnd, WindowRecord *w)
{
    std::lock_guard lock(om::core::windowSiblingMutex());
    WindowRecord *next = omWindowRecord(w->nextSibling);
    WindowRecord *prev = omWindowRecord(w->prevSibling);
    WindowRecord *parent = (w->style & WS_CHILD) ? omWindowRecord(w->parent) : nullptr;
    if (!parent) {
        if (omTopLevelWindowList == hwnd)
            omTopLevelWindowList = w->nextSibling;
    } else {
        if (parent->lastChild == hwnd)
            parent->lastChild = w->prevSibling;
        if (parent->firstChild == hwnd)
            parent->firstChild = w->nextSibling;
    }
    if (next)
        next->prevSibling = w->prevSibling;
    if (prev)
        prev->nextSibling = w->nextSibling;
    w->nextSibling = w->prevSibling = nullptr;
}

// ---- stacking lists -------------------------------------------------------

namespace {

// A window that sits in its parent's child list, as opposed to the
// top-level list (a WS_CHILD window whose parent is gone counts as top).
WindowRecord *listParent(const WindowRecord &w)
{
    return (w.style & WS_CHILD) ? omWindowRecord(w.parent) : nullptr;
}

void unlinkLocked(HWND hwnd, WindowRecord &w, WindowRecord *parent)
{
    WindowRecord *next = omWindowRecord(w.nextSibling);
    WindowRecord *prev = omWindowRecord(w.prevSibling);
    if (parent) {
        if (parent->firstChild == hwnd)
            parent->firstChild = w.nextSibling;
        if (parent->lastChild == hwnd)
            parent->lastChild = w.prevSibling;
    } else if (omTopLevelWindowList == hwnd) {
        omTopLevelWindowList = w.nextSibling;
    }
    if (next)
        next->prevSibling = w.prevSibling;
    if (prev)
        prev->nextSibling = w.nextSibling;
    w.nextSibling = w.prevSibling = nullptr;
}

// The list's head pointers follow the links: after a move the first and
// last windows are recomputed rather than patched case by case.
void refreshHeads(HWND member, WindowRecord *parent)
{
    HWND first = member, last = member;
    for (WindowRecord *r = omWindowRecord(first); r && r->prevSibling; r = omWindowRecord(first))
        first = r->prevSibling;
    for (WindowRecord *r = omWindowRecord(last); r && r->nextSibling; r = omWindowRecord(last))
        last = r->nextSibling;
    if (parent) {
        parent->firstChild = first;
        parent->lastChild = last;
    } else {
        omTopLevelWindowList = first;
    }
}

HWND firstOfList(HWND hwnd, const WindowRecord &w)
{
    if (!w.prevSibling)
        return hwnd;
    if (WindowRecord *p = listParent(w))
        return p->firstChild;
    HWND h = hwnd;
    for (WindowRecord *r = omWindowRecord(h); r && r->prevSibling; r = omWindowRecord(h))
        h = r->prevSibling;
    return h;
}

HWND lastOfList(HWND hwnd, const WindowRecord &w)
{
    if (!w.nextSibling)
        return hwnd;
    if (WindowRecord *p = listParent(w))
        return p->lastChild;
    HWND h = hwnd;
    for (WindowRecord *r = omWindowRecord(h); r && r->nextSibling; r = omWindowRecord(h))
        h = r->nextSibling;
    return h;
}

}  // namespace

extern "C" OLMO_API HWND omFirstInStackingList(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    return w ? firstOfList(hwnd, *w) : nullptr;
}

extern "C" OLMO_API HWND omLastInStackingList(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    return w ? lastOfList(hwnd, *w) : nullptr;
}

// The lists only: callers that also move X windows (raising a frame,
// SetWindowPos) restack those themselves, since only they know whether
// the frame is realized.  The sibling lock keeps creation on another
// thread from linking into a list caught half-moved.
namespace {

// Moves hwnd to one end of its list: the top, or the bottom.
void moveToEnd(HWND hwnd, bool top)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w)
        return;
    std::lock_guard lock(om::core::windowSiblingMutex());
    if (!w->nextSibling && !w->prevSibling)
        return;
    WindowRecord *parent = listParent(*w);
    HWND end = top ? firstOfList(hwnd, *w) : lastOfList(hwnd, *w);
    if (end == hwnd)
        return;
    unlinkLocked(hwnd, *w, parent);
    WindowRecord *e = omWindowRecord(end);
    if (top) {
        w->nextSibling = end;
        if (e)
            e->prevSibling = hwnd;
    } else {
        w->prevSibling = end;
        if (e)
            e->nextSibling = hwnd;
    }
    refreshHeads(hwnd, parent);
}

}  // namespace

extern "C" OLMO_API void omZOrderRaise(HWND hwnd)
{
    moveToEnd(hwnd, true);
}

extern "C" OLMO_API void omZOrderLower(HWND hwnd)
{
    moveToEnd(hwnd, false);
}

extern "C" OLMO_API void omZOrderInsertAfter(HWND hwnd, HWND after)
{
    WindowRecord *w = omWindowRecord(hwnd);
    WindowRecord *a = omWindowRecord(after);
    if (!w || !a || hwnd == after)
        return;
    std::lock_guard lock(om::core::windowSiblingMutex());
    WindowRecord *parent = listParent(*w);
    // Splicing into another list would leave both lists' ends wrong.
    if (listParent(*a) != parent)
        return;
    unlinkLocked(hwnd, *w, parent);
    WindowRecord *next = omWindowRecord(a->nextSibling);
    w->nextSibling = a->nextSibling;
    w->prevSibling = after;
    if (next)
        next->prevSibling = hwnd;
    a->nextSibling = hwnd;
    refreshHeads(hwnd, parent);
}

// Kept for callers that trace a list while debugging; prints nothing.
extern "C" OLMO_API void omPrintStackingList(HWND)
{
}

// ---- walks of the tree ----------------------------------------------------

extern "C" HWND WINAPI GetWindow(HWND hWnd, UINT uCmd)
{
    HWND desktop = GetDesktopWindow();
    WindowRecord *w = omWindowRecord(hWnd);
    if (!w)
        return nullptr;
    switch (uCmd) {
    case GW_HWNDFIRST:
        return firstOfList(hWnd, *w);
    case GW_HWNDLAST:
        return lastOfList(hWnd, *w);
    case GW_HWNDNEXT:
        return w->nextSibling;
    case GW_HWNDPREV:
        return w->prevSibling;
    case GW_OWNER:
        return w->owner;
    case GW_CHILD:
        return hWnd == desktop ? omTopLevelWindowList : w->firstChild;
    default:
        omDebugWarning(OmDiag::BadGetWindowCommand, "GetWindow", uCmd);
        return nullptr;
    }
}

// Null and the desktop both name the top of the top-level list, as
// GetWindow(desktop, GW_CHILD) does.
extern "C" HWND WINAPI GetTopWindow(HWND hWnd)
{
    if (!hWnd || hWnd == GetDesktopWindow())
        return omTopLevelWindowList;
    WindowRecord *w = omWindowRecord(hWnd);
    return w ? w->firstChild : nullptr;
}

namespace {

// Climbs child links up to the window that sits in the top-level list
// (or, for a child of the desktop, up to that child).
HWND rootOf(HWND hwnd, HWND desktop)
{
    HWND h = hwnd;
    for (WindowRecord *r = omWindowRecord(h); r && (r->style & WS_CHILD); r = omWindowRecord(h)) {
        if (!omIsWindow(r->parent) || r->parent == desktop)
            break;
        h = r->parent;
    }
    return h;
}

}  // namespace

extern "C" HWND WINAPI GetAncestor(HWND hwnd, UINT gaFlags)
{
    HWND desktop = GetDesktopWindow();
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w) {
        omDebugWarning(OmDiag::BadWindowHandle, "GetAncestor", hwnd);
        return nullptr;
    }
    if (hwnd == desktop)
        return nullptr;
    switch (gaFlags) {
    case GA_PARENT:
        return ((w->style & WS_CHILD) && omIsWindow(w->parent)) ? w->parent : desktop;
    case GA_ROOT:
        return rootOf(hwnd, desktop);
    case GA_ROOTOWNER: {
        HWND root = rootOf(hwnd, desktop);
        // Bounded, so that an owner cycle left by a faulty program cannot
        // hang the caller.
        for (int guard = 0; guard < 0x10000; ++guard) {
            WindowRecord *r = omWindowRecord(root);
            if (!r || !omIsWindow(r->owner) || r->owner == desktop || r->owner == root)
                break;
            root = rootOf(r->owner, desktop);
        }
        return root;
    }
    default:
        return nullptr;
    }
}

extern "C" BOOL WINAPI AnyPopup(void)
{
    uint64_t h = 0;
    for (omNextWindowHandle(&h); h; omNextWindowHandle(&h)) {
        WindowRecord *w = static_cast<WindowRecord *>(omHandleRecord(h, OM_KIND_WINDOW));
        if (w && (w->style & WS_POPUP))
            return TRUE;
    }
    return FALSE;
}

extern "C" HWND WINAPI GetLastActivePopup(HWND hWnd)
{
    WindowRecord *w = omWindowRecord(hWnd);
    if (!w) {
        omDebugWarning(OmDiag::BadWindowHandle, "GetLastActivePopup", hWnd);
        return nullptr;
    }
    if ((w->style & WS_CHILD) || hWnd == GetActiveWindow())
        return hWnd;
    return omTopLevelWindowList;
}

// ---- window stations ------------------------------------------------------
// One display, one desktop: there is no station to open or close.

extern "C" HWINSTA WINAPI OpenWindowStationA(LPCSTR, BOOL, DWORD)
{
    omDebugWarning(OmDiag::Unsupported, "OpenWindowStationA");
    return nullptr;
}

extern "C" HWINSTA WINAPI OpenWindowStationW(LPCWSTR, BOOL, DWORD)
{
    omDebugWarning(OmDiag::Unsupported, "OpenWindowStationW");
    return nullptr;
}

extern "C" BOOL WINAPI CloseWindowStation(HWINSTA)
{
    omDebugWarning(OmDiag::Unsupported, "CloseWindowStation");
    return FALSE;
}

extern "C" HWINSTA WINAPI GetProcessWindowStation(void)
{
    omDebugWarning(OmDiag::Unsupported, "GetProcessWindowStation");
    return nullptr;
}
