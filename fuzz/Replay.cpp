// Runs every file below the given folders through a fuzz target once, without a fuzzer: what was
// found once stays found in the ordinary tests.
#include "platform/Types.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const BYTE* data, std::size_t size);

namespace {

std::vector<std::filesystem::path> FilesBelow(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        if (entry.is_regular_file())
            files.push_back(entry.path());
    std::ranges::sort(files);
    return files;
}

// In memory of just the input's size, so that a read behind its end is seen.
std::vector<BYTE> ReadInput(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    return {content.begin(), content.end()};
}

} // namespace

int main(int argc, char** argv) {
    std::size_t count = 0;
    for (int index = 1; index < argc; ++index)
        for (const std::filesystem::path& path : FilesBelow(argv[index])) {
            // The one that ends the program is the last one named.
            std::puts(path.c_str());
            std::fflush(stdout);
            const std::vector<BYTE> input = ReadInput(path);
            LLVMFuzzerTestOneInput(input.data(), input.size());
            ++count;
        }
    std::printf("%zu inputs\n", count);
    return count == 0 ? 1 : 0;
}
