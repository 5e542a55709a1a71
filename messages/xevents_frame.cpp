// Frame geometry of a window as the event translation sees it: the border
// its style asks for, the caption above the client area (both from the
// toolkit's resources), and the hit-test code of a point on a sizing frame.
#include "messages/xevents.h"

#include "core/omwindow.h"
#include "kernel/omdisplay.h"
#include "widgets/XoBorder.h"

extern "C" OLMO_API int omBorderWidth(const WindowRecord *record)
{
    if (!record)
        return 0;
    if (record->style & WS_THICKFRAME)
        return omResources.frameWidth;
    if (record->style & WS_DLGFRAME)
        return omResources.dialogFrameWidth;
    if (record->style & WS_BORDER)
        return GetSystemMetrics(SM_CXBORDER);
    return 0;
}

extern "C" OLMO_API int omCaptionHeight(const WindowRecord *record)
{
    if (!record || (record->style & WS_CAPTION) != WS_CAPTION)
        return 0;
    return omResources.captionHeight;
}

namespace {

// Strips this wide along each edge size the window; the corners reach this
// far along the edge they turn onto.
constexpr int kEdge = 10;
constexpr int kCorner = 30;
// The bottom-right corner is shorter along the bottom edge, where the
// frame's resize grip ends.
constexpr int kBottomRightCorner = 26;

bool hasSizingFrame(const WindowRecord &w)
{
    if (w.style & WS_THICKFRAME)
        return true;
    return w.frameWidget && XoIsBorder(w.frameWidget) && XoGetBorderType(w.frameWidget) == 1;
}

bool eventPoint(const XEvent &ev, int &x, int &y)
{
    switch (ev.type) {
    case ButtonPress:
    case ButtonRelease:
        x = ev.xbutton.x;
        y = ev.xbutton.y;
        return true;
    case MotionNotify:
        x = ev.xmotion.x;
        y = ev.xmotion.y;
        return true;
    case EnterNotify:
    case LeaveNotify:
        x = ev.xcrossing.x;
        y = ev.xcrossing.y;
        return true;
    default:
        return false;
    }
}

}  // namespace

extern "C" OLMO_API int omCalculateHitTest(const WindowRecord *record, const XEvent *event)
{
    int x = 0, y = 0;
    if (!record || !event || !hasSizingFrame(*record) || !eventPoint(*event, x, y))
        return HTCAPTION;
    const int cx = record->cx, cy = record->cy;
    if (x < kEdge) {
        if (y < kCorner)
            return HTTOPLEFT;
        return y >= cy - kCorner ? HTBOTTOMLEFT : HTLEFT;
    }
    if (x > cx - kEdge && x < cx) {
        if (y < kCorner)
            return HTTOPRIGHT;
        return y >= cy - kCorner ? HTBOTTOMRIGHT : HTRIGHT;
    }
    if (y < kEdge) {
        if (x < kCorner)
            return HTTOPLEFT;
        return x >= cx - kCorner ? HTTOPRIGHT : HTTOP;
    }
    if (y > cy - kEdge && y < cy) {
        if (x < kCorner)
            return HTBOTTOMLEFT;
        return x >= cx - kBottomRightCorner ? HTBOTTOMRIGHT : HTBOTTOM;
    }
    return HTCAPTION;
}
