#include "model/mesh_arrays.h"

#include "model/change_marks.h"
#include "model/each.h"
#include "model/flat_mesh.h"

namespace {

struct kept_t {
    flat_ptr flat;
    std::vector<vesk_surface_attributes_t> surfaces;
};

kept_t &kept()
{
    static kept_t arrays;
    return arrays;
}

} // namespace

vesk_mesh_arrays_t vesk_object_get_mesh_arrays(object_t *object)
{
    kept() = {object_flat(object), {}};
    const flat_mesh &flat = *kept().flat;
    for (const flat_surface &surface : *flat.surfaces)
        kept().surfaces.push_back(
            {surface.material, surface.type | (surface.smooth != 0 ? SURFACE_SMOOTH : 0) |
                                   (surface.twosided != 0 ? SURFACE_TWOSIDED : 0)});
    static_assert(sizeof(flat_uv) == 2 * sizeof(float));
    return {flat.num_vertices(),    flat.num_surfaces(),
            flat.num_corners(),     flat.positions->data(),
            flat.normals->data(),   flat.face_normals->data(),
            kept().surfaces.data(), flat.corner_offsets->data(),
            flat.corners->data(),   reinterpret_cast<const float *>(flat.texture_coords->data())};
}

void vesk_object_set_surface_attributes(object_t *object, int first, int n,
                                        const vesk_surface_attributes_t *attributes)
{
    int place = 0;
    for (surface_t *surface : each<surface_t>(object->surfaces)) {
        if (place >= first + n)
            break;
        if (place >= first) {
            surface_set_col(surface, attributes[place - first].material);
            vesk_surface_set_flags(surface, attributes[place - first].flags);
        }
        ++place;
    }
    object_mark(object, CHANGED_ATTRIBUTES);
}
