// Synthetic user input through the XTest extension: the server treats it
// as real device input (grabs, focus and the window manager all see it).
// Every function flushes the display before returning; the effects arrive
// asynchronously, so follow them with OM_PUMP_UNTIL.
#pragma once

#include <gtest/gtest.h> // first: Xlib's None macro breaks gtest if defined before it

#include <X11/Xlib.h>

namespace om::test
{

// Each function first checks that the server has XTEST; if not (or if the
// request cannot be expressed, e.g. a character with no key in the keymap)
// it records a non-fatal gtest failure naming the reason and returns false.

// Moves the pointer to (x, y) in root coordinates of the default screen.
bool movePointer(Display *dpy, int x, int y);
bool buttonDown(Display *dpy, unsigned button);
bool buttonUp(Display *dpy, unsigned button);
// Move, press, release.
bool click(Display *dpy, int x, int y, unsigned button = 1);
// (x, y) relative to `window`'s origin, translated to root coordinates.
bool clickWindow(Display *dpy, Window window, int x, int y, unsigned button = 1);

// Presses and releases the key of `keysym` with the keys of `modifiers`
// (ShiftMask, ControlMask, Mod1Mask, ... : the first key the modifier map
// lists for each bit) held down around it; all are released afterwards.
// Exactly `modifiers` are held: a keysym on a shifted level (XK_A,
// XK_exclam) only gives that character with ShiftMask.
bool pressKey(Display *dpy, KeySym keysym, unsigned modifiers = 0);

// Types printable ASCII plus '\n' (Return) and '\t' (Tab), adding Shift
// where the keymap has the character on the shifted level (upper case,
// "!", "(", ...).
bool typeText(Display *dpy, const char *text);

} // namespace om::test
