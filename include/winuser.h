/*
 * The window manager's public interface: windows, messages, input, menus,
 * dialogs, the standard controls, resources, clipboard, hooks and the
 * system metrics, with the constants and structures they take.
 * Layouts follow the Win64 data model; a resource script sees constants only.
 */
#ifndef _WINUSER_
#define _WINUSER_

#include <windef.h>

#ifndef RC_INVOKED
#include <limits.h>
#include <stdarg.h>
#include <wingdi.h>
#endif

#include <winuser_messages.h>
#include <winuser_input.h>
#include <winuser_metrics.h>
#include <winuser_controls.h>

#ifndef RC_INVOKED

OLMO_BEGIN_C

#include <winuser_types.h>

/* Window classes. */
WINUSERAPI ATOM WINAPI RegisterClassA(const WNDCLASSA *lpWndClass);
WINUSERAPI ATOM WINAPI RegisterClassW(const WNDCLASSW *lpWndClass);
WINUSERAPI ATOM WINAPI RegisterClassExA(const WNDCLASSEXA *lpwcx);
WINUSERAPI ATOM WINAPI RegisterClassExW(const WNDCLASSEXW *lpwcx);
WINUSERAPI BOOL WINAPI UnregisterClassA(LPCSTR lpClassName, HINSTANCE hInstance);
WINUSERAPI BOOL WINAPI UnregisterClassW(LPCWSTR lpClassName, HINSTANCE hInstance);
WINUSERAPI BOOL WINAPI GetClassInfoA(HINSTANCE hInstance, LPCSTR lpClassName,
                                     LPWNDCLASSA lpWndClass);
WINUSERAPI BOOL WINAPI GetClassInfoW(HINSTANCE hInstance, LPCWSTR lpClassName,
                                     LPWNDCLASSW lpWndClass);
WINUSERAPI BOOL WINAPI GetClassInfoExA(HINSTANCE hInstance, LPCSTR lpszClass, LPWNDCLASSEXA lpwcx);
WINUSERAPI BOOL WINAPI GetClassInfoExW(HINSTANCE hInstance, LPCWSTR lpszClass, LPWNDCLASSEXW lpwcx);
WINUSERAPI int WINAPI GetClassNameA(HWND hWnd, LPSTR lpClassName, int nMaxCount);
WINUSERAPI int WINAPI GetClassNameW(HWND hWnd, LPWSTR lpClassName, int nMaxCount);
WINUSERAPI UINT WINAPI RealGetWindowClassA(HWND hwnd, LPSTR ptszClassName, UINT cchClassNameMax);
WINUSERAPI UINT WINAPI RealGetWindowClassW(HWND hwnd, LPWSTR ptszClassName, UINT cchClassNameMax);
WINUSERAPI DWORD WINAPI GetClassLongA(HWND hWnd, int nIndex);
WINUSERAPI DWORD WINAPI GetClassLongW(HWND hWnd, int nIndex);
WINUSERAPI DWORD WINAPI SetClassLongA(HWND hWnd, int nIndex, LONG dwNewLong);
WINUSERAPI DWORD WINAPI SetClassLongW(HWND hWnd, int nIndex, LONG dwNewLong);
WINUSERAPI ULONG_PTR WINAPI GetClassLongPtrA(HWND hWnd, int nIndex);
WINUSERAPI ULONG_PTR WINAPI GetClassLongPtrW(HWND hWnd, int nIndex);
WINUSERAPI ULONG_PTR WINAPI SetClassLongPtrA(HWND hWnd, int nIndex, LONG_PTR dwNewLong);
WINUSERAPI ULONG_PTR WINAPI SetClassLongPtrW(HWND hWnd, int nIndex, LONG_PTR dwNewLong);
WINUSERAPI WORD WINAPI GetClassWord(HWND hWnd, int nIndex);
WINUSERAPI WORD WINAPI SetClassWord(HWND hWnd, int nIndex, WORD wNewWord);

/* Window creation, destruction and the window procedure. */
WINUSERAPI HWND WINAPI CreateWindowExA(DWORD dwExStyle, LPCSTR lpClassName, LPCSTR lpWindowName,
                                       DWORD dwStyle, int X, int Y, int nWidth, int nHeight,
                                       HWND hWndParent, HMENU hMenu, HINSTANCE hInstance,
                                       LPVOID lpParam);
WINUSERAPI HWND WINAPI CreateWindowExW(DWORD dwExStyle, LPCWSTR lpClassName, LPCWSTR lpWindowName,
                                       DWORD dwStyle, int X, int Y, int nWidth, int nHeight,
                                       HWND hWndParent, HMENU hMenu, HINSTANCE hInstance,
                                       LPVOID lpParam);
#define CreateWindowA(lpClassName, lpWindowName, dwStyle, x, y, nWidth, nHeight, hWndParent,       \
                      hMenu, hInstance, lpParam)                                                   \
    CreateWindowExA(0, lpClassName, lpWindowName, dwStyle, x, y, nWidth, nHeight, hWndParent,      \
                    hMenu, hInstance, lpParam)
#define CreateWindowW(lpClassName, lpWindowName, dwStyle, x, y, nWidth, nHeight, hWndParent,       \
                      hMenu, hInstance, lpParam)                                                   \
    CreateWindowExW(0, lpClassName, lpWindowName, dwStyle, x, y, nWidth, nHeight, hWndParent,      \
                    hMenu, hInstance, lpParam)
WINUSERAPI BOOL WINAPI DestroyWindow(HWND hWnd);
WINUSERAPI LRESULT WINAPI DefWindowProcA(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam);
WINUSERAPI LRESULT WINAPI DefWindowProcW(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam);
WINUSERAPI LRESULT WINAPI CallWindowProcA(WNDPROC lpPrevWndFunc, HWND hWnd, UINT Msg, WPARAM wParam,
                                          LPARAM lParam);
WINUSERAPI LRESULT WINAPI CallWindowProcW(WNDPROC lpPrevWndFunc, HWND hWnd, UINT Msg, WPARAM wParam,
                                          LPARAM lParam);
WINUSERAPI BOOL WINAPI IsWindow(HWND hWnd);
WINUSERAPI BOOL WINAPI IsWindowUnicode(HWND hWnd);

/* Window data. */
WINUSERAPI LONG WINAPI GetWindowLongA(HWND hWnd, int nIndex);
WINUSERAPI LONG WINAPI GetWindowLongW(HWND hWnd, int nIndex);
WINUSERAPI LONG WINAPI SetWindowLongA(HWND hWnd, int nIndex, LONG dwNewLong);
WINUSERAPI LONG WINAPI SetWindowLongW(HWND hWnd, int nIndex, LONG dwNewLong);
WINUSERAPI LONG_PTR WINAPI GetWindowLongPtrA(HWND hWnd, int nIndex);
WINUSERAPI LONG_PTR WINAPI GetWindowLongPtrW(HWND hWnd, int nIndex);
WINUSERAPI LONG_PTR WINAPI SetWindowLongPtrA(HWND hWnd, int nIndex, LONG_PTR dwNewLong);
WINUSERAPI LONG_PTR WINAPI SetWindowLongPtrW(HWND hWnd, int nIndex, LONG_PTR dwNewLong);
WINUSERAPI WORD WINAPI GetWindowWord(HWND hWnd, int nIndex);
WINUSERAPI WORD WINAPI SetWindowWord(HWND hWnd, int nIndex, WORD wNewWord);
WINUSERAPI HANDLE WINAPI GetPropA(HWND hWnd, LPCSTR lpString);
WINUSERAPI HANDLE WINAPI GetPropW(HWND hWnd, LPCWSTR lpString);
WINUSERAPI BOOL WINAPI SetPropA(HWND hWnd, LPCSTR lpString, HANDLE hData);
WINUSERAPI BOOL WINAPI SetPropW(HWND hWnd, LPCWSTR lpString, HANDLE hData);
WINUSERAPI HANDLE WINAPI RemovePropA(HWND hWnd, LPCSTR lpString);
WINUSERAPI HANDLE WINAPI RemovePropW(HWND hWnd, LPCWSTR lpString);
WINUSERAPI int WINAPI EnumPropsA(HWND hWnd, PROPENUMPROCA lpEnumFunc);
WINUSERAPI int WINAPI EnumPropsW(HWND hWnd, PROPENUMPROCW lpEnumFunc);
WINUSERAPI int WINAPI EnumPropsExA(HWND hWnd, PROPENUMPROCEXA lpEnumFunc, LPARAM lParam);
WINUSERAPI int WINAPI EnumPropsExW(HWND hWnd, PROPENUMPROCEXW lpEnumFunc, LPARAM lParam);
WINUSERAPI BOOL WINAPI SetWindowContextHelpId(HWND hWnd, DWORD dwContextHelpId);
WINUSERAPI DWORD WINAPI GetWindowContextHelpId(HWND hWnd);

/* Window text. */
WINUSERAPI BOOL WINAPI SetWindowTextA(HWND hWnd, LPCSTR lpString);
WINUSERAPI BOOL WINAPI SetWindowTextW(HWND hWnd, LPCWSTR lpString);
WINUSERAPI int WINAPI GetWindowTextA(HWND hWnd, LPSTR lpString, int nMaxCount);
WINUSERAPI int WINAPI GetWindowTextW(HWND hWnd, LPWSTR lpString, int nMaxCount);
WINUSERAPI int WINAPI GetWindowTextLengthA(HWND hWnd);
WINUSERAPI int WINAPI GetWindowTextLengthW(HWND hWnd);
WINUSERAPI int WINAPI InternalGetWindowText(HWND hWnd, LPWSTR pString, int cchMaxCount);
WINUSERAPI UINT WINAPI GetWindowModuleFileNameA(HWND hwnd, LPSTR pszFileName, UINT cchFileNameMax);
WINUSERAPI UINT WINAPI GetWindowModuleFileNameW(HWND hwnd, LPWSTR pszFileName, UINT cchFileNameMax);

/* Showing, sizing and stacking windows. */
WINUSERAPI BOOL WINAPI ShowWindow(HWND hWnd, int nCmdShow);
WINUSERAPI BOOL WINAPI ShowWindowAsync(HWND hWnd, int nCmdShow);
WINUSERAPI BOOL WINAPI ShowOwnedPopups(HWND hWnd, BOOL fShow);
WINUSERAPI BOOL WINAPI AnimateWindow(HWND hWnd, DWORD dwTime, DWORD dwFlags);
WINUSERAPI BOOL WINAPI MoveWindow(HWND hWnd, int X, int Y, int nWidth, int nHeight, BOOL bRepaint);
WINUSERAPI BOOL WINAPI SetWindowPos(HWND hWnd, HWND hWndInsertAfter, int X, int Y, int cx, int cy,
                                    UINT uFlags);
WINUSERAPI HDWP WINAPI BeginDeferWindowPos(int nNumWindows);
WINUSERAPI HDWP WINAPI DeferWindowPos(HDWP hWinPosInfo, HWND hWnd, HWND hWndInsertAfter, int x,
                                      int y, int cx, int cy, UINT uFlags);
WINUSERAPI BOOL WINAPI EndDeferWindowPos(HDWP hWinPosInfo);
WINUSERAPI BOOL WINAPI GetWindowPlacement(HWND hWnd, WINDOWPLACEMENT *lpwndpl);
WINUSERAPI BOOL WINAPI SetWindowPlacement(HWND hWnd, const WINDOWPLACEMENT *lpwndpl);
WINUSERAPI BOOL WINAPI BringWindowToTop(HWND hWnd);
WINUSERAPI BOOL WINAPI CloseWindow(HWND hWnd);
WINUSERAPI BOOL WINAPI OpenIcon(HWND hWnd);
WINUSERAPI BOOL WINAPI IsIconic(HWND hWnd);
WINUSERAPI BOOL WINAPI IsZoomed(HWND hWnd);
WINUSERAPI BOOL WINAPI IsWindowVisible(HWND hWnd);
WINUSERAPI BOOL WINAPI AnyPopup(void);
WINUSERAPI UINT WINAPI ArrangeIconicWindows(HWND hWnd);
WINUSERAPI WORD WINAPI CascadeWindows(HWND hwndParent, UINT wHow, const RECT *lpRect, UINT cKids,
                                      const HWND *lpKids);
WINUSERAPI WORD WINAPI TileWindows(HWND hwndParent, UINT wHow, const RECT *lpRect, UINT cKids,
                                   const HWND *lpKids);
WINUSERAPI BOOL WINAPI FlashWindow(HWND hWnd, BOOL bInvert);
WINUSERAPI BOOL WINAPI FlashWindowEx(PFLASHWINFO pfwi);
WINUSERAPI BOOL WINAPI SetLayeredWindowAttributes(HWND hwnd, COLORREF crKey, BYTE bAlpha,
                                                  DWORD dwFlags);
WINUSERAPI BOOL WINAPI GetLayeredWindowAttributes(HWND hwnd, COLORREF *pcrKey, BYTE *pbAlpha,
                                                  DWORD *pdwFlags);
WINUSERAPI BOOL WINAPI IsHungAppWindow(HWND hwnd);

/* Window geometry and coordinates. */
WINUSERAPI BOOL WINAPI GetWindowRect(HWND hWnd, LPRECT lpRect);
WINUSERAPI BOOL WINAPI GetClientRect(HWND hWnd, LPRECT lpRect);
WINUSERAPI BOOL WINAPI GetWindowInfo(HWND hwnd, PWINDOWINFO pwi);
WINUSERAPI BOOL WINAPI GetTitleBarInfo(HWND hwnd, PTITLEBARINFO pti);
WINUSERAPI BOOL WINAPI AdjustWindowRect(LPRECT lpRect, DWORD dwStyle, BOOL bMenu);
WINUSERAPI BOOL WINAPI AdjustWindowRectEx(LPRECT lpRect, DWORD dwStyle, BOOL bMenu,
                                          DWORD dwExStyle);
WINUSERAPI BOOL WINAPI ClientToScreen(HWND hWnd, LPPOINT lpPoint);
WINUSERAPI BOOL WINAPI ScreenToClient(HWND hWnd, LPPOINT lpPoint);
WINUSERAPI int WINAPI MapWindowPoints(HWND hWndFrom, HWND hWndTo, LPPOINT lpPoints, UINT cPoints);
WINUSERAPI HWND WINAPI WindowFromPoint(POINT Point);
WINUSERAPI HWND WINAPI ChildWindowFromPoint(HWND hWndParent, POINT Point);
WINUSERAPI HWND WINAPI ChildWindowFromPointEx(HWND hwnd, POINT pt, UINT flags);
WINUSERAPI HWND WINAPI RealChildWindowFromPoint(HWND hwndParent, POINT ptParentClientCoords);
WINUSERAPI int WINAPI SetWindowRgn(HWND hWnd, HRGN hRgn, BOOL bRedraw);
WINUSERAPI int WINAPI GetWindowRgn(HWND hWnd, HRGN hRgn);
WINUSERAPI int WINAPI GetWindowRgnBox(HWND hWnd, LPRECT lprc);

/* Window relationships and enumeration. */
WINUSERAPI HWND WINAPI GetParent(HWND hWnd);
WINUSERAPI HWND WINAPI SetParent(HWND hWndChild, HWND hWndNewParent);
WINUSERAPI HWND WINAPI GetAncestor(HWND hwnd, UINT gaFlags);
WINUSERAPI BOOL WINAPI IsChild(HWND hWndParent, HWND hWnd);
WINUSERAPI HWND WINAPI GetWindow(HWND hWnd, UINT uCmd);
#define GetNextWindow(hWnd, wCmd) GetWindow(hWnd, wCmd)
WINUSERAPI HWND WINAPI GetTopWindow(HWND hWnd);
WINUSERAPI HWND WINAPI GetLastActivePopup(HWND hWnd);
WINUSERAPI HWND WINAPI GetDesktopWindow(void);
WINUSERAPI HWND WINAPI GetShellWindow(void);
WINUSERAPI HWND WINAPI FindWindowA(LPCSTR lpClassName, LPCSTR lpWindowName);
WINUSERAPI HWND WINAPI FindWindowW(LPCWSTR lpClassName, LPCWSTR lpWindowName);
WINUSERAPI HWND WINAPI FindWindowExA(HWND hWndParent, HWND hWndChildAfter, LPCSTR lpszClass,
                                     LPCSTR lpszWindow);
WINUSERAPI HWND WINAPI FindWindowExW(HWND hWndParent, HWND hWndChildAfter, LPCWSTR lpszClass,
                                     LPCWSTR lpszWindow);
WINUSERAPI BOOL WINAPI EnumWindows(WNDENUMPROC lpEnumFunc, LPARAM lParam);
WINUSERAPI BOOL WINAPI EnumChildWindows(HWND hWndParent, WNDENUMPROC lpEnumFunc, LPARAM lParam);
WINUSERAPI BOOL WINAPI EnumThreadWindows(DWORD dwThreadId, WNDENUMPROC lpfn, LPARAM lParam);
#define EnumTaskWindows(hTask, lpfn, lParam)                                                       \
    EnumThreadWindows((DWORD)(ULONG_PTR)(hTask), lpfn, lParam)
WINUSERAPI DWORD WINAPI GetWindowThreadProcessId(HWND hWnd, LPDWORD lpdwProcessId);
#define GetWindowTask(hWnd) ((HANDLE)(DWORD_PTR)GetWindowThreadProcessId(hWnd, NULL))

/* Activation, focus, capture and enabling. */
WINUSERAPI BOOL WINAPI EnableWindow(HWND hWnd, BOOL bEnable);
WINUSERAPI BOOL WINAPI IsWindowEnabled(HWND hWnd);
WINUSERAPI HWND WINAPI SetActiveWindow(HWND hWnd);
WINUSERAPI HWND WINAPI GetActiveWindow(void);
WINUSERAPI HWND WINAPI GetForegroundWindow(void);
WINUSERAPI BOOL WINAPI SetForegroundWindow(HWND hWnd);
WINUSERAPI BOOL WINAPI AllowSetForegroundWindow(DWORD dwProcessId);
WINUSERAPI BOOL WINAPI LockSetForegroundWindow(UINT uLockCode);
WINUSERAPI VOID WINAPI SwitchToThisWindow(HWND hwnd, BOOL fUnknown);
WINUSERAPI HWND WINAPI SetFocus(HWND hWnd);
WINUSERAPI HWND WINAPI GetFocus(void);
WINUSERAPI HWND WINAPI GetCapture(void);
WINUSERAPI HWND WINAPI SetCapture(HWND hWnd);
WINUSERAPI BOOL WINAPI ReleaseCapture(void);
WINUSERAPI BOOL WINAPI AttachThreadInput(DWORD idAttach, DWORD idAttachTo, BOOL fAttach);
WINUSERAPI BOOL WINAPI GetGUIThreadInfo(DWORD idThread, PGUITHREADINFO pgui);
WINUSERAPI BOOL WINAPI IsGUIThread(BOOL bConvert);
WINUSERAPI UINT WINAPI GetAltTabInfoA(HWND hwnd, int iItem, PALTTABINFO pati, LPSTR pszItemText,
                                      UINT cchItemText);
WINUSERAPI UINT WINAPI GetAltTabInfoW(HWND hwnd, int iItem, PALTTABINFO pati, LPWSTR pszItemText,
                                      UINT cchItemText);

/* Messages and the message queue. */
WINUSERAPI BOOL WINAPI GetMessageA(LPMSG lpMsg, HWND hWnd, UINT wMsgFilterMin, UINT wMsgFilterMax);
WINUSERAPI BOOL WINAPI GetMessageW(LPMSG lpMsg, HWND hWnd, UINT wMsgFilterMin, UINT wMsgFilterMax);
WINUSERAPI BOOL WINAPI PeekMessageA(LPMSG lpMsg, HWND hWnd, UINT wMsgFilterMin, UINT wMsgFilterMax,
                                    UINT wRemoveMsg);
WINUSERAPI BOOL WINAPI PeekMessageW(LPMSG lpMsg, HWND hWnd, UINT wMsgFilterMin, UINT wMsgFilterMax,
                                    UINT wRemoveMsg);
WINUSERAPI BOOL WINAPI TranslateMessage(const MSG *lpMsg);
WINUSERAPI LRESULT WINAPI DispatchMessageA(const MSG *lpMsg);
WINUSERAPI LRESULT WINAPI DispatchMessageW(const MSG *lpMsg);
WINUSERAPI LRESULT WINAPI SendMessageA(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam);
WINUSERAPI LRESULT WINAPI SendMessageW(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam);
WINUSERAPI LRESULT WINAPI SendMessageTimeoutA(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam,
                                              UINT fuFlags, UINT uTimeout, PDWORD_PTR lpdwResult);
WINUSERAPI LRESULT WINAPI SendMessageTimeoutW(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam,
                                              UINT fuFlags, UINT uTimeout, PDWORD_PTR lpdwResult);
WINUSERAPI BOOL WINAPI SendNotifyMessageA(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam);
WINUSERAPI BOOL WINAPI SendNotifyMessageW(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam);
WINUSERAPI BOOL WINAPI SendMessageCallbackA(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam,
                                            SENDASYNCPROC lpResultCallBack, ULONG_PTR dwData);
WINUSERAPI BOOL WINAPI SendMessageCallbackW(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam,
                                            SENDASYNCPROC lpResultCallBack, ULONG_PTR dwData);
WINUSERAPI BOOL WINAPI PostMessageA(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam);
WINUSERAPI BOOL WINAPI PostMessageW(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam);
WINUSERAPI BOOL WINAPI PostThreadMessageA(DWORD idThread, UINT Msg, WPARAM wParam, LPARAM lParam);
WINUSERAPI BOOL WINAPI PostThreadMessageW(DWORD idThread, UINT Msg, WPARAM wParam, LPARAM lParam);
#define PostAppMessageA(idThread, wMsg, wParam, lParam)                                            \
    PostThreadMessageA((DWORD)(idThread), wMsg, wParam, lParam)
#define PostAppMessageW(idThread, wMsg, wParam, lParam)                                            \
    PostThreadMessageW((DWORD)(idThread), wMsg, wParam, lParam)
WINUSERAPI VOID WINAPI PostQuitMessage(int nExitCode);
WINUSERAPI LONG WINAPI BroadcastSystemMessageA(DWORD flags, LPDWORD lpInfo, UINT Msg, WPARAM wParam,
                                               LPARAM lParam);
WINUSERAPI LONG WINAPI BroadcastSystemMessageW(DWORD flags, LPDWORD lpInfo, UINT Msg, WPARAM wParam,
                                               LPARAM lParam);
WINUSERAPI BOOL WINAPI ReplyMessage(LRESULT lResult);
WINUSERAPI BOOL WINAPI InSendMessage(void);
WINUSERAPI DWORD WINAPI InSendMessageEx(LPVOID lpReserved);
WINUSERAPI BOOL WINAPI WaitMessage(void);
WINUSERAPI DWORD WINAPI GetMessagePos(void);
WINUSERAPI LONG WINAPI GetMessageTime(void);
WINUSERAPI LPARAM WINAPI GetMessageExtraInfo(void);
WINUSERAPI LPARAM WINAPI SetMessageExtraInfo(LPARAM lParam);
WINUSERAPI DWORD WINAPI GetQueueStatus(UINT flags);
WINUSERAPI BOOL WINAPI GetInputState(void);
WINUSERAPI DWORD WINAPI MsgWaitForMultipleObjects(DWORD nCount, const HANDLE *pHandles,
                                                  BOOL fWaitAll, DWORD dwMilliseconds,
                                                  DWORD dwWakeMask);
WINUSERAPI DWORD WINAPI MsgWaitForMultipleObjectsEx(DWORD nCount, const HANDLE *pHandles,
                                                    DWORD dwMilliseconds, DWORD dwWakeMask,
                                                    DWORD dwFlags);
WINUSERAPI DWORD WINAPI WaitForInputIdle(HANDLE hProcess, DWORD dwMilliseconds);
WINUSERAPI UINT WINAPI RegisterWindowMessageA(LPCSTR lpString);
WINUSERAPI UINT WINAPI RegisterWindowMessageW(LPCWSTR lpString);
WINUSERAPI BOOL WINAPI CallMsgFilterA(LPMSG lpMsg, int nCode);
WINUSERAPI BOOL WINAPI CallMsgFilterW(LPMSG lpMsg, int nCode);

/* Timers. */
WINUSERAPI UINT_PTR WINAPI SetTimer(HWND hWnd, UINT_PTR nIDEvent, UINT uElapse,
                                    TIMERPROC lpTimerFunc);
WINUSERAPI BOOL WINAPI KillTimer(HWND hWnd, UINT_PTR uIDEvent);

/* Hooks. */
WINUSERAPI HHOOK WINAPI SetWindowsHookA(int nFilterType, HOOKPROC pfnFilterProc);
WINUSERAPI HHOOK WINAPI SetWindowsHookW(int nFilterType, HOOKPROC pfnFilterProc);
WINUSERAPI HHOOK WINAPI SetWindowsHookExA(int idHook, HOOKPROC lpfn, HINSTANCE hmod,
                                          DWORD dwThreadId);
WINUSERAPI HHOOK WINAPI SetWindowsHookExW(int idHook, HOOKPROC lpfn, HINSTANCE hmod,
                                          DWORD dwThreadId);
WINUSERAPI BOOL WINAPI UnhookWindowsHook(int nCode, HOOKPROC pfnFilterProc);
WINUSERAPI BOOL WINAPI UnhookWindowsHookEx(HHOOK hhk);
WINUSERAPI LRESULT WINAPI CallNextHookEx(HHOOK hhk, int nCode, WPARAM wParam, LPARAM lParam);
#define DefHookProc(nCode, wParam, lParam, phhk) CallNextHookEx(*(phhk), nCode, wParam, lParam)

/* Painting and device contexts. */
WINUSERAPI HDC WINAPI BeginPaint(HWND hWnd, LPPAINTSTRUCT lpPaint);
WINUSERAPI BOOL WINAPI EndPaint(HWND hWnd, const PAINTSTRUCT *lpPaint);
WINUSERAPI BOOL WINAPI GetUpdateRect(HWND hWnd, LPRECT lpRect, BOOL bErase);
WINUSERAPI int WINAPI GetUpdateRgn(HWND hWnd, HRGN hRgn, BOOL bErase);
WINUSERAPI int WINAPI ExcludeUpdateRgn(HDC hDC, HWND hWnd);
WINUSERAPI BOOL WINAPI InvalidateRect(HWND hWnd, const RECT *lpRect, BOOL bErase);
WINUSERAPI BOOL WINAPI ValidateRect(HWND hWnd, const RECT *lpRect);
WINUSERAPI BOOL WINAPI InvalidateRgn(HWND hWnd, HRGN hRgn, BOOL bErase);
WINUSERAPI BOOL WINAPI ValidateRgn(HWND hWnd, HRGN hRgn);
WINUSERAPI BOOL WINAPI RedrawWindow(HWND hWnd, const RECT *lprcUpdate, HRGN hrgnUpdate, UINT flags);
WINUSERAPI BOOL WINAPI UpdateWindow(HWND hWnd);
WINUSERAPI BOOL WINAPI LockWindowUpdate(HWND hWndLock);
WINUSERAPI HDC WINAPI GetDC(HWND hWnd);
WINUSERAPI HDC WINAPI GetDCEx(HWND hWnd, HRGN hrgnClip, DWORD flags);
WINUSERAPI HDC WINAPI GetWindowDC(HWND hWnd);
WINUSERAPI int WINAPI ReleaseDC(HWND hWnd, HDC hDC);
WINUSERAPI HWND WINAPI WindowFromDC(HDC hDC);
WINUSERAPI BOOL WINAPI PrintWindow(HWND hwnd, HDC hdcBlt, UINT nFlags);
WINUSERAPI BOOL WINAPI PaintDesktop(HDC hdc);
WINUSERAPI BOOL WINAPI ScrollWindow(HWND hWnd, int XAmount, int YAmount, const RECT *lpRect,
                                    const RECT *lpClipRect);
WINUSERAPI int WINAPI ScrollWindowEx(HWND hWnd, int dx, int dy, const RECT *prcScroll,
                                     const RECT *prcClip, HRGN hrgnUpdate, LPRECT prcUpdate,
                                     UINT flags);
WINUSERAPI BOOL WINAPI ScrollDC(HDC hDC, int dx, int dy, const RECT *lprcScroll,
                                const RECT *lprcClip, HRGN hrgnUpdate, LPRECT lprcUpdate);

/* Drawing helpers. */
WINUSERAPI int WINAPI FillRect(HDC hDC, const RECT *lprc, HBRUSH hbr);
WINUSERAPI int WINAPI FrameRect(HDC hDC, const RECT *lprc, HBRUSH hbr);
WINUSERAPI BOOL WINAPI InvertRect(HDC hDC, const RECT *lprc);
WINUSERAPI BOOL WINAPI DrawFocusRect(HDC hDC, const RECT *lprc);
WINUSERAPI BOOL WINAPI DrawEdge(HDC hdc, LPRECT qrc, UINT edge, UINT grfFlags);
WINUSERAPI BOOL WINAPI DrawFrameControl(HDC hdc, LPRECT lprc, UINT uType, UINT uState);
WINUSERAPI BOOL WINAPI DrawCaption(HWND hwnd, HDC hdc, const RECT *lprect, UINT flags);
WINUSERAPI BOOL WINAPI DrawAnimatedRects(HWND hwnd, int idAni, const RECT *lprcFrom,
                                         const RECT *lprcTo);
WINUSERAPI BOOL WINAPI DrawIcon(HDC hDC, int X, int Y, HICON hIcon);
WINUSERAPI BOOL WINAPI DrawIconEx(HDC hdc, int xLeft, int yTop, HICON hIcon, int cxWidth,
                                  int cyWidth, UINT istepIfAniCur, HBRUSH hbrFlickerFreeDraw,
                                  UINT diFlags);
WINUSERAPI BOOL WINAPI DrawStateA(HDC hdc, HBRUSH hbrFore, DRAWSTATEPROC qfnCallBack, LPARAM lData,
                                  WPARAM wData, int x, int y, int cx, int cy, UINT uFlags);
WINUSERAPI BOOL WINAPI DrawStateW(HDC hdc, HBRUSH hbrFore, DRAWSTATEPROC qfnCallBack, LPARAM lData,
                                  WPARAM wData, int x, int y, int cx, int cy, UINT uFlags);
WINUSERAPI int WINAPI DrawTextA(HDC hdc, LPCSTR lpchText, int cchText, LPRECT lprc, UINT format);
WINUSERAPI int WINAPI DrawTextW(HDC hdc, LPCWSTR lpchText, int cchText, LPRECT lprc, UINT format);
WINUSERAPI int WINAPI DrawTextExA(HDC hdc, LPSTR lpchText, int cchText, LPRECT lprc, UINT format,
                                  LPDRAWTEXTPARAMS lpdtp);
WINUSERAPI int WINAPI DrawTextExW(HDC hdc, LPWSTR lpchText, int cchText, LPRECT lprc, UINT format,
                                  LPDRAWTEXTPARAMS lpdtp);
WINUSERAPI BOOL WINAPI GrayStringA(HDC hDC, HBRUSH hBrush, GRAYSTRINGPROC lpOutputFunc,
                                   LPARAM lpData, int nCount, int X, int Y, int nWidth,
                                   int nHeight);
WINUSERAPI BOOL WINAPI GrayStringW(HDC hDC, HBRUSH hBrush, GRAYSTRINGPROC lpOutputFunc,
                                   LPARAM lpData, int nCount, int X, int Y, int nWidth,
                                   int nHeight);
WINUSERAPI LONG WINAPI TabbedTextOutA(HDC hdc, int x, int y, LPCSTR lpString, int chCount,
                                      int nTabPositions, const INT *lpnTabStopPositions,
                                      int nTabOrigin);
WINUSERAPI LONG WINAPI TabbedTextOutW(HDC hdc, int x, int y, LPCWSTR lpString, int chCount,
                                      int nTabPositions, const INT *lpnTabStopPositions,
                                      int nTabOrigin);
WINUSERAPI DWORD WINAPI GetTabbedTextExtentA(HDC hdc, LPCSTR lpString, int chCount,
                                             int nTabPositions, const INT *lpnTabStopPositions);
WINUSERAPI DWORD WINAPI GetTabbedTextExtentW(HDC hdc, LPCWSTR lpString, int chCount,
                                             int nTabPositions, const INT *lpnTabStopPositions);

/* Rectangles. */
WINUSERAPI BOOL WINAPI SetRect(LPRECT lprc, int xLeft, int yTop, int xRight, int yBottom);
WINUSERAPI BOOL WINAPI SetRectEmpty(LPRECT lprc);
WINUSERAPI BOOL WINAPI CopyRect(LPRECT lprcDst, const RECT *lprcSrc);
WINUSERAPI BOOL WINAPI InflateRect(LPRECT lprc, int dx, int dy);
WINUSERAPI BOOL WINAPI OffsetRect(LPRECT lprc, int dx, int dy);
WINUSERAPI BOOL WINAPI IntersectRect(LPRECT lprcDst, const RECT *lprcSrc1, const RECT *lprcSrc2);
WINUSERAPI BOOL WINAPI UnionRect(LPRECT lprcDst, const RECT *lprcSrc1, const RECT *lprcSrc2);
WINUSERAPI BOOL WINAPI SubtractRect(LPRECT lprcDst, const RECT *lprcSrc1, const RECT *lprcSrc2);
WINUSERAPI BOOL WINAPI IsRectEmpty(const RECT *lprc);
WINUSERAPI BOOL WINAPI EqualRect(const RECT *lprc1, const RECT *lprc2);
WINUSERAPI BOOL WINAPI PtInRect(const RECT *lprc, POINT pt);

/* Menus. */
WINUSERAPI HMENU WINAPI CreateMenu(void);
WINUSERAPI HMENU WINAPI CreatePopupMenu(void);
WINUSERAPI BOOL WINAPI DestroyMenu(HMENU hMenu);
WINUSERAPI HMENU WINAPI LoadMenuA(HINSTANCE hInstance, LPCSTR lpMenuName);
WINUSERAPI HMENU WINAPI LoadMenuW(HINSTANCE hInstance, LPCWSTR lpMenuName);
WINUSERAPI HMENU WINAPI LoadMenuIndirectA(const MENUTEMPLATEA *lpMenuTemplate);
WINUSERAPI HMENU WINAPI LoadMenuIndirectW(const MENUTEMPLATEW *lpMenuTemplate);
WINUSERAPI HMENU WINAPI GetMenu(HWND hWnd);
WINUSERAPI BOOL WINAPI SetMenu(HWND hWnd, HMENU hMenu);
WINUSERAPI BOOL WINAPI IsMenu(HMENU hMenu);
WINUSERAPI HMENU WINAPI GetSystemMenu(HWND hWnd, BOOL bRevert);
WINUSERAPI HMENU WINAPI GetSubMenu(HMENU hMenu, int nPos);
WINUSERAPI BOOL WINAPI DrawMenuBar(HWND hWnd);
WINUSERAPI BOOL WINAPI AppendMenuA(HMENU hMenu, UINT uFlags, UINT_PTR uIDNewItem, LPCSTR lpNewItem);
WINUSERAPI BOOL WINAPI AppendMenuW(HMENU hMenu, UINT uFlags, UINT_PTR uIDNewItem,
                                   LPCWSTR lpNewItem);
WINUSERAPI BOOL WINAPI InsertMenuA(HMENU hMenu, UINT uPosition, UINT uFlags, UINT_PTR uIDNewItem,
                                   LPCSTR lpNewItem);
WINUSERAPI BOOL WINAPI InsertMenuW(HMENU hMenu, UINT uPosition, UINT uFlags, UINT_PTR uIDNewItem,
                                   LPCWSTR lpNewItem);
WINUSERAPI BOOL WINAPI ModifyMenuA(HMENU hMnu, UINT uPosition, UINT uFlags, UINT_PTR uIDNewItem,
                                   LPCSTR lpNewItem);
WINUSERAPI BOOL WINAPI ModifyMenuW(HMENU hMnu, UINT uPosition, UINT uFlags, UINT_PTR uIDNewItem,
                                   LPCWSTR lpNewItem);
WINUSERAPI BOOL WINAPI ChangeMenuA(HMENU hMenu, UINT cmd, LPCSTR lpszNewItem, UINT cmdInsert,
                                   UINT flags);
WINUSERAPI BOOL WINAPI ChangeMenuW(HMENU hMenu, UINT cmd, LPCWSTR lpszNewItem, UINT cmdInsert,
                                   UINT flags);
WINUSERAPI BOOL WINAPI RemoveMenu(HMENU hMenu, UINT uPosition, UINT uFlags);
WINUSERAPI BOOL WINAPI DeleteMenu(HMENU hMenu, UINT uPosition, UINT uFlags);
WINUSERAPI BOOL WINAPI InsertMenuItemA(HMENU hmenu, UINT item, BOOL fByPosition,
                                       LPCMENUITEMINFOA lpmi);
WINUSERAPI BOOL WINAPI InsertMenuItemW(HMENU hmenu, UINT item, BOOL fByPosition,
                                       LPCMENUITEMINFOW lpmi);
WINUSERAPI BOOL WINAPI GetMenuItemInfoA(HMENU hmenu, UINT item, BOOL fByPosition,
                                        LPMENUITEMINFOA lpmii);
WINUSERAPI BOOL WINAPI GetMenuItemInfoW(HMENU hmenu, UINT item, BOOL fByPosition,
                                        LPMENUITEMINFOW lpmii);
WINUSERAPI BOOL WINAPI SetMenuItemInfoA(HMENU hmenu, UINT item, BOOL fByPositon,
                                        LPCMENUITEMINFOA lpmii);
WINUSERAPI BOOL WINAPI SetMenuItemInfoW(HMENU hmenu, UINT item, BOOL fByPositon,
                                        LPCMENUITEMINFOW lpmii);
WINUSERAPI BOOL WINAPI GetMenuInfo(HMENU hmenu, LPMENUINFO lpmi);
WINUSERAPI BOOL WINAPI SetMenuInfo(HMENU hmenu, LPCMENUINFO lpmi);
WINUSERAPI int WINAPI GetMenuItemCount(HMENU hMenu);
WINUSERAPI UINT WINAPI GetMenuItemID(HMENU hMenu, int nPos);
WINUSERAPI UINT WINAPI GetMenuState(HMENU hMenu, UINT uId, UINT uFlags);
WINUSERAPI int WINAPI GetMenuStringA(HMENU hMenu, UINT uIDItem, LPSTR lpString, int cchMax,
                                     UINT flags);
WINUSERAPI int WINAPI GetMenuStringW(HMENU hMenu, UINT uIDItem, LPWSTR lpString, int cchMax,
                                     UINT flags);
WINUSERAPI BOOL WINAPI GetMenuItemRect(HWND hWnd, HMENU hMenu, UINT uItem, LPRECT lprcItem);
WINUSERAPI int WINAPI MenuItemFromPoint(HWND hWnd, HMENU hMenu, POINT ptScreen);
WINUSERAPI DWORD WINAPI CheckMenuItem(HMENU hMenu, UINT uIDCheckItem, UINT uCheck);
WINUSERAPI BOOL WINAPI CheckMenuRadioItem(HMENU hmenu, UINT first, UINT last, UINT check,
                                          UINT flags);
WINUSERAPI BOOL WINAPI EnableMenuItem(HMENU hMenu, UINT uIDEnableItem, UINT uEnable);
WINUSERAPI BOOL WINAPI HiliteMenuItem(HWND hWnd, HMENU hMenu, UINT uIDHiliteItem, UINT uHilite);
WINUSERAPI UINT WINAPI GetMenuDefaultItem(HMENU hMenu, UINT fByPos, UINT gmdiFlags);
WINUSERAPI BOOL WINAPI SetMenuDefaultItem(HMENU hMenu, UINT uItem, UINT fByPos);
WINUSERAPI BOOL WINAPI SetMenuItemBitmaps(HMENU hMenu, UINT uPosition, UINT uFlags,
                                          HBITMAP hBitmapUnchecked, HBITMAP hBitmapChecked);
WINUSERAPI LONG WINAPI GetMenuCheckMarkDimensions(void);
WINUSERAPI BOOL WINAPI SetMenuContextHelpId(HMENU hmenu, DWORD dwContextHelpId);
WINUSERAPI DWORD WINAPI GetMenuContextHelpId(HMENU hmenu);
WINUSERAPI BOOL WINAPI GetMenuBarInfo(HWND hwnd, LONG idObject, LONG idItem, PMENUBARINFO pmbi);
WINUSERAPI BOOL WINAPI TrackPopupMenu(HMENU hMenu, UINT uFlags, int x, int y, int nReserved,
                                      HWND hWnd, const RECT *prcRect);
WINUSERAPI BOOL WINAPI TrackPopupMenuEx(HMENU hMenu, UINT uFlags, int x, int y, HWND hwnd,
                                        LPTPMPARAMS lptpm);
WINUSERAPI BOOL WINAPI EndMenu(void);

/* Dialog boxes. */
WINUSERAPI HWND WINAPI CreateDialogParamA(HINSTANCE hInstance, LPCSTR lpTemplateName,
                                          HWND hWndParent, DLGPROC lpDialogFunc,
                                          LPARAM dwInitParam);
WINUSERAPI HWND WINAPI CreateDialogParamW(HINSTANCE hInstance, LPCWSTR lpTemplateName,
                                          HWND hWndParent, DLGPROC lpDialogFunc,
                                          LPARAM dwInitParam);
WINUSERAPI HWND WINAPI CreateDialogIndirectParamA(HINSTANCE hInstance, LPCDLGTEMPLATEA lpTemplate,
                                                  HWND hWndParent, DLGPROC lpDialogFunc,
                                                  LPARAM dwInitParam);
WINUSERAPI HWND WINAPI CreateDialogIndirectParamW(HINSTANCE hInstance, LPCDLGTEMPLATEW lpTemplate,
                                                  HWND hWndParent, DLGPROC lpDialogFunc,
                                                  LPARAM dwInitParam);
#define CreateDialogA(hInstance, lpName, hWndParent, lpDialogFunc)                                 \
    CreateDialogParamA(hInstance, lpName, hWndParent, lpDialogFunc, 0)
#define CreateDialogW(hInstance, lpName, hWndParent, lpDialogFunc)                                 \
    CreateDialogParamW(hInstance, lpName, hWndParent, lpDialogFunc, 0)
#define CreateDialogIndirectA(hInstance, lpTemplate, hWndParent, lpDialogFunc)                     \
    CreateDialogIndirectParamA(hInstance, lpTemplate, hWndParent, lpDialogFunc, 0)
#define CreateDialogIndirectW(hInstance, lpTemplate, hWndParent, lpDialogFunc)                     \
    CreateDialogIndirectParamW(hInstance, lpTemplate, hWndParent, lpDialogFunc, 0)
WINUSERAPI INT_PTR WINAPI DialogBoxParamA(HINSTANCE hInstance, LPCSTR lpTemplateName,
                                          HWND hWndParent, DLGPROC lpDialogFunc,
                                          LPARAM dwInitParam);
WINUSERAPI INT_PTR WINAPI DialogBoxParamW(HINSTANCE hInstance, LPCWSTR lpTemplateName,
                                          HWND hWndParent, DLGPROC lpDialogFunc,
                                          LPARAM dwInitParam);
WINUSERAPI INT_PTR WINAPI DialogBoxIndirectParamA(HINSTANCE hInstance,
                                                  LPCDLGTEMPLATEA hDialogTemplate, HWND hWndParent,
                                                  DLGPROC lpDialogFunc, LPARAM dwInitParam);
WINUSERAPI INT_PTR WINAPI DialogBoxIndirectParamW(HINSTANCE hInstance,
                                                  LPCDLGTEMPLATEW hDialogTemplate, HWND hWndParent,
                                                  DLGPROC lpDialogFunc, LPARAM dwInitParam);
#define DialogBoxA(hInstance, lpTemplate, hWndParent, lpDialogFunc)                                \
    DialogBoxParamA(hInstance, lpTemplate, hWndParent, lpDialogFunc, 0)
#define DialogBoxW(hInstance, lpTemplate, hWndParent, lpDialogFunc)                                \
    DialogBoxParamW(hInstance, lpTemplate, hWndParent, lpDialogFunc, 0)
#define DialogBoxIndirectA(hInstance, lpTemplate, hWndParent, lpDialogFunc)                        \
    DialogBoxIndirectParamA(hInstance, lpTemplate, hWndParent, lpDialogFunc, 0)
#define DialogBoxIndirectW(hInstance, lpTemplate, hWndParent, lpDialogFunc)                        \
    DialogBoxIndirectParamW(hInstance, lpTemplate, hWndParent, lpDialogFunc, 0)
WINUSERAPI BOOL WINAPI EndDialog(HWND hDlg, INT_PTR nResult);
WINUSERAPI LRESULT WINAPI DefDlgProcA(HWND hDlg, UINT Msg, WPARAM wParam, LPARAM lParam);
WINUSERAPI LRESULT WINAPI DefDlgProcW(HWND hDlg, UINT Msg, WPARAM wParam, LPARAM lParam);
WINUSERAPI BOOL WINAPI IsDialogMessageA(HWND hDlg, LPMSG lpMsg);
WINUSERAPI BOOL WINAPI IsDialogMessageW(HWND hDlg, LPMSG lpMsg);
WINUSERAPI HWND WINAPI GetDlgItem(HWND hDlg, int nIDDlgItem);
WINUSERAPI int WINAPI GetDlgCtrlID(HWND hWnd);
WINUSERAPI BOOL WINAPI SetDlgItemInt(HWND hDlg, int nIDDlgItem, UINT uValue, BOOL bSigned);
WINUSERAPI UINT WINAPI GetDlgItemInt(HWND hDlg, int nIDDlgItem, BOOL *lpTranslated, BOOL bSigned);
WINUSERAPI BOOL WINAPI SetDlgItemTextA(HWND hDlg, int nIDDlgItem, LPCSTR lpString);
WINUSERAPI BOOL WINAPI SetDlgItemTextW(HWND hDlg, int nIDDlgItem, LPCWSTR lpString);
WINUSERAPI UINT WINAPI GetDlgItemTextA(HWND hDlg, int nIDDlgItem, LPSTR lpString, int cchMax);
WINUSERAPI UINT WINAPI GetDlgItemTextW(HWND hDlg, int nIDDlgItem, LPWSTR lpString, int cchMax);
WINUSERAPI LRESULT WINAPI SendDlgItemMessageA(HWND hDlg, int nIDDlgItem, UINT Msg, WPARAM wParam,
                                              LPARAM lParam);
WINUSERAPI LRESULT WINAPI SendDlgItemMessageW(HWND hDlg, int nIDDlgItem, UINT Msg, WPARAM wParam,
                                              LPARAM lParam);
WINUSERAPI BOOL WINAPI CheckDlgButton(HWND hDlg, int nIDButton, UINT uCheck);
WINUSERAPI BOOL WINAPI CheckRadioButton(HWND hDlg, int nIDFirstButton, int nIDLastButton,
                                        int nIDCheckButton);
WINUSERAPI UINT WINAPI IsDlgButtonChecked(HWND hDlg, int nIDButton);
WINUSERAPI HWND WINAPI GetNextDlgGroupItem(HWND hDlg, HWND hCtl, BOOL bPrevious);
WINUSERAPI HWND WINAPI GetNextDlgTabItem(HWND hDlg, HWND hCtl, BOOL bPrevious);
WINUSERAPI LONG WINAPI GetDialogBaseUnits(void);
WINUSERAPI BOOL WINAPI MapDialogRect(HWND hDlg, LPRECT lpRect);
WINUSERAPI int WINAPI DlgDirListA(HWND hDlg, LPSTR lpPathSpec, int nIDListBox, int nIDStaticPath,
                                  UINT uFileType);
WINUSERAPI int WINAPI DlgDirListW(HWND hDlg, LPWSTR lpPathSpec, int nIDListBox, int nIDStaticPath,
                                  UINT uFileType);
WINUSERAPI BOOL WINAPI DlgDirSelectExA(HWND hwndDlg, LPSTR lpString, int chCount, int idListBox);
WINUSERAPI BOOL WINAPI DlgDirSelectExW(HWND hwndDlg, LPWSTR lpString, int chCount, int idListBox);
WINUSERAPI int WINAPI DlgDirListComboBoxA(HWND hDlg, LPSTR lpPathSpec, int nIDComboBox,
                                          int nIDStaticPath, UINT uFiletype);
WINUSERAPI int WINAPI DlgDirListComboBoxW(HWND hDlg, LPWSTR lpPathSpec, int nIDComboBox,
                                          int nIDStaticPath, UINT uFiletype);
WINUSERAPI BOOL WINAPI DlgDirSelectComboBoxExA(HWND hwndDlg, LPSTR lpString, int cchOut,
                                               int idComboBox);
WINUSERAPI BOOL WINAPI DlgDirSelectComboBoxExW(HWND hwndDlg, LPWSTR lpString, int cchOut,
                                               int idComboBox);

/* Message boxes and help. */
WINUSERAPI int WINAPI MessageBoxA(HWND hWnd, LPCSTR lpText, LPCSTR lpCaption, UINT uType);
WINUSERAPI int WINAPI MessageBoxW(HWND hWnd, LPCWSTR lpText, LPCWSTR lpCaption, UINT uType);
WINUSERAPI int WINAPI MessageBoxExA(HWND hWnd, LPCSTR lpText, LPCSTR lpCaption, UINT uType,
                                    WORD wLanguageId);
WINUSERAPI int WINAPI MessageBoxExW(HWND hWnd, LPCWSTR lpText, LPCWSTR lpCaption, UINT uType,
                                    WORD wLanguageId);
WINUSERAPI int WINAPI MessageBoxIndirectA(const MSGBOXPARAMSA *lpmbp);
WINUSERAPI int WINAPI MessageBoxIndirectW(const MSGBOXPARAMSW *lpmbp);
WINUSERAPI int WINAPIV ShellMessageBoxA(HINSTANCE hAppInst, HWND hWnd, LPCSTR lpcText,
                                        LPCSTR lpcTitle, UINT fuStyle, ...);
WINUSERAPI int WINAPIV ShellMessageBoxW(HINSTANCE hAppInst, HWND hWnd, LPCWSTR lpcText,
                                        LPCWSTR lpcTitle, UINT fuStyle, ...);
WINUSERAPI BOOL WINAPI MessageBeep(UINT uType);
WINUSERAPI BOOL WINAPI WinHelpA(HWND hWndMain, LPCSTR lpszHelp, UINT uCommand, ULONG_PTR dwData);
WINUSERAPI BOOL WINAPI WinHelpW(HWND hWndMain, LPCWSTR lpszHelp, UINT uCommand, ULONG_PTR dwData);

/* MDI. */
WINUSERAPI LRESULT WINAPI DefFrameProcA(HWND hWnd, HWND hWndMDIClient, UINT uMsg, WPARAM wParam,
                                        LPARAM lParam);
WINUSERAPI LRESULT WINAPI DefFrameProcW(HWND hWnd, HWND hWndMDIClient, UINT uMsg, WPARAM wParam,
                                        LPARAM lParam);
WINUSERAPI LRESULT WINAPI DefMDIChildProcA(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam);
WINUSERAPI LRESULT WINAPI DefMDIChildProcW(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam);
WINUSERAPI BOOL WINAPI TranslateMDISysAccel(HWND hWndClient, LPMSG lpMsg);
WINUSERAPI HWND WINAPI CreateMDIWindowA(LPCSTR lpClassName, LPCSTR lpWindowName, DWORD dwStyle,
                                        int X, int Y, int nWidth, int nHeight, HWND hWndParent,
                                        HINSTANCE hInstance, LPARAM lParam);
WINUSERAPI HWND WINAPI CreateMDIWindowW(LPCWSTR lpClassName, LPCWSTR lpWindowName, DWORD dwStyle,
                                        int X, int Y, int nWidth, int nHeight, HWND hWndParent,
                                        HINSTANCE hInstance, LPARAM lParam);

/* Accelerators. */
WINUSERAPI HACCEL WINAPI LoadAcceleratorsA(HINSTANCE hInstance, LPCSTR lpTableName);
WINUSERAPI HACCEL WINAPI LoadAcceleratorsW(HINSTANCE hInstance, LPCWSTR lpTableName);
WINUSERAPI HACCEL WINAPI CreateAcceleratorTableA(LPACCEL paccel, int cAccel);
WINUSERAPI HACCEL WINAPI CreateAcceleratorTableW(LPACCEL paccel, int cAccel);
WINUSERAPI BOOL WINAPI DestroyAcceleratorTable(HACCEL hAccel);
WINUSERAPI int WINAPI CopyAcceleratorTableA(HACCEL hAccelSrc, LPACCEL lpAccelDst,
                                            int cAccelEntries);
WINUSERAPI int WINAPI CopyAcceleratorTableW(HACCEL hAccelSrc, LPACCEL lpAccelDst,
                                            int cAccelEntries);
WINUSERAPI int WINAPI TranslateAcceleratorA(HWND hWnd, HACCEL hAccTable, LPMSG lpMsg);
WINUSERAPI int WINAPI TranslateAcceleratorW(HWND hWnd, HACCEL hAccTable, LPMSG lpMsg);

/* Scroll bars and control queries. */
WINUSERAPI int WINAPI SetScrollInfo(HWND hwnd, int nBar, LPCSCROLLINFO lpsi, BOOL redraw);
WINUSERAPI BOOL WINAPI GetScrollInfo(HWND hwnd, int nBar, LPSCROLLINFO lpsi);
WINUSERAPI int WINAPI SetScrollPos(HWND hWnd, int nBar, int nPos, BOOL bRedraw);
WINUSERAPI int WINAPI GetScrollPos(HWND hWnd, int nBar);
WINUSERAPI BOOL WINAPI SetScrollRange(HWND hWnd, int nBar, int nMinPos, int nMaxPos, BOOL bRedraw);
WINUSERAPI BOOL WINAPI GetScrollRange(HWND hWnd, int nBar, LPINT lpMinPos, LPINT lpMaxPos);
WINUSERAPI BOOL WINAPI ShowScrollBar(HWND hWnd, int wBar, BOOL bShow);
WINUSERAPI BOOL WINAPI EnableScrollBar(HWND hWnd, UINT wSBflags, UINT wArrows);
WINUSERAPI BOOL WINAPI GetScrollBarInfo(HWND hwnd, LONG idObject, PSCROLLBARINFO psbi);
WINUSERAPI BOOL WINAPI GetComboBoxInfo(HWND hwndCombo, PCOMBOBOXINFO pcbi);
WINUSERAPI DWORD WINAPI GetListBoxInfo(HWND hwnd);

/* Keyboard. */
WINUSERAPI SHORT WINAPI GetKeyState(int nVirtKey);
WINUSERAPI SHORT WINAPI GetAsyncKeyState(int vKey);
WINUSERAPI BOOL WINAPI GetKeyboardState(PBYTE lpKeyState);
WINUSERAPI BOOL WINAPI SetKeyboardState(LPBYTE lpKeyState);
WINUSERAPI int WINAPI GetKeyNameTextA(LONG lParam, LPSTR lpString, int cchSize);
WINUSERAPI int WINAPI GetKeyNameTextW(LONG lParam, LPWSTR lpString, int cchSize);
WINUSERAPI int WINAPI GetKeyboardType(int nTypeFlag);
WINUSERAPI UINT WINAPI GetKBCodePage(void);
WINUSERAPI UINT WINAPI MapVirtualKeyA(UINT uCode, UINT uMapType);
WINUSERAPI UINT WINAPI MapVirtualKeyW(UINT uCode, UINT uMapType);
WINUSERAPI UINT WINAPI MapVirtualKeyExA(UINT uCode, UINT uMapType, HKL dwhkl);
WINUSERAPI UINT WINAPI MapVirtualKeyExW(UINT uCode, UINT uMapType, HKL dwhkl);
WINUSERAPI SHORT WINAPI VkKeyScanA(CHAR ch);
WINUSERAPI SHORT WINAPI VkKeyScanW(WCHAR ch);
WINUSERAPI SHORT WINAPI VkKeyScanExA(CHAR ch, HKL dwhkl);
WINUSERAPI SHORT WINAPI VkKeyScanExW(WCHAR ch, HKL dwhkl);
WINUSERAPI DWORD WINAPI OemKeyScan(WORD wOemChar);
WINUSERAPI int WINAPI ToAscii(UINT uVirtKey, UINT uScanCode, const BYTE *lpKeyState, LPWORD lpChar,
                              UINT uFlags);
WINUSERAPI int WINAPI ToAsciiEx(UINT uVirtKey, UINT uScanCode, const BYTE *lpKeyState,
                                LPWORD lpChar, UINT uFlags, HKL dwhkl);
WINUSERAPI int WINAPI ToUnicode(UINT wVirtKey, UINT wScanCode, const BYTE *lpKeyState,
                                LPWSTR pwszBuff, int cchBuff, UINT wFlags);
WINUSERAPI int WINAPI ToUnicodeEx(UINT wVirtKey, UINT wScanCode, const BYTE *lpKeyState,
                                  LPWSTR pwszBuff, int cchBuff, UINT wFlags, HKL dwhkl);
WINUSERAPI HKL WINAPI GetKeyboardLayout(DWORD idThread);
WINUSERAPI HKL WINAPI ActivateKeyboardLayout(HKL hkl, UINT Flags);
WINUSERAPI HKL WINAPI LoadKeyboardLayoutA(LPCSTR pwszKLID, UINT Flags);
WINUSERAPI HKL WINAPI LoadKeyboardLayoutW(LPCWSTR pwszKLID, UINT Flags);
WINUSERAPI BOOL WINAPI UnloadKeyboardLayout(HKL hkl);
WINUSERAPI int WINAPI GetKeyboardLayoutList(int nBuff, HKL *lpList);
WINUSERAPI BOOL WINAPI GetKeyboardLayoutNameA(LPSTR pwszKLID);
WINUSERAPI BOOL WINAPI GetKeyboardLayoutNameW(LPWSTR pwszKLID);
WINUSERAPI BOOL WINAPI RegisterHotKey(HWND hWnd, int id, UINT fsModifiers, UINT vk);
WINUSERAPI BOOL WINAPI UnregisterHotKey(HWND hWnd, int id);

/* Mouse and synthesized input. */
WINUSERAPI BOOL WINAPI SwapMouseButton(BOOL fSwap);
WINUSERAPI UINT WINAPI GetDoubleClickTime(void);
WINUSERAPI BOOL WINAPI SetDoubleClickTime(UINT uInterval);
WINUSERAPI BOOL WINAPI DragDetect(HWND hwnd, POINT pt);
WINUSERAPI BOOL WINAPI TrackMouseEvent(LPTRACKMOUSEEVENT lpEventTrack);
WINUSERAPI VOID WINAPI keybd_event(BYTE bVk, BYTE bScan, DWORD dwFlags, ULONG_PTR dwExtraInfo);
WINUSERAPI VOID WINAPI mouse_event(DWORD dwFlags, DWORD dx, DWORD dy, DWORD dwData,
                                   ULONG_PTR dwExtraInfo);
WINUSERAPI UINT WINAPI SendInput(UINT cInputs, LPINPUT pInputs, int cbSize);
WINUSERAPI BOOL WINAPI BlockInput(BOOL fBlockIt);
WINUSERAPI BOOL WINAPI GetLastInputInfo(PLASTINPUTINFO plii);

/* Cursors and the caret. */
WINUSERAPI HCURSOR WINAPI LoadCursorA(HINSTANCE hInstance, LPCSTR lpCursorName);
WINUSERAPI HCURSOR WINAPI LoadCursorW(HINSTANCE hInstance, LPCWSTR lpCursorName);
WINUSERAPI HCURSOR WINAPI LoadCursorFromFileA(LPCSTR lpFileName);
WINUSERAPI HCURSOR WINAPI LoadCursorFromFileW(LPCWSTR lpFileName);
WINUSERAPI HCURSOR WINAPI CreateCursor(HINSTANCE hInst, int xHotSpot, int yHotSpot, int nWidth,
                                       int nHeight, const VOID *pvANDPlane, const VOID *pvXORPlane);
WINUSERAPI BOOL WINAPI DestroyCursor(HCURSOR hCursor);
#define CopyCursor(pcur) ((HCURSOR)CopyIcon((HICON)(pcur)))
WINUSERAPI HCURSOR WINAPI SetCursor(HCURSOR hCursor);
WINUSERAPI HCURSOR WINAPI GetCursor(void);
WINUSERAPI int WINAPI ShowCursor(BOOL bShow);
WINUSERAPI BOOL WINAPI SetCursorPos(int X, int Y);
WINUSERAPI BOOL WINAPI GetCursorPos(LPPOINT lpPoint);
WINUSERAPI BOOL WINAPI GetCursorInfo(PCURSORINFO pci);
WINUSERAPI BOOL WINAPI ClipCursor(const RECT *lpRect);
WINUSERAPI BOOL WINAPI GetClipCursor(LPRECT lpRect);
WINUSERAPI BOOL WINAPI SetSystemCursor(HCURSOR hcur, DWORD id);
WINUSERAPI BOOL WINAPI CreateCaret(HWND hWnd, HBITMAP hBitmap, int nWidth, int nHeight);
WINUSERAPI BOOL WINAPI DestroyCaret(void);
WINUSERAPI BOOL WINAPI HideCaret(HWND hWnd);
WINUSERAPI BOOL WINAPI ShowCaret(HWND hWnd);
WINUSERAPI BOOL WINAPI SetCaretPos(int X, int Y);
WINUSERAPI BOOL WINAPI GetCaretPos(LPPOINT lpPoint);
WINUSERAPI BOOL WINAPI SetCaretBlinkTime(UINT uMSeconds);
WINUSERAPI UINT WINAPI GetCaretBlinkTime(void);

/* Icons, bitmaps, images and strings from resources. */
WINUSERAPI HICON WINAPI LoadIconA(HINSTANCE hInstance, LPCSTR lpIconName);
WINUSERAPI HICON WINAPI LoadIconW(HINSTANCE hInstance, LPCWSTR lpIconName);
WINUSERAPI HBITMAP WINAPI LoadBitmapA(HINSTANCE hInstance, LPCSTR lpBitmapName);
WINUSERAPI HBITMAP WINAPI LoadBitmapW(HINSTANCE hInstance, LPCWSTR lpBitmapName);
WINUSERAPI HANDLE WINAPI LoadImageA(HINSTANCE hInst, LPCSTR name, UINT type, int cx, int cy,
                                    UINT fuLoad);
WINUSERAPI HANDLE WINAPI LoadImageW(HINSTANCE hInst, LPCWSTR name, UINT type, int cx, int cy,
                                    UINT fuLoad);
WINUSERAPI HANDLE WINAPI CopyImage(HANDLE h, UINT type, int cx, int cy, UINT flags);
WINUSERAPI int WINAPI LoadStringA(HINSTANCE hInstance, UINT uID, LPSTR lpBuffer, int cchBufferMax);
WINUSERAPI int WINAPI LoadStringW(HINSTANCE hInstance, UINT uID, LPWSTR lpBuffer, int cchBufferMax);
WINUSERAPI HICON WINAPI CreateIcon(HINSTANCE hInstance, int nWidth, int nHeight, BYTE cPlanes,
                                   BYTE cBitsPixel, const BYTE *lpbANDbits, const BYTE *lpbXORbits);
WINUSERAPI HICON WINAPI CreateIconIndirect(PICONINFO piconinfo);
WINUSERAPI HICON WINAPI CreateIconFromResource(PBYTE presbits, DWORD dwResSize, BOOL fIcon,
                                               DWORD dwVer);
WINUSERAPI HICON WINAPI CreateIconFromResourceEx(PBYTE presbits, DWORD dwResSize, BOOL fIcon,
                                                 DWORD dwVer, int cxDesired, int cyDesired,
                                                 UINT Flags);
WINUSERAPI int WINAPI LookupIconIdFromDirectory(PBYTE presbits, BOOL fIcon);
WINUSERAPI int WINAPI LookupIconIdFromDirectoryEx(PBYTE presbits, BOOL fIcon, int cxDesired,
                                                  int cyDesired, UINT Flags);
WINUSERAPI HICON WINAPI CopyIcon(HICON hIcon);
WINUSERAPI BOOL WINAPI DestroyIcon(HICON hIcon);
WINUSERAPI BOOL WINAPI GetIconInfo(HICON hIcon, PICONINFO piconinfo);

/* Clipboard. */
WINUSERAPI BOOL WINAPI OpenClipboard(HWND hWndNewOwner);
WINUSERAPI BOOL WINAPI CloseClipboard(void);
WINUSERAPI BOOL WINAPI EmptyClipboard(void);
WINUSERAPI HANDLE WINAPI GetClipboardData(UINT uFormat);
WINUSERAPI HANDLE WINAPI SetClipboardData(UINT uFormat, HANDLE hMem);
WINUSERAPI BOOL WINAPI IsClipboardFormatAvailable(UINT format);
WINUSERAPI UINT WINAPI RegisterClipboardFormatA(LPCSTR lpszFormat);
WINUSERAPI UINT WINAPI RegisterClipboardFormatW(LPCWSTR lpszFormat);
WINUSERAPI int WINAPI GetClipboardFormatNameA(UINT format, LPSTR lpszFormatName, int cchMaxCount);
WINUSERAPI int WINAPI GetClipboardFormatNameW(UINT format, LPWSTR lpszFormatName, int cchMaxCount);
WINUSERAPI int WINAPI CountClipboardFormats(void);
WINUSERAPI UINT WINAPI EnumClipboardFormats(UINT format);
WINUSERAPI int WINAPI GetPriorityClipboardFormat(UINT *paFormatPriorityList, int cFormats);
WINUSERAPI HWND WINAPI GetClipboardOwner(void);
WINUSERAPI HWND WINAPI GetOpenClipboardWindow(void);
WINUSERAPI HWND WINAPI GetClipboardViewer(void);
WINUSERAPI HWND WINAPI SetClipboardViewer(HWND hWndNewViewer);
WINUSERAPI BOOL WINAPI ChangeClipboardChain(HWND hWndRemove, HWND hWndNewNext);
WINUSERAPI DWORD WINAPI GetClipboardSequenceNumber(void);
WINUSERAPI BOOL WINAPI AddClipboardFormatListener(HWND hwnd);
WINUSERAPI BOOL WINAPI RemoveClipboardFormatListener(HWND hwnd);

/* Characters and strings in the current code page. */
WINUSERAPI LPSTR WINAPI CharUpperA(LPSTR lpsz);
WINUSERAPI LPWSTR WINAPI CharUpperW(LPWSTR lpsz);
WINUSERAPI LPSTR WINAPI CharLowerA(LPSTR lpsz);
WINUSERAPI LPWSTR WINAPI CharLowerW(LPWSTR lpsz);
WINUSERAPI DWORD WINAPI CharUpperBuffA(LPSTR lpsz, DWORD cchLength);
WINUSERAPI DWORD WINAPI CharUpperBuffW(LPWSTR lpsz, DWORD cchLength);
WINUSERAPI DWORD WINAPI CharLowerBuffA(LPSTR lpsz, DWORD cchLength);
WINUSERAPI DWORD WINAPI CharLowerBuffW(LPWSTR lpsz, DWORD cchLength);
WINUSERAPI LPSTR WINAPI CharNextA(LPCSTR lpsz);
WINUSERAPI LPWSTR WINAPI CharNextW(LPCWSTR lpsz);
WINUSERAPI LPSTR WINAPI CharPrevA(LPCSTR lpszStart, LPCSTR lpszCurrent);
WINUSERAPI LPWSTR WINAPI CharPrevW(LPCWSTR lpszStart, LPCWSTR lpszCurrent);
WINUSERAPI LPSTR WINAPI CharNextExA(WORD CodePage, LPCSTR lpCurrentChar, DWORD dwFlags);
WINUSERAPI LPSTR WINAPI CharPrevExA(WORD CodePage, LPCSTR lpStart, LPCSTR lpCurrentChar,
                                    DWORD dwFlags);
WINUSERAPI BOOL WINAPI IsCharAlphaA(CHAR ch);
WINUSERAPI BOOL WINAPI IsCharAlphaW(WCHAR ch);
WINUSERAPI BOOL WINAPI IsCharAlphaNumericA(CHAR ch);
WINUSERAPI BOOL WINAPI IsCharAlphaNumericW(WCHAR ch);
WINUSERAPI BOOL WINAPI IsCharUpperA(CHAR ch);
WINUSERAPI BOOL WINAPI IsCharUpperW(WCHAR ch);
WINUSERAPI BOOL WINAPI IsCharLowerA(CHAR ch);
WINUSERAPI BOOL WINAPI IsCharLowerW(WCHAR ch);
WINUSERAPI BOOL WINAPI CharToOemA(LPCSTR pSrc, LPSTR pDst);
WINUSERAPI BOOL WINAPI CharToOemW(LPCWSTR pSrc, LPSTR pDst);
WINUSERAPI BOOL WINAPI OemToCharA(LPCSTR pSrc, LPSTR pDst);
WINUSERAPI BOOL WINAPI OemToCharW(LPCSTR pSrc, LPWSTR pDst);
WINUSERAPI BOOL WINAPI CharToOemBuffA(LPCSTR lpszSrc, LPSTR lpszDst, DWORD cchDstLength);
WINUSERAPI BOOL WINAPI CharToOemBuffW(LPCWSTR lpszSrc, LPSTR lpszDst, DWORD cchDstLength);
WINUSERAPI BOOL WINAPI OemToCharBuffA(LPCSTR lpszSrc, LPSTR lpszDst, DWORD cchDstLength);
WINUSERAPI BOOL WINAPI OemToCharBuffW(LPCSTR lpszSrc, LPWSTR lpszDst, DWORD cchDstLength);
#define AnsiToOem CharToOemA
#define OemToAnsi OemToCharA
#define AnsiToOemBuff CharToOemBuffA
#define OemToAnsiBuff OemToCharBuffA
#define AnsiUpper CharUpperA
#define AnsiUpperBuff CharUpperBuffA
#define AnsiLower CharLowerA
#define AnsiLowerBuff CharLowerBuffA
#define AnsiNext CharNextA
#define AnsiPrev CharPrevA
WINUSERAPI int WINAPIV wsprintfA(LPSTR lpOut, LPCSTR lpFmt, ...);
WINUSERAPI int WINAPIV wsprintfW(LPWSTR lpOut, LPCWSTR lpFmt, ...);
WINUSERAPI int WINAPI wvsprintfA(LPSTR lpOut, LPCSTR lpFmt, va_list arglist);
WINUSERAPI int WINAPI wvsprintfW(LPWSTR lpOut, LPCWSTR lpFmt, va_list arglist);

/* System metrics, colours and parameters. */
WINUSERAPI int WINAPI GetSystemMetrics(int nIndex);
WINUSERAPI DWORD WINAPI GetSysColor(int nIndex);
WINUSERAPI HBRUSH WINAPI GetSysColorBrush(int nIndex);
WINUSERAPI BOOL WINAPI SetSysColors(int cElements, const INT *lpaElements,
                                    const COLORREF *lpaRgbValues);
WINUSERAPI BOOL WINAPI SystemParametersInfoA(UINT uiAction, UINT uiParam, PVOID pvParam,
                                             UINT fWinIni);
WINUSERAPI BOOL WINAPI SystemParametersInfoW(UINT uiAction, UINT uiParam, PVOID pvParam,
                                             UINT fWinIni);
WINUSERAPI BOOL WINAPI SetProcessDPIAware(void);
WINUSERAPI BOOL WINAPI IsProcessDPIAware(void);

/* Monitors. */
WINUSERAPI HMONITOR WINAPI MonitorFromPoint(POINT pt, DWORD dwFlags);
WINUSERAPI HMONITOR WINAPI MonitorFromRect(LPCRECT lprc, DWORD dwFlags);
WINUSERAPI HMONITOR WINAPI MonitorFromWindow(HWND hwnd, DWORD dwFlags);
WINUSERAPI BOOL WINAPI GetMonitorInfoA(HMONITOR hMonitor, LPMONITORINFO lpmi);
WINUSERAPI BOOL WINAPI GetMonitorInfoW(HMONITOR hMonitor, LPMONITORINFO lpmi);
WINUSERAPI BOOL WINAPI EnumDisplayMonitors(HDC hdc, LPCRECT lprcClip, MONITORENUMPROC lpfnEnum,
                                           LPARAM dwData);

/* Session, window stations and desktops. */
WINUSERAPI BOOL WINAPI ExitWindowsEx(UINT uFlags, DWORD dwReason);
#define ExitWindows(dwReserved, Code) ExitWindowsEx(EWX_LOGOFF, 0xFFFFFFFF)
WINUSERAPI HWINSTA WINAPI GetProcessWindowStation(void);
WINUSERAPI BOOL WINAPI SetProcessWindowStation(HWINSTA hWinSta);
WINUSERAPI HWINSTA WINAPI OpenWindowStationA(LPCSTR lpszWinSta, BOOL fInherit,
                                             DWORD dwDesiredAccess);
WINUSERAPI HWINSTA WINAPI OpenWindowStationW(LPCWSTR lpszWinSta, BOOL fInherit,
                                             DWORD dwDesiredAccess);
WINUSERAPI BOOL WINAPI CloseWindowStation(HWINSTA hWinSta);
WINUSERAPI BOOL WINAPI EnumWindowStationsA(WINSTAENUMPROCA lpEnumFunc, LPARAM lParam);
WINUSERAPI BOOL WINAPI EnumWindowStationsW(WINSTAENUMPROCW lpEnumFunc, LPARAM lParam);
WINUSERAPI HDESK WINAPI GetThreadDesktop(DWORD dwThreadId);
WINUSERAPI HDESK WINAPI OpenDesktopA(LPCSTR lpszDesktop, DWORD dwFlags, BOOL fInherit,
                                     DWORD dwDesiredAccess);
WINUSERAPI HDESK WINAPI OpenDesktopW(LPCWSTR lpszDesktop, DWORD dwFlags, BOOL fInherit,
                                     DWORD dwDesiredAccess);
WINUSERAPI HDESK WINAPI OpenInputDesktop(DWORD dwFlags, BOOL fInherit, DWORD dwDesiredAccess);
WINUSERAPI BOOL WINAPI CloseDesktop(HDESK hDesktop);
WINUSERAPI BOOL WINAPI EnumDesktopsA(HWINSTA hwinsta, DESKTOPENUMPROCA lpEnumFunc, LPARAM lParam);
WINUSERAPI BOOL WINAPI EnumDesktopsW(HWINSTA hwinsta, DESKTOPENUMPROCW lpEnumFunc, LPARAM lParam);
WINUSERAPI BOOL WINAPI EnumDesktopWindows(HDESK hDesktop, WNDENUMPROC lpfn, LPARAM lParam);
WINUSERAPI BOOL WINAPI GetUserObjectInformationA(HANDLE hObj, int nIndex, PVOID pvInfo,
                                                 DWORD nLength, LPDWORD lpnLengthNeeded);
WINUSERAPI BOOL WINAPI GetUserObjectInformationW(HANDLE hObj, int nIndex, PVOID pvInfo,
                                                 DWORD nLength, LPDWORD lpnLengthNeeded);

/*
 * Generic names: under UNICODE the unsuffixed name of every A/W pair, type
 * or function, is the W form; otherwise it is the A form.
 */
#ifdef UNICODE
typedef WNDCLASSW WNDCLASS;
typedef PWNDCLASSW PWNDCLASS;
typedef NPWNDCLASSW NPWNDCLASS;
typedef LPWNDCLASSW LPWNDCLASS;
typedef WNDCLASSEXW WNDCLASSEX;
typedef PWNDCLASSEXW PWNDCLASSEX;
typedef NPWNDCLASSEXW NPWNDCLASSEX;
typedef LPWNDCLASSEXW LPWNDCLASSEX;
typedef CREATESTRUCTW CREATESTRUCT;
typedef LPCREATESTRUCTW LPCREATESTRUCT;
typedef CBT_CREATEWNDW CBT_CREATEWND;
typedef LPCBT_CREATEWNDW LPCBT_CREATEWND;
typedef MENUITEMINFOW MENUITEMINFO;
typedef LPMENUITEMINFOW LPMENUITEMINFO;
typedef LPCMENUITEMINFOW LPCMENUITEMINFO;
typedef MDICREATESTRUCTW MDICREATESTRUCT;
typedef LPMDICREATESTRUCTW LPMDICREATESTRUCT;
typedef MSGBOXPARAMSW MSGBOXPARAMS;
typedef PMSGBOXPARAMSW PMSGBOXPARAMS;
typedef LPMSGBOXPARAMSW LPMSGBOXPARAMS;
typedef NONCLIENTMETRICSW NONCLIENTMETRICS;
typedef PNONCLIENTMETRICSW PNONCLIENTMETRICS;
typedef LPNONCLIENTMETRICSW LPNONCLIENTMETRICS;
typedef ICONMETRICSW ICONMETRICS;
typedef PICONMETRICSW PICONMETRICS;
typedef LPICONMETRICSW LPICONMETRICS;
typedef HIGHCONTRASTW HIGHCONTRAST;
typedef LPHIGHCONTRASTW LPHIGHCONTRAST;
typedef MONITORINFOEXW MONITORINFOEX;
typedef LPMONITORINFOEXW LPMONITORINFOEX;
typedef PROPENUMPROCW PROPENUMPROC;
typedef PROPENUMPROCEXW PROPENUMPROCEX;
typedef EDITWORDBREAKPROCW EDITWORDBREAKPROC;
typedef NAMEENUMPROCW NAMEENUMPROC;
typedef WINSTAENUMPROCW WINSTAENUMPROC;
typedef DESKTOPENUMPROCW DESKTOPENUMPROC;
typedef MENUTEMPLATEW MENUTEMPLATE;
typedef LPMENUTEMPLATEW LPMENUTEMPLATE;
typedef LPDLGTEMPLATEW LPDLGTEMPLATE;
typedef LPCDLGTEMPLATEW LPCDLGTEMPLATE;
typedef PDLGITEMTEMPLATEW PDLGITEMTEMPLATE;
typedef LPDLGITEMTEMPLATEW LPDLGITEMTEMPLATE;
#define RegisterClass RegisterClassW
#define RegisterClassEx RegisterClassExW
#define UnregisterClass UnregisterClassW
#define GetClassInfo GetClassInfoW
#define GetClassInfoEx GetClassInfoExW
#define GetClassName GetClassNameW
#define RealGetWindowClass RealGetWindowClassW
#define GetClassLong GetClassLongW
#define SetClassLong SetClassLongW
#define GetClassLongPtr GetClassLongPtrW
#define SetClassLongPtr SetClassLongPtrW
#define CreateWindowEx CreateWindowExW
#define CreateWindow CreateWindowW
#define DefWindowProc DefWindowProcW
#define CallWindowProc CallWindowProcW
#define GetWindowLong GetWindowLongW
#define SetWindowLong SetWindowLongW
#define GetWindowLongPtr GetWindowLongPtrW
#define SetWindowLongPtr SetWindowLongPtrW
#define GetProp GetPropW
#define SetProp SetPropW
#define RemoveProp RemovePropW
#define EnumProps EnumPropsW
#define EnumPropsEx EnumPropsExW
#define SetWindowText SetWindowTextW
#define GetWindowText GetWindowTextW
#define GetWindowTextLength GetWindowTextLengthW
#define GetWindowModuleFileName GetWindowModuleFileNameW
#define FindWindow FindWindowW
#define FindWindowEx FindWindowExW
#define GetAltTabInfo GetAltTabInfoW
#define GetMessage GetMessageW
#define PeekMessage PeekMessageW
#define DispatchMessage DispatchMessageW
#define SendMessage SendMessageW
#define SendMessageTimeout SendMessageTimeoutW
#define SendNotifyMessage SendNotifyMessageW
#define SendMessageCallback SendMessageCallbackW
#define PostMessage PostMessageW
#define PostThreadMessage PostThreadMessageW
#define PostAppMessage PostAppMessageW
#define BroadcastSystemMessage BroadcastSystemMessageW
#define RegisterWindowMessage RegisterWindowMessageW
#define CallMsgFilter CallMsgFilterW
#define SetWindowsHook SetWindowsHookW
#define SetWindowsHookEx SetWindowsHookExW
#define DrawState DrawStateW
#define DrawText DrawTextW
#define DrawTextEx DrawTextExW
#define GrayString GrayStringW
#define TabbedTextOut TabbedTextOutW
#define GetTabbedTextExtent GetTabbedTextExtentW
#define LoadMenu LoadMenuW
#define LoadMenuIndirect LoadMenuIndirectW
#define AppendMenu AppendMenuW
#define InsertMenu InsertMenuW
#define ModifyMenu ModifyMenuW
#define ChangeMenu ChangeMenuW
#define InsertMenuItem InsertMenuItemW
#define GetMenuItemInfo GetMenuItemInfoW
#define SetMenuItemInfo SetMenuItemInfoW
#define GetMenuString GetMenuStringW
#define CreateDialogParam CreateDialogParamW
#define CreateDialogIndirectParam CreateDialogIndirectParamW
#define CreateDialog CreateDialogW
#define CreateDialogIndirect CreateDialogIndirectW
#define DialogBoxParam DialogBoxParamW
#define DialogBoxIndirectParam DialogBoxIndirectParamW
#define DialogBox DialogBoxW
#define DialogBoxIndirect DialogBoxIndirectW
#define DefDlgProc DefDlgProcW
#define IsDialogMessage IsDialogMessageW
#define SetDlgItemText SetDlgItemTextW
#define GetDlgItemText GetDlgItemTextW
#define SendDlgItemMessage SendDlgItemMessageW
#define DlgDirList DlgDirListW
#define DlgDirSelectEx DlgDirSelectExW
#define DlgDirListComboBox DlgDirListComboBoxW
#define DlgDirSelectComboBoxEx DlgDirSelectComboBoxExW
#define MessageBox MessageBoxW
#define MessageBoxEx MessageBoxExW
#define MessageBoxIndirect MessageBoxIndirectW
#define ShellMessageBox ShellMessageBoxW
#define WinHelp WinHelpW
#define DefFrameProc DefFrameProcW
#define DefMDIChildProc DefMDIChildProcW
#define CreateMDIWindow CreateMDIWindowW
#define LoadAccelerators LoadAcceleratorsW
#define CreateAcceleratorTable CreateAcceleratorTableW
#define CopyAcceleratorTable CopyAcceleratorTableW
#define TranslateAccelerator TranslateAcceleratorW
#define GetKeyNameText GetKeyNameTextW
#define MapVirtualKey MapVirtualKeyW
#define MapVirtualKeyEx MapVirtualKeyExW
#define VkKeyScan VkKeyScanW
#define VkKeyScanEx VkKeyScanExW
#define LoadKeyboardLayout LoadKeyboardLayoutW
#define GetKeyboardLayoutName GetKeyboardLayoutNameW
#define LoadCursor LoadCursorW
#define LoadCursorFromFile LoadCursorFromFileW
#define LoadIcon LoadIconW
#define LoadBitmap LoadBitmapW
#define LoadImage LoadImageW
#define LoadString LoadStringW
#define RegisterClipboardFormat RegisterClipboardFormatW
#define GetClipboardFormatName GetClipboardFormatNameW
#define CharUpper CharUpperW
#define CharLower CharLowerW
#define CharUpperBuff CharUpperBuffW
#define CharLowerBuff CharLowerBuffW
#define CharNext CharNextW
#define CharPrev CharPrevW
#define IsCharAlpha IsCharAlphaW
#define IsCharAlphaNumeric IsCharAlphaNumericW
#define IsCharUpper IsCharUpperW
#define IsCharLower IsCharLowerW
#define CharToOem CharToOemW
#define OemToChar OemToCharW
#define CharToOemBuff CharToOemBuffW
#define OemToCharBuff OemToCharBuffW
#define wsprintf wsprintfW
#define wvsprintf wvsprintfW
#define SystemParametersInfo SystemParametersInfoW
#define GetMonitorInfo GetMonitorInfoW
#define OpenWindowStation OpenWindowStationW
#define EnumWindowStations EnumWindowStationsW
#define OpenDesktop OpenDesktopW
#define EnumDesktops EnumDesktopsW
#define GetUserObjectInformation GetUserObjectInformationW
#else
typedef WNDCLASSA WNDCLASS;
typedef PWNDCLASSA PWNDCLASS;
typedef NPWNDCLASSA NPWNDCLASS;
typedef LPWNDCLASSA LPWNDCLASS;
typedef WNDCLASSEXA WNDCLASSEX;
typedef PWNDCLASSEXA PWNDCLASSEX;
typedef NPWNDCLASSEXA NPWNDCLASSEX;
typedef LPWNDCLASSEXA LPWNDCLASSEX;
typedef CREATESTRUCTA CREATESTRUCT;
typedef LPCREATESTRUCTA LPCREATESTRUCT;
typedef CBT_CREATEWNDA CBT_CREATEWND;
typedef LPCBT_CREATEWNDA LPCBT_CREATEWND;
typedef MENUITEMINFOA MENUITEMINFO;
typedef LPMENUITEMINFOA LPMENUITEMINFO;
typedef LPCMENUITEMINFOA LPCMENUITEMINFO;
typedef MDICREATESTRUCTA MDICREATESTRUCT;
typedef LPMDICREATESTRUCTA LPMDICREATESTRUCT;
typedef MSGBOXPARAMSA MSGBOXPARAMS;
typedef PMSGBOXPARAMSA PMSGBOXPARAMS;
typedef LPMSGBOXPARAMSA LPMSGBOXPARAMS;
typedef NONCLIENTMETRICSA NONCLIENTMETRICS;
typedef PNONCLIENTMETRICSA PNONCLIENTMETRICS;
typedef LPNONCLIENTMETRICSA LPNONCLIENTMETRICS;
typedef ICONMETRICSA ICONMETRICS;
typedef PICONMETRICSA PICONMETRICS;
typedef LPICONMETRICSA LPICONMETRICS;
typedef HIGHCONTRASTA HIGHCONTRAST;
typedef LPHIGHCONTRASTA LPHIGHCONTRAST;
typedef MONITORINFOEXA MONITORINFOEX;
typedef LPMONITORINFOEXA LPMONITORINFOEX;
typedef PROPENUMPROCA PROPENUMPROC;
typedef PROPENUMPROCEXA PROPENUMPROCEX;
typedef EDITWORDBREAKPROCA EDITWORDBREAKPROC;
typedef NAMEENUMPROCA NAMEENUMPROC;
typedef WINSTAENUMPROCA WINSTAENUMPROC;
typedef DESKTOPENUMPROCA DESKTOPENUMPROC;
typedef MENUTEMPLATEA MENUTEMPLATE;
typedef LPMENUTEMPLATEA LPMENUTEMPLATE;
typedef LPDLGTEMPLATEA LPDLGTEMPLATE;
typedef LPCDLGTEMPLATEA LPCDLGTEMPLATE;
typedef PDLGITEMTEMPLATEA PDLGITEMTEMPLATE;
typedef LPDLGITEMTEMPLATEA LPDLGITEMTEMPLATE;
#define RegisterClass RegisterClassA
#define RegisterClassEx RegisterClassExA
#define UnregisterClass UnregisterClassA
#define GetClassInfo GetClassInfoA
#define GetClassInfoEx GetClassInfoExA
#define GetClassName GetClassNameA
#define RealGetWindowClass RealGetWindowClassA
#define GetClassLong GetClassLongA
#define SetClassLong SetClassLongA
#define GetClassLongPtr GetClassLongPtrA
#define SetClassLongPtr SetClassLongPtrA
#define CreateWindowEx CreateWindowExA
#define CreateWindow CreateWindowA
#define DefWindowProc DefWindowProcA
#define CallWindowProc CallWindowProcA
#define GetWindowLong GetWindowLongA
#define SetWindowLong SetWindowLongA
#define GetWindowLongPtr GetWindowLongPtrA
#define SetWindowLongPtr SetWindowLongPtrA
#define GetProp GetPropA
#define SetProp SetPropA
#define RemoveProp RemovePropA
#define EnumProps EnumPropsA
#define EnumPropsEx EnumPropsExA
#define SetWindowText SetWindowTextA
#define GetWindowText GetWindowTextA
#define GetWindowTextLength GetWindowTextLengthA
#define GetWindowModuleFileName GetWindowModuleFileNameA
#define FindWindow FindWindowA
#define FindWindowEx FindWindowExA
#define GetAltTabInfo GetAltTabInfoA
#define GetMessage GetMessageA
#define PeekMessage PeekMessageA
#define DispatchMessage DispatchMessageA
#define SendMessage SendMessageA
#define SendMessageTimeout SendMessageTimeoutA
#define SendNotifyMessage SendNotifyMessageA
#define SendMessageCallback SendMessageCallbackA
#define PostMessage PostMessageA
#define PostThreadMessage PostThreadMessageA
#define PostAppMessage PostAppMessageA
#define BroadcastSystemMessage BroadcastSystemMessageA
#define RegisterWindowMessage RegisterWindowMessageA
#define CallMsgFilter CallMsgFilterA
#define SetWindowsHook SetWindowsHookA
#define SetWindowsHookEx SetWindowsHookExA
#define DrawState DrawStateA
#define DrawText DrawTextA
#define DrawTextEx DrawTextExA
#define GrayString GrayStringA
#define TabbedTextOut TabbedTextOutA
#define GetTabbedTextExtent GetTabbedTextExtentA
#define LoadMenu LoadMenuA
#define LoadMenuIndirect LoadMenuIndirectA
#define AppendMenu AppendMenuA
#define InsertMenu InsertMenuA
#define ModifyMenu ModifyMenuA
#define ChangeMenu ChangeMenuA
#define InsertMenuItem InsertMenuItemA
#define GetMenuItemInfo GetMenuItemInfoA
#define SetMenuItemInfo SetMenuItemInfoA
#define GetMenuString GetMenuStringA
#define CreateDialogParam CreateDialogParamA
#define CreateDialogIndirectParam CreateDialogIndirectParamA
#define CreateDialog CreateDialogA
#define CreateDialogIndirect CreateDialogIndirectA
#define DialogBoxParam DialogBoxParamA
#define DialogBoxIndirectParam DialogBoxIndirectParamA
#define DialogBox DialogBoxA
#define DialogBoxIndirect DialogBoxIndirectA
#define DefDlgProc DefDlgProcA
#define IsDialogMessage IsDialogMessageA
#define SetDlgItemText SetDlgItemTextA
#define GetDlgItemText GetDlgItemTextA
#define SendDlgItemMessage SendDlgItemMessageA
#define DlgDirList DlgDirListA
#define DlgDirSelectEx DlgDirSelectExA
#define DlgDirListComboBox DlgDirListComboBoxA
#define DlgDirSelectComboBoxEx DlgDirSelectComboBoxExA
#define MessageBox MessageBoxA
#define MessageBoxEx MessageBoxExA
#define MessageBoxIndirect MessageBoxIndirectA
#define ShellMessageBox ShellMessageBoxA
#define WinHelp WinHelpA
#define DefFrameProc DefFrameProcA
#define DefMDIChildProc DefMDIChildProcA
#define CreateMDIWindow CreateMDIWindowA
#define LoadAccelerators LoadAcceleratorsA
#define CreateAcceleratorTable CreateAcceleratorTableA
#define CopyAcceleratorTable CopyAcceleratorTableA
#define TranslateAccelerator TranslateAcceleratorA
#define GetKeyNameText GetKeyNameTextA
#define MapVirtualKey MapVirtualKeyA
#define MapVirtualKeyEx MapVirtualKeyExA
#define VkKeyScan VkKeyScanA
#define VkKeyScanEx VkKeyScanExA
#define LoadKeyboardLayout LoadKeyboardLayoutA
#define GetKeyboardLayoutName GetKeyboardLayoutNameA
#define LoadCursor LoadCursorA
#define LoadCursorFromFile LoadCursorFromFileA
#define LoadIcon LoadIconA
#define LoadBitmap LoadBitmapA
#define LoadImage LoadImageA
#define LoadString LoadStringA
#define RegisterClipboardFormat RegisterClipboardFormatA
#define GetClipboardFormatName GetClipboardFormatNameA
#define CharUpper CharUpperA
#define CharLower CharLowerA
#define CharUpperBuff CharUpperBuffA
#define CharLowerBuff CharLowerBuffA
#define CharNext CharNextA
#define CharPrev CharPrevA
#define IsCharAlpha IsCharAlphaA
#define IsCharAlphaNumeric IsCharAlphaNumericA
#define IsCharUpper IsCharUpperA
#define IsCharLower IsCharLowerA
#define CharToOem CharToOemA
#define OemToChar OemToCharA
#define CharToOemBuff CharToOemBuffA
#define OemToCharBuff OemToCharBuffA
#define wsprintf wsprintfA
#define wvsprintf wvsprintfA
#define SystemParametersInfo SystemParametersInfoA
#define GetMonitorInfo GetMonitorInfoA
#define OpenWindowStation OpenWindowStationA
#define EnumWindowStations EnumWindowStationsA
#define OpenDesktop OpenDesktopA
#define EnumDesktops EnumDesktopsA
#define GetUserObjectInformation GetUserObjectInformationA
#endif /* UNICODE */

OLMO_END_C

#endif /* RC_INVOKED */

#endif /* _WINUSER_ */
