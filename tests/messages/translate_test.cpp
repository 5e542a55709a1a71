// TranslateMessage: keys typed through XTest into a real window become key
// messages; each key-down goes to TranslateMessage with its X event as the
// thread's current key event, and the character message it puts at the
// head of the queue is read back.
#include "xevents_fixture.h"

#include "messages/omkeyevent.h"
#include "messages/omkeymap.h"

#include <X11/keysym.h>

#include <thread>

namespace om::test {
namespace {

constexpr UINT kNone = 0;

class Translate : public XEventsTest {
protected:
    void SetUp() override
    {
        XEventsTest::SetUp();
        if (HasFatalFailure())
            return;
        POINT p = screenOf(hwnd_, 20, 20);
        movePointer(omDisplay, p.x, p.y);
        XSetInputFocus(omDisplay, canvasWindow(hwnd_), RevertToPointerRoot, CurrentTime);
        setLocks(false, false);
    }
    void TearDown() override
    {
        setLocks(false, false);
        omSetCurrentKeyEvent(nullptr);
        XEventsTest::TearDown();
    }
    void setLocks(bool numLock, bool capsLock)
    {
        auto state = [] {
            Window root, child;
            int rx, ry, wx, wy;
            unsigned mask = 0;
            XQueryPointer(omDisplay, DefaultRootWindow(omDisplay), &root, &child, &rx, &ry, &wx,
                          &wy, &mask);
            return mask;
        };
        struct {
            KeySym key;
            unsigned mask;
            bool on;
        } locks[] = {{XK_Num_Lock, omNumLockMask, numLock}, {XK_Caps_Lock, LockMask, capsLock}};
        for (auto &l : locks)
            if (((state() & l.mask) != 0) != l.on) {
                pressKey(omDisplay, l.key);
                OM_PUMP_UNTIL(((state() & l.mask) != 0) == l.on, 1000, xeventsPump);
            }
        pumpFor(std::chrono::milliseconds(20), xeventsPump);
        drain();
    }
    // The down and up messages of one typed key whose virtual key is vk.
    std::pair<OmMsgRecord, OmMsgRecord> stroke(KeySym keysym, unsigned modifiers, unsigned vk)
    {
        EXPECT_TRUE(pressKey(omDisplay, keysym, modifiers));
        std::pair<OmMsgRecord, OmMsgRecord> out{};
        auto taken = [&] {
            OmMsgRecord r;
            while (omTestTakeMessage(nullptr, &r))
                if (r.hwnd == hwnd_ && r.wParam == vk && r.message >= WM_KEYDOWN &&
                    r.message <= WM_SYSKEYUP)
                    (r.message == WM_KEYDOWN || r.message == WM_SYSKEYDOWN ? out.first
                                                                            : out.second) = r;
            return out.second.message != 0;
        };
        EXPECT_TRUE(waitUntil(taken, std::chrono::milliseconds(2000), xeventsPump))
            << "no release of vk 0x" << std::hex << vk;
        return out;
    }
    // What retrieval does: the record's event becomes the current one.
    static BOOL translate(const OmMsgRecord &r)
    {
        omSetCurrentKeyEvent(&r.event.xkey);
        MSG msg{r.hwnd, r.message, r.wParam, r.lParam, r.time, POINT{r.x, r.y}};
        return TranslateMessage(&msg);
    }
    static bool isChar(const OmMsgRecord &r)
    {
        return r.message == WM_CHAR || r.message == WM_SYSCHAR;
    }
};

struct CharCase {
    const char *name;
    KeySym keysym;
    unsigned modifiers;
    bool numLock, capsLock;
    unsigned vk;      // of the key message
    UINT message;     // WM_CHAR, WM_SYSCHAR or kNone
    WPARAM character;
    KeySym keycodeOf; // the key whose keycode the character's lParam carries
};

TEST_F(Translate, KeyDownsPutTheirCharacterFirstInTheQueue)
{
    const CharCase cases[] = {
        {"a", XK_a, 0, false, false, 'A', WM_CHAR, 'a', XK_a},
        {"Shift+a", XK_a, ShiftMask, false, false, 'A', WM_CHAR, 'A', XK_a},
        {"Caps Lock a", XK_a, 0, false, true, 'A', WM_CHAR, 'A', XK_a},
        {"Caps Lock Shift+a", XK_a, ShiftMask, false, true, 'A', WM_CHAR, 'a', XK_a},
        {"7", XK_7, 0, false, false, '7', WM_CHAR, '7', XK_7},
        {"Shift+7", XK_7, ShiftMask, false, false, '7', WM_CHAR, '&', XK_7},
        {"space", XK_space, 0, false, false, VK_SPACE, WM_CHAR, ' ', XK_space},
        {"keypad 5, Num Lock", XK_KP_5, 0, true, false, VK_NUMPAD5, WM_CHAR, '5', XK_KP_5},
        {"keypad *", XK_KP_Multiply, 0, false, false, VK_MULTIPLY, WM_CHAR, '*', XK_KP_Multiply},
        {"keypad 5, no Num Lock", XK_KP_5, 0, false, false, VK_CLEAR, kNone, 0, 0},
        {"Control+A", XK_a, ControlMask, false, false, 'A', WM_CHAR, 1, XK_a},
        {"Control+Shift+Z", XK_z, ControlMask | ShiftMask, false, false, 'Z', WM_CHAR, 26, XK_z},
        {"Control+1", XK_1, ControlMask, false, false, '1', kNone, 0, 0},
        {"Control+Return", XK_Return, ControlMask, false, false, VK_RETURN, WM_CHAR, '\n',
         XK_Return},
        {"Control+Escape", XK_Escape, ControlMask, false, false, VK_ESCAPE, kNone, 0, 0},
        {"Return", XK_Return, 0, false, false, VK_RETURN, WM_CHAR, '\r', XK_Return},
        {"keypad Enter", XK_KP_Enter, 0, false, false, VK_RETURN, WM_CHAR, '\r', XK_Return},
        {"Control+keypad Enter", XK_KP_Enter, ControlMask, false, false, VK_RETURN, WM_CHAR,
         '\n', XK_Return},
        {"BackSpace", XK_BackSpace, 0, false, false, VK_BACK, WM_CHAR, '\b', XK_BackSpace},
        {"Tab", XK_Tab, 0, false, false, VK_TAB, WM_CHAR, '\t', XK_Tab},
        {"Shift+Tab", XK_Tab, ShiftMask, false, false, VK_TAB, WM_CHAR, '\t', XK_Tab},
        {"Escape", XK_Escape, 0, false, false, VK_ESCAPE, WM_CHAR, 0x1B, XK_Escape},
        {"F1", XK_F1, 0, false, false, VK_F1, kNone, 0, 0},
        {"F2", XK_F2, 0, false, false, VK_F2, kNone, 0, 0},
        {"Left", XK_Left, 0, false, false, VK_LEFT, kNone, 0, 0},
        {"Delete", XK_Delete, 0, false, false, VK_DELETE, kNone, 0, 0},
        {"Alt+x", XK_x, Mod1Mask, false, false, 'X', WM_SYSCHAR, 'x', XK_x},
        {"Alt+5", XK_5, Mod1Mask, false, false, '5', WM_SYSCHAR, '5', XK_5},
    };
    for (const CharCase &c : cases) {
        SCOPED_TRACE(c.name);
        setLocks(c.numLock, c.capsLock);
        auto [down, up] = stroke(c.keysym, c.modifiers, c.vk);
        ASSERT_TRUE(down.message);
        // Something already waits, so the character has to go ahead of it.
        ASSERT_TRUE(omPostMessageEvent(hwnd_, WM_USER + 7, 0, 0, nullptr, nullptr, 0));
        EXPECT_TRUE(translate(down));
        EXPECT_TRUE(translate(up));  // a key-up is a key message, but types nothing
        std::vector<OmMsgRecord> queued = drain();
        ASSERT_FALSE(queued.empty());
        const OmMsgRecord &first = queued.front();
        if (c.message == kNone) {
            EXPECT_FALSE(isChar(first)) << std::hex << first.wParam;
        } else {
            EXPECT_EQ(first.message, c.message);
            EXPECT_EQ(first.hwnd, hwnd_);
            EXPECT_EQ(first.wParam, c.character);
            // lParam is the key's, with Return's keycode for the keypad's Enter.
            auto bits = static_cast<uint32_t>(down.lParam) & ~0xFF0000u;
            bits |= XKeysymToKeycode(omDisplay, c.keycodeOf) << 16;
            EXPECT_EQ(static_cast<uint32_t>(first.lParam), bits);
        }
        for (size_t i = 1; i < queued.size(); ++i)
            EXPECT_FALSE(isChar(queued[i])) << "a second character";
    }
}

TEST_F(Translate, OtherMessagesAreNotTranslated)
{
    const UINT others[] = {WM_MOUSEMOVE, WM_CHAR, WM_SYSCHAR, WM_DEADCHAR, WM_USER};
    for (UINT message : others) {
        MSG m{hwnd_, message, 'Q', 0x100001, 0, {}};
        EXPECT_FALSE(TranslateMessage(&m)) << message;
    }
    EXPECT_FALSE(TranslateMessage(nullptr));
    EXPECT_TRUE(drain().empty());
}

TEST_F(Translate, TheCurrentKeyEventBelongsToItsThread)
{
    XKeyEvent e{};
    e.type = KeyPress;
    e.state = ShiftMask;
    omSetCurrentKeyEvent(&e);
    e.state = 0;  // the slot holds a copy
    ASSERT_NE(omGetCurrentKeyEvent(), nullptr);
    EXPECT_EQ(omGetCurrentKeyEvent()->state, static_cast<unsigned>(ShiftMask));
    const XKeyEvent *elsewhere = &e;
    std::thread([&] { elsewhere = omGetCurrentKeyEvent(); }).join();
    EXPECT_EQ(elsewhere, nullptr);
    omSetCurrentKeyEvent(nullptr);
    EXPECT_EQ(omGetCurrentKeyEvent(), nullptr);
}

}  // namespace
}  // namespace om::test
