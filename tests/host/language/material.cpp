// SPDX-License-Identifier: BSD-3-Clause
#include "tests/host/language/scene.h"

namespace test {

namespace {
const std::string shaders =
    "declare color \"a\" ( )\nshader \"s\" \"a\" ( ) shader \"t\" \"a\" ( ) shader \"u\" \"a\" ( )\n";
} // namespace

TEST(Material, ListsHaveRoles)
{
    Scene scene(
        shaders +
        R"(material "m" opaque = "s" = "t" shadow = "t" volume = "u" = "s" environment = "u" end material)");
    const host::Material& m = scene.get<host::Material>("m");
    const auto tag = [&](const char* name) { return scene.session.database.lookup(name); };
    EXPECT_EQ(m.shader, (host::ShaderList{tag("s"), tag("t")}));
    EXPECT_EQ(m.shadow, (host::ShaderList{tag("t")}));
    EXPECT_EQ(m.volume, (host::ShaderList{tag("u"), tag("s")}));
    EXPECT_EQ(m.environment, (host::ShaderList{tag("u")}));
    EXPECT_EQ(m.record.opaque, 1);
    EXPECT_EQ(m.record.shader, tag("s"));
    EXPECT_EQ(m.record.shadow, tag("t"));
    EXPECT_EQ(m.record.volume, tag("u"));
    EXPECT_EQ(m.record.environment, tag("u"));
}

TEST(Material, MayHaveNoShader)
{
    Scene scene("material \"m\" end material");
    EXPECT_TRUE(scene.get<host::Material>("m").shader.empty());
    EXPECT_EQ(scene.get<host::Material>("m").record.opaque, 0);
}

TEST(Material, AChangeKeepsReplacesOrClears)
{
    Scene scene(shaders + R"(material "m" = "s" shadow = "t" volume = "t" environment = "u" end material
        incremental material "m" shadow volume = "s" end material)");
    const host::Material& m = scene.get<host::Material>("m");
    const auto tag = [&](const char* name) { return scene.session.database.lookup(name); };
    EXPECT_EQ(m.shader, (host::ShaderList{tag("s")}));
    EXPECT_TRUE(m.shadow.empty());
    EXPECT_EQ(m.record.shadow, miNULLTAG);
    EXPECT_EQ(m.volume, (host::ShaderList{tag("s")}));
    EXPECT_EQ(m.environment, (host::ShaderList{tag("u")}));
}

TEST(Material, OtherRolesAreOneWarningEach)
{
    Scene scene(
        shaders +
        R"(material "m" = "s" displace = "s" photon = "s" photonvol = "s" contour = "s" lightmap = "s" end material
        material "n" = "s" displace = "s" photon end material)");
    EXPECT_EQ(scene.messages.lines().size(), 5u);
    EXPECT_EQ(scene.messages.count("the displacement shaders of materials are ignored"), 1);
    EXPECT_EQ(errorOf("material \"m\" displace = \"x\" end material"), "1:25: there is no shader \"x\"");
}

} // namespace test
