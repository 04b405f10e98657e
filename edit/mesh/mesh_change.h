#ifndef VESK_EDIT_MESH_MESH_CHANGE_H
#define VESK_EDIT_MESH_MESH_CHANGE_H

// A change of one object's geometry: computed on its flat mesh, then written back in one pass.
// Vertices are named by their places before the change; new ones follow from num_vertices() on.
// Nothing happens to the object before commit. Colours that are kept with the vertices go along.

#include "model/flat_mesh.h"

#include <span>
#include <unordered_map>
#include <vector>

class record_maker;

struct mesh_result {
    std::vector<vertex *> vertices;    // the new ones, in order
    std::vector<surface_t *> surfaces; // the new ones, in order
};

class mesh_change {
public:
    explicit mesh_change(object_t *object);

    [[nodiscard]] const flat_mesh &before() const { return *before_; }
    // Place of a surface of the object, or -1.
    int index_of(const surface_t *surface);

    // Reserves room for about this many new ones.
    void reserve(std::size_t vertices, std::size_t surfaces, std::size_t corners);

    // A new vertex; with `like` it takes over that old vertex's other fields. Returns its place.
    int add_vertex(const point3_t &position, int like = -1);
    [[nodiscard]] point3_t position(int at) const;
    // The old and the new ones: the place of the next new one.
    [[nodiscard]] int num_vertices() const
    {
        return before_->num_vertices() + static_cast<int>(vertices_.size());
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

    void remove_surface(int surface);
    // The vertex and every reference to it; a surface that is left with fewer than 3 corners by it
    // (2 when it is a line) is removed too.
    void remove_vertex(int at);
    // Vertices whose last surface this change removes are removed with it.
    void remove_unused() { remove_unused_ = true; }

    // Writes it back: notifies only the holders of freed elements, computes no normals. To be
    // called once.
    mesh_result commit();

private:
    struct made_vertex {
        point3_t position;
        int like;
    };
    struct made_surface {
        int like;
        int type;     // -1: as `like`
        int material; // -1: as `like`
        std::size_t first_corner;
    };
    struct made_corner {
        int vertex;
        flat_uv uv;
    };

    struct corner_edit {
        enum kind_t { REDIRECT, INSERT, REMOVE } kind;
        int corner;
        int vertex;
        flat_uv uv;
    };

    void apply_to_corners();
    // The corners of before() as they will refer: -1 for those that are removed.
    [[nodiscard]] const std::vector<std::int32_t> &corners_after() const
    {
        return edits_.empty() ? *before_->corners : corners_after_;
    }
    void remove_small_surfaces();
    void find_unused();
    void edit_corners(const mesh_result &result);
    void edit_surface(int surface, std::span<const corner_edit> edits, const mesh_result &result,
                      std::vector<listitem *> &nodes) const;
    [[nodiscard]] bool is_old(int v) const { return v >= 0 && v < before_->num_vertices(); }
    [[nodiscard]] bool is_own(const vertex *point) const;
    [[nodiscard]] vertex *vertex_at(int at, const mesh_result &result) const;
    void drop_references() const;
    void unlink();
    void link(mesh_result &result);
    surface_t *make_surface(std::size_t index, const mesh_result &result,
                            record_maker &maker) const;
    void drop_colours() const;
    void carry_colours(const std::vector<unsigned char> &old) const;
    [[nodiscard]] std::size_t end_of(std::size_t made) const;

    object_t *object_;
    flat_ptr before_;
    std::vector<made_vertex> vertices_;
    std::vector<made_surface> surfaces_;
    std::vector<made_corner> corners_;
    std::vector<corner_edit> edits_;
    std::vector<std::int32_t> corners_after_;         // empty without edits
    std::vector<bool> gone_vertices_, gone_surfaces_; // empty while none is removed
    std::unordered_map<const surface_t *, int> places_;
    bool remove_unused_ = false;
};

// Commits them together: holders of elements are notified once of all freed ones.
std::vector<mesh_result> commit_all(std::vector<mesh_change> &changes);

#endif
