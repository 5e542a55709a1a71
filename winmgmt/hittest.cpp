// Hit testing in the default procedure (WM_NCHITTEST from a child frame's
// regions), the client edge a child draws on its canvas and the
// WM_NCCALCSIZE shrink that goes with it, and the small record helpers:
// the form-view switches, the MDI client above a window, realisation.
#include "winmgmt/omdefwindow.h"

#include "defwindow_internal.h"

#include "widgets/XoBorder.h"

#include <Xm/ScrolledW.h>
#include <Xm/Xm.h>
#include <X11/Intrinsic.h>

namespace om::winmgmt::defwnd {

void canvasToFrame(const WindowRecord &w, int &x, int &y)
{
    if (!w.canvasWidget || !w.shellWidget)
        return;
    Position cx = 0, cy = 0, sx = 0, sy = 0;
    XtTranslateCoords(w.canvasWidget, static_cast<Position>(x), static_cast<Position>(y), &cx,
                      &cy);
    XtTranslateCoords(w.shellWidget, 0, 0, &sx, &sy);
    x = cx - sx;
    y = cy - sy;
}

LRESULT onNcHitTest(const Call &c)
{
    WindowRecord &w = *c.w;
    if ((w.style & (WS_CHILD | WS_DISABLED)) == (WS_CHILD | WS_DISABLED))
        return HTCLIENT;
    if (isChild(w) && w.shellWidget && !XtIsSensitive(w.shellWidget))
        return HTCLIENT;
    if (!isChild(w))
        return HTCLIENT;
    POINT p{static_cast<short>(LOWORD(c.lParam)), static_cast<short>(HIWORD(c.lParam))};
    ScreenToClient(c.hwnd, &p);
    int x = p.x, y = p.y;
    canvasToFrame(w, x, y);
    return omHitTest(&w, x, y);
}

LRESULT onNcCalcSize(const Call &c)
{
    WindowRecord &w = *c.w;
    DWORD edges = w.exStyle & (WS_EX_CLIENTEDGE | WS_EX_STATICEDGE);
    if (!edges || !w.shellWidget)
        return 0;
    RECT *r = reinterpret_cast<RECT *>(c.lParam);
    if (r && isChild(w) && !drawsOwnEdges(w)) {
        int d = (w.exStyle & WS_EX_CLIENTEDGE) ? 2 : 1;
        InflateRect(r, -d, -d);
    }
    return 1;
}

LRESULT onNcPaint(const Call &c)
{
    WindowRecord &w = *c.w;
    if (isChild(w) && (w.exStyle & (WS_EX_CLIENTEDGE | WS_EX_STATICEDGE)) && w.shellWidget &&
        !drawsOwnEdges(w))
        omUserDrawCanvasEdges(c.hwnd, w.exStyle);
    return 0;
}

}  // namespace om::winmgmt::defwnd

using namespace om::winmgmt::defwnd;

extern "C" {

OLMO_API int omHitCodeFromRegion(int region)
{
    static constexpr int kHit[] = {
        HTTOPLEFT,    HTTOP,       HTBOTTOM,   HTNOWHERE, HTBOTTOMRIGHT,
        HTBOTTOMLEFT, HTLEFT,      HTTOPRIGHT, HTRIGHT,   HTSYSMENU,
        HTMINBUTTON,  HTMAXBUTTON, HTCAPTION,  HTNOWHERE, HTCLIENT,
    };
    static_assert(sizeof kHit / sizeof kHit[0] == XoREGION_CLIENT + 1);
    return region >= 0 && region <= XoREGION_CLIENT ? kHit[region] : HTNOWHERE;
}

OLMO_API int omHitTestWinless(WindowRecord *record, int x, int y)
{
    if (!record)
        return HTNOWHERE;
    return x > 0 && x < record->cx && y > 0 && y < record->cy ? HTCLIENT : HTNOWHERE;
}

OLMO_API int omHitTest(WindowRecord *record, int x, int y)
{
    if (!record)
        return HTNOWHERE;
    // A combo box's dropped list answers for itself once the ComboBox
    // control keeps its list widget in the record; until then the frame
    // answers.
    if (!record->shellWidget)
        return omHitTestWinless(record, x, y);
    if (!XoIsBorder(record->shellWidget))
        return HTCLIENT;
    return omHitCodeFromRegion(XoGetRegionCode(record->shellWidget, record->canvasWidget, x, y));
}

OLMO_API void omUserDrawCanvasEdges(HWND hwnd, DWORD exStyle)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || !w->shellWidget)
        return;
    Dimension width = 0, height = 0;
    int decorations = 0;
    XtVaGetValues(w->shellWidget, XmNwidth, &width, XmNheight, &height, nullptr);
    if (XoIsBorder(w->shellWidget))
        XtVaGetValues(w->shellWidget, XoNdecorations, &decorations, nullptr);
    if (decorations)
        return;
    // On the frame: the edge lies in its margin, around the client area.
    HDC dc = GetWindowDC(hwnd);
    if (!dc)
        return;
    RECT r{0, 0, width, height};
    DrawEdge(dc, &r, (exStyle & WS_EX_CLIENTEDGE) ? EDGE_SUNKEN : BDR_SUNKENOUTER, BF_RECT);
    ReleaseDC(hwnd, dc);
}

OLMO_API int omMFCEnableAutoScrolledWindow(int flag)
{
    int old = bAutoScrolledWindow;
    bAutoScrolledWindow = flag;
    return old;
}

OLMO_API int omMFCInCreateCFormView(int flag)
{
    int old = bCreatingCFormView;
    bCreatingCFormView = flag;
    return old;
}

OLMO_API BOOL omMFCIsAutoScrolledWindow(HWND hwnd, WindowRecord *record)
{
    WindowRecord *w = hwnd ? omWindowRecord(hwnd) : record;
    if (!w || !(w->style & WS_CHILD) || !w->frameWidget || !XmIsScrolledWindow(w->frameWidget))
        return FALSE;
    unsigned char policy = XmAPPLICATION_DEFINED;
    XtVaGetValues(w->frameWidget, XmNscrollingPolicy, &policy, nullptr);
    return policy == XmAUTOMATIC;
}

OLMO_API WindowRecord *omIsClientChild(WindowRecord *record)
{
    for (WindowRecord *w = record; w; w = omWindowRecord(w->parent))
        if (w->kind == OM_WK_MDICHILD)
            return omWindowRecord(w->parent);
    return nullptr;
}

OLMO_API void omForceRealizeWidgets(HWND hwnd)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w)
        return;
    for (Widget widget : {w->shellWidget, w->frameWidget, w->canvasWidget}) {
        // A widget below an unrealized parent cannot get a window yet.
        if (widget && (XtIsShell(widget) || XtIsRealized(XtParent(widget))))
            XtRealizeWidget(widget);
    }
}

}  // extern "C"
