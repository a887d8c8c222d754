// SPDX-License-Identifier: BSD-3-Clause
// Sampler: a colour averaged along a line through the point being shaded.

#include "core/evaluate.h"
#include "core/export.h"
#include "shaders/array.h"
#include "shaders/components.h"
#include "shaders/restored.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <span>
#include <vector>

struct _vhSampleStatePointParams {
    miColor input;
    miInteger samples;
    miInteger i_profile;
    miInteger n_profile;
    miScalar profile[1];
    miBoolean normalize;
    miVector start;
    miVector end;
    miScalar jitter;

    static constexpr auto fields()
    {
        using P = _vhSampleStatePointParams;
        return std::array{
            VHL_FIELD(P, input, "What is averaged; a shader to be run at each position."),
            VHL_FIELD_AS(P, integer, samples,
                         "Number of positions, evenly spaced; 0 and below give NaN. Read once, as all but "
                         "input are.")
                .by(8),
            VHL_FIELD_ARRAY(P, profile,
                            "Weights from start to end, evenly spaced and interpolated. None: all alike."),
            VHL_FIELD_AS(P, boolean, normalize,
                         "On: the weights are divided by their sum first. The result stays but for rounding: "
                         "it is divided by the weights used."),
            VHL_FIELD(P, start, "Where the line begins, from the point shaded."),
            VHL_FIELD(P, end, "Where the line ends, from the point shaded."),
            VHL_FIELD(P, jitter,
                      "Random part of the positions: 0 for regular ones, 1 for any place in a position's own "
                      "part of the line; beyond that they overlap.")
                .within(0, 1)};
    }
};

/// The weights along the line, which runs from 0 to 1: a curve, resampled so that samples need not
/// interpolate.
class Profile {
public:
    /// At least one value, evenly spaced from end to end.
    void draw(std::span<const VHL::dScalar> values, bool normalize)
    {
        const float last = static_cast<float>(values.size() - 1);
        float sum = 0;
        for (std::size_t i = 0; i < weights.size(); ++i) {
            const float t = (static_cast<float>(i) + 0.5f) / static_cast<float>(weights.size());
            const float place = last * t;
            const float low = std::floor(place);
            const float high = std::ceil(place);
            const float fraction = place - low;
            weights[i] = values[static_cast<std::size_t>(low)] * (1.0f - fraction) +
                         values[static_cast<std::size_t>(high)] * fraction;
            sum += weights[i];
        }
        if (normalize)
            for (float& weight : weights)
                weight /= sum;
    }

    /// The nearest end's weight outside the line, and the first for NaN.
    float operator()(float t) const
    {
        constexpr float last = size - 1;
        const float place = last * t;
        // Compared as a number before it becomes an index, as neither infinities nor NaN have one.
        if (!(place > 0.0f))
            return weights.front();
        return place >= last ? weights.back() : weights[static_cast<std::size_t>(place)];
    }

private:
    static constexpr std::size_t size = 255;
    std::array<float, size> weights{};
};

struct vhSampleStatePoint final : VHL::dMentalRayShader<miColor, _vhSampleStatePointParams, 1> {
    void init(miState* state, Params* params) override
    {
        samples = VHL::evaluate(state, params->samples);
        start = VHL::evaluate(state, params->start);
        const VHL::dVector end = VHL::evaluate(state, params->end);
        delta = end - start;
        jitter = VHL::evaluate(state, params->jitter);
        // Deliberately from the clock: every rendering has another jitter.
        std::srand(static_cast<unsigned>(std::time(nullptr)));
        const bool normalize = VHL::evaluate(state, params->normalize);
        const std::vector<VHL::dScalar> values =
            VHL::evaluateArray(state, params->i_profile, params->n_profile, params->profile);
        static constexpr std::array<VHL::dScalar, 2> flat{1, 1};
        profile.draw(values.empty() ? std::span<const VHL::dScalar>(flat) : values, normalize);
    }

    /// Deliberate: without samples or weights the division is by 0, and the colour not a number.
    int execute(miColor* result, miState* state, Params* params) override
    {
        const VHL::Restored point(state->point);
        const VHL::dVector shaded = point.value();
        VHL::dColor sum(0);
        float total = 0;
        for (int i = 0; i < samples; ++i) {
            const float t = position(i);
            state->point = delta * t + start + shaded;
            const VHL::dColor input = VHL::evaluate(state, params->input);
            mi_flush_cache(state); // or the next evaluation would be remembered from this one
            const float weight = profile(t);
            total += weight;
            sum += input * VHL::dColor(weight);
        }
        *result = VHL::perComponent([total](float channel) { return channel / total; }, sum);
        return 1;
    }

private:
    /// The middle of the sample's part of the line, or a random place around it.
    float position(int sample) const
    {
        const float middle = static_cast<float>((sample + 0.5) / samples);
        if (jitter == 0.0f)
            return middle;
        // Deliberately the C library's generator, which all threads share.
        const double random = std::rand() / 2147483648.0;
        return static_cast<float>(middle + 0.5 / samples * (2 * random - 1) * jitter);
    }

    int samples = 0;
    Profile profile;
    VHL::dVector start{0};
    VHL::dVector delta{0}; ///< from the line's start to its end
    float jitter = 0;
};

static constexpr const char* notes =
    R"(Whatever is wired into the input sees the state's point moved and all else as it is: textures that go by
the point blur, those that go by texture coordinates do not.

What the renderer remembers of shaders that ran at this sample is dropped after each position, so shaders that
others use as well run again for them. For the first position it may still give what it remembers from before:
let nothing else evaluate the input's shaders earlier.

Jitter takes its numbers from the generator of the C library, started from the clock when the shader is made
ready: no two renderings are the same.)";

VHL_EXPORT_SHADER(
    vhSampleStatePoint_v1, vhSampleStatePoint,
    "The input averaged over a line through the point being shaded, with weights from a curve: a blur along "
    "the line.",
    .order = "When the shader is made ready, once: samples, start, end, jitter, normalize, the profile's "
             "elements in order. For each sample input once at every position, from start to end; nothing is "
             "evaluated with samples 0.",
    .edges = "No samples, or a sum of weights of 0: each channel is divided by 0, so NaN or infinite. A NaN "
             "or an infinity at one position spoils the average, also under the weight 0. Beyond the line's "
             "ends, by jitter above 1, the nearest weight counts.",
    .notes = notes)
