// Posting: PostMessageA and its variants onto the posted queue of the
// window's thread, thread messages, and the quit message.
#include "messages/ommessageq.h"

#include "core/omwindow.h"
#include "kernel/omthread.h"
#include "kernel/omwidgetmap.h"

extern "C" {

BOOL WINAPI PostMessageA(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam)
{
    return omPostMessageEvent(hWnd, Msg, wParam, lParam, nullptr, nullptr, 0);
}

BOOL WINAPI PostMessageW(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam)
{
    return PostMessageA(hWnd, Msg, wParam, lParam);
}

void WINAPI PostQuitMessage(int nExitCode)
{
    PostMessageA(nullptr, WM_QUIT, static_cast<WPARAM>(nExitCode), 0);
}

// A thread message (hwnd 0) on the queue of the thread with that id.
BOOL WINAPI PostThreadMessageA(DWORD idThread, UINT Msg, WPARAM wParam, LPARAM lParam)
{
    OmThreadRecord *t = omThreadRecordFromId(idThread);
    if (!t || !t->userQueue) {
        SetLastError(ERROR_INVALID_THREAD_ID);
        return FALSE;
    }
    return omPostMessageEvent(nullptr, Msg, wParam, lParam, nullptr,
                              reinterpret_cast<HANDLE>(static_cast<uintptr_t>(t->handle)), 0);
}

BOOL WINAPI PostThreadMessageW(DWORD idThread, UINT Msg, WPARAM wParam, LPARAM lParam)
{
    return PostThreadMessageA(idThread, Msg, wParam, lParam);
}

}  // extern "C"
