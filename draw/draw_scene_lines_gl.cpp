#include "draw/draw_scene_gl.h"
#include "model/vector.h"

namespace {

// Between each two of the points.
void draw_thin_lines(const std::vector<point3_t> &ends, const colour_t &colour)
{
    if (ends.empty())
        return;
    set_colour(colour);
    draw_set_line_width(1.0f);
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(3, GL_FLOAT, 0, ends.data());
    glDrawArrays(GL_LINES, 0, static_cast<GLsizei>(ends.size()));
    glDisableClientState(GL_VERTEX_ARRAY);
}

} // namespace

void draw_normals(const scene_t &scene, float length, const colour_t &colour)
{
    std::vector<point3_t> ends;
    for (const scene_item_t &item : scene.items) {
        if (item.hidden)
            continue;
        const flat_mesh &flat = *item.buffers->flat;
        for (int surface = 0; surface < flat.num_surfaces(); ++surface) {
            const std::span<const std::int32_t> corners = flat.surface_corners(surface);
            if (corners.size() < 3)
                continue;
            point3_t middle = {0, 0, 0};
            for (const std::int32_t corner : corners)
                middle = point_add(middle, flat.position(corner));
            middle = point_scale(middle, 1.0f / static_cast<float>(corners.size()));
            ends.push_back(middle);
            ends.push_back(point_add(middle, point_scale(flat.face_normal(surface), length)));
        }
    }
    draw_thin_lines(ends, colour);
}

void draw_bounding_boxes(const scene_t &scene, const colour_t &colour)
{
    constexpr int box_edges[24] = {0, 1, 2, 3, 4, 5, 6, 7, 0, 2, 1, 3,
                                   4, 6, 5, 7, 0, 4, 1, 5, 2, 6, 3, 7};
    std::vector<point3_t> ends;
    for (const scene_item_t &item : scene.items) {
        if (item.hidden)
            continue;
        const point3_t &a = item.buffers->min;
        const point3_t &b = item.buffers->max;
        for (const int corner : box_edges)
            ends.push_back({(corner & 1) != 0 ? b.x : a.x, (corner & 2) != 0 ? b.y : a.y,
                            (corner & 4) != 0 ? b.z : a.z});
    }
    draw_thin_lines(ends, colour);
}
