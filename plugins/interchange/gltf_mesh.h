// The geometry of one object as glTF wants it: vertices with one normal, one pair of texture
// coordinates and one colour each, and the indices of its primitives.
#ifndef INTERCHANGE_GLTF_MESH_H
#define INTERCHANGE_GLTF_MESH_H

#include "model.h"

#include <array>
#include <cstdint>
#include <map>
#include <tuple>

class mesh_data {
public:
    using rgb = std::array<unsigned char, 3>;
    struct vertices {
        std::vector<point3_t> points;
        std::vector<rgb> colours; // one a point, or none
    };

    vertices corners; // of the polygons
    std::vector<point3_t> normals;
    std::vector<float> uv;
    std::map<int, std::vector<std::uint32_t>> triangles; // by material
    vertices ends;                                       // of the lines
    std::map<int, std::vector<std::uint32_t>> lines;
    vertices loose; // that no surface uses
    int cut = 0;    // polygons that are no fan

    // `materials` has the place to be used for each of the surfaces' own.
    mesh_data(job &work, const model_node &node, const std::vector<int> &materials);

private:
    [[nodiscard]] std::size_t point_at(int corner) const
    {
        return static_cast<std::size_t>(node_.corners[static_cast<std::size_t>(corner)]);
    }
    [[nodiscard]] int material_of(const model_surface &surface) const
    {
        return materials_[static_cast<std::size_t>(surface.material)];
    }
    void add(vertices &to, std::size_t point) const;
    std::uint32_t vertex(const model_surface &surface, int corner);
    void add_polygon(const model_surface &surface);
    [[nodiscard]] std::size_t fan_start(const model_surface &surface,
                                        const std::vector<std::uint32_t> &to) const;
    void cross(const model_surface &surface, std::size_t from, std::size_t to, std::size_t next,
               double *out) const;
    void add_line(const model_surface &surface);

    const model_node &node_;
    const std::vector<int> &materials_;
    std::map<std::tuple<std::size_t, float, float>, std::uint32_t> shared_;
    std::vector<std::uint32_t> places_; // of the surface at hand: its corners' vertices
    std::vector<int> corners_;
};

#endif
