// The socket layer's seam towards the user library.  The kernel layer
// carries out the socket calls over BSD sockets; the registrations of
// WSAAsyncSelect and WSAEventSelect live in the user library, which lends
// the kernel its operations on them through one table at start-up.
#pragma once

#include <olmo/platform.h>

// The socket header without its name mapping, so that the C library's
// socket calls keep their names for the files that include this one; a
// file that wants the Windows names includes <winsock2.h> first.
#ifndef _WINSOCK2API_
#define OLMO_NO_SOCKET_NAME_MAP
#include <winsock2.h>
#undef OLMO_NO_SOCKET_NAME_MAP
#endif

#include <cstdint>

// States of a registration.  Inactive registrations are never polled; a
// non-blocking connect that succeeded at once is reported from state
// Connected without polling, then the registration is Active.
enum : int {
    kOmAsyncStateInactive = 0,
    kOmAsyncStateActive = 1,
    kOmAsyncStateConnected = 3,
};

// Operations on the registrations.  Every entry may be called from any
// thread; a socket's registrations are found in every thread's list.
struct OmSocketNotifyHooks {
    // Adds a registration to the calling thread's list; 0 or a WSAE code.
    int (*add)(SOCKET s, HWND hwnd, UINT message, long events, int eventMode, HANDLE event);
    // Removes the socket's registrations (those for hwnd, or all for 0);
    // returns how many.
    int (*remove)(SOCKET s, HWND hwnd);
    // Gives an accepted socket a copy of its listening socket's first
    // registration, in the calling thread's list.
    int (*duplicate)(SOCKET listening, SOCKET accepted);
    // Re-arms (enable nonzero) or disarms one FD_ bit.
    void (*enable)(SOCKET s, long event, int enable);
    void (*setState)(SOCKET s, int state);
    // Polls the socket's event-mode registration and moves what it found,
    // with the errors, into out, clearing them; WSAEINVAL when the socket
    // has no event-mode registration, else 0.
    int (*collect)(SOCKET s, WSANETWORKEVENTS *out);
    // Polls every event-mode registration of every thread, signalling the
    // events of those that found something.
    void (*pollEvents)(void);
    int (*isWindow)(HWND hwnd);
    int (*isRegistered)(SOCKET s);
};

extern "C" {

// Installs the table (null removes it) and returns the one it replaces.
// The table is not copied: it must stay valid for the life of the process.
OLMO_API const OmSocketNotifyHooks *omRegisterSocketNotifyHooks(const OmSocketNotifyHooks *hooks);

// The WSAE code of an errno value (WSAEINVAL for those without one).
OLMO_API int omWsErrorFromErrno(int err);

}  // extern "C"
