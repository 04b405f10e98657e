#ifndef VESK_DRAW_DRAW_DEVICE_GL_H
#define VESK_DRAW_DRAW_DEVICE_GL_H

// The OpenGL device: its abilities, frames with and without smoothing, programs, and small arrays
// of lines, quads and points in window pixels or in the world. Matrices, lights and materials are
// the fixed-function state in every case; programs read it, so that a device without them draws the
// same with less precision.

#ifndef GL_GLEXT_PROTOTYPES
#define GL_GLEXT_PROTOTYPES
#endif
#include <GL/gl.h>
#include <GL/glext.h>

#include <cstdint>
#include <vector>

struct device_caps_t {
    bool known = false;
    bool buffers = false;    // vertex buffer objects (OpenGL 1.5)
    bool own_memory = false; // the processor draws, and buffers can be memory of ours
    bool programs = false;   // GLSL 1.30 in a compatibility context
    int samples = 0;         // of a frame with smoothing; 0: lines are smoothed one by one
};

// Of the current context; looked up once.
const device_caps_t &device_caps();

// For tests and for drivers that misbehave: use no more than buffers, or not even those.
void device_limit(bool programs, bool buffers, bool multisampling);

struct colour_t {
    float r, g, b, a;
};
colour_t colour_of(int rgb, float alpha = 1.0f);
inline void set_colour(const colour_t &c) { glColor4f(c.r, c.g, c.b, c.a); }

// A frame of view `view`: cleared, with a viewport of the whole window. Without smoothing nothing
// is antialiased. frame_end leaves the finished picture in the back buffer, for texts and the swap.
void frame_begin(int view, int width, int height, const colour_t &background, bool smoothing);
void frame_end(int view);
// Leaves a frame that is drawn in slices as it is, and goes on with it.
void frame_pause();
void frame_resume(int view, int width, int height, bool smoothing);
// The view's window is closed; its context, in which other views draw on, is current.
void frame_forget(int view);

// Waits until everything is drawn: for measuring.
double seconds_until_drawn();

// Window pixels, the origin at the top left corner, y downwards.
void use_pixel_projection(int width, int height);

// The program for lit surfaces with the lights that are on; none where there are no programs.
struct lit_options_t {
    bool smooth;
    int num_lights;
    bool perspective;
    float dim; // share of the neutral grey that is mixed in
    bool textured = false;
};
void use_lit_program(const lit_options_t &options);
void use_no_program();

// ---- small arrays ----

struct vertex2_t {
    float x, y;
};
struct coloured_vertex_t {
    float x, y, z;
    std::uint8_t rgba[4];
};

void draw_array(GLenum mode, const std::vector<vertex2_t> &points, const colour_t &colour);
void draw_coloured(GLenum mode, const std::vector<coloured_vertex_t> &points);
void add_quad(std::vector<vertex2_t> &out, float x1, float y1, float x2, float y2);

// The frame of a rectangle, `width` pixels wide on the inside of it.
void add_frame(std::vector<vertex2_t> &out, float x1, float y1, float x2, float y2, float width);

// A disc (or a ring, with an inner radius), as triangles with a soft edge of one pixel.
void draw_disc(float x, float y, float radius, float inner_radius, const colour_t &colour);

// A line of any width with soft edges.
void draw_soft_line(float x1, float y1, float x2, float y2, float width, const colour_t &colour);

void draw_set_line_width(float width);

#endif
