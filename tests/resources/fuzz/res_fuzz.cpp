// The fuzz entry for the .res reader: parses the input, then walks every
// type, name and language through the directory the kernel builds from it,
// checking that each entry's data lies inside the input.
#include "kernel/omresource.h"

#include <cstdlib>
#include <cstring>

using om::kernel::ResDirectory;
using om::kernel::ResEntry;
using om::kernel::ResName;

namespace
{

void require(bool ok)
{
    if (!ok)
        abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    std::vector<ResEntry> entries;
    std::string why;
    if (!om::kernel::parseResImage(data, size, entries, why)) {
        require(!why.empty());
        return 0;
    }
    ResDirectory dir;
    dir.add(entries, 1);
    dir.add(entries, 2); // a second image with the same keys adds nothing
    require(dir.items().size() <= entries.size());
    unsigned sum = 0;
    for (const ResName &type : dir.types()) {
        for (const ResName &name : dir.names(type)) {
            const ResDirectory::Item *best = dir.find(type, name, 0, 0x0409);
            require(best && best->tag == 1);
            for (uint16_t lang : dir.languages(type, name)) {
                // A neutral request stands for the thread's language.
                const ResDirectory::Item *it = dir.find(type, name, lang, 0x0407);
                require(it && (lang == 0 || it->entry.language == lang));
                const ResEntry &e = it->entry;
                require(e.dataOffset <= size && e.dataSize <= size - e.dataOffset);
                for (size_t i = 0; i < e.dataSize; ++i)
                    sum += data[e.dataOffset + i];
            }
            // Looking a string name up again by its text finds the same key.
            if (!name.byOrdinal) {
                std::u16string text = name.text;
                ResName again;
                require(om::kernel::resNameFromW(text.c_str(), again));
                if (!again.byOrdinal)
                    require(dir.find(type, again, 0, 0x0409) != nullptr);
            }
        }
    }
    dir.removeTag(1);
    dir.removeTag(2);
    require(dir.items().empty());
    return static_cast<int>(sum & 0);
}
