// Start-up of the user library and its shared state: DllMain and
// _ominit_userdll, which the kernel layer calls when it loads the library,
// the 57-entry table the kernel calls by position, omWEP, and the locks of
// the library.  Classes, the desktop window and the rest are made on use.
#include "core/omwindow.h"
#include "core/omcore.h"

#include "kernel/omdisplay.h"
#include "kernel/omprocess.h"
#include "kernel/omstartup.h"
#include "widgets/XoBorder.h"

#include <cstdio>

extern "C" {
OLMO_API HINSTANCE hUserInstance = nullptr;
// The version tag: 17 characters and the NUL.
OLMO_API char omVersionUser[18] = {};
}

// Entries of the message subsystem, which core may not include: declared
// here by their C names only, as the table sees them.
extern "C" {
void omInitModifierMasks(void);
unsigned int XK2VK(KeySym keysym);
int omInitMsgQ(HANDLE thread);
void omMsgQExtraCleanUp(HANDLE thread);
void omCleanupSMSList(HANDLE thread);
BOOL omPostMessageEvent(HWND, UINT, WPARAM, LPARAM, const XEvent *, HANDLE, int);
BOOL omIsMsgAvailable(UINT flags);
void omUpdateCriticalVirtKeys(void);
int omBorderWidth(const WindowRecord *record);
int omCaptionHeight(const WindowRecord *record);
void omCleanupRegisterWindowMessage(void);
void omAsyncSelectRegisterHooks(void);
}

// Entries of the window-management subsystem, declared the same way.
extern "C" {
Cursor omCreateCursorFromData(HCURSOR cursor);
int omCurrentCursorCount(void);
}

namespace {

constexpr char kVersionTag[18] = "USER: Aug  1 2004";
static_assert(sizeof kVersionTag == 18);
constexpr const char *kModuleName = "olmouser";

// The table lives on this frame; the kernel copies it.  Entries of later
// subsystems that are Windows functions point at their registered
// placeholders until they land.  Toolkit entries that do not exist yet
// stay null, which the kernel skips: several of them (omWindowCacheStartInit,
// omCleanupSMSList) run at every start-up or thread exit, where a
// placeholder would warn in every program.
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
    put(OM_UE_CreateDesktopWindow, &CreateDesktopWindow);
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
    put(OM_UE_omSetDefaultClassCursors, &omSetDefaultClassCursors);
    put(OM_UE_omFindClass, &omFindClass);
    put(OM_UE_omWindowFromXWindow, &omWindowFromXWindow);
    put(OM_UE_omDestroyHWNDsMarkedForDeletion, &omDestroyHWNDsMarkedForDeletion);
    put(OM_UE_omDetachHWNDfromThread, &omDetachHWNDfromThread);
    put(OM_UE_XoBorderPreinitialize, &XoBorderPreinitialize);
    put(OM_UE_omSetupIconic, &omSetupIconic);
    put(OM_UE_omInitModifierMasks, &omInitModifierMasks);
    put(OM_UE_XK2VK, &XK2VK);
    put(OM_UE_omInitMsgQ, &omInitMsgQ);
    put(OM_UE_omMsgQExtraCleanUp, &omMsgQExtraCleanUp);
    put(OM_UE_omCleanupSMSList, &omCleanupSMSList);
    put(OM_UE_omPostMessageEvent, &omPostMessageEvent);
    put(OM_UE_omIsMsgAvailable, &omIsMsgAvailable);
    put(OM_UE_omUpdateCriticalVirtKeys, &omUpdateCriticalVirtKeys);
    put(OM_UE_omBorderWidth, &omBorderWidth);
    put(OM_UE_omCaptionHeight, &omCaptionHeight);
    put(OM_UE_omCleanupRegisterWindowMessage, &omCleanupRegisterWindowMessage);
    put(OM_UE_omCreateCursorFromData, &omCreateCursorFromData);
    put(OM_UE_omCurrentCursorCount, &omCurrentCursorCount);
    _omUSER_exports_init(table);
}

// A lock that is made on first use and never destroyed, so that threads
// still running at exit never find it gone.
std::mutex &lazyMutex(std::mutex *&slot, std::once_flag &once)
{
    std::call_once(once, [&] { slot = new std::mutex; });
    return *slot;
}

}  // namespace

namespace om::core {

#define OM_LAZY_MUTEX(fn, name)                                                            \
    std::mutex &fn()                                                                       \
    {                                                                                      \
        static std::mutex *name = nullptr;                                                 \
        static std::once_flag name##NeedToInit;                                            \
        return lazyMutex(name, name##NeedToInit);                                          \
    }

OM_LAZY_MUTEX(windowClassMutex, omWindowClassMutex)
OM_LAZY_MUTEX(propertyMutex, omPropertyMutex)
OM_LAZY_MUTEX(windowSiblingMutex, omWindowSiblingMutex)
OM_LAZY_MUTEX(destroyWidgetQueueMutex, omMutexDestroyWidgetQ)

#undef OM_LAZY_MUTEX

}  // namespace om::core

extern "C" OLMO_API BOOL WINAPI DllMain(HINSTANCE hinstDLL, DWORD fdwReason, LPVOID)
{
    if (omResources.dllTrace)
        std::printf("DLLTRACE: DllMain() for %s called, hfwReason = %d\n", kModuleName,
                    static_cast<int>(fdwReason));
    if (fdwReason == DLL_PROCESS_ATTACH) {
        std::memcpy(omVersionUser, kVersionTag, sizeof kVersionTag);
        hUserInstance = hinstDLL;
    }
    return TRUE;
}

extern "C" OLMO_API int _ominit_userdll(void)
{
    if (omResources.dllTrace)
        std::puts("DLLTRACE: _ominit_userdll called");
    initExports();
    om::core::registerGraphicsHooks();
    om::core::registerFrameUpcalls();
    omAsyncSelectRegisterHooks();
    return 1;
}

extern "C" OLMO_API void olmo_dummy_wmi(void) {}

extern "C" OLMO_API void omWEP(void)
{
    first_appshell_created_yet = 0;
    omResetCurrentCursorCount();
}

extern "C" OLMO_API const char *omUserVersion(void)
{
    return OLMO_VERSION_STRING;
}
