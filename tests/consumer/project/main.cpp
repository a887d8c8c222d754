// SPDX-License-Identifier: BSD-3-Clause
// A program that uses what is installed for other code, all of it. Prints what it computed.

#include <vhl/boolean.h>
#include <vhl/color.h>
#include <vhl/mappings.h>
#include <vhl/noise.h>
#include <vhl/scalar.h>
#include <vhl/text.h>
#include <vhl/transforms.h>
#include <vhl/vector.h>

#include <cstdio>
#include <cstdlib>

// Of values that the compiler does not know: shows which instructions it chooses.
miColor compress(const miColor& value, const miColor& low, const miColor& high)
{
    return VHL::dColor::compress(value, low, high);
}

// A transform of one's own among the library's.
struct Half : VHL::dColorTransform1 {
    float transformFl(float value, int) const override { return value / 2; }
    float inverseFl(float value, int) const override { return value * 2; }
};

int main()
{
    const VHL::dScalar half = VHL::dScalar(1) / 2;
    const miVector vector = VHL::dVector(1, 2, 3) * half;
    const miColor color = compress(VHL::dColor(0.5f), VHL::dColor(0.0f), VHL::dColor(vector.z));
    const VHL::dBoolean equal = !(VHL::dColor(color) != VHL::dColor(0.75f));

    char text[] = "a,b";
    char* const joined = VHL::join(';', VHL::split(',', text));
    std::printf("%g %g %d %s", double(vector.y), double(color.a), int(equal), joined);
    std::free(joined);

    const Half halving;
    const VHL::dColorTransform& transform = halving;
    const VHL::dGamma gamma(VHL::dColor(0.5f));
    std::printf(" %d %g", int(transform.transformCh(100, 0)), double(gamma.transformFl(3, 0)));
    VHL::dColor colors[] = {0.25f, 0.5f};
    VHL::transformCl(transform, colors, colors, 2);
    VHL::dVector places[] = {{1, 0, 0}, {0, 0, -1}};
    VHL::toTextureCoordinates(VHL::dFisheyeMapping(), places, places, 2);
    std::printf(" %g %g %g", double(colors[1].r()), double(places[0].x()), double(places[1].x()));

    VHLNoise::init_noise();
    const VHL::dVector points[] = {{0.25f, 1.5f, -7.75f}, {300.5f, 0.125f, 2.0f}};
    VHL::dScalar many[] = {0.0f, 0.0f};
    VHLNoise::inoise(points, many, 2);
    const bool same = many[0] == VHLNoise::inoise(points[0]) && many[1] == VHLNoise::inoise(points[1]);
    std::printf(" %g %s\n", double(VHLNoise::perm(0.0f) * 255.0f), same ? "same" : "different");
}
