// The tests' own readers of the Windows resource layouts (dialog and menu
// templates, accelerator and string tables, icon and cursor directories),
// written from the documented formats so that the bytes the kernel hands
// out are checked against an independent reading.
#pragma once

#include <windows.h>

#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

namespace restest
{

inline std::vector<uint8_t> readFile(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    return std::vector<uint8_t>((std::istreambuf_iterator<char>(in)), {});
}

// A bounds-checked little-endian reader; any read past the end sets `bad`.
struct Reader {
    const uint8_t *p;
    size_t size;
    size_t pos = 0;
    bool bad = false;

    template <class T> T get()
    {
        T v{};
        if (pos + sizeof(T) > size) {
            bad = true;
            pos = size;
            return v;
        }
        memcpy(&v, p + pos, sizeof(T));
        pos += sizeof(T);
        return v;
    }
    void align4() { pos = (pos + 3) & ~size_t(3); }
    // A UTF-16 string up to its terminator, as UTF-8 (BMP only).
    std::string str()
    {
        std::string out;
        for (;;) {
            uint16_t c = get<uint16_t>();
            if (bad || c == 0)
                return out;
            if (c < 0x80) {
                out += static_cast<char>(c);
            } else if (c < 0x800) {
                out += static_cast<char>(0xC0 | (c >> 6));
                out += static_cast<char>(0x80 | (c & 0x3F));
            } else {
                out += static_cast<char>(0xE0 | (c >> 12));
                out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
                out += static_cast<char>(0x80 | (c & 0x3F));
            }
        }
    }
    // A dialog's menu, class or title field: none, 0xFFFF + ordinal, or a string.
    std::string sz_Or_Ord()
    {
        uint16_t first = get<uint16_t>();
        if (first == 0)
            return "";
        if (first == 0xFFFF)
            return "#" + std::to_string(get<uint16_t>());
        pos -= 2;
        return str();
    }
};

struct DialogItem {
    uint32_t style = 0;
    uint32_t id = 0;
    std::string cls; // "#128" for the predefined button atom and so on
    std::string title;
};

struct Dialog {
    bool extended = false;
    uint32_t style = 0;
    uint32_t exStyle = 0;
    uint16_t count = 0;
    int16_t cx = 0, cy = 0;
    std::string menu, cls, title;
    uint16_t pointSize = 0;
    std::string face;
    std::vector<DialogItem> items;
    bool bad = false; // ran past the end
};

inline Dialog parseDialog(const uint8_t *p, size_t size)
{
    Dialog d;
    Reader r{p, size};
    if (size >= 4 && r.get<uint16_t>() == 1 && r.get<uint16_t>() == 0xFFFF) {
        d.extended = true;
        r.get<uint32_t>(); // helpID
        d.exStyle = r.get<uint32_t>();
        d.style = r.get<uint32_t>();
    } else {
        r.pos = 0;
        d.style = r.get<uint32_t>();
        d.exStyle = r.get<uint32_t>();
    }
    d.count = r.get<uint16_t>();
    r.get<int16_t>();
    r.get<int16_t>();
    d.cx = r.get<int16_t>();
    d.cy = r.get<int16_t>();
    d.menu = r.sz_Or_Ord();
    d.cls = r.sz_Or_Ord();
    d.title = r.str();
    if (d.style & DS_SETFONT) {
        d.pointSize = r.get<uint16_t>();
        if (d.extended) {
            r.get<uint16_t>(); // weight
            r.get<uint8_t>();  // italic
            r.get<uint8_t>();  // charset
        }
        d.face = r.str();
    }
    for (uint16_t i = 0; i < d.count && !r.bad; ++i) {
        r.align4();
        DialogItem it;
        if (d.extended) {
            r.get<uint32_t>(); // helpID
            r.get<uint32_t>(); // exStyle
            it.style = r.get<uint32_t>();
        } else {
            it.style = r.get<uint32_t>();
            r.get<uint32_t>();
        }
        for (int k = 0; k < 4; ++k)
            r.get<int16_t>();
        it.id = d.extended ? r.get<uint32_t>() : r.get<uint16_t>();
        it.cls = r.sz_Or_Ord();
        it.title = r.sz_Or_Ord();
        uint16_t extra = r.get<uint16_t>();
        r.pos += extra;
        d.items.push_back(it);
    }
    d.bad = r.bad || r.pos > size;
    return d;
}

struct MenuItem {
    int depth = 0;
    std::string text;
    uint32_t id = 0;
    bool popup = false;
    uint32_t type = 0; // MENUEX only
    uint32_t state = 0;
};

// The standard form (MENU): flags, an id unless MF_POPUP, the text;
// MF_END closes a level.
inline bool parseMenuLevel(Reader &r, int depth, std::vector<MenuItem> &out)
{
    for (;;) {
        MenuItem m;
        m.depth = depth;
        uint16_t flags = r.get<uint16_t>();
        m.popup = flags & MF_POPUP;
        if (!m.popup)
            m.id = r.get<uint16_t>();
        m.text = r.str();
        if (r.bad)
            return false;
        out.push_back(m);
        if (m.popup && !parseMenuLevel(r, depth + 1, out))
            return false;
        if (flags & MF_END)
            return true;
    }
}

// The extended form (MENUEX): type, state, id, a flags word (0x01 pop-up,
// 0x80 last), the text, DWORD alignment, and a help id for pop-ups.
inline bool parseMenuExLevel(Reader &r, int depth, std::vector<MenuItem> &out)
{
    for (;;) {
        MenuItem m;
        m.depth = depth;
        m.type = r.get<uint32_t>();
        m.state = r.get<uint32_t>();
        m.id = r.get<uint32_t>();
        uint16_t flags = r.get<uint16_t>();
        m.popup = flags & 0x01;
        m.text = r.str();
        r.align4();
        if (r.bad)
            return false;
        out.push_back(m);
        if (m.popup) {
            r.get<uint32_t>(); // help id
            if (!parseMenuExLevel(r, depth + 1, out))
                return false;
        }
        if (flags & 0x80)
            return true;
    }
}

inline std::optional<std::vector<MenuItem>> parseMenu(const uint8_t *p, size_t size, bool &ex)
{
    Reader r{p, size};
    uint16_t version = r.get<uint16_t>();
    uint16_t offset = r.get<uint16_t>();
    std::vector<MenuItem> items;
    ex = version == 1;
    if (ex) {
        r.pos = 4 + offset;
        if (!parseMenuExLevel(r, 0, items))
            return std::nullopt;
    } else {
        r.pos += offset;
        if (!parseMenuLevel(r, 0, items))
            return std::nullopt;
    }
    return items;
}

// The string at index n & 15 of a string-table block.
inline std::optional<std::string> blockString(const uint8_t *p, size_t size, unsigned index)
{
    Reader r{p, size};
    for (unsigned i = 0; i < 16; ++i) {
        uint16_t len = r.get<uint16_t>();
        if (r.bad)
            return std::nullopt;
        if (i == index) {
            std::vector<uint16_t> units;
            for (uint16_t k = 0; k < len; ++k)
                units.push_back(r.get<uint16_t>());
            units.push_back(0);
            Reader s{reinterpret_cast<const uint8_t *>(units.data()), units.size() * 2};
            return r.bad ? std::nullopt : std::optional<std::string>(s.str());
        }
        r.pos += size_t(len) * 2;
    }
    return std::nullopt;
}

// One entry of an .ico/.cur file's directory.
struct IconFileEntry {
    uint8_t width, height;
    uint16_t planesOrHotX, bitsOrHotY;
    uint32_t bytes, offset;
};

inline std::vector<IconFileEntry> iconFileDirectory(const std::vector<uint8_t> &file)
{
    std::vector<IconFileEntry> out;
    Reader r{file.data(), file.size()};
    r.get<uint16_t>();
    r.get<uint16_t>();
    uint16_t count = r.get<uint16_t>();
    for (uint16_t i = 0; i < count && !r.bad; ++i) {
        IconFileEntry e;
        e.width = r.get<uint8_t>();
        e.height = r.get<uint8_t>();
        r.get<uint8_t>();
        r.get<uint8_t>();
        e.planesOrHotX = r.get<uint16_t>();
        e.bitsOrHotY = r.get<uint16_t>();
        e.bytes = r.get<uint32_t>();
        e.offset = r.get<uint32_t>();
        out.push_back(e);
    }
    return out;
}

} // namespace restest
