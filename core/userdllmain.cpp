// Start-up of the user library: DllMain, which the kernel layer calls when
// it loads the library, and _ominit_userdll, which hands the kernel the
// table of entry points it calls by position.  Entries whose functions are
// not built yet are registered placeholders (Windows functions) or null
// (toolkit entries, which the kernel then skips).
#include "core/omcore.h"

#include "kernel/omstartup.h"

#include <windows.h>

extern "C" {
OLMO_API HINSTANCE hUserInstance = nullptr;
}

namespace {

// Init_exports: the table lives on this frame; the kernel copies it.
void initExports()
{
    void *table[OM_UE_Count + 1] = {};
    auto put = [&](OmUserEntry position, auto fn) {
        table[position] = reinterpret_cast<void *>(fn);
    };
    put(OM_UE_AppendMenuA, &AppendMenuA);
    put(OM_UE_SendMessageA, &SendMessageA);
    put(OM_UE_PostMessageA, &PostMessageA);
    put(OM_UE_PeekMessageA, &PeekMessageA);
    put(OM_UE_DialogBoxParamA, &DialogBoxParamA);
    put(OM_UE_GetWindowTextA, &GetWindowTextA);
    put(OM_UE_SetWindowTextA, &SetWindowTextA);
    put(OM_UE_GetDlgItemTextA, &GetDlgItemTextA);
    put(OM_UE_SetDlgItemTextA, &SetDlgItemTextA);
    put(OM_UE_SendDlgItemMessageA, &SendDlgItemMessageA);
    put(OM_UE_LoadStringA, &LoadStringA);
    put(OM_UE_CreateMenu, &CreateMenu);
    put(OM_UE_GetDoubleClickTime, &GetDoubleClickTime);
    put(OM_UE_SetCursor, &SetCursor);
    put(OM_UE_GetDialogBaseUnits, &GetDialogBaseUnits);
    put(OM_UE_GetActiveWindow, &GetActiveWindow);
    put(OM_UE_GetCursorPos, &GetCursorPos);
    put(OM_UE_GetPropA, &GetPropA);
    put(OM_UE_SetPropA, &SetPropA);
    put(OM_UE_RemovePropA, &RemovePropA);
    put(OM_UE_GetParent, &GetParent);
    put(OM_UE_ShowWindow, &ShowWindow);
    put(OM_UE_GetDlgItem, &GetDlgItem);
    put(OM_UE_EndDialog, &EndDialog);
    put(OM_UE_DestroyIcon, &DestroyIcon);
    put(OM_UE_keybd_event, &keybd_event);
    put(OM_UE_mouse_event, &mouse_event);
    put(OM_UE_DestroyAcceleratorTable, &DestroyAcceleratorTable);
    // The toolkit entries (omInitMsgQ and the rest) join the table as
    // their subsystems land.
    _omUSER_exports_init(table);
}

}  // namespace

extern "C" OLMO_API BOOL WINAPI DllMain(HINSTANCE hinstDLL, DWORD fdwReason, LPVOID)
{
    if (fdwReason == DLL_PROCESS_ATTACH)
        hUserInstance = hinstDLL;
    return TRUE;
}

extern "C" OLMO_API void _ominit_userdll(void)
{
    initExports();
}

extern "C" OLMO_API const char *omUserVersion(void)
{
    return OLMO_VERSION_STRING;
}
