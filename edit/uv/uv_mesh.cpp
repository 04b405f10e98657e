#include "edit/uv/uv_mesh.h"

#include "model/change_marks.h"
#include "model/each.h"
#include "model/identity.h"
#include "model/normals_internal.h"
#include "model/object_internal.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace {

void add_part(uv_mesh &mesh, const uv_source &source)
{
    const flat_ptr &flat = source.flat;
    uv_part part = {source.object,
                    source.identity,
                    flat,
                    mesh.num_surfaces(),
                    0,
                    static_cast<int>(mesh.positions.size())};
    const int number = static_cast<int>(mesh.parts.size());
    for (int i = 0; i < flat->num_surfaces(); ++i) {
        const auto corners = flat->surface_corners(i);
        if (flat->surface(i).type != SURFACE_POLYGON || corners.size() < 3)
            continue;
        mesh.surfaces.push_back(flat->surface_records ? flat->surface_record(i) : nullptr);
        mesh.part.push_back(number);
        mesh.normals.push_back(flat->face_normals ? flat->face_normal(i)
                                                  : normal_of_corners(*flat, i));
        const auto begin = flat->texture_coords->begin() + flat->first_corner(i);
        for (const std::int32_t v : corners)
            mesh.vertices.push_back(part.first_vertex + v);
        mesh.at.insert(mesh.at.end(), begin, begin + static_cast<std::ptrdiff_t>(corners.size()));
        mesh.first_corner.push_back(mesh.num_corners());
        ++part.num_surfaces;
    }
    if (part.num_surfaces == 0)
        return;
    mesh.positions.insert(mesh.positions.end(), flat->positions->begin(), flat->positions->end());
    mesh.parts.push_back(std::move(part));
}

bool same_bits(const flat_uv &a, const flat_uv &b)
{
    return std::bit_cast<std::uint32_t>(a.u) == std::bit_cast<std::uint32_t>(b.u) &&
           std::bit_cast<std::uint32_t>(a.v) == std::bit_cast<std::uint32_t>(b.v);
}

// Corners without a vertex of the object have no coordinates in the mesh.
bool is_own(const flat_mesh &flat, const vertex *point)
{
    if (point == nullptr)
        return false;
    const std::size_t i = vertex_number(point);
    return i < flat.vertex_records->size() && flat.vertex_record(i) == point;
}

} // namespace

uv_mesh uv_mesh_of_sources(const std::vector<uv_source> &sources)
{
    uv_mesh mesh;
    std::size_t corners = 0, surfaces = 0;
    for (const uv_source &source : sources) {
        corners += source.flat->corners->size();
        surfaces += source.flat->surfaces->size();
    }
    mesh.vertices.reserve(corners);
    mesh.at.reserve(corners);
    mesh.surfaces.reserve(surfaces);
    mesh.part.reserve(surfaces);
    mesh.normals.reserve(surfaces);
    mesh.first_corner.reserve(surfaces + 1);
    mesh.first_corner.push_back(0);
    for (const uv_source &source : sources)
        add_part(mesh, source);
    return mesh;
}

uv_mesh uv_mesh_of(const std::vector<object_t *> &objects)
{
    std::vector<uv_source> sources;
    for (object_t *object : objects)
        sources.push_back({object, object_identity(object), object_flat(object)});
    return uv_mesh_of_sources(sources);
}

uv_mesh uv_mesh_of_flats(const std::vector<flat_ptr> &flats)
{
    std::vector<uv_source> sources;
    for (const flat_ptr &flat : flats)
        sources.push_back({nullptr, 0, flat});
    return uv_mesh_of_sources(sources);
}

bool uv_part_is_current(const uv_part &part)
{
    if (identity_known(part.object) != part.identity)
        return false;
    const flat_ptr now = object_flat(part.object);
    return now->corners == part.flat->corners && now->corner_offsets == part.flat->corner_offsets &&
           now->surface_records == part.flat->surface_records &&
           (now->surfaces == part.flat->surfaces || *now->surfaces == *part.flat->surfaces);
}

std::vector<int> uv_surface_of_corners(const uv_mesh &mesh)
{
    std::vector<int> surface(mesh.at.size());
    for (int i = 0; i < mesh.num_surfaces(); ++i)
        std::fill(surface.begin() + mesh.corners_begin(i), surface.begin() + mesh.corners_end(i),
                  i);
    return surface;
}

void uv_write(const uv_mesh &mesh, const std::vector<flat_uv> &at, const std::vector<int> &surfaces)
{
    int numbered = -1; // the part whose vertices carry their numbers
    for (const int i : surfaces) {
        const uv_part &part = mesh.parts[mesh.part[i]];
        if (numbered != mesh.part[i]) {
            numbered = mesh.part[i];
            number_vertices(part.object);
            object_mark(part.object, CHANGED_TEXTURE_COORDS);
        }
        int corner = mesh.corners_begin(i);
        for (svertex *reference : each<svertex>(mesh.surfaces[i]->refs)) {
            if (corner == mesh.corners_end(i))
                break;
            if (!is_own(*part.flat, reference->vertex))
                continue;
            reference->u = at[corner].u;
            reference->v = at[corner].v;
            ++corner;
        }
    }
}

std::vector<int> uv_changed_surfaces(const uv_mesh &mesh, const std::vector<flat_uv> &from,
                                     const std::vector<flat_uv> &to)
{
    std::vector<int> changed;
    for (int i = 0; i < mesh.num_surfaces(); ++i) {
        for (int corner = mesh.corners_begin(i); corner < mesh.corners_end(i); ++corner) {
            if (!same_bits(from[corner], to[corner])) {
                changed.push_back(i);
                break;
            }
        }
    }
    return changed;
}

void uv_box::add(const flat_uv &p)
{
    if (!std::isfinite(p.u) || !std::isfinite(p.v))
        return;
    if (!any) {
        u0 = u1 = p.u;
        v0 = v1 = p.v;
        any = true;
        return;
    }
    u0 = std::min(u0, p.u);
    u1 = std::max(u1, p.u);
    v0 = std::min(v0, p.v);
    v1 = std::max(v1, p.v);
}
