// SPDX-License-Identifier: BSD-3-Clause
// Writes what is committed, declarations/vhl.mi, docs/reference/ and docs/recipes/, below the directory
// given, or the pages of the reference. The recipes and the scenes are those of the source.
#include "declare/catalog.h"
#include "declare/files.h"
#include "declare/pages.h"
#include "declare/recipes.h"
#include "declare/shaders.h"
#include "declare/write.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <string_view>

using declare::readFile;
using declare::writeFile;

namespace fs = std::filesystem;

/// A folder that is written anew, so that no page outlives its unit.
static fs::path emptied(const fs::path& folder)
{
    fs::remove_all(folder);
    return folder;
}

static void writeCommitted(const std::vector<VHL::Description>& shaders,
                           const std::vector<declare::RecipeGroup>& groups, const fs::path& directory,
                           const fs::path& source)
{
    writeFile(directory / "declarations/vhl.mi", declare::declarations(shaders));

    const fs::path reference = emptied(directory / "docs/reference");
    writeFile(reference / "README.md", declare::referenceIndex(shaders));
    for (auto first = shaders.begin(); first != shaders.end();) {
        const auto last = std::find_if(first, shaders.end(),
                                       [&](const VHL::Description& s) { return s.unit != first->unit; });
        writeFile(reference / (std::string(first->unit) + ".md"), declare::referencePage({first, last}));
        first = last;
    }

    const fs::path recipes = emptied(directory / "docs/recipes");
    writeFile(recipes / "README.md", declare::recipeReferenceIndex(groups));
    for (const declare::RecipeGroup& group : groups)
        for (const declare::Recipe& recipe : group.recipes)
            writeFile(recipes / (recipe.name + ".md"),
                      declare::recipeReference(
                          recipe, readFile(source / "examples/recipes" / (recipe.name + ".mi")), shaders));
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
    const bool forBrowsers = argc == 4 && argv[1] == std::string_view("--pages");
    if (argc != 3 && !forBrowsers) {
        std::fprintf(stderr, "usage: vhl_declare [--pages] DIRECTORY SOURCE\n");
        return 2;
    }
    try {
        const fs::path directory = argv[argc - 2], source = argv[argc - 1];
        const std::vector<VHL::Description> shaders = faultless();
        const std::vector<declare::RecipeGroup> recipes =
            declare::recipes(readFile(source / "declarations/recipes.mi"));
        if (forBrowsers)
            declare::writePages(declare::Catalog(shaders, recipes), directory, source);
        else
            writeCommitted(shaders, recipes, directory, source);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vhl_declare: %s\n", error.what());
        return 1;
    }
}
