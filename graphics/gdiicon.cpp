// Icons (kind 5: image pixmap and opaque mask), cursors (kind 4, the
// shared OmCursorRecord), and the loaders: system icons, cursors and
// bitmaps, the program's bitmap, icon and cursor resources, and .bmp,
// .ico and .cur files through LoadImage.
#define OEMRESOURCE  // the OBM_* names
#include "gdiprivate.h"

#include "graphics/omcursor.h"
#include "graphics/omgdi.h"

#include <X11/cursorfont.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <map>
#include <mutex>
#include <vector>

namespace
{

using namespace om::gdi;

struct IconRecord : GdiObject {
    IconRecord() : GdiObject(OM_KIND_ICON) {}
    int width = 0, height = 0;
    Pixmap image = 0;  // display depth
    Pixmap mask = 0;   // depth 1: 1 where the icon is opaque
    bool shared = false;
    ~IconRecord() override
    {
        if (omDisplay) {
            if (image)
                XFreePixmap(omDisplay, image);
            if (mask)
                XFreePixmap(omDisplay, mask);
        }
    }
};

IconRecord *iconRecord(HICON h)
{
    return record<IconRecord>(h, OM_KIND_ICON);
}

std::mutex g_sysLock;
std::map<uintptr_t, HICON> g_sysIcons;
std::map<uintptr_t, HCURSOR> g_sysCursors;
std::map<uintptr_t, HBITMAP> g_sysBitmaps;

Pixmap copyPixmap(Display *dpy, Pixmap src, int w, int h, int depth)
{
    Pixmap p = XCreatePixmap(dpy, DefaultRootWindow(dpy), static_cast<unsigned>(w),
                             static_cast<unsigned>(h), static_cast<unsigned>(depth));
    GC gc = XCreateGC(dpy, p, 0, nullptr);
    XCopyArea(dpy, src, p, gc, 0, 0, static_cast<unsigned>(w), static_cast<unsigned>(h), 0, 0);
    XFreeGC(dpy, gc);
    return p;
}

// An icon from a colour image bitmap and a monochrome AND mask (1 =
// transparent), both width x height.
HICON iconFromBitmaps(HBITMAP color, HBITMAP andMask, int maskOffsetY, bool shared)
{
    BitmapRecord *c = bitmapRecord(color), *m = bitmapRecord(andMask);
    Display *dpy = display();
    if (!m || !dpy)
        return nullptr;
    OmAppLock lock;
    int w = m->width, h = c ? c->height : m->height / 2;
    auto *icon = new IconRecord;
    icon->width = w;
    icon->height = h;
    icon->shared = shared;
    int depth = DefaultDepth(dpy, DefaultScreen(dpy));
    icon->image = XCreatePixmap(dpy, DefaultRootWindow(dpy), static_cast<unsigned>(w),
                                static_cast<unsigned>(h), static_cast<unsigned>(depth));
    icon->mask = XCreatePixmap(dpy, DefaultRootWindow(dpy), static_cast<unsigned>(w),
                               static_cast<unsigned>(h), 1);
    GC gc = XCreateGC(dpy, icon->image, 0, nullptr);
    if (c && c->pixmap) {
        if (c->depth == depth) {
            XCopyArea(dpy, c->pixmap, icon->image, gc, 0, 0, static_cast<unsigned>(w),
                      static_cast<unsigned>(h), 0, 0);
        } else {
            XSetForeground(dpy, gc, colorToPixel(RGB(255, 255, 255)));
            XSetBackground(dpy, gc, colorToPixel(RGB(0, 0, 0)));
            XCopyPlane(dpy, c->pixmap, icon->image, gc, 0, 0, static_cast<unsigned>(w),
                       static_cast<unsigned>(h), 0, 0, 1);
        }
    } else {
        // A monochrome icon: the XOR half below the AND half.
        XSetForeground(dpy, gc, colorToPixel(RGB(255, 255, 255)));
        XSetBackground(dpy, gc, colorToPixel(RGB(0, 0, 0)));
        XCopyPlane(dpy, m->pixmap, icon->image, gc, 0, h, static_cast<unsigned>(w),
                   static_cast<unsigned>(h), 0, 0, 1);
    }
    XFreeGC(dpy, gc);
    GC mgc = XCreateGC(dpy, icon->mask, 0, nullptr);
    XSetFunction(dpy, mgc, GXcopyInverted);
    XCopyArea(dpy, m->pixmap, icon->mask, mgc, 0, maskOffsetY, static_cast<unsigned>(w),
              static_cast<unsigned>(h), 0, 0);
    XFreeGC(dpy, mgc);
    return static_cast<HICON>(addObject(icon));
}

// Repacks a depth-1 pixmap into X bitmap bytes (LSB first).
unsigned char *bitsOf(Display *dpy, Pixmap pm, int w, int h, bool invert)
{
    int stride = (w + 7) / 8;
    auto *out = static_cast<unsigned char *>(calloc(static_cast<size_t>(stride), static_cast<size_t>(h)));
    XImage *img = XGetImage(dpy, pm, 0, 0, static_cast<unsigned>(w), static_cast<unsigned>(h), 1,
                            ZPixmap);
    if (!img || !out) {
        if (img)
            XDestroyImage(img);
        return out;
    }
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            if ((XGetPixel(img, x, y) != 0) != invert)
                out[y * stride + x / 8] |= static_cast<unsigned char>(1 << (x % 8));
    XDestroyImage(img);
    return out;
}

HCURSOR addCursor(OmCursorRecord *c)
{
    uint32_t index = omAllocHandle(OM_KIND_CURSOR, c);
    if (!index) {
        omError(OmDiag::HandleTableFull, "LoadCursor");
        free(c);
        return nullptr;
    }
    return reinterpret_cast<HCURSOR>(static_cast<uintptr_t>(omHandleFromIndex(index)));
}

// A cursor from an icon made of the image (foreground where light) and
// its mask.
HCURSOR cursorFromIcon(HICON hicon, int hotX, int hotY)
{
    IconRecord *icon = iconRecord(hicon);
    Display *dpy = omDisplay;
    if (!icon || !dpy)
        return nullptr;
    auto *c = static_cast<OmCursorRecord *>(calloc(1, sizeof(OmCursorRecord)));
    c->width = icon->width;
    c->height = icon->height;
    c->hotX = static_cast<uint16_t>(hotX);
    c->hotY = static_cast<uint16_t>(hotY);
    // The source plane: light image pixels show the foreground (white).
    Pixmap src = XCreatePixmap(dpy, DefaultRootWindow(dpy), static_cast<unsigned>(icon->width),
                               static_cast<unsigned>(icon->height), 1);
    XImage *img = XGetImage(dpy, icon->image, 0, 0, static_cast<unsigned>(icon->width),
                            static_cast<unsigned>(icon->height), AllPlanes, ZPixmap);
    XImage *bits = XGetImage(dpy, src, 0, 0, static_cast<unsigned>(icon->width),
                             static_cast<unsigned>(icon->height), 1, ZPixmap);
    for (int y = 0; img && bits && y < icon->height; ++y)
        for (int x = 0; x < icon->width; ++x) {
            COLORREF col = pixelToColor(XGetPixel(img, x, y));
            XPutPixel(bits, x, y, (GetRValue(col) + GetGValue(col) + GetBValue(col)) >= 384);
        }
    if (bits) {
        GC gc = XCreateGC(dpy, src, 0, nullptr);
        XPutImage(dpy, src, gc, bits, 0, 0, 0, 0, static_cast<unsigned>(icon->width),
                  static_cast<unsigned>(icon->height));
        XFreeGC(dpy, gc);
        XDestroyImage(bits);
    }
    if (img)
        XDestroyImage(img);
    c->sourceBits = bitsOf(dpy, src, icon->width, icon->height, false);
    c->maskBits = bitsOf(dpy, icon->mask, icon->width, icon->height, false);
    XColor fg{}, bg{};
    fg.red = fg.green = fg.blue = 0xFFFF;
    fg.flags = bg.flags = DoRed | DoGreen | DoBlue;
    c->xcursor = XCreatePixmapCursor(dpy, src, icon->mask, &fg, &bg,
                                     static_cast<unsigned>(hotX), static_cast<unsigned>(hotY));
    XFreePixmap(dpy, src);
    return addCursor(c);
}

// ---- System images, drawn with GDI ----------------------------------------

// Draws a 32x32 system icon: a disc with a glyph, or the application
// window.
HICON makeSystemIcon(uintptr_t id)
{
    HDC screen = GetDC(nullptr);
    HDC dc = CreateCompatibleDC(screen);
    HBITMAP color = CreateCompatibleBitmap(screen, 32, 32);
    HBITMAP mask = CreateBitmap(32, 32, 1, 1, nullptr);
    ReleaseDC(nullptr, screen);
    if (!dc || !color || !mask) {
        DeleteDC(dc);
        DeleteObject(color);
        DeleteObject(mask);
        return nullptr;
    }
    HGDIOBJ oldBm = SelectObject(dc, color);
    PatBlt(dc, 0, 0, 32, 32, BLACKNESS);
    COLORREF fill = RGB(255, 255, 255);
    const char *glyph = nullptr;
    COLORREF ink = RGB(255, 255, 255);
    switch (id) {
    case 32513: fill = RGB(224, 0, 0); glyph = "X"; break;             // IDI_HAND
    case 32514: fill = RGB(0, 64, 224); glyph = "?"; break;            // IDI_QUESTION
    case 32515: fill = RGB(255, 224, 0); glyph = "!"; ink = 0; break;  // IDI_EXCLAMATION
    case 32516: fill = RGB(0, 64, 224); glyph = "i"; break;            // IDI_ASTERISK
    default: break;
    }
    HBRUSH brush = CreateSolidBrush(fill);
    HGDIOBJ oldBrush = SelectObject(dc, brush);
    SelectObject(dc, GetStockObject(BLACK_PEN));
    // The mask DC draws the same outline in black (opaque = AND 0).
    HDC mdc = CreateCompatibleDC(dc);
    HGDIOBJ oldMask = SelectObject(mdc, mask);
    PatBlt(mdc, 0, 0, 32, 32, WHITENESS);
    SelectObject(mdc, GetStockObject(BLACK_BRUSH));
    SelectObject(mdc, GetStockObject(BLACK_PEN));
    if (glyph) {
        if (id == 32515) {
            POINT tri[] = {{16, 1}, {31, 30}, {1, 30}};
            Polygon(dc, tri, 3);
            Polygon(mdc, tri, 3);
        } else {
            Ellipse(dc, 1, 1, 31, 31);
            Ellipse(mdc, 1, 1, 31, 31);
        }
        HFONT font = CreateFontA(-20, 0, 0, 0, FW_BOLD, 0, 0, 0, 0, 0, 0, 0, 0, "Arial");
        HGDIOBJ oldFont = SelectObject(dc, font);
        SetBkMode(dc, TRANSPARENT);
        SetTextColor(dc, ink);
        SetTextAlign(dc, TA_CENTER | TA_BASELINE);
        TextOutA(dc, 16, id == 32515 ? 27 : 24, glyph, 1);
        SelectObject(dc, oldFont);
        DeleteObject(font);
    } else {
        // The application: a window with a caption bar.
        Rectangle(dc, 2, 4, 30, 28);
        RECT caption{3, 5, 29, 10};
        FillRect(dc, &caption, GetSysColorBrush(COLOR_ACTIVECAPTION));
        Rectangle(mdc, 2, 4, 30, 28);
    }
    SelectObject(dc, oldBrush);
    DeleteObject(brush);
    SelectObject(dc, oldBm);
    SelectObject(mdc, oldMask);
    DeleteDC(mdc);
    DeleteDC(dc);
    HICON icon = iconFromBitmaps(color, mask, 0, true);
    DeleteObject(color);
    DeleteObject(mask);
    return icon;
}

unsigned cursorShape(uintptr_t id)
{
    switch (id) {
    case 32513: return XC_xterm;
    case 32514: return XC_watch;
    case 32515: return XC_crosshair;
    case 32516: return XC_sb_up_arrow;
    case 32640: case 32646: return XC_fleur;
    case 32641: return XC_icon;
    case 32642: return XC_bottom_right_corner;
    case 32643: return XC_bottom_left_corner;
    case 32644: return XC_sb_h_double_arrow;
    case 32645: return XC_sb_v_double_arrow;
    case 32648: return XC_circle;
    case 32649: return XC_hand2;
    case 32650: return XC_watch;
    case 32651: return XC_question_arrow;
    case 32512: return XC_left_ptr;
    default: return ~0u;
    }
}

HBITMAP makeSystemBitmap(uintptr_t id)
{
    int w = 16, h = 16;
    if (id == OBM_CHECK || id == OBM_MNARROW)
        w = h = 13;
    else if (id == OBM_CHECKBOXES)
        w = 4 * 13, h = 3 * 13;
    HDC screen = GetDC(nullptr);
    HDC dc = CreateCompatibleDC(screen);
    HBITMAP bm = CreateCompatibleBitmap(screen, w, h);
    ReleaseDC(nullptr, screen);
    if (!dc || !bm) {
        DeleteDC(dc);
        return bm;
    }
    HGDIOBJ old = SelectObject(dc, bm);
    RECT all{0, 0, w, h};
    bool plain = id == OBM_CHECK || id == OBM_MNARROW;
    FillRect(dc, &all, GetSysColorBrush(plain ? COLOR_WINDOW : COLOR_BTNFACE));
    SelectObject(dc, GetStockObject(BLACK_BRUSH));
    SelectObject(dc, GetStockObject(BLACK_PEN));
    auto arrow = [&](int dir) {  // 0 up, 1 down, 2 right, 3 left
        POINT p[3];
        int c = w / 2, m = h / 2;
        switch (dir) {
        case 0: p[0] = {c, 4}; p[1] = {c + 4, 9}; p[2] = {c - 4, 9}; break;
        case 1: p[0] = {c - 4, 6}; p[1] = {c + 4, 6}; p[2] = {c, 11}; break;
        case 2: p[0] = {5, m - 4}; p[1] = {10, m}; p[2] = {5, m + 4}; break;
        default: p[0] = {10, m - 4}; p[1] = {10, m + 4}; p[2] = {5, m}; break;
        }
        Polygon(dc, p, 3);
    };
    switch (id) {
    case OBM_UPARROW: case OBM_UPARROWD: case OBM_UPARROWI: arrow(0); break;
    case OBM_DNARROW: case OBM_DNARROWD: case OBM_DNARROWI: case OBM_COMBO: arrow(1); break;
    case OBM_RGARROW: case OBM_RGARROWD: case OBM_RGARROWI: case OBM_MNARROW: arrow(2); break;
    case OBM_LFARROW: case OBM_LFARROWD: case OBM_LFARROWI: arrow(3); break;
    case OBM_CHECK: {
        POINT tick[] = {{2, 6}, {5, 9}, {11, 3}};
        HPEN pen = CreatePen(PS_SOLID, 2, RGB(0, 0, 0));
        HGDIOBJ op = SelectObject(dc, pen);
        Polyline(dc, tick, 3);
        SelectObject(dc, op);
        DeleteObject(pen);
        break;
    }
    case OBM_CLOSE: {
        MoveToEx(dc, 4, 4, nullptr);
        LineTo(dc, 12, 12);
        MoveToEx(dc, 11, 4, nullptr);
        LineTo(dc, 3, 12);
        break;
    }
    default: {
        RECT edge{0, 0, w, h};
        DrawEdge(dc, &edge, EDGE_RAISED, BF_RECT);
        break;
    }
    }
    SelectObject(dc, old);
    DeleteDC(dc);
    return bm;
}

// ---- Resources and files -------------------------------------------------------

#pragma pack(push, 2)
struct GroupEntry {  // RT_GROUP_ICON / RT_GROUP_CURSOR directory entry
    BYTE width, height, colors, reserved;  // cursors: WORD width, WORD height
    WORD planes, bitCount;
    DWORD bytes;
    WORD id;
};
struct FileEntry {  // .ico / .cur directory entry
    BYTE width, height, colors, reserved;
    WORD planesOrHotX, bitCountOrHotY;
    DWORD bytes, offset;
};
#pragma pack(pop)

// Builds an icon from a packed icon image: a DIB of twice the height, the
// XOR image over the AND mask.
HICON iconFromImage(const BYTE *data, size_t size)
{
    if (size < sizeof(BITMAPINFOHEADER))
        return nullptr;
    BITMAPINFOHEADER h;
    memcpy(&h, data, sizeof h);
    if (h.biSize < sizeof h || h.biWidth <= 0 || h.biHeight <= 0)
        return nullptr;
    int w = h.biWidth, ht = h.biHeight / 2;
    size_t colors = h.biBitCount <= 8 ? (h.biClrUsed ? h.biClrUsed : (1u << h.biBitCount)) : 0;
    size_t header = h.biSize + colors * sizeof(RGBQUAD);
    size_t xorStride = static_cast<size_t>((w * h.biBitCount + 31) / 32) * 4;
    size_t andStride = static_cast<size_t>((w + 31) / 32) * 4;
    if (size < header + (xorStride + andStride) * static_cast<size_t>(ht))
        return nullptr;
    std::vector<BYTE> info(header + 2 * sizeof(RGBQUAD));
    memcpy(info.data(), data, header);
    auto *bmi = reinterpret_cast<BITMAPINFO *>(info.data());
    bmi->bmiHeader.biHeight = ht;
    bmi->bmiHeader.biSizeImage = 0;
    const BYTE *xorBits = data + header;
    const BYTE *andBits = xorBits + xorStride * static_cast<size_t>(ht);
    HBITMAP color = bitmapFromDib(bmi, xorBits, DIB_RGB_COLORS, false);
    // The AND plane as a monochrome DIB with a black-and-white table.
    struct {
        BITMAPINFOHEADER h;
        RGBQUAD c[2];
    } mono{};
    mono.h = bmi->bmiHeader;
    mono.h.biBitCount = 1;
    mono.h.biClrUsed = 0;
    mono.h.biCompression = BI_RGB;
    mono.c[1] = {255, 255, 255, 0};
    std::vector<BYTE> andCopy(andBits, andBits + andStride * static_cast<size_t>(ht));
    // 32-bit images with alpha and an empty AND plane take their mask from
    // the alpha channel.
    if (h.biBitCount == 32 && std::all_of(andCopy.begin(), andCopy.end(), [](BYTE b) { return b == 0; })) {
        for (int y = 0; y < ht; ++y)
            for (int x = 0; x < w; ++x)
                if (xorBits[static_cast<size_t>(y) * xorStride + 4 * x + 3] < 128)
                    andCopy[static_cast<size_t>(y) * andStride + x / 8] |= static_cast<BYTE>(0x80 >> (x % 8));
    }
    HBITMAP mask = bitmapFromDib(reinterpret_cast<BITMAPINFO *>(&mono), andCopy.data(), DIB_RGB_COLORS, true);
    HICON icon = iconFromBitmaps(color, mask, 0, false);
    DeleteObject(color);
    DeleteObject(mask);
    return icon;
}

const BYTE *resourceBytes(HINSTANCE inst, LPCSTR name, LPCSTR type, size_t &size)
{
    HRSRC r = FindResourceA(inst, name, type);
    if (!r)
        return nullptr;
    HGLOBAL g = LoadResource(inst, r);
    size = SizeofResource(inst, r);
    return static_cast<const BYTE *>(LockResource(g));
}

// Picks the directory entry nearest to cx x cy with the most colours.
template <class Entry, class Size>
int bestEntry(const Entry *e, int count, int cx, int cy, Size sizeOf)
{
    int best = -1;
    long bestScore = 0;
    for (int i = 0; i < count; ++i) {
        auto [w, h, bits] = sizeOf(e[i]);
        long score = std::labs(w - cx) * 1000 + std::labs(h - cy) * 1000 - bits;
        if (best < 0 || score < bestScore) {
            best = i;
            bestScore = score;
        }
    }
    return best;
}

HANDLE loadGroup(HINSTANCE inst, LPCSTR name, bool cursor, int cx, int cy)
{
    size_t size = 0;
    const BYTE *dir = resourceBytes(inst, name, cursor ? RT_GROUP_CURSOR : RT_GROUP_ICON, size);
    if (!dir || size < 6)
        return nullptr;
    WORD count;
    memcpy(&count, dir + 4, 2);
    if (size < 6 + count * sizeof(GroupEntry) || count == 0)
        return nullptr;
    const auto *entries = reinterpret_cast<const GroupEntry *>(dir + 6);
    int i = bestEntry(entries, count, cx, cy, [&](const GroupEntry &e) {
        int w = cursor ? (e.width | (e.height << 8)) : (e.width ? e.width : 256);
        int h = cursor ? w : (e.height ? e.height : 256);
        return std::tuple<int, int, int>(w, h, e.bitCount);
    });
    size_t isize = 0;
    const BYTE *image = resourceBytes(inst, MAKEINTRESOURCEA(entries[i].id),
                                      cursor ? RT_CURSOR : RT_ICON, isize);
    if (!image)
        return nullptr;
    if (!cursor)
        return iconFromImage(image, isize);
    if (isize < 4)
        return nullptr;
    WORD hot[2];
    memcpy(hot, image, 4);
    HICON icon = iconFromImage(image + 4, isize - 4);
    HCURSOR c = cursorFromIcon(icon, hot[0], hot[1]);
    DestroyIcon(icon);
    return c;
}

HANDLE loadFile(const char *path, UINT type, int cx, int cy)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return nullptr;
    std::vector<BYTE> data((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (type == IMAGE_BITMAP) {
        if (data.size() < 14 + sizeof(BITMAPINFOHEADER) || data[0] != 'B' || data[1] != 'M')
            return nullptr;
        DWORD offset;
        memcpy(&offset, data.data() + 10, 4);
        if (offset >= data.size() || offset < 14 + sizeof(BITMAPINFOHEADER))
            return nullptr;
        // The header sits at offset 14 of the file: copy it to aligned memory.
        std::vector<DWORD> header((offset - 14 + 3) / 4 + sizeof(BITMAPINFO) / 4);
        memcpy(header.data(), data.data() + 14, offset - 14);
        const auto *bmi = reinterpret_cast<const BITMAPINFO *>(header.data());
        return bitmapFromDib(bmi, data.data() + offset, DIB_RGB_COLORS, bmi->bmiHeader.biBitCount == 1);
    }
    if (data.size() < 6)
        return nullptr;
    WORD count;
    memcpy(&count, data.data() + 4, 2);
    if (count == 0 || data.size() < 6 + count * sizeof(FileEntry))
        return nullptr;
    const auto *entries = reinterpret_cast<const FileEntry *>(data.data() + 6);
    int i = bestEntry(entries, count, cx, cy, [](const FileEntry &e) {
        return std::tuple<int, int, int>(e.width ? e.width : 256, e.height ? e.height : 256,
                                         e.bitCountOrHotY);
    });
    const FileEntry &e = entries[i];
    if (static_cast<size_t>(e.offset) + e.bytes > data.size())
        return nullptr;
    HICON icon = iconFromImage(data.data() + e.offset, e.bytes);
    if (type == IMAGE_ICON)
        return icon;
    HCURSOR c = cursorFromIcon(icon, e.planesOrHotX, e.bitCountOrHotY);
    DestroyIcon(icon);
    return c;
}

uintptr_t resourceId(LPCSTR name)
{
    return reinterpret_cast<uintptr_t>(name);
}

}  // namespace

// ---- Icons ---------------------------------------------------------------------

extern "C" HICON WINAPI CreateIconIndirect(PICONINFO piconinfo)
{
    if (!piconinfo)
        return nullptr;
    return guarded<HICON>("CreateIconIndirect", nullptr, [&]() -> HICON {
        BitmapRecord *m = bitmapRecord(piconinfo->hbmMask);
        if (!m)
            return nullptr;
        HICON icon = iconFromBitmaps(piconinfo->hbmColor, piconinfo->hbmMask, 0, false);
        if (piconinfo->fIcon || !icon)
            return icon;
        HCURSOR c = cursorFromIcon(icon, static_cast<int>(piconinfo->xHotspot),
                                   static_cast<int>(piconinfo->yHotspot));
        DestroyIcon(icon);
        return reinterpret_cast<HICON>(c);
    });
}

extern "C" BOOL WINAPI DestroyIcon(HICON hIcon)
{
    if (omIsHandleOfKind(omHandleValue(hIcon), OM_KIND_CURSOR))
        return DestroyCursor(reinterpret_cast<HCURSOR>(hIcon));
    IconRecord *icon = iconRecord(hIcon);
    if (!icon)
        return FALSE;
    if (icon->shared)
        return TRUE;
    destroyObject(hIcon, icon);
    return TRUE;
}

extern "C" BOOL WINAPI DestroyCursor(HCURSOR hCursor)
{
    auto *c = static_cast<OmCursorRecord *>(omHandleRecord(omHandleValue(hCursor), OM_KIND_CURSOR));
    if (!c || c->shared)
        return FALSE;
    if (c->xcursor && omDisplay)
        XFreeCursor(omDisplay, c->xcursor);
    free(c->sourceBits);
    free(c->maskBits);
    omFreeHandle(omHandleValue(hCursor));
    free(c);
    return TRUE;
}

extern "C" HICON WINAPI CopyIcon(HICON hIcon)
{
    IconRecord *icon = iconRecord(hIcon);
    Display *dpy = omDisplay;
    if (!icon || !dpy)
        return nullptr;
    OmAppLock lock;
    auto *copy = new IconRecord;
    copy->width = icon->width;
    copy->height = icon->height;
    copy->image = copyPixmap(dpy, icon->image, icon->width, icon->height,
                             DefaultDepth(dpy, DefaultScreen(dpy)));
    copy->mask = copyPixmap(dpy, icon->mask, icon->width, icon->height, 1);
    return static_cast<HICON>(addObject(copy));
}

extern "C" BOOL WINAPI GetIconInfo(HICON hIcon, PICONINFO piconinfo)
{
    IconRecord *icon = iconRecord(hIcon);
    if (!icon || !piconinfo || !omDisplay)
        return FALSE;
    *piconinfo = ICONINFO{};
    piconinfo->fIcon = TRUE;
    piconinfo->xHotspot = static_cast<DWORD>(icon->width / 2);
    piconinfo->yHotspot = static_cast<DWORD>(icon->height / 2);
    piconinfo->hbmColor = CreateBitmap(icon->width, icon->height, 1, 32, nullptr);
    piconinfo->hbmMask = CreateBitmap(icon->width, icon->height, 1, 1, nullptr);
    BitmapRecord *c = bitmapRecord(piconinfo->hbmColor), *m = bitmapRecord(piconinfo->hbmMask);
    if (!c || !m)
        return FALSE;
    OmAppLock lock;
    GC gc = XCreateGC(omDisplay, c->pixmap, 0, nullptr);
    XCopyArea(omDisplay, icon->image, c->pixmap, gc, 0, 0, static_cast<unsigned>(icon->width),
              static_cast<unsigned>(icon->height), 0, 0);
    XFreeGC(omDisplay, gc);
    GC mgc = XCreateGC(omDisplay, m->pixmap, 0, nullptr);
    XSetFunction(omDisplay, mgc, GXcopyInverted);  // back to AND-mask sense
    XCopyArea(omDisplay, icon->mask, m->pixmap, mgc, 0, 0, static_cast<unsigned>(icon->width),
              static_cast<unsigned>(icon->height), 0, 0);
    XFreeGC(omDisplay, mgc);
    return TRUE;
}

extern "C" BOOL WINAPI DrawIconEx(HDC hdc, int xLeft, int yTop, HICON hIcon, int cxWidth,
                                  int cyWidth, UINT istepIfAniCur, HBRUSH hbrFlickerFreeDraw,
                                  UINT diFlags)
{
    (void)istepIfAniCur;
    (void)hbrFlickerFreeDraw;
    IconRecord *icon = iconRecord(hIcon);
    DcRecord *dc = dcRecord(hdc);
    Display *dpy = omDisplay;
    if (!icon || !dc || !dpy)
        return FALSE;
    return guarded<BOOL>("DrawIconEx", FALSE, [&]() -> BOOL {
        int w = cxWidth ? cxWidth : ((diFlags & DI_DEFAULTSIZE) ? 32 : icon->width);
        int h = cyWidth ? cyWidth : ((diFlags & DI_DEFAULTSIZE) ? 32 : icon->height);
        if (!(diFlags & DI_NORMAL))
            diFlags |= DI_NORMAL;
        // Icons keep their mask in X's sense (1 = opaque).
        // The icon goes through two scratch memory DCs so that scaling,
        // the DC's clip and its mapping all apply as for any blit.
        HBITMAP image = CreateBitmap(icon->width, icon->height, 1, 32, nullptr);
        HBITMAP mask = CreateBitmap(icon->width, icon->height, 1, 1, nullptr);
        BitmapRecord *ib = bitmapRecord(image), *mb = bitmapRecord(mask);
        if (!ib || !mb || ib->stock || mb->stock)
            return FALSE;
        {
            OmAppLock lock;
            GC gc = XCreateGC(dpy, ib->pixmap, 0, nullptr);
            XCopyArea(dpy, icon->image, ib->pixmap, gc, 0, 0, static_cast<unsigned>(icon->width),
                      static_cast<unsigned>(icon->height), 0, 0);
            XFreeGC(dpy, gc);
            GC mgc = XCreateGC(dpy, mb->pixmap, 0, nullptr);
            XCopyArea(dpy, icon->mask, mb->pixmap, mgc, 0, 0, static_cast<unsigned>(icon->width),
                      static_cast<unsigned>(icon->height), 0, 0);
            XFreeGC(dpy, mgc);
        }
        HDC idc = CreateCompatibleDC(hdc), mdc = CreateCompatibleDC(hdc);
        HGDIOBJ oi = SelectObject(idc, image), om = SelectObject(mdc, mask);
        // The mask (1 = opaque) expands to black where opaque and white
        // elsewhere, so SRCAND clears the icon's shape: D & ~M.
        COLORREF text = SetTextColor(hdc, RGB(255, 255, 255)), bk = SetBkColor(hdc, RGB(0, 0, 0));
        BOOL ok = TRUE;
        if (diFlags & DI_MASK)
            ok = StretchBlt(hdc, xLeft, yTop, w, h, mdc, 0, 0, icon->width, icon->height, SRCAND);
        if (ok && (diFlags & DI_IMAGE)) {
            if (diFlags & DI_MASK) {
                // Then the image's opaque part is ORed in: I & M, made in a
                // scratch bitmap where the mask expands to white / black.
                HDC xdc = CreateCompatibleDC(hdc);
                HBITMAP masked = CreateBitmap(icon->width, icon->height, 1, 32, nullptr);
                HGDIOBJ ox = SelectObject(xdc, masked);
                BitBlt(xdc, 0, 0, icon->width, icon->height, idc, 0, 0, SRCCOPY);
                SetTextColor(xdc, RGB(0, 0, 0));
                SetBkColor(xdc, RGB(255, 255, 255));
                BitBlt(xdc, 0, 0, icon->width, icon->height, mdc, 0, 0, SRCAND);
                ok = StretchBlt(hdc, xLeft, yTop, w, h, xdc, 0, 0, icon->width, icon->height,
                                SRCPAINT);
                SelectObject(xdc, ox);
                DeleteDC(xdc);
                DeleteObject(masked);
            } else {
                ok = StretchBlt(hdc, xLeft, yTop, w, h, idc, 0, 0, icon->width, icon->height,
                                SRCCOPY);
            }
        }
        SetTextColor(hdc, text);
        SetBkColor(hdc, bk);
        SelectObject(idc, oi);
        SelectObject(mdc, om);
        DeleteDC(idc);
        DeleteDC(mdc);
        DeleteObject(image);
        DeleteObject(mask);
        return ok;
    });
}

extern "C" BOOL WINAPI DrawIcon(HDC hDC, int X, int Y, HICON hIcon)
{
    return DrawIconEx(hDC, X, Y, hIcon, 0, 0, 0, nullptr, DI_NORMAL | DI_DEFAULTSIZE);
}

extern "C" OLMO_API Pixmap omIconGetDefaultPixmap(HICON hIcon)
{
    IconRecord *icon = iconRecord(hIcon);
    return icon ? icon->image : 0;
}

extern "C" OLMO_API Pixmap omIconGetMask(HICON hIcon, int *width, int *height)
{
    IconRecord *icon = iconRecord(hIcon);
    if (!icon)
        return 0;
    if (width)
        *width = icon->width;
    if (height)
        *height = icon->height;
    return icon->mask;
}

// ---- Loading -------------------------------------------------------------------

extern "C" HICON WINAPI LoadIconA(HINSTANCE hInstance, LPCSTR lpIconName)
{
    if (!lpIconName)
        return nullptr;
    return guarded<HICON>("LoadIconA", nullptr, [&]() -> HICON {
        if (!hInstance && IS_INTRESOURCE(lpIconName)) {
            uintptr_t id = resourceId(lpIconName);
            if (id < 32512 || id > 32518)
                return nullptr;
            std::lock_guard<std::mutex> g(g_sysLock);
            HICON &icon = g_sysIcons[id];
            if (!iconRecord(icon))
                icon = makeSystemIcon(id);
            return icon;
        }
        return static_cast<HICON>(loadGroup(hInstance, lpIconName, false, 32, 32));
    });
}

extern "C" HCURSOR WINAPI LoadCursorA(HINSTANCE hInstance, LPCSTR lpCursorName)
{
    if (!lpCursorName)
        return nullptr;
    return guarded<HCURSOR>("LoadCursorA", nullptr, [&]() -> HCURSOR {
        if (!hInstance && IS_INTRESOURCE(lpCursorName)) {
            uintptr_t id = resourceId(lpCursorName);
            unsigned shape = cursorShape(id);
            if (shape == ~0u)
                return nullptr;
            std::lock_guard<std::mutex> g(g_sysLock);
            HCURSOR &cursor = g_sysCursors[id];
            if (omIsHandleOfKind(omHandleValue(cursor), OM_KIND_CURSOR))
                return cursor;
            auto *c = static_cast<OmCursorRecord *>(calloc(1, sizeof(OmCursorRecord)));
            c->width = c->height = 16;
            c->shared = 1;
            if (Display *dpy = display()) {
                OmAppLock lock;
                c->xcursor = XCreateFontCursor(dpy, shape);
            }
            cursor = addCursor(c);
            return cursor;
        }
        return static_cast<HCURSOR>(loadGroup(hInstance, lpCursorName, true, 32, 32));
    });
}

extern "C" HBITMAP WINAPI LoadBitmapA(HINSTANCE hInstance, LPCSTR lpBitmapName)
{
    if (!lpBitmapName)
        return nullptr;
    return guarded<HBITMAP>("LoadBitmapA", nullptr, [&]() -> HBITMAP {
        if (!hInstance) {
            uintptr_t id = resourceId(lpBitmapName);
            if (!IS_INTRESOURCE(lpBitmapName) || id < OBM_LFARROWI || id > OBM_CLOSE + 12)
                return nullptr;
            // Each call gives a bitmap of the caller's own: programs
            // delete what LoadBitmap returns.
            return makeSystemBitmap(id);
        }
        size_t size = 0;
        const BYTE *dib = resourceBytes(hInstance, lpBitmapName, RT_BITMAP, size);
        if (!dib || size < sizeof(BITMAPINFOHEADER))
            return nullptr;
        const auto *bmi = reinterpret_cast<const BITMAPINFO *>(dib);
        const BITMAPINFOHEADER &h = bmi->bmiHeader;
        size_t colors = h.biBitCount <= 8 ? (h.biClrUsed ? h.biClrUsed : (1u << h.biBitCount)) : 0;
        size_t offset = h.biSize + colors * sizeof(RGBQUAD) + (h.biCompression == BI_BITFIELDS ? 12 : 0);
        if (offset >= size)
            return nullptr;
        return bitmapFromDib(bmi, dib + offset, DIB_RGB_COLORS, h.biBitCount == 1);
    });
}

extern "C" HANDLE WINAPI LoadImageA(HINSTANCE hInst, LPCSTR name, UINT type, int cx, int cy,
                                    UINT fuLoad)
{
    if (!name)
        return nullptr;
    int w = cx ? cx : 32, h = cy ? cy : 32;
    if (fuLoad & LR_LOADFROMFILE) {
        if (IS_INTRESOURCE(name))
            return nullptr;
        return guarded<HANDLE>("LoadImageA", nullptr, [&] { return loadFile(name, type, w, h); });
    }
    switch (type) {
    case IMAGE_BITMAP:
        return LoadBitmapA(hInst, name);
    case IMAGE_ICON:
        if (!hInst)
            return LoadIconA(hInst, name);
        return guarded<HANDLE>("LoadImageA", nullptr, [&] { return loadGroup(hInst, name, false, w, h); });
    case IMAGE_CURSOR:
        if (!hInst)
            return LoadCursorA(hInst, name);
        return guarded<HANDLE>("LoadImageA", nullptr, [&] { return loadGroup(hInst, name, true, w, h); });
    default:
        return nullptr;
    }
}

namespace
{
// The W loaders: an integer resource passes through, a name goes to UTF-8.
std::string narrow(LPCWSTR s)
{
    int n = WideCharToMultiByte(CP_UTF8, 0, s, -1, nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<size_t>(std::max(n, 1)), '\0');
    WideCharToMultiByte(CP_UTF8, 0, s, -1, out.data(), n, nullptr, nullptr);
    return out;
}
}  // namespace

extern "C" HICON WINAPI LoadIconW(HINSTANCE hInstance, LPCWSTR lpIconName)
{
    if (!lpIconName || IS_INTRESOURCE(lpIconName))
        return LoadIconA(hInstance, reinterpret_cast<LPCSTR>(lpIconName));
    return LoadIconA(hInstance, narrow(lpIconName).c_str());
}

extern "C" HCURSOR WINAPI LoadCursorW(HINSTANCE hInstance, LPCWSTR lpCursorName)
{
    if (!lpCursorName || IS_INTRESOURCE(lpCursorName))
        return LoadCursorA(hInstance, reinterpret_cast<LPCSTR>(lpCursorName));
    return LoadCursorA(hInstance, narrow(lpCursorName).c_str());
}

extern "C" HBITMAP WINAPI LoadBitmapW(HINSTANCE hInstance, LPCWSTR lpBitmapName)
{
    if (!lpBitmapName || IS_INTRESOURCE(lpBitmapName))
        return LoadBitmapA(hInstance, reinterpret_cast<LPCSTR>(lpBitmapName));
    return LoadBitmapA(hInstance, narrow(lpBitmapName).c_str());
}

extern "C" HANDLE WINAPI LoadImageW(HINSTANCE hInst, LPCWSTR name, UINT type, int cx, int cy,
                                    UINT fuLoad)
{
    if (!name || IS_INTRESOURCE(name))
        return LoadImageA(hInst, reinterpret_cast<LPCSTR>(name), type, cx, cy, fuLoad);
    return LoadImageA(hInst, narrow(name).c_str(), type, cx, cy, fuLoad);
}
