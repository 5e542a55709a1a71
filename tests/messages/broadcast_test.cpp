// Broadcasts through the root window: what one process sends is seen by
// another client of the display, and a received broadcast reaches this
// process's top-level windows once, without going round again.
#include <gtest/gtest.h>

#include "kernel/omdisplay.h"
#include "kernel/ominit.h"
#include "messages/ommessageq.h"

#include <windows.h>

#include <chrono>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace {

struct Got {
    HWND hwnd;
    UINT msg;
    WPARAM wParam;
    std::string text;
    int delivering;
};
std::vector<Got> g_got;

LRESULT CALLBACK recordProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    if (msg == WM_WININICHANGE || msg == WM_USER + 9) {
        const char *text = msg == WM_WININICHANGE && lParam ? reinterpret_cast<const char *>(lParam)
                                                            : "";
        g_got.push_back({hwnd, msg, wParam, text, _omDeliveringSettingsChange()});
        return 0;
    }
    return DefWindowProcA(hwnd, msg, wParam, lParam);
}

class Broadcast : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(omInitialize(nullptr, nullptr));
        static const ATOM atom = [] {
            WNDCLASSA wc{};
            wc.lpfnWndProc = recordProc;
            wc.lpszClassName = "BroadcastTestWindow";
            return RegisterClassA(&wc);
        }();
        ASSERT_NE(atom, 0);
        // The other process: a client of its own watching the root window.
        other = XOpenDisplay(DisplayString(omDisplay));
        ASSERT_NE(other, nullptr);
        XSelectInput(other, DefaultRootWindow(other), PropertyChangeMask);
        XSync(other, False);
        g_got.clear();
    }
    void TearDown() override
    {
        for (HWND h : windows)
            DestroyWindow(h);
        if (other)
            XCloseDisplay(other);
        OmMsgRecord r;
        while (omTestTakeMessage(nullptr, &r)) {
        }
    }

    HWND window(DWORD exStyle, DWORD style)
    {
        HWND h = CreateWindowExA(exStyle, "BroadcastTestWindow", "", style, 0, 0, 40, 40, nullptr,
                                 nullptr, nullptr, nullptr);
        EXPECT_NE(h, nullptr);
        windows.push_back(h);
        return h;
    }

    std::optional<XClientMessageEvent> received()
    {
        auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(2);
        XEvent ev;
        while (std::chrono::steady_clock::now() < deadline) {
            while (XPending(other)) {
                XNextEvent(other, &ev);
                if (ev.type == ClientMessage)
                    return ev.xclient;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return std::nullopt;
    }

    Display *other = nullptr;
    std::vector<HWND> windows;
};

TEST_F(Broadcast, PostToAllReachesTheTopLevelWindowsWithWidgets)
{
    HWND shown = window(0, WS_OVERLAPPEDWINDOW);
    window(0x80000000u, WS_OVERLAPPED);  // no widgets: not a broadcast target
    ASSERT_TRUE(omPostMessageEvent(HWND_BROADCAST, WM_USER + 9, 11, 22, nullptr, nullptr, 0));
    std::optional<XClientMessageEvent> cm = received();
    ASSERT_TRUE(cm);
    EXPECT_EQ(cm->message_type, _omPostMessageAtom);
    EXPECT_EQ(cm->data.l[0], WM_USER + 9);
    EXPECT_EQ(cm->data.l[1], 11);
    EXPECT_EQ(cm->data.l[2], 22);
    // Nothing queued locally by the post itself.
    OmMsgRecord r;
    EXPECT_FALSE(omTestTakeMessage(nullptr, &r));

    XEvent ev;
    ev.xclient = *cm;
    omMessageBroadCast(&ev);
    ASSERT_TRUE(omTestTakeMessage(nullptr, &r));
    EXPECT_EQ(r.hwnd, shown);
    EXPECT_EQ(r.message, static_cast<UINT>(WM_USER + 9));
    EXPECT_EQ(r.wParam, 11u);
    EXPECT_EQ(r.lParam, 22);
    EXPECT_FALSE(omTestTakeMessage(nullptr, &r));

    // The send form calls the procedure at once and queues nothing.
    ev.xclient.message_type = _omSendMessageAtom;
    omMessageBroadCast(&ev);
    ASSERT_EQ(g_got.size(), 1u);
    EXPECT_EQ(g_got[0].hwnd, shown);
    EXPECT_FALSE(omTestTakeMessage(nullptr, &r));
}

TEST_F(Broadcast, SettingsChangeUsesOneAtomAndIsNotSentOnAgain)
{
    HWND overlapped = window(0x80000000u, WS_OVERLAPPED);
    window(0x80000000u, WS_POPUP);  // popups are not told
    const char *sections[] = {"intl", "", "a-section-name-longer-than-twenty"};
    for (const char *section : sections) {
        SCOPED_TRACE(section);
        g_got.clear();
        omBroadCastWinIniChange(section);
        std::optional<XClientMessageEvent> cm = received();
        ASSERT_TRUE(cm);
        EXPECT_EQ(cm->message_type, omWinIniChangeAtom);
        EXPECT_EQ(cm->format, 8);
        XEvent ev;
        ev.xclient = *cm;
        omWinIniChange(&ev);
        ASSERT_EQ(g_got.size(), 1u);
        EXPECT_EQ(g_got[0].hwnd, overlapped);
        EXPECT_EQ(g_got[0].msg, static_cast<UINT>(WM_WININICHANGE));
        EXPECT_EQ(g_got[0].text, std::string(section).substr(0, 20));
        EXPECT_EQ(g_got[0].delivering, 1);
    }
    EXPECT_EQ(_omDeliveringSettingsChange(), 0);
}

}  // namespace
