// Regions over X Regions (pure client-side arithmetic, so they work with
// no display), and a DC's clipping: SelectClipRgn and friends, GetClipBox.
#include "gdiprivate.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace om::gdi
{

int regionComplexity(Region r)
{
    if (XEmptyRegion(r))
        return NULLREGION;
    XRectangle box;
    XClipBox(r, &box);
    Region b = rectRegion(box.x, box.y, box.x + box.width, box.y + box.height);
    bool simple = XEqualRegion(b, r);
    XDestroyRegion(b);
    return simple ? SIMPLEREGION : COMPLEXREGION;
}

HRGN newRegion(Region r)
{
    auto *rec = new RegionRecord;
    rec->region.reset(r);
    return static_cast<HRGN>(addObject(rec));
}

}  // namespace om::gdi

using namespace om::gdi;

namespace
{

// An ellipse inscribed in (l, t, r, b) as a region: for each pixel row, the
// span whose centres lie inside the ellipse, as GDI fills it.
Region ellipseRegion(int l, int t, int r, int b)
{
    Region reg = XCreateRegion();
    if (r <= l || b <= t)
        return reg;
    double a = (r - l) / 2.0, bb = (b - t) / 2.0;
    double cx = l + a, cy = t + bb;
    for (int y = t; y < b; ++y) {
        double dy = (y + 0.5 - cy) / bb;
        double q = 1.0 - dy * dy;
        if (q < 0)
            continue;
        double half = a * std::sqrt(q);
        int x0 = static_cast<int>(std::ceil(cx - half - 0.5));
        int x1 = static_cast<int>(std::floor(cx + half - 0.5)) + 1;
        if (x1 > x0) {
            XRectangle row{static_cast<short>(x0), static_cast<short>(y),
                           static_cast<unsigned short>(x1 - x0), 1};
            XUnionRectWithRegion(&row, reg, reg);
        }
    }
    return reg;
}

// A rounded rectangle: the middle band plus the corners of the ellipse of
// size (w, h).
Region roundRectRegion(int l, int t, int r, int b, int w, int h)
{
    w = std::min(std::abs(w), r - l);
    h = std::min(std::abs(h), b - t);
    if (w < 2 || h < 2)
        return rectRegion(l, t, r, b);
    Region reg = rectRegion(l, t + h / 2, r, b - h / 2);
    Region corners = ellipseRegion(0, 0, w, h);
    Region band = rectRegion(l + w / 2, t, r - w / 2, b);
    XUnionRegion(reg, band, reg);
    XDestroyRegion(band);
    int xs[2] = {l, r - w}, ys[2] = {t, b - h};
    for (int xi = 0; xi < 2; ++xi)
        for (int yi = 0; yi < 2; ++yi) {
            Region c = XRegion::copy(corners);
            XOffsetRegion(c, xs[xi], ys[yi]);
            XUnionRegion(reg, c, reg);
            XDestroyRegion(c);
        }
    XDestroyRegion(corners);
    return reg;
}

HRGN create(const char *name, Region r)
{
    return guarded<HRGN>(name, nullptr, [&] { return newRegion(r); });
}

void normalise(int &l, int &t, int &r, int &b)
{
    if (l > r)
        std::swap(l, r);
    if (t > b)
        std::swap(t, b);
}

}  // namespace

extern "C" HRGN WINAPI CreateRectRgn(int x1, int y1, int x2, int y2)
{
    normalise(x1, y1, x2, y2);
    return create("CreateRectRgn", rectRegion(x1, y1, x2, y2));
}

extern "C" HRGN WINAPI CreateRectRgnIndirect(const RECT *lprect)
{
    if (!lprect)
        return nullptr;
    return CreateRectRgn(lprect->left, lprect->top, lprect->right, lprect->bottom);
}

extern "C" HRGN WINAPI CreateEllipticRgn(int x1, int y1, int x2, int y2)
{
    normalise(x1, y1, x2, y2);
    return create("CreateEllipticRgn", ellipseRegion(x1, y1, x2, y2));
}

extern "C" HRGN WINAPI CreateEllipticRgnIndirect(const RECT *lprect)
{
    if (!lprect)
        return nullptr;
    return CreateEllipticRgn(lprect->left, lprect->top, lprect->right, lprect->bottom);
}

extern "C" HRGN WINAPI CreateRoundRectRgn(int x1, int y1, int x2, int y2, int w, int h)
{
    normalise(x1, y1, x2, y2);
    return create("CreateRoundRectRgn", roundRectRegion(x1, y1, x2, y2, w, h));
}

extern "C" HRGN WINAPI CreatePolyPolygonRgn(const POINT *pptl, const INT *pc, int cPoly,
                                            int iMode)
{
    if (!pptl || !pc || cPoly <= 0)
        return nullptr;
    return guarded<HRGN>("CreatePolyPolygonRgn", nullptr, [&]() -> HRGN {
        Region all = XCreateRegion();
        const POINT *p = pptl;
        for (int i = 0; i < cPoly; ++i) {
            if (pc[i] < 0) {
                XDestroyRegion(all);
                return nullptr;
            }
            std::vector<XPoint> xp(static_cast<size_t>(pc[i]));
            for (int k = 0; k < pc[i]; ++k)
                xp[static_cast<size_t>(k)] = {static_cast<short>(p[k].x),
                                              static_cast<short>(p[k].y)};
            if (pc[i] >= 3) {
                Region one = XPolygonRegion(xp.data(), pc[i],
                                            iMode == WINDING ? WindingRule : EvenOddRule);
                // Separate polygons combine like an alternate fill.
                XXorRegion(all, one, all);
                XDestroyRegion(one);
            }
            p += pc[i];
        }
        return newRegion(all);
    });
}

extern "C" HRGN WINAPI CreatePolygonRgn(const POINT *pptl, int cPoint, int iMode)
{
    return CreatePolyPolygonRgn(pptl, &cPoint, 1, iMode);
}

extern "C" BOOL WINAPI SetRectRgn(HRGN hrgn, int left, int top, int right, int bottom)
{
    RegionRecord *r = regionRecord(hrgn);
    if (!r)
        return FALSE;
    normalise(left, top, right, bottom);
    r->region.reset(rectRegion(left, top, right, bottom));
    return TRUE;
}

extern "C" int WINAPI CombineRgn(HRGN hrgnDst, HRGN hrgnSrc1, HRGN hrgnSrc2, int iMode)
{
    RegionRecord *d = regionRecord(hrgnDst), *a = regionRecord(hrgnSrc1);
    if (!d || !a || iMode < RGN_AND || iMode > RGN_COPY)
        return ERROR;
    Region out = XRegion::copy(a->region.get());
    if (iMode != RGN_COPY) {
        RegionRecord *b = regionRecord(hrgnSrc2);
        if (!b) {
            XDestroyRegion(out);
            return ERROR;
        }
        Region src2 = b->region.get();
        switch (iMode) {
        case RGN_AND:
            XIntersectRegion(out, src2, out);
            break;
        case RGN_OR:
            XUnionRegion(out, src2, out);
            break;
        case RGN_XOR:
            XXorRegion(out, src2, out);
            break;
        case RGN_DIFF:
            XSubtractRegion(out, src2, out);
            break;
        default:
            break;
        }
    }
    d->region.reset(out);
    return regionComplexity(out);
}

extern "C" BOOL WINAPI EqualRgn(HRGN hrgn1, HRGN hrgn2)
{
    RegionRecord *a = regionRecord(hrgn1), *b = regionRecord(hrgn2);
    if (!a || !b)
        return ERROR;
    return XEqualRegion(a->region.get(), b->region.get()) ? TRUE : FALSE;
}

extern "C" int WINAPI OffsetRgn(HRGN hrgn, int x, int y)
{
    RegionRecord *r = regionRecord(hrgn);
    if (!r)
        return ERROR;
    XOffsetRegion(r->region.get(), x, y);
    return regionComplexity(r->region.get());
}

extern "C" int WINAPI GetRgnBox(HRGN hrgn, LPRECT lprc)
{
    RegionRecord *r = regionRecord(hrgn);
    if (!r || !lprc)
        return ERROR;
    if (XEmptyRegion(r->region.get())) {
        *lprc = {0, 0, 0, 0};
        return NULLREGION;
    }
    XRectangle box;
    XClipBox(r->region.get(), &box);
    *lprc = {box.x, box.y, box.x + box.width, box.y + box.height};
    return regionComplexity(r->region.get());
}

extern "C" BOOL WINAPI PtInRegion(HRGN hrgn, int x, int y)
{
    RegionRecord *r = regionRecord(hrgn);
    return r && XPointInRegion(r->region.get(), x, y);
}

extern "C" BOOL WINAPI RectInRegion(HRGN hrgn, const RECT *lprect)
{
    RegionRecord *r = regionRecord(hrgn);
    if (!r || !lprect)
        return FALSE;
    int l = lprect->left, t = lprect->top, rr = lprect->right, b = lprect->bottom;
    normalise(l, t, rr, b);
    if (rr == l || b == t)
        return FALSE;
    return XRectInRegion(r->region.get(), l, t, static_cast<unsigned>(rr - l),
                         static_cast<unsigned>(b - t)) != RectangleOut;
}

extern "C" DWORD WINAPI GetRegionData(HRGN hrgn, DWORD nCount, LPRGNDATA lpRgnData)
{
    RegionRecord *r = regionRecord(hrgn);
    if (!r)
        return 0;
    // Xlib keeps the rectangles private; rebuild them row by row from the
    // region's box by probing spans.
    std::vector<RECT> rects;
    if (!XEmptyRegion(r->region.get())) {
        XRectangle box;
        XClipBox(r->region.get(), &box);
        for (int y = box.y; y < box.y + box.height; ++y) {
            int x = box.x;
            while (x < box.x + box.width) {
                if (!XPointInRegion(r->region.get(), x, y)) {
                    ++x;
                    continue;
                }
                int start = x;
                while (x < box.x + box.width && XPointInRegion(r->region.get(), x, y))
                    ++x;
                RECT span{start, y, x, y + 1};
                // Merge with the same span of the row above.
                bool merged = false;
                for (RECT &prev : rects)
                    if (prev.bottom == y && prev.left == span.left && prev.right == span.right) {
                        prev.bottom = y + 1;
                        merged = true;
                        break;
                    }
                if (!merged)
                    rects.push_back(span);
            }
        }
    }
    DWORD size = static_cast<DWORD>(sizeof(RGNDATAHEADER) + rects.size() * sizeof(RECT));
    if (!lpRgnData)
        return size;
    if (nCount < size)
        return 0;
    lpRgnData->rdh.dwSize = sizeof(RGNDATAHEADER);
    lpRgnData->rdh.iType = RDH_RECTANGLES;
    lpRgnData->rdh.nCount = static_cast<DWORD>(rects.size());
    lpRgnData->rdh.nRgnSize = static_cast<DWORD>(rects.size() * sizeof(RECT));
    GetRgnBox(hrgn, &lpRgnData->rdh.rcBound);
    std::copy(rects.begin(), rects.end(), reinterpret_cast<RECT *>(lpRgnData->Buffer));
    return size;
}

extern "C" OLMO_API Region omRegionGetXRegion(HRGN hrgn)
{
    RegionRecord *r = regionRecord(hrgn);
    return r ? r->region.get() : nullptr;
}

extern "C" OLMO_API BOOL omRegionSetXRegion(HRGN hrgn, Region region)
{
    RegionRecord *r = regionRecord(hrgn);
    if (!r || !region)
        return FALSE;
    r->region.reset(XRegion::copy(region));
    return TRUE;
}

// ---- Clipping --------------------------------------------------------------

namespace
{

int clipResult(DcRecord &dc)
{
    Region r = effectiveClip(dc);
    int c = regionComplexity(r);
    XDestroyRegion(r);
    return c;
}

}  // namespace

extern "C" int WINAPI ExtSelectClipRgn(HDC hdc, HRGN hrgn, int mode)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc)
        return ERROR;
    RegionRecord *r = regionRecord(hrgn);
    if (!hrgn) {
        if (mode != RGN_COPY)
            return ERROR;
        dc->st.clip.reset();
        return clipResult(*dc);
    }
    if (!r || mode < RGN_AND || mode > RGN_COPY)
        return ERROR;
    Region src = r->region.get();
    if (mode == RGN_COPY || !dc->st.clip) {
        // Combining with "no clip" means combining with the whole surface.
        Region base = mode == RGN_COPY ? XCreateRegion() : rectRegion(0, 0, dc->width, dc->height);
        if (mode == RGN_COPY)
            XUnionRegion(src, base, base);
        dc->st.clip.reset(base);
        if (mode == RGN_COPY)
            return clipResult(*dc);
    }
    Region cur = dc->st.clip.get();
    switch (mode) {
    case RGN_AND:
        XIntersectRegion(cur, src, cur);
        break;
    case RGN_OR:
        XUnionRegion(cur, src, cur);
        break;
    case RGN_XOR:
        XXorRegion(cur, src, cur);
        break;
    case RGN_DIFF:
        XSubtractRegion(cur, src, cur);
        break;
    default:
        break;
    }
    return clipResult(*dc);
}

extern "C" int WINAPI SelectClipRgn(HDC hdc, HRGN hrgn)
{
    return ExtSelectClipRgn(hdc, hrgn, RGN_COPY);
}

static int clipRect(HDC hdc, int left, int top, int right, int bottom, int mode)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc)
        return ERROR;
    RECT d = rectToDevice(*dc, left, top, right, bottom);
    Region r = rectRegion(d.left, d.top, d.right, d.bottom);
    if (!dc->st.clip)
        dc->st.clip.reset(rectRegion(0, 0, dc->width, dc->height));
    if (mode == RGN_AND)
        XIntersectRegion(dc->st.clip.get(), r, dc->st.clip.get());
    else
        XSubtractRegion(dc->st.clip.get(), r, dc->st.clip.get());
    XDestroyRegion(r);
    return clipResult(*dc);
}

extern "C" int WINAPI IntersectClipRect(HDC hdc, int left, int top, int right, int bottom)
{
    return clipRect(hdc, left, top, right, bottom, RGN_AND);
}

extern "C" int WINAPI ExcludeClipRect(HDC hdc, int left, int top, int right, int bottom)
{
    return clipRect(hdc, left, top, right, bottom, RGN_DIFF);
}

extern "C" int WINAPI OffsetClipRgn(HDC hdc, int x, int y)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc)
        return ERROR;
    if (dc->st.clip)
        XOffsetRegion(dc->st.clip.get(), scaleX(*dc, x) * (x < 0 ? -1 : 1),
                      scaleY(*dc, y) * (y < 0 ? -1 : 1));
    return clipResult(*dc);
}

extern "C" int WINAPI GetClipRgn(HDC hdc, HRGN hrgn)
{
    DcRecord *dc = dcRecord(hdc);
    RegionRecord *r = regionRecord(hrgn);
    if (!dc || !r)
        return -1;
    if (!dc->st.clip)
        return 0;
    r->region.reset(XRegion::copy(dc->st.clip.get()));
    return 1;
}

extern "C" int WINAPI GetClipBox(HDC hdc, LPRECT lprect)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc || !lprect)
        return ERROR;
    Region r = effectiveClip(*dc);
    int c = regionComplexity(r);
    XRectangle box{0, 0, 0, 0};
    if (c != NULLREGION)
        XClipBox(r, &box);
    XDestroyRegion(r);
    POINT a{box.x, box.y}, z{box.x + box.width, box.y + box.height};
    dpToLp(*dc, a);
    dpToLp(*dc, z);
    *lprect = {std::min(a.x, z.x), std::min(a.y, z.y), std::max(a.x, z.x), std::max(a.y, z.y)};
    return c;
}

extern "C" BOOL WINAPI PtVisible(HDC hdc, int x, int y)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc)
        return -1;
    POINT p{x, y};
    lpToDp(*dc, p);
    Region r = effectiveClip(*dc);
    bool in = XPointInRegion(r, p.x, p.y);
    XDestroyRegion(r);
    return in;
}

extern "C" BOOL WINAPI RectVisible(HDC hdc, const RECT *lprect)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc || !lprect)
        return FALSE;
    RECT d = rectToDevice(*dc, lprect->left, lprect->top, lprect->right, lprect->bottom);
    if (d.right <= d.left || d.bottom <= d.top)
        return FALSE;
    Region r = effectiveClip(*dc);
    bool in = XRectInRegion(r, d.left, d.top, static_cast<unsigned>(d.right - d.left),
                            static_cast<unsigned>(d.bottom - d.top)) != RectangleOut;
    XDestroyRegion(r);
    return in;
}
