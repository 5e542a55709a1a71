// Dispatching: a retrieved message to its window procedure, and calling a
// window procedure the program kept (subclassing).
#include "messages/ompaint.h"

#include "core/omwindow.h"
#include "kernel/omdiag.h"
#include "kernel/omthread.h"

#include <X11/Intrinsic.h>
#include <X11/Shell.h>
#include <Xm/DialogS.h>

namespace {

// A child painted while an ancestor is hidden would draw on nothing.
bool hiddenOnTheWayUp(const WindowRecord &w)
{
    for (const WindowRecord *r = &w; r;) {
        if (!(r->style & WS_VISIBLE))
            return true;
        if (r->shellWidget && (XmIsDialogShell(r->shellWidget) ||
                               XtIsTopLevelShell(r->shellWidget)))
            return false;
        if (!(r->style & WS_CHILD))
            return false;
        r = omWindowRecord(r->parent);
    }
    return false;
}

}  // namespace

extern "C" {

LRESULT WINAPI CallWindowProcA(WNDPROC lpPrevWndFunc, HWND hWnd, UINT Msg, WPARAM wParam,
                               LPARAM lParam)
{
    if (!lpPrevWndFunc) {
        omDebugWarning(OmDiag::NullWindowProc, "CallWindowProc");
        return 0;
    }
    if (!omIsWindow(hWnd))
        return 0;
    return lpPrevWndFunc(hWnd, Msg, wParam, lParam);
}

LRESULT WINAPI CallWindowProcW(WNDPROC lpPrevWndFunc, HWND hWnd, UINT Msg, WPARAM wParam,
                               LPARAM lParam)
{
    return CallWindowProcA(lpPrevWndFunc, hWnd, Msg, wParam, lParam);
}

LRESULT WINAPI DispatchMessageA(const MSG *lpMsg)
{
    if (!lpMsg || !omIsWindow(lpMsg->hwnd))
        return 0;
    HWND hwnd = lpMsg->hwnd;
    if (lpMsg->message == WM_PAINT && lpMsg->time == 1)
        omPaintDeleteItem(hwnd);
    WindowRecord &w = *ConvertHWNDtoPtr(hwnd);
    if ((w.style & WS_CHILD) && lpMsg->message == WM_PAINT) {
        WindowRecord *parent = omWindowRecord(w.parent);
        if (!(parent && parent->kind == OM_WK_COMBOBOX) && hiddenOnTheWayUp(w)) {
            ValidateRect(hwnd, nullptr);
            return 0;
        }
    }
    return CallWindowProcA(w.wndProc, hwnd, lpMsg->message, lpMsg->wParam, lpMsg->lParam);
}

LRESULT WINAPI DispatchMessageW(const MSG *lpMsg)
{
    return DispatchMessageA(lpMsg);
}

}  // extern "C"
