// SPDX-License-Identifier: BSD-3-Clause
// The shadow pass, with lights that a script describes: which of them it samples, under which options, and
// what it makes of the samples.
#include "arena.h"
#include "expect.h"
#include "tests/core/floats.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <map>
#include <memory>

namespace {

constexpr int lightMode = 0, lights = 4, firstLight = 20;

/// A place on a light, as seen from the point.
struct Spot {
    miColor color;
    float cosine;
    bool occluded = false;
};
using Script = std::map<miTag, std::vector<Spot>>;

constexpr miColor white{1, 1, 1, 1};

/// A shadow pass over lights that are given, in the order of their tags.
class Pass {
public:
    explicit Pass(const Script& given) : Pass(given, tagsOf(given)) {}
    Pass(const Script& given, const std::vector<miTag>& listed) : script(given), arena(library, name)
    {
        arena.array(lights, firstLight, listed);
        arena.options().shadow = 's';
        arena.renderer.sampleLight = [this](miColor* color, miVector* direction, float* cosine,
                                            miState* state, miTag light, int* samples) -> miBoolean {
            EXPECT_EQ(state, &arena.state());
            EXPECT_NE(direction, nullptr);
            const bool shadows = state->options->shadow != 0;
            if (*samples == 0)
                sampled.push_back((shadows ? "shadows " : "none ") + std::to_string(light));
            // Every place that is tried counts, those in shadow too.
            for (const std::vector<Spot>& spots = script[light];
                 static_cast<std::size_t>(*samples) < spots.size();) {
                const Spot& spot = spots[static_cast<std::size_t>((*samples)++)];
                if (spot.occluded && shadows)
                    continue;
                *color = spot.color;
                *cosine = spot.cosine;
                return miTRUE;
            }
            return miFALSE;
        };
        init();
    }
    ~Pass() { arena.exit(); }

    void init()
    {
        arena.init();
        arena.renderer.calls.clear();
    }

    miColor run()
    {
        sampled.clear();
        miColor result{9, 8, 7, 6};
        EXPECT_EQ(arena.execute(result), 1);
        return result;
    }

    static constexpr const char* name = "vhShadowPass_v1";
    Library library;
    Script script;
    Arena arena;
    Strings sampled; ///< which lights, and whether with shadows

private:
    static std::vector<miTag> tagsOf(const Script& script)
    {
        std::vector<miTag> tags;
        for (const auto& [tag, spots] : script)
            tags.push_back(tag);
        return tags;
    }
};

/// The sums of the rule, in plain words.
miColor gathered(Script& script, const std::vector<miTag>& tags, bool shadows)
{
    float total[3] = {};
    for (const miTag tag : tags) {
        float sum[3] = {};
        for (const Spot& spot : script[tag])
            if (!shadows || !spot.occluded) {
                sum[0] += spot.cosine * spot.color.r;
                sum[1] += spot.cosine * spot.color.g;
                sum[2] += spot.cosine * spot.color.b;
            }
        const float samples = static_cast<float>(script[tag].size());
        if (samples != 0)
            for (int i = 0; i < 3; ++i)
                total[i] += sum[i] / samples;
    }
    return {total[0], total[1], total[2], 1};
}
float divided(float a, float b) { return b == 0 ? 0 : a / b; }

} // namespace

TEST(ShadowPass, APointOutOfReachOfAllLightsIsBlack)
{
    Pass pass(Script{{5, {}}, {6, {}}});
    expectColor(pass.run(), {0, 0, 0, 1});
    EXPECT_EQ(pass.sampled, (Strings{"shadows 5", "shadows 6", "none 5", "none 6"}));
}

TEST(ShadowPass, APointLitWithoutOcclusionIsWhite)
{
    Pass pass(
        Script{{5, {{white, 1}}}, {6, {{{0.5f, 0.5f, 0.5f, 0}, 0.25f}, {{0.1f, 0.1f, 0.1f, 0}, 0.75f}}}});
    expectColor(pass.run(), white);
}

TEST(ShadowPass, HalfAnAreaLightGivesOneHalf)
{
    Pass pass(Script{{5, {{white, 0.5f}, {white, 0.5f, true}, {white, 0.5f, true}, {white, 0.5f}}}});
    expectColor(pass.run(), {0.5f, 0.5f, 0.5f, 1});
}

TEST(ShadowPass, AllOfALightInShadowGivesNothing)
{
    Pass pass(Script{{5, {{white, 0.5f, true}, {white, 0.5f, true}}}});
    expectColor(pass.run(), {0, 0, 0, 1});
}

TEST(ShadowPass, LightsCountByWhatTheyGive)
{
    // A quarter of red and three quarters of green come from the light that is in shadow.
    Pass pass(Script{{5, {{{3, 1, 1, 1}, 1}}}, {6, {{{1, 3, 0, 1}, 1, true}}}});
    expectColor(pass.run(), {0.75f, 0.25f, 1, 1});
}

TEST(ShadowPass, AChannelWithoutLightIsBlackRegardlessOfShadows)
{
    for (const bool occluded : {false, true}) {
        Pass pass(Script{{5, {{{1, 0.5f, 0, 1}, 1, occluded}, {{1, 0.5f, 0, 1}, 1}}}});
        const float left = occluded ? 0.5f : 1;
        expectColor(pass.run(), {left, left, 0, 1});
    }
}

TEST(ShadowPass, AnEmptyListIsBlack)
{
    for (const int count : {0, -1, INT_MIN}) {
        Pass pass(Script{{5, {{white, 1}}}});
        pass.arena.at<int>(lights + 4) = count;
        expectColor(pass.run(), {0, 0, 0, 1});
        EXPECT_EQ(pass.sampled, Strings());
    }
}

TEST(ShadowPass, ShadowRaysAndDisplacementGetNothing)
{
    Pass pass(Script{{5, {{white, 1}}}});
    pass.arena.watch({lightMode, lights, lights + 4, lights + 8});
    for (int type = 0; type < miRAY_NO_TYPES; ++type) {
        SCOPED_TRACE(type);
        pass.arena.renderer.calls.clear();
        pass.arena.state().type = static_cast<miRay_type>(type);
        miColor result{9, 8, 7, 6};
        const bool none = type == 5 || type == 16;
        EXPECT_EQ(pass.arena.execute(result), none ? 0 : 1);
        expectColor(result, none ? miColor{9, 8, 7, 6} : white);
        EXPECT_EQ(calls(pass.arena.renderer).empty(), none) << "nothing is evaluated either";
    }
}

TEST(ShadowPass, ReadsInOrderAndTheLightsForEachGathering)
{
    Pass pass(Script{{5, {{white, 1}}}});
    pass.arena.watch({lightMode, lights, lights + 4, lights + 8, lights + 8 + 4 * firstLight});
    pass.run();
    EXPECT_EQ(pass.arena.evaluated,
              (std::vector<int>{lightMode, lights + 4, lights, lights + 8, lights + 8}));
    EXPECT_EQ(calls(pass.arena.renderer),
              (Strings{"mi_phen_eval", "mi_phen_eval", "mi_phen_eval", "mi_phen_eval", "mi_sample_light",
                       "mi_sample_light", "mi_phen_eval", "mi_sample_light", "mi_sample_light"}));
}

TEST(ShadowPass, GathersTheSecondTimeWithoutShadowsAndAllElseAsItIs)
{
    const Library library;
    Arena arena(library, Pass::name);
    arena.array(lights, firstLight, std::vector<miTag>{5});
    miOptions& options = arena.options();
    std::memset(static_cast<void*>(&options), 0x5A, sizeof options);
    options.shadow = 'l';
    miOptions before;
    std::memcpy(&before, &options, sizeof options);
    arena.init();

    std::vector<const miOptions*> used;
    arena.renderer.sampleLight = [&](miColor*, miVector*, float*, miState* state, miTag, int*) {
        used.push_back(state->options);
        return miFALSE;
    };
    miColor result{};
    arena.execute(result);
    ASSERT_EQ(used.size(), 2u);
    EXPECT_EQ(used[0], &options);
    EXPECT_NE(used[1], &options);
    EXPECT_EQ(arena.state().options, &options) << "restored";
    EXPECT_EQ(std::memcmp(&options, &before, sizeof options), 0) << "the renderer's record is only read";
    before.shadow = 0;
    EXPECT_EQ(std::memcmp(used[1], &before, sizeof before), 0);

    // The copy is of the time of the init; the options in force are those of the sample.
    miOptions others{};
    arena.state().options = &others;
    used.clear();
    arena.execute(result);
    EXPECT_EQ(used[0], &others);
    EXPECT_EQ(std::memcmp(used[1], &before, sizeof before), 0);
    EXPECT_EQ(arena.state().options, &others);
    arena.exit();
}

TEST(ShadowPass, TakesABlockForTheOptionsAndGivesItBack)
{
    const Library library;
    Arena arena(library, Pass::name);
    arena.init();
    const BareRenderer& renderer = arena.renderer;
    ASSERT_EQ(renderer.allocated.size(), 2u);
    EXPECT_EQ(renderer.allocated[1].unit, "shadowPass");
    EXPECT_EQ(renderer.allocated[1].size, static_cast<int>(sizeof(miOptions)));
    arena.exit();
    ASSERT_EQ(renderer.released.size(), 2u);
    EXPECT_EQ(renderer.released[0], renderer.allocated[1]);
    EXPECT_EQ(renderer.released[1], renderer.allocated[0]);
}

TEST(ShadowPass, WithoutMemoryForTheOptionsSeesNoShadows)
{
    const Library library;
    Arena arena(library, Pass::name);
    arena.renderer.largestBlock = sizeof(miOptions) - 1;
    arena.array(lights, firstLight, std::vector<miTag>{5});
    arena.init();
    arena.renderer.sampleLight = [](miColor* color, miVector*, float* cosine, miState* state, miTag,
                                    int* samples) {
        EXPECT_NE(state->options, nullptr);
        *color = {0.5f, 0.25f, 0, 1};
        *cosine = 1;
        return ++*samples == 1 ? miTRUE : miFALSE;
    };
    miColor result{};
    EXPECT_EQ(arena.execute(result), 1);
    expectColor(result, {1, 1, 0, 1});
    arena.exit();
    EXPECT_TRUE(arena.renderer.hasAllBlocks());
}

TEST(ShadowPass, OtherModesTakeTheLightsAsTheyAre)
{
    for (const int mode : {0, 3, 4, -1, INT_MAX}) {
        Pass pass(Script{{5, {{white, 1}}}});
        pass.arena.at<int>(lightMode) = mode;
        expectColor(pass.run(), white);
        EXPECT_EQ(calls(pass.arena.renderer),
                  (Strings{"mi_sample_light", "mi_sample_light", "mi_sample_light", "mi_sample_light"}));
    }
}

// The renderer's lists are for the gathering with shadows alone; the other one goes through the array, as far
// as the list was long.
TEST(ShadowPass, ModesOneAndTwoGatherTheRenderersListAndThenTheArray)
{
    struct Row {
        std::vector<miTag> list;
        Strings sampled;
    };
    const Row rows[] = {
        {{}, {}},
        {{8}, {"shadows 8", "none 5"}},
        {{8, 7}, {"shadows 8", "shadows 7", "none 5", "none 6"}},
        {{8, 7, 9, 5}, {"shadows 8", "shadows 7", "shadows 9", "shadows 5", "none 5", "none 6"}},
    };
    for (const int mode : {1, 2})
        for (const Row& row : rows) {
            SCOPED_TRACE(testing::Message() << mode << ' ' << row.list.size());
            Pass pass(Script{{5, {{white, 1}}}, {6, {{white, 1}}}, {7, {{white, 1}}}, {8, {{white, 0.5f}}}},
                      {5, 6});
            pass.arena.at<int>(lightMode) = mode;
            std::vector<miTag> list = row.list;
            int called = 0;
            const auto replace = [&](int* count, miTag** tags) {
                ++called;
                EXPECT_EQ(*count, 2);
                EXPECT_EQ(*tags, &pass.arena.at<miTag>(lights + 8 + 4 * firstLight));
                *count = static_cast<int>(list.size());
                *tags = list.data();
            };
            (mode == 1 ? pass.arena.renderer.inclusiveList : pass.arena.renderer.exclusiveList) = replace;
            const miColor lit = gathered(pass.script, row.list, true);
            std::vector<miTag> array = {5, 6};
            array.resize(std::min(array.size(), row.list.size()));
            const miColor unshadowed = gathered(pass.script, array, false);
            const float left = divided(lit.r, unshadowed.r);
            expectColor(pass.run(), {left, left, left, 1});
            EXPECT_EQ(pass.sampled, row.sampled);
            EXPECT_EQ(called, 1);
            EXPECT_EQ(pass.arena.at<miTag>(lights + 8 + 4 * firstLight), 5u) << "the array is only read";
        }
}

TEST(ShadowPass, AListOfLessThanNothingIsEmpty)
{
    Pass pass(Script{{5, {{white, 1}}}});
    pass.arena.at<int>(lightMode) = 2;
    pass.arena.renderer.exclusiveList = [](int* count, miTag** tags) {
        *count = -3;
        *tags = nullptr;
    };
    expectColor(pass.run(), {0, 0, 0, 1});
    EXPECT_EQ(pass.sampled, Strings());
}

TEST(ShadowPass, EveryBitIsTheRules)
{
    const Library loaded; // for all rounds, as loading takes longest
    AnyFloat any(8301);
    std::mt19937 engine(8302);
    std::uniform_real_distribution<float> near(0, 2);
    for (int round = 0; round < 4'000; ++round) {
        const auto number = [&] { return round % 2 == 0 ? any() : near(engine); };
        Script script;
        std::vector<miTag> tags;
        for (miTag tag = 1; tag <= 1 + engine() % 4; ++tag) {
            tags.push_back(tag);
            std::vector<Spot>& spots = script[tag];
            spots.resize(engine() % 4);
            for (Spot& spot : spots)
                spot = {{number(), number(), number(), number()}, number(), engine() % 3 == 0};
        }
        Pass pass(script, tags);
        const miColor result = pass.run();
        const miColor lit = gathered(script, tags, true), unshadowed = gathered(script, tags, false);
        EXPECT_EQ(Exactly{result.r}, Exactly{divided(lit.r, unshadowed.r)});
        EXPECT_EQ(Exactly{result.g}, Exactly{divided(lit.g, unshadowed.g)});
        EXPECT_EQ(Exactly{result.b}, Exactly{divided(lit.b, unshadowed.b)});
        EXPECT_EQ(result.a, 1);
        if (HasFailure())
            return;
    }
}

TEST(ShadowPass, InstancesHaveOptionsOfTheirOwn)
{
    const Library library;
    Arena one(library, Pass::name), two(library, Pass::name);
    for (Arena* const arena : {&one, &two}) {
        arena->array(lights, firstLight, std::vector<miTag>{5});
        arena->options().reflection_depth = arena == &one ? 1 : 2;
        arena->options().shadow = 1;
        arena->init();
    }
    std::vector<int> depths;
    one.renderer.sampleLight = [&](miColor*, miVector*, float*, miState* state, miTag, int*) {
        depths.push_back(10 * state->options->shadow + state->options->reflection_depth);
        return miFALSE;
    };
    miColor result{};
    one.execute(result);
    two.execute(result);
    EXPECT_EQ(depths, (std::vector<int>{11, 1, 12, 2}));
    one.exit();
    depths.clear();
    two.execute(result);
    EXPECT_EQ(depths, (std::vector<int>{12, 2}));
    two.exit();
    EXPECT_TRUE(one.renderer.hasAllBlocks());
}
