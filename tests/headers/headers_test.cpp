// The public headers seen from C++20, and the C11 builds of the same idioms
// in each configuration a ported program may choose.
#include <gtest/gtest.h>

#include <type_traits>

// After the standard headers, as a ported program would: min and max are
// macros from here on.
#include "layout_checks.h"
#include <windowsx.h>

extern "C" int omIdiomsPlain(void);
extern "C" int omIdiomsUnicode(void);
extern "C" int omIdiomsLean(void);
extern "C" int omIdiomsVersioned(void);

TEST(HeaderIdioms, HoldInEveryCBuildConfiguration)
{
    EXPECT_EQ(omIdiomsPlain(), 0);
    EXPECT_EQ(omIdiomsUnicode(), 0);
    EXPECT_EQ(omIdiomsLean(), 0);
    EXPECT_EQ(omIdiomsVersioned(), 0);
}

TEST(HeaderIdioms, CppSeesTheSameTypes)
{
    static_assert(std::is_same_v<WCHAR, char16_t>);
    static_assert(std::is_same_v<decltype(TEXT("x")[0]), const char &>);
    static_assert(!std::is_same_v<HWND, HMENU>, "STRICT handles are distinct types");
    LPARAM lp = MAKELPARAM(-32768, 32767);
    EXPECT_EQ(GET_X_LPARAM(lp), -32768);
    EXPECT_EQ(GET_Y_LPARAM(lp), 32767);
    // A heap pointer stored in a pointer-sized slot comes back whole.
    int probe = 0;
    LONG_PTR slot = reinterpret_cast<LONG_PTR>(&probe);
    EXPECT_EQ(reinterpret_cast<int *>(slot), &probe);
    EXPECT_EQ(RGB(255, 0, 0), 0x0000FFu);
}
