// Shared by the paint-list and invalidation modules of messages/ only.
#pragma once

#include "messages/ommessageq.h"

#include <windows.h>

struct WindowRecord;
struct OmThreadRecord;

namespace om::messages {
OmThreadRecord *ownerThread(const WindowRecord &w);
// True when hwnd is a child, grandchild... of ancestor.
bool isDescendant(HWND hwnd, HWND ancestor);
bool hasUpdate(const WindowRecord &w);
// With the owner's queue lock held.
bool addItemLocked(OmPaintList &list, HWND hwnd);
bool deleteItemLocked(OmPaintList &list, HWND hwnd);
}  // namespace om::messages
