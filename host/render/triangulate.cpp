// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/triangulate.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {

struct Point {
    double x, y;
    bool operator==(const Point&) const = default;
};

/// Twice the signed area of a triangle: positive when it turns counter-clockwise.
double area(Point a, Point b, Point c) { return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x); }

double squaredDistance(Point a, Point b) { return (a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y); }

/// Inside the counter-clockwise triangle or on its border.
bool covers(Point a, Point b, Point c, Point p)
{
    return area(a, b, p) >= 0.0 && area(b, c, p) >= 0.0 && area(c, a, p) >= 0.0;
}

/// True when p, known to be collinear with a and b, lies between them.
bool between(Point a, Point b, Point p)
{
    return std::min(a.x, b.x) <= p.x && p.x <= std::max(a.x, b.x) && std::min(a.y, b.y) <= p.y &&
           p.y <= std::max(a.y, b.y);
}

/// True when two segments have a point in common.
bool meet(Point a, Point b, Point c, Point d)
{
    const double abc = area(a, b, c), abd = area(a, b, d), cda = area(c, d, a), cdb = area(c, d, b);
    if (((abc > 0) != (abd > 0)) && abc != 0 && abd != 0 && ((cda > 0) != (cdb > 0)) && cda != 0 && cdb != 0)
        return true;
    return (abc == 0 && between(a, b, c)) || (abd == 0 && between(a, b, d)) ||
           (cda == 0 && between(c, d, a)) || (cdb == 0 && between(c, d, b));
}

/// Rings of corners, linked both ways so that cutting and joining cost nothing.
class Rings {
public:
    struct Corner {
        Point at;
        std::uint32_t vertex;
        std::uint32_t previous, next;
    };

    /// Adds a closed ring and returns its first corner; counter-clockwise when `outline`, clockwise
    /// otherwise.
    std::uint32_t addRing(std::vector<Corner> corners, bool outline)
    {
        double doubled = 0.0;
        for (std::size_t i = 0; i < corners.size(); ++i)
            doubled += area({0, 0}, corners[i].at, corners[(i + 1) % corners.size()].at);
        if ((doubled > 0.0) != outline)
            std::reverse(corners.begin(), corners.end());
        const auto first = std::uint32_t(corners_.size());
        const auto count = std::uint32_t(corners.size());
        for (std::uint32_t i = 0; i < count; ++i) {
            corners[i].previous = first + (i + count - 1) % count;
            corners[i].next = first + (i + 1) % count;
            corners_.push_back(corners[i]);
        }
        return first;
    }

    /// Joins a hole to the ring of `outline` by a bridge that crosses nothing. A hole that cannot be seen
    /// from the outline is left out.
    void join(std::uint32_t outline, std::uint32_t hole, const std::vector<std::uint32_t>& otherHoles)
    {
        std::vector<std::uint32_t> candidates = ring(outline);
        const Point from = corners_[hole].at;
        std::stable_sort(candidates.begin(), candidates.end(), [&](std::uint32_t a, std::uint32_t b) {
            return squaredDistance(corners_[a].at, from) < squaredDistance(corners_[b].at, from);
        });
        for (const std::uint32_t to : candidates) {
            if (!opensTowards(to, from) || crosses(from, corners_[to].at, outline) ||
                crosses(from, corners_[to].at, hole))
                continue;
            if (std::any_of(otherHoles.begin(), otherHoles.end(),
                            [&](std::uint32_t other) { return crosses(from, corners_[to].at, other); }))
                continue;
            bridge(to, hole);
            return;
        }
    }

    /// Cuts the ring into triangles.
    void cut(std::uint32_t start, std::vector<Triangle>& triangles)
    {
        std::size_t left = ring(start).size();
        std::uint32_t ear = start;
        // Strict ears first. Only where none is left, in degenerate input, the demands are lowered: corners
        // without area, then any convex corner, then any corner at all.
        enum { strict, flat, convex, any } demand = strict;
        std::size_t tried = 0;
        while (left > 3) {
            const Corner& corner = corners_[ear];
            const double turn = area(corners_[corner.previous].at, corner.at, corners_[corner.next].at);
            const bool accept = demand == strict   ? turn > 0.0 && isEar(ear)
                                : demand == flat   ? turn == 0.0
                                : demand == convex ? turn > 0.0
                                                   : true;
            if (!accept) {
                ear = corner.next;
                if (++tried == left) {
                    demand = demand == strict ? flat : demand == flat ? convex : any;
                    tried = 0;
                }
                continue;
            }
            emit(ear, triangles);
            corners_[corner.previous].next = corner.next;
            corners_[corner.next].previous = corner.previous;
            // Going on two corners further spreads the triangles instead of making one long fan.
            ear = corners_[corner.next].next;
            --left;
            demand = strict;
            tried = 0;
        }
        if (left == 3)
            emit(ear, triangles);
    }

    std::uint32_t rightmost(std::uint32_t start) const
    {
        std::uint32_t best = start;
        for (const std::uint32_t c : ring(start))
            if (corners_[c].at.x > corners_[best].at.x)
                best = c;
        return best;
    }

    double x(std::uint32_t corner) const { return corners_[corner].at.x; }

private:
    std::vector<std::uint32_t> ring(std::uint32_t start) const
    {
        std::vector<std::uint32_t> result;
        std::uint32_t c = start;
        do {
            result.push_back(c);
            c = corners_[c].next;
        } while (c != start);
        return result;
    }

    /// No other corner of the ring lies in the triangle at this convex corner. Only corners that do not turn
    /// left can be the first to reach into it. Copies of the triangle's own corners, which bridges leave, are
    /// no obstacle.
    bool isEar(std::uint32_t ear) const
    {
        const Corner& corner = corners_[ear];
        const Point a = corners_[corner.previous].at, b = corner.at, c = corners_[corner.next].at;
        for (std::uint32_t i = corners_[corner.next].next; i != corner.previous; i = corners_[i].next) {
            const Corner& other = corners_[i];
            if (covers(a, b, c, other.at) && other.at != a && other.at != b && other.at != c &&
                area(corners_[other.previous].at, other.at, corners_[other.next].at) <= 0.0)
                return false;
        }
        return true;
    }

    /// True when the segment from the corner to `p` starts into the ring's inside.
    bool opensTowards(std::uint32_t index, Point p) const
    {
        const Corner& corner = corners_[index];
        const Point before = corners_[corner.previous].at, after = corners_[corner.next].at;
        const bool leftOfArrival = area(before, corner.at, p) > 0.0;
        const bool leftOfDeparture = area(corner.at, after, p) > 0.0;
        return area(before, corner.at, after) > 0.0 ? leftOfArrival && leftOfDeparture
                                                    : leftOfArrival || leftOfDeparture;
    }

    /// True when the segment meets the ring elsewhere than in its own two ends. An edge through one of those
    /// may leave it there, but not run along the segment.
    bool crosses(Point from, Point to, std::uint32_t start) const
    {
        const auto holds = [](Point a, Point b, Point p) { return area(a, b, p) == 0.0 && between(a, b, p); };
        const auto inside = [&](Point p) { return p != from && p != to && holds(from, to, p); };
        std::uint32_t c = start;
        do {
            const Point a = corners_[c].at, b = corners_[corners_[c].next].at;
            if (holds(a, b, from) || holds(a, b, to) ? inside(a) || inside(b) : meet(from, to, a, b))
                return true;
            c = corners_[c].next;
        } while (c != start);
        return false;
    }

    void bridge(std::uint32_t outline, std::uint32_t hole)
    {
        const auto outlineCopy = std::uint32_t(corners_.size());
        const std::uint32_t holeCopy = outlineCopy + 1;
        corners_.push_back(corners_[outline]);
        corners_.push_back(corners_[hole]);
        // outline -> hole ... holeCopy -> outlineCopy -> what followed the outline's corner.
        corners_[corners_[outline].next].previous = outlineCopy;
        corners_[corners_[hole].previous].next = holeCopy;
        corners_[outline].next = hole;
        corners_[hole].previous = outline;
        corners_[holeCopy].next = outlineCopy;
        corners_[outlineCopy].previous = holeCopy;
    }

    void emit(std::uint32_t ear, std::vector<Triangle>& triangles) const
    {
        const Corner& a = corners_[corners_[ear].previous];
        const Corner& b = corners_[ear];
        const Corner& c = corners_[b.next];
        if (area(a.at, b.at, c.at) != 0.0)
            triangles.push_back({a.vertex, b.vertex, c.vertex});
    }

    std::vector<Corner> corners_;
};

/// The polygon's plane without the axis along which it is seen best, turned so that its outline, seen from
/// the front, is counter-clockwise.
class Projection {
public:
    Projection(const Object& object, const Loop& outline)
    {
        // Sums relative to the first point: the normal of a small polygon far from the origin stays exact.
        const miVector origin = position(object, object.loopVertices[outline.first]);
        for (std::uint32_t i = 0; i < outline.count; ++i) {
            const miVector a = position(object, object.loopVertices[outline.first + i]);
            const miVector b = position(object, object.loopVertices[outline.first + (i + 1) % outline.count]);
            const double ax = double(a.x) - origin.x, ay = double(a.y) - origin.y,
                         az = double(a.z) - origin.z;
            const double bx = double(b.x) - origin.x, by = double(b.y) - origin.y,
                         bz = double(b.z) - origin.z;
            x_ += ay * bz - az * by;
            y_ += az * bx - ax * bz;
            z_ += ax * by - ay * bx;
        }
    }

    Point operator()(miVector p) const
    {
        const double x = std::abs(x_), y = std::abs(y_), z = std::abs(z_);
        if (x >= y && x >= z)
            return x_ >= 0 ? Point{p.y, p.z} : Point{p.z, p.y};
        if (y >= z)
            return y_ >= 0 ? Point{p.z, p.x} : Point{p.x, p.z};
        return z_ >= 0 ? Point{p.x, p.y} : Point{p.y, p.x};
    }

    static miVector position(const Object& object, std::uint32_t vertex)
    {
        return object.vectors[object.vertices[vertex].point];
    }

private:
    double x_ = 0, y_ = 0, z_ = 0; // twice the area seen along each axis
};

} // namespace

void triangulate(const Object& object, const Polygon& polygon, std::vector<Triangle>& triangles)
{
    const Loop& outline = object.loops[polygon.firstLoop];
    const std::uint32_t* const vertices = object.loopVertices.data();
    if (outline.count < 3)
        return;
    if (polygon.loopCount == 1 && (polygon.convex || outline.count == 3)) {
        for (std::uint32_t i = 1; i + 1 < outline.count; ++i)
            triangles.push_back(
                {vertices[outline.first], vertices[outline.first + i], vertices[outline.first + i + 1]});
        return;
    }

    const Projection project(object, outline);
    Rings rings;
    const auto add = [&](const Loop& loop, bool isOutline) {
        std::vector<Rings::Corner> corners;
        for (std::uint32_t i = 0; i < loop.count; ++i) {
            const std::uint32_t vertex = vertices[loop.first + i];
            corners.push_back({project(Projection::position(object, vertex)), vertex, 0, 0});
        }
        return rings.addRing(std::move(corners), isOutline);
    };
    const std::uint32_t start = add(outline, true);
    std::vector<std::uint32_t> holes;
    for (std::uint32_t i = 1; i < polygon.loopCount; ++i)
        if (const Loop& loop = object.loops[polygon.firstLoop + i]; loop.count >= 3)
            holes.push_back(rings.rightmost(add(loop, false)));
    // From the right to the left, so that a hole is joined before another one that it hides from the outline.
    std::stable_sort(holes.begin(), holes.end(),
                     [&](std::uint32_t a, std::uint32_t b) { return rings.x(a) < rings.x(b); });
    while (!holes.empty()) {
        const std::uint32_t hole = holes.back();
        holes.pop_back();
        rings.join(start, hole, holes);
    }
    rings.cut(start, triangles);
}

} // namespace host
