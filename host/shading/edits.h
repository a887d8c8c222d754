// SPDX-License-Identifier: BSD-3-Clause
// Elements that shaders have opened for changing: mi_scene_edit.
#pragma once

#include "host/shading/function.h"

#include <vector>

namespace host {

/// Edits that are open. Used while nothing renders, in one thread.
class Edits {
public:
    /// Notes an edit of an element that has been pinned; `editor` may be null.
    void begin(miTag tag, Function* editor) { open_.push_back({tag, editor}); }

    /// Forgets the last one of this element; false when it is not being edited.
    bool end(miTag tag);

    /// Ends all that are open and gives their pins back, with one message for each shader.
    void close(Database& database);

private:
    struct Edit {
        miTag tag;
        Function* editor;
    };
    std::vector<Edit> open_;
};

} // namespace host
