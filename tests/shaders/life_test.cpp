// SPDX-License-Identifier: BSD-3-Clause
// Every declared shader's life in the host: what is called, and what the host's accounts say of it.
#include "components.h"
#include "entry_points.h"
#include "evaluation_order.h"
#include "host/api/memory.h"
#include "tests/harness/call.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace {

using test::Call;

/// Names and declarations of the shaders in the library's declaration file that run without a rendering: not
/// of lenses, which cast rays.
std::map<std::string, const host::Declaration*> declaredShaders()
{
    const Call reads("vhNullScalar_v1"); // the file, when this is the first
    std::map<std::string, const host::Declaration*> shaders;
    for (const auto& [name, declaration] : Call::session().declarations.all())
        if (name.starts_with("vh") && !name.starts_with("vhLens"))
            shaders.emplace(name, &declaration);
    return shaders;
}

int version(const std::string& shader)
{
    const Call links(shader); // the library, when this is the first
    return reinterpret_cast<int (*)()>(Call::session().libraries.symbol(shader + "_version"))();
}

TEST(ShaderLife, EveryShaderWithAnOrderIsDeclared)
{
    const auto declared = declaredShaders();
    for (const Orders& orders : evaluationOrders())
        EXPECT_TRUE(declared.contains(orders.shader)) << orders.shader;
}

TEST(ShaderLife, VersionsAreTheDeclaredOnesAndThoseInTheNames)
{
    for (const auto& [name, declaration] : declaredShaders()) {
        SCOPED_TRACE(name);
        EXPECT_EQ(version(name), declaration->version);
        const int named = std::stoi(name.substr(name.rfind("_v") + 2));
        EXPECT_EQ(version(name), name == "vhSwitchColor_v4" ? 3 : named);
    }
}

TEST(ShaderLife, VersionsByName)
{
    EXPECT_EQ(version("vhAddColor_v2"), 2);
    EXPECT_EQ(version("vhAddScalar_v1"), 1);
    EXPECT_EQ(version("vhNullScalar_v1"), 1);
    EXPECT_EQ(version("vhConstScalar_v1"), 1);
    EXPECT_EQ(version("vhSwitchColor_v4"), 3) << "scenes declare it so";
}

TEST(ShaderLife, TheHostCallsTheWholeProtocolInOrder)
{
    for (const auto& [name, declaration] : declaredShaders()) {
        SCOPED_TRACE(name);
        Call call(name);
        call.record();
        run(call, declaration->result.size);
        run(call, declaration->result.size);
        call.end();
        EXPECT_EQ(call.events(), (std::vector<std::string>{"version", "init", "init instance", "execute",
                                                           "execute", "exit instance", "exit"}));
    }
}

TEST(ShaderLife, AnInstanceHoldsOneCellOfEightBytesFromInitToExit)
{
    ASSERT_TRUE(host::memoryInUse().empty());
    for (const auto& [name, declaration] : declaredShaders()) {
        SCOPED_TRACE(name);
        Call call(name);
        const std::size_t before = host::memoryAllocations();
        run(call, declaration->result.size);
        const std::vector<host::MemoryUse> inUse = host::memoryInUse();
        const std::size_t more = bytesBesidesTheCell(name);
        ASSERT_EQ(inUse.size(), more > 0 ? 2u : 1u);
        std::multiset<std::size_t> sizes;
        for (const host::MemoryUse& use : inUse) {
            EXPECT_EQ(use.blocks, 1u);
            EXPECT_EQ(use.file.find_first_of("/."), std::string::npos) << use.file << " is a bare name";
            sizes.insert(use.bytes);
        }
        EXPECT_EQ(sizes, more > 0 ? (std::multiset<std::size_t>{8, more}) : (std::multiset<std::size_t>{8}));
        run(call, declaration->result.size);
        call.end();
        EXPECT_TRUE(host::memoryInUse().empty());
        EXPECT_EQ(host::memoryAllocations(), before + inUse.size()) << "none while rendering";
    }
}

TEST(ShaderLife, ShadersAreTheirUnitsAndEachHasAPlaceOfItsOwn)
{
    std::map<std::pair<std::string, int>, std::string> places;
    for (const auto& [name, declaration] : declaredShaders()) {
        Call call(name);
        run(call, declaration->result.size);
        std::vector<host::MemoryUse> inUse = host::memoryInUse();
        std::erase_if(inUse, [](const host::MemoryUse& use) { return use.bytes != 8; });
        ASSERT_EQ(inUse.size(), 1u);
        const auto [place, added] = places.emplace(std::pair{inUse[0].file, inUse[0].line}, name);
        EXPECT_TRUE(added) << name << " and " << place->second << " share a place";
    }
    const auto unitOf = [&places](const std::string& shader) {
        for (const auto& [place, name] : places)
            if (name == shader)
                return place.first;
        return std::string();
    };
    EXPECT_EQ(unitOf("vhAddColor_v2"), "add");
    EXPECT_EQ(unitOf("vhSubAColor_v1"), "subA");
    EXPECT_EQ(unitOf("vhCeilScalar_v1"), "ceiling");
    EXPECT_EQ(unitOf("vhConstVector_v1"), "null");
    EXPECT_EQ(unitOf("vhClampScalar_v1"), "clamp");
    EXPECT_EQ(unitOf("vhClampVector_v2"), "clampChannel");
    EXPECT_EQ(unitOf("vhClampColor_v3"), "clampChannel");
    EXPECT_EQ(unitOf("vhInRasterPositionRange_v1"), "comparison");
    EXPECT_EQ(unitOf("vhVectorNorm_v1"), "util");
    EXPECT_EQ(unitOf("vhNormalizeVector_v1"), "util");
    EXPECT_EQ(unitOf("vhParticleLight_v1"), "particleLight");
    EXPECT_EQ(unitOf("vhSampleStatePoint_v1"), "sampler");
    EXPECT_EQ(unitOf("vhShadowPass_v1"), "shadowPass");
    EXPECT_EQ(unitOf("vhGeomSetAreaLightType_v1"), "geometry");
}

TEST(ShaderLife, InstancesOfOneShaderHoldACellEach)
{
    Call first("vhAddScalar_v1");
    first.define("one", "vhAddScalar_v1", {}).define("two", "vhAddScalar_v1", {});
    first.set("input1", test::connection("one")).set("input2", test::connection("two"));
    first.run<miScalar>();
    const std::vector<host::MemoryUse> inUse = host::memoryInUse();
    ASSERT_EQ(inUse.size(), 1u);
    EXPECT_EQ(inUse[0].file, "add");
    EXPECT_EQ(inUse[0].blocks, 3u);
    EXPECT_EQ(inUse[0].bytes, 24u);
    first.end();
    EXPECT_TRUE(host::memoryInUse().empty());
}

} // namespace
