// SPDX-License-Identifier: BSD-3-Clause
// Comparison: whether the object being shaded bears a name.

#include "core/export.h"
#include "shaders/decisions.h"
#include "shaders/instance_name.h"
#include "shaders/pinned_text.h"

#include "core/evaluate.h"

#include <boost/algorithm/string/case_conv.hpp>

#include <array>
#include <string>

struct _vhIsObjectParams {
    miTag objectName;

    static constexpr auto fields()
    {
        return std::array{
            VHL_FIELD_AS(_vhIsObjectParams, string, objectName,
                         "Name of the instance; upper and lower case are the same. No wildcards. Empty: "
                         "instances without a name.")};
    }
};

struct vhIsObject final : VHL::dMentalRayShader<miBoolean, _vhIsObjectParams, 1> {
    void init(miState* state, Params* params) override
    {
        decisions.clear();
        if (const miTag* const name = VHL::evaluateAddress(state, params->objectName))
            lowerName = boost::algorithm::to_lower_copy(std::string(VHL::PinnedText(*name).get()));
    }

    void exit(miState*, Params*) override { decisions.clear(); }

    /// An instance is named and compared at its first sample.
    int execute(miBoolean* result, miState* state, Params*) override
    {
        if (const auto known = decisions.find(state->instance)) {
            *result = miBoolean(*known);
            return 1;
        }
        const VHL::ShadedInstance shaded(state);
        const std::string name = boost::algorithm::to_lower_copy(std::string(shaded.name()));
        *result = miBoolean(decisions.insert(state->instance, name == lowerName).answer);
        return 1;
    }

private:
    VHL::Decisions decisions; ///< 1 for instances that bear the name, 0 for others
    std::string lowerName;
};

VHL_EXPORT_SHADER(
    vhIsObject_v1, vhIsObject,
    "Whether the instance being shaded bears the name, letter by letter but for upper and lower "
    "case. Asked once for each instance; later samples know.",
    .result = VHL::Kind::boolean)
