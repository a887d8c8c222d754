// SPDX-License-Identifier: BSD-3-Clause
// All shader calls of one sample, in their order.
#pragma once

#include "host/render/inspection.h"

#include <string>

namespace host {

/// Takes one sample, at the centre of a pixel and when the shutter opens, in place of the picture, and notes
/// every call with its parameters and its result.
class Probe : public Inspection {
public:
    /// Calls beyond so many are left out of the tree.
    static constexpr std::size_t mostCalls = 100'000;

    /// The pixel's column and row, counted from the lower left as the camera's window is.
    Probe(int x, int y) : x_(x), y_(y) {}

    /// Throws Error for a pixel outside the picture, and what shaders throw; the tree then ends there.
    bool ready(const Stage& stage, Network& network) override;

    /// The tree, a line for each call, parameter and result.
    const std::string& text() const { return text_; }

private:
    const int x_, y_;
    std::string text_;
};

} // namespace host
