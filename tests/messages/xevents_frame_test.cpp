// Frame sizes by window style: which border wins and when a caption counts.
#include <gtest/gtest.h>

#include "core/omwindow.h"
#include "kernel/omdisplay.h"
#include "kernel/ominit.h"
#include "messages/xevents.h"

namespace {

TEST(FrameSizes, BorderAndCaptionFollowTheStyle)
{
    ASSERT_TRUE(omInitialize(nullptr, nullptr));
    struct Case {
        const char *name;
        DWORD style;
        int border;
        int caption;
    } cases[] = {
        {"thick frame over dialog frame", WS_THICKFRAME | WS_DLGFRAME | WS_BORDER,
         omResources.frameWidth, omResources.captionHeight},
        {"dialog frame", WS_DLGFRAME, omResources.dialogFrameWidth, 0},
        {"thin border", WS_BORDER, GetSystemMetrics(SM_CXBORDER), 0},
        {"nothing", WS_POPUP, 0, 0},
        {"overlapped window", WS_OVERLAPPEDWINDOW, omResources.frameWidth,
         omResources.captionHeight},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        WindowRecord w;
        w.style = c.style;
        EXPECT_EQ(omBorderWidth(&w), c.border);
        EXPECT_EQ(omCaptionHeight(&w), c.caption);
    }
    EXPECT_EQ(omBorderWidth(nullptr), 0);
    EXPECT_NE(omResources.frameWidth, omResources.dialogFrameWidth) << "the table tells nothing";
}

}  // namespace
