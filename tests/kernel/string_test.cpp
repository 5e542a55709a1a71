// Strings: the UTF-8/UTF-16 and Latin-1 conversions (tables of inputs,
// size queries, bad input, small buffers), wsprintf against a table, the
// lstr* and Char* functions, NLS comparison and mapping, and the helpers
// the other layers use.
#include "kernel/omstring.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace std::string_literals;

// ---- MultiByteToWideChar ------------------------------------------------------

struct ToWideCase {
    const char *name;
    UINT codePage;
    DWORD flags;
    std::string input;  // converted with its explicit length
    std::u16string expected;
    DWORD error;  // when not 0, the call fails with this error
};

const ToWideCase kToWide[] = {
    {"ascii", CP_UTF8, 0, "hello", u"hello", 0},
    {"acp is utf8", CP_ACP, 0, "h\xC3\xA9llo", u"h\u00E9llo", 0},
    {"accented", CP_UTF8, 0, "\xC3\x80\xC3\xA9\xC3\xBF", u"\u00C0\u00E9\u00FF", 0},
    {"cjk", CP_UTF8, 0, "\xE6\x97\xA5\xE6\x9C\xAC", u"\u65E5\u672C", 0},
    {"emoji is a surrogate pair", CP_UTF8, 0, "a\xF0\x9F\x98\x80z", u"a\xD83D\xDE00z", 0},
    {"embedded nul kept", CP_UTF8, 0, "a\0b"s, u"a\0b"s, 0},
    {"bad byte replaced", CP_UTF8, 0, "a\xFF" "b", u"a\uFFFDb", 0},
    {"bad byte refused", CP_UTF8, MB_ERR_INVALID_CHARS, "a\xFF" "b", u"", ERROR_NO_UNICODE_TRANSLATION},
    {"truncated sequence is one replacement", CP_UTF8, 0, "a\xE6\x97", u"a\uFFFD", 0},
    {"overlong form", CP_UTF8, 0, "\xC0\xAF", u"\uFFFD\uFFFD", 0},
    {"encoded surrogate", CP_UTF8, 0, "\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD", 0},
    {"above U+10FFFF", CP_UTF8, MB_ERR_INVALID_CHARS, "\xF4\x90\x80\x80", u"", ERROR_NO_UNICODE_TRANSLATION},
    {"latin1 1252", 1252, 0, "caf\xE9 \x80", u"caf\u00E9 \u0080", 0},
    {"latin1 28591", 28591, 0, "\xFF", u"\u00FF", 0},
    {"legacy flags with acp", CP_ACP, MB_PRECOMPOSED, "x", u"x", 0},
    {"legacy flags with explicit utf8", CP_UTF8, MB_PRECOMPOSED, "x", u"", ERROR_INVALID_FLAGS},
    {"unknown code page", 1234, 0, "x", u"", ERROR_INVALID_PARAMETER},
};

TEST(Conversions, MultiByteToWideCharTable)
{
    for (const ToWideCase &c : kToWide) {
        SCOPED_TRACE(c.name);
        int len = static_cast<int>(c.input.size());
        SetLastError(0);
        int needed = MultiByteToWideChar(c.codePage, c.flags, c.input.data(), len, nullptr, 0);
        if (c.error) {
            EXPECT_EQ(needed, 0);
            EXPECT_EQ(GetLastError(), c.error);
            continue;
        }
        ASSERT_EQ(needed, static_cast<int>(c.expected.size())) << "size query";
        std::u16string out(needed, u'#');
        EXPECT_EQ(MultiByteToWideChar(c.codePage, c.flags, c.input.data(), len, out.data(),
                                      needed),
                  needed);
        EXPECT_EQ(out, c.expected);
    }
}

TEST(Conversions, MultiByteToWideCharTerminatorAndBufferRules)
{
    WCHAR buf[8];
    // -1: the terminator is converted and counted.
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "ab", -1, nullptr, 0), 3);
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "ab", -1, buf, 8), 3);
    EXPECT_EQ(std::u16string(buf), u"ab");
    // Too small, also when only the second half of a pair would not fit.
    SetLastError(0);
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "abc", -1, buf, 3), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    SetLastError(0);
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "\xF0\x9F\x98\x80", 4, buf, 1), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    // Bad arguments.
    for (auto call : std::vector<std::function<int()>>{
             [&] { return MultiByteToWideChar(CP_UTF8, 0, "ab", 0, buf, 8); },
             [&] { return MultiByteToWideChar(CP_UTF8, 0, nullptr, 2, buf, 8); },
             [&] { return MultiByteToWideChar(CP_UTF8, 0, "ab", -2, buf, 8); },
             [&] { return MultiByteToWideChar(CP_UTF8, 0, "ab", 2, nullptr, 8); },
             [&] { return MultiByteToWideChar(CP_UTF8, 0, "ab", 2, buf, -1); }}) {
        SetLastError(0);
        EXPECT_EQ(call(), 0);
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    }
}

// ---- WideCharToMultiByte ------------------------------------------------------

struct ToMultiCase {
    const char *name;
    UINT codePage;
    DWORD flags;
    std::u16string input;
    const char *defaultChar;
    std::string expected;
    BOOL usedDefault;
    DWORD error;
};

const ToMultiCase kToMulti[] = {
    {"ascii", CP_UTF8, 0, u"hello", nullptr, "hello", FALSE, 0},
    {"accented", CP_UTF8, 0, u"\u00E9t\u00E9", nullptr, "\xC3\xA9t\xC3\xA9", FALSE, 0},
    {"cjk", CP_UTF8, 0, u"\u65E5", nullptr, "\xE6\x97\xA5", FALSE, 0},
    {"surrogate pair", CP_UTF8, 0, u"\xD83D\xDE00", nullptr, "\xF0\x9F\x98\x80", FALSE, 0},
    {"lone surrogate replaced", CP_ACP, 0, u"a\xD800" u"b", nullptr, "a\xEF\xBF\xBD" "b", TRUE, 0},
    {"lone surrogate refused", CP_UTF8, WC_ERR_INVALID_CHARS, u"a\xDC00", nullptr, "", FALSE,
     ERROR_NO_UNICODE_TRANSLATION},
    {"latin1 fits", 28591, 0, u"caf\u00E9", nullptr, "caf\xE9", FALSE, 0},
    {"latin1 default char", 1252, 0, u"5\u20AC", nullptr, "5?", TRUE, 0},
    {"latin1 own default", 1252, 0, u"\u65E5", "*", "*", TRUE, 0},
    {"latin1 best fit", 1252, 0, u"\u0100\u017D\u2019", nullptr, "AZ'", FALSE, 0},
    {"best fit refused", 1252, WC_NO_BEST_FIT_CHARS, u"\u0100", nullptr, "?", TRUE, 0},
    {"pair is one default", 28591, 0, u"\xD83D\xDE00", nullptr, "?", TRUE, 0},
    {"utf8 with a default char", CP_UTF8, 0, u"x", "?", "", FALSE, ERROR_INVALID_PARAMETER},
    {"error flag on latin1", 1252, WC_ERR_INVALID_CHARS, u"x", nullptr, "", FALSE,
     ERROR_INVALID_FLAGS},
};

TEST(Conversions, WideCharToMultiByteTable)
{
    for (const ToMultiCase &c : kToMulti) {
        SCOPED_TRACE(c.name);
        int len = static_cast<int>(c.input.size());
        BOOL used = 99;
        char out[32];
        SetLastError(0);
        int n = WideCharToMultiByte(c.codePage, c.flags, c.input.data(), len, out, sizeof out,
                                    c.defaultChar, c.codePage == CP_UTF8 && !c.defaultChar
                                                       ? nullptr
                                                       : &used);
        if (c.error) {
            EXPECT_EQ(n, 0);
            EXPECT_EQ(GetLastError(), c.error);
            continue;
        }
        EXPECT_EQ(std::string(out, n), c.expected);
        EXPECT_EQ(WideCharToMultiByte(c.codePage, c.flags, c.input.data(), len, nullptr, 0,
                                      c.defaultChar, nullptr),
                  n)
            << "size query";
        if (c.codePage != CP_UTF8) {
            EXPECT_EQ(used, c.usedDefault);
        }
    }
}

TEST(Conversions, WideCharToMultiByteNeverWritesHalfACharacter)
{
    char buf[3] = {'#', '#', '#'};
    SetLastError(0);
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, u"a\u65E5", 2, buf, 3, nullptr, nullptr), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, u"a\u65E5", -1, nullptr, 0, nullptr, nullptr), 5);
}

TEST(Conversions, RoundTripsAndMallocHelpers)
{
    const char *samples[] = {"", "plain", "\xC3\xA9t\xC3\xA9", "\xE6\x97\xA5\xE6\x9C\xAC",
                             "mix \xF0\x9F\x98\x80 end"};
    for (const char *s : samples) {
        SCOPED_TRACE(s);
        WCHAR *wide = _omWideStringFromMBString(s);
        ASSERT_NE(wide, nullptr);
        char *back = _omMBStringFromWideString(wide);
        ASSERT_NE(back, nullptr);
        EXPECT_STREQ(back, s);
        // The helpers agree with the Windows functions.
        WCHAR buf[64];
        int n = MultiByteToWideChar(CP_ACP, 0, s, -1, buf, 64);
        EXPECT_EQ(std::u16string(buf, n - 1), std::u16string(wide));
        free(wide);
        free(back);
    }
    EXPECT_EQ(_omWideStringFromMBString(nullptr), nullptr);
    EXPECT_EQ(_omMBStringFromWideString(nullptr), nullptr);
}

TEST(Conversions, CodePageInformation)
{
    EXPECT_EQ(GetACP(), 65001u);
    CPINFO info;
    ASSERT_TRUE(GetCPInfo(CP_ACP, &info));
    EXPECT_EQ(info.MaxCharSize, 4u);
    EXPECT_EQ(info.DefaultChar[0], '?');
    ASSERT_TRUE(GetCPInfo(1252, &info));
    EXPECT_EQ(info.MaxCharSize, 1u);
    CPINFOEXW ex;
    ASSERT_TRUE(GetCPInfoExW(CP_OEMCP, 0, &ex));
    EXPECT_EQ(ex.CodePage, 65001u);
    SetLastError(0);
    EXPECT_FALSE(GetCPInfo(1234, &info));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_TRUE(IsValidCodePage(65001));
    EXPECT_TRUE(IsValidCodePage(28591));
    EXPECT_FALSE(IsValidCodePage(CP_ACP));
    EXPECT_FALSE(IsDBCSLeadByte(0xE6));
}

// ---- wsprintf --------------------------------------------------------------------

struct FormatCase {
    const char *expected;
    std::function<int(char *)> run;
};

TEST(Wsprintf, NarrowTable)
{
    const FormatCase cases[] = {
        {"42", [](char *b) { return wsprintfA(b, "%d", 42); }},
        {"-7", [](char *b) { return wsprintfA(b, "%i", -7); }},
        {"-2147483648", [](char *b) { return wsprintfA(b, "%ld", static_cast<LONG>(MINLONG)); }},
        {"-1 next", [](char *b) { return wsprintfA(b, "%ld %s", LONG{-1}, "next"); }},
        {"4294967295", [](char *b) { return wsprintfA(b, "%lu", DWORD{0xFFFFFFFF}); }},
        {"4294967295", [](char *b) { return wsprintfA(b, "%u", -1); }},
        {"0000BEEF", [](char *b) { return wsprintfA(b, "%08lX", DWORD{0xBEEF}); }},
        {"0xff 0XFF 0", [](char *b) { return wsprintfA(b, "%#x %#X %#x", 255, 255, 0); }},
        {"-9000000000", [](char *b) { return wsprintfA(b, "%I64d", LONGLONG{-9000000000LL}); }},
        {"18446744073709551615",
         [](char *b) { return wsprintfA(b, "%I64u", ULONGLONG{~0ULL}); }},
        {"-5 x", [](char *b) { return wsprintfA(b, "%lld %s", -5LL, "x"); }},
        {"123456789", [](char *b) { return wsprintfA(b, "%Ix", UINT_PTR{0x123456789ULL}); }},
        {"4464 1", [](char *b) { return wsprintfA(b, "%hd %hu", 70000, 65537); }},
        {"ab   |", [](char *b) { return wsprintfA(b, "%-5s|", "ab"); }},
        {"   ab|", [](char *b) { return wsprintfA(b, "%5s|", "ab"); }},
        {"ab", [](char *b) { return wsprintfA(b, "%.2s", "abcdef"); }},
        {"   42|42   |-0042", [](char *b) { return wsprintfA(b, "%5d|%-5d|%05d", 42, 42, -42); }},
        {"007", [](char *b) { return wsprintfA(b, "%.3d", 7); }},
        {"x", [](char *b) { return wsprintfA(b, "%c", 'x'); }},
        {"100%", [](char *b) { return wsprintfA(b, "%d%%", 100); }},
        {"wide \xC3\xA9", [](char *b) { return wsprintfA(b, "%S", u"wide \u00E9"); }},
        {"w", [](char *b) { return wsprintfA(b, "%ls", u"w"); }},
        {"\xE6\x97\xA5", [](char *b) { return wsprintfA(b, "%lc", u'\u65E5'); }},
        {"(null)", [](char *b) { return wsprintfA(b, "%s", static_cast<const char *>(nullptr)); }},
        {"0000000000001234",
         [](char *b) { return wsprintfA(b, "%p", reinterpret_cast<void *>(0x1234)); }},
        {"y", [](char *b) { return wsprintfA(b, "%y"); }},
        {"k=v", [](char *b) { return wsprintfA(b, "%s=%s", "k", "v"); }},
    };
    for (const FormatCase &c : cases) {
        SCOPED_TRACE(c.expected);
        char buf[1100];
        memset(buf, '#', sizeof buf);
        int n = c.run(buf);
        EXPECT_STREQ(buf, c.expected);
        EXPECT_EQ(n, static_cast<int>(strlen(c.expected)));
    }
}

TEST(Wsprintf, WideForms)
{
    WCHAR buf[64];
    EXPECT_EQ(wsprintfW(buf, u"%s|%S|%d|%c|%hs", u"w\u00E9", "n\xC3\xA9", -3, u'\u65E5', "h"), 12);
    EXPECT_EQ(std::u16string(buf), u"w\u00E9|n\u00E9|-3|\u65E5|h");
}

TEST(Wsprintf, OutputStopsAt1024Characters)
{
    std::string longText(2000, 'a');
    std::vector<char> buf(4096, '#');
    int n = wsprintfA(buf.data(), "%s%s", longText.c_str(), "tail");
    EXPECT_EQ(n, 1023);
    EXPECT_EQ(strlen(buf.data()), 1023u);
    EXPECT_EQ(buf[1024], '#') << "nothing written past the limit";
}

// ---- lstr* --------------------------------------------------------------------------

TEST(Lstr, CopyConcatenateAndLengths)
{
    char buf[16];
    EXPECT_EQ(lstrlenA(nullptr), 0);
    EXPECT_EQ(lstrlenW(nullptr), 0);
    EXPECT_EQ(lstrlenW(u"abc"), 3);
    EXPECT_EQ(lstrcpyA(buf, "abc"), buf);
    EXPECT_STREQ(lstrcatA(buf, "de"), "abcde");
    EXPECT_EQ(lstrcpyA(buf, nullptr), nullptr);

    struct {
        const char *src;
        int max;
        const char *expected;
    } cases[] = {
        {"hello", 3, "he"},
        {"hello", 6, "hello"},
        {"hello", 1, ""},
        {"h\xC3\xA9llo", 3, "h"},  // no half of the two-byte character
        {"h\xC3\xA9llo", 4, "h\xC3\xA9"},
        {"\xE6\x97\xA5x", 3, ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.src);
        memset(buf, '#', sizeof buf);
        EXPECT_EQ(lstrcpynA(buf, c.src, c.max), buf);
        EXPECT_STREQ(buf, c.expected);
    }
    WCHAR wbuf[8];
    lstrcpynW(wbuf, u"abcdef", 4);
    EXPECT_EQ(std::u16string(wbuf), u"abc");
    EXPECT_EQ(std::u16string(lstrcatW(wbuf, u"Z")), u"abcZ");
}

TEST(Lstr, ComparisonsAreSignedAndFoldCase)
{
    EXPECT_EQ(lstrcmpA("abc", "abc"), 0);
    EXPECT_LT(lstrcmpA("abc", "abd"), 0);
    EXPECT_GT(lstrcmpA("abd", "abc"), 0);
    EXPECT_GT(lstrcmpA("a", "B"), 0) << "case-sensitive";
    EXPECT_EQ(lstrcmpiA("HeLLo", "hello"), 0);
    EXPECT_LT(lstrcmpiA("a", "B"), 0);
    EXPECT_LT(lstrcmpiA("_", "a"), 0) << "'_' sorts before letters";
    EXPECT_EQ(lstrcmpiA("\xC3\x89" "COLE", "\xC3\xA9" "cole"), 0) << "non-ASCII letters fold";
    EXPECT_EQ(lstrcmpiW(u"\u00C4B", u"\u00E4b"), 0);
    EXPECT_LT(lstrcmpW(u"a", u"b"), 0);
    EXPECT_EQ(lstrcmpA(nullptr, nullptr), 0);
    EXPECT_LT(lstrcmpiA(nullptr, "a"), 0);
    EXPECT_GT(lstrcmpiW(u"a", nullptr), 0);
}

// ---- Char* and character classes ------------------------------------------------------

TEST(CharFunctions, UpperAndLowerInBothForms)
{
    EXPECT_EQ(CharUpperA(reinterpret_cast<LPSTR>(ULONG_PTR{'a'})), reinterpret_cast<LPSTR>('A'));
    EXPECT_EQ(CharLowerA(reinterpret_cast<LPSTR>(ULONG_PTR{'Q'})), reinterpret_cast<LPSTR>('q'));
    EXPECT_EQ(CharUpperW(reinterpret_cast<LPWSTR>(ULONG_PTR{0xE9})),
              reinterpret_cast<LPWSTR>(ULONG_PTR{0xC9}));

    char a[] = "h\xC3\xA9llo w\xC3\xB6rld \xC3\xBF";
    EXPECT_EQ(CharUpperA(a), a);
    EXPECT_STREQ(a, "H\xC3\x89LLO W\xC3\x96RLD \xC5\xB8");
    CharLowerA(a);
    EXPECT_STREQ(a, "h\xC3\xA9llo w\xC3\xB6rld \xC3\xBF");

    WCHAR w[] = u"\u00C0\u00C9 \u03A3\u0391 \u041F\u0440\u0438 \u0100 \uFF21";
    CharLowerW(w);
    EXPECT_EQ(std::u16string(w), u"\u00E0\u00E9 \u03C3\u03B1 \u043F\u0440\u0438 \u0101 \uFF41");
    CharUpperW(w);
    EXPECT_EQ(std::u16string(w), u"\u00C0\u00C9 \u03A3\u0391 \u041F\u0420\u0418 \u0100 \uFF21");

    char part[] = "abcdef";
    EXPECT_EQ(CharUpperBuffA(part, 3), 3u);
    EXPECT_STREQ(part, "ABCdef");
    WCHAR wpart[] = u"ABCDEF";
    EXPECT_EQ(CharLowerBuffW(wpart, 2), 2u);
    EXPECT_EQ(std::u16string(wpart), u"abCDEF");
}

TEST(CharFunctions, NextAndPrevStepOverWholeCharacters)
{
    const char *s = "a\xC3\xA9\xE6\x97\xA5\xF0\x9F\x98\x80";
    const int steps[] = {1, 2, 3, 4};
    const char *p = s;
    for (int step : steps) {
        const char *next = CharNextA(p);
        EXPECT_EQ(next - p, step);
        EXPECT_EQ(CharPrevA(s, next), p);
        p = next;
    }
    EXPECT_EQ(CharNextA(p), p) << "stays on the terminator";
    EXPECT_EQ(CharPrevA(s, s), s);
    const char *bad = "a\x80\x80";
    EXPECT_EQ(CharNextA(bad + 1), bad + 2) << "a stray byte is one character";
    EXPECT_EQ(CharPrevA(bad, bad + 3), bad + 2);

    const WCHAR *w = u"a\xD83D\xDE00" u"b";
    EXPECT_EQ(CharNextW(w + 1), w + 3);
    EXPECT_EQ(CharPrevW(w, w + 3), w + 1);
    const char *latin = "\xC3\xA9";
    EXPECT_EQ(CharNextExA(1252, latin, 0), latin + 1) << "single-byte code page";
    EXPECT_EQ(CharNextExA(CP_ACP, latin, 0), latin + 2);
}

TEST(CharFunctions, ClassesAgreeWithGetStringType)
{
    struct {
        WCHAR c;
        BOOL alpha, alnum, upper, lower;
    } cases[] = {
        {u'A', 1, 1, 1, 0},      {u'z', 1, 1, 0, 1},      {u'5', 0, 1, 0, 0},
        {u' ', 0, 0, 0, 0},      {u'\u00E9', 1, 1, 0, 1}, {u'\u00C9', 1, 1, 1, 0},
        {u'\u65E5', 1, 1, 0, 0}, {u'\u00D7', 0, 0, 0, 0}, {u'\u0436', 1, 1, 0, 1},
        {u'\u00DF', 1, 1, 0, 1},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(static_cast<unsigned>(c.c));
        EXPECT_EQ(IsCharAlphaW(c.c), c.alpha);
        EXPECT_EQ(IsCharAlphaNumericW(c.c), c.alnum);
        EXPECT_EQ(IsCharUpperW(c.c), c.upper);
        EXPECT_EQ(IsCharLowerW(c.c), c.lower);
        WORD type = 0;
        ASSERT_TRUE(GetStringTypeW(CT_CTYPE1, &c.c, 1, &type));
        EXPECT_EQ((type & C1_ALPHA) != 0, c.alpha != 0);
        EXPECT_EQ((type & C1_UPPER) != 0, c.upper != 0);
    }
    EXPECT_TRUE(IsCharAlphaA('q'));
    EXPECT_FALSE(IsCharAlphaA(static_cast<CHAR>(0xE9))) << "a lone byte of UTF-8 is no letter";

    WORD types[4];
    ASSERT_TRUE(GetStringTypeW(CT_CTYPE1, u"A1 ,", 4, types));
    EXPECT_EQ(types[0], C1_UPPER | C1_ALPHA | C1_XDIGIT | C1_DEFINED);
    EXPECT_EQ(types[1], C1_DIGIT | C1_XDIGIT | C1_DEFINED);
    EXPECT_EQ(types[2], C1_SPACE | C1_BLANK | C1_DEFINED);
    EXPECT_EQ(types[3], C1_PUNCT | C1_DEFINED);
    // Each byte of a UTF-8 character gets the character's type.
    ASSERT_TRUE(GetStringTypeA(LOCALE_USER_DEFAULT, CT_CTYPE1, "\xC3\xA9!", 3, types));
    EXPECT_EQ(types[0], types[1]);
    EXPECT_TRUE(types[0] & C1_LOWER);
    EXPECT_TRUE(types[2] & C1_PUNCT);
}

TEST(Nls, CompareStringAndLCMapString)
{
    EXPECT_EQ(CompareStringA(LOCALE_USER_DEFAULT, NORM_IGNORECASE, "Hello", -1, "hELLO", -1),
              CSTR_EQUAL);
    EXPECT_EQ(CompareStringA(LOCALE_USER_DEFAULT, 0, "abc", -1, "abd", -1), CSTR_LESS_THAN);
    EXPECT_EQ(CompareStringW(LOCALE_USER_DEFAULT, 0, u"abcX", 3, u"abcY", 3), CSTR_EQUAL);
    EXPECT_EQ(CompareStringW(LOCALE_USER_DEFAULT, 0, u"ab", -1, u"a", -1), CSTR_GREATER_THAN);
    EXPECT_EQ(CompareStringA(LOCALE_USER_DEFAULT, NORM_IGNORESYMBOLS, "a-b c", -1, "abc", -1),
              CSTR_EQUAL);
    SetLastError(0);
    EXPECT_EQ(CompareStringA(LOCALE_USER_DEFAULT, 0x40000000, "a", -1, "a", -1), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_FLAGS));

    WCHAR w[8];
    EXPECT_EQ(LCMapStringW(LOCALE_USER_DEFAULT, LCMAP_UPPERCASE, u"ab\u00E9", -1, nullptr, 0), 4);
    EXPECT_EQ(LCMapStringW(LOCALE_USER_DEFAULT, LCMAP_UPPERCASE, u"ab\u00E9", -1, w, 8), 4);
    EXPECT_EQ(std::u16string(w), u"AB\u00C9");
    char a[8];
    EXPECT_EQ(LCMapStringA(LOCALE_USER_DEFAULT, LCMAP_LOWERCASE, "\xC3\x89T\xC3\x89", 5, a, 8), 5);
    EXPECT_EQ(std::string(a, 5), "\xC3\xA9t\xC3\xA9");
    SetLastError(0);
    EXPECT_EQ(LCMapStringA(LOCALE_USER_DEFAULT, LCMAP_LOWERCASE, "abc", 3, a, 2), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    SetLastError(0);
    EXPECT_EQ(LCMapStringW(LOCALE_USER_DEFAULT, LCMAP_UPPERCASE | LCMAP_LOWERCASE, u"a", 1, w, 8),
              0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_FLAGS));
}

// ---- Helpers of the other layers ---------------------------------------------------------

TEST(StringHelpers, StripMnemonic)
{
    struct {
        const char *text;
        const char *stripped;
        int mnemonic;
    } cases[] = {
        {"&File", "File", 'F'},
        {"Save &As...", "Save As...", 'A'},
        {"Fish && Chips", "Fish & Chips", 0},
        {"&&&x", "&x", 'x'},
        {"a&b&c", "abc", 'b'},
        {"end&", "end", 0},
        {"&\xC3\x84rger", "\xC3\x84rger", 0xC4},
        {"", "", 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text);
        char out[64];
        memset(out, '#', sizeof out);
        EXPECT_EQ(omStripMnemonic(c.text, out), c.mnemonic);
        EXPECT_STREQ(out, c.stripped);
        char inPlace[64];
        strcpy(inPlace, c.text);
        EXPECT_EQ(omStripMnemonic(inPlace, inPlace), c.mnemonic);
        EXPECT_STREQ(inPlace, c.stripped);
    }
    char out[4];
    EXPECT_EQ(omStripMnemonic(nullptr, out), 0);
    EXPECT_STREQ(out, "");
}

TEST(StringHelpers, CaselessComparisonsAndBasename)
{
    EXPECT_EQ(_qel_strcasecmp("ABC", "abc"), 0);
    EXPECT_LT(_qel_strcasecmp("abc", "abd"), 0);
    EXPECT_EQ(_qel_strcasecmp(nullptr, nullptr), 0);
    EXPECT_LT(_qel_strcasecmp(nullptr, "a"), 0);
    EXPECT_NE(_qel_strcasecmp("\xC3\x89", "\xC3\xA9"), 0) << "ASCII only";
    EXPECT_EQ(omStrcmpCaseless("\xC3\x89" "cole", "\xC3\xA9" "COLE"), 0);
    EXPECT_GT(omStrcmpCaseless("b", "A"), 0);

    EXPECT_STREQ(_qelBasename("/usr/lib/x.so"), "x.so");
    EXPECT_STREQ(_qelBasename("C:\\dir\\file.txt"), "file.txt");
    EXPECT_STREQ(_qelBasename("plain"), "plain");
    EXPECT_STREQ(_qelBasename("dir/"), "");
    EXPECT_EQ(_qelBasename(nullptr), nullptr);
}

TEST(StringHelpers, LstrtokKeepsItsPlacePerThread)
{
    char text[] = "a, b,,c";
    std::vector<std::string> tokens;
    tokens.push_back(lstrtok(text, ", "));
    // Another thread tokenizing meanwhile does not disturb this one.
    std::thread([] {
        char other[] = "x y";
        EXPECT_STREQ(lstrtok(other, " "), "x");
        EXPECT_STREQ(lstrtok(nullptr, " "), "y");
    }).join();
    while (char *t = lstrtok(nullptr, ", "))
        tokens.push_back(t);
    EXPECT_EQ(tokens, (std::vector<std::string>{"a", "b", "c"}));
}

}  // namespace
