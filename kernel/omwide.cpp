// The W forms of the module and process functions: each converts its
// strings between UTF-16 and the multibyte code page (UTF-8) and calls the
// A form, as every W entry of the toolkit does.
#include "kernel/omstring.h"

#include <windows.h>

#include <cstring>
#include <string>

namespace {

std::string narrow(LPCWSTR s)
{
    return s ? om::kernel::utf16ToUtf8(std::u16string_view(s)) : std::string();
}

// Copies UTF-16 text into a caller's buffer of size units as the
// Windows "get string" functions do: the length without the terminator on
// success, the needed size (with it) when the buffer is too small.
DWORD copyOut(const std::u16string &text, LPWSTR buffer, DWORD size)
{
    if (!buffer || text.size() + 1 > size)
        return static_cast<DWORD>(text.size() + 1);
    memcpy(buffer, text.c_str(), (text.size() + 1) * sizeof(WCHAR));
    return static_cast<DWORD>(text.size());
}

}  // namespace

extern "C" HMODULE WINAPI GetModuleHandleW(LPCWSTR lpModuleName)
{
    if (!lpModuleName)
        return GetModuleHandleA(nullptr);
    return GetModuleHandleA(narrow(lpModuleName).c_str());
}

extern "C" DWORD WINAPI GetModuleFileNameW(HMODULE hModule, LPWSTR lpFilename, DWORD nSize)
{
    char path[4096];
    DWORD n = GetModuleFileNameA(hModule, path, sizeof path);
    if (n == 0)
        return 0;
    std::u16string wide = om::kernel::utf8ToUtf16(std::string_view(path, n));
    if (!lpFilename || nSize == 0) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    if (wide.size() >= nSize) {
        memcpy(lpFilename, wide.data(), (nSize - 1) * sizeof(WCHAR));
        lpFilename[nSize - 1] = 0;
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return nSize;
    }
    memcpy(lpFilename, wide.c_str(), (wide.size() + 1) * sizeof(WCHAR));
    return static_cast<DWORD>(wide.size());
}

extern "C" HMODULE WINAPI LoadLibraryExW(LPCWSTR lpLibFileName, HANDLE hFile, DWORD dwFlags)
{
    if (!lpLibFileName)
        return LoadLibraryExA(nullptr, hFile, dwFlags);
    return LoadLibraryExA(narrow(lpLibFileName).c_str(), hFile, dwFlags);
}

extern "C" HMODULE WINAPI LoadLibraryW(LPCWSTR lpLibFileName)
{
    return LoadLibraryExW(lpLibFileName, nullptr, 0);
}

extern "C" LPWSTR WINAPI GetCommandLineW(void)
{
    // Built once: the command line does not change after start-up.
    static std::u16string line = om::kernel::utf8ToUtf16(GetCommandLineA());
    return line.data();
}

extern "C" void WINAPI OutputDebugStringW(LPCWSTR lpOutputString)
{
    if (lpOutputString)
        OutputDebugStringA(narrow(lpOutputString).c_str());
}

extern "C" DWORD WINAPI GetEnvironmentVariableW(LPCWSTR lpName, LPWSTR lpBuffer, DWORD nSize)
{
    if (!lpName) {
        SetLastError(ERROR_ENVVAR_NOT_FOUND);
        return 0;
    }
    std::string name = narrow(lpName);
    DWORD needed = GetEnvironmentVariableA(name.c_str(), nullptr, 0);
    if (needed == 0)
        return 0;
    std::string value(needed, '\0');
    GetEnvironmentVariableA(name.c_str(), value.data(), needed);
    value.resize(strlen(value.c_str()));
    return copyOut(om::kernel::utf8ToUtf16(value), lpBuffer, nSize);
}

extern "C" BOOL WINAPI SetEnvironmentVariableW(LPCWSTR lpName, LPCWSTR lpValue)
{
    std::string name = narrow(lpName);
    if (!lpValue)
        return SetEnvironmentVariableA(lpName ? name.c_str() : nullptr, nullptr);
    return SetEnvironmentVariableA(lpName ? name.c_str() : nullptr, narrow(lpValue).c_str());
}

extern "C" BOOL WINAPI GetComputerNameW(LPWSTR lpBuffer, LPDWORD nSize)
{
    char host[256];
    DWORD n = sizeof host;
    if (!nSize || !GetComputerNameA(host, &n))
        return FALSE;
    std::u16string wide = om::kernel::utf8ToUtf16(host);
    if (!lpBuffer || wide.size() + 1 > *nSize) {
        *nSize = static_cast<DWORD>(wide.size() + 1);
        SetLastError(ERROR_BUFFER_OVERFLOW);
        return FALSE;
    }
    memcpy(lpBuffer, wide.c_str(), (wide.size() + 1) * sizeof(WCHAR));
    *nSize = static_cast<DWORD>(wide.size());
    return TRUE;
}

extern "C" BOOL WINAPI GetVersionExW(LPOSVERSIONINFOW lpVersionInformation)
{
    if (!lpVersionInformation ||
        (lpVersionInformation->dwOSVersionInfoSize != sizeof(OSVERSIONINFOW) &&
         lpVersionInformation->dwOSVersionInfoSize != sizeof(OSVERSIONINFOEXW))) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    OSVERSIONINFOA a{};
    a.dwOSVersionInfoSize = sizeof a;
    GetVersionExA(&a);
    lpVersionInformation->dwMajorVersion = a.dwMajorVersion;
    lpVersionInformation->dwMinorVersion = a.dwMinorVersion;
    lpVersionInformation->dwBuildNumber = a.dwBuildNumber;
    lpVersionInformation->dwPlatformId = a.dwPlatformId;
    lpVersionInformation->szCSDVersion[0] = 0;
    return TRUE;
}

extern "C" void WINAPI FatalAppExitW(UINT uAction, LPCWSTR lpMessageText)
{
    FatalAppExitA(uAction, lpMessageText ? narrow(lpMessageText).c_str() : nullptr);
}
