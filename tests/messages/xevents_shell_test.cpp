// The router's shell-level cases: the kernel's pending and event hooks,
// WM_SIZE when the window manager iconifies and restores a top-level
// window (seen as unmap and map of its shell), and WM_PALETTECHANGED on a
// colormap change.
#include "xevents_fixture.h"

#include "graphics/omgdi.h"
#include "kernel/omeventhooks.h"
#include "kernel/omkeyboard.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>

namespace om::test {
namespace {

class Shell : public XEventsTest {
protected:
    void TearDown() override
    {
        lpEventHook = nullptr;
        lpPendingHook = nullptr;
        XEventsTest::TearDown();
    }
    Window shellWindow(HWND h) const { return XtWindow(omWindowRecord(h)->shellWidget); }
    void setWmState(HWND h, long state)
    {
        long data[2] = {state, 0};
        XChangeProperty(omDisplay, shellWindow(h), omWmStateAtom, omWmStateAtom, 32,
                        PropModeReplace, reinterpret_cast<unsigned char *>(data), 2);
        XSync(omDisplay, False);
    }
    XEvent structureEvent(int type, HWND h)
    {
        XEvent ev{};
        ev.type = type;
        ev.xany.display = omDisplay;
        if (type == MapNotify) {
            ev.xmap.event = ev.xmap.window = shellWindow(h);
        } else {
            ev.xunmap.event = ev.xunmap.window = shellWindow(h);
        }
        return ev;
    }
};

int hookCalls = 0;
int hookAnswer = 0;
int countingHook(XEvent *ev)
{
    if (ev->type == KeyPress)
        ++hookCalls;
    return hookAnswer;
}

TEST_F(Shell, EventHookSeesEventsFirstAndMayTakeThem)
{
    lpEventHook = countingHook;
    for (int answer : {1, 0}) {
        SCOPED_TRACE(answer);
        hookCalls = 0;
        hookAnswer = answer;
        drain();
        XEvent ev = keyEvent(KeyPress, hwnd_, XK_h);
        _omProcessXEvent(&ev);
        EXPECT_EQ(hookCalls, 1);
        size_t keys = 0;
        for (auto &m : drain())
            keys += m.hwnd == hwnd_ && m.message == WM_KEYDOWN;
        EXPECT_EQ(keys, answer ? 0u : 1u);
    }
    omVirKeyState['H'] = 0;
}

XtInputMask nothingPending(XtAppContext)
{
    return 0;
}

TEST_F(Shell, PendingHookDecidesWhatThePumpSees)
{
    lpPendingHook = nullptr;
    omProcessXEvents(nullptr);
    EXPECT_EQ(lpPendingHook, &XtAppPending) << "the toolkit's probe by default";

    // An event waits on the connection; a hook that says nothing is
    // pending keeps the pump from routing it.
    XEvent ev{};
    ev.xclient.type = ClientMessage;
    ev.xclient.display = omDisplay;
    ev.xclient.window = canvasWindow(hwnd_);
    ev.xclient.message_type = XA_STRING;
    ev.xclient.format = 32;
    XSendEvent(omDisplay, ev.xclient.window, False, NoEventMask, &ev);
    XSync(omDisplay, False);
    lpPendingHook = nothingPending;
    EXPECT_EQ(omProcessXEvents(nullptr), 0);
    lpPendingHook = XtAppPending;
    EXPECT_TRUE(waitUntil([] { return omProcessXEvents(nullptr) > 0; },
                          std::chrono::milliseconds(2000), [] {}));
}

struct SizeSeen {
    WPARAM kind;
    LPARAM size;
    int onMap;
};
std::vector<SizeSeen> sizes;
LRESULT CALLBACK sizeProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    if (msg == WM_SIZE)
        sizes.push_back({wParam, lParam, omWMSizeOnMap});
    if (msg == WM_PALETTECHANGED)
        sizes.push_back({0xFFFF, static_cast<LPARAM>(wParam), -1});
    return xeventsProc(hwnd, msg, wParam, lParam);
}

TEST_F(Shell, IconifyAndRestoreSendOneSizeEach)
{
    WindowRecord *w = omWindowRecord(hwnd_);
    w->wndProc = sizeProc;
    w->configured = true;
    Dimension cw = 0, ch = 0;
    XtVaGetValues(w->canvasWidget, XtNwidth, &cw, XtNheight, &ch, nullptr);
    struct Step {
        const char *name;
        long wmState;
        int type;
        std::vector<WPARAM> expected;
    } steps[] = {
        {"hidden, not iconified", NormalState, UnmapNotify, {}},
        {"iconified", IconicState, UnmapNotify, {SIZE_MINIMIZED}},
        {"restored", NormalState, MapNotify, {SIZE_RESTORED}},
        {"mapped again without iconifying", NormalState, MapNotify, {}},
        {"iconified again", IconicState, UnmapNotify, {SIZE_MINIMIZED}},
        {"restored again", NormalState, MapNotify, {SIZE_RESTORED}},
    };
    for (const Step &s : steps) {
        SCOPED_TRACE(s.name);
        sizes.clear();
        setWmState(hwnd_, s.wmState);
        XEvent ev = structureEvent(s.type, hwnd_);
        _omProcessXEvent(&ev);
        ASSERT_EQ(sizes.size(), s.expected.size());
        for (size_t i = 0; i < sizes.size(); ++i) {
            EXPECT_EQ(sizes[i].kind, s.expected[i]);
            if (sizes[i].kind == SIZE_RESTORED) {
                EXPECT_EQ(sizes[i].size, MAKELPARAM(cw, ch));
                EXPECT_EQ(sizes[i].onMap, 1);
            }
        }
    }
    EXPECT_EQ(omWMSizeOnMap, 0);

    // A window the server has not configured yet waits for its first
    // configuration instead.
    w->configured = false;
    sizes.clear();
    XEvent unmap = structureEvent(UnmapNotify, hwnd_);
    setWmState(hwnd_, IconicState);
    _omProcessXEvent(&unmap);
    sizes.clear();
    XEvent map = structureEvent(MapNotify, hwnd_);
    _omProcessXEvent(&map);
    EXPECT_TRUE(sizes.empty());
    w->configured = true;
    w->wndProc = xeventsProc;
}

TEST_F(Shell, ColormapChangeTellsEveryTopLevelWindowWhenPalettesAreInUse)
{
    HWND other = makeWindow(0, 320, 40, 0);
    ASSERT_TRUE(other);
    for (HWND h : {hwnd_, other})
        omWindowRecord(h)->wndProc = sizeProc;
    int saved = ombUsesPalettes;
    for (int uses : {0, 1}) {
        SCOPED_TRACE(uses);
        ombUsesPalettes = uses;
        sizes.clear();
        XEvent ev{};
        ev.xcolormap.type = ColormapNotify;
        ev.xcolormap.display = omDisplay;
        ev.xcolormap.window = canvasWindow(hwnd_);
        _omProcessXEvent(&ev);
        size_t told = 0;
        for (const SizeSeen &s : sizes)
            told += s.kind == 0xFFFF;
        EXPECT_EQ(told, uses ? 2u : 0u);
    }
    ombUsesPalettes = saved;
    for (HWND h : {hwnd_, other})
        omWindowRecord(h)->wndProc = xeventsProc;
}

}  // namespace
}  // namespace om::test
