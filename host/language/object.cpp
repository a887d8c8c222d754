// SPDX-License-Identifier: BSD-3-Clause
#include "host/language/object.h"

#include <algorithm>

namespace host::language {

miUint1 FlagMode::bits(int on, int off, int largest) const
{
    if (isSwitch)
        return static_cast<miUint1>(value ? on : off);
    if (value < 0 || value > largest)
        throw Error(where, "a mode is on, off or a number from 0 to " + std::to_string(largest) + ", found " +
                               std::to_string(value));
    return static_cast<miUint1>(value);
}

void ObjectBuilder::begin(const Name& name)
{
    replaceGeometry_ = object_.begin(context_, name, "object");
    material_ = {};
    materialTag_ = miNULLTAG;
}

void ObjectBuilder::trace(const FlagMode& mode)
{
    reflection(mode);
    refraction(mode);
    finalgather(mode);
}

void ObjectBuilder::face(const Name& side)
{
    object_->face = static_cast<char>(
        choose("face", side.text, side.where, {{"front", 'f'}, {"back", 'b'}, {"both", 'a'}}));
}

void ObjectBuilder::label(const Statement& number)
{
    number.expect({1});
    object_->label = static_cast<miUint>(number.integer(0));
}

void ObjectBuilder::beginGroup()
{
    Object& o = *object_;
    if (std::exchange(replaceGeometry_, false)) {
        o.vectors.clear();
        o.vertices.clear();
        o.textureIndices.clear();
        o.motionIndices.clear();
        o.bumpBases.clear();
        o.derivatives.clear();
        o.polygons.clear();
        o.loops.clear();
        o.loopVertices.clear();
    }
    firstVector_ = o.vectors.size();
    firstVertex_ = o.vertices.size();
}

void ObjectBuilder::vector(double x, double y, double z)
{
    object_->vectors.push_back({static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)});
}

std::uint32_t ObjectBuilder::vectorAt(int index, const Location& where)
{
    const std::size_t count = object_->vectors.size() - firstVector_;
    if (index < 0 || static_cast<std::size_t>(index) >= count)
        throw Error(where, "vertex " + std::to_string(object_->vertices.size() - firstVertex_ - 1) +
                               " uses vector " + std::to_string(index) + " of " + std::to_string(count));
    return static_cast<std::uint32_t>(firstVector_ + static_cast<std::size_t>(index));
}

void ObjectBuilder::vertex(int point, const Location& where)
{
    Object& o = *object_;
    Vertex& vertex = o.vertices.emplace_back();
    vertex.point = vectorAt(point, where);
    vertex.firstTexture = static_cast<std::uint32_t>(o.textureIndices.size());
    vertex.firstMotion = static_cast<std::uint32_t>(o.motionIndices.size());
}

void ObjectBuilder::texture(int index, const Location& where)
{
    object_->textureIndices.push_back(vectorAt(index, where));
    ++object_->vertices.back().textureCount;
}

void ObjectBuilder::bumpBasis(int x, const Location& whereX, int y, const Location& whereY)
{
    const BumpBasis basis = {vectorAt(x, whereX), vectorAt(y, whereY)};
    object_->bumpBases.resize(object_->textureIndices.size());
    object_->bumpBases.back() = basis;
}

void ObjectBuilder::derivative(int index, const Location& where)
{
    const std::uint32_t vector = vectorAt(index, where);
    if (derivativeCount_ < derivatives_.size())
        derivatives_[derivativeCount_] = vector;
    ++derivativeCount_;
}

void ObjectBuilder::endDerivatives(const Location& where)
{
    const std::size_t count = std::exchange(derivativeCount_, 0);
    if (count != 2 && count != 3 && count != 5)
        throw Error(where, "vertex " + std::to_string(object_->vertices.size() - firstVertex_ - 1) +
                               " needs 2, 3 or 5 derivatives, found " + std::to_string(count));
    object_->derivatives.resize(object_->vertices.size(), noDerivatives);
    Derivatives& own = object_->derivatives.back() = noDerivatives;
    std::copy_n(derivatives_.begin(), count, own.begin() + (count == 3 ? 2 : 0)); // three are of second order
}

void ObjectBuilder::motion(int index, const Location& where)
{
    object_->motionIndices.push_back(vectorAt(index, where));
    ++object_->vertices.back().motionCount;
}

void ObjectBuilder::beginPolygon(PolygonKind kind, const Name& material)
{
    if (material.text != material_.text) {
        materialTag_ = material.text.empty() ? miNULLTAG : context_.find<Material>(material, "material").tag;
        material_ = material;
    }
    kind_ = kind;
    polygonPlace_ = material.where;
    polygon_ = {};
    polygon_.firstLoop = static_cast<std::uint32_t>(object_->loops.size());
    polygon_.material = materialTag_;
    polygon_.convex = kind != PolygonKind::any;
    awaitsLabel_ = object_->tagged && material.text.empty();
    object_->loops.push_back({static_cast<std::uint32_t>(object_->loopVertices.size()), 0});
}

void ObjectBuilder::index(int index, const Location& where)
{
    if (std::exchange(awaitsLabel_, false)) {
        polygon_.label = index;
        return;
    }
    const std::size_t count = object_->vertices.size() - firstVertex_;
    if (index < 0 || static_cast<std::size_t>(index) >= count)
        throw Error(where, "polygon " + std::to_string(object_->polygons.size()) + " uses vertex " +
                               std::to_string(index) + " of " + std::to_string(count));
    object_->loopVertices.push_back(
        static_cast<std::uint32_t>(firstVertex_ + static_cast<std::size_t>(index)));
}

void ObjectBuilder::beginHole(const Location& where)
{
    if (kind_ != PolygonKind::any)
        throw Error(where, "only polygons that begin with \"p\" may have holes");
    closeLoop();
    object_->loops.push_back({static_cast<std::uint32_t>(object_->loopVertices.size()), 0});
}

void ObjectBuilder::closeLoop()
{
    Loop& loop = object_->loops.back();
    loop.count = static_cast<std::uint32_t>(object_->loopVertices.size() - loop.first);
    if (loop.count < 3)
        throw Error(polygonPlace_, "polygon " + std::to_string(object_->polygons.size()) +
                                       " needs 3 or more vertices, found " + std::to_string(loop.count));
}

void ObjectBuilder::endPolygon()
{
    closeLoop();
    if (kind_ == PolygonKind::strip || kind_ == PolygonKind::fan)
        return emitTriangles();
    polygon_.loopCount = static_cast<std::uint32_t>(object_->loops.size()) - polygon_.firstLoop;
    object_->polygons.push_back(polygon_);
}

// Every second triangle of a strip would face the other way: its first two vertices change places.
void ObjectBuilder::emitTriangles()
{
    Object& o = *object_;
    const std::vector<std::uint32_t> outline(o.loopVertices.begin() + o.loops.back().first,
                                             o.loopVertices.end());
    o.loopVertices.resize(o.loops.back().first);
    o.loops.pop_back();
    for (std::size_t i = 2; i < outline.size(); ++i) {
        const bool fan = kind_ == PolygonKind::fan;
        const bool turned = !fan && i % 2 == 1;
        const std::uint32_t a = outline[fan ? 0 : i - 2];
        const std::uint32_t b = outline[i - 1];
        polygon_.firstLoop = static_cast<std::uint32_t>(o.loops.size());
        polygon_.loopCount = 1;
        o.loops.push_back({static_cast<std::uint32_t>(o.loopVertices.size()), 3});
        o.loopVertices.insert(o.loopVertices.end(), {turned ? b : a, turned ? a : b, outline[i]});
        o.polygons.push_back(polygon_);
    }
}

void ObjectBuilder::unsupported(const char* what, const Location& where)
{
    throw Error(where, "object " + inQuotes(object_->name) + ": " + what + " not supported");
}

} // namespace host::language
