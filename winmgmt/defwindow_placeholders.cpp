// Internal entries the default window procedure calls whose owners (the
// scroll bars, the MDI window menu, child-frame icons, shell icons) have
// not landed: registered placeholders, each to be deleted here when its
// owner defines it.
#include "winmgmt/omdefwindow.h"

#include "kernel/omplaceholder.h"

OM_PLACEHOLDER_VOID(omScrollBarKeyboardMesgHandler, (HWND, UINT, WPARAM, LPARAM))
OM_PLACEHOLDER_VOID(omMdiMenuSetTitle, (HWND, LPCSTR))
OM_PLACEHOLDER_VOID(omPlaceBorderIcon, (HWND))
OM_PLACEHOLDER(BOOL, omLoadColorIcon, (HWND, unsigned long), FALSE)
