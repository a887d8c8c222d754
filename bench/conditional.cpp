// SPDX-License-Identifier: BSD-3-Clause
// Does a conditional pay for the branch that is not taken? A connected condition over plain values, over a
// costly branch that it passes by, and over the same one taken; and the shader alone against plain C. See
// bench/README.md.
#include "rig.h"

int main(int count, char** values)
{
    const std::string shader = " ( \"condition\" on, \"ifTrue\" .1 .2 .3 .4, \"ifFalse\" .5 .6 .7 .8 )\n";
    const auto choice = [](const std::string& name, const std::string& condition, const std::string& ifTrue) {
        return "shader \"" + name + "\" \"vhIfThenElseScalar_v1\" ( \"condition\" = \"" + condition +
               "\", \"ifTrue\" " + ifTrue + ", \"ifFalse\" 2 )\n";
    };
    const std::string scene = "declare shader color \"plainIfThenElseColor\" "
                              "( boolean \"condition\", color \"ifTrue\", color \"ifFalse\" ) end declare\n"
                              "shader \"if color\" \"vhIfThenElseColor_v1\"" +
                              shader + "shader \"plain if color\" \"plainIfThenElseColor\"" + shader +
                              "shader \"on\" \"vhNot_v1\" ( \"input\" off )\n"
                              "shader \"off\" \"vhNot_v1\" ( \"input\" on )\n" +
                              chain("costly", "vhAddScalar_v1", 100) + choice("plain values", "off", "1") +
                              choice("costly branch passed by", "off", "= \"costly\"") +
                              choice("costly branch taken", "on", "= \"costly\"");
    const std::vector<std::string> networks = {"plain values", "costly branch passed by",
                                               "costly branch taken"};
    Rig rig(scene, {"if color", "plain if color", networks[0], networks[1], networks[2]});
    for (const char* const name : {"if color", "plain if color"})
        timeCall(rig, name);
    for (const std::string& name : networks)
        timeNetwork(rig, name);

    const Medians ns(count, values);
    ns.compareWithPlain({"if color"});
    if (ns.has(networks[0]))
        for (const std::string& name : networks)
            if (ns.has(name))
                std::printf("%-24s %10.2f ns %8.3f of that over plain values\n", name.c_str(), ns(name),
                            ns(name) / ns(networks[0]));
    return 0;
}
