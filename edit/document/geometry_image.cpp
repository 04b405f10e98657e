#include "edit/document/geometry_image.h"

#include "base/big_vector.h"
#include "base/worker.h"
#include "edit/document/selection_scan.h"
#include "model/alloc.h"
#include "model/change_marks_internal.h"
#include "model/deferred_records.h"
#include "model/flat_array.h"
#include "model/freed_internal.h"
#include "model/normals_internal.h"

#include <utility>

namespace {

flat_array<point3_t> normals_from_corners(const flat_mesh &mesh)
{
    auto normals = big_vector<point3_t>(mesh.num_surfaces());
    in_parallel_ranges(mesh.num_surfaces(), [&](int begin, int end) {
        for (int i = begin; i < end; ++i)
            normals[i] = normal_of_corners(mesh, i);
    });
    return flat_shared(std::move(normals));
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
            if (vertices[image.corner(corner)] != reference->vertex)
                continue;
            reference->u = image.uv(corner).u;
            reference->v = image.uv(corner).v;
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

void write_values(object_t *object, const object_state &state, const flat_ptr &to)
{
    const flat_mesh &now = *state.flat, &image = *to;
    const std::vector<vertex *> &vertices = *now.vertex_records;
    const std::vector<surface_t *> &surfaces = *now.surface_records;
    if ((state.marks & CHANGED_POSITIONS) != 0 || now.positions != image.positions) {
        for (std::size_t i = 0; i < vertices.size(); ++i)
            vertices[i]->position = image.position(i);
    }
    if ((state.marks & CHANGED_NORMALS) != 0 || now.normals != image.normals) {
        for (std::size_t i = 0; i < vertices.size(); ++i)
            vertices[i]->normal = image.normal(i);
    }
    if ((state.marks & CHANGED_NORMALS) != 0 || now.face_normals != image.face_normals) {
        for (std::size_t i = 0; i < surfaces.size(); ++i)
            surfaces[i]->normal = image.face_normal(i);
    }
    if ((state.marks & CHANGED_ATTRIBUTES) != 0 || now.surfaces != image.surfaces) {
        for (std::size_t i = 0; i < surfaces.size(); ++i)
            write_attributes(surfaces[i], image.surface(i));
    }
    if ((state.marks & CHANGED_TEXTURE_COORDS) == 0 && now.texture_coords == image.texture_coords)
        return;
    if (now.whole)
        object_write_texture_coords(object, to, {});
    else
        write_texture_coords(surfaces, vertices, image);
}

// ---- other lists ----

// Walks a list whose nodes and records are used again, in their order, for other elements: half the
// cost of making a million of them anew is the allocator's. `make` makes the missing ones;
// `is_used` is true for records that stand in the list twice.
template <class T>
class refill {
public:
    explicit refill(listitem **head) : head_(head), node_(*head) {}

    template <class IsUsed, class Make>
    T *next(const IsUsed &is_used, const Make &make)
    {
        if (!node_) {
            last_ = list_add_item_fast(head_, last_, make());
            return item_of<T>(last_);
        }
        last_ = std::exchange(node_, node_->next);
        if (!item_of<T>(last_) || is_used(item_of<T>(last_)))
            last_->data = reinterpret_cast<std::intptr_t>(make());
        return item_of<T>(last_);
    }
    // Frees the nodes that are left over.
    template <class IsUsed, class Free>
    void finish(const IsUsed &is_used, const Free &free_record)
    {
        if (!node_)
            return;
        *(last_ ? &last_->next : head_) = nullptr;
        for (T *record : each<T>(node_)) {
            if (record && !is_used(record))
                free_record(record);
        }
        list_free(&node_);
    }

private:
    listitem **head_;
    listitem *node_; // not used yet
    listitem *last_ = nullptr;
};

// True for records that were filled, which carry their places as numbers.
template <class T>
class filled_records {
public:
    explicit filled_records(std::size_t n) { records.reserve(n); }
    bool operator()(const T *record) const
    {
        const std::uint32_t number = scratch(record);
        return number < records.size() && records[number] == record;
    }
    void add(T *record)
    {
        set_scratch(record, static_cast<std::uint32_t>(records.size()));
        records.push_back(record);
    }
    std::vector<T *> records;
};

std::vector<vertex *> fill_vertices(object_t *object, const flat_mesh &image)
{
    const std::size_t n = image.positions->size();
    filled_records<vertex> filled(n);
    refill<vertex> list(&object->vertices);
    for (std::size_t i = 0; i < n; ++i) {
        vertex *point = list.next(filled, new_vertex);
        point->position = image.position(i);
        point->normal = image.normal(i);
        filled.add(point);
    }
    list.finish(filled, vertex_free_record);
    object->num_vertices = image.num_vertices();
    return std::move(filled.records);
}

void fill_corners(surface_t *surface, const flat_mesh &image, int place,
                  const std::vector<vertex *> &vertices)
{
    const auto never = [](const svertex *) { return false; };
    const auto make = [] { return new_svertex(nullptr, 0, 0); };
    int corner = image.first_corner(place);
    refill<svertex> list(&surface->refs);
    for (const int index : image.surface_corners(place)) {
        const flat_uv &uv = image.uv(corner++);
        *list.next(never, make) = {vertices[index], uv.u, uv.v};
    }
    list.finish(never, [](svertex *reference) { myfree(reference); });
    surface->num_refs = static_cast<int>(image.surface_corners(place).size());
}

std::vector<surface_t *> fill_surfaces(object_t *object, const flat_mesh &image,
                                       const std::vector<vertex *> &vertices)
{
    filled_records<surface_t> filled(image.surfaces->size());
    refill<surface_t> list(&object->surfaces);
    for (int i = 0; i < image.num_surfaces(); ++i) {
        surface_t *surface = list.next(filled, new_surface);
        write_attributes(surface, image.surface(i));
        surface->normal = image.face_normal(i);
        fill_corners(surface, image, i, vertices);
        filled.add(surface);
    }
    list.finish(filled, surface_free_record);
    object->num_surfaces = image.num_surfaces();
    return std::move(filled.records);
}

// Every vertex and surface that was there is gone for those who hold it.
void fill_lists(object_t *object, flat_mesh *image)
{
    freed_announce_geometry(object);
    list_prepare_fast(nullptr, 0); // its short cuts may lead to freed nodes
    std::vector<vertex *> vertices = fill_vertices(object, *image);
    std::vector<surface_t *> surfaces = fill_surfaces(object, *image, vertices);
    image->vertex_records = flat_shared(std::move(vertices));
    image->surface_records = flat_shared(std::move(surfaces));
}

} // namespace

bool object_write_geometry(object_t *object, const flat_mesh &image)
{
    auto flat = std::make_shared<flat_mesh>(image);
    object_state &state = state_of(object);
    if (!flat->face_normals) {
        flat->face_normals = normals_from_corners(image);
        // The records are not touched for what they say already.
        if (state.flat && flat_identical(state.flat->face_normals, flat->face_normals))
            flat->face_normals = state.flat->face_normals;
    }
    const bool stays = has_lists_of(state, *flat);
    if (stays) {
        flat->vertex_records = state.flat->vertex_records;
        flat->surface_records = state.flat->surface_records;
        write_values(object, state, flat);
    } else if (records_can_be_deferred(flat->num_vertices(), flat->num_surfaces())) {
        object_set_whole(object, std::move(flat));
        return false;
    } else {
        fill_lists(object, flat.get());
    }
    object_mark(object, 0); // a new stamp: copies that others keep of the object are out of date
    state_set_flat(object, std::move(flat), 0);
    return stays;
}
