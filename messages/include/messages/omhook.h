// The process-wide hook chains: the internal entries through which
// retrieval, sending and window creation run the hooks installed with
// SetWindowsHookExA, and the chain helpers behind the exported functions.
#pragma once

#include <olmo/platform.h>

#include <windows.h>

extern "C" {

// Runs the chain of hook type `type` (a WH_* number) as the library does at
// its hook points: every applicable hook, newest first, is called as
// proc(code, wParam, lParam) with no lock held, so a hook may install,
// remove or call hooks, its own removal included.  A hook installed for one
// thread is skipped on every other thread while user-interface threads are
// supported.  While WH_DEBUG hooks exist (and `type` is not WH_DEBUG), they
// are asked first for each hook (code HC_ACTION, wParam `type`, lParam a
// DEBUGHOOKINFO); a non-zero answer skips that hook.  A non-zero answer of a
// hook for which omHookCanPrevent(type, code) holds ends the walk.
//
// Returns the last answer, 0 when no hook was called.  *installed (may be
// null) is set to 1 when `type` has a chain, else 0.  Takes no lock when
// the chain is empty.  Any thread.
OLMO_API LRESULT omInvokeHookFunc(int type, WPARAM wParam, LPARAM lParam, int code,
                                  int *installed);

// TRUE when the chain of `type` holds at least one hook.  Lock-free; a
// hint only, since another thread may change the chain right after.
OLMO_API BOOL omIsHooked(int type);

// TRUE when a non-zero answer of a hook of this type and code ends the
// library's walk of the chain.
OLMO_API BOOL omHookCanPrevent(int type, int code);

}  // extern "C"
