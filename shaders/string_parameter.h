// SPDX-License-Identifier: BSD-3-Clause
// Texts that scenes give to shaders.
#pragma once

#include <shader.h>

#include <string>

namespace VHL {

/// The text behind a string's tag, pinned while this object lives. The null tag is what scenes give for an
/// empty text; there is nothing to pin then.
class PinnedText {
public:
    explicit PinnedText(miTag tag)
        : tag_(tag), text_(tag == 0 ? "" : static_cast<const char*>(mi_db_access(tag)))
    {
    }
    ~PinnedText()
    {
        if (tag_ != 0)
            mi_db_unpin(tag_);
    }
    PinnedText(const PinnedText&) = delete;
    PinnedText& operator=(const PinnedText&) = delete;

    const char* get() const { return text_; }

private:
    miTag tag_;
    const char* text_;
};

/// The text of a string parameter: a copy, as a renderer need not keep in place what nobody has pinned. For
/// init, as it allocates. Empty for the null tag, which is looked up all the same: whether that is a mistake
/// is the renderer's to say.
inline std::string textOf(miTag tag)
{
    const char* const text = static_cast<const char*>(mi_db_access(tag));
    std::string copy = tag != 0 && text ? text : "";
    mi_db_unpin(tag);
    return copy;
}

} // namespace VHL
