// Loading the user library and its entry-point table.
//
// At start-up the kernel layer finds the user library (by its file, not in
// the program, so a program's own DllMain cannot stand in for it), calls
// its DllMain and _ominit_userdll, which hands over the table of 57 entry
// points; the kernel keeps a copy and calls the entries by position.
#pragma once

#include <olmo/platform.h>

#include <cstdint>

// Positions in the user library's entry-point table.
enum OmUserEntry : int {
    OM_UE_AppendMenuA, OM_UE_SendMessageA, OM_UE_PostMessageA, OM_UE_PeekMessageA,
    OM_UE_DialogBoxParamA, OM_UE_GetWindowTextA, OM_UE_SetWindowTextA, OM_UE_GetDlgItemTextA,
    OM_UE_SetDlgItemTextA, OM_UE_SendDlgItemMessageA, OM_UE_LoadStringA, OM_UE_CreateMenu,
    OM_UE_GetDoubleClickTime, OM_UE_SetCursor, OM_UE_CreateDesktopWindow,
    OM_UE_GetDialogBaseUnits, OM_UE_GetActiveWindow, OM_UE_GetCursorPos, OM_UE_GetPropA,
    OM_UE_SetPropA, OM_UE_RemovePropA, OM_UE_GetParent, OM_UE_ShowWindow, OM_UE_GetDlgItem,
    OM_UE_EndDialog, OM_UE_DestroyIcon, OM_UE_keybd_event, OM_UE_mouse_event,
    OM_UE_DestroyAcceleratorTable, OM_UE_omDialogUnload, OM_UE_omMsgQExtraCleanUp,
    OM_UE_omXPMtoOMIcon, OM_UE_omCreateCursorFromData, OM_UE_XoBorderPreinitialize,
    OM_UE_omSetupIconic, OM_UE_omUpdateCriticalVirtKeys, OM_UE_omSetDefaultClassCursors,
    OM_UE_omInitMsgQ, OM_UE_omCurrentCursorCount, OM_UE_omSuspendSpy, OM_UE_omFindClass,
    OM_UE_omWindowFromXWindow, OM_UE_XoComboGetChild, OM_UE_omDestroyDummySysMenu,
    OM_UE_omPostMessageEvent, OM_UE_XK2VK, OM_UE__omAppendMenu,
    OM_UE_omCleanupRegisterWindowMessage, OM_UE_omBorderWidth, OM_UE_omCaptionHeight,
    OM_UE_omWindowCacheCleanUp, OM_UE_omWindowCacheStartInit, OM_UE_omIsMsgAvailable,
    OM_UE_omInitModifierMasks, OM_UE_omDestroyHWNDsMarkedForDeletion,
    OM_UE_omDetachHWNDfromThread, OM_UE_omCleanupSMSList,
    OM_UE_Count
};
static_assert(OM_UE_Count == 57, "the table has 57 entries");

extern "C" {

// Called by the user library's init_exports with its table: 57 function
// addresses and a terminating null.  The kernel copies the table before
// returning, since it lives on the caller's stack.
OLMO_API void _omUSER_exports_init(void **table);

// The kept entry at a position, or null before the user library is loaded.
OLMO_API void *omUserEntryPoint(int position);

// Start-up steps, in this order, from omInitialize.
OLMO_API void omLoadUserLibrary(void);
OLMO_API void omRunUserStartup(void);

// The user library's instance handle, or 0 when it is not loaded.
OLMO_API uint64_t omUserLibraryInstance(void);

}  // extern "C"
