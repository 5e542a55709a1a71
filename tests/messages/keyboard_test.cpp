// Keyboard mapping: the keysym to virtual-key table against the kernel's
// inverse, modifier discovery on the server, and keys injected through
// XTest read back as keysyms and virtual keys.
#include <gtest/gtest.h>

#include "harness/input.h"

#include "kernel/omdisplay.h"
#include "kernel/ominit.h"
#include "kernel/omkeyboard.h"
#include "messages/omkeymap.h"

#include <windows.h>

#include <X11/XKBlib.h>
#include <X11/Sunkeysym.h>
#include <X11/keysym.h>

#include <chrono>
#include <map>
#include <optional>
#include <thread>

namespace {

struct Row {
    KeySym keysym;
    unsigned vk;
};

TEST(KeyMap, TableRows)
{
    const Row rows[] = {
        {XK_a, 'A'},          {XK_A, 'A'},          {XK_z, 'Z'},
        {XK_0, '0'},          {XK_9, '9'},          {XK_space, VK_SPACE},
        {XK_F1, VK_F1},       {XK_F12, VK_F12},     {XK_F17, 0x80},
        {XK_F24, VK_F24},     {XK_Multi_key, XK_Multi_key},
        {XK_BackSpace, 0x08}, {XK_ISO_Left_Tab, 0x09}, {XK_Clear, 0x0C},
        {XK_Return, 0x0D},    {XK_KP_Enter, 0x0D},  {XK_Escape, 0x1B},
        {XK_Break, 0x13},     {XK_Cancel, 0x03},    {XK_Meta_R, VK_MENU},
        {XK_Alt_R, VK_MENU},  {XK_Num_Lock, 0x90},  {XK_Scroll_Lock, 0x91},
        {XK_Begin, VK_HOME},  {XK_KP_Home, VK_HOME}, {XK_KP_Up, VK_UP},
        {XK_KP_Right, VK_RIGHT}, {XK_KP_Prior, VK_PRIOR}, {XK_KP_End, VK_END},
        {XK_KP_Insert, VK_INSERT}, {XK_KP_Delete, VK_DELETE},
        {0x1000FF74 /* HP BackTab */, VK_TAB},
        {0x1000FF72 /* HP InsertChar */, VK_INSERT},
        {0x1004FF41 /* OSF PageUp */, VK_PRIOR},
        {0x1004FF42 /* OSF PageDown */, VK_NEXT},
        {0x1004FF54 /* OSF Down */, VK_DOWN},
        {XK_KP_7, 0x67},      {XK_KP_Multiply, 0x6A}, {XK_KP_Divide, 0x6F},
        {XK_exclam, '1'},     {XK_at, '2'},         {XK_parenright, '0'},
        {XK_asciicircum, '6'}, {XK_underscore, 0xB1}, {XK_equal, 0xB2}, {XK_braceleft, 0xB3},
        {XK_bracketright, 0xB4}, {XK_slash, 0xB8}, {XK_period, 0xB9}, {XK_comma, 0xBA},
        {XK_Menu, VK_MENU}, {XK_underscore, OM_VK_MINUS},
        {XK_braceleft, OM_VK_BRACKETLEFT}, {XK_question, OM_VK_SLASH}, {XK_colon, OM_VK_SEMICOLON},
        {XK_quotedbl, OM_VK_APOSTROPHE}, {XK_bar, OM_VK_BACKSLASH}, {XK_asciitilde, OM_VK_GRAVE},
        {XK_eacute, XK_eacute},  // not a US key: unchanged
    };
    for (const Row &r : rows) {
        SCOPED_TRACE(testing::Message() << "keysym 0x" << std::hex << r.keysym);
        EXPECT_EQ(XK2VK(r.keysym), r.vk);
    }
}

// The virtual key VK2XK's keysym maps back to: the key itself except
// where Windows has left/right or two names for one X key.
unsigned canonicalVk(unsigned vk)
{
    switch (vk) {
    case VK_LSHIFT:
    case VK_RSHIFT: return VK_SHIFT;
    case VK_LCONTROL:
    case VK_RCONTROL: return VK_CONTROL;
    case VK_LMENU:
    case VK_RMENU: return VK_MENU;
    case VK_SNAPSHOT: return VK_PRINT;
    default: return vk;
    }
}

TEST(KeyMap, InverseOfKernelMapForEveryVirtualKey)
{
    int mapped = 0;
    for (unsigned vk = 1; vk < 0x100; ++vk) {
        KeySym ks = VK2XK(vk);
        if (ks == NoSymbol)
            continue;
        SCOPED_TRACE(testing::Message() << "vk 0x" << std::hex << vk << " keysym 0x" << ks);
        ++mapped;
        EXPECT_EQ(XK2VK(ks), canonicalVk(vk));
    }
    // Letters, digits, F1-F24 and the named keys: a shrinking kernel map
    // would silently shrink this test.
    EXPECT_GE(mapped, 26 + 10 + 24 + 60);
}

TEST(KeyMap, SunHighFunctionKeysOnlyOnSunServers)
{
    omKeyboardForceVendor(OM_VENDOR_OTHER);
    EXPECT_EQ(XK2VK(XK_F21), static_cast<unsigned>(VK_F21));
    EXPECT_EQ(XK2VK(XK_F23), static_cast<unsigned>(VK_F23));
    omKeyboardForceVendor(OM_VENDOR_SUN);
    const Row sun[] = {{XK_F21, 0x13}, {XK_F23, 0x91}, {XK_F25, 0x6F}, {XK_F27, 0x24},
                       {XK_F29, 0x21}, {XK_F31, 0x0C}, {XK_F33, 0x23}, {XK_F35, 0x22},
                       {SunXK_F36, 0x7A}, {SunXK_F37, 0x7B}, {XK_F12, 0x7B}, {XK_a, 'A'}};
    for (const Row &r : sun) {
        SCOPED_TRACE(testing::Message() << "keysym 0x" << std::hex << r.keysym);
        EXPECT_EQ(XK2VK(r.keysym), r.vk);
    }
    omKeyboardForceVendor(-1);
}

// On the test server, with the toolkit (and so omInitModifierMasks) up.
class KeyServer : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(omInitialize(nullptr, nullptr));
        dpy = omDisplay;
        ASSERT_NE(dpy, nullptr);
    }
    void TearDown() override { omKeyboardForceVendor(-1); }

    XKeyEvent keyEvent(KeySym ks, unsigned state)
    {
        XKeyEvent ev{};
        ev.type = KeyPress;
        ev.display = dpy;
        ev.root = ev.window = DefaultRootWindow(dpy);
        ev.keycode = XKeysymToKeycode(dpy, ks);
        ev.state = state;
        ev.same_screen = True;
        return ev;
    }

    Display *dpy = nullptr;
};

TEST_F(KeyServer, ModifierMasksFollowTheServerMap)
{
    // Xvfb's keymap: Alt on Mod1, Num Lock on Mod2.
    EXPECT_EQ(omShiftMask, static_cast<unsigned>(ShiftMask));
    EXPECT_EQ(omControlMask, static_cast<unsigned>(ControlMask));
    EXPECT_EQ(omAltMask, static_cast<unsigned>(Mod1Mask));
    EXPECT_EQ(omNumLockMask, static_cast<unsigned>(Mod2Mask));

    // Move Num Lock to Mod3 and Alt to Mod4 on the server, then back.
    XModifierKeymap *saved = XGetModifierMapping(dpy);
    ASSERT_NE(saved, nullptr);
    XModifierKeymap *map = XGetModifierMapping(dpy);
    KeyCode numLock = XKeysymToKeycode(dpy, XK_Num_Lock);
    KeyCode altL = XKeysymToKeycode(dpy, XK_Alt_L);
    ASSERT_TRUE(numLock && altL);
    for (int mod = 0; mod < 8; ++mod) {
        map = XDeleteModifiermapEntry(map, numLock, mod);
        map = XDeleteModifiermapEntry(map, altL, mod);
    }
    map = XInsertModifiermapEntry(map, numLock, Mod3MapIndex);
    map = XInsertModifiermapEntry(map, altL, Mod4MapIndex);
    ASSERT_EQ(XSetModifierMapping(dpy, map), MappingSuccess);
    XSync(dpy, False);
    omInitModifierMasks();
    EXPECT_EQ(omNumLockMask, static_cast<unsigned>(Mod3Mask));
    EXPECT_EQ(omAltMask, static_cast<unsigned>(Mod4Mask));
    EXPECT_EQ(XSetModifierMapping(dpy, saved), MappingSuccess);
    XSync(dpy, False);
    XFreeModifiermap(map);
    XFreeModifiermap(saved);
    omInitModifierMasks();
    EXPECT_EQ(omNumLockMask, static_cast<unsigned>(Mod2Mask));
}

TEST_F(KeyServer, KeypadFollowsNumLockOnBothLookupPaths)
{
    // Modern Xlib applies Num Lock itself; the column path is for servers
    // whose XLookupString does not, forced here with Xvfb's column.
    EXPECT_EQ(bUseXLookupString, 1);
    int savedIndex = omNumLockMapIndex;
    for (int useLookupString : {1, 0}) {
        SCOPED_TRACE(useLookupString ? "XLookupString" : "keysym column");
        bUseXLookupString = useLookupString;
        omNumLockMapIndex = 1;
        XKeyEvent on = keyEvent(XK_KP_7, omNumLockMask);
        EXPECT_EQ(omLookupKeysym(&on), static_cast<unsigned>(XK_KP_7));
        EXPECT_EQ(XK2VK(omLookupKeysym(&on)), 0x67u);
        XKeyEvent off = keyEvent(XK_KP_7, 0);
        EXPECT_EQ(omLookupKeysym(&off), static_cast<unsigned>(XK_KP_Home));
        EXPECT_EQ(XK2VK(omLookupKeysym(&off)), 0x24u);
        // Not a keypad key: the column path falls back to XLookupString.
        XKeyEvent letter = keyEvent(XK_q, omNumLockMask | ShiftMask);
        EXPECT_EQ(omLookupKeysym(&letter), static_cast<unsigned>(XK_Q));
    }
    bUseXLookupString = 1;
    omNumLockMapIndex = savedIndex;
}

TEST_F(KeyServer, VendorQuirks)
{
    // Sun: F16 is Copy, delivered as Control+C with the event rewritten.
    omKeyboardForceVendor(OM_VENDOR_SUN);
    XKeyEvent copy = keyEvent(XK_F16, 0);
    if (copy.keycode) {
        EXPECT_EQ(omLookupKeysym(&copy), static_cast<unsigned>(XK_c));
        EXPECT_EQ(XK2VK(omLookupKeysym(&copy)), static_cast<unsigned>('C'));
        EXPECT_TRUE(copy.state & omControlMask);
        EXPECT_EQ(copy.keycode, XKeysymToKeycode(dpy, XK_c));
    }
    // Hewlett-Packard: Alt is taken out of the lookup; Shift+KP_F1 is F9.
    omKeyboardForceVendor(OM_VENDOR_HP);
    XKeyEvent alt = keyEvent(XK_a, omAltMask);
    EXPECT_EQ(omLookupKeysym(&alt), static_cast<unsigned>(XK_a));
    XKeyEvent kpf1 = keyEvent(XK_KP_F1, ShiftMask);
    if (kpf1.keycode) {
        EXPECT_EQ(omLookupKeysym(&kpf1), static_cast<unsigned>(XK_F9));
    }
    omKeyboardForceVendor(OM_VENDOR_OTHER);
    XKeyEvent plain = keyEvent(XK_F16, 0);
    if (plain.keycode) {
        EXPECT_EQ(omLookupKeysym(&plain), static_cast<unsigned>(XK_F16));
    }
}

// Real key presses through XTest on a focused window of a connection of
// the test's own.
class KeyInjection : public KeyServer {
protected:
    void SetUp() override
    {
        KeyServer::SetUp();
        conn = XOpenDisplay(DisplayString(dpy));
        ASSERT_NE(conn, nullptr);
        win = XCreateSimpleWindow(conn, DefaultRootWindow(conn), 0, 0, 50, 50, 0, 0, 0);
        XSelectInput(conn, win, KeyPressMask | StructureNotifyMask);
        XMapRaised(conn, win);
        XEvent ev;
        do
            XNextEvent(conn, &ev);
        while (ev.type != MapNotify);
        XSetInputFocus(conn, win, RevertToPointerRoot, CurrentTime);
        XSync(conn, False);
    }
    void TearDown() override
    {
        if (conn) {
            XDestroyWindow(conn, win);
            XCloseDisplay(conn);
        }
        KeyServer::TearDown();
    }

    // The next KeyPress on the window, waiting at most two seconds.
    std::optional<XKeyEvent> nextKeyPress()
    {
        auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(2);
        XEvent ev;
        while (std::chrono::steady_clock::now() < deadline) {
            if (XCheckTypedWindowEvent(conn, win, KeyPress, &ev))
                return ev.xkey;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return std::nullopt;
    }

    std::optional<unsigned> pressAndMap(KeySym ks)
    {
        if (!om::test::pressKey(conn, ks))
            return std::nullopt;
        std::optional<XKeyEvent> ev = nextKeyPress();
        if (!ev)
            return std::nullopt;
        return XK2VK(omLookupKeysym(&*ev));
    }

    Display *conn = nullptr;
    Window win = 0;
};

bool isLockKey(unsigned vk)
{
    return vk == VK_CAPITAL || vk == VK_NUMLOCK || vk == VK_SCROLL;
}

TEST_F(KeyInjection, EveryVirtualKeyOnTheServerComesBack)
{
    int tested = 0;
    for (unsigned vk = 1; vk < 0x100; ++vk) {
        KeySym ks = VK2XK(vk);
        if (ks == NoSymbol)
            continue;
        KeyCode code = XKeysymToKeycode(conn, ks);
        // Keys the server has on the plain level only: the rest need
        // modifiers and give other keysyms.
        if (!code || XkbKeycodeToKeysym(conn, code, 0, 0) != ks)
            continue;
        bool keypadDigit = vk >= VK_NUMPAD0 && vk <= VK_NUMPAD9;
        SCOPED_TRACE(testing::Message() << "vk 0x" << std::hex << vk << " keysym 0x" << ks);
        if (keypadDigit) {
            ASSERT_TRUE(pressAndMap(XK_Num_Lock));
        }
        EXPECT_EQ(pressAndMap(ks), canonicalVk(vk));
        // Lock keys and Num Lock go back off.
        if (isLockKey(vk)) {
            ASSERT_TRUE(pressAndMap(ks));
        }
        if (keypadDigit) {
            ASSERT_TRUE(pressAndMap(XK_Num_Lock));
        }
        ++tested;
    }
    EXPECT_GE(tested, 80);
}

TEST_F(KeyInjection, KeypadWithNumLockOffGivesTheEditingKeys)
{
    const std::map<KeySym, unsigned> keypad = {{XK_KP_7, VK_HOME}, {XK_KP_8, VK_UP},
                                               {XK_KP_3, VK_NEXT}, {XK_KP_0, VK_INSERT},
                                               {XK_KP_1, VK_END}};
    for (const auto &[ks, vk] : keypad) {
        SCOPED_TRACE(testing::Message() << "keysym 0x" << std::hex << ks);
        // pressKey finds the keycode by the digit keysym; Num Lock is off.
        EXPECT_EQ(pressAndMap(ks), vk);
    }
}

}  // namespace
