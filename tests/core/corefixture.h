// What the core tests share: a fixture that initialises the toolkit on the
// test display and checks that a test leaves no window behind, a pump that
// also runs the idle drain, and a window procedure that records messages.
#pragma once

#include <gtest/gtest.h>

#include "harness/pump.h"

#include "core/omwindow.h"

#include <windows.h>

#include <string>
#include <vector>

namespace om::test {

// Live windows other than the desktop.
int liveWindowCount();

// Pumps X and runs the idle drain once.
void corePump();

// The messages a recording procedure received, in order (any window).
struct Received {
    HWND hwnd;
    UINT msg;
    WPARAM wParam;
    LPARAM lParam;
};
std::vector<Received> &received();
std::vector<UINT> receivedMessages(HWND hwnd);
// Answers for WM_NCCREATE and WM_CREATE that the next windows give.
extern LRESULT g_ncCreateAnswer;
extern LRESULT g_createAnswer;
LRESULT CALLBACK recordingProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam);

// Registers (once) the class "CoreTestWindow": recordingProc, 16 extra
// window bytes, 8 extra class bytes.
const char *testClass();

class CoreTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

private:
    int windowsAtStart_ = 0;
};

}  // namespace om::test
