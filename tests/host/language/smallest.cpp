// SPDX-License-Identifier: BSD-3-Clause
// A whole small scene: every kind of element, and what refers to what.
#include "tests/host/language/scene.h"

namespace test {

TEST(Smallest, EveryElementIsThereAndRefersToItsPartners)
{
    Scene scene(R"(verbose on
link "base.so"
declare shader color "point" ( color "color", boolean "shadow" ) version 1 apply light end declare
declare shader color "lambert" ( color "diffuse", array light "lights" ) version 1 apply material end declare
options "opt"  samples 0 1  trace depth 2  shadow on  object space  end options
camera "cam"
    output "rgba" "tif" "first.tif"
    focal 50  aperture 36  aspect 1.333333  resolution 320 240
    frame 1
end camera
instance "cam-i" "cam"  transform 1 0 0 0  0 1 0 0  0 0 1 0  0 0 -5 1  end instance   # camera at z = +5
light "key"  "point" ( "color" 1 1 1 )  origin 0 0 0  end light
instance "key-i" "key"  transform 1 0 0 0  0 1 0 0  0 0 1 0  -2 -3 -4 1  end instance # light at (2,3,4)
material "grey"  "lambert" ( "diffuse" .7 .7 .7, "lights" ["key-i"] )  end material
object "quad"  visible trace shadow
    group  -1 -1 0  1 -1 0  1 1 0  -1 1 0
           v 0 v 1 v 2 v 3
           c "grey" 0 1 2 3
    end group
end object
instance "quad-i" "quad"  end instance
instgroup "root"  "cam-i" "key-i" "quad-i"  end instgroup
render "root" "cam-i" "opt")");

    const auto tag = [&](const char* name) { return scene.session.database.lookup(name); };
    ASSERT_EQ(scene.renders.size(), 1u);
    EXPECT_EQ(scene.renders[0].root, tag("root"));
    EXPECT_EQ(scene.renders[0].camera, tag("cam-i"));
    EXPECT_EQ(scene.renders[0].options, tag("opt"));
    EXPECT_EQ(scene.renders[0].where.text(), "scene:23:8");

    EXPECT_EQ(scene.get<host::Group>("root").members,
              (std::vector<miTag>{tag("cam-i"), tag("key-i"), tag("quad-i")}));
    EXPECT_EQ(scene.get<host::Instance>("cam-i").record.item, tag("cam"));
    EXPECT_EQ(scene.get<host::Instance>("cam-i").record.tf.local_to_global[14], 5.0f);
    EXPECT_EQ(scene.get<host::Instance>("key-i").record.tf.local_to_global[13], 3.0f);

    const host::Object& quad = scene.get<host::Object>("quad");
    EXPECT_EQ(quad.vectors.size(), 4u);
    ASSERT_EQ(quad.polygons.size(), 1u);
    EXPECT_EQ(quad.polygons[0].material, tag("grey"));
    EXPECT_EQ(quad.loopVertices, (std::vector<std::uint32_t>{0, 1, 2, 3}));

    host::Material& grey = scene.get<host::Material>("grey");
    ASSERT_EQ(grey.shader.size(), 1u);
    EXPECT_EQ(grey.record.shader, grey.shader[0]);
    EXPECT_EQ(scene.messages.lines(), std::vector<std::string>{});
}

TEST(Smallest, TextWithoutAnythingIsAScene)
{
    EXPECT_EQ(errorOf(""), "accepted");
    EXPECT_EQ(errorOf("\n \t\r\n# a comment"), "accepted");
}

} // namespace test
