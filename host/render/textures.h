// SPDX-License-Identifier: BSD-3-Clause
// Texture images.
#pragma once

#include "host/scene/database.h"
#include "host/scene/search.h"
#include "host/shading/function.h"

#include <OpenImageIO/oiioversion.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <set>
#include <unordered_map>
#include <vector>

OIIO_NAMESPACE_BEGIN
class TextureSystem; // its header takes as long to compile as all that include this one
OIIO_NAMESPACE_END

namespace host {

/// A part of a texture, in its coordinates: an ellipse of two axes. Null for a point.
struct Footprint {
    float sx = 0.0f, tx = 0.0f;
    float sy = 0.0f, ty = 0.0f;
};

/// A texture that colours can be looked up in. Safe from any thread.
class TextureImage {
public:
    TextureImage() = default;
    virtual ~TextureImage() = default;
    TextureImage(const TextureImage&) = delete;
    TextureImage& operator=(const TextureImage&) = delete;

    /// Bilinear between texel centres at (i + 0.5) / size, clamped at the border. (0, 0) is the lower left
    /// corner; outside [0, 1) there is nothing, and the result is false. Images without alpha have alpha 1,
    /// grey images equal channels; 8-bit values are value / 255. Throws Error when the file turns out to be
    /// broken.
    bool lookup(float x, float y, miColor& result, const Footprint& footprint = {}) const;

    /// Whether a footprint makes a difference: image files of `filter` textures are averaged over it, by
    /// their pyramid.
    virtual bool filters() const { return false; }

private:
    virtual miColor at(float x, float y, const Footprint& footprint) const = 0;
};

/// Reads parts of image files when they are asked for, and forgets the oldest beyond 1 GiB. A new one begins
/// afresh.
class TextureFiles {
public:
    TextureFiles();

    /// An image file, or the bytes of a texture given in the scene. Throws Error, with the texture's place.
    /// The image is good as long as this lives.
    std::unique_ptr<TextureImage> open(const Texture& texture, const SearchPaths& paths);

private:
    OIIO::TextureSystem* system_;
};

/// The textures of one rendering; opened once each. Safe from any thread.
class Textures {
public:
    Textures(const Database& database, const SearchPaths& paths);

    /// Opens a texture before rendering, or finds the shaders of a procedural one. Throws Error when that
    /// fails.
    void load(miTag texture);

    /// The shaders of a procedural texture that was loaded, to be called with the coordinate; null for
    /// others.
    const std::vector<Function*>* procedure(miTag texture) const
    {
        if (procedures_.empty())
            return nullptr;
        const auto found = procedures_.find(texture);
        return found == procedures_.end() ? nullptr : &found->second;
    }

    /// The image of a texture, opened now if it was not; null for what is no texture, and for one that cannot
    /// be read, after one error message.
    const TextureImage* image(miTag texture) const;

private:
    const TextureImage* loadNow(miTag texture) const;

    const Database& database_;
    const SearchPaths& paths_;
    std::unordered_map<miTag, std::vector<Function*>> procedures_;
    mutable std::vector<std::atomic<const TextureImage*>> images_; // by tag
    mutable std::mutex lock_;                                      // guards what follows
    mutable TextureFiles files_;
    mutable std::vector<std::unique_ptr<TextureImage>> loaded_;
    mutable std::set<miTag> failed_;
};

} // namespace host
