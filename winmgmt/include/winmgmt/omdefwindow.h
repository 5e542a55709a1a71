// The default window procedure's entry points for other subsystems: its
// three later stages, the hit test of a child's frame, the client edge,
// the automatically scrolled client area switches and the process-wide
// flags the procedure keeps.
#pragma once

#include <olmo/platform.h>

#include <windows.h>

typedef struct _WidgetRec *Widget;
struct WindowRecord;

extern "C" {

// Stages 2 to 4 of DefWindowProcA; each passes what it does not handle to
// the next, the last answers 0.
OLMO_API LRESULT WINAPI DefWindowProcA_1(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam);
OLMO_API LRESULT WINAPI DefWindowProcA_2(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam);
OLMO_API LRESULT WINAPI DefWindowProcA_3(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam);

// Hit codes of a point in frame-widget coordinates; the windowless form
// answers HTCLIENT strictly inside (0, 0, cx, cy) and HTNOWHERE elsewhere.
OLMO_API int omHitTest(WindowRecord *record, int x, int y);
OLMO_API int omHitTestWinless(WindowRecord *record, int x, int y);
// The region code of an XoBorder frame as a hit code.
OLMO_API int omHitCodeFromRegion(int region);

// Whether the key would overflow the single-line text field of hwnd (an
// XmText or XmTextField as the window's frame or canvas); sets
// omLineExceeded.
OLMO_API int omIsTextOffLimits(HWND hwnd, WPARAM key);
OLMO_API extern int omLineExceeded;

// Draws the sunken client edge of a child whose frame has no decorations.
OLMO_API void omUserDrawCanvasEdges(HWND hwnd, DWORD exStyle);

// The form-view switches: set and answer the previous value.
OLMO_API int omMFCEnableAutoScrolledWindow(int flag);
OLMO_API int omMFCInCreateCFormView(int flag);
// A child whose frameWidget is an automatically scrolled XmScrolledWindow;
// the record of hwnd when hwnd is non-zero, else the record given.
OLMO_API BOOL omMFCIsAutoScrolledWindow(HWND hwnd, WindowRecord *record);
// The MDI client above the nearest MDI child ancestor (or self), or null.
OLMO_API WindowRecord *omIsClientChild(WindowRecord *record);
OLMO_API void omForceRealizeWidgets(HWND hwnd);

// The window a right-button release is sending WM_CONTEXTMENU for; a
// context menu that ran clears it, and the release is then not dispatched.
OLMO_API extern HWND omCallingContextMenuWindow;

// Provided by later subsystems (registered placeholders until then): the
// scroll bars' keyboard, the MDI window menu, icons of child frames and
// the shell's colour icon.
void WINAPI omScrollBarKeyboardMesgHandler(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam);
void WINAPI omMdiMenuSetTitle(HWND hwnd, LPCSTR title);
void WINAPI omPlaceBorderIcon(HWND hwnd);
BOOL WINAPI omLoadColorIcon(HWND hwnd, unsigned long pixmap);

}  // extern "C"
