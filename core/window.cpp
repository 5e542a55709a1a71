// Window creation (the common path of CreateWindowEx, the creation
// messages, non-toolkit windows, the window-kind setters), the conversion
// of handles to records with thread attachment, and the widget-map helpers.
// The widget trees of top-level windows are built in popupwindow.cpp.
#include "core/omwindow.h"

#include "kernel/omdisplay.h"
#include "kernel/omplaceholder.h"
#include "kernel/omstring.h"
#include "kernel/omwidgetmap.h"

#include <Xm/Xm.h>
#include <X11/Intrinsic.h>
#include <X11/IntrinsicP.h>
#include <X11/Shell.h>
#include <X11/Xutil.h>

#include <cstdlib>
#include <new>

extern "C" {
OLMO_API HWND omTopLevelWindowList = nullptr;
}

namespace {

int bAllGLWindow = 0;
int bCreatingMDIChild = 0;

}  // namespace


// ---------------------------------------------------------------------------
// Handles, records and threads.

extern "C" OLMO_API WindowRecord *ConvertHWNDtoPtr(HWND hwnd)
{
    auto *w = static_cast<WindowRecord *>(
        omHandlesTable[omHandleIndex(omHandleValue(hwnd))].record.load(std::memory_order_acquire));
    // The creator and the main thread are never attached: pthread_self is
    // cheaper than asking who the caller is.
    static const pthread_t mainPthread = [] {
        OmThreadRecord *m = omThreadRecordFromHandle(_omThreadMainThread());
        return m ? m->pthread : pthread_t{};
    }();
    if (!w || pthread_equal(w->creator, pthread_self()) || pthread_equal(mainPthread, pthread_self()))
        return w;
    if (omIsUserInterfaceThreadSupported()) {
        static const uint64_t mainThread = _omThreadMainThread();
        uint64_t current = omHandleValue(GetCurrentThread());
        if (current != mainThread && current != w->thread)
            omAttachHWNDtoThread(current, w, hwnd);
    }
    return w;
}

extern "C" OLMO_API void omAttachHWNDtoThread(uint64_t thread, WindowRecord *w, HWND hwnd)
{
    OmThreadRecord *t = omThreadRecordFromHandle(thread);
    if (!t || !w)
        return;
    OmAttachNode *theirs = nullptr;
    {
        std::lock_guard lock(w->attachMutex);
        for (OmThreadNode *n = w->attachedThreads; n; n = n->next)
            if (n->thread == thread)
                return;
        auto *mine = static_cast<OmThreadNode *>(std::malloc(sizeof(OmThreadNode)));
        theirs = static_cast<OmAttachNode *>(std::malloc(sizeof(OmAttachNode)));
        if (!mine || !theirs) {
            std::free(mine);
            std::free(theirs);
            return;
        }
        *mine = {thread, w->attachedThreads};
        w->attachedThreads = mine;
    }
    // Only now the thread's list: its lock is always taken before a
    // window's, never inside one.
    std::lock_guard tlock(t->windowListMutex);
    *theirs = {omHandleValue(hwnd), t->windows};
    t->windows = theirs;
}

extern "C" OLMO_API void omDetachHWNDfromThread(HANDLE thread)
{
    uint64_t h = omHandleValue(thread);
    OmThreadRecord *t = omThreadRecordFromHandle(h);
    if (!t)
        return;
    std::lock_guard tlock(t->windowListMutex);
    while (OmAttachNode *n = t->windows) {
        t->windows = n->next;
        // A destroyed window waiting for its threads keeps its slot under
        // the dying kind, so it is still found here.
        auto *w = static_cast<WindowRecord *>(omHandleRecord(n->hwnd, OM_KIND_WINDOW));
        if (!w)
            w = static_cast<WindowRecord *>(omHandleRecord(n->hwnd, kOmKindDyingWindow));
        if (w) {
            std::lock_guard wlock(w->attachMutex);
            for (OmThreadNode **p = &w->attachedThreads; *p; p = &(*p)->next)
                if ((*p)->thread == h) {
                    OmThreadNode *gone = *p;
                    *p = gone->next;
                    std::free(gone);
                    break;
                }
        }
        std::free(n);
    }
}

extern "C" OLMO_API HWND omWindowFromXWindow(int x, int y, Window xwindow, HWND hwnd)
{
    if (!hwnd)
        hwnd = omWindowToWidget(4, xwindow);
    if (!hwnd)
        return nullptr;
    WindowRecord *w = omWindowRecord(hwnd);
    if (w && w->kind == OM_WK_COMBOBOX && (w->style & 0x2)) {
        RECT r{};
        POINT p{x, y};
        if (GetWindowRect(hwnd, &r) && PtInRect(&r, p))
            return w->firstChild;
    }
    return hwnd;
}

extern "C" OLMO_API void omSetWidgetUserData(HWND hwnd, Widget widget, int role)
{
    if (role != 1 && role != 2 && role != 5)
        return;
    bool inMdiChild = false;
    for (WindowRecord *w = omWindowRecord(hwnd); w && !inMdiChild; w = omWindowRecord(w->parent))
        inMdiChild = w->kind == OM_WK_MDICHILD;
    long info = role;
    if (inMdiChild)
        info = role == 1 ? 3 : role == 2 ? 4 : 6;
    omSetWidgetUserDataInfo(widget, info);
}

extern "C" OLMO_API WNDPROC _omGetWndProc(HINSTANCE instance, LPCSTR className)
{
    OmClassRecord *c = className ? omFindClass(instance, className) : nullptr;
    if (!c) {
        omDebugWarning(OmDiag::UnknownClass, "CreateWindowEx");
        return nullptr;
    }
    return c->wndProc;
}

// ---------------------------------------------------------------------------
// Record helpers.

namespace om::core {

LRESULT send(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    return SendMessageA(hwnd, msg, wParam, lParam);
}

void setRecordText(WindowRecord &w, LPCSTR text)
{
    if (w.text && !w.textIsOrdinal && text == w.text)
        return;
    char *old = w.textIsOrdinal ? nullptr : w.text;
    if (text && reinterpret_cast<uintptr_t>(text) <= 0xFFFF) {
        w.text = const_cast<char *>(text);
        w.textIsOrdinal = true;
    } else {
        size_t n = text ? std::strlen(text) : 0;
        w.text = XtMalloc(n + 2);
        std::memcpy(w.text, text ? text : "", n);
        w.text[n] = w.text[n + 1] = '\0';
        w.textIsOrdinal = false;
    }
    XtFree(old);
}

std::u16string toWide(const char *utf8)
{
    if (!utf8 || !*utf8)
        return {};
    int n = MultiByteToWideChar(CP_UTF8, 0, utf8, -1, nullptr, 0);
    if (n <= 1)
        return {};
    std::u16string out(static_cast<size_t>(n), u'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8, -1, reinterpret_cast<LPWSTR>(out.data()), n);
    out.resize(static_cast<size_t>(n - 1));
    return out;
}

const char *recordText(const WindowRecord &w)
{
    return w.textIsOrdinal || !w.text ? "" : w.text;
}

}  // namespace om::core

namespace {

void linkWindow(HWND hwnd, WindowRecord &w, HWND parentArg)
{
    std::lock_guard lock(om::core::windowSiblingMutex());
    if (!(w.style & WS_CHILD)) {
        HWND owner = nullptr;
        for (HWND p = parentArg; WindowRecord *r = omWindowRecord(p); p = r->parent) {
            owner = p;
            if (!(r->style & WS_CHILD))
                break;
        }
        w.owner = owner;
        w.parent = nullptr;
        w.nextSibling = omTopLevelWindowList;
        if (WindowRecord *first = omWindowRecord(omTopLevelWindowList))
            first->prevSibling = hwnd;
        omTopLevelWindowList = hwnd;
        return;
    }
    if (!w.parent)
        w.parent = GetDesktopWindow();
    WindowRecord *p = omWindowRecord(w.parent);
    if (!p)
        return;
    if (!p->firstChild) {
        p->firstChild = p->lastChild = hwnd;
    } else {
        w.prevSibling = p->lastChild;
        if (WindowRecord *last = omWindowRecord(p->lastChild))
            last->nextSibling = hwnd;
        p->lastChild = hwnd;
    }
}

// Builds the record; null (with its diagnostic) when that fails.
HWND allocateWindow(DWORD exStyle, OmClassRecord *c, WindowRecord **out)
{
    (void)exStyle;
    char *mem = XtCalloc(1, sizeof(WindowRecord) + c->wndExtra);
    if (!mem) {
        omError(OmDiag::OutOfMemory, "CreateWindowEx");
        return nullptr;
    }
    auto *w = new (mem) WindowRecord;
    w->extraBytes = c->wndExtra;
    uint32_t index = omAllocHandle(OM_KIND_WINDOW, w);
    if (!index) {
        w->~WindowRecord();
        XtFree(mem);
        omError(OmDiag::HandleTableFull, "CreateWindowEx");
        return nullptr;
    }
    w->self = omHwndFromIndex(index);
    *out = w;
    return w->self;
}

}  // namespace

extern "C" OLMO_API int omEnableGLForAllWindows(int on)
{
    int old = bAllGLWindow;
    bAllGLWindow = on;
    return old;
}

extern "C" OLMO_API HWND _omCreateWindowEx(DWORD exStyle, LPCSTR className, LPCSTR windowName,
                                           DWORD style, int x, int y, int cx, int cy, HWND parent,
                                           HMENU menu, HINSTANCE instance, LPVOID createParams,
                                           int motionless)
{
    return om::core::guarded("CreateWindowEx", static_cast<HWND>(nullptr), [&]() -> HWND {
        if (bAllGLWindow)
            exStyle |= kOmExOpenGL;
        bool foreign = exStyle & kOmExForeign;
        if (!foreign && !omThreadRuleOk("_omCreateWindowEx"))
            return nullptr;
        if (exStyle & kOmExOpenGL) {
            cx = cx ? cx : 2;
            cy = cy ? cy : 2;
        }
        OmClassRecord *c = className ? omFindClass(instance, className) : nullptr;
        if (!c) {
            omDebugWarning(OmDiag::UnknownClass, "CreateWindowEx",
                           reinterpret_cast<uintptr_t>(className) > 0xFFFF ? className : "#ordinal");
            return nullptr;
        }
        if (!foreign)
            omEnsureDisplay();
        OmAppLock appLock;
        WindowRecord *w = nullptr;
        HWND hwnd = allocateWindow(exStyle, c, &w);
        if (!hwnd)
            return nullptr;
        if (style & WS_POPUP)
            style &= ~WS_CHILD;
        w->windowClass = c;
        w->style = style;
        w->exStyle = exStyle;
        w->x = x;
        w->y = y;
        w->cx = w->requestedCx = cx;
        w->cy = w->requestedCy = cy;
        w->parent = parent;
        if (!std::strcmp(omServerVendor, "Silicon Graphics") ||
            !std::strcmp(omServerVendor, "NetManage XoftWare for Windows"))
            w->configured = true;
        w->thread = omHandleValue(GetCurrentThread());
        w->creator = pthread_self();
        w->motionless = motionless != 0;
        w->redraw = true;
        linkWindow(hwnd, *w, parent);
        w->idOrMenu = reinterpret_cast<UINT_PTR>(menu);
        w->instance = instance;
        w->wndProc = c->wndProc;
        w->createParams = createParams;
        if (!foreign)
            w->updateRegion = XCreateRegion();
        om::core::setRecordText(*w, windowName);
        w->kind = OM_WK_PLAIN;
        if (bCreatingMDIChild) {
            w->exposed = true;
            w->kind = OM_WK_MDICHILD;
            bCreatingMDIChild = 0;
        } else if ((style & WS_CHILD)) {
            WindowRecord *p = omWindowRecord(w->parent);
            if (p && p->kind == OM_WK_MDICHILD)
                w->exposed = true;
        }

        int built;
        if (style & WS_POPUP)
            built = om::core::createPopupWindow(hwnd, *w, parent);
        else if (!(style & WS_CHILD))
            built = om::core::createOverlappedWindow(hwnd, *w);
        else if (!w->parent)
            built = -1;
        else {
            if (c->menuName)
                omDebugWarning(OmDiag::ChildWithClassMenu, "CreateWindow");
            built = omCreateChildWindow(hwnd, 1);
        }
        if (built != 0) {
            if (omIsWindow(hwnd))
                DestroyWindow(hwnd);
            return nullptr;
        }
        if (!omIsWindow(hwnd))
            return nullptr;
        if ((style & WS_CHILD) && (style & WS_DISABLED) && !foreign)
            EnableWindow(hwnd, FALSE);
        if (c->hasBackgroundPixel && w->canvasWidget)
            XtVaSetValues(w->canvasWidget, XmNbackground, c->backgroundPixel, nullptr);
        if (exStyle & WS_EX_ACCEPTFILES)
            DragAcceptFiles(hwnd, TRUE);
        return hwnd;
    });
}

extern "C" HWND WINAPI CreateWindowExA(DWORD dwExStyle, LPCSTR lpClassName, LPCSTR lpWindowName,
                                       DWORD dwStyle, int X, int Y, int nWidth, int nHeight,
                                       HWND hWndParent, HMENU hMenu, HINSTANCE hInstance,
                                       LPVOID lpParam)
{
    if (!(dwExStyle & kOmExForeign) && !omThreadRuleOk("CreateWindowEx"))
        return nullptr;
    return _omCreateWindowEx(dwExStyle, lpClassName, lpWindowName, dwStyle, X, Y, nWidth, nHeight,
                             hWndParent, hMenu, hInstance, lpParam, 0);
}

extern "C" HWND WINAPI CreateWindowExW(DWORD dwExStyle, LPCWSTR lpClassName, LPCWSTR lpWindowName,
                                       DWORD dwStyle, int X, int Y, int nWidth, int nHeight,
                                       HWND hWndParent, HMENU hMenu, HINSTANCE hInstance,
                                       LPVOID lpParam)
{
    auto narrow = [](LPCWSTR s) -> LPCSTR {
        if (!s || reinterpret_cast<uintptr_t>(s) <= 0xFFFF)
            return reinterpret_cast<LPCSTR>(s);
        return _omMBStringFromWideString(s);
    };
    auto release = [](LPCSTR s) {
        if (reinterpret_cast<uintptr_t>(s) > 0xFFFF)
            std::free(const_cast<char *>(s));
    };
    LPCSTR cls = narrow(lpClassName);
    LPCSTR name = narrow(lpWindowName);
    HWND hwnd = CreateWindowExA(dwExStyle, cls, name, dwStyle, X, Y, nWidth, nHeight, hWndParent,
                                hMenu, hInstance, lpParam);
    release(cls);
    release(name);
    return hwnd;
}

// ---------------------------------------------------------------------------
// Window kinds of the common controls.

namespace {
void setKind(HWND hwnd, uint8_t kind)
{
    if (WindowRecord *w = omWindowRecord(hwnd))
        w->kind = kind;
}
}  // namespace

#define OM_KIND_SETTER(fn, kind)                                                           \
    extern "C" OLMO_API void fn(HWND hwnd) { setKind(hwnd, kind); }
OM_KIND_SETTER(omSetWinTypeToolbar, OM_WK_TOOLBAR)
OM_KIND_SETTER(omSetWinTypeTreeview, OM_WK_TREEVIEW)
OM_KIND_SETTER(omSetWinTypeListview, OM_WK_LISTVIEW)
OM_KIND_SETTER(omSetWinTypeStatus, OM_WK_STATUS)
OM_KIND_SETTER(omSetWinTypeUpdown, OM_WK_UPDOWN)
OM_KIND_SETTER(omSetWinTypeHeader, OM_WK_HEADER)
OM_KIND_SETTER(omSetWinTypeProgress, OM_WK_PROGRESS)
OM_KIND_SETTER(omSetWinTypeRichedit, OM_WK_RICHEDIT)
OM_KIND_SETTER(omSetWinTypeTabCtrl, OM_WK_TABCTRL)
OM_KIND_SETTER(omSetWinTypeMiniDockFrame, OM_WK_MINIDOCKFRAME)
#undef OM_KIND_SETTER

extern "C" OLMO_API void omSetWinTypeTooltips(HWND hwnd)
{
    setKind(hwnd, OM_WK_TOOLTIPS);
    WindowRecord *w = omWindowRecord(hwnd);
    if (w && w->shellWidget && bIsMWMRunning)
        XtVaSetValues(w->shellWidget, XmNoverrideRedirect, True, nullptr);
}

extern "C" OLMO_API int omIsMiniDockFrame(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    return w && w->kind == OM_WK_MINIDOCKFRAME;
}

// ---------------------------------------------------------------------------
// Non-toolkit windows: a window record around a widget the program built
// itself, so that the program can treat that widget as a window.

namespace {

constexpr long kNonToolkitMask = 0x64A07F;
constexpr long kNonToolkitMaskMotionless = 0x64803F;
const HINSTANCE kNonToolkitInstance = reinterpret_cast<HINSTANCE>(0x20);
constexpr const char *kNonToolkitClass = "OLMO_NON_OLMO_WINDOW_CLASS";

LRESULT CALLBACK omNonOlmoWindowProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    if (msg == WM_SETFOCUS)
        if (WindowRecord *w = omWindowRecord(hwnd); w && w->firstChild)
            SetFocus(w->firstChild);
    return DefWindowProcA(hwnd, msg, wParam, lParam);
}

// FIXME: runs the program's message loop from the widget's first event
// once message retrieval lands; until then the events reach only Xt.
void omNonOlmoWindowEventHandler(Widget, XtPointer, XEvent *, Boolean *) {}

void setNonToolkitHandler(WindowRecord &w, HWND hwnd, bool on)
{
    long mask = w.motionless ? kNonToolkitMaskMotionless : kNonToolkitMask;
    Widget widgets[] = {w.canvasWidget, w.frameWidget != w.canvasWidget ? w.frameWidget : nullptr,
                        (w.style & WS_CHILD) ? w.shellWidget : nullptr};
    for (Widget widget : widgets) {
        if (!widget)
            continue;
        if (on)
            XtInsertEventHandler(widget, mask, False, omNonOlmoWindowEventHandler, hwnd,
                                 XtListHead);
        else
            XtRemoveEventHandler(widget, mask, False, omNonOlmoWindowEventHandler, hwnd);
    }
}

}  // namespace

extern "C" OLMO_API HWND omCreateNonOlmoWindow(Widget widget, int x, int y, int cx, int cy)
{
    if (!widget)
        return nullptr;
    static const bool registered = [] {
        WNDCLASSA wc{};
        wc.lpfnWndProc = omNonOlmoWindowProc;
        wc.hInstance = kNonToolkitInstance;
        wc.lpszClassName = kNonToolkitClass;
        return RegisterClassA(&wc) != 0;
    }();
    (void)registered;
    OmClassRecord *c = omFindClass(kNonToolkitInstance, kNonToolkitClass);
    if (!c)
        return nullptr;
    OmAppLock lock;
    WindowRecord *w = nullptr;
    HWND hwnd = allocateWindow(0, c, &w);
    if (!hwnd) {
        omError(OmDiag::HandleTableFull, "omCreateNonOlmoWindow");
        return nullptr;
    }
    w->wndProc = omNonOlmoWindowProc;
    w->x = x;
    w->y = y;
    w->cx = w->nonToolkitCx = cx;
    w->cy = w->nonToolkitCy = cy;
    w->exStyle = kOmExNonToolkit;
    w->style = WS_VISIBLE | WS_OVERLAPPEDWINDOW;
    w->thread = omHandleValue(GetCurrentThread());
    w->creator = pthread_self();
    w->instance = kNonToolkitInstance;
    w->updateRegion = XCreateRegion();
    w->windowClass = c;
    w->configured = true;
    w->redraw = true;
    om::core::setRecordText(*w, "NonOlmoWindow");
    w->canvasWidget = widget;
    w->frameWidget = XtParent(widget) ? XtParent(widget) : widget;
    Widget shell = widget;
    while (!XtIsShell(shell) && XtParent(shell))
        shell = XtParent(shell);
    w->shellWidget = shell;
    omSetWidgetHWND(w->shellWidget, hwnd);
    if (w->frameWidget != w->shellWidget)
        omSetWidgetHWND(w->frameWidget, hwnd);
    if (w->canvasWidget != w->frameWidget && w->canvasWidget != w->shellWidget)
        omSetWidgetHWND(w->canvasWidget, hwnd);
    if (XtIsRealized(widget)) {
        XWindowAttributes a{};
        XGetWindowAttributes(XtDisplay(widget), XtWindow(widget), &a);
        XSelectInput(XtDisplay(widget), XtWindow(widget), a.your_event_mask | kNonToolkitMask);
    }
    XtInsertEventHandler(widget, kNonToolkitMask, False, omNonOlmoWindowEventHandler, hwnd,
                         XtListHead);
    return hwnd;
}

extern "C" OLMO_API int omFreeNonOlmoWindow(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w)
        return 0;
    omRunIdleDrain();
    OmAppLock lock;
    XtRemoveEventHandler(w->canvasWidget, kNonToolkitMask, False, omNonOlmoWindowEventHandler,
                         hwnd);
    omClearWidgetData(w->shellWidget);
    omClearWidgetData(w->frameWidget);
    omClearWidgetData(w->canvasWidget);
    // The widgets are the program's: the record lets go of them untouched.
    w->shellWidget = w->frameWidget = w->canvasWidget = nullptr;
    om::core::releaseRecord(hwnd, w);
    return 1;
}

extern "C" OLMO_API void omSetNonOlmoWindowEventHandler(HWND hwnd, WindowRecord *w, int on)
{
    if (w)
        setNonToolkitHandler(*w, hwnd, on != 0);
}
