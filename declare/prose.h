// SPDX-License-Identifier: BSD-3-Clause
// Descriptions, notes and scenes as HTML: shaders that they name become links.
#pragma once

#include "declare/catalog.h"
#include "declare/html.h"

#include <string_view>

namespace declare {

/// One line of text: `code`, names of shaders, and names of the shader's own parameters where they cannot be
/// mistaken for words.
Html line(const Catalog& catalog, const Shader& shader, std::string_view text);

/// Markdown as far as notes use it: paragraphs, lists of one level, tables, blocks of code.
Html blocks(const Catalog& catalog, const Shader& shader, std::string_view markdown);

/// Scene text, its comments, strings and words told apart, for the page of a shader, or of none.
Html scene(const Catalog& catalog, const Shader* shader, std::string_view text);

/// A shader's name as a link to its page, in pieces that a narrow column may break.
Html link(const Shader& shader);
Html breakable(std::string_view name);

} // namespace declare
