// SPDX-License-Identifier: BSD-3-Clause
#include "declare/shaders.h"

#include <algorithm>
#include <charconv>
#include <set>
#include <tuple>
#include <utility>

static std::vector<VHL::Description>& list()
{
    static std::vector<VHL::Description> list;
    return list;
}

bool VHL::declare(const Description& shader)
{
    list().push_back(shader);
    return true;
}

namespace declare {

std::vector<VHL::Description> shaders()
{
    std::vector<VHL::Description> sorted = list();
    std::ranges::sort(sorted, {}, [](const VHL::Description& s) { return std::tuple(s.unit, s.line); });
    return sorted;
}

static bool isPlain(char c) { return c >= ' ' && c <= '~'; }

static bool isOneLine(std::string_view text) { return !text.empty() && std::ranges::all_of(text, isPlain); }

/// Lines that begin and end with text, or none at all.
static bool areNotes(std::string_view text)
{
    return text.empty() || (std::ranges::all_of(text, [](char c) { return isPlain(c) || c == '\n'; }) &&
                            text.front() != '\n' && text.back() != '\n');
}

std::vector<std::string> faults(std::span<const VHL::Description> shaders)
{
    std::vector<std::string> found;
    std::set<std::string_view> names;
    for (const VHL::Description& shader : shaders) {
        const std::string name(shader.name);
        if (!names.insert(shader.name).second)
            found.push_back(name + ": exported twice");
        const VHL::About& about = shader.about;
        for (const auto& [what, text] :
             {std::pair("a description", about.text), std::pair("its order of evaluation", about.order),
              std::pair("what happens at the edges", about.edges)})
            if (!isOneLine(text))
                found.push_back(name + ": needs " + what + " in one line of ASCII");
        if (!about.messages.empty() && !isOneLine(about.messages))
            found.push_back(name + ": its messages have to be told in one line of ASCII");
        if (!areNotes(about.notes))
            found.push_back(name + ": its notes have to be lines of ASCII, none of them empty at the ends");
        for (const std::span<const VHL::Field> list : {shader.members, shader.fields})
            for (const VHL::Field& field : list)
                if (!isOneLine(field.about))
                    found.push_back(name + ": its parameter \"" + field.name.text.data() +
                                    "\" needs a description in one line of ASCII");
    }
    return found;
}

std::string_view typeName(VHL::Kind kind)
{
    using enum VHL::Kind;
    switch (kind) {
    case boolean:
        return "boolean";
    case integer:
        return "integer";
    case scalar:
        return "scalar";
    case vector:
        return "vector";
    case color:
        return "color";
    case transform:
        return "transform";
    case string:
        return "string";
    case colorTexture:
        return "color texture";
    case scalarTexture:
        return "scalar texture";
    case vectorTexture:
        return "vector texture";
    case light:
        return "light";
    case material:
        return "material";
    case geometry:
        return "geometry";
    case shader:
        return "shader";
    case structure:
        return "struct";
    }
    return "";
}

std::string number(float value)
{
    char text[32];
    const std::to_chars_result end = std::to_chars(text, text + sizeof text, value);
    return {text, end.ptr};
}

std::string typeText(const VHL::Field& field)
{
    return (field.isArray ? "array of " : "") + std::string(typeName(field.kind));
}

/// "0 to 1", "on, off".
static std::string rangeText(const VHL::Field& field)
{
    if (field.kind == VHL::Kind::boolean)
        return "on, off";
    if (!field.least && !field.most)
        return "any";
    return (field.least ? number(*field.least) : "") + " to " + (field.most ? number(*field.most) : "");
}

/// A colour may stand wherever the renderer asks for one; the others only feed shaders.
std::string_view applyText(const VHL::Description& shader)
{
    if (!shader.about.apply.empty())
        return shader.about.apply;
    return shader.result == VHL::Kind::color ? "texture, material, light, environment" : "texture";
}

std::string defaultText(const VHL::Field& field, int most)
{
    if (field.isArray)
        return "";
    const std::string one =
        field.kind == VHL::Kind::boolean ? (field.standard != 0 ? "on" : "off") : number(field.standard);
    std::string all;
    for (int i = 0; i < std::min(most, componentCount(field.kind)); ++i)
        all += (i > 0 ? " " : "") + one;
    return all;
}

Subject subjectOf(const VHL::Description& shader)
{
    Subject subject{.name = std::string(shader.name),
                    .text = std::string(shader.about.text),
                    .result = std::string(typeName(shader.result)),
                    .apply = std::string(applyText(shader)),
                    .version = shader.version};
    for (const VHL::Field& field : shader.fields) {
        const std::string standard = defaultText(field);
        subject.parameters.push_back({.name = field.name.text.data(),
                                      .type = typeText(field),
                                      .standard = standard.empty() ? "none" : standard,
                                      .range = rangeText(field),
                                      .about = std::string(field.about)});
    }
    return subject;
}

} // namespace declare
