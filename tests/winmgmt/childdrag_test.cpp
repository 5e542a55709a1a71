// Moving and sizing a child window with the pointer (XTest): a press on the
// caption or an edge of its frame reaches the frame through the non-client
// messages and the default window procedure, the program hears
// WM_SYSCOMMAND, WM_MOVING/WM_SIZING on the way and WM_MOVE/WM_SIZE at the
// end, and the window's rectangle follows.
#include "winmgmt_fixture.h"

#include "harness/screenshot.h"
#include "widgets/XoBorder.h"

#include <X11/IntrinsicP.h>

namespace om::test {
namespace {

std::vector<MSG> g_seen;

LRESULT CALLBACK dragProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    MSG m{};
    m.hwnd = hwnd;
    m.message = msg;
    m.wParam = wParam;
    m.lParam = lParam;
    g_seen.push_back(m);
    return DefWindowProcA(hwnd, msg, wParam, lParam);
}

class ChildDrag : public WinmgmtTest {
protected:
    void SetUp() override
    {
        WinmgmtTest::SetUp();
        static const bool registered = [] {
            WNDCLASSA wc{};
            wc.lpfnWndProc = dragProc;
            wc.lpszClassName = "ChildDragTest";
            wc.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
            return RegisterClassA(&wc) != 0;
        }();
        ASSERT_TRUE(registered);
        parent_ = makeWindow(40, 40);
        ASSERT_NE(parent_, nullptr);
        MoveWindow(parent_, 40, 40, 400, 300, TRUE);
        child_ = CreateWindowExA(0, "ChildDragTest", "drag",
                                 WS_CHILD | WS_VISIBLE | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME,
                                 20, 20, 120, 90, parent_, nullptr, nullptr, nullptr);
        ASSERT_NE(child_, nullptr);
        frame_ = omWindowRecord(child_)->shellWidget;
        ASSERT_TRUE(frame_ && XoIsBorder(frame_));
        OM_PUMP_UNTIL(XtWindow(frame_) && viewable(XtWindow(frame_)), 3000, pump);
        pumpFor(std::chrono::milliseconds(50), pump);
        g_seen.clear();
    }

    // The X pump and the program's message loop, one pass.
    static void pump()
    {
        winmgmtPump();
        MSG m;
        while (PeekMessageA(&m, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageA(&m);
    }

    // Root position of a point of the frame (frame coordinates).
    POINT frameRoot(int x, int y)
    {
        Position rx, ry;
        XtTranslateCoords(frame_, static_cast<Position>(x), static_cast<Position>(y), &rx, &ry);
        return POINT{rx, ry};
    }

    void drag(POINT from, int dx, int dy)
    {
        ASSERT_TRUE(movePointer(omDisplay, from.x, from.y));
        pumpFor(std::chrono::milliseconds(40), pump);
        ASSERT_TRUE(buttonDown(omDisplay, 1));
        pumpFor(std::chrono::milliseconds(40), pump);
        for (int i = 1; i <= 4; ++i) {
            ASSERT_TRUE(movePointer(omDisplay, from.x + dx * i / 4, from.y + dy * i / 4));
            pumpFor(std::chrono::milliseconds(30), pump);
        }
        ASSERT_TRUE(buttonUp(omDisplay, 1));
        pumpFor(std::chrono::milliseconds(80), pump);
    }

    int count(UINT msg, WPARAM wParam = ~WPARAM{0}) const
    {
        int n = 0;
        for (const MSG &m : g_seen)
            if (m.hwnd == child_ && m.message == msg && (wParam == ~WPARAM{0} || m.wParam == wParam))
                ++n;
        return n;
    }
    const MSG *last(UINT msg) const
    {
        for (auto it = g_seen.rbegin(); it != g_seen.rend(); ++it)
            if (it->hwnd == child_ && it->message == msg)
                return &*it;
        return nullptr;
    }

    HWND parent_ = nullptr, child_ = nullptr;
    Widget frame_ = nullptr;
};

TEST_F(ChildDrag, CaptionDragMovesTheChild)
{
    RECT before{};
    GetWindowRect(child_, &before);
    int t = XoBorderThickness(frame_), c = XoCaptionHeightOf(frame_);
    POINT caption = frameRoot(frame_->core.width / 2, t + c / 2);
    EXPECT_EQ(SendMessageA(child_, WM_NCHITTEST, 0, MAKELPARAM(caption.x, caption.y)), HTCAPTION);

    drag(caption, 40, 30);
    OM_PUMP_UNTIL(omWindowRecord(child_)->x == 60, 2000, pump);
    EXPECT_EQ(count(WM_SYSCOMMAND, SC_MOVE), 1);
    EXPECT_GE(count(WM_MOVING), 1);
    ASSERT_NE(last(WM_MOVE), nullptr);
    POINT client{0, 0};
    ClientToScreen(child_, &client);
    POINT parentOrigin{0, 0};
    ClientToScreen(parent_, &parentOrigin);
    EXPECT_EQ(LOWORD(last(WM_MOVE)->lParam), client.x - parentOrigin.x);
    EXPECT_EQ(HIWORD(last(WM_MOVE)->lParam), client.y - parentOrigin.y);
    RECT after{};
    GetWindowRect(child_, &after);
    EXPECT_EQ(after.left - before.left, 40);
    EXPECT_EQ(after.top - before.top, 30);
    EXPECT_EQ(after.right - after.left, before.right - before.left);
    EXPECT_EQ(omWindowRecord(child_)->y, 50);
    saveWindowPng(omDisplay, canvasWindow(parent_), testArtifactName());
}

TEST_F(ChildDrag, CornerDragSizesTheChild)
{
    RECT client0{};
    GetClientRect(child_, &client0);
    POINT corner = frameRoot(frame_->core.width - 2, frame_->core.height - 2);
    EXPECT_EQ(SendMessageA(child_, WM_NCHITTEST, 0, MAKELPARAM(corner.x, corner.y)),
              HTBOTTOMRIGHT);

    drag(corner, 30, 20);
    OM_PUMP_UNTIL(omWindowRecord(child_)->cx == 150, 2000, pump);
    EXPECT_EQ(count(WM_SYSCOMMAND, SC_SIZE), 1);
    EXPECT_GE(count(WM_SIZING, WMSZ_BOTTOMRIGHT), 1);
    EXPECT_EQ(count(WM_SIZING) , count(WM_SIZING, WMSZ_BOTTOMRIGHT));
    ASSERT_NE(last(WM_SIZE), nullptr);
    RECT client1{};
    GetClientRect(child_, &client1);
    EXPECT_EQ(client1.right - client0.right, 30);
    EXPECT_EQ(client1.bottom - client0.bottom, 20);
    EXPECT_EQ(LOWORD(last(WM_SIZE)->lParam), client1.right);
    EXPECT_EQ(HIWORD(last(WM_SIZE)->lParam), client1.bottom);
    EXPECT_EQ(omWindowRecord(child_)->cy, 110);
    // The position did not change.
    EXPECT_EQ(omWindowRecord(child_)->x, 20);
}

// The hit test answers the frame's parts with their codes.
TEST_F(ChildDrag, HitTestAroundTheFrame)
{
    int t = XoBorderThickness(frame_), c = XoCaptionHeightOf(frame_);
    int w = frame_->core.width, h = frame_->core.height;
    const struct {
        int x, y;
        LRESULT code;
    } points[] = {
        {w / 2, t + c / 2, HTCAPTION}, {w / 2, h / 2 + c / 2, HTCLIENT},
        {1, h / 2, HTLEFT},            {w - 2, h / 2, HTRIGHT},
        {w / 2, 1, HTTOP},             {w / 2, h - 2, HTBOTTOM},
        {1, 1, HTTOPLEFT},             {w - 2, h - 2, HTBOTTOMRIGHT},
        {t + 4, t + c / 2, HTSYSMENU},
    };
    for (const auto &p : points) {
        SCOPED_TRACE(testing::Message() << p.x << "," << p.y);
        POINT s = frameRoot(p.x, p.y);
        EXPECT_EQ(SendMessageA(child_, WM_NCHITTEST, 0, MAKELPARAM(s.x, s.y)), p.code);
    }
}

}  // namespace
}  // namespace om::test
