// The .res reader and the sorted resource directory built from it.  This
// file depends on the C++ library only, so that the fuzz target compiles
// it alone with the fuzzer's instrumentation.
#include "kernel/omresource.h"

#include <algorithm>
#include <cstring>

namespace om::kernel
{

namespace
{

constexpr size_t kFixedTail = 16; // DataVersion, MemoryFlags, LanguageId, Version, Characteristics
constexpr uint16_t kLangNeutral = 0x0000;
constexpr uint16_t kLangUserDefault = 0x0400;
constexpr uint16_t kLangSystemDefault = 0x0800;
constexpr uint16_t kLangEnglishUs = 0x0409;
constexpr uint16_t kLangEnglish = 0x0009;

// The image may lie at any address (a fuzzer's buffer, a copy), so every
// field is read with memcpy.
uint16_t readU16(const unsigned char *p)
{
    uint16_t v;
    memcpy(&v, p, sizeof v);
    return v;
}

uint32_t readU32(const unsigned char *p)
{
    uint32_t v;
    memcpy(&v, p, sizeof v);
    return v;
}

size_t alignUp4(size_t n)
{
    return (n + 3) & ~size_t(3);
}

// Reads a type or name field at `pos` inside a header that ends at `end`.
bool readName(const unsigned char *image, size_t &pos, size_t end, ResName &out, std::string &why)
{
    if (end - pos < 2) {
        why = "header too short for its names";
        return false;
    }
    uint16_t first = readU16(image + pos);
    if (first == 0xFFFF) {
        if (end - pos < 4) {
            why = "header too short for an ordinal";
            return false;
        }
        out = ResName::ofOrdinal(readU16(image + pos + 2));
        pos += 4;
        return true;
    }
    std::u16string text;
    for (;;) {
        if (end - pos < 2) {
            why = "name without a terminator";
            return false;
        }
        uint16_t c = readU16(image + pos);
        pos += 2;
        if (c == 0)
            break;
        text.push_back(static_cast<char16_t>(c));
    }
    if (text.empty()) {
        why = "empty name";
        return false;
    }
    out = ResName::ofText(std::move(text));
    return true;
}

// Simple case folding: resource compilers upper-case string names and
// FindResource does the same with the name asked for.  ASCII, Latin-1,
// Greek and Cyrillic cover the names scripts use.
char16_t foldUpper(char16_t c)
{
    if (c >= u'a' && c <= u'z')
        return static_cast<char16_t>(c - 0x20);
    if ((c >= 0xE0 && c <= 0xFE && c != 0xF7) || (c >= 0x3B1 && c <= 0x3C9 && c != 0x3C2) ||
        (c >= 0x430 && c <= 0x44F))
        return static_cast<char16_t>(c - 0x20);
    if (c >= 0x450 && c <= 0x45F)
        return static_cast<char16_t>(c - 0x50);
    return c;
}

bool sameEntryKey(const ResEntry &a, const ResEntry &b)
{
    return compareResNames(a.type, b.type) == 0 && compareResNames(a.name, b.name) == 0 &&
           a.language == b.language;
}

} // namespace

int compareResNames(const ResName &a, const ResName &b)
{
    if (a.byOrdinal != b.byOrdinal)
        return a.byOrdinal ? 1 : -1;
    if (a.byOrdinal)
        return int(a.ordinal) - int(b.ordinal);
    size_t n = std::min(a.text.size(), b.text.size());
    for (size_t i = 0; i < n; ++i) {
        char16_t x = foldUpper(a.text[i]), y = foldUpper(b.text[i]);
        if (x != y)
            return x < y ? -1 : 1;
    }
    if (a.text.size() == b.text.size())
        return 0;
    return a.text.size() < b.text.size() ? -1 : 1;
}

bool resNameFromW(const char16_t *s, ResName &out)
{
    if (!s)
        return false;
    uintptr_t v = reinterpret_cast<uintptr_t>(s);
    if ((v >> 16) == 0) {
        out = ResName::ofOrdinal(static_cast<uint16_t>(v));
        return true;
    }
    std::u16string text(s);
    // "#123" names ordinal 123, as on Windows; "#" followed by anything
    // else is an ordinary string name.
    if (text.size() > 1 && text.size() <= 6 && text[0] == u'#') {
        uint32_t id = 0;
        bool digits = true;
        for (size_t i = 1; i < text.size() && digits; ++i) {
            digits = text[i] >= u'0' && text[i] <= u'9';
            id = id * 10 + (text[i] - u'0');
        }
        if (digits && id <= 0xFFFF) {
            out = ResName::ofOrdinal(static_cast<uint16_t>(id));
            return true;
        }
    }
    out = ResName::ofText(std::move(text));
    return true;
}

bool parseResImage(const unsigned char *image, size_t size, std::vector<ResEntry> &out,
                   std::string &why)
{
    out.clear();
    if (!image) {
        why = "no image";
        return false;
    }
    size_t pos = 0;
    // Every header is at least 32 bytes, so the walk always moves on and
    // ends after at most size / 32 entries.
    while (pos < size) {
        size_t left = size - pos;
        if (left < 8) {
            for (size_t i = pos; i < size; ++i)
                if (image[i] != 0) {
                    why = "trailing bytes after the last entry";
                    return false;
                }
            break;
        }
        uint32_t dataSize = readU32(image + pos);
        uint32_t headerSize = readU32(image + pos + 4);
        if (headerSize < 32 || headerSize % 4 != 0) {
            why = "bad header size " + std::to_string(headerSize);
            return false;
        }
        if (headerSize > left) {
            why = "header runs past the end";
            return false;
        }
        if (dataSize > left - headerSize) {
            why = "data size " + std::to_string(dataSize) + " runs past the end";
            return false;
        }
        size_t end = pos + headerSize;
        size_t cursor = pos + 8;
        ResEntry e;
        if (!readName(image, cursor, end, e.type, why) ||
            !readName(image, cursor, end, e.name, why))
            return false;
        cursor = alignUp4(cursor);
        if (cursor > end || end - cursor < kFixedTail) {
            why = "header too short for its fixed fields";
            return false;
        }
        e.dataVersion = readU32(image + cursor);
        e.memoryFlags = readU16(image + cursor + 4);
        e.language = readU16(image + cursor + 6);
        e.version = readU32(image + cursor + 8);
        e.characteristics = readU32(image + cursor + 12);
        e.dataOffset = end;
        e.dataSize = dataSize;
        // The leading empty entry (type 0) marks a 32-bit .res file; it
        // and any other type-0 entry carry nothing.
        if (!(e.type.byOrdinal && e.type.ordinal == 0))
            out.push_back(std::move(e));
        size_t next = end + size_t(dataSize);
        pos = next + std::min(alignUp4(next) - next, size - next);
    }
    return true;
}

std::vector<uint16_t> resLanguageOrder(uint16_t requested, uint16_t threadLanguage)
{
    std::vector<uint16_t> order;
    auto push = [&order](uint16_t lang) {
        if (std::find(order.begin(), order.end(), lang) == order.end())
            order.push_back(lang);
    };
    auto primary = [](uint16_t lang) { return static_cast<uint16_t>(lang & 0x3FF); };
    // A neutral request means "the thread's language", as FindResourceEx
    // documents for MAKELANGID(LANG_NEUTRAL, SUBLANG_NEUTRAL).
    if (requested != kLangNeutral) {
        push(requested);
        push(primary(requested));
    }
    push(threadLanguage);
    push(primary(threadLanguage));
    push(kLangNeutral);
    push(kLangUserDefault);
    push(kLangSystemDefault);
    push(kLangEnglishUs);
    push(kLangEnglish);
    return order;
}

namespace
{

bool itemLess(const ResDirectory::Item &a, const ResDirectory::Item &b)
{
    if (int c = compareResNames(a.entry.type, b.entry.type))
        return c < 0;
    if (int c = compareResNames(a.entry.name, b.entry.name))
        return c < 0;
    return a.entry.language < b.entry.language;
}

} // namespace

void ResDirectory::add(const std::vector<ResEntry> &entries, size_t tag)
{
    // A key already present (an earlier image, or a duplicate in this one)
    // keeps its first definition, as a linker would.
    for (const ResEntry &e : entries) {
        Item item{e, tag};
        auto at = std::lower_bound(items_.begin(), items_.end(), item, itemLess);
        if (at != items_.end() && sameEntryKey(at->entry, e))
            continue;
        items_.insert(at, std::move(item));
    }
}

void ResDirectory::removeTag(size_t tag)
{
    std::erase_if(items_, [tag](const Item &i) { return i.tag == tag; });
}

const ResDirectory::Item *ResDirectory::find(const ResName &type, const ResName &name,
                                             uint16_t language, uint16_t threadLanguage) const
{
    Item probe{ResEntry{type, name, 0, 0, 0, 0, 0, 0, 0}, 0};
    auto first = std::lower_bound(items_.begin(), items_.end(), probe, itemLess);
    auto last = first;
    while (last != items_.end() && compareResNames(last->entry.type, type) == 0 &&
           compareResNames(last->entry.name, name) == 0)
        ++last;
    if (first == last)
        return nullptr;
    for (uint16_t lang : resLanguageOrder(language, threadLanguage))
        for (auto it = first; it != last; ++it)
            if (it->entry.language == lang)
                return &*it;
    return &*first;
}

std::vector<ResName> ResDirectory::types() const
{
    std::vector<ResName> out;
    for (const Item &i : items_)
        if (out.empty() || compareResNames(out.back(), i.entry.type) != 0)
            out.push_back(i.entry.type);
    return out;
}

std::vector<ResName> ResDirectory::names(const ResName &type) const
{
    std::vector<ResName> out;
    for (const Item &i : items_)
        if (compareResNames(i.entry.type, type) == 0 &&
            (out.empty() || compareResNames(out.back(), i.entry.name) != 0))
            out.push_back(i.entry.name);
    return out;
}

std::vector<uint16_t> ResDirectory::languages(const ResName &type, const ResName &name) const
{
    std::vector<uint16_t> out;
    for (const Item &i : items_)
        if (compareResNames(i.entry.type, type) == 0 && compareResNames(i.entry.name, name) == 0)
            out.push_back(i.entry.language);
    return out;
}

} // namespace om::kernel
