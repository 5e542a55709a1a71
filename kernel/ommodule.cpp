// Module records and the module functions of kernel32: the program's
// module, GetModuleHandle, GetModuleFileName, LoadLibrary over dlopen,
// FreeLibrary and GetProcAddress.
#include "kernel/ommodule.h"
#include "kernel/omdiag.h"
#include "kernel/omhandles.h"

#include <windows.h>

#include <cstring>
#include <dlfcn.h>
#include <mutex>
#include <string>
#include <strings.h>
#include <unistd.h>
#include <vector>

namespace {

std::mutex g_modulesLock;
std::vector<OmModule *> g_modules;  // guarded by g_modulesLock

std::string programPath()
{
    char buf[4096];
    ssize_t n = readlink("/proc/self/exe", buf, sizeof buf - 1);
    return n > 0 ? std::string(buf, static_cast<size_t>(n)) : std::string("program");
}

std::string baseName(const std::string &path)
{
    size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// "Foo", "foo.dll", "libfoo.so" and "libfoo.so.1" all name libfoo.so.1.
std::string stem(std::string name)
{
    name = baseName(name);
    if (name.size() > 4 && strncasecmp(name.c_str(), "lib", 3) == 0)
        name = name.substr(3);
    size_t dot = name.find('.');
    if (dot != std::string::npos)
        name.resize(dot);
    for (char &c : name)
        c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
    return name;
}

OmModule *programModuleLocked()
{
    void *rec = omHandleRecord(kOmProgramModuleSlot, OM_KIND_MODULE);
    if (rec)
        return static_cast<OmModule *>(rec);
    auto *m = new OmModule;
    m->path = programPath();
    m->index = kOmProgramModuleSlot;
    omAllocReservedHandle(kOmProgramModuleSlot, OM_KIND_MODULE, m);
    g_modules.push_back(m);
    return m;
}

uint64_t handleOf(const OmModule *m)
{
    return omHandleFromIndex(m->index);
}

OmModule *findByDl(void *dl)
{
    for (OmModule *m : g_modules)
        if (m->dl == dl)
            return m;
    return nullptr;
}

OmModule *registerLocked(void *dl, const std::string &path)
{
    if (OmModule *m = findByDl(dl)) {
        ++m->loadCount;
        return m;
    }
    auto *m = new OmModule;
    m->dl = dl;
    m->path = path;
    m->index = omAllocHandle(OM_KIND_MODULE, m);
    if (m->index == 0) {
        delete m;
        return nullptr;
    }
    g_modules.push_back(m);
    return m;
}

// The file a dlopen handle came from.
std::string pathOf(void *dl, const std::string &fallback)
{
    char buf[4096] = "";
    if (dl && dlinfo(dl, RTLD_DI_ORIGIN, buf) == 0 && buf[0])
        return std::string(buf) + "/" + baseName(fallback);
    return fallback;
}

}  // namespace

extern "C" OLMO_API uint64_t omProgramModule(void)
{
    std::lock_guard<std::mutex> guard(g_modulesLock);
    return handleOf(programModuleLocked());
}

extern "C" OLMO_API uint64_t omRegisterLoadedModule(void *dl, const char *name)
{
    std::lock_guard<std::mutex> guard(g_modulesLock);
    programModuleLocked();
    OmModule *m = registerLocked(dl, pathOf(dl, name ? name : ""));
    return m ? handleOf(m) : 0;
}

extern "C" OLMO_API OmModule *omModuleFromHandle(uint64_t handle)
{
    if (handle == 0)
        handle = omProgramModule();
    return static_cast<OmModule *>(omHandleRecord(handle, OM_KIND_MODULE));
}

extern "C" HMODULE WINAPI GetModuleHandleA(LPCSTR lpModuleName)
{
    std::lock_guard<std::mutex> guard(g_modulesLock);
    OmModule *program = programModuleLocked();
    if (!lpModuleName)
        return reinterpret_cast<HMODULE>(static_cast<uintptr_t>(handleOf(program)));
    std::string wanted = stem(lpModuleName);
    for (OmModule *m : g_modules)
        if (stem(m->path) == wanted)
            return reinterpret_cast<HMODULE>(static_cast<uintptr_t>(handleOf(m)));
    SetLastError(ERROR_MOD_NOT_FOUND);
    return nullptr;
}

extern "C" DWORD WINAPI GetModuleFileNameA(HMODULE hModule, LPSTR lpFilename, DWORD nSize)
{
    OmModule *m = omModuleFromHandle(omHandleValue(hModule));
    if (!m) {
        omDebugWarning(OmDiag::BadKernelHandle, "GetModuleFileNameA", hModule);
        SetLastError(ERROR_MOD_NOT_FOUND);
        return 0;
    }
    if (!lpFilename || nSize == 0) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    // As on Windows, a short buffer gets the truncated, terminated name
    // and the call answers nSize.
    size_t len = m->path.size();
    if (len >= nSize) {
        memcpy(lpFilename, m->path.data(), nSize - 1);
        lpFilename[nSize - 1] = '\0';
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return nSize;
    }
    memcpy(lpFilename, m->path.c_str(), len + 1);
    SetLastError(ERROR_SUCCESS);
    return static_cast<DWORD>(len);
}

extern "C" HMODULE WINAPI LoadLibraryExA(LPCSTR lpLibFileName, HANDLE hFile, DWORD dwFlags)
{
    (void)hFile;
    (void)dwFlags;
    if (!lpLibFileName || !*lpLibFileName) {
        omDebugWarning(OmDiag::NullPointer, "LoadLibraryA");
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    // A Windows name ("Foo.dll") is looked for as libfoo.so, foo.so and
    // then as given; a path is used as given.
    std::vector<std::string> candidates;
    std::string name = lpLibFileName;
    if (name.find('/') == std::string::npos) {
        std::string s = stem(name);
        candidates = {"lib" + s + ".so", s + ".so", name};
    } else {
        candidates = {name};
    }
    for (const std::string &c : candidates) {
        void *dl = dlopen(c.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (!dl)
            continue;
        std::lock_guard<std::mutex> guard(g_modulesLock);
        programModuleLocked();
        OmModule *m = registerLocked(dl, pathOf(dl, c));
        if (!m) {
            dlclose(dl);
            SetLastError(ERROR_NOT_ENOUGH_MEMORY);
            return nullptr;
        }
        return reinterpret_cast<HMODULE>(static_cast<uintptr_t>(handleOf(m)));
    }
    SetLastError(ERROR_MOD_NOT_FOUND);
    return nullptr;
}

extern "C" HMODULE WINAPI LoadLibraryA(LPCSTR lpLibFileName)
{
    return LoadLibraryExA(lpLibFileName, nullptr, 0);
}

extern "C" BOOL WINAPI FreeLibrary(HMODULE hLibModule)
{
    uint64_t h = omHandleValue(hLibModule);
    std::lock_guard<std::mutex> guard(g_modulesLock);
    auto *m = static_cast<OmModule *>(omHandleRecord(h, OM_KIND_MODULE));
    if (!m || !m->dl || omHandleIndex(h) == kOmProgramModuleSlot) {
        omDebugWarning(OmDiag::BadKernelHandle, "FreeLibrary", hLibModule);
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    if (--m->loadCount > 0)
        return TRUE;
    omFreeHandle(h);
    std::erase(g_modules, m);
    dlclose(m->dl);
    delete m;
    return TRUE;
}

extern "C" FARPROC WINAPI GetProcAddress(HMODULE hModule, LPCSTR lpProcName)
{
    OmModule *m = omModuleFromHandle(omHandleValue(hModule));
    if (!m) {
        omDebugWarning(OmDiag::BadKernelHandle, "GetProcAddress", hModule);
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    // Exports have names here; an ordinal finds nothing.
    if (!lpProcName || IS_INTRESOURCE(lpProcName)) {
        SetLastError(ERROR_PROC_NOT_FOUND);
        return nullptr;
    }
    void *sym = dlsym(m->dl ? m->dl : RTLD_DEFAULT, lpProcName);
    if (!sym) {
        SetLastError(ERROR_PROC_NOT_FOUND);
        return nullptr;
    }
    return reinterpret_cast<FARPROC>(sym);
}

extern "C" BOOL WINAPI DisableThreadLibraryCalls(HMODULE hLibModule)
{
    return omModuleFromHandle(omHandleValue(hLibModule)) != nullptr;
}
