// Atoms: the process's local atom table, and the global atom table that
// all Olmo processes on one X display share through the server (with a
// process-local table when no display can be opened).
#include "kernel/omatom.h"
#include "kernel/omdiag.h"
#include "kernel/omdisplay.h"
#include "kernel/omstring.h"

#include <winbase.h>

#include <X11/Xatom.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

using namespace om::kernel;

extern "C" {
Atom omGlobalAtomType = static_cast<Atom>(-1);
}

namespace {

constexpr ATOM kFirstStringAtom = 0xC000;
constexpr size_t kMaxStringAtoms = 0x10000 - kFirstStringAtom;
constexpr size_t kMaxNameLength = 255;  // characters, as Windows

// What an atom argument names: an integer atom or a string.
struct AtomArg {
    bool valid = false;
    ATOM integer = 0;  // non-zero for an integer atom
    std::string name;  // a string atom's name
};

bool isIntegerForm(const void *p)
{
    return (reinterpret_cast<uintptr_t>(p) >> 16) == 0;
}

// "#123" is the integer atom 123; a MAKEINTATOM value is itself.  Integer
// atoms run from 1 to 0xBFFF.
AtomArg parseName(std::string name)
{
    AtomArg a;
    if (name.size() > 1 && name[0] == '#' &&
        name.find_first_not_of("0123456789", 1) == std::string::npos) {
        unsigned v = 0;
        for (size_t i = 1; i < name.size() && v < kFirstStringAtom; ++i)
            v = v * 10 + (name[i] - '0');
        if (v == 0 || v >= kFirstStringAtom)
            return a;
        a.valid = true;
        a.integer = static_cast<ATOM>(v);
        return a;
    }
    size_t chars = 0;
    for (unsigned char c : name)
        chars += (c & 0xC0) != 0x80;
    if (chars == 0 || chars > kMaxNameLength)
        return a;
    a.valid = true;
    a.name = std::move(name);
    return a;
}

AtomArg parseArg(LPCSTR s)
{
    if (isIntegerForm(s)) {
        AtomArg a;
        auto v = static_cast<ATOM>(reinterpret_cast<uintptr_t>(s));
        a.valid = v != 0 && v < kFirstStringAtom;
        a.integer = v;
        return a;
    }
    return parseName(s);
}

AtomArg parseArg(LPCWSTR s)
{
    if (isIntegerForm(s))
        return parseArg(reinterpret_cast<LPCSTR>(s));
    size_t n = 0;
    while (s[n])
        ++n;
    return parseName(utf16ToUtf8({s, n}));
}

// Copies an atom's name into the caller's buffer, truncated to nSize - 1
// units and terminated.  Returns the units copied; a truncated copy also
// sets ERROR_MORE_DATA.
UINT copyName(const std::string &name, LPSTR buffer, int nSize)
{
    if (!buffer || nSize <= 0) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    lstrcpynA(buffer, name.c_str(), nSize);
    size_t n = strlen(buffer);
    if (n < name.size())
        SetLastError(ERROR_MORE_DATA);
    return static_cast<UINT>(n);
}

UINT copyName(const std::string &name, LPWSTR buffer, int nSize)
{
    if (!buffer || nSize <= 0) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    std::u16string wide = utf8ToUtf16(name);
    size_t n = wide.size();
    if (n > static_cast<size_t>(nSize - 1)) {
        n = nSize - 1;
        if (n > 0 && wide[n - 1] >= 0xD800 && wide[n - 1] <= 0xDBFF)
            --n;  // no half surrogate pair
        SetLastError(ERROR_MORE_DATA);
    }
    memcpy(buffer, wide.data(), n * sizeof(WCHAR));
    buffer[n] = 0;
    return static_cast<UINT>(n);
}

std::string integerName(ATOM a)
{
    // Formatted into a buffer: GCC 12 at -O3 warns falsely (-Wrestrict)
    // about "#" + std::to_string.
    char buf[8];
    snprintf(buf, sizeof buf, "#%u", static_cast<unsigned>(a));
    return buf;
}

// A table of string atoms with reference counts: the local table, and the
// global one when there is no display.
class AtomTable {
public:
    ATOM add(const std::string &name)
    {
        std::lock_guard lock(mutex_);
        std::string key = foldCase(name);
        if (auto it = byKey_.find(key); it != byKey_.end()) {
            ++entries_[it->second].refs;
            return static_cast<ATOM>(kFirstStringAtom + it->second);
        }
        size_t index;
        if (!free_.empty()) {
            index = free_.back();
            free_.pop_back();
        } else if (entries_.size() < kMaxStringAtoms) {
            index = entries_.size();
            entries_.emplace_back();
        } else {
            return 0;
        }
        entries_[index] = Entry{name, key, 1};
        byKey_.emplace(std::move(key), index);
        return static_cast<ATOM>(kFirstStringAtom + index);
    }

    ATOM find(const std::string &name)
    {
        std::lock_guard lock(mutex_);
        auto it = byKey_.find(foldCase(name));
        return it == byKey_.end() ? 0 : static_cast<ATOM>(kFirstStringAtom + it->second);
    }

    // Drops one reference; false when the atom is not in the table.
    bool release(ATOM a)
    {
        std::lock_guard lock(mutex_);
        Entry *e = entry(a);
        if (!e)
            return false;
        if (--e->refs == 0) {
            byKey_.erase(e->key);
            *e = Entry{};
            free_.push_back(a - kFirstStringAtom);
        }
        return true;
    }

    bool name(ATOM a, std::string &out)
    {
        std::lock_guard lock(mutex_);
        Entry *e = entry(a);
        if (!e)
            return false;
        out = e->name;
        return true;
    }

private:
    struct Entry {
        std::string name;
        std::string key;  // name folded to lower case
        unsigned refs = 0;
    };

    Entry *entry(ATOM a)
    {
        if (a < kFirstStringAtom || static_cast<size_t>(a - kFirstStringAtom) >= entries_.size())
            return nullptr;
        Entry &e = entries_[a - kFirstStringAtom];
        return e.refs ? &e : nullptr;
    }

    std::mutex mutex_;
    std::vector<Entry> entries_;
    std::unordered_map<std::string, size_t> byKey_;
    std::vector<size_t> free_;
};

AtomTable &localTable()
{
    static AtomTable *t = new AtomTable;  // outlives static destructors
    return *t;
}

void invalidArgument()
{
    SetLastError(ERROR_INVALID_PARAMETER);
}

// ---- The global table --------------------------------------------------------
//
// The table is a property of the default root window listing the names in
// the order they were added, each NUL-terminated; a name's atom is 0xC000
// plus its position.  Appends happen under XGrabServer, so two processes
// adding at once cannot take one position.  Each process caches what it
// read and asks the server again only for a name or atom it does not know.

constexpr char kTableProperty[] = "_OLMO_GLOBAL_ATOMS";
constexpr char kXAtomPrefix[] = "_OLMO_ATOM_";

// Holds the server grab for one read-and-append, released however the
// scope ends: a grab left behind would freeze every other client.
class ServerGrab {
public:
    explicit ServerGrab(Display *dpy) : dpy_(dpy) { XGrabServer(dpy_); }
    ~ServerGrab()
    {
        XUngrabServer(dpy_);
        // Wait until the server has processed the append, so that a process
        // told of the atom by other means (a message, a pipe) finds it.
        XSync(dpy_, False);
    }
    ServerGrab(const ServerGrab &) = delete;
    ServerGrab &operator=(const ServerGrab &) = delete;

private:
    Display *dpy_;
};

class GlobalAtoms {
public:
    // Opens the display (once per process, by omEnsureDisplay) without
    // holding our lock, since opening it runs the toolkit's start-up.
    // omDisplay is read first so that a call made during that start-up
    // does not re-enter it.  No display: the table is this process's.
    void openDisplay()
    {
        Display *d = omDisplay ? omDisplay : omEnsureDisplay();
        std::lock_guard lock(mutex_);
        display_ = d;
    }

    // The server's atom for name, adding it under a server grab when no
    // process has.  0 when the table is full.
    ATOM add(const std::string &name)
    {
        openDisplay();
        std::lock_guard lock(mutex_);
        Display *dpy = display();
        if (!dpy)
            return fallback_.add(name);
        std::string key = foldCase(name);
        ATOM a = lookup(key);
        if (!a) {
            ServerGrab grab(dpy);
            bool usable = readServer(dpy);
            a = lookup(key);
            if (!a && usable && names_.size() < kMaxStringAtoms) {
                names_.reserve(names_.size() + 1);  // no allocation failure after the append
                refs_.reserve(refs_.size() + 1);
                XChangeProperty(dpy, DefaultRootWindow(dpy), tableAtom_, XA_STRING, 8,
                                PropModeAppend,
                                reinterpret_cast<const unsigned char *>(name.c_str()),
                                static_cast<int>(name.size() + 1));
                bytesRead_ += name.size() + 1;
                a = append(name, key);
            }
            if (!a)
                return 0;
        }
        ++refs_[a - kFirstStringAtom];
        return a;
    }

    ATOM find(const std::string &name)
    {
        openDisplay();
        std::lock_guard lock(mutex_);
        Display *dpy = display();
        if (!dpy)
            return fallback_.find(name);
        std::string key = foldCase(name);
        ATOM a = lookup(key);
        if (!a) {
            readServer(dpy);
            a = lookup(key);
        }
        return a;
    }

    // GlobalDeleteAtom: the server's table never shrinks (a position, once
    // taken, keeps its name for every process), so only this process's
    // reference count drops.
    bool release(ATOM a)
    {
        openDisplay();
        std::lock_guard lock(mutex_);
        Display *dpy = display();
        if (!dpy)
            return fallback_.release(a);
        if (!known(dpy, a))
            return false;
        unsigned &r = refs_[a - kFirstStringAtom];
        if (r)
            --r;
        return true;
    }

    bool name(ATOM a, std::string &out)
    {
        openDisplay();
        std::lock_guard lock(mutex_);
        Display *dpy = display();
        if (!dpy)
            return fallback_.name(a, out);
        if (!known(dpy, a))
            return false;
        out = names_[a - kFirstStringAtom];
        return true;
    }

    Atom xatom(ATOM a)
    {
        if (!a)
            return None;
        openDisplay();
        std::lock_guard lock(mutex_);
        Display *dpy = display();
        if (!dpy)
            return None;
        if (auto it = xatoms_.find(a); it != xatoms_.end())
            return it->second;
        std::string name;
        if (a < kFirstStringAtom)
            name = integerName(a);
        else if (known(dpy, a))
            name = names_[a - kFirstStringAtom];
        else
            return None;
        // The canonical spelling (the first process's), so that every
        // process interns the same X atom whatever case it used.
        Atom x = XInternAtom(dpy, (kXAtomPrefix + name).c_str(), False);
        xatoms_[a] = x;
        reverse_[x] = a;
        return x;
    }

    ATOM fromXatom(Atom x)
    {
        if (x == None)
            return 0;
        openDisplay();
        std::lock_guard lock(mutex_);
        Display *dpy = display();
        if (!dpy)
            return 0;
        if (auto it = reverse_.find(x); it != reverse_.end())
            return it->second;
        char *xname = XGetAtomName(dpy, x);
        if (!xname)
            return 0;
        std::string name = xname;
        XFree(xname);
        constexpr size_t prefixLength = sizeof kXAtomPrefix - 1;
        if (name.compare(0, prefixLength, kXAtomPrefix) != 0)
            return 0;
        AtomArg arg = parseName(name.substr(prefixLength));
        ATOM a = 0;
        if (arg.integer) {
            a = arg.integer;
        } else if (arg.valid) {
            std::string key = foldCase(arg.name);
            a = lookup(key);
            if (!a) {
                readServer(dpy);
                a = lookup(key);
            }
        }
        if (a) {
            xatoms_[a] = x;
            reverse_[x] = a;
        }
        return a;
    }

    void initTypeAtom()
    {
        openDisplay();
        std::lock_guard lock(mutex_);
        if (Display *dpy = display())
            omGlobalAtomType = XInternAtom(dpy, "_OLMO_PROPERTY", False);
    }

private:
    // The display, with the table's X atom interned on first use.  Called
    // with mutex_ held; the display itself was opened by openDisplay()
    // before the lock was taken.
    Display *display()
    {
        if (display_ && tableAtom_ == None)
            tableAtom_ = XInternAtom(display_, kTableProperty, False);
        return display_;
    }

    ATOM lookup(const std::string &key) const
    {
        auto it = byKey_.find(key);
        return it == byKey_.end() ? 0 : it->second;
    }

    bool known(Display *dpy, ATOM a)
    {
        if (a < kFirstStringAtom)
            return false;
        if (static_cast<size_t>(a - kFirstStringAtom) >= names_.size())
            readServer(dpy);
        return static_cast<size_t>(a - kFirstStringAtom) < names_.size();
    }

    ATOM append(const std::string &name, const std::string &key)
    {
        auto a = static_cast<ATOM>(kFirstStringAtom + names_.size());
        names_.push_back(name);
        refs_.push_back(0);
        byKey_.emplace(key, a);  // the first spelling of a name wins
        return a;
    }

    // Reads what other processes appended since the last read.  The table
    // only grows, so the read starts where the last one ended (rounded down
    // to the 32-bit units property offsets count in).
    // Returns false when the property holds something else than our table
    // (another type or format), which must then not be appended to.
    bool readServer(Display *dpy)
    {
        Window root = DefaultRootWindow(dpy);
        Atom type;
        int format;
        unsigned long count, after;
        unsigned char *data = nullptr;
        // The length first: an offset past the end would be an X error.
        if (XGetWindowProperty(dpy, root, tableAtom_, 0, 0, False, AnyPropertyType, &type,
                               &format, &count, &after, &data) != Success)
            return false;
        if (data)
            XFree(data);
        if (type != None && (type != XA_STRING || format != 8))
            return false;
        size_t total = type == None ? 0 : after;
        if (total < bytesRead_)
            reset();  // the property was deleted behind our back
        if (total == bytesRead_)
            return true;
        long offset = static_cast<long>(bytesRead_ / 4);
        data = nullptr;
        long units = static_cast<long>((total - offset * 4 + 3) / 4);
        if (XGetWindowProperty(dpy, root, tableAtom_, offset, units, False, XA_STRING,
                               &type, &format, &count, &after, &data) != Success ||
            format != 8 || !data) {
            if (data)
                XFree(data);
            return false;
        }
        std::unique_ptr<unsigned char, int (*)(void *)> hold(data, XFree);
        const char *p = reinterpret_cast<const char *>(data) + (bytesRead_ - offset * 4);
        const char *end = reinterpret_cast<const char *>(data) + count;
        while (p < end && names_.size() < kMaxStringAtoms) {
            const char *nul = static_cast<const char *>(memchr(p, 0, end - p));
            if (!nul)
                break;
            std::string name(p, nul);
            append(name, foldCase(name));
            bytesRead_ += nul - p + 1;
            p = nul + 1;
        }
        return true;
    }

    void reset()
    {
        names_.clear();
        refs_.clear();
        byKey_.clear();
        xatoms_.clear();
        reverse_.clear();
        bytesRead_ = 0;
    }

    std::mutex mutex_;
    Display *display_ = nullptr;
    Atom tableAtom_ = None;
    std::vector<std::string> names_;  // position i is atom 0xC000 + i
    std::vector<unsigned> refs_;      // this process's references
    std::unordered_map<std::string, ATOM> byKey_;
    size_t bytesRead_ = 0;  // of the server's property
    std::unordered_map<ATOM, Atom> xatoms_;
    std::unordered_map<Atom, ATOM> reverse_;
    AtomTable fallback_;
};

GlobalAtoms &globalAtoms()
{
    static GlobalAtoms *g = new GlobalAtoms;
    return *g;
}

template <class S> ATOM addAtom(AtomTable &table, S s, const char *function)
{
    AtomArg arg = parseArg(s);
    if (!arg.valid) {
        invalidArgument();
        return 0;
    }
    if (arg.integer)
        return arg.integer;
    ATOM a = table.add(arg.name);
    if (!a) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        omDebugWarning(OmDiag::OutOfMemory, function);
    }
    return a;
}

template <class S> ATOM findAtom(AtomTable &table, S s)
{
    AtomArg arg = parseArg(s);
    if (!arg.valid) {
        invalidArgument();
        return 0;
    }
    if (arg.integer)
        return arg.integer;
    ATOM a = table.find(arg.name);
    if (!a)
        SetLastError(ERROR_FILE_NOT_FOUND);
    return a;
}

template <class C> UINT atomName(AtomTable &table, ATOM a, C *buffer, int nSize)
{
    std::string name;
    if (a == 0 || (a >= kFirstStringAtom && !table.name(a, name))) {
        SetLastError(ERROR_INVALID_HANDLE);
        omDebugWarning(OmDiag::BadKernelHandle, "GetAtomName", a);
        return 0;
    }
    if (a < kFirstStringAtom)
        name = integerName(a);
    return copyName(name, buffer, nSize);
}

template <class S> ATOM globalAdd(S s)
{
    AtomArg arg = parseArg(s);
    if (!arg.valid) {
        invalidArgument();
        return 0;
    }
    if (arg.integer)
        return arg.integer;
    ATOM a = globalAtoms().add(arg.name);
    if (!a) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        omDebugWarning(OmDiag::OutOfMemory, "GlobalAddAtom");
    }
    return a;
}

template <class S> ATOM globalFind(S s)
{
    AtomArg arg = parseArg(s);
    if (!arg.valid) {
        invalidArgument();
        return 0;
    }
    if (arg.integer)
        return arg.integer;
    ATOM a = globalAtoms().find(arg.name);
    if (!a)
        SetLastError(ERROR_FILE_NOT_FOUND);
    return a;
}

template <class C> UINT globalName(ATOM a, C *buffer, int nSize)
{
    std::string name;
    if (a == 0 || (a >= kFirstStringAtom && !globalAtoms().name(a, name))) {
        SetLastError(ERROR_INVALID_HANDLE);
        omDebugWarning(OmDiag::BadKernelHandle, "GlobalGetAtomName", a);
        return 0;
    }
    if (a < kFirstStringAtom)
        name = integerName(a);
    return copyName(name, buffer, nSize);
}

}  // namespace

// ---- Local atoms -----------------------------------------------------------------

extern "C" BOOL WINAPI InitAtomTable(DWORD nSize)
{
    (void)nSize;  // the table grows as needed
    return TRUE;
}

extern "C" ATOM WINAPI AddAtomA(LPCSTR lpString)
{
    return withoutThrowing("AddAtomA", ATOM{0},
                           [&] { return addAtom(localTable(), lpString, "AddAtomA"); });
}

extern "C" ATOM WINAPI AddAtomW(LPCWSTR lpString)
{
    return withoutThrowing("AddAtomW", ATOM{0},
                           [&] { return addAtom(localTable(), lpString, "AddAtomW"); });
}

extern "C" ATOM WINAPI FindAtomA(LPCSTR lpString)
{
    return withoutThrowing("FindAtomA", ATOM{0}, [&] { return findAtom(localTable(), lpString); });
}

extern "C" ATOM WINAPI FindAtomW(LPCWSTR lpString)
{
    return withoutThrowing("FindAtomW", ATOM{0}, [&] { return findAtom(localTable(), lpString); });
}

// 0 on success (integer atoms need no deleting), the atom on failure.
extern "C" ATOM WINAPI DeleteAtom(ATOM nAtom)
{
    if (nAtom != 0 && nAtom < kFirstStringAtom)
        return 0;
    if (!localTable().release(nAtom)) {
        SetLastError(ERROR_INVALID_HANDLE);
        omDebugWarning(OmDiag::BadKernelHandle, "DeleteAtom", nAtom);
        return nAtom;
    }
    return 0;
}

extern "C" UINT WINAPI GetAtomNameA(ATOM nAtom, LPSTR lpBuffer, int nSize)
{
    return withoutThrowing("GetAtomNameA", 0u,
                           [&] { return atomName(localTable(), nAtom, lpBuffer, nSize); });
}

extern "C" UINT WINAPI GetAtomNameW(ATOM nAtom, LPWSTR lpBuffer, int nSize)
{
    return withoutThrowing("GetAtomNameW", 0u,
                           [&] { return atomName(localTable(), nAtom, lpBuffer, nSize); });
}

// ---- Global atoms ----------------------------------------------------------------

extern "C" ATOM WINAPI GlobalAddAtomA(LPCSTR lpString)
{
    return withoutThrowing("GlobalAddAtomA", ATOM{0}, [&] { return globalAdd(lpString); });
}

extern "C" ATOM WINAPI GlobalAddAtomW(LPCWSTR lpString)
{
    return withoutThrowing("GlobalAddAtomW", ATOM{0}, [&] { return globalAdd(lpString); });
}

extern "C" ATOM WINAPI GlobalFindAtomA(LPCSTR lpString)
{
    return withoutThrowing("GlobalFindAtomA", ATOM{0}, [&] { return globalFind(lpString); });
}

extern "C" ATOM WINAPI GlobalFindAtomW(LPCWSTR lpString)
{
    return withoutThrowing("GlobalFindAtomW", ATOM{0}, [&] { return globalFind(lpString); });
}

extern "C" ATOM WINAPI GlobalDeleteAtom(ATOM nAtom)
{
    if (nAtom != 0 && nAtom < kFirstStringAtom)
        return 0;
    if (!withoutThrowing("GlobalDeleteAtom", false, [&] { return globalAtoms().release(nAtom); })) {
        SetLastError(ERROR_INVALID_HANDLE);
        omDebugWarning(OmDiag::BadKernelHandle, "GlobalDeleteAtom", nAtom);
        return nAtom;
    }
    return 0;
}

extern "C" UINT WINAPI GlobalGetAtomNameA(ATOM nAtom, LPSTR lpBuffer, int nSize)
{
    return withoutThrowing("GlobalGetAtomNameA", 0u,
                           [&] { return globalName(nAtom, lpBuffer, nSize); });
}

extern "C" UINT WINAPI GlobalGetAtomNameW(ATOM nAtom, LPWSTR lpBuffer, int nSize)
{
    return withoutThrowing("GlobalGetAtomNameW", 0u,
                           [&] { return globalName(nAtom, lpBuffer, nSize); });
}

// ---- X atoms for window properties ---------------------------------------------------

extern "C" OLMO_API void omGlobalAtomsInitXAtom(void)
{
    globalAtoms().initTypeAtom();
}

extern "C" OLMO_API Atom omGlobalAtomsFindXatom(ATOM globalAtom)
{
    return withoutThrowing("omGlobalAtomsFindXatom", Atom{None},
                           [&] { return globalAtoms().xatom(globalAtom); });
}

extern "C" OLMO_API ATOM omGlobalAtomsFindOlmoatom(Atom xatom)
{
    return withoutThrowing("omGlobalAtomsFindOlmoatom", ATOM{0},
                           [&] { return globalAtoms().fromXatom(xatom); });
}
