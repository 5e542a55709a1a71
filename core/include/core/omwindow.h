// The window record, the class record and the handle-to-record lookup: the
// chief header of core/, which nearly every user-library file includes.
// Data, small inline accessors and the contracts of core's shared entry
// points; behaviour lives in core/*.cpp.
#pragma once

#include <olmo/platform.h>

#include "kernel/omdiag.h"
#include "kernel/omhandles.h"
#include "kernel/omthread.h"

#include <windows.h>

#include <X11/Xlib.h>

#include <cstdint>
#include <pthread.h>
#include <cstring>
#include <mutex>
#include <new>
#include <string>

typedef struct _WidgetRec *Widget;
typedef struct _XRegion *Region;
struct OmPropNode;
struct OmClassRecord;

// Window kinds (WindowRecord::kind).
enum OmWindowKind : uint8_t {
    OM_WK_PLAIN = 0, OM_WK_DIALOG = 1, OM_WK_EDIT = 2, OM_WK_BUTTON = 3, OM_WK_LISTBOX = 4,
    OM_WK_COMBOBOX = 5, OM_WK_STATIC = 6, OM_WK_MDICLIENT = 7, OM_WK_SCROLLBAR = 8,
    OM_WK_MDICHILD = 9, OM_WK_TOOLTIPS = 10, OM_WK_TOOLBAR = 11, OM_WK_TREEVIEW = 12,
    OM_WK_LISTVIEW = 13, OM_WK_STATUS = 14, OM_WK_UPDOWN = 15, OM_WK_HEADER = 16,
    OM_WK_PROGRESS = 19, OM_WK_RICHEDIT = 20, OM_WK_TABCTRL = 21, OM_WK_MINIDOCKFRAME = 23,
};

// Extended-style bits of our own (the top nibble, which Windows leaves free).
constexpr DWORD kOmExForeign = 0x80000000u;       // no widgets, built outside the library
constexpr DWORD kOmExAutoScrolled = 0x40000000u;  // automatically scrolled client area
constexpr DWORD kOmExOpenGL = 0x20000000u;        // the OpenGL visual
constexpr DWORD kOmExNonToolkit = 0x10000000u;    // wraps a widget built by the program

// A destroyed window whose record waits for other threads to let go of it
// keeps its slot under this kind: it is no longer a window to anyone, yet
// the slot cannot be handed out again while attached threads still name
// the handle in their lists.
constexpr uint32_t kOmKindDyingWindow = OM_KIND_DYING_WINDOW;

// Node of a window's attachedThreads list.
struct OmThreadNode {
    uint64_t thread;
    OmThreadNode *next;
};

// The window record.  One block: this fixed part, then the class's
// cbWndExtra bytes.  Pointer-sized where Win64 keeps a pointer (procedure,
// instance, id or menu, user data); styles, counts and geometry 32-bit.
struct WindowRecord {
    DWORD style = 0;
    int x = 0, y = 0, cx = 0, cy = 0;
    uint64_t thread = 0;  // creating thread's handle; its queue gets the messages
    pthread_t creator{};  // the same thread, for cheap comparison with pthread_self
    HWND self = nullptr;  // this record's handle
    HWND parent = nullptr, owner = nullptr;
    HWND nextSibling = nullptr, prevSibling = nullptr;
    HWND firstChild = nullptr, lastChild = nullptr;
    UINT_PTR idOrMenu = 0;  // control id of a child, menu of a top-level window
    HINSTANCE instance = nullptr;
    Region updateRegion = nullptr;
    bool erasePending = false;
    bool configured = false;
    bool exposed = false;
    bool configureEcho = false;
    bool motionless = false;
    bool insensitive = false;
    bool redraw = true;
    bool destroying = false;
    bool blockedByModal = false;
    bool widgetDestroyQueued = false;
    bool markedForDeletion = false;
    bool textIsOrdinal = false;
    bool inWindowMenu = false;  // an MDI child listed in its client's window menu
    uint8_t kind = OM_WK_PLAIN;
    UINT trackState = 0;
    WNDPROC wndProc = nullptr;
    void *createParams = nullptr;
    void *menuList = nullptr;
    char *text = nullptr;  // XtMalloc'ed copy, never null (or an ordinal, see textIsOrdinal)
    Widget shellWidget = nullptr;
    Widget frameWidget = nullptr;
    Widget canvasWidget = nullptr;
    Window iconWindow = 0;
    OmClassRecord *windowClass = nullptr;
    HDC ownDC = nullptr;
    Widget hScrollWidget = nullptr;
    Widget vScrollWidget = nullptr;
    DWORD exStyle = 0;
    OmPropNode *properties = nullptr;
    HMENU sysMenu = nullptr;
    LONG_PTR controlWords[22] = {};
    Widget menuBarWidget = nullptr;
    WNDPROC createProc = nullptr;
    void *vScrollData = nullptr;
    void *hScrollData = nullptr;
    LONG_PTR userData = 0;
    UINT controlWord = 0;
    void *liteKids = nullptr;
    UINT dialogWord = 0;
    UINT showState = 1;
    int restoreRect[4] = {};
    int nonToolkitCx = 0, nonToolkitCy = 0;
    int requestedCx = 0, requestedCy = 0;
    int extraBytes = 0;  // size of the extra bytes behind this record
    OmThreadNode *attachedThreads = nullptr;
    std::mutex attachMutex;

    unsigned char *extra() { return reinterpret_cast<unsigned char *>(this + 1); }
};
static_assert(sizeof(WindowRecord) % alignof(LONG_PTR) == 0, "extra bytes stay aligned");

// The class record.  One block: this fixed part, then cbClsExtra bytes.
struct OmClassRecord {
    UINT style = 0;
    WNDPROC wndProc = nullptr;
    int clsExtra = 0;
    int wndExtra = 0;
    int reportedWndExtra = 0;  // what GCL_CBWNDEXTRA reads and writes
    HINSTANCE instance = nullptr;
    HICON icon = nullptr;
    HCURSOR cursor = nullptr;
    HBRUSH background = nullptr;
    LPCSTR menuName = nullptr;  // 0, an ordinal, or the locked copy in menuNameMemory
    char name[32] = {};
    HICON smallIcon = nullptr;
    int (*createWidgetsProc)(HWND) = nullptr;
    int (*reparentProc)(HWND, int) = nullptr;
    HGLOBAL menuNameMemory = nullptr;
    HGLOBAL nameMemory = nullptr;
    const char *longName = nullptr;  // the whole name, locked in nameMemory
    unsigned long backgroundPixel = 0;
    bool hasBackgroundPixel = false;
    bool builtIn = false;

    unsigned char *extra() { return reinterpret_cast<unsigned char *>(this + 1); }
};
static_assert(sizeof(OmClassRecord) % alignof(LONG_PTR) == 0, "extra bytes stay aligned");

// Values of at most 8 bytes at any byte offset of extra bytes.
template <class T> inline T omReadExtra(const unsigned char *base, int offset)
{
    T v;
    std::memcpy(&v, base + offset, sizeof v);
    return v;
}
template <class T> inline void omWriteExtra(unsigned char *base, int offset, T v)
{
    std::memcpy(base + offset, &v, sizeof v);
}
template <class T> inline T omSwapExtra(unsigned char *base, int offset, T v)
{
    T old = omReadExtra<T>(base, offset);
    omWriteExtra(base, offset, v);
    return old;
}

// The live-window test: index above 0, below omHandlesCount, slot kind 1.
inline bool omIsWindow(HWND hwnd)
{
    return omIsHandleOfKind(omHandleValue(hwnd), OM_KIND_WINDOW);
}

// The record of a live window without attaching the caller; null for
// anything else.  For code that must not change attachment (tests, the
// graphics layer's callbacks).
inline WindowRecord *omWindowRecord(HWND hwnd)
{
    return static_cast<WindowRecord *>(omHandleRecord(omHandleValue(hwnd), OM_KIND_WINDOW));
}

inline HWND omHwndFromIndex(uint32_t index)
{
    return reinterpret_cast<HWND>(static_cast<uintptr_t>(omHandleFromIndex(index)));
}

// The thread rule: true when the caller may use windows.  Otherwise gives
// warning 237 naming the entry point and returns false.
inline bool omThreadRuleOk(const char *function)
{
    if (omIsUserInterfaceThreadSupported())
        return true;
    if (GetCurrentThreadId() == _omThreadMainThreadId())
        return true;
    omDebugWarning(OmDiag::WrongThread, function);
    return false;
}

extern "C" {

// The record in hwnd's slot (no check: callers make the live-window test
// first).  With user-interface threads, attaches the calling thread to the
// window when it is neither the main thread nor the creator.
OLMO_API WindowRecord *ConvertHWNDtoPtr(HWND hwnd);
OLMO_API void omAttachHWNDtoThread(uint64_t thread, WindowRecord *record, HWND hwnd);
// Forgets every window the thread is attached to.  Lock order: the
// thread's list before each window's attachMutex.
OLMO_API void omDetachHWNDfromThread(HANDLE thread);

OLMO_API HWND omWindowFromXWindow(int x, int y, Window xwindow, HWND hwnd);
OLMO_API void omSetWidgetUserData(HWND hwnd, Widget widget, int role);
OLMO_API WNDPROC _omGetWndProc(HINSTANCE instance, LPCSTR className);

// Classes.
OLMO_API int _omSetupClassArray(int grow);
OLMO_API OmClassRecord *omFindClass(HINSTANCE instance, LPCSTR name);
OLMO_API void omSetDefaultClassCursors(HCURSOR cursor);
OLMO_API int omIsStandardControl(const WindowRecord *record);
OLMO_API int omIsPredefinedChildClass(const WindowRecord *record);
// Fills a built-in class's procedures (slots 0 to 7: dialog, Edit, Button,
// ListBox, ComboBox, Static, MDIClient, ScrollBar) when its subsystem
// lands; until then the class runs a procedure that sets the window's
// kind and passes the rest to DefWindowProcA.
OLMO_API void omSetBuiltInClassProcs(int slot, WNDPROC proc, int (*createWidgets)(HWND),
                                     int (*reparent)(HWND, int));

// Creation.
OLMO_API HWND _omCreateWindowEx(DWORD exStyle, LPCSTR className, LPCSTR windowName, DWORD style,
                                int x, int y, int cx, int cy, HWND parent, HMENU menu,
                                HINSTANCE instance, LPVOID createParams, int motionless);
OLMO_API int omEnableGLForAllWindows(int on);
// Non-toolkit windows: a record around a widget the program built; freeing
// it leaves the widget to the program.
OLMO_API HWND omCreateNonOlmoWindow(Widget widget, int x, int y, int cx, int cy);
OLMO_API int omFreeNonOlmoWindow(HWND hwnd);
OLMO_API HWND CreateDesktopWindow(void);

// Stacking lists (top-level list head; each parent's child list).
OLMO_API extern HWND omTopLevelWindowList;
OLMO_API void omRemoveWindowFromSiblingList(HWND hwnd, WindowRecord *record);
// The first and last windows of the list hwnd is in (0 for a dead handle).
OLMO_API HWND omFirstInStackingList(HWND hwnd);
OLMO_API HWND omLastInStackingList(HWND hwnd);
// Moves within hwnd's list: to the top, to the bottom, right after
// `after`.  The lists only; callers restack X windows themselves.
OLMO_API void omZOrderRaise(HWND hwnd);
OLMO_API void omZOrderLower(HWND hwnd);
OLMO_API void omZOrderInsertAfter(HWND hwnd, HWND after);
OLMO_API void omPrintStackingList(HWND hwnd);

// Destruction.  flag is kept for callers that pass it and not consulted.
OLMO_API BOOL omDestroyWindow(HWND hwnd, int flag, int notifyParent);
// Clears WS_VISIBLE of the window and of all its descendants.
OLMO_API void omObscureWindow(HWND hwnd);

// Destruction: the widget destroy queue and the release of records that
// waited for other threads.  Both are called from whatever pumps X.
OLMO_API void omQueueDestroyWidget(Widget widget);
OLMO_API void *omDestroyQueued(void);
OLMO_API void omDestroyQueuedWidget(void);
OLMO_API void omDestroyHWNDsMarkedForDeletion(void);
OLMO_API extern int omSyncDestroyWidget;
// Runs the idle drain once: every queued widget, then the waiting records.
OLMO_API void omRunIdleDrain(void);
// Until the message loop lands: dispatches pending X work, runs the idle
// drain, or waits up to waitMs.  Main thread.
OLMO_API int omPumpXEvents(unsigned waitMs);

// Showing, moving and sizing (winmgmt/).
OLMO_API void omShowWindowCurrent(HWND hwnd);
OLMO_API void omHideWindow(HWND hwnd);
// WM_MOVE with the client origin in the parent's client coordinates.
OLMO_API void omSendMoveMessage(HWND hwnd);
// WM_SIZE from the canvas and the frame's state.
OLMO_API void omSendSizeMessage(HWND hwnd);
// The arguments of that WM_SIZE; with dialogRule, FALSE for a dialog
// not yet exposed (it gets no WM_SIZE).
OLMO_API BOOL omSizeMessageArgs(HWND hwnd, BOOL dialogRule, WPARAM *type, LPARAM *size);

// Set while SetParent moves a window's widgets (focus tracking and
// ShowWindow look at it).
OLMO_API extern int bInSetParent;
OLMO_API void omDecorateFloatingControlBar(HWND newParent, HWND child);
// The reparent procedure of program classes: flag 0 builds the widgets of
// a window that has none (as a child), any other flag drops them.
OLMO_API int omDefReparentProc(HWND hwnd, int flag);
// Re-applies a changed style to the window's widgets: the window manager's
// decorations of a top-level window, the frame of a child.
OLMO_API void omChangeWindowStyle(HWND hwnd, DWORD oldStyle, DWORD newStyle);

// The top-level window last raised to the top under the Motif window
// manager (winmgmt/); forgotten when it is destroyed.
OLMO_API extern HWND omTopMostOverlappedWindow;
// Keeps track of whether the application shell is iconic (winmgmt/).
OLMO_API void omSetupIconic(Widget shell);

// Non-zero while ShowWindow or SetWindowPos places a window: they send
// WM_SIZE themselves, so the frame's own report of a new client size is
// not passed on meanwhile (winmgmt/).
OLMO_API extern int omPlacingWindows;

// Child windows (core/childwindow.cpp).
// 0 or -1 (the caller destroys the window); send is 1 from CreateWindowEx,
// 0 from the window cache, which calls the creation procedure directly.
OLMO_API int omCreateChildWindow(HWND hwnd, int send);
OLMO_API void omMDIGetDefaultGeometry(HWND hwnd, int *x, int *y, int *cx, int *cy);
// Builds the child's XoBorder frame ("ChildWindow"), or updates an
// existing one from the record.
OLMO_API void omCreateChildCanvas(HWND hwnd);
// What WM_NCCREATE of a child does in the default procedure: the frame,
// the "ChildScrolledWindow" and the drawing area.  FALSE when the child
// has no frame afterwards.
OLMO_API BOOL omCreateChildClientArea(HWND hwnd);
OLMO_API void omFinishCreatingChild(HWND hwnd);
OLMO_API unsigned _omXoDecorationsFromStyle(const WindowRecord *record);
// Non-zero while a child's frame sends the SC_MOVE or SC_SIZE that starts
// a pointer drag: the frame tracks the pointer itself, so the default
// procedure must not start the keyboard move or size.
OLMO_API int omFrameTrackingPointer(void);
// Set whenever WM_NCCREATE reaches the default procedure.
OLMO_API extern int bNCCreate;
// Automatically scrolled client areas (the form-view support).
OLMO_API extern int bAutoScrolledWindow;
OLMO_API extern int bCreatingCFormView;

// The client rectangle the graphics layer's GetClientRect answers: the
// canvas widget's size as last set or reported, never asked of the server.
OLMO_API BOOL omWindowClientRect(HWND hwnd, RECT *rect);

// Provided by later subsystems: omSelectInputs by the X event
// translation (messages/), omSysMenuInit by the menus (a registered
// placeholder until then).
void WINAPI omSelectInputs(HWND hwnd);
void WINAPI omSysMenuInit(HWND hwnd);
// The paint queue (messages/): what BeginPaint takes, and forgetting a
// window being destroyed.
OLMO_API BOOL omPaintTakeUpdateRegion(HWND hwnd, HRGN updateRgn, BOOL *erase);
OLMO_API BOOL omPaintDeleteItem(HWND hwnd);
OLMO_API BOOL omPaintDeleteLiteKid(HWND child);
OLMO_API void omPaintCleanAll(HWND hwnd);
// The class cursor for WM_SETCURSOR (winmgmt/).
OLMO_API BOOL omSetClassCursor(HWND hwnd, LPARAM lParam);
// A retrieved message back to the X event it was made from (messages/).
struct OmMsgRecord;
OLMO_API int omMsgMRUSearch(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam,
                            OmMsgRecord *out);
OLMO_API BOOL omMsgToEvent(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam, XEvent *event);

// Top-level windows.
OLMO_API extern int first_appshell_created_yet;
OLMO_API unsigned _omMwmDecorationsFromStyle(const WindowRecord *record);
OLMO_API unsigned _omMwmFunctionsFromDecorations(unsigned decorations);
OLMO_API Widget omCreateShellAlternative(void);

// Start-up.
OLMO_API BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved);
OLMO_API extern char omVersionUser[18];
OLMO_API void omWEP(void);

}  // extern "C"

// The locks of the user library (all plain, never destroyed).  The class
// table and property locks belong with the kernel's shared state; until
// the kernel keeps them they live here under their names.
namespace om::core {
std::mutex &windowClassMutex();
std::mutex &propertyMutex();
std::mutex &windowSiblingMutex();
std::mutex &destroyWidgetQueueMutex();

// Sends a message to a window's procedure; 0 for anything but a live
// window.  The one path core uses for every message it sends.
LRESULT send(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam);

// The overlapped and pop-up builders; 0 on success, -1 when the creation
// messages refused (the caller destroys the window).
int createOverlappedWindow(HWND hwnd, WindowRecord &w);
int createPopupWindow(HWND hwnd, WindowRecord &w, HWND parentArg);

// Hands the graphics layer the window callbacks, and the child-window
// frame its upcalls (start-up).
void registerGraphicsHooks();
void registerFrameUpcalls();

// UTF-8 to UTF-16 (the W entries).
std::u16string toWide(const char *utf8);

// Runs f, turning an allocation failure into error 130 and the failure
// value, so that no exception leaves an entry point.
template <class R, class F> R guarded(const char *function, R failure, F &&f) noexcept
{
    try {
        return f();
    } catch (const std::bad_alloc &) {
        omError(OmDiag::OutOfMemory, function);
        return failure;
    }
}

// Record text helpers.
void setRecordText(WindowRecord &w, LPCSTR text);
const char *recordText(const WindowRecord &w);

// Frees a record and its slot (the last step of destruction).
void releaseRecord(HWND hwnd, WindowRecord *w);
void freeProperties(WindowRecord &w);
}  // namespace om::core
