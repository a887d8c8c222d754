// SPDX-License-Identifier: BSD-3-Clause
#include "host/scene/database.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace host;

TEST(Database, TagsAreNeverGivenAgain)
{
    Database db;
    EXPECT_EQ(db.find(miNULLTAG), nullptr);
    EXPECT_EQ(db.find(1), nullptr);
    const miTag first = db.make<Camera>("c").tag;
    EXPECT_NE(first, miNULLTAG);
    EXPECT_EQ(db.last(), first);
    db.remove(first);
    EXPECT_EQ(db.find(first), nullptr);
    EXPECT_EQ(db.lookup("c"), miNULLTAG);
    EXPECT_GT(db.make<Camera>("c").tag, first);
    db.remove(first); // again: nothing happens
    EXPECT_NE(db.lookup("c"), miNULLTAG);
}

TEST(Database, ANamePointsToTheLatestElement)
{
    Database db;
    const miTag old = db.make<Light>("n").tag;
    const miTag latest = db.make<Camera>("n").tag;
    EXPECT_EQ(db.lookup("n"), latest);
    EXPECT_NE(db.findAs<Light>(old), nullptr) << "reachable by its tag";
    db.remove(old);
    EXPECT_EQ(db.lookup("n"), latest) << "the name is another's by now";
    EXPECT_EQ(db.findAs<Light>(latest), nullptr) << "of another kind";
    EXPECT_EQ(db.lookup(""), miNULLTAG);
}

TEST(Database, AddressesStay)
{
    Database db;
    Text& first = db.make<Text>();
    first.text = "text";
    const void* const data = db.pin(first.tag);
    for (int k = 0; k < 10'000; ++k)
        db.make<Text>();
    EXPECT_EQ(db.find(first.tag), &first);
    EXPECT_EQ(db.pin(first.tag), data);
    EXPECT_EQ(db.pins(first.tag), 2);
}

TEST(Database, PinsAreCountedAndNeverNegative)
{
    Database db;
    const miTag tag = db.make<Options>().tag;
    EXPECT_FALSE(db.unpin(tag));
    EXPECT_NE(db.pin(tag), nullptr);
    EXPECT_TRUE(db.unpin(tag));
    EXPECT_FALSE(db.unpin(tag));
    EXPECT_EQ(db.pins(tag), 0);
    EXPECT_EQ(db.pin(99), nullptr);
    EXPECT_FALSE(db.unpin(99));
    EXPECT_EQ(db.pins(99), 0);
}

TEST(Database, ManyThreadsMayPin)
{
    Database db;
    const miTag tag = db.make<Options>().tag;
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t)
        threads.emplace_back([&] {
            for (int k = 0; k < 1000; ++k) {
                db.pin(tag);
                db.unpin(tag);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(db.pins(tag), 0);
}

TEST(RelocatedStrings, MoveWhenTheLastPinIsGivenBackAndLeaveGarbage)
{
    for (const std::string& content : {std::string("text"), std::string("#1"), std::string(1000, '#')}) {
        Database db;
        db.relocateStrings(true);
        Text& text = db.make<Text>();
        text.text = content;
        std::set<const char*> places;
        for (int round = 0; round < 60; ++round) {
            const auto* const first = static_cast<const char*>(db.pin(text.tag));
            EXPECT_EQ(db.pin(text.tag), first) << "pinned already: the same for everybody";
            EXPECT_TRUE(db.unpin(text.tag));
            EXPECT_EQ(first, content) << "one pin is left";
            EXPECT_TRUE(db.unpin(text.tag));
            EXPECT_EQ(std::strlen(first), content.size());
            EXPECT_NE(first, content);
            EXPECT_TRUE(places.insert(first).second) << "a place of its own";
        }
        for (const char* const place : places)
            EXPECT_NE(place, content) << "none of them comes back";
        EXPECT_FALSE(db.unpin(text.tag));
        EXPECT_EQ(db.pins(text.tag), 0);
        EXPECT_EQ(text.text, content);
    }
}

TEST(RelocatedStrings, TheEmptyOneStaysEmpty)
{
    Database db;
    db.relocateStrings(true);
    const miTag tag = db.make<Text>().tag;
    const auto* const text = static_cast<const char*>(db.pin(tag));
    EXPECT_STREQ(text, "");
    db.unpin(tag);
    EXPECT_STREQ(text, "");
    EXPECT_NE(db.pin(tag), text);
}

TEST(RelocatedStrings, ThousandsOfTimesInBoundedMemory)
{
    Database db;
    db.relocateStrings(true);
    Text& text = db.make<Text>();
    text.text = "text";
    std::set<const void*> places;
    for (int round = 0; round < 10'000; ++round) {
        ASSERT_STREQ(static_cast<const char*>(*places.insert(db.pin(text.tag)).first), "text");
        db.unpin(text.tag);
    }
    EXPECT_EQ(places.size(), 64u);
}

TEST(RelocatedStrings, OtherElementsStay)
{
    Database db;
    db.relocateStrings(true);
    const miTag tag = db.make<Camera>().tag;
    void* const record = db.pin(tag);
    db.unpin(tag);
    EXPECT_EQ(db.pin(tag), record);
    EXPECT_EQ(static_cast<miCamera*>(record)->focal, 1.0f);
}

TEST(RelocatedStrings, AreSwitchedOffAgain)
{
    Database db;
    Text& text = db.make<Text>();
    text.text = "text";
    db.pin(text.tag);
    db.relocateStrings(true);
    EXPECT_TRUE(db.unpin(text.tag)) << "a pin from before";
    db.pin(text.tag);
    db.unpin(text.tag);
    db.relocateStrings(false);
    const void* const stays = db.pin(text.tag);
    db.unpin(text.tag);
    EXPECT_EQ(db.pin(text.tag), stays);
    EXPECT_STREQ(static_cast<const char*>(stays), "text");
}

TEST(RelocatedStrings, ManyThreadsMayPin)
{
    Database db;
    db.relocateStrings(true);
    Text& text = db.make<Text>();
    text.text = "text";
    std::atomic<int> right = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t)
        threads.emplace_back([&] {
            for (int k = 0; k < 1000; ++k) {
                right += std::strcmp(static_cast<const char*>(db.pin(text.tag)), "text") == 0;
                db.unpin(text.tag);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(right, 8000);
    EXPECT_EQ(db.pins(text.tag), 0);
}

TEST(Element, DefaultsAreTheRenderers)
{
    const Camera camera;
    EXPECT_EQ(camera.record.focal, 1.0f);
    EXPECT_EQ(camera.record.aspect, 4.0f / 3.0f);
    EXPECT_EQ(camera.record.x_resolution, 768);
    EXPECT_EQ(camera.record.y_resolution, 576);
    const Options options;
    EXPECT_EQ(options.record.shadow, 1);
    EXPECT_EQ(options.record.min_samples, -2);
    EXPECT_EQ(options.record.max_samples, 0);
    EXPECT_EQ(options.record.trace_depth, 1);
    const Instance instance;
    for (int k = 0; k < 16; ++k)
        EXPECT_EQ(instance.record.tf.global_to_local[k], k % 5 == 0 ? 1 : 0);
    const Object object;
    EXPECT_FALSE(object.visible);
    EXPECT_EQ(object.shadow, 2) << "receives, does not cast";
}

} // namespace
