// Clocks, FILETIME/SYSTEMTIME conversions, the time zone, and the locale
// answers of GetLocaleInfo, GetDateFormat and GetTimeFormat.
#include "kernel/omdiag.h"

#include <mmsystem.h>
#include <winbase.h>
#include <winnls.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <locale.h>
#include <optional>
#include <string>

namespace {

uint64_t monotonicMs()
{
    timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return static_cast<uint64_t>(ts.tv_sec) * 1000 + static_cast<uint64_t>(ts.tv_nsec) / 1000000;
}

uint64_t ticks(const FILETIME &ft)
{
    return (uint64_t{ft.dwHighDateTime} << 32) | ft.dwLowDateTime;
}

FILETIME fileTime(uint64_t t)
{
    return FILETIME{static_cast<DWORD>(t), static_cast<DWORD>(t >> 32)};
}

// Sets environment variables for one test and puts them back.
class EnvGuard
{
  public:
    void set(const char *name, const char *value)
    {
        const char *old = getenv(name);
        saved_.push_back({name, old ? std::optional<std::string>(old) : std::nullopt});
        if (value)
            setenv(name, value, 1);
        else
            unsetenv(name);
        tzset();
    }
    ~EnvGuard()
    {
        for (auto it = saved_.rbegin(); it != saved_.rend(); ++it) {
            if (it->second)
                setenv(it->first.c_str(), it->second->c_str(), 1);
            else
                unsetenv(it->first.c_str());
        }
        tzset();
    }

  private:
    std::vector<std::pair<std::string, std::optional<std::string>>> saved_;
};

// ---- Clocks ----

TEST(Clocks, TickCountsFollowTheMonotonicClock)
{
    uint64_t before = monotonicMs();
    ULONGLONG tick64 = GetTickCount64();
    DWORD tick = GetTickCount();
    DWORD mm = timeGetTime();
    uint64_t after = monotonicMs();
    EXPECT_GE(tick64, before);
    EXPECT_LE(tick64, after);
    EXPECT_LE(DWORD(tick - static_cast<DWORD>(before)), DWORD(after - before));
    EXPECT_LE(DWORD(mm - tick), 1000u) << "timeGetTime reads the same clock";

    LARGE_INTEGER frequency, counter;
    ASSERT_TRUE(QueryPerformanceFrequency(&frequency));
    EXPECT_EQ(frequency.QuadPart, 1000000000LL);
    timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    ASSERT_TRUE(QueryPerformanceCounter(&counter));
    LONGLONG ns = ts.tv_sec * 1000000000LL + ts.tv_nsec;
    EXPECT_GE(counter.QuadPart, ns);
    EXPECT_LT(counter.QuadPart - ns, 1000000000LL);

    EXPECT_EQ(timeBeginPeriod(1), MMRESULT{TIMERR_NOERROR});
    EXPECT_EQ(timeEndPeriod(1), MMRESULT{TIMERR_NOERROR});
    EXPECT_EQ(timeBeginPeriod(0), MMRESULT{TIMERR_NOCANDO});
    TIMECAPS caps{};
    EXPECT_EQ(timeGetDevCaps(&caps, sizeof caps), MMRESULT{TIMERR_NOERROR});
    EXPECT_EQ(caps.wPeriodMin, 1u);
    EXPECT_EQ(timeGetDevCaps(&caps, 2), MMRESULT{TIMERR_STRUCT});
}

TEST(Clocks, SystemTimeIsTheRealtimeClock)
{
    FILETIME ft;
    time_t before = time(nullptr);
    GetSystemTimeAsFileTime(&ft);
    time_t after = time(nullptr);
    int64_t seconds = static_cast<int64_t>((ticks(ft) - 116444736000000000ULL) / 10000000ULL);
    // time() reads a coarser clock, which may lag by a tick.
    EXPECT_GE(seconds, before);
    EXPECT_LE(seconds, after + 1);

    SYSTEMTIME st;
    GetSystemTime(&st);
    time_t now = time(nullptr);
    tm utc;
    gmtime_r(&now, &utc);
    EXPECT_EQ(st.wYear, utc.tm_year + 1900);
    EXPECT_EQ(st.wDayOfWeek, utc.tm_wday);
}

// ---- File times ----

struct DateCase {
    SYSTEMTIME st;  // wDayOfWeek (third) holds the expected weekday
    uint64_t ticks;  // 0 where not checked
};

class FileTimeRoundTrip : public testing::TestWithParam<DateCase>
{
};

TEST_P(FileTimeRoundTrip, SystemTimeToFileTimeAndBack)
{
    const DateCase &c = GetParam();
    SYSTEMTIME in = c.st;
    in.wDayOfWeek = 6;  // ignored on the way in
    FILETIME ft;
    ASSERT_TRUE(SystemTimeToFileTime(&in, &ft));
    if (c.ticks != 0 || (c.st.wYear == 1601 && c.st.wMonth == 1 && c.st.wDay == 1)) {
        EXPECT_EQ(ticks(ft), c.ticks);
    }
    SYSTEMTIME out;
    ASSERT_TRUE(FileTimeToSystemTime(&ft, &out));
    EXPECT_EQ(out.wYear, c.st.wYear);
    EXPECT_EQ(out.wMonth, c.st.wMonth);
    EXPECT_EQ(out.wDay, c.st.wDay);
    EXPECT_EQ(out.wDayOfWeek, c.st.wDayOfWeek);
    EXPECT_EQ(out.wHour, c.st.wHour);
    EXPECT_EQ(out.wMinute, c.st.wMinute);
    EXPECT_EQ(out.wSecond, c.st.wSecond);
    EXPECT_EQ(out.wMilliseconds, c.st.wMilliseconds);
}

INSTANTIATE_TEST_SUITE_P(
    Dates, FileTimeRoundTrip,
    testing::Values(
        DateCase{{1601, 1, 1, 1, 0, 0, 0, 0}, 0},
        DateCase{{1601, 12, 1, 31, 0, 0, 0, 0}, 314496000000000ULL},
        DateCase{{1970, 1, 0, 4, 0, 0, 0, 0}, 116444736000000000ULL + 3 * 864000000000ULL},
        DateCase{{1900, 2, 3, 28, 23, 59, 59, 999}, 94404960000000000ULL + 863999990000ULL},
        DateCase{{1904, 2, 1, 29, 0, 0, 0, 0}, 95667264000000000ULL},
        DateCase{{2000, 2, 2, 29, 12, 34, 56, 789}, 125962560000000000ULL + 452967890000ULL},
        DateCase{{2024, 2, 4, 29, 0, 0, 0, 1}, 133536384000010000ULL},
        DateCase{{2100, 3, 1, 1, 6, 0, 0, 0}, 157520160000000000ULL + 216000000000ULL},
        DateCase{{9999, 12, 5, 31, 23, 59, 59, 999}, 0},
        DateCase{{30827, 12, 5, 31, 23, 59, 59, 999}, 0}));

TEST(FileTimes, InvalidSystemTimesAreRefused)
{
    const SYSTEMTIME bad[] = {
        {1900, 2, 0, 29, 0, 0, 0, 0},  // 1900 is no leap year
        {2023, 2, 0, 29, 0, 0, 0, 0},  {2024, 4, 0, 31, 0, 0, 0, 0}, {2024, 13, 0, 1, 0, 0, 0, 0},
        {2024, 0, 0, 1, 0, 0, 0, 0},   {2024, 1, 0, 0, 0, 0, 0, 0},  {2024, 1, 0, 1, 24, 0, 0, 0},
        {2024, 1, 0, 1, 0, 60, 0, 0},  {2024, 1, 0, 1, 0, 0, 60, 0}, {2024, 1, 0, 1, 0, 0, 0, 1000},
        {1600, 12, 0, 31, 0, 0, 0, 0},
    };
    for (const SYSTEMTIME &st : bad) {
        SCOPED_TRACE(testing::Message() << st.wYear << "-" << st.wMonth << "-" << st.wDay << " "
                                        << st.wHour << ":" << st.wMinute << ":" << st.wSecond);
        FILETIME ft{};
        SetLastError(0);
        EXPECT_FALSE(SystemTimeToFileTime(&st, &ft));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    }
    FILETIME tooLarge = fileTime(0x8000000000000000ULL);
    SYSTEMTIME st;
    EXPECT_FALSE(FileTimeToSystemTime(&tooLarge, &st));

    omDiagResetCounts();
    testing::internal::CaptureStderr();
    EXPECT_FALSE(FileTimeToSystemTime(nullptr, &st));
    EXPECT_FALSE(SystemTimeToFileTime(&st, nullptr));
    EXPECT_FALSE(QueryPerformanceCounter(nullptr));
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(omDiagCount(133), 3u);
}

TEST(FileTimes, CompareFileTimeOrdersByBothWords)
{
    struct Case {
        uint64_t a, b;
        LONG expected;
    };
    for (Case c :
         {Case{1, 2, -1}, Case{2, 1, 1}, Case{5, 5, 0}, Case{0x100000000ULL, 0xFFFFFFFFULL, 1},
          Case{0xFFFFFFFFULL, 0x100000000ULL, -1}}) {
        FILETIME a = fileTime(c.a), b = fileTime(c.b);
        EXPECT_EQ(CompareFileTime(&a, &b), c.expected) << c.a << " vs " << c.b;
    }
}

// ---- Time zones ----

TEST(TimeZones, RulesFromAPosixZone)
{
    EnvGuard env;
    env.set("TZ", "EST5EDT,M3.2.0,M11.1.0");
    TIME_ZONE_INFORMATION tzi;
    DWORD id = GetTimeZoneInformation(&tzi);
    EXPECT_TRUE(id == TIME_ZONE_ID_STANDARD || id == TIME_ZONE_ID_DAYLIGHT) << id;
    EXPECT_EQ(tzi.Bias, 300);
    EXPECT_EQ(tzi.StandardBias, 0);
    EXPECT_EQ(tzi.DaylightBias, -60);
    EXPECT_EQ(tzi.StandardName[0], u'E');
    EXPECT_EQ(tzi.StandardName[1], u'S');
    EXPECT_EQ(tzi.DaylightName[1], u'D');
    // Second Sunday of March at 2:00, first Sunday of November at 2:00.
    EXPECT_EQ(tzi.DaylightDate.wMonth, 3);
    EXPECT_EQ(tzi.DaylightDate.wDayOfWeek, 0);
    EXPECT_EQ(tzi.DaylightDate.wDay, 2);
    EXPECT_EQ(tzi.DaylightDate.wHour, 2);
    EXPECT_EQ(tzi.StandardDate.wMonth, 11);
    EXPECT_EQ(tzi.StandardDate.wDay, 1);
    EXPECT_EQ(tzi.StandardDate.wHour, 2);

    time_t now = time(nullptr);
    tm local;
    localtime_r(&now, &local);
    FILETIME utc = fileTime(133536384000000000ULL), localFt, back;
    ASSERT_TRUE(FileTimeToLocalFileTime(&utc, &localFt));
    EXPECT_EQ(int64_t(ticks(localFt) - ticks(utc)), int64_t{local.tm_gmtoff} * 10000000)
        << "the current bias applies";
    ASSERT_TRUE(LocalFileTimeToFileTime(&localFt, &back));
    EXPECT_EQ(ticks(back), ticks(utc));
}

TEST(TimeZones, AZoneWithoutDaylightTime)
{
    EnvGuard env;
    env.set("TZ", "JST-9");
    TIME_ZONE_INFORMATION tzi;
    EXPECT_EQ(GetTimeZoneInformation(&tzi), DWORD{TIME_ZONE_ID_UNKNOWN});
    EXPECT_EQ(tzi.Bias, -540);
    EXPECT_EQ(tzi.DaylightDate.wMonth, 0);
    SYSTEMTIME utc, local;
    GetSystemTime(&utc);
    GetLocalTime(&local);
    EXPECT_EQ((local.wHour + 24 - utc.wHour) % 24, 9) << "unless the hour turned in between";
}

// ---- Locale ----

class CLocale : public testing::Test
{
  protected:
    void SetUp() override
    {
        env_.set("LC_ALL", "C");
        env_.set("LC_TIME", nullptr);
        env_.set("LANG", nullptr);
    }
    EnvGuard env_;
};

std::string localeInfo(LCID lcid, LCTYPE type)
{
    char buf[128];
    int n = GetLocaleInfoA(lcid, type, buf, sizeof buf);
    return n > 0 ? std::string(buf, static_cast<size_t>(n - 1)) : "<failed>";
}

TEST_F(CLocale, AnswersAsEnglishUnitedStates)
{
    struct Case {
        LCTYPE type;
        const char *expected;
    };
    const Case cases[] = {
        {LOCALE_SDECIMAL, "."},
        {LOCALE_STHOUSAND, ","},
        {LOCALE_SLIST, ","},
        {LOCALE_SSHORTDATE, "M/d/yyyy"},
        {LOCALE_SLONGDATE, "dddd, MMMM d, yyyy"},
        {LOCALE_STIMEFORMAT, "h:mm:ss tt"},
        {LOCALE_STIME, ":"},
        {LOCALE_SDATE, "/"},
        {LOCALE_IDATE, "0"},
        {LOCALE_ITIME, "0"},
        {LOCALE_S1159, "AM"},
        {LOCALE_S2359, "PM"},
        {LOCALE_SDAYNAME1, "Monday"},
        {LOCALE_SDAYNAME7, "Sunday"},
        {LOCALE_SABBREVDAYNAME1, "Mon"},
        {LOCALE_SABBREVDAYNAME6, "Sat"},
        {LOCALE_SMONTHNAME1, "January"},
        {LOCALE_SMONTHNAME12, "December"},
        {LOCALE_SABBREVMONTHNAME5, "May"},
        {LOCALE_SABBREVMONTHNAME9, "Sep"},
        {LOCALE_IMEASURE, "1"},
        {LOCALE_SLANGUAGE, "English (United States)"},
        {LOCALE_SENGLANGUAGE, "English"},
        {LOCALE_SISO639LANGNAME, "en"},
        {LOCALE_SISO3166CTRYNAME, "US"},
        {LOCALE_ILANGUAGE, "0409"},
        {LOCALE_SNAME, "en-US"},
        {LOCALE_IFIRSTDAYOFWEEK, "6"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.type);
        EXPECT_EQ(localeInfo(LOCALE_USER_DEFAULT, c.type), c.expected);
        EXPECT_EQ(localeInfo(LOCALE_SYSTEM_DEFAULT, c.type), c.expected);
        EXPECT_EQ(localeInfo(0x0409, c.type), c.expected);
    }
    EXPECT_EQ(GetUserDefaultLCID(), 0x0409u);
    EXPECT_EQ(GetSystemDefaultLCID(), 0x0409u);
    EXPECT_EQ(GetUserDefaultLangID(), 0x0409);
    EXPECT_EQ(GetSystemDefaultLangID(), 0x0409);
    EXPECT_EQ(GetThreadLocale(), 0x0409u);
}

TEST_F(CLocale, InvariantLocaleHasItsOwnAnswers)
{
    EXPECT_EQ(localeInfo(LOCALE_INVARIANT, LOCALE_SISO639LANGNAME), "iv");
    EXPECT_EQ(localeInfo(LOCALE_INVARIANT, LOCALE_SSHORTDATE), "MM/dd/yyyy");
    EXPECT_EQ(localeInfo(LOCALE_INVARIANT, LOCALE_STIMEFORMAT), "HH:mm:ss");
    EXPECT_EQ(localeInfo(LOCALE_INVARIANT, LOCALE_SDECIMAL), ".");
}

TEST_F(CLocale, BufferSizesFollowTheWindowsContract)
{
    EXPECT_EQ(GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_SDAYNAME3, nullptr, 0), 10)
        << "\"Wednesday\" and its terminator";
    char buf[10];
    EXPECT_EQ(GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_SDAYNAME3, buf, 10), 10);
    EXPECT_STREQ(buf, "Wednesday");
    SetLastError(0);
    EXPECT_EQ(GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_SDAYNAME3, buf, 9), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});

    WCHAR wide[16];
    EXPECT_EQ(GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDAYNAME1, wide, 16), 7);
    EXPECT_EQ(std::u16string(wide), u"Monday");

    DWORD number = 0;
    EXPECT_EQ(GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_IMEASURE | LOCALE_RETURN_NUMBER,
                             reinterpret_cast<LPSTR>(&number), sizeof number),
              4);
    EXPECT_EQ(number, 1u);
    EXPECT_EQ(GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_ILANGUAGE | LOCALE_RETURN_NUMBER,
                             reinterpret_cast<LPWSTR>(&number), 2),
              2);
    EXPECT_EQ(number, 0x0409u);

    SetLastError(0);
    EXPECT_EQ(GetLocaleInfoA(LOCALE_USER_DEFAULT, 0x7777, buf, 10), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_FLAGS});
    SetLastError(0);
    EXPECT_EQ(GetLocaleInfoA(0x0437, LOCALE_SDECIMAL, buf, 10), 0) << "Georgian is not served";
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
}

std::string dateString(DWORD flags, const SYSTEMTIME &st, const char *picture)
{
    char buf[128];
    int n = GetDateFormatA(LOCALE_USER_DEFAULT, flags, &st, picture, buf, sizeof buf);
    return n > 0 ? std::string(buf, static_cast<size_t>(n - 1)) : "<failed>";
}

std::string timeString(DWORD flags, const SYSTEMTIME &st, const char *picture)
{
    char buf[128];
    int n = GetTimeFormatA(LOCALE_USER_DEFAULT, flags, &st, picture, buf, sizeof buf);
    return n > 0 ? std::string(buf, static_cast<size_t>(n - 1)) : "<failed>";
}

TEST_F(CLocale, DatePictures)
{
    SYSTEMTIME st{2024, 2, 3 /* wrong: corrected */, 5, 13, 5, 9, 0};
    struct Case {
        DWORD flags;
        const char *picture;
        const char *expected;
    };
    const Case cases[] = {
        {0, "d/M/yy", "5/2/24"},
        {0, "dd MMM yyyy", "05 Feb 2024"},
        {0, "dddd, MMMM d, yyyy", "Monday, February 5, 2024"},
        {0, "ddd", "Mon"},
        {0, "'Today is' dddd", "Today is Monday"},
        {0, "'It''s' yyyy", "It's 2024"},
        {0, "y-MM", "24-02"},
        {0, "yyyy.MM.dd g", "2024.02.05 A.D."},
        {DATE_SHORTDATE, nullptr, "2/5/2024"},
        {DATE_LONGDATE, nullptr, "Monday, February 5, 2024"},
        {DATE_YEARMONTH, nullptr, "February 2024"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.picture ? c.picture : "flags");
        EXPECT_EQ(dateString(c.flags, st, c.picture), c.expected);
    }
    SYSTEMTIME y2009{2009, 1, 0, 9, 0, 0, 0, 0};
    EXPECT_EQ(dateString(0, y2009, "y/yy"), "9/09");

    char buf[8];
    EXPECT_EQ(GetDateFormatA(LOCALE_USER_DEFAULT, 0, &st, "yyyy", nullptr, 0), 5);
    SetLastError(0);
    EXPECT_EQ(GetDateFormatA(LOCALE_USER_DEFAULT, 0, &st, "dddd", buf, 6), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    SetLastError(0);
    EXPECT_EQ(GetDateFormatA(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &st, "yyyy", buf, 8), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_FLAGS});
    SYSTEMTIME feb30{2024, 2, 0, 30, 0, 0, 0, 0};
    SetLastError(0);
    EXPECT_EQ(GetDateFormatA(LOCALE_USER_DEFAULT, 0, &feb30, "yyyy", buf, 8), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});

    WCHAR wide[32];
    EXPECT_EQ(GetDateFormatW(LOCALE_USER_DEFAULT, 0, &st, u"MMM d", wide, 32), 6);
    EXPECT_EQ(std::u16string(wide), u"Feb 5");
}

TEST_F(CLocale, TimePicturesAndFlags)
{
    SYSTEMTIME pm{2024, 2, 1, 5, 13, 5, 9, 0};
    SYSTEMTIME midnight{2024, 2, 1, 5, 0, 0, 0, 0};
    SYSTEMTIME noon{2024, 2, 1, 5, 12, 30, 0, 0};
    struct Case {
        const SYSTEMTIME *st;
        DWORD flags;
        const char *picture;
        const char *expected;
    };
    const Case cases[] = {
        {&pm, 0, nullptr, "1:05:09 PM"},
        {&pm, 0, "hh:mm tt", "01:05 PM"},
        {&pm, 0, "HH:mm:ss", "13:05:09"},
        {&pm, 0, "H 'h' m 'min'", "13 h 5 min"},
        {&pm, 0, "t", "P"},
        {&pm, TIME_NOSECONDS, nullptr, "1:05 PM"},
        {&pm, TIME_NOMINUTESORSECONDS, nullptr, "1 PM"},
        {&pm, TIME_NOTIMEMARKER, nullptr, "1:05:09"},
        {&pm, TIME_FORCE24HOURFORMAT, nullptr, "13:05:09 PM"},
        {&pm, TIME_FORCE24HOURFORMAT | TIME_NOTIMEMARKER | TIME_NOSECONDS, nullptr, "13:05"},
        {&midnight, 0, nullptr, "12:00:00 AM"},
        {&noon, 0, "h:mm tt", "12:30 PM"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message()
                     << (c.picture ? c.picture : "default") << " flags " << c.flags);
        EXPECT_EQ(timeString(c.flags, *c.st, c.picture), c.expected);
    }
    SYSTEMTIME bad{2024, 2, 1, 5, 24, 0, 0, 0};
    char buf[16];
    SetLastError(0);
    EXPECT_EQ(GetTimeFormatA(LOCALE_USER_DEFAULT, 0, &bad, nullptr, buf, 16), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
}

// Runs only where the C library has the locale (CI images often lack it).
TEST(InstalledLocale, GermanFromTheCLibrary)
{
    locale_t probe = newlocale(LC_ALL_MASK, "de_DE.UTF-8", nullptr);
    if (!probe)
        GTEST_SKIP() << "de_DE.UTF-8 is not installed";
    freelocale(probe);
    EnvGuard env;
    env.set("LC_ALL", "de_DE.UTF-8");
    EXPECT_EQ(GetUserDefaultLCID(), 0x0407u);
    EXPECT_EQ(localeInfo(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL), ",");
    EXPECT_EQ(localeInfo(LOCALE_USER_DEFAULT, LOCALE_STHOUSAND), ".");
    EXPECT_EQ(localeInfo(LOCALE_USER_DEFAULT, LOCALE_SLIST), ";");
    EXPECT_EQ(localeInfo(LOCALE_USER_DEFAULT, LOCALE_SSHORTDATE), "dd.MM.yyyy");
    EXPECT_EQ(localeInfo(LOCALE_USER_DEFAULT, LOCALE_IDATE), "1");
    EXPECT_EQ(localeInfo(LOCALE_USER_DEFAULT, LOCALE_ITIME), "1");
    EXPECT_EQ(localeInfo(LOCALE_USER_DEFAULT, LOCALE_IMEASURE), "0");
    EXPECT_EQ(localeInfo(LOCALE_USER_DEFAULT, LOCALE_SDAYNAME1), "Montag");
    EXPECT_EQ(localeInfo(LOCALE_USER_DEFAULT, LOCALE_SISO3166CTRYNAME), "DE");
    EXPECT_EQ(localeInfo(LOCALE_USER_DEFAULT, LOCALE_IFIRSTDAYOFWEEK), "0");
    SYSTEMTIME st{2024, 3, 0, 5, 0, 0, 0, 0};
    EXPECT_EQ(dateString(DATE_LONGDATE, st, nullptr), "Dienstag, 5. M\xC3\xA4rz 2024");
}

TEST(InstalledLocale, AmericanEnglishFromTheCLibrary)
{
    locale_t probe = newlocale(LC_ALL_MASK, "en_US.UTF-8", nullptr);
    if (!probe)
        GTEST_SKIP() << "en_US.UTF-8 is not installed";
    freelocale(probe);
    EnvGuard env;
    env.set("LC_ALL", "en_US.UTF-8");
    EXPECT_EQ(GetUserDefaultLCID(), 0x0409u);
    EXPECT_EQ(localeInfo(LOCALE_USER_DEFAULT, LOCALE_SSHORTDATE), "MM/dd/yyyy");
    EXPECT_EQ(localeInfo(LOCALE_USER_DEFAULT, LOCALE_STIMEFORMAT), "hh:mm:ss tt");
    EXPECT_EQ(localeInfo(LOCALE_USER_DEFAULT, LOCALE_SENGLANGUAGE), "English");
    EXPECT_EQ(localeInfo(LOCALE_USER_DEFAULT, LOCALE_SGROUPING), "3;0");
    EXPECT_EQ(localeInfo(LOCALE_USER_DEFAULT, LOCALE_SCURRENCY), "$");
}

}  // namespace
