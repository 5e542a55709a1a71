// A private X server for a test binary: an Xvfb on a display of its own
// (picked by the server with -displayfd, so binaries run in parallel) and,
// on request, mwm managing its windows.  The X test mains own one of these.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

namespace om::test
{

// One Xvfb, and optionally one mwm on it.
//
// Contract:
//  - start() forks Xvfb with `-displayfd`, waits (bounded by startTimeout)
//    until the server reports its display and accepts a connection, and
//    returns true; on failure it returns false, error() says why (including
//    the tail of the server's own output) and nothing is left running.
//  - Children are tied to the thread that started them with
//    PR_SET_PDEATHSIG (SIGTERM for Xvfb, which then removes its socket and
//    lock file; SIGKILL for mwm): if that thread dies (the binary is
//    killed, a test aborts), they die too.  Call start() from the main
//    thread.
//  - startWindowManager() starts mwm on the display with a private resource
//    setup (HOME=/nonexistent, no XENVIRONMENT/XAPPLRESDIR/user search
//    paths, explicit -xrm settings) and returns once mwm has set
//    _MOTIF_WM_INFO on the root window, i.e. manages windows.  Keyboard
//    focus policy is click-to-type (mwm's `explicit`, set explicitly): a
//    window gets the focus when clicked or, on mapping, when mwm's
//    startupKeyFocus applies; the pointer position alone never moves it.
//    New windows are placed by mwm without user interaction.
//  - stop() (also run by the destructor) terminates mwm, then Xvfb, and
//    reaps both; it is idempotent.
class XServer
{
  public:
    struct Options {
        std::string screen = "1280x1024x24";
        // Appended to Xvfb's command line, e.g. {"-extension", "XTEST"}.
        std::vector<std::string> extraArgs;
        std::chrono::milliseconds startTimeout{20000};
    };

    XServer();
    explicit XServer(Options options);
    ~XServer();
    XServer(const XServer &) = delete;
    XServer &operator=(const XServer &) = delete;

    bool start();
    bool startWindowManager();
    void stop();

    bool running() const { return serverPid_ > 0; }
    // ":N" once started, empty before.
    const std::string &displayName() const { return displayName_; }
    // Why the last start()/startWindowManager() failed.
    const std::string &error() const { return error_; }
    pid_t serverPid() const { return serverPid_; }
    pid_t windowManagerPid() const { return wmPid_; }

    // Makes this server the one the tests use: sets DISPLAY for the process
    // and the name testDisplayName() returns.
    void publish() const;

  private:
    bool fail(const std::string &why);
    bool waitForWindowManager(std::chrono::steady_clock::time_point deadline);

    Options options_;
    std::string displayName_;
    std::string error_;
    pid_t serverPid_ = -1;
    pid_t wmPid_ = -1;
    int serverLog_ = -1; // memfd holding Xvfb's stdout/stderr
    int wmLog_ = -1;     // memfd holding mwm's stdout/stderr
};

// The display the test main started (":N"), or nullptr when this binary's
// main started none.  Pass it to XOpenDisplay/XtOpenDisplay.
const char *testDisplayName();

} // namespace om::test
