// The key state shared by the kernel layer and the user library.
#pragma once

#include <olmo/platform.h>

#include <X11/X.h>

extern "C" {

// One byte per virtual key, 1 while the key is down; for VK_CAPITAL,
// VK_NUMLOCK and VK_SCROLL, 1 while the lock is on.  The user library's
// event translation writes it; index 0x100 is written too.
OLMO_API extern unsigned char omVirKeyState[0x102];

// The keysym of a virtual key (NoSymbol when it has none): the inverse of
// the user library's XK2VK for every key keybd_event may be given.
OLMO_API KeySym VK2XK(unsigned vk);

}  // extern "C"
