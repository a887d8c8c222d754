// SPDX-License-Identifier: BSD-3-Clause
// Layers and mattes: alpha set, taken from elsewhere, multiplied in and divided out, and one layer over
// another. Colours are taken to be premultiplied: what is multiplied in already is not known here.

#include "core/export.h"
#include "shaders/components.h"

#include <array>
#include <functional>

/// Red, green and blue, each combined with the colour's own alpha.
template <class Op>
static VHL::dColor withOwnAlpha(Op op, const VHL::dColor& color)
{
    const float alpha = color.a();
    return {op(color.r(), alpha), op(color.g(), alpha), op(color.b(), alpha), alpha};
}

/// The input under another alpha, and premultiplied by it if wanted.
static VHL::dColor underAlpha(VHL::dColor input, float alpha, bool premultiply)
{
    input.a() = alpha;
    return premultiply ? withOwnAlpha(std::multiplies<float>(), input) : input;
}

/// Deliberate: where alpha is 0, of either sign, the colour stays as it is rather than turn black.
template <class Op>
static VHL::dColor unlessTransparent(Op op, const VHL::dColor& input)
{
    return input.a() == 0.0f ? input : withOwnAlpha(op, input);
}

struct _vhOverParams {
    miColor foreground;
    miColor background;

    static constexpr auto fields()
    {
        using P = _vhOverParams;
        return std::array{VHL_FIELD(P, foreground, "Layer in front, premultiplied by its alpha."),
                          VHL_FIELD(P, background, "Layer behind, premultiplied by its alpha.")};
    }
};

struct _vhSetAlphaParams {
    miColor input;
    miScalar alpha;
    miBoolean premultiply;

    static constexpr auto fields()
    {
        using P = _vhSetAlphaParams;
        return std::array{
            VHL_FIELD(P, input, "Gives red, green and blue."),
            VHL_FIELD(P, alpha, "The result's alpha.").by(1),
            VHL_FIELD_AS(P, boolean, premultiply, "On: red, green and blue are multiplied by alpha.")};
    }
};

struct _vhSwitchMatteParams {
    miColor input;
    miColor matte;
    miBoolean premultiply;

    static constexpr auto fields()
    {
        using P = _vhSwitchMatteParams;
        return std::array{
            VHL_FIELD(P, input, "Gives red, green and blue."),
            VHL_FIELD(P, matte, "Its alpha is the result's; its other channels are not used.").by(1),
            VHL_FIELD_AS(P, boolean, premultiply,
                         "On: red, green and blue are multiplied by the new alpha.")};
    }
};

struct _vhMatteMultParams {
    miColor input;
    miScalar reserved;

    static constexpr auto fields()
    {
        using P = _vhMatteMultParams;
        return std::array{VHL_FIELD(P, input, "What is multiplied by its own alpha."),
                          VHL_FIELD(P, reserved, "A shader wired in here runs; its value is not used.")};
    }
};

struct _vhMatteDivParams {
    miColor input;

    static constexpr auto fields()
    {
        return std::array{VHL_FIELD(_vhMatteDivParams, input, "What is divided by its own alpha.")};
    }
};

struct vhOver final : VHL::dMentalRayShader<miColor, _vhOverParams, 1> {
    int execute(miColor* result, miState* state, Params* params) override
    {
        const VHL::dColor foreground = VHL::evaluate(state, params->foreground);
        const VHL::dColor background = VHL::evaluate(state, params->background);
        const float through = 1.0f - foreground.a();
        const auto over = [through](float front, float behind) { return front + through * behind; };
        *result = VHL::perComponent(over, foreground, background);
        return 1;
    }
};

struct vhSetAlpha final : VHL::dMentalRayShader<miColor, _vhSetAlphaParams, 1> {
    int execute(miColor* result, miState* state, Params* params) override
    {
        const VHL::dColor input = VHL::evaluate(state, params->input);
        const float alpha = VHL::evaluate(state, params->alpha);
        const bool premultiply = VHL::evaluate(state, params->premultiply);
        *result = underAlpha(input, alpha, premultiply);
        return 1;
    }
};

struct vhSwitchMatte final : VHL::dMentalRayShader<miColor, _vhSwitchMatteParams, 1> {
    int execute(miColor* result, miState* state, Params* params) override
    {
        const VHL::dColor input = VHL::evaluate(state, params->input);
        const VHL::dColor matte = VHL::evaluate(state, params->matte);
        const bool premultiply = VHL::evaluate(state, params->premultiply);
        *result = underAlpha(input, matte.a(), premultiply);
        return 1;
    }
};

struct vhMatteMult final : VHL::dMentalRayShader<miColor, _vhMatteMultParams, 1> {
    int execute(miColor* result, miState* state, Params* params) override
    {
        const VHL::dColor input = VHL::evaluate(state, params->input);
        VHL::evaluate(state, params->reserved); // deliberate: a shader wired in here runs
        *result = unlessTransparent(std::multiplies<float>(), input);
        return 1;
    }
};

struct vhMatteDiv final : VHL::dMentalRayShader<miColor, _vhMatteDivParams, 1> {
    int execute(miColor* result, miState* state, Params* params) override
    {
        const VHL::dColor input = VHL::evaluate(state, params->input);
        *result = unlessTransparent(std::divides<float>(), input);
        return 1;
    }
};

static constexpr const char* newAlpha =
    "Any alpha is fine, nothing is clamped. With premultiply off red, green and blue pass unchanged; with it "
    "on an alpha of 0 leaves black, and NaN of an infinite or NaN channel.";

VHL_EXPORT_SHADER(
    vhOver_v1, vhOver,
    "The foreground over the background: foreground + (1 - alpha of foreground) * background, alpha "
    "included. Both are premultiplied.",
    .order = "foreground, then background, each once; both also where the foreground is opaque.",
    .edges = "Nothing is clamped; alpha may lie outside 0 and 1. An infinite background under alpha 1 gives "
             "NaN, as 0 times infinity does, and a NaN is not covered either.")
VHL_EXPORT_SHADER(
    vhSetAlpha_v1, vhSetAlpha,
    "The input with another alpha; with premultiply on, red, green and blue are multiplied by it. "
    "An alpha that they were multiplied by before is not divided out.",
    .order = "input, alpha, premultiply, each once; always all of them.", .edges = newAlpha)
VHL_EXPORT_SHADER(
    vhSwitchMatte_v1, vhSwitchMatte,
    "The input with the alpha of matte; with premultiply on, red, green and blue are multiplied by "
    "it.",
    .order = "input, matte, premultiply, each once; always all of them.", .edges = newAlpha)
VHL_EXPORT_SHADER(
    vhMatteMult_v1, vhMatteMult,
    "Premultiply: red, green and blue times alpha. Where alpha is 0 the input stays as it is, not "
    "black.",
    .order = "input, then reserved, each once.",
    .edges = "Alpha 0 or -0: the input passes unchanged. Nothing is clamped. A NaN alpha makes red, green "
             "and blue NaN.")
VHL_EXPORT_SHADER(
    vhMatteDiv_v1, vhMatteDiv,
    "Un-premultiply: red, green and blue divided by alpha, not clamped. Where alpha is 0 the input "
    "stays as it is.",
    .order = "input, once.",
    .edges = "Alpha 0 or -0: the input passes unchanged, nothing is divided. Others divide whatever they "
             "are: a tiny alpha may give infinities, an infinite one gives 0, and a NaN gives NaN.")
