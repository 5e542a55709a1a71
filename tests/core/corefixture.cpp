// The shared fixture of the core tests.
#include "corefixture.h"

#include "kernel/omdisplay.h"

#include <Xm/BulletinB.h>

namespace om::test {

LRESULT g_ncCreateAnswer = TRUE;
LRESULT g_createAnswer = 0;

int liveWindowCount()
{
    int n = 0;
    HWND desktop = GetDesktopWindow();
    uint64_t h = 0;
    for (omNextWindowHandle(&h); h; omNextWindowHandle(&h))
        if (omHandleFromIndex(omHandleIndex(h)) != omHandleValue(desktop))
            ++n;
    return n;
}

void corePump()
{
    if (omAppContext) {
        XtPump pump(omAppContext);
        pump();
    }
    omRunIdleDrain();
}

std::vector<Received> &received()
{
    static std::vector<Received> list;
    return list;
}

std::vector<UINT> receivedMessages(HWND hwnd)
{
    std::vector<UINT> out;
    for (const Received &r : received())
        if (r.hwnd == hwnd)
            out.push_back(r.msg);
    return out;
}

LRESULT CALLBACK recordingProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    received().push_back({hwnd, msg, wParam, lParam});
    if (msg == WM_NCCREATE && g_ncCreateAnswer != TRUE)
        return g_ncCreateAnswer;
    if (msg == WM_CREATE)
        return g_createAnswer;
    if (msg == WM_GETMINMAXINFO) {
        // A program limits its tracking size; the kernel keeps what it left.
        auto *mmi = reinterpret_cast<MINMAXINFO *>(lParam);
        mmi->ptMinTrackSize = {120, 90};
        return 0;
    }
    return DefWindowProcA(hwnd, msg, wParam, lParam);
}

const char *testClass()
{
    static const bool registered = [] {
        WNDCLASSA wc{};
        wc.lpfnWndProc = recordingProc;
        wc.cbWndExtra = 16;
        wc.cbClsExtra = 8;
        wc.lpszClassName = "CoreTestWindow";
        return RegisterClassA(&wc) != 0;
    }();
    return registered ? "CoreTestWindow" : nullptr;
}

void CoreTest::SetUp()
{
    // Uses libXm from the test binary itself, so that it is loaded ahead
    // of libXt (Motif's vendor shell must win).
    ASSERT_NE(xmBulletinBoardWidgetClass, nullptr);
    ASSERT_TRUE(omInitialize(nullptr, nullptr));
    ASSERT_NE(testClass(), nullptr);
    omDiagResetCounts();
    received().clear();
    g_ncCreateAnswer = TRUE;
    g_createAnswer = 0;
    windowsAtStart_ = liveWindowCount();
}

void CoreTest::TearDown()
{
    omRunIdleDrain();
    EXPECT_EQ(liveWindowCount(), windowsAtStart_) << "the test left a window behind";
}

}  // namespace om::test
