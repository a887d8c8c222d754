// SPDX-License-Identifier: BSD-3-Clause
// Mixers: the weighted sum of 2, 4, 8 or 16 slots, each with a switch of its own.

#include "core/evaluate.h"
#include "core/export.h"

#include <array>
#include <span>

namespace {

/// A slot that is left out adds 0; one whose input is given counts in full.
template <class T>
struct Slot {
    T input;
    miScalar weight;
    miBoolean enable;

    static constexpr auto fields()
    {
        return std::array{
            VHL_FIELD(Slot, input, "Value of the slot; left out, it adds nothing."),
            VHL_FIELD(Slot, weight, "Factor of the slot. Negative ones subtract; weights need not sum to 1.")
                .by(1),
            VHL_FIELD_AS(Slot, boolean, enable,
                         "On: the slot takes part. Off: neither its input nor its weight is evaluated.")
                .by(1)};
    }
};

template <class T, std::size_t count>
struct Slots {
    Slot<T> slot[count];

    static constexpr auto fields() { return VHL::numbered<Slot<T>, count>(); }
};

/// Product first, then sum, slot by slot in single precision, which fixes the rounding. There is deliberately
/// no division by the sum of the weights: scenes that want an average give weights that sum to 1. One loop
/// for all counts, which is also what lets the compiler sum a colour's channels together.
template <class T>
int mix(T* result, miState* state, std::span<Slot<T>> slots)
{
    VHL::Value<T> sum = 0.0f;
    for (Slot<T>& slot : slots) {
        const bool enable = VHL::evaluate(state, slot.enable);
        if (!enable)
            continue;
        const VHL::Value<T> input = VHL::evaluate(state, slot.input);
        const float weight = VHL::evaluate(state, slot.weight);
        sum = sum + input * VHL::Value<T>(weight);
    }
    *result = sum;
    return 1;
}

} // namespace

static constexpr const char* order =
    "Slot by slot: enable and, only while it is on, input, then weight; each once. A slot that is on is "
    "evaluated whatever its weight is.";
static constexpr const char* edges =
    "With all slots off every component is 0, alpha too. A NaN gives NaN, as do an infinity of weight 0 and "
    "infinities of opposite signs.";

// The twelve differ in kind and count alone.
#define MIXER(Name, T, count)                                                                                \
    struct _vhMixer##Name##count##Params : Slots<T, count> {};                                               \
    struct vhMixer##Name##count final : VHL::dMentalRayShader<T, _vhMixer##Name##count##Params, 1> {         \
        int execute(T* result, miState* state, Params* params) override                                      \
        {                                                                                                    \
            return mix<T>(result, state, params->slot);                                                      \
        }                                                                                                    \
    };                                                                                                       \
    VHL_EXPORT_SHADER(vhMixer##Name##count##_v1, vhMixer##Name##count,                                       \
                      "Sum of weight times input over the " #count                                           \
                      " slots that are switched on, in their order; neither divided nor clamped.",           \
                      .order = order, .edges = edges)

MIXER(Color, miColor, 2)
MIXER(Color, miColor, 4)
MIXER(Color, miColor, 8)
MIXER(Color, miColor, 16)
MIXER(Scalar, miScalar, 2)
MIXER(Scalar, miScalar, 4)
MIXER(Scalar, miScalar, 8)
MIXER(Scalar, miScalar, 16)
MIXER(Vector, miVector, 2)
MIXER(Vector, miVector, 4)
MIXER(Vector, miVector, 8)
MIXER(Vector, miVector, 16)
#undef MIXER
