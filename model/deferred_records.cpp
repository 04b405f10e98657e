#include "model/deferred_records.h"

#include "base/big_vector.h"
#include "base/session_state.h"
#include "base/worker.h"
#include "model/change_marks_internal.h"
#include "model/deferred_pages.h"
#include "model/each.h"
#include "model/flat_array.h"
#include "model/list_internal.h"
#include "model/object_internal.h"
#include "model/record_maker.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace {

int least = 50000; // vertices and surfaces: fewer are made in a few milliseconds

constexpr std::size_t block_size(std::size_t size)
{
    return std::bit_ceil(std::max<std::size_t>(size, 16));
}

vertex vertex_of(const flat_mesh &flat, std::size_t v)
{
    vertex point = plain_vertex(flat.position(v));
    if (flat.normals)
        point.normal = flat.normal(v);
    return point;
}

// Without corners.
surface_t surface_of(const flat_mesh &flat, std::size_t s)
{
    const flat_surface &attributes = flat.surface(s);
    surface_t surface = plain_surface();
    surface.material = attributes.material;
    if (flat.face_normals)
        surface.normal = flat.face_normal(s);
    surface.type = attributes.type;
    surface.shading = attributes.smooth;
    surface.twosided = attributes.twosided;
    return surface;
}

} // namespace

// The records of one object, and what they are made of.
class deferred_records {
public:
    explicit deferred_records(const flat_ptr &flat) : flat_(flat), pages_(write, this) {}

    // Takes their addresses.
    bool take()
    {
        const auto vertices = static_cast<std::size_t>(flat_->num_vertices());
        const auto surfaces = static_cast<std::size_t>(flat_->num_surfaces());
        const auto corners = static_cast<std::size_t>(flat_->num_corners());
        const bool taken = pages_.add_run(block_size(sizeof(vertex)), vertices) &&
                           pages_.add_run(block_size(sizeof(listitem)), vertices) &&
                           pages_.add_run(block_size(sizeof(surface_t)), surfaces) &&
                           pages_.add_run(block_size(sizeof(listitem)), surfaces) &&
                           pages_.add_run(block_size(sizeof(svertex)), corners) &&
                           pages_.add_run(block_size(sizeof(listitem)), corners);
        if (!taken)
            pages_.give_back();
        return taken;
    }

    void link(object_t *object, flat_mesh *flat)
    {
        flat->vertex_records = records<vertex>(VERTICES, flat->num_vertices());
        flat->surface_records = records<surface_t>(SURFACES, flat->num_surfaces());
        vertex_records_ = flat->vertex_records;
        surface_records_ = flat->surface_records;
        object->num_vertices = flat->num_vertices();
        object->num_surfaces = flat->num_surfaces();
        object->vertices = first_of(VERTEX_NODES, object->num_vertices);
        object->surfaces = first_of(SURFACE_NODES, object->num_surfaces);
        first_vertex_ = object->vertices;
        first_surface_ = object->surfaces;
        object_ = object;
    }

    // The one that they were made for: it may be gone.
    [[nodiscard]] object_t *object() const { return object_; }
    [[nodiscard]] bool hands_out(const deferred_pages *pages) const { return &pages_ == pages; }
    [[nodiscard]] int index_of(int run, const void *element) const
    {
        return pages_.index_of(run, element);
    }

    // The address of an element; null behind the last one.
    [[nodiscard]] const void *block_at(int run, int i) const
    {
        const int count = run == VERTICES ? flat_->num_vertices() : flat_->num_surfaces();
        return i < count ? pages_.block(run, i) : nullptr;
    }

    [[nodiscard]] bool has_lists_of(const object_t *object) const
    {
        return object->vertices == first_vertex_ && object->surfaces == first_surface_;
    }
    [[nodiscard]] bool is_untouched(const object_t *object, const flat_mesh &flat) const
    {
        return pages_.is_untouched() && object->num_vertices == flat_->num_vertices() &&
               object->num_surfaces == flat_->num_surfaces() && are_lists_of(flat) &&
               flat.positions == flat_->positions && flat.normals == flat_->normals &&
               flat.face_normals == flat_->face_normals && flat.surfaces == flat_->surfaces &&
               flat.texture_coords == flat_->texture_coords;
    }
    // The lists hold the records that they were made with, in this order, and their corners.
    [[nodiscard]] bool are_lists_of(const flat_mesh &flat) const
    {
        return flat.vertex_records == vertex_records_ && flat.surface_records == surface_records_ &&
               flat.corners == flat_->corners && flat.corner_offsets == flat_->corner_offsets;
    }
    [[nodiscard]] bool are_written() const { return pages_.are_written(); }
    [[nodiscard]] const std::vector<vertex *> *untouched_vertices() const
    {
        return pages_.is_untouched(VERTEX_NODES) ? vertex_records_.get() : nullptr;
    }
    [[nodiscard]] const std::vector<surface_t *> *untouched_surfaces() const
    {
        return pages_.is_untouched(SURFACE_NODES) ? surface_records_.get() : nullptr;
    }
    [[nodiscard]] bool has_untouched_corners() const
    {
        return pages_.is_untouched(VERTICES) && pages_.is_untouched(CORNERS) &&
               pages_.is_untouched(CORNER_NODES);
    }
    // Whether nobody could have changed the corners of a surface, or put others in their place.
    [[nodiscard]] bool has_own_corners(int surface) const
    {
        const int first = flat_->first_corner(surface), end = flat_->end_corner(surface);
        if (pages_.any_written(SURFACES, surface, surface + 1) && first != end &&
            block<surface_t>(SURFACES, surface)->refs != block<listitem>(CORNER_NODES, first))
            return false;
        return !pages_.any_written(CORNER_NODES, first, end) &&
               !pages_.any_written(CORNERS, first, end);
    }
    [[nodiscard]] bool has_own_surfaces() const
    {
        return pages_.is_untouched(SURFACES) && pages_.is_untouched(CORNER_NODES) &&
               pages_.is_untouched(CORNERS);
    }
    void set_flat(const flat_ptr &flat) { flat_ = flat; }
    void give_back() { pages_.give_back(); }

    enum run_t { VERTICES, VERTEX_NODES, SURFACES, SURFACE_NODES, CORNERS, CORNER_NODES };

private:
    template <class T>
    [[nodiscard]] T *block(run_t run, std::size_t i) const
    {
        return static_cast<T *>(pages_.block(run, i));
    }
    [[nodiscard]] listitem *first_of(run_t run, int count) const
    {
        return count > 0 ? block<listitem>(run, 0) : nullptr;
    }
    template <class T>
    [[nodiscard]] flat_array<T *> records(run_t run, int count) const
    {
        auto all = big_vector<T *>(count);
        in_parallel_ranges(count, [&](int begin, int end) {
            for (int i = begin; i < end; ++i)
                all[i] = block<T>(run, i);
        });
        return flat_shared(std::move(all));
    }
    [[nodiscard]] listitem node(run_t elements, run_t nodes, std::size_t i, std::size_t end) const
    {
        return {reinterpret_cast<std::intptr_t>(pages_.block(elements, i)),
                i + 1 < end ? block<listitem>(nodes, i + 1) : nullptr};
    }

    static void write(const void *of, int run, std::size_t first, std::size_t count, char *memory)
    {
        static_cast<const deferred_records *>(of)->write_blocks(static_cast<run_t>(run), first,
                                                                count, memory);
    }
    template <class T, class Make>
    static void write_each(std::size_t first, std::size_t count, char *memory, const Make &make)
    {
        for (std::size_t i = first; i < first + count; ++i, memory += block_size(sizeof(T)))
            *reinterpret_cast<T *>(memory) = make(i);
    }
    void write_blocks(run_t run, std::size_t first, std::size_t count, char *memory) const
    {
        const flat_mesh &flat = *flat_;
        const std::size_t num_vertices = flat.num_vertices(), num_surfaces = flat.num_surfaces();
        switch (run) {
        case VERTICES:
            write_each<vertex>(first, count, memory,
                               [&](std::size_t v) { return vertex_of(flat, v); });
            break;
        case VERTEX_NODES:
            write_each<listitem>(first, count, memory, [&](std::size_t v) {
                return node(VERTICES, VERTEX_NODES, v, num_vertices);
            });
            break;
        case SURFACES:
            write_each<surface_t>(first, count, memory,
                                  [&](std::size_t s) { return with_corners(flat, s); });
            break;
        case SURFACE_NODES:
            write_each<listitem>(first, count, memory, [&](std::size_t s) {
                return node(SURFACES, SURFACE_NODES, s, num_surfaces);
            });
            break;
        case CORNERS:
            write_each<svertex>(first, count, memory, [&](std::size_t c) {
                return svertex{block<vertex>(VERTICES, flat.corner(c)), flat.uv(c).u, flat.uv(c).v};
            });
            break;
        case CORNER_NODES:
            write_corner_nodes(flat, first, count, memory);
            break;
        }
    }
    [[nodiscard]] surface_t with_corners(const flat_mesh &flat, std::size_t s) const
    {
        surface_t surface = surface_of(flat, s);
        surface.num_refs = flat.end_corner(s) - flat.first_corner(s);
        if (surface.num_refs > 0)
            surface.refs = block<listitem>(CORNER_NODES, flat.first_corner(s));
        return surface;
    }
    void write_corner_nodes(const flat_mesh &flat, std::size_t first, std::size_t count,
                            char *memory) const
    {
        const std::vector<std::int32_t> &offsets = *flat.corner_offsets;
        auto end = std::upper_bound(offsets.begin(), offsets.end(), static_cast<int>(first));
        write_each<listitem>(first, count, memory, [&](std::size_t c) {
            while (static_cast<std::size_t>(*end) <= c)
                ++end;
            return node(CORNERS, CORNER_NODES, c, *end);
        });
    }

    flat_ptr flat_;
    deferred_pages pages_;
    flat_array<vertex *> vertex_records_;
    flat_array<surface_t *> surface_records_;
    const listitem *first_vertex_ = nullptr, *first_surface_ = nullptr;
    object_t *object_ = nullptr;
};

namespace {

using set_ptr = std::unique_ptr<deferred_records>;

std::vector<set_ptr> &all_sets()
{
    static std::vector<set_ptr> sets;
    return sets;
}

deferred_records *set_of(const object_t *object)
{
    for (const set_ptr &set : all_sets()) {
        if (set->has_lists_of(object))
            return set.get();
    }
    return nullptr;
}

void make_at_once(object_t *object, flat_mesh *flat)
{
    auto vertices = big_vector<vertex *>(flat->num_vertices());
    auto surfaces = big_vector<surface_t *>(flat->num_surfaces());
    const auto make_vertex = [&](int v, record_maker &maker) {
        return vertices[v] = maker.make(vertex_of(*flat, v));
    };
    const auto make_surface = [&](int s, record_maker &maker) {
        surface_t *surface = surfaces[s] = maker.make(surface_of(*flat, s));
        int corner = flat->first_corner(s);
        listitem *last = nullptr;
        for (const int v : flat->surface_corners(s)) {
            const flat_uv &uv = flat->uv(corner++);
            last = maker.add_corner(surface, last, {vertices[v], uv.u, uv.v});
        }
        return surface;
    };
    list_append_chain(&object->vertices, &object->num_vertices,
                      make_records(flat->num_vertices(), make_vertex));
    list_append_chain(&object->surfaces, &object->num_surfaces,
                      make_records(flat->num_surfaces(), make_surface));
    flat->vertex_records = flat_shared(std::move(vertices));
    flat->surface_records = flat_shared(std::move(surfaces));
}

} // namespace

bool records_can_be_deferred(int num_vertices, int num_surfaces)
{
    return num_vertices > 0 && num_vertices + num_surfaces >= least &&
           deferred_pages::are_possible();
}

bool records_can_be_renewed(int num_vertices, int num_surfaces)
{
    return session().foreign_depth == 0 && records_can_be_deferred(num_vertices, num_surfaces);
}

void object_set_whole(object_t *object, std::shared_ptr<flat_mesh> flat)
{
    const bool before = std::exchange(session().committing, true); // not to be left half done
    object_free_geometry(object);
    // What was written wholly needs no flat mesh any more.
    std::erase_if(all_sets(), [](const set_ptr &set) { return set->are_written(); });
    set_ptr set;
    if (records_can_be_deferred(flat->num_vertices(), flat->num_surfaces()))
        set = std::make_unique<deferred_records>(flat);
    if (set && set->take()) {
        set->link(object, flat.get());
        all_sets().push_back(std::move(set));
    } else {
        make_at_once(object, flat.get());
    }
    flat->whole = true;
    object_mark(object, CHANGED_TOPOLOGY);
    const unsigned missing = flat->normals ? 0U : static_cast<unsigned>(CHANGED_NORMALS);
    state_set_flat(object, std::move(flat), missing);
    session().committing = before;
}

flat_ptr untouched_flat(const object_t *object)
{
    const deferred_records *set = set_of(object);
    if (set == nullptr)
        return nullptr;
    const flat_ptr &flat = state_of(object).flat;
    return flat && set->is_untouched(object, *flat) ? flat : nullptr;
}

const std::vector<vertex *> *untouched_vertices(const object_t *object)
{
    const deferred_records *set = set_of(object);
    return set != nullptr ? set->untouched_vertices() : nullptr;
}

const std::vector<surface_t *> *untouched_surfaces(const object_t *object)
{
    const deferred_records *set = set_of(object);
    return set != nullptr ? set->untouched_surfaces() : nullptr;
}

void object_defer_values(object_t *object, std::shared_ptr<flat_mesh> flat, unsigned aspects)
{
    if (deferred_records *set = set_of(object); set != nullptr)
        set->set_flat(flat);
    object_mark(object, aspects);
    const unsigned marks = state_of(object).marks & ~aspects;
    state_set_flat(object, std::move(flat), marks);
}

void object_write_texture_coords(object_t *object, const flat_ptr &flat,
                                 std::span<const int> surfaces)
{
    deferred_records *set = set_of(object);
    if (set != nullptr && !set->are_lists_of(*flat))
        set = nullptr;
    if (set != nullptr)
        set->set_flat(flat); // for the pages that nobody touched
    if (set != nullptr && set->has_own_surfaces())
        return;
    const auto write = [&](int s) {
        if (set != nullptr && set->has_own_corners(s))
            return;
        int corner = flat->first_corner(s);
        for (svertex *reference : each<svertex>(flat->surface_record(s)->refs)) {
            reference->u = flat->uv(corner).u;
            reference->v = flat->uv(corner++).v;
        }
    };
    const bool all = surfaces.empty();
    in_parallel_ranges(all ? flat->num_surfaces() : static_cast<int>(surfaces.size()),
                       [&](int begin, int end) {
                           for (int i = begin; i < end; ++i)
                               write(all ? i : surfaces[i]);
                       });
}

void object_set_texture_coords(object_t *object, const flat_array<flat_uv> &coords,
                               std::span<const int> surfaces)
{
    auto flat = std::make_shared<flat_mesh>(*object_flat(object));
    flat->texture_coords = coords;
    object_write_texture_coords(object, flat, surfaces);
    object_mark(object, CHANGED_TEXTURE_COORDS);
    state_set_flat(object, std::move(flat), 0);
}

bool object_is_deferred(const object_t *object)
{
    const deferred_records *set = set_of(object);
    if (set == nullptr)
        return false;
    object_state &state = state_of(object);
    state_resolve(object, state);
    return state.flat && (state.marks & CHANGED_TOPOLOGY) == 0 && set->are_lists_of(*state.flat);
}

bool object_free_deferred(object_t *object)
{
    if (!object_is_deferred(object))
        return false;
    deferred_records *set = set_of(object);
    list_forget_all();
    list_prepare_fast(nullptr, 0); // its short cuts may lead there
    object->vertices = object->surfaces = nullptr;
    object->num_vertices = object->num_surfaces = 0;
    set->give_back();
    std::erase_if(all_sets(), [&](const set_ptr &other) { return other.get() == set; });
    return true;
}

deferred_elements::deferred_elements(const object_t *top, bool untouched)
{
    for (const set_ptr &set : all_sets()) {
        object_t *object = set->object();
        if (!state_is_alive(object) || !set->has_lists_of(object) || !object_is_deferred(object))
            continue;
        const object_t *above = object;
        while (above != nullptr && above != top)
            above = above->parent;
        if (above != nullptr && (!untouched || set->has_untouched_corners()))
            sets_.push_back({set.get(), object, state_of(object).flat.get()});
    }
}

void deferred_elements::expect_next(int run) const
{
    next_ = sets_[last_].records->block_at(run, found_.index + 1);
}

deferred_elements::place_t deferred_elements::find(int run, const void *element) const
{
    if (element != nullptr && element == next_) {
        ++found_.index;
        expect_next(run);
        return found_;
    }
    const deferred_pages *owner = sets_.empty() ? nullptr : deferred_pages::owner_of(element);
    if (owner == nullptr)
        return {};
    for (std::size_t i = 0; i < sets_.size(); ++i) {
        if (!sets_[last_].records->hands_out(owner)) {
            last_ = (last_ + 1) % sets_.size();
            continue;
        }
        const int index = sets_[last_].records->index_of(run, element);
        if (index < 0)
            return {};
        found_ = {sets_[last_].object, sets_[last_].flat, index};
        expect_next(run);
        return found_;
    }
    return {};
}

deferred_elements::place_t deferred_elements::find(const vertex *point) const
{
    return find(deferred_records::VERTICES, point);
}

deferred_elements::place_t deferred_elements::find(const surface_t *surface) const
{
    return find(deferred_records::SURFACES, surface);
}

int deferred_records_set_least(int value) { return std::exchange(least, value); }
