// SPDX-License-Identifier: BSD-3-Clause
#include "host/language/options.h"

#include <limits>

namespace host::language {

namespace {

// Levels are powers of two per pixel and axis: beyond these nothing could be counted any more.
constexpr int lowestLevel = -128;
constexpr int highestLevel = 127;
constexpr int deepest = 1 << 20;

} // namespace

void OptionsBuilder::begin(const Name& name) { element_.begin(context_, name, "options element"); }

void OptionsBuilder::samples(const Statement& levels)
{
    levels.expect({1, 2, 4});
    miOptions& r = record();
    const auto level = [&](std::size_t i) { return levels.integer(i, lowestLevel, highestLevel); };
    r.max_samples = level(levels.size() == 1 ? 0 : 1);
    r.min_samples = levels.size() == 1 ? r.max_samples - 2 : level(0);
    if (levels.size() == 4) {
        r.def_min_samples = static_cast<miSint1>(level(2));
        r.def_max_samples = static_cast<miSint1>(level(3));
    }
}

void OptionsBuilder::contrast(const Statement& color)
{
    color.expect({3, 4});
    record().contrast = color.color((color.real(0) + color.real(1) + color.real(2)) / 3.0f);
}

void OptionsBuilder::timeContrast(const Statement& color)
{
    color.expect({3, 4});
    record().time_contrast = color.color((color.real(0) + color.real(1) + color.real(2)) / 3.0f);
}

void OptionsBuilder::filter(const Name& kind, bool clip, const Statement& size)
{
    const auto letter = [](Filter filter) { return static_cast<int>(filter); };
    const int chosen = clip ? choose("filter clip", kind.text, kind.where,
                                     {{"mitchell", letter(Filter::clippedMitchell)},
                                      {"lanczos", letter(Filter::clippedLanczos)}})
                            : choose("filter", kind.text, kind.where,
                                     {{"box", letter(Filter::box)},
                                      {"triangle", letter(Filter::triangle)},
                                      {"gauss", letter(Filter::gauss)},
                                      {"mitchell", letter(Filter::mitchell)},
                                      {"lanczos", letter(Filter::lanczos)}});
    size.expect({0, 1, 2});
    for (std::size_t i = 0; i < size.size(); ++i)
        if (size.real(i) < 0)
            size.fail("takes sizes of at least 0");
    record().filter = static_cast<char>(chosen);
    record().filter_size_x = size.size() > 0 ? size.real(0) : 0.0f;
    record().filter_size_y = size.size() > 1 ? size.real(1) : record().filter_size_x;
}

void OptionsBuilder::jitter(const Statement& amount)
{
    amount.expect({1});
    record().jitter = amount.real(0);
}

void OptionsBuilder::gamma(const Statement& value)
{
    value.expect({1});
    record().gamma = value.positive(0);
}

void OptionsBuilder::shutter(const Statement& time)
{
    time.expect({1, 2});
    miOptions& r = record();
    if (time.size() == 2)
        r.shutter_delay = time.real(0);
    r.shutter = time.real(time.size() - 1);
    r.motion = r.shutter > 0;
}

void OptionsBuilder::shutterDelay(const Statement& time)
{
    time.expect({1});
    record().shutter_delay = time.real(0);
}

void OptionsBuilder::motionSteps(const Statement& count)
{
    count.expect({1});
    record().n_motion_vectors = static_cast<miUint1>(count.integer(0, 1, 15));
}

void OptionsBuilder::traceDepth(const Statement& depths)
{
    depths.expect({1, 2, 3});
    miOptions& r = record();
    const auto depth = [&](std::size_t i) { return depths.integer(i, 0, deepest); };
    r.reflection_depth = depth(0);
    r.refraction_depth = depth(depths.size() == 1 ? 0 : 1);
    r.trace_depth = depths.size() == 3 ? depth(2) : r.reflection_depth + r.refraction_depth;
}

void OptionsBuilder::scanline(bool on) { record().scanline = on; }

void OptionsBuilder::scanline(const Name& mode)
{
    record().scanline = choose("scanline", mode.text, mode.where, {{"rasterizer", 'r'}, {"opengl", 'o'}});
}

void OptionsBuilder::shadow(bool on)
{
    record().shadow = on;
    record().shadow_sort = miFALSE;
}

void OptionsBuilder::shadow(const Name& mode)
{
    record().shadow =
        static_cast<char>(choose("shadow", mode.text, mode.where, {{"sort", 'l'}, {"segments", 's'}}));
    record().shadow_sort = record().shadow == 'l';
}

void OptionsBuilder::face(const Name& side)
{
    record().face = static_cast<char>(
        choose("face", side.text, side.where, {{"front", 'f'}, {"back", 'b'}, {"both", 'a'}}));
}

void OptionsBuilder::colorclip(const Name& mode)
{
    const auto number = [](ColorClip clip) { return static_cast<int>(clip); };
    record().colorclip = choose("colorclip", mode.text, mode.where,
                                {{"rgb", number(ColorClip::rgb)},
                                 {"alpha", number(ColorClip::alpha)},
                                 {"raw", number(ColorClip::raw)}});
}

void OptionsBuilder::string(const std::string& name, Options::StringOption value)
{
    element_->strings[name] = std::move(value);
}

void OptionsBuilder::numbers(const Name& name, const Statement& values)
{
    values.expect({1, 3, 4});
    if (values.size() == 1 && values.numbers[0].kind == Number::Kind::integer)
        return string(name.text, values.integer(0));
    if (values.size() == 1)
        return string(name.text, values.real(0));
    std::vector<float> list;
    for (std::size_t i = 0; i < values.size(); ++i)
        list.push_back(values.real(i));
    string(name.text, std::move(list));
}

void OptionsBuilder::feature(const char* name, const Location& where, bool on)
{
    if (on)
        context_.ignored(where, inQuotes(name) + " is not supported: it");
}

} // namespace host::language
