// String helpers of the kernel layer that the graphics layer and the user
// library call, and the Unicode primitives the kernel's own modules share
// (UTF-8 <-> UTF-16, simple case mapping, character classes).
#pragma once

#include <olmo/platform.h>
#include <winnt.h>

#include <cstddef>
#include <cstdint>
#include <new>
#include <string>
#include <string_view>

extern "C" {

// The text converted between the multibyte code page (UTF-8) and UTF-16,
// in a new buffer from malloc: the caller releases it with free().  Null in,
// null out; null also when memory runs out.  Invalid input becomes U+FFFD.
OLMO_API char *_omMBStringFromWideString(const WCHAR *wide);
OLMO_API WCHAR *_omWideStringFromMBString(const char *mb);

// Copies text to out without its '&' markers ("&&" gives one '&') and
// returns the Unicode code point of the character after the first single
// '&' (the mnemonic), or 0 when there is none.  out must hold at least
// strlen(text) + 1 bytes; out may equal text.  A null text gives "" and 0.
OLMO_API int omStripMnemonic(const char *text, char *out);

// strtok with the state kept per thread.
OLMO_API char *lstrtok(char *str, const char *delimiters);

// 0 when a and b are equal ignoring ASCII case, else negative or positive
// as strcasecmp.  A null string sorts before every other.
OLMO_API int _qel_strcasecmp(const char *a, const char *b);

// The last component of path (after the last '/' or '\\'), pointing into
// path; "" when path ends in a separator, null for null.
OLMO_API const char *_qelBasename(const char *path);

// As _qel_strcasecmp, but folds the case of every Unicode letter of the
// UTF-8 strings (simple case mapping), not only ASCII.
OLMO_API int omStrcmpCaseless(const char *a, const char *b);

}  // extern "C"

namespace om::kernel {

constexpr char32_t kReplacementChar = 0xFFFD;

// Decodes one code point of UTF-8 at s[i] (i < n) and advances i.  An
// ill-formed sequence gives kInvalidUtf8 and advances over its maximal
// subpart, so each bad sequence counts once (Unicode's recommended
// practice, which Windows follows).
constexpr char32_t kInvalidUtf8 = 0xFFFFFFFF;
char32_t decodeUtf8(const unsigned char *s, size_t n, size_t &i);

// The UTF-8 form of a code point (< 0x110000, not a surrogate): written
// to buf (4 bytes) with its length returned, or appended.
size_t encodeUtf8(char32_t c, char *buf);
void appendUtf8(std::string &out, char32_t c);
size_t utf8Length(char32_t c);

// UTF-8 <-> UTF-16 for internal use: invalid input becomes U+FFFD.
std::u16string utf8ToUtf16(std::string_view s);
std::string utf16ToUtf8(std::u16string_view s);

// Simple (one-to-one) case mapping and CT_CTYPE1 classes of the BMP.
char16_t toUpperChar(char16_t c);
char16_t toLowerChar(char16_t c);
uint16_t charType1(char16_t c);
inline char32_t toLowerCodePoint(char32_t c)
{
    return c < 0x10000 ? toLowerChar(static_cast<char16_t>(c)) : c;
}
inline char32_t toUpperCodePoint(char32_t c)
{
    return c < 0x10000 ? toUpperChar(static_cast<char16_t>(c)) : c;
}

// Runs f and turns an allocation failure into the failure value, with
// ERROR_NOT_ENOUGH_MEMORY and diagnostic 130, so that no exception leaves
// an entry point.
void reportOutOfMemory(const char *function);
template <class R, class F> R withoutThrowing(const char *function, R failure, F &&f) noexcept
{
    try {
        return f();
    } catch (const std::bad_alloc &) {
        reportOutOfMemory(function);
        return failure;
    }
}

// A UTF-8 string folded to lower case, for case-insensitive keys.
std::string foldCase(std::string_view s);

// Compares UTF-8 strings by code point, folding case when ignoreCase.
// Returns <0, 0, >0.
int compareUtf8(std::string_view a, std::string_view b, bool ignoreCase);

}  // namespace om::kernel
