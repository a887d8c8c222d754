// SPDX-License-Identifier: BSD-3-Clause
// Direct illumination: ambient light, and for each chosen light the mean over its samples.

#include "host/base/lightlist.h"
#include "host/base/optics.h"
#include "host/base/shader.h"
#include "host/base/vector.h"

namespace host::base {

namespace {

struct Lambert {
    miColor ambience;
    miColor ambient;
    miColor diffuse;
    LightChoice lights;
};

struct Phong {
    miColor ambience;
    miColor ambient;
    miColor diffuse;
    miColor specular;
    miScalar exponent;
    LightChoice lights;
};

/// Neither asks for a surface's colour.
bool illuminates(const miState* state)
{
    return state->type != miRAY_SHADOW && state->type != miRAY_DISPLACE;
}

/// ambience·ambient + Σ over lights of the mean of surface(direction to the light, cosine)·colour, opaque.
template <class Surface>
miColor illuminated(miState* state, const miColor& ambience, const miColor& ambient, LightChoice& lights,
                    Surface surface)
{
    miColor total = ambience * ambient;
    total.a = 1.0f;
    forEachLight(state, lights, [&](miTag light) {
        miColor sum = {};
        miColor color;
        miVector direction;
        float cosine;
        int samples = 0;
        while (mi_sample_light(&color, &direction, &cosine, state, light, &samples))
            sum = sum + surface(direction, cosine) * color;
        if (samples > 0)
            total = total + sum * (1.0f / static_cast<float>(samples));
    });
    return total;
}

} // namespace

BASE_VERSION(mib_illum_lambert, 1)
BASE_LIGHTS_INIT(mib_illum_lambert, Lambert)
BASE_ENTRY miBoolean mib_illum_lambert(miColor* result, miState* state, Lambert* p)
{
    if (!illuminates(state))
        return miFALSE;
    const miColor ambience = read(state, p->ambience);
    const miColor ambient = read(state, p->ambient);
    const miColor diffuse = read(state, p->diffuse);
    const auto matt = [&](const miVector&, float cosine) { return diffuse * cosine; };
    *result = illuminated(state, ambience, ambient, p->lights, matt);
    return miTRUE;
}

BASE_VERSION(mib_illum_phong, 1)
BASE_LIGHTS_INIT(mib_illum_phong, Phong)
BASE_ENTRY miBoolean mib_illum_phong(miColor* result, miState* state, Phong* p)
{
    if (!illuminates(state))
        return miFALSE;
    const miColor ambience = read(state, p->ambience);
    const miColor ambient = read(state, p->ambient);
    const miColor diffuse = read(state, p->diffuse);
    const miColor specular = read(state, p->specular);
    const float exponent = read(state, p->exponent);
    const miVector mirror = mirrored(state->dir, state->normal);
    const auto shiny = [&](const miVector& direction, float cosine) {
        const float highlight = dot(mirror, direction);
        const miColor matt = diffuse * cosine;
        return highlight > 0.0f ? matt + specular * std::pow(highlight, exponent) : matt;
    };
    *result = illuminated(state, ambience, ambient, p->lights, shiny);
    return miTRUE;
}

} // namespace host::base
