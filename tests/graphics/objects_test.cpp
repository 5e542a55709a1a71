// Graphics objects and DC state: stock objects, system-colour brushes,
// selection and deletion rules, GetObject, SaveDC/RestoreDC, map modes,
// and a sweep of every object function with bad handles and null pointers.
#include <gtest/gtest.h>

#include "graphics/omgdi.h"
#include "kernel/omdiag.h"
#include "kernel/omhandles.h"

#include <windows.h>

#include <functional>
#include <random>
#include <vector>

namespace
{

TEST(GdiObjects, StockObjectsAreStableAndOfTheirKind)
{
    struct Row {
        int id;
        DWORD type;
    } rows[] = {{WHITE_BRUSH, OBJ_BRUSH},   {NULL_BRUSH, OBJ_BRUSH},      {DC_BRUSH, OBJ_BRUSH},
                {BLACK_PEN, OBJ_PEN},       {NULL_PEN, OBJ_PEN},          {DC_PEN, OBJ_PEN},
                {SYSTEM_FONT, OBJ_FONT},    {DEFAULT_GUI_FONT, OBJ_FONT}, {ANSI_FIXED_FONT, OBJ_FONT},
                {DEFAULT_PALETTE, OBJ_PAL}};
    for (const Row &r : rows) {
        SCOPED_TRACE(r.id);
        HGDIOBJ h = GetStockObject(r.id);
        ASSERT_NE(h, nullptr);
        EXPECT_EQ(GetStockObject(r.id), h) << "the same handle every call";
        EXPECT_EQ(GetObjectType(h), r.type);
        EXPECT_TRUE(DeleteObject(h)) << "deleting a stock object is a harmless no-op";
        EXPECT_EQ(GetObjectType(h), r.type) << "and leaves it alive";
    }
    EXPECT_EQ(GetStockObject(9), nullptr) << "no stock object 9";
    EXPECT_EQ(GetStockObject(STOCK_LAST + 1), nullptr);
}

TEST(GdiObjects, SystemColourBrushesSitInTheReservedSlots)
{
    for (int i = 0; i <= COLOR_MENUBAR; ++i) {
        SCOPED_TRACE(i);
        HBRUSH idiom = reinterpret_cast<HBRUSH>(static_cast<uintptr_t>(i + 1));
        EXPECT_TRUE(omIsHandleOfKind(omHandleValue(idiom), OM_KIND_BRUSH));
        LOGBRUSH lb{};
        ASSERT_EQ(GetObjectA(idiom, sizeof lb, &lb), static_cast<int>(sizeof lb));
        EXPECT_EQ(lb.lbColor, GetSysColor(i));
        EXPECT_EQ(omHandleIndex(omHandleValue(GetSysColorBrush(i))), static_cast<uint32_t>(i + 1));
    }
    EXPECT_EQ(GetSysColor(COLOR_WINDOW), RGB(255, 255, 255));
    EXPECT_EQ(GetSysColor(COLOR_BTNFACE), RGB(192, 192, 192));
}

TEST(GdiObjects, SetSysColorsChangesColourBrushAndPixel)
{
    COLORREF before = GetSysColor(COLOR_INFOBK);
    INT index = COLOR_INFOBK;
    COLORREF green = RGB(0, 255, 0);
    ASSERT_TRUE(SetSysColors(1, &index, &green));
    EXPECT_EQ(GetSysColor(COLOR_INFOBK), green);
    LOGBRUSH lb{};
    GetObjectA(GetSysColorBrush(COLOR_INFOBK), sizeof lb, &lb);
    EXPECT_EQ(lb.lbColor, green);
    EXPECT_EQ(omGetSysColorPixel(COLOR_INFOBK), omColorToPixel(green));
    SetSysColors(1, &index, &before);
    EXPECT_NE(omGetSysColorPixel(COLOR_WINDOW), omGetSysColorPixel(COLOR_WINDOWTEXT));
}

TEST(GdiObjects, DeleteObjectRefusesWhatADcHasSelected)
{
    HDC dc = CreateCompatibleDC(nullptr);
    HPEN pen = CreatePen(PS_DASH, 1, RGB(1, 2, 3));
    HGDIOBJ old = SelectObject(dc, pen);
    EXPECT_EQ(old, GetStockObject(BLACK_PEN));
    EXPECT_EQ(GetCurrentObject(dc, OBJ_PEN), pen);
    EXPECT_FALSE(DeleteObject(pen));
    EXPECT_EQ(SelectObject(dc, old), pen);
    EXPECT_TRUE(DeleteObject(pen));
    EXPECT_EQ(GetObjectType(pen), 0u);
    EXPECT_FALSE(DeleteObject(pen)) << "already gone";
    EXPECT_FALSE(DeleteObject(dc)) << "DCs go through DeleteDC";
    EXPECT_TRUE(DeleteDC(dc));
}

TEST(GdiObjects, ABitmapIsSelectedIntoOneMemoryDcAtATime)
{
    HDC a = CreateCompatibleDC(nullptr), b = CreateCompatibleDC(nullptr);
    HBITMAP bm = CreateBitmap(4, 4, 1, 1, nullptr);
    ASSERT_NE(bm, nullptr);
    EXPECT_EQ(GetObjectType(GetCurrentObject(a, OBJ_BITMAP)), static_cast<DWORD>(OBJ_BITMAP))
        << "a fresh memory DC holds the stock 1x1 bitmap";
    HGDIOBJ old = SelectObject(a, bm);
    EXPECT_NE(old, nullptr);
    EXPECT_EQ(SelectObject(b, bm), nullptr);
    SelectObject(a, old);
    EXPECT_NE(SelectObject(b, bm), nullptr);
    DeleteDC(b);
    EXPECT_TRUE(DeleteObject(bm)) << "deleting the DC released it";
    DeleteDC(a);
}

TEST(GdiObjects, GetObjectDescribesEachKind)
{
    HPEN pen = CreatePen(PS_DOT, 1, RGB(10, 20, 30));
    LOGPEN lp{};
    EXPECT_EQ(GetObjectA(pen, sizeof lp, &lp), static_cast<int>(sizeof lp));
    EXPECT_EQ(lp.lopnStyle, static_cast<UINT>(PS_DOT));
    EXPECT_EQ(lp.lopnColor, RGB(10, 20, 30));

    HBRUSH hatch = CreateHatchBrush(HS_DIAGCROSS, RGB(1, 1, 1));
    LOGBRUSH lb{};
    GetObjectA(hatch, sizeof lb, &lb);
    EXPECT_EQ(lb.lbStyle, static_cast<UINT>(BS_HATCHED));
    EXPECT_EQ(lb.lbHatch, static_cast<ULONG_PTR>(HS_DIAGCROSS));

    LOGFONTA lf{};
    lf.lfHeight = -13;
    lf.lfWeight = FW_BOLD;
    lstrcpyA(lf.lfFaceName, "Arial");
    HFONT font = CreateFontIndirectA(&lf);
    ASSERT_NE(font, nullptr);
    LOGFONTA back{};
    EXPECT_EQ(GetObjectA(font, sizeof back, &back), static_cast<int>(sizeof back));
    EXPECT_EQ(back.lfHeight, -13);
    EXPECT_STREQ(back.lfFaceName, "Arial");
    LOGFONTW wide{};
    EXPECT_EQ(GetObjectW(font, sizeof wide, &wide), static_cast<int>(sizeof wide));
    EXPECT_EQ(wide.lfFaceName[0], u'A');
    EXPECT_EQ(wide.lfWeight, FW_BOLD);
    EXPECT_EQ(GetObjectA(font, 0, nullptr), static_cast<int>(sizeof(LOGFONTA)))
        << "null buffer: the size";

    HBITMAP bm = CreateBitmap(17, 3, 1, 1, nullptr);
    BITMAP b{};
    EXPECT_EQ(GetObjectA(bm, sizeof b, &b), static_cast<int>(sizeof b));
    EXPECT_EQ(b.bmWidth, 17);
    EXPECT_EQ(b.bmHeight, 3);
    EXPECT_EQ(b.bmBitsPixel, 1);
    EXPECT_EQ(b.bmWidthBytes, 4) << "rows padded to 16 bits";

    for (HGDIOBJ h : {static_cast<HGDIOBJ>(pen), static_cast<HGDIOBJ>(hatch),
                      static_cast<HGDIOBJ>(font), static_cast<HGDIOBJ>(bm)})
        EXPECT_TRUE(DeleteObject(h));
}

TEST(GdiObjects, PalettesWorkOnTrueColour)
{
    alignas(LOGPALETTE) BYTE buf[sizeof(LOGPALETTE) + 2 * sizeof(PALETTEENTRY)];
    auto *lp = reinterpret_cast<LOGPALETTE *>(buf);
    lp->palVersion = 0x300;
    lp->palNumEntries = 3;
    PALETTEENTRY *e = lp->palPalEntry;
    e[0] = {255, 0, 0, 0};
    e[1] = {0, 255, 0, 0};
    e[2] = {0, 0, 255, 0};
    HPALETTE pal = CreatePalette(lp);
    ASSERT_NE(pal, nullptr);
    EXPECT_EQ(GetNearestPaletteIndex(pal, RGB(10, 200, 30)), 1u);
    HDC dc = GetDC(nullptr);
    HPALETTE old = SelectPalette(dc, pal, FALSE);
    EXPECT_EQ(old, GetStockObject(DEFAULT_PALETTE));
    EXPECT_NE(RealizePalette(dc), GDI_ERROR);
    EXPECT_EQ(ombUsesPalettes, 1);
    SelectPalette(dc, old, FALSE);
    ReleaseDC(nullptr, dc);
    WORD count = 0;
    EXPECT_EQ(GetObjectA(pal, sizeof count, &count), 2);
    EXPECT_EQ(count, 3);
    DeleteObject(pal);
}

TEST(GdiDc, SaveDcRestoresStateAndSelections)
{
    HDC dc = CreateCompatibleDC(nullptr);
    SetTextColor(dc, RGB(1, 2, 3));
    SetMapMode(dc, MM_ANISOTROPIC);
    int first = SaveDC(dc);
    EXPECT_EQ(first, 1);
    HBRUSH brush = CreateSolidBrush(RGB(9, 9, 9));
    SelectObject(dc, brush);
    SetTextColor(dc, RGB(4, 5, 6));
    SetBkMode(dc, TRANSPARENT);
    IntersectClipRect(dc, 0, 0, 1, 1);
    EXPECT_EQ(SaveDC(dc), 2);
    SetTextColor(dc, RGB(7, 8, 9));
    EXPECT_TRUE(RestoreDC(dc, -1));
    EXPECT_EQ(GetTextColor(dc), RGB(4, 5, 6));
    EXPECT_TRUE(RestoreDC(dc, first));
    EXPECT_EQ(GetTextColor(dc), RGB(1, 2, 3));
    EXPECT_EQ(GetBkMode(dc), OPAQUE);
    EXPECT_EQ(GetMapMode(dc), MM_ANISOTROPIC);
    EXPECT_EQ(GetCurrentObject(dc, OBJ_BRUSH), GetStockObject(WHITE_BRUSH));
    EXPECT_TRUE(DeleteObject(brush)) << "no longer selected after the restore";
    EXPECT_FALSE(RestoreDC(dc, 1)) << "that level was popped";
    DeleteDC(dc);
}

TEST(GdiDc, ModeSettersAnswerThePreviousValueAndRefuseBadOnes)
{
    HDC dc = CreateCompatibleDC(nullptr);
    EXPECT_EQ(SetROP2(dc, R2_XORPEN), R2_COPYPEN);
    EXPECT_EQ(SetROP2(dc, 0), 0);
    EXPECT_EQ(GetROP2(dc), R2_XORPEN);
    EXPECT_EQ(SetBkMode(dc, 7), 0);
    EXPECT_EQ(SetPolyFillMode(dc, WINDING), ALTERNATE);
    EXPECT_EQ(SetTextAlign(dc, TA_BASELINE), static_cast<UINT>(TA_LEFT | TA_TOP));
    EXPECT_EQ(SetBkColor(dc, RGB(0, 0, 0)), RGB(255, 255, 255));
    DeleteDC(dc);
}

TEST(GdiDc, IsotropicModeKeepsUnitsSquare)
{
    HDC dc = CreateCompatibleDC(nullptr);
    SetMapMode(dc, MM_ISOTROPIC);
    SetWindowExtEx(dc, 100, 100, nullptr);
    SetViewportExtEx(dc, 400, -200, nullptr);
    SIZE vp;
    GetViewportExtEx(dc, &vp);
    EXPECT_EQ(vp.cx, 200) << "shrunk to the smaller scale";
    EXPECT_EQ(vp.cy, -200) << "signs are kept";
    POINT p[2] = {{50, 50}, {0, 0}};
    SetViewportOrgEx(dc, 10, 300, nullptr);
    LPtoDP(dc, p, 2);
    EXPECT_EQ(p[0].x, 110);
    EXPECT_EQ(p[0].y, 200);
    EXPECT_EQ(p[1].x, 10);
    DPtoLP(dc, p, 2);
    EXPECT_EQ(p[0].x, 50);
    EXPECT_EQ(p[0].y, 50);
    SetMapMode(dc, MM_TEXT);
    SetViewportExtEx(dc, 5, 5, nullptr);
    GetViewportExtEx(dc, &vp);
    EXPECT_EQ(vp.cx, 1) << "MM_TEXT extents are fixed";
    DeleteDC(dc);
}

TEST(GdiDc, GlobalDcAndScreenDcDescribeTheDisplay)
{
    ASSERT_NE(hGlobalDC, nullptr);
    EXPECT_EQ(GetObjectType(hGlobalDC), static_cast<DWORD>(OBJ_DC));
    EXPECT_FALSE(DeleteDC(hGlobalDC));
    EXPECT_EQ(ReleaseDC(nullptr, hGlobalDC), 0);
    SetTextColor(hGlobalDC, RGB(0, 0, 128));
    EXPECT_EQ(GetTextColor(hGlobalDC), RGB(0, 0, 128));
    HDC screen = CreateDCA("DISPLAY", nullptr, nullptr, nullptr);
    ASSERT_NE(screen, nullptr);
    EXPECT_GT(GetDeviceCaps(screen, HORZRES), 0);
    EXPECT_EQ(GetDeviceCaps(screen, LOGPIXELSY), 96);
    EXPECT_EQ(GetDeviceCaps(screen, BITSPIXEL), 32);
    EXPECT_TRUE(DeleteDC(screen));
    EXPECT_EQ(CreateDCA("WINSPOOL", "printer", nullptr, nullptr), nullptr);
}

// Every object function, given handles that are not what it wants (null,
// freed, of another kind, random values) and null pointers, must answer
// its failure value without crashing.
TEST(GdiObjects, BadHandlesAndNullPointersGiveTheFailureValue)
{
    HPEN freed = CreatePen(PS_SOLID, 1, 0);
    DeleteObject(freed);
    HRGN region = CreateRectRgn(0, 0, 1, 1);
    std::vector<void *> bad = {nullptr, freed, region, reinterpret_cast<void *>(uintptr_t{0xFFFF}),
                               reinterpret_cast<void *>(uintptr_t{0xDEADBEEF})};
    std::mt19937 rng(12);
    for (int i = 0; i < 40; ++i)
        bad.push_back(reinterpret_cast<void *>(static_cast<uintptr_t>(rng() | 0x40000u)));
    RECT rc{0, 0, 1, 1};
    POINT pts[4] = {};
    // Each check returns true when the call gave its failure value.
    struct Check {
        const char *name;
        std::function<bool(void *)> call;
    };
    auto dc = [](void *h) { return static_cast<HDC>(h); };
    const Check checks[] = {
        {"SelectObject", [&](void *h) { return !SelectObject(dc(h), GetStockObject(BLACK_PEN)); }},
        {"GetCurrentObject", [&](void *h) { return !GetCurrentObject(dc(h), OBJ_PEN); }},
        {"DeleteDC", [&](void *h) { return !DeleteDC(dc(h)); }},
        {"SaveDC", [&](void *h) { return !SaveDC(dc(h)); }},
        {"RestoreDC", [&](void *h) { return !RestoreDC(dc(h), -1); }},
        {"GetDeviceCaps", [&](void *h) { return !GetDeviceCaps(dc(h), HORZRES); }},
        {"SetTextColor", [&](void *h) { return SetTextColor(dc(h), 0) == CLR_INVALID; }},
        {"GetBkColor", [&](void *h) { return GetBkColor(dc(h)) == CLR_INVALID; }},
        {"SetBkMode", [&](void *h) { return !SetBkMode(dc(h), OPAQUE); }},
        {"SetROP2", [&](void *h) { return !SetROP2(dc(h), R2_COPYPEN); }},
        {"SetMapMode", [&](void *h) { return !SetMapMode(dc(h), MM_TEXT); }},
        {"SetViewportOrgEx", [&](void *h) { return !SetViewportOrgEx(dc(h), 0, 0, nullptr); }},
        {"LPtoDP", [&](void *h) { return !LPtoDP(dc(h), pts, 1); }},
        {"MoveToEx", [&](void *h) { return !MoveToEx(dc(h), 0, 0, nullptr); }},
        {"LineTo", [&](void *h) { return !LineTo(dc(h), 1, 1); }},
        {"Rectangle", [&](void *h) { return !Rectangle(dc(h), 0, 0, 2, 2); }},
        {"Ellipse", [&](void *h) { return !Ellipse(dc(h), 0, 0, 2, 2); }},
        {"Polygon", [&](void *h) { return !Polygon(dc(h), pts, 3); }},
        {"PolyBezier", [&](void *h) { return !PolyBezier(dc(h), pts, 4); }},
        {"FillRect", [&](void *h) { return !FillRect(dc(h), &rc, GetSysColorBrush(0)); }},
        {"FillRectBrush", [&](void *h) { return !FillRect(hGlobalDC, &rc, static_cast<HBRUSH>(h)); }},
        {"FrameRect", [&](void *h) { return !FrameRect(dc(h), &rc, GetSysColorBrush(0)); }},
        {"PatBlt", [&](void *h) { return !PatBlt(dc(h), 0, 0, 1, 1, PATCOPY); }},
        {"BitBlt", [&](void *h) { return !BitBlt(dc(h), 0, 0, 1, 1, hGlobalDC, 0, 0, SRCCOPY); }},
        {"BitBltSource", [&](void *h) { return !BitBlt(hGlobalDC, 0, 0, 1, 1, dc(h), 0, 0, SRCCOPY); }},
        {"GetPixel", [&](void *h) { return GetPixel(dc(h), 0, 0) == CLR_INVALID; }},
        {"SelectClipRgn", [&](void *h) { return SelectClipRgn(dc(h), nullptr) == ERROR; }},
        {"GetClipBox", [&](void *h) { return GetClipBox(dc(h), &rc) == ERROR; }},
        {"GetObjectA", [&](void *h) { LOGPEN lp; return h == region || !GetObjectA(h, sizeof lp, &lp); }},
        {"GetObjectType", [&](void *h) { return h == region || !GetObjectType(h); }},
        {"DeleteObject", [&](void *h) { return h == region || !DeleteObject(h); }},
        {"CombineRgn", [&](void *h) { return CombineRgn(static_cast<HRGN>(h), region, region, RGN_OR) == ERROR; }},
        {"OffsetRgn", [&](void *h) { return OffsetRgn(static_cast<HRGN>(h), 1, 1) == ERROR; }},
        {"GetRgnBox", [&](void *h) { return GetRgnBox(static_cast<HRGN>(h), &rc) == ERROR; }},
        {"PtInRegion", [&](void *h) { return !PtInRegion(static_cast<HRGN>(h), 0, 0); }},
        {"FillRgn", [&](void *h) { return !FillRgn(hGlobalDC, static_cast<HRGN>(h), GetSysColorBrush(0)); }},
        {"CreatePatternBrush", [&](void *h) { return !CreatePatternBrush(static_cast<HBITMAP>(h)); }},
        {"CreateCompatibleBitmap", [&](void *h) { return !CreateCompatibleBitmap(dc(h), 2, 2); }},
        {"SelectPalette", [&](void *h) { return !SelectPalette(dc(h), static_cast<HPALETTE>(GetStockObject(DEFAULT_PALETTE)), FALSE); }},
        {"ReleaseDC", [&](void *h) { return !ReleaseDC(nullptr, dc(h)); }},
        {"StretchBlt", [&](void *h) { return !StretchBlt(dc(h), 0, 0, 2, 2, hGlobalDC, 0, 0, 1, 1, SRCCOPY); }},
        {"SetPixel", [&](void *h) { return SetPixel(dc(h), 0, 0, 0) == CLR_INVALID; }},
        {"GetTextMetricsA", [&](void *h) { TEXTMETRICA tm; return !GetTextMetricsA(dc(h), &tm); }},
        {"GetTextExtentPoint32A", [&](void *h) { SIZE s; return !GetTextExtentPoint32A(dc(h), "a", 1, &s); }},
        {"TextOutA", [&](void *h) { return !TextOutA(dc(h), 0, 0, "a", 1); }},
        {"DrawTextA", [&](void *h) { return !DrawTextA(dc(h), "a", 1, &rc, 0); }},
        {"GetDIBits", [&](void *h) {
             BITMAPINFO bi{};
             bi.bmiHeader.biSize = sizeof bi.bmiHeader;
             return !GetDIBits(hGlobalDC, static_cast<HBITMAP>(h), 0, 1, nullptr, &bi, DIB_RGB_COLORS);
         }},
        {"SetDIBits", [&](void *h) {
             BITMAPINFO bi{};
             bi.bmiHeader = {sizeof(BITMAPINFOHEADER), 1, 1, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
             DWORD px = 0;
             return !SetDIBits(hGlobalDC, static_cast<HBITMAP>(h), 0, 1, &px, &bi, DIB_RGB_COLORS);
         }},
        {"DrawIconEx", [&](void *h) { return !DrawIconEx(hGlobalDC, 0, 0, static_cast<HICON>(h), 0, 0, 0, nullptr, DI_NORMAL); }},
        {"DestroyIcon", [&](void *h) { return !DestroyIcon(static_cast<HICON>(h)); }},
        {"CopyIcon", [&](void *h) { return !CopyIcon(static_cast<HICON>(h)); }},
        {"DestroyCursor", [&](void *h) { return !DestroyCursor(static_cast<HCURSOR>(h)); }},
        {"GetIconInfo", [&](void *h) { ICONINFO ii; return !GetIconInfo(static_cast<HICON>(h), &ii); }},
    };
    omDiagResetCounts();
    for (const Check &c : checks)
        for (void *h : bad) {
            // Region-taking functions get a valid region only as the
            // wrong-kind case of DC parameters, so skip it for them.
            std::string name = c.name;
            bool regionParam = (name.find("Rgn") != std::string::npos ||
                                name.find("Region") != std::string::npos) &&
                               name != "SelectClipRgn";
            if (regionParam && h == region)
                continue;
            SCOPED_TRACE(testing::Message() << c.name << " with " << h);
            EXPECT_TRUE(c.call(h));
        }
    // Null pointers where a structure is expected.
    EXPECT_FALSE(FillRect(hGlobalDC, nullptr, GetSysColorBrush(0)));
    EXPECT_EQ(CreatePenIndirect(nullptr), nullptr);
    EXPECT_EQ(CreateBrushIndirect(nullptr), nullptr);
    EXPECT_EQ(CreateFontIndirectA(nullptr), nullptr);
    EXPECT_EQ(CreatePalette(nullptr), nullptr);
    EXPECT_EQ(CreateRectRgnIndirect(nullptr), nullptr);
    EXPECT_EQ(GetRgnBox(region, nullptr), ERROR);
    EXPECT_FALSE(Polyline(hGlobalDC, nullptr, 3));
    EXPECT_FALSE(GetClipBox(hGlobalDC, nullptr));
    EXPECT_FALSE(LPtoDP(hGlobalDC, nullptr, 2));
    EXPECT_FALSE(IntersectRect(nullptr, &rc, &rc));
    EXPECT_FALSE(BeginPaint(nullptr, nullptr));
    DeleteObject(region);
}

} // namespace
