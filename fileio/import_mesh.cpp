#include "fileio/import_mesh.h"

#include "base/file_report.h"
#include "base/filename.h"
#include "base/messages.h"
#include "base/utf8.h"
#include "fileio/append_text.h"
#include "fileio/vesk_lines.h"
#include "model/alloc_internal.h"
#include "model/each.h"
#include "model/material_values.h"
#include "model/normals.h"
#include "model/palette.h"

#include <algorithm>

int import_mesh::add_point(float x, float y, float z)
{
    points_.insert(points_.end(), {x, y, z});
    return num_points() - 1;
}

int import_mesh::add_point_of(int place, float x, float y, float z)
{
    const auto [known, fresh] = known_.emplace(place, num_points());
    return fresh ? add_point(x, y, z) : known->second;
}

void import_mesh::add_corner(int point, float u, float v)
{
    corners_.push_back(point);
    uv_.insert(uv_.end(), {u, v});
}

void import_mesh::end_surface(int palette_index, int flags)
{
    const int type = flags & SURFACE_TYPE_MASK;
    const bool line = type == SURFACE_LINE || type == SURFACE_CLOSED_LINE;
    const auto first = static_cast<size_t>(offsets_.back());
    if (corners_.size() - first < (line ? 2 : 3)) {
        corners_.resize(first);
        uv_.resize(2 * first);
        return;
    }
    offsets_.push_back(static_cast<int>(corners_.size()));
    attributes_.push_back({palette_index, flags});
}

std::vector<bool> import_mesh::drop_unused_points(const std::vector<bool> &keep)
{
    std::vector<bool> used = keep;
    used.resize(points_.size() / 3);
    for (const int corner : corners_)
        used[static_cast<size_t>(corner)] = true;
    std::vector<int> places(used.size());
    size_t count = 0;
    for (size_t i = 0; i < used.size(); ++i) {
        if (!used[i])
            continue;
        places[i] = static_cast<int>(count);
        std::copy_n(points_.begin() + static_cast<std::ptrdiff_t>(3 * i), 3,
                    points_.begin() + static_cast<std::ptrdiff_t>(3 * count++));
    }
    points_.resize(3 * count);
    for (int &corner : corners_)
        corner = places[static_cast<size_t>(corner)];
    return used;
}

object_t *import_mesh::make_object(const std::string &name) const
{
    object_t *object = new_object(OBJECT_POLY);
    object_set_name(object, name.c_str());
    static_assert(sizeof(point3_t) == 3 * sizeof(float));
    object_set_mesh(object, {num_points(), static_cast<int>(attributes_.size()),
                             static_cast<int>(corners_.size()),
                             reinterpret_cast<const point3_t *>(points_.data()), nullptr, nullptr,
                             attributes_.data(), offsets_.data(), corners_.data(), uv_.data()});
    object_calc_normals_force(object);
    return object;
}

object_t *import_refused(const std::string &filename, const char *reason)
{
    windows_message_dialog("can't read %s\n%s", filename.c_str(), reason);
    return nullptr;
}

object_t *import_cancelled()
{
    display_message("import - cancelled");
    return nullptr;
}

std::string import_base_name(const char *filename)
{
    const std::string name = vesk_filename_get_file(filename);
    return name.substr(0, name.rfind('.'));
}

void import_fit_names(object_t *top)
{
    const auto fits = [](const std::string &name) {
        std::string line = "name ";
        append_quoted(line, name.c_str());
        return line.size() < std::size_t{line_length}; // and its end
    };
    int shortened = 0;
    for_each_object(top, [&](object_t *object) {
        if (object->name == nullptr)
            return;
        std::string name = object->name;
        for (char &c : name)
            if (static_cast<unsigned char>(c) < ' ' || c == 0x7F)
                c = ' ';
        const std::size_t whole = name.size();
        name.resize(std::min(whole, std::size_t{line_length}));
        while (!name.empty() && !fits(name))
            name.resize(utf8_whole(name.c_str(), name.size() - 1));
        if (object->name != name)
            text_set(&object->name, name.c_str());
        shortened += name.size() < whole ? 1 : 0;
    });
    if (shortened > 0)
        vesk_report_warning(0, "%d names are too long and were shortened", shortened);
}

int import_colour(float r, float g, float b)
{
    material_values m;
    m.diffuse[0] = r;
    m.diffuse[1] = g;
    m.diffuse[2] = b;
    return vesk_palette_get_new_material_index(&m);
}
