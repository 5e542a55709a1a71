// Entry points of the graphics layer that the user library calls.  Not part
// of the public headers.
#pragma once

#include <olmo/platform.h>

OLMO_BEGIN_C

// Version of the graphics layer; it is built together with the kernel layer
// and refuses nothing, but reports a mismatch through the tests.
OLMO_API const char *omGraphicsVersion(void);

OLMO_END_C
