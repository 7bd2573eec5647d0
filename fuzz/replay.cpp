// Runs a fuzz target's entry over the seeds in a folder, whole and cut: fuzz_NAME FOLDER. Short ones are cut
// behind every byte. What is being run is told on standard error, for the case that it ends the program.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

constexpr std::size_t cuts = 256;

// In memory of its own, so that a byte read too many is seen.
void run(const char* begin, std::size_t size) {
    const auto data = std::make_unique<std::uint8_t[]>(size);
    std::copy_n(begin, size, data.get());
    LLVMFuzzerTestOneInput(data.get(), size);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 64;
    int seeds = 0;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
        std::ifstream in(entry.path(), std::ios::binary);
        const std::vector<char> seed{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
        std::fprintf(stderr, "%s\n", entry.path().filename().c_str());
        for (std::size_t size = 0; size < seed.size(); size += 1 + seed.size() / cuts)
            run(seed.data(), size);
        run(seed.data(), seed.size());
        ++seeds;
    }
    return seeds ? 0 : 1;
}
