// Character case and classes: the simple case mapping and CT_CTYPE1
// classes of the Basic Multilingual Plane (our own tables, independent of
// the C library's locale), and the Windows functions built on them:
// Char*, IsChar*, CompareString, LCMapString and GetStringType.
#include "kernel/omdiag.h"
#include "kernel/omstring.h"

#include <winnls.h>
#include <winuser.h>

#include <array>
#include <cstring>
#include <mutex>
#include <string>

namespace om::kernel {
namespace {

// How a range maps upper case to lower case: every character by a fixed
// delta, or alternating pairs where the upper-case letter is the one with
// the same parity as the range's start.
enum class Map : uint8_t { Delta, Pairs };

struct CaseRange {
    char16_t lo, hi;
    Map kind;
    int16_t delta;  // Delta ranges only
};

// Upper case to lower case.  The scripts a Windows program's text is
// likely to carry; one-to-many mappings (ß, ligatures) are left out, as
// CharUpper leaves them.
constexpr CaseRange kCaseRanges[] = {
    {0x0041, 0x005A, Map::Delta, 0x20},  {0x00C0, 0x00D6, Map::Delta, 0x20},
    {0x00D8, 0x00DE, Map::Delta, 0x20},  {0x0100, 0x012F, Map::Pairs, 0},
    {0x0132, 0x0137, Map::Pairs, 0},     {0x0139, 0x0148, Map::Pairs, 0},
    {0x014A, 0x0177, Map::Pairs, 0},     {0x0178, 0x0178, Map::Delta, -0x79},
    {0x0179, 0x017E, Map::Pairs, 0},     {0x01CD, 0x01DC, Map::Pairs, 0},
    {0x01DE, 0x01EF, Map::Pairs, 0},     {0x01F8, 0x021F, Map::Pairs, 0},
    {0x0222, 0x0233, Map::Pairs, 0},     {0x0246, 0x024F, Map::Pairs, 0},
    {0x0386, 0x0386, Map::Delta, 0x26},  {0x0388, 0x038A, Map::Delta, 0x25},
    {0x038C, 0x038C, Map::Delta, 0x40},  {0x038E, 0x038F, Map::Delta, 0x3F},
    {0x0391, 0x03A1, Map::Delta, 0x20},  {0x03A3, 0x03AB, Map::Delta, 0x20},
    {0x03D8, 0x03EF, Map::Pairs, 0},     {0x0400, 0x040F, Map::Delta, 0x50},
    {0x0410, 0x042F, Map::Delta, 0x20},  {0x0460, 0x0481, Map::Pairs, 0},
    {0x048A, 0x04BF, Map::Pairs, 0},     {0x04C0, 0x04C0, Map::Delta, 0x0F},
    {0x04C1, 0x04CE, Map::Pairs, 0},     {0x04D0, 0x052F, Map::Pairs, 0},
    {0x0531, 0x0556, Map::Delta, 0x30},  {0x10A0, 0x10C5, Map::Delta, 0x1C60},
    {0x1E00, 0x1E95, Map::Pairs, 0},     {0x1EA0, 0x1EFF, Map::Pairs, 0},
    {0x2160, 0x216F, Map::Delta, 0x10},  {0x24B6, 0x24CF, Map::Delta, 0x1A},
    {0x2C00, 0x2C2E, Map::Delta, 0x30},  {0xFF21, 0xFF3A, Map::Delta, 0x20},
};

// Letters without case, by block.
constexpr std::pair<char16_t, char16_t> kCaselessLetters[] = {
    {0x00AA, 0x00AA}, {0x00BA, 0x00BA}, {0x0180, 0x024F}, {0x0250, 0x02AF}, {0x05D0, 0x05EA},
    {0x0620, 0x064A}, {0x0671, 0x06D3}, {0x0904, 0x0939}, {0x0E01, 0x0E30}, {0x10D0, 0x10FA},
    {0x1100, 0x11FF}, {0x1F00, 0x1FBC}, {0x3041, 0x3096}, {0x30A1, 0x30FA}, {0x3105, 0x312F},
    {0x3400, 0x4DBF}, {0x4E00, 0x9FFF}, {0xAC00, 0xD7A3}, {0xF900, 0xFAFF}, {0xFF66, 0xFF9F},
};

constexpr std::pair<char16_t, char16_t> kLowerWithoutUpper[] = {
    {0x00DF, 0x00DF}, {0x0138, 0x0138}, {0x0149, 0x0149}, {0x017F, 0x017F}, {0x0250, 0x02AF},
};

constexpr std::pair<char16_t, char16_t> kDigits[] = {
    {0x0030, 0x0039}, {0x00B2, 0x00B3}, {0x00B9, 0x00B9}, {0x0660, 0x0669},
    {0x06F0, 0x06F9}, {0x0966, 0x096F}, {0xFF10, 0xFF19},
};

constexpr std::pair<char16_t, char16_t> kSpaces[] = {
    {0x0009, 0x000D}, {0x0020, 0x0020}, {0x0085, 0x0085}, {0x00A0, 0x00A0}, {0x1680, 0x1680},
    {0x2000, 0x200A}, {0x2028, 0x2029}, {0x202F, 0x202F}, {0x205F, 0x205F}, {0x3000, 0x3000},
};

constexpr std::pair<char16_t, char16_t> kBlanks[] = {
    {0x0009, 0x0009}, {0x0020, 0x0020}, {0x00A0, 0x00A0}, {0x1680, 0x1680},
    {0x2000, 0x200A}, {0x202F, 0x202F}, {0x205F, 0x205F}, {0x3000, 0x3000},
};

constexpr std::pair<char16_t, char16_t> kPunctuation[] = {
    {0x0021, 0x002F}, {0x003A, 0x0040}, {0x005B, 0x0060}, {0x007B, 0x007E}, {0x00A1, 0x00A9},
    {0x00AB, 0x00B1}, {0x00B4, 0x00B4}, {0x00B6, 0x00B8}, {0x00BB, 0x00BF}, {0x00D7, 0x00D7},
    {0x00F7, 0x00F7}, {0x02C2, 0x02C5}, {0x037E, 0x037E}, {0x0384, 0x0385}, {0x0387, 0x0387},
    {0x055A, 0x055F}, {0x05BE, 0x05BE}, {0x060C, 0x060D}, {0x061B, 0x061F}, {0x2010, 0x2027},
    {0x2030, 0x205E}, {0x20A0, 0x20C0}, {0x2100, 0x2101}, {0x2190, 0x23FF}, {0x2500, 0x27BF},
    {0x3001, 0x3003}, {0x3008, 0x3011}, {0xFF01, 0xFF0F}, {0xFF1A, 0xFF20}, {0xFF3B, 0xFF40},
    {0xFF5B, 0xFF65},
};

struct Tables {
    std::array<char16_t, 0x10000> upper;
    std::array<char16_t, 0x10000> lower;
    std::array<uint16_t, 0x10000> ctype1;

    void fill()
    {
        for (uint32_t c = 0; c < 0x10000; ++c) {
            upper[c] = lower[c] = static_cast<char16_t>(c);
            ctype1[c] = 0;
        }
        for (const CaseRange &r : kCaseRanges) {
            for (uint32_t c = r.lo; c <= r.hi; ++c) {
                uint32_t l;
                if (r.kind == Map::Delta)
                    l = c + r.delta;
                else if ((c & 1) == (r.lo & 1u))
                    l = c + 1;
                else
                    continue;
                lower[c] = static_cast<char16_t>(l);
                upper[l] = static_cast<char16_t>(c);
            }
        }
        auto mark = [this](auto &ranges, uint16_t flags) {
            for (const auto &[lo, hi] : ranges)
                for (uint32_t c = lo; c <= hi; ++c)
                    ctype1[c] |= flags;
        };
        mark(kCaselessLetters, C1_ALPHA);
        mark(kLowerWithoutUpper, C1_ALPHA | C1_LOWER);
        mark(kDigits, C1_DIGIT);
        mark(kSpaces, C1_SPACE);
        mark(kBlanks, C1_BLANK);
        mark(kPunctuation, C1_PUNCT);
        for (uint32_t c = 0; c < 0x10000; ++c) {
            if (lower[c] != c)
                ctype1[c] |= C1_UPPER | C1_ALPHA;
            if (upper[c] != c)
                ctype1[c] |= C1_LOWER | C1_ALPHA;
            if (c < 0x20 || (c >= 0x7F && c < 0xA0))
                ctype1[c] |= C1_CNTRL;
            if ((c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f'))
                ctype1[c] |= C1_XDIGIT;
            bool surrogate = c >= 0xD800 && c <= 0xDFFF;
            if (!surrogate && c != 0xFFFE && c != 0xFFFF)
                ctype1[c] |= C1_DEFINED;
        }
    }
};

// 384 KB of zeros in .bss until first use fills them: no allocation that
// could fail, no start-up cost for programs that never ask.
Tables g_tables;
std::once_flag g_tablesFilled;

const Tables &tables()
{
    std::call_once(g_tablesFilled, [] { g_tables.fill(); });
    return g_tables;
}

}  // namespace

char16_t toUpperChar(char16_t c)
{
    if (c < 0x80)
        return (c >= 'a' && c <= 'z') ? static_cast<char16_t>(c - 0x20) : c;
    return tables().upper[c];
}

char16_t toLowerChar(char16_t c)
{
    if (c < 0x80)
        return (c >= 'A' && c <= 'Z') ? static_cast<char16_t>(c + 0x20) : c;
    return tables().lower[c];
}

uint16_t charType1(char16_t c)
{
    return tables().ctype1[c];
}

std::string foldCase(std::string_view s)
{
    std::string out;
    out.reserve(s.size());
    const auto *p = reinterpret_cast<const unsigned char *>(s.data());
    size_t i = 0;
    while (i < s.size()) {
        if (p[i] < 0x80) {
            char c = static_cast<char>(p[i++]);
            out += (c >= 'A' && c <= 'Z') ? static_cast<char>(c + 0x20) : c;
            continue;
        }
        size_t start = i;
        char32_t c = decodeUtf8(p, s.size(), i);
        if (c == kInvalidUtf8)
            out.append(s.substr(start, i - start));  // kept byte for byte
        else
            appendUtf8(out, toLowerCodePoint(c));
    }
    return out;
}

int compareUtf8(std::string_view a, std::string_view b, bool ignoreCase)
{
    const auto *pa = reinterpret_cast<const unsigned char *>(a.data());
    const auto *pb = reinterpret_cast<const unsigned char *>(b.data());
    size_t i = 0, j = 0;
    while (i < a.size() && j < b.size()) {
        char32_t ca, cb;
        if (pa[i] < 0x80 && pb[j] < 0x80) {
            ca = pa[i++];
            cb = pb[j++];
        } else {
            size_t si = i, sj = j;
            ca = decodeUtf8(pa, a.size(), i);
            cb = decodeUtf8(pb, b.size(), j);
            // A bad byte sorts by its own value, above every character.
            if (ca == kInvalidUtf8)
                ca = 0x110000 + pa[si];
            if (cb == kInvalidUtf8)
                cb = 0x110000 + pb[sj];
        }
        if (ignoreCase) {
            ca = toLowerCodePoint(ca);
            cb = toLowerCodePoint(cb);
        }
        if (ca != cb)
            return ca < cb ? -1 : 1;
    }
    if (i < a.size())
        return 1;
    return j < b.size() ? -1 : 0;
}

}  // namespace om::kernel

using namespace om::kernel;

namespace {

// A lone byte (the character forms of CharUpperA and IsCharAlphaA) is a
// character of the multibyte code page, UTF-8: a byte above 0x7F is no
// character by itself, as MultiByteToWideChar would say.
char16_t byteChar(CHAR c)
{
    auto b = static_cast<unsigned char>(c);
    return b < 0x80 ? b : static_cast<char16_t>(kReplacementChar);
}

// Maps a UTF-8 buffer in place.  A character whose mapping has another
// UTF-8 length stays as it is, since the buffer cannot change size.
DWORD mapUtf8InPlace(char *s, size_t n, bool upper)
{
    auto *p = reinterpret_cast<unsigned char *>(s);
    size_t i = 0;
    while (i < n) {
        if (p[i] < 0x80) {
            char16_t c = upper ? toUpperChar(p[i]) : toLowerChar(p[i]);
            p[i++] = static_cast<unsigned char>(c);
            continue;
        }
        size_t start = i;
        char32_t c = decodeUtf8(p, n, i);
        if (c == kInvalidUtf8)
            continue;
        char32_t m = upper ? toUpperCodePoint(c) : toLowerCodePoint(c);
        char enc[4];
        if (m != c && encodeUtf8(m, enc) == i - start)
            memcpy(p + start, enc, i - start);
    }
    return static_cast<DWORD>(n);
}

DWORD mapUtf16InPlace(WCHAR *s, size_t n, bool upper)
{
    for (size_t i = 0; i < n; ++i)
        s[i] = upper ? toUpperChar(s[i]) : toLowerChar(s[i]);
    return static_cast<DWORD>(n);
}

// A "string" whose value fits in 16 bits is a character (Windows' rule for
// CharUpper and CharLower).
template <class P> bool isCharacterForm(P p)
{
    return (reinterpret_cast<uintptr_t>(p) >> 16) == 0;
}

bool isHighSurrogate(WCHAR c)
{
    return c >= 0xD800 && c <= 0xDBFF;
}
bool isLowSurrogate(WCHAR c)
{
    return c >= 0xDC00 && c <= 0xDFFF;
}

}  // namespace

// ---- Char* -----------------------------------------------------------------

extern "C" LPSTR WINAPI CharUpperA(LPSTR lpsz)
{
    if (isCharacterForm(lpsz)) {
        char16_t c = static_cast<char16_t>(reinterpret_cast<uintptr_t>(lpsz) & 0xFF);
        char16_t u = c < 0x80 ? toUpperChar(c) : c;
        return reinterpret_cast<LPSTR>(static_cast<uintptr_t>(u));
    }
    mapUtf8InPlace(lpsz, strlen(lpsz), true);
    return lpsz;
}

extern "C" LPSTR WINAPI CharLowerA(LPSTR lpsz)
{
    if (isCharacterForm(lpsz)) {
        char16_t c = static_cast<char16_t>(reinterpret_cast<uintptr_t>(lpsz) & 0xFF);
        char16_t l = c < 0x80 ? toLowerChar(c) : c;
        return reinterpret_cast<LPSTR>(static_cast<uintptr_t>(l));
    }
    mapUtf8InPlace(lpsz, strlen(lpsz), false);
    return lpsz;
}

extern "C" LPWSTR WINAPI CharUpperW(LPWSTR lpsz)
{
    if (isCharacterForm(lpsz)) {
        auto c = static_cast<char16_t>(reinterpret_cast<uintptr_t>(lpsz));
        return reinterpret_cast<LPWSTR>(static_cast<uintptr_t>(toUpperChar(c)));
    }
    size_t n = 0;
    while (lpsz[n])
        ++n;
    mapUtf16InPlace(lpsz, n, true);
    return lpsz;
}

extern "C" LPWSTR WINAPI CharLowerW(LPWSTR lpsz)
{
    if (isCharacterForm(lpsz)) {
        auto c = static_cast<char16_t>(reinterpret_cast<uintptr_t>(lpsz));
        return reinterpret_cast<LPWSTR>(static_cast<uintptr_t>(toLowerChar(c)));
    }
    size_t n = 0;
    while (lpsz[n])
        ++n;
    mapUtf16InPlace(lpsz, n, false);
    return lpsz;
}

extern "C" DWORD WINAPI CharUpperBuffA(LPSTR lpsz, DWORD cchLength)
{
    return lpsz ? mapUtf8InPlace(lpsz, cchLength, true) : 0;
}

extern "C" DWORD WINAPI CharLowerBuffA(LPSTR lpsz, DWORD cchLength)
{
    return lpsz ? mapUtf8InPlace(lpsz, cchLength, false) : 0;
}

extern "C" DWORD WINAPI CharUpperBuffW(LPWSTR lpsz, DWORD cchLength)
{
    return lpsz ? mapUtf16InPlace(lpsz, cchLength, true) : 0;
}

extern "C" DWORD WINAPI CharLowerBuffW(LPWSTR lpsz, DWORD cchLength)
{
    return lpsz ? mapUtf16InPlace(lpsz, cchLength, false) : 0;
}

// CharNextA steps over one UTF-8 character (a bad byte counts as one);
// at the terminator it stays put, as Windows documents.
extern "C" LPSTR WINAPI CharNextA(LPCSTR lpsz)
{
    if (!lpsz)
        return nullptr;
    if (!*lpsz)
        return const_cast<LPSTR>(lpsz);
    const auto *p = reinterpret_cast<const unsigned char *>(lpsz);
    size_t n = 1;
    while (n < 4 && p[n] != 0)
        ++n;
    size_t i = 0;
    decodeUtf8(p, n, i);
    return const_cast<LPSTR>(lpsz + i);
}

extern "C" LPSTR WINAPI CharPrevA(LPCSTR lpszStart, LPCSTR lpszCurrent)
{
    if (!lpszStart || !lpszCurrent || lpszCurrent <= lpszStart)
        return const_cast<LPSTR>(lpszStart);
    // Back over continuation bytes to a lead byte, then check that the
    // sequence from there really ends at lpszCurrent; otherwise the last
    // byte is a character of its own.
    const char *p = lpszCurrent - 1;
    int back = 0;
    while (p > lpszStart && back < 3 && (static_cast<unsigned char>(*p) & 0xC0) == 0x80) {
        --p;
        ++back;
    }
    size_t i = 0;
    decodeUtf8(reinterpret_cast<const unsigned char *>(p), lpszCurrent - p, i);
    if (p + i == lpszCurrent)
        return const_cast<LPSTR>(p);
    return const_cast<LPSTR>(lpszCurrent - 1);
}

extern "C" LPWSTR WINAPI CharNextW(LPCWSTR lpsz)
{
    if (!lpsz)
        return nullptr;
    if (!*lpsz)
        return const_cast<LPWSTR>(lpsz);
    if (isHighSurrogate(lpsz[0]) && isLowSurrogate(lpsz[1]))
        return const_cast<LPWSTR>(lpsz + 2);
    return const_cast<LPWSTR>(lpsz + 1);
}

extern "C" LPWSTR WINAPI CharPrevW(LPCWSTR lpszStart, LPCWSTR lpszCurrent)
{
    if (!lpszStart || !lpszCurrent || lpszCurrent <= lpszStart)
        return const_cast<LPWSTR>(lpszStart);
    LPCWSTR p = lpszCurrent - 1;
    if (p > lpszStart && isLowSurrogate(*p) && isHighSurrogate(p[-1]))
        --p;
    return const_cast<LPWSTR>(p);
}

// ---- IsChar* ----------------------------------------------------------------

extern "C" BOOL WINAPI IsCharAlphaA(CHAR ch)
{
    return (charType1(byteChar(ch)) & C1_ALPHA) != 0;
}

extern "C" BOOL WINAPI IsCharAlphaW(WCHAR ch)
{
    return (charType1(ch) & C1_ALPHA) != 0;
}

extern "C" BOOL WINAPI IsCharAlphaNumericA(CHAR ch)
{
    return (charType1(byteChar(ch)) & (C1_ALPHA | C1_DIGIT)) != 0;
}

extern "C" BOOL WINAPI IsCharAlphaNumericW(WCHAR ch)
{
    return (charType1(ch) & (C1_ALPHA | C1_DIGIT)) != 0;
}

extern "C" BOOL WINAPI IsCharUpperA(CHAR ch)
{
    return (charType1(byteChar(ch)) & C1_UPPER) != 0;
}

extern "C" BOOL WINAPI IsCharUpperW(WCHAR ch)
{
    return (charType1(ch) & C1_UPPER) != 0;
}

extern "C" BOOL WINAPI IsCharLowerA(CHAR ch)
{
    return (charType1(byteChar(ch)) & C1_LOWER) != 0;
}

extern "C" BOOL WINAPI IsCharLowerW(WCHAR ch)
{
    return (charType1(ch) & C1_LOWER) != 0;
}

// ---- CompareString, LCMapString, GetStringType -------------------------------

namespace {

constexpr DWORD kCompareFlags = NORM_IGNORECASE | NORM_IGNORENONSPACE | NORM_IGNORESYMBOLS |
                                SORT_DIGITSASNUMBERS | LINGUISTIC_IGNORECASE |
                                LINGUISTIC_IGNOREDIACRITIC | SORT_STRINGSORT |
                                NORM_IGNOREKANATYPE | NORM_IGNOREWIDTH | NORM_LINGUISTIC_CASING;

// Characters compared by code point after the requested folding.  This is
// not Windows' linguistic order (which puts punctuation before letters
// whatever their code), but it is a total order that agrees with it on
// letters and digits of one case, which is what programs sort by.
int compareUtf16(std::u16string_view a, std::u16string_view b, DWORD flags)
{
    bool ignoreCase = flags & (NORM_IGNORECASE | LINGUISTIC_IGNORECASE);
    bool ignoreSymbols = flags & NORM_IGNORESYMBOLS;
    size_t i = 0, j = 0;
    for (;;) {
        if (ignoreSymbols) {
            while (i < a.size() && (charType1(a[i]) & (C1_PUNCT | C1_SPACE)))
                ++i;
            while (j < b.size() && (charType1(b[j]) & (C1_PUNCT | C1_SPACE)))
                ++j;
        }
        if (i == a.size() || j == b.size())
            break;
        char16_t ca = a[i++], cb = b[j++];
        if (ignoreCase) {
            ca = toLowerChar(ca);
            cb = toLowerChar(cb);
        }
        if (ca != cb)
            return ca < cb ? CSTR_LESS_THAN : CSTR_GREATER_THAN;
    }
    if (i < a.size())
        return CSTR_GREATER_THAN;
    return j < b.size() ? CSTR_LESS_THAN : CSTR_EQUAL;
}

template <class C> size_t countedLength(const C *s, int cch)
{
    if (cch >= 0)
        return static_cast<size_t>(cch);
    size_t n = 0;
    while (s[n])
        ++n;
    return n;
}

int compareStringCommon(DWORD flags, std::u16string_view a, std::u16string_view b)
{
    if (flags & ~kCompareFlags) {
        SetLastError(ERROR_INVALID_FLAGS);
        return 0;
    }
    return compareUtf16(a, b, flags);
}

// LCMapString's flags: one case mapping, or byte reversal.
bool lcmapFlagsValid(DWORD flags)
{
    DWORD cased = flags & (LCMAP_UPPERCASE | LCMAP_LOWERCASE);
    if (cased == (LCMAP_UPPERCASE | LCMAP_LOWERCASE))
        return false;  // LCMAP_TITLECASE: not supported
    return (flags & ~(LCMAP_UPPERCASE | LCMAP_LOWERCASE | LCMAP_BYTEREV |
                      LCMAP_LINGUISTIC_CASING)) == 0;
}

template <class C> int copyMapped(const std::basic_string<C> &out, C *dest, int cchDest)
{
    if (cchDest == 0)
        return static_cast<int>(out.size());
    if (out.size() > static_cast<size_t>(cchDest)) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    memcpy(dest, out.data(), out.size() * sizeof(C));
    return static_cast<int>(out.size());
}

}  // namespace

extern "C" int WINAPI CompareStringW(LCID Locale, DWORD dwCmpFlags, LPCWSTR lpString1,
                                     int cchCount1, LPCWSTR lpString2, int cchCount2)
{
    (void)Locale;
    if (!lpString1 || !lpString2) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    return compareStringCommon(
        dwCmpFlags, std::u16string_view(lpString1, countedLength(lpString1, cchCount1)),
        std::u16string_view(lpString2, countedLength(lpString2, cchCount2)));
}

extern "C" int WINAPI CompareStringA(LCID Locale, DWORD dwCmpFlags, LPCSTR lpString1,
                                     int cchCount1, LPCSTR lpString2, int cchCount2)
{
    (void)Locale;
    if (!lpString1 || !lpString2) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    return withoutThrowing("CompareStringA", 0, [&] {
        std::u16string a = utf8ToUtf16({lpString1, countedLength(lpString1, cchCount1)});
        std::u16string b = utf8ToUtf16({lpString2, countedLength(lpString2, cchCount2)});
        return compareStringCommon(dwCmpFlags, a, b);
    });
}

extern "C" int WINAPI LCMapStringW(LCID Locale, DWORD dwMapFlags, LPCWSTR lpSrcStr, int cchSrc,
                                   LPWSTR lpDestStr, int cchDest)
{
    (void)Locale;
    if (!lpSrcStr || cchSrc == 0 || cchDest < 0 || (cchDest > 0 && !lpDestStr)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    if (!lcmapFlagsValid(dwMapFlags)) {
        SetLastError(ERROR_INVALID_FLAGS);
        return 0;
    }
    // cchSrc -1 includes the terminator in the source and the result.
    size_t n = cchSrc < 0 ? countedLength(lpSrcStr, -1) + 1 : static_cast<size_t>(cchSrc);
    return withoutThrowing("LCMapStringW", 0, [&] {
        std::u16string out(lpSrcStr, n);
        if (dwMapFlags & (LCMAP_UPPERCASE | LCMAP_LOWERCASE))
            mapUtf16InPlace(out.data(), out.size(), dwMapFlags & LCMAP_UPPERCASE);
        if (dwMapFlags & LCMAP_BYTEREV)
            for (char16_t &c : out)
                c = static_cast<char16_t>((c >> 8) | (c << 8));
        return copyMapped(out, lpDestStr, cchDest);
    });
}

extern "C" int WINAPI LCMapStringA(LCID Locale, DWORD dwMapFlags, LPCSTR lpSrcStr, int cchSrc,
                                   LPSTR lpDestStr, int cchDest)
{
    (void)Locale;
    if (!lpSrcStr || cchSrc == 0 || cchDest < 0 || (cchDest > 0 && !lpDestStr)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    if (!lcmapFlagsValid(dwMapFlags) || (dwMapFlags & LCMAP_BYTEREV)) {
        SetLastError(ERROR_INVALID_FLAGS);
        return 0;
    }
    size_t n = cchSrc < 0 ? strlen(lpSrcStr) + 1 : static_cast<size_t>(cchSrc);
    // Through UTF-16, so that a mapping that changes the UTF-8 length is
    // still applied (the destination is a separate buffer).
    return withoutThrowing("LCMapStringA", 0, [&] {
        std::u16string wide = utf8ToUtf16({lpSrcStr, n});
        if (dwMapFlags & (LCMAP_UPPERCASE | LCMAP_LOWERCASE))
            mapUtf16InPlace(wide.data(), wide.size(), dwMapFlags & LCMAP_UPPERCASE);
        return copyMapped(utf16ToUtf8(wide), lpDestStr, cchDest);
    });
}

namespace {

bool stringTypeArgsValid(DWORD dwInfoType, const void *src, int cchSrc, LPWORD out)
{
    if (!src || !out || cchSrc == 0 || cchSrc < -1) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    if (dwInfoType != CT_CTYPE1 && dwInfoType != CT_CTYPE2 && dwInfoType != CT_CTYPE3) {
        SetLastError(ERROR_INVALID_FLAGS);
        return false;
    }
    return true;
}

// CT_CTYPE2 and CT_CTYPE3 are answered coarsely from the CT_CTYPE1 class:
// enough for the left-to-right / letter / symbol questions programs ask.
WORD stringType(DWORD infoType, char16_t c)
{
    uint16_t t1 = charType1(c);
    if (infoType == CT_CTYPE1)
        return t1;
    if (infoType == CT_CTYPE2) {
        if (t1 & C1_ALPHA)
            return (c >= 0x0590 && c <= 0x08FF) ? C2_RIGHTTOLEFT : C2_LEFTTORIGHT;
        if (t1 & C1_DIGIT)
            return C2_EUROPENUMBER;
        if (t1 & C1_SPACE)
            return C2_WHITESPACE;
        return (t1 & C1_PUNCT) ? C2_OTHERNEUTRAL : C2_NOTAPPLICABLE;
    }
    WORD t3 = 0;
    if (t1 & C1_ALPHA)
        t3 |= C3_ALPHA;
    if (t1 & C1_PUNCT)
        t3 |= C3_SYMBOL;
    if (c >= 0x3041 && c <= 0x309F)
        t3 |= C3_HIRAGANA;
    if (c >= 0x30A0 && c <= 0x30FF)
        t3 |= C3_KATAKANA | C3_FULLWIDTH;
    if ((c >= 0x4E00 && c <= 0x9FFF) || (c >= 0x3400 && c <= 0x4DBF))
        t3 |= C3_IDEOGRAPH | C3_FULLWIDTH;
    if (c >= 0xFF01 && c <= 0xFF5E)
        t3 |= C3_FULLWIDTH;
    if (c >= 0xFF61 && c <= 0xFFDC)
        t3 |= C3_HALFWIDTH;
    if (c >= 0x0300 && c <= 0x036F)
        t3 |= C3_NONSPACING | C3_DIACRITIC;
    return t3;
}

}  // namespace

extern "C" BOOL WINAPI GetStringTypeW(DWORD dwInfoType, LPCWCH lpSrcStr, int cchSrc,
                                      LPWORD lpCharType)
{
    if (!stringTypeArgsValid(dwInfoType, lpSrcStr, cchSrc, lpCharType))
        return FALSE;
    size_t n = countedLength(lpSrcStr, cchSrc);
    for (size_t i = 0; i < n; ++i)
        lpCharType[i] = stringType(dwInfoType, lpSrcStr[i]);
    return TRUE;
}

extern "C" BOOL WINAPI GetStringTypeExW(LCID Locale, DWORD dwInfoType, LPCWSTR lpSrcStr,
                                        int cchSrc, LPWORD lpCharType)
{
    (void)Locale;
    return GetStringTypeW(dwInfoType, lpSrcStr, cchSrc, lpCharType);
}

// One type per byte: every byte of a UTF-8 sequence gets its character's
// type; a bad byte gets the type of U+FFFD.
extern "C" BOOL WINAPI GetStringTypeA(LCID Locale, DWORD dwInfoType, LPCSTR lpSrcStr, int cchSrc,
                                      LPWORD lpCharType)
{
    (void)Locale;
    if (!stringTypeArgsValid(dwInfoType, lpSrcStr, cchSrc, lpCharType))
        return FALSE;
    size_t n = countedLength(lpSrcStr, cchSrc);
    const auto *p = reinterpret_cast<const unsigned char *>(lpSrcStr);
    size_t i = 0;
    while (i < n) {
        size_t start = i;
        char32_t c = decodeUtf8(p, n, i);
        if (c == kInvalidUtf8)
            c = kReplacementChar;
        WORD t = c < 0x10000 ? stringType(dwInfoType, static_cast<char16_t>(c))
                             : (dwInfoType == CT_CTYPE1 ? C1_DEFINED : 0);
        for (size_t k = start; k < i; ++k)
            lpCharType[k] = t;
    }
    return TRUE;
}

extern "C" BOOL WINAPI GetStringTypeExA(LCID Locale, DWORD dwInfoType, LPCSTR lpSrcStr,
                                        int cchSrc, LPWORD lpCharType)
{
    return GetStringTypeA(Locale, dwInfoType, lpSrcStr, cchSrc, lpCharType);
}

// ---- OEM conversions and code-page stepping ---------------------------------------
//
// The OEM code page is UTF-8, like the ANSI one, so the A forms copy and
// the W forms convert.

extern "C" BOOL WINAPI CharToOemBuffA(LPCSTR lpszSrc, LPSTR lpszDst, DWORD cchDstLength)
{
    if (!lpszSrc || !lpszDst) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    memmove(lpszDst, lpszSrc, cchDstLength);
    return TRUE;
}

extern "C" BOOL WINAPI OemToCharBuffA(LPCSTR lpszSrc, LPSTR lpszDst, DWORD cchDstLength)
{
    return CharToOemBuffA(lpszSrc, lpszDst, cchDstLength);
}

extern "C" BOOL WINAPI CharToOemA(LPCSTR pSrc, LPSTR pDst)
{
    if (!pSrc || !pDst) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    memmove(pDst, pSrc, strlen(pSrc) + 1);
    return TRUE;
}

extern "C" BOOL WINAPI OemToCharA(LPCSTR pSrc, LPSTR pDst)
{
    return CharToOemA(pSrc, pDst);
}

// The destination's size is not given: like Windows, these trust the
// caller to have made it large enough.
extern "C" BOOL WINAPI CharToOemBuffW(LPCWSTR lpszSrc, LPSTR lpszDst, DWORD cchDstLength)
{
    if (!lpszSrc || !lpszDst) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    return withoutThrowing("CharToOemBuffW", FALSE, [&] {
        std::string s = utf16ToUtf8({lpszSrc, cchDstLength});
        memcpy(lpszDst, s.data(), s.size() < cchDstLength ? s.size() : cchDstLength);
        return TRUE;
    });
}

extern "C" BOOL WINAPI CharToOemW(LPCWSTR pSrc, LPSTR pDst)
{
    if (!pSrc || !pDst) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    return withoutThrowing("CharToOemW", FALSE, [&] {
        std::string s = utf16ToUtf8(pSrc);
        memcpy(pDst, s.c_str(), s.size() + 1);
        return TRUE;
    });
}

extern "C" BOOL WINAPI OemToCharBuffW(LPCSTR lpszSrc, LPWSTR lpszDst, DWORD cchDstLength)
{
    if (!lpszSrc || !lpszDst) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    return withoutThrowing("OemToCharBuffW", FALSE, [&] {
        std::u16string w = utf8ToUtf16({lpszSrc, cchDstLength});
        size_t n = w.size() < cchDstLength ? w.size() : cchDstLength;
        memcpy(lpszDst, w.data(), n * sizeof(WCHAR));
        return TRUE;
    });
}

extern "C" BOOL WINAPI OemToCharW(LPCSTR pSrc, LPWSTR pDst)
{
    if (!pSrc || !pDst) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    return withoutThrowing("OemToCharW", FALSE, [&] {
        std::u16string w = utf8ToUtf16(pSrc);
        memcpy(pDst, w.c_str(), (w.size() + 1) * sizeof(WCHAR));
        return TRUE;
    });
}

namespace {

bool isSingleByteCodePage(WORD codePage)
{
    return codePage == 1252 || codePage == 28591;
}

}  // namespace

extern "C" LPSTR WINAPI CharNextExA(WORD CodePage, LPCSTR lpCurrentChar, DWORD dwFlags)
{
    (void)dwFlags;
    if (lpCurrentChar && *lpCurrentChar && isSingleByteCodePage(CodePage))
        return const_cast<LPSTR>(lpCurrentChar + 1);
    return CharNextA(lpCurrentChar);
}

extern "C" LPSTR WINAPI CharPrevExA(WORD CodePage, LPCSTR lpStart, LPCSTR lpCurrentChar,
                                   DWORD dwFlags)
{
    (void)dwFlags;
    if (lpStart && lpCurrentChar > lpStart && isSingleByteCodePage(CodePage))
        return const_cast<LPSTR>(lpCurrentChar - 1);
    return CharPrevA(lpStart, lpCurrentChar);
}
