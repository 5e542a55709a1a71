// XoBorder moving and sizing: caption, edge and corner drags by XTest and
// by events handed back as the default window procedure gives them, each
// step reported through the upcalls and the end through activateCallback;
// keyboard moves and sizes; the system-menu button; no grab left behind by
// a frame destroyed mid-drag.
#include "border_fixture.h"

#include <X11/keysym.h>

#include "harness/xserver.h"

using namespace om::test;
using namespace std::chrono_literals;

namespace {

constexpr int kFull = XoDECOR_BORDER | XoDECOR_RESIZEH | XoDECOR_TITLE | XoDECOR_MENU |
                      XoDECOR_MINIMIZE | XoDECOR_MAXIMIZE;

std::vector<int> rectOf(const XoBorderCallbackStruct &cb)
{
    return {cb.x, cb.y, cb.width, cb.height};
}
std::vector<int> rectOf(Widget w)
{
    return {w->core.x, w->core.y, w->core.width, w->core.height};
}
std::vector<int> rectOf(const XoRect &r)
{
    return {r.x, r.y, r.width, r.height};
}

// Drags from frame point (fx, fy) through `steps` root displacements, by
// XTest (xtest) or by handed-back events.
class DragTest : public BorderTest, public ::testing::WithParamInterface<bool> {
  protected:
    bool xtest() const { return GetParam(); }

    void drag(Widget frame, int fx, int fy, const std::vector<std::pair<int, int>> &steps,
              bool release = true)
    {
        Position rx, ry;
        XtTranslateCoords(frame, Position(fx), Position(fy), &rx, &ry);
        Time t = 1000;
        if (xtest()) {
            ASSERT_TRUE(movePointer(dpy_, rx, ry));
            ASSERT_TRUE(buttonDown(dpy_, 1));
        } else {
            sendButton(frame, ButtonPress, fx, fy, t);
        }
        OM_ASSERT_PUMP_UNTIL(XoGetMoveStatus() || XoGetSizeStatus(), 3000, pump_);
        for (auto [dx, dy] : steps) {
            size_t before = g_upcalls.size();
            if (xtest()) {
                ASSERT_TRUE(movePointer(dpy_, rx + dx, ry + dy));
            } else {
                // The library gives frame coordinates of the pointer now.
                Position ox, oy;
                XtTranslateCoords(frame, 0, 0, &ox, &oy);
                sendMotion(frame, rx + dx - ox, ry + dy - oy, ++t);
            }
            OM_ASSERT_PUMP_UNTIL(g_upcalls.size() > before, 3000, pump_);
        }
        if (!release)
            return;
        if (xtest()) {
            ASSERT_TRUE(buttonUp(dpy_, 1));
        } else {
            Position ox, oy;
            XtTranslateCoords(frame, 0, 0, &ox, &oy);
            auto [dx, dy] = steps.empty() ? std::pair{0, 0} : steps.back();
            sendButton(frame, ButtonRelease, rx + dx - ox, ry + dy - oy, ++t);
        }
        OM_ASSERT_PUMP_UNTIL(!XoGetMoveStatus() && !XoGetSizeStatus(), 3000, pump_);
    }
};

TEST_P(DragTest, CaptionDragMovesTheFrameAndReportsEachStep)
{
    Widget frame = makeFrame(100, 100, 300, 200, kFull, {{XoNdisplayState, 0}});
    realize();
    drag(frame, 150, 10, {{10, 5}, {20, 10}, {30, 15}});
    EXPECT_EQ(rectOf(frame), (std::vector<int>{130, 115, 300, 200}));
    ASSERT_EQ(count("SC_MOVE"), 1);
    EXPECT_EQ(g_upcalls[0].rect.x, 250); // press point in the parent
    EXPECT_EQ(g_upcalls[0].rect.y, 110);
    std::vector<std::vector<int>> moving;
    for (auto &u : g_upcalls)
        if (u.what == "WM_MOVING")
            moving.push_back(rectOf(u.rect));
    EXPECT_EQ(moving, (std::vector<std::vector<int>>{
                          {110, 105, 300, 200}, {120, 110, 300, 200}, {130, 115, 300, 200}}));
    EXPECT_EQ(reasonCodes(), (std::vector<int>{XoCR_MOVED}));
    ASSERT_NE(lastReason(XoCR_MOVED), nullptr);
    EXPECT_EQ(rectOf(*lastReason(XoCR_MOVED)), (std::vector<int>{130, 115, 300, 200}));
    EXPECT_EQ(clientOf(frame)->core.width, 292); // the client went along unchanged
}

TEST_P(DragTest, EdgeAndCornerDragsSizeTheRightSides)
{
    struct Case {
        const char *name;
        int fx, fy;
        std::vector<int> rect;
        int edge;
    } cases[] = {
        {"right", 299, 100, {100, 100, 320, 200}, XoEDGE_RIGHT},
        {"bottom", 150, 199, {100, 100, 300, 215}, XoEDGE_BOTTOM},
        {"left", 0, 100, {120, 100, 280, 200}, XoEDGE_LEFT},
        {"top", 150, 0, {100, 115, 300, 185}, XoEDGE_TOP},
        {"top-left", 0, 0, {120, 115, 280, 185}, XoEDGE_TOPLEFT},
        {"top-right", 299, 0, {100, 115, 320, 185}, XoEDGE_TOPRIGHT},
        {"bottom-left", 0, 199, {120, 100, 280, 215}, XoEDGE_BOTTOMLEFT},
        {"bottom-right", 299, 199, {100, 100, 320, 215}, XoEDGE_BOTTOMRIGHT},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        g_upcalls.clear();
        reasons_.clear();
        Widget frame = makeFrame(100, 100, 300, 200, kFull, {{XoNdisplayState, 0}});
        if (!XtIsRealized(shell_))
            realize();
        else
            settle();
        drag(frame, c.fx, c.fy, {{20, 15}});
        EXPECT_EQ(rectOf(frame), c.rect);
        EXPECT_EQ(count("SC_SIZE"), 1);
        ASSERT_EQ(count("WM_SIZING"), 1);
        EXPECT_EQ(g_upcalls.back().edge, c.edge);
        EXPECT_EQ(rectOf(g_upcalls.back().rect), c.rect);
        const XoBorderCallbackStruct *sized = lastReason(XoCR_SIZED);
        ASSERT_NE(sized, nullptr);
        EXPECT_EQ(rectOf(*sized), c.rect);
        EXPECT_EQ(sized->edge, c.edge);
        // The client follows synchronously.
        EXPECT_EQ(clientOf(frame)->core.width, c.rect[2] - 8);
        EXPECT_EQ(clientOf(frame)->core.height, c.rect[3] - 26);
        XtDestroyWidget(frame);
        settle();
    }
}

TEST_P(DragTest, SizingStopsAtTheSmallestFrame)
{
    Widget frame = makeFrame(100, 100, 300, 200, kFull, {{XoNdisplayState, 0}});
    realize();
    drag(frame, 299, 199, {{-400, -400}});
    EXPECT_EQ(frame->core.x, 100);
    EXPECT_EQ(frame->core.y, 100);
    EXPECT_LT(frame->core.width, 100);
    EXPECT_GE(clientOf(frame)->core.height, 8);
    EXPECT_GE(frame->core.width, 3 * 15 + 8); // still room for the three buttons
}

TEST_P(DragTest, MovingHandlerMayChangeTheRectangle)
{
    Widget frame = makeFrame(100, 100, 300, 200, kFull, {{XoNdisplayState, 0}});
    realize();
    g_pinTop = 100;
    drag(frame, 150, 10, {{25, 40}});
    EXPECT_EQ(rectOf(frame), (std::vector<int>{125, 100, 300, 200}));
    EXPECT_EQ(rectOf(*lastReason(XoCR_MOVED)), (std::vector<int>{125, 100, 300, 200}));
}

TEST_P(DragTest, DestroyingTheFrameMidDragLeavesNoGrab)
{
    Widget frame = makeFrame(100, 100, 300, 200, kFull, {{XoNdisplayState, 0}});
    Widget other = makeFrame(420, 300, 200, 150, kFull);
    realize();
    drag(frame, 150, 10, {{10, 10}}, false);
    ASSERT_EQ(XoGetMoveStatus(), 1);
    XtDestroyWidget(frame);
    settle();
    EXPECT_EQ(XoGetMoveStatus(), 0);
    if (xtest()) {
        ASSERT_TRUE(buttonUp(dpy_, 1));
    }
    settle();
    Display *second = XOpenDisplay(testDisplayName());
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(XGrabPointer(second, DefaultRootWindow(second), False, ButtonPressMask,
                           GrabModeAsync, GrabModeAsync, None, None, CurrentTime),
              GrabSuccess);
    EXPECT_EQ(XGrabKeyboard(second, DefaultRootWindow(second), False, GrabModeAsync,
                            GrabModeAsync, CurrentTime),
              GrabSuccess);
    XUngrabPointer(second, CurrentTime);
    XUngrabKeyboard(second, CurrentTime);
    XCloseDisplay(second);
    // Input reaches another frame again.
    reasons_.clear();
    Rect r = rootOf(other);
    ASSERT_TRUE(click(dpy_, r.x + 100, r.y + 10));
    OM_PUMP_UNTIL(!reasons_.empty(), 3000, pump_);
    EXPECT_EQ(reasonCodes(), (std::vector<int>{XoCR_ACTIVATE}));
}

TEST_P(DragTest, DraggingAnIconMovesItAndKeepsItsPlace)
{
    Widget frame = makeFrame(100, 100, 300, 200, kFull,
                             {{XoNstate, XoSTATE_ICONIC}, {XoNiconX, 200}, {XoNiconY, 300}});
    realize();
    drag(frame, 30, 20, {{-50, 12}});
    EXPECT_EQ(rectOf(frame), (std::vector<int>{150, 312, 64, 56}));
    int ix = 0, iy = 0;
    XtVaGetValues(frame, XoNiconX, &ix, XoNiconY, &iy, nullptr);
    EXPECT_EQ(ix, 150);
    EXPECT_EQ(iy, 312);
    EXPECT_EQ(reasonCodes(), (std::vector<int>{XoCR_ACTIVATE_ICON, XoCR_MOVED_SELF}));
    // Restoring goes back to the normal rectangle, not where the icon was.
    XoRestoreBorderWidget(frame);
    EXPECT_EQ(rectOf(frame), (std::vector<int>{100, 100, 300, 200}));
}

TEST_F(BorderTest, EscapeDuringAPointerDragPutsTheFrameBack)
{
    Widget frame = makeFrame(100, 100, 300, 200, kFull, {{XoNdisplayState, 0}});
    realize();
    Rect r = rootOf(frame);
    ASSERT_TRUE(movePointer(dpy_, r.x + 299, r.y + 100));
    ASSERT_TRUE(buttonDown(dpy_, 1));
    OM_ASSERT_PUMP_UNTIL(XoGetSizeStatus(), 3000, pump_);
    ASSERT_TRUE(movePointer(dpy_, r.x + 340, r.y + 100));
    OM_ASSERT_PUMP_UNTIL(frame->core.width == 341, 3000, pump_);
    ASSERT_TRUE(pressKey(dpy_, XK_Escape));
    OM_ASSERT_PUMP_UNTIL(!XoGetSizeStatus(), 3000, pump_);
    EXPECT_EQ(rectOf(frame), (std::vector<int>{100, 100, 300, 200}));
    ASSERT_TRUE(buttonUp(dpy_, 1));
    settle();
    EXPECT_EQ(lastReason(XoCR_SIZED), nullptr);
    // Ending from outside (a dialog about to come up) cancels as well.
    XoMoveWidget(frame);
    XoProcessKeyEvents(XK_Up);
    XoEndMoveSize(False);
    EXPECT_EQ(frame->core.y, 100);
    EXPECT_EQ(XoGetMoveStatus(), 0);
}

INSTANTIATE_TEST_SUITE_P(BothPaths, DragTest, ::testing::Values(true, false),
                         [](const auto &info) { return info.param ? "XTest" : "HandedBack"; });

TEST_F(BorderTest, KeyboardMoveStepsAcceptsAndCancels)
{
    Widget frame = makeFrame(100, 100, 300, 200, kFull, {{XoNdisplayState, 0}});
    realize();
    XoMoveWidget(frame);
    EXPECT_EQ(XoGetMoveStatus(), 1);
    EXPECT_EQ(XoGetSizeStatus(), 0);
    EXPECT_EQ(XoGetAcclStatus(frame), 1);
    for (KeySym k : {XK_Right, XK_Right, XK_Down})
        XoProcessKeyEvents(k);
    EXPECT_EQ(rectOf(frame), (std::vector<int>{116, 108, 300, 200}));
    EXPECT_EQ(count("WM_MOVING"), 3);
    EXPECT_TRUE(reasonCodes().empty());
    XoProcessKeyEvents(XK_Return);
    EXPECT_EQ(XoGetMoveStatus(), 0);
    EXPECT_EQ(XoGetAcclStatus(frame), 0);
    ASSERT_EQ(reasonCodes(), (std::vector<int>{XoCR_MOVED}));
    EXPECT_EQ(rectOf(reasons_.back()), (std::vector<int>{116, 108, 300, 200}));
    EXPECT_EQ(reasons_.back().keysym, int(XK_Return));

    // Escape, or any other key, puts the frame back and reports nothing.
    for (KeySym cancel : {KeySym(XK_Escape), KeySym(XK_a)}) {
        SCOPED_TRACE(cancel);
        reasons_.clear();
        XoMoveWidget(frame);
        XoProcessKeyEvents(XK_Left);
        EXPECT_EQ(frame->core.x, 108);
        XoProcessKeyEvents(cancel);
        EXPECT_EQ(rectOf(frame), (std::vector<int>{116, 108, 300, 200}));
        EXPECT_TRUE(reasonCodes().empty());
        EXPECT_EQ(XoGetMoveStatus(), 0);
    }
}

TEST_F(BorderTest, KeyboardSizePicksASideThenACorner)
{
    Widget frame = makeFrame(100, 100, 300, 200, kFull, {{XoNdisplayState, 0}});
    Widget fixed = makeFrame(420, 100, 200, 150, XoDECOR_BORDER | XoDECOR_TITLE);
    realize();
    XoSizeWidget(fixed); // no sizing border: nothing starts
    EXPECT_EQ(XoGetSizeStatus(), 0);

    XoSizeWidget(frame);
    EXPECT_EQ(XoGetSizeStatus(), 1);
    XoProcessKeyEvents(XK_Right); // picks the right side
    EXPECT_EQ(rectOf(frame), (std::vector<int>{100, 100, 300, 200}));
    XoProcessKeyEvents(XK_Right);
    XoProcessKeyEvents(XK_Down); // takes the bottom-right corner
    XoProcessKeyEvents(XK_Down);
    XoProcessKeyEvents(XK_Left);
    EXPECT_EQ(rectOf(frame), (std::vector<int>{100, 100, 300, 208}));
    std::vector<int> edges;
    for (auto &u : g_upcalls)
        if (u.what == "WM_SIZING")
            edges.push_back(u.edge);
    EXPECT_EQ(edges, (std::vector<int>{XoEDGE_RIGHT, XoEDGE_BOTTOMRIGHT, XoEDGE_BOTTOMRIGHT}));
    XoProcessKeyEvents(XK_KP_Enter);
    ASSERT_EQ(reasonCodes(), (std::vector<int>{XoCR_SIZED}));
    EXPECT_EQ(reasons_.back().edge, XoEDGE_BOTTOMRIGHT);
    EXPECT_EQ(clientOf(frame)->core.height, 208 - 26);
}

TEST_F(BorderTest, KeyboardMoveTakesXKeysAndPointer)
{
    Widget frame = makeFrame(100, 100, 300, 200, kFull, {{XoNdisplayState, 0}});
    realize();
    // X key events reach the frame, which holds the keyboard while moving.
    XoMoveWidget(frame);
    ASSERT_TRUE(pressKey(dpy_, XK_Left));
    OM_PUMP_UNTIL(frame->core.x == 92, 3000, pump_);
    ASSERT_TRUE(pressKey(dpy_, XK_Return));
    OM_PUMP_UNTIL(!reasons_.empty(), 3000, pump_);
    EXPECT_EQ(reasonCodes(), (std::vector<int>{XoCR_MOVED}));

    // Handed-back motion continues a keyboard move; a click ends it.
    reasons_.clear();
    XoMoveWidget(frame);
    sendMotion(frame, 50, 50, 10);
    sendMotion(frame, 60, 45, 11);
    EXPECT_EQ(rectOf(frame), (std::vector<int>{102, 95, 300, 200}));
    sendButton(frame, ButtonPress, 60, 45, 12);
    EXPECT_EQ(XoGetMoveStatus(), 0);
    EXPECT_EQ(reasonCodes(), (std::vector<int>{XoCR_MOVED}));
    EXPECT_EQ(rectOf(reasons_.back()), (std::vector<int>{102, 95, 300, 200}));
}

inline int g_postedMove = 0, g_postedSize = 0;
void postMove(Widget) { ++g_postedMove; }
void postSize(Widget) { ++g_postedSize; }

TEST_F(BorderTest, ControlKeysAskForCloseNextPreviousMoveAndSize)
{
    Widget frame = makeFrame(100, 100, 300, 200, kFull, {{XoNdisplayState, 0}});
    Widget plain = makeFrame(420, 100, 200, 150, XoDECOR_BORDER | XoDECOR_TITLE);
    realize();
    XoUpcalls up{};
    up.omPost_SC_MOVE = postMove;
    up.omNonMenuBorderSysCB = postSize;
    XoRegisterUpcalls(&up);
    auto key = [&](Widget w, KeySym sym, unsigned state) {
        XEvent ev{};
        ev.xkey.type = KeyPress;
        ev.xkey.send_event = True;
        ev.xkey.display = dpy_;
        ev.xkey.window = XtWindow(w);
        ev.xkey.root = DefaultRootWindow(dpy_);
        ev.xkey.state = state;
        ev.xkey.keycode = XKeysymToKeycode(dpy_, sym);
        ev.xkey.same_screen = True;
        // Straight to the frame's action: XtDispatchEvent would redirect
        // the key to the shell's Motif focus widget, as it does for every
        // key outside a move or size (when the frame holds the keyboard).
        XtCallActionProc(w, "XoBorderKey", &ev, nullptr, 0);
    };
    key(frame, XK_F4, ControlMask);
    key(frame, XK_F6, ControlMask);
    key(frame, XK_F6, ControlMask | ShiftMask);
    key(frame, XK_F4, 0); // without Ctrl: nothing
    EXPECT_EQ(reasonCodes(), (std::vector<int>{XoCR_CLOSE, XoCR_NEXT_WINDOW, XoCR_PREV_WINDOW}));
    // Move and size keys post the commands only for frames without a menu.
    key(frame, XK_F7, ControlMask);
    key(frame, XK_F8, ControlMask);
    EXPECT_EQ(g_postedMove + g_postedSize, 0);
    key(plain, XK_F7, ControlMask);
    key(plain, XK_F8, ControlMask);
    EXPECT_EQ(g_postedMove, 1);
    EXPECT_EQ(g_postedSize, 1);
}

TEST_F(BorderTest, SystemMenuButtonAndDoubleClicks)
{
    Widget frame = makeFrame(100, 100, 300, 200, kFull, {{XoNdisplayState, 0}});
    realize();
    sendButton(frame, ButtonPress, 10, 10, 5000);
    sendButton(frame, ButtonRelease, 10, 10, 5010);
    EXPECT_EQ(reasonCodes(), (std::vector<int>{XoCR_MOUSE_MENU}));
    ASSERT_EQ(count("PopupSystemMenu"), 1);
    std::vector<std::vector<int>> enabled;
    for (auto &u : g_upcalls)
        if (u.what == "Enable")
            enabled.push_back({u.rect.x, u.rect.y});
    EXPECT_EQ(enabled, (std::vector<std::vector<int>>{
                           {0, 0}, {1, 1}, {2, 1}, {3, 1}, {4, 1}, {7, 1}}));
    // A second press within the double-click time is the close request.
    sendButton(frame, ButtonPress, 10, 10, 5050);
    EXPECT_EQ(reasons_.back().reason, XoCR_CLOSE);
    EXPECT_FALSE(XoSysMenuOn());

    // A caption double click maximises, and another restores.
    reasons_.clear();
    for (Time t : {Time(9000), Time(9050)}) {
        sendButton(frame, ButtonPress, 150, 10, t);
        sendButton(frame, ButtonRelease, 150, 10, t + 5);
    }
    EXPECT_EQ(reasonCodes(), (std::vector<int>{XoCR_MAXIMIZE}));
    EXPECT_EQ(frame->core.width, kCanvasW + 8);
    for (Time t : {Time(12000), Time(12050)}) {
        sendButton(frame, ButtonPress, 150, 10, t);
        sendButton(frame, ButtonRelease, 150, 10, t + 5);
    }
    EXPECT_EQ(reasonCodes(), (std::vector<int>{XoCR_MAXIMIZE, XoCR_RESTORE}));
    EXPECT_EQ(frame->core.width, 300);
}

} // namespace
