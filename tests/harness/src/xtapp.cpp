// The process-wide Xt application context of the tests.
#include "harness/xtapp.h"

#include "harness/xserver.h"

namespace om::test
{

const XtApp &sharedXtApp()
{
    static const XtApp app = [] {
        XtApp a;
        XtToolkitInitialize();
        a.context = XtCreateApplicationContext();
        char name[] = "olmotest";
        char *argv[] = {name, nullptr};
        int argc = 1;
        a.display = XtOpenDisplay(a.context, testDisplayName(), "olmotest", "OlmoTest", nullptr, 0,
                                  &argc, argv);
        return a;
    }();
    return app;
}

} // namespace om::test
