// The X display, the application context and the application shell, owned
// by the kernel layer.  omDisplay is null until the toolkit is initialised
// with a display (and stays null when none can be opened); functions that
// need no display work regardless.
#pragma once

#include <olmo/platform.h>

#include "kernel/ominit.h"

#include <X11/Intrinsic.h>
#include <X11/Xlib.h>

extern "C" {

OLMO_API extern Display *omDisplay;
OLMO_API extern XtAppContext omAppContext;
OLMO_API extern Widget omAppShell;
OLMO_API extern const char *omAppName;

// omInitialize(nullptr, nullptr) unless already done: the entries that need
// the display call it, so a program with its own main needs no call.
OLMO_API Display *omEnsureDisplay(void);

}  // extern "C"

// Values read from X resources at start-up (application class "Olmo"),
// with the defaults documented in the README.  Geometry is in pixels.
struct OmResources {
    Boolean dllTrace;            // *dllTrace: print the library load trace
    int defaultWindowWidth;      // CW_USEDEFAULT size of an overlapped window
    int defaultWindowHeight;
    int frameWidth;              // sizing border (SM_CXFRAME, SM_CYFRAME)
    int captionHeight;           // caption bar (SM_CYCAPTION)
    int dialogFrameWidth;        // dialog frame (SM_CXDLGFRAME, SM_CYDLGFRAME)
    int windowSizeWidth;         // MoveWindow's size for a zero-size child
    int windowSizeHeight;
    int scrollBarWidth;          // SM_CXVSCROLL, SM_CYHSCROLL
    int menuHeight;              // SM_CYMENU
    Boolean slowWindowManager;   // wait after popping up a window
};

extern "C" {

OLMO_API extern OmResources omResources;
OLMO_API extern const char *omServerVendor;  // "" without a display
OLMO_API extern int omServerRelease;
OLMO_API extern int bIsMWMRunning;           // the Motif window manager runs
OLMO_API extern int bNoDisplay;              // initialised without a display
OLMO_API extern unsigned omDoubleClickTime;  // milliseconds

// Atoms interned at start-up in one batch (None without a display).
OLMO_API extern Atom _omPostMessageAtom;
OLMO_API extern Atom _omSendMessageAtom;
OLMO_API extern Atom omWinIniChangeAtom;
OLMO_API extern Atom omMaximizeWindowAtom;
OLMO_API extern Atom omWmProtocolsAtom;
OLMO_API extern Atom omWmDeleteWindowAtom;
OLMO_API extern Atom omWmStateAtom;

// The GUI lock: held while a device context's clip changes.  Recursive.
OLMO_API void omGUILock(void);
OLMO_API void omGUIUnlock(void);

// The process quit flag: set when the process is asked to end.
OLMO_API extern volatile int omQuitIsSet;
OLMO_API void omSetQuitFlag(int on);

}  // extern "C"

// Holds the Xt application lock for a scope.  Widget work on a thread
// other than the main thread is done under it (Xt was initialised for
// threads, so the lock is recursive and also serialises the display).
class OmAppLock {
public:
    OmAppLock() : m_app(omAppContext)
    {
        if (m_app)
            XtAppLock(m_app);
    }
    ~OmAppLock()
    {
        if (m_app)
            XtAppUnlock(m_app);
    }
    OmAppLock(const OmAppLock &) = delete;
    OmAppLock &operator=(const OmAppLock &) = delete;

private:
    XtAppContext m_app;
};
