#ifndef VESK_DRAW_DRAW_LAYERS_GL_H
#define VESK_DRAW_DRAW_LAYERS_GL_H

// Shared by the two kinds of view while one picture is drawn.

#include "draw/draw_scene_gl.h"
#include "draw/draw_slices.h"
#include "view/draw_budget.h"

struct picture_t {
    int view;
    int width, height;
    double scale; // of the interface
    scene_t &scene;
    layer_choice_t layers;
    draw_budget *budget;
    layer_costs_t *costs; // what each layer took; null: not measured
    double started;       // of the layer in hand
};

// Ends a layer: while the picture is measured, waits until it is drawn and adds what it took.
void finish_layer(picture_t &picture, draw_layer layer);

// Vertices, of which a quick picture without that layer has the selected ones in vertex mode, or some of
// many: what is selected is never a surprise.
void draw_vertex_layer(const picture_t &picture, bool unselected, bool selected);

// The surfaces of a layer by `draw`; while something moves, that is left out when it is shown as a
// wireframe, or stands where the mouse has brought it.
template <class Draw>
void draw_still_and_moving(const scene_t &scene, bool moving, bool wireframe, Draw &&draw)
{
    if (!moving) {
        draw(scene);
        return;
    }
    draw(items_that_move(scene, false));
    if (wireframe)
        return;
    const pending_place_t place;
    draw(items_that_move(scene, true));
}

constexpr std::uint32_t few_elements = 1000; // of a step that is drawn at once

constexpr float edge_alpha_filled = 0.75f;
constexpr float edge_alpha_wire = 0.8f;

#endif
