// SPDX-License-Identifier: BSD-3-Clause
#include "declare/pages.h"

#include "declare/html.h"
#include "declare/prose.h"
#include "declare/shaders.h"
#include "declare/write.h"

#include <algorithm>
#include <array>

namespace declare {

std::string captionOf(std::string_view scene)
{
    std::string caption;
    while (scene.starts_with('#')) {
        const std::string_view line = scene.substr(0, scene.find('\n'));
        if (line.size() > 2 && !line.starts_with("# SPDX"))
            caption += (caption.empty() ? "" : " ") + std::string(line.substr(2));
        scene.remove_prefix(std::min(scene.size(), line.size() + 1));
    }
    return caption;
}

/// The page of all recipes.
static constexpr std::string_view recipesFile = "recipes";

/// A part of a page that its list of contents names.
struct Section {
    std::string_view id, title;
    Html content;
    bool isShort = false; ///< some lines, that stand beside the title
};

static Html type(std::string_view name)
{
    static constexpr std::string_view array = "array of ";
    if (name.starts_with(array))
        return html("{}{}", array, type(name.substr(array.size())));
    return html(R"(<span class="type {}">{}</span>)", name.substr(name.rfind(' ') + 1), name);
}

static Html picture(const Exhibits& exhibits, std::string_view name, std::string_view described)
{
    if (!exhibits.pictures.contains(name))
        return {};
    return html(R"(<img src="pictures/{}.png" width="240" height="180" loading="lazy" alt="{}">)", name,
                described);
}

static std::string nameOf(const Shader* shader) { return std::string(shader->name); }
static std::string nameOf(const Recipe* recipe) { return recipe->name; }
static std::string nameOf(const Recipe& recipe) { return recipe.name; }

template <class List>
static std::vector<std::string> namesOf(const List& list)
{
    std::vector<std::string> names;
    for (const auto& one : list)
        names.push_back(nameOf(one));
    return names;
}

static Html links(std::span<const std::string> names)
{
    Html items;
    for (const std::string& name : names)
        items += html("<li>{}</li>\n", link(name));
    return html(R"(<ul class="names">
{}</ul>
)",
                items);
}

/// What a group of recipes is called in links to its part of their page.
static std::string anchor(const RecipeGroup& group)
{
    std::string id;
    for (const char c : group.title)
        id += c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c >= 'a' && c <= 'z' ? c : '-';
    return id;
}

/// Where a page belongs.
struct Place {
    std::string_view page;
    const Group* group = nullptr;
    const RecipeGroup* recipes = nullptr;
};

/// All groups, with the shaders or recipes of the one that the page belongs to.
static Html navigation(const Catalog& catalog, const Place& place)
{
    const auto item = [](const Html& target, bool isCurrent, const Html& title, const Html& below) {
        return html("<li><a href=\"{}\"{}>{}</a>{}</li>\n", target,
                    isCurrent ? html(R"( aria-current="page")") : Html(), title, below);
    };
    const auto page = [&](std::string_view name, const Html& title, const Html& below) {
        return item(html("{}.html", name), name == place.page, title, below);
    };
    const auto inside = [&](const std::vector<std::string>& names) {
        Html items;
        for (const std::string& name : names)
            items += page(name, breakable(name), {});
        return html("\n<ul>\n{}</ul>\n", items);
    };
    Html items;
    for (const Group& group : catalog.groups())
        items += page(group.name, html("{} <small>{}</small>", group.title, group.shaders.size()),
                      &group == place.group ? inside(namesOf(group.shaders)) : Html());
    Html groups;
    if (place.recipes || place.page == recipesFile)
        for (const RecipeGroup& group : catalog.recipeGroups())
            groups += item(html("{}.html#{}", recipesFile, anchor(group)), false,
                           html("{} <small>{}</small>", group.title, group.recipes.size()),
                           &group == place.recipes ? inside(namesOf(group.recipes)) : Html());
    if (!catalog.recipes().empty())
        items += page(recipesFile, html("Recipes <small>{}</small>", catalog.recipes().size()),
                      groups.empty() ? Html() : html("\n<ul>\n{}</ul>\n", groups));
    return html(R"(<nav class="groups" id="groups" aria-label="Groups">
<ul>
{}</ul>
</nav>
)",
                items);
}

static std::string wholePage(std::string_view title, std::string_view about, const Html& navigation,
                             const Html& content)
{
    return html(R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<title>{}</title>
<meta name="description" content="{}">
<meta name="viewport" content="width=device-width, initial-scale=1">
<meta name="color-scheme" content="light dark">
<link rel="icon" href="assets/icon.svg">
<link rel="stylesheet" href="assets/style.css">
<script src="assets/theme.js"></script>
<script src="assets/index.js" defer></script>
<script src="assets/search.js" defer></script>
<script src="assets/page.js" defer></script>
</head>
<body>
<a class="skip" href="#content">Skip to content</a>
<header>
<a class="home" href="index.html">
<img src="assets/icon.svg" width="28" height="28" alt="">vhl <span>Shader reference</span></a>
<search id="search" hidden>
<input id="query" type="search" placeholder="Search shaders, recipes, words"
 aria-label="Search the reference" role="combobox" aria-expanded="false" aria-controls="found"
 aria-autocomplete="list" autocomplete="off" spellcheck="false">
<kbd aria-hidden="true">/</kbd>
<div id="found" role="listbox" aria-label="Shaders and recipes found" hidden></div>
<p id="count" class="unseen" role="status"></p>
</search>
<a class="to-groups" href="#groups">Groups</a>
<button id="theme" type="button" aria-pressed="false" hidden>Dark</button>
</header>
<div class="columns">
{}<main id="content" tabindex="-1">
{}</main>
</div>
</body>
</html>
)",
                title, about, navigation, content)
        .str();
}

/// A title that leads to a page, with a picture above and a text below it.
static Html card(const Exhibits& exhibits, std::string_view pictured, const Html& target, const Html& title,
                 const Html& text, std::size_t level = 2)
{
    return html(R"(<li>{}<h{}><a href="{}">{}</a></h{}>
<p>{}</p></li>
)",
                picture(exhibits, pictured, ""), level, target, title, level, text);
}

static Html card(const Catalog& catalog, const Exhibits& exhibits, const Subject& subject, std::size_t level)
{
    return card(exhibits, subject.name, html("{}.html", subject.name), breakable(subject.name),
                html("{} {}", type(subject.result), line(catalog, subject, subject.text)), level);
}

std::string groupPage(const Catalog& catalog, const Exhibits& exhibits, const Group& group)
{
    Html cards;
    for (const Shader* shader : group.shaders)
        cards += card(catalog, exhibits, subjectOf(*shader), 2);
    return wholePage(std::string(group.title) + " - vhl", group.about,
                     navigation(catalog, {.page = group.name, .group = &group}),
                     html(R"(<nav class="path" aria-label="Path"><a href="index.html">Reference</a></nav>
<h1>{}</h1>
<p class="lead">{}</p>
<ul class="cards">
{}</ul>
)",
                          group.title, group.about, cards));
}

std::string recipesPage(const Catalog& catalog, const Exhibits& exhibits)
{
    Html parts;
    for (const RecipeGroup& group : catalog.recipeGroups()) {
        const std::string id = anchor(group);
        Html cards;
        for (const Recipe& recipe : group.recipes)
            cards += card(catalog, exhibits, recipe, 3);
        parts += html(R"(<section aria-labelledby="{}">
<h2 id="{}">{}</h2>
<p>{}</p>
<ul class="cards">
{}</ul>
</section>
)",
                      id, id, group.title, line(catalog, {}, group.about), cards);
    }
    return wholePage("Recipes - vhl", "Networks of shaders for everyday needs, used like shaders.",
                     navigation(catalog, {.page = recipesFile}),
                     html(R"(<nav class="path" aria-label="Path"><a href="index.html">Reference</a></nav>
<h1>Recipes</h1>
{}{})",
                          blocks(catalog, {}, recipeIntroduction(catalog.recipeGroups())), parts));
}

/// Cards that lead to the groups of recipes, each with the picture of its first.
static Html recipeGroups(const Catalog& catalog, const Exhibits& exhibits)
{
    Html cards;
    for (const RecipeGroup& group : catalog.recipeGroups())
        cards += card(exhibits, group.recipes.front().name, html("{}.html#{}", recipesFile, anchor(group)),
                      html("{} <small>{}</small>", group.title, group.recipes.size()),
                      line(catalog, {}, group.about), 3);
    return cards.empty() ? Html()
                         : html(R"(<h2 id="recipes">Recipes</h2>
<p>Networks of these shaders for everyday needs, <a href="{}.html">{} of them</a>, used like shaders.</p>
<ul class="cards">
{}</ul>
)",
                                recipesFile, catalog.recipes().size(), cards);
}

std::string startPage(const Catalog& catalog, const Exhibits& exhibits)
{
    Html cards;
    for (const Group& group : catalog.groups())
        cards += card(exhibits, group.cover, html("{}.html", group.name),
                      html("{} <small>{}</small>", group.title, group.shaders.size()), group.about);

    Shaders byName = catalog.shaders();
    std::ranges::sort(byName, {}, &Shader::name);
    Html rows;
    for (const Shader* shader : byName)
        rows += html(R"(<tr><th scope="row">{}</th><td>{}</td><td>{}</td></tr>
)",
                     link(shader->name), type(typeName(shader->result)),
                     line(catalog, subjectOf(*shader), shader->about.text));

    return wholePage("vhl shader reference", "All shaders of the library, by what they are for.",
                     navigation(catalog, {.page = "index"}),
                     html(R"(<h1>Shader reference</h1>
<p class="lead">Small shaders that compose: {} of them, each with its parameters, the order in which it
evaluates them, what it does at the edges, and a scene to copy.</p>
<pre tabindex="0"><code>{}</code></pre>
<ul class="cards">
{}</ul>
{}<h2 id="all">All shaders</h2>
{})",
                          byName.size(), scene(catalog, {}, "link \"libvhl.so\"\n$include <vhl.mi>\n"), cards,
                          recipeGroups(catalog, exhibits),
                          table("all", std::array<Html, 3>{"Shader", "Result", "What it does"}, rows)));
}

static Html parameters(const Catalog& catalog, const Subject& subject)
{
    Html rows;
    for (const auto& [name, kind, standard, range, about] : subject.parameters)
        rows += html(R"(<tr id="p-{}"><th scope="row"><a href="#p-{}"><code>{}</code></a></th>
<td data-label="Type">{}</td><td data-label="Default">{}</td><td data-label="Range">{}</td><td>{}</td></tr>
)",
                     name, name, name, type(kind), standard, range, line(catalog, subject, about));
    return table("parameters", std::array<Html, 5>{"Parameter", "Type", "Default", "Range", "Meaning"}, rows);
}

static Html result(const Subject& subject)
{
    return html("<p>{}, offered as {}.</p>\n", type(subject.result), subject.apply);
}

static Html members(const Catalog& catalog, const Subject& subject, std::span<const VHL::Field> members)
{
    Html rows;
    for (const VHL::Field& member : members)
        rows += html(R"(<tr><th scope="row"><code>{}</code></th><td data-label="Type">{}</td><td>{}</td></tr>
)",
                     member.name.text.data(), type(typeText(member)), line(catalog, subject, member.about));
    return rows.empty() ? rows : table("members", std::array<Html, 3>{"Member", "Type", "Meaning"}, rows);
}

/// Text under a bar with its name and a button, which the script shows where it can copy: what has the id
/// given, or without one the text.
static Html copyable(const Html& title, const Html& code, std::string_view copied)
{
    return html(
        R"(<div class="copyable"><div>{}<button type="button" data-copied="{}" hidden>Copy</button></div>
<pre tabindex="0"><code>{}</code></pre></div>
)",
        title, copied, code);
}

/// The scene as it was written, which tells the most, and what is copied: the same with all that it includes.
static Html example(const Catalog& catalog, const Exhibits& exhibits, const Subject& subject)
{
    const auto found = exhibits.scenes.find(subject.name);
    if (found == exhibits.scenes.end())
        return {};
    const auto& [text, whole] = found->second;
    const Html file = html("{}.mi", subject.name);
    const Html link = html(R"(<a href="scenes/{}">{}</a>)", file, file);
    Html textures;
    for (const std::filesystem::path& texture : whole.textures)
        textures += html(R"({}<a href="scenes/{}" download>{}</a>)", textures.empty() ? "" : ", ",
                         texture.filename().string(), texture.filename().string());
    return html(
        R"(<p>Rendered in this page's folder by <code>vhrender scenes/{}</code>. Copying takes the whole
scene, with what it includes of other files; it renders {}.</p>
{}<details><summary>The whole scene</summary>
<pre tabindex="0"><code id="whole">{}</code></pre></details>
)",
        file, textures.empty() ? Html("anywhere") : html("where {} lies beside it", textures),
        copyable(link, scene(catalog, subject, text), "whole"), scene(catalog, subject, whole.text));
}

static Html figure(const Catalog& catalog, const Exhibits& exhibits, const Subject& subject)
{
    const Html shown = picture(exhibits, subject.name, "Rendered with " + subject.name);
    if (shown.empty())
        return {};
    const auto scene = exhibits.scenes.find(subject.name);
    const std::string caption = scene == exhibits.scenes.end() ? "" : captionOf(scene->second.text);
    return html("<figure>{}<figcaption>{}</figcaption></figure>\n", shown, line(catalog, subject, caption));
}

/// Links under a title, if there are any.
static Html relatives(std::string_view title, std::span<const std::string> names)
{
    return names.empty() ? Html() : html("<h3>{}</h3>\n{}", title, links(names));
}

/// The rest of a group, open where it is all that there is to see.
static Html restOfGroup(std::span<const std::string> names, bool isAlone)
{
    return names.empty() ? Html()
                         : html("<details{}><summary>More of the group</summary>\n{}</details>\n",
                                isAlone ? html(" open") : Html(), links(names));
}

static Html related(const Catalog& catalog, const Shader& shader)
{
    Html all;
    std::set<const Shader*> shown = {&shader};
    const auto unseen = [&](Shaders shaders) {
        std::erase_if(shaders, [&](const Shader* other) { return !shown.insert(other).second; });
        return namesOf(shaders);
    };
    for (const auto& [title, shaders] : {std::pair("Other versions", catalog.versions(shader)),
                                         std::pair("The same for other types", catalog.siblings(shader)),
                                         std::pair("Goes with", catalog.companions(shader))})
        all += relatives(title, unseen(shaders));
    all += relatives("Used by recipes", namesOf(catalog.users(shader.name)));
    return all + restOfGroup(unseen(catalog.groupOf(shader).shaders), all.empty());
}

static Html related(const Catalog& catalog, const RecipeGroup& group, const Recipe& recipe)
{
    std::vector<std::string> others = namesOf(group.recipes);
    std::erase(others, recipe.name);
    const Html users = relatives("Used by recipes", namesOf(catalog.users(recipe.name)));
    return users + restOfGroup(others, users.empty());
}

static Html paragraph(const Catalog& catalog, const Subject& subject, std::string_view text,
                      Names names = Names::unmistakable)
{
    return text.empty() ? Html() : html("<p>{}</p>\n", line(catalog, subject, text, names));
}

static Html declared(const Catalog& catalog, const Subject& subject, std::string_view file,
                     std::string_view text)
{
    return copyable(html("<span>{}</span>", file), scene(catalog, subject, text), "");
}

/// The parts of a shader's page, some of them empty.
static std::vector<Section> sections(const Catalog& catalog, const Exhibits& exhibits, const Shader& shader,
                                     const Subject& subject)
{
    const auto& [text, apply, named, order, edges, messages, notes] = shader.about;
    return {
        {"parameters", "Parameters", parameters(catalog, subject)},
        {"result", "Result", result(subject) + members(catalog, subject, shader.members),
         shader.members.empty()},
        {"evaluation", "Evaluation", paragraph(catalog, subject, order, Names::all), true},
        {"edges", "Edge cases", paragraph(catalog, subject, edges), true},
        {"messages", "Messages", paragraph(catalog, subject, messages.empty() ? "None." : messages), true},
        {"notes", "Notes", blocks(catalog, subject, notes)},
        {"example", "Example", example(catalog, exhibits, subject)},
        {"declaration", "Declaration", declared(catalog, subject, "vhl.mi", declaration(shader))},
        {"related", "See also", related(catalog, shader)},
    };
}

static std::vector<Section> sections(const Catalog& catalog, const Exhibits& exhibits,
                                     const RecipeGroup& group, const Recipe& recipe)
{
    const Html source = recipe.source.empty() ? Html() : html("<p>Source: {}.</p>\n", recipe.source);
    return {
        {"parameters", "Parameters", parameters(catalog, recipe)},
        {"result", "Result", result(recipe), true},
        {"formula", "Formula", html("<pre tabindex=\"0\"><code>{}</code></pre>\n", recipe.formula) + source},
        {"network", "Network",
         paragraph(catalog, recipe, recipe.network) + relatives("Made of", recipe.uses)},
        {"edges", "Edge cases", paragraph(catalog, recipe, recipe.edges), true},
        {"example", "Example", example(catalog, exhibits, recipe)},
        {"declaration", "Declaration", declared(catalog, recipe, "recipes.mi", recipe.declaration)},
        {"related", "See also", related(catalog, group, recipe)},
    };
}

static Html step(std::string_view name, std::string_view relation, std::string_view title)
{
    return html(R"(<a rel="{}" href="{}.html"><small>{}</small> {}</a>
)",
                relation, name, title, breakable(name));
}

/// Links to what stands before and behind a shader or a recipe.
template <class Kind>
static Html steps(const Catalog& catalog, const Kind& here)
{
    Html all;
    if (const Kind* const previous = catalog.neighbour(here, -1))
        all += step(previous->name, "prev", "Previous");
    if (const Kind* const next = catalog.neighbour(here, +1))
        all += step(next->name, "next", "Next");
    return all;
}

/// The page of a shader or a recipe. Sections with nothing in them are left out.
static std::string subjectPage(const Catalog& catalog, const Exhibits& exhibits, const Subject& subject,
                               const Place& place, const Html& path, std::span<const Section> sections,
                               const Html& steps)
{
    Html items, parts;
    for (const Section& section : sections) {
        if (section.content.empty())
            continue;
        items += html(R"(<li><a href="#{}">{}</a></li>
)",
                      section.id, section.title);
        parts += html(R"(<section{} aria-labelledby="{}">
<h2 id="{}">{}</h2>
<div>
{}</div>
</section>
)",
                      section.isShort ? html(R"( class="short")") : Html(), section.id, section.id,
                      section.title, section.content);
    }
    return wholePage(subject.name + " - vhl", subject.text, navigation(catalog, place),
                     html(R"(<nav class="path" aria-label="Path"><a href="index.html">Reference</a> /
{}</nav>
<div class="opening">
<div>
<h1>{}</h1>
<p class="lead">{}</p>
<p class="facts">{} <span>version {}</span></p>
</div>
{}</div>
<nav class="contents" aria-label="On this page">
<ul>
{}</ul>
</nav>
{}<nav class="steps" aria-label="Previous and next">
{}</nav>
)",
                          path, breakable(subject.name), line(catalog, subject, subject.text),
                          type(subject.result), std::size_t(subject.version),
                          figure(catalog, exhibits, subject), items, parts, steps));
}

std::string shaderPage(const Catalog& catalog, const Exhibits& exhibits, const Shader& shader)
{
    const Subject subject = subjectOf(shader);
    const Group& group = catalog.groupOf(shader);
    return subjectPage(catalog, exhibits, subject, {.page = shader.name, .group = &group},
                       html(R"(<a href="{}.html">{}</a>)", group.name, group.title),
                       sections(catalog, exhibits, shader, subject), steps(catalog, shader));
}

std::string recipePage(const Catalog& catalog, const Exhibits& exhibits, const RecipeGroup& group,
                       const Recipe& recipe)
{
    return subjectPage(catalog, exhibits, recipe, {.page = recipe.name, .recipes = &group},
                       html(R"(<a href="{}.html">Recipes</a> / <a href="{}.html#{}">{}</a>)", recipesFile,
                            recipesFile, anchor(group), group.title),
                       sections(catalog, exhibits, group, recipe), steps(catalog, recipe));
}

/// A text of one line as a string of a script.
static std::string scriptString(std::string_view text)
{
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\')
            quoted += '\\';
        quoted += c;
    }
    return quoted + '"';
}

static std::string searchEntry(const Subject& subject, std::string_view group)
{
    std::string names;
    for (const Parameter& parameter : subject.parameters)
        names += (names.empty() ? "" : " ") + parameter.name;
    return '[' + scriptString(subject.name) + ", " + scriptString(group) + ", " +
           scriptString(subject.result) + ", " + scriptString(subject.text) + ", " + scriptString(names) +
           "],\n";
}

std::string searchIndex(const Catalog& catalog)
{
    std::string text = "// SPDX-License-Identifier: BSD-3-Clause\n"
                       "// Every shader and every recipe: name, group, result, description, parameters.\n"
                       "const shaders = [\n";
    for (const Shader* shader : catalog.shaders())
        text += searchEntry(subjectOf(*shader), catalog.groupOf(*shader).title);
    text += "];\nconst recipes = [\n";
    for (const RecipeGroup& group : catalog.recipeGroups())
        for (const Recipe& recipe : group.recipes)
            text += searchEntry(recipe, group.title);
    return text + "];\n";
}

} // namespace declare
