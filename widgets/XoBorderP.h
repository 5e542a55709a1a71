// XoBorder's class and instance records, for border*.cpp and subclasses,
// and the helpers the class and its input code share.
#pragma once

#include "widgets/XoBorder.h"
#include "widgets/xoupcalls.h"

#include <Xm/ManagerP.h>
#include <X11/Xft/Xft.h>

#include <type_traits>

OLMO_BEGIN_C

typedef struct {
    XtPointer extension;
} XoBorderClassPart;

typedef struct _XoBorderClassRec {
    CoreClassPart core_class;
    CompositeClassPart composite_class;
    ConstraintClassPart constraint_class;
    XmManagerClassPart manager_class;
    XoBorderClassPart border_class;
} XoBorderClassRec;

extern XoBorderClassRec xoBorderClassRec;

// What a press started; the move/size code keeps its own state beside it.
enum XoTrackMode { XoTRACK_NONE, XoTRACK_BUTTON, XoTRACK_MOVE, XoTRACK_SIZE };

typedef struct {
    // resources
    int decorations;
    int display_state;
    XmString title;
    char *icon_name;
    Pixmap icon_pixmap;
    int state;
    int icon_x, icon_y, icon_width, icon_height;
    int restore_x, restore_y, restore_width, restore_height;
    int was_maximized;
    int resize_label_display;
    int do_it;
    int border_resize_width;
    int caption_height;
    Dimension margin_width, margin_height;
    char *caption_font_name;
    Pixel active_caption, inactive_caption;
    Pixel active_caption_text, inactive_caption_text;
    Pixel active_border, inactive_border;
    Pixel window_frame;
    Pixel button_face, button_shadow, button_highlight, button_text;
    XtCallbackList activate_callback;
    XtCallbackList query_drag_icon_callback;

    // private state
    char *title_text;        // UTF-8 of title, XtMalloc'd
    XftFont *caption_font;
    XftDraw *xft_draw;
    GC gc;                   // XtAllocateGC, foreground changed while drawing
    Pixmap drag_icon;        // from queryDragIconCallback, not owned
    XtPointer menu;
    int border_type;
    Boolean flash_inverted;
    Boolean icon_text_shown;
    Boolean client_hidden;   // we unmapped the child for the icon
    Boolean sizing_label;    // caption shows the size read-out
    int pressed_button;      // region of a button drawn pressed, or -1
    int track_mode;          // XoTrackMode
    int press_region;
    Time last_press_time;
    int last_press_region;
    int last_client_width, last_client_height;
    XftColor xft_active_text, xft_inactive_text, xft_button_text;
    Visual *visual;          // of the frame's window, read once when realized
    int redisplay_count;     // for tests: how often the frame drew itself
} XoBorderPart;

typedef struct _XoBorderRec {
    CorePart core;
    CompositePart composite;
    ConstraintPart constraint;
    XmManagerPart manager;
    XoBorderPart border;
} XoBorderRec;

OLMO_END_C

static_assert(std::is_trivially_copyable_v<XoBorderRec>);
static_assert(std::is_standard_layout_v<XoBorderRec>);

namespace om::widgets {

// Shared between border.cpp (class, geometry, drawing) and
// border_track.cpp (pointer and keyboard move/size, states).
struct FrameLayout {
    int thick;     // border thickness on each side
    int caption;   // caption bar height (0 without a title)
    int button;    // caption button size (square)
};
FrameLayout layoutOf(XoBorderWidget w);
XRectangle clientRect(XoBorderWidget w);
XRectangle buttonRect(XoBorderWidget w, int region);
int regionAt(XoBorderWidget w, int x, int y);
void layoutChild(XoBorderWidget w);
void redraw(XoBorderWidget w);
const XoUpcalls &upcalls();
// Runs activateCallback with `data` (reason set by the caller); returns
// whether "doIt" was left set.
bool callActivate(XoBorderWidget w, XoBorderCallbackStruct &data);
void fillCallData(XoBorderWidget w, XoBorderCallbackStruct &data, int reason, XEvent *event);
// Puts the frame at a rectangle of its parent and lays the child out.
void placeFrame(XoBorderWidget w, int x, int y, int width, int height);
// Prepares a "state" change: `w` holds the new state, `from` the old one.
// Answers whether the frame must go to `target` (placed by the caller).
bool enterState(XoBorderWidget w, int from, XoRect &target);
XoRect maximizedRect(XoBorderWidget w);

// border_track.cpp: input actions and the move/size machine.
void pressAction(Widget w, XEvent *event, String *, Cardinal *);
void motionAction(Widget w, XEvent *event, String *, Cardinal *);
void releaseAction(Widget w, XEvent *event, String *, Cardinal *);
void keyAction(Widget w, XEvent *event, String *, Cardinal *);
void forgetFrame(XoBorderWidget w); // Destroy: ends tracking, drops grabs

}  // namespace om::widgets
