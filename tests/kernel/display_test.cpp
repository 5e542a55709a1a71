// The display side of the kernel layer on a real X server: the shell and
// resources, system metrics, the widget map, and key state read back from
// input injected with XTest.
#include <gtest/gtest.h>

#include "harness/pump.h"

#include "kernel/omdisplay.h"
#include "kernel/omkeyboard.h"
#include "kernel/omwidgetmap.h"

#include <windows.h>

#include <Xm/DrawingA.h>
#include <Xm/Xm.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

namespace {

class DisplayStartup : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(omInitialize(nullptr, nullptr)); }
};

TEST_F(DisplayStartup, ShellIgnoresWindowManagerCloseAndResourcesReachTheMetrics)
{
    ASSERT_NE(omAppShell, nullptr);
    unsigned char response = 0;
    XtVaGetValues(omAppShell, XmNdeleteResponse, &response, nullptr);
    EXPECT_EQ(response, XmDO_NOTHING);

    int screen = DefaultScreen(omDisplay);
    EXPECT_EQ(GetSystemMetrics(SM_CXSCREEN), DisplayWidth(omDisplay, screen));
    EXPECT_EQ(GetSystemMetrics(SM_CYSCREEN), DisplayHeight(omDisplay, screen));
    EXPECT_EQ(GetSystemMetrics(SM_CXFRAME), omResources.frameWidth);
    EXPECT_EQ(GetSystemMetrics(SM_CYFRAME), omResources.frameWidth);
    EXPECT_EQ(GetSystemMetrics(SM_CYCAPTION), omResources.captionHeight);
    EXPECT_EQ(GetSystemMetrics(SM_CXDLGFRAME), omResources.dialogFrameWidth);
    EXPECT_GT(omResources.defaultWindowWidth, 0);
    EXPECT_EQ(omDoubleClickTime, static_cast<unsigned>(XtGetMultiClickTime(omDisplay)));
    EXPECT_FALSE(bIsMWMRunning) << "this binary runs without a window manager";
    EXPECT_NE(omWinIniChangeAtom, static_cast<Atom>(None));
    EXPECT_NE(_omPostMessageAtom, _omSendMessageAtom);
    EXPECT_EQ(omInitialize(nullptr, nullptr), 1) << "a second call changes nothing";
}

TEST_F(DisplayStartup, WidgetMapFindsTheWindowOfAnXWindowThroughItsParents)
{
    Widget area = XmCreateDrawingArea(omAppShell, const_cast<char *>("probe"), nullptr, 0);
    XtManageChild(area);
    XtRealizeWidget(omAppShell);
    HWND hwnd = reinterpret_cast<HWND>(uintptr_t{0xA00123});
    omSetWidgetHWND(omAppShell, hwnd);
    omSetWidgetUserDataInfo(area, 2);

    HWND found = nullptr;
    EXPECT_FALSE(omGetWidgetHWND(area, &found)) << "the area itself is not mapped";
    EXPECT_EQ(omWindowToWidget(ButtonPress, XtWindow(area)), hwnd) << "found through its shell";
    EXPECT_EQ(omGetWidgetUserDataInfo(area), 2);

    omClearWidgetData(omAppShell);
    omClearWidgetData(area);
    EXPECT_EQ(omWindowToWidget(ButtonPress, XtWindow(area)), nullptr);
    EXPECT_EQ(omGetWidgetUserDataInfo(area), 0);
    XtDestroyWidget(area);
}

TEST_F(DisplayStartup, AsyncKeyStateFollowsTheServer)
{
    auto shiftDown = [] { return (GetAsyncKeyState(VK_SHIFT) & 0x8000) != 0; };
    auto pump = [] { XSync(omDisplay, False); };
    EXPECT_FALSE(shiftDown());
    KeyCode shift = XKeysymToKeycode(omDisplay, XK_Shift_L);
    ASSERT_NE(shift, 0);
    XTestFakeKeyEvent(omDisplay, shift, True, CurrentTime);
    EXPECT_TRUE(om::test::pumpUntil(shiftDown, std::chrono::milliseconds(2000), pump));
    XTestFakeKeyEvent(omDisplay, shift, False, CurrentTime);
    EXPECT_TRUE(om::test::pumpUntil([&] { return !shiftDown(); }, std::chrono::milliseconds(2000), pump));
}

TEST(KeyState, ToggleKeysReportTheLockAndOthersTheDownBit)
{
    BYTE state[256] = {};
    state[VK_CAPITAL] = 1;
    state['A'] = 0x80;
    ASSERT_TRUE(SetKeyboardState(state));
    EXPECT_EQ(GetKeyState(VK_CAPITAL), 1);
    EXPECT_LT(GetKeyState('A'), 0) << "down keys have the high bit";
    EXPECT_EQ(GetKeyState('B'), 0);
    EXPECT_EQ(GetKeyState(-1), 0);
    EXPECT_EQ(GetKeyState(0x1000), 0);
    memset(state, 0, sizeof state);
    SetKeyboardState(state);
}

TEST(KeyState, EveryVirtualKeyWithAKeysymHasOneTheServerKnows)
{
    ASSERT_TRUE(omInitialize(nullptr, nullptr));
    int mapped = 0;
    for (unsigned vk = 1; vk < 0x100; ++vk) {
        KeySym ks = VK2XK(vk);
        if (ks == NoSymbol)
            continue;
        ++mapped;
        EXPECT_STRNE(XKeysymToString(ks), nullptr) << "vk " << vk;
    }
    EXPECT_EQ(VK2XK('Q'), static_cast<KeySym>(XK_q));
    EXPECT_EQ(VK2XK(VK_F12), static_cast<KeySym>(XK_F12));
    EXPECT_EQ(VK2XK(VK_NUMPAD5), static_cast<KeySym>(XK_KP_5));
    EXPECT_GT(mapped, 100);
}

}  // namespace
