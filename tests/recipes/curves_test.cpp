// SPDX-License-Identifier: BSD-3-Clause
// Ranges and curves, each against its formula in double precision.
#include "tests/recipes/recipe.h"

using namespace test;

namespace {

/// A recipe with a parameter "input", called for one number after another.
class Curve {
public:
    explicit Curve(const std::string& name) : recipe_(name) {}

    Curve& set(const std::string& parameter, double value)
    {
        recipe_.set(parameter, value);
        return *this;
    }
    Curve& set(const std::string& parameter, bool value)
    {
        recipe_.set(parameter, value);
        return *this;
    }
    float operator()(double input) { return recipe_.set("input", input).run<float>(); }

private:
    Recipe recipe_;
};

const std::vector<double> inputs = range(-2.5, 2.5, 1.0 / 16);

} // namespace

TEST(Curves, Fract)
{
    Curve fraction("vhrFractScalar_v1");
    for (const double x : inputs)
        EXPECT_EQ(fraction(x), fract(x)) << "exact for sixteenths";
    EXPECT_EQ(fraction(-1e-9), 1.0f) << "1 - 1e-9 is 1 in single precision";
    EXPECT_TRUE(std::isnan(fraction(endless)));
    EXPECT_TRUE(std::isnan(fraction(noNumber)));
}

TEST(Curves, Remap)
{
    Curve remap("vhrRemapScalar_v1");
    EXPECT_EQ(remap(0.3f), 0.3f) << "the defaults change nothing";
    remap.set("oldLower", 1.0).set("oldUpper", -1.0).set("newLower", 10.0).set("newUpper", 50.0);
    for (const bool clamp : {false, true}) {
        remap.set("clamp", clamp);
        for (const double x : inputs) {
            const double t = (1 - x) / 2;
            expectClose(remap(x), 10 + 40 * (clamp ? clamp01(t) : t));
        }
    }
    remap.set("oldUpper", 1.0);
    EXPECT_EQ(remap(0.5), 10.0f) << "equal bounds are a step";
    EXPECT_EQ(remap(1.5), 50.0f);
    EXPECT_TRUE(std::isnan(remap(1)));
}

TEST(Curves, Step)
{
    Curve step("vhrStepScalar_v1");
    for (const double x : inputs)
        EXPECT_EQ(step(x), x >= 0.5 ? 1 : 0);
    step.set("edge", -1.0);
    for (const double x : inputs)
        EXPECT_EQ(step(x), x >= -1 ? 1 : 0);
    EXPECT_EQ(step(noNumber), 0);
    EXPECT_EQ(step(endless), 1);
}

TEST(Curves, Pulse)
{
    Curve pulse("vhrPulseScalar_v1");
    for (const double x : inputs)
        EXPECT_EQ(pulse(x), x >= 0.25 && x < 0.75 ? 1 : 0);
    EXPECT_EQ(pulse(noNumber), 0);
    pulse.set("lower", 0.75).set("upper", 0.25);
    for (const double x : inputs)
        EXPECT_EQ(pulse(x), 0);
}

TEST(Curves, Smoothstep)
{
    Curve soft("vhrSmoothstepScalar_v1");
    for (const double x : inputs)
        expectClose(soft(x), smoothstep(0, 1, x));
    soft.set("lower", 2.0).set("upper", -1.0);
    for (const double x : inputs)
        expectClose(soft(x), smoothstep(2, -1, x));
    soft.set("upper", 2.0);
    EXPECT_EQ(soft(1.9), 0);
    EXPECT_EQ(soft(2.1), 1);
    EXPECT_TRUE(std::isnan(soft(2)));
    EXPECT_TRUE(std::isnan(soft(noNumber)));
}

TEST(Curves, Triangle)
{
    Curve wave("vhrTriangleScalar_v1");
    for (const double period : {1.0, 0.5, 4.0, -2.0}) {
        wave.set("period", period);
        for (const double x : inputs)
            EXPECT_EQ(wave(x), 1 - std::fabs(2 * fract(x / period) - 1));
    }
    wave.set("period", 0.0);
    EXPECT_TRUE(std::isnan(wave(0.5)));
}

// The mirror's own definition: what a ball does between two walls, step by step.
TEST(Curves, PingPong)
{
    Curve bounce("vhrPingPongScalar_v1");
    const auto between = [](double x, double lower, double upper) {
        while (x < lower || x > upper)
            x = x < lower ? 2 * lower - x : 2 * upper - x;
        return x;
    };
    for (const double x : inputs)
        EXPECT_EQ(bounce(x), between(x, 0, 1));
    bounce.set("lower", -0.5).set("upper", 0.25);
    for (const double x : inputs)
        expectClose(bounce(x), between(x, -0.5, 0.25));
    bounce.set("upper", -0.5);
    EXPECT_TRUE(std::isnan(bounce(0.1)));
}

TEST(Curves, Bias)
{
    Curve bent("vhrBiasScalar_v1");
    for (const double bias : {0.25, 0.5, 0.75, 0.9}) {
        bent.set("bias", bias);
        for (const double t : range(0, 1, 1.0 / 16))
            expectClose(bent(t), t / ((1 / bias - 2) * (1 - t) + 1));
        expectClose(bent(0.5), bias);
        EXPECT_EQ(bent(0), 0);
        EXPECT_EQ(bent(1), 1);
    }
    bent.set("bias", 0.0);
    EXPECT_EQ(bent(0.5), 0);
    EXPECT_TRUE(std::isnan(bent(1)));
}

TEST(Curves, Gain)
{
    Curve bent("vhrGainScalar_v1");
    for (const double gain : {0.125, 0.25, 0.5, 0.75}) {
        bent.set("gain", gain);
        for (const double t : range(0, 1, 1.0 / 16)) {
            // Either half is a bias of half the size; the upper one is the lower one turned around.
            const double u = t < 0.5 ? 2 * t : 2 - 2 * t;
            const double half = 0.5 * u / ((1 / gain - 2) * (1 - u) + 1);
            expectClose(bent(t), t < 0.5 ? half : 1 - half);
        }
        expectClose(bent(0.25), gain / 2);
    }
}
