// Windows and threads: the thread rule with user-interface threads switched
// off, attachment of threads that touch a window, destruction that waits for
// attached threads, and windows created and destroyed on a second thread
// while the main thread pumps X.
#include "corefixture.h"

#include "kernel/omdisplay.h"
#include "kernel/omwidgetmap.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace {

using om::test::CoreTest;

HWND makeHidden(DWORD style = WS_POPUP)
{
    return CreateWindowExA(0, om::test::testClass(), "", style, 0, 0, 50, 40, nullptr, nullptr,
                           nullptr, nullptr);
}

int attachedCount(HWND h, uint64_t thread)
{
    WindowRecord *w = static_cast<WindowRecord *>(
        omHandlesTable[omHandleIndex(omHandleValue(h))].record.load());
    std::lock_guard lock(w->attachMutex);
    int n = 0;
    for (OmThreadNode *t = w->attachedThreads; t; t = t->next)
        n += thread == 0 || t->thread == thread;
    return n;
}

class UiThreadsOffThreads : public CoreTest {
protected:
    void TearDown() override
    {
        omSetUserInterfaceThreadSupported(1);
        CoreTest::TearDown();
    }
};

TEST_F(UiThreadsOffThreads, WindowFunctionsOnASecondThreadWarnAndChangeNothing)
{
    HWND h = makeHidden();
    ASSERT_NE(h, nullptr);
    SetWindowLongPtrA(h, GWLP_USERDATA, 5);
    omSetUserInterfaceThreadSupported(0);
    omDiagResetCounts();
    std::thread([&] {
        EXPECT_EQ(makeHidden(), nullptr);
        EXPECT_EQ(SetWindowLongPtrA(h, GWLP_USERDATA, 9), 0);
        EXPECT_EQ(GetWindowLongPtrA(h, GWLP_USERDATA), 0);
        EXPECT_FALSE(SetPropA(h, "P", h));
        EXPECT_EQ(GetClassLongA(h, GCL_STYLE), 0u);
        EXPECT_FALSE(ShowWindow(h, SW_SHOW));
        EXPECT_FALSE(DestroyWindow(h));
    }).join();
    EXPECT_EQ(omDiagCount(237), 7u);
    EXPECT_TRUE(IsWindow(h));
    EXPECT_EQ(GetWindowLongPtrA(h, GWLP_USERDATA), 5);
    EXPECT_EQ(GetPropA(h, "P"), nullptr);
    EXPECT_FALSE(IsWindowVisible(h));
    omSetUserInterfaceThreadSupported(1);
    DestroyWindow(h);
}

class AttachThreads : public CoreTest {};

TEST_F(AttachThreads, EachThreadIsAttachedOnceAndTheRecordWaitsForThem)
{
    HWND h = makeHidden();
    ASSERT_NE(h, nullptr);
    std::mutex m;
    std::condition_variable cv;
    int touched = 0;
    bool release = false;
    uint64_t threads[2] = {};
    std::vector<std::thread> workers;
    for (int i = 0; i < 2; ++i)
        workers.emplace_back([&, i] {
            threads[i] = omHandleValue(GetCurrentThread());
            for (int n = 0; n < 50; ++n)
                GetWindowLongPtrA(h, GWLP_USERDATA);
            std::unique_lock lock(m);
            ++touched;
            cv.notify_all();
            cv.wait(lock, [&] { return release; });
        });
    {
        std::unique_lock lock(m);
        cv.wait(lock, [&] { return touched == 2; });
    }
    EXPECT_EQ(attachedCount(h, 0), 2);
    EXPECT_EQ(attachedCount(h, threads[0]), 1);
    EXPECT_EQ(attachedCount(h, threads[1]), 1);
    EXPECT_EQ(attachedCount(h, omHandleValue(GetCurrentThread())), 0) << "the creator is not";

    // Destroyed while attached: no longer a window, but kept.
    DestroyWindow(h);
    EXPECT_FALSE(IsWindow(h));
    omDestroyHWNDsMarkedForDeletion();
    EXPECT_EQ(omHandleRecord(omHandleValue(h), kOmKindDyingWindow) != nullptr, true);
    omDetachHWNDfromThread(reinterpret_cast<HANDLE>(threads[0]));
    EXPECT_EQ(attachedCount(h, 0), 1) << "the other thread stays";
    {
        std::lock_guard lock(m);
        release = true;
    }
    cv.notify_all();
    for (auto &t : workers)
        t.join();  // a thread's exit detaches it
    omDestroyHWNDsMarkedForDeletion();
    EXPECT_EQ(omHandleRecord(omHandleValue(h), kOmKindDyingWindow), nullptr) << "freed";
}

class SecondThreadThreads : public CoreTest {};

TEST_F(SecondThreadThreads, HundredWindowsCreatedAndDestroyedWhileTheMainThreadPumps)
{
    std::atomic<bool> done{false};
    std::atomic<int> made{0};
    std::thread worker([&] {
        for (int i = 0; i < 100; ++i) {
            HWND h = makeHidden(i % 2 ? WS_POPUP : WS_OVERLAPPEDWINDOW);
            if (!h)
                continue;
            ++made;
            SetWindowLongPtrA(h, GWLP_USERDATA, i);
            SetPropA(h, "Index", reinterpret_cast<HANDLE>(static_cast<uintptr_t>(i)));
            DestroyWindow(h);
        }
        done = true;
    });
    OM_PUMP_UNTIL(done.load(), 60000, om::test::corePump);
    worker.join();
    omRunIdleDrain();
    EXPECT_EQ(made.load(), 100);
    EXPECT_EQ(omDestroyQueued(), nullptr);
}

}  // namespace

namespace {

class WidgetRoles : public om::test::CoreTest {};

TEST_F(WidgetRoles, RolesInsideAnMdiChildAreMarked)
{
    HWND h = makeHidden();
    ASSERT_NE(h, nullptr);
    Widget canvas = omWindowRecord(h)->canvasWidget;
    struct Row {
        int role;
        uint8_t kind;
        long info;
    } rows[] = {{1, OM_WK_PLAIN, 1}, {2, OM_WK_PLAIN, 2}, {5, OM_WK_PLAIN, 5},
                {1, OM_WK_MDICHILD, 3}, {2, OM_WK_MDICHILD, 4}, {5, OM_WK_MDICHILD, 6}};
    for (const Row &r : rows) {
        SCOPED_TRACE(r.role);
        omWindowRecord(h)->kind = r.kind;
        omSetWidgetUserDataInfo(canvas, 0);
        omSetWidgetUserData(h, canvas, r.role);
        EXPECT_EQ(omGetWidgetUserDataInfo(canvas), r.info);
    }
    omSetWidgetUserData(h, canvas, 3);
    EXPECT_EQ(omGetWidgetUserDataInfo(canvas), 6) << "other roles change nothing";
    omWindowRecord(h)->kind = OM_WK_PLAIN;
    EXPECT_EQ(omWindowFromXWindow(0, 0, XtWindow(canvas), nullptr), h);
    DestroyWindow(h);
}

}  // namespace
