// The pump hooks: plain globals, null until someone installs them.  Only
// the main thread pumps, so they are read and written there without a lock.
#include "kernel/omeventhooks.h"

extern "C" {
OLMO_API OmPendingHook lpPendingHook = nullptr;
OLMO_API OmEventHook lpEventHook = nullptr;
}
