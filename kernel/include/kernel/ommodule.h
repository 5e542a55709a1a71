// Module records (handle kind 23): the program, the toolkit's own
// libraries and libraries loaded with LoadLibraryA.  The program's module
// is slot 32, the value GetModuleHandleA(NULL) and WinMain's hInstance
// give.  Resource stores hang off the record.
#pragma once

#include <olmo/platform.h>

#include <cstdint>
#include <string>

struct OmModule {
    std::string path;       // the file the module was loaded from
    void *dl = nullptr;     // dlopen handle; null for the program
    uint32_t index = 0;     // slot index
    int loadCount = 1;      // LoadLibrary references
    const unsigned char *resources = nullptr;  // the module's .res image, if any
    size_t resourcesSize = 0;
};

extern "C" {

// The program's module handle (slot 32 with the base); creates it on first
// use.  Any thread.
OLMO_API uint64_t omProgramModule(void);

// Registers a library already opened with dlopen and returns its module
// handle (an existing record is reused).
OLMO_API uint64_t omRegisterLoadedModule(void *dl, const char *name);

// The record of a module handle (0 means the program), or null.
OLMO_API OmModule *omModuleFromHandle(uint64_t handle);

}  // extern "C"
