// Small window queries every X test needs: where a window is on the
// screen, who its parent is (a window manager reparents), and waiting until
// it is viewable.
#pragma once

#include <gtest/gtest.h> // first: Xlib's None macro breaks gtest if defined before it

#include <X11/Xlib.h>

#include <chrono>
#include <source_location>

#include "harness/pump.h"

namespace om::test
{

struct Rect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

// Position of the window's origin in root coordinates and its size (border
// excluded).  All zero if the window cannot be queried.
Rect windowRootRect(Display *dpy, Window window);

// The parent window, or None if it cannot be queried.
Window parentOf(Display *dpy, Window window);

// The ancestor of `window` that is a child of the root: the window manager
// frame of a reparented top-level, or the window itself when unmanaged.
Window topLevelAncestor(Display *dpy, Window window);

// Pumps until `window` is viewable (mapped, and all its ancestors too).
// A timeout records a non-fatal failure at the caller and returns false.
bool waitForMapped(Display *dpy, Window window, std::chrono::milliseconds deadline,
                   const Pump &pump, std::source_location where = std::source_location::current());

} // namespace om::test
