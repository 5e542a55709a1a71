// Show states, positions, sizes and stacking of windows, for the other
// subsystems: minimise, maximise and restore, the work of one
// SetWindowPos entry, and the geometry changes of each sort of window.
// ShowWindow's mapping entries and WM_MOVE/WM_SIZE are in core/omwindow.h.
#pragma once

#include <olmo/platform.h>

#include <windows.h>

#include <X11/Xlib.h>

struct WindowRecord;
typedef struct _WidgetRec *Widget;

extern "C" {

// The top-level window last raised to the top while the Motif window
// manager runs: showing another top-level window maps it again so that it
// stays above.  Cleared when it is destroyed.
OLMO_API extern HWND omTopMostOverlappedWindow;
// The application shell is iconic (kept by the handler omSetupIconic adds).
OLMO_API extern int bIsShellIconic;

// State changes; each returns the size the window has afterwards (the
// icon size for a minimised one).
OLMO_API void omMinimizeWindow(HWND hwnd, short *cx, short *cy);
OLMO_API void omMaximizeWindow(HWND hwnd, short *cx, short *cy);
OLMO_API void omRestoreWindow(HWND hwnd, short *cx, short *cy);
// Activation after a show: how is 0 or 3 to activate a top-level window.
OLMO_API void omHandleWindowActivation(HWND hwnd, int how);
// The WM_STATE value of a top-level X window; 0 when it has none.
OLMO_API int CheckWinMgrState(Display *display, Window window);
// Starts tracking whether the application shell is iconic.
OLMO_API void omSetupIconic(Widget shell);

// The work of one deferred entry: geometry, stacking and showing.  Updates
// *flags' SWP_NOCLIENTMOVE and SWP_NOCLIENTSIZE; returns 1 when anything
// changed (then WM_WINDOWPOSCHANGED is due), 0 otherwise.
OLMO_API int omSetWindowPos(HWND hwnd, HWND after, int x, int y, int cx, int cy, UINT *flags);

// Geometry by sort of window; honour SWP_NOMOVE and SWP_NOSIZE in flags.
// Without redraw the window's exposures are held off meanwhile.
OLMO_API void omRepositionChild(HWND hwnd, int x, int y, int cx, int cy, UINT flags, BOOL redraw,
                                DWORD style);
OLMO_API void omRepositionPopup(HWND hwnd, int x, int y, int cx, int cy, UINT flags, BOOL redraw,
                                DWORD style);
OLMO_API void omRepositionOverlapped(HWND hwnd, int x, int y, int cx, int cy, UINT flags,
                                     BOOL redraw, DWORD style);
// Moves and sizes the shell directly and invalidates the whole window.
OLMO_API void omMoveResizeWindow(HWND hwnd, int x, int y, int cx, int cy, BOOL move, BOOL resize,
                                 BOOL redraw);
// Narrow the input selection of a window's widgets (no exposures, no
// presses) for a silent geometry change, and put it back.
OLMO_API void omWindowTurnOffRepaint(WindowRecord *record);
OLMO_API void omWindowTurnOnRepaint(WindowRecord *record);

}  // extern "C"

// What the showing and positioning sources share.
namespace om::winmgmt {

// The three sorts of window, the child split by whether it has widgets.
enum class WindowSort { Overlapped, Popup, Child, Windowless };
WindowSort sortOf(const WindowRecord &w);

// The "state" of a child's XoBorder frame (XoSTATE_*); 0 for any window
// without one.
int frameState(const WindowRecord &w);
void setFrameState(const WindowRecord &w, int state);

// Raises a child's frame in X and the window in its stacking list.
void bringChildToTop(const WindowRecord &w);

}  // namespace om::winmgmt
