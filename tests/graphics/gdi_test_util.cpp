// Helpers of the graphics tests (see gdi_test_util.h).
#include "gdi_test_util.h"

#include <sstream>

namespace om::test
{

Canvas::Canvas(int width, int height) : width_(width), height_(height)
{
    HDC screen = GetDC(nullptr);
    dc_ = CreateCompatibleDC(screen);
    bitmap_ = CreateCompatibleBitmap(screen, width, height);
    ReleaseDC(nullptr, screen);
    old_ = SelectObject(dc_, bitmap_);
    RECT all{0, 0, width, height};
    FillRect(dc_, &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
}

Canvas::~Canvas()
{
    SelectObject(dc_, old_);
    DeleteDC(dc_);
    DeleteObject(bitmap_);
}

testing::AssertionResult pixelsMatch(const Canvas &canvas, COLORREF ink, COLORREF paper,
                                     const std::function<bool(int x, int y)> &inked)
{
    std::ostringstream got, want;
    bool ok = true;
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
            COLORREF c = GetPixel(canvas.dc(), x, y);
            bool in = inked(x, y);
            got << (c == ink ? '#' : c == paper ? '.' : '?');
            want << (in ? '#' : '.');
            if (c != (in ? ink : paper))
                ok = false;
        }
        got << '\n';
        want << '\n';
    }
    if (ok)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "drawn:\n" << got.str() << "expected:\n" << want.str();
}

} // namespace om::test
