#ifndef VESK_DRAW_DRAW_UV_ELEMENTS_GL_H
#define VESK_DRAW_DRAW_UV_ELEMENTS_GL_H

// Surfaces, edges and corners in the window of texture coordinates. They are gathered while they are
// drawn, some thousands at a time: each such step may be the end of a slice, and nothing as large as the
// model is kept for a picture.

#include "draw/draw_device_gl.h"
#include "edit/uv/uv_editor.h"

#include <span>

// The edges of a picture: all of them, or in a quick one some, the borders of islands above all.
class uv_shown_edges {
public:
    explicit uv_shown_edges(const uv_state &state) : state_(state) {}
    uv_shown_edges(const uv_state &state, std::size_t most);

    [[nodiscard]] std::size_t size() const
    {
        return all_ ? state_.islands.edges.size() : some_.size();
    }
    [[nodiscard]] const uv_edge &operator[](std::size_t i) const
    {
        return state_.islands.edges[all_ ? i : static_cast<std::size_t>(some_[i])];
    }
    [[nodiscard]] const uv_state &state() const { return state_; }
    [[nodiscard]] bool is_all() const { return all_; }

private:
    void add_every(std::span<const int> numbers, std::size_t most);

    const uv_state &state_;
    bool all_ = true;
    std::vector<int> some_;
};

// In the units of the coordinates, which the model matrix is for.
void draw_uv_edges(const uv_shown_edges &edges, float scale);

// The colours of the stretch, the overlaps, as the options of the window say. `most` of the surfaces: fewer
// leave gaps. What a worker is at is not drawn yet.
void draw_uv_surfaces(const uv_state &state, std::size_t most);

// The corners; those that are chosen in another colour, and in the other modes alone, when they are few.
void draw_uv_points(const uv_state &state, float scale);
// The picture is finished, or given up.
void draw_uv_points_end();

// How stretched, from -1 (crowded four times or more) over 0 (even) to 1 (thin).
void colour_of_stretch(float share, std::uint8_t rgba[4]);
constexpr float uv_hatched_from = 0.5f; // of the scale

// Diagonal lines; `rising` as a slash.
void draw_hatched(const std::vector<vertex2_t> &triangles, bool rising, bool both,
                  const colour_t &colour);

#endif
