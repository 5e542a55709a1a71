// The default procedure's window text (the shell's or frame's title, else
// the record's text), the big icon of WM_SETICON, and the move and size
// messages that follow WM_WINDOWPOSCHANGED.
#include "winmgmt/omdefwindow.h"

#include "defwindow_internal.h"

#include "graphics/omgdi.h"
#include "widgets/XoBorder.h"

#include <Xm/Xm.h>
#include <X11/Intrinsic.h>
#include <X11/Shell.h>

#include <algorithm>
#include <cstring>
#include <string>

namespace om::winmgmt::defwnd {
namespace {

// The title the user sees: the top-level shell's title, or the child
// frame's.  Empty when the window has neither.  The shell around a
// program's own widget is the program's, and so is its title.
bool ownsShell(const WindowRecord &w)
{
    return w.shellWidget && !(w.exStyle & kOmExNonToolkit);
}

std::string widgetTitle(const WindowRecord &w)
{
    Widget shell = w.shellWidget;
    if (!ownsShell(w))
        return {};
    if (XoIsBorder(shell)) {
        char *text = XoBorderGetTitleText(shell);
        std::string out = text ? text : "";
        XtFree(text);
        return out;
    }
    if (XtIsWMShell(shell)) {
        String title = nullptr;
        XtVaGetValues(shell, XmNtitle, &title, nullptr);
        return title ? title : "";
    }
    return {};
}

std::string displayedText(const WindowRecord &w)
{
    std::string title = widgetTitle(w);
    return title.empty() ? std::string(om::core::recordText(w)) : title;
}

LRESULT copyOut(const std::string &text, WPARAM size, LPARAM buffer)
{
    if (!size || !buffer)
        return 0;
    size_t n = std::min(text.size(), static_cast<size_t>(size - 1));
    char *out = reinterpret_cast<char *>(buffer);
    std::memcpy(out, text.data(), n);
    out[n] = '\0';
    return static_cast<LRESULT>(n);
}

// The MDI window menu lists the child as "&N title": keep the number,
// take the new title, keep the check mark.
void renameWindowMenuItem(const WindowRecord &w, const std::string &title)
{
    WindowRecord *client = omWindowRecord(w.parent);
    WindowRecord *frame = client ? omWindowRecord(client->parent) : nullptr;
    HMENU menu = frame && !(frame->style & WS_CHILD) ? reinterpret_cast<HMENU>(frame->idOrMenu)
                                                      : nullptr;
    if (!menu)
        return;
    UINT id = static_cast<UINT>(w.idOrMenu);
    char old[128] = {};
    GetMenuStringA(menu, id, old, sizeof old, MF_BYCOMMAND);
    std::string text(old, strnlen(old, 4));
    text += title;
    bool checked = (GetMenuState(menu, id, MF_BYCOMMAND) & MF_CHECKED) != 0;
    ModifyMenuA(menu, id, MF_BYCOMMAND | MF_STRING | (checked ? MF_CHECKED : 0), id, text.c_str());
}

}  // namespace

LRESULT copyRecordText(const WindowRecord &w, WPARAM size, LPARAM buffer)
{
    return copyOut(om::core::recordText(w), size, buffer);
}

LRESULT onGetText(const Call &c)
{
    if (!c.wParam || !c.lParam)
        return 0;
    return copyOut(displayedText(*c.w), c.wParam, c.lParam);
}

LRESULT onGetTextLength(const Call &c)
{
    return static_cast<LRESULT>(displayedText(*c.w).size());
}

LRESULT onSetText(const Call &c)
{
    WindowRecord &w = *c.w;
    const char *in = reinterpret_cast<const char *>(c.lParam);
    std::string text;
    if (in && reinterpret_cast<uintptr_t>(in) > 0xFFFF)
        for (const char *p = in; *p; ++p)
            if (*p != '\r')
                text += *p;
    om::core::setRecordText(w, text.c_str());
    Widget shell = ownsShell(w) ? w.shellWidget : nullptr;
    bool caption = (w.style & WS_CAPTION) != 0;
    if (shell && !isChild(w) && XtIsWMShell(shell)) {
        XtVaSetValues(shell, XmNtitle, text.c_str(), nullptr);
        if (caption)
            XtVaSetValues(shell, XmNiconName, text.c_str(), nullptr);
    } else if (shell && isChild(w) && XoIsBorder(shell)) {
        XmString title = XmStringCreate(const_cast<char *>(text.c_str()),
                                        const_cast<char *>(XmFONTLIST_DEFAULT_TAG));
        XtVaSetValues(shell, XoNtitle, title, nullptr);
        XmStringFree(title);
        if (caption)
            XtVaSetValues(shell, XmNiconName, text.c_str(), nullptr);
        if (caption && w.kind == OM_WK_MDICHILD && w.inWindowMenu) {
            renameWindowMenuItem(w, text);
            if (omIsWindow(c.hwnd))
                omMdiMenuSetTitle(c.hwnd, text.c_str());
        }
    }
    return 0;
}

LRESULT onSetIcon(const Call &c)
{
    if (c.wParam == ICON_SMALL) {
        omDebugWarning(OmDiag::Unsupported, "WM_SETICON for little icon");
        return 0;
    }
    WindowRecord &w = *c.w;
    if (!w.windowClass)
        return 0;
    HICON icon = reinterpret_cast<HICON>(c.lParam);
    HICON old;
    {
        // The class's icon, not the window's: every window of it changes.
        std::lock_guard<std::mutex> lock(om::core::windowClassMutex());
        old = w.windowClass->icon;
        w.windowClass->icon = icon;
    }
    Widget shell = w.shellWidget;
    if (!shell || !icon)
        return reinterpret_cast<LRESULT>(old);
    if (w.kind != OM_WK_MDICHILD && XtIsShell(shell)) {
        omLoadColorIcon(c.hwnd, omIconGetDefaultPixmap(icon));
    } else if (w.style) {
        int width = 0, height = 0;
        Pixmap pixmap = omIconGetDefaultPixmap(icon);
        omIconGetMask(icon, &width, &height);
        if (pixmap != None && width > 0 && height > 0)
            XtVaSetValues(shell, "iconPixmap", pixmap, XoNiconWidth, width, XoNiconHeight, height,
                          nullptr);
    }
    return reinterpret_cast<LRESULT>(old);
}

LRESULT onWindowPosChanged(const Call &c)
{
    const WINDOWPOS *pos = reinterpret_cast<const WINDOWPOS *>(c.lParam);
    if (!pos)
        return 0;
    UINT flags = pos->flags;
    if ((XoGetMoveStatus() || XoGetSizeStatus()) && c.w->exposed)
        SendMessageA(c.hwnd, WM_ENTERSIZEMOVE, 0, 0);
    if (!omIsWindow(c.hwnd))
        return 0;
    if (!(flags & (SWP_NOMOVE | SWP_NOCLIENTMOVE)))
        omSendMoveMessage(c.hwnd);
    if (!(flags & SWP_FRAMECHANGED) && (flags & (SWP_NOSIZE | SWP_NOCLIENTSIZE)))
        return 0;
    WPARAM type = SIZE_RESTORED;
    LPARAM size = 0;
    if (omIsWindow(c.hwnd) && omSizeMessageArgs(c.hwnd, TRUE, &type, &size))
        SendMessageA(c.hwnd, WM_SIZE, type, size);
    return 0;
}

}  // namespace om::winmgmt::defwnd
