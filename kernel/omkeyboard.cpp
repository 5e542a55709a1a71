// Key state and the virtual-key to keysym map.  GetKeyState reads the
// state the event translation keeps; GetAsyncKeyState asks the server.
#include "kernel/omkeyboard.h"
#include "kernel/omdisplay.h"

#include <windows.h>

#include <X11/XKBlib.h>
#include <X11/keysym.h>

#include <cstring>

extern "C" {
unsigned char omVirKeyState[0x102];
}

namespace {

struct VkKeysym {
    unsigned char vk;
    KeySym keysym;
};

// Keys whose virtual key is not a letter or a digit.  Letters map to the
// lower-case keysym and digits to themselves (below).  The Menu key is
// VK_MENU in the toolkit's mapping, so VK_APPS has no key.
constexpr VkKeysym kVkKeysyms[] = {
    {VK_CANCEL, XK_Cancel},       {VK_BACK, XK_BackSpace},       {VK_TAB, XK_Tab},
    {VK_CLEAR, XK_Clear},         {VK_RETURN, XK_Return},        {VK_SHIFT, XK_Shift_L},
    {VK_CONTROL, XK_Control_L},   {VK_MENU, XK_Alt_L},           {VK_PAUSE, XK_Pause},
    {VK_CAPITAL, XK_Caps_Lock},   {VK_ESCAPE, XK_Escape},        {VK_SPACE, XK_space},
    {VK_PRIOR, XK_Prior},         {VK_NEXT, XK_Next},            {VK_END, XK_End},
    {VK_HOME, XK_Home},           {VK_LEFT, XK_Left},            {VK_UP, XK_Up},
    {VK_RIGHT, XK_Right},         {VK_DOWN, XK_Down},            {VK_SELECT, XK_Select},
    {VK_PRINT, XK_Print},         {VK_EXECUTE, XK_Execute},      {VK_SNAPSHOT, XK_Print},
    {VK_INSERT, XK_Insert},       {VK_DELETE, XK_Delete},        {VK_HELP, XK_Help},
    {VK_LWIN, XK_Super_L},        {VK_RWIN, XK_Super_R},
    {VK_NUMPAD0, XK_KP_0},        {VK_NUMPAD1, XK_KP_1},         {VK_NUMPAD2, XK_KP_2},
    {VK_NUMPAD3, XK_KP_3},        {VK_NUMPAD4, XK_KP_4},         {VK_NUMPAD5, XK_KP_5},
    {VK_NUMPAD6, XK_KP_6},        {VK_NUMPAD7, XK_KP_7},         {VK_NUMPAD8, XK_KP_8},
    {VK_NUMPAD9, XK_KP_9},        {VK_MULTIPLY, XK_KP_Multiply}, {VK_ADD, XK_KP_Add},
    {VK_SEPARATOR, XK_KP_Separator}, {VK_SUBTRACT, XK_KP_Subtract}, {VK_DECIMAL, XK_KP_Decimal},
    {VK_DIVIDE, XK_KP_Divide},    {VK_NUMLOCK, XK_Num_Lock},     {VK_SCROLL, XK_Scroll_Lock},
    {VK_LSHIFT, XK_Shift_L},      {VK_RSHIFT, XK_Shift_R},       {VK_LCONTROL, XK_Control_L},
    {VK_RCONTROL, XK_Control_R},  {VK_LMENU, XK_Alt_L},          {VK_RMENU, XK_Alt_R},
    {OM_VK_GRAVE, XK_grave},      {OM_VK_MINUS, XK_minus},       {OM_VK_EQUAL, XK_equal},
    {OM_VK_BRACKETLEFT, XK_bracketleft}, {OM_VK_BRACKETRIGHT, XK_bracketright},
    {OM_VK_BACKSLASH, XK_backslash}, {OM_VK_SEMICOLON, XK_semicolon},
    {OM_VK_APOSTROPHE, XK_apostrophe}, {OM_VK_SLASH, XK_slash}, {OM_VK_PERIOD, XK_period},
    {OM_VK_COMMA, XK_comma},
};

bool isToggleKey(int vk)
{
    return vk == VK_CAPITAL || vk == VK_NUMLOCK || vk == VK_SCROLL;
}

}  // namespace

extern "C" OLMO_API KeySym VK2XK(unsigned vk)
{
    if (vk >= 'A' && vk <= 'Z')
        return XK_a + (vk - 'A');
    if (vk >= '0' && vk <= '9')
        return XK_0 + (vk - '0');
    if (vk >= VK_F1 && vk <= VK_F24)
        return XK_F1 + (vk - VK_F1);
    for (const VkKeysym &e : kVkKeysyms)
        if (e.vk == vk)
            return e.keysym;
    return NoSymbol;
}

extern "C" SHORT WINAPI GetKeyState(int nVirtKey)
{
    if (nVirtKey < 0 || nVirtKey > 0xFF)
        return 0;
    unsigned char s = omVirKeyState[nVirtKey];
    // Windows: the high bit while down, the low bit while toggled on.
    if (isToggleKey(nVirtKey))
        return static_cast<SHORT>(s & 1);
    return s ? static_cast<SHORT>(0xFF80) : 0;
}

extern "C" BOOL WINAPI GetKeyboardState(PBYTE lpKeyState)
{
    if (!lpKeyState) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    for (int vk = 0; vk < 256; ++vk) {
        unsigned char s = omVirKeyState[vk];
        lpKeyState[vk] = isToggleKey(vk) ? static_cast<BYTE>(s & 1) : (s ? 0x80 : 0);
    }
    return TRUE;
}

extern "C" BOOL WINAPI SetKeyboardState(LPBYTE lpKeyState)
{
    if (!lpKeyState) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    for (int vk = 0; vk < 256; ++vk)
        omVirKeyState[vk] = isToggleKey(vk) ? (lpKeyState[vk] & 1) : ((lpKeyState[vk] & 0x80) != 0);
    return TRUE;
}

// Asks the server which keys are down now: a round trip, as the name of
// the Windows function promises ("asynchronous").
extern "C" SHORT WINAPI GetAsyncKeyState(int vKey)
{
    Display *dpy = omEnsureDisplay();
    if (!dpy || vKey <= 0 || vKey > 0xFF)
        return 0;
    if (vKey == VK_LBUTTON || vKey == VK_RBUTTON || vKey == VK_MBUTTON) {
        Window root, child;
        int rx, ry, wx, wy;
        unsigned mask = 0;
        XQueryPointer(dpy, DefaultRootWindow(dpy), &root, &child, &rx, &ry, &wx, &wy, &mask);
        unsigned bit = vKey == VK_LBUTTON ? Button1Mask : vKey == VK_MBUTTON ? Button2Mask : Button3Mask;
        return (mask & bit) ? static_cast<SHORT>(0x8000) : 0;
    }
    KeySym ks = VK2XK(static_cast<unsigned>(vKey));
    if (ks == NoSymbol)
        return 0;
    KeyCode code = XKeysymToKeycode(dpy, ks);
    if (code == 0)
        return 0;
    char keys[32];
    XQueryKeymap(dpy, keys);
    return (keys[code / 8] & (1 << (code % 8))) ? static_cast<SHORT>(0x8000) : 0;
}
