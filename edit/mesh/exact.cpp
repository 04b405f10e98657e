#include "edit/mesh/exact.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double rounding = std::numeric_limits<double>::epsilon(); // of one operation, doubled

// A value that was computed with an error below `bound` has a sign beyond doubt; 2: it has not. What
// is so small that parts of it may have been lost below the smallest double is doubtful too.
int sure_sign(double value, double bound)
{
    if (std::fabs(value) > bound && std::fabs(value) > 1e-200)
        return value > 0 ? 1 : -1;
    return 2;
}

constexpr int doubtful = 2;

} // namespace

exact_points::exact_points(std::vector<point3_t> input)
    : input_(std::move(input)), num_input_(static_cast<int>(input_.size()))
{
    int finest = std::numeric_limits<int>::max();
    double largest = 0;
    approximate_.reserve(input_.size());
    for (const point3_t &p : input_) {
        approximate_.push_back({p.x, p.y, p.z});
        for (const float value : {p.x, p.y, p.z}) {
            if (value == 0 || !std::isfinite(value))
                continue;
            finest = std::min(finest, std::ilogb(value));
            largest = std::max(largest, std::fabs(static_cast<double>(value)));
        }
    }
    scale_ = finest == std::numeric_limits<int>::max() ? 0 : std::max(finest - 23, -149);
    cell_ = largest > 0 ? std::ldexp(largest, -30) : 1;
}

point3_t exact_points::rounded(int p) const
{
    const auto &at = approximate_[p];
    return {static_cast<float>(at[0]), static_cast<float>(at[1]), static_cast<float>(at[2])};
}

// ---- whole numbers ----

wide_int exact_points::whole(float coordinate) const
{
    if (coordinate == 0 || !std::isfinite(coordinate))
        return {};
    int exponent = 0;
    const float share = std::frexp(coordinate, &exponent); // 24 bits behind the point
    auto mantissa = static_cast<std::int64_t>(std::ldexp(share, 24));
    int shift = exponent - 24 - scale_;
    for (; shift < 0; ++shift)
        mantissa /= 2; // zeros of a number that has fewer bits
    return {mantissa, shift};
}

wide_int exact_points::coordinate(int p, int axis) const
{
    const point3_t &at = input_[p];
    return whole(axis == 0 ? at.x : axis == 1 ? at.y : at.z);
}

wide_int exact_points::part(int p, int which) const
{
    if (p < num_input_)
        return which == 3 ? wide_int(1) : coordinate(p, which);
    const stored_number &number = made_[p - num_input_][which];
    return {std::span(words_).subspan(number.first, number.size), number.negative};
}

exact_points::coefficients exact_points::coefficients_of(const exact_plane &plane) const
{
    coefficients result;
    const auto along = [&](int to, int axis) {
        return coordinate(to, axis) - coordinate(plane.a, axis);
    };
    for (int i = 0; i < 3; ++i) {
        const int j = (i + 1) % 3, k = (i + 2) % 3;
        if (plane.kind == exact_plane::THREE) {
            result.n[i] =
                along(plane.b, j) * along(plane.c, k) - along(plane.b, k) * along(plane.c, j);
        } else if (plane.kind == exact_plane::ALONG) {
            // The edge's direction times the axis.
            if (k == plane.c)
                result.n[i] = along(plane.b, j);
            else if (j == plane.c)
                result.n[i] = -along(plane.b, k);
        } else {
            int exponent = 0;
            const double share = std::frexp(plane.normal[i], &exponent);
            result.n[i] = {static_cast<std::int64_t>(std::ldexp(share, 24)), exponent + 160};
        }
    }
    for (int i = 0; i < 3; ++i)
        result.d = result.d - result.n[i] * coordinate(plane.a, i);
    return result;
}

// ---- planes ----

exact_plane exact_points::plane(int a, int b, int c) const
{
    exact_plane made = {exact_plane::THREE, a, b, c, {}, {}};
    const auto &p = approximate_[a], &q = approximate_[b], &r = approximate_[c];
    for (std::size_t i = 0; i < 3; ++i) {
        const std::size_t j = (i + 1) % 3, k = (i + 2) % 3;
        const double one = (q[j] - p[j]) * (r[k] - p[k]), two = (q[k] - p[k]) * (r[j] - p[j]);
        made.normal[i] = one - two;
        made.size[i] = std::fabs(one) + std::fabs(two);
    }
    return made;
}

exact_plane exact_points::plane_along(int a, int b, int axis) const
{
    exact_plane made = {exact_plane::ALONG, a, b, axis, {}, {}};
    const auto &p = approximate_[a], &q = approximate_[b];
    const int j = (axis + 1) % 3, k = (axis + 2) % 3;
    made.normal[j] = q[k] - p[k];
    made.normal[k] = p[j] - q[j];
    for (int i = 0; i < 3; ++i)
        made.size[i] = std::fabs(made.normal[i]);
    return made;
}

exact_plane exact_points::plane_given(int a, const point3_t &normal) const
{
    exact_plane made = {exact_plane::GIVEN, a, -1, -1, {normal.x, normal.y, normal.z}, {}};
    for (int i = 0; i < 3; ++i)
        made.size[i] = std::fabs(made.normal[i]);
    return made;
}

// ---- decisions ----

double exact_points::ahead(const exact_plane &plane, int p, double *wrong) const
{
    const auto &at = approximate_[p], &base = approximate_[plane.a];
    const double blur = is_made(p) ? 2 : 0;
    double value = 0, bound = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        const double to = at[i] - base[i];
        value += plane.normal[i] * to;
        bound += plane.size[i] * (std::fabs(to) + blur * std::fabs(at[i]));
    }
    *wrong = 8 * rounding * bound;
    return value;
}

rough_plane exact_points::rough(const exact_plane &plane)
{
    double longest = 0, size = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        longest = std::max(longest, std::fabs(plane.normal[i]));
        size = std::max(size, plane.size[i]);
    }
    if (longest < 1e-200)
        return {{0, 0, 0}, std::numeric_limits<float>::infinity()};
    // Of the narrowing, and of the double that was narrowed.
    constexpr double narrowing = 1e-6, computing = 1e-14;
    return {{static_cast<float>(plane.normal[0] / longest),
             static_cast<float>(plane.normal[1] / longest),
             static_cast<float>(plane.normal[2] / longest)},
            static_cast<float>(narrowing + computing * std::min(size / longest, 1e40))};
}

int exact_points::side(const exact_plane &plane, int p) const
{
    double wrong = 0;
    const double value = ahead(plane, p, &wrong);
    if (const int sign = sure_sign(value, wrong); sign != doubtful)
        return sign;
    if (p == plane.a || (plane.kind != exact_plane::GIVEN && p == plane.b) ||
        (plane.kind == exact_plane::THREE && p == plane.c))
        return 0;
    const coefficients exact = coefficients_of(plane);
    return (exact.n[0] * part(p, 0) + exact.n[1] * part(p, 1) + exact.n[2] * part(p, 2) +
            exact.d * part(p, 3))
        .sign();
}

double exact_points::away(int p, int axis) const
{
    return is_made(p) ? std::fabs(approximate_[p][axis]) : 0;
}

int exact_points::exact_turn(int axis, int a, int b, int c) const
{
    const int j = (axis + 1) % 3, k = (axis + 2) % 3;
    const wide_int aw = part(a, 3), bw = part(b, 3), cw = part(c, 3);
    const wide_int aj = part(a, j), bj = part(b, j), cj = part(c, j);
    const wide_int ak = part(a, k), bk = part(b, k), ck = part(c, k);
    return (aj * (bk * cw - bw * ck) - ak * (bj * cw - bw * cj) + aw * (bj * ck - bk * cj)).sign();
}

int exact_points::turn(int axis, int a, int b, int c) const
{
    if (a == b || b == c || a == c)
        return 0;
    const int j = (axis + 1) % 3, k = (axis + 2) % 3;
    const auto &p = approximate_[a], &q = approximate_[b], &r = approximate_[c];
    const double bj = q[j] - p[j], bk = q[k] - p[k], cj = r[j] - p[j], ck = r[k] - p[k];
    const double one = bj * ck, two = bk * cj;
    // How far the differences may be wrong.
    const double wrong_j = away(a, j) + away(b, j) + away(c, j);
    const double wrong_k = away(a, k) + away(b, k) + away(c, k);
    const double bound = std::fabs(one) + std::fabs(two) +
                         wrong_j * (std::fabs(bk) + std::fabs(ck) + wrong_k * rounding * 8) +
                         wrong_k * (std::fabs(bj) + std::fabs(cj));
    if (const int sign = sure_sign(one - two, 4 * rounding * bound); sign != doubtful)
        return sign;
    return exact_turn(axis, a, b, c);
}

int exact_points::order(int axis, int a, int b) const
{
    const double p = approximate_[a][axis], q = approximate_[b][axis];
    if (!is_made(a) && !is_made(b))
        return p < q ? -1 : p > q ? 1 : 0;
    if (a == b)
        return 0;
    if (const int sign = sure_sign(p - q, 4 * rounding * (std::fabs(p) + std::fabs(q)));
        sign != doubtful)
        return sign;
    return (part(a, axis) * part(b, 3) - part(b, axis) * part(a, 3)).sign();
}

bool exact_points::same(int a, int b) const
{
    return a == b || (order(0, a, b) == 0 && order(1, a, b) == 0 && order(2, a, b) == 0);
}

int exact_points::best_axis(const exact_plane &flat) const
{
    int best = 0;
    for (int i = 1; i < 3; ++i) {
        if (std::fabs(flat.normal[i]) > std::fabs(flat.normal[best]))
            best = i;
    }
    if (std::fabs(flat.normal[best]) > 8 * rounding * flat.size[best] &&
        std::fabs(flat.normal[best]) > 1e-200)
        return best;
    for (int i = 0; i < 3; ++i) {
        if (exact_turn(i, flat.a, flat.b, flat.c) != 0)
            return i;
    }
    return -1;
}

// ---- made points ----

int exact_points::cross_edge(int a, int b, const exact_plane &plane)
{
    const coefficients exact = coefficients_of(plane);
    wide_int p[3], q[3];
    wide_int from = exact.d, to = exact.d;
    for (int i = 0; i < 3; ++i) {
        p[i] = coordinate(a, i);
        q[i] = coordinate(b, i);
        from = from + exact.n[i] * p[i];
        to = to + exact.n[i] * q[i];
    }
    homogeneous point;
    for (int i = 0; i < 3; ++i)
        point.x[i] = p[i] * to - q[i] * from;
    point.w = to - from;
    return keep(point);
}

int exact_points::cross_planes(const exact_plane &p, const exact_plane &q, const exact_plane &r)
{
    const coefficients all[3] = {coefficients_of(p), coefficients_of(q), coefficients_of(r)};
    wide_int crossed[3][3]; // of the other two planes' normals
    for (int f = 0; f < 3; ++f) {
        const coefficients &g = all[(f + 1) % 3], &h = all[(f + 2) % 3];
        for (int i = 0; i < 3; ++i) {
            const int j = (i + 1) % 3, k = (i + 2) % 3;
            crossed[f][i] = g.n[j] * h.n[k] - g.n[k] * h.n[j];
        }
    }
    homogeneous point;
    for (int i = 0; i < 3; ++i) {
        point.w = point.w + all[0].n[i] * crossed[0][i];
        for (int f = 0; f < 3; ++f)
            point.x[i] = point.x[i] - all[f].d * crossed[f][i];
    }
    return point.w.sign() == 0 ? -1 : keep(point);
}

int exact_points::mix(std::span<const share_t> shares)
{
    homogeneous point;
    point.w = wide_int(1);
    std::int64_t total = 0;
    for (const share_t &share : shares) {
        // The sum of two quotients.
        const wide_int w = part(share.point, 3), weight(share.weight);
        for (int i = 0; i < 3; ++i)
            point.x[i] = point.x[i] * w + part(share.point, i) * weight * point.w;
        point.w = point.w * w;
        total += share.weight;
    }
    point.w = point.w * wide_int(total);
    return keep(point);
}

int exact_points::keep(homogeneous &point)
{
    if (point.w.sign() < 0) {
        point.w = -point.w;
        for (wide_int &x : point.x)
            x = -x;
    }
    std::array<double, 3> at = {};
    int below = 0;
    const long double w = point.w.mantissa(&below);
    for (std::size_t i = 0; i < 3; ++i) {
        int above = 0;
        const long double x = point.x[i].mantissa(&above);
        at[i] = static_cast<double>(std::ldexp(x / w, above - below + scale_));
    }
    if (const int older = find(at, &point, -1); older >= 0)
        return older;
    std::array<stored_number, 4> stored = {};
    for (std::size_t i = 0; i < 4; ++i) {
        const wide_int &number = i < 3 ? point.x[i] : point.w;
        stored[i] = {words_.size(), static_cast<int>(number.words().size()), number.sign() < 0};
        words_.insert(words_.end(), number.words().begin(), number.words().end());
    }
    made_.push_back(stored);
    approximate_.push_back(at);
    put(size() - 1);
    return size() - 1;
}

exact_points::cell_t exact_points::cell_of(const std::array<double, 3> &at) const
{
    cell_t cell = {};
    for (std::size_t i = 0; i < 3; ++i)
        cell[i] = static_cast<std::int64_t>(std::clamp(std::floor(at[i] / cell_), -9e15, 9e15));
    return cell;
}

std::uint64_t exact_points::hash_of(const cell_t &cell)
{
    std::uint64_t hash = 0;
    for (const std::int64_t part : cell) {
        hash = (hash ^ static_cast<std::uint64_t>(part)) * 0x9E3779B97F4A7C15ULL;
        hash ^= hash >> 31;
    }
    return hash;
}

void exact_points::put(int p)
{
    const std::uint64_t hash = hash_of(cell_of(approximate_[p]));
    const auto [entry, fresh] = first_in_cell_.try_emplace(hash, p);
    if (fresh)
        return;
    next_in_cell_[p] = entry->second;
    entry->second = p;
}

// The point at this place: `point`, or the input point `other`. Two doubles for one place may lie in
// neighbouring cells, when it is on their border.
int exact_points::find(const std::array<double, 3> &at, const homogeneous *point, int other) const
{
    const auto is_here = [&](int p) {
        for (std::size_t i = 0; i < 3; ++i) {
            if (std::fabs(approximate_[p][i] - at[i]) > cell_ * 1e-5)
                return false;
        }
        if (point == nullptr)
            return same(p, other);
        for (int i = 0; i < 3; ++i) {
            if ((part(p, i) * point->w - point->x[i] * part(p, 3)).sign() != 0)
                return false;
        }
        return true;
    };
    std::array<double, 3> low = at, high = at;
    for (std::size_t i = 0; i < 3; ++i) {
        low[i] -= cell_ * 1e-5;
        high[i] += cell_ * 1e-5;
    }
    const cell_t first = cell_of(low), last = cell_of(high);
    for (std::int64_t x = first[0]; x <= last[0]; ++x) {
        for (std::int64_t y = first[1]; y <= last[1]; ++y) {
            for (std::int64_t z = first[2]; z <= last[2]; ++z) {
                const auto entry = first_in_cell_.find(hash_of({x, y, z}));
                int p = entry == first_in_cell_.end() ? -1 : entry->second;
                while (p >= 0 && !is_here(p)) {
                    const auto next = next_in_cell_.find(p);
                    p = next == next_in_cell_.end() ? -1 : next->second;
                }
                if (p >= 0)
                    return p;
            }
        }
    }
    return -1;
}

void exact_points::enter(int p)
{
    if (find(approximate_[p], nullptr, p) < 0)
        put(p);
}
