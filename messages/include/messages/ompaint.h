// Update regions and each thread's paint list: invalidation, validation,
// exposure of windows by the X server, and the WM_PAINT source that
// retrieval and modal loops read.
#pragma once

#include <olmo/platform.h>

#include <windows.h>

#include <X11/Intrinsic.h>
#include <X11/Xlib.h>

struct OmPaintItem;

extern "C" {

// The calling thread's paint list.
OLMO_API BOOL omPaintAddItem(HWND hwnd);
OLMO_API BOOL omPaintDeleteItem(HWND hwnd);
OLMO_API void omPaintDeleteAll(void);
OLMO_API void omPaintCleanList(void);
OLMO_API BOOL omPaintIsHwndInQueue(HWND hwnd);
OLMO_API BOOL omPaintIsPaintMsgEmpty(void);

// Retrieval's paint source.  keep leaves the cursor where it was and marks
// the message (time 1) so that dispatching it drops the window's item.
OLMO_API HWND omPaintGetNextHWnd(BOOL peek);
OLMO_API BOOL omPaintGetMsg(HWND hwnd, MSG *msg, BOOL descendants, BOOL keep);
OLMO_API BOOL omPaintGetDlgMsg(HWND hwnd, MSG *msg);

// Adds to the update region and lists the window; 0 for a dead window.
OLMO_API BOOL omPaintInvalidateXRgn(HWND hwnd, Region region);
OLMO_API BOOL omPaintInvalidateRect(HWND hwnd, XRectangle *rect);

// Children painted on their parent's canvas (group boxes, frame statics).
OLMO_API BOOL omPaintAddLiteKid(HWND child);
OLMO_API BOOL omPaintDeleteLiteKid(HWND child);
OLMO_API void omPaintCleanAll(HWND hwnd);

// Expose and GraphicsExpose of a window's widgets.
OLMO_API void omProcessExposeEvent(HWND hwnd, XEvent *event);
OLMO_API void omProcessExposeInChildGBSS(HWND hwnd);
OLMO_API int omSetFirstExpose(HWND hwnd, int value);
OLMO_API void omSetClearOnInvalidate(int flag);

// Synthetic exposures handed to the widgets that draw a window's parts.
OLMO_API void omSendExposeToChildSB(HWND hwnd, XEvent *event);
OLMO_API void omSendExposeToEntireWidget(Widget widget);
OLMO_API void omDispatchExposeToHWnd(HWND hwnd);

// A message turned back into the X event it came from (or one built
// for it), for the widgets behind a window.
OLMO_API BOOL omMsgToEvent(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam, XEvent *event);
OLMO_API BOOL omWMPAINTToEvent(HWND hwnd, const PAINTSTRUCT *paint, XEvent *event);

// The parent that paints its children's exposures itself, if any.
OLMO_API extern int bomParentHandlesChildExposure;
OLMO_API extern HWND omExposureParentHwnd;

}  // extern "C"
