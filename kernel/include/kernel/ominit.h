/*
 * Toolkit initialisation and the program's command line: the kernel
 * entries that libolmomain's main() calls.  Plain C, since main() is C so
 * that a program linking only C needs no C++ runtime.
 */
#ifndef OLMO_KERNEL_OMINIT_H
#define OLMO_KERNEL_OMINIT_H

#include <olmo/platform.h>

OLMO_BEGIN_C

/* Initialises the toolkit once: X threads, the locale, the display and the
 * application shell, then the user library.  argc/argv may be null; X
 * options the toolkit understands are removed from them.  Idempotent and
 * thread-safe; returns nonzero when a display is open. */
OLMO_API int omInitialize(int *argc, char **argv);

/* Records the program's arguments for GetCommandLineA, __argc and __argv.
 * Without a call, they come from /proc/self/cmdline. */
OLMO_API void omSetCommandLineArgs(int argc, char **argv);

/* The command line after the program name, as WinMain's lpCmdLine. */
OLMO_API const char *omCommandLineTail(void);

OLMO_END_C

#endif /* OLMO_KERNEL_OMINIT_H */
