// Entry points of the kernel layer that the graphics layer and the user
// library call.  Not part of the public headers: ported programs never see
// them.
#pragma once

#include <olmo/platform.h>

OLMO_BEGIN_C

// Version of the kernel layer, "major.minor.patch".  Safe on any thread.
OLMO_API const char *omKernelVersion(void);

OLMO_END_C
