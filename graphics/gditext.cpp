// Fonts and text through Xft and fontconfig: LOGFONT to a fontconfig
// pattern (Windows face names mapped to the DejaVu families), metrics and
// extents, TextOut/ExtTextOut, font enumeration, and Motif render tables
// made from the same XftFonts so that widgets and GDI text match.
#include "gdiprivate.h"

#include "graphics/omgdi.h"

#include <X11/Xft/Xft.h>
#include <Xm/Xm.h>
#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace om::gdi
{
namespace
{

// Windows faces programs ask for, and the family we give them.
struct FaceMap {
    const char *face;
    const char *family;
};
const FaceMap kFaces[] = {
    {"MS Sans Serif", "DejaVu Sans"},   {"MS Shell Dlg", "DejaVu Sans"},
    {"MS Shell Dlg 2", "DejaVu Sans"},  {"Microsoft Sans Serif", "DejaVu Sans"},
    {"System", "DejaVu Sans"},          {"Arial", "DejaVu Sans"},
    {"Helvetica", "DejaVu Sans"},       {"Tahoma", "DejaVu Sans"},
    {"Segoe UI", "DejaVu Sans"},        {"Verdana", "DejaVu Sans"},
    {"Courier New", "DejaVu Sans Mono"}, {"Courier", "DejaVu Sans Mono"},
    {"Fixedsys", "DejaVu Sans Mono"},   {"Terminal", "DejaVu Sans Mono"},
    {"Lucida Console", "DejaVu Sans Mono"}, {"Consolas", "DejaVu Sans Mono"},
    {"Times New Roman", "DejaVu Serif"}, {"Times", "DejaVu Serif"},
    {"MS Serif", "DejaVu Serif"},       {"Georgia", "DejaVu Serif"},
};

const char *familyFor(const LOGFONTA &lf)
{
    for (const FaceMap &m : kFaces)
        if (!strcasecmp(lf.lfFaceName, m.face))
            return m.family;
    if (lf.lfFaceName[0])
        return lf.lfFaceName;
    if ((lf.lfPitchAndFamily & 3) == FIXED_PITCH || (lf.lfPitchAndFamily & 0xF0) == FF_MODERN)
        return "DejaVu Sans Mono";
    if ((lf.lfPitchAndFamily & 0xF0) == FF_ROMAN)
        return "DejaVu Serif";
    return "DejaVu Sans";
}

int fcWeight(LONG w)
{
    if (w == 0 || (w > 350 && w < 550))
        return FC_WEIGHT_REGULAR;
    if (w >= 750)
        return FC_WEIGHT_BOLD + (w >= 850 ? 10 : 0);
    if (w >= 650)
        return FC_WEIGHT_BOLD;
    if (w >= 550)
        return FC_WEIGHT_DEMIBOLD;
    if (w <= 150)
        return FC_WEIGHT_THIN;
    return FC_WEIGHT_LIGHT;
}

XftFont *openPixelSize(Display *dpy, const LOGFONTA &lf, double pixels)
{
    FcPattern *p = FcPatternCreate();
    const char *family = familyFor(lf);
    FcPatternAddString(p, FC_FAMILY, reinterpret_cast<const FcChar8 *>(family));
    // A face we do not know still falls back to a sans face, not to
    // whatever fontconfig ranks first.
    FcPatternAddString(p, FC_FAMILY, reinterpret_cast<const FcChar8 *>("DejaVu Sans"));
    FcPatternAddDouble(p, FC_PIXEL_SIZE, pixels);
    FcPatternAddInteger(p, FC_WEIGHT, fcWeight(lf.lfWeight));
    FcPatternAddInteger(p, FC_SLANT, lf.lfItalic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    if (!strcmp(family, "DejaVu Sans Mono"))
        FcPatternAddInteger(p, FC_SPACING, FC_MONO);
    FcResult result;
    FcPattern *match = XftFontMatch(dpy, DefaultScreen(dpy), p, &result);
    FcPatternDestroy(p);
    if (!match)
        return nullptr;
    return XftFontOpenPattern(dpy, match);  // takes the pattern
}

XftFont *font(const DcRecord &dc)
{
    FontRecord *f = fontRecord(dc.st.font);
    return f ? static_cast<XftFont *>(openFont(*f)) : nullptr;
}

XftColor xftColor(COLORREF c, unsigned long pixel)
{
    XftColor x;
    x.pixel = pixel;
    x.color.red = static_cast<unsigned short>(GetRValue(c) * 257);
    x.color.green = static_cast<unsigned short>(GetGValue(c) * 257);
    x.color.blue = static_cast<unsigned short>(GetBValue(c) * 257);
    x.color.alpha = 0xFFFF;
    return x;
}

int textWidth(Display *dpy, XftFont *f, const char *s, int n)
{
    if (n <= 0)
        return 0;
    XGlyphInfo g;
    XftTextExtentsUtf8(dpy, f, reinterpret_cast<const FcChar8 *>(s), n, &g);
    return g.xOff;
}

// Counts characters (code points) of UTF-8 text.
int charCount(const char *s, int n)
{
    int c = 0;
    for (int i = 0; i < n; ++i)
        if ((static_cast<unsigned char>(s[i]) & 0xC0) != 0x80)
            ++c;
    return c;
}

}  // namespace

void *openFont(FontRecord &f)
{
    if (f.xft)
        return f.xft;
    Display *dpy = display();
    if (!dpy)
        return nullptr;
    OmAppLock lock;
    LONG h = f.log.lfHeight;
    XftFont *xf = nullptr;
    if (h < 0) {
        xf = openPixelSize(dpy, f.log, -h);
    } else {
        // A positive height is the cell (ascent + descent): scale the em
        // size so the cell comes out at that height.
        double cell = h ? h : 16;
        xf = openPixelSize(dpy, f.log, cell);
        if (xf && xf->ascent + xf->descent != cell) {
            double em = cell * cell / (xf->ascent + xf->descent);
            XftFontClose(dpy, xf);
            xf = openPixelSize(dpy, f.log, em);
            while (xf && xf->ascent + xf->descent > cell && em > 1) {
                XftFontClose(dpy, xf);
                em -= 0.5;
                xf = openPixelSize(dpy, f.log, em);
            }
        }
    }
    f.xft = xf;
    return xf;
}

void *xftDrawFor(DcRecord &dc)
{
    Display *dpy = omDisplay;
    Drawable d = dcDrawable(dc);
    if (!dpy || !d)
        return nullptr;
    if (dc.xftDraw && dc.xftDrawable != d) {
        XftDrawDestroy(static_cast<XftDraw *>(dc.xftDraw));
        dc.xftDraw = nullptr;
    }
    if (!dc.xftDraw) {
        int scr = DefaultScreen(dpy);
        dc.xftDraw = dc.depth == 1
                         ? XftDrawCreateBitmap(dpy, d)
                         : XftDrawCreate(dpy, d, DefaultVisual(dpy, scr), DefaultColormap(dpy, scr));
        dc.xftDrawable = d;
    }
    Region clip = effectiveClip(dc);
    XOffsetRegion(clip, dc.originX, dc.originY);
    XftDrawSetClip(static_cast<XftDraw *>(dc.xftDraw), clip);
    XDestroyRegion(clip);
    return dc.xftDraw;
}

}  // namespace om::gdi

using namespace om::gdi;

// ---- Creating fonts ----------------------------------------------------------

extern "C" HFONT WINAPI CreateFontIndirectA(const LOGFONTA *lplf)
{
    if (!lplf)
        return nullptr;
    return guarded<HFONT>("CreateFontIndirectA", nullptr, [&] {
        auto *f = new FontRecord;
        f->log = *lplf;
        f->log.lfFaceName[LF_FACESIZE - 1] = 0;
        return static_cast<HFONT>(addObject(f));
    });
}

extern "C" HFONT WINAPI CreateFontIndirectW(const LOGFONTW *lplf)
{
    if (!lplf)
        return nullptr;
    LOGFONTA a{};
    memcpy(&a, lplf, offsetof(LOGFONTA, lfFaceName));
    WideCharToMultiByte(CP_UTF8, 0, lplf->lfFaceName, -1, a.lfFaceName, LF_FACESIZE - 1, nullptr,
                        nullptr);
    return CreateFontIndirectA(&a);
}

extern "C" HFONT WINAPI CreateFontA(int cHeight, int cWidth, int cEscapement, int cOrientation,
                                    int cWeight, DWORD bItalic, DWORD bUnderline, DWORD bStrikeOut,
                                    DWORD iCharSet, DWORD iOutPrecision, DWORD iClipPrecision,
                                    DWORD iQuality, DWORD iPitchAndFamily, LPCSTR pszFaceName)
{
    LOGFONTA lf{};
    lf.lfHeight = cHeight;
    lf.lfWidth = cWidth;
    lf.lfEscapement = cEscapement;
    lf.lfOrientation = cOrientation;
    lf.lfWeight = cWeight;
    lf.lfItalic = static_cast<BYTE>(bItalic);
    lf.lfUnderline = static_cast<BYTE>(bUnderline);
    lf.lfStrikeOut = static_cast<BYTE>(bStrikeOut);
    lf.lfCharSet = static_cast<BYTE>(iCharSet);
    lf.lfOutPrecision = static_cast<BYTE>(iOutPrecision);
    lf.lfClipPrecision = static_cast<BYTE>(iClipPrecision);
    lf.lfQuality = static_cast<BYTE>(iQuality);
    lf.lfPitchAndFamily = static_cast<BYTE>(iPitchAndFamily);
    if (pszFaceName)
        strncpy(lf.lfFaceName, pszFaceName, LF_FACESIZE - 1);
    return CreateFontIndirectA(&lf);
}

// ---- Metrics -------------------------------------------------------------------

extern "C" BOOL WINAPI GetTextMetricsA(HDC hdc, LPTEXTMETRICA lptm)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc || !lptm)
        return FALSE;
    FontRecord *fr = fontRecord(dc->st.font);
    XftFont *f = fr ? static_cast<XftFont *>(openFont(*fr)) : nullptr;
    if (!f)
        return FALSE;
    OmAppLock lock;
    Display *dpy = omDisplay;
    *lptm = TEXTMETRICA{};
    lptm->tmAscent = f->ascent;
    lptm->tmDescent = f->descent;
    lptm->tmHeight = f->ascent + f->descent;
    double em = 0;
    FcPatternGetDouble(f->pattern, FC_PIXEL_SIZE, 0, &em);
    lptm->tmInternalLeading = std::max(0L, lptm->tmHeight - std::lround(em));
    static const char letters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
    lptm->tmAveCharWidth = (textWidth(dpy, f, letters, 52) / 26 + 1) / 2;
    lptm->tmMaxCharWidth = f->max_advance_width;
    lptm->tmWeight = fr->log.lfWeight ? fr->log.lfWeight : FW_NORMAL;
    lptm->tmItalic = fr->log.lfItalic;
    lptm->tmUnderlined = fr->log.lfUnderline;
    lptm->tmStruckOut = fr->log.lfStrikeOut;
    lptm->tmFirstChar = 0x20;
    lptm->tmLastChar = static_cast<char>(0xFF);
    lptm->tmDefaultChar = '?';
    lptm->tmBreakChar = ' ';
    lptm->tmDigitizedAspectX = lptm->tmDigitizedAspectY = 96;
    int spacing = FC_PROPORTIONAL;
    FcPatternGetInteger(f->pattern, FC_SPACING, 0, &spacing);
    // TMPF_FIXED_PITCH set means *variable* pitch.
    lptm->tmPitchAndFamily = static_cast<BYTE>(
        (spacing == FC_MONO ? FF_MODERN : FF_SWISS | TMPF_FIXED_PITCH) | TMPF_VECTOR | TMPF_TRUETYPE);
    lptm->tmCharSet = ANSI_CHARSET;
    return TRUE;
}

extern "C" BOOL WINAPI GetTextMetricsW(HDC hdc, LPTEXTMETRICW lptm)
{
    TEXTMETRICA a;
    if (!lptm || !GetTextMetricsA(hdc, &a))
        return FALSE;
    *lptm = TEXTMETRICW{};
    lptm->tmHeight = a.tmHeight;
    lptm->tmAscent = a.tmAscent;
    lptm->tmDescent = a.tmDescent;
    lptm->tmInternalLeading = a.tmInternalLeading;
    lptm->tmExternalLeading = a.tmExternalLeading;
    lptm->tmAveCharWidth = a.tmAveCharWidth;
    lptm->tmMaxCharWidth = a.tmMaxCharWidth;
    lptm->tmWeight = a.tmWeight;
    lptm->tmItalic = a.tmItalic;
    lptm->tmUnderlined = a.tmUnderlined;
    lptm->tmStruckOut = a.tmStruckOut;
    lptm->tmFirstChar = 0x20;
    lptm->tmLastChar = 0xFFFF;
    lptm->tmDefaultChar = '?';
    lptm->tmBreakChar = ' ';
    lptm->tmPitchAndFamily = a.tmPitchAndFamily;
    lptm->tmCharSet = a.tmCharSet;
    lptm->tmDigitizedAspectX = lptm->tmDigitizedAspectY = 96;
    return TRUE;
}

extern "C" BOOL WINAPI GetTextExtentPoint32A(HDC hdc, LPCSTR lpString, int c, LPSIZE psizl)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc || !psizl || c < 0 || (c > 0 && !lpString))
        return FALSE;
    XftFont *f = font(*dc);
    if (!f)
        return FALSE;
    OmAppLock lock;
    psizl->cx = textWidth(omDisplay, f, lpString, c) + dc->st.textCharExtra * charCount(lpString, c);
    psizl->cy = f->ascent + f->descent;
    return TRUE;
}

extern "C" BOOL WINAPI GetTextExtentPointA(HDC hdc, LPCSTR lpString, int c, LPSIZE lpsz)
{
    return GetTextExtentPoint32A(hdc, lpString, c, lpsz);
}

static std::string toUtf8(LPCWSTR s, int c)
{
    if (c <= 0)
        return {};
    int n = WideCharToMultiByte(CP_UTF8, 0, s, c, nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<size_t>(std::max(n, 0)), '\0');
    if (n > 0)
        WideCharToMultiByte(CP_UTF8, 0, s, c, out.data(), n, nullptr, nullptr);
    return out;
}

extern "C" BOOL WINAPI GetTextExtentPoint32W(HDC hdc, LPCWSTR lpString, int c, LPSIZE psizl)
{
    if (c < 0 || (c > 0 && !lpString))
        return FALSE;
    std::string u = toUtf8(lpString, c);
    return GetTextExtentPoint32A(hdc, u.c_str(), static_cast<int>(u.size()), psizl);
}

extern "C" BOOL WINAPI GetTextExtentPointW(HDC hdc, LPCWSTR lpString, int c, LPSIZE lpsz)
{
    return GetTextExtentPoint32W(hdc, lpString, c, lpsz);
}

extern "C" BOOL WINAPI GetTextExtentExPointA(HDC hdc, LPCSTR lpszString, int cchString,
                                             int nMaxExtent, LPINT lpnFit, LPINT lpnDx,
                                             LPSIZE lpSize)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc || !lpSize || cchString < 0 || (cchString > 0 && !lpszString))
        return FALSE;
    XftFont *f = font(*dc);
    if (!f)
        return FALSE;
    OmAppLock lock;
    int fit = 0;
    for (int i = 1; i <= cchString; ++i) {
        int w = textWidth(omDisplay, f, lpszString, i) + dc->st.textCharExtra * i;
        if (lpnDx)
            lpnDx[i - 1] = w;
        if (nMaxExtent < 0 || w <= nMaxExtent)
            fit = i;
    }
    if (lpnFit)
        *lpnFit = fit;
    return GetTextExtentPoint32A(hdc, lpszString, cchString, lpSize);
}

extern "C" BOOL WINAPI GetCharWidth32A(HDC hdc, UINT iFirst, UINT iLast, LPINT lpBuffer)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc || !lpBuffer || iLast < iFirst)
        return FALSE;
    XftFont *f = font(*dc);
    if (!f)
        return FALSE;
    OmAppLock lock;
    for (UINT ch = iFirst; ch <= iLast; ++ch) {
        FcChar32 c32 = ch;
        XGlyphInfo g;
        XftTextExtents32(omDisplay, f, &c32, 1, &g);
        lpBuffer[ch - iFirst] = g.xOff;
    }
    return TRUE;
}

extern "C" BOOL WINAPI GetCharWidthA(HDC hdc, UINT iFirst, UINT iLast, LPINT lpBuffer)
{
    return GetCharWidth32A(hdc, iFirst, iLast, lpBuffer);
}

extern "C" BOOL WINAPI GetCharWidth32W(HDC hdc, UINT iFirst, UINT iLast, LPINT lpBuffer)
{
    return GetCharWidth32A(hdc, iFirst, iLast, lpBuffer);
}

extern "C" int WINAPI GetTextFaceA(HDC hdc, int c, LPSTR lpName)
{
    DcRecord *dc = dcRecord(hdc);
    FontRecord *f = dc ? fontRecord(dc->st.font) : nullptr;
    if (!f)
        return 0;
    int len = static_cast<int>(strlen(f->log.lfFaceName));
    if (!lpName)
        return len + 1;
    if (c <= 0)
        return 0;
    int n = std::min(len, c - 1);
    memcpy(lpName, f->log.lfFaceName, static_cast<size_t>(n));
    lpName[n] = 0;
    return n + 1;
}

extern "C" int WINAPI GetTextCharset(HDC hdc)
{
    return dcRecord(hdc) ? ANSI_CHARSET : DEFAULT_CHARSET;
}

// ---- Drawing text --------------------------------------------------------------

namespace
{

// Draws UTF-8 text with its reference point at logical (x, y), honouring
// alignment, background mode, underline and strikeout.  lpDx, when given,
// holds the advance of each byte's character.
BOOL drawText(HDC hdc, int x, int y, UINT options, const RECT *rect, const char *s, int n,
              const INT *dx)
{
    DcRecord *dc = dcRecord(hdc);
    if (!dc || n < 0 || (n > 0 && !s))
        return FALSE;
    XftFont *f = font(*dc);
    OmAppLock lock;
    Display *dpy = omDisplay;
    if (!f || !prepareGC(*dc))
        return FALSE;
    UINT align = dc->st.textAlign;
    POINT p{x, y};
    if (align & TA_UPDATECP)
        p = dc->st.pos;
    POINT dev = p;
    lpToDp(*dc, dev);
    // Width from the advances the program gave, else from the font.
    int width = 0;
    std::vector<int> offsets;  // start of each character, relative
    int chars = charCount(s, n);
    if (dx) {
        for (int i = 0; i < n; ++i)
            if ((static_cast<unsigned char>(s[i]) & 0xC0) != 0x80) {
                offsets.push_back(width);
                width += dx[i];
            }
    } else {
        width = textWidth(dpy, f, s, n) + dc->st.textCharExtra * chars;
    }
    int left = dev.x;
    if ((align & (TA_CENTER | TA_RIGHT)) == TA_CENTER)
        left -= width / 2;
    else if (align & TA_RIGHT)
        left -= width;
    int baseline = dev.y;
    if ((align & TA_BASELINE) == TA_BASELINE)
        baseline = dev.y;
    else if (align & TA_BOTTOM)
        baseline = dev.y - f->descent;
    else
        baseline = dev.y + f->ascent;
    // Left-aligned text moves the position past itself, right-aligned text
    // to its start; centred text leaves it where it was.
    if ((align & TA_UPDATECP) && (align & (TA_CENTER | TA_RIGHT)) != TA_CENTER) {
        POINT end{(align & TA_RIGHT) ? left : left + width, dev.y};
        dpToLp(*dc, end);
        dc->st.pos.x = end.x;
    }

    RECT clip{};
    bool hasRect = rect && (options & (ETO_OPAQUE | ETO_CLIPPED));
    if (hasRect)
        clip = rectToDevice(*dc, rect->left, rect->top, rect->right, rect->bottom);
    auto fill = [&](int l, int t, int r, int b, COLORREF c) {
        if (r <= l || b <= t)
            return;
        XGCValues v{};
        v.function = GXcopy;
        v.fill_style = FillSolid;
        v.foreground = colorToPixel(c, dc->depth);
        XChangeGC(dpy, dc->gc, GCFunction | GCFillStyle | GCForeground, &v);
        XFillRectangle(dpy, dcDrawable(*dc), dc->gc, l + dc->originX, t + dc->originY,
                       static_cast<unsigned>(r - l), static_cast<unsigned>(b - t));
    };
    if (hasRect && (options & ETO_OPAQUE))
        fill(clip.left, clip.top, clip.right, clip.bottom, dc->st.bkColor);
    if (hasRect && (options & ETO_CLIPPED)) {
        Region r = effectiveClip(*dc);
        Region box = rectRegion(clip.left, clip.top, clip.right, clip.bottom);
        XIntersectRegion(r, box, r);
        XDestroyRegion(box);
        XOffsetRegion(r, dc->originX, dc->originY);
        XSetRegion(dpy, dc->gc, r);
        XDestroyRegion(r);
    }
    if (dc->st.bkMode == OPAQUE && !(options & ETO_OPAQUE))
        fill(left, baseline - f->ascent, left + width, baseline + f->descent, dc->st.bkColor);

    auto *draw = static_cast<XftDraw *>(xftDrawFor(*dc));
    if (!draw)
        return FALSE;
    if (hasRect && (options & ETO_CLIPPED)) {
        Region r = effectiveClip(*dc);
        Region box = rectRegion(clip.left, clip.top, clip.right, clip.bottom);
        XIntersectRegion(r, box, r);
        XDestroyRegion(box);
        XOffsetRegion(r, dc->originX, dc->originY);
        XftDrawSetClip(draw, r);
        XDestroyRegion(r);
    }
    unsigned long pixel = colorToPixel(dc->st.textColor, dc->depth);
    XftColor color = xftColor(dc->st.textColor, pixel);
    int ox = left + dc->originX, oy = baseline + dc->originY;
    if (dx || dc->st.textCharExtra) {
        int ci = 0, cursor = 0;
        for (int i = 0; i < n;) {
            int len = 1;
            while (i + len < n && (static_cast<unsigned char>(s[i + len]) & 0xC0) == 0x80)
                ++len;
            int at = dx ? offsets[static_cast<size_t>(ci)] : cursor;
            XftDrawStringUtf8(draw, &color, f, ox + at, oy,
                              reinterpret_cast<const FcChar8 *>(s + i), len);
            cursor += textWidth(dpy, f, s + i, len) + dc->st.textCharExtra;
            i += len;
            ++ci;
        }
    } else if (n > 0) {
        XftDrawStringUtf8(draw, &color, f, ox, oy, reinterpret_cast<const FcChar8 *>(s), n);
    }
    FontRecord *fr = fontRecord(dc->st.font);
    if (fr && (fr->log.lfUnderline || fr->log.lfStrikeOut)) {
        int thick = std::max(1, (f->ascent + f->descent) / 14);
        if (fr->log.lfUnderline)
            fill(left, baseline + 1, left + width, baseline + 1 + thick, dc->st.textColor);
        if (fr->log.lfStrikeOut) {
            int sy = baseline - f->ascent / 3;
            fill(left, sy, left + width, sy + thick, dc->st.textColor);
        }
    }
    return TRUE;
}

}  // namespace

extern "C" BOOL WINAPI ExtTextOutA(HDC hdc, int x, int y, UINT options, const RECT *lprect,
                                   LPCSTR lpString, UINT c, const INT *lpDx)
{
    return guarded<BOOL>("ExtTextOutA", FALSE, [&] {
        return drawText(hdc, x, y, options, lprect, lpString, static_cast<int>(c), lpDx);
    });
}

extern "C" BOOL WINAPI TextOutA(HDC hdc, int x, int y, LPCSTR lpString, int c)
{
    return ExtTextOutA(hdc, x, y, 0, nullptr, lpString, c < 0 ? 0 : static_cast<UINT>(c), nullptr);
}

extern "C" BOOL WINAPI ExtTextOutW(HDC hdc, int x, int y, UINT options, const RECT *lprect,
                                   LPCWSTR lpString, UINT c, const INT *lpDx)
{
    if (c > 0 && !lpString)
        return FALSE;
    std::string u = toUtf8(lpString, static_cast<int>(c));
    std::vector<INT> dx;
    if (lpDx) {
        // One advance per UTF-16 unit becomes one per UTF-8 byte (on the
        // first byte of each character).
        for (UINT i = 0; i < c; ++i) {
            WCHAR w = lpString[i];
            int bytes = w < 0x80 ? 1 : w < 0x800 ? 2 : (w >= 0xD800 && w < 0xDC00) ? 4 : 3;
            if (w >= 0xDC00 && w < 0xE000)
                continue;  // low surrogate: already counted
            dx.push_back(lpDx[i]);
            for (int k = 1; k < bytes; ++k)
                dx.push_back(0);
        }
    }
    return ExtTextOutA(hdc, x, y, options, lprect, u.c_str(), static_cast<UINT>(u.size()),
                       lpDx ? dx.data() : nullptr);
}

extern "C" BOOL WINAPI TextOutW(HDC hdc, int x, int y, LPCWSTR lpString, int c)
{
    return ExtTextOutW(hdc, x, y, 0, nullptr, lpString, c < 0 ? 0 : static_cast<UINT>(c), nullptr);
}

// ---- Enumeration -----------------------------------------------------------------

extern "C" int WINAPI EnumFontFamiliesExA(HDC hdc, LPLOGFONTA lpLogfont, FONTENUMPROCA lpProc,
                                          LPARAM lParam, DWORD dwFlags)
{
    (void)dwFlags;
    if (!dcRecord(hdc) || !lpProc)
        return 0;
    FcPattern *pat = FcPatternCreate();
    if (lpLogfont && lpLogfont->lfFaceName[0])
        FcPatternAddString(pat, FC_FAMILY,
                           reinterpret_cast<const FcChar8 *>(familyFor(*lpLogfont)));
    FcObjectSet *os = FcObjectSetBuild(FC_FAMILY, FC_SPACING, FC_SCALABLE, nullptr);
    FcFontSet *set = FcFontList(nullptr, pat, os);
    FcObjectSetDestroy(os);
    FcPatternDestroy(pat);
    int result = 1;
    std::vector<std::string> seen;
    for (int i = 0; set && i < set->nfont && result; ++i) {
        FcChar8 *family = nullptr;
        if (FcPatternGetString(set->fonts[i], FC_FAMILY, 0, &family) != FcResultMatch)
            continue;
        std::string name = reinterpret_cast<const char *>(family);
        if (std::find(seen.begin(), seen.end(), name) != seen.end())
            continue;
        seen.push_back(name);
        int spacing = FC_PROPORTIONAL;
        FcPatternGetInteger(set->fonts[i], FC_SPACING, 0, &spacing);
        ENUMLOGFONTEXA elf{};
        strncpy(elf.elfLogFont.lfFaceName, name.c_str(), LF_FACESIZE - 1);
        strncpy(reinterpret_cast<char *>(elf.elfFullName), name.c_str(), LF_FULLFACESIZE - 1);
        elf.elfLogFont.lfHeight = 16;
        elf.elfLogFont.lfWeight = FW_NORMAL;
        elf.elfLogFont.lfCharSet = ANSI_CHARSET;
        elf.elfLogFont.lfPitchAndFamily =
            static_cast<BYTE>(spacing == FC_MONO ? FIXED_PITCH | FF_MODERN : VARIABLE_PITCH | FF_SWISS);
        NEWTEXTMETRICEXA ntm{};
        ntm.ntmTm.tmHeight = 16;
        ntm.ntmTm.tmWeight = FW_NORMAL;
        ntm.ntmTm.tmCharSet = ANSI_CHARSET;
        ntm.ntmTm.tmPitchAndFamily = elf.elfLogFont.lfPitchAndFamily;
        result = lpProc(reinterpret_cast<const LOGFONTA *>(&elf),
                        reinterpret_cast<const TEXTMETRICA *>(&ntm), TRUETYPE_FONTTYPE, lParam);
    }
    if (set)
        FcFontSetDestroy(set);
    return result;
}

extern "C" int WINAPI EnumFontFamiliesA(HDC hdc, LPCSTR lpLogfont, FONTENUMPROCA lpProc,
                                        LPARAM lParam)
{
    LOGFONTA lf{};
    if (lpLogfont)
        strncpy(lf.lfFaceName, lpLogfont, LF_FACESIZE - 1);
    return EnumFontFamiliesExA(hdc, &lf, lpProc, lParam, 0);
}

// ---- Motif render tables ---------------------------------------------------------

extern "C" {
OLMO_API XmFontList omDefaultGUIFontList = nullptr;
OLMO_API XmFontList omControlCreateFontList = nullptr;
OLMO_API HFONT omControlCreatehFont = nullptr;
OLMO_API int bDefaultCtrlCreateFont = 1;
OLMO_API int omCharHeightExtraPix = -1;
}

// A render table whose one rendition is the font's own XftFont (its own
// reference), so Motif measures and draws exactly what GDI does.
extern "C" OLMO_API XmFontList omFontCreateFontList(HFONT hfont)
{
    FontRecord *f = fontRecord(hfont);
    if (!f || !omAppShell)
        return nullptr;
    XftFont *xf = static_cast<XftFont *>(openFont(*f));
    if (!xf)
        return nullptr;
    OmAppLock lock;
    XftFont *ref = XftFontOpenPattern(omDisplay, FcPatternDuplicate(xf->pattern));
    if (!ref)
        return nullptr;
    Arg args[3];
    int n = 0;
    XtSetArg(args[n], XmNfontType, XmFONT_IS_XFT);
    ++n;
    XtSetArg(args[n], XmNxftFont, ref);
    ++n;
    XtSetArg(args[n], XmNloadModel, XmLOAD_IMMEDIATE);
    ++n;
    XmRendition r = XmRenditionCreate(omAppShell, const_cast<char *>(XmFONTLIST_DEFAULT_TAG),
                                      args, static_cast<Cardinal>(n));
    XmRenderTable table = XmRenderTableAddRenditions(nullptr, &r, 1, XmMERGE_REPLACE);
    XmRenditionFree(r);
    return table;
}

// Makes the default GUI and control font lists (once the display exists).
extern "C" OLMO_API void omCreateDefaultControlFont(void)
{
    if (!omEnsureDisplay() || !omAppShell)
        return;
    if (!omDefaultGUIFontList)
        omDefaultGUIFontList =
            omFontCreateFontList(static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT)));
    if (!omControlCreateFontList) {
        omControlCreatehFont = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
        omControlCreateFontList = omFontCreateFontList(omControlCreatehFont);
    }
}

// The extra pixels a dialog's character height needs beyond the font's
// cell: none, since tmHeight already is the full cell.
extern "C" OLMO_API int omComputeDlgCharHeightExtraPixels(HFONT hfont)
{
    (void)hfont;
    omCharHeightExtraPix = 0;
    return omCharHeightExtraPix;
}
