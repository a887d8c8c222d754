// SPDX-License-Identifier: BSD-3-Clause
// Runs a fuzz target over the files of a folder, and over every beginning of each file, in an ordinary
// program.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);

int main(int count, char** arguments)
{
    if (count != 2)
        return 2;
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(arguments[1])) {
        std::ifstream stream(entry.path(), std::ios::binary);
        const std::vector<char> text{std::istreambuf_iterator<char>(stream), {}};
        for (std::size_t size = 0; size <= text.size(); ++size) {
            // A block of its own for each, so that a read past the end is one past the block's end.
            const std::vector<std::uint8_t> bytes(text.begin(),
                                                  text.begin() + static_cast<std::ptrdiff_t>(size));
            LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
        }
        ++files;
    }
    std::printf("%zu files\n", files);
    return files == 0;
}
