// Writes the geometry of an image into a live object.

#include "edit/model_state_internal.h"
#include "model/change_marks_internal.h"
#include "model/each.h"
#include "model/object_internal.h"
#include "model/vector.h"

#include <cmath>

namespace {

std::size_t places(int n) { return static_cast<std::size_t>(n); }

flat_array<point3_t> normals_from_corners(const flat_mesh &mesh)
{
    std::vector<point3_t> normals;
    normals.reserve(places(mesh.num_surfaces()));
    for (int i = 0; i < mesh.num_surfaces(); ++i)
        normals.push_back(normal_of_corners(mesh, i));
    return std::make_shared<const std::vector<point3_t>>(std::move(normals));
}

// ---- the lists stay, values are written ----

bool has_lists_of(const object_state &state, const flat_mesh &image)
{
    return state.flat && (state.marks & CHANGED_TOPOLOGY) == 0 &&
           state.flat->corners == image.corners &&
           state.flat->corner_offsets == image.corner_offsets &&
           state.flat->num_vertices() == image.num_vertices();
}

void write_texture_coords(const std::vector<surface_t *> &surfaces,
                          const std::vector<vertex *> &vertices, const flat_mesh &image)
{
    std::size_t corner = 0;
    for (surface_t *surface : surfaces) {
        for (svertex *reference : each<svertex>(surface->refs)) {
            if (corner == image.corners->size())
                return;
            // References to no vertex of the object have no corner in the flat mesh.
            if (vertices[places((*image.corners)[corner])] != reference->vertex)
                continue;
            reference->u = (*image.texture_coords)[corner].u;
            reference->v = (*image.texture_coords)[corner].v;
            ++corner;
        }
    }
}

void write_attributes(surface_t *surface, const flat_surface &attributes)
{
    surface->material = attributes.material;
    surface->type = attributes.type;
    if ((surface->shading != 0) != (attributes.smooth != 0))
        surface->shading = attributes.smooth;
    if ((surface->twosided != 0) != (attributes.twosided != 0))
        surface->twosided = attributes.twosided;
}

void write_values(const object_state &state, const flat_mesh &image)
{
    const flat_mesh &now = *state.flat;
    const std::vector<vertex *> &vertices = *now.vertex_records;
    const std::vector<surface_t *> &surfaces = *now.surface_records;
    if ((state.marks & CHANGED_POSITIONS) != 0 || now.positions != image.positions) {
        for (std::size_t i = 0; i < vertices.size(); ++i)
            vertices[i]->position = (*image.positions)[i];
    }
    if ((state.marks & CHANGED_NORMALS) != 0 || now.normals != image.normals) {
        for (std::size_t i = 0; i < vertices.size(); ++i)
            vertices[i]->normal = (*image.normals)[i];
    }
    if ((state.marks & CHANGED_NORMALS) != 0 || now.face_normals != image.face_normals) {
        for (std::size_t i = 0; i < surfaces.size(); ++i)
            surfaces[i]->normal = (*image.face_normals)[i];
    }
    if ((state.marks & CHANGED_ATTRIBUTES) != 0 || now.surfaces != image.surfaces) {
        for (std::size_t i = 0; i < surfaces.size(); ++i)
            write_attributes(surfaces[i], (*image.surfaces)[i]);
    }
    if ((state.marks & CHANGED_TEXTURE_COORDS) != 0 || now.texture_coords != image.texture_coords)
        write_texture_coords(surfaces, vertices, image);
}

// ---- new lists ----

struct built_lists {
    std::vector<vertex *> vertices;
    std::vector<surface_t *> surfaces;
};

listitem *build_vertices(const flat_mesh &image, std::vector<vertex *> *records)
{
    const std::size_t n = image.positions->size();
    records->reserve(n);
    owned_list list;
    for (std::size_t i = 0; i < n; ++i) {
        const point3_t &p = (*image.positions)[i];
        vertex *point = new_vertex_set(p.x, p.y, p.z);
        point->normal = (*image.normals)[i];
        records->push_back(point);
        list.add(point);
    }
    return list.release();
}

listitem *build_surfaces(const flat_mesh &image, built_lists *built)
{
    const std::size_t n = image.surfaces->size();
    built->surfaces.reserve(n);
    owned_list list;
    std::size_t corner = 0;
    for (std::size_t i = 0; i < n; ++i) {
        surface_t *surface = new_surface();
        write_attributes(surface, (*image.surfaces)[i]);
        surface->normal = (*image.face_normals)[i];
        const auto end = places((*image.corner_offsets)[i + 1]);
        surface->num_refs = static_cast<int>(end - corner);
        listitem *last = nullptr;
        for (; corner < end; ++corner) {
            const flat_uv &uv = (*image.texture_coords)[corner];
            vertex *point = built->vertices[places((*image.corners)[corner])];
            last = list_add_item_fast(&surface->refs, last, new_svertex(point, uv.u, uv.v));
        }
        built->surfaces.push_back(surface);
        list.add(surface);
    }
    return list.release();
}

built_lists build_lists(object_t *object, const flat_mesh &image)
{
    object_free_geometry(object);
    built_lists built;
    object->vertices = build_vertices(image, &built.vertices);
    object->num_vertices = image.num_vertices();
    object->surfaces = build_surfaces(image, &built);
    object->num_surfaces = image.num_surfaces();
    return built;
}

} // namespace

point3_t normal_of_corners(const flat_mesh &mesh, int surface)
{
    const auto corners = mesh.surface_corners(surface);
    if (corners.size() < 3)
        return {0, 0, 0};
    const point3_t &origin = (*mesh.positions)[places(corners[0])];
    const point3_t a = point_sub((*mesh.positions)[places(corners[1])], origin);
    const point3_t b = point_sub((*mesh.positions)[places(corners[2])], origin);
    const double x = static_cast<double>(a.y) * b.z - static_cast<double>(a.z) * b.y;
    const double y = static_cast<double>(a.z) * b.x - static_cast<double>(a.x) * b.z;
    const double z = static_cast<double>(a.x) * b.y - static_cast<double>(a.y) * b.x;
    const double length = std::sqrt(x * x + y * y + z * z);
    const double divisor = length != 0 ? length : 1;
    return {static_cast<float>(x / divisor), static_cast<float>(y / divisor),
            static_cast<float>(z / divisor)};
}

void object_write_geometry(object_t *object, const flat_mesh &image)
{
    auto flat = std::make_shared<flat_mesh>(image);
    if (!flat->face_normals)
        flat->face_normals = normals_from_corners(image);
    object_state &state = state_of(object);
    if (has_lists_of(state, *flat)) {
        write_values(state, *flat);
        flat->vertex_records = state.flat->vertex_records;
        flat->surface_records = state.flat->surface_records;
    } else {
        built_lists built = build_lists(object, *flat);
        flat->vertex_records =
            std::make_shared<const std::vector<vertex *>>(std::move(built.vertices));
        flat->surface_records =
            std::make_shared<const std::vector<surface_t *>>(std::move(built.surfaces));
    }
    object_mark(object, 0); // a new stamp: what others know of the object is out of date
    flat->stamp = state.stamp;
    state.flat = std::move(flat);
    state.marks &= ~static_cast<unsigned>(CHANGED_GEOMETRY);
}
