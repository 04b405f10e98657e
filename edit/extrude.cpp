#include "edit/extrude.h"

#include "base/messages.h"
#include "base/numbers.h"
#include "base/prefs.h"
#include "edit/delete.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_scan.h"
#include "edit/link_surfaces.h"
#include "edit/mesh/kept_colours.h"
#include "edit/mesh/position_index.h"
#include "edit/region_sweep.h"
#include "edit/symmetry_scope.h"
#include "model/angle.h"
#include "model/change_marks.h"
#include "model/matrix.h"
#include "model/normals.h"
#include "model/object_internal.h"
#include "model/object_tree.h"
#include "model/outline_normal.h"
#include "model/owners.h"
#include "model/vector.h"
#include "model/world.h"

#include <algorithm>

namespace {

// How the selected surfaces are extruded; see sweep_t.
struct extrusion_t {
    point3_t offset;
    const char *undo_label = nullptr;
    bool along_body = false;
    bool selects_ends = false;
};

// Says why it refused. Counts the new surfaces; none when nothing changed.
sweep_outcome extrude_by(const extrusion_t &how, std::size_t &made)
{
    made = 0;
    const owned_list surfaces(find_selected_whole_surfaces());
    if (!surfaces) {
        windows_message_dialog("Extrude: no surfaces selected - you shouldn't see this dialog "
                               "-report to Dovan");
        return sweep_outcome::no_outer_edge;
    }
    const int steps = std::max(prefs.extrude_num, 1);
    const auto n = static_cast<float>(steps);
    const point3_t step = {how.offset.x / n, how.offset.y / n, how.offset.z / n};
    const auto place = [&step](int, const point3_t &base, const point3_t &before) {
        return point_add(before, symmetry_offset(base, step));
    };
    const sweep_outcome outcome =
        sweep_surfaces(surfaces.get(),
                       {.levels = steps,
                        .drops_resting_corners = false,
                        .place = place,
                        .undo_label = how.undo_label,
                        .along_body = how.along_body ? &how.offset : nullptr,
                        .selects_ends = how.selects_ends},
                       made);
    if (outcome == sweep_outcome::no_outer_edge)
        windows_message_dialog("Extrude failed: There are no external surface edges.");
    return outcome;
}

bool has_whole_surfaces()
{
    if (select_mode() == SELECT_SURFACE)
        return selection().surfaces != nullptr;
    return static_cast<bool>(owned_list(find_selected_whole_surfaces()));
}

// As one step of the interface.
bool extrude_with_undo(extrusion_t how)
{
    if (!has_whole_surfaces()) {
        display_message("extrude - nothing selected");
        return false;
    }
    display_message("extruding...");
    how.undo_label = "extrude";
    std::size_t made = 0;
    symmetry_scope both_sides(symmetry_scope::of::elements);
    const sweep_outcome result = extrude_by(how, made);
    both_sides.end();
    if (result == sweep_outcome::cancelled)
        display_message("extrude - cancelled");
    if (result != sweep_outcome::done)
        return false;
    finish_edit();
    display_message("extrude - %d surfaces", static_cast<int>(made));
    return true;
}

// The outline moved by minus the offset and turned (null: not), on new vertices, which are added to
// `vertices`.
surface_t *moved_outline(const surface_t *surface, const point3_t &offset, const float *rotation,
                         owned_list &vertices)
{
    surface_t *copy = new_surface();
    surface_copy_record(copy, surface);
    for (const svertex *reference : each<svertex>(surface->refs)) {
        if (reference->vertex == nullptr)
            continue;
        point3_t p = point_sub(reference->vertex->position, offset);
        if (rotation != nullptr)
            matrix_rotate_point(rotation, &p);
        vertex *point = new_vertex_set(p.x, p.y, p.z);
        vertices.add(point);
        surface_add_vertex(copy, point, reference->u, reference->v);
    }
    return copy;
}

} // namespace

int extrude_selected_diff(const point3_t *offset)
{
    std::size_t made = 0;
    const sweep_outcome result = extrude_by({.offset = *offset}, made);
    if (result == sweep_outcome::cancelled)
        display_message("extrude - cancelled");
    return result == sweep_outcome::done ? 1 : 0;
}

int extrude_selected(const point3_t *start, const point3_t *end)
{
    display_message("extruding...");
    const point3_t offset = point_sub(*end, *start);
    return extrude_selected_diff(&offset);
}

object_t *extrude_surface(surface_t *surface, const point3_t *offset, int steps,
                          const point3_t *degrees)
{
    object_t *object = object_of_surface(nullptr, surface);
    if (object == nullptr || steps < 1)
        return object;
    float rotation[9];
    const bool turns = degrees != nullptr && !point_equal(*degrees, {0, 0, 0});
    if (turns) {
        constexpr auto per_degree = static_cast<float>(pi / 180);
        matrix_set_rotate(rotation, degrees->x * per_degree, degrees->y * per_degree,
                          degrees->z * per_degree);
    }
    const surface_t *before = surface;
    const kept_colours colours(object);
    for (int k = 1; k <= steps; ++k) {
        const float part = static_cast<float>(k) / static_cast<float>(steps);
        owned_list vertices;
        surface_t *copy = moved_outline(surface, point_scale(*offset, part),
                                        turns ? rotation : nullptr, vertices);
        object_add_vertices(object, vertices.get());
        const owned_list links(surface_create_link_surfaces(before, copy));
        object_add_surfaces(object, links.get());
        if (before != surface)
            surface_free_record(const_cast<surface_t *>(before));
        before = copy;
    }
    auto *last = const_cast<surface_t *>(before);
    if (surface->type == SURFACE_POLYGON) {
        object_add_surface(object, last);
    } else {
        surface_free_record(last);
        object_remove_surface(object, surface);
    }
    colours.give_back();
    object_mark(object, CHANGED_TOPOLOGY);
    return object;
}

surface_t *surface_clone_translate(object_t *object, const surface_t *surface,
                                   const point3_t *offset, int flip)
{
    const std::vector<vertex *> own = elements_of<vertex>(object->vertices);
    std::vector<vertex *> added;
    position_index index(own.size());
    for (std::size_t i = 0; i < own.size(); ++i)
        index.find_or_add(own[i]->position, static_cast<int>(i));
    surface_t *copy = new_surface();
    surface_copy_record(copy, surface);
    for (const svertex *reference : each<svertex>(surface->refs)) {
        if (reference->vertex == nullptr)
            continue;
        const point3_t to = point_add(reference->vertex->position, *offset);
        const auto next = static_cast<int>(own.size() + added.size());
        const int found = index.find_or_add(to, next);
        if (found == next)
            added.push_back(object_add_new_vertex(object, to.x, to.y, to.z));
        const auto i = static_cast<std::size_t>(found);
        vertex *point = i < own.size() ? own[i] : added[i - own.size()];
        surface_add_vertex(copy, point, reference->u, reference->v);
    }
    if (flip != 0)
        surface_reverse_normal(copy);
    return copy;
}

bool extrude_and_select(const point3_t &offset, extrude_sides sides)
{
    return extrude_with_undo(
        {.offset = offset, .along_body = sides == extrude_sides::automatic, .selects_ends = true});
}

bool selected_surfaces_normal(point3_t *normal)
{
    const owned_list surfaces(find_selected_whole_surfaces());
    vec3d sum;
    for (const owned_elements &owned : surfaces_by_owner(surfaces.get())) {
        const flat_ptr mesh = object_flat(owned.object);
        for (const int surface : owned.indices)
            sum += outline_normal(*mesh, mesh->surface_corners(surface));
    }
    const double size = length(sum);
    *normal = to_point(size > 0 ? sum / size : vec3d{});
    return !point_equal(*normal, {0, 0, 0});
}

// ---- commands ----

namespace {

extrude_sides sides_of(const char *automatic)
{
    return int_of(automatic) != 0 ? extrude_sides::automatic : extrude_sides::by_preferences;
}

} // namespace

void command_extrude(float dx, float dy, float dz) { extrude_with_undo({.offset = {dx, dy, dz}}); }

void command_extrude_select(int, const char *const *words)
{
    extrude_and_select(
        {finite_float_of(words[1]), finite_float_of(words[2]), finite_float_of(words[3])},
        sides_of(words[0]));
}

void command_extrude_normal(int, const char *const *words)
{
    point3_t normal = {0, 0, 0};
    if (!selected_surfaces_normal(&normal)) {
        const owned_list surfaces(find_selected_whole_surfaces());
        display_message(surfaces ? "extrude - the surfaces face no way together"
                                 : "extrude - nothing selected");
        return;
    }
    extrude_and_select(point_scale(normal, finite_float_of(words[1])), sides_of(words[0]));
}
