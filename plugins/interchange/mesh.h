// The arrays of one object while a reader fills them, and the materials of colours.
#ifndef INTERCHANGE_MESH_H
#define INTERCHANGE_MESH_H

#include <algorithm>
#include <cmath>
#include <map>
#include <plugin/vesk.h>
#include <string>
#include <vector>

// Palette index of a plain colour, 0xRRGGBB; the other values are those of a new material.
inline int palette_index_of(unsigned rgb)
{
    material_values m;
    for (int i = 0; i < 3; ++i)
        m.diffuse[i] = static_cast<float>(rgb >> (16 - 8 * i) & 0xFF) / 255;
    return vesk_palette_get_new_material_index(&m);
}

// The share of an import; the rest is for making the objects.
constexpr double share_of_parsing = 0.7;

// Surfaces without a material in the file.
constexpr int no_material = -1;
constexpr unsigned colour_without_material = 0xCCCCCC;

// The mean of colours, one after the other, in one of 216 shades: what the views show of a surface
// whose points have colours of their own.
class shade_of_points {
public:
    void add(unsigned red, unsigned green, unsigned blue)
    {
        sum_[0] += red;
        sum_[1] += green;
        sum_[2] += blue;
        ++count_;
    }
    [[nodiscard]] unsigned rgb() const
    {
        constexpr double step = 51;
        unsigned all = 0;
        for (const double part : sum_)
            all = all << 8 | static_cast<unsigned>(step * std::round(part / count_ / step));
        return all;
    }

private:
    double sum_[3] = {};
    int count_ = 0;
};

struct mesh_arrays {
    std::vector<float> points, uv; // uv: as far as a corner had any
    std::vector<int> offsets{0}, corners;
    std::vector<vesk_surface_attributes_t> surfaces;
    std::vector<unsigned char> colours; // three a point, or none

    int plain_index = -1;           // in the palette, once a surface needs it
    std::map<unsigned, int> shades; // the same by colour

    [[nodiscard]] int num_points() const { return static_cast<int>(points.size() / 3); }

    void add_corner(int point) { corners.push_back(point); }
    void add_corner(int point, float u, float v)
    {
        uv.resize(2 * corners.size());
        corners.push_back(point);
        uv.push_back(u);
        uv.push_back(v);
    }
    // Takes the corners from `count` on back.
    void keep_corners(std::size_t count)
    {
        corners.resize(count);
        if (uv.size() > 2 * count)
            uv.resize(2 * count);
    }

    // Ends the surface whose corners were added since the last one. False, and none of them is
    // left, when there are too few.
    bool end_surface(int palette_index, int flags)
    {
        const int type = flags & SURFACE_TYPE_MASK;
        const bool line = type == SURFACE_LINE || type == SURFACE_CLOSED_LINE;
        const auto first = static_cast<std::size_t>(offsets.back());
        if (corners.size() - first < (line ? 2u : 3u)) {
            keep_corners(first);
            return false;
        }
        if (palette_index == no_material) {
            if (plain_index < 0 && colours.empty())
                plain_index = palette_index_of(colour_without_material);
            palette_index = colours.empty() ? plain_index : shade_index(first, corners.size());
        }
        offsets.push_back(static_cast<int>(corners.size()));
        surfaces.push_back({palette_index, flags});
        return true;
    }

    [[nodiscard]] int shade_of_surface(std::size_t surface)
    {
        return shade_index(static_cast<std::size_t>(offsets[surface]),
                           static_cast<std::size_t>(offsets[surface + 1]));
    }
    // The material for these corners, whose points have colours.
    int shade_index(std::size_t first, std::size_t end)
    {
        shade_of_points shade;
        for (std::size_t i = first; i < end; ++i) {
            const unsigned char *rgb = &colours[3 * static_cast<std::size_t>(corners[i])];
            shade.add(rgb[0], rgb[1], rgb[2]);
        }
        const auto [entry, fresh] = shades.emplace(shade.rgb(), 0);
        if (fresh)
            entry->second = palette_index_of(entry->first);
        return entry->second;
    }

    // A new object without normals.
    [[nodiscard]] object_t *make_object(const std::string &name)
    {
        if (!uv.empty())
            uv.resize(2 * corners.size());
        object_t *object = new_object(OBJECT_POLY);
        const int n = static_cast<int>(surfaces.size());
        object_set_name(object, name.c_str());
        vesk_object_add_vertices_from_float_array(object, points.data(), num_points());
        vesk_object_add_surfaces_from_arrays(object, n, offsets.data(), corners.data(),
                                             uv.empty() ? nullptr : uv.data(), 0);
        vesk_object_set_surface_attributes(object, 0, n, surfaces.data());
        const bool white = std::all_of(colours.begin(), colours.end(),
                                       [](unsigned char part) { return part == 255; });
        if (!white && colours.size() == points.size())
            vesk_object_set_vertex_colours(object, colours.data());
        return object;
    }
};

#endif
