// SPDX-License-Identifier: BSD-3-Clause
// What a shader decided for each tag that it has met.
#pragma once

#include <shader.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

namespace VHL {

/// Answers by tag, learnt while rendering: any number of threads look up and insert at the same time without
/// a lock. The first answer given for a tag stays, and counts once, until clear.
///
/// A look-up reads one table of which at most half is in use, whatever the number of tags, and allocates
/// nothing. An insertion allocates when it finds the table half full; the first eight never do.
///
/// How it works. A table is a power of two of slots; a slot is one word with a tag and its answer, so that
/// there is nothing behind a word that had to be written before it. A tag's slots are tried in a fixed order,
/// from the one that its hash names. A slot changes once at most, away from `empty`:
/// - to a tag and its answer, or
/// - to `closed`, when the table is about to be replaced.
/// Hence a tag stands before the first empty or closed slot of its order or nowhere in the table, two threads
/// that insert a tag try for the same slot, and who finds a closed one knows that the tag is not in the table
/// and never will be.
///
/// A table grows by being replaced: the next one, of twice the size, is linked to it, all its words are
/// copied and all its empty slots closed, and then the next one becomes the current one. Every thread that
/// has to insert meanwhile does this from end to end, which is harmless, as words do not change, and makes
/// nobody wait for anybody. Only the current table is inserted into, and by then it holds all that the one
/// before did; so no tag gets a second answer. Replaced tables, together no larger than the current one, are
/// kept for the threads that still read them.
///
/// Memory order. Only a table's address leads to memory that another thread has written, so publishing it is
/// a release and reading it an acquire; the words themselves need no order. That a reader of the new table
/// sees what was copied into it follows as well: the thread that published it has written or seen each of the
/// copies before.
class Decisions {
public:
    Decisions() = default;
    ~Decisions() { clear(); }
    Decisions(const Decisions&) = delete;
    Decisions& operator=(const Decisions&) = delete;

    /// The answer for the tag, if there is one.
    std::optional<int> find(miTag tag) const
    {
        const Word word = seek(*current_.load(std::memory_order_acquire), tag).seen;
        return isAnswer(word) ? std::optional(answerOf(word)) : std::nullopt;
    }

    struct Kept {
        int answer;
        bool isNew; ///< it was this call that added it
    };
    /// Adds an answer unless the tag has one. Any int but the two least.
    Kept insert(miTag tag, int answer)
    {
        const Word word = wordOf(tag, answer);
        for (;;) {
            Table& table = *current_.load(std::memory_order_acquire);
            const Word before = size() < table.capacity / 2 ? place(table, word) : closed;
            if (before == empty) {
                size_.fetch_add(1, std::memory_order_relaxed);
                return {answer, true};
            }
            if (isAnswer(before))
                return {answerOf(before), false};
            replace(table);
        }
    }

    /// How many tags have an answer; exact while nobody inserts.
    std::size_t size() const { return size_.load(std::memory_order_relaxed); }

    /// Forgets everything and frees the tables. No other thread may be using this.
    void clear()
    {
        std::unique_ptr<Table> table(first_.next.exchange(nullptr, std::memory_order_relaxed));
        while (table)
            table.reset(table->next.load(std::memory_order_relaxed));
        for (std::atomic<Word>& slot : firstSlots_)
            slot.store(empty, std::memory_order_relaxed);
        size_.store(0, std::memory_order_relaxed);
        current_.store(&first_, std::memory_order_relaxed);
    }

private:
    /// The tag, and below it the answer with its sign bit flipped: two values are left for slots without one.
    using Word = std::uint64_t;
    using Slot = std::atomic<Word>;
    static_assert(Slot::is_always_lock_free && std::atomic<void*>::is_always_lock_free);
    static constexpr Word empty = 0;
    static constexpr Word closed = 1;
    static constexpr std::uint32_t signBit = 0x80000000u;

    static constexpr bool isAnswer(Word word) { return word > closed; }
    static constexpr Word wordOf(miTag tag, int answer)
    {
        return Word{tag} << 32 | (static_cast<std::uint32_t>(answer) ^ signBit);
    }
    static constexpr miTag tagOf(Word word) { return static_cast<miTag>(word >> 32); }
    static constexpr int answerOf(Word word)
    {
        return static_cast<int>(static_cast<std::uint32_t>(word) ^ signBit);
    }

    struct Table {
        Table(int itsBits, Slot* itsSlots)
            : bits(itsBits), capacity(std::size_t{1} << itsBits), slots(itsSlots)
        {
        }
        explicit Table(int itsBits)
            : bits(itsBits), capacity(std::size_t{1} << itsBits), owned(new Slot[capacity]()),
              slots(owned.get())
        {
        }

        const int bits;
        const std::size_t capacity;
        const std::unique_ptr<Slot[]> owned;
        Slot* const slots;
        std::atomic<Table*> next{nullptr}; ///< owned too
    };

    struct Place {
        Slot* slot; ///< null when the table is full of other tags
        Word seen;
    };

    /// The tag's slot, or the first one in its order that is empty or closed.
    static Place seek(const Table& table, miTag tag)
    {
        // The golden ratio spreads tags that follow one another, or stand apart by any step.
        std::size_t at = tag * Word{0x9E3779B97F4A7C15} >> (64 - table.bits);
        for (std::size_t tried = 0; tried < table.capacity; ++tried) {
            Slot& slot = table.slots[at];
            const Word word = slot.load(std::memory_order_relaxed);
            if (!isAnswer(word) || tagOf(word) == tag)
                return {&slot, word};
            at = (at + 1) & (table.capacity - 1);
        }
        return {nullptr, closed};
    }

    /// Puts the word where it belongs. What was there: `empty` when it is there now, the tag's other word
    /// when it has one, and `closed` when the table takes nothing more.
    static Word place(Table& table, Word word)
    {
        for (;;) {
            Place found = seek(table, tagOf(word));
            if (found.seen != empty ||
                found.slot->compare_exchange_strong(found.seen, word, std::memory_order_relaxed))
                return found.seen;
        }
    }

    void replace(Table& table)
    {
        Table* next = table.next.load(std::memory_order_acquire);
        if (!next) {
            auto made = std::make_unique<Table>(table.bits + 1);
            if (table.next.compare_exchange_strong(next, made.get(), std::memory_order_acq_rel))
                next = made.release();
        }
        if (current_.load(std::memory_order_relaxed) != &table)
            return;
        for (std::size_t i = 0; i < table.capacity; ++i) {
            Word word = table.slots[i].load(std::memory_order_relaxed);
            if (word == empty)
                table.slots[i].compare_exchange_strong(word, closed, std::memory_order_relaxed);
            if (isAnswer(word))
                place(*next, word);
        }
        Table* expected = &table;
        current_.compare_exchange_strong(expected, next, std::memory_order_release,
                                         std::memory_order_relaxed);
    }

    static constexpr int firstBits = 4;
    std::array<Slot, std::size_t{1} << firstBits> firstSlots_{};
    Table first_{firstBits, firstSlots_.data()};
    std::atomic<Table*> current_{&first_};
    std::atomic<std::size_t> size_{0};
};

} // namespace VHL
