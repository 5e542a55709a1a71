// Timers: SetTimer/KillTimer on Xt timeouts of the main thread, and each
// thread's list of pending WM_TIMER messages, coalesced per window and id.
#pragma once

#include <olmo/platform.h>

#include <windows.h>

#include "messages/ommessageq.h"

extern "C" {

// Adds a pending WM_TIMER for hwnd (0: the calling thread) unless one for
// the same window and id already waits, and wakes the owning thread.
// FALSE when the window is invalid or its thread has no queue.
OLMO_API BOOL omTimerAddMsg(HWND hwnd, UINT_PTR id, LPARAM lParam);
// TRUE when the calling thread has no pending timer message.
OLMO_API BOOL omTimerIsQueueEmpty(void);

// Retrieval's timer source: the item at the cursor of the thread's list
// when the filter admits it (hwnd -1: thread timers only).
OLMO_API BOOL omTimerPeekMessage(MSG *msg, HWND hwnd, UINT min, UINT max, UINT flags);

// For retrieval, under the list's queue lock (omWithTimerMsgList): fill a
// MSG from an item; unlink and free an item, moving the cursor on.
OLMO_API void omTimerSetMsg(const OmTimerMsgItem *item, MSG *msg);
OLMO_API void omTimerDelMsgItem(OmTimerMsgList *list, OmTimerMsgItem *item);

}  // extern "C"
