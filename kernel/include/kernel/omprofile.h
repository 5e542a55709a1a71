// Profile settings (win.ini and private .ini files): the write-back entry
// the message loop calls.  Writes are kept in memory until then, until
// WritePrivateProfileString(NULL, NULL, NULL, file), or until the process
// exits.
#pragma once

#include <olmo/platform.h>

extern "C" {

// Writes one file that has unsaved changes; nonzero when one was written
// (or failed to be: it is not retried).  Cheap when nothing is pending.
// Any thread.
OLMO_API int omWriteNextDirtyProfile(void);

}  // extern "C"
