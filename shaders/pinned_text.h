// SPDX-License-Identifier: BSD-3-Clause
// The text of a string parameter.
#pragma once

#include <shader.h>

namespace VHL {

/// The text behind a string's tag, pinned while this object lives. The null tag is what scenes give for an
/// empty text; there is nothing to pin then.
class PinnedText {
public:
    explicit PinnedText(miTag tag)
        : tag_(tag), text_(tag == miNULLTAG ? "" : static_cast<const char*>(mi_db_access(tag)))
    {
    }
    ~PinnedText()
    {
        if (tag_ != miNULLTAG)
            mi_db_unpin(tag_);
    }
    PinnedText(const PinnedText&) = delete;
    PinnedText& operator=(const PinnedText&) = delete;

    const char* get() const { return text_; }

private:
    miTag tag_;
    const char* text_;
};

} // namespace VHL
