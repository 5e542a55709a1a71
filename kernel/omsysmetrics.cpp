// GetSystemMetrics: frame and caption sizes from the resources the frame
// code also uses, screen sizes from the display, the rest Windows' classic
// values.  Without a display the screen is reported as 1024x768.
#include "kernel/omdisplay.h"

#include <windows.h>

namespace {

int screenWidth()
{
    Display *d = omEnsureDisplay();
    return d ? DisplayWidth(d, DefaultScreen(d)) : 1024;
}

int screenHeight()
{
    Display *d = omEnsureDisplay();
    return d ? DisplayHeight(d, DefaultScreen(d)) : 768;
}

}  // namespace

extern "C" int WINAPI GetSystemMetrics(int nIndex)
{
    omEnsureDisplay();  // the resources come with the display
    const OmResources &r = omResources;
    switch (nIndex) {
    case SM_CXSCREEN:
    case SM_CXVIRTUALSCREEN:
    case SM_CXMAXIMIZED:
        return screenWidth();
    case SM_CYSCREEN:
    case SM_CYVIRTUALSCREEN:
    case SM_CYMAXIMIZED:
        return screenHeight();
    case SM_CXFULLSCREEN:
        return screenWidth();
    case SM_CYFULLSCREEN:
        return screenHeight() - r.captionHeight;
    case SM_XVIRTUALSCREEN:
    case SM_YVIRTUALSCREEN:
        return 0;
    case SM_CXFRAME:
    case SM_CYFRAME:
        return r.frameWidth;
    case SM_CXDLGFRAME:
    case SM_CYDLGFRAME:
        return r.dialogFrameWidth;
    case SM_CXBORDER:
    case SM_CYBORDER:
        return 1;
    case SM_CXEDGE:
    case SM_CYEDGE:
        return 2;
    case SM_CYCAPTION:
        return r.captionHeight;
    case SM_CYSMCAPTION:
        return r.captionHeight - 4;
    case SM_CYMENU:
        return r.menuHeight;
    case SM_CXVSCROLL:
    case SM_CYHSCROLL:
    case SM_CXHSCROLL:
    case SM_CYVSCROLL:
    case SM_CXHTHUMB:
    case SM_CYVTHUMB:
        return r.scrollBarWidth;
    case SM_CXICON:
    case SM_CYICON:
    case SM_CXCURSOR:
    case SM_CYCURSOR:
    case SM_CXICONSPACING:
    case SM_CYICONSPACING:
        return nIndex == SM_CXICONSPACING || nIndex == SM_CYICONSPACING ? 75 : 32;
    case SM_CXSMICON:
    case SM_CYSMICON:
        return 16;
    case SM_CXSIZE:
    case SM_CYSIZE:
        return r.captionHeight - 1;
    case SM_CXMIN:
        return 112;
    case SM_CYMIN:
        return r.captionHeight + 2 * r.frameWidth;
    case SM_CXMINTRACK:
        return 112;
    case SM_CYMINTRACK:
        return r.captionHeight + 2 * r.frameWidth;
    case SM_CXMAXTRACK:
        return screenWidth() + 2 * r.frameWidth;
    case SM_CYMAXTRACK:
        return screenHeight() + 2 * r.frameWidth;
    case SM_CXDOUBLECLK:
    case SM_CYDOUBLECLK:
        return 4;
    case SM_CXDRAG:
    case SM_CYDRAG:
        return 4;
    case SM_MOUSEPRESENT:
        return 1;
    case SM_CMOUSEBUTTONS:
        return 3;
    case SM_MOUSEWHEELPRESENT:
        return 1;
    case SM_SWAPBUTTON:
    case SM_DEBUG:
    case SM_PENWINDOWS:
    case SM_DBCSENABLED:
    case SM_IMMENABLED:
    case SM_SLOWMACHINE:
    case SM_MIDEASTENABLED:
    case SM_NETWORK:
    case SM_CLEANBOOT:
    case SM_SECURE:
    case SM_REMOTESESSION:
    case SM_SHOWSOUNDS:
        return 0;
    case SM_CMONITORS:
        return 1;
    case SM_SAMEDISPLAYFORMAT:
        return 1;
    default:
        return 0;
    }
}
