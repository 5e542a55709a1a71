// XTest injection: pointer motion, buttons and keys, with keymap lookups
// so that tests can type characters instead of keycodes.
#include "harness/input.h"

#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <vector>

namespace om::test
{
namespace
{

bool requireXTest(Display *dpy, const char *caller)
{
    if (!dpy) {
        ADD_FAILURE() << caller << ": no display";
        return false;
    }
    int event = 0, error = 0, major = 0, minor = 0;
    if (!XTestQueryExtension(dpy, &event, &error, &major, &minor)) {
        ADD_FAILURE() << caller << ": the X server " << DisplayString(dpy)
                      << " has no XTEST extension, so no input can be injected";
        return false;
    }
    return true;
}

struct Key {
    KeyCode code = 0;
    bool shift = false;
};

// The key producing `keysym`, and whether that takes the shifted level.
bool findKey(Display *dpy, KeySym keysym, Key &key)
{
    KeyCode code = XKeysymToKeycode(dpy, keysym);
    if (!code)
        return false;
    int perCode = 0;
    KeySym *syms = XGetKeyboardMapping(dpy, code, 1, &perCode);
    if (!syms)
        return false;
    key.code = code;
    if (syms[0] == keysym) {
        key.shift = false;
    } else if (perCode > 1 && syms[1] == keysym) {
        key.shift = true;
    } else {
        // A letter key listed with only its lower case: upper case is shifted.
        KeySym lower = 0, upper = 0;
        XConvertCase(keysym, &lower, &upper);
        key.shift = keysym == upper && syms[0] == lower && lower != upper;
    }
    XFree(syms);
    return true;
}

// One key per modifier bit in `mask`, in bit order.
bool modifierKeys(Display *dpy, unsigned mask, std::vector<KeyCode> &keys, const char *caller)
{
    if (!mask)
        return true;
    XModifierKeymap *map = XGetModifierMapping(dpy);
    bool ok = true;
    for (int bit = 0; bit < 8; ++bit) {
        if (!(mask & (1u << bit)))
            continue;
        KeyCode found = 0;
        for (int i = 0; i < map->max_keypermod && !found; ++i)
            found = map->modifiermap[bit * map->max_keypermod + i];
        if (!found) {
            ADD_FAILURE() << caller << ": no key is mapped to modifier bit " << bit;
            ok = false;
        }
        keys.push_back(found);
    }
    XFreeModifiermap(map);
    return ok;
}

void tapWith(Display *dpy, KeyCode code, const std::vector<KeyCode> &held)
{
    for (KeyCode m : held)
        XTestFakeKeyEvent(dpy, m, True, CurrentTime);
    XTestFakeKeyEvent(dpy, code, True, CurrentTime);
    XTestFakeKeyEvent(dpy, code, False, CurrentTime);
    for (auto m = held.rbegin(); m != held.rend(); ++m)
        XTestFakeKeyEvent(dpy, *m, False, CurrentTime);
}

} // namespace

bool movePointer(Display *dpy, int x, int y)
{
    if (!requireXTest(dpy, "movePointer"))
        return false;
    XTestFakeMotionEvent(dpy, DefaultScreen(dpy), x, y, CurrentTime);
    XFlush(dpy);
    return true;
}

bool buttonDown(Display *dpy, unsigned button)
{
    if (!requireXTest(dpy, "buttonDown"))
        return false;
    XTestFakeButtonEvent(dpy, button, True, CurrentTime);
    XFlush(dpy);
    return true;
}

bool buttonUp(Display *dpy, unsigned button)
{
    if (!requireXTest(dpy, "buttonUp"))
        return false;
    XTestFakeButtonEvent(dpy, button, False, CurrentTime);
    XFlush(dpy);
    return true;
}

bool click(Display *dpy, int x, int y, unsigned button)
{
    if (!requireXTest(dpy, "click"))
        return false;
    XTestFakeMotionEvent(dpy, DefaultScreen(dpy), x, y, CurrentTime);
    XTestFakeButtonEvent(dpy, button, True, CurrentTime);
    XTestFakeButtonEvent(dpy, button, False, CurrentTime);
    XFlush(dpy);
    return true;
}

bool clickWindow(Display *dpy, Window window, int x, int y, unsigned button)
{
    if (!requireXTest(dpy, "clickWindow"))
        return false;
    XWindowAttributes attrs;
    if (!XGetWindowAttributes(dpy, window, &attrs)) {
        ADD_FAILURE() << "clickWindow: cannot query window 0x" << std::hex << window;
        return false;
    }
    int rootX = 0, rootY = 0;
    Window child = None;
    XTranslateCoordinates(dpy, window, attrs.root, x, y, &rootX, &rootY, &child);
    return click(dpy, rootX, rootY, button);
}

bool pressKey(Display *dpy, KeySym keysym, unsigned modifiers)
{
    if (!requireXTest(dpy, "pressKey"))
        return false;
    KeyCode code = XKeysymToKeycode(dpy, keysym);
    if (!code) {
        ADD_FAILURE() << "pressKey: no key produces keysym "
                      << (XKeysymToString(keysym) ? XKeysymToString(keysym) : "?") << " (0x"
                      << std::hex << keysym << ")";
        return false;
    }
    std::vector<KeyCode> held;
    if (!modifierKeys(dpy, modifiers, held, "pressKey"))
        return false;
    tapWith(dpy, code, held);
    XFlush(dpy);
    return true;
}

bool typeText(Display *dpy, const char *text)
{
    if (!requireXTest(dpy, "typeText"))
        return false;
    std::vector<KeyCode> shift;
    bool shiftKnown = false;
    for (const char *p = text; *p; ++p) {
        unsigned char c = static_cast<unsigned char>(*p);
        KeySym keysym;
        if (c == '\n')
            keysym = XK_Return;
        else if (c == '\t')
            keysym = XK_Tab;
        else if (c >= 0x20 && c < 0x7f)
            keysym = c; // Latin-1 keysyms equal their ASCII codes
        else {
            ADD_FAILURE() << "typeText: character code " << int(c) << " is not typeable ASCII";
            XFlush(dpy);
            return false;
        }
        Key key;
        if (!findKey(dpy, keysym, key)) {
            ADD_FAILURE() << "typeText: no key in the keymap produces '" << *p << "'";
            XFlush(dpy);
            return false;
        }
        if (key.shift && !shiftKnown) {
            if (!modifierKeys(dpy, ShiftMask, shift, "typeText"))
                return false;
            shiftKnown = true;
        }
        tapWith(dpy, key.code, key.shift ? shift : std::vector<KeyCode>{});
    }
    XFlush(dpy);
    return true;
}

} // namespace om::test
