#ifndef VESK_EDIT_MESH_MESH_CHANGE_H
#define VESK_EDIT_MESH_MESH_CHANGE_H

// A change of one object's geometry: computed on its flat mesh, then written back in one pass.
// Vertices are named by their places before the change; new ones follow from num_vertices() on.
// Nothing happens to the object before commit. Colours that are kept with the vertices go along.

#include "base/worker.h"
#include "model/flat_mesh.h"

#include <algorithm>
#include <atomic>
#include <span>
#include <unordered_map>
#include <utility>
#include <vector>

class record_maker;

struct mesh_result {
    std::vector<vertex *> vertices;    // the new ones, in order
    std::vector<surface_t *> surfaces; // the new ones, in order
};

// Numbers of new elements, or the places of the first of each kind.
struct mesh_room {
    int vertices = 0, surfaces = 0, corners = 0;

    mesh_room &operator+=(const mesh_room &more)
    {
        vertices += more.vertices;
        surfaces += more.surfaces;
        corners += more.corners;
        return *this;
    }
};

class mesh_change {
public:
    explicit mesh_change(object_t *object);

    [[nodiscard]] const flat_mesh &before() const { return *before_; }
    // Place of a surface of the object, or -1.
    int index_of(const surface_t *surface);

    // Reserves room for about this many new ones.
    void reserve(std::size_t vertices, std::size_t surfaces, std::size_t corners);

    // Fills room that grow() made, one element behind the other, as the functions below do. Several
    // may write at once into rooms of their own, each on its thread.
    class writer {
    public:
        writer(mesh_change &change, const mesh_room &begin)
            : change_(change), at_(begin), first_vertex_(change.before_->num_vertices())
        {
        }
        [[nodiscard]] const flat_mesh &before() const { return *change_.before_; }
        int add_vertex(const point3_t &position, int like = -1)
        {
            change_.positions_[at_.vertices] = position;
            change_.vertex_likes_[at_.vertices] = like;
            return first_vertex_ + at_.vertices++;
        }
        void add_surface(int like)
        {
            change_.likes_[at_.surfaces] = like;
            change_.first_corners_[at_.surfaces++] = at_.corners;
        }
        void add_corner(int at, flat_uv uv)
        {
            change_.corners_[at_.corners] = at;
            change_.uv_[at_.corners++] = uv;
        }
        // Of the surface begun last.
        void reverse_corners()
        {
            change_.reverse(change_.first_corners_[at_.surfaces - 1], at_.corners);
        }
        void remove_surface(int surface) { change_.gone_surfaces_[surface] = 1; }

    private:
        mesh_change &change_;
        mesh_room at_;
        int first_vertex_;
    };
    // Makes room for so many more behind those that there are, and returns where it begins. All of it is
    // to be filled.
    mesh_room grow(const mesh_room &more);

    // A new vertex; with `like` it takes over that old vertex's other fields. Returns its place.
    int add_vertex(const point3_t &position, int like = -1);
    [[nodiscard]] point3_t position(int at) const;
    // The old and the new ones: the place of the next new one.
    [[nodiscard]] int num_vertices() const
    {
        return before_->num_vertices() + static_cast<int>(positions_.size());
    }

    // Begins a new surface with the properties of the old surface `like` (-1: a new surface's);
    // add_corner then appends to it. Surfaces without corners are not made.
    void add_surface(int like);
    void add_corner(int at, flat_uv uv);
    // Of the surface begun last.
    void set_type(int type);
    void set_material(int material);
    void reverse_corners();
    // The same, but the first corner stays the first.
    void turn_corners();

    // Changes of surfaces that stay: the record, its other corners and all texture coordinates are
    // kept. A corner is named by its place among all corners of before(); several insertions after
    // one corner follow each other in the order of the calls.
    void redirect_corner(int corner, int at);
    void insert_corner_after(int corner, int at, flat_uv uv);
    // However few corners the surface is left with.
    void remove_corner(int corner);
    // Redirects many at once: the vertices of all corners as they will be. Instead of single changes.
    void redirect_corners(std::vector<std::int32_t> &&corners);

    void remove_surface(int surface);
    // The vertex and every reference to it; a surface that is left with fewer than 3 corners by it
    // (2 when it is a line) is removed too.
    void remove_vertex(int at);
    // Vertices whose last surface this change removes are removed with it.
    void remove_unused() { remove_unused_ = true; }

    // Nobody asks for records of before() once this is committed: where the change takes all surfaces away,
    // those of a large object need not be written (model/deferred_records.h).
    void renew_records() { renews_ = true; }

    // Writes it back: notifies only the holders of freed elements, computes no normals. To be
    // called once.
    mesh_result commit();

private:
    struct corner_edit {
        enum kind_t { REDIRECT, INSERT, REMOVE } kind;
        int corner;
        int vertex;
        flat_uv uv;
    };
    // What a new surface has instead of what it would take over.
    struct own_value {
        int surface; // among the new ones
        int value;
    };

    void apply_to_corners();
    // The corners of before() as they will refer: -1 for those that are removed.
    [[nodiscard]] const std::vector<std::int32_t> &corners_after() const
    {
        return corners_after_.empty() ? *before_->corners : corners_after_;
    }
    [[nodiscard]] bool edits_corners() const { return !edits_.empty() || !corners_after_.empty(); }
    void remove_small_surfaces();
    void find_unused();
    void edit_corners(const mesh_result &result);
    void redirect_records(const mesh_result &result);
    void edit_surface(int surface, std::span<const corner_edit> edits, const mesh_result &result,
                      std::vector<listitem *> &nodes) const;
    [[nodiscard]] bool is_old(int v) const { return v >= 0 && v < before_->num_vertices(); }
    [[nodiscard]] bool is_own(const vertex *point) const;
    [[nodiscard]] vertex *vertex_at(int at, const mesh_result &result) const;
    void drop_references() const;
    void unlink();
    void link(mesh_result &result);
    surface_t *make_surface(int index, const mesh_result &result, record_maker &maker) const;
    void set_own_values(const mesh_result &result) const;
    void drop_colours() const;
    void carry_colours(const std::vector<unsigned char> &old) const;
    void reverse(int first, int end);
    [[nodiscard]] int end_of(int made) const;

    // What is known of the lists after the commit becomes the object's flat mesh, so that nobody reads them
    // back. Not where single corners of surfaces that stay come and go.
    [[nodiscard]] bool can_hand_over() const;
    [[nodiscard]] std::shared_ptr<flat_mesh> flat_after();
    void hand_over(const mesh_result &result);
    [[nodiscard]] int num_made() const { return static_cast<int>(likes_.size()); }
    [[nodiscard]] bool can_renew() const;
    [[nodiscard]] flat_array<point3_t> normals_of_vertices() const;
    [[nodiscard]] flat_array<point3_t> normals_of_surfaces() const;
    mesh_result renew();
    void hand_over_surfaces(flat_mesh &flat);
    void hand_over_corners(flat_mesh &flat);
    void number_corners(std::vector<std::int32_t> &corners) const;
    [[nodiscard]] std::vector<flat_surface> attributes_of_new() const;

    object_t *object_;
    flat_ptr before_;
    // of the new vertices
    std::vector<point3_t> positions_;
    std::vector<std::int32_t> vertex_likes_;
    // of the new surfaces: what they are like, where their corners begin
    std::vector<std::int32_t> likes_, first_corners_;
    std::vector<own_value> types_, materials_;
    // of the new corners
    std::vector<std::int32_t> corners_;
    std::vector<flat_uv> uv_;
    std::vector<corner_edit> edits_;
    std::vector<std::int32_t> corners_after_;         // empty while no corner changes
    std::vector<char> gone_vertices_, gone_surfaces_; // empty while none is removed
    std::unordered_map<const surface_t *, int> places_;
    bool remove_unused_ = false;
    bool renews_ = false;
};

// Calls make(element, writer) for each of these surfaces or vertices of the change's object, side by side,
// after it made the room that room_of(element) says for each. go_on(how many are done) is asked between
// pieces of the work; once it answers false the result is false.
template <class RoomOf, class Make, class GoOn>
bool change_each(mesh_change &change, std::span<const int> elements, const RoomOf &room_of,
                 const Make &make, const GoOn &go_on)
{
    constexpr int piece = 16384;
    const auto n = static_cast<int>(elements.size());
    const auto for_each_piece = [&](const auto &work, const std::function<bool()> &goes_on) {
        return in_parallel((n + piece - 1) / piece,
                           [&](int i) { work(i, i * piece, std::min((i + 1) * piece, n)); },
                           goes_on);
    };
    std::vector<mesh_room> rooms((n + piece - 1) / piece);
    for_each_piece(
        [&](int i, int begin, int end) {
            for (int e = begin; e < end; ++e)
                rooms[i] += room_of(elements[e]);
        },
        {});
    mesh_room all;
    for (const mesh_room &room : rooms)
        all += room;
    mesh_room at = change.grow(all);
    for (mesh_room &room : rooms) {
        const mesh_room needed = std::exchange(room, at);
        at += needed;
    }
    std::atomic<int> done = 0;
    return for_each_piece(
        [&](int i, int begin, int end) {
            mesh_change::writer writer(change, rooms[i]);
            for (int e = begin; e < end; ++e)
                make(elements[e], writer);
            done += end - begin;
        },
        [&] { return go_on(done.load()); });
}

// Commits them together: holders of elements are notified once of all freed ones.
std::vector<mesh_result> commit_all(std::vector<mesh_change> &changes);

#endif
