// SPDX-License-Identifier: BSD-3-Clause
// State: single facts of the renderer's state, as the renderer holds them. Points and vectors stay in
// internal space and keep their length.

#include "core/export.h"

#include <array>
#include <cstring>
#include <functional>

/// Everything comes from the state, but a shader has to declare a parameter.
struct _vhStateParams {
    miScalar unused;

    static constexpr auto fields()
    {
        return std::array{VHL_FIELD(_vhStateParams, unused,
                                    "Has no meaning; it is never read, nor is a shader behind it run.")};
    }
};

namespace {

/// `execute` of every state shader: what `read`, a function or a member of the state, gives, cast to the
/// result.
template <class Read, class Result>
int copy(Read read, Result* result, const miState* state)
{
    *result = Result(std::invoke(read, *state));
    return 1;
}

constexpr auto rasterPos = [](const miState& s) { return miVector{s.raster_x, s.raster_y, 0.0f}; };
constexpr auto rasterWidth = [](const miState& s) { return s.camera->x_resolution; };
constexpr auto rasterHeight = [](const miState& s) { return s.camera->y_resolution; };
constexpr auto inverted = [](const miState& s) { return s.inv_normal != 0; };
/// Unsigned whatever the enumeration is. Copied as bytes, as it may hold codes that its type does not name.
constexpr auto rayType = [](const miState& s) {
    miUint code;
    static_assert(sizeof code == sizeof s.type);
    std::memcpy(&code, &s.type, sizeof code);
    return code;
};
/// Objects without texture coordinates leave the renderer's list out.
constexpr auto textureCoord = [](const miState& s) {
    return s.tex_list ? miVector{s.tex_list->x, s.tex_list->y, 0.0f} : miVector{0.0f, 0.0f, 0.0f};
};

} // namespace

static constexpr const char* nothing = "Nothing is evaluated; a shader behind unused does not run.";
static constexpr const char* asHeld =
    "Passes as the renderer holds it, NaN and infinities too; where a ray has no such thing, as the "
    "environment has no surface, it is whatever the renderer left there.";
static constexpr const char* anyWord = "The 32 bits pass as they are.";
static constexpr const char* whole =
    "Whole numbers are exact up to 16777216, and rounded to the nearest float beyond.";

// The shaders differ in result and source alone; the macro spells their names. Whether an integer is
// converted as a signed one is up to the source: levels are signed, labels, tags and ray types are not.
#define STATE(Name, Result, read, itsEdges, ...)                                                             \
    struct vhState##Name final : VHL::dMentalRayShader<Result, _vhStateParams, 1> {                          \
        int execute(Result* result, miState* state, Params*) override { return copy(read, result, state); }  \
    };                                                                                                       \
    VHL_EXPORT_SHADER(vhState##Name##_v1, vhState##Name, __VA_ARGS__, .order = nothing, .edges = itsEdges)

STATE(Point, miVector, &miState::point, asHeld, "The shaded point, in internal space; the end of the ray.")
STATE(Normal, miVector, &miState::normal, asHeld,
      "The shading normal, interpolated over smooth surfaces, in internal space.")
STATE(GeometricNormal, miVector, &miState::normal_geom, asHeld,
      "The normal of the surface's facet, in internal space.")
STATE(Org, miVector, &miState::org, asHeld,
      "The origin of the ray, in internal space; on light and shadow rays the light's place.")
STATE(Dir, miVector, &miState::dir, asHeld,
      "The direction of the ray, in internal space; on light and shadow rays it leaves the light.")
STATE(Motion, miVector, &miState::motion, asHeld,
      "How far the shaded point moves while the shutter is open, in internal space.")
STATE(RasterPos, miVector, rasterPos, asHeld,
      "The sample's place in the picture, in pixels from the lower left corner; z is 0.")
STATE(TextureCoord, miVector, textureCoord,
      "An object without texture coordinates has 0 0 0. All else passes unchanged, NaN and infinities too.",
      "Texture coordinates u and v of the first space; z is 0. All 0 on objects without any.")
STATE(RasterX, miScalar, &miState::raster_x, asHeld,
      "The sample's place in the picture, in pixels from the left edge.")
STATE(RasterY, miScalar, &miState::raster_y, asHeld,
      "The sample's place in the picture, in pixels from the lower edge.")
STATE(RasterWidth, miScalar, rasterWidth, whole, "The picture's width in pixels.")
STATE(RasterHeight, miScalar, rasterHeight, whole, "The picture's height in pixels.")
STATE(Dist, miScalar, &miState::dist,
      "Held in double precision, rounded to single. All else passes unchanged.",
      "The length of the ray; 0 where it meets nothing.")
STATE(Time, miScalar, &miState::time, asHeld, "The sample's time within the shutter interval.")
STATE(DotND, miScalar, &miState::dot_nd, asHeld,
      "The cosine between normal and ray: -1 where a surface is seen head on, 0 at its outline. On light "
      "rays 1 where the light falls straight down.")
STATE(InvNormal, miBoolean, inverted, "Any flag but 0 counts as on; the result is 0 or 1.",
      "On where the surface is seen from behind, so that its normals were turned around.",
      .result = VHL::Kind::boolean)
STATE(ReflectionLevel, miInteger, &miState::reflection_level, anyWord,
      "How often the path from the eye was reflected; 0 for what is seen directly.",
      .result = VHL::Kind::integer)
STATE(RefractionLevel, miInteger, &miState::refraction_level, anyWord,
      "How often the path from the eye was refracted or went straight through a surface.",
      .result = VHL::Kind::integer)
STATE(Label, miInteger, &miState::label, anyWord,
      "The object's label; from 2147483648 on it comes out negative.", .result = VHL::Kind::integer)
STATE(Instance, miInteger, &miState::instance, anyWord,
      "The renderer's number of the instance being shaded, different for each and in each rendering.",
      .result = VHL::Kind::integer)
STATE(RayType, miInteger, rayType, anyWord,
      "The renderer's code of the ray: 0 eye, 1 transparent, 2 reflect, 3 refract, 4 light, 5 shadow, 6 "
      "environment, higher ones for photons and the like.",
      .result = VHL::Kind::integer)
STATE(ReflectionLevelScalar, miScalar, &miState::reflection_level, whole,
      "How often the path from the eye was reflected; 0 for what is seen directly.")
STATE(RefractionLevelScalar, miScalar, &miState::refraction_level, whole,
      "How often the path from the eye was refracted or went straight through a surface.")
STATE(LabelScalar, miScalar, &miState::label, whole,
      "The object's label; exact up to 16777216 and never negative.")
STATE(InstanceScalar, miScalar, &miState::instance, whole,
      "The renderer's number of the instance being shaded, different for each and in each rendering; exact "
      "up to 16777216.")
STATE(RayTypeScalar, miScalar, rayType, whole,
      "The renderer's code of the ray: 0 eye, 1 transparent, 2 reflect, 3 refract, 4 light, 5 shadow, 6 "
      "environment, higher ones for photons and the like.")

#undef STATE
