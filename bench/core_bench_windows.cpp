// Benchmarks of window objects: making and destroying a top-level window
// (records, handle, Motif shell and widget tree) and the window-data calls
// that programs make on every message.
#include "core/omwindow.h"

#include "kernel/omdisplay.h"

#include <windows.h>

#include <Xm/BulletinB.h>

#include <benchmark/benchmark.h>

namespace {

const char *benchClass()
{
    static const bool registered = [] {
        WNDCLASSA wc{};
        wc.lpfnWndProc = DefWindowProcA;
        wc.cbWndExtra = 16;
        wc.lpszClassName = "BenchWindow";
        return RegisterClassA(&wc) != 0;
    }();
    return registered ? "BenchWindow" : nullptr;
}

bool ready(benchmark::State &state)
{
    // Referenced so that libXm loads ahead of libXt.
    benchmark::DoNotOptimize(xmBulletinBoardWidgetClass);
    if (!omInitialize(nullptr, nullptr) || !benchClass()) {
        state.SkipWithError("no X display");
        return false;
    }
    return true;
}

// Guards the cost of a hidden top-level window's whole life: record,
// handle, a Motif shell with its main window and work area, the creation
// and destruction messages, and the widgets' destruction and X events in
// the event loop's next pass.
void BM_CreateWindowExA_HiddenTopLevel(benchmark::State &state)
{
    if (!ready(state))
        return;
    // The first overlapped window takes the application shell; take it
    // here so that every measured window gets a shell of its own.
    HWND first = CreateWindowExA(0, benchClass(), "", WS_OVERLAPPEDWINDOW, 0, 0, 100, 100,
                                 nullptr, nullptr, nullptr, nullptr);
    for (auto _ : state) {
        HWND h = CreateWindowExA(0, benchClass(), "Bench", WS_OVERLAPPEDWINDOW, 0, 0, 200, 100,
                                 nullptr, nullptr, nullptr, nullptr);
        DestroyWindow(h);
        // The event loop's pass: the window's X events and the drain.
        omPumpXEvents(0);
    }
    DestroyWindow(first);
    omRunIdleDrain();
}
BENCHMARK(BM_CreateWindowExA_HiddenTopLevel)->Unit(benchmark::kMicrosecond);

// Guards the cost of a child window's whole life inside a shown parent:
// record, the frame, scrolled window and drawing area, the creation
// messages with WM_SIZE and WM_PARENTNOTIFY, mapping, destruction, and the
// event loop's next pass.  Arg 0: a plain child; 1: with caption, system
// menu and sizing border; 2: plain, the loop's pass every 500 windows.
void BM_CreateWindowExA_Child(benchmark::State &state)
{
    if (!ready(state))
        return;
    HWND parent = CreateWindowExA(0, benchClass(), "", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0,
                                  400, 300, nullptr, nullptr, nullptr, nullptr);
    DWORD style = WS_CHILD | WS_VISIBLE;
    if (state.range(0))
        style |= WS_CAPTION | WS_SYSMENU | WS_THICKFRAME;
    for (int i = 0; i < 20; ++i)
        omPumpXEvents(5);
    // Arg 2: the loop's pass only every 500 windows, as for a program that
    // builds and drops many windows before it returns to its loop.
    int every = state.range(0) == 2 ? 500 : 1;
    int n = 0;
    for (auto _ : state) {
        HWND h = CreateWindowExA(0, benchClass(), "Child", style, 10, 10, 200, 100, parent,
                                 reinterpret_cast<HMENU>(1), nullptr, nullptr);
        DestroyWindow(h);
        if (++n % every == 0)
            omPumpXEvents(0);
    }
    DestroyWindow(parent);
    omRunIdleDrain();
}
BENCHMARK(BM_CreateWindowExA_Child)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMicrosecond);

// Guards the per-message cost of keeping a pointer in window data: a
// handle check and a record field, no lock and no server.
void BM_SetWindowLongPtrA_UserData(benchmark::State &state)
{
    if (!ready(state))
        return;
    HWND h = CreateWindowExA(0, benchClass(), "", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr,
                             nullptr, nullptr);
    LONG_PTR v = 0;
    for (auto _ : state) {
        SetWindowLongPtrA(h, GWLP_USERDATA, ++v);
        benchmark::DoNotOptimize(GetWindowLongPtrA(h, GWLP_USERDATA));
    }
    DestroyWindow(h);
    omRunIdleDrain();
}
BENCHMARK(BM_SetWindowLongPtrA_UserData);

}  // namespace
