// SPDX-License-Identifier: BSD-3-Clause
#include "host/language/light.h"

#include <cmath>
#include <limits>

namespace host::language {

void LightBuilder::begin(const Name& name) { replaceShaders_ = light_.begin(context_, name, "light"); }

void LightBuilder::end()
{
    miLight& r = record();
    r.type = !light_->hasDirection                    ? miLIGHT_ORIGIN
             : light_->hasOrigin && light_->hasSpread ? miLIGHT_SPOT
                                                      : miLIGHT_DIRECTION;
    r.dirlight_has_org = r.type == miLIGHT_DIRECTION && light_->hasOrigin;
    if (r.type == miLIGHT_DIRECTION && r.area != miLIGHT_NONE) {
        context_.ignored(light_->where, "the area of a directional light");
        r.area = miLIGHT_NONE;
    }
    r.shader = first(light_->shader);
    light_.end(context_);
}

void LightBuilder::shader(ShaderUse use)
{
    if (std::exchange(replaceShaders_, false))
        light_->shader.clear();
    const ShaderList more = shaders_.make({std::move(use)});
    light_->shader.insert(light_->shader.end(), more.begin(), more.end());
}

void LightBuilder::origin(const Statement& point)
{
    point.expect({3});
    record().origin = point.vector(0);
    light_->hasOrigin = true;
}

void LightBuilder::direction(const Statement& vector)
{
    vector.expect({3});
    const miVector v = vector.vector(0);
    const double length = std::hypot(double(v.x), double(v.y), double(v.z));
    if (length == 0)
        vector.fail("must not be the null vector");
    record().direction = {static_cast<float>(v.x / length), static_cast<float>(v.y / length),
                          static_cast<float>(v.z / length)};
    light_->hasDirection = true;
}

void LightBuilder::spread(const Statement& cosine)
{
    cosine.expect({1});
    record().spread = cosine.real(0);
    light_->hasSpread = true;
}

void LightBuilder::energy(const Statement& color) { record().energy = color.color(1.0f); }

void LightBuilder::exponent(const Statement& value)
{
    value.expect({1});
    record().exponent = value.real(0);
}

void LightBuilder::label(const Statement& number)
{
    number.expect({1});
    record().label = static_cast<miUint>(number.integer(0));
}

void LightBuilder::rectangle(const Statement& numbers)
{
    if (shape(miLIGHT_RECTANGLE, numbers, 6))
        record().primitive.rectangle = {numbers.vector(0), numbers.vector(3)};
}

void LightBuilder::disc(const Statement& numbers)
{
    if (shape(miLIGHT_DISC, numbers, 4))
        record().primitive.disc = {numbers.vector(0), numbers.real(3)};
}

void LightBuilder::sphere(const Statement& numbers)
{
    if (shape(miLIGHT_SPHERE, numbers, 1))
        record().primitive.sphere = {numbers.real(0)};
}

void LightBuilder::cylinder(const Statement& numbers)
{
    if (shape(miLIGHT_CYLINDER, numbers, 4))
        record().primitive.cylinder = {numbers.vector(0), numbers.real(3)};
}

void LightBuilder::object(const Name& name, const Statement& samples)
{
    const Element& element = context_.find(name, "instance");
    if (element.kind != miSCENE_INSTANCE && element.kind != miSCENE_OBJECT)
        Context::refuseKind(name, element, "instance");
    shape(miLIGHT_OBJECT, samples, 0);
    record().primitive.object.object = element.tag;
}

void LightBuilder::user(const Statement& samples) { shape(miLIGHT_USER, samples, 0); }

bool LightBuilder::shape(miLight_area area, const Statement& numbers, std::size_t size)
{
    record().primitive = {};
    if (size > 0 && numbers.size() == 0) {
        record().area = miLIGHT_NONE;
        return false;
    }
    numbers.expect({size, size + 1, size + 2, size + 3, size + 5});
    record().area = area;
    samples(numbers, size);
    return true;
}

// u, u v, u v level, or u v level u v: counts in two directions, and lower ones from a ray level on.
void LightBuilder::samples(const Statement& numbers, std::size_t first)
{
    const std::size_t count = numbers.size() - first;
    const auto number = [&](std::size_t i, int smallest) {
        return static_cast<short>(numbers.integer(first + i, smallest, std::numeric_limits<short>::max()));
    };
    miLight& r = record();
    if (count > 0) {
        r.samples_u = number(0, 1);
        r.samples_v = count > 1 ? number(1, 1) : short(1);
    }
    if (count > 2)
        r.low_level = number(2, 0);
    if (count > 3) {
        r.low_samples_u = number(3, 1);
        r.low_samples_v = number(4, 1);
    }
}

} // namespace host::language
