/*
 * Generic-text mappings: _T(), _TCHAR and the _tcs / _t / _ist names, which
 * become the C library's char functions in an ANSI build and 16-bit
 * character functions when the program defines _UNICODE.
 */
#ifndef _INC_TCHAR
#define _INC_TCHAR

#ifndef RC_INVOKED

/* The C++ library's wrappers of these headers may use the names min and
 * max, which <minwindef.h> defines as macros. */
#ifdef __cplusplus
#pragma push_macro("min")
#pragma push_macro("max")
#undef min
#undef max
#endif
#include <ctype.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#ifdef __cplusplus
#pragma pop_macro("min")
#pragma pop_macro("max")
#endif

#include <olmo/crtcompat.h>

#ifdef _UNICODE

#include <winbase.h>

/* UTF-16 text: literals are u"..." so that they have WCHAR's type. */
#define __T(x) u##x

typedef WCHAR _TCHAR;
typedef WCHAR _TSCHAR;
typedef WCHAR _TUCHAR;
typedef WCHAR _TXCHAR;
typedef int _TINT;

#define _tmain wmain
#define _tWinMain wWinMain

/* The C library has no 16-bit string functions, so for now the UNICODE
 * mapping covers only the names with a counterpart among the kernel layer's
 * lstr*W functions; _tcscmp and _tcsicmp then order strings as lstrcmpW and
 * lstrcmpiW do (by the locale's rules, not by code unit).  Everything else
 * (_tcsncpy, whose padding and termination differ from lstrcpynW, _tcschr,
 * _tprintf, _ttoi, _istalpha, ...) is deliberately left unmapped, so that a
 * use is diagnosed instead of silently working on 8-bit text. */
#define _tcslen lstrlenW
#define _tcscpy lstrcpyW
#define _tcscat lstrcatW
#define _tcscmp lstrcmpW
#define _tcsicmp lstrcmpiW

#else /* ANSI */

#define __T(x) x

typedef char _TCHAR;
typedef signed char _TSCHAR;
typedef unsigned char _TUCHAR;
typedef char _TXCHAR;
typedef int _TINT;

#define _TEOF EOF

#define _tmain main
#define _tWinMain WinMain

/* Strings. */
#define _tcslen strlen
#define _tcsclen strlen
#define _tcscpy strcpy
#define _tcsncpy strncpy
#define _tcscat strcat
#define _tcsncat strncat
#define _tcscmp strcmp
#define _tcsncmp strncmp
#define _tcsicmp _stricmp
#define _tcsnicmp _strnicmp
#define _tcscoll strcoll
#define _tcschr strchr
#define _tcsrchr strrchr
#define _tcsstr strstr
#define _tcstok strtok
#define _tcsspn strspn
#define _tcscspn strcspn
#define _tcspbrk strpbrk
#define _tcsdup _strdup
#define _tcsupr _strupr
#define _tcslwr _strlwr
#define _tcsftime strftime

/* Numbers. */
#define _tcstol strtol
#define _tcstoul strtoul
#define _tcstod strtod
#define _ttoi atoi
#define _ttol atol
#define _ttof atof
#define _tstoi atoi
#define _itot _itoa
#define _ltot _ltoa
#define _ultot _ultoa

/* Formatted and stream I/O. */
#define _tprintf printf
#define _ftprintf fprintf
#define _stprintf sprintf
#define _sntprintf _snprintf
#define _vtprintf vprintf
#define _vftprintf vfprintf
#define _vstprintf vsprintf
#define _vsntprintf _vsnprintf
#define _tscanf scanf
#define _ftscanf fscanf
#define _stscanf sscanf
#define _tfopen fopen
#define _fgetts fgets
#define _fputts fputs
#define _fgettc fgetc
#define _fputtc fputc
#define _gettc getc
#define _puttc putc
#define _gettchar getchar
#define _puttchar putchar
#define _ungettc ungetc

/* Environment and files. */
#define _tgetenv getenv
#define _tsystem system
#define _tremove remove
#define _trename rename
#define _taccess _access
#define _tunlink _unlink
#define _tmkdir _mkdir
#define _trmdir _rmdir
#define _tgetcwd _getcwd
#define _tchdir _chdir

/* Character classes and case. */
#define _totupper toupper
#define _totlower tolower
#define _istalpha isalpha
#define _istdigit isdigit
#define _istxdigit isxdigit
#define _istspace isspace
#define _istalnum isalnum
#define _istupper isupper
#define _istlower islower
#define _istpunct ispunct
#define _istprint isprint
#define _istgraph isgraph
#define _istcntrl iscntrl

#endif /* _UNICODE */

#define _T(x) __T(x)
#define _TEXT(x) __T(x)

#endif /* RC_INVOKED */

#endif /* _INC_TCHAR */
