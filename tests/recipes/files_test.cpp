// SPDX-License-Identifier: BSD-3-Clause
// Each recipe has a scene, a picture, a page that tells its parameters, and a test.
#include "host/language/read.h"
#include "tests/recipes/recipe.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>

using namespace test;
namespace fs = std::filesystem;

namespace {

const fs::path source = VHL_SOURCE;

std::string contents(const fs::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::vector<std::string> recipes()
{
    const std::string text = contents(source / "declarations/recipes.mi");
    const std::regex head(R"x(declare phenomenon\s+\w+ "(\w+)")x");
    std::vector<std::string> names;
    for (std::sregex_iterator found(text.begin(), text.end(), head), end; found != end; ++found)
        names.push_back((*found)[1]);
    return names;
}

std::set<std::string> filesIn(const std::string& folder, const std::string& extension)
{
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(source / folder))
        if (entry.path().extension() == extension && entry.path().stem() != "README")
            names.insert(entry.path().stem().string());
    return names;
}

/// A number of four bytes in a PNG file's head.
unsigned numberAt(const std::string& bytes, std::size_t at)
{
    unsigned number = 0;
    for (std::size_t k = 0; k < 4; ++k)
        number = number << 8 | static_cast<unsigned char>(bytes.at(at + k));
    return number;
}

/// A default as scenes have it: the shortest text for single precision; on and off.
std::string defaultText(const host::Field& field)
{
    if (field.isArray || field.defaults.empty())
        return "empty";
    if (field.type == host::Type::boolean)
        return field.defaults[0] != 0 ? "on" : "off";
    std::ostringstream text;
    for (const double number : field.defaults)
        text << (text.tellp() > 0 ? " " : "") << number;
    return text.str();
}

} // namespace

TEST(RecipeFiles, ThereIsOneOfEachKindForEachRecipe)
{
    const std::vector<std::string> names = recipes();
    const std::set<std::string> unique(names.begin(), names.end());
    EXPECT_EQ(unique.size(), names.size());
    EXPECT_GE(names.size(), 30u);
    EXPECT_EQ(filesIn("examples/recipes", ".mi"), unique);
    EXPECT_EQ(filesIn("docs/pictures/recipes", ".png"), unique);
    EXPECT_EQ(filesIn("docs/recipes", ".md"), unique);
    for (const std::string& name : names)
        EXPECT_TRUE(std::regex_match(name, std::regex("vhr[A-Z][A-Za-z]*(Scalar|Vector|Color)_v[0-9]+")))
            << name;
}

TEST(RecipeFiles, ScenesUseTheirRecipeAndPicturesHaveTheirSize)
{
    for (const std::string& name : recipes()) {
        SCOPED_TRACE(name);
        EXPECT_NE(contents(source / "examples/recipes" / (name + ".mi")).find('"' + name + '"'),
                  std::string::npos);
        const std::string png = contents(source / "docs/pictures/recipes" / (name + ".png"));
        ASSERT_GT(png.size(), 33u);
        EXPECT_EQ(numberAt(png, 16), 240u);
        EXPECT_EQ(numberAt(png, 20), 180u);
        EXPECT_EQ(png[24], 8) << "bits";
    }
}

TEST(RecipeFiles, PagesTellParametersAndDefaults)
{
    host::Session session;
    session.libraries.link(VHL_LIBRARY, {}, {});
    host::readScene(session, VHL_DECLARATIONS "/vhl.mi");
    host::readScene(session, VHL_DECLARATIONS "/recipes.mi");
    const std::string index = contents(source / "docs/recipes/README.md");
    for (const std::string& name : recipes()) {
        SCOPED_TRACE(name);
        const host::Declaration* const declaration = session.declarations.find(name);
        ASSERT_TRUE(declaration);
        EXPECT_EQ(std::to_string(declaration->version.value()), name.substr(name.rfind("_v") + 2));
        EXPECT_NE(index.find("](" + name + ".md)"), std::string::npos) << "listed in the index";
        const std::string page = contents(source / "docs/recipes" / (name + ".md"));
        for (const host::Field& field : declaration->parameters) {
            const std::string kind =
                std::string(field.isArray ? "array of " : "") + std::string(typeName(field.type));
            const std::string row = "| `" + field.name + "` | " + kind + " | " + defaultText(field) + " | ";
            EXPECT_NE(page.find(row), std::string::npos) << row;
        }
    }
}

TEST(RecipeFiles, EachIsTested)
{
    std::string tests;
    for (const auto& entry : fs::directory_iterator(source / "tests/recipes"))
        if (entry.path().filename().string().ends_with("_test.cpp"))
            tests += contents(entry.path());
    for (const std::string& name : recipes())
        EXPECT_NE(tests.find('"' + name + '"'), std::string::npos) << name << " has no test";
}

// All that scenes have to load is vhl: a recipe that names anything else could not be read.
TEST(RecipeFiles, TheyAreMadeOfTheLibraryAlone)
{
    host::Session session;
    session.libraries.link(VHL_LIBRARY, {}, {});
    host::readScene(session, VHL_DECLARATIONS "/vhl.mi");
    EXPECT_NO_THROW(host::readScene(session, VHL_DECLARATIONS "/recipes.mi"));
    EXPECT_NO_THROW(host::readScene(session, VHL_DECLARATIONS "/recipes.mi")) << "twice is once";
}

// Without parameters each gives numbers that can be shown. Those that ask for names and lights need a scene.
TEST(RecipeFiles, UsedBareTheyGiveFiniteNumbers)
{
    for (const std::string& name : recipes()) {
        SCOPED_TRACE(name);
        if (name == "vhrIdMatteColor_v1" || name == "vhrPatternMatteColor_v1" ||
            name == "vhrShadowMatteColor_v1")
            continue;
        Recipe recipe(name);
        recipe.atPixel(30, 70);
        recipe.atUv(0.3f, 0.7f);
        recipe.state.point = {0.3f, 0.2f, 0.1f};
        if (name.find("Scalar_v") != std::string::npos) {
            EXPECT_TRUE(std::isfinite(recipe.run<float>()));
            continue;
        }
        const miColor color = recipe.run<miColor>();
        EXPECT_TRUE(std::isfinite(color.r + color.g + color.b));
        EXPECT_EQ(color.a, name == "vhrInvertMatteColor_v1" ? 0 : 1) << "of opaque inputs";
    }
}
