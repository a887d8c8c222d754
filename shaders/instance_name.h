// SPDX-License-Identifier: BSD-3-Clause
// The name of the object being shaded.
#pragma once

#include <geoshader.h>
#include <shader.h>

namespace VHL {

/// The instance being shaded, pinned while this object lives, and the name that users know it by: that of the
/// scene instance from which the renderer made it.
///
/// The renderer gives every path through the scene an instance of its own, without a name; many may come from
/// one scene instance. Two renderer calls and a pin: keep answers by tag rather than asking at every sample.
class ShadedInstance {
public:
    explicit ShadedInstance(const miState* state)
        : tag_(state->instance), record_(static_cast<const miInstance*>(mi_db_access(tag_)))
    {
        mi_api_tag_lookup(record_->item); // asked for as ever, though nobody uses the answer
        const char* const name = mi_api_tag_lookup(record_->parent);
        name_ = name ? name : "";
    }
    ~ShadedInstance()
    {
        if (tag_ != 0)
            mi_db_unpin(tag_);
    }
    ShadedInstance(const ShadedInstance&) = delete;
    ShadedInstance& operator=(const ShadedInstance&) = delete;

    /// Empty when there is none. The renderer's text, good while this object lives.
    const char* name() const { return name_; }

private:
    miTag tag_;
    const miInstance* record_;
    const char* name_;
};

} // namespace VHL
