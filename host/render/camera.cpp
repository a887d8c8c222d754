// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/camera.h"

#include "host/render/vector.h"

namespace host {

CameraRays::CameraRays(const miCamera& camera, const Instance& leaf)
    : camera_(camera), transform_(leaf.record.tf), drift_(leaf.drift)
{
}

PrimaryRay CameraRays::at(double rasterX, double rasterY, float time) const
{
    const double width = camera_.aperture;
    const double x = ((rasterX - camera_.x_offset) / camera_.x_resolution - 0.5) * width;
    const double y = ((rasterY - camera_.y_offset) / camera_.y_resolution - 0.5) * width / camera_.aspect;
    PrimaryRay ray;
    double along = 1.0; // of the viewing axis, per unit of the ray
    if (camera_.orthographic) {
        ray.origin = {float(x), float(y), 0.0f};
        ray.direction = {0.0f, 0.0f, -1.0f};
    } else {
        ray.origin = {0.0f, 0.0f, 0.0f};
        const double norm = std::sqrt(x * x + y * y + double(camera_.focal) * camera_.focal);
        ray.direction = {float(x / norm), float(y / norm), float(-camera_.focal / norm)};
        along = camera_.focal / norm;
    }
    const miMatrix& toWorld = transform_.local_to_global;
    miVector direction = transformVector(ray.direction, toWorld);
    if (time != 0.0f)
        direction = direction + transformVector(ray.direction, drift_) * time;
    const miVector first = transformPoint(ray.origin, toWorld);
    ray.origin = time == 0.0f ? first : first + transformPoint(ray.origin, drift_) * time;
    // A camera instance may be scaled: clipping distances are the camera's own, ray lengths the world's.
    const double scale = length(direction) / along;
    ray.direction = normalised(direction);
    ray.near = camera_.clip.min * scale;
    ray.far = camera_.clip.max * scale;
    return ray;
}

double CameraRays::pixelWidth(double distance) const
{
    const double width = double(camera_.aperture) / camera_.x_resolution;
    if (!camera_.orthographic)
        return width * distance / camera_.focal;
    return width * length(transformVector({1.0f, 0.0f, 0.0f}, transform_.local_to_global));
}

float CameraRays::depth(miVector point) const { return -transformPoint(point, transform_.global_to_local).z; }

miVector CameraRays::toCamera(miVector direction) const
{
    return transformVector(direction, transform_.global_to_local);
}

} // namespace host
