// SPDX-License-Identifier: BSD-3-Clause
#include "tests/harness/messages.h"
#include "tests/harness/stage.h"

#include <geoshader.h>
#include <gtest/gtest.h>

namespace {

using namespace test;
using host::Type;

class DatabaseApiTest : public testing::Test {
protected:
    Stage stage{TEST_SHADERS};
    host::Database& db = stage.session.database;
};

TEST_F(DatabaseApiTest, AccessPinsAndGivesTheRecord)
{
    host::Options& options = db.make<host::Options>("opt");
    EXPECT_EQ(mi_db_access(options.tag), &options.record);
    EXPECT_EQ(mi_db_access(options.tag), &options.record);
    EXPECT_EQ(db.pins(options.tag), 2);
    mi_db_unpin(options.tag);
    mi_db_unpin(options.tag);
    EXPECT_EQ(db.pins(options.tag), 0);
}

TEST_F(DatabaseApiTest, AStringsDataIsItsText)
{
    host::Text& text = db.make<host::Text>();
    text.text = "hello";
    EXPECT_STREQ(static_cast<const char*>(mi_db_access(text.tag)), "hello");
    mi_db_unpin(text.tag);
}

TEST_F(DatabaseApiTest, TypesAreTheElementsKinds)
{
    EXPECT_EQ(mi_db_type(miNULLTAG), 0);
    EXPECT_EQ(mi_db_type(db.last() + 1), 0);
    EXPECT_EQ(mi_db_type(db.make<host::Instance>().tag), 10);
    EXPECT_EQ(mi_db_type(db.make<host::Light>().tag), 4);
    EXPECT_EQ(mi_db_type(db.make<host::Material>().tag), 3);
    EXPECT_EQ(mi_db_type(db.make<host::Camera>().tag), 5);
    EXPECT_EQ(mi_db_type(db.make<host::Object>().tag), 7);
    EXPECT_EQ(mi_db_type(db.make<host::Group>().tag), 11);
    EXPECT_EQ(mi_db_type(db.make<host::Options>().tag), 12);
    EXPECT_EQ(mi_db_type(db.make<host::Texture>().tag), 13);
    EXPECT_EQ(mi_db_type(db.make<host::Text>().tag), 29);
    stage.declare("t_add", field(Type::scalar, ""), {});
    EXPECT_EQ(mi_db_type(stage.make("f", "t_add").tag), 2);
}

TEST_F(DatabaseApiTest, NamesAreThoseOfTheScene)
{
    EXPECT_STREQ(mi_api_tag_lookup(db.make<host::Instance>("a name").tag), "a name");
    EXPECT_EQ(mi_api_tag_lookup(db.make<host::Instance>().tag), nullptr);
    EXPECT_EQ(mi_api_tag_lookup(miNULLTAG), nullptr);
    EXPECT_EQ(mi_api_tag_lookup(db.last() + 1), nullptr);
}

TEST_F(DatabaseApiTest, AnEditIsThePinnedRecord)
{
    host::Light& light = db.make<host::Light>("l");
    static_cast<miLight*>(mi_scene_edit(light.tag))->samples_u = 9;
    EXPECT_EQ(db.pins(light.tag), 1);
    mi_scene_edit_end(light.tag);
    EXPECT_EQ(db.pins(light.tag), 0);
    EXPECT_EQ(light.record.samples_u, 9);
}

TEST_F(DatabaseApiTest, WhatIsNotThereIsReportedOnceAndReadsAsZeros)
{
    stage.declare("t_peek", field(Type::scalar, ""), {field(Type::geometry, "tag")});
    db.make<host::Object>("object");
    host::Function& null = stage.make("null", "t_peek");
    host::Function& object = stage.make("object user", "t_peek", {argument("tag", "object")});
    host::Function& gone = stage.make("gone", "t_peek", {argument("tag", "object")});
    stage.prepare({&null, &object, &gone});
    Messages messages;
    for (int k = 0; k < 3; ++k) {
        EXPECT_EQ(stage.run<miScalar>(null), 0);
        EXPECT_EQ(stage.run<miScalar>(object), 0);
    }
    const miTag tag = db.lookup("object");
    db.remove(tag);
    EXPECT_EQ(stage.run<miScalar>(gone), 0);
    const std::string number = std::to_string(tag);
    EXPECT_EQ(
        messages.lines(),
        (std::vector<std::string>{
            "RC   0.0  error: shader \"null\" (t_peek): accessed the null tag",
            "RC   0.0  error: shader \"object user\" (t_peek): this host has no record of the element behind "
            "tag " +
                number,
            "RC   0.0  error: shader \"gone\" (t_peek): accessed tag " + number + ", which is unknown"}));
}

// Behind the null tag nothing can be pinned: some shaders give it back, others test first.
TEST_F(DatabaseApiTest, TheNullTagIsNotCountedAmongThePins)
{
    const Messages messages(0); // hides that of the access itself
    mi_db_access(miNULLTAG);
    EXPECT_EQ(host::running().pins, 0);
    mi_db_unpin(miNULLTAG);
    EXPECT_EQ(host::running().pins, 0);
}

} // namespace
