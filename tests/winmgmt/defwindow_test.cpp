// The default window procedure on top-level windows: what each message
// answers and does, the preamble (dead and foreign windows, the reserved
// range, the thread rule), window text, icons, and input messages handed
// back to the widgets as X events.
#include "winmgmt_fixture.h"

#include "winmgmt/omdefwindow.h"

#include "kernel/omthread.h"

#include <Xm/TextF.h>
#include <Xm/Xm.h>
#include <X11/Shell.h>

#include <algorithm>
#include <thread>

namespace om::test {
namespace {

// What the recording procedure heard, and what it does on WM_CONTEXTMENU.
struct Heard {
    std::vector<UINT> messages;
    enum { Pass, Destroy, CloseMenu } onContextMenu = Pass;
};
Heard heard;

LRESULT CALLBACK recordingProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    heard.messages.push_back(msg);
    if (msg == WM_CONTEXTMENU) {
        if (heard.onContextMenu == Heard::Destroy) {
            DestroyWindow(hwnd);
            return 0;
        }
        if (heard.onContextMenu == Heard::CloseMenu) {
            // What a context menu does when it runs.
            omCallingContextMenuWindow = nullptr;
            return 0;
        }
    }
    return DefWindowProcA(hwnd, msg, wParam, lParam);
}

const char *classWithBrush(HBRUSH brush, const char *name)
{
    WNDCLASSA wc{};
    wc.lpfnWndProc = recordingProc;
    wc.hbrBackground = brush;
    wc.lpszClassName = name;
    RegisterClassA(&wc);
    return name;
}

// Counts the X events XtDispatchEvent hands a widget.
struct EventLog {
    std::vector<XEvent> events;
    static void handler(Widget, XtPointer data, XEvent *ev, Boolean *)
    {
        static_cast<EventLog *>(data)->events.push_back(*ev);
    }
};

class DefWindowProcTop : public WinmgmtTest {
protected:
    void SetUp() override
    {
        WinmgmtTest::SetUp();
        heard = Heard{};
        omDiagResetCounts();
    }
    HWND makeRecorded(HBRUSH brush = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)),
                      DWORD exStyle = 0)
    {
        const char *cls = brush == GetStockObject(NULL_BRUSH) ? classWithBrush(brush, "DefWndNull")
                                                              : classWithBrush(brush, "DefWndRec");
        HWND h = CreateWindowExA(exStyle, cls, "title", WS_OVERLAPPEDWINDOW, 30, 30, 200, 140,
                                 nullptr, nullptr, nullptr, nullptr);
        if (h)
            made_.push_back(h);
        return h;
    }
    static std::string shellTitle(HWND h)
    {
        String title = nullptr;
        XtVaGetValues(omWindowRecord(h)->shellWidget, XmNtitle, &title, nullptr);
        return title ? title : "";
    }
};

TEST_F(DefWindowProcTop, AnswersEachMessageAsTheTableSays)
{
    HWND h = makeRecorded();
    ASSERT_TRUE(h);
    HWND other = reinterpret_cast<HWND>(0x1234);
    const struct {
        const char *name;
        UINT msg;
        WPARAM wParam;
        LRESULT result;
    } rows[] = {
        {"top-level mouse activation", WM_MOUSEACTIVATE, 0, 6},
        {"end of session", WM_QUERYENDSESSION, 0, 1},
        {"system character", WM_SYSCHAR, 'x', 0},
        {"composition", WM_IME_STARTCOMPOSITION, 0, 0},
        {"new palette", WM_QUERYNEWPALETTE, 0, 1},
        {"own palette change", WM_PALETTECHANGED, reinterpret_cast<WPARAM>(h), 0},
        {"other's palette change", WM_PALETTECHANGED, reinterpret_cast<WPARAM>(other), 1},
        {"top-level hit test", WM_NCHITTEST, 0, HTCLIENT},
        {"top-level help", WM_HELP, 0, 1},
        {"position changing", WM_WINDOWPOSCHANGING, 0, 0},
        {"non-client click on a scroll bar", WM_NCLBUTTONDOWN, HTVSCROLL, 1},
        {"non-client move on a scroll bar", WM_NCMOUSEMOVE, HTHSCROLL, 1},
        {"program's own message", WM_USER + 5, 0, 0},
        {"reserved range start", 0x361, 0, 0},
        {"reserved range end", 0x37E, 0, 0},
        {"calc size without an edge", WM_NCCALCSIZE, 0, 0},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.name);
        EXPECT_EQ(DefWindowProcA(h, r.msg, r.wParam, 0), r.result);
    }
    EXPECT_EQ(DefWindowProcA(h, WM_GETFONT, 0, 0),
              reinterpret_cast<LRESULT>(GetStockObject(SYSTEM_FONT)));
    bNCCreate = 0;
    EXPECT_EQ(DefWindowProcA(h, WM_NCCREATE, 0, 0), 1);
    EXPECT_EQ(bNCCreate, 1) << "creation reads it to know the message was passed on";
    EXPECT_TRUE(IsWindow(h)) << "none of them destroys the window";
}

TEST_F(DefWindowProcTop, LaterStagesAreEntryPointsOfTheirOwn)
{
    HWND h = makeRecorded();
    ASSERT_TRUE(h);
    // A stage answers its own rows and passes the rest on; earlier rows
    // are not seen again.
    EXPECT_EQ(DefWindowProcA_1(h, WM_QUERYENDSESSION, 0, 0), 1);
    EXPECT_EQ(DefWindowProcA_2(h, WM_QUERYNEWPALETTE, 0, 0), 1);
    EXPECT_EQ(DefWindowProcA_3(h, WM_QUERYNEWPALETTE, 0, 0), 1);
    EXPECT_EQ(DefWindowProcA_2(h, WM_MOUSEACTIVATE, 0, 0), 0) << "stage 1's row";
    EXPECT_EQ(DefWindowProcA_3(h, WM_QUERYENDSESSION, 0, 0), 0) << "stage 2's row";
    EXPECT_EQ(DefWindowProcW(h, WM_MOUSEACTIVATE, 0, 0), 6);
}

TEST_F(DefWindowProcTop, ControlColoursSetTheDeviceContext)
{
    HWND h = makeRecorded();
    ASSERT_TRUE(h);
    HDC dc = GetDC(h);
    ASSERT_TRUE(dc);
    const struct {
        UINT msg;
        int background;
    } rows[] = {
        {WM_CTLCOLOREDIT, COLOR_WINDOW},      {WM_CTLCOLORLISTBOX, COLOR_WINDOW},
        {WM_CTLCOLORBTN, COLOR_BTNFACE},      {WM_CTLCOLORSTATIC, COLOR_BTNFACE},
        {WM_CTLCOLORSCROLLBAR, COLOR_SCROLLBAR},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.msg);
        SetBkColor(dc, RGB(1, 2, 3));
        SetTextColor(dc, RGB(4, 5, 6));
        EXPECT_EQ(DefWindowProcA(h, r.msg, reinterpret_cast<WPARAM>(dc), 0), r.background + 1);
        EXPECT_EQ(GetBkColor(dc), GetSysColor(r.background));
        EXPECT_EQ(GetTextColor(dc), GetSysColor(COLOR_WINDOWTEXT));
    }
    ReleaseDC(h, dc);
}

TEST_F(DefWindowProcTop, EraseFillsWithTheClassBrushUnlessThereIsNone)
{
    HWND white = makeRecorded();
    HWND none = makeRecorded(static_cast<HBRUSH>(GetStockObject(NULL_BRUSH)));
    ASSERT_TRUE(white && none);
    HDC dc = GetDC(white);
    EXPECT_EQ(DefWindowProcA(white, WM_ERASEBKGND, reinterpret_cast<WPARAM>(dc), 0), 1);
    ReleaseDC(white, dc);
    dc = GetDC(none);
    EXPECT_EQ(DefWindowProcA(none, WM_ERASEBKGND, reinterpret_cast<WPARAM>(dc), 0), 0);
    ReleaseDC(none, dc);
}

TEST_F(DefWindowProcTop, ARestoredSizeRepaintsWindowsWhoseClassAsksForIt)
{
    static const char *redrawClass = [] {
        WNDCLASSA wc{};
        wc.style = CS_HREDRAW;
        wc.lpfnWndProc = recordingProc;
        wc.lpszClassName = "DefWndHRedraw";
        RegisterClassA(&wc);
        return "DefWndHRedraw";
    }();
    const struct {
        const char *name;
        bool redrawClass, exposed;
        WPARAM type;
        bool invalidated;
    } rows[] = {
        {"restored", true, true, SIZE_RESTORED, true},
        {"maximised", true, true, SIZE_MAXIMIZED, false},
        {"not shown yet", true, false, SIZE_RESTORED, false},
        {"class without the style", false, true, SIZE_RESTORED, false},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.name);
        HWND h = r.redrawClass ? CreateWindowExA(0, redrawClass, "r", WS_OVERLAPPEDWINDOW, 0, 0,
                                                 120, 90, nullptr, nullptr, nullptr, nullptr)
                               : makeRecorded();
        ASSERT_TRUE(h);
        made_.push_back(h);
        ShowWindow(h, SW_SHOWNORMAL);
        OM_PUMP_UNTIL(omWindowRecord(h)->exposed, 3000, winmgmtPump);
        omWindowRecord(h)->exposed = r.exposed;
        ValidateRect(h, nullptr);
        EXPECT_EQ(DefWindowProcA(h, WM_SIZE, r.type, MAKELPARAM(120, 90)), 0);
        RECT update{};
        EXPECT_EQ(GetUpdateRect(h, &update, FALSE) != FALSE, r.invalidated);
    }
}

TEST_F(DefWindowProcTop, TextDropsCarriageReturnsAndFitsTheBuffer)
{
    HWND h = makeRecorded();
    ASSERT_TRUE(h);
    EXPECT_EQ(DefWindowProcA(h, WM_SETTEXT, 0, reinterpret_cast<LPARAM>("a\r\nb")), 0);
    EXPECT_EQ(shellTitle(h), "a\nb") << "the title the window manager shows";
    const struct {
        const char *name;
        WPARAM size;
        bool buffer;
        LRESULT length;
        const char *text;
    } rows[] = {
        {"roomy", 16, true, 3, "a\nb"},
        {"cut", 3, true, 2, "a\n"},
        {"size one", 1, true, 0, ""},
        {"size zero", 0, true, 0, "untouched"},
        {"no buffer", 16, false, 0, "untouched"},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.name);
        char out[16] = "untouched";
        LPARAM buffer = r.buffer ? reinterpret_cast<LPARAM>(out) : 0;
        EXPECT_EQ(DefWindowProcA(h, WM_GETTEXT, r.size, buffer), r.length);
        EXPECT_STREQ(out, r.text);
    }
    EXPECT_EQ(DefWindowProcA(h, WM_GETTEXTLENGTH, 0, 0), 3);
    char out[16] = {};
    EXPECT_EQ(GetWindowTextA(h, out, sizeof out), 3) << "GetWindowText goes through WM_GETTEXT";
    EXPECT_STREQ(out, "a\nb");
}

TEST_F(DefWindowProcTop, CloseAndTheCloseCommandDestroyTheWindow)
{
    HWND a = makeRecorded(), b = makeRecorded();
    ASSERT_TRUE(a && b);
    EXPECT_EQ(DefWindowProcA(a, WM_CLOSE, 0, 0), 0);
    EXPECT_FALSE(IsWindow(a));

    // 0xF022 is no command: the low bits are not masked off.
    const DWORD style = omWindowRecord(b)->style;
    EXPECT_EQ(DefWindowProcA(b, WM_SYSCOMMAND, SC_CLOSE + 2, 0), 0);
    EXPECT_TRUE(IsWindow(b));
    EXPECT_EQ(DefWindowProcA(b, WM_SYSCOMMAND, SC_MINIMIZE + 2, 0), 0);
    ASSERT_TRUE(IsWindow(b));
    EXPECT_EQ(omWindowRecord(b)->style, style);
    heard.messages.clear();
    EXPECT_EQ(DefWindowProcA(b, WM_SYSCOMMAND, SC_CLOSE, 0), 0);
    EXPECT_FALSE(IsWindow(b));
    ASSERT_FALSE(heard.messages.empty());
    EXPECT_EQ(heard.messages.front(), static_cast<UINT>(WM_CLOSE))
        << "the procedure hears WM_CLOSE first and may refuse";
}

TEST_F(DefWindowProcTop, DeadHandlesAnswerZero)
{
    HWND h = makeRecorded();
    ASSERT_TRUE(h);
    DestroyWindow(h);
    for (HWND dead : {h, static_cast<HWND>(nullptr), reinterpret_cast<HWND>(0x7777)}) {
        SCOPED_TRACE(dead);
        for (UINT msg : {WM_QUERYENDSESSION, WM_MOUSEACTIVATE, WM_NCHITTEST, WM_QUERYNEWPALETTE})
            EXPECT_EQ(DefWindowProcA(dead, msg, 0, 0), 0) << msg;
    }
}

TEST_F(DefWindowProcTop, ForeignWindowsGetOnlyTheirFewMessages)
{
    HWND h = makeRecorded();
    ASSERT_TRUE(h);
    WindowRecord *w = omWindowRecord(h);
    w->exStyle |= kOmExForeign;
    const struct {
        UINT msg;
        LRESULT result;
    } rows[] = {
        {WM_USER + 1, 0}, {WM_NCHITTEST, 1}, {WM_MOUSEACTIVATE, 1}, {0x361, 1}, {WM_PAINT, 1},
    };
    for (const auto &r : rows)
        EXPECT_EQ(DefWindowProcA(h, r.msg, 0, 0), r.result) << std::hex << r.msg;
    char out[8] = {};
    EXPECT_EQ(DefWindowProcA(h, WM_GETTEXT, sizeof out, reinterpret_cast<LPARAM>(out)), 5);
    EXPECT_STREQ(out, "title");
    EXPECT_EQ(DefWindowProcA(h, WM_CLOSE, 0, 0), 0);
    EXPECT_FALSE(IsWindow(h));
}

TEST_F(DefWindowProcTop, TheReservedRangeIsAnsweredBeforeTheThreadRule)
{
    HWND h = makeRecorded();
    ASSERT_TRUE(h);
    const int threadsWere = omIsUserInterfaceThreadSupported();
    omSetUserInterfaceThreadSupported(0);
    LRESULT reserved = -1, other = -1;
    omDiagResetCounts();
    std::thread([&] { reserved = DefWindowProcA(h, 0x361, 0, 0); }).join();
    EXPECT_EQ(reserved, 0);
    EXPECT_EQ(omDiagCount(237), 0u) << "0x361 never reaches the thread rule";
    std::thread([&] { other = DefWindowProcA(h, WM_QUERYENDSESSION, 0, 0); }).join();
    EXPECT_EQ(other, 0) << "the main thread would get 1";
    EXPECT_EQ(omDiagCount(237), 1u);
    omSetUserInterfaceThreadSupported(threadsWere);
}

TEST_F(DefWindowProcTop, TheSmallIconIsRefusedTheBigOneReplacesTheClassIcon)
{
    HWND h = makeRecorded();
    ASSERT_TRUE(h);
    HICON a = LoadIconA(nullptr, IDI_APPLICATION);
    HICON b = LoadIconA(nullptr, IDI_QUESTION);
    ASSERT_TRUE(a && b);
    omDiagResetCounts();
    EXPECT_EQ(DefWindowProcA(h, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(a)), 0);
    EXPECT_EQ(omDiagCount(141), 1u);

    HICON before = reinterpret_cast<HICON>(GetClassLongPtrA(h, GCLP_HICON));
    EXPECT_EQ(DefWindowProcA(h, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(a)),
              reinterpret_cast<LRESULT>(before));
    EXPECT_EQ(DefWindowProcA(h, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(b)),
              reinterpret_cast<LRESULT>(a));
    EXPECT_EQ(reinterpret_cast<HICON>(GetClassLongPtrA(h, GCLP_HICON)), b)
        << "the class record changes, not the window";
    DefWindowProcA(h, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(before));
}

// ---------------------------------------------------------------------------
// Input handed back to the widgets.

TEST_F(DefWindowProcTop, ClientPointerMessagesReachTheCanvasAsXEvents)
{
    HWND h = makeRecorded();
    ASSERT_TRUE(h);
    ShowWindow(h, SW_SHOWNORMAL);
    Widget canvas = omWindowRecord(h)->canvasWidget;
    OM_PUMP_UNTIL(XtIsRealized(canvas), 3000, winmgmtPump);
    EventLog log;
    XtAddEventHandler(canvas, ButtonPressMask | ButtonReleaseMask | PointerMotionMask, False,
                      EventLog::handler, &log);
    const struct {
        UINT msg;
        WPARAM keys;
        int type;
        unsigned button, state;
    } rows[] = {
        {WM_LBUTTONDOWN, MK_LBUTTON | MK_SHIFT, ButtonPress, 1, Button1Mask | ShiftMask},
        {WM_LBUTTONUP, 0, ButtonRelease, 1, 0},
        {WM_LBUTTONDBLCLK, MK_LBUTTON, ButtonPress, 1, Button1Mask},
        {WM_MBUTTONDOWN, MK_MBUTTON | MK_CONTROL, ButtonPress, 2, Button2Mask | ControlMask},
        {WM_MBUTTONUP, 0, ButtonRelease, 2, 0},
        {WM_RBUTTONDOWN, MK_RBUTTON, ButtonPress, 3, Button3Mask},
        {WM_RBUTTONDBLCLK, MK_RBUTTON, ButtonPress, 3, Button3Mask},
        {WM_RBUTTONUP, 0, ButtonRelease, 3, 0},
        // A move is a drag for every widget but a list box.
        {WM_MOUSEMOVE, MK_RBUTTON, MotionNotify, 0, Button1Mask | Button3Mask},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.msg);
        log.events.clear();
        EXPECT_EQ(DefWindowProcA(h, r.msg, r.keys, MAKELPARAM(7, 9)), 0);
        ASSERT_EQ(log.events.size(), 1u);
        const XButtonEvent &b = log.events[0].xbutton;
        EXPECT_EQ(b.type, r.type);
        EXPECT_EQ(b.window, XtWindow(canvas));
        EXPECT_EQ(b.x, 7);
        EXPECT_EQ(b.y, 9);
        EXPECT_EQ(b.state, r.state);
        EXPECT_TRUE(b.send_event);
        if (r.type != MotionNotify) {
            EXPECT_EQ(b.button, r.button);
        }
        POINT s{7, 9};
        ClientToScreen(h, &s);
        EXPECT_EQ(b.x_root, s.x);
        EXPECT_EQ(b.y_root, s.y);
    }
    XtRemoveEventHandler(canvas, XtAllEvents, True, EventLog::handler, &log);
}

TEST_F(DefWindowProcTop, RightReleaseAsksForTheContextMenuFirst)
{
    const struct {
        const char *name;
        decltype(Heard::onContextMenu) action;
        size_t dispatched;
        bool alive;
    } rows[] = {
        {"no menu", Heard::Pass, 1, true},
        {"a menu ran", Heard::CloseMenu, 0, true},
        {"the handler destroyed the window", Heard::Destroy, 0, false},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.name);
        HWND h = makeRecorded();
        ASSERT_TRUE(h);
        ShowWindow(h, SW_SHOWNORMAL);
        Widget canvas = omWindowRecord(h)->canvasWidget;
        OM_PUMP_UNTIL(XtIsRealized(canvas), 3000, winmgmtPump);
        EventLog log;
        XtAddEventHandler(canvas, ButtonReleaseMask, False, EventLog::handler, &log);
        heard = Heard{};
        heard.onContextMenu = r.action;
        EXPECT_EQ(DefWindowProcA(h, WM_RBUTTONUP, 0, MAKELPARAM(4, 4)), 0);
        EXPECT_NE(std::find(heard.messages.begin(), heard.messages.end(),
                            static_cast<UINT>(WM_CONTEXTMENU)),
                  heard.messages.end());
        EXPECT_EQ(log.events.size(), r.dispatched);
        EXPECT_EQ(IsWindow(h) != FALSE, r.alive);
        if (IsWindow(h))
            XtRemoveEventHandler(canvas, XtAllEvents, True, EventLog::handler, &log);
        pumpFor(std::chrono::milliseconds(10), winmgmtPump);
    }
}

// A text field the program built, wrapped as a window: keys passed to the
// default procedure type into it.
class DefWindowProcText : public DefWindowProcTop {
protected:
    void SetUp() override
    {
        DefWindowProcTop::SetUp();
        shell_ = XtVaAppCreateShell("deftext", "Deftext", topLevelShellWidgetClass, omDisplay,
                                    XmNmappedWhenManaged, False, nullptr);
        XFontStruct *font = XLoadQueryFont(omDisplay, "fixed");
        ASSERT_TRUE(font);
        fonts_ = XmFontListCreate(font, const_cast<char *>(XmFONTLIST_DEFAULT_TAG));
        text_ = XtVaCreateManagedWidget("field", xmTextFieldWidgetClass, shell_, XmNwidth, 80,
                                        XmNfontList, fonts_, XmNresizeWidth, False, nullptr);
        XtRealizeWidget(shell_);
        hwnd_ = omCreateNonOlmoWindow(text_, 0, 0, 80, 30);
        ASSERT_TRUE(hwnd_);
        // Xt forwards keys by the focus it saw come in: the shell is
        // shown and given the X focus, as the window a user types into.
        XtMapWidget(shell_);
        OM_PUMP_UNTIL(viewable(XtWindow(shell_)), 3000, winmgmtPump);
        XSetInputFocus(omDisplay, XtWindow(shell_), RevertToParent, CurrentTime);
        XmProcessTraversal(text_, XmTRAVERSE_CURRENT);
        XtSetKeyboardFocus(shell_, text_);
        pumpFor(std::chrono::milliseconds(30), winmgmtPump);
    }
    void TearDown() override
    {
        if (hwnd_)
            omFreeNonOlmoWindow(hwnd_);
        if (shell_)
            XtDestroyWidget(shell_);
        pumpFor(std::chrono::milliseconds(10), winmgmtPump);
        DefWindowProcTop::TearDown();
    }
    std::string value()
    {
        char *v = XmTextFieldGetString(text_);
        std::string out = v ? v : "";
        XtFree(v);
        return out;
    }
    Widget shell_ = nullptr, text_ = nullptr;
    XmFontList fonts_ = nullptr;
    HWND hwnd_ = nullptr;
};

TEST_F(DefWindowProcText, KeyDownsWithoutACharacterTypeIntoTheWidget)
{
    ASSERT_EQ(omWindowRecord(hwnd_)->canvasWidget, text_);
    const struct {
        const char *name;
        WPARAM vk;
        LPARAM lParam;
        const char *after;
    } rows[] = {
        {"a synthesised key (lParam 0) always passes", 'A', 0, "a"},
        {"a typed key comes as WM_CHAR instead", 'B', 0x00300001, "a"},
        {"an extended Return comes as WM_CHAR too", VK_RETURN, 0x01000001, "a"},
        {"an extended Home moves the cursor", VK_HOME, 0x01000001, "a"},
        {"typed where the cursor went", 'C', 0, "ca"},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.name);
        EXPECT_EQ(DefWindowProcA(hwnd_, WM_KEYDOWN, r.vk, r.lParam), 0);
        EXPECT_EQ(value(), r.after);
    }
    // Characters are for edit, combo box and button windows only.
    EXPECT_EQ(DefWindowProcA(hwnd_, WM_CHAR, 'z', 0), 0);
    EXPECT_EQ(value(), "ca");
}

TEST_F(DefWindowProcText, CharactersTypeIntoEditWindowsWithTheirCase)
{
    WindowRecord *w = omWindowRecord(hwnd_);
    const uint8_t kind = w->kind;
    w->kind = OM_WK_EDIT;
    const struct {
        WPARAM ch;
        LPARAM lParam;
        const char *after;
    } rows[] = {
        {'z', 0, "z"},
        {'Q', 0, "zQ"},
        {'7', 0, "zQ7"},
        // The scan code of another key loses to the character.
        {'k', 0x00300001, "zQ7k"},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.after);
        EXPECT_EQ(DefWindowProcA(hwnd_, WM_CHAR, r.ch, r.lParam), 0);
        EXPECT_EQ(value(), r.after);
    }
    w->kind = kind;
}

TEST_F(DefWindowProcText, AFullFieldIsOffLimitsExceptForEditingKeys)
{
    XmTextFieldSetString(text_, const_cast<char *>(""));
    EXPECT_EQ(omIsTextOffLimits(hwnd_, 'A'), 0) << "empty";
    XmTextFieldSetString(text_, const_cast<char *>("ab"));
    EXPECT_EQ(omIsTextOffLimits(hwnd_, 'A'), 0) << "room left";
    XmTextFieldSetString(text_, const_cast<char *>("WWWWWWWWWWWWWW"));
    EXPECT_EQ(omIsTextOffLimits(hwnd_, 'A'), 1);
    EXPECT_EQ(omLineExceeded, 1);
    for (WPARAM key : {WPARAM(VK_BACK), WPARAM(VK_DELETE), WPARAM(VK_LEFT), WPARAM(VK_PRIOR),
                       WPARAM(VK_DOWN), WPARAM(0xFF20)}) {
        EXPECT_EQ(omIsTextOffLimits(hwnd_, key), 0) << key;
        EXPECT_EQ(omLineExceeded, 0) << "cleared by every call";
    }
    HWND plain = makeRecorded();
    EXPECT_EQ(omIsTextOffLimits(plain, 'A'), 0) << "no text widget";
}

}  // namespace
}  // namespace om::test
