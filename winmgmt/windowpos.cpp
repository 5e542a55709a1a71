// Positions and sizes: WM_MOVE and WM_SIZE from the widgets' geometry.
// The placing of windows (SetWindowPos and its batch, MoveWindow) grows here.
#include "core/omwindow.h"

#include "kernel/omdisplay.h"
#include "messages/xevents.h"
#include "widgets/XoBorder.h"

#include <Xm/Xm.h>
#include <X11/IntrinsicP.h>
#include <X11/Shell.h>

namespace {

LPARAM packPoint(int x, int y)
{
    return static_cast<LPARAM>(static_cast<DWORD>(static_cast<WORD>(x)) |
                               static_cast<DWORD>(static_cast<WORD>(y)) << 16);
}

// The origin of a widget in root coordinates, from the widget tree alone.
void rootOrigin(Widget w, int *x, int *y)
{
    Position rx = 0, ry = 0;
    if (w)
        XtTranslateCoords(w, 0, 0, &rx, &ry);
    *x = rx;
    *y = ry;
}

}  // namespace

extern "C" OLMO_API void omSendMoveMessage(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w)
        return;
    int x = w->x, y = w->y;
    if (!(w->style & WS_CHILD)) {
        if (w->style & WS_THICKFRAME) {
            x += omResources.frameWidth;
            y += omResources.frameWidth;
        }
        if ((w->style & WS_CAPTION) == WS_CAPTION)
            y += omResources.captionHeight;
    } else if (w->canvasWidget) {
        WindowRecord *p = omWindowRecord(w->parent);
        int cx, cy, px = 0, py = 0;
        rootOrigin(w->canvasWidget, &cx, &cy);
        if (p && p->canvasWidget)
            rootOrigin(p->canvasWidget, &px, &py);
        x = cx - px;
        y = cy - py;
    }
    om::core::send(hwnd, WM_MOVE, 0, packPoint(x, y));
}

extern "C" OLMO_API BOOL omSizeMessageArgs(HWND hwnd, BOOL dialogRule, WPARAM *type, LPARAM *size)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w)
        return FALSE;
    int cx = w->cx, cy = w->cy;
    if (w->canvasWidget) {
        if (w->kind == OM_WK_DIALOG && (w->style & WS_CHILD) && !w->configured) {
            int b = omBorderWidth(w), c = omCaptionHeight(w);
            cx -= 2 * b;
            cy -= 2 * b + 2 * c;
        } else {
            cx = w->canvasWidget->core.width;
            cy = w->canvasWidget->core.height;
        }
    }
    *type = SIZE_RESTORED;
    if ((w->style & (WS_CHILD | WS_POPUP)) && w->shellWidget && XoIsBorder(w->shellWidget)) {
        int state = XoSTATE_NORMAL, iw = 0, ih = 0;
        XtVaGetValues(w->shellWidget, XoNstate, &state, XoNiconWidth, &iw, XoNiconHeight, &ih,
                      nullptr);
        if (state == XoSTATE_MAXIMIZED) {
            *type = SIZE_MAXIMIZED;
        } else if (state == XoSTATE_ICONIC) {
            *type = SIZE_MINIMIZED;
            cx = iw;
            cy = ih;
        }
    } else if (dialogRule && w->kind == OM_WK_DIALOG && !w->exposed) {
        return FALSE;
    }
    *size = packPoint(cx, cy);
    return TRUE;
}

extern "C" OLMO_API void omSendSizeMessage(HWND hwnd)
{
    WPARAM type;
    LPARAM size;
    if (omSizeMessageArgs(hwnd, FALSE, &type, &size))
        om::core::send(hwnd, WM_SIZE, type, size);
}
