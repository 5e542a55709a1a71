// Device-dependent bitmaps (X pixmaps of depth 1 or the display's depth)
// and block transfers: PatBlt, BitBlt and StretchBlt with the common
// raster operations, converting between monochrome and colour surfaces as
// GDI does (text and background colours of the DCs).
#include "gdiprivate.h"

#include "graphics/omgdi.h"

#include <algorithm>
#include <cstring>

using namespace om::gdi;

namespace
{

int displayDepth(Display *dpy)
{
    return DefaultDepth(dpy, DefaultScreen(dpy));
}

// A bitmap's pixel in the Windows row layout of `bpp` bits, as a colour.
COLORREF readWindowsPixel(const BYTE *row, int x, int bpp)
{
    switch (bpp) {
    case 1:
        return (row[x / 8] & (0x80 >> (x % 8))) ? RGB(255, 255, 255) : RGB(0, 0, 0);
    case 16: {
        WORD v = static_cast<WORD>(row[2 * x] | (row[2 * x + 1] << 8));
        return RGB(((v >> 11) & 31) * 255 / 31, ((v >> 5) & 63) * 255 / 63, (v & 31) * 255 / 31);
    }
    case 24:
        return RGB(row[3 * x + 2], row[3 * x + 1], row[3 * x]);
    case 32:
        return RGB(row[4 * x + 2], row[4 * x + 1], row[4 * x]);
    default:
        return RGB(row[x], row[x], row[x]);
    }
}

HBITMAP makeBitmap(int width, int height, int bpp, const void *bits, int stride)
{
    Display *dpy = display();
    if (!dpy)
        return nullptr;
    OmAppLock lock;
    int depth = bpp == 1 ? 1 : displayDepth(dpy);
    Pixmap pm = XCreatePixmap(dpy, DefaultRootWindow(dpy), static_cast<unsigned>(width),
                              static_cast<unsigned>(height), static_cast<unsigned>(depth));
    GC gc = XCreateGC(dpy, pm, 0, nullptr);
    XSetForeground(dpy, gc, 0);
    XFillRectangle(dpy, pm, gc, 0, 0, static_cast<unsigned>(width), static_cast<unsigned>(height));
    if (bits) {
        XImage *img = XGetImage(dpy, pm, 0, 0, static_cast<unsigned>(width),
                                static_cast<unsigned>(height), AllPlanes, ZPixmap);
        if (img) {
            for (int y = 0; y < height; ++y) {
                const BYTE *row = static_cast<const BYTE *>(bits) + static_cast<size_t>(y) * stride;
                for (int x = 0; x < width; ++x)
                    XPutPixel(img, x, y, colorToPixel(readWindowsPixel(row, x, bpp), depth));
            }
            XPutImage(dpy, pm, gc, img, 0, 0, 0, 0, static_cast<unsigned>(width),
                      static_cast<unsigned>(height));
            XDestroyImage(img);
        }
    }
    XFreeGC(dpy, gc);
    auto *bm = new BitmapRecord;
    bm->width = width;
    bm->height = height;
    bm->depth = depth;
    bm->bitsPixel = bpp == 1 ? 1 : 32;
    bm->pixmap = pm;
    return static_cast<HBITMAP>(addObject(bm));
}

// Raster operations that X does in one step: the GX function applied with
// the source (or, for the pattern-only ones, the brush).
struct RopEntry {
    DWORD rop;
    int function;
    enum Use { Source, Pattern, Dest, PatSource } use;
};
const RopEntry kRops[] = {
    {SRCCOPY, GXcopy, RopEntry::Source},          {SRCPAINT, GXor, RopEntry::Source},
    {SRCAND, GXand, RopEntry::Source},            {SRCINVERT, GXxor, RopEntry::Source},
    {SRCERASE, GXandReverse, RopEntry::Source},   {NOTSRCCOPY, GXcopyInverted, RopEntry::Source},
    {NOTSRCERASE, GXnor, RopEntry::Source},       {MERGEPAINT, GXorInverted, RopEntry::Source},
    {PATCOPY, GXcopy, RopEntry::Pattern},         {PATINVERT, GXxor, RopEntry::Pattern},
    {DSTINVERT, GXinvert, RopEntry::Dest},        {BLACKNESS, GXclear, RopEntry::Dest},
    {WHITENESS, GXset, RopEntry::Dest},           {0x00AA0029, GXnoop, RopEntry::Dest},
    {MERGECOPY, GXand, RopEntry::PatSource},      {PATPAINT, GXor, RopEntry::PatSource},
};

const RopEntry *findRop(DWORD rop)
{
    for (const RopEntry &e : kRops)
        if (e.rop == rop)
            return &e;
    return nullptr;
}

// Copies (sx, sy, w, h) of a drawable of depth `sdepth` onto the prepared
// destination at device (dx, dy), with `function`.  Colour to monochrome
// makes pixels of the source DC's background colour white; monochrome to
// colour paints 0 bits in the destination's text colour and 1 bits in its
// background colour.
void copyArea(DcRecord &dst, Drawable dd, int dx, int dy, int w, int h, Drawable src, int sdepth,
              int sx, int sy, COLORREF srcBk, int function)
{
    Display *dpy = omDisplay;
    XGCValues v{};
    v.function = function;
    v.fill_style = FillSolid;
    XChangeGC(dpy, dst.gc, GCFunction | GCFillStyle, &v);
    dx += dst.originX;
    dy += dst.originY;
    if (sdepth == dst.depth) {
        XCopyArea(dpy, src, dd, dst.gc, sx, sy, static_cast<unsigned>(w), static_cast<unsigned>(h),
                  dx, dy);
    } else if (sdepth == 1) {
        XSetForeground(dpy, dst.gc, colorToPixel(dst.st.bkColor, dst.depth));
        XSetBackground(dpy, dst.gc, colorToPixel(dst.st.textColor, dst.depth));
        XCopyPlane(dpy, src, dd, dst.gc, sx, sy, static_cast<unsigned>(w),
                   static_cast<unsigned>(h), dx, dy, 1);
    } else {
        XImage *in = XGetImage(dpy, src, sx, sy, static_cast<unsigned>(w), static_cast<unsigned>(h),
                               AllPlanes, ZPixmap);
        if (!in)
            return;
        Pixmap mono = XCreatePixmap(dpy, dd, static_cast<unsigned>(w), static_cast<unsigned>(h),
                                    static_cast<unsigned>(dst.depth));
        XImage *out = XGetImage(dpy, mono, 0, 0, static_cast<unsigned>(w),
                                static_cast<unsigned>(h), AllPlanes, ZPixmap);
        unsigned long bk = colorToPixel(srcBk);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                XPutPixel(out, x, y, XGetPixel(in, x, y) == bk ? 1 : 0);
        GC gc = XCreateGC(dpy, mono, 0, nullptr);
        XPutImage(dpy, mono, gc, out, 0, 0, 0, 0, static_cast<unsigned>(w),
                  static_cast<unsigned>(h));
        XFreeGC(dpy, gc);
        XDestroyImage(in);
        XDestroyImage(out);
        XCopyArea(dpy, mono, dd, dst.gc, 0, 0, static_cast<unsigned>(w), static_cast<unsigned>(h),
                  dx, dy);
        XFreePixmap(dpy, mono);
    }
}

BOOL blitFromDrawable(DcRecord &dst, Drawable dd, int dx, int dy, int w, int h, Drawable src,
                      int sdepth, int sx, int sy, COLORREF srcBk, const RopEntry &rop)
{
    Display *dpy = omDisplay;
    if (rop.use == RopEntry::Source) {
        copyArea(dst, dd, dx, dy, w, h, src, sdepth, sx, sy, srcBk, rop.function);
        return TRUE;
    }
    // Pattern and source together: the source goes to a scratch pixmap of
    // the destination's depth, the brush is combined into it, and the
    // result is copied.
    Pixmap tmp = XCreatePixmap(dpy, dd, static_cast<unsigned>(w), static_cast<unsigned>(h),
                               static_cast<unsigned>(dst.depth));
    DcRecord scratch;
    scratch.depth = dst.depth;
    scratch.st = dst.st;
    scratch.st.clip.reset();
    scratch.width = w;
    scratch.height = h;
    scratch.gc = XCreateGC(dpy, tmp, 0, nullptr);
    XSetTSOrigin(dpy, scratch.gc, dst.st.brushOrg.x - dx, dst.st.brushOrg.y - dy);
    bool notSource = rop.rop == PATPAINT;
    copyArea(scratch, tmp, 0, 0, w, h, src, sdepth, sx, sy, srcBk,
             notSource ? GXcopyInverted : GXcopy);
    if (useBrush(scratch, dst.st.brush, rop.function))
        XFillRectangle(dpy, tmp, scratch.gc, 0, 0, static_cast<unsigned>(w),
                       static_cast<unsigned>(h));
    copyArea(dst, dd, dx, dy, w, h, tmp, dst.depth, 0, 0, srcBk, notSource ? GXor : GXcopy);
    XFreePixmap(dpy, tmp);
    // scratch's destructor frees its GC; it owns no handle.
    return TRUE;
}

}  // namespace

// ---- Bitmaps -----------------------------------------------------------------

extern "C" HBITMAP WINAPI CreateBitmap(int nWidth, int nHeight, UINT nPlanes, UINT nBitCount,
                                       const VOID *lpBits)
{
    if (nWidth < 0 || nHeight < 0 || nPlanes != 1 || nBitCount > 32)
        return nullptr;
    if (nWidth == 0 || nHeight == 0)
        return stockBitmap();
    int bpp = static_cast<int>(nBitCount);
    // Device-dependent rows are padded to 16 bits.
    int stride = ((nWidth * bpp + 15) / 16) * 2;
    return guarded<HBITMAP>("CreateBitmap", nullptr,
                            [&] { return makeBitmap(nWidth, nHeight, bpp, lpBits, stride); });
}

extern "C" HBITMAP WINAPI CreateBitmapIndirect(const BITMAP *pbm)
{
    if (!pbm)
        return nullptr;
    HBITMAP h = CreateBitmap(pbm->bmWidth, pbm->bmHeight, pbm->bmPlanes, pbm->bmBitsPixel, nullptr);
    if (h && pbm->bmBits && pbm->bmWidthBytes > 0) {
        BitmapRecord *bm = bitmapRecord(h);
        if (bm && !bm->stock) {
            DeleteObject(h);
            return guarded<HBITMAP>("CreateBitmapIndirect", nullptr, [&] {
                return makeBitmap(pbm->bmWidth, pbm->bmHeight, pbm->bmBitsPixel, pbm->bmBits,
                                  pbm->bmWidthBytes);
            });
        }
    }
    return h;
}

// Compatible with a memory DC means the depth of its selected bitmap, so a
// fresh memory DC gives monochrome bitmaps, as on Windows.
extern "C" HBITMAP WINAPI CreateCompatibleBitmap(HDC hdc, int cx, int cy)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc || cx < 0 || cy < 0)
        return nullptr;
    if (cx == 0 || cy == 0)
        return stockBitmap();
    int bpp = 32;
    if (dc->type == DcType::Memory) {
        BitmapRecord *bm = bitmapRecord(dc->st.bitmap);
        if (!bm || bm->depth == 1)
            bpp = 1;
    }
    return guarded<HBITMAP>("CreateCompatibleBitmap", nullptr,
                            [&] { return makeBitmap(cx, cy, bpp, nullptr, 0); });
}

extern "C" HBITMAP WINAPI CreateDiscardableBitmap(HDC hdc, int cx, int cy)
{
    return CreateCompatibleBitmap(hdc, cx, cy);
}

extern "C" LONG WINAPI GetBitmapBits(HBITMAP hbit, LONG cb, LPVOID lpvBits)
{
    BitmapRecord *bm = bitmapRecord(hbit);
    if (!bm)
        return 0;
    int stride = ((bm->width * bm->bitsPixel + 15) / 16) * 2;
    LONG total = stride * bm->height;
    if (!lpvBits)
        return total;
    if (!bm->pixmap || !omDisplay || cb <= 0)
        return 0;
    OmAppLock lock;
    XImage *img = XGetImage(omDisplay, bm->pixmap, 0, 0, static_cast<unsigned>(bm->width),
                            static_cast<unsigned>(bm->height), AllPlanes, ZPixmap);
    if (!img)
        return 0;
    std::vector<BYTE> out(static_cast<size_t>(total), 0);
    for (int y = 0; y < bm->height; ++y) {
        BYTE *row = out.data() + static_cast<size_t>(y) * stride;
        for (int x = 0; x < bm->width; ++x) {
            unsigned long p = XGetPixel(img, x, y);
            if (bm->bitsPixel == 1) {
                if (p)
                    row[x / 8] |= static_cast<BYTE>(0x80 >> (x % 8));
            } else {
                COLORREF c = pixelToColor(p);
                row[4 * x] = GetBValue(c);
                row[4 * x + 1] = GetGValue(c);
                row[4 * x + 2] = GetRValue(c);
            }
        }
    }
    XDestroyImage(img);
    LONG n = std::min(cb, total);
    memcpy(lpvBits, out.data(), static_cast<size_t>(n));
    return n;
}

extern "C" OLMO_API Pixmap omBitmapGetPixmap(HBITMAP hbm, int *width, int *height, int *depth)
{
    BitmapRecord *bm = bitmapRecord(hbm);
    if (!bm)
        return 0;
    if (width)
        *width = bm->width;
    if (height)
        *height = bm->height;
    if (depth)
        *depth = bm->depth;
    return bm->pixmap;
}

// ---- Block transfers -----------------------------------------------------------

extern "C" BOOL WINAPI PatBlt(HDC hdc, int x, int y, int w, int h, DWORD rop)
{
    const RopEntry *e = findRop(rop);
    if (!e || e->use == RopEntry::Source || e->use == RopEntry::PatSource)
        return FALSE;
    DcRecord *dc = dcRecord(hdc);
    if (!dc)
        return FALSE;
    OmAppLock lock;
    if (!prepareGC(*dc))
        return FALSE;
    RECT d = rectToDevice(*dc, x, y, x + w, y + h);
    if (d.right <= d.left || d.bottom <= d.top)
        return TRUE;
    Display *dpy = omDisplay;
    if (e->use == RopEntry::Pattern) {
        if (!useBrush(*dc, dc->st.brush, e->function))
            return TRUE;
    } else {
        XGCValues v{};
        v.function = e->function;
        v.fill_style = FillSolid;
        XChangeGC(dpy, dc->gc, GCFunction | GCFillStyle, &v);
    }
    XFillRectangle(dpy, dcDrawable(*dc), dc->gc, d.left + dc->originX, d.top + dc->originY,
                   static_cast<unsigned>(d.right - d.left), static_cast<unsigned>(d.bottom - d.top));
    return TRUE;
}

extern "C" BOOL WINAPI BitBlt(HDC hdc, int x, int y, int cx, int cy, HDC hdcSrc, int x1, int y1,
                              DWORD rop)
{
    const RopEntry *e = findRop(rop);
    if (!e) {
        omDebugWarning(OmDiag::UnsupportedValue, "BitBlt", static_cast<uint64_t>(rop));
        return FALSE;
    }
    if (e->use == RopEntry::Pattern || e->use == RopEntry::Dest)
        return PatBlt(hdc, x, y, cx, cy, rop);
    DcRecord *dst = dcRecord(hdc), *src = dcRecord(hdcSrc);
    if (!dst || !src)
        return FALSE;
    return guarded<BOOL>("BitBlt", FALSE, [&]() -> BOOL {
        OmAppLock lock;
        Drawable sd = dcDrawable(*src);
        if (!prepareGC(*dst) || !sd)
            return FALSE;
        RECT d = rectToDevice(*dst, x, y, x + cx, y + cy);
        POINT s{x1, y1};
        lpToDp(*src, s);
        int w = d.right - d.left, h = d.bottom - d.top;
        if (w <= 0 || h <= 0)
            return TRUE;
        return blitFromDrawable(*dst, dcDrawable(*dst), d.left, d.top, w, h, sd, src->depth,
                                s.x + src->originX, s.y + src->originY, src->st.bkColor, *e);
    });
}

extern "C" BOOL WINAPI StretchBlt(HDC hdcDest, int xDest, int yDest, int wDest, int hDest,
                                  HDC hdcSrc, int xSrc, int ySrc, int wSrc, int hSrc, DWORD rop)
{
    if (wDest == wSrc && hDest == hSrc && wDest > 0 && hDest > 0)
        return BitBlt(hdcDest, xDest, yDest, wDest, hDest, hdcSrc, xSrc, ySrc, rop);
    const RopEntry *e = findRop(rop);
    if (!e)
        return FALSE;
    if (e->use == RopEntry::Pattern || e->use == RopEntry::Dest)
        return PatBlt(hdcDest, xDest, yDest, wDest, hDest, rop);
    DcRecord *dst = dcRecord(hdcDest), *src = dcRecord(hdcSrc);
    if (!dst || !src || !wDest || !hDest || !wSrc || !hSrc)
        return FALSE;
    return guarded<BOOL>("StretchBlt", FALSE, [&]() -> BOOL {
        OmAppLock lock;
        Display *dpy = omDisplay;
        Drawable sd = dcDrawable(*src);
        if (!prepareGC(*dst) || !sd)
            return FALSE;
        // Device extents; a sign differing between source and destination
        // mirrors the image.
        POINT d0{xDest, yDest}, d1{xDest + wDest, yDest + hDest};
        lpToDp(*dst, d0);
        lpToDp(*dst, d1);
        POINT s0{xSrc, ySrc}, s1{xSrc + wSrc, ySrc + hSrc};
        lpToDp(*src, s0);
        lpToDp(*src, s1);
        int dw = std::abs(d1.x - d0.x), dh = std::abs(d1.y - d0.y);
        int sw = std::abs(s1.x - s0.x), sh = std::abs(s1.y - s0.y);
        if (!dw || !dh || !sw || !sh)
            return TRUE;
        bool flipX = (d1.x < d0.x) != (s1.x < s0.x), flipY = (d1.y < d0.y) != (s1.y < s0.y);
        // A negative extent runs leftwards (upwards) from its origin pixel.
        auto low = [](LONG a, LONG b) { return b < a ? b + 1 : a; };
        int sx = low(s0.x, s1.x) + src->originX, sy = low(s0.y, s1.y) + src->originY;
        XImage *in = XGetImage(dpy, sd, sx, sy, static_cast<unsigned>(sw),
                               static_cast<unsigned>(sh), AllPlanes, ZPixmap);
        if (!in)
            return FALSE;
        Pixmap tmp = XCreatePixmap(dpy, sd, static_cast<unsigned>(dw), static_cast<unsigned>(dh),
                                   static_cast<unsigned>(src->depth));
        XImage *out = XGetImage(dpy, tmp, 0, 0, static_cast<unsigned>(dw),
                                static_cast<unsigned>(dh), AllPlanes, ZPixmap);
        for (int y = 0; y < dh; ++y) {
            int yy = static_cast<int>(static_cast<long>(y) * sh / dh);
            if (flipY)
                yy = sh - 1 - yy;
            for (int x = 0; x < dw; ++x) {
                int xx = static_cast<int>(static_cast<long>(x) * sw / dw);
                if (flipX)
                    xx = sw - 1 - xx;
                XPutPixel(out, x, y, XGetPixel(in, xx, yy));
            }
        }
        GC gc = XCreateGC(dpy, tmp, 0, nullptr);
        XPutImage(dpy, tmp, gc, out, 0, 0, 0, 0, static_cast<unsigned>(dw),
                  static_cast<unsigned>(dh));
        XFreeGC(dpy, gc);
        XDestroyImage(in);
        XDestroyImage(out);
        BOOL ok = blitFromDrawable(*dst, dcDrawable(*dst), low(d0.x, d1.x), low(d0.y, d1.y), dw,
                                   dh, tmp, src->depth, 0, 0,
                                   src->st.bkColor, *e);
        XFreePixmap(dpy, tmp);
        return ok;
    });
}
