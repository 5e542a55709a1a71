// Key events into key messages: letters, digits, the keypad with Num Lock
// on and off, F10, Alt combinations, Shift+F10, and keybd_event, each
// typed through XTest into a real top-level window.
#include "xevents_fixture.h"

#include "kernel/omkeyboard.h"
#include "messages/omkeymap.h"

#include <X11/keysym.h>

namespace om::test {
namespace {

constexpr uint32_t kExtended = 1u << 24, kShift = 1u << 25, kAlt = 1u << 29,
                   kPrevious = 1u << 30, kTransition = 1u << 31;

class Keys : public XEventsTest {
protected:
    void SetUp() override
    {
        XEventsTest::SetUp();
        if (HasFatalFailure())
            return;
        POINT p = screenOf(hwnd_, 20, 20);
        movePointer(omDisplay, p.x, p.y);
        XSetInputFocus(omDisplay, canvasWindow(hwnd_), RevertToPointerRoot, CurrentTime);
        XSync(omDisplay, False);
        setNumLock(false);
        drain();
    }
    void TearDown() override
    {
        setNumLock(false);
        XEventsTest::TearDown();
    }
    static bool numLockOn()
    {
        Window root, child;
        int rx, ry, wx, wy;
        unsigned mask = 0;
        XQueryPointer(omDisplay, DefaultRootWindow(omDisplay), &root, &child, &rx, &ry, &wx, &wy,
                      &mask);
        return (mask & omNumLockMask) != 0;
    }
    void setNumLock(bool on)
    {
        if (omNumLockMask && numLockOn() != on) {
            pressKey(omDisplay, XK_Num_Lock);
            waitUntil([&] { return numLockOn() == on; }, std::chrono::milliseconds(1000),
                      xeventsPump);
        }
        pumpFor(std::chrono::milliseconds(20), xeventsPump);
        drain();
    }
    // Key messages for the window until the release of vk has come.
    std::vector<OmMsgRecord> strokeOf(unsigned vk)
    {
        std::vector<OmMsgRecord> got;
        bool done = waitUntil(
            [&] {
                OmMsgRecord r;
                while (omTestTakeMessage(nullptr, &r))
                    if (r.hwnd == hwnd_ && r.message >= WM_KEYDOWN && r.message <= WM_SYSKEYUP)
                        got.push_back(r);
                for (auto &m : got)
                    if (m.wParam == vk && (m.message == WM_KEYUP || m.message == WM_SYSKEYUP))
                        return true;
                return false;
            },
            std::chrono::milliseconds(2000), xeventsPump);
        EXPECT_TRUE(done) << "no release of vk 0x" << std::hex << vk;
        return got;
    }
    static const OmMsgRecord *find(const std::vector<OmMsgRecord> &msgs, UINT message, unsigned vk)
    {
        for (auto &m : msgs)
            if (m.message == message && m.wParam == vk)
                return &m;
        return nullptr;
    }
};

struct KeyCase {
    const char *name;
    KeySym keysym;
    unsigned modifiers;
    bool numLock;
    unsigned vk;
    UINT down, up;
    uint32_t setBits, clearBits;  // of the down message's lParam
};

TEST_F(Keys, TypedKeysBecomeKeyMessagesWithTheirBits)
{
    const KeyCase cases[] = {
        {"letter", XK_a, 0, false, 'A', WM_KEYDOWN, WM_KEYUP, 0, kExtended | kAlt | kShift},
        {"digit", XK_7, 0, false, '7', WM_KEYDOWN, WM_KEYUP, 0, kExtended | kAlt},
        {"shifted letter", XK_a, ShiftMask, false, 'A', WM_KEYDOWN, WM_KEYUP, kShift, kAlt},
        {"keypad, Num Lock on", XK_KP_1, 0, true, VK_NUMPAD1, WM_KEYDOWN, WM_KEYUP, 0,
         kExtended},
        {"keypad, Num Lock off", XK_KP_1, 0, false, VK_END, WM_KEYDOWN, WM_KEYUP, 0, 0},
        {"F10", XK_F10, 0, false, VK_F10, WM_SYSKEYDOWN, WM_SYSKEYUP, 0, kAlt},
        {"Alt+X", XK_x, Mod1Mask, false, 'X', WM_SYSKEYDOWN, WM_SYSKEYUP, kAlt, 0},
        {"Alt+5", XK_5, Mod1Mask, false, '5', WM_SYSKEYDOWN, WM_SYSKEYUP, kAlt, 0},
    };
    for (const KeyCase &c : cases) {
        SCOPED_TRACE(c.name);
        setNumLock(c.numLock);
        ASSERT_TRUE(pressKey(omDisplay, c.keysym, c.modifiers));
        auto msgs = strokeOf(c.vk);
        const OmMsgRecord *down = find(msgs, c.down, c.vk);
        const OmMsgRecord *up = find(msgs, c.up, c.vk);
        ASSERT_TRUE(down && up);
        EXPECT_LT(down, up);
        auto dl = static_cast<uint32_t>(down->lParam), ul = static_cast<uint32_t>(up->lParam);
        EXPECT_EQ(dl & 0xFFFF, 1u);
        EXPECT_EQ((dl >> 16) & 0xFF, down->event.xkey.keycode);
        EXPECT_EQ(dl & c.setBits, c.setBits);
        EXPECT_EQ(dl & c.clearBits, 0u);
        EXPECT_EQ(dl & (kPrevious | kTransition), 0u);
        EXPECT_EQ(ul & (kPrevious | kTransition), kPrevious | kTransition);
        // The record carries its X event.
        EXPECT_EQ(down->event.type, KeyPress);
        EXPECT_EQ(up->event.type, KeyRelease);
        EXPECT_EQ(omVirKeyState[c.vk], 0);
    }
    EXPECT_TRUE(sentOf(WM_CONTEXTMENU).empty());
    EXPECT_TRUE(sentOf(WM_HELP).empty());
}

TEST_F(Keys, ShiftF10AsksForTheContextMenuAndStillPostsTheKey)
{
    ASSERT_TRUE(pressKey(omDisplay, XK_F10, ShiftMask));
    auto msgs = strokeOf(VK_F10);
    const OmMsgRecord *down = find(msgs, WM_SYSKEYDOWN, VK_F10);
    ASSERT_TRUE(down);
    EXPECT_TRUE(static_cast<uint32_t>(down->lParam) & kShift);
    auto menus = sentOf(WM_CONTEXTMENU);
    ASSERT_EQ(menus.size(), 1u);
    const Sent &s = menus[0];
    EXPECT_EQ(s.wParam, reinterpret_cast<WPARAM>(hwnd_));
    POINT origin = screenOf(hwnd_, 0, 0);
    EXPECT_EQ(static_cast<short>(LOWORD(s.lParam)), origin.x);
    EXPECT_EQ(static_cast<short>(HIWORD(s.lParam)), origin.y);
}

TEST_F(Keys, F1SendsHelpFirst)
{
    ASSERT_TRUE(pressKey(omDisplay, XK_F1));
    auto msgs = strokeOf(VK_F1);
    ASSERT_TRUE(find(msgs, WM_KEYDOWN, VK_F1));
    EXPECT_EQ(sentOf(WM_HELP).size(), 1u);
}

TEST_F(Keys, KeybdEventTypesThroughTheServer)
{
    keybd_event('Q', 0, 0, 0);
    keybd_event('Q', 0, KEYEVENTF_KEYUP, 0);
    auto msgs = strokeOf('Q');
    EXPECT_TRUE(find(msgs, WM_KEYDOWN, 'Q'));
    EXPECT_TRUE(find(msgs, WM_KEYUP, 'Q'));
}

TEST_F(Keys, DisabledWindowTakesNoKeys)
{
    omWindowRecord(hwnd_)->style |= WS_DISABLED;
    ASSERT_TRUE(pressKey(omDisplay, XK_b));
    pumpFor(std::chrono::milliseconds(100), xeventsPump);
    for (auto &m : drain())
        EXPECT_FALSE(m.hwnd == hwnd_ && m.message >= WM_KEYDOWN && m.message <= WM_SYSKEYUP)
            << std::hex << m.message;
    omWindowRecord(hwnd_)->style &= ~WS_DISABLED;
}

}  // namespace
}  // namespace om::test
