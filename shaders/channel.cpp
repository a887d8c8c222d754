// SPDX-License-Identifier: BSD-3-Clause
// Reorder: a pattern says where each component comes from, a letter each.

#include "core/evaluate.h"
#include "core/export.h"
#include "shaders/string_parameter.h"

#include <array>
#include <string_view>

namespace {

template <class T>
struct Reordering {
    T input;
    miTag order;

    static constexpr auto fields()
    {
        using P = Reordering;
        return std::array{
            VHL_FIELD(P, input, "Whose components are reordered."),
            VHL_FIELD_AS(P, string, order,
                         "A letter for each component in turn: r, g, b, a of a colour or x, y, z of a vector "
                         "for what it becomes, 0 or 1 for that number. It stays as it is for any other "
                         "letter, capitals included, and where the text has ended.")};
    }
};

/// The component that a letter of a pattern names, or the one at `place` itself.
int sourceOf(std::string_view names, int place, char letter)
{
    const std::size_t named = names.find(letter);
    return named != names.npos ? static_cast<int>(named) : place;
}

/// `names` are the components' letters in order. The pattern is pinned only while it is read; a parameter
/// without a text leaves the input as it is.
template <class T>
int reorder(std::string_view names, T* result, miState* state, Reordering<T>& params)
{
    const VHL::Value<T> input = VHL::evaluate(state, params.input);
    const miTag order = VHL::evaluate(state, params.order);
    VHL::Value<T> value = input;
    const VHL::PinnedText letters(order);
    for (int place = 0; place < static_cast<int>(names.size()) && letters.get()[place] != '\0'; ++place) {
        const char letter = letters.get()[place];
        value[place] = letter == '0' ? 0.0f : letter == '1' ? 1.0f : input[sourceOf(names, place, letter)];
    }
    *result = value;
    return 1;
}

} // namespace

struct _vhReorderColorParams : Reordering<miColor> {};
struct _vhReorderVectorParams : Reordering<miVector> {};

struct vhReorderColor final : VHL::dMentalRayShader<miColor, _vhReorderColorParams, 1> {
    int execute(miColor* result, miState* state, Params* params) override
    {
        return reorder("rgba", result, state, *params);
    }
};

struct vhReorderVector final : VHL::dMentalRayShader<miVector, _vhReorderVectorParams, 1> {
    int execute(miVector* result, miState* state, Params* params) override
    {
        return reorder("xyz", result, state, *params);
    }
};

static constexpr const char* order = "input, then order, each once.";
static constexpr const char* edges =
    "Any input is fine; NaN, infinities and -0 move as they are. Letters beyond the last component are "
    "ignored, and without a text the input passes.";

VHL_EXPORT_SHADER(vhReorderColor_v1, vhReorderColor,
                  "The channels of the input in another order: bgra swaps red and blue, rgb1 makes opaque, "
                  "aaaa shows alpha.",
                  .order = order, .edges = edges)
VHL_EXPORT_SHADER(vhReorderVector_v1, vhReorderVector,
                  "The components of the input in another order: zyx swaps x and z, xy0 projects along z.",
                  .order = order, .edges = edges)
