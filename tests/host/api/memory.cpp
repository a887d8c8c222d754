// SPDX-License-Identifier: BSD-3-Clause
#include "host/api/memory.h"

#include "tests/harness/messages.h"

#include <gtest/gtest.h>
#include <shader.h>

#include <cstdint>
#include <cstring>
#include <thread>

namespace {

using test::Messages;

/// The use of one unit's lines, as "line: blocks/bytes".
std::string use(const std::string& file)
{
    std::string text;
    for (const host::MemoryUse& each : host::memoryInUse())
        if (each.file == file)
            text += std::to_string(each.line) + ": " + std::to_string(each.blocks) + "/" +
                    std::to_string(each.bytes) + "; ";
    return text;
}

TEST(Memory, IsAlignedAndZero)
{
    for (const int size : {0, 1, 8, 24, 100'000}) {
        void* const first = mi_mem_int_allocate("zero", 1, size);
        ASSERT_NE(first, nullptr);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(first) % alignof(std::max_align_t), 0u);
        for (int k = 0; k < size; ++k)
            ASSERT_EQ(static_cast<char*>(first)[k], 0);
        std::memset(first, 255, static_cast<std::size_t>(size));
        mi_mem_int_release("zero", 1, first);
    }
}

TEST(Memory, IsAccountedByPlace)
{
    EXPECT_EQ(use("unit"), "");
    const std::size_t before = host::memoryAllocations();
    void* const a = mi_mem_int_allocate("unit", 10, 8);
    void* const b = mi_mem_int_allocate("unit", 10, 100);
    void* const c = mi_mem_int_allocate("unit", 20, 1);
    EXPECT_EQ(use("unit"), "10: 2/108; 20: 1/1; ");
    mi_mem_int_release("elsewhere", 1, a); // the place of the release does not matter
    EXPECT_EQ(use("unit"), "10: 1/100; 20: 1/1; ");
    std::thread([&] { mi_mem_int_release("unit", 10, b); }).join();
    mi_mem_int_release("unit", 20, c);
    EXPECT_EQ(use("unit"), "");
    EXPECT_EQ(host::memoryAllocations(), before + 3);
}

TEST(Memory, ReleasingNullIsHarmlessAndAStrangerIsReported)
{
    Messages messages;
    mi_mem_int_release("unit", 1, nullptr);
    EXPECT_TRUE(messages.lines().empty());
    int stranger = 0;
    mi_mem_int_release("unit", 7, &stranger);
    void* const twice = mi_mem_int_allocate("unit", 8, 8);
    mi_mem_int_release("unit", 8, twice);
    mi_mem_int_release("unit", 8, twice);
    EXPECT_EQ(messages.lines(),
              (std::vector<std::string>{
                  "RC   0.0  error: unit:7: released memory that was not allocated here, or twice",
                  "RC   0.0  error: unit:8: released memory that was not allocated here, or twice"}));
}

TEST(MemoryDeathTest, AnImpossibleSizeIsFatal)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // libraries of the host start threads
    EXPECT_EXIT(mi_mem_int_allocate("unit", 3, -1), testing::ExitedWithCode(1),
                "unit:3: cannot allocate -1 bytes");
}

} // namespace
