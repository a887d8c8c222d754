// SPDX-License-Identifier: BSD-3-Clause
// Averages of what pixels of the output cover of the input, by OpenImageIO's textures.
#include "host/report/error.h"
#include "tools/vhpano/sampler.h"

#include <OpenImageIO/texture.h>

#include <algorithm>
#include <cmath>

namespace vhpano {

namespace {

using host::Error;

/// How fast a place moves from one output pixel to the next, in the input's coordinates.
struct Step {
    float u = 0;
    float v = 0;

    float length() const { return std::hypot(u, v); }
    Step operator*(float factor) const { return {u * factor, v * factor}; }
};

/// The shorter of the ways to the neighbours on either side: across a seam of the input the other one is
/// long.
Step shorterStep(const Place& before, const Place& here, const Place& after)
{
    const auto isNear = [&](const Place& other) { return other.exists && other.part == here.part; };
    const Step back = {here.u - before.u, here.v - before.v};
    const Step on = {after.u - here.u, after.v - here.v};
    if (!isNear(before) || !isNear(after))
        return isNear(before) ? back : isNear(after) ? on : Step{};
    return back.length() < on.length() ? back : on;
}

/// Safe from any thread, so that it is its own lookup.
class FootprintSampler final : public Sampler {
public:
    FootprintSampler(const Conversion& conversion, const OIIO::ImageSpec& spec)
        : ends_(conversion.from, {spec.full_width, spec.full_height}),
          width_(static_cast<float>(spec.full_width)), height_(static_cast<float>(spec.full_height)),
          channels_(spec.nchannels),
          system_(OIIO::TextureSystem::create(true)) // the process's one, which nobody has to delete
    {
        system_->attribute("max_memory_MB", 1024.0f);
        system_->attribute("autotile", 64);
        system_->attribute("automip", 1);
        handle_ = system_->get_texture_handle(OIIO::ustring(conversion.input));
        if (!handle_ || !system_->good(handle_))
            throw broken();
        using OIIO::TextureOpt;
        const bool turns = conversion.from == Layout::latlong;
        options_.swrap = turns ? TextureOpt::WrapPeriodic : TextureOpt::WrapClamp;
        options_.twrap = TextureOpt::WrapClamp;
        options_.mipmode = TextureOpt::MipModeAniso;
        options_.interpmode = TextureOpt::InterpSmartBicubic;
    }

    bool needsNeighbours() const override { return true; }
    std::unique_ptr<Lookup> begin() const override { return std::make_unique<Rows>(*this); }

private:
    struct Rows final : Lookup {
        explicit Rows(const FootprintSampler& owner) : sampler(owner) {}

        void row(const Places& above, const Places& here, const Places& below, float* pixel) override
        {
            for (std::size_t i = 0; i < here.size(); ++i, pixel += sampler.channels_) {
                if (!here[i].exists)
                    continue;
                const Step right = shorterStep(i > 0 ? here[i - 1] : Place(), here[i],
                                               i + 1 < here.size() ? here[i + 1] : Place());
                sampler.look(here[i], right, shorterStep(below[i], here[i], above[i]), pixel);
            }
        }

        const FootprintSampler& sampler;
    };

    void look(const Place& place, Step right, Step up, float* result) const
    {
        OIIO::TextureOpt options = options_;
        const float toEnd = ends_.texelsTo(place);
        float covered = std::max(texels(right), texels(up));
        // Near where the piece ends, a wide average would take in what lies beyond.
        if (covered > 2 && toEnd < covered + 0.5f) {
            right = right * (2 / covered);
            up = up * (2 / covered);
            covered = 2;
        }
        if (covered <= 1)
            options.mipmode = OIIO::TextureOpt::MipModeNoMIP; // which is all that would come out of it
        // Bicubic filters reach two texels far, bilinear ones half a texel, and averages of averages twice
        // theirs.
        if (toEnd < 2)
            options.interpmode = OIIO::TextureOpt::InterpBilinear;
        const Place inside = ends_.inset(place, covered <= 1 ? 0.5f : covered + 0.5f);
        if (!system_->texture(handle_, system_->get_perthread_info(), options, inside.u, 1 - inside.v,
                              right.u, -right.v, up.u, -up.v, channels_, result))
            throw broken();
    }

    Error broken() const { return Error("cannot read the input: " + system_->geterror()); }

    float texels(const Step& step) const { return std::hypot(step.u * width_, step.v * height_); }

    Ends ends_;
    float width_;
    float height_;
    int channels_;
    OIIO::TextureSystem* system_;
    OIIO::TextureSystem::TextureHandle* handle_ = nullptr;
    OIIO::TextureOpt options_;
};

} // namespace

std::unique_ptr<Sampler> makeFootprintSampler(const Conversion& conversion, const OIIO::ImageSpec& spec)
{
    return std::make_unique<FootprintSampler>(conversion, spec);
}

std::unique_ptr<Sampler> makeSampler(const Conversion& conversion, const OIIO::ImageSpec& spec)
{
    return conversion.filter == Filter::footprint ? makeFootprintSampler(conversion, spec)
                                                  : makePointSampler(conversion, spec);
}

} // namespace vhpano
