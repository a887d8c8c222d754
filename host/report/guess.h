// SPDX-License-Identifier: BSD-3-Clause
// Which name may be meant by one that nothing has.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace host {

/// The fewest edits that turn one text into the other: a character inserted, left out or replaced, or two
/// neighbours swapped, each place edited once.
std::size_t editDistance(std::string_view a, std::string_view b);

/// Collects the nearest of the names that there are: at most two edits away, and at most a third of the wrong
/// name's length; of equally near ones the first in alphabetical order.
class Guess {
public:
    explicit Guess(std::string_view wrong);

    void offer(std::string_view name);

    /// `; did you mean "x"?`, or nothing when no name was near.
    std::string text() const;

private:
    std::string wrong_;
    std::string best_;
    std::size_t distance_; ///< of the best, or one more than what counts as near
};

} // namespace host
