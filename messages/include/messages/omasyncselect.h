// Socket notification: each thread's registrations made by WSAAsyncSelect
// and WSAEventSelect, the zero-time-out polling that finds their network
// events, and the socket source of message retrieval.  The socket calls
// themselves are the kernel layer's; it reaches these operations through
// the table omAsyncSelectRegisterHooks installs.
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

struct OmThreadRecord;

// One registration.  Lists are newest first; every list and registration
// is guarded by one lock of this module, so that closesocket on any thread
// can drop the socket's registrations from every list.
struct OmAsyncSelectInfo {
    OmAsyncSelectInfo *next;
    SOCKET socket;
    HWND hwnd;        // window to notify (message registrations)
    long requested;   // FD_ events asked for
    UINT message;     // message to post
    long enabled;     // events armed; each is disarmed once reported
    int state;        // kOmAsyncState* of kernel/omsocket.h
    int eventMode;    // nonzero: signal event instead of posting
    HANDLE event;
    long pending;     // event mode: found and not yet collected
    int phase;        // what the socket is: see asyncselect.cpp
    long due;         // found without polling (the end of a connect)
    int errors[FD_MAX_EVENTS];  // error of each event when it was found
};

extern "C" {

// Adds a registration to the calling thread's list (FD_WRITE and FD_CONNECT
// are not armed when FD_ACCEPT is asked for).  FALSE without a thread
// record or memory.
OLMO_API BOOL omAddInfoToAsyncList(SOCKET s, HWND hwnd, UINT message, long events,
                                   int eventMode, HANDLE event, long pending);
// Removes the socket's registrations from every thread's list: those for
// hwnd, or all of them when hwnd is 0.  Returns how many went.
OLMO_API int omRemoveInfoFromAsyncList(SOCKET s, HWND hwnd);
// Gives an accepted socket a copy of the listening socket's first
// registration (without FD_ACCEPT and FD_CONNECT, active, connected) at the
// head of the calling thread's list.  FALSE when the listener has none.
OLMO_API BOOL omDuplicateAsyncSelectInfo(SOCKET s, SOCKET newSocket);
// Arms (enable nonzero) or disarms event in every registration of the
// socket, in every thread's list, that asked for it.
OLMO_API void omEnableAsyncEvent(SOCKET s, long event, BOOL enable);
OLMO_API void omSetAsyncState(SOCKET s, int state);
// The windows and messages of the socket's registrations with FD_CLOSE
// armed, in arrays of as many entries as the result counts, which the
// caller frees with free() (null when the count is 0; either pointer may be
// null to count only).
OLMO_API int omWantAsyncCloseMessage(SOCKET s, HWND **hwnds, UINT **messages);
// TRUE when an event-mode registration of the calling thread signals event.
OLMO_API BOOL omIsSocketEvent(HANDLE event);
// The pending events of the socket's event-mode registration, cleared when
// clear is set; -1 when it has none.
OLMO_API long omGetAsyncInfo(SOCKET s, BOOL clear);
// The first registration of the calling thread after `after` (from the
// head when null) that is for hwnd (any, when hwnd is 0).  The pointer is
// good on the calling thread until its list next changes.
OLMO_API OmAsyncSelectInfo *omGetNextAsyncInfo(HWND hwnd, OmAsyncSelectInfo *after);
// Polls the event-mode registrations of the list that starts at list (a
// head from omGetNextAsyncInfo), or of the calling thread, recording what
// they find and signalling their events.
OLMO_API void omSetSocketEvents(OmAsyncSelectInfo *list);
OLMO_API void omCheckSocketEvents(void);

// Retrieval's socket source for thread (0: the caller): polls its
// event-mode registrations, then looks for a message registration for hwnd
// (or a descendant; any window when 0) whose message lies in min..max (each
// bound ignored when 0) and that has an armed event ready.  With fill the
// notification is written to msg, and PM_REMOVE in flags disarms the event
// until the socket layer re-arms it.
OLMO_API BOOL omGetAsyncSelectMessage(HANDLE thread, HWND hwnd, MSG *msg, UINT min, UINT max,
                                      BOOL fill, UINT flags);
// TRUE when any notification is ready for the calling thread.
OLMO_API BOOL omCheckAsyncSelectMessage(void);
// Writes one notification: wParam the socket, lParam the event and error.
OLMO_API BOOL omFillAsyncSelectMessage(OmAsyncSelectInfo *info, long event, MSG *msg, int error,
                                       BOOL fill, UINT flags);

// Nonzero when the calling thread has any registration (a waiting secondary
// thread then polls at least every 100 ms).
OLMO_API int omThreadHasAsyncRegistrations(void);
// Frees a finished thread's list.  Runs on thread exit, before the record
// goes.
OLMO_API void omAsyncSelectThreadCleanup(OmThreadRecord *thread);
// Lends the kernel layer's socket calls the operations above; called once
// at start-up of the user library.
OLMO_API void omAsyncSelectRegisterHooks(void);

}  // extern "C"
