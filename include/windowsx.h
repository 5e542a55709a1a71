/*
 * Message crackers and control helpers: HANDLE_MSG with the HANDLE_WM_* and
 * FORWARD_WM_* macros, the Button_/Edit_/ListBox_/ComboBox_/Static_/
 * ScrollBar_ message wrappers, and window and GDI object shorthands.
 * WPARAM and LPARAM are 64-bit: no cracker passes a handle through a
 * 32-bit cast.
 */
#ifndef _INC_WINDOWSX
#define _INC_WINDOWSX

#include <winuser.h>

#ifndef RC_INVOKED
#include <winbase.h>
#include <wingdi.h>

#ifndef SNDMSG
#define SNDMSG SendMessage
#endif

/*
 * Result conversions as functions: a C++ compiler warns when a value-changing
 * cast of a call is discarded, and these macros are often used as statements.
 */
static inline int olmo_wx_int(LRESULT r)
{
    return (int)(DWORD)r;
}
static inline BOOL olmo_wx_bool(LRESULT r)
{
    return (BOOL)(DWORD)r;
}
static inline UINT olmo_wx_uint(LRESULT r)
{
    return (UINT)(DWORD)r;
}
static inline DWORD olmo_wx_dword(LRESULT r)
{
    return (DWORD)r;
}
static inline void *olmo_wx_ptr(LRESULT r)
{
    return (void *)(UINT_PTR)r;
}
static inline WNDPROC olmo_wx_wndproc(LONG_PTR p)
{
    return (WNDPROC)p;
}
static inline DLGPROC olmo_wx_dlgproc(LONG_PTR p)
{
    return (DLGPROC)p;
}

/* Coordinates packed in an LPARAM are signed 16-bit values. */
#define GET_X_LPARAM(lp) ((int)(short)LOWORD(lp))
#define GET_Y_LPARAM(lp) ((int)(short)HIWORD(lp))

/* Field extractors for the messages whose packing changed from 16 to 32 bits. */
#define GET_WM_ACTIVATE_STATE(wp, lp) LOWORD(wp)
#define GET_WM_ACTIVATE_FMINIMIZED(wp, lp) ((BOOL)HIWORD(wp))
#define GET_WM_ACTIVATE_HWND(wp, lp) ((HWND)(lp))
#define GET_WM_ACTIVATE_MPS(s, fmin, hwnd) (WPARAM) MAKELONG((s), (fmin)), (LPARAM)(hwnd)
#define GET_WM_COMMAND_ID(wp, lp) LOWORD(wp)
#define GET_WM_COMMAND_HWND(wp, lp) ((HWND)(lp))
#define GET_WM_COMMAND_CMD(wp, lp) HIWORD(wp)
#define GET_WM_COMMAND_MPS(id, hwnd, cmd) (WPARAM) MAKELONG((id), (cmd)), (LPARAM)(hwnd)
#define GET_WM_HSCROLL_CODE(wp, lp) LOWORD(wp)
#define GET_WM_HSCROLL_POS(wp, lp) HIWORD(wp)
#define GET_WM_HSCROLL_HWND(wp, lp) ((HWND)(lp))
#define GET_WM_HSCROLL_MPS(code, pos, hwnd) (WPARAM) MAKELONG((code), (pos)), (LPARAM)(hwnd)
#define GET_WM_VSCROLL_CODE(wp, lp) LOWORD(wp)
#define GET_WM_VSCROLL_POS(wp, lp) HIWORD(wp)
#define GET_WM_VSCROLL_HWND(wp, lp) ((HWND)(lp))
#define GET_WM_VSCROLL_MPS(code, pos, hwnd) (WPARAM) MAKELONG((code), (pos)), (LPARAM)(hwnd)
#define GET_WM_MENUSELECT_CMD(wp, lp) LOWORD(wp)
#define GET_WM_MENUSELECT_FLAGS(wp, lp) ((UINT)(int)(short)HIWORD(wp))
#define GET_WM_MENUSELECT_HMENU(wp, lp) ((HMENU)(lp))
#define GET_WM_CTLCOLOR_HDC(wp, lp, msg) ((HDC)(wp))
#define GET_WM_CTLCOLOR_HWND(wp, lp, msg) ((HWND)(lp))
#define GET_WM_CTLCOLOR_TYPE(wp, lp, msg) (WORD)((msg)-WM_CTLCOLORMSGBOX)
#define GET_WM_PARENTNOTIFY_MSG(wp, lp) LOWORD(wp)
#define GET_WM_PARENTNOTIFY_ID(wp, lp) HIWORD(wp)
#define GET_WM_PARENTNOTIFY_HWNDCHILD(wp, lp) ((HWND)(lp))
#define GET_WM_PARENTNOTIFY_X(wp, lp) ((int)(short)LOWORD(lp))
#define GET_WM_PARENTNOTIFY_Y(wp, lp) ((int)(short)HIWORD(lp))

/* Window shorthands. */
#define GetWindowInstance(hwnd) ((HMODULE)GetWindowLongPtr(hwnd, GWLP_HINSTANCE))
#define GetWindowStyle(hwnd) ((DWORD)GetWindowLong(hwnd, GWL_STYLE))
#define GetWindowExStyle(hwnd) ((DWORD)GetWindowLong(hwnd, GWL_EXSTYLE))
#define GetWindowOwner(hwnd) GetWindow(hwnd, GW_OWNER)
#define GetFirstChild(hwnd) GetTopWindow(hwnd)
#define GetFirstSibling(hwnd) GetWindow(hwnd, GW_HWNDFIRST)
#define GetLastSibling(hwnd) GetWindow(hwnd, GW_HWNDLAST)
#define GetNextSibling(hwnd) GetWindow(hwnd, GW_HWNDNEXT)
#define GetPrevSibling(hwnd) GetWindow(hwnd, GW_HWNDPREV)
#define GetWindowID(hwnd) GetDlgCtrlID(hwnd)
#define SetWindowRedraw(hwnd, fRedraw)                                                             \
    ((void)SNDMSG(hwnd, WM_SETREDRAW, (WPARAM)(BOOL)(fRedraw), 0))
#define SubclassWindow(hwnd, lpfn)                                                                 \
    olmo_wx_wndproc(SetWindowLongPtr((hwnd), GWLP_WNDPROC, (LONG_PTR)(WNDPROC)(lpfn)))
#define IsMinimized(hwnd) IsIconic(hwnd)
#define IsMaximized(hwnd) IsZoomed(hwnd)
#define IsRestored(hwnd) ((GetWindowStyle(hwnd) & (WS_MINIMIZE | WS_MAXIMIZE)) == 0)
#define SetWindowFont(hwnd, hfont, fRedraw) FORWARD_WM_SETFONT((hwnd), (hfont), (fRedraw), SNDMSG)
#define GetWindowFont(hwnd) FORWARD_WM_GETFONT((hwnd), SNDMSG)
#define MapWindowRect(hwndFrom, hwndTo, lprc)                                                      \
    MapWindowPoints((hwndFrom), (hwndTo), (POINT *)(lprc), 2)
#define IsLButtonDown() (GetKeyState(VK_LBUTTON) < 0)
#define IsRButtonDown() (GetKeyState(VK_RBUTTON) < 0)
#define IsMButtonDown() (GetKeyState(VK_MBUTTON) < 0)
#define SubclassDialog(hwndDlg, lpfn)                                                              \
    olmo_wx_dlgproc(SetWindowLongPtr(hwndDlg, DWLP_DLGPROC, (LONG_PTR)(DLGPROC)(lpfn)))

/*
 * Dialog procedure results: the messages below return their value directly
 * (for the WM_CTLCOLOR* family it is a brush handle, hence INT_PTR and not
 * BOOL); every other message stores it in DWLP_MSGRESULT.
 */
#define SetDlgMsgResult(hwnd, msg, result)                                                         \
    (((msg) == WM_CTLCOLORMSGBOX || (msg) == WM_CTLCOLOREDIT || (msg) == WM_CTLCOLORLISTBOX ||     \
      (msg) == WM_CTLCOLORBTN || (msg) == WM_CTLCOLORDLG || (msg) == WM_CTLCOLORSCROLLBAR ||       \
      (msg) == WM_CTLCOLORSTATIC || (msg) == WM_COMPAREITEM || (msg) == WM_VKEYTOITEM ||           \
      (msg) == WM_CHARTOITEM || (msg) == WM_QUERYDRAGICON || (msg) == WM_INITDIALOG)               \
         ? (INT_PTR)(result)                                                                       \
         : (SetWindowLongPtr((hwnd), DWLP_MSGRESULT, (LONG_PTR)(LRESULT)(result)), (INT_PTR)TRUE))
#define HANDLE_DLGMSG(hwnd, message, fn)                                                           \
    case (message):                                                                                \
        return SetDlgMsgResult(hwnd, message, HANDLE_##message((hwnd), (wParam), (lParam), (fn)))

/* GDI object shorthands. */
#define DeletePen(hpen) DeleteObject((HGDIOBJ)(HPEN)(hpen))
#define SelectPen(hdc, hpen) ((HPEN)SelectObject((hdc), (HGDIOBJ)(HPEN)(hpen)))
#define GetStockPen(i) ((HPEN)GetStockObject(i))
#define DeleteBrush(hbr) DeleteObject((HGDIOBJ)(HBRUSH)(hbr))
#define SelectBrush(hdc, hbr) ((HBRUSH)SelectObject((hdc), (HGDIOBJ)(HBRUSH)(hbr)))
#define GetStockBrush(i) ((HBRUSH)GetStockObject(i))
#define DeleteRgn(hrgn) DeleteObject((HGDIOBJ)(HRGN)(hrgn))
#define CopyRgn(hrgnDst, hrgnSrc) CombineRgn(hrgnDst, hrgnSrc, 0, RGN_COPY)
#define IntersectRgn(hrgnResult, hrgnA, hrgnB) CombineRgn(hrgnResult, hrgnA, hrgnB, RGN_AND)
#define SubtractRgn(hrgnResult, hrgnA, hrgnB) CombineRgn(hrgnResult, hrgnA, hrgnB, RGN_DIFF)
#define UnionRgn(hrgnResult, hrgnA, hrgnB) CombineRgn(hrgnResult, hrgnA, hrgnB, RGN_OR)
#define XorRgn(hrgnResult, hrgnA, hrgnB) CombineRgn(hrgnResult, hrgnA, hrgnB, RGN_XOR)
#define DeletePalette(hpal) DeleteObject((HGDIOBJ)(HPALETTE)(hpal))
#define DeleteFont(hfont) DeleteObject((HGDIOBJ)(HFONT)(hfont))
#define SelectFont(hdc, hfont) ((HFONT)SelectObject((hdc), (HGDIOBJ)(HFONT)(hfont)))
#define GetStockFont(i) ((HFONT)GetStockObject(i))
#define DeleteBitmap(hbm) DeleteObject((HGDIOBJ)(HBITMAP)(hbm))
#define SelectBitmap(hdc, hbm) ((HBITMAP)SelectObject((hdc), (HGDIOBJ)(HBITMAP)(hbm)))
#define InsetRect(lprc, dx, dy) InflateRect((lprc), -(dx), -(dy))

/* Global memory by pointer.  GlobalFreePtr is nonzero on failure, as GlobalFree's handle is. */
#define GlobalPtrHandle(lp) ((HGLOBAL)GlobalHandle(lp))
#define GlobalLockPtr(lp) ((BOOL)(GlobalLock(GlobalPtrHandle(lp)) != NULL))
#define GlobalUnlockPtr(lp) GlobalUnlock(GlobalPtrHandle(lp))
#define GlobalAllocPtr(flags, cb) (GlobalLock(GlobalAlloc((flags), (cb))))
#define GlobalReAllocPtr(lp, cbNew, flags)                                                         \
    (GlobalUnlockPtr(lp), GlobalLock(GlobalReAlloc(GlobalPtrHandle(lp), (cbNew), (flags))))
#define GlobalFreePtr(lp) (GlobalUnlockPtr(lp), (BOOL)(GlobalFree(GlobalPtrHandle(lp)) != NULL))

/*
 * Message crackers.  HANDLE_MSG expands inside a window procedure's switch
 * whose parameters are named wParam and lParam.  Each HANDLE_WM_x calls the
 * handler with the unpacked arguments and yields the LRESULT; FORWARD_WM_x
 * packs them again and calls fn (DefWindowProc, SendMessage, ...).
 */
#define HANDLE_MSG(hwnd, message, fn)                                                              \
    case (message):                                                                                \
        return HANDLE_##message((hwnd), (wParam), (lParam), (fn))

/* BOOL Cls_OnCreate(HWND hwnd, LPCREATESTRUCT lpCreateStruct) */
#define HANDLE_WM_CREATE(hwnd, wParam, lParam, fn)                                                 \
    ((fn)((hwnd), (LPCREATESTRUCT)(lParam)) ? (LRESULT)0 : (LRESULT)-1)
#define FORWARD_WM_CREATE(hwnd, lpCreateStruct, fn)                                                \
    olmo_wx_bool((fn)((hwnd), WM_CREATE, 0, (LPARAM)(LPCREATESTRUCT)(lpCreateStruct)))

/* BOOL Cls_OnNCCreate(HWND hwnd, LPCREATESTRUCT lpCreateStruct) */
#define HANDLE_WM_NCCREATE(hwnd, wParam, lParam, fn)                                               \
    (LRESULT)(DWORD)(BOOL)(fn)((hwnd), (LPCREATESTRUCT)(lParam))
#define FORWARD_WM_NCCREATE(hwnd, lpCreateStruct, fn)                                              \
    olmo_wx_bool((fn)((hwnd), WM_NCCREATE, 0, (LPARAM)(LPCREATESTRUCT)(lpCreateStruct)))

/* void Cls_OnDestroy(HWND hwnd) */
#define HANDLE_WM_DESTROY(hwnd, wParam, lParam, fn) ((fn)(hwnd), (LRESULT)0)
#define FORWARD_WM_DESTROY(hwnd, fn) (void)(fn)((hwnd), WM_DESTROY, 0, 0)

/* void Cls_OnNCDestroy(HWND hwnd) */
#define HANDLE_WM_NCDESTROY(hwnd, wParam, lParam, fn) ((fn)(hwnd), (LRESULT)0)
#define FORWARD_WM_NCDESTROY(hwnd, fn) (void)(fn)((hwnd), WM_NCDESTROY, 0, 0)

/* void Cls_OnClose(HWND hwnd) */
#define HANDLE_WM_CLOSE(hwnd, wParam, lParam, fn) ((fn)(hwnd), (LRESULT)0)
#define FORWARD_WM_CLOSE(hwnd, fn) (void)(fn)((hwnd), WM_CLOSE, 0, 0)

/* BOOL Cls_OnQueryEndSession(HWND hwnd) */
#define HANDLE_WM_QUERYENDSESSION(hwnd, wParam, lParam, fn) MAKELRESULT((BOOL)(fn)(hwnd), 0)
#define FORWARD_WM_QUERYENDSESSION(hwnd, fn) olmo_wx_bool((fn)((hwnd), WM_QUERYENDSESSION, 0, 0))

/* void Cls_OnEndSession(HWND hwnd, BOOL fEnding) */
#define HANDLE_WM_ENDSESSION(hwnd, wParam, lParam, fn) ((fn)((hwnd), (BOOL)(wParam)), (LRESULT)0)
#define FORWARD_WM_ENDSESSION(hwnd, fEnding, fn)                                                   \
    (void)(fn)((hwnd), WM_ENDSESSION, (WPARAM)(BOOL)(fEnding), 0)

/* void Cls_OnQuit(HWND hwnd, int exitCode) */
#define HANDLE_WM_QUIT(hwnd, wParam, lParam, fn) ((fn)((hwnd), (int)(wParam)), (LRESULT)0)
#define FORWARD_WM_QUIT(hwnd, exitCode, fn) (void)(fn)((hwnd), WM_QUIT, (WPARAM)(exitCode), 0)

/* void Cls_OnPaint(HWND hwnd) */
#define HANDLE_WM_PAINT(hwnd, wParam, lParam, fn) ((fn)(hwnd), (LRESULT)0)
#define FORWARD_WM_PAINT(hwnd, fn) (void)(fn)((hwnd), WM_PAINT, 0, 0)

/* BOOL Cls_OnEraseBkgnd(HWND hwnd, HDC hdc) */
#define HANDLE_WM_ERASEBKGND(hwnd, wParam, lParam, fn)                                             \
    (LRESULT)(DWORD)(BOOL)(fn)((hwnd), (HDC)(wParam))
#define FORWARD_WM_ERASEBKGND(hwnd, hdc, fn)                                                       \
    olmo_wx_bool((fn)((hwnd), WM_ERASEBKGND, (WPARAM)(HDC)(hdc), 0))

/* void Cls_OnNCPaint(HWND hwnd, HRGN hrgn) */
#define HANDLE_WM_NCPAINT(hwnd, wParam, lParam, fn) ((fn)((hwnd), (HRGN)(wParam)), (LRESULT)0)
#define FORWARD_WM_NCPAINT(hwnd, hrgn, fn) (void)(fn)((hwnd), WM_NCPAINT, (WPARAM)(HRGN)(hrgn), 0)

/* BOOL Cls_OnNCActivate(HWND hwnd, BOOL fActive, HWND hwndActDeact, BOOL fMinimized) */
#define HANDLE_WM_NCACTIVATE(hwnd, wParam, lParam, fn)                                             \
    (LRESULT)(DWORD)(BOOL)(fn)((hwnd), (BOOL)(wParam), (HWND)0, FALSE)
#define FORWARD_WM_NCACTIVATE(hwnd, fActive, hwndActDeact, fMinimized, fn)                         \
    olmo_wx_bool((fn)((hwnd), WM_NCACTIVATE, (WPARAM)(BOOL)(fActive), 0))

/* UINT Cls_OnNCCalcSize(HWND hwnd, BOOL fCalcValidRects, NCCALCSIZE_PARAMS *lpcsp) */
#define HANDLE_WM_NCCALCSIZE(hwnd, wParam, lParam, fn)                                             \
    (LRESULT)(DWORD)(UINT)(fn)((hwnd), (BOOL)(wParam), (NCCALCSIZE_PARAMS *)(lParam))
#define FORWARD_WM_NCCALCSIZE(hwnd, fCalcValidRects, lpcsp, fn)                                    \
    olmo_wx_uint((fn)((hwnd), WM_NCCALCSIZE, (WPARAM)(fCalcValidRects),                            \
                      (LPARAM)(NCCALCSIZE_PARAMS *)(lpcsp)))

/* UINT Cls_OnNCHitTest(HWND hwnd, int x, int y); negative codes such as HTTRANSPARENT stay
 * negative. */
#define HANDLE_WM_NCHITTEST(hwnd, wParam, lParam, fn)                                              \
    (LRESULT)(int)(UINT)(fn)((hwnd), (int)(short)LOWORD(lParam), (int)(short)HIWORD(lParam))
#define FORWARD_WM_NCHITTEST(hwnd, x, y, fn)                                                       \
    olmo_wx_uint((fn)((hwnd), WM_NCHITTEST, 0, MAKELPARAM((x), (y))))

/* void Cls_OnSize(HWND hwnd, UINT state, int cx, int cy) */
#define HANDLE_WM_SIZE(hwnd, wParam, lParam, fn)                                                   \
    ((fn)((hwnd), (UINT)(wParam), (int)(short)LOWORD(lParam), (int)(short)HIWORD(lParam)),         \
     (LRESULT)0)
#define FORWARD_WM_SIZE(hwnd, state, cx, cy, fn)                                                   \
    (void)(fn)((hwnd), WM_SIZE, (WPARAM)(UINT)(state), MAKELPARAM((cx), (cy)))

/* void Cls_OnMove(HWND hwnd, int x, int y) */
#define HANDLE_WM_MOVE(hwnd, wParam, lParam, fn)                                                   \
    ((fn)((hwnd), (int)(short)LOWORD(lParam), (int)(short)HIWORD(lParam)), (LRESULT)0)
#define FORWARD_WM_MOVE(hwnd, x, y, fn) (void)(fn)((hwnd), WM_MOVE, 0, MAKELPARAM((x), (y)))

/* BOOL Cls_OnWindowPosChanging(HWND hwnd, LPWINDOWPOS lpwpos) */
#define HANDLE_WM_WINDOWPOSCHANGING(hwnd, wParam, lParam, fn)                                      \
    (LRESULT)(DWORD)(BOOL)(fn)((hwnd), (LPWINDOWPOS)(lParam))
#define FORWARD_WM_WINDOWPOSCHANGING(hwnd, lpwpos, fn)                                             \
    olmo_wx_bool((fn)((hwnd), WM_WINDOWPOSCHANGING, 0, (LPARAM)(LPWINDOWPOS)(lpwpos)))

/* void Cls_OnWindowPosChanged(HWND hwnd, const LPWINDOWPOS lpwpos) */
#define HANDLE_WM_WINDOWPOSCHANGED(hwnd, wParam, lParam, fn)                                       \
    ((fn)((hwnd), (const LPWINDOWPOS)(lParam)), (LRESULT)0)
#define FORWARD_WM_WINDOWPOSCHANGED(hwnd, lpwpos, fn)                                              \
    (void)(fn)((hwnd), WM_WINDOWPOSCHANGED, 0, (LPARAM)(const LPWINDOWPOS)(lpwpos))

/* void Cls_OnGetMinMaxInfo(HWND hwnd, LPMINMAXINFO lpMinMaxInfo) */
#define HANDLE_WM_GETMINMAXINFO(hwnd, wParam, lParam, fn)                                          \
    ((fn)((hwnd), (LPMINMAXINFO)(lParam)), (LRESULT)0)
#define FORWARD_WM_GETMINMAXINFO(hwnd, lpMinMaxInfo, fn)                                           \
    (void)(fn)((hwnd), WM_GETMINMAXINFO, 0, (LPARAM)(LPMINMAXINFO)(lpMinMaxInfo))

/* void Cls_OnShowWindow(HWND hwnd, BOOL fShow, UINT status) */
#define HANDLE_WM_SHOWWINDOW(hwnd, wParam, lParam, fn)                                             \
    ((fn)((hwnd), (BOOL)(wParam), (UINT)(lParam)), (LRESULT)0)
#define FORWARD_WM_SHOWWINDOW(hwnd, fShow, status, fn)                                             \
    (void)(fn)((hwnd), WM_SHOWWINDOW, (WPARAM)(BOOL)(fShow), (LPARAM)(UINT)(status))

/* void Cls_OnEnable(HWND hwnd, BOOL fEnable) */
#define HANDLE_WM_ENABLE(hwnd, wParam, lParam, fn) ((fn)((hwnd), (BOOL)(wParam)), (LRESULT)0)
#define FORWARD_WM_ENABLE(hwnd, fEnable, fn)                                                       \
    (void)(fn)((hwnd), WM_ENABLE, (WPARAM)(BOOL)(fEnable), 0)

/* void Cls_OnSetRedraw(HWND hwnd, BOOL fRedraw) */
#define HANDLE_WM_SETREDRAW(hwnd, wParam, lParam, fn) ((fn)((hwnd), (BOOL)(wParam)), (LRESULT)0)
#define FORWARD_WM_SETREDRAW(hwnd, fRedraw, fn)                                                    \
    (void)(fn)((hwnd), WM_SETREDRAW, (WPARAM)(BOOL)(fRedraw), 0)

/* void Cls_OnSetText(HWND hwnd, LPCTSTR lpszText) */
#define HANDLE_WM_SETTEXT(hwnd, wParam, lParam, fn) ((fn)((hwnd), (LPCTSTR)(lParam)), (LRESULT)0)
#define FORWARD_WM_SETTEXT(hwnd, lpszText, fn)                                                     \
    (void)(fn)((hwnd), WM_SETTEXT, 0, (LPARAM)(LPCTSTR)(lpszText))

/* INT Cls_OnGetText(HWND hwnd, int cchTextMax, LPTSTR lpszText) */
#define HANDLE_WM_GETTEXT(hwnd, wParam, lParam, fn)                                                \
    (LRESULT)(DWORD)(int)(fn)((hwnd), (int)(wParam), (LPTSTR)(lParam))
#define FORWARD_WM_GETTEXT(hwnd, cchTextMax, lpszText, fn)                                         \
    olmo_wx_int((fn)((hwnd), WM_GETTEXT, (WPARAM)(int)(cchTextMax), (LPARAM)(LPTSTR)(lpszText)))

/* INT Cls_OnGetTextLength(HWND hwnd) */
#define HANDLE_WM_GETTEXTLENGTH(hwnd, wParam, lParam, fn) (LRESULT)(DWORD)(int)(fn)(hwnd)
#define FORWARD_WM_GETTEXTLENGTH(hwnd, fn) olmo_wx_int((fn)((hwnd), WM_GETTEXTLENGTH, 0, 0))

/* void Cls_OnSetFont(HWND hwndCtl, HFONT hfont, BOOL fRedraw) */
#define HANDLE_WM_SETFONT(hwnd, wParam, lParam, fn)                                                \
    ((fn)((hwnd), (HFONT)(wParam), (BOOL)(lParam)), (LRESULT)0)
#define FORWARD_WM_SETFONT(hwnd, hfont, fRedraw, fn)                                               \
    (void)(fn)((hwnd), WM_SETFONT, (WPARAM)(HFONT)(hfont), (LPARAM)(BOOL)(fRedraw))

/* HFONT Cls_OnGetFont(HWND hwnd) */
#define HANDLE_WM_GETFONT(hwnd, wParam, lParam, fn) (LRESULT)(UINT_PTR)(HFONT)(fn)(hwnd)
#define FORWARD_WM_GETFONT(hwnd, fn) ((HFONT)olmo_wx_ptr((fn)((hwnd), WM_GETFONT, 0, 0)))

/* void Cls_OnActivate(HWND hwnd, UINT state, HWND hwndActDeact, BOOL fMinimized) */
#define HANDLE_WM_ACTIVATE(hwnd, wParam, lParam, fn)                                               \
    ((fn)((hwnd), (UINT)LOWORD(wParam), (HWND)(lParam), (BOOL)HIWORD(wParam)), (LRESULT)0)
#define FORWARD_WM_ACTIVATE(hwnd, state, hwndActDeact, fMinimized, fn)                             \
    (void)(fn)((hwnd), WM_ACTIVATE, MAKEWPARAM((state), (fMinimized)), (LPARAM)(HWND)(hwndActDeact))

/* void Cls_OnActivateApp(HWND hwnd, BOOL fActivate, DWORD dwThreadId) */
#define HANDLE_WM_ACTIVATEAPP(hwnd, wParam, lParam, fn)                                            \
    ((fn)((hwnd), (BOOL)(wParam), (DWORD)(lParam)), (LRESULT)0)
#define FORWARD_WM_ACTIVATEAPP(hwnd, fActivate, dwThreadId, fn)                                    \
    (void)(fn)((hwnd), WM_ACTIVATEAPP, (WPARAM)(BOOL)(fActivate), (LPARAM)(dwThreadId))

/* int Cls_OnMouseActivate(HWND hwnd, HWND hwndTopLevel, UINT codeHitTest, UINT msg) */
#define HANDLE_WM_MOUSEACTIVATE(hwnd, wParam, lParam, fn)                                          \
    (LRESULT)(DWORD)(int)(fn)((hwnd), (HWND)(wParam), (UINT)LOWORD(lParam), (UINT)HIWORD(lParam))
#define FORWARD_WM_MOUSEACTIVATE(hwnd, hwndTopLevel, codeHitTest, msg, fn)                         \
    olmo_wx_int((fn)((hwnd), WM_MOUSEACTIVATE, (WPARAM)(HWND)(hwndTopLevel),                       \
                     MAKELPARAM((codeHitTest), (msg))))

/* void Cls_OnSetFocus(HWND hwnd, HWND hwndOldFocus) */
#define HANDLE_WM_SETFOCUS(hwnd, wParam, lParam, fn) ((fn)((hwnd), (HWND)(wParam)), (LRESULT)0)
#define FORWARD_WM_SETFOCUS(hwnd, hwndOldFocus, fn)                                                \
    (void)(fn)((hwnd), WM_SETFOCUS, (WPARAM)(HWND)(hwndOldFocus), 0)

/* void Cls_OnKillFocus(HWND hwnd, HWND hwndNewFocus) */
#define HANDLE_WM_KILLFOCUS(hwnd, wParam, lParam, fn) ((fn)((hwnd), (HWND)(wParam)), (LRESULT)0)
#define FORWARD_WM_KILLFOCUS(hwnd, hwndNewFocus, fn)                                               \
    (void)(fn)((hwnd), WM_KILLFOCUS, (WPARAM)(HWND)(hwndNewFocus), 0)

/* void Cls_OnCancelMode(HWND hwnd) */
#define HANDLE_WM_CANCELMODE(hwnd, wParam, lParam, fn) ((fn)(hwnd), (LRESULT)0)
#define FORWARD_WM_CANCELMODE(hwnd, fn) (void)(fn)((hwnd), WM_CANCELMODE, 0, 0)

/* void Cls_OnChildActivate(HWND hwnd) */
#define HANDLE_WM_CHILDACTIVATE(hwnd, wParam, lParam, fn) ((fn)(hwnd), (LRESULT)0)
#define FORWARD_WM_CHILDACTIVATE(hwnd, fn) (void)(fn)((hwnd), WM_CHILDACTIVATE, 0, 0)

/* void Cls_OnKey(HWND hwnd, UINT vk, BOOL fDown, int cRepeat, UINT flags) */
#define HANDLE_WM_KEYDOWN(hwnd, wParam, lParam, fn)                                                \
    ((fn)((hwnd), (UINT)(wParam), TRUE, (int)(short)LOWORD(lParam), (UINT)HIWORD(lParam)),         \
     (LRESULT)0)
#define FORWARD_WM_KEYDOWN(hwnd, vk, cRepeat, flags, fn)                                           \
    (void)(fn)((hwnd), WM_KEYDOWN, (WPARAM)(UINT)(vk), MAKELPARAM((cRepeat), (flags)))
#define HANDLE_WM_KEYUP(hwnd, wParam, lParam, fn)                                                  \
    ((fn)((hwnd), (UINT)(wParam), FALSE, (int)(short)LOWORD(lParam), (UINT)HIWORD(lParam)),        \
     (LRESULT)0)
#define FORWARD_WM_KEYUP(hwnd, vk, cRepeat, flags, fn)                                             \
    (void)(fn)((hwnd), WM_KEYUP, (WPARAM)(UINT)(vk), MAKELPARAM((cRepeat), (flags)))

/* void Cls_OnSysKey(HWND hwnd, UINT vk, BOOL fDown, int cRepeat, UINT flags) */
#define HANDLE_WM_SYSKEYDOWN(hwnd, wParam, lParam, fn)                                             \
    ((fn)((hwnd), (UINT)(wParam), TRUE, (int)(short)LOWORD(lParam), (UINT)HIWORD(lParam)),         \
     (LRESULT)0)
#define FORWARD_WM_SYSKEYDOWN(hwnd, vk, cRepeat, flags, fn)                                        \
    (void)(fn)((hwnd), WM_SYSKEYDOWN, (WPARAM)(UINT)(vk), MAKELPARAM((cRepeat), (flags)))
#define HANDLE_WM_SYSKEYUP(hwnd, wParam, lParam, fn)                                               \
    ((fn)((hwnd), (UINT)(wParam), FALSE, (int)(short)LOWORD(lParam), (UINT)HIWORD(lParam)),        \
     (LRESULT)0)
#define FORWARD_WM_SYSKEYUP(hwnd, vk, cRepeat, flags, fn)                                          \
    (void)(fn)((hwnd), WM_SYSKEYUP, (WPARAM)(UINT)(vk), MAKELPARAM((cRepeat), (flags)))

/* void Cls_OnChar(HWND hwnd, TCHAR ch, int cRepeat), and likewise the dead and system characters */
#define HANDLE_WM_CHAR(hwnd, wParam, lParam, fn)                                                   \
    ((fn)((hwnd), (TCHAR)(wParam), (int)(short)LOWORD(lParam)), (LRESULT)0)
#define FORWARD_WM_CHAR(hwnd, ch, cRepeat, fn)                                                     \
    (void)(fn)((hwnd), WM_CHAR, (WPARAM)(TCHAR)(ch), MAKELPARAM((cRepeat), 0))
#define HANDLE_WM_DEADCHAR(hwnd, wParam, lParam, fn)                                               \
    ((fn)((hwnd), (TCHAR)(wParam), (int)(short)LOWORD(lParam)), (LRESULT)0)
#define FORWARD_WM_DEADCHAR(hwnd, ch, cRepeat, fn)                                                 \
    (void)(fn)((hwnd), WM_DEADCHAR, (WPARAM)(TCHAR)(ch), MAKELPARAM((cRepeat), 0))
#define HANDLE_WM_SYSCHAR(hwnd, wParam, lParam, fn)                                                \
    ((fn)((hwnd), (TCHAR)(wParam), (int)(short)LOWORD(lParam)), (LRESULT)0)
#define FORWARD_WM_SYSCHAR(hwnd, ch, cRepeat, fn)                                                  \
    (void)(fn)((hwnd), WM_SYSCHAR, (WPARAM)(TCHAR)(ch), MAKELPARAM((cRepeat), 0))
#define HANDLE_WM_SYSDEADCHAR(hwnd, wParam, lParam, fn)                                            \
    ((fn)((hwnd), (TCHAR)(wParam), (int)(short)LOWORD(lParam)), (LRESULT)0)
#define FORWARD_WM_SYSDEADCHAR(hwnd, ch, cRepeat, fn)                                              \
    (void)(fn)((hwnd), WM_SYSDEADCHAR, (WPARAM)(TCHAR)(ch), MAKELPARAM((cRepeat), 0))

/* void Cls_OnMouseMove(HWND hwnd, int x, int y, UINT keyFlags) */
#define HANDLE_WM_MOUSEMOVE(hwnd, wParam, lParam, fn)                                              \
    ((fn)((hwnd), (int)(short)LOWORD(lParam), (int)(short)HIWORD(lParam), (UINT)(wParam)),         \
     (LRESULT)0)
#define FORWARD_WM_MOUSEMOVE(hwnd, x, y, keyFlags, fn)                                             \
    (void)(fn)((hwnd), WM_MOUSEMOVE, (WPARAM)(UINT)(keyFlags), MAKELPARAM((x), (y)))

/* void Cls_OnLButtonDown(HWND hwnd, BOOL fDoubleClick, int x, int y, UINT keyFlags); one handler
 * takes both the click and the double click */
#define HANDLE_WM_LBUTTONDOWN(hwnd, wParam, lParam, fn)                                            \
    ((fn)((hwnd), FALSE, (int)(short)LOWORD(lParam), (int)(short)HIWORD(lParam), (UINT)(wParam)),  \
     (LRESULT)0)
#define FORWARD_WM_LBUTTONDOWN(hwnd, fDoubleClick, x, y, keyFlags, fn)                             \
    (void)(fn)((hwnd), (fDoubleClick) ? WM_LBUTTONDBLCLK : WM_LBUTTONDOWN,                         \
               (WPARAM)(UINT)(keyFlags), MAKELPARAM((x), (y)))
#define HANDLE_WM_LBUTTONDBLCLK(hwnd, wParam, lParam, fn)                                          \
    ((fn)((hwnd), TRUE, (int)(short)LOWORD(lParam), (int)(short)HIWORD(lParam), (UINT)(wParam)),   \
     (LRESULT)0)
#define HANDLE_WM_RBUTTONDOWN(hwnd, wParam, lParam, fn)                                            \
    ((fn)((hwnd), FALSE, (int)(short)LOWORD(lParam), (int)(short)HIWORD(lParam), (UINT)(wParam)),  \
     (LRESULT)0)
#define FORWARD_WM_RBUTTONDOWN(hwnd, fDoubleClick, x, y, keyFlags, fn)                             \
    (void)(fn)((hwnd), (fDoubleClick) ? WM_RBUTTONDBLCLK : WM_RBUTTONDOWN,                         \
               (WPARAM)(UINT)(keyFlags), MAKELPARAM((x), (y)))
#define HANDLE_WM_RBUTTONDBLCLK(hwnd, wParam, lParam, fn)                                          \
    ((fn)((hwnd), TRUE, (int)(short)LOWORD(lParam), (int)(short)HIWORD(lParam), (UINT)(wParam)),   \
     (LRESULT)0)
#define HANDLE_WM_MBUTTONDOWN(hwnd, wParam, lParam, fn)                                            \
    ((fn)((hwnd), FALSE, (int)(short)LOWORD(lParam), (int)(short)HIWORD(lParam), (UINT)(wParam)),  \
     (LRESULT)0)
#define FORWARD_WM_MBUTTONDOWN(hwnd, fDoubleClick, x, y, keyFlags, fn)                             \
    (void)(fn)((hwnd), (fDoubleClick) ? WM_MBUTTONDBLCLK : WM_MBUTTONDOWN,                         \
               (WPARAM)(UINT)(keyFlags), MAKELPARAM((x), (y)))
#define HANDLE_WM_MBUTTONDBLCLK(hwnd, wParam, lParam, fn)                                          \
    ((fn)((hwnd), TRUE, (int)(short)LOWORD(lParam), (int)(short)HIWORD(lParam), (UINT)(wParam)),   \
     (LRESULT)0)

/* void Cls_OnLButtonUp(HWND hwnd, int x, int y, UINT keyFlags) */
#define HANDLE_WM_LBUTTONUP(hwnd, wParam, lParam, fn)                                              \
    ((fn)((hwnd), (int)(short)LOWORD(lParam), (int)(short)HIWORD(lParam), (UINT)(wParam)),         \
     (LRESULT)0)
#define FORWARD_WM_LBUTTONUP(hwnd, x, y, keyFlags, fn)                                             \
    (void)(fn)((hwnd), WM_LBUTTONUP, (WPARAM)(UINT)(keyFlags), MAKELPARAM((x), (y)))
#define HANDLE_WM_RBUTTONUP(hwnd, wParam, lParam, fn)                                              \
    ((fn)((hwnd), (int)(short)LOWORD(lParam), (int)(short)HIWORD(lParam), (UINT)(wParam)),         \
     (LRESULT)0)
#define FORWARD_WM_RBUTTONUP(hwnd, x, y, keyFlags, fn)                                             \
    (void)(fn)((hwnd), WM_RBUTTONUP, (WPARAM)(UINT)(keyFlags), MAKELPARAM((x), (y)))
#define HANDLE_WM_MBUTTONUP(hwnd, wParam, lParam, fn)                                              \
    ((fn)((hwnd), (int)(short)LOWORD(lParam), (int)(short)HIWORD(lParam), (UINT)(wParam)),         \
     (LRESULT)0)
#define FORWARD_WM_MBUTTONUP(hwnd, x, y, keyFlags, fn)                                             \
    (void)(fn)((hwnd), WM_MBUTTONUP, (WPARAM)(UINT)(keyFlags), MAKELPARAM((x), (y)))

/* void Cls_OnMouseWheel(HWND hwnd, int xPos, int yPos, int zDelta, UINT fwKeys); the position is in
 * screen coordinates */
#define HANDLE_WM_MOUSEWHEEL(hwnd, wParam, lParam, fn)                                             \
    ((fn)((hwnd), (int)(short)LOWORD(lParam), (int)(short)HIWORD(lParam),                          \
          (int)(short)HIWORD(wParam), (UINT)(short)LOWORD(wParam)),                                \
     (LRESULT)0)
#define FORWARD_WM_MOUSEWHEEL(hwnd, xPos, yPos, zDelta, fwKeys, fn)                                \
    (void)(fn)((hwnd), WM_MOUSEWHEEL, MAKEWPARAM((fwKeys), (zDelta)), MAKELPARAM((xPos), (yPos)))

/* void Cls_OnNCLButtonDown(HWND hwnd, BOOL fDoubleClick, int x, int y, UINT codeHitTest) */
#define HANDLE_WM_NCLBUTTONDOWN(hwnd, wParam, lParam, fn)                                          \
    ((fn)((hwnd), FALSE, (int)(short)LOWORD(lParam), (int)(short)HIWORD(lParam), (UINT)(wParam)),  \
     (LRESULT)0)
#define FORWARD_WM_NCLBUTTONDOWN(hwnd, fDoubleClick, x, y, codeHitTest, fn)                        \
    (void)(fn)((hwnd), (fDoubleClick) ? WM_NCLBUTTONDBLCLK : WM_NCLBUTTONDOWN,                     \
               (WPARAM)(UINT)(codeHitTest), MAKELPARAM((x), (y)))
#define HANDLE_WM_NCLBUTTONDBLCLK(hwnd, wParam, lParam, fn)                                        \
    ((fn)((hwnd), TRUE, (int)(short)LOWORD(lParam), (int)(short)HIWORD(lParam), (UINT)(wParam)),   \
     (LRESULT)0)

/* void Cls_OnNCMouseMove(HWND hwnd, int x, int y, UINT codeHitTest) */
#define HANDLE_WM_NCMOUSEMOVE(hwnd, wParam, lParam, fn)                                            \
    ((fn)((hwnd), (int)(short)LOWORD(lParam), (int)(short)HIWORD(lParam), (UINT)(wParam)),         \
     (LRESULT)0)
#define FORWARD_WM_NCMOUSEMOVE(hwnd, x, y, codeHitTest, fn)                                        \
    (void)(fn)((hwnd), WM_NCMOUSEMOVE, (WPARAM)(UINT)(codeHitTest), MAKELPARAM((x), (y)))

/* BOOL Cls_OnSetCursor(HWND hwnd, HWND hwndCursor, UINT codeHitTest, UINT msg) */
#define HANDLE_WM_SETCURSOR(hwnd, wParam, lParam, fn)                                              \
    (LRESULT)(DWORD)(BOOL)(fn)((hwnd), (HWND)(wParam), (UINT)LOWORD(lParam), (UINT)HIWORD(lParam))
#define FORWARD_WM_SETCURSOR(hwnd, hwndCursor, codeHitTest, msg, fn)                               \
    olmo_wx_bool(                                                                                  \
        (fn)((hwnd), WM_SETCURSOR, (WPARAM)(HWND)(hwndCursor), MAKELPARAM((codeHitTest), (msg))))

/* void Cls_OnContextMenu(HWND hwnd, HWND hwndContext, UINT xPos, UINT yPos) */
#define HANDLE_WM_CONTEXTMENU(hwnd, wParam, lParam, fn)                                            \
    ((fn)((hwnd), (HWND)(wParam), (UINT)LOWORD(lParam), (UINT)HIWORD(lParam)), (LRESULT)0)
#define FORWARD_WM_CONTEXTMENU(hwnd, hwndContext, xPos, yPos, fn)                                  \
    (void)(fn)((hwnd), WM_CONTEXTMENU, (WPARAM)(HWND)(hwndContext),                                \
               MAKELPARAM((UINT)(xPos), (UINT)(yPos)))

/* void Cls_OnCommand(HWND hwnd, int id, HWND hwndCtl, UINT codeNotify) */
#define HANDLE_WM_COMMAND(hwnd, wParam, lParam, fn)                                                \
    ((fn)((hwnd), (int)(LOWORD(wParam)), (HWND)(lParam), (UINT)HIWORD(wParam)), (LRESULT)0)
#define FORWARD_WM_COMMAND(hwnd, id, hwndCtl, codeNotify, fn)                                      \
    (void)(fn)((hwnd), WM_COMMAND, MAKEWPARAM((UINT)(id), (UINT)(codeNotify)),                     \
               (LPARAM)(HWND)(hwndCtl))

/* void Cls_OnSysCommand(HWND hwnd, UINT cmd, int x, int y) */
#define HANDLE_WM_SYSCOMMAND(hwnd, wParam, lParam, fn)                                             \
    ((fn)((hwnd), (UINT)(wParam), (int)(short)LOWORD(lParam), (int)(short)HIWORD(lParam)),         \
     (LRESULT)0)
#define FORWARD_WM_SYSCOMMAND(hwnd, cmd, x, y, fn)                                                 \
    (void)(fn)((hwnd), WM_SYSCOMMAND, (WPARAM)(UINT)(cmd), MAKELPARAM((x), (y)))

/* void Cls_OnTimer(HWND hwnd, UINT id) */
#define HANDLE_WM_TIMER(hwnd, wParam, lParam, fn) ((fn)((hwnd), (UINT)(wParam)), (LRESULT)0)
#define FORWARD_WM_TIMER(hwnd, id, fn) (void)(fn)((hwnd), WM_TIMER, (WPARAM)(UINT)(id), 0)

/* void Cls_OnHScroll(HWND hwnd, HWND hwndCtl, UINT code, int pos) */
#define HANDLE_WM_HSCROLL(hwnd, wParam, lParam, fn)                                                \
    ((fn)((hwnd), (HWND)(lParam), (UINT)(LOWORD(wParam)), (int)(short)HIWORD(wParam)), (LRESULT)0)
#define FORWARD_WM_HSCROLL(hwnd, hwndCtl, code, pos, fn)                                           \
    (void)(fn)((hwnd), WM_HSCROLL, MAKEWPARAM((UINT)(int)(code), (UINT)(int)(pos)),                \
               (LPARAM)(HWND)(hwndCtl))

/* void Cls_OnVScroll(HWND hwnd, HWND hwndCtl, UINT code, int pos) */
#define HANDLE_WM_VSCROLL(hwnd, wParam, lParam, fn)                                                \
    ((fn)((hwnd), (HWND)(lParam), (UINT)(LOWORD(wParam)), (int)(short)HIWORD(wParam)), (LRESULT)0)
#define FORWARD_WM_VSCROLL(hwnd, hwndCtl, code, pos, fn)                                           \
    (void)(fn)((hwnd), WM_VSCROLL, MAKEWPARAM((UINT)(int)(code), (UINT)(int)(pos)),                \
               (LPARAM)(HWND)(hwndCtl))

/* void Cls_OnInitMenu(HWND hwnd, HMENU hMenu) */
#define HANDLE_WM_INITMENU(hwnd, wParam, lParam, fn) ((fn)((hwnd), (HMENU)(wParam)), (LRESULT)0)
#define FORWARD_WM_INITMENU(hwnd, hMenu, fn)                                                       \
    (void)(fn)((hwnd), WM_INITMENU, (WPARAM)(HMENU)(hMenu), 0)

/* void Cls_OnInitMenuPopup(HWND hwnd, HMENU hMenu, UINT item, BOOL fSystemMenu) */
#define HANDLE_WM_INITMENUPOPUP(hwnd, wParam, lParam, fn)                                          \
    ((fn)((hwnd), (HMENU)(wParam), (UINT)LOWORD(lParam), (BOOL)HIWORD(lParam)), (LRESULT)0)
#define FORWARD_WM_INITMENUPOPUP(hwnd, hMenu, item, fSystemMenu, fn)                               \
    (void)(fn)((hwnd), WM_INITMENUPOPUP, (WPARAM)(HMENU)(hMenu), MAKELPARAM((item), (fSystemMenu)))

/* void Cls_OnMenuSelect(HWND hwnd, HMENU hmenu, int item, HMENU hmenuPopup, UINT flags); a closed
 * menu arrives as flags 0xFFFFFFFF */
#define HANDLE_WM_MENUSELECT(hwnd, wParam, lParam, fn)                                             \
    ((fn)((hwnd), (HMENU)(lParam), (HIWORD(wParam) & MF_POPUP) ? 0 : (int)(LOWORD(wParam)),        \
          (HIWORD(wParam) & MF_POPUP) ? GetSubMenu((HMENU)(lParam), (int)LOWORD(wParam))           \
                                      : (HMENU)0,                                                  \
          (UINT)(((short)HIWORD(wParam) == -1) ? 0xFFFFFFFF : HIWORD(wParam))),                    \
     (LRESULT)0)
#define FORWARD_WM_MENUSELECT(hwnd, hmenu, item, hmenuPopup, flags, fn)                            \
    (void)(fn)((hwnd), WM_MENUSELECT, MAKEWPARAM((item), (flags)),                                 \
               (LPARAM)(HMENU)((hmenu) ? (hmenu) : (hmenuPopup)))

/* DWORD Cls_OnMenuChar(HWND hwnd, UINT ch, UINT flags, HMENU hmenu) */
#define HANDLE_WM_MENUCHAR(hwnd, wParam, lParam, fn)                                               \
    (LRESULT)(DWORD)(fn)((hwnd), (UINT)(LOWORD(wParam)), (UINT)HIWORD(wParam), (HMENU)(lParam))
#define FORWARD_WM_MENUCHAR(hwnd, ch, flags, hmenu, fn)                                            \
    olmo_wx_dword((fn)((hwnd), WM_MENUCHAR, MAKEWPARAM((ch), (flags)), (LPARAM)(HMENU)(hmenu)))

/* BOOL Cls_OnInitDialog(HWND hwnd, HWND hwndFocus, LPARAM lParam) */
#define HANDLE_WM_INITDIALOG(hwnd, wParam, lParam, fn)                                             \
    (LRESULT)(DWORD)(UINT)(BOOL)(fn)((hwnd), (HWND)(wParam), lParam)
#define FORWARD_WM_INITDIALOG(hwnd, hwndFocus, lParam, fn)                                         \
    olmo_wx_bool((fn)((hwnd), WM_INITDIALOG, (WPARAM)(HWND)(hwndFocus), (lParam)))

/* UINT Cls_OnGetDlgCode(HWND hwnd, LPMSG lpmsg) */
#define HANDLE_WM_GETDLGCODE(hwnd, wParam, lParam, fn)                                             \
    (LRESULT)(DWORD)(UINT)(fn)((hwnd), (LPMSG)(lParam))
#define FORWARD_WM_GETDLGCODE(hwnd, lpmsg, fn)                                                     \
    olmo_wx_uint((fn)((hwnd), WM_GETDLGCODE, (lpmsg) ? ((LPMSG)(lpmsg))->wParam : (WPARAM)0,       \
                      (LPARAM)(LPMSG)(lpmsg)))

/* LRESULT Cls_OnNotify(HWND hwnd, int idFrom, NMHDR *pnmhdr) */
#define HANDLE_WM_NOTIFY(hwnd, wParam, lParam, fn) (fn)((hwnd), (int)(wParam), (NMHDR *)(lParam))
#define FORWARD_WM_NOTIFY(hwnd, idFrom, pnmhdr, fn)                                                \
    (LRESULT)(fn)((hwnd), WM_NOTIFY, (WPARAM)(int)(idFrom), (LPARAM)(NMHDR *)(pnmhdr))

/* void Cls_OnParentNotify(HWND hwnd, UINT msg, HWND hwndChild, int idChild) */
#define HANDLE_WM_PARENTNOTIFY(hwnd, wParam, lParam, fn)                                           \
    ((fn)((hwnd), (UINT)LOWORD(wParam), (HWND)(lParam), (int)HIWORD(wParam)), (LRESULT)0)
#define FORWARD_WM_PARENTNOTIFY(hwnd, msg, hwndChild, idChild, fn)                                 \
    (void)(fn)((hwnd), WM_PARENTNOTIFY, MAKEWPARAM(msg, idChild), (LPARAM)(HWND)(hwndChild))

/* void Cls_OnDrawItem(HWND hwnd, const DRAWITEMSTRUCT *lpDrawItem) */
#define HANDLE_WM_DRAWITEM(hwnd, wParam, lParam, fn)                                               \
    ((fn)((hwnd), (const DRAWITEMSTRUCT *)(lParam)), (LRESULT)0)
#define FORWARD_WM_DRAWITEM(hwnd, lpDrawItem, fn)                                                  \
    (void)(fn)((hwnd), WM_DRAWITEM, (WPARAM)((const DRAWITEMSTRUCT *)(lpDrawItem))->CtlID,         \
               (LPARAM)(const DRAWITEMSTRUCT *)(lpDrawItem))

/* void Cls_OnMeasureItem(HWND hwnd, MEASUREITEMSTRUCT *lpMeasureItem) */
#define HANDLE_WM_MEASUREITEM(hwnd, wParam, lParam, fn)                                            \
    ((fn)((hwnd), (MEASUREITEMSTRUCT *)(lParam)), (LRESULT)0)
#define FORWARD_WM_MEASUREITEM(hwnd, lpMeasureItem, fn)                                            \
    (void)(fn)((hwnd), WM_MEASUREITEM, (WPARAM)((MEASUREITEMSTRUCT *)(lpMeasureItem))->CtlID,      \
               (LPARAM)(MEASUREITEMSTRUCT *)(lpMeasureItem))

/* void Cls_OnDeleteItem(HWND hwnd, const DELETEITEMSTRUCT *lpDeleteItem) */
#define HANDLE_WM_DELETEITEM(hwnd, wParam, lParam, fn)                                             \
    ((fn)((hwnd), (const DELETEITEMSTRUCT *)(lParam)), (LRESULT)0)
#define FORWARD_WM_DELETEITEM(hwnd, lpDeleteItem, fn)                                              \
    (void)(fn)((hwnd), WM_DELETEITEM, (WPARAM)((const DELETEITEMSTRUCT *)(lpDeleteItem))->CtlID,   \
               (LPARAM)(const DELETEITEMSTRUCT *)(lpDeleteItem))

/* int Cls_OnCompareItem(HWND hwnd, const COMPAREITEMSTRUCT *lpCompareItem) */
#define HANDLE_WM_COMPAREITEM(hwnd, wParam, lParam, fn)                                            \
    (LRESULT)(DWORD)(int)(fn)((hwnd), (const COMPAREITEMSTRUCT *)(lParam))
#define FORWARD_WM_COMPAREITEM(hwnd, lpCompareItem, fn)                                            \
    olmo_wx_int((fn)((hwnd), WM_COMPAREITEM,                                                       \
                     (WPARAM)(((const COMPAREITEMSTRUCT *)(lpCompareItem))->CtlID),                \
                     (LPARAM)(const COMPAREITEMSTRUCT *)(lpCompareItem)))

/* int Cls_OnVkeyToItem(HWND hwnd, UINT vk, HWND hwndListbox, int iCaret) */
#define HANDLE_WM_VKEYTOITEM(hwnd, wParam, lParam, fn)                                             \
    (LRESULT)(DWORD)(int)(fn)((hwnd), (UINT)LOWORD(wParam), (HWND)(lParam),                        \
                              (int)(short)HIWORD(wParam))
#define FORWARD_WM_VKEYTOITEM(hwnd, vk, hwndListBox, iCaret, fn)                                   \
    olmo_wx_int(                                                                                   \
        (fn)((hwnd), WM_VKEYTOITEM, MAKEWPARAM((vk), (iCaret)), (LPARAM)(HWND)(hwndListBox)))

/* int Cls_OnCharToItem(HWND hwnd, UINT ch, HWND hwndListbox, int iCaret) */
#define HANDLE_WM_CHARTOITEM(hwnd, wParam, lParam, fn)                                             \
    (LRESULT)(DWORD)(int)(fn)((hwnd), (UINT)LOWORD(wParam), (HWND)(lParam),                        \
                              (int)(short)HIWORD(wParam))
#define FORWARD_WM_CHARTOITEM(hwnd, ch, hwndListBox, iCaret, fn)                                   \
    olmo_wx_int((fn)((hwnd), WM_CHARTOITEM, MAKEWPARAM((UINT)(ch), (UINT)(iCaret)),                \
                     (LPARAM)(HWND)(hwndListBox)))

/* HBRUSH Cls_OnCtlColor(HWND hwnd, HDC hdc, HWND hwndChild, int type); the brush goes back whole,
 * never through a DWORD */
#define HANDLE_WM_CTLCOLORMSGBOX(hwnd, wParam, lParam, fn)                                         \
    (LRESULT)(UINT_PTR)(HBRUSH)(fn)((hwnd), (HDC)(wParam), (HWND)(lParam), CTLCOLOR_MSGBOX)
#define FORWARD_WM_CTLCOLORMSGBOX(hwnd, hdc, hwndChild, fn)                                        \
    ((HBRUSH)olmo_wx_ptr(                                                                          \
        (fn)((hwnd), WM_CTLCOLORMSGBOX, (WPARAM)(HDC)(hdc), (LPARAM)(HWND)(hwndChild))))
#define HANDLE_WM_CTLCOLOREDIT(hwnd, wParam, lParam, fn)                                           \
    (LRESULT)(UINT_PTR)(HBRUSH)(fn)((hwnd), (HDC)(wParam), (HWND)(lParam), CTLCOLOR_EDIT)
#define FORWARD_WM_CTLCOLOREDIT(hwnd, hdc, hwndChild, fn)                                          \
    ((HBRUSH)olmo_wx_ptr(                                                                          \
        (fn)((hwnd), WM_CTLCOLOREDIT, (WPARAM)(HDC)(hdc), (LPARAM)(HWND)(hwndChild))))
#define HANDLE_WM_CTLCOLORLISTBOX(hwnd, wParam, lParam, fn)                                        \
    (LRESULT)(UINT_PTR)(HBRUSH)(fn)((hwnd), (HDC)(wParam), (HWND)(lParam), CTLCOLOR_LISTBOX)
#define FORWARD_WM_CTLCOLORLISTBOX(hwnd, hdc, hwndChild, fn)                                       \
    ((HBRUSH)olmo_wx_ptr(                                                                          \
        (fn)((hwnd), WM_CTLCOLORLISTBOX, (WPARAM)(HDC)(hdc), (LPARAM)(HWND)(hwndChild))))
#define HANDLE_WM_CTLCOLORBTN(hwnd, wParam, lParam, fn)                                            \
    (LRESULT)(UINT_PTR)(HBRUSH)(fn)((hwnd), (HDC)(wParam), (HWND)(lParam), CTLCOLOR_BTN)
#define FORWARD_WM_CTLCOLORBTN(hwnd, hdc, hwndChild, fn)                                           \
    ((HBRUSH)olmo_wx_ptr(                                                                          \
        (fn)((hwnd), WM_CTLCOLORBTN, (WPARAM)(HDC)(hdc), (LPARAM)(HWND)(hwndChild))))
#define HANDLE_WM_CTLCOLORDLG(hwnd, wParam, lParam, fn)                                            \
    (LRESULT)(UINT_PTR)(HBRUSH)(fn)((hwnd), (HDC)(wParam), (HWND)(lParam), CTLCOLOR_DLG)
#define FORWARD_WM_CTLCOLORDLG(hwnd, hdc, hwndChild, fn)                                           \
    ((HBRUSH)olmo_wx_ptr(                                                                          \
        (fn)((hwnd), WM_CTLCOLORDLG, (WPARAM)(HDC)(hdc), (LPARAM)(HWND)(hwndChild))))
#define HANDLE_WM_CTLCOLORSCROLLBAR(hwnd, wParam, lParam, fn)                                      \
    (LRESULT)(UINT_PTR)(HBRUSH)(fn)((hwnd), (HDC)(wParam), (HWND)(lParam), CTLCOLOR_SCROLLBAR)
#define FORWARD_WM_CTLCOLORSCROLLBAR(hwnd, hdc, hwndChild, fn)                                     \
    ((HBRUSH)olmo_wx_ptr(                                                                          \
        (fn)((hwnd), WM_CTLCOLORSCROLLBAR, (WPARAM)(HDC)(hdc), (LPARAM)(HWND)(hwndChild))))
#define HANDLE_WM_CTLCOLORSTATIC(hwnd, wParam, lParam, fn)                                         \
    (LRESULT)(UINT_PTR)(HBRUSH)(fn)((hwnd), (HDC)(wParam), (HWND)(lParam), CTLCOLOR_STATIC)
#define FORWARD_WM_CTLCOLORSTATIC(hwnd, hdc, hwndChild, fn)                                        \
    ((HBRUSH)olmo_wx_ptr(                                                                          \
        (fn)((hwnd), WM_CTLCOLORSTATIC, (WPARAM)(HDC)(hdc), (LPARAM)(HWND)(hwndChild))))

/* BOOL Cls_OnCopyData(HWND hwnd, HWND hwndFrom, PCOPYDATASTRUCT pcds) */
#define HANDLE_WM_COPYDATA(hwnd, wParam, lParam, fn)                                               \
    (LRESULT)(DWORD)(BOOL)(fn)((hwnd), (HWND)(wParam), (PCOPYDATASTRUCT)(lParam))
#define FORWARD_WM_COPYDATA(hwnd, hwndFrom, pcds, fn)                                              \
    olmo_wx_bool(                                                                                  \
        (fn)((hwnd), WM_COPYDATA, (WPARAM)(HWND)(hwndFrom), (LPARAM)(PCOPYDATASTRUCT)(pcds)))

/* void Cls_OnDisplayChange(HWND hwnd, UINT bitsPerPixel, UINT cxScreen, UINT cyScreen) */
#define HANDLE_WM_DISPLAYCHANGE(hwnd, wParam, lParam, fn)                                          \
    ((fn)((hwnd), (UINT)(wParam), (UINT)LOWORD(lParam), (UINT)HIWORD(lParam)), (LRESULT)0)
#define FORWARD_WM_DISPLAYCHANGE(hwnd, bitsPerPixel, cxScreen, cyScreen, fn)                       \
    (void)(fn)((hwnd), WM_DISPLAYCHANGE, (WPARAM)(UINT)(bitsPerPixel),                             \
               MAKELPARAM((UINT)(cxScreen), (UINT)(cyScreen)))

/* void Cls_OnSysColorChange(HWND hwnd) */
#define HANDLE_WM_SYSCOLORCHANGE(hwnd, wParam, lParam, fn) ((fn)(hwnd), (LRESULT)0)
#define FORWARD_WM_SYSCOLORCHANGE(hwnd, fn) (void)(fn)((hwnd), WM_SYSCOLORCHANGE, 0, 0)

/* BOOL Cls_OnQueryNewPalette(HWND hwnd) */
#define HANDLE_WM_QUERYNEWPALETTE(hwnd, wParam, lParam, fn) MAKELRESULT((BOOL)(fn)(hwnd), 0)
#define FORWARD_WM_QUERYNEWPALETTE(hwnd, fn) olmo_wx_bool((fn)((hwnd), WM_QUERYNEWPALETTE, 0, 0))

/* void Cls_OnPaletteChanged(HWND hwnd, HWND hwndPaletteChange) */
#define HANDLE_WM_PALETTECHANGED(hwnd, wParam, lParam, fn)                                         \
    ((fn)((hwnd), (HWND)(wParam)), (LRESULT)0)
#define FORWARD_WM_PALETTECHANGED(hwnd, hwndPaletteChange, fn)                                     \
    (void)(fn)((hwnd), WM_PALETTECHANGED, (WPARAM)(HWND)(hwndPaletteChange), 0)

/* Button controls. */
#define Button_Enable(hwndCtl, fEnable) EnableWindow((hwndCtl), (fEnable))
#define Button_GetText(hwndCtl, lpch, cchMax) GetWindowText((hwndCtl), (lpch), (cchMax))
#define Button_GetTextLength(hwndCtl) GetWindowTextLength(hwndCtl)
#define Button_SetText(hwndCtl, lpsz) SetWindowText((hwndCtl), (lpsz))
#define Button_GetCheck(hwndCtl) olmo_wx_int(SNDMSG((hwndCtl), BM_GETCHECK, 0, 0))
#define Button_SetCheck(hwndCtl, check)                                                            \
    ((void)SNDMSG((hwndCtl), BM_SETCHECK, (WPARAM)(int)(check), 0))
#define Button_GetState(hwndCtl) olmo_wx_int(SNDMSG((hwndCtl), BM_GETSTATE, 0, 0))
#define Button_SetState(hwndCtl, state)                                                            \
    olmo_wx_uint(SNDMSG((hwndCtl), BM_SETSTATE, (WPARAM)(int)(state), 0))
#define Button_SetStyle(hwndCtl, style, fRedraw)                                                   \
    ((void)SNDMSG((hwndCtl), BM_SETSTYLE, (WPARAM)LOWORD(style),                                   \
                  MAKELPARAM(((fRedraw) ? TRUE : FALSE), 0)))

/* Static controls. */
#define Static_Enable(hwndCtl, fEnable) EnableWindow((hwndCtl), (fEnable))
#define Static_GetText(hwndCtl, lpch, cchMax) GetWindowText((hwndCtl), (lpch), (cchMax))
#define Static_GetTextLength(hwndCtl) GetWindowTextLength(hwndCtl)
#define Static_SetText(hwndCtl, lpsz) SetWindowText((hwndCtl), (lpsz))
#define Static_SetIcon(hwndCtl, hIcon)                                                             \
    ((HICON)olmo_wx_ptr(SNDMSG((hwndCtl), STM_SETICON, (WPARAM)(HICON)(hIcon), 0)))
#define Static_GetIcon(hwndCtl, hIcon) ((HICON)olmo_wx_ptr(SNDMSG((hwndCtl), STM_GETICON, 0, 0)))

/* Edit controls. */
#define Edit_Enable(hwndCtl, fEnable) EnableWindow((hwndCtl), (fEnable))
#define Edit_GetText(hwndCtl, lpch, cchMax) GetWindowText((hwndCtl), (lpch), (cchMax))
#define Edit_GetTextLength(hwndCtl) GetWindowTextLength(hwndCtl)
#define Edit_SetText(hwndCtl, lpsz) SetWindowText((hwndCtl), (lpsz))
#define Edit_LimitText(hwndCtl, cchMax) ((void)SNDMSG((hwndCtl), EM_LIMITTEXT, (WPARAM)(cchMax), 0))
#define Edit_GetLineCount(hwndCtl) olmo_wx_int(SNDMSG((hwndCtl), EM_GETLINECOUNT, 0, 0))
/* EM_GETLINE reads the buffer size from the buffer's first word. */
#define Edit_GetLine(hwndCtl, line, lpch, cchMax)                                                  \
    ((*((WORD *)(lpch)) = (WORD)(cchMax)),                                                         \
     olmo_wx_int(SNDMSG((hwndCtl), EM_GETLINE, (WPARAM)(int)(line), (LPARAM)(LPTSTR)(lpch))))
#define Edit_GetRect(hwndCtl, lprc) ((void)SNDMSG((hwndCtl), EM_GETRECT, 0, (LPARAM)(RECT *)(lprc)))
#define Edit_SetRect(hwndCtl, lprc)                                                                \
    ((void)SNDMSG((hwndCtl), EM_SETRECT, 0, (LPARAM)(const RECT *)(lprc)))
#define Edit_SetRectNoPaint(hwndCtl, lprc)                                                         \
    ((void)SNDMSG((hwndCtl), EM_SETRECTNP, 0, (LPARAM)(const RECT *)(lprc)))
#define Edit_GetSel(hwndCtl) olmo_wx_dword(SNDMSG((hwndCtl), EM_GETSEL, 0, 0))
#define Edit_SetSel(hwndCtl, ichStart, ichEnd)                                                     \
    ((void)SNDMSG((hwndCtl), EM_SETSEL, (WPARAM)(ichStart), (LPARAM)(ichEnd)))
#define Edit_ReplaceSel(hwndCtl, lpszReplace)                                                      \
    ((void)SNDMSG((hwndCtl), EM_REPLACESEL, 0, (LPARAM)(LPCTSTR)(lpszReplace)))
#define Edit_GetModify(hwndCtl) olmo_wx_bool(SNDMSG((hwndCtl), EM_GETMODIFY, 0, 0))
#define Edit_SetModify(hwndCtl, fModified)                                                         \
    ((void)SNDMSG((hwndCtl), EM_SETMODIFY, (WPARAM)(UINT)(fModified), 0))
#define Edit_ScrollCaret(hwndCtl) olmo_wx_bool(SNDMSG((hwndCtl), EM_SCROLLCARET, 0, 0))
#define Edit_LineFromChar(hwndCtl, ich)                                                            \
    olmo_wx_int(SNDMSG((hwndCtl), EM_LINEFROMCHAR, (WPARAM)(int)(ich), 0))
#define Edit_LineIndex(hwndCtl, line)                                                              \
    olmo_wx_int(SNDMSG((hwndCtl), EM_LINEINDEX, (WPARAM)(int)(line), 0))
#define Edit_LineLength(hwndCtl, line)                                                             \
    olmo_wx_int(SNDMSG((hwndCtl), EM_LINELENGTH, (WPARAM)(int)(line), 0))
#define Edit_Scroll(hwndCtl, dv, dh)                                                               \
    ((void)SNDMSG((hwndCtl), EM_LINESCROLL, (WPARAM)(dh), (LPARAM)(dv)))
#define Edit_CanUndo(hwndCtl) olmo_wx_bool(SNDMSG((hwndCtl), EM_CANUNDO, 0, 0))
#define Edit_Undo(hwndCtl) olmo_wx_bool(SNDMSG((hwndCtl), EM_UNDO, 0, 0))
#define Edit_EmptyUndoBuffer(hwndCtl) ((void)SNDMSG((hwndCtl), EM_EMPTYUNDOBUFFER, 0, 0))
#define Edit_SetPasswordChar(hwndCtl, ch)                                                          \
    ((void)SNDMSG((hwndCtl), EM_SETPASSWORDCHAR, (WPARAM)(UINT)(ch), 0))
#define Edit_GetPasswordChar(hwndCtl) ((TCHAR)(DWORD)SNDMSG((hwndCtl), EM_GETPASSWORDCHAR, 0, 0))
#define Edit_SetTabStops(hwndCtl, cTabs, lpTabs)                                                   \
    ((void)SNDMSG((hwndCtl), EM_SETTABSTOPS, (WPARAM)(int)(cTabs), (LPARAM)(const int *)(lpTabs)))
#define Edit_FmtLines(hwndCtl, fAddEOL)                                                            \
    olmo_wx_bool(SNDMSG((hwndCtl), EM_FMTLINES, (WPARAM)(BOOL)(fAddEOL), 0))
#define Edit_GetHandle(hwndCtl) ((HLOCAL)olmo_wx_ptr(SNDMSG((hwndCtl), EM_GETHANDLE, 0, 0)))
#define Edit_SetHandle(hwndCtl, h)                                                                 \
    ((void)SNDMSG((hwndCtl), EM_SETHANDLE, (WPARAM)(UINT_PTR)(HLOCAL)(h), 0))
#define Edit_GetFirstVisibleLine(hwndCtl)                                                          \
    olmo_wx_int(SNDMSG((hwndCtl), EM_GETFIRSTVISIBLELINE, 0, 0))
#define Edit_SetReadOnly(hwndCtl, fReadOnly)                                                       \
    olmo_wx_bool(SNDMSG((hwndCtl), EM_SETREADONLY, (WPARAM)(BOOL)(fReadOnly), 0))
#define Edit_SetWordBreakProc(hwndCtl, lpfnWordBreak)                                              \
    ((void)SNDMSG((hwndCtl), EM_SETWORDBREAKPROC, 0, (LPARAM)(EDITWORDBREAKPROC)(lpfnWordBreak)))
#define Edit_GetWordBreakProc(hwndCtl)                                                             \
    ((EDITWORDBREAKPROC)SNDMSG((hwndCtl), EM_GETWORDBREAKPROC, 0, 0))

/* List boxes. */
#define ListBox_Enable(hwndCtl, fEnable) EnableWindow((hwndCtl), (fEnable))
#define ListBox_GetCount(hwndCtl) olmo_wx_int(SNDMSG((hwndCtl), LB_GETCOUNT, 0, 0))
#define ListBox_ResetContent(hwndCtl) olmo_wx_bool(SNDMSG((hwndCtl), LB_RESETCONTENT, 0, 0))
#define ListBox_AddString(hwndCtl, lpsz)                                                           \
    olmo_wx_int(SNDMSG((hwndCtl), LB_ADDSTRING, 0, (LPARAM)(LPCTSTR)(lpsz)))
#define ListBox_InsertString(hwndCtl, index, lpsz)                                                 \
    olmo_wx_int(SNDMSG((hwndCtl), LB_INSERTSTRING, (WPARAM)(int)(index), (LPARAM)(LPCTSTR)(lpsz)))
#define ListBox_AddItemData(hwndCtl, data)                                                         \
    olmo_wx_int(SNDMSG((hwndCtl), LB_ADDSTRING, 0, (LPARAM)(data)))
#define ListBox_InsertItemData(hwndCtl, index, data)                                               \
    olmo_wx_int(SNDMSG((hwndCtl), LB_INSERTSTRING, (WPARAM)(int)(index), (LPARAM)(data)))
#define ListBox_DeleteString(hwndCtl, index)                                                       \
    olmo_wx_int(SNDMSG((hwndCtl), LB_DELETESTRING, (WPARAM)(int)(index), 0))
#define ListBox_GetTextLen(hwndCtl, index)                                                         \
    olmo_wx_int(SNDMSG((hwndCtl), LB_GETTEXTLEN, (WPARAM)(int)(index), 0))
#define ListBox_GetText(hwndCtl, index, lpszBuffer)                                                \
    olmo_wx_int(SNDMSG((hwndCtl), LB_GETTEXT, (WPARAM)(int)(index), (LPARAM)(LPCTSTR)(lpszBuffer)))
#define ListBox_GetItemData(hwndCtl, index)                                                        \
    ((LRESULT)SNDMSG((hwndCtl), LB_GETITEMDATA, (WPARAM)(int)(index), 0))
#define ListBox_SetItemData(hwndCtl, index, data)                                                  \
    olmo_wx_int(SNDMSG((hwndCtl), LB_SETITEMDATA, (WPARAM)(int)(index), (LPARAM)(data)))
#define ListBox_FindString(hwndCtl, indexStart, lpszFind)                                          \
    olmo_wx_int(                                                                                   \
        SNDMSG((hwndCtl), LB_FINDSTRING, (WPARAM)(int)(indexStart), (LPARAM)(LPCTSTR)(lpszFind)))
#define ListBox_FindItemData(hwndCtl, indexStart, data)                                            \
    olmo_wx_int(SNDMSG((hwndCtl), LB_FINDSTRING, (WPARAM)(int)(indexStart), (LPARAM)(data)))
#define ListBox_FindStringExact(hwndCtl, indexStart, lpszFind)                                     \
    olmo_wx_int(SNDMSG((hwndCtl), LB_FINDSTRINGEXACT, (WPARAM)(int)(indexStart),                   \
                       (LPARAM)(LPCTSTR)(lpszFind)))
#define ListBox_SetSel(hwndCtl, fSelect, index)                                                    \
    olmo_wx_int(SNDMSG((hwndCtl), LB_SETSEL, (WPARAM)(BOOL)(fSelect), (LPARAM)(index)))
#define ListBox_SelItemRange(hwndCtl, fSelect, first, last)                                        \
    olmo_wx_int(                                                                                   \
        SNDMSG((hwndCtl), LB_SELITEMRANGE, (WPARAM)(BOOL)(fSelect), MAKELPARAM((first), (last))))
#define ListBox_GetCurSel(hwndCtl) olmo_wx_int(SNDMSG((hwndCtl), LB_GETCURSEL, 0, 0))
#define ListBox_SetCurSel(hwndCtl, index)                                                          \
    olmo_wx_int(SNDMSG((hwndCtl), LB_SETCURSEL, (WPARAM)(int)(index), 0))
#define ListBox_SelectString(hwndCtl, indexStart, lpszFind)                                        \
    olmo_wx_int(SNDMSG((hwndCtl), LB_SELECTSTRING, (WPARAM)(int)(indexStart),                      \
                       (LPARAM)(LPCTSTR)(lpszFind)))
#define ListBox_SelectItemData(hwndCtl, indexStart, data)                                          \
    olmo_wx_int(SNDMSG((hwndCtl), LB_SELECTSTRING, (WPARAM)(int)(indexStart), (LPARAM)(data)))
#define ListBox_GetSel(hwndCtl, index)                                                             \
    olmo_wx_int(SNDMSG((hwndCtl), LB_GETSEL, (WPARAM)(int)(index), 0))
#define ListBox_GetSelCount(hwndCtl) olmo_wx_int(SNDMSG((hwndCtl), LB_GETSELCOUNT, 0, 0))
#define ListBox_GetTopIndex(hwndCtl) olmo_wx_int(SNDMSG((hwndCtl), LB_GETTOPINDEX, 0, 0))
#define ListBox_GetSelItems(hwndCtl, cItems, lpItems)                                              \
    olmo_wx_int(SNDMSG((hwndCtl), LB_GETSELITEMS, (WPARAM)(int)(cItems), (LPARAM)(int *)(lpItems)))
#define ListBox_SetTopIndex(hwndCtl, indexTop)                                                     \
    olmo_wx_int(SNDMSG((hwndCtl), LB_SETTOPINDEX, (WPARAM)(int)(indexTop), 0))
#define ListBox_SetColumnWidth(hwndCtl, cxColumn)                                                  \
    ((void)SNDMSG((hwndCtl), LB_SETCOLUMNWIDTH, (WPARAM)(int)(cxColumn), 0))
#define ListBox_GetHorizontalExtent(hwndCtl)                                                       \
    olmo_wx_int(SNDMSG((hwndCtl), LB_GETHORIZONTALEXTENT, 0, 0))
#define ListBox_SetHorizontalExtent(hwndCtl, cxExtent)                                             \
    ((void)SNDMSG((hwndCtl), LB_SETHORIZONTALEXTENT, (WPARAM)(int)(cxExtent), 0))
#define ListBox_SetTabStops(hwndCtl, cTabs, lpTabs)                                                \
    olmo_wx_bool(SNDMSG((hwndCtl), LB_SETTABSTOPS, (WPARAM)(int)(cTabs), (LPARAM)(int *)(lpTabs)))
#define ListBox_GetItemRect(hwndCtl, index, lprc)                                                  \
    olmo_wx_int(SNDMSG((hwndCtl), LB_GETITEMRECT, (WPARAM)(int)(index), (LPARAM)(RECT *)(lprc)))
#define ListBox_SetCaretIndex(hwndCtl, index)                                                      \
    olmo_wx_int(SNDMSG((hwndCtl), LB_SETCARETINDEX, (WPARAM)(int)(index), 0))
#define ListBox_GetCaretIndex(hwndCtl) olmo_wx_int(SNDMSG((hwndCtl), LB_GETCARETINDEX, 0, 0))
#define ListBox_SetAnchorIndex(hwndCtl, index)                                                     \
    olmo_wx_int(SNDMSG((hwndCtl), LB_SETANCHORINDEX, (WPARAM)(int)(index), 0))
#define ListBox_GetAnchorIndex(hwndCtl) olmo_wx_int(SNDMSG((hwndCtl), LB_GETANCHORINDEX, 0, 0))
#define ListBox_SetItemHeight(hwndCtl, index, cy)                                                  \
    olmo_wx_int(SNDMSG((hwndCtl), LB_SETITEMHEIGHT, (WPARAM)(int)(index), MAKELPARAM((cy), 0)))
#define ListBox_GetItemHeight(hwndCtl, index)                                                      \
    olmo_wx_int(SNDMSG((hwndCtl), LB_GETITEMHEIGHT, (WPARAM)(int)(index), 0))
#define ListBox_Dir(hwndCtl, attrs, lpszFileSpec)                                                  \
    olmo_wx_int(SNDMSG((hwndCtl), LB_DIR, (WPARAM)(UINT)(attrs), (LPARAM)(LPCTSTR)(lpszFileSpec)))

/* Combo boxes. */
#define ComboBox_Enable(hwndCtl, fEnable) EnableWindow((hwndCtl), (fEnable))
#define ComboBox_GetText(hwndCtl, lpch, cchMax) GetWindowText((hwndCtl), (lpch), (cchMax))
#define ComboBox_GetTextLength(hwndCtl) GetWindowTextLength(hwndCtl)
#define ComboBox_SetText(hwndCtl, lpsz) SetWindowText((hwndCtl), (lpsz))
#define ComboBox_LimitText(hwndCtl, cchLimit)                                                      \
    olmo_wx_int(SNDMSG((hwndCtl), CB_LIMITTEXT, (WPARAM)(int)(cchLimit), 0))
#define ComboBox_GetEditSel(hwndCtl) olmo_wx_dword(SNDMSG((hwndCtl), CB_GETEDITSEL, 0, 0))
#define ComboBox_SetEditSel(hwndCtl, ichStart, ichEnd)                                             \
    olmo_wx_int(SNDMSG((hwndCtl), CB_SETEDITSEL, 0, MAKELPARAM((ichStart), (ichEnd))))
#define ComboBox_GetCount(hwndCtl) olmo_wx_int(SNDMSG((hwndCtl), CB_GETCOUNT, 0, 0))
#define ComboBox_ResetContent(hwndCtl) olmo_wx_int(SNDMSG((hwndCtl), CB_RESETCONTENT, 0, 0))
#define ComboBox_AddString(hwndCtl, lpsz)                                                          \
    olmo_wx_int(SNDMSG((hwndCtl), CB_ADDSTRING, 0, (LPARAM)(LPCTSTR)(lpsz)))
#define ComboBox_InsertString(hwndCtl, index, lpsz)                                                \
    olmo_wx_int(SNDMSG((hwndCtl), CB_INSERTSTRING, (WPARAM)(int)(index), (LPARAM)(LPCTSTR)(lpsz)))
#define ComboBox_AddItemData(hwndCtl, data)                                                        \
    olmo_wx_int(SNDMSG((hwndCtl), CB_ADDSTRING, 0, (LPARAM)(data)))
#define ComboBox_InsertItemData(hwndCtl, index, data)                                              \
    olmo_wx_int(SNDMSG((hwndCtl), CB_INSERTSTRING, (WPARAM)(int)(index), (LPARAM)(data)))
#define ComboBox_DeleteString(hwndCtl, index)                                                      \
    olmo_wx_int(SNDMSG((hwndCtl), CB_DELETESTRING, (WPARAM)(int)(index), 0))
#define ComboBox_GetLBTextLen(hwndCtl, index)                                                      \
    olmo_wx_int(SNDMSG((hwndCtl), CB_GETLBTEXTLEN, (WPARAM)(int)(index), 0))
#define ComboBox_GetLBText(hwndCtl, index, lpszBuffer)                                             \
    olmo_wx_int(                                                                                   \
        SNDMSG((hwndCtl), CB_GETLBTEXT, (WPARAM)(int)(index), (LPARAM)(LPCTSTR)(lpszBuffer)))
#define ComboBox_GetItemData(hwndCtl, index)                                                       \
    ((LRESULT)SNDMSG((hwndCtl), CB_GETITEMDATA, (WPARAM)(int)(index), 0))
#define ComboBox_SetItemData(hwndCtl, index, data)                                                 \
    olmo_wx_int(SNDMSG((hwndCtl), CB_SETITEMDATA, (WPARAM)(int)(index), (LPARAM)(data)))
#define ComboBox_FindString(hwndCtl, indexStart, lpszFind)                                         \
    olmo_wx_int(                                                                                   \
        SNDMSG((hwndCtl), CB_FINDSTRING, (WPARAM)(int)(indexStart), (LPARAM)(LPCTSTR)(lpszFind)))
#define ComboBox_FindItemData(hwndCtl, indexStart, data)                                           \
    olmo_wx_int(SNDMSG((hwndCtl), CB_FINDSTRING, (WPARAM)(int)(indexStart), (LPARAM)(data)))
#define ComboBox_FindStringExact(hwndCtl, indexStart, lpszFind)                                    \
    olmo_wx_int(SNDMSG((hwndCtl), CB_FINDSTRINGEXACT, (WPARAM)(int)(indexStart),                   \
                       (LPARAM)(LPCTSTR)(lpszFind)))
#define ComboBox_GetCurSel(hwndCtl) olmo_wx_int(SNDMSG((hwndCtl), CB_GETCURSEL, 0, 0))
#define ComboBox_SetCurSel(hwndCtl, index)                                                         \
    olmo_wx_int(SNDMSG((hwndCtl), CB_SETCURSEL, (WPARAM)(int)(index), 0))
#define ComboBox_SelectString(hwndCtl, indexStart, lpszSelect)                                     \
    olmo_wx_int(SNDMSG((hwndCtl), CB_SELECTSTRING, (WPARAM)(int)(indexStart),                      \
                       (LPARAM)(LPCTSTR)(lpszSelect)))
#define ComboBox_SelectItemData(hwndCtl, indexStart, data)                                         \
    olmo_wx_int(SNDMSG((hwndCtl), CB_SELECTSTRING, (WPARAM)(int)(indexStart), (LPARAM)(data)))
#define ComboBox_Dir(hwndCtl, attrs, lpszFileSpec)                                                 \
    olmo_wx_int(SNDMSG((hwndCtl), CB_DIR, (WPARAM)(UINT)(attrs), (LPARAM)(LPCTSTR)(lpszFileSpec)))
#define ComboBox_ShowDropdown(hwndCtl, fShow)                                                      \
    olmo_wx_bool(SNDMSG((hwndCtl), CB_SHOWDROPDOWN, (WPARAM)(BOOL)(fShow), 0))
#define ComboBox_GetDroppedState(hwndCtl) olmo_wx_bool(SNDMSG((hwndCtl), CB_GETDROPPEDSTATE, 0, 0))
#define ComboBox_GetDroppedControlRect(hwndCtl, lprc)                                              \
    ((void)SNDMSG((hwndCtl), CB_GETDROPPEDCONTROLRECT, 0, (LPARAM)(RECT *)(lprc)))
#define ComboBox_GetItemHeight(hwndCtl) olmo_wx_int(SNDMSG((hwndCtl), CB_GETITEMHEIGHT, 0, 0))
#define ComboBox_SetItemHeight(hwndCtl, index, cyItem)                                             \
    olmo_wx_int(SNDMSG((hwndCtl), CB_SETITEMHEIGHT, (WPARAM)(int)(index), (LPARAM)(int)(cyItem)))
#define ComboBox_GetExtendedUI(hwndCtl) olmo_wx_uint(SNDMSG((hwndCtl), CB_GETEXTENDEDUI, 0, 0))
#define ComboBox_SetExtendedUI(hwndCtl, flags)                                                     \
    olmo_wx_int(SNDMSG((hwndCtl), CB_SETEXTENDEDUI, (WPARAM)(UINT)(flags), 0))

/* Scroll bar controls. */
#define ScrollBar_Enable(hwndCtl, flags) EnableScrollBar((hwndCtl), SB_CTL, (flags))
#define ScrollBar_Show(hwndCtl, fShow) ShowWindow((hwndCtl), (fShow) ? SW_SHOWNORMAL : SW_HIDE)
#define ScrollBar_SetPos(hwndCtl, pos, fRedraw) SetScrollPos((hwndCtl), SB_CTL, (pos), (fRedraw))
#define ScrollBar_GetPos(hwndCtl) GetScrollPos((hwndCtl), SB_CTL)
#define ScrollBar_SetRange(hwndCtl, posMin, posMax, fRedraw)                                       \
    SetScrollRange((hwndCtl), SB_CTL, (posMin), (posMax), (fRedraw))
#define ScrollBar_GetRange(hwndCtl, lpposMin, lpposMax)                                            \
    GetScrollRange((hwndCtl), SB_CTL, (lpposMin), (lpposMax))

#endif /* RC_INVOKED */

#endif /* _INC_WINDOWSX */
