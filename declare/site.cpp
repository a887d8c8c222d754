// SPDX-License-Identifier: BSD-3-Clause
// The pages as files, with what they show and load.
#include "declare/files.h"
#include "declare/pages.h"

namespace declare {

namespace fs = std::filesystem;

/// Adds what the sources have for a shader or a recipe, and copies it.
static void exhibit(Exhibits& exhibits, const std::string& name, const fs::path& picture,
                    const fs::path& scene, const fs::path& folder)
{
    if (fs::exists(picture)) {
        exhibits.pictures.insert(name);
        fs::copy_file(picture, folder / "pictures" / picture.filename());
    }
    if (fs::exists(scene)) {
        const Example& example = exhibits.scenes[name] = {readFile(scene), wholeScene(scene)};
        writeFile(folder / "scenes" / scene.filename(), example.whole.text);
        for (const fs::path& texture : example.whole.textures)
            fs::copy_file(texture, folder / "scenes" / texture.filename(), fs::copy_options::skip_existing);
    }
}

void writePages(const Catalog& catalog, const fs::path& folder, const fs::path& source)
{
    for (const Shader* stray : catalog.strays())
        throw std::runtime_error(std::string(stray->name) +
                                 ": no group takes its unit, see declare/catalog.cpp");

    // Written anew, so that no page outlives its shader.
    fs::remove_all(folder);
    for (const char* const inside : {"pictures", "scenes"})
        fs::create_directories(folder / inside);
    fs::copy(source / "declare/site", folder / "assets", fs::copy_options::recursive);
    writeFile(folder / "assets/index.js", searchIndex(catalog));

    Exhibits shown;
    const auto take = [&](const std::string& name, const char* kind) {
        exhibit(shown, name, source / "docs/pictures" / kind / (name + ".png"),
                source / "examples" / kind / (name + ".mi"), folder);
    };
    for (const Shader* shader : catalog.shaders())
        take(std::string(shader->name), "shaders");
    for (const Recipe* recipe : catalog.recipes())
        take(recipe->name, "recipes");

    const auto write = [&](std::string_view name, const std::string& page) {
        writeFile(folder / (std::string(name) + ".html"), page);
    };
    write("index", startPage(catalog, shown));
    for (const Group& group : catalog.groups())
        write(group.name, groupPage(catalog, shown, group));
    for (const Shader* shader : catalog.shaders())
        write(shader->name, shaderPage(catalog, shown, *shader));
    write("recipes", recipesPage(catalog, shown));
    for (const RecipeGroup& group : catalog.recipeGroups())
        for (const Recipe& recipe : group.recipes)
            write(recipe.name, recipePage(catalog, shown, group, recipe));
}

} // namespace declare
