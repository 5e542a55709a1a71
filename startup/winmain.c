/*
 * main() for programs that define WinMain or wWinMain: initialises the
 * toolkit with the arguments (so X options such as -display work), then
 * calls the program with the Windows command line and returns its result.
 * Written in C so that a C program links it without a C++ runtime.
 */
#include <windows.h>

#include "kernel/ominit.h"

/* Weak, so that a program may define either entry; main reports a program
 * that defines neither instead of failing to link. */
extern int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) __attribute__((weak));
extern int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR, int) __attribute__((weak));

int main(int argc, char **argv)
{
    HINSTANCE instance;
    const char *tail;

    omInitialize(&argc, argv); /* removes the X options it understood */
    omSetCommandLineArgs(argc, argv);
    instance = GetModuleHandleA(NULL);
    tail = omCommandLineTail();
    if (WinMain)
        return WinMain(instance, NULL, (LPSTR)tail, SW_SHOWDEFAULT);
    if (wWinMain) {
        int n = MultiByteToWideChar(CP_UTF8, 0, tail, -1, NULL, 0);
        WCHAR *wide = (WCHAR *)calloc(n > 0 ? (size_t)n : 1u, sizeof(WCHAR));
        int rc;
        if (!wide)
            return 1;
        MultiByteToWideChar(CP_UTF8, 0, tail, -1, wide, n);
        rc = wWinMain(instance, NULL, wide, SW_SHOWDEFAULT);
        free(wide);
        return rc;
    }
    fputs("olmo: the program defines neither WinMain nor wWinMain\n", stderr);
    return 1;
}
