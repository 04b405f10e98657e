#include "draw/draw_marks_gl.h"

#include "base/numbers.h"
#include "base/prefs.h"
#include "draw/draw_device_gl.h"
#include "draw/draw_overlay_gl.h"
#include "draw/draw_text_gl.h"
#include "draw/font_atlas.h"
#include "edit/dimensions.h"
#include "model/vector.h"
#include "view/highlight.h"
#include "view/interaction.h"
#include "view/overlay.h"
#include "view/ruler.h"
#include "view/tool_insert.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace {

constexpr int plate_colour = 0x17181A;
constexpr int plate_text = 0xF2F3F4;
constexpr int mark_colour = 0x6CB2FF;
constexpr int dimension_colour = 0xF2C14E;
constexpr int broken_colour = 0xF2705F;
constexpr colour_t dark = {0, 0, 0, 0.55f};

float scale() { return static_cast<float>(view_interface_scale()); }

// Light over a wider dark line, so that it is seen on every ground.
void draw_mark_line(float x1, float y1, float x2, float y2, float width, const colour_t &colour)
{
    draw_soft_line(x1, y1, x2, y2, (width + 2) * scale(), dark);
    draw_soft_line(x1, y1, x2, y2, width * scale(), colour);
}

// Texts below each other on a plate whose middle is at x, y; inside the view.
void draw_plate(float x, float y, int width, int height, const std::vector<std::string> &texts)
{
    const font_atlas_t &atlas = font_atlas_for(view_interface_scale());
    const float line = 15 * scale();
    float wide = 0;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const atlas_font font = i == 0 ? atlas_font::bold : atlas_font::regular;
        wide = std::max(wide, static_cast<float>(font_text_width(atlas, font, texts[i])));
    }
    const float half_wide = std::round(wide / 2 + 8 * scale());
    const float half_high = std::round(line * static_cast<float>(texts.size()) / 2 + 3 * scale());
    x = std::round(
        std::clamp(x, half_wide, std::max(half_wide, static_cast<float>(width) - half_wide)));
    y = std::round(
        std::clamp(y, half_high, std::max(half_high, static_cast<float>(height) - half_high)));
    std::vector<vertex2_t> plate, frame;
    add_quad(plate, x - half_wide, y - half_high, x + half_wide, y + half_high);
    add_frame(frame, x - half_wide, y - half_high, x + half_wide, y + half_high, 1);
    draw_array(GL_QUADS, plate, colour_of(plate_colour, 0.92f));
    draw_array(GL_QUADS, frame, colour_of(mark_colour));
    float at = y - line * (static_cast<float>(texts.size()) - 1) / 2;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        draw_text_centred(x, at, texts[i], colour_of(plate_text),
                          i == 0 ? atlas_font::bold : atlas_font::regular);
        at += line;
    }
}

// Across the line, at its end.
void draw_end_mark(float x, float y, float dx, float dy, const colour_t &colour)
{
    const float length = std::hypot(dx, dy);
    const float reach = length < 1 ? 0 : 6 * scale() / length;
    const float side_x = length < 1 ? 6 * scale() : -dy * reach, side_y = dx * reach;
    draw_mark_line(x - side_x, y - side_y, x + side_x, y + side_y, 1.5f, colour);
}

// From one leg of the angle to the other.
void draw_arc(const vertex2_t *p, const colour_t &colour)
{
    constexpr int steps = 24;
    const float from = std::atan2(p[0].y - p[1].y, p[0].x - p[1].x);
    const float turn =
        std::remainder(std::atan2(p[2].y - p[1].y, p[2].x - p[1].x) - from, 6.2831853f);
    const float radius = std::min({22 * scale(), std::hypot(p[0].x - p[1].x, p[0].y - p[1].y),
                                   std::hypot(p[2].x - p[1].x, p[2].y - p[1].y)});
    for (int i = 0; i < steps; ++i) {
        const float a = from + turn * static_cast<float>(i) / steps;
        const float b = from + turn * static_cast<float>(i + 1) / steps;
        draw_soft_line(p[1].x + std::cos(a) * radius, p[1].y + std::sin(a) * radius,
                       p[1].x + std::cos(b) * radius, p[1].y + std::sin(b) * radius, 1.5f * scale(),
                       colour);
    }
}

void draw_ruler(int view, int width, int height)
{
    const ruler_t &laid = ruler();
    vertex2_t p[3] = {};
    const std::size_t n = laid.points.size();
    for (std::size_t i = 0; i < n; ++i) {
        if (!overlay_position(laid.points[i], view, &p[i].x, &p[i].y))
            return;
    }
    const colour_t colour = colour_of(prefs.col_foreground);
    for (std::size_t i = 0; i + 1 < n; ++i)
        draw_mark_line(p[i].x, p[i].y, p[i + 1].x, p[i + 1].y, 1.5f, colour);
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t other = i == 0 ? (n > 1 ? 1 : 0) : i - 1;
        draw_end_mark(p[i].x, p[i].y, p[i].x - p[other].x, p[i].y - p[other].y, colour);
    }
    if (n < 2)
        return;
    // Beyond the second end of the line; of an angle beside the corner, away from the legs.
    float x = p[1].x, y = p[1].y + (p[1].y > p[0].y ? 30 : -30) * scale();
    if (n == 3) {
        draw_arc(p, colour);
        x = p[1].x;
        y = p[1].y + (p[0].y + p[2].y > 2 * p[1].y ? -24 : 24) * scale();
    }
    draw_plate(x, y, width, height, ruler_texts(laid));
}

void draw_point_mark(float x, float y, const colour_t &colour)
{
    const float half = std::round(3 * scale());
    std::vector<vertex2_t> rim, body;
    add_quad(rim, x - half - 1, y - half - 1, x + half + 1, y + half + 1);
    add_quad(body, x - half, y - half, x + half, y + half);
    draw_array(GL_QUADS, rim, colour_of(0x141414));
    draw_array(GL_QUADS, body, colour);
}

// Lengths that objects keep.
void draw_dimensions(int view, int width, int height)
{
    const colour_t colour = colour_of(dimension_colour);
    for (const dimension_t &line : dimensions_shown()) {
        float x1 = 0, y1 = 0, x2 = 0, y2 = 0;
        if (!overlay_position(line.a->position, view, &x1, &y1) ||
            !overlay_position(line.b->position, view, &x2, &y2) ||
            std::hypot(x2 - x1, y2 - y1) < 12 * scale())
            continue;
        draw_mark_line(x1, y1, x2, y2, 1, colour);
        draw_end_mark(x1, y1, x1 - x2, y1 - y2, colour);
        draw_end_mark(x2, y2, x2 - x1, y2 - y1, colour);
        char text[16];
        *write_g(text,
                 static_cast<float>(point_length(point_sub(line.b->position, line.a->position)))) =
            '\0';
        draw_plate((x1 + x2) / 2, (y1 + y2) / 2, width, height, {text});
    }
}

void draw_insert_marks(int view)
{
    for (const insert_mark_t &mark : insert_marks()) {
        float x1 = 0, y1 = 0, x2 = 0, y2 = 0, x = 0, y = 0;
        if (!overlay_position(mark.from, view, &x1, &y1) ||
            !overlay_position(mark.to, view, &x2, &y2) || !overlay_position(mark.at, view, &x, &y))
            continue;
        draw_mark_line(x1, y1, x2, y2, 2, colour_of(mark_colour));
        draw_point_mark(x, y, colour_of(prefs.col_selvert));
    }
}

// Of what a click would take. Parts behind the viewer are left out.
void draw_highlight(int view)
{
    const highlight_t *lit = highlight_in(view);
    if (lit == nullptr)
        return;
    const colour_t colour = colour_of(mark_colour);
    std::vector<vertex2_t> faces;
    for (size_t i = 0; i + 2 < lit->triangles.size(); i += 3) {
        vertex2_t p[3] = {};
        bool before = true;
        for (size_t k = 0; k < 3; ++k)
            before = overlay_position(lit->triangles[i + k], view, &p[k].x, &p[k].y) && before;
        if (before)
            faces.insert(faces.end(), p, p + 3);
    }
    if (!faces.empty())
        draw_array(GL_TRIANGLES, faces, colour_of(mark_colour, 0.22f));
    std::vector<vertex2_t> lines;
    for (const lit_segment_t &segment : lit->segments) {
        vertex2_t p[2] = {};
        if (overlay_position(segment.from, view, &p[0].x, &p[0].y) &&
            overlay_position(segment.to, view, &p[1].x, &p[1].y))
            lines.insert(lines.end(), p, p + 2);
    }
    for (const bool rim : {true, false}) {
        draw_set_line_width((rim ? 4.0f : 2.0f) * scale());
        draw_array(GL_LINES, lines, rim ? dark : colour);
    }
    const float half = std::round(4 * scale());
    std::vector<vertex2_t> rims, bodies;
    for (const point3_t &point : lit->points) {
        float x = 0, y = 0;
        if (!overlay_position(point, view, &x, &y))
            continue;
        add_quad(rims, x - half - 1, y - half - 1, x + half + 1, y + half + 1);
        add_quad(bodies, x - half, y - half, x + half, y + half);
    }
    draw_array(GL_QUADS, rims, colour_of(0x141414));
    draw_array(GL_QUADS, bodies, colour);
}

void draw_lines(const std::vector<point3_t> &ends, int view, const colour_t &colour)
{
    for (std::size_t i = 0; i + 1 < ends.size(); i += 2) {
        float x1 = 0, y1 = 0, x2 = 0, y2 = 0;
        if (overlay_position(ends[i], view, &x1, &y1) &&
            overlay_position(ends[i + 1], view, &x2, &y2))
            draw_mark_line(x1, y1, x2, y2, 1.5f, colour);
    }
}

// With an arrow to the side that stays.
void draw_ruled_line(const ruled_line_t &line)
{
    const colour_t colour = colour_of(prefs.col_foreground);
    draw_mark_line(line.x0, line.y0, line.x1, line.y1, 1.5f, colour);
    const float dx = line.x1 - line.x0, dy = line.y1 - line.y0, length = std::hypot(dx, dy);
    draw_end_mark(line.x0, line.y0, dx, dy, colour);
    draw_end_mark(line.x1, line.y1, dx, dy, colour);
    if (line.kept == 0 || length < 1)
        return;
    const float reach = static_cast<float>(line.kept) * 16 * scale() / length;
    const float side_x = dy * reach, side_y = -dx * reach;
    const float x = (line.x0 + line.x1) / 2, y = (line.y0 + line.y1) / 2;
    const float tip_x = x + side_x, tip_y = y + side_y;
    draw_mark_line(x, y, tip_x, tip_y, 1.5f, colour);
    for (const float turn : {0.4f, -0.4f})
        draw_mark_line(tip_x, tip_y, tip_x - 0.4f * side_x - turn * side_y,
                       tip_y - 0.4f * side_y + turn * side_x, 1.5f, colour);
}

void draw_cut(int view)
{
    const cut_marks_t &marks = cut_marks();
    draw_lines(marks.lines, view, colour_of(mark_colour));
    draw_lines(marks.broken, view, colour_of(broken_colour));
    if (marks.ruled.view == view)
        draw_ruled_line(marks.ruled);
    for (const point3_t &point : marks.points) {
        float x = 0, y = 0;
        if (overlay_position(point, view, &x, &y))
            draw_point_mark(x, y, colour_of(prefs.col_selvert));
    }
}

} // namespace

void draw_tool_marks(int view, int width, int height)
{
    draw_dimensions(view, width, height);
    draw_highlight(view);
    draw_cut(view);
    draw_insert_marks(view);
    draw_ruler(view, width, height);
}
