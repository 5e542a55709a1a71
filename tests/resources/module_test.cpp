// Resources of other modules and of damaged images: a resource-only
// library loaded with LoadLibraryA (lib/lib.rc), images registered at odd
// addresses, mutations of the compiled app.res that must be refused with
// warning 305, and lookups racing a library being loaded and freed.
#include <gtest/gtest.h>

#include "res_parsers.h"

#include "app/resource.h"
#include "kernel/omdiag.h"
#include "kernel/omhandles.h"
#include "kernel/omresource.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace
{

std::string dialogTitle(HMODULE module, LPCSTR name)
{
    HRSRC h = FindResourceA(module, name, RT_DIALOG);
    if (!h)
        return "(not found)";
    auto *p = static_cast<const uint8_t *>(LockResource(LoadResource(module, h)));
    return restest::parseDialog(p, SizeofResource(module, h)).title;
}

TEST(ResourceModules, LibraryHasAStoreOfItsOwn)
{
    HMODULE lib = LoadLibraryA(OLMO_RES_LIBRARY);
    ASSERT_NE(lib, nullptr);
    EXPECT_EQ(omHandleIndex(omHandleValue(lib)) != kOmProgramModuleSlot, true);

    // The same ordinal names different dialogs in the two modules.
    EXPECT_EQ(dialogTitle(lib, MAKEINTRESOURCEA(IDD_ABOUT)), "Library dialog");
    EXPECT_EQ(dialogTitle(nullptr, MAKEINTRESOURCEA(IDD_ABOUT)), "About Olmo");

    HRSRC strings = FindResourceA(lib, MAKEINTRESOURCEA(IDS_HELLO / 16 + 1), RT_STRING);
    ASSERT_NE(strings, nullptr);
    auto *p = static_cast<const uint8_t *>(LockResource(LoadResource(lib, strings)));
    EXPECT_EQ(restest::blockString(p, SizeofResource(lib, strings), IDS_HELLO % 16),
              "Hello from the library");

    // A file referenced relative to the library's script.
    std::vector<uint8_t> bmp = restest::readFile(std::string(OLMO_RES_DATA_DIR) + "/logo.bmp");
    HRSRC logo = FindResourceA(lib, "liblogo", RT_BITMAP);
    ASSERT_NE(logo, nullptr);
    EXPECT_EQ(SizeofResource(lib, logo), bmp.size() - 14);
    EXPECT_EQ(FindResourceA(nullptr, "LibLogo", RT_BITMAP), nullptr)
        << "the program does not see the library's resources";

    // Freeing the library takes its resources away; their handles go bad.
    omDiagResetCounts();
    EXPECT_TRUE(FreeLibrary(lib));
    EXPECT_EQ(SizeofResource(nullptr, logo), 0u);
    EXPECT_EQ(LoadResource(nullptr, strings), nullptr);
    EXPECT_EQ(omDiagCount(300), 2u);

    // Loading it again registers the image afresh.
    lib = LoadLibraryA(OLMO_RES_LIBRARY);
    ASSERT_NE(lib, nullptr);
    EXPECT_EQ(dialogTitle(lib, MAKEINTRESOURCEA(IDD_ABOUT)), "Library dialog");
    EXPECT_TRUE(FreeLibrary(lib));
}

// A module of the process with no resources of its own, to register
// images on explicitly.
HMODULE plainModule()
{
    HMODULE m = LoadLibraryA("libm.so.6");
    EXPECT_NE(m, nullptr);
    return m;
}

std::vector<uint8_t> appImage()
{
    std::vector<uint8_t> image = restest::readFile(OLMO_RES_APP_IMAGE);
    EXPECT_GT(image.size(), 64u);
    return image;
}

TEST(ResourceImages, UnalignedImageIsServedAlignedCopies)
{
    HMODULE m = plainModule();
    std::vector<uint8_t> image = appImage();
    // One byte in, so that every entry's data is misaligned.
    std::vector<uint8_t> buffer(image.size() + 8);
    uint8_t *odd = buffer.data() + 1;
    if (reinterpret_cast<uintptr_t>(odd) % 4 == 0)
        ++odd;
    memcpy(odd, image.data(), image.size());
    ASSERT_TRUE(omAddModuleResources(omHandleValue(m), odd, image.size()));

    for (LPCSTR name : {static_cast<LPCSTR>("Settings"), static_cast<LPCSTR>("Context")}) {
        SCOPED_TRACE(name);
        LPCSTR type = std::string(name) == "Settings" ? RT_DIALOG : RT_MENU;
        HRSRC inLib = FindResourceA(m, name, type);
        HRSRC inProgram = FindResourceA(nullptr, name, type);
        ASSERT_TRUE(inLib && inProgram);
        EXPECT_NE(inLib, inProgram);
        auto *a = static_cast<const uint8_t *>(LockResource(LoadResource(m, inLib)));
        auto *b = static_cast<const uint8_t *>(LockResource(LoadResource(nullptr, inProgram)));
        ASSERT_TRUE(a && b);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(a) % 4, 0u);
        ASSERT_EQ(SizeofResource(m, inLib), SizeofResource(nullptr, inProgram));
        EXPECT_EQ(memcmp(a, b, SizeofResource(m, inLib)), 0);
    }

    HRSRC h = FindResourceA(m, "Settings", RT_DIALOG);
    HGLOBAL data = LoadResource(m, h);
    _omUnregisterResources(odd);
    omDiagResetCounts();
    EXPECT_EQ(FindResourceA(m, "Settings", RT_DIALOG), nullptr);
    EXPECT_EQ(GetLastError(), DWORD(ERROR_RESOURCE_DATA_NOT_FOUND));
    EXPECT_EQ(SizeofResource(m, h), 0u);
    EXPECT_EQ(LockResource(data), nullptr);
    EXPECT_EQ(omDiagCount(300), 2u);
    FreeLibrary(m);
}

void putU32(std::vector<uint8_t> &v, size_t at, uint32_t x)
{
    memcpy(v.data() + at, &x, 4);
}

uint32_t getU32(const std::vector<uint8_t> &v, size_t at)
{
    uint32_t x;
    memcpy(&x, v.data() + at, 4);
    return x;
}

// The offset of the second entry (the first after the empty header).
constexpr size_t kFirstEntry = 32;

TEST(ResourceImages, DamagedImagesAreRefusedWithWarning305)
{
    HMODULE m = plainModule();
    const std::vector<uint8_t> image = appImage();
    uint32_t headerSize = getU32(image, kFirstEntry + 4);
    struct Damage {
        const char *label;
        std::vector<uint8_t> bytes;
    };
    std::vector<Damage> damages;
    auto mutate = [&](const char *label, auto change) {
        std::vector<uint8_t> copy = image;
        change(copy);
        damages.push_back({label, std::move(copy)});
    };
    mutate("cut inside the first header", [](auto &v) { v.resize(kFirstEntry + 12); });
    mutate("cut inside the first data", [&](auto &v) { v.resize(kFirstEntry + headerSize + 3); });
    mutate("cut inside the last entry", [](auto &v) { v.resize(v.size() - 5); });
    mutate("data size past the end", [](auto &v) { putU32(v, kFirstEntry, 0x7FFFFFF0); });
    mutate("header size past the end", [](auto &v) { putU32(v, kFirstEntry + 4, 0x7FFFFFF0); });
    mutate("header size not a multiple of 4",
           [&](auto &v) { putU32(v, kFirstEntry + 4, headerSize + 2); });
    mutate("header size below the minimum", [](auto &v) { putU32(v, kFirstEntry + 4, 16); });
    mutate("header size zero (would never advance)",
           [](auto &v) { putU32(v, kFirstEntry + 4, 0); });
    // A string type whose terminator, and everything after it in the
    // header, is replaced by letters.
    mutate("name without a terminator", [&](auto &v) {
        for (size_t i = kFirstEntry + 8; i < kFirstEntry + headerSize; i += 2) {
            v[i] = 'A';
            v[i + 1] = 0;
        }
    });
    mutate("trailing garbage", [](auto &v) {
        v.push_back(1);
        v.push_back(2);
    });

    for (const Damage &d : damages) {
        SCOPED_TRACE(d.label);
        omDiagResetCounts();
        EXPECT_FALSE(omAddModuleResources(omHandleValue(m), d.bytes.data(), d.bytes.size()));
        EXPECT_EQ(omDiagCount(305), 1u);
        EXPECT_EQ(FindResourceA(m, "Settings", RT_DIALOG), nullptr);
    }

    // Every truncation of a real image is either taken whole (cut at an
    // entry's end) or refused; none reads past what it was given (the
    // sanitizer build checks that).
    for (size_t len = 0; len < image.size(); len += 5) {
        std::vector<uint8_t> cut(image.begin(), image.begin() + static_cast<long>(len));
        omDiagResetCounts();
        if (omAddModuleResources(omHandleValue(m), cut.data(), cut.size())) {
            EXPECT_EQ(omDiagCount(305), 0u);
            _omUnregisterResources(cut.data());
        } else {
            EXPECT_EQ(omDiagCount(305), 1u) << "cut at " << len;
        }
    }
    FreeLibrary(m);
}

TEST(ResourceImages, RegistrationFindsTheModuleFromTheAddress)
{
    // Heap memory belongs to no loaded object.
    std::vector<uint8_t> image = appImage();
    omDiagResetCounts();
    EXPECT_FALSE(_omRegisterResources(image.data(), image.size()));
    EXPECT_EQ(omDiagCount(305), 1u);
    // Unregistering what was never registered does nothing.
    _omUnregisterResources(image.data());
    EXPECT_NE(FindResourceA(nullptr, "Settings", RT_DIALOG), nullptr);
}

// Eight threads look resources up in the program while another loads and
// frees the library, whose constructor and destructor change the same
// tables; the program's lookups never fail or see the library's entries.
TEST(ResourceThreads, LookupsRaceLoadAndFree)
{
    std::atomic<bool> stop{false};
    std::atomic<int> programHits{0};
    std::atomic<bool> wrongModule{false};
    std::vector<std::thread> readers;
    for (int t = 0; t < 8; ++t)
        readers.emplace_back([&] {
            while (!stop.load()) {
                HRSRC h = FindResourceA(nullptr, MAKEINTRESOURCEA(IDD_ABOUT), RT_DIALOG);
                if (h && SizeofResource(nullptr, h) > 0 && LockResource(LoadResource(nullptr, h)))
                    programHits.fetch_add(1);
                // The library's store comes and goes in the same tables.
                if (FindResourceA(nullptr, "LibLogo", RT_BITMAP))
                    wrongModule.store(true);
            }
        });
    // At least 30 rounds, and until the readers have done some work too.
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    for (int i = 0;
         i < 30 || (programHits.load() < 200 && std::chrono::steady_clock::now() < deadline); ++i) {
        HMODULE lib = LoadLibraryA(OLMO_RES_LIBRARY);
        ASSERT_NE(lib, nullptr);
        EXPECT_NE(FindResourceA(lib, "LibLogo", RT_BITMAP), nullptr);
        FreeLibrary(lib);
    }
    stop = true;
    for (std::thread &t : readers)
        t.join();
    EXPECT_GT(programHits.load(), 0);
    EXPECT_FALSE(wrongModule.load());
}

} // namespace
