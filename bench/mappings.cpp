// SPDX-License-Identifier: BSD-3-Clause
// How many directions a second do the mappings take on one core, one by one and as arrays? See
// bench/README.md.
#include "core/batch.h"

#include "fastest.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>

using namespace VHL;

/// The number of rounds may be given.
int main(int count, char** values)
{
    const int rounds = count > 1 ? std::atoi(values[1]) : 1000;
    const std::size_t size = 4096; // what stays in the caches: a thread's share of a picture does
    std::mt19937 engine(1);
    std::normal_distribution<float> normal;
    std::vector<dVector> directions, places(size, 0.0f), out(size, 0.0f);
    while (directions.size() < size) {
        const float x = normal(engine), y = normal(engine), z = normal(engine), length = std::hypot(x, y, z);
        directions.emplace_back(x / length, y / length, z / length);
    }

    const dSphericalMapping spherical;
    const dFisheyeMapping fisheye;
    const dCubicMapping cubic;
    const dBallMapping ball;
    const dAngularMapping angular;
    const std::pair<const char*, const dPanoramicConversion*> mappings[] = {{"spherical", &spherical},
                                                                            {"fisheye", &fisheye},
                                                                            {"cubic", &cubic},
                                                                            {"ball", &ball},
                                                                            {"angular", &angular}};
    std::printf("%-12s | %31s | %31s\n%-12s | %9s %9s %11s | %9s %9s %11s\n", "",
                "to texture coordinates, M/s", "to directions, M/s", "", "single", "plain", "batch", "single",
                "plain", "batch");
    for (const auto& [name, mapping] : mappings) {
        const dPanoramicConversion& m = *mapping;
        toTextureCoordinates(m, directions.data(), places.data(), size);
        Race race;
        race.add("", [&] {
            for (std::size_t i = 0; i < size; ++i)
                out[i] = m.toTextureCoordinates(directions[i]);
        });
        race.add("", [&] {
            batch::toTextureCoordinates(Processor::plain, m, directions.data(), out.data(), size);
        });
        race.add("", [&] { toTextureCoordinates(m, directions.data(), out.data(), size); });
        race.add("", [&] {
            for (std::size_t i = 0; i < size; ++i)
                out[i] = m.toDirection(places[i]);
        });
        race.add("", [&] { batch::toDirection(Processor::plain, m, places.data(), out.data(), size); });
        race.add("", [&] { toDirection(m, places.data(), out.data(), size); });
        race.run(rounds);
        double speeds[6];
        for (int i = 0; i < 6; ++i)
            speeds[i] = double(size) / race.runners()[std::size_t(i)].seconds * 1e-6;
        std::printf("%-12s | %9.1f %9.1f %11.1f | %9.1f %9.1f %11.1f\n", name, speeds[0], speeds[1],
                    speeds[2], speeds[3], speeds[4], speeds[5]);
    }
    return 0;
}
