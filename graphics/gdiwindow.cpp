// The window side of the graphics layer: the hooks the user library
// registers, window DCs (GetDC, GetWindowDC, ReleaseDC, CS_OWNDC), painting
// (BeginPaint, EndPaint), the window coordinate functions and the rectangle
// helpers.
#include "gdiprivate.h"

#include "graphics/omgdi.h"
#include "graphics/omwindowhooks.h"

#include <algorithm>
#include <mutex>
#include <unordered_map>

using namespace om::gdi;

namespace
{

OmGdiWindowHooks g_hooks;
bool g_hooksSet = false;

// CS_OWNDC windows keep one DC for their lifetime.
std::mutex g_ownLock;
std::unordered_map<HWND, HDC> g_ownDCs;

bool paintTarget(HWND hwnd, BOOL whole, OmPaintTarget &t)
{
    return g_hooksSet && g_hooks.getPaintTarget && g_hooks.getPaintTarget(hwnd, whole, &t);
}

void aimAt(DcRecord &dc, const OmPaintTarget &t)
{
    dc.drawable = t.drawable;
    dc.originX = t.x;
    dc.originY = t.y;
    dc.width = t.width;
    dc.height = t.height;
}

// A DC that draws nothing: what a window answers before the user library
// has registered its hooks.
HDC detachedDC(HWND hwnd)
{
    HDC h = createDC(DcType::Window);
    if (DcRecord *dc = dcRecord(h))
        dc->hwnd = hwnd;
    return h;
}

HDC windowDC(HWND hwnd, BOOL whole, const char *function)
{
    if (!hwnd)
        return createDC(DcType::Screen);
    if (!g_hooksSet)
        return detachedDC(hwnd);
    OmPaintTarget t{};
    if (!paintTarget(hwnd, whole, t)) {
        omDebugWarning(OmDiag::BadWindowHandle, function, hwnd);
        return nullptr;
    }
    if (!whole && g_hooks.getClassStyle && (g_hooks.getClassStyle(hwnd) & CS_OWNDC)) {
        std::lock_guard<std::mutex> g(g_ownLock);
        HDC &own = g_ownDCs[hwnd];
        if (!dcRecord(own)) {
            own = createDC(DcType::Window);
            if (DcRecord *dc = dcRecord(own)) {
                dc->hwnd = hwnd;
                dc->ownDC = true;
            }
        }
        if (DcRecord *dc = dcRecord(own))
            aimAt(*dc, t);
        return own;
    }
    HDC h = createDC(DcType::Window);
    if (DcRecord *dc = dcRecord(h)) {
        dc->hwnd = hwnd;
        aimAt(*dc, t);
    }
    return h;
}

bool clientOrigin(HWND hwnd, POINT &origin)
{
    if (!hwnd) {  // the desktop: screen coordinates
        origin = {0, 0};
        return true;
    }
    return g_hooksSet && g_hooks.getClientOrigin && g_hooks.getClientOrigin(hwnd, &origin);
}

}  // namespace

extern "C" OLMO_API void omGdiRegisterWindowHooks(const OmGdiWindowHooks *hooks)
{
    if (hooks) {
        g_hooks = *hooks;
        g_hooksSet = true;
    } else {
        g_hooks = OmGdiWindowHooks{};
        g_hooksSet = false;
    }
}

// Called by the user library when a CS_OWNDC window is destroyed.
extern "C" OLMO_API void omGdiForgetWindow(HWND hwnd)
{
    std::lock_guard<std::mutex> g(g_ownLock);
    auto it = g_ownDCs.find(hwnd);
    if (it == g_ownDCs.end())
        return;
    if (DcRecord *dc = dcRecord(it->second))
        deleteDC(it->second, *dc);
    g_ownDCs.erase(it);
}

extern "C" HDC WINAPI GetDC(HWND hWnd)
{
    return guarded<HDC>("GetDC", nullptr, [&] { return windowDC(hWnd, FALSE, "GetDC"); });
}

extern "C" HDC WINAPI GetWindowDC(HWND hWnd)
{
    return guarded<HDC>("GetWindowDC", nullptr,
                        [&] { return windowDC(hWnd, TRUE, "GetWindowDC"); });
}

extern "C" HDC WINAPI GetDCEx(HWND hWnd, HRGN hrgnClip, DWORD flags)
{
    HDC h = (flags & DCX_WINDOW) ? GetWindowDC(hWnd) : GetDC(hWnd);
    DcRecord *dc = dcRecord(h);
    RegionRecord *rgn = regionRecord(hrgnClip);
    if (dc && rgn && (flags & (DCX_INTERSECTRGN | DCX_EXCLUDERGN))) {
        Region r = rectRegion(0, 0, dc->width, dc->height);
        if (flags & DCX_INTERSECTRGN)
            XIntersectRegion(r, rgn->region.get(), r);
        else
            XSubtractRegion(r, rgn->region.get(), r);
        dc->sysClip.reset(r);
    }
    return h;
}

extern "C" int WINAPI ReleaseDC(HWND hWnd, HDC hDC)
{
    (void)hWnd;
    DcRecord *dc = dcRecord(hDC);
    if (!dc || dc->type == DcType::Memory || dc->type == DcType::Info || hDC == hGlobalDC)
        return 0;
    if (dc->ownDC) {
        dc->sysClip.reset();
        return 1;
    }
    deleteDC(hDC, *dc);
    return 1;
}

extern "C" HDC WINAPI BeginPaint(HWND hWnd, LPPAINTSTRUCT lpPaint)
{
    if (!lpPaint)
        return nullptr;
    return guarded<HDC>("BeginPaint", nullptr, [&]() -> HDC {
        *lpPaint = PAINTSTRUCT{};
        if (!g_hooksSet || !g_hooks.takeUpdateRegion) {
            // No update region: a DC on which nothing shows.
            lpPaint->hdc = detachedDC(hWnd);
            if (DcRecord *dc = dcRecord(lpPaint->hdc))
                dc->sysClip.reset(XCreateRegion());
            return lpPaint->hdc;
        }
        HRGN update = newRegion(XCreateRegion());
        if (!update)
            return nullptr;
        BOOL erase = FALSE;
        if (!g_hooks.takeUpdateRegion(hWnd, update, &erase)) {
            DeleteObject(update);
            omDebugWarning(OmDiag::BadWindowHandle, "BeginPaint", hWnd);
            return nullptr;
        }
        HDC h = windowDC(hWnd, FALSE, "BeginPaint");
        DcRecord *dc = dcRecord(h);
        if (!dc) {
            DeleteObject(update);
            return nullptr;
        }
        if (g_hooks.hideCaret)
            g_hooks.hideCaret(hWnd);
        Region r = XRegion::copy(regionRecord(update)->region.get());
        DeleteObject(update);
        Region area = rectRegion(0, 0, dc->width, dc->height);
        XIntersectRegion(r, area, r);
        XDestroyRegion(area);
        XRectangle box;
        XClipBox(r, &box);
        if (!XEmptyRegion(r))
            lpPaint->rcPaint = {box.x, box.y, box.x + box.width, box.y + box.height};
        dc->sysClip.reset(r);
        lpPaint->hdc = h;
        // fErase tells the program to erase itself: the background was
        // pending and WM_ERASEBKGND left it undone.
        if (erase)
            lpPaint->fErase =
                !(g_hooks.sendEraseBackground && g_hooks.sendEraseBackground(hWnd, h));
        return h;
    });
}

extern "C" BOOL WINAPI EndPaint(HWND hWnd, const PAINTSTRUCT *lpPaint)
{
    if (!lpPaint)
        return FALSE;
    if (g_hooksSet && g_hooks.showCaret)
        g_hooks.showCaret(hWnd);
    ReleaseDC(hWnd, lpPaint->hdc);
    return TRUE;
}

// ---- Window coordinates ----------------------------------------------------

extern "C" BOOL WINAPI GetClientRect(HWND hWnd, LPRECT lpRect)
{
    if (!lpRect)
        return FALSE;
    if (!g_hooksSet || !g_hooks.getClientRect || !g_hooks.getClientRect(hWnd, lpRect)) {
        omDebugWarning(OmDiag::BadWindowHandle, "GetClientRect", hWnd);
        return FALSE;
    }
    return TRUE;
}

extern "C" BOOL WINAPI GetWindowRect(HWND hWnd, LPRECT lpRect)
{
    if (!lpRect)
        return FALSE;
    if (!g_hooksSet || !g_hooks.getWindowRect || !g_hooks.getWindowRect(hWnd, lpRect)) {
        omDebugWarning(OmDiag::BadWindowHandle, "GetWindowRect", hWnd);
        return FALSE;
    }
    return TRUE;
}

extern "C" BOOL WINAPI ClientToScreen(HWND hWnd, LPPOINT lpPoint)
{
    POINT o;
    if (!lpPoint || !hWnd || !clientOrigin(hWnd, o)) {
        if (lpPoint)
            omDebugWarning(OmDiag::BadWindowHandle, "ClientToScreen", hWnd);
        return FALSE;
    }
    lpPoint->x += o.x;
    lpPoint->y += o.y;
    return TRUE;
}

extern "C" BOOL WINAPI ScreenToClient(HWND hWnd, LPPOINT lpPoint)
{
    POINT o;
    if (!lpPoint || !hWnd || !clientOrigin(hWnd, o)) {
        if (lpPoint)
            omDebugWarning(OmDiag::BadWindowHandle, "ScreenToClient", hWnd);
        return FALSE;
    }
    lpPoint->x -= o.x;
    lpPoint->y -= o.y;
    return TRUE;
}

extern "C" int WINAPI MapWindowPoints(HWND hWndFrom, HWND hWndTo, LPPOINT lpPoints, UINT cPoints)
{
    POINT from, to;
    if (!clientOrigin(hWndFrom, from)) {
        omDebugWarning(OmDiag::BadWindowHandle, "MapWindowPoints", hWndFrom);
        return 0;
    }
    if (!clientOrigin(hWndTo, to)) {
        omDebugWarning(OmDiag::BadWindowHandle, "MapWindowPoints", hWndTo);
        return 0;
    }
    int dx = from.x - to.x, dy = from.y - to.y;
    if (lpPoints)
        for (UINT i = 0; i < cPoints; ++i) {
            lpPoints[i].x += dx;
            lpPoints[i].y += dy;
        }
    return MAKELONG(static_cast<WORD>(dx), static_cast<WORD>(dy));
}

// ---- Rectangle helpers -----------------------------------------------------

extern "C" BOOL WINAPI SetRect(LPRECT lprc, int xLeft, int yTop, int xRight, int yBottom)
{
    if (!lprc)
        return FALSE;
    *lprc = {xLeft, yTop, xRight, yBottom};
    return TRUE;
}

extern "C" BOOL WINAPI SetRectEmpty(LPRECT lprc)
{
    return SetRect(lprc, 0, 0, 0, 0);
}

extern "C" BOOL WINAPI CopyRect(LPRECT lprcDst, const RECT *lprcSrc)
{
    if (!lprcDst || !lprcSrc)
        return FALSE;
    *lprcDst = *lprcSrc;
    return TRUE;
}

extern "C" BOOL WINAPI IsRectEmpty(const RECT *lprc)
{
    return !lprc || lprc->left >= lprc->right || lprc->top >= lprc->bottom;
}

extern "C" BOOL WINAPI EqualRect(const RECT *lprc1, const RECT *lprc2)
{
    if (!lprc1 || !lprc2)
        return FALSE;
    return lprc1->left == lprc2->left && lprc1->top == lprc2->top &&
           lprc1->right == lprc2->right && lprc1->bottom == lprc2->bottom;
}

extern "C" BOOL WINAPI PtInRect(const RECT *lprc, POINT pt)
{
    return lprc && pt.x >= lprc->left && pt.x < lprc->right && pt.y >= lprc->top &&
           pt.y < lprc->bottom;
}

extern "C" BOOL WINAPI OffsetRect(LPRECT lprc, int dx, int dy)
{
    if (!lprc)
        return FALSE;
    lprc->left += dx;
    lprc->right += dx;
    lprc->top += dy;
    lprc->bottom += dy;
    return TRUE;
}

extern "C" BOOL WINAPI InflateRect(LPRECT lprc, int dx, int dy)
{
    if (!lprc)
        return FALSE;
    lprc->left -= dx;
    lprc->right += dx;
    lprc->top -= dy;
    lprc->bottom += dy;
    return TRUE;
}

extern "C" BOOL WINAPI IntersectRect(LPRECT lprcDst, const RECT *lprcSrc1, const RECT *lprcSrc2)
{
    if (!lprcDst)
        return FALSE;
    if (!lprcSrc1 || !lprcSrc2 || IsRectEmpty(lprcSrc1) || IsRectEmpty(lprcSrc2) ||
        lprcSrc1->left >= lprcSrc2->right || lprcSrc2->left >= lprcSrc1->right ||
        lprcSrc1->top >= lprcSrc2->bottom || lprcSrc2->top >= lprcSrc1->bottom) {
        SetRectEmpty(lprcDst);
        return FALSE;
    }
    *lprcDst = {std::max(lprcSrc1->left, lprcSrc2->left), std::max(lprcSrc1->top, lprcSrc2->top),
                std::min(lprcSrc1->right, lprcSrc2->right),
                std::min(lprcSrc1->bottom, lprcSrc2->bottom)};
    return TRUE;
}

extern "C" BOOL WINAPI UnionRect(LPRECT lprcDst, const RECT *lprcSrc1, const RECT *lprcSrc2)
{
    if (!lprcDst)
        return FALSE;
    if (!lprcSrc1 || !lprcSrc2) {
        SetRectEmpty(lprcDst);
        return FALSE;
    }
    bool e1 = IsRectEmpty(lprcSrc1), e2 = IsRectEmpty(lprcSrc2);
    if (e1 && e2) {
        SetRectEmpty(lprcDst);
        return FALSE;
    }
    if (e1) {
        *lprcDst = *lprcSrc2;
        return TRUE;
    }
    if (e2) {
        *lprcDst = *lprcSrc1;
        return TRUE;
    }
    *lprcDst = {std::min(lprcSrc1->left, lprcSrc2->left), std::min(lprcSrc1->top, lprcSrc2->top),
                std::max(lprcSrc1->right, lprcSrc2->right),
                std::max(lprcSrc1->bottom, lprcSrc2->bottom)};
    return TRUE;
}

// The source minus the subtrahend when that leaves a rectangle: the
// subtrahend must span the source fully on one axis.
extern "C" BOOL WINAPI SubtractRect(LPRECT lprcDst, const RECT *lprcSrc1, const RECT *lprcSrc2)
{
    if (!lprcDst || !lprcSrc1 || !lprcSrc2)
        return FALSE;
    RECT r = *lprcSrc1;
    RECT cut;
    if (IsRectEmpty(&r)) {
        SetRectEmpty(lprcDst);
        return FALSE;
    }
    if (IntersectRect(&cut, lprcSrc1, lprcSrc2)) {
        if (cut.top == r.top && cut.bottom == r.bottom) {
            if (cut.left == r.left)
                r.left = cut.right;
            else if (cut.right == r.right)
                r.right = cut.left;
        } else if (cut.left == r.left && cut.right == r.right) {
            if (cut.top == r.top)
                r.top = cut.bottom;
            else if (cut.bottom == r.bottom)
                r.bottom = cut.top;
        }
    }
    if (IsRectEmpty(&r)) {
        SetRectEmpty(lprcDst);
        return FALSE;
    }
    *lprcDst = r;
    return TRUE;
}
