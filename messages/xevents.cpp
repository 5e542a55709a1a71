// The X pump and the per-event router: pumps the toolkit on the main
// thread, finds the window behind each X event, lets the toolkit have what
// belongs to widgets and hands input to the translators; also the input
// selection of a window's widgets and the idle work run after pumping.
#include "messages/xevents.h"

#include "core/omwindow.h"
#include "graphics/omgdi.h"
#include "kernel/omdisplay.h"
#include "kernel/omeventhooks.h"
#include "kernel/omkeyboard.h"
#include "kernel/omwidgetmap.h"
#include "messages/omkeymap.h"
#include "messages/ommessageq.h"
#include "messages/ompaint.h"

#include <X11/Intrinsic.h>
#include <X11/StringDefs.h>
#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

extern "C" {
OLMO_API int omWMSizeOnMap = 0;
OLMO_API unsigned long XEventSerial = 0;

// Placeholders until their owners land (messages/placeholders.cpp).
BOOL WINAPI omPaintIcon(HWND hwnd, LPARAM xwindow);
HWND WINAPI omWindowToHParent(XEvent *event, Widget *widget, int *part, int *x, int *y);
void WINAPI omScrollbarNCMsg(HWND hwnd, int part, XEvent *event);
int WINAPI omWindowCacheIdleTimeInit(void);
}

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
    omWindowCacheIdleTimeInit();
    omRunIdleDrain();
}

// A Japanese input method hands some key presses back to the server a
// second time with the serial of the original: the copy is dropped.
bool duplicateKeyPress(const XEvent &ev)
{
    static const bool japanese = [] {
        const char *lang = std::getenv("LANG");
        return lang && std::strstr(lang, "ja_JP");
    }();
    static unsigned long lastSerial = 0;
    static bool seen = false;
    if (!japanese || ev.type != KeyPress)
        return false;
    bool duplicate = seen && ev.xkey.serial == lastSerial;
    lastSerial = ev.xkey.serial;
    seen = true;
    return duplicate;
}

// Set once a key other than Return was pressed: from then on a Return
// press may be the input method's, which it filters itself.
bool kanjiReturn = false;

// Keys the toolkit handles itself: Control+space (the input method's
// switch) and Tab in an edit field that a tree or list view placed in
// itself for label editing.
bool keyForToolkit(const XEvent &ev, unsigned keysym)
{
    if (ev.xkey.state == omControlMask && keysym == XK_space)
        return true;
    if (keysym != XK_Tab)
        return false;
    HWND hwnd = omWindowToWidget(ev.type, ev.xkey.window);
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || w->kind != OM_WK_EDIT)
        return false;
    WindowRecord *p = omWindowRecord(w->parent);
    return p && (p->kind == OM_WK_TREEVIEW || p->kind == OM_WK_LISTVIEW);
}

// Pointer crossing and motion of the window's own widgets.
bool isPointerEvent(int type)
{
    return type == MotionNotify || type == EnterNotify || type == LeaveNotify;
}

// The word of a top-level window's control words that says whether its
// last map already sent WM_SIZE; top-level windows of every kind leave
// the last word free for it.
constexpr int kSizedOnMapWord = 21;

bool isShellEvent(const WindowRecord &w, Window window)
{
    return !(w.style & WS_CHILD) && w.shellWidget && XtWindow(w.shellWidget) == window;
}

bool iconic(Window window)
{
    Atom type = None;
    int format = 0;
    unsigned long count = 0, after = 0;
    unsigned char *data = nullptr;
    bool result = false;
    if (XGetWindowProperty(omDisplay, window, omWmStateAtom, 0, 1, False, omWmStateAtom, &type,
                           &format, &count, &after, &data) == Success &&
        data && format == 32 && count == 1)
        result = *reinterpret_cast<long *>(data) == IconicState;
    if (data)
        XFree(data);
    return result;
}

// Minimising and restoring by the window manager show only as unmapping
// and mapping the shell: the window hears WM_SIZE once for each.
void mapChange(HWND hwnd, WindowRecord &w, const XEvent &ev)
{
    LONG_PTR &sizedOnMap = w.controlWords[kSizedOnMapWord];
    if (ev.type == UnmapNotify) {
        if (!isShellEvent(w, ev.xunmap.window) || !iconic(ev.xunmap.window))
            return;
        sizedOnMap = 0;
        SendMessageA(hwnd, WM_SIZE, SIZE_MINIMIZED, 0);
        return;
    }
    if (!isShellEvent(w, ev.xmap.window) || !w.configured || sizedOnMap)
        return;
    sizedOnMap = 1;
    Dimension cw = 0, ch = 0;
    if (w.canvasWidget)
        XtVaGetValues(w.canvasWidget, XtNwidth, &cw, XtNheight, &ch, nullptr);
    omWMSizeOnMap = 1;
    SendMessageA(hwnd, WM_SIZE, SIZE_RESTORED, MAKELPARAM(cw, ch));
    omWMSizeOnMap = 0;
}

void paletteChanged(HWND from)
{
    for (HWND h = omTopLevelWindowList; h;) {
        WindowRecord *w = omWindowRecord(h);
        if (!w)
            break;
        HWND next = w->nextSibling;
        SendMessageA(h, WM_PALETTECHANGED, reinterpret_cast<WPARAM>(from), 0);
        h = next;
    }
}

// What every message posted while this event is routed carries: the
// pointer's last root position, and the event's time for keys and buttons
// (0 otherwise).  Retrieval replaces both with the retrieved message's.
void noteRoutingState(const XEvent &ev)
{
    int x = 0, y = 0;
    omLastMessagePos(&x, &y);
    DWORD time = 0;
    switch (ev.type) {
    case MotionNotify:
    case EnterNotify:
    case LeaveNotify:
        rootPoint(ev, x, y);
        break;
    case ButtonPress:
    case ButtonRelease:
        rootPoint(ev, x, y);
        time = static_cast<DWORD>(ev.xbutton.time);
        break;
    case KeyPress:
    case KeyRelease:
        time = static_cast<DWORD>(ev.xkey.time);
        break;
    default:
        break;
    }
    omSetLastMessageState(x, y, time);
}

bool throughFrameWidget(const WindowRecord &w, Window window)
{
    return (w.style & WS_CHILD) && w.frameWidget && w.frameWidget != w.canvasWidget &&
           XtWindow(w.frameWidget) == window;
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

    unsigned keysym = 0;
    if (ev.type == KeyPress) {
        XKeyEvent copy = ev.xkey;
        keysym = omLookupKeysym(&copy);
        if (keysym != XK_Return)
            kanjiReturn = true;
        if (keyForToolkit(ev, keysym)) {
            XtDispatchEvent(&ev);
            return 1;
        }
    }
    if (ev.type == Expose)
        EnumWindows(omPaintIcon, static_cast<LPARAM>(ev.xexpose.window));
    if (lpEventHook && lpEventHook(&ev))
        return 1;

    int x = 0, y = 0;
    rootPoint(ev, x, y);
    HWND hwnd = omWindowFromXWindow(x, y, ev.xany.window, nullptr);
    WindowRecord *w = hwnd ? omWindowRecord(hwnd) : nullptr;
    if (!w) {
        hwnd = nullptr;
        if (isPointerEvent(ev.type))
            SetCursor(nullptr);
        else if (ev.type == ButtonRelease && GetCapture())
            ReleaseCapture();
    } else if (w->insensitive && isInputEvent(ev.type)) {
        return 1;
    }

    if (ev.type == KeyPress && kanjiReturn && keysym == XK_Return && XFilterEvent(&ev, None))
        return 1;
    if (ev.type == ColormapNotify && ombUsesPalettes)
        paletteChanged(hwnd);

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

    noteRoutingState(ev);
    bool throughFrame = false;
    if (!hwnd) {
        // Widgets of a window's parts (frame, scroll bars) that the widget
        // map does not name.
        Widget widget = nullptr;
        int part = -1, px = 0, py = 0;
        if (HWND owner = omWindowToHParent(&ev, &widget, &part, &px, &py); omIsWindow(owner)) {
            if (part >= 4 && part <= 7) {
                omScrollbarNCMsg(owner, part, &ev);
                return 1;
            }
            hwnd = owner;
            w = omWindowRecord(owner);
            throughFrame = part == 8;
        }
    } else {
        throughFrame = throughFrameWidget(*w, ev.xany.window);
    }
    if (!hwnd) {
        XtDispatchEvent(&ev);
        clearReleasedState(ev);
        return 1;
    }
    switch (ev.type) {
    case ButtonPress:
        if (!om::messages::routeButtonPress(hwnd, ev, throughFrame))
            omInputEvent(hwnd, &ev, -1, 0, 0);
        break;
    case ButtonRelease:
        if (!om::messages::routeButtonRelease(hwnd, ev, throughFrame))
            omInputEvent(hwnd, &ev, -1, 0, 0);
        break;
    case MotionNotify:
        if (!om::messages::routeMotion(hwnd, ev, throughFrame))
            omInputEvent(hwnd, &ev, -1, 0, 0);
        break;
    case KeyPress:
    case KeyRelease:
        omInputEvent(hwnd, &ev, -1, 0, 0);
        break;
    case FocusIn:
    case FocusOut:
        om::messages::translateFocus(hwnd, ev);
        break;
    case Expose:
    case GraphicsExpose:
        omProcessExposeEvent(hwnd, &ev);
        break;
    case UnmapNotify:
    case MapNotify:
        // The shell keeps its own mapped and iconic state from these.
        XtDispatchEvent(&ev);
        if (omIsWindow(hwnd))
            mapChange(hwnd, *w, ev);
        break;
    case ConfigureNotify:
        XtDispatchEvent(&ev);
        if (omIsWindow(hwnd) && isShellEvent(*w, ev.xconfigure.window))
            omConfigureNotify(hwnd, &ev);
        break;
    case ClientMessage:
        XtDispatchEvent(&ev);
        if (omIsWindow(hwnd))
            omPostMessageEvent(hwnd, WM_IME_STARTCOMPOSITION, 0, 0, nullptr, nullptr, 0);
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
    if (!lpPendingHook)
        lpPendingHook = XtAppPending;
    for (;;) {
        XtInputMask pending = lpPendingHook(omAppContext);
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
        if (duplicateKeyPress(next))
            continue;
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
    XEventSerial = event->xany.serial;
    om::messages::InputRoute route = om::messages::inputRoute(hwnd, *event);
    switch (event->type) {
    case KeyPress:
    case KeyRelease:
        om::messages::translateKey(hwnd, *event, route);
        break;
    case ButtonPress:
    case ButtonRelease:
        om::messages::translateButton(hwnd, *event, hit, x, y, route);
        break;
    case MotionNotify:
        om::messages::translateMotion(hwnd, *event, hit, x, y, route);
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

// Added to what the toolkit selects for the widget's own handlers and
// translations, which it knows without asking the server.
void selectOn(Widget widget, long mask)
{
    if (!widget || !XtWindow(widget))
        return;
    XSelectInput(omDisplay, XtWindow(widget), static_cast<long>(XtBuildEventMask(widget)) | mask);
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
