#include "edit/insert_vertex.h"

#include "base/command_result.h"
#include "base/messages.h"
#include "base/numbers.h"
#include "edit/document/edit_support.h"
#include "edit/mesh/mesh_edges.h"
#include "edit/symmetry.h"
#include "model/identity.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace {

float between(float from, float to, float share) { return from + (to - from) * share; }

bool is_vertex_of(const flat_mesh &mesh, int v) { return v >= 0 && v < mesh.num_vertices(); }

// A new vertex on the edge from a to b.
struct place_t : insert_place_t {
    int added;
};

// Into each surface that goes from a to b or back; false when none does.
bool insert_into_surfaces(mesh_change &change, const std::vector<place_t> &places)
{
    const flat_mesh &mesh = change.before();
    bool any = false;
    std::vector<std::pair<float, int>> here; // shares of the way, new vertices
    for (int surface = 0; surface < mesh.num_surfaces(); ++surface) {
        const int end = mesh.end_corner(surface);
        const bool open = mesh.surface(surface).type == SURFACE_LINE;
        for (int c = mesh.first_corner(surface); c < end - (open ? 1 : 0); ++c) {
            const int next = next_corner(mesh, surface, c);
            const int from = mesh.corner(c), to = mesh.corner(next);
            here.clear();
            for (const place_t &at : places) {
                if ((from == at.a && to == at.b) || (from == at.b && to == at.a))
                    here.emplace_back(from == at.a ? at.share : 1 - at.share, at.added);
            }
            std::sort(here.begin(), here.end());
            const flat_uv &p = mesh.uv(c), &q = mesh.uv(next);
            for (const auto &[way, added] : here)
                change.insert_corner_after(c, added,
                                           {between(p.u, q.u, way), between(p.v, q.v, way)});
            any = any || !here.empty();
        }
    }
    return any;
}

} // namespace

// On another edge, or elsewhere on one that crosses the plane.
std::vector<insert_place_t> insert_vertex_places(object_t *object, int a, int b, float share)
{
    std::vector<insert_place_t> places = {{a, b, share}};
    const std::vector<int> &twins = kept_symmetric_places(object);
    if (twins.empty() || twins[a] < 0 || twins[b] < 0)
        return places;
    if (twins[a] == b && twins[b] == a && share != 0.5f)
        places.push_back({a, b, 1 - share});
    else if (twins[a] != b && (twins[a] != a || twins[b] != b))
        places.push_back({twins[a], twins[b], share});
    return places;
}

int insert_vertex_at(object_t *object, int a, int b, float share)
{
    if (object == nullptr || object->visible == 0 || object->locked != 0 || !(share > 0) ||
        !(share < 1))
        return 0;
    mesh_change change(object);
    if (a == b || !is_vertex_of(change.before(), a) || !is_vertex_of(change.before(), b))
        return 0;
    std::vector<place_t> places;
    for (const insert_place_t &place : insert_vertex_places(object, a, b, share)) {
        const point3_t p = change.position(place.a), q = change.position(place.b);
        const point3_t at = {between(p.x, q.x, place.share), between(p.y, q.y, place.share),
                             between(p.z, q.z, place.share)};
        places.push_back({place, change.add_vertex(at, place.a)});
    }
    if (!insert_into_surfaces(change, places))
        return 0;
    open_world_undo("insert vertex");
    const mesh_result made = change.commit();
    calc_normals_of({object});
    if (mode_has_vertices(select_mode())) {
        owned_list chosen;
        chosen.add(made.vertices.front());
        clear_selection();
        select_vertices(chosen.get());
    }
    finish_edit();
    display_message(places.size() == 1 ? "insert vertex - 1 vertex" : "insert vertex - 2 vertices");
    return static_cast<int>(places.size());
}

// ---- commands ----

void command_insert_vertex_at(int, const char *const *words)
{
    object_t *object = object_by_identity(int_of(words[0]));
    const int place = object != nullptr ? object->num_vertices : 0;
    if (insert_vertex_at(object, int_of(words[1]), int_of(words[2]), finite_float_of(words[3])) ==
        0) {
        display_message("insert vertex - there is no such edge");
        return;
    }
    command_result_set(std::to_string(place).c_str());
}
