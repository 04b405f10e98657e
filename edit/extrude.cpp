#include "edit/extrude.h"

#include "app/messages.h"
#include "app/prefs.h"
#include "app/progress.h"
#include "edit/delete.h"
#include "edit/edit_support.h"
#include "edit/link_surfaces.h"
#include "edit/mesh_change.h"
#include "edit/mesh_edges.h"
#include "edit/position_index.h"
#include "edit/selection_scan.h"
#include "edit/undo.h"
#include "model/change_marks.h"
#include "model/matrix.h"
#include "model/normals.h"
#include "model/object_internal.h"
#include "model/object_tree.h"
#include "model/vector.h"
#include "model/world.h"

#include <algorithm>
#include <memory>

namespace {

std::size_t place(int index) { return static_cast<std::size_t>(index); }

point3_t divided(const point3_t &p, int count)
{
    const auto n = static_cast<float>(count);
    return {p.x / n, p.y / n, p.z / n};
}

// The extrusion of one object's surfaces.
class extrusion {
public:
    extrusion(object_t *object, const std::vector<int> &surfaces, const point3_t &offset)
        : change_(object), mesh_(change_.before()), surfaces_(surfaces),
          edges_(edges_of(mesh_, surfaces)), steps_(std::max(prefs.extrude_num, 1)),
          step_(divided(offset, steps_)), index_(*mesh_.positions),
          top_(place(mesh_.num_vertices()), -1)
    {
    }

    // False when the user cancelled.
    bool add_walls(progress_t &progress, double &done);
    bool add_caps(progress_t &progress, double &done);
    void remove_originals();
    [[nodiscard]] bool has_walls() const { return has_walls_; }
    mesh_result commit() { return change_.commit(); }

private:
    // Of each edge, whether only one of the surfaces has it.
    [[nodiscard]] std::vector<bool> outer_edges() const;
    void add_strip(int surface, int a, int b);
    int vertex_at(const point3_t &to);
    int moved(int at) { return vertex_at(point_add(change_.position(at), step_)); }
    int moved_to_end(int at);

    mesh_change change_;
    const flat_mesh &mesh_;
    const std::vector<int> &surfaces_; // in the order of the selection
    mesh_edges edges_;
    int steps_;
    point3_t step_;
    position_index index_;
    std::vector<std::int32_t> top_; // of each vertex, the one at the end of the sweep, or -1
    bool has_walls_ = false;
};

std::vector<bool> extrusion::outer_edges() const
{
    std::vector<std::int32_t> owner(place(edges_.count), -1);
    std::vector<bool> outer(place(edges_.count), true);
    for (const int surface : surfaces_) {
        for (int c = (*mesh_.corner_offsets)[place(surface)];
             c < (*mesh_.corner_offsets)[place(surface) + 1]; ++c) {
            const int edge = edges_.of_corner[place(c)];
            if (edge < 0)
                continue;
            // Deliberate: an edge that one surface has twice is an outer one.
            if (owner[place(edge)] >= 0 && owner[place(edge)] != surface)
                outer[place(edge)] = false;
            owner[place(edge)] = surface;
        }
    }
    return outer;
}

// The vertex that stands there, or a new one.
int extrusion::vertex_at(const point3_t &to)
{
    const int next = change_.num_vertices();
    const int found = index_.find_or_add(to, next);
    if (found == next)
        change_.add_vertex(to);
    return found;
}

// Step by step, as the walls go, so that rounding opens no seam.
int extrusion::moved_to_end(int at)
{
    if (top_[place(at)] < 0) {
        point3_t to = change_.position(at);
        for (int k = 0; k < steps_; ++k)
            to = point_add(to, step_);
        top_[place(at)] = vertex_at(to);
    }
    return top_[place(at)];
}

void extrusion::add_strip(int surface, int a, int b)
{
    for (int k = 0; k < steps_; ++k) {
        const int next_a = moved(a);
        const int next_b = moved(b);
        change_.add_surface(surface);
        change_.set_type(SURFACE_POLYGON);
        change_.add_corner(a, {0, 0});
        change_.add_corner(prefs.extrude_flip_cap != 0 ? next_a : b, {0, 0});
        change_.add_corner(next_b, {0, 0});
        change_.add_corner(prefs.extrude_flip_cap != 0 ? b : next_a, {0, 0});
        a = next_a;
        b = next_b;
    }
    has_walls_ = true;
}

bool extrusion::add_walls(progress_t &progress, double &done)
{
    const std::vector<bool> outer = outer_edges();
    for (const int surface : surfaces_) {
        for (int c = (*mesh_.corner_offsets)[place(surface)];
             c < (*mesh_.corner_offsets)[place(surface) + 1]; ++c) {
            const int edge = edges_.of_corner[place(c)];
            if (edge >= 0 && outer[place(edge)]) {
                add_strip(surface, (*mesh_.corners)[place(c)],
                          (*mesh_.corners)[place(next_corner(mesh_, surface, c))]);
            }
        }
        if (!progress.step(++done))
            return false;
    }
    return true;
}

bool extrusion::add_caps(progress_t &progress, double &done)
{
    for (const int surface : surfaces_) {
        change_.add_surface(surface);
        for (int c = (*mesh_.corner_offsets)[place(surface)];
             c < (*mesh_.corner_offsets)[place(surface) + 1]; ++c) {
            change_.add_corner(moved_to_end((*mesh_.corners)[place(c)]),
                               (*mesh_.texture_coords)[place(c)]);
        }
        if (prefs.extrude_flip_cap != 0)
            change_.reverse_corners();
        if (!progress.step(++done))
            return false;
    }
    return true;
}

void extrusion::remove_originals()
{
    for (const int surface : surfaces_)
        change_.remove_surface(surface);
    change_.remove_unused();
}

using extrusions = std::vector<std::unique_ptr<extrusion>>;

enum class outcome { computed, refused, cancelled };

// The computing half; tells why it refused.
outcome compute(const std::vector<owned_elements> &owners, const point3_t &offset,
                extrusions &parts)
{
    std::size_t total = 0;
    for (const owned_elements &owned : owners)
        total += owned.indices.size();
    progress_t progress(2.0 * static_cast<double>(total));
    double done = 0;
    bool going = true;
    for (const owned_elements &owned : owners) {
        parts.push_back(std::make_unique<extrusion>(owned.object, owned.indices, offset));
        going = going && parts.back()->add_walls(progress, done);
    }
    const bool outer =
        std::any_of(parts.begin(), parts.end(), [](const auto &part) { return part->has_walls(); });
    if (going && !outer) {
        windows_message_dialog("Extrude failed: There are no external surface edges.");
        return outcome::refused;
    }
    for (const auto &part : parts) {
        if (prefs.extrude_cap_end != 0)
            going = going && part->add_caps(progress, done);
        if (prefs.extrude_delete_original != 0)
            part->remove_originals();
    }
    return going ? outcome::computed : outcome::cancelled;
}

// Counts the new surfaces; none when nothing changed.
outcome extrude_by(const point3_t &offset, std::size_t &made)
{
    made = 0;
    const owned_list surfaces(find_selected_whole_surfaces());
    if (!surfaces) {
        windows_message_dialog("Extrude: no surfaces selected - you shouldn't see this dialog "
                               "-report to Dovan");
        return outcome::refused;
    }
    const std::vector<owned_elements> owners = surfaces_by_owner_in_order(surfaces.get());
    extrusions parts;
    const outcome result = compute(owners, offset, parts);
    if (result != outcome::computed)
        return result;
    std::vector<object_t *> touched;
    for (std::size_t i = 0; i < owners.size(); ++i) {
        made += parts[i]->commit().surfaces.size();
        parts[i].reset();
        touched.push_back(owners[i].object);
    }
    calc_normals_of(touched);
    return result;
}

void turn(const listitem *vertices)
{
    for (vertex *point : each<vertex>(vertices))
        rotate_point_3d(&point->position);
}

// The outline moved by minus the offset, on new vertices; those go to `vertices`.
surface_t *moved_outline(const surface_t *surface, const point3_t &offset, owned_list &vertices)
{
    surface_t *copy = new_surface();
    surface_copy_record(copy, surface);
    for (const svertex *reference : each<svertex>(surface->refs)) {
        if (reference->vertex == nullptr)
            continue;
        const point3_t p = point_sub(reference->vertex->position, offset);
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
    const outcome result = extrude_by(*offset, made);
    if (result == outcome::cancelled)
        display_message("extrude - cancelled");
    return result == outcome::computed ? 1 : 0;
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
    const bool turns = degrees != nullptr && !point_equal(*degrees, {0, 0, 0});
    if (turns) {
        constexpr auto radians = static_cast<float>(3.14159265358979 / 180);
        set_global_matrix_rotate(degrees->x * radians, degrees->y * radians, degrees->z * radians);
    }
    const surface_t *before = surface;
    for (int k = 1; k <= steps; ++k) {
        const float part = static_cast<float>(k) / static_cast<float>(steps);
        owned_list vertices;
        surface_t *copy = moved_outline(surface, point_scale(*offset, part), vertices);
        if (turns)
            turn(vertices.get());
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
        vertex *point =
            place(found) < own.size() ? own[place(found)] : added[place(found) - own.size()];
        surface_add_vertex(copy, point, reference->u, reference->v);
    }
    if (flip != 0)
        surface_reverse_normal(copy);
    return copy;
}

// ---- commands ----

void command_extrude(float dx, float dy, float dz)
{
    const owned_list surfaces(find_selected_whole_surfaces());
    if (!surfaces) {
        display_message("extrude - nothing selected");
        return;
    }
    new_undo(UNDO_WORLD, "extrude");
    set_undo_all();
    display_message("extruding...");
    std::size_t made = 0;
    const outcome result = extrude_by({dx, dy, dz}, made);
    if (result == outcome::cancelled)
        cancelled("extrude");
    if (result != outcome::computed)
        return;
    finish_edit();
    display_message("extrude - %d surfaces", static_cast<int>(made));
}
