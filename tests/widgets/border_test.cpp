// XoBorder on a bare shell: layout of the child, region codes, drawing of
// the decorations in both looks, redraws on XtSetValues, the "state"
// machine (minimise, maximise, restore) and a screenshot of every look.
#include "border_fixture.h"

#include <Xm/DrawingA.h>

#include "kernel/omdiag.h"

using namespace om::test;
using namespace std::chrono_literals;

namespace {

constexpr int kFull = XoDECOR_BORDER | XoDECOR_RESIZEH | XoDECOR_TITLE | XoDECOR_MENU |
                      XoDECOR_MINIMIZE | XoDECOR_MAXIMIZE;

bool isMapped(Display *dpy, Widget w)
{
    XWindowAttributes a;
    return XGetWindowAttributes(dpy, XtWindow(w), &a) && a.map_state == IsViewable;
}

TEST_F(BorderTest, ChildFillsClientAreaAtOnceForEveryDecoration)
{
    struct Case {
        int decorations;
        Rect client;
    } cases[] = {
        {0, {0, 0, 300, 200}},
        {XoDECOR_BORDER, {1, 1, 298, 198}},
        {XoDECOR_BORDER | XoDECOR_RESIZEH, {4, 4, 292, 192}},
        {XoDECOR_TITLE | XoDECOR_MENU, {1, 19, 298, 180}},
        {kFull, {4, 22, 292, 174}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.decorations);
        Widget frame = makeFrame(10, 10, 300, 200, c.decorations);
        Widget client = clientOf(frame);
        Rect got = geometry(client);
        EXPECT_EQ(got.x, c.client.x);
        EXPECT_EQ(got.y, c.client.y);
        EXPECT_EQ(got.width, c.client.width);
        EXPECT_EQ(got.height, c.client.height);
        int x, y, width, height;
        XoGetClientArea(frame, &x, &y, &width, &height);
        EXPECT_EQ(width, c.client.width);
        EXPECT_EQ(height, c.client.height);
        // A resize lays the child out before XtResizeWidget returns.
        XtResizeWidget(frame, 340, 260, 0);
        EXPECT_EQ(client->core.width, c.client.width + 40);
        EXPECT_EQ(client->core.height, c.client.height + 60);
        XtDestroyWidget(frame);
    }
}

TEST_F(BorderTest, EveryRegionAnswersItsCodeAtItsPixels)
{
    Widget full = makeFrame(20, 20, 300, 200, kFull);
    Widget bordered = makeFrame(20, 240, 100, 80, XoDECOR_BORDER);
    Widget titled = makeFrame(140, 240, 200, 80, XoDECOR_TITLE | XoDECOR_MENU);
    realize();
    struct Case {
        Widget frame;
        int x, y, region;
    } cases[] = {
        {full, 0, 0, XoREGION_TOPLEFT},      {full, 100, 0, XoREGION_TOP},
        {full, 299, 0, XoREGION_TOPRIGHT},   {full, 0, 100, XoREGION_LEFT},
        {full, 299, 100, XoREGION_RIGHT},    {full, 100, 199, XoREGION_BOTTOM},
        {full, 0, 199, XoREGION_BOTTOMLEFT}, {full, 299, 199, XoREGION_BOTTOMRIGHT},
        {full, 2, 15, XoREGION_TOPLEFT},     {full, 2, 25, XoREGION_LEFT},
        {full, 10, 2, XoREGION_TOPLEFT},     {full, 25, 2, XoREGION_TOP},
        {full, 297, 190, XoREGION_BOTTOMRIGHT}, {full, 290, 197, XoREGION_BOTTOMRIGHT},
        {full, 10, 10, XoREGION_SYSMENU},    {full, 270, 10, XoREGION_MINIMIZE},
        {full, 285, 10, XoREGION_MAXIMIZE},  {full, 150, 10, XoREGION_CAPTION},
        {full, 150, 21, XoREGION_CAPTION},   {full, 150, 22, XoREGION_CLIENT},
        {full, 150, 100, XoREGION_CLIENT},   {full, -1, 5, XoREGION_NOWHERE},
        {full, 300, 5, XoREGION_NOWHERE},    {bordered, 0, 40, XoREGION_BORDER},
        {bordered, 50, 40, XoREGION_CLIENT}, {titled, 0, 40, XoREGION_BORDER},
        {titled, 100, 8, XoREGION_CAPTION},  {titled, 8, 8, XoREGION_SYSMENU},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << XtName(c.frame) << " at " << c.x << "," << c.y);
        EXPECT_EQ(XoGetRegionCode(c.frame, nullptr, c.x, c.y), c.region);
    }
    // The pixels of the regions are the decorations they name.
    EXPECT_EQ(pixelAt(dpy_, XtWindow(full), 0, 100), 0x000000u);  // frame line
    EXPECT_EQ(pixelAt(dpy_, XtWindow(full), 2, 100), 0xC0C0C0u);  // sizing border
    EXPECT_EQ(pixelAt(dpy_, XtWindow(full), 150, 10), 0x808080u); // inactive caption
    EXPECT_EQ(pixelAt(dpy_, XtWindow(full), 267, 7), 0xC0C0C0u);  // minimise button face
    EXPECT_EQ(pixelAt(dpy_, XtWindow(full), 150, 100), 0xFFFFFFu); // client

    // A point moved into the caption answers the caption.
    int x = 5, y = 150;
    XoWithinCaption(full, &x, &y);
    EXPECT_EQ(XoGetRegionCode(full, nullptr, x, y), XoREGION_CAPTION);
    x = 299, y = 199;
    XoWithinCaption(full, &x, &y);
    EXPECT_EQ(XoGetRegionCode(full, nullptr, x, y), XoREGION_CAPTION);
}

TEST_F(BorderTest, ActiveAndInactiveLooksAndFlash)
{
    Widget frame = makeFrame(20, 20, 300, 200, kFull);
    XmString title = XmStringCreateLocalized(const_cast<char *>("Caption"));
    XtVaSetValues(frame, XoNtitle, title, nullptr);
    XmStringFree(title);
    realize();
    EXPECT_EQ(pixelAt(dpy_, XtWindow(frame), 100, 6), 0x808080u);
    XtVaSetValues(frame, XoNdisplayState, XoDISPLAY_ACTIVE, nullptr);
    settle();
    EXPECT_EQ(pixelAt(dpy_, XtWindow(frame), 100, 6), 0x000080u);
    // Flashing inverts the look at once and reports the look it had.
    EXPECT_TRUE(XoFlashBorder(frame, True));
    XSync(dpy_, False);
    EXPECT_EQ(pixelAt(dpy_, XtWindow(frame), 100, 6), 0x808080u);
    EXPECT_EQ(count("NCPaint"), 1);
    EXPECT_FALSE(XoFlashBorder(frame, False));
    EXPECT_EQ(pixelAt(dpy_, XtWindow(frame), 100, 6), 0x000080u);

    char *text = XoBorderGetTitleText(frame);
    EXPECT_STREQ(text, "Caption");
    XtFree(text);
    XmString got = nullptr;
    XtVaGetValues(frame, XoNtitle, &got, nullptr);
    ASSERT_NE(got, nullptr);
    char *unparsed = static_cast<char *>(
        XmStringUnparse(got, nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL));
    EXPECT_STREQ(unparsed, "Caption");
    XtFree(unparsed);
    XmStringFree(got); // the caller's copy
    EXPECT_TRUE(XoIsBorder(frame));
    EXPECT_FALSE(XoIsBorder(canvas_));
}

TEST_F(BorderTest, SetValuesRedrawsOnlyWhenTheLookChanges)
{
    Widget frame = makeFrame(20, 20, 300, 200, kFull);
    realize();
    XmString title = XmStringCreateLocalized(const_cast<char *>("New title"));
    struct Case {
        const char *name;
        XtArgVal value;
        int redraws;
    } cases[] = {
        {XoNdoIt, 0, 0},
        {XoNiconX, 50, 0},
        {XoNiconY, 60, 0},
        {XoNiconWidth, 80, 0},
        {XoNrestoreX, 10, 0},
        {XoNrestoreHeight, 10, 0},
        {XoNwasMaximized, 1, 0},
        {XoNresizeLabelDisplay, 1, 0},
        {XoNdisplayState, 1, 0}, // still an inactive look
        {XmNiconName, XtArgVal("icon"), 0},
        {XoNborderResizeWidth, 4, 0},
        {XoNdisplayState, XoDISPLAY_ACTIVE, 1},
        {XoNdisplayState, XoDISPLAY_ACTIVE, 0},
        {XoNtitle, XtArgVal(title), 1},
        {XoNactiveCaptionColor, 0x800000, 1},
        {XoNdecorations, kFull & ~XoDECOR_MINIMIZE, 1},
        {XoNcaptionFont, XtArgVal("Sans-12"), 1},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        settle();
        int before = XoBorderRedisplayCount(frame);
        XtVaSetValues(frame, c.name, c.value, nullptr);
        settle();
        EXPECT_EQ(XoBorderRedisplayCount(frame) - before, c.redraws);
    }
    XmStringFree(title);
    EXPECT_EQ(pixelAt(dpy_, XtWindow(frame), 60, 6), 0x800000u);
}

TEST_F(BorderTest, MinimiseButtonIconifiesAndDoubleClickRestores)
{
    Widget frame = makeFrame(40, 40, 300, 200, kFull, {{XoNiconX, 400}, {XoNiconY, 380}});
    Widget client = clientOf(frame);
    realize();
    Rect r = rootOf(frame);
    ASSERT_TRUE(click(dpy_, r.x + 272, r.y + 12));
    OM_ASSERT_PUMP_UNTIL(frame->core.width == 64, 3000, pump_);
    EXPECT_EQ(reasonCodes(), (std::vector<int>{XoCR_ACTIVATE, XoCR_MINIMIZE}));
    int state = 0;
    XtVaGetValues(frame, XoNstate, &state, nullptr);
    EXPECT_EQ(state, XoSTATE_ICONIC);
    Rect icon = geometry(frame);
    EXPECT_EQ(icon.x, 400);
    EXPECT_EQ(icon.y, 380);
    EXPECT_EQ(icon.height, 56);
    settle();
    EXPECT_FALSE(isMapped(dpy_, client));
    EXPECT_EQ(XoGetRegionCode(frame, nullptr, 5, 5), XoREGION_CAPTION);
    EXPECT_TRUE(XoBorderTitleFlag(frame));

    reasons_.clear();
    r = rootOf(frame);
    ASSERT_TRUE(click(dpy_, r.x + 30, r.y + 20));
    ASSERT_TRUE(click(dpy_, r.x + 30, r.y + 20));
    OM_ASSERT_PUMP_UNTIL(frame->core.width == 300, 3000, pump_);
    EXPECT_EQ(reasonCodes(), (std::vector<int>{XoCR_ACTIVATE_ICON, XoCR_ACTIVATE_ICON,
                                               XoCR_RESTORE}));
    Rect back = geometry(frame);
    EXPECT_EQ(back.x, 40);
    EXPECT_EQ(back.y, 40);
    EXPECT_EQ(back.height, 200);
    EXPECT_EQ(client->core.width, 292);
    EXPECT_EQ(client->core.height, 174);
    settle();
    EXPECT_TRUE(isMapped(dpy_, client));
}

TEST_F(BorderTest, MaximiseButtonFillsTheParentAndRestoreButtonReturns)
{
    Widget frame = makeFrame(40, 40, 300, 200, kFull, {{XoNdisplayState, 0}});
    Widget client = clientOf(frame);
    realize();
    Rect r = rootOf(frame);
    ASSERT_TRUE(click(dpy_, r.x + 287, r.y + 12));
    OM_ASSERT_PUMP_UNTIL(frame->core.width != 300, 3000, pump_);
    EXPECT_EQ(reasonCodes(), (std::vector<int>{XoCR_MAXIMIZE}));
    int state = 0, rx = 0, ry = 0, rw = 0, rh = 0;
    XtVaGetValues(frame, XoNstate, &state, XoNrestoreX, &rx, XoNrestoreY, &ry, XoNrestoreWidth,
                  &rw, XoNrestoreHeight, &rh, nullptr);
    EXPECT_EQ(state, XoSTATE_MAXIMIZED);
    EXPECT_EQ((std::vector<int>{rx, ry, rw, rh}), (std::vector<int>{40, 40, 300, 200}));
    Rect max = geometry(frame);
    EXPECT_EQ((std::vector<int>{max.x, max.y, max.width, max.height}),
              (std::vector<int>{-4, -4, kCanvasW + 8, kCanvasH + 8}));
    EXPECT_EQ(client->core.width, kCanvasW);
    EXPECT_EQ(client->core.height, kCanvasH - 18);
    // A maximised frame neither sizes nor moves by its border or caption.
    EXPECT_EQ(XoGetRegionCode(frame, nullptr, 1, 100), XoREGION_BORDER);

    settle();
    reasons_.clear();
    r = rootOf(frame);
    ASSERT_TRUE(click(dpy_, r.x + kCanvasW + 8 - 4 - 1 - 7, r.y + 12));
    OM_ASSERT_PUMP_UNTIL(frame->core.width == 300, 3000, pump_);
    EXPECT_EQ(reasonCodes(), (std::vector<int>{XoCR_RESTORE}));
    Rect back = geometry(frame);
    EXPECT_EQ(back.x, 40);
    EXPECT_EQ(back.y, 40);
    EXPECT_EQ(client->core.height, 174);
}

void refuse(Widget w, XtPointer, XtPointer data)
{
    auto *cb = static_cast<XoBorderCallbackStruct *>(data);
    if (cb->reason == XoCR_MINIMIZE || cb->reason == XoCR_MAXIMIZE)
        XtVaSetValues(w, XoNdoIt, 0, nullptr);
}

TEST_F(BorderTest, DoItClearedByTheCallbackSkipsTheDefaultAction)
{
    Widget frame = makeFrame(40, 40, 300, 200, kFull, {{XoNdisplayState, 0}});
    XtAddCallback(frame, XoNactivateCallback, refuse, nullptr);
    realize();
    Rect r = rootOf(frame);
    ASSERT_TRUE(click(dpy_, r.x + 272, r.y + 12));
    OM_ASSERT_PUMP_UNTIL(!reasons_.empty(), 3000, pump_);
    ASSERT_TRUE(click(dpy_, r.x + 287, r.y + 12));
    OM_ASSERT_PUMP_UNTIL(reasons_.size() >= 2, 3000, pump_);
    settle();
    EXPECT_EQ(reasonCodes(), (std::vector<int>{XoCR_MINIMIZE, XoCR_MAXIMIZE}));
    int state = 0;
    XtVaGetValues(frame, XoNstate, &state, nullptr);
    EXPECT_EQ(state, XoSTATE_NORMAL);
    EXPECT_EQ(frame->core.width, 300);
}

TEST_F(BorderTest, SettingStatePerformsTheChange)
{
    // Created minimised: the requested rectangle becomes the normal one.
    Widget frame = makeFrame(30, 30, 200, 150, kFull,
                             {{XoNstate, XoSTATE_ICONIC}, {XoNiconX, 10}, {XoNiconY, 400}});
    realize();
    EXPECT_EQ((std::vector<int>{frame->core.x, frame->core.y, frame->core.width}),
              (std::vector<int>{10, 400, 64}));
    XtVaSetValues(frame, XoNiconX, 100, nullptr); // moves the icon
    EXPECT_EQ(frame->core.x, 100);
    XtVaSetValues(frame, XoNstate, XoSTATE_NORMAL, nullptr);
    EXPECT_EQ((std::vector<int>{frame->core.x, frame->core.y, frame->core.width,
                                frame->core.height}),
              (std::vector<int>{30, 30, 200, 150}));
    EXPECT_EQ(clientOf(frame)->core.height, 150 - 22 - 4);

    // Maximised, then iconic: restoring goes back to maximised, then normal.
    XtVaSetValues(frame, XoNstate, XoSTATE_MAXIMIZED, nullptr);
    XtVaSetValues(frame, XoNstate, XoSTATE_ICONIC, nullptr);
    int was = 0;
    XtVaGetValues(frame, XoNwasMaximized, &was, nullptr);
    EXPECT_EQ(was, 1);
    XoRestoreBorderWidget(frame);
    int state = 0;
    XtVaGetValues(frame, XoNstate, &state, nullptr);
    EXPECT_EQ(state, XoSTATE_MAXIMIZED);
    EXPECT_EQ(frame->core.width, kCanvasW + 8);
    XoRestoreBorderWidget(frame);
    EXPECT_EQ(frame->core.width, 200);

    // A maximised frame follows its parent when asked.
    XtVaSetValues(frame, XoNstate, XoSTATE_MAXIMIZED, nullptr);
    // Decorations without a sizing border bring a maximised frame's border in.
    XtVaSetValues(frame, XoNdecorations, XoDECOR_TITLE | XoDECOR_MAXIMIZE, nullptr);
    EXPECT_EQ((std::vector<int>{frame->core.x, frame->core.width}),
              (std::vector<int>{-1, kCanvasW + 2}));
    XtVaSetValues(frame, XoNdecorations, kFull, nullptr);
    XtResizeWidget(canvas_, 500, 300, 0);
    ReMaximizeBorderWidget(frame);
    EXPECT_EQ(frame->core.width, 508);
    EXPECT_EQ(clientOf(frame)->core.height, 300 - 18);
}

void giveDragIcon(Widget, XtPointer pixmap, XtPointer data)
{
    static_cast<XoQueryDragIconCallbackStruct *>(data)->pixmap = *static_cast<Pixmap *>(pixmap);
}

TEST_F(BorderTest, IconWithoutPixmapAsksForOneAndHidesItsText)
{
    Widget frame = makeFrame(30, 30, 200, 150, kFull);
    realize();
    Pixmap red = XCreatePixmap(dpy_, XtWindow(frame), 16, 16,
                               unsigned(DefaultDepth(dpy_, DefaultScreen(dpy_))));
    GC gc = XCreateGC(dpy_, red, 0, nullptr);
    XSetForeground(dpy_, gc, 0xFF0000);
    XFillRectangle(dpy_, red, gc, 0, 0, 16, 16);
    XFreeGC(dpy_, gc);
    XtAddCallback(frame, XoNqueryDragIconCallback, giveDragIcon, &red);
    XtVaSetValues(frame, XoNiconX, 300, XoNiconY, 300, XoNstate, XoSTATE_ICONIC, nullptr);
    settle();
    EXPECT_EQ(pixelAt(dpy_, XtWindow(frame), 32, 20), 0xFF0000u); // the pixmap, centred
    uint32_t band = pixelAt(dpy_, XtWindow(frame), 2, 54);
    EXPECT_EQ(band, 0x808080u); // title band in the inactive caption colour
    int before = XoBorderRedisplayCount(frame);
    XoManageIconText(frame, False);
    settle();
    EXPECT_EQ(XoBorderRedisplayCount(frame) - before, 1);
    EXPECT_NE(pixelAt(dpy_, XtWindow(frame), 2, 54), 0x808080u);
    XoManageIconText(frame, False); // no change, no redraw
    settle();
    EXPECT_EQ(XoBorderRedisplayCount(frame) - before, 1);
    XtDestroyWidget(frame);
    settle();
    XFreePixmap(dpy_, red);
}

TEST_F(BorderTest, ClientSizeChangesAreReported)
{
    Widget frame = makeFrame(30, 30, 200, 150, kFull);
    reasons_.clear();
    XtResizeWidget(frame, 260, 150, 0);
    XtResizeWidget(frame, 260, 150, 0); // same size: nothing new
    XtVaSetValues(frame, XoNdecorations, XoDECOR_BORDER, nullptr);
    std::vector<std::vector<int>> clients;
    for (auto &r : reasons_)
        if (r.reason == XoCR_CLIENT_RESIZED)
            clients.push_back({r.x, r.y, r.width, r.height});
    EXPECT_EQ(clients, (std::vector<std::vector<int>>{{4, 22, 252, 124}, {1, 1, 258, 148}}));
}

TEST_F(BorderTest, BadNumbersWarnAndFallBack)
{
    Widget frame = makeFrame(30, 30, 200, 150, kFull);
    omDiagResetCounts();
    XtVaSetValues(frame, XoNstate, 7, XoNcaptionHeight, 500, XoNborderResizeWidth, 0, nullptr);
    EXPECT_EQ(omDiagCount(161), 3u);
    int state = 0, caption = 0, thick = 0;
    XtVaGetValues(frame, XoNstate, &state, XoNcaptionHeight, &caption, XoNborderResizeWidth,
                  &thick, nullptr);
    EXPECT_EQ((std::vector<int>{state, caption, thick}), (std::vector<int>{4, 18, 4}));
    EXPECT_EQ(frame->core.width, 200);
}

TEST_F(BorderTest, ScreenshotOfEveryDecoration)
{
    auto titled = [&](Widget frame, const char *text) {
        XmString s = XmStringCreateLocalized(const_cast<char *>(text));
        XtVaSetValues(frame, XoNtitle, s, nullptr);
        XmStringFree(s);
    };
    makeFrame(10, 10, 180, 120, XoDECOR_BORDER);
    titled(makeFrame(210, 10, 200, 120,
                     XoDECOR_BORDER | XoDECOR_RESIZEH | XoDECOR_TITLE | XoDECOR_MENU),
           "System menu");
    titled(makeFrame(430, 10, 200, 140, kFull, {{XoNdisplayState, XoDISPLAY_ACTIVE}}),
           "Active");
    titled(makeFrame(10, 170, 300, 160, kFull), "Inactive window with a long title");
    Widget icon = makeFrame(340, 170, 200, 150, kFull,
                            {{XoNstate, XoSTATE_ICONIC}, {XoNiconX, 340}, {XoNiconY, 180}});
    titled(icon, "Icon");
    Widget activeIcon = makeFrame(340, 170, 200, 150, kFull,
                                  {{XoNstate, XoSTATE_ICONIC}, {XoNiconX, 420}, {XoNiconY, 180},
                                   {XoNdisplayState, XoDISPLAY_ACTIVE}});
    titled(activeIcon, "Active icon");
    realize();
    std::string path;
    ASSERT_TRUE(saveWindowPng(dpy_, XtWindow(shell_), testArtifactName(), &path));
    PngImage image;
    ASSERT_TRUE(readPng(path, image));
    EXPECT_EQ(image.at(455, 20), 0x000080u); // active caption
    EXPECT_EQ(image.at(36, 180), 0x808080u);  // inactive caption
    EXPECT_EQ(image.at(100, 70), 0xFFFFFFu);  // client of the border-only frame
}

} // namespace
