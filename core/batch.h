// SPDX-License-Identifier: BSD-3-Clause
// The batch forms for a kind of processor, which the machine must be.
#pragma once

#include "mappings.h"
#include "processor.h"
#include "transforms.h"

namespace VHL::batch {

void transformCl(Processor, const dColorTransform&, const dColor* in, dColor* out, std::size_t count);
void inverseCl(Processor, const dColorTransform&, const dColor* in, dColor* out, std::size_t count);
void transformFl(Processor, const dColorTransform&, const float* in, float* out, std::size_t count,
                 int channel);
void inverseFl(Processor, const dColorTransform&, const float* in, float* out, std::size_t count,
               int channel);
void transformSh(Processor, const dColorTransform&, const unsigned short* in, unsigned short* out,
                 std::size_t count, int channel);
void inverseSh(Processor, const dColorTransform&, const unsigned short* in, unsigned short* out,
               std::size_t count, int channel);
void toTextureCoordinates(Processor, const dPanoramicConversion&, const dVector* in, dVector* out,
                          std::size_t count);
void toDirection(Processor, const dPanoramicConversion&, const dVector* in, dVector* out, std::size_t count);

} // namespace VHL::batch
