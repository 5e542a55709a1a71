// The X pump of the main thread and the translation of X events into
// window messages for the windows behind them.
#pragma once

#include <olmo/platform.h>

#include <windows.h>

#include <X11/Xlib.h>

struct WindowRecord;

extern "C" {

// The frame around a window's client area: the border its style asks for
// (each side) and the caption height (0 without the whole of WS_CAPTION).
OLMO_API int omBorderWidth(const WindowRecord *record);
OLMO_API int omCaptionHeight(const WindowRecord *record);

// A ConfigureNotify of the shell of top-level window hwnd.
OLMO_API void omConfigureNotify(HWND hwnd, XEvent *event);

// Routes event first when given, then pumps what the toolkit has pending
// (at most one key event per call) and runs the idle work.  Main thread.
// Returns how many X events were routed.
OLMO_API int omProcessXEvents(XEvent *event);
// Routes one event; 1 to keep pumping, 0 to stop.
OLMO_API int _omProcessXEvent(XEvent *event);
// Translates a key, button or motion event for hwnd; hit is -1 when x, y
// are not given (the event's own point is used then).
OLMO_API void omInputEvent(HWND hwnd, XEvent *event, int hit, int x, int y);
// The event mask selected on a window's widgets.
OLMO_API long omInputMaskOf(int motionless);
// Selects the input of a window's widgets, its children's first.
OLMO_API void WINAPI omSelectInputs(HWND hwnd);

#ifdef OLMO_MESSAGES_TEST_ACCESS
// Test builds only: read OMEVENTDEBUG again on the next routed event.
OLMO_API void omTestRereadEventDebug(void);
#endif

}  // extern "C"

// The translators behind omInputEvent, one per kind of input.
namespace om::messages {
// lParam and message of a key event; wasDown is the key's state before it.
LPARAM keyLParam(const XKeyEvent &key, unsigned keysym, unsigned vk, bool press, bool wasDown);
UINT keyMessage(const XKeyEvent &key, unsigned vk, bool press);
void translateKey(HWND hwnd, XEvent &event);
}  // namespace om::messages

namespace om::messages {
// MK_ flags of an X state word (buttons from the state, Shift and Control
// also from the key state).
WPARAM mouseKeyState(unsigned state);
// The double-click rule: same window and button; buttons 2 and 3 within
// the limit inclusive, button 1 strictly within it and at most 3 pixels
// away in x and in y.
OLMO_API bool isDoubleClick(Time lastTime, unsigned lastButton, int lastX, int lastY, HWND lastHwnd,
                   Time time, unsigned button, int x, int y, HWND hwnd, unsigned limit);
void translateButton(HWND hwnd, XEvent &event, int hit, int x, int y);
void translateMotion(HWND hwnd, XEvent &event, int hit, int x, int y);
}  // namespace om::messages

namespace om::messages {
// FocusIn and FocusOut of a window's widgets.
void translateFocus(HWND hwnd, XEvent &event);
}  // namespace om::messages
