// SPDX-License-Identifier: BSD-3-Clause
// Scenes with what they include.
#include "declare/files.h"
#include "declare/scene.h"

#include <gtest/gtest.h>

TEST(UsedText, IsWhatTheOtherStatementsName)
{
    EXPECT_EQ(declare::used(R"(# The whole.

shader "unused" "a" ( "in" 1 )

# Both.
shader "x" "a" # "unused" (
    ( "in" = "y.member",
      "out" 2 )   # the end
)"
                            "# One.\n"
                            R"(shader "z" "a" ( )
material "m"  = "x"  end material
)"),
              R"(# The whole.

# Both.
shader "x" "a" # "unused" (
    ( "in" = "y.member",
      "out" 2 )   # the end
# One.
material "m"  = "x"  end material
)");
}

TEST(UsedText, FollowsNamesThroughShadersAndDeclarations)
{
    const std::string chain = R"(color texture "t" "t.png"
declare phenomenon color "p" ( )
    shader "inner" "a" ( "tex" "t" )
    root = "inner"
end declare
shader "s" "p" ( )
shader "f" "b" ( "in" = "s.r" )
)";
    EXPECT_EQ(declare::used(chain + "render \"f\"\n"), chain + "render \"f\"\n");
    EXPECT_EQ(declare::used(chain + "render \"t\"\n"), "color texture \"t\" \"t.png\"\nrender \"t\"\n");
    EXPECT_EQ(declare::used(chain + "\n# render \"f\"\n"), "");
    EXPECT_EQ(declare::used(""), "");
}

TEST(WholeScene, DecidesConditionsAndHasWhatIsGuardedOnce)
{
    const std::filesystem::path folder = testing::TempDir() + "vhl_guarded_scene";
    declare::writeFile(folder / "a.mi", "set \"mine\"\n$include \"b.mi\"\n$include \"b.mi\"\nlight\n");
    declare::writeFile(folder / "b.mi",
                       "# B.\n$ifndef \"b\"\nset \"b\"\nonce\n$include \"c.mi\"\n$endif\nmore\n");
    declare::writeFile(folder / "c.mi",
                       "$ifndef \"mine\"\n$include \"none.mi\"\n$endif\n$ifndef \"other\"\nother\n$endif\n");
    EXPECT_EQ(declare::wholeScene(folder / "a.mi").text, "# B.\nonce\nother\nmore\n# B.\nmore\nlight\n");
    std::filesystem::remove_all(folder);
}

TEST(WholeScene, HasWhatItIncludesAndNamesWhatLiesBeside)
{
    const std::filesystem::path folder = testing::TempDir() + "vhl_whole_scene";
    declare::writeFile(folder / "a.mi", "# SPDX\n# A.\n\n$include \"b/b.mi\"\nrender \"t\" \"s\"\n");
    declare::writeFile(folder / "b/b.mi", "# SPDX\n# B.\n\n$include <vhl.mi>\n$include \"c.mi\"\n");
    declare::writeFile(folder / "b/c.mi",
                       "color texture \"t\" \"../d/t.png\"\ncolor texture \"u\" \"u.png\"\n");
    const declare::WholeScene whole = declare::wholeScene(folder / "a.mi");
    EXPECT_EQ(whole.text, "# SPDX\n# A.\n\n$include <vhl.mi>\ncolor texture \"t\" \"t.png\"\n"
                          "render \"t\" \"s\"\n");
    EXPECT_EQ(whole.textures, std::set<std::filesystem::path>{folder / "b/../d/t.png"});
    EXPECT_THROW(declare::wholeScene(folder / "none.mi"), std::runtime_error);
    std::filesystem::remove_all(folder);
}
