// The per-module resource stores and the resource functions of kernel32:
// FindResource(Ex), LoadResource, LockResource, SizeofResource,
// FreeResource and the EnumResource* walks.
//
// An HRSRC is a handle-table value of kind OM_KIND_RESOURCE whose record
// is the entry; one handle per entry, made on first lookup and freed with
// the image.  The HGLOBAL of LoadResource is, as on Win32, the address of
// the data itself (4-byte aligned, copied when the image is not), so code
// that uses LoadResource's result as a pointer keeps working; LockResource
// checks it against the addresses handed out.
#include "kernel/omresource.h"
#include "kernel/omdiag.h"
#include "kernel/omhandles.h"
#include "kernel/ommodule.h"
#include "kernel/omstring.h"

#include <windows.h>

#include <dlfcn.h>
#include <link.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <unordered_map>

namespace om::kernel
{

bool resNameFromA(const char *s, ResName &out)
{
    if (!s)
        return false;
    if ((reinterpret_cast<uintptr_t>(s) >> 16) == 0) {
        out = ResName::ofOrdinal(static_cast<uint16_t>(reinterpret_cast<uintptr_t>(s)));
        return true;
    }
    std::u16string wide = utf8ToUtf16(s);
    return resNameFromW(wide.c_str(), out);
}

std::string resNameUtf8(const ResName &n)
{
    return n.byOrdinal ? std::string() : utf16ToUtf8(n.text);
}

} // namespace om::kernel

namespace
{

using om::kernel::ResDirectory;
using om::kernel::ResEntry;
using om::kernel::ResName;

struct Image {
    const unsigned char *base;
    size_t size;
    size_t tag;
};

// The resources of one loaded object, keyed by its link map.
struct Store {
    const void *owner;
    std::vector<Image> images;
    ResDirectory dir;
};

// What an HRSRC designates.
struct ResRecord {
    uint32_t index = 0; // its handle slot
    size_t tag = 0;
    const unsigned char *data = nullptr; // inside the image
    uint32_t size = 0;
    std::unique_ptr<uint32_t[]> copy; // aligned copy when `data` is not
    const void *loaded = nullptr;     // what LoadResource handed out
};

// The tables live as long as the process: lookups may come from threads
// still running while it exits.
struct Tables {
    std::mutex lock;
    // All guarded by lock.
    std::vector<std::unique_ptr<Store>> stores;
    std::map<std::pair<size_t, size_t>, ResRecord *> records; // (tag, data offset)
    std::unordered_map<const void *, ResRecord *> loaded;
    size_t nextTag = 1;
};

Tables &tables()
{
    static Tables *t = new Tables;
    return *t;
}

// Set by an exit handler.  The generated destructors of images still
// registered at exit run after every exit handler (from the loader's
// fini), when the handle table's own state is gone: they must do nothing.
std::atomic<bool> g_exiting{false};

void noteExitOnce()
{
    static std::once_flag once;
    std::call_once(once, [] { atexit([] { g_exiting.store(true); }); });
}

Store *storeOf(const void *owner)
{
    for (auto &s : tables().stores)
        if (s->owner == owner)
            return s.get();
    return nullptr;
}

// The link map of a module record: the dlopen handle's, or the program's.
const void *ownerOfModule(const OmModule *m)
{
    static void *programHandle = dlopen(nullptr, RTLD_NOW);
    void *dl = m->dl ? m->dl : programHandle;
    struct link_map *map = nullptr;
    if (!dl || dlinfo(dl, RTLD_DI_LINKMAP, &map) != 0)
        return nullptr;
    return map;
}

int addImage(const void *owner, const void *image, size_t size, const char *fn)
{
    noteExitOnce();
    const auto *bytes = static_cast<const unsigned char *>(image);
    try {
        std::vector<ResEntry> entries;
        std::string why;
        if (!om::kernel::parseResImage(bytes, size, entries, why)) {
            omDebugWarning(OmDiag::MalformedResource, fn, why);
            return FALSE;
        }
        Tables &t = tables();
        std::lock_guard<std::mutex> guard(t.lock);
        Store *s = storeOf(owner);
        if (!s) {
            t.stores.push_back(std::make_unique<Store>());
            s = t.stores.back().get();
            s->owner = owner;
        }
        for (const Image &i : s->images)
            if (i.base == bytes)
                return TRUE; // registered twice: keep the first
        size_t tag = t.nextTag++;
        s->images.push_back(Image{bytes, size, tag});
        s->dir.add(entries, tag);
    } catch (const std::bad_alloc &) {
        omError(OmDiag::OutOfMemory, fn);
        return FALSE;
    }
    return TRUE;
}

// The record of an HRSRC, or null.  Caller holds the tables' lock.
ResRecord *recordOf(HRSRC h)
{
    return static_cast<ResRecord *>(omHandleRecord(omHandleValue(h), OM_KIND_RESOURCE));
}

// The module record of a handle (null: the program), with the diagnostic
// for a bad one.  Called without the tables' lock: the program's record is made
// under the module lock.
OmModule *moduleFor(HMODULE h, const char *fn)
{
    OmModule *m = omModuleFromHandle(omHandleValue(h));
    if (!m) {
        omDebugWarning(OmDiag::BadKernelHandle, fn, h);
        SetLastError(ERROR_INVALID_HANDLE);
    }
    return m;
}

HRSRC findResource(HMODULE hModule, const ResName &type, const ResName &name, WORD language,
                   const char *fn)
{
    OmModule *m = moduleFor(hModule, fn);
    if (!m)
        return nullptr;
    const void *owner = ownerOfModule(m);
    LANGID threadLanguage = LANGIDFROMLCID(GetThreadLocale());
    try {
        std::lock_guard<std::mutex> guard(tables().lock);
        Store *s = owner ? storeOf(owner) : nullptr;
        if (!s || s->dir.items().empty()) {
            SetLastError(ERROR_RESOURCE_DATA_NOT_FOUND);
            return nullptr;
        }
        const ResDirectory::Item *item = s->dir.find(type, name, language, threadLanguage);
        if (!item) {
            SetLastError(s->dir.names(type).empty() ? ERROR_RESOURCE_TYPE_NOT_FOUND
                                                    : ERROR_RESOURCE_NAME_NOT_FOUND);
            return nullptr;
        }
        auto key = std::make_pair(item->tag, item->entry.dataOffset);
        ResRecord *&rec = tables().records[key];
        if (!rec) {
            const Image *image = nullptr;
            for (const Image &i : s->images)
                if (i.tag == item->tag)
                    image = &i;
            auto fresh = std::make_unique<ResRecord>();
            fresh->tag = item->tag;
            fresh->data = image->base + item->entry.dataOffset;
            fresh->size = item->entry.dataSize;
            fresh->index = omAllocHandle(OM_KIND_RESOURCE, fresh.get());
            if (fresh->index == 0) {
                tables().records.erase(key);
                omError(OmDiag::HandleTableFull, fn);
                SetLastError(ERROR_NOT_ENOUGH_MEMORY);
                return nullptr;
            }
            rec = fresh.release();
        }
        return reinterpret_cast<HRSRC>(static_cast<uintptr_t>(omHandleFromIndex(rec->index)));
    } catch (const std::bad_alloc &) {
        omError(OmDiag::OutOfMemory, fn);
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
}

HRSRC findResourceA(HMODULE hModule, LPCSTR type, LPCSTR name, WORD language, const char *fn)
{
    ResName t, n;
    if (!om::kernel::resNameFromA(type, t) || !om::kernel::resNameFromA(name, n)) {
        omDebugWarning(OmDiag::NullPointer, fn);
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    return findResource(hModule, t, n, language, fn);
}

HRSRC findResourceW(HMODULE hModule, LPCWSTR type, LPCWSTR name, WORD language, const char *fn)
{
    ResName t, n;
    if (!om::kernel::resNameFromW(reinterpret_cast<const char16_t *>(type), t) ||
        !om::kernel::resNameFromW(reinterpret_cast<const char16_t *>(name), n)) {
        omDebugWarning(OmDiag::NullPointer, fn);
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    return findResource(hModule, t, n, language, fn);
}

// What the EnumResource* walks need from a module's store, copied so that
// the callbacks run without the lock (they may look resources up).
enum class Walk { Types, Names, Languages };

struct WalkResult {
    bool ok = false;
    std::vector<ResName> names;
    std::vector<uint16_t> languages;
};

WalkResult collect(const Store &s, Walk what, const ResName *type, const ResName *name);

WalkResult walk(HMODULE hModule, Walk what, const ResName *type, const ResName *name,
                const char *fn)
{
    WalkResult r;
    OmModule *m = moduleFor(hModule, fn);
    if (!m)
        return r;
    const void *owner = ownerOfModule(m);
    std::lock_guard<std::mutex> guard(tables().lock);
    Store *s = owner ? storeOf(owner) : nullptr;
    if (!s || s->dir.items().empty()) {
        SetLastError(ERROR_RESOURCE_DATA_NOT_FOUND);
        return r;
    }
    try {
        return collect(*s, what, type, name);
    } catch (const std::bad_alloc &) {
        omError(OmDiag::OutOfMemory, fn);
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return WalkResult{};
    }
}

WalkResult collect(const Store &s, Walk what, const ResName *type, const ResName *name)
{
    WalkResult r;
    if (what == Walk::Types) {
        r.names = s.dir.types();
    } else {
        r.names = s.dir.names(*type);
        if (r.names.empty()) {
            SetLastError(ERROR_RESOURCE_TYPE_NOT_FOUND);
            return r;
        }
        if (what == Walk::Languages) {
            r.languages = s.dir.languages(*type, *name);
            if (r.languages.empty()) {
                SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
                return r;
            }
        }
    }
    r.ok = true;
    return r;
}

// A name as an enumeration callback receives it: MAKEINTRESOURCE for an
// ordinal, else a pointer to the text kept in `keep`.
template <class Char, class Str> Char *namePointer(const ResName &n, Str &keep)
{
    if (n.byOrdinal)
        return reinterpret_cast<Char *>(static_cast<uintptr_t>(n.ordinal));
    return reinterpret_cast<Char *>(keep.data());
}

BOOL stopped()
{
    SetLastError(ERROR_RESOURCE_ENUM_USER_STOP);
    return FALSE;
}

// True (with the diagnostic) when a required argument is missing.
bool missing(bool present, const char *fn)
{
    if (present)
        return false;
    omDebugWarning(OmDiag::NullPointer, fn);
    SetLastError(ERROR_INVALID_PARAMETER);
    return true;
}

} // namespace

extern "C" OLMO_API int _omRegisterResources(const void *image, size_t size)
{
    Dl_info info;
    struct link_map *map = nullptr;
    if (!image || dladdr1(image, &info, reinterpret_cast<void **>(&map), RTLD_DL_LINKMAP) == 0 ||
        !map) {
        omDebugWarning(OmDiag::MalformedResource, "_omRegisterResources",
                       "the image lies in no loaded object");
        return FALSE;
    }
    return addImage(map, image, size, "_omRegisterResources");
}

extern "C" OLMO_API int omAddModuleResources(uint64_t module, const void *image, size_t size)
{
    OmModule *m = omModuleFromHandle(module);
    if (!m) {
        omDebugWarning(OmDiag::BadKernelHandle, "omAddModuleResources", module);
        return FALSE;
    }
    const void *owner = ownerOfModule(m);
    if (!owner) {
        omDebugWarning(OmDiag::BadKernelHandle, "omAddModuleResources", module);
        return FALSE;
    }
    return addImage(owner, image, size, "omAddModuleResources");
}

extern "C" OLMO_API void _omUnregisterResources(const void *image)
{
    if (g_exiting.load())
        return;
    Tables &t = tables();
    std::lock_guard<std::mutex> guard(t.lock);
    for (auto it = t.stores.begin(); it != t.stores.end(); ++it) {
        Store &s = **it;
        auto img = std::find_if(s.images.begin(), s.images.end(),
                                [image](const Image &i) { return i.base == image; });
        if (img == s.images.end())
            continue;
        size_t tag = img->tag;
        s.images.erase(img);
        s.dir.removeTag(tag);
        auto r = t.records.lower_bound({tag, 0});
        while (r != t.records.end() && r->first.first == tag) {
            ResRecord *rec = r->second;
            omFreeHandle(omHandleFromIndex(rec->index));
            if (rec->loaded)
                t.loaded.erase(rec->loaded);
            delete rec;
            r = t.records.erase(r);
        }
        if (s.images.empty())
            t.stores.erase(it);
        return;
    }
}

extern "C" HRSRC WINAPI FindResourceA(HMODULE hModule, LPCSTR lpName, LPCSTR lpType)
{
    return findResourceA(hModule, lpType, lpName, 0, "FindResourceA");
}

extern "C" HRSRC WINAPI FindResourceW(HMODULE hModule, LPCWSTR lpName, LPCWSTR lpType)
{
    return findResourceW(hModule, lpType, lpName, 0, "FindResourceW");
}

extern "C" HRSRC WINAPI FindResourceExA(HMODULE hModule, LPCSTR lpType, LPCSTR lpName,
                                        WORD wLanguage)
{
    return findResourceA(hModule, lpType, lpName, wLanguage, "FindResourceExA");
}

extern "C" HRSRC WINAPI FindResourceExW(HMODULE hModule, LPCWSTR lpType, LPCWSTR lpName,
                                        WORD wLanguage)
{
    return findResourceW(hModule, lpType, lpName, wLanguage, "FindResourceExW");
}

extern "C" HGLOBAL WINAPI LoadResource(HMODULE hModule, HRSRC hResInfo)
{
    // The HRSRC names its entry whole; hModule is only checked.
    if (hModule && !moduleFor(hModule, "LoadResource"))
        return nullptr;
    try {
        std::lock_guard<std::mutex> guard(tables().lock);
        ResRecord *rec = recordOf(hResInfo);
        if (!rec) {
            omDebugWarning(OmDiag::BadKernelHandle, "LoadResource", hResInfo);
            SetLastError(ERROR_INVALID_HANDLE);
            return nullptr;
        }
        if (!rec->loaded) {
            // Empty data gets a buffer of its own too, so that its address
            // is never the next entry's and LockResource can tell them apart.
            if (rec->size == 0 || reinterpret_cast<uintptr_t>(rec->data) % 4 != 0) {
                rec->copy = std::make_unique<uint32_t[]>((rec->size + 3) / 4 + 1);
                memcpy(rec->copy.get(), rec->data, rec->size);
                rec->loaded = rec->copy.get();
            } else {
                rec->loaded = rec->data;
            }
            tables().loaded[rec->loaded] = rec;
        }
        return const_cast<void *>(rec->loaded);
    } catch (const std::bad_alloc &) {
        omError(OmDiag::OutOfMemory, "LoadResource");
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
}

extern "C" LPVOID WINAPI LockResource(HGLOBAL hResData)
{
    // Null is LoadResource's failure, already reported.
    if (!hResData)
        return nullptr;
    std::lock_guard<std::mutex> guard(tables().lock);
    if (!tables().loaded.contains(hResData)) {
        omDebugWarning(OmDiag::BadKernelHandle, "LockResource", hResData);
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    return hResData;
}

extern "C" DWORD WINAPI SizeofResource(HMODULE hModule, HRSRC hResInfo)
{
    if (hModule && !moduleFor(hModule, "SizeofResource"))
        return 0;
    std::lock_guard<std::mutex> guard(tables().lock);
    ResRecord *rec = recordOf(hResInfo);
    if (!rec) {
        omDebugWarning(OmDiag::BadKernelHandle, "SizeofResource", hResInfo);
        SetLastError(ERROR_INVALID_HANDLE);
        return 0;
    }
    return rec->size;
}

extern "C" BOOL WINAPI FreeResource(HGLOBAL hResData)
{
    // Resource data lives as long as its module, so freeing does nothing.
    // The return value is inverted, as documented: FALSE means success.
    if (!hResData)
        return FALSE;
    std::lock_guard<std::mutex> guard(tables().lock);
    if (!tables().loaded.contains(hResData)) {
        omDebugWarning(OmDiag::BadKernelHandle, "FreeResource", hResData);
        SetLastError(ERROR_INVALID_HANDLE);
        return TRUE;
    }
    return FALSE;
}

extern "C" BOOL WINAPI EnumResourceTypesA(HMODULE hModule, ENUMRESTYPEPROCA lpEnumFunc,
                                          LONG_PTR lParam)
{
    if (missing(lpEnumFunc != nullptr, "EnumResourceTypesA"))
        return FALSE;
    WalkResult r = walk(hModule, Walk::Types, nullptr, nullptr, "EnumResourceTypesA");
    if (!r.ok)
        return FALSE;
    for (const ResName &t : r.names) {
        std::string text = om::kernel::resNameUtf8(t);
        if (!lpEnumFunc(hModule, namePointer<char>(t, text), lParam))
            return stopped();
    }
    return TRUE;
}

extern "C" BOOL WINAPI EnumResourceTypesW(HMODULE hModule, ENUMRESTYPEPROCW lpEnumFunc,
                                          LONG_PTR lParam)
{
    if (missing(lpEnumFunc != nullptr, "EnumResourceTypesW"))
        return FALSE;
    WalkResult r = walk(hModule, Walk::Types, nullptr, nullptr, "EnumResourceTypesW");
    if (!r.ok)
        return FALSE;
    for (const ResName &t : r.names) {
        std::u16string text = t.text;
        if (!lpEnumFunc(hModule, namePointer<WCHAR>(t, text), lParam))
            return stopped();
    }
    return TRUE;
}

extern "C" BOOL WINAPI EnumResourceNamesA(HMODULE hModule, LPCSTR lpType,
                                          ENUMRESNAMEPROCA lpEnumFunc, LONG_PTR lParam)
{
    ResName type;
    if (missing(lpEnumFunc && om::kernel::resNameFromA(lpType, type), "EnumResourceNamesA"))
        return FALSE;
    WalkResult r = walk(hModule, Walk::Names, &type, nullptr, "EnumResourceNamesA");
    if (!r.ok)
        return FALSE;
    for (const ResName &n : r.names) {
        std::string text = om::kernel::resNameUtf8(n);
        if (!lpEnumFunc(hModule, lpType, namePointer<char>(n, text), lParam))
            return stopped();
    }
    return TRUE;
}

extern "C" BOOL WINAPI EnumResourceNamesW(HMODULE hModule, LPCWSTR lpType,
                                          ENUMRESNAMEPROCW lpEnumFunc, LONG_PTR lParam)
{
    ResName type;
    if (missing(lpEnumFunc &&
                    om::kernel::resNameFromW(reinterpret_cast<const char16_t *>(lpType), type),
                "EnumResourceNamesW"))
        return FALSE;
    WalkResult r = walk(hModule, Walk::Names, &type, nullptr, "EnumResourceNamesW");
    if (!r.ok)
        return FALSE;
    for (const ResName &n : r.names) {
        std::u16string text = n.text;
        if (!lpEnumFunc(hModule, lpType, namePointer<WCHAR>(n, text), lParam))
            return stopped();
    }
    return TRUE;
}

extern "C" BOOL WINAPI EnumResourceLanguagesA(HMODULE hModule, LPCSTR lpType, LPCSTR lpName,
                                              ENUMRESLANGPROCA lpEnumFunc, LONG_PTR lParam)
{
    ResName type, name;
    if (missing(lpEnumFunc && om::kernel::resNameFromA(lpType, type) &&
                    om::kernel::resNameFromA(lpName, name),
                "EnumResourceLanguagesA"))
        return FALSE;
    WalkResult r = walk(hModule, Walk::Languages, &type, &name, "EnumResourceLanguagesA");
    if (!r.ok)
        return FALSE;
    for (uint16_t lang : r.languages)
        if (!lpEnumFunc(hModule, lpType, lpName, lang, lParam))
            return stopped();
    return TRUE;
}

extern "C" BOOL WINAPI EnumResourceLanguagesW(HMODULE hModule, LPCWSTR lpType, LPCWSTR lpName,
                                              ENUMRESLANGPROCW lpEnumFunc, LONG_PTR lParam)
{
    ResName type, name;
    if (missing(lpEnumFunc &&
                    om::kernel::resNameFromW(reinterpret_cast<const char16_t *>(lpType), type) &&
                    om::kernel::resNameFromW(reinterpret_cast<const char16_t *>(lpName), name),
                "EnumResourceLanguagesW"))
        return FALSE;
    WalkResult r = walk(hModule, Walk::Languages, &type, &name, "EnumResourceLanguagesW");
    if (!r.ok)
        return FALSE;
    for (uint16_t lang : r.languages)
        if (!lpEnumFunc(hModule, lpType, lpName, lang, lParam))
            return stopped();
    return TRUE;
}
