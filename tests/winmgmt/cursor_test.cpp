// Cursors: the planes of CreateCursor repacked into X bitmaps, SetCursor on
// the program's windows (read back from the server through XFixes where
// it is there), ShowCursor's count, the pointer position, the clip
// rectangle and the class cursor of WM_SETCURSOR.
#include "winmgmt_fixture.h"

#include "graphics/omcursor.h"
#include "kernel/omhandles.h"
#include "kernel/omprocess.h"
#include "winmgmt/omcursor.h"

#ifdef OLMO_TEST_XFIXES
#include <X11/extensions/Xfixes.h>
#endif

#include <array>

namespace om::test {
namespace {

HINSTANCE instance()
{
    return GetModuleHandleA(nullptr);
}

OmCursorRecord *recordOf(HCURSOR h)
{
    return static_cast<OmCursorRecord *>(omHandleRecord(omHandleValue(h), OM_KIND_CURSOR));
}

// A solid 16 x 16 cursor whose hot spot tells it apart on the screen.
HCURSOR solidCursor(int hotX, int hotY)
{
    std::array<unsigned char, 32> andPlane{}, xorPlane{};
    xorPlane.fill(0xFF);
    return CreateCursor(instance(), hotX, hotY, 16, 16, andPlane.data(), xorPlane.data());
}

TEST(CursorPlanes, RepackedLeastSignificantBitFirstWithWindowsRowLength)
{
    // One row each; planes are read most significant bit first.
    struct Case {
        const char *name;
        int width;
        std::vector<unsigned char> andRow, xorRow;
        std::vector<unsigned char> source, mask;
    } cases[] = {
        {"width 8, pixel 0 shows", 8, {0x00}, {0x80}, {0x01}, {0xFF}},
        {"width 10 has rows of 2 bytes", 10, {0x00, 0x00}, {0x80, 0x40}, {0x01, 0x02}, {0xFF, 0x03}},
        {"AND 1 is transparent", 8, {0xF0}, {0x00}, {0x00}, {0xF0}},
        {"AND 1 with XOR 1 (inversion) is transparent", 8, {0x80}, {0x80}, {0x01}, {0xFE}},
        {"padding bits beyond the width stay clear", 3, {0x1F}, {0x1F}, {0x00}, {0x07}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        // Two identical rows: the second must start at the Windows row length.
        std::vector<unsigned char> andPlane = c.andRow, xorPlane = c.xorRow;
        andPlane.insert(andPlane.end(), c.andRow.begin(), c.andRow.end());
        xorPlane.insert(xorPlane.end(), c.xorRow.begin(), c.xorRow.end());
        HCURSOR h = CreateCursor(instance(), 0, 0, c.width, 2, andPlane.data(), xorPlane.data());
        ASSERT_TRUE(h);
        OmCursorRecord *r = recordOf(h);
        ASSERT_TRUE(r);
        EXPECT_EQ(r->width, c.width);
        EXPECT_EQ(r->height, 2);
        size_t stride = c.source.size();
        for (size_t row = 0; row < 2; ++row)
            for (size_t i = 0; i < stride; ++i) {
                EXPECT_EQ(r->sourceBits[row * stride + i], c.source[i]) << "row " << row << " byte " << i;
                EXPECT_EQ(r->maskBits[row * stride + i], c.mask[i]) << "row " << row << " byte " << i;
            }
        EXPECT_TRUE(DestroyCursor(h));
    }
}

class Cursors : public WinmgmtTest {
protected:
    void SetUp() override
    {
        WinmgmtTest::SetUp();
        saved_ = GetCursor();
        omResetCurrentCursorCount();
    }
    void TearDown() override
    {
        // Leave no cursor of ours current: the next test may destroy it.
        SetCursor(saved_);
        omResetCurrentCursorCount();
        WinmgmtTest::TearDown();
    }
    HCURSOR saved_ = nullptr;
};

TEST_F(Cursors, CreateAndDestroyRefuseWhatTheyMust)
{
    std::array<unsigned char, 32> planes{};
    EXPECT_FALSE(CreateCursor(nullptr, 0, 0, 16, 16, planes.data(), planes.data()))
        << "null instance";
    EXPECT_FALSE(CreateCursor(instance(), 0, 0, 16, 16, nullptr, planes.data())) << "no AND plane";
    EXPECT_FALSE(CreateCursor(instance(), 0, 0, 0, 16, planes.data(), planes.data())) << "no width";

    HCURSOR h = solidCursor(3, 4);
    ASSERT_TRUE(h);
    ASSERT_TRUE(recordOf(h)->xcursor) << "the X cursor is made at creation";
    EXPECT_EQ(recordOf(h)->hotX, 3);
    EXPECT_EQ(recordOf(h)->hotY, 4);
    EXPECT_TRUE(DestroyCursor(h));

    // A hot spot outside the image must not upset the server.
    XErrorCounter errors;
    HCURSOR offImage = solidCursor(40, 40);
    ASSERT_TRUE(offImage);
    EXPECT_TRUE(recordOf(offImage)->xcursor);
    EXPECT_EQ(errors.errors(), 0);
    DestroyCursor(offImage);
}

TEST_F(Cursors, SetCursorDefinesItOnTheWindowsAndAnswersThePreviousOne)
{
    HWND hwnd = makeWindow(60, 60);
    ASSERT_TRUE(hwnd);
    HCURSOR a = solidCursor(3, 5), b = solidCursor(7, 2);
    ASSERT_TRUE(a && b);
    POINT inside = screenOf(hwnd, 50, 50);
    ASSERT_TRUE(movePointer(omDisplay, inside.x, inside.y));

    XErrorCounter errors;
    SetCursor(nullptr);
    EXPECT_EQ(SetCursor(a), nullptr);
    EXPECT_EQ(GetCursor(), a);
    EXPECT_EQ(omDefinedXCursor(), recordOf(a)->xcursor);
    EXPECT_EQ(SetCursor(b), a);
    EXPECT_EQ(omDefinedXCursor(), recordOf(b)->xcursor);
    EXPECT_EQ(errors.errors(), 0) << "XDefineCursor on the canvas and the shell";

#ifdef OLMO_TEST_XFIXES
    int event = 0, error = 0;
    if (XFixesQueryExtension(omDisplay, &event, &error)) {
        RecordProperty("xfixes", 1);
        // The server shows the cursor of the window under the pointer.
        for (auto [cursor, hotX, hotY] : {std::tuple{a, 3, 5}, std::tuple{b, 7, 2}}) {
            SCOPED_TRACE(hotX);
            SetCursor(cursor);
            bool shown = waitUntil(
                [&] {
                    XFixesCursorImage *img = XFixesGetCursorImage(omDisplay);
                    bool ok = img && img->width == 16 && img->xhot == hotX && img->yhot == hotY;
                    if (img)
                        XFree(img);
                    return ok;
                },
                std::chrono::milliseconds(1500), winmgmtPump);
            EXPECT_TRUE(shown) << "the pointer over the window shows the cursor set";
        }
    }
#endif

    // A handle that is no cursor changes nothing.
    HCURSOR current = GetCursor();
    EXPECT_EQ(SetCursor(reinterpret_cast<HCURSOR>(hwnd)), nullptr);
    EXPECT_EQ(GetCursor(), current);

    SetCursor(saved_);
    DestroyCursor(a);
    DestroyCursor(b);
}

TEST_F(Cursors, TheSameCursorCostsNoRequestAndANewOneDropsPendingRequests)
{
    HWND hwnd = makeWindow(60, 60);
    ASSERT_TRUE(hwnd);
    HCURSOR a = solidCursor(1, 1), b = solidCursor(2, 2);
    ASSERT_TRUE(a && b);
    SetCursor(a);
    unsigned long before = XNextRequest(omDisplay);
    EXPECT_EQ(SetCursor(a), a);
    EXPECT_EQ(XNextRequest(omDisplay), before);

    drain(nullptr);
    PostMessageA(hwnd, WM_SETCURSOR, reinterpret_cast<WPARAM>(hwnd), MAKELPARAM(HTCLIENT, 0));
    PostMessageA(hwnd, WM_USER + 7, 0, 0);
    SetCursor(b);
    MSG m;
    EXPECT_FALSE(PeekMessageA(&m, hwnd, WM_SETCURSOR, WM_SETCURSOR, PM_REMOVE));
    EXPECT_TRUE(PeekMessageA(&m, hwnd, WM_USER + 7, WM_USER + 7, PM_REMOVE)) << "others stay";
    SetCursor(saved_);
    DestroyCursor(a);
    DestroyCursor(b);
}

TEST_F(Cursors, ShowCursorCountsAndOnlyRedefinesWhileNotNegative)
{
    HWND hwnd = makeWindow(60, 60);
    ASSERT_TRUE(hwnd);
    HCURSOR a = solidCursor(1, 1);
    ASSERT_TRUE(a);
    SetCursor(a);
    Cursor x = recordOf(a)->xcursor;
    omResetCurrentCursorCount();

    struct Step {
        BOOL show;
        int count;
        bool redefined;
    } steps[] = {{FALSE, -1, false}, {FALSE, -2, false}, {TRUE, -1, false},
                 {TRUE, 0, true},    {TRUE, 1, true},    {FALSE, 0, true}};
    for (const Step &s : steps) {
        SCOPED_TRACE(testing::Message() << "to " << s.count);
        // Take the cursor off the windows so that a redefinition shows.
        omUndefineCursors();
        EXPECT_EQ(ShowCursor(s.show), s.count);
        EXPECT_EQ(omCurrentCursorCount(), s.count);
        EXPECT_EQ(GetCursor(), a) << "the current cursor stays";
        EXPECT_EQ(omDefinedXCursor(), s.redefined ? x : 0);
    }

    // Taking the cursor away lowers the count as a hide does.
    omResetCurrentCursorCount();
    EXPECT_EQ(SetCursor(nullptr), a);
    EXPECT_EQ(omCurrentCursorCount(), -1);
    EXPECT_EQ(GetCursor(), nullptr);
    EXPECT_EQ(omDefinedXCursor(), 0u);
    EXPECT_EQ(ShowCursor(TRUE), 0) << "nothing to define without a current cursor";
    EXPECT_EQ(omDefinedXCursor(), 0u);
    DestroyCursor(a);
}

TEST_F(Cursors, PointerPositionAndClipRectangle)
{
    const POINT points[] = {{10, 20}, {300, 200}, {0, 0}, {511, 383}};
    for (POINT p : points) {
        SCOPED_TRACE(testing::Message() << p.x << "," << p.y);
        ASSERT_TRUE(SetCursorPos(p.x, p.y));
        Window root, child;
        int rx = -1, ry = -1, wx, wy;
        unsigned mask;
        XQueryPointer(omDisplay, DefaultRootWindow(omDisplay), &root, &child, &rx, &ry, &wx, &wy,
                      &mask);
        EXPECT_EQ(rx, p.x);
        EXPECT_EQ(ry, p.y);
        POINT got{-1, -1};
        ASSERT_TRUE(GetCursorPos(&got));
        EXPECT_EQ(got.x, p.x);
        EXPECT_EQ(got.y, p.y);
    }
    // Moved by another client, read back here.
    ASSERT_TRUE(movePointer(omDisplay, 123, 45));
    POINT got{};
    ASSERT_TRUE(GetCursorPos(&got));
    EXPECT_EQ(got.x, 123);
    EXPECT_EQ(got.y, 45);
    EXPECT_FALSE(GetCursorPos(nullptr));

    RECT r{10, 20, 300, 400}, got2{};
    EXPECT_TRUE(ClipCursor(&r));
    EXPECT_EQ(omNeedClipCursor, 1);
    ASSERT_TRUE(GetClipCursor(&got2));
    EXPECT_TRUE(EqualRect(&got2, &r));
    EXPECT_TRUE(ClipCursor(nullptr));
    EXPECT_EQ(omNeedClipCursor, 0);
    EXPECT_FALSE(GetClipCursor(nullptr));
}

TEST_F(Cursors, ClassCursorIsSetOnlyOverTheClientAreaOfAWindowThatHasOne)
{
    HCURSOR classCursor = solidCursor(2, 2);
    ASSERT_TRUE(classCursor);
    HWND with = makeWindow(60, 60, 0, classCursor);
    HWND without = makeWindow(300, 60, 0, nullptr);
    ASSERT_TRUE(with && without);
    struct Case {
        const char *name;
        HWND hwnd;
        LPARAM lParam;
        BOOL result;
    } cases[] = {
        {"caption", with, MAKELPARAM(HTCAPTION, WM_MOUSEMOVE), FALSE},
        {"client area", with, MAKELPARAM(HTCLIENT, WM_MOUSEMOVE), TRUE},
        {"class without a cursor", without, MAKELPARAM(HTCLIENT, WM_MOUSEMOVE), FALSE},
        {"not a window", reinterpret_cast<HWND>(classCursor), MAKELPARAM(HTCLIENT, 0), FALSE},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        SetCursor(saved_);
        EXPECT_EQ(omSetClassCursor(c.hwnd, c.lParam), c.result);
        EXPECT_EQ(GetCursor(), c.result ? classCursor : saved_);
    }
    SetCursor(saved_);
    DestroyWindow(with);
    DestroyCursor(classCursor);
}

}  // namespace
}  // namespace om::test
