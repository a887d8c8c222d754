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

} // namespace
