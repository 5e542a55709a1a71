/* A program that defines WinMain, for the program-entry tests: prints what
 * it was given and exits with 42. */
#include <windows.h>

int WINAPI WinMain(HINSTANCE hInstance, HINSTANCE hPrev, LPSTR lpCmdLine, int nCmdShow)
{
    printf("cmdline=[%s]\n", lpCmdLine);
    printf("full=[%s]\n", GetCommandLineA());
    printf("argc=%d\n", __argc);
    printf("frame=%d\n", GetSystemMetrics(SM_CXFRAME));
    printf("instance=%d\n", hInstance != NULL && hInstance == GetModuleHandleA(NULL));
    printf("prev=%d show=%d\n", hPrev != NULL, nCmdShow);
    return 42;
}
