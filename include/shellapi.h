/*
 * The shell subset a Win32 GUI program commonly uses: ShellExecute(Ex),
 * dropped files, icon extraction, the About box and command-line
 * splitting.
 */
#ifndef _SHELLAPI_H_
#define _SHELLAPI_H_

#include <windef.h>

#ifndef WINSHELLAPI
#define WINSHELLAPI OLMO_API
#endif

/* ShellExecute results of 32 or less are errors. */
#define SE_ERR_FNF 2
#define SE_ERR_PNF 3
#define SE_ERR_ACCESSDENIED 5
#define SE_ERR_OOM 8
#define SE_ERR_SHARE 26
#define SE_ERR_ASSOCINCOMPLETE 27
#define SE_ERR_DDETIMEOUT 28
#define SE_ERR_DDEFAIL 29
#define SE_ERR_DDEBUSY 30
#define SE_ERR_NOASSOC 31
#define SE_ERR_DLLNOTFOUND 32

/* SHELLEXECUTEINFO fMask bits. */
#define SEE_MASK_DEFAULT 0x00000000
#define SEE_MASK_CLASSNAME 0x00000001
#define SEE_MASK_CLASSKEY 0x00000003
#define SEE_MASK_IDLIST 0x00000004
#define SEE_MASK_NOCLOSEPROCESS 0x00000040
#define SEE_MASK_FLAG_NO_UI 0x00000400

#ifndef RC_INVOKED

OLMO_BEGIN_C

DECLARE_HANDLE(HDROP);

typedef struct _SHELLEXECUTEINFOA {
    DWORD cbSize;
    ULONG fMask;
    HWND hwnd;
    LPCSTR lpVerb;
    LPCSTR lpFile;
    LPCSTR lpParameters;
    LPCSTR lpDirectory;
    int nShow;
    HINSTANCE hInstApp;
    void *lpIDList;
    LPCSTR lpClass;
    HKEY hkeyClass;
    DWORD dwHotKey;
    union {
        HANDLE hIcon;
        HANDLE hMonitor;
    };
    HANDLE hProcess;
} SHELLEXECUTEINFOA, *LPSHELLEXECUTEINFOA;

typedef struct _SHELLEXECUTEINFOW {
    DWORD cbSize;
    ULONG fMask;
    HWND hwnd;
    LPCWSTR lpVerb;
    LPCWSTR lpFile;
    LPCWSTR lpParameters;
    LPCWSTR lpDirectory;
    int nShow;
    HINSTANCE hInstApp;
    void *lpIDList;
    LPCWSTR lpClass;
    HKEY hkeyClass;
    DWORD dwHotKey;
    union {
        HANDLE hIcon;
        HANDLE hMonitor;
    };
    HANDLE hProcess;
} SHELLEXECUTEINFOW, *LPSHELLEXECUTEINFOW;

#ifdef UNICODE
typedef SHELLEXECUTEINFOW SHELLEXECUTEINFO;
typedef LPSHELLEXECUTEINFOW LPSHELLEXECUTEINFO;
#else
typedef SHELLEXECUTEINFOA SHELLEXECUTEINFO;
typedef LPSHELLEXECUTEINFOA LPSHELLEXECUTEINFO;
#endif

WINSHELLAPI HINSTANCE WINAPI ShellExecuteA(HWND hwnd, LPCSTR lpOperation, LPCSTR lpFile,
                                           LPCSTR lpParameters, LPCSTR lpDirectory, INT nShowCmd);
WINSHELLAPI HINSTANCE WINAPI ShellExecuteW(HWND hwnd, LPCWSTR lpOperation, LPCWSTR lpFile,
                                           LPCWSTR lpParameters, LPCWSTR lpDirectory, INT nShowCmd);
WINSHELLAPI BOOL WINAPI ShellExecuteExA(SHELLEXECUTEINFOA *pExecInfo);
WINSHELLAPI BOOL WINAPI ShellExecuteExW(SHELLEXECUTEINFOW *pExecInfo);

/* Files dropped on a window that called DragAcceptFiles (WM_DROPFILES). */
WINSHELLAPI VOID WINAPI DragAcceptFiles(HWND hWnd, BOOL fAccept);
WINSHELLAPI UINT WINAPI DragQueryFileA(HDROP hDrop, UINT iFile, LPSTR lpszFile, UINT cch);
WINSHELLAPI UINT WINAPI DragQueryFileW(HDROP hDrop, UINT iFile, LPWSTR lpszFile, UINT cch);
WINSHELLAPI BOOL WINAPI DragQueryPoint(HDROP hDrop, POINT *ppt);
WINSHELLAPI VOID WINAPI DragFinish(HDROP hDrop);

WINSHELLAPI HICON WINAPI ExtractIconA(HINSTANCE hInst, LPCSTR pszExeFileName, UINT nIconIndex);
WINSHELLAPI HICON WINAPI ExtractIconW(HINSTANCE hInst, LPCWSTR pszExeFileName, UINT nIconIndex);
WINSHELLAPI int WINAPI ShellAboutA(HWND hWnd, LPCSTR szApp, LPCSTR szOtherStuff, HICON hIcon);
WINSHELLAPI int WINAPI ShellAboutW(HWND hWnd, LPCWSTR szApp, LPCWSTR szOtherStuff, HICON hIcon);
WINSHELLAPI LPWSTR *WINAPI CommandLineToArgvW(LPCWSTR lpCmdLine, int *pNumArgs);

#ifdef UNICODE
#define ShellExecute ShellExecuteW
#define ShellExecuteEx ShellExecuteExW
#define DragQueryFile DragQueryFileW
#define ExtractIcon ExtractIconW
#define ShellAbout ShellAboutW
#else
#define ShellExecute ShellExecuteA
#define ShellExecuteEx ShellExecuteExA
#define DragQueryFile DragQueryFileA
#define ExtractIcon ExtractIconA
#define ShellAbout ShellAboutA
#endif

OLMO_END_C

#endif /* RC_INVOKED */

#endif /* _SHELLAPI_H_ */
