// SPDX-License-Identifier: BSD-3-Clause
// What does the frame cost? Shaders of the library against plain C ones that read the same parameters and
// make the same query, and a chain of connected adds against a chain of shaders that do nothing. See
// bench/README.md.
#include "rig.h"

namespace {

constexpr int chainLength = 100;

std::string scene()
{
    const std::string two = R"( ( "input1" .25, "input2" .5 )
    )";
    const std::string colors = R"( ( "input1" .1 .2 .3 .4, "useAlpha1" on, "alpha1" .5,
                                     "input2" .5 .6 .7 .8, "useAlpha2" off, "alpha2" .5 )
    )";
    const std::string mixed = R"( ( "input1" .1 .2 .3 .4, "useAlpha1" on, "alpha1" .5,
                                    "input2" .5 .6 .7 .8, "useAlpha2" off, "alpha2" .5, "weight" 30 )
    )";
    const std::string vector = R"( ( "input" 3 0 4 )
    )";
    std::string text = R"(
        declare shader scalar "plainAddScalar" ( scalar "input1", scalar "input2" ) end declare
        declare shader scalar "plainPass" ( scalar "input1", scalar "input2" ) end declare
        declare shader vector "plainNormalizeVector" ( vector "input" ) end declare
    )";
    for (const char* name : {"plainAddColor", "plainMixColor"})
        text += "declare shader color \"" + std::string(name) +
                "\" ( color \"input1\", boolean \"useAlpha1\", scalar \"alpha1\", color \"input2\", "
                "boolean \"useAlpha2\", scalar \"alpha2\", scalar \"weight\" ) end declare\n";
    text += "shader \"add scalar\" \"vhAddScalar_v1\"" + two;
    text += "shader \"plain add scalar\" \"plainAddScalar\"" + two;
    text += "shader \"add color\" \"vhAddColor_v2\"" + colors;
    text += "shader \"plain add color\" \"plainAddColor\"" + colors;
    text += "shader \"mix color\" \"vhMixColor_v2\"" + mixed;
    text += "shader \"plain mix color\" \"plainMixColor\"" + mixed;
    text += "shader \"normalize\" \"vhNormalizeVector_v1\"" + vector;
    text += "shader \"plain normalize\" \"plainNormalizeVector\"" + vector;
    return text + chain("chain", "vhAddScalar_v1", chainLength) +
           chain("plain chain", "plainPass", chainLength);
}

} // namespace

int main(int count, char** values)
{
    Rig rig(scene(), {"add scalar", "plain add scalar", "add color", "plain add color", "mix color",
                      "plain mix color", "normalize", "plain normalize", "chain", "plain chain"});
    const std::vector<std::string> singles = {"add scalar", "add color", "mix color", "normalize"};
    for (const std::string& name : singles)
        for (const std::string& variant : {name, "plain " + name})
            timeCall(rig, variant);
    for (const char* variant : {"chain", "plain chain"})
        timeNetwork(rig, variant);

    const Medians ns(count, values);
    ns.compareWithPlain(singles);
    if (ns.has("chain") && ns.has("plain chain"))
        std::printf("chain of %d adds: %.2f ns per node, %.2f beyond an empty shader's\n", chainLength,
                    ns("chain") / chainLength, (ns("chain") - ns("plain chain")) / chainLength);
    return 0;
}
