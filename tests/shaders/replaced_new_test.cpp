// SPDX-License-Identifier: BSD-3-Clause
// The library in a process with an operator new and delete of its own, which counts.
#include "declare/shaders.h"
#include "entry_points.h"
#include "tests/core/bare_renderer.h"

#include <geoshader.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <new>
#include <stdexcept>
#include <vector>

struct Count {
    int made = 0;
    int deleted = 0;
    bool operator==(const Count&) const = default;
};
static Count count;

#pragma GCC visibility push(default)
void* operator new(std::size_t size)
{
    ++count.made;
    if (void* const block = std::malloc(size > 0 ? size : 1))
        return block;
    throw std::bad_alloc();
}
static void release(void* block) noexcept
{
    if (block)
        ++count.deleted;
    std::free(block);
}
void operator delete(void* block) noexcept { release(block); }
void operator delete(void* block, std::size_t) noexcept { release(block); }

// A renderer for one instance that never uses operator new itself, so that what is counted is the library's.
// Every string is the same text, every instance bears the same name or none.
static const char* patternText = "";
static const char* instanceName = nullptr;
static constexpr miTag patternTag = 9999; ///< no instance's
extern "C" {
static miInstance instanceRecord;
static void* userSlot;
static void* cell[1];
static miOptions options; ///< a copy that a shader takes

miBoolean mi_query(const miQ_type, miState* const, miTag, void* const result, ...)
{
    *static_cast<void***>(result) = &userSlot;
    return miTRUE;
}
void* mi_phen_eval(miState*, void* parameter) { return parameter; }
void* mi_mem_int_allocate(const char* const, const int, const int size)
{
    return size == sizeof cell ? static_cast<void*>(cell) : &options;
}
void mi_mem_int_release(const char* const, const int, void*) {}
void* mi_db_access(miTag tag)
{
    return tag == patternTag ? const_cast<char*>(patternText) : static_cast<void*>(&instanceRecord);
}
void mi_db_unpin(miTag) {}
int mi_db_type(miTag) { return miSCENE_NONE; }
void* mi_scene_edit(const miTag) { return &instanceRecord; }
void mi_scene_edit_end(const miTag) {}
void mi_matrix_ident(miMatrix) {}
void mi_flush_cache(miState*) {}
miBoolean mi_trace_shadow(miColor* const, miState* const) { return miTRUE; }
miBoolean mi_sample_light(miColor* const, miVector* const, float* const, miState* const, const miTag,
                          int* const)
{
    return miFALSE;
}
miBoolean mi_inclusive_lightlist(int*, miTag**, miState*) { return miTRUE; }
miBoolean mi_exclusive_lightlist(int*, miTag**, miState*) { return miTRUE; }
const char* mi_api_tag_lookup(miTag) { return instanceName; }
void mi_opacity_set(miState*, miColor const* const) {}
miBoolean mi_trace_eye(miColor*, miState*, miVector*, miVector*) { return miTRUE; }
miBoolean mi_lookup_color_texture(miColor* const, miState* const, const miTag, miVector* const)
{
    return miTRUE;
}
void mi_vector_transform(miVector* const result, miVector const* const v, miMatrix const) { *result = *v; }
void mi_vector_to_world(const miState*, miVector* result, const miVector* v) { *result = *v; }
void mi_info(const char* const, ...) {}
void mi_warning(const char* const, ...) {}
}
#pragma GCC visibility pop

/// What a call makes and deletes.
template <class Call>
static Count counted(Call call)
{
    const Count before = count;
    call();
    return {count.made - before.made, count.deleted - before.deleted};
}

TEST(ReplacedNew, EveryObjectGoesTheWayItCame)
{
    const Library library;
    for (const VHL::Description& description : declare::shaders()) {
        SCOPED_TRACE(description.name);
        const EntryPoints shader(library, description.name);
        Block<AnyParams> block;
        miState& state = block.state;
        AnyParams& params = block.params;
        AnyParams result{};
        miBoolean request = miFALSE;

        // A compiler may see that a temporary object without data is never used, and leave it out.
        const Count whole = counted([&] { shader.init(&state, nullptr, &request); });
        EXPECT_EQ(whole.made, whole.deleted);
        EXPECT_EQ(counted([&] { shader.init(&state, &params, &request); }), (Count{1, 0})) << "the object";
        EXPECT_EQ(counted([&] { shader.execute(&result, &state, &params); }), (Count{0, 0})) << "rendering";
        EXPECT_EQ(counted([&] { shader.exit(&state, &params); }), (Count{0, 1})) << "the object";
        const Count end = counted([&] { shader.exit(&state, nullptr); });
        EXPECT_EQ(end.made, end.deleted);
    }
}

/// A vhSwitchColor_v4 with one pattern and one value. Loads the library for itself and unloads it: what that
/// keeps in static objects is missed at the end.
struct PatternSwitch {
    struct Params {
        miColor defaultColor;
        int firstPattern, patternCount;
        miTag pattern;
        int firstValue, valueCount;
        miColor value;
    };

    PatternSwitch() { state.shader = &function; }

    void init()
    {
        miBoolean request = miFALSE;
        shader.init(&state, &params, &request);
    }
    void execute() { shader.execute(&result, &state, &params); }
    void exit() { shader.exit(&state, &params); }

    Library library;
    EntryPoints shader{library, "vhSwitchColor_v4"};
    miFunction function{};
    miState state{};
    Params params{{}, 0, 1, patternTag, 0, 1, {}};
    miColor result{};
};

TEST(ReplacedNew, APatternSwitchAllocatesForAnInstanceOnceAndLeavesNothing)
{
    patternText = "a*very*long*pattern*for*a*string*that*does*not*hold*it*in*place?";
    instanceName = "such an instance is called a very long name, longer than a string holds in place";
    const Count all = counted([] {
        PatternSwitch shader;
        shader.init();
        for (shader.state.instance = 1; shader.state.instance <= 100; ++shader.state.instance) {
            EXPECT_GT(counted([&] { shader.execute(); }).made, 0);
            EXPECT_EQ(counted([&] { shader.execute(); }), (Count{0, 0}));
        }
        shader.exit();
    });
    EXPECT_GT(all.made, 100);
    EXPECT_EQ(all.made, all.deleted);
    patternText = "";
    instanceName = nullptr;
}

TEST(ReplacedNew, APatternThatIsRefusedLeavesNothing)
{
    patternText = "box[";
    const Count all = counted([] {
        PatternSwitch shader;
        EXPECT_THROW(shader.init(), std::runtime_error);
    });
    EXPECT_GT(all.made, 0);
    EXPECT_EQ(all.made, all.deleted);
    patternText = "";
}

TEST(ReplacedNew, TextFunctionsDeleteWhatTheyMake)
{
    const Library library;
    using Pieces = std::vector<char*>;
    const auto join = library.function<char*(char, Pieces)>("_ZN3VHL4joinEcSt6vectorIPcSaIS1_EE");
    const auto split = library.function<Pieces(char, char*)>("_ZN3VHL5splitEcPc");
    char text[] = "a,b";
    const Count used = counted([&] {
        const Pieces pieces = split(',', text);
        EXPECT_EQ(pieces.size(), 2u);
        char* const joined = join(',', pieces);
        EXPECT_STREQ(joined, "a,b,");
        std::free(joined);
    });
    EXPECT_GT(used.made, 0) << "lists are made with operator new";
    EXPECT_EQ(used.made, used.deleted);
}

/// A shader with arrays of its own from init to exit.
template <class Params>
static Count countedLife(const char* name, Params params)
{
    return counted([&] {
        const Library library;
        const EntryPoints shader(library, name);
        Block<AnyParams> block;
        std::memcpy(&block.params, &params, sizeof params);
        block.state.type = miRAY_LIGHT;
        miBoolean request = miFALSE;
        shader.init(&block.state, &block.params, &request);
        AnyParams result{};
        for (miUshort sample = 0; sample < 5; ++sample) {
            block.state.count = sample;
            EXPECT_EQ(counted([&] { shader.execute(&result, &block.state, &block.params); }), (Count{0, 0}));
        }
        shader.exit(&block.state, &block.params);
    });
}

TEST(ReplacedNew, AParticleLightAllocatesItsListsInInitAndLeavesNothing)
{
    struct Params {
        int lightCount = 3, i_positions = 0, n_positions = 3;
        miVector position{};
        int i_colors = 0, n_colors = 3;
        miColor color{};
        float falloff = 2;
        int shadow = 1;
        miColor room[3]{};
    };
    const Count all = countedLife("vhParticleLight_v1", Params());
    EXPECT_GE(all.made, 3) << "the object and two lists";
    EXPECT_EQ(all.made, all.deleted);
}

TEST(ReplacedNew, ASamplerLeavesNothing)
{
    struct Params {
        miColor input{};
        int samples = 3, i_profile = 0, n_profile = 1;
        float profile = 1;
        int normalize = 1;
        miVector start{}, end{};
        float jitter = 1;
    };
    const Count all = countedLife("vhSampleStatePoint_v1", Params());
    EXPECT_GE(all.made, 2) << "the object, and the curve while it is resampled";
    EXPECT_EQ(all.made, all.deleted);
}
