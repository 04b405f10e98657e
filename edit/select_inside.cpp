#include "edit/select_inside.h"

#include "base/messages.h"
#include "base/redraw.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_scan.h"
#include "edit/mesh/point_in_solid.h"
#include "edit/pieces.h"
#include "model/world.h"

#include <algorithm>
#include <unordered_set>

namespace {

bool is_element_mode() { return select_mode() == SELECT_SURFACE || select_mode() == SELECT_VERTEX; }

std::vector<object_t *> containers()
{
    if (!is_element_mode())
        return selected_top_objects();
    std::vector<object_t *> owners = owners_of_vertices(elements_of<vertex>(selection().vertices));
    const auto more = owners_of_surfaces(elements_of<surface_t>(selection().surfaces));
    owners.insert(owners.end(), more.begin(), more.end());
    std::erase(owners, nullptr);
    return unique_objects(owners);
}

// The objects that may lie inside, with the meshes that are theirs.
struct candidate_t {
    object_t *object;
    std::vector<std::pair<object_t *, int>> meshes;
};

std::vector<candidate_t> candidates(const std::vector<object_t *> &solids)
{
    std::unordered_set<const object_t *> taken;
    for (object_t *top : solids)
        for_each_object(top, [&](const object_t *object) { taken.insert(object); });
    std::vector<candidate_t> found;
    const auto add = [&](object_t *object, const std::vector<object_t *> &with) {
        const bool free = object->visible != 0 && object->locked == 0 &&
                          std::none_of(with.begin(), with.end(),
                                       [&](object_t *of) { return taken.contains(of); });
        if (!free || with.empty())
            return;
        candidate_t &made = found.emplace_back(candidate_t{object, {}});
        for (object_t *of : with)
            made.meshes.emplace_back(of, -1);
    };
    if (select_mode() == SELECT_TREE) {
        for (object_t *top : each<object_t>(vesk_get_world()->children))
            add(top, objects_with_geometry({top}));
        return found;
    }
    for (object_t *object : objects_with_geometry({vesk_get_world()}))
        add(object, {object});
    return found;
}

void select_inside_of(const std::vector<candidate_t> &others, const solid_meshes &solids, int parts)
{
    std::vector<object_t *> objects;
    std::vector<surface_t *> surfaces;
    std::vector<vertex *> vertices;
    for (const candidate_t &other : others) {
        bool whole = true;
        for (const auto &[object, number] : other.meshes) {
            const flat_mesh &mesh = *solids.meshes()[number];
            std::vector<bool> inside(mesh.num_vertices());
            for (int v = 0; v < mesh.num_vertices() && (whole || is_element_mode()); ++v) {
                inside[v] = is_in_solids(solids, parts, solids.point_of(number, v));
                whole = whole && inside[v];
                if (inside[v])
                    vertices.push_back(mesh.vertex_record(v));
            }
            for (int s = 0; s < mesh.num_surfaces(); ++s) {
                const auto corners = mesh.surface_corners(s);
                if (!corners.empty() &&
                    std::all_of(corners.begin(), corners.end(), [&](int v) { return inside[v]; }))
                    surfaces.push_back(mesh.surface_record(s));
            }
        }
        if (whole)
            objects.push_back(other.object);
    }
    clear_selection();
    if (select_mode() == SELECT_SURFACE)
        selection_add_surfaces(surfaces);
    else if (select_mode() == SELECT_VERTEX)
        selection_add_vertices(vertices);
    else
        selection_add_objects(objects);
    selection_changed("select");
    finish_edit();
    const std::size_t count = select_mode() == SELECT_SURFACE  ? surfaces.size()
                              : select_mode() == SELECT_VERTEX ? vertices.size()
                                                               : objects.size();
    const char *what = select_mode() == SELECT_SURFACE  ? "surfaces"
                       : select_mode() == SELECT_VERTEX ? "vertices"
                                                        : "objects";
    display_message("select inside - %d %s", static_cast<int>(count), what);
}

} // namespace

// ---- commands ----

void command_select_inside()
{
    const std::vector<object_t *> tops = containers();
    solid_meshes solids;
    std::vector<std::string> names;
    int parts = 0, meshes = 0;
    for (object_t *top : tops) {
        const auto sources = objects_with_geometry({top});
        for (object_t *object : sources) {
            solids.add(object_flat(object), parts);
            names.emplace_back(object->name);
            ++meshes;
        }
        parts += sources.empty() ? 0 : 1;
    }
    if (parts == 0) {
        display_message("select inside - nothing selected");
        return;
    }
    std::vector<candidate_t> others = candidates(tops);
    for (candidate_t &other : others) {
        for (auto &[object, number] : other.meshes) {
            solids.add(object_flat(object), parts);
            number = meshes++;
        }
    }
    if (!solids.finish()) {
        display_message("select inside - a coordinate is not a number");
        return;
    }
    for (const solid_meshes::open_edge_t &edge : solids.open_edges()) {
        const solid_meshes::unit_t &unit = solids.units()[edge.unit];
        if (unit.part < parts) {
            display_message("select inside - '%s' is not closed", names[unit.mesh].c_str());
            return;
        }
    }
    select_inside_of(others, solids, parts);
}
