// Window classes: the class table (which grows from 200 slots), the eight
// built-in classes, registration and lookup, and class data.  The
// built-in classes' procedures are filled in by their subsystems
// (omSetBuiltInClassProcs); until then a stand-in marks the window's kind.
#include "core/omwindow.h"

#include "kernel/omdisplay.h"
#include "kernel/omstring.h"

#include <Xm/Xm.h>
#include <X11/Intrinsic.h>

#include <algorithm>
#include <cstdlib>
#include <new>
#include <string>

namespace {

constexpr int kBuiltInCount = 8;
constexpr int kInitialSlots = 200;
constexpr uintptr_t kDialogOrdinal = 32770;

OmClassRecord **omWndClasses = nullptr;
int MAXCLASSES = 0;

bool isOrdinal(LPCSTR name)
{
    return reinterpret_cast<uintptr_t>(name) <= 0xFFFF;
}

// Stand-ins for the built-in classes' procedures: they mark the window's
// kind when it is created and otherwise behave as a plain window.
template <uint8_t Kind> LRESULT CALLBACK builtInStandIn(HWND hwnd, UINT msg, WPARAM w, LPARAM l)
{
    if (msg == WM_NCCREATE)
        if (WindowRecord *r = omWindowRecord(hwnd))
            r->kind = Kind;
    return DefWindowProcA(hwnd, msg, w, l);
}

struct BuiltIn {
    const char *name;
    UINT style;
    int wndExtra;
    WNDPROC proc;
};
constexpr BuiltIn kBuiltIns[kBuiltInCount] = {
    {"WC_DIALOG", 0x4008, DLGWINDOWEXTRA, builtInStandIn<OM_WK_DIALOG>},
    {"Edit", 0x4048, 0, builtInStandIn<OM_WK_EDIT>},
    {"Button", 0x4048, 0, builtInStandIn<OM_WK_BUTTON>},
    {"ListBox", 0x4048, 0, builtInStandIn<OM_WK_LISTBOX>},
    {"ComboBox", 0x4048, 0, builtInStandIn<OM_WK_COMBOBOX>},
    {"Static", 0x4048, 0, builtInStandIn<OM_WK_STATIC>},
    {"MDIClient", 0x4040, 0, builtInStandIn<OM_WK_MDICLIENT>},
    {"ScrollBar", 0x4040, 0, builtInStandIn<OM_WK_SCROLLBAR>},
};

OmClassRecord *predefinedClasses()
{
    struct Table {
        OmClassRecord classes[kBuiltInCount];
        Table()
        {
            for (int i = 0; i < kBuiltInCount; ++i) {
                OmClassRecord &c = classes[i];
                c.style = kBuiltIns[i].style;
                c.wndProc = kBuiltIns[i].proc;
                c.wndExtra = c.reportedWndExtra = kBuiltIns[i].wndExtra;
                std::strcpy(c.name, kBuiltIns[i].name);
                c.builtIn = true;
            }
        }
    };
    // Never destroyed: windows of these classes may outlive static
    // destruction at exit.
    static Table *omPreDefinedWndClasses = new Table;
    return omPreDefinedWndClasses->classes;
}

// The class's whole name: registration keeps it in nameMemory, while the
// inline field holds at most 31 characters.
const char *fullName(const OmClassRecord &c)
{
    return c.longName ? c.longName : c.name;
}

// Under windowClassMutex.
bool setupClassArrayLocked(bool grow)
{
    if (omWndClasses && !grow)
        return true;
    int size = omWndClasses ? MAXCLASSES * 2 : kInitialSlots;
    auto **table = static_cast<OmClassRecord **>(std::calloc(size, sizeof(OmClassRecord *)));
    if (!table)
        return false;
    if (omWndClasses) {
        std::memcpy(table, omWndClasses, MAXCLASSES * sizeof(OmClassRecord *));
        std::free(omWndClasses);
    } else {
        OmClassRecord *pre = predefinedClasses();
        for (int i = 0; i < kBuiltInCount; ++i)
            table[i] = &pre[i];
    }
    omWndClasses = table;
    MAXCLASSES = size;
    return true;
}

// The X pixel of a class background (a brush, or a colour index + 1).
bool backgroundPixelOf(HBRUSH background, unsigned long *pixel)
{
    if (!omDisplay || !background)
        return false;
    uintptr_t v = reinterpret_cast<uintptr_t>(background);
    COLORREF colour;
    if (v > 0 && v < 32) {
        colour = GetSysColor(static_cast<int>(v - 1));
    } else if (omIsHandleOfKind(v, OM_KIND_BRUSH)) {
        LOGBRUSH lb{};
        if (GetObjectA(background, sizeof lb, &lb) != sizeof lb)
            return false;
        colour = lb.lbColor;
    } else {
        return false;
    }
    XColor xc{};
    xc.red = static_cast<unsigned short>(GetRValue(colour) * 257);
    xc.green = static_cast<unsigned short>(GetGValue(colour) * 257);
    xc.blue = static_cast<unsigned short>(GetBValue(colour) * 257);
    xc.flags = DoRed | DoGreen | DoBlue;
    int screen = DefaultScreen(omDisplay);
    if (!XAllocColor(omDisplay, DefaultColormap(omDisplay, screen), &xc))
        return false;
    *pixel = xc.pixel;
    return true;
}

HGLOBAL lockedCopy(const char *s, const char **locked)
{
    size_t n = std::strlen(s);
    HGLOBAL h = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, n + 1);
    if (!h)
        return nullptr;
    char *p = static_cast<char *>(GlobalLock(h));
    std::memcpy(p, s, n + 1);
    *locked = p;
    return h;
}

void freeLocked(HGLOBAL h)
{
    if (!h)
        return;
    while (GlobalUnlock(h)) {
    }
    GlobalFree(h);
}

void freeClass(OmClassRecord *c)
{
    c->wndProc = nullptr;
    freeLocked(c->menuNameMemory);
    freeLocked(c->nameMemory);
    c->~OmClassRecord();
    XtFree(reinterpret_cast<char *>(c));
}

ATOM registerClass(const WNDCLASSEXA &wc, bool ex, const char *function)
{
    if (!wc.lpszClassName)
        return 0;
    omEnsureDisplay();
    if (omFindClass(wc.hInstance, wc.lpszClassName))
        return 0;
    int clsExtra = wc.cbClsExtra > 0 ? wc.cbClsExtra : 0;
    auto *mem = XtCalloc(1, sizeof(OmClassRecord) + clsExtra);
    if (!mem) {
        omError(OmDiag::OutOfMemory, function);
        return 0;
    }
    auto *c = new (mem) OmClassRecord;
    c->style = wc.style;
    c->wndProc = wc.lpfnWndProc;
    c->clsExtra = clsExtra;
    c->wndExtra = c->reportedWndExtra = wc.cbWndExtra > 0 ? wc.cbWndExtra : 0;
    c->instance = wc.hInstance;
    c->icon = wc.hIcon;
    c->cursor = wc.hCursor;
    c->background = wc.hbrBackground;
    if (ex)
        c->smallIcon = wc.hIconSm;
    c->reparentProc = omDefReparentProc;
    c->hasBackgroundPixel = backgroundPixelOf(c->background, &c->backgroundPixel);
    if (wc.lpszMenuName && !isOrdinal(wc.lpszMenuName))
        c->menuNameMemory = lockedCopy(wc.lpszMenuName, &c->menuName);
    else
        c->menuName = wc.lpszMenuName;
    std::strncpy(c->name, wc.lpszClassName, sizeof c->name - 1);
    c->nameMemory = lockedCopy(wc.lpszClassName, &c->longName);

    std::lock_guard lock(om::core::windowClassMutex());
    int slot = -1;
    if (setupClassArrayLocked(false))
        for (int i = MAXCLASSES - 1; i >= kBuiltInCount; --i)
            if (!omWndClasses[i]) {
                slot = i;
                break;
            }
    if (slot < 0) {
        int old = MAXCLASSES;
        if (!setupClassArrayLocked(true)) {
            omError(OmDiag::ClassTableFull, function);
            freeClass(c);
            return 0;
        }
        slot = old;
    }
    omWndClasses[slot] = c;
    return AddAtomA(wc.lpszClassName);
}

WNDCLASSEXA fromClass(const WNDCLASSA *wc)
{
    WNDCLASSEXA ex{};
    ex.cbSize = sizeof ex;
    ex.style = wc->style;
    ex.lpfnWndProc = wc->lpfnWndProc;
    ex.cbClsExtra = wc->cbClsExtra;
    ex.cbWndExtra = wc->cbWndExtra;
    ex.hInstance = wc->hInstance;
    ex.hIcon = wc->hIcon;
    ex.hCursor = wc->hCursor;
    ex.hbrBackground = wc->hbrBackground;
    ex.lpszMenuName = wc->lpszMenuName;
    ex.lpszClassName = wc->lpszClassName;
    return ex;
}

// The class of a live window for the class-data entries, with their
// thread rule.
OmClassRecord *classOf(HWND hwnd, const char *function)
{
    if (!omThreadRuleOk(function))
        return nullptr;
    if (!omIsWindow(hwnd))
        return nullptr;
    return ConvertHWNDtoPtr(hwnd)->windowClass;
}

bool isPointerIndex(int index)
{
    switch (index) {
    case GCLP_WNDPROC: case GCLP_HMODULE: case GCLP_HICON: case GCLP_HCURSOR:
    case GCLP_HBRBACKGROUND: case GCLP_MENUNAME: case GCLP_HICONSM:
        return true;
    default:
        return false;
    }
}

ULONG_PTR getClassValue(OmClassRecord &c, int index, bool wide, const char *function)
{
    switch (index) {
    case GCL_STYLE: return c.style;
    case GCL_CBCLSEXTRA: return static_cast<ULONG_PTR>(c.clsExtra);
    case GCL_CBWNDEXTRA: return static_cast<ULONG_PTR>(c.reportedWndExtra);
    case GCLP_WNDPROC: return reinterpret_cast<ULONG_PTR>(c.wndProc);
    case GCLP_HMODULE: return reinterpret_cast<ULONG_PTR>(c.instance);
    case GCLP_HICON: return reinterpret_cast<ULONG_PTR>(c.icon);
    case GCLP_HCURSOR: return reinterpret_cast<ULONG_PTR>(c.cursor);
    case GCLP_HBRBACKGROUND: return reinterpret_cast<ULONG_PTR>(c.background);
    case GCLP_MENUNAME: return reinterpret_cast<ULONG_PTR>(c.menuName);
    case GCLP_HICONSM: return reinterpret_cast<ULONG_PTR>(c.smallIcon);
    default: break;
    }
    int size = wide ? 8 : 4;
    if (index >= 0 && index <= c.clsExtra - size)
        return wide ? omReadExtra<ULONG_PTR>(c.extra(), index)
                    : omReadExtra<DWORD>(c.extra(), index);
    omError(OmDiag::IndexOutOfRange, function, index);
    return 0;
}

ULONG_PTR setClassValue(HWND hwnd, OmClassRecord &c, int index, LONG_PTR value, bool wide,
                        const char *function)
{
    auto swap = [](auto &field, auto v) {
        auto old = field;
        field = v;
        return old;
    };
    switch (index) {
    case GCL_STYLE: return swap(c.style, static_cast<UINT>(value));
    case GCL_CBCLSEXTRA: return static_cast<ULONG_PTR>(c.clsExtra);  // read-only
    case GCL_CBWNDEXTRA:
        return static_cast<ULONG_PTR>(swap(c.reportedWndExtra, static_cast<int>(value)));
    case GCLP_WNDPROC:
        return reinterpret_cast<ULONG_PTR>(swap(c.wndProc, reinterpret_cast<WNDPROC>(value)));
    case GCLP_HMODULE:
        omDebugWarning(OmDiag::UnsupportedValue, "SetClassLong");
        return 0;
    case GCLP_HICON:
        // FIXME: the shell's icon follows with the icon module.
        return reinterpret_cast<ULONG_PTR>(swap(c.icon, reinterpret_cast<HICON>(value)));
    case GCLP_HICONSM:
        return reinterpret_cast<ULONG_PTR>(swap(c.smallIcon, reinterpret_cast<HICON>(value)));
    case GCLP_HCURSOR:
        return reinterpret_cast<ULONG_PTR>(swap(c.cursor, reinterpret_cast<HCURSOR>(value)));
    case GCLP_HBRBACKGROUND: {
        uintptr_t v = static_cast<uintptr_t>(value);
        if (!omIsHandleOfKind(v, OM_KIND_BRUSH) && !(v > 0 && v < 32)) {
            omDebugWarning(OmDiag::NotABrush, "SetClassLong", "GCL_HBRBACKGROUND");
            return 0;
        }
        auto old = swap(c.background, reinterpret_cast<HBRUSH>(value));
        c.hasBackgroundPixel = backgroundPixelOf(c.background, &c.backgroundPixel);
        WindowRecord *w = omWindowRecord(hwnd);
        if (w && w->canvasWidget && c.hasBackgroundPixel)
            XtVaSetValues(w->canvasWidget, XmNbackground, c.backgroundPixel, nullptr);
        return reinterpret_cast<ULONG_PTR>(old);
    }
    case GCLP_MENUNAME:
        return reinterpret_cast<ULONG_PTR>(swap(c.menuName, reinterpret_cast<LPCSTR>(value)));
    default: break;
    }
    int size = wide ? 8 : 4;
    if (index >= 0 && index <= c.clsExtra - size) {
        if (wide)
            return omSwapExtra<ULONG_PTR>(c.extra(), index, static_cast<ULONG_PTR>(value));
        return omSwapExtra<DWORD>(c.extra(), index, static_cast<DWORD>(value));
    }
    omError(OmDiag::IndexOutOfRange, function, index);
    return 0;
}

}  // namespace

extern "C" OLMO_API int _omSetupClassArray(int grow)
{
    std::lock_guard lock(om::core::windowClassMutex());
    return setupClassArrayLocked(grow != 0) ? 1 : 0;
}

extern "C" OLMO_API void omSetDefaultClassCursors(HCURSOR cursor)
{
    OmClassRecord *pre = predefinedClasses();
    for (int i = 0; i < kBuiltInCount; ++i)
        pre[i].cursor = cursor;
}

extern "C" OLMO_API void omSetBuiltInClassProcs(int slot, WNDPROC proc,
                                                int (*createWidgets)(HWND),
                                                int (*reparent)(HWND, int))
{
    if (slot < 0 || slot >= kBuiltInCount)
        return;
    OmClassRecord &c = predefinedClasses()[slot];
    c.wndProc = proc;
    c.createWidgetsProc = createWidgets;
    c.reparentProc = reparent;
}

extern "C" OLMO_API OmClassRecord *omFindClass(HINSTANCE instance, LPCSTR name)
{
    {
        std::lock_guard lock(om::core::windowClassMutex());
        if (!setupClassArrayLocked(false))
            return nullptr;
    }
    if (!name)
        return nullptr;
    char buffer[64];
    if (isOrdinal(name)) {
        uintptr_t atom = reinterpret_cast<uintptr_t>(name);
        if (atom == kDialogOrdinal) {
            name = "WC_DIALOG";
        } else {
            if (!GetAtomNameA(static_cast<ATOM>(atom & 0xFFFF), buffer, sizeof buffer))
                return nullptr;
            name = buffer;
        }
    }
    std::lock_guard lock(om::core::windowClassMutex());
    for (int i = 0; i < MAXCLASSES; ++i) {
        OmClassRecord *c = omWndClasses[i];
        if (c && ((c->style & CS_GLOBALCLASS) || c->instance == instance) &&
            _qel_strcasecmp(fullName(*c), name) == 0)
            return c;
    }
    return nullptr;
}

extern "C" OLMO_API int omIsStandardControl(const WindowRecord *r)
{
    return r && ((r->kind >= OM_WK_EDIT && r->kind <= OM_WK_STATIC) || r->kind == OM_WK_SCROLLBAR);
}

extern "C" OLMO_API int omIsPredefinedChildClass(const WindowRecord *r)
{
    if (!r)
        return 0;
    switch (r->kind) {
    case 2: case 3: case 4: case 5: case 6: case 8: case 10: case 11: case 12: case 13:
    case 14: case 15: case 16: case 19: case 21:
        return 1;
    default:
        return 0;
    }
}

extern "C" ATOM WINAPI RegisterClassA(const WNDCLASSA *lpWndClass)
{
    if (!lpWndClass)
        return 0;
    return registerClass(fromClass(lpWndClass), false, "RegisterClass");
}

extern "C" ATOM WINAPI RegisterClassExA(const WNDCLASSEXA *lpwcx)
{
    if (!lpwcx)
        return 0;
    return registerClass(*lpwcx, true, "RegisterClassEx");
}

namespace {
// A wide resource name as UTF-8 (ordinals pass through); free with freeName.
LPCSTR narrowName(LPCWSTR name)
{
    if (!name || reinterpret_cast<uintptr_t>(name) <= 0xFFFF)
        return reinterpret_cast<LPCSTR>(name);
    return _omMBStringFromWideString(name);
}
void freeName(LPCSTR name)
{
    if (!isOrdinal(name))
        std::free(const_cast<char *>(name));
}
// A new LocalAlloc'ed wide copy of a name (ordinals pass through).
LPCWSTR wideCopy(LPCSTR name, bool *failed)
{
    if (isOrdinal(name))
        return reinterpret_cast<LPCWSTR>(name);
    std::u16string w = om::core::toWide(name);
    auto *out = static_cast<WCHAR *>(LocalAlloc(LMEM_ZEROINIT, (w.size() + 1) * sizeof(WCHAR)));
    if (!out) {
        *failed = true;
        return nullptr;
    }
    std::memcpy(out, w.data(), w.size() * sizeof(WCHAR));
    return out;
}
}  // namespace

extern "C" ATOM WINAPI RegisterClassW(const WNDCLASSW *lpWndClass)
{
    if (!lpWndClass)
        return RegisterClassA(nullptr);
    WNDCLASSA a;
    std::memcpy(&a, lpWndClass, sizeof a);
    a.lpszMenuName = narrowName(lpWndClass->lpszMenuName);
    a.lpszClassName = narrowName(lpWndClass->lpszClassName);
    ATOM atom = RegisterClassA(&a);
    freeName(a.lpszMenuName);
    freeName(a.lpszClassName);
    return atom;
}

extern "C" ATOM WINAPI RegisterClassExW(const WNDCLASSEXW *lpwcx)
{
    if (!lpwcx)
        return RegisterClassExA(nullptr);
    WNDCLASSEXA a;
    std::memcpy(&a, lpwcx, sizeof a);
    a.lpszMenuName = narrowName(lpwcx->lpszMenuName);
    a.lpszClassName = narrowName(lpwcx->lpszClassName);
    ATOM atom = RegisterClassExA(&a);
    freeName(a.lpszMenuName);
    freeName(a.lpszClassName);
    return atom;
}

extern "C" BOOL WINAPI UnregisterClassA(LPCSTR lpClassName, HINSTANCE)
{
    if (!lpClassName)
        return FALSE;
    char buffer[64];
    if (isOrdinal(lpClassName)) {
        if (!GetAtomNameA(static_cast<ATOM>(reinterpret_cast<uintptr_t>(lpClassName)), buffer,
                          sizeof buffer))
            return FALSE;
        lpClassName = buffer;
    }
    std::lock_guard lock(om::core::windowClassMutex());
    if (!setupClassArrayLocked(false))
        return FALSE;
    for (int i = kBuiltInCount; i < MAXCLASSES; ++i) {
        OmClassRecord *c = omWndClasses[i];
        if (!c || _qel_strcasecmp(fullName(*c), lpClassName) != 0)
            continue;
        bool inUse = false;
        uint64_t h = 0;
        for (omNextWindowHandle(&h); h && !inUse; omNextWindowHandle(&h)) {
            auto *w = static_cast<WindowRecord *>(omHandleRecord(h, OM_KIND_WINDOW));
            inUse = w && w->windowClass == c;
        }
        if (inUse)
            continue;
        omWndClasses[i] = nullptr;
        freeClass(c);
        return TRUE;
    }
    return FALSE;
}

extern "C" BOOL WINAPI UnregisterClassW(LPCWSTR lpClassName, HINSTANCE hInstance)
{
    LPCSTR name = narrowName(lpClassName);
    BOOL ok = UnregisterClassA(name, hInstance);
    freeName(name);
    return ok;
}

namespace {
void fillInfo(const OmClassRecord &c, WNDCLASSEXA &out)
{
    out.style = c.style;
    out.lpfnWndProc = c.wndProc;
    out.cbClsExtra = c.clsExtra;
    out.cbWndExtra = c.wndExtra;
    out.hInstance = c.instance;
    out.hIcon = c.icon;
    out.hCursor = c.cursor;
    out.hbrBackground = c.background;
    out.lpszMenuName = c.menuName;
    out.lpszClassName = fullName(c);
    out.hIconSm = c.smallIcon;
}
}  // namespace

extern "C" BOOL WINAPI GetClassInfoA(HINSTANCE hInstance, LPCSTR lpClassName,
                                     LPWNDCLASSA lpWndClass)
{
    if (!lpClassName || !lpWndClass)
        return FALSE;
    OmClassRecord *c = omFindClass(hInstance, lpClassName);
    if (!c)
        return FALSE;
    WNDCLASSEXA ex{};
    fillInfo(*c, ex);
    lpWndClass->lpszMenuName = ex.lpszMenuName;
    lpWndClass->lpszClassName = ex.lpszClassName;
    lpWndClass->style = ex.style;
    lpWndClass->lpfnWndProc = ex.lpfnWndProc;
    lpWndClass->cbClsExtra = ex.cbClsExtra;
    lpWndClass->cbWndExtra = ex.cbWndExtra;
    lpWndClass->hInstance = ex.hInstance;
    lpWndClass->hIcon = ex.hIcon;
    lpWndClass->hCursor = ex.hCursor;
    lpWndClass->hbrBackground = ex.hbrBackground;
    if (hInstance && reinterpret_cast<uintptr_t>(lpClassName) == kDialogOrdinal)
        return FindAtomA(lpClassName) & 0xFFFF;
    return TRUE;
}

extern "C" BOOL WINAPI GetClassInfoExA(HINSTANCE hInstance, LPCSTR lpszClass, LPWNDCLASSEXA lpwcx)
{
    if (!lpszClass || !lpwcx)
        return FALSE;
    OmClassRecord *c = omFindClass(hInstance, lpszClass);
    if (!c)
        return FALSE;
    UINT size = lpwcx->cbSize;
    fillInfo(*c, *lpwcx);
    lpwcx->cbSize = size;
    if (!hInstance)
        return TRUE;
    ATOM atom = FindAtomA(lpszClass);
    return atom ? atom : TRUE;
}

extern "C" BOOL WINAPI GetClassInfoW(HINSTANCE hInstance, LPCWSTR lpClassName,
                                     LPWNDCLASSW lpWndClass)
{
    if (!lpWndClass)
        return FALSE;
    LPCSTR name = narrowName(lpClassName);
    WNDCLASSA a{};
    BOOL r = GetClassInfoA(hInstance, name, &a);
    freeName(name);
    if (!r)
        return FALSE;
    std::memcpy(lpWndClass, &a, sizeof a - 2 * sizeof(LPCSTR));
    bool failed = false;
    LPCWSTR menu = wideCopy(a.lpszMenuName, &failed);
    LPCWSTR cls = failed ? nullptr : wideCopy(a.lpszClassName, &failed);
    if (failed) {
        if (menu && !isOrdinal(reinterpret_cast<LPCSTR>(menu)))
            LocalFree(const_cast<WCHAR *>(menu));
        return FALSE;
    }
    lpWndClass->lpszMenuName = menu;
    lpWndClass->lpszClassName = cls;
    return r;
}

extern "C" BOOL WINAPI GetClassInfoExW(HINSTANCE hInstance, LPCWSTR lpszClass, LPWNDCLASSEXW lpwcx)
{
    if (!lpwcx)
        return FALSE;
    LPCSTR name = narrowName(lpszClass);
    WNDCLASSEXA a{};
    BOOL r = GetClassInfoExA(hInstance, name, &a);
    freeName(name);
    if (!r)
        return FALSE;
    UINT size = lpwcx->cbSize;
    std::memcpy(lpwcx, &a, sizeof a);
    lpwcx->cbSize = size;
    bool failed = false;
    lpwcx->lpszMenuName = wideCopy(a.lpszMenuName, &failed);
    lpwcx->lpszClassName = failed ? nullptr : wideCopy(a.lpszClassName, &failed);
    return failed ? FALSE : r;
}

extern "C" int WINAPI GetClassNameA(HWND hWnd, LPSTR lpClassName, int nMaxCount)
{
    if (!omThreadRuleOk("GetClassName"))
        return 0;
    if (!omIsWindow(hWnd) || !lpClassName || nMaxCount < 1)
        return 0;
    const char *name = fullName(*ConvertHWNDtoPtr(hWnd)->windowClass);
    size_t n = std::min(std::strlen(name), static_cast<size_t>(nMaxCount - 1));
    std::memcpy(lpClassName, name, n);
    lpClassName[n] = '\0';
    return static_cast<int>(n);
}

extern "C" int WINAPI GetClassNameW(HWND hWnd, LPWSTR lpClassName, int nMaxCount)
{
    if (!omThreadRuleOk("GetClassNameW"))
        return 0;
    if (!omIsWindow(hWnd) || !lpClassName || nMaxCount < 1)
        return 0;
    std::u16string w = om::core::toWide(fullName(*ConvertHWNDtoPtr(hWnd)->windowClass));
    size_t n = std::min(w.size(), static_cast<size_t>(nMaxCount - 1));
    std::memcpy(lpClassName, w.data(), n * sizeof(WCHAR));
    lpClassName[n] = 0;
    return static_cast<int>(n);
}

// The 32-bit calls refuse the pointer indexes rather than truncate a
// pointer (their 32-bit names do not exist, as on Win64).
extern "C" DWORD WINAPI GetClassLongA(HWND hWnd, int nIndex)
{
    OmClassRecord *c = classOf(hWnd, "GetClassLong");
    if (!c)
        return 0;
    if (isPointerIndex(nIndex)) {
        omError(OmDiag::IndexOutOfRange, "GetClassLong", nIndex);
        return 0;
    }
    return static_cast<DWORD>(getClassValue(*c, nIndex, false, "GetClassLong"));
}

extern "C" DWORD WINAPI SetClassLongA(HWND hWnd, int nIndex, LONG dwNewLong)
{
    OmClassRecord *c = classOf(hWnd, "SetClassLong");
    if (!c)
        return 0;
    if (isPointerIndex(nIndex)) {
        omError(OmDiag::IndexOutOfRange, "SetClassLong", nIndex);
        return 0;
    }
    return static_cast<DWORD>(setClassValue(hWnd, *c, nIndex, dwNewLong, false, "SetClassLong"));
}

extern "C" DWORD WINAPI GetClassLongW(HWND hWnd, int nIndex)
{
    return GetClassLongA(hWnd, nIndex);
}

extern "C" DWORD WINAPI SetClassLongW(HWND hWnd, int nIndex, LONG dwNewLong)
{
    return SetClassLongA(hWnd, nIndex, dwNewLong);
}

extern "C" ULONG_PTR WINAPI GetClassLongPtrA(HWND hWnd, int nIndex)
{
    OmClassRecord *c = classOf(hWnd, "GetClassLongPtr");
    return c ? getClassValue(*c, nIndex, true, "GetClassLongPtr") : 0;
}

extern "C" ULONG_PTR WINAPI SetClassLongPtrA(HWND hWnd, int nIndex, LONG_PTR dwNewLong)
{
    OmClassRecord *c = classOf(hWnd, "SetClassLongPtr");
    return c ? setClassValue(hWnd, *c, nIndex, dwNewLong, true, "SetClassLongPtr") : 0;
}

extern "C" ULONG_PTR WINAPI GetClassLongPtrW(HWND hWnd, int nIndex)
{
    return GetClassLongPtrA(hWnd, nIndex);
}

extern "C" ULONG_PTR WINAPI SetClassLongPtrW(HWND hWnd, int nIndex, LONG_PTR dwNewLong)
{
    return SetClassLongPtrA(hWnd, nIndex, dwNewLong);
}

extern "C" WORD WINAPI GetClassWord(HWND hWnd, int nIndex)
{
    OmClassRecord *c = classOf(hWnd, "GetClassWord");
    if (!c)
        return 0;
    if (nIndex < 0 || nIndex > c->clsExtra - 2) {
        omError(OmDiag::IndexOutOfRange, "GetClassWord", nIndex);
        return 0;
    }
    return omReadExtra<WORD>(c->extra(), nIndex);
}

extern "C" WORD WINAPI SetClassWord(HWND hWnd, int nIndex, WORD wNewWord)
{
    OmClassRecord *c = classOf(hWnd, "SetClassWord");
    if (!c)
        return 0;
    if (nIndex < 0 || nIndex > c->clsExtra - 2) {
        omError(OmDiag::IndexOutOfRange, "SetClassWord", nIndex);
        return 0;
    }
    return omSwapExtra<WORD>(c->extra(), nIndex, wNewWord);
}
