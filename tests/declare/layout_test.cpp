// SPDX-License-Identifier: BSD-3-Clause
// The committed declarations as a renderer reads them, against the structures that the shaders are compiled
// with.
#include "declare/shaders.h"
#include "host/language/read.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

static host::Type typeOf(VHL::Kind kind)
{
    using enum VHL::Kind;
    switch (kind) {
    case boolean:
        return host::Type::boolean;
    case integer:
        return host::Type::integer;
    case scalar:
        return host::Type::scalar;
    case vector:
        return host::Type::vector;
    case color:
        return host::Type::color;
    case transform:
        return host::Type::transform;
    case string:
        return host::Type::string;
    case colorTexture:
        return host::Type::colorTexture;
    case scalarTexture:
        return host::Type::scalarTexture;
    case vectorTexture:
        return host::Type::vectorTexture;
    case light:
        return host::Type::light;
    case material:
        return host::Type::material;
    case geometry:
        return host::Type::geometry;
    case shader:
        return host::Type::shader;
    case structure:
        return host::Type::structure;
    }
    return host::Type::data;
}

class CommittedDeclarations : public testing::Test {
protected:
    void SetUp() override { host::readScene(session, VHL_DECLARATIONS); }

    host::Session session;
};

TEST_F(CommittedDeclarations, AreThoseOfTheExportLines)
{
    std::vector<std::string> exported, declared;
    for (const VHL::Description& shader : declare::shaders())
        exported.emplace_back(shader.name);
    for (const auto& [name, declaration] : session.declarations.all())
        declared.push_back(name);
    std::ranges::sort(exported);
    EXPECT_FALSE(exported.empty());
    EXPECT_EQ(declared, exported);
}

TEST_F(CommittedDeclarations, LayBlocksOutAsTheStructuresAre)
{
    for (const VHL::Description& shader : declare::shaders()) {
        SCOPED_TRACE(shader.name);
        const host::Declaration* const declaration = session.declarations.find(shader.name);
        ASSERT_NE(declaration, nullptr);
        EXPECT_EQ(declaration->version, shader.version);
        EXPECT_EQ(declaration->result.type, typeOf(shader.result));
        ASSERT_EQ(declaration->result.members.size(), shader.members.size());
        for (std::size_t i = 0; i < shader.members.size(); ++i) {
            const host::Field& member = declaration->result.members[i];
            EXPECT_EQ(member.name, std::string_view(shader.members[i].name));
            EXPECT_EQ(member.type, typeOf(shader.members[i].kind));
            EXPECT_EQ(member.offset, shader.members[i].offset);
        }
        ASSERT_EQ(declaration->parameters.size(), shader.fields.size());
        std::size_t end = 0;
        for (std::size_t i = 0; i < shader.fields.size(); ++i) {
            const VHL::Field& field = shader.fields[i];
            const host::Field& parameter = declaration->parameters[i];
            SCOPED_TRACE(parameter.name);
            EXPECT_EQ(parameter.name, std::string_view(field.name));
            EXPECT_EQ(parameter.type, typeOf(field.kind));
            EXPECT_EQ(parameter.isArray, field.isArray);
            EXPECT_EQ(parameter.offset, field.offset);
            EXPECT_EQ(parameter.size, field.size);
            const std::size_t numbers = field.isArray ? 0 : std::size_t(VHL::componentCount(field.kind));
            const std::vector<float> defaults(parameter.defaults.begin(), parameter.defaults.end());
            EXPECT_EQ(defaults, std::vector<float>(numbers, field.standard));
            end = field.offset + field.size;
        }
        EXPECT_EQ(declaration->blockSize, end);
    }
}

TEST_F(CommittedDeclarations, MayBeIncludedTwice)
{
    const std::string include = std::string("$include \"") + VHL_DECLARATIONS + "\"\n";
    host::readScene(session, std::string_view(include + include), "twice");
    EXPECT_EQ(session.declarations.all().size(), declare::shaders().size());
}

TEST_F(CommittedDeclarations, ApplyToKindsThatTheLanguageKnows)
{
    const std::set<std::string> kinds = {"lens",    "material", "light",    "shadow",    "environment",
                                         "volume",  "texture",  "photon",   "geometry",  "displace",
                                         "emitter", "output",   "lightmap", "photonvol", "state"};
    for (const auto& [name, declaration] : session.declarations.all()) {
        EXPECT_FALSE(declaration.apply.empty()) << name;
        for (const std::string& kind : declaration.apply)
            EXPECT_TRUE(kinds.contains(kind)) << name << ": " << kind;
    }
}
