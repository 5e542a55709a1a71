// The default window procedure: DefWindowProcA and its three later stages,
// the preamble every stage runs, the four message tables and the plain
// handlers of stages 1 and 2.  Text, system commands, hit testing and the
// X events handed back to widgets live in the other defwindow files.
#include "winmgmt/omdefwindow.h"

#include "defwindow_internal.h"

#include "messages/ompaint.h"
#include "widgets/XoBorder.h"

#include <Xm/Xm.h>
#include <X11/Intrinsic.h>

#include <algorithm>
#include <vector>

namespace om::winmgmt::defwnd {
namespace {

// ---------------------------------------------------------------------------
// Stage 1.

std::vector<HWND> childrenOf(const WindowRecord &w)
{
    std::vector<HWND> out;
    for (HWND child = w.firstChild; child;) {
        WindowRecord *k = omWindowRecord(child);
        if (!k)
            break;
        out.push_back(child);
        child = k->nextSibling;
    }
    return out;
}

LRESULT onSize(const Call &c)
{
    WindowRecord &w = *c.w;
    UINT classStyle = w.windowClass ? w.windowClass->style : 0;
    if ((classStyle & (CS_HREDRAW | CS_VREDRAW)) && w.exposed && c.wParam == SIZE_RESTORED)
        InvalidateRect(c.hwnd, nullptr, TRUE);
    if (!omIsWindow(c.hwnd))
        return 0;
    // A maximised child frame covers its parent: it follows the new size.
    // Collected first: the frame's resize reaches the child's procedure.
    for (HWND child : childrenOf(w)) {
        WindowRecord *k = omWindowRecord(child);
        if (k && (k->style & (WS_CHILD | WS_MAXIMIZE)) == (WS_CHILD | WS_MAXIMIZE) &&
            k->shellWidget && XoIsBorder(k->shellWidget))
            ReMaximizeBorderWidget(k->shellWidget);
    }
    return 0;
}

LRESULT onActivate(const Call &c)
{
    SetFocus(LOWORD(c.wParam) == WA_INACTIVE ? nullptr : c.hwnd);
    return 0;
}

LRESULT onSetRedraw(const Call &c)
{
    c.w->redraw = c.wParam != 0;
    if (c.w->style & WS_CLIPCHILDREN)
        return 0;
    // Collected first: a child's procedure may destroy siblings.
    for (HWND child : childrenOf(*c.w)) {
        WindowRecord *k = omWindowRecord(child);
        if (!k)
            continue;
        k->redraw = c.wParam != 0;
        if (!c.wParam) {
            if (k->updateRegion)
                XDestroyRegion(k->updateRegion);
            k->updateRegion = XCreateRegion();
        }
        SendMessageA(child, WM_SETREDRAW, c.wParam, c.lParam);
    }
    return 0;
}

LRESULT onMouseActivate(const Call &c)
{
    if (isChild(*c.w) && c.w->parent)
        return SendMessageA(c.w->parent, c.msg, c.wParam, c.lParam);
    return 6;
}

LRESULT onGetFont(const Call &)
{
    return reinterpret_cast<LRESULT>(GetStockObject(SYSTEM_FONT));
}

LRESULT onNcCreate(const Call &c)
{
    bNCCreate = 1;
    if (!isChild(*c.w))
        return 1;
    return omCreateChildClientArea(c.hwnd) ? 1 : 0;
}

LRESULT onNcActivate(const Call &c)
{
    if (c.w->kind == OM_WK_MDICHILD && c.w->shellWidget && XoIsBorder(c.w->shellWidget))
        XtVaSetValues(c.w->shellWidget, XoNdisplayState,
                      c.wParam ? XoDISPLAY_ACTIVE : XoDISPLAY_INACTIVE, nullptr);
    return 0;
}

LRESULT onNothing(const Call &)
{
    return 0;
}

LRESULT onOne(const Call &)
{
    return 1;
}

LRESULT onCommand(const Call &c)
{
    // A combo box's own list and edit notify through it to its parent.
    unsigned code = HIWORD(c.wParam);
    if (c.w->kind == OM_WK_COMBOBOX && isChild(*c.w) && c.w->parent &&
        ((code >= 1 && code <= 8) || code == 10))
        SendMessageA(c.w->parent, c.msg, c.wParam, c.lParam);
    return 0;
}

LRESULT onDropFiles(const Call &c)
{
    DragFinish(reinterpret_cast<HDROP>(c.wParam));
    return 0;
}

// ---------------------------------------------------------------------------
// Stage 2.

LRESULT onPaint(const Call &c)
{
    PAINTSTRUCT ps{};
    HDC given = reinterpret_cast<HDC>(c.wParam);
    bool began = false;
    if (given) {
        ps.hdc = given;
        GetClipBox(given, &ps.rcPaint);
    } else {
        if (!BeginPaint(c.hwnd, &ps))
            return 0;
        began = true;
    }
    XEvent ev;
    if (omWMPAINTToEvent(c.hwnd, &ps, &ev))
        XtDispatchEvent(&ev);
    if (began && omIsWindow(c.hwnd))
        EndPaint(c.hwnd, &ps);
    return 0;
}

LRESULT onClose(const Call &c)
{
    DestroyWindow(c.hwnd);
    return 0;
}

LRESULT onEraseBackground(const Call &c)
{
    HBRUSH brush = c.w->windowClass ? c.w->windowClass->background : nullptr;
    if (!brush || brush == GetStockObject(NULL_BRUSH))
        return 0;
    RECT r{0, 0, 10000, 10000};
    FillRect(reinterpret_cast<HDC>(c.wParam), &r, brush);
    return 1;
}

LRESULT onCancelMode(const Call &c)
{
    // Only our own capture: another window's drag is none of our business.
    if (GetCapture() == c.hwnd)
        ReleaseCapture();
    return 0;
}

LRESULT onSetCursor(const Call &c)
{
    if (isChild(*c.w) && c.w->parent && SendMessageA(c.w->parent, WM_SETCURSOR, c.wParam, c.lParam))
        return TRUE;
    if (!omIsWindow(c.hwnd))
        return FALSE;
    if (reinterpret_cast<HWND>(c.wParam) == c.hwnd)
        return omSetClassCursor(c.hwnd, c.lParam);
    return FALSE;
}

LRESULT ctlColor(const Call &c, int background)
{
    HDC dc = reinterpret_cast<HDC>(c.wParam);
    if (dc) {
        SetBkColor(dc, GetSysColor(background));
        SetTextColor(dc, GetSysColor(COLOR_WINDOWTEXT));
    }
    return background + 1;
}

LRESULT onCtlColorWindow(const Call &c)
{
    return ctlColor(c, COLOR_WINDOW);
}

LRESULT onCtlColorFace(const Call &c)
{
    return ctlColor(c, COLOR_BTNFACE);
}

LRESULT onCtlColorScrollBar(const Call &c)
{
    return ctlColor(c, COLOR_SCROLLBAR);
}

LRESULT onParentNotify(const Call &c)
{
    if (isChild(*c.w) && c.w->parent)
        SendMessageA(c.w->parent, c.msg, c.wParam, c.lParam);
    return 0;
}

// ---------------------------------------------------------------------------
// Stage 4's small rows.

LRESULT onHelp(const Call &c)
{
    WindowRecord &w = *c.w;
    if (!isChild(w) || !w.parent)
        return 1;
    HELPINFO info{};
    info.cbSize = sizeof info;
    info.iContextType = HELPINFO_WINDOW;
    info.iCtrlId = static_cast<int>(w.idOrMenu);
    info.hItemHandle = c.hwnd;
    info.dwContextId = GetWindowContextHelpId(c.hwnd);
    POINT p{w.x, w.y};
    ClientToScreen(w.parent, &p);
    info.MousePos = p;
    SendMessageA(w.parent, WM_HELP, 0, reinterpret_cast<LPARAM>(&info));
    return 1;
}

LRESULT onContextMenu(const Call &c)
{
    if (isChild(*c.w) && c.w->parent)
        SendMessageA(c.w->parent, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(c.hwnd),
                     static_cast<LPARAM>(GetMessagePos()));
    return 0;
}

LRESULT onPaletteChanged(const Call &c)
{
    return reinterpret_cast<HWND>(c.wParam) == c.hwnd ? 0 : 1;
}

// ---------------------------------------------------------------------------
// The tables, each sorted by message number.

constexpr Entry kStage1[] = {
    {WM_SIZE, onSize},
    {WM_ACTIVATE, onActivate},
    {WM_SETREDRAW, onSetRedraw},
    {WM_MOUSEACTIVATE, onMouseActivate},
    {WM_GETFONT, onGetFont},
    {WM_NCCREATE, onNcCreate},
    {WM_NCACTIVATE, onNcActivate},
    {WM_IME_STARTCOMPOSITION, onNothing},
    {WM_COMMAND, onCommand},
    {WM_DROPFILES, onDropFiles},
};

constexpr Entry kStage2[] = {
    {WM_PAINT, onPaint},
    {WM_CLOSE, onClose},
    {WM_QUERYENDSESSION, onOne},
    {WM_ERASEBKGND, onEraseBackground},
    {WM_CANCELMODE, onCancelMode},
    {WM_SETCURSOR, onSetCursor},
    {WM_NCHITTEST, onNcHitTest},
    {WM_NCPAINT, onNcPaint},
    {WM_SYSKEYDOWN, onSysKey},
    {WM_SYSKEYUP, onSysKey},
    {WM_SYSCHAR, onNothing},
    {WM_SYSCOMMAND, onSysCommand},
    {WM_CTLCOLOREDIT, onCtlColorWindow},
    {WM_CTLCOLORLISTBOX, onCtlColorWindow},
    {WM_CTLCOLORBTN, onCtlColorFace},
    {WM_CTLCOLORSCROLLBAR, onCtlColorScrollBar},
    {WM_CTLCOLORSTATIC, onCtlColorFace},
    {WM_PARENTNOTIFY, onParentNotify},
};

constexpr Entry kStage3[] = {
    {WM_KEYDOWN, onKey},
    {WM_KEYUP, onKey},
    {WM_CHAR, onChar},
    {WM_MOUSEMOVE, onClientPointer},
    {WM_LBUTTONDOWN, onClientPointer},
    {WM_LBUTTONUP, onClientPointer},
    {WM_LBUTTONDBLCLK, onClientPointer},
    {WM_RBUTTONDOWN, onClientPointer},
    {WM_RBUTTONUP, onClientPointer},
    {WM_RBUTTONDBLCLK, onClientPointer},
    {WM_MBUTTONDOWN, onClientPointer},
    {WM_MBUTTONUP, onClientPointer},
    {WM_MBUTTONDBLCLK, onClientPointer},
    {WM_MOUSEWHEEL, onMouseWheel},
    {WM_MOUSEHWHEEL, onMouseWheel},
};

constexpr Entry kStage4[] = {
    {WM_SETTEXT, onSetText},
    {WM_GETTEXT, onGetText},
    {WM_GETTEXTLENGTH, onGetTextLength},
    {WM_WINDOWPOSCHANGING, onNothing},
    {WM_WINDOWPOSCHANGED, onWindowPosChanged},
    {WM_HELP, onHelp},
    {WM_CONTEXTMENU, onContextMenu},
    {WM_SETICON, onSetIcon},
    {WM_NCCALCSIZE, onNcCalcSize},
    {WM_NCMOUSEMOVE, onNcPointer},
    {WM_NCLBUTTONDOWN, onNcPointer},
    {WM_NCLBUTTONUP, onNcPointer},
    {WM_NCLBUTTONDBLCLK, onNcPointer},
    {WM_NCRBUTTONDOWN, onNcPointer},
    {WM_NCRBUTTONUP, onNcPointer},
    {WM_NCRBUTTONDBLCLK, onNcPointer},
    {WM_NCMBUTTONDOWN, onNcPointer},
    {WM_NCMBUTTONUP, onNcPointer},
    {WM_NCMBUTTONDBLCLK, onNcPointer},
    {WM_QUERYNEWPALETTE, onOne},
    {WM_PALETTECHANGED, onPaletteChanged},
};

static_assert(sortedByMessage(kStage1) && sortedByMessage(kStage2) &&
              sortedByMessage(kStage3) && sortedByMessage(kStage4));

template <size_t N> Handler find(const Entry (&table)[N], UINT msg)
{
    auto it = std::lower_bound(std::begin(table), std::end(table), msg,
                               [](const Entry &e, UINT m) { return e.msg < m; });
    return it != std::end(table) && it->msg == msg ? it->handler : nullptr;
}

// ---------------------------------------------------------------------------
// The preamble.

// A window without widgets built outside the library: the few messages
// that make sense without widgets.
LRESULT foreignWindow(HWND hwnd, WindowRecord &w, UINT msg, WPARAM wParam, LPARAM lParam)
{
    if (msg > WM_USER)
        return 0;
    switch (msg) {
    case WM_PAINT:
        omPaintDeleteItem(hwnd);
        return 1;
    case WM_CLOSE:
        DestroyWindow(hwnd);
        return 0;
    case WM_GETTEXT:
        return copyRecordText(w, wParam, lParam);
    default:
        return 1;
    }
}

// Runs the preamble; true with `result` set when it answered the call.
bool preamble(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam, WindowRecord *&w, LRESULT &result)
{
    result = 0;
    if (!omIsWindow(hwnd))
        return true;
    w = ConvertHWNDtoPtr(hwnd);
    if (w->exStyle & kOmExForeign) {
        result = foreignWindow(hwnd, *w, msg, wParam, lParam);
        return true;
    }
    if (msg >= 0x361 && msg <= 0x37E)
        return true;
    return !omThreadRuleOk("DefWindowProc");
}

template <size_t N>
LRESULT runStage(const Entry (&table)[N], HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam,
                 LRESULT (*next)(HWND, UINT, WPARAM, LPARAM))
{
    WindowRecord *w = nullptr;
    LRESULT result;
    if (preamble(hwnd, msg, wParam, lParam, w, result))
        return result;
    if (Handler h = find(table, msg))
        return om::core::guarded("DefWindowProc", LRESULT(0),
                                 [&] { return h(Call{hwnd, w, msg, wParam, lParam}); });
    return next ? next(hwnd, msg, wParam, lParam) : 0;
}

}  // namespace
}  // namespace om::winmgmt::defwnd

using namespace om::winmgmt::defwnd;

extern "C" LRESULT WINAPI DefWindowProcA(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam)
{
    return runStage(kStage1, hWnd, Msg, wParam, lParam, DefWindowProcA_1);
}

extern "C" OLMO_API LRESULT WINAPI DefWindowProcA_1(HWND hWnd, UINT Msg, WPARAM wParam,
                                                    LPARAM lParam)
{
    return runStage(kStage2, hWnd, Msg, wParam, lParam, DefWindowProcA_2);
}

extern "C" OLMO_API LRESULT WINAPI DefWindowProcA_2(HWND hWnd, UINT Msg, WPARAM wParam,
                                                    LPARAM lParam)
{
    return runStage(kStage3, hWnd, Msg, wParam, lParam, DefWindowProcA_3);
}

extern "C" OLMO_API LRESULT WINAPI DefWindowProcA_3(HWND hWnd, UINT Msg, WPARAM wParam,
                                                    LPARAM lParam)
{
    return runStage(kStage4, hWnd, Msg, wParam, lParam, nullptr);
}

extern "C" LRESULT WINAPI DefWindowProcW(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam)
{
    return DefWindowProcA(hWnd, Msg, wParam, lParam);
}
