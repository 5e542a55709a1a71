// What core/ offers the other subsystems of the user library.
#pragma once

#include <olmo/platform.h>

OLMO_BEGIN_C

// Version tag of the user library, recorded at load time.
OLMO_API const char *omUserVersion(void);

OLMO_END_C
