#include "edit/holes.h"

#include "base/messages.h"
#include "base/prefs.h"
#include "base/progress.h"
#include "base/redraw.h"
#include "edit/document/edit_support.h"
#include "edit/document/select_made.h"
#include "edit/mesh/mesh_change.h"
#include "model/matrix.h"
#include "model/normals.h"
#include "model/owners.h"
#include "model/vector.h"

#include <functional>
#include <numeric>

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

// ---- holes ----

// Whether the polygon is holed.
bool can_hole(const flat_mesh &mesh, int surface)
{
    return mesh.surface(surface).type == SURFACE_POLYGON &&
           mesh.surface_corners(surface).size() >= 3;
}

mesh_room hole_room(const flat_mesh &mesh, int surface, bool with_inner)
{
    const auto n = static_cast<int>(mesh.surface_corners(surface).size());
    if (!can_hole(mesh, surface))
        return {};
    return {n, with_inner ? n + 1 : n, with_inner ? 5 * n : 4 * n};
}

// The copies of the outline's vertices, scaled about their mean; they follow each other from the
// place that is returned.
int add_scaled(mesh_change::writer &out, const outline_t &outline, float factor)
{
    const flat_mesh &mesh = out.before();
    point3_t mean = {0, 0, 0};
    for (const int v : outline.corners)
        mean = point_add(mean, mesh.position(v));
    const auto n = static_cast<float>(outline.corners.size());
    mean = {mean.x / n, mean.y / n, mean.z / n};
    int last = 0;
    for (const int v : outline.corners) {
        const point3_t away = point_sub(mesh.position(v), mean);
        last = out.add_vertex(point_add(mean, point_scale(away, factor)), v);
    }
    return last + 1 - static_cast<int>(outline.corners.size());
}

// The inner polygon is the last surface that is added.
void hole(int surface, float factor, bool with_inner, mesh_change::writer &out)
{
    if (!can_hole(out.before(), surface))
        return;
    const outline_t outline = outline_of(out.before(), surface);
    const std::size_t n = outline.corners.size();
    const int copies = add_scaled(out, outline, factor);
    const auto copy_of = [copies](std::size_t corner) { return copies + static_cast<int>(corner); };
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t next = i + 1 < n ? i + 1 : 0;
        out.add_surface(surface);
        out.add_corner(outline.corners[i], outline.uv[i]);
        out.add_corner(outline.corners[next], outline.uv[next]);
        out.add_corner(copy_of(next), shrunk(outline.uv[next], factor));
        out.add_corner(copy_of(i), shrunk(outline.uv[i], factor));
        if (factor > 1)
            out.reverse_corners();
    }
    if (with_inner) {
        out.add_surface(surface);
        for (std::size_t i = 1; i <= n; ++i) // begins at the copy of the second corner
            out.add_corner(copy_of(i % n), shrunk(outline.uv[i % n], factor));
    }
    out.remove_surface(surface);
}

// ---- bevels ----

mesh_room bevel_room(const flat_mesh &mesh, int surface)
{
    const auto n = static_cast<int>(mesh.surface_corners(surface).size());
    return {n, 1 + n, 5 * n};
}

// The cap is the first surface that is added.
void bevel(int surface, mesh_change::writer &out)
{
    const flat_mesh &mesh = out.before();
    const outline_t outline = outline_of(mesh, surface);
    const std::size_t n = outline.corners.size();
    const auto size = static_cast<float>(prefs.bevel_size);
    const point3_t lift = point_scale(mesh.face_normal(surface), size);

    int raised = 0;
    out.add_surface(surface);
    for (std::size_t i = 0; i < n; ++i) {
        const point3_t p = mesh.position(outline.corners[i]);
        point3_t to_next = point_sub(mesh.position(outline.corners[(i + 1) % n]), p);
        point3_t to_previous = point_sub(mesh.position(outline.corners[(i + n - 1) % n]), p);
        normalize_point(&to_next);
        normalize_point(&to_previous);
        point3_t bisector = point_add(to_next, to_previous);
        normalize_point(&bisector);
        raised = out.add_vertex(point_add(point_add(p, point_scale(bisector, size)), lift));
        out.add_corner(raised, {0, 0});
    }
    const int cap = raised + 1 - static_cast<int>(n);
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t next = (i + 1) % n;
        out.add_surface(surface);
        out.add_corner(outline.corners[i], outline.uv[i]);
        out.add_corner(outline.corners[next], outline.uv[next]);
        out.add_corner(cap + static_cast<int>(next), {0, 0});
        out.add_corner(cap + static_cast<int>(i), {0, 0});
    }
    out.remove_surface(surface);
}

// ---- of many ----

// What is made of each polygon, and the room that it takes.
struct ring_t {
    std::function<mesh_room(const flat_mesh &mesh, int surface)> room;
    std::function<void(int surface, mesh_change::writer &out)> make;
};

ring_t ring_of_hole(float factor, bool with_inner)
{
    return {
        [=](const flat_mesh &mesh, int surface) { return hole_room(mesh, surface, with_inner); },
        [=](int surface, mesh_change::writer &out) { hole(surface, factor, with_inner, out); }};
}

ring_t ring_of_bevel() { return {bevel_room, bevel}; }

void make_rings(mesh_change &change, std::span<const int> surfaces, const ring_t &ring)
{
    change_each(
        change, surfaces, [&](int surface) { return ring.room(change.before(), surface); },
        ring.make, [](int /*done*/) { return true; });
}

void make_all_rings(mesh_change &change, const ring_t &ring)
{
    std::vector<int> all(change.before().num_surfaces());
    std::iota(all.begin(), all.end(), 0);
    make_rings(change, all, ring);
}

// The computing half of a command; false when the user cancelled.
bool compute_rings(const std::vector<owned_elements> &targets, std::vector<mesh_change> &changes,
                   const ring_t &ring)
{
    progress_t progress(static_cast<double>(count_elements(targets)));
    double done = 0;
    for (const owned_elements &owned : targets) {
        mesh_change &change = changes.emplace_back(owned.object);
        change.renew_records();
        const bool finished = change_each(
            change, owned.indices, [&](int surface) { return ring.room(change.before(), surface); },
            ring.make, [&](int of_object) { return progress.step(done + of_object); });
        if (!finished)
            return false;
        done += static_cast<double>(owned.indices.size());
    }
    return true;
}

} // namespace

surface_t *surface_make_hole(object_t *object, surface_t *surface, float factor, int no_inner)
{
    mesh_change change(object);
    const int index = change.index_of(surface);
    if (index < 0 || !can_hole(change.before(), index))
        return nullptr;
    make_rings(change, {&index, 1}, ring_of_hole(factor, no_inner == 0));
    const mesh_result result = change.commit();
    return no_inner == 0 ? result.surfaces.back() : nullptr;
}

void object_make_holes(object_t *object, float factor)
{
    for_each_object(object, [factor](object_t *part) {
        mesh_change change(part);
        make_all_rings(change, ring_of_hole(factor, false));
        change.renew_records();
        change.commit();
    });
}

surface_t *surface_bevel(object_t *object, surface_t *surface)
{
    mesh_change change(object);
    const int index = change.index_of(surface);
    if (index < 0)
        return nullptr;
    make_rings(change, {&index, 1}, ring_of_bevel());
    const mesh_result result = change.commit();
    return result.surfaces.empty() ? nullptr : result.surfaces.front();
}

int object_bevel(object_t *object)
{
    int count = 0;
    for_each_object(object, [&count](object_t *part) {
        mesh_change change(part);
        make_all_rings(change, ring_of_bevel());
        count += change.before().num_surfaces();
        change.renew_records();
        change.commit();
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

void select_made(afterwards end, const std::vector<surface_t *> &made)
{
    if (end == afterwards::results && selection_get_num_objects() == 0)
        select_made_surfaces(made);
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

// Deliberate: those of objects are computed also while recalc_normals is off.
void calc_bevelled(const std::vector<object_t *> &objects,
                   const std::vector<owned_elements> &targets)
{
    if (objects.empty())
        calc_normals_of(owners_of(targets));
    else if (prefs.recalc_normals != 0)
        calc_normals_of(objects);
    else
        std::for_each(objects.begin(), objects.end(), object_calc_normals_force);
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
    const bool finished = compute_rings(targets, changes, ring_of_hole(factor, false));
    if (!finished) {
        display_message("make hole - cancelled");
        return;
    }
    open_world_undo("make hole");
    unselect(end);
    std::vector<surface_t *> rings;
    for (const mesh_result &result : commit_all(changes)) {
        if (end == afterwards::results)
            rings.insert(rings.end(), result.surfaces.begin(), result.surfaces.end());
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
                 const mesh_result &result, std::vector<surface_t *> &caps)
{
    std::size_t at = 0;
    for (const int surface : surfaces) {
        const std::size_t corners = before.surface_corners(surface).size();
        if (corners == 0)
            continue; // makes none
        caps.push_back(result.surfaces[at]);
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
    if (!compute_rings(targets, changes, ring_of_bevel())) {
        display_message("bevel - cancelled");
        return;
    }
    open_world_undo("bevel");
    unselect(end);
    const std::vector<mesh_result> results = commit_all(changes);
    std::vector<surface_t *> caps;
    for (std::size_t i = 0; i < targets.size() && end == afterwards::results; ++i)
        append_caps(changes[i].before(), targets[i].indices, results[i], caps);
    calc_bevelled(objects, targets);
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
