// The key state shared by the kernel layer and the user library.
#pragma once

#include <olmo/platform.h>

#include <X11/X.h>

// Virtual keys of the punctuation keys of a US keyboard.  The toolkit
// numbers them in keyboard order from 0xB0 (not with the VK_OEM_* values);
// the event translation gives these and keybd_event takes them.
enum OmPunctuationKey : unsigned {
    OM_VK_GRAVE = 0xB0,        // ` ~
    OM_VK_MINUS = 0xB1,        // - _
    OM_VK_EQUAL = 0xB2,        // = +
    OM_VK_BRACKETLEFT = 0xB3,  // [ {
    OM_VK_BRACKETRIGHT = 0xB4, // ] }
    OM_VK_BACKSLASH = 0xB5,    // \ |
    OM_VK_SEMICOLON = 0xB6,    // ; :
    OM_VK_APOSTROPHE = 0xB7,   // ' "
    OM_VK_SLASH = 0xB8,        // / ?
    OM_VK_PERIOD = 0xB9,       // . >
    OM_VK_COMMA = 0xBA,        // , <
};

extern "C" {

// One byte per virtual key, 1 while the key is down; for VK_CAPITAL,
// VK_NUMLOCK and VK_SCROLL, 1 while the lock is on.  The user library's
// event translation writes it; index 0x100 is written too.
OLMO_API extern unsigned char omVirKeyState[0x102];

// The keysym of a virtual key (NoSymbol when it has none): the inverse of
// the user library's XK2VK for every key keybd_event may be given.
OLMO_API KeySym VK2XK(unsigned vk);

}  // extern "C"
