// SPDX-License-Identifier: BSD-3-Clause
// The table of decisions by itself, alone and in many threads.
#include "shaders/decisions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <latch>
#include <limits>
#include <map>
#include <random>
#include <set>
#include <thread>
#include <vector>

namespace {

using VHL::Decisions;

constexpr int threadCount = 8;

/// Calls action(number) in so many threads, which begin together.
template <class Action>
void onThreads(const Action& action)
{
    std::latch start(threadCount);
    std::vector<std::thread> threads;
    for (int number = 0; number < threadCount; ++number)
        threads.emplace_back([&, number] {
            start.arrive_and_wait();
            action(number);
        });
    for (std::thread& thread : threads)
        thread.join();
}

std::vector<miTag> consecutiveTags(std::size_t count, miTag step = 1)
{
    std::vector<miTag> tags;
    for (std::size_t k = 0; k < count; ++k)
        tags.push_back(static_cast<miTag>(k) * step);
    return tags;
}

std::vector<miTag> randomTags(std::size_t count)
{
    std::mt19937 random(7);
    std::set<miTag> tags;
    while (tags.size() < count)
        tags.insert(static_cast<miTag>(random()));
    return {tags.begin(), tags.end()};
}

TEST(DecisionTable, KnowsNothingAtFirst)
{
    const Decisions decisions;
    for (const miTag tag : {0u, 1u, 2u, 0x80000000u, 0xFFFFFFFFu})
        EXPECT_EQ(decisions.find(tag), std::nullopt) << tag;
    EXPECT_EQ(decisions.size(), 0u);
}

TEST(DecisionTable, TheFirstAnswerStaysAndCountsOnce)
{
    Decisions decisions;
    const Decisions::Kept first = decisions.insert(5, 7);
    EXPECT_EQ(first.answer, 7);
    EXPECT_TRUE(first.isNew);
    const Decisions::Kept second = decisions.insert(5, 8);
    EXPECT_EQ(second.answer, 7);
    EXPECT_FALSE(second.isNew);
    EXPECT_EQ(decisions.find(5), 7);
    EXPECT_EQ(decisions.size(), 1u);
}

TEST(DecisionTable, TakesEveryTagAndAllButTheTwoLeastAnswers)
{
    const int least = std::numeric_limits<int>::min() + 2;
    for (const miTag tag : {0u, 1u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu})
        for (const int answer : {least, -2, -1, 0, 1, std::numeric_limits<int>::max()}) {
            Decisions decisions;
            decisions.insert(tag, answer);
            EXPECT_EQ(decisions.find(tag), answer) << tag;
            EXPECT_EQ(decisions.find(tag + 1), std::nullopt) << tag;
        }
}

TEST(DecisionTable, AgreesWithAMapWhateverTheTagsLookLike)
{
    for (const std::vector<miTag>& tags :
         {consecutiveTags(5000), consecutiveTags(5000, 8), consecutiveTags(5000, 65536), randomTags(5000)}) {
        Decisions decisions;
        std::map<miTag, int> map;
        std::mt19937 random(1);
        for (int k = 0; k < 20000; ++k) {
            const miTag tag = tags[random() % tags.size()];
            const int answer = static_cast<int>(random() % 100) - 2;
            const auto found = map.find(tag);
            ASSERT_EQ(decisions.find(tag), found == map.end() ? std::nullopt : std::optional(found->second));
            const auto [place, isNew] = map.emplace(tag, answer);
            const Decisions::Kept kept = decisions.insert(tag, answer);
            ASSERT_EQ(kept.answer, place->second);
            ASSERT_EQ(kept.isNew, isNew);
            ASSERT_EQ(decisions.size(), map.size());
        }
    }
}

TEST(DecisionTable, IsAsNewAfterClear)
{
    Decisions decisions;
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(decisions.find(3), std::nullopt);
        for (const miTag tag : consecutiveTags(1000))
            EXPECT_TRUE(decisions.insert(tag, round).isNew);
        EXPECT_EQ(decisions.find(3), round);
        EXPECT_EQ(decisions.size(), 1000u);
        decisions.clear();
        EXPECT_EQ(decisions.size(), 0u);
    }
}

/// All threads insert the same tags, in orders of their own, each with its own answers, and look up what they
/// have inserted. One answer has to win for all.
void expectOneAnswerForEach(const std::vector<miTag>& tags)
{
    Decisions decisions;
    std::vector<std::vector<int>> answers(threadCount, std::vector<int>(tags.size(), -1));
    std::atomic<std::size_t> added = 0;
    std::atomic<std::size_t> forgotten = 0;
    onThreads([&](int number) {
        std::vector<std::size_t> order(tags.size());
        for (std::size_t k = 0; k < order.size(); ++k)
            order[k] = k;
        std::shuffle(order.begin(), order.end(), std::mt19937(static_cast<unsigned>(number)));
        for (const std::size_t k : order) {
            const Decisions::Kept kept = decisions.insert(tags[k], number);
            added += kept.isNew;
            forgotten += decisions.find(tags[k]) != kept.answer;
            answers[static_cast<std::size_t>(number)][k] = kept.answer;
        }
    });
    EXPECT_EQ(forgotten, 0u) << "what was inserted is found at once";
    EXPECT_EQ(added, tags.size());
    EXPECT_EQ(decisions.size(), tags.size());
    for (std::size_t k = 0; k < tags.size(); ++k)
        for (const std::vector<int>& thread : answers)
            ASSERT_EQ(decisions.find(tags[k]), thread[k]) << "tag " << tags[k];
}

TEST(DecisionTable, ThreadsThatInsertTheSameTagsAgree)
{
    expectOneAnswerForEach(consecutiveTags(100'000));
    expectOneAnswerForEach(randomTags(100'000));
}

// Small tables are replaced all the time while threads are in them.
TEST(DecisionTable, ThreadsAgreeWhileItGrowsFromNothingOverAndOver)
{
    const std::vector<miTag> tags = randomTags(64);
    for (int round = 0; round < 200; ++round)
        ASSERT_NO_FATAL_FAILURE(expectOneAnswerForEach(tags));
}

TEST(DecisionTable, ThreadsWithOverlappingTagsFindTheirOwnAndTheOthers)
{
    constexpr miTag share = 20'000;
    Decisions decisions;
    std::atomic<std::size_t> added = 0;
    std::atomic<std::size_t> wrong = 0;
    onThreads([&](int number) {
        // Half of the share is the next thread's too. An answer tells its tag.
        const miTag first = static_cast<miTag>(number) * share / 2;
        for (miTag tag = first; tag < first + share; ++tag) {
            added += decisions.insert(tag, static_cast<int>(tag)).isNew;
            for (const miTag other : {tag, tag / 2, tag * 2}) {
                const auto found = decisions.find(other);
                wrong += found && *found != static_cast<int>(other);
            }
        }
    });
    EXPECT_EQ(wrong, 0u);
    const std::size_t all = (threadCount + 1) * share / 2;
    EXPECT_EQ(added, all);
    EXPECT_EQ(decisions.size(), all);
    for (miTag tag = 0; tag < all; ++tag)
        ASSERT_EQ(decisions.find(tag), static_cast<int>(tag));
}

} // namespace
