// Version of the kernel layer, so that the libraries above it and the tests
// can check which build they run against.
#include "kernel/omkernel.h"

extern "C" OLMO_API const char *omKernelVersion(void)
{
    return OLMO_VERSION_STRING;
}
