// The bare-shell fixture of the XoBorder tests: a shell at the screen's
// origin holding a drawing-area canvas, frames with a client drawing area
// in it, recorders for the upcalls and activateCallback, and the two ways
// input reaches a frame (XTest, and events handed to it as the default
// window procedure gives them back).
#pragma once

#include <gtest/gtest.h> // first: Xlib's None macro breaks gtest if defined before it

#include <Xm/DrawingA.h>
#include <Xm/Xm.h>
#include <X11/IntrinsicP.h> // core geometry fields, read without round trips

#include <string>
#include <vector>

#include "harness/input.h"
#include "harness/pump.h"
#include "harness/screenshot.h"
#include "harness/xtapp.h"
#include "harness/xwindow.h"
#include "widgets/XoBorder.h"
#include "widgets/xoupcalls.h"

namespace om::test {

struct UpcallRecord {
    std::string what;
    XoRect rect{};
    int edge = -1;
};

// Filled by the registered upcalls; the fixture clears it per test.
inline std::vector<UpcallRecord> g_upcalls;
// When set, WM_MOVING handlers pin the rectangle's top to this value.
inline int g_pinTop = -1000000;

inline void recordNCPaint(Widget) { g_upcalls.push_back({"NCPaint"}); }
inline void recordSCMove(Widget, int x, int y) { g_upcalls.push_back({"SC_MOVE", {x, y, 0, 0}}); }
inline void recordSCSize(Widget, int x, int y) { g_upcalls.push_back({"SC_SIZE", {x, y, 0, 0}}); }
inline void recordMoving(Widget, XoRect *r)
{
    if (g_pinTop != -1000000)
        r->y = g_pinTop;
    g_upcalls.push_back({"WM_MOVING", *r});
}
inline void recordSizing(Widget, XoRect *r, int edge) { g_upcalls.push_back({"WM_SIZING", *r, edge}); }
inline void recordPopup(Widget, int x, int y) { g_upcalls.push_back({"PopupSystemMenu", {x, y, 0, 0}}); }
inline void recordEnable(Widget, int which, Boolean on)
{
    g_upcalls.push_back({"Enable", {which, on ? 1 : 0, 0, 0}});
}

class BorderTest : public ::testing::Test {
  protected:
    static constexpr int kCanvasW = 640, kCanvasH = 480;

    void SetUp() override
    {
        ASSERT_NE(dpy_, nullptr) << "cannot open the test display";
        XoBorderPreinitialize();
        XoUpcalls up{};
        up.omSendNCPaint = recordNCPaint;
        up.omSendSC_MOVE = recordSCMove;
        up.omSendSC_SIZE = recordSCSize;
        up.omSendWM_MOVING = recordMoving;
        up.omSendWM_SIZING = recordSizing;
        up.omPopupSystemMenu = recordPopup;
        up.omEnableSystemMenuItem = recordEnable;
        XoRegisterUpcalls(&up);
        g_upcalls.clear();
        g_pinTop = -1000000;
        shell_ = XtVaAppCreateShell("border", "OlmoBorder", applicationShellWidgetClass, dpy_,
                                    XmNx, 0, XmNy, 0, XmNwidth, kCanvasW, XmNheight, kCanvasH,
                                    nullptr);
        canvas_ = XtVaCreateManagedWidget("canvas", xmDrawingAreaWidgetClass, shell_, XmNwidth,
                                          kCanvasW, XmNheight, kCanvasH, XmNmarginWidth, 0,
                                          XmNmarginHeight, 0, XmNresizePolicy, XmRESIZE_NONE,
                                          XmNbackground, 0x008080, nullptr);
    }
    void TearDown() override
    {
        XoEndMoveSize(False);
        XoRegisterUpcalls(nullptr);
        if (shell_)
            XtDestroyWidget(shell_);
        pumpFor(std::chrono::milliseconds(20), pump_);
    }

    // A frame with a white client; extra resources as name/value pairs.
    Widget makeFrame(int x, int y, int width, int height, int decorations,
                     std::vector<Arg> extra = {})
    {
        std::vector<Arg> args(5);
        XtSetArg(args[0], XmNx, x);
        XtSetArg(args[1], XmNy, y);
        XtSetArg(args[2], XmNwidth, width);
        XtSetArg(args[3], XmNheight, height);
        XtSetArg(args[4], XoNdecorations, decorations);
        args.insert(args.end(), extra.begin(), extra.end());
        Widget frame = XoCreateBorder(canvas_, "ChildWindow", args.data(), Cardinal(args.size()));
        Widget client = XtVaCreateManagedWidget("client", xmDrawingAreaWidgetClass, frame,
                                                XmNbackground, 0xFFFFFF, XmNmarginWidth, 0,
                                                XmNmarginHeight, 0, nullptr);
        XtManageChild(frame);
        XtAddCallback(frame, XoNactivateCallback, recordReason, &reasons_);
        clients_.push_back(client);
        return frame;
    }
    Widget clientOf(Widget frame)
    {
        WidgetList kids;
        Cardinal n;
        XtVaGetValues(frame, XmNchildren, &kids, XmNnumChildren, &n, nullptr);
        return n ? kids[0] : nullptr;
    }
    void realize()
    {
        XtRealizeWidget(shell_);
        ASSERT_TRUE(waitForMapped(dpy_, XtWindow(canvas_), std::chrono::seconds(5), pump_));
        settle();
    }
    // Lets Expose and configure traffic finish.
    void settle()
    {
        XSync(dpy_, False);
        pumpFor(std::chrono::milliseconds(60), pump_);
    }

    static void recordReason(Widget, XtPointer list, XtPointer data)
    {
        static_cast<std::vector<XoBorderCallbackStruct> *>(list)->push_back(
            *static_cast<XoBorderCallbackStruct *>(data));
    }
    std::vector<int> reasonCodes(bool skipClientResized = true) const
    {
        std::vector<int> out;
        for (auto &r : reasons_)
            if (!skipClientResized || r.reason != XoCR_CLIENT_RESIZED)
                out.push_back(r.reason);
        return out;
    }
    const XoBorderCallbackStruct *lastReason(int reason) const
    {
        for (auto it = reasons_.rbegin(); it != reasons_.rend(); ++it)
            if (it->reason == reason)
                return &*it;
        return nullptr;
    }
    int count(const std::string &what) const
    {
        int n = 0;
        for (auto &u : g_upcalls)
            n += u.what == what;
        return n;
    }

    static Rect geometry(Widget w)
    {
        return Rect{w->core.x, w->core.y, w->core.width, w->core.height};
    }

    // Root position of a frame point, from the server.
    Rect rootOf(Widget frame)
    {
        return windowRootRect(dpy_, XtWindow(frame));
    }

    // The second input path: an event built as the default window procedure
    // builds it and dispatched through Xt.  Motion carries root coordinates
    // 0 and Button1Mask; buttons carry their root point.
    void sendButton(Widget frame, int type, int x, int y, Time time)
    {
        XEvent ev{};
        ev.xbutton.type = type;
        ev.xbutton.send_event = True;
        ev.xbutton.display = dpy_;
        ev.xbutton.window = XtWindow(frame);
        ev.xbutton.root = DefaultRootWindow(dpy_);
        ev.xbutton.time = time;
        ev.xbutton.x = x;
        ev.xbutton.y = y;
        Position rx, ry;
        XtTranslateCoords(frame, Position(x), Position(y), &rx, &ry);
        ev.xbutton.x_root = rx;
        ev.xbutton.y_root = ry;
        ev.xbutton.button = Button1;
        ev.xbutton.state = type == ButtonRelease ? Button1Mask : 0;
        ev.xbutton.same_screen = True;
        XtDispatchEvent(&ev);
    }
    void sendMotion(Widget frame, int x, int y, Time time)
    {
        XEvent ev{};
        ev.xmotion.type = MotionNotify;
        ev.xmotion.send_event = True;
        ev.xmotion.display = dpy_;
        ev.xmotion.window = XtWindow(frame);
        ev.xmotion.root = DefaultRootWindow(dpy_);
        ev.xmotion.time = time;
        ev.xmotion.x = x;
        ev.xmotion.y = y;
        ev.xmotion.state = Button1Mask;
        ev.xmotion.same_screen = True;
        XtDispatchEvent(&ev);
    }

    XtAppContext app_ = sharedXtApp().context;
    Display *dpy_ = sharedXtApp().display;
    XtPump pump_{sharedXtApp().context};
    Widget shell_ = nullptr;
    Widget canvas_ = nullptr;
    std::vector<Widget> clients_;
    std::vector<XoBorderCallbackStruct> reasons_;
};

} // namespace om::test
