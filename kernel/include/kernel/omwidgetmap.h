// The map between widgets and window handles, and the per-widget role the
// user library records.  Lookups are constant time; any thread.
#pragma once

#include <olmo/platform.h>

#include <windef.h>
#include <X11/Intrinsic.h>

extern "C" {

OLMO_API void omSetWidgetHWND(Widget w, HWND hwnd);
// Stores the window of w in *hwnd (0 when unmapped) and answers whether
// there is one.
OLMO_API int omGetWidgetHWND(Widget w, HWND *hwnd);
OLMO_API HWND omWidgetTohWnd(Widget w);
// Forgets w (its window and its role).
OLMO_API void omClearWidgetData(Widget w);
// The window whose widget owns the X window xwindow, looking up the
// widget tree from the widget that owns it; 0 when none.  eventType is the
// X event type the caller handles (kept for callers that tell them apart).
OLMO_API HWND omWindowToWidget(int eventType, Window xwindow);

// The role of a widget in its window (1, 2, 5 for the widget roles, 3, 4,
// 6 inside an MDI child) or a menu item's index; 0 when unset.
OLMO_API void omSetWidgetUserDataInfo(Widget w, long info);
OLMO_API long omGetWidgetUserDataInfo(Widget w);

// Windows of other processes: not reachable in this version, so every
// handle is local.
OLMO_API int omMayBeRemoteWindow(HWND hwnd);

}  // extern "C"

extern "C" {

// The tracking sizes a window's procedure left in WM_GETMINMAXINFO at
// creation (-1 where it set none), kept for the frame and MDI code.
OLMO_API void omSetMinMaxInfo(HWND hwnd, int minX, int minY, int maxX, int maxY);
// Answers FALSE (and -1 everywhere) for a window never given any.
OLMO_API int omGetMinMaxInfo(HWND hwnd, int *minX, int *minY, int *maxX, int *maxY);
// Forgets what the kernel keeps for a destroyed window.
OLMO_API void omForgetWindowInfo(HWND hwnd);

}  // extern "C"
