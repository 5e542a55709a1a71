// The window tree: sibling walks, owners and ancestors, the stacking
// moves, enumeration (including callbacks that destroy windows) and the
// FindWindow family.  Children are top-level windows adopted by hand into
// a parent's child list, since the child builder has not landed.
#include "corefixture.h"

#include <algorithm>
#include <set>
#include <vector>

namespace {

using om::test::CoreTest;

class Tree : public CoreTest {
protected:
    void TearDown() override
    {
        // Adoption is undone deepest first, each window going back to the
        // top-level list, so that DestroyWindow meets ordinary records.
        for (auto it = adopted_.rbegin(); it != adopted_.rend(); ++it) {
            WindowRecord *w = omWindowRecord(it->hwnd);
            if (!w)
                continue;
            omRemoveWindowFromSiblingList(it->hwnd, w);
            w->style = it->style;
            w->parent = nullptr;
            w->nextSibling = omTopLevelWindowList;
            if (WindowRecord *first = omWindowRecord(omTopLevelWindowList))
                first->prevSibling = it->hwnd;
            omTopLevelWindowList = it->hwnd;
        }
        for (auto it = made_.rbegin(); it != made_.rend(); ++it)
            if (IsWindow(*it))
                DestroyWindow(*it);
        CoreTest::TearDown();
    }

    HWND make(const char *title = "", DWORD style = WS_OVERLAPPEDWINDOW, HWND owner = nullptr)
    {
        HWND h = CreateWindowExA(0, om::test::testClass(), title, style, 10, 10, 100, 80, owner,
                                 nullptr, nullptr, nullptr);
        EXPECT_NE(h, nullptr) << title;
        made_.push_back(h);
        return h;
    }

    // Moves h from the top-level list to the end of parent's child list.
    void adopt(HWND h, HWND parent)
    {
        WindowRecord *w = omWindowRecord(h);
        WindowRecord *p = omWindowRecord(parent);
        ASSERT_TRUE(w && p);
        adopted_.push_back({h, w->style});
        omRemoveWindowFromSiblingList(h, w);
        w->style = (w->style & ~(WS_OVERLAPPEDWINDOW | WS_POPUP)) | WS_CHILD;
        w->parent = parent;
        w->prevSibling = p->lastChild;
        if (WindowRecord *last = omWindowRecord(p->lastChild))
            last->nextSibling = h;
        else
            p->firstChild = h;
        p->lastChild = h;
    }

    HWND makeChild(HWND parent, const char *title = "")
    {
        HWND h = make(title);
        adopt(h, parent);
        return h;
    }

    struct Adopted {
        HWND hwnd;
        DWORD style;
    };
    std::vector<HWND> made_;
    std::vector<Adopted> adopted_;
};

// A list read both ways; the backward walk must mirror the forward one.
std::vector<HWND> forward(HWND first)
{
    std::vector<HWND> out;
    for (HWND h = first; h && out.size() < 100; h = GetWindow(h, GW_HWNDNEXT))
        out.push_back(h);
    return out;
}

std::vector<HWND> childOrder(HWND parent)
{
    std::vector<HWND> fwd = forward(GetWindow(parent, GW_CHILD));
    std::vector<HWND> back;
    for (HWND h = GetWindow(parent, GW_CHILD) ? GetWindow(GetWindow(parent, GW_CHILD), GW_HWNDLAST)
                                              : nullptr;
         h && back.size() < 100; h = GetWindow(h, GW_HWNDPREV))
        back.push_back(h);
    std::reverse(back.begin(), back.end());
    EXPECT_EQ(fwd, back) << "prevSibling links disagree with nextSibling links";
    return fwd;
}

// The windows of `mine` in the order the top-level list holds them.
std::vector<HWND> topLevelOrder(const std::vector<HWND> &mine)
{
    std::vector<HWND> out;
    for (HWND h : forward(GetWindow(GetDesktopWindow(), GW_CHILD)))
        if (std::find(mine.begin(), mine.end(), h) != mine.end())
            out.push_back(h);
    return out;
}

// ---- sibling walks, owners, ancestors ----------------------------------------

TEST_F(Tree, GetWindowWalksTheTopLevelAndChildLists)
{
    HWND a = make("a"), b = make("b"), c = make("c");
    // New top-level windows go to the head of the list.
    EXPECT_EQ(topLevelOrder({a, b, c}), (std::vector<HWND>{c, b, a}));
    EXPECT_EQ(GetWindow(GetDesktopWindow(), GW_CHILD), c);
    EXPECT_EQ(GetTopWindow(nullptr), c);

    HWND k1 = makeChild(c, "k1"), k2 = makeChild(c, "k2"), k3 = makeChild(c, "k3");

    struct Case {
        HWND from;
        UINT cmd;
        HWND want;
    } cases[] = {
        {k2, GW_HWNDFIRST, k1}, {k2, GW_HWNDLAST, k3},  {k3, GW_HWNDNEXT, nullptr},
        {k1, GW_HWNDPREV, nullptr}, {c, GW_CHILD, k1}, {k1, GW_CHILD, nullptr},
        {k2, GW_OWNER, nullptr}, {c, GW_HWNDNEXT, b}, {c, GW_HWNDFIRST, c},
    };
    for (const Case &t : cases) {
        SCOPED_TRACE(testing::Message() << "cmd " << t.cmd);
        EXPECT_EQ(GetWindow(t.from, t.cmd), t.want);
    }
    EXPECT_EQ(GetTopWindow(c), k1);
    EXPECT_EQ(GetNextWindow(a, GW_HWNDPREV), b);
}

TEST_F(Tree, OwnersAndAncestors)
{
    HWND desktop = GetDesktopWindow();
    HWND top = make("top");
    HWND kid = makeChild(top, "kid");
    HWND grandkid = makeChild(kid, "grandkid");
    // A window made with a child as its parent is owned by that child's
    // top-level ancestor.
    HWND pop = make("pop", WS_POPUP, kid);
    HWND popOfPop = make("pop of pop", WS_POPUP, pop);

    EXPECT_EQ(GetParent(pop), top);
    EXPECT_EQ(GetWindow(pop, GW_OWNER), top);
    EXPECT_EQ(GetWindow(popOfPop, GW_OWNER), pop);

    struct Case {
        const char *what;
        HWND hwnd;
        UINT flag;
        HWND want;
    } cases[] = {
        {"grandkid parent", grandkid, GA_PARENT, kid},
        {"grandkid root", grandkid, GA_ROOT, top},
        {"grandkid root owner", grandkid, GA_ROOTOWNER, top},
        {"top parent", top, GA_PARENT, desktop},
        {"top root", top, GA_ROOT, top},
        {"pop parent is not its owner", pop, GA_PARENT, desktop},
        {"pop root", pop, GA_ROOT, pop},
        {"pop root owner", pop, GA_ROOTOWNER, top},
        {"owner chain", popOfPop, GA_ROOTOWNER, top},
        {"desktop", desktop, GA_PARENT, nullptr},
        {"unknown flag", grandkid, 7, nullptr},
    };
    for (const Case &t : cases) {
        SCOPED_TRACE(t.what);
        EXPECT_EQ(GetAncestor(t.hwnd, t.flag), t.want);
    }
}

TEST_F(Tree, BadHandlesAndCommandsGiveTheirWarnings)
{
    HWND w = make("w");
    HWND dead = make("dead");
    DestroyWindow(dead);
    HWND bogus = reinterpret_cast<HWND>(static_cast<uintptr_t>(omDisplayResourceBase | 0xFFF0));

    omDiagResetCounts();
    EXPECT_EQ(GetWindow(w, GW_ENABLEDPOPUP), nullptr);
    EXPECT_EQ(GetWindow(w, 99), nullptr);
    EXPECT_EQ(omDiagCount(151), 2u) << "unknown GetWindow commands";
    for (HWND bad : {dead, bogus}) {
        EXPECT_EQ(GetWindow(bad, GW_HWNDNEXT), nullptr);
        EXPECT_EQ(GetTopWindow(bad), nullptr);
    }
    EXPECT_EQ(omDiagCount(151), 2u) << "a bad handle is no bad command";

    omDiagResetCounts();
    EXPECT_EQ(GetAncestor(dead, GA_ROOT), nullptr);
    EXPECT_EQ(GetLastActivePopup(dead), nullptr);
    EXPECT_EQ(FindWindowExA(nullptr, dead, nullptr, nullptr), nullptr);
    EXPECT_EQ(omDiagCount(79), 3u);

    omDiagResetCounts();
    auto never = [](HWND, LPARAM) -> BOOL {
        ADD_FAILURE() << "called for a bad parent";
        return TRUE;
    };
    EXPECT_FALSE(EnumChildWindows(dead, never, 0));
    EXPECT_EQ(FindWindowExA(bogus, nullptr, nullptr, nullptr), nullptr);
    EXPECT_EQ(omDiagCount(57), 2u);
}

TEST_F(Tree, PopupQueries)
{
    HWND top = make("top");
    HWND kid = makeChild(top, "kid");
    EXPECT_EQ(GetLastActivePopup(kid), kid) << "a child answers itself";
    make("pop", WS_POPUP, top);
    EXPECT_TRUE(AnyPopup());
}

// ---- stacking moves ----------------------------------------------------------

TEST_F(Tree, StackingMovesKeepBothLinksAndTheHeads)
{
    HWND p = make("p");
    HWND k[4];
    for (int i = 0; i < 4; ++i)
        k[i] = makeChild(p);
    enum Op { Raise, Lower, After };
    struct Step {
        Op op;
        int target, after;
        std::vector<int> want;
    } steps[] = {
        {Raise, 3, -1, {3, 0, 1, 2}},  // the last child becomes first
        {Raise, 3, -1, {3, 0, 1, 2}},  // already on top
        {Raise, 1, -1, {1, 3, 0, 2}},  // from the middle
        {Lower, 1, -1, {3, 0, 2, 1}},  // the first goes last
        {Lower, 1, -1, {3, 0, 2, 1}},  // already at the bottom
        {After, 3, 2, {0, 2, 3, 1}},   // first moved into the middle
        {After, 0, 1, {2, 3, 1, 0}},   // after the last: becomes last
        {After, 1, 1, {2, 3, 1, 0}},   // after itself: nothing
        {Lower, 2, -1, {3, 1, 0, 2}},
    };
    int n = 0;
    for (const Step &s : steps) {
        SCOPED_TRACE(testing::Message() << "step " << n++);
        if (s.op == Raise)
            omZOrderRaise(k[s.target]);
        else if (s.op == Lower)
            omZOrderLower(k[s.target]);
        else
            omZOrderInsertAfter(k[s.target], k[s.after]);
        std::vector<HWND> want;
        for (int i : s.want)
            want.push_back(k[i]);
        EXPECT_EQ(childOrder(p), want);
        WindowRecord *r = omWindowRecord(p);
        EXPECT_EQ(r->firstChild, want.front());
        EXPECT_EQ(r->lastChild, want.back());
        EXPECT_EQ(omFirstInStackingList(k[2]), want.front());
        EXPECT_EQ(omLastInStackingList(k[2]), want.back());
    }
}

TEST_F(Tree, StackingMovesOfTopLevelWindowsMoveTheListHead)
{
    HWND a = make("a"), b = make("b"), c = make("c");
    ASSERT_EQ(topLevelOrder({a, b, c}), (std::vector<HWND>{c, b, a}));
    omZOrderRaise(a);
    EXPECT_EQ(omTopLevelWindowList, a);
    EXPECT_EQ(topLevelOrder({a, b, c}), (std::vector<HWND>{a, c, b}));
    omZOrderLower(a);
    omZOrderInsertAfter(c, b);
    EXPECT_EQ(omTopLevelWindowList, b);
    EXPECT_EQ(GetWindow(c, GW_HWNDPREV), b);

    // Alone in its list: nothing moves, and the parent's ends stay put.
    HWND only = makeChild(a);
    omZOrderRaise(only);
    omZOrderLower(only);
    EXPECT_EQ(childOrder(a), (std::vector<HWND>{only}));
    EXPECT_EQ(omWindowRecord(a)->lastChild, only);
    // A window is never spliced into another list.
    omZOrderInsertAfter(only, b);
    EXPECT_EQ(GetParent(only), a);
    EXPECT_EQ(childOrder(a), (std::vector<HWND>{only}));
    EXPECT_EQ(GetWindow(b, GW_HWNDNEXT), c);
}

// ---- enumeration -----------------------------------------------------------

struct Visits {
    std::vector<HWND> seen;
    HWND stopAt = nullptr;
    std::set<HWND> destroyOnVisit;
    std::set<HWND> mine;  // top-level walks meet other tests' windows too
};

BOOL CALLBACK visit(HWND hwnd, LPARAM lParam)
{
    auto *v = reinterpret_cast<Visits *>(lParam);
    if (!v->mine.empty() && !v->mine.count(hwnd))
        return TRUE;
    v->seen.push_back(hwnd);
    if (v->destroyOnVisit.count(hwnd))
        DestroyWindow(hwnd);
    return hwnd != v->stopAt;
}

TEST_F(Tree, EnumChildWindowsIsDepthFirstAndStopsOnFalse)
{
    HWND p = make("p");
    HWND k1 = makeChild(p), k2 = makeChild(p), k3 = makeChild(p);
    HWND g1 = makeChild(k1), g2 = makeChild(k1), g3 = makeChild(k3);
    HWND pop = makeChild(p);
    omWindowRecord(pop)->style |= WS_POPUP;  // pop-ups in a child list are passed over

    struct Case {
        const char *what;
        HWND from, stopAt;
        BOOL result;
        std::vector<HWND> want;
    } cases[] = {
        {"whole tree", p, nullptr, TRUE, {k1, g1, g2, k2, k3, g3}},
        {"stop in a grandchild", p, g1, FALSE, {k1, g1}},
        {"stop on the last", p, g3, FALSE, {k1, g1, g2, k2, k3, g3}},
        {"subtree", k1, nullptr, TRUE, {g1, g2}},
        {"no children", g2, nullptr, TRUE, {}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        Visits v;
        v.stopAt = c.stopAt;
        EXPECT_EQ(EnumChildWindows(c.from, visit, reinterpret_cast<LPARAM>(&v)), c.result);
        EXPECT_EQ(v.seen, c.want);
    }
    EXPECT_FALSE(EnumChildWindows(p, nullptr, 0)) << "a null procedure";
}

TEST_F(Tree, EnumChildWindowsSurvivesTheCallbackDestroyingWindows)
{
    HWND p = make("p");
    HWND k1 = makeChild(p), k2 = makeChild(p), k3 = makeChild(p);
    makeChild(k1);
    makeChild(k1);
    HWND g3 = makeChild(k3);

    // Destroying the window just visited takes its subtree with it; the
    // walk goes on with the next sibling.
    Visits v;
    v.destroyOnVisit = {k1, k2};
    EXPECT_TRUE(EnumChildWindows(p, visit, reinterpret_cast<LPARAM>(&v)));
    EXPECT_EQ(v.seen, (std::vector<HWND>{k1, k2, k3, g3}));
    EXPECT_EQ(childOrder(p), (std::vector<HWND>{k3}));
    EXPECT_EQ(omWindowRecord(p)->firstChild, k3);

    // Destroying a sibling not yet reached: it is skipped, not visited dead.
    HWND k4 = makeChild(p), k5 = makeChild(p);
    struct Ahead {
        HWND trigger, victim;
        std::vector<HWND> seen;
    } ahead{k3, k4, {}};
    auto killAhead = [](HWND h, LPARAM l) -> BOOL {
        auto *a = reinterpret_cast<Ahead *>(l);
        EXPECT_TRUE(IsWindow(h)) << "visited a destroyed window";
        a->seen.push_back(h);
        if (h == a->trigger)
            DestroyWindow(a->victim);
        return TRUE;
    };
    EXPECT_TRUE(EnumChildWindows(p, killAhead, reinterpret_cast<LPARAM>(&ahead)));
    EXPECT_EQ(ahead.seen, (std::vector<HWND>{k3, g3, k5}));
}

TEST_F(Tree, EnumWindowsWalksTheTopLevelList)
{
    HWND a = make("a"), b = make("b"), c = make("c");
    HWND pop = make("pop", WS_POPUP, a);
    HWND kid = makeChild(a);

    Visits v;
    v.mine = {a, b, c, pop, kid};
    // Ran to the end: FALSE; stopped by the callback: TRUE.
    EXPECT_FALSE(EnumWindows(visit, reinterpret_cast<LPARAM>(&v)));
    EXPECT_EQ(v.seen, (std::vector<HWND>{pop, c, b, a})) << "top-level windows only, in Z order";

    // No parent: the same top-level windows, each followed by its subtree.
    Visits all;
    all.mine = v.mine;
    EXPECT_TRUE(EnumChildWindows(nullptr, visit, reinterpret_cast<LPARAM>(&all)));
    EXPECT_EQ(all.seen, (std::vector<HWND>{pop, c, b, a, kid}));

    Visits stop;
    stop.mine = v.mine;
    stop.stopAt = c;
    EXPECT_TRUE(EnumWindows(visit, reinterpret_cast<LPARAM>(&stop)));
    EXPECT_EQ(stop.seen, (std::vector<HWND>{pop, c}));

    Visits kill;
    kill.mine = v.mine;
    kill.destroyOnVisit = {pop, c, b};
    EXPECT_FALSE(EnumWindows(visit, reinterpret_cast<LPARAM>(&kill)));
    EXPECT_EQ(kill.seen, (std::vector<HWND>{pop, c, b, a}));
    EXPECT_FALSE(EnumWindows(nullptr, 0));

    // The thread's windows: its top-level survivor, not the child.
    Visits mineOnThread;
    mineOnThread.mine = v.mine;
    EXPECT_TRUE(EnumThreadWindows(GetCurrentThreadId(), visit,
                                  reinterpret_cast<LPARAM>(&mineOnThread)));
    EXPECT_EQ(mineOnThread.seen, (std::vector<HWND>{a}));
    auto never = [](HWND, LPARAM) -> BOOL {
        ADD_FAILURE() << "another thread's window";
        return TRUE;
    };
    EXPECT_FALSE(EnumThreadWindows(GetCurrentThreadId() + 7777, never, 0));
}

// ---- search ------------------------------------------------------------------

TEST_F(Tree, FindWindowMatchesClassAndTitleWithoutRegardToCase)
{
    HWND alpha = make("Alpha");
    HWND beta = make("Beta");
    HWND pop = make("Popup", WS_POPUP, alpha);
    HWND kid1 = makeChild(beta, "Kid");
    HWND kid2 = makeChild(beta, "Kid");
    HWND kid3 = makeChild(beta, "Other");
    const char *cls = om::test::testClass();

    struct Case {
        const char *what;
        HWND parent, after;
        const char *cls, *title;
        HWND want;
    } cases[] = {
        {"title, case ignored", nullptr, nullptr, nullptr, "ALPHA", alpha},
        {"class and title", nullptr, nullptr, "coretestWINDOW", "beta", beta},
        {"a prefix is no match", nullptr, nullptr, nullptr, "Alph", nullptr},
        {"wrong class", nullptr, nullptr, "NoSuchClass", "Alpha", nullptr},
        {"pop-ups are not searched", nullptr, nullptr, nullptr, "Popup", nullptr},
        {"children are not searched", nullptr, nullptr, nullptr, "Kid", nullptr},
        {"desktop parent is the top level", GetDesktopWindow(), nullptr, cls, "alpha", alpha},
        {"among the children", beta, nullptr, cls, "kid", kid1},
        {"after a child", beta, kid1, nullptr, "kid", kid2},
        {"after the last match", beta, kid2, nullptr, "kid", nullptr},
        {"any child after", beta, kid2, nullptr, nullptr, kid3},
        {"no children", alpha, nullptr, nullptr, nullptr, nullptr},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(FindWindowExA(c.parent, c.after, c.cls, c.title), c.want);
    }
    EXPECT_EQ(FindWindowA(cls, "Beta"), beta);
    EXPECT_EQ(FindWindowW(u"CoreTestWindow", u"ALPHA"), alpha);
    EXPECT_EQ(FindWindowExW(beta, kid1, nullptr, u"Kid"), kid2);

    // A class given as its atom.
    ATOM atom = FindAtomA(cls);
    ASSERT_NE(atom, 0);
    EXPECT_EQ(FindWindowExA(beta, nullptr, MAKEINTATOM(atom), "OTHER"), kid3);
    (void)pop;
}

}  // namespace
