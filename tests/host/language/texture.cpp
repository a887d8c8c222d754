// SPDX-License-Identifier: BSD-3-Clause
#include "tests/host/language/scene.h"

namespace test {

TEST(Texture, ImagesAreNamedByFile)
{
    Scene scene("color texture \"a\" \"a.tif\" scalar texture \"b\" \"b.tif\" vector texture \"c\" "
                "colorprofile \"p\" \"c.tif\"");
    EXPECT_EQ(scene.get<host::Texture>("a").file, "a.tif");
    EXPECT_EQ(scene.get<host::Texture>("a").textureKind, host::Texture::Kind::color);
    EXPECT_EQ(scene.get<host::Texture>("b").textureKind, host::Texture::Kind::scalar);
    EXPECT_EQ(scene.get<host::Texture>("c").textureKind, host::Texture::Kind::vector);
    EXPECT_FALSE(scene.get<host::Texture>("a").filter || scene.get<host::Texture>("a").writable);
    EXPECT_EQ(scene.messages.count("colour profile"), 1);
}

TEST(Texture, WordsInFront)
{
    Scene scene("local filter 2.5 writable color texture \"a\" \"a.tif\" filter color texture \"b\" "
                "\"b.tif\" color texture \"c\" \"c.tif\"");
    EXPECT_TRUE(scene.get<host::Texture>("a").filter && scene.get<host::Texture>("a").writable);
    EXPECT_EQ(scene.get<host::Texture>("a").filterScale, 2.5f);
    EXPECT_TRUE(scene.get<host::Texture>("b").filter);
    EXPECT_EQ(scene.get<host::Texture>("b").filterScale, 1.0f);
    EXPECT_FALSE(scene.get<host::Texture>("c").filter || scene.get<host::Texture>("b").writable);
}

TEST(Texture, PixelsMayStandInTheScene)
{
    Scene scene("scalar texture \"s\" [2 1] '0180' color texture \"c\" [1 1 2] '0001 0002' '0003' color "
                "texture \"d\" [1 1] '01020304'");
    EXPECT_EQ(scene.get<host::Texture>("s").bytes, (std::vector<unsigned char>{1, 128}));
    const host::Texture& c = scene.get<host::Texture>("c");
    EXPECT_EQ((std::vector<int>{c.width, c.height, c.depth}), (std::vector<int>{1, 1, 2}));
    EXPECT_EQ(c.bytes, (std::vector<unsigned char>{0, 1, 0, 2, 0, 3}));
    EXPECT_EQ(scene.get<host::Texture>("d").bytes.size(), 4u);
    EXPECT_EQ(errorOf("color texture \"t\" [2 2] '00'"),
              "1:15: the pixels of this texture take 12 or 16 bytes, found 1");
    EXPECT_EQ(errorOf("scalar texture \"t\" [2 2] '00'"),
              "1:16: the pixels of this texture take 4 bytes, found 1");
    EXPECT_EQ(errorOf("scalar texture \"t\" [2 2 3] '00'"),
              "1:20: \"texture\" takes 1, 2 or 4 bytes per component, found 3");
    EXPECT_EQ(errorOf("scalar texture \"t\" [0 2] '00'"),
              "1:20: \"texture\" takes integers from 1 to 65536, found 0");
    EXPECT_EQ(errorOf("scalar texture \"t\" [2] '00'"), "1:20: \"texture\" takes 2 or 3 numbers, found 1");
}

TEST(Texture, AShaderMayStandInPlaceOfAnImage)
{
    Scene scene("declare color \"noise\" ( scalar \"s\" ) color texture \"t\" \"noise\" ( \"s\" 2 )");
    ASSERT_EQ(scene.get<host::Texture>("t").procedural.size(), 1u);
    EXPECT_EQ(scene.get<host::Texture>("t").file, "");
}

TEST(Texture, AChangeReplacesTheContents)
{
    Scene scene("filter writable color texture \"t\" \"a.tif\" incremental color texture \"t\" \"b.tif\"");
    EXPECT_EQ(scene.get<host::Texture>("t").file, "b.tif");
    EXPECT_TRUE(scene.get<host::Texture>("t").filter && scene.get<host::Texture>("t").writable);
    EXPECT_EQ(scene.session.database.last(), 1u);
}

} // namespace test
