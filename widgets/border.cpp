// XoBorder, the frame of child windows: resources, the class record,
// geometry (the one managed child laid out synchronously inside the
// decorations), drawing of border, caption and buttons, region codes and
// the "state" machine.  Pointer and keyboard tracking is in border_track.cpp.
#include "XoBorderP.h"

#include "kernel/omdiag.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <mutex>
#include <utility>

namespace {

using namespace om::widgets;

void Initialize(Widget request, Widget created, ArgList, Cardinal *);
void Destroy(Widget w);
void Resize(Widget w);
void Redisplay(Widget w, XEvent *, Region);
Boolean SetValues(Widget current, Widget request, Widget updated, ArgList, Cardinal *);
void GetValuesHook(Widget w, ArgList args, Cardinal *count);
XtGeometryResult QueryGeometry(Widget w, XtWidgetGeometry *intended, XtWidgetGeometry *reply);
XtGeometryResult GeometryManager(Widget child, XtWidgetGeometry *request, XtWidgetGeometry *reply);
void ChangeManaged(Widget w);
void InsertChild(Widget child);

// Buttons and keys reach the frame as X events and as events the default
// window procedure hands back; both go through these translations.
const char defaultTranslations[] = "<Btn1Down>: XoBorderPress()\n"
                                   "<Btn1Motion>: XoBorderMotion()\n"
                                   "<Motion>: XoBorderMotion()\n"
                                   "<Btn1Up>: XoBorderRelease()\n"
                                   "<KeyPress>: XoBorderKey()";

XtActionsRec actions[] = {
    {"XoBorderPress", pressAction},
    {"XoBorderMotion", motionAction},
    {"XoBorderRelease", releaseAction},
    {"XoBorderKey", keyAction},
};

// Our resource names and classes in padded storage (Motif's own are in
// its library).  Xrm keeps the first copy
// of a name it meets as the quark's string and compares a later name with
// the same hash against it with memcmp over the later name's length; a
// shorter literal then looks over-read to AddressSanitizer, although the
// comparison stops at the first differing byte.
template <size_t N> struct PaddedName {
    char text[N + 32]{};
    constexpr PaddedName(const char (&s)[N])
    {
        for (size_t i = 0; i < N; ++i)
            text[i] = s[i];
    }
};
template <PaddedName S> constexpr auto padded = S;
#define NAME(s) const_cast<char *>(padded<PaddedName(s)>.text)

#define OFF(field) XtOffsetOf(XoBorderRec, border.field)
#define INT_RES(name, cls, field, def)                                                             \
    {NAME(name), NAME(cls), XmRInt, sizeof(int), OFF(field), XmRImmediate,                       \
     reinterpret_cast<XtPointer>(def)}
#define PIXEL_RES(name, cls, field, def)                                                           \
    {NAME(name), cls, XmRPixel, sizeof(Pixel), OFF(field), XmRString,                      \
     const_cast<char *>(def)}

XtResource resources[] = {
    INT_RES(XoNdecorations, XoCDecorations, decorations, 0),
    INT_RES(XoNdisplayState, XoCDisplayState, display_state, XoDISPLAY_INACTIVE),
    {NAME(XoNtitle), NAME(XoCTitle), XmRXmString, sizeof(XmString), OFF(title), XmRImmediate, nullptr},
    {XmNiconName, XmCIconName, XmRString, sizeof(String), OFF(icon_name), XmRImmediate, nullptr},
    {XmNiconPixmap, XmCIconPixmap, XmRPixmap, sizeof(Pixmap), OFF(icon_pixmap), XmRImmediate,
     reinterpret_cast<XtPointer>(None)},
    INT_RES(XoNstate, XoCState, state, XoSTATE_NORMAL),
    INT_RES(XoNiconX, XoCIconX, icon_x, 0),
    INT_RES(XoNiconY, XoCIconY, icon_y, 0),
    INT_RES(XoNiconWidth, XoCIconWidth, icon_width, 64),
    INT_RES(XoNiconHeight, XoCIconHeight, icon_height, 56),
    INT_RES(XoNrestoreX, XoCRestoreGeometry, restore_x, 0),
    INT_RES(XoNrestoreY, XoCRestoreGeometry, restore_y, 0),
    INT_RES(XoNrestoreWidth, XoCRestoreGeometry, restore_width, 0),
    INT_RES(XoNrestoreHeight, XoCRestoreGeometry, restore_height, 0),
    INT_RES(XoNwasMaximized, XoCWasMaximized, was_maximized, 0),
    INT_RES(XoNresizeLabelDisplay, XoCResizeLabelDisplay, resize_label_display, 0),
    INT_RES(XoNdoIt, XoCDoIt, do_it, 1),
    INT_RES(XoNborderResizeWidth, XoCBorderResizeWidth, border_resize_width, 4),
    INT_RES(XoNcaptionHeight, XoCCaptionHeight, caption_height, 18),
    {XmNmarginWidth, XmCMarginWidth, XmRHorizontalDimension, sizeof(Dimension), OFF(margin_width),
     XmRImmediate, reinterpret_cast<XtPointer>(0)},
    {XmNmarginHeight, XmCMarginHeight, XmRVerticalDimension, sizeof(Dimension),
     OFF(margin_height), XmRImmediate, reinterpret_cast<XtPointer>(0)},
    {NAME(XoNcaptionFont), NAME(XoCCaptionFont), XmRString, sizeof(String), OFF(caption_font_name),
     XmRString, const_cast<char *>("Sans-9:bold")},
    // The classic system colours; the user library sets them from its own.
    PIXEL_RES(XoNactiveCaptionColor, XmCBackground, active_caption, "#000080"),
    PIXEL_RES(XoNinactiveCaptionColor, XmCBackground, inactive_caption, "#808080"),
    PIXEL_RES(XoNactiveCaptionTextColor, XmCForeground, active_caption_text, "#FFFFFF"),
    PIXEL_RES(XoNinactiveCaptionTextColor, XmCForeground, inactive_caption_text, "#C0C0C0"),
    PIXEL_RES(XoNactiveBorderColor, XmCBackground, active_border, "#C0C0C0"),
    PIXEL_RES(XoNinactiveBorderColor, XmCBackground, inactive_border, "#C0C0C0"),
    PIXEL_RES(XoNwindowFrameColor, XmCForeground, window_frame, "#000000"),
    PIXEL_RES(XoNbuttonFaceColor, XmCBackground, button_face, "#C0C0C0"),
    PIXEL_RES(XoNbuttonShadowColor, XmCBackground, button_shadow, "#808080"),
    PIXEL_RES(XoNbuttonHighlightColor, XmCBackground, button_highlight, "#FFFFFF"),
    PIXEL_RES(XoNbuttonTextColor, XmCForeground, button_text, "#000000"),
    {NAME(XoNactivateCallback), XmCCallback, XmRCallback, sizeof(XtCallbackList),
     OFF(activate_callback), XmRImmediate, nullptr},
    {NAME(XoNqueryDragIconCallback), XmCCallback, XmRCallback, sizeof(XtCallbackList),
     OFF(query_drag_icon_callback), XmRImmediate, nullptr},
};

#undef INT_RES
#undef PIXEL_RES
#undef NAME
#undef OFF

}  // namespace

extern "C" {

XoBorderClassRec xoBorderClassRec = {
    .core_class =
        {
            .superclass = reinterpret_cast<WidgetClass>(&xmManagerClassRec),
            .class_name = "XoBorder",
            .widget_size = sizeof(XoBorderRec),
            .class_initialize = nullptr, // Motif's converters come with XmManager
            .class_part_initialize = nullptr,
            .class_inited = False,
            .initialize = Initialize,
            .initialize_hook = nullptr,
            .realize = XtInheritRealize,
            .actions = actions,
            .num_actions = XtNumber(actions),
            .resources = resources,
            .num_resources = XtNumber(resources),
            .xrm_class = NULLQUARK,
            .compress_motion = True,
            .compress_exposure = XtExposeCompressMaximal,
            .compress_enterleave = True,
            .visible_interest = False,
            .destroy = Destroy,
            .resize = Resize,
            .expose = Redisplay,
            .set_values = SetValues,
            .set_values_hook = nullptr,
            .set_values_almost = XtInheritSetValuesAlmost,
            .get_values_hook = GetValuesHook,
            .accept_focus = nullptr,
            .version = XtVersion,
            .callback_private = nullptr,
            .tm_table = defaultTranslations,
            .query_geometry = QueryGeometry,
            .display_accelerator = nullptr,
            .extension = nullptr,
        },
    .composite_class =
        {
            .geometry_manager = GeometryManager,
            .change_managed = ChangeManaged,
            .insert_child = InsertChild,
            .delete_child = XtInheritDeleteChild,
            .extension = nullptr,
        },
    .constraint_class =
        {
            .resources = nullptr,
            .num_resources = 0,
            .constraint_size = sizeof(XmManagerConstraintRec),
            .initialize = nullptr,
            .destroy = nullptr,
            .set_values = nullptr,
            .extension = nullptr,
        },
    .manager_class =
        {
            // No traversal translations: keys belong to the move/size code.
            .translations = nullptr,
            .syn_resources = nullptr,
            .num_syn_resources = 0,
            .syn_constraint_resources = nullptr,
            .num_syn_constraint_resources = 0,
            .parent_process = XmInheritParentProcess,
            .extension = nullptr,
        },
    .border_class = {.extension = nullptr},
};

OLMO_API WidgetClass xoBorderWidgetClass = reinterpret_cast<WidgetClass>(&xoBorderClassRec);

}  // extern "C"

namespace om::widgets {

namespace {

XoUpcalls registeredUpcalls{};

// Fills an XftColor from a pixel of the frame's colormap.  Where a pixel
// always means the same colour (the default colormap of a static visual)
// the server is asked once per pixel: every frame uses the same few system
// colours, and a round trip per frame made child windows slow to create.
void xftColorOf(XoBorderWidget w, Pixel pixel, XftColor &out)
{
    static std::mutex cacheMutex;
    static std::map<std::pair<Colormap, Pixel>, XColor> cache;
    Screen *screen = XtScreen(w);
    int visualClass = DefaultVisualOfScreen(screen)->c_class;
    bool stable = w->core.colormap == DefaultColormapOfScreen(screen) &&
                  (visualClass == TrueColor || visualClass == StaticColor ||
                   visualClass == StaticGray);
    XColor xc{};
    xc.pixel = pixel;
    std::lock_guard lock(cacheMutex);
    auto key = std::make_pair(w->core.colormap, pixel);
    if (auto it = cache.find(key); stable && it != cache.end()) {
        xc = it->second;
    } else {
        XQueryColor(XtDisplay(w), w->core.colormap, &xc);
        if (stable)
            cache.emplace(key, xc);
    }
    out.pixel = pixel;
    out.color.red = xc.red;
    out.color.green = xc.green;
    out.color.blue = xc.blue;
    out.color.alpha = 0xFFFF;
}

void loadTextColours(XoBorderWidget w)
{
    xftColorOf(w, w->border.active_caption_text, w->border.xft_active_text);
    xftColorOf(w, w->border.inactive_caption_text, w->border.xft_inactive_text);
    xftColorOf(w, w->border.button_text, w->border.xft_button_text);
}

void openFont(XoBorderWidget w)
{
    Display *dpy = XtDisplay(w);
    const char *name = w->border.caption_font_name ? w->border.caption_font_name : "Sans-9:bold";
    w->border.caption_font = XftFontOpenName(dpy, XScreenNumberOfScreen(XtScreen(w)), name);
    if (!w->border.caption_font)
        w->border.caption_font = XftFontOpenName(dpy, XScreenNumberOfScreen(XtScreen(w)), "Sans");
}

void closeFont(XoBorderWidget w)
{
    if (w->border.caption_font)
        XftFontClose(XtDisplay(w), w->border.caption_font);
    w->border.caption_font = nullptr;
}

void setTitleText(XoBorderWidget w)
{
    XtFree(w->border.title_text);
    w->border.title_text = nullptr;
    if (w->border.title) {
        auto *text = static_cast<char *>(XmStringUnparse(w->border.title, nullptr, XmCHARSET_TEXT,
                                                         XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL));
        w->border.title_text = text;
    }
    if (!w->border.title_text)
        w->border.title_text = XtNewString("");
}

// The client: the managed child, else (before managing, which Xt defers
// until the frame is realized) the first child, so that it has its size
// from the moment it exists.
Widget managedChild(XoBorderWidget w)
{
    Widget first = nullptr;
    for (Cardinal i = 0; i < w->composite.num_children; ++i) {
        Widget c = w->composite.children[i];
        if (c->core.being_destroyed)
            continue;
        if (XtIsManaged(c))
            return c;
        if (!first)
            first = c;
    }
    return first;
}

bool isActiveLook(XoBorderWidget w)
{
    return (w->border.display_state == XoDISPLAY_ACTIVE) != bool(w->border.flash_inverted);
}

void clampResources(XoBorderWidget w)
{
    // Out-of-range numbers get warning 161 and fall back to a safe value
    // rather than breaking the layout arithmetic.
    auto &b = w->border;
    auto check = [](int &value, int low, int high, int fallback, const char *name) {
        if (value >= low && value <= high)
            return;
        omDebugWarning(OmDiag::UnsupportedValue, name, value);
        value = fallback;
    };
    if (b.state != XoSTATE_MAXIMIZED && b.state != XoSTATE_ICONIC && b.state != XoSTATE_NORMAL) {
        omDebugWarning(OmDiag::UnsupportedValue, "XoBorder state", b.state);
        b.state = XoSTATE_NORMAL;
    }
    check(b.border_resize_width, 1, 32, 4, "XoBorder borderResizeWidth");
    check(b.caption_height, 6, 64, 18, "XoBorder captionHeight");
    check(b.icon_width, 8, 4096, 64, "XoBorder iconWidth");
    check(b.icon_height, 8, 4096, 56, "XoBorder iconHeight");
}

}  // namespace

const XoUpcalls &upcalls()
{
    return registeredUpcalls;
}

FrameLayout layoutOf(XoBorderWidget w)
{
    FrameLayout l{};
    int d = w->border.decorations;
    if (d & XoDECOR_RESIZEH)
        l.thick = w->border.border_resize_width;
    else if (d & (XoDECOR_BORDER | XoDECOR_TITLE))
        l.thick = 1;
    l.caption = (d & XoDECOR_TITLE) ? w->border.caption_height : 0;
    l.button = std::max(l.caption - 3, 0);
    return l;
}

XRectangle clientRect(XoBorderWidget w)
{
    FrameLayout l = layoutOf(w);
    int x = l.thick + w->border.margin_width;
    int y = l.thick + l.caption + w->border.margin_height;
    int width = int(w->core.width) - 2 * x;
    int height = int(w->core.height) - y - l.thick - w->border.margin_height;
    return XRectangle{short(x), short(y), static_cast<unsigned short>(std::max(width, 1)),
                      static_cast<unsigned short>(std::max(height, 1))};
}

// Buttons sit in the caption one pixel in from its top: the system-menu
// button on the left, maximise on the right and minimise beside it.
XRectangle buttonRect(XoBorderWidget w, int region)
{
    FrameLayout l = layoutOf(w);
    int d = w->border.decorations;
    XRectangle none{0, 0, 0, 0};
    if (!l.caption || w->border.state == XoSTATE_ICONIC)
        return none;
    auto size = static_cast<unsigned short>(l.button);
    short top = short(l.thick + 1);
    int right = int(w->core.width) - l.thick - 1;
    switch (region) {
    case XoREGION_SYSMENU:
        if (!(d & XoDECOR_MENU))
            return none;
        return XRectangle{short(l.thick + 1), top, size, size};
    case XoREGION_MAXIMIZE:
        if (!(d & XoDECOR_MAXIMIZE))
            return none;
        return XRectangle{short(right - l.button), top, size, size};
    case XoREGION_MINIMIZE:
        if (!(d & XoDECOR_MINIMIZE))
            return none;
        if (d & XoDECOR_MAXIMIZE)
            right -= l.button;
        return XRectangle{short(right - l.button), top, size, size};
    default:
        return none;
    }
}

int regionAt(XoBorderWidget w, int x, int y)
{
    int width = w->core.width, height = w->core.height;
    if (x < 0 || y < 0 || x >= width || y >= height)
        return XoREGION_NOWHERE;
    if (w->border.state == XoSTATE_ICONIC)
        return XoREGION_CAPTION;
    FrameLayout l = layoutOf(w);
    for (int r : {XoREGION_SYSMENU, XoREGION_MINIMIZE, XoREGION_MAXIMIZE}) {
        XRectangle b = buttonRect(w, r);
        if (b.width && x >= b.x && x < b.x + b.width && y >= b.y && y < b.y + b.height)
            return r;
    }
    bool inBorder = x < l.thick || y < l.thick || x >= width - l.thick || y >= height - l.thick;
    if (!inBorder)
        return y < l.thick + l.caption ? XoREGION_CAPTION : XoREGION_CLIENT;
    bool sizes = (w->border.decorations & XoDECOR_RESIZEH) && w->border.state == XoSTATE_NORMAL;
    if (!sizes)
        return XoREGION_BORDER;
    // Corners reach 16 pixels along each side past the border itself.
    int corner = l.thick + 16;
    bool nearL = x < corner, nearR = x >= width - corner;
    bool nearT = y < corner, nearB = y >= height - corner;
    if (y < l.thick)
        return nearL ? XoREGION_TOPLEFT : nearR ? XoREGION_TOPRIGHT : XoREGION_TOP;
    if (y >= height - l.thick)
        return nearL ? XoREGION_BOTTOMLEFT : nearR ? XoREGION_BOTTOMRIGHT : XoREGION_BOTTOM;
    if (x < l.thick)
        return nearT ? XoREGION_TOPLEFT : nearB ? XoREGION_BOTTOMLEFT : XoREGION_LEFT;
    return nearT ? XoREGION_TOPRIGHT : nearB ? XoREGION_BOTTOMRIGHT : XoREGION_RIGHT;
}

void fillCallData(XoBorderWidget w, XoBorderCallbackStruct &data, int reason, XEvent *event)
{
    data = XoBorderCallbackStruct{};
    data.reason = reason;
    data.region = -1;
    data.edge = -1;
    data.state = w->border.state;
    data.displayState = w->border.display_state;
    data.x = w->core.x;
    data.y = w->core.y;
    data.width = w->core.width;
    data.height = w->core.height;
    data.event = event;
}

bool callActivate(XoBorderWidget w, XoBorderCallbackStruct &data)
{
    w->border.do_it = 1;
    XtCallCallbackList(reinterpret_cast<Widget>(w), w->border.activate_callback, &data);
    return w->border.do_it != 0;
}

// The child fills the client rectangle at once, so that its size is right
// before anyone asks for it (no deferred layout).
void layoutChild(XoBorderWidget w)
{
    Widget child = managedChild(w);
    if (!child)
        return;
    XRectangle r = clientRect(w);
    int bw = child->core.border_width;
    XtConfigureWidget(child, r.x, r.y, std::max(r.width - 2 * bw, 1),
                      std::max(r.height - 2 * bw, 1), bw);
    if (r.width != w->border.last_client_width || r.height != w->border.last_client_height) {
        w->border.last_client_width = r.width;
        w->border.last_client_height = r.height;
        XoBorderCallbackStruct data;
        fillCallData(w, data, XoCR_CLIENT_RESIZED, nullptr);
        data.x = r.x;
        data.y = r.y;
        data.width = r.width;
        data.height = r.height;
        callActivate(w, data);
    }
}

void placeFrame(XoBorderWidget w, int x, int y, int width, int height)
{
    bool sameSize = width == w->core.width && height == w->core.height;
    XtConfigureWidget(reinterpret_cast<Widget>(w), Position(x), Position(y),
                      Dimension(std::max(width, 1)), Dimension(std::max(height, 1)),
                      w->core.border_width);
    if (sameSize)
        return;
    layoutChild(w);
}

bool enterState(XoBorderWidget w, int from, XoRect &target)
{
    auto &b = w->border;
    int to = b.state;
    if (to == from)
        return false;
    if (from == XoSTATE_NORMAL) {
        b.restore_x = w->core.x;
        b.restore_y = w->core.y;
        b.restore_width = w->core.width;
        b.restore_height = w->core.height;
    }
    if (to == XoSTATE_NORMAL && from == XoSTATE_ICONIC && b.was_maximized) {
        b.state = to = XoSTATE_MAXIMIZED;
        b.was_maximized = 0;
    }
    Widget self = reinterpret_cast<Widget>(w);
    Widget child = managedChild(w);
    if (to == XoSTATE_ICONIC) {
        b.was_maximized = from == XoSTATE_MAXIMIZED;
        if (child && child->core.mapped_when_managed) {
            XtSetMappedWhenManaged(child, False);
            b.client_hidden = True;
        }
        if (b.icon_pixmap == None && b.query_drag_icon_callback) {
            XoQueryDragIconCallbackStruct q{XoCR_NONE, nullptr, None};
            XtCallCallbackList(self, b.query_drag_icon_callback, &q);
            b.drag_icon = q.pixmap;
        }
        target = XoRect{b.icon_x, b.icon_y, b.icon_width, b.icon_height};
        return true;
    }
    if (b.client_hidden && child) {
        XtSetMappedWhenManaged(child, True);
        b.client_hidden = False;
    }
    if (to == XoSTATE_MAXIMIZED) {
        target = maximizedRect(w);
        return true;
    }
    b.was_maximized = 0;
    if (b.restore_width <= 0 || b.restore_height <= 0)
        return false;
    target = XoRect{b.restore_x, b.restore_y, b.restore_width, b.restore_height};
    return true;
}

// The border lies outside the parent; caption and client fill it.
XoRect maximizedRect(XoBorderWidget w)
{
    int t = layoutOf(w).thick;
    Widget parent = XtParent(reinterpret_cast<Widget>(w));
    return XoRect{-t, -t, std::max(int(parent->core.width) + 2 * t, 1),
                  std::max(int(parent->core.height) + 2 * t, 1)};
}

// ---- drawing ---------------------------------------------------------

namespace {

void fill(XoBorderWidget w, Pixel colour, int x, int y, int width, int height)
{
    if (width <= 0 || height <= 0)
        return;
    XSetForeground(XtDisplay(w), w->border.gc, colour);
    XFillRectangle(XtDisplay(w), XtWindow(w), w->border.gc, x, y, unsigned(width),
                   unsigned(height));
}

// A raised (or, pressed, sunken) bevel one pixel wide around a rectangle.
void bevel(XoBorderWidget w, int x, int y, int width, int height, bool sunken)
{
    Pixel light = sunken ? w->border.button_shadow : w->border.button_highlight;
    Pixel dark = sunken ? w->border.button_highlight : w->border.button_shadow;
    fill(w, light, x, y, width - 1, 1);
    fill(w, light, x, y, 1, height - 1);
    fill(w, dark, x, y + height - 1, width, 1);
    fill(w, dark, x + width - 1, y, 1, height);
}

void triangle(XoBorderWidget w, int cx, int cy, int half, bool up)
{
    // Rows of a solid triangle, widest at the base.
    int rows = half + 1;
    for (int i = 0; i < rows; ++i) {
        int span = up ? i : rows - 1 - i;
        fill(w, w->border.button_text, cx - span, cy - rows / 2 + i, 2 * span + 1, 1);
    }
}

void drawButton(XoBorderWidget w, int region)
{
    XRectangle r = buttonRect(w, region);
    if (!r.width)
        return;
    bool pressed = w->border.pressed_button == region;
    fill(w, w->border.button_face, r.x, r.y, r.width, r.height);
    bevel(w, r.x, r.y, r.width, r.height, pressed);
    int off = pressed ? 1 : 0;
    int cx = r.x + r.width / 2 + off, cy = r.y + r.height / 2 + off;
    int half = std::max(int(r.width) / 4, 2);
    if (region == XoREGION_SYSMENU) {
        // A bar with its shadow, the classic system-menu glyph.
        int barW = std::max(int(r.width) / 2, 4);
        fill(w, w->border.button_shadow, cx - barW / 2 + 1, cy, barW, 3);
        fill(w, w->border.button_text, cx - barW / 2, cy - 1, barW, 3);
    } else if (region == XoREGION_MINIMIZE) {
        triangle(w, cx, cy, half, false);
    } else if (w->border.state == XoSTATE_MAXIMIZED) {
        triangle(w, cx, cy - half / 2 - 1, half - 1, true);
        triangle(w, cx, cy + half / 2 + 1, half - 1, false);
    } else {
        triangle(w, cx, cy, half, true);
    }
}

XftDraw *xftDrawFor(XoBorderWidget w)
{
    if (!w->border.xft_draw) {
        if (!w->border.visual) {
            XWindowAttributes attrs;
            XGetWindowAttributes(XtDisplay(w), XtWindow(w), &attrs);
            w->border.visual = attrs.visual;
        }
        w->border.xft_draw =
            XftDrawCreate(XtDisplay(w), XtWindow(w), w->border.visual, w->core.colormap);
    }
    return w->border.xft_draw;
}

// Draws `text` centred in the box, clipped to it.
void drawText(XoBorderWidget w, const char *text, const XftColor &colour, int x, int y, int width,
              int height)
{
    XftFont *font = w->border.caption_font;
    if (!font || !text || !*text || width <= 0 || height <= 0)
        return;
    XftDraw *draw = xftDrawFor(w);
    XRectangle clip{short(x), short(y), static_cast<unsigned short>(width),
                    static_cast<unsigned short>(height)};
    XftDrawSetClipRectangles(draw, 0, 0, &clip, 1);
    XGlyphInfo ext;
    auto *bytes = reinterpret_cast<const FcChar8 *>(text);
    int len = int(std::strlen(text));
    XftTextExtentsUtf8(XtDisplay(w), font, bytes, len, &ext);
    int tx = x + std::max((width - int(ext.xOff)) / 2, 2);
    int ty = y + (height - (font->ascent + font->descent)) / 2 + font->ascent;
    XftDrawStringUtf8(draw, &colour, font, tx, ty, bytes, len);
    XftDrawSetClip(draw, nullptr);
}

void drawIcon(XoBorderWidget w, bool active)
{
    Display *dpy = XtDisplay(w);
    int width = w->core.width, height = w->core.height;
    XftFont *font = w->border.caption_font;
    int textH = (w->border.icon_text_shown && font) ? font->ascent + font->descent + 2 : 0;
    fill(w, w->core.background_pixel, 0, 0, width, height);
    Pixmap image = w->border.icon_pixmap ? w->border.icon_pixmap : w->border.drag_icon;
    int areaH = height - textH;
    if (image != None) {
        Window root;
        int px, py;
        unsigned pw, ph, pb, depth;
        XGetGeometry(dpy, image, &root, &px, &py, &pw, &ph, &pb, &depth);
        int dx = (width - int(pw)) / 2, dy = (areaH - int(ph)) / 2;
        if (depth == 1) {
            XSetForeground(dpy, w->border.gc, w->border.button_text);
            XSetBackground(dpy, w->border.gc, w->core.background_pixel);
            XCopyPlane(dpy, image, XtWindow(w), w->border.gc, 0, 0, pw, ph, dx, dy, 1);
        } else {
            XCopyArea(dpy, image, XtWindow(w), w->border.gc, 0, 0, pw, ph, dx, dy);
        }
    } else {
        // Without an icon: a small picture of a window in the caption colour.
        int iw = std::min(32, width - 4), ih = std::min(24, areaH - 4);
        int ix = (width - iw) / 2, iy = (areaH - ih) / 2;
        fill(w, w->border.window_frame, ix, iy, iw, ih);
        fill(w, w->border.button_highlight, ix + 1, iy + 1, iw - 2, ih - 2);
        fill(w, active ? w->border.active_caption : w->border.inactive_caption, ix + 1, iy + 1,
             iw - 2, std::min(6, ih - 2));
    }
    if (textH) {
        fill(w, active ? w->border.active_caption : w->border.inactive_caption, 0, height - textH,
             width, textH);
        drawText(w, w->border.title_text,
                 active ? w->border.xft_active_text : w->border.xft_inactive_text, 0,
                 height - textH, width, textH);
    }
}

}  // namespace

void redraw(XoBorderWidget w)
{
    if (!XtIsRealized(reinterpret_cast<Widget>(w)))
        return;
    ++w->border.redisplay_count;
    bool active = isActiveLook(w);
    if (w->border.state == XoSTATE_ICONIC) {
        drawIcon(w, active);
        return;
    }
    FrameLayout l = layoutOf(w);
    int width = w->core.width, height = w->core.height;
    if (l.thick > 0) {
        Pixel face = active ? w->border.active_border : w->border.inactive_border;
        int t = l.thick;
        fill(w, face, 0, 0, width, t);
        fill(w, face, 0, height - t, width, t);
        fill(w, face, 0, 0, t, height);
        fill(w, face, width - t, 0, t, height);
        if (t >= 3) {
            bevel(w, 1, 1, width - 2, height - 2, false);
            // The inner line closes the sizing border off from the inside.
            XSetForeground(XtDisplay(w), w->border.gc, w->border.window_frame);
            XDrawRectangle(XtDisplay(w), XtWindow(w), w->border.gc, t - 1, t - 1,
                           unsigned(std::max(width - 2 * t + 1, 0)),
                           unsigned(std::max(height - 2 * t + 1, 0)));
        }
        XSetForeground(XtDisplay(w), w->border.gc, w->border.window_frame);
        XDrawRectangle(XtDisplay(w), XtWindow(w), w->border.gc, 0, 0,
                       unsigned(std::max(width - 1, 0)), unsigned(std::max(height - 1, 0)));
    }
    if (l.caption) {
        int cx = l.thick, cy = l.thick, cw = width - 2 * l.thick;
        fill(w, active ? w->border.active_caption : w->border.inactive_caption, cx, cy, cw,
             l.caption - 1);
        fill(w, w->border.window_frame, cx, cy + l.caption - 1, cw, 1);
        int textL = cx, textR = cx + cw;
        for (int r : {XoREGION_SYSMENU, XoREGION_MINIMIZE, XoREGION_MAXIMIZE}) {
            XRectangle b = buttonRect(w, r);
            if (!b.width)
                continue;
            drawButton(w, r);
            if (r == XoREGION_SYSMENU)
                textL = b.x + b.width + 1;
            else
                textR = std::min(textR, int(b.x) - 1);
        }
        char label[48];
        const char *text = w->border.title_text;
        if (w->border.sizing_label && w->border.resize_label_display) {
            XRectangle c = clientRect(w);
            std::snprintf(label, sizeof label, "%d x %d", c.width, c.height);
            text = label;
        }
        drawText(w, text, active ? w->border.xft_active_text : w->border.xft_inactive_text, textL,
                 cy, textR - textL, l.caption - 1);
    }
}

}  // namespace om::widgets

// ---- class methods ---------------------------------------------------

namespace {

void Initialize(Widget, Widget created, ArgList, Cardinal *)
{
    auto w = reinterpret_cast<XoBorderWidget>(created);
    auto &b = w->border;
    clampResources(w);
    if (b.title)
        b.title = XmStringCopy(b.title);
    if (b.icon_name)
        b.icon_name = XtNewString(b.icon_name);
    if (b.caption_font_name)
        b.caption_font_name = XtNewString(b.caption_font_name);
    b.title_text = nullptr;
    setTitleText(w);
    b.caption_font = nullptr;
    openFont(w);
    b.xft_draw = nullptr;
    b.visual = nullptr;
    loadTextColours(w);
    XtGCMask dynamic = GCForeground | GCBackground;
    b.gc = XtAllocateGC(created, 0, 0, nullptr, dynamic, 0);
    b.drag_icon = None;
    b.menu = nullptr;
    b.border_type = 0;
    b.flash_inverted = False;
    b.icon_text_shown = True;
    b.client_hidden = False;
    b.sizing_label = False;
    b.pressed_button = -1;
    b.track_mode = XoTRACK_NONE;
    b.press_region = -1;
    b.last_press_time = 0;
    b.last_press_region = -1;
    b.last_client_width = b.last_client_height = -1;
    b.redisplay_count = 0;
    if (w->core.width == 0)
        w->core.width = 1;
    if (w->core.height == 0)
        w->core.height = 1;
    // A frame created minimised or maximised starts in that state, with its
    // requested rectangle as the normal one.
    XoRect r;
    if (b.state != XoSTATE_NORMAL && enterState(w, XoSTATE_NORMAL, r)) {
        w->core.x = Position(r.x);
        w->core.y = Position(r.y);
        w->core.width = Dimension(r.width);
        w->core.height = Dimension(r.height);
    }
}

void Destroy(Widget widget)
{
    auto w = reinterpret_cast<XoBorderWidget>(widget);
    forgetFrame(w);
    auto &b = w->border;
    if (b.xft_draw)
        XftDrawDestroy(b.xft_draw);
    closeFont(w);
    XtReleaseGC(widget, b.gc);
    if (b.title)
        XmStringFree(b.title);
    XtFree(b.title_text);
    XtFree(b.icon_name);
    XtFree(b.caption_font_name);
}

void Resize(Widget w)
{
    layoutChild(reinterpret_cast<XoBorderWidget>(w));
}

void Redisplay(Widget w, XEvent *, Region)
{
    redraw(reinterpret_cast<XoBorderWidget>(w));
}

Boolean SetValues(Widget currentW, Widget, Widget updatedW, ArgList, Cardinal *)
{
    auto cur = reinterpret_cast<XoBorderWidget>(currentW);
    auto upd = reinterpret_cast<XoBorderWidget>(updatedW);
    auto &o = cur->border;
    auto &n = upd->border;
    clampResources(upd);
    bool iconic = n.state == XoSTATE_ICONIC || o.state == XoSTATE_ICONIC;
    bool redisplay = false, relayout = false;

    if (n.title != o.title) {
        n.title = n.title ? XmStringCopy(n.title) : nullptr;
        if (o.title)
            XmStringFree(o.title);
        n.title_text = nullptr; // the old copy's buffer is freed below
        XtFree(o.title_text);
        setTitleText(upd);
        redisplay |= (n.decorations & XoDECOR_TITLE) || iconic;
    }
    if (n.icon_name != o.icon_name) {
        n.icon_name = n.icon_name ? XtNewString(n.icon_name) : nullptr;
        XtFree(o.icon_name);
    }
    if (n.caption_font_name != o.caption_font_name) {
        n.caption_font_name = n.caption_font_name ? XtNewString(n.caption_font_name) : nullptr;
        XtFree(o.caption_font_name);
        closeFont(upd);
        openFont(upd);
        redisplay = true;
    }
    if (n.active_caption_text != o.active_caption_text ||
        n.inactive_caption_text != o.inactive_caption_text || n.button_text != o.button_text ||
        upd->core.colormap != cur->core.colormap) {
        loadTextColours(upd);
        redisplay = true;
    }
    if (n.active_caption != o.active_caption || n.inactive_caption != o.inactive_caption ||
        n.active_border != o.active_border || n.inactive_border != o.inactive_border ||
        n.window_frame != o.window_frame || n.button_face != o.button_face ||
        n.button_shadow != o.button_shadow || n.button_highlight != o.button_highlight)
        redisplay = true;
    if (n.display_state != o.display_state &&
        (n.display_state == XoDISPLAY_ACTIVE) != (o.display_state == XoDISPLAY_ACTIVE))
        redisplay = true;
    if (n.decorations != o.decorations || n.caption_height != o.caption_height ||
        n.border_resize_width != o.border_resize_width || n.margin_width != o.margin_width ||
        n.margin_height != o.margin_height) {
        redisplay = relayout = true;
    }
    if (n.icon_pixmap != o.icon_pixmap && n.state == XoSTATE_ICONIC)
        redisplay = true;
    // State changes place the frame themselves, as a window's own move does,
    // rather than asking the parent (a canvas would refuse a maximised
    // frame's negative position).  The old record is brought along so that
    // Xt sees no geometry change left to request.
    XoRect target;
    bool place = false;
    if (n.state != o.state) {
        place = enterState(upd, o.state, target);
        redisplay = true;
    } else if (relayout && n.state == XoSTATE_MAXIMIZED) {
        // A new border thickness moves the border of a maximised frame.
        target = maximizedRect(upd);
        place = true;
    } else if (n.state == XoSTATE_ICONIC &&
               (n.icon_x != o.icon_x || n.icon_y != o.icon_y || n.icon_width != o.icon_width ||
                n.icon_height != o.icon_height)) {
        target = XoRect{n.icon_x, n.icon_y, n.icon_width, n.icon_height};
        place = redisplay = true;
    }
    if (place) {
        placeFrame(upd, target.x, target.y, target.width, target.height);
        cur->core.x = upd->core.x;
        cur->core.y = upd->core.y;
        cur->core.width = upd->core.width;
        cur->core.height = upd->core.height;
    }
    if (relayout && upd->core.width == cur->core.width && upd->core.height == cur->core.height)
        layoutChild(upd);
    return redisplay ? True : False;
}

// "title" is handed out as a copy, as Motif does for compound strings:
// the caller frees it.
void GetValuesHook(Widget widget, ArgList args, Cardinal *count)
{
    auto w = reinterpret_cast<XoBorderWidget>(widget);
    for (Cardinal i = 0; i < *count; ++i) {
        if (std::strcmp(args[i].name, XoNtitle) == 0)
            *reinterpret_cast<XmString *>(args[i].value) =
                w->border.title ? XmStringCopy(w->border.title) : nullptr;
    }
}

XtGeometryResult QueryGeometry(Widget widget, XtWidgetGeometry *intended, XtWidgetGeometry *reply)
{
    auto w = reinterpret_cast<XoBorderWidget>(widget);
    Widget child = managedChild(w);
    reply->request_mode = CWWidth | CWHeight;
    XRectangle c = clientRect(w);
    int extraW = int(w->core.width) - c.width, extraH = int(w->core.height) - c.height;
    if (child) {
        XtWidgetGeometry pref{};
        XtQueryGeometry(child, nullptr, &pref);
        int cw = (pref.request_mode & CWWidth) ? pref.width : child->core.width;
        int ch = (pref.request_mode & CWHeight) ? pref.height : child->core.height;
        reply->width = Dimension(cw + 2 * child->core.border_width + extraW);
        reply->height = Dimension(ch + 2 * child->core.border_width + extraH);
    } else {
        reply->width = w->core.width;
        reply->height = w->core.height;
    }
    if (intended && (intended->request_mode & CWWidth) && (intended->request_mode & CWHeight) &&
        intended->width == reply->width && intended->height == reply->height)
        return XtGeometryYes;
    if (reply->width == w->core.width && reply->height == w->core.height)
        return XtGeometryNo;
    return XtGeometryAlmost;
}

// The child may not move; a size request becomes a request for the frame
// to grow or shrink around it.
XtGeometryResult GeometryManager(Widget child, XtWidgetGeometry *request, XtWidgetGeometry *reply)
{
    auto w = reinterpret_cast<XoBorderWidget>(XtParent(child));
    XRectangle c = clientRect(w);
    if ((request->request_mode & CWX && request->x != c.x) ||
        (request->request_mode & CWY && request->y != c.y)) {
        reply->request_mode = CWX | CWY;
        reply->x = c.x;
        reply->y = c.y;
        return XtGeometryNo;
    }
    if (!(request->request_mode & (CWWidth | CWHeight | CWBorderWidth)))
        return XtGeometryYes;
    if (w->border.state != XoSTATE_NORMAL)
        return XtGeometryNo;
    int bw = (request->request_mode & CWBorderWidth) ? request->border_width
                                                      : child->core.border_width;
    int cw = (request->request_mode & CWWidth) ? request->width : child->core.width;
    int ch = (request->request_mode & CWHeight) ? request->height : child->core.height;
    XtWidgetGeometry mine{};
    mine.request_mode = CWWidth | CWHeight;
    mine.width = Dimension(int(w->core.width) - c.width + cw + 2 * bw);
    mine.height = Dimension(int(w->core.height) - c.height + ch + 2 * bw);
    if (request->request_mode & XtCWQueryOnly)
        mine.request_mode |= XtCWQueryOnly;
    XtGeometryResult result = XtMakeGeometryRequest(reinterpret_cast<Widget>(w), &mine, nullptr);
    if (result != XtGeometryYes)
        return XtGeometryNo;
    if (request->request_mode & XtCWQueryOnly)
        return XtGeometryYes;
    child->core.border_width = Dimension(bw);
    layoutChild(w);
    return XtGeometryDone;
}

void InsertChild(Widget child)
{
    auto super = reinterpret_cast<CompositeWidgetClass>(xmManagerWidgetClass);
    super->composite_class.insert_child(child);
    auto w = reinterpret_cast<XoBorderWidget>(XtParent(child));
    if (w->core.width > 1 || w->core.height > 1)
        layoutChild(w);
}

void ChangeManaged(Widget widget)
{
    auto w = reinterpret_cast<XoBorderWidget>(widget);
    Widget child = managedChild(w);
    if (child && w->core.width <= 1 && w->core.height <= 1) {
        // A frame created without a size wraps its child.
        XtWidgetGeometry mine{};
        XRectangle c = clientRect(w);
        mine.request_mode = CWWidth | CWHeight;
        mine.width = Dimension(int(w->core.width) - c.width + child->core.width +
                               2 * child->core.border_width);
        mine.height = Dimension(int(w->core.height) - c.height + child->core.height +
                                2 * child->core.border_width);
        XtMakeGeometryRequest(widget, &mine, nullptr);
    }
    if (child && w->border.state == XoSTATE_ICONIC && child->core.mapped_when_managed) {
        XtSetMappedWhenManaged(child, False);
        w->border.client_hidden = True;
    }
    layoutChild(w);
}

}  // namespace

// ---- functions ---------------------------------------------------------

using namespace om::widgets;

namespace {

XoBorderWidget asBorder(Widget w)
{
    return (w && XoIsBorder(w)) ? reinterpret_cast<XoBorderWidget>(w) : nullptr;
}

}  // namespace

extern "C" {

OLMO_API void XoBorderPreinitialize(void)
{
    XtInitializeWidgetClass(xoBorderWidgetClass);
}

OLMO_API void XoRegisterUpcalls(const XoUpcalls *table)
{
    registeredUpcalls = table ? *table : XoUpcalls{};
}

OLMO_API void XoGetUpcalls(XoUpcalls *table)
{
    if (table)
        *table = registeredUpcalls;
}

OLMO_API Widget XoCreateBorder(Widget parent, const char *name, ArgList args, Cardinal count)
{
    return XtCreateWidget(name, xoBorderWidgetClass, parent, args, count);
}

OLMO_API int XoGetRegionCode(Widget frame, Widget, int x, int y)
{
    XoBorderWidget w = asBorder(frame);
    return w ? regionAt(w, x, y) : XoREGION_NOWHERE;
}

OLMO_API void XoWithinCaption(Widget frame, int *x, int *y)
{
    XoBorderWidget w = asBorder(frame);
    if (!w || !x || !y)
        return;
    if (regionAt(w, *x, *y) == XoREGION_CAPTION)
        return;
    FrameLayout l = layoutOf(w);
    if (w->border.state == XoSTATE_ICONIC || !l.caption) {
        *x = w->core.width / 2;
        *y = w->core.height / 2;
        return;
    }
    // Clamp into the caption, then step off the buttons towards the middle.
    *y = l.thick + l.caption / 2;
    *x = std::clamp(*x, l.thick, int(w->core.width) - l.thick - 1);
    XRectangle menu = buttonRect(w, XoREGION_SYSMENU);
    if (menu.width && *x < menu.x + menu.width)
        *x = menu.x + menu.width + 1;
    int rightMost = int(w->core.width) - l.thick - 1;
    for (int r : {XoREGION_MINIMIZE, XoREGION_MAXIMIZE}) {
        XRectangle b = buttonRect(w, r);
        if (b.width)
            rightMost = std::min(rightMost, int(b.x) - 1);
    }
    *x = std::min(*x, rightMost);
}

OLMO_API void XoGetClientArea(Widget frame, int *x, int *y, int *width, int *height)
{
    XoBorderWidget w = asBorder(frame);
    XRectangle r = w ? clientRect(w) : XRectangle{};
    if (x)
        *x = r.x;
    if (y)
        *y = r.y;
    if (width)
        *width = r.width;
    if (height)
        *height = r.height;
}

OLMO_API void XoResizeClientArea(Widget frame)
{
    if (XoBorderWidget w = asBorder(frame))
        layoutChild(w);
}

OLMO_API int XoBorderThickness(Widget frame)
{
    XoBorderWidget w = asBorder(frame);
    return w ? layoutOf(w).thick : 0;
}

OLMO_API int XoCaptionHeightOf(Widget frame)
{
    XoBorderWidget w = asBorder(frame);
    return w ? layoutOf(w).caption : 0;
}

OLMO_API void XoRaiseChildWindow(Widget frame)
{
    if (frame && XtIsRealized(frame))
        XRaiseWindow(XtDisplay(frame), XtWindow(frame));
}

// Inverts the look (or puts it back), drawing at once as FlashWindow does;
// answers whether the frame looked active before.
OLMO_API Boolean XoFlashBorder(Widget frame, Boolean invert)
{
    XoBorderWidget w = asBorder(frame);
    if (!w)
        return False;
    bool wasActive = isActiveLook(w);
    w->border.flash_inverted = invert ? !w->border.flash_inverted : False;
    if (isActiveLook(w) != wasActive) {
        redraw(w);
        if (upcalls().omSendNCPaint)
            upcalls().omSendNCPaint(frame);
    }
    return wasActive ? True : False;
}

OLMO_API void XoManageIconText(Widget frame, Boolean show)
{
    XoBorderWidget w = asBorder(frame);
    if (!w || bool(w->border.icon_text_shown) == bool(show))
        return;
    w->border.icon_text_shown = show ? True : False;
    if (w->border.state == XoSTATE_ICONIC && XtIsRealized(frame))
        XClearArea(XtDisplay(frame), XtWindow(frame), 0, 0, 0, 0, True);
}

OLMO_API void XoShowAsIcon(Widget frame)
{
    XoBorderWidget w = asBorder(frame);
    if (!w)
        return;
    if (w->border.state != XoSTATE_ICONIC)
        XtVaSetValues(frame, XoNstate, XoSTATE_ICONIC, nullptr);
    else
        placeFrame(w, w->border.icon_x, w->border.icon_y, w->border.icon_width,
                   w->border.icon_height);
}

OLMO_API char *XoBorderGetTitleText(Widget frame)
{
    XoBorderWidget w = asBorder(frame);
    return XtNewString(w && w->border.title_text ? w->border.title_text : "");
}

OLMO_API Boolean XoBorderTitleFlag(Widget frame)
{
    XoBorderWidget w = asBorder(frame);
    if (!w)
        return False;
    return ((w->border.decorations & XoDECOR_TITLE) ||
            (w->border.state == XoSTATE_ICONIC && w->border.icon_text_shown))
               ? True
               : False;
}

OLMO_API void XoRestoreBorderWidget(Widget frame)
{
    if (asBorder(frame))
        XtVaSetValues(frame, XoNstate, XoSTATE_NORMAL, nullptr);
}

OLMO_API void ReMaximizeBorderWidget(Widget frame)
{
    XoBorderWidget w = asBorder(frame);
    if (!w || w->border.state != XoSTATE_MAXIMIZED)
        return;
    XoRect r = maximizedRect(w);
    placeFrame(w, r.x, r.y, r.width, r.height);
}

OLMO_API XtPointer XoGetMenu(Widget frame)
{
    XoBorderWidget w = asBorder(frame);
    return w ? w->border.menu : nullptr;
}

OLMO_API void XoSetMenu(Widget frame, XtPointer menu)
{
    if (XoBorderWidget w = asBorder(frame))
        w->border.menu = menu;
}

OLMO_API void XoSetBorderType(Widget frame, int type)
{
    if (XoBorderWidget w = asBorder(frame))
        w->border.border_type = type;
}

OLMO_API int XoGetBorderType(Widget frame)
{
    XoBorderWidget w = asBorder(frame);
    return w ? w->border.border_type : 0;
}

OLMO_API int XoBorderRedisplayCount(Widget frame)
{
    XoBorderWidget w = asBorder(frame);
    return w ? w->border.redisplay_count : 0;
}

}  // extern "C"
