#include "edit/copies.h"

#include "base/messages.h"
#include "base/numbers.h"
#include "edit/axis_pivot.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo.h"
#include "edit/duplicate.h"
#include "edit/path_places.h"
#include "model/change_marks.h"
#include "model/child_changes.h"
#include "model/freed.h"
#include "model/matrix.h"
#include "model/normals.h"
#include "model/object_tree.h"

#include <algorithm>
#include <cstdint>

namespace {

constexpr std::int64_t most_vertices = 20000000; // that one command makes

bool too_many(const char *what, std::int64_t vertices, std::size_t copies)
{
    if (vertices * static_cast<std::int64_t>(copies) <= most_vertices &&
        copies <= static_cast<std::size_t>(most_vertices))
        return false;
    display_message("%s - that would be more than 20 million vertices", what);
    return true;
}

// ---- objects ----

std::int64_t vertices_below(object_t *top)
{
    std::int64_t count = 0;
    for_each_object(top, [&](const object_t *object) { count += object->num_vertices + 1; });
    return count;
}

void copy_objects(const char *what, const std::vector<affine_t> &places)
{
    const std::vector<object_t *> tops = selected_top_objects();
    std::int64_t vertices = 0;
    for (object_t *top : tops)
        vertices += vertices_below(top);
    if (too_many(what, vertices, places.size()))
        return;
    std::vector<object_t *> copies;
    child_changes changes;
    {
        progress_t progress(static_cast<double>(tops.size() * places.size()));
        for (object_t *top : tops) {
            std::vector<object_t *> brothers = {top};
            for (const affine_t &place : places) {
                copies.push_back(object_clone(top));
                object_place(copies.back(), place);
                brothers.push_back(copies.back());
                if (!progress.step(static_cast<double>(copies.size()))) {
                    freed_batch batch;
                    for (object_t *copy : copies)
                        batch.add(copy);
                    display_message("%s - cancelled", what);
                    return;
                }
            }
            changes.replace(top, std::move(brothers));
        }
    }
    commit_copies(what, copies, changes);
    finish_edit();
    display_message("%s - %d objects", what, static_cast<int>(copies.size()));
}

// ---- surfaces ----

void copy_surfaces(mesh_change &change, const std::vector<int> &surfaces, const affine_t &place)
{
    const flat_mesh &mesh = change.before();
    std::vector<int> copies(mesh.num_vertices(), -1);
    for (const int surface : surfaces) {
        change.add_surface(surface);
        int corner = mesh.first_corner(surface);
        for (const int v : mesh.surface_corners(surface)) {
            if (copies[v] < 0)
                copies[v] = change.add_vertex(place(mesh.position(v)), v);
            change.add_corner(copies[v], mesh.uv(corner++));
        }
        if (place.mirrors())
            change.reverse_corners();
    }
}

std::int64_t corners_of(const owned_elements &owned)
{
    const flat_ptr mesh = object_flat(owned.object);
    std::int64_t corners = 0;
    for (const int surface : owned.indices)
        corners += mesh->end_corner(surface) - mesh->first_corner(surface);
    return corners;
}

void copy_whole_surfaces(const char *what, const std::vector<affine_t> &places)
{
    const owned_list surfaces(find_selected_whole_surfaces());
    const std::vector<owned_elements> owners = surfaces_by_owner(surfaces.get());
    if (owners.empty()) {
        display_message("%s - nothing selected", what);
        return;
    }
    std::int64_t corners = 0;
    for (const owned_elements &owned : owners)
        corners += corners_of(owned);
    if (too_many(what, corners, places.size()))
        return;
    std::vector<mesh_change> changes;
    {
        progress_t progress(static_cast<double>(owners.size() * places.size()));
        double done = 0;
        for (const owned_elements &owned : owners) {
            mesh_change &change = changes.emplace_back(owned.object);
            for (const affine_t &place : places) {
                copy_surfaces(change, owned.indices, place);
                if (!progress.step(++done)) {
                    display_message("%s - cancelled", what);
                    return;
                }
            }
        }
    }
    open_world_undo(what);
    clear_selection();
    owned_list made;
    int num_made = 0;
    for (const mesh_result &result : commit_all(changes)) {
        for (surface_t *surface : result.surfaces)
            made.add(surface);
        num_made += static_cast<int>(result.surfaces.size());
    }
    std::vector<object_t *> touched;
    for (const owned_elements &owned : owners)
        touched.push_back(owned.object);
    calc_normals_of(touched);
    select_surfacelist(made.get());
    finish_edit();
    display_message("%s - %d surfaces", what, num_made);
}

bool has_number(const char *what, int n)
{
    if (n < 1)
        display_message("%s - the number of copies must be 1 or more", what);
    return n >= 1 && !too_many(what, 1, static_cast<std::size_t>(n));
}

// Where the path is after each of n equal parts of its length, and the direction there.
struct path_place_t {
    vec3d at, direction;
};
std::vector<path_place_t> places_along(const std::vector<point3_t> &points, int n)
{
    std::vector<double> lengths = {0};
    for (std::size_t i = 1; i < points.size(); ++i)
        lengths.push_back(lengths.back() + length(between(points[i - 1], points[i])));
    std::vector<path_place_t> places;
    std::size_t segment = 1;
    for (int i = 1; i <= n; ++i) {
        const double way = lengths.back() * i / n;
        while (segment + 1 < points.size() && lengths[segment] < way)
            ++segment;
        const vec3d along = between(points[segment - 1], points[segment]);
        const double share =
            (way - lengths[segment - 1]) / (lengths[segment] - lengths[segment - 1]);
        places.push_back(
            {to_vec3d(points[segment - 1]) + along * std::min(share, 1.0), along / length(along)});
    }
    return places;
}

} // namespace

void object_place(object_t *top, const affine_t &place)
{
    const bool moves = place.only_moves(), mirrors = place.mirrors();
    unsigned aspects = CHANGED_POSITIONS | CHANGED_RECORD;
    if (mirrors)
        aspects |= CHANGED_TOPOLOGY;
    float m[9];
    affine_matrix(place, m);
    for_each_object(top, [&](object_t *object) {
        object->centre = place(object->centre);
        for (vertex *v : each<vertex>(object->vertices))
            v->position = place(v->position);
        if (mirrors) {
            for (surface_t *surface : each<surface_t>(object->surfaces))
                surface_reverse_normal(surface);
        } else if (!moves) {
            float turned[9];
            matrix_multiply(m, object->rotation, turned);
            matrix_copy(turned, object->rotation);
        }
        object_mark(object, aspects);
    });
    if (!moves)
        object_calc_normals(top);
}

void copy_selection(const char *what, const std::vector<affine_t> &places)
{
    if (nothing_is_selected() != 0) {
        display_message("%s - nothing selected", what);
        return;
    }
    if (selection().objects != nullptr)
        copy_objects(what, places);
    else
        copy_whole_surfaces(what, places);
}

// ---- commands ----

void command_array(int, const char *const *words)
{
    const int n = int_of(words[0]);
    if (!has_number("array", n))
        return;
    vec3d step = {double_of(words[1]), double_of(words[2]), double_of(words[3])};
    if (int_of(words[4]) != 0) {
        const vec3d size = to_vec3d(selection().box_size);
        step = {step.x * size.x, step.y * size.y, step.z * size.z};
    }
    std::vector<affine_t> places;
    for (int i = 1; i <= n; ++i)
        places.push_back(affine_move(step * i));
    copy_selection("array", places);
}

void command_array_round(int count, const char *const *words)
{
    const int n = int_of(words[0]);
    const std::optional<vec3d> axis = axis_of_word("round array", words[1]);
    const double degrees = double_of(words[2]);
    const std::optional<vec3d> pivot =
        pivot_of_word("round array", count > 3 ? words[3] : "origin");
    if (!axis || !pivot || !has_number("round array", n))
        return;
    const bool is_whole = std::fmod(degrees, 360) == 0;
    std::vector<affine_t> places;
    for (int i = 1; i <= n; ++i)
        places.push_back(affine_turn(*axis, degrees * i / (is_whole ? n + 1 : n)).about(*pivot));
    copy_selection("round array", places);
}

void command_array_path(int n, int turn_along)
{
    const std::vector<point3_t> points = path_points();
    if (points.size() < 2) {
        display_message("Define path object first");
        return;
    }
    if (!has_number("array along path", n))
        return;
    const vec3d start = to_vec3d(points.front());
    const vec3d forward = path_directions(points).front();
    std::vector<affine_t> places;
    for (const path_place_t &place : places_along(points, n)) {
        affine_t made;
        if (turn_along != 0)
            made = smallest_turn(forward, place.direction).about(start);
        made.offset += place.at - start;
        places.push_back(made);
    }
    copy_selection("array along path", places);
}
