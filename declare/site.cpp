// SPDX-License-Identifier: BSD-3-Clause
// The pages as files, with what they show and load.
#include "declare/files.h"
#include "declare/pages.h"

namespace declare {

namespace fs = std::filesystem;

static Exhibits exhibits(const Catalog& catalog, const fs::path& pictures, const fs::path& scenes)
{
    Exhibits found;
    for (const Shader* shader : catalog.shaders()) {
        const std::string name(shader->name);
        if (fs::exists(pictures / (name + ".png")))
            found.pictures.insert(name);
        if (const fs::path scene = scenes / (name + ".mi"); fs::exists(scene))
            found.scenes[name] = {readFile(scene), wholeScene(scene)};
    }
    return found;
}

void writePages(const Catalog& catalog, const fs::path& folder, const fs::path& source)
{
    for (const Shader* stray : catalog.strays())
        throw std::runtime_error(std::string(stray->name) +
                                 ": no group takes its unit, see declare/catalog.cpp");

    const fs::path pictures = source / "docs/pictures/shaders";
    const fs::path scenes = source / "examples/shaders";
    const Exhibits shown = exhibits(catalog, pictures, scenes);

    // Written anew, so that no page outlives its shader.
    fs::remove_all(folder);
    for (const char* const inside : {"pictures", "scenes"})
        fs::create_directories(folder / inside);
    fs::copy(source / "declare/site", folder / "assets", fs::copy_options::recursive);
    for (const auto& [name, example] : shown.scenes) {
        writeFile(folder / "scenes" / (name + ".mi"), example.whole.text);
        for (const fs::path& texture : example.whole.textures)
            fs::copy_file(texture, folder / "scenes" / texture.filename(), fs::copy_options::skip_existing);
    }
    for (const std::string& name : shown.pictures)
        fs::copy_file(pictures / (name + ".png"), folder / "pictures" / (name + ".png"));
    writeFile(folder / "assets/index.js", searchIndex(catalog));

    writeFile(folder / "index.html", startPage(catalog, shown));
    for (const Group& group : catalog.groups())
        writeFile(folder / (std::string(group.name) + ".html"), groupPage(catalog, shown, group));
    for (const Shader* shader : catalog.shaders())
        writeFile(folder / (std::string(shader->name) + ".html"), shaderPage(catalog, shown, *shader));
}

} // namespace declare
