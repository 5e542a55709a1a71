// Numbered diagnostics: typed formatting of wide values, counting, and the
// C entry that reads its arguments as the catalogue declares them.
#include "kernel/omdiag.h"
#include "kernel/omplaceholder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

TEST(Diagnostics, CountsEachNumberAndPrintsWideValuesWhole)
{
    omDiagResetCounts();
    testing::internal::CaptureStderr();
    void *handle = reinterpret_cast<void *>(uintptr_t{0x123456789aULL});
    uint64_t wParam = 0xFEDCBA9876543210ULL;
    omDebugWarning(OmDiag::BadWindowHandle, "SendMessage", handle, wParam);
    omDebugWarning(OmDiag::BadWindowHandle, "GetParent");
    std::string out = testing::internal::GetCapturedStderr();
    EXPECT_EQ(omDiagCount(79), 2u);
    EXPECT_EQ(omDiagCount(237), 0u);
    EXPECT_NE(out.find("olmo warning 79: SendMessage: 0x123456789a"), std::string::npos) << out;
    EXPECT_NE(out.find("GetParent"), std::string::npos);
}

TEST(Diagnostics, CEntryReadsTheCatalogueArgumentTypes)
{
    omDiagResetCounts();
    testing::internal::CaptureStderr();
    // 39 takes an int after the function; 161 a pointer-sized signed value.
    omError(39, "GetWindowLongPtrA", -24);
    omDebugWarning(161, "SystemParametersInfo", int64_t{-5000000000LL});
    int r = omError(130, "omInitMsgQ");
    std::string out = testing::internal::GetCapturedStderr();
    EXPECT_NE(r, 0) << "omError's result is a failure value callers pass on";
    EXPECT_NE(out.find("olmo error 39: GetWindowLongPtrA: index -24"), std::string::npos) << out;
    EXPECT_NE(out.find("-5000000000"), std::string::npos) << out;
    EXPECT_EQ(omDiagCount(130), 1u);
}

OmPlaceholder g_probe("OlmoProbePlaceholder");

TEST(Placeholders, WarnOnceAndAreListed)
{
    omDiagResetCounts();
    testing::internal::CaptureStderr();
    omPlaceholderCalled(&g_probe);
    omPlaceholderCalled(&g_probe);
    std::string out = testing::internal::GetCapturedStderr();
    EXPECT_EQ(omDiagCount(141), 1u);
    EXPECT_NE(out.find("OlmoProbePlaceholder"), std::string::npos);
    bool listed = false;
    for (const OmPlaceholder *p = omPlaceholderFirst(); p; p = p->next)
        listed |= p == &g_probe;
    EXPECT_TRUE(listed);
}

}  // namespace
