// SPDX-License-Identifier: BSD-3-Clause
// What does a sample of a particle light cost? At points that face the particles, that face away and that
// face nothing, without shadows, against plain C that keeps its particles in one array. See bench/README.md.
#include "rig.h"

#include <random>

namespace {

constexpr int particles = 1000;

/// A light over particles in a cube around the origin.
std::string light(const std::string& name, const std::string& type)
{
    std::mt19937 engine(1);
    std::uniform_real_distribution<float> number(-1, 1);
    const auto list = [&](int components) {
        std::string text = "[";
        for (int k = 0; k < particles; ++k) {
            text += k == 0 ? "" : ",";
            for (int i = 0; i < components; ++i)
                text += ' ' + std::to_string(number(engine));
        }
        return text + " ]";
    };
    return "shader \"" + name + "\" \"" + type + "\" ( \"lightCount\" " + std::to_string(particles) +
           ", \"positions\" " + list(3) + ", \"colors\" " + list(4) + ", \"falloff\" 2, \"shadow\" off )\n";
}

/// Times a sample of the loop that a renderer runs for a point.
void timeSample(Rig& rig, const std::string& name, const std::string& function, const miVector& normal)
{
    benchmark::RegisterBenchmark(name.c_str(), [&rig, function, normal](benchmark::State& bench) {
        host::Function& light = rig.function(function);
        miState& state = rig.state();
        miColor result{};
        host::call(light, &result, state); // initialises
        state.shader = light.record();
        state.type = miRAY_LIGHT;
        state.point = {0, 0, -2};
        state.normal = normal;
        int sample = 0;
        for (auto _ : bench) {
            state.count = static_cast<miUshort>(sample);
            const int returned = light.shader->execute(&result, &state, light.parameters(), nullptr);
            sample = returned == 2 ? 0 : sample + 1;
            benchmark::DoNotOptimize(result);
        }
        state.shader = nullptr;
        state.type = miRAY_EYE;
    });
}

} // namespace

int main(int count, char** values)
{
    const std::string scene =
        "declare shader color \"plainParticleLight\" ( integer \"lightCount\", array vector "
        "\"positions\", array color \"colors\", scalar \"falloff\", boolean \"shadow\" ) "
        "end declare\n" +
        light("ours", "vhParticleLight_v1") + light("plain", "plainParticleLight");
    Rig rig(scene, {"ours", "plain"});
    const std::pair<std::string, miVector> cases[] = {
        {"facing", {0, 0, 1}}, {"facing away", {0, 0, -1}}, {"no normal", {0, 0, 0}}};
    std::vector<std::string> names;
    for (const auto& [name, normal] : cases) {
        names.push_back(name);
        timeSample(rig, name, "ours", normal);
        timeSample(rig, "plain " + name, "plain", normal);
    }
    Medians(count, values).compareWithPlain(names);
    return 0;
}
