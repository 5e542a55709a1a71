/*
 * The master include file of the Windows API on Olmo.
 *
 * Brings in the C library declarations that Windows' own headers bring in,
 * the base definitions and every family header.  WIN32_LEAN_AND_MEAN leaves
 * out the multimedia, shell and common-dialog headers, as it does on
 * Windows.
 */
#ifndef _WINDOWS_
#define _WINDOWS_

#ifndef RC_INVOKED
#include <ctype.h>
#include <limits.h>
#include <stdarg.h>
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <wchar.h>
#endif

#include <olmo/platform.h>

#ifndef RC_INVOKED
#include <windef.h>
#include <winbase.h>
#include <wingdi.h>
#include <winuser.h>
#include <winnls.h>
#include <winerror.h>
#include <winreg.h>
#include <olmo/crtcompat.h>
#ifndef WIN32_LEAN_AND_MEAN
#include <mmsystem.h>
#include <shellapi.h>
#include <commdlg.h>
#endif
#else
/* A resource script sees the constants only. */
#include <winuser.h>
#include <winnt.h>
#endif

#endif /* _WINDOWS_ */
