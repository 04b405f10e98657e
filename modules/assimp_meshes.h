#ifndef VESK_MODULES_ASSIMP_MESHES_H
#define VESK_MODULES_ASSIMP_MESHES_H

#include "fileio/scene_stream.h"

#include <array>
#include <assimp/scene.h>
#include <map>
#include <unordered_map>

// Materials that differ from one of the file in their colour: the mean of the colours of a face's
// points, in one of 216 shades.
class shade_materials {
public:
    explicit shade_materials(std::vector<plain_material> *all) : all_(*all) {}
    // The place of the material of a face, in the list of all.
    int of_face(const aiMesh &mesh, const std::vector<unsigned> &outline, int like);

private:
    std::vector<plain_material> &all_;
    std::map<std::array<int, 4>, int> known_; // by the shade and what it is like
};

// The arrays of one object, from all meshes that share its picture.
class mesh_builder {
public:
    plain_node node;
    std::size_t bad_points = 0;
    std::size_t mixed_points = 0; // with several colours

    // `fans`: triangles that follow each other with one first vertex are a polygon. `shades`: the
    // faces have materials of the colours of their points.
    void add(const aiMesh &mesh, const aiMatrix4x4 &frame, int material, bool twosided, bool fans,
             shade_materials *shades);

private:
    struct place_hash {
        std::size_t operator()(const std::array<float, 3> &p) const
        {
            return std::hash<std::string_view>()(
                {reinterpret_cast<const char *>(p.data()), sizeof p});
        }
    };

    int place_of(const aiMesh &mesh, unsigned index);
    std::array<float, 3> position_of(const aiMesh &mesh, unsigned index);
    void add_loose(const aiMesh &mesh, unsigned index);
    void colour_point(const aiMesh &mesh, unsigned index, std::size_t place);
    void add_corner(const aiMesh &mesh, unsigned index);
    void end_surface(int material, int flags);
    [[nodiscard]] bool goes_on(const aiFace &next) const;
    void add_face(const aiMesh &mesh, int material, bool twosided);
    void add_segment(const aiMesh &mesh, int material);
    void end_line();
    [[nodiscard]] bool is_smooth(const aiMesh &mesh) const;

    std::unordered_map<std::array<float, 3>, int, place_hash> known_;
    const aiMatrix4x4 *frame_ = nullptr; // of the mesh at hand
    std::vector<int> places_;            // of its vertices, -1 for those that no face had so far
    shade_materials *shades_ = nullptr;
    std::vector<unsigned> outline_; // of the face at hand: vertices of the mesh
    bool line_open_ = false;
    int line_material_ = 0;
};

#endif
