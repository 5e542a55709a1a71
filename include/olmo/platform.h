/*
 * Olmo: definitions every public header shares.
 *
 * Linkage and export macros, calling-convention words (empty on this
 * platform) and the C/C++ bracket.  Programs never include this file
 * directly; <windows.h> and its family do.
 */
#ifndef OLMO_PLATFORM_H
#define OLMO_PLATFORM_H

/* Version of the toolkit's public interface. */
#define OLMO_VERSION_MAJOR 0
#define OLMO_VERSION_MINOR 1

#ifdef __cplusplus
#define OLMO_BEGIN_C extern "C" {
#define OLMO_END_C }
#define OLMO_EXTERN_C extern "C"
#else
#define OLMO_BEGIN_C
#define OLMO_END_C
#define OLMO_EXTERN_C extern
#endif

/*
 * Every function a public header declares is exported from the toolkit's
 * shared libraries.  The libraries are built with hidden visibility, so the
 * declaration carries the visibility; for a program it changes nothing.
 */
#if defined(__GNUC__) || defined(__clang__)
#define OLMO_API __attribute__((visibility("default")))
#else
#define OLMO_API
#endif

/* Windows calling conventions: one convention here, so all are empty. */
#ifndef WINAPI
#define WINAPI
#endif
#ifndef CALLBACK
#define CALLBACK
#endif
#ifndef APIENTRY
#define APIENTRY
#endif
#ifndef PASCAL
#define PASCAL
#endif
#ifndef WINAPIV
#define WINAPIV
#endif
#ifndef APIPRIVATE
#define APIPRIVATE
#endif
#ifndef STDAPICALLTYPE
#define STDAPICALLTYPE
#endif
#ifndef __stdcall
#define __stdcall
#endif
#ifndef __cdecl
#define __cdecl
#endif
#ifndef _cdecl
#define _cdecl
#endif
#ifndef __declspec
#define __declspec(x)
#endif
#ifndef DECLSPEC_IMPORT
#define DECLSPEC_IMPORT
#endif
#ifndef DECLSPEC_NORETURN
#define DECLSPEC_NORETURN __attribute__((noreturn))
#endif

#define WINBASEAPI OLMO_API
#define WINUSERAPI OLMO_API
#define WINGDIAPI OLMO_API
#define WINMMAPI OLMO_API
#define WINSOCK_API_LINKAGE OLMO_API

#endif /* OLMO_PLATFORM_H */
