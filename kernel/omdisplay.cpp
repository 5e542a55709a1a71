// Toolkit initialisation: X threads, the locale, the display, the
// application shell, the resources and the start-up atoms.  The rest of the
// kernel layer works without a display; this module is what needs one.
#include "kernel/omdisplay.h"
#include "kernel/omdiag.h"
#include "kernel/omstartup.h"
#include "kernel/omthread.h"

#include <Xm/Xm.h>
#include <X11/Shell.h>
#include <X11/Xatom.h>

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <langinfo.h>
#include <mutex>
#include <string>

extern "C" {
Display *omDisplay = nullptr;
XtAppContext omAppContext = nullptr;
Widget omAppShell = nullptr;
const char *omAppName = "olmo";
OmResources omResources;
const char *omServerVendor = "";
int omServerRelease = 0;
int bIsMWMRunning = 0;
int bNoDisplay = 1;
unsigned omDoubleClickTime = 500;
Atom _omPostMessageAtom = None;
Atom _omSendMessageAtom = None;
Atom omWinIniChangeAtom = None;
Atom omMaximizeWindowAtom = None;
Atom omWmProtocolsAtom = None;
Atom omWmDeleteWindowAtom = None;
Atom omWmStateAtom = None;
volatile int omQuitIsSet = 0;
}

namespace {

#define OM_RES(name, cls, field, def)                                                      \
    {name, cls, XtRInt, sizeof(int), XtOffsetOf(OmResources, field), XtRImmediate,             \
     reinterpret_cast<XtPointer>(static_cast<intptr_t>(def))}
#define OM_BOOL(name, cls, field, def)                                                     \
    {name, cls, XtRBoolean, sizeof(Boolean), XtOffsetOf(OmResources, field), XtRImmediate,  \
     reinterpret_cast<XtPointer>(static_cast<intptr_t>(def))}

// The defaults are Windows' classic metrics, so that a ported program's
// layout arithmetic gives what it gave on Windows.
XtResource kResources[] = {
    OM_BOOL("dllTrace", "DllTrace", dllTrace, False),
    OM_RES("defaultWindowWidth", "DefaultWindowWidth", defaultWindowWidth, 640),
    OM_RES("defaultWindowHeight", "DefaultWindowHeight", defaultWindowHeight, 480),
    OM_RES("frameWidth", "FrameWidth", frameWidth, 4),
    OM_RES("captionHeight", "CaptionHeight", captionHeight, 19),
    OM_RES("dialogFrameWidth", "DialogFrameWidth", dialogFrameWidth, 3),
    OM_RES("windowSizeWidth", "WindowSizeWidth", windowSizeWidth, 320),
    OM_RES("windowSizeHeight", "WindowSizeHeight", windowSizeHeight, 240),
    OM_RES("scrollBarWidth", "ScrollBarWidth", scrollBarWidth, 16),
    OM_RES("menuHeight", "MenuHeight", menuHeight, 20),
    OM_BOOL("slowWindowManager", "SlowWindowManager", slowWindowManager, False),
};

void setDefaultResources()
{
    omResources = OmResources{False, 640, 480, 4, 19, 3, 320, 240, 16, 20, False};
}

// Motif and our converters expect a UTF-8 locale; fall back to C.UTF-8
// when the environment names none.
String languageProc(Display *, String, XtPointer)
{
    if (!setlocale(LC_ALL, ""))
        setlocale(LC_ALL, "C");
    if (strcmp(nl_langinfo(CODESET), "UTF-8") != 0)
        setlocale(LC_CTYPE, "C.UTF-8");
    return setlocale(LC_ALL, nullptr);
}

void internAtoms()
{
    const char *names[] = {"_OLMO_POST_MESSAGE", "_OLMO_SEND_MESSAGE", "_OLMO_WININICHANGE",
                           "_OLMO_MAXIMIZE_WINDOW", "WM_PROTOCOLS", "WM_DELETE_WINDOW",
                           "WM_STATE"};
    Atom atoms[7];
    if (!XInternAtoms(omDisplay, const_cast<char **>(names), 7, False, atoms))
        return;
    _omPostMessageAtom = atoms[0];
    _omSendMessageAtom = atoms[1];
    omWinIniChangeAtom = atoms[2];
    omMaximizeWindowAtom = atoms[3];
    omWmProtocolsAtom = atoms[4];
    omWmDeleteWindowAtom = atoms[5];
    omWmStateAtom = atoms[6];
}

bool motifWindowManagerRuns()
{
    Atom info = XInternAtom(omDisplay, "_MOTIF_WM_INFO", True);
    if (info == None)
        return false;
    Atom type;
    int format;
    unsigned long n, after;
    unsigned char *data = nullptr;
    int rc = XGetWindowProperty(omDisplay, DefaultRootWindow(omDisplay), info, 0, 2, False,
                                info, &type, &format, &n, &after, &data);
    bool found = rc == Success && type == info && n >= 2;
    if (data)
        XFree(data);
    return found;
}

void openDisplay(int *argc, char **argv)
{
    XInitThreads();
    XtToolkitThreadInitialize();
    XtSetLanguageProc(nullptr, languageProc, nullptr);
    XtToolkitInitialize();
    omAppContext = XtCreateApplicationContext();

    int dummyArgc = 0;
    char *dummyArgv[] = {const_cast<char *>(omAppName), nullptr};
    if (!argc || !argv) {
        argc = &dummyArgc;
        argv = dummyArgv;
    } else if (*argc > 0 && argv[0]) {
        const char *slash = strrchr(argv[0], '/');
        omAppName = strdup(slash ? slash + 1 : argv[0]);
    }
    omDisplay = XtOpenDisplay(omAppContext, nullptr, omAppName, "Olmo", nullptr, 0, argc, argv);
    if (!omDisplay) {
        const char *name = getenv("DISPLAY");
        omDebugWarning(OmDiag::DisplayOpenFailed, "omInitialize", name ? name : "");
        return;
    }
    bNoDisplay = 0;
    // A close from the window manager never ends the process behind the
    // program's back: the user library turns it into WM_CLOSE.
    omAppShell = XtVaAppCreateShell(omAppName, "Olmo", applicationShellWidgetClass, omDisplay,
                                    XmNdeleteResponse, XmDO_NOTHING, XmNmappedWhenManaged, False,
                                    XmNwidth, 1, XmNheight, 1, nullptr);
    XtGetApplicationResources(omAppShell, &omResources, kResources, XtNumber(kResources), nullptr,
                              0);
    omServerVendor = ServerVendor(omDisplay);
    omServerRelease = VendorRelease(omDisplay);
    omDoubleClickTime = static_cast<unsigned>(XtGetMultiClickTime(omDisplay));
    internAtoms();
    bIsMWMRunning = motifWindowManagerRuns();
    // The message queues of all Olmo processes on this display talk
    // through properties of the root window.
    XSelectInput(omDisplay, DefaultRootWindow(omDisplay), PropertyChangeMask);
    XFlush(omDisplay);
}

std::once_flag g_initOnce;
std::recursive_mutex g_guiLock;

}  // namespace

extern "C" OLMO_API int omInitialize(int *argc, char **argv)
{
    std::call_once(g_initOnce, [&] {
        setDefaultResources();
        openDisplay(argc, argv);
        omLoadUserLibrary();
        omCurrentThreadRecord();  // the first caller's thread is the main thread
        omRunUserStartup();
    });
    return omDisplay != nullptr;
}

extern "C" OLMO_API Display *omEnsureDisplay(void)
{
    omInitialize(nullptr, nullptr);
    return omDisplay;
}

extern "C" OLMO_API void omGUILock(void)
{
    g_guiLock.lock();
}

extern "C" OLMO_API void omGUIUnlock(void)
{
    g_guiLock.unlock();
}

extern "C" OLMO_API void omSetQuitFlag(int on)
{
    omQuitIsSet = on ? 1 : 0;
}
