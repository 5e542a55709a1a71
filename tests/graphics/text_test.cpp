// Text through Xft: font heights as LOGFONT defines them, pitch and weight,
// extents that agree with the ink drawn, alignment, opaque backgrounds and
// clipping, DrawText layout, and Motif render tables measuring as GDI does.
#include "gdi_test_util.h"

#include "graphics/omgdi.h"
#include "kernel/omdisplay.h"

#include <windows.h>

#include <Xm/Xm.h>

using om::test::Canvas;

namespace
{

constexpr COLORREF kWhite = RGB(255, 255, 255);

struct Ink {
    int left = 9999, top = 9999, right = -1, bottom = -1;  // exclusive right/bottom
    bool any() const { return right >= 0; }
};

// The bounding box of every pixel that is not white.
Ink inkOf(const Canvas &c)
{
    Ink ink;
    for (int y = 0; y < c.height(); ++y)
        for (int x = 0; x < c.width(); ++x)
            if (GetPixel(c.dc(), x, y) != kWhite) {
                ink.left = std::min(ink.left, x);
                ink.top = std::min(ink.top, y);
                ink.right = std::max(ink.right, x + 1);
                ink.bottom = std::max(ink.bottom, y + 1);
            }
    return ink;
}

HFONT makeFont(int height, const char *face, int weight = FW_NORMAL, BOOL underline = FALSE)
{
    return CreateFontA(height, 0, 0, 0, weight, FALSE, underline, FALSE, ANSI_CHARSET, 0, 0, 0, 0,
                       face);
}

class Text : public testing::Test
{
  protected:
    Canvas canvas{160, 60};
    HDC dc = canvas.dc();
    void TearDown() override
    {
        HGDIOBJ f = SelectObject(dc, GetStockObject(SYSTEM_FONT));
        if (f != GetStockObject(SYSTEM_FONT))
            DeleteObject(f);
    }
};

TEST_F(Text, NegativeHeightIsTheCharacterHeightPositiveTheCell)
{
    for (int h : {10, 13, 20, 32}) {
        SCOPED_TRACE(h);
        HFONT neg = makeFont(-h, "Arial"), pos = makeFont(h, "Arial");
        TEXTMETRICA tm{};
        HGDIOBJ old = SelectObject(dc, neg);
        ASSERT_TRUE(GetTextMetricsA(dc, &tm));
        EXPECT_EQ(tm.tmHeight - tm.tmInternalLeading, h);
        EXPECT_EQ(tm.tmHeight, tm.tmAscent + tm.tmDescent);
        SelectObject(dc, pos);
        ASSERT_TRUE(GetTextMetricsA(dc, &tm));
        EXPECT_LE(tm.tmHeight, h);
        EXPECT_GE(tm.tmHeight, h - 1);
        SelectObject(dc, old);
        DeleteObject(neg);
        DeleteObject(pos);
    }
}

TEST_F(Text, FacesMapToPitchAndWeight)
{
    HFONT mono = makeFont(-14, "Courier New"), sans = makeFont(-14, "MS Sans Serif"),
          bold = makeFont(-14, "MS Sans Serif", FW_BOLD);
    INT w[2];
    SelectObject(dc, mono);
    GetCharWidth32A(dc, 'i', 'i', &w[0]);
    GetCharWidth32A(dc, 'W', 'W', &w[1]);
    EXPECT_EQ(w[0], w[1]) << "Courier New is fixed pitch";
    TEXTMETRICA tm{};
    GetTextMetricsA(dc, &tm);
    EXPECT_FALSE(tm.tmPitchAndFamily & TMPF_FIXED_PITCH) << "the bit means variable pitch";
    SelectObject(dc, sans);
    GetCharWidth32A(dc, 'i', 'i', &w[0]);
    GetCharWidth32A(dc, 'W', 'W', &w[1]);
    EXPECT_LT(w[0], w[1]);
    SIZE regular, heavy;
    GetTextExtentPoint32A(dc, "Hello world", 11, &regular);
    SelectObject(dc, bold);
    GetTextExtentPoint32A(dc, "Hello world", 11, &heavy);
    EXPECT_GT(heavy.cx, regular.cx);
    SelectObject(dc, GetStockObject(SYSTEM_FONT));
    DeleteObject(mono);
    DeleteObject(sans);
    DeleteObject(bold);
}

TEST_F(Text, ExtentsAgreeWithTheInk)
{
    HFONT f = makeFont(-11, "Arial");
    SelectObject(dc, f);
    SetBkMode(dc, TRANSPARENT);
    SIZE sz;
    ASSERT_TRUE(GetTextExtentPoint32A(dc, "Hxxxxxxxxxxxxxxxxxxx", 20, &sz));
    ASSERT_TRUE(TextOutA(dc, 10, 5, "Hxxxxxxxxxxxxxxxxxxx", 20));
    Ink ink = inkOf(canvas);
    ASSERT_TRUE(ink.any());
    EXPECT_GE(ink.left, 10);
    EXPECT_LE(ink.left, 12) << "the H starts at the origin";
    EXPECT_LE(ink.right, 10 + sz.cx);
    EXPECT_GE(ink.right, 10 + sz.cx - 3) << "the last x ends near the advance";
    EXPECT_GE(ink.top, 5);
    EXPECT_LE(ink.bottom, 5 + sz.cy);
}

TEST_F(Text, AlignmentMovesTheReferencePoint)
{
    HFONT f = makeFont(-16, "Arial");
    SelectObject(dc, f);
    SetBkMode(dc, TRANSPARENT);
    SIZE sz;
    GetTextExtentPoint32A(dc, "HHH", 3, &sz);
    TEXTMETRICA tm;
    GetTextMetricsA(dc, &tm);
    SetTextAlign(dc, TA_RIGHT | TA_BASELINE);
    TextOutA(dc, 100, 40, "HHH", 3);
    Ink ink = inkOf(canvas);
    EXPECT_LE(ink.right, 100);
    EXPECT_GE(ink.right, 100 - 3);
    EXPECT_EQ(ink.bottom, 40) << "H sits on the baseline";
    PatBlt(dc, 0, 0, 160, 60, WHITENESS);
    SetTextAlign(dc, TA_CENTER | TA_TOP | TA_UPDATECP);
    MoveToEx(dc, 80, 0, nullptr);
    TextOutA(dc, 0, 0, "HHH", 3);
    ink = inkOf(canvas);
    EXPECT_NEAR((ink.left + ink.right) / 2.0, 80, 2.0);
    POINT pos;
    GetCurrentPositionEx(dc, &pos);
    EXPECT_EQ(pos.x, 80) << "centred text leaves the position where it was";
}

TEST_F(Text, OpaqueBackgroundFillsExactlyTheTextCell)
{
    HFONT f = makeFont(-12, "Arial");
    SelectObject(dc, f);
    SetBkColor(dc, RGB(255, 0, 0));
    SIZE sz;
    GetTextExtentPoint32A(dc, "abc", 3, &sz);
    TextOutA(dc, 7, 9, "abc", 3);
    Ink ink = inkOf(canvas);
    EXPECT_EQ(ink.left, 7);
    EXPECT_EQ(ink.top, 9);
    EXPECT_EQ(ink.right, 7 + sz.cx);
    EXPECT_EQ(ink.bottom, 9 + sz.cy);
}

TEST_F(Text, ExtTextOutClipsAndOpaquesToItsRectangle)
{
    HFONT f = makeFont(-20, "Arial");
    SelectObject(dc, f);
    SetBkMode(dc, TRANSPARENT);
    SetBkColor(dc, RGB(0, 0, 255));
    RECT r{20, 10, 40, 30};
    ASSERT_TRUE(ExtTextOutA(dc, 5, 5, ETO_CLIPPED | ETO_OPAQUE, &r, "WWWWWWWW", 8, nullptr));
    Ink ink = inkOf(canvas);
    EXPECT_EQ(ink.left, 20);
    EXPECT_EQ(ink.top, 10);
    EXPECT_EQ(ink.right, 40);
    EXPECT_EQ(ink.bottom, 30);
    EXPECT_EQ(GetPixel(dc, 20, 10) == RGB(0, 0, 255) || GetPixel(dc, 20, 10) == RGB(0, 0, 0), true);
}

TEST_F(Text, WideAndUtf8TextMeasureTheSame)
{
    HFONT f = makeFont(-14, "Arial");
    SelectObject(dc, f);
    SIZE a, w;
    ASSERT_TRUE(GetTextExtentPoint32A(dc, "caf\xC3\xA9", 5, &a));
    ASSERT_TRUE(GetTextExtentPoint32W(dc, u"caf\u00E9", 4, &w));
    EXPECT_EQ(a.cx, w.cx);
    EXPECT_GT(a.cx, 0);
    INT dx[4] = {10, 10, 10, 10};
    EXPECT_TRUE(ExtTextOutW(dc, 0, 0, 0, nullptr, u"caf\u00E9", 4, dx));
}

TEST_F(Text, DrawTextLaysOutLinesAndPrefixes)
{
    HFONT f = makeFont(-12, "Arial");
    SelectObject(dc, f);
    TEXTMETRICA tm;
    GetTextMetricsA(dc, &tm);
    struct Row {
        const char *text;
        UINT format;
        int width;  // of the rectangle
        int lines;
    } rows[] = {
        {"one line", DT_SINGLELINE, 150, 1},
        {"two\nlines", 0, 150, 2},
        {"crlf\r\nlines\r\nthree", 0, 150, 3},
        {"several words that wrap around", DT_WORDBREAK, 60, 0},  // more than one
        {"&File", 0, 150, 1},
    };
    for (const Row &r : rows) {
        SCOPED_TRACE(r.text);
        RECT rc{0, 0, r.width, 0};
        int h = DrawTextA(dc, r.text, -1, &rc, r.format | DT_CALCRECT);
        EXPECT_EQ(h, rc.bottom);
        if (r.lines)
            EXPECT_EQ(h, r.lines * tm.tmHeight);
        else
            EXPECT_GT(h, tm.tmHeight);
    }
    RECT rc{0, 0, 0, 0};
    DrawTextA(dc, "&File", -1, &rc, DT_CALCRECT);
    SIZE plain;
    GetTextExtentPoint32A(dc, "File", 4, &plain);
    EXPECT_EQ(rc.right, plain.cx) << "the prefix is not measured";
    RECT noPrefix{0, 0, 0, 0};
    DrawTextA(dc, "&File", -1, &noPrefix, DT_CALCRECT | DT_NOPREFIX);
    EXPECT_GT(noPrefix.right, plain.cx);
}

TEST_F(Text, DrawTextCentresAndEllipsizes)
{
    HFONT f = makeFont(-12, "Arial");
    SelectObject(dc, f);
    SetBkMode(dc, TRANSPARENT);
    RECT box{0, 0, 160, 60};
    DrawTextA(dc, "HH", -1, &box, DT_SINGLELINE | DT_CENTER | DT_VCENTER);
    Ink ink = inkOf(canvas);
    EXPECT_NEAR((ink.left + ink.right) / 2.0, 80, 2.0);
    EXPECT_NEAR((ink.top + ink.bottom) / 2.0, 30, 4.0);
    PatBlt(dc, 0, 0, 160, 60, WHITENESS);
    RECT narrow{0, 0, 40, 20};
    DrawTextA(dc, "a long label that does not fit", -1, &narrow, DT_SINGLELINE | DT_END_ELLIPSIS);
    ink = inkOf(canvas);
    EXPECT_LE(ink.right, 40) << "clipped to the rectangle";
}

TEST_F(Text, UnderlinedFontsDrawALineUnderTheText)
{
    HFONT f = makeFont(-14, "Arial", FW_NORMAL, TRUE);
    SelectObject(dc, f);
    SetBkMode(dc, TRANSPARENT);
    SetTextAlign(dc, TA_BASELINE);
    SIZE sz;
    GetTextExtentPoint32A(dc, "ab", 2, &sz);
    TextOutA(dc, 10, 20, "ab", 2);
    for (int x = 10; x < 10 + sz.cx; ++x)
        EXPECT_NE(GetPixel(dc, x, 21), kWhite) << x;
}

TEST(TextRenderTable, MotifMeasuresAsGdiDoes)
{
    ASSERT_NE(omEnsureDisplay(), nullptr);
    omCreateDefaultControlFont();
    ASSERT_NE(omDefaultGUIFontList, nullptr);
    ASSERT_NE(omControlCreateFontList, nullptr);
    HFONT f = CreateFontA(-15, 0, 0, 0, FW_BOLD, 0, 0, 0, 0, 0, 0, 0, 0, "Times New Roman");
    XmFontList list = omFontCreateFontList(f);
    ASSERT_NE(list, nullptr);
    XmString s = XmStringCreateLocalized(const_cast<char *>("Motif and GDI"));
    HDC dc = CreateCompatibleDC(nullptr);
    SelectObject(dc, f);
    SIZE sz;
    GetTextExtentPoint32A(dc, "Motif and GDI", 13, &sz);
    EXPECT_EQ(static_cast<LONG>(XmStringWidth(list, s)), sz.cx);
    EXPECT_EQ(static_cast<LONG>(XmStringHeight(list, s)), sz.cy);
    XmStringFree(s);
    XmRenderTableFree(list);
    DeleteDC(dc);
    DeleteObject(f);
}

TEST(TextEnumeration, EnumFontFamiliesFindsTheDejaVuFamilies)
{
    HDC dc = CreateCompatibleDC(nullptr);
    std::vector<std::string> names;
    LOGFONTA lf{};
    lf.lfCharSet = DEFAULT_CHARSET;
    EnumFontFamiliesExA(
        dc, &lf,
        [](const LOGFONTA *l, const TEXTMETRICA *, DWORD, LPARAM p) -> int {
            reinterpret_cast<std::vector<std::string> *>(p)->push_back(l->lfFaceName);
            return 1;
        },
        reinterpret_cast<LPARAM>(&names), 0);
    EXPECT_NE(std::find(names.begin(), names.end(), "DejaVu Sans"), names.end());
    EXPECT_NE(std::find(names.begin(), names.end(), "DejaVu Sans Mono"), names.end());
    int calls = 0;
    EnumFontFamiliesExA(
        dc, &lf,
        [](const LOGFONTA *, const TEXTMETRICA *, DWORD, LPARAM p) -> int {
            ++*reinterpret_cast<int *>(p);
            return 0;
        },
        reinterpret_cast<LPARAM>(&calls), 0);
    EXPECT_EQ(calls, 1) << "a zero answer stops the enumeration";
    DeleteDC(dc);
}

} // namespace
