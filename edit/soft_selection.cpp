#include "edit/soft_selection.h"

#include "base/echo.h"
#include "base/messages.h"
#include "base/numbers.h"
#include "base/prefs.h"
#include "base/redraw.h"
#include "base/ui_port.h"
#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "edit/mesh/vertex_links.h"
#include "edit/transform.h"
#include "model/change_marks.h"
#include "model/flat_mesh.h"
#include "model/vec3d.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <queue>

namespace {

constexpr const char *curve_names[] = {"smooth", "round", "linear", "sharp", "even"};
constexpr double far = 1e30;

// Points halved by their medians in turn, so that the nearest one is found at once among any number.
class nearest_points {
public:
    explicit nearest_points(const std::vector<vertex *> &points)
    {
        for (const vertex *v : points)
            points_.push_back(to_vec3d(v->position));
        arrange(0, points_.size(), 0);
    }
    // The square of the distance to the nearest one, at most `limit`.
    [[nodiscard]] double square_to(const point3_t &at, double limit) const
    {
        look(to_vec3d(at), 0, points_.size(), 0, &limit);
        return limit;
    }

private:
    static double part(const vec3d &p, int axis) { return axis == 0 ? p.x : axis == 1 ? p.y : p.z; }
    void arrange(std::size_t begin, std::size_t end, int axis)
    {
        if (end - begin < 2)
            return;
        const std::size_t middle = begin + (end - begin) / 2;
        const auto at = [&](std::size_t i) {
            return points_.begin() + static_cast<std::ptrdiff_t>(i);
        };
        std::nth_element(at(begin), at(middle), at(end), [axis](const vec3d &a, const vec3d &b) {
            return part(a, axis) < part(b, axis);
        });
        arrange(begin, middle, (axis + 1) % 3);
        arrange(middle + 1, end, (axis + 1) % 3);
    }
    void look(const vec3d &p, std::size_t begin, std::size_t end, int axis, double *nearest) const
    {
        if (begin == end)
            return;
        const std::size_t middle = begin + (end - begin) / 2;
        const vec3d way = points_[middle] - p;
        *nearest = std::min(*nearest, dot(way, way));
        const double beyond = part(way, axis);
        const int next = (axis + 1) % 3;
        // The half in which the place lies first; the other one only where it can be nearer.
        for (const bool low : {beyond > 0, beyond <= 0}) {
            if (low != (beyond > 0) && beyond * beyond >= *nearest)
                continue;
            if (low)
                look(p, begin, middle, next, nearest);
            else
                look(p, middle + 1, end, next, nearest);
        }
    }

    std::vector<vec3d> points_;
};

// Of each vertex, as far as it is within the radius; those that are chosen are at 0.
std::vector<double> distances_in_space(const flat_mesh &mesh, const nearest_points &nearest,
                                       double radius, const std::vector<bool> &chosen)
{
    std::vector<double> distances(mesh.num_vertices(), far);
    for (int v = 0; v < mesh.num_vertices(); ++v)
        distances[v] =
            chosen[v] ? 0 : std::sqrt(nearest.square_to(mesh.position(v), radius * radius));
    return distances;
}

std::vector<double> distances_along(const flat_mesh &mesh, double radius,
                                    const std::vector<bool> &chosen)
{
    using place_t = std::pair<double, int>;
    const vertex_links links(mesh);
    std::vector<double> distances(mesh.num_vertices(), far);
    std::priority_queue<place_t, std::vector<place_t>, std::greater<>> open;
    for (int v = 0; v < mesh.num_vertices(); ++v) {
        if (chosen[v]) {
            distances[v] = 0;
            open.emplace(0, v);
        }
    }
    while (!open.empty()) {
        const auto [way, v] = open.top();
        open.pop();
        if (way > distances[v])
            continue;
        for (const vertex_link &link : links.of(v)) {
            const double there = way + length(between(mesh.position(v), mesh.position(link.other)));
            if (there < radius && there < distances[link.other]) {
                distances[link.other] = there;
                open.emplace(there, link.other);
            }
        }
    }
    return distances;
}

void update_links()
{
    for (const char *name : {"prefs_soft_selection", "prefs_soft_radius", "prefs_soft_curve",
                             "prefs_soft_along_surface"})
        ui_port().update_linked(name);
    redraw_all();
}

} // namespace

bool soft_selection_acts()
{
    return prefs.soft_selection != 0 && prefs.soft_radius > 0 && selection().objects == nullptr &&
           mode_has_elements(select_mode());
}

float soft_share(double distance, double radius, int curve)
{
    const double t = 1 - distance / radius;
    if (!(t > 0))
        return 0;
    switch (curve) {
    case 1:
        return static_cast<float>(std::sqrt(t * (2 - t)));
    case 2:
        return static_cast<float>(t);
    case 3:
        return static_cast<float>(t * t);
    case 4:
        return 1;
    default:
        return static_cast<float>(t * t * (3 - 2 * t));
    }
}

std::vector<soft_vertex> soft_neighbours(const std::vector<vertex *> &chosen,
                                         const std::vector<object_t *> &owners)
{
    const double radius = prefs.soft_radius;
    std::vector<soft_vertex> found;
    const nearest_points nearest(prefs.soft_along_surface != 0 ? std::vector<vertex *>() : chosen);
    for (object_t *owner : owners) {
        const flat_ptr mesh = object_flat(owner);
        for (int v = 0; v < mesh->num_vertices(); ++v)
            set_scratch(mesh->vertex_record(v), 0);
        for (vertex *v : chosen)
            set_scratch(v, 1);
        std::vector<bool> marks(mesh->num_vertices());
        for (int v = 0; v < mesh->num_vertices(); ++v)
            marks[v] = scratch(mesh->vertex_record(v)) == 1;
        const std::vector<double> distances =
            prefs.soft_along_surface != 0 ? distances_along(*mesh, radius, marks)
                                          : distances_in_space(*mesh, nearest, radius, marks);
        for (int v = 0; v < mesh->num_vertices(); ++v) {
            const float share = soft_share(distances[v], radius, prefs.soft_curve);
            if (!marks[v] && share > 0)
                found.push_back({mesh->vertex_record(v), share});
        }
    }
    return found;
}

const std::vector<soft_vertex> &soft_neighbours_shown(bool hold)
{
    struct shown_t {
        unsigned selection = ~0U;
        std::uint64_t model = 0;
        double radius = 0;
        int curve = 0, along = 0;
        bool operator==(const shown_t &) const = default;
    };
    static shown_t last;
    static std::vector<soft_vertex> shown;
    if (!soft_selection_acts()) {
        last = {};
        shown.clear();
        return shown;
    }
    const shown_t now = {selection_change_count(), model_change_count(), prefs.soft_radius,
                         prefs.soft_curve, prefs.soft_along_surface};
    if (now == last || (hold && now.selection == last.selection))
        return shown;
    last = now;
    std::vector<vertex *> chosen = elements_of<vertex>(selection().vertices);
    const std::vector<vertex *> of_surfaces = vertices_of_selected_surfaces();
    chosen.insert(chosen.end(), of_surfaces.begin(), of_surfaces.end());
    std::vector<object_t *> owners = owners_of_vertices(chosen);
    std::erase(owners, nullptr);
    shown = soft_neighbours(chosen, unique_objects(owners));
    return shown;
}

std::vector<std::string> soft_selection_words()
{
    if (!soft_selection_acts())
        return {};
    return {"soft_selection", "1", echo_number(prefs.soft_radius),
            curve_names[std::clamp(prefs.soft_curve, 0, 4)],
            prefs.soft_along_surface != 0 ? "surface" : "space"};
}

void soft_radius_step(int direction)
{
    prefs.soft_radius = std::clamp(prefs.soft_radius * (direction > 0 ? 1.1 : 1 / 1.1), 1e-6, 1e9);
    update_links();
    display_message("soft selection - radius %g", prefs.soft_radius);
}

// ---- commands ----

void command_soft_selection(int count, const char *const *words)
{
    const auto wanted = [&](const char *name) { return std::strcmp(words[2], name) == 0; };
    const auto *curve = count > 2 ? std::find_if(curve_names, std::end(curve_names), wanted)
                                  : std::begin(curve_names);
    const double radius = count > 1 ? double_of(words[1]) : prefs.soft_radius;
    const bool along = count > 3 && std::strcmp(words[3], "surface") == 0;
    if (curve == std::end(curve_names) || !(radius > 0) || !std::isfinite(radius) ||
        (count > 3 && !along && std::strcmp(words[3], "space") != 0)) {
        display_message("soft selection - a radius above 0, a curve (smooth, round, linear, "
                        "sharp, even), and space or surface");
        return;
    }
    prefs.soft_selection = int_of(words[0]) != 0 ? 1 : 0;
    prefs.soft_radius = radius;
    if (count > 2)
        prefs.soft_curve = static_cast<int>(curve - curve_names);
    if (count > 3)
        prefs.soft_along_surface = along ? 1 : 0;
    update_links();
    display_message(prefs.soft_selection != 0 ? "soft selection - radius %g"
                                              : "soft selection - off",
                    prefs.soft_radius);
}
