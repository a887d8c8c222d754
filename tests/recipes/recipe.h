// SPDX-License-Identifier: BSD-3-Clause
// Evaluating a recipe: a phenomenon of recipes.mi, through the host, at states and with values of the test.
#pragma once

#include "tests/harness/stage.h"

#include <gtest/gtest.h>
#include <shader.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

namespace test {

/// A definition of a recipe. What is not set has its default.
///
///     Recipe step("vhrStepScalar_v1");
///     step.set("input", 0.7f);
///     EXPECT_EQ(step.run<float>(), 1);
class Recipe {
public:
    explicit Recipe(const std::string& name);
    ~Recipe();
    Recipe(const Recipe&) = delete;
    Recipe& operator=(const Recipe&) = delete;

    template <class T>
    Recipe& set(const std::string& parameter, const T& value)
    {
        std::memcpy(place(parameter, sizeof value), &value, sizeof value);
        return *this;
    }
    Recipe& set(const std::string& parameter, bool on) { return set(parameter, miBoolean{on}); }
    Recipe& set(const std::string& parameter, double number) { return set(parameter, float(number)); }

    /// The result at the state as it is now; nothing is remembered from one run to the next.
    template <class R>
    R run()
    {
        R result{};
        run(&result, sizeof result);
        return result;
    }

    /// A pixel in the middle of a picture of 200 by 100, on a surface that is seen head on, 5 units away.
    miState state{};

    /// Places the sample in the picture, and on the surface.
    void atPixel(float x, float y);
    void atUv(float u, float v);

private:
    void run(void* result, std::size_t size);
    void* place(const std::string& parameter, std::size_t size);

    miCamera camera_{};
    miVector uv_{};
    host::Function* definition_ = nullptr;
    host::Function* root_ = nullptr;
    std::unique_ptr<host::Network> network_;
};

inline constexpr float noNumber = std::numeric_limits<float>::quiet_NaN();
inline constexpr float endless = std::numeric_limits<float>::infinity();

/// Equal up to a few roundings of the larger number: what single precision may lose in a dozen operations.
inline void expectClose(double result, double expected, double tolerance = 4e-6)
{
    if (std::isnan(expected)) {
        EXPECT_TRUE(std::isnan(result)) << result;
        return;
    }
    EXPECT_NEAR(result, expected, tolerance * std::fmax(1, std::fabs(expected)));
}

/// A colour of the test, in double precision.
using Rgba = std::array<double, 4>;

inline miColor color(const Rgba& c) { return {float(c[0]), float(c[1]), float(c[2]), float(c[3])}; }

inline void expectClose(const miColor& result, const Rgba& expected, double tolerance = 4e-6)
{
    expectClose(result.r, expected[0], tolerance);
    expectClose(result.g, expected[1], tolerance);
    expectClose(result.b, expected[2], tolerance);
    expectClose(result.a, expected[3], tolerance);
}

/// from, from + step, ... up to `to`, in sixteenths and the like that single precision has exactly.
inline std::vector<double> range(double from, double to, double step)
{
    std::vector<double> numbers;
    for (int k = 0; from + k * step <= to; ++k)
        numbers.push_back(from + k * step);
    return numbers;
}

/// Colours with unlike channels, and unlike alphas, within 0 and 1 and a little beyond.
const std::vector<Rgba>& colors();

inline double clamp01(double x) { return x < 0 ? 0 : x > 1 ? 1 : x; }
inline double fract(double x) { return x - std::floor(x); }
inline double mix(double a, double b, double t) { return a + (b - a) * clamp01(t); }
inline double smoothstep(double lower, double upper, double x)
{
    const double t = clamp01((x - lower) / (upper - lower));
    return t * t * (3 - 2 * t);
}
inline double luminance(const Rgba& c) { return 0.2126 * c[0] + 0.7152 * c[1] + 0.0722 * c[2]; }
inline Rgba mix(const Rgba& a, const Rgba& b, double t)
{
    Rgba mixed{};
    for (std::size_t k = 0; k < 4; ++k)
        mixed[k] = mix(a[k], b[k], t);
    return mixed;
}
/// `by` of red, green and blue, each alone; alpha stays.
template <class By>
Rgba byChannel(const Rgba& c, By by)
{
    return {double(by(c[0])), double(by(c[1])), double(by(c[2])), c[3]};
}

} // namespace test
