// SPDX-License-Identifier: BSD-3-Clause
// Descriptions, notes and scenes as HTML: shaders and recipes that they name become links.
#pragma once

#include "declare/catalog.h"
#include "declare/html.h"

#include <span>
#include <string_view>

namespace declare {

/// Which of its subject's own parameters a text is sure to name: those that cannot be mistaken for words, as
/// input1 and useAlpha, or all, as where it tells what is evaluated.
enum class Names { unmistakable, all };

/// One line of text, with `code` and the names of shaders and parameters.
Html line(const Catalog& catalog, const Subject& subject, std::string_view text,
          Names names = Names::unmistakable);

/// Markdown as far as notes use it: paragraphs, lists of one level, tables, blocks of code.
Html blocks(const Catalog& catalog, const Subject& subject, std::string_view markdown);

/// A table of a kind that the style knows, empty for none; its rows are HTML already.
Html table(std::string_view kind, std::span<const Html> heads, const Html& rows);

/// Scene text, its comments, strings and words told apart, for the page of a subject.
Html scene(const Catalog& catalog, const Subject& subject, std::string_view text);

/// A shader's or recipe's name as a link to its page, in pieces that a narrow column may break.
Html link(std::string_view name);
Html breakable(std::string_view name);

} // namespace declare
