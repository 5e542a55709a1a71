// Key events into key messages: the virtual key and lParam bits of a
// KeyPress or KeyRelease, the system-key rules, Shift+F10 and F1, list
// boxes that ask their parent first, the key state array, and keybd_event,
// which goes through XTest so that the event arrives as device input would.
#include "messages/xevents.h"

#include "core/omwindow.h"
#include "kernel/omdiag.h"
#include "kernel/omdisplay.h"
#include "kernel/omkeyboard.h"
#include "messages/omkeymap.h"
#include "messages/ommessageq.h"
#include "widgets/XoBorder.h"

#include <X11/Intrinsic.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>



namespace om::messages {
namespace {

// A list box that wants the keyboard lets its parent act on a key first:
// the parent hears the key and the caret item and may answer -2 to have
// the key dropped.
bool listBoxTakesKey(HWND hwnd, const WindowRecord &w, unsigned vk)
{
    if (w.kind != OM_WK_LISTBOX || !(w.style & LBS_WANTKEYBOARDINPUT) || !w.parent)
        return false;
    HWND parent = w.parent;
    auto caret = static_cast<WORD>(SendMessageA(hwnd, LB_GETCARETINDEX, 0, 0));
    if (!omIsWindow(hwnd) || !omIsWindow(parent))
        return true;
    UINT ask = (w.style & LBS_HASSTRINGS) ? WM_VKEYTOITEM : WM_CHARTOITEM;
    LRESULT answer =
        SendMessageA(parent, ask, MAKEWPARAM(vk, caret), reinterpret_cast<LPARAM>(hwnd));
    return answer == -2 || !omIsWindow(hwnd);
}

bool frameBusy(const WindowRecord &w)
{
    if (!(w.style & WS_CHILD) || !w.frameWidget)
        return false;
    return XoGetSizeStatus() || XoGetMoveStatus();
}

POINT clientOriginOnScreen(const WindowRecord &w)
{
    POINT p{0, 0};
    if (w.canvasWidget && XtWindow(w.canvasWidget)) {
        Window child;
        XTranslateCoordinates(omDisplay, XtWindow(w.canvasWidget), DefaultRootWindow(omDisplay),
                              0, 0, reinterpret_cast<int *>(&p.x), reinterpret_cast<int *>(&p.y),
                              &child);
    }
    return p;
}

void updateKeyState(unsigned keysym, unsigned vk, bool press, HWND hwnd)
{
    if (keysym == XK_Num_Lock || keysym == XK_Caps_Lock) {
        // The entry of a lock key is the lock, which a press turns over.
        if (press)
            omVirKeyState[vk] ^= 1;
        return;
    }
    if (vk == VK_F1 && press && omIsWindow(hwnd))
        SendMessageA(hwnd, WM_HELP, 0, 0);
    if (vk <= 0x100)
        omVirKeyState[vk] = press ? 1 : 0;
    else if (vk != 400 && vk != XK_Multi_key)
        omDebugWarning(OmDiag::VirtualKeyTooLarge, keysym, vk);
}

}  // namespace

LPARAM keyLParam(const XKeyEvent &k, unsigned keysym, unsigned vk, bool press, bool wasDown)
{
    auto bits = static_cast<uint32_t>(1 | ((k.keycode & 0xFF) << 16));
    bool keypad = vk >= 0x60 && vk <= 0x6F && keysym != XK_Num_Lock;
    if ((keysym >> 8) == 0xFF && !keypad)
        bits |= 1u << 24;
    if (k.state & omShiftMask)
        bits |= 1u << 25;
    if (k.state & omControlMask)
        bits |= 1u << 26;
    if (k.state & omShiftLockMask)
        bits |= 1u << 27;
    if (k.state & omNumLockMask)
        bits |= 1u << 28;
    if (k.state & (omAltMask | omMetaMask))
        bits |= 1u << 29;
    if (!press || wasDown)
        bits |= 1u << 30;
    if (!press)
        bits |= 1u << 31;
    return static_cast<LPARAM>(bits);
}

UINT keyMessage(const XKeyEvent &k, unsigned vk, bool press)
{
    bool sys = (k.state & (omAltMask | omMetaMask)) || (vk == VK_MENU && press) || vk == VK_F10;
    if (press)
        return sys ? WM_SYSKEYDOWN : WM_KEYDOWN;
    return sys ? WM_SYSKEYUP : WM_KEYUP;
}

void translateKey(HWND hwnd, XEvent &ev, const InputRoute &route)
{
    WindowRecord *w = omWindowRecord(hwnd);
    if (!w || route.kind == InputRoute::Drop)
        return;
    XKeyEvent &k = ev.xkey;
    bool press = ev.type == KeyPress;
    unsigned keysym = omLookupKeysym(&k);
    unsigned vk = XK2VK(keysym);

    if (frameBusy(*w)) {
        if (press) {
            bool passes = keysym == XK_Escape || keysym == XK_Return || keysym == XK_Left ||
                          keysym == XK_Up || keysym == XK_Right || keysym == XK_Down;
            XoProcessKeyEvents(passes ? keysym : XK_Escape);
        }
        return;
    }
    if (!keysym && VendorRelease(omDisplay) >= 5) {
        // Input-method output without a keysym belongs to the toolkit.
        if (press)
            XtDispatchEvent(&ev);
        return;
    }
    HWND target = route.kind == InputRoute::Redirect ? route.target : hwnd;
    if (press && vk == VK_F10 && (k.state & omShiftMask)) {
        POINT p = clientOriginOnScreen(*w);
        SendMessageA(hwnd, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(hwnd), MAKELPARAM(p.x, p.y));
        if (!omIsWindow(hwnd))
            return;
    }
    bool wasDown = vk <= 0x100 && omVirKeyState[vk];
    // A dropped key still went down: the key state follows the keyboard.
    bool dropped = press && route.kind == InputRoute::Normal && listBoxTakesKey(hwnd, *w, vk);
    if (!dropped && omIsWindow(target))
        omPostMessageEvent(target, keyMessage(k, vk, press), vk,
                           keyLParam(k, keysym, vk, press, wasDown), &ev, nullptr, 0);
    updateKeyState(keysym, vk, press, dropped ? nullptr : target);
}

}  // namespace om::messages

// ---------------------------------------------------------------------------
// Synthetic keys go through the XTest extension, so that they take the
// same path through the server as a user's.

extern "C" void WINAPI keybd_event(BYTE bVk, BYTE bScan, DWORD dwFlags, ULONG_PTR dwExtraInfo)
{
    (void)bScan;
    (void)dwExtraInfo;
    if (!omDisplay)
        return;
    KeySym keysym = VK2XK(bVk);
    if (keysym == NoSymbol)
        return;
    KeyCode code = XKeysymToKeycode(omDisplay, keysym);
    if (!code)
        return;
    XTestFakeKeyEvent(omDisplay, code, (dwFlags & KEYEVENTF_KEYUP) ? False : True, CurrentTime);
    XFlush(omDisplay);
}
