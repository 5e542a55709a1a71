// Starting and stopping the private Xvfb and mwm of a test binary.  Children
// are started with fork/execve so that they can be tied to our lifetime with
// PR_SET_PDEATHSIG; their output goes to memory files that are shown only
// when something fails.
#include "harness/xserver.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utility>

extern char **environ;

namespace om::test
{
namespace
{

using Clock = std::chrono::steady_clock;

std::string g_testDisplay;

int msUntil(Clock::time_point deadline)
{
    auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    return static_cast<int>(std::max<long long>(0, left.count()));
}

// PATH lookup done before fork: execve is async-signal-safe, execvp is not.
std::string findExecutable(const std::string &name)
{
    if (name.find('/') != std::string::npos)
        return access(name.c_str(), X_OK) == 0 ? name : std::string();
    const char *path = std::getenv("PATH");
    std::string dirs = path ? path : "/usr/local/bin:/usr/bin:/bin";
    size_t begin = 0;
    while (begin <= dirs.size()) {
        size_t end = dirs.find(':', begin);
        if (end == std::string::npos)
            end = dirs.size();
        std::string dir = dirs.substr(begin, end - begin);
        std::string candidate = (dir.empty() ? std::string(".") : dir) + "/" + name;
        if (access(candidate.c_str(), X_OK) == 0)
            return candidate;
        begin = end + 1;
    }
    return {};
}

std::string logTail(int fd, size_t max = 4000)
{
    if (fd < 0)
        return {};
    off_t size = lseek(fd, 0, SEEK_END);
    if (size <= 0)
        return {};
    off_t from = size > static_cast<off_t>(max) ? size - static_cast<off_t>(max) : 0;
    std::string text(static_cast<size_t>(size - from), '\0');
    ssize_t got = pread(fd, text.data(), text.size(), from);
    text.resize(got > 0 ? static_cast<size_t>(got) : 0);
    return text;
}

std::string describeStatus(int status)
{
    if (WIFEXITED(status))
        return "exited with status " + std::to_string(WEXITSTATUS(status));
    if (WIFSIGNALED(status))
        return std::string("was killed by signal ") + strsignal(WTERMSIG(status));
    return "stopped";
}

struct ChildSpec {
    std::string path;
    std::vector<std::string> args; // without argv[0]
    std::vector<std::string> env;
    int logFd = -1;
    int inheritFd = -1;        // becomes the child's fd 3; all others above 2 are closed
    int deathSignal = SIGTERM; // sent when the thread that forked dies
};

pid_t spawn(const ChildSpec &child, std::string &error)
{
    std::vector<char *> argv;
    argv.push_back(const_cast<char *>(child.path.c_str()));
    for (const auto &a : child.args)
        argv.push_back(const_cast<char *>(a.c_str()));
    argv.push_back(nullptr);
    std::vector<char *> envp;
    for (const auto &e : child.env)
        envp.push_back(const_cast<char *>(e.c_str()));
    envp.push_back(nullptr);

    const pid_t parent = getpid();
    pid_t pid = fork();
    if (pid < 0) {
        error = std::string("fork failed: ") + std::strerror(errno);
        return -1;
    }
    if (pid == 0) {
        // Only async-signal-safe calls from here to execve.
        prctl(PR_SET_PDEATHSIG, child.deathSignal);
        if (getppid() != parent)
            _exit(127); // the parent died before prctl took effect
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
        for (int sig : {SIGTERM, SIGINT, SIGHUP, SIGPIPE, SIGCHLD})
            signal(sig, SIG_DFL);
        int null = open("/dev/null", O_RDONLY);
        if (null >= 0)
            dup2(null, 0);
        if (child.logFd >= 0) {
            dup2(child.logFd, 1);
            dup2(child.logFd, 2);
        }
        if (child.inheritFd == 3)
            fcntl(3, F_SETFD, 0);
        else if (child.inheritFd >= 0)
            dup2(child.inheritFd, 3);
        // Nothing else of ours leaks into the child, e.g. pipes a test
        // runner waits on for EOF.
        close_range(child.inheritFd >= 0 ? 4 : 3, ~0u, 0);
        execve(argv[0], argv.data(), envp.data());
        static const char msg[] = "olmo test harness: execve failed\n";
        ssize_t ignored = write(2, msg, sizeof msg - 1);
        (void)ignored;
        _exit(127);
    }
    return pid;
}

// Reaps `pid` if it has exited; returns true and its status then.
bool reaped(pid_t pid, int &status)
{
    return waitpid(pid, &status, WNOHANG) == pid;
}

// Sends `sig`, then SIGKILL if the child does not go within a few seconds.
void terminate(pid_t &pid, int sig = SIGTERM)
{
    if (pid <= 0)
        return;
    int status = 0;
    if (!reaped(pid, status)) {
        kill(pid, sig);
        auto deadline = Clock::now() + std::chrono::seconds(5);
        while (!reaped(pid, status)) {
            if (Clock::now() >= deadline) {
                kill(pid, SIGKILL);
                waitpid(pid, &status, 0);
                break;
            }
            poll(nullptr, 0, 5);
        }
    }
    pid = -1;
}

std::vector<std::string> currentEnvironment(std::initializer_list<const char *> drop)
{
    std::vector<std::string> env;
    for (char **e = environ; e && *e; ++e) {
        std::string entry = *e;
        std::string key = entry.substr(0, entry.find('='));
        if (std::find_if(drop.begin(), drop.end(), [&](const char *d) { return key == d; }) ==
            drop.end())
            env.push_back(std::move(entry));
    }
    return env;
}

} // namespace

XServer::XServer() : XServer(Options{}) {}

XServer::XServer(Options options) : options_(std::move(options)) {}

XServer::~XServer()
{
    stop();
    if (serverLog_ >= 0)
        close(serverLog_);
    if (wmLog_ >= 0)
        close(wmLog_);
}

bool XServer::fail(const std::string &why)
{
    error_ = why;
    return false;
}

bool XServer::start()
{
    if (running())
        return true;
    error_.clear();
    const auto deadline = Clock::now() + options_.startTimeout;

    ChildSpec child;
    child.path = findExecutable("Xvfb");
    if (child.path.empty())
        return fail(
            "Xvfb could not start: no executable 'Xvfb' on PATH (install the xvfb package)");

    int fds[2];
    if (pipe2(fds, O_CLOEXEC) != 0)
        return fail(std::string("Xvfb could not start: pipe: ") + std::strerror(errno));
    if (serverLog_ >= 0)
        close(serverLog_);
    serverLog_ = memfd_create("olmo-xvfb-log", MFD_CLOEXEC);
    child.logFd = serverLog_;
    child.inheritFd = fds[1];
    // GLX is off: nothing here uses GL and loading the software renderer
    // is most of Xvfb's start-up time.  A fixed DPI keeps font scaling
    // independent of the screen size.
    child.args = {"-displayfd", "3",        "-screen",    "0",   options_.screen, "-nolisten",
                 "tcp",        "-noreset", "-extension", "GLX", "-dpi",          "96"};
    child.args.insert(child.args.end(), options_.extraArgs.begin(), options_.extraArgs.end());
    child.env = currentEnvironment({});

    std::string error;
    serverPid_ = spawn(child, error);
    close(fds[1]);
    if (serverPid_ < 0) {
        close(fds[0]);
        return fail("Xvfb could not start: " + error);
    }

    // Xvfb writes "N\n" once it accepts connections; EOF means it died.
    std::string number;
    bool complete = false;
    while (!complete) {
        pollfd p{fds[0], POLLIN, 0};
        int ready = poll(&p, 1, msUntil(deadline));
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0)
            break;
        char buf[32];
        ssize_t got = read(fds[0], buf, sizeof buf);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;
        for (ssize_t i = 0; i < got; ++i) {
            if (buf[i] == '\n')
                complete = true;
            else if (!complete)
                number += buf[i];
        }
    }
    close(fds[0]);

    auto giveUp = [&](const std::string &what) {
        std::string why = "Xvfb could not start: " + what;
        int status = 0;
        if (reaped(serverPid_, status)) {
            why += " (Xvfb " + describeStatus(status) + ")";
            serverPid_ = -1;
        } else {
            terminate(serverPid_);
        }
        std::string out = logTail(serverLog_);
        if (!out.empty())
            why += "\n--- Xvfb output ---\n" + out;
        return fail(why);
    };

    if (!complete || number.empty() ||
        !std::all_of(number.begin(), number.end(), [](char c) { return c >= '0' && c <= '9'; }))
        return giveUp(Clock::now() >= deadline ? "no display reported before the deadline"
                                               : "no display reported");
    displayName_ = ":" + number;

    Display *dpy = XOpenDisplay(displayName_.c_str());
    if (!dpy) {
        std::string name = displayName_;
        displayName_.clear();
        return giveUp("cannot connect to " + name);
    }
    XCloseDisplay(dpy);
    return true;
}

bool XServer::startWindowManager()
{
    if (!running())
        return fail("mwm could not start: the X server is not running");
    if (wmPid_ > 0)
        return true;
    error_.clear();
    const auto deadline = Clock::now() + options_.startTimeout;

    ChildSpec child;
    child.path = findExecutable("mwm");
    if (child.path.empty())
        return fail("mwm could not start: no executable 'mwm' on PATH (install the mwm package)");
    if (wmLog_ >= 0)
        close(wmLog_);
    wmLog_ = memfd_create("olmo-mwm-log", MFD_CLOEXEC);
    child.logFd = wmLog_;
    // Only system defaults plus what is set here: no ~/.mwmrc, ~/.Xdefaults
    // or user resource paths can change how windows are managed.
    child.args = {"-display", displayName_,
                 "-xrm",     "Mwm*keyboardFocusPolicy: explicit",
                 "-xrm",     "Mwm*interactivePlacement: False",
                 "-xrm",     "Mwm*startupKeyFocus: True",
                 "-xrm",     "Mwm*showFeedback: -all"};
    child.env = currentEnvironment({"HOME", "DISPLAY", "XENVIRONMENT", "XAPPLRESDIR",
                                   "XUSERFILESEARCHPATH", "XFILESEARCHPATH"});
    child.env.push_back("HOME=/nonexistent");
    // mwm acts on SIGTERM only when an X event next wakes it, so it is
    // killed outright; it keeps no state worth a clean exit.
    child.deathSignal = SIGKILL;
    child.env.push_back("DISPLAY=" + displayName_);

    std::string error;
    wmPid_ = spawn(child, error);
    if (wmPid_ < 0)
        return fail("mwm could not start: " + error);
    if (waitForWindowManager(deadline))
        return true;
    std::string out = logTail(wmLog_);
    if (!out.empty())
        error_ += "\n--- mwm output ---\n" + out;
    return false;
}

bool XServer::waitForWindowManager(Clock::time_point deadline)
{
    Display *dpy = XOpenDisplay(displayName_.c_str());
    if (!dpy) {
        terminate(wmPid_, SIGKILL);
        return fail("mwm could not start: cannot connect to " + displayName_);
    }
    Window root = DefaultRootWindow(dpy);
    Atom info = XInternAtom(dpy, "_MOTIF_WM_INFO", False);
    XSelectInput(dpy, root, PropertyChangeMask);
    XSync(dpy, False);

    bool ok = false;
    for (;;) {
        Atom type = None;
        int format = 0;
        unsigned long count = 0, after = 0;
        unsigned char *data = nullptr;
        if (XGetWindowProperty(dpy, root, info, 0, 2, False, AnyPropertyType, &type, &format,
                               &count, &after, &data) == Success) {
            if (data)
                XFree(data);
            if (type != None) {
                ok = true;
                break;
            }
        }
        int status = 0;
        if (reaped(wmPid_, status)) {
            wmPid_ = -1;
            fail("mwm could not start: mwm " + describeStatus(status));
            break;
        }
        int left = msUntil(deadline);
        if (left == 0) {
            terminate(wmPid_, SIGKILL);
            fail("mwm could not start: _MOTIF_WM_INFO not set on the root window in time");
            break;
        }
        while (XPending(dpy)) {
            XEvent ev;
            XNextEvent(dpy, &ev);
        }
        // Woken by the PropertyNotify; the cap only bounds how late a dead
        // mwm is noticed.
        pollfd p{ConnectionNumber(dpy), POLLIN, 0};
        poll(&p, 1, std::min(left, 50));
    }
    XCloseDisplay(dpy);
    return ok;
}

void XServer::stop()
{
    terminate(wmPid_, SIGKILL);
    terminate(serverPid_);
    displayName_.clear();
}

void XServer::publish() const
{
    g_testDisplay = displayName_;
    if (displayName_.empty())
        unsetenv("DISPLAY");
    else
        setenv("DISPLAY", displayName_.c_str(), 1);
}

const char *testDisplayName()
{
    return g_testDisplay.empty() ? nullptr : g_testDisplay.c_str();
}

} // namespace om::test
