// SPDX-License-Identifier: BSD-3-Clause
// Looking into a rendering: what wants to see the scene that is ready, or its shader calls.
#pragma once

#include "host/render/stage.h"
#include "host/shading/network.h"
#include "host/shading/observer.h"

namespace host {

/// One way of looking. Everything but the observers' calls happens in the thread that renders the frame.
class Inspection {
public:
    virtual ~Inspection() = default;

    /// Everything is read, resolved, loaded and laid out; sampling would begin now. False: it does not, and
    /// the frame has no picture.
    virtual bool ready(const Stage& stage, Network& network) = 0;

    /// What watches the calls of one rendering thread, counted from 0; null: nothing does. It must outlive
    /// the rendering.
    virtual Observer* observer(int) { return nullptr; }
};

} // namespace host
