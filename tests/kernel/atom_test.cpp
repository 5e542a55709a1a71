// Atoms: the local table (case, integer atoms, reference counts, name
// truncation), the global table shared through the X server (checked from
// second processes: this binary re-executed as a peer), the X atom helpers,
// and eight threads adding and deleting at once.
// GoogleTest before Xlib, whose macros (None, Bool) would break it.
#include <gtest/gtest.h>

#include "kernel/omatom.h"
#include "kernel/omdiag.h"
#include "kernel/omstring.h"

#include <windows.h>

#include <X11/Xatom.h>
#include <X11/Xlib.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

extern char **environ;

namespace {

// ---- The peer ----------------------------------------------------------------
//
// Re-executed with OLMO_ATOM_PEER set, this binary runs one command before
// main (so no test and no X server of its own start) on the display it
// inherited, prints the answers and exits:
//   find:NAME         the value of GlobalFindAtomA(NAME)
//   add:N1|N2|...     "name=value" for GlobalAddAtomA of each name
//   xatom:NAME        omGlobalAtomsFindXatom of NAME's global atom

std::vector<std::string> split(const std::string &s, char sep)
{
    std::vector<std::string> parts;
    std::stringstream in(s);
    std::string part;
    while (std::getline(in, part, sep))
        parts.push_back(part);
    return parts;
}

int runPeerCommand()
{
    const char *command = getenv("OLMO_ATOM_PEER");
    if (!command)
        return 0;
    std::string c = command;
    std::string arg = c.substr(c.find(':') + 1);
    if (c.rfind("find:", 0) == 0) {
        printf("%u\n", GlobalFindAtomA(arg.c_str()));
    } else if (c.rfind("add:", 0) == 0) {
        for (const std::string &name : split(arg, '|'))
            printf("%s=%u\n", name.c_str(), GlobalAddAtomA(name.c_str()));
    } else if (c.rfind("xatom:", 0) == 0) {
        printf("%lu\n", omGlobalAtomsFindXatom(GlobalFindAtomA(arg.c_str())));
    }
    fflush(stdout);
    _exit(0);
}

[[maybe_unused]] const int g_peer = runPeerCommand();

// Starts one peer per command at once and returns their outputs.
std::vector<std::string> runPeers(const std::vector<std::string> &commands)
{
    struct Child {
        pid_t pid = -1;
        int fd = -1;
    };
    std::vector<Child> children;
    for (const std::string &command : commands) {
        int fds[2];
        if (pipe2(fds, O_CLOEXEC) != 0)
            return {};
        std::vector<std::string> env;
        for (char **e = environ; *e; ++e)
            if (strncmp(*e, "OLMO_ATOM_PEER=", 15) != 0)
                env.emplace_back(*e);
        env.push_back("OLMO_ATOM_PEER=" + command);
        std::vector<char *> envp;
        for (std::string &s : env)
            envp.push_back(s.data());
        envp.push_back(nullptr);
        char exe[] = "/proc/self/exe";
        char *argv[] = {exe, nullptr};
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, fds[1], STDOUT_FILENO);
        Child child;
        if (posix_spawn(&child.pid, exe, &actions, nullptr, argv, envp.data()) != 0)
            child.pid = -1;
        posix_spawn_file_actions_destroy(&actions);
        close(fds[1]);
        child.fd = fds[0];
        children.push_back(child);
    }
    std::vector<std::string> outputs;
    for (Child &child : children) {
        std::string out;
        char buf[4096];
        ssize_t n;
        while ((n = read(child.fd, buf, sizeof buf)) > 0)
            out.append(buf, n);
        close(child.fd);
        int status = 0;
        if (child.pid > 0)
            waitpid(child.pid, &status, 0);
        outputs.push_back(out);
    }
    return outputs;
}

unsigned peerValue(const std::string &command)
{
    std::vector<std::string> out = runPeers({command});
    return out.empty() ? 0 : static_cast<unsigned>(strtoul(out[0].c_str(), nullptr, 10));
}

// A name no earlier run of the tests on this server can have added.
std::string uniqueName(const char *stem)
{
    static std::atomic<int> counter{0};
    return std::string(stem) + "_" + std::to_string(getpid()) + "_" +
           std::to_string(counter++);
}

// ---- Local atoms --------------------------------------------------------------------

TEST(LocalAtoms, NamesIgnoreCaseAndCountReferences)
{
    std::string name = uniqueName("Hello");
    ATOM a = AddAtomA(name.c_str());
    ASSERT_GE(a, 0xC000);
    std::string upper = name;
    CharUpperA(upper.data());
    EXPECT_EQ(AddAtomA(upper.c_str()), a) << "the same atom, a second reference";
    EXPECT_EQ(FindAtomA(upper.c_str()), a);
    char buf[64];
    EXPECT_EQ(GetAtomNameA(a, buf, sizeof buf), name.size());
    EXPECT_EQ(buf, name) << "the first spelling is kept";

    EXPECT_EQ(DeleteAtom(a), 0);
    EXPECT_EQ(FindAtomA(name.c_str()), a) << "one reference left";
    EXPECT_EQ(DeleteAtom(a), 0);
    SetLastError(0);
    EXPECT_EQ(FindAtomA(name.c_str()), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    omDiagResetCounts();
    EXPECT_EQ(DeleteAtom(a), a) << "failure returns the atom";
    EXPECT_EQ(GetAtomNameA(a, buf, sizeof buf), 0u);
    EXPECT_EQ(omDiagCount(300), 2u);
}

TEST(LocalAtoms, IntegerAtomsMapToThemselves)
{
    struct {
        LPCSTR arg;
        ATOM expected;
    } cases[] = {
        {"#123", 123},
        {MAKEINTATOM(5), 5},
        {"#49151", 0xBFFF},
        {"#0000042", 42},
        {"#99999999999999999999", 0},
        {"#0", 0},
        {"#49152", 0},
        {MAKEINTATOM(0), 0},
        {MAKEINTATOM(0xC000), 0},
        {"", 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(reinterpret_cast<uintptr_t>(c.arg) < 0x10000 ? "MAKEINTATOM" : c.arg);
        SetLastError(0);
        EXPECT_EQ(AddAtomA(c.arg), c.expected);
        EXPECT_EQ(FindAtomA(c.arg), c.expected);
        if (!c.expected) {
            EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
        }
    }
    EXPECT_GE(AddAtomA("#12a"), 0xC000) << "not all digits: a string atom";
    char buf[16];
    EXPECT_EQ(GetAtomNameA(123, buf, sizeof buf), 4u);
    EXPECT_STREQ(buf, "#123");
    EXPECT_EQ(DeleteAtom(123), 0);
    EXPECT_EQ(GetAtomNameA(123, buf, sizeof buf), 4u) << "integer atoms cannot be deleted";
}

TEST(LocalAtoms, NameLengthTruncationAndWideForms)
{
    std::string longest(255, 'x');
    EXPECT_GE(AddAtomA(longest.c_str()), 0xC000);
    EXPECT_EQ(AddAtomA((longest + "x").c_str()), 0) << "more than 255 characters";

    ATOM a = AddAtomA("abcdefgh");
    char buf[8];
    memset(buf, '#', sizeof buf);
    SetLastError(0);
    EXPECT_EQ(GetAtomNameA(a, buf, 4), 3u);
    EXPECT_STREQ(buf, "abc");
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MORE_DATA));
    EXPECT_EQ(GetAtomNameA(a, buf, 0), 0u);

    ATOM w = AddAtomW(u"Wide\u00C9");
    EXPECT_EQ(FindAtomA("WIDE\xC3\xA9"), w) << "non-ASCII letters fold too";
    WCHAR wbuf[16];
    EXPECT_EQ(GetAtomNameW(w, wbuf, 16), 5u);
    EXPECT_EQ(std::u16string(wbuf), u"Wide\u00C9");
    EXPECT_EQ(GetAtomNameW(w, wbuf, 3), 2u);
    EXPECT_EQ(std::u16string(wbuf), u"Wi");
    EXPECT_EQ(FindAtomW(reinterpret_cast<LPCWSTR>(ULONG_PTR{77})), 77);
    EXPECT_TRUE(InitAtomTable(37));
}

// ---- Global atoms ---------------------------------------------------------------------

// The names on the server, in order, as another client reads them.
std::vector<std::string> serverTable()
{
    std::vector<std::string> names;
    Display *dpy = XOpenDisplay(nullptr);
    if (!dpy)
        return names;
    Atom prop = XInternAtom(dpy, "_OLMO_GLOBAL_ATOMS", True);
    Atom type;
    int format;
    unsigned long count, after;
    unsigned char *data = nullptr;
    if (prop != None &&
        XGetWindowProperty(dpy, DefaultRootWindow(dpy), prop, 0, 1 << 24, False, XA_STRING,
                           &type, &format, &count, &after, &data) == Success &&
        data) {
        const char *p = reinterpret_cast<const char *>(data);
        for (const char *end = p + count; p < end; p += strlen(p) + 1)
            names.emplace_back(p);
    }
    if (data)
        XFree(data);
    XCloseDisplay(dpy);
    return names;
}

TEST(GlobalAtoms, KeptOnTheServerAndFoundIgnoringCase)
{
    std::string name = uniqueName("OlmoGlobal");
    ATOM a = GlobalAddAtomA(name.c_str());
    ASSERT_GE(a, 0xC000);
    std::vector<std::string> table = serverTable();
    ASSERT_GT(table.size(), static_cast<size_t>(a - 0xC000));
    EXPECT_EQ(table[a - 0xC000], name) << "value = 0xC000 + position on the server";

    std::string lower = name;
    CharLowerA(lower.data());
    EXPECT_EQ(GlobalAddAtomA(lower.c_str()), a);
    EXPECT_EQ(GlobalFindAtomA(lower.c_str()), a);
    WCHAR *wide = _omWideStringFromMBString(name.c_str());
    EXPECT_EQ(GlobalFindAtomW(wide), a);
    free(wide);
    char buf[64];
    EXPECT_EQ(GlobalGetAtomNameA(a, buf, sizeof buf), name.size());
    EXPECT_EQ(buf, name);
    EXPECT_EQ(GlobalAddAtomA("#321"), 321);
    EXPECT_EQ(GlobalGetAtomNameA(321, buf, sizeof buf), 4u);

    EXPECT_EQ(GlobalDeleteAtom(a), 0);
    EXPECT_EQ(GlobalFindAtomA(name.c_str()), a) << "a position on the server stays taken";
    omDiagResetCounts();
    EXPECT_EQ(GlobalDeleteAtom(0xFFF0), 0xFFF0) << "never added";
    EXPECT_EQ(omDiagCount(300), 1u);
    EXPECT_EQ(GlobalFindAtomA(uniqueName("NeverAdded").c_str()), 0);
}

TEST(GlobalAtoms, SecondProcessSeesTheSameValues)
{
    std::string mine = uniqueName("AddedHere");
    ATOM a = GlobalAddAtomA(mine.c_str());
    ASSERT_GE(a, 0xC000);
    std::string upper = mine;
    CharUpperA(upper.data());
    EXPECT_EQ(peerValue("find:" + upper), a);

    // Added by another process: found here by re-reading the server.
    std::string theirs = uniqueName("AddedThere");
    std::vector<std::string> out = runPeers({"add:" + theirs});
    ASSERT_EQ(out.size(), 1u);
    unsigned value = static_cast<unsigned>(strtoul(out[0].c_str() + theirs.size() + 1, nullptr, 10));
    EXPECT_GE(value, 0xC000u);
    EXPECT_EQ(GlobalFindAtomA(theirs.c_str()), value);
    char buf[64];
    EXPECT_EQ(GlobalGetAtomNameA(static_cast<ATOM>(value), buf, sizeof buf), theirs.size());
}

TEST(GlobalAtoms, ProcessesAddingAtOnceGetDistinctValues)
{
    std::string shared = uniqueName("Shared");
    std::vector<std::string> commands;
    std::vector<std::vector<std::string>> names(2);
    for (int p = 0; p < 2; ++p) {
        std::string command = "add:" + shared;
        for (int i = 0; i < 40; ++i) {
            names[p].push_back(uniqueName(p ? "PeerB" : "PeerA"));
            command += "|" + names[p].back();
        }
        commands.push_back(command);
    }
    std::vector<std::string> outputs = runPeers(commands);
    ASSERT_EQ(outputs.size(), 2u);
    std::map<std::string, std::set<unsigned>> seen;
    for (const std::string &out : outputs)
        for (const std::string &line : split(out, '\n')) {
            size_t eq = line.find('=');
            ASSERT_NE(eq, std::string::npos) << line;
            seen[line.substr(0, eq)].insert(
                static_cast<unsigned>(strtoul(line.c_str() + eq + 1, nullptr, 10)));
        }
    ASSERT_EQ(seen.size(), 81u) << "every name answered";
    EXPECT_EQ(seen[shared].size(), 1u) << "both processes got one value for the shared name";
    std::set<unsigned> values;
    for (const auto &[name, v] : seen) {
        SCOPED_TRACE(name);
        ASSERT_EQ(v.size(), 1u);
        EXPECT_GE(*v.begin(), 0xC000u);
        EXPECT_TRUE(values.insert(*v.begin()).second) << "no value given to two names";
        EXPECT_EQ(GlobalFindAtomA(name.c_str()), *v.begin()) << "and this process agrees";
    }
}

TEST(GlobalAtoms, XAtomHelpersAgreeAcrossProcesses)
{
    omGlobalAtomsInitXAtom();
    EXPECT_NE(omGlobalAtomType, static_cast<Atom>(-1));
    EXPECT_NE(omGlobalAtomType, static_cast<Atom>(None));

    std::string name = uniqueName("PropKey");
    ATOM a = GlobalAddAtomA(name.c_str());
    Atom x = omGlobalAtomsFindXatom(a);
    ASSERT_NE(x, static_cast<Atom>(None));
    EXPECT_EQ(omGlobalAtomsFindXatom(a), x);
    EXPECT_EQ(omGlobalAtomsFindOlmoatom(x), a);
    EXPECT_EQ(peerValue("xatom:" + name), x);

    // Another spelling of the name maps to the same X atom.
    std::string upper = name;
    CharUpperA(upper.data());
    EXPECT_EQ(omGlobalAtomsFindXatom(GlobalFindAtomA(upper.c_str())), x);

    Atom small = omGlobalAtomsFindXatom(5);
    EXPECT_NE(small, static_cast<Atom>(None));
    EXPECT_EQ(omGlobalAtomsFindOlmoatom(small), 5);
    EXPECT_EQ(omGlobalAtomsFindXatom(0), static_cast<Atom>(None));
    EXPECT_EQ(omGlobalAtomsFindOlmoatom(XA_WM_NAME), 0) << "not one of ours";
}

// ---- Threads ------------------------------------------------------------------------------

TEST(AtomThreads, EightThreadsAddAndDeleteAtOnce)
{
    GlobalFindAtomA("warm-up");  // the display opens before the threads start
    std::string stem = uniqueName("T");
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([t, &stem, &failures] {
            std::string shared = stem + "_shared";
            for (int i = 0; i < 200; ++i) {
                std::string own = stem + "_" + std::to_string(t) + "_" + std::to_string(i % 20);
                ATOM a = AddAtomA(own.c_str());
                ATOM s = AddAtomA(shared.c_str());
                char buf[64];
                if (!a || !s || FindAtomA(own.c_str()) != a ||
                    GetAtomNameA(a, buf, sizeof buf) != own.size() || own != buf)
                    ++failures;
                if (DeleteAtom(a) != 0 || DeleteAtom(s) != 0)
                    ++failures;
            }
            for (int i = 0; i < 10; ++i) {
                std::string g = stem + "_g" + std::to_string(i);
                ATOM a = GlobalAddAtomA(g.c_str());
                if (a < 0xC000 || GlobalFindAtomA(g.c_str()) != a)
                    ++failures;
            }
        });
    }
    for (std::thread &th : threads)
        th.join();
    EXPECT_EQ(failures.load(), 0);
    EXPECT_EQ(FindAtomA((stem + "_shared").c_str()), 0) << "every reference was dropped";
    // The threads agreed on each global name.
    for (int i = 0; i < 10; ++i)
        EXPECT_GE(GlobalFindAtomA((stem + "_g" + std::to_string(i)).c_str()), 0xC000);
}

}  // namespace
