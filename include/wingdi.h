/*
 * The graphics layer as a Win32 program sees it: device contexts, pens,
 * brushes, fonts, bitmaps, palettes, regions, paths, coordinate spaces,
 * printing and pixel formats.
 */
#ifndef _WINGDI_
#define _WINGDI_

#include <windef.h>

/* Colours. */
#define CLR_INVALID 0xFFFFFFFF

/* Stock objects. */
#define WHITE_BRUSH 0
#define LTGRAY_BRUSH 1
#define GRAY_BRUSH 2
#define DKGRAY_BRUSH 3
#define BLACK_BRUSH 4
#define NULL_BRUSH 5
#define HOLLOW_BRUSH NULL_BRUSH
#define WHITE_PEN 6
#define BLACK_PEN 7
#define NULL_PEN 8
#define OEM_FIXED_FONT 10
#define ANSI_FIXED_FONT 11
#define ANSI_VAR_FONT 12
#define SYSTEM_FONT 13
#define DEVICE_DEFAULT_FONT 14
#define DEFAULT_PALETTE 15
#define SYSTEM_FIXED_FONT 16
#define DEFAULT_GUI_FONT 17
#define DC_BRUSH 18
#define DC_PEN 19
#define STOCK_LAST 19

/* Object types. */
#define OBJ_PEN 1
#define OBJ_BRUSH 2
#define OBJ_DC 3
#define OBJ_METADC 4
#define OBJ_PAL 5
#define OBJ_FONT 6
#define OBJ_BITMAP 7
#define OBJ_REGION 8
#define OBJ_METAFILE 9
#define OBJ_MEMDC 10
#define OBJ_EXTPEN 11
#define OBJ_ENHMETADC 12
#define OBJ_ENHMETAFILE 13
#define OBJ_COLORSPACE 14

/* Pen styles. */
#define PS_SOLID 0
#define PS_DASH 1
#define PS_DOT 2
#define PS_DASHDOT 3
#define PS_DASHDOTDOT 4
#define PS_NULL 5
#define PS_INSIDEFRAME 6
#define PS_USERSTYLE 7
#define PS_ALTERNATE 8
#define PS_STYLE_MASK 0x0000000F
#define PS_ENDCAP_ROUND 0x00000000
#define PS_ENDCAP_SQUARE 0x00000100
#define PS_ENDCAP_FLAT 0x00000200
#define PS_ENDCAP_MASK 0x00000F00
#define PS_JOIN_ROUND 0x00000000
#define PS_JOIN_BEVEL 0x00001000
#define PS_JOIN_MITER 0x00002000
#define PS_JOIN_MASK 0x0000F000
#define PS_COSMETIC 0x00000000
#define PS_GEOMETRIC 0x00010000
#define PS_TYPE_MASK 0x000F0000

/* Brush styles and hatches. */
#define BS_SOLID 0
#define BS_NULL 1
#define BS_HOLLOW BS_NULL
#define BS_HATCHED 2
#define BS_PATTERN 3
#define BS_INDEXED 4
#define BS_DIBPATTERN 5
#define BS_DIBPATTERNPT 6
#define BS_PATTERN8X8 7
#define BS_DIBPATTERN8X8 8
#define BS_MONOPATTERN 9

#define HS_HORIZONTAL 0
#define HS_VERTICAL 1
#define HS_FDIAGONAL 2
#define HS_BDIAGONAL 3
#define HS_CROSS 4
#define HS_DIAGCROSS 5

/* Binary raster operations (SetROP2). */
#define R2_BLACK 1
#define R2_NOTMERGEPEN 2
#define R2_MASKNOTPEN 3
#define R2_NOTCOPYPEN 4
#define R2_MASKPENNOT 5
#define R2_NOT 6
#define R2_XORPEN 7
#define R2_NOTMASKPEN 8
#define R2_MASKPEN 9
#define R2_NOTXORPEN 10
#define R2_NOP 11
#define R2_MERGENOTPEN 12
#define R2_COPYPEN 13
#define R2_MERGEPENNOT 14
#define R2_MERGEPEN 15
#define R2_WHITE 16
#define R2_LAST 16

/* Ternary raster operations (BitBlt and kin). */
#define SRCCOPY ((DWORD)0x00CC0020)
#define SRCPAINT ((DWORD)0x00EE0086)
#define SRCAND ((DWORD)0x008800C6)
#define SRCINVERT ((DWORD)0x00660046)
#define SRCERASE ((DWORD)0x00440328)
#define NOTSRCCOPY ((DWORD)0x00330008)
#define NOTSRCERASE ((DWORD)0x001100A6)
#define MERGECOPY ((DWORD)0x00C000CA)
#define MERGEPAINT ((DWORD)0x00BB0226)
#define PATCOPY ((DWORD)0x00F00021)
#define PATPAINT ((DWORD)0x00FB0A09)
#define PATINVERT ((DWORD)0x005A0049)
#define DSTINVERT ((DWORD)0x00550009)
#define BLACKNESS ((DWORD)0x00000042)
#define WHITENESS ((DWORD)0x00FF0062)
#define NOMIRRORBITMAP ((DWORD)0x80000000)
#define CAPTUREBLT ((DWORD)0x40000000)

/* Background modes. */
#define TRANSPARENT 1
#define OPAQUE 2
#define BKMODE_LAST 2

/* Mapping modes. */
#define MM_TEXT 1
#define MM_LOMETRIC 2
#define MM_HIMETRIC 3
#define MM_LOENGLISH 4
#define MM_HIENGLISH 5
#define MM_TWIPS 6
#define MM_ISOTROPIC 7
#define MM_ANISOTROPIC 8
#define MM_MIN MM_TEXT
#define MM_MAX MM_ANISOTROPIC
#define MM_MAX_FIXEDSCALE MM_TWIPS

/* Graphics modes, arc directions and world transform modes. */
#define GM_COMPATIBLE 1
#define GM_ADVANCED 2
#define GM_LAST 2
#define AD_COUNTERCLOCKWISE 1
#define AD_CLOCKWISE 2
#define MWT_IDENTITY 1
#define MWT_LEFTMULTIPLY 2
#define MWT_RIGHTMULTIPLY 3

/* Layout. */
#define LAYOUT_RTL 0x00000001
#define LAYOUT_BITMAPORIENTATIONPRESERVED 0x00000008

/* Text alignment. */
#define TA_NOUPDATECP 0
#define TA_UPDATECP 1
#define TA_LEFT 0
#define TA_RIGHT 2
#define TA_CENTER 6
#define TA_TOP 0
#define TA_BOTTOM 8
#define TA_BASELINE 24
#define TA_RTLREADING 256
#define TA_MASK (TA_BASELINE + TA_CENTER + TA_UPDATECP + TA_RTLREADING)
#define VTA_BASELINE TA_BASELINE
#define VTA_LEFT TA_BOTTOM
#define VTA_RIGHT TA_TOP
#define VTA_CENTER TA_CENTER
#define VTA_BOTTOM TA_RIGHT
#define VTA_TOP TA_LEFT

/* ExtTextOut options. */
#define ETO_OPAQUE 0x0002
#define ETO_CLIPPED 0x0004
#define ETO_GLYPH_INDEX 0x0010
#define ETO_RTLREADING 0x0080
#define ETO_NUMERICSLOCAL 0x0400
#define ETO_NUMERICSLATIN 0x0800
#define ETO_IGNORELANGUAGE 0x1000
#define ETO_PDY 0x2000

/* Fonts: face name sizes, weights, character sets, precisions, qualities,
 * pitches and families. */
#define LF_FACESIZE 32
#define LF_FULLFACESIZE 64

#define FW_DONTCARE 0
#define FW_THIN 100
#define FW_EXTRALIGHT 200
#define FW_LIGHT 300
#define FW_NORMAL 400
#define FW_MEDIUM 500
#define FW_SEMIBOLD 600
#define FW_BOLD 700
#define FW_EXTRABOLD 800
#define FW_HEAVY 900
#define FW_ULTRALIGHT FW_EXTRALIGHT
#define FW_REGULAR FW_NORMAL
#define FW_DEMIBOLD FW_SEMIBOLD
#define FW_ULTRABOLD FW_EXTRABOLD
#define FW_BLACK FW_HEAVY

#define ANSI_CHARSET 0
#define DEFAULT_CHARSET 1
#define SYMBOL_CHARSET 2
#define MAC_CHARSET 77
#define SHIFTJIS_CHARSET 128
#define HANGEUL_CHARSET 129
#define HANGUL_CHARSET 129
#define JOHAB_CHARSET 130
#define GB2312_CHARSET 134
#define CHINESEBIG5_CHARSET 136
#define GREEK_CHARSET 161
#define TURKISH_CHARSET 162
#define VIETNAMESE_CHARSET 163
#define HEBREW_CHARSET 177
#define ARABIC_CHARSET 178
#define BALTIC_CHARSET 186
#define RUSSIAN_CHARSET 204
#define THAI_CHARSET 222
#define EASTEUROPE_CHARSET 238
#define OEM_CHARSET 255

#define OUT_DEFAULT_PRECIS 0
#define OUT_STRING_PRECIS 1
#define OUT_CHARACTER_PRECIS 2
#define OUT_STROKE_PRECIS 3
#define OUT_TT_PRECIS 4
#define OUT_DEVICE_PRECIS 5
#define OUT_RASTER_PRECIS 6
#define OUT_TT_ONLY_PRECIS 7
#define OUT_OUTLINE_PRECIS 8
#define OUT_SCREEN_OUTLINE_PRECIS 9
#define OUT_PS_ONLY_PRECIS 10

#define CLIP_DEFAULT_PRECIS 0
#define CLIP_CHARACTER_PRECIS 1
#define CLIP_STROKE_PRECIS 2
#define CLIP_MASK 0xf
#define CLIP_LH_ANGLES (1 << 4)
#define CLIP_TT_ALWAYS (2 << 4)
#define CLIP_DFA_DISABLE (4 << 4)
#define CLIP_EMBEDDED (8 << 4)

#define DEFAULT_QUALITY 0
#define DRAFT_QUALITY 1
#define PROOF_QUALITY 2
#define NONANTIALIASED_QUALITY 3
#define ANTIALIASED_QUALITY 4
#define CLEARTYPE_QUALITY 5
#define CLEARTYPE_NATURAL_QUALITY 6

#define DEFAULT_PITCH 0
#define FIXED_PITCH 1
#define VARIABLE_PITCH 2
#define MONO_FONT 8

#define FF_DONTCARE (0 << 4)
#define FF_ROMAN (1 << 4)
#define FF_SWISS (2 << 4)
#define FF_MODERN (3 << 4)
#define FF_SCRIPT (4 << 4)
#define FF_DECORATIVE (5 << 4)

/* TEXTMETRIC tmPitchAndFamily bits; note TMPF_FIXED_PITCH set means the
 * font is NOT fixed-pitch. */
#define TMPF_FIXED_PITCH 0x01
#define TMPF_VECTOR 0x02
#define TMPF_TRUETYPE 0x04
#define TMPF_DEVICE 0x08

/* Font enumeration types and NEWTEXTMETRIC flags. */
#define RASTER_FONTTYPE 0x0001
#define DEVICE_FONTTYPE 0x0002
#define TRUETYPE_FONTTYPE 0x0004

#define NTM_ITALIC 0x00000001
#define NTM_BOLD 0x00000020
#define NTM_REGULAR 0x00000040
#define NTM_NONNEGATIVE_AC 0x00010000
#define NTM_PS_OPENTYPE 0x00020000
#define NTM_TT_OPENTYPE 0x00040000
#define NTM_MULTIPLEMASTER 0x00080000
#define NTM_TYPE1 0x00100000
#define NTM_DSIG 0x00200000

/* AddFontResourceEx flags. */
#define FR_PRIVATE 0x10
#define FR_NOT_ENUM 0x20

/* Regions: results, combine modes, polygon fill modes. */
#define ERROR 0
#define NULLREGION 1
#define SIMPLEREGION 2
#define COMPLEXREGION 3
#define RGN_ERROR ERROR

#define RGN_AND 1
#define RGN_OR 2
#define RGN_XOR 3
#define RGN_DIFF 4
#define RGN_COPY 5
#define RGN_MIN RGN_AND
#define RGN_MAX RGN_COPY

#define RDH_RECTANGLES 1

#define ALTERNATE 1
#define WINDING 2
#define POLYFILL_LAST 2

/* Stretching modes. */
#define BLACKONWHITE 1
#define WHITEONBLACK 2
#define COLORONCOLOR 3
#define HALFTONE 4
#define MAXSTRETCHBLTMODE 4
#define STRETCH_ANDSCANS BLACKONWHITE
#define STRETCH_ORSCANS WHITEONBLACK
#define STRETCH_DELETESCANS COLORONCOLOR
#define STRETCH_HALFTONE HALFTONE

/* Flood fill types. */
#define FLOODFILLBORDER 0
#define FLOODFILLSURFACE 1

/* Device-independent bitmaps. */
#define DIB_RGB_COLORS 0
#define DIB_PAL_COLORS 1
#define CBM_INIT 0x04

#define BI_RGB 0
#define BI_RLE8 1
#define BI_RLE4 2
#define BI_BITFIELDS 3
#define BI_JPEG 4
#define BI_PNG 5

/* Palette entry flags and system palette use. */
#define PC_RESERVED 0x01
#define PC_EXPLICIT 0x02
#define PC_NOCOLLAPSE 0x04

#define SYSPAL_ERROR 0
#define SYSPAL_STATIC 1
#define SYSPAL_NOSTATIC 2
#define SYSPAL_NOSTATIC256 3

/* Path point types (GetPath, PolyDraw). */
#define PT_CLOSEFIGURE 0x01
#define PT_LINETO 0x02
#define PT_BEZIERTO 0x04
#define PT_MOVETO 0x06

/* GetDeviceCaps indexes. */
#define DRIVERVERSION 0
#define TECHNOLOGY 2
#define HORZSIZE 4
#define VERTSIZE 6
#define HORZRES 8
#define VERTRES 10
#define BITSPIXEL 12
#define PLANES 14
#define NUMBRUSHES 16
#define NUMPENS 18
#define NUMMARKERS 20
#define NUMFONTS 22
#define NUMCOLORS 24
#define PDEVICESIZE 26
#define CURVECAPS 28
#define LINECAPS 30
#define POLYGONALCAPS 32
#define TEXTCAPS 34
#define CLIPCAPS 36
#define RASTERCAPS 38
#define ASPECTX 40
#define ASPECTY 42
#define ASPECTXY 44
#define LOGPIXELSX 88
#define LOGPIXELSY 90
#define SIZEPALETTE 104
#define NUMRESERVED 106
#define COLORRES 108
#define PHYSICALWIDTH 110
#define PHYSICALHEIGHT 111
#define PHYSICALOFFSETX 112
#define PHYSICALOFFSETY 113
#define SCALINGFACTORX 114
#define SCALINGFACTORY 115
#define VREFRESH 116
#define DESKTOPVERTRES 117
#define DESKTOPHORZRES 118
#define BLTALIGNMENT 119
#define SHADEBLENDCAPS 120
#define COLORMGMTCAPS 121

/* TECHNOLOGY values. */
#define DT_PLOTTER 0
#define DT_RASDISPLAY 1
#define DT_RASPRINTER 2
#define DT_RASCAMERA 3
#define DT_CHARSTREAM 4
#define DT_METAFILE 5
#define DT_DISPFILE 6

/* CURVECAPS, LINECAPS, POLYGONALCAPS, TEXTCAPS and CLIPCAPS bits. */
#define CC_NONE 0
#define CC_CIRCLES 1
#define CC_PIE 2
#define CC_CHORD 4
#define CC_ELLIPSES 8
#define CC_WIDE 16
#define CC_STYLED 32
#define CC_WIDESTYLED 64
#define CC_INTERIORS 128
#define CC_ROUNDRECT 256

#define LC_NONE 0
#define LC_POLYLINE 2
#define LC_MARKER 4
#define LC_POLYMARKER 8
#define LC_WIDE 16
#define LC_STYLED 32
#define LC_WIDESTYLED 64
#define LC_INTERIORS 128

#define PC_NONE 0
#define PC_POLYGON 1
#define PC_RECTANGLE 2
#define PC_WINDPOLYGON 4
#define PC_TRAPEZOID 4
#define PC_SCANLINE 8
#define PC_WIDE 16
#define PC_STYLED 32
#define PC_WIDESTYLED 64
#define PC_INTERIORS 128
#define PC_POLYPOLYGON 256
#define PC_PATHS 512

#define TC_OP_CHARACTER 0x00000001
#define TC_OP_STROKE 0x00000002
#define TC_CP_STROKE 0x00000004
#define TC_CR_90 0x00000008
#define TC_CR_ANY 0x00000010
#define TC_SF_X_YINDEP 0x00000020
#define TC_SA_DOUBLE 0x00000040
#define TC_SA_INTEGER 0x00000080
#define TC_SA_CONTIN 0x00000100
#define TC_EA_DOUBLE 0x00000200
#define TC_IA_ABLE 0x00000400
#define TC_UA_ABLE 0x00000800
#define TC_SO_ABLE 0x00001000
#define TC_RA_ABLE 0x00002000
#define TC_VA_ABLE 0x00004000
#define TC_RESERVED 0x00008000
#define TC_SCROLLBLT 0x00010000

#define CP_NONE 0
#define CP_RECTANGLE 1
#define CP_REGION 2

/* RASTERCAPS bits. */
#define RC_BITBLT 1
#define RC_BANDING 2
#define RC_SCALING 4
#define RC_BITMAP64 8
#define RC_GDI20_OUTPUT 0x0010
#define RC_GDI20_STATE 0x0020
#define RC_SAVEBITMAP 0x0040
#define RC_DI_BITMAP 0x0080
#define RC_PALETTE 0x0100
#define RC_DIBTODEV 0x0200
#define RC_BIGFONT 0x0400
#define RC_STRETCHBLT 0x0800
#define RC_FLOODFILL 0x1000
#define RC_STRETCHDIB 0x2000
#define RC_OP_DX_OUTPUT 0x4000
#define RC_DEVBITS 0x8000

/* SHADEBLENDCAPS bits. */
#define SB_NONE 0x00000000
#define SB_CONST_ALPHA 0x00000001
#define SB_PIXEL_ALPHA 0x00000002
#define SB_PREMULT_ALPHA 0x00000004
#define SB_GRAD_RECT 0x00000010
#define SB_GRAD_TRI 0x00000020

/* Error results of the functions that return a count or a handle. */
#define GDI_ERROR 0xFFFFFFFF
#define HGDI_ERROR ((HANDLE)(LONG_PTR)-1)

/* Alpha blending and gradient fills. */
#define AC_SRC_OVER 0x00
#define AC_SRC_ALPHA 0x01
#define GRADIENT_FILL_RECT_H 0x00000000
#define GRADIENT_FILL_RECT_V 0x00000001
#define GRADIENT_FILL_TRIANGLE 0x00000002

/* Printing. */
#define CCHDEVICENAME 32
#define CCHFORMNAME 32
#define DI_APPBANDING 0x00000001
#define SP_ERROR (-1)

/* DEVMODE: the structure version, dmFields bits and orientations. */
#define DM_SPECVERSION 0x0401
#define DM_ORIENTATION 0x00000001
#define DM_PAPERSIZE 0x00000002
#define DM_PAPERLENGTH 0x00000004
#define DM_PAPERWIDTH 0x00000008
#define DM_SCALE 0x00000010
#define DM_POSITION 0x00000020
#define DM_NUP 0x00000040
#define DM_DISPLAYORIENTATION 0x00000080
#define DM_COPIES 0x00000100
#define DM_DEFAULTSOURCE 0x00000200
#define DM_PRINTQUALITY 0x00000400
#define DM_COLOR 0x00000800
#define DM_DUPLEX 0x00001000
#define DM_YRESOLUTION 0x00002000
#define DM_TTOPTION 0x00004000
#define DM_COLLATE 0x00008000
#define DM_FORMNAME 0x00010000
#define DM_LOGPIXELS 0x00020000
#define DM_BITSPERPEL 0x00040000
#define DM_PELSWIDTH 0x00080000
#define DM_PELSHEIGHT 0x00100000
#define DM_DISPLAYFLAGS 0x00200000
#define DM_DISPLAYFREQUENCY 0x00400000
#define DM_ICMMETHOD 0x00800000
#define DM_ICMINTENT 0x01000000
#define DM_MEDIATYPE 0x02000000
#define DM_DITHERTYPE 0x04000000
#define DM_PANNINGWIDTH 0x08000000
#define DM_PANNINGHEIGHT 0x10000000
#define DM_DISPLAYFIXEDOUTPUT 0x20000000
#define DMORIENT_PORTRAIT 1
#define DMORIENT_LANDSCAPE 2

/* Pixel format descriptor values. */
#define PFD_TYPE_RGBA 0
#define PFD_TYPE_COLORINDEX 1
#define PFD_MAIN_PLANE 0
#define PFD_OVERLAY_PLANE 1
#define PFD_UNDERLAY_PLANE (-1)
#define PFD_DOUBLEBUFFER 0x00000001
#define PFD_STEREO 0x00000002
#define PFD_DRAW_TO_WINDOW 0x00000004
#define PFD_DRAW_TO_BITMAP 0x00000008
#define PFD_SUPPORT_GDI 0x00000010
#define PFD_SUPPORT_OPENGL 0x00000020
#define PFD_GENERIC_FORMAT 0x00000040
#define PFD_NEED_PALETTE 0x00000080
#define PFD_NEED_SYSTEM_PALETTE 0x00000100
#define PFD_SWAP_EXCHANGE 0x00000200
#define PFD_SWAP_COPY 0x00000400
#define PFD_SWAP_LAYER_BUFFERS 0x00000800
#define PFD_GENERIC_ACCELERATED 0x00001000
#define PFD_SUPPORT_DIRECTDRAW 0x00002000
#define PFD_DIRECT3D_ACCELERATED 0x00004000
#define PFD_SUPPORT_COMPOSITION 0x00008000
#define PFD_DEPTH_DONTCARE 0x20000000
#define PFD_DOUBLEBUFFER_DONTCARE 0x40000000
#define PFD_STEREO_DONTCARE 0x80000000

#ifndef RC_INVOKED

OLMO_BEGIN_C

#include <wingdi_types.h>

/* Device contexts and objects. */
WINGDIAPI HDC WINAPI CreateDCA(LPCSTR pwszDriver, LPCSTR pwszDevice, LPCSTR pszPort,
                               const DEVMODEA *pdm);
WINGDIAPI HDC WINAPI CreateDCW(LPCWSTR pwszDriver, LPCWSTR pwszDevice, LPCWSTR pszPort,
                               const DEVMODEW *pdm);
WINGDIAPI HDC WINAPI CreateICA(LPCSTR pszDriver, LPCSTR pszDevice, LPCSTR pszPort,
                               const DEVMODEA *pdm);
WINGDIAPI HDC WINAPI CreateICW(LPCWSTR pszDriver, LPCWSTR pszDevice, LPCWSTR pszPort,
                               const DEVMODEW *pdm);
WINGDIAPI HDC WINAPI CreateCompatibleDC(HDC hdc);
WINGDIAPI BOOL WINAPI DeleteDC(HDC hdc);
WINGDIAPI int WINAPI SaveDC(HDC hdc);
WINGDIAPI BOOL WINAPI RestoreDC(HDC hdc, int nSavedDC);
WINGDIAPI int WINAPI GetDeviceCaps(HDC hdc, int index);
WINGDIAPI BOOL WINAPI GetDCOrgEx(HDC hdc, LPPOINT lppt);
WINGDIAPI DWORD WINAPI SetLayout(HDC hdc, DWORD l);
WINGDIAPI DWORD WINAPI GetLayout(HDC hdc);
WINGDIAPI HGDIOBJ WINAPI SelectObject(HDC hdc, HGDIOBJ h);
WINGDIAPI HGDIOBJ WINAPI GetCurrentObject(HDC hdc, UINT type);
WINGDIAPI int WINAPI GetObjectA(HANDLE h, int c, LPVOID pv);
WINGDIAPI int WINAPI GetObjectW(HANDLE h, int c, LPVOID pv);
WINGDIAPI DWORD WINAPI GetObjectType(HGDIOBJ h);
WINGDIAPI BOOL WINAPI DeleteObject(HGDIOBJ ho);
WINGDIAPI HGDIOBJ WINAPI GetStockObject(int i);
WINGDIAPI BOOL WINAPI UnrealizeObject(HGDIOBJ h);
WINGDIAPI int WINAPI EnumObjects(HDC hdc, int nType, GOBJENUMPROC lpFunc, LPARAM lParam);
WINGDIAPI BOOL WINAPI GdiFlush(void);

/* Colours and drawing modes. */
WINGDIAPI COLORREF WINAPI SetTextColor(HDC hdc, COLORREF color);
WINGDIAPI COLORREF WINAPI GetTextColor(HDC hdc);
WINGDIAPI COLORREF WINAPI SetBkColor(HDC hdc, COLORREF color);
WINGDIAPI COLORREF WINAPI GetBkColor(HDC hdc);
WINGDIAPI int WINAPI SetBkMode(HDC hdc, int mode);
WINGDIAPI int WINAPI GetBkMode(HDC hdc);
WINGDIAPI int WINAPI SetROP2(HDC hdc, int rop2);
WINGDIAPI int WINAPI GetROP2(HDC hdc);
WINGDIAPI COLORREF WINAPI SetDCBrushColor(HDC hdc, COLORREF color);
WINGDIAPI COLORREF WINAPI GetDCBrushColor(HDC hdc);
WINGDIAPI COLORREF WINAPI SetDCPenColor(HDC hdc, COLORREF color);
WINGDIAPI COLORREF WINAPI GetDCPenColor(HDC hdc);
WINGDIAPI COLORREF WINAPI GetNearestColor(HDC hdc, COLORREF color);
WINGDIAPI int WINAPI SetPolyFillMode(HDC hdc, int mode);
WINGDIAPI int WINAPI GetPolyFillMode(HDC hdc);
WINGDIAPI int WINAPI SetArcDirection(HDC hdc, int dir);
WINGDIAPI int WINAPI GetArcDirection(HDC hdc);
WINGDIAPI BOOL WINAPI SetMiterLimit(HDC hdc, FLOAT limit, PFLOAT old);
WINGDIAPI BOOL WINAPI GetMiterLimit(HDC hdc, PFLOAT plimit);

/* Pens and brushes. */
WINGDIAPI HPEN WINAPI CreatePen(int iStyle, int cWidth, COLORREF color);
WINGDIAPI HPEN WINAPI CreatePenIndirect(const LOGPEN *plpen);
WINGDIAPI HPEN WINAPI ExtCreatePen(DWORD iPenStyle, DWORD cWidth, const LOGBRUSH *plbrush,
                                   DWORD cStyle, const DWORD *pstyle);
WINGDIAPI HBRUSH WINAPI CreateSolidBrush(COLORREF color);
WINGDIAPI HBRUSH WINAPI CreateHatchBrush(int iHatch, COLORREF color);
WINGDIAPI HBRUSH WINAPI CreatePatternBrush(HBITMAP hbm);
WINGDIAPI HBRUSH WINAPI CreateBrushIndirect(const LOGBRUSH *plbrush);
WINGDIAPI HBRUSH WINAPI CreateDIBPatternBrushPt(const VOID *lpPackedDIB, UINT iUsage);
WINGDIAPI BOOL WINAPI SetBrushOrgEx(HDC hdc, int x, int y, LPPOINT lppt);
WINGDIAPI BOOL WINAPI GetBrushOrgEx(HDC hdc, LPPOINT lppt);

/* Lines, curves, shapes and pixels. */
WINGDIAPI BOOL WINAPI MoveToEx(HDC hdc, int x, int y, LPPOINT lppt);
WINGDIAPI BOOL WINAPI LineTo(HDC hdc, int x, int y);
WINGDIAPI BOOL WINAPI GetCurrentPositionEx(HDC hdc, LPPOINT lppt);
WINGDIAPI BOOL WINAPI Polyline(HDC hdc, const POINT *apt, int cpt);
WINGDIAPI BOOL WINAPI PolylineTo(HDC hdc, const POINT *apt, DWORD cpt);
WINGDIAPI BOOL WINAPI PolyPolyline(HDC hdc, const POINT *apt, const DWORD *asz, DWORD csz);
WINGDIAPI BOOL WINAPI Polygon(HDC hdc, const POINT *apt, int cpt);
WINGDIAPI BOOL WINAPI PolyPolygon(HDC hdc, const POINT *apt, const INT *asz, int csz);
WINGDIAPI BOOL WINAPI PolyBezier(HDC hdc, const POINT *apt, DWORD cpt);
WINGDIAPI BOOL WINAPI PolyBezierTo(HDC hdc, const POINT *apt, DWORD cpt);
WINGDIAPI BOOL WINAPI PolyDraw(HDC hdc, const POINT *apt, const BYTE *aj, int cpt);
WINGDIAPI BOOL WINAPI Rectangle(HDC hdc, int left, int top, int right, int bottom);
WINGDIAPI BOOL WINAPI RoundRect(HDC hdc, int left, int top, int right, int bottom, int width,
                                int height);
WINGDIAPI BOOL WINAPI Ellipse(HDC hdc, int left, int top, int right, int bottom);
WINGDIAPI BOOL WINAPI Arc(HDC hdc, int x1, int y1, int x2, int y2, int x3, int y3, int x4, int y4);
WINGDIAPI BOOL WINAPI ArcTo(HDC hdc, int left, int top, int right, int bottom, int xr1, int yr1,
                            int xr2, int yr2);
WINGDIAPI BOOL WINAPI AngleArc(HDC hdc, int x, int y, DWORD r, FLOAT StartAngle, FLOAT SweepAngle);
WINGDIAPI BOOL WINAPI Chord(HDC hdc, int x1, int y1, int x2, int y2, int x3, int y3, int x4,
                            int y4);
WINGDIAPI BOOL WINAPI Pie(HDC hdc, int left, int top, int right, int bottom, int xr1, int yr1,
                          int xr2, int yr2);
WINGDIAPI COLORREF WINAPI SetPixel(HDC hdc, int x, int y, COLORREF color);
WINGDIAPI BOOL WINAPI SetPixelV(HDC hdc, int x, int y, COLORREF color);
WINGDIAPI COLORREF WINAPI GetPixel(HDC hdc, int x, int y);
WINGDIAPI BOOL WINAPI FloodFill(HDC hdc, int x, int y, COLORREF color);
WINGDIAPI BOOL WINAPI ExtFloodFill(HDC hdc, int x, int y, COLORREF color, UINT type);
WINGDIAPI BOOL WINAPI LineDDA(int xStart, int yStart, int xEnd, int yEnd, LINEDDAPROC lpProc,
                              LPARAM data);

/* Block transfers. */
WINGDIAPI BOOL WINAPI PatBlt(HDC hdc, int x, int y, int w, int h, DWORD rop);
WINGDIAPI BOOL WINAPI BitBlt(HDC hdc, int x, int y, int cx, int cy, HDC hdcSrc, int x1, int y1,
                             DWORD rop);
WINGDIAPI BOOL WINAPI StretchBlt(HDC hdcDest, int xDest, int yDest, int wDest, int hDest,
                                 HDC hdcSrc, int xSrc, int ySrc, int wSrc, int hSrc, DWORD rop);
WINGDIAPI BOOL WINAPI MaskBlt(HDC hdcDest, int xDest, int yDest, int width, int height, HDC hdcSrc,
                              int xSrc, int ySrc, HBITMAP hbmMask, int xMask, int yMask, DWORD rop);
WINGDIAPI BOOL WINAPI TransparentBlt(HDC hdcDest, int xoriginDest, int yoriginDest, int wDest,
                                     int hDest, HDC hdcSrc, int xoriginSrc, int yoriginSrc,
                                     int wSrc, int hSrc, UINT crTransparent);
WINGDIAPI BOOL WINAPI AlphaBlend(HDC hdcDest, int xoriginDest, int yoriginDest, int wDest,
                                 int hDest, HDC hdcSrc, int xoriginSrc, int yoriginSrc, int wSrc,
                                 int hSrc, BLENDFUNCTION ftn);
WINGDIAPI BOOL WINAPI GradientFill(HDC hdc, PTRIVERTEX pVertex, ULONG nVertex, PVOID pMesh,
                                   ULONG nMesh, ULONG ulMode);

/* Text. */
WINGDIAPI BOOL WINAPI TextOutA(HDC hdc, int x, int y, LPCSTR lpString, int c);
WINGDIAPI BOOL WINAPI TextOutW(HDC hdc, int x, int y, LPCWSTR lpString, int c);
WINGDIAPI BOOL WINAPI ExtTextOutA(HDC hdc, int x, int y, UINT options, const RECT *lprect,
                                  LPCSTR lpString, UINT c, const INT *lpDx);
WINGDIAPI BOOL WINAPI ExtTextOutW(HDC hdc, int x, int y, UINT options, const RECT *lprect,
                                  LPCWSTR lpString, UINT c, const INT *lpDx);
WINGDIAPI BOOL WINAPI GetTextExtentPointA(HDC hdc, LPCSTR lpString, int c, LPSIZE lpsz);
WINGDIAPI BOOL WINAPI GetTextExtentPointW(HDC hdc, LPCWSTR lpString, int c, LPSIZE lpsz);
WINGDIAPI BOOL WINAPI GetTextExtentPoint32A(HDC hdc, LPCSTR lpString, int c, LPSIZE psizl);
WINGDIAPI BOOL WINAPI GetTextExtentPoint32W(HDC hdc, LPCWSTR lpString, int c, LPSIZE psizl);
WINGDIAPI BOOL WINAPI GetTextExtentExPointA(HDC hdc, LPCSTR lpszString, int cchString,
                                            int nMaxExtent, LPINT lpnFit, LPINT lpnDx,
                                            LPSIZE lpSize);
WINGDIAPI BOOL WINAPI GetTextExtentExPointW(HDC hdc, LPCWSTR lpszString, int cchString,
                                            int nMaxExtent, LPINT lpnFit, LPINT lpnDx,
                                            LPSIZE lpSize);
WINGDIAPI BOOL WINAPI GetTextMetricsA(HDC hdc, LPTEXTMETRICA lptm);
WINGDIAPI BOOL WINAPI GetTextMetricsW(HDC hdc, LPTEXTMETRICW lptm);
WINGDIAPI int WINAPI GetTextFaceA(HDC hdc, int c, LPSTR lpName);
WINGDIAPI int WINAPI GetTextFaceW(HDC hdc, int c, LPWSTR lpName);
WINGDIAPI int WINAPI GetTextCharset(HDC hdc);
WINGDIAPI UINT WINAPI SetTextAlign(HDC hdc, UINT align);
WINGDIAPI UINT WINAPI GetTextAlign(HDC hdc);
WINGDIAPI int WINAPI SetTextCharacterExtra(HDC hdc, int extra);
WINGDIAPI int WINAPI GetTextCharacterExtra(HDC hdc);
WINGDIAPI BOOL WINAPI SetTextJustification(HDC hdc, int extra, int count);
WINGDIAPI BOOL WINAPI GetCharWidthA(HDC hdc, UINT iFirst, UINT iLast, LPINT lpBuffer);
WINGDIAPI BOOL WINAPI GetCharWidthW(HDC hdc, UINT iFirst, UINT iLast, LPINT lpBuffer);
WINGDIAPI BOOL WINAPI GetCharWidth32A(HDC hdc, UINT iFirst, UINT iLast, LPINT lpBuffer);
WINGDIAPI BOOL WINAPI GetCharWidth32W(HDC hdc, UINT iFirst, UINT iLast, LPINT lpBuffer);
WINGDIAPI BOOL WINAPI GetCharABCWidthsA(HDC hdc, UINT wFirst, UINT wLast, LPABC lpABC);
WINGDIAPI BOOL WINAPI GetCharABCWidthsW(HDC hdc, UINT wFirst, UINT wLast, LPABC lpABC);
WINGDIAPI BOOL WINAPI GetCharABCWidthsFloatA(HDC hdc, UINT iFirst, UINT iLast, LPABCFLOAT lpABC);
WINGDIAPI BOOL WINAPI GetCharABCWidthsFloatW(HDC hdc, UINT iFirst, UINT iLast, LPABCFLOAT lpABC);

/* Fonts. */
WINGDIAPI HFONT WINAPI CreateFontA(int cHeight, int cWidth, int cEscapement, int cOrientation,
                                   int cWeight, DWORD bItalic, DWORD bUnderline, DWORD bStrikeOut,
                                   DWORD iCharSet, DWORD iOutPrecision, DWORD iClipPrecision,
                                   DWORD iQuality, DWORD iPitchAndFamily, LPCSTR pszFaceName);
WINGDIAPI HFONT WINAPI CreateFontW(int cHeight, int cWidth, int cEscapement, int cOrientation,
                                   int cWeight, DWORD bItalic, DWORD bUnderline, DWORD bStrikeOut,
                                   DWORD iCharSet, DWORD iOutPrecision, DWORD iClipPrecision,
                                   DWORD iQuality, DWORD iPitchAndFamily, LPCWSTR pszFaceName);
WINGDIAPI HFONT WINAPI CreateFontIndirectA(const LOGFONTA *lplf);
WINGDIAPI HFONT WINAPI CreateFontIndirectW(const LOGFONTW *lplf);
WINGDIAPI int WINAPI EnumFontFamiliesA(HDC hdc, LPCSTR lpLogfont, FONTENUMPROCA lpProc,
                                       LPARAM lParam);
WINGDIAPI int WINAPI EnumFontFamiliesW(HDC hdc, LPCWSTR lpLogfont, FONTENUMPROCW lpProc,
                                       LPARAM lParam);
WINGDIAPI int WINAPI EnumFontFamiliesExA(HDC hdc, LPLOGFONTA lpLogfont, FONTENUMPROCA lpProc,
                                         LPARAM lParam, DWORD dwFlags);
WINGDIAPI int WINAPI EnumFontFamiliesExW(HDC hdc, LPLOGFONTW lpLogfont, FONTENUMPROCW lpProc,
                                         LPARAM lParam, DWORD dwFlags);
WINGDIAPI int WINAPI EnumFontsA(HDC hdc, LPCSTR lpLogfont, FONTENUMPROCA lpProc, LPARAM lParam);
WINGDIAPI int WINAPI EnumFontsW(HDC hdc, LPCWSTR lpLogfont, FONTENUMPROCW lpProc, LPARAM lParam);
WINGDIAPI int WINAPI AddFontResourceA(LPCSTR lpFileName);
WINGDIAPI int WINAPI AddFontResourceW(LPCWSTR lpFileName);
WINGDIAPI int WINAPI AddFontResourceExA(LPCSTR name, DWORD fl, PVOID res);
WINGDIAPI int WINAPI AddFontResourceExW(LPCWSTR name, DWORD fl, PVOID res);
WINGDIAPI BOOL WINAPI RemoveFontResourceA(LPCSTR lpFileName);
WINGDIAPI BOOL WINAPI RemoveFontResourceW(LPCWSTR lpFileName);

/* Coordinate spaces and transforms. */
WINGDIAPI int WINAPI SetMapMode(HDC hdc, int iMode);
WINGDIAPI int WINAPI GetMapMode(HDC hdc);
WINGDIAPI BOOL WINAPI SetViewportOrgEx(HDC hdc, int x, int y, LPPOINT lppt);
WINGDIAPI BOOL WINAPI GetViewportOrgEx(HDC hdc, LPPOINT lppoint);
WINGDIAPI BOOL WINAPI SetWindowOrgEx(HDC hdc, int x, int y, LPPOINT lppt);
WINGDIAPI BOOL WINAPI GetWindowOrgEx(HDC hdc, LPPOINT lppoint);
WINGDIAPI BOOL WINAPI SetViewportExtEx(HDC hdc, int x, int y, LPSIZE lpsz);
WINGDIAPI BOOL WINAPI GetViewportExtEx(HDC hdc, LPSIZE lpsize);
WINGDIAPI BOOL WINAPI SetWindowExtEx(HDC hdc, int x, int y, LPSIZE lpsz);
WINGDIAPI BOOL WINAPI GetWindowExtEx(HDC hdc, LPSIZE lpsize);
WINGDIAPI BOOL WINAPI OffsetViewportOrgEx(HDC hdc, int x, int y, LPPOINT lppt);
WINGDIAPI BOOL WINAPI OffsetWindowOrgEx(HDC hdc, int x, int y, LPPOINT lppt);
WINGDIAPI BOOL WINAPI ScaleViewportExtEx(HDC hdc, int xn, int dx, int yn, int yd, LPSIZE lpsz);
WINGDIAPI BOOL WINAPI ScaleWindowExtEx(HDC hdc, int xn, int xd, int yn, int yd, LPSIZE lpsz);
WINGDIAPI BOOL WINAPI LPtoDP(HDC hdc, LPPOINT lppt, int c);
WINGDIAPI BOOL WINAPI DPtoLP(HDC hdc, LPPOINT lppt, int c);
WINGDIAPI int WINAPI SetGraphicsMode(HDC hdc, int iMode);
WINGDIAPI int WINAPI GetGraphicsMode(HDC hdc);
WINGDIAPI BOOL WINAPI SetWorldTransform(HDC hdc, const XFORM *lpxf);
WINGDIAPI BOOL WINAPI GetWorldTransform(HDC hdc, LPXFORM lpxf);
WINGDIAPI BOOL WINAPI ModifyWorldTransform(HDC hdc, const XFORM *lpxf, DWORD mode);
WINGDIAPI BOOL WINAPI CombineTransform(LPXFORM lpxfOut, const XFORM *lpxf1, const XFORM *lpxf2);

/* Regions. */
WINGDIAPI HRGN WINAPI CreateRectRgn(int x1, int y1, int x2, int y2);
WINGDIAPI HRGN WINAPI CreateRectRgnIndirect(const RECT *lprect);
WINGDIAPI HRGN WINAPI CreateRoundRectRgn(int x1, int y1, int x2, int y2, int w, int h);
WINGDIAPI HRGN WINAPI CreateEllipticRgn(int x1, int y1, int x2, int y2);
WINGDIAPI HRGN WINAPI CreateEllipticRgnIndirect(const RECT *lprect);
WINGDIAPI HRGN WINAPI CreatePolygonRgn(const POINT *pptl, int cPoint, int iMode);
WINGDIAPI HRGN WINAPI CreatePolyPolygonRgn(const POINT *pptl, const INT *pc, int cPoly, int iMode);
WINGDIAPI int WINAPI CombineRgn(HRGN hrgnDst, HRGN hrgnSrc1, HRGN hrgnSrc2, int iMode);
WINGDIAPI BOOL WINAPI EqualRgn(HRGN hrgn1, HRGN hrgn2);
WINGDIAPI int WINAPI OffsetRgn(HRGN hrgn, int x, int y);
WINGDIAPI int WINAPI GetRgnBox(HRGN hrgn, LPRECT lprc);
WINGDIAPI BOOL WINAPI PtInRegion(HRGN hrgn, int x, int y);
WINGDIAPI BOOL WINAPI RectInRegion(HRGN hrgn, const RECT *lprect);
WINGDIAPI BOOL WINAPI SetRectRgn(HRGN hrgn, int left, int top, int right, int bottom);
WINGDIAPI DWORD WINAPI GetRegionData(HRGN hrgn, DWORD nCount, LPRGNDATA lpRgnData);
WINGDIAPI HRGN WINAPI ExtCreateRegion(const XFORM *lpx, DWORD nCount, const RGNDATA *lpData);
WINGDIAPI BOOL WINAPI FillRgn(HDC hdc, HRGN hrgn, HBRUSH hbr);
WINGDIAPI BOOL WINAPI FrameRgn(HDC hdc, HRGN hrgn, HBRUSH hbr, int w, int h);
WINGDIAPI BOOL WINAPI InvertRgn(HDC hdc, HRGN hrgn);
WINGDIAPI BOOL WINAPI PaintRgn(HDC hdc, HRGN hrgn);

/* Clipping. */
WINGDIAPI int WINAPI SelectClipRgn(HDC hdc, HRGN hrgn);
WINGDIAPI int WINAPI ExtSelectClipRgn(HDC hdc, HRGN hrgn, int mode);
WINGDIAPI int WINAPI GetClipBox(HDC hdc, LPRECT lprect);
WINGDIAPI int WINAPI GetClipRgn(HDC hdc, HRGN hrgn);
WINGDIAPI int WINAPI IntersectClipRect(HDC hdc, int left, int top, int right, int bottom);
WINGDIAPI int WINAPI ExcludeClipRect(HDC hdc, int left, int top, int right, int bottom);
WINGDIAPI int WINAPI OffsetClipRgn(HDC hdc, int x, int y);
WINGDIAPI BOOL WINAPI PtVisible(HDC hdc, int x, int y);
WINGDIAPI BOOL WINAPI RectVisible(HDC hdc, const RECT *lprect);

/* Bitmaps. */
WINGDIAPI HBITMAP WINAPI CreateBitmap(int nWidth, int nHeight, UINT nPlanes, UINT nBitCount,
                                      const VOID *lpBits);
WINGDIAPI HBITMAP WINAPI CreateBitmapIndirect(const BITMAP *pbm);
WINGDIAPI HBITMAP WINAPI CreateCompatibleBitmap(HDC hdc, int cx, int cy);
WINGDIAPI HBITMAP WINAPI CreateDiscardableBitmap(HDC hdc, int cx, int cy);
WINGDIAPI HBITMAP WINAPI CreateDIBitmap(HDC hdc, const BITMAPINFOHEADER *pbmih, DWORD flInit,
                                        const VOID *pjBits, const BITMAPINFO *pbmi, UINT iUsage);
WINGDIAPI HBITMAP WINAPI CreateDIBSection(HDC hdc, const BITMAPINFO *pbmi, UINT usage,
                                          VOID **ppvBits, HANDLE hSection, DWORD offset);
WINGDIAPI int WINAPI GetDIBits(HDC hdc, HBITMAP hbm, UINT start, UINT cLines, LPVOID lpvBits,
                               LPBITMAPINFO lpbmi, UINT usage);
WINGDIAPI int WINAPI SetDIBits(HDC hdc, HBITMAP hbm, UINT start, UINT cLines, const VOID *lpBits,
                               const BITMAPINFO *lpbmi, UINT ColorUse);
WINGDIAPI int WINAPI SetDIBitsToDevice(HDC hdc, int xDest, int yDest, DWORD w, DWORD h, int xSrc,
                                       int ySrc, UINT StartScan, UINT cLines, const VOID *lpvBits,
                                       const BITMAPINFO *lpbmi, UINT ColorUse);
WINGDIAPI int WINAPI StretchDIBits(HDC hdc, int xDest, int yDest, int DestWidth, int DestHeight,
                                   int xSrc, int ySrc, int SrcWidth, int SrcHeight,
                                   const VOID *lpBits, const BITMAPINFO *lpbmi, UINT iUsage,
                                   DWORD rop);
WINGDIAPI LONG WINAPI GetBitmapBits(HBITMAP hbit, LONG cb, LPVOID lpvBits);
WINGDIAPI LONG WINAPI SetBitmapBits(HBITMAP hbm, DWORD cb, const VOID *pvBits);
WINGDIAPI BOOL WINAPI GetBitmapDimensionEx(HBITMAP hbit, LPSIZE lpsize);
WINGDIAPI BOOL WINAPI SetBitmapDimensionEx(HBITMAP hbm, int w, int h, LPSIZE lpsz);
WINGDIAPI int WINAPI SetStretchBltMode(HDC hdc, int mode);
WINGDIAPI int WINAPI GetStretchBltMode(HDC hdc);
WINGDIAPI UINT WINAPI GetDIBColorTable(HDC hdc, UINT iStart, UINT cEntries, RGBQUAD *prgbq);
WINGDIAPI UINT WINAPI SetDIBColorTable(HDC hdc, UINT iStart, UINT cEntries, const RGBQUAD *prgbq);

/* Palettes. */
WINGDIAPI HPALETTE WINAPI CreatePalette(const LOGPALETTE *plpal);
WINGDIAPI HPALETTE WINAPI CreateHalftonePalette(HDC hdc);
WINGDIAPI HPALETTE WINAPI SelectPalette(HDC hdc, HPALETTE hPal, BOOL bForceBkgd);
WINGDIAPI UINT WINAPI RealizePalette(HDC hdc);
WINGDIAPI UINT WINAPI GetPaletteEntries(HPALETTE hpal, UINT iStart, UINT cEntries,
                                        LPPALETTEENTRY pPalEntries);
WINGDIAPI UINT WINAPI SetPaletteEntries(HPALETTE hpal, UINT iStart, UINT cEntries,
                                        const PALETTEENTRY *pPalEntries);
WINGDIAPI UINT WINAPI GetSystemPaletteEntries(HDC hdc, UINT iStart, UINT cEntries,
                                              LPPALETTEENTRY pPalEntries);
WINGDIAPI UINT WINAPI GetSystemPaletteUse(HDC hdc);
WINGDIAPI UINT WINAPI SetSystemPaletteUse(HDC hdc, UINT use);
WINGDIAPI UINT WINAPI GetNearestPaletteIndex(HPALETTE h, COLORREF color);
WINGDIAPI BOOL WINAPI AnimatePalette(HPALETTE hPal, UINT iStartIndex, UINT cEntries,
                                     const PALETTEENTRY *ppe);
WINGDIAPI BOOL WINAPI ResizePalette(HPALETTE hpal, UINT n);

/* Paths. */
WINGDIAPI BOOL WINAPI BeginPath(HDC hdc);
WINGDIAPI BOOL WINAPI EndPath(HDC hdc);
WINGDIAPI BOOL WINAPI AbortPath(HDC hdc);
WINGDIAPI BOOL WINAPI CloseFigure(HDC hdc);
WINGDIAPI BOOL WINAPI FillPath(HDC hdc);
WINGDIAPI BOOL WINAPI StrokePath(HDC hdc);
WINGDIAPI BOOL WINAPI StrokeAndFillPath(HDC hdc);
WINGDIAPI BOOL WINAPI FlattenPath(HDC hdc);
WINGDIAPI BOOL WINAPI WidenPath(HDC hdc);
WINGDIAPI int WINAPI GetPath(HDC hdc, LPPOINT apt, LPBYTE aj, int cpt);
WINGDIAPI HRGN WINAPI PathToRegion(HDC hdc);
WINGDIAPI BOOL WINAPI SelectClipPath(HDC hdc, int mode);

/* Printing. */
WINGDIAPI int WINAPI StartDocA(HDC hdc, const DOCINFOA *lpdi);
WINGDIAPI int WINAPI StartDocW(HDC hdc, const DOCINFOW *lpdi);
WINGDIAPI int WINAPI EndDoc(HDC hdc);
WINGDIAPI int WINAPI StartPage(HDC hdc);
WINGDIAPI int WINAPI EndPage(HDC hdc);
WINGDIAPI int WINAPI AbortDoc(HDC hdc);
WINGDIAPI int WINAPI SetAbortProc(HDC hdc, ABORTPROC proc);

/* Pixel formats and OpenGL rendering contexts. */
WINGDIAPI int WINAPI ChoosePixelFormat(HDC hdc, const PIXELFORMATDESCRIPTOR *ppfd);
WINGDIAPI BOOL WINAPI SetPixelFormat(HDC hdc, int format, const PIXELFORMATDESCRIPTOR *ppfd);
WINGDIAPI int WINAPI DescribePixelFormat(HDC hdc, int iPixelFormat, UINT nBytes,
                                         LPPIXELFORMATDESCRIPTOR ppfd);
WINGDIAPI int WINAPI GetPixelFormat(HDC hdc);
WINGDIAPI BOOL WINAPI SwapBuffers(HDC hdc);
WINGDIAPI HGLRC WINAPI wglCreateContext(HDC hdc);
WINGDIAPI BOOL WINAPI wglDeleteContext(HGLRC hglrc);
WINGDIAPI BOOL WINAPI wglMakeCurrent(HDC hdc, HGLRC hglrc);
WINGDIAPI HGLRC WINAPI wglGetCurrentContext(void);
WINGDIAPI HDC WINAPI wglGetCurrentDC(void);
WINGDIAPI PROC WINAPI wglGetProcAddress(LPCSTR lpszProc);
WINGDIAPI BOOL WINAPI wglShareLists(HGLRC hglrc1, HGLRC hglrc2);

/* Generic names: the W functions under UNICODE, the A functions otherwise. */
#ifdef UNICODE
#define CreateDC CreateDCW
#define CreateIC CreateICW
#define GetObject GetObjectW
#define TextOut TextOutW
#define ExtTextOut ExtTextOutW
#define GetTextExtentPoint GetTextExtentPointW
#define GetTextExtentPoint32 GetTextExtentPoint32W
#define GetTextExtentExPoint GetTextExtentExPointW
#define GetTextMetrics GetTextMetricsW
#define GetTextFace GetTextFaceW
#define GetCharWidth GetCharWidthW
#define GetCharWidth32 GetCharWidth32W
#define GetCharABCWidths GetCharABCWidthsW
#define GetCharABCWidthsFloat GetCharABCWidthsFloatW
#define CreateFont CreateFontW
#define CreateFontIndirect CreateFontIndirectW
#define EnumFontFamilies EnumFontFamiliesW
#define EnumFontFamiliesEx EnumFontFamiliesExW
#define EnumFonts EnumFontsW
#define AddFontResource AddFontResourceW
#define AddFontResourceEx AddFontResourceExW
#define RemoveFontResource RemoveFontResourceW
#define StartDoc StartDocW
#else
#define CreateDC CreateDCA
#define CreateIC CreateICA
#define GetObject GetObjectA
#define TextOut TextOutA
#define ExtTextOut ExtTextOutA
#define GetTextExtentPoint GetTextExtentPointA
#define GetTextExtentPoint32 GetTextExtentPoint32A
#define GetTextExtentExPoint GetTextExtentExPointA
#define GetTextMetrics GetTextMetricsA
#define GetTextFace GetTextFaceA
#define GetCharWidth GetCharWidthA
#define GetCharWidth32 GetCharWidth32A
#define GetCharABCWidths GetCharABCWidthsA
#define GetCharABCWidthsFloat GetCharABCWidthsFloatA
#define CreateFont CreateFontA
#define CreateFontIndirect CreateFontIndirectA
#define EnumFontFamilies EnumFontFamiliesA
#define EnumFontFamiliesEx EnumFontFamiliesExA
#define EnumFonts EnumFontsA
#define AddFontResource AddFontResourceA
#define AddFontResourceEx AddFontResourceExA
#define RemoveFontResource RemoveFontResourceA
#define StartDoc StartDocA
#endif

OLMO_END_C

#endif /* RC_INVOKED */

#endif /* _WINGDI_ */
