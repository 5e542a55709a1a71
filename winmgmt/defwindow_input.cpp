// Input messages the default procedure hands back to the widgets behind a
// window as X events (keys to the frameWidget, client pointer messages to
// the canvasWidget, non-client ones to the shellWidget), so that Motif
// widgets and the XoBorder frame do their own thing; and the overflow test
// of a single-line text field.
#include "winmgmt/omdefwindow.h"

#include "defwindow_internal.h"

#include "kernel/omdisplay.h"
#include "kernel/omkeyboard.h"
#include "messages/omkeyevent.h"
#include "widgets/XoBorder.h"

#include <Xm/Text.h>
#include <Xm/TextF.h>
#include <Xm/Xm.h>
#include <X11/Intrinsic.h>
#include <X11/XKBlib.h>
#include <X11/keysym.h>

#include <cstdlib>
#include <string>

extern "C" {
OLMO_API int omLineExceeded = 0;
OLMO_API HWND omCallingContextMenuWindow = nullptr;
}

namespace om::winmgmt::defwnd {
namespace {

// The modifier bits the server gives Alt, Meta and NumLock (they move
// between keyboards, unlike Shift, Lock and Control).
struct ModifierMasks {
    unsigned altMeta = Mod1Mask;
    unsigned numLock = Mod2Mask;
};

const ModifierMasks &modifierMasks()
{
    static const ModifierMasks masks = [] {
        ModifierMasks m;
        XModifierKeymap *map = omDisplay ? XGetModifierMapping(omDisplay) : nullptr;
        if (!map)
            return m;
        unsigned altMeta = 0, numLock = 0;
        for (int mod = 3; mod < 8; ++mod)
            for (int k = 0; k < map->max_keypermod; ++k) {
                KeyCode code = map->modifiermap[mod * map->max_keypermod + k];
                if (!code)
                    continue;
                KeySym sym = XkbKeycodeToKeysym(omDisplay, code, 0, 0);
                if (sym == XK_Alt_L || sym == XK_Alt_R || sym == XK_Meta_L || sym == XK_Meta_R)
                    altMeta |= 1u << mod;
                else if (sym == XK_Num_Lock)
                    numLock |= 1u << mod;
            }
        XFreeModifiermap(map);
        if (altMeta)
            m.altMeta = altMeta;
        if (numLock)
            m.numLock = numLock;
        return m;
    }();
    return masks;
}

Window realizedWindow(Widget widget)
{
    return widget && XtIsRealized(widget) ? XtWindow(widget) : None;
}

unsigned currentKeyState()
{
    const XKeyEvent *current = omGetCurrentKeyEvent();
    return current ? current->state : 0;
}

XEvent keyEvent(int type, Window window, LPARAM lParam)
{
    XEvent ev{};
    XKeyEvent &k = ev.xkey;
    k.type = type;
    k.serial = XNextRequest(omDisplay) - 1;
    k.send_event = True;
    k.display = omDisplay;
    k.window = window;
    k.root = DefaultRootWindow(omDisplay);
    k.time = static_cast<Time>(GetMessageTime() + 1);
    k.same_screen = True;
    k.state = currentKeyState();
    k.keycode = (static_cast<unsigned long>(lParam) >> 16) & 0xFF;
    return ev;
}

// The keycode of a virtual key, with the modifiers the key state holds.
void keycodeFromVirtualKey(XKeyEvent &k, WPARAM vk)
{
    KeySym sym = VK2XK(static_cast<unsigned>(vk));
    k.keycode = sym != NoSymbol ? XKeysymToKeycode(omDisplay, sym) : 0;
    if (GetKeyState(VK_SHIFT))
        k.state |= ShiftMask;
    if (GetKeyState(VK_CONTROL))
        k.state |= ControlMask;
    if (GetKeyState(VK_CAPITAL))
        k.state |= LockMask;
}

// The keysym a typed character comes from: Latin-1 characters are their
// own keysyms, the control characters a key makes are not.
KeySym keysymOfCharacter(unsigned ch)
{
    switch (ch) {
    case 8: return XK_BackSpace;
    case 9: return XK_Tab;
    case 13: return XK_Return;
    case 27: return XK_Escape;
    default: return ch;
    }
}

bool isSingleLineEdit(const WindowRecord &w)
{
    return w.kind == OM_WK_EDIT && isChild(w) && !(w.style & (ES_MULTILINE | ES_AUTOHSCROLL));
}

void dispatch(XEvent &ev)
{
    if (ev.xany.window != None)
        XtDispatchEvent(&ev);
}

// A frame that takes an Alt key for a child: the parent for the windows
// that live inside a composite control, the MDI frame for the others in
// an MDI child; null to keep it.
Widget altKeyFrame(const WindowRecord &w)
{
    WindowRecord *parent = omWindowRecord(w.parent);
    if (w.kind == OM_WK_EDIT || w.kind == OM_WK_COMBOBOX || w.kind == OM_WK_MDICLIENT)
        return parent ? parent->frameWidget : nullptr;
    if (WindowRecord *client = omIsClientChild(const_cast<WindowRecord *>(&w)))
        if (WindowRecord *frame = omWindowRecord(client->parent))
            return frame->frameWidget;
    return nullptr;
}

unsigned pointerState(WPARAM keys)
{
    unsigned state = 0;
    if (keys & MK_LBUTTON)
        state |= Button1Mask;
    if (keys & MK_MBUTTON)
        state |= Button2Mask;
    if (keys & MK_RBUTTON)
        state |= Button3Mask;
    if (keys & MK_SHIFT)
        state |= ShiftMask;
    if (keys & MK_CONTROL)
        state |= ControlMask;
    return state;
}

// Button number and press/release of a client or non-client button
// message, taken from its offset in its group of three.
void buttonOf(UINT msg, UINT first, int &type, unsigned &button)
{
    static constexpr unsigned kButtons[] = {1, 3, 2};
    unsigned offset = msg - first;  // 0..8: L down/up/dbl, R..., M...
    button = kButtons[offset / 3];
    type = offset % 3 == 1 ? ButtonRelease : ButtonPress;
}

XEvent pointerEvent(int type, Window window)
{
    XEvent ev{};
    XButtonEvent &b = ev.xbutton;
    b.type = type;
    b.serial = XNextRequest(omDisplay) - 1;
    b.send_event = True;
    b.display = omDisplay;
    b.window = window;
    b.root = DefaultRootWindow(omDisplay);
    b.time = static_cast<Time>(GetMessageTime());
    b.same_screen = True;
    return ev;
}

}  // namespace

LRESULT onSysKey(const Call &c)
{
    WindowRecord &w = *c.w;
    XEvent ev = keyEvent(c.msg == WM_SYSKEYDOWN ? KeyPress : KeyRelease,
                         realizedWindow(w.frameWidget), c.lParam);
    const ModifierMasks &m = modifierMasks();
    bool alt = (ev.xkey.state & m.altMeta) != 0;
    if (alt)
        ev.xkey.state &= ~m.numLock;
    if (c.msg == WM_SYSKEYDOWN && alt && isChild(w))
        if (Window other = realizedWindow(altKeyFrame(w)))
            ev.xkey.window = other;
    if (!ev.xkey.keycode)
        keycodeFromVirtualKey(ev.xkey, c.wParam);
    dispatch(ev);
    return 0;
}

LRESULT onKey(const Call &c)
{
    WindowRecord &w = *c.w;
    if (c.msg == WM_KEYDOWN && w.kind == OM_WK_SCROLLBAR && isChild(w) && c.wParam >= VK_PRIOR &&
        c.wParam <= VK_DOWN) {
        omScrollBarKeyboardMesgHandler(c.hwnd, c.msg, c.wParam, c.lParam);
        return 0;
    }
    omLineExceeded = 0;
    if (isSingleLineEdit(w) && c.wParam != 0xFF20 && omIsTextOffLimits(c.hwnd, c.wParam))
        return 0;
    // Typed keys reach the widget as WM_CHAR; only the extended keys the
    // translation does not turn into characters come through here.
    if (c.msg == WM_KEYDOWN && c.lParam &&
        (!(c.lParam & (1 << 24)) || c.wParam == VK_RETURN || c.wParam == VK_BACK ||
         c.wParam == VK_TAB))
        return 0;
    XEvent ev = keyEvent(c.msg == WM_KEYDOWN ? KeyPress : KeyRelease,
                         realizedWindow(w.frameWidget), c.lParam);
    if (!ev.xkey.keycode)
        keycodeFromVirtualKey(ev.xkey, c.wParam);
    dispatch(ev);
    return 0;
}

LRESULT onChar(const Call &c)
{
    WindowRecord &w = *c.w;
    if (w.kind != OM_WK_EDIT && w.kind != OM_WK_COMBOBOX && w.kind != OM_WK_BUTTON)
        return 0;
    if (isSingleLineEdit(w) && omLineExceeded) {
        if (w.parent)
            SendMessageA(w.parent, WM_COMMAND, MAKEWPARAM(w.idOrMenu, EN_MAXTEXT),
                         reinterpret_cast<LPARAM>(c.hwnd));
        return 0;
    }
    XEvent ev = keyEvent(KeyPress, realizedWindow(w.frameWidget), c.lParam);
    XKeyEvent &k = ev.xkey;
    unsigned ch = static_cast<unsigned>(c.wParam) & 0xFF;
    if (ch == 10 && (k.state & ControlMask)) {
        ch = 13;
        k.state &= ~ControlMask;
    }
    KeySym sym = k.keycode ? XLookupKeysym(&k, 0) : NoSymbol;
    if (!k.keycode || (ch >= 0x30 && ch <= 0x7A && sym != ch)) {
        k.keycode = XKeysymToKeycode(omDisplay, keysymOfCharacter(ch));
        if (ch >= 'A' && ch <= 'Z')
            k.state |= ShiftMask;
        else if (ch >= 'a' && ch <= 'z')
            k.state &= ~ShiftMask;
    }
    if (sym == XK_Tab && ch != 9)
        k.keycode = XKeysymToKeycode(omDisplay, keysymOfCharacter(ch));
    dispatch(ev);
    return 0;
}

LRESULT onClientPointer(const Call &c)
{
    HWND hwnd = c.hwnd;
    POINT p{static_cast<short>(LOWORD(c.lParam)), static_cast<short>(HIWORD(c.lParam))};
    POINT screen = p;
    ClientToScreen(hwnd, &screen);
    if (c.msg == WM_RBUTTONUP) {
        // The context menu may run (and destroy the window) before the
        // release: the widget gets it only when the window and the mark
        // survived.
        omCallingContextMenuWindow = hwnd;
        SendMessageA(hwnd, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(hwnd),
                     MAKELPARAM(screen.x, screen.y));
        bool still = omIsWindow(hwnd) && omCallingContextMenuWindow == hwnd;
        omCallingContextMenuWindow = nullptr;
        if (!still)
            return 0;
    }
    WindowRecord &w = *omWindowRecord(hwnd);
    Window window = realizedWindow(w.canvasWidget);
    if (window == None)
        return 0;
    WPARAM keys = c.wParam;
    XEvent ev;
    if (c.msg == WM_MOUSEMOVE) {
        // A widget drags only with a button down; the list box would
        // select on every pass.
        if (w.kind != OM_WK_LISTBOX)
            keys |= MK_LBUTTON;
        ev = pointerEvent(MotionNotify, window);
        ev.xmotion.time += 1;
    } else {
        int type;
        unsigned button;
        buttonOf(c.msg, WM_LBUTTONDOWN, type, button);
        ev = pointerEvent(type, window);
        ev.xbutton.button = button;
    }
    // x, y, x_root, y_root and state sit at the same offsets in both.
    ev.xbutton.x = p.x;
    ev.xbutton.y = p.y;
    ev.xbutton.x_root = screen.x;
    ev.xbutton.y_root = screen.y;
    ev.xbutton.state = pointerState(keys);
    dispatch(ev);
    return 0;
}

LRESULT onMouseWheel(const Call &c)
{
    // Up the parent chain, as on Windows; at the top the widgets get the
    // wheel event back, so that those that scroll with it do.
    if (isChild(*c.w) && c.w->parent)
        return SendMessageA(c.w->parent, c.msg, c.wParam, c.lParam);
    XEvent ev;
    if (omMsgMRUSearch(c.hwnd, c.msg, c.wParam, c.lParam, nullptr) &&
        omMsgToEvent(c.hwnd, c.msg, c.wParam, c.lParam, &ev))
        XtDispatchEvent(&ev);
    return 0;
}

LRESULT onNcPointer(const Call &c)
{
    HWND hwnd = c.hwnd;
    int hit = static_cast<int>(static_cast<LONG_PTR>(c.wParam));
    if (hit == HTHSCROLL || hit == HTVSCROLL)
        return 1;
    POINT screen{static_cast<short>(LOWORD(c.lParam)), static_cast<short>(HIWORD(c.lParam))};
    WindowRecord *w = c.w;
    if (hit == -1 && w->kind == OM_WK_TABCTRL && w->parent) {
        // A tab control's empty strip belongs to the window below it.
        POINT p = screen;
        ScreenToClient(w->parent, &p);
        SendMessageA(w->parent, c.msg + (WM_MOUSEMOVE - WM_NCMOUSEMOVE), 0,
                     MAKELPARAM(p.x, p.y));
        w = omWindowRecord(hwnd);
        if (!w)
            return 0;
    }
    Window window = realizedWindow(w->shellWidget);
    if (window == None)
        return 0;
    POINT p = screen;
    ScreenToClient(hwnd, &p);
    int x = p.x, y = p.y;
    canvasToFrame(*w, x, y);
    if (hit == HTCAPTION && isChild(*w) && (w->style & WS_CAPTION) == WS_CAPTION &&
        XoIsBorder(w->shellWidget))
        XoWithinCaption(w->shellWidget, &x, &y);
    XEvent ev;
    if (c.msg == WM_NCMOUSEMOVE) {
        ev = pointerEvent(MotionNotify, window);
        ev.xmotion.time += 1;
        unsigned state = 0;
        if (GetKeyState(VK_LBUTTON))
            state |= Button1Mask;
        if (GetKeyState(VK_MBUTTON))
            state |= Button2Mask;
        if (GetKeyState(VK_RBUTTON))
            state |= Button3Mask;
        ev.xmotion.state = state;
    } else {
        int type;
        unsigned button;
        buttonOf(c.msg, WM_NCLBUTTONDOWN, type, button);
        ev = pointerEvent(type, window);
        ev.xbutton.button = button;
        ev.xbutton.state = button == 1 ? Button1Mask : button == 2 ? Button2Mask : Button3Mask;
    }
    // Root (0, 0) with send_event: the frame reads x, y as its own.
    ev.xbutton.x = x;
    ev.xbutton.y = y;
    ev.xbutton.x_root = 0;
    ev.xbutton.y_root = 0;
    dispatch(ev);
    return 0;
}

}  // namespace om::winmgmt::defwnd

using namespace om::winmgmt::defwnd;

namespace {

// The window's text widget: its frame or canvas when that is a Motif text.
Widget textWidgetOf(const WindowRecord &w)
{
    for (Widget widget : {w.frameWidget, w.canvasWidget})
        if (widget && (XmIsText(widget) || XmIsTextField(widget)))
            return widget;
    return nullptr;
}

// Pixel width of the text with the first font of the list; -1 when the
// list has no core font or font set to measure with.
int measure(XmFontList fonts, const std::string &text)
{
    XmFontContext context;
    if (!fonts || !XmFontListInitFontContext(&context, fonts))
        return -1;
    int width = -1;
    if (XmFontListEntry entry = XmFontListNextEntry(context)) {
        XmFontType type;
        XtPointer font = XmFontListEntryGetFont(entry, &type);
        if (font && type == XmFONT_IS_FONTSET)
            width = XmbTextEscapement(static_cast<XFontSet>(font), text.data(),
                                      static_cast<int>(text.size()));
        else if (font && type == XmFONT_IS_FONT)
            width = XTextWidth(static_cast<XFontStruct *>(font), text.data(),
                               static_cast<int>(text.size()));
    }
    XmFontListFreeFontContext(context);
    return width;
}

}  // namespace

extern "C" OLMO_API int omIsTextOffLimits(HWND hwnd, WPARAM key)
{
    omLineExceeded = 0;
    if ((key >= 33 && key <= 40) || key == 46 || key == 8 || key == 0xFF20)
        return 0;
    WindowRecord *w = omWindowRecord(hwnd);
    Widget text = w ? textWidgetOf(*w) : nullptr;
    if (!text)
        return 0;
    bool field = XmIsTextField(text);
    char *raw = field ? XmTextFieldGetString(text) : XmTextGetString(text);
    std::string value = raw ? raw : "";
    XtFree(raw);
    Dimension width = 0;
    XmFontList fonts = nullptr;
    short rows = 1;
    XtVaGetValues(text, XmNwidth, &width, XmNfontList, &fonts, nullptr);
    int lines = 1;
    if (!field) {
        unsigned char mode = XmSINGLE_LINE_EDIT;
        XtVaGetValues(text, XmNrows, &rows, XmNeditMode, &mode, nullptr);
        if (mode == XmMULTI_LINE_EDIT) {
            for (char ch : value)
                lines += ch == '\n';
        } else {
            rows = 1;
        }
    }
    if (lines < rows || value.empty())
        return 0;
    size_t newline = value.rfind('\n');
    std::string last = value.substr(newline == std::string::npos ? 0 : newline + 1);
    int measured = measure(fonts, last);
    int n = static_cast<int>(last.size());
    if (measured < 0 || n <= 0)
        return 0;
    if (measured / n + measured + 3 >= static_cast<int>(width))
        omLineExceeded = 1;
    return omLineExceeded;
}
