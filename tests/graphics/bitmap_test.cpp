// Bitmaps, DIBs, icons and cursors: DIB round trips in every depth, DIB
// sections kept in step with GDI drawing through GdiFlush, StretchDIBits
// orientation, icons drawn through their masks, system cursors and
// bitmaps, and images loaded from .bmp and .ico files.
#define OEMRESOURCE  // the OBM_* names
#include "gdi_test_util.h"

#include "graphics/omcursor.h"
#include "graphics/omgdi.h"
#include "kernel/omhandles.h"

#include <windows.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <vector>

using om::test::Canvas;

namespace
{

constexpr COLORREF kRed = RGB(255, 0, 0);
constexpr COLORREF kBlue = RGB(0, 0, 255);
constexpr COLORREF kWhite = RGB(255, 255, 255);

struct DibInfo {
    BITMAPINFOHEADER h{};
    RGBQUAD colors[256]{};
};

DibInfo dibInfo(int w, int h, int bpp)
{
    DibInfo d;
    d.h.biSize = sizeof(BITMAPINFOHEADER);
    d.h.biWidth = w;
    d.h.biHeight = h;
    d.h.biPlanes = 1;
    d.h.biBitCount = static_cast<WORD>(bpp);
    d.h.biCompression = BI_RGB;
    if (bpp <= 8) {
        int n = 1 << bpp;
        for (int i = 0; i < n; ++i) {
            BYTE v = static_cast<BYTE>(i * 255 / (n - 1));
            d.colors[i] = {v, v, v, 0};
        }
    }
    return d;
}

BITMAPINFO *bmi(DibInfo &d)
{
    return reinterpret_cast<BITMAPINFO *>(&d);
}

struct RoundTrip {
    int bpp;
    int height;  // negative: top-down
};

class DibRoundTrip : public testing::TestWithParam<RoundTrip>
{
};

TEST_P(DibRoundTrip, SetThenGetKeepsEveryPixel)
{
    const RoundTrip &p = GetParam();
    const int w = 13, h = std::abs(p.height);
    DibInfo info = dibInfo(w, p.height, p.bpp);
    size_t stride = static_cast<size_t>((w * p.bpp + 31) / 32) * 4;
    std::vector<BYTE> bits(stride * static_cast<size_t>(h));
    for (size_t i = 0; i < bits.size(); ++i)
        bits[i] = static_cast<BYTE>(i * 37 + 11);
    if (p.bpp == 16)  // 5-5-5: the top bit is unused
        for (size_t i = 1; i < bits.size(); i += 2)
            bits[i] &= 0x7F;
    if (p.bpp == 32)  // no alpha in a device bitmap
        for (size_t i = 3; i < bits.size(); i += 4)
            bits[i] = 0;
    // Padding bytes at row ends carry no pixels: clear them on both sides.
    auto clearPadding = [&](std::vector<BYTE> &b) {
        size_t used = static_cast<size_t>((w * p.bpp + 7) / 8);
        for (int y = 0; y < h; ++y) {
            for (size_t x = used; x < stride; ++x)
                b[static_cast<size_t>(y) * stride + x] = 0;
            if ((w * p.bpp) % 8)  // the unused low bits of the last byte
                b[static_cast<size_t>(y) * stride + used - 1] &=
                    static_cast<BYTE>(0xFF << (8 - (w * p.bpp) % 8));
        }
    };
    clearPadding(bits);
    HDC screen = GetDC(nullptr);
    HBITMAP bm = p.bpp == 1 ? CreateBitmap(w, h, 1, 1, nullptr) : CreateCompatibleBitmap(screen, w, h);
    ASSERT_EQ(SetDIBits(screen, bm, 0, static_cast<UINT>(h), bits.data(), bmi(info), DIB_RGB_COLORS), h);
    std::vector<BYTE> back(bits.size(), 0xEE);
    DibInfo out = dibInfo(w, p.height, p.bpp);
    ASSERT_EQ(GetDIBits(screen, bm, 0, static_cast<UINT>(h), back.data(), bmi(out), DIB_RGB_COLORS), h);
    clearPadding(back);
    EXPECT_EQ(back, bits);
    DeleteObject(bm);
    ReleaseDC(nullptr, screen);
}

INSTANTIATE_TEST_SUITE_P(Bitmaps, DibRoundTrip,
                         testing::Values(RoundTrip{1, 9}, RoundTrip{1, -9}, RoundTrip{4, 6},
                                         RoundTrip{8, -6}, RoundTrip{16, 7},
                                         RoundTrip{24, 7}, RoundTrip{24, -7}, RoundTrip{32, 5},
                                         RoundTrip{32, -5}),
                         [](const testing::TestParamInfo<RoundTrip> &i) {
                             return std::to_string(i.param.bpp) +
                                    (i.param.height < 0 ? "bppTopDown" : "bppBottomUp");
                         });

TEST(Bitmaps, GetDIBitsDescribesTheBitmapWhenAskedOnlyForTheHeader)
{
    HDC screen = GetDC(nullptr);
    HBITMAP bm = CreateCompatibleBitmap(screen, 21, 4);
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    EXPECT_EQ(GetDIBits(screen, bm, 0, 4, nullptr, &info, DIB_RGB_COLORS), 4);
    EXPECT_EQ(info.bmiHeader.biWidth, 21);
    EXPECT_EQ(info.bmiHeader.biBitCount, 32);
    EXPECT_EQ(info.bmiHeader.biSizeImage, 21u * 4 * 4);
    DeleteObject(bm);
    ReleaseDC(nullptr, screen);
}

TEST(Bitmaps, DibSectionBitsAndGdiDrawingMeetThroughGdiFlush)
{
    DibInfo info = dibInfo(8, -8, 32);  // top-down: row 0 first
    void *raw = nullptr;
    HBITMAP section = CreateDIBSection(nullptr, bmi(info), DIB_RGB_COLORS, &raw, nullptr, 0);
    ASSERT_NE(section, nullptr);
    ASSERT_NE(raw, nullptr);
    auto *px = static_cast<DWORD *>(raw);
    for (int i = 0; i < 64; ++i)
        px[i] = 0x00FFFFFF;
    px[3 * 8 + 2] = 0x00FF0000;  // red at (2, 3)
    HDC dc = CreateCompatibleDC(nullptr);
    HGDIOBJ old = SelectObject(dc, section);
    EXPECT_EQ(GetPixel(dc, 2, 3), kRed) << "bits the program wrote are what GDI sees";
    Canvas target(8, 8);
    ASSERT_TRUE(BitBlt(target.dc(), 0, 0, 8, 8, dc, 0, 0, SRCCOPY));
    EXPECT_EQ(GetPixel(target.dc(), 2, 3), kRed);
    EXPECT_EQ(GetPixel(target.dc(), 3, 3), kWhite);

    RECT r{5, 6, 7, 8};
    FillRect(dc, &r, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    ASSERT_TRUE(GdiFlush());
    EXPECT_EQ(px[6 * 8 + 5], 0x00000000u) << "drawing shows in the bits after GdiFlush";
    EXPECT_EQ(px[7 * 8 + 6], 0x00000000u);
    EXPECT_EQ(px[5 * 8 + 5], 0x00FFFFFFu);
    EXPECT_EQ(px[3 * 8 + 2], 0x00FF0000u);

    px[0] = 0x000000FF;  // blue, written after the flush
    ASSERT_TRUE(BitBlt(target.dc(), 0, 0, 8, 8, dc, 0, 0, SRCCOPY));
    EXPECT_EQ(GetPixel(target.dc(), 0, 0), kBlue);

    DIBSECTION ds{};
    EXPECT_EQ(GetObjectA(section, sizeof ds, &ds), static_cast<int>(sizeof ds));
    EXPECT_EQ(ds.dsBm.bmBits, raw);
    EXPECT_EQ(ds.dsBm.bmWidthBytes, 32);
    EXPECT_EQ(ds.dsBmih.biHeight, -8);
    SelectObject(dc, old);
    DeleteDC(dc);
    EXPECT_TRUE(DeleteObject(section));
}

TEST(Bitmaps, StretchDibitsReadsBottomUpRowsFromTheBottom)
{
    // A 2x2 bottom-up DIB: the first row in memory is the bottom one.
    DibInfo info = dibInfo(2, 2, 32);
    DWORD bits[4] = {0x00FF0000, 0x00FFFFFF,   // bottom: red, white
                     0x000000FF, 0x00FFFFFF};  // top: blue, white
    Canvas c(4, 4);
    ASSERT_EQ(StretchDIBits(c.dc(), 0, 0, 4, 4, 0, 0, 2, 2, bits, bmi(info), DIB_RGB_COLORS, SRCCOPY), 2);
    EXPECT_EQ(GetPixel(c.dc(), 0, 0), kBlue);
    EXPECT_EQ(GetPixel(c.dc(), 1, 1), kBlue);
    EXPECT_EQ(GetPixel(c.dc(), 0, 3), kRed);
    EXPECT_EQ(GetPixel(c.dc(), 3, 3), kWhite);
    PatBlt(c.dc(), 0, 0, 4, 4, WHITENESS);
    ASSERT_EQ(SetDIBitsToDevice(c.dc(), 1, 1, 2, 2, 0, 0, 0, 2, bits, bmi(info), DIB_RGB_COLORS), 2);
    EXPECT_EQ(GetPixel(c.dc(), 1, 1), kBlue);
    EXPECT_EQ(GetPixel(c.dc(), 1, 2), kRed);
    EXPECT_EQ(GetPixel(c.dc(), 0, 0), kWhite);
}

TEST(Icons, DrawIconExPaintsThroughTheMask)
{
    HDC screen = GetDC(nullptr);
    HBITMAP color = CreateCompatibleBitmap(screen, 8, 8);
    ReleaseDC(nullptr, screen);
    HDC dc = CreateCompatibleDC(nullptr);
    HGDIOBJ old = SelectObject(dc, color);
    RECT all{0, 0, 8, 8};
    HBRUSH red = CreateSolidBrush(kRed);
    FillRect(dc, &all, red);
    SelectObject(dc, old);
    // AND mask: 1 = transparent; the left half is transparent.
    const BYTE andBits[16] = {0xF0, 0, 0xF0, 0, 0xF0, 0, 0xF0, 0, 0xF0, 0, 0xF0, 0, 0xF0, 0, 0xF0, 0};
    HBITMAP mask = CreateBitmap(8, 8, 1, 1, andBits);
    ICONINFO ii{TRUE, 0, 0, mask, color};
    HICON icon = CreateIconIndirect(&ii);
    ASSERT_NE(icon, nullptr);
    EXPECT_TRUE(omIsHandleOfKind(omHandleValue(icon), OM_KIND_ICON));
    Canvas c(12, 10);
    HBRUSH blue = CreateSolidBrush(kBlue);
    RECT bg{0, 0, 12, 10};
    FillRect(c.dc(), &bg, blue);
    ASSERT_TRUE(DrawIconEx(c.dc(), 2, 1, icon, 0, 0, 0, nullptr, DI_NORMAL));
    for (int y = 0; y < 10; ++y)
        for (int x = 0; x < 12; ++x) {
            SCOPED_TRACE(testing::Message() << x << "," << y);
            bool opaque = x >= 6 && x < 10 && y >= 1 && y < 9;
            ASSERT_EQ(GetPixel(c.dc(), x, y), opaque ? kRed : kBlue);
        }
    int w = 0, h = 0;
    EXPECT_NE(omIconGetDefaultPixmap(icon), 0u);
    EXPECT_NE(omIconGetMask(icon, &w, &h), 0u);
    EXPECT_EQ(w, 8);
    HICON copy = CopyIcon(icon);
    EXPECT_TRUE(DestroyIcon(icon));
    EXPECT_FALSE(DestroyIcon(icon));
    FillRect(c.dc(), &bg, blue);
    ASSERT_TRUE(DrawIconEx(c.dc(), 0, 0, copy, 16, 16, 0, nullptr, DI_NORMAL));
    EXPECT_EQ(GetPixel(c.dc(), 9, 9), kRed) << "scaled to 16x16";
    EXPECT_EQ(GetPixel(c.dc(), 7, 9), kBlue);
    DestroyIcon(copy);
    DeleteObject(color);
    DeleteObject(mask);
    DeleteObject(red);
    DeleteObject(blue);
    DeleteDC(dc);
}

TEST(Icons, SystemIconsAreSharedAndDrawn)
{
    for (LPCSTR id : {IDI_APPLICATION, IDI_HAND, IDI_QUESTION, IDI_EXCLAMATION, IDI_ASTERISK}) {
        SCOPED_TRACE(reinterpret_cast<uintptr_t>(id));
        HICON icon = LoadIconA(nullptr, id);
        ASSERT_NE(icon, nullptr);
        EXPECT_EQ(LoadIconA(nullptr, id), icon);
        EXPECT_TRUE(DestroyIcon(icon));
        EXPECT_EQ(LoadIconA(nullptr, id), icon) << "shared icons survive DestroyIcon";
        Canvas c(32, 32);
        ASSERT_TRUE(DrawIcon(c.dc(), 0, 0, icon));
        EXPECT_EQ(GetPixel(c.dc(), 0, 0), kWhite) << "corners are transparent";
        int painted = 0;
        for (int y = 0; y < 32; ++y)
            for (int x = 0; x < 32; ++x)
                painted += GetPixel(c.dc(), x, y) != kWhite;
        EXPECT_GT(painted, 100) << "the icon shows";
    }
    EXPECT_EQ(LoadIconA(nullptr, MAKEINTRESOURCEA(1)), nullptr);
    EXPECT_EQ(LoadIconW(nullptr, reinterpret_cast<LPCWSTR>(IDI_HAND)), LoadIconA(nullptr, IDI_HAND));
}

TEST(Cursors, SystemCursorsAreSharedCursorFontCursors)
{
    HCURSOR arrow = LoadCursorA(nullptr, IDC_ARROW);
    ASSERT_NE(arrow, nullptr);
    EXPECT_EQ(LoadCursorA(nullptr, IDC_ARROW), arrow);
    auto *rec = static_cast<OmCursorRecord *>(omHandleRecord(omHandleValue(arrow), OM_KIND_CURSOR));
    ASSERT_NE(rec, nullptr);
    EXPECT_NE(rec->xcursor, 0u);
    EXPECT_EQ(rec->shared, 1u);
    EXPECT_FALSE(DestroyCursor(arrow));
    EXPECT_NE(LoadCursorA(nullptr, IDC_IBEAM), arrow);
    EXPECT_EQ(LoadCursorA(nullptr, MAKEINTRESOURCEA(5)), nullptr);
}

TEST(Cursors, CreateIconIndirectMakesACursorWithItsHotSpot)
{
    HBITMAP mask = CreateBitmap(16, 16, 1, 1, nullptr);  // all opaque
    HBITMAP color = CreateBitmap(16, 16, 1, 32, nullptr);
    ICONINFO ii{FALSE, 3, 4, mask, color};
    HICON cursor = CreateIconIndirect(&ii);
    ASSERT_NE(cursor, nullptr);
    auto *rec = static_cast<OmCursorRecord *>(omHandleRecord(omHandleValue(cursor), OM_KIND_CURSOR));
    ASSERT_NE(rec, nullptr);
    EXPECT_EQ(rec->hotX, 3);
    EXPECT_EQ(rec->hotY, 4);
    EXPECT_EQ(rec->width, 16);
    EXPECT_EQ(rec->maskBits[0], 0xFF) << "opaque everywhere";
    EXPECT_EQ(rec->sourceBits[0], 0x00) << "a black image shows the background";
    EXPECT_TRUE(DestroyCursor(reinterpret_cast<HCURSOR>(cursor)));
    DeleteObject(mask);
    DeleteObject(color);
}

TEST(Bitmaps, SystemBitmapsHaveTheirSizes)
{
    struct Row {
        int id, w, h;
    } rows[] = {{OBM_CHECK, 13, 13}, {OBM_MNARROW, 13, 13}, {OBM_CLOSE, 16, 16}, {OBM_UPARROW, 16, 16}};
    for (const Row &r : rows) {
        SCOPED_TRACE(r.id);
        HBITMAP bm = LoadBitmapA(nullptr, MAKEINTRESOURCEA(r.id));
        ASSERT_NE(bm, nullptr);
        BITMAP b{};
        GetObjectA(bm, sizeof b, &b);
        EXPECT_EQ(b.bmWidth, r.w);
        EXPECT_EQ(b.bmHeight, r.h);
        EXPECT_TRUE(DeleteObject(bm));
    }
    EXPECT_EQ(LoadBitmapA(nullptr, MAKEINTRESOURCEA(100)), nullptr);
}

void writeFile(const std::string &path, const std::vector<BYTE> &data)
{
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char *>(data.data()), static_cast<std::streamsize>(data.size()));
}

template <class T> void append(std::vector<BYTE> &v, T value)
{
    const auto *p = reinterpret_cast<const BYTE *>(&value);
    v.insert(v.end(), p, p + sizeof value);
}

TEST(Images, LoadImageReadsBmpAndIcoFiles)
{
    // A 2x2 24-bit bottom-up .bmp: bottom row red, blue; top row white, red.
    std::vector<BYTE> bmp{'B', 'M'};
    append<DWORD>(bmp, 14 + 40 + 16);
    append<DWORD>(bmp, 0);
    append<DWORD>(bmp, 14 + 40);
    DibInfo info = dibInfo(2, 2, 24);
    append(bmp, info.h);
    const BYTE rows[16] = {0, 0, 255, 255, 0, 0, 0, 0, 255, 255, 255, 0, 255, 0, 0, 0};
    bmp.insert(bmp.end(), rows, rows + 16);
    std::string bmpPath = testing::TempDir() + "olmo_gdi_test.bmp";
    writeFile(bmpPath, bmp);
    HBITMAP bm = static_cast<HBITMAP>(LoadImageA(nullptr, bmpPath.c_str(), IMAGE_BITMAP, 0, 0, LR_LOADFROMFILE));
    ASSERT_NE(bm, nullptr);
    HDC dc = CreateCompatibleDC(nullptr);
    HGDIOBJ old = SelectObject(dc, bm);
    EXPECT_EQ(GetPixel(dc, 0, 1), kRed);
    EXPECT_EQ(GetPixel(dc, 1, 1), kBlue);
    EXPECT_EQ(GetPixel(dc, 0, 0), kWhite);
    EXPECT_EQ(GetPixel(dc, 1, 0), RGB(0, 255, 0));
    SelectObject(dc, old);
    DeleteObject(bm);

    // A 2x2 .ico of one 32-bit image whose AND mask makes (0, 0) (top
    // left, the last row in memory) transparent.
    std::vector<BYTE> image;
    BITMAPINFOHEADER h = dibInfo(2, 4, 32).h;
    append(image, h);
    for (int i = 0; i < 4; ++i)
        append<DWORD>(image, 0x0000FF00);  // green, alpha 0 (the AND mask rules)
    append<DWORD>(image, 0x00000000);        // AND row bottom: opaque
    append<DWORD>(image, 0x00000080);        // AND row top: first pixel transparent
    std::vector<BYTE> ico;
    append<WORD>(ico, 0);
    append<WORD>(ico, 1);
    append<WORD>(ico, 1);
    ico.insert(ico.end(), {2, 2, 0, 0});
    append<WORD>(ico, 1);
    append<WORD>(ico, 32);
    append<DWORD>(ico, static_cast<DWORD>(image.size()));
    append<DWORD>(ico, 6 + 16);
    ico.insert(ico.end(), image.begin(), image.end());
    std::string icoPath = testing::TempDir() + "olmo_gdi_test.ico";
    writeFile(icoPath, ico);
    HICON icon = static_cast<HICON>(LoadImageA(nullptr, icoPath.c_str(), IMAGE_ICON, 0, 0, LR_LOADFROMFILE));
    ASSERT_NE(icon, nullptr);
    Canvas c(2, 2);
    DrawIconEx(c.dc(), 0, 0, icon, 0, 0, 0, nullptr, DI_NORMAL);
    EXPECT_EQ(GetPixel(c.dc(), 0, 0), kWhite);
    EXPECT_EQ(GetPixel(c.dc(), 1, 0), RGB(0, 255, 0));
    EXPECT_EQ(GetPixel(c.dc(), 0, 1), RGB(0, 255, 0));
    DestroyIcon(icon);
    EXPECT_EQ(LoadImageA(nullptr, "/nonexistent.bmp", IMAGE_BITMAP, 0, 0, LR_LOADFROMFILE), nullptr);
    std::remove(bmpPath.c_str());
    std::remove(icoPath.c_str());
    DeleteDC(dc);
}

} // namespace
