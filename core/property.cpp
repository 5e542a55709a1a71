// Window properties.  Each window keeps its properties in a local list
// with pointer-sized values, which answers every call of this process; the
// low 32 bits of each value are mirrored in an X property of the window's
// shell so that other processes on the display can read them.
#include "core/omwindow.h"

#include "kernel/omatom.h"
#include "kernel/omdisplay.h"
#include "kernel/omstring.h"
#include "kernel/omwidgetmap.h"

#include <X11/Intrinsic.h>
#include <X11/Xatom.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

struct OmPropNode {
    OmPropNode *next;
    ATOM atom;    // the key when given as an atom, else 0
    char *name;   // malloc'ed copy of a string key, else null
    HANDLE value;
};

extern "C" {
OLMO_API int omDialogPropFix = 1;
}

namespace {

bool isString(LPCSTR key)
{
    return reinterpret_cast<uintptr_t>(key) > 0xFFFF;
}

ATOM atomOf(LPCSTR key)
{
    return static_cast<ATOM>(reinterpret_cast<uintptr_t>(key) & 0xFFFF);
}

// Names compare ignoring case, as Windows' atoms do.  Under propertyMutex.
OmPropNode **findNode(WindowRecord &w, LPCSTR key)
{
    for (OmPropNode **p = &w.properties; *p; p = &(*p)->next) {
        OmPropNode *n = *p;
        if (isString(key) ? n->name && _qel_strcasecmp(n->name, key) == 0
                          : !n->name && n->atom == atomOf(key))
            return p;
    }
    return nullptr;
}

bool localSet(WindowRecord &w, LPCSTR key, HANDLE value)
{
    std::lock_guard lock(om::core::propertyMutex());
    if (OmPropNode **p = findNode(w, key)) {
        (*p)->value = value;
        return true;
    }
    auto *n = static_cast<OmPropNode *>(std::malloc(sizeof(OmPropNode)));
    if (!n)
        return false;
    n->atom = isString(key) ? 0 : atomOf(key);
    n->name = isString(key) ? strdup(key) : nullptr;
    if (isString(key) && !n->name) {
        std::free(n);
        return false;
    }
    n->value = value;
    n->next = w.properties;
    w.properties = n;
    return true;
}

HANDLE localGet(WindowRecord &w, LPCSTR key)
{
    std::lock_guard lock(om::core::propertyMutex());
    OmPropNode **p = findNode(w, key);
    return p ? (*p)->value : nullptr;
}

HANDLE localRemove(WindowRecord &w, LPCSTR key)
{
    std::lock_guard lock(om::core::propertyMutex());
    OmPropNode **p = findNode(w, key);
    if (!p)
        return nullptr;
    OmPropNode *n = *p;
    *p = n->next;
    HANDLE value = n->value;
    std::free(n->name);
    std::free(n);
    return value;
}

// The X window and the global atom that carry a property for other
// processes: the window's own shell, or, inside a pop-up (a dialog), the
// pop-up's shell under a name made unique by the window's handle, so that
// the controls of one dialog do not overwrite each other's properties.
bool mirrorTarget(HWND hwnd, WindowRecord &w, LPCSTR key, bool create, Window *xwindow, Atom *xatom)
{
    if (!omDisplay)
        return false;
    HWND last = hwnd;
    for (HWND p = GetParent(hwnd); WindowRecord *r = omWindowRecord(p); p = GetParent(p)) {
        last = p;
        if (r->style & WS_POPUP)
            break;
    }
    WindowRecord *top = omWindowRecord(last);
    Widget widget = w.shellWidget;
    ATOM global;
    if (omDialogPropFix && last != hwnd && top && (top->style & WS_POPUP)) {
        char name[300];
        unsigned handle = static_cast<unsigned>(omHandleValue(hwnd));
        if (isString(key))
            std::snprintf(name, sizeof name, "%s__%u", key, handle);
        else
            std::snprintf(name, sizeof name, "%u__%u", atomOf(key), handle);
        global = create ? GlobalAddAtomA(name) : GlobalFindAtomA(name);
        widget = top->shellWidget;
    } else {
        if (w.kind == OM_WK_BUTTON && (w.style & 7))
            if (WindowRecord *p = omWindowRecord(w.parent))
                widget = p->shellWidget;
        global = !isString(key) ? atomOf(key) : create ? GlobalAddAtomA(key) : GlobalFindAtomA(key);
    }
    if (!widget || !XtIsRealized(widget) || !global)
        return false;
    omGlobalAtomsInitXAtom();
    *xatom = omGlobalAtomsFindXatom(global);
    *xwindow = XtWindow(widget);
    return *xatom != None;
}

}  // namespace

namespace om::core {
void freeProperties(WindowRecord &w)
{
    std::lock_guard lock(propertyMutex());
    while (OmPropNode *n = w.properties) {
        w.properties = n->next;
        std::free(n->name);
        std::free(n);
    }
}
}  // namespace om::core

extern "C" BOOL WINAPI SetPropA(HWND hWnd, LPCSTR lpString, HANDLE hData)
{
    if (!omIsWindow(hWnd) || !lpString)
        return FALSE;
    if (!omThreadRuleOk("SetProp"))
        return FALSE;
    WindowRecord &w = *ConvertHWNDtoPtr(hWnd);
    if (!localSet(w, lpString, hData))
        return FALSE;
    Window xwindow;
    Atom xatom;
    if (mirrorTarget(hWnd, w, lpString, true, &xwindow, &xatom)) {
        // Format 32 items are longs on the client side; the server keeps
        // the low 32 bits, all that other processes can see.
        long value = static_cast<long>(static_cast<uint32_t>(reinterpret_cast<uintptr_t>(hData)));
        XChangeProperty(omDisplay, xwindow, xatom, omGlobalAtomType, 32, PropModeReplace,
                        reinterpret_cast<unsigned char *>(&value), 1);
        XFlush(omDisplay);
    }
    return TRUE;
}

extern "C" HANDLE WINAPI GetPropA(HWND hWnd, LPCSTR lpString)
{
    if (!omIsWindow(hWnd) || !lpString)
        return nullptr;
    if (!omThreadRuleOk("GetProp"))
        return nullptr;
    return localGet(*ConvertHWNDtoPtr(hWnd), lpString);
}

extern "C" HANDLE WINAPI RemovePropA(HWND hWnd, LPCSTR lpString)
{
    if (!omIsWindow(hWnd) || !lpString)
        return nullptr;
    if (!omThreadRuleOk("RemoveProp"))
        return nullptr;
    WindowRecord &w = *ConvertHWNDtoPtr(hWnd);
    HANDLE value = localRemove(w, lpString);
    Window xwindow;
    Atom xatom;
    if (mirrorTarget(hWnd, w, lpString, false, &xwindow, &xatom)) {
        XDeleteProperty(omDisplay, xwindow, xatom);
        XFlush(omDisplay);
    }
    return value;
}

namespace {
// Calls f(keyAsString, value) for each property, newest first, on a
// snapshot, so that the callback may change the list.  -1 when empty.
template <class F> int enumLocal(HWND hwnd, F &&f)
{
    struct Item {
        ATOM atom;
        std::string name;
        bool isName;
        HANDLE value;
    };
    std::vector<Item> items;
    {
        std::lock_guard lock(om::core::propertyMutex());
        for (OmPropNode *n = ConvertHWNDtoPtr(hwnd)->properties; n; n = n->next)
            items.push_back({n->atom, n->name ? n->name : "", n->name != nullptr, n->value});
    }
    int result = -1;
    for (Item &i : items) {
        LPCSTR key = i.isName ? i.name.c_str() : reinterpret_cast<LPCSTR>(static_cast<uintptr_t>(i.atom));
        result = f(key, i.value);
        if (!result)
            break;
    }
    return result;
}
}  // namespace

extern "C" int WINAPI EnumPropsA(HWND hWnd, PROPENUMPROCA lpEnumFunc)
{
    if (!omIsWindow(hWnd) || !lpEnumFunc)
        return -1;
    if (!omThreadRuleOk("EnumProps"))
        return -1;
    return enumLocal(hWnd, [&](LPCSTR key, HANDLE v) { return lpEnumFunc(hWnd, key, v); });
}

extern "C" int WINAPI EnumPropsExA(HWND hWnd, PROPENUMPROCEXA lpEnumFunc, LPARAM lParam)
{
    if (!omIsWindow(hWnd) || !lpEnumFunc)
        return -1;
    if (!omThreadRuleOk("EnumPropsEx"))
        return -1;
    return enumLocal(hWnd, [&](LPCSTR key, HANDLE v) {
        return lpEnumFunc(hWnd, const_cast<LPSTR>(key), v, static_cast<ULONG_PTR>(lParam));
    });
}

namespace {
// A wide key as UTF-8 (atoms pass through); release with dropKey.
LPCSTR narrowKey(LPCWSTR key)
{
    if (!key || reinterpret_cast<uintptr_t>(key) <= 0xFFFF)
        return reinterpret_cast<LPCSTR>(key);
    return _omMBStringFromWideString(key);
}
void dropKey(LPCSTR key)
{
    if (isString(key))
        std::free(const_cast<char *>(key));
}
template <class Proc> int enumWide(HWND hWnd, Proc &&call)
{
    if (!omIsWindow(hWnd))
        return -1;
    if (!omThreadRuleOk("EnumProps"))
        return -1;
    return enumLocal(hWnd, [&](LPCSTR key, HANDLE v) {
        if (!isString(key))
            return call(reinterpret_cast<LPWSTR>(const_cast<char *>(key)), v);
        std::u16string wide = om::core::toWide(key);
        return call(reinterpret_cast<LPWSTR>(wide.data()), v);
    });
}
}  // namespace

extern "C" BOOL WINAPI SetPropW(HWND hWnd, LPCWSTR lpString, HANDLE hData)
{
    LPCSTR key = narrowKey(lpString);
    BOOL ok = SetPropA(hWnd, key, hData);
    dropKey(key);
    return ok;
}

extern "C" HANDLE WINAPI GetPropW(HWND hWnd, LPCWSTR lpString)
{
    LPCSTR key = narrowKey(lpString);
    HANDLE v = GetPropA(hWnd, key);
    dropKey(key);
    return v;
}

extern "C" HANDLE WINAPI RemovePropW(HWND hWnd, LPCWSTR lpString)
{
    LPCSTR key = narrowKey(lpString);
    HANDLE v = RemovePropA(hWnd, key);
    dropKey(key);
    return v;
}

extern "C" int WINAPI EnumPropsW(HWND hWnd, PROPENUMPROCW lpEnumFunc)
{
    if (!lpEnumFunc)
        return -1;
    return enumWide(hWnd, [&](LPWSTR key, HANDLE v) { return lpEnumFunc(hWnd, key, v); });
}

extern "C" int WINAPI EnumPropsExW(HWND hWnd, PROPENUMPROCEXW lpEnumFunc, LPARAM lParam)
{
    if (!lpEnumFunc)
        return -1;
    return enumWide(hWnd, [&](LPWSTR key, HANDLE v) {
        return lpEnumFunc(hWnd, key, v, static_cast<ULONG_PTR>(lParam));
    });
}
