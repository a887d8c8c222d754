// SPDX-License-Identifier: BSD-3-Clause
// Names with and without a namespace around.
#include "tests/host/language/scene.h"

namespace test {

namespace {

const std::string leaf = "declare color \"leaf\" ( color \"c\", material \"m\" ) ";

miTag sourceOf(Scene& scene, const std::string& shader)
{
    return scene.get<host::Function>(shader).connections().at(0).sourceTag;
}

} // namespace

TEST(Namespace, GoesBeforeTheNamesOfWhatIsDefinedInside)
{
    Scene scene(
        leaf +
        "namespace \"n\" shader \"a\" \"leaf\" ( ) material \"m\" = \"a\" end material\n"
        "namespace \"deep\" camera \"c\" end camera end namespace light \"l\" end light end namespace\n"
        "light \"out\" end light");
    for (const char* const name : {"n::a", "n::m", "n::deep::c", "n::l", "out"})
        EXPECT_NE(scene.session.database.lookup(name), miNULLTAG) << name;
    for (const char* const name : {"a", "n::out", "deep::c", "c"})
        EXPECT_EQ(scene.session.database.lookup(name), miNULLTAG) << name;
    EXPECT_EQ(scene.get<host::Function>("n::a").name, "n::a") << "shaders are told the full name";
}

TEST(Namespace, NamesAreLookedForFromInsideOut)
{
    Scene scene(leaf + R"(shader "a" "leaf" ( ) shader "only" "leaf" ( )
namespace "n" shader "a" "leaf" ( )
    namespace "m" shader "a" "leaf" ( )
        shader "inner" "leaf" ( "c" = "a" ) shader "global" "leaf" ( "c" = "::a" )
        shader "middle" "leaf" ( "c" = "n::a" ) shader "outer" "leaf" ( "c" = "only" )
    end namespace
    shader "between" "leaf" ( "c" = "a" ) shader "down" "leaf" ( "c" = "m::a" )
end namespace
shader "outside" "leaf" ( "c" = "n::m::a" ) shader "plain" "leaf" ( "c" = "a" ))");
    const auto tag = [&](const char* name) { return scene.session.database.lookup(name); };
    EXPECT_EQ(sourceOf(scene, "n::m::inner"), tag("n::m::a"));
    EXPECT_EQ(sourceOf(scene, "n::m::global"), tag("a"));
    EXPECT_EQ(sourceOf(scene, "n::m::middle"), tag("n::a"));
    EXPECT_EQ(sourceOf(scene, "n::m::outer"), tag("only"));
    EXPECT_EQ(sourceOf(scene, "n::between"), tag("n::a"));
    EXPECT_EQ(sourceOf(scene, "n::down"), tag("n::m::a"));
    EXPECT_EQ(sourceOf(scene, "outside"), tag("n::m::a"));
    EXPECT_EQ(sourceOf(scene, "plain"), tag("a"));
    EXPECT_TRUE(scene.messages.lines().empty()) << "equal names in different places are no second definition";
}

TEST(Namespace, ANameWithColonsInFrontIsDefinedOutside)
{
    Scene scene("namespace \"n\" camera \"::c\" end camera camera \"c\" end camera end namespace");
    EXPECT_NE(scene.session.database.lookup("c"), scene.session.database.lookup("n::c"));
    EXPECT_EQ(scene.get<host::Camera>("c").name, "c");
}

TEST(Namespace, MayBeReopenedAndChanged)
{
    Scene scene("namespace \"n\" camera \"c\" focal 2 end camera end namespace\n"
                "namespace \"n\" incremental camera \"c\" aperture 3 end camera end namespace\n"
                "incremental camera \"n::c\" aspect 5 end camera");
    const miCamera& c = scene.get<host::Camera>("n::c").record;
    EXPECT_EQ((Floats{c.focal, c.aperture, c.aspect}), (Floats{2, 3, 5}));
    scene.read("namespace \"n\" camera \"c\" end camera end namespace");
    EXPECT_EQ(scene.messages.count("\"n::c\" is defined again"), 1);
    scene.read("namespace \"n\" delete \"c\" end namespace");
    EXPECT_EQ(scene.session.database.lookup("n::c"), miNULLTAG);
}

TEST(Namespace, DeclarationsAndVariablesAreNotAffected)
{
    Scene scene("namespace \"n\" " + leaf + "set \"v\" end namespace shader \"s\" \"leaf\" ( )");
    EXPECT_TRUE(scene.session.variables.contains("v"));
    EXPECT_NE(scene.session.database.lookup("s"), miNULLTAG);
}

TEST(Namespace, HasOneEndAndAName)
{
    EXPECT_EQ(errorOf("namespace \"n\" camera \"c\" end camera"),
              "1:36: found the end of the text, expected a command or the end of the namespace");
    EXPECT_EQ(errorOf("end namespace"), "1:1: found the end of the namespace, expected a command");
    EXPECT_EQ(errorOf("namespace \"\" end namespace"),
              "1:11: a namespace needs a name without colons, found \"\"");
    EXPECT_EQ(errorOf("namespace \"a::b\" end namespace"),
              "1:11: a namespace needs a name without colons, found \"a::b\"");
    EXPECT_EQ(errorOf("namespace \"n\" declare data \"d\" ( ) end namespace"), "accepted")
        << "a declaration of data may leave out its end";
    EXPECT_EQ(errorOf("namespace \"n\" declare data \"d\" ( ) end declare end namespace"), "accepted");
}

TEST(Namespace, NamesAroundAreOfLimitedLength)
{
    const std::string name(600, 'x');
    EXPECT_EQ(errorOf("namespace \"" + name + "\" end namespace"), "accepted");
    EXPECT_EQ(errorOf("namespace \"" + name + "\"\nnamespace \"" + name + "\" end namespace end namespace"),
              "2:11: the names of namespaces and phenomena around are longer than 1024 bytes together");
}

} // namespace test
