// SPDX-License-Identifier: BSD-3-Clause
// Select: the position that a number stands for, and what is evaluated.
#include "tests/harness/call.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

namespace {

using test::Call;
using test::list;

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

/// Numbers that tell whether they have been written.
struct Marked {
    float number = 42;
};
struct MarkedColor {
    miColor color{42, 43, 44, 45};
};

/// The scalars 100, 101, 102 ... to choose from.
std::vector<float> scalars(int count)
{
    std::vector<float> made;
    for (int k = 0; k < count; ++k)
        made.push_back(100.0f + static_cast<float>(k));
    return made;
}

/// The rule in double precision, which holds every float and every count: cut off, then held to the array.
int expected(float position, int count)
{
    if (std::isnan(position))
        return 0;
    const double whole = std::trunc(static_cast<double>(position));
    return static_cast<int>(std::fmin(std::fmax(whole, 0), count - 1));
}

TEST(Select, CutsThePositionOffAndHoldsItToTheArray)
{
    struct Row {
        const char* why;
        float position;
        int element;
    };
    const Row rows[] = {
        {"exact", 2, 2},
        {"a fraction is cut off, not rounded", 2.7f, 2},
        {"just below a whole number", std::nextafter(2.0f, 0.0f), 1},
        {"between -1 and 0", -0.5f, 0},
        {"minus zero", -0.0f, 0},
        {"the smallest", std::numeric_limits<float>::denorm_min(), 0},
        {"below", -3, 0},
        {"the last one's end", std::nextafter(4.0f, 0.0f), 3},
        {"one behind", 4, 3},
        {"far behind", 99, 3},
        {"beyond an int", 3e9f, 3},
        {"beyond an int, below", -3e9f, 0},
        {"beyond a 64-bit word", 1e30f, 3},
        {"without end", infinity, 3},
        {"without end, below", -infinity, 0},
        {"not a number", notANumber, 0},
        {"not a number, with the sign", -notANumber, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.why);
        Call color("vhSelectColor_v1");
        color.set("select", row.position)
            .set("values", list(miColor{0, 1, 2, 3}, miColor{10, 11, 12, 13}, miColor{20, 21, 22, 23},
                                miColor{30, 31, 32, 33}));
        const auto c = color.run<MarkedColor>().color;
        EXPECT_EQ(color.returned(), 1);
        const auto first = static_cast<float>(10 * row.element);
        EXPECT_TRUE(c.r == first && c.g == first + 1 && c.b == first + 2 && c.a == first + 3) << c.r;

        Call vector("vhSelectVector_v1");
        vector.set("select", row.position)
            .set("values",
                 list(miVector{0, 1, 2}, miVector{10, 11, 12}, miVector{20, 21, 22}, miVector{30, 31, 32}));
        const miVector v = vector.run<miVector>();
        EXPECT_EQ(vector.returned(), 1);
        EXPECT_TRUE(v.x == first && v.y == first + 1 && v.z == first + 2) << v.x;

        Call scalar("vhSelectScalar_v1");
        scalar.set("select", row.position).set("values", list(scalars(4)));
        EXPECT_EQ(scalar.run<Marked>().number, 100.0f + static_cast<float>(row.element));
        EXPECT_EQ(scalar.returned(), 1);
    }
}

TEST(Select, AgreesWithTheRuleForAnyNumber)
{
    std::mt19937 random(5);
    for (const int count : {1, 2, 7, 64, 1000}) {
        Call call("vhSelectScalar_v1");
        call.set("values", list(scalars(count)));
        std::uniform_real_distribution<float> near(-2, static_cast<float>(count) + 2);
        for (int round = 0; round < 20'000; ++round) {
            const float position = round % 2 ? near(random) : std::bit_cast<float>(std::uint32_t(random()));
            call.change("select", position);
            ASSERT_EQ(call.run<miScalar>(), 100.0f + static_cast<float>(expected(position, count)))
                << position << " of " << count;
        }
    }
}

TEST(Select, WithoutValuesThereIsNoResult)
{
    Call scalar("vhSelectScalar_v1");
    scalar.set("select", 1).connect("select");
    EXPECT_EQ(scalar.run<Marked>().number, 42);
    EXPECT_EQ(scalar.returned(), 0);
    EXPECT_EQ(scalar.trace(), "") << "nothing is evaluated";

    Call color("vhSelectColor_v1");
    color.set("values", list(std::vector<miColor>()));
    EXPECT_EQ(color.run<MarkedColor>().color.a, 45);
    EXPECT_EQ(color.returned(), 0);
}

TEST(Select, EvaluatesThePositionThenTheChosenElementAlone)
{
    for (const auto& [shader, run] :
         {std::pair<const char*, void (*)(Call&)>("vhSelectColor_v1", [](Call& c) { c.run<miColor>(); }),
          {"vhSelectScalar_v1", [](Call& c) { c.run<miScalar>(); }},
          {"vhSelectVector_v1", [](Call& c) { c.run<miVector>(); }}}) {
        SCOPED_TRACE(shader);
        for (const auto& [position, trace] :
             {std::pair(1.5f, "select values[1]"), {-1.0f, "select values[0]"}, {8.0f, "select values[2]"}}) {
            Call call(shader);
            if (call.declaration().result.type == host::Type::color)
                call.set("values", list(miColor{}, miColor{}, miColor{}));
            else if (call.declaration().result.type == host::Type::vector)
                call.set("values", list(miVector{}, miVector{}, miVector{}));
            else
                call.set("values", list(0.0f, 1.0f, 2.0f));
            call.set("select", position).connectAll();
            run(call);
            EXPECT_EQ(call.trace(), trace);
        }
    }
}

TEST(Select, ElementsMayBeDrivenOrNot)
{
    Call call("vhSelectScalar_v1");
    call.define("three", "vhAddScalar_v1", {test::argument("input1", 1), test::argument("input2", 2)});
    call.set("values", list(10.0f, test::connection("three"), 30.0f));
    for (const auto& [position, value] : {std::pair(0.0f, 10.0f), {1.0f, 3.0f}, {2.0f, 30.0f}}) {
        call.change("select", position);
        EXPECT_EQ(call.run<miScalar>(), value);
    }
}

TEST(Select, OneElementAloneIsFound)
{
    Call call("vhSelectScalar_v1"); // such a one lies in the slot itself
    call.set("values", list(5.0f)).set("select", 3).connectAll();
    EXPECT_EQ(call.run<miScalar>(), 5);
    EXPECT_EQ(call.trace(), "select values[0]");
}

TEST(Select, ManyThreadsChooseAlike)
{
    Call call("vhSelectScalar_v1");
    call.set("select", 2.5f).set("values", list(scalars(4))).connectAll();
    call.onThreads(8, [](test::Sample& sample) {
        for (int round = 0; round < 1000; ++round)
            if (sample.run<miScalar>() != 102 || sample.trace() != "select values[2]")
                throw std::logic_error("another element");
    });
}

} // namespace
