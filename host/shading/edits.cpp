// SPDX-License-Identifier: BSD-3-Clause
#include "host/shading/edits.h"

#include "host/report/message.h"

#include <algorithm>

namespace host {

bool Edits::end(miTag tag)
{
    const auto last =
        std::find_if(open_.rbegin(), open_.rend(), [tag](const Edit& edit) { return edit.tag == tag; });
    if (last == open_.rend())
        return false;
    open_.erase(std::next(last).base());
    return true;
}

void Edits::close(Database& database)
{
    std::vector<Edit> left;
    left.swap(open_);
    for (auto edit = left.begin(); edit != left.end();) {
        Function* const editor = edit->editor;
        const auto others = std::stable_partition(
            edit, left.end(), [editor](const Edit& other) { return other.editor == editor; });
        std::string elements;
        const auto count = others - edit;
        for (; edit != others; ++edit) {
            database.unpin(edit->tag);
            if (const Element* const element = database.find(edit->tag))
                elements += (elements.empty() ? ", of " : " and ") + std::string(kindName(element->kind)) +
                            ' ' + inQuotes(element->name);
        }
        message(Level::error, "RC",
                (editor ? editor->title() : std::string("a shader")) + ": left " +
                    (count == 1 ? "an edit" : std::to_string(count) + " edits") + " open" + elements + "; " +
                    (count == 1 ? "it is" : "they are") + " closed");
    }
}

} // namespace host
