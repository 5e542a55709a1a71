// Entries the event translation calls that other parts of the toolkit
// carry out: each is a registered placeholder (warning 141 on its first
// call) until its owner defines it and its line here goes.
#include "kernel/omplaceholder.h"

#include <windows.h>

#include <X11/Intrinsic.h>

// Activation of a top-level window when it gains or loses the X focus.
OM_PLACEHOLDER_VOID(omActivateWindow, (HWND, int))
OM_PLACEHOLDER_VOID(omDeActivateWindow, (HWND))

// Mouse input of a disabled child, handed on to its enabled ancestor
// (target) in that ancestor's client coordinates.
OM_PLACEHOLDER_VOID(omPostMouseInputWhileDisabled, (HWND, UINT, WPARAM, LPARAM))

// Repaints the icon of a minimised top-level window; an EnumWindows
// callback whose lParam is the exposed X window.  TRUE keeps enumerating.
OM_PLACEHOLDER(BOOL, omPaintIcon, (HWND, LPARAM), TRUE)

// The control child list: the window owning the widget of an event that
// no window claims directly, the part of it that was hit (-1 none, 4 to 7
// a scroll-bar part, 8 the frame) and the event point in that widget.
OM_PLACEHOLDER(HWND, omWindowToHParent, (XEvent *, Widget *, int *, int *, int *), nullptr)
// A pointer event on a part (4 to 7) of a window's scroll bars.
OM_PLACEHOLDER_VOID(omScrollbarNCMsg, (HWND, int, XEvent *))

// The window cache's share of the pump's idle work; non-zero while it
// still has work queued.
OM_PLACEHOLDER(int, omWindowCacheIdleTimeInit, (void), 0)
