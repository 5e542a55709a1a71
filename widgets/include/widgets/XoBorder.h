// XoBorder: the frame of every child window ("ChildWindow").  A Motif
// manager holding one managed child (the client), drawing border, caption,
// system-menu, minimise and maximise buttons itself, and moving, sizing,
// minimising and maximising on pointer and keyboard input.
#pragma once

#include <olmo/platform.h>

#include <Xm/Xm.h>

OLMO_BEGIN_C

// Resources (name, class, type, default); docs/widgets/XoBorder.md says
// what each one does.
//   decorations          Decorations          Int      0
//   displayState         DisplayState         Int      3 (0 = active look)
//   title                Title                XmString NULL
//   iconName             IconName             String   NULL
//   iconPixmap           IconPixmap           Pixmap   None
//   state                State                Int      4 (1 max, 2 icon, 4 normal)
//   iconX, iconY         IconX, IconY         Int      0
//   iconWidth            IconWidth            Int      64
//   iconHeight           IconHeight           Int      56
//   restoreX/Y/Width/Height  Restore...       Int      0 (kept by the frame)
//   wasMaximized         WasMaximized         Int      0
//   resizeLabelDisplay   ResizeLabelDisplay   Int      0
//   doIt                 DoIt                 Int      1
//   borderResizeWidth    BorderResizeWidth    Int      4
//   captionHeight        CaptionHeight        Int      18
//   marginWidth/Height   MarginWidth/Height   Dimension 0
//   captionFont          CaptionFont          String   "Sans-9:bold"
//   activeCaptionColor   Background           Pixel    #000080
//   inactiveCaptionColor Background           Pixel    #808080
//   activeCaptionTextColor   Foreground       Pixel    #FFFFFF
//   inactiveCaptionTextColor Foreground       Pixel    #C0C0C0
//   activeBorderColor    Background           Pixel    #C0C0C0
//   inactiveBorderColor  Background           Pixel    #C0C0C0
//   windowFrameColor     Foreground           Pixel    #000000
//   buttonFaceColor      Background           Pixel    #C0C0C0
//   buttonShadowColor    Background           Pixel    #808080
//   buttonHighlightColor Background           Pixel    #FFFFFF
//   buttonTextColor      Foreground           Pixel    #000000
//   activateCallback     Callback             Callback NULL (XoBorderCallbackStruct)
//   queryDragIconCallback Callback            Callback NULL (XoQueryDragIconCallbackStruct)
#define XoNdecorations "decorations"
#define XoCDecorations "Decorations"
#define XoNdisplayState "displayState"
#define XoCDisplayState "DisplayState"
#define XoNtitle "title"
#define XoCTitle "Title"
#define XoNstate "state"
#define XoCState "State"
#define XoNiconX "iconX"
#define XoCIconX "IconX"
#define XoNiconY "iconY"
#define XoCIconY "IconY"
#define XoNiconWidth "iconWidth"
#define XoCIconWidth "IconWidth"
#define XoNiconHeight "iconHeight"
#define XoCIconHeight "IconHeight"
#define XoNrestoreX "restoreX"
#define XoNrestoreY "restoreY"
#define XoNrestoreWidth "restoreWidth"
#define XoNrestoreHeight "restoreHeight"
#define XoCRestoreGeometry "RestoreGeometry"
#define XoNwasMaximized "wasMaximized"
#define XoCWasMaximized "WasMaximized"
#define XoNresizeLabelDisplay "resizeLabelDisplay"
#define XoCResizeLabelDisplay "ResizeLabelDisplay"
#define XoNdoIt "doIt"
#define XoCDoIt "DoIt"
#define XoNborderResizeWidth "borderResizeWidth"
#define XoCBorderResizeWidth "BorderResizeWidth"
#define XoNcaptionHeight "captionHeight"
#define XoCCaptionHeight "CaptionHeight"
#define XoNcaptionFont "captionFont"
#define XoCCaptionFont "CaptionFont"
#define XoNactiveCaptionColor "activeCaptionColor"
#define XoNinactiveCaptionColor "inactiveCaptionColor"
#define XoNactiveCaptionTextColor "activeCaptionTextColor"
#define XoNinactiveCaptionTextColor "inactiveCaptionTextColor"
#define XoNactiveBorderColor "activeBorderColor"
#define XoNinactiveBorderColor "inactiveBorderColor"
#define XoNwindowFrameColor "windowFrameColor"
#define XoNbuttonFaceColor "buttonFaceColor"
#define XoNbuttonShadowColor "buttonShadowColor"
#define XoNbuttonHighlightColor "buttonHighlightColor"
#define XoNbuttonTextColor "buttonTextColor"
#define XoNactivateCallback "activateCallback"
#define XoNqueryDragIconCallback "queryDragIconCallback"

// "decorations" bits (the window manager's decoration bits).
enum {
    XoDECOR_BORDER = 2,
    XoDECOR_RESIZEH = 4,
    XoDECOR_TITLE = 8,
    XoDECOR_MENU = 16,
    XoDECOR_MINIMIZE = 32,
    XoDECOR_MAXIMIZE = 64,
    XoDECOR_EXTRA = 128 // carried for the user library, not drawn
};

// "state" values.
enum { XoSTATE_MAXIMIZED = 1, XoSTATE_ICONIC = 2, XoSTATE_NORMAL = 4 };

// "displayState": 0 draws the active look, every other value the inactive.
enum { XoDISPLAY_ACTIVE = 0, XoDISPLAY_INACTIVE = 3 };

// activateCallback reasons.
enum {
    XoCR_NONE = 0,
    XoCR_MAXIMIZE = 1,       // maximise button, caption double click
    XoCR_MINIMIZE = 2,       // minimise button
    XoCR_ACTIVATE = 3,       // button press on a normal or maximised frame
    XoCR_CLOSE = 4,          // system-menu double click, Ctrl+F4
    XoCR_UNUSED5 = 5,
    XoCR_RESTORE = 6,        // restore button, icon or maximised caption double click
    XoCR_MOVED = 7,          // a move by pointer or keyboard ended; x, y, width, height
    XoCR_NEXT_WINDOW = 8,    // Ctrl+F6
    XoCR_PREV_WINDOW = 9,    // Ctrl+Shift+F6
    XoCR_MOUSE_MENU = 10,    // system-menu button pressed
    XoCR_ACTIVATE_ICON = 11, // button press on an icon
    XoCR_SIZED = 12,         // a resize by pointer or keyboard ended; x, y, width, height
    XoCR_MOVED_SELF = 13,    // the frame moved itself (state change, icon drag)
    XoCR_CLIENT_RESIZED = 14,// the client's size changed; x, y, width, height of the client
    XoCR_UNUSED15 = 15
};

// Call data of activateCallback.  Eleven 32-bit words first, so that the
// rectangle is words 7 to 10 on every data model.
typedef struct {
    int reason;
    int region;       // region code of the pointer, or -1
    int state;        // "state" when the callback runs
    int displayState;
    int edge;         // sizing edge in WM_SIZING numbering, or -1
    int keysym;       // key that ended a keyboard operation, or 0
    int cancelled;    // 1 when a move or resize was cancelled (Escape)
    int x, y, width, height;
    XEvent *event;    // may be NULL
} XoBorderCallbackStruct;

// Call data of queryDragIconCallback, called when the frame becomes an
// icon and has no iconPixmap: put the pixmap to draw in `pixmap`.
typedef struct {
    int reason;
    XEvent *event;
    Pixmap pixmap;
} XoQueryDragIconCallbackStruct;

// Region codes of XoGetRegionCode.
enum {
    XoREGION_TOPLEFT = 0,
    XoREGION_TOP = 1,
    XoREGION_BOTTOM = 2,
    XoREGION_BORDER = 3, // a border that does not size
    XoREGION_BOTTOMRIGHT = 4,
    XoREGION_BOTTOMLEFT = 5,
    XoREGION_LEFT = 6,
    XoREGION_TOPRIGHT = 7,
    XoREGION_RIGHT = 8,
    XoREGION_SYSMENU = 9,
    XoREGION_MINIMIZE = 10,
    XoREGION_MAXIMIZE = 11,
    XoREGION_CAPTION = 12,
    XoREGION_NOWHERE = 13, // outside the frame
    XoREGION_CLIENT = 14
};

// Sizing edges as WM_SIZING's caller numbers them (not region codes).
enum {
    XoEDGE_TOPRIGHT = 0,
    XoEDGE_TOP = 1,
    XoEDGE_BOTTOM = 2,
    XoEDGE_BOTTOMLEFT = 4,
    XoEDGE_BOTTOMRIGHT = 5,
    XoEDGE_RIGHT = 6,
    XoEDGE_TOPLEFT = 7,
    XoEDGE_LEFT = 8
};

typedef struct _XoBorderClassRec *XoBorderWidgetClass;
typedef struct _XoBorderRec *XoBorderWidget;
OLMO_API extern WidgetClass xoBorderWidgetClass;

#define XoIsBorder(w) XtIsSubclass((w), xoBorderWidgetClass)

// Start-up (entry-point table): initialises the class before any frame.
OLMO_API void XoBorderPreinitialize(void);

OLMO_API Widget XoCreateBorder(Widget parent, const char *name, ArgList args, Cardinal count);

// Geometry.
OLMO_API int XoGetRegionCode(Widget frame, Widget canvas, int x, int y);
OLMO_API void XoWithinCaption(Widget frame, int *x, int *y);
// The client rectangle in frame coordinates (what the layout gives the child).
OLMO_API void XoGetClientArea(Widget frame, int *x, int *y, int *width, int *height);
OLMO_API void XoResizeClientArea(Widget frame);
OLMO_API int XoBorderThickness(Widget frame);
OLMO_API int XoCaptionHeightOf(Widget frame);

// Look.
OLMO_API void XoRaiseChildWindow(Widget frame);
OLMO_API Boolean XoFlashBorder(Widget frame, Boolean invert);
OLMO_API void XoManageIconText(Widget frame, Boolean show);
OLMO_API void XoShowAsIcon(Widget frame);
// The title as UTF-8 text (XtFree it), never NULL.
OLMO_API char *XoBorderGetTitleText(Widget frame);
// Whether the frame shows its title (caption bar or icon text).
OLMO_API Boolean XoBorderTitleFlag(Widget frame);

// How many times the frame has drawn itself (tests count redraws).
OLMO_API int XoBorderRedisplayCount(Widget frame);

// States.
OLMO_API void XoRestoreBorderWidget(Widget frame);
OLMO_API void ReMaximizeBorderWidget(Widget frame);

// Interactive move and size.  XoMoveWidget/XoSizeWidget only start a
// keyboard mode and return; keys arrive through XoProcessKeyEvents (or as
// X key events on the frame), the result through activateCallback.
OLMO_API void XoMoveWidget(Widget frame);
OLMO_API void XoSizeWidget(Widget frame);
OLMO_API int XoGetMoveStatus(void);
OLMO_API int XoGetSizeStatus(void);
OLMO_API int XoGetAcclStatus(Widget frame);
OLMO_API void XoProcessKeyEvents(KeySym keysym);
// Ends any move or resize in progress: accepted (as Return) or cancelled.
OLMO_API void XoEndMoveSize(Boolean accept);

// System menu (the user library's menu handle) and border type (1 =
// floating tool-bar frame).
OLMO_API XtPointer XoGetMenu(Widget frame);
OLMO_API void XoSetMenu(Widget frame, XtPointer menu);
OLMO_API void XoSetBorderType(Widget frame, int type);
OLMO_API int XoGetBorderType(Widget frame);
// Whether the system menu of some frame is being shown.
OLMO_API Boolean XoSysMenuOn(void);

OLMO_END_C
