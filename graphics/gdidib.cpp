// Device-independent bitmaps: DIB sections (program memory kept in step
// with a pixmap: bits go up before GDI uses the bitmap, come back on
// GdiFlush), SetDIBits/GetDIBits, CreateDIBitmap, StretchDIBits and
// SetDIBitsToDevice, for 1, 4, 8, 16, 24 and 32 bits a pixel.
#include "gdiprivate.h"

#include <algorithm>
#include <cstring>
#include <mutex>
#include <set>

namespace om::gdi
{
namespace
{

std::mutex g_dibLock;
std::set<BitmapRecord *> g_dibSections;

// Pixels of a DIB in the format its header gives.
struct DibFormat {
    int width = 0, height = 0;  // height > 0
    bool bottomUp = true;
    int bpp = 0;
    size_t stride = 0;
    DWORD masks[3] = {0, 0, 0};  // 16 and 32 bpp
    std::vector<RGBQUAD> colors;

    bool parse(const BITMAPINFO *bmi, UINT usage)
    {
        const BITMAPINFOHEADER &h = bmi->bmiHeader;
        if (h.biSize < sizeof(BITMAPINFOHEADER) || h.biWidth <= 0 || h.biHeight == 0 ||
            h.biPlanes != 1)
            return false;
        width = h.biWidth;
        height = h.biHeight < 0 ? -h.biHeight : h.biHeight;
        bottomUp = h.biHeight > 0;
        bpp = h.biBitCount;
        if (bpp != 1 && bpp != 4 && bpp != 8 && bpp != 16 && bpp != 24 && bpp != 32)
            return false;
        if (h.biCompression != BI_RGB && h.biCompression != BI_BITFIELDS)
            return false;
        stride = static_cast<size_t>((width * bpp + 31) / 32) * 4;
        const BYTE *after = reinterpret_cast<const BYTE *>(bmi) + h.biSize;
        if (h.biCompression == BI_BITFIELDS)
            memcpy(masks, after, sizeof masks);
        else if (bpp == 16)
            masks[0] = 0x7C00, masks[1] = 0x03E0, masks[2] = 0x001F;
        else if (bpp == 32)
            masks[0] = 0xFF0000, masks[1] = 0x00FF00, masks[2] = 0x0000FF;
        if (bpp <= 8) {
            size_t n = h.biClrUsed ? h.biClrUsed : (1u << bpp);
            n = std::min<size_t>(n, 1u << bpp);
            const auto *table = reinterpret_cast<const RGBQUAD *>(after);
            if (usage == DIB_PAL_COLORS) {
                // Indexes into the default palette's static colours.
                const auto *idx = reinterpret_cast<const WORD *>(after);
                PALETTEENTRY e[20];
                GetPaletteEntries(static_cast<HPALETTE>(GetStockObject(DEFAULT_PALETTE)), 0, 20, e);
                for (size_t i = 0; i < n; ++i) {
                    const PALETTEENTRY &p = e[idx[i] % 20];
                    colors.push_back({p.peBlue, p.peGreen, p.peRed, 0});
                }
            } else {
                colors.assign(table, table + n);
            }
        }
        return true;
    }

    const BYTE *row(const void *bits, int y) const
    {
        int r = bottomUp ? height - 1 - y : y;
        return static_cast<const BYTE *>(bits) + static_cast<size_t>(r) * stride;
    }
    BYTE *row(void *bits, int y) const
    {
        return const_cast<BYTE *>(row(static_cast<const void *>(bits), y));
    }

    static int channel(DWORD v, DWORD mask)
    {
        if (!mask)
            return 0;
        int shift = __builtin_ctz(mask);
        DWORD max = mask >> shift;
        return static_cast<int>(((v & mask) >> shift) * 255 / max);
    }

    COLORREF get(const BYTE *r, int x) const
    {
        switch (bpp) {
        case 1:
        case 4:
        case 8: {
            int idx = bpp == 8 ? r[x]
                      : bpp == 4 ? (r[x / 2] >> (x % 2 ? 0 : 4)) & 15
                                 : (r[x / 8] >> (7 - x % 8)) & 1;
            if (static_cast<size_t>(idx) >= colors.size())
                return 0;
            const RGBQUAD &q = colors[static_cast<size_t>(idx)];
            return RGB(q.rgbRed, q.rgbGreen, q.rgbBlue);
        }
        case 16: {
            DWORD v = r[2 * x] | (r[2 * x + 1] << 8);
            return RGB(channel(v, masks[0]), channel(v, masks[1]), channel(v, masks[2]));
        }
        case 24:
            return RGB(r[3 * x + 2], r[3 * x + 1], r[3 * x]);
        default: {
            DWORD v = r[4 * x] | (r[4 * x + 1] << 8) | (r[4 * x + 2] << 16) |
                      (static_cast<DWORD>(r[4 * x + 3]) << 24);
            return RGB(channel(v, masks[0]), channel(v, masks[1]), channel(v, masks[2]));
        }
        }
    }

    int nearest(COLORREF c) const
    {
        int best = 0;
        long bestD = -1;
        for (size_t i = 0; i < colors.size(); ++i) {
            long dr = colors[i].rgbRed - GetRValue(c), dg = colors[i].rgbGreen - GetGValue(c),
                 db = colors[i].rgbBlue - GetBValue(c);
            long d = dr * dr + dg * dg + db * db;
            if (bestD < 0 || d < bestD) {
                bestD = d;
                best = static_cast<int>(i);
            }
        }
        return best;
    }

    static DWORD pack(int v, DWORD mask)
    {
        if (!mask)
            return 0;
        int shift = __builtin_ctz(mask);
        DWORD max = mask >> shift;
        return ((static_cast<DWORD>(v) * max + 127) / 255) << shift;
    }

    void put(BYTE *r, int x, COLORREF c) const
    {
        switch (bpp) {
        case 1: {
            BYTE bit = static_cast<BYTE>(0x80 >> (x % 8));
            if (nearest(c))
                r[x / 8] |= bit;
            else
                r[x / 8] &= static_cast<BYTE>(~bit);
            break;
        }
        case 4: {
            int idx = nearest(c);
            r[x / 2] = static_cast<BYTE>(x % 2 ? (r[x / 2] & 0xF0) | idx
                                              : (r[x / 2] & 0x0F) | (idx << 4));
            break;
        }
        case 8:
            r[x] = static_cast<BYTE>(nearest(c));
            break;
        case 16: {
            DWORD v = pack(GetRValue(c), masks[0]) | pack(GetGValue(c), masks[1]) |
                      pack(GetBValue(c), masks[2]);
            r[2 * x] = static_cast<BYTE>(v);
            r[2 * x + 1] = static_cast<BYTE>(v >> 8);
            break;
        }
        case 24:
            r[3 * x] = GetBValue(c);
            r[3 * x + 1] = GetGValue(c);
            r[3 * x + 2] = GetRValue(c);
            break;
        default: {
            DWORD v = pack(GetRValue(c), masks[0]) | pack(GetGValue(c), masks[1]) |
                      pack(GetBValue(c), masks[2]);
            memcpy(r + 4 * x, &v, 4);
            break;
        }
        }
    }
};

COLORREF pixelColor(unsigned long p, int depth)
{
    return depth == 1 ? (p ? RGB(255, 255, 255) : RGB(0, 0, 0)) : pixelToColor(p);
}

// Writes rows [first, first + count) (top-down numbering) of a DIB into a
// pixmap of `depth`.
void dibToPixmap(const DibFormat &f, const void *bits, int first, int count, Pixmap pm, int depth)
{
    Display *dpy = omDisplay;
    XImage *img = XGetImage(dpy, pm, 0, first, static_cast<unsigned>(f.width),
                            static_cast<unsigned>(count), AllPlanes, ZPixmap);
    if (!img)
        return;
    for (int y = 0; y < count; ++y) {
        const BYTE *r = f.row(bits, first + y);
        for (int x = 0; x < f.width; ++x)
            XPutPixel(img, x, y, colorToPixel(f.get(r, x), depth));
    }
    GC gc = XCreateGC(dpy, pm, 0, nullptr);
    XPutImage(dpy, pm, gc, img, 0, 0, 0, first, static_cast<unsigned>(f.width),
              static_cast<unsigned>(count));
    XFreeGC(dpy, gc);
    XDestroyImage(img);
}

void pixmapToDib(const DibFormat &f, void *bits, int first, int count, Pixmap pm, int depth)
{
    XImage *img = XGetImage(omDisplay, pm, 0, first, static_cast<unsigned>(f.width),
                            static_cast<unsigned>(count), AllPlanes, ZPixmap);
    if (!img)
        return;
    for (int y = 0; y < count; ++y) {
        BYTE *r = f.row(bits, first + y);
        for (int x = 0; x < f.width; ++x)
            f.put(r, x, pixelColor(XGetPixel(img, x, y), depth));
    }
    XDestroyImage(img);
}

DibFormat sectionFormat(const BitmapRecord &bm)
{
    DibFormat f;
    std::vector<BYTE> info(sizeof(BITMAPINFOHEADER) + 256 * sizeof(RGBQUAD));
    memcpy(info.data(), &bm.dibHeader, sizeof(BITMAPINFOHEADER));
    auto *bmi = reinterpret_cast<BITMAPINFO *>(info.data());
    if (bm.dibHeader.biCompression == BI_BITFIELDS)
        memcpy(info.data() + sizeof(BITMAPINFOHEADER), bm.dibColors.data(), 3 * sizeof(DWORD));
    else
        std::copy(bm.dibColors.begin(), bm.dibColors.end(), bmi->bmiColors);
    f.parse(bmi, DIB_RGB_COLORS);
    return f;
}

}  // namespace

// The pixmap of a DIB section takes the program's bits before GDI uses
// it, unless GDI has drawn since the last flush (then the pixmap is newer).
void syncDibToPixmap(BitmapRecord &bm)
{
    if (!bm.dibBits || bm.pixmapNewer || !omDisplay)
        return;
    DibFormat f = sectionFormat(bm);
    dibToPixmap(f, bm.dibBits, 0, f.height, bm.pixmap, bm.depth);
    bm.pixmapNewer = true;
}

void syncPixmapToDib(BitmapRecord &bm)
{
    if (!bm.dibBits || !bm.pixmapNewer || !omDisplay)
        return;
    DibFormat f = sectionFormat(bm);
    pixmapToDib(f, bm.dibBits, 0, f.height, bm.pixmap, bm.depth);
    bm.pixmapNewer = false;
}

void forgetDibSection(BitmapRecord *bm)
{
    std::lock_guard<std::mutex> g(g_dibLock);
    g_dibSections.erase(bm);
}

void flushDibSections()
{
    std::lock_guard<std::mutex> g(g_dibLock);
    OmAppLock lock;
    for (BitmapRecord *bm : g_dibSections)
        syncPixmapToDib(*bm);
}

HBITMAP bitmapFromDib(const BITMAPINFO *bmi, const void *bits, UINT usage, bool mono)
{
    DibFormat f;
    if (!bmi || !f.parse(bmi, usage))
        return nullptr;
    HBITMAP h = CreateBitmap(f.width, f.height, 1, mono ? 1 : 32, nullptr);
    BitmapRecord *bm = bitmapRecord(h);
    if (!bm || !bits)
        return h;
    OmAppLock lock;
    dibToPixmap(f, bits, 0, f.height, bm->pixmap, bm->depth);
    return h;
}

}  // namespace om::gdi

using namespace om::gdi;

extern "C" HBITMAP WINAPI CreateDIBSection(HDC hdc, const BITMAPINFO *pbmi, UINT usage,
                                           VOID **ppvBits, HANDLE hSection, DWORD offset)
{
    (void)hdc;
    (void)hSection;
    (void)offset;
    if (ppvBits)
        *ppvBits = nullptr;
    DibFormat f;
    if (!pbmi || !f.parse(pbmi, usage))
        return nullptr;
    return guarded<HBITMAP>("CreateDIBSection", nullptr, [&]() -> HBITMAP {
        HBITMAP h = CreateBitmap(f.width, f.height, 1, f.bpp == 1 ? 1 : 32, nullptr);
        BitmapRecord *bm = bitmapRecord(h);
        if (!bm || bm->stock)
            return nullptr;
        bm->dibBits = calloc(f.stride, static_cast<size_t>(f.height));
        if (!bm->dibBits) {
            DeleteObject(h);
            return nullptr;
        }
        bm->bitsPixel = f.bpp;
        bm->dibHeader = pbmi->bmiHeader;
        if (bm->dibHeader.biCompression == BI_BITFIELDS) {
            const BYTE *m = reinterpret_cast<const BYTE *>(pbmi) + pbmi->bmiHeader.biSize;
            bm->dibColors.resize(3);
            memcpy(bm->dibColors.data(), m, 3 * sizeof(DWORD));
        } else {
            bm->dibColors = f.colors;
            bm->dibHeader.biClrUsed = static_cast<DWORD>(f.colors.size());
        }
        bm->dibHeader.biSizeImage = static_cast<DWORD>(f.stride * static_cast<size_t>(f.height));
        {
            std::lock_guard<std::mutex> g(g_dibLock);
            g_dibSections.insert(bm);
        }
        if (ppvBits)
            *ppvBits = bm->dibBits;
        return h;
    });
}

extern "C" int WINAPI SetDIBits(HDC hdc, HBITMAP hbm, UINT start, UINT cLines, const VOID *lpBits,
                                const BITMAPINFO *lpbmi, UINT ColorUse)
{
    (void)hdc;
    BitmapRecord *bm = bitmapRecord(hbm);
    DibFormat f;
    if (!bm || !bm->pixmap || !lpBits || !lpbmi || !f.parse(lpbmi, ColorUse))
        return 0;
    return guarded<int>("SetDIBits", 0, [&]() -> int {
        OmAppLock lock;
        syncDibToPixmap(*bm);
        // Scan lines count from the bottom of a bottom-up DIB.
        int lines = std::min<int>(static_cast<int>(cLines), bm->height - static_cast<int>(start));
        lines = std::min(lines, f.height);
        if (lines <= 0)
            return 0;
        int w = std::min(f.width, bm->width);
        DibFormat clipped = f;
        clipped.width = w;
        int first = f.bottomUp ? bm->height - static_cast<int>(start) - lines : static_cast<int>(start);
        // The program's buffer holds `lines` rows starting at scan `start`.
        DibFormat part = clipped;
        part.height = lines;
        Pixmap pm = bm->pixmap;
        Display *dpy = omDisplay;
        XImage *img = XGetImage(dpy, pm, 0, first, static_cast<unsigned>(w),
                                static_cast<unsigned>(lines), AllPlanes, ZPixmap);
        if (!img)
            return 0;
        for (int y = 0; y < lines; ++y) {
            const BYTE *r = part.row(lpBits, y);
            for (int x = 0; x < w; ++x)
                XPutPixel(img, x, y, colorToPixel(part.get(r, x), bm->depth));
        }
        GC gc = XCreateGC(dpy, pm, 0, nullptr);
        XPutImage(dpy, pm, gc, img, 0, 0, 0, first, static_cast<unsigned>(w),
                  static_cast<unsigned>(lines));
        XFreeGC(dpy, gc);
        XDestroyImage(img);
        return lines;
    });
}

extern "C" int WINAPI GetDIBits(HDC hdc, HBITMAP hbm, UINT start, UINT cLines, LPVOID lpvBits,
                                LPBITMAPINFO lpbmi, UINT usage)
{
    BitmapRecord *bm = bitmapRecord(hbm);
    if (!dcRecord(hdc) || !bm || !lpbmi || lpbmi->bmiHeader.biSize < sizeof(BITMAPINFOHEADER))
        return 0;
    BITMAPINFOHEADER &h = lpbmi->bmiHeader;
    if (h.biBitCount == 0) {
        // Only the description is asked for.
        h.biWidth = bm->width;
        h.biHeight = bm->height;
        h.biPlanes = 1;
        h.biBitCount = static_cast<WORD>(bm->bitsPixel);
        h.biCompression = BI_RGB;
        h.biSizeImage =
            static_cast<DWORD>(((bm->width * bm->bitsPixel + 31) / 32) * 4 * bm->height);
        return bm->height;
    }
    if (h.biBitCount <= 8 && usage == DIB_RGB_COLORS) {
        // The colour table: black to white for monochrome, the default
        // palette's colours spread over the table otherwise.
        int n = 1 << h.biBitCount;
        for (int i = 0; i < n; ++i) {
            BYTE v = static_cast<BYTE>(i * 255 / (n - 1));
            lpbmi->bmiColors[i] = {v, v, v, 0};
        }
        if (h.biClrUsed == 0 || h.biClrUsed > static_cast<DWORD>(n))
            h.biClrUsed = 0;
    }
    h.biWidth = h.biWidth ? h.biWidth : bm->width;
    DibFormat f;
    if (!f.parse(lpbmi, usage))
        return 0;
    if (!lpvBits)
        return bm->height;
    return guarded<int>("GetDIBits", 0, [&]() -> int {
        OmAppLock lock;
        syncDibToPixmap(*bm);
        int lines = std::min<int>(static_cast<int>(cLines), bm->height - static_cast<int>(start));
        if (lines <= 0 || !bm->pixmap)
            return 0;
        int w = std::min(f.width, bm->width);
        int first = f.bottomUp ? bm->height - static_cast<int>(start) - lines : static_cast<int>(start);
        XImage *img = XGetImage(omDisplay, bm->pixmap, 0, first, static_cast<unsigned>(w),
                                static_cast<unsigned>(lines), AllPlanes, ZPixmap);
        if (!img)
            return 0;
        DibFormat part = f;
        part.height = lines;
        for (int y = 0; y < lines; ++y) {
            BYTE *r = part.row(lpvBits, y);
            for (int x = 0; x < w; ++x)
                part.put(r, x, pixelColor(XGetPixel(img, x, y), bm->depth));
        }
        XDestroyImage(img);
        return lines;
    });
}

extern "C" HBITMAP WINAPI CreateDIBitmap(HDC hdc, const BITMAPINFOHEADER *pbmih, DWORD flInit,
                                         const VOID *pjBits, const BITMAPINFO *pbmi, UINT iUsage)
{
    if (!pbmih)
        return nullptr;
    int height = pbmih->biHeight < 0 ? -pbmih->biHeight : pbmih->biHeight;
    HBITMAP h = hdc ? CreateCompatibleBitmap(hdc, pbmih->biWidth, height)
                    : CreateBitmap(pbmih->biWidth, height, 1, 1, nullptr);
    if (h && (flInit & CBM_INIT) && pjBits && pbmi)
        SetDIBits(hdc, h, 0, static_cast<UINT>(height), pjBits, pbmi, iUsage);
    return h;
}

extern "C" int WINAPI StretchDIBits(HDC hdc, int xDest, int yDest, int DestWidth, int DestHeight,
                                    int xSrc, int ySrc, int SrcWidth, int SrcHeight,
                                    const VOID *lpBits, const BITMAPINFO *lpbmi, UINT iUsage,
                                    DWORD rop)
{
    DibFormat f;
    if (!dcRecord(hdc) || !lpBits || !lpbmi || !f.parse(lpbmi, iUsage))
        return 0;
    HBITMAP bm = bitmapFromDib(lpbmi, lpBits, iUsage, false);
    if (!bm)
        return 0;
    HDC mem = CreateCompatibleDC(hdc);
    HGDIOBJ old = SelectObject(mem, bm);
    // DIB source rows count from the bottom of a bottom-up image.
    int sy = f.bottomUp ? f.height - ySrc - SrcHeight : ySrc;
    BOOL ok = StretchBlt(hdc, xDest, yDest, DestWidth, DestHeight, mem, xSrc, sy, SrcWidth,
                         SrcHeight, rop);
    SelectObject(mem, old);
    DeleteDC(mem);
    DeleteObject(bm);
    return ok ? std::abs(SrcHeight) : 0;
}

extern "C" int WINAPI SetDIBitsToDevice(HDC hdc, int xDest, int yDest, DWORD w, DWORD h, int xSrc,
                                        int ySrc, UINT StartScan, UINT cLines,
                                        const VOID *lpvBits, const BITMAPINFO *lpbmi,
                                        UINT ColorUse)
{
    DibFormat f;
    if (!dcRecord(hdc) || !lpvBits || !lpbmi || !f.parse(lpbmi, ColorUse))
        return 0;
    if (StartScan != 0 || static_cast<int>(cLines) < f.height) {
        // A band of the image: the buffer holds cLines rows from StartScan.
        std::vector<BYTE> info(lpbmi->bmiHeader.biSize + 256 * sizeof(RGBQUAD));
        memcpy(info.data(), lpbmi, std::min(info.size(), lpbmi->bmiHeader.biSize +
                                                             f.colors.size() * sizeof(RGBQUAD) +
                                                             3 * sizeof(DWORD)));
        auto *band = reinterpret_cast<BITMAPINFO *>(info.data());
        band->bmiHeader.biHeight = f.bottomUp ? static_cast<LONG>(cLines) : -static_cast<LONG>(cLines);
        int top = f.bottomUp ? f.height - static_cast<int>(StartScan) - static_cast<int>(cLines)
                             : static_cast<int>(StartScan);
        int srcTop = f.bottomUp ? f.height - ySrc - static_cast<int>(h) : ySrc;
        return StretchDIBits(hdc, xDest, yDest, static_cast<int>(w), static_cast<int>(h), xSrc,
                             static_cast<int>(cLines) - (srcTop - top) - static_cast<int>(h),
                             static_cast<int>(w), static_cast<int>(h), lpvBits, band, ColorUse,
                             SRCCOPY)
                   ? static_cast<int>(cLines)
                   : 0;
    }
    return StretchDIBits(hdc, xDest, yDest, static_cast<int>(w), static_cast<int>(h), xSrc, ySrc,
                         static_cast<int>(w), static_cast<int>(h), lpvBits, lpbmi, ColorUse,
                         SRCCOPY)
               ? f.height
               : 0;
}
