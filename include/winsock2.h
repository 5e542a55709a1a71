/*
 * Sockets as a Win32 program sees them, over the system's BSD sockets.
 * Addresses, socket types, options and message flags are the system's own
 * (<sys/socket.h>, <netinet/in.h>, <arpa/inet.h>, <netdb.h>); this header
 * adds the Windows names and routes the socket calls to the toolkit.
 */
#ifndef _WINSOCK2API_
#define _WINSOCK2API_
#define _WINSOCKAPI_

#include <windows.h>

#ifndef RC_INVOKED
#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/types.h>
#endif

#ifndef WSAAPI
#define WSAAPI
#endif

#define INVALID_SOCKET ((SOCKET)(~0))
#define SOCKET_ERROR (-1)

/* shutdown() directions. */
#define SD_RECEIVE 0x00
#define SD_SEND 0x01
#define SD_BOTH 0x02

/* ioctlsocket() commands; the system's numbers when it has them. */
#ifndef FIONREAD
#define FIONREAD 0x4004667F
#endif
#ifndef FIONBIO
#define FIONBIO ((long)0x8004667E)
#endif

/* Network events of WSAAsyncSelect and WSAEventSelect. */
#define FD_READ_BIT 0
#define FD_READ (1 << FD_READ_BIT)
#define FD_WRITE_BIT 1
#define FD_WRITE (1 << FD_WRITE_BIT)
#define FD_OOB_BIT 2
#define FD_OOB (1 << FD_OOB_BIT)
#define FD_ACCEPT_BIT 3
#define FD_ACCEPT (1 << FD_ACCEPT_BIT)
#define FD_CONNECT_BIT 4
#define FD_CONNECT (1 << FD_CONNECT_BIT)
#define FD_CLOSE_BIT 5
#define FD_CLOSE (1 << FD_CLOSE_BIT)
#define FD_QOS_BIT 6
#define FD_QOS (1 << FD_QOS_BIT)
#define FD_GROUP_QOS_BIT 7
#define FD_GROUP_QOS (1 << FD_GROUP_QOS_BIT)
#define FD_ROUTING_INTERFACE_CHANGE_BIT 8
#define FD_ROUTING_INTERFACE_CHANGE (1 << FD_ROUTING_INTERFACE_CHANGE_BIT)
#define FD_ADDRESS_LIST_CHANGE_BIT 9
#define FD_ADDRESS_LIST_CHANGE (1 << FD_ADDRESS_LIST_CHANGE_BIT)
#define FD_MAX_EVENTS 10
#define FD_ALL_EVENTS ((1 << FD_MAX_EVENTS) - 1)

/* The lParam of a WSAAsyncSelect message: event low, error high. */
#define WSAMAKESELECTREPLY(event, error) MAKELONG(event, error)
#define WSAGETSELECTEVENT(lParam) LOWORD(lParam)
#define WSAGETSELECTERROR(lParam) HIWORD(lParam)

/* Error codes (WSAGetLastError). */
#define WSABASEERR 10000
#define WSAEINTR (WSABASEERR + 4)
#define WSAEBADF (WSABASEERR + 9)
#define WSAEACCES (WSABASEERR + 13)
#define WSAEFAULT (WSABASEERR + 14)
#define WSAEINVAL (WSABASEERR + 22)
#define WSAEMFILE (WSABASEERR + 24)
#define WSAEWOULDBLOCK (WSABASEERR + 35)
#define WSAEINPROGRESS (WSABASEERR + 36)
#define WSAEALREADY (WSABASEERR + 37)
#define WSAENOTSOCK (WSABASEERR + 38)
#define WSAEDESTADDRREQ (WSABASEERR + 39)
#define WSAEMSGSIZE (WSABASEERR + 40)
#define WSAEPROTOTYPE (WSABASEERR + 41)
#define WSAENOPROTOOPT (WSABASEERR + 42)
#define WSAEPROTONOSUPPORT (WSABASEERR + 43)
#define WSAESOCKTNOSUPPORT (WSABASEERR + 44)
#define WSAEOPNOTSUPP (WSABASEERR + 45)
#define WSAEPFNOSUPPORT (WSABASEERR + 46)
#define WSAEAFNOSUPPORT (WSABASEERR + 47)
#define WSAEADDRINUSE (WSABASEERR + 48)
#define WSAEADDRNOTAVAIL (WSABASEERR + 49)
#define WSAENETDOWN (WSABASEERR + 50)
#define WSAENETUNREACH (WSABASEERR + 51)
#define WSAENETRESET (WSABASEERR + 52)
#define WSAECONNABORTED (WSABASEERR + 53)
#define WSAECONNRESET (WSABASEERR + 54)
#define WSAENOBUFS (WSABASEERR + 55)
#define WSAEISCONN (WSABASEERR + 56)
#define WSAENOTCONN (WSABASEERR + 57)
#define WSAESHUTDOWN (WSABASEERR + 58)
#define WSAETOOMANYREFS (WSABASEERR + 59)
#define WSAETIMEDOUT (WSABASEERR + 60)
#define WSAECONNREFUSED (WSABASEERR + 61)
#define WSAELOOP (WSABASEERR + 62)
#define WSAENAMETOOLONG (WSABASEERR + 63)
#define WSAEHOSTDOWN (WSABASEERR + 64)
#define WSAEHOSTUNREACH (WSABASEERR + 65)
#define WSAENOTEMPTY (WSABASEERR + 66)
#define WSAEPROCLIM (WSABASEERR + 67)
#define WSAEUSERS (WSABASEERR + 68)
#define WSAEDQUOT (WSABASEERR + 69)
#define WSAESTALE (WSABASEERR + 70)
#define WSAEREMOTE (WSABASEERR + 71)
#define WSASYSNOTREADY (WSABASEERR + 91)
#define WSAVERNOTSUPPORTED (WSABASEERR + 92)
#define WSANOTINITIALISED (WSABASEERR + 93)
#define WSAEDISCON (WSABASEERR + 101)
#define WSAHOST_NOT_FOUND (WSABASEERR + 1001)
#define WSATRY_AGAIN (WSABASEERR + 1002)
#define WSANO_RECOVERY (WSABASEERR + 1003)
#define WSANO_DATA (WSABASEERR + 1004)
#define WSA_INVALID_HANDLE ERROR_INVALID_HANDLE
#define WSA_INVALID_PARAMETER ERROR_INVALID_PARAMETER
#define WSA_NOT_ENOUGH_MEMORY ERROR_NOT_ENOUGH_MEMORY

/* Event objects of WSAEventSelect are kernel events. */
#define WSA_INVALID_EVENT ((WSAEVENT)NULL)
#define WSA_MAXIMUM_WAIT_EVENTS MAXIMUM_WAIT_OBJECTS
#define WSA_WAIT_FAILED WAIT_FAILED
#define WSA_WAIT_EVENT_0 WAIT_OBJECT_0
#define WSA_WAIT_IO_COMPLETION WAIT_IO_COMPLETION
#define WSA_WAIT_TIMEOUT WAIT_TIMEOUT
#define WSA_INFINITE INFINITE

#define WSADESCRIPTION_LEN 256
#define WSASYS_STATUS_LEN 128

#ifndef RC_INVOKED
/*
 * The C library already names these types (u_long is its 64-bit unsigned
 * long), so they are declared exactly as it does: an identical typedef may
 * be repeated, a different one could never be included beside it.
 */
typedef unsigned char u_char;
typedef unsigned short u_short;
typedef unsigned int u_int;
typedef unsigned long u_long;

typedef UINT_PTR SOCKET;
typedef HANDLE WSAEVENT;
typedef HANDLE *LPWSAEVENT;

/* The 64-bit layout: the counts and vendor pointer ahead of the texts. */
typedef struct WSAData {
    WORD wVersion;
    WORD wHighVersion;
    unsigned short iMaxSockets;
    unsigned short iMaxUdpDg;
    char *lpVendorInfo;
    char szDescription[WSADESCRIPTION_LEN + 1];
    char szSystemStatus[WSASYS_STATUS_LEN + 1];
} WSADATA, *LPWSADATA;

typedef struct _WSANETWORKEVENTS {
    LONG lNetworkEvents;
    int iErrorCode[FD_MAX_EVENTS];
} WSANETWORKEVENTS, *LPWSANETWORKEVENTS;

typedef struct sockaddr SOCKADDR, *PSOCKADDR, *LPSOCKADDR;
typedef struct sockaddr_in SOCKADDR_IN, *PSOCKADDR_IN, *LPSOCKADDR_IN;
typedef struct in_addr IN_ADDR, *PIN_ADDR, *LPIN_ADDR;
typedef struct hostent HOSTENT, *PHOSTENT, *LPHOSTENT;
typedef struct linger LINGER, *PLINGER, *LPLINGER;

OLMO_BEGIN_C

WINSOCK_API_LINKAGE int WSAAPI WSAStartup(WORD wVersionRequested, LPWSADATA lpWSAData);
WINSOCK_API_LINKAGE int WSAAPI WSACleanup(void);
WINSOCK_API_LINKAGE int WSAAPI WSAGetLastError(void);
WINSOCK_API_LINKAGE void WSAAPI WSASetLastError(int iError);

WINSOCK_API_LINKAGE int WSAAPI WSAAsyncSelect(SOCKET s, HWND hWnd, u_int wMsg, long lEvent);
WINSOCK_API_LINKAGE int WSAAPI WSAEventSelect(SOCKET s, WSAEVENT hEventObject,
                                              long lNetworkEvents);
WINSOCK_API_LINKAGE int WSAAPI WSAEnumNetworkEvents(SOCKET s, WSAEVENT hEventObject,
                                                    LPWSANETWORKEVENTS lpNetworkEvents);
WINSOCK_API_LINKAGE WSAEVENT WSAAPI WSACreateEvent(void);
WINSOCK_API_LINKAGE BOOL WSAAPI WSACloseEvent(WSAEVENT hEvent);
WINSOCK_API_LINKAGE BOOL WSAAPI WSASetEvent(WSAEVENT hEvent);
WINSOCK_API_LINKAGE BOOL WSAAPI WSAResetEvent(WSAEVENT hEvent);
WINSOCK_API_LINKAGE DWORD WSAAPI WSAWaitForMultipleEvents(DWORD cEvents, const WSAEVENT *lphEvents,
                                                         BOOL fWaitAll, DWORD dwTimeout,
                                                         BOOL fAlertable);

/*
 * The socket calls themselves.  They carry toolkit names and the macros
 * below give them their Windows names, so that the C library's socket
 * functions of the same names stay whole for the rest of the process.
 */
WINSOCK_API_LINKAGE SOCKET WSAAPI omWsSocket(int af, int type, int protocol);
WINSOCK_API_LINKAGE int WSAAPI omWsBind(SOCKET s, const struct sockaddr *name, int namelen);
WINSOCK_API_LINKAGE int WSAAPI omWsListen(SOCKET s, int backlog);
WINSOCK_API_LINKAGE int WSAAPI omWsConnect(SOCKET s, const struct sockaddr *name, int namelen);
WINSOCK_API_LINKAGE SOCKET WSAAPI omWsAccept(SOCKET s, struct sockaddr *addr, int *addrlen);
WINSOCK_API_LINKAGE int WSAAPI omWsRecv(SOCKET s, char *buf, int len, int flags);
WINSOCK_API_LINKAGE int WSAAPI omWsRecvFrom(SOCKET s, char *buf, int len, int flags,
                                            struct sockaddr *from, int *fromlen);
WINSOCK_API_LINKAGE int WSAAPI omWsSend(SOCKET s, const char *buf, int len, int flags);
WINSOCK_API_LINKAGE int WSAAPI omWsSendTo(SOCKET s, const char *buf, int len, int flags,
                                          const struct sockaddr *to, int tolen);
WINSOCK_API_LINKAGE int WSAAPI omWsCloseSocket(SOCKET s);
WINSOCK_API_LINKAGE int WSAAPI omWsIoctlSocket(SOCKET s, long cmd, u_long *argp);
WINSOCK_API_LINKAGE int WSAAPI omWsShutdown(SOCKET s, int how);
WINSOCK_API_LINKAGE int WSAAPI omWsGetSockOpt(SOCKET s, int level, int optname, char *optval,
                                              int *optlen);
WINSOCK_API_LINKAGE int WSAAPI omWsSetSockOpt(SOCKET s, int level, int optname,
                                              const char *optval, int optlen);
WINSOCK_API_LINKAGE int WSAAPI omWsGetSockName(SOCKET s, struct sockaddr *name, int *namelen);
WINSOCK_API_LINKAGE int WSAAPI omWsGetPeerName(SOCKET s, struct sockaddr *name, int *namelen);

OLMO_END_C

/*
 * A source that needs the C library's own socket calls beside these
 * defines OLMO_NO_SOCKET_NAME_MAP before the include and calls the om
 * names.
 */
#ifndef OLMO_NO_SOCKET_NAME_MAP
#define socket omWsSocket
#define bind omWsBind
#define listen omWsListen
#define connect omWsConnect
#define accept omWsAccept
#define recv omWsRecv
#define recvfrom omWsRecvFrom
#define send omWsSend
#define sendto omWsSendTo
#define closesocket omWsCloseSocket
#define ioctlsocket omWsIoctlSocket
#define shutdown omWsShutdown
#define getsockopt omWsGetSockOpt
#define setsockopt omWsSetSockOpt
#define getsockname omWsGetSockName
#define getpeername omWsGetPeerName
#endif

#endif /* RC_INVOKED */

#endif /* _WINSOCK2API_ */
