// SPDX-License-Identifier: BSD-3-Clause
#include "tests/harness/stage.h"

#include <gtest/gtest.h>
#include <shader.h>

#include <set>

namespace {

using namespace test;
using host::Type;

class QueryTest : public testing::Test {
protected:
    QueryTest()
    {
        camera.record.tf.global_to_local[12] = 5;
        camera.record.tf.local_to_global[12] = -5;
        object.record.tf.global_to_local[12] = 7;
        object.record.tf.local_to_global[12] = -7;
        state.camera_inst = camera.tag;
        state.instance = object.tag;
    }

    template <class T>
    T ask(miQ_type code, miTag tag = miNULLTAG)
    {
        T answer{};
        EXPECT_TRUE(mi_query(code, &state, tag, &answer)) << code;
        return answer;
    }

    bool knows(int code, miTag tag = miNULLTAG)
    {
        void* answer = nullptr;
        return mi_query(static_cast<miQ_type>(code), &state, tag, &answer) != miFALSE;
    }

    Stage stage{TEST_SHADERS};
    host::Instance& camera = stage.session.database.make<host::Instance>();
    host::Instance& object = stage.session.database.make<host::Instance>();
    miState state{};
};

TEST_F(QueryTest, TheUserSlotBelongsToTheInstance)
{
    stage.declare("t_add", field(Type::scalar, ""), {});
    host::Function& one = stage.make("one", "t_add");
    host::Function& two = stage.make("two", "t_add");
    state.shader = one.record();
    void** const slot = ask<void**>(miQ_FUNC_USERPTR);
    EXPECT_EQ(slot, &one.userSlot);
    EXPECT_EQ(*slot, nullptr);
    EXPECT_EQ(ask<void**>(miQ_FUNC_USERPTR, two.tag), &two.userSlot);
    state.shader = two.record();
    EXPECT_EQ(ask<void**>(miQ_FUNC_USERPTR), &two.userSlot);
    state.shader = nullptr;
    EXPECT_FALSE(knows(miQ_FUNC_USERPTR));
    EXPECT_FALSE(knows(miQ_FUNC_USERPTR, camera.tag));
}

TEST_F(QueryTest, AnInstanceAndItsShaderHaveALockEach)
{
    stage.declare("t_add", field(Type::scalar, ""), {});
    host::Function& one = stage.make("one", "t_add");
    host::Function& two = stage.make("two", "t_add");
    state.shader = one.record();
    EXPECT_FALSE(knows(miQ_DECL_LOCK)) << "before there is a network, there is no shader";
    stage.prepare({&one, &two});
    miLock* const own = ask<miLock*>(miQ_FUNC_LOCK);
    miLock* const shared = ask<miLock*>(miQ_DECL_LOCK);
    EXPECT_NE(own->lock, nullptr);
    EXPECT_NE(shared->lock, nullptr);
    EXPECT_NE(own->lock, shared->lock);
    EXPECT_EQ(ask<miLock*>(miQ_FUNC_LOCK), own);
    state.shader = two.record();
    EXPECT_NE(ask<miLock*>(miQ_FUNC_LOCK)->lock, own->lock);
    EXPECT_EQ(ask<miLock*>(miQ_DECL_LOCK), shared);
    EXPECT_EQ(ask<miLock*>(miQ_FUNC_LOCK, one.tag), own);
}

TEST_F(QueryTest, TheDeclaredVersion)
{
    stage.declare("t_add", field(Type::scalar, ""), {}, 3);
    state.shader = stage.make("f", "t_add").record();
    EXPECT_EQ(ask<int>(miQ_DECL_VERSION), 3);
}

TEST_F(QueryTest, InstanceFactsByTag)
{
    object.record.item = 11;
    object.record.parent = 12;
    object.record.tf.function = 13;
    object.record.tf.identity = 1;
    EXPECT_EQ(ask<miTag>(miQ_INST_ITEM, object.tag), 11u);
    EXPECT_EQ(ask<miTag>(miQ_INST_PARENT, object.tag), 12u);
    EXPECT_EQ(ask<miTag>(miQ_INST_FUNCTION, object.tag), 13u);
    EXPECT_EQ(ask<miBoolean>(miQ_INST_IDENTITY, object.tag), miTRUE);
    EXPECT_EQ(ask<miScalar*>(miQ_INST_GLOBAL_TO_LOCAL, object.tag), object.record.tf.global_to_local);
    EXPECT_EQ(ask<miScalar*>(miQ_INST_LOCAL_TO_GLOBAL, object.tag), object.record.tf.local_to_global);
    EXPECT_FALSE(knows(miQ_INST_ITEM));
    EXPECT_FALSE(knows(miQ_INST_ITEM, stage.session.database.make<host::Light>().tag));
}

TEST_F(QueryTest, LightFactsByTheLightOrAnInstanceOfIt)
{
    host::Light& light = stage.session.database.make<host::Light>();
    light.record.area = miLIGHT_DISC;
    light.record.samples_u = 4;
    light.record.samples_v = 5;
    object.record.item = light.tag;
    for (const miTag tag : {light.tag, object.tag}) {
        EXPECT_EQ(ask<int>(miQ_LIGHT_AREA, tag), miLIGHT_DISC);
        EXPECT_EQ(ask<int>(miQ_LIGHT_AREA_SAMPLES_U, tag), 4);
        EXPECT_EQ(ask<int>(miQ_LIGHT_AREA_SAMPLES_V, tag), 5);
    }
    EXPECT_FALSE(knows(miQ_LIGHT_AREA, camera.tag));
}

// Internal space is world space; the translation in element 12 tells the matrices apart.
TEST_F(QueryTest, TransformsBetweenSpaces)
{
    const std::vector<std::pair<miQ_type, float>> rows = {
        {miQ_TRANS_INTERNAL_TO_WORLD, 0},   {miQ_TRANS_WORLD_TO_INTERNAL, 0},
        {miQ_TRANS_INTERNAL_TO_CAMERA, 5},  {miQ_TRANS_WORLD_TO_CAMERA, 5},
        {miQ_TRANS_CAMERA_TO_INTERNAL, -5}, {miQ_TRANS_CAMERA_TO_WORLD, -5},
        {miQ_TRANS_INTERNAL_TO_OBJECT, 7},  {miQ_TRANS_WORLD_TO_OBJECT, 7},
        {miQ_TRANS_OBJECT_TO_INTERNAL, -7}, {miQ_TRANS_OBJECT_TO_WORLD, -7}};
    for (const auto& [code, x] : rows) {
        const miScalar* const matrix = ask<miScalar*>(code);
        EXPECT_EQ(matrix[12], x) << code;
        EXPECT_EQ(matrix[0], 1) << code;
        EXPECT_EQ(matrix[15], 1) << code;
    }
    state.instance = miNULLTAG;
    EXPECT_FALSE(knows(miQ_TRANS_WORLD_TO_OBJECT)) << "without a hit there is no object";
    EXPECT_TRUE(knows(miQ_TRANS_WORLD_TO_CAMERA));
}

TEST_F(QueryTest, UnknownCodesAreFalse)
{
    stage.declare("t_add", field(Type::scalar, ""), {});
    state.shader = stage.make("f", "t_add").record();
    const std::set<int> known = {51, 52, 89, 72, 73, 74, 75, 76, 77, 78, 79, 80, 81};
    for (int code = 0; code < 128; ++code)
        EXPECT_EQ(knows(code), known.count(code) == 1) << code;
}

// A query reaches the host through a loaded library as well.
TEST_F(QueryTest, ShadersAsk)
{
    stage.declare("t_query", field(Type::vector, ""),
                  {field(Type::integer, "code"), field(Type::geometry, "tag")}, 1);
    const auto ask = [&](int code) {
        return stage.runAlone<miVector>(stage.make("", "t_query", {argument("code", code)}));
    };
    EXPECT_EQ(ask(miQ_DECL_VERSION).x, 1);
    EXPECT_EQ(ask(miQ_DECL_VERSION).y, 1);
    EXPECT_EQ(ask(53).x, -1) << "untouched";
    EXPECT_EQ(ask(53).y, 0);
    EXPECT_EQ(ask(100'000).y, 0) << "a code of some later renderer";
}

} // namespace
