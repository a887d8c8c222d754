// SPDX-License-Identifier: BSD-3-Clause
// Geometry shaders: what runs before the scene graph is looked at.
#pragma once

#include "host/session.h"

#include <vector>

namespace host {

/// The results of all geometry shaders below a root, in place for as long as this lives: each instance with
/// geometry shaders has their result as its item. Objects that they created are gone afterwards.
class GeometryRun {
public:
    /// Calls the shaders of each instance once, one instance after another, in this thread; their exits
    /// follow when all are done, and edits that they have left open are closed. Throws Error like rendering.
    GeometryRun(Session& session, const RenderCommand& command, const Camera& camera, const Options& options);
    ~GeometryRun();
    GeometryRun(const GeometryRun&) = delete;
    GeometryRun& operator=(const GeometryRun&) = delete;

private:
    void run(Session& session, const std::vector<Instance*>& instances, const Camera& camera,
             const Options& options);
    miTag grouped(const std::vector<miTag>& results);
    /// An instance below the root for each definition of a phenomenon that adds geometry.
    void addPhenomena(miTag root);
    void undo();

    Database& database_;
    Edits& edits_;
    miTag lastBefore_;
    miTag lastCreated_;
    std::vector<miTag> instances_;
    miTag root_ = miNULLTAG;         ///< the group that instances were added to, and
    std::vector<miTag> rootMembers_; ///< what was in it
};

} // namespace host
