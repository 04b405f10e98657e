#include "base/big_vector.h"
#include "model/change_marks_internal.h"
#include "model/each.h"
#include "model/flat_array.h"
#include "model/list_pieces.h"
#include "model/object_internal.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <unordered_set>

namespace {

bool same(const point3_t &a, const point3_t &b) { return std::memcmp(&a, &b, sizeof a) == 0; }
bool same(const flat_uv &a, const svertex &b)
{
    return std::memcmp(&a.u, &b.u, sizeof a.u) == 0 && std::memcmp(&a.v, &b.v, sizeof a.v) == 0;
}

std::size_t count(int n) { return static_cast<std::size_t>(std::max(n, 0)); }

// One array of one element a vertex (surface), from the list; null when the list is not as long as
// the array it replaces: the topology changed then, and nobody said so.
template <class T, class Record, class Get>
flat_array<T> read_array(const listitem *head, std::size_t n, const Get &get)
{
    const list_pieces list(head);
    if (list.length() != n)
        return nullptr;
    auto elements = big_vector<T>(n);
    list.visit_all<Record>(
        [&](const Record *element, std::size_t i) { elements[i] = get(*element); });
    return flat_shared(std::move(elements));
}

void read_vertices(const object_t *object, bool with_normals, flat_mesh *flat)
{
    const list_pieces list(object->vertices);
    const std::size_t n = list.length();
    auto positions = big_vector<point3_t>(n);
    auto normals = big_vector<point3_t>(with_normals ? n : 0);
    auto records = big_vector<vertex *>(n);
    list.visit_all<vertex>([&](vertex *point, std::size_t i) {
        set_vertex_number(point, static_cast<std::uint32_t>(i));
        positions[i] = point->position;
        if (with_normals)
            normals[i] = point->normal;
        records[i] = point;
    });
    flat->positions = flat_shared(std::move(positions));
    flat->normals = with_normals ? flat_shared(std::move(normals)) : nullptr;
    flat->vertex_records = flat_shared(std::move(records));
}

// Reads the surfaces of an object whose vertices are numbered, the pieces of the list side by side.
class surface_reader {
public:
    surface_reader(const object_t *object, bool with_normals, const std::vector<vertex *> &points)
        : points_(points), with_normals_(with_normals), list_(object->surfaces)
    {
        const std::size_t n = list_.length();
        normals_ = big_vector<point3_t>(with_normals ? n : 0);
        surfaces_ = big_vector<flat_surface>(n);
        offsets_ = big_vector<std::int32_t>(n + 1);
        records_ = big_vector<surface_t *>(n);
    }

    void run(flat_mesh *flat)
    {
        // As many corners as the surfaces say, which plug-ins and foreign vertices may belie.
        const auto said = [](const surface_t &surface) { return count(surface.num_refs); };
        const auto real = [this](const surface_t &surface) {
            std::size_t n = 0;
            for (const svertex *reference : each<svertex>(surface.refs))
                n += number_of(reference->vertex) != UINT32_MAX ? 1 : 0;
            return n;
        };
        if (!read(said))
            read(real);
        flat->face_normals = with_normals_ ? flat_shared(std::move(normals_)) : nullptr;
        flat->whole = !left_out_;
        flat->surfaces = flat_shared(std::move(surfaces_));
        flat->corner_offsets = flat_shared(std::move(offsets_));
        flat->surface_records = flat_shared(std::move(records_));
        flat->corners = flat_shared(std::move(corners_));
        flat->texture_coords = flat_shared(std::move(texture_coords_));
    }

private:
    // UINT32_MAX for what is not the object's.
    [[nodiscard]] std::uint32_t number_of(const vertex *point) const
    {
        const std::uint32_t number = point ? vertex_number(point) : UINT32_MAX;
        return number < points_.size() && points_[number] == point ? number : UINT32_MAX;
    }

    // False when a piece has other corners than num_corners() of its surfaces.
    template <class NumCorners>
    bool read(const NumCorners &num_corners)
    {
        std::vector<std::size_t> starts(list_.count() + 1);
        list_.for_each_piece([&](int piece) {
            std::size_t n = 0;
            list_.visit<surface_t>(
                piece, [&](const surface_t *surface, std::size_t) { n += num_corners(*surface); });
            starts[piece + 1] = n;
        });
        for (std::size_t i = 1; i < starts.size(); ++i)
            starts[i] += starts[i - 1];
        corners_ = big_vector<std::int32_t>(starts.back());
        texture_coords_ = big_vector<flat_uv>(starts.back());
        std::atomic<bool> fits = true;
        list_.for_each_piece([&](int piece) {
            if (!read_piece(piece, starts[piece], starts[piece + 1]))
                fits = false;
        });
        return fits;
    }

    bool read_piece(int piece, std::size_t at, std::size_t end)
    {
        list_.visit<surface_t>(piece, [&](surface_t *surface, std::size_t i) {
            for (const svertex *reference : each<svertex>(surface->refs)) {
                const std::uint32_t number = number_of(reference->vertex);
                if (number == UINT32_MAX) {
                    left_out_ = true;
                    continue;
                }
                if (at < end) {
                    corners_[at] = static_cast<std::int32_t>(number);
                    texture_coords_[at] = {reference->u, reference->v};
                }
                ++at;
            }
            if (with_normals_)
                normals_[i] = surface->normal;
            surfaces_[i] = flat_attributes(*surface);
            records_[i] = surface;
            offsets_[i + 1] = static_cast<std::int32_t>(at);
        });
        return at == end;
    }

    const std::vector<vertex *> &points_;
    bool with_normals_;
    std::atomic<bool> left_out_ = false; // a corner
    list_pieces list_;
    std::vector<point3_t> normals_;
    std::vector<flat_surface> surfaces_;
    std::vector<std::int32_t> offsets_;
    std::vector<surface_t *> records_;
    std::vector<std::int32_t> corners_;
    std::vector<flat_uv> texture_coords_;
};

std::shared_ptr<flat_mesh> read_everything(const object_t *object, bool with_normals)
{
    auto flat = std::make_shared<flat_mesh>();
    read_vertices(object, with_normals, flat.get());
    surface_reader(object, with_normals, *flat->vertex_records).run(flat.get());
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
    return corner == texture_coords.size() ? flat_shared(std::move(texture_coords)) : nullptr;
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
            read_array<flat_surface, surface_t>(object->surfaces, num_surfaces, flat_attributes);
    }
    if ((marks & CHANGED_TEXTURE_COORDS) != 0)
        flat->texture_coords = read_texture_coords(object, old);
    const bool has_normals =
        (marks & CHANGED_NORMALS) == 0 || (flat->normals && flat->face_normals);
    const bool complete = flat->positions && has_normals && flat->surfaces && flat->texture_coords;
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
        if (!flat.normals || !same(flat.normal(i), point->normal))
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
            if (flat_.surface(i) != flat_attributes(*surface))
                found_ |= CHANGED_ATTRIBUTES;
            if (!flat_.face_normals || !same(flat_.face_normal(i), surface->normal))
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

// What `marks` say to be different from the flat mesh that there is.
std::shared_ptr<flat_mesh> read_changes(const object_t *object, object_state &state, unsigned marks,
                                        bool with_normals)
{
    if (std::shared_ptr<flat_mesh> flat = read_moved(state, marks))
        return flat;
    if (state.flat && (marks & CHANGED_TOPOLOGY) == 0) {
        if (std::shared_ptr<flat_mesh> flat = read_marked(object, *state.flat, marks))
            return flat;
    }
    return read_everything(object, with_normals);
}

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

    state_set_flat(object, read_changes(object, state, marks, true), 0);
    return state.flat;
}

std::shared_ptr<flat_mesh> state_flat_but_normals(object_t *object)
{
    object_state &state = state_of(object);
    state_resolve(object, state);
    const unsigned marks = state.marks & CHANGED_GEOMETRY & ~static_cast<unsigned>(CHANGED_NORMALS);
    std::shared_ptr<flat_mesh> flat = state.flat && marks == 0
                                          ? std::make_shared<flat_mesh>(*state.flat)
                                          : read_changes(object, state, marks, false);
    flat->normals = nullptr;
    flat->face_normals = nullptr;
    return flat;
}

void state_set_flat(object_t *object, std::shared_ptr<flat_mesh> flat, unsigned marks)
{
    object_state &state = state_of(object);
    flat->stamp = state.stamp;
    state.flat = std::move(flat);
    state.marks = marks;
    state.moved = nullptr;
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

flat_surface flat_attributes(const surface_t &surface)
{
    return {surface.material, surface.type, static_cast<std::uint8_t>(surface.shading != 0),
            static_cast<std::uint8_t>(surface.twosided != 0), 0};
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
