// Runs every file below the given folders through a fuzz target once, without a fuzzer: what was
// found once stays found in the ordinary tests.
#include "platform/Types.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const BYTE* data, std::size_t size);

int main(int argc, char** argv) {
    std::size_t count = 0;
    for (const std::string folder : std::vector(argv + 1, argv + argc))
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
            if (!entry.is_regular_file())
                continue;
            // The one that ends the program is the last one named.
            std::puts(entry.path().c_str());
            std::fflush(stdout);
            // In memory of just the input's size, so that a read behind its end is seen.
            std::ifstream file(entry.path(), std::ios::binary);
            const std::string content{std::istreambuf_iterator<char>(file), {}};
            const std::vector<BYTE> input(content.begin(), content.end());
            LLVMFuzzerTestOneInput(input.data(), input.size());
            ++count;
        }
    std::printf("%zu inputs\n", count);
    return count == 0 ? 1 : 0;
}
