/*
 * The Olmo demo: a small Win32 program of our own, written exactly as a
 * program for Windows is.  It grows with the library; today it registers a
 * class and opens a top-level window, "Olmo demo", kept up until the window
 * manager closes it or for the number of seconds given on the command line.
 */
#include <windows.h>
#include <windowsx.h>
#include <tchar.h>

#include <stdlib.h>
#include <time.h>

/* Until the message loop arrives, the toolkit's own pump dispatches X. */
int omPumpXEvents(unsigned waitMs);

static int g_closed;

static LRESULT CALLBACK DemoProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    switch (msg) {
    case WM_CREATE:
        SetWindowLongPtrA(hwnd, GWLP_USERDATA,
                          (LONG_PTR)((CREATESTRUCTA *)lParam)->lpCreateParams);
        return 0;
    case WM_CLOSE:
        printf("  WM_CLOSE from the window manager\n");
        break;
    case WM_DESTROY:
        g_closed = 1;
        return 0;
    }
    return DefWindowProcA(hwnd, msg, wParam, lParam);
}

int WINAPI WinMain(HINSTANCE hInstance, HINSTANCE hPrevInstance, LPSTR lpCmdLine, int nCmdShow)
{
    LPARAM click = MAKELPARAM(-12, 34);
    WNDCLASSA wc;
    HWND hwnd;
    int seconds = atoi(lpCmdLine);
    time_t start;
    char title[64];
    (void)hPrevInstance;

    printf("Olmo demo\n");
    printf("  command line:  [%s]\n", lpCmdLine);
    printf("  show command:  %d (SW_SHOWDEFAULT is %d)\n", nCmdShow, SW_SHOWDEFAULT);
    printf("  data model:    LONG %u, WPARAM %u, LPARAM %u, HWND %u bytes\n",
           (unsigned)sizeof(LONG), (unsigned)sizeof(WPARAM), (unsigned)sizeof(LPARAM),
           (unsigned)sizeof(HWND));
    printf("  MSG is %u bytes; a click at (%d, %d) packs into 0x%08lx\n", (unsigned)sizeof(MSG),
           GET_X_LPARAM(click), GET_Y_LPARAM(click), (unsigned long)(DWORD)click);

    ZeroMemory(&wc, sizeof wc);
    wc.lpfnWndProc = DemoProc;
    wc.hInstance = hInstance;
    wc.hbrBackground = (HBRUSH)(COLOR_WINDOW + 1);
    wc.lpszClassName = "OlmoDemo";
    if (!RegisterClassA(&wc)) {
        printf("  no window: RegisterClassA failed (is there an X display?)\n");
        return 1;
    }
    hwnd = CreateWindowA("OlmoDemo", "Olmo demo", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT,
                         CW_USEDEFAULT, 480, 320, NULL, NULL, hInstance, (LPVOID)&g_closed);
    if (!hwnd) {
        printf("  no window: CreateWindowA failed\n");
        return 1;
    }
    ShowWindow(hwnd, nCmdShow);
    GetWindowTextA(hwnd, title, sizeof title);
    printf("  window:        \"%s\" (user data %s)\n", title,
           GetWindowLongPtrA(hwnd, GWLP_USERDATA) == (LONG_PTR)&g_closed ? "kept" : "lost");
    if (seconds > 0)
        printf("  open for %d seconds, or until closed\n", seconds);
    else
        printf("  open until closed\n");

    start = time(NULL);
    while (!g_closed && (seconds <= 0 || time(NULL) - start < seconds))
        omPumpXEvents(50);
    if (IsWindow(hwnd))
        DestroyWindow(hwnd);
    omPumpXEvents(0);
    return 0;
}
