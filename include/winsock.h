/*
 * The older sockets header: everything it declares is in <winsock2.h>,
 * which programs written for either include.
 */
#ifndef _WINSOCKAPI_
#include <winsock2.h>
#endif
