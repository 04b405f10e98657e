#include "fileio/export_scene.h"

#include "base/atomic_file.h"
#include "base/filename.h"
#include "model/bounds.h"
#include "model/each.h"
#include "model/ear_cut.h"
#include "model/palette.h"
#include "model/world.h"
#include "view/camera_eye.h"

#include <algorithm>

flat_uv export_object::uv(int corner) const
{
    const flat_uv &at = (*flat->texture_coords)[static_cast<size_t>(corner)];
    return {at.u * object->texture_repeat_x + object->texture_offset_x,
            at.v * object->texture_repeat_y + object->texture_offset_y};
}

std::string export_picture_beside(const object_t & /*object*/, const std::string &picture,
                                  const std::string &filename)
{
    if (!picture.starts_with('/'))
        return picture;
    const std::string name = vesk_filename_get_file(picture.c_str());
    const std::string folder = vesk_filename_get_path(filename.c_str());
    std::string bytes;
    if (!read_whole_file(picture.c_str(), &bytes))
        return name;
    constexpr int most_tries = 100; // names that other pictures have
    for (int i = 0; i < most_tries; ++i) {
        const std::string free_name = i == 0 ? name : std::to_string(i) + "_" + name;
        const std::string file = folder.empty() ? free_name : folder + "/" + free_name;
        std::string there;
        if (read_whole_file(file.c_str(), &there)) {
            if (there == bytes)
                return free_name;
        } else if (atomic_file_write(file.c_str(), bytes)) {
            return free_name;
        } else {
            break;
        }
    }
    return "";
}

int written_index(int index) { return index >= 0 && index < vesk_get_num_palette() ? index : 0; }

const material &written_material(int index)
{
    return *vesk_palette_get_material(written_index(index));
}

double surfaces_of_world()
{
    double surfaces = 0;
    for_each_object(vesk_get_world(),
                    [&](const object_t *object) { surfaces += object->num_surfaces; });
    return surfaces;
}

std::string export_one_line(const char *text)
{
    std::string line = text == nullptr ? "" : text;
    for (char &c : line)
        if (static_cast<unsigned char>(c) < ' ' || c == 0x7F)
            c = ' ';
    return line;
}

std::string export_quoted(const char *text)
{
    std::string out;
    append_quoted(out, export_one_line(text).c_str());
    return out;
}

export_eye export_view_eye()
{
    double m[16]; // column by column
    camera_modelview(m);
    const double scale = std::sqrt(m[0] * m[0] + m[4] * m[4] + m[8] * m[8]);
    const double size = scale > 0 ? scale : 1;
    point3_t axes[3];
    double location[3] = {};
    for (int i = 0; i < 3; ++i) {
        axes[i] = {static_cast<float>(m[i] / size), static_cast<float>(m[4 + i] / size),
                   static_cast<float>(m[8 + i] / size)};
        for (int k = 0; k < 3; ++k)
            location[k] -= m[4 * k + i] * m[12 + i] / (size * size);
    }
    const point3_t low = find_object_min(vesk_get_world());
    const point3_t extent = find_object_size(vesk_get_world());
    const projection_t view =
        camera_projection(low, {low.x + extent.x, low.y + extent.y, low.z + extent.z});
    return {.location = {static_cast<float>(location[0]), static_cast<float>(location[1]),
                         static_cast<float>(location[2])},
            .right = axes[0],
            .up = axes[1],
            .direction = {-axes[2].x, -axes[2].y, -axes[2].z},
            .perspective = view.perspective,
            .half_height = view.perspective ? view.half_height : view.half_height / size};
}

int export_vertices::place(int index) const
{
    return static_cast<int>(std::lower_bound(used.begin(), used.end(), index) - used.begin());
}

export_vertices export_used_vertices(const export_object &object, const export_part &part)
{
    export_vertices out;
    for (const int surface : part.surfaces) {
        const auto corners = object.flat->surface_corners(surface);
        out.used.insert(out.used.end(), corners.begin(), corners.end());
    }
    std::sort(out.used.begin(), out.used.end());
    out.used.erase(std::unique(out.used.begin(), out.used.end()), out.used.end());
    return out;
}

std::vector<int> export_triangles(const export_object &object, const export_part &part)
{
    std::vector<int> triangles;
    for (const int surface : part.surfaces)
        for (const int corner : surface_ears(*object.flat, surface))
            triangles.push_back(object.first_corner(surface) + corner);
    return triangles;
}
