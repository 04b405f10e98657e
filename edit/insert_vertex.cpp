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
struct place_t {
    int a, b;
    float share;
    int added = -1;
};

// With symmetry its counterpart, too: on another edge, or elsewhere on one that crosses the plane.
std::vector<place_t> with_counterpart(object_t *object, const place_t &place)
{
    std::vector<place_t> places = {place};
    if (!symmetry_is_on())
        return places;
    const std::vector<int> twins = symmetric_places(object);
    const int a = twins[place.a], b = twins[place.b];
    if (a < 0 || b < 0)
        return places;
    if (a == place.b && b == place.a && place.share != 0.5f)
        places.push_back({place.a, place.b, 1 - place.share});
    else if (a != place.b && (a != place.a || b != place.b))
        places.push_back({a, b, place.share});
    return places;
}

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
            for (const auto &[a, b, share, added] : places) {
                if ((from == a && to == b) || (from == b && to == a))
                    here.emplace_back(from == a ? share : 1 - share, added);
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

int insert_vertex_at(object_t *object, int a, int b, float share)
{
    if (object == nullptr || object->visible == 0 || object->locked != 0 || !(share > 0) ||
        !(share < 1))
        return 0;
    mesh_change change(object);
    if (a == b || !is_vertex_of(change.before(), a) || !is_vertex_of(change.before(), b))
        return 0;
    std::vector<place_t> places = with_counterpart(object, {a, b, share});
    for (place_t &place : places) {
        const point3_t p = change.position(place.a), q = change.position(place.b);
        place.added =
            change.add_vertex({between(p.x, q.x, place.share), between(p.y, q.y, place.share),
                               between(p.z, q.z, place.share)},
                              place.a);
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
