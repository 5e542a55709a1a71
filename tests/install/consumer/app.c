/* A C program built against the installed package: WinMain, the Windows
 * types and macros, and the command line main() rebuilt for it.  Exits 42
 * when everything holds. */
#include <windows.h>
#include <windowsx.h>

int WINAPI WinMain(HINSTANCE hInstance, HINSTANCE hPrev, LPSTR lpCmdLine, int nCmdShow)
{
    MSG msg;
    RECT rc = {0, 0, 640, 480};
    char buf[32];
    (void)hInstance;
    memset(&msg, 0, sizeof msg);
    msg.lParam = MAKELPARAM(-3, 4);
    _snprintf(buf, sizeof buf, "%d", GET_X_LPARAM(msg.lParam));
    if (hPrev != NULL || nCmdShow != SW_SHOWDEFAULT)
        return 1;
    if (strcmp(lpCmdLine, "one \"two three\"") != 0) {
        fprintf(stderr, "lpCmdLine was [%s]\n", lpCmdLine);
        return 2;
    }
    if (strcmp(buf, "-3") != 0 || rc.right - rc.left != 640 || sizeof(msg) != 48)
        return 3;
    return 42;
}
