// main() of the X test binaries: a global gtest environment starts a
// private Xvfb (and mwm for OLMO_TESTMAIN_WM builds) before the first test
// and stops it after the last.  If the server cannot start (or the binary
// is linked so that Motif cannot work), every test fails with the reason
// instead of running against no display.

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "harness/xserver.h"
#include "lsan_suppressions.inc"

#ifndef OLMO_TESTMAIN_WM
#error "build with OLMO_TESTMAIN_WM=0 or 1"
#endif

namespace
{

std::string g_startError;

// Motif replaces Xt's VendorShell by defining the same class record; that
// only works when libXm comes before libXt in the load order.  Otherwise
// every shell silently lacks Motif's extension and widgets fail later with
// unrelated-looking X errors, so name the real cause up front.
std::string checkMotifLoadOrder()
{
    void *motif = dlopen("libXm.so.4", RTLD_LAZY | RTLD_NOLOAD);
    if (!motif)
        return {};
    std::string error;
    Dl_info info{};
    void *vendor = dlsym(RTLD_DEFAULT, "vendorShellClassRec");
    if (vendor && dladdr(vendor, &info) && info.dli_fname && !std::strstr(info.dli_fname, "libXm"))
        error = std::string("vendorShellClassRec resolves to ") + info.dli_fname +
                ", not libXm: link libXm ahead of libXt (its DT_NEEDED entry must come first)";
    dlclose(motif);
    return error;
}

class XEnvironment : public ::testing::Environment
{
  public:
    void SetUp() override
    {
        g_startError = checkMotifLoadOrder();
        if (g_startError.empty() && !server_.start())
            g_startError = server_.error();
        else if (g_startError.empty() && OLMO_TESTMAIN_WM && !server_.startWindowManager())
            g_startError = server_.error();
        if (!g_startError.empty()) {
            server_.stop();
            std::fprintf(stderr, "olmo test harness: %s\n", g_startError.c_str());
        }
        // Also on failure: clears DISPLAY so nothing reaches a desktop's
        // server by accident.
        server_.publish();
    }
    void TearDown() override { server_.stop(); }

  private:
    om::test::XServer server_;
};

// A fatal failure raised when a test starts stops gtest from running its
// body, so an unusable environment fails each test with the reason.
class FailWithoutServer : public ::testing::EmptyTestEventListener
{
    void OnTestStart(const ::testing::TestInfo &) override
    {
        if (!g_startError.empty())
            FAIL() << "The X test environment is unusable: " << g_startError;
    }
};

} // namespace

int main(int argc, char **argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    ::testing::AddGlobalTestEnvironment(new XEnvironment);
    ::testing::UnitTest::GetInstance()->listeners().Append(new FailWithoutServer);
    return RUN_ALL_TESTS();
}
