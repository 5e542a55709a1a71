// Process state of the kernel layer: the command line, the cursor count
// the user library's cursor functions share with it.
#pragma once

#include <olmo/platform.h>

#include "kernel/ominit.h"

extern "C" {

// How often the cursor is shown (ShowCursor's display count).
OLMO_API extern int omCursorCount;
OLMO_API void omResetCurrentCursorCount(void);

}  // extern "C"
