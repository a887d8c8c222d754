// SPDX-License-Identifier: BSD-3-Clause
// What does a mixer cost? The one of 16 colours with all, a quarter and none of its slots on, against plain C
// that reads the same parameters. See bench/README.md.
#include "rig.h"

namespace {

constexpr int slots = 16;

/// A mixer with its first slots on.
std::string mixer(const std::string& name, const std::string& type, int on)
{
    std::string text = "shader \"" + name + "\" \"" + type + "\" (";
    for (int slot = 1; slot <= slots; ++slot) {
        const std::string number = std::to_string(slot);
        text += std::string(slot == 1 ? "" : ",") + " \"input" + number + "\" .1 .2 .3 ." + number +
                ", \"weight" + number + "\" ." + number + ", \"enable" + number + "\" " +
                (slot <= on ? "on" : "off");
    }
    return text + " )\n";
}

} // namespace

int main(int count, char** values)
{
    std::string scene = "declare shader color \"plainMixerColor16\" (";
    for (int slot = 1; slot <= slots; ++slot) {
        const std::string number = std::to_string(slot);
        scene += std::string(slot == 1 ? "" : ",") + " color \"input" + number + "\", scalar \"weight" +
                 number + "\", boolean \"enable" + number + "\"";
    }
    scene += " ) end declare\n";
    std::vector<std::string> names;
    std::vector<std::string> all;
    for (const int on : {16, 4, 0}) {
        const std::string name = std::to_string(on) + " slots on";
        names.push_back(name);
        all.insert(all.end(), {name, "plain " + name});
        scene += mixer(name, "vhMixerColor16_v1", on) + mixer("plain " + name, "plainMixerColor16", on);
    }
    Rig rig(scene, all);
    for (const std::string& name : all)
        timeCall(rig, name);
    Medians(count, values).compareWithPlain(names);
    return 0;
}
