// XoBorder input: the button actions (caption buttons, system menu, double
// clicks) and the move/size machine, one frame at a time, driven by the
// pointer and by keys.  Input comes straight from X and handed back by the
// default window procedure (motion with root coordinates 0).
#include "XoBorderP.h"

#include <X11/cursorfont.h>
#include <X11/keysym.h>

#include <algorithm>

namespace om::widgets {

namespace {

// Keyboard steps, in pixels, of a move or resize.
constexpr int kKeyStep = 8;
// The smallest client a resize leaves.
constexpr int kMinClient = 8;

struct Tracking {
    XoBorderWidget frame = nullptr;
    int mode = XoTRACK_NONE; // XoTRACK_MOVE or XoTRACK_SIZE
    bool keyboard = false;
    int region = -1;         // sizing region (region codes), or -1 before a key picks one
    XoRect start{};          // frame rectangle when tracking began
    XoRect current{};
    bool haveRef = false;
    int refX = 0, refY = 0;  // pointer at the start, root coordinates
    bool grabbed = false;
    bool changed = false;
};

Tracking track;
bool sysMenuOn = false; // while the user library shows a system menu

Widget asWidget(XoBorderWidget w)
{
    return reinterpret_cast<Widget>(w);
}

// Root coordinates of an event's point.  Events handed back by the
// default window procedure during a drag carry root coordinates 0; their
// x/y are frame coordinates, translated through Xt's cached positions.
void rootPoint(Widget w, const XEvent *ev, int &rx, int &ry)
{
    int x, y, xr, yr;
    bool sent;
    if (ev->type == MotionNotify) {
        x = ev->xmotion.x, y = ev->xmotion.y, xr = ev->xmotion.x_root, yr = ev->xmotion.y_root;
        sent = ev->xmotion.send_event;
    } else {
        x = ev->xbutton.x, y = ev->xbutton.y, xr = ev->xbutton.x_root, yr = ev->xbutton.y_root;
        sent = ev->xbutton.send_event;
    }
    if (sent && xr == 0 && yr == 0) {
        Position px, py;
        XtTranslateCoords(w, Position(x), Position(y), &px, &py);
        rx = px, ry = py;
    } else {
        rx = xr, ry = yr;
    }
}

// Region code -> WM_SIZING edge: the two numberings differ (left and right
// are swapped between them), so never pass a region code through.
int edgeOfRegion(int region)
{
    switch (region) {
    case XoREGION_TOPLEFT: return XoEDGE_TOPLEFT;
    case XoREGION_TOP: return XoEDGE_TOP;
    case XoREGION_BOTTOM: return XoEDGE_BOTTOM;
    case XoREGION_BOTTOMRIGHT: return XoEDGE_BOTTOMRIGHT;
    case XoREGION_BOTTOMLEFT: return XoEDGE_BOTTOMLEFT;
    case XoREGION_LEFT: return XoEDGE_LEFT;
    case XoREGION_TOPRIGHT: return XoEDGE_TOPRIGHT;
    case XoREGION_RIGHT: return XoEDGE_RIGHT;
    default: return -1;
    }
}

bool sizesLeft(int r) { return r == XoREGION_LEFT || r == XoREGION_TOPLEFT || r == XoREGION_BOTTOMLEFT; }
bool sizesRight(int r) { return r == XoREGION_RIGHT || r == XoREGION_TOPRIGHT || r == XoREGION_BOTTOMRIGHT; }
bool sizesTop(int r) { return r == XoREGION_TOP || r == XoREGION_TOPLEFT || r == XoREGION_TOPRIGHT; }
bool sizesBottom(int r) { return r == XoREGION_BOTTOM || r == XoREGION_BOTTOMLEFT || r == XoREGION_BOTTOMRIGHT; }

unsigned cursorShapeOf(int region)
{
    switch (region) {
    case XoREGION_TOPLEFT: return XC_top_left_corner;
    case XoREGION_TOPRIGHT: return XC_top_right_corner;
    case XoREGION_BOTTOMLEFT: return XC_bottom_left_corner;
    case XoREGION_BOTTOMRIGHT: return XC_bottom_right_corner;
    case XoREGION_TOP: return XC_top_side;
    case XoREGION_BOTTOM: return XC_bottom_side;
    case XoREGION_LEFT: return XC_left_side;
    case XoREGION_RIGHT: return XC_right_side;
    default: return XC_fleur;
    }
}

XoRect frameRect(XoBorderWidget w)
{
    return XoRect{w->core.x, w->core.y, w->core.width, w->core.height};
}

void grab(XoBorderWidget w, int region)
{
    Widget self = asWidget(w);
    if (!XtIsRealized(self))
        return;
    Cursor cursor = XCreateFontCursor(XtDisplay(self), cursorShapeOf(region));
    XtGrabPointer(self, False, ButtonPressMask | ButtonReleaseMask | PointerMotionMask,
                  GrabModeAsync, GrabModeAsync, None, cursor, CurrentTime);
    XFreeCursor(XtDisplay(self), cursor);
    XtGrabKeyboard(self, False, GrabModeAsync, GrabModeAsync, CurrentTime);
    track.grabbed = true;
}

void ungrab()
{
    if (track.grabbed && track.frame) {
        Widget self = asWidget(track.frame);
        XtUngrabPointer(self, CurrentTime);
        XtUngrabKeyboard(self, CurrentTime);
        XFlush(XtDisplay(self));
    }
    track.grabbed = false;
}

void begin(XoBorderWidget w, int mode, int region, bool keyboard)
{
    track = Tracking{};
    track.frame = w;
    track.mode = mode;
    track.region = region;
    track.keyboard = keyboard;
    track.start = track.current = frameRect(w);
    w->border.track_mode = mode;
    grab(w, region);
}

// Applies a new rectangle: the user library may change it first
// (WM_MOVING/WM_SIZING), then the frame goes there and lays out its child.
void step(XoRect rect)
{
    XoBorderWidget w = track.frame;
    Widget self = asWidget(w);
    if (track.mode == XoTRACK_MOVE) {
        if (upcalls().omSendWM_MOVING)
            upcalls().omSendWM_MOVING(self, &rect);
    } else if (upcalls().omSendWM_SIZING) {
        upcalls().omSendWM_SIZING(self, &rect, edgeOfRegion(track.region));
    }
    if (!track.frame)
        return; // the upcall destroyed the frame
    rect.width = std::max(rect.width, 1);
    rect.height = std::max(rect.height, 1);
    if (rect.x == track.current.x && rect.y == track.current.y &&
        rect.width == track.current.width && rect.height == track.current.height)
        return;
    track.current = rect;
    track.changed = true;
    placeFrame(w, rect.x, rect.y, rect.width, rect.height);
}

int minWidthOf(XoBorderWidget w)
{
    FrameLayout l = layoutOf(w);
    int buttons = 0;
    for (int r : {XoREGION_SYSMENU, XoREGION_MINIMIZE, XoREGION_MAXIMIZE})
        buttons += buttonRect(w, r).width;
    return std::max(2 * l.thick + kMinClient, 2 * l.thick + buttons + 2);
}

int minHeightOf(XoBorderWidget w)
{
    FrameLayout l = layoutOf(w);
    return 2 * l.thick + l.caption + kMinClient;
}

// The rectangle for a pointer displaced by (dx, dy) from where tracking
// began.  Sizing keeps the opposite sides where they were.
XoRect displaced(int dx, int dy)
{
    XoRect r = track.start;
    if (track.mode == XoTRACK_MOVE) {
        r.x += dx;
        r.y += dy;
        return r;
    }
    int minW = minWidthOf(track.frame), minH = minHeightOf(track.frame);
    int left = r.x, top = r.y, right = r.x + r.width, bottom = r.y + r.height;
    if (sizesLeft(track.region))
        left = std::min(left + dx, right - minW);
    if (sizesRight(track.region))
        right = std::max(right + dx, left + minW);
    if (sizesTop(track.region))
        top = std::min(top + dy, bottom - minH);
    if (sizesBottom(track.region))
        bottom = std::max(bottom + dy, top + minH);
    return XoRect{left, top, right - left, bottom - top};
}

// Ends the move or resize in progress.  Accepted, the result goes to
// activateCallback (7 moved, 12 sized; 13 for an icon, whose position the
// frame keeps itself); cancelled, the frame goes back where it was.
void finish(bool accept, KeySym keysym, XEvent *event)
{
    XoBorderWidget w = track.frame;
    if (!w)
        return;
    ungrab();
    Tracking done = track;
    track = Tracking{};
    w->border.track_mode = XoTRACK_NONE;
    bool label = w->border.sizing_label;
    w->border.sizing_label = False;
    if (!accept) {
        if (done.changed)
            placeFrame(w, done.start.x, done.start.y, done.start.width, done.start.height);
        else if (label && XtIsRealized(asWidget(w)))
            redraw(w);
        return;
    }
    if (label && XtIsRealized(asWidget(w)))
        redraw(w);
    if (!done.changed && !done.keyboard)
        return;
    XoBorderCallbackStruct data;
    int reason = done.mode == XoTRACK_SIZE ? XoCR_SIZED : XoCR_MOVED;
    if (w->border.state == XoSTATE_ICONIC) {
        w->border.icon_x = w->core.x;
        w->border.icon_y = w->core.y;
        reason = XoCR_MOVED_SELF;
    }
    fillCallData(w, data, reason, event);
    data.region = done.region;
    data.edge = done.mode == XoTRACK_SIZE ? edgeOfRegion(done.region) : -1;
    data.keysym = int(keysym);
    callActivate(w, data);
}

bool isModifierKey(KeySym keysym)
{
    return IsModifierKey(keysym) || keysym == NoSymbol;
}

void keyStep(KeySym keysym)
{
    int dx = 0, dy = 0;
    switch (keysym) {
    case XK_Left: case XK_KP_Left: dx = -1; break;
    case XK_Right: case XK_KP_Right: dx = 1; break;
    case XK_Up: case XK_KP_Up: dy = -1; break;
    case XK_Down: case XK_KP_Down: dy = 1; break;
    default: return;
    }
    if (track.mode == XoTRACK_SIZE) {
        // The first arrow picks the side to size; an arrow across it then
        // takes the corner.  Picking does not size yet.
        int r = track.region;
        if (r < 0) {
            track.region = dx < 0 ? XoREGION_LEFT : dx > 0 ? XoREGION_RIGHT
                         : dy < 0 ? XoREGION_TOP : XoREGION_BOTTOM;
            return;
        }
        if ((r == XoREGION_TOP || r == XoREGION_BOTTOM) && dx) {
            track.region = r == XoREGION_TOP ? (dx < 0 ? XoREGION_TOPLEFT : XoREGION_TOPRIGHT)
                                             : (dx < 0 ? XoREGION_BOTTOMLEFT : XoREGION_BOTTOMRIGHT);
            return;
        }
        if ((r == XoREGION_LEFT || r == XoREGION_RIGHT) && dy) {
            track.region = r == XoREGION_LEFT ? (dy < 0 ? XoREGION_TOPLEFT : XoREGION_BOTTOMLEFT)
                                              : (dy < 0 ? XoREGION_TOPRIGHT : XoREGION_BOTTOMRIGHT);
            return;
        }
    }
    // Keyboard steps accumulate from the start rectangle, like pointer
    // displacements.
    int curDx = track.mode == XoTRACK_MOVE ? track.current.x - track.start.x : 0;
    int curDy = track.mode == XoTRACK_MOVE ? track.current.y - track.start.y : 0;
    if (track.mode == XoTRACK_SIZE) {
        if (sizesLeft(track.region))
            curDx = track.current.x - track.start.x;
        else if (sizesRight(track.region))
            curDx = track.current.width - track.start.width;
        if (sizesTop(track.region))
            curDy = track.current.y - track.start.y;
        else if (sizesBottom(track.region))
            curDy = track.current.height - track.start.height;
    }
    step(displaced(curDx + dx * kKeyStep, curDy + dy * kKeyStep));
    // Pointer motion after keys continues from here.
    track.haveRef = false;
}

void startKeyboard(Widget frame, int mode)
{
    auto w = reinterpret_cast<XoBorderWidget>(frame);
    if (!frame || !XoIsBorder(frame) || track.frame)
        return;
    if (w->border.state == XoSTATE_MAXIMIZED)
        return;
    if (mode == XoTRACK_SIZE &&
        (!(w->border.decorations & XoDECOR_RESIZEH) || w->border.state != XoSTATE_NORMAL))
        return;
    begin(w, mode, -1, true);
    w->border.sizing_label = mode == XoTRACK_SIZE;
}

void callReason(XoBorderWidget w, int reason, int region, XEvent *event, bool &doIt)
{
    XoBorderCallbackStruct data;
    fillCallData(w, data, reason, event);
    data.region = region;
    doIt = callActivate(w, data);
}

void setState(XoBorderWidget w, int state)
{
    if (w->border.state != state)
        XtVaSetValues(asWidget(w), XoNstate, state, nullptr);
}

void pressButtonLook(XoBorderWidget w, int region)
{
    if (w->border.pressed_button == region)
        return;
    w->border.pressed_button = region;
    redraw(w);
}

// The system menu, greyed to fit the state, shown by the user library.
void showSystemMenu(XoBorderWidget w, XEvent *event)
{
    const XoUpcalls &up = upcalls();
    bool doIt;
    callReason(w, XoCR_MOUSE_MENU, XoREGION_SYSMENU, event, doIt);
    if (!doIt || !up.omPopupSystemMenu)
        return;
    Widget self = asWidget(w);
    int state = w->border.state, d = w->border.decorations;
    if (up.omEnableSystemMenuItem) {
        up.omEnableSystemMenuItem(self, 0, state != XoSTATE_NORMAL);
        up.omEnableSystemMenuItem(self, 1, state != XoSTATE_MAXIMIZED);
        up.omEnableSystemMenuItem(self, 2, state == XoSTATE_NORMAL && (d & XoDECOR_RESIZEH));
        up.omEnableSystemMenuItem(self, 3, state != XoSTATE_ICONIC && (d & XoDECOR_MINIMIZE));
        up.omEnableSystemMenuItem(self, 4, state != XoSTATE_MAXIMIZED && (d & XoDECOR_MAXIMIZE));
        up.omEnableSystemMenuItem(self, 7, true);
    }
    XRectangle b = buttonRect(w, XoREGION_SYSMENU);
    Position rx, ry;
    XtTranslateCoords(self, b.x, Position(b.y + b.height), &rx, &ry);
    sysMenuOn = true;
    up.omPopupSystemMenu(self, rx, ry);
    sysMenuOn = false;
}

void maximizeOrRestore(XoBorderWidget w, int region, XEvent *event)
{
    bool doIt;
    if (w->border.state == XoSTATE_NORMAL) {
        callReason(w, XoCR_MAXIMIZE, region, event, doIt);
        if (doIt)
            setState(w, XoSTATE_MAXIMIZED);
    } else {
        callReason(w, XoCR_RESTORE, region, event, doIt);
        if (doIt)
            setState(w, XoSTATE_NORMAL);
    }
}

}  // namespace

void forgetFrame(XoBorderWidget w)
{
    if (track.frame != w)
        return;
    ungrab();
    track = Tracking{};
}

void pressAction(Widget widget, XEvent *event, String *, Cardinal *)
{
    auto w = reinterpret_cast<XoBorderWidget>(widget);
    if (event->type != ButtonPress)
        return;
    if (track.frame) {
        // A click ends a keyboard move or resize, as Return would.
        if (track.frame == w && track.keyboard)
            finish(true, XK_Return, event);
        return;
    }
    int region = regionAt(w, event->xbutton.x, event->xbutton.y);
    Time multi = Time(XtGetMultiClickTime(XtDisplay(widget)));
    // Only the caption, the system-menu button and the icon know double
    // clicks; the caption buttons take every press as a press.
    bool knowsDouble = region == XoREGION_CAPTION || region == XoREGION_SYSMENU;
    bool doubleClick = knowsDouble && region == w->border.last_press_region &&
                       event->xbutton.time - w->border.last_press_time <= multi;
    w->border.last_press_time = doubleClick ? 0 : event->xbutton.time;
    w->border.last_press_region = doubleClick ? -1 : region;
    bool iconic = w->border.state == XoSTATE_ICONIC;
    bool doIt;

    if (iconic || w->border.display_state != XoDISPLAY_ACTIVE) {
        callReason(w, iconic ? XoCR_ACTIVATE_ICON : XoCR_ACTIVATE, region, event, doIt);
        if (doIt)
            XoRaiseChildWindow(widget);
        if (!XtIsObject(widget) || widget->core.being_destroyed)
            return;
    }
    if (doubleClick) {
        if (iconic) {
            callReason(w, XoCR_RESTORE, region, event, doIt);
            if (doIt)
                setState(w, XoSTATE_NORMAL);
        } else if (region == XoREGION_CAPTION && (w->border.decorations & XoDECOR_MAXIMIZE)) {
            maximizeOrRestore(w, region, event);
        } else if (region == XoREGION_SYSMENU) {
            auto isEnabled = upcalls().omIsCloseMenuItemEnabled;
            if (!isEnabled || isEnabled(w->border.menu))
                callReason(w, XoCR_CLOSE, region, event, doIt);
        }
        return;
    }
    switch (region) {
    case XoREGION_MINIMIZE:
    case XoREGION_MAXIMIZE:
        w->border.track_mode = XoTRACK_BUTTON;
        w->border.press_region = region;
        pressButtonLook(w, region);
        return;
    case XoREGION_SYSMENU:
        showSystemMenu(w, event);
        return;
    case XoREGION_CAPTION:
        if (w->border.state == XoSTATE_MAXIMIZED)
            return;
        break;
    case XoREGION_TOPLEFT: case XoREGION_TOP: case XoREGION_BOTTOM: case XoREGION_BOTTOMRIGHT:
    case XoREGION_BOTTOMLEFT: case XoREGION_LEFT: case XoREGION_TOPRIGHT: case XoREGION_RIGHT:
        break;
    default:
        return;
    }
    int rx, ry;
    rootPoint(widget, event, rx, ry);
    Position px, py;
    XtTranslateCoords(XtParent(widget), 0, 0, &px, &py);
    bool move = region == XoREGION_CAPTION;
    if (move && upcalls().omSendSC_MOVE)
        upcalls().omSendSC_MOVE(widget, rx - px, ry - py);
    else if (!move && upcalls().omSendSC_SIZE)
        upcalls().omSendSC_SIZE(widget, rx - px, ry - py);
    if (widget->core.being_destroyed || track.frame)
        return;
    begin(w, move ? XoTRACK_MOVE : XoTRACK_SIZE, move ? -1 : region, false);
    w->border.sizing_label = !move;
    track.haveRef = true;
    track.refX = rx;
    track.refY = ry;
}

void motionAction(Widget widget, XEvent *event, String *, Cardinal *)
{
    auto w = reinterpret_cast<XoBorderWidget>(widget);
    if (event->type != MotionNotify)
        return;
    if (w->border.track_mode == XoTRACK_BUTTON) {
        int region = regionAt(w, event->xmotion.x, event->xmotion.y);
        pressButtonLook(w, region == w->border.press_region ? region : -1);
        return;
    }
    if (track.frame != w)
        return;
    if (track.mode == XoTRACK_SIZE && track.region < 0)
        return; // keyboard sizing: a key picks the side first
    int rx, ry;
    rootPoint(widget, event, rx, ry);
    if (!track.haveRef) {
        // Keyboard mode: the pointer joins in from where it is now,
        // continuing from the rectangle the keys reached.
        track.haveRef = true;
        track.refX = rx;
        track.refY = ry;
        track.start = track.current;
        return;
    }
    step(displaced(rx - track.refX, ry - track.refY));
}

void releaseAction(Widget widget, XEvent *event, String *, Cardinal *)
{
    auto w = reinterpret_cast<XoBorderWidget>(widget);
    if (event->type != ButtonRelease)
        return;
    if (w->border.track_mode == XoTRACK_BUTTON) {
        int pressed = w->border.press_region;
        w->border.track_mode = XoTRACK_NONE;
        w->border.press_region = -1;
        pressButtonLook(w, -1);
        if (regionAt(w, event->xbutton.x, event->xbutton.y) != pressed)
            return;
        if (pressed == XoREGION_MINIMIZE) {
            bool doIt;
            callReason(w, XoCR_MINIMIZE, pressed, event, doIt);
            if (doIt)
                setState(w, XoSTATE_ICONIC);
        } else {
            maximizeOrRestore(w, pressed, event);
        }
        return;
    }
    if (track.frame == w && !track.keyboard)
        finish(true, NoSymbol, event);
}

void keyAction(Widget widget, XEvent *event, String *, Cardinal *)
{
    auto w = reinterpret_cast<XoBorderWidget>(widget);
    if (event->type != KeyPress)
        return;
    KeySym keysym = XLookupKeysym(&event->xkey, 0);
    if (track.frame) {
        if (!isModifierKey(keysym))
            XoProcessKeyEvents(keysym);
        return;
    }
    unsigned mods = event->xkey.state;
    if (!(mods & ControlMask))
        return;
    bool doIt;
    switch (keysym) {
    case XK_F4:
        callReason(w, XoCR_CLOSE, -1, event, doIt);
        break;
    case XK_F6:
        callReason(w, (mods & ShiftMask) ? XoCR_PREV_WINDOW : XoCR_NEXT_WINDOW, -1, event, doIt);
        break;
    case XK_F7:
        if (!(w->border.decorations & XoDECOR_MENU) && upcalls().omPost_SC_MOVE)
            upcalls().omPost_SC_MOVE(widget);
        break;
    case XK_F8:
        if (!(w->border.decorations & XoDECOR_MENU) && upcalls().omNonMenuBorderSysCB)
            upcalls().omNonMenuBorderSysCB(widget);
        break;
    default:
        break;
    }
}

}  // namespace om::widgets

using namespace om::widgets;

extern "C" {

OLMO_API void XoMoveWidget(Widget frame)
{
    startKeyboard(frame, XoTRACK_MOVE);
}

OLMO_API void XoSizeWidget(Widget frame)
{
    startKeyboard(frame, XoTRACK_SIZE);
}

OLMO_API int XoGetMoveStatus(void)
{
    return track.mode == XoTRACK_MOVE ? 1 : 0;
}

OLMO_API int XoGetSizeStatus(void)
{
    return track.mode == XoTRACK_SIZE ? 1 : 0;
}

OLMO_API int XoGetAcclStatus(Widget frame)
{
    return track.frame && asWidget(track.frame) == frame && track.keyboard ? 1 : 0;
}

// Escape cancels, Return accepts, arrows step; the user library turns every
// other key into Escape, and so does the frame for keys it is sent.
OLMO_API void XoProcessKeyEvents(KeySym keysym)
{
    if (!track.frame)
        return;
    switch (keysym) {
    case XK_Return:
    case XK_KP_Enter:
        finish(true, keysym, nullptr);
        return;
    case XK_Left: case XK_Right: case XK_Up: case XK_Down:
    case XK_KP_Left: case XK_KP_Right: case XK_KP_Up: case XK_KP_Down:
        keyStep(keysym);
        return;
    default:
        finish(false, keysym, nullptr);
        return;
    }
}

OLMO_API void XoEndMoveSize(Boolean accept)
{
    finish(accept, accept ? XK_Return : XK_Escape, nullptr);
}

OLMO_API Boolean XoSysMenuOn(void)
{
    return sysMenuOn ? True : False;
}

}  // extern "C"
