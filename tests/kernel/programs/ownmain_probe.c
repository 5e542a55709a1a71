/* A program with its own main() that links the kernel layer alone and
 * makes no initialisation call: kernel functions work at once, the display
 * opens on first need, and the toolkit's user library is found beside the
 * kernel, not replaced by the program's own DllMain. */
#include <windows.h>

int program_dllmain_called;

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved)
{
    (void)instance;
    (void)reason;
    (void)reserved;
    program_dllmain_called = 1;
    return TRUE;
}

extern unsigned long long omUserLibraryInstance(void);

int main(void)
{
    HANDLE event = CreateEventA(NULL, TRUE, FALSE, NULL);
    DWORD waited;
    if (!event)
        return 1;
    SetEvent(event);
    waited = WaitForSingleObject(event, 0);
    CloseHandle(event);
    printf("event=%d\n", waited == WAIT_OBJECT_0);
    printf("screen=%dx%d\n", GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN));
    printf("userlib=%d\n", omUserLibraryInstance() != 0);
    printf("program_dllmain=%d\n", program_dllmain_called);
    return 0;
}
