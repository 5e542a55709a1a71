// The one Xt application context of a test process, connected to the test
// display.  Motif keeps per-display state (XmDisplay, font and render table
// caches) in process-wide tables that outlive XtCloseDisplay; a second
// connection opened after closing the first can be handed that stale state
// (BadFont errors, crashes).  So tests share one connection for the whole
// process and create and destroy only their widgets.
#pragma once

#include <gtest/gtest.h> // first: Xlib's None macro breaks gtest if defined before it

#include <X11/Intrinsic.h>

namespace om::test
{

struct XtApp {
    XtAppContext context = nullptr;
    Display *display = nullptr; // nullptr if the test display cannot be opened
};

// Opened on first use (application name "olmotest", class "OlmoTest") and
// never closed; process exit releases it.
const XtApp &sharedXtApp();

} // namespace om::test
