// The cursor record (handle kind 4) shared by the graphics layer, which
// makes system and resource cursors, and the user library's cursor
// functions, which set and destroy them.  Allocated zeroed with calloc;
// the bit arrays with malloc.
#pragma once

#include <X11/Xlib.h>

#include <cstdint>

struct OmCursorRecord {
    Cursor xcursor;             // 0 until made
    int32_t width, height;      // pixels
    unsigned char *sourceBits;  // X bitmap order (LSB first), rows of (width + 7) / 8
                                // bytes: 1 where the foreground shows; null for
                                // cursor-font cursors
    unsigned char *maskBits;    // same layout: 1 where the cursor is opaque
    uint16_t hotX, hotY;
    uint32_t shared;            // system cursors: never destroyed
};
