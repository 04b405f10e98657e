#include "edit/mesh/surface_copy.h"

#include "model/each.h"
#include "model/matrix.h"
#include "model/normals.h"
#include "model/object_internal.h"
#include "model/owners.h"
#include "model/textures/textures.h"
#include "model/vertex_colours.h"

#include <algorithm>
#include <iterator>

void object_copy_header(object_t *to, const object_t *from)
{
    object_set_name(to, from->name);
    object_copy_texture(to, from);
    to->centre = from->centre;
    matrix_copy(from->rotation, to->rotation);
}

surface_copier::surface_copier(object_t *owner)
    : owner_(owner), mesh_(object_flat(owner)), colours_(object_vertex_colours(owner)),
      copies_(mesh_->num_vertices())
{
}

object_t *surface_copier::copy(std::span<const int> surfaces, std::span<const int> loose)
{
    object_t *made = new_object(OBJECT_POLY);
    object_copy_header(made, owner_);
    std::vector<int> used(loose.begin(), loose.end());
    for (const int surface : surfaces) {
        const auto corners = mesh_->surface_corners(surface);
        used.insert(used.end(), corners.begin(), corners.end());
    }
    std::sort(used.begin(), used.end());
    used.erase(std::unique(used.begin(), used.end()), used.end());
    listitem *last = nullptr;
    for (const int v : used) {
        vertex *&twin = copies_[v];
        twin = vertex_clone(mesh_->vertex_record(v));
        last = list_add_item_fast(&made->vertices, last, twin);
    }
    made->num_vertices = static_cast<int>(used.size());
    if (!colours_.empty()) {
        std::vector<unsigned char> rgb;
        for (const int v : used)
            std::copy_n(&colours_[3 * static_cast<std::size_t>(v)], 3, std::back_inserter(rgb));
        vesk_object_set_vertex_colours(made, rgb.data());
    }

    last = nullptr;
    for (const int surface : surfaces) {
        surface_t *twin = new_surface();
        surface_copy_record(twin, mesh_->surface_record(surface));
        auto corner = mesh_->first_corner(surface);
        listitem *last_corner = nullptr;
        for (const int v : mesh_->surface_corners(surface)) {
            const flat_uv &uv = mesh_->uv(corner++);
            last_corner =
                list_add_item_fast(&twin->refs, last_corner, new_svertex(copies_[v], uv.u, uv.v));
            ++twin->num_refs;
        }
        last = list_add_item_fast(&made->surfaces, last, twin);
    }
    made->num_surfaces = static_cast<int>(surfaces.size());
    object_calc_vertex_normals(made);
    return made;
}

std::vector<object_t *> objects_of_surfaces(const listitem *surfaces)
{
    std::vector<object_t *> objects;
    if (surfaces == nullptr)
        return objects;
    for (const owned_elements &owned : surfaces_by_owner(surfaces))
        objects.push_back(surface_copier(owned.object).copy(owned.indices));
    return objects;
}
