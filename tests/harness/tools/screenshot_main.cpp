// olmo-screenshot: saves the screen of $DISPLAY as a PNG, once a top-level
// window with the given title is viewable (the demo script uses it to show
// what the demo drew when no display of the user's is at hand).
//
//     olmo-screenshot <out.png> [window title] [timeout seconds]
#include "harness/screenshot.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <thread>

namespace {

bool viewableWindowTitled(Display *dpy, Window w, const char *title, int depth)
{
    XWindowAttributes attrs;
    char *name = nullptr;
    if (XFetchName(dpy, w, &name) && name) {
        bool match = strcmp(name, title) == 0;
        XFree(name);
        if (match && XGetWindowAttributes(dpy, w, &attrs) && attrs.map_state == IsViewable)
            return true;
    }
    if (depth > 3)
        return false;
    Window root, parent, *children = nullptr;
    unsigned n = 0;
    if (!XQueryTree(dpy, w, &root, &parent, &children, &n))
        return false;
    bool found = false;
    for (unsigned i = 0; i < n && !found; ++i)
        found = viewableWindowTitled(dpy, children[i], title, depth + 1);
    if (children)
        XFree(children);
    return found;
}

}  // namespace

int main(int argc, char **argv)
{
    if (argc < 2) {
        fprintf(stderr, "usage: olmo-screenshot <out.png> [window title] [timeout seconds]\n");
        return 2;
    }
    Display *dpy = XOpenDisplay(nullptr);
    if (!dpy) {
        fprintf(stderr, "olmo-screenshot: cannot open the display\n");
        return 1;
    }
    if (argc > 2) {
        auto deadline = std::chrono::steady_clock::now() +
                        std::chrono::seconds(argc > 3 ? atoi(argv[3]) : 10);
        while (!viewableWindowTitled(dpy, DefaultRootWindow(dpy), argv[2], 0)) {
            if (std::chrono::steady_clock::now() > deadline) {
                fprintf(stderr, "olmo-screenshot: no viewable window \"%s\"\n", argv[2]);
                return 1;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        // The window is mapped; give its first exposure time to be painted.
        std::this_thread::sleep_for(std::chrono::milliseconds(500));
    }
    std::filesystem::path out = std::filesystem::absolute(argv[1]);
    setenv("OLMO_TEST_ARTIFACTS", out.parent_path().c_str(), 1);
    std::string written;
    if (!om::test::saveScreenPng(dpy, out.stem().string(), &written)) {
        fprintf(stderr, "olmo-screenshot: could not save %s\n", out.c_str());
        return 1;
    }
    printf("%s\n", written.c_str());
    XCloseDisplay(dpy);
    return 0;
}
