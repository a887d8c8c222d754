// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/triangulate.h"

#include <algorithm>
#include <cmath>
#include <compare>
#include <map>
#include <utility>

namespace host {

namespace {

struct Point {
    double x, y;
    auto operator<=>(const Point&) const = default;
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

/// A corner of the outline or of a hole.
struct Place {
    Point at;
    std::uint32_t vertex;
};
using Places = std::vector<Place>;

double doubledArea(const Places& ring)
{
    double doubled = 0.0;
    for (std::size_t i = 0; i < ring.size(); ++i)
        doubled += area({0, 0}, ring[i].at, ring[(i + 1) % ring.size()].at);
    return doubled;
}

/// Where holes touch the outline or one another, at corners or along edges, the border is walked anew, so
/// that no edge is left that has the polygon on neither side: rings that touch become one, or fall apart.
class Contacts {
public:
    /// The outline counter-clockwise, then holes clockwise.
    explicit Contacts(std::vector<Places>& rings) : rings_(rings)
    {
        double largest = 0.0;
        for (const Places& ring : rings)
            for (const Place& place : ring)
                largest = std::max({largest, std::abs(place.at.x), std::abs(place.at.y)});
        reach_ = largest * 0x1p-21; // a few times what rounding to float moves a point
    }

    void resolve()
    {
        if (!snap() && !insert())
            return;
        insert();
        collect();
        rings_.clear();
        for (const auto& [from, targets] : edges_)
            while (!edges_[from].empty())
                walk(from);
    }

private:
    /// Moves corners onto those of other rings that they all but coincide with; true when there are any.
    bool snap()
    {
        bool touching = false;
        for (std::size_t r = 1; r < rings_.size(); ++r)
            for (Place& place : rings_[r])
                for (std::size_t q = 0; q < r; ++q)
                    for (const Place& other : rings_[q])
                        if (squaredDistance(place.at, other.at) <= reach_ * reach_) {
                            place.at = other.at;
                            touching = true;
                        }
        return touching;
    }

    /// Puts corners of other rings into the edges that they lie on; true when there are any.
    bool insert()
    {
        bool touching = false;
        std::vector<Places> result;
        for (std::size_t r = 0; r < rings_.size(); ++r) {
            Places& ring = result.emplace_back();
            for (std::size_t i = 0; i < rings_[r].size(); ++i) {
                const Place a = rings_[r][i];
                const Point b = rings_[r][(i + 1) % rings_[r].size()].at;
                ring.push_back(a);
                std::vector<std::pair<double, Place>> found;
                for (std::size_t q = 0; q < rings_.size(); ++q)
                    for (const Place& other : rings_[q])
                        if (q != r && on(a.at, b, other.at))
                            found.emplace_back(squaredDistance(a.at, other.at), other);
                std::stable_sort(found.begin(), found.end(),
                                 [](const auto& x, const auto& y) { return x.first < y.first; });
                for (const auto& [distance, place] : found)
                    if (ring.back().at != place.at)
                        ring.push_back(place);
                touching = touching || !found.empty();
            }
        }
        rings_ = std::move(result);
        return touching;
    }

    /// Between the ends of the edge, which it is near enough to count as being on.
    bool on(Point a, Point b, Point p) const
    {
        const double length = std::sqrt(squaredDistance(a, b));
        if (length <= 2.0 * reach_ || std::abs(area(a, b, p)) > reach_ * length)
            return false;
        const double along = ((p.x - a.x) * (b.x - a.x) + (p.y - a.y) * (b.y - a.y)) / length;
        return along > reach_ && along < length - reach_;
    }

    /// All edges by where they begin, without those that another one runs along the other way.
    void collect()
    {
        for (const Places& ring : rings_)
            for (std::size_t i = 0; i < ring.size(); ++i) {
                const Place& a = ring[i];
                const Place& b = ring[(i + 1) % ring.size()];
                if (a.at == b.at)
                    continue;
                vertices_.try_emplace(a.at, a.vertex);
                std::vector<Point>& back = edges_[b.at];
                const auto opposite = std::find(back.begin(), back.end(), a.at);
                if (opposite != back.end())
                    back.erase(opposite);
                else
                    edges_[a.at].push_back(b.at);
            }
    }

    /// Takes edges until they close a ring, and turns as far left as possible where several go on.
    void walk(Point start)
    {
        Places ring;
        Point before{}, at = start;
        do {
            std::vector<Point>& on = edges_[at];
            if (on.empty())
                return; // crossing edges; the ring would stay open
            const auto next =
                ring.empty() ? on.begin() : std::min_element(on.begin(), on.end(), [&](Point p, Point q) {
                    return clockwise(before, at, p) < clockwise(before, at, q);
                });
            ring.push_back({at, vertices_.at(at)});
            before = at;
            at = *next;
            on.erase(next);
        } while (at != start || (!edges_[at].empty() && sharper(before, at, ring)));
        if (ring.size() >= 3)
            rings_.push_back(std::move(ring));
    }

    /// The angle by which the way back has to turn clockwise to become the way on; above 0.
    static double clockwise(Point before, Point at, Point on)
    {
        const double back = std::atan2(before.y - at.y, before.x - at.x);
        const double forth = std::atan2(on.y - at.y, on.x - at.x);
        const double angle = back - forth;
        return angle > 0.0 ? angle : angle + 8.0 * std::atan(1.0);
    }

    /// Back at its first corner, the ring goes on when some edge lies further left than its own first one.
    bool sharper(Point before, Point at, const Places& ring) const
    {
        const double first = clockwise(before, at, ring[1].at);
        const std::vector<Point>& on = edges_.at(at);
        return std::any_of(on.begin(), on.end(), [&](Point p) { return clockwise(before, at, p) < first; });
    }

    std::vector<Places>& rings_;
    double reach_ = 0.0;
    std::map<Point, std::vector<Point>> edges_;
    std::map<Point, std::uint32_t> vertices_;
};

/// Inside the ring or on its border, by the parity of the edges that lie to the right.
bool encloses(const Places& ring, Point p)
{
    bool inside = false;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const Point a = ring[i].at, b = ring[(i + 1) % ring.size()].at;
        if (area(a, b, p) == 0.0 && between(a, b, p))
            return true;
        if ((a.y > p.y) != (b.y > p.y) && p.x < a.x + (p.y - a.y) / (b.y - a.y) * (b.x - a.x))
            inside = !inside;
    }
    return inside;
}

/// Rings of corners, linked both ways so that cutting and joining cost nothing.
class Rings {
public:
    struct Corner {
        Point at;
        std::uint32_t vertex;
        std::uint32_t previous, next;
    };

    /// Adds a closed ring and returns its first corner.
    std::uint32_t addRing(const Places& places)
    {
        const auto first = std::uint32_t(corners_.size());
        const auto count = std::uint32_t(places.size());
        for (std::uint32_t i = 0; i < count; ++i)
            corners_.push_back(
                {places[i].at, places[i].vertex, first + (i + count - 1) % count, first + (i + 1) % count});
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
    std::vector<Places> all;
    for (std::uint32_t i = 0; i < polygon.loopCount; ++i) {
        const Loop& loop = object.loops[polygon.firstLoop + i];
        if (loop.count < 3)
            continue;
        Places& ring = all.emplace_back();
        for (std::uint32_t k = 0; k < loop.count; ++k) {
            const std::uint32_t vertex = vertices[loop.first + k];
            ring.push_back({project(Projection::position(object, vertex)), vertex});
        }
        if ((doubledArea(ring) > 0.0) != (i == 0))
            std::reverse(ring.begin(), ring.end());
    }
    if (all.size() > 1)
        Contacts(all).resolve();

    std::vector<Places> holes;
    const auto isHole = [](const Places& ring) { return doubledArea(ring) < 0.0; };
    if (all.size() > 1) {
        const auto first =
            std::stable_partition(all.begin(), all.end(), [&](const auto& r) { return !isHole(r); });
        holes.assign(std::make_move_iterator(first), std::make_move_iterator(all.end()));
        all.erase(first, all.end());
    }
    for (const Places& border : all) {
        Rings rings;
        const std::uint32_t start = rings.addRing(border);
        std::vector<std::uint32_t> inside;
        for (const Places& hole : holes)
            if (all.size() == 1 || encloses(border, hole.front().at))
                inside.push_back(rings.rightmost(rings.addRing(hole)));
        // From the right to the left, so that a hole is joined before another one that it hides from the
        // border.
        std::stable_sort(inside.begin(), inside.end(),
                         [&](std::uint32_t a, std::uint32_t b) { return rings.x(a) < rings.x(b); });
        while (!inside.empty()) {
            const std::uint32_t hole = inside.back();
            inside.pop_back();
            rings.join(start, hole, inside);
        }
        rings.cut(start, triangles);
    }
}

} // namespace host
