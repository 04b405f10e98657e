#include "edit/surface_copy.h"

#include "model/each.h"
#include "model/flat_mesh.h"
#include "model/matrix.h"
#include "model/normals.h"
#include "model/object_internal.h"
#include "model/owners.h"

namespace {

void copy_header(object_t *to, const object_t *from)
{
    object_set_name(to, from->name);
    to->has_texture = from->has_texture;
    to->texture = from->texture;
    to->texture_repeat_x = from->texture_repeat_x;
    to->texture_repeat_y = from->texture_repeat_y;
    to->texture_offset_x = from->texture_offset_x;
    to->texture_offset_y = from->texture_offset_y;
    to->centre = from->centre;
    matrix_copy(from->rotation, to->rotation);
}

object_t *copy_some(object_t *owner, const std::vector<int> &wanted)
{
    const flat_ptr mesh = object_flat(owner);
    object_t *copy = new_object(OBJECT_POLY);
    copy_header(copy, owner);
    std::vector<vertex *> copies(static_cast<size_t>(mesh->num_vertices()), nullptr);
    for (const int index : wanted) {
        const auto i = static_cast<size_t>(index);
        surface_t *surface = new_surface();
        surface_copy_record(surface, (*mesh->surface_records)[i]);
        object_add_surface(copy, surface);
        auto corner = static_cast<size_t>((*mesh->corner_offsets)[i]);
        for (const int at : mesh->surface_corners(index)) {
            vertex *&v = copies[static_cast<size_t>(at)];
            if (v == nullptr) {
                const point3_t &p = (*mesh->positions)[static_cast<size_t>(at)];
                v = object_add_new_vertex(copy, p.x, p.y, p.z);
            }
            const flat_uv &uv = (*mesh->texture_coords)[corner++];
            surface_add_vertex(surface, v, uv.u, uv.v);
        }
    }
    object_calc_vertex_normals(copy);
    return copy;
}

} // namespace

std::vector<object_t *> objects_of_surfaces(const listitem *surfaces)
{
    std::vector<object_t *> objects;
    if (surfaces == nullptr)
        return objects;
    for (const owned_elements &owned : surfaces_by_owner(surfaces))
        objects.push_back(copy_some(owned.object, owned.indices));
    return objects;
}
