#include "draw/draw_uv_gl.h"

#include "base/prefs.h"
#include "draw/draw_device_gl.h"
#include "draw/draw_overlay_gl.h"
#include "draw/draw_text_gl.h"
#include "draw/draw_textures_gl.h"
#include "edit/uv/uv_measure.h"
#include "view/uv_drag.h"
#include "view/uv_view.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int frame_colour = 0x2A2A2A;
constexpr int checker_colours[2] = {0x626266, 0x6E6E73};
constexpr int checker_fields = 16;
constexpr int axis_colours[2] = {0xF07F76, 0x8CCB6B};
constexpr colour_t rim_colour = {0x14 / 255.0f, 0x14 / 255.0f, 0x14 / 255.0f, 0.85f};
// Stretched: the picture is spread too thin (red) or crowded (blue); overlaps are amber.
constexpr float thin[3] = {0.93f, 0.36f, 0.30f};
constexpr float crowded[3] = {0.30f, 0.52f, 0.95f};
constexpr float even[3] = {0.42f, 0.68f, 0.42f};
constexpr int overlap_colour = 0xE5AC4D;
constexpr float hatched_from = 0.5f; // of the scale: hatching begins
// More than these are drawn with less: no marks on corners that are not chosen by themselves, and
// neither marks nor smoothing while the mouse drags.
constexpr std::size_t many_points = 5000;
constexpr std::size_t many_edges = 12000;

float narrow(double value) { return static_cast<float>(value); }
float interface_scale() { return narrow(view_interface_scale()); }

// ---- the drawing, in texture coordinates; made anew when something changed ----

struct fill_t {
    std::vector<coloured_vertex_t> plain;       // triangles
    std::vector<vertex2_t> thin, crowded, over; // triangles that are hatched
};

struct drawing_t {
    unsigned geometry = ~0u, choice = ~0u;
    uv_shown_stretch stretch = uv_shown_stretch::NONE;
    bool overlaps = false;
    std::vector<vertex2_t> inner, border, chosen_inner, chosen_border;
    std::vector<vertex2_t> points, chosen_points;
    fill_t fill;
};
drawing_t drawing;

void add_line(std::vector<vertex2_t> &out, const uv_mesh &mesh, const uv_edge &edge)
{
    const flat_uv &a = mesh.at[edge.corner], &b = mesh.at[edge.next];
    out.push_back({a.u, a.v});
    out.push_back({b.u, b.v});
}

bool is_chosen(const uv_state &state, const uv_edge &edge)
{
    const auto both = [&](int a, int b) { return state.chosen[a] != 0 && state.chosen[b] != 0; };
    return both(edge.corner, edge.next) || (!edge.is_border() && both(edge.twin, edge.twin_next));
}

void make_edges(const uv_state &state)
{
    for (std::vector<vertex2_t> *lines :
         {&drawing.inner, &drawing.border, &drawing.chosen_inner, &drawing.chosen_border})
        lines->clear();
    for (const uv_edge &edge : state.islands.edges) {
        const bool chosen = is_chosen(state, edge);
        std::vector<vertex2_t> &lines =
            chosen ? (edge.is_border() ? drawing.chosen_border : drawing.chosen_inner)
                   : (edge.is_border() ? drawing.border : drawing.inner);
        add_line(lines, state.mesh, edge);
    }
}

void make_points(const uv_state &state)
{
    drawing.points.clear();
    drawing.chosen_points.clear();
    std::vector<char> known(state.islands.num_points, 0);
    for (std::size_t c = 0; c < state.chosen.size(); ++c) {
        char &seen = known[state.islands.point[c]];
        const bool chosen = state.chosen[c] != 0;
        const vertex2_t at = {state.mesh.at[c].u, state.mesh.at[c].v};
        if (chosen && seen < 2) {
            drawing.chosen_points.push_back(at);
            seen = 2;
        } else if (seen == 0 && state.mode == uv_mode::CORNER) {
            drawing.points.push_back(at);
            seen = 1;
        }
    }
}

// -1 crowded four times or more, 0 even, 1 thin.
float share_of_stretch(const uv_stretch &stretch)
{
    if (!(stretch.area > 0))
        return 1;
    const float area = -std::log2(stretch.area) / 2;
    const float shape = std::log2(std::max(stretch.angle, 1.0f)) / 2;
    if (drawing.stretch == uv_shown_stretch::AREA)
        return std::clamp(area, -1.0f, 1.0f);
    if (drawing.stretch == uv_shown_stretch::SHAPE)
        return std::clamp(shape, 0.0f, 1.0f);
    const float worst = std::fabs(area) >= shape ? area : area < -0.05f ? -shape : shape;
    return std::clamp(worst, -1.0f, 1.0f);
}

void colour_of_stretch(float share, std::uint8_t rgba[4])
{
    const float *to = share < 0 ? crowded : thin;
    for (int i = 0; i < 3; ++i)
        rgba[i] = static_cast<std::uint8_t>(
            std::lround((even[i] + (to[i] - even[i]) * std::fabs(share)) * 255));
    rgba[3] = 150;
}

template <class Add>
void for_triangles(const uv_mesh &mesh, int surface, Add &&add)
{
    const int first = mesh.corners_begin(surface);
    for (int c = first + 1; c + 1 < mesh.corners_end(surface); ++c) {
        for (const int corner : {first, c, c + 1})
            add(mesh.at[corner]);
    }
}

void make_fill(const uv_state &state)
{
    drawing.fill = {};
    const uv_mesh &mesh = state.mesh;
    if (drawing.stretch != uv_shown_stretch::NONE) {
        const std::vector<uv_stretch> stretch =
            uv_measure_stretch(mesh, uv_picture_size().aspect());
        for (int i = 0; i < mesh.num_surfaces(); ++i) {
            const float share = share_of_stretch(stretch[i]);
            coloured_vertex_t vertex = {};
            colour_of_stretch(share, vertex.rgba);
            for_triangles(mesh, i, [&](const flat_uv &p) {
                vertex.x = p.u;
                vertex.y = p.v;
                drawing.fill.plain.push_back(vertex);
                if (std::fabs(share) >= hatched_from)
                    (share < 0 ? drawing.fill.crowded : drawing.fill.thin).push_back({p.u, p.v});
            });
        }
    }
    if (drawing.overlaps) {
        const std::vector<char> over = uv_find_overlaps(mesh);
        for (int i = 0; i < mesh.num_surfaces(); ++i) {
            if (over[i] != 0)
                for_triangles(mesh, i, [&](const flat_uv &p) {
                    drawing.fill.over.push_back({p.u, p.v});
                });
        }
    }
}

void bring_up_to_date(const uv_state &state)
{
    const uv_options &options = uv_view().options;
    const bool geometry = drawing.geometry != state.geometry_version;
    const bool choice = drawing.choice != state.choice_version;
    if (geometry || choice) {
        make_edges(state);
        make_points(state);
    }
    if (geometry || drawing.stretch != options.stretch || drawing.overlaps != options.overlaps) {
        drawing.stretch = options.stretch;
        drawing.overlaps = options.overlaps;
        make_fill(state);
    }
    drawing.geometry = state.geometry_version;
    drawing.choice = state.choice_version;
}

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

// Diagonal lines; `rising` as a slash.
void draw_hatched(const std::vector<vertex2_t> &triangles, bool rising, bool both,
                  const colour_t &colour)
{
    if (triangles.empty())
        return;
    GLubyte pattern[128];
    for (int y = 0; y < 32; ++y) {
        for (int byte = 0; byte < 4; ++byte) {
            unsigned bits = 0;
            for (int bit = 0; bit < 8; ++bit) {
                const int x = byte * 8 + bit;
                const bool slash = (x + (rising ? 32 - y : y)) % 8 < 2;
                const bool other = both && (x + (rising ? y : 32 - y)) % 8 < 2;
                bits |= slash || other ? 0x80u >> bit : 0u;
            }
            pattern[y * 4 + byte] = static_cast<GLubyte>(bits);
        }
    }
    glEnable(GL_POLYGON_STIPPLE);
    glPolygonStipple(pattern);
    draw_array(GL_TRIANGLES, triangles, colour);
    glDisable(GL_POLYGON_STIPPLE);
}

void draw_fill()
{
    const fill_t &fill = drawing.fill;
    draw_coloured(GL_TRIANGLES, fill.plain);
    draw_hatched(fill.thin, false, false, {0, 0, 0, 0.55f});
    draw_hatched(fill.crowded, true, false, {0, 0, 0, 0.55f});
    draw_array(GL_TRIANGLES, fill.over, colour_of(overlap_colour, 0.35f));
    draw_hatched(fill.over, true, true, colour_of(overlap_colour, 0.9f));
}

void draw_lines()
{
    const float s = interface_scale();
    draw_set_line_width(s);
    draw_array(GL_LINES, drawing.inner, colour_of(prefs.uveditor_edgecol, 0.5f));
    draw_set_line_width(1.5f * s);
    draw_array(GL_LINES, drawing.border, colour_of(prefs.uveditor_edgecol));
    draw_set_line_width(s);
    draw_array(GL_LINES, drawing.chosen_inner, colour_of(prefs.uveditor_selectedcol, 0.75f));
    draw_set_line_width(2 * s);
    draw_array(GL_LINES, drawing.chosen_border, colour_of(prefs.uveditor_selectedcol));
    draw_set_line_width(1);
}

void draw_points(const std::vector<vertex2_t> &points, const colour_t &colour)
{
    const float size = std::round(3 * interface_scale());
    glPointSize(size + 2);
    draw_array(GL_POINTS, points, rim_colour);
    glPointSize(size);
    draw_array(GL_POINTS, points, colour);
    glPointSize(1);
}

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
    const float high = shape ? hatched_from : (1 + hatched_from) / 2;
    add_quad(hatch_low, x, y, x + (shape ? 0 : w * (1 - hatched_from) / 2), y + h);
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
    const uv_box box = uv_box_of(state.mesh, std::vector<char>(state.mesh.at.size(), 1));
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

} // namespace

void draw_uv_view(int width, int height)
{
    const uv_state &state = uv_editor();
    bring_up_to_date(state);
    const bool hurries = uv_drag_runs() && state.islands.edges.size() > many_edges;
    frame_begin(texture_coords_view, width, height, colour_of(prefs.uveditor_bgcol),
                prefs.uveditor_antialias != 0 && !hurries);
    glDisable(GL_DEPTH_TEST);
    use_pixel_projection(width, height);
    draw_picture_or_checker(width, height);
    use_texture_coordinates();
    draw_fill();
    draw_lines();
    use_pixels();
    frame_end(texture_coords_view);
    use_pixel_projection(width, height);
    if (!hurries &&
        (state.mode == uv_mode::CORNER || drawing.chosen_points.size() <= many_points)) {
        use_texture_coordinates();
        draw_points(drawing.points, colour_of(prefs.uveditor_edgecol));
        draw_points(drawing.chosen_points, colour_of(prefs.uveditor_selectedcol));
        use_pixels();
    }
    draw_selection_frame();
    draw_axis_lock(width, height);
    const uv_view_t &view = uv_view();
    if (view.band)
        draw_band(view.x0, view.y0, view.x1, view.y1);
    draw_legend(height);
    draw_no_coordinates(state, width);
    draw_empty(state, width, height);
}

void draw_uv_forget()
{
    frame_forget(texture_coords_view);
    drawing = {};
}
