#ifndef VESK_DRAW_DRAW_OVERLAY_GL_H
#define VESK_DRAW_DRAW_OVERLAY_GL_H

// Everything over the model, in window pixels: the selection's box with its handles, the icons of
// lights, object centres, the axis cross.

#include "draw/draw_device_gl.h"
#include "view/handles.h"

// Window position of a point, on the middle of a pixel; false when it lies behind the viewer.
bool overlay_position(const point3_t &point, int view, float *x, float *y);

// Of an orthographic view: box and handles of the selection, drawn outside its true bounds.
void draw_selection_box(int view);

// A box with its handles, in pixels of the present window.
void draw_box_with_handles(const handle_box_t &box, float width, const colour_t &colour);

// The marks of a running tool: rubber band, preview of what it makes, the axis it is locked to.
void draw_tool_overlay(int view, int width, int height);

// Icons of the lights, and the crosses of object centres while they are shown. Any view.
void draw_light_icons(int view);
void draw_object_centres(int view);

void draw_axis_cross();

// A rubber band between two places: white over a wider black; dashed, when it is drawn to the left
// and takes what it touches.
void draw_band(int from_x, int from_y, int to_x, int to_y);

#endif
