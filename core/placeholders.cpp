// Toolkit entries that window creation calls and that other subsystems
// carry out: each is a registered placeholder (warning 141 on its first
// call) until its subsystem defines it and this line goes.
#include "core/omwindow.h"

#include "kernel/omplaceholder.h"

// The system menu of a top-level window.
OM_PLACEHOLDER_VOID(omSysMenuInit, (HWND))
