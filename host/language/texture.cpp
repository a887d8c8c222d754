// SPDX-License-Identifier: BSD-3-Clause
#include "host/language/texture.h"

#include <algorithm>

namespace host::language {

void TextureBuilder::filter(const Statement& scale)
{
    scale.expect({0, 1});
    filter_ = true;
    filterScale_ = scale.size() == 1 ? scale.positive(0) : 1.0f;
}

void TextureBuilder::begin(Texture::Kind kind, const Name& name)
{
    const bool change = texture_.begin(context_, name, "texture");
    where_ = name.where;
    texture_->textureKind = kind;
    texture_->file.clear();
    texture_->procedural.clear();
    texture_->bytes.clear();
    texture_->width = texture_->height = 0;
    if (filter_ || !change) {
        texture_->filter = filter_;
        texture_->filterScale = filterScale_;
    }
    texture_->writable = writable_ || (change && texture_->writable);
    filter_ = writable_ = false;
    filterScale_ = 1.0f;
}

void TextureBuilder::size(const Statement& pixels)
{
    pixels.expect({2, 3});
    constexpr int largest = 1 << 16;
    texture_->width = pixels.integer(0, 1, largest);
    texture_->height = pixels.integer(1, 1, largest);
    texture_->depth = pixels.size() == 3 ? pixels.integer(2, 1, 4) : 1;
    if (texture_->depth == 3)
        pixels.fail("takes 1, 2 or 4 bytes per component, found 3");
}

void TextureBuilder::bytes(const std::vector<unsigned char>& more)
{
    texture_->bytes.insert(texture_->bytes.end(), more.begin(), more.end());
}

void TextureBuilder::end()
{
    if (texture_->width > 0) {
        const auto pixels = std::size_t(texture_->width) * std::size_t(texture_->height);
        const std::size_t plane = pixels * std::size_t(texture_->depth);
        const bool scalar = texture_->textureKind == Texture::Kind::scalar;
        const std::vector<std::size_t> components =
            scalar ? std::vector<std::size_t>{1} : std::vector<std::size_t>{3, 4};
        const auto fits = [&](std::size_t n) { return texture_->bytes.size() == plane * n; };
        if (std::none_of(components.begin(), components.end(), fits)) {
            std::vector<std::string> sizes;
            for (const std::size_t n : components)
                sizes.push_back(std::to_string(plane * n));
            throw Error(where_, "the pixels of this texture take " + alternatives(sizes) + " bytes, found " +
                                    std::to_string(texture_->bytes.size()));
        }
    }
    texture_.end(context_);
}

} // namespace host::language
