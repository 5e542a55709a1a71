// Cursors: making X cursors from Windows cursor planes, the current cursor
// and ShowCursor's display count, defining the cursor on the program's
// top-level windows, and the pointer position and clip rectangle.
#include "winmgmt/omcursor.h"

#include "core/omwindow.h"
#include "graphics/omcursor.h"
#include "kernel/omdiag.h"
#include "kernel/omdisplay.h"
#include "kernel/omhandles.h"
#include "kernel/omprocess.h"
#include "messages/ommessageq.h"

#include <X11/Intrinsic.h>

#include <cstdlib>
#include <vector>

extern "C" {
OLMO_API int omNeedClipCursor = 0;
OLMO_API RECT omClipCursorRect = {};
}

namespace om::winmgmt {
namespace {

HCURSOR g_current = nullptr;
Cursor g_defined = 0;

OmCursorRecord *cursorRecord(HCURSOR h)
{
    return static_cast<OmCursorRecord *>(omHandleRecord(omHandleValue(h), OM_KIND_CURSOR));
}

// The X windows that carry the program's cursor: the canvas of every
// top-level window built by the library (children inherit in X; foreign
// windows belong to someone else).  Collected under the sibling lock and
// used after it, so that no X round trip happens while it is held.
std::vector<Window> cursorWindows()
{
    std::vector<Window> out;
    std::lock_guard lock(om::core::windowSiblingMutex());
    for (HWND h = omTopLevelWindowList; WindowRecord *w = omWindowRecord(h); h = w->nextSibling) {
        if ((w->style & WS_CHILD) || (w->exStyle & kOmExForeign) || !w->canvasWidget)
            continue;
        if (Window xw = XtWindow(w->canvasWidget))
            out.push_back(xw);
    }
    return out;
}

Window appShellWindow()
{
    return omAppShell ? XtWindow(omAppShell) : 0;
}

// Windows reads planes most significant bit first; X bitmaps least
// significant bit first.  Rows keep their length of (width + 7) / 8 bytes.
unsigned char *repack(const unsigned char *plane, int width, int height, bool invert)
{
    size_t stride = static_cast<size_t>(width + 7) / 8;
    auto *out = static_cast<unsigned char *>(calloc(stride * static_cast<size_t>(height), 1));
    if (!out)
        return nullptr;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            size_t byte = static_cast<size_t>(y) * stride + static_cast<size_t>(x) / 8;
            bool bit = (plane[byte] >> (7 - x % 8)) & 1;
            if (bit != invert)
                out[byte] |= static_cast<unsigned char>(1u << (x % 8));
        }
    return out;
}

}  // namespace

Cursor definedXCursor()
{
    return g_defined;
}

}  // namespace om::winmgmt

using om::winmgmt::cursorRecord;

extern "C" OLMO_API Cursor omCreateCursorFromData(HCURSOR cursor)
{
    OmCursorRecord *c = cursorRecord(cursor);
    Display *dpy = omEnsureDisplay();
    if (!c || !dpy)
        return 0;
    if (c->xcursor || !c->sourceBits || !c->maskBits || c->width <= 0 || c->height <= 0)
        return c->xcursor;
    Window root = DefaultRootWindow(dpy);
    auto w = static_cast<unsigned>(c->width), h = static_cast<unsigned>(c->height);
    Pixmap src = XCreateBitmapFromData(dpy, root, reinterpret_cast<char *>(c->sourceBits), w, h);
    Pixmap mask = XCreateBitmapFromData(dpy, root, reinterpret_cast<char *>(c->maskBits), w, h);
    XColor fg{}, bg{};
    fg.red = fg.green = fg.blue = 65535;
    fg.flags = bg.flags = DoRed | DoGreen | DoBlue;
    // The server refuses a hot spot outside the image (BadMatch); a
    // program's out-of-range hot spot is pulled onto the nearest edge.
    unsigned hx = c->hotX < w ? c->hotX : w - 1, hy = c->hotY < h ? c->hotY : h - 1;
    c->xcursor = XCreatePixmapCursor(dpy, src, mask, &fg, &bg, hx, hy);
    XFreePixmap(dpy, src);
    XFreePixmap(dpy, mask);
    return c->xcursor;
}

extern "C" HCURSOR WINAPI CreateCursor(HINSTANCE hInst, int xHotSpot, int yHotSpot, int nWidth,
                                       int nHeight, const VOID *pvANDPlane, const VOID *pvXORPlane)
{
    if (!hInst)
        return nullptr;
    if (nWidth <= 0 || nHeight <= 0 || !pvANDPlane || !pvXORPlane) {
        omDebugWarning(OmDiag::BadArgument, "CreateCursor");
        return nullptr;
    }
    auto *c = static_cast<OmCursorRecord *>(calloc(1, sizeof(OmCursorRecord)));
    if (c) {
        c->sourceBits = om::winmgmt::repack(static_cast<const unsigned char *>(pvXORPlane), nWidth,
                                            nHeight, false);
        c->maskBits = om::winmgmt::repack(static_cast<const unsigned char *>(pvANDPlane), nWidth,
                                          nHeight, true);
    }
    if (!c || !c->sourceBits || !c->maskBits) {
        if (c) {
            free(c->sourceBits);
            free(c->maskBits);
        }
        free(c);
        omError(OmDiag::OutOfMemory, "CreateCursor");
        return nullptr;
    }
    c->width = nWidth;
    c->height = nHeight;
    c->hotX = static_cast<uint16_t>(xHotSpot < 0 ? 0 : xHotSpot);
    c->hotY = static_cast<uint16_t>(yHotSpot < 0 ? 0 : yHotSpot);
    uint32_t index = omAllocHandle(OM_KIND_CURSOR, c);
    if (!index) {
        free(c->sourceBits);
        free(c->maskBits);
        free(c);
        omError(OmDiag::HandleTableFull, "CreateCursor");
        return nullptr;
    }
    auto cursor = reinterpret_cast<HCURSOR>(static_cast<uintptr_t>(omHandleFromIndex(index)));
    omCreateCursorFromData(cursor);
    return cursor;
}

extern "C" OLMO_API void omDefineCursors(Cursor xcursor)
{
    Display *dpy = omDisplay;
    if (!dpy)
        return;
    for (Window w : om::winmgmt::cursorWindows())
        XDefineCursor(dpy, w, xcursor);
    if (Window shell = om::winmgmt::appShellWindow()) {
        XSetWindowAttributes a{};
        a.cursor = xcursor;
        XChangeWindowAttributes(dpy, shell, CWCursor, &a);
    }
    XFlush(dpy);
    om::winmgmt::g_defined = xcursor;
}

extern "C" OLMO_API void omUndefineCursors(void)
{
    Display *dpy = omDisplay;
    if (!dpy)
        return;
    for (Window w : om::winmgmt::cursorWindows())
        XUndefineCursor(dpy, w);
    if (Window shell = om::winmgmt::appShellWindow())
        XUndefineCursor(dpy, shell);
    XFlush(dpy);
    om::winmgmt::g_defined = 0;
}

extern "C" OLMO_API void omSetLocalXCursor(HCURSOR cursor, Widget widget)
{
    OmCursorRecord *c = cursorRecord(cursor);
    if (c && c->xcursor && widget && XtWindow(widget))
        XDefineCursor(XtDisplay(widget), XtWindow(widget), c->xcursor);
}

extern "C" OLMO_API int omCurrentCursorCount(void)
{
    return omCursorCount;
}

extern "C" OLMO_API Cursor omDefinedXCursor(void)
{
    return om::winmgmt::definedXCursor();
}

extern "C" HCURSOR WINAPI GetCursor(void)
{
    return om::winmgmt::g_current;
}

extern "C" HCURSOR WINAPI SetCursor(HCURSOR hCursor)
{
    HCURSOR previous = om::winmgmt::g_current;
    if (!hCursor) {
        omUndefineCursors();
        om::winmgmt::g_current = nullptr;
        --omCursorCount;
        return previous;
    }
    OmCursorRecord *c = cursorRecord(hCursor);
    if (!c)
        return nullptr;
    // Motion over a window asks for its cursor again and again: the same
    // cursor must cost nothing, not even a request to the server.
    if (hCursor == previous)
        return previous;
    if (!c->xcursor)
        omCreateCursorFromData(hCursor);
    if (c->xcursor)
        omDefineCursors(c->xcursor);
    om::winmgmt::g_current = hCursor;
    // Requests made before this cursor was chosen are answered already.
    // Taken straight off the queue: retrieval would read X events, and a
    // pointer event there may set the cursor again under our feet.
    const OmQueueFilter setCursorOnly{nullptr, WM_SETCURSOR, WM_SETCURSOR};
    OmMsgRecord dropped;
    while (omQueueTake(&setCursorOnly, &dropped, TRUE, nullptr)) {
    }
    return previous;
}

extern "C" int WINAPI ShowCursor(BOOL bShow)
{
    omCursorCount += bShow ? 1 : -1;
    if (omCursorCount >= 0) {
        if (OmCursorRecord *c = cursorRecord(om::winmgmt::g_current); c && c->xcursor)
            omDefineCursors(c->xcursor);
    }
    return omCursorCount;
}

extern "C" BOOL WINAPI GetCursorPos(LPPOINT lpPoint)
{
    if (!lpPoint) {
        omDebugWarning(OmDiag::NullPoint, "GetCursorPos");
        return FALSE;
    }
    Display *dpy = omEnsureDisplay();
    if (!dpy)
        return FALSE;
    Window root = 0, child = 0;
    int rootX = 0, rootY = 0, winX = 0, winY = 0;
    unsigned mask = 0;
    if (!XQueryPointer(dpy, DefaultRootWindow(dpy), &root, &child, &rootX, &rootY, &winX, &winY,
                       &mask))
        return FALSE;
    lpPoint->x = rootX;
    lpPoint->y = rootY;
    return TRUE;
}

extern "C" BOOL WINAPI SetCursorPos(int X, int Y)
{
    Display *dpy = omEnsureDisplay();
    if (!dpy)
        return FALSE;
    XWarpPointer(dpy, None, RootWindow(dpy, DefaultScreen(dpy)), 0, 0, 0, 0, X, Y);
    XFlush(dpy);
    return TRUE;
}

extern "C" BOOL WINAPI ClipCursor(const RECT *lpRect)
{
    if (lpRect) {
        omClipCursorRect = *lpRect;
        omNeedClipCursor = 1;
    } else {
        omNeedClipCursor = 0;
    }
    return TRUE;
}

extern "C" BOOL WINAPI GetClipCursor(LPRECT lpRect)
{
    if (!lpRect)
        return FALSE;
    *lpRect = omClipCursorRect;
    return TRUE;
}

extern "C" OLMO_API BOOL omSetClassCursor(HWND hwnd, LPARAM lParam)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !(LOWORD(lParam) & 1) || !w->windowClass || !w->windowClass->cursor)
        return FALSE;
    SetCursor(w->windowClass->cursor);
    return TRUE;
}
