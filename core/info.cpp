// The window tree: the desktop window, parent and child queries, the
// live-window test as the program sees it, and the stacking lists' unlink.
// Enumeration, search, re-parenting and the Z-order helpers come with the
// rest of the window-tree module.
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
