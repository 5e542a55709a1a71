// Costs of the kernel layer's memory, atom and string paths that programs
// hit in loops: global and heap blocks, lock/unlock pairs, cached atom
// look-ups and the UTF-8 to UTF-16 conversion every W entry point makes.
#include <windows.h>

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

// Guards the block registry: one fixed allocation and its free.
void BM_GlobalAlloc_FixedFree(benchmark::State &state)
{
    for (auto _ : state) {
        HGLOBAL h = GlobalAlloc(GMEM_FIXED, 64);
        benchmark::DoNotOptimize(h);
        GlobalFree(h);
    }
}
BENCHMARK(BM_GlobalAlloc_FixedFree);

// Guards the moveable path: allocation, a lock/unlock pair and the free,
// as the user library does for class names and clipboard data.
void BM_GlobalAlloc_MoveableLockFree(benchmark::State &state)
{
    for (auto _ : state) {
        HGLOBAL h = GlobalAlloc(GHND, 64);
        benchmark::DoNotOptimize(GlobalLock(h));
        GlobalUnlock(h);
        GlobalFree(h);
    }
}
BENCHMARK(BM_GlobalAlloc_MoveableLockFree);

// Guards the look-up of a live handle among many: a lock/unlock pair on
// one block while 10,000 others exist.
void BM_GlobalLock_AmongManyBlocks(benchmark::State &state)
{
    std::vector<HGLOBAL> others;
    for (int i = 0; i < 10000; ++i)
        others.push_back(GlobalAlloc(GMEM_MOVEABLE, 16));
    HGLOBAL h = GlobalAlloc(GMEM_MOVEABLE, 16);
    for (auto _ : state) {
        benchmark::DoNotOptimize(GlobalLock(h));
        GlobalUnlock(h);
    }
    GlobalFree(h);
    for (HGLOBAL o : others)
        GlobalFree(o);
}
BENCHMARK(BM_GlobalLock_AmongManyBlocks);

// Guards the heap's bookkeeping: a small HeapAlloc and HeapFree, from
// several threads at once on the process heap.
void BM_HeapAlloc_SmallFree(benchmark::State &state)
{
    HANDLE heap = GetProcessHeap();
    for (auto _ : state) {
        void *p = HeapAlloc(heap, 0, 32);
        benchmark::DoNotOptimize(p);
        HeapFree(heap, 0, p);
    }
}
BENCHMARK(BM_HeapAlloc_SmallFree)->Threads(1)->Threads(4);

// Guards the local atom table's hash look-up (no allocation on a hit).
void BM_FindAtomA_Hit(benchmark::State &state)
{
    AddAtomA("BenchmarkAtomName");
    for (auto _ : state)
        benchmark::DoNotOptimize(FindAtomA("benchmarkatomname"));
}
BENCHMARK(BM_FindAtomA_Hit);

// Guards the conversion each W entry point makes: 64 characters of
// mostly-ASCII text, size query and conversion.
void BM_MultiByteToWideChar_Text64(benchmark::State &state)
{
    std::string text(60, 'a');
    text += "\xC3\xA9\xC3\xA9";
    WCHAR out[80];
    for (auto _ : state) {
        int n = MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, nullptr, 0);
        benchmark::DoNotOptimize(MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, out, n));
    }
}
BENCHMARK(BM_MultiByteToWideChar_Text64);

// Guards the hand-written formatter on a typical status line.
void BM_wsprintfA_StatusLine(benchmark::State &state)
{
    char buf[128];
    for (auto _ : state)
        benchmark::DoNotOptimize(
            wsprintfA(buf, "%s: %ld of %lu (%08lX)", "Copying", LONG{42}, DWORD{100}, 0xBEEFu));
}
BENCHMARK(BM_wsprintfA_StatusLine);

}  // namespace
