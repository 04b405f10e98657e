// The command "select_similar": what elements have in common with the selected ones.

#include "base/messages.h"
#include "edit/document/selection_internal.h"
#include "edit/mesh/mesh_edges.h"
#include "edit/mesh/nearest_points.h"
#include "edit/mesh/polygon_plane.h"
#include "edit/mesh/vertex_links.h"
#include "edit/select_more.h"
#include "edit/select_more_internal.h"
#include "model/angle.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <string_view>
#include <tuple>

namespace {

enum class trait { material, normal, area, length, corners, coplanar };

struct trait_word {
    const char *word;
    trait what;
    bool of_vertices, of_edges; // surfaces have all of them
};
// clang-format off
const trait_word trait_words[] = {
    {"material", trait::material, false, false},
    {"normal",   trait::normal,   true,  false},
    {"area",     trait::area,     false, false},
    {"length",   trait::length,   true,  true},
    {"corners",  trait::corners,  true,  false},
    {"coplanar", trait::coplanar, true,  false},
};
// clang-format on

// What the elements of one object are like.
class element_values {
public:
    explicit element_values(const chosen_elements &part)
        : mesh_(*part.mesh), edges_(part.topology.get()), surfaces_(select_mode() == SELECT_SURFACE)
    {
        if (!surfaces_ && edges_ == nullptr)
            links_ = std::make_unique<vertex_links>(mesh_);
    }
    // 0 0 0 without one.
    [[nodiscard]] vec3d normal(int i) const
    {
        return unit_of(!surfaces_                    ? to_vec3d(mesh_.normal(i))
                       : polygon_has_plane(mesh_, i) ? polygon_area_vector(mesh_, i)
                                                     : vec3d{});
    }
    [[nodiscard]] vec3d place(int i) const
    {
        return surfaces_ ? polygon_middle(mesh_, i) : to_vec3d(mesh_.position(i));
    }
    // So that two are alike when they differ by no more than the tolerance.
    [[nodiscard]] double number(int i, trait what) const
    {
        switch (what) {
        case trait::material:
            return mesh_.surface(i).material;
        case trait::corners:
            return static_cast<double>(surfaces_ ? corners(i) : links(i).size());
        case trait::area:
            return size_number(length(polygon_area_vector(mesh_, i)));
        default:
            return size_number(surfaces_           ? outline(i)
                               : edges_ != nullptr ? edge_length(i)
                                                   : mean_edge(i));
        }
    }

private:
    static double size_number(double size) { return std::log(std::max(size, 1e-300)); }
    [[nodiscard]] std::size_t corners(int i) const { return mesh_.surface_corners(i).size(); }
    [[nodiscard]] std::span<const vertex_link> links(int i) const { return links_->of(i); }
    [[nodiscard]] double outline(int i) const
    {
        const bool open = mesh_.surface(i).type == SURFACE_LINE;
        double sum = 0;
        for (int c = mesh_.first_corner(i); c + (open ? 1 : 0) < mesh_.end_corner(i); ++c) {
            const int next = next_corner(mesh_, i, c);
            sum += length(
                between(mesh_.position(mesh_.corner(c)), mesh_.position(mesh_.corner(next))));
        }
        return sum;
    }
    [[nodiscard]] double edge_length(int i) const
    {
        const mesh_edge &edge = edges_->edge(i);
        return length(between(mesh_.position(edge.a), mesh_.position(edge.b)));
    }
    [[nodiscard]] double mean_edge(int i) const
    {
        double sum = 0;
        for (const vertex_link &link : links(i))
            sum += length(between(mesh_.position(i), mesh_.position(link.other)));
        return links(i).empty() ? 0 : sum / static_cast<double>(links(i).size());
    }

    const flat_mesh &mesh_;
    const edge_topology *edges_; // in edge mode, else null
    bool surfaces_;
    std::unique_ptr<vertex_links> links_;
};

// ---- what the selected ones are like: asked for every other ----

class like_numbers {
public:
    like_numbers(trait what, double tolerance) : what_(what)
    {
        constexpr double rounding = 1e-6;
        tolerance_ = rounding;
        if (what == trait::corners)
            tolerance_ += tolerance;
        else if (what != trait::material)
            tolerance_ += std::log1p(tolerance);
    }
    void take(const element_values &values, int i) { numbers_.push_back(values.number(i, what_)); }
    bool ready()
    {
        std::sort(numbers_.begin(), numbers_.end());
        return true;
    }
    [[nodiscard]] bool has(const element_values &values, int i) const
    {
        const double number = values.number(i, what_);
        const auto found = std::lower_bound(numbers_.begin(), numbers_.end(), number - tolerance_);
        return found != numbers_.end() && *found <= number + tolerance_;
    }

private:
    trait what_;
    double tolerance_ = 0;
    std::vector<double> numbers_;
};

class like_normals {
public:
    explicit like_normals(double degrees)
        : least_cosine_(std::cos(std::min((degrees + 0.01) / degrees_per_radian, pi)))
    {
    }
    void take(const element_values &values, int i)
    {
        if (const vec3d normal = values.normal(i); normal != vec3d{})
            normals_.push_back(to_point(normal));
    }
    bool ready() // each once: the search is slow among equal ones
    {
        const auto key = [](const point3_t &p) { return std::tie(p.x, p.y, p.z); };
        std::sort(normals_.begin(), normals_.end(),
                  [&](const point3_t &a, const point3_t &b) { return key(a) < key(b); });
        normals_.erase(
            std::unique(normals_.begin(), normals_.end(),
                        [&](const point3_t &a, const point3_t &b) { return key(a) == key(b); }),
            normals_.end());
        tree_.emplace(normals_);
        return true;
    }
    [[nodiscard]] bool has(const element_values &values, int i) const
    {
        const vec3d normal = values.normal(i);
        const int nearest = normal == vec3d{} ? -1 : tree_->nearest(to_point(normal));
        return nearest >= 0 && dot(normal, to_vec3d(normals_[nearest])) >= least_cosine_;
    }

private:
    double least_cosine_;
    std::vector<point3_t> normals_;
    std::optional<nearest_points> tree_;
};

class like_planes {
public:
    explicit like_planes(double tolerance) : tolerance_(tolerance) {}
    void take(const element_values &values, int i)
    {
        const plane_t plane = {values.normal(i), values.place(i)};
        if (plane.normal != vec3d{} && planes_.size() <= most_planes && !on_any(plane))
            planes_.push_back(plane);
    }
    // False when there are too many different ones.
    [[nodiscard]] bool ready() const { return planes_.size() <= most_planes; }
    [[nodiscard]] bool has(const element_values &values, int i) const
    {
        const plane_t plane = {values.normal(i), values.place(i)};
        return plane.normal != vec3d{} && on_any(plane);
    }

private:
    static constexpr std::size_t most_planes = 256;
    struct plane_t {
        vec3d normal, place;
    };
    [[nodiscard]] bool on_any(const plane_t &plane) const
    {
        constexpr double parallel = 0.99999; // a quarter of a degree
        return std::any_of(planes_.begin(), planes_.end(), [&](const plane_t &other) {
            const vec3d away = plane.place - other.place;
            return std::abs(dot(plane.normal, other.normal)) >= parallel &&
                   std::abs(dot(away, other.normal)) <= tolerance_ + 1e-6 * length(away);
        });
    }

    double tolerance_;
    std::vector<plane_t> planes_;
};

// `before` are the selected ones, `all` what can be selected; both in tree order.
template <class Like>
bool find_similar(Like like, const std::vector<chosen_elements> &before,
                  std::vector<chosen_elements> &all)
{
    for (const chosen_elements &part : before) {
        const element_values values(part);
        for (std::size_t i = 0; i < part.chosen.size(); ++i) {
            if (part.chosen[i] != 0)
                like.take(values, static_cast<int>(i));
        }
    }
    if (!like.ready())
        return false;
    std::size_t at = 0;
    for (chosen_elements &part : all) {
        const element_values values(part);
        const bool has_some = at < before.size() && before[at].object == part.object;
        for (std::size_t i = 0; i < part.chosen.size(); ++i) {
            const bool was = has_some && before[at].chosen[i] != 0;
            part.chosen[i] = was || like.has(values, static_cast<int>(i)) ? 1 : 0;
        }
        at += has_some ? 1 : 0;
    }
    return true;
}

const trait_word *find_trait(const char *what)
{
    const int mode = select_mode();
    for (const trait_word &row : trait_words) {
        if (std::string_view(row.word) == what &&
            (mode == SELECT_SURFACE || (mode == SELECT_EDGE ? row.of_edges : row.of_vertices)))
            return &row;
    }
    return nullptr;
}

const char *known_traits()
{
    switch (select_mode()) {
    case SELECT_SURFACE:
        return "material, normal, area, length, corners or coplanar";
    case SELECT_EDGE:
        return "length";
    default:
        return "normal, length, corners or coplanar";
    }
}

} // namespace

// ---- commands ----

void command_select_similar(const char *what, float tolerance)
{
    if (!has_elements_or_says("select similar"))
        return;
    const trait_word *row = find_trait(what);
    if (row == nullptr) {
        display_message("select similar - %s", known_traits());
        return;
    }
    if (!(tolerance >= 0) || !std::isfinite(tolerance)) {
        display_message("select similar - the tolerance is below 0");
        return;
    }
    const std::vector<chosen_elements> before = selected_elements();
    if (before.empty()) {
        display_message("select similar - nothing selected");
        return;
    }
    std::vector<chosen_elements> all = selectable_elements();
    const double by = tolerance;
    bool found = false;
    if (row->what == trait::normal)
        found = find_similar(like_normals(by), before, all);
    else if (row->what == trait::coplanar)
        found = find_similar(like_planes(by), before, all);
    else
        found = find_similar(like_numbers(row->what, by), before, all);
    if (!found) {
        display_message("select similar - too many different planes are selected");
        return;
    }
    choose_elements("select similar", all);
}
