// The diagnostic catalogue and its output.  Texts are ours; numbers are
// fixed.  Each text names its arguments %1, %2, ...; %1 is usually the
// function.  The argument list says what a C caller passes after the
// function name: s string, i int, u unsigned, x 32-bit hex, p pointer or
// handle, w pointer-sized unsigned, l pointer-sized signed.
#include "kernel/omdiag.h"

#include <array>
#include <atomic>
#include <cinttypes>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <vector>

namespace {

struct CatalogEntry {
    int number;
    const char *args;  // after the function name
    const char *text;
};

constexpr CatalogEntry kCatalog[] = {
    {3, "s", "%1: the value given for %2 is not a brush"},
    {4, "", "%1: not a bitmap handle"},
    {6, "", "%1: a blink time of 0 is not allowed"},
    {7, "", "%1: the answer is not a brush"},
    {12, "", "%1: list index out of range"},
    {25, "", "%1: the window is not a dialog box"},
    {33, "", "%1: null window procedure"},
    {36, "", "%1: negative caret height"},
    {39, "i", "%1: index %2 lies outside the window or class data"},
    {42, "", "%1: string not found"},
    {43, "", "%1: invalid list index"},
    {49, "", "%1: not a menu handle"},
    {57, "", "%1: bad parent window"},
    {58, "", "%1: null POINT pointer"},
    {69, "", "%1: the list box must have single selection"},
    {70, "", "%1: the list box must have multiple selection"},
    {77, "", "%1: negative caret width"},
    {78, "", "%1: bad deferred-position handle"},
    {79, "pw", "%1: %2 is not a window handle"},
    {93, "s", "%1: dialog resource %2 not found"},
    {106, "", "%1: menu item not found"},
    {111, "", "%1: a child window's class cannot have a menu"},
    {112, "s", "%1: unknown window class \"%2\""},
    {114, "", "%1: the class table cannot grow"},
    {115, "", "%1: no combo box id given"},
    {116, "i", "%1: no dialog item %2"},
    {119, "", "%1: null window handle"},
    {125, "", "%1: the handle table is full"},
    {127, "", "%1: null range pointers"},
    {129, "", "%1: no list box id given"},
    {130, "", "%1: out of memory"},
    {133, "", "%1: null pointer argument"},
    {134, "", "%1: the window has no such scroll bar"},
    {135, "", "%1: nothing is selected"},
    {139, "p", "%1: window %2 has no window procedure"},
    {141, "", "%1: not supported yet"},
    {144, "", "%1: buffer too small"},
    {148, "i", "%1: unknown show command %2"},
    {151, "u", "%1: bad relationship %2"},
    {152, "u", "%1: unknown button type %2"},
    {153, "u", "%1: bad message box type %2"},
    {155, "u", "%1: unsupported message 0x%2"},
    {156, "x", "%1: unsupported style %2"},
    {161, "l", "%1: bad or unsupported value %2"},
    {163, "", "%1: the registered-message table is full"},
    {179, "", "%1: the answer is neither an icon nor a cursor"},
    {194, "u", "keysym %1 maps to virtual key %2, above 0x100"},
    {198, "", "%1: the window procedure did not pass WM_NCCREATE on"},
    {199, "", "%1: needs the Motif window manager"},
    {201, "", "%1: invalid thread"},
    {234, "", "%1: the parent window has no canvas"},
    {237, "", "%1: called on a thread that may not use windows"},
    {243, "", "%1: the message queue's free list is exhausted"},
    {269, "", "%1: null SCROLLINFO pointer"},
    {270, "", "%1: the dialog's parent has no widgets"},
    {297, "s", "%1: %2"},
    {300, "p", "%1: %2 is not a valid handle for this call"},
    {301, "", "%1: no X display is open"},
    {302, "s", "%1: cannot open the X display \"%2\""},
    {303, "s", "%1: bad argument: %2"},
    {304, "s", "%1: resource %2 not found"},
    {305, "s", "%1: malformed resource data: %2"},
};

const CatalogEntry *findEntry(int number)
{
    for (const CatalogEntry &e : kCatalog)
        if (e.number == number)
            return &e;
    return nullptr;
}

constexpr int kMaxNumber = 512;
std::array<std::atomic<unsigned>, kMaxNumber> g_counts{};

enum class Mode { Print, Quiet, Fatal };

Mode mode()
{
    static const Mode m = [] {
        const char *v = getenv("OLMO_DIAGNOSTICS");
        if (v && strcmp(v, "quiet") == 0)
            return Mode::Quiet;
        if (v && strcmp(v, "fatal") == 0)
            return Mode::Fatal;
        return Mode::Print;
    }();
    return m;
}

std::string format(const CatalogEntry *e, int number, const OmDiagArg *args, size_t count)
{
    if (!e) {
        std::string s = "diagnostic " + std::to_string(number);
        for (size_t i = 0; i < count; ++i)
            s += (i ? ", " : ": ") + args[i].text;
        return s;
    }
    std::string out;
    for (const char *p = e->text; *p; ++p) {
        if (p[0] == '%' && p[1] >= '1' && p[1] <= '9') {
            size_t i = static_cast<size_t>(p[1] - '1');
            if (i < count)
                out += args[i].text;
            ++p;
        } else {
            out += *p;
        }
    }
    return out;
}

}  // namespace

std::string OmDiagArg::formatInteger(int64_t v, bool isSigned)
{
    char buf[32];
    if (isSigned)
        snprintf(buf, sizeof buf, "%" PRId64, v);
    else
        snprintf(buf, sizeof buf, "%" PRIu64, static_cast<uint64_t>(v));
    return buf;
}

std::string OmDiagArg::formatPointer(uintptr_t p)
{
    char buf[32];
    snprintf(buf, sizeof buf, "0x%" PRIxPTR, p);
    return buf;
}

OLMO_API void omDiagEmit(bool isError, int number, const OmDiagArg *args, size_t count)
{
    if (number >= 0 && number < kMaxNumber)
        g_counts[static_cast<size_t>(number)].fetch_add(1, std::memory_order_relaxed);
    Mode m = mode();
    if (m == Mode::Quiet)
        return;
    std::string line = "olmo ";
    line += isError ? "error " : "warning ";
    line += std::to_string(number) + ": " + format(findEntry(number), number, args, count) + "\n";
    fputs(line.c_str(), stderr);
    if (m == Mode::Fatal)
        abort();
}

namespace {

// Reads the C caller's arguments as the catalogue entry declares them.
std::vector<OmDiagArg> readArgs(int number, const char *functionName, va_list ap)
{
    std::vector<OmDiagArg> args;
    args.emplace_back(functionName);
    const CatalogEntry *e = findEntry(number);
    for (const char *t = e ? e->args : ""; *t; ++t) {
        switch (*t) {
        case 's': args.emplace_back(va_arg(ap, const char *)); break;
        case 'i': args.emplace_back(va_arg(ap, int)); break;
        case 'u': args.emplace_back(va_arg(ap, unsigned)); break;
        case 'x': {
            char buf[16];
            snprintf(buf, sizeof buf, "0x%x", va_arg(ap, unsigned));
            args.emplace_back(buf);
            break;
        }
        case 'p': args.emplace_back(va_arg(ap, void *)); break;
        case 'w': args.emplace_back(va_arg(ap, uint64_t)); break;
        case 'l': args.emplace_back(va_arg(ap, int64_t)); break;
        default: break;
        }
    }
    return args;
}

}  // namespace

extern "C" OLMO_API void omDebugWarning(int number, const char *functionName, ...)
{
    va_list ap;
    va_start(ap, functionName);
    std::vector<OmDiagArg> args = readArgs(number, functionName, ap);
    va_end(ap);
    omDiagEmit(false, number, args.data(), args.size());
}

extern "C" OLMO_API int omError(int number, const char *functionName, ...)
{
    va_list ap;
    va_start(ap, functionName);
    std::vector<OmDiagArg> args = readArgs(number, functionName, ap);
    va_end(ap);
    omDiagEmit(true, number, args.data(), args.size());
    return number;
}

extern "C" OLMO_API unsigned omDiagCount(int number)
{
    if (number < 0 || number >= kMaxNumber)
        return 0;
    return g_counts[static_cast<size_t>(number)].load(std::memory_order_relaxed);
}

extern "C" OLMO_API void omDiagResetCounts(void)
{
    for (auto &c : g_counts)
        c.store(0, std::memory_order_relaxed);
}
