// Keyboard translation: TranslateMessage makes the character message of a
// key-down message from the X key event the thread was handed with it, and
// puts it at the head of the queue so that it is the next one retrieved.
// Each thread keeps its own current key event here.
#include "messages/omkeyevent.h"

#include "core/omwindow.h"
#include "kernel/omdisplay.h"
#include "kernel/omkeyboard.h"
#include "messages/omkeymap.h"
#include "messages/ommessageq.h"

#include <windows.h>

#include <X11/HPkeysym.h>
#include <X11/keysym.h>

#include <cstdint>

namespace om::messages {
namespace {

thread_local XKeyEvent t_keyEvent;
thread_local bool t_hasKeyEvent = false;

constexpr uint32_t kExtendedBit = 1u << 24;
constexpr uint32_t kShiftBit = 1u << 25;
constexpr uint32_t kControlBit = 1u << 26;
constexpr uint32_t kCapsLockBit = 1u << 27;
constexpr uint32_t kNumLockBit = 1u << 28;
constexpr uint32_t kAltBit = 1u << 29;
// A rich-edit key press for which the input method produced nothing.
constexpr uint32_t kNoInputBit = 1u << 31;
constexpr uint32_t kKeycodeMask = 0xFFu << 16;
// A back-tab key some keyboards report in wParam; it types a Tab.
constexpr WPARAM kBackTabKey = 0xFF74;

struct Modifiers {
    bool shift;
    bool control;
    bool lock;
};

// The event whose keysym and state the character comes from: the thread's
// current key event with the message's keycode, or, for a key message the
// program made itself, one put together from the message's lParam bits.
// False when there is no display to look a keysym up on.
bool keyEventFor(const MSG &msg, XKeyEvent &out)
{
    auto bits = static_cast<uint32_t>(msg.lParam);
    if (const XKeyEvent *current = omGetCurrentKeyEvent()) {
        out = *current;
    } else {
        if (!omDisplay)
            return false;
        out = XKeyEvent{};
        out.type = KeyPress;
        out.display = omDisplay;
        out.root = out.window = DefaultRootWindow(omDisplay);
        out.same_screen = True;
        out.state = ((bits & kShiftBit) ? omShiftMask : 0) |
                    ((bits & kControlBit) ? omControlMask : 0) |
                    ((bits & kCapsLockBit) ? omShiftLockMask : 0) |
                    ((bits & kNumLockBit) ? omNumLockMask : 0) |
                    ((bits & kAltBit) ? omAltMask : 0);
    }
    out.keycode = (bits & kKeycodeMask) >> 16;
    return out.display != nullptr;
}

Modifiers modifiersOf(const XKeyEvent &event)
{
    return {(event.state & omShiftMask) != 0, (event.state & omControlMask) != 0,
            (event.state & omShiftLockMask) != 0};
}

// The keypad's Enter types what Return does, and says so in the keycode
// it carries, so that a program comparing keycodes sees one key.
LPARAM withReturnKeycode(LPARAM lParam, Display *dpy)
{
    KeyCode code = dpy ? XKeysymToKeycode(dpy, XK_Return) : 0;
    if (!code)
        return lParam;
    auto bits = static_cast<uint32_t>(lParam);
    bits = (bits & ~kKeycodeMask) | (static_cast<uint32_t>(code) << 16);
    return static_cast<LPARAM>(bits);
}

// A Latin-1 character the input method composed, which a rich edit takes
// as the virtual key itself.
bool isSpecialComposedChar(WPARAM vk)
{
    KeySym keysym = VK2XK(static_cast<unsigned>(vk));
    return (keysym >= 0xA0 && keysym <= 0xFF) || (keysym == vk && keysym >= 0xA0);
}

// WM_HELP for the active window, with the window itself as the item.
void sendHelp()
{
    HWND active = GetActiveWindow();
    WindowRecord *w = active ? omWindowRecord(active) : nullptr;
    if (!w)
        return;
    HELPINFO info{};
    info.cbSize = sizeof info;
    info.iContextType = HELPINFO_WINDOW;
    info.iCtrlId = static_cast<int>(w->idOrMenu);
    info.hItemHandle = active;
    info.dwContextId = 0;
    info.MousePos = POINT{w->x, w->y};
    if ((w->style & WS_CHILD) && w->parent)
        ClientToScreen(w->parent, &info.MousePos);
    SendMessageA(active, WM_HELP, 0, reinterpret_cast<LPARAM>(&info));
}

// The character of a key-down message, or 0 for none.  lParam may come
// back with the Return key's keycode.
WPARAM characterOf(const MSG &msg, XKeyEvent &event, const Modifiers &mods, LPARAM &lParam)
{
    WPARAM vk = msg.wParam;
    if (vk >= 'A' && vk <= 'Z' && !mods.control)
        return mods.shift == mods.lock ? vk + ('a' - 'A') : vk;
    if (vk >= VK_NUMPAD0 && vk <= VK_NUMPAD9)
        return '0' + (vk - VK_NUMPAD0);
    switch (vk) {
    case VK_MULTIPLY: return '*';
    case VK_ADD: return '+';
    case VK_SUBTRACT: return '-';
    case VK_DECIMAL: return '.';
    case VK_DIVIDE: return '/';
    case VK_SEPARATOR: return VK_SEPARATOR;
    default: break;
    }
    if (mods.control) {
        if (vk >= 0x41 && vk <= 0x5F)
            return vk - 0x40;
        if (vk != VK_RETURN)
            return 0;
        if (omLookupKeysym(&event) == XK_KP_Enter)
            lParam = withReturnKeycode(lParam, event.display);
        return '\n';
    }
    switch (KeySym keysym = omLookupKeysym(&event)) {
    case XK_Return: return '\r';
    case XK_KP_Enter:
        lParam = withReturnKeycode(lParam, event.display);
        return '\r';
    case XK_BackSpace: return '\b';
    // Shift+Tab arrives as ISO_Left_Tab on current servers.
    case XK_Tab:
    case XK_ISO_Left_Tab:
    case hpXK_BackTab: return '\t';
    case XK_Escape: return 0x1B;
    default: return static_cast<WPARAM>(keysym);
    }
}

// Tab in a child of a pop-up moves the focus before it types.
void moveFocusOnTab(HWND hwnd, const WindowRecord &w, bool shift)
{
    if (!(w.style & 0x4) || !w.parent)
        return;
    WindowRecord *parent = omWindowRecord(w.parent);
    if (!parent || !(parent->style & WS_POPUP))
        return;
    if (HWND next = GetNextDlgTabItem(w.parent, hwnd, shift))
        SetFocus(next);
}

BOOL translateKeyDown(MSG msg)
{
    if (msg.wParam == kBackTabKey)
        msg.wParam = VK_TAB;
    if (msg.wParam == VK_F1) {
        sendHelp();
        return TRUE;
    }
    auto bits = static_cast<uint32_t>(msg.lParam);
    if ((bits & kExtendedBit) && msg.wParam != VK_BACK && msg.wParam != VK_TAB &&
        msg.wParam != VK_RETURN && msg.wParam != VK_ESCAPE)
        return TRUE;
    XKeyEvent event;
    if (!keyEventFor(msg, event))
        return TRUE;
    Modifiers mods = modifiersOf(event);
    WindowRecord *w = msg.hwnd ? omWindowRecord(msg.hwnd) : nullptr;
    LPARAM lParam = msg.lParam;
    WPARAM ch = 0;
    if (msg.message == WM_KEYDOWN && w && w->kind == OM_WK_RICHEDIT) {
        if (bits & kNoInputBit)
            return TRUE;
        if (isSpecialComposedChar(msg.wParam))
            ch = msg.wParam;
    }
    if (!ch)
        ch = characterOf(msg, event, mods, lParam);
    if (!ch)
        return TRUE;
    if (msg.message == WM_KEYDOWN && ch == '\t' && !mods.control && w)
        moveFocusOnTab(msg.hwnd, *w, mods.shift);
    UINT charMessage = msg.message == WM_KEYDOWN ? WM_CHAR : WM_SYSCHAR;
    omShoveMessage(msg.hwnd, charMessage, ch, lParam, nullptr);
    return TRUE;
}

}  // namespace
}  // namespace om::messages

extern "C" OLMO_API void omSetCurrentKeyEvent(const XKeyEvent *event)
{
    using namespace om::messages;
    t_hasKeyEvent = event != nullptr;
    if (event)
        t_keyEvent = *event;
}

extern "C" OLMO_API const XKeyEvent *omGetCurrentKeyEvent(void)
{
    using namespace om::messages;
    return t_hasKeyEvent ? &t_keyEvent : nullptr;
}

extern "C" BOOL WINAPI TranslateMessage(const MSG *lpMsg)
{
    if (!omThreadRuleOk("TranslateMessage"))
        return FALSE;
    if (!lpMsg)
        return FALSE;
    switch (lpMsg->message) {
    case WM_KEYUP:
    case WM_SYSKEYUP: return TRUE;
    case WM_KEYDOWN:
    case WM_SYSKEYDOWN: return om::messages::translateKeyDown(*lpMsg);
    default: return FALSE;
    }
}
