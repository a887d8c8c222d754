// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/leaves.h"

#include "host/render/vector.h"
#include "tests/harness/stage.h"
#include "tests/host/render/scene.h"

#include <gtest/gtest.h>

#include <random>
#include <tuple>

namespace {

using namespace host;
using test::errorOf;

/// A scene graph without anything that could be rendered.
struct Graph {
    Database database;
    Group& root = database.make<Group>("root");
    Object& object = database.make<Object>("thing");

    Instance& place(Element& element, Group& group, const std::string& name = {})
    {
        auto& instance = database.make<Instance>(name);
        instance.record.item = element.tag;
        group.members.push_back(instance.tag);
        return instance;
    }
    Leaves leaves() { return Leaves(database, root.tag); }
};

TEST(Leaves, OneForEachPathWithTheLowestInstanceAsParent)
{
    Graph g;
    Group& inner = g.database.make<Group>("inner");
    Instance& low = g.place(g.object, inner, "low");
    g.place(inner, g.root, "left");
    g.place(inner, g.root, "right");
    Instance& direct = g.place(g.object, g.root, "direct");
    const Leaves leaves = g.leaves();
    ASSERT_EQ(leaves.objects().size(), 3u);
    EXPECT_EQ(leaves.objects()[0]->record.parent, low.tag);
    EXPECT_EQ(leaves.objects()[1]->record.parent, low.tag);
    EXPECT_EQ(leaves.objects()[2]->record.parent, direct.tag);
    EXPECT_NE(leaves.objects()[0]->tag, leaves.objects()[1]->tag);
    for (const Instance* const leaf : leaves.objects()) {
        EXPECT_EQ(leaf->record.item, g.object.tag);
        EXPECT_EQ(g.database.find(leaf->tag), leaf);
        EXPECT_TRUE(leaf->name.empty());
    }
}

TEST(Leaves, AreGoneAfterwards)
{
    Graph g;
    g.place(g.object, g.root);
    miTag tag = 0;
    {
        const Leaves leaves = g.leaves();
        tag = leaves.objects().front()->tag;
        EXPECT_TRUE(g.database.find(tag));
    }
    EXPECT_FALSE(g.database.find(tag));
}

TEST(Leaves, MatricesMultiplyFromTheRootDown)
{
    std::mt19937 random(3);
    std::uniform_real_distribution<double> number(-1.0, 1.0);
    Graph g;
    Group* group = &g.root;
    std::vector<Instance*> path;
    for (int level = 0; level < 4; ++level) {
        Group& next = g.database.make<Group>();
        path.push_back(&g.place(level == 3 ? static_cast<Element&>(g.object) : next, *group));
        Matrix m = identityMatrix;
        for (const int i : {0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14})
            m[std::size_t(i)] += 0.5 * number(random);
        test::setMatrix(*path.back(), m);
        group = &next;
    }
    const Leaves leaves = g.leaves();
    const miTransform& tf = leaves.objects().front()->record.tf;
    for (int i = 0; i < 20; ++i) {
        const miVector world = {float(number(random)), float(number(random)), float(number(random))};
        // The point passes the top instance first.
        miVector local = world;
        for (const Instance* const instance : path)
            local = transformPoint(local, instance->record.tf.global_to_local);
        const miVector composed = transformPoint(world, tf.global_to_local);
        EXPECT_NEAR(composed.x, local.x, 2e-5);
        EXPECT_NEAR(composed.y, local.y, 2e-5);
        EXPECT_NEAR(composed.z, local.z, 2e-5);
        const miVector back = transformPoint(composed, tf.local_to_global);
        EXPECT_NEAR(back.x, world.x, 2e-5);
        EXPECT_NEAR(back.y, world.y, 2e-5);
        EXPECT_NEAR(back.z, world.z, 2e-5);
    }
    EXPECT_FALSE(tf.identity);
}

TEST(Leaves, ADeepTreeOfRotationsKeepsItsAccuracy)
{
    Graph g;
    Group* group = &g.root;
    const double c = std::cos(0.01), s = std::sin(0.01);
    for (int level = 0; level < 600; ++level) {
        Group& next = g.database.make<Group>();
        test::setMatrix(g.place(next, *group), {c, s, 0, 0, -s, c, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
        group = &next;
    }
    g.place(g.object, *group);
    const Leaves leaves = g.leaves();
    EXPECT_NEAR(leaves.objects().front()->record.tf.local_to_global[0], std::cos(6.0), 2e-5);
}

TEST(Leaves, MotionIsThatOfAllInstancesOnThePathUnlessOneIsOff)
{
    const Matrix up = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 8, 0, 1};
    const Matrix twice = {2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1};
    struct Row {
        const char* why;
        miUint1 outer, inner; ///< gen_motion; when given, (10, 0, 0) goes to (0, 8, 0), the inner size to 2
        double x, y, z;       ///< how far (1, 2, 3) of the object then moves
    };
    const Row rows[] = {{"at rest", inheritsMotion, inheritsMotion, 0, 0, 0},
                        {"its own", inheritsMotion, givesMotion, 1, 2, 3},
                        {"inherited", givesMotion, inheritsMotion, -10, 8, 0},
                        {"both", givesMotion, givesMotion, -10 + 1, 8 + 2, 3},
                        {"switched off", givesMotion, stopsMotion, 0, 0, 0},
                        {"switched off above", stopsMotion, inheritsMotion, 0, 0, 0},
                        {"off above, its own", stopsMotion, givesMotion, 1, 2, 3}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.why);
        Graph g;
        Group& group = g.database.make<Group>("group");
        Instance& outer = g.place(group, g.root);
        Instance& inner = g.place(g.object, group);
        test::moveTo(outer, {10, 0, 0});
        for (const auto& [instance, says, matrix] :
             {std::tuple(&outer, row.outer, up), std::tuple(&inner, row.inner, twice)})
            if (says == givesMotion)
                test::setMotion(*instance, matrix);
            else
                instance->record.gen_motion = says;
        const Leaves leaves = g.leaves();
        const Instance& leaf = *leaves.objects()[0];
        const miVector drift = transformPoint({1, 2, 3}, leaf.drift);
        EXPECT_EQ(drift.x, row.x);
        EXPECT_EQ(drift.y, row.y);
        EXPECT_EQ(drift.z, row.z);
        EXPECT_EQ(leaf.hasMotion, row.x != 0);
        EXPECT_EQ(leaf.record.gen_motion, row.inner != inheritsMotion ? row.inner : row.outer);
        // Where the shutter closes, and back.
        const miVector there = transformPoint({1, 2, 3}, leaf.motionInverse);
        EXPECT_EQ(there.x, 11 + row.x);
        EXPECT_EQ(transformPoint(there, leaf.record.motion_transform).z, 3);
    }
}

// Rows of flags: what the upper and the lower instance say, and what the leaf has.
TEST(Leaves, ModesAreInheritedBitByBit)
{
    struct Row {
        const char* why;
        miUint1 upper, lower, leaf;
    };
    const Row rows[] = {{"unset everywhere", 0, 0, 0},
                        {"unset passes the parent's", 6, 0, 6},
                        {"set beats the parent's", 6, 9, 9},
                        {"one bit on, the other from above", 12, 1, 9},
                        {"one bit off, the other from above", 3, 4, 6},
                        {"all on", 12, 3, 3},
                        {"all off", 3, 12, 12}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.why);
        Graph g;
        Group& inner = g.database.make<Group>();
        Instance& upper = g.place(inner, g.root);
        Instance& lower = g.place(g.object, inner);
        upper.record.shadow = upper.record.reflection = upper.record.refraction = upper.record.transparency =
            row.upper;
        lower.record.shadow = lower.record.reflection = lower.record.refraction = lower.record.transparency =
            row.lower;
        const Leaves leaves = g.leaves();
        const miInstance& leaf = leaves.objects().front()->record;
        EXPECT_EQ(int(leaf.shadow), int(row.leaf));
        EXPECT_EQ(int(leaf.reflection), int(row.leaf));
        EXPECT_EQ(int(leaf.refraction), int(row.leaf));
        EXPECT_EQ(int(leaf.transparency), int(row.leaf));
    }
}

TEST(Leaves, InstancesOverrideTheObjectsOwnFlags)
{
    struct Row {
        miUint1 forced, object;
        bool first, second;
    };
    const Row rows[] = {{0, 0, false, false}, {0, 1, true, false},   {0, 2, false, true}, {0, 3, true, true},
                        {3, 0, true, true},   {12, 3, false, false}, {6, 1, false, true}, {1, 2, true, true},
                        {4, 3, false, true},  {8, 3, true, false}};
    for (const Row& row : rows) {
        SCOPED_TRACE(int(row.forced) * 16 + int(row.object));
        Object object;
        object.shadow = object.reflection = object.refraction = object.transparency = row.object;
        Instance leaf;
        leaf.record.shadow = leaf.record.reflection = leaf.record.refraction = leaf.record.transparency =
            row.forced;
        const unsigned bits = rayBits(object, leaf.record);
        EXPECT_EQ(bool(bits & castsShadow), row.first);
        EXPECT_EQ(bool(bits & receivesShadow), row.second);
        EXPECT_EQ(bool(bits & seenByReflection), row.first);
        EXPECT_EQ(bool(bits & castsReflection), row.second);
        EXPECT_EQ(bool(bits & seenByRefraction), row.first);
        EXPECT_EQ(bool(bits & castsRefraction), row.second);
        EXPECT_EQ(bool(bits & seenByTransparency), row.first);
        EXPECT_EQ(bool(bits & castsTransparency), row.second);
    }
    for (const bool own : {false, true})
        for (const int forced : {0, 1, 2}) {
            Object object;
            object.visible = own;
            Instance leaf;
            leaf.record.visible = miUint1(forced);
            EXPECT_EQ(bool(rayBits(object, leaf.record) & seenByEye), forced == 0 ? own : forced == 2);
        }
}

TEST(Leaves, TheNearestInstanceWithAMaterialWinsUnlessOneAboveOverrides)
{
    Graph g;
    Group& inner = g.database.make<Group>();
    Instance& upper = g.place(inner, g.root);
    Instance& lower = g.place(g.object, inner);
    const auto materials = [&] {
        const Leaves leaves = g.leaves();
        return leaves.objects().front()->materials;
    };
    upper.materials = {100, 101};
    EXPECT_EQ(materials(), (std::vector<miTag>{100, 101}));
    lower.materials = {200};
    EXPECT_EQ(materials(), (std::vector<miTag>{200}));
    lower.record.mtl_override = miTRUE;
    EXPECT_EQ(materials(), (std::vector<miTag>{200}));
    upper.record.mtl_override = miTRUE;
    EXPECT_EQ(materials(), (std::vector<miTag>{100, 101}));
    const Leaves leaves = g.leaves();
    EXPECT_EQ(leaves.objects().front()->record.material, 100u);
    EXPECT_EQ(leaves.objects().front()->record.mtl_array_size, 2);
}

TEST(Leaves, HideTakesOutEverythingBelow)
{
    Graph g;
    Group& inner = g.database.make<Group>();
    Instance& upper = g.place(inner, g.root);
    g.place(g.object, inner);
    upper.record.off = miTRUE;
    EXPECT_TRUE(g.leaves().objects().empty());
}

TEST(Leaves, LightsAreFoundBelowEveryInstanceOfTheirPath)
{
    Graph g;
    Group& inner = g.database.make<Group>();
    Light& light = g.database.make<Light>();
    Instance& a = g.place(light, inner);
    Instance& b = g.place(light, inner);
    Instance& left = g.place(inner, g.root);
    Instance& right = g.place(inner, g.root);
    Instance& alone = g.place(light, g.root);
    const Leaves leaves = g.leaves();
    using List = std::vector<std::uint32_t>;
    EXPECT_EQ(leaves.lights().size(), 5u);
    EXPECT_EQ(leaves.lightsBelow(left.tag), (List{0, 1}));
    EXPECT_EQ(leaves.lightsBelow(right.tag), (List{2, 3}));
    EXPECT_EQ(leaves.lightsBelow(a.tag), (List{0, 2}));
    EXPECT_EQ(leaves.lightsBelow(b.tag), (List{1, 3}));
    EXPECT_EQ(leaves.lightsBelow(alone.tag), (List{4}));
    EXPECT_EQ(leaves.lightsBelow(leaves.lights()[3]->tag), (List{3}));
    EXPECT_EQ(leaves.lightsBelow(light.tag), List{});
}

TEST(Leaves, AGroupInItselfIsAnErrorThatNamesIt)
{
    Graph g;
    Group& inner = g.database.make<Group>("inner");
    g.place(inner, g.root);
    g.place(inner, inner, "loop");
    EXPECT_EQ(errorOf([&] { g.leaves(); }), "group \"inner\" contains itself, through instance \"loop\"");
}

TEST(Leaves, NestingHasALimitAndNeedsNoStack)
{
    for (const std::size_t depth : {maximumGroupDepth - 1, maximumGroupDepth}) {
        Graph g;
        Group* group = &g.root;
        for (std::size_t i = 0; i < depth; ++i) {
            Group& next = g.database.make<Group>();
            g.place(next, *group);
            group = &next;
        }
        g.place(g.object, *group);
        if (depth < maximumGroupDepth)
            EXPECT_EQ(g.leaves().objects().size(), 1u);
        else
            EXPECT_EQ(errorOf([&] { g.leaves(); }), "groups nest deeper than 1000 levels");
    }
}

TEST(Leaves, AGraphThatUnfoldsWithoutEndIsAnError)
{
    Graph g;
    Group* group = &g.root;
    for (int i = 0; i < 60; ++i) {
        Group& next = g.database.make<Group>();
        g.place(next, *group);
        g.place(next, *group);
        group = &next;
    }
    EXPECT_EQ(errorOf([&] { g.leaves(); }), "the scene graph unfolds into more than 4000000 instances");
}

TEST(Leaves, WhatCannotBeInstancedIsAnError)
{
    Graph g;
    g.place(g.database.make<Options>("opt"), g.root, "odd");
    EXPECT_EQ(errorOf([&] { g.leaves(); }),
              "instance \"odd\" is of \"opt\", which is no object, light, camera or group");
    EXPECT_EQ(errorOf([&] { Leaves(g.database, g.object.tag); }),
              "the root of the scene graph is not a group");
}

} // namespace
