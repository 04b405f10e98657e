#include "edit/symmetry_scope.h"

#include "edit/document/edge_selection.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo_internal.h"
#include "edit/symmetry_elements.h"
#include "edit/transform.h"
#include "model/change_marks.h"
#include "model/vector.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <set>

namespace {

// clang-format off
constexpr const char *moving_commands[] = {
    "slide", "flatten", "circularize", "straighten", "space_evenly", "smooth_vertices",
};
constexpr const char *element_commands[] = {
    "delete", "removesurface", "dissolve", "collapse", "connect", "split_edges", "edge_bevel",
    "vertex_bevel", "inset", "extrude_each", "extrude_normals", "extrude_edges", "shell", "loop_cut",
    "insert_vertex", "surface_subdivide", "catmull_clark", "surface_spike", "surface_make_hole",
    "hole_select", "surface_bevel", "bevel_select", "surface_triangulate", "quads_from_triangles",
    "fill_hole", "surface_flip_normals", "set_col", "surface_set_shaded", "surface_set_twosided",
    "set_surface_type", "snaptogrid", "unshare_vertices", "weld_distance",
};
// clang-format on

// Of the running operation: the side that leads, and the plane.
struct leading_t {
    bool runs = false;
    float side = 1, plane = 0, near = 0;
};
leading_t leading;

symmetry_scope::of kind_of(const char *command)
{
    const auto is = [command](const char *name) { return std::strcmp(name, command) == 0; };
    if (std::any_of(std::begin(moving_commands), std::end(moving_commands), is))
        return symmetry_scope::of::positions;
    if (std::any_of(std::begin(element_commands), std::end(element_commands), is))
        return symmetry_scope::of::elements;
    return symmetry_scope::of::nothing;
}

std::vector<vertex *> selected_vertices()
{
    std::vector<vertex *> found = elements_of<vertex>(selection().vertices);
    const std::vector<vertex *> of_surfaces = vertices_of_selected_surfaces();
    found.insert(found.end(), of_surfaces.begin(), of_surfaces.end());
    return found;
}

// On the leading side positive, on the plane 0.
float height_of(const point3_t &p)
{
    const float height = (axis_of(p, symmetry_axis()) - leading.plane) * leading.side;
    return std::abs(height) <= leading.near ? 0 : height;
}

point3_t middle_of(const surface_t *surface)
{
    point3_t sum = {0, 0, 0};
    int count = 0;
    for (const svertex *corner : each<svertex>(surface->refs)) {
        if (corner->vertex == nullptr)
            continue;
        sum = point_add(sum, corner->vertex->position);
        ++count;
    }
    return point_scale(sum, 1.0f / static_cast<float>(std::max(count, 1)));
}

} // namespace

symmetry_scope::symmetry_scope(const char *command) : kind_(kind_of(command)) { begin(); }

symmetry_scope::symmetry_scope(of kind) : kind_(kind) { begin(); }

void symmetry_scope::begin()
{
    if (kind_ == of::nothing || leading.runs || !symmetry_acts())
        return;
    moving_ = selected_vertices();
    if (moving_.empty())
        return;
    owners_ = owners_of_vertices(moving_);
    std::erase(owners_, nullptr);
    owners_ = unique_objects(owners_);
    if (kind_ == of::positions) {
        for (const vertex *v : moving_)
            before_.push_back(v->position);
        pairs_ = symmetric_pairs(moving_, {}, owners_);
        serial_ = undo_last_serial();
        for (vertex *v : pairs_.counterparts())
            counterparts_.emplace_back(v, v->position);
    } else {
        leading = {false, 1, symmetry_plane(owners_.front()), symmetry_closeness(owners_.front())};
        bool positive = false, negative = false;
        for (const vertex *v : moving_) {
            positive = positive || height_of(v->position) > 0;
            negative = negative || height_of(v->position) < 0;
        }
        one_sided_ = positive != negative;
        leading.side = negative && !positive ? -1.0f : 1.0f;
        leading.runs = true;
        add_counterparts();
    }
    running_ = true;
}

void symmetry_scope::add_counterparts()
{
    int without = 0;
    const element_set others = selected_counterparts(&without);
    if (select_mode() == SELECT_EDGE) {
        std::vector<edge_ends> all = elements_of_selection().edges;
        all.insert(all.end(), others.edges.begin(), others.edges.end());
        std::set<std::pair<vertex *, vertex *>> known;
        std::erase_if(all, [&](const edge_ends &edge) {
            return !known.insert({edge.a, edge.b}).second; // on the plane it is its own counterpart
        });
        select_edges_by_ends(std::move(all));
    } else if (select_mode() == SELECT_SURFACE) {
        selection_add_surfaces(others.surfaces);
    } else {
        selection_add_vertices(others.vertices);
    }
    selection_changed("select");
}

symmetry_scope::~symmetry_scope()
{
    if (running_ && kind_ == of::elements)
        leading = {};
}

void symmetry_scope::end()
{
    if (!running_)
        return;
    running_ = false;
    if (kind_ == of::elements) {
        if (one_sided_)
            keep_side();
        leading = {};
        return;
    }
    bool moved = false;
    for (std::size_t i = 0; i < moving_.size() && !moved; ++i)
        moved = !point_equal(before_[i], moving_[i]->position);
    if (!moved)
        return;
    pairs_.follow();
    // A record of positions knows those that were selected.
    if (undo_last_serial() != serial_ && !undo_records().empty()) {
        if (auto *saved = std::get_if<undo_positions>(&undo_records().back()->data)) {
            for (const auto &[v, position] : counterparts_)
                saved->saved.push_back({v, position});
        }
    }
    for (object_t *owner : owners_)
        object_mark(owner, CHANGED_POSITIONS);
    calc_normals_of(owners_);
    finish_edit();
    tell_without_counterpart(pairs_.num_without());
}

void symmetry_scope::keep_side() const
{
    owned_list kept;
    if (select_mode() == SELECT_EDGE) {
        std::vector<edge_ends> edges;
        for (const owned_edges &owned : selected_edges()) {
            const flat_mesh &mesh = owned.topology->mesh();
            for (const int e : owned.edges) {
                const mesh_edge &edge = owned.topology->edge(e);
                const point3_t both = point_add(mesh.position(edge.a), mesh.position(edge.b));
                if (height_of(point_scale(both, 0.5f)) >= 0)
                    edges.push_back({mesh.vertex_record(edge.a), mesh.vertex_record(edge.b)});
            }
        }
        select_edges_by_ends(std::move(edges));
    } else if (select_mode() == SELECT_SURFACE) {
        for (surface_t *surface : each<surface_t>(selection().surfaces)) {
            if (height_of(middle_of(surface)) >= 0)
                kept.add(surface);
        }
        clear_selection();
        select_surfacelist(kept.get());
    } else if (mode_has_vertices(select_mode())) {
        for (vertex *v : each<vertex>(selection().vertices)) {
            if (height_of(v->position) >= 0)
                kept.add(v);
        }
        clear_selection();
        select_vertices(kept.get());
    }
    find_bounding_box();
}

point3_t symmetry_offset(const point3_t &at, const point3_t &offset)
{
    if (!leading.runs)
        return offset;
    const float height = height_of(at);
    point3_t here = offset;
    axis_of(here, symmetry_axis()) *= height < 0 ? -1.0f : height > 0 ? 1.0f : 0.0f;
    return here;
}
