// The default window procedure: what a window gets for every message its
// own procedure passes on.  Grows into the staged table; for now the
// messages a top-level window needs.
#include "core/omwindow.h"

#include <Xm/Xm.h>
#include <X11/IntrinsicP.h>
#include <X11/Shell.h>

#include <algorithm>
#include <cstring>
#include <string>

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
