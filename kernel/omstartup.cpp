// Loads the user library at start-up and keeps its entry-point table.
// The kernel layer does not link the user library: it finds it beside
// itself (or already in the process) and asks it for its entries by name,
// so that the same kernel serves programs with and without windows.
#include "kernel/omstartup.h"
#include "kernel/omdisplay.h"
#include "kernel/ommodule.h"
#include "kernel/omthread.h"

#include <windows.h>

#include <array>
#include <atomic>
#include <dlfcn.h>
#include <string>

namespace {

std::array<std::atomic<void *>, OM_UE_Count> g_entries{};
uint64_t g_userInstance = 0;

template <class F> F entry(OmUserEntry position)
{
    return reinterpret_cast<F>(g_entries[position].load(std::memory_order_acquire));
}

// The directory this library was loaded from; the user library is
// installed (and built) beside it.
std::string ownDirectory()
{
    Dl_info info{};
    if (!dladdr(reinterpret_cast<void *>(&omLoadUserLibrary), &info) || !info.dli_fname)
        return {};
    std::string path = info.dli_fname;
    size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

void threadRegistered(OmThreadRecord *t)
{
    if (auto init = entry<int (*)(HANDLE)>(OM_UE_omInitMsgQ))
        init(reinterpret_cast<HANDLE>(static_cast<uintptr_t>(t->handle)));
}

void threadExiting(OmThreadRecord *t)
{
    HANDLE h = reinterpret_cast<HANDLE>(static_cast<uintptr_t>(t->handle));
    if (auto f = entry<void (*)(HANDLE)>(OM_UE_omCleanupSMSList))
        f(h);
    if (auto f = entry<void (*)(HANDLE)>(OM_UE_omDetachHWNDfromThread))
        f(h);
    if (auto f = entry<void (*)(HANDLE)>(OM_UE_omMsgQExtraCleanUp))
        f(h);
}

}  // namespace

extern "C" OLMO_API void _omUSER_exports_init(void **table)
{
    if (!table)
        return;
    // Copied by position: entries not built yet are null and skipped when
    // called.
    for (int i = 0; i < OM_UE_Count; ++i)
        g_entries[i].store(table[i], std::memory_order_release);
}

extern "C" OLMO_API void *omUserEntryPoint(int position)
{
    if (position < 0 || position >= OM_UE_Count)
        return nullptr;
    return g_entries[position].load(std::memory_order_acquire);
}

extern "C" OLMO_API uint64_t omUserLibraryInstance(void)
{
    return g_userInstance;
}

extern "C" OLMO_API void omLoadUserLibrary(void)
{
    static const char kSoname[] = "libolmouser.so.0";
    void *lib = dlopen(kSoname, RTLD_NOW | RTLD_NOLOAD);
    if (!lib) {
        std::string dir = ownDirectory();
        if (!dir.empty())
            lib = dlopen((dir + "/" + kSoname).c_str(), RTLD_NOW | RTLD_GLOBAL);
    }
    if (!lib)
        return;  // a program of the kernel layer alone
    g_userInstance = omRegisterLoadedModule(lib, kSoname);
    HINSTANCE instance = reinterpret_cast<HINSTANCE>(static_cast<uintptr_t>(g_userInstance));
    if (auto dllMain = reinterpret_cast<BOOL (*)(HINSTANCE, DWORD, LPVOID)>(dlsym(lib, "DllMain")))
        dllMain(instance, DLL_PROCESS_ATTACH, nullptr);
    if (auto init = reinterpret_cast<void (*)(void)>(dlsym(lib, "_ominit_userdll")))
        init();
    omSetThreadHooks(threadRegistered, threadExiting);
}

extern "C" OLMO_API void omRunUserStartup(void)
{
    if (auto f = entry<void (*)(void)>(OM_UE_omInitModifierMasks))
        f();
    if (auto f = entry<void (*)(void)>(OM_UE_omWindowCacheStartInit))
        f();
    if (auto f = entry<void (*)(Widget)>(OM_UE_omSetupIconic); f && omAppShell)
        f(omAppShell);
}
