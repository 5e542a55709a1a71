// Keyboard mapping: the modifier bits found on the server at start-up, the
// keysym of a key event (Num Lock on the keypad, Hewlett-Packard and Sun
// quirks) and the keysym to virtual-key table of a US keyboard.
#include "messages/omkeymap.h"

#include "kernel/omkeyboard.h"

#include "kernel/omdisplay.h"

#include <windows.h>

#include <X11/HPkeysym.h>
#include <X11/Sunkeysym.h>
#include <X11/XKBlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>

#include <atomic>
#include <cstring>

extern "C" {
OLMO_API unsigned int omShiftMask = ShiftMask;
OLMO_API unsigned int omShiftLockMask = LockMask;
OLMO_API unsigned int omControlMask = ControlMask;
OLMO_API unsigned int omAltMask = Mod1Mask;
OLMO_API unsigned int omMetaMask = Mod1Mask;
OLMO_API unsigned int omNumLockMask = Mod3Mask;
OLMO_API int omNumLockMapIndex = 2;
OLMO_API int bUseXLookupString = 0;
}

namespace {

// -1 until asked; read once from the first display seen.
std::atomic<int> g_vendor{-1};
std::atomic<int> g_forcedVendor{-1};

struct KeysymVk {
    KeySym keysym;
    unsigned int vk;
};

// Each key maps to the virtual key of the key that carries it on a US
// keyboard; shifted punctuation maps to its unshifted key.  Punctuation
// takes the toolkit's own numbers (OM_VK_* of kernel/omkeyboard.h), which
// the kernel's VK2XK gives back, so that keybd_event and the event
// translation agree.
constexpr KeysymVk kTable[] = {
    {XK_BackSpace, VK_BACK},
    {XK_Tab, VK_TAB},
    {XK_ISO_Left_Tab, VK_TAB},
    {XK_KP_Tab, VK_TAB},
    {hpXK_BackTab, VK_TAB},
    {XK_Linefeed, VK_RETURN},
    {XK_Clear, VK_CLEAR},
    {XK_Return, VK_RETURN},
    {XK_KP_Enter, VK_RETURN},
    {XK_Escape, VK_ESCAPE},
    {XK_Pause, VK_PAUSE},
    {XK_Break, VK_PAUSE},
    {XK_Cancel, VK_CANCEL},
    {XK_Shift_L, VK_SHIFT},
    {XK_Shift_R, VK_SHIFT},
    {XK_Control_L, VK_CONTROL},
    {XK_Control_R, VK_CONTROL},
    {XK_Meta_L, VK_MENU},
    {XK_Meta_R, VK_MENU},
    {XK_Alt_L, VK_MENU},
    {XK_Alt_R, VK_MENU},
    // The key with the context-menu picture counts as Alt.
    {XK_Menu, VK_MENU},
    {XK_Super_L, VK_LWIN},
    {XK_Super_R, VK_RWIN},
    {XK_Caps_Lock, VK_CAPITAL},
    {XK_Shift_Lock, VK_CAPITAL},
    {XK_Num_Lock, VK_NUMLOCK},
    {XK_Scroll_Lock, VK_SCROLL},
    {XK_Home, VK_HOME},
    {XK_Begin, VK_HOME},
    {XK_KP_Home, VK_HOME},
    {XK_Left, VK_LEFT},
    {XK_Up, VK_UP},
    {XK_Right, VK_RIGHT},
    {XK_Down, VK_DOWN},
    {XK_KP_Left, VK_LEFT},
    {XK_KP_Up, VK_UP},
    {XK_KP_Right, VK_RIGHT},
    {XK_KP_Down, VK_DOWN},
    {XK_Prior, VK_PRIOR},
    {XK_KP_Prior, VK_PRIOR},
    {osfXK_PageUp, VK_PRIOR},
    {XK_Next, VK_NEXT},
    {XK_KP_Next, VK_NEXT},
    {osfXK_PageDown, VK_NEXT},
    {XK_End, VK_END},
    {XK_KP_End, VK_END},
    // Keypad 5 with Num Lock off.
    {XK_KP_Begin, VK_CLEAR},
    {XK_Select, VK_SELECT},
    {XK_Print, VK_PRINT},
    {XK_Sys_Req, VK_SNAPSHOT},
    {XK_Execute, VK_EXECUTE},
    {XK_Insert, VK_INSERT},
    {XK_KP_Insert, VK_INSERT},
    {hpXK_InsertChar, VK_INSERT},
    {XK_Delete, VK_DELETE},
    {XK_KP_Delete, VK_DELETE},
    {hpXK_DeleteChar, VK_DELETE},
    {XK_Help, VK_HELP},
    {XK_KP_0, VK_NUMPAD0},
    {XK_KP_1, VK_NUMPAD1},
    {XK_KP_2, VK_NUMPAD2},
    {XK_KP_3, VK_NUMPAD3},
    {XK_KP_4, VK_NUMPAD4},
    {XK_KP_5, VK_NUMPAD5},
    {XK_KP_6, VK_NUMPAD6},
    {XK_KP_7, VK_NUMPAD7},
    {XK_KP_8, VK_NUMPAD8},
    {XK_KP_9, VK_NUMPAD9},
    {XK_KP_Multiply, VK_MULTIPLY},
    {XK_KP_Add, VK_ADD},
    {XK_KP_Separator, VK_SEPARATOR},
    {XK_KP_Subtract, VK_SUBTRACT},
    {XK_KP_Decimal, VK_DECIMAL},
    {XK_KP_Divide, VK_DIVIDE},
    {XK_KP_Space, VK_SPACE},
    {XK_KP_Equal, OM_VK_EQUAL},
    {XK_KP_F1, VK_F1},
    {XK_KP_F2, VK_F2},
    {XK_KP_F3, VK_F3},
    {XK_KP_F4, VK_F4},
    {osfXK_Left, VK_LEFT},
    {osfXK_Up, VK_UP},
    {osfXK_Right, VK_RIGHT},
    {osfXK_Down, VK_DOWN},
    // Shifted digits: the digit key that carries them.
    {XK_exclam, '1'},
    {XK_at, '2'},
    {XK_numbersign, '3'},
    {XK_dollar, '4'},
    {XK_percent, '5'},
    {XK_asciicircum, '6'},
    {XK_ampersand, '7'},
    {XK_asterisk, '8'},
    {XK_parenleft, '9'},
    {XK_parenright, '0'},
    {XK_semicolon, OM_VK_SEMICOLON},
    {XK_colon, OM_VK_SEMICOLON},
    {XK_equal, OM_VK_EQUAL},
    {XK_plus, OM_VK_EQUAL},
    {XK_comma, OM_VK_COMMA},
    {XK_less, OM_VK_COMMA},
    {XK_minus, OM_VK_MINUS},
    {XK_underscore, OM_VK_MINUS},
    {XK_period, OM_VK_PERIOD},
    {XK_greater, OM_VK_PERIOD},
    {XK_slash, OM_VK_SLASH},
    {XK_question, OM_VK_SLASH},
    {XK_grave, OM_VK_GRAVE},
    {XK_asciitilde, OM_VK_GRAVE},
    {XK_bracketleft, OM_VK_BRACKETLEFT},
    {XK_braceleft, OM_VK_BRACKETLEFT},
    {XK_backslash, OM_VK_BACKSLASH},
    {XK_bar, OM_VK_BACKSLASH},
    {XK_bracketright, OM_VK_BRACKETRIGHT},
    {XK_braceright, OM_VK_BRACKETRIGHT},
    {XK_apostrophe, OM_VK_APOSTROPHE},
    {XK_quotedbl, OM_VK_APOSTROPHE},
};

// Sun keyboards send their right-hand keypad and a few editing keys as
// high function keys; elsewhere F21 and up are plain function keys.
constexpr KeysymVk kSunTable[] = {
    {XK_F21, VK_PAUSE},   {XK_F22, VK_SNAPSHOT}, {XK_F23, VK_SCROLL}, {XK_F25, VK_DIVIDE},
    {XK_F26, VK_MULTIPLY}, {XK_F27, VK_HOME},    {XK_F29, VK_PRIOR},  {XK_F31, VK_CLEAR},
    {XK_F33, VK_END},     {XK_F35, VK_NEXT},     {SunXK_F36, VK_F11}, {SunXK_F37, VK_F12},
};

int serverVendor(Display *dpy)
{
    int forced = g_forcedVendor.load(std::memory_order_relaxed);
    if (forced >= 0)
        return forced;
    int v = g_vendor.load(std::memory_order_acquire);
    if (v >= 0 || !dpy)
        return v < 0 ? OM_VENDOR_OTHER : v;
    const char *name = ServerVendor(dpy);
    v = OM_VENDOR_OTHER;
    if (name && std::strncmp(name, "Hewlett-Packard Company", 23) == 0)
        v = OM_VENDOR_HP;
    else if (name && std::strncmp(name, "Sun Microsystems, Inc.", 22) == 0)
        v = OM_VENDOR_SUN;
    g_vendor.store(v, std::memory_order_release);
    return v;
}

bool isKeypadKeysym(KeySym ks)
{
    return ks >= 0xFF80 && ks <= 0xFFBD;
}

KeySym lookupString(XKeyEvent *event)
{
    char buf[16];
    KeySym ks = NoSymbol;
    XLookupString(event, buf, sizeof buf, &ks, nullptr);
    return ks;
}

KeySym lookupOnce(XKeyEvent *event)
{
    KeySym ks = NoSymbol;
    if (!bUseXLookupString && (event->state & omNumLockMask)) {
        ks = XLookupKeysym(event, omNumLockMapIndex);
        if (!isKeypadKeysym(ks))
            ks = lookupString(event);
    } else if (serverVendor(event->display) == OM_VENDOR_HP && (event->state & omAltMask)) {
        // HP servers turn Alt+key into a different keysym; Windows wants
        // the key itself.
        unsigned int saved = event->state;
        event->state &= ~omAltMask;
        ks = lookupString(event);
        event->state = saved;
    } else {
        ks = lookupString(event);
    }
    if (ks == NoSymbol)
        ks = XLookupKeysym(event, 0);
    return ks;
}

}  // namespace

extern "C" OLMO_API int omKeyboardVendor(void)
{
    return serverVendor(omDisplay);
}

extern "C" OLMO_API void omKeyboardForceVendor(int vendor)
{
    g_forcedVendor.store(vendor, std::memory_order_relaxed);
}

extern "C" OLMO_API void omInitModifierMasks(void)
{
    Display *dpy = omDisplay;
    if (bNoDisplay || !dpy)
        return;
    omShiftMask = ShiftMask;
    omShiftLockMask = LockMask;
    omControlMask = ControlMask;
    omAltMask = 0;
    omMetaMask = 0;
    omNumLockMask = 0;
    if (XModifierKeymap *map = XGetModifierMapping(dpy)) {
        for (int mod = 0; mod < 8; ++mod) {
            for (int k = 0; k < map->max_keypermod; ++k) {
                KeyCode code = map->modifiermap[mod * map->max_keypermod + k];
                if (!code)
                    continue;
                KeySym ks = XkbKeycodeToKeysym(dpy, code, 0, 0);
                unsigned int bit = 1u << mod;
                if (ks == XK_Num_Lock)
                    omNumLockMask = bit;
                else if (ks == XK_Meta_L || (ks == XK_Meta_R && !omMetaMask))
                    omMetaMask = bit;
                else if (ks == XK_Alt_L || (ks == XK_Alt_R && !omAltMask))
                    omAltMask = bit;
            }
        }
        XFreeModifiermap(map);
    }
    // A server that names no such key keeps the usual bits.
    if (!omAltMask)
        omAltMask = Mod1Mask;
    if (!omMetaMask)
        omMetaMask = Mod1Mask;
    if (!omNumLockMask)
        omNumLockMask = Mod3Mask;

    // Newer servers apply Num Lock in XLookupString; older ones need the
    // keypad column picked by hand.
    omNumLockMapIndex = 2;
    bUseXLookupString = 0;
    KeyCode kp0 = XKeysymToKeycode(dpy, XK_KP_0);
    if (!kp0)
        return;
    XKeyEvent probe{};
    probe.type = KeyPress;
    probe.display = dpy;
    probe.root = probe.window = DefaultRootWindow(dpy);
    probe.keycode = kp0;
    probe.state = omNumLockMask;
    probe.same_screen = True;
    if (lookupString(&probe) == XK_KP_0) {
        bUseXLookupString = 1;
        return;
    }
    int perCode = 0;
    if (KeySym *syms = XGetKeyboardMapping(dpy, kp0, 1, &perCode)) {
        for (int i = 0; i < perCode && i < 8; ++i) {
            if (syms[i] == XK_KP_0) {
                omNumLockMapIndex = i;
                break;
            }
        }
        XFree(syms);
    }
}

extern "C" OLMO_API unsigned int omLookupKeysym(XKeyEvent *event)
{
    if (!event)
        return NoSymbol;
    KeySym ks = lookupOnce(event);
    int vendor = serverVendor(event->display);
    if (vendor == OM_VENDOR_SUN) {
        KeySym letter = NoSymbol;
        switch (ks) {
        case XK_F14: letter = XK_z; break;
        case XK_F16: letter = XK_c; break;
        case XK_F18: letter = XK_v; break;
        case XK_F20: letter = XK_x; break;
        default: break;
        }
        if (letter != NoSymbol) {
            if (KeyCode code = XKeysymToKeycode(event->display, letter)) {
                event->state |= omControlMask;
                event->keycode = code;
                ks = lookupOnce(event);
            }
        }
    } else if (vendor == OM_VENDOR_HP && (event->state & omShiftMask) && ks >= XK_KP_F1 &&
               ks <= XK_KP_F4) {
        ks = XK_F9 + (ks - XK_KP_F1);
    }
    return static_cast<unsigned int>(ks);
}

extern "C" OLMO_API unsigned int XK2VK(KeySym keysym)
{
    // ASCII letters only: the answer must not depend on the program's locale.
    if ((keysym >= 'a' && keysym <= 'z') || (keysym >= 'A' && keysym <= 'Z'))
        return static_cast<unsigned int>(keysym & ~0x20u);
    if (keysym >= XK_F1 && keysym <= XK_F24) {
        if (keysym >= XK_F21 && serverVendor(omDisplay) == OM_VENDOR_SUN) {
            for (const KeysymVk &e : kSunTable)
                if (e.keysym == keysym)
                    return e.vk;
        }
        return static_cast<unsigned int>(VK_F1 + (keysym - XK_F1));
    }
    if (serverVendor(omDisplay) == OM_VENDOR_SUN) {
        for (const KeysymVk &e : kSunTable)
            if (e.keysym == keysym)
                return e.vk;
    }
    for (const KeysymVk &e : kTable)
        if (e.keysym == keysym)
            return e.vk;
    return static_cast<unsigned int>(keysym);
}
