// Window and screen capture through XGetImage, converted to RGB with the
// visual's channel masks and written with libpng's simplified API.
#include "harness/screenshot.h"

#include <png.h>
#include <X11/Xutil.h>

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <bit>
#include <cstdlib>
#include <filesystem>

namespace om::test
{
namespace
{

struct Rgb {
    int width = 0;
    int height = 0;
    std::vector<unsigned char> bytes; // 3 per pixel, rows packed
};

int g_xError = 0;
int recordXError(Display *, XErrorEvent *event)
{
    g_xError = event->error_code;
    return 0;
}

// Extracts one channel and scales it to 8 bits.
unsigned channel(unsigned long pixel, unsigned long mask)
{
    if (!mask)
        return 0;
    int shift = std::countr_zero(mask);
    int bits = std::popcount(mask);
    unsigned long value = (pixel & mask) >> shift;
    if (bits >= 8)
        return static_cast<unsigned>(value >> (bits - 8));
    return static_cast<unsigned>(value * 255 / ((1ul << bits) - 1));
}

// Reads the rectangle (x, y, w, h) of `window` clipped to the screen; w or
// h of 0 means "to the window's edge".  Returns an empty string on success,
// otherwise why not.
std::string capture(Display *dpy, Window window, int x, int y, int w, int h, Rgb &out)
{
    XWindowAttributes attrs;
    if (!XGetWindowAttributes(dpy, window, &attrs))
        return "cannot query the window";
    if (attrs.map_state != IsViewable)
        return "the window is not viewable";
    if (attrs.visual->c_class != TrueColor)
        return "unsupported visual class " + std::to_string(attrs.visual->c_class) +
               " (only TrueColor)";
    if (w == 0)
        w = attrs.width - x;
    if (h == 0)
        h = attrs.height - y;
    // XGetImage fails with BadMatch for any part outside the screen.
    int rootX = 0, rootY = 0;
    Window child = None;
    XTranslateCoordinates(dpy, window, attrs.root, 0, 0, &rootX, &rootY, &child);
    int x0 = std::max({x, 0, -rootX});
    int y0 = std::max({y, 0, -rootY});
    int x1 = std::min({x + w, attrs.width, WidthOfScreen(attrs.screen) - rootX});
    int y1 = std::min({y + h, attrs.height, HeightOfScreen(attrs.screen) - rootY});
    if (x1 <= x0 || y1 <= y0)
        return "the requested area is outside the window or the screen";

    XSync(dpy, False);
    g_xError = 0;
    auto previous = XSetErrorHandler(recordXError);
    XImage *image = XGetImage(dpy, window, x0, y0, static_cast<unsigned>(x1 - x0),
                              static_cast<unsigned>(y1 - y0), AllPlanes, ZPixmap);
    XSync(dpy, False);
    XSetErrorHandler(previous);
    if (!image)
        return "XGetImage failed (X error " + std::to_string(g_xError) + ")";

    out.width = image->width;
    out.height = image->height;
    out.bytes.resize(static_cast<size_t>(out.width) * out.height * 3);
    unsigned char *dst = out.bytes.data();
    for (int row = 0; row < out.height; ++row)
        for (int col = 0; col < out.width; ++col) {
            unsigned long pixel = XGetPixel(image, col, row);
            *dst++ = static_cast<unsigned char>(channel(pixel, attrs.visual->red_mask));
            *dst++ = static_cast<unsigned char>(channel(pixel, attrs.visual->green_mask));
            *dst++ = static_cast<unsigned char>(channel(pixel, attrs.visual->blue_mask));
        }
    XDestroyImage(image);
    return {};
}

bool savePng(Display *dpy, Window window, const std::string &name, std::string *path)
{
    Rgb rgb;
    std::string why = capture(dpy, window, 0, 0, 0, 0, rgb);
    std::string file = artifactPath(name);
    if (why.empty()) {
        png_image png{};
        png.version = PNG_IMAGE_VERSION;
        png.width = static_cast<png_uint_32>(rgb.width);
        png.height = static_cast<png_uint_32>(rgb.height);
        png.format = PNG_FORMAT_RGB;
        // Written aside and renamed, so a reader never sees half a file.
        std::string part = file + ".part" + std::to_string(getpid());
        if (!png_image_write_to_file(&png, part.c_str(), 0, rgb.bytes.data(), rgb.width * 3,
                                     nullptr))
            why = std::string("cannot write ") + part + ": " + png.message;
        else if (std::rename(part.c_str(), file.c_str()) != 0)
            why = "cannot rename " + part + " to " + file + ": " + std::strerror(errno);
        png_image_free(&png);
    }
    if (!why.empty()) {
        ADD_FAILURE() << "screenshot '" << name << "' of window 0x" << std::hex << window
                      << std::dec << ": " << why;
        return false;
    }
    if (path)
        *path = file;
    return true;
}

} // namespace

std::string artifactPath(const std::string &name)
{
    const char *dir = std::getenv("OLMO_TEST_ARTIFACTS");
    std::filesystem::path file = std::filesystem::path(dir && *dir ? dir : ".") / (name + ".png");
    std::error_code ignored; // a failure shows when the file is written
    std::filesystem::create_directories(file.parent_path(), ignored);
    return file.string();
}

std::string testArtifactName(std::string_view suffix)
{
    const auto *info = ::testing::UnitTest::GetInstance()->current_test_info();
    std::string name =
        info ? std::string(info->test_suite_name()) + "." + info->name() : std::string("no-test");
    if (!suffix.empty())
        name += "-" + std::string(suffix);
    std::replace(name.begin(), name.end(), '/', '_');
    return name;
}

bool saveWindowPng(Display *dpy, Window window, const std::string &name, std::string *path)
{
    return savePng(dpy, window, name, path);
}

bool saveScreenPng(Display *dpy, const std::string &name, std::string *path)
{
    return savePng(dpy, DefaultRootWindow(dpy), name, path);
}

uint32_t pixelAt(Display *dpy, Window window, int x, int y)
{
    Rgb rgb;
    std::string why = capture(dpy, window, x, y, 1, 1, rgb);
    if (!why.empty()) {
        ADD_FAILURE() << "pixelAt(" << x << ", " << y << ") of window 0x" << std::hex << window
                      << std::dec << ": " << why;
        return kNoPixel;
    }
    return uint32_t(rgb.bytes[0]) << 16 | uint32_t(rgb.bytes[1]) << 8 | rgb.bytes[2];
}

bool readPngSize(const std::string &path, int &width, int &height)
{
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&png, path.c_str()))
        return false;
    width = static_cast<int>(png.width);
    height = static_cast<int>(png.height);
    png_image_free(&png);
    return true;
}

bool readPng(const std::string &path, PngImage &image)
{
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&png, path.c_str()))
        return false;
    png.format = PNG_FORMAT_RGB;
    std::vector<unsigned char> bytes(PNG_IMAGE_SIZE(png));
    if (!png_image_finish_read(&png, nullptr, bytes.data(), 0, nullptr)) {
        png_image_free(&png);
        return false;
    }
    image.width = static_cast<int>(png.width);
    image.height = static_cast<int>(png.height);
    image.pixels.resize(static_cast<size_t>(image.width) * image.height);
    for (size_t i = 0; i < image.pixels.size(); ++i)
        image.pixels[i] =
            uint32_t(bytes[3 * i]) << 16 | uint32_t(bytes[3 * i + 1]) << 8 | bytes[3 * i + 2];
    return true;
}

} // namespace om::test
