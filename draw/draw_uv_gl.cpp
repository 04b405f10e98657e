#include "draw/draw_uv_gl.h"

#include "base/prefs.h"
#include "draw/draw_device_gl.h"
#include "draw/draw_overlay_gl.h"
#include "draw/draw_slices.h"
#include "draw/draw_text_gl.h"
#include "draw/draw_textures_gl.h"
#include "draw/draw_uv_elements_gl.h"
#include "edit/uv/uv_measured.h"
#include "view/interaction.h"
#include "view/uv_view.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

constexpr int frame_colour = 0x2A2A2A;
constexpr int checker_colours[2] = {0x626266, 0x6E6E73};
constexpr int checker_fields = 16;
constexpr int axis_colours[2] = {0xF07F76, 0x8CCB6B};
// With more edges than these a picture is quick first, then drawn in slices; a quick one has no marks on
// corners and no smoothing.
constexpr std::size_t many_edges = 12000;
constexpr std::size_t fewest_quick_edges = 4000;
constexpr double quick_seconds = 0.02; // what the elements of a quick picture may take
constexpr double slice_seconds = 0.018;

float narrow(double value) { return static_cast<float>(value); }
float interface_scale() { return narrow(view_interface_scale()); }

// ---- the picture ----

struct rectangle_t {
    float x0, y0, x1, y1;
};

rectangle_t on_screen(double u0, double v0, double u1, double v1)
{
    const uv_screen_point low = uv_to_screen({narrow(u0), narrow(v0)});
    const uv_screen_point high = uv_to_screen({narrow(u1), narrow(v1)});
    return {std::round(narrow(low.x)), std::round(narrow(high.y)), std::round(narrow(high.x)),
            std::round(narrow(low.y))};
}

void draw_checker(const rectangle_t &square)
{
    std::vector<vertex2_t> dark, light;
    const float width = (square.x1 - square.x0) / checker_fields;
    const float height = (square.y1 - square.y0) / checker_fields;
    add_quad(dark, square.x0, square.y0, square.x1, square.y1);
    for (int row = 0; row < checker_fields; ++row) {
        for (int column = row % 2; column < checker_fields; column += 2) {
            const auto x = static_cast<float>(column), y = static_cast<float>(row);
            add_quad(light, square.x0 + x * width, square.y0 + y * height,
                     square.x0 + (x + 1) * width, square.y0 + (y + 1) * height);
        }
    }
    draw_array(GL_QUADS, dark, colour_of(checker_colours[0]));
    draw_array(GL_QUADS, light, colour_of(checker_colours[1]));
}

VESKImage *shown_picture(const object_t *object)
{
    const uv_options &options = uv_view().options;
    if (options.checker)
        return nullptr;
    if (options.picture >= 0 && options.picture < vesk_get_num_textures())
        return texture_id_to_image(options.picture);
    return object != nullptr ? object_picture(object) : nullptr;
}

// The picture between two coordinates, as the object's repeats and offsets place it.
void draw_picture(double u0, double v0, double u1, double v1, float strength)
{
    const rectangle_t r = on_screen(u0, v0, u1, v1);
    set_colour({strength, strength, strength, 1});
    glBegin(GL_QUADS);
    glTexCoord2d(u0, v0);
    glVertex2f(r.x0, r.y1);
    glTexCoord2d(u1, v0);
    glVertex2f(r.x1, r.y1);
    glTexCoord2d(u1, v1);
    glVertex2f(r.x1, r.y0);
    glTexCoord2d(u0, v1);
    glVertex2f(r.x0, r.y0);
    glEnd();
}

void draw_picture_or_checker(int width, int height)
{
    const rectangle_t square = on_screen(0, 0, 1, 1);
    const object_t *object = uv_picture_object();
    VESKImage *image = shown_picture(object);
    draw_checker(square);
    if (image != nullptr && texture_bind(image)) {
        // Single pixels are seen when they are large.
        const bool large = uv_view().scale > 4 * uv_picture_size().width;
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, large ? GL_NEAREST : GL_LINEAR);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
        if (object != nullptr && object_picture(object) == image)
            texture_set_placement(object->texture_repeat_x, object->texture_repeat_y,
                                  object->texture_offset_x, object->texture_offset_y);
        if (uv_view().options.repeat) {
            const flat_uv low = uv_from_screen(0, height), high = uv_from_screen(width, 0);
            draw_picture(low.u, low.v, high.u, high.v, 0.55f);
        }
        draw_picture(0, 0, 1, 1, 1);
        texture_reset_placement();
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
        texture_unbind();
    }
    std::vector<vertex2_t> frame;
    add_frame(frame, square.x0 - 1, square.y0 - 1, square.x1 + 1, square.y1 + 1, 1);
    draw_array(GL_QUADS, frame, colour_of(frame_colour));
}

// ---- surfaces, lines and points ----

void use_texture_coordinates()
{
    const uv_view_t &view = uv_view();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glTranslated(view.width / 2.0, view.height / 2.0, 0);
    glScaled(view.scale, -uv_scale_v(), 1);
    glTranslated(-view.centre_u, -view.centre_v, 0);
}

void use_pixels() { glLoadIdentity(); }

// ---- over the picture ----

void draw_selection_frame()
{
    const handle_box_t box = uv_handle_box();
    if (!box.valid)
        return;
    draw_box_with_handles(box, 1, colour_of(prefs.uveditor_selectedcol));
}

void draw_axis_lock(int width, int height)
{
    const uv_view_t &view = uv_view();
    if (view.locked_axis < 0)
        return;
    const uv_screen_point p = uv_to_screen(view.lock_point);
    const auto x = narrow(p.x), y = narrow(p.y);
    const colour_t colour = colour_of(axis_colours[view.locked_axis]);
    if (view.locked_axis == 0)
        draw_soft_line(0, y, static_cast<float>(width), y, interface_scale(), colour);
    else
        draw_soft_line(x, 0, x, static_cast<float>(height), interface_scale(), colour);
}

// The legend of the colours of the stretch.
void draw_legend(int height)
{
    const uv_shown_stretch shown = uv_view().options.stretch;
    if (shown == uv_shown_stretch::NONE)
        return;
    const bool shape = shown == uv_shown_stretch::SHAPE; // only even to skewed
    const float s = interface_scale();
    const float x = 12 * s, y = static_cast<float>(height) - 40 * s, w = 150 * s, h = 10 * s;
    std::vector<coloured_vertex_t> bar;
    std::vector<vertex2_t> back, hatch_low, hatch_high;
    add_quad(back, x - 8 * s, y - 22 * s, x + w + 8 * s, y + h + 22 * s);
    draw_array(GL_QUADS, back, {0.12f, 0.12f, 0.13f, 0.8f});
    constexpr int pieces = 24;
    for (int i = 0; i < pieces; ++i) {
        const float from = static_cast<float>(i) / pieces, to = static_cast<float>(i + 1) / pieces;
        coloured_vertex_t v = {};
        colour_of_stretch(shape ? (from + to) / 2 : from + to - 1, v.rgba);
        v.rgba[3] = 255;
        for (const auto &[px, py] : {std::pair(from, 0.0f), {to, 0.0f}, {to, 1.0f}, {from, 1.0f}}) {
            v.x = x + px * w;
            v.y = y + py * h;
            bar.push_back(v);
        }
    }
    draw_coloured(GL_QUADS, bar);
    const float high = shape ? uv_hatched_from : (1 + uv_hatched_from) / 2;
    add_quad(hatch_low, x, y, x + (shape ? 0 : w * (1 - uv_hatched_from) / 2), y + h);
    add_quad(hatch_high, x + w * high, y, x + w, y + h);
    for (std::vector<vertex2_t> *quad : {&hatch_low, &hatch_high})
        *quad = {(*quad)[0], (*quad)[1], (*quad)[2], (*quad)[0], (*quad)[2], (*quad)[3]};
    draw_hatched(hatch_low, true, false, {0, 0, 0, 0.55f});
    draw_hatched(hatch_high, false, false, {0, 0, 0, 0.55f});
    const colour_t text = colour_of(0xE9EAEB);
    const float below = y + h + 14 * s;
    draw_text(x, y - 7 * s,
              shape                             ? "Shape"
              : shown == uv_shown_stretch::AREA ? "Area"
                                                : "Stretch",
              text, atlas_font::bold);
    if (shape) {
        draw_text(x, below, "even", text, atlas_font::regular);
        draw_text(x + w - 44 * s, below, "skewed", text, atlas_font::regular);
        return;
    }
    draw_text(x, below, "crowded", text, atlas_font::regular);
    draw_text(x + w / 2 - 13 * s, below, "even", text, atlas_font::regular);
    draw_text(x + w - 23 * s, below, "thin", text, atlas_font::regular);
}

void draw_empty(const uv_state &state, int width, int height)
{
    if (state.mesh.num_surfaces() > 0)
        return;
    const auto x = static_cast<float>(width) / 2, y = static_cast<float>(height) / 2;
    const float s = interface_scale();
    std::vector<vertex2_t> back;
    add_quad(back, x - 150 * s, y - 28 * s, x + 150 * s, y + 28 * s);
    draw_array(GL_QUADS, back, {0.12f, 0.12f, 0.13f, 0.85f});
    draw_text_centred(x, y - 9 * s, "Nothing is selected", colour_of(0xE9EAEB), atlas_font::bold);
    draw_text_centred(x, y + 10 * s, "Select objects or surfaces in the views.",
                      colour_of(0xA9ADB3), atlas_font::regular);
}

// Without texture coordinates all corners lie on one place.
void draw_no_coordinates(const uv_state &state, int width)
{
    if (state.mesh.num_surfaces() == 0)
        return;
    const uv_box &box = uv_totals_now().all;
    if (box.width() > 0 || box.height() > 0)
        return;
    const float s = interface_scale();
    const auto x = static_cast<float>(width) / 2;
    std::vector<vertex2_t> back;
    add_quad(back, x - 190 * s, 14 * s, x + 190 * s, 44 * s);
    draw_array(GL_QUADS, back, {0.12f, 0.12f, 0.13f, 0.85f});
    draw_text_centred(x, 29 * s, "No texture coordinates yet: choose a projection.",
                      colour_of(0xE9EAEB), atlas_font::regular);
}

// ---- one picture ----

void begin_elements(int width, int height)
{
    glDisable(GL_DEPTH_TEST);
    use_pixel_projection(width, height);
}

void draw_under(int width, int height)
{
    begin_elements(width, height);
    draw_picture_or_checker(width, height);
}

void draw_elements(const uv_shown_edges &edges, std::size_t most_surfaces)
{
    use_texture_coordinates();
    draw_uv_surfaces(edges.state(), most_surfaces);
    draw_uv_edges(edges, interface_scale());
    use_pixels();
}

void draw_points(const uv_state &state, int width, int height)
{
    use_pixel_projection(width, height);
    use_texture_coordinates();
    draw_uv_points(state, interface_scale());
    use_pixels();
}

void draw_over(const uv_state &state, int width, int height)
{
    use_pixel_projection(width, height);
    draw_selection_frame();
    draw_axis_lock(width, height);
    const uv_view_t &view = uv_view();
    if (view.band)
        draw_band(view.x0, view.y0, view.x1, view.y1);
    draw_legend(height);
    draw_no_coordinates(state, width);
    draw_empty(state, width, height);
}

constexpr std::size_t all_of_them = SIZE_MAX;

bool is_smooth() { return prefs.uveditor_antialias != 0; }

// Whether a worker is at the colours of the surfaces; `patience` none: it is not waited for.
bool colours_wait(uv_patience patience)
{
    const uv_options &options = uv_view().options;
    const bool stretch =
        options.stretch != uv_shown_stretch::NONE && uv_stretch_now(patience) == nullptr;
    const bool overlaps = options.overlaps && uv_overlaps_now(patience) == nullptr;
    return stretch || overlaps;
}

void draw_whole(const uv_state &state, int width, int height)
{
    colours_wait(uv_patience::none);
    frame_begin(texture_coords_view, width, height, colour_of(prefs.uveditor_bgcol), is_smooth());
    draw_under(width, height);
    draw_elements(uv_shown_edges(state), all_of_them);
    frame_end(texture_coords_view);
    draw_points(state, width, height);
    draw_uv_points_end();
    draw_over(state, width, height);
}

std::size_t quick_edges = 20000; // of late as many as fit the time

void draw_quickly(const uv_state &state, int width, int height)
{
    colours_wait(uv_patience::waits);
    frame_begin(texture_coords_view, width, height, colour_of(prefs.uveditor_bgcol), false);
    draw_under(width, height);
    const double started = seconds_until_drawn();
    draw_elements(uv_shown_edges(state, quick_edges), quick_edges / 4);
    const double took = std::max(seconds_until_drawn() - started, 1e-4);
    const double fitting =
        static_cast<double>(quick_edges) * std::clamp(quick_seconds / took, 0.5, 2.0);
    quick_edges = std::clamp(static_cast<std::size_t>(fitting), fewest_quick_edges,
                             std::max(state.islands.edges.size() + 1, fewest_quick_edges));
    frame_end(texture_coords_view);
    draw_over(state, width, height);
}

// ---- a picture in slices ----

struct unfinished_t {
    bool begun = false, framed = false; // framed: what is smoothed is in the back buffer
    bool smooth = false;
    int width = 0, height = 0;
    unsigned geometry = 0, choice = 0;
    slice_progress_t elements, points;
};
unfinished_t unfinished;

bool is_current(const uv_state &state, int width, int height)
{
    return unfinished.begun && unfinished.geometry == state.geometry_version &&
           unfinished.choice == state.choice_version && unfinished.width == width &&
           unfinished.height == height;
}

void give_up()
{
    unfinished = {};
    draw_uv_points_end();
}

// False: more is left.
bool draw_more_elements(const uv_state &state, int width, int height)
{
    unfinished_t &now = unfinished;
    const bool begins = !now.begun;
    if (begins) {
        give_up();
        now.begun = true;
        now.smooth = is_smooth();
        now.width = width;
        now.height = height;
        now.geometry = state.geometry_version;
        now.choice = state.choice_version;
        frame_begin(texture_coords_view, width, height, colour_of(prefs.uveditor_bgcol),
                    now.smooth);
        draw_under(width, height);
    } else {
        frame_resume(texture_coords_view, width, height, now.smooth);
        begin_elements(width, height);
    }
    slice_begin(&now.elements, slice_seconds, [] { glFinish(); });
    draw_elements(uv_shown_edges(state), all_of_them);
    if (!slice_end()) {
        frame_pause();
        return false;
    }
    frame_end(texture_coords_view);
    now.framed = true;
    return true;
}

bool draw_more_points(const uv_state &state, int width, int height)
{
    glViewport(0, 0, width, height);
    slice_begin(&unfinished.points, slice_seconds, [] { glFinish(); });
    draw_points(state, width, height);
    return slice_end();
}

} // namespace

bool draw_uv_view(int width, int height, bool in_full)
{
    const uv_state &state = uv_editor();
    give_up();
    if (in_full || state.islands.edges.size() <= many_edges) {
        draw_whole(state, width, height);
        return true;
    }
    draw_quickly(state, width, height);
    return false;
}

bool draw_uv_slice(int width, int height)
{
    const uv_state &state = uv_editor();
    if (!is_current(state, width, height))
        give_up();
    if (colours_wait(uv_patience::waits))
        return false;
    if (!unfinished.framed) {
        draw_more_elements(state, width, height);
        return false;
    }
    if (!draw_more_points(state, width, height))
        return false;
    draw_over(state, width, height);
    give_up();
    return true;
}

void draw_uv_forget()
{
    frame_forget(texture_coords_view);
    give_up();
    uv_measured_forget();
}
