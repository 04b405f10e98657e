#ifndef VESK_EDIT_MESH_EXACT_H
#define VESK_EDIT_MESH_EXACT_H

// Exact decisions about points: those of a model, and those that its edges and planes make where
// they meet. A decision is taken in double precision with a bound on its error; where that leaves
// it open, in whole numbers: coordinates of single precision are whole numbers at the scale of the
// finest, and a made point is kept as a quotient of such numbers. So no point is ever rounded before
// the last decision about it.

#include "base/types.h"
#include "edit/mesh/wide_int.h"

#include <array>
#include <cmath>
#include <span>
#include <unordered_map>
#include <vector>

// A plane through three points (a, b, c), through two points along an axis (a, b), or through one
// point with a given normal (a). Its front is where a, b, c run counter-clockwise, or where the
// normal points.
struct exact_plane {
    enum kind_t { THREE, ALONG, GIVEN } kind;
    int a, b, c; // ALONG: c is the axis
    double normal[3];
    double size[3]; // bounds of the normal's parts, for the bound of errors
};

// A plane through three input points, in few bytes: its normal of about length one, and how far each
// part of that may be wrong; infinite where nothing is known.
struct rough_plane {
    float normal[3];
    float wrong;
};

class exact_points {
public:
    // Points are named by their places; made ones follow.
    explicit exact_points(std::vector<point3_t> input);

    [[nodiscard]] int size() const { return static_cast<int>(approximate_.size()); }
    [[nodiscard]] int num_input() const { return num_input_; }
    [[nodiscard]] bool is_made(int p) const { return p >= num_input_; }
    // Good to the last bits of a double.
    [[nodiscard]] const std::array<double, 3> &at(int p) const { return approximate_[p]; }
    [[nodiscard]] point3_t rounded(int p) const;

    // Planes through input points; the three must not lie in one line for the plane to be one.
    [[nodiscard]] exact_plane plane(int a, int b, int c) const;
    [[nodiscard]] exact_plane plane_along(int a, int b, int axis) const;
    [[nodiscard]] exact_plane plane_given(int a, const point3_t &normal) const;

    // How far in front of the plane, times the length of its normal, give or take `wrong`.
    [[nodiscard]] double ahead(const exact_plane &plane, int p, double *wrong) const;
    [[nodiscard]] static rough_plane rough(const exact_plane &plane);
    // 1 in front of the plane through `base`, -1 behind it, 0 when that takes an exact plane to
    // tell. Input points.
    [[nodiscard]] int rough_side(const rough_plane &plane, int base, int p) const
    {
        const auto &from = approximate_[base], &to = approximate_[p];
        const double x = to[0] - from[0], y = to[1] - from[1], z = to[2] - from[2];
        const double ahead = plane.normal[0] * x + plane.normal[1] * y + plane.normal[2] * z;
        const double bound = plane.wrong * (std::fabs(x) + std::fabs(y) + std::fabs(z));
        return ahead > bound ? 1 : ahead < -bound ? -1 : 0;
    }
    // 1 in front of the plane, -1 behind it, 0 on it.
    [[nodiscard]] int side(const exact_plane &plane, int p) const;
    // Whether a, b, c turn left (1), right (-1) or lie in one line (0) as seen against the axis (0
    // to 2): the other two coordinates in cyclic order.
    [[nodiscard]] int turn(int axis, int a, int b, int c) const;
    // The order of two points along an axis: -1, 0, 1.
    [[nodiscard]] int order(int axis, int a, int b) const;
    [[nodiscard]] bool same(int a, int b) const;
    // The axis in which the three points of the plane are seen best; -1 when they lie in one line.
    [[nodiscard]] int best_axis(const exact_plane &flat) const;

    // An input point is found by those that are made later at its place.
    void enter(int p);
    // Where the edge between two input points on different sides of the plane meets it; where three
    // planes meet, -1 when that is no one point. An older point at the same place where there is
    // one that was made or entered.
    int cross_edge(int a, int b, const exact_plane &plane);
    int cross_planes(const exact_plane &p, const exact_plane &q, const exact_plane &r);
    // The mean of some points by these weights, which are positive.
    struct share_t {
        int point;
        std::int64_t weight;
    };
    int mix(std::span<const share_t> shares);

private:
    struct coefficients {
        wide_int n[3], d;
    };
    struct homogeneous {
        wide_int x[3], w; // w > 0
    };
    struct stored_number {
        std::size_t first;
        int size;
        bool negative;
    };
    using cell_t = std::array<std::int64_t, 3>;

    [[nodiscard]] wide_int whole(float coordinate) const;
    [[nodiscard]] wide_int coordinate(int p, int axis) const; // of an input point
    [[nodiscard]] wide_int part(int p, int which) const;      // of any; 3 is w
    [[nodiscard]] coefficients coefficients_of(const exact_plane &plane) const;
    [[nodiscard]] int exact_turn(int axis, int a, int b, int c) const;
    [[nodiscard]] double away(int p, int axis) const;
    int keep(homogeneous &point);
    int find(const std::array<double, 3> &at, const homogeneous *point, int other) const;
    [[nodiscard]] cell_t cell_of(const std::array<double, 3> &at) const;
    static std::uint64_t hash_of(const cell_t &cell);
    void put(int p);

    std::vector<point3_t> input_;
    int num_input_;
    int scale_ = 0; // whole numbers are coordinates times 2 to the power of -scale_
    double cell_ = 1;
    std::vector<std::array<double, 3>> approximate_;
    std::vector<std::array<stored_number, 4>> made_;
    std::vector<std::uint64_t> words_;
    std::unordered_map<std::uint64_t, int> first_in_cell_;
    std::unordered_map<int, int> next_in_cell_;
};

#endif
