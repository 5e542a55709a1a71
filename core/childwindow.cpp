// Child windows: the creation sequence of a WS_CHILD window, its XoBorder
// frame ("ChildWindow") with the scrolled window and drawing area inside,
// and the frame's reports coming back as window messages.
#include "core/omwindow.h"

#include "kernel/omplaceholder.h"

extern "C" {
OLMO_API int bNCCreate = 0;
OLMO_API int bAutoScrolledWindow = 0;
OLMO_API int bCreatingCFormView = 0;
}

OM_PLACEHOLDER(int, omCreateChildWindow, (HWND, int), -1)

extern "C" OLMO_API BOOL omCreateChildClientArea(HWND)
{
    return FALSE;
}
