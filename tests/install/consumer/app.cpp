// A C++ program built against the installed package: its WinMain links
// although C++ mangles names, and the standard library coexists with
// <windows.h> once NOMINMAX is defined.
#define NOMINMAX
#include <algorithm>
#include <string>
#include <windows.h>

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR lpCmdLine, int)
{
    std::string line(lpCmdLine);
    if (line != "one \"two three\"")
        return 2;
    LONG_PTR userData = reinterpret_cast<LONG_PTR>(&line);
    if (reinterpret_cast<std::string *>(userData) != &line)
        return 3;
    return std::max(41, 42);
}
