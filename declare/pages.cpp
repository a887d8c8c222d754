// SPDX-License-Identifier: BSD-3-Clause
#include "declare/pages.h"

#include "declare/html.h"
#include "declare/prose.h"
#include "declare/shaders.h"
#include "declare/write.h"

#include <algorithm>

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
    return html("<ul class=\"names\">\n{}</ul>\n", items);
}

/// All groups, with the shaders of the one that the page belongs to.
static Html navigation(const Catalog& catalog, const Group* open, std::string_view page)
{
    const auto current = [&](std::string_view name) {
        return name == page ? html(R"( aria-current="page")") : Html();
    };
    Html items;
    for (const Group& group : catalog.groups()) {
        Html inside;
        if (&group == open) {
            for (const Shader* shader : group.shaders)
                inside += html("<li><a href=\"{}.html\"{}>{}</a></li>\n", shader->name, current(shader->name),
                               breakable(shader->name));
            inside = html("\n<ul>\n{}</ul>\n", inside);
        }
        items += html("<li><a href=\"{}.html\"{}>{} <small>{}</small></a>{}</li>\n", group.name,
                      current(group.name), group.title, group.shaders.size(), inside);
    }
    return html("<nav class=\"groups\" id=\"groups\" aria-label=\"Groups\">\n<ul>\n{}</ul>\n</nav>\n", items);
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
<a class="home" href="index.html"><img src="assets/icon.svg" width="28" height="28" alt="">vhl <span>Shader reference</span></a>
<search id="search" hidden>
<input id="query" type="search" placeholder="Search shaders, words, parameters" aria-label="Search the reference"
 role="combobox" aria-expanded="false" aria-controls="found" aria-autocomplete="list" autocomplete="off" spellcheck="false">
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

static Html card(const Catalog& catalog, const Exhibits& exhibits, const Shader& shader)
{
    return html("<li>{}<h2><a href=\"{}.html\">{}</a></h2>\n<p>{} {}</p></li>\n",
                picture(exhibits, shader.name, ""), shader.name, breakable(shader.name),
                type(typeName(shader.result)), line(catalog, shader, shader.about.text));
}

std::string groupPage(const Catalog& catalog, const Exhibits& exhibits, const Group& group)
{
    Html cards;
    for (const Shader* shader : group.shaders)
        cards += card(catalog, exhibits, *shader);
    return wholePage(
        std::string(group.title) + " - vhl", group.about, navigation(catalog, &group, group.name),
        html("<nav class=\"path\" aria-label=\"Path\"><a href=\"index.html\">Reference</a></nav>\n"
             "<h1>{}</h1>\n<p class=\"lead\">{}</p>\n<ul class=\"cards\">\n{}</ul>\n",
             group.title, group.about, cards));
}

std::string startPage(const Catalog& catalog, const Exhibits& exhibits)
{
    Html cards;
    for (const Group& group : catalog.groups())
        cards += html("<li>{}<h2><a href=\"{}.html\">{}</a> <small>{}</small></h2>\n<p>{}</p></li>\n",
                      picture(exhibits, group.cover, ""), group.name, group.title, group.shaders.size(),
                      group.about);

    Shaders byName = catalog.shaders();
    std::ranges::sort(byName, {}, &Shader::name);
    Html rows;
    for (const Shader* shader : byName)
        rows += html("<tr><th scope=\"row\">{}</th><td>{}</td><td>{}</td></tr>\n", link(*shader),
                     type(typeName(shader->result)), line(catalog, *shader, shader->about.text));

    return wholePage("vhl shader reference", "All shaders of the library, by what they are for.",
                     navigation(catalog, nullptr, "index"),
                     html(R"(<h1>Shader reference</h1>
<p class="lead">Small shaders that compose: {} of them, each with its parameters, the order in which it evaluates them,
what it does at the edges, and a scene to copy.</p>
<pre tabindex="0"><code>{}</code></pre>
<ul class="cards">
{}</ul>
<h2 id="all">All shaders</h2>
<table class="all">
<thead><tr><th scope="col">Shader</th><th scope="col">Result</th><th scope="col">What it does</th></tr></thead>
<tbody>
{}</tbody>
</table>
)",
                          byName.size(), scene(catalog, nullptr, "link \"libvhl.so\"\n$include <vhl.mi>\n"),
                          cards, rows));
}

static Html parameters(const Catalog& catalog, const Shader& shader)
{
    Html rows;
    for (const VHL::Field& field : shader.fields) {
        const std::string standard = defaultText(field);
        const char* const name = field.name.text.data();
        rows +=
            html(R"(<tr id="p-{}"><th scope="row"><a href="#p-{}"><code>{}</code></a></th>)", name, name,
                 name) +
            html(
                R"(<td data-label="Type">{}</td><td data-label="Default">{}</td><td data-label="Range">{}</td>)",
                type(field), standard.empty() ? "none" : standard, rangeText(field)) +
            html("<td>{}</td></tr>\n", line(catalog, shader, field.about));
    }
    return html(
        "<table class=\"parameters\">\n<thead><tr><th scope=\"col\">Parameter</th><th scope=\"col\">Type</th>"
        "<th scope=\"col\">Default</th><th scope=\"col\">Range</th><th "
        "scope=\"col\">Meaning</th></tr></thead>\n"
        "<tbody>\n{}</tbody>\n</table>\n",
        rows);
}

static Html result(const Catalog& catalog, const Shader& shader)
{
    Html all = html("<p>{}, offered as {}.</p>\n", type(typeName(shader.result)), applyText(shader));
    if (shader.members.empty())
        return all;
    Html rows;
    for (const VHL::Field& member : shader.members)
        rows += html(
            "<tr><th scope=\"row\"><code>{}</code></th><td data-label=\"Type\">{}</td><td>{}</td></tr>\n",
            member.name.text.data(), type(member), line(catalog, shader, member.about));
    all +=
        html("<table class=\"members\">\n<thead><tr><th scope=\"col\">Member</th><th scope=\"col\">Type</th>"
             "<th scope=\"col\">Meaning</th></tr></thead>\n<tbody>\n{}</tbody>\n</table>\n",
             rows);
    return all;
}

/// Scene text under a bar with its name and a button, which the script shows where it can copy.
static Html copyable(const Catalog& catalog, const Shader& shader, const Html& title, std::string_view text)
{
    return html("<div class=\"copyable\"><div>{}<button type=\"button\" hidden>Copy</button></div>\n"
                "<pre tabindex=\"0\"><code>{}</code></pre></div>\n",
                title, scene(catalog, &shader, text));
}

static Html example(const Catalog& catalog, const Exhibits& exhibits, const Shader& shader)
{
    const auto found = exhibits.scenes.find(shader.name);
    if (found == exhibits.scenes.end())
        return {};
    return html("<p>Rendered in this page's folder by <code>vhrender "
                "scenes/{}.mi</code></p>\n{}",
                shader.name,
                copyable(catalog, shader,
                         html(R"(<a href="scenes/{}.mi">{}.mi</a>)", shader.name, shader.name),
                         found->second));
}

static Html figure(const Catalog& catalog, const Exhibits& exhibits, const Shader& shader)
{
    const Html shown = picture(exhibits, shader.name, "Rendered with " + std::string(shader.name));
    if (shown.empty())
        return {};
    const auto scene = exhibits.scenes.find(shader.name);
    const std::string caption = scene == exhibits.scenes.end() ? "" : captionOf(scene->second);
    return html("<figure>{}<figcaption>{}</figcaption></figure>\n", shown, line(catalog, shader, caption));
}

static Html relatives(const Catalog& catalog, const Shader& shader)
{
    Html all;
    std::set<const Shader*> shown = {&shader};
    const auto add = [&](std::string_view title, Shaders shaders) {
        std::erase_if(shaders, [&](const Shader* other) { return !shown.insert(other).second; });
        if (!shaders.empty())
            all += html("<h3>{}</h3>\n{}", title, links(shaders));
    };
    add("Other versions", catalog.versions(shader));
    add("The same for other types", catalog.siblings(shader));
    add("More of the group", catalog.groupOf(shader).shaders);
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
         copyable(catalog, shader, html("<span>vhl.mi</span>"), declaration(shader))},
        {"related", "See also", relatives(catalog, shader)},
    };
    std::erase_if(all, [](const Section& section) { return section.content.empty(); });
    return all;
}

static Html step(const Shader* shader, Pattern<2> pattern)
{
    return shader ? html(pattern, shader->name, breakable(shader->name)) : Html();
}

std::string shaderPage(const Catalog& catalog, const Exhibits& exhibits, const Shader& shader)
{
    const Group& group = catalog.groupOf(shader);
    Html contents, parts;
    for (const Section& section : sections(catalog, exhibits, shader)) {
        contents += html("<li><a href=\"#{}\">{}</a></li>\n", section.id, section.title);
        parts += html("<section{} aria-labelledby=\"{}\">\n<h2 id=\"{}\">{}</h2>\n{}</section>\n",
                      section.isShort ? html(R"( class="short")") : Html(), section.id, section.id,
                      section.title, html("<div>\n{}</div>\n", section.content));
    }
    return wholePage(
        std::string(shader.name) + " - vhl", shader.about.text, navigation(catalog, &group, shader.name),
        html(
            R"(<nav class="path" aria-label="Path"><a href="index.html">Reference</a> / <a href="{}.html">{}</a></nav>
<div class="opening">
<div>
<h1>{}</h1>
<p class="lead">{}</p>
<p class="facts">{} <span>version {}</span></p>
</div>
{}</div>
)",
            group.name, group.title, breakable(shader.name), line(catalog, shader, shader.about.text),
            type(typeName(shader.result)), std::size_t(shader.version), figure(catalog, exhibits, shader)) +
            html("<nav class=\"contents\" aria-label=\"On this page\">\n<ul>\n{}</ul>\n</nav>\n{}"
                 "<nav class=\"steps\" aria-label=\"Previous and next\">\n{}{}</nav>\n",
                 contents, parts,
                 step(catalog.neighbour(shader, -1),
                      "<a rel=\"prev\" href=\"{}.html\"><small>Previous</small> {}</a>\n"),
                 step(catalog.neighbour(shader, +1),
                      "<a rel=\"next\" href=\"{}.html\"><small>Next</small> {}</a>\n")));
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
