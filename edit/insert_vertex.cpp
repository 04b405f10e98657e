#include "edit/insert_vertex.h"

#include "base/command_result.h"
#include "base/messages.h"
#include "base/numbers.h"
#include "edit/document/edit_support.h"
#include "edit/mesh/mesh_edges.h"
#include "model/identity.h"

#include <string>

namespace {

float between(float from, float to, float share) { return from + (to - from) * share; }

bool is_vertex_of(const flat_mesh &mesh, int v) { return v >= 0 && v < mesh.num_vertices(); }

// Into each surface that goes from a to b or back; false when none does.
bool insert_into_surfaces(mesh_change &change, int a, int b, int added, float share)
{
    const flat_mesh &mesh = change.before();
    bool any = false;
    for (int surface = 0; surface < mesh.num_surfaces(); ++surface) {
        const int end = mesh.end_corner(surface);
        const bool open = mesh.surface(surface).type == SURFACE_LINE;
        for (int c = mesh.first_corner(surface); c < end - (open ? 1 : 0); ++c) {
            const int next = next_corner(mesh, surface, c);
            const int from = mesh.corner(c);
            const int to = mesh.corner(next);
            if (!(from == a && to == b) && !(from == b && to == a))
                continue;
            const float way = from == a ? share : 1 - share;
            const flat_uv &p = mesh.uv(c);
            const flat_uv &q = mesh.uv(next);
            change.insert_corner_after(c, added, {between(p.u, q.u, way), between(p.v, q.v, way)});
            any = true;
        }
    }
    return any;
}

} // namespace

bool insert_vertex_at(object_t *object, int a, int b, float share)
{
    if (object == nullptr || object->visible == 0 || object->locked != 0 || !(share > 0) ||
        !(share < 1))
        return false;
    mesh_change change(object);
    if (a == b || !is_vertex_of(change.before(), a) || !is_vertex_of(change.before(), b))
        return false;
    const point3_t p = change.position(a), q = change.position(b);
    const int added = change.add_vertex(
        {between(p.x, q.x, share), between(p.y, q.y, share), between(p.z, q.z, share)}, a);
    if (!insert_into_surfaces(change, a, b, added, share))
        return false;
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
    return true;
}

// ---- commands ----

void command_insert_vertex_at(int, const char *const *words)
{
    object_t *object = object_by_identity(int_of(words[0]));
    const int place = object != nullptr ? object->num_vertices : 0;
    if (!insert_vertex_at(object, int_of(words[1]), int_of(words[2]), finite_float_of(words[3]))) {
        display_message("insert vertex - there is no such edge");
        return;
    }
    display_message("insert vertex - 1 vertex");
    command_result_set(std::to_string(place).c_str());
}
