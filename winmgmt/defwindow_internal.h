// What the files of the default window procedure share: the call a
// handler receives, the message tables' entry type and the handlers that
// live outside defwindow.cpp.  Local to winmgmt/.
#pragma once

#include "core/omwindow.h"

#include <X11/Xlib.h>

namespace om::winmgmt::defwnd {

// One call of the default procedure.  The record is live when the handler
// starts; a handler that sends a message checks it again afterwards.
struct Call {
    HWND hwnd;
    WindowRecord *w;
    UINT msg;
    WPARAM wParam;
    LPARAM lParam;
};

using Handler = LRESULT (*)(const Call &);

struct Entry {
    UINT msg;
    Handler handler;
};

template <size_t N> constexpr bool sortedByMessage(const Entry (&table)[N])
{
    for (size_t i = 1; i < N; ++i)
        if (table[i - 1].msg >= table[i].msg)
            return false;
    return true;
}

inline bool isChild(const WindowRecord &w)
{
    return (w.style & WS_CHILD) != 0;
}

// Dialog, Edit, Button, ListBox, ComboBox, Static and ScrollBar windows
// draw their own edges.
inline bool drawsOwnEdges(const WindowRecord &w)
{
    switch (w.kind) {
    case OM_WK_DIALOG:
    case OM_WK_EDIT:
    case OM_WK_BUTTON:
    case OM_WK_LISTBOX:
    case OM_WK_COMBOBOX:
    case OM_WK_STATIC:
    case OM_WK_SCROLLBAR:
        return true;
    default:
        return false;
    }
}

// Text (defwindow_text.cpp).
LRESULT copyRecordText(const WindowRecord &w, WPARAM size, LPARAM buffer);
LRESULT onGetText(const Call &c);
LRESULT onSetText(const Call &c);
LRESULT onGetTextLength(const Call &c);
LRESULT onSetIcon(const Call &c);
LRESULT onWindowPosChanged(const Call &c);

// System commands (defwindow_syscmd.cpp).
LRESULT onSysCommand(const Call &c);

// Hit testing and client edges (hittest.cpp).
LRESULT onNcHitTest(const Call &c);
LRESULT onNcCalcSize(const Call &c);
LRESULT onNcPaint(const Call &c);
// A point of the canvas in the shellWidget's coordinates, from Xt's
// cached positions (no server round trip).
void canvasToFrame(const WindowRecord &w, int &x, int &y);

// X events back to the widgets (defwindow_input.cpp).
LRESULT onSysKey(const Call &c);
LRESULT onKey(const Call &c);
LRESULT onChar(const Call &c);
LRESULT onClientPointer(const Call &c);
LRESULT onMouseWheel(const Call &c);
LRESULT onNcPointer(const Call &c);

}  // namespace om::winmgmt::defwnd
