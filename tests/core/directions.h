// SPDX-License-Identifier: BSD-3-Clause
// Directions for tests of mappings: all around, and at all the places where roundings could tell.
#pragma once

#include "core/vector.h"

#include "floats.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>

using VHL::dVector;

/// The largest difference of a component; infinite when there is a NaN.
inline double distance(const dVector& a, const dVector& b)
{
    double most = 0;
    for (int i = 0; i < 3; ++i) {
        const double d = std::abs(double(a[i]) - double(b[i]));
        most = std::isnan(d) ? double(infinity) : std::max(most, d);
    }
    return most;
}

inline dVector unit(double x, double y, double z)
{
    const double length = std::sqrt(x * x + y * y + z * z);
    return {float(x / length), float(y / length), float(z / length)};
}

inline dVector neighbour(const dVector& d, int which)
{
    dVector result = d;
    for (int i = 0; i < 3; ++i, which /= 3)
        if (which % 3 != 0)
            result[i] = std::nextafter(d[i], which % 3 == 1 ? -2.0f : 2.0f);
    return result;
}

/// Directions over all of a cube's surface, edges and corners among them, each with all neighbours in floats;
/// and many near the axes and near where faces meet.
inline void forDirections(const std::function<void(const dVector&)>& check)
{
    const int steps = 48;
    for (int axis = 0; axis < 3; ++axis)
        for (const double side : {-1.0, 1.0})
            for (int i = -steps; i <= steps; ++i)
                for (int j = -steps; j <= steps; ++j) {
                    double p[3];
                    p[axis] = side;
                    p[(axis + 1) % 3] = double(i) / steps;
                    p[(axis + 2) % 3] = double(j) / steps;
                    const dVector d = unit(p[0], p[1], p[2]);
                    const bool special = std::abs(i) == steps || std::abs(j) == steps || (i == 0 && j == 0);
                    for (int which = 0; which < (special ? 27 : 1); ++which)
                        check(neighbour(d, which));
                }
    std::mt19937 engine(71);
    std::normal_distribution<double> normal;
    for (int round = 0; round < 200'000; ++round) {
        double p[3] = {normal(engine), normal(engine), normal(engine)};
        const int i = round % 3, j = (i + 1) % 3;
        const double closeness = std::pow(10.0, -double(round % 80) / 10);
        switch (round / 3 % 4) {
        case 1: // towards an axis
            p[i] *= closeness;
            p[j] *= closeness;
            break;
        case 2: // towards a great circle between axes
            p[i] *= closeness;
            break;
        case 3: // towards an edge's plane
            p[i] = (round % 2 ? p[j] : -p[j]) * (1 + closeness * normal(engine));
            break;
        default:
            break;
        }
        check(unit(p[0], p[1], p[2]));
    }
}
