// Drawing throughput of the graphics layer into a real X window: FillRect
// 100x100, TextOutA of 20 characters, BitBlt 256x256 from a memory DC.
// Needs an X server in DISPLAY (for instance `Xvfb :99 &` and DISPLAY=:99);
// without one every benchmark reports an error instead of a number.
#include <benchmark/benchmark.h>

#include "graphics/omgdi.h"
#include "graphics/omwindowhooks.h"
#include "kernel/omdisplay.h"

#include <windows.h>

namespace
{

const HWND kBenchWindow = reinterpret_cast<HWND>(uintptr_t{0xA00B01});
Window g_window = 0;

// A plain 400x300 X window, painted on through the window hooks.
bool setUp()
{
    if (g_window)
        return true;
    Display *dpy = omEnsureDisplay();
    if (!dpy)
        return false;
    int scr = DefaultScreen(dpy);
    g_window = XCreateSimpleWindow(dpy, RootWindow(dpy, scr), 0, 0, 400, 300, 0,
                                   BlackPixel(dpy, scr), WhitePixel(dpy, scr));
    XMapWindow(dpy, g_window);
    XSync(dpy, False);
    static const OmGdiWindowHooks hooks = {
        nullptr, nullptr, nullptr,
        [](HWND, BOOL, OmPaintTarget *t) -> BOOL {
            *t = {g_window, nullptr, 0, 0, 400, 300};
            return TRUE;
        },
        nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
    };
    omGdiRegisterWindowHooks(&hooks);
    return true;
}

// Runs `draw` per iteration, waiting for the server every 64 calls and at
// the end, so the rate (in real time) includes the server's work.
template <class F> void drawLoop(benchmark::State &state, F &&draw)
{
    if (!setUp()) {
        state.SkipWithError("no X display: set DISPLAY to a running server");
        return;
    }
    int n = 0;
    for (auto _ : state) {
        draw();
        if (++n % 64 == 0)
            XSync(omDisplay, False);
    }
    XSync(omDisplay, False);
    state.SetItemsProcessed(state.iterations());
}

void BM_FillRect100x100(benchmark::State &state)
{
    HDC dc = setUp() ? GetDC(kBenchWindow) : nullptr;
    HBRUSH brush = CreateSolidBrush(RGB(30, 120, 200));
    RECT r{10, 10, 110, 110};
    drawLoop(state, [&] { FillRect(dc, &r, brush); });
    DeleteObject(brush);
    ReleaseDC(kBenchWindow, dc);
}
BENCHMARK(BM_FillRect100x100)->UseRealTime();

void BM_TextOutA20(benchmark::State &state)
{
    HDC dc = setUp() ? GetDC(kBenchWindow) : nullptr;
    HFONT font = CreateFontA(-13, 0, 0, 0, FW_NORMAL, 0, 0, 0, 0, 0, 0, 0, 0, "Arial");
    HGDIOBJ old = SelectObject(dc, font);
    drawLoop(state, [&] { TextOutA(dc, 10, 150, "Twenty characters!!!", 20); });
    SelectObject(dc, old);
    DeleteObject(font);
    ReleaseDC(kBenchWindow, dc);
}
BENCHMARK(BM_TextOutA20)->UseRealTime();

void BM_BitBlt256x256(benchmark::State &state)
{
    HDC dc = setUp() ? GetDC(kBenchWindow) : nullptr;
    HDC mem = CreateCompatibleDC(dc);
    HBITMAP bm = CreateCompatibleBitmap(dc, 256, 256);
    HGDIOBJ old = SelectObject(mem, bm);
    PatBlt(mem, 0, 0, 256, 256, WHITENESS);
    drawLoop(state, [&] { BitBlt(dc, 0, 0, 256, 256, mem, 0, 0, SRCCOPY); });
    SelectObject(mem, old);
    DeleteObject(bm);
    DeleteDC(mem);
    ReleaseDC(kBenchWindow, dc);
}
BENCHMARK(BM_BitBlt256x256)->UseRealTime();

}  // namespace
