// The locale data that GetLocaleInfo (omlocaleinfo.cpp) and the date and
// time formatting (omdatetimefmt.cpp) share.  Private to those files.
#pragma once

#include <winbase.h>
#include <winnls.h>

#include <locale.h>
#include <string>

namespace om::kernel {

constexpr LCID kEnglishUs = 0x0409;

struct Locale {
    LCID lcid = kEnglishUs;
    std::string language = "en";  // ISO 639
    std::string country = "US";  // ISO 3166
    locale_t loc = nullptr;      // null: the built-in English (United States) answers
    bool invariant = false;
};

// The locale an LCID names (the user's for the defaults), or null for one
// that cannot be served.
Locale *localeFor(LCID lcid);

// Windows pictures of the locale's dates and times.
std::string shortDatePicture(const Locale &l);
std::string longDatePicture(const Locale &l);
std::string timePicture(const Locale &l);

// The order of day, month and year in a picture: 0 M-D-Y, 1 D-M-Y, 2 Y-M-D.
int dateOrder(const std::string &picture);

// The text between the first two fields of a picture whose field letters
// are given ("dMy" for dates, "hHms" for times).
std::string separatorOf(const std::string &picture, const char *fieldLetters);

// windowsDay counts from Monday = 1 to Sunday = 7.
std::string dayName(const Locale &l, int windowsDay, bool abbreviated);
std::string monthName(const Locale &l, int month, bool abbreviated, bool genitive);
std::string amPm(const Locale &l, bool pm);

std::string toUtf8OrCopy(const char *s);
std::string toUtf8OrCopy(const WCHAR *s);

// Copies text and its terminator into a caller's buffer the Windows way:
// the count with the terminator, the needed count when cch is 0, or 0
// with ERROR_INSUFFICIENT_BUFFER.
int deliver(const char *function, const std::string &text, char *buf, int cch);
int deliver(const char *function, const std::string &text, WCHAR *buf, int cch);

}  // namespace om::kernel
