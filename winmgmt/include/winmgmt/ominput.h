// The program's input state for other subsystems: the window that holds
// the mouse capture.
#pragma once

#include <olmo/platform.h>

#include <windows.h>

extern "C" {

// The capture window (GetCapture's answer); null when none.
OLMO_API extern HWND omCapturehWnd;

}  // extern "C"
