// Top-level windows under a window manager (mwm): the mapped shell and its
// title, the Motif hints from the style, default sizes, the application
// shell taken by the first overlapped window, hiding and showing, and the
// client rectangle.
#include "corefixture.h"

#include "harness/xwindow.h"
#include "kernel/omdisplay.h"
#include "kernel/omplaceholder.h"

#include <Xm/Xm.h>
#include <X11/Xatom.h>
#include <X11/Xutil.h>

#include <cstring>

namespace {

using om::test::CoreTest;

class TopLevel : public CoreTest {};

bool mapped(Window w)
{
    XWindowAttributes a{};
    return XGetWindowAttributes(omDisplay, w, &a) && a.map_state == IsViewable;
}

std::vector<long> motifHints(Window w)
{
    Atom hints = XInternAtom(omDisplay, "_MOTIF_WM_HINTS", False);
    Atom type;
    int format;
    unsigned long n, after;
    unsigned char *data = nullptr;
    std::vector<long> out;
    if (XGetWindowProperty(omDisplay, w, hints, 0, 5, False, AnyPropertyType, &type, &format, &n,
                           &after, &data) == Success && data) {
        out.assign(reinterpret_cast<long *>(data), reinterpret_cast<long *>(data) + n);
        XFree(data);
    }
    return out;
}

bool isPlaceholder(const char *name)
{
    for (const OmPlaceholder *p = omPlaceholderFirst(); p; p = p->next)
        if (!std::strcmp(p->name, name))
            return true;
    return false;
}

TEST_F(TopLevel, HelloWindowIsMappedDecoratedSizedAndHidden)
{
    ASSERT_FALSE(first_appshell_created_yet) << "this test makes the program's first window";
    ASSERT_TRUE(bIsMWMRunning);
    HWND hello = CreateWindowExA(0, om::test::testClass(), "Hello",
                                 WS_OVERLAPPEDWINDOW | WS_VISIBLE, CW_USEDEFAULT, CW_USEDEFAULT,
                                 CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(hello, nullptr);
    WindowRecord *w = omWindowRecord(hello);
    EXPECT_EQ(w->shellWidget, omAppShell) << "the first overlapped window takes the app shell";
    EXPECT_EQ(w->cx, omResources.defaultWindowWidth);
    EXPECT_EQ(w->cy, omResources.defaultWindowHeight);
    Window shell = XtWindow(w->shellWidget);
    EXPECT_TRUE(om::test::waitForMapped(omDisplay, shell, std::chrono::milliseconds(5000),
                                        om::test::corePump));
    EXPECT_TRUE(IsWindowVisible(hello));
    char *name = nullptr;
    ASSERT_TRUE(XFetchName(omDisplay, shell, &name));
    EXPECT_STREQ(name, "Hello");
    XFree(name);
    std::vector<long> hints = motifHints(shell);
    ASSERT_GE(hints.size(), 3u);
    EXPECT_EQ(hints[1], 62) << "functions";
    EXPECT_EQ(hints[2], 126) << "decorations";

    HWND second = CreateWindowExA(0, om::test::testClass(), "Second", WS_OVERLAPPEDWINDOW,
                                  CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT,
                                  nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(omWindowRecord(second)->shellWidget, omAppShell) << "a shell of its own";
    EXPECT_FALSE(mapped(XtWindow(omWindowRecord(second)->shellWidget))) << "not WS_VISIBLE";

    EXPECT_TRUE(ShowWindow(hello, SW_HIDE));
    OM_PUMP_UNTIL(!mapped(shell), 5000, om::test::corePump);
    EXPECT_FALSE(IsWindowVisible(hello));
    EXPECT_FALSE(ShowWindow(hello, SW_SHOW)) << "answers the previous visibility";
    EXPECT_TRUE(om::test::waitForMapped(omDisplay, shell, std::chrono::milliseconds(5000),
                                        om::test::corePump));

    // The client rectangle is the drawing area's size, from the widget.
    auto canvasWidth = [&] {
        Dimension width = 0;
        XtVaGetValues(w->canvasWidget, XmNwidth, &width, nullptr);
        return width;
    };
    OM_PUMP_UNTIL(canvasWidth() > 1, 3000, om::test::corePump);
    RECT r{};
    ASSERT_TRUE(omWindowClientRect(hello, &r));
    Dimension cw = 0, ch = 0;
    XtVaGetValues(w->canvasWidget, XmNwidth, &cw, XmNheight, &ch, nullptr);
    EXPECT_EQ(r.right, cw);
    EXPECT_EQ(r.bottom, ch);
    EXPECT_GT(cw, 1);
    if (!isPlaceholder("GetClientRect")) {
        RECT g{};
        EXPECT_TRUE(GetClientRect(hello, &g));
        EXPECT_TRUE(EqualRect(&g, &r));
    }

    DestroyWindow(second);
    DestroyWindow(hello);
    om::test::corePump();
    EXPECT_FALSE(mapped(shell)) << "the application shell is hidden, not destroyed";
}

TEST_F(TopLevel, DecorationsFollowTheStyle)
{
    struct Row {
        DWORD style;
        unsigned decorations, functions;
    } rows[] = {
        {WS_OVERLAPPEDWINDOW, 126, 62},
        {WS_POPUP, 0, 36},
        {WS_POPUP | WS_CAPTION | WS_SYSMENU, 26, 36},
        {WS_POPUP | WS_THICKFRAME, 4, 38},
        {WS_POPUP | WS_DLGFRAME, 2, 36},
        {WS_CAPTION | WS_MINIMIZEBOX, 42, 44},
    };
    for (const Row &r : rows) {
        SCOPED_TRACE(r.style);
        HWND h = CreateWindowExA(0, om::test::testClass(), "", r.style, 0, 0, 60, 40, nullptr,
                                 nullptr, nullptr, nullptr);
        ASSERT_NE(h, nullptr);
        WindowRecord *w = omWindowRecord(h);
        unsigned d = _omMwmDecorationsFromStyle(w);
        EXPECT_EQ(d, r.decorations);
        EXPECT_EQ(_omMwmFunctionsFromDecorations(d), r.functions);
        unsigned char shellDecorations = 0;
        int value = 0;
        XtVaGetValues(w->shellWidget, XmNmwmDecorations, &value, nullptr);
        shellDecorations = static_cast<unsigned char>(value);
        EXPECT_EQ(shellDecorations, r.decorations);
        DestroyWindow(h);
    }
}

TEST_F(TopLevel, PopUpDefaultsAndVisibility)
{
    HWND p = CreateWindowExA(0, om::test::testClass(), "Pop", WS_POPUP | WS_VISIBLE,
                             CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, nullptr,
                             nullptr, nullptr, nullptr);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(omWindowRecord(p)->cx, omResources.defaultWindowWidth / 2);
    EXPECT_EQ(omWindowRecord(p)->cy, omResources.defaultWindowHeight / 2);
    EXPECT_TRUE(om::test::waitForMapped(omDisplay, XtWindow(omWindowRecord(p)->shellWidget),
                                        std::chrono::milliseconds(5000), om::test::corePump));
    HWND zero = CreateWindowExA(0, om::test::testClass(), "", WS_POPUP | WS_VISIBLE, 0, 0, 0, 0,
                                nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(zero, nullptr);
    EXPECT_FALSE(IsWindowVisible(zero)) << "a zero-size pop-up is created hidden";
    DestroyWindow(zero);
    DestroyWindow(p);
}

}  // namespace
