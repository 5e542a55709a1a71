// WM_SYSCOMMAND in the default procedure: a child's minimise, maximise,
// restore, move and size are states and modes of its XoBorder frame; a
// top-level window's belong to the window manager, so only close and
// restoring an icon act there.
#include "winmgmt/omdefwindow.h"

#include "defwindow_internal.h"

#include "widgets/XoBorder.h"

#include <Xm/Xm.h>
#include <X11/Intrinsic.h>

namespace om::winmgmt::defwnd {
namespace {

// Non-zero while the frame's own SC_MOVE/SC_SIZE for a pointer drag is
// being sent.
bool frameTrackingPointer()
{
    return omFrameTrackingPointer() != 0;
}

int frameState(Widget frame)
{
    int state = XoSTATE_NORMAL;
    XtVaGetValues(frame, XoNstate, &state, nullptr);
    return state;
}

// After a keyboard resize: the record takes the client's size and the
// program hears it with the frame's state.
void reportSize(HWND hwnd, WindowRecord &w)
{
    int state = frameState(w.shellWidget);
    int iconWidth = 0, iconHeight = 0;
    XtVaGetValues(w.shellWidget, XoNiconWidth, &iconWidth, XoNiconHeight, &iconHeight, nullptr);
    Dimension width = 0, height = 0;
    if (w.canvasWidget)
        XtVaGetValues(w.canvasWidget, XmNwidth, &width, XmNheight, &height, nullptr);
    w.cx = width;
    w.cy = height;
    WPARAM type = SIZE_RESTORED;
    LPARAM size = MAKELPARAM(width, height);
    if (state == XoSTATE_MAXIMIZED) {
        type = SIZE_MAXIMIZED;
    } else if (state == XoSTATE_ICONIC) {
        type = SIZE_MINIMIZED;
        size = MAKELPARAM(iconWidth, iconHeight);
    }
    SendMessageA(hwnd, WM_SIZE, type, size);
}

LRESULT childCommand(const Call &c)
{
    WindowRecord &w = *c.w;
    Widget frame = w.shellWidget && XoIsBorder(w.shellWidget) ? w.shellWidget : nullptr;
    switch (c.wParam) {
    case SC_SIZE:
        if (!frame)
            return 0;
        // A pointer drag the frame started is already under way: the
        // keyboard mode would turn it into a move a release cannot end.
        if (!frameTrackingPointer())
            XoSizeWidget(frame);
        if (omIsWindow(c.hwnd) && w.shellWidget == frame)
            reportSize(c.hwnd, w);
        return 0;
    case SC_MOVE:
        if (frame && !frameTrackingPointer())
            XoMoveWidget(frame);
        return 0;
    case SC_MINIMIZE:
        w.style = (w.style | WS_MINIMIZE) & ~WS_MAXIMIZE;
        omPlaceBorderIcon(c.hwnd);
        if (frame && omIsWindow(c.hwnd))
            XtVaSetValues(frame, XoNstate, XoSTATE_ICONIC, nullptr);
        return 0;
    case SC_MAXIMIZE:
        w.style = (w.style | WS_MAXIMIZE) & ~WS_MINIMIZE;
        if (frame)
            XtVaSetValues(frame, XoNstate, XoSTATE_MAXIMIZED, nullptr);
        return 0;
    case SC_RESTORE:
        // Giving the focus back to the child the parent remembers waits for
        // the focus subsystem, which will keep that child in the record.
        w.style &= ~(WS_MINIMIZE | WS_MAXIMIZE);
        if (frame) {
            XoRestoreBorderWidget(frame);
            // An icon made from a maximised frame restores to maximised:
            // the style follows the frame.
            if (omIsWindow(c.hwnd) && frameState(frame) == XoSTATE_MAXIMIZED)
                w.style |= WS_MAXIMIZE;
        }
        return 0;
    default:
        return 0;
    }
}

LRESULT topLevelCommand(const Call &c)
{
    if (c.wParam == SC_RESTORE && IsIconic(c.hwnd) && c.w->shellWidget &&
        XtIsRealized(c.w->shellWidget))
        XMapWindow(XtDisplay(c.w->shellWidget), XtWindow(c.w->shellWidget));
    return 0;
}

}  // namespace

// The whole command is compared: SC_MINIMIZE + 2 is not SC_MINIMIZE.
LRESULT onSysCommand(const Call &c)
{
    if (c.wParam == SC_CLOSE) {
        SendMessageA(c.hwnd, WM_CLOSE, 0, 0);
        return 0;
    }
    return isChild(*c.w) ? childCommand(c) : topLevelCommand(c);
}

}  // namespace om::winmgmt::defwnd
