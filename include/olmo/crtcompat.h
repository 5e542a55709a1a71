/*
 * The Microsoft C runtime names that ported code uses (_stricmp, _itoa,
 * _mkdir, _MAX_PATH, ...), mapped onto the C library and POSIX, or
 * implemented inline where no equivalent exists.  Works in strict ISO C
 * without the program defining any feature-test macro.
 */
#ifndef OLMO_CRTCOMPAT_H
#define OLMO_CRTCOMPAT_H

/* Path component limits. */
#define _MAX_PATH 260
#define _MAX_DRIVE 3
#define _MAX_DIR 256
#define _MAX_FNAME 256
#define _MAX_EXT 256

#ifndef RC_INVOKED

/* In C++ the library's <math.h> pulls in templates named min and max, which
 * the min and max macros of <minwindef.h> would break. */
#ifdef __cplusplus
#pragma push_macro("min")
#pragma push_macro("max")
#undef min
#undef max
#endif
#include <alloca.h>
#include <ctype.h>
#include <fcntl.h>
#include <limits.h>
#include <math.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <strings.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>
#ifdef __cplusplus
#pragma pop_macro("min")
#pragma pop_macro("max")
#endif

#include <winnt.h>

OLMO_BEGIN_C

/* The program's arguments, as the Microsoft C runtime keeps them. */
OLMO_API extern int __argc;
OLMO_API extern char **__argv;

#ifndef __cplusplus
/* Strict ISO C hides these POSIX declarations; repeat the C library's own
 * prototypes so that the mappings below work in every language mode. */
char *strdup(const char *s);
int fileno(FILE *stream);
#endif

/* Integer limits. */
#define _I64_MIN LLONG_MIN
#define _I64_MAX LLONG_MAX
#define _UI64_MAX ULLONG_MAX

/* Strings.  _snprintf and _vsnprintf become their C99 counterparts, which
 * always terminate the buffer and return the length that was needed where
 * the Microsoft versions return -1 on truncation. */
#define _stricmp strcasecmp
#define _strnicmp strncasecmp
#define _strcmpi strcasecmp
#define stricmp strcasecmp
#define strnicmp strncasecmp
#define _strdup strdup
#define _snprintf snprintf
#define _vsnprintf vsnprintf
#define _countof(a) (sizeof(a) / sizeof((a)[0]))

static inline char *_strupr(char *str)
{
    char *p;
    for (p = str; *p; ++p)
        *p = (char)toupper((unsigned char)*p);
    return str;
}

static inline char *_strlwr(char *str)
{
    char *p;
    for (p = str; *p; ++p)
        *p = (char)tolower((unsigned char)*p);
    return str;
}

static inline int _vscprintf(const char *format, va_list argptr)
{
    va_list copy;
    int n;
    va_copy(copy, argptr);
    n = vsnprintf(NULL, 0, format, copy);
    va_end(copy);
    return n;
}

static inline int _scprintf(const char *format, ...)
{
    va_list ap;
    int n;
    va_start(ap, format);
    n = vsnprintf(NULL, 0, format, ap);
    va_end(ap);
    return n;
}

/* Number conversions. */
#define _atoi64 atoll
#define _strtoi64 strtoll
#define _strtoui64 strtoull

/* Formats magnitude in radix 2..36 with lowercase letters, after a minus
 * sign when negative; an unsupported radix yields the empty string. */
static inline char *olmo_crt_utoa(unsigned long long magnitude, int negative, char *buffer,
                                  int radix)
{
    char *p = buffer;
    char *first;
    char *last;
    if (radix < 2 || radix > 36) {
        *buffer = '\0';
        return buffer;
    }
    if (negative)
        *p++ = '-';
    first = p;
    do {
        unsigned int digit = (unsigned int)(magnitude % (unsigned int)radix);
        *p++ = (char)(digit < 10 ? '0' + digit : 'a' + (digit - 10));
        magnitude /= (unsigned int)radix;
    } while (magnitude != 0);
    *p = '\0';
    for (last = p - 1; first < last; ++first, --last) {
        char t = *first;
        *first = *last;
        *last = t;
    }
    return buffer;
}

/* As in the Microsoft runtime, only radix 10 shows a sign; any other radix
 * shows the two's complement bits of the value's own width. */
static inline char *_itoa(int value, char *buffer, int radix)
{
    if (radix == 10 && value < 0)
        return olmo_crt_utoa((unsigned long long)(-(long long)value), 1, buffer, radix);
    return olmo_crt_utoa((unsigned int)value, 0, buffer, radix);
}

static inline char *_ltoa(LONG value, char *buffer, int radix)
{
    return _itoa(value, buffer, radix);
}

static inline char *_ultoa(ULONG value, char *buffer, int radix)
{
    return olmo_crt_utoa(value, 0, buffer, radix);
}

static inline char *_i64toa(long long value, char *buffer, int radix)
{
    if (radix == 10 && value < 0)
        return olmo_crt_utoa(0ULL - (unsigned long long)value, 1, buffer, radix);
    return olmo_crt_utoa((unsigned long long)value, 0, buffer, radix);
}

static inline char *_ui64toa(unsigned long long value, char *buffer, int radix)
{
    return olmo_crt_utoa(value, 0, buffer, radix);
}

/* Files and directories.  _access takes the same mode values as access
 * (0 existence, 2 write, 4 read); _mkdir has no mode argument. */
#define _access(path, mode) access(path, mode)
#define _unlink(path) unlink(path)
#define _rmdir(path) rmdir(path)
#define _getcwd(buffer, maxlen) getcwd(buffer, maxlen)
#define _chdir(path) chdir(path)

static inline int _mkdir(const char *dirname)
{
    return mkdir(dirname, 0777);
}

#define _open(...) open(__VA_ARGS__)
#define _close(fd) close(fd)
#define _read(fd, buffer, count) read(fd, buffer, count)
#define _write(fd, buffer, count) write(fd, buffer, count)
#define _lseek(fd, offset, origin) lseek(fd, offset, origin)
#define _isatty(fd) isatty(fd)
#define _dup(fd) dup(fd)
#define _dup2(fd1, fd2) dup2(fd1, fd2)
#define _fileno(stream) fileno(stream)
#define _getpid() getpid()

/* Open flags; there is no text mode, so _O_TEXT and _O_BINARY are 0. */
#define _O_RDONLY O_RDONLY
#define _O_WRONLY O_WRONLY
#define _O_RDWR O_RDWR
#define _O_APPEND O_APPEND
#define _O_CREAT O_CREAT
#define _O_TRUNC O_TRUNC
#define _O_EXCL O_EXCL
#define _O_TEXT 0
#define _O_BINARY 0
#ifndef O_TEXT
#define O_TEXT 0
#endif
#ifndef O_BINARY
#define O_BINARY 0
#endif
/* Permission of a file _open creates: readable or writable by everyone,
 * narrowed by the umask as any new file is. */
#define _S_IREAD 0444
#define _S_IWRITE 0222

/* Floating point. */
#define _hypot hypot
#define _isnan(x) isnan(x)
#define _finite(x) isfinite(x)

/* Stack allocation. */
#define _alloca(size) alloca(size)

OLMO_END_C

#endif /* RC_INVOKED */

#endif /* OLMO_CRTCOMPAT_H */
