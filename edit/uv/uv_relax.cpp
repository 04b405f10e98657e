#include "edit/uv/uv_relax.h"

#include "base/messages.h"
#include "base/redraw.h"
#include "base/worker.h"
#include "edit/uv/multigrid.h"
#include "edit/uv/uv_editor.h"
#include "model/vector.h"

#include <Eigen/SparseCholesky>
#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <unordered_map>
#include <utility>

namespace {

using vector2 = Eigen::Vector2d;

// More unknowns are not factorised: that grows with their power of 1.5.
int most_factorised = 30000;
// How exact a step is then, in a picture of size one.
constexpr double exactness = 1e-6;

// A triangle of the island: its corners as unknowns, its shape laid flat, and the weight of each
// side (half the cotangent of the angle opposite).
struct cell {
    std::array<int, 3> points;
    std::array<vector2, 3> flat;
    std::array<double, 3> weights; // of the side from i to i + 1
};

class relaxation {
public:
    relaxation(const uv_mesh &mesh, const uv_islands &islands, const std::vector<int> &surfaces,
               double aspect, const std::vector<flat_uv> &at)
        : mesh_(mesh), aspect_(aspect)
    {
        std::size_t triangles = 0;
        for (const int i : surfaces)
            triangles += mesh.corners_end(i) - mesh.corners_begin(i) - 2;
        cells_.reserve(triangles);
        for (const int i : surfaces)
            add_surface(i, islands, at);
        scale_shapes();
    }

    [[nodiscard]] bool has_area() const { return scale_ > 0 && !cells_.empty(); }

    // Points that stay; without any the first one does, or nothing would hold the island.
    void hold(const std::vector<char> &free)
    {
        held_.assign(points_.size(), false);
        for (std::size_t p = 0; p < corners_.size(); ++p) {
            for (const int c : corners_[p])
                held_[p] = held_[p] || free[c] == 0;
        }
        holds_any_ = std::find(held_.begin(), held_.end(), true) != held_.end();
        if (!holds_any_ && !held_.empty())
            held_[0] = true;
    }

    bool run(int steps)
    {
        number_unknowns();
        if (num_unknowns_ == 0 || !factorise())
            return false;
        const std::vector<vector2> before = points_;
        for (int i = 0; i < steps; ++i)
            place_points(turns());
        if (!holds_any_)
            bring_back(before);
        return true;
    }

    void write(std::vector<flat_uv> &at) const
    {
        for (std::size_t p = 0; p < points_.size(); ++p) {
            for (const int c : corners_[p]) {
                if (!held_[p] || !holds_any_)
                    at[c] = {static_cast<float>(points_[p].x()),
                             static_cast<float>(points_[p].y() * aspect_)};
            }
        }
    }

private:
    static vector2 turned(const vector2 &turn, const vector2 &p)
    {
        return {turn.x() * p.x() - turn.y() * p.y(), turn.y() * p.x() + turn.x() * p.y()};
    }

    int unknown_of(int corner, const uv_islands &islands, const std::vector<flat_uv> &at)
    {
        const int point = islands.point[corner];
        const auto [known, is_new] = numbers_.emplace(point, static_cast<int>(points_.size()));
        if (is_new) {
            points_.emplace_back(at[corner].u, at[corner].v / aspect_);
            corners_.emplace_back();
        }
        corners_[known->second].push_back(corner);
        return known->second;
    }

    void add_surface(int surface, const uv_islands &islands, const std::vector<flat_uv> &at)
    {
        std::vector<int> unknowns;
        const int first = mesh_.corners_begin(surface), end = mesh_.corners_end(surface);
        for (int c = first; c < end; ++c)
            unknowns.push_back(unknown_of(c, islands, at));
        for (int c = first + 1; c + 1 < end; ++c)
            add_triangle({first, c, c + 1},
                         {unknowns[0], unknowns[c - first], unknowns[c + 1 - first]});
    }

    void add_triangle(const std::array<int, 3> &corners, const std::array<int, 3> &points)
    {
        const point3_t ab = point_sub(mesh_.position(corners[1]), mesh_.position(corners[0]));
        const point3_t ac = point_sub(mesh_.position(corners[2]), mesh_.position(corners[0]));
        const double length = point_length(ab);
        const double area2 = point_length(point_cross(ab, ac));
        const double longest = std::max(length, double{point_length(ac)});
        if (!(area2 > 1e-9 * longest * longest))
            return; // no shape
        cell tri;
        tri.points = points;
        tri.flat = {vector2(0, 0), vector2(length, 0),
                    vector2(point_dot(ab, ac) / length, area2 / length)};
        model_area_ += area2 / 2;
        const vector2 p = points_[points[0]], q = points_[points[1]], r = points_[points[2]];
        picture_area_ += ((q - p).x() * (r - p).y() - (r - p).x() * (q - p).y()) / 2;
        for (std::size_t i = 0; i < 3; ++i) {
            const vector2 opposite = tri.flat[(i + 2) % 3];
            const vector2 s = tri.flat[i] - opposite, t = tri.flat[(i + 1) % 3] - opposite;
            // Obtuse angles would take weight away: kept above zero, the system stays definite.
            tri.weights[i] = std::max(0.02, s.dot(t) / area2 / 2);
        }
        cells_.push_back(tri);
    }

    // The model's shapes as large as the picture's, mirrored when the picture is.
    void scale_shapes()
    {
        if (!(model_area_ > 0) || !(std::fabs(picture_area_) > 1e-12))
            return;
        scale_ = std::sqrt(std::fabs(picture_area_) / model_area_);
        for (cell &tri : cells_) {
            for (vector2 &p : tri.flat) {
                p *= scale_;
                if (picture_area_ < 0)
                    p.y() = -p.y();
            }
        }
    }

    void number_unknowns()
    {
        unknown_.assign(points_.size(), -1);
        for (std::size_t p = 0; p < points_.size(); ++p) {
            if (!held_[p])
                unknown_[p] = num_unknowns_++;
        }
    }

    bool factorise()
    {
        std::vector<Eigen::Triplet<double>> entries;
        entries.reserve(cells_.size() * 6 + num_unknowns_);
        std::vector<double> own(num_unknowns_, 0);
        for (const cell &tri : cells_) {
            for (std::size_t i = 0; i < 3; ++i) {
                const int a = unknown_[tri.points[i]];
                const int b = unknown_[tri.points[(i + 1) % 3]];
                const double w = tri.weights[i];
                if (a >= 0)
                    own[a] += w;
                if (b >= 0)
                    own[b] += w;
                if (a >= 0 && b >= 0) {
                    entries.emplace_back(a, b, -w);
                    entries.emplace_back(b, a, -w);
                }
            }
        }
        for (int i = 0; i < num_unknowns_; ++i)
            entries.emplace_back(i, i,
                                 own[i] != 0 ? own[i] : 1); // none: of surfaces without a shape
        Eigen::SparseMatrix<double> matrix(num_unknowns_, num_unknowns_);
        matrix.setFromTriplets(entries.begin(), entries.end());
        entries = {};
        if (num_unknowns_ > most_factorised) {
            large_ = std::make_unique<multigrid>();
            return large_->compute(std::move(matrix));
        }
        solver_.compute(matrix);
        return solver_.info() == Eigen::Success;
    }

    // The turn of each triangle that brings its shape nearest to its picture, as (cos, sin).
    [[nodiscard]] std::vector<vector2> turns() const
    {
        std::vector<vector2> turn;
        turn.reserve(cells_.size());
        for (const cell &tri : cells_) {
            vector2 sum(0, 0);
            for (std::size_t i = 0; i < 3; ++i) {
                const std::size_t j = (i + 1) % 3;
                const vector2 from = tri.flat[i] - tri.flat[j];
                const vector2 to = points_[tri.points[i]] - points_[tri.points[j]];
                sum +=
                    tri.weights[i] * vector2(from.dot(to), from.x() * to.y() - from.y() * to.x());
            }
            const double length = sum.norm();
            turn.push_back(length > 0 ? vector2(sum / length) : vector2(1, 0));
        }
        return turn;
    }

    void place_points(const std::vector<vector2> &turn)
    {
        Eigen::MatrixX2d right = Eigen::MatrixX2d::Zero(num_unknowns_, 2);
        std::vector<bool> has_cell(num_unknowns_, false);
        for (std::size_t t = 0; t < cells_.size(); ++t) {
            const cell &tri = cells_[t];
            for (std::size_t i = 0; i < 3; ++i) {
                const std::size_t j = (i + 1) % 3;
                const vector2 side = tri.weights[i] * turned(turn[t], tri.flat[i] - tri.flat[j]);
                add_side(tri.points[i], tri.points[j], tri.weights[i], side, right, has_cell);
                add_side(tri.points[j], tri.points[i], tri.weights[i], -side, right, has_cell);
            }
        }
        for (std::size_t p = 0; p < points_.size(); ++p) {
            if (unknown_[p] >= 0 && !has_cell[unknown_[p]])
                right.row(unknown_[p]) = points_[p].transpose();
        }
        const Eigen::MatrixX2d solved =
            large_ ? solve_large(right) : Eigen::MatrixX2d(solver_.solve(right));
        for (std::size_t p = 0; p < points_.size(); ++p) {
            if (unknown_[p] >= 0)
                points_[p] = solved.row(unknown_[p]).transpose();
        }
    }

    // From where the points are, both coordinates side by side.
    Eigen::MatrixX2d solve_large(const Eigen::MatrixX2d &right)
    {
        Eigen::MatrixX2d solved(num_unknowns_, 2);
        for (std::size_t p = 0; p < points_.size(); ++p) {
            if (unknown_[p] >= 0)
                solved.row(unknown_[p]) = points_[p].transpose();
        }
        const double extent =
            (solved.colwise().maxCoeff() - solved.colwise().minCoeff()).maxCoeff();
        in_parallel(2, [&](int i) {
            const Eigen::VectorXd wanted = right.col(i);
            Eigen::VectorXd x = solved.col(i);
            large_->solve(wanted, exactness * std::max(extent, 1.0), x);
            solved.col(i) = x;
        });
        return solved;
    }

    void add_side(int at, int other, double weight, const vector2 &side, Eigen::MatrixX2d &right,
                  std::vector<bool> &has_cell) const
    {
        const int row = unknown_[at];
        if (row < 0)
            return;
        has_cell[row] = true;
        right.row(row) += side.transpose();
        if (unknown_[other] < 0)
            right.row(row) += weight * points_[other].transpose();
    }

    // Turned and moved back to where the island was: the least squares of all points.
    void bring_back(const std::vector<vector2> &before)
    {
        vector2 old_middle(0, 0), new_middle(0, 0), sum(0, 0);
        const auto count = static_cast<double>(points_.size());
        for (std::size_t p = 0; p < points_.size(); ++p) {
            old_middle += before[p] / count;
            new_middle += points_[p] / count;
        }
        for (std::size_t p = 0; p < points_.size(); ++p) {
            const vector2 from = points_[p] - new_middle, to = before[p] - old_middle;
            sum += vector2(from.dot(to), from.x() * to.y() - from.y() * to.x());
        }
        const vector2 turn = sum.norm() > 0 ? vector2(sum / sum.norm()) : vector2(1, 0);
        for (vector2 &p : points_)
            p = old_middle + turned(turn, p - new_middle);
    }

    const uv_mesh &mesh_;
    double aspect_;
    std::vector<cell> cells_;
    std::vector<vector2> points_;           // the island's, v in picture widths
    std::vector<std::vector<int>> corners_; // of each point
    std::unordered_map<int, int> numbers_;
    std::vector<bool> held_;
    bool holds_any_ = false;
    std::vector<int> unknown_;
    int num_unknowns_ = 0;
    double model_area_ = 0, picture_area_ = 0, scale_ = 0;
    Eigen::SimplicialLDLT<Eigen::SparseMatrix<double>> solver_; // or:
    std::unique_ptr<multigrid> large_;
};

} // namespace

bool uv_relax(const uv_mesh &mesh, const uv_islands &islands, const std::vector<char> &free,
              const std::vector<int> &surfaces, int steps, double aspect, std::vector<flat_uv> &at)
{
    relaxation work(mesh, islands, surfaces, aspect, at);
    if (!work.has_area())
        return false;
    work.hold(free);
    if (!work.run(steps))
        return false;
    work.write(at);
    return true;
}

int uv_relax_set_most_factorised(int most) { return std::exchange(most_factorised, most); }

// ---- commands ----

void command_uv_relax(int steps)
{
    constexpr const char *label = "relax texture coordinates";
    constexpr int most_steps = 1000;
    const uv_state &state = uv_editor();
    const std::vector<int> islands = uv_chosen_islands(state);
    if (islands.empty()) {
        display_message("%s - nothing selected", label);
        return;
    }
    const std::vector<char> free = state.mode == uv_mode::CORNER
                                       ? uv_moving_corners(state)
                                       : std::vector<char>(state.mesh.at.size(), 1);
    std::vector<std::vector<int>> surfaces(state.islands.num_islands);
    for (int i = 0; i < state.mesh.num_surfaces(); ++i)
        surfaces[state.islands.island[i]].push_back(i);
    std::vector<flat_uv> at = state.mesh.at;
    int relaxed = 0;
    const double aspect = uv_picture_size().aspect();
    for (const int island : islands)
        relaxed += uv_relax(state.mesh, state.islands, free, surfaces[island],
                            std::clamp(steps, 1, most_steps), aspect, at)
                       ? 1
                       : 0;
    if (relaxed == 0) {
        display_message("%s - no island with an area: project first", label);
        return;
    }
    uv_commit(label, std::move(at));
    display_message("%s - %d islands", label, relaxed);
    display_status();
}
