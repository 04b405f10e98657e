#include "edit/weld.h"

#include "base/messages.h"
#include "base/prefs.h"
#include "base/progress.h"
#include "base/redraw.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo.h"
#include "edit/mesh/mesh_change.h"
#include "edit/mesh/nearest_points.h"
#include "edit/mesh/vertex_use.h"
#include "edit/snap.h"
#include "edit/transform.h"
#include "model/change_marks.h"
#include "model/freed.h"
#include "model/matrix.h"
#include "model/object_tree.h"
#include "model/vector.h"

#include <algorithm>
#include <unordered_set>

namespace {

constexpr char one_from_each[] = "select only one vertex from each object\n";

std::vector<vertex *> selected_vertices() { return elements_of<vertex>(selection().vertices); }

struct vertex_pairs {
    object_t *first_object = nullptr, *second_object = nullptr;
    std::vector<vertex *> first, second; // one with one
};

// False, reported on the console, when they do not pair.
bool split(const std::vector<vertex *> &vertices, vertex_pairs &pairs)
{
    const std::vector<object_t *> owners = owners_of_vertices(vertices);
    pairs.first_object = owners.front();
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        if (owners[i] == pairs.first_object) {
            pairs.first.push_back(vertices[i]);
            continue;
        }
        if (pairs.second.empty())
            pairs.second_object = owners[i];
        pairs.second.push_back(vertices[i]);
        if (owners[i] != pairs.second_object) {
            console_printf(one_from_each);
            return false;
        }
    }
    if (pairs.first.size() == pairs.second.size())
        return true;
    console_printf("%d %d  - number of selected not the same in each object - select the same "
                   "number of vertices in each object\n",
                   static_cast<int>(pairs.first.size()), static_cast<int>(pairs.second.size()));
    return false;
}

// Puts the second object's vertices into the order of their partners; both lose those without.
void pair_nearest(vertex_pairs &pairs)
{
    std::vector<point3_t> points;
    points.reserve(pairs.second.size());
    for (const vertex *point : pairs.second)
        points.push_back(point->position);
    nearest_points left(points);
    std::vector<vertex *> first, second;
    for (vertex *point : pairs.first) {
        const int partner = left.nearest(point->position);
        if (partner < 0) {
            console_printf("something has cocked up in lue_object_vertices()\n");
            continue;
        }
        left.take_out(partner);
        first.push_back(point);
        second.push_back(pairs.second[partner]);
    }
    pairs.first = std::move(first);
    pairs.second = std::move(second);
}

bool selected_pairs(vertex_pairs &pairs)
{
    const std::vector<vertex *> vertices = selected_vertices();
    if (vertices.empty() || !split(vertices, pairs)) {
        windows_message_dialog("select the same number of vertices in two different objects");
        return false;
    }
    pair_nearest(pairs);
    return true;
}

owned_list list_of(const std::vector<vertex *> &vertices)
{
    owned_list list;
    for (vertex *point : vertices)
        list.add(point);
    return list;
}

// Redirects the second object's surfaces to the partners in the first one.
void redirect_to_partners(const vertex_pairs &pairs)
{
    number_vertices(pairs.second_object);
    std::vector<vertex *> partner(pairs.second_object->num_vertices);
    for (std::size_t i = 0; i < pairs.first.size(); ++i)
        partner[vertex_number(pairs.second[i])] = pairs.first[i];
    const flat_ptr mesh = object_flat(pairs.second_object);
    for (surface_t *surface : each<surface_t>(pairs.second_object->surfaces)) {
        for (svertex *reference : each<svertex>(surface->refs)) {
            const std::size_t i =
                reference->vertex ? vertex_number(reference->vertex) : partner.size();
            const bool own = i < partner.size() && i < mesh->vertex_records->size() &&
                             mesh->vertex_record(i) == reference->vertex;
            if (own && partner[i] != nullptr)
                reference->vertex = partner[i];
        }
    }
}

// Moves the rest of the second object to the first; the second is deleted.
void move_rest(const vertex_pairs &pairs)
{
    object_t *from = pairs.second_object;
    const std::unordered_set<const vertex *> replaced(pairs.second.begin(), pairs.second.end());
    owned_list kept;
    freed_batch batch;
    for (vertex *point : each<vertex>(from->vertices)) {
        if (replaced.count(point) == 0)
            kept.add(point);
        else
            batch.add(point);
    }
    object_add_vertices(pairs.first_object, kept.get());
    object_add_surfaces(pairs.first_object, from->surfaces);
    list_free(&from->vertices);
    list_free(&from->surfaces);
    from->num_vertices = from->num_surfaces = 0;
    object_mark(from, CHANGED_TOPOLOGY);
    for (object_t *child : elements_of<object_t>(from->children))
        object_reparent(child, from->parent);
    object_delete_nocleanup(from);
}

// How many surfaces beside the first one have the vertex.
int count_copies(const vertex_corners &corners, int v)
{
    int surface = -1, copies = -1;
    for (const std::int32_t corner : corners.of(v)) {
        const int of = corners.surface_of(corner);
        copies += of != surface ? 1 : 0;
        surface = of;
    }
    return std::max(copies, 0);
}

// Copies for one object's vertices. False when the user cancelled.
bool unshare(const owned_elements &owned, mesh_change &change, progress_t &progress, double &done)
{
    const flat_mesh &mesh = change.before();
    const vertex_corners corners(mesh);
    std::vector<std::int32_t> now = *mesh.corners;
    const int old = change.num_vertices();
    const auto add_copies = [&](int v, mesh_change::writer &out) {
        int surface = -1, copy = v;
        for (const std::int32_t corner : corners.of(v)) {
            const int of = corners.surface_of(corner);
            if (surface >= 0 && of != surface)
                copy = out.add_vertex(mesh.position(v), v);
            surface = of;
            now[corner] = copy;
        }
    };
    const bool finished = change_each(
        change, owned.indices,
        [&](int v) {
            return mesh_room{count_copies(corners, v), 0, 0};
        },
        add_copies, [&](int of_object) { return progress.step(done + of_object); });
    if (finished && change.num_vertices() > old)
        change.redirect_corners(std::move(now));
    done += static_cast<double>(owned.indices.size());
    return finished;
}

// select_vertices without a list.
void select_as_well(const std::vector<vertex *> &vertices)
{
    selection_add_vertices(vertices);
    find_bounding_box();
    selection_changed("select_vertices");
}

} // namespace

int split_list_into_two_objects(const listitem *vertices, listitem **first, listitem **paired)
{
    *first = *paired = nullptr;
    vertex_pairs pairs;
    if (vertices == nullptr || !split(elements_of<vertex>(vertices), pairs))
        return 0;
    owned_list all = list_of(pairs.first);
    pair_nearest(pairs);
    *first = all.release();
    *paired = list_of(pairs.second).release();
    return 1;
}

vertex *point_find_nearest(const vertex *point, const listitem *vertices)
{
    if (vertices == nullptr || vertices->next == nullptr)
        return vertices == nullptr ? nullptr : item_of<vertex>(vertices);
    vertex *nearest = nullptr;
    float best = 3.4028e38f;
    for (vertex *other : each<vertex>(vertices)) {
        const float distance = points_dist(&other->position, &point->position);
        if (distance < best) {
            best = distance;
            nearest = other;
        }
    }
    return nearest;
}

void snap_objects_using_vert(void)
{
    const std::vector<vertex *> vertices = selected_vertices();
    if (vertices.empty()) {
        console_printf("select a single vertex in each object\n");
        return;
    }
    const std::vector<object_t *> owners = owners_of_vertices(vertices);
    if (unique_objects(owners).size() != owners.size()) {
        console_printf(one_from_each);
        return;
    }
    const auto g = static_cast<float>(prefs.grid);
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        point3_t to = vertices[i]->position;
        snap_to_grid_float(&to, g, g, g);
        const point3_t offset = point_sub(to, vertices[i]->position);
        translate_object(owners[i], &offset);
    }
    find_bounding_box();
    redraw_all();
}

void snap_2_objects_vertices_together(void)
{
    vertex_pairs pairs;
    if (!selected_pairs(pairs))
        return;
    new_undo(UNDO_POSITIONS, "snap vertices together");
    set_undo_vertex_positions(selection().vertices, selection().objects);
    for (std::size_t i = 0; i < pairs.first.size(); ++i)
        pairs.second[i]->position = pairs.first[i]->position;
    object_mark(pairs.second_object, CHANGED_POSITIONS);
    find_bounding_box();
    selected_calc_normals();
    redraw_all();
}

void glue_object_vertices(void)
{
    console_printf("glue_object_vertices DO NOT CALL!!!!!!!!\n");
    vertex_pairs pairs;
    if (!selected_pairs(pairs))
        return;
    redirect_to_partners(pairs);
    clear_selection();
    move_rest(pairs);
    redraw_all();
}

// ---- commands ----

void allign_objects_using_2_vert(void)
{
    const std::vector<vertex *> vertices = selected_vertices();
    if (vertices.size() != 2) {
        windows_message_dialog("select two vertices - both of diff objects\n");
        return;
    }
    const std::vector<object_t *> owners = owners_of_vertices(vertices);
    if (owners[0] == owners[1]) {
        windows_message_dialog("both vertices must be in different objects\n");
        return;
    }
    const point3_t offset = point_sub(vertices[1]->position, vertices[0]->position);
    translate_object(owners[0], &offset);
    find_bounding_box();
    redraw_all();
}

void selected_unshare_vertices(void)
{
    const std::vector<vertex *> chosen = selected_vertices();
    if (chosen.empty()) {
        display_message("unshare vertices - nothing selected");
        return;
    }
    std::vector<mesh_change> changes;
    std::vector<object_t *> touched;
    progress_t progress(selection_get_num_vertices());
    double done = 0;
    for (const owned_elements &owned : vertices_by_owner_in_order(selection().vertices)) {
        touched.push_back(owned.object);
        if (!unshare(owned, changes.emplace_back(owned.object), progress, done)) {
            display_message("unshare vertices - cancelled");
            return;
        }
    }
    open_world_undo("Unshare vertices");
    std::vector<vertex *> clones;
    for (mesh_change &change : changes) {
        const std::vector<vertex *> made = change.commit().vertices;
        clones.insert(clones.end(), made.begin(), made.end());
    }
    display_message("calculating normals");
    calc_normals_of(touched);
    clear_selection();
    select_as_well(chosen);
    select_as_well(clones);
    display_status();
    display_message("new vertices created: %d", static_cast<int>(clones.size()));
    redraw_all();
}
