#include "draw/draw_orth_gl.h"

#include "base/prefs.h"
#include "draw/draw_grid_gl.h"
#include "draw/draw_overlay_gl.h"
#include "draw/draw_textures_gl.h"
#include "draw/scene_dots_gl.h"
#include "edit/document/selection_internal.h"
#include "view/overlay.h"
#include "view/shown_elements.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float headlight_diffuse = 0.62f;
constexpr float scene_ambient = 0.5f;
constexpr float darkened = 0.2f; // edges of filled surfaces
constexpr int normal_colour = 0x7CB4F5;

// World to eye: x to the right, y upwards, z toward the viewer, all in pixels from the lower left
// corner. The hidden axis points away from the viewer in the side view.
void set_model_matrix(int view, int height)
{
    const VESKView &record = *vesk_get_view(view);
    const view_axes_t &axes = view_axes[view];
    const double s = record.scale;
    double m[16] = {};
    m[axes.horizontal * 4] = s;
    m[axes.vertical * 4 + 1] = -axis_sign[axes.vertical] * s;
    m[axes.depth * 4 + 2] = view == VIEW_ZY ? -s : s;
    m[12] = static_cast<double>(record.centre[axes.horizontal]) + record.pan[axes.horizontal];
    m[13] =
        height - (static_cast<double>(record.centre[axes.vertical]) + record.pan[axes.vertical]);
    m[15] = 1;
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixd(m);
}

// Planes that hold the whole scene.
void set_projection(const picture_t &picture)
{
    const view_axes_t &axes = view_axes[picture.view];
    const double s = vesk_get_view(picture.view)->scale * (picture.view == VIEW_ZY ? -1.0 : 1.0);
    const scene_t &scene = picture.scene;
    const bool empty = scene.min.x > scene.max.x;
    const double a = empty ? 0 : axis_of(scene.min, axes.depth) * s;
    const double b = empty ? 0 : axis_of(scene.max, axes.depth) * s;
    const double margin = std::max(1.0, std::fabs(b - a) * 0.01);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, picture.width, 0, picture.height, -std::max(a, b) - margin,
            -std::min(a, b) + margin);
}

fill_options_t set_lights()
{
    const float ambient = prefs.orth_headlight != 0 ? scene_ambient : 1.0f;
    const float scene[4] = {ambient, ambient, ambient, 1};
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, scene);
    const float direction[4] = {0, 0, 1, 0};
    const float diffuse[4] = {headlight_diffuse, headlight_diffuse, headlight_diffuse, 1};
    const float none[4] = {0, 0, 0, 1};
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    glLightfv(GL_LIGHT0, GL_POSITION, direction);
    glPopMatrix();
    glLightfv(GL_LIGHT0, GL_DIFFUSE, diffuse);
    glLightfv(GL_LIGHT0, GL_SPECULAR, none);
    glLightfv(GL_LIGHT0, GL_AMBIENT, none);
    const bool lit = prefs.orth_headlight != 0;
    for (GLenum light = GL_LIGHT0; light <= GL_LIGHT7; ++light)
        glDisable(light);
    if (lit)
        glEnable(GL_LIGHT0);
    return {lit ? 1 : 0, false, false, !lit, prefs.orth_textures != 0};
}

void draw_model_edges(const picture_t &picture, bool filled)
{
    const auto width = static_cast<float>(prefs.surface_line_width * picture.scale);
    colour_t colour = colour_of(prefs.col_line, filled ? edge_alpha_filled : edge_alpha_wire);
    if (filled) // dark, or they would not show on lit surfaces of about their colour
        colour = {colour.r * darkened, colour.g * darkened, colour.b * darkened, colour.a};
    if (view_shows_edges(picture.view))
        draw_edges(picture.scene,
                   {colour, width, !filled && prefs.use_rgb_for_orth != 0, false, false});
    draw_line_surfaces(picture.scene, width);
    draw_selected_edges(picture.scene, colour_of(prefs.col_selline),
                        static_cast<float>((filled ? 2.0 : 1.5) * picture.scale));
}

void draw_orthographic_layers(picture_t &picture)
{
    const bool filled = prefs.filled_orth != 0 && picture.layers.fill;
    if (filled) {
        const fill_options_t options = set_lights();
        draw_still_and_moving(picture.scene, overlay().moving, prefs.move_wireframe_orth != 0,
                              [&](const scene_t &scene) {
                                  draw_opaque_surfaces(scene, options);
                                  draw_transparent_surfaces(scene, options);
                              });
        draw_selection_tint(picture.scene);
    }
    finish_layer(picture, draw_layer::fill);
    if (picture.layers.edges)
        draw_model_edges(picture, filled);
    finish_layer(picture, draw_layer::edges);
    draw_vertex_layer(picture, view_shows_vertices(picture.view),
                      prefs.show_selected_vertices != 0);
    if (prefs.show_normals_orth != 0 && slice_draws(slice_step_elements))
        draw_normals(picture.scene, static_cast<float>(prefs.size_show_normals),
                     colour_of(normal_colour));
    finish_layer(picture, draw_layer::vertices);
}

} // namespace

void draw_orthographic_view(picture_t &picture)
{
    glDisable(GL_DEPTH_TEST);
    if (slice_draws(few_elements)) {
        use_pixel_projection(picture.width, picture.height);
        draw_background_image(picture.view, picture.height);
        draw_orth_grid(picture.view);
    }
    glEnable(GL_DEPTH_TEST);
    set_projection(picture);
    set_model_matrix(picture.view, picture.height);
    finish_layer(picture, draw_layer::rest);

    if (picture.layers.boxes_only) {
        if (slice_draws(few_elements))
            draw_bounding_boxes(picture.scene, colour_of(prefs.col_line));
        return;
    }
    draw_thinned(picture, draw_orthographic_layers);
}

void draw_orthographic_overlay(const picture_t &picture)
{
    use_pixel_projection(picture.width, picture.height);
    draw_object_centres(picture.view);
    draw_light_icons(picture.view);
    draw_selection_box(picture.view);
    draw_tool_overlay(picture.view, picture.width, picture.height);
}
