#include "fileio/dxf_curves.h"

#include "model/angle.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int pieces_of_circle = 48;
constexpr int pieces_of_span = 8; // of a spline between two knots
constexpr int most_degree = 25;

int pieces_of(double angle)
{
    const double pieces = std::ceil(std::fabs(angle) / (2 * pi) * pieces_of_circle - 1e-9);
    return static_cast<int>(pieces > 1 ? std::min(pieces, 2.0 * pieces_of_circle) : 1);
}

} // namespace

std::vector<vec3d> dxf_arc(const vec3d &centre, double radius, double from, double to)
{
    double angle = std::remainder(to - from, 2 * pi);
    if (angle <= 1e-12)
        angle += 2 * pi;
    const int pieces = pieces_of(angle);
    std::vector<vec3d> points;
    for (int i = 0; i <= pieces; ++i) {
        const double at = from + angle * i / pieces;
        points.push_back(centre + vec3d{radius * std::cos(at), radius * std::sin(at), 0});
    }
    return points;
}

void dxf_add_bulge(const vec3d &a, const vec3d &b, double bulge, std::vector<vec3d> *points)
{
    points->push_back(a);
    const vec3d chord = b - a;
    if (std::fabs(bulge) < 1e-9 || (chord.x == 0 && chord.y == 0))
        return;
    const double angle = 4 * std::atan(bulge);
    // The centre lies beside the middle of the chord.
    const double beside = (1 - bulge * bulge) / (4 * bulge);
    const vec3d centre = {(a.x + b.x) / 2 - chord.y * beside, (a.y + b.y) / 2 + chord.x * beside,
                          a.z};
    const int pieces = pieces_of(angle);
    const vec3d arm = a - centre;
    for (int i = 1; i < pieces; ++i) {
        const double turn = angle * i / pieces, c = std::cos(turn), s = std::sin(turn);
        points->push_back({centre.x + arm.x * c - arm.y * s, centre.y + arm.x * s + arm.y * c,
                           a.z + (b.z - a.z) * i / pieces});
    }
}

std::vector<vec3d> dxf_ellipse(const dxf_record &record, bool *closed)
{
    const vec3d centre = record.point(10), major = record.point(11);
    const vec3d minor = cross(record.extrusion(), major) * record.number(40, 1);
    const double from = record.number(41, 0);
    double angle = record.number(42, 2 * pi) - from;
    *closed = std::fabs(std::fabs(angle) - 2 * pi) < 1e-6;
    if (!*closed) {
        angle = std::fmod(angle, 2 * pi);
        angle += angle <= 0 ? 2 * pi : 0;
    }
    const int pieces = pieces_of(angle);
    std::vector<vec3d> points;
    for (int i = 0; i < pieces + (*closed ? 0 : 1); ++i) {
        const double at = from + angle * i / pieces;
        points.push_back(centre + major * std::cos(at) + minor * std::sin(at));
    }
    return points;
}

// ---- splines ----

namespace {

struct weighted {
    vec3d point; // times its weight
    double weight;
};

struct spline_t {
    int degree;
    std::vector<double> knots;
    std::vector<weighted> controls;

    // By the points between which it lies, halved again and again (de Boor).
    [[nodiscard]] vec3d at(std::size_t span, double t) const
    {
        const auto p = static_cast<std::size_t>(degree);
        std::vector<weighted> d(controls.begin() + static_cast<std::ptrdiff_t>(span - p),
                                controls.begin() + static_cast<std::ptrdiff_t>(span + 1));
        for (std::size_t r = 1; r <= p; ++r) {
            for (std::size_t j = p; j >= r; --j) {
                const double low = knots[j + span - p], high = knots[j + 1 + span - r];
                const double share = high > low ? (t - low) / (high - low) : 0;
                d[j].point = d[j - 1].point * (1 - share) + d[j].point * share;
                d[j].weight = d[j - 1].weight * (1 - share) + d[j].weight * share;
            }
        }
        return d[p].weight > 0 ? d[p].point / d[p].weight : d[p].point;
    }
};

std::vector<double> numbers_of(const dxf_record &record, int code)
{
    std::vector<double> numbers;
    for (const dxf_record::pair_t &pair : record.pairs) {
        if (pair.code == code)
            numbers.push_back(dxf_number(pair.value));
    }
    return numbers;
}

// Smoothly through all of them, by the neighbours' directions (Catmull and Rom).
std::vector<vec3d> through(const std::vector<vec3d> &fit, bool closed)
{
    const auto count = static_cast<std::ptrdiff_t>(fit.size());
    if (count < 3)
        return fit;
    const auto at = [&](std::ptrdiff_t i) {
        return closed ? fit[(i + count) % count] : fit[std::clamp<std::ptrdiff_t>(i, 0, count - 1)];
    };
    std::vector<vec3d> points;
    for (std::ptrdiff_t i = 0; i < count - (closed ? 0 : 1); ++i) {
        const vec3d a = at(i - 1), b = at(i), c = at(i + 1), d = at(i + 2);
        for (int k = 0; k < pieces_of_span; ++k) {
            const double t = static_cast<double>(k) / pieces_of_span;
            points.push_back((b * 2 + (c - a) * t + (a * 2 - b * 5 + c * 4 - d) * (t * t) +
                              (b * 3 - a - c * 3 + d) * (t * t * t)) /
                             2);
        }
    }
    if (!closed)
        points.push_back(fit.back());
    return points;
}

bool read_spline(const dxf_record &record, spline_t *spline)
{
    spline->degree = record.whole(71, 3);
    spline->knots = numbers_of(record, 40);
    const std::vector<vec3d> points = dxf_points(record, 10);
    const std::vector<double> weights = numbers_of(record, 41);
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double weight = weights.size() == points.size() ? weights[i] : 1;
        spline->controls.push_back({points[i] * weight, weight});
    }
    return spline->degree >= 1 && spline->degree <= most_degree &&
           spline->controls.size() > static_cast<std::size_t>(spline->degree) &&
           spline->knots.size() == spline->controls.size() + spline->degree + 1 &&
           std::is_sorted(spline->knots.begin(), spline->knots.end());
}

} // namespace

std::vector<vec3d> dxf_spline(const dxf_record &record, bool *closed)
{
    *closed = (record.whole(70) & 1) != 0;
    spline_t spline;
    if (!read_spline(record, &spline))
        return through(dxf_points(record, 11), *closed);
    std::vector<vec3d> points;
    const std::size_t last = spline.controls.size();
    for (std::size_t span = spline.degree; span < last; ++span) {
        const double from = spline.knots[span], to = spline.knots[span + 1];
        if (from == to)
            continue;
        for (int k = 0; k < pieces_of_span; ++k)
            points.push_back(spline.at(span, from + (to - from) * k / pieces_of_span));
        if (span + 1 == last || spline.knots[last] == to)
            points.push_back(spline.at(span, to));
        if (spline.knots[last] == to)
            break;
    }
    if (*closed && points.size() > 2 &&
        length(points.front() - points.back()) < 1e-9 * (1 + length(points.front())))
        points.pop_back();
    return points;
}

// ---- bands ----

namespace {

// To the left of a direction, in the plane.
vec3d left_of(const vec3d &along)
{
    const double size = std::hypot(along.x, along.y);
    return size > 0 ? vec3d{-along.y / size, along.x / size, 0} : vec3d{};
}

} // namespace

std::vector<vec3d> dxf_band(const std::vector<vec3d> &points, const std::vector<double> &widths,
                            bool closed)
{
    constexpr double sharpest = 0.25; // a corner's point reaches no further than four half widths
    const std::size_t count = points.size(), pieces = closed ? count : count - 1;
    const auto side_of = [&](std::size_t piece) {
        return left_of(points[(piece + 1) % count] - points[piece]);
    };
    // Where the pieces before and after a point meet.
    const auto joint = [&](std::size_t i) {
        const bool first = !closed && i == 0, end = !closed && i + 1 == count;
        const vec3d before = side_of(first ? 0 : (i + count - 1) % count);
        const vec3d after = end ? before : side_of(i);
        const vec3d middle = first ? after : before + after;
        const double share = dot(middle, after);
        return share > sharpest ? middle / share : after;
    };
    std::vector<vec3d> corners;
    for (std::size_t i = 0; i < pieces; ++i) {
        const std::size_t next = (i + 1) % count;
        const vec3d from = joint(i) * (widths[2 * i] / 2);
        const vec3d to = joint(next) * (widths[2 * i + 1] / 2);
        corners.insert(corners.end(),
                       {points[i] - from, points[next] - to, points[next] + to, points[i] + from});
    }
    return corners;
}
