#include "draw/draw_3d_gl.h"

#include "base/prefs.h"
#include "draw/draw_grid_gl.h"
#include "draw/draw_overlay_gl.h"
#include "draw/scene_dots_gl.h"
#include "edit/document/selection_internal.h"
#include "model/bounds.h"
#include "model/each.h"
#include "model/lights.h"
#include "view/axis_cross.h"
#include "view/camera_eye.h"
#include "view/camera_internal.h"
#include "view/overlay.h"
#include "view/shown_elements.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int most_lights = 8;
constexpr float headlight_diffuse = 0.42f;
constexpr float headlight_specular = 0.05f;
constexpr float key_diffuse = 0.50f;
constexpr float key_specular = 0.20f;
constexpr float fill_diffuse = 0.26f;
constexpr float key_diffuse_alone = 0.75f; // without the headlight
constexpr float fill_diffuse_alone = 0.30f;
constexpr float scene_light_diffuse = 0.75f;
constexpr float scene_light_specular = 0.3f;
constexpr float hidden_alpha = 0.3f;
constexpr int normal_colour = 0x7CB4F5;

class light_setter {
public:
    light_setter()
    {
        for (GLenum light = GL_LIGHT0; light <= GL_LIGHT7; ++light)
            glDisable(light);
    }

    void add(const float position[4], float diffuse, float specular)
    {
        if (count_ >= most_lights)
            return;
        const GLenum light = GL_LIGHT0 + static_cast<GLenum>(count_++);
        const float diffuse_colour[4] = {diffuse, diffuse, diffuse, 1};
        const float specular_colour[4] = {specular, specular, specular, 1};
        const float none[4] = {0, 0, 0, 1};
        glEnable(light);
        glLightfv(light, GL_POSITION, position); // through the present model matrix
        glLightfv(light, GL_DIFFUSE, diffuse_colour);
        glLightfv(light, GL_SPECULAR, specular_colour);
        glLightfv(light, GL_AMBIENT, none);
    }

    void add_headlight()
    {
        const float from_viewer[4] = {0, 0, 1, 0};
        glPushMatrix();
        glLoadIdentity();
        add(from_viewer, headlight_diffuse, headlight_specular);
        glPopMatrix();
    }

    [[nodiscard]] int count() const { return count_; }

private:
    int count_ = 0;
};

// The box that the planes of the projection have to hold.
void visible_box(const picture_t &picture, point3_t *min, point3_t *max)
{
    *min = picture.scene.min;
    *max = picture.scene.max;
    if (prefs.grid3d_show != 0) {
        const auto half = static_cast<float>(prefs.grid3d_size / 2);
        bounds_add({-half, 0, -half}, min, max);
        bounds_add({half, 0, half}, min, max);
    }
    if (min->x > max->x) {
        *min = {-1, -1, -1};
        *max = {1, 1, 1};
    }
}

void set_matrices(const picture_t &picture)
{
    point3_t min;
    point3_t max;
    visible_box(picture, &min, &max);
    const projection_t p = camera_projection(min, max);
    const double aspect = static_cast<double>(picture.width) / std::max(picture.height, 1);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    const double top = p.half_height * (p.perspective ? p.near_plane : 1.0);
    if (p.perspective)
        glFrustum(-top * aspect, top * aspect, -top, top, p.near_plane, p.far_plane);
    else
        glOrtho(-top * aspect, top * aspect, -top, top, p.near_plane, p.far_plane);
    double m[16];
    camera_modelview(m);
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixd(m);
}

void draw_axes()
{
    if (prefs.show_axis == 0)
        return;
    const auto size = static_cast<float>(prefs.axis_size);
    std::vector<coloured_vertex_t> ends;
    for (int axis = 0; axis < 3; ++axis) {
        const int rgb = axis_colour(axis);
        coloured_vertex_t end = {0,
                                 0,
                                 0,
                                 {static_cast<std::uint8_t>(rgb >> 16),
                                  static_cast<std::uint8_t>((rgb >> 8) & 0xFF),
                                  static_cast<std::uint8_t>(rgb & 0xFF), 255}};
        ends.push_back(end);
        (axis == 0 ? end.x : axis == 1 ? end.y : end.z) = size;
        ends.push_back(end);
    }
    draw_set_line_width(2.0f);
    draw_coloured(GL_LINES, ends);
}

void draw_ground_step()
{
    if (slice_draws(few_elements))
        draw_ground_grid();
}

void draw_surfaces(picture_t &picture)
{
    const fill_options_t options = {draw_set_lights(), camera_is_perspective(), true, false,
                                    prefs.view3dtextures != 0};
    const auto by_place = [&](auto draw) {
        draw_still_and_moving(picture.scene, overlay().moving, prefs.wireframe_move != 0,
                              [&](const scene_t &scene) { draw(scene, options); });
    };
    by_place(draw_opaque_surfaces);
    draw_ground_step();
    draw_line_surfaces(picture.scene, static_cast<float>(prefs.surface_line_width * picture.scale));
    by_place(draw_transparent_surfaces);
    draw_selection_tint(picture.scene);
}

void draw_wireframe(const picture_t &picture)
{
    draw_ground_step();
    draw_edges(picture.scene,
               {colour_of(prefs.col_line, edge_alpha_wire),
                static_cast<float>(prefs.surface_line_width * picture.scale), true, false, true});
}

// White over a wider black, so that it shows on white. Where edges are dense, the black of one does not hide
// the white of others.
void draw_selection_edges(const picture_t &picture)
{
    glDepthMask(GL_FALSE);
    draw_selected_edges(picture.scene, {0, 0, 0, 0.5f}, static_cast<float>(3.8 * picture.scale));
    glDepthMask(GL_TRUE);
    draw_selected_edges(picture.scene, colour_of(prefs.col_selline),
                        static_cast<float>(1.6 * picture.scale));
}

void draw_model_edges(const picture_t &picture, bool filled)
{
    if (filled && view_shows_edges(VIEW_XYZ))
        draw_edges(picture.scene, {{0, 0, 0, 0.35f},
                                   static_cast<float>(prefs.surface_line_width * picture.scale),
                                   false,
                                   false,
                                   false});
    if (prefs.show_hidden_3d != 0)
        draw_edges(picture.scene, {colour_of(prefs.col_line, hidden_alpha),
                                   static_cast<float>(picture.scale), false, true, true});
    draw_selection_edges(picture);
}

void draw_3d_layers(picture_t &picture)
{
    const bool filled = prefs.view3dmode == 0 && picture.layers.fill;
    if (filled)
        draw_surfaces(picture);
    else
        draw_wireframe(picture);
    if (slice_draws(few_elements))
        draw_axes();
    finish_layer(picture, draw_layer::fill);
    if (picture.layers.edges)
        draw_model_edges(picture, filled);
    finish_layer(picture, draw_layer::edges);
    draw_vertex_layer(picture, view_shows_vertices(VIEW_XYZ), prefs.show_selected_vertices_3d != 0);
    if (prefs.show_3d_normals != 0 && slice_draws(slice_step_elements))
        draw_normals(picture.scene, static_cast<float>(prefs.size_show_normals),
                     colour_of(normal_colour));
    finish_layer(picture, draw_layer::vertices);
}

} // namespace

int draw_set_lights()
{
    const bool headlight = prefs.headlight != 0;
    const float ambient = headlight ? 0.5f : 1.0f;
    const float scene[4] = {ambient, ambient, ambient, 1};
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, scene);
    light_setter lights;
    if (headlight)
        lights.add_headlight();
    std::vector<point3_t> places;
    for (const object_t *light : each<object_t>(world_lights()))
        if (light->visible != 0)
            places.push_back(light->centre);
    if (places.empty()) {
        const float key[4] = {static_cast<float>(prefs.lightx), static_cast<float>(prefs.lighty),
                              static_cast<float>(prefs.lightz), static_cast<float>(prefs.lightw)};
        const float above[4] = {0, 1, 0, 0};
        lights.add(key, headlight ? key_diffuse : key_diffuse_alone, key_specular);
        lights.add(above, headlight ? fill_diffuse : fill_diffuse_alone, 0);
        return lights.count();
    }
    // Several lights share the brightness of one, or the model burns out.
    const float share = 1.0f / std::sqrt(static_cast<float>(places.size()));
    for (const point3_t &place : places) {
        const float position[4] = {place.x, place.y, place.z, 1};
        lights.add(position, scene_light_diffuse * share, scene_light_specular * share);
    }
    return lights.count();
}

void draw_3d_view(picture_t &picture)
{
    set_matrices(picture);
    if (picture.layers.boxes_only) {
        draw_ground_step();
        if (slice_draws(few_elements))
            draw_bounding_boxes(picture.scene, colour_of(prefs.col_line));
        return;
    }
    draw_thinned(picture, draw_3d_layers);
}

void draw_3d_overlay(const picture_t &picture)
{
    use_pixel_projection(picture.width, picture.height);
    draw_object_centres(picture.view);
    draw_light_icons(picture.view);
    draw_tool_overlay(picture.view, picture.width, picture.height);
    draw_axis_cross();
}
