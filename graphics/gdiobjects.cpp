// Graphics objects in the shared handle table: pens, brushes, fonts'
// logical descriptions, palettes, the stock objects and the system-colour
// brushes of slots 1..31, GetObject, DeleteObject, and the system colours
// with their mapping to pixels of the display's visual.
#include "gdiprivate.h"


#include <X11/Xft/Xft.h>

#include <algorithm>
#include <cstring>
#include <mutex>

namespace om::gdi
{
namespace
{

// The classic scheme, indexed by COLOR_*.
COLORREF g_sysColors[31] = {
    RGB(192, 192, 192),  // COLOR_SCROLLBAR
    RGB(0, 128, 128),    // COLOR_BACKGROUND
    RGB(0, 0, 128),      // COLOR_ACTIVECAPTION
    RGB(128, 128, 128),  // COLOR_INACTIVECAPTION
    RGB(192, 192, 192),  // COLOR_MENU
    RGB(255, 255, 255),  // COLOR_WINDOW
    RGB(0, 0, 0),        // COLOR_WINDOWFRAME
    RGB(0, 0, 0),        // COLOR_MENUTEXT
    RGB(0, 0, 0),        // COLOR_WINDOWTEXT
    RGB(255, 255, 255),  // COLOR_CAPTIONTEXT
    RGB(192, 192, 192),  // COLOR_ACTIVEBORDER
    RGB(192, 192, 192),  // COLOR_INACTIVEBORDER
    RGB(128, 128, 128),  // COLOR_APPWORKSPACE
    RGB(0, 0, 128),      // COLOR_HIGHLIGHT
    RGB(255, 255, 255),  // COLOR_HIGHLIGHTTEXT
    RGB(192, 192, 192),  // COLOR_BTNFACE
    RGB(128, 128, 128),  // COLOR_BTNSHADOW
    RGB(128, 128, 128),  // COLOR_GRAYTEXT
    RGB(0, 0, 0),        // COLOR_BTNTEXT
    RGB(192, 192, 192),  // COLOR_INACTIVECAPTIONTEXT
    RGB(255, 255, 255),  // COLOR_BTNHIGHLIGHT
    RGB(0, 0, 0),        // COLOR_3DDKSHADOW
    RGB(192, 192, 192),  // COLOR_3DLIGHT
    RGB(0, 0, 0),        // COLOR_INFOTEXT
    RGB(255, 255, 225),  // COLOR_INFOBK
    RGB(192, 192, 192),  // 25, unused
    RGB(0, 0, 255),      // COLOR_HOTLIGHT
    RGB(16, 132, 208),   // COLOR_GRADIENTACTIVECAPTION
    RGB(181, 181, 181),  // COLOR_GRADIENTINACTIVECAPTION
    RGB(0, 0, 128),      // COLOR_MENUHILIGHT
    RGB(192, 192, 192),  // COLOR_MENUBAR
};
std::mutex g_sysColorLock;

// Channel layout of the display's visual, TrueColor expected; without a
// display the usual 24-bit layout, so pixels still round-trip.
struct ChannelLayout {
    unsigned long mask[3] = {0xFF0000, 0x00FF00, 0x0000FF};
    int shift[3] = {16, 8, 0};
    int bits[3] = {8, 8, 8};
};

ChannelLayout makeLayout(Display *dpy)
{
    ChannelLayout l;
    if (!dpy)
        return l;
    Visual *v = DefaultVisual(dpy, DefaultScreen(dpy));
    unsigned long masks[3] = {v->red_mask, v->green_mask, v->blue_mask};
    if (!masks[0] || !masks[1] || !masks[2])
        return l;
    for (int i = 0; i < 3; ++i) {
        l.mask[i] = masks[i];
        int s = 0;
        while (!((masks[i] >> s) & 1))
            ++s;
        int b = 0;
        while ((masks[i] >> (s + b)) & 1)
            ++b;
        l.shift[i] = s;
        l.bits[i] = b;
    }
    return l;
}

const ChannelLayout &layout()
{
    static const ChannelLayout l = makeLayout(display());
    return l;
}

// Stock objects, made once.  The pattern bitmap of a fresh memory DC is the
// stock 1x1 monochrome bitmap.
HGDIOBJ g_stock[STOCK_LAST + 1];
HBITMAP g_stockBitmap;
std::once_flag g_stockOnce;

HGDIOBJ stockBrush(UINT style, COLORREF c)
{
    auto *b = new BrushRecord;
    b->style = style;
    b->color = c;
    b->stock = true;
    return addObject(b);
}

HGDIOBJ stockPen(UINT style, COLORREF c)
{
    auto *p = new PenRecord;
    p->style = style;
    p->color = c;
    p->stock = true;
    return addObject(p);
}

HGDIOBJ stockFont(const char *face, int height, int pitch, int weight)
{
    auto *f = new FontRecord;
    f->log.lfHeight = height;
    f->log.lfWeight = weight;
    f->log.lfPitchAndFamily = static_cast<BYTE>(pitch);
    f->log.lfCharSet = ANSI_CHARSET;
    strncpy(f->log.lfFaceName, face, LF_FACESIZE - 1);
    f->stock = true;
    return addObject(f);
}

void makeStockObjects()
{
    g_stock[WHITE_BRUSH] = stockBrush(BS_SOLID, RGB(255, 255, 255));
    g_stock[LTGRAY_BRUSH] = stockBrush(BS_SOLID, RGB(192, 192, 192));
    g_stock[GRAY_BRUSH] = stockBrush(BS_SOLID, RGB(128, 128, 128));
    g_stock[DKGRAY_BRUSH] = stockBrush(BS_SOLID, RGB(64, 64, 64));
    g_stock[BLACK_BRUSH] = stockBrush(BS_SOLID, RGB(0, 0, 0));
    g_stock[NULL_BRUSH] = stockBrush(BS_NULL, 0);
    g_stock[WHITE_PEN] = stockPen(PS_SOLID, RGB(255, 255, 255));
    g_stock[BLACK_PEN] = stockPen(PS_SOLID, RGB(0, 0, 0));
    g_stock[NULL_PEN] = stockPen(PS_NULL, 0);
    g_stock[OEM_FIXED_FONT] = stockFont("Courier New", 12, FIXED_PITCH | FF_MODERN, FW_NORMAL);
    g_stock[ANSI_FIXED_FONT] = stockFont("Courier New", 13, FIXED_PITCH | FF_MODERN, FW_NORMAL);
    g_stock[ANSI_VAR_FONT] = stockFont("MS Sans Serif", 13, VARIABLE_PITCH | FF_SWISS, FW_NORMAL);
    g_stock[SYSTEM_FONT] = stockFont("System", 16, VARIABLE_PITCH | FF_SWISS, FW_BOLD);
    g_stock[DEVICE_DEFAULT_FONT] = stockFont("System", 16, VARIABLE_PITCH | FF_SWISS, FW_BOLD);
    g_stock[SYSTEM_FIXED_FONT] = stockFont("Courier New", 16, FIXED_PITCH | FF_MODERN, FW_NORMAL);
    g_stock[DEFAULT_GUI_FONT] = stockFont("MS Shell Dlg", -11, VARIABLE_PITCH | FF_SWISS,
                                          FW_NORMAL);
    auto *pal = new PaletteRecord;
    pal->stock = true;
    // The 20 static colours of the default palette.
    static const COLORREF statics[20] = {
        RGB(0, 0, 0),       RGB(128, 0, 0),     RGB(0, 128, 0),     RGB(128, 128, 0),
        RGB(0, 0, 128),     RGB(128, 0, 128),   RGB(0, 128, 128),   RGB(192, 192, 192),
        RGB(192, 220, 192), RGB(166, 202, 240), RGB(255, 251, 240), RGB(160, 160, 164),
        RGB(128, 128, 128), RGB(255, 0, 0),     RGB(0, 255, 0),     RGB(255, 255, 0),
        RGB(0, 0, 255),     RGB(255, 0, 255),   RGB(0, 255, 255),   RGB(255, 255, 255)};
    for (COLORREF c : statics)
        pal->entries.push_back({GetRValue(c), GetGValue(c), GetBValue(c), 0});
    g_stock[DEFAULT_PALETTE] = addObject(pal);
    auto *dcb = new BrushRecord;
    dcb->dcBrush = true;
    dcb->stock = true;
    g_stock[DC_BRUSH] = addObject(dcb);
    auto *dcp = new PenRecord;
    dcp->dcPen = true;
    dcp->stock = true;
    g_stock[DC_PEN] = addObject(dcp);
    auto *bm = new BitmapRecord;
    bm->width = bm->height = 1;
    bm->stock = true;
    g_stockBitmap = static_cast<HBITMAP>(addObject(bm));
}

// The system-colour brushes live in reserved slots from load time, so that
// a class registered before any drawing can name (HBRUSH)(COLOR_x + 1).
__attribute__((constructor)) void makeSysColorBrushes()
{
    for (uint32_t slot = kOmSysColorBrushFirstSlot; slot <= kOmSysColorBrushLastSlot; ++slot) {
        auto *b = new BrushRecord;
        b->sysColor = static_cast<int>(slot - 1);
        b->stock = true;
        omAllocReservedHandle(slot, OM_KIND_BRUSH, static_cast<GdiObject *>(b));
    }
}

int copyOut(void *dst, int size, const void *src, int full)
{
    if (!dst)
        return full;
    int n = std::min(size, full);
    if (n <= 0)
        return 0;
    memcpy(dst, src, static_cast<size_t>(n));
    return n;
}

}  // namespace

Region XRegion::copy(Region src)
{
    Region r = XCreateRegion();
    XUnionRegion(src, r, r);
    return r;
}

BrushRecord::~BrushRecord()
{
    if (pattern && omDisplay)
        XFreePixmap(omDisplay, pattern);
}

FontRecord::~FontRecord()
{
    if (xft && omDisplay)
        XftFontClose(omDisplay, static_cast<XftFont *>(xft));
}

BitmapRecord::~BitmapRecord()
{
    if (dibBits)
        forgetDibSection(this);
    if (pixmap && omDisplay)
        XFreePixmap(omDisplay, pixmap);
    free(dibBits);
}

Display *display()
{
    return omEnsureDisplay();
}

void ensureStockObjects()
{
    std::call_once(g_stockOnce, makeStockObjects);
}

HBITMAP stockBitmap()
{
    ensureStockObjects();
    return g_stockBitmap;
}

uint32_t objectKind(const void *h)
{
    uint32_t index = omHandleIndex(omHandleValue(h));
    if (index == 0 || index >= omHandlesCount.load(std::memory_order_acquire))
        return 0;
    uint32_t k = omHandlesTable[index].kind.load(std::memory_order_acquire);
    switch (k) {
    case OM_KIND_DC:
    case OM_KIND_BITMAP:
    case OM_KIND_BRUSH:
    case OM_KIND_FONT:
    case OM_KIND_PEN:
    case OM_KIND_REGION:
    case OM_KIND_PALETTE:
        return k;
    default:
        return 0;
    }
}

GdiObject *anyObject(const void *h)
{
    uint32_t k = objectKind(h);
    return k ? static_cast<GdiObject *>(omHandleRecord(omHandleValue(h), k)) : nullptr;
}

void *addObject(GdiObject *obj)
{
    uint32_t index = omAllocHandle(obj->kind, obj);
    if (!index) {
        omDebugWarning(OmDiag::HandleTableFull, "CreateObject");
        delete obj;
        return nullptr;
    }
    return reinterpret_cast<void *>(static_cast<uintptr_t>(omHandleFromIndex(index)));
}

void destroyObject(void *h, GdiObject *obj)
{
    omFreeHandle(omHandleValue(h));
    delete obj;
}

COLORREF sysColor(int index)
{
    if (index < 0 || index >= static_cast<int>(std::size(g_sysColors)))
        return 0;
    std::lock_guard<std::mutex> g(g_sysColorLock);
    return g_sysColors[index];
}

unsigned long colorToPixel(COLORREF color)
{
    if (color & 0x01000000)  // PALETTEINDEX: the default palette's entry
        color = RGB(0, 0, 0);
    const ChannelLayout &l = layout();
    unsigned v[3] = {GetRValue(color), GetGValue(color), GetBValue(color)};
    unsigned long pixel = 0;
    for (int i = 0; i < 3; ++i) {
        unsigned long c = l.bits[i] >= 8 ? (static_cast<unsigned long>(v[i]) << (l.bits[i] - 8))
                                         : (v[i] >> (8 - l.bits[i]));
        pixel |= (c << l.shift[i]) & l.mask[i];
    }
    return pixel;
}

unsigned long colorToPixel(COLORREF color, int depth)
{
    if (depth == 1) {
        // A monochrome surface keeps white for light colours only, as a
        // monochrome bitmap does.
        unsigned sum = GetRValue(color) + GetGValue(color) + GetBValue(color);
        return sum >= 3 * 128 ? 1 : 0;
    }
    return colorToPixel(color);
}

COLORREF pixelToColor(unsigned long pixel)
{
    const ChannelLayout &l = layout();
    unsigned v[3];
    for (int i = 0; i < 3; ++i) {
        unsigned long c = (pixel & l.mask[i]) >> l.shift[i];
        unsigned long maxv = (1ul << l.bits[i]) - 1;
        v[i] = static_cast<unsigned>(l.bits[i] >= 8 ? c >> (l.bits[i] - 8) : c * 255 / maxv);
    }
    return RGB(v[0], v[1], v[2]);
}

COLORREF brushColor(const BrushRecord &b, const DcRecord *dc)
{
    if (b.sysColor >= 0)
        return sysColor(b.sysColor);
    if (b.dcBrush)
        return dc ? dc->st.dcBrushColor : RGB(255, 255, 255);
    return b.color;
}

}  // namespace om::gdi

using namespace om::gdi;

// ---- System colours ------------------------------------------------------

extern "C" DWORD WINAPI GetSysColor(int nIndex)
{
    return sysColor(nIndex);
}

extern "C" HBRUSH WINAPI GetSysColorBrush(int nIndex)
{
    if (nIndex < 0 || nIndex > static_cast<int>(kOmSysColorBrushLastSlot - 1))
        return nullptr;
    return reinterpret_cast<HBRUSH>(static_cast<uintptr_t>(omHandleFromIndex(
        static_cast<uint32_t>(nIndex) + kOmSysColorBrushFirstSlot)));
}

extern "C" BOOL WINAPI SetSysColors(int cElements, const INT *lpaElements,
                                    const COLORREF *lpaRgbValues)
{
    if (cElements < 0 || (cElements > 0 && (!lpaElements || !lpaRgbValues)))
        return FALSE;
    std::lock_guard<std::mutex> g(g_sysColorLock);
    for (int i = 0; i < cElements; ++i) {
        int index = lpaElements[i];
        if (index >= 0 && index < static_cast<int>(std::size(g_sysColors)))
            g_sysColors[index] = lpaRgbValues[i] & 0x00FFFFFF;
    }
    return TRUE;
}

extern "C" OLMO_API unsigned long omGetSysColorPixel(int index)
{
    return colorToPixel(sysColor(index));
}

extern "C" OLMO_API unsigned long omColorToPixel(COLORREF color)
{
    return colorToPixel(color);
}

// ---- Pens and brushes ----------------------------------------------------

extern "C" HPEN WINAPI CreatePen(int iStyle, int cWidth, COLORREF color)
{
    return guarded<HPEN>("CreatePen", nullptr, [&]() -> HPEN {
        UINT style = static_cast<UINT>(iStyle) & PS_STYLE_MASK;
        if (style > PS_INSIDEFRAME)
            return nullptr;
        auto *p = new PenRecord;
        p->style = style;
        p->width = cWidth < 0 ? 0 : cWidth;
        // Styled lines exist only one pixel wide; wider ones draw solid.
        if (p->width > 1 && style >= PS_DASH && style <= PS_DASHDOTDOT)
            p->style = PS_SOLID;
        p->color = color;
        return static_cast<HPEN>(addObject(p));
    });
}

extern "C" HPEN WINAPI CreatePenIndirect(const LOGPEN *plpen)
{
    if (!plpen)
        return nullptr;
    return CreatePen(static_cast<int>(plpen->lopnStyle), plpen->lopnWidth.x, plpen->lopnColor);
}

extern "C" HPEN WINAPI ExtCreatePen(DWORD iPenStyle, DWORD cWidth, const LOGBRUSH *plbrush,
                                    DWORD cStyle, const DWORD *pstyle)
{
    (void)cStyle;
    (void)pstyle;
    if (!plbrush)
        return nullptr;
    COLORREF c = plbrush->lbStyle == BS_SOLID ? plbrush->lbColor : RGB(0, 0, 0);
    return CreatePen(static_cast<int>(iPenStyle & PS_STYLE_MASK), static_cast<int>(cWidth), c);
}

extern "C" HBRUSH WINAPI CreateSolidBrush(COLORREF color)
{
    return guarded<HBRUSH>("CreateSolidBrush", nullptr, [&]() -> HBRUSH {
        auto *b = new BrushRecord;
        b->color = color & 0x00FFFFFF;
        return static_cast<HBRUSH>(addObject(b));
    });
}

extern "C" HBRUSH WINAPI CreateHatchBrush(int iHatch, COLORREF color)
{
    if (iHatch < HS_HORIZONTAL || iHatch > HS_DIAGCROSS)
        return nullptr;
    return guarded<HBRUSH>("CreateHatchBrush", nullptr, [&]() -> HBRUSH {
        auto *b = new BrushRecord;
        b->style = BS_HATCHED;
        b->hatch = iHatch;
        b->color = color & 0x00FFFFFF;
        return static_cast<HBRUSH>(addObject(b));
    });
}

extern "C" HBRUSH WINAPI CreatePatternBrush(HBITMAP hbm)
{
    BitmapRecord *bm = bitmapRecord(hbm);
    if (!bm) {
        omDebugWarning(OmDiag::NotABitmap, "CreatePatternBrush");
        return nullptr;
    }
    return guarded<HBRUSH>("CreatePatternBrush", nullptr, [&]() -> HBRUSH {
        Display *dpy = display();
        if (!dpy || !bm->pixmap)
            return nullptr;
        // The brush keeps its own copy: the program may delete the bitmap.
        int w = std::min(bm->width, 8 * 64), h = std::min(bm->height, 8 * 64);
        Pixmap copy = XCreatePixmap(dpy, DefaultRootWindow(dpy), static_cast<unsigned>(w),
                                    static_cast<unsigned>(h), static_cast<unsigned>(bm->depth));
        GC gc = XCreateGC(dpy, copy, 0, nullptr);
        XCopyArea(dpy, bm->pixmap, copy, gc, 0, 0, static_cast<unsigned>(w),
                  static_cast<unsigned>(h), 0, 0);
        XFreeGC(dpy, gc);
        auto *b = new BrushRecord;
        b->style = BS_PATTERN;
        b->pattern = copy;
        b->patternDepth = bm->depth;
        b->patternWidth = w;
        b->patternHeight = h;
        return static_cast<HBRUSH>(addObject(b));
    });
}

extern "C" HBRUSH WINAPI CreateBrushIndirect(const LOGBRUSH *plbrush)
{
    if (!plbrush)
        return nullptr;
    switch (plbrush->lbStyle) {
    case BS_SOLID:
        return CreateSolidBrush(plbrush->lbColor);
    case BS_NULL:
        ensureStockObjects();
        return static_cast<HBRUSH>(GetStockObject(NULL_BRUSH));
    case BS_HATCHED:
        return CreateHatchBrush(static_cast<int>(plbrush->lbHatch), plbrush->lbColor);
    case BS_PATTERN:
        return CreatePatternBrush(reinterpret_cast<HBITMAP>(plbrush->lbHatch));
    default:
        return nullptr;
    }
}

// ---- Palettes ------------------------------------------------------------

extern "C" {
OLMO_API int ombUsesPalettes = 0;
}

extern "C" HPALETTE WINAPI CreatePalette(const LOGPALETTE *plpal)
{
    if (!plpal || plpal->palVersion != 0x300 || plpal->palNumEntries == 0)
        return nullptr;
    return guarded<HPALETTE>("CreatePalette", nullptr, [&]() -> HPALETTE {
        auto *p = new PaletteRecord;
        p->entries.assign(plpal->palPalEntry, plpal->palPalEntry + plpal->palNumEntries);
        return static_cast<HPALETTE>(addObject(p));
    });
}

extern "C" UINT WINAPI GetPaletteEntries(HPALETTE hpal, UINT iStart, UINT cEntries,
                                         LPPALETTEENTRY pPalEntries)
{
    PaletteRecord *p = paletteRecord(hpal);
    if (!p)
        return 0;
    UINT n = static_cast<UINT>(p->entries.size());
    if (!pPalEntries)
        return n;
    if (iStart >= n)
        return 0;
    UINT count = std::min(cEntries, n - iStart);
    std::copy_n(p->entries.begin() + iStart, count, pPalEntries);
    return count;
}

extern "C" UINT WINAPI SetPaletteEntries(HPALETTE hpal, UINT iStart, UINT cEntries,
                                         const PALETTEENTRY *pPalEntries)
{
    PaletteRecord *p = paletteRecord(hpal);
    if (!p || !pPalEntries || p->stock)
        return 0;
    UINT n = static_cast<UINT>(p->entries.size());
    if (iStart >= n)
        return 0;
    UINT count = std::min(cEntries, n - iStart);
    std::copy_n(pPalEntries, count, p->entries.begin() + iStart);
    return count;
}

extern "C" UINT WINAPI GetNearestPaletteIndex(HPALETTE h, COLORREF color)
{
    PaletteRecord *p = paletteRecord(h);
    if (!p || p->entries.empty())
        return CLR_INVALID;
    UINT best = 0;
    long bestDist = -1;
    for (size_t i = 0; i < p->entries.size(); ++i) {
        const PALETTEENTRY &e = p->entries[i];
        long dr = e.peRed - GetRValue(color), dg = e.peGreen - GetGValue(color),
             db = e.peBlue - GetBValue(color);
        long d = dr * dr + dg * dg + db * db;
        if (bestDist < 0 || d < bestDist) {
            bestDist = d;
            best = static_cast<UINT>(i);
        }
    }
    return best;
}

extern "C" HPALETTE WINAPI SelectPalette(HDC hdc, HPALETTE hPal, BOOL bForceBkgd)
{
    (void)bForceBkgd;
    DcRecord *dc = dcRecord(hdc);
    if (!dc || !paletteRecord(hPal))
        return nullptr;
    ensureStockObjects();
    HPALETTE old = dc->st.palette ? dc->st.palette
                                  : static_cast<HPALETTE>(GetStockObject(DEFAULT_PALETTE));
    dc->st.palette = hPal;
    return old;
}

// On a TrueColor visual every colour is exact, so realising maps nothing.
extern "C" UINT WINAPI RealizePalette(HDC hdc)
{
    if (!dcRecord(hdc))
        return GDI_ERROR;
    ombUsesPalettes = 1;
    return 0;
}

extern "C" BOOL WINAPI UnrealizeObject(HGDIOBJ h)
{
    return anyObject(h) != nullptr;
}

// ---- Generic object functions --------------------------------------------

extern "C" HGDIOBJ WINAPI GetStockObject(int i)
{
    if (i < 0 || i > STOCK_LAST)
        return nullptr;
    ensureStockObjects();
    return g_stock[i];
}

extern "C" DWORD WINAPI GetObjectType(HGDIOBJ h)
{
    switch (objectKind(h)) {
    case OM_KIND_DC: {
        DcRecord *dc = dcRecord(static_cast<HDC>(h));
        return dc->type == DcType::Memory ? OBJ_MEMDC : OBJ_DC;
    }
    case OM_KIND_BITMAP:
        return OBJ_BITMAP;
    case OM_KIND_BRUSH:
        return OBJ_BRUSH;
    case OM_KIND_FONT:
        return OBJ_FONT;
    case OM_KIND_PEN:
        return OBJ_PEN;
    case OM_KIND_REGION:
        return OBJ_REGION;
    case OM_KIND_PALETTE:
        return OBJ_PAL;
    default:
        return 0;
    }
}

extern "C" int WINAPI GetObjectA(HANDLE h, int c, LPVOID pv)
{
    if (c < 0)
        return 0;
    switch (objectKind(h)) {
    case OM_KIND_PEN: {
        PenRecord *p = penRecord(static_cast<HPEN>(h));
        LOGPEN lp{p->style, {p->width, 0}, p->color};
        return copyOut(pv, c, &lp, sizeof lp);
    }
    case OM_KIND_BRUSH: {
        BrushRecord *b = brushRecord(static_cast<HBRUSH>(h));
        LOGBRUSH lb{b->style, brushColor(*b, nullptr), static_cast<ULONG_PTR>(b->hatch)};
        return copyOut(pv, c, &lb, sizeof lb);
    }
    case OM_KIND_FONT: {
        FontRecord *f = fontRecord(static_cast<HFONT>(h));
        return copyOut(pv, c, &f->log, sizeof f->log);
    }
    case OM_KIND_BITMAP: {
        BitmapRecord *b = bitmapRecord(static_cast<HBITMAP>(h));
        BITMAP bm{};
        bm.bmWidth = b->width;
        bm.bmHeight = b->height;
        bm.bmPlanes = 1;
        bm.bmBitsPixel = static_cast<WORD>(b->bitsPixel);
        int rowBits = b->width * b->bitsPixel;
        bm.bmWidthBytes = b->dibBits ? ((rowBits + 31) / 32) * 4 : ((rowBits + 15) / 16) * 2;
        bm.bmBits = b->dibBits;
        if (b->dibBits && c >= static_cast<int>(sizeof(DIBSECTION)) && pv) {
            DIBSECTION ds{};
            ds.dsBm = bm;
            ds.dsBmih = b->dibHeader;
            return copyOut(pv, c, &ds, sizeof ds);
        }
        return copyOut(pv, c, &bm, sizeof bm);
    }
    case OM_KIND_PALETTE: {
        PaletteRecord *p = paletteRecord(static_cast<HPALETTE>(h));
        WORD n = static_cast<WORD>(p->entries.size());
        return copyOut(pv, c, &n, sizeof n);
    }
    default:
        return 0;
    }
}

extern "C" int WINAPI GetObjectW(HANDLE h, int c, LPVOID pv)
{
    if (objectKind(h) != OM_KIND_FONT)
        return GetObjectA(h, c, pv);
    if (c < 0)
        return 0;
    const LOGFONTA &a = fontRecord(static_cast<HFONT>(h))->log;
    LOGFONTW w{};
    memcpy(&w, &a, offsetof(LOGFONTA, lfFaceName));
    MultiByteToWideChar(CP_UTF8, 0, a.lfFaceName, -1, reinterpret_cast<LPWSTR>(w.lfFaceName),
                        LF_FACESIZE - 1);
    return copyOut(pv, c, &w, sizeof w);
}

extern "C" BOOL WINAPI DeleteObject(HGDIOBJ ho)
{
    uint32_t kind = objectKind(ho);
    if (!kind || kind == OM_KIND_DC)
        return FALSE;
    GdiObject *obj = anyObject(ho);
    // Stock objects live for the process, and Windows refuses to delete an
    // object a DC still has selected.
    if (obj->stock)
        return TRUE;
    if (obj->selectCount > 0)
        return FALSE;
    destroyObject(ho, obj);
    return TRUE;
}
