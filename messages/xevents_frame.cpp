// Frame sizes of a window as the event translation sees them: the border
// its style asks for and the caption above the client area, from the
// toolkit's resources.
#include "messages/xevents.h"

#include "core/omwindow.h"
#include "kernel/omdisplay.h"

extern "C" OLMO_API int omBorderWidth(const WindowRecord *record)
{
    if (!record)
        return 0;
    if (record->style & WS_THICKFRAME)
        return omResources.frameWidth;
    if (record->style & WS_DLGFRAME)
        return omResources.dialogFrameWidth;
    if (record->style & WS_BORDER)
        return GetSystemMetrics(SM_CXBORDER);
    return 0;
}

extern "C" OLMO_API int omCaptionHeight(const WindowRecord *record)
{
    if (!record || (record->style & WS_CAPTION) != WS_CAPTION)
        return 0;
    return omResources.captionHeight;
}
