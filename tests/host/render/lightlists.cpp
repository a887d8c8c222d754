// SPDX-License-Identifier: BSD-3-Clause
// Lists of lights that shaders ask for.
#include "tests/host/render/lit.h"

#include <gtest/gtest.h>

namespace {

using namespace test;

TEST(LightList, InclusiveAndExclusive)
{
    Scene scene;
    const auto light = [&](miVector at, host::Group* in) -> host::Instance& {
        return scene.place(scene.pointLight({0, 0, 0}, [](miColor&, miState&) { return miTRUE; }), at, in);
    };
    auto& group = scene.session.database.make<host::Group>();
    const miTag a = light({0, 0, 0}, nullptr).tag;
    light({1, 0, 0}, &group);
    light({2, 0, 0}, &group);
    const miTag both = scene.place(group).tag;
    const miTag d = light({3, 0, 0}, nullptr).tag;
    std::vector<float> found;
    const auto list = [&](std::vector<miTag> tags, bool exclusive) {
        found.clear();
        scene.place(scene.square(1), {0, 0, -1}).materials = {
            scene
                .material([&, tags, exclusive](miColor&, miState& state) {
                    const std::vector<miTag> mine = tags;
                    int n = int(mine.size());
                    miTag* array = const_cast<miTag*>(mine.data());
                    EXPECT_TRUE(
                        (exclusive ? mi_exclusive_lightlist : mi_inclusive_lightlist)(&n, &array, &state));
                    for (int i = 0; i < n; ++i) {
                        const auto* leaf = scene.session.database.findAs<host::Instance>(array[i]);
                        found.push_back(leaf->record.tf.local_to_global[12]);
                    }
                    EXPECT_EQ(mine, tags) << "the caller's array was changed";
                    return miTRUE;
                })
                .tag};
        scene.look();
        scene.root.members.pop_back();
        return found;
    };
    using List = std::vector<float>;
    EXPECT_EQ(list({d, a}, false), (List{0, 3})); // in the order of the scene
    EXPECT_EQ(list({both, both, a}, false), (List{0, 1, 2}));
    EXPECT_EQ(list({both}, true), (List{0, 3}));
    EXPECT_EQ(list({}, false), List{});
    EXPECT_EQ(list({}, true), (List{0, 1, 2, 3}));
    EXPECT_EQ(list({12345, 0}, false), List{});
}

TEST(LightList, TwoListsOfOneShaderLiveSideBySide)
{
    Scene scene;
    std::vector<miTag> lights;
    for (int i = 0; i < 3; ++i)
        lights.push_back(
            scene.place(scene.pointLight({0, 0, 0}, [](miColor&, miState&) { return miTRUE; })).tag);
    scene.place(scene.square(1), {0, 0, -1}).materials = {scene
                                                              .material([&](miColor&, miState& state) {
                                                                  miTag *one = lights.data(),
                                                                        *rest = lights.data();
                                                                  int n = 1, m = 1;
                                                                  mi_inclusive_lightlist(&n, &one, &state);
                                                                  const miTag before = one[0];
                                                                  mi_exclusive_lightlist(&m, &rest, &state);
                                                                  EXPECT_EQ(n, 1);
                                                                  EXPECT_EQ(m, 2);
                                                                  EXPECT_EQ(one[0], before);
                                                                  EXPECT_NE(rest[0], before);
                                                                  EXPECT_NE(rest[1], before);
                                                                  return miTRUE;
                                                              })
                                                              .tag};
    scene.look();
}

/// Lights at x = 0, 1, 2 and 3, of which those at 1 and 2 are in a group, and a square that is seen and asks
/// for the light list of its instance.
struct Listed : Scene {
    host::Instance* square;
    host::Group* outer;
    host::Instance* outerInstance;
    std::vector<miTag> lights;
    miTag pair;
    std::vector<float> found;
    miTag asked = 0; ///< whose list; null: that of the square

    Listed()
    {
        auto& group = session.database.make<host::Group>();
        outer = &session.database.make<host::Group>();
        for (int x = 0; x < 4; ++x)
            lights.push_back(place(pointLight({0, 0, 0}, [](miColor&, miState&) { return miTRUE; }),
                                   {float(x), 0, 0}, x == 1 || x == 2 ? &group : nullptr)
                                 .tag);
        auto& both = place(group);
        pair = both.tag;
        std::swap(root.members[root.members.size() - 1], root.members[root.members.size() - 2]);
        square = &place(Scene::square(1), {0, 0, -1}, outer);
        outerInstance = &place(*outer);
        square->materials = {material([this](miColor&, miState& state) {
                                 int n = 1;
                                 miTag none = 77;
                                 miTag* list = &none;
                                 if (asked)
                                     state.instance = asked == 1 ? miNULLTAG : asked;
                                 EXPECT_TRUE(mi_instance_lightlist(&n, &list, &state));
                                 found.clear();
                                 for (int i = 0; i < n; ++i) {
                                     const auto* leaf = session.database.findAs<host::Instance>(list[i]);
                                     found.push_back(leaf->record.tf.local_to_global[12]);
                                     EXPECT_NE(leaf->record.parent, 0u) << "a leaf";
                                 }
                                 EXPECT_EQ(none, 77u);
                                 return miTRUE;
                             }).tag};
    }
    static void give(host::Instance& instance, const std::vector<miTag>& tags, bool exclusive = false)
    {
        instance.hasLights = true;
        instance.lights = tags;
        instance.record.exclusive = exclusive;
    }
    std::vector<float> list()
    {
        look();
        return found;
    }
};

using List = std::vector<float>;

TEST(InstanceLightList, IsAllOfTheSceneWhenThereIsNone)
{
    Listed scene;
    EXPECT_EQ(scene.list(), (List{0, 1, 2, 3}));
    scene.asked = 1;
    EXPECT_EQ(scene.list(), (List{0, 1, 2, 3})) << "of a state without a surface";
}

TEST(InstanceLightList, PlainAndExclusive)
{
    Listed scene;
    Listed::give(*scene.square, {scene.lights[3], scene.lights[0], scene.lights[3]});
    EXPECT_EQ(scene.list(), (List{0, 3})) << "each once, in the order of the scene";
    Listed::give(*scene.square, {scene.pair, scene.lights[2]});
    EXPECT_EQ(scene.list(), (List{1, 2})) << "groups are all their lights";
    Listed::give(*scene.square, {scene.pair}, true);
    EXPECT_EQ(scene.list(), (List{0, 3}));
    Listed::give(*scene.square, {}, true);
    EXPECT_EQ(scene.list(), (List{0, 1, 2, 3}));
    Listed::give(*scene.square, {scene.cameraInstance.tag, 4711});
    EXPECT_EQ(scene.list(), List{}) << "nothing of what was listed is a light";
}

TEST(InstanceLightList, TheNearestOneCounts)
{
    Listed scene;
    Listed::give(*scene.outerInstance, {scene.lights[3]});
    EXPECT_EQ(scene.list(), List{3});
    Listed::give(*scene.square, {scene.lights[0]}, true);
    EXPECT_EQ(scene.list(), (List{1, 2, 3}));
}

TEST(InstanceLightList, HiddenLightsAreInNone)
{
    Listed scene;
    scene.session.database.findAs<host::Instance>(scene.lights[0])->record.off = miTRUE;
    EXPECT_EQ(scene.list(), (List{1, 2, 3}));
    Listed::give(*scene.square, {scene.lights[0], scene.lights[1]});
    EXPECT_EQ(scene.list(), List{1});
    Listed::give(*scene.square, {scene.lights[0], scene.lights[1]}, true);
    EXPECT_EQ(scene.list(), (List{2, 3}));
}

TEST(LightList, LeafTagsStandForThemselves)
{
    Scene scene;
    auto& group = scene.session.database.make<host::Group>();
    scene.place(scene.pointLight({0, 0, 0}, [](miColor&, miState&) { return miTRUE; }), {0, 0, 0}, &group);
    scene.place(group, {1, 0, 0});
    scene.place(group, {2, 0, 0});
    scene.place(scene.square(1), {0, 0, -1}).materials = {
        scene
            .material([&](miColor&, miState& state) {
                int all = 0;
                miTag* list = nullptr;
                mi_exclusive_lightlist(&all, &list, &state);
                EXPECT_EQ(all, 2);
                const miTag second = list[1];
                for (const bool exclusive : {false, true}) {
                    const miTag tags[] = {second, second};
                    miTag* chosen = const_cast<miTag*>(tags);
                    int n = 2;
                    (exclusive ? mi_exclusive_lightlist : mi_inclusive_lightlist)(&n, &chosen, &state);
                    EXPECT_EQ(n, 1);
                    EXPECT_EQ(chosen[0] == second, !exclusive);
                }
                int samples = 0;
                miColor color;
                while (mi_sample_light(&color, nullptr, nullptr, &state, second, &samples)) {
                }
                EXPECT_EQ(samples, 1) << "one path of two";
                return miTRUE;
            })
            .tag};
    scene.look();
}

TEST(LightList, ANegativeCountIsAnEmptyList)
{
    Scene scene;
    scene.place(scene.pointLight({0, 0, 0}, [](miColor&, miState&) { return miTRUE; }));
    scene.place(scene.square(1), {0, 0, -1}).materials = {scene
                                                              .material([&](miColor&, miState& state) {
                                                                  int n = -5;
                                                                  miTag* list = nullptr;
                                                                  mi_inclusive_lightlist(&n, &list, &state);
                                                                  EXPECT_EQ(n, 0);
                                                                  n = -5;
                                                                  mi_exclusive_lightlist(&n, &list, &state);
                                                                  EXPECT_EQ(n, 1);
                                                                  return miTRUE;
                                                              })
                                                              .tag};
    scene.look();
}

} // namespace
