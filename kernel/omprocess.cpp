// Process and thread state of kernel32: the last error, the command line
// (__argc/__argv), environment, version and system information, and the
// debugging output functions.
#include "kernel/omprocess.h"
#include "kernel/omdiag.h"

#include <windows.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <mutex>
#include <pwd.h>
#include <signal.h>
#include <string>
#include <sys/sysinfo.h>
#include <unistd.h>
#include <vector>

extern "C" {
OLMO_API int __argc = 0;
OLMO_API char **__argv = nullptr;
int omCursorCount = 0;
}

namespace {

thread_local DWORD t_lastError = ERROR_SUCCESS;

struct CommandLine {
    std::mutex lock;
    bool ready = false;
    std::vector<std::string> args;
    std::vector<char *> argv;
    std::string full;
    size_t tailOffset = 0;
};

CommandLine &commandLine()
{
    static CommandLine c;
    return c;
}

// Quotes one argument so that the Windows command-line rules give it back
// unchanged: backslashes are literal except before a quote, where they are
// doubled, and the quote itself is escaped.
void appendQuoted(std::string &out, const std::string &a)
{
    if (!a.empty() && a.find_first_of(" \t\n\v\"") == std::string::npos) {
        out += a;
        return;
    }
    out += '"';
    size_t backslashes = 0;
    for (char c : a) {
        if (c == '\\') {
            ++backslashes;
            continue;
        }
        out.append(c == '"' ? backslashes * 2 + 1 : backslashes, '\\');
        backslashes = 0;
        out += c;
    }
    out.append(backslashes * 2, '\\');
    out += '"';
}

void buildLocked(CommandLine &c)
{
    c.full.clear();
    for (size_t i = 0; i < c.args.size(); ++i) {
        if (i == 1)
            c.tailOffset = c.full.size() + 1;
        if (i > 0)
            c.full += ' ';
        appendQuoted(c.full, c.args[i]);
    }
    if (c.args.size() < 2)
        c.tailOffset = c.full.size();
    c.argv.clear();
    for (std::string &s : c.args)
        c.argv.push_back(s.data());
    c.argv.push_back(nullptr);
    __argc = static_cast<int>(c.args.size());
    __argv = c.argv.data();
    c.ready = true;
}

CommandLine &readyCommandLine()
{
    CommandLine &c = commandLine();
    std::lock_guard<std::mutex> guard(c.lock);
    if (!c.ready) {
        std::ifstream in("/proc/self/cmdline", std::ios::binary);
        std::string arg;
        while (std::getline(in, arg, '\0'))
            c.args.push_back(arg);
        buildLocked(c);
    }
    return c;
}

}  // namespace

extern "C" OLMO_API void omSetCommandLineArgs(int argc, char **argv)
{
    CommandLine &c = commandLine();
    std::lock_guard<std::mutex> guard(c.lock);
    c.args.clear();
    for (int i = 0; i < argc && argv && argv[i]; ++i)
        c.args.emplace_back(argv[i]);
    buildLocked(c);
}

extern "C" OLMO_API const char *omCommandLineTail(void)
{
    CommandLine &c = readyCommandLine();
    return c.full.c_str() + c.tailOffset;
}

extern "C" OLMO_API void omResetCurrentCursorCount(void)
{
    omCursorCount = 0;
}

extern "C" void WINAPI SetLastError(DWORD dwErrCode)
{
    t_lastError = dwErrCode;
}

extern "C" DWORD WINAPI GetLastError(void)
{
    return t_lastError;
}

extern "C" LPSTR WINAPI GetCommandLineA(void)
{
    return readyCommandLine().full.data();
}

extern "C" void WINAPI OutputDebugStringA(LPCSTR lpOutputString)
{
    // No debugger listens here; the text goes where developers look.
    if (lpOutputString)
        fputs(lpOutputString, stderr);
}

extern "C" DWORD WINAPI GetEnvironmentVariableA(LPCSTR lpName, LPSTR lpBuffer, DWORD nSize)
{
    const char *v = lpName ? getenv(lpName) : nullptr;
    if (!v) {
        SetLastError(ERROR_ENVVAR_NOT_FOUND);
        return 0;
    }
    size_t len = strlen(v);
    if (!lpBuffer || len >= nSize)
        return static_cast<DWORD>(len + 1);
    memcpy(lpBuffer, v, len + 1);
    return static_cast<DWORD>(len);
}

extern "C" BOOL WINAPI SetEnvironmentVariableA(LPCSTR lpName, LPCSTR lpValue)
{
    if (!lpName || !*lpName || strchr(lpName, '=')) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    int rc = lpValue ? setenv(lpName, lpValue, 1) : unsetenv(lpName);
    return rc == 0;
}

extern "C" DWORD WINAPI ExpandEnvironmentStringsA(LPCSTR lpSrc, LPSTR lpDst, DWORD nSize)
{
    if (!lpSrc) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    // %NAME% is replaced when NAME is set and left as written otherwise.
    std::string out;
    for (const char *p = lpSrc; *p;) {
        const char *close = *p == '%' ? strchr(p + 1, '%') : nullptr;
        if (close && close > p + 1) {
            std::string name(p + 1, close);
            if (const char *v = getenv(name.c_str())) {
                out += v;
                p = close + 1;
                continue;
            }
        }
        out += *p++;
    }
    DWORD needed = static_cast<DWORD>(out.size() + 1);
    if (lpDst && nSize >= needed)
        memcpy(lpDst, out.c_str(), needed);
    return needed;
}

extern "C" BOOL WINAPI GetComputerNameA(LPSTR lpBuffer, LPDWORD nSize)
{
    char host[256] = "";
    if (!nSize || gethostname(host, sizeof host - 1) != 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    size_t len = strlen(host);
    if (!lpBuffer || len + 1 > *nSize) {
        *nSize = static_cast<DWORD>(len + 1);
        SetLastError(ERROR_BUFFER_OVERFLOW);
        return FALSE;
    }
    memcpy(lpBuffer, host, len + 1);
    *nSize = static_cast<DWORD>(len);
    return TRUE;
}

extern "C" BOOL WINAPI GetUserNameA(LPSTR lpBuffer, LPDWORD pcbBuffer)
{
    if (!pcbBuffer) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const passwd *pw = getpwuid(getuid());
    const char *name = pw && pw->pw_name ? pw->pw_name : getenv("USER");
    if (!name)
        name = "user";
    size_t len = strlen(name);
    if (!lpBuffer || len + 1 > *pcbBuffer) {
        *pcbBuffer = static_cast<DWORD>(len + 1);
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    memcpy(lpBuffer, name, len + 1);
    *pcbBuffer = static_cast<DWORD>(len + 1);
    return TRUE;
}

// Ported programs test the version to pick code paths; they get the
// newest Windows whose API this library follows.
extern "C" DWORD WINAPI GetVersion(void)
{
    return (7601u << 16) | (1u << 8) | 6u;
}

extern "C" BOOL WINAPI GetVersionExA(LPOSVERSIONINFOA lpVersionInformation)
{
    if (!lpVersionInformation || (lpVersionInformation->dwOSVersionInfoSize !=
                                      sizeof(OSVERSIONINFOA) &&
                                  lpVersionInformation->dwOSVersionInfoSize !=
                                      sizeof(OSVERSIONINFOEXA))) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    OSVERSIONINFOA *v = lpVersionInformation;
    v->dwMajorVersion = 6;
    v->dwMinorVersion = 1;
    v->dwBuildNumber = 7601;
    v->dwPlatformId = VER_PLATFORM_WIN32_NT;
    snprintf(v->szCSDVersion, sizeof v->szCSDVersion, "%s", "");
    return TRUE;
}

extern "C" void WINAPI GetSystemInfo(LPSYSTEM_INFO lpSystemInfo)
{
    if (!lpSystemInfo) {
        omDebugWarning(OmDiag::NullPointer, "GetSystemInfo");
        return;
    }
    memset(lpSystemInfo, 0, sizeof *lpSystemInfo);
    long cpus = sysconf(_SC_NPROCESSORS_ONLN);
    long page = sysconf(_SC_PAGESIZE);
    lpSystemInfo->wProcessorArchitecture = PROCESSOR_ARCHITECTURE_AMD64;
    lpSystemInfo->dwPageSize = static_cast<DWORD>(page > 0 ? page : 4096);
    lpSystemInfo->lpMinimumApplicationAddress = reinterpret_cast<LPVOID>(0x10000);
    lpSystemInfo->lpMaximumApplicationAddress = reinterpret_cast<LPVOID>(0x7ffffffeffffULL);
    lpSystemInfo->dwActiveProcessorMask = cpus >= 64 ? ~0ULL : ((1ULL << (cpus > 0 ? cpus : 1)) - 1);
    lpSystemInfo->dwNumberOfProcessors = static_cast<DWORD>(cpus > 0 ? cpus : 1);
    lpSystemInfo->dwProcessorType = PROCESSOR_AMD_X8664;
    lpSystemInfo->dwAllocationGranularity = 65536;
}

extern "C" void WINAPI DebugBreak(void)
{
    raise(SIGTRAP);
}

extern "C" BOOL WINAPI IsDebuggerPresent(void)
{
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.rfind("TracerPid:", 0) == 0)
            return atoi(line.c_str() + 10) != 0;
    return FALSE;
}

extern "C" void WINAPI FatalAppExitA(UINT uAction, LPCSTR lpMessageText)
{
    (void)uAction;
    fprintf(stderr, "%s\n", lpMessageText ? lpMessageText : "fatal application exit");
    _exit(255);
}

extern "C" UINT WINAPI SetErrorMode(UINT uMode)
{
    static std::atomic<UINT> mode{0};
    return mode.exchange(uMode);
}
