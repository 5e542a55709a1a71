// Window classes: lookup, registration limits, unregistration, names and
// class data, including the pointer-sized rules of the 64-bit data model.
#include "corefixture.h"

#include <cstring>
#include <string>

namespace {

using om::test::CoreTest;

class Classes : public CoreTest {
protected:
    static ATOM reg(const char *name, HINSTANCE instance, UINT style = 0, int clsExtra = 0)
    {
        WNDCLASSA wc{};
        wc.style = style;
        wc.lpfnWndProc = DefWindowProcA;
        wc.cbClsExtra = clsExtra;
        wc.hInstance = instance;
        wc.lpszClassName = name;
        return RegisterClassA(&wc);
    }
    static HINSTANCE inst(uintptr_t n) { return reinterpret_cast<HINSTANCE>(n); }
};

TEST_F(Classes, NamesCompareWithoutCaseAndBuiltInsAreFound)
{
    struct Row {
        const char *asked;
        const char *found;
    } rows[] = {{"edit", "Edit"}, {"BUTTON", "Button"}, {"listbox", "ListBox"},
                {"combobox", "ComboBox"}, {"static", "Static"}, {"mdiclient", "MDIClient"},
                {"scrollbar", "ScrollBar"}, {MAKEINTATOM(32770), "WC_DIALOG"}};
    for (const Row &r : rows) {
        SCOPED_TRACE(r.found);
        OmClassRecord *c = omFindClass(nullptr, r.asked);
        ASSERT_NE(c, nullptr);
        EXPECT_STREQ(c->name, r.found);
        EXPECT_TRUE(c->style & CS_GLOBALCLASS);
    }
    WNDCLASSA info{};
    ASSERT_TRUE(GetClassInfoA(nullptr, MAKEINTATOM(32770), &info));
    EXPECT_EQ(info.cbWndExtra, DLGWINDOWEXTRA) << "the Win64 dialog extra bytes";
}

TEST_F(Classes, DuplicateRegistrationFailsUnlessAnotherInstanceOfALocalClass)
{
    ASSERT_NE(reg("DupLocal", inst(0x100)), 0);
    EXPECT_EQ(reg("duplocal", inst(0x100)), 0) << "same name, same instance";
    EXPECT_NE(reg("DUPLOCAL", inst(0x200)), 0) << "a local class is per instance";
    ASSERT_NE(reg("DupGlobal", inst(0x100), CS_GLOBALCLASS), 0);
    EXPECT_EQ(reg("DupGlobal", inst(0x300)), 0) << "a global class is seen by every instance";
    EXPECT_EQ(reg("Edit", nullptr), 0) << "built-in classes are global";
    EXPECT_TRUE(UnregisterClassA("DupLocal", inst(0x100)));
    EXPECT_TRUE(UnregisterClassA("DupLocal", inst(0x200)));
    EXPECT_TRUE(UnregisterClassA("DupGlobal", inst(0x100)));
    EXPECT_FALSE(UnregisterClassA("DupGlobal", inst(0x100))) << "already gone";
}

TEST_F(Classes, TheTableGrowsPastItsFirst200Slots)
{
    std::vector<std::string> names;
    for (int i = 0; i < 210; ++i)
        names.push_back("Grow" + std::to_string(i));
    for (const std::string &n : names)
        ASSERT_NE(reg(n.c_str(), inst(0x400)), 0) << n;
    for (const std::string &n : names)
        EXPECT_NE(omFindClass(inst(0x400), n.c_str()), nullptr) << n;
    for (const std::string &n : names)
        EXPECT_TRUE(UnregisterClassA(n.c_str(), inst(0x400))) << n;
    EXPECT_EQ(omDiagCount(114), 0u);
}

TEST_F(Classes, NamesLongerThanTheInlineFieldStayWhole)
{
    const char *longName = "AWindowClassNameOfFortyCharactersInAll1";
    ASSERT_NE(reg(longName, inst(0x700)), 0);
    EXPECT_EQ(omFindClass(inst(0x700), "AWindowClassNameOfFortyCharactersInAll"), nullptr)
        << "a prefix is another name";
    HWND h = CreateWindowExA(0, longName, "", WS_POPUP, 0, 0, 5, 5, nullptr, nullptr, inst(0x700),
                             nullptr);
    ASSERT_NE(h, nullptr);
    char out[64];
    EXPECT_EQ(GetClassNameA(h, out, sizeof out), static_cast<int>(std::strlen(longName)));
    EXPECT_STREQ(out, longName);
    DestroyWindow(h);
    omRunIdleDrain();
    EXPECT_TRUE(UnregisterClassA(longName, inst(0x700)));
}

TEST_F(Classes, BuiltInAndInUseClassesCannotBeUnregistered)
{
    EXPECT_FALSE(UnregisterClassA("Edit", nullptr));
    ASSERT_NE(reg("InUse", inst(0x500)), 0);
    HWND h = CreateWindowExA(0, "InUse", "", WS_OVERLAPPED, 0, 0, 10, 10, nullptr, nullptr,
                             inst(0x500), nullptr);
    ASSERT_NE(h, nullptr);
    EXPECT_FALSE(UnregisterClassA("InUse", inst(0x500)));
    DestroyWindow(h);
    omRunIdleDrain();
    EXPECT_TRUE(UnregisterClassA("InUse", inst(0x500)));
}

TEST_F(Classes, ClassNameIsTruncatedToTheBuffer)
{
    OmClassRecord *edit = omFindClass(nullptr, "Edit");
    HWND h = CreateWindowExA(0, om::test::testClass(), "", WS_OVERLAPPED, 0, 0, 10, 10, nullptr,
                             nullptr, nullptr, nullptr);
    ASSERT_NE(h, nullptr);
    // Borrow the window to look at an "Edit" class name.
    OmClassRecord *own = omWindowRecord(h)->windowClass;
    omWindowRecord(h)->windowClass = edit;
    char buf[4] = "xxx";
    EXPECT_EQ(GetClassNameA(h, buf, sizeof buf), 3);
    EXPECT_STREQ(buf, "Edi");
    WCHAR wide[3];
    EXPECT_EQ(GetClassNameW(h, wide, 3), 2);
    EXPECT_EQ(wide[0], u'E');
    EXPECT_EQ(wide[2], 0);
    omWindowRecord(h)->windowClass = own;
    char full[64];
    EXPECT_EQ(GetClassNameA(h, full, sizeof full), 14);
    EXPECT_STREQ(full, "CoreTestWindow");
    EXPECT_EQ(GetClassNameA(nullptr, full, sizeof full), 0);
    DestroyWindow(h);
}

TEST_F(Classes, ClassDataFollowsTheDataModel)
{
    HWND h = CreateWindowExA(0, om::test::testClass(), "", WS_OVERLAPPED, 0, 0, 10, 10, nullptr,
                             nullptr, nullptr, nullptr);
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(SetClassLongA(h, GCL_CBCLSEXTRA, 64), 8u) << "read-only: answers the size";
    EXPECT_EQ(GetClassLongA(h, GCL_CBCLSEXTRA), 8u);
    EXPECT_EQ(GetClassLongA(h, GCL_CBWNDEXTRA), 16u);

    // Pointer slots exist only under the Ptr calls.
    struct Row {
        int index;
    } pointerRows[] = {{GCLP_WNDPROC}, {GCLP_HICON}, {GCLP_HCURSOR}, {GCLP_HBRBACKGROUND},
                       {GCLP_MENUNAME}, {GCLP_HMODULE}, {GCLP_HICONSM}};
    for (const Row &r : pointerRows) {
        SCOPED_TRACE(r.index);
        omDiagResetCounts();
        EXPECT_EQ(GetClassLongA(h, r.index), 0u);
        EXPECT_EQ(omDiagCount(39), 1u);
    }
    EXPECT_EQ(GetClassLongPtrA(h, GCLP_WNDPROC),
              reinterpret_cast<ULONG_PTR>(&om::test::recordingProc));

    // Extra bytes: 8-byte values at any offset through Ptr, 4 through the
    // 32-bit call; one byte past the end is error 39.
    const ULONG_PTR big = 0x1122334455667788ull;
    EXPECT_EQ(SetClassLongPtrA(h, 0, static_cast<LONG_PTR>(big)), 0u);
    EXPECT_EQ(GetClassLongPtrA(h, 0), big);
    EXPECT_EQ(GetClassLongA(h, 4), 0x11223344u);
    EXPECT_EQ(GetClassWord(h, 6), 0x1122);
    omDiagResetCounts();
    EXPECT_EQ(GetClassLongPtrA(h, 1), 0u);
    EXPECT_EQ(GetClassLongA(h, 5), 0u);
    EXPECT_EQ(GetClassWord(h, 7), 0u);
    EXPECT_EQ(omDiagCount(39), 3u);
    SetClassLongPtrA(h, 0, 0);

    omDiagResetCounts();
    EXPECT_EQ(SetClassLongPtrA(h, GCLP_HMODULE, 5), 0u);
    EXPECT_EQ(omDiagCount(161), 1u);
    EXPECT_EQ(SetClassLongPtrA(h, GCLP_HBRBACKGROUND, 0x12345), 0u);
    EXPECT_EQ(omDiagCount(3), 1u) << "not a brush";
    DestroyWindow(h);
}

TEST_F(Classes, GetClassInfoReportsWhatWasRegistered)
{
    WNDCLASSEXA wc{};
    wc.cbSize = sizeof wc;
    wc.style = CS_HREDRAW;
    wc.lpfnWndProc = DefWindowProcA;
    wc.cbWndExtra = 24;
    wc.hInstance = inst(0x600);
    wc.lpszMenuName = "MainMenu";
    wc.lpszClassName = "InfoClass";
    wc.hIconSm = reinterpret_cast<HICON>(0x77);
    ATOM atom = RegisterClassExA(&wc);
    ASSERT_NE(atom, 0);
    WNDCLASSEXA out{};
    out.cbSize = 1234;
    EXPECT_EQ(GetClassInfoExA(inst(0x600), "infoclass", &out), atom);
    EXPECT_EQ(out.cbSize, 1234u) << "not touched";
    EXPECT_EQ(out.cbWndExtra, 24);
    EXPECT_STREQ(out.lpszMenuName, "MainMenu");
    EXPECT_NE(out.lpszMenuName, wc.lpszMenuName) << "a copy";
    EXPECT_EQ(out.hIconSm, wc.hIconSm);
    WNDCLASSW w{};
    ASSERT_TRUE(GetClassInfoW(inst(0x600), u"InfoClass", &w));
    EXPECT_EQ(std::u16string(reinterpret_cast<const char16_t *>(w.lpszClassName)), u"InfoClass");
    LocalFree(const_cast<LPWSTR>(w.lpszMenuName));
    LocalFree(const_cast<LPWSTR>(w.lpszClassName));
    EXPECT_FALSE(GetClassInfoA(inst(0x600), "NoSuchClass", reinterpret_cast<WNDCLASSA *>(&out)));
    EXPECT_TRUE(UnregisterClassW(u"InfoClass", inst(0x600)));
}

}  // namespace
