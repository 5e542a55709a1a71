// Enumeration and search over the window tree: EnumWindows,
// EnumChildWindows, EnumThreadWindows and the FindWindow family.  Every
// walk takes a snapshot of the list it is about to visit, so a callback
// may destroy or create windows without the walk following stale links.
#include "core/omwindow.h"

#include "kernel/omstring.h"

#include <string>
#include <vector>

namespace {

// The windows of one stacking list, first to last, under the sibling
// lock so that creation on another thread cannot tear the copy.
std::vector<HWND> snapshot(HWND first)
{
    std::vector<HWND> list;
    std::lock_guard lock(om::core::windowSiblingMutex());
    // The bound stops a list that a faulty hand edit made circular.
    HWND h = first;
    for (WindowRecord *r = omWindowRecord(h); r && list.size() < 0x10000; r = omWindowRecord(h)) {
        list.push_back(h);
        h = r->nextSibling;
    }
    return list;
}

std::vector<HWND> childrenOf(HWND parent)
{
    WindowRecord *p = omWindowRecord(parent);
    return snapshot(p ? p->firstChild : nullptr);
}

// Every live window handle in slot order.
std::vector<HWND> allWindows()
{
    std::vector<HWND> out;
    uint64_t h = 0;
    for (omNextWindowHandle(&h); h; omNextWindowHandle(&h))
        out.push_back(reinterpret_cast<HWND>(static_cast<uintptr_t>(h)));
    return out;
}

bool isOverlapped(const WindowRecord &w)
{
    return !(w.style & (WS_CHILD | WS_POPUP));
}

// Depth first: a window, then all of its descendants, then its next
// sibling.  Pop-ups are not children and are passed over, except in the
// top-level list itself.  FALSE from the callback ends the whole walk.
bool enumChildren(const std::vector<HWND> &list, WNDENUMPROC proc, LPARAM lParam,
                  bool topLevel = false)
{
    for (HWND h : list) {
        WindowRecord *w = omWindowRecord(h);
        if (!w || (!topLevel && (w->style & WS_POPUP)))
            continue;
        if (!proc(h, lParam))
            return false;
        if (!enumChildren(childrenOf(h), proc, lParam))
            return false;
    }
    return true;
}

// A slot of kind 24 (a window-like object) stands for the first
// overlapped window.
HWND windowLikeStandIn(HWND hwnd)
{
    if (omHandleValue(hwnd) > 0xFFFF ||
        !omIsHandleOfKind(omHandleValue(hwnd), OM_KIND_WINDOWLIKE))
        return nullptr;
    for (HWND h : allWindows())
        if (WindowRecord *w = omWindowRecord(h); w && isOverlapped(*w))
            return h;
    return nullptr;
}

// A class argument is a name or an atom in the low word (MAKEINTATOM).
bool classMatches(const WindowRecord &w, LPCSTR cls)
{
    if (!cls)
        return true;
    if (!w.windowClass)
        return false;
    std::string name;
    if (IS_INTRESOURCE(cls)) {
        char buffer[256];
        UINT n = GetAtomNameA(static_cast<ATOM>(reinterpret_cast<uintptr_t>(cls)), buffer,
                              sizeof buffer);
        if (!n)
            return false;
        name.assign(buffer, n);
    } else {
        name = cls;
    }
    const char *own = w.windowClass->longName ? w.windowClass->longName : w.windowClass->name;
    return omStrcmpCaseless(name.c_str(), own) == 0;
}

bool matches(HWND h, LPCSTR cls, LPCSTR title)
{
    WindowRecord *w = omWindowRecord(h);
    if (!w || !classMatches(*w, cls))
        return false;
    return !title || omStrcmpCaseless(title, om::core::recordText(*w)) == 0;
}

HWND findAmongOverlapped(LPCSTR cls, LPCSTR title)
{
    for (HWND h : allWindows()) {
        WindowRecord *w = omWindowRecord(h);
        if (w && isOverlapped(*w) && matches(h, cls, title))
            return h;
    }
    return nullptr;
}

HWND findInList(HWND first, LPCSTR cls, LPCSTR title)
{
    for (HWND h : snapshot(first))
        if (matches(h, cls, title))
            return h;
    return nullptr;
}

// A wide argument in UTF-8, keeping a null pointer null and an atom an atom.
struct NarrowArg {
    std::string text;
    LPCSTR ptr = nullptr;
    explicit NarrowArg(LPCWSTR wide)
    {
        if (!wide)
            return;
        if (IS_INTRESOURCE(wide)) {
            ptr = reinterpret_cast<LPCSTR>(wide);
            return;
        }
        int n = WideCharToMultiByte(CP_UTF8, 0, wide, -1, nullptr, 0, nullptr, nullptr);
        text.assign(n > 0 ? static_cast<size_t>(n) : 1, '\0');
        if (n > 0)
            WideCharToMultiByte(CP_UTF8, 0, wide, -1, text.data(), n, nullptr, nullptr);
        ptr = text.c_str();
    }
};

}  // namespace

extern "C" BOOL WINAPI EnumWindows(WNDENUMPROC lpEnumFunc, LPARAM lParam)
{
    // TRUE means the callback stopped the walk, FALSE that it ran to the
    // end of the list (or had nothing to do): callers built on this
    // library test for the early stop.
    if (!lpEnumFunc)
        return FALSE;
    return om::core::guarded("EnumWindows", FALSE, [&]() -> BOOL {
        for (HWND h : snapshot(omTopLevelWindowList))
            if (omIsWindow(h) && !lpEnumFunc(h, lParam))
                return TRUE;
        return FALSE;
    });
}

extern "C" BOOL WINAPI EnumChildWindows(HWND hWndParent, WNDENUMPROC lpEnumFunc, LPARAM lParam)
{
    HWND parent = nullptr;
    if (hWndParent) {
        parent = omIsWindow(hWndParent) ? hWndParent : windowLikeStandIn(hWndParent);
        if (!parent) {
            omDebugWarning(OmDiag::BadParent, "EnumChildWindows", hWndParent);
            return FALSE;
        }
    }
    if (!lpEnumFunc)
        return FALSE;
    return om::core::guarded("EnumChildWindows", FALSE, [&]() -> BOOL {
        // No parent: every top-level window and everything under it.
        if (!parent)
            return enumChildren(snapshot(omTopLevelWindowList), lpEnumFunc, lParam, true);
        return enumChildren(childrenOf(parent), lpEnumFunc, lParam) ? TRUE : FALSE;
    });
}

extern "C" BOOL WINAPI EnumThreadWindows(DWORD dwThreadId, WNDENUMPROC lpfn, LPARAM lParam)
{
    if (!lpfn)
        return FALSE;
    return om::core::guarded("EnumThreadWindows", FALSE, [&]() -> BOOL {
        bool any = false;
        for (HWND h : snapshot(omTopLevelWindowList)) {
            WindowRecord *w = omWindowRecord(h);
            if (!w || (w->style & WS_CHILD))
                continue;
            OmThreadRecord *t = omThreadRecordFromHandle(w->thread);
            if (!t || t->threadId != dwThreadId)
                continue;
            any = true;
            if (!lpfn(h, lParam))
                return FALSE;
        }
        return any ? TRUE : FALSE;
    });
}

extern "C" HWND WINAPI FindWindowExA(HWND hWndParent, HWND hWndChildAfter, LPCSTR lpszClass,
                                     LPCSTR lpszWindow)
{
    return om::core::guarded("FindWindowEx", static_cast<HWND>(nullptr), [&]() -> HWND {
        if (hWndChildAfter) {
            WindowRecord *after = omWindowRecord(hWndChildAfter);
            if (!after) {
                omDebugWarning(OmDiag::BadWindowHandle, "FindWindowEx", hWndChildAfter);
                return nullptr;
            }
            return findInList(after->nextSibling, lpszClass, lpszWindow);
        }
        // The desktop as parent means the top-level windows, as null does.
        if (!hWndParent || hWndParent == GetDesktopWindow())
            return findAmongOverlapped(lpszClass, lpszWindow);
        if (WindowRecord *p = omWindowRecord(hWndParent))
            return findInList(p->firstChild, lpszClass, lpszWindow);
        if (omHandleValue(hWndParent) <= 0xFFFF &&
            omIsHandleOfKind(omHandleValue(hWndParent), OM_KIND_WINDOWLIKE))
            return findAmongOverlapped(lpszClass, lpszWindow);
        omDebugWarning(OmDiag::BadParent, "FindWindowEx", hWndParent);
        return nullptr;
    });
}

extern "C" HWND WINAPI FindWindowExW(HWND hWndParent, HWND hWndChildAfter, LPCWSTR lpszClass,
                                     LPCWSTR lpszWindow)
{
    return om::core::guarded("FindWindowEx", static_cast<HWND>(nullptr), [&]() -> HWND {
        NarrowArg cls(lpszClass), title(lpszWindow);
        return FindWindowExA(hWndParent, hWndChildAfter, cls.ptr, title.ptr);
    });
}

extern "C" HWND WINAPI FindWindowA(LPCSTR lpClassName, LPCSTR lpWindowName)
{
    return FindWindowExA(nullptr, nullptr, lpClassName, lpWindowName);
}

extern "C" HWND WINAPI FindWindowW(LPCWSTR lpClassName, LPCWSTR lpWindowName)
{
    return FindWindowExW(nullptr, nullptr, lpClassName, lpWindowName);
}
