/*
 * The Olmo demo: a small Win32 program of our own, written exactly as a
 * program for Windows is.  It grows with the library; today it runs the
 * classic message loop over one top-level window, "Olmo demo", which paints
 * itself (WM_PAINT), counts down with a timer, shows where it was clicked
 * and what was typed, holds a few child windows (framed ones can be dragged
 * by their caption and sized by their edges), and quits when the window
 * manager closes it or the number of seconds given on the command line has
 * passed.
 */
#include <windows.h>
#include <windowsx.h>
#include <tchar.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define DEMO_TIMER 1

typedef struct {
    int secondsLeft; /* 0: no limit */
    int clicks;
    POINT lastClick;
    char typed[40];
} DemoState;

static void paint(HWND hwnd, const DemoState *s)
{
    PAINTSTRUCT ps;
    HDC dc = BeginPaint(hwnd, &ps);
    RECT client, band;
    char line[128];
    int y = 70;

    GetClientRect(hwnd, &client);
    band = client;
    band.bottom = 50;
    FillRect(dc, &band, (HBRUSH)GetStockObject(GRAY_BRUSH));
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, RGB(255, 255, 255));
    DrawTextA(dc, "Hello from Olmo", -1, &band, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
    SetTextColor(dc, RGB(0, 0, 0));

    if (s->secondsLeft > 0)
        snprintf(line, sizeof line, "Closing in %d s (a WM_TIMER each second)", s->secondsLeft);
    else
        snprintf(line, sizeof line, "Close the window to quit");
    TextOutA(dc, 20, y, line, (int)strlen(line));
    y += 24;
    snprintf(line, sizeof line, "Clicks: %d, last at (%ld, %ld)", s->clicks,
             (long)s->lastClick.x, (long)s->lastClick.y);
    TextOutA(dc, 20, y, line, (int)strlen(line));
    y += 24;
    snprintf(line, sizeof line, "Typed: %s", s->typed[0] ? s->typed : "(nothing yet)");
    TextOutA(dc, 20, y, line, (int)strlen(line));
    if (s->clicks) {
        HBRUSH red = CreateSolidBrush(RGB(200, 30, 30));
        RECT dot = {s->lastClick.x - 4, s->lastClick.y - 4, s->lastClick.x + 4,
                    s->lastClick.y + 4};
        FillRect(dc, &dot, red);
        DeleteObject(red);
    }
    EndPaint(hwnd, &ps);
}

/* A child window: paints its client size and how often it was moved. */
static LRESULT CALLBACK NoteProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    switch (msg) {
    case WM_MOVE:
        SetWindowLongPtrA(hwnd, GWLP_USERDATA, GetWindowLongPtrA(hwnd, GWLP_USERDATA) + 1);
        InvalidateRect(hwnd, NULL, TRUE);
        return 0;
    case WM_SIZE:
        InvalidateRect(hwnd, NULL, TRUE);
        return 0;
    case WM_PAINT: {
        PAINTSTRUCT ps;
        HDC dc = BeginPaint(hwnd, &ps);
        RECT client;
        char line[64];
        GetClientRect(hwnd, &client);
        snprintf(line, sizeof line, "%ld x %ld", (long)client.right, (long)client.bottom);
        SetBkMode(dc, TRANSPARENT);
        TextOutA(dc, 6, 4, line, (int)strlen(line));
        snprintf(line, sizeof line, "moves: %ld", (long)GetWindowLongPtrA(hwnd, GWLP_USERDATA));
        TextOutA(dc, 6, 22, line, (int)strlen(line));
        EndPaint(hwnd, &ps);
        return 0;
    }
    }
    return DefWindowProcA(hwnd, msg, wParam, lParam);
}

static void createChildren(HWND parent, HINSTANCE instance)
{
    static const struct {
        DWORD style, exStyle;
        int x, y, cx, cy;
        const char *title;
    } notes[] = {
        {WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_MINIMIZEBOX | WS_MAXIMIZEBOX, 0, 20, 170,
         190, 120, "Drag me"},
        {WS_CAPTION | WS_SYSMENU | WS_THICKFRAME, 0, 230, 170, 150, 100, "Size me"},
        {WS_BORDER, 0, 400, 170, 120, 60, NULL},
        {0, WS_EX_CLIENTEDGE, 400, 250, 120, 60, NULL},
    };
    WNDCLASSA wc;
    size_t i;
    ZeroMemory(&wc, sizeof wc);
    wc.lpfnWndProc = NoteProc;
    wc.hInstance = instance;
    wc.hbrBackground = (HBRUSH)(COLOR_WINDOW + 1);
    wc.lpszClassName = "OlmoNote";
    RegisterClassA(&wc);
    for (i = 0; i < sizeof notes / sizeof notes[0]; i++)
        CreateWindowExA(notes[i].exStyle, "OlmoNote", notes[i].title,
                        WS_CHILD | WS_VISIBLE | notes[i].style, notes[i].x, notes[i].y,
                        notes[i].cx, notes[i].cy, parent, (HMENU)(INT_PTR)(100 + i), instance,
                        NULL);
}

static LRESULT CALLBACK DemoProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    DemoState *s = (DemoState *)GetWindowLongPtrA(hwnd, GWLP_USERDATA);
    switch (msg) {
    case WM_CREATE:
        s = (DemoState *)((CREATESTRUCTA *)lParam)->lpCreateParams;
        SetWindowLongPtrA(hwnd, GWLP_USERDATA, (LONG_PTR)s);
        if (s->secondsLeft > 0)
            SetTimer(hwnd, DEMO_TIMER, 1000, NULL);
        createChildren(hwnd, ((CREATESTRUCTA *)lParam)->hInstance);
        return 0;
    case WM_PAINT:
        paint(hwnd, s);
        return 0;
    case WM_TIMER:
        if (wParam == DEMO_TIMER && --s->secondsLeft <= 0) {
            KillTimer(hwnd, DEMO_TIMER);
            DestroyWindow(hwnd);
        } else {
            InvalidateRect(hwnd, NULL, TRUE);
        }
        return 0;
    case WM_LBUTTONDOWN:
        s->clicks++;
        s->lastClick.x = GET_X_LPARAM(lParam);
        s->lastClick.y = GET_Y_LPARAM(lParam);
        InvalidateRect(hwnd, NULL, TRUE);
        return 0;
    case WM_CHAR: {
        size_t n = strlen(s->typed);
        if (wParam >= 0x20 && wParam < 0x7F) {
            if (n + 1 >= sizeof s->typed) {
                memmove(s->typed, s->typed + 1, n);
                n--;
            }
            s->typed[n] = (char)wParam;
            s->typed[n + 1] = '\0';
            InvalidateRect(hwnd, NULL, TRUE);
        }
        return 0;
    }
    case WM_CLOSE:
        printf("  WM_CLOSE from the window manager\n");
        break;
    case WM_DESTROY:
        PostQuitMessage(0);
        return 0;
    }
    return DefWindowProcA(hwnd, msg, wParam, lParam);
}

int WINAPI WinMain(HINSTANCE hInstance, HINSTANCE hPrevInstance, LPSTR lpCmdLine, int nCmdShow)
{
    LPARAM click = MAKELPARAM(-12, 34);
    static DemoState state;
    WNDCLASSA wc;
    HWND hwnd;
    MSG msg;
    char title[64];
    (void)hPrevInstance;

    state.secondsLeft = atoi(lpCmdLine);
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
                         CW_USEDEFAULT, 560, 400, NULL, NULL, hInstance, &state);
    if (!hwnd) {
        printf("  no window: CreateWindowA failed\n");
        return 1;
    }
    ShowWindow(hwnd, nCmdShow);
    UpdateWindow(hwnd);
    GetWindowTextA(hwnd, title, sizeof title);
    printf("  window:        \"%s\" (user data %s)\n", title,
           GetWindowLongPtrA(hwnd, GWLP_USERDATA) == (LONG_PTR)&state ? "kept" : "lost");
    if (state.secondsLeft > 0)
        printf("  open for %d seconds, or until closed\n", state.secondsLeft);
    else
        printf("  open until closed\n");

    while (GetMessageA(&msg, NULL, 0, 0)) {
        TranslateMessage(&msg);
        DispatchMessageA(&msg);
    }
    printf("  left the message loop with %d\n", (int)msg.wParam);
    return (int)msg.wParam;
}
