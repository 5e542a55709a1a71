/* A second toolkit process on the test display: registers a message by
 * name and posts it to every top-level window of every toolkit process
 * (HWND_BROADCAST), as a ported program would. */
#include <windows.h>

#include <stdlib.h>

int WINAPI WinMain(HINSTANCE instance, HINSTANCE previous, LPSTR cmdLine, int show)
{
    UINT msg = RegisterWindowMessageA("Olmo Broadcast Test");
    (void)instance;
    (void)previous;
    (void)show;
    if (!msg)
        return 2;
    if (!PostMessageA(HWND_BROADCAST, msg, (WPARAM)strtoul(cmdLine, NULL, 10), 77))
        return 3;
    return 0;
}
