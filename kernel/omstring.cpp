// Code pages and conversions (the multibyte code page is UTF-8; 1252 and
// 28591 are read as ISO-8859-1), the lstr* functions and the string helpers
// the other layers share (omstring.h).
#include "kernel/omstring.h"
#include "kernel/omdiag.h"

#include <winnls.h>

#include <cstdlib>
#include <cstring>
#include <strings.h>

namespace om::kernel {

char32_t decodeUtf8(const unsigned char *s, size_t n, size_t &i)
{
    unsigned char b0 = s[i];
    if (b0 < 0x80) {
        ++i;
        return b0;
    }
    int count;        // continuation bytes
    unsigned char lo = 0x80, hi = 0xBF;  // range of the first continuation
    char32_t c;
    if (b0 >= 0xC2 && b0 <= 0xDF) {
        count = 1;
        c = b0 & 0x1F;
    } else if (b0 >= 0xE0 && b0 <= 0xEF) {
        count = 2;
        c = b0 & 0x0F;
        if (b0 == 0xE0)
            lo = 0xA0;  // no overlong forms
        else if (b0 == 0xED)
            hi = 0x9F;  // no surrogates
    } else if (b0 >= 0xF0 && b0 <= 0xF4) {
        count = 3;
        c = b0 & 0x07;
        if (b0 == 0xF0)
            lo = 0x90;
        else if (b0 == 0xF4)
            hi = 0x8F;  // nothing above U+10FFFF
    } else {
        ++i;
        return kInvalidUtf8;
    }
    ++i;
    for (int k = 0; k < count; ++k) {
        if (i >= n || s[i] < lo || s[i] > hi)
            return kInvalidUtf8;  // i stays after the valid prefix
        c = (c << 6) | (s[i] & 0x3F);
        ++i;
        lo = 0x80;
        hi = 0xBF;
    }
    return c;
}

size_t utf8Length(char32_t c)
{
    return c < 0x80 ? 1 : c < 0x800 ? 2 : c < 0x10000 ? 3 : 4;
}

size_t encodeUtf8(char32_t c, char *buf)
{
    if (c < 0x80) {
        buf[0] = static_cast<char>(c);
        return 1;
    }
    if (c < 0x800) {
        buf[0] = static_cast<char>(0xC0 | (c >> 6));
        buf[1] = static_cast<char>(0x80 | (c & 0x3F));
        return 2;
    }
    if (c < 0x10000) {
        buf[0] = static_cast<char>(0xE0 | (c >> 12));
        buf[1] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        buf[2] = static_cast<char>(0x80 | (c & 0x3F));
        return 3;
    }
    buf[0] = static_cast<char>(0xF0 | (c >> 18));
    buf[1] = static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    buf[2] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    buf[3] = static_cast<char>(0x80 | (c & 0x3F));
    return 4;
}

void appendUtf8(std::string &out, char32_t c)
{
    char buf[4];
    out.append(buf, encodeUtf8(c, buf));
}

std::u16string utf8ToUtf16(std::string_view s)
{
    std::u16string out;
    out.reserve(s.size());
    const auto *p = reinterpret_cast<const unsigned char *>(s.data());
    size_t i = 0;
    while (i < s.size()) {
        char32_t c = decodeUtf8(p, s.size(), i);
        if (c == kInvalidUtf8)
            c = kReplacementChar;
        if (c >= 0x10000) {
            c -= 0x10000;
            out += static_cast<char16_t>(0xD800 | (c >> 10));
            out += static_cast<char16_t>(0xDC00 | (c & 0x3FF));
        } else {
            out += static_cast<char16_t>(c);
        }
    }
    return out;
}

// The code point at s[i], advancing i; a lone surrogate gives
// kInvalidUtf8.
static char32_t decodeUtf16(const char16_t *s, size_t n, size_t &i)
{
    char16_t c = s[i++];
    if (c < 0xD800 || c > 0xDFFF)
        return c;
    if (c <= 0xDBFF && i < n && s[i] >= 0xDC00 && s[i] <= 0xDFFF)
        return 0x10000 + ((static_cast<char32_t>(c - 0xD800) << 10) | (s[i++] - 0xDC00));
    return kInvalidUtf8;
}

void reportOutOfMemory(const char *function)
{
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    omError(OmDiag::OutOfMemory, function);
}

std::string utf16ToUtf8(std::u16string_view s)
{
    std::string out;
    out.reserve(s.size());
    size_t i = 0;
    while (i < s.size()) {
        char32_t c = decodeUtf16(s.data(), s.size(), i);
        appendUtf8(out, c == kInvalidUtf8 ? kReplacementChar : c);
    }
    return out;
}

}  // namespace om::kernel

using namespace om::kernel;

// ---- Code pages --------------------------------------------------------------

namespace {

enum class Charset { Invalid, Utf8, Latin1 };

// CP_ACP, CP_OEMCP and CP_THREAD_ACP all name UTF-8, as on Windows set to
// use UTF-8 as its system code page.  1252 is read as ISO-8859-1: its
// 0x80-0x9F punctuation (curly quotes, the euro sign) becomes the C1
// controls of the same value.
Charset charsetOf(UINT codePage)
{
    switch (codePage) {
    case CP_ACP:
    case CP_OEMCP:
    case CP_THREAD_ACP:
    case CP_UTF8:
        return Charset::Utf8;
    case 1252:
    case 28591:
        return Charset::Latin1;
    default:
        return Charset::Invalid;
    }
}

// A program that names the system code page may pass the flags Windows
// accepts for a legacy code page; only an explicit CP_UTF8 gets Windows'
// strict checks for UTF-8.
bool isImplicitCodePage(UINT codePage)
{
    return codePage == CP_ACP || codePage == CP_OEMCP || codePage == CP_THREAD_ACP;
}

template <class C> struct Sink {
    C *out;
    size_t cap;  // 0: count only
    size_t n = 0;
    bool overflow = false;
    void put(C c)
    {
        if (cap) {
            if (n >= cap) {
                overflow = true;
                return;
            }
            out[n] = c;
        }
        ++n;
    }
};

// Best-fit replacements of U+0100..U+017F for ISO-8859-1: the base letter,
// '?' where there is none.
constexpr char kLatinExtendedABase[] = "AaAaAaCcCcCcCcDd"
                                       "DdEeEeEeEeEeGgGg"
                                       "GgGgHhHhIiIiIiIi"
                                       "Ii??JjKk?LlLlLlL"
                                       "lLlNnNnNn???OoOo"
                                       "Oo??RrRrRrSsSsSs"
                                       "SsTtTtTtUuUuUuUu"
                                       "UuUuWwYyYZzZzZz?";

// The ISO-8859-1 character Windows' best-fit mapping would give, or 0.
unsigned char bestFitLatin1(char32_t c)
{
    if (c >= 0x100 && c <= 0x17F) {
        char b = kLatinExtendedABase[c - 0x100];
        return b == '?' ? 0 : static_cast<unsigned char>(b);
    }
    if (c >= 0xFF01 && c <= 0xFF5E)  // fullwidth ASCII
        return static_cast<unsigned char>(c - 0xFEE0);
    switch (c) {
    case 0x2010: case 0x2011: case 0x2012: case 0x2013: case 0x2014:
        return '-';
    case 0x2018: case 0x2019: case 0x201A: case 0x2032:
        return '\'';
    case 0x201C: case 0x201D: case 0x201E: case 0x2033:
        return '"';
    case 0x2039:
        return '<';
    case 0x203A:
        return '>';
    case 0x2022:
        return 0xB7;
    case 0x3000:
        return ' ';
    default:
        return 0;
    }
}

bool checkConversionArgs(const void *src, int cchSrc, const void *dest, int cchDest)
{
    if (!src || cchSrc == 0 || cchSrc < -1 || cchDest < 0 || (cchDest > 0 && !dest) ||
        (src == dest && cchDest > 0)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    return true;
}

template <class C> int finishSink(const Sink<C> &sink)
{
    if (sink.overflow) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    return static_cast<int>(sink.n);
}

}  // namespace

extern "C" int WINAPI MultiByteToWideChar(UINT CodePage, DWORD dwFlags, LPCCH lpMultiByteStr,
                                          int cbMultiByte, LPWSTR lpWideCharStr, int cchWideChar)
{
    if (!checkConversionArgs(lpMultiByteStr, cbMultiByte, lpWideCharStr, cchWideChar))
        return 0;
    Charset cs = charsetOf(CodePage);
    if (cs == Charset::Invalid) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    constexpr DWORD kLegacyFlags = MB_PRECOMPOSED | MB_COMPOSITE | MB_USEGLYPHCHARS;
    DWORD allowed = MB_ERR_INVALID_CHARS | kLegacyFlags;
    if (CodePage == CP_UTF8)
        allowed = MB_ERR_INVALID_CHARS;
    if ((dwFlags & ~allowed) || (dwFlags & (MB_PRECOMPOSED | MB_COMPOSITE)) ==
                                    (MB_PRECOMPOSED | MB_COMPOSITE)) {
        SetLastError(ERROR_INVALID_FLAGS);
        return 0;
    }
    // -1: the string and its terminator.
    size_t n = cbMultiByte < 0 ? strlen(lpMultiByteStr) + 1 : static_cast<size_t>(cbMultiByte);
    const auto *p = reinterpret_cast<const unsigned char *>(lpMultiByteStr);
    Sink<WCHAR> sink{lpWideCharStr, static_cast<size_t>(cchWideChar)};
    if (cs == Charset::Latin1) {
        for (size_t i = 0; i < n && !sink.overflow; ++i)
            sink.put(p[i]);
        return finishSink(sink);
    }
    size_t i = 0;
    while (i < n && !sink.overflow) {
        char32_t c = decodeUtf8(p, n, i);
        if (c == kInvalidUtf8) {
            if (dwFlags & MB_ERR_INVALID_CHARS) {
                SetLastError(ERROR_NO_UNICODE_TRANSLATION);
                return 0;
            }
            c = kReplacementChar;
        }
        if (c >= 0x10000) {
            c -= 0x10000;
            sink.put(static_cast<WCHAR>(0xD800 | (c >> 10)));
            sink.put(static_cast<WCHAR>(0xDC00 | (c & 0x3FF)));
        } else {
            sink.put(static_cast<WCHAR>(c));
        }
    }
    return finishSink(sink);
}

extern "C" int WINAPI WideCharToMultiByte(UINT CodePage, DWORD dwFlags, LPCWCH lpWideCharStr,
                                          int cchWideChar, LPSTR lpMultiByteStr, int cbMultiByte,
                                          LPCCH lpDefaultChar, LPBOOL lpUsedDefaultChar)
{
    if (!checkConversionArgs(lpWideCharStr, cchWideChar, lpMultiByteStr, cbMultiByte))
        return 0;
    Charset cs = charsetOf(CodePage);
    if (cs == Charset::Invalid) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    constexpr DWORD kLegacyFlags =
        WC_COMPOSITECHECK | WC_DISCARDNS | WC_SEPCHARS | WC_DEFAULTCHAR | WC_NO_BEST_FIT_CHARS;
    DWORD allowed = cs == Charset::Latin1 ? kLegacyFlags : WC_ERR_INVALID_CHARS;
    if (cs == Charset::Utf8 && isImplicitCodePage(CodePage))
        allowed |= kLegacyFlags;
    if (dwFlags & ~allowed) {
        SetLastError(ERROR_INVALID_FLAGS);
        return 0;
    }
    // Windows refuses a default character for UTF-8, which can encode
    // everything; a program that passes one for the system code page was
    // written for a legacy one, so it is answered rather than refused.
    if (CodePage == CP_UTF8 && (lpDefaultChar || lpUsedDefaultChar)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    size_t n = static_cast<size_t>(cchWideChar);
    if (cchWideChar < 0) {
        n = 0;
        while (lpWideCharStr[n])
            ++n;
        ++n;
    }
    Sink<char> sink{lpMultiByteStr, static_cast<size_t>(cbMultiByte)};
    bool usedDefault = false;
    size_t i = 0;
    if (cs == Charset::Latin1) {
        char defaultChar = lpDefaultChar ? *lpDefaultChar : '?';
        bool bestFit = !(dwFlags & WC_NO_BEST_FIT_CHARS);
        while (i < n && !sink.overflow) {
            char32_t c = decodeUtf16(lpWideCharStr, n, i);
            if (c < 0x100) {
                sink.put(static_cast<char>(c));
            } else if (unsigned char b = bestFit ? bestFitLatin1(c) : 0) {
                sink.put(static_cast<char>(b));
            } else {
                sink.put(defaultChar);
                usedDefault = true;
            }
        }
    } else {
        while (i < n && !sink.overflow) {
            char32_t c = decodeUtf16(lpWideCharStr, n, i);
            if (c == kInvalidUtf8) {
                if (dwFlags & WC_ERR_INVALID_CHARS) {
                    SetLastError(ERROR_NO_UNICODE_TRANSLATION);
                    return 0;
                }
                c = kReplacementChar;
                usedDefault = true;
            }
            char buf[4];
            size_t len = encodeUtf8(c, buf);
            // A character that does not fit whole is not written in part.
            if (sink.cap && sink.n + len > sink.cap) {
                sink.overflow = true;
                break;
            }
            for (size_t k = 0; k < len; ++k)
                sink.put(buf[k]);
        }
    }
    if (lpUsedDefaultChar)
        *lpUsedDefaultChar = usedDefault;
    return finishSink(sink);
}

extern "C" UINT WINAPI GetACP(void)
{
    return CP_UTF8;
}

extern "C" UINT WINAPI GetOEMCP(void)
{
    return CP_UTF8;
}

extern "C" BOOL WINAPI IsValidCodePage(UINT CodePage)
{
    // The CP_ACP family are aliases, not code pages.
    return CodePage == CP_UTF8 || CodePage == 1252 || CodePage == 28591;
}

namespace {

bool fillCpInfo(UINT codePage, CPINFO &info, UINT &resolved, const char *&name)
{
    Charset cs = charsetOf(codePage);
    if (cs == Charset::Invalid) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    memset(&info, 0, sizeof info);
    info.DefaultChar[0] = '?';
    if (cs == Charset::Utf8) {
        info.MaxCharSize = 4;
        resolved = CP_UTF8;
        name = "65001 (UTF-8)";
    } else {
        info.MaxCharSize = 1;
        resolved = codePage;
        name = codePage == 1252 ? "1252 (ANSI - Latin I)" : "28591 (ISO 8859-1 Latin I)";
    }
    return true;
}

}  // namespace

extern "C" BOOL WINAPI GetCPInfo(UINT CodePage, LPCPINFO lpCPInfo)
{
    if (!lpCPInfo) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    UINT resolved;
    const char *name;
    return fillCpInfo(CodePage, *lpCPInfo, resolved, name);
}

extern "C" BOOL WINAPI GetCPInfoExA(UINT CodePage, DWORD dwFlags, LPCPINFOEXA lpCPInfoEx)
{
    (void)dwFlags;
    CPINFO info;
    UINT resolved;
    const char *name;
    if (!lpCPInfoEx) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    if (!fillCpInfo(CodePage, info, resolved, name))
        return FALSE;
    lpCPInfoEx->MaxCharSize = info.MaxCharSize;
    memcpy(lpCPInfoEx->DefaultChar, info.DefaultChar, sizeof info.DefaultChar);
    memcpy(lpCPInfoEx->LeadByte, info.LeadByte, sizeof info.LeadByte);
    lpCPInfoEx->UnicodeDefaultChar = resolved == CP_UTF8 ? 0xFFFD : '?';
    lpCPInfoEx->CodePage = resolved;
    lstrcpynA(lpCPInfoEx->CodePageName, name, MAX_PATH);
    return TRUE;
}

extern "C" BOOL WINAPI GetCPInfoExW(UINT CodePage, DWORD dwFlags, LPCPINFOEXW lpCPInfoEx)
{
    CPINFOEXA a;
    if (!lpCPInfoEx) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    if (!GetCPInfoExA(CodePage, dwFlags, &a))
        return FALSE;
    lpCPInfoEx->MaxCharSize = a.MaxCharSize;
    memcpy(lpCPInfoEx->DefaultChar, a.DefaultChar, sizeof a.DefaultChar);
    memcpy(lpCPInfoEx->LeadByte, a.LeadByte, sizeof a.LeadByte);
    lpCPInfoEx->UnicodeDefaultChar = a.UnicodeDefaultChar;
    lpCPInfoEx->CodePage = a.CodePage;
    MultiByteToWideChar(CP_UTF8, 0, a.CodePageName, -1, lpCPInfoEx->CodePageName, MAX_PATH);
    return TRUE;
}

// UTF-8 and ISO-8859-1 have no lead bytes in Windows' sense (double-byte
// character sets).
extern "C" BOOL WINAPI IsDBCSLeadByte(BYTE TestChar)
{
    (void)TestChar;
    return FALSE;
}

extern "C" BOOL WINAPI IsDBCSLeadByteEx(UINT CodePage, BYTE TestChar)
{
    (void)CodePage;
    (void)TestChar;
    return FALSE;
}

// ---- Helpers for the other layers ---------------------------------------------

extern "C" OLMO_API char *_omMBStringFromWideString(const WCHAR *wide)
{
    if (!wide)
        return nullptr;
    size_t n = 0;
    while (wide[n])
        ++n;
    std::string s;
    try {
        s = utf16ToUtf8({wide, n});
    } catch (const std::bad_alloc &) {
        omError(OmDiag::OutOfMemory, "_omMBStringFromWideString");
        return nullptr;
    }
    char *out = static_cast<char *>(malloc(s.size() + 1));
    if (!out) {
        omError(OmDiag::OutOfMemory, "_omMBStringFromWideString");
        return nullptr;
    }
    memcpy(out, s.c_str(), s.size() + 1);
    return out;
}

extern "C" OLMO_API WCHAR *_omWideStringFromMBString(const char *mb)
{
    if (!mb)
        return nullptr;
    std::u16string s;
    try {
        s = utf8ToUtf16(mb);
    } catch (const std::bad_alloc &) {
        omError(OmDiag::OutOfMemory, "_omWideStringFromMBString");
        return nullptr;
    }
    auto *out = static_cast<WCHAR *>(malloc((s.size() + 1) * sizeof(WCHAR)));
    if (!out) {
        omError(OmDiag::OutOfMemory, "_omWideStringFromMBString");
        return nullptr;
    }
    memcpy(out, s.c_str(), (s.size() + 1) * sizeof(WCHAR));
    return out;
}

extern "C" OLMO_API int omStripMnemonic(const char *text, char *out)
{
    if (!out)
        return 0;
    if (!text) {
        *out = 0;
        return 0;
    }
    int mnemonic = 0;
    const char *p = text;
    char *q = out;
    while (*p) {
        if (*p != '&') {
            *q++ = *p++;
            continue;
        }
        ++p;
        if (*p == '&') {
            *q++ = *p++;
        } else if (*p && !mnemonic) {
            size_t i = 0;
            size_t n = strnlen(p, 4);
            char32_t c = decodeUtf8(reinterpret_cast<const unsigned char *>(p), n, i);
            mnemonic = c == kInvalidUtf8 ? static_cast<unsigned char>(*p) : static_cast<int>(c);
        }
        // a lone '&' at the end is dropped
    }
    *q = 0;
    return mnemonic;
}

extern "C" OLMO_API char *lstrtok(char *str, const char *delimiters)
{
    static thread_local char *state = nullptr;
    if (!delimiters)
        return nullptr;
    return strtok_r(str, delimiters, &state);
}

extern "C" OLMO_API int _qel_strcasecmp(const char *a, const char *b)
{
    if (!a || !b)
        return a == b ? 0 : (a ? 1 : -1);
    return strcasecmp(a, b);
}

extern "C" OLMO_API const char *_qelBasename(const char *path)
{
    if (!path)
        return nullptr;
    const char *base = path;
    for (const char *p = path; *p; ++p)
        if (*p == '/' || *p == '\\')
            base = p + 1;
    return base;
}

extern "C" OLMO_API int omStrcmpCaseless(const char *a, const char *b)
{
    if (!a || !b)
        return a == b ? 0 : (a ? 1 : -1);
    return compareUtf8(a, b, true);
}

// ---- lstr* -----------------------------------------------------------------------
//
// Windows catches the access violation of a bad pointer in these and
// returns NULL (or 0); a null pointer gets the same answer here.

extern "C" int WINAPI lstrlenA(LPCSTR lpString)
{
    return lpString ? static_cast<int>(strlen(lpString)) : 0;
}

extern "C" int WINAPI lstrlenW(LPCWSTR lpString)
{
    if (!lpString)
        return 0;
    int n = 0;
    while (lpString[n])
        ++n;
    return n;
}

extern "C" LPSTR WINAPI lstrcpyA(LPSTR lpString1, LPCSTR lpString2)
{
    if (!lpString1 || !lpString2)
        return nullptr;
    return strcpy(lpString1, lpString2);
}

extern "C" LPWSTR WINAPI lstrcpyW(LPWSTR lpString1, LPCWSTR lpString2)
{
    if (!lpString1 || !lpString2)
        return nullptr;
    LPWSTR d = lpString1;
    while ((*d++ = *lpString2++))
        ;
    return lpString1;
}

// Copies at most iMaxLength - 1 bytes and always terminates.  The cut is
// moved back to a character boundary so that no half UTF-8 sequence is
// left at the end.
extern "C" LPSTR WINAPI lstrcpynA(LPSTR lpString1, LPCSTR lpString2, int iMaxLength)
{
    if (!lpString1 || !lpString2)
        return nullptr;
    if (iMaxLength <= 0)
        return lpString1;
    size_t n = strnlen(lpString2, static_cast<size_t>(iMaxLength - 1));
    auto isContinuation = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
    if (isContinuation(lpString2[n])) {
        size_t lead = n;
        while (lead > 0 && n - lead < 3 && isContinuation(lpString2[lead]))
            --lead;
        const auto *p = reinterpret_cast<const unsigned char *>(lpString2);
        size_t end = lead + strnlen(lpString2 + lead, 4);
        size_t i = lead;
        if (decodeUtf8(p, end, i) != kInvalidUtf8 && i > n)
            n = lead;  // a whole character that does not fit
    }
    memmove(lpString1, lpString2, n);
    lpString1[n] = 0;
    return lpString1;
}

extern "C" LPWSTR WINAPI lstrcpynW(LPWSTR lpString1, LPCWSTR lpString2, int iMaxLength)
{
    if (!lpString1 || !lpString2)
        return nullptr;
    if (iMaxLength <= 0)
        return lpString1;
    int i = 0;
    for (; i < iMaxLength - 1 && lpString2[i]; ++i)
        lpString1[i] = lpString2[i];
    lpString1[i] = 0;
    return lpString1;
}

extern "C" LPSTR WINAPI lstrcatA(LPSTR lpString1, LPCSTR lpString2)
{
    if (!lpString1 || !lpString2)
        return nullptr;
    return strcat(lpString1, lpString2);
}

extern "C" LPWSTR WINAPI lstrcatW(LPWSTR lpString1, LPCWSTR lpString2)
{
    if (!lpString1 || !lpString2)
        return nullptr;
    lstrcpyW(lpString1 + lstrlenW(lpString1), lpString2);
    return lpString1;
}

namespace {

int nullOrder(const void *a, const void *b)
{
    return a == b ? 0 : (a ? 1 : -1);
}

int compareWide(LPCWSTR a, LPCWSTR b, bool ignoreCase)
{
    for (;; ++a, ++b) {
        char16_t ca = *a, cb = *b;
        if (ignoreCase) {
            ca = toLowerChar(ca);
            cb = toLowerChar(cb);
        }
        if (ca != cb)
            return ca < cb ? -1 : 1;
        if (!ca)
            return 0;
    }
}

}  // namespace

// lstrcmp and lstrcmpi order by code point (lstrcmpi after folding to
// lower case, so '_' sorts before letters as it does on Windows); Windows'
// linguistic order differs for punctuation only.
extern "C" int WINAPI lstrcmpA(LPCSTR lpString1, LPCSTR lpString2)
{
    if (!lpString1 || !lpString2)
        return nullOrder(lpString1, lpString2);
    int r = strcmp(lpString1, lpString2);
    return r < 0 ? -1 : r > 0;
}

extern "C" int WINAPI lstrcmpW(LPCWSTR lpString1, LPCWSTR lpString2)
{
    if (!lpString1 || !lpString2)
        return nullOrder(lpString1, lpString2);
    return compareWide(lpString1, lpString2, false);
}

extern "C" int WINAPI lstrcmpiA(LPCSTR lpString1, LPCSTR lpString2)
{
    if (!lpString1 || !lpString2)
        return nullOrder(lpString1, lpString2);
    return compareUtf8(lpString1, lpString2, true);
}

extern "C" int WINAPI lstrcmpiW(LPCWSTR lpString1, LPCWSTR lpString2)
{
    if (!lpString1 || !lpString2)
        return nullOrder(lpString1, lpString2);
    return compareWide(lpString1, lpString2, true);
}
