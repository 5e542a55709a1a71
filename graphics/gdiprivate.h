// Records of the graphics layer's objects (device contexts, pens, brushes,
// fonts, bitmaps, regions, palettes) as they sit in the shared handle table,
// and the helpers the graphics sources share: handle lookup, colour to
// pixel, the logical-to-device transform and preparing a DC's X GC.
#pragma once

#include <windows.h>

#include "kernel/omdiag.h"
#include "kernel/omdisplay.h"
#include "kernel/omhandles.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <new>
#include <string>
#include <vector>

namespace om::gdi
{

// An owned X region; copies are deep so that SaveDC can keep the clip.
class XRegion
{
  public:
    XRegion() = default;
    explicit XRegion(Region r) : r_(r) {}
    XRegion(const XRegion &o) : r_(o.r_ ? copy(o.r_) : nullptr) {}
    XRegion &operator=(const XRegion &o)
    {
        if (this != &o)
            reset(o.r_ ? copy(o.r_) : nullptr);
        return *this;
    }
    ~XRegion() { reset(); }
    void reset(Region r = nullptr)
    {
        if (r_)
            XDestroyRegion(r_);
        r_ = r;
    }
    Region get() const { return r_; }
    explicit operator bool() const { return r_ != nullptr; }
    static Region copy(Region src);

  private:
    Region r_ = nullptr;
};

// Every object record starts with its kind and whether it is a stock
// object (which DeleteObject refuses) and how many DCs have it selected.
struct GdiObject {
    uint32_t kind;
    bool stock = false;
    int selectCount = 0;
    explicit GdiObject(uint32_t k) : kind(k) {}
    virtual ~GdiObject() = default;
};

struct PenRecord : GdiObject {
    PenRecord() : GdiObject(OM_KIND_PEN) {}
    UINT style = PS_SOLID;
    int width = 0;
    COLORREF color = 0;
    bool dcPen = false;  // DC_PEN: the colour is the DC's pen colour
};

struct BitmapRecord;

struct BrushRecord : GdiObject {
    BrushRecord() : GdiObject(OM_KIND_BRUSH) {}
    UINT style = BS_SOLID;
    COLORREF color = 0;
    int hatch = 0;
    int sysColor = -1;      // a system-colour brush follows SetSysColors
    bool dcBrush = false;   // DC_BRUSH
    Pixmap pattern = 0;     // BS_PATTERN: a private copy of the bitmap
    int patternDepth = 0;
    int patternWidth = 0, patternHeight = 0;
    ~BrushRecord() override;
};

struct FontRecord : GdiObject {
    FontRecord() : GdiObject(OM_KIND_FONT) {}
    LOGFONTA log{};
    void *xft = nullptr;    // XftFont *, opened on first use
    ~FontRecord() override;
};

struct BitmapRecord : GdiObject {
    BitmapRecord() : GdiObject(OM_KIND_BITMAP) {}
    int width = 0, height = 0;
    int bitsPixel = 1;      // what GetObject reports: 1 or the display's
    int depth = 1;          // the pixmap's depth
    Pixmap pixmap = 0;      // 0 for the stock 1x1 bitmap before a display
    void *dibBits = nullptr;  // a DIB section's memory
    BITMAPINFOHEADER dibHeader{};
    std::vector<RGBQUAD> dibColors;
    bool pixmapNewer = false;  // GDI drew since the bits were last read back
    HDC selectedInto = nullptr;
    ~BitmapRecord() override;
};

struct RegionRecord : GdiObject {
    RegionRecord() : GdiObject(OM_KIND_REGION) {}
    XRegion region;
};

struct PaletteRecord : GdiObject {
    PaletteRecord() : GdiObject(OM_KIND_PALETTE) {}
    std::vector<PALETTEENTRY> entries;
};

// What SaveDC keeps.
struct DcState {
    HPEN pen = nullptr;
    HBRUSH brush = nullptr;
    HFONT font = nullptr;
    HBITMAP bitmap = nullptr;
    HPALETTE palette = nullptr;
    COLORREF textColor = RGB(0, 0, 0);
    COLORREF bkColor = RGB(255, 255, 255);
    COLORREF dcBrushColor = RGB(255, 255, 255);
    COLORREF dcPenColor = RGB(0, 0, 0);
    int bkMode = OPAQUE;
    int rop2 = R2_COPYPEN;
    int polyFillMode = ALTERNATE;
    int stretchMode = BLACKONWHITE;
    UINT textAlign = TA_LEFT | TA_TOP | TA_NOUPDATECP;
    int arcDirection = AD_COUNTERCLOCKWISE;
    int textCharExtra = 0;
    POINT pos{0, 0};
    POINT brushOrg{0, 0};
    int mapMode = MM_TEXT;
    POINT windowOrg{0, 0}, viewportOrg{0, 0};
    SIZE windowExt{1, 1}, viewportExt{1, 1};
    XRegion clip;  // the program's clip, device coordinates; none = no clip
};

enum class DcType { Memory, Window, Screen, Info, Drawable };

struct DcRecord : GdiObject {
    DcRecord() : GdiObject(OM_KIND_DC) {}
    DcType type = DcType::Memory;
    HWND hwnd = nullptr;
    bool ownDC = false;         // CS_OWNDC: ReleaseDC keeps it
    Drawable drawable = 0;      // resolved lazily for screen DCs
    int originX = 0, originY = 0;  // device (0, 0) in drawable coordinates
    int width = 0, height = 0;     // the area the DC may touch
    int depth = 0;
    GC gc = nullptr;
    XRegion sysClip;            // BeginPaint's update region, device coords
    void *xftDraw = nullptr;    // XftDraw * for text, kept while the drawable is
    Drawable xftDrawable = 0;
    DcState st;
    std::vector<DcState> saved;
    ~DcRecord() override;
};

// Handle lookup.  A value 1..31 names a reserved slot directly, which
// omHandleIndex already gives; so one lookup serves both forms.
template <class T> inline T *record(const void *h, uint32_t kind)
{
    void *r = omHandleRecord(omHandleValue(h), kind);
    return static_cast<T *>(static_cast<GdiObject *>(r));
}
inline DcRecord *dcRecord(HDC h) { return record<DcRecord>(h, OM_KIND_DC); }
inline PenRecord *penRecord(HPEN h) { return record<PenRecord>(h, OM_KIND_PEN); }
inline BrushRecord *brushRecord(HBRUSH h) { return record<BrushRecord>(h, OM_KIND_BRUSH); }
inline FontRecord *fontRecord(HFONT h) { return record<FontRecord>(h, OM_KIND_FONT); }
inline BitmapRecord *bitmapRecord(HBITMAP h) { return record<BitmapRecord>(h, OM_KIND_BITMAP); }
inline RegionRecord *regionRecord(HRGN h) { return record<RegionRecord>(h, OM_KIND_REGION); }
inline PaletteRecord *paletteRecord(HPALETTE h)
{
    return record<PaletteRecord>(h, OM_KIND_PALETTE);
}

// The kind of any graphics object handle, 0 when it is none.
uint32_t objectKind(const void *h);
GdiObject *anyObject(const void *h);

// Puts a new record in the table and returns its handle, or null (warning
// 125) when the table is full; the record is deleted then.
void *addObject(GdiObject *obj);
// Frees the slot and the record.
void destroyObject(void *h, GdiObject *obj);

// Runs an entry's body, turning exceptions into its failure value.
template <class R, class F> R guarded(const char *name, R failure, F &&body)
{
    try {
        return body();
    } catch (const std::bad_alloc &) {
        omError(OmDiag::OutOfMemory, name);
    } catch (...) {
        omError(OmDiag::BadArgument, name, "internal error");
    }
    return failure;
}

// Colours.
COLORREF sysColor(int index);
unsigned long colorToPixel(COLORREF color);
COLORREF pixelToColor(unsigned long pixel);
// The pixel a colour has in a drawable of `depth` (1: white-ish is 1).
unsigned long colorToPixel(COLORREF color, int depth);
COLORREF brushColor(const BrushRecord &b, const DcRecord *dc);

// The display, or null; makes the stock objects on first use.
Display *display();
void ensureStockObjects();
HBITMAP stockBitmap();

// Coordinates.
void lpToDp(const DcRecord &dc, POINT &p);
void dpToLp(const DcRecord &dc, POINT &p);
// A logical rectangle to a normalised device rectangle.
RECT rectToDevice(const DcRecord &dc, int l, int t, int r, int b);
// Scales a logical length in x (for pen widths and radii).
int scaleX(const DcRecord &dc, int len);
int scaleY(const DcRecord &dc, int len);

// The drawable a DC draws on (0 when it has none) and a GC for it, clipped
// to the area, the update region and the program's clip.
Drawable dcDrawable(DcRecord &dc);
bool prepareGC(DcRecord &dc);
// The effective clip in device coordinates (a new region the caller owns).
Region effectiveClip(DcRecord &dc);
// GC set-ups; false when there is nothing to draw (null pen or brush).
bool usePen(DcRecord &dc);
bool useBrush(DcRecord &dc, HBRUSH brush, int function = GXcopy);
int rop2Function(int rop2);

// DCs: the record of a new memory or window DC, and the bitmap selection.
HDC createDC(DcType type);
void selectBitmapInto(DcRecord &dc, HBITMAP hbm);
// Deletes a DC, releasing what it had selected.
void deleteDC(HDC h, DcRecord &dc);

// Text: the DC's XftDraw with its clip applied (null without a surface).
void *xftDrawFor(DcRecord &dc);
void *openFont(FontRecord &f);

// DIB sections: the program's bits and the pixmap kept in step.
void syncDibToPixmap(BitmapRecord &bm);
void syncPixmapToDib(BitmapRecord &bm);
void forgetDibSection(BitmapRecord *bm);
void flushDibSections();
// A bitmap (colour, or monochrome when `mono`) holding a packed DIB.
HBITMAP bitmapFromDib(const BITMAPINFO *bmi, const void *bits, UINT usage, bool mono);

// Regions.
Region rectRegion(int l, int t, int r, int b);
int regionComplexity(Region r);
HRGN newRegion(Region r);

}  // namespace om::gdi
