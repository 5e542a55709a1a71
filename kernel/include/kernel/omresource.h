// Resources: the reader of the binary .res format, the per-module stores
// built from it, and the entries that register compiled resource images.
// A program's .rc is compiled at build time (olmo_add_resources, olmo-rc)
// into a C file whose constructor hands the image to _omRegisterResources.
#pragma once

#include <olmo/platform.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

extern "C" {

// Registers a .res image compiled into a program or library; the module is
// the object file the image lies in (found with dladdr), so the same
// generated file serves the program and a resource-only library loaded
// with LoadLibraryA.  The image must stay mapped until it is unregistered.
// Returns FALSE (with warning 305) when the image is malformed or lies in
// no loaded object.  Any thread; called from constructors.
OLMO_API int _omRegisterResources(const void *image, size_t size);

// Forgets an image registered by either entry (its library's destructor
// calls it before the library is unmapped).  HRSRC handles of the image
// become invalid.
OLMO_API void _omUnregisterResources(const void *image);

// Registers an image for an explicit module handle (0: the program).
OLMO_API int omAddModuleResources(uint64_t module, const void *image, size_t size);

} // extern "C"

namespace om::kernel
{

// A resource type or name: an ordinal or a UTF-16 string.
struct ResName {
    bool byOrdinal = true;
    uint16_t ordinal = 0;
    std::u16string text;

    static ResName ofOrdinal(uint16_t id) { return ResName{true, id, {}}; }
    static ResName ofText(std::u16string s) { return ResName{false, 0, std::move(s)}; }
};

// Orders as a resource directory does: strings first, compared without
// case, then ordinals ascending.  Returns <0, 0 or >0.
int compareResNames(const ResName &a, const ResName &b);

// The name a program passes: an ordinal (MAKEINTRESOURCE), "#123", or a
// string.  Null gives false.
bool resNameFromA(const char *s, ResName &out);
bool resNameFromW(const char16_t *s, ResName &out);

// The UTF-8 or UTF-16 text of a string name (empty for an ordinal).
std::string resNameUtf8(const ResName &n);

struct ResEntry {
    ResName type;
    ResName name;
    uint16_t language = 0;
    uint16_t memoryFlags = 0;
    uint32_t dataVersion = 0;
    uint32_t version = 0;
    uint32_t characteristics = 0;
    size_t dataOffset = 0; // from the start of the image
    uint32_t dataSize = 0;
};

// Parses a whole .res image.  On success fills `out` with every entry
// except the empty leading one, in file order.  On malformed data returns
// false with a short reason in `why` and leaves `out` unspecified.
bool parseResImage(const unsigned char *image, size_t size, std::vector<ResEntry> &out,
                   std::string &why);

// The languages to try, in order, for a request: exact, its primary with
// SUBLANG_NEUTRAL, the thread's language and its primary, LANG_NEUTRAL and
// the default sublanguages, then English.  "Any" comes after these.
std::vector<uint16_t> resLanguageOrder(uint16_t requested, uint16_t threadLanguage);

// A sorted view of the entries of one or more images: lookups with the
// language fallback, and the distinct types, names and languages for the
// enumeration functions.
class ResDirectory
{
  public:
    // Adds entries; `tag` tells the caller which image each came from.
    void add(const std::vector<ResEntry> &entries, size_t tag);
    void removeTag(size_t tag);

    struct Item {
        ResEntry entry;
        size_t tag;
    };
    // The entry for (type, name) in the best language, or null.
    const Item *find(const ResName &type, const ResName &name, uint16_t language,
                     uint16_t threadLanguage) const;
    std::vector<ResName> types() const;
    std::vector<ResName> names(const ResName &type) const;
    std::vector<uint16_t> languages(const ResName &type, const ResName &name) const;
    const std::vector<Item> &items() const { return items_; }

  private:
    std::vector<Item> items_; // sorted by type, name, language
};

} // namespace om::kernel
