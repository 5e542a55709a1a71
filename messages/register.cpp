// Registered window messages.  A name registered before the display is open
// gets a number from 0xC000 in a small table of this process; once the
// display is open, names live in two properties of the root window, so that
// every process on the display gives a name the same number from 0xC032.
#include "messages/omregister.h"

#include "core/omwindow.h"
#include "kernel/omdiag.h"
#include "kernel/omdisplay.h"
#include "kernel/omstring.h"

#include <windows.h>

#include <X11/Xatom.h>
#include <X11/Xlib.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <vector>

namespace om::messages {
namespace {

constexpr UINT kFirstEarlyNumber = 0xC000;
constexpr size_t kEarlyLimit = 50;
constexpr UINT kFirstSharedNumber = 0xC032;
constexpr size_t kSharedLimit = 1000;
constexpr size_t kMaxNameChars = 256;
constexpr char kCountProperty[] = "_OLMO_USERMSG_NEXTID";
constexpr char kNamesProperty[] = "_OLMO_USERMSG_STRING";
// Property reads in pieces of this many 32-bit units (256 KiB): a full
// table of long names fits in a few.
constexpr long kReadChunk = 0x10000;
constexpr size_t kNotFound = static_cast<size_t>(-1);

// Both tables and the atoms of the properties, under one lock.  The X
// requests are made under it too, so that two threads of this process
// never append the same name twice.
struct Tables {
    std::mutex mutex;
    std::vector<std::string> early;
    std::vector<std::string> shared;  // this process's copy of the display's names
    Display *display = nullptr;       // the connection the atoms and init were made on
    Atom countAtom = None;
    Atom namesAtom = None;
};

// Never destroyed: a thread still registering at exit finds it whole.
Tables &tables()
{
    static Tables *t = new Tables;
    return *t;
}

size_t characters(const char *s)
{
    size_t n = 0;
    for (; *s; ++s)
        n += (static_cast<unsigned char>(*s) & 0xC0) != 0x80;
    return n;
}

size_t findName(const std::vector<std::string> &names, const char *name)
{
    for (size_t i = 0; i < names.size(); ++i)
        if (omStrcmpCaseless(names[i].c_str(), name) == 0)
            return i;
    return kNotFound;
}

// The count property: 0 when absent or not a single 32-bit item.
long readCount(Display *dpy, Atom property)
{
    Atom type = None;
    int format = 0;
    unsigned long n = 0, after = 0;
    unsigned char *data = nullptr;
    long count = 0;
    if (XGetWindowProperty(dpy, DefaultRootWindow(dpy), property, 0, 1, False, AnyPropertyType,
                           &type, &format, &n, &after, &data) == Success &&
        format == 32 && n == 1 && data)
        count = *reinterpret_cast<long *>(data);
    if (data)
        XFree(data);
    return count;
}

// The names property split at its NULs, in registration order.  Bytes
// after the last NUL (a name another process is half-way through writing
// cannot exist: an append is one request) are ignored.
std::vector<std::string> readNames(Display *dpy, Atom property)
{
    std::string bytes;
    for (long offset = 0;;) {
        Atom type = None;
        int format = 0;
        unsigned long n = 0, after = 0;
        unsigned char *data = nullptr;
        int rc = XGetWindowProperty(dpy, DefaultRootWindow(dpy), property, offset, kReadChunk,
                                    False, AnyPropertyType, &type, &format, &n, &after, &data);
        bool usable = rc == Success && format == 8 && data;
        if (usable)
            bytes.append(reinterpret_cast<const char *>(data), n);
        if (data)
            XFree(data);
        if (!usable || after == 0)
            break;
        offset += static_cast<long>(n / 4);
    }
    std::vector<std::string> names;
    for (size_t start = 0, end; (end = bytes.find('\0', start)) != std::string::npos;
         start = end + 1)
        names.emplace_back(bytes, start, end - start);
    return names;
}

void writeCount(Display *dpy, Atom property, long count)
{
    XChangeProperty(dpy, DefaultRootWindow(dpy), property, XA_CARDINAL, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char *>(&count), 1);
}

void appendName(Display *dpy, Atom property, const std::string &name)
{
    XChangeProperty(dpy, DefaultRootWindow(dpy), property, XA_STRING, 8, PropModeAppend,
                    reinterpret_cast<const unsigned char *>(name.c_str()),
                    static_cast<int>(name.size() + 1));
}

// Appends name to the display's table and answers its index there.  No
// server grab: another process may append between our read and our write.
// The server applies appends whole and in order, so reading the names back
// and taking the first occurrence gives every process the same index,
// even when two of them appended the same name at once.  The count
// property follows the names we read back; readers go by the names.  Two
// appends racing at the limit may leave names past it: those never get a
// number, and the count stays at the limit so the table keeps answering.
size_t appendShared(Tables &t, Display *dpy, const char *name)
{
    appendName(dpy, t.namesAtom, name);
    std::vector<std::string> names = readNames(dpy, t.namesAtom);
    writeCount(dpy, t.countAtom, static_cast<long>(std::min(names.size(), kSharedLimit)));
    XFlush(dpy);
    size_t index = findName(names, name);
    t.shared = std::move(names);
    if (t.shared.size() > kSharedLimit)
        t.shared.resize(kSharedLimit);
    return index;
}

// The display's names, read right before any decision to append; false
// when the count property says the table is over its limit.
bool refreshShared(Tables &t, Display *dpy)
{
    if (readCount(dpy, t.countAtom) > static_cast<long>(kSharedLimit))
        return false;
    t.shared = readNames(dpy, t.namesAtom);
    if (t.shared.size() > kSharedLimit)
        t.shared.resize(kSharedLimit);
    return true;
}

// Interns the atoms on first use; then pushes to the display the names
// this process knew from an earlier connection (lock held).
int initLocked(Tables &t, Display *dpy)
{
    if (!dpy)
        return 0;
    if (t.display != dpy) {
        t.countAtom = XInternAtom(dpy, kCountProperty, False);
        t.namesAtom = XInternAtom(dpy, kNamesProperty, False);
        t.display = dpy;
    }
    if (t.shared.empty())
        return 1;
    if (readCount(dpy, t.countAtom) > static_cast<long>(kSharedLimit)) {
        omDebugWarning(OmDiag::MessageTableFull, "RegisterWindowMessage");
        return 0;
    }
    std::vector<std::string> local = std::move(t.shared);
    std::vector<std::string> onDisplay = readNames(dpy, t.namesAtom);
    t.shared = onDisplay;
    for (const std::string &name : local)
        if (findName(onDisplay, name.c_str()) == kNotFound && onDisplay.size() < kSharedLimit) {
            appendShared(t, dpy, name.c_str());
            onDisplay.push_back(name);
        }
    return 1;
}

UINT registerEarly(Tables &t, const char *name)
{
    if (t.early.size() >= kEarlyLimit) {
        omDebugWarning(OmDiag::MessageTableFull, "RegisterWindowMessage");
        return 0;
    }
    t.early.emplace_back(name);
    return kFirstEarlyNumber + static_cast<UINT>(t.early.size() - 1);
}

UINT registerShared(Tables &t, Display *dpy, const char *name)
{
    if (t.display != dpy && !initLocked(t, dpy))
        return 0;
    size_t index = kNotFound;
    if (refreshShared(t, dpy)) {
        index = findName(t.shared, name);
        if (index == kNotFound && t.shared.size() < kSharedLimit)
            index = appendShared(t, dpy, name);
    }
    if (index == kNotFound || index >= kSharedLimit) {
        omDebugWarning(OmDiag::MessageTableFull, "RegisterWindowMessage");
        return 0;
    }
    return kFirstSharedNumber + static_cast<UINT>(index);
}

// Early names keep their numbers after the display opens, so a number a
// program stored in a static before the display existed stays valid.
UINT registerWindowMessage(const char *name)
{
    size_t length = characters(name);
    if (length == 0 || length > kMaxNameChars)
        return 0;
    Display *dpy = omDisplay;
    Tables &t = tables();
    std::lock_guard lock(t.mutex);
    size_t early = findName(t.early, name);
    if (early != kNotFound)
        return kFirstEarlyNumber + static_cast<UINT>(early);
    return dpy ? registerShared(t, dpy, name) : registerEarly(t, name);
}

}  // namespace
}  // namespace om::messages

// The display is not opened here: programs register messages from static
// initialisers, before main() has handed the toolkit its arguments.
extern "C" UINT WINAPI RegisterWindowMessageA(LPCSTR lpString)
{
    if (!lpString)
        return 0;
    return om::core::guarded<UINT>("RegisterWindowMessage", 0,
                                   [&] { return om::messages::registerWindowMessage(lpString); });
}

extern "C" UINT WINAPI RegisterWindowMessageW(LPCWSTR lpString)
{
    if (!lpString)
        return 0;
    char *name = _omMBStringFromWideString(lpString);
    if (!name) {
        omError(OmDiag::OutOfMemory, "RegisterWindowMessage");
        return 0;
    }
    UINT number = RegisterWindowMessageA(name);
    std::free(name);
    return number;
}

extern "C" OLMO_API int omInitRegisterWindowMessage(void)
{
    auto &t = om::messages::tables();
    Display *dpy = omDisplay;
    return om::core::guarded<int>("omInitRegisterWindowMessage", 0, [&] {
        std::lock_guard lock(t.mutex);
        return om::messages::initLocked(t, dpy);
    });
}

extern "C" OLMO_API void omCleanupRegisterWindowMessage(void)
{
    auto &t = om::messages::tables();
    std::lock_guard lock(t.mutex);
    std::vector<std::string>().swap(t.early);
    std::vector<std::string>().swap(t.shared);
}
