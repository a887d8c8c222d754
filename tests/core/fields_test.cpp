// SPDX-License-Identifier: BSD-3-Clause
#include "core/fields.h"

#include <gtest/gtest.h>

using VHL::Field;
using VHL::Kind;

struct Everything {
    miScalar scalar;
    miVector vector;
    miColor color;
    miMatrix transform;
    miBoolean boolean;
    miInteger integer;
    miTag string;
    int i_values;
    int n_values;
    miColor values[1];
    int i_names;
    int n_names;
    miTag names[1];

    static constexpr auto fields()
    {
        using P = Everything;
        return std::array{VHL_FIELD(P, scalar, "a").by(2).within(1, 3),
                          VHL_FIELD(P, vector, "b"),
                          VHL_FIELD(P, color, "c"),
                          VHL_FIELD(P, transform, "d"),
                          VHL_FIELD_AS(P, boolean, boolean, "e"),
                          VHL_FIELD_AS(P, integer, integer, "f"),
                          VHL_FIELD_AS(P, string, string, "g"),
                          VHL_FIELD_ARRAY(P, values, "h"),
                          VHL_FIELD_ARRAY_AS(P, string, names, "i")};
    }
};
static_assert(VHL::tiles<Everything>() && VHL::documented<Everything>());

struct Expected {
    const char* name;
    Kind kind;
    std::size_t offset;
    std::size_t size;
    bool isArray;
};

template <std::size_t Count>
static void expectFields(const std::array<Field, Count>& fields, const std::vector<Expected>& expected)
{
    ASSERT_EQ(Count, expected.size());
    for (std::size_t i = 0; i < Count; ++i) {
        SCOPED_TRACE(expected[i].name);
        EXPECT_EQ(std::string_view(fields[i].name), expected[i].name);
        EXPECT_EQ(fields[i].kind, expected[i].kind);
        EXPECT_EQ(fields[i].offset, expected[i].offset);
        EXPECT_EQ(fields[i].size, expected[i].size);
        EXPECT_EQ(fields[i].isArray, expected[i].isArray);
    }
}

TEST(Fields, HavePlaceAndKind)
{
    expectFields(Everything::fields(), {{"scalar", Kind::scalar, 0, 4, false},
                                        {"vector", Kind::vector, 4, 12, false},
                                        {"color", Kind::color, 16, 16, false},
                                        {"transform", Kind::transform, 32, 64, false},
                                        {"boolean", Kind::boolean, 96, 4, false},
                                        {"integer", Kind::integer, 100, 4, false},
                                        {"string", Kind::string, 104, 4, false},
                                        {"values", Kind::color, 108, 24, true},
                                        {"names", Kind::string, 132, 12, true}});
}

TEST(Fields, HaveDefaultAndRange)
{
    const auto fields = Everything::fields();
    EXPECT_EQ(fields[0].standard, 2);
    EXPECT_EQ(fields[0].least, 1);
    EXPECT_EQ(fields[0].most, 3);
    EXPECT_EQ(fields[1].standard, 0);
    EXPECT_EQ(fields[1].least, std::nullopt);
}

struct Slot {
    miColor input;
    miScalar weight;
    static constexpr auto fields()
    {
        return std::array{VHL_FIELD(Slot, input, "a"), VHL_FIELD(Slot, weight, "b").by(100)};
    }
};

struct Slots {
    Slot slot[16];
    static constexpr auto fields() { return VHL::numbered<Slot, 16>(); }
};
static_assert(VHL::tiles<Slots>());

TEST(Fields, NumberedOnesRepeatTheSlot)
{
    const auto fields = Slots::fields();
    ASSERT_EQ(fields.size(), 32u);
    for (std::size_t i = 0; i < 16; ++i) {
        EXPECT_EQ(std::string_view(fields[2 * i].name), "input" + std::to_string(i + 1));
        EXPECT_EQ(std::string_view(fields[2 * i + 1].name), "weight" + std::to_string(i + 1));
        EXPECT_EQ(fields[2 * i].offset, 20 * i);
        EXPECT_EQ(fields[2 * i + 1].offset, 20 * i + 16);
        EXPECT_EQ(fields[2 * i + 1].standard, 100);
    }
}

static constexpr std::string_view longestName = "twenty-eight characters long";
static_assert(longestName.size() == 28);
static_assert(std::string_view(VHL::FieldName(longestName, 99)) == "twenty-eight characters long99");

TEST(Fields, NamesAreNeverCutShort)
{
    EXPECT_THROW(VHL::FieldName("twenty-nine characters, or so"), const char*);
    EXPECT_THROW(VHL::FieldName("input", 100), const char*);
}

struct Nested {
    miScalar first;
    Slot slot;
    static constexpr auto fields()
    {
        return VHL::concatenate(std::array{VHL_FIELD(Nested, first, "a")},
                                VHL::fieldsOf<Slot>(offsetof(Nested, slot)));
    }
};
static_assert(VHL::tiles<Nested>());

TEST(Fields, PartsMoveToTheirPlace)
{
    expectFields(Nested::fields(), {{"first", Kind::scalar, 0, 4, false},
                                    {"input", Kind::color, 4, 16, false},
                                    {"weight", Kind::scalar, 20, 4, false}});
}

// Lists that do not agree with their structure.
struct Forgotten {
    miScalar a, b;
    static constexpr auto fields() { return std::array{VHL_FIELD(Forgotten, a, "a")}; }
};
struct Swapped {
    miScalar a, b;
    static constexpr auto fields()
    {
        return std::array{VHL_FIELD(Swapped, b, "b"), VHL_FIELD(Swapped, a, "a")};
    }
};
struct Twice {
    miScalar a, b;
    static constexpr auto fields() { return std::array{VHL_FIELD(Twice, a, "a"), VHL_FIELD(Twice, a, "a")}; }
};
struct Undescribed {
    miScalar a;
    static constexpr auto fields() { return std::array{VHL_FIELD(Undescribed, a, "")}; }
};
static_assert(!VHL::tiles<Forgotten>());
static_assert(!VHL::tiles<Swapped>());
static_assert(!VHL::tiles<Twice>());
static_assert(!VHL::documented<Undescribed>());
