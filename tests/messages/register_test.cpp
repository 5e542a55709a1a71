// Registered window messages.  Built twice: into messages_register_tests,
// which has no X server (the early table, and the other process of the
// cross-process tests), and into messages_tests, where the names are shared
// through the root window of the test display.
#include <gtest/gtest.h>

#include "kernel/omdiag.h"
#include "kernel/omdisplay.h"
#include "kernel/ominit.h"
#include "messages/omregister.h"

#include <windows.h>

#include <X11/Xatom.h>
#include <X11/Xlib.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace om::test {
namespace {

constexpr UINT kEarly = 0xC000;
constexpr UINT kShared = 0xC032;
constexpr int kTableFull = static_cast<int>(OmDiag::MessageTableFull);

#ifdef OLMO_REGISTER_WITHOUT_X

TEST(EarlyTable, NamesNumberFromC000CaselesslyUpToFifty)
{
    ASSERT_EQ(omDisplay, nullptr) << "needs a process without a display";
    omCleanupRegisterWindowMessage();
    omDiagResetCounts();
    std::string longest(256, 'x'), tooLong(257, 'x'), twoByteLongest;
    for (int i = 0; i < 256; ++i)
        twoByteLongest += "é";  // the limit counts characters, not bytes
    struct Case {
        const char *name;
        UINT number;
    } cases[] = {
        {"OlmoAlpha", kEarly},      {"OlmoBeta", kEarly + 1}, {"OLMOALPHA", kEarly},
        {"olmobeta", kEarly + 1},   {"Ärger", kEarly + 2},    {"äRGER", kEarly + 2},
        {nullptr, 0},               {"", 0},                  {tooLong.c_str(), 0},
        {longest.c_str(), kEarly + 3}, {twoByteLongest.c_str(), kEarly + 4},
    };
    for (const Case &c : cases)
        EXPECT_EQ(RegisterWindowMessageA(c.name), c.number) << (c.name ? c.name : "null");
    EXPECT_EQ(RegisterWindowMessageW(u"ÄRGER"), kEarly + 2);
    EXPECT_EQ(RegisterWindowMessageW(u"OlmoWide"), kEarly + 5);
    EXPECT_EQ(RegisterWindowMessageW(nullptr), 0u);
    for (UINT i = 6; i < 50; ++i)
        ASSERT_EQ(RegisterWindowMessageA(("OlmoEarly" + std::to_string(i)).c_str()), kEarly + i);
    EXPECT_EQ(omDiagCount(kTableFull), 0u);
    EXPECT_EQ(RegisterWindowMessageA("OlmoOneTooMany"), 0u);
    EXPECT_EQ(omDiagCount(kTableFull), 1u);
    EXPECT_EQ(RegisterWindowMessageA("olmoearly49"), kEarly + 49);  // full, still answers
    omCleanupRegisterWindowMessage();
    EXPECT_EQ(RegisterWindowMessageA("OlmoOneTooMany"), kEarly);
}

TEST(EarlyTableThreads, ThreadsRegisteringTheSameNamesAgree)
{
    omCleanupRegisterWindowMessage();
    constexpr int kThreads = 4, kNames = 12;
    std::vector<std::vector<UINT>> got(kThreads, std::vector<UINT>(kNames));
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([t, &got] {
            for (int k = 0; k < kNames; ++k) {
                int i = (k + t * 5) % kNames;  // each thread starts elsewhere
                got[t][i] = RegisterWindowMessageA(("OlmoThreaded" + std::to_string(i)).c_str());
            }
        });
    for (auto &th : threads)
        th.join();
    std::set<UINT> distinct(got[0].begin(), got[0].end());
    EXPECT_EQ(distinct.size(), static_cast<size_t>(kNames));
    EXPECT_EQ(*distinct.rbegin(), kEarly + kNames - 1);
    for (int t = 1; t < kThreads; ++t)
        EXPECT_EQ(got[t], got[0]);
}

// The other process of messages_tests' cross-process tests, started by
// them only: one name before the display is open, then the listed names.
TEST(RegisterChild, PrintsTheNumbersOfItsNames)
{
    const char *list = std::getenv("OLMO_REGISTER_CHILD_NAMES");
    if (!list)
        GTEST_SKIP() << "started by messages_tests only";
    UINT before = RegisterWindowMessageA("OlmoChildEarly");
    ASSERT_TRUE(omInitialize(nullptr, nullptr));
    if (const char *start = std::getenv("OLMO_REGISTER_CHILD_START"))  // race the others
        std::this_thread::sleep_until(std::chrono::system_clock::time_point(
            std::chrono::milliseconds(std::strtoll(start, nullptr, 10))));
    std::printf("@reg early-before %u\n", before);
    std::istringstream names(list);
    for (std::string name; std::getline(names, name, ',');)
        std::printf("@reg %s %u\n", name.c_str(), RegisterWindowMessageA(name.c_str()));
    std::printf("@reg early-after %u\n", RegisterWindowMessageA("olmochildearly"));
    std::fflush(stdout);
}

#else  // the test display

// Each test starts from a display on which no name was registered, and
// leaves it so.
class RegisterShared : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(omInitialize(nullptr, nullptr));
        count_ = XInternAtom(omDisplay, "_OLMO_USERMSG_NEXTID", False);
        names_ = XInternAtom(omDisplay, "_OLMO_USERMSG_STRING", False);
        TearDown();
        omDiagResetCounts();
    }
    void TearDown() override
    {
        XDeleteProperty(omDisplay, DefaultRootWindow(omDisplay), count_);
        XDeleteProperty(omDisplay, DefaultRootWindow(omDisplay), names_);
        XSync(omDisplay, False);
        omCleanupRegisterWindowMessage();
    }
    // The table as another process would have left it.
    void writeTable(const std::vector<std::string> &names, long count)
    {
        std::string bytes;
        for (const std::string &n : names)
            bytes.append(n).push_back('\0');
        Window root = DefaultRootWindow(omDisplay);
        XChangeProperty(omDisplay, root, names_, XA_STRING, 8, PropModeReplace,
                        reinterpret_cast<const unsigned char *>(bytes.data()),
                        static_cast<int>(bytes.size()));
        XChangeProperty(omDisplay, root, count_, XA_CARDINAL, 32, PropModeReplace,
                        reinterpret_cast<const unsigned char *>(&count), 1);
        XSync(omDisplay, False);
    }
    // A property's bytes (format 8) or its first item (format 32), as text.
    std::string readProperty(Atom property)
    {
        Atom type;
        int format = 0;
        unsigned long n = 0, after;
        unsigned char *data = nullptr;
        XGetWindowProperty(omDisplay, DefaultRootWindow(omDisplay), property, 0, 1 << 20, False,
                           AnyPropertyType, &type, &format, &n, &after, &data);
        std::string out;
        if (data && format == 8)
            out.assign(reinterpret_cast<const char *>(data), n);
        else if (data && format == 32 && n)
            out = std::to_string(*reinterpret_cast<long *>(data));
        if (data)
            XFree(data);
        return out;
    }
    // Starts the other process (messages_register_tests) on this display.
    static FILE *startChild(const std::string &names, long long startAtMs = 0)
    {
        std::string cmd = "OLMO_REGISTER_CHILD_NAMES='" + names + "' ";
        if (startAtMs)
            cmd += "OLMO_REGISTER_CHILD_START=" + std::to_string(startAtMs) + " ";
        cmd += OLMO_REGISTER_HELPER " --gtest_filter=RegisterChild.* 2>&1";
        return popen(cmd.c_str(), "r");
    }
    // The child's numbers by name; the child must have passed.
    static std::map<std::string, UINT> finish(FILE *child)
    {
        std::map<std::string, UINT> numbers;
        std::string all;
        char line[512], name[300];
        unsigned number;
        while (child && std::fgets(line, sizeof line, child)) {
            all += line;
            if (std::sscanf(line, "@reg %299s %u", name, &number) == 2)
                numbers[name] = number;
        }
        EXPECT_EQ(child ? pclose(child) : -1, 0) << all;
        EXPECT_FALSE(numbers.empty()) << all;
        return numbers;
    }

    Atom count_ = None, names_ = None;
};

TEST_F(RegisterShared, FirstNameOnAFreshDisplayIsC032AndTheTableIsWritten)
{
    EXPECT_EQ(RegisterWindowMessageA("OlmoFirst"), kShared);
    EXPECT_EQ(RegisterWindowMessageA("OLMOFIRST"), kShared);
    EXPECT_EQ(RegisterWindowMessageW(u"OlmoSecond"), kShared + 1);
    // What other processes read: the count, and the names as given.
    EXPECT_EQ(readProperty(count_), "2");
    EXPECT_EQ(readProperty(names_), std::string("OlmoFirst\0OlmoSecond\0", 21));
    // The display holds the table, not this process's copy.
    writeTable({"OlmoA", "OlmoB", "OlmoC"}, 3);
    EXPECT_EQ(RegisterWindowMessageA("olmob"), kShared + 1);
    EXPECT_EQ(RegisterWindowMessageA("OlmoD"), kShared + 3);
    omCleanupRegisterWindowMessage();
    EXPECT_EQ(RegisterWindowMessageA("OLMOD"), kShared + 3);
    EXPECT_EQ(omDiagCount(kTableFull), 0u);
}

TEST_F(RegisterShared, AFullTableAnswersItsNamesAndRefusesNewOnes)
{
    std::vector<std::string> names;
    for (int i = 0; i < 1001; ++i)
        names.push_back("OlmoFull" + std::to_string(i));
    struct Case {
        size_t names;
        long count;
        const char *name;
        UINT number;
        const char *countAfter;
    } cases[] = {
        {999, 999, "OlmoLast", kShared + 999, "1000"},
        {1000, 1000, "olmofull999", kShared + 999, "1000"},
        {1000, 1000, "OlmoFull0", kShared, "1000"},
        {1000, 1000, "OlmoNotThere", 0, "1000"},
        {1000, 1001, "OlmoFull3", 0, "1001"},  // a count over the limit refuses everything
        // Two processes appended at the limit at once: the later name is
        // past it, the table still answers.
        {1001, 1000, "OlmoFull3", kShared + 3, "1000"},
        {1001, 1000, "OlmoFull1000", 0, "1000"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        writeTable({names.begin(), names.begin() + c.names}, c.count);
        omDiagResetCounts();
        EXPECT_EQ(RegisterWindowMessageA(c.name), c.number);
        EXPECT_EQ(omDiagCount(kTableFull), c.number ? 0u : 1u);
        EXPECT_EQ(readProperty(count_), c.countAfter);
    }
    EXPECT_EQ(readProperty(names_).find("OlmoNotThere"), std::string::npos);
}

// A display that lost the table (a new server) gets this process's names
// back at initialisation, unless its own table is over the limit.
TEST_F(RegisterShared, InitialisationRestoresTheNamesThisProcessKnows)
{
    ASSERT_EQ(RegisterWindowMessageA("OlmoKeptX"), kShared);
    ASSERT_EQ(RegisterWindowMessageA("OlmoKeptY"), kShared + 1);
    writeTable({"OlmoOther"}, 1);
    EXPECT_EQ(omInitRegisterWindowMessage(), 1);
    EXPECT_EQ(readProperty(names_), std::string("OlmoOther\0OlmoKeptX\0OlmoKeptY\0", 30));
    EXPECT_EQ(readProperty(count_), "3");
    writeTable({"OlmoOther"}, 1001);
    EXPECT_EQ(omInitRegisterWindowMessage(), 0);
    EXPECT_EQ(omDiagCount(kTableFull), 1u);
}

TEST_F(RegisterShared, AnotherProcessGetsTheSameNumbers)
{
    ASSERT_EQ(RegisterWindowMessageA("OlmoParentFirst"), kShared);
    auto child = finish(startChild("OlmoParentFirst,OlmoChildNew,OLMOPARENTFIRST"));
    EXPECT_EQ(child["OlmoParentFirst"], kShared);
    EXPECT_EQ(child["OLMOPARENTFIRST"], kShared);
    EXPECT_EQ(child["OlmoChildNew"], kShared + 1);
    EXPECT_EQ(RegisterWindowMessageA("olmochildnew"), kShared + 1);
    // A name from before the child's display was open keeps its early
    // number there and stays out of the shared table.
    EXPECT_EQ(child["early-before"], kEarly);
    EXPECT_EQ(child["early-after"], kEarly);
    EXPECT_EQ(RegisterWindowMessageA("OlmoChildEarly"), kShared + 2);
}

TEST_F(RegisterShared, ProcessesRegisteringAtOnceAgree)
{
    constexpr int kChildren = 3, kNames = 12;
    auto nameOf = [](int i) { return "OlmoRace" + std::to_string(i % kNames); };
    long long startAt = std::chrono::duration_cast<std::chrono::milliseconds>(
                            std::chrono::system_clock::now().time_since_epoch())
                            .count() +
                        1500;
    std::vector<FILE *> children;
    for (int c = 0; c < kChildren; ++c) {
        std::string list;
        for (int k = 0; k < kNames; ++k)
            list += (k ? "," : "") + nameOf(k + c * 4);  // each at another name
        children.push_back(startChild(list, startAt));
    }
    std::vector<std::map<std::string, UINT>> got;
    for (FILE *f : children)
        got.push_back(finish(f));
    std::set<UINT> distinct;
    for (int i = 0; i < kNames; ++i) {
        SCOPED_TRACE(nameOf(i));
        UINT mine = RegisterWindowMessageA(nameOf(i).c_str());
        for (auto &numbers : got)
            EXPECT_EQ(numbers[nameOf(i)], mine);
        distinct.insert(mine);
    }
    EXPECT_EQ(distinct.size(), static_cast<size_t>(kNames));
    EXPECT_GE(*distinct.begin(), kShared);
}

#endif

}  // namespace
}  // namespace om::test
