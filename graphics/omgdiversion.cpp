// Version of the graphics layer.
#include "graphics/omgdi.h"

extern "C" OLMO_API const char *omGraphicsVersion(void)
{
    return OLMO_VERSION_STRING;
}
