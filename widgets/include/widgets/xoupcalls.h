// The user library's functions that XoBorder calls (it does not link
// against the library above it): a record of function pointers registered
// once at start-up.  Null members are skipped; a bare-shell test registers
// its own record.
#pragma once

#include <olmo/platform.h>

#include <X11/Intrinsic.h>

OLMO_BEGIN_C

// A rectangle in the parent's coordinates, passed in and out so that the
// WM_MOVING/WM_SIZING handlers can change it.
typedef struct {
    int x, y, width, height;
} XoRect;

typedef struct {
    // WM_NCPAINT after the frame repainted itself without an Expose.
    void (*omSendNCPaint)(Widget frame);
    // A pointer move or resize starts at (x, y) in parent coordinates.
    void (*omSendSC_MOVE)(Widget frame, int x, int y);
    void (*omSendSC_SIZE)(Widget frame, int x, int y);
    // Each step of a move/resize; the handler may change *rect.  `edge` is
    // in WM_SIZING numbering (XoEDGE_*).
    void (*omSendWM_MOVING)(Widget frame, XoRect *rect);
    void (*omSendWM_SIZING)(Widget frame, XoRect *rect, int edge);
    // Shows the frame's system menu at (x, y) in root coordinates.
    void (*omPopupSystemMenu)(Widget frame, int x, int y);
    // which: 0 restore, 1 move, 2 size, 3 minimise, 4 maximise, 7 close.
    void (*omEnableSystemMenuItem)(Widget frame, int which, Boolean enable);
    Boolean (*omIsCloseMenuItemEnabled)(XtPointer menu);
    // Ctrl+F8 / Ctrl+F7 on a frame without a system menu: post SC_SIZE /
    // SC_MOVE (a frame with a menu leaves these keys to its menu).
    void (*omNonMenuBorderSysCB)(Widget frame);
    void (*omPost_SC_MOVE)(Widget frame);
} XoUpcalls;

// Copies the record; a later call replaces it, NULL clears it.
OLMO_API void XoRegisterUpcalls(const XoUpcalls *upcalls);
// The record registered now (all null when none is).
OLMO_API void XoGetUpcalls(XoUpcalls *upcalls);

OLMO_END_C
