// SPDX-License-Identifier: BSD-3-Clause
// The shading networks of a scene as a drawing.
#pragma once

#include "host/render/inspection.h"

#include <string>

namespace host {

/// Writes every shader instance that the rendering can reach as a Graphviz file: its parameters with literal
/// values, an edge for each connection, and the cameras, lights and materials that call it. Networks that
/// nothing calls are not in it. Of several frames, the last one's stays.
class Graph : public Inspection {
public:
    explicit Graph(std::string file) : file_(std::move(file)) {}

    /// Writes the file, complete or not at all. Throws Error when it cannot.
    bool ready(const Stage& stage, Network& network) override;

    /// The text of the file.
    static std::string text(const Stage& stage, const Network& network);

private:
    std::string file_;
};

} // namespace host
