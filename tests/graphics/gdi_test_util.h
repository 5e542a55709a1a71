// Helpers of the graphics tests: a white colour memory DC to draw on, and
// comparing what it shows with a hand-written set of expected pixels.
#pragma once

#include <gtest/gtest.h> // first: Xlib's None macro breaks gtest if defined before it

#include <windows.h>

#include <functional>
#include <string>

namespace om::test
{

// A memory DC with a width x height colour bitmap, filled white.
class Canvas
{
  public:
    Canvas(int width, int height);
    ~Canvas();
    Canvas(const Canvas &) = delete;
    Canvas &operator=(const Canvas &) = delete;
    HDC dc() const { return dc_; }
    HBITMAP bitmap() const { return bitmap_; }
    int width() const { return width_; }
    int height() const { return height_; }

  private:
    int width_, height_;
    HDC dc_ = nullptr;
    HBITMAP bitmap_ = nullptr;
    HGDIOBJ old_ = nullptr;
};

// Reads every pixel with GetPixel and checks that those where `inked`
// holds have colour `ink` and all others `paper`.  On a mismatch the
// message draws the canvas ('#' ink, '.' paper, '?' other) next to the
// expectation.
testing::AssertionResult pixelsMatch(const Canvas &canvas, COLORREF ink, COLORREF paper,
                                     const std::function<bool(int x, int y)> &inked);

} // namespace om::test
