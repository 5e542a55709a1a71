// DrawTextA/W: formatting text in a rectangle (line and word breaks,
// alignment, vertical centring of single lines, '&' prefixes, tabs, end
// ellipsis, DT_CALCRECT), on top of the DC's text functions.
#include "gdiprivate.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace
{

struct Line {
    std::string text;
    int prefixAt = -1;  // byte offset of the character to underline
};

int width(HDC hdc, const std::string &s)
{
    SIZE sz{0, 0};
    GetTextExtentPoint32A(hdc, s.data(), static_cast<int>(s.size()), &sz);
    return sz.cx;
}

// Removes '&' prefixes ("&&" is a literal '&'), remembering the underlined
// character's offset.
Line stripPrefix(const std::string &s, UINT format)
{
    Line l;
    if (format & DT_NOPREFIX) {
        l.text = s;
        return l;
    }
    for (size_t i = 0; i < s.size(); ++i) {
        if (s[i] == '&' && i + 1 < s.size()) {
            ++i;
            if (s[i] != '&')
                l.prefixAt = static_cast<int>(l.text.size());
        }
        l.text += s[i];
    }
    return l;
}

std::string expandTabs(HDC hdc, const std::string &s, UINT format)
{
    if (!(format & DT_EXPANDTABS) || s.find('\t') == std::string::npos)
        return s;
    TEXTMETRICA tm{};
    GetTextMetricsA(hdc, &tm);
    int stop = 8 * std::max<int>(1, tm.tmAveCharWidth);
    int space = std::max(1, width(hdc, " "));
    std::string out;
    for (char c : s) {
        if (c != '\t') {
            out += c;
            continue;
        }
        int w = width(hdc, out);
        int next = (w / stop + 1) * stop;
        out.append(static_cast<size_t>(std::max(1, (next - w + space - 1) / space)), ' ');
    }
    return out;
}

// Breaks one paragraph into lines no wider than `limit` at spaces; a word
// wider than the limit stays whole on its own line.
void wrap(HDC hdc, const std::string &para, int limit, std::vector<std::string> &out)
{
    std::string line;
    size_t i = 0;
    while (i < para.size()) {
        size_t end = para.find(' ', i);
        if (end == std::string::npos)
            end = para.size();
        std::string word = para.substr(i, end - i);
        std::string candidate = line.empty() ? word : line + " " + word;
        if (!line.empty() && width(hdc, candidate) > limit) {
            out.push_back(line);
            line = word;
        } else {
            line = candidate;
        }
        i = end + 1;
    }
    out.push_back(line);
}

std::string ellipsize(HDC hdc, const std::string &s, int limit)
{
    if (width(hdc, s) <= limit)
        return s;
    std::string t = s;
    while (!t.empty()) {
        // Drop a whole UTF-8 character.
        size_t cut = t.size() - 1;
        while (cut > 0 && (static_cast<unsigned char>(t[cut]) & 0xC0) == 0x80)
            --cut;
        t.resize(cut);
        if (width(hdc, t + "...") <= limit)
            break;
    }
    return t + "...";
}

}  // namespace

extern "C" int WINAPI DrawTextA(HDC hdc, LPCSTR lpchText, int cchText, LPRECT lprc, UINT format)
{
    if (!om::gdi::dcRecord(hdc) || !lprc || (!lpchText && cchText != 0))
        return 0;
    std::string text = cchText < 0 ? std::string(lpchText) : std::string(lpchText, static_cast<size_t>(cchText));
    TEXTMETRICA tm{};
    if (!GetTextMetricsA(hdc, &tm))
        return 0;
    int lineHeight = tm.tmHeight + ((format & DT_EXTERNALLEADING) ? tm.tmExternalLeading : 0);
    int limit = lprc->right - lprc->left;

    // Paragraphs, then lines.
    std::vector<std::string> raw;
    if (format & DT_SINGLELINE) {
        std::replace(text.begin(), text.end(), '\n', ' ');
        text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
        raw.push_back(text);
    } else {
        size_t start = 0;
        while (true) {
            size_t nl = text.find('\n', start);
            std::string para = text.substr(start, nl == std::string::npos ? nl : nl - start);
            if (!para.empty() && para.back() == '\r')
                para.pop_back();
            raw.push_back(para);
            if (nl == std::string::npos)
                break;
            start = nl + 1;
        }
    }
    std::vector<Line> lines;
    for (const std::string &para : raw) {
        Line stripped = stripPrefix(expandTabs(hdc, para, format), format);
        if ((format & DT_WORDBREAK) && !(format & DT_SINGLELINE)) {
            std::vector<std::string> pieces;
            wrap(hdc, stripped.text, limit, pieces);
            // The prefix stays with whichever piece holds it.
            int offset = 0;
            for (const std::string &p : pieces) {
                Line l;
                l.text = p;
                size_t at = stripped.text.find(p, static_cast<size_t>(offset));
                if (stripped.prefixAt >= 0 && at != std::string::npos &&
                    stripped.prefixAt >= static_cast<int>(at) &&
                    stripped.prefixAt < static_cast<int>(at + p.size()))
                    l.prefixAt = stripped.prefixAt - static_cast<int>(at);
                if (at != std::string::npos)
                    offset = static_cast<int>(at + p.size());
                lines.push_back(l);
            }
        } else {
            lines.push_back(stripped);
        }
    }
    if (format & DT_END_ELLIPSIS)
        for (Line &l : lines) {
            std::string e = ellipsize(hdc, l.text, limit);
            if (e != l.text && l.prefixAt >= static_cast<int>(e.size()) - 3)
                l.prefixAt = -1;
            l.text = e;
        }

    int widest = 0;
    for (const Line &l : lines)
        widest = std::max(widest, width(hdc, l.text));
    int total = lineHeight * static_cast<int>(lines.size());
    if (format & DT_CALCRECT) {
        if (!(format & DT_WORDBREAK) || widest > limit)
            lprc->right = lprc->left + widest;
        lprc->bottom = lprc->top + total;
        return total;
    }

    int y = lprc->top;
    if (format & DT_SINGLELINE) {
        if (format & DT_VCENTER)
            y = lprc->top + (lprc->bottom - lprc->top - total) / 2;
        else if (format & DT_BOTTOM)
            y = lprc->bottom - total;
    }
    int saved = SaveDC(hdc);
    SetTextAlign(hdc, TA_LEFT | TA_TOP | TA_NOUPDATECP);
    if (!(format & DT_NOCLIP))
        IntersectClipRect(hdc, lprc->left, lprc->top, lprc->right, lprc->bottom);
    COLORREF textColor = GetTextColor(hdc);
    HBRUSH underline = CreateSolidBrush(textColor);
    for (const Line &l : lines) {
        int w = width(hdc, l.text);
        int x = lprc->left;
        if (format & DT_CENTER)
            x = lprc->left + (limit - w) / 2;
        else if (format & DT_RIGHT)
            x = lprc->right - w;
        if (!(format & DT_PREFIXONLY))
            TextOutA(hdc, x, y, l.text.data(), static_cast<int>(l.text.size()));
        if (l.prefixAt >= 0 && !(format & DT_HIDEPREFIX)) {
            size_t len = 1;
            while (static_cast<size_t>(l.prefixAt) + len < l.text.size() &&
                   (static_cast<unsigned char>(l.text[static_cast<size_t>(l.prefixAt) + len]) & 0xC0) ==
                       0x80)
                ++len;
            int ux = x + width(hdc, l.text.substr(0, static_cast<size_t>(l.prefixAt)));
            int uw = width(hdc, l.text.substr(static_cast<size_t>(l.prefixAt), len));
            RECT u{ux, y + tm.tmAscent + 1, ux + uw, y + tm.tmAscent + 2};
            FillRect(hdc, &u, underline);
        }
        y += lineHeight;
    }
    DeleteObject(underline);
    RestoreDC(hdc, saved);
    return y - lprc->top;
}

extern "C" int WINAPI DrawTextW(HDC hdc, LPCWSTR lpchText, int cchText, LPRECT lprc, UINT format)
{
    if (!lpchText && cchText != 0)
        return 0;
    int n = WideCharToMultiByte(CP_UTF8, 0, lpchText, cchText, nullptr, 0, nullptr, nullptr);
    std::string u(static_cast<size_t>(std::max(n, 0)), '\0');
    if (n > 0)
        WideCharToMultiByte(CP_UTF8, 0, lpchText, cchText, u.data(), n, nullptr, nullptr);
    if (cchText < 0 && !u.empty() && u.back() == '\0')
        u.pop_back();
    return DrawTextA(hdc, u.data(), static_cast<int>(u.size()), lprc, format);
}
