// The widget map: widget to window handle and widget role, in a hash map
// under a reader-writer lock, since lookups (every X event) far outnumber
// changes (window creation and destruction).
#include "kernel/omwidgetmap.h"
#include "kernel/omdisplay.h"

#include <mutex>
#include <shared_mutex>
#include <unordered_map>

namespace {

struct Entry {
    HWND hwnd = nullptr;
    long info = 0;
};

struct WidgetMap {
    std::shared_mutex lock;
    std::unordered_map<Widget, Entry> entries;
};

WidgetMap &widgetMap()
{
    static WidgetMap m;
    return m;
}

}  // namespace

extern "C" OLMO_API void omSetWidgetHWND(Widget w, HWND hwnd)
{
    if (!w)
        return;
    WidgetMap &m = widgetMap();
    std::unique_lock guard(m.lock);
    m.entries[w].hwnd = hwnd;
}

extern "C" OLMO_API int omGetWidgetHWND(Widget w, HWND *hwnd)
{
    HWND found = omWidgetTohWnd(w);
    if (hwnd)
        *hwnd = found;
    return found != nullptr;
}

extern "C" OLMO_API HWND omWidgetTohWnd(Widget w)
{
    if (!w)
        return nullptr;
    WidgetMap &m = widgetMap();
    std::shared_lock guard(m.lock);
    auto it = m.entries.find(w);
    return it == m.entries.end() ? nullptr : it->second.hwnd;
}

extern "C" OLMO_API void omClearWidgetData(Widget w)
{
    WidgetMap &m = widgetMap();
    std::unique_lock guard(m.lock);
    m.entries.erase(w);
}

extern "C" OLMO_API HWND omWindowToWidget(int eventType, Window xwindow)
{
    (void)eventType;
    if (!omDisplay || xwindow == None)
        return nullptr;
    for (Widget w = XtWindowToWidget(omDisplay, xwindow); w; w = XtParent(w)) {
        if (HWND h = omWidgetTohWnd(w))
            return h;
    }
    return nullptr;
}

extern "C" OLMO_API void omSetWidgetUserDataInfo(Widget w, long info)
{
    if (!w)
        return;
    WidgetMap &m = widgetMap();
    std::unique_lock guard(m.lock);
    m.entries[w].info = info;
}

extern "C" OLMO_API long omGetWidgetUserDataInfo(Widget w)
{
    WidgetMap &m = widgetMap();
    std::shared_lock guard(m.lock);
    auto it = m.entries.find(w);
    return it == m.entries.end() ? 0 : it->second.info;
}

extern "C" OLMO_API int omMayBeRemoteWindow(HWND)
{
    return 0;
}

namespace {

struct TrackingSizes {
    int minX, minY, maxX, maxY;
};

struct TrackingMap {
    std::shared_mutex lock;
    std::unordered_map<HWND, TrackingSizes> sizes;
};

TrackingMap &trackingMap()
{
    static TrackingMap m;
    return m;
}

}  // namespace

extern "C" OLMO_API void omSetMinMaxInfo(HWND hwnd, int minX, int minY, int maxX, int maxY)
{
    TrackingMap &m = trackingMap();
    std::unique_lock guard(m.lock);
    m.sizes[hwnd] = TrackingSizes{minX, minY, maxX, maxY};
}

extern "C" OLMO_API int omGetMinMaxInfo(HWND hwnd, int *minX, int *minY, int *maxX, int *maxY)
{
    TrackingSizes s{-1, -1, -1, -1};
    bool found = false;
    {
        TrackingMap &m = trackingMap();
        std::shared_lock guard(m.lock);
        auto it = m.sizes.find(hwnd);
        if (it != m.sizes.end()) {
            s = it->second;
            found = true;
        }
    }
    if (minX)
        *minX = s.minX;
    if (minY)
        *minY = s.minY;
    if (maxX)
        *maxX = s.maxX;
    if (maxY)
        *maxY = s.maxY;
    return found;
}

extern "C" OLMO_API void omForgetWindowInfo(HWND hwnd)
{
    TrackingMap &m = trackingMap();
    std::unique_lock guard(m.lock);
    m.sizes.erase(hwnd);
}
