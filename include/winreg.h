/*
 * The registry as a Win32 program commonly uses it: the predefined keys,
 * value types, access rights and the Reg* functions for opening, creating,
 * enumerating, reading and writing keys and values.
 */
#ifndef _WINREG_
#define _WINREG_

#include <winbase.h>

#ifndef WINADVAPI
#define WINADVAPI OLMO_API
#endif

/* Value types. */
#define REG_NONE 0
#define REG_SZ 1
#define REG_EXPAND_SZ 2
#define REG_BINARY 3
#define REG_DWORD 4
#define REG_DWORD_LITTLE_ENDIAN 4
#define REG_DWORD_BIG_ENDIAN 5
#define REG_LINK 6
#define REG_MULTI_SZ 7
#define REG_RESOURCE_LIST 8
#define REG_FULL_RESOURCE_DESCRIPTOR 9
#define REG_RESOURCE_REQUIREMENTS_LIST 10
#define REG_QWORD 11
#define REG_QWORD_LITTLE_ENDIAN 11

/* Key creation options and dispositions. */
#define REG_OPTION_NON_VOLATILE 0x00000000
#define REG_OPTION_VOLATILE 0x00000001
#define REG_OPTION_CREATE_LINK 0x00000002
#define REG_OPTION_BACKUP_RESTORE 0x00000004
#define REG_OPTION_OPEN_LINK 0x00000008
#define REG_CREATED_NEW_KEY 0x00000001
#define REG_OPENED_EXISTING_KEY 0x00000002

/* Key access rights. */
#define KEY_QUERY_VALUE 0x0001
#define KEY_SET_VALUE 0x0002
#define KEY_CREATE_SUB_KEY 0x0004
#define KEY_ENUMERATE_SUB_KEYS 0x0008
#define KEY_NOTIFY 0x0010
#define KEY_CREATE_LINK 0x0020
#define KEY_WOW64_64KEY 0x0100
#define KEY_WOW64_32KEY 0x0200
#define KEY_READ                                                                                   \
    ((STANDARD_RIGHTS_READ | KEY_QUERY_VALUE | KEY_ENUMERATE_SUB_KEYS | KEY_NOTIFY) &              \
     (~SYNCHRONIZE))
#define KEY_WRITE ((STANDARD_RIGHTS_WRITE | KEY_SET_VALUE | KEY_CREATE_SUB_KEY) & (~SYNCHRONIZE))
#define KEY_EXECUTE ((KEY_READ) & (~SYNCHRONIZE))
#define KEY_ALL_ACCESS                                                                             \
    ((STANDARD_RIGHTS_ALL | KEY_QUERY_VALUE | KEY_SET_VALUE | KEY_CREATE_SUB_KEY |                 \
      KEY_ENUMERATE_SUB_KEYS | KEY_NOTIFY | KEY_CREATE_LINK) &                                     \
     (~SYNCHRONIZE))

/* RegGetValue type restrictions and flags. */
#define RRF_RT_REG_NONE 0x00000001
#define RRF_RT_REG_SZ 0x00000002
#define RRF_RT_REG_EXPAND_SZ 0x00000004
#define RRF_RT_REG_BINARY 0x00000008
#define RRF_RT_REG_DWORD 0x00000010
#define RRF_RT_REG_MULTI_SZ 0x00000020
#define RRF_RT_REG_QWORD 0x00000040
#define RRF_RT_DWORD (RRF_RT_REG_BINARY | RRF_RT_REG_DWORD)
#define RRF_RT_QWORD (RRF_RT_REG_BINARY | RRF_RT_REG_QWORD)
#define RRF_RT_ANY 0x0000ffff
#define RRF_NOEXPAND 0x10000000
#define RRF_ZEROONFAILURE 0x20000000

#ifndef RC_INVOKED

OLMO_BEGIN_C

typedef DWORD REGSAM;
typedef LONG LSTATUS;

/* The predefined keys: 32-bit values sign-extended into a 64-bit handle,
 * as on Win64. */
#define HKEY_CLASSES_ROOT ((HKEY)(ULONG_PTR)((LONG)0x80000000))
#define HKEY_CURRENT_USER ((HKEY)(ULONG_PTR)((LONG)0x80000001))
#define HKEY_LOCAL_MACHINE ((HKEY)(ULONG_PTR)((LONG)0x80000002))
#define HKEY_USERS ((HKEY)(ULONG_PTR)((LONG)0x80000003))
#define HKEY_PERFORMANCE_DATA ((HKEY)(ULONG_PTR)((LONG)0x80000004))
#define HKEY_CURRENT_CONFIG ((HKEY)(ULONG_PTR)((LONG)0x80000005))
#define HKEY_DYN_DATA ((HKEY)(ULONG_PTR)((LONG)0x80000006))

WINADVAPI LSTATUS WINAPI RegOpenKeyA(HKEY hKey, LPCSTR lpSubKey, PHKEY phkResult);
WINADVAPI LSTATUS WINAPI RegOpenKeyW(HKEY hKey, LPCWSTR lpSubKey, PHKEY phkResult);
WINADVAPI LSTATUS WINAPI RegOpenKeyExA(HKEY hKey, LPCSTR lpSubKey, DWORD ulOptions,
                                       REGSAM samDesired, PHKEY phkResult);
WINADVAPI LSTATUS WINAPI RegOpenKeyExW(HKEY hKey, LPCWSTR lpSubKey, DWORD ulOptions,
                                       REGSAM samDesired, PHKEY phkResult);
WINADVAPI LSTATUS WINAPI RegCreateKeyA(HKEY hKey, LPCSTR lpSubKey, PHKEY phkResult);
WINADVAPI LSTATUS WINAPI RegCreateKeyW(HKEY hKey, LPCWSTR lpSubKey, PHKEY phkResult);
WINADVAPI LSTATUS WINAPI RegCreateKeyExA(HKEY hKey, LPCSTR lpSubKey, DWORD Reserved, LPSTR lpClass,
                                         DWORD dwOptions, REGSAM samDesired,
                                         const LPSECURITY_ATTRIBUTES lpSecurityAttributes,
                                         PHKEY phkResult, LPDWORD lpdwDisposition);
WINADVAPI LSTATUS WINAPI RegCreateKeyExW(HKEY hKey, LPCWSTR lpSubKey, DWORD Reserved,
                                         LPWSTR lpClass, DWORD dwOptions, REGSAM samDesired,
                                         const LPSECURITY_ATTRIBUTES lpSecurityAttributes,
                                         PHKEY phkResult, LPDWORD lpdwDisposition);
WINADVAPI LSTATUS WINAPI RegCloseKey(HKEY hKey);
WINADVAPI LSTATUS WINAPI RegFlushKey(HKEY hKey);
WINADVAPI LSTATUS WINAPI RegDeleteKeyA(HKEY hKey, LPCSTR lpSubKey);
WINADVAPI LSTATUS WINAPI RegDeleteKeyW(HKEY hKey, LPCWSTR lpSubKey);
WINADVAPI LSTATUS WINAPI RegDeleteValueA(HKEY hKey, LPCSTR lpValueName);
WINADVAPI LSTATUS WINAPI RegDeleteValueW(HKEY hKey, LPCWSTR lpValueName);
WINADVAPI LSTATUS WINAPI RegEnumKeyA(HKEY hKey, DWORD dwIndex, LPSTR lpName, DWORD cchName);
WINADVAPI LSTATUS WINAPI RegEnumKeyW(HKEY hKey, DWORD dwIndex, LPWSTR lpName, DWORD cchName);
WINADVAPI LSTATUS WINAPI RegEnumKeyExA(HKEY hKey, DWORD dwIndex, LPSTR lpName, LPDWORD lpcchName,
                                       LPDWORD lpReserved, LPSTR lpClass, LPDWORD lpcchClass,
                                       PFILETIME lpftLastWriteTime);
WINADVAPI LSTATUS WINAPI RegEnumKeyExW(HKEY hKey, DWORD dwIndex, LPWSTR lpName, LPDWORD lpcchName,
                                       LPDWORD lpReserved, LPWSTR lpClass, LPDWORD lpcchClass,
                                       PFILETIME lpftLastWriteTime);
WINADVAPI LSTATUS WINAPI RegEnumValueA(HKEY hKey, DWORD dwIndex, LPSTR lpValueName,
                                       LPDWORD lpcchValueName, LPDWORD lpReserved, LPDWORD lpType,
                                       LPBYTE lpData, LPDWORD lpcbData);
WINADVAPI LSTATUS WINAPI RegEnumValueW(HKEY hKey, DWORD dwIndex, LPWSTR lpValueName,
                                       LPDWORD lpcchValueName, LPDWORD lpReserved, LPDWORD lpType,
                                       LPBYTE lpData, LPDWORD lpcbData);
WINADVAPI LSTATUS WINAPI RegQueryInfoKeyA(HKEY hKey, LPSTR lpClass, LPDWORD lpcchClass,
                                          LPDWORD lpReserved, LPDWORD lpcSubKeys,
                                          LPDWORD lpcbMaxSubKeyLen, LPDWORD lpcbMaxClassLen,
                                          LPDWORD lpcValues, LPDWORD lpcbMaxValueNameLen,
                                          LPDWORD lpcbMaxValueLen, LPDWORD lpcbSecurityDescriptor,
                                          PFILETIME lpftLastWriteTime);
WINADVAPI LSTATUS WINAPI RegQueryInfoKeyW(HKEY hKey, LPWSTR lpClass, LPDWORD lpcchClass,
                                          LPDWORD lpReserved, LPDWORD lpcSubKeys,
                                          LPDWORD lpcbMaxSubKeyLen, LPDWORD lpcbMaxClassLen,
                                          LPDWORD lpcValues, LPDWORD lpcbMaxValueNameLen,
                                          LPDWORD lpcbMaxValueLen, LPDWORD lpcbSecurityDescriptor,
                                          PFILETIME lpftLastWriteTime);
WINADVAPI LSTATUS WINAPI RegQueryValueA(HKEY hKey, LPCSTR lpSubKey, LPSTR lpData, PLONG lpcbData);
WINADVAPI LSTATUS WINAPI RegQueryValueW(HKEY hKey, LPCWSTR lpSubKey, LPWSTR lpData, PLONG lpcbData);
WINADVAPI LSTATUS WINAPI RegQueryValueExA(HKEY hKey, LPCSTR lpValueName, LPDWORD lpReserved,
                                          LPDWORD lpType, LPBYTE lpData, LPDWORD lpcbData);
WINADVAPI LSTATUS WINAPI RegQueryValueExW(HKEY hKey, LPCWSTR lpValueName, LPDWORD lpReserved,
                                          LPDWORD lpType, LPBYTE lpData, LPDWORD lpcbData);
WINADVAPI LSTATUS WINAPI RegGetValueA(HKEY hkey, LPCSTR lpSubKey, LPCSTR lpValue, DWORD dwFlags,
                                      LPDWORD pdwType, PVOID pvData, LPDWORD pcbData);
WINADVAPI LSTATUS WINAPI RegGetValueW(HKEY hkey, LPCWSTR lpSubKey, LPCWSTR lpValue, DWORD dwFlags,
                                      LPDWORD pdwType, PVOID pvData, LPDWORD pcbData);
WINADVAPI LSTATUS WINAPI RegSetValueA(HKEY hKey, LPCSTR lpSubKey, DWORD dwType, LPCSTR lpData,
                                      DWORD cbData);
WINADVAPI LSTATUS WINAPI RegSetValueW(HKEY hKey, LPCWSTR lpSubKey, DWORD dwType, LPCWSTR lpData,
                                      DWORD cbData);
WINADVAPI LSTATUS WINAPI RegSetValueExA(HKEY hKey, LPCSTR lpValueName, DWORD Reserved, DWORD dwType,
                                        const BYTE *lpData, DWORD cbData);
WINADVAPI LSTATUS WINAPI RegSetValueExW(HKEY hKey, LPCWSTR lpValueName, DWORD Reserved,
                                        DWORD dwType, const BYTE *lpData, DWORD cbData);

#ifdef UNICODE
#define RegOpenKey RegOpenKeyW
#define RegOpenKeyEx RegOpenKeyExW
#define RegCreateKey RegCreateKeyW
#define RegCreateKeyEx RegCreateKeyExW
#define RegDeleteKey RegDeleteKeyW
#define RegDeleteValue RegDeleteValueW
#define RegEnumKey RegEnumKeyW
#define RegEnumKeyEx RegEnumKeyExW
#define RegEnumValue RegEnumValueW
#define RegQueryInfoKey RegQueryInfoKeyW
#define RegQueryValue RegQueryValueW
#define RegQueryValueEx RegQueryValueExW
#define RegGetValue RegGetValueW
#define RegSetValue RegSetValueW
#define RegSetValueEx RegSetValueExW
#else
#define RegOpenKey RegOpenKeyA
#define RegOpenKeyEx RegOpenKeyExA
#define RegCreateKey RegCreateKeyA
#define RegCreateKeyEx RegCreateKeyExA
#define RegDeleteKey RegDeleteKeyA
#define RegDeleteValue RegDeleteValueA
#define RegEnumKey RegEnumKeyA
#define RegEnumKeyEx RegEnumKeyExA
#define RegEnumValue RegEnumValueA
#define RegQueryInfoKey RegQueryInfoKeyA
#define RegQueryValue RegQueryValueA
#define RegQueryValueEx RegQueryValueExA
#define RegGetValue RegGetValueA
#define RegSetValue RegSetValueA
#define RegSetValueEx RegSetValueExA
#endif

OLMO_END_C

#endif /* RC_INVOKED */

#endif /* _WINREG_ */
