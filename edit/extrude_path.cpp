#include "edit/extrude_path.h"

#include "base/messages.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_scan.h"
#include "edit/path_places.h"
#include "edit/region_sweep.h"
#include "model/identity.h"
#include "model/vec3d.h"
#include "model/vector.h"

#include <cmath>

namespace {

// Identities are never used again, so this can name nothing but that object.
int &path_identity()
{
    static int identity = 0;
    return identity;
}

// The object's one surface when it is an open line, else null.
const surface_t *line_of(const object_t *object)
{
    if (object == nullptr || object->num_surfaces != 1 || object->surfaces == nullptr)
        return nullptr;
    const auto *surface = item_of<surface_t>(object->surfaces);
    return surface->type == SURFACE_LINE ? surface : nullptr;
}

vec3d normalized(const vec3d &d)
{
    const double size = length(d);
    return size > 0 ? d / size : d;
}

} // namespace

std::vector<point3_t> path_points()
{
    std::vector<point3_t> points;
    const surface_t *line =
        path_identity() == 0 ? nullptr : line_of(object_by_identity(path_identity()));
    if (line == nullptr)
        return points;
    for (const svertex *reference : each<svertex>(line->refs)) {
        if (reference->vertex != nullptr &&
            (points.empty() || !point_equal(points.back(), reference->vertex->position)))
            points.push_back(reference->vertex->position);
    }
    return points;
}

std::vector<vec3d> path_directions(const std::vector<point3_t> &points)
{
    std::vector<vec3d> directions;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const std::size_t last = points.size() - 1;
        const vec3d in = normalized(between(points[i == 0 ? 0 : i - 1], points[i == 0 ? 1 : i]));
        const vec3d out =
            normalized(between(points[i == last ? i - 1 : i], points[i == last ? i : i + 1]));
        const vec3d both = in + out;
        // Straight back: the way it came.
        directions.push_back(dot(both, both) > 1e-12 ? normalized(both) : in);
    }
    return directions;
}

affine_t smallest_turn(const vec3d &from, const vec3d &to)
{
    const vec3d axis = cross(from, to); // as long as the sine
    const double cosine = dot(from, to);
    if (cosine < -1 + 1e-12) { // half a turn about any axis across
        const vec3d other = std::fabs(from.x) < 0.7 ? vec3d{1, 0, 0} : vec3d{0, 1, 0};
        return affine_turn(normalized(cross(from, other)), 180);
    }
    const auto turned = [&](const vec3d &p) {
        return p * cosine + cross(axis, p) + axis * (dot(axis, p) / (1 + cosine));
    };
    return {turned({1, 0, 0}), turned({0, 1, 0}), turned({0, 0, 1}), {}};
}

// ---- commands ----

void vesk_define_path_object(void)
{
    object_t *object = get_current_object();
    if (object == nullptr) {
        windows_message_dialog("Define path object:\nYou need to select a single line object for "
                               "the path");
    } else if (line_of(object) == nullptr) {
        windows_message_dialog("Define path object:\nThe path object needs to be one containing a "
                               "single surface which is a line");
    } else {
        path_identity() = object_identity(object);
        display_message("Path object defined OK");
    }
}

void vesk_extrude_along_path(void)
{
    const owned_list surfaces(find_selected_whole_surfaces());
    const std::vector<point3_t> points = path_points();
    if (points.size() < 2) {
        display_message("Define path object first");
        return;
    }
    if (!surfaces) {
        display_message("extrude along path - nothing selected");
        return;
    }
    display_message("extrude along path...");
    const std::vector<vec3d> directions = path_directions(points);
    std::vector<affine_t> turns;
    for (const vec3d &direction : directions)
        turns.push_back(smallest_turn(directions.front(), direction));
    const auto place_at = [&](int level, const point3_t &base, const point3_t &) -> point3_t {
        return to_point(to_vec3d(points[level]) + turns[level].turn(between(points.front(), base)));
    };
    const sweep_t sweep = {static_cast<int>(points.size()) - 1, true, place_at,
                           "extrude along path"};
    std::size_t made = 0;
    const sweep_outcome outcome = sweep_surfaces(surfaces.get(), sweep, made);
    if (outcome == sweep_outcome::cancelled)
        display_message("extrude along path - cancelled");
    if (outcome == sweep_outcome::no_outer_edge)
        windows_message_dialog("Extrude failed: There are no external surface edges.");
    if (outcome != sweep_outcome::done)
        return;
    finish_edit();
    display_message("extrude along path - %d surfaces", static_cast<int>(made));
}
