// The user's locale as kernel32 reports it: locale identifiers and
// GetLocaleInfo, from the C library's locale of the environment's
// LANG/LC_*; "C" and "POSIX" answer as English (United States), and
// LOCALE_INVARIANT as the invariant locale.
#include "omlocale.h"

#include "kernel/omdiag.h"
#include "kernel/omstring.h"

#include <winbase.h>
#include <winnls.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <langinfo.h>
#include <locale.h>
#include <map>
#include <mutex>
#include <new>
#include <string>
#include <vector>

namespace om::kernel {
namespace {

struct LcidName {
    LCID lcid;
    const char *name;  // language_TERRITORY
};

// The locales Windows numbers that the C library commonly carries.
constexpr LcidName kLcids[] = {
    {0x0409, "en_US"}, {0x0809, "en_GB"}, {0x0C09, "en_AU"}, {0x1009, "en_CA"}, {0x1409, "en_NZ"},
    {0x1809, "en_IE"}, {0x1C09, "en_ZA"}, {0x4009, "en_IN"}, {0x0407, "de_DE"}, {0x0807, "de_CH"},
    {0x0C07, "de_AT"}, {0x1007, "de_LU"}, {0x040C, "fr_FR"}, {0x080C, "fr_BE"}, {0x0C0C, "fr_CA"},
    {0x100C, "fr_CH"}, {0x140C, "fr_LU"}, {0x0C0A, "es_ES"}, {0x080A, "es_MX"}, {0x2C0A, "es_AR"},
    {0x240A, "es_CO"}, {0x340A, "es_CL"}, {0x0410, "it_IT"}, {0x0810, "it_CH"}, {0x0413, "nl_NL"},
    {0x0813, "nl_BE"}, {0x0416, "pt_BR"}, {0x0816, "pt_PT"}, {0x041D, "sv_SE"}, {0x081D, "sv_FI"},
    {0x0406, "da_DK"}, {0x0414, "nb_NO"}, {0x0814, "nn_NO"}, {0x040B, "fi_FI"}, {0x040F, "is_IS"},
    {0x0415, "pl_PL"}, {0x0405, "cs_CZ"}, {0x041B, "sk_SK"}, {0x040E, "hu_HU"}, {0x0418, "ro_RO"},
    {0x041A, "hr_HR"}, {0x0424, "sl_SI"}, {0x0402, "bg_BG"}, {0x0419, "ru_RU"}, {0x0422, "uk_UA"},
    {0x0408, "el_GR"}, {0x041F, "tr_TR"}, {0x040D, "he_IL"}, {0x0401, "ar_SA"}, {0x0C01, "ar_EG"},
    {0x0411, "ja_JP"}, {0x0412, "ko_KR"}, {0x0804, "zh_CN"}, {0x0404, "zh_TW"}, {0x0C04, "zh_HK"},
    {0x1004, "zh_SG"}, {0x041E, "th_TH"}, {0x042A, "vi_VN"}, {0x0421, "id_ID"}, {0x043E, "ms_MY"},
    {0x0439, "hi_IN"}, {0x0403, "ca_ES"}, {0x042D, "eu_ES"}, {0x0456, "gl_ES"}, {0x0425, "et_EE"},
    {0x0426, "lv_LV"}, {0x0427, "lt_LT"},
};

constexpr LCID kCustomDefault = 0x0C00;

// "de_DE.UTF-8@euro" → language "de", country "DE".
void splitName(const std::string &name, std::string &language, std::string &country)
{
    size_t end = name.find_first_of(".@");
    std::string base = name.substr(0, end);
    size_t us = base.find('_');
    language = base.substr(0, us);
    country = us == std::string::npos ? std::string() : base.substr(us + 1);
}

LCID lcidFor(const std::string &language, const std::string &country)
{
    std::string full = language + "_" + country;
    for (const LcidName &e : kLcids) {
        if (full == e.name)
            return e.lcid;
    }
    // A territory Windows does not number: the language's default.
    for (const LcidName &e : kLcids) {
        if (std::strncmp(e.name, language.c_str(), language.size()) == 0 &&
            e.name[language.size()] == '_')
            return MAKELANGID(PRIMARYLANGID(e.lcid), SUBLANG_DEFAULT);
    }
    return kCustomDefault;
}

bool isCName(const std::string &name)
{
    return name.empty() || name == "C" || name == "POSIX" || name.rfind("C.", 0) == 0;
}

// Builds the locale of a name; null when the C library lacks it.
Locale *makeLocale(const std::string &name)
{
    auto *l = new (std::nothrow) Locale;
    if (!l)
        return nullptr;
    if (isCName(name))
        return l;
    locale_t loc = newlocale(LC_ALL_MASK, name.c_str(), nullptr);
    if (!loc) {
        delete l;
        return nullptr;
    }
    l->loc = loc;
    splitName(name, l->language, l->country);
    l->lcid = lcidFor(l->language, l->country);
    return l;
}

struct Cache {
    std::mutex lock;
    std::map<std::string, Locale *> byName;  // kept for the process's life
    Locale invariant;
};

Cache &cache()
{
    static auto *c = [] {
        auto *c = new Cache;
        c->invariant.invariant = true;
        c->invariant.lcid = LOCALE_INVARIANT;
        c->invariant.language = "iv";
        c->invariant.country = "IV";
        return c;
    }();
    return *c;
}

Locale *localeNamed(const std::string &name)
{
    Cache &c = cache();
    std::lock_guard<std::mutex> guard(c.lock);
    auto it = c.byName.find(name);
    if (it != c.byName.end())
        return it->second;
    Locale *l = makeLocale(name);
    if (l)
        c.byName.emplace(name, l);
    return l;
}

// The user's locale: the name the environment gives for formats, read on
// each call so that a changed environment is seen.  A locale the C library
// does not have falls back to "C", as setlocale would.
Locale *userLocale()
{
    const char *name = nullptr;
    for (const char *var : {"LC_ALL", "LC_TIME", "LANG"}) {
        const char *v = getenv(var);
        if (v && *v) {
            name = v;
            break;
        }
    }
    Locale *l = localeNamed(name ? name : "C");
    return l ? l : localeNamed("C");
}

thread_local LCID t_threadLocale = 0;

}  // namespace

// The locale an LCID names, or null for one we cannot serve.
Locale *localeFor(LCID lcid)
{
    lcid &= 0xFFFF;  // the sort id does not change the data
    if (lcid == LOCALE_INVARIANT)
        return &cache().invariant;
    Locale *user = userLocale();
    if (lcid == LOCALE_USER_DEFAULT || lcid == LOCALE_SYSTEM_DEFAULT || lcid == LOCALE_NEUTRAL ||
        lcid == kCustomDefault || lcid == 0x1000 || lcid == 0x1400 || (user && lcid == user->lcid))
        return user;
    for (const LcidName &e : kLcids) {
        if (e.lcid == lcid) {
            if (Locale *l = localeNamed(std::string(e.name) + ".UTF-8"))
                return l;
            if (Locale *l = localeNamed(e.name))
                return l;
            return lcid == kEnglishUs ? localeNamed("C") : nullptr;
        }
    }
    return nullptr;
}

namespace {

// ---- Values ----

const char *info(const Locale &l, nl_item item, const char *fallback)
{
    if (!l.loc)
        return fallback;
    const char *v = nl_langinfo_l(item, l.loc);
    return v ? v : "";
}

}  // namespace

std::string dayName(const Locale &l, int windowsDay, bool abbreviated)
{
    // Windows counts from Monday (1), the C library from Sunday.
    static const char *kFull[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                  "Thursday", "Friday", "Saturday"};
    static const char *kAbbr[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    int c = windowsDay % 7;  // 0 = Sunday
    nl_item item = static_cast<nl_item>((abbreviated ? ABDAY_1 : DAY_1) + c);
    return info(l, item, abbreviated ? kAbbr[c] : kFull[c]);
}

std::string monthName(const Locale &l, int month, bool abbreviated, bool genitive)
{
    static const char *kFull[] = {"January",   "February", "March",    "April",
                                  "May",       "June",     "July",     "August",
                                  "September", "October",  "November", "December"};
    static const char *kAbbr[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                  "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    int i = month - 1;
    nl_item item;
    if (abbreviated)
        item = static_cast<nl_item>((genitive ? ABMON_1 : _NL_ABALTMON_1) + i);
    else
        item = static_cast<nl_item>((genitive ? MON_1 : ALTMON_1) + i);
    return info(l, item, abbreviated ? kAbbr[i] : kFull[i]);
}

std::string amPm(const Locale &l, bool pm)
{
    if (l.invariant)
        return pm ? "PM" : "AM";
    return info(l, pm ? PM_STR : AM_STR, pm ? "PM" : "AM");
}

namespace {

std::string englishLanguage(const Locale &l)
{
    if (l.invariant)
        return "Invariant Language";
    // The C library names some variants ("American English"); Windows
    // names the language.
    if (l.language == "en")
        return "English";
    return info(l, _NL_IDENTIFICATION_LANGUAGE, "English");
}

std::string englishCountry(const Locale &l)
{
    if (l.invariant)
        return "Invariant Country";
    return info(l, _NL_IDENTIFICATION_TERRITORY, "United States");
}

int firstDayOfWeek(const Locale &l)
{
    if (!l.loc)
        return 6;  // Sunday, counted from Monday = 0
    // The C library counts from week-1stday (a date, yyyymmdd) plus
    // first_weekday - 1.
    unsigned base = static_cast<unsigned>(
        reinterpret_cast<uintptr_t>(nl_langinfo_l(_NL_TIME_WEEK_1STDAY, l.loc)));
    int first = *nl_langinfo_l(_NL_TIME_FIRST_WEEKDAY, l.loc);
    int baseIsMonday = base == 19971201;              // else 19971130, a Sunday
    int sundayBased = (baseIsMonday + first - 1) % 7;  // 0 = Sunday
    return (sundayBased + 6) % 7;
}

// The C library repeats its last group size and ends a list that does
// not repeat with CHAR_MAX; Windows repeats only a list that ends in 0.
std::string grouping(const char *g)
{
    std::vector<int> sizes;
    bool repeats = true;
    for (; g && *g; ++g) {
        if (*g == CHAR_MAX) {
            repeats = false;
            break;
        }
        sizes.push_back(*g);
    }
    if (sizes.empty())
        return "3;0";
    while (repeats && sizes.size() > 1 && sizes.back() == sizes[sizes.size() - 2])
        sizes.pop_back();
    std::string out;
    for (int size : sizes)
        out += std::to_string(size) + ";";
    if (repeats)
        return out + "0";
    out.pop_back();
    return out;
}

bool localeString(const Locale &l, LCTYPE type, std::string &out)
{
    char buf[32];
    if (type >= LOCALE_SDAYNAME1 && type <= LOCALE_SDAYNAME7) {
        out = dayName(l, static_cast<int>(type - LOCALE_SDAYNAME1 + 1), false);
        return true;
    }
    if (type >= LOCALE_SABBREVDAYNAME1 && type <= LOCALE_SABBREVDAYNAME7) {
        out = dayName(l, static_cast<int>(type - LOCALE_SABBREVDAYNAME1 + 1), true);
        return true;
    }
    if (type >= LOCALE_SMONTHNAME1 && type <= LOCALE_SMONTHNAME12) {
        out = monthName(l, static_cast<int>(type - LOCALE_SMONTHNAME1 + 1), false, false);
        return true;
    }
    if (type >= LOCALE_SABBREVMONTHNAME1 && type <= LOCALE_SABBREVMONTHNAME12) {
        out = monthName(l, static_cast<int>(type - LOCALE_SABBREVMONTHNAME1 + 1), true, false);
        return true;
    }
    switch (type) {
    case LOCALE_ILANGUAGE:
        std::snprintf(buf, sizeof buf, "%04x", LANGIDFROMLCID(l.lcid));
        out = buf;
        return true;
    case LOCALE_SLANGUAGE:
        out = l.invariant ? "Invariant Language (Invariant Country)"
                          : englishLanguage(l) + " (" + englishCountry(l) + ")";
        return true;
    case LOCALE_SENGLANGUAGE:
        out = englishLanguage(l);
        return true;
    case LOCALE_SNATIVELANGNAME:
        out = l.invariant ? "Invariant Language" : info(l, _NL_ADDRESS_LANG_NAME, "English");
        return true;
    case LOCALE_SCOUNTRY:
    case LOCALE_SENGCOUNTRY:
        out = englishCountry(l);
        return true;
    case LOCALE_SNATIVECTRYNAME:
        out =
            l.invariant ? "Invariant Country" : info(l, _NL_ADDRESS_COUNTRY_NAME, "United States");
        return true;
    case LOCALE_ICOUNTRY:
        out = l.invariant ? "1" : info(l, _NL_TELEPHONE_INT_PREFIX, "1");
        return true;
    case LOCALE_SISO639LANGNAME:
        out = l.language;
        return true;
    case LOCALE_SISO3166CTRYNAME:
        out = l.country;
        return true;
    case LOCALE_SNAME:
        out = l.invariant ? std::string() : l.language + (l.country.empty() ? "" : "-" + l.country);
        return true;
    case LOCALE_IDEFAULTANSICODEPAGE:
    case LOCALE_IDEFAULTCODEPAGE:
        out = "65001";  // the multibyte code page is UTF-8
        return true;
    case LOCALE_SLIST:
        out = std::string(info(l, RADIXCHAR, ".")) == "," ? ";" : ",";
        return true;
    case LOCALE_IMEASURE:
        out = l.loc && *nl_langinfo_l(_NL_MEASUREMENT_MEASUREMENT, l.loc) == 1 ? "0" : "1";
        if (l.invariant)
            out = "0";
        return true;
    case LOCALE_IPAPERSIZE:
        out = !l.loc || reinterpret_cast<uintptr_t>(nl_langinfo_l(_NL_PAPER_HEIGHT, l.loc)) == 279
                  ? "1"
                  : "9";
        return true;
    case LOCALE_SDECIMAL:
        out = info(l, RADIXCHAR, ".");
        return true;
    case LOCALE_STHOUSAND:
        out = info(l, THOUSEP, ",");
        return true;
    case LOCALE_SGROUPING:
        out = l.loc ? grouping(nl_langinfo_l(GROUPING, l.loc)) : "3;0";
        return true;
    case LOCALE_IDIGITS:
        out = "2";
        return true;
    case LOCALE_ILZERO:
    case LOCALE_INEGNUMBER:
        out = "1";
        return true;
    case LOCALE_SNATIVEDIGITS:
        out = "0123456789";
        return true;
    case LOCALE_SPOSITIVESIGN:
        out = "";
        return true;
    case LOCALE_SNEGATIVESIGN:
        out = "-";
        return true;
    case LOCALE_SCURRENCY: {
        // CRNCYSTR starts with where the symbol goes.
        const char *c = l.loc ? nl_langinfo_l(CRNCYSTR, l.loc) : "-$";
        out = l.invariant ? "\xC2\xA4" : (c && *c ? c + 1 : "");
        return true;
    }
    case LOCALE_SINTLSYMBOL: {
        std::string s = l.invariant ? "XDR" : info(l, INT_CURR_SYMBOL, "USD");
        out = s.substr(0, 3);
        return true;
    }
    case LOCALE_SMONDECIMALSEP:
        out = info(l, MON_DECIMAL_POINT, ".");
        return true;
    case LOCALE_SMONTHOUSANDSEP:
        out = info(l, MON_THOUSANDS_SEP, ",");
        return true;
    case LOCALE_ICURRDIGITS:
        out = std::to_string(l.loc ? static_cast<int>(*nl_langinfo_l(FRAC_DIGITS, l.loc)) : 2);
        return true;
    case LOCALE_SSHORTDATE:
        out = shortDatePicture(l);
        return true;
    case LOCALE_SLONGDATE:
        out = longDatePicture(l);
        return true;
    case LOCALE_SYEARMONTH:
        out = "MMMM yyyy";
        return true;
    case LOCALE_STIMEFORMAT:
        out = timePicture(l);
        return true;
    case LOCALE_SDATE:
        out = separatorOf(shortDatePicture(l), "dMy");
        return true;
    case LOCALE_STIME:
        out = separatorOf(timePicture(l), "hHms");
        return true;
    case LOCALE_IDATE:
        out = std::to_string(dateOrder(shortDatePicture(l)));
        return true;
    case LOCALE_ILDATE:
        out = std::to_string(dateOrder(longDatePicture(l)));
        return true;
    case LOCALE_ICENTURY:
        out = shortDatePicture(l).find("yyyy") != std::string::npos ? "1" : "0";
        return true;
    case LOCALE_IDAYLZERO:
        out = shortDatePicture(l).find("dd") != std::string::npos ? "1" : "0";
        return true;
    case LOCALE_IMONLZERO:
        out = shortDatePicture(l).find("MM") != std::string::npos ? "1" : "0";
        return true;
    case LOCALE_ITIME:
        out = timePicture(l).find('H') != std::string::npos ? "1" : "0";
        return true;
    case LOCALE_ITLZERO: {
        std::string t = timePicture(l);
        out = t.find("hh") != std::string::npos || t.find("HH") != std::string::npos ? "1" : "0";
        return true;
    }
    case LOCALE_ITIMEMARKPOSN: {
        std::string t = timePicture(l);
        size_t mark = t.find('t');
        out = mark != std::string::npos && mark < t.find_first_of("hH") ? "1" : "0";
        return true;
    }
    case LOCALE_S1159:
        out = amPm(l, false);
        return true;
    case LOCALE_S2359:
        out = amPm(l, true);
        return true;
    case LOCALE_IFIRSTDAYOFWEEK:
        out = std::to_string(l.invariant ? 0 : firstDayOfWeek(l));
        return true;
    default:
        return false;
    }
}

// ---- Output in the Windows manner ----

// The conversions are the kernel's shared ones (omstring.h).
std::u16string toUtf16(const std::string &s)
{
    return om::kernel::utf8ToUtf16(s);
}

std::string toUtf8(const WCHAR *s)
{
    return s ? om::kernel::utf16ToUtf8(std::u16string_view(s)) : std::string();
}

}  // namespace

std::string toUtf8OrCopy(const char *s)
{
    return s;
}

std::string toUtf8OrCopy(const WCHAR *s)
{
    return toUtf8(s);
}

namespace {

// Copies text and its terminator; returns the count with the terminator,
// the needed count when cch is 0, or 0 with ERROR_INSUFFICIENT_BUFFER.
template <class Char>
int deliverUnits(const char *function, const std::basic_string<Char> &text, Char *buf, int cch)
{
    int needed = static_cast<int>(text.size()) + 1;
    if (cch == 0)
        return needed;
    if (cch < 0 || !buf) {
        omDebugWarning(OmDiag::NullPointer, function);
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    if (cch < needed) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    std::copy(text.begin(), text.end(), buf);
    buf[text.size()] = 0;
    return needed;
}

}  // namespace

int deliver(const char *function, const std::string &text, char *buf, int cch)
{
    return deliverUnits<char>(function, text, buf, cch);
}

int deliver(const char *function, const std::string &text, WCHAR *buf, int cch)
{
    return deliverUnits<char16_t>(function, toUtf16(text), reinterpret_cast<char16_t *>(buf), cch);
}

namespace {

template <class Char>
int getLocaleInfo(const char *function, LCID lcid, LCTYPE type, Char *buf, int cch)
{
    try {
        Locale *l = localeFor(lcid);
        if (!l) {
            SetLastError(ERROR_INVALID_PARAMETER);
            return 0;
        }
        bool asNumber = type & LOCALE_RETURN_NUMBER;
        LCTYPE bare = type & ~(LOCALE_NOUSEROVERRIDE | LOCALE_USE_CP_ACP | LOCALE_RETURN_NUMBER);
        std::string value;
        if (!localeString(*l, bare, value)) {
            SetLastError(ERROR_INVALID_FLAGS);
            return 0;
        }
        if (asNumber) {
            // The value as a DWORD in the buffer, for the I* types only.
            bool numeric =
                !value.empty() && value.find_first_not_of("0123456789abcdef") == std::string::npos;
            if (!numeric) {
                SetLastError(ERROR_INVALID_FLAGS);
                return 0;
            }
            DWORD n = static_cast<DWORD>(
                std::strtoul(value.c_str(), nullptr, bare == LOCALE_ILANGUAGE ? 16 : 10));
            int units = static_cast<int>(sizeof(DWORD) / sizeof(Char));
            if (cch == 0)
                return units;
            if (cch < units || !buf) {
                SetLastError(ERROR_INSUFFICIENT_BUFFER);
                return 0;
            }
            std::memcpy(buf, &n, sizeof n);
            return units;
        }
        return deliver(function, value, buf, cch);
    } catch (const std::bad_alloc &) {
        omError(OmDiag::OutOfMemory, function);
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return 0;
    }
}

}  // namespace
}  // namespace om::kernel

using namespace om::kernel;

// ---- Locale identifiers ----

extern "C" LCID WINAPI GetUserDefaultLCID(void)
{
    Locale *l = userLocale();
    return l ? l->lcid : kEnglishUs;
}

extern "C" LCID WINAPI GetSystemDefaultLCID(void)
{
    return GetUserDefaultLCID();
}

extern "C" LANGID WINAPI GetUserDefaultLangID(void)
{
    return LANGIDFROMLCID(GetUserDefaultLCID());
}

extern "C" LANGID WINAPI GetSystemDefaultLangID(void)
{
    return GetUserDefaultLangID();
}

extern "C" LANGID WINAPI GetUserDefaultUILanguage(void)
{
    return GetUserDefaultLangID();
}

extern "C" LANGID WINAPI GetSystemDefaultUILanguage(void)
{
    return GetUserDefaultLangID();
}

extern "C" LCID WINAPI GetThreadLocale(void)
{
    return t_threadLocale ? t_threadLocale : GetUserDefaultLCID();
}

extern "C" BOOL WINAPI SetThreadLocale(LCID Locale)
{
    if (!localeFor(Locale)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    t_threadLocale = Locale;
    return TRUE;
}

// ---- GetLocaleInfo ----

extern "C" int WINAPI GetLocaleInfoA(LCID Locale, LCTYPE LCType, LPSTR lpLCData, int cchData)
{
    return getLocaleInfo("GetLocaleInfoA", Locale, LCType, lpLCData, cchData);
}

extern "C" int WINAPI GetLocaleInfoW(LCID Locale, LCTYPE LCType, LPWSTR lpLCData, int cchData)
{
    return getLocaleInfo("GetLocaleInfoW", Locale, LCType, lpLCData, cchData);
}
