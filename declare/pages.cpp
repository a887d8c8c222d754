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

/// A part of a page that its list of contents names.
struct Section {
    std::string_view id, title;
    Html content;
    bool isShort = false; ///< some lines, that stand beside the title
};

static Html type(std::string_view name)
{
    return html(R"(<span class="type {}">{}</span>)", name.substr(name.rfind(' ') + 1), name);
}

static Html type(const VHL::Field& field)
{
    return field.isArray ? html("array of {}", type(typeName(field.kind))) : type(typeName(field.kind));
}

static Html picture(const Exhibits& exhibits, std::string_view shader, std::string_view described)
{
    if (!exhibits.pictures.contains(shader))
        return {};
    return html(R"(<img src="pictures/{}.png" width="240" height="180" loading="lazy" alt="{}">)", shader,
                described);
}

static Html links(const Shaders& shaders)
{
    Html items;
    for (const Shader* shader : shaders)
        items += html("<li>{}</li>\n", link(*shader));
    return html(R"(<ul class="names">
{}</ul>
)",
                items);
}

/// All groups, with the shaders of the one that the page belongs to.
static Html navigation(const Catalog& catalog, const Group* open, std::string_view page)
{
    const auto item = [&](std::string_view name, const Html& title, const Html& below) {
        return html("<li><a href=\"{}.html\"{}>{}</a>{}</li>\n", name,
                    name == page ? html(R"( aria-current="page")") : Html(), title, below);
    };
    const auto inside = [&](const Group& group) {
        Html items;
        for (const Shader* shader : group.shaders)
            items += item(shader->name, breakable(shader->name), {});
        return html("\n<ul>\n{}</ul>\n", items);
    };
    Html items;
    for (const Group& group : catalog.groups())
        items += item(group.name, html("{} <small>{}</small>", group.title, group.shaders.size()),
                      &group == open ? inside(group) : Html());
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
<input id="query" type="search" placeholder="Search shaders, words, parameters"
 aria-label="Search the reference" role="combobox" aria-expanded="false" aria-controls="found"
 aria-autocomplete="list" autocomplete="off" spellcheck="false">
<kbd aria-hidden="true">/</kbd>
<div id="found" role="listbox" aria-label="Shaders found" hidden></div>
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

static Html card(const Exhibits& exhibits, std::string_view pictured, std::string_view page,
                 const Html& title, const Html& text)
{
    return html(R"(<li>{}<h2><a href="{}.html">{}</a></h2>
<p>{}</p></li>
)",
                picture(exhibits, pictured, ""), page, title, text);
}

std::string groupPage(const Catalog& catalog, const Exhibits& exhibits, const Group& group)
{
    Html cards;
    for (const Shader* shader : group.shaders)
        cards +=
            card(exhibits, shader->name, shader->name, breakable(shader->name),
                 html("{} {}", type(typeName(shader->result)), line(catalog, *shader, shader->about.text)));
    return wholePage(std::string(group.title) + " - vhl", group.about,
                     navigation(catalog, &group, group.name),
                     html(R"(<nav class="path" aria-label="Path"><a href="index.html">Reference</a></nav>
<h1>{}</h1>
<p class="lead">{}</p>
<ul class="cards">
{}</ul>
)",
                          group.title, group.about, cards));
}

std::string startPage(const Catalog& catalog, const Exhibits& exhibits)
{
    Html cards;
    for (const Group& group : catalog.groups())
        cards += card(exhibits, group.cover, group.name,
                      html("{} <small>{}</small>", group.title, group.shaders.size()), group.about);

    Shaders byName = catalog.shaders();
    std::ranges::sort(byName, {}, &Shader::name);
    Html rows;
    for (const Shader* shader : byName)
        rows +=
            html(R"(<tr><th scope="row">{}</th><td>{}</td><td>{}</td></tr>
)",
                 link(*shader), type(typeName(shader->result)), line(catalog, *shader, shader->about.text));

    return wholePage("vhl shader reference", "All shaders of the library, by what they are for.",
                     navigation(catalog, nullptr, "index"),
                     html(R"(<h1>Shader reference</h1>
<p class="lead">Small shaders that compose: {} of them, each with its parameters, the order in which it
evaluates them, what it does at the edges, and a scene to copy.</p>
<pre tabindex="0"><code>{}</code></pre>
<ul class="cards">
{}</ul>
<h2 id="all">All shaders</h2>
{})",
                          byName.size(), scene(catalog, nullptr, "link \"libvhl.so\"\n$include <vhl.mi>\n"),
                          cards,
                          table("all", std::array<Html, 3>{"Shader", "Result", "What it does"}, rows)));
}

static Html parameters(const Catalog& catalog, const Shader& shader)
{
    Html rows;
    for (const VHL::Field& field : shader.fields) {
        const char* const name = field.name.text.data();
        const std::string standard = defaultText(field);
        rows += html(R"(<tr id="p-{}"><th scope="row"><a href="#p-{}"><code>{}</code></a></th>
<td data-label="Type">{}</td><td data-label="Default">{}</td><td data-label="Range">{}</td><td>{}</td></tr>
)",
                     name, name, name, type(field), standard.empty() ? "none" : standard, rangeText(field),
                     line(catalog, shader, field.about));
    }
    return table("parameters", std::array<Html, 5>{"Parameter", "Type", "Default", "Range", "Meaning"}, rows);
}

static Html result(const Catalog& catalog, const Shader& shader)
{
    Html all = html("<p>{}, offered as {}.</p>\n", type(typeName(shader.result)), applyText(shader));
    if (shader.members.empty())
        return all;
    Html rows;
    for (const VHL::Field& member : shader.members)
        rows += html(R"(<tr><th scope="row"><code>{}</code></th><td data-label="Type">{}</td><td>{}</td></tr>
)",
                     member.name.text.data(), type(member), line(catalog, shader, member.about));
    all += table("members", std::array<Html, 3>{"Member", "Type", "Meaning"}, rows);
    return all;
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
static Html example(const Catalog& catalog, const Exhibits& exhibits, const Shader& shader)
{
    const auto found = exhibits.scenes.find(shader.name);
    if (found == exhibits.scenes.end())
        return {};
    const auto& [text, whole] = found->second;
    const Html file = html("{}.mi", shader.name);
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
        copyable(link, scene(catalog, &shader, text), "whole"), scene(catalog, &shader, whole.text));
}

static Html figure(const Catalog& catalog, const Exhibits& exhibits, const Shader& shader)
{
    const Html shown = picture(exhibits, shader.name, "Rendered with " + std::string(shader.name));
    if (shown.empty())
        return {};
    const auto scene = exhibits.scenes.find(shader.name);
    const std::string caption = scene == exhibits.scenes.end() ? "" : captionOf(scene->second.text);
    return html("<figure>{}<figcaption>{}</figcaption></figure>\n", shown, line(catalog, shader, caption));
}

static Html relatives(const Catalog& catalog, const Shader& shader)
{
    Html all;
    std::set<const Shader*> shown = {&shader};
    const auto unseen = [&](Shaders shaders) {
        std::erase_if(shaders, [&](const Shader* other) { return !shown.insert(other).second; });
        return shaders;
    };
    for (const auto& [title, shaders] : {std::pair("Other versions", catalog.versions(shader)),
                                         std::pair("The same for other types", catalog.siblings(shader)),
                                         std::pair("Goes with", catalog.companions(shader))})
        if (const Shaders rest = unseen(shaders); !rest.empty())
            all += html("<h3>{}</h3>\n{}", title, links(rest));
    if (const Shaders rest = unseen(catalog.groupOf(shader).shaders); !rest.empty())
        all += html("<details{}><summary>More of the group</summary>\n{}</details>\n",
                    all.empty() ? html(" open") : Html(), links(rest));
    return all;
}

/// The parts of a shader's page; those with nothing in them are left out.
static std::vector<Section> sections(const Catalog& catalog, const Exhibits& exhibits, const Shader& shader)
{
    const auto words = [&](std::string_view text, Names names = Names::unmistakable) {
        return text.empty() ? Html() : html("<p>{}</p>\n", line(catalog, shader, text, names));
    };
    std::vector<Section> all = {
        {"parameters", "Parameters", parameters(catalog, shader)},
        {"result", "Result", result(catalog, shader), shader.members.empty()},
        {"evaluation", "Evaluation", words(shader.about.order, Names::all), true},
        {"edges", "Edge cases", words(shader.about.edges), true},
        {"messages", "Messages", words(shader.about.messages.empty() ? "None." : shader.about.messages),
         true},
        {"notes", "Notes", blocks(catalog, shader, shader.about.notes)},
        {"example", "Example", example(catalog, exhibits, shader)},
        {"declaration", "Declaration",
         copyable(html("<span>vhl.mi</span>"), scene(catalog, &shader, declaration(shader)), "")},
        {"related", "See also", relatives(catalog, shader)},
    };
    std::erase_if(all, [](const Section& section) { return section.content.empty(); });
    return all;
}

static Html step(const Shader* shader, std::string_view relation, std::string_view title)
{
    return shader ? html(R"(<a rel="{}" href="{}.html"><small>{}</small> {}</a>
)",
                         relation, shader->name, title, breakable(shader->name))
                  : Html();
}

std::string shaderPage(const Catalog& catalog, const Exhibits& exhibits, const Shader& shader)
{
    const Group& group = catalog.groupOf(shader);
    Html contents, parts;
    for (const Section& section : sections(catalog, exhibits, shader)) {
        contents += html(R"(<li><a href="#{}">{}</a></li>
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
    return wholePage(
        std::string(shader.name) + " - vhl", shader.about.text, navigation(catalog, &group, shader.name),
        html(R"(<nav class="path" aria-label="Path"><a href="index.html">Reference</a> /
<a href="{}.html">{}</a></nav>
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
{}{}</nav>
)",
             group.name, group.title, breakable(shader.name), line(catalog, shader, shader.about.text),
             type(typeName(shader.result)), std::size_t(shader.version), figure(catalog, exhibits, shader),
             contents, parts, step(catalog.neighbour(shader, -1), "prev", "Previous"),
             step(catalog.neighbour(shader, +1), "next", "Next")));
}

/// A text of printable ASCII as a string of a script.
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

std::string searchIndex(const Catalog& catalog)
{
    std::string text = "// SPDX-License-Identifier: BSD-3-Clause\n"
                       "// Every shader: name, group, result, description, parameters.\n"
                       "const shaders = [\n";
    for (const Shader* shader : catalog.shaders()) {
        std::string fields;
        for (const VHL::Field& field : shader->fields)
            fields += (fields.empty() ? "" : " ") + std::string(field.name.text.data());
        text += '[' + scriptString(shader->name) + ", " + scriptString(catalog.groupOf(*shader).title) +
                ", " + scriptString(typeName(shader->result)) + ", " + scriptString(shader->about.text) +
                ", " + scriptString(fields) + "],\n";
    }
    return text + "];\n";
}

} // namespace declare
