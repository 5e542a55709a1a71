// Pointer events as the router sees them before they become client mouse
// messages: the window's own hit test, the non-client button and motion
// messages, WM_MOUSEACTIVATE and WM_PARENTNOTIFY for presses in child
// windows, WM_SETCURSOR for motion, and the coordinate helpers they use.
#include "messages/xevents.h"

#include "core/omwindow.h"
#include "kernel/omdisplay.h"
#include "kernel/omkeyboard.h"
#include "kernel/omthread.h"
#include "messages/ommessageq.h"
#include "widgets/XoBorder.h"

#include <X11/Intrinsic.h>

extern "C" {
OLMO_API int ombNcCalcHack = 0;
}

namespace om::messages {
namespace {

// The last answer to WM_NCHITTEST for a press.
LRESULT lastHitCode = HTCLIENT;

bool isWheel(unsigned button)
{
    return button >= 4 && button <= 7;
}

LPARAM screenPoint(int x, int y)
{
    return MAKELPARAM(x, y);
}

// A floating tool-bar frame answers for its parent.
bool isToolbarFrame(const WindowRecord &w)
{
    return w.frameWidget && XoIsBorder(w.frameWidget) && XoGetBorderType(w.frameWidget) == 1;
}

bool ownedByCaller(const WindowRecord &w)
{
    return omThreadRecordFromHandle(w.thread) == omCurrentThreadRecord();
}

struct Buttons {
    UINT clientDown, ncUp;
    unsigned vk;
};

Buttons buttonsOf(unsigned button)
{
    switch (button) {
    case 2: return {WM_MBUTTONDOWN, WM_NCMBUTTONUP, VK_MBUTTON};
    case 3: return {WM_RBUTTONDOWN, WM_NCRBUTTONUP, VK_RBUTTON};
    default: return {WM_LBUTTONDOWN, WM_NCLBUTTONUP, VK_LBUTTON};
    }
}

// The screen point (x, y) in the client area of hwnd.
POINT clientOf(HWND hwnd, int x, int y)
{
    POINT p{x, y};
    WindowRecord *w = omWindowRecord(hwnd);
    if (w && w->canvasWidget && XtWindow(w->canvasWidget)) {
        Window child;
        int cx = 0, cy = 0;
        XTranslateCoordinates(omDisplay, DefaultRootWindow(omDisplay), XtWindow(w->canvasWidget),
                              x, y, &cx, &cy, &child);
        p = {cx, cy};
    }
    return p;
}

// A press in the client area of a child window: activation and the
// parent's notification come before the mouse message itself.
void clientPress(HWND hwnd, WindowRecord &w, XEvent &ev)
{
    const XButtonEvent &b = ev.xbutton;
    HWND top = topLevelOf(hwnd);
    WindowRecord *t = omWindowRecord(top);
    if (!t || t->blockedByModal || (w.style & WS_DISABLED))
        return;
    Buttons info = buttonsOf(b.button);
    LPARAM activate = MAKELPARAM(HTCLIENT, info.clientDown);
    if (!ownedByCaller(w) && omIsUserInterfaceThreadSupported())
        omPostMessageEvent(hwnd, WM_MOUSEACTIVATE, reinterpret_cast<WPARAM>(top), activate, &ev,
                           nullptr, 0);
    else
        SendMessageA(hwnd, WM_MOUSEACTIVATE, reinterpret_cast<WPARAM>(top), activate);
    if (!omIsWindow(hwnd))
        return;
    omVirKeyState[info.vk] = 1;
    if ((w.exStyle & WS_EX_NOPARENTNOTIFY) || !omIsWindow(w.parent))
        return;
    POINT p = clientOf(w.parent, b.x_root, b.y_root);
    SendMessageA(w.parent, WM_PARENTNOTIFY, info.clientDown, MAKELPARAM(p.x, p.y));
}

}  // namespace

bool routeButtonPress(HWND hwnd, XEvent &ev, bool throughFrame)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !(w->style & WS_CHILD) || isWheel(ev.xbutton.button))
        return false;
    const XButtonEvent &b = ev.xbutton;
    LRESULT hit = SendMessageA(hwnd, WM_NCHITTEST, 0, screenPoint(b.x_root, b.y_root));
    lastHitCode = hit;
    if (!omIsWindow(hwnd))
        return true;
    if (hit != HTCLIENT) {
        UINT message = nonClientPress(hwnd, b);
        HWND to = throughFrame && isToolbarFrame(*w) && w->parent ? w->parent : hwnd;
        // The frame widget gets the press back from the default window
        // procedure, so a program that handles the message itself keeps
        // the frame from acting, as on Windows.
        SendMessageA(to, message, static_cast<WPARAM>(hit), screenPoint(b.x_root, b.y_root));
        return true;
    }
    clientPress(hwnd, *w, ev);
    if (!omIsWindow(hwnd))
        return true;
    ombNcCalcHack = throughFrame ? 1 : 0;
    omInputEvent(hwnd, &ev, -1, 0, 0);
    ombNcCalcHack = 0;
    return true;
}

bool routeButtonRelease(HWND hwnd, XEvent &ev, bool)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !(w->style & WS_CHILD) || isWheel(ev.xbutton.button) || GetCapture())
        return false;
    const XButtonEvent &b = ev.xbutton;
    Buttons info = buttonsOf(b.button);
    // A frame moving or sizing holds the pointer: its release ends that,
    // wherever the pointer is now.
    if (XoGetSizeStatus() || XoGetMoveStatus()) {
        omVirKeyState[info.vk] = 0;
        XtDispatchEvent(&ev);
        return true;
    }
    LRESULT hit = SendMessageA(hwnd, WM_NCHITTEST, 0, screenPoint(b.x_root, b.y_root));
    if (!omIsWindow(hwnd))
        return true;
    if (hit == HTCLIENT)
        return false;
    omVirKeyState[info.vk] = 0;
    // A tab control reads the part it was released over from wParam.
    WPARAM wParam = w->kind == OM_WK_TABCTRL ? static_cast<WPARAM>(hit) : 0;
    SendMessageA(hwnd, info.ncUp, wParam, screenPoint(b.x_root, b.y_root));
    return true;
}

bool routeMotion(HWND hwnd, XEvent &ev, bool throughFrame)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w)
        return false;
    const XMotionEvent &m = ev.xmotion;
    if ((w->style & WS_CHILD) && w->frameWidget && (XoGetSizeStatus() || XoGetMoveStatus())) {
        DispatchEventToChild(w, m.x_root, m.y_root, &ev);
        return true;
    }
    HWND capture = GetCapture();
    LRESULT hit;
    if (throughFrame && isToolbarFrame(*w)) {
        hit = SendMessageA(hwnd, WM_NCHITTEST, static_cast<WPARAM>(omCalculateHitTest(w, &ev)),
                           screenPoint(m.x_root, m.y_root));
    } else {
        HWND to = omIsWindow(capture) ? capture : hwnd;
        hit = SendMessageA(to, WM_NCHITTEST, 2, screenPoint(m.x_root, m.y_root));
    }
    if (!omIsWindow(hwnd))
        return true;
    if (capture)
        return false;
    if (omIsUserInterfaceThreadSupported())
        omProcessPostSetCursor(hwnd, &ev);
    else
        SendMessageA(hwnd, WM_SETCURSOR, reinterpret_cast<WPARAM>(hwnd),
                     MAKELPARAM(hit, WM_MOUSEMOVE));
    if (!omIsWindow(hwnd))
        return true;
    if (hit == HTCLIENT)
        return false;
    SendMessageA(hwnd, WM_NCMOUSEMOVE, static_cast<WPARAM>(hit), screenPoint(m.x_root, m.y_root));
    return true;
}

}  // namespace om::messages

extern "C" OLMO_API void omTranslateCoords(HWND to, HWND from, int *x, int *y)
{
    WindowRecord *t = omWindowRecord(to), *f = omWindowRecord(from);
    if (!t || !f || !x || !y || !omDisplay || !t->canvasWidget || !f->canvasWidget ||
        !XtWindow(t->canvasWidget) || !XtWindow(f->canvasWidget))
        return;
    Window child;
    XTranslateCoordinates(omDisplay, XtWindow(f->canvasWidget), XtWindow(t->canvasWidget), *x, *y,
                          x, y, &child);
}

extern "C" OLMO_API void DispatchEventToChild(WindowRecord *record, int x, int y, XEvent *event)
{
    if (!record || !record->shellWidget || !XtWindow(record->shellWidget) || !omDisplay)
        return;
    // The frame follows the pointer from the root position given; its own
    // position comes from the widget tree, without asking the server.
    Position fx = 0, fy = 0;
    XtTranslateCoords(record->shellWidget, 0, 0, &fx, &fy);
    XEvent motion{};
    XMotionEvent &m = motion.xmotion;
    m.type = MotionNotify;
    m.serial = XEventSerial;
    m.send_event = True;
    m.display = omDisplay;
    m.window = XtWindow(record->shellWidget);
    m.root = DefaultRootWindow(omDisplay);
    m.subwindow = None;
    m.time = event && event->type == MotionNotify ? event->xmotion.time : GetMessageTime() + 1;
    m.x = x - fx;
    m.y = y - fy;
    m.x_root = x;
    m.y_root = y;
    m.state = Button1Mask;
    m.is_hint = NotifyNormal;
    m.same_screen = True;
    XtDispatchEvent(&motion);
}

namespace om::messages {
HWND topLevelOf(HWND hwnd)
{
    for (HWND h = hwnd; h;) {
        WindowRecord *w = omWindowRecord(h);
        if (!w)
            return nullptr;
        if (!(w->style & WS_CHILD) || !w->parent)
            return h;
        h = w->parent;
    }
    return nullptr;
}
}  // namespace om::messages
