// Clocks and calendar time: tick counts and the performance counter on
// CLOCK_MONOTONIC (the clock a local X server stamps its events with),
// FILETIME and SYSTEMTIME conversions, the time zone from the C library,
// and winmm's timeGetTime.
#include "kernel/omdiag.h"

#include <mmsystem.h>
#include <winbase.h>

#include <cstdint>
#include <cstring>
#include <ctime>

namespace {

constexpr int64_t kTicksPerSecond = 10000000;  // FILETIME counts 100 ns
constexpr int64_t kTicksPerMs = 10000;
constexpr int64_t kTicksPerDay = 86400 * kTicksPerSecond;
constexpr int64_t kUnixEpochTicks = 116444736000000000LL;  // 1970-01-01 since 1601-01-01
constexpr uint64_t kMaxFileTime = 0x7FFFFFFFFFFFFFFFULL;

uint64_t monotonicNs()
{
    timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return static_cast<uint64_t>(ts.tv_sec) * 1000000000ULL + static_cast<uint64_t>(ts.tv_nsec);
}

// Days since 1970-01-01 of a proleptic Gregorian date, and back.
int64_t daysFromCivil(int64_t y, unsigned m, unsigned d)
{
    y -= m <= 2;
    int64_t era = (y >= 0 ? y : y - 399) / 400;
    unsigned yoe = static_cast<unsigned>(y - era * 400);
    unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<int64_t>(doe) - 719468;
}

void civilFromDays(int64_t z, int64_t &y, unsigned &m, unsigned &d)
{
    z += 719468;
    int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    unsigned doe = static_cast<unsigned>(z - era * 146097);
    unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    y = static_cast<int64_t>(yoe) + era * 400;
    unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    unsigned mp = (5 * doy + 2) / 153;
    d = doy - (153 * mp + 2) / 5 + 1;
    m = mp < 10 ? mp + 3 : mp - 9;
    y += m <= 2;
}

unsigned daysInMonth(int64_t y, unsigned m)
{
    static const unsigned kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    bool leap = (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
    return m == 2 && leap ? 29 : kDays[m - 1];
}

const int64_t kDays1601 = daysFromCivil(1601, 1, 1);

uint64_t ticksOf(const FILETIME *ft)
{
    return (static_cast<uint64_t>(ft->dwHighDateTime) << 32) | ft->dwLowDateTime;
}

void setTicks(FILETIME *ft, uint64_t ticks)
{
    ft->dwLowDateTime = static_cast<DWORD>(ticks);
    ft->dwHighDateTime = static_cast<DWORD>(ticks >> 32);
}

void ticksToSystemTime(uint64_t ticks, SYSTEMTIME *st)
{
    int64_t days = static_cast<int64_t>(ticks / kTicksPerDay);
    uint64_t rest = ticks % kTicksPerDay;
    int64_t y;
    unsigned m, d;
    civilFromDays(days + kDays1601, y, m, d);
    st->wYear = static_cast<WORD>(y);
    st->wMonth = static_cast<WORD>(m);
    st->wDay = static_cast<WORD>(d);
    st->wDayOfWeek = static_cast<WORD>((days + 1) % 7);  // 1601-01-01 was a Monday
    st->wHour = static_cast<WORD>(rest / (3600 * kTicksPerSecond));
    st->wMinute = static_cast<WORD>(rest / (60 * kTicksPerSecond) % 60);
    st->wSecond = static_cast<WORD>(rest / kTicksPerSecond % 60);
    st->wMilliseconds = static_cast<WORD>(rest / kTicksPerMs % 1000);
}

bool systemTimeToTicks(const SYSTEMTIME *st, uint64_t *ticks)
{
    if (st->wYear < 1601 || st->wYear > 30827 || st->wMonth < 1 || st->wMonth > 12 ||
        st->wDay < 1 || st->wDay > daysInMonth(st->wYear, st->wMonth) || st->wHour > 23 ||
        st->wMinute > 59 || st->wSecond > 59 || st->wMilliseconds > 999)
        return false;
    int64_t days = daysFromCivil(st->wYear, st->wMonth, st->wDay) - kDays1601;
    *ticks = static_cast<uint64_t>(days) * kTicksPerDay +
             ((st->wHour * 60 + st->wMinute) * 60 + st->wSecond) * uint64_t(kTicksPerSecond) +
             st->wMilliseconds * uint64_t(kTicksPerMs);
    return true;
}

uint64_t nowTicks()
{
    timespec ts;
    clock_gettime(CLOCK_REALTIME, &ts);
    return static_cast<uint64_t>(ts.tv_sec * kTicksPerSecond + ts.tv_nsec / 100 + kUnixEpochTicks);
}

// The offset of local time from UTC, in seconds, as it is now: Windows
// converts every local file time with the current bias.
int64_t currentUtcOffset()
{
    time_t now = time(nullptr);
    tm local;
    localtime_r(&now, &local);
    return local.tm_gmtoff;
}

bool nullPointer(const char *function)
{
    omDebugWarning(OmDiag::NullPointer, function);
    SetLastError(ERROR_INVALID_PARAMETER);
    return false;
}

// A transition written the way TIME_ZONE_INFORMATION wants it: the n-th
// (5 = last) weekday of a month, at the local wall time before the change.
void transitionRule(time_t instant, long offsetBefore, SYSTEMTIME *rule)
{
    uint64_t ticks =
        static_cast<uint64_t>((instant + offsetBefore) * kTicksPerSecond + kUnixEpochTicks);
    SYSTEMTIME st;
    ticksToSystemTime(ticks, &st);
    *rule = SYSTEMTIME{};
    rule->wMonth = st.wMonth;
    rule->wDayOfWeek = st.wDayOfWeek;
    bool last = st.wDay + 7u > daysInMonth(st.wYear, st.wMonth);
    rule->wDay = static_cast<WORD>(last ? 5 : (st.wDay + 6) / 7);
    rule->wHour = st.wHour;
    rule->wMinute = st.wMinute;
}

// The first second at or after lo whose daylight flag differs from lo's.
time_t findTransition(time_t lo, time_t hi)
{
    tm t;
    localtime_r(&lo, &t);
    int dstAtLo = t.tm_isdst > 0;
    while (hi - lo > 1) {
        time_t mid = lo + (hi - lo) / 2;
        localtime_r(&mid, &t);
        if ((t.tm_isdst > 0) == dstAtLo)
            lo = mid;
        else
            hi = mid;
    }
    return hi;
}

void copyName(WCHAR *dst, const char *src)
{
    size_t i = 0;
    for (; src && src[i] && i < 31; ++i)
        dst[i] = static_cast<unsigned char>(src[i]);
    dst[i] = 0;
}

}  // namespace

// ---- Clocks ----

extern "C" DWORD WINAPI GetTickCount(void)
{
    return static_cast<DWORD>(monotonicNs() / 1000000ULL);
}

extern "C" ULONGLONG WINAPI GetTickCount64(void)
{
    return monotonicNs() / 1000000ULL;
}

extern "C" BOOL WINAPI QueryPerformanceCounter(LARGE_INTEGER *lpPerformanceCount)
{
    if (!lpPerformanceCount)
        return nullPointer("QueryPerformanceCounter");
    lpPerformanceCount->QuadPart = static_cast<LONGLONG>(monotonicNs());
    return TRUE;
}

extern "C" BOOL WINAPI QueryPerformanceFrequency(LARGE_INTEGER *lpFrequency)
{
    if (!lpFrequency)
        return nullPointer("QueryPerformanceFrequency");
    lpFrequency->QuadPart = 1000000000LL;
    return TRUE;
}

extern "C" DWORD WINAPI timeGetTime(void)
{
    return GetTickCount();
}

// The clock already has a resolution of a millisecond or better.
extern "C" MMRESULT WINAPI timeBeginPeriod(UINT uPeriod)
{
    return uPeriod == 0 ? TIMERR_NOCANDO : TIMERR_NOERROR;
}

extern "C" MMRESULT WINAPI timeEndPeriod(UINT uPeriod)
{
    return uPeriod == 0 ? TIMERR_NOCANDO : TIMERR_NOERROR;
}

extern "C" MMRESULT WINAPI timeGetDevCaps(LPTIMECAPS ptc, UINT cbtc)
{
    if (!ptc || cbtc < sizeof(TIMECAPS))
        return TIMERR_STRUCT;
    ptc->wPeriodMin = 1;
    ptc->wPeriodMax = 1000000;
    return TIMERR_NOERROR;
}

// ---- Calendar time ----

extern "C" VOID WINAPI GetSystemTimeAsFileTime(LPFILETIME lpSystemTimeAsFileTime)
{
    if (!lpSystemTimeAsFileTime) {
        nullPointer("GetSystemTimeAsFileTime");
        return;
    }
    setTicks(lpSystemTimeAsFileTime, nowTicks());
}

extern "C" VOID WINAPI GetSystemTime(LPSYSTEMTIME lpSystemTime)
{
    if (!lpSystemTime) {
        nullPointer("GetSystemTime");
        return;
    }
    ticksToSystemTime(nowTicks(), lpSystemTime);
}

extern "C" VOID WINAPI GetLocalTime(LPSYSTEMTIME lpSystemTime)
{
    if (!lpSystemTime) {
        nullPointer("GetLocalTime");
        return;
    }
    uint64_t utc = nowTicks();
    time_t seconds = static_cast<time_t>((utc - kUnixEpochTicks) / kTicksPerSecond);
    tm local;
    localtime_r(&seconds, &local);
    ticksToSystemTime(utc + local.tm_gmtoff * kTicksPerSecond, lpSystemTime);
}

extern "C" BOOL WINAPI FileTimeToSystemTime(const FILETIME *lpFileTime, LPSYSTEMTIME lpSystemTime)
{
    if (!lpFileTime || !lpSystemTime)
        return nullPointer("FileTimeToSystemTime");
    uint64_t ticks = ticksOf(lpFileTime);
    if (ticks > kMaxFileTime) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    ticksToSystemTime(ticks, lpSystemTime);
    return TRUE;
}

extern "C" BOOL WINAPI SystemTimeToFileTime(const SYSTEMTIME *lpSystemTime, LPFILETIME lpFileTime)
{
    if (!lpSystemTime || !lpFileTime)
        return nullPointer("SystemTimeToFileTime");
    uint64_t ticks;
    if (!systemTimeToTicks(lpSystemTime, &ticks)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    setTicks(lpFileTime, ticks);
    return TRUE;
}

extern "C" BOOL WINAPI FileTimeToLocalFileTime(const FILETIME *lpFileTime,
                                               LPFILETIME lpLocalFileTime)
{
    if (!lpFileTime || !lpLocalFileTime)
        return nullPointer("FileTimeToLocalFileTime");
    int64_t shifted =
        static_cast<int64_t>(ticksOf(lpFileTime)) + currentUtcOffset() * kTicksPerSecond;
    if (shifted < 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    setTicks(lpLocalFileTime, static_cast<uint64_t>(shifted));
    return TRUE;
}

extern "C" BOOL WINAPI LocalFileTimeToFileTime(const FILETIME *lpLocalFileTime,
                                               LPFILETIME lpFileTime)
{
    if (!lpLocalFileTime || !lpFileTime)
        return nullPointer("LocalFileTimeToFileTime");
    int64_t shifted =
        static_cast<int64_t>(ticksOf(lpLocalFileTime)) - currentUtcOffset() * kTicksPerSecond;
    if (shifted < 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    setTicks(lpFileTime, static_cast<uint64_t>(shifted));
    return TRUE;
}

extern "C" LONG WINAPI CompareFileTime(const FILETIME *lpFileTime1, const FILETIME *lpFileTime2)
{
    if (!lpFileTime1 || !lpFileTime2) {
        nullPointer("CompareFileTime");
        return 0;
    }
    uint64_t a = ticksOf(lpFileTime1);
    uint64_t b = ticksOf(lpFileTime2);
    return a < b ? -1 : a > b ? 1 : 0;
}

// The C library knows the zone by its transitions, so this year's are
// looked up (day by day, then to the second) and written as Windows rules.
extern "C" DWORD WINAPI GetTimeZoneInformation(LPTIME_ZONE_INFORMATION lpTimeZoneInformation)
{
    if (!lpTimeZoneInformation) {
        nullPointer("GetTimeZoneInformation");
        return TIME_ZONE_ID_INVALID;
    }
    TIME_ZONE_INFORMATION &tzi = *lpTimeZoneInformation;
    std::memset(&tzi, 0, sizeof tzi);
    tzset();
    time_t now = time(nullptr);
    tm local;
    localtime_r(&now, &local);
    long stdOffset = local.tm_gmtoff, dstOffset = local.tm_gmtoff;
    bool haveStd = local.tm_isdst <= 0, haveDst = local.tm_isdst > 0;
    time_t toDst = 0, toStd = 0;

    tm jan1{};
    jan1.tm_year = local.tm_year;
    jan1.tm_mday = 1;
    time_t start = timegm(&jan1) - 86400;
    int prevDst = -1;
    long prevOffset = 0;
    for (time_t t = start; t < start + 368 * 86400; t += 86400) {
        tm day;
        localtime_r(&t, &day);
        int dst = day.tm_isdst > 0;
        (dst ? dstOffset : stdOffset) = day.tm_gmtoff;
        (dst ? haveDst : haveStd) = true;
        if (prevDst >= 0 && dst != prevDst) {
            time_t at = findTransition(t - 86400, t);
            SYSTEMTIME *rule = dst ? &tzi.DaylightDate : &tzi.StandardDate;
            (dst ? toDst : toStd) = at;
            transitionRule(at, prevOffset, rule);
        }
        prevDst = dst;
        prevOffset = day.tm_gmtoff;
    }
    if (!haveStd)
        stdOffset = dstOffset;
    tzi.Bias = static_cast<LONG>(-stdOffset / 60);
    tzi.StandardBias = 0;
    copyName(tzi.StandardName, tzname[0]);
    copyName(tzi.DaylightName, tzname[1]);
    if (!haveDst || !toDst || !toStd) {
        std::memset(&tzi.StandardDate, 0, sizeof tzi.StandardDate);
        std::memset(&tzi.DaylightDate, 0, sizeof tzi.DaylightDate);
        return TIME_ZONE_ID_UNKNOWN;
    }
    tzi.DaylightBias = static_cast<LONG>(-(dstOffset - stdOffset) / 60);
    return local.tm_isdst > 0 ? TIME_ZONE_ID_DAYLIGHT : TIME_ZONE_ID_STANDARD;
}
