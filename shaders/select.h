// SPDX-License-Identifier: BSD-3-Clause
// One of several values, by its position.
#pragma once

#include "core/evaluate.h"
#include "core/export.h"

#include <array>

namespace VHL {

/// A position and the values that it chooses from, in the renderer's layout of an array.
template <class T>
struct Selection {
    miScalar select;
    miInteger i_values;
    miInteger n_values;
    T values[1];

    static constexpr auto fields()
    {
        return std::array{VHL_FIELD(Selection, select,
                                    "Position of the value, 0 for the first: a fraction is cut off, and what "
                                    "lies before or behind the values gives the first or the last; NaN gives "
                                    "the first."),
                          VHL_FIELD_ARRAY(Selection, values, "Values to choose from.")};
    }
};

/// Where an instance has its values, from its init to its exit. The elements are the renderer's.
template <class T>
class Choice {
public:
    void init(miState* state, Selection<T>& params)
    {
        const int start = evaluate(state, params.i_values);
        count_ = evaluate(state, params.n_values);
        values_ = params.values + start;
    }

    void exit() { *this = {}; }

    /// `execute` of the selecting shaders: the chosen value alone is evaluated, and nothing at all without
    /// values.
    int execute(T* result, miState* state, Selection<T>& params) const
    {
        if (count_ <= 0) // no renderer counts below 0; what does counts as empty
            return 0;
        const float position = evaluate(state, params.select);
        *result = evaluate(state, values_[index(position)]);
        return 1;
    }

private:
    /// Compared as a number before it becomes an index, as neither infinities nor NaN have one.
    int index(float position) const
    {
        if (!(position >= 0.0f))
            return 0;
        return position >= static_cast<float>(count_) ? count_ - 1 : static_cast<int>(position);
    }

    int count_ = 0;
    T* values_ = nullptr;
};

// What the descriptions of the selecting shaders share.
inline constexpr const char* chosenOnly =
    "select once, then the value that it chooses, once; the others not at all, and without values not even "
    "select. Where the values are and how many is read once, when the shader is made ready.";
inline constexpr const char* anyPosition =
    "Any position is fine: below 0, -infinity and NaN choose the first value, the number of values and more, "
    "infinity too, the last. Without values the shader returns no success and leaves the result as it was.";

} // namespace VHL
