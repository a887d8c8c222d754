// SPDX-License-Identifier: BSD-3-Clause
// What the built libvhl.so lets out and asks for.
#include "declare/shaders.h"
#include "shared_object.h"

#include <gtest/gtest.h>

#include <cxxabi.h>
#include <dlfcn.h>
#include <elf.h>

#include <algorithm>
#include <cstdlib>

using Names = std::set<std::string>;

// A sanitizer's build may use the sanitizer's own names, libraries and module constructors besides.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
static constexpr bool sanitized = true;
#else
static constexpr bool sanitized = false;
#endif

static bool startsWithOneOf(std::string_view text, std::initializer_list<std::string_view> starts)
{
    return std::ranges::any_of(starts, [&](std::string_view start) { return text.starts_with(start); });
}

/// Whether a sanitizer's library provides the function: its own ones and those of the runtime that it
/// watches.
static bool isSanitizers(const std::string& name)
{
    if (startsWithOneOf(name, {"__asan_", "__ubsan_", "__tsan_", "__sanitizer_"}))
        return true;
    Dl_info where{};
    void* const address = dlsym(RTLD_DEFAULT, name.c_str());
    return address && dladdr(address, &where) != 0 &&
           std::string_view(where.dli_fname).find("san.so") != std::string_view::npos;
}

static const SharedObject& library()
{
    static const SharedObject library(VHL_LIBRARY);
    return library;
}

static std::string demangled(const std::string& name)
{
    int status = 0;
    char* const text = abi::__cxa_demangle(name.c_str(), nullptr, nullptr, &status);
    std::string result = status == 0 ? text : name;
    std::free(text);
    return result;
}

/// The functions and classes of namespace VHL that are for other code.
static const std::vector<std::string> publicFunctions = {
    "inverseCh",   "inverseCl",   "inverseFl",   "inverseSh",
    "join",        "split",       "toDirection", "toTextureCoordinates",
    "transformCh", "transformCl", "transformFl", "transformSh"};
static const std::vector<std::string> publicClasses = {
    "dAngularMapping",      "dBalance",         "dBallMapping", "dClamp",        "dColorTransform",
    "dColorTransform1",     "dColorTransform4", "dCompress",    "dCubicMapping", "dExpand",
    "dFisheyeMapping",      "dGamma",           "dInvert",      "dMatteDiv",     "dMatteMult",
    "dPanoramicConversion", "dReorder",         "dSetAlpha",    "dSetColor",     "dSolarize",
    "dSphericalMapping",    "dThreshold"};

/// Those of namespace VHLNoise, without the namespace of their types.
static const Names noiseFunctions = {
    "cellnoise(dVector const*, dScalar*, unsigned long)",
    "cellnoise(dVector)",
    "cellular(dVector const*, dScalar, dScalar*, unsigned long)",
    "cellular(dVector, dScalar)",
    "distance(dVector, dVector)",
    "dot(dColor, dColor)",
    "dot(dVector, dVector)",
    "fade(dColor)",
    "fade(dVector)",
    "fmod(dColor, dColor)",
    "fmod(dScalar, dScalar)",
    "fmod(dVector, dVector)",
    "grad(dScalar, dColor)",
    "grad(dScalar, dVector)",
    "init_g()",
    "init_g4()",
    "init_neighbor()",
    "init_noise()",
    "inoise(dColor const*, dScalar*, unsigned long)",
    "inoise(dColor)",
    "inoise(dVector const*, dScalar*, unsigned long)",
    "inoise(dVector)",
    "length(dVector)",
    "lerp(dScalar, dScalar, dScalar)",
    "lerp(dVector, dVector, dScalar)",
    "octaves(dVector const*, int, dScalar, dScalar, dScalar, dScalar, dScalar*, unsigned long)",
    "octaves(dVector, int, dScalar, dScalar, dScalar, dScalar)",
    "octaves_abs(dVector const*, int, dScalar, dScalar, dScalar, dScalar, dScalar*, unsigned long)",
    "octaves_abs(dVector, int, dScalar, dScalar, dScalar, dScalar)",
    "perm(dScalar)",
    "vfloor(dColor)",
    "vfloor(dVector)"};

TEST(Object, ExportsTheEntryPointsAndWhatIsPublicOnly)
{
    Names entryPoints;
    for (const VHL::Description& shader : declare::shaders())
        for (const char* const suffix : {"", "_init", "_exit", "_version"})
            entryPoints.insert(std::string(shader.name) + suffix);
    const auto isPublic = [](const std::string& symbol) {
        return symbol.starts_with("VHLNoise::") || // which another test looks at
               std::ranges::any_of(
                   publicFunctions,
                   [&](const std::string& name) { return symbol.starts_with("VHL::" + name + '('); }) ||
               std::ranges::any_of(publicClasses, [&](const std::string& name) {
                   return symbol.starts_with("VHL::" + name + "::") || symbol == "vtable for VHL::" + name ||
                          symbol == "typeinfo for VHL::" + name || symbol == "typeinfo name for VHL::" + name;
               });
    };
    Names exported;
    for (const SharedObject::Symbol& symbol : library().dynamicSymbols())
        if (symbol.defined) {
            const std::string name = demangled(symbol.name);
            EXPECT_TRUE(entryPoints.contains(symbol.name) || isPublic(name)) << name;
            exported.insert(name);
        }
    for (const std::string& name : entryPoints)
        EXPECT_TRUE(exported.contains(name)) << name;
}

TEST(Object, ExportsWhatIsPublicWhole)
{
    std::vector<std::string> exported;
    for (const SharedObject::Symbol& symbol : library().dynamicSymbols())
        if (symbol.defined)
            exported.push_back(demangled(symbol.name));
    const auto has = [&](const std::string& start) {
        return std::ranges::any_of(exported,
                                   [&](const std::string& name) { return name.starts_with(start); });
    };
    for (const std::string& name : publicFunctions)
        EXPECT_TRUE(has("VHL::" + name + '(')) << name;
    for (const std::string& name : publicClasses) {
        EXPECT_TRUE(has("VHL::" + name + "::" + name + '(')) << name;
        EXPECT_TRUE(has("VHL::" + name + "::~" + name + '(')) << name;
        EXPECT_EQ(std::ranges::count(exported, "vtable for VHL::" + name), 1) << name;
        EXPECT_EQ(std::ranges::count(exported, "typeinfo for VHL::" + name), 1) << name;
        EXPECT_EQ(std::ranges::count(exported, "typeinfo name for VHL::" + name), 1) << name;
        const bool abstract = name == "dPanoramicConversion" || name.starts_with("dColorTransform");
        if (abstract)
            continue;
        if (name.ends_with("Mapping")) {
            EXPECT_TRUE(has("VHL::" + name + "::toDirection(VHL::dVector) const")) << name;
            EXPECT_TRUE(has("VHL::" + name + "::toTextureCoordinates(VHL::dVector) const")) << name;
        } else {
            EXPECT_TRUE(has("VHL::" + name + "::transform")) << name;
            EXPECT_TRUE(has("VHL::" + name + "::inverse")) << name;
        }
    }
}

TEST(Object, ExportsTheNoiseFunctions)
{
    Names exported;
    for (const SharedObject::Symbol& symbol : library().dynamicSymbols()) {
        std::string name = demangled(symbol.name);
        if (!symbol.defined || !name.starts_with("VHLNoise::"))
            continue;
        name.erase(0, std::string("VHLNoise::").size());
        for (std::size_t at; (at = name.find("VHL::d")) != std::string::npos;)
            name.erase(at, 5);
        exported.insert(name);
    }
    EXPECT_EQ(exported, noiseFunctions);
}

TEST(Object, ImportsTheRenderersFunctionsAndTheRuntimesOnly)
{
    const Names renderer = {"mi_api_tag_lookup",
                            "mi_db_access",
                            "mi_db_type",
                            "mi_db_unpin",
                            "mi_exclusive_lightlist",
                            "mi_flush_cache",
                            "mi_inclusive_lightlist",
                            "mi_info",
                            "mi_lookup_color_texture",
                            "mi_matrix_ident",
                            "mi_mem_int_allocate",
                            "mi_mem_int_release",
                            "mi_opacity_set",
                            "mi_phen_eval",
                            "mi_query",
                            "mi_sample_light",
                            "mi_scene_edit",
                            "mi_scene_edit_end",
                            "mi_trace_eye",
                            "mi_trace_shadow",
                            "mi_vector_to_world",
                            "mi_vector_transform",
                            "mi_warning"};
    // The toolchain's start-up code asks for these, and does without them.
    const Names startup = {"_ITM_deregisterTMCloneTable", "_ITM_registerTMCloneTable", "__gmon_start__"};
    for (const SharedObject::Symbol& symbol : library().dynamicSymbols()) {
        if (symbol.defined || renderer.contains(symbol.name))
            continue;
        const bool runtime = startsWithOneOf(symbol.version, {"GLIBC_", "GLIBCXX_", "CXXABI_", "GCC_"});
        const bool optional = symbol.binding == STB_WEAK && startup.contains(symbol.name);
        const bool sanitizer = sanitized && isSanitizers(symbol.name);
        EXPECT_TRUE(runtime || optional || sanitizer) << symbol.name << '@' << symbol.version;
    }
}

TEST(Object, UsesTheRenderer)
{
    for (const char* const name : {"mi_query", "mi_phen_eval", "mi_mem_int_allocate", "mi_mem_int_release"}) {
        const SharedObject::Symbol import = {name, false, STB_GLOBAL, ""};
        EXPECT_EQ(std::ranges::count(library().dynamicSymbols(), import), 1) << name;
    }
}

TEST(Object, HasNoSymbolThatKeepsItLoaded)
{
    for (const SharedObject::Symbol& symbol : library().dynamicSymbols())
        EXPECT_NE(symbol.binding, STB_GNU_UNIQUE) << symbol.name;
}

TEST(Object, RunsNothingWhenLoadedOrUnloaded)
{
    const auto check = [](std::vector<std::string> functions, const std::string& toolchains) {
        EXPECT_EQ(std::erase(functions, toolchains), 1u);
        if (sanitized)
            std::erase_if(functions, [](const std::string& name) {
                return startsWithOneOf(name, {"_sub_I_00099_", "_sub_D_00099_"});
            });
        EXPECT_TRUE(functions.empty()) << functions.front();
    };
    check(library().constructors(), "frame_dummy");
    check(library().destructors(), "__do_global_dtors_aux");
}

TEST(Object, LeavesNothingToDoAtExit)
{
    for (const SharedObject::Symbol& symbol : library().dynamicSymbols())
        EXPECT_FALSE(startsWithOneOf(symbol.name, {"__cxa_atexit", "__cxa_thread_atexit", "atexit"}))
            << symbol.name;
}

TEST(Object, NeedsTheRuntimesOnly)
{
    const Names runtime = {"libstdc++.so.6", "libm.so.6", "libgcc_s.so.1", "libc.so.6"};
    ASSERT_FALSE(library().needed().empty());
    for (const std::string& name : library().needed())
        EXPECT_TRUE(runtime.contains(name) ||
                    (sanitized && startsWithOneOf(name, {"libasan.", "libubsan.", "libtsan."})))
            << name;
}

TEST(Object, IsBoundAtLoadTimeAndThenReadOnly)
{
    EXPECT_GE(library().segment(PT_GNU_RELRO), 0);
    EXPECT_TRUE(library().dynamic(DT_FLAGS) & DF_BIND_NOW);
    EXPECT_TRUE(library().dynamic(DT_FLAGS_1) & DF_1_NOW);
    EXPECT_TRUE(library().dynamic(DT_FLAGS) & DF_SYMBOLIC);
    EXPECT_FALSE(library().dynamic(DT_FLAGS) & DF_TEXTREL);
    EXPECT_EQ(library().segment(PT_GNU_STACK) & PF_X, 0);
}
