#include "edit/holes.h"

#include "base/messages.h"
#include "base/prefs.h"
#include "base/progress.h"
#include "base/redraw.h"
#include "edit/document/edit_support.h"
#include "edit/mesh/mesh_change.h"
#include "model/matrix.h"
#include "model/normals.h"
#include "model/owners.h"
#include "model/vector.h"

#include <algorithm>

namespace {

struct outline_t {
    std::span<const std::int32_t> corners;
    const flat_uv *uv; // one a corner
};

outline_t outline_of(const flat_mesh &mesh, int surface)
{
    const auto first = mesh.first_corner(surface);
    return {mesh.surface_corners(surface), mesh.texture_coords->data() + first};
}

flat_uv shrunk(const flat_uv &uv, float factor)
{
    return {(uv.u - 0.5f) * factor + 0.5f, (uv.v - 0.5f) * factor + 0.5f};
}

// Room for rings round all these surfaces.
void reserve_rings(mesh_change &change, std::size_t surfaces)
{
    const flat_mesh &mesh = change.before();
    const std::size_t all = std::max<std::size_t>(mesh.surfaces->size(), 1);
    const std::size_t corners = mesh.corners->size() * std::min(surfaces, all) / all;
    change.reserve(corners, corners + surfaces, 5 * corners);
}

// The copies of the outline's vertices, scaled about their mean; they follow each other from the
// place that is returned.
int add_scaled(mesh_change &change, const outline_t &outline, float factor)
{
    point3_t mean = {0, 0, 0};
    for (const int v : outline.corners)
        mean = point_add(mean, change.position(v));
    const auto n = static_cast<float>(outline.corners.size());
    mean = {mean.x / n, mean.y / n, mean.z / n};
    const int first = change.num_vertices();
    for (const int v : outline.corners) {
        const point3_t away = point_sub(change.position(v), mean);
        change.add_vertex(point_add(mean, point_scale(away, factor)), v);
    }
    return first;
}

// Whether the polygon was holed; the inner polygon is then the last surface that was added.
bool hole(int surface, float factor, bool with_inner, mesh_change &change)
{
    const flat_mesh &mesh = change.before();
    const outline_t outline = outline_of(mesh, surface);
    const std::size_t n = outline.corners.size();
    if (mesh.surface(surface).type != SURFACE_POLYGON || n < 3)
        return false;

    const int copies = add_scaled(change, outline, factor);
    const auto copy_of = [copies](std::size_t corner) { return copies + static_cast<int>(corner); };
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t next = (i + 1) % n;
        change.add_surface(surface);
        change.add_corner(outline.corners[i], outline.uv[i]);
        change.add_corner(outline.corners[next], outline.uv[next]);
        change.add_corner(copy_of(next), shrunk(outline.uv[next], factor));
        change.add_corner(copy_of(i), shrunk(outline.uv[i], factor));
        if (factor > 1)
            change.reverse_corners();
    }
    if (with_inner) {
        change.add_surface(surface);
        for (std::size_t i = 1; i <= n; ++i) // begins at the copy of the second corner
            change.add_corner(copy_of(i % n), shrunk(outline.uv[i % n], factor));
    }
    change.remove_surface(surface);
    return true;
}

// The cap is the first surface that is added.
void bevel(int surface, mesh_change &change)
{
    const flat_mesh &mesh = change.before();
    const outline_t outline = outline_of(mesh, surface);
    const std::size_t n = outline.corners.size();
    const auto size = static_cast<float>(prefs.bevel_size);
    const point3_t lift = point_scale(mesh.face_normal(surface), size);

    const int cap = change.num_vertices();
    change.add_surface(surface);
    for (std::size_t i = 0; i < n; ++i) {
        const point3_t p = change.position(outline.corners[i]);
        point3_t to_next = point_sub(change.position(outline.corners[(i + 1) % n]), p);
        point3_t to_previous = point_sub(change.position(outline.corners[(i + n - 1) % n]), p);
        normalize_point(&to_next);
        normalize_point(&to_previous);
        point3_t bisector = point_add(to_next, to_previous);
        normalize_point(&bisector);
        const int raised =
            change.add_vertex(point_add(point_add(p, point_scale(bisector, size)), lift));
        change.add_corner(raised, {0, 0});
    }
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t next = (i + 1) % n;
        change.add_surface(surface);
        change.add_corner(outline.corners[i], outline.uv[i]);
        change.add_corner(outline.corners[next], outline.uv[next]);
        change.add_corner(cap + static_cast<int>(next), {0, 0});
        change.add_corner(cap + static_cast<int>(i), {0, 0});
    }
    change.remove_surface(surface);
}

// The computing half of a command; false when the user cancelled.
template <class Ring>
bool compute_rings(const std::vector<owned_elements> &targets, std::vector<mesh_change> &changes,
                   const Ring &ring)
{
    progress_t progress(static_cast<double>(count_elements(targets)));
    double done = 0;
    for (const owned_elements &owned : targets) {
        mesh_change &change = changes.emplace_back(owned.object);
        reserve_rings(change, owned.indices.size());
        for (const int surface : owned.indices) {
            ring(surface, change);
            if (!progress.step(++done))
                return false;
        }
    }
    return true;
}

} // namespace

surface_t *surface_make_hole(object_t *object, surface_t *surface, float factor, int no_inner)
{
    mesh_change change(object);
    const int index = change.index_of(surface);
    if (index < 0 || !hole(index, factor, no_inner == 0, change))
        return nullptr;
    const mesh_result result = change.commit();
    return no_inner == 0 ? result.surfaces.back() : nullptr;
}

void object_make_holes(object_t *object, float factor)
{
    for_each_object(object, [factor](object_t *part) {
        mesh_change change(part);
        reserve_rings(change, change.before().surfaces->size());
        for (int i = 0; i < change.before().num_surfaces(); ++i)
            hole(i, factor, false, change);
        change.commit();
    });
}

surface_t *surface_bevel(object_t *object, surface_t *surface)
{
    mesh_change change(object);
    const int index = change.index_of(surface);
    if (index < 0)
        return nullptr;
    bevel(index, change);
    const mesh_result result = change.commit();
    return result.surfaces.empty() ? nullptr : result.surfaces.front();
}

int object_bevel(object_t *object)
{
    int count = 0;
    for_each_object(object, [&count](object_t *part) {
        mesh_change change(part);
        const int n = change.before().num_surfaces();
        reserve_rings(change, n);
        for (int i = 0; i < n; ++i)
            bevel(i, change);
        change.commit();
        count += n;
    });
    object_calc_normals_force(object);
    return count;
}

void surface_translate_vertices(surface_t *surface, const point3_t *offset)
{
    for (const svertex *reference : each<svertex>(surface->refs)) {
        if (reference->vertex != nullptr)
            reference->vertex->position = point_add(reference->vertex->position, *offset);
    }
}

// ---- commands ----

namespace {

// What is selected after the command: nothing, or what it made of surfaces, so that the next
// operation goes on from there; selected objects stay selected then.
enum class afterwards { nothing, results };

// Takes the selection off before the surfaces are freed.
void unselect(afterwards end)
{
    if (end == afterwards::nothing || mode_has_elements(select_mode()))
        clear_selection();
}

void select_made(afterwards end, const owned_list &made)
{
    if (end == afterwards::results && selection_get_num_objects() == 0)
        select_surfacelist(made.get());
    if (end == afterwards::results)
        find_bounding_box();
}

std::vector<object_t *> owners_of(const std::vector<owned_elements> &targets)
{
    std::vector<object_t *> owners;
    for (const owned_elements &owned : targets)
        owners.push_back(owned.object);
    return owners;
}

void make_holes(afterwards end)
{
    const auto factor = static_cast<float>(prefs.hole_percent / 100.0);
    const owned_list surfaces(find_selected_whole_surfaces());
    if (!surfaces && selection_get_num_objects() == 0) {
        display_message("surface make hole - no surfaces selected");
        return;
    }
    display_message("make hole...");
    if (prefs.hole_percent < 0) {
        if (end == afterwards::nothing)
            open_world_undo("make hole"); // Deliberate: the refusal has its record.
        windows_message_dialog(
            "the hole %% setting is less than zero - please set to a positive number");
        return;
    }
    const std::vector<owned_elements> targets = target_surfaces();
    std::vector<mesh_change> changes;
    const bool finished =
        compute_rings(targets, changes, [factor](int surface, mesh_change &change) {
            hole(surface, factor, false, change);
        });
    if (!finished) {
        display_message("make hole - cancelled");
        return;
    }
    open_world_undo("make hole");
    unselect(end);
    owned_list rings;
    for (const mesh_result &result : commit_all(changes)) {
        for (surface_t *surface : result.surfaces)
            rings.add(surface);
    }
    if (end == afterwards::results)
        calc_normals_of(owners_of(targets));
    select_made(end, rings);
    redraw_all();
    display_message("make hole - done");
    display_status();
}

// The raised copies among the surfaces that bevels of these surfaces made.
void append_caps(const flat_mesh &before, const std::vector<int> &surfaces,
                 const mesh_result &result, owned_list &caps)
{
    std::size_t at = 0;
    for (const int surface : surfaces) {
        const std::size_t corners = before.surface_corners(surface).size();
        if (corners == 0)
            continue; // makes none
        caps.add(result.surfaces[at]);
        at += 1 + corners;
    }
}

void bevel_selected(afterwards end)
{
    const owned_list surfaces(find_selected_whole_surfaces());
    if (!surfaces && selection_get_num_objects() == 0) {
        display_message("surface bevel - no surfaces selected");
        return;
    }
    display_message("bevel...");
    const std::vector<owned_elements> targets = target_surfaces();
    const std::vector<object_t *> objects = selected_top_objects();
    std::vector<mesh_change> changes;
    if (!compute_rings(targets, changes, bevel)) {
        display_message("bevel - cancelled");
        return;
    }
    open_world_undo("bevel");
    unselect(end);
    const std::vector<mesh_result> results = commit_all(changes);
    owned_list caps;
    for (std::size_t i = 0; i < targets.size(); ++i)
        append_caps(changes[i].before(), targets[i].indices, results[i], caps);
    if (objects.empty())
        calc_normals_of(owners_of(targets));
    for (object_t *object : objects) // Deliberate: also while recalc_normals is off
        object_calc_normals_force(object);
    select_made(end, caps);
    redraw_all();
    display_message("surfaces beveled: %d", static_cast<int>(count_elements(targets)));
    display_status();
}

} // namespace

void selected_surfaces_make_hole(void) { make_holes(afterwards::nothing); }

void selected_surfaces_bevel(void) { bevel_selected(afterwards::nothing); }

void command_hole_select() { make_holes(afterwards::results); }

void command_bevel_select() { bevel_selected(afterwards::results); }
