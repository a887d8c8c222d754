// SPDX-License-Identifier: BSD-3-Clause
#include "processor.h"

#include <cpuid.h>

namespace VHL {

/// The registers that the system saves when it changes threads.
static unsigned savedRegisters()
{
    unsigned low = 0, high = 0;
    asm("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return low;
}

static Processor detect()
{
    constexpr unsigned ymm = 0x6, zmm = 0xe6; // with all that they contain, and the masks
    unsigned a = 0, b = 0, c = 0, d = 0;
    constexpr unsigned avx = bit_OSXSAVE | bit_AVX | bit_FMA;
    if (!__get_cpuid(1, &a, &b, &c, &d) || (c & avx) != avx)
        return Processor::plain;
    const unsigned saved = savedRegisters();
    if ((saved & ymm) != ymm || !__get_cpuid_count(7, 0, &a, &b, &c, &d) || !(b & bit_AVX2))
        return Processor::plain;
    constexpr unsigned avx512 = bit_AVX512F | bit_AVX512DQ;
    if ((saved & zmm) != zmm || (b & avx512) != avx512)
        return Processor::avx2;
    constexpr unsigned bytes = bit_AVX512BW | bit_AVX512VL;
    return (b & bytes) == bytes && c & bit_AVX512VBMI ? Processor::avx512Bytes : Processor::avx512;
}

Processor processor() noexcept
{
    static const Processor found = detect();
    return found;
}

} // namespace VHL
