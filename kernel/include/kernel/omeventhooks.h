// Hooks into the user library's X pump, kept in the kernel so that a
// program or a harness can install them before the user library is loaded:
// the probe that says what input is pending, and a look at every X event
// before the router translates it.
#pragma once

#include <olmo/platform.h>

#include <X11/Intrinsic.h>

extern "C" {

// What the pump asks for pending input; the pump fills in XtAppPending on
// first use when it is still null.
typedef XtInputMask (*OmPendingHook)(XtAppContext app);
// Sees each routed X event first; a non-zero answer means the hook took
// the event and the router leaves it alone.
typedef int (*OmEventHook)(XEvent *event);

OLMO_API extern OmPendingHook lpPendingHook;
OLMO_API extern OmEventHook lpEventHook;

}  // extern "C"
