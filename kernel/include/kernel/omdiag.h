// Numbered diagnostics.  Each situation has a fixed number; the texts are
// kept in one catalogue in omdiag.cpp.  Call sites name an OmDiag constant:
//
//     omDebugWarning(OmDiag::BadWindowHandle, "SendMessage", hwnd, wParam);
//
// In C++ the arguments are formatted by their types (a 64-bit handle or
// WPARAM is printed whole); C callers use the variadic entries, whose
// arguments after the function name must match the catalogue entry.
//
// Output goes to stderr as "olmo warning 79: ...".  OLMO_DIAGNOSTICS=quiet
// silences it, =fatal aborts on the first diagnostic; every diagnostic is
// counted either way, so tests can assert "warning 79 was given once".
#pragma once

#include <olmo/platform.h>

#include <cstdint>
#include <string>
#include <type_traits>

enum class OmDiag : int {
    NotABrush = 3,
    NotABitmap = 4,
    ZeroBlinkTime = 6,
    CtlColorNotABrush = 7,
    BadComboIndex = 12,
    NotADialog = 25,
    NullWindowProc = 33,
    NegativeCaretHeight = 36,
    IndexOutOfRange = 39,
    StringNotFound = 42,
    BadListIndex = 43,
    NotAMenu = 49,
    BadParent = 57,
    NullPoint = 58,
    NeedsSingleSelection = 69,
    NeedsMultipleSelection = 70,
    NegativeCaretWidth = 77,
    BadDeferHandle = 78,
    BadWindowHandle = 79,
    DialogNotFound = 93,
    MenuItemNotFound = 106,
    ChildWithClassMenu = 111,
    UnknownClass = 112,
    ClassTableFull = 114,
    NoComboId = 115,
    MissingDialogItem = 116,
    RedrawNullWindow = 119,
    HandleTableFull = 125,
    NullScrollRange = 127,
    NoListId = 129,
    OutOfMemory = 130,
    NullPointer = 133,
    NoScrollBar = 134,
    NoSelection = 135,
    WindowWithoutProc = 139,
    Unsupported = 141,
    BufferTooSmall = 144,
    BadShowCommand = 148,
    BadGetWindowCommand = 151,
    UnknownButtonType = 152,
    BadMessageBoxType = 153,
    UnsupportedControlMessage = 155,
    UnsupportedControlStyle = 156,
    UnsupportedValue = 161,
    MessageTableFull = 163,
    NotIconOrCursor = 179,
    VirtualKeyTooLarge = 194,
    NcCreateNotPassed = 198,
    NoMotifWindowManager = 199,
    InvalidThread = 201,
    ParentWithoutCanvas = 234,
    WrongThread = 237,
    QueueFreeListExhausted = 243,
    NullScrollInfo = 269,
    DialogParentWithoutWidgets = 270,
    KeyboardGrabFailed = 297,
    // The kernel layer's own situations.
    BadKernelHandle = 300,
    NoDisplay = 301,
    DisplayOpenFailed = 302,
    BadArgument = 303,
    ResourceNotFound = 304,
    MalformedResource = 305,
};

// One formatted argument of a diagnostic.
struct OLMO_API OmDiagArg {
    std::string text;
    OmDiagArg(const char *s) : text(s ? s : "(null)") {}
    OmDiagArg(char *s) : text(s ? s : "(null)") {}
    OmDiagArg(const std::string &s) : text(s) {}
    OmDiagArg(char c) : text(1, c) {}
    OmDiagArg(bool b) : text(b ? "TRUE" : "FALSE") {}
    template <class T, std::enable_if_t<std::is_integral_v<T> || std::is_enum_v<T>, int> = 0>
    OmDiagArg(T v) : text(formatInteger(static_cast<int64_t>(v), std::is_signed_v<T>))
    {
    }
    template <class T> OmDiagArg(T *p) : text(formatPointer(reinterpret_cast<uintptr_t>(p))) {}
    static std::string formatInteger(int64_t v, bool isSigned);
    static std::string formatPointer(uintptr_t p);
};

extern "C" {
// C entries: the arguments after functionName follow the catalogue entry's
// argument list.  omError returns a non-zero value for callers that pass
// an error on as their own result.
OLMO_API void omDebugWarning(int number, const char *functionName, ...);
OLMO_API int omError(int number, const char *functionName, ...);

// How often each number was given since the last reset (any thread).
OLMO_API unsigned omDiagCount(int number);
OLMO_API void omDiagResetCounts(void);
}

// The typed entries used by the libraries.
OLMO_API void omDiagEmit(bool isError, int number, const OmDiagArg *args, size_t count);

template <class... A> inline void omDebugWarning(OmDiag n, const A &...args)
{
    const OmDiagArg list[] = {OmDiagArg(args)..., OmDiagArg("")};
    omDiagEmit(false, static_cast<int>(n), list, sizeof...(A));
}

template <class... A> inline int omError(OmDiag n, const A &...args)
{
    const OmDiagArg list[] = {OmDiagArg(args)..., OmDiagArg("")};
    omDiagEmit(true, static_cast<int>(n), list, sizeof...(A));
    return static_cast<int>(n);
}
