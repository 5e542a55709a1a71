// Hook chains: newest-first order with the caller's arguments, which answers
// stop a walk, CallNextHookEx, hooks removing hooks while running, debug
// hooks, CallMsgFilter, thread-specific hooks, several threads at once, and
// SystemParametersInfo's answers and failures.
#include <gtest/gtest.h>

#include "kernel/omdiag.h"
#include "kernel/ominit.h"
#include "kernel/omthread.h"
#include "messages/omhook.h"

#include <windows.h>

#include <atomic>
#include <cstring>
#include <thread>
#include <vector>

namespace {

struct Call {
    int id;
    int code;
    WPARAM wParam;
    LPARAM lParam;
};

std::vector<Call> calls;           // main-thread tests only
LRESULT answers[8];                // what hook N answers
HHOOK handles[8];                  // hook N's handle, for CallNextHookEx
bool passOn[8];                    // hook N answers CallNextHookEx's result
bool unhookSelf[8];                // hook N removes itself while running
int unhookOther[8];                // hook N removes hook unhookOther[N] - 1

template <int N> LRESULT CALLBACK recorder(int code, WPARAM wParam, LPARAM lParam)
{
    calls.push_back({N, code, wParam, lParam});
    if (unhookSelf[N]) {
        EXPECT_TRUE(UnhookWindowsHookEx(handles[N]));
    }
    if (unhookOther[N]) {
        EXPECT_TRUE(UnhookWindowsHookEx(handles[unhookOther[N] - 1]));
    }
    if (passOn[N])
        return CallNextHookEx(handles[N], code, wParam, lParam);
    return answers[N];
}

const HOOKPROC kProcs[] = {recorder<0>, recorder<1>, recorder<2>, recorder<3>,
                           recorder<4>, recorder<5>, recorder<6>, recorder<7>};

std::vector<int> ids()
{
    std::vector<int> out;
    for (const Call &c : calls)
        out.push_back(c.id);
    return out;
}

const int kChainTypes[] = {WH_MSGFILTER, WH_JOURNALRECORD, WH_JOURNALPLAYBACK, WH_KEYBOARD,
                           WH_GETMESSAGE, WH_CALLWNDPROC, WH_CBT, WH_SYSMSGFILTER,
                           WH_MOUSE, WH_HARDWARE, WH_DEBUG};

class Hook : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(omInitialize(nullptr, nullptr));
        omSetUserInterfaceThreadSupported(1);
        reset();
        omDiagResetCounts();
    }
    void TearDown() override
    {
        for (HHOOK &h : handles)
            if (h)
                UnhookWindowsHookEx(h);
        for (int type : kChainTypes)
            EXPECT_FALSE(omIsHooked(type)) << "hook left in chain " << type;
        omSetUserInterfaceThreadSupported(1);
    }
    static void reset()
    {
        calls.clear();
        for (int i = 0; i < 8; ++i) {
            answers[i] = 0;
            handles[i] = nullptr;
            passOn[i] = false;
            unhookSelf[i] = false;
            unhookOther[i] = 0;
        }
    }
    // Installs hooks first..last in that order (the last is the newest).
    static void install(int type, int first, int last)
    {
        for (int i = first; i <= last; ++i) {
            handles[i] = SetWindowsHookExA(type, kProcs[i], nullptr, 0);
            ASSERT_NE(handles[i], nullptr);
        }
    }
};

TEST_F(Hook, EveryChainCallsNewestFirstWithTheCallersArguments)
{
    for (int type : kChainTypes) {
        SCOPED_TRACE(type);
        reset();
        EXPECT_FALSE(omIsHooked(type));
        install(type, 0, 2);
        EXPECT_TRUE(omIsHooked(type));
        int installed = -1;
        EXPECT_EQ(omInvokeHookFunc(type, 11, 22, HC_NOREMOVE, &installed), 0);
        EXPECT_EQ(installed, 1);
        EXPECT_EQ(ids(), (std::vector<int>{2, 1, 0}));
        for (const Call &c : calls) {
            EXPECT_EQ(c.code, HC_NOREMOVE);
            EXPECT_EQ(c.wParam, 11u);
            EXPECT_EQ(c.lParam, 22);
        }
        for (int i = 0; i <= 2; ++i)
            EXPECT_TRUE(UnhookWindowsHookEx(handles[i]));
        handles[0] = handles[1] = handles[2] = nullptr;
        EXPECT_FALSE(omIsHooked(type));
    }
}

TEST_F(Hook, EmptyChainReportsInstalledAndCallsNothing)
{
    int installed = -1;
    EXPECT_EQ(omInvokeHookFunc(WH_KEYBOARD, 1, 2, 0, &installed), 0);
    EXPECT_EQ(installed, 1);
    EXPECT_EQ(omInvokeHookFunc(WH_KEYBOARD, 1, 2, 0, nullptr), 0);
}

TEST_F(Hook, TypesWithoutChainAndNullProceduresAreRefused)
{
    for (int type : {WH_CALLWNDPROCRET, WH_SHELL, WH_KEYBOARD_LL, WH_MOUSE_LL, -2, 15, 1000}) {
        SCOPED_TRACE(type);
        EXPECT_EQ(SetWindowsHookExA(type, recorder<0>, nullptr, 0), nullptr);
        EXPECT_EQ(SetWindowsHookExW(type, recorder<0>, nullptr, 0), nullptr);
        EXPECT_EQ(SetWindowsHookA(type, recorder<0>), nullptr);
        int installed = -1;
        EXPECT_EQ(omInvokeHookFunc(type, 0, 0, 0, &installed), 0);
        EXPECT_EQ(installed, 0);
        EXPECT_FALSE(omIsHooked(type));
    }
    EXPECT_EQ(SetWindowsHookExA(WH_KEYBOARD, nullptr, nullptr, 0), nullptr);
    EXPECT_EQ(SetWindowsHookA(WH_KEYBOARD, nullptr), nullptr);
    EXPECT_FALSE(omIsHooked(WH_KEYBOARD));
    EXPECT_TRUE(calls.empty());
}

TEST_F(Hook, UnknownHandlesFailQuietly)
{
    EXPECT_FALSE(UnhookWindowsHookEx(nullptr));
    EXPECT_FALSE(UnhookWindowsHookEx(reinterpret_cast<HHOOK>(uintptr_t{0x7fff})));
    EXPECT_EQ(CallNextHookEx(nullptr, 0, 1, 2), 0);
    EXPECT_FALSE(UnhookWindowsHook(WH_KEYBOARD, recorder<3>));
    EXPECT_FALSE(UnhookWindowsHook(WH_KEYBOARD, nullptr));
    // A removed hook's handle is dead at once.
    install(WH_KEYBOARD, 0, 1);
    HHOOK gone = handles[1];
    EXPECT_TRUE(UnhookWindowsHookEx(gone));
    handles[1] = nullptr;
    EXPECT_FALSE(UnhookWindowsHookEx(gone));
    EXPECT_EQ(CallNextHookEx(gone, 0, 0, 0), 0);
    EXPECT_TRUE(calls.empty());
}

TEST_F(Hook, InstallingTwiceKeepsOneRecord)
{
    HHOOK a = SetWindowsHookExA(WH_GETMESSAGE, recorder<0>, nullptr, 0);
    HHOOK b = SetWindowsHookExA(WH_GETMESSAGE, recorder<0>, nullptr, 0);
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(a, b);
    omInvokeHookFunc(WH_GETMESSAGE, 0, 0, 0, nullptr);
    EXPECT_EQ(ids(), std::vector<int>{0});
    // The same procedure in another chain is a hook of its own.
    HHOOK c = SetWindowsHookExA(WH_CBT, recorder<0>, nullptr, 0);
    ASSERT_NE(c, nullptr);
    EXPECT_NE(c, a);
    EXPECT_TRUE(UnhookWindowsHookEx(a));
    EXPECT_FALSE(UnhookWindowsHookEx(b));
    EXPECT_FALSE(omIsHooked(WH_GETMESSAGE));
    EXPECT_TRUE(omIsHooked(WH_CBT));
    EXPECT_TRUE(UnhookWindowsHookEx(c));
}

struct StopCase {
    int type;
    int code;
    bool stops;
};

TEST_F(Hook, NonZeroAnswerStopsOnlyWhereTheTypeAllows)
{
    const StopCase cases[] = {
        {WH_KEYBOARD, HC_ACTION, true},      {WH_KEYBOARD, HC_NOREMOVE, true},
        {WH_MOUSE, HC_ACTION, true},         {WH_MSGFILTER, 5, true},
        {WH_SYSMSGFILTER, 5, true},          {WH_DEBUG, 0, true},
        {WH_CBT, HCBT_CREATEWND, true},      {WH_CBT, HCBT_ACTIVATE, true},
        {WH_CBT, HCBT_QS, false},            {WH_CBT, HCBT_CLICKSKIPPED, false},
        {WH_CBT, HCBT_KEYSKIPPED, false},    {WH_GETMESSAGE, 0, false},
        {WH_CALLWNDPROC, 0, false},          {WH_JOURNALRECORD, 0, false},
    };
    for (const StopCase &t : cases) {
        SCOPED_TRACE(testing::Message() << "type " << t.type << " code " << t.code);
        reset();
        EXPECT_EQ(omHookCanPrevent(t.type, t.code), t.stops);
        install(t.type, 0, 2);
        answers[1] = 7;
        LRESULT r = omInvokeHookFunc(t.type, 0, 0, t.code, nullptr);
        if (t.stops) {
            EXPECT_EQ(ids(), (std::vector<int>{2, 1}));
            EXPECT_EQ(r, 7);
        } else {
            EXPECT_EQ(ids(), (std::vector<int>{2, 1, 0}));
            EXPECT_EQ(r, 0) << "the last hook's answer";
        }
        for (int i = 0; i <= 2; ++i)
            UnhookWindowsHookEx(handles[i]);
        handles[0] = handles[1] = handles[2] = nullptr;
    }
    EXPECT_FALSE(omHookCanPrevent(WH_CALLWNDPROCRET, 0));
    EXPECT_FALSE(omHookCanPrevent(99, 0));
}

TEST_F(Hook, CallNextHookExPassesAlongTheChain)
{
    install(WH_KEYBOARD, 0, 2);
    passOn[2] = true;
    passOn[1] = true;
    answers[0] = 42;
    // 2 hands on to 1, which hands on to 0; 42 comes back and stops the walk.
    EXPECT_EQ(omInvokeHookFunc(WH_KEYBOARD, 5, 6, HC_ACTION, nullptr), 42);
    EXPECT_EQ(ids(), (std::vector<int>{2, 1, 0}));
    for (const Call &c : calls) {
        EXPECT_EQ(c.wParam, 5u);
        EXPECT_EQ(c.lParam, 6);
    }
    // The oldest hook has no successor.
    EXPECT_EQ(CallNextHookEx(handles[0], 0, 0, 0), 0);
    EXPECT_EQ(ids().size(), 3u);
}

TEST_F(Hook, ZeroFromCallNextHookExLetsTheLibraryWalkOn)
{
    install(WH_KEYBOARD, 0, 1);
    passOn[1] = true;
    EXPECT_EQ(omInvokeHookFunc(WH_KEYBOARD, 0, 0, HC_ACTION, nullptr), 0);
    // Once through CallNextHookEx, once by the library.
    EXPECT_EQ(ids(), (std::vector<int>{1, 0, 0}));
}

TEST_F(Hook, HookRemovingItselfWhileRunningDoesNoHarm)
{
    install(WH_GETMESSAGE, 0, 2);
    unhookSelf[1] = true;
    omInvokeHookFunc(WH_GETMESSAGE, 0, 0, 0, nullptr);
    EXPECT_EQ(ids(), (std::vector<int>{2, 1, 0}));
    handles[1] = nullptr;
    unhookSelf[1] = false;
    calls.clear();
    omInvokeHookFunc(WH_GETMESSAGE, 0, 0, 0, nullptr);
    EXPECT_EQ(ids(), (std::vector<int>{2, 0}));
}

TEST_F(Hook, HookRemovedByAnEarlierOneIsNotCalled)
{
    install(WH_GETMESSAGE, 0, 2);
    unhookOther[2] = 1 + 1;  // hook 2 removes hook 1
    omInvokeHookFunc(WH_GETMESSAGE, 0, 0, 0, nullptr);
    EXPECT_EQ(ids(), (std::vector<int>{2, 0}));
    handles[1] = nullptr;
}

TEST_F(Hook, HookInstalledWhileRunningWaitsForTheNextCall)
{
    static HHOOK added;
    added = nullptr;
    struct Local {
        static LRESULT CALLBACK installer(int, WPARAM, LPARAM)
        {
            calls.push_back({9, 0, 0, 0});
            added = SetWindowsHookExA(WH_CBT, recorder<4>, nullptr, 0);
            return 0;
        }
    };
    HHOOK h = SetWindowsHookExA(WH_CBT, Local::installer, nullptr, 0);
    omInvokeHookFunc(WH_CBT, 0, 0, HCBT_QS, nullptr);
    EXPECT_EQ(ids(), std::vector<int>{9});
    ASSERT_NE(added, nullptr);
    calls.clear();
    omInvokeHookFunc(WH_CBT, 0, 0, HCBT_QS, nullptr);
    EXPECT_EQ(ids(), (std::vector<int>{4, 9}));
    EXPECT_TRUE(UnhookWindowsHookEx(h));
    EXPECT_TRUE(UnhookWindowsHookEx(added));
}

TEST_F(Hook, DebugHooksSeeEachHookAndMaySkipIt)
{
    static std::vector<DEBUGHOOKINFO> seen;
    static std::vector<WPARAM> types;
    static int skipAt;
    seen.clear();
    types.clear();
    skipAt = 1;  // veto the second hook asked about
    struct Local {
        static LRESULT CALLBACK debug(int code, WPARAM wParam, LPARAM lParam)
        {
            EXPECT_EQ(code, HC_ACTION);
            types.push_back(wParam);
            seen.push_back(*reinterpret_cast<DEBUGHOOKINFO *>(lParam));
            return seen.size() == static_cast<size_t>(skipAt) + 1 ? 1 : 0;
        }
    };
    HHOOK d = SetWindowsHookExA(WH_DEBUG, Local::debug, nullptr, 0);
    install(WH_MOUSE, 0, 2);
    EXPECT_EQ(omInvokeHookFunc(WH_MOUSE, 33, 44, HC_NOREMOVE, nullptr), 0);
    EXPECT_EQ(ids(), (std::vector<int>{2, 0}));
    ASSERT_EQ(seen.size(), 3u);
    for (size_t i = 0; i < seen.size(); ++i) {
        EXPECT_EQ(types[i], static_cast<WPARAM>(WH_MOUSE));
        EXPECT_EQ(seen[i].wParam, 33u);
        EXPECT_EQ(seen[i].lParam, 44);
        EXPECT_EQ(seen[i].code, HC_NOREMOVE);
        EXPECT_EQ(seen[i].idThread, GetCurrentThreadId());
        EXPECT_EQ(seen[i].idThreadInstaller, 0u);
    }
    // Running the debug chain itself asks nobody.
    seen.clear();
    DEBUGHOOKINFO direct{1, 2, 3, 4, 5};
    omInvokeHookFunc(WH_DEBUG, WH_KEYBOARD, reinterpret_cast<LPARAM>(&direct), 0, nullptr);
    EXPECT_EQ(seen.size(), 1u);
    EXPECT_TRUE(UnhookWindowsHookEx(d));
}

TEST_F(Hook, CallMsgFilterAsksSystemFiltersFirst)
{
    MSG msg{};
    msg.message = WM_KEYDOWN;
    EXPECT_TRUE(CallMsgFilterA(nullptr, 3));
    EXPECT_FALSE(CallMsgFilterA(&msg, 3)) << "no filters: not processed";

    install(WH_MSGFILTER, 0, 0);
    install(WH_SYSMSGFILTER, 1, 1);
    EXPECT_FALSE(CallMsgFilterA(&msg, 3));
    ASSERT_EQ(ids(), (std::vector<int>{1, 0}));
    for (const Call &c : calls) {
        EXPECT_EQ(c.code, 3);
        EXPECT_EQ(c.wParam, 0u);
        EXPECT_EQ(c.lParam, reinterpret_cast<LPARAM>(&msg));
    }

    calls.clear();
    answers[0] = 1;
    EXPECT_TRUE(CallMsgFilterW(&msg, 4));
    EXPECT_EQ(ids(), (std::vector<int>{1, 0}));

    calls.clear();
    answers[1] = 1;
    EXPECT_TRUE(CallMsgFilterA(&msg, 4));
    EXPECT_EQ(ids(), std::vector<int>{1}) << "a system filter's answer ends it";
}

TEST_F(Hook, OldFormsInstallAndRemoveByProcedure)
{
    HHOOK h = SetWindowsHookA(WH_KEYBOARD, recorder<0>);
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(SetWindowsHookW(WH_KEYBOARD, recorder<0>), h);
    omInvokeHookFunc(WH_KEYBOARD, 0, 0, 0, nullptr);
    EXPECT_EQ(ids(), std::vector<int>{0});
    EXPECT_EQ(DefHookProc(0, 0, 0, &h), 0);
    EXPECT_TRUE(UnhookWindowsHook(WH_KEYBOARD, recorder<0>));
    EXPECT_FALSE(UnhookWindowsHook(WH_KEYBOARD, recorder<0>));
    EXPECT_FALSE(omIsHooked(WH_KEYBOARD));
}

TEST_F(Hook, SystemParametersInfoAnswersTheFontAndWorkAreaQueries)
{
    LOGFONTA gui{};
    ASSERT_EQ(GetObjectA(GetStockObject(DEFAULT_GUI_FONT), sizeof gui, &gui),
              static_cast<int>(sizeof gui));

    LOGFONTA title;
    std::memset(&title, 0xCD, sizeof title);
    EXPECT_TRUE(SystemParametersInfoA(SPI_GETICONTITLELOGFONT, sizeof title, &title, 0));
    EXPECT_EQ(std::memcmp(&title, &gui, sizeof gui), 0);

    NONCLIENTMETRICSA metrics;
    std::memset(&metrics, 0xCD, sizeof metrics);
    metrics.cbSize = sizeof metrics;
    EXPECT_TRUE(SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0));
    EXPECT_EQ(std::memcmp(&metrics.lfMenuFont, &gui, sizeof gui), 0);
    EXPECT_EQ(metrics.iMenuHeight, static_cast<int>(0xCDCDCDCD)) << "only the menu font is set";
    EXPECT_EQ(metrics.lfCaptionFont.lfHeight, static_cast<LONG>(0xCDCDCDCD));

    RECT desk{}, work{-1, -1, -1, -1};
    ASSERT_TRUE(GetWindowRect(GetDesktopWindow(), &desk));
    EXPECT_TRUE(SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0));
    EXPECT_TRUE(EqualRect(&work, &desk));
    EXPECT_GT(work.right - work.left, 0);

    LOGFONTW wide{};
    LOGFONTW guiW{};
    ASSERT_GT(GetObjectW(GetStockObject(DEFAULT_GUI_FONT), sizeof guiW, &guiW), 0);
    EXPECT_TRUE(SystemParametersInfoW(SPI_GETICONTITLELOGFONT, sizeof wide, &wide, 0));
    EXPECT_EQ(std::memcmp(&wide, &guiW, sizeof guiW), 0);
    EXPECT_EQ(omDiagCount(133) + omDiagCount(141) + omDiagCount(161), 0u);
}

TEST_F(Hook, SystemParametersInfoFailures)
{
    struct Case {
        bool wide;
        UINT action;
        bool nullParam;
        int warning;
    };
    const Case cases[] = {
        {false, SPI_GETWORKAREA, true, 133},         {false, SPI_GETNONCLIENTMETRICS, true, 133},
        {false, SPI_GETICONTITLELOGFONT, true, 133}, {true, SPI_GETICONTITLELOGFONT, true, 133},
        {false, SPI_GETICONMETRICS, false, 161},     {false, SPI_GETBEEP, false, 161},
        {false, SPI_SETWORKAREA, false, 161},        {false, 0xFFFF, false, 161},
        {true, SPI_GETWORKAREA, false, 141},         {true, SPI_GETNONCLIENTMETRICS, false, 141},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << (c.wide ? "W " : "A ") << c.action);
        omDiagResetCounts();
        alignas(8) unsigned char buffer[512];
        std::memset(buffer, 0xAB, sizeof buffer);
        void *p = c.nullParam ? nullptr : buffer;
        BOOL ok = c.wide ? SystemParametersInfoW(c.action, sizeof buffer, p, 0)
                         : SystemParametersInfoA(c.action, sizeof buffer, p, 0);
        EXPECT_FALSE(ok);
        EXPECT_EQ(omDiagCount(c.warning), 1u);
        EXPECT_EQ(buffer[0], 0xAB) << "nothing written on failure";
    }
}

// --- Threads ---------------------------------------------------------------

class HookThreads : public Hook {};

std::atomic<int> threadCalls[4];

template <int N> LRESULT CALLBACK counter(int, WPARAM, LPARAM)
{
    threadCalls[N].fetch_add(1, std::memory_order_relaxed);
    return 0;
}

std::atomic<HHOOK> passerHandles[3];

// Walks on through CallNextHookEx while other threads change the chain.
template <int N> LRESULT CALLBACK passer(int code, WPARAM wParam, LPARAM lParam)
{
    return CallNextHookEx(passerHandles[N].load(), code, wParam, lParam);
}

// Runs fn on a thread of its own and waits for it.
template <class F> void onOtherThread(F fn)
{
    std::thread t(fn);
    t.join();
}

TEST_F(HookThreads, ThreadHooksServeTheirOwnThreadOnly)
{
    for (auto &c : threadCalls)
        c = 0;
    DWORD otherId = 0;
    HHOOK mine = nullptr;
    std::atomic<bool> installed{false}, invoked{false}, done{false};
    std::thread other([&] {
        otherId = GetCurrentThreadId();
        mine = SetWindowsHookExA(WH_GETMESSAGE, counter<1>, nullptr, otherId);
        installed = true;
        while (!invoked)
            std::this_thread::yield();
        omInvokeHookFunc(WH_GETMESSAGE, 0, 0, 0, nullptr);
        done = true;
    });
    while (!installed)
        std::this_thread::yield();
    HHOOK global = SetWindowsHookExA(WH_GETMESSAGE, counter<0>, nullptr, 0);
    ASSERT_NE(mine, nullptr);

    omInvokeHookFunc(WH_GETMESSAGE, 0, 0, 0, nullptr);
    EXPECT_EQ(threadCalls[0], 1);
    EXPECT_EQ(threadCalls[1], 0) << "another thread's hook ran on the main thread";
    // CallNextHookEx skips it as well.
    EXPECT_EQ(CallNextHookEx(global, 0, 0, 0), 0);
    EXPECT_EQ(threadCalls[1], 0);

    invoked = true;
    other.join();
    EXPECT_EQ(threadCalls[0], 2);
    EXPECT_EQ(threadCalls[1], 1);

    // Without user-interface threads every hook runs wherever the chain is
    // called.
    omSetUserInterfaceThreadSupported(0);
    omInvokeHookFunc(WH_GETMESSAGE, 0, 0, 0, nullptr);
    EXPECT_EQ(threadCalls[1], 2);
    omSetUserInterfaceThreadSupported(1);

    EXPECT_TRUE(UnhookWindowsHookEx(mine));  // a handle may be removed anywhere
    EXPECT_TRUE(UnhookWindowsHookEx(global));
}

TEST_F(HookThreads, OldFormRemovesOnlyTheCallersRecord)
{
    DWORD a = 0;
    HHOOK ha = nullptr;
    onOtherThread([&] {
        a = GetCurrentThreadId();
        ha = SetWindowsHookExA(WH_CBT, counter<2>, nullptr, a);
    });
    ASSERT_NE(ha, nullptr);
    HHOOK hm = SetWindowsHookExA(WH_CBT, counter<2>, nullptr, GetCurrentThreadId());
    ASSERT_NE(hm, nullptr);
    EXPECT_NE(hm, ha) << "one record per thread while user-interface threads are on";

    BOOL removedElsewhere = TRUE;
    onOtherThread([&] { removedElsewhere = UnhookWindowsHook(WH_CBT, counter<2>); });
    EXPECT_FALSE(removedElsewhere) << "a third thread owns neither record";

    EXPECT_TRUE(UnhookWindowsHook(WH_CBT, counter<2>));
    EXPECT_FALSE(UnhookWindowsHookEx(hm)) << "the main thread's record went";
    EXPECT_TRUE(UnhookWindowsHookEx(ha));

    // Without user-interface threads the thread id does not matter.
    omSetUserInterfaceThreadSupported(0);
    onOtherThread([&] { ha = SetWindowsHookExA(WH_CBT, counter<2>, nullptr, 12345); });
    EXPECT_EQ(SetWindowsHookExA(WH_CBT, counter<2>, nullptr, 0), ha);
    EXPECT_TRUE(UnhookWindowsHook(WH_CBT, counter<2>));
    EXPECT_FALSE(omIsHooked(WH_CBT));
}

TEST_F(HookThreads, InstallRemoveAndInvokeFromSeveralThreadsAtOnce)
{
    for (auto &c : threadCalls)
        c = 0;
    constexpr int kRounds = 1500;
    static HHOOK stable;
    stable = SetWindowsHookExA(WH_KEYBOARD, counter<3>, nullptr, 0);
    ASSERT_NE(stable, nullptr);
    const HOOKPROC procs[] = {passer<0>, passer<1>, passer<2>};
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < kRounds; ++i) {
                HHOOK h = SetWindowsHookExA(WH_KEYBOARD, procs[t], nullptr, 0);
                passerHandles[t] = h;
                if (!h)
                    ++failures;
                omInvokeHookFunc(WH_KEYBOARD, i, t, HC_ACTION, nullptr);
                if (!UnhookWindowsHookEx(h))
                    ++failures;
            }
        });
    }
    threads.emplace_back([&] {
        for (int i = 0; i < kRounds; ++i)
            omInvokeHookFunc(WH_KEYBOARD, i, 9, HC_NOREMOVE, nullptr);
    });
    for (std::thread &t : threads)
        t.join();
    EXPECT_EQ(failures, 0);
    // The stable hook ran at least once per invocation, plus through
    // CallNextHookEx of whichever hooks sat in front of it.
    EXPECT_GE(threadCalls[3], 4 * kRounds);
    EXPECT_TRUE(UnhookWindowsHookEx(stable));
    EXPECT_FALSE(omIsHooked(WH_KEYBOARD));
}

}  // namespace
