// SPDX-License-Identifier: BSD-3-Clause
// Texture images.
#pragma once

#include "host/scene/database.h"
#include "host/scene/search.h"

#include <atomic>
#include <deque>
#include <mutex>
#include <set>
#include <vector>

namespace host {

/// A texture's pixels, lowest row first. Images without alpha have alpha 1, grey images equal channels; 8-bit
/// values are value / 255.
struct TextureImage {
    int width = 0;
    int height = 0;
    std::vector<miColor> pixels;

    /// Bilinear between texel centres at (i + 0.5) / size, clamped at the border. (0, 0) is the lower left
    /// corner; outside [0, 1) there is nothing, and the result is false.
    bool lookup(float x, float y, miColor& result) const;
};

/// Reads an image file, or the bytes of a texture given in the scene. Throws Error, with the texture's place.
TextureImage readTexture(const Texture& texture, const SearchPaths& paths);

/// The textures of one rendering; loaded once each. Safe from any thread.
class Textures {
public:
    Textures(const Database& database, const SearchPaths& paths);

    /// Loads a texture before rendering. Throws Error when that fails.
    void load(miTag texture);

    /// The image of a texture, loaded now if it was not; null for what is no texture, and for one that cannot
    /// be read, after one error message.
    const TextureImage* image(miTag texture) const;

private:
    const TextureImage* loadNow(miTag texture) const;

    const Database& database_;
    const SearchPaths& paths_;
    mutable std::vector<std::atomic<const TextureImage*>> images_; // by tag
    mutable std::mutex lock_;                                      // guards what follows
    mutable std::deque<TextureImage> loaded_;
    mutable std::set<miTag> failed_;
};

} // namespace host
