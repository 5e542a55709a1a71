// wsprintf and wvsprintf (A and W): Windows' own small formatter.  It is
// written out here rather than mapped onto the C library's printf because
// the sizes differ: Windows' 'l' means a 32-bit LONG, while C's long is 64
// bits on this platform, and the A/W meaning of %s/%S is Windows'.
#include "kernel/omstring.h"

#include <winnls.h>
#include <winuser.h>

#include <cstdarg>
#include <cstring>
#include <string>

using namespace om::kernel;

namespace {

// Windows limits the output to 1024 characters, the terminator included.
constexpr size_t kMaxOutput = 1024;

template <class C> class Output {
public:
    explicit Output(C *buffer) : buffer_(buffer) {}
    void put(C c)
    {
        if (n_ < kMaxOutput - 1)
            buffer_[n_++] = c;
    }
    void put(const C *s, size_t len)
    {
        for (size_t i = 0; i < len; ++i)
            put(s[i]);
    }
    void pad(C c, size_t count)
    {
        for (size_t i = 0; i < count; ++i)
            put(c);
    }
    int finish()
    {
        buffer_[n_] = 0;
        return static_cast<int>(n_);
    }

private:
    C *buffer_;
    size_t n_ = 0;
};

struct Field {
    bool left = false;    // '-'
    bool zero = false;    // '0'
    bool prefix = false;  // '#'
    size_t width = 0;
    int precision = -1;
    enum Size { Default, Short, Long, LongLong, Pointer } size = Default;
    bool wideText = false;  // %s/%c read wide text
};

template <class C> void putPadded(Output<C> &out, const Field &field, const C *text, size_t len)
{
    size_t padding = field.width > len ? field.width - len : 0;
    if (!field.left)
        out.pad(' ', padding);
    out.put(text, len);
    if (field.left)
        out.pad(' ', padding);
}

// An integer with sign, '#' prefix, precision (minimum digits) and width.
template <class C>
void putInteger(Output<C> &out, const Field &field, uint64_t magnitude, bool negative, int base,
                bool upper)
{
    char digits[24];
    size_t nd = 0;
    const char *set = upper ? "0123456789ABCDEF" : "0123456789abcdef";
    do {
        digits[nd++] = set[magnitude % base];
        magnitude /= base;
    } while (magnitude);
    if (field.precision == 0 && nd == 1 && digits[0] == '0')
        nd = 0;  // C's rule: precision 0 prints no digit for 0
    size_t zeros = field.precision > 0 && static_cast<size_t>(field.precision) > nd
                       ? field.precision - nd
                       : 0;
    char head[3];
    size_t nh = 0;
    if (negative)
        head[nh++] = '-';
    if (field.prefix && base == 16 && nd > 0 && !(nd == 1 && digits[0] == '0')) {
        head[nh++] = '0';
        head[nh++] = upper ? 'X' : 'x';
    }
    size_t len = nh + zeros + nd;
    size_t padding = field.width > len ? field.width - len : 0;
    bool zeroPad = field.zero && !field.left && field.precision < 0;
    if (!field.left && !zeroPad)
        out.pad(' ', padding);
    for (size_t i = 0; i < nh; ++i)
        out.put(static_cast<C>(head[i]));
    if (zeroPad)
        out.pad('0', padding);
    out.pad('0', zeros);
    while (nd)
        out.put(static_cast<C>(digits[--nd]));
    if (field.left)
        out.pad(' ', padding);
}

// Text of the other width, converted; precision counts source characters.
std::basic_string<char16_t> convertText(const char *s, size_t n)
{
    return utf8ToUtf16({s, n});
}
std::string convertText(const char16_t *s, size_t n)
{
    return utf16ToUtf8({s, n});
}

template <class S> size_t limitedLength(const S *s, int precision)
{
    size_t n = 0;
    while ((precision < 0 || n < static_cast<size_t>(precision)) && s[n])
        ++n;
    return n;
}

template <class C, class S> void putText(Output<C> &out, const Field &field, const S *s)
{
    static const char kNull[] = "(null)";
    if (!s) {
        C text[sizeof kNull];
        size_t n = limitedLength(kNull, field.precision);
        for (size_t i = 0; i < n; ++i)
            text[i] = static_cast<C>(kNull[i]);
        putPadded(out, field, text, n);
        return;
    }
    size_t n = limitedLength(s, field.precision);
    if constexpr (sizeof(C) == sizeof(S)) {
        putPadded(out, field, reinterpret_cast<const C *>(s), n);
    } else {
        auto converted = convertText(s, n);
        putPadded(out, field, reinterpret_cast<const C *>(converted.data()), converted.size());
    }
}

template <class C> void putChar(Output<C> &out, const Field &field, char32_t c, bool wideSource)
{
    if (c == 0)
        return;
    C text[4];
    size_t n = 0;
    if constexpr (sizeof(C) == 1) {
        // A narrow character is a byte of the caller's text, passed as is.
        if (wideSource)
            n = encodeUtf8(c, reinterpret_cast<char *>(text));
        else
            text[n++] = static_cast<C>(c);
    } else {
        (void)wideSource;
        text[n++] = static_cast<C>(c);
    }
    putPadded(out, field, text, n);
}

template <class C> int format(C *buffer, const C *fmt, va_list ap)
{
    Output<C> out(buffer);
    constexpr bool kWide = sizeof(C) == 2;
    const C *p = fmt;
    while (*p) {
        if (*p != '%') {
            out.put(*p++);
            continue;
        }
        const C *start = p++;
        Field field;
        for (;; ++p) {
            if (*p == '-')
                field.left = true;
            else if (*p == '0')
                field.zero = true;
            else if (*p == '#')
                field.prefix = true;
            else
                break;
        }
        while (*p >= '0' && *p <= '9')
            field.width = field.width * 10 + (*p++ - '0');
        if (*p == '.') {
            ++p;
            field.precision = 0;
            while (*p >= '0' && *p <= '9')
                field.precision = field.precision * 10 + (*p++ - '0');
        }
        // Size prefixes.  For text, 'l' and 'w' mean wide and 'h' narrow.
        if (*p == 'l' && p[1] == 'l') {
            field.size = Field::LongLong;
            p += 2;
        } else if (*p == 'l' || *p == 'w') {
            field.size = Field::Long;
            field.wideText = true;
            ++p;
        } else if (*p == 'h') {
            field.size = Field::Short;
            ++p;
        } else if (*p == 'I' && p[1] == '6' && p[2] == '4') {
            field.size = Field::LongLong;
            p += 3;
        } else if (*p == 'I' && p[1] == '3' && p[2] == '2') {
            field.size = Field::Long;
            p += 3;
        } else if (*p == 'I') {
            field.size = Field::Pointer;
            ++p;
        }
        bool wideText = kWide ? field.size != Field::Short : field.wideText;
        switch (*p) {
        case '%':
            out.put('%');
            break;
        case 'd':
        case 'i': {
            int64_t v;
            if (field.size == Field::LongLong || field.size == Field::Pointer)
                v = va_arg(ap, long long);
            else if (field.size == Field::Short)
                v = static_cast<short>(va_arg(ap, int));
            else
                v = va_arg(ap, int);
            uint64_t mag = v < 0 ? 0 - static_cast<uint64_t>(v) : static_cast<uint64_t>(v);
            putInteger(out, field, mag, v < 0, 10, false);
            break;
        }
        case 'u':
        case 'x':
        case 'X': {
            uint64_t v;
            if (field.size == Field::LongLong || field.size == Field::Pointer)
                v = va_arg(ap, unsigned long long);
            else if (field.size == Field::Short)
                v = static_cast<unsigned short>(va_arg(ap, unsigned));
            else
                v = va_arg(ap, unsigned);
            putInteger(out, field, v, false, *p == 'u' ? 10 : 16, *p == 'X');
            break;
        }
        case 'p': {
            Field ps = field;
            ps.precision = 2 * sizeof(void *);
            ps.prefix = false;
            putInteger(out, ps, reinterpret_cast<uintptr_t>(va_arg(ap, void *)), false, 16, true);
            break;
        }
        case 'c':
        case 'C': {
            bool wide = *p == 'c' ? wideText : !wideText;
            if (field.size == Field::Long)
                wide = true;
            else if (field.size == Field::Short)
                wide = false;
            unsigned v = va_arg(ap, unsigned);
            putChar(out, field, wide ? static_cast<char16_t>(v) : static_cast<unsigned char>(v),
                    wide);
            break;
        }
        case 's':
        case 'S': {
            bool wide = *p == 's' ? wideText : !wideText;
            if (field.size == Field::Long)
                wide = true;
            else if (field.size == Field::Short)
                wide = false;
            if (wide)
                putText(out, field, va_arg(ap, const char16_t *));
            else
                putText(out, field, va_arg(ap, const char *));
            break;
        }
        case 0:
            // A format that ends inside a field prints what it had.
            out.put(start, p - start);
            continue;
        default:
            // Not a field: Windows copies the character.
            out.put(*p);
            break;
        }
        ++p;
    }
    return out.finish();
}

}  // namespace

extern "C" int WINAPI wvsprintfA(LPSTR lpOutput, LPCSTR lpFmt, va_list arglist)
{
    if (!lpOutput || !lpFmt)
        return -1;
    va_list ap;
    va_copy(ap, arglist);
    // Converting text of the other width allocates; out of memory, the
    // output is left empty.
    int n = withoutThrowing("wvsprintfA", 0, [&] { return format<char>(lpOutput, lpFmt, ap); });
    if (n == 0)
        lpOutput[0] = 0;
    va_end(ap);
    return n;
}

extern "C" int WINAPI wvsprintfW(LPWSTR lpOutput, LPCWSTR lpFmt, va_list arglist)
{
    if (!lpOutput || !lpFmt)
        return -1;
    va_list ap;
    va_copy(ap, arglist);
    // Converting text of the other width allocates; out of memory, the
    // output is left empty.
    int n = withoutThrowing("wvsprintfW", 0, [&] { return format<char16_t>(lpOutput, lpFmt, ap); });
    if (n == 0)
        lpOutput[0] = 0;
    va_end(ap);
    return n;
}

extern "C" int WINAPIV wsprintfA(LPSTR lpOut, LPCSTR lpFmt, ...)
{
    va_list ap;
    va_start(ap, lpFmt);
    int n = wvsprintfA(lpOut, lpFmt, ap);
    va_end(ap);
    return n;
}

extern "C" int WINAPIV wsprintfW(LPWSTR lpOut, LPCWSTR lpFmt, ...)
{
    va_list ap;
    va_start(ap, lpFmt);
    int n = wvsprintfW(lpOut, lpFmt, ap);
    va_end(ap);
    return n;
}
