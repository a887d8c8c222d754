// SPDX-License-Identifier: BSD-3-Clause
#include "host/report/guess.h"

#include "host/report/error.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace host {

namespace {

/// Nobody types longer names, and comparing takes time by their lengths multiplied.
constexpr std::size_t longestTyped = 256;

} // namespace

std::size_t editDistance(std::string_view a, std::string_view b)
{
    // Row i holds the distances of the first i characters of a to all beginnings of b.
    std::vector<std::size_t> beforePrevious(b.size() + 1), previous(b.size() + 1), row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        beforePrevious.swap(previous);
        previous.swap(row);
        row[0] = i;
        for (std::size_t k = 1; k <= b.size(); ++k) {
            const std::size_t replaced = previous[k - 1] + (a[i - 1] != b[k - 1]);
            row[k] = std::min({replaced, previous[k] + 1, row[k - 1] + 1});
            if (i > 1 && k > 1 && a[i - 1] == b[k - 2] && a[i - 2] == b[k - 1])
                row[k] = std::min(row[k], beforePrevious[k - 2] + 1);
        }
    }
    return row.back();
}

Guess::Guess(std::string_view wrong)
    : wrong_(wrong),
      distance_(wrong.size() > longestTyped ? 0 : std::min<std::size_t>(2, wrong.size() / 3) + 1)
{
}

void Guess::offer(std::string_view name)
{
    const std::size_t difference =
        std::max(name.size(), wrong_.size()) - std::min(name.size(), wrong_.size());
    if (difference > distance_ || distance_ == 0)
        return;
    const std::size_t distance = editDistance(wrong_, name);
    if (distance < distance_ || (distance == distance_ && !best_.empty() && name < best_)) {
        distance_ = distance;
        best_ = name;
    }
}

std::string Guess::text() const
{
    return best_.empty() ? std::string() : "; did you mean " + inQuotes(best_) + '?';
}

} // namespace host
