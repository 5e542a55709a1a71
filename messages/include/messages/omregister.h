// Registered window messages: the tables behind RegisterWindowMessageA
// kept for the display's start and for the library's shutdown.
#pragma once

#include <olmo/platform.h>

extern "C" {

// Brings the display's shared table up to date with the names this process
// registered on an earlier connection.  0 when the display's table holds
// more names than it may (warning 163), else 1; 0 without a display.
// RegisterWindowMessageA runs it on its first call with a display.
OLMO_API int omInitRegisterWindowMessage(void);

// Forgets this process's copies of both tables (the early names and the
// local mirror of the display's names).  The display's properties stay.
OLMO_API void omCleanupRegisterWindowMessage(void);

}  // extern "C"
