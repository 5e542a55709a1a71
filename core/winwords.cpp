// Window data: GetWindowLong and SetWindowLong with their pointer-sized and
// 16-bit forms, and the window text.  Pointer-sized slots exist only under
// their Ptr names: the 32-bit calls refuse them rather than cut a pointer.
#include "core/omwindow.h"

#include "kernel/omdisplay.h"
#include "kernel/omstring.h"

#include <Xm/Xm.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

extern "C" {
OLMO_API HWND hWndSWL = nullptr;
}

namespace {

bool isPointerIndex(int index)
{
    return index == GWLP_WNDPROC || index == GWLP_HINSTANCE || index == GWLP_HWNDPARENT;
}

// The record of a live window for the window-data entries; null (after
// the thread rule's warning) otherwise.  Other handles fail silently.
WindowRecord *dataRecord(HWND hwnd, const char *function)
{
    // The creating thread passed the thread rule when it made the window
    // and is never attached to it: window data is its most frequent use,
    // so it goes straight to the record.
    WindowRecord *w = omWindowRecord(hwnd);
    if (w && pthread_equal(w->creator, pthread_self()))
        return w;
    if (!omThreadRuleOk(function))
        return nullptr;
    return omIsWindow(hwnd) ? ConvertHWNDtoPtr(hwnd) : nullptr;
}

// Re-applies a changed style to the widgets of a top-level window.
LONG_PTR setStyle(HWND hwnd, WindowRecord &w, int index, DWORD value)
{
    DWORD &field = index == GWL_STYLE ? w.style : w.exStyle;
    if (index == GWL_EXSTYLE) {
        if (value & WS_EX_CLIENTEDGE)
            value &= ~(WS_EX_STATICEDGE | WS_EX_WINDOWEDGE);
        else if (value & WS_EX_STATICEDGE)
            value &= ~(WS_EX_CLIENTEDGE | WS_EX_WINDOWEDGE);
    }
    STYLESTRUCT ss{field, value};
    bool control = w.kind >= OM_WK_EDIT && w.kind <= OM_WK_STATIC;
    if (index == GWL_EXSTYLE || control)
        om::core::send(hwnd, WM_STYLECHANGING, static_cast<WPARAM>(index),
                       reinterpret_cast<LPARAM>(&ss));
    if (!omIsWindow(hwnd))
        return 0;
    DWORD old = field;
    field = value;
    if (index == GWL_STYLE) {
        hWndSWL = hwnd;
        if ((old ^ value) & 0xFFFF0000u)
            omChangeWindowStyle(hwnd, old, value);
    }
    ss = {old, value};
    om::core::send(hwnd, WM_STYLECHANGED, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&ss));
    return static_cast<LONG>(old);
}

LONG_PTR getWindowValue(WindowRecord &w, int index, bool wide, const char *function)
{
    switch (index) {
    case GWLP_USERDATA: return wide ? w.userData : static_cast<LONG>(w.userData);
    case GWL_EXSTYLE: return static_cast<LONG>(w.exStyle);
    case GWL_STYLE: return static_cast<LONG>(w.style);
    case GWLP_ID: return wide ? static_cast<LONG_PTR>(w.idOrMenu) : static_cast<LONG>(w.idOrMenu);
    case GWLP_HWNDPARENT: return reinterpret_cast<LONG_PTR>(w.parent);
    case GWLP_HINSTANCE: return reinterpret_cast<LONG_PTR>(w.instance);
    case GWLP_WNDPROC: return reinterpret_cast<LONG_PTR>(w.wndProc);
    default: break;
    }
    int size = wide ? 8 : 4;
    if (index >= 0 && index <= w.extraBytes - size)
        return wide ? omReadExtra<LONG_PTR>(w.extra(), index) : omReadExtra<LONG>(w.extra(), index);
    omError(OmDiag::IndexOutOfRange, function, index);
    return 0;
}

LONG_PTR setWindowValue(HWND hwnd, WindowRecord &w, int index, LONG_PTR value, bool wide,
                        const char *function)
{
    switch (index) {
    case GWLP_USERDATA: {
        LONG_PTR old = w.userData;
        // The 32-bit call keeps numbers: it replaces the low half only.
        w.userData = wide ? value
                          : static_cast<LONG_PTR>((static_cast<uint64_t>(old) & ~0xFFFFFFFFull) |
                                                  static_cast<uint32_t>(value));
        return wide ? old : static_cast<LONG>(old);
    }
    case GWL_EXSTYLE:
    case GWL_STYLE:
        return setStyle(hwnd, w, index, static_cast<DWORD>(value));
    case GWLP_ID: {
        if (!(w.style & WS_CHILD))
            SetMenu(hwnd, reinterpret_cast<HMENU>(value));
        if (!omIsWindow(hwnd))
            return 0;
        LONG_PTR old = static_cast<LONG_PTR>(w.idOrMenu);
        w.idOrMenu = wide ? static_cast<UINT_PTR>(value) : static_cast<UINT_PTR>(static_cast<ULONG>(value));
        return wide ? old : static_cast<LONG>(old);
    }
    case GWLP_HINSTANCE: {
        HINSTANCE old = w.instance;
        w.instance = reinterpret_cast<HINSTANCE>(value);
        return reinterpret_cast<LONG_PTR>(old);
    }
    case GWLP_WNDPROC: {
        WNDPROC old = w.wndProc;
        w.wndProc = reinterpret_cast<WNDPROC>(value);
        return reinterpret_cast<LONG_PTR>(old);
    }
    default: break;
    }
    int size = wide ? 8 : 4;
    if (index >= 0 && index <= w.extraBytes - size)
        return wide ? omSwapExtra<LONG_PTR>(w.extra(), index, value)
                    : omSwapExtra<LONG>(w.extra(), index, static_cast<LONG>(value));
    omError(OmDiag::IndexOutOfRange, function, index);
    return 0;
}

}  // namespace

extern "C" LONG WINAPI GetWindowLongA(HWND hWnd, int nIndex)
{
    WindowRecord *w = dataRecord(hWnd, "GetWindowLong");
    if (!w)
        return 0;
    if (isPointerIndex(nIndex)) {
        omError(OmDiag::IndexOutOfRange, "GetWindowLong", nIndex);
        return 0;
    }
    return static_cast<LONG>(getWindowValue(*w, nIndex, false, "GetWindowLong"));
}

extern "C" LONG WINAPI SetWindowLongA(HWND hWnd, int nIndex, LONG dwNewLong)
{
    WindowRecord *w = dataRecord(hWnd, "SetWindowLong");
    if (!w)
        return 0;
    if (isPointerIndex(nIndex)) {
        omError(OmDiag::IndexOutOfRange, "SetWindowLong", nIndex);
        return 0;
    }
    return static_cast<LONG>(setWindowValue(hWnd, *w, nIndex, dwNewLong, false, "SetWindowLong"));
}

extern "C" LONG WINAPI GetWindowLongW(HWND hWnd, int nIndex)
{
    return GetWindowLongA(hWnd, nIndex);
}

extern "C" LONG WINAPI SetWindowLongW(HWND hWnd, int nIndex, LONG dwNewLong)
{
    return SetWindowLongA(hWnd, nIndex, dwNewLong);
}

extern "C" LONG_PTR WINAPI GetWindowLongPtrA(HWND hWnd, int nIndex)
{
    WindowRecord *w = dataRecord(hWnd, "GetWindowLongPtr");
    if (w && nIndex == GWLP_USERDATA)
        return w->userData;  // the programs' favourite, first
    return w ? getWindowValue(*w, nIndex, true, "GetWindowLongPtr") : 0;
}

extern "C" LONG_PTR WINAPI SetWindowLongPtrA(HWND hWnd, int nIndex, LONG_PTR dwNewLong)
{
    WindowRecord *w = dataRecord(hWnd, "SetWindowLongPtr");
    if (!w)
        return 0;
    if (nIndex == GWLP_USERDATA)
        return std::exchange(w->userData, dwNewLong);
    if (nIndex == GWLP_HWNDPARENT) {
        omError(OmDiag::IndexOutOfRange, "SetWindowLongPtr", nIndex);
        return 0;
    }
    return setWindowValue(hWnd, *w, nIndex, dwNewLong, true, "SetWindowLongPtr");
}

extern "C" LONG_PTR WINAPI GetWindowLongPtrW(HWND hWnd, int nIndex)
{
    return GetWindowLongPtrA(hWnd, nIndex);
}

extern "C" LONG_PTR WINAPI SetWindowLongPtrW(HWND hWnd, int nIndex, LONG_PTR dwNewLong)
{
    return SetWindowLongPtrA(hWnd, nIndex, dwNewLong);
}

extern "C" WORD WINAPI GetWindowWord(HWND hWnd, int nIndex)
{
    WindowRecord *w = dataRecord(hWnd, "GetWindowWord");
    if (!w)
        return 0;
    if (nIndex < 0 || nIndex > w->extraBytes - 2) {
        omError(OmDiag::IndexOutOfRange, "GetWindowWord", nIndex);
        return 0;
    }
    return omReadExtra<WORD>(w->extra(), nIndex);
}

extern "C" WORD WINAPI SetWindowWord(HWND hWnd, int nIndex, WORD wNewWord)
{
    WindowRecord *w = dataRecord(hWnd, "SetWindowWord");
    if (!w)
        return 0;
    if (nIndex < 0 || nIndex > w->extraBytes - 2) {
        omError(OmDiag::IndexOutOfRange, "SetWindowWord", nIndex);
        return 0;
    }
    return omSwapExtra<WORD>(w->extra(), nIndex, wNewWord);
}

// ---------------------------------------------------------------------------
// Window text.  The record keeps the text; a top-level window's shell title
// follows it.

namespace om::core {
void setShellTitle(WindowRecord &w)
{
    if (!w.shellWidget || (w.style & WS_CHILD) || !XtIsShell(w.shellWidget) || w.textIsOrdinal)
        return;
    XtVaSetValues(w.shellWidget, XmNtitle, w.text, XmNiconName, w.text, nullptr);
}
}  // namespace om::core

extern "C" BOOL WINAPI SetWindowTextA(HWND hWnd, LPCSTR lpString)
{
    if (!omIsWindow(hWnd)) {
        omDebugWarning(OmDiag::BadWindowHandle, "SetWindowText", hWnd);
        return FALSE;
    }
    WindowRecord *w = ConvertHWNDtoPtr(hWnd);
    om::core::setRecordText(*w, lpString && reinterpret_cast<uintptr_t>(lpString) > 0xFFFF ? lpString : "");
    om::core::setShellTitle(*w);
    om::core::send(hWnd, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(lpString ? lpString : ""));
    return TRUE;
}

extern "C" BOOL WINAPI SetWindowTextW(HWND hWnd, LPCWSTR lpString)
{
    char *text = _omMBStringFromWideString(lpString);
    BOOL ok = SetWindowTextA(hWnd, text);
    std::free(text);
    return ok;
}

extern "C" int WINAPI GetWindowTextA(HWND hWnd, LPSTR lpString, int nMaxCount)
{
    if (!omThreadRuleOk("GetWindowText"))
        return 0;
    if (!omIsWindow(hWnd) || !lpString)
        return 0;
    return static_cast<int>(om::core::send(hWnd, WM_GETTEXT, static_cast<WPARAM>(std::max(nMaxCount, 0)),
                                           reinterpret_cast<LPARAM>(lpString)));
}

extern "C" int WINAPI GetWindowTextW(HWND hWnd, LPWSTR lpString, int nMaxCount)
{
    if (!lpString || nMaxCount <= 0)
        return 0;
    std::string buffer(static_cast<size_t>(nMaxCount) * 3 + 1, '\0');
    int r = GetWindowTextA(hWnd, buffer.data(), static_cast<int>(buffer.size()));
    std::u16string wide = om::core::toWide(buffer.c_str());
    size_t n = std::min(wide.size(), static_cast<size_t>(nMaxCount - 1));
    std::memcpy(lpString, wide.data(), n * sizeof(WCHAR));
    lpString[n] = 0;
    return r ? static_cast<int>(n) : 0;
}

extern "C" int WINAPI GetWindowTextLengthA(HWND hWnd)
{
    if (!omThreadRuleOk("GetWindowTextLength"))
        return 0;
    if (!omIsWindow(hWnd))
        return 0;
    return static_cast<int>(om::core::send(hWnd, WM_GETTEXTLENGTH, 0, 0));
}

extern "C" int WINAPI GetWindowTextLengthW(HWND hWnd)
{
    if (!omThreadRuleOk("GetWindowTextLength"))
        return 0;
    WindowRecord *w = omIsWindow(hWnd) ? ConvertHWNDtoPtr(hWnd) : nullptr;
    return w ? static_cast<int>(om::core::toWide(om::core::recordText(*w)).size()) : 0;
}
