// SPDX-License-Identifier: BSD-3-Clause
// `color texture "name" ...` and its kin.
#pragma once

#include "host/language/shaders.h"
#include "host/language/statement.h"

namespace host::language {

class TextureBuilder {
public:
    TextureBuilder(Context& context, Shaders& shaders) : context_(context), shaders_(shaders) {}

    // The words in front.
    void filter(const Statement& scale);
    void writable() { writable_ = true; }

    void begin(Texture::Kind kind, const Name& name);
    void file(const Name& name) { texture_->file = context_.session.registry.expand(name.text, name.where); }
    void procedural(ShaderUse use) { texture_->procedural = shaders_.make({std::move(use)}); }
    void size(const Statement& pixels);
    void bytes(const std::vector<unsigned char>& more);
    void end();

private:
    Context& context_;
    Shaders& shaders_;
    Definition<Texture> texture_;
    Location where_;
    bool filter_ = false;
    float filterScale_ = 1.0f;
    bool writable_ = false;
};

} // namespace host::language
