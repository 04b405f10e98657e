#include "edit/boolean.h"

#include "base/messages.h"
#include "base/numbers.h"
#include "edit/document/edit_support.h"
#include "edit/document/modes.h"
#include "edit/document/selection_scan.h"
#include "edit/mesh/solid_boolean.h"
#include "edit/pieces.h"
#include "model/child_changes.h"
#include "model/freed.h"
#include "model/object_tree.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr const char *words_of[] = {"union", "difference", "intersection"};

// What goes in: the meshes of the solids, and the objects that they are of.
struct solids_t {
    std::vector<object_t *> tops;
    std::vector<object_t *> owners; // of the meshes
    solid_meshes meshes;
};

bool gather(solids_t &solids)
{
    for (std::size_t part = 0; part < solids.tops.size(); ++part) {
        for (object_t *object : objects_with_geometry({solids.tops[part]})) {
            solids.owners.push_back(object);
            solids.meshes.add(object_flat(object), static_cast<int>(part));
        }
    }
    return solids.meshes.finish();
}

// ---- refusals ----

const char *name_of(const solids_t &solids, int unit)
{
    const solid_meshes::unit_t &of = solids.meshes.units()[unit];
    return solids.owners[of.mesh]->name;
}

surface_t *surface_of(const solids_t &solids, int unit)
{
    const solid_meshes::unit_t &of = solids.meshes.units()[unit];
    return solids.meshes.meshes()[of.mesh]->surface_record(of.surface);
}

// False when all solids are closed; else the ends of their open edges are selected.
bool refuse_open(solids_t &solids)
{
    const std::vector<solid_meshes::open_edge_t> open = solids.meshes.open_edges();
    if (open.empty())
        return false;
    owned_list ends;
    for (const solid_meshes::open_edge_t &edge : open) {
        const solid_meshes::unit_t &unit = solids.meshes.units()[edge.unit];
        const flat_mesh &mesh = *solids.meshes.meshes()[unit.mesh];
        for (const int v : mesh.surface_corners(unit.surface)) {
            const int point = solids.meshes.point_of(unit.mesh, v);
            if (point == edge.a || point == edge.b)
                ends.add(mesh.vertex_record(v));
        }
    }
    const std::string name = name_of(solids, open.front().unit);
    const int surface = solids.meshes.units()[open.front().unit].surface;
    set_new_select_mode(SELECT_VERTEX);
    clear_selection();
    select_vertices(ends.get());
    finish_edit();
    display_message("boolean - '%s' is not closed: surface %d has one of %d open edges",
                    name.c_str(), surface, static_cast<int>(open.size()));
    return true;
}

double size_of(const flat_mesh &mesh)
{
    box_t box = box_t::none();
    for (const point3_t &p : *mesh.positions)
        box.add(p);
    double size = 0;
    for (int i = 0; i < 3 && mesh.num_vertices() > 0; ++i)
        size = std::max(size, static_cast<double>(box.high[i]) - static_cast<double>(box.low[i]));
    return size;
}

// What rounding alone may bring about, of an object's size.
constexpr double no_depth = 1e-5;

bool refuse_crossing(const solids_t &solids, const solid_faces &faces)
{
    const std::vector<self_crossing_t> crossings = boolean_self_crossings(solids.meshes, faces);
    if (crossings.empty())
        return false;
    owned_list surfaces;
    const auto unit_of = [&](int triangle) { return solids.meshes.triangles()[triangle].unit; };
    for (const self_crossing_t &crossing : crossings) {
        surfaces.add(surface_of(solids, unit_of(crossing.a)));
        surfaces.add(surface_of(solids, unit_of(crossing.b)));
    }
    const int a = unit_of(crossings.front().a), b = unit_of(crossings.front().b);
    const std::string name = name_of(solids, a);
    set_new_select_mode(SELECT_SURFACE);
    clear_selection();
    select_surfacelist(surfaces.get());
    finish_edit();
    display_message("boolean - '%s' goes through itself: surfaces %d and %d, %d places",
                    name.c_str(), solids.meshes.units()[a].surface,
                    solids.meshes.units()[b].surface, static_cast<int>(crossings.size()));
    return true;
}

// ---- the result ----

// The others as they stay: copies go into the first one in their stead.
std::vector<object_t *> keep_hidden(const std::vector<object_t *> &tops)
{
    std::vector<object_t *> going = {tops.front()};
    child_changes places;
    for (std::size_t i = 1; i < tops.size(); ++i) {
        object_t *copy = object_clone(tops[i]);
        places.replace(tops[i], {tops[i], copy});
        going.push_back(copy);
    }
    places.commit();
    for (std::size_t i = 1; i < tops.size(); ++i)
        object_set_visible(tops[i], 0);
    return going;
}

class writer {
public:
    writer(const solids_t &solids, const solid_result &result, object_t *target)
        : meshes_(solids.meshes), result_(result), change_(target)
    {
        int vertices = 0, surfaces = 0;
        for (const flat_ptr &mesh : meshes_.meshes()) {
            first_vertex_.push_back(vertices);
            first_surface_.push_back(surfaces);
            vertices += mesh->num_vertices();
            surfaces += mesh->num_surfaces();
        }
    }
    void write();

private:
    [[nodiscard]] int place_of(int vertex) const
    {
        if (vertex >= result_.num_points)
            return first_new_ + vertex - result_.num_points;
        const auto [mesh, v] = meshes_.vertex_of(vertex);
        return first_vertex_[mesh] + v;
    }
    void write_whole(int unit);

    const solid_meshes &meshes_;
    const solid_result &result_;
    mesh_change change_;
    std::vector<int> first_vertex_, first_surface_;
    int first_new_ = 0;
};

void writer::write_whole(int number)
{
    const solid_meshes::unit_t &unit = meshes_.units()[number];
    const int place = first_surface_[unit.mesh] + unit.surface;
    const solid_result::fate_t fate = result_.fates[number];
    const auto points = meshes_.outline(number);
    const int first = change_.before().first_corner(place);
    const int n = static_cast<int>(points.size());
    if (fate == solid_result::KEPT) {
        for (int i = 0; i < n; ++i) {
            if (change_.before().corner(first + i) != place_of(points[i]))
                change_.redirect_corner(first + i, place_of(points[i]));
        }
        return;
    }
    change_.remove_surface(place);
    if (fate == solid_result::GONE)
        return;
    change_.add_surface(place);
    for (int i = 0; i < n; ++i)
        change_.add_corner(place_of(points[i]), change_.before().uv(first + i));
    change_.reverse_corners();
}

void writer::write()
{
    first_new_ = change_.num_vertices();
    for (const point3_t &point : result_.new_points)
        change_.add_vertex(point);
    for (int unit = 0; unit < static_cast<int>(meshes_.units().size()); ++unit)
        write_whole(unit);
    for (const solid_result::polygon_t &polygon : result_.polygons) {
        const solid_meshes::unit_t &unit = meshes_.units()[polygon.unit];
        change_.add_surface(first_surface_[unit.mesh] + unit.surface);
        for (const auto &[vertex, uv] : polygon.corners)
            change_.add_corner(place_of(vertex), uv);
    }
    // Of the others, lines and single vertices go.
    for (std::size_t m = 1; m < meshes_.meshes().size(); ++m) {
        const flat_mesh &mesh = *meshes_.meshes()[m];
        if (!meshes_.is_of_first(static_cast<int>(m))) {
            for (int s = 0; s < mesh.num_surfaces(); ++s) {
                if (mesh.surface(s).is_line())
                    change_.remove_surface(first_surface_[m] + s);
            }
            for (const int v : flat_loose_vertices(mesh))
                change_.remove_vertex(first_vertex_[m] + v);
        }
    }
    change_.remove_unused();
    change_.renew_records();
    change_.commit();
}

bool compute(solids_t &solids, solid_operation operation, solid_result *result)
{
    if (!gather(solids)) {
        display_message("boolean - a coordinate is not a number");
        return false;
    }
    if (refuse_open(solids))
        return false;
    progress_t progress(3.0 * static_cast<double>(solids.meshes.triangles().size()));
    solid_faces faces(solids.meshes, progress);
    if (!faces.compute()) {
        display_message("boolean - cancelled");
        return false;
    }
    if (refuse_crossing(solids, faces))
        return false;
    *result = solid_boolean(solids.meshes, faces, static_cast<int>(solids.tops.size()), operation);
    return true;
}

} // namespace

std::optional<solid_operation> boolean_operation_of(const char *word)
{
    const auto known = std::find_if(std::begin(words_of), std::end(words_of),
                                    [&](const char *name) { return std::strcmp(name, word) == 0; });
    if (known == std::end(words_of))
        return {};
    return static_cast<solid_operation>(known - std::begin(words_of));
}

std::vector<self_crossing_t> boolean_self_crossings(const solid_meshes &solids,
                                                    const solid_faces &faces)
{
    std::vector<double> sizes;
    for (const flat_ptr &mesh : solids.meshes())
        sizes.push_back(size_of(*mesh));
    std::vector<self_crossing_t> found;
    for (const self_crossing_t &crossing : faces.self_crossings()) {
        const int unit = solids.triangles()[crossing.a].unit;
        if (crossing.depth > no_depth * sizes[solids.units()[unit].mesh])
            found.push_back(crossing);
    }
    return found;
}

// ---- commands ----

void command_boolean(int count, const char *const *words)
{
    const std::optional<solid_operation> operation = boolean_operation_of(words[0]);
    if (!operation) {
        display_message("boolean - union, difference or intersection, not '%s'", words[0]);
        return;
    }
    solids_t solids;
    for (object_t *top : selected_top_objects()) {
        if (!objects_with_geometry({top}).empty())
            solids.tops.push_back(top);
    }
    if (solids.tops.size() < 2) {
        display_message(solids.tops.empty() ? "boolean - nothing selected"
                                            : "boolean - select two objects or more");
        return;
    }
    display_message("boolean...");
    solid_result result;
    if (!compute(solids, *operation, &result))
        return;
    open_world_undo("boolean");
    clear_selection();
    object_t *target = solids.tops.front();
    const bool keep = count > 1 && int_of(words[1]) != 0;
    const bool textures_differ = objects_merge(keep ? keep_hidden(solids.tops) : solids.tops);
    writer(solids, result, target).write();
    calc_normals_of({target});
    select_results({target});
    finish_edit();
    if (target->num_surfaces == 0)
        display_message("boolean - nothing is left");
    else
        display_message("boolean - %d surfaces%s", target->num_surfaces,
                        textures_differ ? ", with the texture of the first" : "");
}
