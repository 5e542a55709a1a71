// Reading pixels back from the X server: PNG screenshots of a window or the
// whole screen into the test artifacts directory, single pixels for
// assertions, and reading PNG files back for tests that check them.
#pragma once

#include <gtest/gtest.h> // first: Xlib's None macro breaks gtest if defined before it

#include <X11/Xlib.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace om::test
{

// "$OLMO_TEST_ARTIFACTS/<name>.png" (the current directory when the
// variable is unset or empty).  Creates the directory, and any directories
// `name` contains, if missing.
std::string artifactPath(const std::string &name);

// "<Suite>.<Test>" of the running test, or with "-<suffix>" appended; '/'
// (from parameterised tests) becomes '_'.  Keeps artifact names unique
// across the tests of a run.
std::string testArtifactName(std::string_view suffix = {});

// Saves what the screen shows of `window` (children included, a window
// manager's frame not; only the part inside the screen) as an RGB PNG at
// artifactPath(name), returning the path through `path` if given.  The
// file is written aside and renamed into place.
// TrueColor/DirectColor visuals of any depth are converted through the
// visual's masks.  On failure (X error, unsupported visual, unwritable
// file) records a non-fatal gtest failure saying why and returns false.
bool saveWindowPng(Display *dpy, Window window, const std::string &name,
                   std::string *path = nullptr);
bool saveScreenPng(Display *dpy, const std::string &name, std::string *path = nullptr);

// Returned by pixelAt when the pixel cannot be read.
constexpr uint32_t kNoPixel = 0xFF000000u;

// The colour of window pixel (x, y) as 0xRRGGBB, or kNoPixel (with a
// non-fatal failure recorded) when it cannot be read.
uint32_t pixelAt(Display *dpy, Window window, int x, int y);

// Reads only the header of a PNG file.
bool readPngSize(const std::string &path, int &width, int &height);

// A decoded PNG, pixels as 0xRRGGBB row by row (alpha dropped).
struct PngImage {
    int width = 0;
    int height = 0;
    std::vector<uint32_t> pixels;
    uint32_t at(int x, int y) const { return pixels[static_cast<size_t>(y) * width + x]; }
};
bool readPng(const std::string &path, PngImage &image);

} // namespace om::test
