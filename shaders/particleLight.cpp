// SPDX-License-Identifier: BSD-3-Clause
// Particle light: one light of the scene that shines from many points.

#include "core/evaluate.h"
#include "core/export.h"
#include "shaders/array.h"
#include "shaders/length.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

struct _vhParticleLightParams {
    miInteger lightCount;
    miInteger i_positions;
    miInteger n_positions;
    miVector positions[1];
    miInteger i_colors;
    miInteger n_colors;
    miColor colors[1];
    miScalar falloff;
    miBoolean shadow;

    static constexpr auto fields()
    {
        using P = _vhParticleLightParams;
        return std::array{
            VHL_FIELD_AS(P, integer, lightCount,
                         "Number of particles that light, from the first: one call per point lit for each. "
                         "More than there are, or less than 0: all of them.")
                .by(-1),
            VHL_FIELD_ARRAY(P, positions,
                            "Positions of the particles, in internal space, as shaded points are."),
            VHL_FIELD_ARRAY(P, colors,
                            "Colour of each particle, at the same position; alpha is a factor of red, green "
                            "and blue. Of two arrays of unequal length, the longer one's rest is left out."),
            VHL_FIELD(P, falloff,
                      "Exponent of the distance: at distance d a particle gives its colour / (1 + d to the "
                      "power of falloff), so 0 halves it at any distance.")
                .by(2),
            VHL_FIELD_AS(P, boolean, shadow, "On: every particle casts shadows, which takes a ray for each.")
                .by(1)};
    }
};

struct vhParticleLight final : VHL::dMentalRayShader<miColor, _vhParticleLightParams, 1> {
    void init(miState* state, Params* params) override
    {
        lightCount = VHL::evaluate(state, params->lightCount);
        positions = VHL::evaluateArray(state, params->i_positions, params->n_positions, params->positions);
        colors = VHL::evaluateArray(state, params->i_colors, params->n_colors, params->colors);
        for (VHL::dColor& color : colors)
            color *= VHL::dColor(color.a(), color.a(), color.a(), 1);
        shadow = VHL::evaluate(state, params->shadow);
        falloff = VHL::evaluate(state, params->falloff);
        particleCount = std::min(positions.size(), colors.size());
        list();
        // The renderer's counter has 16 bits: at its last value the loop has to end, lest it begin anew.
        particleCount = std::min<std::size_t>(particleCount, 0xFFFF);
    }

    void exit(miState*, Params*) override
    {
        lightCount = 0;
        particleCount = 0;
        colors.clear();
        positions.clear();
    }

    /// One sample of the renderer's loop over a user area light: 0 no light, 1 light, 2 the loop is over.
    int execute(miColor* result, miState* state, Params*) override
    {
        if (state->type != miRAY_LIGHT)
            return 0;
        const miUshort sample = state->count;
        if (sample == lightCount || sample >= particleCount) {
            // Deliberate: the renderer divides the light of all samples by this, and particles add up.
            state->count = 1;
            return 2;
        }
        const VHL::dVector& position = positions[sample]; // a copy would wait for its own stores
        const VHL::dVector toPoint = VHL::dVector(state->point) - position;
        const double distance = VHL::lengthInDouble(toPoint);
        const float length = static_cast<float>(distance);
        const VHL::dVector direction = length != 0.0f ? toPoint * (1.0f / length) : toPoint;
        const VHL::dVector normal = state->normal;
        const float facing = -dot(direction, normal);
        state->org = position;
        state->dir = direction;
        state->dist = distance;
        state->dot_nd = facing;
        // A NaN faces away. Without a normal, as in volumes, light comes from all sides.
        if (!(facing >= 0.0f) && !isZero(normal)) {
            *result = {0, 0, 0, 0};
            return 0;
        }
        const VHL::dColor& color = colors[sample];
        const float weakening = 1.0f + std::pow(length, falloff);
        *result = {color.r() / weakening, color.g() / weakening, color.b() / weakening, 1};
        return shadow ? mi_trace_shadow(result, state) : 1;
    }

private:
    static float dot(const VHL::dVector& a, const VHL::dVector& b)
    {
        return a.x() * b.x() + a.y() * b.y() + a.z() * b.z();
    }
    static bool isZero(const VHL::dVector& v) { return v.x() == 0.0f && v.y() == 0.0f && v.z() == 0.0f; }

    void list() const
    {
        mi_info("vhParticleLight - init data begin\n");
        mi_info("vhParticleLight - lights : %3d\n", lightCount);
        for (std::size_t k = 0; k < particleCount; ++k) {
            const VHL::dVector& position = positions[k];
            const VHL::dColor& color = colors[k];
            mi_info("vhParticleLight - light %3d : ", static_cast<int>(k));
            mi_info("pos %3.3f %3.3f %3.3f : color %3.3f %3.3f %3.3f\n", position.x(), position.y(),
                    position.z(), color.r(), color.g(), color.b());
        }
        mi_info("vhParticleLight - init data end\n");
    }

    int lightCount = 0;
    std::vector<VHL::dColor> colors; ///< red, green and blue times alpha
    std::vector<VHL::dVector> positions;
    float falloff = 0;
    int shadow = 0;
    std::size_t particleCount = 0; ///< those with a position and a colour
};

static constexpr const char* notes =
    R"(For a light with a user area: one that the scene declares so, or that vhGeomSetAreaLightType_v1 makes one
of with areaType 1. For each point lit the renderer calls the shader once per particle, and the particles' light
adds up; the light's own numbers of samples play no part: in a scene `user` alone will do.

Everything is read once, when the shader is made ready, and the log then lists the particles in messages of
class info, colours multiplied by alpha. A point is lit by the particles that its normal turns to, and by all
of them where it has no normal, as in a volume. The renderer's counter ends at 65535: the particles beyond do
not light.

Other rays than those of lights, as when the light itself is in view, get no result.)";

VHL_EXPORT_SHADER(
    vhParticleLight_v1, vhParticleLight,
    "A light that shines from a list of points, each with a colour of its own: for a light with "
    "a user area.",
    .apply = "light",
    .order = "When the shader is made ready, once: lightCount, positions in order, colors in order, "
             "shadow, falloff. Samples evaluate nothing; with shadow on each particle that the point faces "
             "takes a shadow ray.",
    .edges = "At the place of a particle itself the light has no direction and arrives in full, halved by "
             "falloff 0, and not at all by one below 0. Where the cosine is a NaN nothing is lit. lightCount "
             "0, and empty arrays, give no light.",
    .messages =
        "Info, when the shader is made ready: \"vhParticleLight - init data begin\", \"vhParticleLight - "
        "lights :  -1\" with lightCount, for each particle \"vhParticleLight - light   0 : \" and \"pos "
        "0.000 1.000 -2.500 : color 1.000 0.500 0.000\", a message each, the colour times alpha, and "
        "\"vhParticleLight - init data end\".",
    .notes = notes)
