// SPDX-License-Identifier: BSD-3-Clause
// The values that elements start with: the renderer's defaults.
#include "host/scene/element.h"

namespace host {

namespace {

void setIdentity(miMatrix m)
{
    for (int i = 0; i < 16; ++i)
        m[i] = i % 5 == 0 ? 1.0f : 0.0f;
}

} // namespace

std::string_view kindName(miScene_types kind)
{
    switch (kind) {
    case miSCENE_FUNCTION:
        return "shader";
    case miSCENE_MATERIAL:
        return "material";
    case miSCENE_LIGHT:
        return "light";
    case miSCENE_CAMERA:
        return "camera";
    case miSCENE_OBJECT:
        return "object";
    case miSCENE_INSTANCE:
        return "instance";
    case miSCENE_GROUP:
        return "group";
    case miSCENE_OPTIONS:
        return "options element";
    case miSCENE_IMAGE:
        return "texture";
    case miSCENE_STRING:
        return "string";
    case miSCENE_NONE:
        return "list of shaders";
    default:
        return "element";
    }
}

Options::Options() : Element(miSCENE_OPTIONS)
{
    record.trace = miTRUE;
    record.scanline = 1;
    record.reflection_depth = 1;
    record.refraction_depth = 1;
    record.trace_depth = 1;
    record.min_samples = -2;
    record.max_samples = 0;
    record.contrast = {0.1f, 0.1f, 0.1f, 0.1f};
    record.time_contrast = {0.2f, 0.2f, 0.2f, 0.2f};
    record.shadow = 1;
    record.filter = static_cast<char>(Filter::box);
    record.face = 'a';
    record.render_space = 'o';
    record.colorclip = static_cast<int>(ColorClip::raw);
    record.gamma = 1.0f;
    record.caustic_scale = record.globillum_scale = record.finalgather_scale = {1, 1, 1, 1};
    record.finalgather_sec_scale = record.photonvol_scale = {1, 1, 1, 1};
}

Camera::Camera() : Element(miSCENE_CAMERA)
{
    record.focal = 1.0f;
    record.aperture = 1.0f;
    record.aspect = 4.0f / 3.0f;
    record.clip = {0.0001f, 1000000.0f};
    record.x_resolution = 768;
    record.y_resolution = 576;
}

Light::Light() : Element(miSCENE_LIGHT)
{
    record.samples_u = record.samples_v = 3;
    record.low_samples_u = record.low_samples_v = 2;
}

Instance::Instance() : Element(miSCENE_INSTANCE)
{
    setIdentity(record.tf.global_to_local);
    setIdentity(record.tf.local_to_global);
    setIdentity(record.motion_transform);
    setIdentity(motionInverse);
    record.tf.identity = miTRUE;
}

} // namespace host
