// Window geometry and hierarchy queries, and waiting for a window to map.
#include "harness/xwindow.h"

#include <cstdio>

namespace om::test
{

Rect windowRootRect(Display *dpy, Window window)
{
    XWindowAttributes attrs;
    if (!XGetWindowAttributes(dpy, window, &attrs))
        return {};
    Rect rect{0, 0, attrs.width, attrs.height};
    Window child = None;
    XTranslateCoordinates(dpy, window, attrs.root, 0, 0, &rect.x, &rect.y, &child);
    return rect;
}

Window parentOf(Display *dpy, Window window)
{
    Window root = None, parent = None;
    Window *children = nullptr;
    unsigned count = 0;
    if (!XQueryTree(dpy, window, &root, &parent, &children, &count))
        return None;
    if (children)
        XFree(children);
    return parent;
}

Window topLevelAncestor(Display *dpy, Window window)
{
    Window root = DefaultRootWindow(dpy);
    for (;;) {
        Window parent = parentOf(dpy, window);
        if (parent == None || parent == root)
            return window;
        window = parent;
    }
}

bool waitForMapped(Display *dpy, Window window, std::chrono::milliseconds deadline,
                   const Pump &pump, std::source_location where)
{
    auto viewable = [&] {
        XWindowAttributes attrs;
        return XGetWindowAttributes(dpy, window, &attrs) && attrs.map_state == IsViewable;
    };
    char what[64];
    snprintf(what, sizeof what, "window 0x%lx is viewable", window);
    return pumpUntil(viewable, deadline, pump, what, where);
}

} // namespace om::test
