// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/footprint.h"

#include "host/render/vector.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {

/// Surfaces seen from the side are no longer than so many times their width.
constexpr double flattest = 1.0 / 64.0;

bool isLookedAlong(miRay_type type)
{
    return type == miRAY_EYE || type == miRAY_REFLECT || type == miRAY_REFRACT || type == miRAY_TRANSPARENT;
}

/// Any direction at right angles to a unit vector.
miVector anyAcross(miVector v)
{
    return crossDirection(v, std::abs(v.x) < 0.5f ? miVector{1.0f, 0.0f, 0.0f} : miVector{0.0f, 1.0f, 0.0f});
}

} // namespace

Footprint footprintOf(RenderThread& thread, const miState& state)
{
    const Hit& hit = thread.top().hit;
    if (!hit.body || hit.body->tag() != state.instance || !isLookedAlong(state.type))
        return {};
    double path = 0.0;
    for (const miState* ray = &state; ray; ray = ray->parent)
        path += ray->dist;
    const double width = thread.stage.rays.pixelWidth(path);
    const double cosine = dot(state.normal_geom, state.dir);
    const miVector slant = state.dir - state.normal_geom * float(cosine);
    miVector across = crossDirection(state.normal_geom, slant);
    if (isNull(across))
        across = anyAcross(state.normal_geom);
    const miVector along = crossDirection(across, state.normal_geom);
    const auto change = [&](const miVector& direction, double size) {
        const miVector own = transformVector(direction, hit.body->leaf->record.tf.global_to_local);
        return hit.body->model->mesh.textureChange(hit.triangle, own) * float(size);
    };
    const miVector x = change(across, width);
    const miVector y = change(along, width / std::max(std::abs(cosine), flattest));
    return isFinite(x) && isFinite(y) ? Footprint{x.x, x.y, y.x, y.y} : Footprint{};
}

} // namespace host
