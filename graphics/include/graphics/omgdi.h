// Entry points of the graphics layer that the user library calls.  Not part
// of the public headers.
#pragma once

#include <olmo/platform.h>

#include <windef.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <Xm/Xm.h>

OLMO_BEGIN_C

// Version of the graphics layer; it is built together with the kernel layer
// and refuses nothing, but reports a mismatch through the tests.
OLMO_API const char *omGraphicsVersion(void);

// The one device context controls pass with WM_CTLCOLOR*: a screen DC that
// lives for the process (ReleaseDC and DeleteDC refuse it).
OLMO_API extern HDC hGlobalDC;

// Set once the program realises a palette.
OLMO_API extern int ombUsesPalettes;

// The X pixel of system colour `index` (COLOR_*), and of any colour, on the
// display's default visual.
OLMO_API unsigned long omGetSysColorPixel(int index);
OLMO_API unsigned long omColorToPixel(COLORREF color);

// A DC drawing on any X drawable (owner-drawn menu items): released with
// ReleaseDC(NULL, hdc).
OLMO_API HDC omCreateDrawableDC(Drawable drawable, int width, int height);
// What a DC draws on, and its GC with the DC's clip applied (null when it
// has no surface).  Device (0, 0) is at omDCGetOrigin in the drawable.
OLMO_API Drawable omDCGetDrawable(HDC hdc);
OLMO_API GC omDCGetGC(HDC hdc);
// Replaces the clip the window system imposes (the update region while
// painting), in device coordinates; null removes it.  The region is copied.
OLMO_API BOOL omDCSetSystemClip(HDC hdc, Region region);

// A region's X region, read and replaced in place (the copy is taken).
OLMO_API Region omRegionGetXRegion(HRGN hrgn);
OLMO_API BOOL omRegionSetXRegion(HRGN hrgn, Region region);

// A bitmap's pixmap and geometry (0 when it is not a bitmap).
OLMO_API Pixmap omBitmapGetPixmap(HBITMAP hbm, int *width, int *height, int *depth);

// Motif render tables made from a font's own XftFont, so widgets measure
// and draw text as GDI does.  The defaults exist after
// omCreateDefaultControlFont (which needs the display); the control list is
// replaced by a dialog's font while its controls are created.
OLMO_API extern XmFontList omDefaultGUIFontList;
OLMO_API extern XmFontList omControlCreateFontList;
OLMO_API extern HFONT omControlCreatehFont;
OLMO_API extern int bDefaultCtrlCreateFont;
OLMO_API extern int omCharHeightExtraPix;
OLMO_API XmFontList omFontCreateFontList(HFONT hfont);
OLMO_API void omCreateDefaultControlFont(void);
OLMO_API int omComputeDlgCharHeightExtraPixels(HFONT hfont);

// An icon's image (display depth) and mask (depth 1, 1 where opaque).
OLMO_API Pixmap omIconGetDefaultPixmap(HICON hicon);
OLMO_API Pixmap omIconGetMask(HICON hicon, int *width, int *height);

// Forgets the CS_OWNDC device context of a window being destroyed.
OLMO_API void omGdiForgetWindow(HWND hwnd);

OLMO_END_C
