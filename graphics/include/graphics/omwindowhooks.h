// What the graphics layer needs to know of windows, which live in the user
// library above it.  The user library registers these callbacks at
// start-up; until then, every window answers as one with no update region
// and no geometry (the coordinate functions fail with warning 79).
//
// The callbacks read the window record only: none of them may ask the X
// server, since GetClientRect and friends are hot.  They may be called on
// any thread that uses the window.
#pragma once

#include <olmo/platform.h>

#include <windef.h>
#include <X11/Intrinsic.h>

// Where a window's pixels are: the X drawable its client area (or whole
// frame) is painted on, and the offset of the area within that drawable.
// A window without widgets of its own paints on its parent's canvas at its
// offset, clipped to its own rectangle.
struct OmPaintTarget {
    Drawable drawable;  // None when the window is not realised yet
    Widget widget;      // the widget owning the drawable, or null
    int x, y;           // the area's origin in drawable coordinates
    int width, height;  // the area's size
};

struct OmGdiWindowHooks {
    // Client rectangle (0, 0, width, height) from the record.
    BOOL (*getClientRect)(HWND hwnd, RECT *rect);
    // Whole window in screen coordinates.
    BOOL (*getWindowRect)(HWND hwnd, RECT *rect);
    // Screen position of the client area's origin.
    BOOL (*getClientOrigin)(HWND hwnd, POINT *origin);
    // The target for GetDC (whole == FALSE) or GetWindowDC (whole == TRUE).
    BOOL (*getPaintTarget)(HWND hwnd, BOOL whole, OmPaintTarget *target);
    // Takes the window's update region for BeginPaint: copies it into
    // updateRgn (client coordinates; an existing region of the caller),
    // sets *erase to the erase flag and clears it, validates the window and
    // removes its paint-queue entry.  FALSE when hwnd is not a window.
    BOOL (*takeUpdateRegion)(HWND hwnd, HRGN updateRgn, BOOL *erase);
    // The class style (for CS_OWNDC and CS_CLASSDC) and background brush.
    UINT (*getClassStyle)(HWND hwnd);
    HBRUSH (*getClassBrush)(HWND hwnd);
    // Sends WM_ERASEBKGND for BeginPaint; answers the window procedure's
    // result.
    LRESULT (*sendEraseBackground)(HWND hwnd, HDC hdc);
    // BeginPaint hides the caret and EndPaint shows it again.
    void (*hideCaret)(HWND hwnd);
    void (*showCaret)(HWND hwnd);
};

extern "C" {

// Registers the user library's callbacks (copied).  Main thread, at
// start-up, before any window exists.
OLMO_API void omGdiRegisterWindowHooks(const OmGdiWindowHooks *hooks);

}  // extern "C"
