// SPDX-License-Identifier: BSD-3-Clause
// The declaration file.
#include "declare/shaders.h"
#include "declare/write.h"

namespace declare {

static const char* const header = R"(# SPDX-License-Identifier: BSD-3-Clause
#
# Declarations of the shaders in libvhl.so. In a scene:
#
#     link "libvhl.so"
#     $include <vhl.mi>
#
# Written from the shaders' sources by `cmake --build <build> --target declarations`: change those, not this file.
# Comments with a colon after the hash are hints for applications.

$ifndef "vhl_mi"
set "vhl_mi"
)";

/// An application knows three numbers of a default; a transform has no use for any.
static std::string hints(const VHL::Field& field)
{
    std::string hints;
    if (const std::string standard = defaultText(field, 3);
        !standard.empty() && field.kind != VHL::Kind::transform)
        hints += " default " + standard;
    if (field.least)
        hints += " min " + number(*field.least);
    if (field.most)
        hints += " max " + number(*field.most);
    return hints.empty() ? "" : "  #:" + hints;
}

static std::string parameter(const VHL::Field& field, bool last)
{
    std::string line = field.isArray ? "array " : "";
    line += std::string(typeName(field.kind)) + " \"" + field.name.text.data() + '"';
    if (const std::string standard = defaultText(field); !standard.empty())
        line += " default " + standard;
    return "        # " + std::string(field.about) + "\n        " + line + (last ? "" : ",") + hints(field) +
           '\n';
}

/// The result's type: a word, or a structure with its members.
static std::string result(const VHL::Description& shader)
{
    std::string text(typeName(shader.result));
    for (const VHL::Field& member : shader.members)
        text += std::string(&member == &shader.members.front() ? " { " : ", ") +
                std::string(typeName(member.kind)) + " \"" + member.name.text.data() + '"';
    return shader.members.empty() ? text : text + " }";
}

std::string declaration(const VHL::Description& shader)
{
    std::string text = "# " + std::string(shader.about.text) + "\ndeclare shader\n    " + result(shader) +
                       " \"" + std::string(shader.name) + "\" (\n";
    for (const VHL::Field& field : shader.fields)
        text += parameter(field, &field == &shader.fields.back());
    return text + "    )\n    version " + std::to_string(shader.version) + "\n    apply " +
           std::string(applyText(shader)) + "\nend declare\n";
}

std::string declarations(std::span<const VHL::Description> shaders)
{
    std::string text = header;
    std::string_view unit;
    for (const VHL::Description& shader : shaders) {
        if (shader.unit != unit)
            text += "\n# ---- " + std::string(unit = shader.unit) + " ----\n";
        text += '\n' + declaration(shader);
    }
    return text + "\n$endif\n";
}

} // namespace declare
