// SPDX-License-Identifier: BSD-3-Clause
// The texts that are written, on shaders made up for the test.
#include "declare/shaders.h"
#include "declare/write.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <regex>

struct Sample {
    miColor tint;
    miBoolean flag;
    miScalar gain;
    miTag picture;
    int i_names;
    int n_names;
    miTag names[1];

    static constexpr auto fields()
    {
        using P = Sample;
        return std::array{VHL_FIELD(P, tint, "Tint.").by(1), VHL_FIELD_AS(P, boolean, flag, "Flag.").by(1),
                          VHL_FIELD(P, gain, "Gain | factor.").by(0.1f).within(0, 100),
                          VHL_FIELD_AS(P, colorTexture, picture, "Picture."),
                          VHL_FIELD_ARRAY_AS(P, string, names, "Names.")};
    }
};
static constexpr auto fields = Sample::fields();

static VHL::Description sample(std::string_view name = "sample_v2", std::string_view text = "A sample.")
{
    return {name,
            "unit",
            1,
            2,
            VHL::Kind::scalar,
            {},
            fields,
            {.text = text, .order = "tint, once.", .edges = "Any input is fine."}};
}

struct Parts {
    miScalar left, right;

    static constexpr auto fields()
    {
        return std::array{VHL_FIELD(Parts, left, "Left part."), VHL_FIELD(Parts, right, "Right part.")};
    }
};
static constexpr auto parts = Parts::fields();

static VHL::Description sampleOfParts()
{
    VHL::Description shader = sample();
    shader.result = VHL::Kind::structure;
    shader.members = parts;
    return shader;
}

TEST(DeclarationText, NamesTypesDefaultsHintsVersionAndPlace)
{
    const std::string text = declare::declarations(std::array{sample()});
    EXPECT_NE(text.find(R"(
# A sample.
declare shader
    scalar "sample_v2" (
        # Tint.
        color "tint" default 1 1 1 1,  #: default 1 1 1
        # Flag.
        boolean "flag" default on,  #: default on
        # Gain | factor.
        scalar "gain" default 0.1,  #: default 0.1 min 0 max 100
        # Picture.
        color texture "picture",
        # Names.
        array string "names"
    )
    version 2
    apply texture
end declare
)"),
              std::string::npos)
        << text;
}

TEST(DeclarationText, PlaceIsTheExportLinesWhenItNamesOne)
{
    VHL::Description shader = sample();
    shader.about.apply = "lens, environment";
    EXPECT_NE(declare::declarations(std::array{shader}).find("\n    apply lens, environment\n"),
              std::string::npos);
}

TEST(DeclarationText, StructureAsResultListsItsMembers)
{
    const std::string text = declare::declarations(std::array{sampleOfParts()});
    EXPECT_NE(text.find("    struct { scalar \"left\", scalar \"right\" } \"sample_v2\" (\n"),
              std::string::npos)
        << text;
}

TEST(DeclarationText, GuardsItselfAgainstDoubleInclusion)
{
    const std::string text = declare::declarations(std::array{sample()});
    const std::size_t guard = text.find("\n$ifndef \"vhl_mi\"\nset \"vhl_mi\"\n");
    ASSERT_NE(guard, std::string::npos);
    EXPECT_LT(guard, text.find("declare shader"));
    EXPECT_TRUE(text.ends_with("end declare\n\n$endif\n"));
}

TEST(DeclarationText, CommittedFileIsPlainAsciiWithExactHints)
{
    const std::regex hint("[a-z ]+ \"\\w+\"( default [-.\\w ]+)?,?  "
                          "#:( default [-.\\w]+( [-.\\w]+){0,2})?( min [-.\\w]+)?( max [-.\\w]+)?");
    std::ifstream file(VHL_DECLARATIONS);
    int hints = 0;
    for (std::string line; std::getline(file, line);) {
        EXPECT_TRUE(std::ranges::all_of(line, [](char c) { return c >= ' ' && c <= '~'; })) << line;
        if (line.find("#:") == std::string::npos)
            continue;
        ++hints;
        EXPECT_TRUE(std::regex_match(line.substr(line.find_first_not_of(' ')), hint)) << line;
    }
    EXPECT_GT(hints, 0);
}

TEST(ReferenceText, HasARowForEachParameter)
{
    const std::string text = declare::referencePage(std::array{sample()});
    for (const char* const row :
         {"| `tint` | color | 1 1 1 1 | any | Tint. |\n", "| `flag` | boolean | on | on, off | Flag. |\n",
          "| `gain` | scalar | 0.1 | 0 to 100 | Gain \\| factor. |\n",
          "| `picture` | color texture | none | any | Picture. |\n",
          "| `names` | array of string | none | any | Names. |\n"})
        EXPECT_NE(text.find(row), std::string::npos) << row << text;
}

TEST(ReferenceText, StructureAsResultHasARowForEachMember)
{
    const std::string text = declare::referencePage(std::array{sampleOfParts()});
    EXPECT_NE(text.find("Result: struct. Version 2.\n\n| member | type | |\n|---|---|---|\n"
                        "| `left` | scalar | Left part. |\n| `right` | scalar | Right part. |\n"),
              std::string::npos)
        << text;
}

TEST(ReferenceText, NotesFollowTheParametersAndStandNowhereElse)
{
    VHL::Description shader = sample();
    shader.about.notes = "A note.\n\n- a list";
    const std::string text = declare::referencePage(std::array{shader, sample("next_v2")});
    EXPECT_NE(text.find("\n\n**Edge cases.** Any input is fine.\n\nA note.\n\n- a list\n\n## next_v2\n"),
              std::string::npos)
        << text;
    EXPECT_EQ(declare::declarations(std::array{shader}), declare::declarations(std::array{sample()}));
    EXPECT_EQ(declare::referenceIndex(std::array{shader}), declare::referenceIndex(std::array{sample()}));
}

TEST(ReferenceText, SaysWhatIsSaidOfAShader)
{
    VHL::Description shader = sample();
    shader.about.messages = "A warning.";
    EXPECT_NE(declare::referencePage(std::array{shader})
                  .find("| Names. |\n\n**Evaluation.** tint, once.\n\n**Edge cases.** Any input is fine.\n\n"
                        "**Messages.** A warning.\n"),
              std::string::npos);
}

TEST(ReferenceText, IndexLinksToTheUnitsPage)
{
    EXPECT_NE(declare::referenceIndex(std::array{sample()})
                  .find("| [`sample_v2`](unit.md) | scalar | A sample. |\n"),
              std::string::npos);
}

TEST(Faults, NoneInTheLibrary) { EXPECT_EQ(declare::faults(declare::shaders()), std::vector<std::string>()); }

TEST(Faults, MissingLongAndForeignTextsAreTold)
{
    for (const char* const text : {"", "Two\nlines.",
                                   "Gr\xc3\xb6\xc3\x9f"
                                   "e."})
        EXPECT_EQ(declare::faults(std::array{sample("a_v2", text)}),
                  std::vector<std::string>{"a_v2: needs a description in one line of ASCII"})
            << text;
    auto undescribedParts = parts;
    undescribedParts[0].about = "";
    VHL::Description ofParts = sampleOfParts();
    ofParts.members = undescribedParts;
    EXPECT_EQ(declare::faults(std::array{ofParts}).size(), 1u);
    auto undescribed = fields;
    undescribed[1].about = "";
    VHL::Description shader = sample();
    shader.fields = undescribed;
    EXPECT_EQ(declare::faults(std::array{shader}),
              std::vector<std::string>{
                  "sample_v2: its parameter \"flag\" needs a description in one line of ASCII"});
}

TEST(Faults, MissingOrdersAndEdgesAndForeignMessagesAreTold)
{
    VHL::Description shader = sample();
    shader.about.messages = "Warns once.";
    EXPECT_EQ(declare::faults(std::array{shader}), std::vector<std::string>());
    shader.about.order = "";
    shader.about.edges = "Two\nlines.";
    shader.about.messages = "Two\nlines.";
    EXPECT_EQ(declare::faults(std::array{shader}),
              (std::vector<std::string>{"sample_v2: needs its order of evaluation in one line of ASCII",
                                        "sample_v2: needs what happens at the edges in one line of ASCII",
                                        "sample_v2: its messages have to be told in one line of ASCII"}));
}

TEST(Faults, NotesThatAreNotLinesOfAsciiAreTold)
{
    for (const char* const notes :
         {"Tab\there.", "\nBegins with an empty line.", "Ends with one.\n", "\xc3\xb6"}) {
        VHL::Description shader = sample();
        shader.about.notes = notes;
        EXPECT_EQ(declare::faults(std::array{shader}),
                  std::vector<std::string>{
                      "sample_v2: its notes have to be lines of ASCII, none of them empty at the ends"})
            << notes;
    }
}

TEST(Faults, NamesGivenTwiceAreTold)
{
    EXPECT_EQ(declare::faults(std::array{sample(), sample()}),
              std::vector<std::string>{"sample_v2: exported twice"});
}
