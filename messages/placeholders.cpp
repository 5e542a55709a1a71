// Entries the event translation calls that other parts of the toolkit
// carry out: each is a registered placeholder (warning 141 on its first
// call) until its owner defines it and its line here goes.
#include "kernel/omplaceholder.h"

#include <windows.h>

// Activation of a top-level window when it gains or loses the X focus.
OM_PLACEHOLDER_VOID(omActivateWindow, (HWND, int))
OM_PLACEHOLDER_VOID(omDeActivateWindow, (HWND))
