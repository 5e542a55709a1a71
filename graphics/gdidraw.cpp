// Drawing with pens and brushes, pixel-exact where GDI defines the pixels:
// rectangles exclude their right and bottom edges, lines their last pixel,
// shapes fill one pixel short of the bounding box when the pen is null.
// Also the rectangle helpers of the user library that paint (FillRect,
// FrameRect, InvertRect, DrawFocusRect, DrawEdge) and region painting.
#include "gdiprivate.h"

#include <algorithm>
#include <cmath>
#include <vector>

using namespace om::gdi;

namespace
{

constexpr double kPi = 3.14159265358979323846;

// An entry's drawing context: the record with its GC prepared and the X
// lock held, or nothing when the DC is bad or has no surface.
class Canvas
{
  public:
    explicit Canvas(HDC hdc) : dc_(dcRecord(hdc))
    {
        if (dc_ && omDisplay && prepareGC(*dc_)) {
            dpy_ = omDisplay;
            d_ = dcDrawable(*dc_);
        }
    }
    explicit operator bool() const { return d_ != 0; }
    DcRecord &dc() const { return *dc_; }
    bool validDC() const { return dc_ != nullptr; }
    Display *dpy() const { return dpy_; }
    Drawable d() const { return d_; }
    GC gc() const { return dc_->gc; }
    int ox() const { return dc_->originX; }
    int oy() const { return dc_->originY; }
    XPoint xp(POINT p) const
    {
        lpToDp(*dc_, p);
        return {static_cast<short>(p.x + ox()), static_cast<short>(p.y + oy())};
    }

  private:
    OmAppLock lock_;
    DcRecord *dc_;
    Display *dpy_ = nullptr;
    Drawable d_ = 0;
};

void fillDeviceRect(const Canvas &c, int l, int t, int r, int b)
{
    if (r > l && b > t)
        XFillRectangle(c.dpy(), c.d(), c.gc(), l + c.ox(), t + c.oy(), static_cast<unsigned>(r - l),
                       static_cast<unsigned>(b - t));
}

// Fills device rectangle with a brush (a handle 1..31 is a system colour).
int fillRect(HDC hdc, const RECT *rc, HBRUSH brush, int function)
{
    if (!rc)
        return 0;
    Canvas c(hdc);
    if (!c.validDC())
        return 0;
    if (!c)
        return 0;
    RECT d = rectToDevice(c.dc(), rc->left, rc->top, rc->right, rc->bottom);
    if (!brushRecord(brush)) {
        omDebugWarning(OmDiag::NotABrush, "FillRect", "hbr");
        return 0;
    }
    if (useBrush(c.dc(), brush, function))
        fillDeviceRect(c, d.left, d.top, d.right, d.bottom);
    return 1;
}

int arcAngle(double cx, double cy, double rx, double ry, int px, int py)
{
    // X measures arc angles on the ellipse scaled to a circle.
    double a = std::atan2(-(py - cy) / ry, (px - cx) / rx) * 180.0 / kPi;
    if (a < 0)
        a += 360.0;
    return static_cast<int>(std::lround(a * 64));
}

enum class ArcKind { Arc, Chord, Pie };

BOOL drawArc(HDC hdc, int l, int t, int r, int b, int x3, int y3, int x4, int y4, ArcKind kind)
{
    Canvas c(hdc);
    if (!c)
        return FALSE;
    RECT d = rectToDevice(c.dc(), l, t, r, b);
    POINT s{x3, y3}, e{x4, y4};
    lpToDp(c.dc(), s);
    lpToDp(c.dc(), e);
    int w = d.right - d.left - 1, h = d.bottom - d.top - 1;
    if (w <= 0 || h <= 0)
        return FALSE;
    double cx = d.left + w / 2.0, cy = d.top + h / 2.0;
    int a1 = arcAngle(cx, cy, w / 2.0, h / 2.0, s.x, s.y);
    int a2 = arcAngle(cx, cy, w / 2.0, h / 2.0, e.x, e.y);
    int sweep = a2 - a1;
    if (c.dc().st.arcDirection == AD_CLOCKWISE) {
        if (sweep >= 0)
            sweep -= 360 * 64;
    } else if (sweep <= 0) {
        sweep += 360 * 64;
    }
    int x = d.left + c.ox(), y = d.top + c.oy();
    if (kind != ArcKind::Arc && useBrush(c.dc(), c.dc().st.brush)) {
        XSetArcMode(c.dpy(), c.gc(), kind == ArcKind::Pie ? ArcPieSlice : ArcChord);
        XFillArc(c.dpy(), c.d(), c.gc(), x, y, static_cast<unsigned>(w), static_cast<unsigned>(h),
                 a1, sweep);
    }
    if (usePen(c.dc())) {
        XDrawArc(c.dpy(), c.d(), c.gc(), x, y, static_cast<unsigned>(w), static_cast<unsigned>(h),
                 a1, sweep);
        auto onEllipse = [&](int angle64) {
            double rad = angle64 / 64.0 * kPi / 180.0;
            return XPoint{static_cast<short>(std::lround(x + w / 2.0 + w / 2.0 * std::cos(rad))),
                          static_cast<short>(std::lround(y + h / 2.0 - h / 2.0 * std::sin(rad)))};
        };
        XPoint p1 = onEllipse(a1), p2 = onEllipse(a1 + sweep);
        if (kind == ArcKind::Chord) {
            XDrawLine(c.dpy(), c.d(), c.gc(), p1.x, p1.y, p2.x, p2.y);
        } else if (kind == ArcKind::Pie) {
            XPoint ctr{static_cast<short>(std::lround(x + w / 2.0)),
                       static_cast<short>(std::lround(y + h / 2.0))};
            XPoint pts[3] = {p2, ctr, p1};
            XDrawLines(c.dpy(), c.d(), c.gc(), pts, 3, CoordModeOrigin);
        }
    }
    return TRUE;
}

void bezierPoints(const POINT *p, std::vector<POINT> &out)
{
    // Flattened finely enough that the polyline stays within half a pixel.
    double len = std::hypot(p[1].x - p[0].x, p[1].y - p[0].y) +
                 std::hypot(p[2].x - p[1].x, p[2].y - p[1].y) +
                 std::hypot(p[3].x - p[2].x, p[3].y - p[2].y);
    int steps = std::clamp(static_cast<int>(len / 2), 2, 512);
    for (int i = 1; i <= steps; ++i) {
        double t = static_cast<double>(i) / steps, u = 1 - t;
        double x = u * u * u * p[0].x + 3 * u * u * t * p[1].x + 3 * u * t * t * p[2].x +
                   t * t * t * p[3].x;
        double y = u * u * u * p[0].y + 3 * u * u * t * p[1].y + 3 * u * t * t * p[2].y +
                   t * t * t * p[3].y;
        out.push_back({static_cast<LONG>(std::lround(x)), static_cast<LONG>(std::lround(y))});
    }
}

BOOL strokePolyline(const Canvas &c, const POINT *pts, size_t n)
{
    if (n < 2 || !usePen(c.dc()))
        return TRUE;
    std::vector<XPoint> xp(n);
    for (size_t i = 0; i < n; ++i)
        xp[i] = c.xp(pts[i]);
    XDrawLines(c.dpy(), c.d(), c.gc(), xp.data(), static_cast<int>(n), CoordModeOrigin);
    return TRUE;
}

// Fills `region` (device coordinates) within the DC's clip.
void fillDeviceRegion(const Canvas &c, Region region, HBRUSH brush, int function)
{
    if (!useBrush(c.dc(), brush, function))
        return;
    Region clip = effectiveClip(c.dc());
    XIntersectRegion(clip, region, clip);
    XRectangle box;
    XClipBox(clip, &box);
    XOffsetRegion(clip, c.ox(), c.oy());
    XSetRegion(c.dpy(), c.gc(), clip);
    XDestroyRegion(clip);
    XFillRectangle(c.dpy(), c.d(), c.gc(), box.x + c.ox(), box.y + c.oy(), box.width, box.height);
}

// The region in device coordinates: moved by the logical origin's offset.
Region deviceRegion(const DcRecord &dc, Region logical)
{
    Region r = XRegion::copy(logical);
    POINT o{0, 0};
    lpToDp(dc, o);
    XOffsetRegion(r, o.x, o.y);
    return r;
}

}  // namespace

// ---- Rectangles of the user library ----------------------------------------

extern "C" int WINAPI FillRect(HDC hDC, const RECT *lprc, HBRUSH hbr)
{
    return fillRect(hDC, lprc, hbr, GXcopy);
}

extern "C" int WINAPI FrameRect(HDC hDC, const RECT *lprc, HBRUSH hbr)
{
    if (!lprc)
        return 0;
    Canvas c(hDC);
    if (!c || !brushRecord(hbr))
        return 0;
    RECT d = rectToDevice(c.dc(), lprc->left, lprc->top, lprc->right, lprc->bottom);
    if (d.right <= d.left || d.bottom <= d.top)
        return 0;
    if (useBrush(c.dc(), hbr, GXcopy)) {
        fillDeviceRect(c, d.left, d.top, d.right, d.top + 1);
        fillDeviceRect(c, d.left, d.bottom - 1, d.right, d.bottom);
        fillDeviceRect(c, d.left, d.top + 1, d.left + 1, d.bottom - 1);
        fillDeviceRect(c, d.right - 1, d.top + 1, d.right, d.bottom - 1);
    }
    return 1;
}

extern "C" BOOL WINAPI InvertRect(HDC hDC, const RECT *lprc)
{
    if (!lprc)
        return FALSE;
    Canvas c(hDC);
    if (!c)
        return FALSE;
    RECT d = rectToDevice(c.dc(), lprc->left, lprc->top, lprc->right, lprc->bottom);
    XGCValues v{};
    v.function = GXinvert;
    v.fill_style = FillSolid;
    XChangeGC(c.dpy(), c.gc(), GCFunction | GCFillStyle, &v);
    fillDeviceRect(c, d.left, d.top, d.right, d.bottom);
    return TRUE;
}

// A dotted frame drawn with XOR, so a second call removes it.
extern "C" BOOL WINAPI DrawFocusRect(HDC hDC, const RECT *lprc)
{
    if (!lprc)
        return FALSE;
    Canvas c(hDC);
    if (!c)
        return FALSE;
    RECT d = rectToDevice(c.dc(), lprc->left, lprc->top, lprc->right, lprc->bottom);
    if (d.right <= d.left || d.bottom <= d.top)
        return TRUE;
    std::vector<XPoint> dots;
    auto dot = [&](int x, int y) {
        if (((x + y) & 1) == 0)
            dots.push_back({static_cast<short>(x + c.ox()), static_cast<short>(y + c.oy())});
    };
    for (int x = d.left; x < d.right; ++x) {
        dot(x, d.top);
        if (d.bottom - 1 != d.top)
            dot(x, d.bottom - 1);
    }
    for (int y = d.top + 1; y < d.bottom - 1; ++y) {
        dot(d.left, y);
        if (d.right - 1 != d.left)
            dot(d.right - 1, y);
    }
    XGCValues v{};
    v.function = GXinvert;
    v.fill_style = FillSolid;
    v.line_width = 0;
    XChangeGC(c.dpy(), c.gc(), GCFunction | GCFillStyle | GCLineWidth, &v);
    XDrawPoints(c.dpy(), c.d(), c.gc(), dots.data(), static_cast<int>(dots.size()),
                CoordModeOrigin);
    return TRUE;
}

extern "C" BOOL WINAPI DrawEdge(HDC hdc, LPRECT qrc, UINT edge, UINT grfFlags)
{
    if (!qrc)
        return FALSE;
    Canvas c(hdc);
    if (!c)
        return FALSE;
    RECT r = *qrc;
    // Each border is one line: outer first, then inner; top-left colour,
    // bottom-right colour.
    struct Band {
        UINT raised, sunken;
        int raisedTL, raisedBR, sunkenTL, sunkenBR;
    };
    const Band bands[2] = {
        {BDR_RAISEDOUTER, BDR_SUNKENOUTER, COLOR_3DLIGHT, COLOR_3DDKSHADOW, COLOR_BTNSHADOW,
         COLOR_BTNHIGHLIGHT},
        {BDR_RAISEDINNER, BDR_SUNKENINNER, COLOR_BTNHIGHLIGHT, COLOR_BTNSHADOW, COLOR_3DDKSHADOW,
         COLOR_3DLIGHT},
    };
    for (const Band &b : bands) {
        int tl, br;
        if (edge & b.raised) {
            tl = b.raisedTL;
            br = b.raisedBR;
        } else if (edge & b.sunken) {
            tl = b.sunkenTL;
            br = b.sunkenBR;
        } else {
            continue;
        }
        if (grfFlags & (BF_FLAT | BF_MONO))
            tl = br = (grfFlags & BF_MONO) ? COLOR_WINDOWFRAME : COLOR_BTNSHADOW;
        RECT d = rectToDevice(c.dc(), r.left, r.top, r.right, r.bottom);
        HBRUSH tlb = GetSysColorBrush(tl), brb = GetSysColorBrush(br);
        if ((grfFlags & BF_TOP) && useBrush(c.dc(), tlb))
            fillDeviceRect(c, d.left, d.top, d.right - 1, d.top + 1);
        if ((grfFlags & BF_LEFT) && useBrush(c.dc(), tlb))
            fillDeviceRect(c, d.left, d.top, d.left + 1, d.bottom - 1);
        if ((grfFlags & BF_BOTTOM) && useBrush(c.dc(), brb))
            fillDeviceRect(c, d.left, d.bottom - 1, d.right, d.bottom);
        if ((grfFlags & BF_RIGHT) && useBrush(c.dc(), brb))
            fillDeviceRect(c, d.right - 1, d.top, d.right, d.bottom);
        if (grfFlags & BF_LEFT)
            ++r.left;
        if (grfFlags & BF_TOP)
            ++r.top;
        if (grfFlags & BF_RIGHT)
            --r.right;
        if (grfFlags & BF_BOTTOM)
            --r.bottom;
    }
    if (grfFlags & BF_MIDDLE) {
        RECT d = rectToDevice(c.dc(), r.left, r.top, r.right, r.bottom);
        if (useBrush(c.dc(), GetSysColorBrush((grfFlags & BF_MONO) ? COLOR_WINDOW : COLOR_BTNFACE)))
            fillDeviceRect(c, d.left, d.top, d.right, d.bottom);
    }
    if (grfFlags & BF_ADJUST)
        *qrc = r;
    return TRUE;
}

// ---- Lines -----------------------------------------------------------------

extern "C" BOOL WINAPI MoveToEx(HDC hdc, int x, int y, LPPOINT lppt)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc)
        return FALSE;
    if (lppt)
        *lppt = dc->st.pos;
    dc->st.pos = {x, y};
    return TRUE;
}

extern "C" BOOL WINAPI GetCurrentPositionEx(HDC hdc, LPPOINT lppt)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc || !lppt)
        return FALSE;
    *lppt = dc->st.pos;
    return TRUE;
}

extern "C" BOOL WINAPI LineTo(HDC hdc, int x, int y)
{
    Canvas c(hdc);
    if (!c.validDC())
        return FALSE;
    POINT pts[2] = {c.dc().st.pos, {x, y}};
    c.dc().st.pos = {x, y};
    if (!c)
        return FALSE;
    return strokePolyline(c, pts, 2);
}

extern "C" BOOL WINAPI Polyline(HDC hdc, const POINT *apt, int cpt)
{
    if (!apt || cpt < 2)
        return FALSE;
    Canvas c(hdc);
    return c && strokePolyline(c, apt, static_cast<size_t>(cpt));
}

extern "C" BOOL WINAPI PolylineTo(HDC hdc, const POINT *apt, DWORD cpt)
{
    if (!apt || cpt == 0)
        return FALSE;
    Canvas c(hdc);
    if (!c.validDC())
        return FALSE;
    std::vector<POINT> pts{c.dc().st.pos};
    pts.insert(pts.end(), apt, apt + cpt);
    c.dc().st.pos = apt[cpt - 1];
    return c && strokePolyline(c, pts.data(), pts.size());
}

extern "C" BOOL WINAPI PolyPolyline(HDC hdc, const POINT *apt, const DWORD *asz, DWORD csz)
{
    if (!apt || !asz)
        return FALSE;
    Canvas c(hdc);
    if (!c)
        return FALSE;
    for (DWORD i = 0; i < csz; apt += asz[i], ++i)
        strokePolyline(c, apt, asz[i]);
    return TRUE;
}

extern "C" BOOL WINAPI PolyBezier(HDC hdc, const POINT *apt, DWORD cpt)
{
    if (!apt || cpt < 4 || (cpt - 1) % 3 != 0)
        return FALSE;
    Canvas c(hdc);
    if (!c)
        return FALSE;
    std::vector<POINT> pts{apt[0]};
    for (DWORD i = 0; i + 3 < cpt; i += 3)
        bezierPoints(apt + i, pts);
    // A Bezier includes its end point, unlike a line.
    strokePolyline(c, pts.data(), pts.size());
    if (usePen(c.dc())) {
        XPoint e = c.xp(pts.back());
        XDrawPoint(c.dpy(), c.d(), c.gc(), e.x, e.y);
    }
    return TRUE;
}

extern "C" BOOL WINAPI PolyBezierTo(HDC hdc, const POINT *apt, DWORD cpt)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc || !apt || cpt < 3 || cpt % 3 != 0)
        return FALSE;
    std::vector<POINT> pts{dc->st.pos};
    pts.insert(pts.end(), apt, apt + cpt);
    dc->st.pos = apt[cpt - 1];
    return PolyBezier(hdc, pts.data(), static_cast<DWORD>(pts.size()));
}

// ---- Shapes ------------------------------------------------------------------

extern "C" BOOL WINAPI PolyPolygon(HDC hdc, const POINT *apt, const INT *asz, int csz)
{
    if (!apt || !asz || csz <= 0)
        return FALSE;
    Canvas c(hdc);
    if (!c)
        return FALSE;
    // All polygons fill as one shape, so an inner polygon makes a hole
    // under the alternate rule.
    std::vector<XPoint> all;
    const POINT *p = apt;
    for (int i = 0; i < csz; p += asz[i], ++i) {
        if (asz[i] < 2)
            return FALSE;
        for (int k = 0; k < asz[i]; ++k)
            all.push_back(c.xp(p[k]));
        all.push_back(c.xp(p[0]));
    }
    if (useBrush(c.dc(), c.dc().st.brush)) {
        XSetFillRule(c.dpy(), c.gc(),
                     c.dc().st.polyFillMode == WINDING ? WindingRule : EvenOddRule);
        if (csz == 1) {
            XFillPolygon(c.dpy(), c.d(), c.gc(), all.data(), static_cast<int>(all.size()),
                         Complex, CoordModeOrigin);
        } else {
            std::vector<POINT> flat;
            for (XPoint x : all)
                flat.push_back({x.x - c.ox(), x.y - c.oy()});
            std::vector<INT> counts;
            for (int i = 0; i < csz; ++i)
                counts.push_back(asz[i] + 1);
            Region r = XCreateRegion();
            size_t at = 0;
            for (int i = 0; i < csz; ++i) {
                std::vector<XPoint> xp(all.begin() + static_cast<long>(at),
                                       all.begin() + static_cast<long>(at) + counts[i]);
                Region one = XPolygonRegion(xp.data(), counts[i],
                                            c.dc().st.polyFillMode == WINDING ? WindingRule
                                                                              : EvenOddRule);
                XXorRegion(r, one, r);
                XDestroyRegion(one);
                at += static_cast<size_t>(counts[i]);
            }
            XOffsetRegion(r, -c.ox(), -c.oy());
            fillDeviceRegion(c, r, c.dc().st.brush, GXcopy);
            XDestroyRegion(r);
            prepareGC(c.dc());
        }
    }
    if (usePen(c.dc())) {
        size_t at = 0;
        for (int i = 0; i < csz; ++i) {
            XDrawLines(c.dpy(), c.d(), c.gc(), all.data() + at, asz[i] + 1, CoordModeOrigin);
            at += static_cast<size_t>(asz[i] + 1);
        }
    }
    return TRUE;
}

extern "C" BOOL WINAPI Polygon(HDC hdc, const POINT *apt, int cpt)
{
    return PolyPolygon(hdc, apt, &cpt, 1);
}

extern "C" BOOL WINAPI Rectangle(HDC hdc, int left, int top, int right, int bottom)
{
    Canvas c(hdc);
    if (!c)
        return FALSE;
    RECT d = rectToDevice(c.dc(), left, top, right, bottom);
    int w = d.right - d.left, h = d.bottom - d.top;
    if (w <= 1 || h <= 1)
        return TRUE;
    PenRecord *pen = penRecord(c.dc().st.pen);
    bool hasPen = pen && pen->style != PS_NULL;
    if (useBrush(c.dc(), c.dc().st.brush)) {
        if (hasPen)
            fillDeviceRect(c, d.left + 1, d.top + 1, d.right - 1, d.bottom - 1);
        else
            fillDeviceRect(c, d.left, d.top, d.right - 1, d.bottom - 1);
    }
    if (usePen(c.dc()))
        XDrawRectangle(c.dpy(), c.d(), c.gc(), d.left + c.ox(), d.top + c.oy(),
                       static_cast<unsigned>(w - 1), static_cast<unsigned>(h - 1));
    return TRUE;
}

extern "C" BOOL WINAPI Ellipse(HDC hdc, int left, int top, int right, int bottom)
{
    Canvas c(hdc);
    if (!c)
        return FALSE;
    RECT d = rectToDevice(c.dc(), left, top, right, bottom);
    int w = d.right - d.left - 1, h = d.bottom - d.top - 1;
    if (w <= 0 || h <= 0)
        return TRUE;
    int x = d.left + c.ox(), y = d.top + c.oy();
    if (useBrush(c.dc(), c.dc().st.brush))
        XFillArc(c.dpy(), c.d(), c.gc(), x, y, static_cast<unsigned>(w), static_cast<unsigned>(h),
                 0, 360 * 64);
    if (usePen(c.dc()))
        XDrawArc(c.dpy(), c.d(), c.gc(), x, y, static_cast<unsigned>(w), static_cast<unsigned>(h),
                 0, 360 * 64);
    return TRUE;
}

extern "C" BOOL WINAPI RoundRect(HDC hdc, int left, int top, int right, int bottom, int width,
                                 int height)
{
    Canvas c(hdc);
    if (!c)
        return FALSE;
    RECT d = rectToDevice(c.dc(), left, top, right, bottom);
    int w = d.right - d.left - 1, h = d.bottom - d.top - 1;
    if (w <= 0 || h <= 0)
        return TRUE;
    int ew = std::min(scaleX(c.dc(), width), w), eh = std::min(scaleY(c.dc(), height), h);
    if (ew < 2 || eh < 2)
        return Rectangle(hdc, left, top, right, bottom);
    int x = d.left + c.ox(), y = d.top + c.oy();
    XArc arcs[4] = {
        {static_cast<short>(x), static_cast<short>(y), static_cast<unsigned short>(ew),
         static_cast<unsigned short>(eh), 90 * 64, 90 * 64},
        {static_cast<short>(x + w - ew), static_cast<short>(y), static_cast<unsigned short>(ew),
         static_cast<unsigned short>(eh), 0, 90 * 64},
        {static_cast<short>(x), static_cast<short>(y + h - eh), static_cast<unsigned short>(ew),
         static_cast<unsigned short>(eh), 180 * 64, 90 * 64},
        {static_cast<short>(x + w - ew), static_cast<short>(y + h - eh),
         static_cast<unsigned short>(ew), static_cast<unsigned short>(eh), 270 * 64, 90 * 64},
    };
    if (useBrush(c.dc(), c.dc().st.brush)) {
        XSetArcMode(c.dpy(), c.gc(), ArcPieSlice);
        XFillArcs(c.dpy(), c.d(), c.gc(), arcs, 4);
        XRectangle rects[3] = {
            {static_cast<short>(x + ew / 2), static_cast<short>(y),
             static_cast<unsigned short>(w - ew + 1), static_cast<unsigned short>(h)},
            {static_cast<short>(x), static_cast<short>(y + eh / 2),
             static_cast<unsigned short>(ew / 2 + 1), static_cast<unsigned short>(h - eh + 1)},
            {static_cast<short>(x + w - ew / 2), static_cast<short>(y + eh / 2),
             static_cast<unsigned short>(ew / 2), static_cast<unsigned short>(h - eh + 1)},
        };
        XFillRectangles(c.dpy(), c.d(), c.gc(), rects, 3);
    }
    if (usePen(c.dc())) {
        XDrawArcs(c.dpy(), c.d(), c.gc(), arcs, 4);
        XSegment segs[4] = {
            {static_cast<short>(x + ew / 2), static_cast<short>(y),
             static_cast<short>(x + w - ew / 2), static_cast<short>(y)},
            {static_cast<short>(x + ew / 2), static_cast<short>(y + h),
             static_cast<short>(x + w - ew / 2), static_cast<short>(y + h)},
            {static_cast<short>(x), static_cast<short>(y + eh / 2), static_cast<short>(x),
             static_cast<short>(y + h - eh / 2)},
            {static_cast<short>(x + w), static_cast<short>(y + eh / 2),
             static_cast<short>(x + w), static_cast<short>(y + h - eh / 2)},
        };
        XDrawSegments(c.dpy(), c.d(), c.gc(), segs, 4);
    }
    return TRUE;
}

extern "C" BOOL WINAPI Arc(HDC hdc, int x1, int y1, int x2, int y2, int x3, int y3, int x4, int y4)
{
    return drawArc(hdc, x1, y1, x2, y2, x3, y3, x4, y4, ArcKind::Arc);
}

extern "C" BOOL WINAPI Chord(HDC hdc, int x1, int y1, int x2, int y2, int x3, int y3, int x4,
                             int y4)
{
    return drawArc(hdc, x1, y1, x2, y2, x3, y3, x4, y4, ArcKind::Chord);
}

extern "C" BOOL WINAPI Pie(HDC hdc, int left, int top, int right, int bottom, int xr1, int yr1,
                           int xr2, int yr2)
{
    return drawArc(hdc, left, top, right, bottom, xr1, yr1, xr2, yr2, ArcKind::Pie);
}

// ---- Pixels ------------------------------------------------------------------

extern "C" COLORREF WINAPI SetPixel(HDC hdc, int x, int y, COLORREF color)
{
    Canvas c(hdc);
    if (!c)
        return static_cast<COLORREF>(-1);
    XPoint p = c.xp({x, y});
    XGCValues v{};
    v.function = GXcopy;
    v.fill_style = FillSolid;
    v.foreground = colorToPixel(color, c.dc().depth);
    XChangeGC(c.dpy(), c.gc(), GCFunction | GCFillStyle | GCForeground, &v);
    XDrawPoint(c.dpy(), c.d(), c.gc(), p.x, p.y);
    return c.dc().depth == 1 ? (v.foreground ? RGB(255, 255, 255) : 0)
                             : pixelToColor(v.foreground);
}

extern "C" BOOL WINAPI SetPixelV(HDC hdc, int x, int y, COLORREF color)
{
    return SetPixel(hdc, x, y, color) != static_cast<COLORREF>(-1);
}

extern "C" COLORREF WINAPI GetPixel(HDC hdc, int x, int y)
{
    Canvas c(hdc);
    if (!c)
        return CLR_INVALID;
    POINT p{x, y};
    lpToDp(c.dc(), p);
    Region clip = effectiveClip(c.dc());
    bool visible = XPointInRegion(clip, p.x, p.y);
    XDestroyRegion(clip);
    if (!visible)
        return CLR_INVALID;
    XImage *img = XGetImage(c.dpy(), c.d(), p.x + c.ox(), p.y + c.oy(), 1, 1, AllPlanes, ZPixmap);
    if (!img)
        return CLR_INVALID;
    unsigned long pixel = XGetPixel(img, 0, 0);
    XDestroyImage(img);
    if (c.dc().depth == 1)
        return pixel ? RGB(255, 255, 255) : RGB(0, 0, 0);
    return pixelToColor(pixel);
}

// ---- Regions on a DC ---------------------------------------------------------

static BOOL paintRegion(HDC hdc, HRGN hrgn, HBRUSH brush, int function)
{
    RegionRecord *r = regionRecord(hrgn);
    if (!r)
        return FALSE;
    Canvas c(hdc);
    if (!c)
        return FALSE;
    if (function == GXinvert) {
        XGCValues v{};
        v.function = GXinvert;
        v.fill_style = FillSolid;
        XChangeGC(c.dpy(), c.gc(), GCFunction | GCFillStyle, &v);
        // useBrush would reset the function; invert needs no colour.
        Region clip = effectiveClip(c.dc());
        Region dev = deviceRegion(c.dc(), r->region.get());
        XIntersectRegion(clip, dev, clip);
        XDestroyRegion(dev);
        XRectangle box;
        XClipBox(clip, &box);
        XOffsetRegion(clip, c.ox(), c.oy());
        XSetRegion(c.dpy(), c.gc(), clip);
        XDestroyRegion(clip);
        XFillRectangle(c.dpy(), c.d(), c.gc(), box.x + c.ox(), box.y + c.oy(), box.width,
                       box.height);
        return TRUE;
    }
    if (!brushRecord(brush))
        return FALSE;
    Region dev = deviceRegion(c.dc(), r->region.get());
    fillDeviceRegion(c, dev, brush, function);
    XDestroyRegion(dev);
    return TRUE;
}

extern "C" BOOL WINAPI FillRgn(HDC hdc, HRGN hrgn, HBRUSH hbr)
{
    return paintRegion(hdc, hrgn, hbr, GXcopy);
}

extern "C" BOOL WINAPI PaintRgn(HDC hdc, HRGN hrgn)
{
    DcRecord *dc = dcRecord(hdc);
    return dc && paintRegion(hdc, hrgn, dc->st.brush, GXcopy);
}

extern "C" BOOL WINAPI InvertRgn(HDC hdc, HRGN hrgn)
{
    return paintRegion(hdc, hrgn, nullptr, GXinvert);
}

// The frame is the region minus the region eroded by w horizontally and h
// vertically.
extern "C" BOOL WINAPI FrameRgn(HDC hdc, HRGN hrgn, HBRUSH hbr, int w, int h)
{
    RegionRecord *r = regionRecord(hrgn);
    if (!r || !brushRecord(hbr) || w <= 0 || h <= 0)
        return FALSE;
    Canvas c(hdc);
    if (!c)
        return FALSE;
    Region dev = deviceRegion(c.dc(), r->region.get());
    Region inner = XRegion::copy(dev);
    const int shifts[4][2] = {{w, 0}, {-w, 0}, {0, h}, {0, -h}};
    for (const auto &s : shifts) {
        Region moved = XRegion::copy(dev);
        XOffsetRegion(moved, s[0], s[1]);
        XIntersectRegion(inner, moved, inner);
        XDestroyRegion(moved);
    }
    XSubtractRegion(dev, inner, dev);
    XDestroyRegion(inner);
    fillDeviceRegion(c, dev, hbr, GXcopy);
    XDestroyRegion(dev);
    return TRUE;
}
