// SPDX-License-Identifier: BSD-3-Clause
// A program that uses what is installed for other code, all of it. Prints what it computed.

#include <vhl/boolean.h>
#include <vhl/color.h>
#include <vhl/scalar.h>
#include <vhl/text.h>
#include <vhl/vector.h>

#include <cstdio>
#include <cstdlib>

// Of values that the compiler does not know: shows which instructions it chooses.
miColor compress(const miColor& value, const miColor& low, const miColor& high)
{
    return VHL::dColor::compress(value, low, high);
}

int main()
{
    const VHL::dScalar half = VHL::dScalar(1) / 2;
    const miVector vector = VHL::dVector(1, 2, 3) * half;
    const miColor color = compress(VHL::dColor(0.5f), VHL::dColor(0.0f), VHL::dColor(vector.z));
    const VHL::dBoolean equal = !(VHL::dColor(color) != VHL::dColor(0.75f));

    char text[] = "a,b";
    char* const joined = VHL::join(';', VHL::split(',', text));
    std::printf("%g %g %d %s\n", double(vector.y), double(color.a), int(equal), joined);
    std::free(joined);
}
