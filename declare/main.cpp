// SPDX-License-Identifier: BSD-3-Clause
// Writes declarations/ and docs/reference/ below the directory given.
#include "declare/shaders.h"
#include "declare/write.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>

static void write(const std::filesystem::path& file, const std::string& text)
{
    std::filesystem::create_directories(file.parent_path());
    std::ofstream stream(file, std::ios::binary);
    stream << text;
    stream.close();
    if (!stream)
        throw std::runtime_error("cannot write " + file.string());
}

static int run(const std::filesystem::path& directory)
{
    const std::vector<VHL::Description> shaders = declare::shaders();
    const std::vector<std::string> faults = declare::faults(shaders);
    for (const std::string& fault : faults)
        std::fprintf(stderr, "%s\n", fault.c_str());
    if (!faults.empty())
        return 1;

    write(directory / "declarations/vhl.mi", declare::declarations(shaders));

    // Written anew, so that no page outlives its unit.
    const std::filesystem::path reference = directory / "docs/reference";
    std::filesystem::remove_all(reference);
    write(reference / "README.md", declare::referenceIndex(shaders));
    for (auto first = shaders.begin(); first != shaders.end();) {
        const auto last = std::find_if(first, shaders.end(),
                                       [&](const VHL::Description& s) { return s.unit != first->unit; });
        write(reference / (std::string(first->unit) + ".md"), declare::referencePage({first, last}));
        first = last;
    }
    return 0;
}

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: vhl_declare DIRECTORY\n");
        return 2;
    }
    try {
        return run(argv[1]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vhl_declare: %s\n", error.what());
        return 1;
    }
}
