// Profile settings: win.ini and private .ini files in the configuration
// directory, parsed into sections of lines that keep comments and layout;
// changes stay in memory until written back (omWriteNextDirtyProfile, an
// explicit flush, or the process's exit).
#include "kernel/omprofile.h"
#include "kernel/omdiag.h"
#include "kernel/omstring.h"

#include <winbase.h>

#include <dirent.h>
#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <sstream>
#include <string>
#include <vector>

using namespace om::kernel;

namespace {

// One line of a file: a "key=value" entry, or anything else (comments,
// blank lines, text without '='), kept verbatim.
struct Line {
    bool isEntry = false;
    std::string key;
    std::string value;
    std::string raw;
};

struct Section {
    std::string name;
    std::string header;  // the line as read, rewritten only for new sections
    std::vector<Line> lines;
};

struct ProfileFile {
    std::string path;
    bool inProfileDir = false;  // the directory is ours to create
    std::vector<Line> preamble;   // lines before the first section
    std::vector<Section> sections;
    bool loaded = false;
    bool dirty = false;
    // What the file on disk was when read, to notice another writer.
    bool existed = false;
    struct timespec mtime {};
    off_t size = 0;
    ino_t inode = 0;
};

std::string trim(std::string_view s)
{
    size_t b = s.find_first_not_of(" \t");
    if (b == std::string_view::npos)
        return {};
    size_t e = s.find_last_not_of(" \t");
    return std::string(s.substr(b, e - b + 1));
}

bool equalNoCase(const std::string &a, const std::string &b)
{
    return compareUtf8(a, b, true) == 0;
}

class Profiles {
public:
    static Profiles &instance()
    {
        // Never destroyed: the exit handler below needs it after static
        // destructors may have run.
        static Profiles *p = [] {
            auto *created = new Profiles;
            std::atexit([] { instance().flushAll(); });
            return created;
        }();
        return *p;
    }

    std::mutex mutex;
    std::atomic<int> dirtyCount{0};

    // The file a program's name stands for, loaded and current.
    ProfileFile &file(const char *name)
    {
        std::string key, path;
        bool inDir = resolve(name, key, path);
        auto &slot = files_[key];
        if (!slot) {
            slot = std::make_unique<ProfileFile>();
            slot->path = path;
            slot->inProfileDir = inDir;
        }
        refresh(*slot);
        return *slot;
    }

    void markDirty(ProfileFile &f)
    {
        if (!f.dirty) {
            f.dirty = true;
            ++dirtyCount;
        }
    }

    // Writes f back; false when it could not be written.
    bool flush(ProfileFile &f)
    {
        if (!f.dirty)
            return true;
        f.dirty = false;
        --dirtyCount;
        bool ok = write(f);
        if (!ok)
            omDebugWarning(OmDiag::BadArgument, "WritePrivateProfileString",
                           "cannot write " + f.path);
        return ok;
    }

    bool flushNext()
    {
        for (auto &[key, f] : files_)
            if (f->dirty) {
                flush(*f);
                return true;
            }
        return false;
    }

    void flushAll()
    {
        std::lock_guard lock(mutex);
        for (auto &[key, f] : files_)
            flush(*f);
    }

    // The directory of bare file names: $OLMO_PROFILE_DIR, else
    // $XDG_CONFIG_HOME/olmo, else ~/.config/olmo.
    static std::string profileDir()
    {
        if (const char *d = getenv("OLMO_PROFILE_DIR"); d && *d)
            return d;
        if (const char *x = getenv("XDG_CONFIG_HOME"); x && *x == '/')
            return std::string(x) + "/olmo";
        const char *home = getenv("HOME");
        if (!home || !*home) {
            struct passwd *pw = getpwuid(getuid());
            home = pw ? pw->pw_dir : "/tmp";
        }
        return std::string(home) + "/.config/olmo";
    }

private:
    // A name with a directory part is a path (backslashes read as '/'); a
    // bare name lives in the profile directory, matched ignoring case as
    // Windows file names are.  Returns whether the file is in that
    // directory.
    static bool resolve(const char *name, std::string &key, std::string &path)
    {
        std::string n = name && *name ? name : "win.ini";
        for (char &c : n)
            if (c == '\\')
                c = '/';
        if (n.find('/') != std::string::npos) {
            key = path = n;
            return false;
        }
        std::string dir = profileDir();
        key = dir + "/" + foldCase(n);
        path = dir + "/" + n;
        struct stat st;
        if (stat(path.c_str(), &st) != 0) {
            if (DIR *d = opendir(dir.c_str())) {
                while (struct dirent *e = readdir(d))
                    if (equalNoCase(e->d_name, n)) {
                        path = dir + "/" + e->d_name;
                        break;
                    }
                closedir(d);
            }
        }
        return true;
    }

    // (Re)reads f when it was never read or another writer changed it; our
    // own unsaved changes win over the disk.
    static void refresh(ProfileFile &f)
    {
        if (f.dirty)
            return;
        struct stat st;
        bool exists = stat(f.path.c_str(), &st) == 0;
        if (f.loaded && exists == f.existed &&
            (!exists || (st.st_mtim.tv_sec == f.mtime.tv_sec &&
                         st.st_mtim.tv_nsec == f.mtime.tv_nsec && st.st_size == f.size &&
                         st.st_ino == f.inode)))
            return;
        f.preamble.clear();
        f.sections.clear();
        f.loaded = true;
        f.existed = exists;
        if (!exists)
            return;
        f.mtime = st.st_mtim;
        f.size = st.st_size;
        f.inode = st.st_ino;
        std::ifstream in(f.path, std::ios::binary);
        std::string text;
        while (std::getline(in, text)) {
            if (!text.empty() && text.back() == '\r')
                text.pop_back();
            std::string t = trim(text);
            if (!t.empty() && t[0] == '[') {
                size_t close = t.find(']');
                Section s;
                s.name = trim(t.substr(1, close == std::string::npos ? std::string::npos
                                                                      : close - 1));
                s.header = text;
                f.sections.push_back(std::move(s));
                continue;
            }
            Line line;
            line.raw = text;
            size_t eq = t.find('=');
            if (!t.empty() && t[0] != ';' && eq != std::string::npos) {
                line.isEntry = true;
                line.key = trim(t.substr(0, eq));
                line.value = trim(t.substr(eq + 1));
            }
            (f.sections.empty() ? f.preamble : f.sections.back().lines).push_back(line);
        }
    }

    static bool makeDirectories(const std::string &dir)
    {
        for (size_t i = 1; i <= dir.size(); ++i) {
            if (i < dir.size() && dir[i] != '/')
                continue;
            std::string part = dir.substr(0, i);
            if (mkdir(part.c_str(), 0755) != 0 && errno != EEXIST)
                return false;
        }
        return true;
    }

    // Writes a temporary file beside the target and renames it over, so a
    // reader never sees half a file.
    static bool write(ProfileFile &f)
    {
        std::string out;
        auto emit = [&out](const Line &l) {
            out += l.isEntry && l.raw.empty() ? l.key + "=" + l.value : l.raw;
            out += '\n';
        };
        for (const Line &l : f.preamble)
            emit(l);
        for (const Section &s : f.sections) {
            out += s.header.empty() ? "[" + s.name + "]" : s.header;
            out += '\n';
            for (const Line &l : s.lines)
                emit(l);
        }
        size_t slash = f.path.rfind('/');
        std::string dir = slash == std::string::npos ? "." : f.path.substr(0, slash);
        if (f.inProfileDir && !makeDirectories(dir))
            return false;
        std::string tmp = f.path + ".XXXXXX";
        int fd = mkstemp(tmp.data());
        if (fd < 0)
            return false;
        struct stat st;
        fchmod(fd, stat(f.path.c_str(), &st) == 0 ? (st.st_mode & 07777) : 0644);
        size_t done = 0;
        while (done < out.size()) {
            ssize_t n = ::write(fd, out.data() + done, out.size() - done);
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0)
                break;
            done += static_cast<size_t>(n);
        }
        bool ok = done == out.size();
        ok = close(fd) == 0 && ok;
        if (!ok || rename(tmp.c_str(), f.path.c_str()) != 0) {
            unlink(tmp.c_str());
            return false;
        }
        if (stat(f.path.c_str(), &st) == 0) {
            f.existed = true;
            f.mtime = st.st_mtim;
            f.size = st.st_size;
            f.inode = st.st_ino;
        }
        return true;
    }

    std::map<std::string, std::unique_ptr<ProfileFile>> files_;
};

Section *findSection(ProfileFile &f, const std::string &name)
{
    for (Section &s : f.sections)
        if (equalNoCase(s.name, name))
            return &s;
    return nullptr;
}

Line *findKey(Section &s, const std::string &key)
{
    for (Line &l : s.lines)
        if (l.isEntry && equalNoCase(l.key, key))
            return &l;
    return nullptr;
}

// Windows strips one pair of matching quotes around a value when read.
std::string unquote(const std::string &v)
{
    if (v.size() >= 2 && (v[0] == '"' || v[0] == '\'') && v.back() == v[0])
        return v.substr(1, v.size() - 2);
    return v;
}

// What a GetPrivateProfileString call asks for.
struct Answer {
    bool isList = false;
    bool found = false;
    std::string value;
    std::vector<std::string> list;
};

Answer query(const char *app, const char *key, const char *fileName)
{
    Answer a;
    Profiles &p = Profiles::instance();
    std::lock_guard lock(p.mutex);
    ProfileFile &f = p.file(fileName);
    if (!app) {
        a.isList = true;
        for (const Section &s : f.sections)
            a.list.push_back(s.name);
        return a;
    }
    Section *s = findSection(f, app);
    if (!key) {
        a.isList = true;
        if (s)
            for (const Line &l : s->lines)
                if (l.isEntry)
                    a.list.push_back(l.key);
        return a;
    }
    if (s)
        if (Line *l = findKey(*s, key)) {
            a.found = true;
            a.value = unquote(l->value);
        }
    return a;
}

bool update(const char *app, const char *key, const char *value, const char *fileName)
{
    Profiles &p = Profiles::instance();
    std::lock_guard lock(p.mutex);
    ProfileFile &f = p.file(fileName);
    if (!app && !key && !value)
        return p.flush(f);
    if (!app) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    if (!f.inProfileDir) {
        size_t slash = f.path.rfind('/');
        std::string dir = slash == std::string::npos ? "." : f.path.substr(0, slash + 1);
        struct stat st;
        if (stat(dir.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) {
            SetLastError(ERROR_PATH_NOT_FOUND);
            return false;
        }
    }
    Section *s = findSection(f, app);
    if (!key) {
        if (s) {
            f.sections.erase(f.sections.begin() + (s - f.sections.data()));
            p.markDirty(f);
        }
        return true;
    }
    Line *l = s ? findKey(*s, key) : nullptr;
    if (!value) {
        if (l) {
            s->lines.erase(s->lines.begin() + (l - s->lines.data()));
            p.markDirty(f);
        }
        return true;
    }
    std::string v = value;
    for (char &c : v)
        if (c == '\n' || c == '\r')
            c = ' ';  // a line break would end the entry
    if (l) {
        if (l->value == v && l->raw.empty())
            return true;
        l->value = v;
        l->raw.clear();  // rewritten from key and value
        p.markDirty(f);
        return true;
    }
    if (!s) {
        // A blank line before a new section, unless the file ends in one.
        std::vector<Line> &last = f.sections.empty() ? f.preamble : f.sections.back().lines;
        if (!last.empty() && !trim(last.back().raw).empty())
            last.push_back(Line{});
        f.sections.push_back(Section{app, "", {}});
        s = &f.sections.back();
    }
    // After the section's last entry, so trailing comments and blank lines
    // stay where they were.
    size_t at = 0;
    for (size_t i = 0; i < s->lines.size(); ++i)
        if (s->lines[i].isEntry)
            at = i + 1;
    Line entry;
    entry.isEntry = true;
    entry.key = key;
    entry.value = v;
    s->lines.insert(s->lines.begin() + at, std::move(entry));
    p.markDirty(f);
    return true;
}

// Copies a value: at most nSize - 1 units and a terminator; the result is
// the count copied.
template <class C> DWORD copyValue(const std::basic_string<C> &v, C *buffer, DWORD nSize)
{
    if (!buffer || nSize == 0)
        return 0;
    size_t n = v.size() < nSize ? v.size() : nSize - 1;
    memcpy(buffer, v.data(), n * sizeof(C));
    buffer[n] = 0;
    return static_cast<DWORD>(n);
}

// Copies a list as NUL-separated strings ending in a second NUL.  When it
// does not fit, it is cut to nSize - 2 units and ended with two NULs, and
// the result is nSize - 2, as Windows documents.
template <class C> DWORD copyList(const std::basic_string<C> &joined, C *buffer, DWORD nSize)
{
    if (!buffer || nSize == 0)
        return 0;
    if (joined.size() + 1 <= nSize) {
        memcpy(buffer, joined.data(), joined.size() * sizeof(C));
        buffer[joined.size()] = 0;
        if (joined.empty() && nSize > 1)
            buffer[1] = 0;
        return static_cast<DWORD>(joined.empty() ? 0 : joined.size());
    }
    if (nSize < 2) {
        buffer[0] = 0;
        return 0;
    }
    memcpy(buffer, joined.data(), (nSize - 2) * sizeof(C));
    buffer[nSize - 2] = 0;
    buffer[nSize - 1] = 0;
    return nSize - 2;
}

// Every list entry followed by its NUL (the final second NUL is added by
// copyList).
std::string joinList(const std::vector<std::string> &list)
{
    std::string joined;
    for (const std::string &s : list) {
        joined += s;
        joined += '\0';
    }
    return joined;
}

// The default string without its trailing blanks, as Windows returns it.
std::string defaultValue(const char *def)
{
    std::string d = def ? def : "";
    size_t e = d.find_last_not_of(" \t");
    d.erase(e == std::string::npos ? 0 : e + 1);
    return d;
}

template <class C> DWORD answer(const Answer &a, const std::string &def, C *buffer, DWORD nSize)
{
    if (a.isList) {
        std::string joined = joinList(a.list);
        if constexpr (sizeof(C) == 1)
            return copyList(joined, buffer, nSize);
        else
            return copyList(utf8ToUtf16(joined), buffer, nSize);
    }
    if (!a.found)
        SetLastError(ERROR_FILE_NOT_FOUND);
    const std::string &v = a.found ? a.value : def;
    if constexpr (sizeof(C) == 1)
        return copyValue(v, buffer, nSize);
    else
        return copyValue(utf8ToUtf16(v), buffer, nSize);
}

// Leading sign and decimal digits; anything else ends the number.
UINT parseInt(const std::string &v, INT def, bool found)
{
    if (!found)
        return static_cast<UINT>(def);
    const char *p = v.c_str();
    bool negative = false;
    if (*p == '-' || *p == '+')
        negative = *p++ == '-';
    uint32_t n = 0;
    while (*p >= '0' && *p <= '9')
        n = n * 10 + static_cast<uint32_t>(*p++ - '0');
    return negative ? 0u - n : n;
}

// The UTF-8 form of an optional wide argument.
struct Narrow {
    std::string text;
    bool present;
    explicit Narrow(LPCWSTR s) : present(s != nullptr)
    {
        if (s) {
            size_t n = 0;
            while (s[n])
                ++n;
            text = utf16ToUtf8({s, n});
        }
    }
    const char *get() const { return present ? text.c_str() : nullptr; }
};

}  // namespace

extern "C" OLMO_API int omWriteNextDirtyProfile(void)
{
    Profiles &p = Profiles::instance();
    if (p.dirtyCount.load(std::memory_order_relaxed) == 0)
        return 0;
    std::lock_guard lock(p.mutex);
    return p.flushNext();
}

// ---- Private profile files --------------------------------------------------------

extern "C" DWORD WINAPI GetPrivateProfileStringA(LPCSTR lpAppName, LPCSTR lpKeyName,
                                                LPCSTR lpDefault, LPSTR lpReturnedString,
                                                DWORD nSize, LPCSTR lpFileName)
{
    if (!lpReturnedString) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    try {
        return answer(query(lpAppName, lpKeyName, lpFileName), defaultValue(lpDefault),
                      lpReturnedString, nSize);
    } catch (const std::bad_alloc &) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        omError(OmDiag::OutOfMemory, "GetPrivateProfileStringA");
        return 0;
    }
}

extern "C" DWORD WINAPI GetPrivateProfileStringW(LPCWSTR lpAppName, LPCWSTR lpKeyName,
                                                LPCWSTR lpDefault, LPWSTR lpReturnedString,
                                                DWORD nSize, LPCWSTR lpFileName)
{
    if (!lpReturnedString) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    try {
        Narrow app(lpAppName), key(lpKeyName), def(lpDefault), file(lpFileName);
        return answer(query(app.get(), key.get(), file.get()), defaultValue(def.get()),
                      lpReturnedString, nSize);
    } catch (const std::bad_alloc &) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        omError(OmDiag::OutOfMemory, "GetPrivateProfileStringW");
        return 0;
    }
}

extern "C" UINT WINAPI GetPrivateProfileIntA(LPCSTR lpAppName, LPCSTR lpKeyName, INT nDefault,
                                             LPCSTR lpFileName)
{
    if (!lpAppName || !lpKeyName)
        return static_cast<UINT>(nDefault);
    try {
        Answer a = query(lpAppName, lpKeyName, lpFileName);
        return parseInt(a.value, nDefault, a.found);
    } catch (const std::bad_alloc &) {
        omError(OmDiag::OutOfMemory, "GetPrivateProfileIntA");
        return static_cast<UINT>(nDefault);
    }
}

extern "C" UINT WINAPI GetPrivateProfileIntW(LPCWSTR lpAppName, LPCWSTR lpKeyName, INT nDefault,
                                             LPCWSTR lpFileName)
{
    try {
        Narrow app(lpAppName), key(lpKeyName), file(lpFileName);
        return GetPrivateProfileIntA(app.get(), key.get(), nDefault, file.get());
    } catch (const std::bad_alloc &) {
        omError(OmDiag::OutOfMemory, "GetPrivateProfileIntW");
        return static_cast<UINT>(nDefault);
    }
}

extern "C" BOOL WINAPI WritePrivateProfileStringA(LPCSTR lpAppName, LPCSTR lpKeyName,
                                                  LPCSTR lpString, LPCSTR lpFileName)
{
    try {
        return update(lpAppName, lpKeyName, lpString, lpFileName);
    } catch (const std::bad_alloc &) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        omError(OmDiag::OutOfMemory, "WritePrivateProfileStringA");
        return FALSE;
    }
}

extern "C" BOOL WINAPI WritePrivateProfileStringW(LPCWSTR lpAppName, LPCWSTR lpKeyName,
                                                  LPCWSTR lpString, LPCWSTR lpFileName)
{
    try {
        Narrow app(lpAppName), key(lpKeyName), str(lpString), file(lpFileName);
        return update(app.get(), key.get(), str.get(), file.get());
    } catch (const std::bad_alloc &) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        omError(OmDiag::OutOfMemory, "WritePrivateProfileStringW");
        return FALSE;
    }
}

// ---- win.ini ---------------------------------------------------------------------------

extern "C" UINT WINAPI GetProfileIntA(LPCSTR lpAppName, LPCSTR lpKeyName, INT nDefault)
{
    return GetPrivateProfileIntA(lpAppName, lpKeyName, nDefault, "win.ini");
}

extern "C" UINT WINAPI GetProfileIntW(LPCWSTR lpAppName, LPCWSTR lpKeyName, INT nDefault)
{
    return GetPrivateProfileIntW(lpAppName, lpKeyName, nDefault, u"win.ini");
}

extern "C" DWORD WINAPI GetProfileStringA(LPCSTR lpAppName, LPCSTR lpKeyName, LPCSTR lpDefault,
                                         LPSTR lpReturnedString, DWORD nSize)
{
    return GetPrivateProfileStringA(lpAppName, lpKeyName, lpDefault, lpReturnedString, nSize,
                                    "win.ini");
}

extern "C" DWORD WINAPI GetProfileStringW(LPCWSTR lpAppName, LPCWSTR lpKeyName,
                                         LPCWSTR lpDefault, LPWSTR lpReturnedString, DWORD nSize)
{
    return GetPrivateProfileStringW(lpAppName, lpKeyName, lpDefault, lpReturnedString, nSize,
                                    u"win.ini");
}

extern "C" BOOL WINAPI WriteProfileStringA(LPCSTR lpAppName, LPCSTR lpKeyName, LPCSTR lpString)
{
    return WritePrivateProfileStringA(lpAppName, lpKeyName, lpString, "win.ini");
}

extern "C" BOOL WINAPI WriteProfileStringW(LPCWSTR lpAppName, LPCWSTR lpKeyName,
                                           LPCWSTR lpString)
{
    return WritePrivateProfileStringW(lpAppName, lpKeyName, lpString, u"win.ini");
}
