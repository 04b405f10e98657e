#include "draw/draw_uv_elements_gl.h"

#include "base/prefs.h"
#include "draw/draw_slices.h"
#include "edit/uv/uv_measured.h"
#include "view/uv_view.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

constexpr colour_t rim_colour = {0x14 / 255.0f, 0x14 / 255.0f, 0x14 / 255.0f, 0.85f};
// Stretched: the picture is spread too thin (red) or crowded (blue); overlaps are amber.
constexpr float thin[3] = {0.93f, 0.36f, 0.30f};
constexpr float crowded[3] = {0.30f, 0.52f, 0.95f};
constexpr float even[3] = {0.42f, 0.68f, 0.42f};
constexpr int overlap_colour = 0xE5AC4D;
constexpr colour_t hatching = {0, 0, 0, 0.55f};
constexpr std::size_t many_points = 5000; // not marked, unless corners are what is chosen
constexpr std::size_t edges_a_step = slice_step_elements / 2;
constexpr std::size_t surfaces_a_step = slice_step_elements / 6;
// Pixels that a step covers: elements may be as large as the window, and many.
constexpr double pixels_of_lines = 1.5e5, pixels_of_surfaces = 3e6;
constexpr double pixels_of_quick_lines = 2e6, pixels_of_quick_surfaces = 5e6;
constexpr std::size_t corners_a_step = 2 * std::size_t{slice_step_elements};

// Calls draw(first, end) for the steps of a pass that are to be drawn now.
template <class Draw>
void in_steps(std::size_t count, std::size_t a_step, Draw &&draw)
{
    slice_part_t part;
    if (!part.draws())
        return;
    for (std::size_t first = 0; first < count; first += a_step)
        if (slice_draws(slice_step_elements))
            draw(first, std::min(first + a_step, count));
}

// What an element covers of the window, at most: all of it.
float clipped_length(float a, float b, double scale, int side)
{
    const double pixels = std::fabs(double{a} - b) * scale;
    return pixels < side ? static_cast<float>(pixels) : static_cast<float>(side);
}

// How many of `count` elements cover about so many pixels, by some of them; at most `most`.
template <class Pixels>
std::size_t as_many_as_cover(double pixels, std::size_t count, std::size_t most, Pixels &&pixels_of)
{
    constexpr std::size_t samples = 500;
    const std::size_t stride = count / samples + 1;
    double sum = 0;
    std::size_t looked_at = 0;
    for (std::size_t i = 0; i < count; i += stride, ++looked_at)
        sum += pixels_of(i);
    const double fitting = sum > 0 ? pixels * static_cast<double>(looked_at) / sum : 1e9;
    return static_cast<std::size_t>(std::clamp(fitting, 8.0, static_cast<double>(most)));
}

vertex2_t shown_at(const uv_mesh &mesh, int corner)
{
    const flat_uv at = uv_shown_at(uv_view(), mesh, corner);
    return {at.u, at.v};
}

// Width and height of the box of two corners, in the window.
vertex2_t covered(const uv_mesh &mesh, int a, int b)
{
    const uv_view_t &view = uv_view();
    const flat_uv &p = mesh.at[a], &q = mesh.at[b];
    return {clipped_length(p.u, q.u, view.scale, view.width),
            clipped_length(p.v, q.v, uv_scale_v(), view.height)};
}

// ---- edges ----

float pixels_of(const uv_mesh &mesh, const uv_edge &edge)
{
    const auto [w, h] = covered(mesh, edge.corner, edge.next);
    return w + h;
}

bool is_chosen(const uv_state &state, const uv_edge &edge)
{
    const auto both = [&](int a, int b) { return state.chosen[a] != 0 && state.chosen[b] != 0; };
    return both(edge.corner, edge.next) || (!edge.is_border() && both(edge.twin, edge.twin_next));
}

void draw_some_edges(const uv_shown_edges &edges, bool border, bool chosen, float width,
                     const colour_t &colour)
{
    const uv_state &state = edges.state();
    const bool none = state.num_chosen == 0, all = state.num_chosen == state.mesh.num_corners();
    if (chosen ? none : all && !none)
        return;
    draw_set_line_width(width);
    std::vector<vertex2_t> lines;
    const std::size_t a_step =
        as_many_as_cover(pixels_of_lines, edges.size(), edges_a_step,
                         [&](std::size_t i) { return pixels_of(state.mesh, edges[i]); });
    in_steps(edges.size(), a_step, [&](std::size_t first, std::size_t end) {
        lines.clear();
        for (std::size_t i = first; i < end; ++i) {
            const uv_edge &edge = edges[i];
            if (edge.is_border() != border || (!none && !all && is_chosen(state, edge) != chosen))
                continue;
            lines.push_back(shown_at(state.mesh, edge.corner));
            lines.push_back(shown_at(state.mesh, edge.next));
        }
        draw_array(GL_LINES, lines, colour);
    });
}

// ---- surfaces ----

float share_of_stretch(const uv_stretch &stretch, uv_shown_stretch what)
{
    if (!(stretch.area > 0))
        return 1;
    const float area = -std::log2(stretch.area) / 2;
    const float shape = std::log2(std::max(stretch.angle, 1.0f)) / 2;
    if (what == uv_shown_stretch::AREA)
        return std::clamp(area, -1.0f, 1.0f);
    if (what == uv_shown_stretch::SHAPE)
        return std::clamp(shape, 0.0f, 1.0f);
    const float worst = std::fabs(area) >= shape ? area : area < -0.05f ? -shape : shape;
    return std::clamp(worst, -1.0f, 1.0f);
}

template <class Add>
void for_triangles(const uv_mesh &mesh, int surface, Add &&add)
{
    const int first = mesh.corners_begin(surface);
    for (int c = first + 1; c + 1 < mesh.corners_end(surface); ++c) {
        for (const int corner : {first, c, c + 1})
            add(shown_at(mesh, corner));
    }
}

// Every stride-th surface.
struct some_surfaces {
    const uv_mesh &mesh;
    std::size_t stride;
    std::size_t a_step;

    // Calls add(surface) for those of a step, then draw().
    template <class Add, class Draw>
    void pass(Add &&add, Draw &&draw) const
    {
        const std::size_t count =
            (static_cast<std::size_t>(mesh.num_surfaces()) + stride - 1) / stride;
        in_steps(count, a_step, [&](std::size_t first, std::size_t end) {
            for (std::size_t i = first; i < end; ++i)
                add(static_cast<int>(i * stride));
            draw();
        });
    }

    // The triangles of those that are wanted.
    template <class Wanted, class Draw>
    void triangles(Wanted &&wanted, Draw &&draw) const
    {
        std::vector<vertex2_t> found;
        pass(
            [&](int surface) {
                if (wanted(surface))
                    for_triangles(mesh, surface, [&](const vertex2_t &p) { found.push_back(p); });
            },
            [&] {
                draw(found);
                found.clear();
            });
    }
};

void draw_stretch(const some_surfaces &surfaces, const std::vector<uv_stretch> &stretch,
                  uv_shown_stretch what)
{
    std::vector<coloured_vertex_t> plain;
    surfaces.pass(
        [&](int surface) {
            coloured_vertex_t vertex = {};
            colour_of_stretch(share_of_stretch(stretch[surface], what), vertex.rgba);
            for_triangles(surfaces.mesh, surface, [&](const vertex2_t &p) {
                vertex.x = p.x;
                vertex.y = p.y;
                plain.push_back(vertex);
            });
        },
        [&] {
            draw_coloured(GL_TRIANGLES, plain);
            plain.clear();
        });
    for (const bool rising : {false, true}) {
        surfaces.triangles(
            [&](int surface) {
                const float share = share_of_stretch(stretch[surface], what);
                return std::fabs(share) >= uv_hatched_from && (share < 0) == rising;
            },
            [&](const std::vector<vertex2_t> &found) {
                draw_hatched(found, rising, false, hatching);
            });
    }
}

void draw_overlaps(const some_surfaces &surfaces, const std::vector<char> &over)
{
    const auto lies_over = [&](int surface) { return over[surface] != 0; };
    surfaces.triangles(lies_over, [](const std::vector<vertex2_t> &found) {
        draw_array(GL_TRIANGLES, found, colour_of(overlap_colour, 0.35f));
    });
    surfaces.triangles(lies_over, [](const std::vector<vertex2_t> &found) {
        draw_hatched(found, true, true, colour_of(overlap_colour, 0.9f));
    });
}

// ---- points ----

enum point_mark : char { NO_POINT, PLAIN_POINT, CHOSEN_POINT };

// The corner that each point is drawn at.
struct point_marks_t {
    std::vector<char> marks; // of each corner
    std::vector<char> seen;  // of each point, while they are found
    std::size_t num_chosen = 0;

    void find(const uv_state &state, std::size_t first, std::size_t end)
    {
        if (first == 0) {
            *this = {};
            marks.assign(state.chosen.size(), NO_POINT);
            seen.assign(state.islands.num_points, NO_POINT);
        }
        for (std::size_t c = first; c < end; ++c) {
            char &known = seen[state.islands.point[c]];
            const bool chosen = state.chosen[c] != 0;
            if (chosen && known != CHOSEN_POINT) {
                marks[c] = known = CHOSEN_POINT;
                ++num_chosen;
            } else if (known == NO_POINT && state.mode == uv_mode::CORNER) {
                marks[c] = known = PLAIN_POINT;
            }
        }
    }
};

point_marks_t points; // while they are drawn

void draw_marked(const uv_state &state, point_mark wanted, float size, const colour_t &colour)
{
    std::vector<vertex2_t> found;
    glPointSize(size);
    in_steps(points.marks.size(), corners_a_step, [&](std::size_t first, std::size_t end) {
        found.clear();
        for (std::size_t c = first; c < end; ++c) {
            if (points.marks[c] == wanted)
                found.push_back(shown_at(state.mesh, static_cast<int>(c)));
        }
        draw_array(GL_POINTS, found, colour);
    });
    glPointSize(1);
}

} // namespace

uv_shown_edges::uv_shown_edges(const uv_state &state, std::size_t most) : state_(state)
{
    const std::size_t count = state.islands.edges.size();
    most = as_many_as_cover(pixels_of_quick_lines, count, most, [&](std::size_t i) {
        return pixels_of(state.mesh, state.islands.edges[i]);
    });
    all_ = count <= most;
    if (all_)
        return;
    const std::size_t stride = count / most + 1;
    for (std::size_t i = 0; i < count; i += stride)
        some_.push_back(static_cast<int>(i));
    const std::vector<int> &borders = state.islands.borders;
    if (borders.empty())
        return;
    std::erase_if(some_, [&](int i) { return state.islands.edges[i].is_border(); });
    const std::size_t border_stride = borders.size() / most + 1;
    for (std::size_t i = 0; i < borders.size(); i += border_stride)
        some_.push_back(borders[i]);
}

void draw_uv_edges(const uv_shown_edges &edges, float scale)
{
    draw_some_edges(edges, false, false, scale, colour_of(prefs.uveditor_edgecol, 0.5f));
    draw_some_edges(edges, true, false, 1.5f * scale, colour_of(prefs.uveditor_edgecol));
    draw_some_edges(edges, false, true, scale, colour_of(prefs.uveditor_selectedcol, 0.75f));
    draw_some_edges(edges, true, true, 2 * scale, colour_of(prefs.uveditor_selectedcol));
    draw_set_line_width(1);
}

void draw_uv_surfaces(const uv_state &state, std::size_t most)
{
    const uv_options &options = uv_view().options;
    const auto count = static_cast<std::size_t>(state.mesh.num_surfaces());
    if (options.stretch == uv_shown_stretch::NONE && !options.overlaps)
        return;
    const auto as_many = [&](double pixels, std::size_t limit) {
        return as_many_as_cover(pixels, count, limit, [&](std::size_t i) {
            const int first = state.mesh.corners_begin(static_cast<int>(i));
            const auto [w, h] = covered(state.mesh, first, first + 2);
            return w * h;
        });
    };
    if (most < count)
        most = as_many(pixels_of_quick_surfaces, most);
    const some_surfaces surfaces = {state.mesh, most >= count ? 1 : count / most + 1,
                                    as_many(pixels_of_surfaces, surfaces_a_step)};
    if (options.stretch != uv_shown_stretch::NONE) {
        if (const auto *stretch = uv_stretch_now(uv_patience::waits))
            draw_stretch(surfaces, *stretch, options.stretch);
    }
    if (options.overlaps) {
        if (const auto *over = uv_overlaps_now(uv_patience::waits))
            draw_overlaps(surfaces, *over);
    }
}

void draw_uv_points(const uv_state &state, float scale)
{
    if (state.mode != uv_mode::CORNER && state.num_chosen == 0)
        return;
    in_steps(state.chosen.size(), 8 * corners_a_step,
             [&](std::size_t first, std::size_t end) { points.find(state, first, end); });
    if (state.mode != uv_mode::CORNER && points.num_chosen > many_points)
        return;
    const float size = std::round(3 * scale);
    for (const point_mark mark : {PLAIN_POINT, CHOSEN_POINT}) {
        const colour_t colour =
            colour_of(mark == CHOSEN_POINT ? prefs.uveditor_selectedcol : prefs.uveditor_edgecol);
        draw_marked(state, mark, size + 2, rim_colour);
        draw_marked(state, mark, size, colour);
    }
}

void draw_uv_points_end() { points = {}; }

void colour_of_stretch(float share, std::uint8_t rgba[4])
{
    const float *to = share < 0 ? crowded : thin;
    for (int i = 0; i < 3; ++i)
        rgba[i] = static_cast<std::uint8_t>(
            std::lround((even[i] + (to[i] - even[i]) * std::fabs(share)) * 255));
    rgba[3] = 150;
}

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
