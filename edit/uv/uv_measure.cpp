#include "edit/uv/uv_measure.h"

#include "base/command_result.h"
#include "base/numbers.h"
#include "edit/uv/uv_editor.h"
#include "edit/uv/uv_measured.h"
#include "model/vector.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <unordered_map>

namespace {

// ---- stretch ----

struct triangle_sums {
    double model = 0, picture = 0; // areas, the picture's with its sign
    double angle = 0;              // weighted by the model's area
};

double model_area(const point3_t &ab, const point3_t &ac)
{
    return point_length(point_cross(ab, ac)) / 2.0;
}

// Longest by shortest image of a direction, of the map from the triangle's plane to the picture.
double angle_of(const point3_t &ab, const point3_t &ac, double u1, double v1, double u2, double v2)
{
    // The triangle in its own plane: (x1, 0), (x2, y2).
    const double x1 = point_length(ab);
    if (!(x1 > 0))
        return 1;
    const double x2 = point_dot(ab, ac) / x1;
    const double y2 = 2 * model_area(ab, ac) / x1;
    if (!(y2 > 0))
        return 1;
    const double a = u1 / x1, c = v1 / x1;
    const double b = (u2 - a * x2) / y2, d = (v2 - c * x2) / y2;
    const double sum = std::hypot(a + d, c - b), difference = std::hypot(a - d, c + b);
    const double longest = (sum + difference) / 2, shortest = std::fabs(sum - difference) / 2;
    constexpr double most = 1000;
    return shortest * most > longest ? longest / shortest : most;
}

triangle_sums sums_of(const uv_mesh &mesh, int surface, double aspect)
{
    triangle_sums sums;
    const int first = mesh.corners_begin(surface);
    const flat_uv &o = mesh.at[first];
    for (int c = first + 1; c + 1 < mesh.corners_end(surface); ++c) {
        const flat_uv &p = mesh.at[c], &q = mesh.at[c + 1];
        const double u1 = double{p.u} - o.u, v1 = (double{p.v} - o.v) / aspect;
        const double u2 = double{q.u} - o.u, v2 = (double{q.v} - o.v) / aspect;
        const point3_t ab = point_sub(mesh.position(c), mesh.position(first));
        const point3_t ac = point_sub(mesh.position(c + 1), mesh.position(first));
        const double area = model_area(ab, ac);
        sums.model += area;
        sums.picture += (u1 * v2 - u2 * v1) / 2;
        sums.angle += area * angle_of(ab, ac, u1, v1, u2, v2);
    }
    return sums;
}

// ---- overlaps ----

double cross(const flat_uv &a, const flat_uv &b, const flat_uv &c)
{
    return (double{b.u} - a.u) * (double{c.v} - a.v) - (double{c.u} - a.u) * (double{b.v} - a.v);
}

double size_of(const uv_triangle &t)
{
    uv_box box;
    for (const flat_uv &p : t.p)
        box.add(p);
    return std::max(box.width(), box.height());
}

// Whether a side of `a` parts the two.
bool parts(const uv_triangle &a, const uv_triangle &b, double slack)
{
    for (int i = 0; i < 3; ++i) {
        const flat_uv &from = a.p[i], &to = a.p[(i + 1) % 3];
        const double length = std::hypot(double{to.u} - from.u, double{to.v} - from.v);
        const double limit = slack * length;
        if (cross(from, to, b.p[0]) <= limit && cross(from, to, b.p[1]) <= limit &&
            cross(from, to, b.p[2]) <= limit)
            return true;
    }
    return false;
}

// Triangles of surfaces, each at the level whose cells are as large as it; a triangle is looked for
// among those that are no smaller.
class overlap_finder {
public:
    explicit overlap_finder(const uv_mesh &mesh) : mesh_(mesh), found_(mesh.num_surfaces(), 0) {}

    std::vector<char> run()
    {
        find_twins();
        for (int i = 0; i < mesh_.num_surfaces(); ++i) {
            if (twin_[i] == i)
                cut(i);
        }
        std::stable_sort(pieces_.begin(), pieces_.end(),
                         [](const piece &a, const piece &b) { return a.size > b.size; });
        for (std::size_t i = 0; i < pieces_.size(); ++i)
            look_up_and_add(static_cast<int>(i));
        for (int i = 0; i < mesh_.num_surfaces(); ++i) {
            if (found_[twin_[i]] != 0)
                found_[i] = 1;
        }
        return found_;
    }

private:
    struct piece {
        uv_triangle triangle;
        int surface;
        double size;
        uv_box box;
    };
    struct cell {
        std::vector<int> alone, lying; // pieces of surfaces not found yet, and found
    };
    using cell_key = std::array<std::int64_t, 2>;
    struct hash_of_key {
        std::size_t operator()(const cell_key &k) const
        {
            return static_cast<std::size_t>(k[0] * 73856093) ^
                   static_cast<std::size_t>(k[1] * 19349663);
        }
    };
    using grid = std::unordered_map<cell_key, cell, hash_of_key>;

    // Surfaces with the very same outline are looked for once: islands that were laid on each other.
    void find_twins()
    {
        std::map<std::vector<std::pair<float, float>>, int> outlines;
        twin_.resize(mesh_.surfaces.size());
        for (int i = 0; i < mesh_.num_surfaces(); ++i) {
            std::vector<std::pair<float, float>> outline;
            double area = 0;
            for (int c = mesh_.corners_begin(i); c < mesh_.corners_end(i); ++c) {
                const flat_uv &p = mesh_.at[c];
                outline.emplace_back(std::isnan(p.u) ? 0 : p.u, std::isnan(p.v) ? 0 : p.v);
                area +=
                    cross(mesh_.at[mesh_.corners_begin(i)], p, mesh_.at[mesh_.next_corner(i, c)]);
            }
            std::sort(outline.begin(), outline.end());
            const auto [known, is_new] = outlines.emplace(std::move(outline), i);
            twin_[i] = known->second;
            if (!is_new && std::fabs(area) > 0)
                found_[i] = found_[known->second] = 1;
        }
    }

    void cut(int surface)
    {
        const int first = mesh_.corners_begin(surface);
        for (int c = first + 1; c + 1 < mesh_.corners_end(surface); ++c) {
            piece p = {{{mesh_.at[first], mesh_.at[c], mesh_.at[c + 1]}}, surface, 0, {}};
            const double area = cross(p.triangle.p[0], p.triangle.p[1], p.triangle.p[2]);
            if (!(std::fabs(area) > 0) || !std::isfinite(area))
                continue;
            if (area < 0)
                std::swap(p.triangle.p[1], p.triangle.p[2]);
            p.size = size_of(p.triangle);
            for (const flat_uv &corner : p.triangle.p)
                p.box.add(corner);
            pieces_.push_back(p);
        }
    }

    static int level_of(double size) { return std::ilogb(size) + 1; }

    template <class Visit>
    static void for_cells(const uv_box &box, int level, Visit &&visit)
    {
        const auto cell = [&](float value) {
            return static_cast<std::int64_t>(std::floor(std::ldexp(double{value}, -level)));
        };
        for (std::int64_t x = cell(box.u0); x <= cell(box.u1); ++x) {
            for (std::int64_t y = cell(box.v0); y <= cell(box.v1); ++y)
                visit(cell_key{x, y});
        }
    }

    void look_up_and_add(int number)
    {
        const piece &p = pieces_[number];
        for (auto &[level, at_level] : levels_) {
            auto &cells = at_level; // a plain name: closures take it everywhere
            for_cells(p.box, level, [&](const cell_key &key) {
                const auto at = cells.find(key);
                if (at != cells.end())
                    look_in(at->second, p);
            });
        }
        const int level = level_of(p.size);
        for_cells(p.box, level, [&](const cell_key &key) {
            cell &at = levels_[level][key];
            (found_[p.surface] != 0 ? at.lying : at.alone).push_back(number);
        });
    }

    void look_in(cell &at, const piece &p)
    {
        for (std::size_t i = 0; i < at.alone.size();) {
            const piece &other = pieces_[at.alone[i]];
            if (found_[other.surface] == 0 && meet(p, other))
                found_[p.surface] = found_[other.surface] = 1;
            if (found_[other.surface] == 0) {
                ++i;
                continue;
            }
            at.lying.push_back(at.alone[i]);
            at.alone[i] = at.alone.back();
            at.alone.pop_back();
        }
        for (std::size_t i = at.lying.size(); i-- > 0 && found_[p.surface] == 0;) {
            if (meet(p, pieces_[at.lying[i]]))
                found_[p.surface] = 1;
        }
    }

    static bool meet(const piece &a, const piece &b)
    {
        return a.surface != b.surface && a.box.u0 < b.box.u1 && b.box.u0 < a.box.u1 &&
               a.box.v0 < b.box.v1 && b.box.v0 < a.box.v1 &&
               uv_triangles_overlap(a.triangle, b.triangle);
    }

    const uv_mesh &mesh_;
    std::vector<char> found_;
    std::vector<int> twin_; // of each surface the first one with its outline
    std::vector<piece> pieces_;
    std::map<int, grid, std::greater<>> levels_;
};

std::string text_of(double number)
{
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.4g", number);
    return buffer;
}

void tell(const char *key, const std::string &value)
{
    command_result_append_element(std::string_view(key));
    command_result_append_element(std::string_view(value));
}

} // namespace

std::vector<uv_stretch> uv_measure_stretch(const uv_mesh &mesh, double aspect)
{
    std::vector<triangle_sums> sums;
    sums.reserve(mesh.num_surfaces());
    double model = 0, picture = 0, turned = 0;
    for (int i = 0; i < mesh.num_surfaces(); ++i) {
        sums.push_back(sums_of(mesh, i, aspect));
        model += sums.back().model;
        picture += std::fabs(sums.back().picture);
        turned += sums.back().picture;
    }
    std::vector<uv_stretch> stretch(mesh.num_surfaces());
    for (std::size_t i = 0; i < stretch.size(); ++i) {
        const triangle_sums &s = sums[i];
        if (!(s.model > 0) || !(picture > 0))
            continue;
        stretch[i].area = static_cast<float>((std::fabs(s.picture) / picture) / (s.model / model));
        stretch[i].angle = static_cast<float>(s.angle / s.model);
        stretch[i].flipped = s.picture * turned < 0;
    }
    return stretch;
}

bool uv_triangles_overlap(const uv_triangle &a, const uv_triangle &b)
{
    constexpr double share = 1e-5; // of the smaller one's size: neighbours that were rounded
    const double slack = share * std::min(size_of(a), size_of(b));
    return !parts(a, b, slack) && !parts(b, a, slack);
}

std::vector<char> uv_find_overlaps(const uv_mesh &mesh) { return overlap_finder(mesh).run(); }

// ---- commands ----

void command_uv_stretch()
{
    const uv_state &state = uv_editor();
    const std::vector<uv_stretch> &stretch = *uv_stretch_now(uv_patience::none);
    const std::vector<int> surfaces = uv_chosen_surfaces(state);
    double least = 1e30, most = 0, worst = 1, sum = 0;
    int flipped = 0;
    for (const int i : surfaces) {
        const uv_stretch &s = stretch[i];
        least = std::min(least, double{s.area});
        most = std::max(most, double{s.area});
        worst = std::max(worst, double{s.angle});
        sum += s.angle;
        flipped += s.flipped ? 1 : 0;
    }
    if (surfaces.empty())
        return;
    tell("surfaces", std::to_string(surfaces.size()));
    tell("area_least", text_of(least));
    tell("area_most", text_of(most));
    tell("angle_mean", text_of(sum / static_cast<double>(surfaces.size())));
    tell("angle_most", text_of(worst));
    tell("flipped", std::to_string(flipped));
}

void command_uv_overlaps()
{
    const std::vector<char> &found = *uv_overlaps_now(uv_patience::none);
    command_result_append_int(static_cast<int>(std::count(found.begin(), found.end(), 1)));
}
