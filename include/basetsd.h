/*
 * Sized and pointer-sized integer types.
 *
 * The data model is Win64 on LP64: LONG and DWORD stay 32-bit, the *_PTR
 * types are as wide as a pointer.
 */
#ifndef _BASETSD_H_
#define _BASETSD_H_

#include <stdint.h>

typedef int8_t INT8, *PINT8;
typedef int16_t INT16, *PINT16;
typedef int32_t INT32, *PINT32;
typedef int64_t INT64, *PINT64;
typedef uint8_t UINT8, *PUINT8;
typedef uint16_t UINT16, *PUINT16;
typedef uint32_t UINT32, *PUINT32;
typedef uint64_t UINT64, *PUINT64;
typedef int32_t LONG32, *PLONG32;
typedef uint32_t ULONG32, *PULONG32;
typedef uint32_t DWORD32, *PDWORD32;
typedef int64_t LONG64, *PLONG64;
typedef uint64_t ULONG64, *PULONG64;
typedef uint64_t DWORD64, *PDWORD64;

typedef int64_t INT_PTR, *PINT_PTR;
typedef uint64_t UINT_PTR, *PUINT_PTR;
typedef int64_t LONG_PTR, *PLONG_PTR;
typedef uint64_t ULONG_PTR, *PULONG_PTR;
typedef ULONG_PTR DWORD_PTR, *PDWORD_PTR;
typedef ULONG_PTR SIZE_T, *PSIZE_T;
typedef LONG_PTR SSIZE_T, *PSSIZE_T;
typedef int32_t HALF_PTR, *PHALF_PTR;
typedef uint32_t UHALF_PTR, *PUHALF_PTR;

#define MAXUINT_PTR (~((UINT_PTR)0))
#define MAXINT_PTR ((INT_PTR)(MAXUINT_PTR >> 1))
#define MININT_PTR (~MAXINT_PTR)
#define MAXULONG_PTR (~((ULONG_PTR)0))
#define MAXLONG_PTR ((LONG_PTR)(MAXULONG_PTR >> 1))
#define MINLONG_PTR (~MAXLONG_PTR)
#define MAXSIZE_T ((SIZE_T)~((SIZE_T)0))
#define MAXSSIZE_T ((SSIZE_T)(MAXSIZE_T >> 1))
#define MINSSIZE_T ((SSIZE_T)~MAXSSIZE_T)

#define HandleToULong(h) ((unsigned long)(ULONG_PTR)(h))
#define HandleToLong(h) ((long)(LONG_PTR)(h))
#define ULongToHandle(ul) ((void *)(ULONG_PTR)(ul))
#define LongToHandle(h) ((void *)(LONG_PTR)(h))
#define PtrToUlong(p) ((unsigned int)(ULONG_PTR)(p))
#define PtrToLong(p) ((int)(LONG_PTR)(p))
#define PtrToUint(p) ((unsigned int)(UINT_PTR)(p))
#define PtrToInt(p) ((int)(INT_PTR)(p))
#define PtrToUshort(p) ((unsigned short)(ULONG_PTR)(p))
#define PtrToShort(p) ((short)(LONG_PTR)(p))
#define IntToPtr(i) ((void *)(INT_PTR)((int)(i)))
#define UIntToPtr(ui) ((void *)(UINT_PTR)((unsigned int)(ui)))
#define LongToPtr(l) ((void *)(LONG_PTR)((long)(l)))
#define ULongToPtr(ul) ((void *)(ULONG_PTR)((unsigned long)(ul)))

#endif /* _BASETSD_H_ */
