// The X key event behind the key message a thread was last handed, which
// TranslateMessage reads for the modifier state and the keysym.
#pragma once

#include <olmo/platform.h>

#include <X11/Xlib.h>

extern "C" {

// Retrieval calls the setter when it hands out a key message; the event is
// copied into the calling thread's slot.  Null clears the slot.
OLMO_API void omSetCurrentKeyEvent(const XKeyEvent *event);
// The calling thread's current key event, or null when it has none.
OLMO_API const XKeyEvent *omGetCurrentKeyEvent(void);

}  // extern "C"
