#include "model/mesh_arrays.h"

#include "base/big_vector.h"
#include "base/worker.h"
#include "model/change_marks.h"
#include "model/deferred_records.h"
#include "model/each.h"
#include "model/flat_array.h"
#include "model/object_internal.h"

#include <algorithm>

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

void set_surfaces(const vesk_mesh_arrays_t &arrays, flat_mesh *flat)
{
    auto surfaces = big_vector<flat_surface>(arrays.num_surfaces);
    in_parallel_ranges(arrays.num_surfaces, [&](int begin, int end) {
        for (int i = begin; i < end; ++i) {
            surface_t surface = plain_surface();
            surface_set_col(&surface, arrays.surfaces[i].material);
            vesk_surface_set_flags(&surface, arrays.surfaces[i].flags);
            surfaces[i] = flat_attributes(surface);
        }
    });
    flat->surfaces = flat_shared(std::move(surfaces));
}

void set_corners(const vesk_mesh_arrays_t &arrays, flat_mesh *flat)
{
    std::vector<std::int32_t> offsets, corners;
    std::vector<flat_uv> uv;
    reserve_big(offsets, arrays.num_surfaces + std::size_t{1});
    reserve_big(corners, arrays.num_corners);
    reserve_big(uv, arrays.num_corners);
    offsets.push_back(0);
    for (int i = 0; i < arrays.num_surfaces; ++i) {
        for (int c = arrays.corner_offsets[i]; c < arrays.corner_offsets[i + 1]; ++c) {
            if (arrays.corners[c] < 0 || arrays.corners[c] >= arrays.num_vertices)
                continue;
            corners.push_back(arrays.corners[c]);
            const float *at = arrays.uv + 2 * static_cast<std::ptrdiff_t>(c);
            uv.push_back({at[0], at[1]});
        }
        offsets.push_back(static_cast<std::int32_t>(corners.size()));
    }
    flat->corner_offsets = flat_shared(std::move(offsets));
    flat->corners = flat_shared(std::move(corners));
    flat->texture_coords = flat_shared(std::move(uv));
}

} // namespace

void object_set_mesh(object_t *object, const vesk_mesh_arrays_t &arrays)
{
    auto flat = std::make_shared<flat_mesh>();
    flat->positions =
        flat_shared(std::vector(arrays.positions, arrays.positions + arrays.num_vertices));
    set_surfaces(arrays, flat.get());
    set_corners(arrays, flat.get());
    object_set_whole(object, std::move(flat));
}

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
