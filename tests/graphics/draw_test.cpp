// Golden pixel tests of drawing into memory DCs.  The expected pixels are
// written from GDI's rules (rectangles exclude right and bottom edges,
// lines their last pixel), as predicates over coordinates.
#include "gdi_test_util.h"

#include <windows.h>

#include <vector>

using om::test::Canvas;
using om::test::pixelsMatch;

namespace
{

constexpr COLORREF kWhite = RGB(255, 255, 255);
constexpr COLORREF kBlack = RGB(0, 0, 0);
constexpr COLORREF kRed = RGB(255, 0, 0);
constexpr COLORREF kBlue = RGB(0, 0, 255);

bool inRect(int x, int y, int l, int t, int r, int b)
{
    return x >= l && x < r && y >= t && y < b;
}

class Draw : public testing::Test
{
  protected:
    Canvas canvas{16, 12};
    HDC dc = canvas.dc();
    HBRUSH black = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
};

TEST_F(Draw, FillRectExcludesRightAndBottomEdges)
{
    RECT r{2, 3, 7, 9};
    ASSERT_TRUE(FillRect(dc, &r, black));
    EXPECT_TRUE(pixelsMatch(canvas, kBlack, kWhite,
                            [](int x, int y) { return inRect(x, y, 2, 3, 7, 9); }));
}

TEST_F(Draw, FillRectTakesSystemColourIndexPlusOne)
{
    RECT r{0, 0, 4, 4};
    ASSERT_TRUE(FillRect(dc, &r, reinterpret_cast<HBRUSH>(COLOR_WINDOWTEXT + 1)));
    EXPECT_EQ(GetPixel(dc, 3, 3), GetSysColor(COLOR_WINDOWTEXT));
    ASSERT_TRUE(FillRect(dc, &r, GetSysColorBrush(COLOR_ACTIVECAPTION)));
    EXPECT_EQ(GetPixel(dc, 0, 0), GetSysColor(COLOR_ACTIVECAPTION));
}

TEST_F(Draw, RectangleOutlinesWithThePenAndFillsInsideWithTheBrush)
{
    HBRUSH red = CreateSolidBrush(kRed);
    HGDIOBJ old = SelectObject(dc, red);
    ASSERT_TRUE(Rectangle(dc, 2, 2, 8, 6));
    for (int y = 0; y < canvas.height(); ++y)
        for (int x = 0; x < canvas.width(); ++x) {
            SCOPED_TRACE(testing::Message() << "(" << x << ", " << y << ")");
            bool outline = inRect(x, y, 2, 2, 8, 6) && !inRect(x, y, 3, 3, 7, 5);
            COLORREF want = outline ? kBlack : inRect(x, y, 3, 3, 7, 5) ? kRed : kWhite;
            ASSERT_EQ(GetPixel(dc, x, y), want);
        }
    SelectObject(dc, old);
    DeleteObject(red);
}

TEST_F(Draw, ShapesWithANullPenAreOnePixelSmaller)
{
    SelectObject(dc, GetStockObject(NULL_PEN));
    SelectObject(dc, GetStockObject(BLACK_BRUSH));
    ASSERT_TRUE(Rectangle(dc, 2, 2, 8, 6));
    EXPECT_TRUE(pixelsMatch(canvas, kBlack, kWhite,
                            [](int x, int y) { return inRect(x, y, 2, 2, 7, 5); }));
}

struct LineCase {
    const char *name;
    POINT from, to;
    std::vector<POINT> pixels;
};

class Lines : public Draw, public testing::WithParamInterface<LineCase>
{
};

TEST_P(Lines, LineToLeavesOutItsLastPixel)
{
    const LineCase &c = GetParam();
    MoveToEx(dc, c.from.x, c.from.y, nullptr);
    ASSERT_TRUE(LineTo(dc, c.to.x, c.to.y));
    POINT pos;
    GetCurrentPositionEx(dc, &pos);
    EXPECT_EQ(pos.x, c.to.x);
    EXPECT_EQ(pos.y, c.to.y);
    EXPECT_TRUE(pixelsMatch(canvas, kBlack, kWhite, [&](int x, int y) {
        for (POINT p : c.pixels)
            if (p.x == x && p.y == y)
                return true;
        return false;
    }));
}

INSTANTIATE_TEST_SUITE_P(
    Draw, Lines,
    testing::Values(
        LineCase{"Horizontal", {1, 1}, {6, 1}, {{1, 1}, {2, 1}, {3, 1}, {4, 1}, {5, 1}}},
        LineCase{"Leftwards", {6, 2}, {2, 2}, {{6, 2}, {5, 2}, {4, 2}, {3, 2}}},
        LineCase{"Vertical", {3, 2}, {3, 6}, {{3, 2}, {3, 3}, {3, 4}, {3, 5}}},
        LineCase{"Diagonal", {0, 0}, {5, 5}, {{0, 0}, {1, 1}, {2, 2}, {3, 3}, {4, 4}}},
        LineCase{"AntiDiagonal", {9, 1}, {6, 4}, {{9, 1}, {8, 2}, {7, 3}}},
        LineCase{"ZeroLength", {4, 4}, {4, 4}, {}}),
    [](const testing::TestParamInfo<LineCase> &i) { return std::string(i.param.name); });

TEST_F(Draw, PolylineDrawsEverySegmentButTheFinalPixel)
{
    POINT pts[] = {{1, 1}, {5, 1}, {5, 4}};
    ASSERT_TRUE(Polyline(dc, pts, 3));
    EXPECT_TRUE(pixelsMatch(canvas, kBlack, kWhite, [](int x, int y) {
        return (y == 1 && x >= 1 && x <= 5) || (x == 5 && y >= 1 && y < 4);
    }));
}

TEST_F(Draw, EllipseTouchesItsBoundingBoxInsideRightAndBottom)
{
    SelectObject(dc, GetStockObject(NULL_BRUSH));
    ASSERT_TRUE(Ellipse(dc, 1, 1, 12, 10));
    // The extremes of an ellipse in (1, 1, 12, 10): its outline reaches
    // columns 1 and 11 and rows 1 and 9, never 12 or 10.
    int minX = 99, maxX = -1, minY = 99, maxY = -1;
    for (int y = 0; y < canvas.height(); ++y)
        for (int x = 0; x < canvas.width(); ++x)
            if (GetPixel(dc, x, y) == kBlack) {
                minX = std::min(minX, x);
                maxX = std::max(maxX, x);
                minY = std::min(minY, y);
                maxY = std::max(maxY, y);
            }
    EXPECT_EQ(minX, 1);
    EXPECT_EQ(maxX, 11);
    EXPECT_EQ(minY, 1);
    EXPECT_EQ(maxY, 9);
    EXPECT_EQ(GetPixel(dc, 1, 1), kWhite) << "corners of the box stay clear";
    EXPECT_EQ(GetPixel(dc, 6, 5), kWhite) << "a null brush leaves the inside";
}

TEST_F(Draw, FilledEllipseCoversItsCentreAndNotTheCorners)
{
    SelectObject(dc, GetStockObject(BLACK_BRUSH));
    ASSERT_TRUE(Ellipse(dc, 0, 0, 16, 12));
    EXPECT_EQ(GetPixel(dc, 8, 6), kBlack);
    EXPECT_EQ(GetPixel(dc, 0, 0), kWhite);
    EXPECT_EQ(GetPixel(dc, 15, 11), kWhite);
    EXPECT_EQ(GetPixel(dc, 0, 6), kBlack);
}

TEST_F(Draw, FillRgnPaintsExactlyTheRegion)
{
    // (1,1)-(5,5) united with (3,3)-(8,8), minus (4,4)-(6,6).
    HRGN a = CreateRectRgn(1, 1, 5, 5), b = CreateRectRgn(3, 3, 8, 8), hole = CreateRectRgn(4, 4, 6, 6);
    ASSERT_EQ(CombineRgn(a, a, b, RGN_OR), COMPLEXREGION);
    ASSERT_EQ(CombineRgn(a, a, hole, RGN_DIFF), COMPLEXREGION);
    ASSERT_TRUE(FillRgn(dc, a, black));
    EXPECT_TRUE(pixelsMatch(canvas, kBlack, kWhite, [](int x, int y) {
        return (inRect(x, y, 1, 1, 5, 5) || inRect(x, y, 3, 3, 8, 8)) && !inRect(x, y, 4, 4, 6, 6);
    }));
    DeleteObject(a);
    DeleteObject(b);
    DeleteObject(hole);
}

TEST_F(Draw, FrameRgnPaintsTheInsideBorderOfTheRegion)
{
    HRGN r = CreateRectRgn(2, 2, 10, 8);
    ASSERT_TRUE(FrameRgn(dc, r, black, 2, 1));
    EXPECT_TRUE(pixelsMatch(canvas, kBlack, kWhite, [](int x, int y) {
        return inRect(x, y, 2, 2, 10, 8) && !inRect(x, y, 4, 3, 8, 7);
    }));
    DeleteObject(r);
}

TEST_F(Draw, ClippingLimitsEveryFill)
{
    ASSERT_EQ(IntersectClipRect(dc, 2, 2, 9, 7), SIMPLEREGION);
    ASSERT_EQ(ExcludeClipRect(dc, 4, 3, 6, 5), COMPLEXREGION);
    RECT box;
    EXPECT_EQ(GetClipBox(dc, &box), COMPLEXREGION);
    EXPECT_EQ(box.left, 2);
    EXPECT_EQ(box.top, 2);
    EXPECT_EQ(box.right, 9);
    EXPECT_EQ(box.bottom, 7);
    RECT all{0, 0, 16, 12};
    FillRect(dc, &all, black);
    EXPECT_EQ(GetPixel(dc, 0, 0), CLR_INVALID) << "outside the clip";
    SelectClipRgn(dc, nullptr);
    EXPECT_EQ(GetPixel(dc, 0, 0), kWhite);
    EXPECT_TRUE(pixelsMatch(canvas, kBlack, kWhite, [](int x, int y) {
        return inRect(x, y, 2, 2, 9, 7) && !inRect(x, y, 4, 3, 6, 5);
    }));
}

TEST_F(Draw, SelectClipRgnCopiesTheRegion)
{
    HRGN r = CreateRectRgn(0, 0, 3, 3);
    ASSERT_EQ(SelectClipRgn(dc, r), SIMPLEREGION);
    OffsetRgn(r, 5, 5);  // the DC keeps its own copy
    RECT all{0, 0, 16, 12};
    FillRect(dc, &all, black);
    SelectClipRgn(dc, nullptr);
    EXPECT_TRUE(pixelsMatch(canvas, kBlack, kWhite,
                            [](int x, int y) { return inRect(x, y, 0, 0, 3, 3); }));
    DeleteObject(r);
}

TEST_F(Draw, OriginsMoveWhatIsDrawn)
{
    SetViewportOrgEx(dc, 5, 4, nullptr);
    SetWindowOrgEx(dc, 1, 1, nullptr);
    RECT r{1, 1, 3, 3};  // logical (1,1) is device (5,4)
    FillRect(dc, &r, black);
    SetViewportOrgEx(dc, 0, 0, nullptr);
    SetWindowOrgEx(dc, 0, 0, nullptr);
    EXPECT_TRUE(pixelsMatch(canvas, kBlack, kWhite,
                            [](int x, int y) { return inRect(x, y, 5, 4, 7, 6); }));
}

TEST_F(Draw, AnisotropicScalingStretchesRectangles)
{
    SetMapMode(dc, MM_ANISOTROPIC);
    SetWindowExtEx(dc, 1, 1, nullptr);
    SetViewportExtEx(dc, 2, 3, nullptr);
    RECT r{1, 1, 3, 3};
    FillRect(dc, &r, black);
    SetMapMode(dc, MM_TEXT);
    EXPECT_TRUE(pixelsMatch(canvas, kBlack, kWhite,
                            [](int x, int y) { return inRect(x, y, 2, 3, 6, 9); }));
}

TEST_F(Draw, XorPenDrawnTwiceRestoresTheSurface)
{
    SelectObject(dc, GetStockObject(WHITE_PEN));
    SetROP2(dc, R2_XORPEN);
    for (int i = 0; i < 2; ++i) {
        MoveToEx(dc, 0, 5, nullptr);
        LineTo(dc, 10, 5);
        EXPECT_EQ(GetPixel(dc, 3, 5), i == 0 ? kBlack : kWhite);
    }
    SetROP2(dc, R2_NOT);
    MoveToEx(dc, 0, 6, nullptr);
    LineTo(dc, 10, 6);
    EXPECT_EQ(GetPixel(dc, 9, 6), kBlack);
    EXPECT_EQ(GetPixel(dc, 10, 6), kWhite);
}

TEST_F(Draw, InvertRectAndDrawFocusRectUndoThemselves)
{
    RECT r{1, 1, 9, 7};
    InvertRect(dc, &r);
    EXPECT_TRUE(pixelsMatch(canvas, kBlack, kWhite,
                            [](int x, int y) { return inRect(x, y, 1, 1, 9, 7); }));
    InvertRect(dc, &r);
    DrawFocusRect(dc, &r);
    EXPECT_EQ(GetPixel(dc, 1, 1), kBlack);
    EXPECT_EQ(GetPixel(dc, 2, 1), kWhite) << "dotted";
    EXPECT_EQ(GetPixel(dc, 4, 4), kWhite) << "inside untouched";
    DrawFocusRect(dc, &r);
    EXPECT_TRUE(pixelsMatch(canvas, kBlack, kWhite, [](int, int) { return false; }));
}

TEST_F(Draw, FrameRectIsOneUnitInsideTheRectangle)
{
    RECT r{2, 1, 8, 6};
    FrameRect(dc, &r, black);
    EXPECT_TRUE(pixelsMatch(canvas, kBlack, kWhite, [](int x, int y) {
        return inRect(x, y, 2, 1, 8, 6) && !inRect(x, y, 3, 2, 7, 5);
    }));
}

TEST_F(Draw, DrawEdgeSunkenUsesShadowTopLeftAndHighlightBottomRight)
{
    RECT r{1, 1, 9, 9};
    ASSERT_TRUE(DrawEdge(dc, &r, EDGE_SUNKEN, BF_RECT | BF_ADJUST | BF_MIDDLE));
    EXPECT_EQ(r.left, 3);
    EXPECT_EQ(r.bottom, 7);
    EXPECT_EQ(GetPixel(dc, 1, 4), GetSysColor(COLOR_BTNSHADOW));
    EXPECT_EQ(GetPixel(dc, 2, 4), GetSysColor(COLOR_3DDKSHADOW));
    EXPECT_EQ(GetPixel(dc, 8, 4), GetSysColor(COLOR_BTNHIGHLIGHT));
    EXPECT_EQ(GetPixel(dc, 7, 4), GetSysColor(COLOR_3DLIGHT));
    EXPECT_EQ(GetPixel(dc, 5, 5), GetSysColor(COLOR_BTNFACE));
}

TEST_F(Draw, PolygonFillModesDifferOnAStar)
{
    // A five-pointed star: its centre is inside under WINDING only.
    POINT star[] = {{8, 0}, {13, 11}, {1, 4}, {15, 4}, {3, 11}};
    SelectObject(dc, GetStockObject(NULL_PEN));
    SelectObject(dc, black);
    SetPolyFillMode(dc, ALTERNATE);
    Polygon(dc, star, 5);
    EXPECT_EQ(GetPixel(dc, 8, 6), kWhite);
    SetPolyFillMode(dc, WINDING);
    Polygon(dc, star, 5);
    EXPECT_EQ(GetPixel(dc, 8, 6), kBlack);
}

TEST_F(Draw, PatBltAndBitBltRasterOperations)
{
    Canvas src(16, 12);
    RECT r{0, 0, 4, 12};
    FillRect(src.dc(), &r, black);  // columns 0-3 black, rest white

    ASSERT_TRUE(BitBlt(dc, 2, 1, 6, 5, src.dc(), 1, 0, SRCCOPY));
    EXPECT_TRUE(pixelsMatch(canvas, kBlack, kWhite,
                            [](int x, int y) { return inRect(x, y, 2, 1, 5, 6); }));
    ASSERT_TRUE(PatBlt(dc, 0, 0, 16, 12, DSTINVERT));
    EXPECT_TRUE(pixelsMatch(canvas, kBlack, kWhite,
                            [](int x, int y) { return !inRect(x, y, 2, 1, 5, 6); }));
    ASSERT_TRUE(BitBlt(dc, 0, 0, 16, 12, src.dc(), 0, 0, SRCINVERT));
    EXPECT_TRUE(pixelsMatch(canvas, kBlack, kWhite, [](int x, int y) {
        bool d = !inRect(x, y, 2, 1, 5, 6), s = x < 4;
        return d == s;  // XOR of white (1s) and the two inks
    }));
    ASSERT_TRUE(PatBlt(dc, 0, 0, 16, 12, WHITENESS));
    ASSERT_TRUE(BitBlt(dc, 0, 0, 16, 12, src.dc(), 0, 0, SRCAND));
    EXPECT_TRUE(pixelsMatch(canvas, kBlack, kWhite, [](int x, int) { return x < 4; }));
    SelectObject(dc, black);
    ASSERT_TRUE(PatBlt(dc, 10, 2, 3, 3, PATCOPY));
    EXPECT_EQ(GetPixel(dc, 12, 4), kBlack);
    EXPECT_EQ(GetPixel(dc, 13, 4), kWhite);
    EXPECT_FALSE(PatBlt(dc, 0, 0, 1, 1, SRCCOPY)) << "PatBlt takes no source";
}

TEST_F(Draw, MonochromeSourcesTakeTheDestinationsTextAndBackgroundColours)
{
    // Rows are padded to 16 bits: the second row starts at byte 2.
    const BYTE bits[] = {0xF0, 0x00, 0x0F, 0x00};
    HBITMAP mono = CreateBitmap(8, 2, 1, 1, bits);
    HDC mdc = CreateCompatibleDC(dc);
    HGDIOBJ old = SelectObject(mdc, mono);
    EXPECT_EQ(GetPixel(mdc, 0, 0), kWhite);
    EXPECT_EQ(GetPixel(mdc, 0, 1), kBlack);
    SetTextColor(dc, kRed);
    SetBkColor(dc, kBlue);
    ASSERT_TRUE(BitBlt(dc, 0, 0, 8, 2, mdc, 0, 0, SRCCOPY));
    for (int x = 0; x < 8; ++x) {
        SCOPED_TRACE(x);
        EXPECT_EQ(GetPixel(dc, x, 0), x < 4 ? kBlue : kRed) << "1 bits become the background";
        EXPECT_EQ(GetPixel(dc, x, 1), x < 4 ? kRed : kBlue);
    }
    // Back to monochrome: pixels of the source's background colour are 1.
    SetBkColor(dc, kRed);
    HBITMAP mono2 = CreateBitmap(8, 2, 1, 1, nullptr);
    SelectObject(mdc, mono2);
    ASSERT_TRUE(BitBlt(mdc, 0, 0, 8, 2, dc, 0, 0, SRCCOPY));
    EXPECT_EQ(GetPixel(mdc, 0, 0), kBlack);
    EXPECT_EQ(GetPixel(mdc, 5, 0), kWhite);
    SelectObject(mdc, old);
    DeleteDC(mdc);
    DeleteObject(mono);
    DeleteObject(mono2);
}

TEST_F(Draw, StretchBltScalesAndMirrors)
{
    Canvas src(4, 2);
    SetPixel(src.dc(), 0, 0, kBlack);
    ASSERT_TRUE(StretchBlt(dc, 0, 0, 8, 4, src.dc(), 0, 0, 4, 2, SRCCOPY));
    EXPECT_TRUE(pixelsMatch(canvas, kBlack, kWhite,
                            [](int x, int y) { return inRect(x, y, 0, 0, 2, 2); }));
    ASSERT_TRUE(PatBlt(dc, 0, 0, 16, 12, WHITENESS));
    ASSERT_TRUE(StretchBlt(dc, 3, 0, -4, 2, src.dc(), 0, 0, 4, 2, SRCCOPY));
    EXPECT_TRUE(pixelsMatch(canvas, kBlack, kWhite,
                            [](int x, int y) { return x == 3 && y == 0; }));
}

TEST_F(Draw, HatchBrushRespectsTheBackgroundMode)
{
    HBRUSH hatch = CreateHatchBrush(HS_CROSS, kBlack);
    SetBkColor(dc, kRed);
    RECT r{0, 0, 8, 8};
    FillRect(dc, &r, hatch);
    int black = 0, red = 0;
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            (GetPixel(dc, x, y) == kBlack ? black : red)++;
    EXPECT_EQ(black, 15) << "one row and one column of the 8x8 cell";
    EXPECT_EQ(red, 49) << "an opaque background fills the gaps";
    SetBkMode(dc, TRANSPARENT);
    RECT r2{8, 0, 16, 8};
    FillRect(dc, &r2, hatch);
    EXPECT_EQ(GetPixel(dc, 9, 1), kWhite) << "transparent gaps";
    DeleteObject(hatch);
}

TEST_F(Draw, PenStylesAndWidths)
{
    HPEN wide = CreatePen(PS_SOLID, 3, kRed);
    SelectObject(dc, wide);
    MoveToEx(dc, 2, 5, nullptr);
    LineTo(dc, 12, 5);
    EXPECT_EQ(GetPixel(dc, 6, 4), kRed);
    EXPECT_EQ(GetPixel(dc, 6, 6), kRed);
    EXPECT_EQ(GetPixel(dc, 6, 7), kWhite);
    HPEN dotted = CreatePen(PS_DOT, 1, kBlack);
    SelectObject(dc, dotted);
    SetBkMode(dc, TRANSPARENT);
    MoveToEx(dc, 0, 9, nullptr);
    LineTo(dc, 16, 9);
    int ink = 0;
    for (int x = 0; x < 16; ++x)
        ink += GetPixel(dc, x, 9) == kBlack;
    EXPECT_GT(ink, 4);
    EXPECT_LT(ink, 12);
    SelectObject(dc, GetStockObject(BLACK_PEN));
    DeleteObject(wide);
    DeleteObject(dotted);
}

TEST_F(Draw, SetPixelAnswersTheColourSet)
{
    EXPECT_EQ(SetPixel(dc, 3, 3, kRed), kRed);
    EXPECT_EQ(GetPixel(dc, 3, 3), kRed);
    EXPECT_EQ(GetPixel(dc, 100, 100), CLR_INVALID);
}

TEST_F(Draw, ArcPieAndChordStayInsideTheirBox)
{
    SelectObject(dc, black);
    // The upper half: from the right end counterclockwise to the left end.
    ASSERT_TRUE(Pie(dc, 0, 0, 16, 12, 16, 6, 0, 6));
    EXPECT_EQ(GetPixel(dc, 8, 2), kBlack);
    EXPECT_EQ(GetPixel(dc, 8, 9), kWhite);
    ASSERT_TRUE(PatBlt(dc, 0, 0, 16, 12, WHITENESS));
    ASSERT_TRUE(Chord(dc, 0, 0, 16, 12, 0, 6, 16, 6));  // the lower half
    EXPECT_EQ(GetPixel(dc, 8, 9), kBlack);
    EXPECT_EQ(GetPixel(dc, 8, 2), kWhite);
}

} // namespace
