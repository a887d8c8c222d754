// SPDX-License-Identifier: BSD-3-Clause
// The reference pages.
#include "declare/shaders.h"
#include "declare/write.h"

namespace declare {

static const char* const written = "<!-- Written from the sources by `cmake --build <build> --target "
                                   "declarations`: change those, not this page. -->\n";

/// A vertical bar would end the cell.
static std::string cell(std::string_view text)
{
    std::string escaped;
    for (const char c : text) {
        if (c == '|')
            escaped += '\\';
        escaped += c;
    }
    return escaped;
}

/// What is said of one side of a shader, if anything is.
static std::string paragraph(std::string_view title, std::string_view text)
{
    return text.empty() ? "" : "\n**" + std::string(title) + ".** " + std::string(text) + '\n';
}

std::string referencePage(std::span<const VHL::Description> shaders)
{
    std::string text = "# " + std::string(shaders.front().unit) + "\n\n" + written;
    for (const VHL::Description& shader : shaders) {
        text += "\n## " + std::string(shader.name) + "\n\n" + std::string(shader.about.text) +
                "\n\nResult: " + std::string(typeName(shader.result)) + ". Version " +
                std::to_string(shader.version) + ".\n";
        if (!shader.members.empty())
            text += "\n| member | type | |\n|---|---|---|\n";
        for (const VHL::Field& member : shader.members)
            text += std::string("| `") + member.name.text.data() + "` | " +
                    std::string(typeName(member.kind)) + " | " + cell(member.about) + " |\n";
        text += "\n| parameter | type | default | range | |\n|---|---|---|---|---|\n";
        for (const VHL::Field& field : shader.fields) {
            const std::string standard = defaultText(field);
            text += std::string("| `") + field.name.text.data() + "` | " + typeText(field) + " | " +
                    (standard.empty() ? "none" : standard) + " | " + rangeText(field) + " | " +
                    cell(field.about) + " |\n";
        }
        text += paragraph("Evaluation", shader.about.order) + paragraph("Edge cases", shader.about.edges) +
                paragraph("Messages", shader.about.messages);
        if (!shader.about.notes.empty())
            text += '\n' + std::string(shader.about.notes) + '\n';
    }
    return text;
}

std::string referenceIndex(std::span<const VHL::Description> shaders)
{
    std::string text =
        std::string("# Shaders\n\n") + written +
        "\nThe same as pages for a browser, with pictures, scenes to copy and a search: "
        "`cmake --build <build> --target reference`\nwrites them to `<build>/reference/index.html`; an "
        "installation has them in `share/doc/vhl/reference`.\n"
        "\n| shader | result | |\n|---|---|---|\n";
    for (const VHL::Description& shader : shaders)
        text += "| [`" + std::string(shader.name) + "`](" + std::string(shader.unit) + ".md) | " +
                std::string(typeName(shader.result)) + " | " + cell(shader.about.text) + " |\n";
    return text;
}

} // namespace declare
