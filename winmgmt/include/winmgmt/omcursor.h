// The program's cursor state for other subsystems: the current cursor,
// the clip rectangle the pointer-event handling applies, and defining X
// cursors on the program's windows.
#pragma once

#include <olmo/platform.h>

#include <windows.h>

#include <X11/Intrinsic.h>
#include <X11/Xlib.h>

extern "C" {

// The rectangle given to ClipCursor, in screen coordinates, and whether
// one is in force.
OLMO_API extern int omNeedClipCursor;
OLMO_API extern RECT omClipCursorRect;

// Makes the record's X cursor from its bit arrays (white foreground,
// black background); the X cursor, or 0 when there is no display or the
// handle is not a cursor.  An existing X cursor is kept.
OLMO_API Cursor omCreateCursorFromData(HCURSOR cursor);

// Defines (or removes) an X cursor on the canvas of every top-level window
// that is the program's own, and on the application shell.
OLMO_API void omDefineCursors(Cursor xcursor);
OLMO_API void omUndefineCursors(void);

// Defines the cursor's X cursor on one widget's window, when both exist.
OLMO_API void omSetLocalXCursor(HCURSOR cursor, Widget widget);

// ShowCursor's display count (kept by the kernel layer).
OLMO_API int omCurrentCursorCount(void);

// The X cursor last defined on the program's windows by SetCursor or
// ShowCursor; 0 while none is (after SetCursor(NULL)).
OLMO_API Cursor omDefinedXCursor(void);

// WM_SETCURSOR in the default window procedure, once the message has been
// offered to the parent and found to be about hwnd itself (wParam ==
// hwnd): over the client area (bit 0 of the hit code in lParam's low
// word) a window whose class has a cursor gets it, and the answer is
// TRUE; otherwise FALSE.
OLMO_API BOOL omSetClassCursor(HWND hwnd, LPARAM lParam);

}  // extern "C"
