// Replays a fuzz corpus without libFuzzer: feeds every file named on the
// command line (or found in a directory named there) to the fuzz entry, so
// the corpus runs in normal and sanitizer builds with any compiler.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace
{

int runFile(const std::filesystem::path &p)
{
    std::ifstream in(p, std::ios::binary);
    if (!in) {
        std::fprintf(stderr, "cannot read %s\n", p.c_str());
        return 1;
    }
    std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), {});
    // A copy of its own, so that the sanitizers see reads past the end.
    std::vector<uint8_t> exact(bytes.begin(), bytes.end());
    LLVMFuzzerTestOneInput(exact.empty() ? nullptr : exact.data(), exact.size());
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    int failures = 0;
    size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        std::filesystem::path arg(argv[i]);
        if (std::filesystem::is_directory(arg)) {
            for (const auto &f : std::filesystem::directory_iterator(arg))
                if (f.is_regular_file()) {
                    failures += runFile(f.path());
                    ++count;
                }
        } else {
            failures += runFile(arg);
            ++count;
        }
    }
    std::printf("replayed %zu inputs\n", count);
    return failures == 0 && count > 0 ? 0 : 1;
}
