// SPDX-License-Identifier: BSD-3-Clause
// One of several values, by the name of the object being shaded.
#pragma once

#include "core/evaluate.h"
#include "core/export.h"
#include "shaders/instance_name.h"
#include "shaders/string_parameter.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace VHL {

/// Names, and at the same positions values, in the renderer's layout of arrays.
template <class T>
struct NamedValues {
    miInteger i_names;
    miInteger n_names;
    miTag names[1];
    miInteger i_values;
    miInteger n_values;
    T values[1];

    static constexpr auto fields()
    {
        return std::array{
            VHL_FIELD_ARRAY_AS(NamedValues, string, names,
                               "Names of object instances, in full and with the same capitals. "
                               "Read once, before the first sample."),
            VHL_FIELD_ARRAY(NamedValues, values,
                            "Value for each name, at the same position. Of two arrays of "
                            "unequal length, the longer one's rest is left out, with a warning.")};
    }
};

// What the shaders print when they are initialised.
template <class T>
struct Listing;

template <>
struct Listing<miColor> {
    static constexpr const char* messages =
        "Info, when the shader is made ready: \" switchColor name / value pairs - begin\", for each pair its "
        "position, name and colour, as \" switchColor pair 0 : ball / 1.000 0.500 0.000 1.000\", and \" "
        "switchColor name / value pairs - end\". In their place, for arrays of different lengths, a warning: "
        "\" switchColor - length of name and value arrays do not match.\"";
    static void mismatch() { mi_warning(" switchColor - length of name and value arrays do not match.\n"); }
    static void begin() { mi_info(" switchColor name / value pairs - begin\n"); }
    static void pair(int position, const std::string& name, const dColor& value)
    {
        mi_info(" switchColor pair %d : %s / %3.3f %3.3f %3.3f %3.3f\n", position, name.c_str(), value.r(),
                value.g(), value.b(), value.a());
    }
    static void end() { mi_info(" switchColor name / value pairs - end\n"); }
};

template <>
struct Listing<miScalar> {
    static constexpr const char* messages =
        "Info, when the shader is made ready: \" switchScalar name / value pairs - begin\", for each pair "
        "its position, name and value, as \" switchColor pair 0 : ball / 0.500\", which begins as the "
        "pairs of vhSwitchColor_v1 do, and \" switchScalar name / value pairs - end\". In their place, for "
        "arrays of different lengths, a warning: \" switchScalar - length of name and value arrays do not "
        "match.\"";
    static void mismatch() { mi_warning(" switchScalar - length of name and value arrays do not match.\n"); }
    static void begin() { mi_info(" switchScalar name / value pairs - begin\n"); }
    static void pair(int position, const std::string& name, float value)
    {
        // "switchColor" is deliberate: those who search logs for the pairs know the line by it.
        mi_info(" switchColor pair %d : %s / %3.3f\n", position, name.c_str(), value);
    }
    static void end() { mi_info(" switchScalar name / value pairs - end\n"); }
};

/// An instance's names, copied, and where its values are, from its init to its exit.
template <class T>
class SwitchByName {
public:
    /// Evaluates every paired value once for the listing, in order, when the arrays are of one length.
    void init(miState* state, NamedValues<T>& params)
    {
        const int firstName = evaluate(state, params.i_names);
        const int nameCount = evaluate(state, params.n_names);
        const miTag slot = evaluate(state, params.names[0]);
        const int firstValue = evaluate(state, params.i_values);
        const int valueCount = evaluate(state, params.n_values);
        values_ = params.values + firstValue;

        // A shader may be wired into the slot, which is the name at index 0; the others are literal.
        const miTag* const literal = params.names;
        const int pairs = std::min(nameCount, valueCount); // below 0 is as good as 0
        for (int index = firstName; index < firstName + pairs; ++index)
            names_.push_back(textOf(index == 0 ? slot : literal[index]));

        if (nameCount == valueCount)
            list(state);
        else
            Listing<T>::mismatch();
    }

    void exit() { *this = {}; }

    /// `execute` of the switches. Of equal names the last one counts, and the values of all of them are
    /// evaluated. Deliberately leaves the result as it is when no name fits: scenes rely on the value that a
    /// shader before this one has left there.
    int execute(T* result, miState* state) const
    {
        const ShadedInstance shaded(state);
        const std::string_view name = shaded.name();
        for (std::size_t k = 0; k < names_.size(); ++k)
            if (names_[k] == name)
                *result = evaluate(state, values_[k]);
        return 1;
    }

private:
    void list(miState* state) const
    {
        Listing<T>::begin();
        for (std::size_t k = 0; k < names_.size(); ++k)
            Listing<T>::pair(static_cast<int>(k), names_[k], evaluate(state, values_[k]));
        Listing<T>::end();
    }

    std::vector<std::string> names_;
    T* values_ = nullptr;
};

// What the descriptions of the switches share.
inline constexpr const char* fittingOnly =
    "When the shader is made ready, once: the names, and, for arrays of one length, each value in order, for "
    "the listing. For each sample the values of the names that fit, in order, and no others.";
inline constexpr const char* noName =
    "Where no name fits, and with empty arrays, the result is left as it was, with success. An empty name "
    "fits instances without a name. Of arrays of different lengths the surplus is ignored.";

} // namespace VHL
