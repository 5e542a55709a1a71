// Pointer and key routing around child windows: the hit-test table of a
// sizing frame, non-client button and motion messages, activation and
// parent notification, disabled children handing their input to the
// nearest enabled ancestor, and list boxes that let their parent veto keys.
// Child windows are top-level windows adopted into a parent's tree, since
// the child builder has not landed.
#include "xevents_fixture.h"

#include "kernel/omkeyboard.h"
#include "kernel/omplaceholder.h"

#include <X11/keysym.h>

#include <cstring>
#include <map>

namespace om::test {
namespace {

// ---------------------------------------------------------------------------
// The hit-test table.

TEST(HitTest, SizingFrameStripsAndCorners)
{
    WindowRecord r;
    r.style = WS_THICKFRAME;
    r.cx = 200;
    r.cy = 100;
    struct Case {
        int x, y, hit;
    } cases[] = {
        {0, 0, HTTOPLEFT},      {9, 29, HTTOPLEFT},      {9, 30, HTLEFT},
        {9, 69, HTLEFT},        {9, 70, HTBOTTOMLEFT},   {-3, 50, HTLEFT},
        {191, 0, HTTOPRIGHT},   {191, 50, HTRIGHT},      {191, 70, HTBOTTOMRIGHT},
        {199, 99, HTBOTTOMRIGHT}, {190, 50, HTCAPTION},  {200, 50, HTCAPTION},
        {10, 0, HTTOPLEFT},     {30, 0, HTTOP},          {169, 9, HTTOP},
        {170, 9, HTTOPRIGHT},   {29, 95, HTBOTTOMLEFT},  {50, 91, HTBOTTOM},
        // The bottom-right corner is shorter along the bottom edge.
        {173, 95, HTBOTTOM},    {174, 95, HTBOTTOMRIGHT}, {50, 90, HTCAPTION},
        {100, 50, HTCAPTION},   {100, 100, HTCAPTION},
    };
    for (int type : {ButtonPress, MotionNotify}) {
        for (const Case &c : cases) {
            SCOPED_TRACE(testing::Message() << "type " << type << " at " << c.x << "," << c.y);
            XEvent ev{};
            ev.type = type;
            if (type == ButtonPress) {
                ev.xbutton.x = c.x;
                ev.xbutton.y = c.y;
            } else {
                ev.xmotion.x = c.x;
                ev.xmotion.y = c.y;
            }
            EXPECT_EQ(omCalculateHitTest(&r, &ev), c.hit);
        }
    }
}

TEST(HitTest, WithoutASizingFrameOrAPointEverythingIsCaption)
{
    WindowRecord r;
    r.cx = 200;
    r.cy = 100;
    XEvent ev{};
    ev.type = ButtonPress;
    for (DWORD style : {0u, DWORD(WS_BORDER), DWORD(WS_DLGFRAME | WS_CAPTION)}) {
        r.style = style;
        EXPECT_EQ(omCalculateHitTest(&r, &ev), HTCAPTION) << std::hex << style;
    }
    r.style = WS_THICKFRAME;
    ev.type = KeyPress;
    EXPECT_EQ(omCalculateHitTest(&r, &ev), HTCAPTION);
    EXPECT_EQ(omCalculateHitTest(nullptr, &ev), HTCAPTION);
}

// ---------------------------------------------------------------------------
// Routing through adopted children.

struct Heard {
    HWND hwnd;
    UINT msg;
    WPARAM wParam;
    LPARAM lParam;
};
std::vector<Heard> heard;
std::map<HWND, LRESULT> hitAnswer;

LRESULT CALLBACK routingProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    switch (msg) {
    case WM_NCHITTEST:
        heard.push_back({hwnd, msg, wParam, lParam});
        return hitAnswer.count(hwnd) ? hitAnswer[hwnd] : HTCLIENT;
    case LB_GETCARETINDEX:
        return 5;
    case WM_VKEYTOITEM:
    case WM_CHARTOITEM:
        heard.push_back({hwnd, msg, wParam, lParam});
        return LOWORD(wParam) == 'X' ? -2 : -1;
    case WM_NCLBUTTONDOWN: case WM_NCLBUTTONUP: case WM_NCLBUTTONDBLCLK:
    case WM_NCRBUTTONDOWN: case WM_NCRBUTTONUP: case WM_NCMBUTTONDOWN:
    case WM_NCMOUSEMOVE: case WM_MOUSEACTIVATE: case WM_PARENTNOTIFY:
    case WM_SIZE: case WM_PALETTECHANGED: case WM_SETCURSOR:
        heard.push_back({hwnd, msg, wParam, lParam});
        return 0;
    default:
        return DefWindowProcA(hwnd, msg, wParam, lParam);
    }
}

std::vector<Heard> heardOf(UINT msg)
{
    std::vector<Heard> out;
    for (const Heard &h : heard)
        if (h.msg == msg)
            out.push_back(h);
    return out;
}

class Routing : public XEventsTest {
protected:
    void SetUp() override
    {
        XEventsTest::SetUp();
        if (HasFatalFailure())
            return;
        parent_ = makeRouted(320, 40);
        child_ = makeRouted(320, 260);
        ASSERT_TRUE(parent_ && child_);
        adopt(child_, parent_, 0);
        heard.clear();
        hitAnswer.clear();
        drain();
    }
    void TearDown() override
    {
        // Undone in reverse, so that each record is whole again before
        // DestroyWindow sees it.
        for (auto it = adopted_.rbegin(); it != adopted_.rend(); ++it) {
            WindowRecord *w = omWindowRecord(it->hwnd);
            if (w) {
                w->style = it->style;
                w->parent = nullptr;
                w->kind = OM_WK_PLAIN;
                w->exStyle = it->exStyle;
            }
        }
        for (unsigned vk : {VK_LBUTTON, VK_RBUTTON, VK_MBUTTON})
            omVirKeyState[vk] = 0;
        XEventsTest::TearDown();
    }

    HWND makeRouted(int x, int y)
    {
        WNDCLASSA wc{};
        if (!GetClassInfoA(nullptr, "XevRouting", &wc)) {
            wc.lpfnWndProc = routingProc;
            wc.lpszClassName = "XevRouting";
            RegisterClassA(&wc);
        }
        HWND h = _omCreateWindowEx(0, "XevRouting", "routing", WS_OVERLAPPEDWINDOW, x, y, 200,
                                   150, nullptr, nullptr, nullptr, nullptr, 0);
        if (!h)
            return nullptr;
        made_.push_back(h);
        ShowWindow(h, SW_SHOWNORMAL);
        Widget canvas = omWindowRecord(h)->canvasWidget;
        OM_PUMP_UNTIL(canvas && XtWindow(canvas) && viewable(XtWindow(canvas)), 3000,
                      xeventsPump);
        pumpFor(std::chrono::milliseconds(30), xeventsPump);
        return h;
    }
    // Makes h a child of parent as far as routing looks: its style and
    // parent link (the parent's child list is left alone).
    void adopt(HWND h, HWND parent, DWORD extraStyle)
    {
        WindowRecord *w = omWindowRecord(h);
        adopted_.push_back({h, w->style, w->exStyle});
        w->style = (w->style & ~(WS_OVERLAPPEDWINDOW | WS_POPUP)) | WS_CHILD | extraStyle;
        w->parent = parent;
    }

    // Routes a press and release of keysym on h; what was posted, to anyone.
    std::vector<OmMsgRecord> stroke(HWND h, KeySym keysym)
    {
        for (int type : {KeyPress, KeyRelease}) {
            XEvent ev = keyEvent(type, h, keysym);
            _omProcessXEvent(&ev);
        }
        std::vector<OmMsgRecord> keys;
        for (auto &m : drain())
            if (m.message >= WM_KEYDOWN && m.message <= WM_SYSKEYUP)
                keys.push_back(m);
        return keys;
    }
    std::vector<OmMsgRecord> postedOf(const std::vector<OmMsgRecord> &all, UINT lo, UINT hi)
    {
        std::vector<OmMsgRecord> out;
        for (auto &m : all)
            if (m.message >= lo && m.message <= hi)
                out.push_back(m);
        return out;
    }

    struct Adopted {
        HWND hwnd;
        DWORD style, exStyle;
    };
    std::vector<Adopted> adopted_;
    HWND parent_ = nullptr, child_ = nullptr;
};

TEST_F(Routing, NonClientPressAndReleaseGoToTheWindowAsNonClientMessages)
{
    struct Case {
        const char *name;
        unsigned button;
        LRESULT hit;
        uint8_t kind;
        UINT down, up;
        unsigned vk;
        WPARAM upWParam;
    } cases[] = {
        {"left on the caption", 1, HTCAPTION, OM_WK_PLAIN, WM_NCLBUTTONDOWN, WM_NCLBUTTONUP,
         VK_LBUTTON, 0},
        {"right on a border", 3, HTBOTTOM, OM_WK_PLAIN, WM_NCRBUTTONDOWN, WM_NCRBUTTONUP,
         VK_RBUTTON, 0},
        {"a tab control hears the part on release", 1, HTCAPTION, OM_WK_TABCTRL,
         WM_NCLBUTTONDOWN, WM_NCLBUTTONUP, VK_LBUTTON, HTCAPTION},
    };
    Time time = 100000;
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        heard.clear();
        hitAnswer[child_] = c.hit;
        omWindowRecord(child_)->kind = c.kind;
        time += 10000;  // no double click with the previous case
        XEvent press = pointerEvent(ButtonPress, child_, {15, 25}, c.button, time);
        _omProcessXEvent(&press);
        EXPECT_EQ(omVirKeyState[c.vk], 1);
        XEvent release = pointerEvent(ButtonRelease, child_, {15, 25}, c.button, time + 5);
        _omProcessXEvent(&release);
        EXPECT_EQ(omVirKeyState[c.vk], 0);

        LPARAM screen = MAKELPARAM(press.xbutton.x_root, press.xbutton.y_root);
        auto tests = heardOf(WM_NCHITTEST);
        ASSERT_EQ(tests.size(), 2u);
        EXPECT_EQ(tests[0].lParam, screen);
        auto downs = heardOf(c.down), ups = heardOf(c.up);
        ASSERT_EQ(downs.size(), 1u);
        ASSERT_EQ(ups.size(), 1u);
        EXPECT_EQ(downs[0].hwnd, child_);
        EXPECT_EQ(downs[0].wParam, static_cast<WPARAM>(c.hit));
        EXPECT_EQ(downs[0].lParam, screen);
        EXPECT_EQ(ups[0].wParam, c.upWParam);
        EXPECT_TRUE(heardOf(WM_MOUSEACTIVATE).empty());
        EXPECT_TRUE(heardOf(WM_PARENTNOTIFY).empty());
        EXPECT_TRUE(postedOf(drain(), WM_MOUSEFIRST + 1, WM_MOUSELAST).empty())
            << "no client button message";
    }
}

TEST_F(Routing, NonClientPressesPairByTimeAlone)
{
    hitAnswer[child_] = HTCAPTION;
    // The class has no CS_DBLCLKS and the presses are far apart: the frame
    // pairs them all the same; a third press starts over.
    POINT points[] = {{5, 5}, {150, 100}, {150, 100}};
    Time time = 500000;
    for (POINT p : points) {
        XEvent press = pointerEvent(ButtonPress, child_, p, 1, time);
        _omProcessXEvent(&press);
        XEvent release = pointerEvent(ButtonRelease, child_, p, 1, time + 1);
        _omProcessXEvent(&release);
        time += 20;
    }
    std::vector<UINT> got;
    for (const Heard &h : heard)
        if (h.msg == WM_NCLBUTTONDOWN || h.msg == WM_NCLBUTTONDBLCLK)
            got.push_back(h.msg);
    EXPECT_EQ(got, (std::vector<UINT>{WM_NCLBUTTONDOWN, WM_NCLBUTTONDBLCLK, WM_NCLBUTTONDOWN}));

    // Past the double-click time a press is single again.
    heard.clear();
    for (Time t : {Time(900000), Time(900000) + omDoubleClickTime + 1}) {
        XEvent press = pointerEvent(ButtonPress, child_, {5, 5}, 1, t);
        _omProcessXEvent(&press);
    }
    EXPECT_EQ(heardOf(WM_NCLBUTTONDOWN).size(), 2u);
    EXPECT_TRUE(heardOf(WM_NCLBUTTONDBLCLK).empty());
}

TEST_F(Routing, ClientPressActivatesAndNotifiesTheParent)
{
    for (bool noNotify : {false, true}) {
        SCOPED_TRACE(noNotify);
        heard.clear();
        omWindowRecord(child_)->exStyle = noNotify ? WS_EX_NOPARENTNOTIFY : 0;
        POINT inParent{12, 34};
        POINT s = screenOf(parent_, inParent.x, inParent.y);
        XEvent press = pointerEvent(ButtonPress, child_, {20, 20}, 3, 700000 + noNotify * 5000);
        press.xbutton.x_root = s.x;
        press.xbutton.y_root = s.y;
        _omProcessXEvent(&press);

        auto activate = heardOf(WM_MOUSEACTIVATE);
        ASSERT_EQ(activate.size(), 1u);
        EXPECT_EQ(activate[0].hwnd, child_);
        EXPECT_EQ(activate[0].wParam, reinterpret_cast<WPARAM>(parent_));
        EXPECT_EQ(activate[0].lParam, MAKELPARAM(HTCLIENT, WM_RBUTTONDOWN));
        auto notify = heardOf(WM_PARENTNOTIFY);
        if (noNotify) {
            EXPECT_TRUE(notify.empty());
        } else {
            ASSERT_EQ(notify.size(), 1u);
            EXPECT_EQ(notify[0].hwnd, parent_);
            EXPECT_EQ(LOWORD(notify[0].wParam), WM_RBUTTONDOWN);
            EXPECT_EQ(notify[0].lParam, MAKELPARAM(inParent.x, inParent.y));
        }
        auto downs = postedOf(drain(), WM_RBUTTONDOWN, WM_RBUTTONDOWN);
        ASSERT_EQ(downs.size(), 1u);
        EXPECT_EQ(downs[0].hwnd, child_);
        EXPECT_EQ(downs[0].lParam, MAKELPARAM(20, 20));
        // The record carries the press's time and the pointer's screen point.
        EXPECT_EQ(downs[0].time, static_cast<DWORD>(press.xbutton.time));
        EXPECT_EQ(downs[0].x, s.x);
        EXPECT_EQ(downs[0].y, s.y);
        XEvent release = pointerEvent(ButtonRelease, child_, {20, 20}, 3, press.xbutton.time + 1);
        _omProcessXEvent(&release);
        EXPECT_EQ(postedOf(drain(), WM_RBUTTONUP, WM_RBUTTONUP).size(), 1u);
    }
}

TEST_F(Routing, MotionAsksForTheHitAndMovesInTheFrameOrTheClient)
{
    struct Case {
        LRESULT hit;
        bool uiThreads, ncMove, clientMove;
    } cases[] = {{HTCAPTION, true, true, false},
                 {HTRIGHT, true, true, false},
                 {HTCLIENT, true, false, true},
                 {HTLEFT, false, true, false}};
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << c.hit << (c.uiThreads ? "" : " main thread only"));
        heard.clear();
        drain();
        hitAnswer[child_] = c.hit;
        omSetUserInterfaceThreadSupported(c.uiThreads);
        XEvent motion = pointerEvent(MotionNotify, child_, {40, 30}, 0, 0);
        _omProcessXEvent(&motion);
        omSetUserInterfaceThreadSupported(1);
        auto tests = heardOf(WM_NCHITTEST);
        ASSERT_EQ(tests.size(), 1u);
        EXPECT_EQ(tests[0].wParam, 2u);
        EXPECT_EQ(tests[0].lParam, MAKELPARAM(motion.xmotion.x_root, motion.xmotion.y_root));
        auto nc = heardOf(WM_NCMOUSEMOVE);
        ASSERT_EQ(nc.size(), c.ncMove ? 1u : 0u);
        if (c.ncMove) {
            EXPECT_EQ(nc[0].wParam, static_cast<WPARAM>(c.hit));
        }
        auto posted = drain();
        auto moves = postedOf(posted, WM_MOUSEMOVE, WM_MOUSEMOVE);
        ASSERT_EQ(moves.size(), c.clientMove ? 1u : 0u);
        if (c.clientMove) {
            EXPECT_EQ(moves[0].x, motion.xmotion.x_root);
            EXPECT_EQ(moves[0].y, motion.xmotion.y_root);
        }
        // Posted with the event for the owner's thread, or else asked at once.
        auto cursor = postedOf(posted, WM_SETCURSOR, WM_SETCURSOR);
        auto asked = heardOf(WM_SETCURSOR);
        ASSERT_EQ(cursor.size(), c.uiThreads ? 1u : 0u);
        ASSERT_EQ(asked.size(), c.uiThreads ? 0u : 1u);
        WPARAM wParam = cursor.empty() ? asked[0].wParam : cursor[0].wParam;
        LPARAM lParam = cursor.empty() ? asked[0].lParam : cursor[0].lParam;
        EXPECT_EQ(wParam, reinterpret_cast<WPARAM>(child_));
        EXPECT_EQ(lParam, c.uiThreads ? MAKELPARAM(HTCLIENT, 0) : MAKELPARAM(c.hit, WM_MOUSEMOVE));
    }
}

TEST_F(Routing, KeysTheToolkitKeepsForItself)
{
    struct Case {
        const char *name;
        uint8_t parentKind;
        KeySym key;
        unsigned state;
        bool posted;
    } cases[] = {
        {"Tab in a list view's label editor", OM_WK_LISTVIEW, XK_Tab, 0, false},
        {"Tab in an edit field elsewhere", OM_WK_PLAIN, XK_Tab, 0, true},
        {"Control+space", OM_WK_PLAIN, XK_space, ControlMask, false},
        {"Control+Shift+space", OM_WK_PLAIN, XK_space, ControlMask | ShiftMask, true},
    };
    omWindowRecord(child_)->kind = OM_WK_EDIT;
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        omWindowRecord(parent_)->kind = c.parentKind;
        drain();
        XEvent ev = keyEvent(KeyPress, child_, c.key);
        ev.xkey.state = c.state;
        _omProcessXEvent(&ev);
        size_t downs = 0;
        for (auto &m : drain())
            downs += m.message == WM_KEYDOWN;
        EXPECT_EQ(downs, c.posted ? 1u : 0u);
    }
    for (int vk : {VK_TAB, VK_SPACE, int('A')})
        omVirKeyState[vk] = 0;
    omWindowRecord(parent_)->kind = OM_WK_PLAIN;
}

// ---------------------------------------------------------------------------
// Disabled windows.

TEST_F(Routing, KeysOfADisabledChildGoToTheNearestEnabledAncestor)
{
    HWND grandchild = makeRouted(560, 260);
    ASSERT_TRUE(grandchild);
    adopt(grandchild, child_, 0);
    WindowRecord *top = omWindowRecord(parent_), *mid = omWindowRecord(child_),
                 *low = omWindowRecord(grandchild);
    struct Case {
        const char *name;
        bool topOff, midOff, lowOff;
        HWND expected;  // null: dropped
    } cases[] = {
        {"all enabled", false, false, false, grandchild},
        {"disabled child, enabled parent", false, false, true, child_},
        {"disabled chain up to an enabled window", false, true, true, parent_},
        {"enabled child of a disabled parent", false, true, false, nullptr},
        {"disabled child under a disabled top-level window", true, false, true, nullptr},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        auto set = [](WindowRecord *w, bool off) {
            w->style = off ? (w->style | WS_DISABLED) : (w->style & ~WS_DISABLED);
        };
        set(top, c.topOff);
        set(mid, c.midOff);
        set(low, c.lowOff);
        auto keys = stroke(grandchild, XK_g);
        if (!c.expected) {
            EXPECT_TRUE(keys.empty());
        } else {
            ASSERT_EQ(keys.size(), 2u);
            EXPECT_EQ(keys[0].hwnd, c.expected);
            EXPECT_EQ(keys[0].message, static_cast<UINT>(WM_KEYDOWN));
            EXPECT_EQ(keys[0].wParam, static_cast<WPARAM>('G'));
            EXPECT_EQ(keys[1].message, static_cast<UINT>(WM_KEYUP));
        }
        EXPECT_EQ(omVirKeyState['G'], 0);
    }
    for (WindowRecord *w : {top, mid, low})
        w->style &= ~WS_DISABLED;
}

TEST_F(Routing, TypedKeysOfADisabledChildReachItsParent)
{
    omWindowRecord(child_)->style |= WS_DISABLED;
    POINT p = screenOf(child_, 20, 20);
    movePointer(omDisplay, p.x, p.y);
    XSetInputFocus(omDisplay, canvasWindow(child_), RevertToPointerRoot, CurrentTime);
    XSync(omDisplay, False);
    pumpFor(std::chrono::milliseconds(20), xeventsPump);
    drain();
    ASSERT_TRUE(pressKey(omDisplay, XK_k));
    auto got = collect(parent_, WM_KEYDOWN, WM_KEYUP, 2);
    ASSERT_EQ(got.size(), 2u);
    EXPECT_EQ(got[0].wParam, static_cast<WPARAM>('K'));
    EXPECT_EQ(got[0].event.xkey.window, canvasWindow(child_)) << "the child's own event";
    omWindowRecord(child_)->style &= ~WS_DISABLED;
}

bool placeholderCalled(const char *name)
{
    for (const OmPlaceholder *p = omPlaceholderFirst(); p; p = p->next)
        if (!std::strcmp(p->name, name))
            return p->called.load();
    return false;
}

TEST_F(Routing, MouseInputOfADisabledChildIsHandedOnNotPosted)
{
    omWindowRecord(child_)->style |= WS_DISABLED;
    XEvent press = pointerEvent(ButtonPress, child_, {10, 10}, 1, 800000);
    _omProcessXEvent(&press);
    XEvent release = pointerEvent(ButtonRelease, child_, {10, 10}, 1, 800001);
    _omProcessXEvent(&release);
    EXPECT_TRUE(placeholderCalled("omPostMouseInputWhileDisabled"));
    EXPECT_TRUE(postedOf(drain(), WM_MOUSEFIRST, WM_MOUSELAST).empty());
    EXPECT_TRUE(heardOf(WM_MOUSEACTIVATE).empty()) << "a disabled window is not activated";

    // Under a disabled parent nothing is handed on either.
    omWindowRecord(child_)->style &= ~WS_DISABLED;
    omWindowRecord(parent_)->style |= WS_DISABLED;
    XEvent again = pointerEvent(ButtonPress, child_, {10, 10}, 1, 900000);
    _omProcessXEvent(&again);
    EXPECT_TRUE(postedOf(drain(), WM_MOUSEFIRST, WM_MOUSELAST).empty());
    omWindowRecord(parent_)->style &= ~WS_DISABLED;
}

TEST_F(Routing, ComboBoxEditFieldHandsItsMouseInputToTheComboBox)
{
    omWindowRecord(parent_)->kind = OM_WK_COMBOBOX;
    omWindowRecord(child_)->kind = OM_WK_EDIT;
    XEvent press = pointerEvent(ButtonPress, child_, {7, 9}, 1, 950000);
    _omProcessXEvent(&press);
    XEvent motion = pointerEvent(MotionNotify, child_, {8, 9}, 0, 0);
    _omProcessXEvent(&motion);
    XEvent release = pointerEvent(ButtonRelease, child_, {8, 9}, 1, 950001);
    _omProcessXEvent(&release);
    std::vector<UINT> toCombo;
    for (auto &m : postedOf(drain(), WM_MOUSEFIRST, WM_MOUSELAST)) {
        EXPECT_EQ(m.hwnd, parent_) << std::hex << m.message;
        toCombo.push_back(m.message);
        EXPECT_EQ(LOWORD(m.lParam), m.message == WM_LBUTTONDOWN ? 7 : 8) << "the field's own point";
    }
    EXPECT_EQ(toCombo, (std::vector<UINT>{WM_LBUTTONDOWN, WM_MOUSEMOVE, WM_LBUTTONUP}));
    omWindowRecord(parent_)->kind = OM_WK_PLAIN;
}

// ---------------------------------------------------------------------------
// List boxes that want the keyboard.

TEST_F(Routing, ListBoxParentMayVetoKeys)
{
    WindowRecord *box = omWindowRecord(child_);
    box->kind = OM_WK_LISTBOX;
    struct Case {
        const char *name;
        DWORD style;
        KeySym key;
        UINT asked;  // 0: the parent is not asked
        bool posted;
    } cases[] = {
        {"vetoed", LBS_WANTKEYBOARDINPUT | LBS_HASSTRINGS, XK_x, WM_VKEYTOITEM, false},
        {"let through", LBS_WANTKEYBOARDINPUT | LBS_HASSTRINGS, XK_y, WM_VKEYTOITEM, true},
        {"without strings", LBS_WANTKEYBOARDINPUT, XK_x, WM_CHARTOITEM, false},
        {"not wanting the keyboard", LBS_HASSTRINGS, XK_x, 0, true},
    };
    DWORD base = box->style & ~0xFFFFu;
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        heard.clear();
        box->style = base | c.style;
        auto keys = stroke(child_, c.key);
        std::vector<Heard> asks;
        for (const Heard &h : heard)
            if (h.msg == WM_VKEYTOITEM || h.msg == WM_CHARTOITEM)
                asks.push_back(h);
        if (c.asked) {
            ASSERT_EQ(asks.size(), 1u) << "asked on the press only";
            EXPECT_EQ(asks[0].msg, c.asked);
            EXPECT_EQ(asks[0].hwnd, parent_);
            EXPECT_EQ(LOWORD(asks[0].wParam), c.key == XK_x ? 'X' : 'Y');
            EXPECT_EQ(HIWORD(asks[0].wParam), 5u) << "the caret item";
            EXPECT_EQ(asks[0].lParam, reinterpret_cast<LPARAM>(child_));
        } else {
            EXPECT_TRUE(asks.empty());
        }
        size_t downs = 0;
        for (auto &m : keys)
            downs += m.message == WM_KEYDOWN && m.hwnd == child_;
        EXPECT_EQ(downs, c.posted ? 1u : 0u);
        EXPECT_EQ(omVirKeyState['X'], 0) << "the key state follows the keyboard";
    }
}

}  // namespace
}  // namespace om::test
