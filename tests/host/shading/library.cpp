// SPDX-License-Identifier: BSD-3-Clause
// Linking libraries and finding shaders in them.
#include "tests/harness/messages.h"
#include "tests/harness/stage.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

using namespace test;
using host::Type;

TEST(Library, AMissingFileIsToldWithTheLoadersReason)
{
    Stage stage;
    const host::Location where{host::fileName("scene.mi"), 1, 6};
    const std::string error = errorOf([&] { stage.session.libraries.link("nowhere.so", {"/tmp"}, where); });
    EXPECT_EQ(error,
              "scene.mi:1:6: library \"nowhere.so\" cannot be linked: nowhere.so: cannot open shared object "
              "file: No such file or directory; looked in \".\", \"/tmp\"");
}

TEST(Library, AFileThatIsNoLibraryIsToldWithTheLoadersReason)
{
    const std::filesystem::path file = std::filesystem::temp_directory_path() / "test_library_text.so";
    std::ofstream(file) << "this is not a shared object\n";
    Stage stage;
    const std::string error = errorOf([&] { stage.session.libraries.link(file.string(), {}, {}); });
    std::filesystem::remove(file);
    EXPECT_NE(error.find("cannot be linked: "), std::string::npos) << error;
    EXPECT_NE(error.find(file.string() + ": "), std::string::npos) << error;
}

TEST(Library, AnUndefinedFunctionIsNamed)
{
    Stage stage;
    const std::string error = errorOf([&] { stage.session.libraries.link(TEST_BROKEN_LIBRARY, {}, {}); });
    EXPECT_NE(error.find("undefined symbol: mi_is_nowhere_to_be_found (this host has no such function)"),
              std::string::npos)
        << error;
}

TEST(Library, IsFoundAlongThePathAndLinkedOnce)
{
    Stage stage;
    const std::filesystem::path file(TEST_SHADERS);
    const std::string folder = file.parent_path().string();
    EXPECT_NO_THROW(stage.session.libraries.link(file.filename().string(), {"/nowhere", folder}, {}));
    EXPECT_NO_THROW(stage.session.libraries.link(TEST_SHADERS, {}, {}));
    EXPECT_NE(stage.session.libraries.symbol("t_add"), nullptr);
    EXPECT_EQ(stage.session.libraries.symbol("t_nothing"), nullptr);
}

TEST(Library, AShaderThatNoLibraryHasIsNamedWhereItIsUsed)
{
    const auto error = [](const char* library, const char* declarations) {
        Stage stage{library};
        host::Declaration nothing = declaration("t_nothing", field(Type::color, ""), {}, 1);
        nothing.where = {host::fileName(declarations), 7, 15};
        stage.session.declarations.add(std::move(nothing));
        host::Function& f = stage.make("n", "t_nothing");
        f.where = {host::fileName("scene.mi"), 3, 12};
        return errorOf([&] { stage.prepare({&f}); });
    };
    const auto who = [](const std::string& declarations) {
        return "scene.mi:3:12: shader \"t_nothing\", declared at " + declarations + ":7:15, ";
    };
    const std::string among = "is in none of the linked libraries; is a link missing";
    const std::string none = "is in no library, as none is linked; is a link missing";
    EXPECT_EQ(error(TEST_SHADERS, "shaders.mi"), who("shaders.mi") + among + "?");
    EXPECT_EQ(error("", "shaders.mi"), who("shaders.mi") + none + "?");
    EXPECT_EQ(error(TEST_SHADERS, "a/base.mi"), who("a/base.mi") + among + ", such as link \"base.so\"?");
    EXPECT_EQ(error("", "base.mi"), who("base.mi") + none + ", such as link \"base.so\"?");
    EXPECT_EQ(error(TEST_SHADERS, "vhl.mi"), who("vhl.mi") + among + ", such as link \"libvhl.so\"?");
    EXPECT_EQ(error("", "a/vhl.mi"), who("a/vhl.mi") + none + ", such as link \"libvhl.so\"?");
}

TEST(Version, AMismatchNamesBothNumbersAndStopsUnlessIgnored)
{
    Stage stage{TEST_SHADERS};
    stage.declare("t_second", field(Type::scalar, ""), {}, 1);
    host::Function& f = stage.make("s", "t_second");
    const std::string text = "shader \"t_second\" is declared with version 1, but its library has version 2";
    EXPECT_EQ(errorOf([&] { stage.prepare({&f}); }), text);

    stage.session.libraries.ignoreVersions(true);
    Messages messages;
    EXPECT_NO_THROW(stage.runAlone<miScalar>(f));
    EXPECT_NO_THROW(stage.runAlone<miScalar>(f)) << "the next picture";
    EXPECT_EQ(messages.lines(), std::vector<std::string>{"LINK 0.0  error: " + text});
}

TEST(Version, NoVersionFunctionIsAWarning)
{
    Stage stage{TEST_SHADERS};
    stage.declare("t_no_version", field(Type::scalar, ""), {});
    host::Function& one = stage.make("one", "t_no_version");
    host::Function& two = stage.make("two", "t_no_version");
    Messages messages;
    stage.prepare({&one, &two});
    stage.prepare({&one, &two}); // for the next picture
    EXPECT_EQ(messages.lines(),
              std::vector<std::string>{"LINK 0.0  warn : shader \"t_no_version\" has no version function"});
}

} // namespace
