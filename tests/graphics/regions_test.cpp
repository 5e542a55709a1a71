// Regions as pure arithmetic (no drawing): combination invariants, the
// complexity answers, ellipses inside their box, and the rectangle helpers.
#include <gtest/gtest.h>

#include <windows.h>

#include <vector>

namespace
{

// Whether (x, y) is in the region, for every point of a grid.
std::vector<bool> sample(HRGN r)
{
    std::vector<bool> v;
    for (int y = -2; y < 22; ++y)
        for (int x = -2; x < 22; ++x)
            v.push_back(PtInRegion(r, x, y));
    return v;
}

TEST(Regions, CombineFollowsSetAlgebraPointByPoint)
{
    HRGN a = CreateRectRgn(0, 0, 10, 8), b = CreateEllipticRgn(4, 2, 18, 16);
    auto sa = sample(a), sb = sample(b);
    struct Row {
        int mode;
        bool (*op)(bool, bool);
    } rows[] = {{RGN_AND, [](bool x, bool y) { return x && y; }},
                {RGN_OR, [](bool x, bool y) { return x || y; }},
                {RGN_XOR, [](bool x, bool y) { return x != y; }},
                {RGN_DIFF, [](bool x, bool y) { return x && !y; }},
                {RGN_COPY, [](bool x, bool) { return x; }}};
    for (const Row &r : rows) {
        SCOPED_TRACE(r.mode);
        HRGN out = CreateRectRgn(0, 0, 0, 0);
        EXPECT_NE(CombineRgn(out, a, b, r.mode), ERROR);
        auto so = sample(out);
        for (size_t i = 0; i < so.size(); ++i)
            ASSERT_EQ(so[i], r.op(sa[i], sb[i])) << "point " << i;
        DeleteObject(out);
    }
    DeleteObject(a);
    DeleteObject(b);
}

TEST(Regions, ComplexityAndBox)
{
    HRGN r = CreateRectRgn(5, 5, 2, 1);  // corners in any order
    RECT box;
    EXPECT_EQ(GetRgnBox(r, &box), SIMPLEREGION);
    EXPECT_EQ(box.left, 2);
    EXPECT_EQ(box.top, 1);
    EXPECT_EQ(box.right, 5);
    EXPECT_EQ(box.bottom, 5);
    EXPECT_TRUE(PtInRegion(r, 2, 1));
    EXPECT_FALSE(PtInRegion(r, 5, 4)) << "right edge excluded";
    EXPECT_FALSE(PtInRegion(r, 4, 5)) << "bottom edge excluded";
    EXPECT_EQ(OffsetRgn(r, 10, 0), SIMPLEREGION);
    EXPECT_TRUE(PtInRegion(r, 12, 1));
    HRGN empty = CreateRectRgn(0, 0, 0, 0);
    EXPECT_EQ(GetRgnBox(empty, &box), NULLREGION);
    EXPECT_EQ(CombineRgn(empty, r, empty, RGN_AND), NULLREGION);
    HRGN other = CreateRectRgn(0, 0, 1, 1);
    EXPECT_EQ(CombineRgn(other, other, r, RGN_OR), COMPLEXREGION);
    RECT probe{13, 2, 30, 3};
    EXPECT_TRUE(RectInRegion(other, &probe));
    RECT away{20, 20, 25, 25};
    EXPECT_FALSE(RectInRegion(other, &away));
    HRGN same = CreateRectRgn(12, 1, 15, 5);
    EXPECT_TRUE(EqualRgn(same, r));
    EXPECT_FALSE(EqualRgn(same, other));
    for (HRGN h : {r, empty, other, same})
        DeleteObject(h);
}

TEST(Regions, EllipseIsSymmetricAndFillsItsBoxExtremes)
{
    HRGN e = CreateEllipticRgn(0, 0, 12, 8);
    RECT box;
    EXPECT_EQ(GetRgnBox(e, &box), COMPLEXREGION);
    EXPECT_EQ(box.left, 0);
    EXPECT_EQ(box.top, 0);
    EXPECT_EQ(box.right, 12);
    EXPECT_EQ(box.bottom, 8);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 12; ++x) {
            SCOPED_TRACE(testing::Message() << x << "," << y);
            EXPECT_EQ(PtInRegion(e, x, y), PtInRegion(e, 11 - x, y));
            EXPECT_EQ(PtInRegion(e, x, y), PtInRegion(e, x, 7 - y));
        }
    EXPECT_FALSE(PtInRegion(e, 0, 0));
    EXPECT_TRUE(PtInRegion(e, 6, 4));
    DeleteObject(e);
}

TEST(Regions, RegionDataListsDisjointRectanglesCoveringTheRegion)
{
    HRGN a = CreateRectRgn(0, 0, 4, 4), b = CreateRectRgn(2, 2, 6, 6);
    CombineRgn(a, a, b, RGN_OR);
    DWORD size = GetRegionData(a, 0, nullptr);
    ASSERT_GT(size, sizeof(RGNDATAHEADER));
    std::vector<BYTE> buf(size);
    auto *data = reinterpret_cast<RGNDATA *>(buf.data());
    ASSERT_EQ(GetRegionData(a, size, data), size);
    auto *rects = reinterpret_cast<RECT *>(data->Buffer);
    int area = 0;
    for (DWORD i = 0; i < data->rdh.nCount; ++i)
        area += (rects[i].right - rects[i].left) * (rects[i].bottom - rects[i].top);
    EXPECT_EQ(area, 16 + 16 - 4);
    DeleteObject(a);
    DeleteObject(b);
}

TEST(Rects, HelpersKeepWindowsEdgeRules)
{
    RECT a, b, out;
    SetRect(&a, 0, 0, 10, 10);
    SetRect(&b, 10, 0, 20, 10);
    EXPECT_FALSE(IntersectRect(&out, &a, &b)) << "touching rectangles do not intersect";
    EXPECT_TRUE(IsRectEmpty(&out));
    EXPECT_TRUE(UnionRect(&out, &a, &b));
    EXPECT_EQ(out.right, 20);
    EXPECT_TRUE(PtInRect(&a, POINT{0, 0}));
    EXPECT_FALSE(PtInRect(&a, POINT{10, 5}));
    InflateRect(&a, -2, -3);
    EXPECT_EQ(a.left, 2);
    EXPECT_EQ(a.bottom, 7);
    OffsetRect(&a, 1, 1);
    RECT copy;
    CopyRect(&copy, &a);
    EXPECT_TRUE(EqualRect(&copy, &a));
    RECT empty{5, 5, 5, 9};
    EXPECT_TRUE(UnionRect(&out, &empty, &a));
    EXPECT_TRUE(EqualRect(&out, &a)) << "an empty rectangle adds nothing";

    struct Row {
        RECT src, cut, want;
        BOOL ok;
    } rows[] = {
        {{0, 0, 10, 10}, {0, 0, 4, 10}, {4, 0, 10, 10}, TRUE},   // left strip
        {{0, 0, 10, 10}, {6, -5, 20, 20}, {0, 0, 6, 10}, TRUE},  // right part
        {{0, 0, 10, 10}, {-1, 0, 11, 3}, {0, 3, 10, 10}, TRUE},  // top band
        {{0, 0, 10, 10}, {3, 3, 6, 6}, {0, 0, 10, 10}, TRUE},    // a hole: unchanged
        {{0, 0, 10, 10}, {-1, -1, 11, 11}, {0, 0, 0, 0}, FALSE}, // all of it
    };
    for (const Row &r : rows) {
        SCOPED_TRACE(testing::Message() << r.cut.left << "," << r.cut.top);
        RECT got;
        EXPECT_EQ(SubtractRect(&got, &r.src, &r.cut), r.ok);
        EXPECT_TRUE(EqualRect(&got, &r.want));
    }
}

} // namespace
