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

// The hit-test code (HT*) of a pointer event on the frame of a window that
// has a sizing border (WS_THICKFRAME, or a tool-bar frame widget): the
// border strips give the sizing codes, everything else HTCAPTION.
OLMO_API int omCalculateHitTest(const WindowRecord *record, const XEvent *event);

// Posts WM_SETCURSOR for a button or motion event of hwnd, with the event.
OLMO_API void omProcessPostSetCursor(HWND hwnd, XEvent *event);
// Translates (*x, *y) from the client area of from to that of to; nothing
// happens unless both are live windows with realized canvases.
OLMO_API void omTranslateCoords(HWND to, HWND from, int *x, int *y);
// Gives the toolkit a motion event at root point (x, y) on the record's
// shell widget, so that a child's frame being moved or sized keeps
// following the pointer.
OLMO_API void DispatchEventToChild(WindowRecord *record, int x, int y, XEvent *event);

// Serial of the X event last translated into input messages; events made
// up for the toolkit carry it.
OLMO_API extern unsigned long XEventSerial;
// Set while a WM_SIZE that a map of a top-level window caused is sent.
OLMO_API extern int omWMSizeOnMap;
// Set while a client press that came through a child's frame widget is
// translated.
OLMO_API extern int ombNcCalcHack;

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
// Where input for a window goes: to the window itself, redirected to its
// nearest enabled ancestor (a disabled child), or nowhere.
struct InputRoute {
    enum Kind { Normal, Redirect, Drop } kind = Normal;
    HWND target = nullptr;  // the enabled ancestor of Redirect
};
InputRoute inputRoute(HWND hwnd, const XEvent &event);
void translateKey(HWND hwnd, XEvent &event, const InputRoute &route);
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
void translateButton(HWND hwnd, XEvent &event, int hit, int x, int y, const InputRoute &route);
void translateMotion(HWND hwnd, XEvent &event, int hit, int x, int y, const InputRoute &route);
// The down or double-click message of a press in the non-client area, by
// time, button and window alone; remembers the press like a client press.
UINT nonClientPress(HWND hwnd, const XButtonEvent &press);
}  // namespace om::messages

namespace om::messages {
// The router's handling of pointer events of child windows (hit testing,
// non-client messages, activation and parent notification); each answers
// true when the event was consumed and must not reach omInputEvent.
bool routeButtonPress(HWND hwnd, XEvent &event, bool throughFrame);
bool routeButtonRelease(HWND hwnd, XEvent &event, bool throughFrame);
bool routeMotion(HWND hwnd, XEvent &event, bool throughFrame);
}  // namespace om::messages

namespace om::messages {
// The top-level window above hwnd (hwnd itself when it is one); null for
// a dead handle.
HWND topLevelOf(HWND hwnd);
// FocusIn and FocusOut of a window's widgets.
void translateFocus(HWND hwnd, XEvent &event);
}  // namespace om::messages
