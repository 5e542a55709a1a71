// Keyboard mapping for the event translation and TranslateMessage: the X
// modifier bits of this server, the keysym of a key event with the server's
// quirks, and the virtual key of a keysym (the kernel's VK2XK inverts it).
#pragma once

#include <olmo/platform.h>

#include <X11/Xlib.h>

extern "C" {

OLMO_API extern unsigned int omShiftMask;
OLMO_API extern unsigned int omShiftLockMask;
OLMO_API extern unsigned int omControlMask;
OLMO_API extern unsigned int omAltMask;
OLMO_API extern unsigned int omMetaMask;
OLMO_API extern unsigned int omNumLockMask;
// Column of a keypad keycode's keysym list that holds the digits.
OLMO_API extern int omNumLockMapIndex;
// Set when XLookupString already applies Num Lock to the keypad.
OLMO_API extern int bUseXLookupString;

OLMO_API void omInitModifierMasks(void);
// May rewrite the event (Sun function keys become Control+letter).
OLMO_API unsigned int omLookupKeysym(XKeyEvent *event);
// Keysyms without a virtual key come back unchanged.
OLMO_API unsigned int XK2VK(KeySym keysym);

// Server vendors whose keyboards need special handling.
enum OmKeyboardVendor { OM_VENDOR_OTHER = 0, OM_VENDOR_HP = 1, OM_VENDOR_SUN = 2 };
// The vendor as read from the display (once); tests may force one, and
// -1 goes back to asking the server.
OLMO_API int omKeyboardVendor(void);
OLMO_API void omKeyboardForceVendor(int vendor);

}  // extern "C"
