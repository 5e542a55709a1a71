// Window destruction: DestroyWindow's messages and unlinking, the release
// of the record (at once, or once no other thread is attached), and the
// queue of widgets that the X event loop destroys one at a time, since a
// widget is never destroyed inside an API call.
#include "core/omwindow.h"

#include "kernel/omdisplay.h"
#include "kernel/omstring.h"
#include "kernel/omwidgetmap.h"

#include <Xm/Xm.h>
#include <X11/Intrinsic.h>
#include <X11/Xutil.h>

#include <cstdlib>

extern "C" {
OLMO_API int omSyncDestroyWidget = 0;
}

namespace {

struct DestroyNode {
    DestroyNode *next;
    Widget widget;
};
DestroyNode *omDestroyQueue = nullptr;  // newest first
std::atomic<int> markedCount{0};
bool workProcArmed = false;  // under destroyWidgetQueueMutex

Boolean idleDrainWorkProc(XtPointer)
{
    omRunIdleDrain();
    std::lock_guard lock(om::core::destroyWidgetQueueMutex());
    if (omDestroyQueue || markedCount.load() > 0)
        return False;
    workProcArmed = false;
    return True;
}

// Runs the drain from Xt's idle time for programs that pump X with Xt.
void armIdleDrain()
{
    if (!omAppContext)
        return;
    std::lock_guard lock(om::core::destroyWidgetQueueMutex());
    if (workProcArmed)
        return;
    workProcArmed = true;
    XtAppAddWorkProc(omAppContext, idleDrainWorkProc, nullptr);
}

void obscure(WindowRecord &w)
{
    w.style &= ~WS_VISIBLE;
    for (WindowRecord *c = omWindowRecord(w.firstChild); c; c = omWindowRecord(c->nextSibling))
        obscure(*c);
}

void dropPendingEvents(Widget widget)
{
    if (!widget || !XtIsRealized(widget) || !omDisplay)
        return;
    XEvent e;
    while (XCheckWindowEvent(omDisplay, XtWindow(widget), ~0L, &e)) {
    }
}

// Strips the widgets: unmapped from the handle and queued for destruction
// (the application shell only loses its window contents and is hidden).
void releaseWidgets(WindowRecord &w)
{
    if (!w.shellWidget)
        return;
    omClearWidgetData(w.shellWidget);
    omClearWidgetData(w.frameWidget);
    if (w.canvasWidget != w.frameWidget)
        omClearWidgetData(w.canvasWidget);
    Widget doomed = w.shellWidget;
    if (w.shellWidget == omAppShell) {
        if (XtIsRealized(omAppShell))
            XWithdrawWindow(omDisplay, XtWindow(omAppShell), DefaultScreen(omDisplay));
        XtVaSetValues(omAppShell, XmNmappedWhenManaged, False, nullptr);
        if (w.iconWindow)
            XtVaSetValues(omAppShell, XmNiconWindow, None, nullptr);
        doomed = w.frameWidget ? w.frameWidget : w.canvasWidget;
    }
    w.shellWidget = w.frameWidget = w.canvasWidget = nullptr;
    if (doomed && !w.widgetDestroyQueued) {
        w.widgetDestroyQueued = true;
        XtSetSensitive(doomed, True);
        omQueueDestroyWidget(doomed);
    }
}

BOOL destroyWindow(HWND hwnd, bool notifyParent);

void destroyChildrenAndOwned(HWND hwnd, WindowRecord &w)
{
    while (omIsWindow(w.firstChild))
        destroyWindow(w.firstChild, false);
    for (HWND h = omTopLevelWindowList; h;) {
        WindowRecord *r = omWindowRecord(h);
        if (!r)
            break;
        HWND next = r->nextSibling;
        if (r->owner == hwnd)
            destroyWindow(h, true);
        h = next;
    }
}

BOOL destroyWindow(HWND hwnd, bool notifyParent)
{
    if (!omIsWindow(hwnd)) {
        omDebugWarning(OmDiag::BadWindowHandle, "DestroyWindow", hwnd);
        return FALSE;
    }
    if (hwnd == GetDesktopWindow())
        return FALSE;  // lives as long as the process
    WindowRecord &w = *ConvertHWNDtoPtr(hwnd);
    if (w.destroying)
        return TRUE;
    w.destroying = true;
    if (omTopMostOverlappedWindow == hwnd)
        omTopMostOverlappedWindow = nullptr;
    bool foreign = w.exStyle & kOmExForeign;
    WindowRecord *parent = omWindowRecord(w.parent);
    bool comboChild = (w.style & WS_CHILD) && parent && parent->kind == OM_WK_COMBOBOX;
    OmAppLock appLock;
    if (!comboChild && !foreign)
        omHideWindow(hwnd);
    if (notifyParent && (w.style & WS_CHILD) && parent && !(w.exStyle & WS_EX_NOPARENTNOTIFY))
        om::core::send(w.parent, WM_PARENTNOTIFY,
                       MAKEWPARAM(WM_DESTROY, static_cast<WORD>(w.idOrMenu)),
                       reinterpret_cast<LPARAM>(hwnd));
    // A window going away lets go of the pointer.
    if (GetCapture() == hwnd)
        ReleaseCapture();
    if (!comboChild)
        om::core::send(hwnd, WM_DESTROY, 0, 0);
    obscure(w);
    omRemoveWindowFromSiblingList(hwnd, &w);
    destroyChildrenAndOwned(hwnd, w);
    w.firstChild = w.lastChild = nullptr;
    om::core::send(hwnd, WM_NCDESTROY, 0, 0);
    dropPendingEvents(w.shellWidget);
    dropPendingEvents(w.frameWidget);
    if (w.canvasWidget != w.frameWidget)
        dropPendingEvents(w.canvasWidget);
    // Its paint entry and lite children go now, while the handle still
    // names this window; a slot handed out again must not inherit them.
    omPaintDeleteItem(hwnd);
    omPaintDeleteLiteKid(hwnd);
    omPaintCleanAll(hwnd);
    // FIXME: the window's queued messages and timers are removed here as
    // those lists learn to forget a window.
    uint32_t index = omHandleIndex(omHandleValue(hwnd));
    if (omIsUserInterfaceThreadSupported()) {
        // Other threads may still hold the record: it stops being a window
        // now, and is freed by the idle drain once none is attached.
        w.markedForDeletion = true;
        releaseWidgets(w);
        ++markedCount;
        // Last touch of the record: from here the drain may free it.
        omHandlesTable[index].kind.store(kOmKindDyingWindow, std::memory_order_release);
        armIdleDrain();
        return TRUE;
    }
    om::core::releaseRecord(hwnd, &w);
    return TRUE;
}

}  // namespace

namespace om::core {

void releaseRecord(HWND hwnd, WindowRecord *w)
{
    releaseWidgets(*w);
    if (w->iconWindow && omDisplay)
        XDestroyWindow(omDisplay, w->iconWindow);
    if (w->updateRegion)
        XDestroyRegion(w->updateRegion);
    if (!w->textIsOrdinal)
        XtFree(w->text);
    std::free(w->hScrollData);
    std::free(w->vScrollData);
    freeProperties(*w);
    for (OmThreadNode *n = w->attachedThreads; n;) {
        OmThreadNode *next = n->next;
        std::free(n);
        n = next;
    }
    w->~WindowRecord();
    XtFree(reinterpret_cast<char *>(w));
    omForgetWindowInfo(hwnd);
    omFreeHandle(omHandleValue(hwnd));
}

}  // namespace om::core

extern "C" BOOL WINAPI DestroyWindow(HWND hWnd)
{
    WindowRecord *w = omWindowRecord(hWnd);
    if (w) {
        if (!(w->exStyle & kOmExForeign) && !omThreadRuleOk("DestroyWindow"))
            return FALSE;
        // FIXME: a child of a mini-dock frame closes the frame instead,
        // once child windows land.
    }
    return omDestroyWindow(hWnd, 0, 1);
}

extern "C" OLMO_API BOOL omDestroyWindow(HWND hwnd, int, int notifyParent)
{
    return om::core::guarded("DestroyWindow", FALSE,
                             [&] { return destroyWindow(hwnd, notifyParent != 0); });
}

extern "C" OLMO_API void omObscureWindow(HWND hwnd)
{
    if (WindowRecord *w = omWindowRecord(hwnd))
        obscure(*w);
}

extern "C" OLMO_API void omQueueDestroyWidget(Widget widget)
{
    if (omSyncDestroyWidget) {
        XtDestroyWidget(widget);
        return;
    }
    auto *n = static_cast<DestroyNode *>(std::malloc(sizeof(DestroyNode)));
    if (!n) {
        omError(OmDiag::OutOfMemory, "omQueueDestroyWidget");
        return;
    }
    {
        std::lock_guard lock(om::core::destroyWidgetQueueMutex());
        *n = {omDestroyQueue, widget};
        omDestroyQueue = n;
    }
    armIdleDrain();
}

extern "C" OLMO_API void *omDestroyQueued(void)
{
    std::lock_guard lock(om::core::destroyWidgetQueueMutex());
    return omDestroyQueue;
}

extern "C" OLMO_API void omDestroyQueuedWidget(void)
{
    DestroyNode *oldest = nullptr;
    {
        std::lock_guard lock(om::core::destroyWidgetQueueMutex());
        DestroyNode **p = &omDestroyQueue;
        if (!*p)
            return;
        while ((*p)->next)
            p = &(*p)->next;
        oldest = *p;
        *p = nullptr;
    }
    if (oldest->widget) {
        OmAppLock appLock;
        XtSetSensitive(oldest->widget, False);
        XtDestroyWidget(oldest->widget);
    }
    std::free(oldest);
}

extern "C" OLMO_API void omDestroyHWNDsMarkedForDeletion(void)
{
    if (markedCount.load() == 0)
        return;
    for (uint32_t i = omLastHandleAlloced.load(); i >= 1; --i) {
        auto *w = static_cast<WindowRecord *>(omHandleRecord(i, kOmKindDyingWindow));
        if (!w || !w->markedForDeletion)
            continue;
        {
            std::lock_guard lock(w->attachMutex);
            if (w->attachedThreads)
                continue;
        }
        om::core::releaseRecord(omHwndFromIndex(i), w);
        --markedCount;
    }
}

extern "C" OLMO_API void omRunIdleDrain(void)
{
    // Xt destroys widgets in two phases, the second at the end of the
    // dispatch that asked for it; outside any dispatch it runs at once.
    while (omDestroyQueued())
        omDestroyQueuedWidget();
    omDestroyHWNDsMarkedForDeletion();
}
