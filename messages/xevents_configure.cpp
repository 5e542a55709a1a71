// ConfigureNotify of a top-level window's shell: the window record's outer
// position and size follow the server, the first configuration sends
// WM_SIZE, and every change is announced with WM_WINDOWPOSCHANGING/CHANGED.
#include "messages/xevents.h"

#include "core/omwindow.h"
#include "kernel/omdisplay.h"

#include <X11/Intrinsic.h>
#include <X11/StringDefs.h>

namespace {

// Without the Motif window manager some managers first report the shell
// at (5, 24..28), a position of their own decoration: dropped once, then
// replaced by the window's own position.
int strayPositionSeen = 0;

}  // namespace

extern "C" OLMO_API void omConfigureNotify(HWND hwnd, XEvent *event)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !event || event->type != ConfigureNotify)
        return;
    XConfigureEvent &c = event->xconfigure;
    bool moved = false, resized = false;
    bool firstMap = !w->configured;
    if (w->configureEcho && w->cx == c.width && w->cy == c.height) {
        w->configureEcho = false;
        return;
    }
    int border = omBorderWidth(w), caption = omCaptionHeight(w);
    int ex = c.x, ey = c.y;
    if (!ex && !ey && w->shellWidget) {
        Position sx = 0, sy = 0;
        XtVaGetValues(w->shellWidget, XtNx, &sx, XtNy, &sy, nullptr);
        ex = sx;
        ey = sy;
    }
    if (!bIsMWMRunning && ex == 5 && ey >= 24 && ey <= 28) {
        if (!strayPositionSeen++)
            return;
        ex = w->x + border;
        ey = w->y + border + caption;
    }
    if (ex != w->x + border || ey != w->y + border + caption) {
        w->x = ex - border;
        w->y = ey - border - caption;
        moved = true;
    }
    int oldCx = w->cx, oldCy = w->cy;
    if (!(w->configured && c.width == w->cx - 2 * border &&
          c.height == w->cy - 2 * border - caption)) {
        w->cx = c.width + 2 * border;
        w->cy = c.height + caption + 2 * border;
        if (!w->configured && w->kind != OM_WK_DIALOG) {
            Dimension cw = 0, ch = 0;
            if (w->canvasWidget)
                XtVaGetValues(w->canvasWidget, XtNwidth, &cw, XtNheight, &ch, nullptr);
            SendMessageA(hwnd, WM_SIZE, SIZE_RESTORED, MAKELPARAM(cw, ch));
        } else {
            resized = true;
        }
        w->configured = true;
        UINT classStyle = w->windowClass ? w->windowClass->style : 0;
        if (omIsWindow(hwnd) && (((classStyle & CS_HREDRAW) && w->cx != oldCx) ||
                                 ((classStyle & CS_VREDRAW) && w->cy != oldCy)))
            InvalidateRect(hwnd, nullptr, TRUE);
    }
    if (!omIsWindow(hwnd))
        return;
    if (w->kind != OM_WK_DIALOG) {
        WINDOWPOS pos{hwnd, nullptr, w->x, w->y, w->cx, w->cy, 0x40};
        if (!moved)
            pos.flags |= SWP_NOMOVE;
        if (!resized)
            pos.flags |= SWP_NOSIZE;
        SendMessageA(hwnd, WM_WINDOWPOSCHANGING, 0, reinterpret_cast<LPARAM>(&pos));
        if (!omIsWindow(hwnd))
            return;
        SendMessageA(hwnd, WM_WINDOWPOSCHANGED, 0, reinterpret_cast<LPARAM>(&pos));
    }
    if ((moved || resized) && !firstMap && omIsWindow(hwnd))
        SendMessageA(hwnd, WM_EXITSIZEMOVE, 0, 0);
}
