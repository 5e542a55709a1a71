// The X pump and the per-event router: pumps the toolkit on the main
// thread, finds the window behind each X event, lets the toolkit have what
// belongs to widgets and hands input to the translators; also the input
// selection of a window's widgets and the idle work run after pumping.
#include "messages/xevents.h"

#include "core/omwindow.h"
#include "kernel/omdisplay.h"
#include "kernel/omkeyboard.h"
#include "kernel/omwidgetmap.h"
#include "messages/omkeymap.h"
#include "messages/ommessageq.h"

#include <X11/Intrinsic.h>

#include <cstdio>
#include <cstdlib>

namespace {

const char *const kEventNames[36] = {
    "0", "1", "KeyPress", "KeyRelease", "ButtonPress", "ButtonRelease", "MotionNotify",
    "EnterNotify", "LeaveNotify", "FocusIn", "FocusOut", "KeymapNotify", "Expose",
    "GraphicsExpose", "NoExpose", "VisibilityNotify", "CreateNotify", "DestroyNotify",
    "UnmapNotify", "MapNotify", "MapRequest", "ReparentNotify", "ConfigureNotify",
    "ConfigureRequest", "GravityNotify", "ResizeRequest", "CirculateNotify",
    "CirculateRequest", "PropertyNotify", "SelectionClear", "SelectionRequest",
    "SelectionNotify", "ColormapNotify", "ClientMessage", "MappingNotify", "LASTEvent",
};

// -1 until the environment has been read.
int eventDebug = -1;

void debugEvent(const XEvent &ev)
{
    if (eventDebug < 0)
        eventDebug = std::getenv("OMEVENTDEBUG") ? 1 : 0;
    if (!eventDebug || ev.type < 0 || ev.type >= 34)
        return;
    const char *name = kEventNames[ev.type];
    switch (ev.type) {
    case KeyPress:
    case KeyRelease:
        std::fprintf(stderr, "event %20s\n", name);
        std::printf(" keycode %d, state 0x%x, serial=%lx, sent=%x, w=%lx\n", ev.xkey.keycode,
                    ev.xkey.state, ev.xkey.serial, ev.xkey.send_event,
                    static_cast<unsigned long>(ev.xkey.window));
        break;
    case FocusIn:
    case FocusOut:
        std::fprintf(stderr, "event %20s, \n", name);
        [[fallthrough]];
    case ClientMessage:
        std::fprintf(stderr, "event %20s\n", name);
        std::printf("SendEvent=%x, serial=%lx, w=%lx\n", ev.xany.send_event, ev.xany.serial,
                    static_cast<unsigned long>(ev.xany.window));
        break;
    default:
        break;
    }
    std::fflush(stdout);
}

bool isInputEvent(int type)
{
    return type >= KeyPress && type <= LeaveNotify;
}

// Root coordinates of a pointer event, for windows that answer by position.
void rootPoint(const XEvent &ev, int &x, int &y)
{
    x = y = 0;
    switch (ev.type) {
    case ButtonPress:
    case ButtonRelease:
        x = ev.xbutton.x_root;
        y = ev.xbutton.y_root;
        break;
    case MotionNotify:
        x = ev.xmotion.x_root;
        y = ev.xmotion.y_root;
        break;
    case EnterNotify:
    case LeaveNotify:
        x = ev.xcrossing.x_root;
        y = ev.xcrossing.y_root;
        break;
    default:
        break;
    }
}

// Key and button releases the toolkit took still end the key's down state.
void clearReleasedState(XEvent &ev)
{
    if (ev.type == ButtonRelease) {
        switch (ev.xbutton.button) {
        case 1: omVirKeyState[VK_LBUTTON] = 0; break;
        case 2: omVirKeyState[VK_MBUTTON] = 0; break;
        case 3: omVirKeyState[VK_RBUTTON] = 0; break;
        default: break;
        }
    } else if (ev.type == KeyRelease) {
        XKeyEvent copy = ev.xkey;
        unsigned vk = XK2VK(omLookupKeysym(&copy));
        if (vk < 0x100)
            omVirKeyState[vk] = 0;
    }
}

bool isRootClientMessage(const XEvent &ev)
{
    return ev.type == ClientMessage && ev.xclient.send_event && omDisplay &&
           ev.xclient.window == DefaultRootWindow(omDisplay);
}

void idleWork()
{
    omRunIdleDrain();
}

}  // namespace

#ifdef OLMO_MESSAGES_TEST_ACCESS
extern "C" OLMO_API void omTestRereadEventDebug(void)
{
    eventDebug = -1;
}
#endif

extern "C" OLMO_API int _omProcessXEvent(XEvent *event)
{
    if (!event)
        return 1;
    XEvent &ev = *event;
    debugEvent(ev);

    int x = 0, y = 0;
    rootPoint(ev, x, y);
    HWND hwnd = omWindowFromXWindow(x, y, ev.xany.window, nullptr);
    WindowRecord *w = hwnd ? omWindowRecord(hwnd) : nullptr;
    if (!w)
        hwnd = nullptr;
    if (w && w->insensitive && isInputEvent(ev.type))
        return 1;

    if (isRootClientMessage(ev)) {
        if (ev.xclient.message_type == omWinIniChangeAtom) {
            omWinIniChange(&ev);
            return 0;
        }
        if (ev.xclient.message_type == _omPostMessageAtom ||
            ev.xclient.message_type == _omSendMessageAtom) {
            omMessageBroadCast(&ev);
            return 0;
        }
    }

    if (!hwnd) {
        XtDispatchEvent(&ev);
        clearReleasedState(ev);
        return 1;
    }
    switch (ev.type) {
    case KeyPress:
    case KeyRelease:
    case ButtonPress:
    case ButtonRelease:
    case MotionNotify:
        omInputEvent(hwnd, &ev, -1, 0, 0);
        break;
    case FocusIn:
    case FocusOut:
        om::messages::translateFocus(hwnd, ev);
        break;
    case ConfigureNotify:
        XtDispatchEvent(&ev);
        if (omIsWindow(hwnd) && w->shellWidget && !(w->style & WS_CHILD) &&
            XtWindow(w->shellWidget) == ev.xconfigure.window)
            omConfigureNotify(hwnd, &ev);
        break;
    default:
        XtDispatchEvent(&ev);
        break;
    }
    return 1;
}

extern "C" OLMO_API int omProcessXEvents(XEvent *event)
{
    if (!omAppContext || !omDisplay)
        return 0;
    int routed = 0;
    if (event) {
        _omProcessXEvent(event);
        ++routed;
    }
    for (;;) {
        XtInputMask pending = XtAppPending(omAppContext);
        if (!pending)
            break;
        if (pending & XtIMTimer) {
            XtAppProcessEvent(omAppContext, XtIMTimer);
            continue;
        }
        if (pending & XtIMAlternateInput) {
            // The wake pipe: the waiting side looks at its queue now.
            XtAppProcessEvent(omAppContext, XtIMAlternateInput);
            return routed;
        }
        XEvent next;
        XtAppNextEvent(omAppContext, &next);
        ++routed;
        // One key per call, so that the key messages reach the program
        // one at a time.
        if (next.type == KeyPress || next.type == KeyRelease) {
            _omProcessXEvent(&next);
            break;
        }
        if (!_omProcessXEvent(&next))
            break;
    }
    idleWork();
    return routed;
}

extern "C" OLMO_API void omInputEvent(HWND hwnd, XEvent *event, int hit, int x, int y)
{
    if (!event || !omIsWindow(hwnd))
        return;
    switch (event->type) {
    case KeyPress:
    case KeyRelease:
        om::messages::translateKey(hwnd, *event);
        break;
    case ButtonPress:
    case ButtonRelease:
        om::messages::translateButton(hwnd, *event, hit, x, y);
        break;
    case MotionNotify:
        om::messages::translateMotion(hwnd, *event, hit, x, y);
        break;
    default:
        break;
    }
}

namespace {

constexpr long kInputMask = KeyPressMask | KeyReleaseMask | ButtonPressMask | ButtonReleaseMask |
                            EnterWindowMask | LeaveWindowMask | PointerMotionMask |
                            ButtonMotionMask | ExposureMask | ResizeRedirectMask |
                            FocusChangeMask | PropertyChangeMask;
constexpr long kMotionlessMask = kInputMask & ~(PointerMotionMask | ButtonMotionMask);
static_assert(kInputMask == 0x64A07F && kMotionlessMask == 0x64803F);

// Added to what the window already selects, so that the toolkit keeps
// the events its own handlers asked for.
void selectOn(Widget widget, long mask)
{
    if (!widget || !XtWindow(widget))
        return;
    XWindowAttributes attrs;
    long have = XGetWindowAttributes(omDisplay, XtWindow(widget), &attrs) ? attrs.your_event_mask : 0;
    XSelectInput(omDisplay, XtWindow(widget), have | mask);
}

}  // namespace

extern "C" OLMO_API long omInputMaskOf(int motionless)
{
    return motionless ? kMotionlessMask : kInputMask;
}

extern "C" void WINAPI omSelectInputs(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !omDisplay)
        return;
    if (w->kind != OM_WK_COMBOBOX)
        for (HWND child = w->firstChild; child;) {
            WindowRecord *c = omWindowRecord(child);
            if (!c)
                break;
            HWND next = c->nextSibling;
            omSelectInputs(child);
            child = next;
        }
    long mask = omInputMaskOf(w->motionless);
    selectOn(w->canvasWidget, mask);
    if (w->frameWidget != w->canvasWidget)
        selectOn(w->frameWidget, mask);
    if (w->style & WS_CHILD)
        selectOn(w->shellWidget, mask);
}
