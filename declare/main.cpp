// SPDX-License-Identifier: BSD-3-Clause
// Writes declarations/ and docs/reference/ below the directory given, or the pages of the reference.
#include "declare/catalog.h"
#include "declare/files.h"
#include "declare/pages.h"
#include "declare/shaders.h"
#include "declare/write.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <string_view>

using declare::writeFile;

static void writeCommitted(const std::vector<VHL::Description>& shaders,
                           const std::filesystem::path& directory)
{
    writeFile(directory / "declarations/vhl.mi", declare::declarations(shaders));

    // Written anew, so that no page outlives its unit.
    const std::filesystem::path reference = directory / "docs/reference";
    std::filesystem::remove_all(reference);
    writeFile(reference / "README.md", declare::referenceIndex(shaders));
    for (auto first = shaders.begin(); first != shaders.end();) {
        const auto last = std::find_if(first, shaders.end(),
                                       [&](const VHL::Description& s) { return s.unit != first->unit; });
        writeFile(reference / (std::string(first->unit) + ".md"), declare::referencePage({first, last}));
        first = last;
    }
}

/// The shaders, unless something is wrong with one: then that is told.
static std::vector<VHL::Description> faultless()
{
    std::vector<VHL::Description> shaders = declare::shaders();
    const std::vector<std::string> faults = declare::faults(shaders);
    for (const std::string& fault : faults)
        std::fprintf(stderr, "%s\n", fault.c_str());
    if (!faults.empty())
        throw std::runtime_error("nothing is written");
    return shaders;
}

int main(int argc, char** argv)
{
    try {
        if (argc == 2)
            writeCommitted(faultless(), argv[1]);
        else if (argc == 4 && argv[1] == std::string_view("--pages")) {
            const std::vector<VHL::Description> shaders = faultless();
            declare::writePages(declare::Catalog(shaders), argv[2], argv[3]);
        } else {
            std::fprintf(stderr, "usage: vhl_declare DIRECTORY\n"
                                 "       vhl_declare --pages DIRECTORY SOURCE\n");
            return 2;
        }
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vhl_declare: %s\n", error.what());
        return 1;
    }
}
