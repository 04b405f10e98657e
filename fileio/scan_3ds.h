#ifndef VESK_FILEIO_SCAN_3DS_H
#define VESK_FILEIO_SCAN_3DS_H

// 3D Studio files as plain records, as they stand in the file.

#include "fileio/vrml_frame.h"
#include "model/material_values.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct material_3ds {
    std::string name;
    material_values colours;
    bool twosided = false;
    std::string picture; // for the colour
    float repeat[2] = {1, 1}, offset[2] = {0, 0};
};

struct mesh_3ds {
    std::string name;
    std::vector<float> points, uv;
    std::vector<std::array<std::uint16_t, 3>> faces;
    std::vector<std::int32_t> looks;      // of each face: a name in `look_names`, or -1
    std::vector<std::uint32_t> smoothing; // of each face: groups as bits; may be shorter
    std::vector<std::string> look_names;
    std::optional<vrml_matrix> frame; // in which the points were made
};

struct light_3ds {
    std::string name;
    std::array<float, 3> place = {};
};

// An entry of the tree: of a mesh or a light by its name, or of neither.
struct node_3ds {
    std::string name;     // of the mesh or the light; "$$$DUMMY" for neither
    std::string instance; // its own, "" for none
    int id = -1;          // -1: its place in the file
    int parent = -1;      // an id
    bool camera = false;  // of a camera or of what it looks at, which are not read
    bool moves = false;   // it has a place of its own ...
    std::array<float, 3> pivot = {}, place = {}, scale = {1, 1, 1};
    std::array<float, 4> turn = {}; // ... and these; axis and angle
    int keys = 0;                   // the most that one of its tracks has
};

struct file_3ds {
    std::vector<material_3ds> materials;
    std::vector<mesh_3ds> meshes;
    std::vector<light_3ds> lights;
    std::vector<node_3ds> nodes;
    int cameras = 0;
    int other_pictures = 0; // for bumps, shine and the like
    bool damaged = false;   // something ends too early
};

// False when it is no such file.
bool scan_3ds(std::string_view bytes, file_3ds *file);

#endif
