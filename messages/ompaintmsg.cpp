// Each thread's paint list: the windows whose update region is not empty,
// listed once each, and the WM_PAINT source retrieval and modal loops read
// from it.  A list belongs to its thread's queue and is used under that
// queue's lock, since any thread may invalidate a window.
#include "messages/ompaint.h"

#include "core/omwindow.h"
#include "kernel/omthread.h"
#include "messages/ommessageq.h"
#include "messages/ompaintinternal.h"

#include <cstdlib>

using namespace om::messages;

namespace om::messages {

OmThreadRecord *ownerThread(const WindowRecord &w)
{
    return omThreadRecordFromHandle(w.thread);
}

bool isDescendant(HWND hwnd, HWND ancestor)
{
    for (WindowRecord *w = omWindowRecord(hwnd); w && (w->style & WS_CHILD);) {
        if (w->parent == ancestor)
            return true;
        w = omWindowRecord(w->parent);
    }
    return false;
}

bool hasUpdate(const WindowRecord &w)
{
    return w.updateRegion && !XEmptyRegion(w.updateRegion);
}

namespace {

OmPaintItem *findItem(OmPaintList &list, HWND hwnd)
{
    for (OmPaintItem *i = list.first; i; i = i->next)
        if (i->hwnd == hwnd)
            return i;
    return nullptr;
}

// Unlinks and frees; a cursor on the item moves to the next one, or
// wraps to the first.
void deleteNode(OmPaintList &list, OmPaintItem *item)
{
    if (item->prev)
        item->prev->next = item->next;
    else
        list.first = item->next;
    if (item->next)
        item->next->prev = item->prev;
    else
        list.last = item->prev;
    if (list.cursor == item)
        list.cursor = item->next ? item->next : list.first;
    if (list.savedCursor == item)
        list.savedCursor = list.cursor;
    std::free(item);
}

// An item whose window can no longer be painted.
bool stale(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    return !w || !hasUpdate(*w) || !w->redraw;
}

void cleanList(OmPaintList &list)
{
    for (OmPaintItem *i = list.first; i;) {
        OmPaintItem *next = i->next;
        WindowRecord *w = omWindowRecord(i->hwnd);
        if (!w || !hasUpdate(*w) || (!w->x && !w->y && !w->cx && !w->cy))
            deleteNode(list, i);
        i = next;
    }
}

// The window at the cursor, dropping stale items on the way.
HWND nextWindow(OmPaintList &list, bool peek)
{
    for (;;) {
        OmPaintItem *i = list.cursor ? list.cursor : list.first;
        if (!i)
            return nullptr;
        if (stale(i->hwnd)) {
            deleteNode(list, i);
            continue;
        }
        HWND hwnd = i->hwnd;
        if (++list.scans % 50 == 0) {
            cleanList(list);
            // The cleaning may have freed the item under the cursor.
            i = findItem(list, hwnd);
            if (!i)
                continue;
        }
        if (!peek)
            list.cursor = i->next ? i->next : list.first;
        else
            list.cursor = i;
        return hwnd;
    }
}

OmThreadRecord *callerThread()
{
    return omCurrentThreadRecord();
}

void fillPaint(MSG *msg, HWND hwnd, bool keep)
{
    *msg = MSG{};
    msg->hwnd = hwnd;
    msg->message = WM_PAINT;
    msg->time = keep ? 1 : 0;
}

}  // namespace

bool addItemLocked(OmPaintList &list, HWND hwnd)
{
    if (findItem(list, hwnd))
        return true;
    auto *item = static_cast<OmPaintItem *>(std::calloc(1, sizeof(OmPaintItem)));
    if (!item) {
        omError(OmDiag::OutOfMemory, "omPaintAddItem");
        return false;
    }
    item->hwnd = hwnd;
    if (!list.first) {
        list.first = list.cursor = list.last = item;
        return true;
    }
    // The parent that paints its children's exposures goes before them.
    if (bomParentHandlesChildExposure && hwnd == omExposureParentHwnd) {
        for (OmPaintItem *i = list.first; i; i = i->next) {
            if (isDescendant(i->hwnd, hwnd) && omWindowRecord(i->hwnd) &&
                omWindowRecord(i->hwnd)->parent == hwnd) {
                item->next = i;
                item->prev = i->prev;
                if (i->prev)
                    i->prev->next = item;
                else
                    list.first = item;
                i->prev = item;
                return true;
            }
        }
    }
    item->prev = list.last;
    list.last->next = item;
    list.last = item;
    return true;
}

bool deleteItemLocked(OmPaintList &list, HWND hwnd)
{
    OmPaintItem *i = findItem(list, hwnd);
    if (!i)
        return false;
    deleteNode(list, i);
    return true;
}

}  // namespace om::messages

extern "C" OLMO_API BOOL omPaintAddItem(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w)
        return FALSE;
    OmThreadRecord *owner = ownerThread(*w);
    int added = withPaintList(owner, [&](OmPaintList &list) -> int {
        if (!hasUpdate(*w))
            return -1;
        bool had = list.first != nullptr;
        if (!addItemLocked(list, hwnd))
            return -1;
        return had ? 0 : 1;
    });
    if (added < 0)
        return FALSE;
    if (owner != callerThread())
        omWakeQueueOwner(owner, WM_PAINT);
    return TRUE;
}

extern "C" OLMO_API BOOL omPaintDeleteItem(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    OmThreadRecord *owner = w ? ownerThread(*w) : callerThread();
    return withPaintList(owner, [&](OmPaintList &list) -> int {
               return deleteItemLocked(list, hwnd);
           }) > 0;
}

extern "C" OLMO_API void omPaintDeleteAll(void)
{
    withPaintList(callerThread(), [](OmPaintList &list) -> int {
        for (OmPaintItem *i = list.first; i;) {
            OmPaintItem *next = i->next;
            std::free(i);
            i = next;
        }
        list = OmPaintList{};
        return 0;
    });
}

extern "C" OLMO_API void omPaintCleanList(void)
{
    withPaintList(callerThread(), [](OmPaintList &list) -> int {
        cleanList(list);
        return 0;
    });
}

extern "C" OLMO_API BOOL omPaintIsHwndInQueue(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w)
        return FALSE;
    return withPaintList(ownerThread(*w), [&](OmPaintList &list) -> int {
               return findItem(list, hwnd) != nullptr;
           }) > 0;
}

extern "C" OLMO_API BOOL omPaintIsPaintMsgEmpty(void)
{
    return withPaintList(callerThread(),
                         [](OmPaintList &list) -> int { return list.first == nullptr; }) != 0;
}

extern "C" OLMO_API HWND omPaintGetNextHWnd(BOOL peek)
{
    HWND found = nullptr;
    withPaintList(callerThread(), [&](OmPaintList &list) -> int {
        found = nextWindow(list, peek != 0);
        return 0;
    });
    return found;
}

extern "C" OLMO_API BOOL omPaintGetMsg(HWND hwnd, MSG *msg, BOOL descendants, BOOL keep)
{
    if (!msg)
        return FALSE;
    HWND found = nullptr;
    withPaintList(callerThread(), [&](OmPaintList &list) -> int {
        if (!hwnd) {
            found = nextWindow(list, keep != 0);
            return 0;
        }
        // Go round once looking for hwnd (or a descendant of it).
        list.savedCursor = list.cursor;
        HWND start = nullptr;
        for (;;) {
            HWND h = nextWindow(list, false);
            if (!h)
                break;
            if (h == hwnd || (descendants && isDescendant(h, hwnd))) {
                found = h;
                break;
            }
            if (!start)
                start = h;
            else if (h == start)
                break;
        }
        if (keep || !found) {
            list.cursor = list.savedCursor;
        } else if (OmPaintItem *i = findItem(list, found)) {
            // Removal moves the cursor past the window handed out.
            list.cursor = i->next ? i->next : list.first;
        }
        list.savedCursor = nullptr;
        return 0;
    });
    if (!found)
        return FALSE;
    WindowRecord *w = omWindowRecord(found);
    if (!w || w->thread != omHandleValue(GetCurrentThread()))
        return FALSE;
    fillPaint(msg, found, keep != 0);
    return TRUE;
}

extern "C" OLMO_API BOOL omPaintGetDlgMsg(HWND hwnd, MSG *msg)
{
    if (!msg)
        return FALSE;
    HWND found = nullptr;
    bool listed = false;
    withPaintList(callerThread(), [&](OmPaintList &list) -> int {
        for (OmPaintItem *i = list.first; i; i = i->next)
            if (i->hwnd == hwnd || isDescendant(i->hwnd, hwnd)) {
                found = i->hwnd;
                listed = true;
                break;
            }
        return 0;
    });
    if (!listed)
        return omPaintGetMsg(nullptr, msg, FALSE, FALSE);
    WindowRecord *w = omWindowRecord(found);
    if (!w || !w->redraw || !hasUpdate(*w))
        return FALSE;
    fillPaint(msg, found, false);
    return TRUE;
}
