// Bitmaps, icons and cursors loaded from the program's own compiled
// resources, checked against the files the resource script names.
#include "gdi_test_util.h"

#include <windows.h>

#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <vector>

namespace {

std::vector<unsigned char> readFile(const char *path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

int32_t le32(const std::vector<unsigned char> &d, size_t at)
{
    int32_t v;
    memcpy(&v, d.data() + at, sizeof v);
    return v;
}

TEST(ResourceImages, BitmapHasTheSizeOfItsFile)
{
    std::vector<unsigned char> file = readFile(OLMO_TEST_RES_DIR "/logo.bmp");
    ASSERT_GT(file.size(), 54u);
    HBITMAP bmp = LoadBitmapA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(1));
    ASSERT_NE(bmp, nullptr);
    BITMAP info{};
    ASSERT_EQ(GetObjectA(bmp, sizeof info, &info), static_cast<int>(sizeof info));
    EXPECT_EQ(info.bmWidth, le32(file, 18));
    EXPECT_EQ(info.bmHeight, le32(file, 22) < 0 ? -le32(file, 22) : le32(file, 22));
    EXPECT_TRUE(DeleteObject(bmp));
    EXPECT_EQ(LoadBitmapA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(99)), nullptr);
}

TEST(ResourceImages, IconByNameAndCursorByOrdinal)
{
    HINSTANCE self = GetModuleHandleA(nullptr);
    HICON icon = LoadIconA(self, "NamedIcon");
    ASSERT_NE(icon, nullptr) << "names are found without regard to case";
    ICONINFO ii{};
    ASSERT_TRUE(GetIconInfo(icon, &ii));
    EXPECT_TRUE(ii.fIcon);
    BITMAP mask{};
    ASSERT_TRUE(GetObjectA(ii.hbmMask, sizeof mask, &mask));
    EXPECT_EQ(mask.bmWidth, GetSystemMetrics(SM_CXICON)) << "the image of the system icon size";
    DeleteObject(ii.hbmMask);
    if (ii.hbmColor)
        DeleteObject(ii.hbmColor);

    HCURSOR cursor = LoadCursorA(self, MAKEINTRESOURCEA(2));
    EXPECT_NE(cursor, nullptr);
    EXPECT_EQ(LoadCursorA(self, MAKEINTRESOURCEA(3)), nullptr);
}

}  // namespace
