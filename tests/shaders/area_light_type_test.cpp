// SPDX-License-Identifier: BSD-3-Clause
// The geometry shader that makes an area light of a light: what it changes in the scene, and what it says.
#include "arena.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>

namespace {

constexpr int areaLight = 0, areaType = 4, objectSource = 8, samplesU = 12, samplesV = 16;

constexpr miTag lightInstance = 11, light = 12, ballInstance = 13, ball = 14;

const std::string me = "vhGeomSetAreaLightType_v1::init - ";

/// A light and a ball, and the shader that edits the former.
class Scene {
public:
    Scene() : arena(library, "vhGeomSetAreaLightType_v1")
    {
        std::memset(static_cast<void*>(&lightInstanceRecord), 0x5A, sizeof lightInstanceRecord);
        std::memset(static_cast<void*>(&lightRecord), 0xA5, sizeof lightRecord);
        lightInstanceRecord.item = light;
        ballInstanceRecord.item = ball;
        arena.at<miTag>(areaLight) = lightInstance;
        arena.at<miTag>(objectSource) = ballInstance;
        arena.at<int>(samplesU) = 3;
        arena.at<int>(samplesV) = 1;
        arena.renderer.access = [this](miTag tag) -> void* {
            return tag == lightInstance  ? &lightInstanceRecord
                   : tag == light        ? static_cast<void*>(&lightRecord)
                   : tag == ballInstance ? &ballInstanceRecord
                                         : nullptr;
        };
        arena.renderer.type = [](miTag tag) -> int {
            return tag == lightInstance || tag == ballInstance ? miSCENE_INSTANCE
                   : tag == light                              ? miSCENE_LIGHT
                   : tag == ball                               ? miSCENE_OBJECT
                                                               : miSCENE_NONE;
        };
        expectedInstance = lightInstanceRecord;
        expectedLight = lightRecord;
        expectedBall = ballInstanceRecord;
    }
    ~Scene() { arena.exit(); }

    void run(int type)
    {
        arena.at<int>(areaType) = type;
        arena.init();
    }

    /// Compares with the expected records, to the byte.
    void check() const
    {
        EXPECT_EQ(std::memcmp(&lightRecord, &expectedLight, sizeof lightRecord), 0);
        EXPECT_EQ(std::memcmp(&lightInstanceRecord, &expectedInstance, sizeof lightInstanceRecord), 0);
        EXPECT_EQ(std::memcmp(&ballInstanceRecord, &expectedBall, sizeof ballInstanceRecord), 0);
    }

    const Strings& messages() const { return arena.renderer.messages; }
    const std::vector<miTag>& opened() const { return arena.renderer.opened; }
    const std::vector<miTag>& closed() const { return arena.renderer.closed; }

    Library library;
    Arena arena;
    miInstance lightInstanceRecord;
    miLight lightRecord;
    miInstance ballInstanceRecord{};
    miInstance expectedInstance;
    miLight expectedLight;
    miInstance expectedBall;
};

using Tags = std::vector<miTag>;

} // namespace

TEST(AreaLightType, AnyOtherTypeDoesNothingAndSaysNothing)
{
    for (const int type : {2, -1, INT_MAX, INT_MIN}) {
        SCOPED_TRACE(type);
        Scene scene;
        scene.arena.watch({areaLight, areaType, objectSource, samplesU, samplesV});
        scene.run(type);
        scene.check();
        EXPECT_EQ(calls(scene.arena.renderer), Strings{"mi_phen_eval"}) << "nothing printed, nothing opened";
        EXPECT_EQ(scene.arena.evaluated, std::vector<int>{areaType});
    }
}

TEST(AreaLightType, NeedsALight)
{
    for (const int type : {0, 1}) {
        Scene scene;
        scene.arena.at<miTag>(areaLight) = miNULLTAG;
        scene.run(type);
        scene.check();
        EXPECT_EQ(scene.messages(),
                  Strings{me + "no light specified through areaLight parameter. Doing nothing\n"});
        EXPECT_EQ(calls(scene.arena.renderer), Strings{"mi_info"}) << "the null tag has no type to ask for";
    }
}

TEST(AreaLightType, ALightItselfIsRefused)
{
    for (const miTag wrong : {light, ball, miTag(99)}) {
        Scene scene;
        scene.arena.at<miTag>(areaLight) = wrong;
        scene.run(1);
        scene.check();
        EXPECT_EQ(scene.messages(),
                  Strings{me + "object connected to areaLight parameter is not an instance of a "
                               "light. Doing nothing 1\n"});
        EXPECT_EQ(scene.opened(), Tags());
    }
}

TEST(AreaLightType, AnInstanceOfGeometryIsRefusedAndStaysOpen)
{
    Scene scene;
    scene.arena.at<miTag>(areaLight) = ballInstance;
    scene.run(1);
    scene.check();
    EXPECT_EQ(scene.messages(),
              Strings{me + "object connected to areaLight parameter is not an instance of a "
                           "light. Doing nothing 2\n"});
    EXPECT_EQ(scene.opened(), Tags{ballInstance});
    EXPECT_EQ(scene.closed(), Tags());
}

TEST(AreaLightType, AnObjectGivesTheLightItsShapeAndPlace)
{
    Scene scene;
    scene.arena.at<int>(samplesU) = 5;
    scene.arena.at<int>(samplesV) = 4;
    scene.run(0);
    EXPECT_EQ(scene.messages(), (Strings{me + "setting area light type to Object\n",
                                         me + "setting area light Sampling to 5 4\n"}));
    EXPECT_EQ(scene.lightRecord.area, 5);
    EXPECT_EQ(scene.lightRecord.primitive.object.object, ballInstance);
    EXPECT_EQ(scene.lightRecord.samples_u, 5);
    EXPECT_EQ(scene.lightRecord.samples_v, 4);
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(scene.lightInstanceRecord.tf.global_to_local[i], i % 5 == 0 ? 1.0f : 0.0f) << i;
        EXPECT_EQ(scene.lightInstanceRecord.tf.local_to_global[i], i % 5 == 0 ? 1.0f : 0.0f) << i;
    }
    EXPECT_EQ(scene.opened(), (Tags{lightInstance, light}));
    EXPECT_EQ(scene.closed(), (Tags{light, lightInstance}));
    EXPECT_EQ(calls(scene.arena.renderer),
              (Strings{"mi_db_type", "mi_scene_edit", "mi_db_type", "mi_scene_edit", "mi_info", "mi_info",
                       "mi_db_type", "mi_matrix_ident", "mi_matrix_ident", "mi_scene_edit_end",
                       "mi_scene_edit_end"}));

    // Nothing else has changed.
    scene.expectedLight.area = miLIGHT_OBJECT;
    scene.expectedLight.primitive.object.object = ballInstance;
    scene.expectedLight.samples_u = 5;
    scene.expectedLight.samples_v = 4;
    miTransform& place = scene.expectedInstance.tf;
    for (miScalar* const matrix : {place.global_to_local, place.local_to_global})
        std::memcpy(matrix, scene.lightInstanceRecord.tf.global_to_local, sizeof(miMatrix));
    scene.check();
}

TEST(AreaLightType, SampleCountsHaveSixteenBits)
{
    for (const int type : {0, 1}) {
        Scene scene;
        scene.arena.at<int>(samplesU) = 70'000;
        scene.arena.at<int>(samplesV) = -1;
        scene.run(type);
        EXPECT_EQ(scene.lightRecord.samples_u, 4464);
        EXPECT_EQ(scene.lightRecord.samples_v, -1);
        EXPECT_EQ(scene.messages().back(), me + "setting area light Sampling to 70000 -1\n");
    }
}

TEST(AreaLightType, AUserAreaLeavesTheLightWhereItIs)
{
    Scene scene;
    scene.arena.at<miTag>(objectSource) = miNULLTAG;
    scene.run(1);
    EXPECT_EQ(scene.messages(), (Strings{me + "setting area light type to User\n",
                                         me + "setting area light Sampling to 3 1\n"}));
    EXPECT_EQ(scene.lightRecord.area, 6);
    scene.expectedLight.area = miLIGHT_USER;
    scene.expectedLight.samples_u = 3;
    scene.expectedLight.samples_v = 1;
    scene.check();
    EXPECT_EQ(scene.opened(), (Tags{lightInstance, light}));
    EXPECT_EQ(scene.closed(), (Tags{light, lightInstance}));
}

TEST(AreaLightType, AnObjectThatIsNoInstanceIsRefusedAndBothStayOpen)
{
    for (const miTag wrong : {miNULLTAG, light, ball, miTag(99)}) {
        SCOPED_TRACE(wrong);
        Scene scene;
        scene.arena.at<miTag>(objectSource) = wrong;
        scene.run(0);
        scene.check();
        EXPECT_EQ(
            scene.messages(),
            (Strings{me + "setting area light type to Object\n", me + "setting area light Sampling to 3 1\n",
                     me + "object connected to objectSource parameter is not an instance. "
                          "Doing nothing 2\n"}));
        EXPECT_EQ(scene.opened(), (Tags{lightInstance, light}));
        EXPECT_EQ(scene.closed(), Tags());
    }
}

TEST(AreaLightType, AnObjectWithoutAValueIsRefusedAndBothStayOpen)
{
    Scene scene;
    scene.arena.connect(objectSource);
    scene.arena.renderer.evaluate = [](void*) -> void* { return nullptr; };
    scene.run(0);
    scene.check();
    EXPECT_EQ(
        scene.messages(),
        (Strings{me + "setting area light type to Object\n", me + "setting area light Sampling to 3 1\n",
                 me + "object connected to objectSource parameter is null. Doing nothing 2\n"}));
    EXPECT_EQ(scene.opened(), (Tags{lightInstance, light}));
    EXPECT_EQ(scene.closed(), Tags());
}

TEST(AreaLightType, ReadsInOrderAndAnObjectOnlyWhenItNeedsOne)
{
    const std::vector<int> all = {areaLight, areaType, objectSource, samplesU, samplesV};
    for (const auto& [type, order] :
         {std::pair(0, std::vector{areaType, areaLight, samplesU, samplesV, objectSource}),
          std::pair(1, std::vector{areaType, areaLight, samplesU, samplesV})}) {
        SCOPED_TRACE(type);
        Scene scene;
        scene.arena.watch(all);
        scene.run(type);
        EXPECT_EQ(scene.arena.evaluated, order);
    }
}

TEST(AreaLightType, MakesNoGeometry)
{
    Scene scene;
    scene.arena.watch({areaLight, areaType, objectSource, samplesU, samplesV});
    scene.run(1);
    scene.arena.evaluated.clear();
    scene.arena.renderer.calls.clear();
    scene.expectedLight = scene.lightRecord;
    miTag result = 77;
    EXPECT_EQ(scene.arena.execute(result), 1);
    EXPECT_EQ(result, 77u);
    EXPECT_EQ(calls(scene.arena.renderer), Strings());
    scene.check();
}
