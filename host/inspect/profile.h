// SPDX-License-Identifier: BSD-3-Clause
// How often shaders are called, and the time they take.
#pragma once

#include "host/render/inspection.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace host {

/// Counts and times the calls of one rendering, in every thread by itself. Inclusive time is from a call's
/// begin to its end, whatever it calls meanwhile; exclusive time is without the calls that it brings about:
/// of connected shaders, lights, shadows and surfaces that its rays meet. What the host does for a shader,
/// tracing its rays for example, counts as the shader's own. A call that runs within another of the same
/// shader adds nothing to its inclusive time. Two readings of the clock per call make short calls look
/// longer.
class Profile : public Inspection {
public:
    struct Figures {
        std::uint64_t calls = 0;
        std::uint64_t reused = 0;   ///< times that its remembered result served instead
        std::int64_t inclusive = 0; ///< nanoseconds, as all that follow
        std::int64_t exclusive = 0;
        std::int64_t init = 0; ///< inits of the shader and the instance, inclusive

        void add(const Figures& other);
    };
    /// One shader instance; one shader: all its instances together; or one instance of a phenomenon: calls
    /// into it, their whole time as inclusive, and what is the own of all shaders inside.
    struct Row {
        std::string name;
        std::string place; ///< of the instance's definition
        Figures figures;
    };

    Profile();
    ~Profile() override;

    bool ready(const Stage& stage, Network& network) override;
    Observer* observer(int thread) override;

    /// What was measured since `ready`, longest exclusive time first. Not while anything renders. Instances
    /// that were not called are left out.
    std::vector<Row> byShader() const;
    std::vector<Row> byInstance() const;
    std::vector<Row> byPhenomenon() const;

    /// Tables for people.
    std::string text() const;

private:
    class Watch;

    std::vector<Row> rows_;            ///< of the instances in the network's order, figures still to come
    std::vector<std::size_t> shaders_; ///< which shader each is of
    std::vector<std::vector<std::size_t>> around_; ///< which phenomena each is inside of, the innermost first
    std::vector<std::string> shaderNames_;
    std::vector<std::unique_ptr<Watch>> watches_;
};

} // namespace host
