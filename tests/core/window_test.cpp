// Windows with their widgets: creation messages and their order, refused
// creation, destruction, window data under the 64-bit data model, text,
// properties and the start-up state of the library.
#include "corefixture.h"

#include "kernel/omdisplay.h"
#include "kernel/omatom.h"
#include "kernel/omstartup.h"
#include "kernel/omwidgetmap.h"

#include <Xm/BulletinB.h>
#include <Xm/Xm.h>
#include <X11/Shell.h>
#include <X11/Xatom.h>

#include <algorithm>
#include <cstdlib>
#include <thread>

namespace {

using om::test::CoreTest;
using om::test::receivedMessages;

HWND make(DWORD style, const char *title = "", void *params = nullptr, HWND owner = nullptr)
{
    return CreateWindowExA(0, om::test::testClass(), title, style, CW_USEDEFAULT, CW_USEDEFAULT,
                           CW_USEDEFAULT, CW_USEDEFAULT, owner, nullptr, nullptr, params);
}

// ---- start-up ------------------------------------------------------------

TEST(UserStartup, VersionTagInstanceAndTable)
{
    ASSERT_TRUE(omInitialize(nullptr, nullptr));
    EXPECT_EQ(std::memcmp(omVersionUser, "USER: Aug  1 2004", 18), 0);
    EXPECT_EQ(omVersionUser[17], '\0');
    char saved[18];
    std::memcpy(saved, omVersionUser, sizeof saved);
    for (DWORD reason : {DLL_THREAD_ATTACH, DLL_THREAD_DETACH, DLL_PROCESS_DETACH}) {
        SCOPED_TRACE(reason);
        std::memset(omVersionUser, 'x', sizeof omVersionUser);
        EXPECT_TRUE(DllMain(reinterpret_cast<HINSTANCE>(0x9999), reason, nullptr));
        EXPECT_EQ(omVersionUser[0], 'x') << "only process attach records the tag";
    }
    std::memcpy(omVersionUser, saved, sizeof saved);
    // The kernel keeps the entries this library carries out.
    struct Row {
        OmUserEntry position;
        void *fn;
    } rows[] = {{OM_UE_SendMessageA, reinterpret_cast<void *>(&SendMessageA)},
                {OM_UE_ShowWindow, reinterpret_cast<void *>(&ShowWindow)},
                {OM_UE_CreateDesktopWindow, reinterpret_cast<void *>(&CreateDesktopWindow)},
                {OM_UE_omFindClass, reinterpret_cast<void *>(&omFindClass)},
                {OM_UE_omWindowFromXWindow, reinterpret_cast<void *>(&omWindowFromXWindow)},
                {OM_UE_omDestroyHWNDsMarkedForDeletion,
                 reinterpret_cast<void *>(&omDestroyHWNDsMarkedForDeletion)},
                {OM_UE_omDetachHWNDfromThread, reinterpret_cast<void *>(&omDetachHWNDfromThread)},
                {OM_UE_GetPropA, reinterpret_cast<void *>(&GetPropA)}};
    for (const Row &r : rows)
        EXPECT_EQ(omUserEntryPoint(r.position), r.fn) << r.position;
}

TEST(UserStartup, TraceLinesOnlyWithTheSwitch)
{
    ASSERT_TRUE(omInitialize(nullptr, nullptr));
    testing::internal::CaptureStdout();
    DllMain(nullptr, DLL_THREAD_ATTACH, nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    omResources.dllTrace = True;
    testing::internal::CaptureStdout();
    DllMain(nullptr, DLL_THREAD_ATTACH, nullptr);
    std::string out = testing::internal::GetCapturedStdout();
    omResources.dllTrace = False;
    EXPECT_EQ(out, "DLLTRACE: DllMain() for olmouser called, hfwReason = 2\n");
}

// ---- creation and destruction ----------------------------------------------

class Creation : public CoreTest {};

TEST_F(Creation, MessagesArriveInTheTableOrderForEachKindOfTopLevelWindow)
{
    struct Row {
        const char *what;
        DWORD style;
    } rows[] = {{"overlapped", WS_OVERLAPPEDWINDOW}, {"pop-up", WS_POPUP | WS_CAPTION}};
    for (const Row &r : rows) {
        SCOPED_TRACE(r.what);
        om::test::received().clear();
        HWND h = make(r.style);
        ASSERT_NE(h, nullptr);
        EXPECT_EQ(receivedMessages(h),
                  (std::vector<UINT>{WM_NCCREATE, WM_CREATE, WM_GETMINMAXINFO}));
        WindowRecord *w = omWindowRecord(h);
        EXPECT_NE(w->shellWidget, nullptr);
        EXPECT_NE(w->frameWidget, nullptr);
        EXPECT_NE(w->canvasWidget, nullptr);
        EXPECT_EQ(omWidgetTohWnd(w->canvasWidget), h);
        om::test::received().clear();
        EXPECT_TRUE(DestroyWindow(h));
        EXPECT_FALSE(IsWindow(h)) << "not a window as soon as DestroyWindow returns";
        EXPECT_EQ(receivedMessages(h), (std::vector<UINT>{WM_DESTROY, WM_NCDESTROY}));
        EXPECT_TRUE(DestroyWindow(h) == FALSE);
    }
}

TEST_F(Creation, ARefusedCreationLeavesNoWindow)
{
    // A pop-up still gets WM_GETMINMAXINFO before the failure check; an
    // overlapped window is checked first.
    struct Row {
        const char *what;
        DWORD style;
        LRESULT ncCreate, create;
        std::vector<UINT> seen;
    } rows[] = {
        {"overlapped, WM_NCCREATE 0", WS_OVERLAPPEDWINDOW, FALSE, 0,
         {WM_NCCREATE, WM_DESTROY, WM_NCDESTROY}},
        {"overlapped, WM_CREATE -1", WS_OVERLAPPEDWINDOW, TRUE, -1,
         {WM_NCCREATE, WM_CREATE, WM_DESTROY, WM_NCDESTROY}},
        {"pop-up, WM_NCCREATE 0", WS_POPUP, FALSE, 0,
         {WM_NCCREATE, WM_GETMINMAXINFO, WM_DESTROY, WM_NCDESTROY}},
        {"pop-up, WM_CREATE -1", WS_POPUP, TRUE, -1,
         {WM_NCCREATE, WM_CREATE, WM_GETMINMAXINFO, WM_DESTROY, WM_NCDESTROY}},
    };
    for (const Row &r : rows) {
        SCOPED_TRACE(r.what);
        om::test::received().clear();
        om::test::g_ncCreateAnswer = r.ncCreate;
        om::test::g_createAnswer = r.create;
        int before = om::test::liveWindowCount();
        EXPECT_EQ(make(r.style), nullptr);
        omRunIdleDrain();
        EXPECT_EQ(om::test::liveWindowCount(), before);
        ASSERT_FALSE(om::test::received().empty());
        HWND h = om::test::received().front().hwnd;
        EXPECT_EQ(receivedMessages(h), r.seen);
        EXPECT_FALSE(IsWindow(h));
    }
}

TEST_F(Creation, TrackingSizesLeftInGetMinMaxInfoAreKeptUntilDestruction)
{
    HWND h = make(WS_POPUP);
    ASSERT_NE(h, nullptr);
    int minX = 0, minY = 0, maxX = 0, maxY = 0;
    ASSERT_TRUE(omGetMinMaxInfo(h, &minX, &minY, &maxX, &maxY));
    EXPECT_EQ(minX, 120);
    EXPECT_EQ(minY, 90);
    EXPECT_EQ(maxX, -1) << "what the procedure left alone stays -1";
    EXPECT_EQ(maxY, -1);
    DestroyWindow(h);
    omRunIdleDrain();
    EXPECT_FALSE(omGetMinMaxInfo(h, &minX, nullptr, nullptr, nullptr));
}

TEST_F(Creation, UnknownClassAllocatesNothing)
{
    int before = om::test::liveWindowCount();
    EXPECT_EQ(CreateWindowExA(0, "NoSuchClass", "", 0, 0, 0, 1, 1, nullptr, nullptr, nullptr,
                              nullptr),
              nullptr);
    EXPECT_EQ(omDiagCount(112), 1u);
    EXPECT_EQ(om::test::liveWindowCount(), before);
}

TEST_F(Creation, TopLevelListOwnersAndPopUpStyle)
{
    HWND a = make(WS_OVERLAPPEDWINDOW);
    HWND b = make(WS_OVERLAPPEDWINDOW);
    HWND p = make(WS_POPUP | WS_CHILD, "", nullptr, b);
    ASSERT_TRUE(a && b && p);
    EXPECT_EQ(omTopLevelWindowList, p) << "the newest window is at the head";
    EXPECT_EQ(omWindowRecord(p)->nextSibling, b);
    EXPECT_EQ(omWindowRecord(b)->nextSibling, a);
    EXPECT_FALSE(GetWindowLongA(p, GWL_STYLE) & WS_CHILD) << "WS_POPUP wins over WS_CHILD";
    EXPECT_EQ(GetParent(p), b) << "a top-level window's parent is its owner";
    EXPECT_EQ(GetParent(a), nullptr);
    EXPECT_FALSE(IsChild(b, p));
    EXPECT_TRUE(IsWindow(GetDesktopWindow()));
    DestroyWindow(b);
    EXPECT_FALSE(IsWindow(p)) << "owned windows go with their owner";
    EXPECT_EQ(omTopLevelWindowList, a);
    DestroyWindow(a);
    omDiagResetCounts();
    EXPECT_EQ(GetParent(a), nullptr);
    EXPECT_EQ(omDiagCount(79), 1u);
}

TEST_F(Creation, WindowManagerCloseReachesTheProgramAsWmClose)
{
    HWND h = make(WS_OVERLAPPEDWINDOW, "Closing");
    ASSERT_NE(h, nullptr);
    Widget shell = omWindowRecord(h)->shellWidget;
    XEvent e{};
    e.xclient.type = ClientMessage;
    e.xclient.window = XtWindow(shell);
    e.xclient.message_type = omWmProtocolsAtom;
    e.xclient.format = 32;
    e.xclient.data.l[0] = static_cast<long>(omWmDeleteWindowAtom);
    e.xclient.data.l[1] = CurrentTime;
    XSendEvent(omDisplay, XtWindow(shell), False, NoEventMask, &e);
    XFlush(omDisplay);
    // The close request is posted: a loop hands it to the window.
    OM_PUMP_UNTIL(!IsWindow(h), 3000, [] {
        om::test::corePump();
        MSG m;
        while (PeekMessageA(&m, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageA(&m);
    });
    std::vector<UINT> seen = receivedMessages(h);
    auto close = std::find(seen.begin(), seen.end(), UINT{WM_CLOSE});
    EXPECT_NE(close, seen.end()) << "WM_CLOSE reached the procedure";
    EXPECT_EQ(std::count(seen.begin(), seen.end(), UINT{WM_DESTROY}), 1);
}

TEST_F(Creation, DestroyedWidgetsGoFromTheIdleDrain)
{
    HWND h = make(WS_OVERLAPPEDWINDOW);
    HWND g = make(WS_OVERLAPPEDWINDOW);
    ASSERT_TRUE(h && g);
    Widget shell = omWindowRecord(g)->shellWidget;
    ASSERT_NE(shell, omAppShell);
    DestroyWindow(g);
    EXPECT_NE(omDestroyQueued(), nullptr) << "queued, not destroyed inside the call";
    omRunIdleDrain();
    EXPECT_EQ(omDestroyQueued(), nullptr);
    // A program that pumps X with Xt alone drains from Xt's idle time.
    HWND k = make(WS_POPUP);
    ASSERT_NE(k, nullptr);
    DestroyWindow(k);
    ASSERT_NE(omDestroyQueued(), nullptr);
    auto xtOnly = [] {
        XtAppAddTimeOut(omAppContext, 5, [](XtPointer, XtIntervalId *) {}, nullptr);
        XtAppProcessEvent(omAppContext, XtIMAll);
    };
    OM_PUMP_UNTIL(omDestroyQueued() == nullptr, 3000, xtOnly);
    DestroyWindow(h);
    omRunIdleDrain();
    EXPECT_NE(omAppShell, nullptr) << "the application shell is never destroyed";
}

// ---- window data -----------------------------------------------------------

class WindowData : public CoreTest {};

LRESULT CALLBACK keepsCreateParams(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    if (msg == WM_NCCREATE) {
        auto *cs = reinterpret_cast<CREATESTRUCTA *>(lParam);
        SetWindowLongPtrA(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(cs->lpCreateParams));
    }
    return DefWindowProcA(hwnd, msg, wParam, lParam);
}

TEST_F(WindowData, HeapPointersComeBackWhole)
{
    WNDCLASSA wc{};
    wc.lpfnWndProc = keepsCreateParams;
    wc.lpszClassName = "KeepsParams";
    static const bool once = RegisterClassA(&wc) != 0;
    ASSERT_TRUE(once);
    auto *data = new std::string("heap");
    HWND h = CreateWindowExA(0, "KeepsParams", "", WS_POPUP, 0, 0, 20, 20, nullptr, nullptr,
                             nullptr, data);
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(reinterpret_cast<std::string *>(GetWindowLongPtrA(h, GWLP_USERDATA)), data);
    EXPECT_EQ(GetWindowLongPtrA(h, GWLP_WNDPROC), reinterpret_cast<LONG_PTR>(&keepsCreateParams));
    // Pointer slots refuse the 32-bit calls rather than cut a pointer.
    for (int index : {GWLP_WNDPROC, GWLP_HINSTANCE, GWLP_HWNDPARENT}) {
        SCOPED_TRACE(index);
        omDiagResetCounts();
        EXPECT_EQ(GetWindowLongA(h, index), 0);
        EXPECT_EQ(SetWindowLongA(h, index, 1), 0);
        EXPECT_EQ(omDiagCount(39), 2u);
    }
    EXPECT_EQ(GetWindowLongPtrA(h, GWLP_WNDPROC), reinterpret_cast<LONG_PTR>(&keepsCreateParams));
    // The 32-bit call on user data keeps numbers: the low half.
    SetWindowLongA(h, GWLP_USERDATA, 0x1234);
    EXPECT_EQ(GetWindowLongA(h, GWLP_USERDATA), 0x1234);
    SetWindowLongPtrA(h, GWLP_USERDATA, 0);
    DestroyWindow(h);
    delete data;
}

TEST_F(WindowData, ExtraBytesBoundsFollowTheValueSize)
{
    HWND h = make(WS_POPUP);  // 16 extra bytes
    ASSERT_NE(h, nullptr);
    struct Row {
        const char *call;
        int index;
        bool inRange;
    } rows[] = {{"Ptr", 8, true}, {"Ptr", 9, false}, {"Ptr", 3, true},  {"Long", 12, true},
                {"Long", 13, false}, {"Word", 14, true}, {"Word", 15, false}, {"Long", -2, false}};
    for (const Row &r : rows) {
        SCOPED_TRACE(std::string(r.call) + " " + std::to_string(r.index));
        omDiagResetCounts();
        std::string call = r.call;
        if (call == "Ptr")
            GetWindowLongPtrA(h, r.index);
        else if (call == "Long")
            GetWindowLongA(h, r.index);
        else
            GetWindowWord(h, r.index);
        EXPECT_EQ(omDiagCount(39), r.inRange ? 0u : 1u);
    }
    SetWindowLongPtrA(h, 3, static_cast<LONG_PTR>(0x0102030405060708));
    EXPECT_EQ(GetWindowLongPtrA(h, 3), 0x0102030405060708);
    EXPECT_EQ(GetWindowLongA(h, 3), 0x05060708);
    EXPECT_EQ(SetWindowWord(h, 3, 0xBEEF), 0x0708);
    EXPECT_EQ(GetWindowLongPtrA(h, 3), 0x010203040506BEEF);
    DestroyWindow(h);
}

TEST_F(WindowData, ExtendedStyleEdgesAndStyleMessages)
{
    HWND h = make(WS_POPUP);
    ASSERT_NE(h, nullptr);
    om::test::received().clear();
    SetWindowLongA(h, GWL_EXSTYLE, WS_EX_CLIENTEDGE | WS_EX_STATICEDGE);
    EXPECT_EQ(GetWindowLongA(h, GWL_EXSTYLE), WS_EX_CLIENTEDGE);
    EXPECT_EQ(receivedMessages(h), (std::vector<UINT>{WM_STYLECHANGING, WM_STYLECHANGED}));
    DestroyWindow(h);
}

TEST_F(WindowData, TextGoesToTheRecordAndTheShellTitle)
{
    HWND h = make(WS_OVERLAPPEDWINDOW, "First");
    ASSERT_NE(h, nullptr);
    char buf[6];
    EXPECT_EQ(GetWindowTextA(h, buf, sizeof buf), 5);
    EXPECT_STREQ(buf, "First");
    EXPECT_TRUE(SetWindowTextW(h, u"Zweite Fenster"));
    EXPECT_EQ(GetWindowTextLengthA(h), 14);
    EXPECT_EQ(GetWindowTextA(h, buf, sizeof buf), 5) << "truncated to the buffer";
    EXPECT_STREQ(buf, "Zweit");
    WCHAR wide[32];
    EXPECT_EQ(GetWindowTextW(h, wide, 32), 14);
    char *title = nullptr;
    XtVaGetValues(omWindowRecord(h)->shellWidget, XmNtitle, &title, nullptr);
    EXPECT_STREQ(title, "Zweite Fenster");
    omDiagResetCounts();
    EXPECT_FALSE(SetWindowTextA(nullptr, "x"));
    EXPECT_EQ(omDiagCount(79), 1u);
    DestroyWindow(h);
}

// ---- properties --------------------------------------------------------------

class Properties : public CoreTest {};

TEST_F(Properties, LocalListKeepsPointersAndIgnoresCase)
{
    HWND h = make(WS_OVERLAPPEDWINDOW);
    ASSERT_NE(h, nullptr);
    auto *heap = new int(7);
    EXPECT_TRUE(SetPropA(h, "Foo", heap));
    EXPECT_TRUE(SetPropA(h, "foo", heap + 1)) << "same property, new value";
    EXPECT_EQ(GetPropA(h, "FOO"), static_cast<HANDLE>(heap + 1));
    ATOM atom = GlobalAddAtomA("AtomKey");
    EXPECT_TRUE(SetPropA(h, MAKEINTATOM(atom), heap));
    EXPECT_EQ(GetPropW(h, reinterpret_cast<LPCWSTR>(MAKEINTATOM(atom))), static_cast<HANDLE>(heap));

    std::vector<std::string> keys;
    EXPECT_EQ(EnumPropsA(h, [](HWND, LPCSTR, HANDLE) -> BOOL { return TRUE; }), TRUE);
    static std::vector<std::string> *sink;
    sink = &keys;
    EnumPropsExA(
        h,
        [](HWND, LPSTR key, HANDLE, ULONG_PTR data) -> BOOL {
            sink->push_back(reinterpret_cast<uintptr_t>(key) > 0xFFFF ? key : "#atom");
            return data == 42;
        },
        42);
    EXPECT_EQ(keys, (std::vector<std::string>{"#atom", "Foo"})) << "newest first";

    // Other processes read the low 32 bits from the shell's X property.
    omGlobalAtomsInitXAtom();
    Atom xatom = omGlobalAtomsFindXatom(GlobalFindAtomA("Foo"));
    ASSERT_NE(xatom, static_cast<Atom>(None));
    Atom type;
    int format;
    unsigned long n, after;
    unsigned char *data = nullptr;
    ASSERT_EQ(XGetWindowProperty(omDisplay, XtWindow(omWindowRecord(h)->shellWidget), xatom, 0, 1,
                                 False, AnyPropertyType, &type, &format, &n, &after, &data),
              Success);
    ASSERT_EQ(n, 1u);
    EXPECT_EQ(static_cast<uint32_t>(*reinterpret_cast<long *>(data)),
              static_cast<uint32_t>(reinterpret_cast<uintptr_t>(heap + 1)));
    XFree(data);

    EXPECT_EQ(RemovePropA(h, "foo"), static_cast<HANDLE>(heap + 1));
    EXPECT_EQ(GetPropA(h, "Foo"), nullptr);
    EXPECT_EQ(RemovePropA(h, MAKEINTATOM(atom)), static_cast<HANDLE>(heap));
    EXPECT_EQ(EnumPropsA(h, [](HWND, LPCSTR, HANDLE) -> BOOL { return TRUE; }), -1)
        << "no properties: -1 and no call";
    EXPECT_TRUE(SetPropA(h, "Left", heap)) << "freed with the window";
    DestroyWindow(h);
    delete heap;
}

}  // namespace

namespace {

class NonToolkit : public om::test::CoreTest {};

TEST_F(NonToolkit, AWidgetOfTheProgramBecomesAWindowAndIsFreedAlone)
{
    Widget shell = XtVaAppCreateShell("probe", "Probe", applicationShellWidgetClass, omDisplay,
                                      XmNwidth, 40, XmNheight, 30, XmNmappedWhenManaged, False,
                                      nullptr);
    Widget area = XtVaCreateManagedWidget("area", xmBulletinBoardWidgetClass, shell, XmNwidth, 40,
                                          XmNheight, 30, nullptr);
    XtRealizeWidget(shell);
    HWND h = omCreateNonOlmoWindow(area, 1, 2, 40, 30);
    ASSERT_NE(h, nullptr);
    WindowRecord *w = omWindowRecord(h);
    EXPECT_EQ(w->canvasWidget, area);
    EXPECT_EQ(w->shellWidget, shell);
    EXPECT_EQ(GetWindowLongA(h, GWL_STYLE), static_cast<LONG>(0x10CF0000));
    EXPECT_EQ(GetWindowLongA(h, GWL_EXSTYLE), 0x10000000);
    EXPECT_EQ(omWindowToWidget(ButtonPress, XtWindow(area)), h);
    char text[32];
    EXPECT_EQ(GetWindowTextA(h, text, sizeof text), 13);
    EXPECT_STREQ(text, "NonOlmoWindow");
    EXPECT_EQ(omFreeNonOlmoWindow(h), 1);
    EXPECT_FALSE(IsWindow(h));
    EXPECT_EQ(omWindowToWidget(ButtonPress, XtWindow(area)), nullptr);
    EXPECT_EQ(omFreeNonOlmoWindow(h), 0);
    XtDestroyWidget(shell);
}

}  // namespace

namespace {

class WideAndDesktop : public om::test::CoreTest {};

TEST_F(WideAndDesktop, WideEntriesConvertNamesAndText)
{
    WNDCLASSW wc{};
    wc.lpfnWndProc = om::test::recordingProc;
    wc.lpszClassName = u"WideClass\u00e9";
    static const ATOM atom = RegisterClassW(&wc);
    ASSERT_NE(atom, 0);
    HWND h = CreateWindowExW(0, u"wideclass\u00e9", u"Gr\u00fc\u00dfe", WS_POPUP, 0, 0, 30, 20,
                             nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(h, nullptr) << "found ignoring ASCII case";
    char utf8[32];
    EXPECT_EQ(GetWindowTextA(h, utf8, sizeof utf8), 7) << "UTF-8 bytes";
    EXPECT_STREQ(utf8, "Gr\xc3\xbc\xc3\x9f" "e");
    EXPECT_EQ(GetWindowTextLengthW(h), 5);
    WCHAR wide[8];
    EXPECT_EQ(GetWindowTextW(h, wide, 8), 5);
    EXPECT_EQ(std::u16string(reinterpret_cast<char16_t *>(wide)), u"Gr\u00fc\u00dfe");
    WCHAR cls[32];
    EXPECT_EQ(GetClassNameW(h, cls, 32), 10);
    DestroyWindow(h);
}

TEST_F(WideAndDesktop, DesktopCoversTheScreenAndCannotBeDestroyed)
{
    HWND d = GetDesktopWindow();
    ASSERT_TRUE(IsWindow(d));
    EXPECT_EQ(d, CreateDesktopWindow()) << "made once";
    WindowRecord *w = omWindowRecord(d);
    int screen = DefaultScreen(omDisplay);
    EXPECT_EQ(w->cx, DisplayWidth(omDisplay, screen));
    EXPECT_EQ(w->cy, DisplayHeight(omDisplay, screen));
    EXPECT_FALSE(DestroyWindow(d));
    EXPECT_TRUE(IsWindow(d));
    omDiagResetCounts();
    HWND h = CreateWindowExA(0, om::test::testClass(), "", WS_POPUP, 0, 0, 5, 5, nullptr, nullptr,
                             nullptr, nullptr);
    EXPECT_FALSE(ShowWindow(h, 42));
    EXPECT_EQ(omDiagCount(148), 1u) << "a bad show command";
    DestroyWindow(h);
}

}  // namespace
