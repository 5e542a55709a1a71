/*
 * The classic Win32 idioms, compiled as strict C11 once per configuration
 * (plain, UNICODE, lean-and-mean without STRICT and min/max, and a program
 * that states WINVER, _WIN32_WINNT and STRICT itself).  Each build exports
 * one function that counts the idioms that misbehave.
 */
#include "layout_checks.h"
#include <windowsx.h>
#include <tchar.h>

#ifndef IDIOMS_NAME
#error "IDIOMS_NAME names the function of this configuration"
#endif

static int g_failures;
#define CHECK(c)                                                              \
    do {                                                                      \
        if (!(c)) {                                                           \
            fprintf(stderr, "%s:%d: %s failed\n", __FILE__, __LINE__, #c);   \
            ++g_failures;                                                     \
        }                                                                     \
    } while (0)

static int g_x, g_y, g_cx, g_cy, g_id, g_created;
static UINT g_code;
static HWND g_ctl;

static BOOL onCreate(HWND hwnd, LPCREATESTRUCT cs)
{
    (void)hwnd;
    g_created = cs != NULL && cs->cx == 123;
    return g_created;
}
static void onLButtonDown(HWND hwnd, BOOL dbl, int x, int y, UINT keys)
{
    (void)hwnd;
    (void)dbl;
    (void)keys;
    g_x = x;
    g_y = y;
}
static void onSize(HWND hwnd, UINT state, int cx, int cy)
{
    (void)hwnd;
    (void)state;
    g_cx = cx;
    g_cy = cy;
}
static void onCommand(HWND hwnd, int id, HWND ctl, UINT code)
{
    (void)hwnd;
    g_id = id;
    g_ctl = ctl;
    g_code = code;
}

/* A window procedure written the windowsx way, called directly. */
static LRESULT CALLBACK crackedProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    switch (msg) {
        HANDLE_MSG(hwnd, WM_CREATE, onCreate);
        HANDLE_MSG(hwnd, WM_LBUTTONDOWN, onLButtonDown);
        HANDLE_MSG(hwnd, WM_SIZE, onSize);
        HANDLE_MSG(hwnd, WM_COMMAND, onCommand);
    }
    return 0;
}

int IDIOMS_NAME(void)
{
    LPARAM lp;
    WPARAM wp;
    CREATESTRUCT cs;
    TCHAR text[] = TEXT("Olmo");
    LPCTSTR name = MAKEINTRESOURCE(42);
    HWND ctl = (HWND)(UINT_PTR)0x12345678u;
    int i;
    int a = 3, b = 7;

    g_failures = 0;

    CHECK(MAKELONG(0x1234, 0xABCD) == (LONG)0xABCD1234);
    CHECK(LOWORD(0xABCD1234u) == 0x1234 && HIWORD(0xABCD1234u) == 0xABCD);
    CHECK(LOBYTE(0x1234) == 0x34 && HIBYTE(0x1234) == 0x12);
    CHECK(MAKEWORD(0x34, 0x12) == 0x1234);

    /* A negative client coordinate survives the trip through an LPARAM. */
    lp = MAKELPARAM(-5, -300);
    CHECK(GET_X_LPARAM(lp) == -5 && GET_Y_LPARAM(lp) == -300);
    CHECK(LOWORD(lp) == 0xFFFB);

    CHECK(IS_INTRESOURCE(name) && (ULONG_PTR)name == 42);
    CHECK(!IS_INTRESOURCE(text));
    CHECK(sizeof(text) == 5 * sizeof(TCHAR));
    for (i = 0; i < 4; ++i)
        CHECK(text[i] == (TCHAR)"Olmo"[i]);

    CHECK(RGB(0x11, 0x22, 0x33) == 0x00332211u);
    CHECK(GetRValue(RGB(1, 2, 3)) == 1 && GetGValue(RGB(1, 2, 3)) == 2 && GetBValue(RGB(1, 2, 3)) == 3);

#ifndef NOMINMAX
    CHECK(max(a, b) == 7 && min(a, b) == 3);
#else
    CHECK(a < b);
#endif
    CHECK(_countof(text) == 5);
    CHECK(_stricmp("Olmo", "OLMO") == 0 && _strnicmp("OlmoX", "olmoY", 4) == 0);

    memset(&cs, 0, sizeof cs);
    cs.cx = 123;
    CHECK(crackedProc(NULL, WM_CREATE, 0, (LPARAM)&cs) == 0 && g_created);
    cs.cx = 1;
    CHECK(crackedProc(NULL, WM_CREATE, 0, (LPARAM)&cs) == -1);
    crackedProc(NULL, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(-7, 9));
    CHECK(g_x == -7 && g_y == 9);
    crackedProc(NULL, WM_SIZE, SIZE_RESTORED, MAKELPARAM(640, 480));
    CHECK(g_cx == 640 && g_cy == 480);
    /* The control handle keeps all 64 bits of the LPARAM. */
    wp = MAKEWPARAM(1001, BN_CLICKED);
    crackedProc(NULL, WM_COMMAND, wp, (LPARAM)ctl);
    CHECK(g_id == 1001 && g_ctl == ctl && g_code == BN_CLICKED);
    CHECK(GET_WM_COMMAND_ID(wp, (LPARAM)ctl) == 1001);

    return g_failures;
}
