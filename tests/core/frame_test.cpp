// SPDX-License-Identifier: BSD-3-Clause
#include "core/export.h"

#include "bare_renderer.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <new>
#include <stdexcept>

#define VHL_UNIT "sample"

struct _sampleParams {
    miScalar input;
    static constexpr auto fields() { return std::array{VHL_FIELD(_sampleParams, input, "Input.")}; }
};

/// What happened to objects of the class, in order, by the object's number.
static std::vector<std::string> history;
static int made = 0;
static int freed = 0;

/// Where init puts its request, and what stood there when initStatic ran.
static int request = 0;
static int requestBeforeStatic = 0;

struct sample_v3 final : VHL::dMentalRayShader<miScalar, _sampleParams, 3> {
    sample_v3() { note("made"); }
    ~sample_v3() override { note("gone"); }
    static void* operator new(std::size_t size) { return ::operator new(size); }
    static void operator delete(void* object)
    {
        ++freed;
        ::operator delete(object);
    }
    void initStatic() override
    {
        note("initStatic");
        requestBeforeStatic = request;
    }
    void exitStatic() override { note("exitStatic"); }
    void init(miState*, Params* params) override
    {
        note("init");
        kept = params->input;
    }
    void exit(miState*, Params*) override { note("exit"); }
    int execute(miScalar* result, miState*, Params* params) override
    {
        *result = kept + params->input;
        return 2;
    }

    void note(const std::string& what) { history.push_back(what + ' ' + std::to_string(number)); }
    int number = ++made;
    float kept = 0;
};

using Sample = sample_v3; // after the next line the name alone is a function's

static constexpr int exportLine = __LINE__ + 1;
VHL_EXPORT_SHADER(sample_v3, sample_v3, "A class that bears its shader's name.")

// One class may stand behind two names.
VHL_EXPORT_SHADER(other_v3, Sample, "The same class.")

struct Plain final : VHL::dMentalRayShader<miScalar, _sampleParams, 1> {
    int execute(miScalar*, miState*, Params*) override { return 1; }
};
static_assert(sizeof(Plain) == sizeof(void*), "an object without data holds only its virtual table");

class Frame : public testing::Test {
protected:
    void SetUp() override
    {
        renderer.reset();
        history.clear();
        made = freed = request = requestBeforeStatic = 0;
    }

    BareRenderer& renderer = BareRenderer::get();
    Block<_sampleParams> block;
};

TEST_F(Frame, InitOfTheShaderAsksForInstancesAndStoresNothing)
{
    sample_v3_init(&block.state, nullptr, &request);
    EXPECT_EQ(request, 1);
    EXPECT_EQ(requestBeforeStatic, 1) << "the request comes first";
    EXPECT_EQ(history, (std::vector<std::string>{"made 1", "initStatic 1", "gone 1"}));
    EXPECT_TRUE(renderer.calls.empty());
    EXPECT_EQ(renderer.userSlot, nullptr);
}

TEST_F(Frame, ExitOfTheShaderTouchesNoUserSlot)
{
    sample_v3_exit(&block.state, nullptr);
    EXPECT_EQ(history, (std::vector<std::string>{"made 1", "exitStatic 1", "gone 1"}));
    EXPECT_TRUE(renderer.calls.empty());
}

TEST_F(Frame, InstanceLivesFromInitToExit)
{
    block.params.input = 5;
    sample_v3_init(&block.state, &block.params, &request);
    EXPECT_EQ(request, 0) << "the request is made for the shader only";
    ASSERT_NE(renderer.userSlot, nullptr);

    block.params.input = 2;
    miScalar result = 0;
    EXPECT_EQ(sample_v3(&result, &block.state, &block.params), 2) << "what execute returned";
    EXPECT_EQ(result, 7);

    void* const cell = renderer.userSlot;
    sample_v3_exit(&block.state, &block.params);
    EXPECT_EQ(renderer.userSlot, cell) << "the slot is the renderer's to clear";
    EXPECT_EQ(history, (std::vector<std::string>{"made 1", "init 1", "exit 1", "gone 1"}));
    EXPECT_EQ(renderer.calls, (std::vector<std::string>{"mi_query", "mi_mem_int_allocate", "mi_query",
                                                        "mi_query", "mi_mem_int_release"}));
}

TEST_F(Frame, CellIsEightBytesUnderTheUnitsNameAndReleasedOnce)
{
    sample_v3_init(&block.state, &block.params, &request);
    sample_v3_exit(&block.state, &block.params);
    const std::vector<BareRenderer::Block> expected = {{"sample", exportLine, 8}};
    EXPECT_EQ(renderer.allocated, expected);
    EXPECT_EQ(renderer.released, expected);
}

TEST_F(Frame, VersionIsTheClasss)
{
    EXPECT_EQ(sample_v3_version(), 3);
    EXPECT_EQ(other_v3_version(), 3);
    EXPECT_EQ(Plain::version(), 1);
}

/// The object's virtual table.
static void** slotsOf(const Sample* object)
{
    void** slots = nullptr;
    std::memcpy(&slots, static_cast<const void*>(object), sizeof slots);
    return slots;
}

TEST_F(Frame, VirtualTableBeginsWithTheTwoDestructors)
{
    using Destructor = void (*)(Sample*);
    alignas(Sample) std::array<std::byte, sizeof(Sample)> place;
    Sample* const placed = ::new (&place) Sample;
    reinterpret_cast<Destructor>(slotsOf(placed)[0])(placed);
    EXPECT_EQ(history, (std::vector<std::string>{"made 1", "gone 1"}));
    EXPECT_EQ(freed, 0);

    Sample* const whole = new Sample;
    reinterpret_cast<Destructor>(slotsOf(whole)[1])(whole);
    EXPECT_EQ(history, (std::vector<std::string>{"made 1", "gone 1", "made 2", "gone 2"}));
    EXPECT_EQ(freed, 1);
}

TEST_F(Frame, VirtualOperationsFollowInTheRenderersOrder)
{
    using Static = void (*)(Sample*);
    using Instance = void (*)(Sample*, miState*, _sampleParams*);
    using Execute = int (*)(Sample*, miScalar*, miState*, _sampleParams*);
    Sample object;
    history.clear();
    void** const slots = slotsOf(&object);
    reinterpret_cast<Static>(slots[2])(&object);
    reinterpret_cast<Static>(slots[3])(&object);
    reinterpret_cast<Instance>(slots[4])(&object, &block.state, &block.params);
    reinterpret_cast<Instance>(slots[5])(&object, &block.state, &block.params);
    EXPECT_EQ(history, (std::vector<std::string>{"initStatic 1", "exitStatic 1", "init 1", "exit 1"}));
    miScalar result = 0;
    EXPECT_EQ(reinterpret_cast<Execute>(slots[6])(&object, &result, &block.state, &block.params), 2);
}

struct Failing final : VHL::dMentalRayShader<miScalar, _sampleParams, 1> {
    Failing() { history.emplace_back("made"); }
    ~Failing() override { history.emplace_back("gone"); }
    void init(miState*, Params*) override { throw std::runtime_error("no"); }
    int execute(miScalar*, miState*, Params*) override { return 1; }
};

TEST_F(Frame, AnInstanceWhoseInitThrowsLeavesNothing)
{
    EXPECT_THROW(VHL::Entry<Failing>::init(&block.state, &block.params, &request, "unit", 7),
                 std::runtime_error);
    EXPECT_EQ(history, (std::vector<std::string>{"made", "gone"}));
    EXPECT_EQ(renderer.released, (std::vector<BareRenderer::Block>{{"unit", 7, 8}}));
    EXPECT_EQ(renderer.allocated, renderer.released);
}
