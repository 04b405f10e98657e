#include "draw/thumbnail_gl.h"

#include "base/atomic_file.h"
#include "base/command_result.h"
#include "base/command_row.h"
#include "base/image_png.h"
#include "base/messages.h"
#include "draw/draw_3d_gl.h"
#include "draw/draw_device_gl.h"
#include "draw/offscreen_gl.h"
#include "draw/scene_gather_gl.h"
#include "model/vector.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace {

constexpr int smallest = 16;
constexpr int largest = 4096;
constexpr double half_angle_tangent = 0.26; // of the viewer's field, about 30 degrees in all
constexpr double filled = 0.9;              // of the picture
// Neither white nor dark models drown in it, and grey ones have another hue.
constexpr colour_t ground = {0.50f, 0.56f, 0.62f, 1};
constexpr point3_t from_viewer = {0.52f, 0.43f, 0.74f}; // right, above and in front

struct looks_t {
    point3_t right, up, back; // unit, of the viewer
    point3_t centre;          // what it looks at
    double distance;
    double near_plane, far_plane;
};

point3_t unit(const point3_t &v) { return point_scale(v, static_cast<float>(1 / point_length(v))); }

// The most that anything reaches in a direction that opens with the distance: a point is inside the
// picture's side while its reach is no more than the viewer's distance times the side's slope.
struct reach_t {
    double least = std::numeric_limits<double>::max(), most = -least;
    void add(double value)
    {
        least = std::min(least, value);
        most = std::max(most, value);
    }
};

// Calls visit(point) for every vertex that is seen.
template <class Visit>
void each_point(const scene_t &scene, Visit &&visit)
{
    for (const scene_item_t &item : scene.items) {
        if (item.hidden || item.buffers->flat == nullptr)
            continue;
        for (const point3_t &p : *item.buffers->flat->positions)
            visit(p);
    }
}

// The viewer as near as the model allows, and before its middle as it is seen.
looks_t look_at_model(const scene_t &scene)
{
    looks_t looks;
    looks.back = unit(from_viewer);
    looks.right = unit(point_cross({0, 1, 0}, looks.back));
    looks.up = point_cross(looks.back, looks.right);
    looks.centre = point_scale(point_add(scene.min, scene.max), 0.5f);
    constexpr double slope = filled * half_angle_tangent;
    reach_t left, right, down, up, depth;
    each_point(scene, [&](const point3_t &p) {
        const point3_t at = point_sub(p, looks.centre);
        const double x = point_dot(at, looks.right), y = point_dot(at, looks.up);
        const double towards = point_dot(at, looks.back);
        right.add(x + slope * towards);
        left.add(-x + slope * towards);
        up.add(y + slope * towards);
        down.add(-y + slope * towards);
        depth.add(towards);
    });
    if (depth.most < depth.least)
        depth.least = depth.most = right.most = left.most = up.most = down.most = 0;
    const double across = (right.most - left.most) / 2, above = (up.most - down.most) / 2;
    const double distance = std::max(right.most + left.most, up.most + down.most) / (2 * slope);
    looks.centre =
        point_add(looks.centre, point_add(point_scale(looks.right, static_cast<float>(across)),
                                          point_scale(looks.up, static_cast<float>(above))));
    looks.distance = distance > depth.most ? distance : depth.most + 1;
    looks.near_plane = std::max((looks.distance - depth.most) * 0.99, looks.distance * 1e-4);
    looks.far_plane = (looks.distance - depth.least) * 1.01;
    return looks;
}

void set_matrices(const looks_t &looks)
{
    const double half = looks.near_plane * half_angle_tangent;
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glFrustum(-half, half, -half, half, looks.near_plane, looks.far_plane);
    const point3_t &r = looks.right;
    const point3_t &u = looks.up;
    const point3_t &b = looks.back;
    const float turned[16] = {r.x, u.x, b.x, 0, r.y, u.y, b.y, 0, r.z, u.z, b.z, 0, 0, 0, 0, 1};
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glTranslated(0, 0, -looks.distance);
    glMultMatrixf(turned);
    glTranslatef(-looks.centre.x, -looks.centre.y, -looks.centre.z);
}

// Those that no surface uses: all of a cloud of points.
void draw_loose_points(const scene_t &scene, int size)
{
    std::vector<coloured_vertex_t> points;
    for (const scene_item_t &item : scene.items) {
        if (item.hidden || item.buffers->flat == nullptr)
            continue;
        for (const int v : flat_loose_vertices(*item.buffers->flat)) {
            const point3_t &p = item.buffers->flat->position(v);
            points.push_back({p.x, p.y, p.z, {245, 245, 245, 255}});
        }
    }
    glPointSize(std::max(1.0f, static_cast<float>(size) / 128));
    draw_coloured(GL_POINTS, points);
}

void draw_model(int size)
{
    const std::shared_ptr<scene_t> gathered = gather_scene(draw_pace::at_once, no_limit);
    scene_t &scene = *gathered;
    choose_detail(scene, 0);
    frame_begin(VIEW_XYZ, size, size, ground, true);
    if (scene.min.x <= scene.max.x) {
        set_matrices(look_at_model(scene));
        const fill_options_t options = {draw_set_lights(), true, true, false, true};
        draw_opaque_surfaces(scene, options);
        draw_line_surfaces(scene, std::max(1.0f, static_cast<float>(size) / 160));
        draw_loose_points(scene, size);
        draw_transparent_surfaces(scene, options);
    }
    frame_end(VIEW_XYZ);
}

std::vector<unsigned char> read_rows_from_top(int size)
{
    const std::size_t row = static_cast<std::size_t>(size) * 3;
    std::vector<unsigned char> rgb(row * static_cast<std::size_t>(size));
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    for (int y = 0; y < size; ++y)
        glReadPixels(0, size - 1 - y, size, 1, GL_RGB, GL_UNSIGNED_BYTE,
                     rgb.data() + row * static_cast<std::size_t>(y));
    return rgb;
}

bool write_thumbnail(int size, const char *file)
{
    if (size < smallest || size > largest) {
        display_message("thumbnail - expected a size of %d to %d pixels, not %d", smallest, largest,
                        size);
        return false;
    }
    const offscreen_t surface(size, size);
    if (!surface.problem().empty()) {
        display_message("thumbnail - %s", surface.problem().c_str());
        return false;
    }
    draw_model(size);
    const std::string png = png_of_rgb(size, size, read_rows_from_top(size).data());
    if (png.empty() || !atomic_file_write(file, png)) {
        display_message("thumbnail - can't write %s", file);
        return false;
    }
    return true;
}

void command_write_thumbnail(int size, const char *file)
{
    command_result_appendf("%d", write_thumbnail(size, file) ? 1 : 0);
}

} // namespace

void register_thumbnail_command()
{
    command_add_own(command_row("write_thumbnail", command_write_thumbnail, command_kind::query,
                                "<int size> <file.png>",
                                "a square picture of the model without a display; 1 or 0"));
}
