// SPDX-License-Identifier: BSD-3-Clause
// What the library exports, what its declarations say, and what the host takes from it.
#include "host/api/mesh.h"
#include "host/base/shapes.h"
#include "host/language/read.h"
#include "host/report/message.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

struct Loaded {
    Loaded()
    {
        session.paths.library = {BASE_LIBRARY_FOLDER};
        session.paths.include = {BASE_INCLUDE_FOLDER};
        host::readScene(session, "link \"base.so\"\n$include <base.mi>\n$include <base.mi>\n", "test.mi");
    }
    host::Session session;
};

} // namespace

TEST(Library, HasEveryDeclaredShaderInItsDeclaredVersion)
{
    Loaded loaded;
    const auto& declarations = loaded.session.declarations.all();
    EXPECT_EQ(declarations.size(), 20u);
    for (const auto& [name, declaration] : declarations) {
        host::Shader& shader = loaded.session.libraries.resolve(declaration);
        ASSERT_TRUE(shader.version) << name;
        EXPECT_NO_THROW(loaded.session.libraries.checkVersion(shader)) << name;
        EXPECT_FALSE(declaration.apply.empty()) << name;
    }
}

TEST(HostMesh, BecomesAnObject)
{
    host::Session session;
    const host::base::Mesh mesh = host::base::cube(1, 1, 1, {2.0f, 2.0f, 2.0f});
    const hostMesh view = mesh.view();
    const auto* const object = session.database.findAs<host::Object>(host_mesh_create(&view));
    ASSERT_TRUE(object);
    EXPECT_TRUE(object->visible);
    EXPECT_EQ(object->vectors.size(), mesh.points.size() + mesh.normals.size() + mesh.textures.size());
    ASSERT_EQ(object->polygons.size(), 6u);
    for (std::size_t i = 0; i < object->vertices.size(); ++i) {
        const host::Vertex& vertex = object->vertices[i];
        const hostVertex& given = mesh.vertices[i];
        EXPECT_EQ(object->vectors.at(vertex.point).x, mesh.points[given.point].x);
        EXPECT_EQ(object->vectors.at(vertex.normal).z, mesh.normals[given.normal].z);
        ASSERT_EQ(vertex.textureCount, 1u);
        EXPECT_EQ(object->vectors.at(object->textureIndices.at(vertex.firstTexture)).y,
                  mesh.textures[given.texture].y);
    }
}

TEST(HostMesh, MayLeaveOutNormalsAndTextureCoordinates)
{
    host::Session session;
    const std::vector<miVector> points = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    const std::vector<hostVertex> vertices = {{0, HOST_NO_INDEX, HOST_NO_INDEX},
                                              {1, HOST_NO_INDEX, HOST_NO_INDEX},
                                              {2, HOST_NO_INDEX, HOST_NO_INDEX}};
    const unsigned size = 3;
    const unsigned corners[] = {0, 1, 2};
    const hostMesh mesh = {
        points.data(), nullptr, nullptr, vertices.data(), &size, corners, 3, 0, 0, 3, 1, 3};
    const auto* const object = session.database.findAs<host::Object>(host_mesh_create(&mesh));
    ASSERT_TRUE(object);
    EXPECT_EQ(object->vertices[2].normal, host::Vertex::none);
    EXPECT_EQ(object->vertices[2].textureCount, 0u);
}

TEST(HostMesh, IsRefusedWithOneMessageWhenItsIndicesAreWrong)
{
    host::Session session;
    std::vector<std::string> messages;
    host::setMessageSink([&](host::Level, std::string_view line) { messages.emplace_back(line); });
    const auto refused = [&](auto spoil) {
        host::base::Mesh mesh = host::base::square(1, 1, 1.0f, 1.0f);
        spoil(mesh);
        const hostMesh view = mesh.view();
        messages.clear();
        return host_mesh_create(&view) == miNULLTAG && messages.size() == 1;
    };
    using host::base::Mesh;
    EXPECT_TRUE(refused([](Mesh& m) { m.vertices[1].point = 4; }));
    EXPECT_TRUE(refused([](Mesh& m) { m.vertices[1].normal = 1; }));
    EXPECT_TRUE(refused([](Mesh& m) { m.vertices[1].texture = 4; }));
    EXPECT_TRUE(refused([](Mesh& m) { m.corners[3] = 4; }));
    EXPECT_TRUE(refused([](Mesh& m) { m.sizes[0] = 3; }));
    EXPECT_TRUE(refused([](Mesh& m) { m.sizes = {2, 2}; }));
    EXPECT_FALSE(refused([](Mesh&) {}));
    host::setMessageSink({});
}
