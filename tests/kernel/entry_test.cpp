// Program entry: the command line WinMain receives, its exit status, the
// X options the toolkit takes out, and a program with its own main that
// calls the kernel layer with no initialisation call.
#include "kernel/ominit.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

struct ProgramRun {
    int status = -1;
    std::string out;
};

// Runs a program with exactly these arguments (no shell) and collects its
// standard output.
ProgramRun runProgram(const char *path, const std::vector<std::string> &args)
{
    int fds[2];
    ProgramRun r;
    if (pipe(fds) != 0)
        return r;
    pid_t pid = fork();
    if (pid == 0) {
        dup2(fds[1], 1);
        close(fds[0]);
        close(fds[1]);
        std::vector<char *> argv{const_cast<char *>(path)};
        for (const std::string &a : args)
            argv.push_back(const_cast<char *>(a.c_str()));
        argv.push_back(nullptr);
        execv(path, argv.data());
        _exit(127);
    }
    close(fds[1]);
    char buf[4096];
    ssize_t n;
    while ((n = read(fds[0], buf, sizeof buf)) > 0)
        r.out.append(buf, static_cast<size_t>(n));
    close(fds[0]);
    int status = 0;
    waitpid(pid, &status, 0);
    r.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return r;
}

std::string field(const std::string &out, const std::string &key)
{
    size_t at = out.find(key + "=");
    if (at == std::string::npos)
        return "<missing>";
    at += key.size() + 1;
    return out.substr(at, out.find('\n', at) - at);
}

struct CommandLineCase {
    std::vector<std::string> args;
    const char *expected;  // lpCmdLine, bracketed
};

// Windows' quoting: arguments with blanks or quotes are quoted, a quote
// inside is escaped, backslashes double only before a quote.
const CommandLineCase kCommandLines[] = {
    {{}, "[]"},
    {{"one"}, "[one]"},
    {{"one", "two three"}, "[one \"two three\"]"},
    {{"say \"hi\""}, "[\"say \\\"hi\\\"\"]"},
    {{"C:\\dir\\file"}, "[C:\\dir\\file]"},
    {{"C:\\my dir\\"}, "[\"C:\\my dir\\\\\"]"},
    {{""}, "[\"\"]"},
};

TEST(ProgramEntry, WinMainGetsTheWindowsCommandLineAndItsResultIsTheExitStatus)
{
    for (const CommandLineCase &c : kCommandLines) {
        SCOPED_TRACE(c.expected);
        ProgramRun r = runProgram(OLMO_WINMAIN_PROBE, c.args);
        EXPECT_EQ(r.status, 42);
        EXPECT_EQ("[" + field(r.out, "cmdline").substr(1), std::string(c.expected)) << r.out;
        EXPECT_EQ(field(r.out, "argc"), std::to_string(c.args.size() + 1));
        EXPECT_EQ(field(r.out, "instance"), "1");
        EXPECT_EQ(field(r.out, "prev"), "0 show=10") << "no previous instance, SW_SHOWDEFAULT";
    }
}

TEST(ProgramEntry, XOptionsAreTakenOutAndApplied)
{
    ProgramRun r = runProgram(OLMO_WINMAIN_PROBE, {"-xrm", "*frameWidth: 7", "file.txt"});
    EXPECT_EQ(r.status, 42);
    EXPECT_EQ(field(r.out, "cmdline"), "[file.txt]");
    EXPECT_EQ(field(r.out, "frame"), "7") << "the resource reached GetSystemMetrics";
    EXPECT_NE(field(r.out, "full").find("file.txt"), std::string::npos);
}

TEST(ProgramEntry, OwnMainNeedsNoInitialisationAndKeepsTheToolkitsDllMain)
{
    ProgramRun r = runProgram(OLMO_OWNMAIN_PROBE, {});
    EXPECT_EQ(r.status, 0) << r.out;
    EXPECT_EQ(field(r.out, "event"), "1");
    EXPECT_EQ(field(r.out, "screen"), "1280x1024") << "the display opened on first need";
    EXPECT_EQ(field(r.out, "userlib"), "1") << "the user library was found beside the kernel";
    EXPECT_EQ(field(r.out, "program_dllmain"), "0") << "the program's DllMain stood in";
}

}  // namespace
