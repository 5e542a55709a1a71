// The program's own resources: app/app.rc, compiled at build time by
// olmo_add_resources and registered by the generated constructor, read
// back through FindResource, LoadResource, LockResource and SizeofResource
// and checked against the script and the files it references.
#include <gtest/gtest.h>

#include "res_parsers.h"

#include "app/resource.h"
#include "kernel/omdiag.h"

#include <afxres.h>

#include <algorithm>
#include <string>
#include <vector>

using restest::readFile;

namespace
{

struct Raw {
    const uint8_t *data = nullptr;
    DWORD size = 0;
};

// Find, load, lock and size one resource of the program.
Raw load(LPCSTR name, LPCSTR type, HMODULE module = nullptr)
{
    Raw r;
    HRSRC found = FindResourceA(module, name, type);
    EXPECT_NE(found, nullptr) << "GetLastError " << GetLastError();
    if (!found)
        return r;
    HGLOBAL loaded = LoadResource(module, found);
    EXPECT_NE(loaded, nullptr);
    r.data = static_cast<const uint8_t *>(LockResource(loaded));
    r.size = SizeofResource(module, found);
    EXPECT_NE(r.data, nullptr);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(r.data) % 4, 0u) << "locked data must be 4-byte aligned";
    return r;
}

std::string dataFile(const char *name)
{
    return std::string(OLMO_RES_DATA_DIR) + "/" + name;
}

struct Lookup {
    const char *label;
    LPCSTR type;
    std::vector<LPCSTR> names; // every spelling must find the same entry
};

const char *kTypeDialogByString = "#5";

TEST(ResourceLookup, EveryResourceByNameAndByOrdinal)
{
    const Lookup table[] = {
        {"icon group by ordinal", RT_GROUP_ICON, {MAKEINTRESOURCEA(IDI_APP), "#1"}},
        {"icon group by name", RT_GROUP_ICON, {"NamedIcon", "NAMEDICON", "namedicon"}},
        {"cursor group", RT_GROUP_CURSOR, {MAKEINTRESOURCEA(IDC_POINTER), "#2"}},
        {"bitmap", RT_BITMAP, {MAKEINTRESOURCEA(IDB_LOGO), "#3"}},
        {"DIALOG", RT_DIALOG, {MAKEINTRESOURCEA(IDD_ABOUT), "#100"}},
        {"DIALOG, type as a string", kTypeDialogByString, {MAKEINTRESOURCEA(IDD_ABOUT)}},
        {"DIALOGEX by name", RT_DIALOG, {"Settings", "SETTINGS", "settings"}},
        {"MENU", RT_MENU, {MAKEINTRESOURCEA(IDM_MAIN), "#200"}},
        {"MENUEX by name", RT_MENU, {"Context", "CONTEXT"}},
        {"accelerators", RT_ACCELERATOR, {MAKEINTRESOURCEA(IDA_MAIN), "#300"}},
        {"string block 1", RT_STRING, {MAKEINTRESOURCEA(IDS_HELLO / 16 + 1), "#1"}},
        {"string block 2", RT_STRING, {MAKEINTRESOURCEA(IDS_UNICODE / 16 + 1), "#2"}},
    };
    for (const Lookup &row : table) {
        SCOPED_TRACE(row.label);
        HRSRC first = nullptr;
        for (LPCSTR name : row.names) {
            HRSRC h = FindResourceA(nullptr, name, row.type);
            ASSERT_NE(h, nullptr);
            if (!first)
                first = h;
            EXPECT_EQ(h, first) << "each spelling names the same entry";
            EXPECT_GT(SizeofResource(nullptr, h), 0u);
        }
        // The program's module handle and NULL name the same module.
        EXPECT_EQ(FindResourceA(GetModuleHandleA(nullptr), row.names[0], row.type), first);
    }
}

TEST(ResourceLookup, WideNamesFindTheSameEntries)
{
    EXPECT_EQ(FindResourceW(nullptr, u"settings", MAKEINTRESOURCEW(5)),
              FindResourceA(nullptr, "Settings", RT_DIALOG));
    EXPECT_EQ(FindResourceW(nullptr, u"#200", u"#4"),
              FindResourceA(nullptr, MAKEINTRESOURCEA(IDM_MAIN), RT_MENU));
    EXPECT_EQ(FindResourceExW(nullptr, MAKEINTRESOURCEW(14), u"NamedIcon", 0),
              FindResourceA(nullptr, "NamedIcon", RT_GROUP_ICON));
}

TEST(ResourceData, BitmapIsTheFileWithoutItsFileHeader)
{
    std::vector<uint8_t> file = readFile(dataFile("logo.bmp"));
    ASSERT_GT(file.size(), 14u);
    Raw r = load(MAKEINTRESOURCEA(IDB_LOGO), RT_BITMAP);
    ASSERT_NE(r.data, nullptr);
    EXPECT_EQ(r.size, file.size() - 14);
    EXPECT_TRUE(std::equal(file.begin() + 14, file.end(), r.data));
}

TEST(ResourceData, IconImagesMatchTheIcoDirectory)
{
    std::vector<uint8_t> file = readFile(dataFile("app.ico"));
    std::vector<restest::IconFileEntry> dir = restest::iconFileDirectory(file);
    ASSERT_EQ(dir.size(), 2u);
    for (LPCSTR group : {static_cast<LPCSTR>(MAKEINTRESOURCEA(IDI_APP)), "NamedIcon"}) {
        Raw g = load(group, RT_GROUP_ICON);
        ASSERT_NE(g.data, nullptr);
        restest::Reader r{g.data, g.size};
        EXPECT_EQ(r.get<uint16_t>(), 0);
        EXPECT_EQ(r.get<uint16_t>(), 1) << "type 1: icons";
        ASSERT_EQ(r.get<uint16_t>(), dir.size());
        for (size_t i = 0; i < dir.size(); ++i) {
            SCOPED_TRACE("image " + std::to_string(i));
            EXPECT_EQ(r.get<uint8_t>(), dir[i].width);
            EXPECT_EQ(r.get<uint8_t>(), dir[i].height);
            r.get<uint8_t>();
            r.get<uint8_t>();
            r.get<uint16_t>();
            EXPECT_EQ(r.get<uint16_t>(), dir[i].bitsOrHotY);
            uint32_t bytes = r.get<uint32_t>();
            uint16_t id = r.get<uint16_t>();
            EXPECT_EQ(bytes, dir[i].bytes);
            Raw image = load(MAKEINTRESOURCEA(id), RT_ICON);
            ASSERT_NE(image.data, nullptr);
            EXPECT_EQ(image.size, dir[i].bytes) << "each image's size is its size in the .ico";
            EXPECT_TRUE(
                std::equal(image.data, image.data + image.size, file.begin() + dir[i].offset));
        }
        EXPECT_FALSE(r.bad);
        EXPECT_EQ(r.pos, g.size);
    }
}

TEST(ResourceData, CursorImageCarriesItsHotSpot)
{
    std::vector<uint8_t> file = readFile(dataFile("arrow.cur"));
    std::vector<restest::IconFileEntry> dir = restest::iconFileDirectory(file);
    ASSERT_EQ(dir.size(), 1u);
    Raw g = load(MAKEINTRESOURCEA(IDC_POINTER), RT_GROUP_CURSOR);
    ASSERT_NE(g.data, nullptr);
    restest::Reader r{g.data, g.size};
    r.get<uint16_t>();
    EXPECT_EQ(r.get<uint16_t>(), 2) << "type 2: cursors";
    ASSERT_EQ(r.get<uint16_t>(), 1);
    EXPECT_EQ(r.get<uint16_t>(), 32); // width
    EXPECT_EQ(r.get<uint16_t>(), 64); // height of colour and mask planes
    r.get<uint16_t>();                // planes
    r.get<uint16_t>();                // bit count
    uint32_t bytes = r.get<uint32_t>();
    uint16_t id = r.get<uint16_t>();
    // A cursor image is the file's image after a hot-spot header.
    EXPECT_EQ(bytes, dir[0].bytes + 4);
    Raw image = load(MAKEINTRESOURCEA(id), RT_CURSOR);
    ASSERT_EQ(image.size, dir[0].bytes + 4);
    restest::Reader h{image.data, image.size};
    EXPECT_EQ(h.get<uint16_t>(), dir[0].planesOrHotX);
    EXPECT_EQ(h.get<uint16_t>(), dir[0].bitsOrHotY);
    EXPECT_EQ(dir[0].planesOrHotX, 3);
    EXPECT_EQ(dir[0].bitsOrHotY, 5);
    EXPECT_TRUE(std::equal(image.data + 4, image.data + image.size, file.begin() + dir[0].offset));
}

TEST(ResourceData, DialogTemplatesComeBackAsWritten)
{
    struct Expect {
        LPCSTR name;
        bool extended;
        const char *title;
        std::vector<uint32_t> ids;
        std::vector<std::string> titles;
        std::string menu, face;
        uint16_t points;
    };
    const Expect table[] = {
        {MAKEINTRESOURCEA(IDD_ABOUT),
         false,
         "About Olmo",
         {uint16_t(IDC_STATIC), uint16_t(IDC_STATIC), IDOK, IDCANCEL},
         {"Olmo resources", "#1", "OK", "Cancel"},
         "",
         "MS Shell Dlg",
         8},
        {"Settings",
         true,
         "Settings",
         {IDC_NAME, IDC_ENABLED, IDC_CHOICE, IDC_CUSTOM, IDOK},
         {"", "Enabled", "", "", "OK"},
         "#200",
         "Segoe UI",
         9},
    };
    for (const Expect &e : table) {
        SCOPED_TRACE(e.title);
        Raw r = load(e.name, RT_DIALOG);
        ASSERT_NE(r.data, nullptr);
        restest::Dialog d = restest::parseDialog(r.data, r.size);
        EXPECT_FALSE(d.bad);
        EXPECT_EQ(d.extended, e.extended);
        EXPECT_EQ(d.title, e.title);
        EXPECT_EQ(d.count, e.ids.size());
        EXPECT_EQ(d.menu, e.menu);
        EXPECT_EQ(d.face, e.face);
        EXPECT_EQ(d.pointSize, e.points);
        EXPECT_TRUE(d.style & DS_MODALFRAME);
        ASSERT_EQ(d.items.size(), e.ids.size());
        for (size_t i = 0; i < d.items.size(); ++i) {
            EXPECT_EQ(d.items[i].id, e.ids[i]) << "item " << i;
            EXPECT_EQ(d.items[i].title, e.titles[i]) << "item " << i;
        }
    }
    restest::Dialog ex =
        restest::parseDialog(load("Settings", RT_DIALOG).data, load("Settings", RT_DIALOG).size);
    EXPECT_EQ(ex.exStyle, DWORD(WS_EX_CONTEXTHELP));
    ASSERT_EQ(ex.items.size(), 5u);
    EXPECT_EQ(ex.items[0].cls, "#129") << "EDITTEXT is the predefined edit class";
    // Class names are case-insensitive; windres upper-cases them.
    EXPECT_STRCASEEQ(ex.items[3].cls.c_str(), "OlmoCustom");
}

TEST(ResourceData, MenuTextsComeBackAsWritten)
{
    struct Row {
        int depth;
        const char *text;
        uint32_t id;
        bool popup;
    };
    struct Expect {
        LPCSTR name;
        bool extended;
        std::vector<Row> rows;
    };
    const Expect table[] = {
        {MAKEINTRESOURCEA(IDM_MAIN),
         false,
         {{0, "&File", 0, true},
          {1, "&Open...\tCtrl+O", IDM_OPEN, false},
          {1, "", 0, false},
          {1, "E&xit", IDM_EXIT, false},
          {0, "&Help", IDM_HELP, false}}},
        {"Context",
         true,
         {{0, "&Edit", IDM_EDITPOPUP, true},
          {1, "&Copy", IDM_COPY, false},
          {1, "", 0, false},
          {1, "&Paste", IDM_PASTE, false},
          {0, "&Refresh", IDM_REFRESH, false}}},
    };
    for (const Expect &e : table) {
        SCOPED_TRACE(e.extended ? "MENUEX" : "MENU");
        Raw r = load(e.name, RT_MENU);
        ASSERT_NE(r.data, nullptr);
        bool ex = false;
        auto items = restest::parseMenu(r.data, r.size, ex);
        ASSERT_TRUE(items.has_value());
        EXPECT_EQ(ex, e.extended);
        ASSERT_EQ(items->size(), e.rows.size());
        for (size_t i = 0; i < e.rows.size(); ++i) {
            SCOPED_TRACE("item " + std::to_string(i));
            EXPECT_EQ((*items)[i].depth, e.rows[i].depth);
            EXPECT_EQ((*items)[i].text, e.rows[i].text);
            EXPECT_EQ((*items)[i].id, e.rows[i].id);
            EXPECT_EQ((*items)[i].popup, e.rows[i].popup);
        }
    }
    bool ex = false;
    Raw r = load("Context", RT_MENU);
    auto items = restest::parseMenu(r.data, r.size, ex);
    ASSERT_TRUE(items && items->size() == 5);
    EXPECT_EQ((*items)[1].state, UINT(MFS_DEFAULT));
    EXPECT_EQ((*items)[2].type, UINT(MFT_SEPARATOR));
}

TEST(ResourceData, AcceleratorTableComesBackAsWritten)
{
    Raw r = load(MAKEINTRESOURCEA(IDA_MAIN), RT_ACCELERATOR);
    ASSERT_EQ(r.size, 4u * 8u) << "8-byte entries";
    struct Row {
        uint16_t flags, key, cmd;
    };
    const Row rows[] = {
        {FVIRTKEY | FCONTROL, 'O', IDM_OPEN},
        {FVIRTKEY, VK_F1, IDM_HELP},
        {0, 'X' - '@', IDM_EXIT}, // "^X": Ctrl+X, see below
        {FALT, 'q', IDM_EXIT},
    };
    restest::Reader rd{r.data, r.size};
    for (size_t i = 0; i < 4; ++i) {
        SCOPED_TRACE("entry " + std::to_string(i));
        uint16_t flags = rd.get<uint16_t>();
        uint16_t key = rd.get<uint16_t>();
        EXPECT_EQ((flags & 0x80) != 0, i == 3) << "0x80 marks the last entry";
        // "^X" is the control character 0x18 to one compiler and the
        // virtual key X with Control to another; both are Ctrl+X.
        if (i == 2 && (flags & 0x7F) == (FVIRTKEY | FCONTROL)) {
            EXPECT_EQ(key, 'X');
        } else {
            EXPECT_EQ(flags & 0x7F, rows[i].flags);
            EXPECT_EQ(key, rows[i].key);
        }
        EXPECT_EQ(rd.get<uint16_t>(), rows[i].cmd);
        rd.get<uint16_t>();
    }
}

TEST(ResourceData, StringTablesPerLanguage)
{
    struct Row {
        unsigned id;
        WORD language;
        const char *text;
    };
    const Row rows[] = {
        {IDS_HELLO, MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), "Hello, world"},
        {IDS_GOODBYE, MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), "Goodbye"},
        {IDS_UNICODE, MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), "Grüße, ünïcödé"},
        {IDS_HELLO, MAKELANGID(LANG_GERMAN, SUBLANG_GERMAN), "Hallo, Welt"},
        // No French table: the thread's language (English) answers.
        {IDS_HELLO, MAKELANGID(LANG_FRENCH, SUBLANG_FRENCH), "Hello, world"},
        // Swiss German: no exact match, no neutral German; English again.
        {IDS_HELLO, MAKELANGID(LANG_GERMAN, 0x02), "Hello, world"},
        // Neutral means "the thread's language".
        {IDS_HELLO, MAKELANGID(LANG_NEUTRAL, SUBLANG_NEUTRAL), "Hello, world"},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.text);
        HRSRC h =
            FindResourceExA(nullptr, RT_STRING, MAKEINTRESOURCEA(row.id / 16 + 1), row.language);
        ASSERT_NE(h, nullptr);
        auto *p = static_cast<const uint8_t *>(LockResource(LoadResource(nullptr, h)));
        auto text = restest::blockString(p, SizeofResource(nullptr, h), row.id % 16);
        ASSERT_TRUE(text.has_value());
        EXPECT_EQ(*text, row.text);
    }
}

TEST(ResourceData, FindResourceFollowsTheThreadLanguage)
{
    struct Row {
        LCID threadLocale;
        const char *text;
    };
    const Row rows[] = {
        {MAKELCID(MAKELANGID(LANG_GERMAN, SUBLANG_GERMAN), SORT_DEFAULT), "Hallo, Welt"},
        {MAKELCID(MAKELANGID(LANG_FRENCH, SUBLANG_FRENCH), SORT_DEFAULT), "Hello, world"},
        {MAKELCID(MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), SORT_DEFAULT), "Hello, world"},
    };
    LCID saved = GetThreadLocale();
    for (const Row &row : rows) {
        SCOPED_TRACE(row.text);
        // Thread locales are those the system has installed; English
        // always is.
        bool set = SetThreadLocale(row.threadLocale);
        if (PRIMARYLANGID(LANGIDFROMLCID(row.threadLocale)) != LANG_ENGLISH && !set)
            continue;
        ASSERT_TRUE(set);
        HRSRC h = FindResourceA(nullptr, MAKEINTRESOURCEA(IDS_HELLO / 16 + 1), RT_STRING);
        ASSERT_NE(h, nullptr);
        auto *p = static_cast<const uint8_t *>(LockResource(LoadResource(nullptr, h)));
        EXPECT_EQ(restest::blockString(p, SizeofResource(nullptr, h), IDS_HELLO % 16), row.text);
    }
    SetThreadLocale(saved);
}

// Enumeration callbacks collect what they are given.
struct Collected {
    std::vector<std::string> items;
    size_t stopAfter = SIZE_MAX;
};

std::string nameText(LPCSTR n)
{
    return IS_INTRESOURCE(n) ? "#" + std::to_string(reinterpret_cast<uintptr_t>(n)) : n;
}

BOOL CALLBACK collectType(HMODULE, LPSTR type, LONG_PTR param)
{
    auto *c = reinterpret_cast<Collected *>(param);
    c->items.push_back(nameText(type));
    return c->items.size() < c->stopAfter;
}

BOOL CALLBACK collectName(HMODULE, LPCSTR, LPSTR name, LONG_PTR param)
{
    auto *c = reinterpret_cast<Collected *>(param);
    c->items.push_back(nameText(name));
    return c->items.size() < c->stopAfter;
}

BOOL CALLBACK collectLanguage(HMODULE, LPCSTR, LPCSTR, WORD lang, LONG_PTR param)
{
    reinterpret_cast<Collected *>(param)->items.push_back(std::to_string(lang));
    return TRUE;
}

TEST(ResourceEnumeration, TypesNamesAndLanguages)
{
    Collected types;
    ASSERT_TRUE(EnumResourceTypesA(nullptr, collectType, reinterpret_cast<LONG_PTR>(&types)));
    EXPECT_EQ(types.items,
              (std::vector<std::string>{"#1", "#2", "#3", "#4", "#5", "#6", "#9", "#12", "#14"}));

    // String names first, upper-cased, then ordinals ascending.
    struct Row {
        LPCSTR type;
        std::vector<std::string> names;
    };
    const Row rows[] = {
        {RT_DIALOG, {"SETTINGS", "#100"}},
        {RT_MENU, {"CONTEXT", "#200"}},
        {RT_GROUP_ICON, {"NAMEDICON", "#1"}},
        {RT_STRING, {"#1", "#2"}},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(nameText(row.type));
        Collected names;
        ASSERT_TRUE(
            EnumResourceNamesA(nullptr, row.type, collectName, reinterpret_cast<LONG_PTR>(&names)));
        EXPECT_EQ(names.items, row.names);
    }

    Collected langs;
    ASSERT_TRUE(EnumResourceLanguagesA(nullptr, RT_STRING, MAKEINTRESOURCEA(1), collectLanguage,
                                       reinterpret_cast<LONG_PTR>(&langs)));
    EXPECT_EQ(langs.items, (std::vector<std::string>{"1031", "1033"}));

    Collected stopped;
    stopped.stopAfter = 2;
    EXPECT_FALSE(EnumResourceTypesA(nullptr, collectType, reinterpret_cast<LONG_PTR>(&stopped)));
    EXPECT_EQ(GetLastError(), DWORD(ERROR_RESOURCE_ENUM_USER_STOP));
    EXPECT_EQ(stopped.items.size(), 2u);
}

BOOL CALLBACK collectNameW(HMODULE, LPCWSTR, LPWSTR name, LONG_PTR param)
{
    auto *c = reinterpret_cast<Collected *>(param);
    if (IS_INTRESOURCE(name)) {
        c->items.push_back("#" + std::to_string(reinterpret_cast<uintptr_t>(name)));
    } else {
        std::string s;
        for (const WCHAR *p = name; *p; ++p)
            s += static_cast<char>(*p);
        c->items.push_back(s);
    }
    return TRUE;
}

TEST(ResourceEnumeration, WideNames)
{
    Collected names;
    ASSERT_TRUE(EnumResourceNamesW(nullptr, MAKEINTRESOURCEW(4), collectNameW,
                                   reinterpret_cast<LONG_PTR>(&names)));
    EXPECT_EQ(names.items, (std::vector<std::string>{"CONTEXT", "#200"}));
}

TEST(ResourceErrors, FailureValuesErrorsAndDiagnostics)
{
    struct Row {
        const char *label;
        HMODULE module;
        LPCSTR name, type;
        DWORD error;
        int diag; // 0: none
    };
    HMODULE bogus = reinterpret_cast<HMODULE>(static_cast<uintptr_t>(0x7FFF));
    const Row rows[] = {
        {"unknown name", nullptr, "NoSuchDialog", RT_DIALOG, ERROR_RESOURCE_NAME_NOT_FOUND, 0},
        {"unknown ordinal", nullptr, MAKEINTRESOURCEA(999), RT_DIALOG,
         ERROR_RESOURCE_NAME_NOT_FOUND, 0},
        {"unknown type", nullptr, MAKEINTRESOURCEA(1), RT_RCDATA, ERROR_RESOURCE_TYPE_NOT_FOUND, 0},
        {"bad module", bogus, MAKEINTRESOURCEA(1), RT_DIALOG, ERROR_INVALID_HANDLE, 300},
        {"null name", nullptr, nullptr, RT_DIALOG, ERROR_INVALID_PARAMETER, 133},
        {"null type", nullptr, "Settings", nullptr, ERROR_INVALID_PARAMETER, 133},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.label);
        omDiagResetCounts();
        SetLastError(0);
        EXPECT_EQ(FindResourceA(row.module, row.name, row.type), nullptr);
        EXPECT_EQ(GetLastError(), row.error);
        if (row.diag) {
            EXPECT_EQ(omDiagCount(row.diag), 1u);
        }
    }

    // Handles of the wrong kind, and addresses that LoadResource never gave.
    omDiagResetCounts();
    HRSRC notResource = reinterpret_cast<HRSRC>(GetModuleHandleA(nullptr));
    EXPECT_EQ(LoadResource(nullptr, notResource), nullptr);
    EXPECT_EQ(SizeofResource(nullptr, notResource), 0u);
    int local = 0;
    EXPECT_EQ(LockResource(&local), nullptr);
    EXPECT_TRUE(FreeResource(&local)) << "non-zero: not freed";
    EXPECT_EQ(omDiagCount(300), 4u);

    // LockResource of LoadResource's failure is quietly null.
    omDiagResetCounts();
    EXPECT_EQ(LockResource(nullptr), nullptr);
    EXPECT_EQ(omDiagCount(300), 0u);

    HRSRC good = FindResourceA(nullptr, "Settings", RT_DIALOG);
    HGLOBAL data = LoadResource(nullptr, good);
    EXPECT_EQ(LoadResource(nullptr, good), data) << "one address per resource";
    EXPECT_FALSE(FreeResource(data)) << "FALSE is success";
    EXPECT_EQ(LockResource(data), data) << "data outlives FreeResource: it lives with the module";
}

} // namespace
