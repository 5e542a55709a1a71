/*
 * The Olmo demo: a small Win32 program of our own, written exactly as a
 * program for Windows is.  It grows with the library; today it shows what
 * the headers give a ported program and what its command line was.
 */
#include <windows.h>
#include <windowsx.h>
#include <tchar.h>

int WINAPI WinMain(HINSTANCE hInstance, HINSTANCE hPrevInstance, LPSTR lpCmdLine, int nCmdShow)
{
    LPARAM click = MAKELPARAM(-12, 34);
    (void)hInstance;
    (void)hPrevInstance;

    printf("Olmo demo\n");
    printf("  command line:  [%s]\n", lpCmdLine);
    printf("  show command:  %d (SW_SHOWDEFAULT is %d)\n", nCmdShow, SW_SHOWDEFAULT);
    printf("  data model:    LONG %u, WPARAM %u, LPARAM %u, HWND %u bytes\n",
           (unsigned)sizeof(LONG), (unsigned)sizeof(WPARAM), (unsigned)sizeof(LPARAM),
           (unsigned)sizeof(HWND));
    printf("  MSG is %u bytes; a click at (%d, %d) packs into 0x%08lx\n", (unsigned)sizeof(MSG),
           GET_X_LPARAM(click), GET_Y_LPARAM(click), (unsigned long)(DWORD)click);
    return 0;
}
