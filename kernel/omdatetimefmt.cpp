// Windows date and time pictures: the locale's pictures made from the C
// library's strftime formats, and GetDateFormat/GetTimeFormat (d, M, y, g,
// h, H, m, s, t and quoted text) with the names omlocaleinfo.cpp serves.
#include "omlocale.h"

#include "kernel/omdiag.h"

#include <cstdio>
#include <langinfo.h>
#include <cstring>
#include <new>
#include <string>
#include <vector>

namespace om::kernel {
namespace {

// strftime conversions and the Windows picture fields they become.
struct StrftimeField {
    char conversion;
    const char *padded;
    const char *unpadded;  // with the "-" flag
};

constexpr StrftimeField kStrftimeFields[] = {
    {'d', "dd", "d"},     {'e', "d", "d"},          {'m', "MM", "M"},      {'b', "MMM", "MMM"},
    {'h', "MMM", "MMM"},  {'B', "MMMM", "MMMM"},    {'a', "ddd", "ddd"},   {'A', "dddd", "dddd"},
    {'Y', "yyyy", "yyyy"}, {'y', "yy", "yy"},       {'H', "HH", "H"},      {'k', "H", "H"},
    {'I', "hh", "h"},     {'l', "h", "h"},          {'M', "mm", "m"},      {'S', "ss", "s"},
    {'p', "tt", "tt"},    {'P', "tt", "tt"},        {'D', "MM/dd/yy", "MM/dd/yy"},
    {'F', "yyyy-MM-dd", "yyyy-MM-dd"},              {'T', "HH:mm:ss", "HH:mm:ss"},
    {'R', "HH:mm", "HH:mm"},
};

// A strftime format as a Windows picture; literal text is quoted.
std::string pictureFromStrftime(const char *fmt, locale_t loc)
{
    std::string out, literal;
    auto flushLiteral = [&] {
        bool needsQuotes = false;
        for (char c : literal)
            needsQuotes |= std::strchr("dMyghHmstg'", c) != nullptr;
        if (needsQuotes) {
            out += '\'';
            for (char c : literal)
                out += c == '\'' ? std::string("''") : std::string(1, c);
            out += '\'';
        } else {
            out += literal;
        }
        literal.clear();
    };
    for (const char *p = fmt; *p; ++p) {
        if (*p != '%') {
            literal += *p;
            continue;
        }
        ++p;
        bool noPad = false;
        while (*p == '-' || *p == '_' || *p == '0' || *p == '^' || *p == '#' || *p == 'E' ||
               *p == 'O') {
            noPad |= *p == '-';
            ++p;
        }
        if (!*p)
            break;
        if (*p == 'r') {
            flushLiteral();
            out += pictureFromStrftime(loc ? nl_langinfo_l(T_FMT_AMPM, loc) : "%I:%M:%S %p", loc);
            continue;
        }
        if (*p == '%' || *p == 'n' || *p == 't') {
            literal += *p == '%' ? '%' : *p == 'n' ? '\n' : '\t';
            continue;
        }
        const char *field = nullptr;
        for (const StrftimeField &f : kStrftimeFields) {
            if (f.conversion == *p)
                field = noPad ? f.unpadded : f.padded;
        }
        if (!field)
            continue;  // zone, week numbers and the like have no picture
        flushLiteral();
        out += field;
    }
    flushLiteral();
    // Whatever stood next to a dropped field may trail.
    while (!out.empty() && out.back() == ' ')
        out.pop_back();
    return out;
}

}  // namespace

std::string shortDatePicture(const Locale &l)
{
    if (l.invariant)
        return "MM/dd/yyyy";
    if (!l.loc)
        return "M/d/yyyy";
    return pictureFromStrftime(nl_langinfo_l(D_FMT, l.loc), l.loc);
}

std::string timePicture(const Locale &l)
{
    if (l.invariant)
        return "HH:mm:ss";
    if (!l.loc)
        return "h:mm:ss tt";
    std::string p = pictureFromStrftime(nl_langinfo_l(T_FMT, l.loc), l.loc);
    return p.empty() ? std::string("HH:mm:ss") : p;
}

// The order of day, month and year in a picture: 0 M-D-Y, 1 D-M-Y, 2 Y-M-D.
int dateOrder(const std::string &picture)
{
    size_t d = picture.find('d'), m = picture.find('M'), y = picture.find('y');
    if (y < d && y < m)
        return 2;
    return d < m ? 1 : 0;
}

// The separator between the first two fields of a picture.
std::string separatorOf(const std::string &picture, const char *fieldLetters)
{
    size_t start = picture.find_first_of(fieldLetters);
    if (start == std::string::npos)
        return "";
    size_t end = picture.find_first_not_of(picture[start], start);
    size_t next = picture.find_first_of(fieldLetters, end);
    if (end == std::string::npos || next == std::string::npos)
        return "";
    std::string sep = picture.substr(end, next - end);
    if (sep.size() >= 2 && sep.front() == '\'' && sep.back() == '\'')
        sep = sep.substr(1, sep.size() - 2);
    return sep;
}

// The C library keeps no long date, so one is built in the locale's order.
std::string longDatePicture(const Locale &l)
{
    if (l.invariant)
        return "dddd, dd MMMM yyyy";
    std::string shortDate = shortDatePicture(l);
    switch (dateOrder(shortDate)) {
    case 1:
        return separatorOf(shortDate, "dMy") == "." ? "dddd, d. MMMM yyyy" : "dddd, d MMMM yyyy";
    case 2:
        return "yyyy MMMM d";
    default:
        return "dddd, MMMM d, yyyy";
    }
}

}  // namespace om::kernel

namespace {

using namespace om::kernel;

// ---- Date and time pictures ----

unsigned daysInMonth(unsigned y, unsigned m)
{
    static const unsigned kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    bool leap = (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
    return m == 2 && leap ? 29 : kDays[m - 1];
}

// 0 = Sunday, for a Gregorian date.
int weekday(unsigned y, unsigned m, unsigned d)
{
    static const int kOffsets[] = {0, 3, 2, 5, 0, 3, 5, 1, 4, 6, 2, 4};
    if (m < 3)
        y -= 1;
    return static_cast<int>((y + y / 4 - y / 100 + y / 400 + kOffsets[m - 1] + d) % 7);
}

struct Token {
    char field;  // 0 for literal text
    int count;
    std::string text;
};

std::vector<Token> tokenize(const std::string &picture, const char *fields)
{
    std::vector<Token> tokens;
    auto literal = [&](const std::string &s) {
        if (!tokens.empty() && tokens.back().field == 0)
            tokens.back().text += s;
        else
            tokens.push_back(Token{0, 0, s});
    };
    for (size_t i = 0; i < picture.size();) {
        char c = picture[i];
        if (c == '\'') {
            std::string text;
            ++i;
            while (i < picture.size()) {
                if (picture[i] == '\'') {
                    if (i + 1 < picture.size() && picture[i + 1] == '\'') {
                        text += '\'';
                        i += 2;
                        continue;
                    }
                    ++i;
                    break;
                }
                text += picture[i++];
            }
            literal(text);
        } else if (std::strchr(fields, c)) {
            size_t end = picture.find_first_not_of(c, i);
            if (end == std::string::npos)
                end = picture.size();
            tokens.push_back(Token{c, static_cast<int>(end - i), {}});
            i = end;
        } else {
            literal(std::string(1, c));
            ++i;
        }
    }
    return tokens;
}

// Removes the fields of the given letters with the separator before them
// (or after them, for a field at the start).
void dropFields(std::vector<Token> &tokens, const char *letters)
{
    for (size_t i = 0; i < tokens.size();) {
        if (tokens[i].field == 0 || !std::strchr(letters, tokens[i].field)) {
            ++i;
            continue;
        }
        tokens.erase(tokens.begin() + static_cast<long>(i));
        if (i > 0 && tokens[i - 1].field == 0) {
            tokens.erase(tokens.begin() + static_cast<long>(i - 1));
            --i;
        } else if (i == 0 && !tokens.empty() && tokens[0].field == 0) {
            tokens.erase(tokens.begin());
        }
    }
}

std::string twoDigits(unsigned v)
{
    char buf[8];
    std::snprintf(buf, sizeof buf, "%02u", v % 100);
    return buf;
}

std::string formatDate(const Locale &l, const std::string &picture, const SYSTEMTIME &st)
{
    std::vector<Token> tokens = tokenize(picture, "dMyg");
    bool hasDay = false;
    for (const Token &t : tokens)
        hasDay |= t.field == 'd' && t.count <= 2;
    std::string out;
    int dow = weekday(st.wYear, st.wMonth, st.wDay);
    for (const Token &t : tokens) {
        switch (t.field) {
        case 0:
            out += t.text;
            break;
        case 'd':
            if (t.count == 1)
                out += std::to_string(st.wDay);
            else if (t.count == 2)
                out += twoDigits(st.wDay);
            else
                out += dayName(l, dow == 0 ? 7 : dow, t.count == 3);
            break;
        case 'M':
            if (t.count == 1)
                out += std::to_string(st.wMonth);
            else if (t.count == 2)
                out += twoDigits(st.wMonth);
            // A month name beside a day number takes the genitive form.
            else
                out += monthName(l, st.wMonth, t.count == 3, hasDay);
            break;
        case 'y':
            if (t.count == 1)
                out += std::to_string(st.wYear % 100);
            else if (t.count == 2)
                out += twoDigits(st.wYear);
            else
                out += std::to_string(st.wYear);
            break;
        case 'g':
            out += "A.D.";
            break;
        }
    }
    return out;
}

std::string formatTime(const Locale &l, const std::string &picture, const SYSTEMTIME &st,
                       DWORD flags)
{
    std::vector<Token> tokens = tokenize(picture, "hHmst");
    if (flags & TIME_NOMINUTESORSECONDS)
        dropFields(tokens, "ms");
    else if (flags & TIME_NOSECONDS)
        dropFields(tokens, "s");
    if (flags & TIME_NOTIMEMARKER)
        dropFields(tokens, "t");
    std::string out;
    bool force24 = flags & TIME_FORCE24HOURFORMAT;
    for (const Token &t : tokens) {
        unsigned v = 0;
        switch (t.field) {
        case 0:
            out += t.text;
            continue;
        case 'h':
            v = force24 ? st.wHour : (st.wHour % 12 == 0 ? 12 : st.wHour % 12);
            break;
        case 'H':
            v = st.wHour;
            break;
        case 'm':
            v = st.wMinute;
            break;
        case 's':
            v = st.wSecond;
            break;
        case 't': {
            std::string marker = amPm(l, st.wHour >= 12);
            out += t.count == 1 ? marker.substr(0, 1) : marker;
            continue;
        }
        }
        out += t.count == 1 ? std::to_string(v) : twoDigits(v);
    }
    return out;
}

template <class Char>
int getDateFormat(const char *function, LCID lcid, DWORD flags, const SYSTEMTIME *date,
                  const Char *format, Char *buf, int cch)
{
    try {
        Locale *l = localeFor(lcid);
        if (!l) {
            SetLastError(ERROR_INVALID_PARAMETER);
            return 0;
        }
        DWORD pictureFlags = flags & (DATE_SHORTDATE | DATE_LONGDATE | DATE_YEARMONTH);
        DWORD known = DATE_SHORTDATE | DATE_LONGDATE | DATE_YEARMONTH | DATE_USE_ALT_CALENDAR |
                      DATE_LTRREADING | DATE_RTLREADING | LOCALE_NOUSEROVERRIDE;
        if ((flags & ~known) || (format && pictureFlags) || (pictureFlags & (pictureFlags - 1))) {
            SetLastError(ERROR_INVALID_FLAGS);
            return 0;
        }
        SYSTEMTIME st;
        if (date) {
            st = *date;
            if (st.wMonth < 1 || st.wMonth > 12 || st.wDay < 1 ||
                st.wDay > daysInMonth(st.wYear, st.wMonth) || st.wYear < 1601) {
                SetLastError(ERROR_INVALID_PARAMETER);
                return 0;
            }
        } else {
            GetLocalTime(&st);
        }
        std::string picture;
        if (format)
            picture = toUtf8OrCopy(format);
        else if (flags & DATE_LONGDATE)
            picture = longDatePicture(*l);
        else if (flags & DATE_YEARMONTH)
            picture = "MMMM yyyy";
        else
            picture = shortDatePicture(*l);
        return deliver(function, formatDate(*l, picture, st), buf, cch);
    } catch (const std::bad_alloc &) {
        omError(OmDiag::OutOfMemory, function);
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return 0;
    }
}

template <class Char>
int getTimeFormat(const char *function, LCID lcid, DWORD flags, const SYSTEMTIME *time,
                  const Char *format, Char *buf, int cch)
{
    try {
        Locale *l = localeFor(lcid);
        if (!l) {
            SetLastError(ERROR_INVALID_PARAMETER);
            return 0;
        }
        DWORD known = TIME_NOMINUTESORSECONDS | TIME_NOSECONDS | TIME_NOTIMEMARKER |
                      TIME_FORCE24HOURFORMAT | LOCALE_NOUSEROVERRIDE;
        if (flags & ~known) {
            SetLastError(ERROR_INVALID_FLAGS);
            return 0;
        }
        SYSTEMTIME st;
        if (time) {
            st = *time;
            if (st.wHour > 23 || st.wMinute > 59 || st.wSecond > 59 || st.wMilliseconds > 999) {
                SetLastError(ERROR_INVALID_PARAMETER);
                return 0;
            }
        } else {
            GetLocalTime(&st);
        }
        std::string picture = format ? toUtf8OrCopy(format) : timePicture(*l);
        return deliver(function, formatTime(*l, picture, st, flags), buf, cch);
    } catch (const std::bad_alloc &) {
        omError(OmDiag::OutOfMemory, function);
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return 0;
    }
}

}  // namespace

// ---- Dates and times ----

extern "C" int WINAPI GetDateFormatA(LCID Locale, DWORD dwFlags, const SYSTEMTIME *lpDate,
                                     LPCSTR lpFormat, LPSTR lpDateStr, int cchDate)
{
    return getDateFormat("GetDateFormatA", Locale, dwFlags, lpDate, lpFormat, lpDateStr, cchDate);
}

extern "C" int WINAPI GetDateFormatW(LCID Locale, DWORD dwFlags, const SYSTEMTIME *lpDate,
                                     LPCWSTR lpFormat, LPWSTR lpDateStr, int cchDate)
{
    return getDateFormat("GetDateFormatW", Locale, dwFlags, lpDate, lpFormat, lpDateStr, cchDate);
}

extern "C" int WINAPI GetTimeFormatA(LCID Locale, DWORD dwFlags, const SYSTEMTIME *lpTime,
                                     LPCSTR lpFormat, LPSTR lpTimeStr, int cchTime)
{
    return getTimeFormat("GetTimeFormatA", Locale, dwFlags, lpTime, lpFormat, lpTimeStr, cchTime);
}

extern "C" int WINAPI GetTimeFormatW(LCID Locale, DWORD dwFlags, const SYSTEMTIME *lpTime,
                                     LPCWSTR lpFormat, LPWSTR lpTimeStr, int cchTime)
{
    return getTimeFormat("GetTimeFormatW", Locale, dwFlags, lpTime, lpFormat, lpTimeStr, cchTime);
}
