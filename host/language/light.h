// SPDX-License-Identifier: BSD-3-Clause
// `light "name" ... end light`.
#pragma once

#include "host/language/shaders.h"
#include "host/language/statement.h"

namespace host::language {

class LightBuilder {
public:
    LightBuilder(Context& context, Shaders& shaders) : context_(context), shaders_(shaders) {}

    void begin(const Name& name);
    void end();
    miLight& record() { return light_->record; }

    /// One more shader; in a change the first one replaces the list.
    void shader(ShaderUse use);
    void origin(const Statement& point);
    void direction(const Statement& vector);
    void spread(const Statement& cosine);
    void energy(const Statement& color);
    void exponent(const Statement& value);
    void label(const Statement& number);

    // The shapes of area lights; without numbers there is none any more.
    void rectangle(const Statement& numbers);
    void disc(const Statement& numbers);
    void sphere(const Statement& numbers);
    void cylinder(const Statement& numbers);
    void object(const Name& name, const Statement& samples);
    void user(const Statement& samples);

private:
    bool shape(miLight_area area, const Statement& numbers, std::size_t size);
    void samples(const Statement& numbers, std::size_t first);

    Context& context_;
    Shaders& shaders_;
    Definition<Light> light_;
    bool replaceShaders_ = false;
};

} // namespace host::language
