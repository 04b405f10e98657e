#ifndef VESK_DRAW_DRAW_SCENE_GL_H
#define VESK_DRAW_DRAW_SCENE_GL_H

// The layers of a view that show the model, from the objects' buffers. The matrices are set by the
// view; nothing here depends on which one it is.

#include "draw/draw_buffers_gl.h"
#include "draw/selection_marks.h"
#include "view/draw_budget.h"

#include <cstddef>
#include <vector>

struct scene_item_t {
    object_t *object;
    const object_buffers_t *buffers;
    const selected_part_t *part; // null: nothing of it is selected
    bool hidden, locked;
    bool outline; // without its surfaces
    int detail;   // 0: the mesh itself, else a level of its coarse lists, or a cloud of points
};
constexpr int cloud_detail =
    num_detail_levels; // of large objects whose coarse lists are not there yet

// Round an item.
struct item_sphere_t {
    point3_t centre;
    float radius;
};

struct scene_t {
    std::vector<scene_item_t> items;         // objects with geometry
    point3_t min, max;                       // of all of them; min above max when there are none
    bool complete = true;                    // false: layouts are still being made
    std::vector<item_sphere_t> spheres = {}; // of the items
    std::vector<std::size_t> large = {};     // items that may be drawn in another detail than 0
    double other_edges = 0;                  // of those that are not
    double num_vertices = 0;                 // of what is not hidden
    std::size_t selected_elements = 0;       // vertices, surfaces and edges of the items' parts
    bool in_motion = false;                  // of many selected elements some are enough
    // Some vertices of the items that are not large, in their colours; what is selected as a whole apart.
    std::vector<coloured_vertex_t> dots = {}, selected_dots = {};
};

// How many elements the scene has in each level of detail, as shares of all; what has no coarse version
// counts in full.
detail_shares_t detail_shares(const scene_t &scene);
// From now on objects with coarse versions are drawn in this level.
void choose_detail(scene_t &scene, int level);

// While the selection follows the mouse: the items that do, or the others.
scene_t items_that_move(const scene_t &scene, bool moving);

// As long as it lives, items are drawn where the mouse has brought them; without a pending
// transform it changes nothing. The model matrix must be current.
class pending_place_t {
public:
    pending_place_t();
    ~pending_place_t();
    pending_place_t(const pending_place_t &) = delete;
    pending_place_t &operator=(const pending_place_t &) = delete;
};

struct fill_options_t {
    int num_lights;
    bool perspective;
    bool specular;  // flat views do without
    bool own_light; // without any light: surfaces in their plain colour
    bool textures;
};

// Surfaces: the opaque ones in any order, then the transparent ones from back to front.
void draw_opaque_surfaces(const scene_t &scene, const fill_options_t &options);
void draw_transparent_surfaces(const scene_t &scene, const fill_options_t &options);

// A light veil over selected surfaces.
void draw_selection_tint(const scene_t &scene);

struct edge_options_t {
    colour_t colour;
    float width;
    bool by_material; // in the colour of the object's surfaces instead
    bool hidden_ones; // the hidden objects, else the visible ones
    bool lines_too;   // line surfaces
};
void draw_edges(const scene_t &scene, const edge_options_t &options);

// Line surfaces alone, in their materials' colours.
void draw_line_surfaces(const scene_t &scene, float width);

// Edges of the selection: the whole of selected objects, and selected surfaces.
void draw_selected_edges(const scene_t &scene, const colour_t &colour, float width);

struct vertex_options_t {
    bool unselected;
    bool selected;
    bool vertex_mode;
    float size;
    bool moving_ones; // those of objects that follow the mouse; vertex mode shows them always
};
void draw_vertices(const scene_t &scene, const vertex_options_t &options);

// Of each surface at its middle, in world units.
void draw_normals(const scene_t &scene, float length, const colour_t &colour);

// Boxes round the visible objects.
void draw_bounding_boxes(const scene_t &scene, const colour_t &colour);

#endif
