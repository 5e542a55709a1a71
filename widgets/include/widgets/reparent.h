// XtReparentWidget: moves a widget and its whole subtree under a new
// composite parent, in the toolkit's bookkeeping and on the server.  Xt has
// no such call; SetParent and the window cache use this one.
#pragma once

#include <olmo/platform.h>

#include <X11/Intrinsic.h>

OLMO_BEGIN_C

// Moves `w` (a windowed, non-shell widget) under `newParent` at (x, y) in
// the new parent's coordinates.  `width`/`height` 0 keep the current size;
// non-zero values resize after the move.  `inner` is the part of the
// subtree the caller holds on to (the frame inside an outer widget): null,
// `w` itself or a descendant of `w`; anything else is refused so that a
// stale pair is never half moved.
//
// Managed state, mapped state and event handlers survive; constraints are
// rebuilt with the new parent's defaults, since the old parent's do not
// apply there.  When `w` has windows and the new parent does not, the new
// parent is realised first (or, when its shell is not realised either, the
// subtree's windows are dropped and made again with the new tree).
//
// Refused (False, diagnostic 303, nothing changed): a null or dying `w` or
// `newParent`, a shell or windowless `w`, a `newParent` that is not a
// composite, is a shell, or lies inside `w`'s own subtree, a different
// screen, depth or colormap, and an `inner` outside the subtree.
OLMO_API Boolean XtReparentWidget(Widget w, Widget newParent, Position x, Position y,
                                  Dimension width, Dimension height, Widget inner);

OLMO_END_C
