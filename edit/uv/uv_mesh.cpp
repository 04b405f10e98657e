#include "edit/uv/uv_mesh.h"

#include "base/big_vector.h"
#include "model/change_marks.h"
#include "model/deferred_records.h"
#include "model/each.h"
#include "model/identity.h"
#include "model/normals_internal.h"
#include "model/object_internal.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace {

bool is_polygon(const flat_mesh &flat, int surface)
{
    return flat.surface(surface).type == SURFACE_POLYGON &&
           flat.end_corner(surface) - flat.first_corner(surface) >= 3;
}

flat_array<point3_t> normals_of(const flat_mesh &flat)
{
    if (flat.face_normals)
        return flat.face_normals;
    auto normals = big_vector<point3_t>(flat.num_surfaces());
    for (int i = 0; i < flat.num_surfaces(); ++i)
        normals[i] = normal_of_corners(flat, i);
    return flat_shared(std::move(normals));
}

// Its arrays are the flat mesh's.
uv_mesh mesh_of_polygons(const uv_source &source)
{
    const flat_mesh &flat = *source.flat;
    uv_mesh mesh;
    mesh.parts.push_back({source.object, source.identity, source.flat, 0, flat.num_surfaces(), 0});
    if (flat.surface_records)
        mesh.surfaces = flat.surface_records;
    mesh.first_corner = flat.corner_offsets;
    mesh.normals = normals_of(flat);
    mesh.vertices = flat.corners;
    mesh.at = flat.texture_coords;
    mesh.positions = flat.positions;
    return mesh;
}

// The arrays of several objects, or of some of the surfaces.
class mesh_maker {
public:
    explicit mesh_maker(const std::vector<uv_source> &sources)
    {
        std::size_t corners = 0, surfaces = 0;
        for (const uv_source &source : sources) {
            corners += source.flat->corners->size();
            surfaces += source.flat->surfaces->size();
        }
        vertices_.reserve(corners);
        at_.reserve(corners);
        surfaces_.reserve(surfaces);
        normals_.reserve(surfaces);
        first_corner_.reserve(surfaces + 1);
        first_corner_.push_back(0);
    }

    void add(const uv_source &source)
    {
        const flat_ptr &flat = source.flat;
        uv_part part = {source.object,
                        source.identity,
                        flat,
                        static_cast<int>(first_corner_.size()) - 1,
                        0,
                        static_cast<int>(positions_.size())};
        for (int i = 0; i < flat->num_surfaces(); ++i) {
            if (!is_polygon(*flat, i))
                continue;
            if (flat->surface_records)
                surfaces_.push_back(flat->surface_record(i));
            normals_.push_back(flat->face_normals ? flat->face_normal(i)
                                                  : normal_of_corners(*flat, i));
            for (const std::int32_t v : flat->surface_corners(i))
                vertices_.push_back(part.first_vertex + v);
            at_.insert(at_.end(), flat->texture_coords->begin() + flat->first_corner(i),
                       flat->texture_coords->begin() + flat->end_corner(i));
            first_corner_.push_back(static_cast<int>(at_.size()));
            ++part.num_surfaces;
        }
        if (part.num_surfaces == 0)
            return;
        positions_.insert(positions_.end(), flat->positions->begin(), flat->positions->end());
        mesh_.parts.push_back(std::move(part));
    }

    uv_mesh take()
    {
        mesh_.surfaces = std::move(surfaces_);
        mesh_.first_corner = std::move(first_corner_);
        mesh_.normals = std::move(normals_);
        mesh_.vertices = std::move(vertices_);
        mesh_.at = std::move(at_);
        mesh_.positions = std::move(positions_);
        return std::move(mesh_);
    }

private:
    uv_mesh mesh_; // its parts
    std::vector<surface_t *> surfaces_;
    std::vector<int> first_corner_, vertices_;
    std::vector<point3_t> normals_, positions_;
    std::vector<flat_uv> at_;
};

std::vector<int> numbers_in_flat(const uv_part &part, std::span<const int> surfaces)
{
    std::vector<int> numbers;
    numbers.reserve(surfaces.size());
    int in_flat = -1, place = part.first_surface - 1; // the last polygon that was met
    for (const int surface : surfaces) {
        for (; place < surface; ++place) {
            do
                ++in_flat;
            while (!is_polygon(*part.flat, in_flat));
        }
        numbers.push_back(in_flat);
    }
    return numbers;
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

const uv_part &uv_mesh::part_of(int surface) const
{
    const auto after =
        std::upper_bound(parts.begin(), parts.end(), surface,
                         [](int i, const uv_part &part) { return i < part.first_surface; });
    return after[-1];
}

uv_mesh uv_mesh_of_sources(const std::vector<uv_source> &sources)
{
    if (sources.size() == 1 && sources[0].flat->num_surfaces() > 0) {
        const flat_mesh &flat = *sources[0].flat;
        int i = 0;
        while (i < flat.num_surfaces() && is_polygon(flat, i))
            ++i;
        if (i == flat.num_surfaces())
            return mesh_of_polygons(sources[0]);
    }
    mesh_maker maker(sources);
    for (const uv_source &source : sources)
        maker.add(source);
    return maker.take();
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

std::vector<uv_surfaces_of_part> uv_by_part(const uv_mesh &mesh, std::span<const int> surfaces)
{
    std::vector<uv_surfaces_of_part> found;
    for (std::size_t first = 0, end = 0; first < surfaces.size(); first = end) {
        const uv_part &part = mesh.part_of(surfaces[first]);
        const int after = part.first_surface + part.num_surfaces;
        end = static_cast<std::size_t>(
            std::lower_bound(surfaces.begin() + static_cast<std::ptrdiff_t>(first), surfaces.end(),
                             after) -
            surfaces.begin());
        uv_surfaces_of_part some = {&part, surfaces.subspan(first, end - first), {}};
        if (!part.is_all() || part.first_surface != 0)
            some.others = numbers_in_flat(part, some.in_mesh);
        found.push_back(std::move(some));
    }
    return found;
}

namespace {

// Where the flat mesh has not all corners of the records.
void write_by_records(const uv_mesh &mesh, const uv_array<flat_uv> &at,
                      const uv_surfaces_of_part &some)
{
    number_vertices(some.part->object);
    for (const int i : some.in_mesh) {
        int corner = mesh.corners_begin(i);
        for (svertex *reference : each<svertex>(mesh.surfaces[i]->refs)) {
            if (corner == mesh.corners_end(i))
                break;
            if (!is_own(*some.part->flat, reference->vertex))
                continue;
            reference->u = at[corner].u;
            reference->v = at[corner].v;
            ++corner;
        }
    }
    object_mark(some.part->object, CHANGED_TEXTURE_COORDS);
}

} // namespace

void uv_write(const uv_mesh &mesh, const uv_array<flat_uv> &at, const std::vector<int> &surfaces)
{
    for (const uv_surfaces_of_part &some : uv_by_part(mesh, surfaces)) {
        object_t *object = some.part->object;
        const flat_ptr flat = object_flat(object);
        if (!flat->whole) {
            write_by_records(mesh, at, some);
            continue;
        }
        if (mesh.parts.size() == 1 && some.part->is_all()) {
            object_set_texture_coords(object, at.shared(), some.in_flat());
            continue;
        }
        std::vector<flat_uv> coords = *flat->texture_coords;
        for (std::size_t i = 0; i < some.in_mesh.size(); ++i) {
            std::copy(at.begin() + mesh.corners_begin(some.in_mesh[i]),
                      at.begin() + mesh.corners_end(some.in_mesh[i]),
                      coords.begin() + flat->first_corner(some.in_flat()[i]));
        }
        object_set_texture_coords(object, flat_shared(std::move(coords)), some.in_flat());
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
