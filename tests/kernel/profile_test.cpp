// Profile settings: round trips through a private directory, buffered
// writes and their flushing (explicit, one file per call, at exit),
// deletion, the section and key lists, truncation, integers, comments kept
// on rewrite, other writers noticed, and the wide forms.
#include "kernel/omprofile.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

extern char **environ;

namespace {

namespace fs = std::filesystem;

// Re-executed with OLMO_PROFILE_PEER=<dir>, this binary writes one value
// into <dir>/exit.ini without flushing and leaves through exit(), whose
// handlers must write it.
int runProfilePeer()
{
    const char *dir = getenv("OLMO_PROFILE_PEER");
    if (!dir)
        return 0;
    std::string file = std::string(dir) + "/exit.ini";
    WritePrivateProfileStringA("Exit", "Written", "at exit", file.c_str());
    exit(0);
}

[[maybe_unused]] const int g_peer = runProfilePeer();

std::string readFile(const fs::path &p)
{
    std::ifstream in(p);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

void writeFile(const fs::path &p, const std::string &text)
{
    std::ofstream(p) << text;
}

class Profile : public ::testing::Test {
protected:
    void SetUp() override
    {
        char tmpl[] = "/tmp/olmo-profile-XXXXXX";
        ASSERT_NE(mkdtemp(tmpl), nullptr);
        dir_ = tmpl;
        setenv("OLMO_PROFILE_DIR", dir_.c_str(), 1);
    }
    void TearDown() override
    {
        while (omWriteNextDirtyProfile())
            ;
        unsetenv("OLMO_PROFILE_DIR");
        std::error_code ec;
        fs::remove_all(dir_, ec);
    }

    // The file a bare name stands for.
    fs::path path(const char *name) const { return dir_ / name; }

    fs::path dir_;
};

std::string get(const char *app, const char *key, const char *file, const char *def = "")
{
    char buf[256];
    DWORD n = GetPrivateProfileStringA(app, key, def, buf, sizeof buf, file);
    return std::string(buf, n);
}

TEST_F(Profile, WritesAreBufferedUntilFlushed)
{
    EXPECT_TRUE(WritePrivateProfileStringA("Sec", "Key", "Value", "test.ini"));
    EXPECT_EQ(get("Sec", "Key", "test.ini"), "Value") << "read back from memory";
    EXPECT_FALSE(fs::exists(path("test.ini"))) << "not written yet";

    EXPECT_EQ(omWriteNextDirtyProfile(), 1);
    EXPECT_EQ(readFile(path("test.ini")), "[Sec]\nKey=Value\n");
    EXPECT_EQ(omWriteNextDirtyProfile(), 0) << "nothing left to write";

    // The explicit flush writes at once.
    EXPECT_TRUE(WritePrivateProfileStringA("Sec", "Other", "2", "test.ini"));
    EXPECT_TRUE(WritePrivateProfileStringA(nullptr, nullptr, nullptr, "test.ini"));
    EXPECT_EQ(readFile(path("test.ini")), "[Sec]\nKey=Value\nOther=2\n");
    EXPECT_EQ(omWriteNextDirtyProfile(), 0);
}

TEST_F(Profile, NamesIgnoreCaseAndWinIniIsTheDefaultFile)
{
    EXPECT_TRUE(WriteProfileStringA("Windows", "MinDlgFontSize", "12"));
    EXPECT_EQ(GetProfileIntA("WINDOWS", "mindlgfontsize", 14), 12u);
    EXPECT_EQ(GetProfileIntA("windows", "DlgFontWeight", 400), 400u) << "absent: the default";
    EXPECT_EQ(get("windows", "MINDLGFONTSIZE", "WIN.INI"), "12") << "bare names ignore case";
    while (omWriteNextDirtyProfile())
        ;
    EXPECT_TRUE(fs::exists(path("win.ini")));
}

TEST_F(Profile, DeletingKeysAndSections)
{
    WritePrivateProfileStringA("A", "k1", "1", "d.ini");
    WritePrivateProfileStringA("A", "k2", "2", "d.ini");
    WritePrivateProfileStringA("B", "k", "3", "d.ini");
    EXPECT_TRUE(WritePrivateProfileStringA("A", "K1", nullptr, "d.ini"));
    EXPECT_EQ(get("A", "k1", "d.ini", "gone"), "gone");
    EXPECT_EQ(get("A", "k2", "d.ini"), "2");
    EXPECT_TRUE(WritePrivateProfileStringA("b", nullptr, nullptr, "d.ini"));
    EXPECT_EQ(get("B", "k", "d.ini", "gone"), "gone");
    EXPECT_TRUE(WritePrivateProfileStringA("Missing", "x", nullptr, "d.ini"));
    SetLastError(0);
    EXPECT_FALSE(WritePrivateProfileStringA(nullptr, "k", "v", "d.ini"));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    WritePrivateProfileStringA(nullptr, nullptr, nullptr, "d.ini");
    EXPECT_EQ(readFile(path("d.ini")), "[A]\nk2=2\n");
}

TEST_F(Profile, SectionAndKeyLists)
{
    WritePrivateProfileStringA("First", "a", "1", "l.ini");
    WritePrivateProfileStringA("First", "bb", "2", "l.ini");
    WritePrivateProfileStringA("Second", "c", "3", "l.ini");

    char buf[64];
    DWORD n = GetPrivateProfileStringA(nullptr, nullptr, "ignored", buf, sizeof buf, "l.ini");
    EXPECT_EQ(n, 13u);
    EXPECT_EQ(std::string(buf, n + 1), std::string("First\0Second\0\0", 14));

    n = GetPrivateProfileStringA("first", nullptr, "", buf, sizeof buf, "l.ini");
    EXPECT_EQ(std::string(buf, n + 1), std::string("a\0bb\0\0", 6));
    n = GetPrivateProfileStringA("None", nullptr, "", buf, sizeof buf, "l.ini");
    EXPECT_EQ(n, 0u);
    EXPECT_EQ(buf[0], 0);
    EXPECT_EQ(buf[1], 0);

    // Too small: cut to nSize - 2 and ended with two NULs.
    memset(buf, '#', sizeof buf);
    n = GetPrivateProfileStringA(nullptr, nullptr, "", buf, 9, "l.ini");
    EXPECT_EQ(n, 7u);
    EXPECT_EQ(std::string(buf, 9), std::string("First\0S\0\0", 9));
    EXPECT_EQ(buf[9], '#');
}

TEST_F(Profile, ValuesDefaultsAndTruncation)
{
    writeFile(path("v.ini"), "[S]\n  spaced  =   value with spaces   \nq1=\"quoted\"\n"
                             "q2='single'\nq3=\"unbalanced\nempty=\n");
    EXPECT_EQ(get("S", "spaced", "v.ini"), "value with spaces");
    EXPECT_EQ(get("S", "q1", "v.ini"), "quoted");
    EXPECT_EQ(get("S", "q2", "v.ini"), "single");
    EXPECT_EQ(get("S", "q3", "v.ini"), "\"unbalanced");
    EXPECT_EQ(get("S", "empty", "v.ini", "default"), "") << "present but empty";
    SetLastError(0);
    EXPECT_EQ(get("S", "missing", "v.ini", "def   "), "def") << "trailing blanks go";
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    char buf[8];
    EXPECT_EQ(GetPrivateProfileStringA("S", "missing", nullptr, buf, sizeof buf, "v.ini"), 0u);
    EXPECT_STREQ(buf, "");

    memset(buf, '#', sizeof buf);
    EXPECT_EQ(GetPrivateProfileStringA("S", "spaced", "", buf, 4, "v.ini"), 3u);
    EXPECT_STREQ(buf, "val");
    EXPECT_EQ(buf[4], '#');
    EXPECT_EQ(GetPrivateProfileStringA("S", "spaced", "", buf, 0, "v.ini"), 0u);
}

TEST_F(Profile, IntegersReadSignAndLeadingDigits)
{
    writeFile(path("i.ini"), "[N]\na=42\nb=-7\nc=+3\nd=12abc\ne=abc\nf= 9 \ng=0x10\nh=\"15\"\n");
    struct {
        const char *key;
        UINT expected;
    } cases[] = {
        {"a", 42}, {"b", static_cast<UINT>(-7)}, {"c", 3}, {"d", 12}, {"e", 0},
        {"f", 9},  {"g", 0},                     {"h", 15}, {"missing", 77},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.key);
        EXPECT_EQ(GetPrivateProfileIntA("N", c.key, 77, "i.ini"), c.expected);
    }
    EXPECT_EQ(GetPrivateProfileIntW(u"N", u"a", 0, u"i.ini"), 42u);
}

TEST_F(Profile, CommentsAndLayoutSurviveARewrite)
{
    writeFile(path("c.ini"), "; file comment\n\n[Main]\n; about a\na=1\nb=2\n\n; trailer\n"
                             "[Other]\nx=y\n");
    WritePrivateProfileStringA("Main", "a", "10", "c.ini");
    WritePrivateProfileStringA("Main", "new", "n", "c.ini");
    WritePrivateProfileStringA("Added", "k", "v", "c.ini");
    WritePrivateProfileStringA(nullptr, nullptr, nullptr, "c.ini");
    EXPECT_EQ(readFile(path("c.ini")), "; file comment\n\n[Main]\n; about a\na=10\nb=2\nnew=n\n\n"
                                       "; trailer\n[Other]\nx=y\n\n[Added]\nk=v\n");
}

TEST_F(Profile, AnotherWritersChangesAreSeen)
{
    writeFile(path("e.ini"), "[S]\nk=old\n");
    EXPECT_EQ(get("S", "k", "e.ini"), "old");
    // A different size, so the change shows even within one timestamp tick.
    writeFile(path("e.ini"), "[S]\nk=newer\n");
    EXPECT_EQ(get("S", "k", "e.ini"), "newer");
}

TEST_F(Profile, PathsAndDirectories)
{
    fs::path sub = dir_ / "sub";
    std::string missing = (sub / "p.ini").string();
    SetLastError(0);
    EXPECT_FALSE(WritePrivateProfileStringA("S", "k", "v", missing.c_str()));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
    fs::create_directory(sub);
    EXPECT_TRUE(WritePrivateProfileStringA("S", "k", "v", missing.c_str()));
    WritePrivateProfileStringA(nullptr, nullptr, nullptr, missing.c_str());
    EXPECT_EQ(readFile(missing), "[S]\nk=v\n");

    // The profile directory itself is created when first written.
    fs::path nested = dir_ / "deeper" / "olmo";
    setenv("OLMO_PROFILE_DIR", nested.c_str(), 1);
    EXPECT_TRUE(WritePrivateProfileStringA("S", "k", "v", "n.ini"));
    WritePrivateProfileStringA(nullptr, nullptr, nullptr, "n.ini");
    EXPECT_EQ(readFile(nested / "n.ini"), "[S]\nk=v\n");
}

TEST_F(Profile, WideFormsShareTheFiles)
{
    EXPECT_TRUE(WritePrivateProfileStringW(u"S\u00E9c", u"K\u00E9y", u"v\u00E4lue", u"w.ini"));
    WCHAR wbuf[32];
    DWORD n = GetPrivateProfileStringW(u"S\u00C9C", u"K\u00C9Y", u"", wbuf, 32, u"w.ini");
    EXPECT_EQ(std::u16string(wbuf, n), u"v\u00E4lue");
    EXPECT_EQ(get("S\xC3\xA9" "c", "K\xC3\xA9y", "w.ini"), "v\xC3\xA4lue");
    n = GetPrivateProfileStringW(nullptr, nullptr, u"", wbuf, 32, u"w.ini");
    EXPECT_EQ(std::u16string(wbuf, n + 1), std::u16string(u"S\u00E9c\0", 5));
    EXPECT_TRUE(WriteProfileStringW(u"W", u"k", u"1"));
    EXPECT_EQ(GetProfileIntW(u"w", u"K", 0), 1u);
    n = GetProfileStringW(u"W", u"k", u"", wbuf, 32);
    EXPECT_EQ(std::u16string(wbuf, n), u"1");
}

TEST_F(Profile, PendingWritesAreSavedAtExit)
{
    std::string env = "OLMO_PROFILE_PEER=" + dir_.string();
    std::vector<char *> envp;
    for (char **e = environ; *e; ++e)
        envp.push_back(*e);
    envp.push_back(env.data());
    envp.push_back(nullptr);
    char exe[] = "/proc/self/exe";
    char *argv[] = {exe, nullptr};
    pid_t pid;
    ASSERT_EQ(posix_spawn(&pid, exe, nullptr, nullptr, argv, envp.data()), 0);
    int status = 0;
    ASSERT_EQ(waitpid(pid, &status, 0), pid);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_EQ(readFile(dir_ / "exit.ini"), "[Exit]\nWritten=at exit\n");
}

}  // namespace
