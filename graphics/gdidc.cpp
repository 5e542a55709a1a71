// Device contexts: memory, screen, information and window DCs, their
// state (selected objects, colours, modes, SaveDC/RestoreDC), the
// logical-to-device transform and map modes, device capabilities, and the
// preparation of a DC's X GC for drawing.
#include "gdiprivate.h"

#include "graphics/omgdi.h"

#include <X11/Xft/Xft.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace om::gdi
{
namespace
{

Pixmap g_hatch[HS_DIAGCROSS + 1];
Pixmap g_stockBitmapPixmap;

// 8x8 hatch stipples, one byte a row, least significant bit leftmost.
const unsigned char kHatchBits[HS_DIAGCROSS + 1][8] = {
    {0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xFF},  // HS_HORIZONTAL
    {0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80},  // HS_VERTICAL
    {0x80, 0x40, 0x20, 0x10, 0x08, 0x04, 0x02, 0x01},  // HS_FDIAGONAL
    {0x01, 0x02, 0x04, 0x08, 0x10, 0x20, 0x40, 0x80},  // HS_BDIAGONAL
    {0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0xFF},  // HS_CROSS
    {0x81, 0x42, 0x24, 0x18, 0x18, 0x24, 0x42, 0x81},  // HS_DIAGCROSS
};

Pixmap hatchStipple(Display *dpy, int hatch)
{
    if (!g_hatch[hatch])
        g_hatch[hatch] = XCreateBitmapFromData(
            dpy, DefaultRootWindow(dpy), reinterpret_cast<const char *>(kHatchBits[hatch]), 8, 8);
    return g_hatch[hatch];
}

void retain(HGDIOBJ h, int delta)
{
    if (GdiObject *o = anyObject(h))
        o->selectCount += delta;
}

int deviceCapsNoDc(int index);

}  // namespace

// The stock 1x1 bitmap's pixmap, made when a display first appears.
static Pixmap stockBitmapPixmap(Display *dpy)
{
    if (!g_stockBitmapPixmap)
        g_stockBitmapPixmap = XCreatePixmap(dpy, DefaultRootWindow(dpy), 1, 1, 1);
    return g_stockBitmapPixmap;
}

DcRecord::~DcRecord()
{
    if (xftDraw)
        XftDrawDestroy(static_cast<XftDraw *>(xftDraw));
    if (gc && omDisplay)
        XFreeGC(omDisplay, gc);
}

HDC createDC(DcType type)
{
    ensureStockObjects();
    auto *dc = new DcRecord;
    dc->type = type;
    dc->st.pen = static_cast<HPEN>(GetStockObject(BLACK_PEN));
    dc->st.brush = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
    dc->st.font = static_cast<HFONT>(GetStockObject(SYSTEM_FONT));
    dc->st.palette = static_cast<HPALETTE>(GetStockObject(DEFAULT_PALETTE));
    if (type == DcType::Memory) {
        dc->st.bitmap = stockBitmap();
        dc->width = dc->height = 1;
        dc->depth = 1;
    } else if (type == DcType::Screen || type == DcType::Info) {
        Display *dpy = omDisplay;
        dc->width = dpy ? DisplayWidth(dpy, DefaultScreen(dpy)) : 0;
        dc->height = dpy ? DisplayHeight(dpy, DefaultScreen(dpy)) : 0;
        dc->depth = dpy ? DefaultDepth(dpy, DefaultScreen(dpy)) : 24;
    } else {
        dc->depth = omDisplay ? DefaultDepth(omDisplay, DefaultScreen(omDisplay)) : 24;
    }
    return static_cast<HDC>(addObject(dc));
}

void deleteDC(HDC h, DcRecord &dc)
{
    retain(dc.st.pen, -1);
    retain(dc.st.brush, -1);
    retain(dc.st.font, -1);
    retain(dc.st.palette, -1);
    if (dc.st.bitmap) {
        retain(dc.st.bitmap, -1);
        if (BitmapRecord *bm = bitmapRecord(dc.st.bitmap))
            if (bm->selectedInto == h)
                bm->selectedInto = nullptr;
    }
    destroyObject(h, &dc);
}

void selectBitmapInto(DcRecord &dc, HBITMAP hbm)
{
    BitmapRecord *bm = bitmapRecord(hbm);
    dc.st.bitmap = hbm;
    dc.width = bm->width;
    dc.height = bm->height;
    if (dc.depth != bm->depth && dc.gc && omDisplay) {
        XFreeGC(omDisplay, dc.gc);
        dc.gc = nullptr;
    }
    dc.depth = bm->depth;
    dc.drawable = bm->pixmap;
}

Drawable dcDrawable(DcRecord &dc)
{
    switch (dc.type) {
    case DcType::Memory: {
        BitmapRecord *bm = bitmapRecord(dc.st.bitmap);
        if (!bm)
            return 0;
        if (bm->dibBits)
            syncDibToPixmap(*bm);
        if (!bm->pixmap && bm->stock) {
            Display *dpy = display();
            if (!dpy)
                return 0;
            return stockBitmapPixmap(dpy);
        }
        return bm->pixmap;
    }
    case DcType::Screen: {
        Display *dpy = display();
        if (!dpy)
            return 0;
        if (!dc.width) {
            dc.width = DisplayWidth(dpy, DefaultScreen(dpy));
            dc.height = DisplayHeight(dpy, DefaultScreen(dpy));
            dc.depth = DefaultDepth(dpy, DefaultScreen(dpy));
        }
        return DefaultRootWindow(dpy);
    }
    case DcType::Info:
        return 0;
    default:
        return dc.drawable;
    }
}

Region rectRegion(int l, int t, int r, int b)
{
    Region reg = XCreateRegion();
    if (r > l && b > t) {
        XRectangle xr{static_cast<short>(l), static_cast<short>(t),
                      static_cast<unsigned short>(r - l), static_cast<unsigned short>(b - t)};
        XUnionRectWithRegion(&xr, reg, reg);
    }
    return reg;
}

Region effectiveClip(DcRecord &dc)
{
    Region r = rectRegion(0, 0, dc.width, dc.height);
    if (dc.sysClip)
        XIntersectRegion(r, dc.sysClip.get(), r);
    if (dc.st.clip)
        XIntersectRegion(r, dc.st.clip.get(), r);
    return r;
}

bool prepareGC(DcRecord &dc)
{
    Drawable d = dcDrawable(dc);
    Display *dpy = omDisplay;
    if (!d || !dpy)
        return false;
    if (!dc.gc) {
        XGCValues v{};
        v.graphics_exposures = False;
        dc.gc = XCreateGC(dpy, d, GCGraphicsExposures, &v);
    }
    Region clip = effectiveClip(dc);
    XOffsetRegion(clip, dc.originX, dc.originY);
    XSetRegion(dpy, dc.gc, clip);
    XDestroyRegion(clip);
    XSetTSOrigin(dpy, dc.gc, dc.originX + dc.st.brushOrg.x, dc.originY + dc.st.brushOrg.y);
    return true;
}

int rop2Function(int rop2)
{
    static const int table[17] = {GXcopy,   GXclear,       GXnor,  GXandInverted, GXcopyInverted,
                                  GXandReverse, GXinvert,  GXxor,  GXnand,        GXand,
                                  GXequiv,  GXnoop,        GXorInverted, GXcopy,  GXorReverse,
                                  GXor,     GXset};
    return rop2 >= R2_BLACK && rop2 <= R2_WHITE ? table[rop2] : GXcopy;
}

bool usePen(DcRecord &dc)
{
    PenRecord *p = penRecord(dc.st.pen);
    if (!p || p->style == PS_NULL)
        return false;
    Display *dpy = omDisplay;
    COLORREF c = p->dcPen ? dc.st.dcPenColor : p->color;
    XGCValues v{};
    v.foreground = colorToPixel(c, dc.depth);
    v.background = colorToPixel(dc.st.bkColor, dc.depth);
    v.function = rop2Function(dc.st.rop2);
    v.line_width = p->width <= 1 ? 0 : p->width;
    v.cap_style = p->width <= 1 ? CapNotLast : CapRound;
    v.join_style = p->width <= 1 ? JoinMiter : JoinRound;
    v.fill_style = FillSolid;
    v.line_style = LineSolid;
    unsigned long mask = GCForeground | GCBackground | GCFunction | GCLineWidth | GCCapStyle |
                         GCJoinStyle | GCFillStyle | GCLineStyle;
    if (p->style >= PS_DASH && p->style <= PS_DASHDOTDOT) {
        static const char dash[] = {18, 6}, dot[] = {3, 3}, dashDot[] = {9, 6, 3, 6},
                          dashDotDot[] = {9, 3, 3, 3, 3, 3};
        const char *list[] = {nullptr, dash, dot, dashDot, dashDotDot};
        int lengths[] = {0, 2, 2, 4, 6};
        v.line_style = dc.st.bkMode == OPAQUE ? LineDoubleDash : LineOnOffDash;
        XSetDashes(dpy, dc.gc, 0, list[p->style], lengths[p->style]);
    }
    XChangeGC(dpy, dc.gc, mask, &v);
    return true;
}

bool useBrush(DcRecord &dc, HBRUSH brush, int function)
{
    BrushRecord *b = brushRecord(brush);
    if (!b || b->style == BS_NULL)
        return false;
    Display *dpy = omDisplay;
    XGCValues v{};
    v.function = function;
    v.fill_style = FillSolid;
    unsigned long mask = GCFunction | GCFillStyle | GCForeground | GCBackground;
    if (b->style == BS_HATCHED) {
        v.foreground = colorToPixel(b->color, dc.depth);
        v.background = colorToPixel(dc.st.bkColor, dc.depth);
        v.stipple = hatchStipple(dpy, b->hatch);
        v.fill_style = dc.st.bkMode == OPAQUE ? FillOpaqueStippled : FillStippled;
        mask |= GCStipple;
    } else if (b->style == BS_PATTERN && b->pattern) {
        if (b->patternDepth == dc.depth) {
            v.tile = b->pattern;
            v.fill_style = FillTiled;
            mask |= GCTile;
        } else if (b->patternDepth == 1) {
            // Monochrome pattern: 0 bits take the text colour, 1 bits the
            // background colour.
            v.foreground = colorToPixel(dc.st.bkColor, dc.depth);
            v.background = colorToPixel(dc.st.textColor, dc.depth);
            v.stipple = b->pattern;
            v.fill_style = FillOpaqueStippled;
            mask |= GCStipple;
        } else {
            v.foreground = colorToPixel(RGB(255, 255, 255), dc.depth);
        }
    } else {
        v.foreground = colorToPixel(brushColor(*b, &dc), dc.depth);
    }
    XChangeGC(dpy, dc.gc, mask, &v);
    return true;
}

// ---- Coordinates -----------------------------------------------------------

static long mulDivRound(long v, long num, long den)
{
    if (den == 0)
        return v;
    return std::lround(static_cast<double>(v) * num / den);
}

void lpToDp(const DcRecord &dc, POINT &p)
{
    const DcState &s = dc.st;
    p.x = static_cast<LONG>(mulDivRound(p.x - s.windowOrg.x, s.viewportExt.cx, s.windowExt.cx) +
                            s.viewportOrg.x);
    p.y = static_cast<LONG>(mulDivRound(p.y - s.windowOrg.y, s.viewportExt.cy, s.windowExt.cy) +
                            s.viewportOrg.y);
}

void dpToLp(const DcRecord &dc, POINT &p)
{
    const DcState &s = dc.st;
    p.x = static_cast<LONG>(mulDivRound(p.x - s.viewportOrg.x, s.windowExt.cx, s.viewportExt.cx) +
                            s.windowOrg.x);
    p.y = static_cast<LONG>(mulDivRound(p.y - s.viewportOrg.y, s.windowExt.cy, s.viewportExt.cy) +
                            s.windowOrg.y);
}

RECT rectToDevice(const DcRecord &dc, int l, int t, int r, int b)
{
    POINT a{l, t}, z{r, b};
    lpToDp(dc, a);
    lpToDp(dc, z);
    return RECT{std::min(a.x, z.x), std::min(a.y, z.y), std::max(a.x, z.x), std::max(a.y, z.y)};
}

int scaleX(const DcRecord &dc, int len)
{
    return static_cast<int>(
        std::labs(mulDivRound(len, dc.st.viewportExt.cx, dc.st.windowExt.cx)));
}

int scaleY(const DcRecord &dc, int len)
{
    return static_cast<int>(
        std::labs(mulDivRound(len, dc.st.viewportExt.cy, dc.st.windowExt.cy)));
}

namespace
{

// MM_ISOTROPIC keeps one unit the same size on both axes: the viewport
// extent shrinks on the axis that would stretch more.
void isotropicAdjust(DcState &s)
{
    if (s.mapMode != MM_ISOTROPIC || !s.windowExt.cx || !s.windowExt.cy)
        return;
    double sx = std::fabs(static_cast<double>(s.viewportExt.cx) / s.windowExt.cx);
    double sy = std::fabs(static_cast<double>(s.viewportExt.cy) / s.windowExt.cy);
    double scale = std::min(sx, sy);
    auto withSign = [](double mag, long sign) {
        return static_cast<LONG>(std::lround(sign < 0 ? -mag : mag));
    };
    s.viewportExt.cx = withSign(scale * std::labs(s.windowExt.cx), s.viewportExt.cx);
    s.viewportExt.cy = withSign(scale * std::labs(s.windowExt.cy), s.viewportExt.cy);
}

int deviceCapsNoDc(int index)
{
    Display *dpy = omDisplay;
    int scr = dpy ? DefaultScreen(dpy) : 0;
    switch (index) {
    case DRIVERVERSION:
        return 0x4000;
    case TECHNOLOGY:
        return DT_RASDISPLAY;
    case HORZSIZE:
        return dpy ? DisplayWidthMM(dpy, scr) : 270;
    case VERTSIZE:
        return dpy ? DisplayHeightMM(dpy, scr) : 203;
    case HORZRES:
        return dpy ? DisplayWidth(dpy, scr) : 1024;
    case VERTRES:
        return dpy ? DisplayHeight(dpy, scr) : 768;
    case BITSPIXEL:
        return dpy ? (DefaultDepth(dpy, scr) > 16 ? 32 : DefaultDepth(dpy, scr)) : 32;
    case PLANES:
        return 1;
    case NUMBRUSHES:
    case NUMPENS:
    case NUMCOLORS:
        return -1;
    case NUMFONTS:
        return 0;
    case ASPECTX:
    case ASPECTY:
        return 36;
    case ASPECTXY:
        return 51;
    case LOGPIXELSX:
    case LOGPIXELSY:
        return 96;
    case SIZEPALETTE:
    case NUMRESERVED:
        return 0;
    case COLORRES:
        return 24;
    case CLIPCAPS:
        return CP_RECTANGLE | CP_REGION;
    case RASTERCAPS:
        return RC_BITBLT | RC_BITMAP64 | RC_DI_BITMAP | RC_DIBTODEV | RC_STRETCHBLT |
               RC_STRETCHDIB;
    case CURVECAPS:
        return CC_CIRCLES | CC_PIE | CC_CHORD | CC_ELLIPSES | CC_WIDE | CC_STYLED |
               CC_WIDESTYLED | CC_INTERIORS | CC_ROUNDRECT;
    case LINECAPS:
        return LC_POLYLINE | LC_WIDE | LC_STYLED | LC_WIDESTYLED | LC_INTERIORS;
    case POLYGONALCAPS:
        return PC_POLYGON | PC_RECTANGLE | PC_WINDPOLYGON | PC_SCANLINE | PC_WIDE | PC_STYLED |
               PC_WIDESTYLED | PC_INTERIORS;
    case TEXTCAPS:
        return TC_OP_CHARACTER | TC_CR_ANY | TC_SA_DOUBLE | TC_SA_INTEGER | TC_UA_ABLE |
               TC_SO_ABLE | TC_RA_ABLE;
    case VREFRESH:
        return 60;
    case DESKTOPHORZRES:
        return deviceCapsNoDc(HORZRES);
    case DESKTOPVERTRES:
        return deviceCapsNoDc(VERTRES);
    default:
        return 0;
    }
}

void setMetricExtents(DcState &s, int unitsPerMmTimes10)
{
    // Units per device pixel from the screen's physical size; y grows up.
    s.windowExt = {deviceCapsNoDc(HORZSIZE) * unitsPerMmTimes10 / 10,
                   deviceCapsNoDc(VERTSIZE) * unitsPerMmTimes10 / 10};
    s.viewportExt = {deviceCapsNoDc(HORZRES), -deviceCapsNoDc(VERTRES)};
}

}  // namespace
}  // namespace om::gdi

using namespace om::gdi;

extern "C" {
OLMO_API HDC hGlobalDC = nullptr;
}

namespace
{
// The DC controls pass with WM_CTLCOLOR*; it must exist before any window
// does, and needs no display until something draws on it.
__attribute__((constructor(200))) void makeGlobalDC()
{
    hGlobalDC = createDC(DcType::Screen);
}
}  // namespace

// ---- Creating and deleting -----------------------------------------------

extern "C" HDC WINAPI CreateCompatibleDC(HDC hdc)
{
    if (hdc && !dcRecord(hdc))
        return nullptr;
    return guarded<HDC>("CreateCompatibleDC", nullptr, [] { return createDC(DcType::Memory); });
}

static bool isDisplayDevice(LPCSTR driver, LPCSTR device)
{
    const char *name = device && *device ? device : driver;
    return name && (!strcasecmp(name, "DISPLAY") || !strcasecmp(name, "\\\\.\\DISPLAY1"));
}

extern "C" HDC WINAPI CreateDCA(LPCSTR pwszDriver, LPCSTR pwszDevice, LPCSTR pszPort,
                                const DEVMODEA *pdm)
{
    (void)pszPort;
    (void)pdm;
    if (!isDisplayDevice(pwszDriver, pwszDevice))
        return nullptr;
    return guarded<HDC>("CreateDCA", nullptr, [] { return createDC(DcType::Screen); });
}

extern "C" HDC WINAPI CreateICA(LPCSTR pszDriver, LPCSTR pszDevice, LPCSTR pszPort,
                                const DEVMODEA *pdm)
{
    (void)pszPort;
    (void)pdm;
    if (!isDisplayDevice(pszDriver, pszDevice))
        return nullptr;
    return guarded<HDC>("CreateICA", nullptr, [] { return createDC(DcType::Info); });
}

extern "C" BOOL WINAPI DeleteDC(HDC hdc)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc || hdc == hGlobalDC)
        return FALSE;
    deleteDC(hdc, *dc);
    return TRUE;
}

extern "C" OLMO_API HDC omCreateDrawableDC(Drawable drawable, int width, int height)
{
    if (!drawable || width < 0 || height < 0)
        return nullptr;
    HDC h = createDC(DcType::Drawable);
    if (DcRecord *dc = dcRecord(h)) {
        dc->drawable = drawable;
        dc->width = width;
        dc->height = height;
    }
    return h;
}

extern "C" OLMO_API Drawable omDCGetDrawable(HDC hdc)
{
    DcRecord *dc = dcRecord(hdc);
    return dc ? dcDrawable(*dc) : 0;
}

extern "C" OLMO_API GC omDCGetGC(HDC hdc)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc || !prepareGC(*dc))
        return nullptr;
    return dc->gc;
}

extern "C" OLMO_API BOOL omDCSetSystemClip(HDC hdc, Region region)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc)
        return FALSE;
    dc->sysClip.reset(region ? XRegion::copy(region) : nullptr);
    return TRUE;
}

// ---- Selecting objects ---------------------------------------------------

extern "C" HGDIOBJ WINAPI SelectObject(HDC hdc, HGDIOBJ h)
{
    DcRecord *dc = dcRecord(hdc);
    uint32_t kind = objectKind(h);
    if (!dc || !kind)
        return nullptr;
    return guarded<HGDIOBJ>("SelectObject", nullptr, [&]() -> HGDIOBJ {
        HGDIOBJ old = nullptr;
        switch (kind) {
        case OM_KIND_PEN:
            old = dc->st.pen;
            dc->st.pen = static_cast<HPEN>(h);
            break;
        case OM_KIND_BRUSH:
            old = dc->st.brush;
            dc->st.brush = static_cast<HBRUSH>(h);
            break;
        case OM_KIND_FONT:
            old = dc->st.font;
            dc->st.font = static_cast<HFONT>(h);
            break;
        case OM_KIND_BITMAP: {
            if (dc->type != DcType::Memory)
                return nullptr;
            BitmapRecord *bm = bitmapRecord(static_cast<HBITMAP>(h));
            // A bitmap is selected into one memory DC at a time.
            if (bm->selectedInto && bm->selectedInto != hdc && !bm->stock)
                return nullptr;
            old = dc->st.bitmap;
            if (BitmapRecord *prev = bitmapRecord(dc->st.bitmap))
                if (prev->selectedInto == hdc)
                    prev->selectedInto = nullptr;
            bm->selectedInto = hdc;
            selectBitmapInto(*dc, static_cast<HBITMAP>(h));
            break;
        }
        case OM_KIND_REGION: {
            int r = SelectClipRgn(hdc, static_cast<HRGN>(h));
            return reinterpret_cast<HGDIOBJ>(static_cast<intptr_t>(r));
        }
        default:
            return nullptr;
        }
        retain(old, -1);
        retain(h, +1);
        return old;
    });
}

extern "C" HGDIOBJ WINAPI GetCurrentObject(HDC hdc, UINT type)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc)
        return nullptr;
    switch (type) {
    case OBJ_PEN:
        return dc->st.pen;
    case OBJ_BRUSH:
        return dc->st.brush;
    case OBJ_FONT:
        return dc->st.font;
    case OBJ_BITMAP:
        return dc->type == DcType::Memory ? dc->st.bitmap : nullptr;
    case OBJ_PAL:
        return dc->st.palette;
    default:
        return nullptr;
    }
}

// ---- Colours and modes ---------------------------------------------------

// The plain setters answer the previous value, or the failure value for a
// bad DC.
template <class T> static T setField(HDC hdc, T DcState::*field, T value, T failure)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc)
        return failure;
    T old = dc->st.*field;
    dc->st.*field = value;
    return old;
}

// Mode setters refuse values outside their range with 0.
static int setMode(HDC hdc, int DcState::*field, int mode, int lo, int hi)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc || mode < lo || mode > hi)
        return 0;
    int old = dc->st.*field;
    dc->st.*field = mode;
    return old;
}

template <class T> static T getField(HDC hdc, T DcState::*field, T failure)
{
    DcRecord *dc = dcRecord(hdc);
    return dc ? dc->st.*field : failure;
}

static int getMode(HDC hdc, int DcState::*field)
{
    return getField(hdc, field, 0);
}

extern "C" COLORREF WINAPI SetTextColor(HDC hdc, COLORREF value)
{
    return setField(hdc, &DcState::textColor, value, COLORREF(CLR_INVALID));
}

extern "C" COLORREF WINAPI GetTextColor(HDC hdc)
{
    return getField(hdc, &DcState::textColor, COLORREF(CLR_INVALID));
}

extern "C" COLORREF WINAPI SetBkColor(HDC hdc, COLORREF value)
{
    return setField(hdc, &DcState::bkColor, value, COLORREF(CLR_INVALID));
}

extern "C" COLORREF WINAPI GetBkColor(HDC hdc)
{
    return getField(hdc, &DcState::bkColor, COLORREF(CLR_INVALID));
}

extern "C" COLORREF WINAPI SetDCBrushColor(HDC hdc, COLORREF value)
{
    return setField(hdc, &DcState::dcBrushColor, value, COLORREF(CLR_INVALID));
}

extern "C" COLORREF WINAPI GetDCBrushColor(HDC hdc)
{
    return getField(hdc, &DcState::dcBrushColor, COLORREF(CLR_INVALID));
}

extern "C" COLORREF WINAPI SetDCPenColor(HDC hdc, COLORREF value)
{
    return setField(hdc, &DcState::dcPenColor, value, COLORREF(CLR_INVALID));
}

extern "C" COLORREF WINAPI GetDCPenColor(HDC hdc)
{
    return getField(hdc, &DcState::dcPenColor, COLORREF(CLR_INVALID));
}

extern "C" UINT WINAPI SetTextAlign(HDC hdc, UINT value)
{
    return setField(hdc, &DcState::textAlign, value, UINT(GDI_ERROR));
}

extern "C" UINT WINAPI GetTextAlign(HDC hdc)
{
    return getField(hdc, &DcState::textAlign, UINT(GDI_ERROR));
}


extern "C" int WINAPI SetBkMode(HDC hdc, int mode)
{
    return setMode(hdc, &DcState::bkMode, mode, TRANSPARENT, OPAQUE);
}

extern "C" int WINAPI GetBkMode(HDC hdc)
{
    return getMode(hdc, &DcState::bkMode);
}

extern "C" int WINAPI SetROP2(HDC hdc, int mode)
{
    return setMode(hdc, &DcState::rop2, mode, R2_BLACK, R2_WHITE);
}

extern "C" int WINAPI GetROP2(HDC hdc)
{
    return getMode(hdc, &DcState::rop2);
}

extern "C" int WINAPI SetPolyFillMode(HDC hdc, int mode)
{
    return setMode(hdc, &DcState::polyFillMode, mode, ALTERNATE, WINDING);
}

extern "C" int WINAPI GetPolyFillMode(HDC hdc)
{
    return getMode(hdc, &DcState::polyFillMode);
}

extern "C" int WINAPI SetStretchBltMode(HDC hdc, int mode)
{
    return setMode(hdc, &DcState::stretchMode, mode, BLACKONWHITE, HALFTONE);
}

extern "C" int WINAPI GetStretchBltMode(HDC hdc)
{
    return getMode(hdc, &DcState::stretchMode);
}

extern "C" int WINAPI SetArcDirection(HDC hdc, int mode)
{
    return setMode(hdc, &DcState::arcDirection, mode, AD_COUNTERCLOCKWISE, AD_CLOCKWISE);
}

extern "C" int WINAPI GetArcDirection(HDC hdc)
{
    return getMode(hdc, &DcState::arcDirection);
}


extern "C" int WINAPI SetTextCharacterExtra(HDC hdc, int extra)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc)
        return static_cast<int>(0x80000000);
    int old = dc->st.textCharExtra;
    dc->st.textCharExtra = extra;
    return old;
}

extern "C" int WINAPI GetTextCharacterExtra(HDC hdc)
{
    DcRecord *dc = dcRecord(hdc);
    return dc ? dc->st.textCharExtra : static_cast<int>(0x80000000);
}

extern "C" COLORREF WINAPI GetNearestColor(HDC hdc, COLORREF color)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc)
        return CLR_INVALID;
    return pixelToColor(colorToPixel(color));
}

extern "C" BOOL WINAPI SetBrushOrgEx(HDC hdc, int x, int y, LPPOINT lppt)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc)
        return FALSE;
    if (lppt)
        *lppt = dc->st.brushOrg;
    dc->st.brushOrg = {x, y};
    return TRUE;
}

extern "C" BOOL WINAPI GetBrushOrgEx(HDC hdc, LPPOINT lppt)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc || !lppt)
        return FALSE;
    *lppt = dc->st.brushOrg;
    return TRUE;
}

extern "C" BOOL WINAPI GetDCOrgEx(HDC hdc, LPPOINT lppt)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc || !lppt)
        return FALSE;
    *lppt = {dc->originX, dc->originY};
    return TRUE;
}

// ---- Map modes and origins -------------------------------------------------

extern "C" int WINAPI SetMapMode(HDC hdc, int iMode)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc || iMode < MM_TEXT || iMode > MM_ANISOTROPIC)
        return 0;
    DcState &s = dc->st;
    int old = s.mapMode;
    s.mapMode = iMode;
    switch (iMode) {
    case MM_TEXT:
        s.windowExt = {1, 1};
        s.viewportExt = {1, 1};
        break;
    case MM_LOMETRIC:
        setMetricExtents(s, 100);
        break;
    case MM_HIMETRIC:
        setMetricExtents(s, 1000);
        break;
    case MM_LOENGLISH:
        setMetricExtents(s, 10);
        s.windowExt = {deviceCapsNoDc(HORZSIZE) * 1000 / 254, deviceCapsNoDc(VERTSIZE) * 1000 / 254};
        break;
    case MM_HIENGLISH:
        setMetricExtents(s, 10);
        s.windowExt = {deviceCapsNoDc(HORZSIZE) * 10000 / 254,
                       deviceCapsNoDc(VERTSIZE) * 10000 / 254};
        break;
    case MM_TWIPS:
        setMetricExtents(s, 10);
        s.windowExt = {deviceCapsNoDc(HORZSIZE) * 14400 / 254,
                       deviceCapsNoDc(VERTSIZE) * 14400 / 254};
        break;
    case MM_ISOTROPIC:
        if (old != MM_ANISOTROPIC)
            isotropicAdjust(s);
        break;
    default:
        break;
    }
    return old;
}

extern "C" int WINAPI GetMapMode(HDC hdc)
{
    DcRecord *dc = dcRecord(hdc);
    return dc ? dc->st.mapMode : 0;
}

// Origins: Set and Offset answer the previous value through lppt.
static BOOL setPoint(HDC hdc, POINT DcState::*field, int x, int y, LPPOINT lppt, bool offset)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc)
        return FALSE;
    POINT &p = dc->st.*field;
    if (lppt)
        *lppt = p;
    if (offset)
        p = {p.x + x, p.y + y};
    else
        p = {x, y};
    return TRUE;
}

static BOOL getPoint(HDC hdc, POINT DcState::*field, LPPOINT lppt)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc || !lppt)
        return FALSE;
    *lppt = dc->st.*field;
    return TRUE;
}

extern "C" BOOL WINAPI SetViewportOrgEx(HDC hdc, int x, int y, LPPOINT lppt)
{
    return setPoint(hdc, &DcState::viewportOrg, x, y, lppt, false);
}

extern "C" BOOL WINAPI OffsetViewportOrgEx(HDC hdc, int x, int y, LPPOINT lppt)
{
    return setPoint(hdc, &DcState::viewportOrg, x, y, lppt, true);
}

extern "C" BOOL WINAPI GetViewportOrgEx(HDC hdc, LPPOINT lppoint)
{
    return getPoint(hdc, &DcState::viewportOrg, lppoint);
}

extern "C" BOOL WINAPI SetWindowOrgEx(HDC hdc, int x, int y, LPPOINT lppt)
{
    return setPoint(hdc, &DcState::windowOrg, x, y, lppt, false);
}

extern "C" BOOL WINAPI OffsetWindowOrgEx(HDC hdc, int x, int y, LPPOINT lppt)
{
    return setPoint(hdc, &DcState::windowOrg, x, y, lppt, true);
}

extern "C" BOOL WINAPI GetWindowOrgEx(HDC hdc, LPPOINT lppoint)
{
    return getPoint(hdc, &DcState::windowOrg, lppoint);
}


// Extents change only in the two scalable modes; elsewhere the call
// succeeds and changes nothing, as Windows does.
static BOOL setExtent(HDC hdc, int x, int y, LPSIZE old, bool viewport)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc)
        return FALSE;
    DcState &s = dc->st;
    SIZE &ext = viewport ? s.viewportExt : s.windowExt;
    if (old)
        *old = ext;
    if (s.mapMode != MM_ISOTROPIC && s.mapMode != MM_ANISOTROPIC)
        return TRUE;
    if (x == 0 || y == 0)
        return FALSE;
    ext = {x, y};
    isotropicAdjust(s);
    return TRUE;
}

extern "C" BOOL WINAPI SetViewportExtEx(HDC hdc, int x, int y, LPSIZE lpsz)
{
    return setExtent(hdc, x, y, lpsz, true);
}

extern "C" BOOL WINAPI SetWindowExtEx(HDC hdc, int x, int y, LPSIZE lpsz)
{
    return setExtent(hdc, x, y, lpsz, false);
}

extern "C" BOOL WINAPI GetViewportExtEx(HDC hdc, LPSIZE lpsize)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc || !lpsize)
        return FALSE;
    *lpsize = dc->st.viewportExt;
    return TRUE;
}

extern "C" BOOL WINAPI GetWindowExtEx(HDC hdc, LPSIZE lpsize)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc || !lpsize)
        return FALSE;
    *lpsize = dc->st.windowExt;
    return TRUE;
}

extern "C" BOOL WINAPI ScaleViewportExtEx(HDC hdc, int xn, int dx, int yn, int yd, LPSIZE lpsz)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc || !dx || !yd)
        return FALSE;
    SIZE e = dc->st.viewportExt;
    return setExtent(hdc, e.cx * xn / dx, e.cy * yn / yd, lpsz, true);
}

extern "C" BOOL WINAPI ScaleWindowExtEx(HDC hdc, int xn, int xd, int yn, int yd, LPSIZE lpsz)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc || !xd || !yd)
        return FALSE;
    SIZE e = dc->st.windowExt;
    return setExtent(hdc, e.cx * xn / xd, e.cy * yn / yd, lpsz, false);
}

extern "C" BOOL WINAPI LPtoDP(HDC hdc, LPPOINT lppt, int c)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc || c < 0 || (c > 0 && !lppt))
        return FALSE;
    for (int i = 0; i < c; ++i)
        lpToDp(*dc, lppt[i]);
    return TRUE;
}

extern "C" BOOL WINAPI DPtoLP(HDC hdc, LPPOINT lppt, int c)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc || c < 0 || (c > 0 && !lppt))
        return FALSE;
    for (int i = 0; i < c; ++i)
        dpToLp(*dc, lppt[i]);
    return TRUE;
}

extern "C" int WINAPI SetGraphicsMode(HDC hdc, int iMode)
{
    return dcRecord(hdc) && (iMode == GM_COMPATIBLE || iMode == GM_ADVANCED) ? GM_COMPATIBLE : 0;
}

extern "C" int WINAPI GetGraphicsMode(HDC hdc)
{
    return dcRecord(hdc) ? GM_COMPATIBLE : 0;
}

// ---- SaveDC / RestoreDC ----------------------------------------------------

extern "C" int WINAPI SaveDC(HDC hdc)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc)
        return 0;
    return guarded<int>("SaveDC", 0, [&] {
        dc->saved.push_back(dc->st);
        return static_cast<int>(dc->saved.size());
    });
}

extern "C" BOOL WINAPI RestoreDC(HDC hdc, int nSavedDC)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc)
        return FALSE;
    int depth = static_cast<int>(dc->saved.size());
    int target = nSavedDC < 0 ? depth + nSavedDC + 1 : nSavedDC;
    if (target < 1 || target > depth)
        return FALSE;
    DcState st = dc->saved[static_cast<size_t>(target - 1)];
    dc->saved.resize(static_cast<size_t>(target - 1));
    HGDIOBJ objs[] = {st.pen, st.brush, st.font, st.palette};
    HGDIOBJ cur[] = {dc->st.pen, dc->st.brush, dc->st.font, dc->st.palette};
    for (int i = 0; i < 4; ++i) {
        retain(cur[i], -1);
        retain(objs[i], +1);
    }
    HBITMAP bitmap = st.bitmap;
    HBITMAP curBitmap = dc->st.bitmap;
    dc->st = st;
    dc->st.bitmap = curBitmap;
    if (dc->type == DcType::Memory && bitmap != curBitmap && bitmapRecord(bitmap))
        SelectObject(hdc, bitmap);
    return TRUE;
}

extern "C" int WINAPI GetDeviceCaps(HDC hdc, int index)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc)
        return 0;
    if (dc->type == DcType::Memory && index == BITSPIXEL) {
        BitmapRecord *bm = bitmapRecord(dc->st.bitmap);
        if (bm && bm->depth == 1 && !bm->stock)
            return 1;
    }
    return deviceCapsNoDc(index);
}

// Brings DIB sections' memory up to date with what GDI drew into them.
extern "C" BOOL WINAPI GdiFlush(void)
{
    if (!omDisplay)
        return TRUE;
    XSync(omDisplay, False);
    flushDibSections();
    return TRUE;
}

extern "C" DWORD WINAPI SetLayout(HDC hdc, DWORD l)
{
    (void)l;
    return dcRecord(hdc) ? 0 : GDI_ERROR;
}

extern "C" DWORD WINAPI GetLayout(HDC hdc)
{
    return dcRecord(hdc) ? 0 : GDI_ERROR;
}
