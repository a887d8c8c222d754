// SPDX-License-Identifier: BSD-3-Clause
// Checking a scene without rendering it.
#pragma once

#include "host/render/inspection.h"

#include <string>

namespace host {

/// Ends each frame when everything is read, resolved, loaded and laid out, and remembers what was found.
class SceneCheck : public Inspection {
public:
    bool ready(const Stage& stage, Network& network) override;

    /// "12 shaders, 3 materials, 2 lights, 4 objects with 120 polygons, 1 texture" of the last frame.
    const std::string& summary() const { return summary_; }

private:
    std::string summary_;
};

} // namespace host
