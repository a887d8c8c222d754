// SPDX-License-Identifier: BSD-3-Clause
// Pattern switch: a colour chosen by the pattern that the name of the shaded object matches.

// Boost keeps traits of a locale and blocks of memory in static objects, whose destructors would be left to
// run at exit; a library that is unloaded and loaded again must not leave any. With the C library's traits
// and no spare blocks there are none. They match alike unless a program sets a locale for C++ alone.
#define BOOST_REGEX_USE_C_LOCALE
#define BOOST_REGEX_MAX_CACHE_BLOCKS 0

#include "core/evaluate.h"
#include "core/export.h"
#include "shaders/decisions.h"
#include "shaders/instance_name.h"
#include "shaders/string_parameter.h"

#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/replace.hpp>
#include <boost/regex.hpp>

#include <algorithm>
#include <array>
#include <atomic>
#include <stdexcept>
#include <string>
#include <vector>

struct _vhSwitchColorRegExp_v4Params {
    miColor defaultColor;
    int i_patterns;
    int n_patterns;
    miTag patterns[1];
    int i_values;
    int n_values;
    miColor values[1];

    static constexpr auto fields()
    {
        using P = _vhSwitchColorRegExp_v4Params;
        return std::array{
            VHL_FIELD(P, defaultColor, "Colour for instances that no pattern matches."),
            VHL_FIELD_ARRAY_AS(P, string, patterns,
                               "Patterns, in lower case: * stands for any text, ? for any character. Found "
                               "anywhere in the name; the last one that matches counts."),
            VHL_FIELD_ARRAY(P, values, "The colour for each pattern, in the same order.")};
    }
};

/// The pattern as a regular expression. Only the wildcards are translated, all other syntax stays.
/// Deliberate: the pattern is brought to lower case, escapes such as \D too, while names are matched as they
/// are, so that no pattern matches a capital letter by name.
static std::string expression(const char* pattern)
{
    using boost::algorithm::ireplace_all_copy;
    using boost::algorithm::to_lower_copy;
    const std::string text = to_lower_copy(ireplace_all_copy(std::string(pattern), "*", ".*"));
    return to_lower_copy(ireplace_all_copy(text, "?", "."));
}

struct vhSwitchColorRegExp_v4 final : VHL::dMentalRayShader<miColor, _vhSwitchColorRegExp_v4Params, 3> {
    void init(miState* state, Params* params) override
    {
        evaluations = 0;
        const int firstPattern = VHL::evaluate(state, params->i_patterns);
        const int patternCount = VHL::evaluate(state, params->n_patterns);
        const miTag slot = VHL::evaluate(state, *params->patterns);
        const int firstValue = VHL::evaluate(state, params->i_values);
        const int valueCount = VHL::evaluate(state, params->n_values);
        values = params->values + firstValue;
        // A shader may be wired into the slot, which is the pattern at index 0; the others are literal.
        const auto pattern = [&, literal = params->patterns](int k) {
            return firstPattern + k == 0 ? slot : *(literal + firstPattern + k);
        };

        patternTexts.clear();
        regexes.clear();
        decisions.clear();
        const int pairs = std::min(patternCount, valueCount);
        for (int k = 0; k < pairs; ++k) {
            const VHL::PinnedText text(pattern(k));
            patternTexts.emplace_back(text.get());
            regexes.emplace_back(expression(text.get()));
        }

        if (patternCount != valueCount) {
            mi_warning("vhSwitchColor_v4 - length of pattern and value arrays do not match.\n");
            return;
        }
        mi_info("vhSwitchColor_v4 pattern / value pairs - begin\n");
        for (int k = 0; k < pairs; ++k) {
            const VHL::PinnedText text(pattern(k));
            VHL::evaluate(state,
                          values[k]); // deliberate, though not printed: a shader behind it runs here first
            mi_info("vhSwitchColor_v4 pattern %d : %s\n", k, text.get());
        }
        mi_info("vhSwitchColor_v4 pattern / value pairs - end\n");
    }

    int execute(miColor* result, miState* state, Params* params) override
    {
        evaluations.fetch_add(1, std::memory_order_relaxed);
        const VHL::ShadedInstance shaded(state);
        const std::optional<int> known = decisions.find(state->instance);
        const int found = known ? *known : decideAndTell(state->instance, shaded.name());
        *result = VHL::evaluate(state, found == useDefault ? params->defaultColor : values[found]);
        return 1;
    }

    void exit(miState*, Params*) override
    {
        mi_info("vhSwitchColor_v4 - evaluated %d times, %d matches\n", static_cast<int>(evaluations.load()),
                static_cast<int>(decisions.size()));
        patternTexts.clear();
        regexes.clear();
        decisions.clear();
        values = nullptr;
    }

private:
    /// The decision for instances that no pattern matches; others are the pattern's position.
    static constexpr int useDefault = -2;

    /// The position of the last pattern that is found somewhere in the name. A search that would take for
    /// ever is given up by Boost with an error, and with it the decision.
    int decide(const std::string& name) const
    try {
        int found = useDefault;
        for (std::size_t k = 0; k < regexes.size(); ++k)
            if (boost::regex_search(name, regexes[k]))
                found = static_cast<int>(k);
        return found;
    } catch (const std::runtime_error&) {
        return useDefault;
    }

    /// Of threads that meet an instance at the same time each decides, alike, and one tells.
    int decideAndTell(miTag instance, const char* name)
    {
        const auto [found, isNew] = decisions.insert(instance, decide(name));
        if (!isNew)
            return found;
        if (found == useDefault)
            mi_warning("vhSwitchColor_v4 - object %s not matched to a pattern. Using default color\n", name);
        else
            mi_info("vhSwitchColor_v4 - matched object %s to pattern %s\n", name,
                    patternTexts[static_cast<std::size_t>(found)].c_str());
        return found;
    }

    std::vector<boost::regex> regexes;
    std::vector<std::string> patternTexts; ///< as the scene has them, for messages
    VHL::Decisions decisions;
    miColor* values = nullptr; ///< the first one, in the parameter block
    std::atomic<unsigned> evaluations{0};
};

static constexpr const char* notes =
    R"(Upper and lower case: the pattern is brought to lower case, the name is not. `Box*` finds `box01` and
`mybox`, but not `Box01`. Where a name has capital letters, write `?` for each: `?ox*` finds `Box01`.

`*` stands for any text and `?` for any one character. Everything else is a regular expression (Boost, Perl
syntax): `.` is any character as well, and `\.` a dot; `+`, `{0,1}`, `[a-f]`, `(left|right)`, `^` and `$`
work; `*` and `?` are never repetitions. Escapes are brought to lower case too: `\D` becomes `\d`, a digit.

In the strings of a scene a backslash begins an escape, so each that the expression has is written twice:
`"v1\\.2"` is the expression `v1\.2`, which finds `v1.2` and not `v1x2`. vhrender takes a single one before a
dot as it is; the renderer need not.

The search is not anchored: a pattern also matches every longer name that contains what it describes, so
`box` finds `mailbox2`, and `*` before or after a pattern changes nothing. To say where the name begins and
ends:

| pattern | matches |
|---|---|
| `^box$` | `box` and nothing else |
| `^box` | names that begin with `box` |
| `box$` | names that end in `box` |
| `^box??$` | `box` and two more characters: `box01` |
| `^box*left$` | names that begin with `box` and end in `left` |
| `^(box\|ball)$` | `box` and `ball` |

When several patterns match, the last one counts: put the general ones first. Empty patterns match
everything.

The log tells what was found: the patterns when the shader is made ready, one line for each instance at its
first sample, and a count at the end, of samples and of all instances that were decided, those without a
match included. These are messages of class info, which verbosity 4 shows:

```
RC   0.1  info : vhSwitchColor_v4 pattern / value pairs - begin
RC   0.1  info : vhSwitchColor_v4 pattern 0 : *
RC   0.1  info : vhSwitchColor_v4 pattern 1 : ^box??$
RC   0.1  info : vhSwitchColor_v4 pattern / value pairs - end
RC   0.1  info : vhSwitchColor_v4 - matched object ball to pattern *
RC   0.2  info : vhSwitchColor_v4 - matched object box01 to pattern ^box??$
RC   0.0  info : vhSwitchColor_v4 - evaluated 4096 times, 2 matches
```

An instance that no pattern matches gives a warning instead, which is seen at the usual verbosity too:

```
RC   0.1  warn : vhSwitchColor_v4 - object Ball not matched to a pattern. Using default color
```

Arrays of different lengths give a warning, and the surplus is ignored. A pattern that is not a regular
expression stops the rendering. A search that would take for ever, as that of `(a+)+b` in a long name, is
given up, and the instance gets defaultColor.)";

VHL_EXPORT_SHADER(
    vhSwitchColor_v4, vhSwitchColorRegExp_v4,
    "The colour of the last pattern that is found anywhere in the name of the instance being shaded, or "
    "defaultColor. Decided and logged once for each instance.",
    .order = "When the shader is made ready, once: the patterns, and, for arrays of one length, each value "
             "in order. For each sample the value that was decided on for the instance, or defaultColor, "
             "once, and no other. Patterns are searched for at an instance's first sample alone.",
    .edges = "Empty patterns fit every name, no patterns fit none. Of arrays of different lengths the "
             "surplus is ignored. A pattern that is no regular expression stops the rendering; a search that "
             "is given up counts as no match.",
    .messages =
        "Info, when the shader is made ready: \"vhSwitchColor_v4 pattern / value pairs - begin\", for each "
        "pattern \"vhSwitchColor_v4 pattern 0 : ^box\", and \"vhSwitchColor_v4 pattern / value pairs - "
        "end\"; in their place, for arrays of different lengths, a warning: \"vhSwitchColor_v4 - length of "
        "pattern and value arrays do not match.\" At an instance's first sample, info: \"vhSwitchColor_v4 "
        "- matched object box01 to pattern ^box\"; where no pattern matches, a warning: \"vhSwitchColor_v4 "
        "- object ball not matched to a pattern. Using default color\". At the end, info: "
        "\"vhSwitchColor_v4 - evaluated 4096 times, 2 matches\".",
    .notes = notes)
