// SPDX-License-Identifier: BSD-3-Clause
// Noise at many points: the choice of the processor's instructions, and what needs none in particular.
#include "noise_batch.h"
#include "noise.h"
#include "noise_tables.h"

#include <algorithm>
#include <atomic>
#include <cmath>

namespace VHLNoise {

namespace {

const Batch* best()
{
    for (const Batch* const batch : {&avx512Batch, &avx2Batch})
        if (VHL::processor() >= batch->processor)
            return batch;
    return &plainBatch;
}

// Threads that meet here at first find the same.
constinit std::atomic<const Batch*> chosen = nullptr;

const float* numbers(const dVector* points) { return reinterpret_cast<const float*>(points); }
const float* numbers(const dColor* points) { return reinterpret_cast<const float*>(points); }
float* numbers(dScalar* results) { return reinterpret_cast<float*>(results); }

template <int Axes, float (&One)(const float*)>
void plain(const float* points, float* results, std::size_t count)
{
    for (; count != 0; --count, points += Axes)
        *results++ = One(points);
}

void plainCellular(const float* points, float jitter, float* results, std::size_t count)
{
    for (; count != 0; --count, points += 3)
        *results++ = oneCellular(points, jitter);
}

/// Octaves of blocks of points; `value` is what of the noise is summed.
template <class Value>
void sumOctaves(const dVector* points, int count, dScalar lacunarity, dScalar gain, dScalar frequency,
                dScalar amplitude, dScalar* results, std::size_t size, Value value)
{
    constexpr std::size_t blockSize = 128;
    float scaled[3 * blockSize];
    float noise[blockSize];
    const auto inoise3 = chosenBatch().inoise3;
    for (std::size_t done = 0; done < size; done += blockSize) {
        const std::size_t block = std::min(size - done, blockSize);
        const float* const from = numbers(points + done);
        float* const sums = numbers(results + done);
        std::fill_n(sums, block, 0.0f);
        float times = frequency, weight = amplitude;
        for (int octave = 0; octave < count; ++octave) {
            for (std::size_t i = 0; i < 3 * block; ++i)
                scaled[i] = from[i] * times;
            inoise3(scaled, noise, block);
            for (std::size_t i = 0; i < block; ++i)
                sums[i] += value(noise[i]) * weight;
            times *= lacunarity;
            weight *= gain;
        }
    }
}

} // namespace

const Batch plainBatch = {VHL::Processor::plain, "plain",           plain<3, one3>,
                          plain<4, one4>,        plain<3, oneCell>, plainCellular};

const Batch& chosenBatch()
{
    const Batch* batch = chosen.load(std::memory_order_relaxed);
    if (!batch) [[unlikely]] {
        batch = best();
        chosen.store(batch, std::memory_order_relaxed);
    }
    return *batch;
}

bool chooseBatch(const Batch* batch)
{
    if (batch && VHL::processor() < batch->processor)
        return false;
    chosen.store(batch, std::memory_order_relaxed);
    return true;
}

float one3(const float* point) { return inoise(dVector(point[0], point[1], point[2])); }
float one4(const float* point) { return inoise(dColor(point[0], point[1], point[2], point[3])); }
float oneCell(const float* point) { return cellnoise(dVector(point[0], point[1], point[2])); }

float oneCellular(const float* point, float jitter)
{
    return cellular(dVector(point[0], point[1], point[2]), jitter).x();
}

void inoise(const dVector* points, dScalar* results, std::size_t size)
{
    chosenBatch().inoise3(numbers(points), numbers(results), size);
}

void inoise(const dColor* points, dScalar* results, std::size_t size)
{
    chosenBatch().inoise4(numbers(points), numbers(results), size);
}

void cellnoise(const dVector* points, dScalar* results, std::size_t size)
{
    chosenBatch().cellnoise(numbers(points), numbers(results), size);
}

void cellular(const dVector* points, dScalar jitter, dScalar* results, std::size_t size)
{
    const bool exact = 8.0f * (0.125f * float(jitter)) == float(jitter);
    const auto batch = exact && tables.neighbors ? chosenBatch().cellular : plainCellular;
    batch(numbers(points), jitter, numbers(results), size);
}

void octaves(const dVector* points, int count, dScalar lacunarity, dScalar gain, dScalar frequency,
             dScalar amplitude, dScalar* results, std::size_t size)
{
    sumOctaves(points, count, lacunarity, gain, frequency, amplitude, results, size,
               [](float noise) { return noise; });
}

void octaves_abs(const dVector* points, int count, dScalar lacunarity, dScalar gain, dScalar frequency,
                 dScalar amplitude, dScalar* results, std::size_t size)
{
    sumOctaves(points, count, lacunarity, gain, frequency, amplitude, results, size,
               [](float noise) { return std::fabs(noise); });
}

} // namespace VHLNoise
