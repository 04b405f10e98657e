#include "model/change_marks_internal.h"
#include "model/each.h"
#include "model/object_internal.h"

#include <algorithm>
#include <cstring>
#include <unordered_set>

namespace {

template <class T>
flat_array<T> shared(std::vector<T> &&elements)
{
    return std::make_shared<const std::vector<T>>(std::move(elements));
}

bool same(const point3_t &a, const point3_t &b) { return std::memcmp(&a, &b, sizeof a) == 0; }
bool same(const flat_uv &a, const svertex &b)
{
    return std::memcmp(&a.u, &b.u, sizeof a.u) == 0 && std::memcmp(&a.v, &b.v, sizeof a.v) == 0;
}

flat_surface attributes_of(const surface_t &surface)
{
    return {surface.material, surface.type, static_cast<std::uint8_t>(surface.shading != 0),
            static_cast<std::uint8_t>(surface.twosided != 0), 0};
}

std::size_t count(int n) { return static_cast<std::size_t>(std::max(n, 0)); }

// One array of one element a vertex (surface), from the list; null when the list is not as long as
// the array it replaces: the topology changed then, and nobody said so.
template <class T, class Record, class Get>
flat_array<T> read_array(const listitem *list, std::size_t n, const Get &get)
{
    std::vector<T> elements(n);
    std::size_t i = 0;
    for (const Record *element : each<Record>(list)) {
        if (i == n)
            return nullptr;
        elements[i++] = get(*element);
    }
    return i == n ? shared(std::move(elements)) : nullptr;
}

void read_vertices(const object_t *object, flat_mesh *flat)
{
    std::vector<point3_t> positions;
    std::vector<point3_t> normals;
    std::vector<vertex *> records;
    positions.reserve(count(object->num_vertices));
    normals.reserve(count(object->num_vertices));
    records.reserve(count(object->num_vertices));
    std::uint32_t n = 0;
    for (vertex *point : each<vertex>(object->vertices)) {
        set_vertex_number(point, n++);
        positions.push_back(point->position);
        normals.push_back(point->normal);
        records.push_back(point);
    }
    flat->positions = shared(std::move(positions));
    flat->normals = shared(std::move(normals));
    flat->vertex_records = shared(std::move(records));
}

// The vertices are numbered.
void read_surfaces(const object_t *object, flat_mesh *flat)
{
    const std::vector<vertex *> &points = *flat->vertex_records;
    const std::size_t num_surfaces = count(object->num_surfaces);
    std::vector<point3_t> normals;
    std::vector<flat_surface> surfaces;
    std::vector<std::int32_t> offsets;
    std::vector<surface_t *> records;
    std::vector<std::int32_t> corners;
    std::vector<flat_uv> texture_coords;
    normals.reserve(num_surfaces);
    surfaces.reserve(num_surfaces);
    offsets.reserve(num_surfaces + 1);
    records.reserve(num_surfaces);
    std::size_t num_corners = 0;
    for (const surface_t *surface : each<surface_t>(object->surfaces))
        num_corners += count(surface->num_refs);
    corners.reserve(num_corners);
    texture_coords.reserve(num_corners);

    offsets.push_back(0);
    for (surface_t *surface : each<surface_t>(object->surfaces)) {
        for (const svertex *reference : each<svertex>(surface->refs)) {
            const vertex *point = reference->vertex;
            const std::uint32_t number = point ? vertex_number(point) : UINT32_MAX;
            if (number >= points.size() || points[number] != point)
                continue;
            corners.push_back(static_cast<std::int32_t>(number));
            texture_coords.push_back({reference->u, reference->v});
        }
        normals.push_back(surface->normal);
        surfaces.push_back(attributes_of(*surface));
        records.push_back(surface);
        offsets.push_back(static_cast<std::int32_t>(corners.size()));
    }
    flat->face_normals = shared(std::move(normals));
    flat->surfaces = shared(std::move(surfaces));
    flat->corner_offsets = shared(std::move(offsets));
    flat->surface_records = shared(std::move(records));
    flat->corners = shared(std::move(corners));
    flat->texture_coords = shared(std::move(texture_coords));
}

std::shared_ptr<flat_mesh> read_everything(const object_t *object)
{
    auto flat = std::make_shared<flat_mesh>();
    read_vertices(object, flat.get());
    read_surfaces(object, flat.get());
    return flat;
}

// Texture coordinates go with the corners that were kept.
flat_array<flat_uv> read_texture_coords(const object_t *object, const flat_mesh &old)
{
    std::vector<flat_uv> texture_coords(old.corners->size());
    std::size_t corner = 0;
    for (const surface_t *surface : each<surface_t>(object->surfaces)) {
        for (const svertex *reference : each<svertex>(surface->refs)) {
            if (corner == texture_coords.size())
                return nullptr;
            if (old.vertex_record(old.corner(corner)) == reference->vertex)
                texture_coords[corner++] = {reference->u, reference->v};
        }
    }
    return corner == texture_coords.size() ? shared(std::move(texture_coords)) : nullptr;
}

// A copy of `old` with the marked arrays read anew; null when the lists have other lengths.
std::shared_ptr<flat_mesh> read_marked(const object_t *object, const flat_mesh &old, unsigned marks)
{
    auto flat = std::make_shared<flat_mesh>(old);
    const std::size_t num_vertices = old.positions->size();
    const std::size_t num_surfaces = old.surfaces->size();
    if ((marks & CHANGED_POSITIONS) != 0) {
        flat->positions = read_array<point3_t, vertex>(object->vertices, num_vertices,
                                                       [](auto &v) { return v.position; });
    }
    if ((marks & CHANGED_NORMALS) != 0) {
        flat->normals = read_array<point3_t, vertex>(object->vertices, num_vertices,
                                                     [](auto &v) { return v.normal; });
        flat->face_normals = read_array<point3_t, surface_t>(object->surfaces, num_surfaces,
                                                             [](auto &s) { return s.normal; });
    }
    if ((marks & CHANGED_ATTRIBUTES) != 0) {
        flat->surfaces =
            read_array<flat_surface, surface_t>(object->surfaces, num_surfaces, attributes_of);
    }
    if ((marks & CHANGED_TEXTURE_COORDS) != 0)
        flat->texture_coords = read_texture_coords(object, old);
    const bool complete = flat->positions && flat->normals && flat->face_normals &&
                          flat->surfaces && flat->texture_coords;
    return complete ? flat : nullptr;
}

// The same where some vertices moved and nothing else changed; null when that is not known.
std::shared_ptr<flat_mesh> read_moved(object_state &state, unsigned marks)
{
    const bool known = marks == CHANGED_POSITIONS && state.flat && state.moved &&
                       state.moved->records == state.flat->vertex_records;
    const bool goes_on = known && state.arrays && state.arrays->moved() == state.moved &&
                         state.arrays->holds(state.flat->positions);
    if (state.arrays && !goes_on) {
        state.arrays->end();
        state.arrays = nullptr;
    }
    if (!known)
        return nullptr;
    if (!goes_on)
        state.arrays = std::make_shared<moved_positions>(state.moved, state.flat->positions);
    auto flat = std::make_shared<flat_mesh>(*state.flat);
    flat->positions = state.arrays->read(state.flat->positions);
    return flat;
}

unsigned compare_vertices(const object_t *object, const flat_mesh &flat)
{
    unsigned found = 0;
    std::size_t i = 0;
    for (const vertex *point : each<vertex>(object->vertices)) {
        if (i == flat.vertex_records->size() || flat.vertex_record(i) != point)
            return CHANGED_TOPOLOGY;
        if (!same(flat.position(i), point->position))
            found |= CHANGED_POSITIONS;
        if (!same(flat.normal(i), point->normal))
            found |= CHANGED_NORMALS;
        ++i;
    }
    return i == flat.vertex_records->size() ? found : static_cast<unsigned>(CHANGED_TOPOLOGY);
}

// The vertices are known to be those of the flat mesh.
class surface_comparison {
public:
    explicit surface_comparison(const flat_mesh &flat) : flat_(flat) {}

    unsigned run(const object_t *object)
    {
        std::size_t i = 0;
        for (const surface_t *surface : each<surface_t>(object->surfaces)) {
            if (i == flat_.surface_records->size() || flat_.surface_record(i) != surface ||
                !corners(*surface, i))
                return CHANGED_TOPOLOGY;
            if (flat_.surface(i) != attributes_of(*surface))
                found_ |= CHANGED_ATTRIBUTES;
            if (!same(flat_.face_normal(i), surface->normal))
                found_ |= CHANGED_NORMALS;
            ++i;
        }
        return i == flat_.surface_records->size() ? found_
                                                  : static_cast<unsigned>(CHANGED_TOPOLOGY);
    }

private:
    bool corners(const surface_t &surface, std::size_t i)
    {
        int corner = flat_.first_corner(i);
        const int end = flat_.end_corner(i);
        for (const svertex *reference : each<svertex>(surface.refs)) {
            const bool expected =
                corner < end && flat_.vertex_record(flat_.corner(corner)) == reference->vertex;
            if (!expected) {
                if (is_own(reference->vertex))
                    return false;
                continue; // left out of the flat mesh
            }
            if (!same(flat_.uv(corner), *reference))
                found_ |= CHANGED_TEXTURE_COORDS;
            ++corner;
        }
        return corner == end;
    }

    bool is_own(const vertex *point)
    {
        if (own_.empty())
            own_.insert(flat_.vertex_records->begin(), flat_.vertex_records->end());
        return own_.count(point) != 0;
    }

    const flat_mesh &flat_;
    unsigned found_ = 0;
    std::unordered_set<const vertex *> own_; // filled when a corner is in doubt
};

} // namespace

unsigned flat_compare(const object_t *object, const flat_mesh &flat)
{
    const unsigned found = compare_vertices(object, flat);
    if (found == CHANGED_TOPOLOGY)
        return found;
    return found | surface_comparison(flat).run(object);
}

flat_ptr object_flat(object_t *object)
{
    object_state &state = state_of(object);
    state_resolve(object, state);
    const unsigned marks = state.marks & CHANGED_GEOMETRY;
    if (state.flat && marks == 0)
        return state.flat;

    std::shared_ptr<flat_mesh> flat = read_moved(state, marks);
    if (!flat && state.flat && (marks & CHANGED_TOPOLOGY) == 0)
        flat = read_marked(object, *state.flat, marks);
    if (!flat)
        flat = read_everything(object);
    flat->stamp = state.stamp;
    state.flat = std::move(flat);
    state.marks = 0;
    state.moved = nullptr;
    return state.flat;
}

std::vector<int> flat_loose_vertices(const flat_mesh &flat)
{
    std::vector<bool> used(flat.num_vertices());
    for (const int v : *flat.corners)
        used[v] = true;
    std::vector<int> loose;
    for (int v = 0; v < flat.num_vertices(); ++v) {
        if (!used[v])
            loose.push_back(v);
    }
    return loose;
}

int flat_loose_points(const flat_mesh &flat)
{
    return static_cast<int>(flat_loose_vertices(flat).size());
}

flat_mesh flat_mesh::without_records() const
{
    flat_mesh copy = *this;
    copy.vertex_records = nullptr;
    copy.surface_records = nullptr;
    return copy;
}

std::size_t flat_mesh::bytes() const
{
    const auto size = [](const auto &array) {
        return array ? array->size() * sizeof(array->front()) : 0;
    };
    return size(positions) + size(normals) + size(face_normals) + size(surfaces) +
           size(corner_offsets) + size(corners) + size(texture_coords) + size(vertex_records) +
           size(surface_records);
}
