// SPDX-License-Identifier: BSD-3-Clause
// `object "name" ... end object`: flags and polygons.
#pragma once

#include "host/language/context.h"
#include "host/language/statement.h"

#include <cstdint>
#include <vector>

namespace host::language {

/// What stands behind a flag's keyword: nothing or a boolean, or a number of bits.
struct FlagMode {
    bool isSwitch = true;
    int value = 1;
    Location where;

    /// The bits: those of `on`, of `off`, or the number itself, which must not be above `largest`.
    miUint1 bits(int on, int off, int largest) const;
};

class ObjectBuilder {
public:
    enum class PolygonKind { convex, any, strip, fan };

    explicit ObjectBuilder(Context& context) : context_(context) {}

    void begin(const Name& name);
    void end() { object_.end(context_); }
    Object& object() { return *object_; }

    void shadow(const FlagMode& mode) { object_->shadow = mode.bits(3, 2, 3); }
    void reflection(const FlagMode& mode) { object_->reflection = mode.bits(3, 2, 3); }
    void refraction(const FlagMode& mode) { object_->refraction = mode.bits(3, 2, 3); }
    void transparency(const FlagMode& mode) { object_->transparency = mode.bits(3, 2, 3); }
    void finalgather(const FlagMode& mode) { object_->finalgather = mode.bits(3, 2, 3); }
    void trace(const FlagMode& mode);
    void face(const Name& side);
    void label(const Statement& number);

    /// Geometry. The indices of a group count from its own beginning; the first group of a change replaces
    /// what the object had.
    void beginGroup();
    void vector(double x, double y, double z);
    void vector(const miVector& v) { object_->vectors.push_back(v); }
    void vertex(int point, const Location& where);
    void normal(int index, const Location& where)
    {
        object_->vertices.back().normal = vectorAt(index, where);
    }
    void texture(int index, const Location& where);
    /// Of the vertex's latest texture vector.
    void bumpBasis(int x, const Location& whereX, int y, const Location& whereY);
    void derivative(int index, const Location& where);
    /// Ends the list of derivatives that begins there.
    void endDerivatives(const Location& where);
    void motion(int index, const Location& where);
    void unused(int index, const Location& where) { vectorAt(index, where); }

    void beginPolygon(PolygonKind kind, const Name& material);
    void index(int index, const Location& where);
    void beginHole(const Location& where);
    void endPolygon();

    /// Geometry that is not in this renderer. Throws Error that names the object.
    [[noreturn]] void unsupported(const char* what, const Location& where);

private:
    std::uint32_t vectorAt(int index, const Location& where);
    void closeLoop();
    void emitTriangles();

    Context& context_;
    Definition<Object> object_;
    bool replaceGeometry_ = false;
    std::size_t firstVector_ = 0;
    std::size_t firstVertex_ = 0;

    Derivatives derivatives_; ///< those of the latest vertex, as they come
    std::size_t derivativeCount_ = 0;

    Polygon polygon_;
    PolygonKind kind_ = PolygonKind::convex;
    Location polygonPlace_;
    bool awaitsLabel_ = false;
    Name material_; // the latest one, as neighbours mostly share it
    miTag materialTag_ = miNULLTAG;
};

} // namespace host::language
