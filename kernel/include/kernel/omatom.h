// Global atoms as X atoms, for the user library's window properties.
//
// Every Olmo process on one display agrees on the global atom table (kept
// on the server, see omatom.cpp) and maps a global atom to the same X atom,
// so a property set by one process is found by another.  These functions
// and the Global*Atom ones talk to the server under a lock of their own:
// never call them while holding XLockDisplay on omDisplay.
#pragma once

#include <olmo/platform.h>
#include <minwindef.h>

#include <X11/Xlib.h>

extern "C" {

// The X type of Olmo's window properties: (Atom)-1 until
// omGlobalAtomsInitXAtom has run with a display open.
OLMO_API extern Atom omGlobalAtomType;

// Interns omGlobalAtomType.  Idempotent; does nothing without a display.
OLMO_API void omGlobalAtomsInitXAtom(void);

// The X atom that stands for a global atom (a string atom of the table or
// an integer atom below 0xC000), interned on first use and cached.  None
// for 0, for an atom not in the table, or without a display.
OLMO_API Atom omGlobalAtomsFindXatom(ATOM globalAtom);

// The reverse: the global atom an X atom stands for, 0 when the X atom is
// not one of ours.
OLMO_API ATOM omGlobalAtomsFindOlmoatom(Atom xatom);

}  // extern "C"
