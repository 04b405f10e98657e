#ifndef VESK_MODULES_ASSIMP_MESHES_H
#define VESK_MODULES_ASSIMP_MESHES_H

#include "fileio/scene_stream.h"

#include <array>
#include <assimp/scene.h>
#include <unordered_map>

// The arrays of one object, from all meshes that share its picture.
class mesh_builder {
public:
    plain_node node;
    std::size_t bad_points = 0;

    // `fans`: triangles that follow each other with one first vertex are a polygon.
    void add(const aiMesh &mesh, const aiMatrix4x4 &frame, int material, bool twosided, bool fans);

private:
    struct place_hash {
        std::size_t operator()(const std::array<float, 3> &p) const
        {
            return std::hash<std::string_view>()(
                {reinterpret_cast<const char *>(p.data()), sizeof p});
        }
    };

    int place_of(const aiVector3D &p);
    void add_corner(const aiMesh &mesh, unsigned index, int place);
    void end_surface(int material, int flags);
    [[nodiscard]] bool goes_on(const aiFace &next) const;
    void add_face(const aiMesh &mesh, const std::vector<int> &places, int material, bool twosided);
    void add_segment(const aiMesh &mesh, const std::vector<int> &places, int material);
    void end_line();
    [[nodiscard]] bool is_smooth(const aiMesh &mesh) const;

    std::unordered_map<std::array<float, 3>, int, place_hash> known_;
    std::vector<unsigned> outline_; // of the face at hand: vertices of the mesh
    bool line_open_ = false;
    int line_material_ = 0;
};

#endif
